// Fonts: the installed faces under their PostScript, full and family names, and those that stand for others.
#include <fontconfig/fontconfig.h>
#include <hb-ot.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <new>
#include <tuple>

#include "platform/graphics_object/Text_Private.h"

// Fonts that stand for others -----------------------------------------------------------------------------------------

// The first candidate that is installed serves; the first ones have the same widths.
static constexpr const char* kSans[] = {"Liberation Sans", "Arimo", "Nimbus Sans", "FreeSans", "DejaVu Sans", nullptr};
static constexpr const char* kSerif[] = {"Liberation Serif", "Tinos",        "Nimbus Roman",
                                         "FreeSerif",        "DejaVu Serif", nullptr};
static constexpr const char* kMono[] = {"Liberation Mono", "Cousine",          "Nimbus Mono PS",
                                        "FreeMono",        "DejaVu Sans Mono", nullptr};
static constexpr const char* kNarrow[] = {"Liberation Sans Narrow", "Liberation Sans", "DejaVu Sans", nullptr};
static constexpr const char* kWide[] = {"DejaVu Sans", "Liberation Sans", nullptr};
static constexpr const char* kWideMono[] = {"DejaVu Sans Mono", "Liberation Mono", nullptr};
static constexpr const char* kBook[] = {"Gelasio", "DejaVu Serif", "Liberation Serif", nullptr};
static constexpr const char* kCalibri[] = {"Carlito", "Liberation Sans", "DejaVu Sans", nullptr};
static constexpr const char* kCambria[] = {"Caladea", "Liberation Serif", "DejaVu Serif", nullptr};
static constexpr const char* kPalatino[] = {"P052", "TeX Gyre Pagella", "Liberation Serif", "DejaVu Serif", nullptr};

static constexpr struct {
    const char* family;
    const char* const* candidates;
} kSubstitutes[] = {
    {"Arial", kSans},
    {"Helvetica", kSans},
    {"Helvetica Neue", kSans},
    {"System", kSans},
    {"Times New Roman", kSerif},
    {"Times", kSerif},
    {"Courier New", kMono},
    {"Courier", kMono},
    {"Arial Narrow", kNarrow},
    {"Lucida Grande", kWide},
    {"Lucida Sans", kWide},
    {"Verdana", kWide},
    {"Tahoma", kWide},
    {"Geneva", kWide},
    {"Trebuchet MS", kWide},
    {"Segoe UI", kWide},
    {"Menlo", kWideMono},
    {"Monaco", kWideMono},
    {"Consolas", kWideMono},
    {"Lucida Console", kWideMono},
    {"Georgia", kBook},
    {"Calibri", kCalibri},
    {"Cambria", kCambria},
    {"Palatino", kPalatino},
};

// PostScript names of faces that are often asked for; a name's bold and italic forms are listed where they differ from
// the family's name with the style behind it.
static constexpr struct {
    const char *name, *family;
    bool bold, italic;
} kPostScriptNames[] = {
    {"ArialMT", "Arial", false, false},
    {"Arial-BoldMT", "Arial", true, false},
    {"Arial-ItalicMT", "Arial", false, true},
    {"Arial-BoldItalicMT", "Arial", true, true},
    {"ArialNarrow", "Arial Narrow", false, false},
    {"Helvetica-Bold", "Helvetica", true, false},
    {"Helvetica-Oblique", "Helvetica", false, true},
    {"Helvetica-BoldOblique", "Helvetica", true, true},
    {"HelveticaNeue", "Helvetica Neue", false, false},
    {"HelveticaNeue-Bold", "Helvetica Neue", true, false},
    {"HelveticaNeue-Italic", "Helvetica Neue", false, true},
    {"HelveticaNeue-BoldItalic", "Helvetica Neue", true, true},
    {"TimesNewRomanPSMT", "Times New Roman", false, false},
    {"TimesNewRomanPS-BoldMT", "Times New Roman", true, false},
    {"TimesNewRomanPS-ItalicMT", "Times New Roman", false, true},
    {"TimesNewRomanPS-BoldItalicMT", "Times New Roman", true, true},
    {"Times-Roman", "Times", false, false},
    {"Times-Bold", "Times", true, false},
    {"Times-Italic", "Times", false, true},
    {"Times-BoldItalic", "Times", true, true},
    {"CourierNewPSMT", "Courier New", false, false},
    {"CourierNewPS-BoldMT", "Courier New", true, false},
    {"CourierNewPS-ItalicMT", "Courier New", false, true},
    {"CourierNewPS-BoldItalicMT", "Courier New", true, true},
    {"Courier-Bold", "Courier", true, false},
    {"Courier-Oblique", "Courier", false, true},
    {"Courier-BoldOblique", "Courier", true, true},
    {"LucidaGrande", "Lucida Grande", false, false},
    {"LucidaGrande-Bold", "Lucida Grande", true, false},
    {"Menlo-Regular", "Menlo", false, false},
    {"Menlo-Bold", "Menlo", true, false},
};

