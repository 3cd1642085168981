// Gradients and shadings in pixels.
#include <limits>

#include "graphics/ZR_API_Shading.h"
#include "tests/graphics/DrawingSupport.h"

namespace {

class Gradients : public DrawingTest {};

void Fill(ZR_Device* d, ZR_Rect r, ZR_Gradient* g, ZR_Matrix* m = nullptr) {
    ZR_RGBColor gray = Color(128, 128, 128);
    d->DrawRect(&r, true, false, &gray, nullptr, 1, false, 0, false, m, g, nullptr, nullptr);
}

}  // namespace

TEST_F(Gradients, Linear_UserUnits_RunsBetweenItsPointsAndBeyond) {
    BitmapCanvas c(40, 100);
    TestGradient g(ZR_GRADIENT_USER);
    g.From(0, 20, 0, 80).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&c.device, Rect(0, 0, 40, 100), g);
    EXPECT_NEAR_DOT(c.At(20, 5), kRedDot, 2);
    EXPECT_NEAR_DOT(c.At(20, 95), kBlueDot, 2);
    EXPECT_NEAR_DOT(c.At(20, 50), (Dot{127, 0, 128, 255}), 4);
    EXPECT_NEAR_DOT(c.At(20, 35), (Dot{191, 0, 64, 255}), 4);
}

TEST_F(Gradients, Linear_Percent_IsOfTheRect) {
    BitmapCanvas c(100, 100);
    TestGradient g(ZR_GRADIENT_PERCENT);
    g.From(0, 0, 100, 0).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&c.device, Rect(40, 20, 80, 60), g);
    EXPECT_NEAR_DOT(c.At(41, 40), kRedDot, 12);
    EXPECT_NEAR_DOT(c.At(60, 40), (Dot{127, 0, 128, 255}), 6);
    EXPECT_NEAR_DOT(c.At(78, 40), kBlueDot, 12);
    EXPECT_EQ(c.At(39, 40), kClearDot);
    EXPECT_EQ(c.At(60, 61), kClearDot);
    BitmapCanvas down(100, 100);
    g.From(0, 0, 0, 100);
    Fill(&down.device, Rect(40, 20, 80, 60), g);
    EXPECT_NEAR_DOT(down.At(60, 21), kRedDot, 12);
    EXPECT_NEAR_DOT(down.At(60, 58), kBlueDot, 12);
}

TEST_F(Gradients, Radial_UserUnits_EndsAtItsRadiusAndGoesOnBehindIt) {
    BitmapCanvas c(100, 100);
    TestGradient g(ZR_GRADIENT_USER, /*linear*/ false);
    g.From(50, 30, 0, 0, 20).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&c.device, Rect(0, 0, 100, 100), g);
    EXPECT_NEAR_DOT(c.At(50, 30), kRedDot, 16);
    EXPECT_NEAR_DOT(c.At(60, 30), (Dot{127, 0, 128, 255}), 10);
    EXPECT_NEAR_DOT(c.At(50, 95), kBlueDot, 2);
    BitmapCanvas focal(100, 100);
    g.From(50, 50, 60, 50, 20);
    Fill(&focal.device, Rect(0, 0, 100, 100), g);
    EXPECT_NEAR_DOT(focal.At(60, 50), kRedDot, 24);
    EXPECT_GT(focal.At(50, 50).b, 60);
}

TEST_F(Gradients, Radial_Percent_IsAnEllipseInARectThatIsNotSquare) {
    BitmapCanvas c(100, 60);
    TestGradient g(ZR_GRADIENT_PERCENT, /*linear*/ false);
    g.From(50, 50, 0, 0, 50).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&c.device, Rect(0, 10, 100, 60), g);
    EXPECT_NEAR_DOT(c.At(50, 35), kRedDot, 16);
    EXPECT_NEAR_DOT(c.At(75, 35), (Dot{127, 0, 128, 255}), 8);   // half of 50 points across
    EXPECT_NEAR_DOT(c.At(50, 47), (Dot{127, 0, 128, 255}), 12);  // half of 25 points down
    EXPECT_NEAR_DOT(c.At(2, 12), kBlueDot, 2);
    EXPECT_EQ(c.At(50, 5), kClearDot);
}

