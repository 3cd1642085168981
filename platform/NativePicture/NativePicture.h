// The seam between an embedded host and the stand-ins: a host that answers with native pictures, and that converts
// pictures, does it through this table, which it finds in the library that is loaded. Plain records and C functions;
// includes nothing. What needs a heavy library opens its object at the first call that does. No exception leaves a
// function. Safe from any thread.
#ifndef ZR_PLATFORM_NATIVEPICTURE_H
#define ZR_PLATFORM_NATIVEPICTURE_H

inline constexpr int kZRNativePictureVersion = 1;
inline constexpr long kZRNativeMostPixels = 1L << 27;  // of an image that is decoded or encoded

// The formats in the numbers of the picture record.
enum ZRNativeFormat : int {
    kZRNativeJPEG = 1,
    kZRNativePNG = 2,
    kZRNativeBMP = 3,
    kZRNativeGIF = 4,
    kZRNativeTIFF = 5,
    kZRNativePDF = 6,
    kZRNativeSVG = 7
};

struct ZRNativePixels {
    long width, height;
    double dpiX, dpiY;    // 0 = not told
    unsigned char* rgba;  // width * 4 bytes a row, not premultiplied; ends with release
};

struct ZRNativePictureTable {
    int version;
    // format: what the bytes are known to be, a ZRNativeFormat; another one gives null or false.
    void* (*createImage)(const char* bytes, long n, int format);  // a CGImageRef; handed over; null = cannot
    void* (*createDocument)(const char* bytes, long n,
                            int format);  // a CGPDFDocumentRef of one page at least; likewise
    bool (*getSize)(const char* bytes, long n, int format, double* width, double* height);  // pixels, of PDF points
    // scale: pixels a point for PDF, whose first page is drawn upright within its crop box, and a user unit for SVG.
    bool (*decode)(const char* bytes, long n, int format, double scale, ZRNativePixels* out);
    void (*release)(ZRNativePixels* pixels);
    // As one of the formats 1 to 5; quality 0..1, of JPEG. take gets all bytes once. false = cannot, take was not
    // called.
    bool (*encode)(const ZRNativePixels* pixels, int format, double quality,
                   void (*take)(void* info, const void* bytes, long n), void* info);
    // The shared objects that a format needs and that are missing: their file names and Debian packages.
    void (*eachMissing)(int format, void (*take)(void* info, const char* object, const char* packages), void* info);
};

extern "C" const ZRNativePictureTable* ZRNativePictureGetTable();

#endif
