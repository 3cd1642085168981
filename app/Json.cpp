#include "app/Json.h"

#include <charconv>
#include <cmath>

namespace zrtool {

static bool IsHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
static bool IsLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

static void AppendCodePoint(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | code >> 6);
        out += static_cast<char>(0x80 | (code & 63));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | code >> 12);
        out += static_cast<char>(0x80 | (code >> 6 & 63));
        out += static_cast<char>(0x80 | (code & 63));
    } else {
        out += static_cast<char>(0xF0 | code >> 18);
        out += static_cast<char>(0x80 | (code >> 12 & 63));
        out += static_cast<char>(0x80 | (code >> 6 & 63));
        out += static_cast<char>(0x80 | (code & 63));
    }
}

// The code point at *at, which moves behind it; a lone surrogate is answered as it is.
static char32_t NextCodePoint(std::u16string_view units, size_t* at) {
    char16_t unit = units[(*at)++];
    if (!IsHighSurrogate(unit) || *at >= units.size() || !IsLowSurrogate(units[*at])) return unit;
    return 0x10000 + (static_cast<char32_t>(unit & 0x3FF) << 10) + (units[(*at)++] & 0x3FF);
}

static bool IsSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

void AppendUtf8(std::string& out, std::u16string_view units) {
    for (size_t at = 0; at < units.size();) {
        char32_t code = NextCodePoint(units, &at);
        AppendCodePoint(out, IsSurrogate(code) ? 0xFFFD : code);
    }
}

static void AppendEscape(std::string& out, unsigned unit) {
    static const char kDigits[] = "0123456789abcdef";
    switch (unit) {
        case '"': out += "\\\""; return;
        case '\\': out += "\\\\"; return;
        case '\b': out += "\\b"; return;
        case '\f': out += "\\f"; return;
        case '\n': out += "\\n"; return;
        case '\r': out += "\\r"; return;
        case '\t': out += "\\t"; return;
        default: break;
    }
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[unit >> shift & 15];
}

static bool NeedsEscape(char32_t code) { return code < 0x20 || code == '"' || code == '\\' || code == 0x7F; }

void AppendJsonText(std::string& out, std::u16string_view units) {
    out += '"';
    for (size_t at = 0; at < units.size();) {
        char32_t code = NextCodePoint(units, &at);
        if (NeedsEscape(code) || IsSurrogate(code)) AppendEscape(out, code);
        else AppendCodePoint(out, code);
    }
    out += '"';
}

void AppendJsonText(std::string& out, std::string_view utf8) {
    out += '"';
    for (char byte : utf8) {
        unsigned char code = static_cast<unsigned char>(byte);
        if (NeedsEscape(code)) AppendEscape(out, code);
        else out += byte;
    }
    out += '"';
}

std::string ShortestNumber(double number) {
    char digits[32];
    auto [end, problem] = std::to_chars(digits, digits + sizeof digits, number);
    return std::string(digits, problem == std::errc() ? end : digits);
}

void AppendJsonReal(std::string& out, double number) {
    if (!std::isfinite(number)) {
        out += "null";
        return;
    }
    std::string digits = ShortestNumber(number);
    out += digits;
    if (digits.find_first_of(".e") == std::string::npos) out += ".0";
}

void AppendBase64(std::string& out, const char* bytes, size_t size) {
    static const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const unsigned char* from = reinterpret_cast<const unsigned char*>(bytes);
    for (size_t i = 0; i < size; i += 3) {
        size_t left = size - i;
        unsigned three =
            static_cast<unsigned>(from[i]) << 16 | (left > 1 ? from[i + 1] << 8 : 0) | (left > 2 ? from[i + 2] : 0);
        out += kAlphabet[three >> 18];
        out += kAlphabet[three >> 12 & 63];
        out += left > 1 ? kAlphabet[three >> 6 & 63] : '=';
        out += left > 2 ? kAlphabet[three & 63] : '=';
    }
}

}  // namespace zrtool
