#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "tests/platform/GraphicsSupport.h"

static const double kNaN = std::nan(""), kInfinity = std::numeric_limits<double>::infinity();

// Space and state --------------------------------------------------------------------------------------------------

TEST(CGContext, FillRect_OriginIsLowerLeft) {
    Bitmap bitmap(20, 10);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 5, 2));
    EXPECT_EQ(bitmap.At(0, 0), kRed);
    EXPECT_EQ(bitmap.At(4, 1), kRed);
    EXPECT_EQ(bitmap.At(5, 0), kClear);
    EXPECT_EQ(bitmap.At(0, 2), kClear);
    EXPECT_EQ(bitmap.bytes[9 * 80], 255);  // memory runs from the top
    EXPECT_EQ(bitmap.bytes[0], 0);
    EXPECT_EQ(bitmap.Count(), 10);
}

TEST(CGContext, FillRect_NegativeSizeAndHalfPixels) {
    Bitmap bitmap(20, 10);
    CGContextFillRect(bitmap, CGRectMake(5, 5, -5, -5));
    EXPECT_EQ(bitmap.Count(0), 25);
    CGContextFillRect(bitmap, CGRectMake(10, 0, 0.5, 1));
    EXPECT_NEAR_PIXEL(bitmap.At(10, 0), (Pixel{128, 0, 0, 128}), 1);
    CGContextFillRect(bitmap, CGRectMake(12, 0, 0, 5));
    EXPECT_EQ(bitmap.At(12, 0), kClear);
}

TEST(CGContext, Transforms_ActBeforeEarlierOnes) {
    Bitmap bitmap(20, 20);
    CGContextTranslateCTM(bitmap, 10, 5);
    CGContextScaleCTM(bitmap, 2, 3);
    CGContextFillRect(bitmap, CGRectMake(1, 1, 1, 1));
    EXPECT_EQ(bitmap.Count(), 6);
    EXPECT_EQ(bitmap.At(12, 8), kRed);
    EXPECT_EQ(bitmap.At(13, 10), kRed);
    CGAffineTransform ctm = CGContextGetCTM(bitmap);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(ctm, {2, 0, 0, 3, 10, 5}));
    CGContextRotateCTM(bitmap, M_PI / 2);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 1, 1));  // to the left of (10, 5), three up
    EXPECT_NEAR_PIXEL(bitmap.At(8, 5), kRed, 1);
    EXPECT_NEAR_PIXEL(bitmap.At(9, 7), kRed, 1);
    CGContextConcatCTM(bitmap, CGAffineTransformInvert(CGContextGetCTM(bitmap)));
    EXPECT_NEAR(CGContextGetCTM(bitmap).a, 1, 1e-12);
    EXPECT_NEAR(CGContextGetCTM(bitmap).tx, 0, 1e-12);
}

TEST(CGContext, SaveRestore_WholeState_ComesBack) {
    Bitmap bitmap(40, 10);
    CGContextSaveGState(bitmap);
    CGContextTranslateCTM(bitmap, 20, 0);
    CGContextSetRGBFillColor(bitmap, 0, 1, 0, 1);
    CGContextSetAlpha(bitmap, 0.5);
    CGContextSetLineWidth(bitmap, 8);
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 5, 5));
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(bitmap.Count(), 25);
    EXPECT_NEAR_PIXEL(bitmap.At(20, 0), (Pixel{0, 128, 0, 128}), 1);
    CGContextRestoreGState(bitmap);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(bitmap.Count(), 125);
    EXPECT_EQ(bitmap.At(9, 9), kRed);
    CGContextStrokeRect(bitmap, CGRectMake(30.5, 2.5, 5, 5));
    EXPECT_EQ(bitmap.At(30, 5), kRed);
    EXPECT_EQ(bitmap.At(32, 5), kClear);  // the width was 1 again
}

TEST(CGContext, Restore_WithoutSave_ChangesNothing) {
    Bitmap bitmap(10, 10);
    CGContextTranslateCTM(bitmap, 5, 5);
    for (int i = 0; i < 10; ++i) CGContextRestoreGState(bitmap);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 2, 2));
    EXPECT_EQ(bitmap.At(5, 5), kRed);
    EXPECT_EQ(bitmap.Count(), 4);
}

TEST(CGContext, Restore_PathSurvives) {
    Bitmap bitmap(10, 10);
    CGContextSaveGState(bitmap);
    CGContextAddRect(bitmap, CGRectMake(2, 2, 3, 3));
    CGContextRestoreGState(bitmap);
    CGContextFillPath(bitmap);
    EXPECT_EQ(bitmap.Count(), 9);
}

TEST(CGContext, Save_FarBeyondTheBound_StillPairsUp) {
    Bitmap bitmap(10, 10);
    for (int i = 0; i < 70000; ++i) CGContextSaveGState(bitmap);
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 1, 1));
    for (int i = 0; i < 70000; ++i) CGContextRestoreGState(bitmap);
    CGContextTranslateCTM(bitmap, 3, 0);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 2, 2));
    EXPECT_EQ(bitmap.Count(), 4);
    EXPECT_EQ(bitmap.At(3, 0), kRed);
}

