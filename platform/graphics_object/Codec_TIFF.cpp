// TIFF by libtiff: any page read, written with LZW; a page that comes from a TIFF goes into another as it is.
#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/graphics_object/Codecs_Private.h"

static constexpr double kInchPerCentimetre = 2.54;
static constexpr long kMostMemory = 1L << 30;         // bytes of one allocation within the library
static constexpr uint64_t kMostWritten = 1ULL << 32;  // bytes of a file

// A file in memory.
struct Memory {
    const uint8_t* read = nullptr;  // the bytes of a file that is read
    uint64_t size = 0, at = 0;
    std::vector<uint8_t> written;
    std::vector<uint8_t> head;  // stands for as many bytes at the begin of read
};

static tmsize_t ReadBytes(thandle_t handle, void* out, tmsize_t n) {
    auto m = static_cast<Memory*>(handle);
    if (n <= 0 || m->at >= m->size) return 0;
    auto take = std::min(static_cast<uint64_t>(n), m->size - m->at);
    memcpy(out, (m->read ? m->read : m->written.data()) + m->at, take);
    if (m->at < m->head.size()) memcpy(out, m->head.data() + m->at, std::min<uint64_t>(take, m->head.size() - m->at));
    m->at += take;
    return static_cast<tmsize_t>(take);
}

static tmsize_t WriteBytes(thandle_t handle, void* bytes, tmsize_t n) {
    auto m = static_cast<Memory*>(handle);
    if (m->read || n <= 0 || m->at > kMostWritten || m->at + static_cast<uint64_t>(n) > kMostWritten) return 0;
    try {
        if (m->at + static_cast<uint64_t>(n) > m->written.size()) m->written.resize(m->at + static_cast<uint64_t>(n));
    } catch (const std::bad_alloc&) { return 0; }
    memcpy(m->written.data() + m->at, bytes, static_cast<size_t>(n));
    m->at += static_cast<uint64_t>(n);
    m->size = m->written.size();
    return n;
}

static toff_t Seek(thandle_t handle, toff_t offset, int whence) {
    auto m = static_cast<Memory*>(handle);
    uint64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? m->at : m->size;
    return m->at = base + offset;
}

static int Close(thandle_t) { return 0; }
static toff_t Size(thandle_t handle) { return static_cast<Memory*>(handle)->size; }
static int Quiet(TIFF*, void*, const char*, const char*, va_list) { return 1; }

struct CloseTIFF {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using File = std::unique_ptr<TIFF, CloseTIFF>;

static File Open(Memory* memory, const char* mode) {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (!options) return nullptr;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMostMemory);
    TIFFOpenOptionsSetErrorHandlerExtR(options, Quiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, Quiet, nullptr);
    File file(
        TIFFClientOpenExt("memory", mode, memory, ReadBytes, WriteBytes, Seek, Close, Size, nullptr, nullptr, options));
    TIFFOpenOptionsFree(options);
    return file;
}

static File OpenBytes(Memory* memory, const uint8_t* bytes, long n) {
    memory->read = bytes;
    memory->size = static_cast<uint64_t>(n);
    return Open(memory, "rm");
}

static bool Knows(const uint8_t* bytes, long n) {
    static constexpr const char* kMagics[] = {"II*\0", "MM\0*", "II+\0", "MM\0+"};
    return n >= 8 &&
           std::any_of(std::begin(kMagics), std::end(kMagics), [&](auto magic) { return !memcmp(bytes, magic, 4); });
}

// Reading ----------------------------------------------------------------------------------------------------------

static long Count(const uint8_t* bytes, long n) {
    Memory memory;
    File tiff = OpenBytes(&memory, bytes, n);
    return tiff ? static_cast<long>(TIFFNumberOfDirectories(tiff.get())) : 0;
}

// The chain of directories: each ends with the place of the next. Numbers stand in the file's byte order.
template <bool kSwapped>
struct Chain {
    const uint8_t* bytes;
    uint64_t size;

    template <class Number>
    uint64_t Read(uint64_t at) const {  // 0 beyond the end
        Number value;
        if (size < sizeof value || at > size - sizeof value) return 0;
        memcpy(&value, bytes + at, sizeof value);
        if constexpr (!kSwapped) return value;
        else if constexpr (sizeof value == 2) return __builtin_bswap16(value);
        else if constexpr (sizeof value == 4) return __builtin_bswap32(value);
        else return __builtin_bswap64(value);
    }
    uint64_t After(uint64_t directory) const { return Read<uint32_t>(directory + 2 + Read<uint16_t>(directory) * 12); }
    uint64_t AfterBig(uint64_t directory) const {  // of a file with 64-bit places
        uint64_t rows = Read<uint64_t>(directory);
        return rows <= size / 20 ? Read<uint64_t>(directory + 8 + rows * 20) : 0;
    }

