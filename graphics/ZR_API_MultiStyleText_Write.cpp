// Plain text and runs out as styled text and as RTF.
#include <algorithm>
#include <functional>

#include "graphics/ZR_API_Geometry.h"
#include "graphics/ZR_API_MultiStyleText.h"

static long Readable(const ZR_Text* text) { return text && text->data ? std::max(text->count, 0L) : 0; }

// Styled text ------------------------------------------------------------------------------------------------------

// The run's piece of the text; "\r\n" and "\r" become the mark. What lies outside the text is left out.
static void AddPiece(ZR_Text* out, const ZR_Text* plain, const ZR_MultiStyleRun* run, const char* breakMark) {
    const long end = std::min(run->end, Readable(plain));
    for (long i = std::max(run->start, 1L); i <= end; ++i) {
        const unsigned short unit = plain->GetChar(i - 1);
        if (unit != '\r') {
            out->AddUnit(unit);
            continue;
        }
        out->AddString(breakMark);
        if (i < end && plain->GetChar(i) == '\n') ++i;
    }
}

static void AddColor(ZR_Text* out, const char* key, const ZR_RGBColor& color) {
    // Required: black is left out, and so is what is translucent.
    if (((color.red | color.green | color.blue) & 0xFF00) == 0 || color.alpha != 1) return;
    char web[8];
    color.GetRGBWebtext(web);
    out->AddString(key);
    out->AddString(web);
}

static void AddProperties(ZR_Text* out, const ZR_MultiStyleRun* run) {
    static constexpr const char* kDecorations[] = {"", "; text-decoration:underline", "; text-decoration:line-through",
                                                   "; text-decoration:underline line-through"};
    const short style = run->font.style;
    out->AddString("font-family: '");
    out->AddText(&run->font.name);
    out->AddString("'; font-size:");
    out->AddLong(ZR_TruncatedToLong(run->font.size));
    out->AddString(style & kZRBold ? "; font-weight:bold" : "; font-weight:normal");
    if (style & kZRItalic) out->AddString("; font-style:italic");
    out->AddString(kDecorations[(style & kZRUnderline ? 1 : 0) + (style & kZRStrikethrough ? 2 : 0)]);
    AddColor(out, "; color:", run->color);
    AddColor(out, "; background-color:", run->background);
    out->AddUnit(';');
}

void ZR_MultiStyleText::Get4DStyledText(ZR_Text* plain, ZR_Text* out, short mode) {
    const char* tag = mode == 1 ? "span" : "tspan";
    if (!out || out == plain) return;
    out->Resize(0);
    out->growStep = 2 * Readable(plain);
    for (long i = 1; i <= runs.count; ++i) {
        const ZR_MultiStyleRun* run = GetRun(i);
        out->AddUnit('<');
        out->AddString(tag);
        out->AddString(" style=\"");
        AddProperties(out, run);
        out->AddString("\">");
        AddPiece(out, plain, run, mode == 1 ? "<br />" : "<tbreak />");
        out->AddString("</");
        out->AddString(tag);
        out->AddUnit('>');
    }
}

// Numbers of the tables --------------------------------------------------------------------------------------------

static unsigned long Mixed(unsigned long hash, unsigned long value) { return (hash ^ value) * 0x9E3779B97F4A7C15; }

static unsigned long FontHash(const ZR_MultiStyleRun* run) {
    unsigned long hash = 0;
    for (long i = 0; i < Readable(&run->font.name); ++i) {
        unsigned short unit = run->font.name.GetChar(i);
        hash = Mixed(hash, unit >= 'a' && unit <= 'z' ? unit - 32U : unit);
    }
    return hash >> 16;
}

static bool SameFont(const ZR_MultiStyleRun* a, const ZR_MultiStyleRun* b) {
    return a->font.name.Equal(&b->font.name, /*caseSensitive*/ false);
}

static unsigned long ColorHash(const ZR_MultiStyleRun* run) {
    return Mixed(Mixed(Mixed(0, run->color.red), run->color.green), run->color.blue) >> 16;
}

