// Text in one style: a line at a point, a line between two x values, a wrapped block in a rectangle. In SVG a block is
// broken into lines first, with the same measurement, and written as one "text" element a line.
#include <algorithm>
#include <cmath>
#include <vector>

#include "graphics/ZR_API_Geometry.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "graphics/ZR_API_Text_Private.h"

static constexpr long kUnlimitedWidth = 10000;  // points of a line that SVG measures without a limit

static float HeightOf(const ZR_Device* device) { return device->bounds.bottom - device->bounds.top; }

static bool IsInForce(const ZR_Matrix* matrix) { return matrix && !matrix->IsIdentity(); }

static bool HasCTFont(ZR_Font* font) {
    if (!font->ctFont) font->CreateCTFont();
    return font->ctFont != nullptr;
}

// One line -----------------------------------------------------------------------------------------------------------

static void WriteFont(ZR_DOM_Tree* svg, ZR_Text* element, const ZR_Font* font) {
    svg->SetAttributeText(element, "font-family", const_cast<ZR_Text*>(&font->name));
    svg->SetAttributeLong(element, "font-size", ZR_TruncatedToLong(static_cast<double>(font->size)));
    if (font->style & kZRBold) svg->SetAttributeText(element, "font-weight", "bold");
    if (font->style & kZRItalic) svg->SetAttributeText(element, "font-style", "italic");
}

static void TextSvg(ZR_Device* device, ZR_Text* text, float x, float y, ZR_Font* font, ZR_RGBColor* color,
                    ZR_Matrix* matrix, ZR_Handle* properties) {
    ZR_DOM_Tree* svg = device->svg;
    ZR_Text element;
    element.Create();
    svg->CreateElement("text", &element);
    device->SetCustomProperties(&element, properties);
    device->SetCustomProperties(&element, &device->customProperties);
    svg->SetAttributeLong(&element, "x", ZR_TruncatedToLong(static_cast<double>(x)));
    svg->SetAttributeLong(&element, "y", ZR_TruncatedToLong(static_cast<double>(y)));
    WriteFont(svg, &element, font);
    if (font->style & kZRUnderline) svg->SetAttributeText(&element, "text-decoration", "underline");
    svg->SetColor(&element, color, "fill", "fill-opacity");
    svg->SetMatrix(&element, matrix, "transform");
    svg->Clip(&element);
    svg->SetElementValue(&element, text);
    element.Dispose();
}

static void DrawLineAt(CGContextRef context, ZR_Text* text, ZR_Font* font, ZR_RGBColor* color, double x, double y) {
    CFAttributedStringRef string = ZR_CreateAttributedText(text, font, color);
    CTLineRef line = CTLineCreateWithAttributedString(string);
    CGContextSetTextPosition(context, x, y);
    CTLineDraw(line, context);
    CFRelease(line);
    CFRelease(string);
}

static void TextRaster(ZR_Device* device, ZR_Text* text, float x, float y, ZR_Font* font, ZR_RGBColor* color,
                       float rotation, bool antialias, ZR_Matrix* matrix) {
    CGContextRef context = device->context;
    bool turned = IsInForce(matrix), rotated = rotation != 0 && !turned;
    double left = static_cast<double>(x), base = static_cast<double>(HeightOf(device) - y);
    if (rotated || turned) CGContextSaveGState(context);
    if (rotated) {
        CGContextTranslateCTM(context, left, base);
        CGContextRotateCTM(context, static_cast<double>(rotation) * M_PI / 180);
    }
    if (turned) CGContextConcatCTM(context, device->GetSystemMatrix(matrix));
    // Required: with a matrix a rotation turns nothing, but moves the text to the origin.
    if (rotation != 0) left = base = 0;
    device->SetAntialias(antialias);
    if (HasCTFont(font)) DrawLineAt(context, text, font, color, left, base);
    if (rotated || turned) CGContextRestoreGState(context);
}

