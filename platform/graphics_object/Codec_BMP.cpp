// BMP by hand: 1 to 32 bits, masks, run lengths; written with 24 bits.
//
//   0 "BM" | 2 size | 10 offset of the pixels | 14 header: its length, then width, height, planes, bits, compression,
//   size of the pixels, pixels per metre x and y, colours used, colours important | masks | palette | rows, 4-aligned
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "platform/graphics_object/Codecs_Private.h"

static constexpr double kMetresPerInch = 0.0254;
enum Compression : uint32_t { kPlain = 0, kRuns8 = 1, kRuns4 = 2, kMasks = 3, kMasksWithAlpha = 6 };

struct Bytes {
    const uint8_t* data;
    long n;
    uint32_t At(long offset, int size) const {  // little-endian; 0 outside
        uint32_t value = 0;
        if (offset < 0 || offset > n - size) return 0;
        for (int i = size; i-- > 0;) value = value << 8 | data[offset + i];
        return value;
    }
};

struct Header {
    long width, height;  // height positive
    bool topDown;
    int bits;
    uint32_t compression;
    long pixels;  // offset
    double dpiX, dpiY;
    uint32_t masks[4];                                // red, green, blue, alpha; 0 = none
    std::array<std::array<uint8_t, 3>, 256> palette;  // R,G,B
};

static bool Knows(const uint8_t* bytes, long n) { return n >= 26 && bytes[0] == 'B' && bytes[1] == 'M'; }

// Reading ----------------------------------------------------------------------------------------------------------

static void ReadPalette(const Bytes& file, long at, int entry, long used, Header* h) {
    long count = h->bits <= 8 ? 1L << h->bits : 0;
    if (used > 0) count = std::min(count, used);
    for (long i = 0; i < count; ++i)
        for (int c = 0; c < 3; ++c)
            h->palette[static_cast<size_t>(i)][static_cast<size_t>(2 - c)] =
                static_cast<uint8_t>(file.At(at + i * entry + c, 1));
}

static void ReadMasks(const Bytes& file, uint32_t length, Header* h) {
    if (h->compression == kMasks || h->compression == kMasksWithAlpha) {
        bool alpha = length >= 56 || h->compression == kMasksWithAlpha;
        for (int i = 0; i < (alpha ? 4 : 3); ++i) h->masks[i] = file.At(54 + 4 * i, 4);
    } else if (h->bits == 16) {
        h->masks[0] = 0x7C00, h->masks[1] = 0x3E0, h->masks[2] = 0x1F;
    } else {
        h->masks[0] = 0xFF0000, h->masks[1] = 0xFF00, h->masks[2] = 0xFF;
    }
}

static bool Consistent(const Header& h) {
    static constexpr int kBits[] = {1, 4, 8, 16, 24, 32};
    if (std::find(std::begin(kBits), std::end(kBits), h.bits) == std::end(kBits)) return false;
    if (h.compression == kRuns8) return h.bits == 8 && !h.topDown;
    if (h.compression == kRuns4) return h.bits == 4 && !h.topDown;
    if (h.compression == kMasks || h.compression == kMasksWithAlpha) return h.bits == 16 || h.bits == 32;
    return h.compression == kPlain;
}

static bool ReadHeader(const Bytes& file, Header* h) {
    uint32_t length = file.At(14, 4);
    h->pixels = file.At(10, 4);
    if (length == 12) {  // the oldest header
        h->width = file.At(18, 2), h->height = file.At(20, 2), h->bits = static_cast<int>(file.At(24, 2));
        ReadPalette(file, 26, 3, 0, h);
    } else if (length >= 40 && file.n >= 54) {
        h->width = static_cast<int32_t>(file.At(18, 4)), h->height = static_cast<int32_t>(file.At(22, 4));
        h->bits = static_cast<int>(file.At(28, 2)), h->compression = file.At(30, 4);
        h->dpiX = SnapResolution(static_cast<int32_t>(file.At(38, 4)) * kMetresPerInch);
        h->dpiY = SnapResolution(static_cast<int32_t>(file.At(42, 4)) * kMetresPerInch);
        ReadPalette(file, 14 + static_cast<long>(length), 4, file.At(46, 4), h);
    } else {
        return false;
    }
    h->topDown = h->height < 0;
    h->height = std::abs(h->height);
    ReadMasks(file, length, h);
    return SizeAllowed(h->width, h->height) && Consistent(*h);
}

static uint8_t Channel(uint32_t value, uint32_t mask, uint8_t none) {
    if (!mask) return none;
    int shift = __builtin_ctz(mask);
    uint64_t most = mask >> shift, part = (value & mask) >> shift;
    return static_cast<uint8_t>((part * 255 + most / 2) / most);
}

static void PutIndex(const Header& h, unsigned index, uint8_t* out) {
    memcpy(out, h.palette[index & 255].data(), 3);
    out[3] = 255;
}

