#include "platform/SVG/SVGTextArea.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/CoreText/CoreText.h"

static constexpr size_t kMostWritten = 1UL << 28;
static constexpr size_t kDeepest = 10000;          // open elements
static constexpr double kUnlimited = 1e5;          // points, for a size that is not told
static constexpr double kDefaultFontSize = 12;     // as the renderer has it
static constexpr double kLargestFontSize = 10000;  // points

using Attributes = std::vector<std::pair<std::string_view, std::string_view>>;  // values without their quotes

// The document in pieces -------------------------------------------------------------------------------------------

enum PieceKind { kText, kData, kStart, kEnd, kOther };  // kData: the inside of CDATA; kOther: comments and the like

struct Piece {
    PieceKind kind;
    std::string_view all;   // as it stands
    std::string_view name;  // of an element, with its prefix
    Attributes attributes;
    bool empty = false;  // <name/>
};

static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

static std::string_view Local(std::string_view name) {
    size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// The inside of a start tag; false = not well-formed.
static bool ReadAttributes(std::string_view inside, Piece* piece) {
    size_t at = 0;
    auto skip = [&] {
        while (at < inside.size() && IsBlank(inside[at])) ++at;
    };
    while (at < inside.size() && !IsBlank(inside[at])) ++at;
    piece->name = inside.substr(0, at);
    for (skip(); at < inside.size(); skip()) {
        size_t start = at;
        while (at < inside.size() && inside[at] != '=' && !IsBlank(inside[at])) ++at;
        std::string_view name = inside.substr(start, at - start);
        skip();
        if (at >= inside.size() || inside[at] != '=') return false;
        ++at;
        skip();
        if (at >= inside.size() || (inside[at] != '"' && inside[at] != '\'')) return false;
        size_t end = inside.find(inside[at], at + 1);
        if (end == std::string_view::npos) return false;
        piece->attributes.emplace_back(name, inside.substr(at + 1, end - at - 1));
        at = end + 1;
    }
    return !piece->name.empty();
}

// Behind the ">" of a tag, which may stand in quotes too; npos = none
static size_t EndOfTag(std::string_view text) {
    char quote = 0;
    for (size_t i = 1; i < text.size(); ++i) {
        if (quote) quote = text[i] == quote ? 0 : quote;
        else if (text[i] == '"' || text[i] == '\'') quote = text[i];
        else if (text[i] == '>') return i + 1;
    }
    return std::string_view::npos;
}

// Behind a document type, whose own declarations stand in [ ].
static size_t EndOfDocumentType(std::string_view text) {
    int depth = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '[') ++depth;
        if (text[i] == ']') --depth;
        if (text[i] == '>' && depth <= 0) return i + 1;
    }
    return std::string_view::npos;
}

static size_t Behind(std::string_view text, std::string_view end) {
    size_t at = text.find(end);
    return at == std::string_view::npos ? at : at + end.size();
}

// Takes the next piece off; false = not well-formed.
static bool NextPiece(std::string_view* rest, Piece* piece) {
    std::string_view text = *rest;
    *piece = {};
    size_t n;
    if (text[0] != '<') {
        piece->kind = kText;
        n = std::min(text.find('<'), text.size());
    } else if (text.starts_with("<![CDATA[")) {
        piece->kind = kData;
        n = Behind(text, "]]>");
    } else if (text.starts_with("<!--")) {
        piece->kind = kOther;
        n = Behind(text, "-->");
    } else if (text.starts_with("<?")) {
        piece->kind = kOther;
        n = Behind(text, "?>");
    } else if (text.starts_with("<!")) {
        piece->kind = kOther;
        n = EndOfDocumentType(text);
    } else {
        piece->kind = text.starts_with("</") ? kEnd : kStart;
        n = EndOfTag(text);
    }
    if (n == std::string_view::npos) return false;
    piece->all = text.substr(0, n);
    *rest = text.substr(n);
    if (piece->kind == kEnd) {
        piece->name = text.substr(2, n - 3);
        while (!piece->name.empty() && IsBlank(piece->name.back())) piece->name.remove_suffix(1);
    } else if (piece->kind == kStart) {
        std::string_view inside = text.substr(1, n - 2);
        if (inside.ends_with('/')) {
            piece->empty = true;
            inside.remove_suffix(1);
        }
        return ReadAttributes(inside, piece);
    }
    return true;
}

