#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>

#include "tests/platform/GraphicsSupport.h"

static CGContextRef MakeBitmap(void* data, size_t w, size_t h, size_t rowBytes, size_t bits = 8, uint32_t info = 1,
                               CGColorSpaceRef space = nullptr) {
    Owned<CGColorSpaceRef> rgb = CGColorSpaceCreateDeviceRGB();
    return CGBitmapContextCreate(data, w, h, bits, rowBytes, space ? space : rgb.get(), info);
}

// Bitmaps ----------------------------------------------------------------------------------------------------------

TEST(CGBitmapContext, Create_AbsurdOrUnknown_IsNull) {
    Owned<CGColorSpaceRef> gray = CGColorSpaceCreateDeviceGray();
    static const struct {
        const char* name;
        size_t w, h, rowBytes, bits;
        uint32_t info;
    } rows[] = {{"no width", 0, 10, 0, 8, 1},
                {"no height", 10, 0, 0, 8, 1},
                {"2^31 a side", 1UL << 31, 1, 0, 8, 1},
                {"2^31 pixels", 32767, 32767, 0, 8, 1},
                {"one side too long", 32768, 1, 0, 8, 1},
                {"all bits", ~0UL, ~0UL, ~0UL, 8, 1},
                {"short rows", 10, 10, 39, 8, 1},
                {"16 bits", 10, 10, 80, 16, 1},
                {"alpha first", 10, 10, 40, 8, 2},
                {"no alpha", 10, 10, 40, 8, 0},
                {"other order", 10, 10, 40, 8, 1 | 2 << 12}};
    for (auto& row : rows)
        EXPECT_EQ(MakeBitmap(nullptr, row.w, row.h, row.rowBytes, row.bits, row.info), nullptr) << row.name;
    EXPECT_EQ(MakeBitmap(nullptr, 10, 10, 40, 8, 1, gray), nullptr);
    EXPECT_EQ(CGBitmapContextCreate(nullptr, 10, 10, 8, 40, nullptr, 1), nullptr);
    Owned<CGContextRef> widest = MakeBitmap(nullptr, 32767, 1, 0);
    EXPECT_EQ(CGBitmapContextGetWidth(widest), 32767U);
    EXPECT_EQ(CGBitmapContextGetBytesPerRow(widest), 32767U * 4);
}

TEST(CGBitmapContext, Memory_IsRGBAPremultiplied_WithItsRowBytes) {
    std::vector<uint8_t> memory(3 * 20, 0x77);
    Owned<CGContextRef> context = MakeBitmap(memory.data(), 4, 3, 20);
    CGContextClearRect(context, CGRectMake(0, 0, 4, 3));
    CGContextSetRGBFillColor(context, 1, 0.5, 0, 0.5);
    CGContextFillRect(context, CGRectMake(0, 2, 1, 1));  // upper left
    CGContextFlush(context);
    const uint8_t expected[] = {128, 64, 0, 128, 0, 0, 0, 0};
    for (int i = 0; i < 8; ++i) EXPECT_NEAR(memory[static_cast<size_t>(i)], expected[i], 1) << i;
    for (size_t y = 0; y < 3; ++y)
        for (size_t i = 16; i < 20; ++i) EXPECT_EQ(memory[y * 20 + i], 0x77);  // beside the rows nothing is touched
    EXPECT_EQ(CGBitmapContextGetData(context), memory.data());
}

TEST(CGBitmapContext, Memory_WhatStandsThereIsDrawnUpon_AndReleaseWrites) {
    std::vector<uint8_t> memory(2 * 1 * 4);
    const uint8_t green[] = {0, 255, 0, 255};
    memcpy(memory.data(), green, 4);
    CGContextRef context = MakeBitmap(memory.data(), 2, 1, 8);
    CGContextSetRGBFillColor(context, 0, 0, 1, 1);
    CGContextFillRect(context, CGRectMake(1, 0, 1, 1));
    CGContextRelease(context);  // without a flush
    const uint8_t expected[] = {0, 255, 0, 255, 0, 0, 255, 255};
    EXPECT_EQ(memcmp(memory.data(), expected, 8), 0);
}