void ZR_Device::DrawText(ZR_Text* text, float x, float y, void* font, ZR_RGBColor* color, float rotation,
                         bool antialias, ZR_Matrix* matrix, ZR_Handle* properties) {
    auto with = static_cast<ZR_Font*>(font);
    ZR_RGBColor black = {0, 0, 0, 1};
    if (!text || !with) return;
    if (!color) color = &black;
    // Differs: SVG writes an empty text too, has no rotation, and cuts x and y to whole numbers.
    if (svg) TextSvg(this, text, x, y, with, color, matrix, properties);
    else if (text->count > 0) TextRaster(this, text, x, y, with, color, rotation, antialias, matrix);
}

void ZR_Device::DrawTextAlignment(ZR_Text* text, float left, float right, float y, void* font, ZR_RGBColor* color,
                                  ZR_Alignment alignment, float rotation, bool antialias, ZR_Matrix* matrix,
                                  ZR_Handle* properties) {
    if (!text || !font) return;
    float x = left;
    auto width = [&] { return static_cast<ZR_Font*>(font)->GetTextWidth(text); };
    switch (alignment) {
        case ZR_ALIGNMENT_DEFAULT:
        case ZR_ALIGNMENT_LEFT:
        case ZR_ALIGNMENT_JUSTIFIED: break;
        case ZR_ALIGNMENT_CENTER: x = left + (right - left - width()) / 2; break;
        case ZR_ALIGNMENT_RIGHT: x = left + right - left - width(); break;
        default: return;
    }
    DrawText(text, x, y, font, color, rotation, antialias, matrix, properties);
}

// A block: pixels ----------------------------------------------------------------------------------------------------

namespace {
struct TextBlock {
    ZR_Text* text;
    ZR_Rect* rect;
    ZR_Alignment alignment;
    ZR_Alignment_Vertical vertical;
    ZR_Font* font;
    ZR_RGBColor* color;
    bool antialias, wordWrap, clip, keepTop;
    ZR_Textmeasuring measuring;
    float lineSpacing, kerning;
};
}  // namespace

static CTFramesetterRef CreateFramesetter(const TextBlock& block) {
    CFMutableAttributedStringRef string = ZR_CreateAttributedText(block.text, block.font, block.color);
    ZR_SetParagraphAttributes(string, block.alignment, block.wordWrap, block.lineSpacing, block.kerning);
    CTFramesetterRef framesetter = CTFramesetterCreateWithAttributedString(string);
    CFRelease(string);
    return framesetter;
}

static void DrawFrame(ZR_Device* device, const TextBlock& block, CTFramesetterRef framesetter, CGRect r) {
    double width = static_cast<double>(block.rect->right - block.rect->left);
    double size = static_cast<double>(block.font->size);
    CTFrameRef frame = ZR_CreateTextFrame(framesetter, r, width, block.vertical, /*topRoom*/ block.keepTop ? 0 : size);
    if (block.clip) CGContextClipToRect(device->context, r);
    device->SetAntialias(block.antialias);
    CTFrameDraw(frame, device->context);
    if (block.font->style & kZRStrikethrough) {
        CGColorRef color = ZR_CreateTextColor(block.color);
        device->DrawStrikethroughText(frame, color, block.font->size, block.alignment);
        CGColorRelease(color);
    }
    CFRelease(frame);
}

static void BlockRaster(ZR_Device* device, const TextBlock& block, ZR_Matrix* matrix) {
    CGRect r;
    bool turned = device->PerformDrawMatrix(block.rect, matrix, &r), draws = block.measuring == ZR_TEXT_DRAW;
    if (draws && turned) device->PrepareMatrixDrawing(&r);
    else if (draws) CGContextSaveGState(device->context);
    if (HasCTFont(block.font)) {
        CTFramesetterRef framesetter = CreateFramesetter(block);
        if (draws) DrawFrame(device, block, framesetter, r);
        else ZR_MeasureFrame(framesetter, block.rect, block.measuring);
        CFRelease(framesetter);
    }
    if (draws || turned) CGContextRestoreGState(device->context);
}