static bool SameColor(const ZR_MultiStyleRun* a, const ZR_MultiStyleRun* b) {
    return a->color.red == b->color.red && a->color.green == b->color.green && a->color.blue == b->color.blue;
}

// A number for each run, the same for runs that share an entry of a table: numbers[run - 1], a first of its entry is
// told by firsts[run - 1] != 0. A hash of runs stands behind it, so that many runs with many fonts stay linear.
struct RunNumbers {
    ZR_Handle numbers, firsts;  // of long; owned

    void Create(const ZR_MultiStyleText* text, long firstNumber, unsigned long (*hashOf)(const ZR_MultiStyleRun*),
                bool (*same)(const ZR_MultiStyleRun*, const ZR_MultiStyleRun*)) {
        long n = text->runs.count, size = 4;
        while (size < 2 * n) size *= 2;
        ZR_Handle slots;  // run that stands there; 0 = free
        slots.Create(sizeof(long), size);
        numbers.Create(sizeof(long), n);
        firsts.Create(sizeof(long), n);
        if (n < 1 || !slots.data || !numbers.data || !firsts.data) return Drop(&slots);
        memset(slots.data, 0, static_cast<size_t>(size) * sizeof(long));
        long* slot = reinterpret_cast<long*>(slots.data);
        for (long i = 1; i <= n; ++i) {
            const ZR_MultiStyleRun* run = text->GetRun(i);
            long at = static_cast<long>(hashOf(run)) & (size - 1);
            while (slot[at] && !same(text->GetRun(slot[at]), run)) at = (at + 1) & (size - 1);
            Value(&firsts, i) = slot[at] == 0;
            Value(&numbers, i) = slot[at] == 0 ? firstNumber++ : Value(&numbers, slot[at]);
            if (slot[at] == 0) slot[at] = i;
        }
        slots.Dispose();
    }
    void Dispose() {
        numbers.Dispose();
        firsts.Dispose();
    }
    bool IsFirst(long run) const { return numbers.data && Value(&firsts, run) != 0; }
    long Number(long run) const { return numbers.data ? Value(&numbers, run) : 0; }

  private:
    static long& Value(const ZR_Handle* values, long run) { return *reinterpret_cast<long*>(values->GetMemPtr(run)); }
    void Drop(ZR_Handle* slots) {  // nothing to number, or no memory
        slots->Dispose();
        Dispose();
    }
};

// The run at a position ----------------------------------------------------------------------------------------------

// Answers for positions that go up what GetNextRun answers, without a walk over all runs for each.
struct RunSweep {
    const ZR_MultiStyleText* text;
    ZR_Handle byStart, active;  // run numbers: in the order of their starts; those begun, smallest on top; owned
    long begun, alive;          // of byStart; of active

    void Create(const ZR_MultiStyleText* source) {
        const long n = source->runs.count;
        text = source;
        begun = alive = 0;
        byStart.Create(sizeof(long), n);
        active.Create(sizeof(long), n);
        if (!byStart.data || !active.data) return;
        long* order = Numbers(&byStart);
        for (long i = 0; i < n; ++i) order[i] = i + 1;
        std::sort(order, order + n, [source](long a, long b) {
            const long left = source->GetRun(a)->start, right = source->GetRun(b)->start;
            return left != right ? left < right : a < b;
        });
    }
    void Dispose() {
        byStart.Dispose();
        active.Dispose();
    }
    long RunAt(long position) {  // [1..count]; 0 = none
        if (!byStart.data || !active.data) return 0;
        long* top = Numbers(&active);
        for (; begun < byStart.count && text->GetRun(Numbers(&byStart)[begun])->start <= position; ++begun) {
            top[alive++] = Numbers(&byStart)[begun];
            std::push_heap(top, top + alive, std::greater<long>());
        }
        while (alive > 0 && text->GetRun(top[0])->end < position)
            std::pop_heap(top, top + alive--, std::greater<long>());
        return alive > 0 ? top[0] : 0;
    }

