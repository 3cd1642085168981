// Text in several styles: pixels through one frame with the runs as attributes, SVG as one "textArea" with "tspan"s.
#include <vector>

#include "graphics/ZR_API_Geometry.h"
#include "graphics/ZR_API_MultiStyleText.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "graphics/ZR_API_Text_Private.h"

// The attribute that leads from a glyph run to the run of the styled text: a CFNumber, [1..count]
static CFStringRef RunAttributeName() {
    static const CFStringRef name = CFStringCreateWithCString(nullptr, "ZR_MultiStyleRun", kCFStringEncodingUTF8);
    return name;
}

static bool HasCTFont(ZR_Font* font) {
    if (!font->ctFont) font->CreateCTFont();
    return font->ctFont != nullptr;
}

// Runs to attributes -------------------------------------------------------------------------------------------------

static bool IsDecorated(const ZR_MultiStyleRun* run) {
    return run->background.alpha != 0 || (run->font.style & kZRStrikethrough);
}

static void SetRunAttributes(CFMutableAttributedStringRef string, CFRange range, ZR_MultiStyleRun* run, long index,
                             ZR_Font* otherwise) {
    ZR_SetFontAttributes(string, range, &run->font, &run->color);
    // A font that cannot be made leaves its text in the default font
    if (!run->font.ctFont) CFAttributedStringSetAttribute(string, range, kCTFontAttributeName, otherwise->ctFont);
    CFNumberRef number = CFNumberCreate(nullptr, kCFNumberLongType, &index);
    CFAttributedStringSetAttribute(string, range, RunAttributeName(), number);
    CFRelease(number);
}

// Marks the units of a run up to the first one that an earlier run has. Required: what lies behind that one stays
// without this run.
static CFRange MarkRun(std::vector<char>* marks, const ZR_MultiStyleRun* run) {
    long count = static_cast<long>(marks->size()), at = run->start - 1;
    if (run->start < 1 || run->start > run->end || run->end > count) return CFRangeMake(0, 0);
    for (; at < run->end && !(*marks)[static_cast<size_t>(at)]; ++at) (*marks)[static_cast<size_t>(at)] = 1;
    return CFRangeMake(run->start - 1, at - (run->start - 1));
}

static void SetUnmarked(CFMutableAttributedStringRef string, const std::vector<char>& marks, ZR_Font* font,
                        ZR_RGBColor* color) {
    for (size_t at = 0; at < marks.size();) {
        size_t end = at;
        while (end < marks.size() && marks[end] == marks[at]) ++end;
        if (!marks[at])
            ZR_SetFontAttributes(string, CFRangeMake(static_cast<long>(at), static_cast<long>(end - at)), font, color);
        at = end;
    }
}

// Pixels -------------------------------------------------------------------------------------------------------------

namespace {
struct StyledBlock {
    ZR_Text* text;
    ZR_MultiStyleText* runs;
    ZR_Rect* rect;
    ZR_Alignment alignment;
    ZR_Alignment_Vertical vertical;
    ZR_Font* font;
    ZR_RGBColor* color;
    bool antialias, wordWrap;
    ZR_Textmeasuring measuring;
    float lineSpacing, kerning;
};
}  // namespace

// Text with all its attributes; *decorated: a run has a background or is struck through. Handed over.
static CFAttributedStringRef CreateStyledString(const StyledBlock& block, bool* decorated) {
    CFMutableAttributedStringRef plain = ZR_CreateAttributedText(block.text, nullptr, nullptr);
    CFMutableAttributedStringRef string = CFAttributedStringCreateMutableCopy(nullptr, 0, plain);
    CFRelease(plain);
    std::vector<char> marks(static_cast<size_t>(block.text->count), 0);
    *decorated = false;
    CFAttributedStringBeginEditing(string);
    ZR_SetParagraphAttributes(string, block.alignment, block.wordWrap, block.lineSpacing, block.kerning);
    for (long i = 1; block.runs && i <= block.runs->runs.count; ++i) {
        ZR_MultiStyleRun* run = block.runs->GetRun(i);
        CFRange range = MarkRun(&marks, run);
        if (IsDecorated(run)) *decorated = true;
        if (range.length < 1) continue;
        HasCTFont(&run->font);
        SetRunAttributes(string, range, run, i, block.font);
    }
    SetUnmarked(string, marks, block.font, block.color);
    CFAttributedStringEndEditing(string);
    return string;
}

