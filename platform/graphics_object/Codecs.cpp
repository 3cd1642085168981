#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

#include "platform/graphics_object/Canvas_Private.h"
#include "platform/graphics_object/Codecs_Private.h"

static const Codec* const kCodecs[] = {nullptr, &kJPEGCodec, &kPNGCodec, &kBMPCodec, &kGIFCodec, &kTIFFCodec};

bool SizeAllowed(long width, long height) {
    return width > 0 && height > 0 && width <= kZRGMaximumDecoded && height <= kZRGMaximumDecoded / width;
}

bool AllocatePixels(ZRGDecoded* out) {
    if (!SizeAllowed(out->width, out->height)) return false;
    out->pixels = static_cast<uint8_t*>(calloc(static_cast<size_t>(out->width * out->height), 4));
    return out->pixels != nullptr;
}

double SnapResolution(double dpi) {
    if (!std::isfinite(dpi) || dpi <= 0 || dpi > 1e6) return 0;
    double whole = std::round(dpi);
    return std::abs(dpi - whole) <= 0.02 ? whole : dpi;
}

void FlattenRow(const ZRGEncode* image, long y, uint8_t* rgb) {
    const uint8_t* from = image->pixels + y * image->width * 4;
    auto byte = [](double v) { return static_cast<int>(std::clamp(v, 0.0, 1.0) * 255 + 0.5); };
    const int under[3] = {byte(image->background.red), byte(image->background.green), byte(image->background.blue)};
    for (long x = 0; x < image->width; ++x, from += 4, rgb += 3) {
        int alpha = image->hasAlpha ? from[3] : 255;
        for (int c = 0; c < 3; ++c)
            rgb[c] = static_cast<uint8_t>((from[c] * alpha + under[c] * (255 - alpha) + 127) / 255);
    }
}

static int FormatOf(const uint8_t* bytes, long n) {
    for (int format = kZRGJPEG; format <= kZRGTIFF; ++format)
        if (kCodecs[format]->knows(bytes, n)) return format;
    return kZRGNoFormat;
}

static bool Decode(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out) {
    *out = {};
    int format = FormatOf(bytes, n);
    if (format == kZRGNoFormat || index < 0) return false;
    bool ok = false;
    try {
        ok = kCodecs[format]->decode(bytes, n, index, pixels, out) && SizeAllowed(out->width, out->height);
    } catch (const std::bad_alloc&) {}
    if (!ok) {
        free(out->pixels);
        *out = {};
    }
    return ok;
}

static bool ProbeImage(const uint8_t* bytes, long n, long index, ZRGDecoded* out) {
    return Decode(bytes, n, index, /*pixels*/ false, out);
}

static bool DecodeImage(const uint8_t* bytes, long n, long index, ZRGDecoded* out) {
    return Decode(bytes, n, index, /*pixels*/ true, out);
}

static long CountImages(const uint8_t* bytes, long n) {
    int format = FormatOf(bytes, n);
    if (format == kZRGNoFormat) return 0;
    ZRGDecoded probe;
    if (!kCodecs[format]->count) return ProbeImage(bytes, n, 0, &probe) ? 1 : 0;
    try {
        return kCodecs[format]->count(bytes, n);
    } catch (const std::bad_alloc&) { return 0; }
}

static void FreePixels(uint8_t* pixels) { free(pixels); }

static bool EncodeImages(int format, const ZRGEncode* images, long count, ZRGWrite write, void* info) {
    if (format < kZRGJPEG || format > kZRGTIFF || count < 1 || (count > 1 && !kCodecs[format]->many)) return false;
    try {
        return kCodecs[format]->encode(images, count, write, info);
    } catch (const std::bad_alloc&) { return false; }
}

void FillCodecFunctions(ZRGTable* table) {
    table->formatOf = FormatOf;
    table->countImages = CountImages;
    table->probeImage = ProbeImage;
    table->decodeImage = DecodeImage;
    table->freePixels = FreePixels;
    table->encodeImages = EncodeImages;
}
