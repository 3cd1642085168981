// Strings: UTF-16 units inside, bytes of a charset outside. A decoder and an encoder per charset handle one character.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "platform/CoreFoundation/CoreFoundation_Private.h"

static constexpr char32_t kReplacement = 0xFFFD;

static bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c < 0xDC00; }
static bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c < 0xE000; }
static bool IsCharacter(char32_t c) { return c <= 0x10FFFF && !(c >= 0xD800 && c < 0xE000); }

// Decoding ---------------------------------------------------------------------------------------------------------

static void AppendCharacter(std::u16string* units, char32_t c) {
    if (c < 0x10000) {
        units->push_back(static_cast<char16_t>(c));
    } else {
        units->push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
        units->push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    }
}

// One character of UTF-8 from *at; false = not UTF-8.
static bool DecodeUTF8(const UInt8** at, const UInt8* end, char32_t* c) {
    UInt8 lead = *(*at)++;
    int more = lead < 0x80                   ? 0
               : lead >= 0xC2 && lead < 0xE0 ? 1
               : lead >= 0xE0 && lead < 0xF0 ? 2
               : lead < 0xF5                 ? 3
                                             : -1;
    if (more < 0 || (lead >= 0x80 && lead < 0xC2) || end - *at < more) return false;
    *c = more == 0 ? lead : lead & (0x3F >> more);
    for (int i = 0; i < more; ++i) {
        UInt8 next = *(*at)++;
        if ((next & 0xC0) != 0x80) return false;
        *c = (*c << 6) | (next & 0x3F);
    }
    static constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    return *c >= kLeast[more] && IsCharacter(*c);
}

static std::optional<std::u16string> FromUTF8(const UInt8* at, const UInt8* end) {
    std::u16string units;
    units.reserve(static_cast<size_t>(end - at));
    while (at < end) {
        char32_t c;
        if (!DecodeUTF8(&at, end, &c)) return std::nullopt;
        AppendCharacter(&units, c);
    }
    return units;
}

static std::optional<std::u16string> FromUTF16(const UInt8* bytes, CFIndex n, bool swap) {
    if (n % 2) return std::nullopt;
    std::u16string units(static_cast<size_t>(n / 2), 0);
    if (n > 0) memcpy(units.data(), bytes, static_cast<size_t>(n));
    if (swap)
        for (auto& unit : units) unit = static_cast<char16_t>(__builtin_bswap16(unit));
    return units;
}

static std::optional<std::u16string> FromUTF32(const UInt8* bytes, CFIndex n, bool swap) {
    if (n % 4) return std::nullopt;
    std::u16string units;
    units.reserve(static_cast<size_t>(n / 4));
    for (CFIndex i = 0; i < n; i += 4) {
        uint32_t c;
        memcpy(&c, bytes + i, 4);
        if (swap) c = __builtin_bswap32(c);
        if (!IsCharacter(c)) return std::nullopt;
        AppendCharacter(&units, c);
    }
    return units;
}

static std::optional<std::u16string> FromSingleBytes(const UInt8* bytes, CFIndex n, UInt8 last) {
    std::u16string units;
    units.reserve(static_cast<size_t>(n));
    for (CFIndex i = 0; i < n; ++i) {
        if (bytes[i] > last) return std::nullopt;
        units.push_back(bytes[i]);
    }
    return units;
}

// A byte order mark in front of bytes from outside: dropped, true = the other order.
static bool TakeByteOrderMark(const UInt8** bytes, CFIndex* n) {
    if (*n < 2) return false;
    bool same = (*bytes)[0] == 0xFF && (*bytes)[1] == 0xFE, other = (*bytes)[0] == 0xFE && (*bytes)[1] == 0xFF;
    if (same || other) {
        *bytes += 2;
        *n -= 2;
    }
    return other;
}

