#include "platform/SVG/SVGPicture.h"

#include <algorithm>
#include <cmath>

#include "platform/CoreGraphics/CoreGraphics_Private.h"
#include "platform/SVG/SVGTextArea.h"
#include "platform/svg_object/SVGTable.h"

static constexpr double kMostPixels = 1L << 26;
static constexpr double kLargestPage = 14400;  // points, the most that readers of PDF take

static const ZRSTable* SVG() { return static_cast<const ZRSTable*>(ZRSharedObjectGetTable(kZRObjectSVG)); }
static const uint8_t* U8(const char* bytes) { return reinterpret_cast<const uint8_t*>(bytes); }

// Guard: the renderer copies the list of fonts into every element below it, and ends the process when memory ends.
static bool IsTooHeavy(std::string_view document) {
    static constexpr std::string_view kInherited = "font-family";
    static constexpr size_t kShort = 1024, kMostCopied = 1UL << 26;
    size_t longest = 0;
    for (size_t at = 0; (at = document.find(kInherited, at)) != document.npos; at += kInherited.size()) {
        size_t value = at + kInherited.size();
        if (const size_t quote = document.find_first_not_of(" \t\r\n=:", value); quote != document.npos) value = quote;
        const char mark = value < document.size() ? document[value] : 0;
        const bool quoted = mark == '"' || mark == '\'';
        const size_t end = quoted ? document.find(mark, value + 1) : document.find_first_of(";<>\"}", value);
        longest = std::max(longest, std::min(end, document.size()) - value);
    }
    if (longest <= kShort) return false;
    const auto elements = static_cast<size_t>(std::count(document.begin(), document.end(), '<'));
    return longest > kMostCopied / std::max<size_t>(elements, 1);
}

// Turbulence of very many octaves takes very long, and those beyond the first sixteen cannot be seen: larger numbers
// become 16, in the room that they have.
static void BoundOctaves(std::string* document) {
    static constexpr std::string_view kName = "numOctaves", kSpaces = " \t\r\n", kDigits = "0123456789";
    for (size_t at = 0; (at = document->find(kName, at)) != std::string::npos;) {
        at = document->find_first_not_of(kSpaces, at + kName.size());
        if (at == std::string::npos || (*document)[at] != '=') continue;
        at = document->find_first_not_of(kSpaces, at + 1);
        if (at == std::string::npos || ((*document)[at] != '"' && (*document)[at] != '\'')) continue;
        at = document->find_first_not_of(" \t\r\n+0", at + 1);
        if (at == std::string::npos) continue;
        size_t end = std::min(document->find_first_not_of(kDigits, at), document->size());
        bool large = end - at > 2 || (end - at == 2 && document->compare(at, 2, "16") > 0);
        if (large) document->replace(at, end - at, "16" + std::string(end - at - 2, ' '));
    }
}

// The picture as it is painted: with its text areas as lines. kept holds it if it had to be made.
static std::string_view Painted(const char* bytes, long n, std::string* kept) {
    std::string_view document(bytes, static_cast<size_t>(n));
    try {
        bool made = ZRSVGReplaceTextAreas(document, kept);
        if (document.find("feTurbulence") != std::string_view::npos) {
            if (!made) kept->assign(document);
            BoundOctaves(kept);
            made = true;
        }
        if (made) return *kept;
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
    if (IsTooHeavy({bytes, static_cast<size_t>(n)})) return nullptr;
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
    if (IsTooHeavy({bytes, static_cast<size_t>(n)})) return nullptr;
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