TEST(CGBitmapContext, OwnMemory_IsReadThroughGetData) {
    Owned<CGContextRef> context = MakeBitmap(nullptr, 4, 4, 0);
    CGContextSetRGBFillColor(context, 1, 1, 1, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 4, 4));
    auto bytes = static_cast<uint8_t*>(CGBitmapContextGetData(context));
    EXPECT_EQ(bytes[63], 255);
    CGContextClearRect(context, CGRectMake(0, 0, 4, 4));
    CGContextFlush(context);
    EXPECT_EQ(bytes[63], 0);
    EXPECT_EQ(CGBitmapContextGetHeight(context), 4U);
    EXPECT_EQ(CGBitmapContextGetData(nullptr), nullptr);
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(context, {4, 4}, nullptr);
    EXPECT_EQ(CGBitmapContextGetData(CGLayerGetContext(layer)), nullptr);
    EXPECT_EQ(CGBitmapContextGetWidth(CGLayerGetContext(layer)), 0U);
    EXPECT_EQ(CGBitmapContextCreateImage(CGLayerGetContext(layer)), nullptr);
}

TEST(CGBitmapContext, CreateImage_IsACopy) {
    Bitmap bitmap(4, 4);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 4, 4));
    Owned<CGImageRef> image = CGBitmapContextCreateImage(bitmap);
    CGContextClearRect(bitmap, CGRectMake(0, 0, 4, 4));
    EXPECT_EQ(CGImageGetWidth(image), 4U);
    EXPECT_EQ(CGImageGetHeight(image), 4U);
    EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaPremultipliedLast);
    EXPECT_EQ(PixelsOf(image)[0], 255);
    EXPECT_EQ(CFGetRetainCount(image), 1);
    EXPECT_EQ(CFGetTypeID(image), CGImageGetTypeID());
    EXPECT_EQ(CGBitmapContextCreateImage(nullptr), nullptr);
    EXPECT_EQ(CGImageGetWidth(nullptr), 0U);
    EXPECT_EQ(CGImageGetDataProvider(nullptr), nullptr);
}

// Images -----------------------------------------------------------------------------------------------------------

// Red lower left, green lower right, blue upper left, clear upper right.
static Owned<CGImageRef> Quarters(int side) {
    return Picture(2 * side, 2 * side, [side](CGContextRef c) {
        CGContextFillRect(c, CGRectMake(0, 0, side, side));
        CGContextSetRGBFillColor(c, 0, 1, 0, 1);
        CGContextFillRect(c, CGRectMake(side, 0, side, side));
        CGContextSetRGBFillColor(c, 0, 0, 1, 1);
        CGContextFillRect(c, CGRectMake(0, side, side, side));
    });
}

TEST(CGImage, Draw_SameSize_IsExactAndUpright) {
    Bitmap bitmap(10, 10);
    CGContextDrawImage(bitmap, CGRectMake(2, 3, 4, 4), Quarters(2));
    EXPECT_EQ(bitmap.At(2, 3), kRed);
    EXPECT_EQ(bitmap.At(4, 3), kGreen);
    EXPECT_EQ(bitmap.At(2, 5), kBlue);
    EXPECT_EQ(bitmap.At(4, 5), kClear);
    EXPECT_EQ(bitmap.Count(0), 12);
}

TEST(CGImage, Draw_Scaled_EdgesDoNotFade) {
    Bitmap bitmap(60, 60);
    CGContextDrawImage(bitmap, CGRectMake(10, 10, 40, 40), Quarters(2));
    EXPECT_EQ(bitmap.At(10, 10), kRed);
    EXPECT_EQ(bitmap.At(49, 10), kGreen);
    EXPECT_EQ(bitmap.At(10, 49), kBlue);
    EXPECT_EQ(bitmap.At(9, 10), kClear);
    EXPECT_EQ(bitmap.At(49, 49), kClear);
    Bitmap smaller(10, 10);
    CGContextDrawImage(smaller, CGRectMake(0, 0, 4, 4), Quarters(64));
    EXPECT_NEAR_PIXEL(smaller.At(0, 0), kRed, 2);
    EXPECT_NEAR_PIXEL(smaller.At(3, 0), kGreen, 2);
    EXPECT_EQ(smaller.Count(0), 12);
}