    // Where a directory begins; 0 = there is none: a chain that comes back ends where it does.
    template <class Next>
    uint64_t Place(long index, uint64_t first, Next next) const {
        uint64_t place = first;
        bool ascends = true;
        for (long i = 0; i < index && place != 0; ++i) {
            if (static_cast<uint64_t>(i) > size / 6) return 0;  // as many do not fit
            uint64_t before = place;
            place = next(place);
            ascends = ascends && place > before;
        }
        uint64_t earlier = first;
        for (long i = 0; i < index && place != 0 && !ascends; ++i, earlier = next(earlier))
            if (earlier == place) return 0;
        return place;
    }
    uint64_t Place(long index, bool big) const {
        if (big) return Place(index, Read<uint64_t>(8), [this](uint64_t at) { return AfterBig(at); });
        return Place(index, Read<uint32_t>(4), [this](uint64_t at) { return After(at); });
    }
};

static uint64_t PlaceOfDirectory(const uint8_t* bytes, long n, long index) {
    bool bigEndian = bytes[0] == 'M', big = bytes[bigEndian ? 3 : 2] == '+';
    auto size = static_cast<uint64_t>(n);
    bool swapped = bigEndian == (std::endian::native == std::endian::little);
    return swapped ? Chain<true>{bytes, size}.Place(index, big) : Chain<false>{bytes, size}.Place(index, big);
}

// The file as if the page were its first: the library's own ways to a page run through all of them.
static File OpenPage(Memory* memory, const uint8_t* bytes, long n, long index) {
    if (index == 0) return OpenBytes(memory, bytes, n);
    uint64_t place = n >= 16 ? PlaceOfDirectory(bytes, n, index) : 0;
    if (place == 0) return nullptr;
    bool bigEndian = bytes[0] == 'M', big = bytes[bigEndian ? 3 : 2] == '+';
    size_t at = big ? 8 : 4, width = at;
    memory->head.assign(bytes, bytes + at + width);
    for (size_t i = 0; i < width; ++i)
        memory->head[at + (bigEndian ? width - 1 - i : i)] = static_cast<uint8_t>(place >> (8 * i));
    return OpenBytes(memory, bytes, n);
}

static void ReadResolution(TIFF* tiff, ZRGDecoded* out) {
    float x = 0, y = 0;
    uint16_t unit = RESUNIT_INCH;
    if (!TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) || !TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y)) return;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER) return;
    double factor = unit == RESUNIT_CENTIMETER ? kInchPerCentimetre : 1;
    out->dpiX = SnapResolution(static_cast<double>(x) * factor);
    out->dpiY = SnapResolution(static_cast<double>(y) * factor);
}

static uint16_t AlphaSample(TIFF* tiff) {
    uint16_t n = 0, *kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &n, &kinds);
    bool alpha = n > 0 && kinds && (kinds[0] == EXTRASAMPLE_ASSOCALPHA || kinds[0] == EXTRASAMPLE_UNASSALPHA);
    return alpha ? kinds[0] : EXTRASAMPLE_UNSPECIFIED;
}