TEST_F(Gradients, Radial_Percent_LeavesItsScaleInTheContext) {
    BitmapCanvas c(100, 60);
    TestGradient g(ZR_GRADIENT_PERCENT, /*linear*/ false);
    g.From(50, 50, 0, 0, 50).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    ZR_Rect r = Rect(0, 0, 100, 50);
    c->DrawGradient(g, &r);  // Required: the caller has saved the state
    EXPECT_EQ(CGContextGetCTM(c->context).a, 2);
    ZR_Rect empty = Rect(0, 0, 100, 0);
    c->DrawGradient(g, &empty);
    EXPECT_EQ(CGContextGetCTM(c->context).a, 2);
}

TEST_F(Gradients, Matrix_OfTheGradient_MovesIt) {
    BitmapCanvas c(100, 40);
    TestGradient g(ZR_GRADIENT_USER);
    g.From(0, 0, 20, 0).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    g.gradient.matrix.tx = 40;
    Fill(&c.device, Rect(0, 0, 100, 40), g);
    EXPECT_NEAR_DOT(c.At(38, 20), kRedDot, 4);
    EXPECT_NEAR_DOT(c.At(62, 20), kBlueDot, 4);
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(c->context)));
}

TEST_F(Gradients, UnderAMatrix_RectAndOval_AreMirrored) {
    // Required: the context runs y down then, while a gradient counts from the bottom.
    BitmapCanvas c(40, 100);
    ZR_Matrix m = {1, 0, 0, 1, 0.001f, 0};
    TestGradient g(ZR_GRADIENT_USER);
    g.From(0, 0, 0, 100).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&c.device, Rect(0, 0, 40, 100), g, &m);
    EXPECT_NEAR_DOT(c.At(20, 3), kBlueDot, 12);
    EXPECT_NEAR_DOT(c.At(20, 97), kRedDot, 12);
}

TEST_F(Gradients, GrayDevice_Components_AreTakenInPairs) {
    // Required: red and green of the first stop are its gray and alpha, blue and alpha those of the second.
    BitmapCanvas c(100, 40);
    ZR_Device gray;
    gray.CreateWithCGContext(c->context, &c->bounds, 0, 0, /*gray*/ true);
    TestGradient g(ZR_GRADIENT_USER);
    g.From(0, 0, 100, 0).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&gray, Rect(0, 0, 100, 40), g);
    EXPECT_NEAR_DOT(c.At(1, 20), kClearDot, 8);
    EXPECT_NEAR_DOT(c.At(98, 20), kBlackDot, 8);
    gray.Dispose();
}

TEST_F(Gradients, BoundsTypeZero_Fill_FallsBackToTheColour) {
    BitmapCanvas c;
    TestGradient g(ZR_GRADIENT_NONE);
    g.Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    Fill(&c.device, Rect(0, 0, 40, 40), g);
    EXPECT_EQ(c.At(20, 20), (Dot{128, 128, 128, 255}));
}

TEST_F(Gradients, FewerThanTwoStops_Fill_PaintsNothing) {
    BitmapCanvas c;
    TestGradient g(ZR_GRADIENT_PERCENT);
    Fill(&c.device, Rect(0, 0, 40, 40), g);
    g.Stop(0, Color(255, 0, 0));
    Fill(&c.device, Rect(0, 0, 40, 40), g);
    EXPECT_EQ(c.Count(0), 0);
    ZR_Rect r = Rect(0, 0, 40, 40);
    c->DrawGradient(nullptr, &r);
    c->DrawGradient(g, nullptr);
}

TEST_F(Gradients, EmptyShapes_Fill_DoNotFloodTheCanvas) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    TestGradient g(ZR_GRADIENT_PERCENT), radial(ZR_GRADIENT_PERCENT, false);
    g.From(0, 0, 100, 0).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    radial.From(50, 50, 0, 0, 50).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    for (ZR_Rect r : {Rect(nan, nan, nan, nan), Rect(5, 5, 5, 5), Rect(5, 5, 5, 20)})
        for (ZR_Gradient* gradient : {&g.gradient, &radial.gradient}) {
            BitmapCanvas c;
            ZR_RGBColor red = Color(255, 0, 0);
            Fill(&c.device, r, gradient);
            c->DrawOval(&r, true, false, &red, nullptr, 1, true, nullptr, gradient, nullptr, nullptr);
            EXPECT_EQ(c.Count(), 0);
        }
}

