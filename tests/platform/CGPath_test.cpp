#include <gtest/gtest.h>

#include <cmath>

#include "tests/platform/GraphicsSupport.h"

static bool Has(CGPathRef path, double x, double y, bool evenOdd = false) {
    return CGPathContainsPoint(path, nullptr, {x, y}, evenOdd);
}

TEST(CGPath, ContainsPoint_RectsInOneSense_WindingAndEvenOddDiffer) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathAddRect(path, nullptr, CGRectMake(0, 0, 100, 100));
    CGPathAddRect(path, nullptr, CGRectMake(25, 25, 50, 50));
    static const struct {
        double x, y;
        bool winding, evenOdd;
    } rows[] = {{10, 10, true, true},   {50, 50, true, false},   {-1, 50, false, false}, {101, 50, false, false},
                {50, -1, false, false}, {50, 101, false, false}, {50, 80, true, true},   {99.9, 0.1, true, true}};
    for (auto& row : rows) {
        EXPECT_EQ(Has(path, row.x, row.y), row.winding) << row.x << ' ' << row.y;
        EXPECT_EQ(Has(path, row.x, row.y, true), row.evenOdd) << row.x << ' ' << row.y;
    }
}

TEST(CGPath, ContainsPoint_OpenSubpaths_CountAsClosed) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 0, 0);
    CGPathAddLineToPoint(path, nullptr, 10, 0);
    CGPathAddLineToPoint(path, nullptr, 0, 10);
    CGPathMoveToPoint(path, nullptr, 20, 0);
    CGPathAddLineToPoint(path, nullptr, 30, 0);
    CGPathAddLineToPoint(path, nullptr, 20, 10);
    EXPECT_TRUE(Has(path, 2, 2));
    EXPECT_TRUE(Has(path, 22, 2));
    EXPECT_FALSE(Has(path, 8, 8));
    EXPECT_FALSE(Has(path, 15, 2));
}

TEST(CGPath, ContainsPoint_EllipseAndCurves) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathAddEllipseInRect(path, nullptr, CGRectMake(0, 0, 200, 100));
    for (int i = 0; i < 360; i += 7) {
        double a = i * M_PI / 180;
        EXPECT_TRUE(Has(path, 100 + 99.9 * std::cos(a), 50 + 49.9 * std::sin(a))) << i;
        EXPECT_FALSE(Has(path, 100 + 100.1 * std::cos(a), 50 + 50.1 * std::sin(a))) << i;
    }
    Owned<CGMutablePathRef> bow = CGPathCreateMutable();
    CGPathMoveToPoint(bow, nullptr, 0, 0);
    CGPathAddQuadCurveToPoint(bow, nullptr, 50, 100, 100, 0);  // its top is at (50, 50)
    EXPECT_TRUE(Has(bow, 50, 49.9));
    EXPECT_FALSE(Has(bow, 50, 50.1));
}

TEST(CGPath, ContainsPoint_WithTransform_AppliesToThePath) {
    Owned<CGPathRef> path = CGPathCreateWithRect(CGRectMake(0, 0, 10, 10), nullptr);
    CGAffineTransform move = CGAffineTransformMakeTranslation(100, 0);
    EXPECT_TRUE(CGPathContainsPoint(path, &move, {105, 5}, false));
    EXPECT_FALSE(CGPathContainsPoint(path, &move, {5, 5}, false));
    EXPECT_FALSE(CGPathContainsPoint(nullptr, nullptr, {5, 5}, false));
    EXPECT_FALSE(CGPathContainsPoint(path, nullptr, {std::nan(""), 5}, false));
}

TEST(CGPath, Records_WithoutCurrentPoint_AreLeftOut) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathAddLineToPoint(path, nullptr, 10, 10);
    CGPathAddCurveToPoint(path, nullptr, 1, 1, 2, 2, 3, 3);
    CGPathAddQuadCurveToPoint(path, nullptr, 1, 1, 2, 2);
    CGPathAddArcToPoint(path, nullptr, 1, 1, 2, 2, 3);
    CGPathCloseSubpath(path);
    EXPECT_TRUE(CGPathIsEmpty(path));
    EXPECT_TRUE(CGRectIsNull(CGPathGetBoundingBox(path)));
    CGPathMoveToPoint(path, nullptr, std::nan(""), 1);
    EXPECT_TRUE(CGPathIsEmpty(path));
    CGPathMoveToPoint(path, nullptr, 1, 2);
    CGPathAddLineToPoint(path, nullptr, HUGE_VAL, 1);
    EXPECT_TRUE(CGPointEqualToPoint(CGPathGetCurrentPoint(path), {1, 2}));
    EXPECT_TRUE(CGPathIsEmpty(nullptr));
}

