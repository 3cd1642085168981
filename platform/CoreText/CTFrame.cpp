// Framesetters and frames: paragraphs are cut here and set one by one, long ones in pieces, so that the time is in
// proportion to the text that the frame holds.
#include <algorithm>
#include <cmath>

#include "platform/CoreText/CoreText_Private.h"

static constexpr double kUnlimitedWidth = 1e15;  // points; from here on a width bounds nothing
static constexpr double kFit = 1e-6;             // points by which a line may stand out

struct CTFramesetter : CFObject {
    CFTypeID typeID() const override { return kCTTypeFramesetter; }
    Kept<const StyledText> text;  // null = no fonts
};

struct CTFrame : CFObject {
    CFTypeID typeID() const override { return kCTTypeFrame; }
    Kept<const CGPath> path;
    CGPoint origin = {};  // of the path's box
    Kept<__CFArray> lines;
    std::vector<CGPoint> origins;  // from the box's lower left corner
    CFRange range = {0, 0};
};

CTFramesetterRef CTFramesetterCreateWithAttributedString(CFAttributedStringRef string) {
    if (!string) return nullptr;
    return CFGuarded([&] {
        Kept<CTFramesetter> framesetter(new CTFramesetter);
        framesetter->text.reset(CreateStyledText(string));
        return framesetter.release();
    });
}

// Paragraphs ---------------------------------------------------------------------------------------------------------

struct ParagraphRange {
    CFIndex start, end, next;  // end: of its text; next: behind its line end
};

static ParagraphRange ParagraphAt(const StyledText& text, CFIndex start, CFIndex limit) {
    const uint16_t* units = text.Units();
    CFIndex end = start;
    while (end < limit && units[end] != '\r' && units[end] != '\n' && units[end] != 0x2029) ++end;
    if (end == limit) return {start, end, end};
    bool pair = units[end] == '\r' && end + 1 < limit && units[end + 1] == '\n';
    return {start, end, end + (pair ? 2 : 1)};
}

static const CTParagraphStyle& StyleOfParagraph(const StyledText& text, CFIndex at) {
    static const CTParagraphStyle plain;
    const CTParagraphStyle* style = text.styles[text.StyleAt(at)].paragraph;
    return style ? *style : plain;
}

static int BreakingOf(const CTParagraphStyle& style, bool bounded) {
    static constexpr int kModes[] = {kZRGBreakWords, kZRGBreakAnywhere, kZRGNoBreaks,
                                     kZRGCutHead,    kZRGCutTail,       kZRGCutMiddle};
    return bounded && style.breaking < std::size(kModes) ? kModes[style.breaking] : kZRGNoBreaks;
}

// Lines of a text, one after the other, until take says that it has enough.
namespace {
struct LineWalk {
    const StyledText* text;
    double width;   // points
    CFIndex limit;  // the first unit that is not looked at
    bool alive = true;
    std::vector<Kept<CTLine>> waiting;

    // take(Kept<CTLine>, const CTParagraphStyle&) -> bool: go on
    template <class Take>
    void Paragraph(const ParagraphRange& range, Take take);
    template <class Take>
    void Wrapped(const ParagraphRange& range, const CTParagraphStyle& style, int breaking, Take take);
    Kept<CTLine> NewLine(CFIndex start, CFIndex end) const;
    Kept<CTLine> EmptyLine(const ParagraphRange& range) const;
    Kept<CTLine> WholeLine(const ParagraphRange& range, int breaking) const;
};
}  // namespace

Kept<CTLine> LineWalk::NewLine(CFIndex start, CFIndex end) const {
    Kept<CTLine> line(new CTLine);
    line->text = Keep(text);
    line->range = {start, end - start};
    return line;
}

// As high as the font of its line end, or of the unit before the text's end.
Kept<CTLine> LineWalk::EmptyLine(const ParagraphRange& range) const {
    Kept<CTLine> line = NewLine(range.start, range.next);
    const ZRGFontFacts& font = text->styles[text->StyleAt(std::min(range.start, text->Length() - 1))].font->facts;
    line->ascent = font.ascent;
    line->descent = font.descent;
    line->leading = font.leading;
    return line;
}

// What can be seen of a very long paragraph that is cut: its ends.
static Kept<const StyledText> EndsOf(const StyledText& text, CFIndex start, CFIndex end, CFIndex head, CFIndex tail) {
    Kept<StyledText> ends(new StyledText);
    std::u16string units = text.string->units.substr(static_cast<size_t>(start), static_cast<size_t>(head));
    units += text.string->units.substr(static_cast<size_t>(end - tail), static_cast<size_t>(tail));
    ends->string = new __CFString(std::move(units));
    auto add = [&](CFIndex from, CFIndex to, CFIndex shift) {
        for (size_t i = text.StyleAt(from); from < to; ++i) {
            ends->styles.push_back(text.styles[i]);
            CFRetain(ends->styles.back().attributes);
            from = std::min(text.styles[i].end, to);
            ends->styles.back().end = from - shift;
        }
    };
    add(start, start + head, start);
    add(end - tail, end, end - tail - head);
    return ends;
}

