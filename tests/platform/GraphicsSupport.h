// What the tests of the drawing stand-ins share: owned references, a bitmap whose pixels can be read, encoded bytes.
#ifndef ZR_TESTS_GRAPHICSSUPPORT_H
#define ZR_TESTS_GRAPHICSSUPPORT_H

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/ImageIO/ImageIO.h"

struct ReleaseObject {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

// A reference that is given back at the end of the test.
template <class Ref>
struct Owned {
    Owned(Ref r = nullptr) : ref(r) {}
    Owned(Owned&& other) noexcept : ref(std::exchange(other.ref, nullptr)) {}
    Owned& operator=(Owned other) {
        std::swap(ref, other.ref);
        return *this;
    }
    ~Owned() { CFRelease(ref); }
    operator Ref() const { return ref; }
    Ref get() const { return ref; }
    Ref ref;
};

struct Pixel {
    int r, g, b, a;  // premultiplied
    bool operator==(const Pixel&) const = default;
};
inline void PrintTo(const Pixel& p, std::ostream* out) {
    *out << '(' << p.r << ' ' << p.g << ' ' << p.b << ' ' << p.a << ')';
}
inline constexpr Pixel kClear = {0, 0, 0, 0}, kBlack = {0, 0, 0, 255}, kWhite = {255, 255, 255, 255},
                       kRed = {255, 0, 0, 255}, kGreen = {0, 255, 0, 255}, kBlue = {0, 0, 255, 255};

// A bitmap of points = pixels, clear, fill and stroke red. At(x, y): y up, the pixel whose lower left corner that is.
struct Bitmap {
    Bitmap(int w, int h) : width(w), height(h), bytes(static_cast<size_t>(w * h * 4)) {
        Owned<CGColorSpaceRef> space = CGColorSpaceCreateDeviceRGB();
        context.ref = CGBitmapContextCreate(bytes.data(), static_cast<size_t>(w), static_cast<size_t>(h), 8,
                                            static_cast<size_t>(w * 4), space, kCGImageAlphaPremultipliedLast);
        CGContextSetRGBFillColor(context, 1, 0, 0, 1);
        CGContextSetRGBStrokeColor(context, 1, 0, 0, 1);
    }
    Pixel At(int x, int y) {
        CGContextFlush(context);
        if (x < 0 || y < 0 || x >= width || y >= height) return {-1, -1, -1, -1};
        const uint8_t* p = bytes.data() + ((height - 1 - y) * width + x) * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    // Pixels whose alpha is above the given one
    int Count(int alpha = 127) {
        CGContextFlush(context);
        int n = 0;
        for (size_t i = 3; i < bytes.size(); i += 4) n += bytes[i] > alpha;
        return n;
    }
    std::vector<uint8_t> Pixels() {
        CGContextFlush(context);
        return bytes;
    }
    operator CGContextRef() const { return context; }
    const int width, height;
    std::vector<uint8_t> bytes;
    Owned<CGContextRef> context;
};

inline bool Near(const Pixel& p, const Pixel& q, int tolerance) {
    return std::abs(p.r - q.r) <= tolerance && std::abs(p.g - q.g) <= tolerance && std::abs(p.b - q.b) <= tolerance &&
           std::abs(p.a - q.a) <= tolerance;
}
#define EXPECT_NEAR_PIXEL(p, q, tolerance) EXPECT_PRED3(Near, p, q, tolerance)

inline Owned<CFStringRef> Text(const char* text) {
    return CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8);
}

inline std::string BytesOf(CFDataRef data) {
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)), static_cast<size_t>(CFDataGetLength(data))};
}

inline Owned<CFDataRef> Data(const std::string& bytes) {
    return CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()));
}

inline Owned<CFURLRef> FileURL(const std::string& path) {
    return CFURLCreateWithFileSystemPath(nullptr, Text(path.c_str()), kCFURLPOSIXPathStyle, false);
}

inline Owned<CFNumberRef> Number(double value) { return CFNumberCreate(nullptr, kCFNumberDoubleType, &value); }

struct EncodeOptions {
    double dpiX = 0, dpiY = 0, quality = -1;
    CFTypeRef background = nullptr;
};

inline Owned<CFMutableDictionaryRef> Properties(const EncodeOptions& options) {
    Owned<CFMutableDictionaryRef> properties =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    if (options.dpiX > 0) CFDictionarySetValue(properties, kCGImagePropertyDPIWidth, Number(options.dpiX));
    if (options.dpiY > 0) CFDictionarySetValue(properties, kCGImagePropertyDPIHeight, Number(options.dpiY));
    if (options.quality >= 0)
        CFDictionarySetValue(properties, kCGImageDestinationLossyCompressionQuality, Number(options.quality));
    if (options.background) CFDictionarySetValue(properties, kCGImageDestinationBackgroundColor, options.background);
    return properties;
}

inline std::string Encode(const std::vector<CGImageRef>& images, CFStringRef type, const EncodeOptions& options = {}) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    Owned<CGImageDestinationRef> destination = CGImageDestinationCreateWithData(data, type, images.size(), nullptr);
    for (CGImageRef image : images) CGImageDestinationAddImage(destination, image, Properties(options));
    if (!CGImageDestinationFinalize(destination)) return "";
    return BytesOf(data);
}

inline Owned<CGImageRef> Decode(const std::string& bytes, size_t index = 0) {
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
    return CGImageSourceCreateImageAtIndex(source, index, nullptr);
}

// R,G,B,A as the image keeps them
inline std::vector<uint8_t> PixelsOf(CGImageRef image) {
    Owned<CFDataRef> data = CGDataProviderCopyData(CGImageGetDataProvider(image));
    const UInt8* bytes = CFDataGetBytePtr(data);
    return {bytes, bytes + CFDataGetLength(data)};
}

inline double PropertyOf(const std::string& bytes, CFStringRef key, size_t index = 0) {
    Owned<CGImageSourceRef> source = CGImageSourceCreateWithData(Data(bytes), nullptr);
    Owned<CFDictionaryRef> properties = CGImageSourceCopyPropertiesAtIndex(source, index, nullptr);
    double value = -1;
    CFNumberGetValue(static_cast<CFNumberRef>(CFDictionaryGetValue(properties, key)), kCFNumberDoubleType, &value);
    return value;
}

// A picture of a drawing
inline Owned<CGImageRef> Picture(int w, int h, const std::function<void(CGContextRef)>& draw) {
    Bitmap bitmap(w, h);
    draw(bitmap);
    return CGBitmapContextCreateImage(bitmap);
}

#endif
