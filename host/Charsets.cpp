// Charsets of host/Text.h: the Unicode forms, ASCII and ISO 8859-1 here, all others in the Unicode object.
#include <algorithm>
#include <array>
#include <cstring>

#include "host/Host.h"
#include "host/Text.h"
#include "host/Unicode.h"

namespace zrhost {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

enum class Form { Utf8, Utf16, Utf16Swapped, Utf32, Utf32Swapped, Latin1, Ascii, None };

// One character from bytes; *used is at least 1. Invalid input is U+FFFD: of UTF-8, the longest piece that could have
// begun a character.
char32_t ReadUtf8(const uint8_t* bytes, size_t left, size_t* used) {
    uint8_t first = bytes[0];
    *used = 1;
    if (first < 0x80) return first;
    if (first < 0xC2 || first > 0xF4) return kReplacement;
    size_t wanted = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    char32_t character = first & (0x3F >> wanted);
    for (size_t i = 1; i <= wanted; ++i) {
        if (i >= left || (bytes[i] & 0xC0) != 0x80) return kReplacement;
        if (i == 1 && ((first == 0xE0 && bytes[1] < 0xA0) || (first == 0xED && bytes[1] > 0x9F) ||
                       (first == 0xF0 && bytes[1] < 0x90) || (first == 0xF4 && bytes[1] > 0x8F)))
            return kReplacement;
        character = character << 6 | (bytes[i] & 0x3F);
        *used = i + 1;
    }
    return character;
}

char16_t UnitAt(const uint8_t* bytes, bool swapped) {
    return swapped ? char16_t(bytes[0] << 8 | bytes[1]) : char16_t(bytes[1] << 8 | bytes[0]);
}

char32_t ReadUtf16(const uint8_t* bytes, size_t left, bool swapped, size_t* used) {
    *used = std::min<size_t>(left, 2);
    if (left < 2) return kReplacement;
    char16_t unit = UnitAt(bytes, swapped);
    if ((unit & 0xF800) != 0xD800) return unit;
    if ((unit & 0x0400) || left < 4) return kReplacement;
    char16_t low = UnitAt(bytes + 2, swapped);
    if ((low & 0xFC00) != 0xDC00) return kReplacement;
    *used = 4;
    return 0x10000 + (char32_t(unit & 0x3FF) << 10 | (low & 0x3FF));
}

char32_t ReadUtf32(const uint8_t* bytes, size_t left, bool swapped, size_t* used) {
    *used = std::min<size_t>(left, 4);
    if (left < 4) return kReplacement;
    char32_t character = swapped
                             ? char32_t(bytes[0]) << 24 | char32_t(bytes[1]) << 16 | char32_t(bytes[2]) << 8 | bytes[3]
                             : char32_t(bytes[3]) << 24 | char32_t(bytes[2]) << 16 | char32_t(bytes[1]) << 8 | bytes[0];
    return character > 0x10FFFF || (character & 0xFFFFF800) == 0xD800 ? kReplacement : character;
}

char32_t Read(Form form, const uint8_t* bytes, size_t left, size_t* used) {
    switch (form) {
        case Form::Utf8: return ReadUtf8(bytes, left, used);
        case Form::Utf16:
        case Form::Utf16Swapped: return ReadUtf16(bytes, left, form == Form::Utf16Swapped, used);
        case Form::Utf32:
        case Form::Utf32Swapped: return ReadUtf32(bytes, left, form == Form::Utf32Swapped, used);
        case Form::Ascii: *used = 1; return bytes[0] < 0x80 ? bytes[0] : kReplacement;
        default: *used = 1; return bytes[0];
    }
}

void PutBytes(uint32_t value, int count, bool highFirst, uint8_t* out) {
    for (int i = 0; i < count; ++i) out[highFirst ? count - 1 - i : i] = uint8_t(value >> (8 * i));
}

// The bytes of one character, at most 4; what the form lacks becomes "?".
int Write(Form form, char32_t c, uint8_t out[4]) {
    switch (form) {
        case Form::Utf8:
            if (c < 0x80) {
                out[0] = uint8_t(c);
                return 1;
            }
            if (c < 0x800) {
                out[0] = uint8_t(0xC0 | c >> 6);
                out[1] = uint8_t(0x80 | (c & 0x3F));
                return 2;
            }
            if (c < 0x10000) {
                out[0] = uint8_t(0xE0 | c >> 12);
                out[1] = uint8_t(0x80 | (c >> 6 & 0x3F));
                out[2] = uint8_t(0x80 | (c & 0x3F));
                return 3;
            }
            out[0] = uint8_t(0xF0 | c >> 18);
            out[1] = uint8_t(0x80 | (c >> 12 & 0x3F));
            out[2] = uint8_t(0x80 | (c >> 6 & 0x3F));
            out[3] = uint8_t(0x80 | (c & 0x3F));
            return 4;
        case Form::Utf16:
        case Form::Utf16Swapped: {
            bool highFirst = form == Form::Utf16Swapped;
            if (c < 0x10000) {
                PutBytes(c, 2, highFirst, out);
                return 2;
            }
            PutBytes(0xD800 + ((c - 0x10000) >> 10), 2, highFirst, out);
            PutBytes(0xDC00 + ((c - 0x10000) & 0x3FF), 2, highFirst, out + 2);
            return 4;
        }
        case Form::Utf32:
        case Form::Utf32Swapped: PutBytes(c, 4, form == Form::Utf32Swapped, out); return 4;
        default: out[0] = c < (form == Form::Ascii ? 0x80u : 0x100u) ? uint8_t(c) : uint8_t('?'); return 1;
    }
}

void Append(std::u16string* out, char32_t c) {
    if (c < 0x10000) {
        out->push_back(char16_t(c));
    } else {
        out->push_back(char16_t(0xD800 + ((c - 0x10000) >> 10)));
        out->push_back(char16_t(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
}

// Charset names without regard to case, blanks, "-" and "_".
std::string FoldCharset(std::string_view name) {
    std::string folded;
    for (char c : name)
        if (c != '-' && c != '_' && c != ' ') folded += c >= 'A' && c <= 'Z' ? char(c + 32) : c;
    return folded;
}

constexpr struct {
    const char* name;
    Form form;
    bool mark;
} kForms[] = {
    // mark: written with a byte order mark in front, and read by one
    {"utf8", Form::Utf8, false},          {"utf16", Form::Utf16, true},
    {"utf16le", Form::Utf16, false},      {"utf16be", Form::Utf16Swapped, false},
    {"ucs2", Form::Utf16, false},         {"utf32", Form::Utf32, true},
    {"utf32le", Form::Utf32, false},      {"utf32be", Form::Utf32Swapped, false},
    {"iso88591", Form::Latin1, false},    {"latin1", Form::Latin1, false},
    {"usascii", Form::Ascii, false},      {"ascii", Form::Ascii, false},
    {"ansix3.41968", Form::Ascii, false},
};

struct FormFound {
    Form form = Form::None;
    bool mark = false;
};

FormFound FindForm(std::string_view charset) {
    std::string folded = FoldCharset(charset);
    for (const auto& row : kForms)
        if (folded == row.name) return {row.form, row.mark};
    return {};
}

// Names that ICU knows by another name.
std::string ForObject(std::string_view charset) {
    std::string folded = FoldCharset(charset);
    if (folded == "macroman" || folded == "mac") return "macintosh";
    return std::string(charset);
}

constexpr struct {
    int number;
    const char* name;
} kNumbers[] = {
    // numbers of the internet's registry of charsets
    {3, "US-ASCII"},        {4, "ISO-8859-1"},      {5, "ISO-8859-2"},      {6, "ISO-8859-3"},
    {7, "ISO-8859-4"},      {8, "ISO-8859-5"},      {9, "ISO-8859-6"},      {10, "ISO-8859-7"},
    {11, "ISO-8859-8"},     {12, "ISO-8859-9"},     {13, "ISO-8859-10"},    {17, "Shift_JIS"},
    {18, "EUC-JP"},         {38, "EUC-KR"},         {39, "ISO-2022-JP"},    {106, "UTF-8"},
    {109, "ISO-8859-13"},   {110, "ISO-8859-14"},   {111, "ISO-8859-15"},   {112, "ISO-8859-16"},
    {113, "GBK"},           {114, "GB18030"},       {1013, "UTF-16BE"},     {1014, "UTF-16LE"},
    {1015, "UTF-16"},       {1017, "UTF-32"},       {1018, "UTF-32BE"},     {1019, "UTF-32LE"},
    {2009, "IBM850"},       {2011, "IBM437"},       {2025, "GB2312"},       {2026, "Big5"},
    {2027, "macintosh"},    {2084, "KOI8-R"},       {2088, "KOI8-U"},       {2250, "windows-1250"},
    {2251, "windows-1251"}, {2252, "windows-1252"}, {2253, "windows-1253"}, {2254, "windows-1254"},
    {2255, "windows-1255"}, {2256, "windows-1256"}, {2257, "windows-1257"}, {2258, "windows-1258"},
    {2259, "TIS-620"},
};

constexpr size_t kLargest = 0x3FFFFFFF;

}  // namespace

std::u16string FromUtf8(std::string_view bytes) {
    std::u16string out;
    out.reserve(bytes.size());
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    for (size_t i = 0; i < bytes.size();) {
        if (data[i] < 0x80) {
            out.push_back(data[i++]);
            continue;
        }
        size_t used;
        Append(&out, ReadUtf8(data + i, bytes.size() - i, &used));
        i += used;
    }
    return out;
}

std::string ToUtf8(std::u16string_view units) {
    std::string out;
    out.reserve(units.size());
    for (size_t i = 0; i < units.size();) {
        if (units[i] < 0x80) {
            out.push_back(char(units[i++]));
            continue;
        }
        size_t used;
        char32_t c =
            ReadUtf16(reinterpret_cast<const uint8_t*>(units.data() + i), (units.size() - i) * 2, false, &used);
        uint8_t bytes[4];
        int count = Write(Form::Utf8, c, bytes);
        out.append(reinterpret_cast<const char*>(bytes), size_t(count));
        i += used / 2;
    }
    return out;
}

bool DecodeText(std::span<const uint8_t> bytes, std::string_view charset, std::u16string* out) {
    out->clear();
    auto [form, mark] = FindForm(charset);
    if (form == Form::None) {
        const UnicodeTable* table = Unicode();
        std::string name = ForObject(charset);
        if (!table || !table->isCharset(name.c_str()) || bytes.size() > kLargest) return false;
        out->resize(bytes.size() + 16);
        for (;;) {
            int32_t length =
                table->decode(name.c_str(), bytes.data(), int32_t(bytes.size()), out->data(), int32_t(out->size()));
            bool fits = length >= 0 && size_t(length) <= out->size();
            out->resize(size_t(std::max(length, 0)));
            if (length < 0 || fits) return length >= 0;
        }
    }
    size_t i = 0;
    if (mark && form == Form::Utf16 && bytes.size() >= 2) {
        if (bytes[0] == 0xFE && bytes[1] == 0xFF) form = Form::Utf16Swapped;
        if (form == Form::Utf16Swapped || (bytes[0] == 0xFF && bytes[1] == 0xFE)) i = 2;
    } else if (mark && form == Form::Utf32 && bytes.size() >= 4) {
        static constexpr uint8_t high[] = {0, 0, 0xFE, 0xFF}, low[] = {0xFF, 0xFE, 0, 0};
        if (std::equal(high, high + 4, bytes.begin())) form = Form::Utf32Swapped;
        if (form == Form::Utf32Swapped || std::equal(low, low + 4, bytes.begin())) i = 4;
    } else if (form == Form::Utf8 && bytes.size() >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF) {
        i = 3;
    }
    out->reserve(bytes.size());
    while (i < bytes.size()) {
        size_t used;
        char32_t c = Read(form, bytes.data() + i, bytes.size() - i, &used);
        Append(out, c);
        i += used;
    }
    return true;
}

bool EncodeText(std::u16string_view text, std::string_view charset, std::vector<uint8_t>* out) {
    out->clear();
    auto [form, mark] = FindForm(charset);
    if (form == Form::None) {
        const UnicodeTable* table = Unicode();
        std::string name = ForObject(charset);
        if (!table || !table->isCharset(name.c_str()) || text.size() > kLargest) return false;
        out->resize(text.size() * 2 + 16);
        for (;;) {
            int32_t length =
                table->encode(name.c_str(), text.data(), int32_t(text.size()), out->data(), int32_t(out->size()));
            bool fits = length >= 0 && size_t(length) <= out->size();
            out->resize(size_t(std::max(length, 0)));
            if (length < 0 || fits) return length >= 0;
        }
    }
    const auto* units = reinterpret_cast<const uint8_t*>(text.data());
    size_t size = text.size() * 2;
    uint8_t bytes[4];
    if (mark) out->insert(out->end(), bytes, bytes + Write(form, 0xFEFF, bytes));
    for (size_t i = 0; i < size;) {
        size_t used;
        char32_t c = ReadUtf16(units + i, size - i, false, &used);
        i += used;
        out->insert(out->end(), bytes, bytes + Write(form, c, bytes));
    }
    return true;
}

std::string CharsetByNumber(int number) {
    for (const auto& row : kNumbers)
        if (row.number == number) return row.name;
    return {};
}

bool IsCharset(std::string_view charset) {
    if (FindForm(charset).form != Form::None) return true;
    const UnicodeTable* table = Unicode();
    return table && table->isCharset(ForObject(charset).c_str());
}

int64_t ConvertBytes(std::span<const uint8_t> source, int from, uint8_t* target, int64_t room, int to) {
    auto formOf = [](int charset) {
        switch (charset) {
            case eCS_UTF16: return Form::Utf16;
            case eCS_UTF32: return Form::Utf32;
            case eCS_UTF8:
            case eCS_System: return Form::Utf8;
            default: return Form::None;
        }
    };
    Form reader = formOf(from), writer = formOf(to);
    if (reader == Form::None || writer == Form::None) return -1;
    int64_t written = 0;
    for (size_t i = 0; i < source.size();) {
        size_t used;
        char32_t c = Read(reader, source.data() + i, source.size() - i, &used);
        uint8_t bytes[4];
        int count = Write(writer, c, bytes);
        if (count > room - written) break;
        std::memcpy(target + written, bytes, size_t(count));
        written += count;
        i += used;
    }
    return written;
}

}  // namespace zrhost
