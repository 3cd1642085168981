// PNG by libpng. A longjmp crosses only functions that hold plain data.
#include <png.h>

#include <cmath>
#include <cstring>

#include "platform/graphics_object/Codecs_Private.h"

static constexpr double kMetresPerInch = 0.0254;
static constexpr long kMostInflation = 1032;  // bytes that one compressed byte can become

struct Input {
    const uint8_t* at;
    size_t left;
};
struct Output {
    ZRGWrite write;
    void* info;
};

static void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
static void OnWarning(png_structp, png_const_charp) {}

static bool Knows(const uint8_t* bytes, long n) { return n >= 8 && png_sig_cmp(bytes, 0, 8) == 0; }

// Reading ----------------------------------------------------------------------------------------------------------

static void ReadBytes(png_structp png, png_bytep out, png_size_t n) {
    auto input = static_cast<Input*>(png_get_io_ptr(png));
    if (n > input->left) png_error(png, "end of data");
    memcpy(out, input->at, n);
    input->at += n;
    input->left -= n;
}

static void ReadResolution(png_structp png, png_infop info, ZRGDecoded* out) {
    png_uint_32 x = 0, y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (!png_get_pHYs(png, info, &x, &y, &unit) || unit != PNG_RESOLUTION_METER) return;
    out->dpiX = SnapResolution(x * kMetresPerInch);
    out->dpiY = SnapResolution(y * kMetresPerInch);
}

static void AskForRGBA(png_structp png, png_infop info) {
    png_set_expand(png);  // palette, few bits, transparent colour
    png_set_scale_16(png);
    if (!(png_get_color_type(png, info) & PNG_COLOR_MASK_COLOR)) png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
}

static bool ReadImage(png_structp png, png_infop info, long n, bool pixels, ZRGDecoded* out) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_read_info(png, info);
    out->width = png_get_image_width(png, info);
    out->height = png_get_image_height(png, info);
    bool alpha = (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) || png_get_valid(png, info, PNG_INFO_tRNS);
    out->alpha = alpha ? kZRGStraight : kZRGOpaque;
    ReadResolution(png, info, out);
    if (!pixels) return true;
    long raw = static_cast<long>(png_get_rowbytes(png, info));
    if (!SizeAllowed(out->width, out->height) || raw * out->height / kMostInflation > n) return false;
    AskForRGBA(png, info);
    int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    if (static_cast<long>(png_get_rowbytes(png, info)) != out->width * 4 || !AllocatePixels(out)) return false;
    for (int pass = 0; pass < passes; ++pass)
        for (long y = 0; y < out->height; ++y) png_read_row(png, out->pixels + y * out->width * 4, nullptr);
    return true;
}

static bool Decode(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out) {
    if (index != 0) return false;
    Input input = {bytes, static_cast<size_t>(n)};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool ok = false;
    if (info) {
        png_set_read_fn(png, &input, ReadBytes);
        ok = ReadImage(png, info, n, pixels, out);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return ok;
}

// Writing ----------------------------------------------------------------------------------------------------------

static void WriteBytes(png_structp png, png_bytep bytes, png_size_t n) {
    auto output = static_cast<Output*>(png_get_io_ptr(png));
    if (!output->write(output->info, bytes, n)) png_error(png, "cannot write");
}

static png_uint_32 PerMetre(double dpi) { return static_cast<png_uint_32>(std::lround(dpi / kMetresPerInch)); }

static bool WriteImage(png_structp png, png_infop info, const ZRGEncode* image) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_IHDR(png, info, static_cast<png_uint_32>(image->width), static_cast<png_uint_32>(image->height), 8,
                 image->hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (image->dpiX > 0 && image->dpiY > 0)
        png_set_pHYs(png, info, PerMetre(image->dpiX), PerMetre(image->dpiY), PNG_RESOLUTION_METER);
    png_write_info(png, info);
    if (!image->hasAlpha) png_set_filler(png, 0, PNG_FILLER_AFTER);
    for (long y = 0; y < image->height; ++y) png_write_row(png, image->pixels + y * image->width * 4);
    png_write_end(png, nullptr);
    return true;
}

static bool Encode(const ZRGEncode* images, long, ZRGWrite write, void* info) {
    Output output = {write, info};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop head = png ? png_create_info_struct(png) : nullptr;
    bool ok = false;
    if (head) {
        png_set_write_fn(png, &output, WriteBytes, nullptr);
        ok = WriteImage(png, head, images);
    }
    png_destroy_write_struct(&png, &head);
    return ok;
}

const Codec kPNGCodec = {Knows, nullptr, Decode, Encode, /*many*/ false};
