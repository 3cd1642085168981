// Text: one paragraph's lines, set by Pango, kept as plain glyph lists that know nothing of Pango; and their drawing.
// A text whose fonts are very large or very small is set at a middling size and scaled, since Pango counts in 1/1024
// of a point in 32 bits.
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#include "platform/graphics_object/Text_Private.h"

static constexpr double kLeastSize = 1, kMostSize = 1000, kMiddlingSize = 12;  // points that Pango works with
static constexpr double kMostReach = 8e5;  // points of a line, if all its glyphs were as wide as their font is high
static constexpr double kMostPangoPoints = 1e6;    // a width in them
static constexpr double kTabStop = 28;             // points
static constexpr double kLargestImageGlyph = 200;  // device units; larger glyphs are painted as outlines
static constexpr double kOddGlyph = 1e4;           // device units
static constexpr double kSmallestGlyph = 1e-2;     // device units; smaller ones are not painted
static constexpr long kManyGlyphs = 512;           // from here on those outside of the clip are left out

namespace {
struct Glyph {
    uint32_t index;
    float x, y;     // from the run's left end, y down, in points of the typeset's scale
    uint32_t byte;  // of the text, the first that it stands for
};

struct ByteRange {
    int start, end;
};

struct Typeset : ZRGTypeset {
    ~Typeset() {
        for (auto font : scaledFonts) cairo_scaled_font_destroy(font);
    }
    std::vector<ZRGTextLine> ownLines;
    std::vector<ZRGTextRun> ownRuns;
    std::vector<Glyph> glyphs;
    std::string text;                               // UTF-8, for pages: their text can be copied
    std::vector<ByteRange> bytes;                   // of each run
    std::vector<cairo_scaled_font_t*> scaledFonts;  // owned
    std::vector<FaceMetrics> metrics;               // of these fonts, in points
    double scale = 1;                               // from the size that was set to points
};

// UTF-8 of the units, and the way back from its bytes.
struct Bytes {
    std::string text;
    std::vector<uint32_t> unitOf;  // of each byte and of the end; empty = each byte is its unit
    std::vector<int> styleEnds;    // bytes

    long UnitOf(long byte) const {
        return unitOf.empty() ? byte : static_cast<long>(unitOf[static_cast<size_t>(byte)]);
    }
};
}  // namespace

// Units to bytes -----------------------------------------------------------------------------------------------------

static constexpr uint32_t kNothing = 0x200B, kReplacement = 0xFFFD;

// What stands for a unit or pair of units: controls and ends of lines take no room.
static uint32_t Shown(uint32_t c, bool breaks) {
    if (c < 0x20) return c == '\t' ? c : kNothing;
    if ((c >= 0x7F && c < 0xA0) || c == 0x2029) return kNothing;
    if (c == 0x2028) return breaks ? c : kNothing;
    return c >= 0xD800 && c < 0xE000 ? kReplacement : c;
}

static void AppendUTF8(std::string* text, uint32_t c) {
    char out[4];
    size_t n = 0;
    if (c < 0x80) {
        out[n++] = static_cast<char>(c);
    } else if (c < 0x800) {
        out[n++] = static_cast<char>(0xC0 | (c >> 6));
        out[n++] = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out[n++] = static_cast<char>(0xE0 | (c >> 12));
        out[n++] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[n++] = static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out[n++] = static_cast<char>(0xF0 | (c >> 18));
        out[n++] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out[n++] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[n++] = static_cast<char>(0x80 | (c & 0x3F));
    }
    text->append(out, n);
}

static bool IsPlain(const uint16_t* units, long count) {
    uint16_t bad = 0;
    for (long i = 0; i < count; ++i) bad |= static_cast<uint16_t>((units[i] < 0x20) | (units[i] > 0x7E));
    return !bad;
}