TEST(CGContext, Path_IsTransformedWhenItIsMade) {
    Bitmap bitmap(20, 10);
    CGContextMoveToPoint(bitmap, 1, 1);
    CGContextTranslateCTM(bitmap, 10, 0);
    CGContextAddLineToPoint(bitmap, 1, 1);
    CGContextAddLineToPoint(bitmap, 1, 5);
    CGContextAddLineToPoint(bitmap, -9, 5);
    CGContextClosePath(bitmap);
    CGContextFillPath(bitmap);
    EXPECT_EQ(bitmap.Count(), 40);
    EXPECT_EQ(bitmap.At(1, 1), kRed);
    EXPECT_EQ(bitmap.At(10, 4), kRed);
}

TEST(CGContext, TextMatrix_IsNotPartOfTheSavedState) {
    Bitmap bitmap(10, 10);
    CGContextSaveGState(bitmap);
    CGContextSetTextMatrix(bitmap, {2, 0, 0, 2, 1, 1});
    CGContextSetTextPosition(bitmap, 7, 8);
    CGContextRestoreGState(bitmap);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetTextMatrix(bitmap), {2, 0, 0, 2, 7, 8}));
    EXPECT_TRUE(CGPointEqualToPoint(CGContextGetTextPosition(bitmap), {7, 8}));
}

// Filling ----------------------------------------------------------------------------------------------------------

TEST(CGContext, DrawPath_Modes) {
    static const struct {
        CGPathDrawingMode mode;
        bool ring, hole, edge;  // filled between the rectangles, within the inner one, stroked
    } rows[] = {{kCGPathFill, true, true, false},
                {kCGPathEOFill, true, false, false},
                {kCGPathStroke, false, false, true},
                {kCGPathFillStroke, true, true, true},
                {kCGPathEOFillStroke, true, false, true},
                {static_cast<CGPathDrawingMode>(5), false, false, false},
                {static_cast<CGPathDrawingMode>(-1), false, false, false}};
    for (auto& row : rows) {
        Bitmap bitmap(40, 40);
        CGContextSetRGBStrokeColor(bitmap, 0, 0, 1, 1);
        CGContextSetLineWidth(bitmap, 2);
        CGContextAddRect(bitmap, CGRectMake(5, 5, 30, 30));
        CGContextAddRect(bitmap, CGRectMake(15, 15, 10, 10));
        CGContextDrawPath(bitmap, row.mode);
        EXPECT_EQ(bitmap.At(10, 10), row.ring ? kRed : kClear) << row.mode;
        EXPECT_EQ(bitmap.At(20, 20), row.hole ? kRed : kClear) << row.mode;
        EXPECT_EQ(bitmap.At(4, 20), row.edge ? kBlue : kClear) << row.mode;
        EXPECT_TRUE(CGContextIsPathEmpty(bitmap)) << row.mode;
    }
}

TEST(CGContext, Painting_EndsThePath) {
    Bitmap bitmap(40, 40);
    const std::function<void()> operations[] = {
        [&] { CGContextFillRect(bitmap, CGRectMake(0, 0, 1, 1)); },
        [&] { CGContextStrokeRectWithWidth(bitmap, CGRectMake(0, 0, 1, 1), 1); },
        [&] { CGContextFillEllipseInRect(bitmap, CGRectMake(0, 0, 1, 1)); },
        [&] { CGContextStrokeEllipseInRect(bitmap, CGRectMake(0, 0, 1, 1)); },
        [&] { CGContextClearRect(bitmap, CGRectMake(0, 0, 1, 1)); },
        [&] { CGContextClipToRect(bitmap, CGRectMake(0, 0, 40, 40)); },
        [&] { CGContextFillPath(bitmap); },
        [&] { CGContextEOFillPath(bitmap); },
        [&] { CGContextStrokePath(bitmap); },
        [&] { CGContextClip(bitmap); },
        [&] { CGContextEOClip(bitmap); },
        [&] { CGContextBeginPath(bitmap); },
    };
    for (size_t i = 0; i < std::size(operations); ++i) {
        CGContextAddRect(bitmap, CGRectMake(0, 0, 30, 30));
        operations[i]();
        EXPECT_TRUE(CGContextIsPathEmpty(bitmap)) << i;
    }
}

TEST(CGContext, FillColor_AlphaAndGlobalAlphaMultiply) {
    Bitmap bitmap(10, 10);
    CGContextSetRGBFillColor(bitmap, 0, 0, 1, 0.5);
    CGContextSetAlpha(bitmap, 0.5);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_NEAR_PIXEL(bitmap.At(5, 5), (Pixel{0, 0, 64, 64}), 1);
    CGContextSetAlpha(bitmap, 7);                      // cut to 1
    CGContextSetRGBFillColor(bitmap, 5, -1, kNaN, 1);  // each cut to 0..1
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(bitmap.At(5, 5), kRed);
}

