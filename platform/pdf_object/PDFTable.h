// The seam between the stand-ins in libzr and libzr-pdf.so: what reads PDF documents and puts pages together. Boxes are
// x, y, width, height in points. No exception leaves a function. A document may be used from any thread.
#ifndef ZR_PLATFORM_PDFTABLE_H
#define ZR_PLATFORM_PDFTABLE_H

#include <cstddef>
#include <cstdint>

inline constexpr int kZRPVersion = 1;

struct ZRPDocument;

typedef bool (*ZRPWrite)(void* info, const void* bytes, size_t n);  // false = stop

// One thing that is stacked on a page: a page of a document, as a form.
struct ZRPItem {
    ZRPDocument* document;  // null = the drawn parts
    long page;              // [0..count)
    double matrix[6];       // from the space of that page to the new one's
    const char* clip;       // PDF operators that clip, in the new page's space; null = none
    double alpha;
};
struct ZRPPage {
    double mediaBox[4];
    const double* cropBox;  // null = none
    const ZRPItem* items;   // lowest first
    long itemCount;
};

struct ZRPTable {
    int version;
    // bytes: borrowed until release. null = no PDF, or a password is needed
    ZRPDocument* (*open)(const uint8_t* bytes, size_t n);
    void (*release)(ZRPDocument*);
    long (*countPages)(ZRPDocument*);
    bool (*getBox)(ZRPDocument*, long page, int box, double out[4]);  // 0 media .. 4 art; false = damaged page
    int (*getRotation)(ZRPDocument*, long page);                      // 0, 90, 180, 270
    // drawn: a PDF with the drawn parts, a page each. false = nothing whole was written
    bool (*assemble)(const uint8_t* drawn, size_t n, const ZRPPage* pages, long count, ZRPWrite write, void* info);
};

extern "C" const void* ZRPDFGetTable();  // the table

#endif
