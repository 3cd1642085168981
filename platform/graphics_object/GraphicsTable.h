// The seam between the stand-ins in libzr and libzr-graphics.so: plain records, opaque pointers and C functions.
// Coordinates are device coordinates (pixels of a bitmap, points of a layer or PDF page), y down, finite, those of
// paths within +-kZRGMaximumPoint, others within +-kZRGMaximumCoordinate; the library sees to that, and to matrices
// that have an inverse. Matrices are row-vector ones. No exception leaves a function. A canvas belongs to one thread at
// a time.
#ifndef ZR_PLATFORM_GRAPHICSTABLE_H
#define ZR_PLATFORM_GRAPHICSTABLE_H

#include <cstddef>
#include <cstdint>

inline constexpr int kZRGVersion = 2;
inline constexpr double kZRGMaximumCoordinate = 4e6;  // device units; the drawing library's own numbers end at 8.3e6
inline constexpr double kZRGMaximumPoint = 1e15;      // device units
inline constexpr long kZRGMaximumSide = 32767;        // pixels of a bitmap
inline constexpr long kZRGMaximumPixels = 1L << 28;   // of a bitmap
inline constexpr long kZRGMaximumDecoded = 1L << 27;  // pixels of a decoded image

struct ZRGCanvas;  // a bitmap, a layer (a list of operations) or the pages of a PDF, with clip and clip stack
struct ZRGRegion;  // a set of rectangles in units of 1/256 point

struct ZRGMatrix {
    double a, b, c, d, tx, ty;
};
struct ZRGColor {
    double red, green, blue, alpha;  // 0..1, not premultiplied
};
struct ZRGRect {
    double x, y, width, height;
};

enum ZRGVerb : uint8_t { kZRGMove, kZRGLine, kZRGCurve, kZRGClose };  // 1, 1, 3, 0 points; begins with a move
struct ZRGPath {
    const uint8_t* verbs;
    const double* points;  // x, y pairs
    long verbCount;
    bool evenOdd;
};

struct ZRGShadow {
    double dx, dy, blur;  // device units, y down; blur is twice the deviation
    ZRGColor color;
};
struct ZRGPaint {
    ZRGColor color;
    bool antialias;
    const ZRGShadow* shadow;  // null = none
};
struct ZRGStroke {
    double width, miterLimit;  // in the space of matrix
    int cap, join;             // 0 butt, 1 round, 2 square; 0 miter, 1 round, 2 bevel
    const double* dash;        // lengths >= 0 with a positive sum; null = solid
    long dashCount;
    double dashPhase;
    ZRGMatrix matrix;  // the pen's space to device
};

struct ZRGGradient {
    bool radial;
    double x0, y0, r0, x1, y1, r1;  // in the space of matrix
    const double* offsets;          // ascending, 0..1
    const ZRGColor* colors;
    long count;
    bool extendStart, extendEnd;
    ZRGMatrix matrix;  // to device
};

// An image, premultiplied B,G,R,A. The canvas may keep owner for as long as it lives: then it retains it.
struct ZRGImage {
    long width, height;  // up to kZRGMaximumSide each
    const uint8_t* pixels;
    long rowBytes;
    bool opaque;          // every alpha is 255
    const uint8_t* jpeg;  // the same picture as JPEG bytes, which a PDF takes as they are; null = none
    long jpegLength;
    const void* owner;
    void (*retain)(const void* owner);
    void (*release)(const void* owner);
};

typedef bool (*ZRGWrite)(void* info, const void* bytes, size_t n);  // false = stop

// Image formats, in the numbers of the type table of ImageIO
enum ZRGFormat : int { kZRGNoFormat = 0, kZRGJPEG = 1, kZRGPNG = 2, kZRGBMP = 3, kZRGGIF = 4, kZRGTIFF = 5 };
enum ZRGAlpha : int { kZRGOpaque = 0, kZRGStraight = 1, kZRGPremultiplied = 2 };