TEST(CGContext, ColorObjectsAndSpaces) {
    Bitmap bitmap(10, 10);
    Owned<CGColorRef> gray = CGColorCreateGenericGray(1, 1), green = CGColorCreateGenericRGB(0, 1, 0, 1);
    CGContextSetFillColorWithColor(bitmap, green);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 5, 10));
    CGContextSetFillColorWithColor(bitmap, gray);
    CGContextFillRect(bitmap, CGRectMake(5, 0, 5, 10));
    EXPECT_EQ(bitmap.At(0, 0), kGreen);
    EXPECT_EQ(bitmap.At(5, 0), kWhite);
    Owned<CGColorSpaceRef> space = CGColorSpaceCreateWithName(kCGColorSpaceGenericGray);
    CGContextSetFillColorSpace(bitmap, space);  // the space's first colour
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(bitmap.At(5, 5), kBlack);
    CGContextSetStrokeColorWithColor(bitmap, green);
    CGContextStrokeRectWithWidth(bitmap, CGRectMake(1, 1, 8, 8), 2);
    EXPECT_EQ(bitmap.At(0, 5), kGreen);
}

TEST(CGContext, Antialias_Off_EdgesAreHard) {
    for (bool smooth : {false, true}) {
        Bitmap bitmap(40, 40);
        CGContextSetShouldAntialias(bitmap, smooth);
        CGContextFillEllipseInRect(bitmap, CGRectMake(3, 3, 33, 33));
        int between = 0;
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x) {
                int a = bitmap.At(x, y).a;
                between += a > 0 && a < 255;
            }
        EXPECT_EQ(between > 0, smooth);
        EXPECT_NEAR(bitmap.Count(), M_PI * 16.5 * 16.5, 20);
    }
}

TEST(CGContext, Ellipse_AreaAndAxes) {
    Bitmap bitmap(100, 60);
    CGContextFillEllipseInRect(bitmap, CGRectMake(10, 10, 80, 40));
    EXPECT_NEAR(bitmap.Count(), M_PI * 40 * 20, 25);
    EXPECT_EQ(bitmap.At(50, 30), kRed);
    EXPECT_EQ(bitmap.At(11, 30), kRed);
    EXPECT_EQ(bitmap.At(11, 40), kClear);
    CGContextSetRGBStrokeColor(bitmap, 0, 0, 1, 1);
    CGContextSetLineWidth(bitmap, 4);
    CGContextStrokeEllipseInRect(bitmap, CGRectMake(10, 10, 80, 40));
    EXPECT_EQ(bitmap.At(50, 49), kBlue);
    EXPECT_EQ(bitmap.At(50, 30), kRed);
}

// Strokes ----------------------------------------------------------------------------------------------------------

static void Line(CGContextRef context, double x1, double y1, double x2, double y2) {
    CGContextBeginPath(context);
    CGContextMoveToPoint(context, x1, y1);
    CGContextAddLineToPoint(context, x2, y2);
    CGContextStrokePath(context);
}

TEST(CGContext, LineCap_ReachesBeyondTheEnd) {
    static const struct {
        CGLineCap cap;
        bool beyond, corner;
    } rows[] = {{kCGLineCapButt, false, false}, {kCGLineCapRound, true, false}, {kCGLineCapSquare, true, true}};
    for (auto& row : rows) {
        Bitmap bitmap(60, 30);
        CGContextSetLineWidth(bitmap, 20);
        CGContextSetLineCap(bitmap, row.cap);
        Line(bitmap, 20, 15, 40, 15);
        EXPECT_EQ(bitmap.At(30, 24), kRed);
        EXPECT_EQ(bitmap.At(44, 15) == kRed, row.beyond) << row.cap;
        EXPECT_EQ(bitmap.At(48, 23) == kRed, row.corner) << row.cap;
    }
}

TEST(CGContext, LineJoin_ShapesTheCorner) {
    static const struct {
        CGLineJoin join;
        bool tip, round;  // the outermost point, a point that the round one has and the bevel has not
    } rows[] = {{kCGLineJoinMiter, true, true}, {kCGLineJoinRound, false, true}, {kCGLineJoinBevel, false, false}};
    for (auto& row : rows) {
        Bitmap bitmap(60, 60);
        CGContextSetLineWidth(bitmap, 20);
        CGContextSetLineJoin(bitmap, row.join);
        CGContextBeginPath(bitmap);
        CGContextMoveToPoint(bitmap, 0, 40);
        CGContextAddLineToPoint(bitmap, 40, 40);
        CGContextAddLineToPoint(bitmap, 40, 0);
        CGContextStrokePath(bitmap);
        EXPECT_EQ(bitmap.At(49, 49) == kRed, row.tip) << row.join;
        EXPECT_EQ(bitmap.At(45, 46) == kRed, row.round) << row.join;
        EXPECT_EQ(bitmap.At(40, 40), kRed) << row.join;
    }
}