static ZR_MultiStyleRun* StyleRunOf(const StyledBlock& block, CTRunRef run) {
    auto number = static_cast<CFNumberRef>(CFDictionaryGetValue(CTRunGetAttributes(run), RunAttributeName()));
    long index = 0;
    CFNumberGetValue(number, kCFNumberLongType, &index);
    return block.runs ? block.runs->GetRun(index) : nullptr;
}

static void DecorateRun(CGContextRef context, const ZR_MultiStyleRun* style, CGRect place) {
    const ZR_RGBColor& back = style->background;
    if (back.alpha != 0) {
        CGContextSetRGBFillColor(context, back.red / 65535.0, back.green / 65535.0, back.blue / 65535.0,
                                 static_cast<double>(back.alpha));
        CGContextFillRect(context, place);
    }
    if (!(style->font.style & kZRStrikethrough)) return;
    CGColorRef color = ZR_CreateTextColor(&style->color);
    ZR_StrokeThrough(context, color, static_cast<double>(style->font.size) / 10, place.origin.x,
                     place.origin.y + place.size.height / 2, place.size.width);
    CGColorRelease(color);
}

static void DecorateLine(CGContextRef context, const StyledBlock& block, CTLineRef line, double baseline, CGRect box) {
    double lineWidth = CTLineGetBoundsWithOptions(line, 0).size.width, sum = 0;
    double shift = block.alignment == ZR_ALIGNMENT_RIGHT    ? box.size.width - lineWidth
                   : block.alignment == ZR_ALIGNMENT_CENTER ? (box.size.width - lineWidth) / 2
                                                            : 0;
    CFArrayRef runs = CTLineGetGlyphRuns(line);
    for (CFIndex i = 0; i < CFArrayGetCount(runs); ++i) {
        auto run = static_cast<CTRunRef>(CFArrayGetValueAtIndex(runs, i));
        CGFloat ascent, descent;
        double width = CTRunGetTypographicBounds(run, CFRangeMake(0, 0), &ascent, &descent, nullptr);
        double x = box.origin.x + sum;
        sum += width;
        if (x + width > box.origin.x + lineWidth) width = box.origin.x + lineWidth - x;
        if (const ZR_MultiStyleRun* style = StyleRunOf(block, run))
            DecorateRun(context, style, CGRectMake(x + shift, baseline - descent, width, ascent + descent));
    }
}

static void DrawDecorations(CGContextRef context, const StyledBlock& block, CTFrameRef frame) {
    CFArrayRef lines = CTFrameGetLines(frame);
    CFIndex count = CFArrayGetCount(lines);
    if (count < 1) return;
    std::vector<CGPoint> origins(static_cast<size_t>(count));
    CTFrameGetLineOrigins(frame, CFRangeMake(0, 0), origins.data());
    CGRect box = CGPathGetBoundingBox(CTFrameGetPath(frame));
    for (CFIndex i = 0; i < count; ++i)
        DecorateLine(context, block, static_cast<CTLineRef>(CFArrayGetValueAtIndex(lines, i)),
                     origins[static_cast<size_t>(i)].y + box.origin.y, box);
}

static void DrawStyledFrame(ZR_Device* device, const StyledBlock& block, CTFramesetterRef framesetter, CGRect r,
                            bool decorated) {
    double width = static_cast<double>(block.rect->right - block.rect->left);
    CTFrameRef frame = ZR_CreateTextFrame(framesetter, r, width, block.vertical,
                                          /*topRoom*/ static_cast<double>(block.font->size));
    CGContextClipToRect(device->context, r);
    device->SetAntialias(block.antialias);
    if (decorated) DrawDecorations(device->context, block, frame);
    CTFrameDraw(frame, device->context);
    CFRelease(frame);
}

static void StyledRaster(ZR_Device* device, const StyledBlock& block, ZR_Matrix* matrix) {
    CGRect r;
    bool turned = device->PerformDrawMatrix(block.rect, matrix, &r), draws = block.measuring == ZR_TEXT_DRAW;
    if (draws && turned) device->PrepareMatrixDrawing(&r);
    else if (draws) CGContextSaveGState(device->context);
    if (HasCTFont(block.font)) {
        bool decorated;
        CFAttributedStringRef string = CreateStyledString(block, &decorated);
        CTFramesetterRef framesetter = CTFramesetterCreateWithAttributedString(string);
        if (draws) DrawStyledFrame(device, block, framesetter, r, decorated);
        else ZR_MeasureFrame(framesetter, block.rect, block.measuring);
        CFRelease(framesetter);
        CFRelease(string);
    }
    if (draws || turned) CGContextRestoreGState(device->context);
}