struct ZRGDecoded {
    long width, height;
    double dpiX, dpiY;  // 0 = not told
    int alpha;          // ZRGAlpha
    uint8_t* pixels;    // R,G,B,A, width * 4 bytes a row; freed by freePixels; null after probeImage
    bool jpegPlain;     // a JPEG of one or three components: a PDF can take its bytes
};
struct ZRGEncode {
    long width, height;
    const uint8_t* pixels;  // R,G,B,A straight or opaque, width * 4 bytes a row
    bool hasAlpha;
    double dpiX, dpiY;    // 0 = not told
    double quality;       // 0..1
    ZRGColor background;  // under alpha, for formats without it
    // The TIFF page that the pixels came from, copied without loss if it can be; null = none
    const uint8_t* tiff;
    long tiffLength, tiffPage;
};

// Fonts: one face at one size, whatever thread asks; counted.
struct ZRGFont;
struct ZRGFontFacts {
    double size, ascent, descent, leading;         // points, not rounded
    double underlinePosition, underlineThickness;  // points; y up, the top of the line
    uint32_t traits;                               // 1 italic, 2 bold
    const char *family, *postScriptName;           // UTF-8; live as long as the font
};
struct ZRGFace {
    const char *family, *postScriptName;
};

// Text: lines of one paragraph. Units are UTF-16, measures points, y up, x from the line's left end.
inline constexpr long kZRGMostUnits = 8192;  // of one typesetting: the time of some texts grows with their square
struct ZRGTextStyle {
    long end;             // the first unit behind it; ascending, the last is count
    const ZRGFont* font;  // borrowed
    bool kerned;          // spacing takes the place of the font's kerning
    double spacing;       // points behind every glyph
};
enum ZRGBreaking : int { kZRGNoBreaks, kZRGBreakWords, kZRGBreakAnywhere, kZRGCutHead, kZRGCutTail, kZRGCutMiddle };
enum ZRGDirection : int { kZRGAsText = 0, kZRGLeftToRight = 1, kZRGRightToLeft = 2 };
struct ZRGTypesetting {
    const uint16_t* units;
    long count;  // 1..kZRGMostUnits
    const ZRGTextStyle* styles;
    long styleCount;
    int breaking;   // ZRGBreaking; all but kZRGNoBreaks look at width
    double width;   // points, > 0
    bool justify;   // every line but the last
    int direction;  // ZRGDirection
};
struct ZRGTextRun {
    long start, end;                  // units
    long style;                       // [0..styleCount)
    double x, width;                  // width with the spacing behind its last glyph
    double ascent, descent, leading;  // of the font that draws it
    long glyphs, firstGlyph;          // for drawText
    int font;                         // likewise
};
struct ZRGTextLine {
    long start, end;  // units; end is the next line's start
    double width, ascent, descent, leading;
    long firstRun, runCount;  // from left to right
    bool rightToLeft;
};
struct ZRGTypeset {  // counted by its one owner; may be read and drawn on any thread
    const ZRGTextLine* lines;
    long lineCount;
    const ZRGTextRun* runs;
};

struct ZRGTable {
    int version;

    // Canvases; null = too large or no memory
    ZRGCanvas* (*createBitmap)(long width, long height);
    ZRGCanvas* (*createLayer)(double width, double height);
    ZRGCanvas* (*createPDF)(ZRGWrite write, void* info);
    void (*release)(ZRGCanvas*);
    void (*readPixels)(ZRGCanvas*, uint8_t* rgba, long rowBytes);  // premultiplied R,G,B,A
    void (*writePixels)(ZRGCanvas*, const uint8_t* rgba, long rowBytes);
    unsigned long (*weight)(ZRGCanvas*);  // of a layer: the operations that a replay runs
    void* (*borrowCairo)(ZRGCanvas*);     // the cairo_t for a guest that draws on it; null = cannot be drawn on
    void (*returnCairo)(ZRGCanvas*);      // after the guest: mends what it left

