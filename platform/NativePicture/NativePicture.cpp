#include "platform/NativePicture/NativePicture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <utility>

#include "platform/CoreGraphics/CoreGraphics_Private.h"
#include "platform/ImageIO/ImageIO.h"
#include "platform/SVG/SVGPicture.h"

struct ReleaseReference {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <class Ref>
using Held = std::unique_ptr<std::remove_pointer_t<Ref>, ReleaseReference>;

static bool IsBitmap(int format) { return format >= kZRNativeJPEG && format <= kZRNativeTIFF; }

static Held<CFDataRef> DataOf(const char* bytes, long n) {
    bool some = bytes && n > 0;
    return Held<CFDataRef>(some ? CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes), n) : nullptr);
}

// Reading ----------------------------------------------------------------------------------------------------------

static CGPDFDocumentRef OpenDocument(const char* bytes, long n) {
    Held<CFDataRef> data = DataOf(bytes, n);
    Held<CGDataProviderRef> provider(data ? CGDataProviderCreateWithCFData(data.get()) : nullptr);
    CGPDFDocumentRef document = CGPDFDocumentCreateWithProvider(provider.get());
    if (CGPDFDocumentGetNumberOfPages(document) >= 1) return document;
    CGPDFDocumentRelease(document);
    return nullptr;
}

// What turns a page of w x h upright, its lower left corner at the origin
static CGAffineTransform Upright(int rotation, double w, double h) {
    switch (rotation) {
        case 90: return {0, -1, 1, 0, 0, w};
        case 180: return {-1, 0, 0, -1, w, h};
        case 270: return {0, 1, -1, 0, h, 0};
        default: return CGAffineTransformIdentity;
    }
}

static CGImageRef PaintDocument(CGPDFDocumentRef document, double scale) {
    CGPDFPageRef page = CGPDFDocumentGetPage(document, 1);
    CGRect box = CGPDFPageGetBoxRect(page, kCGPDFCropBox);
    int rotation = CGPDFPageGetRotationAngle(page);
    double w = std::ceil(box.size.width * scale), h = std::ceil(box.size.height * scale);
    if (!(w >= 1 && h >= 1 && w * h <= kZRNativeMostPixels)) return nullptr;
    if (!ZRSharedObjectGetState(kZRObjectPDFPaint)->available) return nullptr;  // rather than a blank page
    if (rotation % 180 != 0) std::swap(w, h);
    Held<CGColorSpaceRef> space(CGColorSpaceCreateDeviceRGB());
    Held<CGContextRef> context(CGBitmapContextCreate(nullptr, static_cast<size_t>(w), static_cast<size_t>(h), 8, 0,
                                                     space.get(), kCGImageAlphaPremultipliedLast));
    CGContextScaleCTM(context.get(), scale, scale);
    CGContextConcatCTM(context.get(), Upright(rotation, box.size.width, box.size.height));
    CGContextTranslateCTM(context.get(), -box.origin.x, -box.origin.y);
    CGContextDrawPDFPage(context.get(), page);
    return CGBitmapContextCreateImage(context.get());
}

static void ReadNumber(CFDictionaryRef properties, CFStringRef key, double* out) {
    auto number = static_cast<CFNumberRef>(CFDictionaryGetValue(properties, key));
    if (number) CFNumberGetValue(number, kCFNumberDoubleType, out);
}

static CGImageRef DecodeBitmap(const char* bytes, long n, double* dpiX, double* dpiY) {
    Held<CFDataRef> data = DataOf(bytes, n);
    Held<CGImageSourceRef> source(data ? CGImageSourceCreateWithData(data.get(), nullptr) : nullptr);
    Held<CFDictionaryRef> properties(CGImageSourceCopyPropertiesAtIndex(source.get(), 0, nullptr));
    if (properties) {
        ReadNumber(properties.get(), kCGImagePropertyDPIWidth, dpiX);
        ReadNumber(properties.get(), kCGImagePropertyDPIHeight, dpiY);
    }
    return CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr);
}

