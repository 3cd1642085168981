#include "platform/SVG/SVGPicture.h"

#include <cmath>

#include "platform/CoreGraphics/CoreGraphics_Private.h"
#include "platform/SVG/SVGTextArea.h"
#include "platform/svg_object/SVGTable.h"

static constexpr double kMostPixels = 1L << 26;
static constexpr double kLargestPage = 14400;  // points, the most that readers of PDF take

static const ZRSTable* SVG() { return static_cast<const ZRSTable*>(ZRSharedObjectGetTable(kZRObjectSVG)); }
static const uint8_t* U8(const char* bytes) { return reinterpret_cast<const uint8_t*>(bytes); }

// The picture as it is painted: with its text areas as lines. kept holds it if it had to be made.
static std::string_view Painted(const char* bytes, long n, std::string* kept) {
    std::string_view document(bytes, static_cast<size_t>(n));
    try {
        if (ZRSVGReplaceTextAreas(document, kept)) return *kept;
    } catch (const std::bad_alloc&) {}
    return document;
}

bool ZRSVGGetSize(const char* bytes, long n, double* width, double* height) {
    const ZRSTable* table = bytes && n > 0 && width && height ? SVG() : nullptr;
    return table && table->getSize(U8(bytes), static_cast<size_t>(n), width, height);
}

CGImageRef ZRSVGCreateImage(const char* bytes, long n, double scale) {
    double width, height;
    if (!(scale > 0) || !ZRSVGGetSize(bytes, n, &width, &height)) return nullptr;
    double w = std::ceil(width * scale), h = std::ceil(height * scale);
    if (!(w >= 1 && h >= 1 && w <= kZRGMaximumSide && h <= kZRGMaximumSide && w * h <= kMostPixels)) return nullptr;
    auto pw = static_cast<long>(w), ph = static_cast<long>(h);
    Pixels pixels = AllocatePixels(pw, ph);
    std::string kept;
    std::string_view painted = Painted(bytes, n, &kept);
    if (!pixels || !SVG()->paint(U8(painted.data()), painted.size(), pw, ph, pixels.get())) return nullptr;
    return CFGuarded([&] { return new CGImage(pw, ph, kZRGPremultiplied, std::move(pixels)); });
}

static bool Append(void* data, const void* bytes, size_t n) {
    auto target = static_cast<CFMutableDataRef>(data);
    CFIndex wanted = CFDataGetLength(target) + static_cast<CFIndex>(n);
    CFDataAppendBytes(target, static_cast<const UInt8*>(bytes), static_cast<CFIndex>(n));
    return CFDataGetLength(target) == wanted;
}

CGPDFDocumentRef ZRSVGCreateDocument(const char* bytes, long n) {
    double width, height;
    if (!ZRSVGGetSize(bytes, n, &width, &height) || width > kLargestPage || height > kLargestPage) return nullptr;
    CFMutableDataRef data = CFDataCreateMutable(nullptr, 0);
    CGDataProviderRef provider = nullptr;
    std::string kept;
    std::string_view painted = Painted(bytes, n, &kept);
    if (SVG()->writePDF(U8(painted.data()), painted.size(), width, height, Append, data))
        provider = CGDataProviderCreateWithCFData(data);
    CGPDFDocumentRef document = CGPDFDocumentCreateWithProvider(provider);
    CGDataProviderRelease(provider);
    CFRelease(data);
    return document;
}
