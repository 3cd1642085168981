// Breaking a text into lines, and what all text drawing has in common.
#include <cfloat>

#include "graphics/ZR_API_Text_Private.h"

static constexpr double kDefaultHeight = 32000;  // points

// Attributed strings -------------------------------------------------------------------------------------------------

static void SetNumber(CFMutableAttributedStringRef string, CFRange range, CFStringRef name, CFNumberType type,
                      const void* value) {
    CFNumberRef number = CFNumberCreate(nullptr, type, value);
    CFAttributedStringSetAttribute(string, range, name, number);
    CFRelease(number);
}

CGColorRef ZR_CreateTextColor(const ZR_RGBColor* color) {
    if (!color) return CGColorCreateGenericRGB(0, 0, 0, 1);
    return CGColorCreateGenericRGB(color->red / 65535.0, color->green / 65535.0, color->blue / 65535.0,
                                   static_cast<double>(color->alpha));
}

static CFNumberRef UnderlineNumber(bool underlined) {  // borrowed
    static const int kValues[] = {kCTUnderlineStyleNone, kCTUnderlineStyleSingle};
    static const CFNumberRef numbers[] = {CFNumberCreate(nullptr, kCFNumberIntType, &kValues[0]),
                                          CFNumberCreate(nullptr, kCFNumberIntType, &kValues[1])};
    return numbers[underlined];
}

void ZR_SetFontAttributes(CFMutableAttributedStringRef string, CFRange range, const ZR_Font* font,
                          const ZR_RGBColor* color) {
    CFAttributedStringSetAttribute(string, range, kCTFontAttributeName, font->ctFont);
    if (color) {
        CGColorRef made = ZR_CreateTextColor(color);
        CFAttributedStringSetAttribute(string, range, kCTForegroundColorAttributeName, made);
        CFRelease(made);
    }
    CFAttributedStringSetAttribute(string, range, kCTUnderlineStyleAttributeName,
                                   UnderlineNumber(font->style & kZRUnderline));
}

CFMutableAttributedStringRef ZR_CreateAttributedText(const ZR_Text* text, const ZR_Font* font,
                                                     const ZR_RGBColor* color) {
    CFStringRef units = CFStringCreateWithCharacters(nullptr, text->Units(), text->data ? text->count : 0);
    CFMutableAttributedStringRef string = CFAttributedStringCreateMutable(nullptr, 0);
    CFAttributedStringBeginEditing(string);
    CFAttributedStringReplaceString(string, CFRangeMake(0, 0), units);
    if (font) ZR_SetFontAttributes(string, CFRangeMake(0, CFStringGetLength(units)), font, color);
    CFAttributedStringEndEditing(string);
    CFRelease(units);
    return string;
}

CTParagraphStyleRef ZR_CreateParagraphStyle(ZR_Alignment alignment, bool wordWrap, float lineSpacing) {
    static constexpr struct {
        ZR_Alignment alignment;
        CTTextAlignment platform;
    } kAlignments[] = {{ZR_ALIGNMENT_LEFT, kCTTextAlignmentLeft},
                       {ZR_ALIGNMENT_CENTER, kCTTextAlignmentCenter},
                       {ZR_ALIGNMENT_RIGHT, kCTTextAlignmentRight},
                       {ZR_ALIGNMENT_JUSTIFIED, kCTTextAlignmentJustified}};
    CTTextAlignment platform = kCTTextAlignmentNatural;
    for (auto& row : kAlignments)
        if (row.alignment == alignment) platform = row.platform;
    CTLineBreakMode mode = wordWrap ? kCTLineBreakByWordWrapping : kCTLineBreakByTruncatingMiddle;
    CGFloat spacing = static_cast<double>(lineSpacing);
    CTParagraphStyleSetting settings[] = {{kCTParagraphStyleSpecifierAlignment, sizeof platform, &platform},
                                          {kCTParagraphStyleSpecifierLineBreakMode, sizeof mode, &mode},
                                          {kCTParagraphStyleSpecifierLineSpacingAdjustment, sizeof spacing, &spacing}};
    return CTParagraphStyleCreate(settings, std::size(settings));
}

void ZR_SetParagraphAttributes(CFMutableAttributedStringRef string, ZR_Alignment alignment, bool wordWrap,
                               float lineSpacing, float kerning) {
    CFRange whole = CFRangeMake(0, CFAttributedStringGetLength(string));
    CTParagraphStyleRef style = ZR_CreateParagraphStyle(alignment, wordWrap, lineSpacing);
    CFAttributedStringSetAttribute(string, whole, kCTParagraphStyleAttributeName, style);
    CFRelease(style);
    SetNumber(string, whole, kCTKernAttributeName, kCFNumberFloatType, &kerning);
}

// Frames -------------------------------------------------------------------------------------------------------------

static CGSize SizeAt(CTFramesetterRef framesetter, double width) {
    return CTFramesetterSuggestFrameSizeWithConstraints(framesetter, CFRangeMake(0, 0), nullptr, {width, DBL_MAX},
                                                        nullptr);
}

