#include "tests/agreement/Pictures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "core/ZR_API_Handle.h"
#include "graphics/ZR_API_Device.h"
#include "host/Host.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/ImageIO/ImageIO.h"
#include "platform/SVG/SVGPicture.h"
#include "plugin/ZR_API_Plugin.h"

namespace agreement {

void StartHost() {
    struct Machine {
        std::unique_ptr<zrhost::Host> host = zrhost::Host::Start({});
        Machine() {
            ZR_StartupRecord record = host->startupRecord();
            FourDPackex(-1, &record, nullptr, nullptr);
        }
        ~Machine() { FourDPackex(-2, nullptr, nullptr, nullptr); }
    };
    static Machine machine;
}

Image DrawPixels(const Draw& draw, int scale) {
    StartHost();
    ZR_Device device;
    if (!device.CreateOffscreen(kWidth, kHeight, /*bitmap*/ true, 72 * scale, 72 * scale)) return {};
    device.BeginDraw();
    draw(&device);
    device.EndDraw();
    device.Flush();
    Image image{static_cast<int>(kWidth) * scale, static_cast<int>(kHeight) * scale, {}};
    image.pixels.assign(device.bitmapData, device.bitmapData + image.width * image.height * 4);
    device.Dispose();
    return image;
}

std::string DrawDocument(const Draw& draw) {
    StartHost();
    ZR_Rect bounds = {0, 0, kWidth, kHeight};
    bounds.top = bounds.left = 0;
    bounds.right = kWidth;
    bounds.bottom = kHeight;
    ZR_Device device;
    device.CreateSVG(&bounds);
    device.BeginDraw();
    draw(&device);
    device.EndDraw();
    ZR_Handle bytes;
    bytes.Create(1, 0);
    device.GetSVGBLOB(&bytes);
    std::string svg(bytes.data ? bytes.data : "", static_cast<size_t>(bytes.count));
    bytes.Dispose();
    device.Dispose();
    return svg;
}

// The pixels of an image as they come out on a clear bitmap of its size.
static Image ImageOf(CGImageRef source) {
    Image image{static_cast<int>(CGImageGetWidth(source)), static_cast<int>(CGImageGetHeight(source)), {}};
    image.pixels.resize(static_cast<size_t>(image.width * image.height * 4));
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(image.pixels.data(), static_cast<size_t>(image.width), static_cast<size_t>(image.height),
                              8, static_cast<size_t>(image.width * 4), space, kCGImageAlphaPremultipliedLast);
    CGContextDrawImage(context, CGRectMake(0, 0, image.width, image.height), source);
    CGContextFlush(context);
    CFRelease(context);
    CFRelease(space);
    return image;
}

Image RenderDocument(const std::string& svg, int scale) {
    CGImageRef rendered = ZRSVGCreateImage(svg.data(), static_cast<long>(svg.size()), scale);
    if (!rendered) return {};
    Image image = ImageOf(rendered);
    CFRelease(rendered);
    return image;
}

Extent ExtentOf(const Image& image) {
    int left = image.width, top = image.height, right = -1, bottom = -1;
    for (int y = 0; y < image.height; y++)
        for (int x = 0; x < image.width; x++) {
            if (image.at(x, y)[3] < 64) continue;
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        }
    if (right < 0) return {};
    return {double(left) / kScale, double(top) / kScale, double(right + 1) / kScale, double(bottom + 1) / kScale};
}

namespace {

struct Span {  // of a 3 x 3 neighbourhood, by channel
    std::array<int, 4> low{255, 255, 255, 255}, high{};

