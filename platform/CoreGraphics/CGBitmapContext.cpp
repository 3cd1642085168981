// Bitmap contexts, layers and images.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

static constexpr double kLongestSide = 1e6;  // points of a layer

// Bitmap contexts --------------------------------------------------------------------------------------------------

namespace {
struct BitmapContext : CGContext {
    BitmapContext(const ZRGTable* functions, ZRGCanvas* c, long w, long h)
        : CGContext(functions, c), width(w), height(h) {
        SetBase({1, 0, 0, -1, 0, static_cast<double>(h)});
    }
    ~BitmapContext() override { BitmapContext::Flush(); }
    void Flush() override {
        if (data) table->readPixels(canvas, data, rowBytes);
    }
    const long width, height;
    uint8_t* data = nullptr;  // the caller's memory or own
    long rowBytes = 0;
    std::vector<uint8_t> own;
};
}  // namespace

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent, size_t rowBytes,
                                   CGColorSpaceRef space, uint32_t bitmapInfo) {
    const ZRGTable* table = Graphics();
    if (!table || !space || space->components != 3 || bitsPerComponent != 8) return nullptr;
    if (bitmapInfo != kCGImageAlphaPremultipliedLast) return nullptr;
    constexpr auto kMost = static_cast<size_t>(kZRGMaximumSide);
    if (width < 1 || height < 1 || width > kMost || height > kMost) return nullptr;
    if (!data && rowBytes == 0) rowBytes = width * 4;
    if (rowBytes < width * 4 || rowBytes > kMost * 64) return nullptr;
    return CFGuarded([&]() -> CGContextRef {
        long w = static_cast<long>(width), h = static_cast<long>(height);
        ZRGCanvas* canvas = table->createBitmap(w, h);
        if (!canvas) return nullptr;
        auto context = std::make_unique<BitmapContext>(table, canvas, w, h);
        context->rowBytes = static_cast<long>(rowBytes);
        if (data) {
            context->data = static_cast<uint8_t*>(data);
            table->writePixels(canvas, context->data, context->rowBytes);
        }
        return context.release();
    });
}

static BitmapContext* Bitmap(CGContextRef context) { return dynamic_cast<BitmapContext*>(context); }

void* CGBitmapContextGetData(CGContextRef context) {
    BitmapContext* bitmap = Bitmap(context);
    if (!bitmap) return nullptr;
    CFGuarded([&]() -> void* {
        if (bitmap->data) return nullptr;
        bitmap->own.resize(static_cast<size_t>(bitmap->rowBytes * bitmap->height));
        bitmap->data = bitmap->own.data();
        bitmap->Flush();
        return nullptr;
    });
    return bitmap->data;
}

size_t CGBitmapContextGetWidth(CGContextRef context) {
    BitmapContext* bitmap = Bitmap(context);
    return bitmap ? static_cast<size_t>(bitmap->width) : 0;
}

size_t CGBitmapContextGetHeight(CGContextRef context) {
    BitmapContext* bitmap = Bitmap(context);
    return bitmap ? static_cast<size_t>(bitmap->height) : 0;
}

size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
    BitmapContext* bitmap = Bitmap(context);
    return bitmap ? static_cast<size_t>(bitmap->rowBytes) : 0;
}

CGImageRef CGBitmapContextCreateImage(CGContextRef context) {
    BitmapContext* bitmap = Bitmap(context);
    Pixels pixels = bitmap ? AllocatePixels(bitmap->width, bitmap->height) : nullptr;
    if (!pixels) return nullptr;
    bitmap->table->readPixels(bitmap->canvas, pixels.get(), bitmap->width * 4);
    return CFGuarded([&] { return new CGImage(bitmap->width, bitmap->height, kZRGPremultiplied, std::move(pixels)); });
}

// Layers -----------------------------------------------------------------------------------------------------------