void ZR_Device::DrawTextLayout(ZR_Text* text, ZR_Rect* rect, ZR_Alignment alignment, ZR_Alignment_Vertical vertical,
                               void* font, ZR_RGBColor* color, bool antialias, ZR_Matrix* matrix, ZR_Handle* properties,
                               bool wordWrap, ZR_Textmeasuring measuring, bool clip, float lineSpacing, float kerning,
                               bool keepTop) {
    if (!font || !text || !rect || text->count < 1) return;
    if (measuring == ZR_TEXT_DRAW && ZR_IsRectEmpty(rect)) return;
    ZR_RGBColor black = {0, 0, 0, 1};
    if (!color) color = &black;
    // Differs: SVG always breaks by word, and has neither kerning nor room at the top.
    if (svg) {
        DrawTextLayout_SVG(text, rect, alignment, vertical, font, color, antialias, matrix, properties, measuring, clip,
                           lineSpacing);
        return;
    }
    TextBlock block = {text,      rect,        alignment, vertical, static_cast<ZR_Font*>(font),
                       color,     antialias,   wordWrap,  clip,     keepTop,
                       measuring, lineSpacing, kerning};
    BlockRaster(this, block, matrix);
}

// Required: with centred and right-hand alignment each run is placed by itself; a line of one style is one run.
static void StrikeLine(CGContextRef context, CTLineRef line, double baseline, CGRect box, CGColorRef color,
                       double lineWidth, ZR_Alignment alignment) {
    CFArrayRef runs = CTLineGetGlyphRuns(line);
    double sum = 0, right = box.origin.x + box.size.width;
    for (CFIndex i = 0; i < CFArrayGetCount(runs); ++i) {
        auto run = static_cast<CTRunRef>(CFArrayGetValueAtIndex(runs, i));
        CGFloat ascent, descent;
        double width = CTRunGetTypographicBounds(run, CFRangeMake(0, 0), &ascent, &descent, nullptr);
        double x = box.origin.x + sum, y = baseline - descent + (ascent + descent) / 2;
        sum += width;
        if (x + width > right) width = right - x;
        if (alignment == ZR_ALIGNMENT_CENTER) x = box.origin.x + box.size.width / 2 - width / 2;
        if (alignment == ZR_ALIGNMENT_RIGHT) x = right - width;
        ZR_StrokeThrough(context, color, lineWidth, x, y, width);
    }
}

void ZR_Device::DrawStrikethroughText(const CTFrame* frame, const CGColor* color, float fontSize,
                                      ZR_Alignment alignment) {
    CFArrayRef lines = CTFrameGetLines(frame);
    CFIndex count = CFArrayGetCount(lines);
    if (count < 1) return;
    std::vector<CGPoint> origins(static_cast<size_t>(count));
    CTFrameGetLineOrigins(frame, CFRangeMake(0, 0), origins.data());
    CGRect box = CGPathGetBoundingBox(CTFrameGetPath(frame));
    for (CFIndex i = 0; i < count; ++i)
        StrikeLine(context, static_cast<CTLineRef>(CFArrayGetValueAtIndex(lines, i)),
                   origins[static_cast<size_t>(i)].y + box.origin.y, box, color, static_cast<double>(fontSize) / 10,
                   alignment);
}

// A block: SVG -------------------------------------------------------------------------------------------------------

static void MeasureSvg(ZR_Text* text, ZR_Rect* rect, ZR_Font* font, ZR_Textmeasuring measuring, float lineSpacing) {
    bool limited = measuring == ZR_TEXT_MEASURE;
    long limit = limited ? ZR_TruncatedToLong(static_cast<double>(rect->right - rect->left)) : kUnlimitedWidth;
    ZR_TextArray lines;
    lines.Create();
    ZR_Text2Array(text, font, limit, &lines, 0, nullptr);
    auto n = static_cast<float>(lines.count);
    rect->bottom = rect->top + font->GetLineSpacing() + font->GetHeight() * n + n * lineSpacing;
    lines.Dispose();
}