static Bytes ToBytes(const ZRGTypesetting& from) {
    Bytes bytes;
    auto count = static_cast<size_t>(from.count);
    if (IsPlain(from.units, from.count)) {
        bytes.text.resize(count);
        for (size_t i = 0; i < count; ++i) bytes.text[i] = static_cast<char>(from.units[i]);
        for (long i = 0; i < from.styleCount; ++i) bytes.styleEnds.push_back(static_cast<int>(from.styles[i].end));
        return bytes;
    }
    bool breaks = from.breaking == kZRGBreakWords || from.breaking == kZRGBreakAnywhere;
    bytes.text.reserve(count + count / 2);
    bytes.unitOf.reserve(count + count / 2 + 1);
    long style = 0;
    for (size_t i = 0; i < count;) {
        uint32_t c = from.units[i];
        size_t taken = 1;
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < count && from.units[i + 1] >= 0xDC00 && from.units[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (from.units[i + 1] - 0xDC00U);
            taken = 2;
        }
        AppendUTF8(&bytes.text, Shown(c, breaks));
        bytes.unitOf.resize(bytes.text.size(), static_cast<uint32_t>(i));
        i += taken;
        for (; style < from.styleCount && from.styles[style].end <= static_cast<long>(i); ++style)
            bytes.styleEnds.push_back(static_cast<int>(bytes.text.size()));
    }
    bytes.unitOf.push_back(static_cast<uint32_t>(count));
    return bytes;
}

// Setting ------------------------------------------------------------------------------------------------------------

// The style number travels through Pango as an attribute of our own.
struct StyleAttribute {
    PangoAttribute attribute;
    long style;
};

static const PangoAttrClass& StyleClass() {
    static const PangoAttrClass row = {pango_attr_type_register("zr-style"),
                                       [](const PangoAttribute* from) -> PangoAttribute* {
                                           auto copy = g_new(StyleAttribute, 1);
                                           *copy = *reinterpret_cast<const StyleAttribute*>(from);
                                           return &copy->attribute;
                                       },
                                       [](PangoAttribute* attribute) { g_free(attribute); },
                                       [](const PangoAttribute* a, const PangoAttribute* b) -> gboolean {
                                           return reinterpret_cast<const StyleAttribute*>(a)->style ==
                                                  reinterpret_cast<const StyleAttribute*>(b)->style;
                                       }};
    return row;
}

static PangoAttribute* NewStyleAttribute(long style) {
    auto made = g_new(StyleAttribute, 1);
    pango_attribute_init(&made->attribute, &StyleClass());
    made->style = style;
    return &made->attribute;
}

static void Add(PangoAttrList* list, PangoAttribute* attribute, int start, int end) {
    attribute->start_index = static_cast<guint>(start);
    attribute->end_index = static_cast<guint>(end);
    pango_attr_list_insert(list, attribute);
}

static double ClampSize(double size) { return std::clamp(size, 1.0 / PANGO_SCALE, kMostSize); }

static int PangoUnits(double points) {
    return static_cast<int>(std::clamp(points, -kMostPangoPoints, kMostPangoPoints) * PANGO_SCALE);
}

// So that a line of all units stays within what Pango can count, and no font is too small for its grid.
static double ScaleOf(const ZRGTypesetting& from, const Bytes& bytes) {
    double most = 0, reach = bytes.text.find('\t') != std::string::npos ? kTabStop : 0;
    for (long i = 0; i < from.styleCount; ++i) {
        most = std::max(most, from.styles[i].font->size);
        reach = std::max(reach, from.styles[i].font->size + std::abs(from.styles[i].spacing));
    }
    double limit = std::min(kMostSize, kMostReach / static_cast<double>(from.count));
    if (reach > limit) return reach / limit;
    return most < kLeastSize ? most / std::min(kMiddlingSize, limit) : 1;
}

static bool SameFont(const ZRGTextStyle& a, const ZRGTextStyle& b) {
    return a.font == b.font || (a.font->face == b.font->face && a.font->size == b.font->size);
}

static bool SameKerning(const ZRGTextStyle& a, const ZRGTextStyle& b) {
    return a.kerned == b.kerned && a.spacing == b.spacing;
}

