// Numbers to text and back, and the zero-terminated and Pascal strings.
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/ZR_API_Text.h"
#include "plugin/ZR_API_Numbers.h"

static constexpr long kMostScaledDecimals = 18;            // 10^18 is the last power whose fractions fit 64 bits signed
static constexpr long kMostZeros = 1024;                   // of a whole number with keepZeros
static constexpr double kLongEnd = 9223372036854775808.0;  // 2^63

static bool IsDigit(unsigned short unit) { return unit >= '0' && unit <= '9'; }

// Numbers to text --------------------------------------------------------------------------------------------------

void ZR_NumToString(long value, char* out) {
    if (!out) return;
    *std::to_chars(out, out + 20, value).ptr = 0;
}

void ZR_NumToZRText(long value, ZR_Text* text) {
    if (!text) return;
    text->Resize(0);
    text->AddLong(value);
}

void ZR_Text::AddLong(long value) {
    char digits[24];
    auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    AddBuffer(reinterpret_cast<unsigned char*>(digits), end - digits);
}

static void AddZeros(ZR_Text* text, long n) {
    for (long i = 0; i < n; ++i) text->AddUnit('0');
}

// The whole part of a positive value, and what is left behind the point.
static double AddWholePart(ZR_Text* text, double value) {
    if (value < kLongEnd) {
        long whole = static_cast<long>(value);
        text->AddLong(whole);
        return value - static_cast<double>(whole);
    }
    char digits[320] = "0";  // guard: beyond 64 bits written out; what is no number is 0
    char* end = digits + 1;
    if (std::isfinite(value))
        end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 0).ptr;
    text->AddBuffer(reinterpret_cast<unsigned char*>(digits), end - digits);
    return 0;
}

void ZR_Text::AddDouble(double value, long decimals, bool keepZeros) {
    if (value < 0) AddUnit('-');
    double fraction = AddWholePart(this, std::fabs(value));
    if (decimals < 1) return;
    if (fraction == 0) {
        if (!keepZeros) return;
        AddUnit('.');
        AddZeros(this, std::min(decimals, kMostZeros));
        return;
    }
    decimals = std::min(decimals, kMostScaledDecimals);
    long scaled =
        static_cast<long>(fraction * static_cast<double>(ZR_Potenz(10, static_cast<unsigned long>(decimals))));
    if (scaled == 0) return;  // Required: no point and no zeros, whatever keepZeros says
    AddUnit('.');
    char digits[24];
    char* end = std::to_chars(digits, digits + sizeof digits, scaled).ptr;
    AddZeros(this, decimals - (end - digits));
    while (end > digits && end[-1] == '0') --end;
    AddBuffer(reinterpret_cast<unsigned char*>(digits), end - digits);
}

// The value times 10 to the decimals, rounded half up; 0 if 64 bits do not hold it.
static long RoundedScaled(double value, long decimals) {
    for (long i = 0; i < decimals && value < kLongEnd; ++i) value *= 10;
    if (!(value * 2 < kLongEnd)) return 0;
    long twice = static_cast<long>(value * 2);
    return twice / 2 + twice % 2;
}

void ZR_RealToString(double value, long decimals, char* out) {
    if (!out) return;
    if (value == 0) {
        memcpy(out, "0", 2);
        return;
    }
    char reversed[24];
    long n = 0, digits = 0;
    for (long left = RoundedScaled(std::fabs(value), decimals); left > 0; left /= 10) {
        // Required: the point needs a digit in front of it, so that a value below 1 has neither point nor zeros.
        if (decimals > 0 && digits == decimals) reversed[n++] = '.';
        reversed[n++] = static_cast<char>('0' + left % 10);
        ++digits;
    }
    if (value < 0) *out++ = '-';
    while (n > 0) *out++ = reversed[--n];
    *out = 0;
}

// Text to numbers --------------------------------------------------------------------------------------------------

long ZR_Text::ReadLong(long position) const { return position < 1 ? 0 : ReadLongAsText(position - 1); }

long ZR_Text::ReadLongAsText(long position) const {
    unsigned long value = 0;  // overflow wraps
    if (position < 0 || !data) return 0;
    for (long i = position; i < count && IsDigit(Units()[i]); ++i) value = value * 10 + (Units()[i] - '0');
    return static_cast<long>(value);
}

ZR_Text ZR_Text::ReadNumbers(long position) const {
    ZR_Text digits;
    digits.Create();
    if (position < 1 || !data) return digits;
    long end = position - 1;
    while (end < count && IsDigit(Units()[end])) ++end;
    digits.AddUniBuffer(Units() + position - 1, end - position + 1);
    return digits;
}

double ZR_Text::ReadDouble(long position) const {
    double value = 0;
    long i = position - 1;
    if (position < 1 || !data) return 0;
    for (; i < count && IsDigit(Units()[i]); ++i) value = value * 10 + (Units()[i] - '0');
    if (i >= count || Units()[i] != '.') return value;
    long place = 0;
    for (++i; i < count && IsDigit(Units()[i]) && place < 4; ++i) {
        int digit = Units()[i] - '0';
        // Required: the first decimal in double, the next three in single precision, further ones without effect.
        static constexpr float kDivisors[] = {0, 100.0F, 1000.0F, 10000.0F};
        value += place == 0 ? digit / 10.0 : static_cast<double>(static_cast<float>(digit) / kDivisors[place]);
        ++place;
    }
    return value;
}

// Zero-terminated and Pascal strings -------------------------------------------------------------------------------

long ZR_CStringLength(const char* string) { return string ? static_cast<long>(strlen(string)) : 0; }

long ZR_CStringLength(const unsigned char* string) { return ZR_CStringLength(reinterpret_cast<const char*>(string)); }

long ZR_UniStringLength(const unsigned short* units) {
    long n = 0;
    if (!units) return 0;
    while (units[n]) ++n;
    return n;
}

long ZR_FindInCString(const unsigned char* string, unsigned char byte) {
    if (!string || byte == 0) return -1;
    auto found = strchr(reinterpret_cast<const char*>(string), byte);
    return found ? found - reinterpret_cast<const char*>(string) : -1;
}

void ZR_CstrToPstr(const char* string, unsigned char* out) {
    ZR_CstrToPstrWithMaxLen(string, reinterpret_cast<char*>(out), 255);
}

void ZR_CstrToPstr(const char* string, unsigned char* out, long n) {
    if (!out) return;
    n = string ? std::max(n, 0L) : 0;
    out[0] = static_cast<unsigned char>(n);
    if (n > 0) memcpy(out + 1, string, static_cast<size_t>(n));
}

void ZR_CstrToPstrWithMaxLen(const char* string, char* out, long maximum) {
    // Guard: a length byte tells no more than 255.
    long n = std::min(ZR_CStringLength(string), std::clamp(maximum, 0L, 255L));
    ZR_CstrToPstr(string, reinterpret_cast<unsigned char*>(out), n);
}

void ZR_PstrToCstr(const char* string, char* out) {
    if (!out) return;
    // Required: the length is signed, so that 128 and more copy nothing.
    long n = string ? std::max<long>(static_cast<signed char>(string[0]), 0) : 0;
    if (n > 0) memcpy(out, string + 1, static_cast<size_t>(n));
    out[n] = 0;
}

bool ZR_StringCompare(const char* left, const char* right, bool caseSensitive) {
    if (!left || !right) return left == right;
    return (caseSensitive ? strcmp(left, right) : strcasecmp(left, right)) == 0;
}
