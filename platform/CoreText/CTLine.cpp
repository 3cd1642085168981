// Styled text, lines and runs.
#include <algorithm>
#include <cmath>

#include "platform/CoreText/CoreText_Private.h"

const CFStringRef kCTFontAttributeName = CFConstantString("NSFont");
const CFStringRef kCTForegroundColorAttributeName = CFConstantString("CTForegroundColor");
const CFStringRef kCTUnderlineStyleAttributeName = CFConstantString("NSUnderline");
const CFStringRef kCTParagraphStyleAttributeName = CFConstantString("NSParagraphStyle");
const CFStringRef kCTKernAttributeName = CFConstantString("NSKern");

static constexpr double kWidestSpacing = 1e5;  // points behind a glyph

// Styled text --------------------------------------------------------------------------------------------------------

template <class Type>
static const Type* Attribute(CFDictionaryRef attributes, CFStringRef name, CFTypeID type) {
    CFTypeRef value = CFDictionaryGetValue(attributes, name);
    return CFGetTypeID(value) == type ? static_cast<const Type*>(value) : nullptr;
}

static double NumberAttribute(CFDictionaryRef attributes, CFStringRef name, bool* found) {
    double value = 0;
    auto number = Attribute<__CFNumber>(attributes, name, CFNumberGetTypeID());
    if (number) CFNumberGetValue(number, kCFNumberDoubleType, &value);
    *found = number && std::isfinite(value);
    return *found ? std::clamp(value, -kWidestSpacing, kWidestSpacing) : 0;
}

static Style ReadStyle(CFDictionaryRef attributes, CFIndex end) {
    Style style = {};
    bool told;
    style.attributes = attributes;
    style.font = Attribute<CTFont>(attributes, kCTFontAttributeName, kCTTypeFont);
    if (!style.font) style.font = DefaultFont();
    style.paragraph = Attribute<CTParagraphStyle>(attributes, kCTParagraphStyleAttributeName, kCTTypeParagraphStyle);
    auto color = Attribute<CGColor>(attributes, kCTForegroundColorAttributeName, kCGTypeColor);
    style.color = color ? ColorOf(*color) : ZRGColor{0, 0, 0, 1};
    style.underline = NumberAttribute(attributes, kCTUnderlineStyleAttributeName, &told) != 0;
    style.kern = NumberAttribute(attributes, kCTKernAttributeName, &style.kerned);
    style.end = end;
    return style;
}

StyledText::~StyledText() {
    for (auto& style : styles) CFRelease(style.attributes);
    CFRelease(string);
}

size_t StyledText::StyleAt(CFIndex unit) const {
    auto found = std::upper_bound(styles.begin(), styles.end(), unit,
                                  [](CFIndex at, const Style& style) { return at < style.end; });
    return static_cast<size_t>(found - styles.begin());
}

StyledText* CreateStyledText(CFAttributedStringRef string) {
    if (!string || !Graphics() || !DefaultFont()) return nullptr;
    return CFGuarded([&] {
        Kept<StyledText> text(new StyledText);
        text->string = CFStringCreateCopy(nullptr, CFAttributedStringGetString(string));
        CFRange range;
        for (CFIndex at = 0; at < text->Length(); at = range.location + range.length) {
            CFDictionaryRef attributes = CFAttributedStringGetAttributes(string, at, &range);
            text->styles.push_back(ReadStyle(attributes, range.location + range.length));
            CFRetain(attributes);  // a change of the string makes another dictionary while this one is held
        }
        return text.release();
    });
}

// Typesetting --------------------------------------------------------------------------------------------------------

