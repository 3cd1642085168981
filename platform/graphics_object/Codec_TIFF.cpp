// TIFF by libtiff: any page read, written with LZW; a page that comes from a TIFF goes into another as it is.
#include <tiffio.h>

#include <algorithm>
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
};

static tmsize_t ReadBytes(thandle_t handle, void* out, tmsize_t n) {
    auto m = static_cast<Memory*>(handle);
    if (n <= 0 || m->at >= m->size) return 0;
    auto take = std::min(static_cast<uint64_t>(n), m->size - m->at);
    memcpy(out, (m->read ? m->read : m->written.data()) + m->at, take);
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
    File tiff = OpenBytes(&memory, bytes, n);
    if (!tiff || (index > 0 && !TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(index)))) return false;
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
    File from = OpenBytes(&memory, image->tiff, image->tiffLength);
    if (!from || !CanCopy(from.get(), to)) return false;
    if (image->tiffPage > 0 && !TIFFSetDirectory(from.get(), static_cast<tdir_t>(image->tiffPage))) return false;
    if (!CanCopy(from.get(), to)) return false;
    CopyTags(from.get(), to);
    if (image->dpiX > 0 && image->dpiY > 0) {
        TIFFSetField(to, TIFFTAG_XRESOLUTION, image->dpiX);
        TIFFSetField(to, TIFFTAG_YRESOLUTION, image->dpiY);
        TIFFSetField(to, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }
    return CopyPieces(from.get(), to, memory.size) && TIFFWriteDirectory(to) != 0;
}

// The whole file; copies = pages of TIFFs go over as they are. false = try without.
static bool WriteFile(const ZRGEncode* images, long count, bool copies, Memory* memory) {
    bool bigEndian = copies && images[0].tiff && images[0].tiff[0] == 'M';
    File tiff = Open(memory, bigEndian ? "wb" : "wl");
    if (!tiff) return false;
    for (long i = 0; i < count; ++i) {
        bool ok = copies && images[i].tiff ? CopyPage(tiff.get(), &images[i]) : WritePage(tiff.get(), &images[i]);
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