static CGImageRef Image(const char* bytes, long n, int format, double scale, double* dpiX, double* dpiY) {
    *dpiX = *dpiY = 0;
    if (IsBitmap(format)) return DecodeBitmap(bytes, n, dpiX, dpiY);
    if (format == kZRNativeSVG) return ZRSVGCreateImage(bytes, n, scale);
    if (format != kZRNativePDF) return nullptr;
    Held<CGPDFDocumentRef> document(OpenDocument(bytes, n));
    return PaintDocument(document.get(), scale);
}

static void* CreateImage(const char* bytes, long n, int format) {
    double dpiX, dpiY;
    return Image(bytes, n, format, /*scale*/ 1, &dpiX, &dpiY);
}

// One page of the image's size in points.
static CGPDFDocumentRef PageOf(CGImageRef image, double dpiX, double dpiY) {
    if (!image) return nullptr;
    auto points = [](size_t pixels, double dpi) { return static_cast<double>(pixels) * 72 / (dpi > 0 ? dpi : 72); };
    CGRect box = CGRectMake(0, 0, points(CGImageGetWidth(image), dpiX), points(CGImageGetHeight(image), dpiY));
    Held<CFMutableDataRef> data(CFDataCreateMutable(nullptr, 0));
    Held<CGDataConsumerRef> consumer(CGDataConsumerCreateWithCFData(data.get()));
    Held<CGContextRef> context(CGPDFContextCreate(consumer.get(), &box, nullptr));
    CGPDFContextBeginPage(context.get(), nullptr);
    CGContextDrawImage(context.get(), box, image);
    CGPDFContextEndPage(context.get());
    CGPDFContextClose(context.get());
    return OpenDocument(reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())), CFDataGetLength(data.get()));
}

static void* CreateDocument(const char* bytes, long n, int format) {
    double dpiX = 0, dpiY = 0;
    if (format == kZRNativePDF) return OpenDocument(bytes, n);
    if (format == kZRNativeSVG) return ZRSVGCreateDocument(bytes, n);
    if (!IsBitmap(format)) return nullptr;
    Held<CGImageRef> image(DecodeBitmap(bytes, n, &dpiX, &dpiY));
    return PageOf(image.get(), dpiX, dpiY);
}

static bool GetSize(const char* bytes, long n, int format, double* width, double* height) {
    *width = *height = 0;
    if (format == kZRNativeSVG) return ZRSVGGetSize(bytes, n, width, height);
    if (format == kZRNativePDF) {
        Held<CGPDFDocumentRef> document(OpenDocument(bytes, n));
        CGRect box = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document.get(), 1), kCGPDFMediaBox);
        *width = box.size.width, *height = box.size.height;
    } else if (IsBitmap(format)) {
        Held<CFDataRef> data = DataOf(bytes, n);
        Held<CGImageSourceRef> source(data ? CGImageSourceCreateWithData(data.get(), nullptr) : nullptr);
        Held<CFDictionaryRef> properties(CGImageSourceCopyPropertiesAtIndex(source.get(), 0, nullptr));
        if (properties) ReadNumber(properties.get(), kCGImagePropertyPixelWidth, width);
        if (properties) ReadNumber(properties.get(), kCGImagePropertyPixelHeight, height);
    }
    return *width > 0 && *height > 0;
}

// Pixels -----------------------------------------------------------------------------------------------------------

static void PutStraight(const uint8_t* from, ZRGAlpha alpha, uint8_t* to) {
    unsigned a = alpha == kZRGOpaque ? 255 : from[3];
    for (int c = 0; c < 3; ++c) {
        bool plain = alpha != kZRGPremultiplied || a == 0;
        to[c] = plain ? from[c] : static_cast<uint8_t>(std::min(255U, (from[c] * 255U + a / 2) / a));
    }
    to[3] = static_cast<uint8_t>(a);
}