SetPiece* CreatePiece(const StyledText& text, const Setting& setting) {
    const ZRGTable* table = Graphics();
    return CFGuarded([&]() -> SetPiece* {
        size_t first = text.StyleAt(setting.start);
        std::vector<ZRGTextStyle> styles;
        for (size_t i = first; i < text.styles.size(); ++i) {
            const Style& style = text.styles[i];
            CFIndex end = std::min(style.end, setting.end) - setting.start;
            styles.push_back({end, style.font->font, style.kerned, style.kern});
            if (style.end >= setting.end) break;
        }
        ZRGTypesetting request = {};
        request.units = text.Units() + setting.start;
        request.count = setting.end - setting.start;
        request.styles = styles.data();
        request.styleCount = static_cast<long>(styles.size());
        request.breaking = setting.breaking;
        request.width = setting.width;
        request.justify = setting.justify;
        request.direction = setting.direction;
        ZRGTypeset* set = table->typeset(&request);
        if (!set) return nullptr;
        SetPiece* piece = CFGuarded([&] { return new SetPiece(table, set); });
        if (!piece) {
            table->releaseTypeset(set);
            return nullptr;
        }
        piece->start = setting.start;
        piece->firstStyle = first;
        return piece;
    });
}

// Lines --------------------------------------------------------------------------------------------------------------

void CTLine::Add(Kept<const SetPiece> piece, long number) {
    const ZRGTextLine& line = piece->set->lines[number];
    if (parts.empty()) rightToLeft = line.rightToLeft;
    ascent = std::max(ascent, line.ascent);
    descent = std::max(descent, line.descent);
    leading = std::max(leading, line.leading);
    parts.push_back({std::move(piece), number, width});
    width += line.width;
}

// Where a line of many units may be cut for typesetting: behind a blank if one is near, never within a pair.
static CFIndex CutAt(const StyledText& text, CFIndex from) {
    static constexpr CFIndex kNear = 1000, kAtOnce = kZRGMostUnits / 2;
    CFIndex end = std::min(from + kAtOnce, text.Length());
    if (end == text.Length()) return end;
    for (CFIndex at = end; at > end - kNear; --at)
        if (text.Units()[at - 1] == ' ') return at;
    return (text.Units()[end - 1] & 0xFC00) == 0xD800 ? end - 1 : end;
}

CTLineRef CTLineCreateWithAttributedString(CFAttributedStringRef string) {
    if (!string) return nullptr;
    return CFGuarded([&] {
        Kept<CTLine> line(new CTLine);
        line->text.reset(CreateStyledText(string));
        line->range = {0, CFAttributedStringGetLength(string)};
        int direction = kZRGAsText;
        for (CFIndex at = 0, end; line->text && at < line->text->Length(); at = end) {
            Setting setting = {};
            setting.start = at;
            setting.end = end = CutAt(*line->text, at);
            setting.direction = direction;
            Kept<const SetPiece> piece(CreatePiece(*line->text, setting));
            if (!piece || piece->set->lineCount < 1) break;
            line->Add(std::move(piece), 0);
            direction = line->rightToLeft ? kZRGRightToLeft : kZRGLeftToRight;
        }
        if (line->rightToLeft && line->parts.size() > 1) {  // the first part stands at the right
            double x = line->width;
            for (auto& part : line->parts) part.x = x -= part.piece->set->lines[part.line].width;
        }
        return line.release();
    });
}

double CTLineGetTypographicBounds(CTLineRef line, CGFloat* ascent, CGFloat* descent, CGFloat* leading) {
    if (ascent) *ascent = line ? line->ascent : 0;
    if (descent) *descent = line ? line->descent : 0;
    if (leading) *leading = line ? line->leading : 0;
    return line ? line->width : 0;
}

CGRect CTLineGetBoundsWithOptions(CTLineRef line, unsigned long) {
    return line ? CGRectMake(0, -line->descent, line->width, line->ascent + line->descent) : CGRectNull;
}

CFRange CTLineGetStringRange(CTLineRef line) { return line ? line->range : CFRangeMake(0, 0); }

