// Stand-ins for the Image I/O operations in use: JPEG, PNG, BMP, GIF and TIFF, read and written, with resolution and
// quality. Without libzr-graphics.so the creators answer null. No image of more than 2^27 pixels is decoded, no file of
// more than 2^31 bytes read; damaged ones give no image.
#ifndef ZR_PLATFORM_IMAGEIO_H
#define ZR_PLATFORM_IMAGEIO_H

#include <cstddef>

#include "platform/CoreGraphics/CGTypes.h"

typedef struct CGImageSource* CGImageSourceRef;
typedef struct CGImageDestination* CGImageDestinationRef;

// Types
extern const CFStringRef kUTTypeJPEG;  // "public.jpeg"
extern const CFStringRef kUTTypePNG;   // "public.png"
extern const CFStringRef kUTTypeBMP;   // "com.microsoft.bmp"
extern const CFStringRef kUTTypeGIF;   // "com.compuserve.gif"
extern const CFStringRef kUTTypeTIFF;  // "public.tiff"

// Properties of an image; numbers but for the two noted
extern const CFStringRef kCGImagePropertyDPIWidth;
extern const CFStringRef kCGImagePropertyDPIHeight;
extern const CFStringRef kCGImagePropertyPixelWidth;
extern const CFStringRef kCGImagePropertyPixelHeight;
extern const CFStringRef kCGImagePropertyHasAlpha;                    // a truth value
extern const CFStringRef kCGImageDestinationLossyCompressionQuality;  // 0..1, of JPEG
// A CGColor, under alpha in formats that have none (JPEG, BMP); white without it, or if the value is no colour.
extern const CFStringRef kCGImageDestinationBackgroundColor;

// Sources
CFTypeID CGImageSourceGetTypeID();
CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options);  // unknown bytes: no image in it
CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options);     // null = unreadable file
CGImageSourceRef CGImageSourceCreateWithDataProvider(CGDataProviderRef provider, CFDictionaryRef options);
CFStringRef CGImageSourceGetType(CGImageSourceRef source);  // borrowed; null = unknown bytes
size_t CGImageSourceGetCount(CGImageSourceRef source);      // pages of a TIFF, frames of a GIF
CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index,
                                           CFDictionaryRef options);  // [0..count)
CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index, CFDictionaryRef options);

// Destinations. count: the images that will be added; more than one only for TIFF.
CFTypeID CGImageDestinationGetTypeID();
CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type, size_t count,
                                                       CFDictionaryRef options);
CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type, size_t count,
                                                      CFDictionaryRef options);
// A page of a TIFF goes into another TIFF as it is, without loss. properties null = none.
void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image, CFDictionaryRef properties);
bool CGImageDestinationFinalize(CGImageDestinationRef destination);  // false = nothing whole was written

#endif