// Full names: a family's name with one of these behind it
static constexpr struct {
    const char* suffix;
    bool bold, italic;
} kStyleSuffixes[] = {{" Bold Italic", true, true}, {" Bold Oblique", true, true}, {" Bold", true, false},
                      {" Italic", false, true},     {" Oblique", false, true},     {" Regular", false, false}};

static constexpr const char* kLastFamily = "Arial";  // of names that nobody knows

// Installed faces
// ------------------------------------------------------------------------------------------------------

static std::string Lower(const char* name) {
    std::string key = name;
    for (char& c : key)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return key;
}

struct FaceList {
    std::deque<Face> faces;
    std::vector<const Face*> order;  // by family, then PostScript name
    std::unordered_map<std::string, const Face*> byPostScriptName, byFullName;
    std::unordered_map<std::string, std::vector<const Face*>> byFamily;
};

static std::vector<std::string> StringsOf(FcPattern* pattern, const char* object) {
    std::vector<std::string> strings;
    FcChar8* value;
    for (int i = 0; FcPatternGetString(pattern, object, i, &value) == FcResultMatch; ++i)
        strings.emplace_back(reinterpret_cast<const char*>(value));
    return strings;
}

// A number, or the middle of a range that a variable face has.
static double NumberOf(FcPattern* pattern, const char* object, double otherwise) {
    double value;
    if (FcPatternGetDouble(pattern, object, 0, &value) == FcResultMatch) return value;
    FcRange* range;
    double low, high;
    if (FcPatternGetRange(pattern, object, 0, &range) == FcResultMatch && FcRangeGetDouble(range, &low, &high))
        return std::clamp(otherwise, low, high);
    return otherwise;
}

static bool IsOutline(FcPattern* pattern) {
    FcBool scalable = FcFalse;
    FcChar8* format;
    if (FcPatternGetBool(pattern, FC_SCALABLE, 0, &scalable) != FcResultMatch || !scalable) return false;
    if (FcPatternGetString(pattern, FC_FONTFORMAT, 0, &format) != FcResultMatch) return false;
    auto name = reinterpret_cast<const char*>(format);
    return strcmp(name, "TrueType") == 0 || strcmp(name, "CFF") == 0;  // others cannot be shaped
}

