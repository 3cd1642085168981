#include "platform/CoreGraphics/CGGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {
constexpr CGRect R(double x, double y, double w, double h) { return {{x, y}, {w, h}}; }
void PrintRect(std::ostream& out, CGRect r) {
    out << r.origin.x << ' ' << r.origin.y << ' ' << r.size.width << ' ' << r.size.height;
}
}  // namespace

void PrintTo(const CGRect& r, std::ostream* out) { PrintRect(*out, r); }

TEST(CGRect, EdgesAndMiddle_NegativeSizes_AreStandardized) {
    CGRect r = R(10, 20, -4, -6);
    EXPECT_EQ(CGRectGetMinX(r), 6);
    EXPECT_EQ(CGRectGetMidX(r), 8);
    EXPECT_EQ(CGRectGetMaxX(r), 10);
    EXPECT_EQ(CGRectGetMinY(r), 14);
    EXPECT_EQ(CGRectGetMidY(r), 17);
    EXPECT_EQ(CGRectGetMaxY(r), 20);
    EXPECT_EQ(CGRectGetWidth(r), 4);
    EXPECT_EQ(CGRectGetHeight(r), 6);
    EXPECT_TRUE(CGRectEqualToRect(r, R(6, 14, 4, 6)));
    EXPECT_TRUE(CGRectEqualToRect(CGRectStandardize(r), R(6, 14, 4, 6)));
    EXPECT_TRUE(CGRectEqualToRect(CGRectOffset(r, 1, 2), R(7, 16, 4, 6)));
}

TEST(CGRect, UnionAndIntersection) {
    static const struct {
        CGRect a, b, together, common;
    } rows[] = {
        {R(0, 0, 10, 10), R(5, 5, 10, 10), R(0, 0, 15, 15), R(5, 5, 5, 5)},
        {R(0, 0, 10, 10), R(10, 0, 5, 5), R(0, 0, 15, 10), R(10, 0, 0, 5)},  // they touch
        {R(0, 0, 10, 10), CGRectNull, R(0, 0, 10, 10), CGRectNull},
        {CGRectNull, CGRectNull, CGRectNull, CGRectNull},
        {R(0, 0, 10, 10), R(20, 0, 5, 5), R(0, 0, 25, 10), CGRectNull},
        {R(10, 10, -10, -10), R(5, 5, 10, 10), R(0, 0, 15, 15), R(5, 5, 5, 5)},
    };
    for (auto& row : rows) {
        EXPECT_TRUE(CGRectEqualToRect(CGRectUnion(row.a, row.b), row.together)) << testing::PrintToString(row.a);
        EXPECT_TRUE(CGRectEqualToRect(CGRectIntersection(row.a, row.b), row.common)) << testing::PrintToString(row.b);
    }
}

TEST(CGRect, EmptyNullInsetContains) {
    EXPECT_TRUE(CGRectIsEmpty(R(1, 1, 0, 5)));
    EXPECT_TRUE(CGRectIsEmpty(CGRectNull));
    EXPECT_FALSE(CGRectIsEmpty(R(1, 1, -1, 5)));
    EXPECT_TRUE(CGRectIsNull(CGRectNull));
    EXPECT_FALSE(CGRectIsNull(CGRectZero));
    EXPECT_TRUE(CGRectEqualToRect(CGRectInset(R(0, 0, 10, 10), 2, 3), R(2, 3, 6, 4)));
    EXPECT_TRUE(CGRectEqualToRect(CGRectInset(R(0, 0, 10, 10), -1, -1), R(-1, -1, 12, 12)));
    EXPECT_TRUE(CGRectIsNull(CGRectInset(R(0, 0, 10, 10), 6, 1)));
    EXPECT_TRUE(CGRectContainsPoint(R(0, 0, 10, 10), {0, 0}));
    EXPECT_FALSE(CGRectContainsPoint(R(0, 0, 10, 10), {10, 5}));
    EXPECT_FALSE(CGRectContainsPoint(R(0, 0, 0, 10), {0, 5}));
}

TEST(CGAffineTransform, Concat_FirstActsFirst) {
    CGAffineTransform scale = CGAffineTransformMakeScale(2, 3), move = CGAffineTransformMakeTranslation(10, 20);
    CGPoint p = CGPointApplyAffineTransform({1, 1}, CGAffineTransformConcat(scale, move));
    EXPECT_EQ(p.x, 12);
    EXPECT_EQ(p.y, 23);
    p = CGPointApplyAffineTransform({1, 1}, CGAffineTransformConcat(move, scale));
    EXPECT_EQ(p.x, 22);
    EXPECT_EQ(p.y, 63);
}

TEST(CGAffineTransform, TranslateScaleRotate_ActBeforeTheGivenOne) {
    CGAffineTransform t = {1, 2, 3, 4, 5, 6};
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGAffineTransformTranslate(t, 7, 8),
                                                  CGAffineTransformConcat({1, 0, 0, 1, 7, 8}, t)));
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGAffineTransformScale(t, 7, 8),
                                                  CGAffineTransformConcat({7, 0, 0, 8, 0, 0}, t)));
    CGPoint p = CGPointApplyAffineTransform({1, 0}, CGAffineTransformMakeRotation(M_PI / 2));
    EXPECT_NEAR(p.x, 0, 1e-15);
    EXPECT_NEAR(p.y, 1, 1e-15);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGAffineTransformRotate(t, 0.3),
                                                  CGAffineTransformConcat(CGAffineTransformMakeRotation(0.3), t)));
}

TEST(CGAffineTransform, Invert_SingularStays) {
    CGAffineTransform t = {2, 1, -1, 3, 10, 20}, back = CGAffineTransformConcat(t, CGAffineTransformInvert(t));
    const double identity[] = {1, 0, 0, 1, 0, 0}, got[] = {back.a, back.b, back.c, back.d, back.tx, back.ty};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(got[i], identity[i], 1e-12) << i;
    CGAffineTransform flat = {1, 2, 2, 4, 5, 6}, endless = {HUGE_VAL, 0, 0, 1, 0, 0};
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGAffineTransformInvert(flat), flat));
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGAffineTransformInvert(endless), endless));
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGAffineTransformIdentity));
    EXPECT_FALSE(CGAffineTransformIsIdentity(flat));
}

TEST(CGAffineTransform, ApplyToRectAndSize) {
    CGAffineTransform turn = {0, 1, -1, 0, 100, 0};  // a quarter turn
    EXPECT_TRUE(CGRectEqualToRect(CGRectApplyAffineTransform(R(10, 20, 30, 40), turn), R(40, 10, 40, 30)));
    EXPECT_TRUE(CGRectIsNull(CGRectApplyAffineTransform(CGRectNull, turn)));
    EXPECT_TRUE(CGSizeEqualToSize(CGSizeApplyAffineTransform({3, 4}, turn), {-4, 3}));
}