TEST(CGContext, MiterLimit_CutsSharpCorners) {
    for (double limit : {1.0, 20.0}) {
        Bitmap bitmap(60, 60);
        CGContextSetLineWidth(bitmap, 6);
        CGContextSetMiterLimit(bitmap, limit);
        CGContextBeginPath(bitmap);
        CGContextMoveToPoint(bitmap, 20, 0);
        CGContextAddLineToPoint(bitmap, 30, 40);
        CGContextAddLineToPoint(bitmap, 40, 0);
        CGContextStrokePath(bitmap);
        EXPECT_EQ(bitmap.At(30, 46) == kRed, limit > 1) << limit;
    }
}

TEST(CGContext, StrokeWidth_FollowsTheMatrix) {
    Bitmap bitmap(60, 60);
    CGContextScaleCTM(bitmap, 1, 10);
    CGContextSetLineWidth(bitmap, 2);
    Line(bitmap, 10, 3, 50, 3);  // horizontal: 20 pixels high
    EXPECT_EQ(bitmap.At(30, 21), kRed);
    EXPECT_EQ(bitmap.At(30, 38), kRed);
    EXPECT_EQ(bitmap.At(30, 41), kClear);
    Bitmap upright(60, 60);
    CGContextScaleCTM(upright, 1, 10);
    CGContextSetLineWidth(upright, 2);
    Line(upright, 30, 1, 30, 5);  // vertical: 2 pixels wide
    EXPECT_EQ(upright.Count(), 80);
}

TEST(CGContext, LineDash_PhaseAndPattern) {
    static const struct {
        double phase;
        std::vector<double> lengths;
        const char* expected;  // every pixel of a line of 12
    } rows[] = {
        {0, {3, 1}, "###.###.###."},         {1, {3, 1}, "##.###.###.#"},    {-1, {3, 1}, ".###.###.###"},
        {4, {3, 1}, "###.###.###."},         {0, {2}, "##..##..##.."},       {0, {}, "############"},
        {0, {0, 0}, "############"},         {0, {-1, 2}, "############"},   {0, {3, kNaN}, "############"},
        {0, {3, kInfinity}, "############"}, {kNaN, {3, 1}, "###.###.###."},
    };
    for (auto& row : rows) {
        Bitmap bitmap(12, 3);
        CGContextSetLineDash(bitmap, row.phase, row.lengths.data(), row.lengths.size());
        Line(bitmap, 0, 1.5, 12, 1.5);
        std::string got;
        for (int x = 0; x < 12; ++x) got += bitmap.At(x, 1).a > 127 ? '#' : '.';
        EXPECT_EQ(got, row.expected) << row.phase << ' ' << row.lengths.size();
        CGContextSetLineDash(bitmap, 0, nullptr, 0);
        Line(bitmap, 0, 1.5, 12, 1.5);
        EXPECT_EQ(bitmap.Count(), 12);
    }
}

TEST(CGContext, StrokeRectWithWidth_KeepsTheStatesWidth) {
    Bitmap bitmap(40, 40);
    CGContextSetLineWidth(bitmap, 2);
    CGContextStrokeRectWithWidth(bitmap, CGRectMake(10, 10, 20, 20), 6);
    EXPECT_EQ(bitmap.At(7, 20), kRed);
    EXPECT_EQ(bitmap.At(13, 20), kClear);
    Line(bitmap, 20, 15, 20, 25);
    EXPECT_EQ(bitmap.At(19, 20), kRed);
    EXPECT_EQ(bitmap.At(18, 20), kClear);
}

// Clip -------------------------------------------------------------------------------------------------------------

TEST(CGContext, Clip_IntersectsAndRestores) {
    Bitmap bitmap(20, 20);
    CGContextSaveGState(bitmap);
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 10, 10));
    CGContextSaveGState(bitmap);
    CGContextClipToRect(bitmap, CGRectMake(5, 5, 10, 10));
    CGRect box = CGContextGetClipBoundingBox(bitmap);
    EXPECT_TRUE(CGRectEqualToRect(box, CGRectMake(5, 5, 5, 5)));
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    EXPECT_EQ(bitmap.Count(), 25);
    CGContextRestoreGState(bitmap);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    EXPECT_EQ(bitmap.Count(), 100);
    CGContextRestoreGState(bitmap);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    EXPECT_EQ(bitmap.Count(), 400);
}

TEST(CGContext, Clip_WindingAndEvenOdd) {
    for (bool evenOdd : {false, true}) {
        Bitmap bitmap(40, 40);
        CGContextAddRect(bitmap, CGRectMake(5, 5, 30, 30));
        CGContextAddRect(bitmap, CGRectMake(15, 15, 10, 10));
        if (evenOdd) CGContextEOClip(bitmap);
        else CGContextClip(bitmap);
        CGContextFillRect(bitmap, CGRectMake(0, 0, 40, 40));
        EXPECT_EQ(bitmap.Count(), evenOdd ? 800 : 900);
    }
}

