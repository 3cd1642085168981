#include <climits>

#include "tests/graphics/TextSupport.h"

namespace {

class TextLines : public DrawingTest {};

std::vector<std::u16string> LinesOf(const char* text, long width, long height = 0, long* consumed = nullptr) {
    TestText units(text);
    TestFont font;
    TestLines lines;
    ZR_Text2Array(units, &font.font, width, lines, height, consumed);
    return lines.All();
}

}  // namespace

TEST_F(TextLines, LineEnds_AreTakenOff) {
    static const struct {
        const char* text;
        std::vector<std::u16string> lines;
    } rows[] = {
        {"", {}},
        {"one", {u"one"}},
        {"one\rtwo", {u"one", u"two"}},
        {"one\ntwo", {u"one", u"two"}},
        {"one\r\ntwo", {u"one", u"two"}},
        {"one\r\rtwo", {u"one", u"", u"two"}},
        {"one \n\rtwo", {u"one", u"", u"two"}},
        {"one  ", {u"one"}},
        {"  one", {u"  one"}},
        {"one\t\n", {u"one\t"}},
        {" ", {u""}},
        {"\r\n", {u""}},
        {"one \r\n", {u"one"}},
    };
    for (auto& row : rows) EXPECT_EQ(LinesOf(row.text, 200), row.lines) << row.text;
}

// A line that ends in blank, line feed and carriage return loses all three. A break is the end of a line, so only a
// unit that breaks no line can stand before it.
TEST_F(TextLines, BlankLineFeedCarriageReturn_AtALinesEnd_AreAllTakenOff) {
    EXPECT_EQ(LinesOf("one \r\n", 200), std::vector<std::u16string>{u"one"});
    EXPECT_EQ(LinesOf("one  \r", 200), std::vector<std::u16string>{u"one"});
    EXPECT_EQ(LinesOf("one \n \r", 200), (std::vector<std::u16string>{u"one", u""}));
}

TEST_F(TextLines, Width_BreaksByWord) {
    TestFont font;
    long room = static_cast<long>(font.Width("The quick")) + 1;
    EXPECT_EQ(LinesOf("The quick brown fox", room), (std::vector<std::u16string>{u"The quick", u"brown fox"}));
    EXPECT_EQ(LinesOf("The quick brown fox", 32000), (std::vector<std::u16string>{u"The quick brown fox"}));
}

TEST_F(TextLines, WidthsThatAreNone_GiveNoLines) {
    for (long width : {0L, -1L, LONG_MIN}) EXPECT_TRUE(LinesOf("abc", width).empty()) << width;
    EXPECT_EQ(LinesOf("abc", LONG_MAX).size(), 1u);
    EXPECT_EQ(LinesOf("abc", 1L << 31).size(), 1u);
    EXPECT_EQ(LinesOf("abc", 1L << 40).size(), 1u);
}

TEST_F(TextLines, Height_BoundsTheLinesAndZeroIs32000) {
    EXPECT_EQ(LinesOf("a\rb\rc", 100, 14).size(), 1u);
    EXPECT_EQ(LinesOf("a\rb\rc", 100, 28).size(), 2u);
    EXPECT_EQ(LinesOf("a\rb\rc", 100, 10).size(), 0u);
    EXPECT_EQ(LinesOf("a\rb\rc", 100, -5).size(), 0u);
    std::string many;
    for (int i = 0; i < 5000; ++i) many += "x\r";
    float line = 12 * (kArialAscent + kArialDescent + kArialGap);
    EXPECT_NEAR(LinesOf(many.c_str(), 100).size(), 32000 / line, 1.1);
    EXPECT_EQ(LinesOf(many.c_str(), 100, 1000000).size(), 5000u);
}

TEST_F(TextLines, Consumed_IsTheEndOfTheLastLineThatFits) {
    long consumed = -7;
    LinesOf("a\rb\rc", 100, 28, &consumed);
    EXPECT_EQ(consumed, 4);
    LinesOf("a\rb\rc", 100, 0, &consumed);
    EXPECT_EQ(consumed, 5);
    consumed = -7;
    LinesOf("a\rb\rc", 100, 5, &consumed);
    EXPECT_EQ(consumed, -7) << "no line, nothing is written";
}

TEST_F(TextLines, List_IsReplaced_AlsoWithoutFont) {
    TestLines lines;
    lines.array.Append("old");
    TestText text("abc");
    TestFont none(-1);
    ZR_Text2Array(text, &none.font, 100, lines, 0, nullptr);
    EXPECT_EQ(lines.array.count, 0);
    lines.array.Append("old");
    ZR_Text2Array(text, nullptr, 100, lines, 0, nullptr);
    EXPECT_EQ(lines.array.count, 0);
    lines.array.Append("old");
    ZR_Text2Array(nullptr, &none.font, 100, lines, 0, nullptr);
    EXPECT_EQ(lines.array.count, 0);
}

TEST_F(TextLines, TenMegabytes_AreLinesInBoundedTime) {
    ZR_Text text;
    text.Create();
    text.SetLength(5 << 20);
    for (long i = 0; i < text.count; ++i) text.Units()[i] = i % 8 == 7 ? ' ' : 'm';
    TestFont font;
    TestLines lines;
    long consumed = 0;
    ZR_Text2Array(&text, &font.font, 500, lines, 1 << 30, &consumed);
    EXPECT_EQ(consumed, text.count);
    EXPECT_GT(lines.array.count, 50000);
    text.Dispose();
}