static void AddFace(FaceList* list, FcPattern* pattern) {
    std::vector<std::string> families = StringsOf(pattern, FC_FAMILY);
    if (families.empty() || !IsOutline(pattern)) return;
    Face& face = list->faces.emplace_back();
    face.families = std::move(families);
    face.fullNames = StringsOf(pattern, FC_FULLNAME);
    auto names = StringsOf(pattern, FC_POSTSCRIPT_NAME);
    face.postScriptName = names.empty() ? face.families.front() : names.front();
    face.weight = NumberOf(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR);
    face.width = NumberOf(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
    face.bold = face.weight >= FC_WEIGHT_DEMIBOLD;
    face.italic = NumberOf(pattern, FC_SLANT, FC_SLANT_ROMAN) >= FC_SLANT_ITALIC;
    face.description = pango_fc_font_description_from_pattern(pattern, /*include_size*/ FALSE);
}

static const FaceList& Installed() {
    static const FaceList* const list = [] {
        auto made = new FaceList;
        FcPattern* all = FcPatternCreate();
        FcObjectSet* wanted =
            FcObjectSetBuild(FC_FAMILY, FC_FULLNAME, FC_POSTSCRIPT_NAME, FC_STYLE, FC_WEIGHT, FC_SLANT, FC_WIDTH,
                             FC_SCALABLE, FC_FONTFORMAT, static_cast<char*>(nullptr));
        if (FcFontSet* found = FcFontList(nullptr, all, wanted)) {
            for (int i = 0; i < found->nfont; ++i) AddFace(made, found->fonts[i]);
            FcFontSetDestroy(found);
        }
        FcObjectSetDestroy(wanted);
        FcPatternDestroy(all);
        auto& order = made->order;
        for (auto& face : made->faces) order.push_back(&face);
        std::sort(order.begin(), order.end(), [](const Face* a, const Face* b) {
            return std::tie(a->families.front(), a->postScriptName) < std::tie(b->families.front(), b->postScriptName);
        });
        for (const Face* face : order) {
            made->byPostScriptName.emplace(Lower(face->postScriptName.c_str()), face);
            for (auto& name : face->fullNames) made->byFullName.emplace(Lower(name.c_str()), face);
            for (auto& name : face->families) made->byFamily[Lower(name.c_str())].push_back(face);
        }
        return made;
    }();
    return *list;
}

// The face of a family nearest to regular weight and width with these traits; null = none.
static const Face* FaceOf(const std::string& familyKey, bool bold, bool italic, double width) {
    auto found = Installed().byFamily.find(familyKey);
    if (found == Installed().byFamily.end()) return nullptr;
    double wanted = bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR, least = 1e9;
    const Face* best = nullptr;
    for (const Face* face : found->second) {
        if (face->bold != bold || face->italic != italic) continue;
        double distance = std::abs(face->width - width) * 1000 + std::abs(face->weight - wanted);
        if (distance < least) {
            least = distance;
            best = face;
        }
    }
    return best;
}

static const Face* PlainFaceOf(const std::string& familyKey) {
    if (const Face* face = FaceOf(familyKey, false, false, FC_WIDTH_NORMAL)) return face;
    auto found = Installed().byFamily.find(familyKey);
    return found == Installed().byFamily.end() ? nullptr : found->second.front();
}

struct Choice {
    const Face* face;
    std::string family;
};

// The face that stands for one of a family; face null = none does.
static Choice Substitute(const std::string& familyKey, bool bold, bool italic) {
    for (auto& row : kSubstitutes) {
        if (Lower(row.family) != familyKey) continue;
        for (auto candidate = row.candidates; *candidate; ++candidate) {
            std::string key = Lower(*candidate);
            const Face* face = FaceOf(key, bold, italic, FC_WIDTH_NORMAL);
            if (!face) face = PlainFaceOf(key);
            if (face) return {face, row.family};
        }
    }
    return {};
}

static Choice Alias(const std::string& key) {
    for (auto& row : kPostScriptNames)
        if (Lower(row.name) == key) {
            std::string family = Lower(row.family);
            const Face* face = FaceOf(family, row.bold, row.italic, FC_WIDTH_NORMAL);
            return face ? Choice{face, row.family} : Substitute(family, row.bold, row.italic);
        }
    if (Choice choice = Substitute(key, false, false); choice.face) return choice;
    for (auto& row : kStyleSuffixes) {
        std::string suffix = Lower(row.suffix);
        if (!key.ends_with(suffix)) continue;
        Choice choice = Substitute(key.substr(0, key.size() - suffix.size()), row.bold, row.italic);
        if (choice.face) return choice;
    }
    return {};
}

static Choice Choose(const char* name) {
    const FaceList& list = Installed();
    if (list.faces.empty()) return {};
    std::string key = Lower(name);
    auto own = [](const Face* face) { return Choice{face, face->families.front()}; };
    if (auto found = list.byPostScriptName.find(key); found != list.byPostScriptName.end()) return own(found->second);
    if (auto found = list.byFullName.find(key); found != list.byFullName.end()) return own(found->second);
    if (const Face* face = PlainFaceOf(key)) return own(face);
    if (Choice choice = Alias(key); choice.face) return choice;
    if (const Face* face = PlainFaceOf(Lower(kLastFamily))) return own(face);
    if (Choice choice = Substitute(Lower(kLastFamily), false, false); choice.face) return choice;
    return own(list.order.front());
}

// Metrics ----------------------------------------------------------------------------------------------------------

FaceMetrics MetricsOf(PangoFont* font, double size) {
    hb_font_t* hb = pango_font_get_hb_font(font);
    int x, y;
    hb_font_get_scale(hb, &x, &y);
    double unit = y != 0 ? size / std::abs(y) : 0;
    auto value = [&](hb_ot_metrics_tag_t tag) {
        hb_position_t position = 0;
        hb_ot_metrics_get_position_with_fallback(hb, tag, &position);
        return position * unit;
    };
    return {std::abs(value(HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER)),
            std::abs(value(HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER)),
            std::max(value(HB_OT_METRICS_TAG_HORIZONTAL_LINE_GAP), 0.0), value(HB_OT_METRICS_TAG_UNDERLINE_OFFSET),
            std::abs(value(HB_OT_METRICS_TAG_UNDERLINE_SIZE))};
}

static const FaceMetrics& Measured(const Face& face) {
    std::call_once(face.measured, [&] {
        static constexpr int kReference = 1000;  // points
        PangoFontDescription* description = pango_font_description_copy(face.description);
        pango_font_description_set_absolute_size(description, kReference * PANGO_SCALE);
        if (PangoFont* font = pango_context_load_font(ThisThread().context, description)) {
            face.metrics = MetricsOf(font, 1);
            g_object_unref(font);
        }
        pango_font_description_free(description);
    });
    return face.metrics;
}

PangoFontDescription* DescriptionOf(const ZRGFont& font, double size) {
    PangoFontDescription* description = pango_font_description_copy_static(font.face->description);
    pango_font_description_set_absolute_size(description, size * PANGO_SCALE);
    return description;
}

// Threads ----------------------------------------------------------------------------------------------------------

static constexpr size_t kMostThreadFonts = 512, kMostLoaded = 16;

TextThread::TextThread() {
    map = pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT);
    if (!map) map = pango_cairo_font_map_new();
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(map), 72);
    context = pango_font_map_create_context(map);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context, FALSE);
    layout = pango_layout_new(context);
    buffer = hb_buffer_create();
}