// Whether runs must be told apart by an attribute of our own: Pango splits them only where fonts or kernings differ.
static bool NeedsMarks(const ZRGTypesetting& from) {
    for (long i = 1; i < from.styleCount; ++i)
        if (SameFont(from.styles[i - 1], from.styles[i]) && SameKerning(from.styles[i - 1], from.styles[i]))
            return true;
    return false;
}

// Calls add(style, start, end) for each stretch of styles that are the same.
template <class Same, class Add>
static void EachStretch(const ZRGTypesetting& from, const Bytes& bytes, Same same, Add add) {
    int start = 0;
    for (long i = 0; i < from.styleCount; ++i) {
        int end = bytes.styleEnds[static_cast<size_t>(i)];
        if (i + 1 < from.styleCount && same(from.styles[i], from.styles[i + 1])) continue;
        if (start < end) add(i, start, end);
        start = end;
    }
}

static PangoAttrList* AttributesOf(const ZRGTypesetting& from, const Bytes& bytes, double scale, bool marks) {
    PangoAttrList* list = pango_attr_list_new();
    int last = static_cast<int>(bytes.text.size());
    if (from.breaking != kZRGNoBreaks) Add(list, pango_attr_insert_hyphens_new(FALSE), 0, last);
    EachStretch(from, bytes, SameFont, [&](long i, int start, int end) {
        if (SameFont(from.styles[0], from.styles[i])) return;  // the layout's own
        PangoFontDescription* description =
            DescriptionOf(*from.styles[i].font, ClampSize(from.styles[i].font->size / scale));
        Add(list, pango_attr_font_desc_new(description), start, end);
        pango_font_description_free(description);
    });
    EachStretch(from, bytes, SameKerning, [&](long i, int start, int end) {
        if (!from.styles[i].kerned) return;
        Add(list, pango_attr_font_features_new("kern=0"), start, end);
        if (int spacing = PangoUnits(from.styles[i].spacing / scale))
            Add(list, pango_attr_letter_spacing_new(spacing), start, end);
    });
    auto never = [](const ZRGTextStyle&, const ZRGTextStyle&) { return false; };
    if (marks) EachStretch(from, bytes, never, [&](long i, int s, int e) { Add(list, NewStyleAttribute(i), s, e); });
    return list;
}

static void Prepare(PangoLayout* layout, const ZRGTypesetting& from, const Bytes& bytes, double scale, bool marks) {
    static constexpr PangoEllipsizeMode kCuts[] = {PANGO_ELLIPSIZE_START, PANGO_ELLIPSIZE_END, PANGO_ELLIPSIZE_MIDDLE};
    bool cuts = from.breaking >= kZRGCutHead, bounded = from.breaking != kZRGNoBreaks;
    PangoFontDescription* description =
        DescriptionOf(*from.styles[0].font, ClampSize(from.styles[0].font->size / scale));
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
    PangoAttrList* attributes = AttributesOf(from, bytes, scale, marks);
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_single_paragraph_mode(layout, !bounded || cuts);
    pango_layout_set_width(layout, bounded ? PangoUnits(std::min(from.width / scale, kMostPangoPoints)) : -1);
    pango_layout_set_wrap(layout, from.breaking == kZRGBreakAnywhere ? PANGO_WRAP_CHAR : PANGO_WRAP_WORD_CHAR);
    pango_layout_set_ellipsize(layout, cuts ? kCuts[from.breaking - kZRGCutHead] : PANGO_ELLIPSIZE_NONE);
    pango_layout_set_justify(layout, from.justify);
    pango_layout_set_auto_dir(layout, from.direction == kZRGAsText);
    PangoTabArray* tabs = nullptr;
    if (bytes.text.find('\t') != std::string::npos) {
        int stop = std::max(PangoUnits(kTabStop / scale), 1);
        tabs = pango_tab_array_new_with_positions(2, FALSE, PANGO_TAB_LEFT, stop, PANGO_TAB_LEFT, 2 * stop);
    }
    pango_layout_set_tabs(layout, tabs);
    if (tabs) pango_tab_array_free(tabs);
    pango_layout_set_text(layout, bytes.text.data(), static_cast<int>(bytes.text.size()));
}