TEST(CGContext, Clip_EmptyPathChangesNothing_EmptyRectLeavesNothing) {
    Bitmap bitmap(20, 20);
    CGContextClip(bitmap);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 5, 5));
    EXPECT_EQ(bitmap.Count(), 25);
    CGContextClipToRect(bitmap, CGRectMake(3, 3, 0, 10));
    EXPECT_TRUE(CGRectIsNull(CGContextGetClipBoundingBox(bitmap)));
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    EXPECT_EQ(bitmap.Count(), 25);
}

TEST(CGContext, ClearRect_MakesTransparentWithinTheClip) {
    Bitmap bitmap(20, 20);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 10, 20));
    CGContextSetAlpha(bitmap, 0.1);  // has no part in it
    CGContextClearRect(bitmap, CGRectMake(5, 5, 10, 10));
    EXPECT_EQ(bitmap.At(6, 6), kClear);
    EXPECT_EQ(bitmap.At(12, 6), kRed);
    EXPECT_EQ(bitmap.Count(), 350);
}

// Shadows ----------------------------------------------------------------------------------------------------------

TEST(CGContext, Shadow_FallsByTheOffset_WhateverTheMatrix) {
    Bitmap bitmap(60, 60);
    CGContextScaleCTM(bitmap, 2, 2);
    CGContextSetShadow(bitmap, {10, 6}, 0);  // 10 to the right, 6 up, not scaled
    CGContextFillRect(bitmap, CGRectMake(5, 5, 10, 10));
    EXPECT_EQ(bitmap.At(10, 10), kRed);
    EXPECT_EQ(bitmap.At(29, 29), kRed);
    EXPECT_NEAR_PIXEL(bitmap.At(35, 30), (Pixel{0, 0, 0, 85}), 2);
    EXPECT_NEAR_PIXEL(bitmap.At(39, 35), (Pixel{0, 0, 0, 85}), 2);
    EXPECT_EQ(bitmap.At(40, 30), kClear);
    EXPECT_EQ(bitmap.At(35, 36), kClear);
    EXPECT_EQ(bitmap.At(35, 14), kClear);
}

TEST(CGContext, Shadow_Blur_FadesAndKeepsItsMiddle) {
    Bitmap bitmap(200, 200);
    CGContextSetShadow(bitmap, {0, 1000}, 20);
    CGContextTranslateCTM(bitmap, 0, -1000);
    CGContextFillRect(bitmap, CGRectMake(50, 50, 100, 100));  // outside: only its shadow is seen
    EXPECT_NEAR(bitmap.At(100, 100).a, 85, 2);
    EXPECT_NEAR(bitmap.At(50, 100).a, 42, 4);  // half at the edge
    EXPECT_NEAR(bitmap.At(50, 50).a, 21, 4);
    EXPECT_LT(bitmap.At(35, 100).a, 10);
    EXPECT_EQ(bitmap.At(10, 100).a, 0);
    int last = 256;
    for (int x = 100; x >= 0; --x) {
        EXPECT_LE(bitmap.At(x, 100).a, last) << x;
        last = bitmap.At(x, 100).a;
    }
    EXPECT_NEAR(bitmap.At(40, 100).a, bitmap.At(159, 100).a, 2);  // alike on both sides
    EXPECT_NEAR(bitmap.At(100, 40).a, bitmap.At(100, 159).a, 2);
}

TEST(CGContext, Shadow_OffByZeroOrNoColorOrRestore) {
    Bitmap bitmap(60, 60);
    CGContextSaveGState(bitmap);
    CGContextSetShadow(bitmap, {10, 10}, 5);
    CGContextRestoreGState(bitmap);
    CGContextFillRect(bitmap, CGRectMake(5, 5, 10, 10));
    CGContextSetShadow(bitmap, {10, 10}, 5);
    CGContextSetShadow(bitmap, {0, 0}, 0);
    CGContextFillRect(bitmap, CGRectMake(5, 5, 10, 10));
    CGContextSetShadowWithColor(bitmap, {10, 10}, 5, nullptr);
    CGContextFillRect(bitmap, CGRectMake(5, 5, 10, 10));
    EXPECT_EQ(bitmap.Count(0), 100);
    Owned<CGColorRef> blue = CGColorCreateGenericRGB(0, 0, 1, 1);
    CGContextSetShadowWithColor(bitmap, {20, 0}, 0, blue);
    CGContextFillRect(bitmap, CGRectMake(5, 5, 10, 10));
    EXPECT_EQ(bitmap.At(30, 10), kBlue);
}

TEST(CGContext, Shadow_OfStrokesAndImages) {
    Bitmap bitmap(60, 60);
    CGContextSetShadow(bitmap, {0, 20}, 0);
    CGContextStrokeRectWithWidth(bitmap, CGRectMake(10, 10, 10, 10), 4);
    EXPECT_NEAR(bitmap.At(9, 35).a, 85, 2);
    EXPECT_EQ(bitmap.At(15, 35).a, 0);  // the frame's inside
    Owned<CGImageRef> image = Picture(10, 10, [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 10, 5)); });
    CGContextDrawImage(bitmap, CGRectMake(40, 10, 10, 10), image);
    EXPECT_NEAR(bitmap.At(45, 32).a, 85, 2);
    EXPECT_EQ(bitmap.At(45, 37).a, 0);  // where the image is clear
}