void ZR_MeasureFrame(CTFramesetterRef framesetter, ZR_Rect* rect, ZR_Textmeasuring measuring) {
    double width = measuring == ZR_TEXT_MEASURE ? static_cast<double>(rect->right - rect->left) : DBL_MAX;
    CGSize size = SizeAt(framesetter, width);
    rect->right = ZR_NearestFloat(static_cast<double>(rect->left) + size.width);
    rect->bottom = ZR_NearestFloat(static_cast<double>(rect->top) + size.height);
}

// The rectangle that the frame's lines run down from the top of.
static CGRect FrameRect(CTFramesetterRef framesetter, CGRect r, double suggestedWidth, ZR_Alignment_Vertical vertical,
                        double topRoom) {
    double x = r.origin.x, y = r.origin.y, w = r.size.width, h = r.size.height;
    if (vertical == ZR_VERTICAL_TOP) return CGRectMake(x, y - topRoom, w, h + topRoom);
    double s = SizeAt(framesetter, suggestedWidth).height;
    if (vertical == ZR_VERTICAL_BOTTOM) return CGRectMake(x, y - h + 2, w, s + h);
    return CGRectMake(x, y - h / 2 - s / 2, w, s + h);
}

CTFrameRef ZR_CreateTextFrame(CTFramesetterRef framesetter, CGRect r, double suggestedWidth,
                              ZR_Alignment_Vertical vertical, double topRoom) {
    bool known = vertical >= ZR_VERTICAL_TOP && vertical <= ZR_VERTICAL_BOTTOM;
    CGPathRef path = known ? CGPathCreateWithRect(FrameRect(framesetter, r, suggestedWidth, vertical, topRoom), nullptr)
                           : CGPathCreateMutable();
    CTFrameRef frame = CTFramesetterCreateFrame(framesetter, CFRangeMake(0, 0), path, nullptr);
    CGPathRelease(path);
    return frame;
}

void ZR_StrokeThrough(CGContextRef context, CGColorRef color, double lineWidth, double x, double y, double width) {
    CGContextSetStrokeColorWithColor(context, color);
    CGContextSetLineWidth(context, lineWidth);
    CGContextMoveToPoint(context, x, y);
    CGContextAddLineToPoint(context, x + width, y);
    CGContextStrokePath(context);
}

const char* ZR_TextDecoration(short style) {
    switch (style & (kZRUnderline | kZRStrikethrough)) {
        case kZRUnderline: return "underline";
        case kZRStrikethrough: return "line-through";
        case kZRUnderline | kZRStrikethrough: return "line-through underline";
        default: return nullptr;
    }
}

// Lines of a text ----------------------------------------------------------------------------------------------------

static bool IsTrailing(unsigned short unit) { return unit == ' ' || unit == '\n' || unit == '\r'; }

// Blanks, line feeds and carriage returns at the end, in any mix, are not part of the line.
static void TakeLine(const ZR_Text* text, CFRange range, ZR_Text* to) {
    long last = range.location + range.length - 1;
    while (last >= range.location && IsTrailing(text->GetChar(last))) --last;
    if (last >= range.location) text->Substring(to, range.location, last);
}

static CTFrameRef CreateFrameOfLines(const ZR_Text* text, ZR_Font* font, long width, long height) {
    CFMutableAttributedStringRef string = ZR_CreateAttributedText(text, font, nullptr);
    CTParagraphStyleRef style = ZR_CreateParagraphStyle(ZR_ALIGNMENT_DEFAULT, /*wordWrap*/ true, 0);
    CFAttributedStringSetAttribute(string, CFRangeMake(0, text->count), kCTParagraphStyleAttributeName, style);
    CTFramesetterRef framesetter = CTFramesetterCreateWithAttributedString(string);
    double room = height == 0 ? kDefaultHeight : static_cast<double>(height);
    CTFrameRef frame = nullptr;
    if (width > 0 && room > 0) {
        CGPathRef path = CGPathCreateWithRect(CGRectMake(0, 0, static_cast<double>(width), room), nullptr);
        frame = CTFramesetterCreateFrame(framesetter, CFRangeMake(0, 0), path, nullptr);
        CGPathRelease(path);
    }
    CFRelease(framesetter);
    CFRelease(style);
    CFRelease(string);
    return frame;
}

void ZR_Text2Array(const ZR_Text* text, void* font, long width, ZR_TextArray* out, long height, long* consumed) {
    auto with = static_cast<ZR_Font*>(font);
    if (!out) return;
    out->Resize(0);
    if (!text || text->count < 1 || !with) return;
    if (!with->ctFont) with->CreateCTFont();
    if (!with->ctFont) return;
    CTFrameRef frame = CreateFrameOfLines(text, with, width, height);
    CFArrayRef lines = CTFrameGetLines(frame);
    long count = CFArrayGetCount(lines);
    out->Resize(count);
    for (long i = 0; i < count && i < out->count; ++i) {
        CFRange range = CTLineGetStringRange(static_cast<CTLineRef>(CFArrayGetValueAtIndex(lines, i)));
        TakeLine(text, range, out->GetTextPtr(i + 1));
        if (consumed) *consumed = range.location + range.length;
    }
    CFRelease(frame);
}
