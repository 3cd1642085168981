// GIF by giflib. A frame is the picture that stands on the screen when it is shown, with the frames before it.
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "platform/graphics_object/Codecs_Private.h"

static constexpr long kMostPixelsAByte = 1L << 12;  // a code of 12 bits stands for 4096 pixels at most
static constexpr long kSmallPicture = 1L << 22;     // pixels; below, any number of bytes will do
static constexpr long kMostWork = 1L << 28;         // pixels of all frames up to the one wanted

struct Input {
    const uint8_t* at;
    long left;
};

static int ReadBytes(GifFileType* gif, GifByteType* out, int n) {
    auto input = static_cast<Input*>(gif->UserData);
    int take = static_cast<int>(std::min<long>(n, input->left));
    if (take > 0) memcpy(out, input->at, static_cast<size_t>(take));
    input->at += take;
    input->left -= take;
    return take;
}

struct CloseReader {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Reader = std::unique_ptr<GifFileType, CloseReader>;

static bool Knows(const uint8_t* bytes, long n) { return n >= 6 && memcmp(bytes, "GIF8", 4) == 0; }

// Reading ----------------------------------------------------------------------------------------------------------

static bool SkipExtension(GifFileType* gif, GraphicsControlBlock* control) {
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif, &code, &block) != GIF_OK) return false;
    if (block && code == GRAPHICS_EXT_FUNC_CODE && control && block[0] >= 4)
        DGifExtensionToGCB(block[0], block + 1, control);
    while (block)
        if (DGifGetExtensionNext(gif, &block) != GIF_OK) return false;
    return true;
}

static bool SkipPixels(GifFileType* gif) {
    int size = 0;
    GifByteType* block = nullptr;
    if (DGifGetCode(gif, &size, &block) != GIF_OK) return false;
    while (block)
        if (DGifGetCodeNext(gif, &block) != GIF_OK) return false;
    return true;
}

// Goes on to the next frame's description; false = no more.
static bool NextFrame(GifFileType* gif, GraphicsControlBlock* control) {
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif, &type) != GIF_OK || type == TERMINATE_RECORD_TYPE) return false;
        if (type == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif) == GIF_OK;
        if (type == EXTENSION_RECORD_TYPE && !SkipExtension(gif, control)) return false;
    }
}

static long Count(const uint8_t* bytes, long n) {
    Input input = {bytes, n};
    int error = 0;
    Reader gif(DGifOpen(&input, ReadBytes, &error));
    long count = 0;
    while (gif && NextFrame(gif.get(), nullptr) && SkipPixels(gif.get())) ++count;
    return count;
}

static long InterlacedRow(long i, long height) {
    static constexpr struct { long first, step; } kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    for (auto& pass : kPasses) {
        long rows = height > pass.first ? (height - pass.first + pass.step - 1) / pass.step : 0;
        if (i < rows) return pass.first + i * pass.step;
        i -= rows;
    }
    return height - 1;
}

static void PutRow(const std::vector<GifByteType>& line, const ColorMapObject* map, int clear, long left, long y,
                   ZRGDecoded* out) {
    if (y < 0 || y >= out->height) return;
    for (size_t i = 0; i < line.size(); ++i) {
        long x = left + static_cast<long>(i);
        if (line[i] == clear || x < 0 || x >= out->width || line[i] >= map->ColorCount) continue;
        const GifColorType& color = map->Colors[line[i]];
        const uint8_t pixel[4] = {color.Red, color.Green, color.Blue, 255};
        memcpy(out->pixels + (y * out->width + x) * 4, pixel, 4);
    }
}

static bool DrawFrame(GifFileType* gif, int clear, ZRGDecoded* out) {
    const GifImageDesc& frame = gif->Image;
    const ColorMapObject* map = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
    if (!map || frame.Width < 1 || frame.Height < 1) return SkipPixels(gif);
    std::vector<GifByteType> line(static_cast<size_t>(frame.Width));
    for (long i = 0; i < frame.Height; ++i) {
        if (DGifGetLine(gif, line.data(), frame.Width) != GIF_OK) return i > 0;  // a cut picture keeps its rows
        PutRow(line, map, clear, frame.Left, frame.Top + (frame.Interlace ? InterlacedRow(i, frame.Height) : i), out);
    }
    return true;
}

// The part of a frame that lies on the screen
struct Patch {
    long left, top, right, bottom;
    long width() const { return right - left; }
    size_t bytes() const { return static_cast<size_t>(width() * (bottom - top)) * 4; }
};

static Patch PatchOf(const GifImageDesc& frame, const ZRGDecoded& screen) {
    long left = std::clamp<long>(frame.Left, 0, screen.width), top = std::clamp<long>(frame.Top, 0, screen.height);
    long right = std::clamp<long>(static_cast<long>(frame.Left) + frame.Width, left, screen.width);
    long bottom = std::clamp<long>(static_cast<long>(frame.Top) + frame.Height, top, screen.height);
    return {left, top, right, bottom};
}

// Calls row(pixels of the screen, offset into the patch, bytes) for each row.
template <class Row>
static void EachRow(const Patch& patch, ZRGDecoded* screen, Row row) {
    auto n = static_cast<size_t>(patch.width()) * 4;
    for (long y = patch.top; y < patch.bottom; ++y)
        row(screen->pixels + (y * screen->width + patch.left) * 4, static_cast<size_t>(y - patch.top) * n, n);
}