// What must never end the drawing ----------------------------------------------------------------------------------

TEST(CGContext, BadMatrix_DrawsNothingUntilItIsGone) {
    static const CGAffineTransform rows[] = {
        {0, 0, 0, 0, 0, 0},     {1, 1, 1, 1, 0, 0},      {kNaN, 0, 0, 1, 0, 0},      {1, 0, 0, 1, kInfinity, 0},
        {1e300, 0, 0, 1, 0, 0}, {1, 0, 0, 1e-320, 0, 0}, {1e200, 0, 0, 1e200, 0, 0}, {1, 0, 0, 1, 1e300, 0},
    };
    Owned<CGImageRef> image = Picture(4, 4, [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 4, 4)); });
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(nullptr, {10, 10}, nullptr);
    CGContextFillRect(CGLayerGetContext(layer), CGRectMake(0, 0, 10, 10));
    Owned<CGColorSpaceRef> space = CGColorSpaceCreateDeviceRGB();
    const CGFloat components[] = {1, 0, 0, 1, 0, 0, 1, 1};
    Owned<CGGradientRef> gradient = CGGradientCreateWithColorComponents(space, components, nullptr, 2);
    for (auto& row : rows) {
        Bitmap bitmap(20, 20);
        CGContextSaveGState(bitmap);
        CGContextConcatCTM(bitmap, row);
        CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
        CGContextFillEllipseInRect(bitmap, CGRectMake(0, 0, 10, 10));
        CGContextStrokeRectWithWidth(bitmap, CGRectMake(0, 0, 10, 10), 3);
        Line(bitmap, 0, 0, 10, 10);
        CGContextAddArcToPoint(bitmap, 1, 2, 3, 4, 5);
        CGContextDrawImage(bitmap, CGRectMake(0, 0, 10, 10), image);
        CGContextDrawTiledImage(bitmap, CGRectMake(0, 0, 10, 10), image);
        CGContextDrawLayerAtPoint(bitmap, {0, 0}, layer);
        CGContextDrawLinearGradient(bitmap, gradient, {0, 0}, {10, 0}, 3);
        CGContextDrawRadialGradient(bitmap, gradient, {0, 0}, 0, {10, 0}, 5, 3);
        CGContextClearRect(bitmap, CGRectMake(0, 0, 10, 10));
        CGContextGetClipBoundingBox(bitmap);
        CGContextRestoreGState(bitmap);
        EXPECT_EQ(bitmap.Count(0), 0) << row.a << ' ' << row.tx;
        CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
        EXPECT_EQ(bitmap.Count(), 100) << row.a << ' ' << row.tx;
    }
}

TEST(CGContext, AbsurdNumbers_NeitherCrashNorEndTheDrawing) {
    const double numbers[] = {0, -1, 1e-300, 1e9, -1e9, 1e18, 1e300, -1e300, kNaN, kInfinity, -kInfinity, 4e6, 8388608};
    Owned<CGImageRef> image = Picture(4, 4, [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 4, 4)); });
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(nullptr, {10, 10}, nullptr);
    CGContextFillRect(CGLayerGetContext(layer), CGRectMake(0, 0, 10, 10));
    Bitmap bitmap(20, 20);
    for (double a : numbers)
        for (double b : numbers) {
            CGContextSaveGState(bitmap);
            CGRect rects[] = {CGRectMake(a, b, 10, 10), CGRectMake(1, 1, a, b), CGRectMake(a, a, b, b)};
            for (CGRect r : rects) {
                CGContextFillRect(bitmap, r);
                CGContextFillEllipseInRect(bitmap, r);
                CGContextStrokeEllipseInRect(bitmap, r);
                CGContextDrawImage(bitmap, r, image);
                CGContextDrawTiledImage(bitmap, r, image);
                CGContextDrawLayerInRect(bitmap, r, layer);
                CGContextClearRect(bitmap, r);
            }
            CGContextSetLineWidth(bitmap, a);
            CGContextSetMiterLimit(bitmap, b);
            CGContextMoveToPoint(bitmap, a, b);
            CGContextAddLineToPoint(bitmap, b, a);
            CGContextAddCurveToPoint(bitmap, a, b, b, a, 3, 3);
            CGContextAddQuadCurveToPoint(bitmap, a, b, b, a);
            CGContextAddArcToPoint(bitmap, a, b, 5, 5, a);
            CGContextAddArcToPoint(bitmap, 5, 5, 10, a, b);
            CGContextSetLineJoin(bitmap, kCGLineJoinRound);
            CGContextStrokePath(bitmap);
            CGContextScaleCTM(bitmap, a, b);
            CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
            CGContextSetLineWidth(bitmap, 3);
            CGContextStrokeRectWithWidth(bitmap, CGRectMake(0, 0, 10, 10), 2);
            CGContextSetShadow(bitmap, {a, b}, b);
            CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
            CGContextClipToRect(bitmap, CGRectMake(a, b, a, b));
            CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
            CGContextRestoreGState(bitmap);
        }
    CGContextClearRect(bitmap, CGRectMake(0, 0, 20, 20));
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(bitmap.Count(), 100);
    EXPECT_EQ(bitmap.At(0, 0), kRed);
}

