// JPEG by libjpeg-turbo. A longjmp crosses only functions that hold plain data.
#include <stddef.h>
#include <stdio.h>
// the library's header needs the two above
#include <jpeglib.h>
#include <setjmp.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "platform/graphics_object/Codecs_Private.h"

static constexpr double kInchPerCentimetre = 2.54;
static constexpr int kMostScans = 500;          // more make a small file work for hours
static constexpr long kMostScanned = 1L << 31;  // pixels of all scans
static constexpr long kFewScans = 16;           // as pictures of any size have them
static constexpr long kMostMemory = 1L << 30;   // bytes that the library takes by itself
// Pixels that a byte can stand for at most: with Huffman codes a block of 64 needs a bit in some scan, which makes 512;
// a picture that was cut off may have lost three quarters of its bytes and is still read as far as it goes. Arithmetic
// codes have no such bound, and get a wide one.
static constexpr long kMostPixelsAByte = 2000, kMostPixelsAByteArithmetic = 1L << 18;
static constexpr long kSmallPicture = 1L << 22;  // pixels; below, any number of bytes will do
static constexpr int kFineQuality = 90;          // from here on colour is kept for every pixel

struct Errors {
    jpeg_error_mgr base;
    jmp_buf jump;
};

static void OnError(j_common_ptr cinfo) { longjmp(reinterpret_cast<Errors*>(cinfo->err)->jump, 1); }
static void OnMessage(j_common_ptr, int) {}

static jpeg_error_mgr* Install(Errors* errors) {
    jpeg_error_mgr* base = jpeg_std_error(&errors->base);
    base->error_exit = OnError;
    base->emit_message = OnMessage;
    return base;
}

static bool Knows(const uint8_t* bytes, long n) {
    return n >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
}

// Reading ----------------------------------------------------------------------------------------------------------

static void OnProgress(j_common_ptr cinfo) {
    auto reader = reinterpret_cast<j_decompress_ptr>(cinfo);
    long pixels = static_cast<long>(reader->image_width) * static_cast<long>(reader->image_height);
    long scans = reader->input_scan_number;
    if (scans > kMostScans || (scans > kFewScans && scans * pixels > kMostScanned)) OnError(cinfo);
}

static void ReadResolution(const jpeg_decompress_struct& cinfo, ZRGDecoded* out) {
    if (!cinfo.saw_JFIF_marker || cinfo.density_unit < 1 || cinfo.density_unit > 2) return;
    double factor = cinfo.density_unit == 2 ? kInchPerCentimetre : 1;
    out->dpiX = SnapResolution(cinfo.X_density * factor);
    out->dpiY = SnapResolution(cinfo.Y_density * factor);
}

// Four inks to R,G,B,A in place; programs that leave a mark of their own write them inverted.
static void FromInks(uint8_t* row, long width, bool inverted) {
    for (long x = 0; x < width; ++x, row += 4) {
        int black = inverted ? row[3] : 255 - row[3];
        for (int c = 0; c < 3; ++c) {
            int light = inverted ? row[c] : 255 - row[c];
            row[c] = static_cast<uint8_t>((light * black + 127) / 255);
        }
        row[3] = 255;
    }
}

static bool ReadImage(jpeg_decompress_struct* cinfo, Errors* errors, const uint8_t* bytes, long n, bool pixels,
                      ZRGDecoded* out) {
    static jpeg_progress_mgr progress = {OnProgress, 0, 0, 0, 0};
    if (setjmp(errors->jump)) return false;
    jpeg_create_decompress(cinfo);
    cinfo->mem->max_memory_to_use = kMostMemory;
    jpeg_mem_src(cinfo, bytes, static_cast<unsigned long>(n));
    jpeg_read_header(cinfo, TRUE);
    out->width = cinfo->image_width;
    out->height = cinfo->image_height;
    out->jpegPlain = !cinfo->arith_code && (cinfo->num_components == 1 || cinfo->num_components == 3);
    ReadResolution(*cinfo, out);
    if (!pixels) return true;
    jpeg_progress_mgr own = progress;
    cinfo->progress = &own;
    long aByte = cinfo->arith_code ? kMostPixelsAByteArithmetic : kMostPixelsAByte, all = out->width * out->height;
    if (!SizeAllowed(out->width, out->height) || (all > kSmallPicture && all / aByte > n)) return false;
    bool inks = cinfo->num_components == 4;
    cinfo->out_color_space = inks ? JCS_CMYK : JCS_EXT_RGBA;
    if (!jpeg_start_decompress(cinfo) || !AllocatePixels(out)) return false;
    while (cinfo->output_scanline < cinfo->output_height) {
        uint8_t* row = out->pixels + static_cast<long>(cinfo->output_scanline) * out->width * 4;
        if (jpeg_read_scanlines(cinfo, &row, 1) != 1) return false;
        if (inks) FromInks(row, out->width, cinfo->saw_Adobe_marker);
    }
    return true;
}

static bool Decode(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out) {
    if (index != 0) return false;
    jpeg_decompress_struct cinfo = {};
    Errors errors;
    cinfo.err = Install(&errors);
    bool ok = ReadImage(&cinfo, &errors, bytes, n, pixels, out);
    jpeg_destroy_decompress(&cinfo);
    return ok;
}

// Writing ----------------------------------------------------------------------------------------------------------

struct Encoded {
    unsigned char* bytes;
    unsigned long n;
};

static bool WriteImage(jpeg_compress_struct* cinfo, Errors* errors, const ZRGEncode* image, uint8_t* row,
                       Encoded* encoded) {
    if (setjmp(errors->jump)) return false;
    jpeg_create_compress(cinfo);
    jpeg_mem_dest(cinfo, &encoded->bytes, &encoded->n);
    cinfo->image_width = static_cast<JDIMENSION>(image->width);
    cinfo->image_height = static_cast<JDIMENSION>(image->height);
    cinfo->input_components = 3;
    cinfo->in_color_space = JCS_RGB;
    jpeg_set_defaults(cinfo);
    int quality = std::clamp(static_cast<int>(std::lround(image->quality * 100)), 1, 100);
    jpeg_set_quality(cinfo, quality, TRUE);
    if (quality >= kFineQuality) cinfo->comp_info[0].h_samp_factor = cinfo->comp_info[0].v_samp_factor = 1;
    if (image->dpiX > 0 && image->dpiY > 0) {
        cinfo->density_unit = 1;
        cinfo->X_density = static_cast<UINT16>(std::clamp(std::lround(image->dpiX), 1L, 65535L));
        cinfo->Y_density = static_cast<UINT16>(std::clamp(std::lround(image->dpiY), 1L, 65535L));
    }
    jpeg_start_compress(cinfo, TRUE);
    while (cinfo->next_scanline < cinfo->image_height) {
        FlattenRow(image, cinfo->next_scanline, row);
        jpeg_write_scanlines(cinfo, &row, 1);
    }
    jpeg_finish_compress(cinfo);
    return true;
}

static bool Encode(const ZRGEncode* images, long, ZRGWrite write, void* info) {
    std::vector<uint8_t> row(static_cast<size_t>(images->width) * 3);
    jpeg_compress_struct cinfo = {};
    Errors errors;
    cinfo.err = Install(&errors);
    Encoded encoded = {};
    bool ok = WriteImage(&cinfo, &errors, images, row.data(), &encoded) && write(info, encoded.bytes, encoded.n);
    jpeg_destroy_compress(&cinfo);
    free(encoded.bytes);
    return ok;
}

const Codec kJPEGCodec = {Knows, nullptr, Decode, Encode, /*many*/ false};
