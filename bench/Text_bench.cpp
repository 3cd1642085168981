// Text: lines and wrapped blocks on a bitmap and their measures, beside the text library that they stand on, used as
// its own programs use it: one layout, filled again and again. The figure to look at is the ratio of each pair.
#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include <string>
#include <vector>

#include "bench/BenchSupport.h"
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Font.h"
#include "graphics/ZR_API_MultiStyleText.h"

namespace {

constexpr int kWidth = 600, kHeight = 800, kLines = 1000, kBlocks = 100;
ZR_RGBColor gBlack = {0, 0, 0, 1};

const std::vector<std::string>& Lines() {  // no two are equal
    static const std::vector<std::string> lines = [] {
        std::vector<std::string> made;
        for (int i = 0; i < kLines; ++i)
            made.push_back("Line " + std::to_string(i * 7919) + " of the report, with an amount of " +
                           std::to_string(i * 31 % 9973) + ".50");
        return made;
    }();
    return lines;
}

const std::vector<std::string>& Blocks() {
    static const std::vector<std::string> blocks = [] {
        std::vector<std::string> made;
        for (int i = 0; i < kBlocks; ++i) {
            std::string text = std::to_string(i);
            for (int k = 0; k < 12; ++k)
                text += " The quick brown fox " + std::to_string(i * k) + " jumps over the dog.";
            made.push_back(text);
        }
        return made;
    }();
    return blocks;
}

struct Texts {
    explicit Texts(const std::vector<std::string>& from) {
        zrbench::Executer();
        texts.resize(from.size());
        for (size_t i = 0; i < from.size(); ++i) {
            texts[i].Create();
            texts[i].AddUTF8String(from[i].c_str());
        }
    }
    ~Texts() {
        for (auto& text : texts) text.Dispose();
    }
    std::vector<ZR_Text> texts;
};

struct Ours {
    Ours() {
        zrbench::Executer();
        device.CreateOffscreen(kWidth, kHeight, /*bitmap*/ true, 0, 0);
        font.Create(12, 0, "Arial");
    }
    ~Ours() {
        font.Dispose();
        device.Dispose();
    }
    ZR_Device device;
    ZR_Font font;
};

struct Direct {
    Direct() : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight)), c(cairo_create(surface)) {
        map = pango_cairo_font_map_new();
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
        PangoFontDescription* font = pango_font_description_from_string("Arial");
        pango_font_description_set_absolute_size(font, 12 * PANGO_SCALE);
        pango_layout_set_font_description(layout, font);
        pango_font_description_free(font);
        cairo_set_source_rgb(c, 0, 0, 0);
    }
    ~Direct() {
        g_object_unref(layout);
        g_object_unref(context);
        g_object_unref(map);
        cairo_destroy(c);
        cairo_surface_destroy(surface);
    }
    void Set(const std::string& text) { pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size())); }
    cairo_surface_t* surface;
    cairo_t* c;
    PangoFontMap* map;
    PangoContext* context;
    PangoLayout* layout;
};

float LineY(size_t i) { return static_cast<float>(12 + i % 60 * 13); }

}  // namespace

// Widths -------------------------------------------------------------------------------------------------------------

