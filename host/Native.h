// Pictures as the system's native objects and as pixels. What makes them lies in the module's library; it is found in
// the process when a picture is first decoded, and opens its own objects then.
#ifndef ZRHOST_NATIVE_H
#define ZRHOST_NATIVE_H

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/Pictures.h"

namespace zrhost {

void* NativeImage(const Picture& picture);     // a CGImageRef of the caller's; null = cannot
void* NativeDocument(const Picture& picture);  // a CGPDFDocumentRef of the caller's; null = cannot

// Pixels, of PDF points, of SVG user units; 0, 0 = no representation tells it.
std::pair<int, int> NativeSize(const Picture& picture);

// R,G,B,A, not premultiplied, rows from the top.
struct Pixels {
    int width = 0, height = 0;
    double dpiX = 0, dpiY = 0;  // 0 = not told
    std::vector<uint8_t> rgba;

    Pixels() = default;
    Pixels(int w, int h) : width(w), height(h), rgba(size_t(w) * size_t(h) * 4) {}  // clear
    uint8_t* at(int x, int y) { return rgba.data() + (size_t(y) * size_t(width) + size_t(x)) * 4; }
    const uint8_t* at(int x, int y) const { return rgba.data() + (size_t(y) * size_t(width) + size_t(x)) * 4; }
};
inline constexpr int64_t kMostPixels = int64_t(1) << 26;  // of a picture that is made here

std::optional<Pixels> DecodePicture(const Picture& picture);  // its first representation that can be; nothing = none
bool CanEncode(const PictureKind& kind);
// Empty = cannot. quality: 0..1, of JPEG.
std::vector<uint8_t> EncodePicture(const Pixels& pixels, const PictureKind& kind, double quality);

}  // namespace zrhost

#endif
