// ZR_RGBColor: three 16-bit channels and an alpha, and the texts it is read from and written as.
#ifndef ZR_API_COLOR_H
#define ZR_API_COLOR_H

#include "core/ZR_API_Text.h"

struct ZR_RGBColor {
    unsigned short red, green, blue;  // channel 0..65535
    float alpha;                      // 0..1

    void SetAlphaProzent(float percent);       // clamped to 0..100
    void Set4DIndex(long index);               // the host's colour number; [0..256), outside black; alpha 1
    void SetWebText(const ZR_Text* text);      // "rgb16(r,g,b)", "rgb16(r,g,b,a)", "#rgb", "#rrggbb" or a name
    void SetColorText(const ZR_Text* name);    // a name of the table, any case; else black; alpha 1
    void GetRGBWebtext(char* out) const;       // "#RRGGBB" of the high bytes and a zero byte: 8 bytes
    ZR_Text CreateColorText_zrLedger() const;  // "rgb16(r,g,b,a)", alpha with at most 4 decimals; handed over
};
static_assert(sizeof(ZR_RGBColor) == 12, "three channels and alpha");

void ZR_GetSVGColor(const ZR_RGBColor* color, char* out);  // as GetRGBWebtext

#endif
