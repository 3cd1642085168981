#include "graphics/ZR_API_MultiStyleText.h"

#include <climits>
#include <random>
#include <sstream>

#include "tests/core/FakeHost.h"

namespace {

// Runs as "1-3 Arial 12 0 #000000", the background behind it if it has one.
std::string Described(const ZR_MultiStyleText& text) {
    std::ostringstream out;
    for (long i = 1; i <= text.runs.count; ++i) {
        ZR_MultiStyleRun* run = text.GetRun(i);
        char color[8], background[8];
        run->color.GetRGBWebtext(color);
        run->background.GetRGBWebtext(background);
        if (i > 1) out << "|";
        out << run->start << "-" << run->end << " " << run->font.name.GetCStringPtr() << " " << run->font.size << " "
            << run->font.style << " " << color;
        if (run->background.alpha != 0) out << " " << background;
    }
    return out.str();
}

struct Styled {
    ZR_MultiStyleText runs;
    ZR_Text styled, plain;
    ZR_Font font;
    bool ok;

    explicit Styled(const std::u16string& text) {
        styled = MakeText(text);
        plain = MakeText(u"old");
        font.Create(12, 0, "Arial");
        ZR_RGBColor black = {0, 0, 0, 1};
        ok = runs.CreateWith4DStyledText(&styled, &plain, &font, &black);
    }
    ~Styled() {
        font.Dispose();
        plain.Dispose();
        styled.Dispose();
        runs.Dispose();
    }
};

constexpr char16_t kBold[] = u"<SPAN STYLE=\"font-weight:bold\">";

std::u16string Span(const std::u16string& style, const std::u16string& text) {
    return u"<SPAN STYLE=\"" + style + u"\">" + text + u"</SPAN>";
}

}  // namespace

// Reading ----------------------------------------------------------------------------------------------------------

