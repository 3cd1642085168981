// The seam between the stand-ins in libzr and libzr-pdfpaint.so, which paints pages of PDF documents. The object stands
// alone: everything else works without it. A document belongs to one thread at a time.
#ifndef ZR_PLATFORM_PDFPAINTTABLE_H
#define ZR_PLATFORM_PDFPAINTTABLE_H

#include <cstddef>
#include <cstdint>

inline constexpr int kZRQVersion = 1;

struct ZRQTable {
    int version;
    void* (*open)(const uint8_t* bytes, size_t n);  // bytes: borrowed until release; null = unreadable
    void (*release)(void* document);
    // matrix: from the page's own, unturned space to the cairo context's. crop: x, y, width, height; rotation: 0, 90,
    // ...
    void (*paint)(void* document, long page, void* cairo, const double matrix[6], const double crop[4], int rotation,
                  double alpha);
};

extern "C" const void* ZRPDFPaintGetTable();  // the table

#endif