static void Text_Width(benchmark::State& state) {
    Texts texts(Lines());
    Ours ours;
    for (auto _ : state)
        for (auto& text : texts.texts) benchmark::DoNotOptimize(ours.font.GetTextWidth(&text));
    state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(Text_Width)->Unit(benchmark::kMillisecond);

static void Text_WidthDirect(benchmark::State& state) {
    Direct direct;
    for (auto _ : state)
        for (auto& line : Lines()) {
            int w, h;
            direct.Set(line);
            pango_layout_get_size(direct.layout, &w, &h);
            benchmark::DoNotOptimize(w);
        }
    state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(Text_WidthDirect)->Unit(benchmark::kMillisecond);

// Lines --------------------------------------------------------------------------------------------------------------

static void Text_Lines(benchmark::State& state) {
    Texts texts(Lines());
    Ours ours;
    for (auto _ : state)
        for (size_t i = 0; i < texts.texts.size(); ++i)
            ours.device.DrawText(&texts.texts[i], 10, LineY(i), &ours.font, &gBlack, 0, true, nullptr, nullptr);
    state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(Text_Lines)->Unit(benchmark::kMillisecond);

static void Text_LinesDirect(benchmark::State& state) {
    Direct direct;
    for (auto _ : state)
        for (size_t i = 0; i < Lines().size(); ++i) {
            direct.Set(Lines()[i]);
            cairo_move_to(direct.c, 10, static_cast<double>(LineY(i)));
            pango_cairo_show_layout_line(direct.c, pango_layout_get_line_readonly(direct.layout, 0));
        }
    state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(Text_LinesDirect)->Unit(benchmark::kMillisecond);

// Blocks -------------------------------------------------------------------------------------------------------------

static void Text_Blocks(benchmark::State& state) {
    auto alignment = static_cast<ZR_Alignment>(state.range(0));
    Texts texts(Blocks());
    Ours ours;
    ZR_Rect rect = {10, 10, 310, 700};
    for (auto _ : state)
        for (auto& text : texts.texts)
            ours.device.DrawTextLayout(&text, &rect, alignment, ZR_VERTICAL_TOP, &ours.font, &gBlack, true, nullptr,
                                       nullptr, true, ZR_TEXT_DRAW, false, 0, 0, true);
    state.SetItemsProcessed(state.iterations() * kBlocks);
}
BENCHMARK(Text_Blocks)->Arg(ZR_ALIGNMENT_LEFT)->Arg(ZR_ALIGNMENT_JUSTIFIED)->Unit(benchmark::kMillisecond);

static void Text_BlocksDirect(benchmark::State& state) {
    Direct direct;
    pango_layout_set_width(direct.layout, 300 * PANGO_SCALE);
    pango_layout_set_wrap(direct.layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_justify(direct.layout, state.range(0) == ZR_ALIGNMENT_JUSTIFIED);
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_font_features_new("kern=0"));  // as a kerning of 0 has it
    pango_layout_set_attributes(direct.layout, attributes);
    pango_attr_list_unref(attributes);
    for (auto _ : state)
        for (auto& block : Blocks()) {
            direct.Set(block);
            cairo_move_to(direct.c, 10, 10);
            pango_cairo_show_layout(direct.c, direct.layout);
        }
    state.SetItemsProcessed(state.iterations() * kBlocks);
}
BENCHMARK(Text_BlocksDirect)->Arg(ZR_ALIGNMENT_LEFT)->Arg(ZR_ALIGNMENT_JUSTIFIED)->Unit(benchmark::kMillisecond);

// Every fourth word is bold.
static void Text_StyledBlocks(benchmark::State& state) {
    Texts texts(Blocks());
    Ours ours;
    ZR_MultiStyleText runs;
    runs.Create();
    ZR_Font bold;
    bold.Create(12, kZRBold, "Arial");
    for (long at = 1; at < 450; at += 24) runs.AddRun(at, at + 5, &bold, &gBlack, nullptr);
    ZR_Rect rect = {10, 10, 310, 700};
    for (auto _ : state)
        for (auto& text : texts.texts)
            ours.device.DrawMultiStyleText(&text, &runs, &rect, ZR_ALIGNMENT_LEFT, ZR_VERTICAL_TOP, &ours.font, &gBlack,
                                           true, nullptr, nullptr, true, ZR_TEXT_DRAW, false, 0, 0, true);
    bold.Dispose();
    runs.Dispose();
    state.SetItemsProcessed(state.iterations() * kBlocks);
}
BENCHMARK(Text_StyledBlocks)->Unit(benchmark::kMillisecond);

static void Text_StyledBlocksDirect(benchmark::State& state) {
    Direct direct;
    pango_layout_set_width(direct.layout, 300 * PANGO_SCALE);
    pango_layout_set_wrap(direct.layout, PANGO_WRAP_WORD_CHAR);
    for (auto _ : state)
        for (auto& block : Blocks()) {
            PangoAttrList* attributes = pango_attr_list_new();
            pango_attr_list_insert(attributes, pango_attr_font_features_new("kern=0"));
            for (unsigned at = 0; at < 449; at += 24) {
                PangoAttribute* bold = pango_attr_weight_new(PANGO_WEIGHT_BOLD);
                bold->start_index = at;
                bold->end_index = at + 6;
                pango_attr_list_insert(attributes, bold);
            }
            direct.Set(block);
            pango_layout_set_attributes(direct.layout, attributes);
            pango_attr_list_unref(attributes);
            cairo_move_to(direct.c, 10, 10);
            pango_cairo_show_layout(direct.c, direct.layout);
        }
    state.SetItemsProcessed(state.iterations() * kBlocks);
}
BENCHMARK(Text_StyledBlocksDirect)->Unit(benchmark::kMillisecond);

// Breaking -----------------------------------------------------------------------------------------------------------

static void Text_LinesOfALongText(benchmark::State& state) {
    Texts texts(Blocks());
    Ours ours;
    ZR_Text text;
    text.Create();
    for (long i = 0; i < state.range(0); ++i) {
        text.AddText(&texts.texts[static_cast<size_t>(i % kBlocks)]);
        text.AddUnit('\r');
    }
    ZR_TextArray lines;
    lines.Create();
    for (auto _ : state) ZR_Text2Array(&text, &ours.font, 300, &lines, 1L << 40, nullptr);
    state.SetItemsProcessed(state.iterations() * lines.count);
    lines.Dispose();
    text.Dispose();
}
BENCHMARK(Text_LinesOfALongText)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

static void Text_LinesOfALongTextDirect(benchmark::State& state) {
    Direct direct;
    pango_layout_set_width(direct.layout, 300 * PANGO_SCALE);
    pango_layout_set_wrap(direct.layout, PANGO_WRAP_WORD_CHAR);
    long lines = 0;
    for (auto _ : state) {
        lines = 0;
        for (long i = 0; i < state.range(0); ++i) {
            direct.Set(Blocks()[static_cast<size_t>(i % kBlocks)]);
            lines += pango_layout_get_line_count(direct.layout);
        }
    }
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(Text_LinesOfALongTextDirect)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
