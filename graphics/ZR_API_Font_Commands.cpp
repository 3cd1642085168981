// Commands for 4D code over fonts and text measuring.
#include <algorithm>
#include <climits>

#include "graphics/ZR_API_Font.h"
#include "graphics/ZR_API_Geometry.h"
#include "platform/CoreText/CoreText.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"

static short ShortParameter(PluginBlock* block, short index) {
    return static_cast<short>(PA_GetLongParameter(block, index));
}

static ZR_Font FontParameter(PluginBlock* block, short nameIndex, float size, short style) {
    ZR_Text name;
    name.CreateFrom4DParameter(block, nameIndex);
    ZR_Font font;
    font.Create(size, style, &name);
    name.Dispose();
    return font;
}

// (text, font name, size, style)
static float WidthOfParameters(PluginBlock* block) {
    ZR_Text text;
    text.CreateFrom4DParameter(block, 1);
    ZR_Font font = FontParameter(block, 2, ShortParameter(block, 3), ShortParameter(block, 4));
    float width = font.GetTextWidth(&text);
    font.Dispose();
    text.Dispose();
    return width;
}

void ZR_GetStringWidth4D(PluginBlock* block) { PA_ReturnLong(block, ZR_FloatToLong(WidthOfParameters(block))); }

void ZR_GetStringWidth4DDouble(PluginBlock* block) {
    PA_ReturnDouble(block, static_cast<double>(WidthOfParameters(block)));
}

void ZR_GetTextMeasures(PluginBlock* block) {
    ZR_Text text;
    text.CreateFrom4DParameter(block, 1);
    long size = std::clamp<long>(ZR_TruncatedToLong(PA_GetDoubleParameter(block, 3)), SHRT_MIN, SHRT_MAX);
    ZR_Font font = FontParameter(block, 2, static_cast<float>(size), ShortParameter(block, 4));
    float height = font.GetHeight(), ascent = font.GetAscent();
    PA_SetDoubleParameter(block, 5, static_cast<double>(font.GetTextWidth(&text)));
    PA_SetDoubleParameter(block, 6, static_cast<double>(height));
    PA_SetDoubleParameter(block, 7, static_cast<double>(ascent));
    PA_SetDoubleParameter(block, 8, static_cast<double>(height - ascent));
    font.Dispose();
    text.Dispose();
}

void ZR_GetFontFamilyName(PluginBlock* block) {
    ZR_Text name;
    name.CreateFrom4DParameter(block, 1);
    CFStringRef asked = name.GetNSStringRef();
    CTFontRef font = CTFontCreateWithName(asked, 12, nullptr);
    CFStringRef family = CTFontCopyFamilyName(font);
    ZR_Text result;
    result.Create(family);
    result.ReturnText(block);
    result.Dispose();
    CFRelease(family);
    CTFontRelease(font);
    CFRelease(asked);
    name.Dispose();
}

void ZR_Text2Array(PluginBlock* block) {
    ZR_Text text;
    text.CreateFrom4DParameter(block, 1);
    ZR_Font font = FontParameter(block, 4, ShortParameter(block, 5), ShortParameter(block, 6));
    ZR_TextArray lines;
    lines.Create();
    if (text.count > 0) ZR_Text2Array(&text, &font, PA_GetLongParameter(block, 3), &lines, 0, nullptr);
    lines.To4DParameter(block, 2);
    lines.Dispose();
    font.Dispose();
    text.Dispose();
}