// A paragraph in one line, whatever its length: not broken, or with a piece left out.
Kept<CTLine> LineWalk::WholeLine(const ParagraphRange& range, int breaking) const {
    Kept<CTLine> line = NewLine(range.start, range.next);
    int direction = kZRGAsText;
    Setting setting = {};
    setting.breaking = breaking;
    setting.width = width;
    CFIndex start = range.start, limit = range.end;
    if (breaking >= kZRGCutHead && limit - start > kZRGMostUnits) {
        CFIndex head = breaking == kZRGCutHead ? 0 : breaking == kZRGCutTail ? kZRGMostUnits : kZRGMostUnits / 2;
        line->text = EndsOf(*text, start, limit, head, kZRGMostUnits - head);
        start = 0;
        limit = line->text->Length();
    }
    for (CFIndex at = start, end; at < limit; at = end) {
        end = std::min(at + kZRGMostUnits, limit);
        if (end < limit && (line->text->Units()[end - 1] & 0xFC00) == 0xD800) --end;
        setting.start = at;
        setting.end = end;
        setting.direction = direction;
        Kept<const SetPiece> piece(CreatePiece(*line->text, setting));
        if (!piece || piece->set->lineCount < 1) break;
        line->Add(std::move(piece), 0);
        direction = line->rightToLeft ? kZRGRightToLeft : kZRGLeftToRight;
    }
    return line;
}

// Units of a long paragraph that are set at once: those of about twenty lines, if a glyph is half as wide as high.
static CFIndex PieceUnits(const Style& style, double width) {
    double units = 20 * width / (style.font->facts.size / 2);
    return static_cast<CFIndex>(std::clamp(units, 128.0, static_cast<double>(kZRGMostUnits)));
}

// A piece's last line is set again with the next piece, unless the paragraph ends there.
template <class Take>
void LineWalk::Wrapped(const ParagraphRange& range, const CTParagraphStyle& style, int breaking, Take take) {
    CFIndex units = PieceUnits(text->styles[text->StyleAt(range.start)], width);
    Setting setting = {};
    setting.breaking = breaking;
    setting.width = width;
    setting.justify = style.alignment == kCTTextAlignmentJustified;
    for (CFIndex at = range.start; alive && at < range.end;) {
        setting.start = at;
        setting.end = std::min(at + units, range.end);
        if (setting.end < range.end && (text->Units()[setting.end - 1] & 0xFC00) == 0xD800) --setting.end;
        bool last = setting.end == range.end;
        Kept<const SetPiece> piece(CreatePiece(*text, setting));
        long count = piece ? piece->set->lineCount : 0;
        if (count < 1) {
            alive = false;
            return;
        }
        if (!last && count < 2 && units < kZRGMostUnits) {
            units = std::min(units * 4, kZRGMostUnits);
            continue;
        }
        bool keepsLast = last || count < 2;
        for (long i = 0; alive && i < count - (keepsLast ? 0 : 1); ++i) {
            const ZRGTextLine& from = piece->set->lines[i];
            bool ends = last && i == count - 1;
            Kept<CTLine> line = NewLine(at + from.start, ends ? range.next : at + from.end);
            line->Add(Keep(piece.get()), i);
            alive = take(std::move(line), style);
        }
        setting.direction = piece->set->lines[0].rightToLeft ? kZRGRightToLeft : kZRGLeftToRight;
        at += keepsLast ? setting.end - setting.start : piece->set->lines[count - 1].start;
    }
}

template <class Take>
void LineWalk::Paragraph(const ParagraphRange& range, Take take) {
    const CTParagraphStyle& style = StyleOfParagraph(*text, range.start);
    int breaking = BreakingOf(style, width < kUnlimitedWidth);
    if (range.start == range.end) alive = take(EmptyLine(range), style);
    else if (breaking == kZRGBreakWords || breaking == kZRGBreakAnywhere) Wrapped(range, style, breaking, take);
    else alive = take(WholeLine(range, breaking), style);
}

template <class Take>
static void EachLine(const StyledText& text, CFRange range, double width, Take take) {
    CFIndex length = text.Length();
    CFIndex at = std::clamp<CFIndex>(range.location, 0, length);
    CFIndex limit = range.length > 0 ? at + std::min(range.length, length - at) : length;
    LineWalk walk = {};
    walk.text = &text;
    walk.width = width;
    walk.limit = limit;
    walk.alive = true;
    while (walk.alive && at < limit) {
        ParagraphRange paragraph = ParagraphAt(text, at, limit);
        walk.Paragraph(paragraph, take);
        at = paragraph.next;
    }
}

