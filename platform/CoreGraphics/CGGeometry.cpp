#include "platform/CoreGraphics/CGGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

static constexpr double kNowhere = std::numeric_limits<double>::infinity();
const CGRect CGRectNull = {{kNowhere, kNowhere}, {0, 0}};

// Rectangles -------------------------------------------------------------------------------------------------------

CGRect CGRectStandardize(CGRect r) {
    if (r.size.width < 0) r.origin.x += r.size.width, r.size.width = -r.size.width;
    if (r.size.height < 0) r.origin.y += r.size.height, r.size.height = -r.size.height;
    return r;
}

CGFloat CGRectGetMinX(CGRect r) { return r.size.width < 0 ? r.origin.x + r.size.width : r.origin.x; }
CGFloat CGRectGetMidX(CGRect r) { return r.origin.x + r.size.width / 2; }
CGFloat CGRectGetMaxX(CGRect r) { return r.size.width < 0 ? r.origin.x : r.origin.x + r.size.width; }
CGFloat CGRectGetMinY(CGRect r) { return r.size.height < 0 ? r.origin.y + r.size.height : r.origin.y; }
CGFloat CGRectGetMidY(CGRect r) { return r.origin.y + r.size.height / 2; }
CGFloat CGRectGetMaxY(CGRect r) { return r.size.height < 0 ? r.origin.y : r.origin.y + r.size.height; }
CGFloat CGRectGetWidth(CGRect r) { return std::abs(r.size.width); }
CGFloat CGRectGetHeight(CGRect r) { return std::abs(r.size.height); }

bool CGRectIsNull(CGRect r) { return r.origin.x == kNowhere || r.origin.y == kNowhere; }

bool CGRectIsEmpty(CGRect r) { return CGRectIsNull(r) || r.size.width == 0 || r.size.height == 0; }

bool CGRectEqualToRect(CGRect r, CGRect s) {
    r = CGRectStandardize(r), s = CGRectStandardize(s);
    return CGPointEqualToPoint(r.origin, s.origin) && CGSizeEqualToSize(r.size, s.size);
}

bool CGRectContainsPoint(CGRect r, CGPoint p) {
    return !CGRectIsEmpty(r) && p.x >= CGRectGetMinX(r) && p.x < CGRectGetMaxX(r) && p.y >= CGRectGetMinY(r) &&
           p.y < CGRectGetMaxY(r);
}

CGRect CGRectUnion(CGRect r, CGRect s) {
    if (CGRectIsNull(r)) return s;
    if (CGRectIsNull(s)) return r;
    double x = std::min(CGRectGetMinX(r), CGRectGetMinX(s)), y = std::min(CGRectGetMinY(r), CGRectGetMinY(s));
    return CGRectMake(x, y, std::max(CGRectGetMaxX(r), CGRectGetMaxX(s)) - x,
                      std::max(CGRectGetMaxY(r), CGRectGetMaxY(s)) - y);
}

CGRect CGRectIntersection(CGRect r, CGRect s) {
    if (CGRectIsNull(r) || CGRectIsNull(s)) return CGRectNull;
    double x = std::max(CGRectGetMinX(r), CGRectGetMinX(s)), y = std::max(CGRectGetMinY(r), CGRectGetMinY(s));
    double right = std::min(CGRectGetMaxX(r), CGRectGetMaxX(s)), top = std::min(CGRectGetMaxY(r), CGRectGetMaxY(s));
    return right < x || top < y ? CGRectNull : CGRectMake(x, y, right - x, top - y);
}

CGRect CGRectInset(CGRect r, CGFloat dx, CGFloat dy) {
    if (CGRectIsNull(r)) return r;
    r = CGRectStandardize(r);
    CGRect inner = CGRectMake(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx, r.size.height - 2 * dy);
    return inner.size.width < 0 || inner.size.height < 0 ? CGRectNull : inner;
}

CGRect CGRectOffset(CGRect r, CGFloat dx, CGFloat dy) {
    if (CGRectIsNull(r)) return r;
    r = CGRectStandardize(r);
    return CGRectMake(r.origin.x + dx, r.origin.y + dy, r.size.width, r.size.height);
}

// Transforms -------------------------------------------------------------------------------------------------------

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty) { return {1, 0, 0, 1, tx, ty}; }
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) { return {sx, 0, 0, sy, 0, 0}; }

CGAffineTransform CGAffineTransformMakeRotation(CGFloat radians) {
    double s = std::sin(radians), k = std::cos(radians);
    return {k, s, -s, k, 0, 0};
}

CGAffineTransform CGAffineTransformConcat(CGAffineTransform p, CGAffineTransform q) {
    return {p.a * q.a + p.b * q.c, p.a * q.b + p.b * q.d,          p.c * q.a + p.d * q.c,
            p.c * q.b + p.d * q.d, p.tx * q.a + p.ty * q.c + q.tx, p.tx * q.b + p.ty * q.d + q.ty};
}

CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat tx, CGFloat ty) {
    t.tx += tx * t.a + ty * t.c;
    t.ty += tx * t.b + ty * t.d;
    return t;
}

CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy) {
    return {t.a * sx, t.b * sx, t.c * sy, t.d * sy, t.tx, t.ty};
}

CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat radians) {
    return CGAffineTransformConcat(CGAffineTransformMakeRotation(radians), t);
}

CGAffineTransform CGAffineTransformInvert(CGAffineTransform t) {
    double det = t.a * t.d - t.b * t.c;
    if (det == 0 || !std::isfinite(det)) return t;
    return {
        t.d / det, -t.b / det, -t.c / det, t.a / det, (t.c * t.ty - t.d * t.tx) / det, (t.b * t.tx - t.a * t.ty) / det};
}

bool CGAffineTransformEqualToTransform(CGAffineTransform t, CGAffineTransform u) {
    return t.a == u.a && t.b == u.b && t.c == u.c && t.d == u.d && t.tx == u.tx && t.ty == u.ty;
}

bool CGAffineTransformIsIdentity(CGAffineTransform t) {
    return CGAffineTransformEqualToTransform(t, CGAffineTransformIdentity);
}

CGPoint CGPointApplyAffineTransform(CGPoint p, CGAffineTransform t) {
    return {t.a * p.x + t.c * p.y + t.tx, t.b * p.x + t.d * p.y + t.ty};
}

CGSize CGSizeApplyAffineTransform(CGSize s, CGAffineTransform t) {
    return {t.a * s.width + t.c * s.height, t.b * s.width + t.d * s.height};
}

CGRect CGRectApplyAffineTransform(CGRect r, CGAffineTransform t) {
    if (CGRectIsNull(r)) return r;
    double left = CGRectGetMinX(r), right = CGRectGetMaxX(r), low = CGRectGetMinY(r), high = CGRectGetMaxY(r);
    CGPoint corners[] = {{left, low}, {right, low}, {left, high}, {right, high}};
    CGRect box = CGRectNull;
    for (CGPoint corner : corners) {
        CGPoint p = CGPointApplyAffineTransform(corner, t);
        box = CGRectUnion(box, {p, {0, 0}});
    }
    return box;
}
