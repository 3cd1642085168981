#include <climits>

#include "tests/core/FakeHost.h"

TEST(TextHTML, EncodeHTML_Units_BecomeNames) {
    static const struct {
        std::u16string text, expected;
    } rows[] = {
        {u"", u""},
        {u"plain text\t\n", u"plain text\t\n"},  // 10 has no entry
        {u">", u"&gt;"},
        {u"<a href=\"x\">&</a>", u"&lt;a href=&quot;x&quot;&gt;&amp;&lt;/a&gt;"},
        {u"\r", u"<br />"},  // without & and ;
        {u"a\rb", u"a<br />b"},
        {u"&amp;", u"&amp;amp;"},  // inserted text is not scanned again, written text is
        {u"100%", u"100&percnt;"},
        {u"it's", u"it&apos;s"},
        {u"\u00B9", u"&supl;"},  // Required: the letter l
        {u"\u2285", u"&nsup;"},
        {u"\u3008\u3009", u"&lang;&rang;"},
        {u"\u2329\u232A", u"\u2329\u232A"},  // Required: 9001 and 9002 have none
        {u"\u0080\u009F", u"\u0080\u009F"},
        {u"\u00A0\u00FF", u"&nbsp;&yuml;"},
        {u"\u00E4\u00F6\u00FC\u00DF", u"&auml;&ouml;&uuml;&szlig;"},
        {u"\u0152\u20AC\u2666", u"&OElig;&euro;&diams;"},
        {u"\u03B1\u2200\u2014\u200B", u"&alpha;&forall;&mdash;\u200B"},
        {u"\xFFFF\xD83D\xDE00", u"\xFFFF\xD83D\xDE00"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(row.text);
        text.EncodeHTML();
        EXPECT_EQ(Units(text), row.expected);
        text.Dispose();
    }
}

TEST(TextHTML, EncodeHTML_AllUnits_Have256Entries) {
    long entries = 0;
    for (long unit = 0; unit < 0x10000; ++unit) {
        ZR_Text text = MakeText(std::u16string(1, static_cast<char16_t>(unit)));
        text.EncodeHTML();
        if (text.count > 1) {
            ++entries;
            EXPECT_LT(unit, 0x8000);
        }
        text.Dispose();
    }
    EXPECT_EQ(entries, 256);
}

// The one pass of EncodeHTML against AddEntity unit by unit.
TEST(TextHTML, EncodeHTML_AgainstAddEntity_SameResult) {
    static const struct {
        unsigned short unit;
        const char* name;
        bool wrap;
    } names[] = {{'&', "amp", true}, {13, "<br />", false}, {0xE4, "auml", true}, {'<', "lt", true}};
    std::u16string source = u"&&a\r\u00E4<b\r\r&";
    ZR_Text once = MakeText(source), stepwise = MakeText(source);
    once.EncodeHTML();
    for (long i = 0; i < stepwise.count; ++i)
        for (const auto& name : names)
            if (stepwise.GetChar(i) == name.unit) {
                stepwise.AddEntity(&i, name.name, name.wrap);
                break;
            }
    EXPECT_EQ(Units(once), Units(stepwise));
    once.Dispose();
    stepwise.Dispose();
}

TEST(TextHTML, AddEntity_Positions_ReplaceTheUnit) {
    static const struct {
        long position;
        bool wrap;
        std::u16string expected;
        long after;
    } rows[] = {{0, true, u"&x;bc", 2}, {1, true, u"a&x;c", 3}, {2, false, u"abx", 2},
                {3, true, u"ab", 5},  // Required: at count the last unit goes and nothing can be inserted
                {4, true, u"abc", 4},   {-1, true, u"abc", -1}, {LONG_MAX, true, u"abc", LONG_MAX}};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(u"abc");
        long position = row.position;
        text.AddEntity(&position, "x", row.wrap);
        EXPECT_EQ(Units(text), row.expected) << row.position;
        EXPECT_EQ(position, row.after) << row.position;
        text.AddEntity(nullptr, "x", row.wrap);
        text.Dispose();
    }
}

TEST(TextHTML, EncodeHTML_LongText_IsLinear) {
    MemoryCheck check;
    ZR_Text text = MakeText(std::u16string(500000, u'<'));
    text.EncodeHTML();
    EXPECT_EQ(text.count, 2000000);
    EXPECT_EQ(text.capacity, 2000000);
    text.Dispose();
}

TEST(TextHTML, GetHTMLText_Units_LightForm) {
    static const struct {
        std::u16string text, expected;
    } rows[] = {
        {u"", u""},
        {u"a<b>&\"c\"", u"a&lt;b&gt;&amp;&quot;c&quot;"},
        {u"'\r\n\t%", u"'\r\n\t%"},  // none of the other names
        {u"\u0027", u"'"},
        {u"\u009F", u"\u009F"},
        {u"\u00A0", u"&#160;"},
        {u"\u00E4\u20AC", u"&#228;&#8364;"},
        {u"\xFFFF", u"&#65535;"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(row.text), out = MakeText(u"old");
        text.GetHTMLText(&out);
        EXPECT_EQ(Units(out), row.expected);
        EXPECT_EQ(out.growStep, 100);
        EXPECT_EQ(Units(text), row.text);
        out.Dispose();
        text.Dispose();
    }
    ZR_Text text = MakeText(u"a<");
    text.GetHTMLText(nullptr);
    text.GetHTMLText(&text);  // into itself: empty
    EXPECT_EQ(text.count, 0);
    text.Dispose();
}
