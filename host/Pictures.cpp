#include "host/Pictures.h"

#include <algorithm>
#include <cstring>

#include "host/Pool.h"

namespace zrhost {

namespace {

Pool<Picture>& PicturePool() {
    static Pool<Picture>& pool = *new Pool<Picture>;  // never ended: references may outlive every other static
    return pool;
}

constexpr PictureKind kKinds[] = {
    {"image/jpg", ".jpg", "JPEG"},       {"image/png", ".png", "PNG"},   {"image/bmp", ".bmp", "BMP"},
    {"image/gif", ".gif", "GIF"},        {"image/tiff", ".tif", "TIFF"}, {"application/pdf", ".pdf", "PDF"},
    {"image/svg+xml", ".svg", "SVG"},    {"image/x-emf", ".emf", "EMF"}, {"image/vnd.ms-photo", ".wdp", "JPEG XR"},
    {"image/vnd-ms.dds", ".dds", "DDS"},
};
enum Row { kJpeg, kPng, kBmp, kGif, kTiff, kPdf, kSvg, kEmf, kJpegXr, kDds };

// Other names under which a kind is asked for.
constexpr struct {
    const char* name;
    Row row;
} kOtherNames[] = {
    {"image/jpeg", kJpeg}, {".jpeg", kJpeg},    {"jpeg", kJpeg},        {"image/x-bmp", kBmp},
    {".tiff", kTiff},      {"image/svg", kSvg}, {"image/x-png", kPng},  {".jxr", kJpegXr},
    {".hdp", kJpegXr},     {"image/emf", kEmf}, {"image/jxr", kJpegXr}, {"image/vnd.ms-dds", kDds},
};

struct Signature {
    Row row;
    size_t at;
    std::string_view bytes;
};
using namespace std::string_view_literals;
constexpr Signature kSignatures[] = {
    {kPng, 0, "\x89PNG\r\n\x1a\n"sv},
    {kJpeg, 0, "\xff\xd8\xff"sv},
    {kGif, 0, "GIF87a"sv},
    {kGif, 0, "GIF89a"sv},
    {kBmp, 0, "BM"sv},
    {kTiff, 0, "II*\0"sv},
    {kTiff, 0, "MM\0*"sv},
    {kTiff, 0, "II+\0"sv},
    {kTiff, 0, "MM\0+"sv},
    {kPdf, 0, "%PDF-"sv},
    {kJpegXr, 0, "II\xbc\x01"sv},
    {kJpegXr, 0, "WMPHOTO\0"sv},
    {kDds, 0, "DDS "sv},
    {kEmf, 40, " EMF"sv},
};

std::string_view Chars(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Behind the document type that begins the text, with the declarations it may hold; npos = it does not end.
size_t EndOfDocumentType(std::string_view text) {
    char quote = 0;
    int depth = 0;
    for (size_t at = 2; at < text.size(); ++at) {
        const char c = text[at];
        if (quote) quote = c == quote ? 0 : quote;
        else if (c == '"' || c == '\'') quote = c;
        else if (c == '[') ++depth;
        else if (c == ']') --depth;
        else if (c == '>' && depth <= 0) return at;
    }
    return text.npos;
}

// The name of an element that a text begins with is "svg", with any prefix.
bool BeginsWithSvg(std::string_view text) {
    std::string_view name = text.substr(1, text.find_first_of(" \t\r\n>/", 1) - 1);
    if (const size_t colon = name.find(':'); colon != name.npos && colon > 0) name.remove_prefix(colon + 1);
    return name == "svg" && text.size() > 4;
}

// Where the root element of an SVG document begins: after a prolog, comments and a document type at most. npos = none.
size_t RootOfSvg(std::string_view text) {
    const std::string_view whole = text.substr(0, 1 << 20);
    text = whole;
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    for (;;) {
        size_t start = text.find_first_not_of(" \t\r\n");
        if (start == text.npos || text[start] != '<') return text.npos;
        text.remove_prefix(start);
        size_t end = text.npos;
        if (text.starts_with("<!--")) end = text.find("-->", 4);
        else if (text.starts_with("<?")) end = text.find('>');
        else if (text.starts_with("<!")) end = EndOfDocumentType(text);
        else return BeginsWithSvg(text) ? whole.size() - text.size() : text.npos;
        if (end == text.npos) return text.npos;
        text.remove_prefix(text.find('>', end) + 1);  // of a comment the end of its end
    }
}

uint32_t Big(std::span<const uint8_t> bytes, size_t at, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | (at + size_t(i) < bytes.size() ? bytes[at + size_t(i)] : 0);
    return value;
}

uint32_t Little(std::span<const uint8_t> bytes, size_t at, int count) {
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = value << 8 | (at + size_t(i) < bytes.size() ? bytes[at + size_t(i)] : 0);
    return value;
}

std::pair<int, int> Sized(uint32_t width, uint32_t height) {
    if (width > 0x7FFFFFFF || height > 0x7FFFFFFF) return {0, 0};
    return {int(width), int(height)};
}

std::pair<int, int> JpegSize(std::span<const uint8_t> bytes) {
    for (size_t at = 2; at + 9 < bytes.size();) {
        if (bytes[at] != 0xFF) return {0, 0};
        uint8_t marker = bytes[at + 1];
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame) return Sized(Big(bytes, at + 7, 2), Big(bytes, at + 5, 2));
        if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) at += 2;
        else at += 2 + std::max<size_t>(Big(bytes, at + 2, 2), 2);
    }
    return {0, 0};
}

std::pair<int, int> TiffSize(std::span<const uint8_t> bytes) {
    bool big = bytes[0] == 'M';
    auto read = [&](size_t at, int count) { return big ? Big(bytes, at, count) : Little(bytes, at, count); };
    size_t directory = read(4, 4);
    uint32_t width = 0, height = 0;
    uint32_t entries = read(directory, 2);
    for (uint32_t i = 0; i < entries && directory + 2 + 12 * size_t(i) + 12 <= bytes.size(); ++i) {
        size_t entry = directory + 2 + 12 * size_t(i);
        uint32_t tag = read(entry, 2), value = read(entry + 8, read(entry + 2, 2) == 3 ? 2 : 4);
        if (tag == 256) width = value;
        if (tag == 257) height = value;
    }
    return Sized(width, height);
}

// The number of an attribute of the root element, "12.5px" as 12; 0 = none.
int SvgAttribute(std::string_view root, std::string_view name) {
    size_t at = root.find(name);
    if (at == root.npos) return 0;
    at += name.size();
    int number = 0;
    for (; at < root.size() && root[at] >= '0' && root[at] <= '9' && number < 10000000; ++at)
        number = number * 10 + (root[at] - '0');
    return root.substr(at, 1) == "%" ? 0 : number;
}

std::pair<int, int> SvgSize(std::string_view text) {
    size_t start = RootOfSvg(text);
    if (start == text.npos) return {0, 0};
    std::string_view root = text.substr(start, text.find('>', start) - start);
    return {SvgAttribute(root, " width=\""), SvgAttribute(root, " height=\"")};
}

std::string Lower(std::string_view name) {
    std::string lower(name);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = char(c + 32);
    return lower;
}

}  // namespace