void TextThread::Forget() {
    for (auto& [key, font] : fonts) {
        cairo_scaled_font_destroy(font.scaled);
        g_object_unref(font.font);
    }
    fonts.clear();
    for (auto& row : loaded) g_object_unref(row.font);
    loaded.clear();
}

TextThread::~TextThread() {
    Forget();
    hb_buffer_destroy(buffer);
    g_object_unref(layout);
    g_object_unref(context);
    g_object_unref(map);
}

// The map keeps every size that was ever asked for and finds it among those of the same whole size by comparing them:
// after some hundred new ones it starts afresh. Called before a text is set, when no layout is under way.
void TextThread::Tidy() {
    static constexpr int kMostNewFonts = 256;
    if (newFonts < kMostNewFonts) return;
    newFonts = 0;
    Forget();
    pango_layout_set_text(layout, "", 0);
    pango_fc_font_map_cache_clear(PANGO_FC_FONT_MAP(map));
}

TextThread& ThisThread() {
    thread_local TextThread thread;
    return thread;
}

const ThreadFont& TextThread::FontOf(PangoFont* font) {
    if (auto found = fonts.find(font); found != fonts.end()) return found->second;
    if (fonts.size() >= kMostThreadFonts) {
        g_object_ref(font);  // it may be one of them
        Forget();
        const ThreadFont& kept = FontOf(font);
        g_object_unref(font);
        return kept;
    }
    PangoFontDescription* description = pango_font_describe_with_absolute_size(font);
    double size = pango_font_description_get_size(description) / static_cast<double>(PANGO_SCALE);
    pango_font_description_free(description);
    ++newFonts;
    ThreadFont made = {font, pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font)), MetricsOf(font, size)};
    g_object_ref(font);
    if (made.scaled) cairo_scaled_font_reference(made.scaled);
    return fonts.emplace(font, made).first->second;
}

