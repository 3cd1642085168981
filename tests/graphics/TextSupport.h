// What the tests of text drawing share: fonts, ink on a bitmap, the SVG of a device as pixels.
#ifndef ZR_TESTS_TEXTSUPPORT_H
#define ZR_TESTS_TEXTSUPPORT_H

#include <algorithm>
#include <memory>
#include <vector>

#include "graphics/ZR_API_Font.h"
#include "platform/SVG/SVGPicture.h"
#include "tests/graphics/DrawingSupport.h"

inline constexpr float kArialAscent = 1854.0f / 2048, kArialDescent = 434.0f / 2048, kArialGap = 67.0f / 2048;

struct TestFont {
    explicit TestFont(float size = 12, short style = 0, const char* name = "Arial") { font.Create(size, style, name); }
    ~TestFont() { font.Dispose(); }
    TestFont(const TestFont&) = delete;
    operator ZR_Font*() { return &font; }
    ZR_Font* operator->() { return &font; }
    float Width(const char* text) {
        TestText units(text);
        return font.GetTextWidth(units);
    }
    ZR_Font font;
};

struct TestLines {
    TestLines() { array.Create(); }
    ~TestLines() { array.Dispose(); }
    TestLines(const TestLines&) = delete;
    operator ZR_TextArray*() { return &array; }
    std::vector<std::u16string> All() const {
        std::vector<std::u16string> all;
        for (long i = 1; i <= array.count; ++i) {
            const ZR_Text* text = array.GetTextPtr(i);
            all.emplace_back(reinterpret_cast<const char16_t*>(text->Units()), static_cast<size_t>(text->count));
        }
        return all;
    }
    ZR_TextArray array;
};

// The pixels that are covered; y down, inclusive
struct Ink {
    long left = 1L << 30, top = 1L << 30, right = -1, bottom = -1, count = 0;
    bool Empty() const { return count == 0; }
    void Take(long x, long y) {
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
        ++count;
    }
};

inline Ink InkOf(BitmapCanvas& canvas, int alpha = 100) {
    Ink ink;
    std::string pixels = canvas.Pixels();
    for (long i = 0; i < canvas.width * canvas.height; ++i)
        if (static_cast<unsigned char>(pixels[static_cast<size_t>(i * 4 + 3)]) > alpha)
            ink.Take(i % canvas.width, i / canvas.width);
    return ink;
}

// The document of an SVG device as a reader of SVG draws it, a pixel a point.
inline Ink InkOf(SvgCanvas& canvas, int alpha = 100) {
    Ink ink;
    std::string text = canvas.Text();
    CGImageRef image = ZRSVGCreateImage(text.data(), static_cast<long>(text.size()), 1);
    CFDataRef data = CGDataProviderCopyData(CGImageGetDataProvider(image));
    auto width = static_cast<long>(CGImageGetWidth(image));
    for (long i = 0; i < CFDataGetLength(data) / 4; ++i)
        if (CFDataGetBytePtr(data)[i * 4 + 3] > alpha) ink.Take(i % width, i / width);
    CFRelease(data);
    CGImageRelease(image);
    return ink;
}

#endif
