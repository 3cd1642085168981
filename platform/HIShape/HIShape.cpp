#include "platform/HIShape/HIShape.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

static constexpr double kUnits = 256;     // a point
static constexpr double kFarthest = 4e6;  // points: sides of shapes stay below 2^31 units

struct __HIShape : CFObject {
    explicit __HIShape(const ZRGTable* functions) : table(functions), region(table->createRegion()) {}
    ~__HIShape() override { table->releaseRegion(region); }
    CFTypeID typeID() const override { return kHITypeShape; }
    const ZRGTable* const table;
    ZRGRegion* const region;
};

// Sets -------------------------------------------------------------------------------------------------------------

static __HIShape* CreateShape() {
    return CFGuarded([]() -> __HIShape* {
        const ZRGTable* table = Graphics();
        if (!table) return nullptr;
        auto shape = std::make_unique<__HIShape>(table);
        return shape->region ? shape.release() : nullptr;
    });
}

HIMutableShapeRef HIShapeCreateMutable() { return CreateShape(); }

static int UnitsOf(double points) {
    return static_cast<int>(std::lround(std::clamp(points, -kFarthest, kFarthest) * kUnits));
}

HIShapeRef HIShapeCreateWithRect(const CGRect* rect) {
    __HIShape* shape = rect ? CreateShape() : nullptr;
    if (!shape || !IsFinite(*rect) || CGRectIsEmpty(*rect)) return shape;
    int left = UnitsOf(CGRectGetMinX(*rect)), low = UnitsOf(CGRectGetMinY(*rect));
    const int units[] = {left, low, UnitsOf(CGRectGetMaxX(*rect)) - left, UnitsOf(CGRectGetMaxY(*rect)) - low};
    if (units[2] > 0 && units[3] > 0) shape->table->setRegion(shape->region, units);
    return shape;
}

OSStatus HIShapeSetEmpty(HIMutableShapeRef shape) {
    if (!shape) return paramErr;
    shape->table->setRegion(shape->region, nullptr);
    return noErr;
}

static OSStatus Combine(HIShapeRef left, HIShapeRef right, bool subtract, HIMutableShapeRef result) {
    if (!left || !right || !result) return paramErr;
    result->table->combineRegions(left->region, right->region, subtract, result->region);
    return noErr;
}

OSStatus HIShapeUnion(HIShapeRef shape1, HIShapeRef shape2, HIMutableShapeRef result) {
    return Combine(shape1, shape2, /*subtract*/ false, result);
}

OSStatus HIShapeDifference(HIShapeRef shape1, HIShapeRef shape2, HIMutableShapeRef result) {
    return Combine(shape1, shape2, /*subtract*/ true, result);
}

bool HIShapeIsEmpty(HIShapeRef shape) { return !shape || shape->table->countRects(shape->region) == 0; }

struct Box {
    long left, low, right, high;  // units
};

static std::vector<Box> BoxesOf(HIShapeRef shape) {
    std::vector<Box> boxes(static_cast<size_t>(shape->table->countRects(shape->region)));
    for (size_t i = 0; i < boxes.size(); ++i) {
        int r[4];
        shape->table->getRect(shape->region, static_cast<long>(i), r);
        boxes[i] = {r[0], r[1], static_cast<long>(r[0]) + r[2], static_cast<long>(r[1]) + r[3]};
    }
    return boxes;
}

bool HIShapeContainsPoint(HIShapeRef shape, const CGPoint* p) {
    if (!shape || !p || !IsFinite(*p)) return false;
    bool inside = false;
    CFGuarded([&]() -> void* {
        for (const Box& b : BoxesOf(shape))
            inside |= p->x * kUnits >= static_cast<double>(b.left) && p->x * kUnits < static_cast<double>(b.right) &&
                      p->y * kUnits >= static_cast<double>(b.low) && p->y * kUnits < static_cast<double>(b.high);
        return nullptr;
    });
    return inside;
}

// The outline ------------------------------------------------------------------------------------------------------

