#include <gtest/gtest.h>

#include <cmath>

#include "tests/platform/GraphicsSupport.h"

static Owned<CGColorSpaceRef> RGB() { return CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB); }

static Owned<CGGradientRef> RedToBlue() {
    const CGFloat components[] = {1, 0, 0, 1, 0, 0, 1, 1}, locations[] = {0, 1};
    return CGGradientCreateWithColorComponents(RGB(), components, locations, 2);
}

// Spaces and colours -----------------------------------------------------------------------------------------------

TEST(CGColorSpace, CreateWithName_KnownNamesOnly) {
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(RGB()), 3U);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(Owned<CGColorSpaceRef>(CGColorSpaceCreateWithName(kCGColorSpaceSRGB))),
              3U);
    EXPECT_EQ(
        CGColorSpaceGetNumberOfComponents(Owned<CGColorSpaceRef>(CGColorSpaceCreateWithName(kCGColorSpaceGenericGray))),
        1U);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(Owned<CGColorSpaceRef>(CGColorSpaceCreateDeviceGray())), 1U);
    EXPECT_EQ(CGColorSpaceCreateWithName(Text("other")), nullptr);
    EXPECT_EQ(CGColorSpaceCreateWithName(nullptr), nullptr);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(nullptr), 0U);
    EXPECT_EQ(CFGetTypeID(RGB()), CGColorSpaceGetTypeID());
}

TEST(CGColor, Create_KeepsComponents) {
    Owned<CGColorRef> color = CGColorCreateGenericRGB(0.25, 0.5, 0.75, 0.5);
    ASSERT_EQ(CGColorGetNumberOfComponents(color), 4U);
    EXPECT_EQ(CGColorGetComponents(color)[2], 0.75);
    EXPECT_EQ(CGColorGetAlpha(color), 0.5);
    const CGFloat gray[] = {0.5, 0.25};
    Owned<CGColorRef> other = CGColorCreate(Owned<CGColorSpaceRef>(CGColorSpaceCreateDeviceGray()), gray);
    EXPECT_EQ(CGColorGetNumberOfComponents(other), 2U);
    EXPECT_EQ(CGColorGetAlpha(other), 0.25);
    EXPECT_FALSE(CFEqual(color, other));
    EXPECT_TRUE(CFEqual(color, Owned<CGColorRef>(CGColorCreateGenericRGB(0.25, 0.5, 0.75, 0.5))));
    EXPECT_EQ(CGColorCreate(nullptr, gray), nullptr);
    EXPECT_EQ(CGColorCreate(RGB(), nullptr), nullptr);
    EXPECT_EQ(CGColorGetComponents(nullptr), nullptr);
    EXPECT_EQ(CGColorGetAlpha(nullptr), 0);
}

// Linear -----------------------------------------------------------------------------------------------------------

TEST(CGGradient, Linear_Options_ExtendEachEnd) {
    for (uint32_t options = 0; options < 4; ++options) {
        Bitmap bitmap(100, 10);
        CGContextDrawLinearGradient(bitmap, RedToBlue(), {20, 0}, {80, 0}, options);
        EXPECT_EQ(bitmap.At(5, 5), options & 1 ? kRed : kClear) << options;
        EXPECT_EQ(bitmap.At(95, 5), options & 2 ? kBlue : kClear) << options;
        EXPECT_NEAR_PIXEL(bitmap.At(50, 5), (Pixel{127, 0, 128, 255}), 4);
        EXPECT_NEAR_PIXEL(bitmap.At(22, 5), (Pixel{244, 0, 11, 255}), 4);
        EXPECT_NEAR_PIXEL(bitmap.At(77, 5), (Pixel{11, 0, 244, 255}), 4);
    }
}