static std::optional<std::u16string> Decode(const UInt8* bytes, CFIndex n, CFStringEncoding encoding, bool isExternal) {
    switch (encoding) {
        case kCFStringEncodingUTF8: return FromUTF8(bytes, bytes + n);
        case kCFStringEncodingUnicode: {
            bool swap = isExternal && TakeByteOrderMark(&bytes, &n);
            return FromUTF16(bytes, n, swap);
        }
        case kCFStringEncodingUTF16LE: return FromUTF16(bytes, n, /*swap*/ false);
        case kCFStringEncodingUTF16BE: return FromUTF16(bytes, n, /*swap*/ true);
        case kCFStringEncodingUTF32:
        case kCFStringEncodingUTF32LE: return FromUTF32(bytes, n, /*swap*/ false);
        case kCFStringEncodingUTF32BE: return FromUTF32(bytes, n, /*swap*/ true);
        case kCFStringEncodingISOLatin1: return FromSingleBytes(bytes, n, 0xFF);
        case kCFStringEncodingASCII:
        case kCFStringEncodingMacRoman: return FromSingleBytes(bytes, n, 0x7F);
        default: return std::nullopt;
    }
}

// Encoding ---------------------------------------------------------------------------------------------------------

// The character at index i, and how many units it takes; a lone surrogate stands for itself.
static char32_t CharacterAt(std::u16string_view units, size_t i, CFIndex* taken) {
    char32_t c = units[i];
    *taken = 1;
    if (!IsHighSurrogate(c) || i + 1 >= units.size() || !IsLowSurrogate(units[i + 1])) return c;
    *taken = 2;
    return 0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00U);
}

static int EncodeUTF8(char32_t c, UInt8* out) {
    if (c < 0x80) {
        out[0] = static_cast<UInt8>(c);
        return 1;
    }
    int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    for (int i = more; i > 0; --i, c >>= 6) out[i] = static_cast<UInt8>(0x80 | (c & 0x3F));
    static constexpr UInt8 kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out[0] = static_cast<UInt8>(kLead[more] | c);
    return more + 1;
}

static int EncodeUTF16(char32_t c, bool swap, UInt8* out) {
    std::u16string units;
    AppendCharacter(&units, c);
    for (size_t i = 0; i < units.size(); ++i) {
        auto unit = static_cast<uint16_t>(units[i]);
        if (swap) unit = __builtin_bswap16(unit);
        memcpy(out + 2 * i, &unit, 2);
    }
    return static_cast<int>(units.size() * 2);
}

static int EncodeUTF32(char32_t c, bool swap, UInt8* out) {
    uint32_t raw = swap ? __builtin_bswap32(c) : c;
    memcpy(out, &raw, 4);
    return 4;
}

// Bytes of one character, at most 4; 0 = the encoding lacks it, -1 = no such encoding.
static int Encode(char32_t c, CFStringEncoding encoding, UInt8* out) {
    switch (encoding) {
        case kCFStringEncodingUnicode:  // lone surrogates pass in 16-bit units
        case kCFStringEncodingUTF16LE: return EncodeUTF16(c, /*swap*/ false, out);
        case kCFStringEncodingUTF16BE: return EncodeUTF16(c, /*swap*/ true, out);
        case kCFStringEncodingUTF8: return IsCharacter(c) ? EncodeUTF8(c, out) : 0;
        case kCFStringEncodingUTF32:
        case kCFStringEncodingUTF32LE: return IsCharacter(c) ? EncodeUTF32(c, /*swap*/ false, out) : 0;
        case kCFStringEncodingUTF32BE: return IsCharacter(c) ? EncodeUTF32(c, /*swap*/ true, out) : 0;
        case kCFStringEncodingISOLatin1: out[0] = static_cast<UInt8>(c); return c < 0x100 ? 1 : 0;
        case kCFStringEncodingASCII:
        case kCFStringEncodingMacRoman: out[0] = static_cast<UInt8>(c); return c < 0x80 ? 1 : 0;
        default: return -1;
    }
}

std::string CFUnitsToUTF8(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    CFIndex taken;
    for (size_t i = 0; i < units.size(); i += static_cast<size_t>(taken)) {
        UInt8 bytes[4];
        char32_t c = CharacterAt(units, i, &taken);
        int n = EncodeUTF8(IsCharacter(c) ? c : kReplacement, bytes);
        text.append(reinterpret_cast<char*>(bytes), static_cast<size_t>(n));
    }
    return text;
}

// Strings ----------------------------------------------------------------------------------------------------------

CFStringRef CFConstantString(const char* ascii) {
    auto string = new __CFString(std::u16string(ascii, ascii + strlen(ascii)));
    string->references = 1L << 40;  // never freed, whoever releases it
    return string;
}

