// ZR_Picture: the picture record as tokens and variables carry it: decoded form, encoded bytes, life, copy, and the
// exchange with host pictures. Files, encoding, conversion and drawing are declared here and stand with the drawing
// library, in graphics/ZR_API_Picture_*.cpp, so that a record that holds a picture does not pull in drawing.
#ifndef ZR_API_PICTURE_H
#define ZR_API_PICTURE_H

#include "core/ZR_API_Handle.h"
#include "platform/CoreGraphics/CGTypes.h"

struct CGImageSource;
struct PluginBlock;
struct ZR_Device;
struct ZR_Matrix;
struct ZR_Rect;
enum ZR_Alignment : int;

enum ZR_Pictformat : int {
    ZR_PICT_UNKNOWN = 0,
    ZR_PICT_JPEG = 1,
    ZR_PICT_PNG = 2,
    ZR_PICT_BMP = 3,
    ZR_PICT_GIF = 4,
    ZR_PICT_TIFF = 5,
    ZR_PICT_PDF = 6,
    ZR_PICT_SVG = 7,
    ZR_PICT_EMF = 8,
    ZR_PICT_JPEGXR = 9,
    ZR_PICT_DDS = 10
};

struct ZR_PictformatRow {
    ZR_Pictformat format;
    const char* typeText;    // searched for in the host's picture type
    const char* dataPrefix;  // of a data: URL in SVG output; null = none
};
inline constexpr ZR_PictformatRow kPictformats[] = {
    {ZR_PICT_JPEG, "image/jpg", "data:image/jpeg;base64,"},   {ZR_PICT_PNG, "image/png", "data:image/png;base64,"},
    {ZR_PICT_BMP, "image/bmp", "data:image/bmp;base64,"},     {ZR_PICT_GIF, "image/gif", "data:image/gif;base64,"},
    {ZR_PICT_TIFF, "image/tiff", "data:image/tiff;base64,"},  {ZR_PICT_PDF, "application/pdf", nullptr},
    {ZR_PICT_SVG, "image/svg+xml", "data:image/png;base64,"}, {ZR_PICT_EMF, "image/x-emf", nullptr},
    {ZR_PICT_JPEGXR, "image/vnd.ms-photo", nullptr},          {ZR_PICT_DDS, "image/vnd-ms.dds", nullptr},
};

// The operations that decode a host picture. They come with the drawing library, which sets gPictureDecoder as it is
// loaded; without it a picture keeps its bytes and has no image and no document. Nothing is opened before it decodes.
struct ZR_PictureDecoder {
    // CGImageSourceCreateWithData, CGImageSourceCreateImageAtIndex(0), CGImageSourceCopyPropertiesAtIndex: the dpi are
    // written where the picture has them; image handed over; null = undecodable
    CGImageRef (*decodeImage)(const char* bytes, long n, float* dpiX, float* dpiY);
    // CGPDFDocumentCreateWithProvider: size of the first page's media box in points, written where there is a page;
    // document handed over; null = undecodable
    CGPDFDocumentRef (*openDocument)(const char* bytes, long n, double* width, double* height);
    void (*getImageSize)(CGImageRef image, long* width, long* height);  // pixels
};
extern const ZR_PictureDecoder* gPictureDecoder;  // null until the drawing library is loaded

struct ZR_Picture {
    CGImageRef image;           // decoded bitmap; owned; null = none
    CGPDFDocumentRef document;  // decoded PDF, or an SVG picture's native picture for printing; owned; null = none
    long width, height;         // pixels, for PDF points
    float dpiX, dpiY;           // 0 = unknown
    ZR_Pictformat format;
    short displayFormat;   // display mode of drawing; 3 after Create
    float quality;         // of the encoder, 0..1; 1 after Create
    ZR_Handle nativeData;  // the encoded picture, bytes

    void Create();
    void Create(const ZR_Picture* source);          // objects retained, bytes copied; null = empty
    void Create(void** hostPicture);                // a PA_Picture, stays the caller's; null = empty
    void SetNativePicture(const ZR_Handle* bytes);  // nativeData becomes a copy; null = empty
    void To4DVariable(PA_Variable* variable);       // of kind 10, or owning nothing; without bytes an empty picture
    PA_Picture To4DPicture();                       // from nativeData; handed over; null = empty
    void Dispose();

    // Creation: ZR_API_Picture_Convert.cpp; every creator starts from the empty picture ------------------------------
    void Create(ZR_Device* device, ZR_Pictformat format);  // of a bitmap offscreen device; else empty
    void Create(CGImage* source, ZR_Pictformat format, long dpiX, long dpiY);  // retains the image; null = empty
    void Create(const ZR_Handle* bytes);                                       // an encoded picture; null = empty
    void CreateFrom4DParameter(PluginBlock* block, short index);               // [1..]
    void CreateFrom4DField(short table, short field);                          // of the current record
    bool CreateFromPath(ZR_Text* path);    // a bitmap file; no bytes are kept. Required: true though nothing was read
    bool CreateFromPath4D(ZR_Text* path);  // through the host; false = neither image nor document
    void CreateAsResource(long number, ZR_Text* folder);       // the file folder + number + ".png"
    void CreateAsResource(const char* name, ZR_Text* folder);  // the file folder + name

    // Facts and encoding -------------------------------------------------------------------------------------------
    void UpdateType(CGImageSource* source);  // format, from a source of the formats 1 to 5; another leaves it
    void Update();                           // width and height, from image
    long GetWidthDPI() const;                // points: the pixels at dpiX; without it, and of an SVG, width
    long GetHeightDPI() const;
    void ToBlob(ZR_Handle* out, bool whiteBackground) const;  // appends image in format; formats 1 to 5 alone
    void Convert(ZR_Pictformat to);                           // to one of the formats 1 to 5, from image
    void To4DParameter(PluginBlock* block, short index);      // encoded if no bytes are held; [1..]
    void ReturnPicture(PluginBlock* block);                   // the same as result; an empty picture leaves it alone

    // Drawing: ZR_API_Picture_Draw.cpp -----------------------------------------------------------------------------
    // Into rect by displayFormat; opacity in percent; properties: ZR_DeviceProperty records; null matrix and
    // properties = none. A displayFormat outside of 1 to 7 becomes 2 for good.
    void Draw(ZR_Device* device, ZR_Rect* rect, float opacity, ZR_Matrix* matrix, ZR_Alignment alignment,
              ZR_Handle* properties);
    void DrawPDFDocument(long page, ZR_Device* device, ZR_Rect* rect, bool underMatrix);  // page [1..count]
};

#endif