    Span(const Image& image, int x, int y) {
        for (int v = std::max(0, y - 1); v <= std::min(image.height - 1, y + 1); v++)
            for (int u = std::max(0, x - 1); u <= std::min(image.width - 1, x + 1); u++)
                for (size_t c = 0; c < 4; c++) {
                    low[c] = std::min<int>(low[c], image.at(u, v)[c]);
                    high[c] = std::max<int>(high[c], image.at(u, v)[c]);
                }
    }
    bool smooth() const {
        static constexpr int kSteepest = 16;
        for (size_t c = 0; c < 4; c++)
            if (high[c] - low[c] > kSteepest) return false;
        return true;
    }
    bool holds(const uint8_t* pixel) const {
        for (size_t c = 0; c < 4; c++)
            if (pixel[c] < low[c] - kEdgeTolerance || pixel[c] > high[c] + kEdgeTolerance) return false;
        return true;
    }
};

int Difference(const uint8_t* a, const uint8_t* b) {
    int most = 0;
    for (int c = 0; c < 4; c++) most = std::max(most, std::abs(a[c] - b[c]));
    return most;
}

}  // namespace

bool Comparison::agrees(int tolerance) const { return interior <= tolerance && beyond == 0; }

std::string Comparison::text() const {
    char line[120];
    snprintf(line, sizeof line, "interior %d, largest %d, %.2f %% of the pixels, %d edge pixels beyond", interior,
             largest, share * 100, beyond);
    return line;
}

Comparison Compare(const Image& pixels, const Image& document) {
    Comparison result;
    if (pixels.width != document.width || pixels.height != document.height || pixels.empty())
        return {255, 255, 1 << 30, 1};
    long differing = 0;
    for (int y = 0; y < pixels.height; y++)
        for (int x = 0; x < pixels.width; x++) {
            int difference = Difference(pixels.at(x, y), document.at(x, y));
            if (!difference) continue;
            result.largest = std::max(result.largest, difference);
            if (difference <= kTolerance) {
                result.interior = std::max(result.interior, difference);
                continue;
            }
            differing++;
            Span here(pixels, x, y), there(document, x, y);
            if (here.smooth() && there.smooth()) result.interior = std::max(result.interior, difference);
            else if (!here.holds(document.at(x, y)) || !there.holds(pixels.at(x, y))) result.beyond++;
        }
    result.share = double(differing) / (double(pixels.width) * pixels.height);
    return result;
}

Comparison CompareBoth(const Draw& draw) { return Compare(DrawPixels(draw), RenderDocument(DrawDocument(draw))); }

CGImageRef CreateImage(const Image& image) {
    std::vector<uint8_t> bytes = image.pixels;
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(bytes.data(), static_cast<size_t>(image.width), static_cast<size_t>(image.height), 8,
                              static_cast<size_t>(image.width * 4), space, kCGImageAlphaPremultipliedLast);
    CGImageRef picture = CGBitmapContextCreateImage(context);
    CFRelease(context);
    CFRelease(space);
    return picture;
}

std::vector<uint8_t> PngOf(const Image& image) {
    CGImageRef picture = CreateImage(image);
    CFMutableDataRef data = CFDataCreateMutable(nullptr, 0);
    CGImageDestinationRef destination = CGImageDestinationCreateWithData(data, kUTTypePNG, 1, nullptr);
    CGImageDestinationAddImage(destination, picture, nullptr);
    std::vector<uint8_t> png;
    if (CGImageDestinationFinalize(destination))
        png.assign(CFDataGetBytePtr(data), CFDataGetBytePtr(data) + CFDataGetLength(data));
    CFRelease(destination);
    CFRelease(data);
    CFRelease(picture);
    return png;
}

Image ReadPng(const std::string& path) {
    CFStringRef text = CFStringCreateWithCString(nullptr, path.c_str(), kCFStringEncodingUTF8);
    CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
    CGImageSourceRef source = CGImageSourceCreateWithURL(url, nullptr);
    CGImageRef picture = source ? CGImageSourceCreateImageAtIndex(source, 0, nullptr) : nullptr;
    Image image = picture ? ImageOf(picture) : Image{};
    CFRelease(picture);
    CFRelease(source);
    CFRelease(url);
    CFRelease(text);
    return image;
}

}  // namespace agreement
