// Points, sizes, rectangles and affine transforms. Row-vector matrices: x' = a x + c y + tx, y' = b x + d y + ty.
#ifndef ZR_PLATFORM_CGGEOMETRY_H
#define ZR_PLATFORM_CGGEOMETRY_H

typedef double CGFloat;

struct CGPoint {
    CGFloat x, y;
};
struct CGSize {
    CGFloat width, height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};
struct CGAffineTransform {
    CGFloat a, b, c, d, tx, ty;
};

inline constexpr CGPoint CGPointZero = {0, 0};
inline constexpr CGSize CGSizeZero = {0, 0};
inline constexpr CGRect CGRectZero = {{0, 0}, {0, 0}};
extern const CGRect CGRectNull;  // of no place at all
inline constexpr CGAffineTransform CGAffineTransformIdentity = {1, 0, 0, 1, 0, 0};

inline CGPoint CGPointMake(CGFloat x, CGFloat y) { return {x, y}; }
inline CGSize CGSizeMake(CGFloat width, CGFloat height) { return {width, height}; }
inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) { return {{x, y}, {width, height}}; }
inline CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx, CGFloat ty) {
    return {a, b, c, d, tx, ty};
}
inline bool CGPointEqualToPoint(CGPoint p, CGPoint q) { return p.x == q.x && p.y == q.y; }
inline bool CGSizeEqualToSize(CGSize s, CGSize t) { return s.width == t.width && s.height == t.height; }

// Rectangles; a negative width or height stands for the rectangle that it spans
CGRect CGRectStandardize(CGRect r);  // the same with positive sides
CGFloat CGRectGetMinX(CGRect r);
CGFloat CGRectGetMidX(CGRect r);
CGFloat CGRectGetMaxX(CGRect r);
CGFloat CGRectGetMinY(CGRect r);
CGFloat CGRectGetMidY(CGRect r);
CGFloat CGRectGetMaxY(CGRect r);
CGFloat CGRectGetWidth(CGRect r);   // never negative
CGFloat CGRectGetHeight(CGRect r);  // likewise
bool CGRectIsNull(CGRect r);
bool CGRectIsEmpty(CGRect r);  // no width, no height or null
bool CGRectEqualToRect(CGRect r, CGRect s);
bool CGRectContainsPoint(CGRect r, CGPoint p);         // the left and lower edge belong to it, the others do not
CGRect CGRectUnion(CGRect r, CGRect s);                // the null one adds nothing
CGRect CGRectIntersection(CGRect r, CGRect s);         // null = they do not meet
CGRect CGRectInset(CGRect r, CGFloat dx, CGFloat dy);  // null = nothing left
CGRect CGRectOffset(CGRect r, CGFloat dx, CGFloat dy);

// Transforms
CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty);
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
CGAffineTransform CGAffineTransformMakeRotation(CGFloat radians);  // counter-clockwise where y runs up
CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat tx, CGFloat ty);  // acts before t
CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy);      // likewise
CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat radians);            // likewise
CGAffineTransform CGAffineTransformConcat(CGAffineTransform first, CGAffineTransform second);
CGAffineTransform CGAffineTransformInvert(CGAffineTransform t);  // t itself if it has no inverse
bool CGAffineTransformIsIdentity(CGAffineTransform t);
bool CGAffineTransformEqualToTransform(CGAffineTransform t, CGAffineTransform u);
CGPoint CGPointApplyAffineTransform(CGPoint p, CGAffineTransform t);
CGSize CGSizeApplyAffineTransform(CGSize s, CGAffineTransform t);  // without tx, ty
CGRect CGRectApplyAffineTransform(CGRect r, CGAffineTransform t);  // the box around the four corners

#endif
