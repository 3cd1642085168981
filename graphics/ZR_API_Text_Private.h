// What the drawing of single-style and of styled text share: attributed strings, paragraph styles, frames.
#ifndef ZR_API_TEXT_PRIVATE_H
#define ZR_API_TEXT_PRIVATE_H

#include <algorithm>
#include <cfloat>

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Font.h"
#include "platform/CoreText/CoreText.h"

// All handed over, null = no memory. color null = none is set.
CFMutableAttributedStringRef ZR_CreateAttributedText(const ZR_Text* text, const ZR_Font* font,
                                                     const ZR_RGBColor* color);
CGColorRef ZR_CreateTextColor(const ZR_RGBColor* color);  // null = black
CTParagraphStyleRef ZR_CreateParagraphStyle(ZR_Alignment alignment, bool wordWrap, float lineSpacing);

// Font, colour (null = none) and underline of a range.
void ZR_SetFontAttributes(CFMutableAttributedStringRef string, CFRange range, const ZR_Font* font,
                          const ZR_RGBColor* color);
// Paragraph style and kerning of the whole string.
void ZR_SetParagraphAttributes(CFMutableAttributedStringRef string, ZR_Alignment alignment, bool wordWrap,
                               float lineSpacing, float kerning);

// Right and bottom of the rectangle become those of the text, at its width or without a limit.
void ZR_MeasureFrame(CTFramesetterRef framesetter, ZR_Rect* rect, ZR_Textmeasuring measuring);

// The frame of a text in r, y up. topRoom: points by which a frame at the top goes further down. Handed over; an
// alignment that is none gives a frame without lines.
CTFrameRef ZR_CreateTextFrame(CTFramesetterRef framesetter, CGRect r, double suggestedWidth,
                              ZR_Alignment_Vertical vertical, double topRoom);

// A line through text: from x to x + width, y up.
void ZR_StrokeThrough(CGContextRef context, CGColorRef color, double lineWidth, double x, double y, double width);

// "text-decoration" of both, in the words of SVG; null = none
const char* ZR_TextDecoration(short style);

// The nearest float; beyond its range the end of it.
inline float ZR_NearestFloat(double value) {
    return static_cast<float>(std::clamp(value, -static_cast<double>(FLT_MAX), static_cast<double>(FLT_MAX)));
}

inline bool ZR_IsRectEmpty(const ZR_Rect* rect) { return !(rect->left < rect->right) || !(rect->top < rect->bottom); }

#endif