// The boundary of boxes that lie in bands of ascending y and do not touch sideways, as directed edges with the inside
// on their left; each starts where another ends.
struct Corner {
    long x, y;
    auto operator<=>(const Corner&) const = default;
};
using Edges = std::multimap<Corner, Corner>;

// Level y: what only the band above has begins here (inside above: to the right), what only the band below has ends.
static void AddLevel(const Box* below, const Box* belowEnd, const Box* above, const Box* aboveEnd, long y,
                     Edges* edges) {
    std::vector<std::pair<long, int>> changes;  // x; bit 0 below, bit 1 above
    for (; below < belowEnd; ++below) changes.insert(changes.end(), {{below->left, 1}, {below->right, 1}});
    for (; above < aboveEnd; ++above) changes.insert(changes.end(), {{above->left, 2}, {above->right, 2}});
    std::sort(changes.begin(), changes.end());
    int state = 0;
    for (size_t i = 0; i < changes.size();) {
        long x = changes[i].first;
        for (; i < changes.size() && changes[i].first == x; ++i) state ^= changes[i].second;
        if (i == changes.size()) break;
        long next = changes[i].first;
        if (state == 2) edges->insert({{x, y}, {next, y}});
        if (state == 1) edges->insert({{next, y}, {x, y}});
    }
}

static Edges Boundary(const std::vector<Box>& boxes) {
    Edges edges;
    for (const Box& b : boxes) {
        edges.insert({{b.right, b.low}, {b.right, b.high}});
        edges.insert({{b.left, b.high}, {b.left, b.low}});
    }
    const Box* end = boxes.data() + boxes.size();
    const Box *below = boxes.data(), *belowEnd = below;
    for (const Box* band = boxes.data(); band < end;) {
        const Box* bandEnd = band;
        while (bandEnd < end && bandEnd->low == band->low) ++bandEnd;
        bool touches = below < belowEnd && below->high == band->low;
        if (!touches) AddLevel(below, belowEnd, nullptr, nullptr, below < belowEnd ? below->high : 0, &edges);
        AddLevel(below, touches ? belowEnd : below, band, bandEnd, band->low, &edges);
        below = band, belowEnd = bandEnd, band = bandEnd;
    }
    if (below < belowEnd) AddLevel(below, belowEnd, nullptr, nullptr, below->high, &edges);
    return edges;
}

// Where two edges begin, the one that turns left: boxes that meet in a corner keep outlines of their own.
static Edges::iterator NextEdge(Edges* edges, Corner from, Corner at) {
    auto [first, last] = edges->equal_range(at);
    for (auto edge = first; edge != last; ++edge) {
        Corner to = edge->second;
        if ((at.x - from.x) * (to.y - at.y) - (at.y - from.y) * (to.x - at.x) > 0) return edge;
    }
    return first == last ? edges->end() : first;
}

static void AddLoop(Edges* edges, CGContextRef context) {
    std::vector<Corner> loop;
    Corner start = edges->begin()->first, from = start;
    Edges::iterator edge = edges->begin();
    while (edge != edges->end()) {
        Corner at = edge->second;
        edges->erase(edge);
        // Edges that go straight on are one.
        bool straight = !loop.empty() &&
                        ((loop.back().x == from.x && from.x == at.x) || (loop.back().y == from.y && from.y == at.y));
        if (!straight) loop.push_back(from);
        if (at == start) break;
        edge = NextEdge(edges, from, at);
        from = at;
    }
    for (size_t i = 0; i < loop.size(); ++i) {
        double x = static_cast<double>(loop[i].x) / kUnits, y = static_cast<double>(loop[i].y) / kUnits;
        if (i == 0) CGContextMoveToPoint(context, x, y);
        else CGContextAddLineToPoint(context, x, y);
    }
    CGContextClosePath(context);
}

OSStatus HIShapeReplacePathInCGContext(HIShapeRef shape, CGContextRef context) {
    if (!shape || !context) return paramErr;
    CGContextBeginPath(context);
    CFGuarded([&]() -> void* {
        Edges edges = Boundary(BoxesOf(shape));
        while (!edges.empty()) AddLoop(&edges, context);
        return nullptr;
    });
    return noErr;
}