TEST_F(Gradients, PathWithAGradient_Raster_IsFilledWithIt) {
    BitmapCanvas c;
    TestGradient g(ZR_GRADIENT_PERCENT);
    g.From(0, 0, 100, 0).Stop(0, Color(255, 0, 0)).Stop(1, Color(0, 0, 255));
    TestPath path("M0 0L40 0L40 20L0 20Z");
    ZR_Rect r = Rect(0, 0, 40, 20);
    ZR_RGBColor gray = Color(9, 9, 9);
    c->DrawPath(false, path, &r, &r, true, false, &gray, nullptr, 1, false, nullptr, g, nullptr, nullptr, nullptr,
                ZR_FILL_NONZERO);
    EXPECT_NEAR_DOT(c.At(1, 10), kRedDot, 12);
    EXPECT_NEAR_DOT(c.At(38, 10), kBlueDot, 12);
    EXPECT_EQ(c.At(20, 25), kClearDot);
}

// Shadings ---------------------------------------------------------------------------------------------------------

TEST_F(Gradients, ShadingEvaluate_Place_FallsToHalfAlpha) {
    ZR_RGBColor color = {65535, 0, 32768, 0.1f};
    static const struct { double in, alpha; } rows[] = {{0, 1}, {0.5, 0.75}, {1, 0.5}};
    for (const auto& row : rows) {
        CGFloat out[4];
        ZR_SHADING_Evaluate(&color, &row.in, out);
        EXPECT_EQ(out[0], 1);
        EXPECT_EQ(out[1], 0);
        EXPECT_NEAR(out[2], 0.5, 1e-4);
        EXPECT_EQ(out[3], row.alpha);
    }
}

TEST_F(Gradients, ShadingFunction_NullArguments_AreRefused) {
    ZR_RGBColor color = Color(1, 2, 3);
    CGFunctionRef function = ZR_SHADING_CreateFunctionForRGB(ZR_SHADING_Evaluate, &color);
    EXPECT_NE(function, nullptr);
    CGFunctionRelease(function);
    EXPECT_EQ(ZR_SHADING_CreateFunctionForRGB(nullptr, &color), nullptr);
    EXPECT_EQ(ZR_SHADING_CreateFunctionForRGB(ZR_SHADING_Evaluate, nullptr), nullptr);
}

TEST_F(Gradients, AxialShading_Across_FadesBetweenItsEndsOnly) {
    BitmapCanvas c(100, 40);
    ZR_Rect r = Rect(20, 0, 80, 40);
    ZR_RGBColor red = Color(255, 0, 0);
    ZR_SHADING_AxialShading(&c.device, &r, &red);
    EXPECT_NEAR_DOT(c.At(21, 20), kRedDot, 6);
    EXPECT_NEAR_DOT(c.At(50, 20), (Dot{191, 0, 0, 191}), 4);
    EXPECT_NEAR_DOT(c.At(78, 20), (Dot{128, 0, 0, 128}), 6);
    EXPECT_EQ(c.At(10, 20), kClearDot);
    EXPECT_EQ(c.At(90, 20), kClearDot);
}

TEST_F(Gradients, AxialShadingVertical_Down_FadesFromTopToBottom) {
    BitmapCanvas c(40, 100);
    ZR_Rect r = Rect(0, 20, 40, 80);
    ZR_RGBColor red = Color(255, 0, 0);
    ZR_SHADING_AxialShadingVertical(&c.device, &r, &red);
    EXPECT_NEAR_DOT(c.At(20, 21), kRedDot, 6);
    EXPECT_NEAR_DOT(c.At(20, 78), (Dot{128, 0, 0, 128}), 6);
    EXPECT_EQ(c.At(20, 10), kClearDot);
    SvgCanvas svg;
    ZR_SHADING_AxialShading(&svg.device, &r, &red);
    ZR_SHADING_AxialShading(nullptr, &r, &red);
    ZR_SHADING_AxialShadingVertical(&c.device, nullptr, &red);
    EXPECT_EQ(svg.Drawn(), "");
}