// Pango's lines to records -------------------------------------------------------------------------------------------

static int FontNumber(Typeset* set, TextThread* thread, PangoFont* font) {
    const ThreadFont& known = thread->FontOf(font);
    for (size_t i = set->scaledFonts.size(); i-- > 0;)
        if (set->scaledFonts[i] == known.scaled) return static_cast<int>(i);
    FaceMetrics m = known.metrics;
    m.ascent *= set->scale;
    m.descent *= set->scale;
    m.leading *= set->scale;
    set->metrics.push_back(m);
    set->scaledFonts.push_back(cairo_scaled_font_reference(known.scaled));
    return static_cast<int>(set->scaledFonts.size() - 1);
}

static long StyleOf(const PangoItem* item, const ZRGTypesetting& from, long start, bool marks) {
    if (from.styleCount == 1) return 0;
    if (!marks) {
        auto found = std::upper_bound(from.styles, from.styles + from.styleCount, start,
                                      [](long at, const ZRGTextStyle& style) { return at < style.end; });
        return std::min(static_cast<long>(found - from.styles), from.styleCount - 1);
    }
    for (GSList* node = item->analysis.extra_attrs; node; node = node->next) {
        auto attribute = static_cast<PangoAttribute*>(node->data);
        if (attribute->klass == &StyleClass()) return reinterpret_cast<StyleAttribute*>(attribute)->style;
    }
    return 0;
}

static void TakeGlyphs(Typeset* set, const PangoGlyphString* glyphs, int firstByte, ZRGTextRun* run) {
    int64_t x = 0;
    run->firstGlyph = static_cast<long>(set->glyphs.size());
    for (int i = 0; i < glyphs->num_glyphs; ++i) {
        const PangoGlyphInfo& g = glyphs->glyphs[i];
        if (g.glyph != PANGO_GLYPH_EMPTY) {
            uint32_t index = g.glyph & PANGO_GLYPH_UNKNOWN_FLAG ? 0 : g.glyph;
            set->glyphs.push_back({index, static_cast<float>(x + g.geometry.x_offset) / PANGO_SCALE,
                                   static_cast<float>(g.geometry.y_offset) / PANGO_SCALE,
                                   static_cast<uint32_t>(firstByte + glyphs->log_clusters[i])});
        }
        x += g.geometry.width;
    }
    run->glyphs = static_cast<long>(set->glyphs.size()) - run->firstGlyph;
    run->width = static_cast<double>(x) / PANGO_SCALE * set->scale;
}

static void TakeRun(Typeset* set, TextThread* thread, const ZRGTypesetting& text, const Bytes& bytes, bool marks,
                    const PangoGlyphItem* from, double* x) {
    ZRGTextRun run = {};
    run.start = bytes.UnitOf(from->item->offset);
    run.end = bytes.UnitOf(from->item->offset + from->item->length);
    run.style = StyleOf(from->item, text, run.start, marks);
    run.font = FontNumber(set, thread, from->item->analysis.font);
    const FaceMetrics& m = set->metrics[static_cast<size_t>(run.font)];
    run.ascent = m.ascent;
    run.descent = m.descent;
    run.leading = m.leading;
    TakeGlyphs(set, from->glyphs, from->item->offset, &run);
    run.x = *x;
    *x += run.width;
    set->bytes.push_back({from->item->offset, from->item->offset + from->item->length});
    set->ownRuns.push_back(run);
}