    // PDF pages; drawing outside of a page does nothing
    void (*beginPage)(ZRGCanvas*, double width, double height);
    void (*nextSegment)(ZRGCanvas*);  // goes on, with the same clip, on a further page of the same size
    void (*endPage)(ZRGCanvas*);
    bool (*finishPDF)(ZRGCanvas*);  // false = the bytes are not whole

    // Clip
    void (*save)(ZRGCanvas*);
    void (*restore)(ZRGCanvas*);
    void (*clip)(ZRGCanvas*, const ZRGPath*, bool antialias);
    void (*clipBounds)(ZRGCanvas*, ZRGRect* out);
    void (*eachClip)(ZRGCanvas*, void (*take)(void* info, const ZRGPath*), void* info);  // those in force, in order

    // Painting
    void (*fill)(ZRGCanvas*, const ZRGPath*, const ZRGPaint*);
    void (*fillRect)(ZRGCanvas*, const ZRGRect*, const ZRGPaint*);
    void (*stroke)(ZRGCanvas*, const ZRGPath*, const ZRGStroke*, const ZRGPaint*);
    void (*clear)(ZRGCanvas*, const ZRGPath*);  // to transparent; nothing on a PDF
    void (*gradient)(ZRGCanvas*, const ZRGGradient*, double alpha);
    // The unit square under matrix is the picture's place; its y runs up. Tiled: repeated over the whole clip.
    void (*image)(ZRGCanvas*, const ZRGImage*, const ZRGMatrix*, bool tiled, const ZRGPaint*);
    void (*layer)(ZRGCanvas*, ZRGCanvas* layer, const ZRGMatrix*, const ZRGPaint*);  // likewise, the layer's size

    // Regions; units of 1/256 point
    ZRGRegion* (*createRegion)();
    void (*releaseRegion)(ZRGRegion*);
    void (*setRegion)(ZRGRegion*, const int rect[4]);  // x, y, width, height; null = empty
    void (*combineRegions)(const ZRGRegion*, const ZRGRegion*, bool subtract, ZRGRegion* out);
    long (*countRects)(const ZRGRegion*);
    void (*getRect)(const ZRGRegion*, long index, int rect[4]);  // [0..count), in bands of ascending y

    // Image formats
    int (*formatOf)(const uint8_t* bytes, long n);                                  // ZRGFormat
    long (*countImages)(const uint8_t* bytes, long n);                              // 0 = unreadable
    bool (*probeImage)(const uint8_t* bytes, long n, long index, ZRGDecoded* out);  // all but the pixels
    bool (*decodeImage)(const uint8_t* bytes, long n, long index, ZRGDecoded* out);
    void (*freePixels)(uint8_t*);
    bool (*encodeImages)(int format, const ZRGEncode* images, long count, ZRGWrite write, void* info);

    // Fonts; null = no fonts are installed, or no memory. size: points, above 0.
    ZRGFont* (*openFont)(const char* name, double size);                 // UTF-8; PostScript, full or family name
    ZRGFont* (*copyFont)(const ZRGFont*, double size, uint32_t traits);  // of the same family; null = no such face
    void (*retainFont)(const ZRGFont*);
    void (*releaseFont)(const ZRGFont*);
    void (*fontFacts)(const ZRGFont*, ZRGFontFacts* out);
    void (*eachFace)(void (*take)(void* info, const ZRGFace*), void* info);  // by family, then PostScript name

    // Text; null = no memory
    ZRGTypeset* (*typeset)(const ZRGTypesetting*);
    void (*releaseTypeset)(ZRGTypeset*);
    // matrix: from the line's points, y up, the baseline's left end the origin, to device
    void (*drawText)(ZRGCanvas*, const ZRGTypeset*, long run, const ZRGMatrix* matrix, const ZRGPaint*);
};

extern "C" const void* ZRGraphicsGetTable();  // the table

#endif