TEST(CGContext, EndlessDash_IsDrawnSolid) {
    Bitmap bitmap(20, 20);
    const CGFloat dash[] = {1e-9, 1e-9};
    CGContextSetLineDash(bitmap, 0, dash, 2);
    CGContextSetLineWidth(bitmap, 4);
    Line(bitmap, -1e6, 10, 1e6, 10);
    EXPECT_EQ(bitmap.Count(), 80);
}

TEST(CGContext, FarGeometry_KeepsItsDirection) {
    // A line, a triangle and an ellipse that run far out of the bitmap: as the part of them that is near.
    struct {
        const char* name;
        double far;
    } rows[] = {{"1e5", 1e5}, {"1e6", 1e6}, {"1e7", 1e7}, {"1e12", 1e12}};
    auto line = [](double far) {
        Bitmap bitmap(100, 100);
        CGContextSetLineWidth(bitmap, 4);
        CGContextMoveToPoint(bitmap, 0, 0);
        CGContextAddLineToPoint(bitmap, far, far / 2);
        CGContextStrokePath(bitmap);
        return bitmap.Count();
    };
    auto triangle = [](double far, bool clip) {
        Bitmap bitmap(100, 100);
        CGContextMoveToPoint(bitmap, 0, 0);
        CGContextAddLineToPoint(bitmap, far, far / 2);
        CGContextAddLineToPoint(bitmap, far, 0);
        CGContextClosePath(bitmap);
        if (clip) {
            CGContextClip(bitmap);
            CGContextFillRect(bitmap, CGRectMake(0, 0, 100, 100));
        } else {
            CGContextFillPath(bitmap);
        }
        return bitmap.Count();
    };
    auto ellipse = [](double far) {  // its right edge touches x = 60
        Bitmap bitmap(100, 100);
        CGContextFillEllipseInRect(bitmap, CGRectMake(60 - 2 * far, 50 - far, 2 * far, 2 * far));
        return bitmap.Count();
    };
    auto ring = [](double far) {  // a hole by winding: nothing is left in the middle
        Bitmap bitmap(100, 100);
        for (double r : {far, -far}) {
            CGContextMoveToPoint(bitmap, -far, -r);
            CGContextAddLineToPoint(bitmap, far, -r);
            CGContextAddLineToPoint(bitmap, far, r);
            CGContextAddLineToPoint(bitmap, -far, r);
            CGContextClosePath(bitmap);
        }
        CGContextFillPath(bitmap);
        return bitmap.Count();
    };
    for (auto& row : rows) {
        EXPECT_NEAR(line(row.far), line(1000), 8) << row.name;
        EXPECT_NEAR(triangle(row.far, /*clip*/ false), triangle(1000, /*clip*/ false), 8) << row.name;
        EXPECT_NEAR(triangle(row.far, /*clip*/ true), triangle(1000, /*clip*/ true), 8) << row.name;
        EXPECT_NEAR(ellipse(row.far), 6000, 8) << row.name;
        EXPECT_EQ(ring(row.far), 0) << row.name;
    }
}

TEST(CGContext, FarGeometry_InLayers_KeepsItsDirection) {
    Bitmap bitmap(100, 100), near(100, 100);
    auto draw = [](CGContextRef c, double far) {
        Owned<CGLayerRef> layer = CGLayerCreateWithContext(c, {100, 100}, nullptr);
        CGContextRef own = CGLayerGetContext(layer);
        CGContextMoveToPoint(own, 0, 0);
        CGContextAddLineToPoint(own, far, far / 2);
        CGContextAddLineToPoint(own, far, 0);
        CGContextFillPath(own);
        CGContextDrawLayerAtPoint(c, {0, 0}, layer);
    };
    draw(bitmap, 1e6);
    draw(near, 1000);
    EXPECT_NEAR(bitmap.Count(), near.Count(), 8);
    EXPECT_GT(near.Count(), 2000);
}

TEST(CGContext, LongDash_IsCutAndDrawn) {
    Bitmap bitmap(100, 20);
    std::vector<CGFloat> lengths(70000, 0);  // what counts comes behind the cut: then the line is solid
    lengths.back() = 5;
    CGContextSetLineDash(bitmap, 0, lengths.data(), lengths.size());
    CGContextSetLineWidth(bitmap, 10);
    CGContextMoveToPoint(bitmap, 0, 10);
    CGContextAddLineToPoint(bitmap, 100, 10);
    CGContextStrokePath(bitmap);
    EXPECT_EQ(bitmap.Count(), 1000);
}

