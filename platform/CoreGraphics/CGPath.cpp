// Paths: lists of moves, lines, cubic curves and closes. Quadratic curves and arcs become cubic ones on their way in.
#include <algorithm>
#include <cmath>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

static constexpr double kCircle = 0.5522847498307936;  // 4/3 (sqrt 2 - 1): control points of a quarter circle
static constexpr double kFlatness = 0.01;              // of a curve taken as lines by CGPathContainsPoint
static constexpr double kUsableLeast = 1e-30, kUsableMost = 1e15;
static constexpr double kUsableFlat = 1e-9;  // of a determinant against the squares of the matrix

bool IsFinite(CGPoint p) { return std::isfinite(p.x) && std::isfinite(p.y); }

bool IsFinite(CGRect r) { return IsFinite(r.origin) && std::isfinite(r.size.width) && std::isfinite(r.size.height); }

bool IsUsable(const CGAffineTransform& m) {
    for (double value : {m.a, m.b, m.c, m.d, m.tx, m.ty})
        if (!(std::abs(value) < kUsableMost)) return false;
    double squares = m.a * m.a + m.b * m.b + m.c * m.c + m.d * m.d;
    return std::abs(m.a * m.d - m.b * m.c) > std::max(kUsableLeast, kUsableFlat * squares);
}

static CGPoint Mix(CGPoint p, CGPoint q, double t) { return {p.x + (q.x - p.x) * t, p.y + (q.y - p.y) * t}; }

// Records ----------------------------------------------------------------------------------------------------------

void PathRecords::Clear() {
    verbs.clear();
    points.clear();
    hasCurrent = closed = false;
}

void PathRecords::PutPoint(CGPoint p) {
    if (limit > 0) p = {std::clamp(p.x, -limit, limit), std::clamp(p.y, -limit, limit)};
    points.push_back(p.x);
    points.push_back(p.y);
    current = p;
}

void PathRecords::Put(uint8_t verb, CGPoint p) {
    verbs.push_back(verb);
    PutPoint(p);
}

// Whether a line may follow; behind a close it starts where the closed subpath began.
bool PathRecords::Continue() {
    if (closed) Move(start);
    return hasCurrent;
}

void PathRecords::Move(CGPoint p) {
    if (!IsFinite(p)) return;
    Put(kZRGMove, p);
    start = current;
    hasCurrent = true;
    closed = false;
}

void PathRecords::Line(CGPoint p) {
    if (IsFinite(p) && Continue()) Put(kZRGLine, p);
}

void PathRecords::Curve(CGPoint c1, CGPoint c2, CGPoint p) {
    if (!IsFinite(c1) || !IsFinite(c2) || !IsFinite(p) || !Continue()) return;
    Put(kZRGCurve, c1);
    PutPoint(c2);
    PutPoint(p);
}

void PathRecords::Quad(CGPoint c, CGPoint p) {
    if (IsFinite(c) && IsFinite(p) && Continue()) Curve(Mix(current, c, 2.0 / 3), Mix(p, c, 2.0 / 3), p);
}

void PathRecords::Close() {
    if (!hasCurrent || closed) return;
    verbs.push_back(kZRGClose);
    current = start;
    closed = true;
}

void PathRecords::Rect(const CGAffineTransform& m, CGRect r) {
    if (!IsFinite(r)) return;
    auto corner = [&](double x, double y) { return CGPointApplyAffineTransform({x, y}, m); };
    double right = r.origin.x + r.size.width, top = r.origin.y + r.size.height;
    CGPoint corners[] = {corner(r.origin.x, r.origin.y), corner(right, r.origin.y), corner(right, top),
                         corner(r.origin.x, top)};
    for (CGPoint p : corners)
        if (!IsFinite(p)) return;
    Move(corners[0]);
    for (int i = 1; i < 4; ++i) Line(corners[i]);
    Close();
}

void PathRecords::Ellipse(const CGAffineTransform& m, CGRect r) {
    double rx = r.size.width / 2, ry = r.size.height / 2, cx = r.origin.x + rx, cy = r.origin.y + ry;
    auto at = [&](double x, double y) { return CGPointApplyAffineTransform({cx + rx * x, cy + ry * y}, m); };
    for (CGPoint p : {at(1, 1), at(-1, 1), at(1, -1), at(-1, -1)})
        if (!IsFinite(p)) return;
    const double k = kCircle;
    Move(at(1, 0));
    Curve(at(1, k), at(k, 1), at(0, 1));
    Curve(at(-k, 1), at(-1, k), at(-1, 0));
    Curve(at(-1, -k), at(-k, -1), at(0, -1));
    Curve(at(k, -1), at(1, -k), at(1, 0));
    Close();
}

