// Outlines that reach far out of a canvas. The drawing library counts in fixed point numbers: what lies beyond some ten
// thousand units bends or vanishes. Lines are cut where they cross the sides of a box around the canvas, and all that
// is outside is moved to the nearest point of the box: within the box nothing changes, neither the ink nor how often
// the path runs around a point.
#include <algorithm>
#include <cmath>

#include "platform/graphics_object/Canvas_Private.h"

static constexpr double kPreciseCoordinate = 32768;  // device units; paths within are taken as they are
static constexpr double kMargin = 1024;              // device units between the canvas and the box
static constexpr double kWidestMargin = 2e6;
static constexpr double kSmallestPiece = 0.05;  // device units of a curve
static constexpr int kMostHalvings = 64;

namespace {
struct Point {
    double x, y;
};

struct Box {
    double left, top, right, bottom;
};

struct Fitter {
    const Box box;
    OwnPath out = {};
    Point at = {}, start = {};

    void Put(Point p) {
        out.points.push_back(std::clamp(p.x, box.left, box.right));
        out.points.push_back(std::clamp(p.y, box.top, box.bottom));
    }
    void Move(Point p) {
        out.verbs.push_back(kZRGMove);
        Put(p);
        at = start = p;
    }
    void Line(Point p) {
        double cuts[4];  // ascending
        int n = 0;
        auto cut = [&](double from, double to, double side) {
            if ((from < side) == (to < side)) return;
            double t = (side - from) / (to - from);
            int i = n++;
            for (; i > 0 && cuts[i - 1] > t; --i) cuts[i] = cuts[i - 1];
            cuts[i] = t;
        };
        cut(at.x, p.x, box.left);
        cut(at.x, p.x, box.right);
        cut(at.y, p.y, box.top);
        cut(at.y, p.y, box.bottom);
        for (int i = 0; i < n; ++i) {
            out.verbs.push_back(kZRGLine);
            Put({at.x + (p.x - at.x) * cuts[i], at.y + (p.y - at.y) * cuts[i]});
        }
        out.verbs.push_back(kZRGLine);
        Put(p);
        at = p;
    }
    // A curve that is neither wholly inside nor wholly beyond one side is halved.
    void Curve(Point a, Point b, Point p, int halvings) {
        auto [left, right] = std::minmax({at.x, a.x, b.x, p.x});
        auto [top, bottom] = std::minmax({at.y, a.y, b.y, p.y});
        bool outside = right < box.left || left > box.right || bottom < box.top || top > box.bottom;
        bool inside = left >= box.left && right <= box.right && top >= box.top && bottom <= box.bottom;
        bool small = right - left < kSmallestPiece && bottom - top < kSmallestPiece;
        if (inside) {
            out.verbs.push_back(kZRGCurve);
            for (Point q : {a, b, p}) Put(q);
            at = p;
        } else if (outside || small || halvings == 0) {
            Line(p);
        } else {
            auto middle = [](Point q, Point r) { return Point{q.x / 2 + r.x / 2, q.y / 2 + r.y / 2}; };
            Point a1 = middle(at, a), ab = middle(a, b), b2 = middle(b, p);
            Point a2 = middle(a1, ab), b1 = middle(ab, b2), half = middle(a2, b1);
            Curve(a1, a2, half, halvings - 1);
            Curve(b1, b2, p, halvings - 1);
        }
    }
    void Close() {
        Line(start);  // it may cross the box as any other
        out.verbs.push_back(kZRGClose);
    }
};
}  // namespace

static bool IsWithin(const ZRGPath* path, const Box& box) {
    const double* p = path->points;
    for (long i = 0; i < path->verbCount; ++i)
        for (int n = path->verbs[i] == kZRGCurve ? 3 : path->verbs[i] != kZRGClose; n > 0; --n, p += 2)
            if (p[0] < box.left || p[0] > box.right || p[1] < box.top || p[1] > box.bottom) return false;
    return true;
}

static OwnPath Fit(const ZRGPath* path, const Box& box) {
    Fitter fitter = {box};
    const double* p = path->points;
    auto next = [&] {
        Point point = {p[0], p[1]};
        p += 2;
        return point;
    };
    for (long i = 0; i < path->verbCount; ++i) switch (path->verbs[i]) {
            case kZRGMove: fitter.Move(next()); break;
            case kZRGLine: fitter.Line(next()); break;
            case kZRGCurve: {
                Point a = next(), b = next(), end = next();
                fitter.Curve(a, b, end, kMostHalvings);
                break;
            }
            default: fitter.Close();
        }
    fitter.out.evenOdd = path->evenOdd;
    return std::move(fitter.out);
}

ZRGPath ViewOf(const OwnPath& path) {
    return {path.verbs.data(), path.points.data(), static_cast<long>(path.verbs.size()), path.evenOdd};
}

ZRGPath FitPath(const ZRGCanvas* canvas, const ZRGPath* path, double reach, bool dashed, OwnPath* own) {
    double margin = std::min(kMargin + reach, kWidestMargin);
    double right = canvas->width + margin, bottom = canvas->height + margin;
    double precise = std::max({kPreciseCoordinate, right, bottom});
    // A dash goes on where it was: cut as late as can be.
    if (dashed) right = bottom = margin = precise = kZRGMaximumCoordinate;
    if (IsWithin(path, {-precise, -precise, precise, precise})) return *path;
    *own = Fit(path, {-margin, -margin, right, bottom});
    return ViewOf(*own);
}