static void TakeLine(Typeset* set, TextThread* thread, const ZRGTypesetting& from, const Bytes& bytes, bool marks,
                     const PangoLayoutLine* setLine) {
    ZRGTextLine line = {};
    line.start = bytes.UnitOf(setLine->start_index);
    line.rightToLeft = setLine->resolved_dir == PANGO_DIRECTION_RTL;
    line.firstRun = static_cast<long>(set->ownRuns.size());
    double x = 0;
    for (GSList* node = setLine->runs; node; node = node->next)
        TakeRun(set, thread, from, bytes, marks, static_cast<PangoGlyphItem*>(node->data), &x);
    line.runCount = static_cast<long>(set->ownRuns.size()) - line.firstRun;
    for (long i = line.firstRun; i < line.firstRun + line.runCount; ++i) {
        const ZRGTextRun& run = set->ownRuns[static_cast<size_t>(i)];
        line.ascent = std::max(line.ascent, run.ascent);
        line.descent = std::max(line.descent, run.descent);
        line.leading = std::max(line.leading, run.leading);
    }
    if (line.runCount > 0) {
        // The spacing stands behind every glyph; Pango leaves one out a line.
        ZRGTextRun& last = set->ownRuns.back();
        const ZRGTextStyle& style = from.styles[last.style];
        if (style.kerned && last.width > 0) {
            last.width += style.spacing;
            x += style.spacing;
        }
    }
    line.width = x;
    set->ownLines.push_back(line);
}

// Pango leaves justified lines short by the kerning of the blank at their end.
static void Fill(Typeset* set, ZRGTextLine* line, double width) {
    if (!(std::abs(width - line->width) < 1) || line->width <= 0) return;
    double factor = width / line->width;
    for (long i = line->firstRun; i < line->firstRun + line->runCount; ++i) {
        ZRGTextRun& run = set->ownRuns[static_cast<size_t>(i)];
        run.x *= factor;
        run.width *= factor;
        for (long k = run.firstGlyph; k < run.firstGlyph + run.glyphs; ++k)
            set->glyphs[static_cast<size_t>(k)].x *= static_cast<float>(factor);
    }
    line->width = width;
}

// A line without glyphs is as high as the font at its place.
static void GiveHeight(ZRGTextLine* line, const ZRGTypesetting& from) {
    long style = 0;
    while (style + 1 < from.styleCount && from.styles[style].end <= line->start) ++style;
    ZRGFontFacts facts;
    GetFontFacts(from.styles[style].font, &facts);
    line->ascent = facts.ascent;
    line->descent = facts.descent;
    line->leading = facts.leading;
}

// A plain line ------------------------------------------------------------------------------------------------------

// Shaped as Pango would shape the one item that such a line is; in the thread's buffer.
static void ShapePlain(TextThread* thread, PangoFont* font, const std::string& text, bool kerned) {
    bool letters = std::any_of(text.begin(), text.end(), [](char c) { return (c | 32) >= 'a' && (c | 32) <= 'z'; });
    const char* language = pango_language_to_string(pango_context_get_language(thread->context));
    hb_buffer_t* buffer = thread->buffer;
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0, -1);
    hb_buffer_set_flags(buffer, static_cast<hb_buffer_flags_t>(HB_BUFFER_FLAG_BOT | HB_BUFFER_FLAG_EOT));
    hb_buffer_set_cluster_level(buffer, HB_BUFFER_CLUSTER_LEVEL_MONOTONE_CHARACTERS);
    hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, letters ? HB_SCRIPT_LATIN : HB_SCRIPT_COMMON);
    hb_buffer_set_language(buffer, hb_language_from_string(language, -1));
    hb_feature_t noKerning = {HB_TAG('k', 'e', 'r', 'n'), 0, 0, static_cast<unsigned>(-1)};
    hb_shape(pango_font_get_hb_font(font), buffer, &noKerning, kerned ? 1 : 0);
}

// The buffer's glyphs; false = the font lacks one.
static bool TakeShaped(Typeset* set, hb_buffer_t* buffer, ZRGTextRun* run) {
    unsigned count;
    const hb_glyph_info_t* info = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* at = hb_buffer_get_glyph_positions(buffer, &count);
    int64_t x = 0;
    for (unsigned i = 0; i < count; ++i) {
        if (info[i].codepoint == 0) return false;
        set->glyphs.push_back({info[i].codepoint, static_cast<float>(x + at[i].x_offset) / PANGO_SCALE,
                               static_cast<float>(-at[i].y_offset) / PANGO_SCALE, info[i].cluster});
        x += at[i].x_advance;
    }
    run->glyphs = count;
    run->width = static_cast<double>(x) / PANGO_SCALE * set->scale;
    return true;
}

