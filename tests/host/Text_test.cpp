#include "host/Text.h"

#include <random>

#include "host/Unicode.h"
#include "tests/host/Host_Test.h"

namespace zrhost {
namespace {

class HostText : public HostTest {};

int Compared(std::u16string_view left, std::u16string_view right, int exact = 0, int wildcard = 1) {
    EngineBlock block = Block();
    block.fParam1 = Address(left.data());
    block.fLength1 = int64_t(left.size());
    block.fParam2 = Address(right.data());
    block.fLength2 = int64_t(right.size());
    block.fParam3 = exact;
    block.fParam4 = wildcard;
    EXPECT_EQ(Call(ZR_SEL_CompareUnibuffers, &block), 0);
    return int(block.fParam1);
}

TEST_F(HostText, Compare_LettersAlone_DecideTheOrder) {
    static const struct {
        const char16_t *left, *right;
        int order;
    } rows[] = {
        {u"", u"", 0},
        {u"", u"a", -1},
        {u"a", u"", 1},
        {u"abc", u"ABC", 0},
        {u"abc", u"abd", -1},
        {u"abc", u"ab", 1},
        {u"Zebra", u"apple", 1},
        {u"e", u"\u00e9", 0},
        {u"\u00c9t\u00e9", u"ete", 0},
        {u"stra\u00dfe", u"STRASSE", 0},
        {u"\u00c6on", u"aeon", 0},
        {u"e\u0301", u"\u00e9", 0},  // an accent of its own
        {u"e\u0301a", u"eb", -1},
        {u"\uff21", u"a", 0},                   // full width
        {u"\u03b1\u03b2", u"\u0391\u0392", 0},  // Greek
        {u"\u0436", u"\u0416", 0},              // Cyrillic
        {u"\u00f1", u"n", 0},
        {u"\u00fe", u"z", 1},   // a letter behind z
        {u"a\u0001", u"a", 0},  // controls do not count
        {u"\u0001", u"", 0},
        {u"a\u00adb", u"ab", 0},
        {u"a b", u"ab", -1},
        {u"1", u"a", -1},
        {u"10", u"9", -1},
        {u"a_b", u"a-b", -1},
        {u"\u00a0", u" ", 0},
        {u"aaaaaaaaaaaaaaaaaaaaB", u"AAAAAAAAAAAAAAAAAAAAb", 0},
        {u"aaaaaaaaaaaaaaaaaaaaB", u"aaaaaaaaaaaaaaaaaaaac", -1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Compared(row.left, row.right), row.order) << ToUtf8(row.left) << " " << ToUtf8(row.right);
        EXPECT_EQ(Compared(row.right, row.left), -row.order) << ToUtf8(row.right) << " " << ToUtf8(row.left);
    }
}

TEST_F(HostText, Compare_Exact_CountsCaseAndAccents) {
    static const struct {
        const char16_t *left, *right;
        int order;
    } rows[] = {
        {u"abc", u"abc", 0},   {u"abc", u"Abc", -1}, {u"abc", u"ABD", -1},  {u"\u00e9", u"e", 1},
        {u"\u00e9", u"f", -1}, {u"", u"", 0},        {u"a\u0001", u"a", 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Compared(row.left, row.right, 1), row.order) << ToUtf8(row.left) << " " << ToUtf8(row.right);
        EXPECT_EQ(Compared(row.right, row.left, 1), -row.order) << ToUtf8(row.right) << " " << ToUtf8(row.left);
    }
}

TEST_F(HostText, Compare_Wildcard_MatchesAnyUnits) {
    static const struct {
        const char16_t *text, *pattern;
        bool match, exact;
    } rows[] = {
        {u"abc", u"@", true, true},
        {u"", u"@", true, true},
        {u"", u"@@", true, true},
        {u"abc", u"a@", true, true},
        {u"abc", u"A@", true, false},
        {u"abc", u"@c", true, true},
        {u"abc", u"@C", true, false},
        {u"abc", u"@b@", true, true},
        {u"abc", u"a@c", true, true},
        {u"ac", u"a@c", true, true},
        {u"a", u"a@a", false, false},
        {u"aa", u"a@a", true, true},
        {u"abcbd", u"@a@b@d@", true, true},
        {u"abcbd", u"@b@a@", false, false},
        {u"abc", u"b@", false, false},
        {u"abc", u"@b", false, false},
        {u"abc", u"abc@", true, true},
        {u"ab", u"abc@", false, false},
        {u"a@c", u"a@c", true, true},
        {u"\u00c9t\u00e9 2024", u"ete@", true, false},
        {u"Hauptstra\u00dfe", u"@STRASSE", true, false},
        {u"x\u03b1\u03b2y", u"X@\u0391\u0392@", true, false},
        {u"abababc", u"@ababc", true, true},
        {u"aaa", u"@aa@aa", false, false},
        {u"one\ntwo", u"one@two", true, true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Compared(row.text, row.pattern) == 0, row.match) << ToUtf8(row.text) << " " << ToUtf8(row.pattern);
        EXPECT_EQ(Compared(row.text, row.pattern, 1) == 0, row.exact) << ToUtf8(row.text) << " " << ToUtf8(row.pattern);
    }
    EXPECT_NE(Compared(u"a@", u"ab"), 0) << "no wildcard on the left";
    EXPECT_NE(Compared(u"abc", u"a@", 0, 0), 0) << "not asked for";
    EXPECT_EQ(Compared(u"a@", u"A@", 0, 0), 0);
}

TEST_F(HostText, Compare_NullAndNegative_CountAsEmpty) {
    EngineBlock block = Block();
    block.fLength1 = -5;
    block.fLength2 = 7;
    EXPECT_EQ(Call(ZR_SEL_CompareUnibuffers, &block), 0);
    EXPECT_EQ(block.fParam1, 0);
}

// The tables here against the Unicode object: all pairs of single units, and random texts.
TEST_F(HostText, Compare_LatinTables_AgreeWithUnicode) {
    const UnicodeTable* table = Unicode();
    ASSERT_TRUE(table);
    std::mt19937 random(7);
    auto unit = [&] { return char16_t(random() % 4 ? 0x20 + random() % 0x60 : random() % 0x180); };
    auto check = [&](std::u16string_view left, std::u16string_view right) {
        int expected = table->compare(left.data(), int32_t(left.size()), right.data(), int32_t(right.size()), 0);
        ASSERT_EQ(CompareText(left, right, false, false), expected)
            << ToUtf8(left) << " [" << int(left[0]) << "] " << ToUtf8(right) << " [" << int(right[0]) << "]";
    };
    for (char16_t a = 1; a < 0x180; ++a)
        for (char16_t b = 1; b < 0x180; b = char16_t(b + 1 + (a > 0x7f))) check({&a, 1}, {&b, 1});
    for (int i = 0; i < 20000; ++i) {
        std::u16string left, right;
        for (size_t n = 1 + random() % 6; n; --n) left += unit();
        right = left;
        for (size_t n = random() % 3; n; --n) right[random() % right.size()] = unit();
        if (random() % 3 == 0) right += unit();
        check(left, right);
    }
}

TEST_F(HostText, Compare_WithoutTheObject_AnswersForLatin) {
    ConfigureUnicode("/nonexistent/object.so", "en-US");
    EXPECT_EQ(Unicode(), nullptr);
    EXPECT_EQ(CompareText(u"\u00e9t\u00e9", u"ETE", false, false), 0);
    EXPECT_EQ(CompareText(u"e\u0301", u"E", false, false), 0);
    EXPECT_EQ(CompareText(u"\u03b1", u"\u03b1", false, false), 0);
    EXPECT_NE(CompareText(u"\u03b1", u"\u03b2", false, false), 0);
    EXPECT_EQ(CompareText(u"x\u03b1y", u"@\u03b1@", false, true), 0);
    EXPECT_EQ(ToUtf8(Upper(u"stra\u00dfe \u00e9", true)), "STRA\u00dfE \u00c9");
    EXPECT_EQ(ToUtf8(Lower(u"\u00c9A", false)), "ea");
    std::u16string out;
    EXPECT_FALSE(DecodeText({}, "windows-1252", &out));
    EXPECT_TRUE(DecodeText({}, "utf-8", &out));
    ConfigureUnicode("", "en-US");
    EXPECT_NE(Unicode(), nullptr);
}

TEST(HostTextObject, Missing_IsNamedOnce) {
    std::vector<std::string> missing;
    Options options;
    options.unicodeLibrary = "/nonexistent/object.so";
    options.missingObject = [&](std::string_view object, std::string_view package) {
        missing.push_back(std::string(object) + " " + std::string(package));
    };
    auto host = Host::Start(options);
    CompareText(u"plain", u"PLAIN", false, false);
    EXPECT_TRUE(missing.empty()) << "not needed yet";
    CompareText(u"\u03b1", u"\u03b2", false, false);
    Upper(u"\u03b1", true);
    EXPECT_EQ(missing, (std::vector<std::string>{"zr-unicode libicu72"}));
    host.reset();
    host = Host::Start({});  // found again
    EXPECT_EQ(CompareText(u"\u03b1", u"\u0391", false, false), 0);
}

TEST(HostTextLocale, Compare_Swedish_KeepsItsLetters) {
    Options options;
    options.locale = "sv-SE";
    auto host = Host::Start(options);
    EXPECT_NE(CompareText(u"\u00e5", u"a", false, false), 0);
    EXPECT_EQ(CompareText(u"\u00e5ngstr\u00f6m", u"z", false, false), 1);
    EXPECT_EQ(CompareText(u"ABC", u"abc", false, false), 0);
    EXPECT_EQ(CompareText(u"\u00e5bc", u"\u00c5@", false, true), 0);
    host.reset();
    host = Host::Start({});
    EXPECT_EQ(CompareText(u"\u00e5", u"a", false, false), 0);
}

TEST_F(HostText, Find_AnyText_AnswersUnitsOfTheText) {
    static const struct {
        const char16_t *text, *pattern;
        size_t start;
        bool exact;
        int at, length;
    } rows[] = {
        {u"Hello World", u"world", 0, false, 6, 5},
        {u"Hello World", u"world", 0, true, -1, 0},
        {u"Hello World", u"o", 5, false, 7, 1},
        {u"Hello", u"", 0, false, -1, 0},
        {u"", u"a", 0, false, -1, 0},
        {u"abc", u"c", 3, false, -1, 0},
        {u"abc", u"c", 99, false, -1, 0},
        {u"abc", u"abcd", 0, false, -1, 0},
        {u"d\u00e9j\u00e0", u"DEJA", 0, false, 0, 4},
        {u"xe\u0301y", u"E", 0, false, 1, 2},  // the accent belongs to the letter
        {u"stra\u00dfe", u"SS", 0, false, 4, 1},
        {u"stra\u00dfe", u"S", 1, false, -1, 0},  // not half of a letter
        {u"aXAxa", u"ax", 0, false, 0, 2},
        {u"\u0416\u0436", u"\u0436", 1, false, 1, 1},
        {u"a@b", u"@", 0, false, 1, 1},
        {u"aab", u"ab", 0, false, 1, 2},
    };
    for (const auto& row : rows) {
        Match match = FindText(row.text, row.pattern, row.start, row.exact);
        EXPECT_EQ(int(match.at), row.at) << ToUtf8(row.text) << " " << ToUtf8(row.pattern);
        EXPECT_EQ(int(match.length), row.length) << ToUtf8(row.text) << " " << ToUtf8(row.pattern);
    }
    EXPECT_EQ(FindAllText(u"aAaa", u"aa", 0, false).size(), 2u);
    EXPECT_EQ(FindAllText(u"aAaa", u"a", 0, false, 3).size(), 3u);
    EXPECT_EQ(FindAllText(u"\u03b1x\u03b1", u"\u0391", 0, false).size(), 2u);
}

TEST_F(HostText, UpperLower_WithAndWithoutAccents) {
    static const struct {
        const char16_t* text;
        const char *upper, *upperKept, *lower, *lowerKept;
    } rows[] = {
        {u"", "", "", "", ""},
        {u"aB1", "AB1", "AB1", "ab1", "ab1"},
        {u"h\u00e9l\u00c8ne", "HELENE", "H\u00c9L\u00c8NE", "helene", "h\u00e9l\u00e8ne"},
        {u"\u0159\u0158", "RR", "\u0158\u0158", "rr", "\u0159\u0159"},
        {u"\u0436", "\u0416", "\u0416", "\u0436", "\u0436"},
        {u"\U0001F600a", "\U0001F600A", "\U0001F600A", "\U0001F600a", "\U0001F600a"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ToUtf8(Upper(row.text, false)), row.upper);
        EXPECT_EQ(ToUtf8(Upper(row.text, true)), row.upperKept);
        EXPECT_EQ(ToUtf8(Lower(row.text, false)), row.lower);
        EXPECT_EQ(ToUtf8(Lower(row.text, true)), row.lowerKept);
    }
}

TEST_F(HostText, Names_FoldAsciiOnly) {
    static const struct {
        const char16_t *left, *right;
        bool equal;
    } rows[] = {
        {u"Abc", u"aBC", true}, {u"a", u"ab", false}, {u"\u00e9", u"\u00c9", false}, {u"[", u"{", false},
        {u"@", u"`", false},    {u"", u"", true},     {u"x1_", u"X1_", true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(EqualNames(row.left, row.right), row.equal) << ToUtf8(row.left);
        EXPECT_EQ(FoldName(row.left) == FoldName(row.right), row.equal) << ToUtf8(row.left);
    }
}

// Charsets ---------------------------------------------------------------------------------------------------------

std::string Hex(std::span<const uint8_t> bytes) {
    std::string out;
    for (uint8_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        out += digits;
    }
    return out;
}

std::string Converted(std::string_view source, int from, int64_t room, int to, int16_t* error = nullptr) {
    std::vector<uint8_t> target(size_t(std::max<int64_t>(room, 0)));
    EngineBlock block = Block();
    block.fParam1 = Address(source.data());
    block.fLength1 = int64_t(source.size());
    block.fParam3 = from;
    block.fParam2 = Address(target.data());
    block.fLength2 = room;
    block.fParam4 = to;
    int16_t answer = Call(ZR_SEL_ConvertCharset, &block);
    if (error) *error = answer;
    return Hex(std::span(target).first(size_t(block.fLength2)));
}

TEST_F(HostText, ConvertCharset_WholeCharactersThatFit) {
    using namespace std::string_view_literals;
    static const struct {
        std::string_view source;
        int from;
        int64_t room;
        int to;
        const char* bytes;
    } rows[] = {
        {"a\xc3\xa9", eCS_UTF8, 100, eCS_UTF16, "6100e900"},
        {"a\xc3\xa9", eCS_UTF8, 3, eCS_UTF16, "6100"},
        {"a\xc3\xa9", eCS_UTF8, 100, eCS_UTF32, "61000000e9000000"},
        {"\xf0\x9f\x98\x80", eCS_UTF8, 100, eCS_UTF16, "3dd800de"},
        {"\xf0\x9f\x98\x80", eCS_UTF8, 2, eCS_UTF16, ""},
        {"\x3d\xd8\x00\xde"sv, eCS_UTF16, 4, eCS_UTF8, "f09f9880"},
        {"\x3d\xd8\x00\xde"sv, eCS_UTF16, 3, eCS_UTF8, ""},
        {"\x3d\xd8"sv, eCS_UTF16, 100, eCS_UTF8, "efbfbd"},
        {"\x00\xde"sv, eCS_UTF16, 100, eCS_UTF8, "efbfbd"},
        {"a"sv, eCS_UTF16, 100, eCS_UTF8, "efbfbd"},
        {"\xff\xfe\xfd"sv, eCS_UTF8, 100, eCS_UTF8, "efbfbdefbfbdefbfbd"},
        {"\xe2\x82"sv, eCS_UTF8, 100, eCS_UTF8, "efbfbd"},
        {"\xc0\x80"sv, eCS_UTF8, 100, eCS_UTF8, "efbfbdefbfbd"},
        {"\xed\xa0\x80"sv, eCS_UTF8, 100, eCS_UTF16, "fdfffdfffdff"},
        {"\x00\x00\x11\x00"sv, eCS_UTF32, 100, eCS_UTF8, "efbfbd"},
        {"abc", eCS_System, 2, eCS_UTF8, "6162"},
        {"", eCS_UTF8, 10, eCS_UTF8, ""},
        {"abc", eCS_UTF8, 0, eCS_UTF8, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Converted(row.source, row.from, row.room, row.to), row.bytes)
            << Hex({reinterpret_cast<const uint8_t*>(row.source.data()), row.source.size()});
    int16_t error;
    EXPECT_EQ(Converted("a", 55, 10, eCS_UTF8, &error), "");
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
    EXPECT_EQ(Converted("a", eCS_UTF8, -1, eCS_UTF8, &error), "");
    EXPECT_EQ(error, ZR_ERR_PARAMETER);
}

TEST_F(HostText, Charsets_ByName_ThereAndBack) {
    static const struct {
        const char* charset;
        const char16_t* text;
        const char* bytes;
    } rows[] = {
        {"UTF-8", u"\u00e9\u20ac", "c3a9e282ac"},
        {"utf-16", u"a", "fffe6100"},
        {"UTF-16BE", u"a\u20ac", "006120ac"},
        {"UTF-16LE", u"a", "6100"},
        {"UTF-32BE", u"a", "00000061"},
        {"ISO-8859-1", u"\u00e9", "e9"},
        {"iso-8859-15", u"\u20ac", "a4"},
        {"windows-1252", u"\u20ac\u00e9", "80e9"},
        {"MacRoman", u"\u00e9", "8e"},
        {"macintosh", u"\u00dc", "86"},
        {"Shift_JIS", u"\u3042", "82a0"},
        {"US-ASCII", u"abc", "616263"},
    };
    for (const auto& row : rows) {
        std::vector<uint8_t> bytes;
        std::u16string text;
        EXPECT_TRUE(EncodeText(row.text, row.charset, &bytes)) << row.charset;
        EXPECT_EQ(Hex(bytes), row.bytes) << row.charset;
        EXPECT_TRUE(DecodeText(bytes, row.charset, &text)) << row.charset;
        EXPECT_EQ(ToUtf8(text), ToUtf8(row.text)) << row.charset;
        EXPECT_TRUE(IsCharset(row.charset));
    }
    std::vector<uint8_t> bytes;
    std::u16string text;
    EXPECT_FALSE(EncodeText(u"a", "no such charset", &bytes));
    EXPECT_FALSE(DecodeText(bytes, "", &text));
    EXPECT_FALSE(IsCharset("no such charset"));
    EXPECT_TRUE(EncodeText(u"\u20ac", "ISO-8859-1", &bytes));
    EXPECT_EQ(Hex(bytes), "3f");
    EXPECT_TRUE(EncodeText(u"\u3042a", "windows-1252", &bytes));
    EXPECT_EQ(Hex(bytes), "3f61");
    static const uint8_t marked[] = {0xEF, 0xBB, 0xBF, 'a'};
    EXPECT_TRUE(DecodeText(marked, "utf-8", &text));
    EXPECT_EQ(ToUtf8(text), "a");
    EXPECT_EQ(CharsetByNumber(106), "UTF-8");
    EXPECT_EQ(CharsetByNumber(2252), "windows-1252");
    EXPECT_EQ(CharsetByNumber(-1), "");
    for (int number : {3, 4, 12, 17, 106, 114, 1013, 1019, 2009, 2026, 2027, 2084, 2250, 2258, 2259})
        EXPECT_TRUE(IsCharset(CharsetByNumber(number))) << number;
}

TEST(HostUtf8, Conversions_InvalidInput_BecomesReplacement) {
    EXPECT_EQ(FromUtf8("a\xff"
                       "b"),
              u"a\ufffdb");
    EXPECT_EQ(ToUtf8(u"\xd83d"), "\xef\xbf\xbd");
    EXPECT_EQ(ToUtf8(FromUtf8("gr\xc3\xbc\xc3\x9f \xf0\x9f\x98\x80")), "gr\xc3\xbc\xc3\x9f \xf0\x9f\x98\x80");
    EXPECT_EQ(FromUtf8(""), u"");
}

}  // namespace
}  // namespace zrhost
