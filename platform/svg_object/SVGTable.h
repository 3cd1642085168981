// The seam between the stand-ins in libzr and libzr-svg.so, which paints SVG pictures. No file outside of the picture
// is read. No exception leaves a function.
#ifndef ZR_PLATFORM_SVGTABLE_H
#define ZR_PLATFORM_SVGTABLE_H

#include <cstddef>
#include <cstdint>

inline constexpr int kZRSVersion = 1;

typedef bool (*ZRSWrite)(void* info, const void* bytes, size_t n);  // false = stop

struct ZRSTable {
    int version;
    // The picture's own size in points; false = no SVG
    bool (*getSize)(const uint8_t* bytes, size_t n, double* width, double* height);
    // width * height pixels, premultiplied R,G,B,A, width * 4 bytes a row; false = no SVG
    bool (*paint)(const uint8_t* bytes, size_t n, long width, long height, uint8_t* rgba);
    bool (*writePDF)(const uint8_t* bytes, size_t n, double width, double height, ZRSWrite write, void* info);
};

extern "C" const void* ZRSVGGetTable();  // the table

#endif