// Frames -------------------------------------------------------------------------------------------------------------

static double FlushOf(const CTLine& line, const CTParagraphStyle& style) {
    switch (style.alignment) {
        case kCTTextAlignmentLeft: return 0;
        case kCTTextAlignmentRight: return 1;
        case kCTTextAlignmentCenter: return 0.5;
        default: return line.rightToLeft ? 1 : 0;
    }
}

static void FillFrame(CTFrame* frame, const StyledText& text, CFRange range, CGRect box) {
    double y = box.size.height, before = 0;  // the last descent, leading and spacing
    CFIndex start = -1, end = 0;
    EachLine(text, range, box.size.width, [&](Kept<CTLine> line, const CTParagraphStyle& style) {
        double baseline = y - before - line->ascent;
        if (!(baseline - line->descent >= -kFit)) return false;
        // Guard: a spacing that leads upward would hold every line of the text.
        if (y < 0 || baseline > box.size.height + kFit) return false;
        double x = FlushOf(*line, style) * (box.size.width - line->width);
        frame->origins.push_back({std::max(x, 0.0), baseline});
        y = baseline;
        before = line->descent + line->leading + style.spacing;
        if (start < 0) start = line->range.location;
        end = line->range.location + line->range.length;
        CFArrayAppendValue(frame->lines.get(), line.get());
        return true;
    });
    if (start >= 0) frame->range = {start, end - start};
}

CTFrameRef CTFramesetterCreateFrame(CTFramesetterRef framesetter, CFRange range, CGPathRef path, CFDictionaryRef) {
    if (!framesetter || !path) return nullptr;
    return CFGuarded([&] {
        Kept<CTFrame> frame(new CTFrame);
        frame->path = Keep(path);
        frame->lines.reset(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
        if (!frame->lines) throw std::bad_alloc();
        CGRect box = CGPathGetBoundingBox(path);
        bool usable = IsFinite(box) && box.size.width > 0 && box.size.height > 0;
        if (usable) frame->origin = box.origin;
        if (usable && framesetter->text) FillFrame(frame.get(), *framesetter->text, range, box);
        return frame.release();
    });
}

CGSize CTFramesetterSuggestFrameSizeWithConstraints(CTFramesetterRef framesetter, CFRange range, CFDictionaryRef,
                                                    CGSize constraints, CFRange* fit) {
    CGSize size = {0, 0};
    if (fit) *fit = {range.location, 0};
    if (!framesetter || !framesetter->text || !(constraints.width > 0) || !(constraints.height > 0)) return size;
    CFIndex end = range.location;
    double spacing = 0;
    CFGuarded([&]() -> void* {
        EachLine(*framesetter->text, range, constraints.width, [&](Kept<CTLine> line, const CTParagraphStyle& style) {
            double bottom = size.height + spacing + line->ascent + line->descent;
            if (!(bottom <= constraints.height + kFit)) return false;
            size.width = std::max(size.width, std::min(line->width, constraints.width));
            size.height = bottom + line->leading;
            spacing = style.spacing;
            end = line->range.location + line->range.length;
            return true;
        });
        return nullptr;
    });
    if (fit) fit->length = end - range.location;
    return size;
}

CFArrayRef CTFrameGetLines(CTFrameRef frame) { return frame ? frame->lines.get() : nullptr; }

void CTFrameGetLineOrigins(CTFrameRef frame, CFRange range, CGPoint* out) {
    if (!frame || !out || range.location < 0) return;
    auto count = static_cast<CFIndex>(frame->origins.size());
    if (range.location >= count) return;
    CFIndex n = range.length > 0 ? std::min(range.length, count - range.location) : count - range.location;
    std::copy_n(frame->origins.begin() + range.location, n, out);
}

CGPathRef CTFrameGetPath(CTFrameRef frame) { return frame ? frame->path.get() : nullptr; }
CFRange CTFrameGetVisibleStringRange(CTFrameRef frame) { return frame ? frame->range : CFRangeMake(0, 0); }

void CTFrameDraw(CTFrameRef frame, CGContextRef context) {
    if (!frame || !context) return;
    CFGuarded([&]() -> void* {
        for (size_t i = 0; i < frame->origins.size(); ++i) {
            auto line = static_cast<CTLineRef>(CFArrayGetValueAtIndex(frame->lines.get(), static_cast<CFIndex>(i)));
            CGAffineTransform toUser = context->textMatrix;
            toUser.tx = frame->origin.x + frame->origins[i].x;
            toUser.ty = frame->origin.y + frame->origins[i].y;
            line->Draw(context, toUser);
        }
        return nullptr;
    });
}
