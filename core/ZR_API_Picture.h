// ZR_Picture: the picture record as tokens and variables carry it: decoded form, encoded bytes, life, copy, and the
// exchange with host pictures. Files, encoding, conversion and drawing stand with the drawing library.
#ifndef ZR_API_PICTURE_H
#define ZR_API_PICTURE_H

#include "core/ZR_API_Handle.h"
#include "platform/CoreGraphics/CGTypes.h"

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

// The operations that decode a host picture. They come with the drawing library, which sets gPictureDecoder when it is
// loaded; without it a picture keeps its bytes and has no image and no document.
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
};

#endif