// A line of printable ASCII in one style needs nothing of Pango's analysis. False = it is none, or the font lacks a
// glyph.
static bool SetPlainLine(Typeset* set, TextThread* thread, const ZRGTypesetting& from, const Bytes& bytes) {
    const ZRGTextStyle& style = from.styles[0];
    if (from.breaking != kZRGNoBreaks || from.styleCount > 1 || !bytes.unitOf.empty() || style.spacing != 0 ||
        from.direction == kZRGRightToLeft)
        return false;
    PangoFont* font = thread->FontOf(*style.font, ClampSize(style.font->size / set->scale));
    if (!font) return false;
    ShapePlain(thread, font, bytes.text, style.kerned);
    ZRGTextRun run = {};
    if (!TakeShaped(set, thread->buffer, &run)) {
        set->glyphs.clear();
        return false;
    }
    run.end = from.count;
    run.font = FontNumber(set, thread, font);
    const FaceMetrics& m = set->metrics[0];
    run.ascent = m.ascent;
    run.descent = m.descent;
    run.leading = m.leading;
    set->bytes.push_back({0, static_cast<int>(from.count)});
    set->ownRuns.push_back(run);
    set->ownLines.push_back({0, from.count, run.width, m.ascent, m.descent, m.leading, 0, 1, false});
    return true;
}

static void SetByPango(Typeset* set, TextThread* thread, const ZRGTypesetting& from, const Bytes& bytes) {
    bool marks = NeedsMarks(from);
    if (from.direction != kZRGAsText)
        pango_context_set_base_dir(thread->context,
                                   from.direction == kZRGRightToLeft ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR);
    Prepare(thread->layout, from, bytes, set->scale, marks);
    auto lines = static_cast<size_t>(pango_layout_get_line_count(thread->layout));
    set->ownLines.reserve(lines);
    set->ownRuns.reserve(lines);
    for (GSList* node = pango_layout_get_lines_readonly(thread->layout); node; node = node->next)
        TakeLine(set, thread, from, bytes, marks, static_cast<PangoLayoutLine*>(node->data));
    if (from.direction != kZRGAsText) pango_context_set_base_dir(thread->context, PANGO_DIRECTION_LTR);
    for (size_t i = 0; i < set->ownLines.size(); ++i) {
        ZRGTextLine& line = set->ownLines[i];
        line.end = i + 1 < set->ownLines.size() ? set->ownLines[i + 1].start : from.count;
        if (line.runCount == 0) GiveHeight(&line, from);
        if (from.justify && i + 1 < set->ownLines.size()) Fill(set, &line, from.width);
    }
}

static ZRGTypeset* SetText(const ZRGTypesetting* from) {
    if (from->count < 1 || from->count > kZRGMostUnits || from->styleCount < 1) return nullptr;
    if (from->breaking != kZRGNoBreaks && !(from->width > 0)) return nullptr;
    try {
        TextThread& thread = ThisThread();
        thread.Tidy();
        auto set = std::make_unique<Typeset>();
        Bytes bytes = ToBytes(*from);
        set->scale = ScaleOf(*from, bytes);
        set->glyphs.reserve(bytes.text.size());
        if (!SetPlainLine(set.get(), &thread, *from, bytes)) SetByPango(set.get(), &thread, *from, bytes);
        set->text = std::move(bytes.text);
        set->lines = set->ownLines.data();
        set->lineCount = static_cast<long>(set->ownLines.size());
        set->runs = set->ownRuns.data();
        return set.release();
    } catch (const std::bad_alloc&) { return nullptr; }
}

static void ReleaseSet(ZRGTypeset* set) { delete static_cast<Typeset*>(set); }

