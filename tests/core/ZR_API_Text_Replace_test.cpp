#include "tests/core/FakeHost.h"

namespace {

// The definition, step by step on the text itself.
std::u16string Defined(std::u16string text, const std::u16string& search, const std::u16string& replacement) {
    if (text.empty() || search.empty() || search.size() > text.size()) return text;
    long i = 0, n = static_cast<long>(search.size());
    while (true) {
        if (text.compare(static_cast<size_t>(i), search.size(), search) == 0) {
            text.replace(static_cast<size_t>(i), search.size(), replacement);
            i += std::max(static_cast<long>(replacement.size()) - 1, 0L);
        }
        if (i < static_cast<long>(text.size()) - n) ++i;
        else return text;
    }
}

std::u16string Replaced(const std::u16string& from, const std::u16string& search, const std::u16string& replacement) {
    MemoryCheck check;
    ZR_Text text = MakeText(from), what = MakeText(search), by = MakeText(replacement);
    text.Replace(&what, &by);
    std::u16string units = Units(text);
    by.Dispose();
    what.Dispose();
    text.Dispose();
    return units;
}

}  // namespace

TEST(TextReplace, Replace_Pairs) {
    static const struct {
        std::u16string text, search, replacement, expected;
    } rows[] = {
        {u"", u"a", u"b", u""},
        {u"abc", u"", u"b", u"abc"},
        {u"abc", u"abcd", u"b", u"abc"},
        {u"abc", u"b", u"xyz", u"axyzc"},
        {u"aaa", u"a", u"aa", u"aaaaaa"},  // a replacement is not scanned again
        {u"abab", u"ab", u"c", u"cc"},
        {u"aaaa", u"aa", u"b", u"bb"},
        {u"aaaaa", u"aa", u"b", u"bba"},
        {u"abc", u"abc", u"", u""},
        {u"aaaa", u"a", u"", u"aa"},     // Required: every second one stays
        {u"ababab", u"ab", u"", u"ab"},  // Required: the place that slid up is passed over
        {u"xaxa", u"a", u"", u"xx"},
        {u"xaa", u"a", u"", u"xa"},  // Required: the last place is not reached
        {u"aXbX", u"X", u"\u20AC", u"a\u20ACb\u20AC"},
        {u"Aa", u"a", u"b", u"Ab"},  // exact case
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Replaced(row.text, row.search, row.replacement), row.expected);
        EXPECT_EQ(Defined(row.text, row.search, row.replacement), row.expected);
    }
}

TEST(TextReplace, Replace_RandomTexts_AsDefined) {
    unsigned state = 3;
    auto random = [&state](unsigned n) { return (state = state * 1664525 + 1013904223) / 65536 % n; };
    for (int round = 0; round < 3000; ++round) {
        std::u16string text, search, replacement;
        for (unsigned n = random(14); n > 0; --n) text += static_cast<char16_t>(u'a' + random(2));
        for (unsigned n = random(4); n > 0; --n) search += static_cast<char16_t>(u'a' + random(2));
        for (unsigned n = random(4); n > 0; --n) replacement += static_cast<char16_t>(u'a' + random(3));
        EXPECT_EQ(Replaced(text, search, replacement), Defined(text, search, replacement));
    }
}

TEST(TextReplace, Replace_LongTextAndSearch_IsLinear) {
    const size_t n = 1 << 21;
    std::u16string search(n / 2, u'a');
    search += u'b';
    EXPECT_EQ(Replaced(std::u16string(n, u'a'), search, u"x"), std::u16string(n, u'a'));
    EXPECT_EQ(Replaced(std::u16string(n, u'a'), u"a", u"bc").size(), 2 * n);
}

TEST(TextReplace, Replace_ItselfAsArgument_IsSafe) {
    ZR_Text text = MakeText(u"ab");
    text.Replace(&text, &text);
    EXPECT_EQ(Units(text), u"ab");
    text.Replace(&text, static_cast<ZR_Text*>(nullptr));
    EXPECT_EQ(Units(text), u"");
    text.Replace(&text, &text);
    text.Replace(static_cast<ZR_Text*>(nullptr), &text);
    text.Dispose();
}

TEST(TextReplace, Replace_ByteStrings_WidenByZeroExtension) {
    ZR_Text text = MakeText(u"a\u00E9b\u00E9"), by = MakeText(u"--");
    text.Replace("\xE9", "\xE8");
    EXPECT_EQ(Units(text), u"a\u00E8b\u00E8");
    text.Replace("\xE8", &by);
    EXPECT_EQ(Units(text), u"a--b--");
    by.Dispose();
    text.Dispose();
}

TEST(TextReplace, ReplaceCharAndFilter_EveryUnit) {
    ZR_Text text = MakeText(u"abcabc");
    text.ReplaceChar('a', 0x20AC);
    EXPECT_EQ(Units(text), u"\u20ACbc\u20ACbc");
    text.GetCStringPtr();
    text.growStep = 3;
    text.Filter(static_cast<unsigned short>('b'));
    EXPECT_EQ(Units(text), u"\u20ACc\u20ACc");
    EXPECT_EQ(text.growStep, 3);
    EXPECT_EQ(text.cString, nullptr);  // caches are gone
    EXPECT_EQ(text.capacity, 9);       // room for the former units and a growth
    text.Filter(static_cast<unsigned short>('x'));
    EXPECT_EQ(Units(text), u"\u20ACc\u20ACc");
    ZR_Text aaaa = MakeText(u"aaaa"), a = MakeText(u"a");
    aaaa.Filter(&a);  // Required: every second one
    EXPECT_EQ(Units(aaaa), u"aa");
    aaaa.Filter(static_cast<unsigned short>('a'));  // all
    EXPECT_EQ(Units(aaaa), u"");
    aaaa.Filter(static_cast<unsigned short>('a'));
    aaaa.ReplaceChar('a', 'b');
    a.Dispose();
    aaaa.Dispose();
    text.Dispose();
    ZR_Text empty;
    empty.Create();
    empty.Filter(static_cast<unsigned short>('a'));
    EXPECT_EQ(empty.count, 0);
    empty.Dispose();
}

TEST(TextReplace, CreateCSVConformText_Fields) {
    static const struct {
        std::u16string text, field;
    } rows[] = {
        {u"", u""},
        {u"plain text", u"plain text"},
        {u"a,b", u"\"a,b\""},
        {u"a;b", u"\"a;b\""},
        {u"a\rb", u"\"a\rb\""},
        {u"a\nb", u"\"a\nb\""},
        {u"say \"hi\"", u"\"say \"\"hi\"\"\""},
        {u"\"", u"\"\"\"\""},
        {u"a\tb", u"a\tb"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(row.text);
        ZR_Text field = text.CreateCSVConformText();
        EXPECT_EQ(Units(field), row.field);
        EXPECT_EQ(Units(text), row.text);
        field.Dispose();
        text.Dispose();
    }
}