// A line to the arc of the radius that touches both lines current - p1 and p1 - p2, and the arc.
void PathRecords::ArcTo(const CGAffineTransform& m, CGPoint p1, CGPoint p2, double radius) {
    if (!Continue() || !IsUsable(m) || !std::isfinite(radius) || !IsFinite(p1) || !IsFinite(p2)) return;
    CGPoint p0 = CGPointApplyAffineTransform(current, CGAffineTransformInvert(m));
    CGPoint u = {p0.x - p1.x, p0.y - p1.y}, v = {p2.x - p1.x, p2.y - p1.y};
    double lu = std::hypot(u.x, u.y), lv = std::hypot(v.x, v.y);
    double cross = lu > 0 && lv > 0 ? (u.x * v.y - u.y * v.x) / lu / lv : 0;
    if (radius <= 0 || std::abs(cross) < 1e-9) return Line(CGPointApplyAffineTransform(p1, m));
    double cosine = std::clamp((u.x * v.x + u.y * v.y) / lu / lv, -1.0, 1.0), half = std::acos(cosine) / 2;
    double reach = radius / std::tan(half);  // from p1 to where the arc touches
    CGPoint from = {p1.x + u.x / lu * reach, p1.y + u.y / lu * reach};
    CGPoint to = {p1.x + v.x / lv * reach, p1.y + v.y / lv * reach};
    double bx = u.x / lu + v.x / lv, by = u.y / lu + v.y / lv, away = radius / std::sin(half) / std::hypot(bx, by);
    CGPoint center = {p1.x + bx * away, p1.y + by * away};
    double start = std::atan2(from.y - center.y, from.x - center.x);
    double sweep = (M_PI - 2 * half) * (cross > 0 ? -1 : 1);
    int pieces = std::abs(sweep) > M_PI / 2 ? 2 : 1;  // of at most a quarter circle
    Line(CGPointApplyAffineTransform(from, m));
    for (int i = 1; i <= pieces; ++i) {
        double a = start + sweep * (i - 1) / pieces, b = start + sweep * i / pieces,
               h = 4.0 / 3 * std::tan((b - a) / 4);
        auto at = [&](double x, double y) {
            return CGPointApplyAffineTransform({center.x + radius * x, center.y + radius * y}, m);
        };
        double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
        CGPoint end = i == pieces ? CGPointApplyAffineTransform(to, m) : at(cb, sb);
        Curve(at(ca - h * sa, sa + h * ca), at(cb + h * sb, sb - h * cb), end);
    }
}

void PathRecords::Append(const CGAffineTransform& m, const PathRecords& other) {
    verbs.reserve(verbs.size() + other.verbs.size());
    points.reserve(points.size() + other.points.size());
    const double* p = other.points.data();
    auto next = [&] {
        CGPoint point = CGPointApplyAffineTransform({p[0], p[1]}, m);
        p += 2;
        return point;
    };
    for (uint8_t verb : other.verbs) switch (verb) {
            case kZRGMove: Move(next()); break;
            case kZRGLine: Line(next()); break;
            case kZRGCurve: {
                CGPoint c1 = next(), c2 = next();
                Curve(c1, c2, next());
                break;
            }
            default: Close();
        }
}

ZRGPath PathRecords::View(bool evenOdd) const {
    return {verbs.data(), points.data(), static_cast<long>(verbs.size()), evenOdd};
}

// CGPath -----------------------------------------------------------------------------------------------------------

bool CGPath::equals(const CFObject& other) const {
    auto& path = static_cast<const CGPath&>(other).records;
    return records.verbs == path.verbs && records.points == path.points;
}

CFTypeID CGPathGetTypeID() { return kCGTypePath; }

CGMutablePathRef CGPathCreateMutable() {
    return CFGuarded([] { return new CGPath; });
}

static const CGAffineTransform& OrIdentity(const CGAffineTransform* m) { return m ? *m : CGAffineTransformIdentity; }

// A change of a path: nothing without one, and no exception leaves.
template <class Body>
static void Change(CGMutablePathRef path, Body body) {
    if (!path) return;
    CFGuarded([&]() -> void* {
        body(path->records);
        return nullptr;
    });
}

CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform* m) {
    CGMutablePathRef path = CGPathCreateMutable();
    CGPathAddRect(path, m, rect);
    return path;
}

CGPathRef CGPathCreateCopy(CGPathRef path) {
    if (!path) return nullptr;
    return CFGuarded([&] {
        auto copy = std::make_unique<CGPath>();
        copy->records = path->records;
        return copy.release();
    });
}

void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y) {
    Change(path, [&](PathRecords& r) { r.Move(CGPointApplyAffineTransform({x, y}, OrIdentity(m))); });
}

void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y) {
    Change(path, [&](PathRecords& r) { r.Line(CGPointApplyAffineTransform({x, y}, OrIdentity(m))); });
}

void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat cx1, CGFloat cy1, CGFloat cx2,
                           CGFloat cy2, CGFloat x, CGFloat y) {
    auto put = [&](CGFloat px, CGFloat py) { return CGPointApplyAffineTransform({px, py}, OrIdentity(m)); };
    Change(path, [&](PathRecords& r) { r.Curve(put(cx1, cy1), put(cx2, cy2), put(x, y)); });
}

void CGPathAddQuadCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat cx, CGFloat cy, CGFloat x,
                               CGFloat y) {
    auto put = [&](CGFloat px, CGFloat py) { return CGPointApplyAffineTransform({px, py}, OrIdentity(m)); };
    Change(path, [&](PathRecords& r) { r.Quad(put(cx, cy), put(x, y)); });
}

void CGPathAddArcToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x1, CGFloat y1, CGFloat x2,
                         CGFloat y2, CGFloat radius) {
    Change(path, [&](PathRecords& r) { r.ArcTo(OrIdentity(m), {x1, y1}, {x2, y2}, radius); });
}

void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect) {
    Change(path, [&](PathRecords& r) { r.Rect(OrIdentity(m), rect); });
}

void CGPathAddEllipseInRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect) {
    Change(path, [&](PathRecords& r) { r.Ellipse(OrIdentity(m), rect); });
}

void CGPathAddPath(CGMutablePathRef path, const CGAffineTransform* m, CGPathRef other) {
    if (!other) return;
    Change(path, [&](PathRecords& r) {
        if (other == path) r.Append(OrIdentity(m), PathRecords(other->records));
        else r.Append(OrIdentity(m), other->records);
    });
}

void CGPathCloseSubpath(CGMutablePathRef path) {
    Change(path, [](PathRecords& r) { r.Close(); });
}

bool CGPathIsEmpty(CGPathRef path) { return !path || path->records.empty(); }

CGPoint CGPathGetCurrentPoint(CGPathRef path) {
    return path && path->records.hasCurrent ? path->records.current : CGPointZero;
}

CGRect CGPathGetBoundingBox(CGPathRef path) {
    CGRect box = CGRectNull;
    if (!path) return box;
    auto& points = path->records.points;
    for (size_t i = 0; i + 1 < points.size(); i += 2) box = CGRectUnion(box, {{points[i], points[i + 1]}, {0, 0}});
    return box;
}

// Hit testing ------------------------------------------------------------------------------------------------------

// Counts how often the path runs around the point: upward crossings of the ray to its right less downward ones.
struct Winding {
    CGPoint point;
    long turns = 0, crossings = 0;
    void Line(CGPoint from, CGPoint to) {
        bool up = from.y <= point.y && to.y > point.y, down = to.y <= point.y && from.y > point.y;
        if (!up && !down) return;
        double side = (to.x - from.x) * (point.y - from.y) - (to.y - from.y) * (point.x - from.x);
        if (up ? side <= 0 : side >= 0) return;  // crossed to the left of the point
        turns += up ? 1 : -1;
        ++crossings;
    }
    void Curve(CGPoint p0, CGPoint c1, CGPoint c2, CGPoint p3) {
        double bend = std::max(std::hypot(p0.x - 2 * c1.x + c2.x, p0.y - 2 * c1.y + c2.y),
                               std::hypot(c1.x - 2 * c2.x + p3.x, c1.y - 2 * c2.y + p3.y));
        double wanted = std::ceil(std::sqrt(bend * 0.75 / kFlatness));
        int steps = static_cast<int>(std::clamp(std::isfinite(wanted) ? wanted : 1, 1.0, 10000.0));
        CGPoint from = p0;
        for (int i = 1; i <= steps; ++i) {
            double t = static_cast<double>(i) / steps;
            CGPoint a = Mix(p0, c1, t), b = Mix(c1, c2, t), c = Mix(c2, p3, t);
            CGPoint to = i == steps ? p3 : Mix(Mix(a, b, t), Mix(b, c, t), t);
            Line(from, to);
            from = to;
        }
    }
};

bool CGPathContainsPoint(CGPathRef path, const CGAffineTransform* m, CGPoint point, bool evenOdd) {
    if (!path || !IsFinite(point)) return false;
    const double* p = path->records.points.data();
    auto next = [&] {
        CGPoint at = CGPointApplyAffineTransform({p[0], p[1]}, OrIdentity(m));
        p += 2;
        return at;
    };
    Winding winding = {point};
    CGPoint start = {}, current = {};
    for (uint8_t verb : path->records.verbs) {
        CGPoint from = current;
        switch (verb) {
            case kZRGMove:
                winding.Line(current, start);  // an open subpath counts as closed
                start = current = next();
                break;
            case kZRGLine: winding.Line(from, current = next()); break;
            case kZRGCurve: {
                CGPoint c1 = next(), c2 = next();
                current = next();
                winding.Curve(from, c1, c2, current);
                break;
            }
            default: winding.Line(from, start); current = start;
        }
    }
    winding.Line(current, start);
    return evenOdd ? winding.crossings % 2 != 0 : winding.turns != 0;
}