// Drawing ------------------------------------------------------------------------------------------------------------

namespace {
struct GlyphWindow {  // of glyph places that can be seen; left > right = nothing
    double left, right;
};
}  // namespace

// The part of a long run within the clip; a glyph's ink reaches at most a few sizes out of its place.
static GlyphWindow WindowOf(ZRGCanvas* canvas, const cairo_matrix_t& matrix, double size) {
    double x1, y1, x2, y2;
    cairo_clip_extents(canvas->cr.get(), &x1, &y1, &x2, &y2);
    cairo_matrix_t back = matrix;
    if (cairo_matrix_invert(&back) != CAIRO_STATUS_SUCCESS) return {1, 0};
    GlyphWindow window = {1e300, -1e300};
    for (int i = 0; i < 4; ++i) {
        double x = i & 1 ? x2 : x1, y = i & 2 ? y2 : y1;
        cairo_matrix_transform_point(&back, &x, &y);
        window.left = std::min(window.left, x);
        window.right = std::max(window.right, x);
    }
    return {window.left - 4 * size, window.right + 4 * size};
}

static std::vector<cairo_glyph_t>& CairoGlyphs(ZRGCanvas* canvas, const Typeset* set, const ZRGTextRun& run,
                                               const cairo_matrix_t& matrix, double size) {
    thread_local std::vector<cairo_glyph_t> glyphs;
    glyphs.clear();
    const Glyph* from = set->glyphs.data() + run.firstGlyph;
    GlyphWindow window = {-1e300, 1e300};
    if (run.glyphs > kManyGlyphs && canvas->kind == CanvasKind::bitmap) window = WindowOf(canvas, matrix, size);
    for (long i = 0; i < run.glyphs; ++i)
        if (double x = static_cast<double>(from[i].x); x >= window.left && x <= window.right)
            glyphs.push_back({from[i].index, x, static_cast<double>(from[i].y)});
    return glyphs;
}

namespace {
struct Clusters {  // which bytes of a text stand for which glyphs; empty = not told
    const char* text = nullptr;
    int length = 0;
    std::vector<cairo_text_cluster_t> list;
    bool backward = false;  // glyphs run from the last to the first
};
}  // namespace

static Clusters ClustersOf(const Typeset* set, long index) {
    const ZRGTextRun& run = set->ownRuns[static_cast<size_t>(index)];
    const ByteRange& range = set->bytes[static_cast<size_t>(index)];
    const Glyph* glyphs = set->glyphs.data() + run.firstGlyph;
    Clusters made;
    made.backward = glyphs[0].byte > glyphs[run.glyphs - 1].byte;
    auto byteOf = [&](long i) { return static_cast<int>(glyphs[made.backward ? run.glyphs - 1 - i : i].byte); };
    if (byteOf(0) < range.start) return {};
    if (byteOf(0) > range.start) made.list.push_back({byteOf(0) - range.start, 0});
    for (long i = 0, next; i < run.glyphs; i = next) {
        for (next = i + 1; next < run.glyphs && byteOf(next) == byteOf(i);) ++next;
        int end = next < run.glyphs ? byteOf(next) : range.end;
        if (end <= byteOf(i) || end > range.end) return {};
        made.list.push_back({end - byteOf(i), static_cast<int>(next - i)});
    }
    made.text = set->text.data() + range.start;
    made.length = range.end - range.start;
    return made;
}

