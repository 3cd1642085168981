// The image formats: each source fills one row. Pixels are R,G,B,A; sizes are checked before anything is allocated.
#ifndef ZR_PLATFORM_CODECS_PRIVATE_H
#define ZR_PLATFORM_CODECS_PRIVATE_H

#include "platform/graphics_object/GraphicsTable.h"

struct Codec {
    bool (*knows)(const uint8_t* bytes, long n);  // by the first bytes
    long (*count)(const uint8_t* bytes, long n);  // null = one, if it can be probed
    bool (*decode)(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out);
    bool (*encode)(const ZRGEncode* images, long count, ZRGWrite write, void* info);
    bool many;  // takes more than one image
};
extern const Codec kJPEGCodec, kPNGCodec, kBMPCodec, kGIFCodec, kTIFFCodec;

// Whether a picture of this size may be decoded.
bool SizeAllowed(long width, long height);
// width * height pixels, all clear; false = too large or no memory
bool AllocatePixels(ZRGDecoded* out);
// Resolutions that a format keeps per metre or centimetre come back a little off: the nearest whole one within 0.02.
double SnapResolution(double dpi);
// One row over the background, as R,G,B
void FlattenRow(const ZRGEncode* image, long y, uint8_t* rgb);

#endif
