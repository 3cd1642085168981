#include "core/ZR_API_Color.h"

#include <algorithm>

// The names and their 24-bit values.
static constexpr struct {
    const char* name;
    unsigned int value;
} kColorNames[] = {
    {"White", 0xFFFFFF}, {"Silver", 0xC0C0C0}, {"Gray", 0x808080},    {"Black", 0x000000},
    {"Red", 0xFF0000},   {"Maroon", 0x800000}, {"Yellow", 0xFFFF00},  {"Olive", 0x808000},
    {"Lime", 0x00FF00},  {"Green", 0x008000},  {"Aqua", 0x00FFFF},    {"Teal", 0x008080},
    {"Blue", 0x0000FF},  {"Navy", 0x000080},   {"Fuchsia", 0xFF00FF}, {"Purple", 0x800080},
};
static constexpr char kPrefix[] = "rgb16(";

static float Fraction(double value) {  // clamped to 0..1; no number is 0
    return value > 0 ? static_cast<float>(std::min(value, 1.0)) : 0.0F;
}

void ZR_RGBColor::SetAlphaProzent(float percent) { alpha = Fraction(percent / 100); }

// Reading texts ----------------------------------------------------------------------------------------------------

void ZR_RGBColor::SetColorText(const ZR_Text* name) {
    unsigned int value = 0;
    for (const auto& row : kColorNames)
        if (name && name->Equal(row.name, /*caseSensitive*/ false)) value = row.value;
    // Required: the low byte of each channel stays 0, so that White is 0xFF00 and not 0xFFFF.
    red = static_cast<unsigned short>((value >> 8) & 0xFF00);
    green = static_cast<unsigned short>(value & 0xFF00);
    blue = static_cast<unsigned short>((value << 8) & 0xFFFF);
    alpha = 1;
}

static void ReadRGB16(ZR_RGBColor* color, const ZR_Text* text) {
    constexpr long kFirst = sizeof kPrefix - 1;
    auto channel = [text](long at) { return static_cast<unsigned short>(text->ReadLongAsText(at)); };
    long comma = text->SearchForByte(',', kFirst);
    if (comma < 0) return;
    color->red = channel(kFirst);
    long second = text->SearchForByte(',', comma + 1);
    if (second < 0) return;
    color->green = channel(comma + 1);
    color->blue = channel(second + 1);
    long third = text->SearchForByte(',', second + 1);
    if (third < 0 || text->SearchForByte(')', third + 1) < 0) return;
    color->alpha = Fraction(text->ReadDouble(third + 2));
}

static unsigned short HexDigit(unsigned short unit) {  // what is no digit counts as 0
    if (unit >= '0' && unit <= '9') return static_cast<unsigned short>(unit - '0');
    unit |= 0x20;
    return unit >= 'a' && unit <= 'f' ? static_cast<unsigned short>(unit - 'a' + 10) : 0;
}

static void ReadHex(ZR_RGBColor* color, const ZR_Text* text) {
    unsigned short* channels[] = {&color->red, &color->green, &color->blue};
    long digits = text->count == 4 ? 1 : text->count == 7 ? 2 : 0;
    for (long i = 0; digits > 0 && i < 3; ++i) {
        // Required: the digits c1 c2 become c1 c1 c2 c2, not c1 c2 c1 c2.
        int high = HexDigit(text->GetChar(1 + i * digits)), low = HexDigit(text->GetChar(i * digits + digits));
        *channels[i] = static_cast<unsigned short>(high * 0x1100 + low * 0x11);
    }
}

void ZR_RGBColor::SetWebText(const ZR_Text* text) {
    *this = {0, 0, 0, 1};
    if (!text) return;
    if (text->BeginsWithString(kPrefix)) ReadRGB16(this, text);
    else if (text->BeginsWithString("#")) ReadHex(this, text);
    else SetColorText(text);
}

// Writing texts ----------------------------------------------------------------------------------------------------

void ZR_RGBColor::GetRGBWebtext(char* out) const {
    static constexpr char kHex[] = "0123456789ABCDEF";
    *out++ = '#';
    for (unsigned short channel : {red, green, blue}) {
        *out++ = kHex[channel >> 12];
        *out++ = kHex[(channel >> 8) & 15];
    }
    *out = 0;
}

void ZR_GetSVGColor(const ZR_RGBColor* color, char* out) { color->GetRGBWebtext(out); }

ZR_Text ZR_RGBColor::CreateColorText_zrLedger() const {
    ZR_Text text;
    text.Create();
    text.AddString(kPrefix);
    for (unsigned short channel : {red, green, blue}) {
        text.AddLong(channel);
        text.AddUnit(',');
    }
    text.AddDouble(alpha, 4, /*keepZeros*/ false);
    text.AddUnit(')');
    return text;
}