// Texts ------------------------------------------------------------------------------------------------------------

static void AddCharacter(char32_t c, std::u16string* out) {
    if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) c = 0xFFFD;
    if (c >= 0x10000) {
        *out += static_cast<char16_t>(0xD7C0 + (c >> 10));
        *out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    } else {
        *out += static_cast<char16_t>(c);
    }
}

// One character of UTF-8, or a byte as Latin-1 if it is none.
static char32_t TakeCharacter(std::string_view* text, bool utf8) {
    auto byte = [&](size_t i) { return static_cast<unsigned char>((*text)[i]); };
    char32_t c = byte(0);
    size_t n = !utf8 || c < 0xC2 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : c < 0xF5 ? 4 : 1;
    bool whole = n <= text->size();
    for (size_t i = 1; whole && i < n; ++i) whole = (byte(i) & 0xC0) == 0x80;
    if (n > 1 && whole) {
        c &= 0x7FU >> n;
        for (size_t i = 1; i < n; ++i) c = c << 6 | (byte(i) & 0x3FU);
    } else {
        n = 1;
    }
    text->remove_prefix(n);
    return c;
}

// The character of an entity, which is taken off; 0 = none that is known
static char32_t TakeEntity(std::string_view* text) {
    static constexpr std::pair<std::string_view, char32_t> kNames[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
    for (const auto& [name, character] : kNames)
        if (text->starts_with(name)) {
            text->remove_prefix(name.size());
            return character;
        }
    size_t end = text->substr(0, 12).find(';');
    if (!text->starts_with("&#") || end == std::string_view::npos) return 0;
    bool hexadecimal = (*text)[2] == 'x';
    uint32_t code = 0;
    std::string_view digits = text->substr(hexadecimal ? 3 : 2, end - (hexadecimal ? 3 : 2));
    auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, hexadecimal ? 16 : 10);
    if (error != std::errc() || stop != digits.data() + digits.size() || code == 0) return 0;
    text->remove_prefix(end + 1);
    return code;
}

static std::u16string UnitsOf(std::string_view text, bool utf8, bool entities) {
    std::u16string units;
    while (!text.empty()) {
        char32_t c = entities && text[0] == '&' ? TakeEntity(&text) : 0;
        if (!c) c = TakeCharacter(&text, utf8);
        AddCharacter(c < ' ' ? U' ' : c, &units);
    }
    return units;
}

// What is not ASCII as numbers, so that the document's encoding does not matter.
static void AddEscaped(std::u16string_view units, std::string* out) {
    for (size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        bool pair =
            c >= 0xD800 && c < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000;
        if (pair) c = 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00U);
        else if (c >= 0xD800 && c < 0xE000) c = 0xFFFD;
        if (c < 0x7F && c >= ' ' && !strchr("<>&\"'", static_cast<int>(c))) *out += static_cast<char>(c);
        else if (c >= ' ' && c != 0xFFFE && c != 0xFFFF) *out += "&#" + std::to_string(static_cast<uint32_t>(c)) + ";";
    }
}

static std::string NumberText(double value) {
    char text[64];
    if (!std::isfinite(value) || std::abs(value) > 1e9) return "0";
    return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr};
}

static std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// A length, its unit left aside; relative to whole for % and em. fallback = no number
static double LengthOf(std::string_view text, double whole, double fallback) {
    text = Trimmed(text);
    double value = 0;
    if (text.starts_with('+')) text.remove_prefix(1);
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value)) return fallback;
    std::string_view unit = text.substr(static_cast<size_t>(end - text.data()));
    return unit == "%" ? value / 100 * whole : unit == "em" ? value * whole : value;
}

// Styles -----------------------------------------------------------------------------------------------------------

namespace {
struct Style {
    std::string family = "Arial";
    double size = kDefaultFontSize;
    bool bold = false, italic = false;
    std::string decoration, color, background;  // empty = none