TEST(StyledText, Create_TextsAndRuns) {
    static const struct {
        std::u16string styled, plain;
        const char* runs;
    } rows[] = {
        {u"", u"", ""},
        {u"abc", u"abc", "1-3 Arial 12 0 #000000"},
        {u"x" + Span(u"font-weight:bold", u"y") + u"z", u"xyz",
         "1-1 Arial 12 0 #000000|2-2 Arial 12 1 #000000|3-3 Arial 12 0 #000000"},
        {u"<SPAN>a</SPAN>b", u"ab", "1-1 Arial 12 0 #000000|2-2 Arial 12 0 #000000"},
        {u"<span>a</Span>b", u"ab", "1-1 Arial 12 0 #000000|2-2 Arial 12 0 #000000"},
        {u"<span style=\"font-weight:bold\">a</span>", u"a", "1-1 Arial 12 1 #000000"},
        {Span(u"font-weight:bold", u"a" + Span(u"font-style:italic", u"b") + u"c"), u"abc",
         "1-1 Arial 12 1 #000000|2-2 Arial 12 3 #000000|3-3 Arial 12 1 #000000"},
        {u"a&amp;b", u"a&b", "1-3 Arial 12 0 #000000"},
        {u"&lt;&gt;&amp;", u"<>&", "1-3 Arial 12 0 #000000"},
        {u"&quot;", u"&quot;", "1-6 Arial 12 0 #000000"},  // nothing else is decoded
        {u"&amp;lt;", u"&lt;", "1-4 Arial 12 0 #000000"},  // once
        {u"&AMP;", u"&", "1-1 Arial 12 0 #000000"},
        {u"&am<p;", u"&amp;", "1-3 Arial 12 0 #000000|4-5 Arial 12 0 #000000"},
        {u"a<BR/>b", u"a\rb", "1-3 Arial 12 0 #000000"},
        {u"a<br/>b<br />c<Br />", u"a\rb\rc\r", "1-6 Arial 12 0 #000000"},
        {u"a</SPAN>b", u"ab", "1-1 Arial 12 0 #000000|2-2 Arial 12 0 #000000"},  // a stray end is dropped
        {u"<SPAN>a</SPAN></SPAN></SPAN>b", u"ab", "1-1 Arial 12 0 #000000|2-2 Arial 12 0 #000000"},
        {u"a<b", u"ab", "1-1 Arial 12 0 #000000|2-2 Arial 12 0 #000000"},  // the unit is dropped
        {u"a<", u"a", "1-1 Arial 12 0 #000000"},
        {u"<<a", u"a", "1-1 Arial 12 0 #000000"},
        {u"<SPAN>a", u"a", "1-1 Arial 12 0 #000000"},  // open to the end
        {u"<SPAN>", u"", ""},
        {std::u16string(kBold) + u"a", u"a", "1-1 Arial 12 1 #000000"},
        {u"\u20AC\u00E4", u"\u20AC\u00E4", "1-2 Arial 12 0 #000000"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        Styled read(row.styled);
        EXPECT_TRUE(read.ok);
        EXPECT_EQ(Units(read.plain), row.plain);
        EXPECT_EQ(Described(read.runs), row.runs);
    }
}

TEST(StyledText, Create_Properties) {
    static const struct {
        std::u16string style;
        const char* run;
    } rows[] = {
        {u"", "1-1 Arial 12 0 #000000"},
        {u"font-family:'Times'", "1-1 Times 12 0 #000000"},
        {u"font-family:'Times New';font-size:9pt", "1-1 Times New 9 0 #000000"},
        {u"font-family: 'Times'", "1-1 Arial 12 0 #000000"},  // the quote stands right behind the colon
        {u"font-family:Times;font-size:9pt", "1-1 Arial 9 0 #000000"},
        {u"font-family:'Times", "1-1 Arial 12 0 #000000"},
        {u"font-size:18pt", "1-1 Arial 18 0 #000000"},
        {u"font-size:18px", "1-1 Arial 18 0 #000000"},
        {u"font-size:18.9pt", "1-1 Arial 18 0 #000000"},  // cut
        {u"font-size:65537pt", "1-1 Arial 1 0 #000000"},  // to a short
        {u"font-size:18", "1-1 Arial 12 0 #000000"},      // no "p" behind it
        {u"font-size:pt", "1-1 Arial 12 0 #000000"},      // no number
        {u"font-size:;font-family:'Courier New'", "1-1 Courier New 12 0 #000000"},
        {u"font-family:'A;color:#FF0000;font-family:'", "1-1 Arial 12 0 #FF0000"},  // a property ends at its ";"
        {u"text-align:right;font-size:9p", "1-1 Arial 9 0 #000000"},
        {u"font-weight:bold", "1-1 Arial 12 1 #000000"},
        {u"font-weight:bold;font-weight:bold", "1-1 Arial 12 1 #000000"},
        {u"font-weight:normal", "1-1 Arial 12 0 #000000"},
        {u"font-style:italic", "1-1 Arial 12 2 #000000"},
        {u"font-style:oblique", "1-1 Arial 12 0 #000000"},
        {u"font-style:italic;font-weight:normal", "1-1 Arial 12 0 #000000"},  // Required: clears all
        {u"text-decoration:underline line-through", "1-1 Arial 12 12 #000000"},
        {u"text-decoration:underline", "1-1 Arial 12 4 #000000"},
        {u"text-decoration:line-through", "1-1 Arial 12 8 #000000"},
        {u"text-decoration:none", "1-1 Arial 12 0 #000000"},
        {u"text-decoration:underline;text-decoration:none", "1-1 Arial 12 4 #000000"},  // Required: clears nothing
        {u"color:#FF0000", "1-1 Arial 12 0 #FF0000"},
        {u"color:#1a2B3c;", "1-1 Arial 12 0 #1A2B3C"},
        {u"color:#F00", "1-1 Arial 12 0 #000000"},     // six digits
        {u"color:#F000;0", "1-1 Arial 12 0 #000000"},  //
        {u"color:red", "1-1 Arial 12 0 #000000"},
        {u"background-color:#00FF00", "1-1 Arial 12 0 #000000 #00FF00"},
        {u"color:#000080;background-color:#FFFF00;font-size:8pt;font-family:'X'",
         "1-1 X 8 0 #000080 #FFFF00"},                                       // any order
        {u"FONT-WEIGHT:bold", "1-1 Arial 12 0 #000000"},                     // Required: case counts in keys
        {u"font-weight:bold; font-style:italic", "1-1 Arial 12 1 #000000"},  // Required: so does the blank
        {u"unknown:1;font-weight:bold", "1-1 Arial 12 0 #000000"},
        {u"font-weight:bold;unknown", "1-1 Arial 12 1 #000000"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        Styled read(u"<SPAN STYLE=\"" + row.style + u"\">x");
        EXPECT_TRUE(read.ok);
        EXPECT_EQ(Described(read.runs), row.run);
    }
}

TEST(StyledText, Create_SizeWithoutP_LooksBehindItInTheWholeText) {  // Required
    Styled with(Span(u"font-size:18", u"x") + u"p"), without(u"p" + Span(u"font-size:18", u"x") + u"P");
    EXPECT_EQ(with.runs.GetRun(1)->font.size, 18);
    EXPECT_EQ(without.runs.GetRun(2)->font.size, 12);
}

TEST(StyledText, Create_Color_LowBytesAreZero) {  // Required
    Styled read(Span(u"color:#FF0000;background-color:#0102FF", u"x"));
    ZR_MultiStyleRun* run = read.runs.GetRun(1);
    EXPECT_EQ(run->color.red, 0xFF00);
    EXPECT_EQ(run->color.alpha, 1);
    EXPECT_EQ(run->background.red, 0x0100);
    EXPECT_EQ(run->background.green, 0x0200);
    EXPECT_EQ(run->background.blue, 0xFF00);
    EXPECT_EQ(run->background.alpha, 1);
}

TEST(StyledText, Create_NormalInBoldAndItalic_ClearsBoth) {
    Styled read(Span(u"font-weight:bold;font-style:italic", u"a" + Span(u"font-weight:normal", u"b") + u"c"));
    EXPECT_EQ(Described(read.runs), "1-1 Arial 12 3 #000000|2-2 Arial 12 0 #000000|3-3 Arial 12 3 #000000");
}

TEST(StyledText, Create_UnreadableSpan_IsFalseAndKeepsWhatIsBefore) {
    static const struct {
        std::u16string styled, plain;
        long runs;
    } rows[] = {
        {u"ab<SPAN STYLE=\"font-weight:bold", u"ab", 1},  // no ">"
        {u"ab<SPAN x>c", u"ab", 1},
        {u"ab<SPANNER>c", u"ab", 1},
        {u"<SPAN>ab<SPAN", u"ab", 1},
        {u"a<SPAN>b<SPAN  STYLE=\"\">c", u"ab", 2},
        {u"<SPAN STYLE='x'>c", u"", 0},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        Styled read(row.styled);
        EXPECT_FALSE(read.ok);
        EXPECT_EQ(Units(read.plain), row.plain);
        EXPECT_EQ(read.runs.runs.count, row.runs);
    }
}

TEST(StyledText, Create_BreaksAreReplacedInTheSource) {  // Required
    Styled read(u"<BR/>a<br />b<br/><br/><BR>c");
    EXPECT_EQ(Units(read.styled), u"\ra\rb\r\r<BR>c");
    EXPECT_EQ(Units(read.plain), u"\ra\rb\r\rBR>c");
}

TEST(StyledText, Create_NullArguments_UseTheDefaults) {
    MemoryCheck check;
    ZR_MultiStyleText runs;
    ZR_Text styled = MakeText(u"a"), plain = MakeText(u"");
    EXPECT_TRUE(runs.CreateWith4DStyledText(&styled, &plain, nullptr, nullptr));
    EXPECT_EQ(Described(runs), "1-1  0 0 #000000");
    EXPECT_EQ(runs.GetRun(1)->color.alpha, 1);
    runs.Dispose();
    EXPECT_FALSE(runs.CreateWith4DStyledText(nullptr, &plain, nullptr, nullptr));
    EXPECT_FALSE(runs.CreateWith4DStyledText(&styled, nullptr, nullptr, nullptr));
    EXPECT_FALSE(runs.CreateWith4DStyledText(&styled, &styled, nullptr, nullptr));
    runs.Dispose();
    plain.Dispose();
    styled.Dispose();
}

TEST(StyledText, ParseLoop2_Level_TellsPositionAndDepth) {
    MemoryCheck check;
    ZR_Text styled = MakeText(u"ab</SPAN>c"), plain = MakeText(u"");
    ZR_MultiStyleText runs;
    ZR_MultiStyleRun style;
    runs.Create();
    style.Create();
    long position = 2, depth = 1;  // as within a span
    EXPECT_TRUE(runs.ParseStyledText_loop2(&styled, &plain, &position, &style, &depth));
    EXPECT_EQ(position, 10);  // behind the end tag
    EXPECT_EQ(depth, 1);
    EXPECT_EQ(Units(plain), u"b");
    depth = 0;  // outside of any, the end tag is dropped
    position = 1;
    EXPECT_TRUE(runs.ParseStyledText_loop2(&styled, &plain, &position, &style, &depth));
    EXPECT_EQ(position, styled.count + 1);
    EXPECT_EQ(Units(plain), u"babc");
    for (long outside : {0L, -5L, styled.count + 1, LONG_MAX}) {
        position = outside;
        EXPECT_TRUE(runs.ParseStyledText_loop2(&styled, &plain, &position, &style, &depth));
    }
    EXPECT_EQ(plain.count, 4);
    style.Dispose();
    runs.Dispose();
    plain.Dispose();
    styled.Dispose();
}

TEST(StyledText, ParseStyle_OnePassAndAll) {
    ZR_Text styled = MakeText(u"font-style:italic;font-weight:bold;>x");
    ZR_MultiStyleText runs;
    ZR_MultiStyleRun style;
    runs.Create();
    style.Create();
    long position = 1;
    EXPECT_TRUE(runs.ParseStyle2(&styled, &style, &position, 36));  // in the table's order: the slant only
    EXPECT_EQ(style.font.style, kZRItalic);
    EXPECT_EQ(position, 19);
    EXPECT_TRUE(runs.ParseStyle2(&styled, &style, &position, 36));
    EXPECT_EQ(style.font.style, kZRItalic | kZRBold);
    EXPECT_FALSE(runs.ParseStyle2(&styled, &style, &position, 36));
    EXPECT_FALSE(runs.ParseStyle2(&styled, &style, &position, LONG_MAX));
    style.font.SetStyle(0);
    position = 1;
    EXPECT_TRUE(runs.ParseStyle(&styled, &style, &position));
    EXPECT_EQ(style.font.style, kZRItalic | kZRBold);
    EXPECT_EQ(position, 37);  // behind the ">"
    EXPECT_FALSE(runs.ParseStyle(&styled, &style, &position));
    style.Dispose();
    runs.Dispose();
    styled.Dispose();
}

TEST(StyledText, ParseWriteRun_OnlyPiecesOfTheText) {
    ZR_Text styled = MakeText(u"a&lt;b"), plain = MakeText(u"12");
    ZR_MultiStyleText runs;
    ZR_MultiStyleRun style;
    runs.Create();
    style.Create();
    runs.ParseWriteRun(0, 2, &styled, &plain, &style);
    runs.ParseWriteRun(3, 2, &styled, &plain, &style);
    runs.ParseWriteRun(7, 9, &styled, &plain, &style);
    EXPECT_EQ(runs.runs.count, 0);
    runs.ParseWriteRun(1, LONG_MAX, &styled, &plain, &style);
    EXPECT_EQ(Units(plain), u"12a<b");
    EXPECT_EQ(runs.GetRun(1)->start, 3);
    EXPECT_EQ(runs.GetRun(1)->end, 5);
    style.Dispose();
    runs.Dispose();
    plain.Dispose();
    styled.Dispose();
}

TEST(StyledText, Create_DeepNesting_IsBounded) {
    for (long depth : {1000L, ZR_MOST_SPAN_DEPTH - 1, ZR_MOST_SPAN_DEPTH, 3 * ZR_MOST_SPAN_DEPTH}) {
        MemoryCheck check;
        std::u16string text;
        for (long i = 0; i < depth; ++i) text += u"<SPAN>";
        Styled read(u"a" + text + u"b");
        EXPECT_EQ(read.ok, depth < ZR_MOST_SPAN_DEPTH) << depth;
        EXPECT_EQ(Units(read.plain), read.ok ? u"ab" : u"a");
    }
}

TEST(StyledText, Create_LongTexts_AreLinear) {
    const long n = 10 << 20;
    for (const std::u16string piece : {u"<", u"&", u"a", u"&amp;", u"<BR/>", u"<br", u"</SPAN>", u"&am", u"<SPA",
                                       u"<SPAN></SPAN>", u"<SPAN STYLE=\"font-size:1\"></SPAN>",
                                       u"<SPAN STYLE=\"font-family:'\"></SPAN>", u"<SPAN STYLE=\"color:#\"></SPAN>"}) {
        std::u16string text;
        for (size_t i = 0; i < n / piece.size() / 8; ++i) text += piece;  // an eighth: sanitizers are slow
        Styled read(text);
        EXPECT_TRUE(read.ok);
        EXPECT_LE(read.plain.count, n);
    }
    std::u16string one = u"<SPAN STYLE=\"";
    while (one.size() < n / 8) one += u"font-weight:bold;font-family:'x;font-size:1;color:#12345;";
    Styled read(one + u"\">x");
    EXPECT_TRUE(read.ok);
    EXPECT_EQ(read.runs.GetRun(1)->font.style, 1);
}

// Runs -------------------------------------------------------------------------------------------------------------

TEST(StyledRuns, AddRun_NullsAreDefaults) {
    MemoryCheck check;
    ZR_MultiStyleText runs;
    runs.Create();
    ZR_MultiStyleRun* run = runs.AddRun(2, 5, nullptr, nullptr, nullptr);
    ASSERT_NE(run, nullptr);
    EXPECT_EQ(run->start, 2);
    EXPECT_EQ(run->end, 5);
    EXPECT_EQ(run->color.alpha, 1);
    EXPECT_EQ(run->color.red, 0);
    EXPECT_EQ(run->background.alpha, 0);
    EXPECT_EQ(run->font.size, 0);
    ZR_Font font;
    font.Create(9, kZRBold, "X");
    const ZR_RGBColor red = {65535, 0, 0, 0.5F}, blue = {0, 0, 65535, 1};
    run = runs.AddRun(6, 7, &font, &red, &blue);
    font.Dispose();
    EXPECT_EQ(Described(runs), "2-5  0 0 #000000|6-7 X 9 1 #FF0000 #0000FF");
    EXPECT_EQ(run->color.alpha, 0.5F);
    for (int i = 0; i < 200; ++i) {  // what is copied lies in the list that grows
        ZR_MultiStyleRun* source = runs.GetRun(2);
        runs.AddRun(i, i, &source->font, &source->color, &source->background);
    }
    EXPECT_STREQ(runs.GetRun(202)->font.name.GetCStringPtr(), "X");
    runs.Dispose();
}

TEST(StyledRuns, CopiesOffsetsAndClear) {
    MemoryCheck check;
    ZR_MultiStyleText runs, copy;
    ZR_Font font;
    font.Create(9, 0, "X");
    runs.Create();
    runs.AddRun(1, 3, &font, nullptr, nullptr);
    runs.AddRun(5, 6, &font, nullptr, nullptr);
    copy.Create(&runs);
    runs.OffsetRuns(10);
    EXPECT_EQ(Described(runs), "11-13 X 9 0 #000000|15-16 X 9 0 #000000");
    copy.AddRuns(100, &runs);
    runs.Clear();
    EXPECT_EQ(runs.runs.count, 0);
    EXPECT_EQ(Described(copy), "1-3 X 9 0 #000000|5-6 X 9 0 #000000|111-113 X 9 0 #000000|115-116 X 9 0 #000000");
    copy.AddRuns(0, &copy);  // itself
    EXPECT_EQ(copy.runs.count, 8);
    copy.AddRuns(1, nullptr);
    copy.OffsetRuns(LONG_MAX);
    copy.OffsetRuns(LONG_MAX);
    EXPECT_EQ(copy.GetRun(1)->start, -1);
    copy.Dispose();
    copy.Create(nullptr);
    EXPECT_EQ(copy.runs.count, 0);
    copy.Dispose();
    runs.Dispose();
    font.Dispose();
}

TEST(StyledRuns, GetNextRun_TheFirstThatHoldsThePosition) {
    ZR_MultiStyleText runs;
    runs.Create();
    for (auto [start, end] : {std::pair(1, 3), {5, 8}, {7, 9}}) runs.AddRun(start, end, nullptr, nullptr, nullptr);
    static const struct {
        long position, index;
    } rows[] = {{0, 0}, {1, 1}, {3, 1}, {4, 0}, {5, 2}, {7, 2}, {8, 2}, {9, 3}, {10, 0}, {-1, 0}};
    for (const auto& row : rows) {
        long index = 77;
        EXPECT_EQ(runs.GetNextRun(row.position, &index), runs.GetRun(row.index)) << row.position;
        EXPECT_EQ(index, row.index) << row.position;
        EXPECT_EQ(runs.GetNextRun(row.position), runs.GetRun(row.index));
    }
    runs.Dispose();
}

// Writing ----------------------------------------------------------------------------------------------------------

namespace {

struct Written {
    ZR_MultiStyleText runs;
    ZR_Text plain, out;

    explicit Written(const std::u16string& text) {
        runs.Create();
        plain = MakeText(text);
        out = MakeText(u"");
    }
    ~Written() {
        out.Dispose();
        plain.Dispose();
        runs.Dispose();
    }
    void Add(long start, long end, float size, short style, const char* name, ZR_RGBColor color = {0, 0, 0, 1},
             ZR_RGBColor background = {0, 0, 0, 0}) {
        ZR_Font font;
        font.Create(size, style, name);
        runs.AddRun(start, end, &font, &color, &background);
        font.Dispose();
    }
    std::u16string Styled(short mode) {
        runs.Get4DStyledText(&plain, &out, mode);
        return Units(out);
    }
    std::u16string RTF() {
        out.Resize(0);
        runs.GetRTF(&plain, &out);
        EXPECT_EQ(out.growStep, 100);
        return Units(out);
    }
};

}  // namespace

TEST(StyledWriting, Get4DStyledText_PropertiesInOrder) {
    MemoryCheck check;
    Written text(u"ab\r\nc\rd\ne");
    text.Add(1, 2, 12.9F, 0, "Arial");
    text.Add(3, 9, 9, 15, "Times New", {0xFFFF, 0x1234, 0, 1}, {0, 0, 0xFF00, 1});
    EXPECT_EQ(text.Styled(1),
              u"<span style=\"font-family: 'Arial'; font-size:12; font-weight:normal;\">ab</span>"
              u"<span style=\"font-family: 'Times New'; font-size:9; font-weight:bold; font-style:italic;"
              u" text-decoration:underline line-through; color:#FF1200; background-color:#0000FF;\">"
              u"<br />c<br />d\ne</span>");
    EXPECT_EQ(text.out.growStep, 18);
    std::u16string spans = text.Styled(2);
    EXPECT_EQ(spans.rfind(u"<tspan style=", 0), 0u);
    EXPECT_NE(spans.find(u"<tbreak />c<tbreak />d\ne</tspan>"), std::u16string::npos);
    EXPECT_EQ(spans, text.Styled(0));
}

TEST(StyledWriting, Get4DStyledText_DecorationsAndColours) {
    static const struct {
        short style;
        ZR_RGBColor color, background;
        const char16_t* properties;
    } rows[] = {
        {0, {0, 0, 0, 1}, {0, 0, 0, 0}, u""},                   // black is left out
        {0, {0x00FF, 0x00FF, 0x00FF, 1}, {0, 0, 0, 0}, u""},    // high bytes count
        {0, {0xFF00, 0, 0, 0.5F}, {0xFF00, 0, 0, 0.99F}, u""},  // translucent is left out
        {0, {0x0100, 0, 0, 1}, {0, 0, 0, 1}, u" color:#010000;"},
        {0, {0, 0, 0, 1}, {0, 0xAB00, 0, 1}, u" background-color:#00AB00;"},
        {4, {0, 0, 0, 1}, {0, 0, 0, 0}, u" text-decoration:underline;"},
        {8, {0, 0, 0, 1}, {0, 0, 0, 0}, u" text-decoration:line-through;"},
        {12, {0, 0, 0, 1}, {0, 0, 0, 0}, u" text-decoration:underline line-through;"},
        {2, {0, 0, 0, 1}, {0, 0, 0, 0}, u" font-style:italic;"},
    };
    for (const auto& row : rows) {
        Written text(u"<&>");
        text.Add(1, 3, 10, row.style, "A", row.color, row.background);
        EXPECT_EQ(text.Styled(1), u"<span style=\"font-family: 'A'; font-size:10; font-weight:normal;" +
                                      std::u16string(row.properties) + u"\"><&></span>");  // nothing is escaped
    }
}

TEST(StyledWriting, Get4DStyledText_RunsOutsideTheText_AreCut) {
    Written text(u"abc");
    for (auto [start, end] : {std::pair(0L, 1L), {3L, 99L}, {4L, 5L}, {3L, 1L}, {LONG_MIN, LONG_MAX}})
        text.Add(start, end, 1e30F, 0, "A");
    std::u16string out = text.Styled(1);
    size_t pieces = 0;
    for (const char16_t* piece : {u">a</span>", u">c</span>", u"></span>", u"></span>", u">abc</span>"}) {
        pieces = out.find(piece, pieces);
        ASSERT_NE(pieces, std::u16string::npos);
        ++pieces;
    }
    text.runs.Get4DStyledText(nullptr, &text.out, 1);
    text.runs.Get4DStyledText(&text.plain, nullptr, 1);
    text.runs.Clear();
    EXPECT_EQ(text.Styled(1), u"");
}

TEST(StyledWriting, GetRTF_Whole) {
    MemoryCheck check;
    Written text(u"ab\r\nc{\u00E4x");
    text.Add(1, 2, 12, 1, "Arial", {0xFFFF, 0, 0, 1});
    text.Add(3, 5, 10.6F, 0, "ARIAL", {0xFFFF, 0, 0, 1});
    text.Add(7, 7, 9, 14, "Times", {0, 0x80FF, 0, 0.5F});
    EXPECT_EQ(text.RTF(),
              u"{\\rtf1\\ansi{\\fonttbl{\\f0Arial;}{\\f1Times;}}\n"
              u"{\\colortbl;\\red255\\green255\\blue255;\\red255\\green0\\blue0;\\red0\\green128\\blue0;}\n"
              u"\\f0\\fs24\\cf2\n{\\b ab}"  // bold in a group
              u"\\f0\\fs21\\cf2\n\\\nc"     // the same font in other letters, the same colour
              u"\\pard\\plain\n{"           // no run; a brace as it is
              u"\\f1\\fs18\\cf3\n\\u228 \\uc0 "
              u"\\pard\\plain\nx}");
}

TEST(StyledWriting, GetRTF_EmptyPlain_HasHeaderAndTables) {
    Written text(u"");
    EXPECT_EQ(text.RTF(), u"{\\rtf1\\ansi{\\colortbl;\\red255\\green255\\blue255;}\n}");
    text.Add(1, 3, 12, 1, "A", {0, 0, 0, 1});
    EXPECT_EQ(text.RTF(),
              u"{\\rtf1\\ansi{\\fonttbl{\\f0A;}}\n{\\colortbl;\\red255\\green255\\blue255;\\red0\\green0\\blue0;}\n}");
    text.runs.GetRTF(nullptr, &text.out);
    text.runs.GetRTF(&text.plain, nullptr);
}

TEST(StyledWriting, GetRTF_Units) {
    static const struct {
        std::u16string plain, body;
    } rows[] = {
        {u"a\rb", u"a\\\nb"},
        {u"a\r\nb", u"a\\\nb"},
        {u"a\nb", u"a\nb"},
        {u"\r\r", u"\\\n\\\n"},
        {u"\\{}", u"\\{}"},
        {u"\u007F", u"\u007F"},
        {u"\u0080", u"\\u128 \\uc0 "},
        {u"\u20AC", u"\\u8364 \\uc0 "},
        {u"\xFFFF", u"\\u65535 \\uc0 "},
        {u"a\r", u"a\\\n"},
    };
    for (const auto& row : rows) {
        Written text(row.plain);
        EXPECT_EQ(text.RTF(), u"{\\rtf1\\ansi{\\colortbl;\\red255\\green255\\blue255;}\n" + row.body + u"}");
    }
}

TEST(StyledWriting, GetRTF_RunsOfAnyOrder_AsGetNextRunFindsThem) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        Written text(std::u16string(30, u'x'));
        for (unsigned n = random() % 8; n > 0; --n) {
            long start = static_cast<long>(random() % 36) - 3, size = static_cast<long>(random() % 12) - 2;
            text.Add(start, start + size, static_cast<float>(n), 0,
                     std::string(1, static_cast<char>('A' + random() % 3)).c_str());
        }
        std::u16string expected;
        ZR_MultiStyleRun* last = nullptr;
        for (long i = 1; i <= 30; ++i) {
            ZR_MultiStyleRun* run = text.runs.GetNextRun(i);
            if (run != last && run) {
                std::string size = std::to_string(static_cast<long>(run->font.size * 2));
                expected += u"\\fs" + std::u16string(size.begin(), size.end());
            }
            if (run != last && !run) expected += u"\\pard\\plain";
            expected += u"x";
            last = run;
        }
        std::u16string body = text.RTF(), reduced;
        body = body.substr(body.rfind(u"}\n") + 2);
        for (size_t i = 0; i + 1 < body.size();) {
            if (body.compare(i, 2, u"\\f") == 0 && body[i + 2] != u's') i = body.find(u"\\fs", i);
            else if (body.compare(i, 3, u"\\cf") == 0) i = body.find(u'\n', i);
            else if (body[i] == u'\n') ++i;
            else reduced += body[i++];
        }
        EXPECT_EQ(reduced, expected);
    }
}

TEST(StyledWriting, GetRTF_ManyRunsAndFonts_AreLinear) {
    const long n = 100000;
    Written text(std::u16string(static_cast<size_t>(2 * n), u'x'));
    for (long i = 0; i < n; ++i) {
        std::string name = "F" + std::to_string(i);
        text.Add(2 * i + 1, 2 * i + 2, 12, 0, name.c_str(),
                 {static_cast<unsigned short>(i), static_cast<unsigned short>(i >> 16), 0, 1});
    }
    std::u16string out = text.RTF();
    EXPECT_NE(out.find(u"{\\f99999F99999;}"), std::u16string::npos);
    EXPECT_NE(out.find(u"\\f99999\\fs24\\cf100001\nxx}"), std::u16string::npos);
    for (long i = 1; i <= n; ++i) text.runs.GetRun(i)->start = 1;  // all overlap
    EXPECT_GT(text.RTF().size(), out.size() / 2);
}