CFTypeID CFStringGetTypeID() { return kCFTypeString; }

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* units, CFIndex n) {
    if (n < 0 || (n > 0 && !units)) return nullptr;
    return CFGuarded([&] { return new __CFString(std::u16string(units, units + n)); });
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex n, CFStringEncoding encoding,
                                    Boolean isExternal) {
    if (n < 0 || (n > 0 && !bytes)) return nullptr;
    return CFGuarded([&]() -> CFStringRef {
        auto units = Decode(bytes, n, encoding, isExternal);
        return units ? new __CFString(std::move(*units)) : nullptr;
    });
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* bytes, CFStringEncoding encoding) {
    if (!bytes) return nullptr;
    return CFStringCreateWithBytes(allocator, reinterpret_cast<const UInt8*>(bytes),
                                   static_cast<CFIndex>(strlen(bytes)), encoding, /*isExternal*/ false);
}

CFStringRef CFStringCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes, CFIndex n,
                                          CFStringEncoding encoding, Boolean isExternal,
                                          CFAllocatorRef contentsDeallocator) {
    CFStringRef string = CFStringCreateWithBytes(allocator, bytes, n, encoding, isExternal);
    if (string && contentsDeallocator != kCFAllocatorNull) free(const_cast<UInt8*>(bytes));
    return string;
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
    return static_cast<CFStringRef>(CFRetain(string));
}

CFIndex CFStringGetLength(CFStringRef string) { return string ? static_cast<CFIndex>(string->units.size()) : 0; }

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
    return index >= 0 && index < CFStringGetLength(string) ? string->units[static_cast<size_t>(index)] : 0;
}

// The range as far as the string has it.
static std::u16string_view Part(CFStringRef string, CFRange range) {
    if (range.location < 0 || range.length < 1 || range.location >= CFStringGetLength(string)) return {};
    return std::u16string_view(string->units)
        .substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length));
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* out) {
    auto units = Part(string, range);
    if (out && !units.empty()) memcpy(out, units.data(), units.size() * 2);
}

const UniChar* CFStringGetCharactersPtr(CFStringRef string) {
    return string ? reinterpret_cast<const UniChar*>(string->units.c_str()) : nullptr;
}

// Machine order into machine order: one copy, no half of a pair at the end.
static CFIndex CopyUnits(std::u16string_view units, UInt8* out, CFIndex room, CFIndex* used) {
    size_t n = out ? std::min(units.size(), static_cast<size_t>(std::max<CFIndex>(room, 0)) / 2) : units.size();
    if (n > 0 && n < units.size() && IsHighSurrogate(units[n - 1]) && IsLowSurrogate(units[n])) --n;
    if (out && n > 0) memcpy(out, units.data(), n * 2);
    if (used) *used = static_cast<CFIndex>(n * 2);
    return static_cast<CFIndex>(n);
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternal, UInt8* out, CFIndex room, CFIndex* used) {
    auto units = Part(string, range);
    if (encoding == kCFStringEncodingUnicode && !isExternal) return CopyUnits(units, out, room, used);
    CFIndex written = 0, converted = 0, taken;
    auto put = [&](const UInt8* bytes, int n) {
        if (out && room - written < n) return false;
        if (out) memcpy(out + written, bytes, static_cast<size_t>(n));
        written += n;
        return true;
    };
    static constexpr UInt8 kByteOrderMark[] = {0xFF, 0xFE};
    bool go = !isExternal || encoding != kCFStringEncodingUnicode || put(kByteOrderMark, 2);
    for (; go && converted < static_cast<CFIndex>(units.size()); converted += taken) {
        UInt8 bytes[4] = {lossByte};
        int n = Encode(CharacterAt(units, static_cast<size_t>(converted), &taken), encoding, bytes);
        if (n == 0 && lossByte) {
            bytes[0] = lossByte;
            n = 1;
        }
        if (n < 1 || !put(bytes, n)) break;
    }
    if (used) *used = written;
    return converted;
}

Boolean CFStringGetCString(CFStringRef string, char* out, CFIndex room, CFStringEncoding encoding) {
    if (!string || !out || room < 1) return false;
    CFIndex n = CFStringGetLength(string), used = 0;
    CFIndex converted =
        CFStringGetBytes(string, CFRangeMake(0, n), encoding, 0, false, reinterpret_cast<UInt8*>(out), room - 1, &used);
    out[converted == n ? used : 0] = 0;
    return converted == n;
}