  private:
    static long* Numbers(const ZR_Handle* handle) { return reinterpret_cast<long*>(handle->data); }
};

// RTF --------------------------------------------------------------------------------------------------------------

static constexpr long kRTFGrowStep = 100;
static constexpr long kFirstFont = 0, kFirstColor = 2;  // colour 0 is automatic, 1 white

static void AddControl(ZR_Text* out, const char* word, long number) {
    out->AddString(word);
    out->AddLong(number);
}

static void AddFontTable(const ZR_MultiStyleText* text, const RunNumbers& fonts, ZR_Text* out) {
    if (text->runs.count < 1) return;
    out->AddString("{\\fonttbl");
    for (long i = 1; i <= text->runs.count; ++i) {
        if (!fonts.IsFirst(i)) continue;
        AddControl(out, "{\\f", fonts.Number(i));
        out->AddText(&text->GetRun(i)->font.name);
        out->AddString(";}");
    }
    out->AddString("}\n");
}

static void AddColorTable(const ZR_MultiStyleText* text, const RunNumbers& colors, ZR_Text* out) {
    out->AddString("{\\colortbl;\\red255\\green255\\blue255;");
    for (long i = 1; i <= text->runs.count; ++i) {
        if (!colors.IsFirst(i)) continue;
        const ZR_RGBColor& color = text->GetRun(i)->color;
        AddControl(out, "\\red", color.red >> 8);
        AddControl(out, "\\green", color.green >> 8);
        AddControl(out, "\\blue", color.blue >> 8);
        out->AddUnit(';');
    }
    out->AddString("}\n");
}

// What begins a run, or the gap between runs.
static void AddRunStart(const ZR_MultiStyleRun* run, long font, long color, ZR_Text* out) {
    if (run) {
        AddControl(out, "\\f", font);
        AddControl(out, "\\fs", ZR_TruncatedToLong(static_cast<double>(run->font.size) * 2));
        AddControl(out, "\\cf", color);
    } else {
        out->AddString("\\pard\\plain");
    }
    out->AddUnit('\n');
    if (run && run->font.style & kZRBold) out->AddString("{\\b ");
}

static void AddUnitText(unsigned short unit, ZR_Text* out) {
    if (unit == '\r') {
        out->AddString("\\\n");
    } else if (unit < 128) {
        out->AddUnit(unit);  // Required: backslash and braces as they are
    } else {
        AddControl(out, "\\u", unit);
        out->AddString(" \\uc0 ");
    }
}

static void AddBody(const ZR_MultiStyleText* text, const RunNumbers& fonts, const RunNumbers& colors,
                    const ZR_Text* plain, ZR_Text* out) {
    RunSweep sweep;
    sweep.Create(text);
    long last = 0;
    bool bold = false;
    for (long i = 1; i <= Readable(plain); ++i) {
        const long index = sweep.RunAt(i);
        if (index != last) {
            const ZR_MultiStyleRun* run = text->GetRun(index);
            if (bold) out->AddUnit('}');
            AddRunStart(run, run ? fonts.Number(index) : 0, run ? colors.Number(index) : 0, out);
            bold = run && run->font.style & kZRBold;
            last = index;
        }
        AddUnitText(plain->GetChar(i - 1), out);
        if (plain->GetChar(i - 1) == '\r' && plain->GetChar(i) == '\n') ++i;
    }
    if (bold) out->AddUnit('}');
    sweep.Dispose();
}

void ZR_MultiStyleText::GetRTF(ZR_Text* plain, ZR_Text* out) {
    if (!out || out == plain) return;
    RunNumbers fonts, colors;
    fonts.Create(this, kFirstFont, FontHash, SameFont);
    colors.Create(this, kFirstColor, ColorHash, SameColor);
    out->growStep = kRTFGrowStep;
    out->AddString("{\\rtf1\\ansi");
    AddFontTable(this, fonts, out);
    AddColorTable(this, colors, out);
    AddBody(this, fonts, colors, plain, out);
    out->AddUnit('}');
    colors.Dispose();
    fonts.Dispose();
}