PangoFont* TextThread::FontOf(const ZRGFont& font, double size) {
    for (auto& row : loaded)
        if (row.face == font.face && row.size == size) return row.font;
    if (loaded.size() >= kMostLoaded) {
        g_object_unref(loaded.front().font);
        loaded.erase(loaded.begin());
    }
    ++newFonts;
    PangoFontDescription* description = DescriptionOf(font, size);
    PangoFont* made = pango_context_load_font(context, description);
    pango_font_description_free(description);
    if (made) loaded.push_back({font.face, size, made});
    return made;
}

// The table's functions --------------------------------------------------------------------------------------------

static ZRGFont* NewFont(const Face* face, const std::string& family, double size) {
    auto font = new ZRGFont;
    font->face = face;
    font->family = family;
    font->size = size;
    return font;
}

static ZRGFont* OpenFont(const char* name, double size) {
    try {
        Choice choice = Choose(name);
        return choice.face ? NewFont(choice.face, choice.family, size) : nullptr;
    } catch (const std::bad_alloc&) { return nullptr; }
}

static ZRGFont* CopyFont(const ZRGFont* font, double size, uint32_t traits) {
    bool italic = traits & 1, bold = traits & 2;
    const Face* from = font->face;
    try {
        const Face* face = from->bold == bold && from->italic == italic
                               ? from
                               : FaceOf(Lower(from->families.front().c_str()), bold, italic, from->width);
        return face ? NewFont(face, font->family, size) : nullptr;
    } catch (const std::bad_alloc&) { return nullptr; }
}

static void RetainFont(const ZRGFont* font) { font->references.fetch_add(1, std::memory_order_relaxed); }

static void ReleaseFont(const ZRGFont* font) {
    if (font && font->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete font;
}

void GetFontFacts(const ZRGFont* font, ZRGFontFacts* out) {
    const FaceMetrics& m = Measured(*font->face);
    double size = font->size;
    *out = {size,
            m.ascent * size,
            m.descent * size,
            m.leading * size,
            m.underlinePosition * size,
            m.underlineThickness * size,
            (font->face->italic ? 1u : 0u) | (font->face->bold ? 2u : 0u),
            font->family.c_str(),
            font->face->postScriptName.c_str()};
}

static void EachFace(void (*take)(void* info, const ZRGFace*), void* info) {
    for (const Face* face : Installed().order) {
        ZRGFace row = {face->families.front().c_str(), face->postScriptName.c_str()};
        take(info, &row);
    }
}

void FillFontFunctions(ZRGTable* table) {
    table->openFont = OpenFont;
    table->copyFont = CopyFont;
    table->retainFont = RetainFont;
    table->releaseFont = ReleaseFont;
    table->fontFacts = GetFontFacts;
    table->eachFace = EachFace;
}