TEST(CGGradient, Linear_FirstAndLastLocationInside_EndsAreFilled) {
    // From 20 to 80 with the colours at a quarter and three quarters: 35 and 65
    const CGFloat places[] = {0.25, 0.75};
    const CGFloat components[] = {1, 0, 0, 1, 0, 0, 1, 1};
    Owned<CGGradientRef> gradient = CGGradientCreateWithColorComponents(RGB(), components, places, 2);
    for (unsigned options = 0; options < 4; ++options) {
        Bitmap bitmap(100, 10);
        CGContextDrawLinearGradient(bitmap, gradient, {20, 0}, {80, 0}, options);
        EXPECT_EQ(bitmap.At(10, 5), options & 1 ? kRed : kClear) << options;
        EXPECT_EQ(bitmap.At(90, 5), options & 2 ? kBlue : kClear) << options;
        for (int x : {22, 28, 33}) EXPECT_NEAR_PIXEL(bitmap.At(x, 5), kRed, 2) << options << " " << x;
        for (int x : {67, 72, 77}) EXPECT_NEAR_PIXEL(bitmap.At(x, 5), kBlue, 2) << options << " " << x;
        EXPECT_NEAR_PIXEL(bitmap.At(50, 5), (Pixel{126, 0, 129, 255}), 6) << options;
    }
}

TEST(CGGradient, Linear_DirectionRunsUpAndUnderTheMatrix) {
    Bitmap bitmap(10, 100);
    CGContextTranslateCTM(bitmap, 0, 20);
    CGContextScaleCTM(bitmap, 1, 2);
    CGContextDrawLinearGradient(bitmap, RedToBlue(), {0, 0}, {0, 30}, 3);
    EXPECT_EQ(bitmap.At(5, 5), kRed);
    EXPECT_EQ(bitmap.At(5, 95), kBlue);
    EXPECT_NEAR_PIXEL(bitmap.At(5, 50), (Pixel{127, 0, 128, 255}), 4);
}

TEST(CGGradient, Linear_LocationsAlphaClipAndContextAlpha) {
    const CGFloat components[] = {1, 0, 0, 1, 0, 1, 0, 0.5, 0, 0, 1, 1}, locations[] = {1, 0.5, 0};  // backwards
    Owned<CGGradientRef> gradient = CGGradientCreateWithColorComponents(RGB(), components, locations, 3);
    Bitmap bitmap(101, 10);
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 101, 5));
    CGContextSetAlpha(bitmap, 0.5);
    CGContextDrawLinearGradient(bitmap, gradient, {0, 0}, {101, 0}, 3);
    EXPECT_NEAR_PIXEL(bitmap.At(0, 2), (Pixel{0, 0, 128, 128}), 3);
    EXPECT_NEAR_PIXEL(bitmap.At(50, 2), (Pixel{0, 64, 0, 64}), 3);
    EXPECT_NEAR_PIXEL(bitmap.At(100, 2), (Pixel{128, 0, 0, 128}), 3);
    EXPECT_EQ(bitmap.At(50, 7), kClear);
}

TEST(CGGradient, Create_BadArguments_GiveNull) {
    std::vector<CGFloat> components(4 * 5000);
    EXPECT_EQ(CGGradientCreateWithColorComponents(nullptr, components.data(), nullptr, 2), nullptr);
    EXPECT_EQ(CGGradientCreateWithColorComponents(RGB(), nullptr, nullptr, 2), nullptr);
    EXPECT_EQ(CGGradientCreateWithColorComponents(RGB(), components.data(), nullptr, 0), nullptr);
    EXPECT_EQ(CGGradientCreateWithColorComponents(RGB(), components.data(), nullptr, 4097), nullptr);
    Owned<CGGradientRef> most = CGGradientCreateWithColorComponents(RGB(), components.data(), nullptr, 4096);
    EXPECT_NE(most.get(), nullptr);
    const CGFloat odd[] = {std::nan(""), -1, 5, 1, 0, 0, 0, 1}, places[] = {std::nan(""), HUGE_VAL};
    Owned<CGGradientRef> strange = CGGradientCreateWithColorComponents(RGB(), odd, places, 2);
    Bitmap bitmap(10, 10);
    CGContextDrawLinearGradient(bitmap, strange, {0, 0}, {10, 0}, 3);
    EXPECT_EQ(bitmap.Count(), 100);
}

