// A scene drawn twice, on pixels and as an SVG document that another renderer draws, and how far the two pictures are
// apart.
#ifndef ZR_TESTS_AGREEMENT_PICTURES_H
#define ZR_TESTS_AGREEMENT_PICTURES_H

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/CoreGraphics/CGTypes.h"

struct ZR_Device;

namespace agreement {

inline constexpr long kWidth = 96, kHeight = 72;  // points
inline constexpr int kScale = 2;                  // pixels a point

using Draw = std::function<void(ZR_Device*)>;

struct Image {  // premultiplied R,G,B,A, rows from the top
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    const uint8_t* at(int x, int y) const { return &pixels[static_cast<size_t>(y * width + x) * 4]; }
    bool empty() const { return pixels.empty(); }
};

struct Extent {  // of the pixels with an alpha above a quarter, in points; empty if right <= left
    double left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const Extent&) const = default;
};

// One host and module for the whole process, started on first use.
void StartHost();

Image DrawPixels(const Draw& draw, int scale = kScale);
std::string DrawDocument(const Draw& draw);
Image RenderDocument(const std::string& svg, int scale = kScale);  // by librsvg; empty = it refused
Extent ExtentOf(const Image& image);

// Interior pixels: those around which neither picture changes by more than a steep gradient does. The others are edges:
// there the antialiasing may differ, so a pixel counts as beyond only if it lies outside what its neighbours in the
// other picture span.
inline constexpr int kTolerance = 2;
inline constexpr int kEdgeTolerance = 16;  // both renderers flatten curves to within a tenth of a pixel

struct Comparison {
    int interior = 0;  // largest channel difference of interior pixels
    int largest = 0;   // of all pixels
    int beyond = 0;    // edge pixels beyond the other picture's neighbourhood
    double share = 0;  // of the pixels that differ by more than kTolerance

    bool agrees(int tolerance = kTolerance) const;  // of interior pixels
    std::string text() const;
};

Comparison Compare(const Image& pixels, const Image& document);
Comparison CompareBoth(const Draw& draw);

CGImageRef CreateImage(const Image& image);  // handed over
std::vector<uint8_t> PngOf(const Image& image);
Image ReadPng(const std::string& path);  // empty = unreadable

}  // namespace agreement

#endif