static bool DecodePixels(const char* bytes, long n, int format, double scale, ZRNativePixels* out) {
    *out = {};
    Held<CGImageRef> image(Image(bytes, n, format, scale, &out->dpiX, &out->dpiY));
    if (!image) return false;
    out->width = image->width;
    out->height = image->height;
    out->rgba = AllocatePixels(out->width, out->height).release();
    for (long i = 0; out->rgba && i < out->width * out->height; ++i)
        PutStraight(image->pixels.get() + i * 4, image->alpha, out->rgba + i * 4);
    return out->rgba != nullptr;
}

static void ReleasePixels(ZRNativePixels* pixels) {
    free(pixels->rgba);
    *pixels = {};
}

// Writing ----------------------------------------------------------------------------------------------------------

static CFMutableDictionaryRef PropertiesOf(const ZRNativePixels& pixels, double quality) {
    CFMutableDictionaryRef properties =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    auto put = [&](CFStringRef key, double value) {
        Held<CFNumberRef> number(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
        if (number) CFDictionarySetValue(properties, key, number.get());
    };
    put(kCGImageDestinationLossyCompressionQuality, quality);
    if (pixels.dpiX > 0 && pixels.dpiY > 0) {
        put(kCGImagePropertyDPIWidth, pixels.dpiX);
        put(kCGImagePropertyDPIHeight, pixels.dpiY);
    }
    return properties;
}

static bool EncodePixels(const ZRNativePixels* pixels, int format, double quality,
                         void (*take)(void* info, const void* bytes, long n), void* info) {
    static const CFStringRef types[] = {nullptr, kUTTypeJPEG, kUTTypePNG, kUTTypeBMP, kUTTypeGIF, kUTTypeTIFF};
    long w = pixels->width, h = pixels->height;
    if (!IsBitmap(format) || !pixels->rgba || w < 1 || h < 1 || w > kZRNativeMostPixels / h) return false;
    Pixels copy = AllocatePixels(w, h);
    if (!copy) return false;
    std::copy_n(pixels->rgba, w * h * 4, copy.get());
    Held<CGImageRef> image(CFGuarded([&] { return new CGImage(w, h, kZRGStraight, std::move(copy)); }));
    Held<CFMutableDataRef> data(CFDataCreateMutable(nullptr, 0));
    Held<CGImageDestinationRef> destination(CGImageDestinationCreateWithData(data.get(), types[format], 1, nullptr));
    Held<CFMutableDictionaryRef> properties(PropertiesOf(*pixels, quality));
    CGImageDestinationAddImage(destination.get(), image.get(), properties.get());
    if (!CGImageDestinationFinalize(destination.get())) return false;
    take(info, CFDataGetBytePtr(data.get()), CFDataGetLength(data.get()));
    return true;
}

// Objects ----------------------------------------------------------------------------------------------------------

static void EachMissing(int format, void (*take)(void* info, const char* object, const char* packages), void* info) {
    static constexpr struct {
        int format;
        ZRSharedObject object;
    } kNeeds[] = {{kZRNativePDF, kZRObjectPDF}, {kZRNativePDF, kZRObjectPDFPaint}, {kZRNativeSVG, kZRObjectSVG}};
    auto tell = [&](ZRSharedObject object) {
        const ZRSharedObjectState* state = ZRSharedObjectGetState(object);
        if (!state->available) take(info, state->file, state->packages);
    };
    tell(kZRObjectGraphics);
    for (const auto& row : kNeeds)
        if (row.format == format) tell(row.object);
}

extern "C" __attribute__((visibility("default"))) const ZRNativePictureTable* ZRNativePictureGetTable() {
    static constexpr ZRNativePictureTable table = {
        kZRNativePictureVersion, CreateImage,  CreateDocument, GetSize, DecodePixels,
        ReleasePixels,           EncodePixels, EachMissing};
    return &table;
}