TEST(CGPath, LineBehindClose_StartsAtSubpathStart) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 10, 10);
    CGPathAddLineToPoint(path, nullptr, 20, 10);
    CGPathAddLineToPoint(path, nullptr, 20, 20);
    CGPathCloseSubpath(path);
    EXPECT_TRUE(CGPointEqualToPoint(CGPathGetCurrentPoint(path), {10, 10}));
    CGPathAddLineToPoint(path, nullptr, 0, 10);
    CGPathAddLineToPoint(path, nullptr, 0, 0);
    EXPECT_TRUE(Has(path, 2, 6));  // the triangle (10,10) (0,10) (0,0)
}

TEST(CGPath, ArcToPoint_TouchesBothLines) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 0, 0);
    CGPathAddArcToPoint(path, nullptr, 100, 0, 100, 100, 30);
    CGPoint end = CGPathGetCurrentPoint(path);
    EXPECT_NEAR(end.x, 100, 1e-9);
    EXPECT_NEAR(end.y, 30, 1e-9);
    CGPathAddLineToPoint(path, nullptr, 0, 30);
    double diagonal = 30 * std::sqrt(0.5);  // the arc around (70, 30)
    EXPECT_TRUE(Has(path, 70 + diagonal - 0.1, 30 - diagonal + 0.1));
    EXPECT_FALSE(Has(path, 70 + diagonal + 0.1, 30 - diagonal - 0.1));
}

TEST(CGPath, ArcToPoint_SharpTurn_IsRound) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 0, 10);
    CGPathAddArcToPoint(path, nullptr, 1000, 0, 0, -10, 5);  // nearly a half turn
    CGPathCloseSubpath(path);
    double half = std::atan(0.01), x = 1000 - 5 / std::sin(half);  // the centre of the circle
    for (double a : {-1.4, -1.0, -0.5, 0.0, 0.5, 1.0, 1.4}) {
        EXPECT_TRUE(Has(path, x + 4.99 * std::cos(a), 4.99 * std::sin(a))) << a;
        EXPECT_FALSE(Has(path, x + 5.01 * std::cos(a), 5.01 * std::sin(a))) << a;
    }
}

TEST(CGPath, ArcToPoint_Degenerate_IsALine) {
    static const struct {
        const char* name;
        CGPoint p1, p2;
        double radius;
    } rows[] = {{"straight on", {10, 0}, {20, 0}, 5},
                {"back", {10, 0}, {5, 0}, 5},
                {"no radius", {10, 0}, {10, 10}, 0},
                {"negative", {10, 0}, {10, 10}, -3},
                {"at p1", {10, 0}, {10, 0}, 5}};
    for (auto& row : rows) {
        Owned<CGMutablePathRef> path = CGPathCreateMutable();
        CGPathMoveToPoint(path, nullptr, 0, 0);
        CGPathAddArcToPoint(path, nullptr, row.p1.x, row.p1.y, row.p2.x, row.p2.y, row.radius);
        EXPECT_TRUE(CGPointEqualToPoint(CGPathGetCurrentPoint(path), row.p1)) << row.name;
    }
}

TEST(CGPath, AddPath_ItselfAndTransformed) {
    Owned<CGMutablePathRef> path = CGPathCreateMutable();
    CGPathAddRect(path, nullptr, CGRectMake(0, 0, 10, 10));
    CGAffineTransform move = CGAffineTransformMakeTranslation(20, 0);
    CGPathAddPath(path, &move, path);
    EXPECT_TRUE(Has(path, 25, 5));
    EXPECT_FALSE(Has(path, 45, 5));
    CGPathAddPath(path, nullptr, nullptr);
    EXPECT_TRUE(CGRectEqualToRect(CGPathGetBoundingBox(path), CGRectMake(0, 0, 30, 10)));
    Owned<CGPathRef> copy = CGPathCreateCopy(path);
    EXPECT_TRUE(CFEqual(copy, path));
    CGPathMoveToPoint(path, nullptr, 0, 0);
    EXPECT_FALSE(CFEqual(copy, path));
    EXPECT_EQ(CGPathCreateCopy(nullptr), nullptr);
    EXPECT_EQ(CFGetTypeID(path), CGPathGetTypeID());
}

TEST(CGPath, RetainRelease_CountsReferences) {
    CGMutablePathRef path = CGPathCreateMutable();
    EXPECT_EQ(CGPathRetain(path), path);
    EXPECT_EQ(CFGetRetainCount(path), 2);
    CGPathRelease(path);
    EXPECT_EQ(CFGetRetainCount(path), 1);
    CGPathRelease(path);
    CGPathRelease(nullptr);
}