    void Set(std::string_view name, std::string_view value) {
        value = Trimmed(value);
        if (name == "font-family") {
            value = Trimmed(value.substr(0, value.find(',')));
            if (value.size() >= 2 && (value[0] == '\'' || value[0] == '"')) value = value.substr(1, value.size() - 2);
            family = value;
        } else if (name == "font-size") {
            size = std::clamp(LengthOf(value, size, size), 0.0, kLargestFontSize);
        } else if (name == "font-weight") {
            bold = value == "bold" || value == "bolder" || LengthOf(value, 0, 0) >= 600;
        } else if (name == "font-style") {
            italic = value == "italic" || value == "oblique";
        } else if (name == "text-decoration") {
            decoration = value == "none" ? "" : value;
        } else if (name == "color") {
            color = value;
        } else if (name == "background-color") {
            background = value;
        }
    }
    void SetAll(std::string_view declarations) {  // "name:value; name:value"
        while (!declarations.empty()) {
            std::string_view one = declarations.substr(0, declarations.find(';'));
            declarations.remove_prefix(std::min(one.size() + 1, declarations.size()));
            size_t colon = one.find(':');
            if (colon != std::string_view::npos) Set(Trimmed(one.substr(0, colon)), one.substr(colon + 1));
        }
    }
    void Inherit(const Attributes& attributes) {
        for (const auto& [name, value] : attributes)
            if (name != "color") Set(name, value);
        for (const auto& [name, value] : attributes)
            if (name == "style") SetAll(value);
    }
};

struct Span {
    size_t start, end;  // units of the area's text
    Style style;
};

struct Area {
    std::string prefix;  // of the names, "svg:"
    double x = 0, y = 0, width = kUnlimited, height = kUnlimited;
    std::string align, display;
    std::string kept;  // the attributes that the group takes over, as they stand
    std::u16string text;
    std::vector<Span> spans;

    void Add(std::u16string_view units, const Style& style) {
        if (units.empty()) return;
        spans.push_back({text.size(), text.size() + units.size(), style});
        text += units;
    }
    const Style& StyleAt(size_t unit) const {
        auto next = std::upper_bound(spans.begin(), spans.end(), unit,
                                     [](size_t at, const Span& span) { return at < span.start; });
        return (next == spans.begin() ? next : next - 1)->style;
    }
};

template <class Ref>
struct Held {
    explicit Held(Ref made) : ref(made) {}
    ~Held() { CFRelease(ref); }
    Held(const Held&) = delete;
    operator Ref() const { return ref; }
    const Ref ref;
};
}  // namespace

// Layout -----------------------------------------------------------------------------------------------------------

static CTFontRef CreateFont(const Style& style) {
    Held<CFStringRef> name(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(style.family.data()),
                                                   static_cast<CFIndex>(style.family.size()), kCFStringEncodingUTF8,
                                                   false));
    CTFontRef font = CTFontCreateWithName(name, style.size, nullptr);
    uint32_t traits = (style.bold ? kCTFontTraitBold : 0U) | (style.italic ? kCTFontTraitItalic : 0U);
    CTFontRef traited = traits ? CTFontCreateCopyWithSymbolicTraits(font, 0, nullptr, traits, traits) : nullptr;
    if (!traited) return font;
    CFRelease(font);
    return traited;
}

static CTParagraphStyleRef CreateParagraphStyle(const Area& area) {
    CTTextAlignment alignment = kCTTextAlignmentNatural;
    if (area.align == "center") alignment = kCTTextAlignmentCenter;
    if (area.align == "end") alignment = kCTTextAlignmentRight;
    CTLineBreakMode mode = kCTLineBreakByWordWrapping;
    const CTParagraphStyleSetting settings[] = {{kCTParagraphStyleSpecifierAlignment, sizeof alignment, &alignment},
                                                {kCTParagraphStyleSpecifierLineBreakMode, sizeof mode, &mode}};
    return CTParagraphStyleCreate(settings, 2);
}