TEST(CGImage, Draw_NegativeRect_IsTheSpannedOne) {
    Bitmap bitmap(10, 10);
    CGContextDrawImage(bitmap, CGRectMake(4, 4, -4, -4), Quarters(2));
    EXPECT_EQ(bitmap.At(0, 0), kRed);
    EXPECT_EQ(bitmap.At(0, 3), kBlue);
}

TEST(CGImage, Draw_FlippedAndTurnedContext) {
    Bitmap bitmap(20, 20);
    CGContextSaveGState(bitmap);
    CGContextTranslateCTM(bitmap, 0, 20);
    CGContextScaleCTM(bitmap, 1, -1);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 4, 4), Quarters(2));  // at the top, upside down
    CGContextRestoreGState(bitmap);
    EXPECT_EQ(bitmap.At(0, 19), kRed);
    EXPECT_EQ(bitmap.At(0, 16), kBlue);
    CGContextTranslateCTM(bitmap, 10, 0);
    CGContextRotateCTM(bitmap, M_PI / 2);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 4, 4), Quarters(2));
    EXPECT_NEAR_PIXEL(bitmap.At(9, 0), kRed, 2);
    EXPECT_NEAR_PIXEL(bitmap.At(9, 3), kGreen, 2);
    EXPECT_NEAR_PIXEL(bitmap.At(6, 0), kBlue, 2);
}

TEST(CGImage, Draw_AlphaOfContextAndImageMultiply) {
    Owned<CGImageRef> image = Picture(4, 4, [](CGContextRef c) {
        CGContextSetRGBFillColor(c, 0, 0, 1, 0.5);
        CGContextFillRect(c, CGRectMake(0, 0, 4, 4));
    });
    Bitmap bitmap(4, 4);
    CGContextSetAlpha(bitmap, 0.5);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, 4, 4), image);
    EXPECT_NEAR_PIXEL(bitmap.At(1, 1), (Pixel{0, 0, 64, 64}), 1);
}

TEST(CGImage, DrawTiled_AnchoredAtTheRect_OverTheWholeClip) {
    Bitmap bitmap(20, 20);
    CGContextClipToRect(bitmap, CGRectMake(0, 0, 20, 10));
    CGContextDrawTiledImage(bitmap, CGRectMake(5, 5, 4, 4), Quarters(2));
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x) {
            bool right = (x + 3) % 4 >= 2, upper = (y + 3) % 4 >= 2;
            EXPECT_EQ(bitmap.At(x, y), right ? (upper ? kClear : kGreen) : upper ? kBlue : kRed) << x << ' ' << y;
        }
    EXPECT_EQ(bitmap.At(5, 11), kClear);
}

TEST(CGImage, DrawTiled_ScaledTiles) {
    Bitmap bitmap(40, 40);
    CGContextDrawTiledImage(bitmap, CGRectMake(0, 0, 20, 20), Quarters(10));
    EXPECT_EQ(bitmap.At(5, 5), kRed);
    EXPECT_EQ(bitmap.At(35, 25), kGreen);
    EXPECT_EQ(bitmap.At(35, 35), kClear);
    CGContextDrawTiledImage(bitmap, CGRectMake(0, 0, 1e-9, 1e-9), Quarters(10));
    EXPECT_EQ(bitmap.At(35, 35), (Pixel{64, 64, 64, 191}));  // too small to repeat: the mean
}

TEST(CGImage, Draw_HugeScales_DoNotEndTheDrawing) {
    Bitmap bitmap(20, 20);
    for (double size : {1e-9, 1e-3, 1e3, 1e6, 1e9, 1e12, 1e15}) {
        CGContextDrawImage(bitmap, CGRectMake(-size / 4, -size / 4, size, size), Quarters(2));
        CGContextDrawTiledImage(bitmap, CGRectMake(0, 0, size, size), Quarters(2));
    }
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    EXPECT_EQ(bitmap.At(3, 3), kRed);
    EXPECT_EQ(bitmap.Count(), 400);
}