TEST(CGGradient, NotFinite_DrawsNothing) {
    Bitmap bitmap(10, 10);
    CGContextDrawLinearGradient(bitmap, RedToBlue(), {std::nan(""), 0}, {10, 0}, 3);
    CGContextDrawLinearGradient(bitmap, RedToBlue(), {0, 0}, {HUGE_VAL, 0}, 3);
    CGContextDrawRadialGradient(bitmap, RedToBlue(), {0, 0}, -1, {5, 5}, 5, 3);
    CGContextDrawRadialGradient(bitmap, RedToBlue(), {0, 0}, 0, {5, 5}, std::nan(""), 3);
    EXPECT_EQ(bitmap.Count(0), 0);
    CGContextDrawLinearGradient(bitmap, RedToBlue(), {-1e12, 0}, {1e12, 0}, 3);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(bitmap.At(5, 5), kRed);
}

// Radial -----------------------------------------------------------------------------------------------------------

TEST(CGGradient, Radial_AfterEnd_FillsAllAround) {
    Bitmap bitmap(100, 100);
    CGContextDrawRadialGradient(bitmap, RedToBlue(), {50, 50}, 0, {50, 50}, 30, 2);
    EXPECT_NEAR_PIXEL(bitmap.At(50, 50), kRed, 6);
    EXPECT_NEAR_PIXEL(bitmap.At(65, 50), (Pixel{124, 0, 131, 255}), 6);
    EXPECT_EQ(bitmap.At(1, 1), kBlue);
    EXPECT_EQ(bitmap.At(50, 95), kBlue);
}

TEST(CGGradient, Radial_NoOption_EndsAtTheCircles) {
    Bitmap bitmap(100, 100);
    CGContextDrawRadialGradient(bitmap, RedToBlue(), {50, 50}, 10, {50, 50}, 30, 0);
    EXPECT_EQ(bitmap.At(50, 50), kClear);
    EXPECT_EQ(bitmap.At(95, 50), kClear);
    EXPECT_NEAR_PIXEL(bitmap.At(70, 50), (Pixel{124, 0, 131, 255}), 8);
    Bitmap before(100, 100);
    CGContextDrawRadialGradient(before, RedToBlue(), {50, 50}, 10, {50, 50}, 30, 1);
    EXPECT_EQ(before.At(50, 50), kRed);
    EXPECT_EQ(before.At(95, 50), kClear);
    Bitmap after(100, 100);
    CGContextDrawRadialGradient(after, RedToBlue(), {50, 50}, 10, {50, 50}, 30, 2);
    EXPECT_EQ(after.At(50, 50), kClear);
    EXPECT_EQ(after.At(95, 50), kBlue);
}

TEST(CGGradient, Radial_FocalPointAndScale_MakeAnEllipse) {
    Bitmap bitmap(200, 100);
    CGContextScaleCTM(bitmap, 2, 1);
    CGContextDrawRadialGradient(bitmap, RedToBlue(), {30, 50}, 0, {50, 50}, 40, 2);
    EXPECT_NEAR_PIXEL(bitmap.At(60, 50), kRed, 8);    // the focal point
    EXPECT_NEAR_PIXEL(bitmap.At(178, 50), kBlue, 6);  // 80 to the right of the middle
    EXPECT_NEAR_PIXEL(bitmap.At(100, 89), kBlue, 8);  // 40 above it
    EXPECT_NE(bitmap.At(100, 70), kBlue);
}

// Shadings ---------------------------------------------------------------------------------------------------------

static void Fade(void* info, const CGFloat* in, CGFloat* out) {
    auto color = static_cast<const CGFloat*>(info);
    for (int i = 0; i < 3; ++i) out[i] = color[i];
    out[3] = 1 - in[0] / 2;
}
static int sReleased = 0;