static uint16_t Tag(TIFF* tiff, uint32_t tag) {
    uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

// Whether the rows are R,G,B,A bytes with straight alpha, so that they need no conversion, which would premultiply.
static bool IsPlainRGBA(TIFF* tiff) {
    uint16_t compression = Tag(tiff, TIFFTAG_COMPRESSION);
    bool simple = compression == COMPRESSION_NONE || compression == COMPRESSION_LZW ||
                  compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_PACKBITS;
    return simple && !TIFFIsTiled(tiff) && Tag(tiff, TIFFTAG_BITSPERSAMPLE) == 8 &&
           Tag(tiff, TIFFTAG_SAMPLESPERPIXEL) == 4 && Tag(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_RGB &&
           Tag(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG &&
           Tag(tiff, TIFFTAG_ORIENTATION) == ORIENTATION_TOPLEFT && AlphaSample(tiff) == EXTRASAMPLE_UNASSALPHA;
}

static bool ReadPixels(TIFF* tiff, ZRGDecoded* out) {
    if (!AllocatePixels(out)) return false;
    if (IsPlainRGBA(tiff) && TIFFScanlineSize64(tiff) == static_cast<uint64_t>(out->width) * 4) {
        for (long y = 0; y < out->height; ++y)
            if (TIFFReadScanline(tiff, out->pixels + y * out->width * 4, static_cast<uint32_t>(y), 0) < 0) return false;
        return true;
    }
    out->alpha = AlphaSample(tiff) == EXTRASAMPLE_UNSPECIFIED ? kZRGOpaque : kZRGPremultiplied;
    return TIFFReadRGBAImageOriented(tiff, static_cast<uint32_t>(out->width), static_cast<uint32_t>(out->height),
                                     reinterpret_cast<uint32_t*>(out->pixels), ORIENTATION_TOPLEFT,
                                     /*stop on error*/ 1) != 0;
}

static bool Decode(const uint8_t* bytes, long n, long index, bool pixels, ZRGDecoded* out) {
    Memory memory;
    File tiff = OpenPage(&memory, bytes, n, index);
    if (!tiff) return false;
    uint32_t width = 0, height = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    out->width = width;
    out->height = height;
    out->alpha = AlphaSample(tiff.get()) == EXTRASAMPLE_UNSPECIFIED ? kZRGOpaque : kZRGStraight;
    ReadResolution(tiff.get(), out);
    return !pixels || ReadPixels(tiff.get(), out);
}

// Copying a page as it is ------------------------------------------------------------------------------------------

template <class... Values>
static void CopyTag(TIFF* from, TIFF* to, uint32_t tag, Values... values) {
    if (TIFFGetField(from, tag, &values...)) TIFFSetField(to, tag, values...);
}

// The tags by the C types that they travel in. Compression comes first: it brings tags of its own.
static void CopyTags(TIFF* from, TIFF* to) {
    uint16_t u16 = 0;
    CopyTag(from, to, TIFFTAG_COMPRESSION, u16);
    for (uint32_t tag : {TIFFTAG_SUBFILETYPE, TIFFTAG_IMAGEWIDTH, TIFFTAG_IMAGELENGTH, TIFFTAG_ROWSPERSTRIP,
                         TIFFTAG_TILEWIDTH, TIFFTAG_TILELENGTH, TIFFTAG_GROUP3OPTIONS, TIFFTAG_GROUP4OPTIONS})
        CopyTag(from, to, tag, uint32_t());
    for (uint32_t tag :
         {TIFFTAG_BITSPERSAMPLE, TIFFTAG_SAMPLESPERPIXEL, TIFFTAG_PHOTOMETRIC, TIFFTAG_THRESHHOLDING, TIFFTAG_FILLORDER,
          TIFFTAG_ORIENTATION, TIFFTAG_MINSAMPLEVALUE, TIFFTAG_MAXSAMPLEVALUE, TIFFTAG_RESOLUTIONUNIT,
          TIFFTAG_PLANARCONFIG, TIFFTAG_PREDICTOR, TIFFTAG_INKSET, TIFFTAG_SAMPLEFORMAT, TIFFTAG_YCBCRPOSITIONING})
        CopyTag(from, to, tag, u16);
    for (uint32_t tag : {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION, TIFFTAG_XPOSITION, TIFFTAG_YPOSITION})
        CopyTag(from, to, tag, float());
    for (uint32_t tag :
         {TIFFTAG_DATETIME, TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_SOFTWARE, TIFFTAG_ARTIST,
          TIFFTAG_MAKE, TIFFTAG_MODEL, TIFFTAG_PAGENAME, TIFFTAG_HOSTCOMPUTER, TIFFTAG_COPYRIGHT})
        CopyTag(from, to, tag, static_cast<char*>(nullptr));
    for (uint32_t tag :
         {TIFFTAG_REFERENCEBLACKWHITE, TIFFTAG_YCBCRCOEFFICIENTS, TIFFTAG_WHITEPOINT, TIFFTAG_PRIMARYCHROMATICITIES})
        CopyTag(from, to, tag, static_cast<float*>(nullptr));
    for (uint32_t tag : {TIFFTAG_JPEGTABLES, TIFFTAG_ICCPROFILE})
        CopyTag(from, to, tag, uint32_t(), static_cast<void*>(nullptr));
    CopyTag(from, to, TIFFTAG_YCBCRSUBSAMPLING, u16, u16);
    CopyTag(from, to, TIFFTAG_EXTRASAMPLES, u16, static_cast<uint16_t*>(nullptr));
    uint16_t* map = nullptr;
    CopyTag(from, to, TIFFTAG_COLORMAP, map, map, map);
}

// The raw size of strip or tile i; 0 = not inside the file.
static tmsize_t RawSize(TIFF* tiff, uint32_t i, uint64_t fileSize) {
    uint64_t size = TIFFGetStrileByteCount(tiff, i);
    return size <= fileSize ? static_cast<tmsize_t>(size) : 0;
}

static bool CopyPieces(TIFF* from, TIFF* to, uint64_t fileSize) {
    bool tiled = TIFFIsTiled(from);
    uint32_t n = tiled ? TIFFNumberOfTiles(from) : TIFFNumberOfStrips(from);
    std::vector<uint8_t> piece;
    for (uint32_t i = 0; i < n; ++i) {
        tmsize_t size = RawSize(from, i, fileSize);
        if (size < 1) return false;
        piece.resize(static_cast<size_t>(size));
        tmsize_t got =
            tiled ? TIFFReadRawTile(from, i, piece.data(), size) : TIFFReadRawStrip(from, i, piece.data(), size);
        if (got != size) return false;
        tmsize_t put =
            tiled ? TIFFWriteRawTile(to, i, piece.data(), size) : TIFFWriteRawStrip(to, i, piece.data(), size);
        if (put != size) return false;
    }
    return n > 0;
}

static bool CanCopy(TIFF* from, TIFF* to) {
    uint16_t compression = Tag(from, TIFFTAG_COMPRESSION);
    return TIFFIsBigEndian(from) == TIFFIsBigEndian(to) && compression != COMPRESSION_OJPEG &&
           TIFFIsCODECConfigured(compression);
}

// Writing ----------------------------------------------------------------------------------------------------------

static bool WritePage(TIFF* tiff, const ZRGEncode* image) {
    auto set = [&](uint32_t tag, auto... values) { TIFFSetField(tiff, tag, values...); };
    int samples = image->hasAlpha ? 4 : 3;
    set(TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(image->width));
    set(TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(image->height));
    set(TIFFTAG_BITSPERSAMPLE, 8);
    set(TIFFTAG_SAMPLESPERPIXEL, samples);
    set(TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    if (image->hasAlpha) {
        uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        set(TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    if (image->dpiX > 0 && image->dpiY > 0) {
        set(TIFFTAG_XRESOLUTION, image->dpiX);
        set(TIFFTAG_YRESOLUTION, image->dpiY);
        set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }
    set(TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    std::vector<uint8_t> row(static_cast<size_t>(image->width * samples));
    for (long y = 0; y < image->height; ++y) {
        const uint8_t* from = image->pixels + y * image->width * 4;
        for (long x = 0; x < image->width; ++x)
            memcpy(row.data() + x * samples, from + x * 4, static_cast<size_t>(samples));
        if (TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), 0) < 0) return false;
    }
    return TIFFWriteDirectory(tiff) != 0;
}

static bool CopyPage(TIFF* to, const ZRGEncode* image) {
    Memory memory;
    File from = OpenPage(&memory, image->tiff, image->tiffLength, image->tiffPage);
    if (!from || !CanCopy(from.get(), to)) return false;
    CopyTags(from.get(), to);
    if (image->dpiX > 0 && image->dpiY > 0) {
        TIFFSetField(to, TIFFTAG_XRESOLUTION, image->dpiX);
        TIFFSetField(to, TIFFTAG_YRESOLUTION, image->dpiY);
        TIFFSetField(to, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }
    return CopyPieces(from.get(), to, memory.size) && TIFFWriteDirectory(to) != 0;
}

// Whether the page goes over whole into a file of this byte order: a page half copied could not be taken back.
static bool CopiesWhole(const ZRGEncode* image, bool bigEndian) {
    Memory memory;
    File scratch = image->tiff ? Open(&memory, bigEndian ? "wb" : "wl") : nullptr;
    return scratch && CopyPage(scratch.get(), image);
}

// The whole file; copies = pages of TIFFs go over as they are if they can. false = try without.
static bool WriteFile(const ZRGEncode* images, long count, bool copies, Memory* memory) {
    bool bigEndian = copies && images[0].tiff && images[0].tiff[0] == 'M';
    File tiff = Open(memory, bigEndian ? "wb" : "wl");
    if (!tiff) return false;
    for (long i = 0; i < count; ++i) {
        bool copy = copies && CopiesWhole(&images[i], bigEndian);
        bool ok = copy ? CopyPage(tiff.get(), &images[i]) : WritePage(tiff.get(), &images[i]);
        if (!ok) return false;
    }
    return true;
}

static bool Encode(const ZRGEncode* images, long count, ZRGWrite write, void* info) {
    for (bool copies : {true, false}) {
        Memory memory;
        if (WriteFile(images, count, copies, &memory)) return write(info, memory.written.data(), memory.written.size());
    }
    return false;
}

const Codec kTIFFCodec = {Knows, Count, Decode, Encode, /*many*/ true};