static void PaintGlyphs(cairo_t* cr, const std::vector<cairo_glyph_t>& glyphs, const Clusters& clusters,
                        cairo_scaled_font_t* font, const cairo_matrix_t& matrix, bool outlines, const ZRGPaint* paint) {
    cairo_set_matrix(cr, &matrix);
    cairo_set_scaled_font(cr, font);
    cairo_set_source_rgba(cr, paint->color.red, paint->color.green, paint->color.blue, paint->color.alpha);
    if (!paint->antialias) {
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_scaled_font_get_font_options(font, options);
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_NONE);
        cairo_set_font_options(cr, options);
        cairo_font_options_destroy(options);
    }
    if (outlines) {
        cairo_new_path(cr);
        cairo_glyph_path(cr, glyphs.data(), static_cast<int>(glyphs.size()));
        cairo_set_antialias(cr, paint->antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
        cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
        cairo_fill(cr);
    } else if (!clusters.list.empty()) {
        cairo_show_text_glyphs(
            cr, clusters.text, clusters.length, glyphs.data(), static_cast<int>(glyphs.size()), clusters.list.data(),
            static_cast<int>(clusters.list.size()),
            clusters.backward ? CAIRO_TEXT_CLUSTER_FLAG_BACKWARD : static_cast<cairo_text_cluster_flags_t>(0));
    } else {
        cairo_show_glyphs(cr, glyphs.data(), static_cast<int>(glyphs.size()));
    }
    cairo_identity_matrix(cr);
}

static ZRGRect InkBounds(const ZRGTextRun& run, const ZRGMatrix& m, double size) {
    double left = run.x - size, right = run.x + run.width + size, bottom = -2 * size, top = 2 * size;
    double x1 = 1e300, y1 = 1e300, x2 = -1e300, y2 = -1e300;
    for (int i = 0; i < 4; ++i) {
        double x = i & 1 ? right : left, y = i & 2 ? top : bottom;
        double dx = m.a * x + m.c * y + m.tx, dy = m.b * x + m.d * y + m.ty;
        x1 = std::min(x1, dx);
        x2 = std::max(x2, dx);
        y1 = std::min(y1, dy);
        y2 = std::max(y2, dy);
    }
    return {x1, y1, x2 - x1, y2 - y1};
}

static void DrawRun(ZRGCanvas* canvas, const ZRGTypeset* typeset, long index, const ZRGMatrix* m,
                    const ZRGPaint* paint) {
    auto set = static_cast<const Typeset*>(typeset);
    const ZRGTextRun& run = set->ownRuns[static_cast<size_t>(index)];
    if (!canvas->cr || run.glyphs == 0) return;
    cairo_scaled_font_t* font = set->scaledFonts[static_cast<size_t>(run.font)];
    cairo_matrix_t fontMatrix;
    cairo_scaled_font_get_font_matrix(font, &fontMatrix);
    double s = set->scale, size = std::abs(fontMatrix.xx);
    // From the run's left end, y down, in the size that was set, to device
    cairo_matrix_t matrix = {m->a * s, m->b * s, -m->c * s, -m->d * s, m->a * run.x + m->tx, m->b * run.x + m->ty};
    double larger = size * std::max(std::hypot(matrix.xx, matrix.yx), std::hypot(matrix.xy, matrix.yy));
    bool placed = std::abs(matrix.x0) <= kZRGMaximumCoordinate && std::abs(matrix.y0) <= kZRGMaximumCoordinate;
    if (!placed || !(larger >= kSmallestGlyph && larger <= kZRGMaximumCoordinate / 2)) return;
    try {
        auto& glyphs = CairoGlyphs(canvas, set, run, matrix, size);
        if (glyphs.empty()) return;
        bool outlines = larger > kLargestImageGlyph && canvas->kind == CanvasKind::bitmap;
        Clusters clusters;
        if (canvas->kind != CanvasKind::bitmap) clusters = ClustersOf(set, index);
        if (paint->shadow)
            CastShadow(canvas, paint->shadow, InkBounds(run, *m, size * s),
                       [&](cairo_t* to) { PaintGlyphs(to, glyphs, clusters, font, matrix, outlines, paint); });
        Paint(canvas, IsOdd(*m) || larger > kOddGlyph,
              [&](cairo_t* to) { PaintGlyphs(to, glyphs, clusters, font, matrix, outlines, paint); });
    } catch (const std::bad_alloc&) {}
    Finish(canvas, 1);
}

void FillTextFunctions(ZRGTable* table) {
    table->typeset = SetText;
    table->releaseTypeset = ReleaseSet;
    table->drawText = DrawRun;
}