CGLayerRef CGLayerCreateWithContext(CGContextRef, CGSize size, CFDictionaryRef) {
    const ZRGTable* table = Graphics();
    bool fits = size.width > 0 && size.height > 0 && size.width <= kLongestSide && size.height <= kLongestSide;
    ZRGCanvas* canvas = table && fits ? table->createLayer(size.width, size.height) : nullptr;
    if (!canvas) return nullptr;
    return CFGuarded([&] {
        auto context = std::make_unique<CGContext>(table, canvas);
        context->SetBase({1, 0, 0, -1, 0, size.height});
        auto layer = new CGLayer(context.get(), size);
        context.release();
        return layer;
    });
}

CGContextRef CGLayerGetContext(CGLayerRef layer) { return layer ? layer->context : nullptr; }
CGSize CGLayerGetSize(CGLayerRef layer) { return layer ? layer->size : CGSizeZero; }

// Images -----------------------------------------------------------------------------------------------------------

void FreePixels::operator()(uint8_t* pixels) const { free(pixels); }

Pixels AllocatePixels(long width, long height) {
    return Pixels(static_cast<uint8_t*>(malloc(static_cast<size_t>(width) * static_cast<size_t>(height) * 4)));
}

CGImage::~CGImage() {
    CFRelease(encoded);
    CFRelease(provider);
}

// One pixel as the canvas takes it: premultiplied, B,G,R,A.
static void PutDrawn(const uint8_t* from, ZRGAlpha alpha, uint8_t* to) {
    unsigned a = alpha == kZRGOpaque ? 255 : from[3];
    auto times = [&](unsigned v) {
        if (alpha == kZRGPremultiplied) return static_cast<uint8_t>(std::min(v, a));
        unsigned product = v * a + 128;
        return static_cast<uint8_t>((product + (product >> 8)) >> 8);
    };
    to[0] = times(from[2]);
    to[1] = times(from[1]);
    to[2] = times(from[0]);
    to[3] = static_cast<uint8_t>(a);
}

// Sides beyond what a canvas takes are thinned out by a whole factor.
ZRGImage CGImage::View() const {
    std::call_once(once, [this] {
        long step = (std::max(width, height) + kZRGMaximumSide - 1) / kZRGMaximumSide;
        long w = (width + step - 1) / step, h = (height + step - 1) / step;
        drawn = AllocatePixels(w, h);
        if (!drawn) return;
        drawnWidth = w, drawnHeight = h;
        uint8_t* to = drawn.get();
        for (long y = 0; y < h; ++y)
            for (long x = 0; x < w; ++x, to += 4) PutDrawn(pixels.get() + (y * step * width + x * step) * 4, alpha, to);
    });
    ZRGImage view = {};
    view.width = drawnWidth;
    view.height = drawnHeight;
    view.pixels = drawn.get();
    view.rowBytes = drawnWidth * 4;
    view.opaque = alpha == kZRGOpaque;
    if (jpegPlain && encoded) {
        view.jpeg = CFDataGetBytePtr(encoded);
        view.jpegLength = CFDataGetLength(encoded);
    }
    view.owner = this;
    view.retain = [](const void* owner) { CFRetain(static_cast<const CGImage*>(owner)); };
    view.release = [](const void* owner) { CFRelease(static_cast<const CGImage*>(owner)); };
    return view;
}

CFTypeID CGImageGetTypeID() { return kCGTypeImage; }
size_t CGImageGetWidth(CGImageRef image) { return image ? static_cast<size_t>(image->width) : 0; }
size_t CGImageGetHeight(CGImageRef image) { return image ? static_cast<size_t>(image->height) : 0; }
size_t CGImageGetBytesPerRow(CGImageRef image) { return image ? static_cast<size_t>(image->width) * 4 : 0; }

CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image) {
    if (!image || image->alpha == kZRGOpaque) return kCGImageAlphaNone;
    return image->alpha == kZRGStraight ? kCGImageAlphaLast : kCGImageAlphaPremultipliedLast;
}

CGDataProviderRef CGImageGetDataProvider(CGImageRef image) {
    if (!image) return nullptr;
    std::call_once(image->providerOnce, [image] {
        CFDataRef bytes = CFDataCreate(nullptr, image->pixels.get(), image->width * image->height * 4);
        if (bytes) image->provider = CFGuarded([&] { return new CGDataProvider(bytes); });
    });
    return image->provider;
}