static bool DecodeFrames(GifFileType* gif, long index, ZRGDecoded* out) {
    std::vector<uint8_t> before;
    long work = 0;
    for (long i = 0; i <= index; ++i) {
        GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
        if (!NextFrame(gif, &control)) return false;
        Patch patch = PatchOf(gif->Image, *out);
        work += static_cast<long>(gif->Image.Width) * gif->Image.Height;
        bool keeps = control.DisposalMode == DISPOSE_PREVIOUS && i < index;
        if (keeps) work += 2 * static_cast<long>(patch.bytes() / 4);
        if (work > kMostWork) return false;
        if (keeps) {
            before.resize(patch.bytes());
            EachRow(patch, out, [&](uint8_t* row, size_t at, size_t n) { memcpy(before.data() + at, row, n); });
        }
        if (!DrawFrame(gif, control.TransparentColor, out)) return false;
        if (i == index) break;
        if (control.DisposalMode == DISPOSE_BACKGROUND)
            EachRow(patch, out, [](uint8_t* row, size_t, size_t n) { memset(row, 0, n); });
        if (keeps) EachRow(patch, out, [&](uint8_t* row, size_t at, size_t n) { memcpy(row, before.data() + at, n); });
    }
    return true;
}

static int AlphaOf(const ZRGDecoded& image) {
    for (long i = 0; i < image.width * image.height; ++i)
        if (image.pixels[i * 4 + 3] != 255) return kZRGStraight;
    return kZRGOpaque;
}

static bool Decode(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out) {
    Input input = {bytes, n};
    int error = 0;
    Reader gif(DGifOpen(&input, ReadBytes, &error));
    if (!gif) return false;
    out->width = gif->SWidth;
    out->height = gif->SHeight;
    out->alpha = kZRGStraight;
    if (!pixels) return Count(bytes, n) > index;
    long all = out->width * out->height;
    if (all > kSmallPicture && all / kMostPixelsAByte > n) return false;
    if (!AllocatePixels(out) || !DecodeFrames(gif.get(), index, out)) return false;
    out->alpha = AlphaOf(*out);
    return true;
}

// Writing ----------------------------------------------------------------------------------------------------------

static constexpr int kClearIndex = 255;  // of a picture with alpha

struct Palette {
    GifColorType colors[256] = {};
    std::vector<GifByteType> indexes;
};

// Pictures of few colours keep them all; false = too many.
static bool ExactPalette(const ZRGEncode* image, size_t most, Palette* palette) {
    std::map<uint32_t, GifByteType> known;
    for (long i = 0; i < image->width * image->height; ++i) {
        const uint8_t* p = image->pixels + i * 4;
        if (image->hasAlpha && p[3] < 128) {
            palette->indexes[static_cast<size_t>(i)] = kClearIndex;
            continue;
        }
        uint32_t color = static_cast<uint32_t>(p[0] << 16 | p[1] << 8 | p[2]);
        auto found = known.try_emplace(color, static_cast<GifByteType>(known.size()));
        if (known.size() > most) return false;
        palette->indexes[static_cast<size_t>(i)] = found.first->second;
        palette->colors[found.first->second] = {p[0], p[1], p[2]};
    }
    return true;
}

static bool NearPalette(const ZRGEncode* image, int most, Palette* palette) {
    size_t n = palette->indexes.size();
    std::vector<GifByteType> planes[3];
    for (int c = 0; c < 3; ++c) {
        planes[c].resize(n);
        for (size_t i = 0; i < n; ++i) planes[c][i] = image->pixels[i * 4 + static_cast<size_t>(c)];
    }
    if (GifQuantizeBuffer(static_cast<unsigned>(image->width), static_cast<unsigned>(image->height), &most,
                          planes[0].data(), planes[1].data(), planes[2].data(), palette->indexes.data(),
                          palette->colors) != GIF_OK)
        return false;
    for (size_t i = 0; image->hasAlpha && i < n; ++i)
        if (image->pixels[i * 4 + 3] < 128) palette->indexes[i] = kClearIndex;
    return true;
}

struct Output {
    ZRGWrite write;
    void* info;
};

static int WriteBytes(GifFileType* gif, const GifByteType* bytes, int n) {
    auto output = static_cast<Output*>(gif->UserData);
    return output->write(output->info, bytes, static_cast<size_t>(n)) ? n : 0;
}

static bool WriteFrame(GifFileType* gif, const ZRGEncode* image, Palette* palette) {
    std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)> map(GifMakeMapObject(256, palette->colors),
                                                                     GifFreeMapObject);
    auto w = static_cast<int>(image->width), h = static_cast<int>(image->height);
    EGifSetGifVersion(gif, /*gif89*/ true);
    if (!map || EGifPutScreenDesc(gif, w, h, 8, 0, map.get()) != GIF_OK) return false;
    if (image->hasAlpha) {
        GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 0, kClearIndex};
        GifByteType block[4];
        size_t n = EGifGCBToExtension(&control, block);
        if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(n), block) != GIF_OK) return false;
    }
    if (EGifPutImageDesc(gif, 0, 0, w, h, false, nullptr) != GIF_OK) return false;
    for (long y = 0; y < h; ++y)
        if (EGifPutLine(gif, palette->indexes.data() + y * w, w) != GIF_OK) return false;
    return true;
}

static bool Encode(const ZRGEncode* image, long, ZRGWrite write, void* info) {
    if (image->width > 65535 || image->height > 65535) return false;
    Palette palette;
    palette.indexes.resize(static_cast<size_t>(image->width * image->height));
    int most = image->hasAlpha ? 255 : 256;
    if (!ExactPalette(image, static_cast<size_t>(most), &palette) && !NearPalette(image, most, &palette)) return false;
    Output output = {write, info};
    int error = 0;
    GifFileType* gif = EGifOpen(&output, WriteBytes, &error);
    if (!gif) return false;
    bool ok = WriteFrame(gif, image, &palette);
    return EGifCloseFile(gif, nullptr) == GIF_OK && ok;
}

const Codec kGIFCodec = {Knows, Count, Decode, Encode, /*many*/ false};