TEST(CGImage, Draw_FromSeveralThreads) {
    Owned<CGImageRef> image = Quarters(20);
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            Bitmap bitmap(80, 80);
            for (int i = 0; i < 50; ++i) CGContextDrawImage(bitmap, CGRectMake(i % 3, 0, 40 + i, 40), image);
            right += bitmap.At(3, 3) == kRed;
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(right, 4);
}

// Layers -----------------------------------------------------------------------------------------------------------

TEST(CGLayer, DrawAtPointAndInRect) {
    Bitmap bitmap(60, 60);
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(nullptr, {10, 20}, nullptr);
    CGContextRef inner = CGLayerGetContext(layer);
    CGContextSetRGBFillColor(inner, 0, 0, 1, 1);
    CGContextFillRect(inner, CGRectMake(-5, -5, 30, 15));  // the lower half and beyond
    CGContextDrawLayerAtPoint(bitmap, {5, 5}, layer);
    EXPECT_EQ(bitmap.Count(0), 100);  // cut to the layer
    EXPECT_EQ(bitmap.At(5, 5), kBlue);
    EXPECT_EQ(bitmap.At(14, 14), kBlue);
    EXPECT_EQ(bitmap.At(5, 15), kClear);
    CGContextDrawLayerInRect(bitmap, CGRectMake(20, 20, 30, 30), layer);
    EXPECT_EQ(bitmap.At(20, 20), kBlue);
    EXPECT_EQ(bitmap.At(49, 34), kBlue);
    EXPECT_EQ(bitmap.At(49, 35), kClear);
    EXPECT_TRUE(CGSizeEqualToSize(CGLayerGetSize(layer), {10, 20}));
}

TEST(CGLayer, DrawAgain_KeptPixelsAreEqualToAReplay) {
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(nullptr, {37.5, 21.25}, nullptr);
    CGContextRef inner = CGLayerGetContext(layer);
    for (int i = 0; i < 30; ++i) {
        CGContextSetRGBFillColor(inner, i / 30.0, 0.5, 1 - i / 30.0, 0.6);
        CGContextFillEllipseInRect(inner, CGRectMake(i, i % 7, 9.3, 11.1));
    }
    Bitmap first(80, 80), again(80, 80);
    for (Bitmap* bitmap : {&first, &again}) {
        CGContextScaleCTM(*bitmap, 1.5, 1.5);
        CGContextDrawLayerAtPoint(*bitmap, {3.3, 4.7}, layer);
    }
    EXPECT_EQ(first.Pixels(), again.Pixels());
    Bitmap third(80, 80);  // whole pixels further
    CGContextScaleCTM(third, 1.5, 1.5);
    CGContextDrawLayerAtPoint(third, {3.3 + 2, 4.7}, layer);
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 70; ++x) EXPECT_EQ(third.At(x + 3, y), first.At(x, y)) << x << ' ' << y;
    CGContextSetRGBFillColor(inner, 0, 0, 0, 1);
    CGContextFillRect(inner, CGRectMake(0, 0, 40, 40));  // a change is seen
    CGContextDrawLayerAtPoint(again, {3.3, 4.7}, layer);
    EXPECT_EQ(again.At(20, 20), kBlack);
}

TEST(CGLayer, ClearRectWithinALayer_ShowsWhatIsBelow) {
    Bitmap bitmap(20, 20);
    CGContextFillRect(bitmap, CGRectMake(0, 0, 20, 20));
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(bitmap, {20, 20}, nullptr);
    CGContextRef inner = CGLayerGetContext(layer);
    CGContextSetRGBFillColor(inner, 0, 0, 1, 1);
    CGContextFillRect(inner, CGRectMake(0, 0, 20, 20));
    CGContextClearRect(inner, CGRectMake(5, 5, 10, 10));
    CGContextSetAlpha(bitmap, 0.5);
    CGContextDrawLayerAtPoint(bitmap, {0, 0}, layer);
    EXPECT_EQ(bitmap.At(10, 10), kRed);
    EXPECT_NEAR_PIXEL(bitmap.At(1, 1), (Pixel{127, 0, 128, 255}), 2);
}