static CFMutableAttributedStringRef CreateString(const Area& area) {
    CFMutableAttributedStringRef string = CFAttributedStringCreateMutable(nullptr, 0);
    Held<CFStringRef> units(CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(area.text.data()),
                                                         static_cast<CFIndex>(area.text.size())));
    Held<CTParagraphStyleRef> paragraph(CreateParagraphStyle(area));
    CFAttributedStringReplaceString(string, CFRangeMake(0, 0), units);
    CFAttributedStringBeginEditing(string);
    for (const Span& span : area.spans) {
        CFRange range = CFRangeMake(static_cast<CFIndex>(span.start), static_cast<CFIndex>(span.end - span.start));
        Held<CTFontRef> font(CreateFont(span.style));
        if (font.ref) CFAttributedStringSetAttribute(string, range, kCTFontAttributeName, font.ref);
        CFAttributedStringSetAttribute(string, range, kCTParagraphStyleAttributeName, paragraph.ref);
    }
    CFAttributedStringEndEditing(string);
    return string;
}

// Of a piece of one style
static double WidthOf(const Area& area, CFAttributedStringRef string, size_t start, size_t n) {
    Held<CFStringRef> units(CFStringCreateWithCharacters(
        nullptr, reinterpret_cast<const UniChar*>(area.text.data() + start), static_cast<CFIndex>(n)));
    const void* keys[] = {kCTFontAttributeName};
    const void* values[] = {
        CFAttributedStringGetAttribute(string, static_cast<CFIndex>(start), kCTFontAttributeName, nullptr)};
    Held<CFDictionaryRef> attributes(CFDictionaryCreate(
        nullptr, keys, values, values[0] ? 1 : 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    Held<CFAttributedStringRef> piece(CFAttributedStringCreate(nullptr, units, attributes));
    Held<CTLineRef> line(CTLineCreateWithAttributedString(piece));
    return CTLineGetTypographicBounds(line, nullptr, nullptr, nullptr);
}

// Writing ----------------------------------------------------------------------------------------------------------

namespace {
struct LinePlace {
    double x, y;             // of the baseline's start, y down
    double ascent, descent;  // of the whole line
};
}  // namespace

static void WriteBackground(const Area& area, const Style& style, double x, double width, const LinePlace& line,
                            std::string* out) {
    *out += "<" + area.prefix + "rect x=\"" + NumberText(x) + "\" y=\"" + NumberText(line.y - line.ascent) +
            "\" width=\"" + NumberText(width) + "\" height=\"" + NumberText(line.ascent + line.descent) + "\" fill=\"";
    AddEscaped(UnitsOf(style.background, true, false), out);
    *out += "\" stroke=\"none\"/>";
}

static void WriteText(const Area& area, const Style& style, std::u16string_view units, double x, double y,
                      std::string* out) {
    auto attribute = [&](const char* name, std::string_view value) {
        if (value.empty()) return;
        *out += std::string(" ") + name + "=\"";
        AddEscaped(UnitsOf(value, true, true), out);
        *out += '"';
    };
    *out += "<" + area.prefix + "text xml:space=\"preserve\"";
    attribute("x", NumberText(x));
    attribute("y", NumberText(y));
    attribute("font-family", style.family);
    attribute("font-size", NumberText(style.size));
    attribute("font-weight", style.bold ? "bold" : "normal");
    attribute("font-style", style.italic ? "italic" : "normal");
    attribute("text-decoration", style.decoration);
    attribute("fill", style.color);
    *out += ">";
    AddEscaped(units, out);
    *out += "</" + area.prefix + "text>";
}

static void WriteRun(const Area& area, size_t start, size_t n, double x, double width, const LinePlace& line,
                     std::string* out) {
    const Style& style = area.StyleAt(start);
    std::u16string_view units = std::u16string_view(area.text).substr(start, n);
    if (!style.background.empty()) WriteBackground(area, style, x, width, line, out);
    if (units.find_first_not_of(u" \n") != units.npos || !style.decoration.empty())
        WriteText(area, style, units, x, line.y, out);
}

static void WriteRuns(const Area& area, CTLineRef made, const LinePlace& line, std::string* out) {
    CFArrayRef runs = CTLineGetGlyphRuns(made);
    double x = line.x;
    for (CFIndex i = 0; i < CFArrayGetCount(runs); ++i) {
        auto run = static_cast<CTRunRef>(CFArrayGetValueAtIndex(runs, i));
        CFRange range = CTRunGetStringRange(run);
        double width = CTRunGetTypographicBounds(run, CFRangeMake(0, 0), nullptr, nullptr, nullptr);
        if (range.length > 0)
            WriteRun(area, static_cast<size_t>(range.location), static_cast<size_t>(range.length), x, width, line, out);
        x += width;
    }
}

// Words of a justified line, with the room that is left spread between them.
static void WriteWords(const Area& area, CFAttributedStringRef string, size_t start, size_t end, const LinePlace& line,
                       std::string* out) {
    struct Word {
        size_t start, n;
        double width;
    };
    std::vector<Word> words;
    double used = 0;
    for (size_t at = start; at < end;) {
        while (at < end && area.text[at] == u' ') ++at;
        size_t first = at;
        auto breaks = [&] { return area.text[at] == u' ' || &area.StyleAt(at) != &area.StyleAt(first); };
        while (at < end && !breaks()) ++at;
        if (at == first) continue;
        words.push_back({first, at - first, WidthOf(area, string, first, at - first)});
        used += words.back().width;
    }
    long gaps = 0;
    for (size_t i = 1; i < words.size(); ++i) gaps += words[i].start > words[i - 1].start + words[i - 1].n;
    double gap = gaps > 0 ? (area.width - used) / static_cast<double>(gaps) : 0, x = line.x;
    for (size_t i = 0; i < words.size(); ++i) {
        if (i > 0 && words[i].start > words[i - 1].start + words[i - 1].n) x += gap;
        WriteRun(area, words[i].start, words[i].n, x, words[i].width, line, out);
        x += words[i].width;
    }
}

static void WriteLines(const Area& area, std::string* out) {
    if (area.text.empty() || area.spans.empty() || !(area.width > 0 && area.height > 0)) return;
    Held<CFMutableAttributedStringRef> string(CreateString(area));
    Held<CTFramesetterRef> setter(CTFramesetterCreateWithAttributedString(string.ref));
    Held<CGPathRef> path(CGPathCreateWithRect(CGRectMake(0, 0, area.width, area.height), nullptr));
    Held<CTFrameRef> frame(CTFramesetterCreateFrame(setter, CFRangeMake(0, 0), path, nullptr));
    CFArrayRef lines = CTFrameGetLines(frame);
    auto count = static_cast<size_t>(CFArrayGetCount(lines));
    std::vector<CGPoint> origins(count);
    if (count == 0) return;
    CTFrameGetLineOrigins(frame, CFRangeMake(0, 0), origins.data());
    auto line = [&](size_t i) {
        return static_cast<CTLineRef>(CFArrayGetValueAtIndex(lines, static_cast<CFIndex>(i)));
    };
    CGFloat descent = 0;
    CTLineGetTypographicBounds(line(count - 1), nullptr, &descent, nullptr);
    double room = std::max(origins.back().y - descent, 0.0);
    double down = area.display == "after" ? room : area.display == "center" ? room / 2 : 0;
    for (size_t i = 0; i < count && out->size() < kMostWritten; ++i) {
        CFRange range = CTLineGetStringRange(line(i));
        auto start = static_cast<size_t>(range.location), end = start + static_cast<size_t>(range.length);
        CGFloat ascent = 0;
        CTLineGetTypographicBounds(line(i), &ascent, &descent, nullptr);
        LinePlace place = {area.x + origins[i].x, area.y + area.height - origins[i].y + down, ascent, descent};
        bool last = end >= area.text.size() || (end > start && area.text[end - 1] == u'\n');
        if (area.align == "justify" && !last) WriteWords(area, string.ref, start, end, place, out);
        else WriteRuns(area, line(i), place, out);
    }
}

// Areas ------------------------------------------------------------------------------------------------------------

// What the group does not take over: the place, and what each line tells itself.
static bool StaysWithLines(std::string_view name) {
    static constexpr std::string_view kNames[] = {
        "x",           "y",         "width",       "height",     "text-align",     "display-align",
        "font-family", "font-size", "font-weight", "font-style", "text-decoration"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

static Area BeginArea(const Piece& piece) {
    Area area;
    area.prefix = piece.name.substr(0, piece.name.size() - Local(piece.name).size());
    for (const auto& [name, value] : piece.attributes) {
        if (name == "x") area.x = LengthOf(value, 0, 0);
        if (name == "y") area.y = LengthOf(value, 0, 0);
        if (name == "width") area.width = std::min(LengthOf(value, kUnlimited, kUnlimited), kUnlimited);
        if (name == "height") area.height = std::min(LengthOf(value, kUnlimited, kUnlimited), kUnlimited);
        if (name == "text-align") area.align = value;
        if (name == "display-align") area.display = value;
        if (StaysWithLines(name)) continue;
        char quote = value.find('"') == value.npos ? '"' : '\'';
        area.kept.append(" ").append(name).append("=").append(1, quote).append(value).append(1, quote);
    }
    return area;
}

// Reads up to the end of the area that a start tag opened; false = not well-formed.
static bool ReadArea(std::string_view* rest, const Style& style, bool utf8, Area* area) {
    std::vector<Style> open = {style};
    Piece piece;
    while (!rest->empty() && !open.empty() && open.size() < kDeepest) {
        if (!NextPiece(rest, &piece)) return false;
        if (piece.kind == kText) area->Add(UnitsOf(piece.all, utf8, /*entities*/ true), open.back());
        if (piece.kind == kData)
            area->Add(UnitsOf(piece.all.substr(9, piece.all.size() - 12), utf8, /*entities*/ false), open.back());
        if (piece.kind == kEnd) open.pop_back();
        if (piece.kind != kStart) continue;
        if (Local(piece.name) == "tbreak") area->Add(u"\n", open.back());
        if (piece.empty) continue;
        open.push_back(open.back());
        open.back().Inherit(piece.attributes);
    }
    return open.empty();
}

// An encoding in the first line that is not UTF-8, and no byte order mark of UTF-16, which the search below excludes.
static bool IsUTF8(std::string_view document) {
    std::string_view head = document.substr(0, std::min(document.find("?>"), document.size()));
    size_t at = head.find("encoding");
    if (!head.starts_with("<?xml") || at == head.npos) return true;
    return head.find("UTF-8", at) != head.npos || head.find("utf-8", at) != head.npos;
}

bool ZRSVGReplaceTextAreas(std::string_view document, std::string* out) {
    if (document.find("textArea") == document.npos) return false;
    const bool utf8 = IsUTF8(document);
    std::string written;
    std::vector<Style> open(1);
    std::string_view rest = document;
    Piece piece;
    bool any = false;
    if (rest.starts_with("\xEF\xBB\xBF")) rest.remove_prefix(3);
    while (!rest.empty()) {
        std::string_view before = rest;
        if (!NextPiece(&rest, &piece)) return false;
        if (piece.kind == kEnd && open.size() > 1) open.pop_back();
        bool opens = piece.kind == kStart && !piece.empty;
        if (opens) {
            if (open.size() >= kDeepest) return false;
            open.push_back(open.back());
            open.back().Inherit(piece.attributes);
        }
        if (!opens || Local(piece.name) != "textArea") {
            written += piece.all;
            continue;
        }
        Area area = BeginArea(piece);
        Style style = open.back();
        style.color.clear();  // of the area itself, "fill" counts
        if (!ReadArea(&rest, style, utf8, &area)) return false;
        open.pop_back();
        if (written.size() >= kMostWritten) {
            written += before.substr(0, before.size() - rest.size());
            continue;
        }
        written += "<" + area.prefix + "g" + area.kept + ">";
        WriteLines(area, &written);
        written += "</" + area.prefix + "g>";
        any = true;
    }
    if (any) *out = std::move(written);
    return any;
}