TEST(CGShading, Axial_ColorStaysAlphaFades_EndsDoNotExtend) {
    CGFloat color[] = {0, 0, 1};
    const CGFloat domain[] = {0, 1}, range[] = {0, 0, 0, 0, 1, 1, 0, 1};
    const CGFunctionCallbacks callbacks = {0, Fade, [](void*) { ++sReleased; }};
    sReleased = 0;
    CGFunctionRef function = CGFunctionCreate(color, 1, domain, 4, range, &callbacks);
    Owned<CGShadingRef> shading = CGShadingCreateAxial(RGB(), {10, 0}, {90, 0}, function, false, false);
    CGFunctionRelease(function);
    EXPECT_EQ(sReleased, 1);
    Bitmap bitmap(100, 10);
    CGContextDrawShading(bitmap, shading);
    EXPECT_EQ(bitmap.At(5, 5), kClear);
    EXPECT_EQ(bitmap.At(95, 5), kClear);
    for (int x : {12, 30, 50, 70, 87}) {
        int alpha = static_cast<int>(std::lround(255 * (1 - (x + 0.5 - 10) / 80 / 2)));
        EXPECT_NEAR_PIXEL(bitmap.At(x, 5), (Pixel{0, 0, alpha, alpha}), 3);
    }
    Owned<CGFunctionRef> again = CGFunctionCreate(color, 1, domain, 4, range, &callbacks);
    Owned<CGShadingRef> extended = CGShadingCreateAxial(RGB(), {10, 0}, {90, 0}, again, true, true);
    Bitmap whole(100, 10);
    CGContextDrawShading(whole, extended);
    EXPECT_EQ(whole.At(5, 5), kBlue);
    EXPECT_NEAR_PIXEL(whole.At(95, 5), (Pixel{0, 0, 128, 128}), 2);
}

TEST(CGFunction, Range_CutsOutputs) {
    const CGFloat domain[] = {0, 1}, range[] = {0.5, 0.5, 0, 0, 0, 0.25, 1, 1};
    CGFunctionCallbacks callbacks = {
        0, [](void*, const CGFloat*, CGFloat* out) { out[0] = -7, out[1] = std::nan(""), out[2] = 9, out[3] = 0; },
        nullptr};
    Owned<CGFunctionRef> function = CGFunctionCreate(nullptr, 1, domain, 4, range, &callbacks);
    Owned<CGShadingRef> shading = CGShadingCreateAxial(RGB(), {0, 0}, {10, 0}, function, true, true);
    Bitmap bitmap(10, 10);
    CGContextDrawShading(bitmap, shading);
    EXPECT_NEAR_PIXEL(bitmap.At(5, 5), (Pixel{128, 0, 64, 255}), 1);
}

TEST(CGFunction, Create_BadArguments_GiveNull) {
    const CGFunctionCallbacks callbacks = {0, Fade, nullptr}, none = {0, nullptr, nullptr};
    EXPECT_EQ(CGFunctionCreate(nullptr, 0, nullptr, 4, nullptr, &callbacks), nullptr);
    EXPECT_EQ(CGFunctionCreate(nullptr, 1, nullptr, 0, nullptr, &callbacks), nullptr);
    EXPECT_EQ(CGFunctionCreate(nullptr, 99, nullptr, 4, nullptr, &callbacks), nullptr);
    EXPECT_EQ(CGFunctionCreate(nullptr, 1, nullptr, 4, nullptr, &none), nullptr);
    EXPECT_EQ(CGFunctionCreate(nullptr, 1, nullptr, 4, nullptr, nullptr), nullptr);
    CGFloat color[] = {0, 0, 1};
    Owned<CGFunctionRef> three = CGFunctionCreate(color, 1, nullptr, 3, nullptr, &callbacks);
    EXPECT_EQ(CGShadingCreateAxial(RGB(), {}, {}, three, false, false), nullptr);  // alpha is missing
    EXPECT_EQ(CGShadingCreateAxial(nullptr, {}, {}, three, false, false), nullptr);
    EXPECT_EQ(CGShadingCreateAxial(RGB(), {}, {}, nullptr, false, false), nullptr);
}