TEST(CGLayer, LayersInLayers_ReplaysDoNotMultiply) {
    std::vector<Owned<CGLayerRef>> layers;
    for (int i = 0; i < 60; ++i) {
        layers.push_back(CGLayerCreateWithContext(nullptr, {20, 20}, nullptr));
        CGContextRef inner = CGLayerGetContext(layers.back());
        if (i == 0) {
            CGContextSetRGBFillColor(inner, 0, 0, 1, 1);
            CGContextFillRect(inner, CGRectMake(0, 0, 10, 20));
        } else {
            for (int k = 0; k < 2; ++k) CGContextDrawLayerAtPoint(inner, {0, 0}, layers[layers.size() - 2]);
        }
    }
    Bitmap bitmap(20, 20);
    CGContextDrawLayerAtPoint(bitmap, {0, 0}, layers.back());  // 2^59 operations if each were replayed
    EXPECT_NEAR_PIXEL(bitmap.At(5, 10), kBlue, 1);
    EXPECT_EQ(bitmap.At(15, 10), kClear);
}

TEST(CGLayer, IntoItself_DrawsNothing) {
    Owned<CGLayerRef> layer = CGLayerCreateWithContext(nullptr, {20, 20}, nullptr);
    CGContextFillRect(CGLayerGetContext(layer), CGRectMake(0, 0, 5, 5));
    CGContextDrawLayerAtPoint(CGLayerGetContext(layer), {10, 10}, layer);
    Bitmap bitmap(20, 20);
    CGContextDrawLayerAtPoint(bitmap, {0, 0}, layer);
    EXPECT_EQ(bitmap.Count(0), 25);
}

TEST(CGLayer, Create_AbsurdSizes_AreNull) {
    for (double side : {0.0, -1.0, 1e7, std::nan(""), HUGE_VAL}) {
        EXPECT_EQ(CGLayerCreateWithContext(nullptr, {side, 10}, nullptr), nullptr) << side;
        EXPECT_EQ(CGLayerCreateWithContext(nullptr, {10, side}, nullptr), nullptr) << side;
    }
    Owned<CGLayerRef> large = CGLayerCreateWithContext(nullptr, {1e6, 1e6}, nullptr);
    CGContextFillRect(CGLayerGetContext(large), CGRectMake(0, 0, 1e6, 1e6));
    Bitmap bitmap(10, 10);
    for (int i = 0; i < 3; ++i) CGContextDrawLayerAtPoint(bitmap, {-10, -10}, large);
    CGContextDrawLayerInRect(bitmap, CGRectMake(0, 0, 10, 10), large);
    EXPECT_EQ(bitmap.Count(), 100);
    EXPECT_EQ(CGLayerGetContext(nullptr), nullptr);
    EXPECT_EQ(CGLayerGetSize(nullptr).width, 0);
}

TEST(CGLayer, Context_CanOutliveTheLayer) {
    CGLayerRef layer = CGLayerCreateWithContext(nullptr, {20, 20}, nullptr);
    Owned<CGContextRef> context = CGContextRetain(CGLayerGetContext(layer));
    CGLayerRelease(layer);
    CGContextFillRect(context, CGRectMake(0, 0, 5, 5));
    EXPECT_EQ(CFGetRetainCount(context), 1);
}

TEST(CGDataProvider, CreateWithData_TheCopyFails_TheDataAreReleasedAllTheSame) {
    static int sReleases;
    sReleases = 0;
    auto release = [](void*, const void*, size_t) { ++sReleases; };
    const char bytes[] = "abc";
    EXPECT_EQ(CGDataProviderCreateWithData(nullptr, bytes, ~size_t{0}, release), nullptr);
    EXPECT_EQ(sReleases, 1);
    Owned<CGDataProviderRef> provider = CGDataProviderCreateWithData(nullptr, bytes, 3, release);
    EXPECT_EQ(sReleases, 2);
    Owned<CFDataRef> copy = CGDataProviderCopyData(provider);
    EXPECT_EQ(BytesOf(copy), "abc");
}