// keepTop has no effect: a frame at the top always has room for one more line.
void ZR_Device::DrawMultiStyleText(ZR_Text* text, void* runs, ZR_Rect* rect, ZR_Alignment alignment,
                                   ZR_Alignment_Vertical vertical, void* font, ZR_RGBColor* color, bool antialias,
                                   ZR_Matrix* matrix, ZR_Handle* properties, bool wordWrap, ZR_Textmeasuring measuring,
                                   bool lastFlag, float lineSpacing, float kerning, bool) {
    if (!text || text->count < 1 || !font || !rect || ZR_IsRectEmpty(rect)) return;
    ZR_RGBColor black = {0, 0, 0, 1};
    if (!color) color = &black;
    if (measuring == ZR_TEXT_DRAW && svg) {
        DrawMultiStyleText_SVG(text, runs, rect, alignment, vertical, font, color, antialias, matrix, properties,
                               lineSpacing, lastFlag);
        return;
    }
    StyledBlock block = {text,        static_cast<ZR_MultiStyleText*>(runs),
                         rect,        alignment,
                         vertical,    static_cast<ZR_Font*>(font),
                         color,       antialias,
                         wordWrap,    measuring,
                         lineSpacing, kerning};
    StyledRaster(this, block, matrix);
}

// SVG ----------------------------------------------------------------------------------------------------------------

static const char* TextAlign(ZR_Alignment alignment) {
    switch (alignment) {
        case ZR_ALIGNMENT_CENTER: return "center";
        case ZR_ALIGNMENT_RIGHT: return "end";
        case ZR_ALIGNMENT_JUSTIFIED: return "justify";
        default: return "start";
    }
}

// lineSpacing and the last flag have no effect here.
void ZR_Device::DrawMultiStyleText_SVG(ZR_Text* text, void* runs, ZR_Rect* rect, ZR_Alignment alignment,
                                       ZR_Alignment_Vertical vertical, void* font, ZR_RGBColor* color, bool antialias,
                                       ZR_Matrix* matrix, ZR_Handle* properties, float, bool) {
    if (!svg || !text || !rect || !font) return;
    auto with = static_cast<ZR_Font*>(font);
    ZR_RGBColor black = {0, 0, 0, 1};
    ZR_Text area, spans;
    area.Create();
    spans.Create();
    svg->CreateElement("textArea", &area);
    SetCustomProperties(&area, properties);
    SetCustomProperties(&area, &customProperties);
    svg->SetAttributeDouble(&area, "x", static_cast<double>(rect->left));
    svg->SetAttributeDouble(&area, "y", static_cast<double>(rect->top));
    svg->SetAttributeDouble(&area, "width", static_cast<double>(rect->right - rect->left));
    svg->SetAttributeDouble(&area, "height", static_cast<double>(rect->bottom - rect->top));
    svg->SetAttributeText(&area, "font-family", &with->name);
    svg->SetAttributeLong(&area, "font-size", ZR_TruncatedToLong(static_cast<double>(with->size)));
    if (with->style & kZRBold) svg->SetAttributeText(&area, "font-weight", "bold");
    if (with->style & kZRItalic) svg->SetAttributeText(&area, "font-style", "italic");
    if (const char* decoration = ZR_TextDecoration(with->style))
        svg->SetAttributeText(&area, "text-decoration", decoration);
    svg->SetAttributeText(&area, "text-align", TextAlign(alignment));
    if (vertical == ZR_VERTICAL_BOTTOM) svg->SetAttributeText(&area, "display-align", "after");
    if (vertical == ZR_VERTICAL_CENTER) svg->SetAttributeText(&area, "display-align", "center");
    if (!antialias) svg->SetAttributeText(&area, "text-rendering", "optimizeSpeed");
    svg->SetColor(&area, color ? color : &black, "fill", "fill-opacity");
    svg->SetMatrix(&area, matrix, "transform");
    svg->Clip(&area);
    if (runs) static_cast<ZR_MultiStyleText*>(runs)->Get4DStyledText(text, &spans, /*mode*/ 2);
    svg->AppendChildNode(&area, ZR_XML_ELEMENT, &spans);
    spans.Dispose();
    area.Dispose();
}