void Retain(Picture* picture) {
    if (picture) picture->references_.fetch_add(1, std::memory_order_relaxed);
}

void Release(Picture* picture) {
    if (picture && picture->references_.fetch_sub(1, std::memory_order_acq_rel) == 1) PicturePool().destroy(picture);
}

size_t Picture::byteCount() const { return representations_.empty() ? 0 : representations_.front().bytes.size(); }

Ref<Picture> NewPicture(std::vector<Representation> representations) {
    std::erase_if(representations, [](const Representation& one) { return one.bytes.empty(); });
    if (representations.empty()) return nullptr;
    Picture* picture = PicturePool().create();
    if (picture) picture->representations_ = std::move(representations);
    return Ref<Picture>::Adopt(picture);
}

Ref<Picture> NewPicture(std::span<const uint8_t> encoded) {
    if (encoded.empty()) return nullptr;
    const PictureKind* kind = SniffPicture(encoded);
    std::vector<Representation> one(1);
    one[0].type = kind ? kind->type : "application/octet-stream";
    one[0].bytes.assign(encoded.begin(), encoded.end());
    return NewPicture(std::move(one));
}

Picture* CheckedPicture(const void* address) { return address ? PicturePool().find(address) : nullptr; }
long LivePictures() { return PicturePool().live(); }

std::span<const PictureKind> PictureKinds() { return kKinds; }

const PictureKind* SniffPicture(std::span<const uint8_t> bytes) {
    std::string_view text = Chars(bytes);
    for (const Signature& row : kSignatures)
        if (text.size() >= row.at + row.bytes.size() && text.substr(row.at, row.bytes.size()) == row.bytes)
            return &kKinds[row.row];
    return RootOfSvg(text) != text.npos ? &kKinds[kSvg] : nullptr;
}

const PictureKind* FindPictureKind(std::string_view typeOrExtension) {
    std::string name = Lower(typeOrExtension);
    for (const PictureKind& kind : kKinds)
        if (name == kind.type || name == kind.extension || name == kind.extension + 1 || name == Lower(kind.name))
            return &kind;
    for (const auto& row : kOtherNames)
        if (name == row.name) return &kKinds[row.row];
    return nullptr;
}

std::pair<int, int> PictureSize(std::span<const uint8_t> bytes) {
    const PictureKind* kind = SniffPicture(bytes);
    if (!kind) return {0, 0};
    switch (kind - kKinds) {
        case kPng: return Sized(Big(bytes, 16, 4), Big(bytes, 20, 4));
        case kJpeg: return JpegSize(bytes);
        case kGif: return Sized(Little(bytes, 6, 2), Little(bytes, 8, 2));
        case kBmp: {
            uint32_t height = Little(bytes, 22, 4);  // negative = rows from the top
            return Sized(Little(bytes, 18, 4), height > 0x7FFFFFFF ? 0 - height : height);
        }
        case kTiff: return TiffSize(bytes);
        case kSvg: return SvgSize(Chars(bytes));
        case kDds: return Sized(Little(bytes, 16, 4), Little(bytes, 12, 4));
        default: return {0, 0};
    }
}

}  // namespace zrhost