// The clip that the block makes for its elements goes as far as the one in force.
static void ClipToBlock(ZR_Device* device, ZR_Text* element, const ZR_Rect* rect) {
    ZR_DOM_Tree* svg = device->svg;
    long before = svg->currentClip;
    ZR_Rect cut = *rect, current;
    if (svg->GetCurrentClip(&current)) ZR_CutBounds(&cut, &current);
    device->ClipRect(&cut);
    svg->Clip(element);
    svg->currentClip = before;
}

static void LineSvg(ZR_Device* device, ZR_Text* line, const TextBlock& block, float y, ZR_Matrix* matrix,
                    ZR_Handle* properties) {
    ZR_DOM_Tree* svg = device->svg;
    float x = block.rect->left;
    ZR_Text element;
    element.Create();
    svg->CreateElement("text", &element);
    device->SetCustomProperties(&element, properties);
    device->SetCustomProperties(&element, &device->customProperties);
    if (block.alignment == ZR_ALIGNMENT_RIGHT) {
        svg->SetAttributeText(&element, "text-anchor", "end");
        x = block.rect->right;
    } else if (block.alignment == ZR_ALIGNMENT_CENTER) {
        svg->SetAttributeText(&element, "text-anchor", "middle");
        x = block.rect->left + (block.rect->right - block.rect->left) / 2;
    }
    svg->SetAttributeDouble(&element, "x", static_cast<double>(x));
    svg->SetAttributeDouble(&element, "y", static_cast<double>(y));
    svg->SetElementValue(&element, line);
    WriteFont(svg, &element, block.font);
    if (const char* decoration = ZR_TextDecoration(block.font->style))
        svg->SetAttributeText(&element, "text-decoration", decoration);
    if (!block.antialias) svg->SetAttributeText(&element, "text-rendering", "optimizeSpeed");
    svg->SetColor(&element, block.color, "fill", "fill-opacity");
    svg->SetMatrix(&element, matrix, "transform");
    if (block.clip) ClipToBlock(device, &element, block.rect);
    else svg->Clip(&element);
    element.Dispose();
}

static void BlockSvg(ZR_Device* device, const TextBlock& block, ZR_Matrix* matrix, ZR_Handle* properties) {
    ZR_TextArray lines;
    lines.Create();
    ZR_Text2Array(block.text, block.font, ZR_TruncatedToLong(static_cast<double>(block.rect->right - block.rect->left)),
                  &lines, 0, nullptr);
    float height = block.font->GetHeight();
    float free = block.rect->bottom - block.rect->top - height * static_cast<float>(lines.count);
    float y = block.rect->top;
    if (block.vertical == ZR_VERTICAL_BOTTOM) y += free;
    if (block.vertical == ZR_VERTICAL_CENTER) y += free / 2;
    y += block.font->GetAscent();
    for (long i = 1; i <= lines.count; ++i) {
        LineSvg(device, lines.GetTextPtr(i), block, y, matrix, properties);
        y += height + block.lineSpacing;
    }
    lines.Dispose();
}

void ZR_Device::DrawTextLayout_SVG(ZR_Text* text, ZR_Rect* rect, ZR_Alignment alignment, ZR_Alignment_Vertical vertical,
                                   void* font, ZR_RGBColor* color, bool antialias, ZR_Matrix* matrix,
                                   ZR_Handle* properties, ZR_Textmeasuring measuring, bool clip, float lineSpacing) {
    if (!svg || !font || !text || !rect) return;
    auto with = static_cast<ZR_Font*>(font);
    if (measuring != ZR_TEXT_DRAW) {
        MeasureSvg(text, rect, with, measuring, lineSpacing);
        return;
    }
    ZR_RGBColor black = {0, 0, 0, 1};
    TextBlock block = {};
    block.text = text;
    block.rect = rect;
    block.alignment = alignment;
    block.vertical = vertical;
    block.font = with;
    block.color = color ? color : &black;
    block.antialias = antialias;
    block.clip = clip;
    block.lineSpacing = lineSpacing;
    BlockSvg(this, block, matrix, properties);
}