// The runs of a line's parts, with the x of their left ends.
template <class Take>
static void EachRun(const CTLine& line, Take take) {
    for (auto& part : line.parts) {
        const ZRGTypeset* set = part.piece->set;
        const ZRGTextLine& at = set->lines[part.line];
        for (long i = at.firstRun; i < at.firstRun + at.runCount; ++i)
            take(*part.piece, i, part.x,
                 line.text->styles[part.piece->firstStyle + static_cast<size_t>(set->runs[i].style)]);
    }
}

CFIndex CTLineGetGlyphCount(CTLineRef line) {
    CFIndex count = 0;
    if (line)
        EachRun(*line,
                [&](const SetPiece& piece, long i, double, const Style&) { count += piece.set->runs[i].glyphs; });
    return count;
}

CFArrayRef CTLine::Runs() const {
    std::call_once(once, [this] {
        CFGuarded([this]() -> void* {
            Kept<__CFArray> array(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
            EachRun(*this, [&](const SetPiece& piece, long i, double, const Style& style) {
                const ZRGTextRun& from = piece.set->runs[i];
                Kept<CTRun> run(new CTRun);
                run->text = Keep(text.get());
                run->attributes = style.attributes;
                run->range = {piece.start + from.start, from.end - from.start};
                run->width = from.width;
                run->ascent = from.ascent;
                run->descent = from.descent;
                run->leading = from.leading;
                CFArrayAppendValue(array.get(), run.get());
            });
            runs = std::move(array);
            return nullptr;
        });
    });
    return runs.get();
}

CFArrayRef CTLineGetGlyphRuns(CTLineRef line) { return line ? line->Runs() : nullptr; }

CFDictionaryRef CTRunGetAttributes(CTRunRef run) { return run ? run->attributes : nullptr; }
CFRange CTRunGetStringRange(CTRunRef run) { return run ? run->range : CFRangeMake(0, 0); }

double CTRunGetTypographicBounds(CTRunRef run, CFRange, CGFloat* ascent, CGFloat* descent, CGFloat* leading) {
    if (ascent) *ascent = run ? run->ascent : 0;
    if (descent) *descent = run ? run->descent : 0;
    if (leading) *leading = run ? run->leading : 0;
    return run ? run->width : 0;
}

// Drawing ------------------------------------------------------------------------------------------------------------

static void DrawUnderline(CGContext& c, const ZRGTextRun& run, double x, const Style& style, const CGAffineTransform& m,
                          const ZRGPaint& paint) {
    const ZRGFontFacts& font = style.font->facts;
    PathRecords records = c.NewPath();
    records.Rect(
        m, CGRectMake(x + run.x, font.underlinePosition - font.underlineThickness, run.width, font.underlineThickness));
    if (records.empty()) return;
    ZRGPath view = records.View(/*evenOdd*/ false);
    c.table->fill(c.canvas, &view, &paint);
}

void CTLine::Draw(CGContextRef context, const CGAffineTransform& toUser) const {
    CGContext& c = *context;
    CGAffineTransform m = CGAffineTransformConcat(toUser, c.state.device);
    if (!IsUsable(m)) return;
    EachRun(*this, [&](const SetPiece& piece, long i, double x, const Style& style) {
        ZRGPaint paint = c.Paint(style.color);
        CGAffineTransform at = CGAffineTransformTranslate(m, x, 0);
        ZRGMatrix matrix = {at.a, at.b, at.c, at.d, at.tx, at.ty};
        if (style.underline) DrawUnderline(c, piece.set->runs[i], x, style, m, paint);
        c.table->drawText(c.canvas, piece.set, i, &matrix, &paint);
    });
}

void CTLineDraw(CTLineRef line, CGContextRef context) {
    if (!line || !context) return;
    CFGuarded([&]() -> void* {
        line->Draw(context, context->textMatrix);
        return nullptr;
    });
    CGPoint end = CGPointApplyAffineTransform({line->width, 0}, context->textMatrix);
    CGContextSetTextPosition(context, end.x, end.y);
}