TEST(CGContext, WidePen_RoundJoins_AreDrawnAtOnce) {
    auto start = std::chrono::steady_clock::now();
    Bitmap bitmap(100, 100);
    CGContextSetLineWidth(bitmap, 1e6);
    CGContextSetLineJoin(bitmap, kCGLineJoinRound);
    CGContextSetLineCap(bitmap, kCGLineCapRound);
    for (int i = 0; i < 400; ++i) CGContextAddLineToPoint(bitmap, i % 7 * 10, i % 5 * 10);
    CGContextMoveToPoint(bitmap, 0, 0);
    for (int i = 0; i < 400; ++i) CGContextAddLineToPoint(bitmap, i % 7 * 10, i % 5 * 10);
    CGContextStrokePath(bitmap);
    EXPECT_EQ(bitmap.Count(), 10000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(CGContext, SmallTiles_AreDrawnAtOnce_InTheirColour) {
    auto picture = Picture(9, 7, [](CGContextRef c) {
        CGContextFillRect(c, CGRectMake(0, 0, 9, 7));
        CGContextSetRGBFillColor(c, 0, 0, 1, 1);
        CGContextFillRect(c, CGRectMake(0, 0, 9, 3.5));
    });
    auto start = std::chrono::steady_clock::now();
    Bitmap page(1240, 1754);
    CGContextDrawTiledImage(page, CGRectMake(0, 0, 5, 5), picture);
    EXPECT_EQ(page.Count(), 1240 * 1754);
    EXPECT_NEAR_PIXEL(page.At(2, 4), kRed, 2);
    EXPECT_NEAR_PIXEL(page.At(1002, 1000), kBlue, 2);
    CGContextSaveGState(page);
    CGContextTranslateCTM(page, 1000, 1000);  // a quarter turn about (1000, 1000): x runs up
    CGContextRotateCTM(page, M_PI / 2);
    CGContextDrawTiledImage(page, CGRectMake(0, 0, 5, 5), picture);
    EXPECT_NEAR_PIXEL(page.At(999, 502), kBlue, 2);
    EXPECT_NEAR_PIXEL(page.At(996, 502), kRed, 2);
    CGContextRotateCTM(page, 0.3);
    CGContextDrawTiledImage(page, CGRectMake(0, 0, 5, 5), picture);
    CGContextRestoreGState(page);
    EXPECT_EQ(page.Count(), 1240 * 1754);
    for (double size : {0.9, 0.3, 0.01}) {  // less than a pixel: the mean
        CGContextDrawTiledImage(page, CGRectMake(0, 0, size, size), picture);
        EXPECT_NEAR_PIXEL(page.At(700, 700), (Pixel{128, 0, 128, 255}), 2) << size;
        EXPECT_NEAR_PIXEL(page.At(701, 705), (Pixel{128, 0, 128, 255}), 2) << size;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST(CGContext, HugeRect_CoversTheBitmap) {
    Bitmap bitmap(20, 20);
    CGContextFillRect(bitmap, CGRectMake(-1e9, -1e9, 2e9, 2e9));
    EXPECT_EQ(bitmap.Count(), 400);
    Bitmap turned(20, 20);
    CGContextRotateCTM(turned, 0.5);
    CGContextFillRect(turned, CGRectMake(-1e9, -1e9, 2e9, 2e9));
    EXPECT_EQ(turned.Count(), 400);
}

TEST(CGContext, Null_IsHarmless) {
    CGContextSaveGState(nullptr);
    CGContextRestoreGState(nullptr);
    CGContextFillRect(nullptr, CGRectZero);
    CGContextDrawPath(nullptr, kCGPathFill);
    CGContextClip(nullptr);
    CGContextClipToRect(nullptr, CGRectZero);
    CGContextClearRect(nullptr, CGRectZero);
    CGContextFlush(nullptr);
    CGContextConcatCTM(nullptr, CGAffineTransformIdentity);
    CGContextSetLineDash(nullptr, 0, nullptr, 0);
    CGContextSetShadow(nullptr, {1, 1}, 1);
    CGContextSetFillColorWithColor(nullptr, nullptr);
    CGContextAddPath(nullptr, nullptr);
    CGContextDrawImage(nullptr, CGRectZero, nullptr);
    CGContextDrawLayerAtPoint(nullptr, {}, nullptr);
    CGContextDrawPDFPage(nullptr, nullptr);
    CGContextBeginPage(nullptr, nullptr);
    CGContextEndPage(nullptr);
    CGPDFContextClose(nullptr);
    CGContextSetTextPosition(nullptr, 1, 1);
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(nullptr)));
    EXPECT_TRUE(CGContextIsPathEmpty(nullptr));
    Bitmap bitmap(4, 4);
    CGContextAddPath(bitmap, nullptr);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 4, 4), nullptr);
    CGContextDrawLayerAtPoint(bitmap, {}, nullptr);
    CGContextDrawShading(bitmap, nullptr);
    CGContextDrawLinearGradient(bitmap, nullptr, {}, {}, 3);
    CGContextDrawPDFPage(bitmap, nullptr);
    EXPECT_EQ(bitmap.Count(0), 0);
}