static void ReadRow(const Header& h, const uint8_t* row, uint8_t* out) {
    for (long x = 0; x < h.width; ++x, out += 4) {
        if (h.bits <= 8) {
            long bit = x * h.bits;
            PutIndex(h, (row[bit / 8] >> (8 - h.bits - bit % 8)) & ((1u << h.bits) - 1), out);
            continue;
        }
        uint32_t value = 0;
        memcpy(&value, row + x * (h.bits / 8), static_cast<size_t>(h.bits / 8));
        for (int c = 0; c < 4; ++c) out[c] = Channel(value, h.masks[c], 255);
    }
}

static bool ReadRows(const Bytes& file, const Header& h, ZRGDecoded* out) {
    long stride = (h.width * h.bits + 31) / 32 * 4;
    if (h.pixels > file.n || stride > (file.n - h.pixels) / h.height) return false;
    if (!AllocatePixels(out)) return false;
    for (long y = 0; y < h.height; ++y) {
        long line = h.topDown ? y : h.height - 1 - y;
        ReadRow(h, file.data + h.pixels + y * stride, out->pixels + line * h.width * 4);
    }
    return true;
}

// A run of count pixels from (x, y), y counted from the bottom; what lies outside is dropped.
static void PutRun(const Header& h, ZRGDecoded* out, long x, long y, long count, unsigned first, unsigned second) {
    for (long i = 0; i < count && x + i < h.width; ++i)
        if (y < h.height) PutIndex(h, i % 2 ? second : first, out->pixels + ((h.height - 1 - y) * h.width + x + i) * 4);
}

static bool ReadRuns(const Bytes& file, const Header& h, ZRGDecoded* out) {
    if (h.pixels > file.n || h.width * h.height / 256 > file.n * 64 || !AllocatePixels(out)) return false;
    for (long i = 0; i < h.width * h.height; ++i) PutIndex(h, 0, out->pixels + i * 4);
    long at = h.pixels, x = 0, y = 0;
    bool nibbles = h.compression == kRuns4;
    while (at + 1 < file.n && y < h.height) {
        unsigned count = file.data[at], value = file.data[at + 1];
        at += 2;
        if (count > 0) {
            PutRun(h, out, x, y, count, nibbles ? value >> 4 : value, nibbles ? value & 15 : value);
            x += count;
        } else if (value == 0) {  // end of the line
            x = 0;
            ++y;
        } else if (value == 1) {  // end of the picture
            break;
        } else if (value == 2) {  // move
            x += file.At(at, 1);
            y += file.At(at + 1, 1);
            at += 2;
        } else {  // value pixels as they stand, filled up to 16 bits
            for (unsigned i = 0; i < value; ++i, ++x) {
                unsigned byte = file.At(at + (nibbles ? i / 2 : i), 1);
                unsigned pixel = !nibbles ? byte : i % 2 ? byte & 15 : byte >> 4;
                PutRun(h, out, x, y, 1, pixel, pixel);
            }
            at += ((nibbles ? (value + 1) / 2 : value) + 1) / 2 * 2;
        }
    }
    return true;
}

static bool Decode(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out) {
    Bytes file = {bytes, n};
    Header h = {};
    if (index != 0 || !ReadHeader(file, &h)) return false;
    out->width = h.width, out->height = h.height, out->dpiX = h.dpiX, out->dpiY = h.dpiY;
    out->alpha = h.bits > 8 && h.masks[3] ? kZRGStraight : kZRGOpaque;
    if (!pixels) return true;
    return h.compression == kRuns8 || h.compression == kRuns4 ? ReadRuns(file, h, out) : ReadRows(file, h, out);
}

// Writing ----------------------------------------------------------------------------------------------------------

static void Put(std::vector<uint8_t>* out, uint32_t value, int size) {
    for (int i = 0; i < size; ++i) out->push_back(static_cast<uint8_t>(value >> (8 * i)));
}

static uint32_t PerMetre(double dpi) {
    return dpi > 0 ? static_cast<uint32_t>(std::lround(std::min(dpi, 1e6) / kMetresPerInch)) : 0;
}

static bool Encode(const ZRGEncode* image, long, ZRGWrite write, void* info) {
    long stride = (image->width * 3 + 3) / 4 * 4, size = stride * image->height;
    if (size > 0x7FFFFF00) return false;
    std::vector<uint8_t> head;
    head.insert(head.end(), {'B', 'M'});
    for (uint32_t value : {static_cast<uint32_t>(54 + size), 0u, 54u, 40u, static_cast<uint32_t>(image->width),
                           static_cast<uint32_t>(image->height)})
        Put(&head, value, 4);
    Put(&head, 1, 2);
    Put(&head, 24, 2);
    for (uint32_t value : {0u, static_cast<uint32_t>(size), PerMetre(image->dpiX), PerMetre(image->dpiY), 0u, 0u})
        Put(&head, value, 4);
    if (!write(info, head.data(), head.size())) return false;
    std::vector<uint8_t> row(static_cast<size_t>(stride));
    for (long y = image->height; y-- > 0;) {
        FlattenRow(image, y, row.data());
        for (long x = 0; x < image->width; ++x)
            std::swap(row[static_cast<size_t>(3 * x)], row[static_cast<size_t>(3 * x + 2)]);
        if (!write(info, row.data(), row.size())) return false;
    }
    return true;
}

const Codec kBMPCodec = {Knows, nullptr, Decode, Encode, /*many*/ false};
