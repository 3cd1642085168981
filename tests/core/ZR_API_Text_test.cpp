#include "core/ZR_API_Text.h"

#include <climits>
#include <limits>

#include "platform/CoreFoundation/CoreFoundation.h"
#include "tests/core/FakeHost.h"

namespace {

const unsigned short* U(const char16_t* text) { return reinterpret_cast<const unsigned short*>(text); }
const unsigned char* B(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

}  // namespace

// Life -------------------------------------------------------------------------------------------------------------

TEST(Text, Create_Empty_AllocatesNothing) {
    MemoryCheck check;
    ZR_Text text;
    memset(static_cast<void*>(&text), 0xAA, sizeof text);
    text.Create();
    EXPECT_EQ(text.count, 0);
    EXPECT_EQ(text.data, nullptr);
    EXPECT_EQ(text.elementSize, 2);
    EXPECT_EQ(text.cString, nullptr);
    EXPECT_FALSE(text.unistringValid);
    EXPECT_TRUE(text.unistring.fString == nullptr);
    text.Dispose();
}

TEST(Text, Create_NullOrEmptySources_GiveEmptyText) {
    MemoryCheck check;
    ZR_Text text;
    auto check_empty = [&](int row) {
        EXPECT_EQ(text.count, 0) << row;
        EXPECT_EQ(text.data, nullptr) << row;
    };
    text.Create(static_cast<const unsigned short*>(nullptr));
    check_empty(1);
    text.Create(U(u""));
    check_empty(2);
    text.Create(static_cast<const __CFString*>(nullptr));
    check_empty(3);
    text.Create(static_cast<void*>(nullptr));
    check_empty(4);
    text.Create(static_cast<const ZR_Text*>(nullptr));
    check_empty(5);
    text.CreateWithUnistringPtr(nullptr);
    check_empty(6);
    text.CreateFrom4DVariable(nullptr);
    check_empty(7);
    text.CreateFrom4DArray(nullptr, 1);
    check_empty(8);
    text.CreateFrom4DParameter(nullptr, 1);
    check_empty(9);
    text.CreateFromHandle(nullptr, eCS_UTF8);
    check_empty(10);
    text.Create(nullptr, 5, eCS_UTF8);
    check_empty(11);
}

TEST(Text, Create_TerminatedUnits_StopsAtZero) {
    MemoryCheck check;
    ZR_Text text;
    text.Create(U(u"\u00E4b\0c"));
    EXPECT_EQ(Units(text), u"\u00E4b");
    text.Dispose();
}

TEST(Text, CreateCopy_Caches_AreNotCopied) {
    MemoryCheck check;
    ZR_Text source = MakeText(u"abc"), copy;
    source.GetCStringPtr();
    copy.Create(&source);
    EXPECT_EQ(Units(copy), u"abc");
    EXPECT_NE(copy.data, source.data);
    EXPECT_EQ(copy.cString, nullptr);
    source.Dispose();
    EXPECT_EQ(Units(copy), u"abc");
    copy.Dispose();
}

TEST(Text, Copy_OntoItself_LeavesItEmpty) {  // Required
    MemoryCheck check;
    ZR_Text text = MakeText(u"abc"), other = MakeText(u"xy");
    text.Copy(&other);
    EXPECT_EQ(Units(text), u"xy");
    text.Copy(&text);
    EXPECT_EQ(text.count, 0);
    EXPECT_EQ(text.data, nullptr);
    text.Copy(&other);
    EXPECT_EQ(Units(text), u"xy");
    text.Copy(nullptr);
    EXPECT_EQ(text.count, 0);
    other.Dispose();
}

TEST(Text, Dispose_ThenAppend_IsRefilled) {
    MemoryCheck check;
    ZR_Text text = MakeText(u"abc");
    text.GetCStringPtr();
    text.Dispose();
    EXPECT_EQ(text.elementSize, 2);
    EXPECT_EQ(text.cString, nullptr);
    text.AddString("again");
    EXPECT_EQ(Units(text), u"again");
    text.Dispose();
    text.Dispose();
}

// CFStrings and wide strings ---------------------------------------------------------------------------------------

TEST(Text, CFString_RoundTrip_KeepsUnits) {
    static const std::u16string rows[] = {u"", u"a", u"\u00E4\u20AC\U0001F600", u"lone \xD83D"};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(row), back, again;
        CFStringRef string = text.GetNSStringRef();
        ASSERT_NE(string, nullptr);
        EXPECT_EQ(CFStringGetLength(string), static_cast<CFIndex>(row.size()));
        back.Create(string);
        again.Create(const_cast<void*>(static_cast<const void*>(string)));
        again.AddCFString(string);
        EXPECT_EQ(Units(back), row);
        EXPECT_EQ(Units(again), row + row);
        CFRelease(string);
        for (ZR_Text* each : {&text, &back, &again}) each->Dispose();
    }
}

TEST(Text, AddWide_Characters_BecomeUnits) {
    static const struct {
        std::wstring wide;
        std::u16string units;
    } rows[] = {{L"", u""},
                {L"a\u20AC", u"a\u20AC"},
                {L"\U0001F600", u"\U0001F600"},
                {std::wstring(1, static_cast<wchar_t>(0xD800)), u""},  // a failed conversion adds nothing
                {std::wstring(1, static_cast<wchar_t>(0x110000)), u""}};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(u"+");
        std::wstring wide = row.wide;
        text.Add_wstring(&wide);
        EXPECT_EQ(Units(text), u"+" + row.units);
        text.Add_wchar_t(wide.data(), static_cast<long>(wide.size()));
        EXPECT_EQ(Units(text), u"+" + row.units + row.units);
        text.Add_wchar_t(nullptr, 3);
        text.Add_wchar_t(wide.data(), -1);
        text.Add_wchar_t(wide.data(), LONG_MAX);
        text.Add_wstring(nullptr);
        EXPECT_EQ(Units(text), u"+" + row.units + row.units);
        text.Dispose();
    }
}

// Appending --------------------------------------------------------------------------------------------------------

TEST(Text, AddPascalString_LengthAndCharacters_AreSigned) {  // Required
    static const struct {
        std::string pascal;
        std::u16string expected;
    } rows[] = {{std::string("\0abc", 4), u""},
                {std::string("\2abc", 4), u"ab"},
                {std::string("\1\xE9", 2), u"\xFFE9"},
                {std::string("\xC8", 1) + std::string(200, 'x'), u""},
                {std::string("\x80", 1) + std::string(128, 'x'), u""},
                {std::string("\x7F", 1) + std::string(127, 'x'), std::u16string(127, u'x')}};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text;
        text.Create();
        text.AddPascalString(row.pascal.c_str());
        EXPECT_EQ(Units(text), row.expected);
        text.AddPascalString(nullptr);
        EXPECT_EQ(Units(text), row.expected);
        text.Dispose();
    }
}

TEST(Text, Appends_EachSource_AddsToPresentContents) {
    MemoryCheck check;
    ZR_Text text = MakeText(u"0"), other = MakeText(u"1"), empty;
    empty.Create();
    text.AddText(&other);
    text.AddUniBuffer(U(u"23"), 1);
    text.AddUnichar(U(u"3"));
    PA_Unistring record = {1, const_cast<unsigned short*>(U(u"4")), nullptr};
    text.AddUnistring(&record);
    text.AddBuffer(B("\xE9z"), 1);
    text.AddString(B("\xE8"));
    text.AddUnit(0xFFFF);
    EXPECT_EQ(Units(text), u"01234\u00E9\u00E8\xFFFF");
    std::u16string before = Units(text);
    text.AddText(&empty);
    text.AddText(nullptr);
    text.AddUniBuffer(nullptr, 4);
    text.AddUniBuffer(U(u"x"), -1);
    text.AddUnichar(nullptr);
    text.AddUnistring(nullptr);
    text.AddBuffer(nullptr, 1);
    text.AddBuffer(B("x"), -1);
    text.AddString(static_cast<const char*>(nullptr));
    text.AddUTF8String(static_cast<const char*>(nullptr));
    EXPECT_EQ(Units(text), before);
    text.AddText(&text);
    EXPECT_EQ(Units(text), before + before);
    text.Dispose();
    other.Dispose();
}

TEST(Text, Appends_ExactFit_CapacityIsCountAndGrowStep) {
    MemoryCheck check;
    ZR_Text text;
    text.Create();
    for (long i = 1; i <= 500; ++i) {
        text.AddUnit('x');
        ASSERT_EQ(text.capacity, i);
    }
    text.growStep = 100;
    text.AddUnit('x');
    EXPECT_EQ(text.capacity, 601);
    text.Dispose();
}

// Reading out ------------------------------------------------------------------------------------------------------

TEST(Text, GetUniCharPtr_Unit_BehindTheLastIsZero) {
    MemoryCheck check;
    ZR_Text text;
    text.Create();
    ASSERT_NE(text.GetUniCharPtr(), nullptr);
    EXPECT_EQ(text.GetUniCharPtr()[0], 0);
    EXPECT_EQ(text.count, 0);
    text.AddString("ab");
    EXPECT_EQ(ZR_UniStringLength(text.GetUniCharPtr()), 2);
    EXPECT_EQ(text.count, 2);
    EXPECT_EQ(text.capacity, 3);
    text.Dispose();
}

TEST(Text, GetCStringPtr_UnitsFrom256_BecomeBlanks) {
    MemoryCheck check;
    ZR_Text text = MakeText(u"a\u20AC\u00E9\u0100z");
    EXPECT_STREQ(text.GetCStringPtr(), "a \xE9 z");
    text.AddString("!");
    EXPECT_STREQ(text.cString, "a \xE9 z");
    EXPECT_STREQ(text.GetCStringPtr(), "a \xE9 z!");
    text.Dispose();
    EXPECT_STREQ(text.GetCStringPtr(), "");
    text.Dispose();
}

TEST(Text, ReadUniBuffer_FirstWantedRoom_CopiesAndTerminates) {
    static const struct {
        long first, wanted, room;
        bool terminate;
        std::u16string expected;  // 8 units, ~ is untouched
    } rows[] = {
        {0, 3, 8, false, u"abc~~~~~"},
        {0, 5, 8, true, std::u16string(u"abcde\0~~", 8)},
        {0, 5, 4, true, std::u16string(u"abc\0~~~~", 8)},
        {0, 5, 4, false, u"abcd~~~~"},
        {2, 2, 8, true, std::u16string(u"cd~~\0~~~", 8)},  // Required: the zero stands at first + number
        {3, 2, 8, true, std::u16string(u"de~~~\0~~", 8)},
        {4, 1, 4, true, std::u16string(u"e\0~~~~~~", 8)},    // guard: index 5 is outside the destination
        {3, 4, 8, false, std::u16string(u"de\0\0~~~~", 8)},  // guard: units behind the end read as 0
        {9, 2, 8, false, std::u16string(u"\0\0~~~~~~", 8)},
        {-1, 2, 8, false, std::u16string(u"\0\0~~~~~~", 8)},
        {LONG_MAX, 2, 8, true, std::u16string(u"\0\0\0~~~~~", 8)},
        {LONG_MIN, 2, 8, true, std::u16string(u"\0\0\0~~~~~", 8)},
        {0, -3, 8, false, u"~~~~~~~~"},
        {0, -3, 8, true, std::u16string(u"\0~~~~~~~", 8)},
        {0, 3, 0, true, u"~~~~~~~~"},
        {0, 3, -1, false, u"~~~~~~~~"},
    };
    ZR_Text text = MakeText(u"abcde");
    int index = 0;
    for (const auto& row : rows) {
        std::u16string out(8, u'~');
        text.ReadUniBuffer(reinterpret_cast<unsigned short*>(out.data()), row.first, row.wanted, row.room,
                           row.terminate);
        EXPECT_EQ(out, row.expected) << "row " << index;
        ++index;
    }
    text.ReadUniBuffer(nullptr, 0, 1, 1, true);
    text.Dispose();
}

TEST(Text, ReadBuffer_BehindTheEnd_IsZero) {
    static const struct {
        long first, n;
        std::string expected;
    } rows[] = {{0, 2, std::string("a\xAC~~", 4)},
                {1, 1, "\xAC~~~"},
                {2, 3, std::string("c\0\0~", 4)},
                {5, 1, std::string("\0~~~", 4)},
                {-1, 2, std::string("\0\0~~", 4)},
                {LONG_MIN, 1, std::string("\0~~~", 4)},
                {0, 0, "~~~~"},
                {0, -2, "~~~~"}};
    ZR_Text text = MakeText(u"a\u20ACc");
    for (const auto& row : rows) {
        std::string out(4, '~');
        text.ReadBuffer(out.data(), row.first, row.n);
        EXPECT_EQ(out, row.expected) << row.first << " " << row.n;
    }
    text.Dispose();
}

TEST(Text, ReadAsString_ToCString_ToWString_CutAndTerminate) {
    static const struct {
        long size;
        const char *asString, *toCString;
    } rows[] = {{-1, "", "~"},    {0, "", "~"},      {1, "a", ""},      {2, "ab", "a"},
                {3, "abc", "ab"}, {4, "abc", "abc"}, {99, "abc", "abc"}};
    ZR_Text text = MakeText(u"abc");
    for (const auto& row : rows) {
        char bytes[8] = "~", more[8] = "~";
        unsigned short units[8] = {'~'};
        text.ReadAsString(reinterpret_cast<unsigned char*>(bytes), row.size);
        EXPECT_STREQ(bytes, row.asString) << row.size;
        text.ToCString(more, row.size);
        EXPECT_STREQ(more, row.toCString) << row.size;
        text.ToWString(units, row.size);
        ZR_Text read;
        read.Create(units);
        EXPECT_TRUE(read.Equal(row.toCString)) << row.size;
        read.Dispose();
    }
    text.Dispose();
    char bytes[2] = "~";
    text.ToCString(bytes, 2);
    EXPECT_STREQ(bytes, "");
}

// Editing ----------------------------------------------------------------------------------------------------------

TEST(Text, SetChar_Index_StaysWithinTheStorage) {
    MemoryCheck check;
    ZR_Text text = MakeText(u"abc");
    text.SetChar(0, 'x');
    text.SetChar(2, 'z');
    text.SetChar(3, '!');
    text.SetChar(-1, '!');
    text.SetChar(LONG_MAX, '!');
    EXPECT_EQ(Units(text), u"xbz");
    text.SetLength(2);
    text.SetChar(2, 'q');  // behind count, within the storage
    text.SetLength(3);
    EXPECT_EQ(Units(text), u"xbq");
    text.Dispose();
    text.SetChar(0, 'x');
    EXPECT_EQ(text.count, 0);
}

TEST(Text, Substring_Ends_AreInclusiveAndCutToCount) {
    static const struct {
        long from, to;
        std::u16string expected;
    } rows[] = {
        {0, 2, u"abc"},
        {1, 1, u"b"},
        {3, 3, u"d"},
        {2, 1, u"c"},  // to is raised to from
        {0, 4, std::u16string(u"abcd\0", 5)},
        {0, 99, std::u16string(u"abcd\0", 5)},  // Required: one unit more than the text has
        {4, 4, std::u16string(u"\0", 1)},
        {9, 9, std::u16string(u"\0", 1)},
        {-3, 1, u"ab"},
        {LONG_MIN, LONG_MAX, std::u16string(u"abcd\0", 5)},
    };
    for (bool terminated : {true, false}) {
        ZR_Text text = MakeText(u"abcd"), to;
        if (terminated) text.GetUniCharPtr();
        to.Create();
        for (const auto& row : rows) {
            text.Substring(&to, row.from, row.to);
            EXPECT_EQ(Units(to), row.expected) << row.from << " " << row.to << " " << terminated;
        }
        text.Dispose();
        to.Dispose();
    }
}

TEST(Text, Substring_ToCount_LastUnitIsWhateverStandsAtCount) {  // Required
    MemoryCheck check;
    ZR_Text text = MakeText(u"abcX"), to = MakeText(u"old"), empty;
    text.SetLength(3);
    text.Substring(&to, 0, 3);
    EXPECT_EQ(Units(to), u"abcX");
    empty.Create();
    empty.Substring(&to, 0, 0);
    EXPECT_EQ(Units(to), std::u16string(1, 0));  // guard: no storage, read as 0
    text.Substring(&text, 1, 2);                 // the destination is cleared first
    EXPECT_EQ(Units(text), u"a");
    text.Substring(nullptr, 0, 0);
    text.Dispose();
    to.Dispose();
}

TEST(Text, Insert_Positions_OpensGap) {
    static const struct {
        long position;
        std::u16string expected;
    } rows[] = {{0, u"XYabc"}, {1, u"aXYbc"}, {3, u"abcXY"}, {4, u"abc"}, {-1, u"abc"}};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(u"abc"), other = MakeText(u"XY"), bytes = MakeText(u"abc"), none;
        none.Create();
        text.Insert(row.position, &other);
        EXPECT_EQ(Units(text), row.expected) << row.position;
        bytes.Insert(row.position, "XY");
        EXPECT_EQ(Units(bytes), row.expected) << row.position;
        text.Insert(row.position, &none);
        text.Insert(row.position, static_cast<ZR_Text*>(nullptr));
        text.Insert(row.position, "");
        text.Insert(row.position, static_cast<const char*>(nullptr));
        EXPECT_EQ(Units(text), row.expected);
        for (ZR_Text* each : {&text, &other, &bytes}) each->Dispose();
    }
}

TEST(Text, Insert_BytesAndItself_WidenWithSignAndCopyFirst) {  // Required: sign extension
    MemoryCheck check;
    ZR_Text text = MakeText(u"ab");
    text.Insert(1, "\xE9");
    EXPECT_EQ(Units(text), u"a\xFFE9\x62");
    text.Insert(1, &text);
    EXPECT_EQ(Units(text), u"aa\xFFE9\x62\xFFE9\x62");
    text.Dispose();
}

TEST(Text, Delete_Ends_AreInclusive) {
    static const struct {
        long from, to;
        std::u16string expected;
    } rows[] = {
        {0, 0, u"bcd"},
        {1, 2, u"ad"},
        {0, 3, u""},
        {3, 3, u"abc"},
        {2, 4, u"a"},  // Required: to at count leaves from - 1 units
        {0, 4, u""},
        {4, 4, u"abc"},
        {0, 5, u"abcd"},
        {2, 99, u"abcd"},
        {2, 1, u"abcd"},
        {-1, 0, u"abcd"},
        {LONG_MIN, LONG_MAX, u"abcd"},
    };
    for (const auto& row : rows) {
        ZR_Text text = MakeText(u"abcd");
        text.Delete(row.from, row.to);
        EXPECT_EQ(Units(text), row.expected) << row.from << " " << row.to;
        EXPECT_EQ(text.capacity, 4);
        text.Dispose();
    }
    ZR_Text empty;
    empty.Create();
    empty.Delete(0, 0);
    EXPECT_EQ(empty.count, 0);
}

TEST(Text, Case_OnlyASCII_IsFolded) {
    ZR_Text text = MakeText(u"@AZ[`az{\u00E4\u00C4\u0141");
    text.Uppercase();
    EXPECT_EQ(Units(text), u"@AZ[`AZ{\u00E4\u00C4\u0141");
    text.Lowercase();
    EXPECT_EQ(Units(text), u"@az[`az{\u00E4\u00C4\u0141");
    text.Dispose();
    text.Uppercase();
    text.Lowercase();
    EXPECT_EQ(text.count, 0);
}

// Searching and comparing ------------------------------------------------------------------------------------------

TEST(Text, SearchForByte_Start_IsZeroBased) {
    static const struct {
        unsigned short unit;
        long start, expected;
    } rows[] = {{'a', 0, 0},  {'a', 1, 3},   {'a', 4, -1},  {'c', 0, 2},
                {'x', 0, -1}, {'a', 99, -1}, {'a', -1, -1}, {0x20AC, 0, 1}};
    ZR_Text text = MakeText(u"a\u20ACca");
    for (const auto& row : rows) EXPECT_EQ(text.SearchForByte(row.unit, row.start), row.expected) << row.start;
    EXPECT_EQ(text.CountChar('a'), 2);
    EXPECT_EQ(text.CountChar('x'), 0);
    text.Dispose();
    EXPECT_EQ(text.SearchForByte('a', 0), -1);
    EXPECT_EQ(text.CountChar('a'), 0);
}

TEST(Text, SearchForByteString_Patterns_CompareWithoutSign) {
    static const struct {
        const char* pattern;
        long start, expected;
    } rows[] = {{"ab", 0, 0},
                {"ab", 1, 3},
                {"ab", 3, 3},
                {"ab", 4, -1},
                {"", 0, -1},
                {nullptr, 0, -1},
                {"\xE9", 0, 2},
                {"abx", 0, -1},
                {"ab\xE9\x61\x62", 0, 0},
                {"ab\xE9\x61\x62z", 0, -1},
                {"ab", -1, -1},
                {"ab", LONG_MAX, -1}};
    ZR_Text text = MakeText(u"ab\u00E9\u0061b");
    for (const auto& row : rows) EXPECT_EQ(text.SearchForByteString(row.pattern, row.start), row.expected) << row.start;
    text.Dispose();
    EXPECT_EQ(text.SearchForByteString("a", 0), -1);
}

TEST(Text, Equal_TextsAndBuffers_FoldASCIIOnly) {
    static const struct {
        std::u16string left, right;
        bool exact, folded;
    } rows[] = {{u"", u"", true, true},
                {u"a", u"", false, false},
                {u"abc", u"abc", true, true},
                {u"aBc", u"AbC", false, true},
                {u"abc", u"abd", false, false},
                {u"\u00E4", u"\u00C4", false, false},
                {u"@", u"`", false, false},
                {u"[", u"{", false, false},
                {u"abc", u"ab", false, false},
                {u"\u0161", u"a", false, false},
                {u"z\u20AC", u"Z\u20AC", false, true}};
    for (const auto& row : rows) {
        ZR_Text left = MakeText(row.left), right = MakeText(row.right);
        EXPECT_EQ(left.Equal(&right), row.exact);
        EXPECT_EQ(left.Equal(&right, true), row.exact);
        EXPECT_EQ(left.Equal(&right, false), row.folded);
        EXPECT_EQ(right.Equal(&left, false), row.folded);
        EXPECT_EQ(left.Equal(right.Units(), right.count, false), row.folded);
        EXPECT_EQ(left.Equal(right.Units(), right.count, true), row.exact);
        left.Dispose();
        right.Dispose();
    }
    ZR_Text empty;
    empty.Create();
    EXPECT_FALSE(empty.Equal(static_cast<ZR_Text*>(nullptr)));
    EXPECT_TRUE(empty.Equal(static_cast<unsigned short*>(nullptr), 0, true));
    EXPECT_FALSE(empty.Equal(static_cast<unsigned short*>(nullptr), 1, true));
}

TEST(Text, EqualBytes_HighBytes_CompareWithoutSign) {
    static const struct {
        std::u16string text;
        const char* bytes;
        bool exact, folded;
    } rows[] = {{u"", "", true, true},           {u"", nullptr, true, true},       {u"abc", "abc", true, true},
                {u"abc", "ABC", false, true},    {u"abc", "ab", false, false},     {u"ab", "abc", false, false},
                {u"\u00E9", "\xE9", true, true}, {u"\xFFE9", "\xE9", false, false}};
    for (const auto& row : rows) {
        ZR_Text text = MakeText(row.text);
        EXPECT_EQ(text.Equal(row.bytes), row.exact);
        EXPECT_EQ(text.Equal(B(row.bytes), true), row.exact);
        EXPECT_EQ(text.Equal(row.bytes, false), row.folded);
        text.Dispose();
    }
}

TEST(Text, BeginsWithString_PatternsAndPositions) {
    static const struct {
        const char* pattern;
        long position;
        bool exact, folded;
    } rows[] = {{"", 1, false, false},        {nullptr, 1, false, false}, {"a", 1, true, true},
                {"abc", 1, true, true},       {"abcd", 1, false, false},  {"bc", 2, true, true},
                {"BC", 2, false, true},       {"c", 3, true, true},       {"cd", 3, false, false},
                {"c", 4, false, false},       {"ab", 0, false, false},    {"a", -5, false, false},
                {"ab", 10, false, false},  // guard: reads nothing behind the end
                {"a", LONG_MAX, false, false}};
    ZR_Text text = MakeText(u"abc");
    for (const auto& row : rows) {
        EXPECT_EQ(text.BeginsWithString(row.pattern, row.position), row.exact) << row.position;
        EXPECT_EQ(text.BeginsWithString(row.pattern, row.position, true), row.exact) << row.position;
        EXPECT_EQ(text.BeginsWithString(row.pattern, row.position, false), row.folded) << row.position;
        if (row.position == 1) { EXPECT_EQ(text.BeginsWithString(row.pattern), row.exact); }
    }
    text.Dispose();
    EXPECT_FALSE(text.BeginsWithString("a"));
    text = MakeText(u"\xFFE9");
    EXPECT_TRUE(text.BeginsWithString("\xE9"));  // Required: sign extension
    text.Dispose();
}

// Numbers to text --------------------------------------------------------------------------------------------------

TEST(Text, AddLong_NumToString_ExtremeValues) {
    static const struct {
        long value;
        const char* expected;
    } rows[] = {{0, "0"}, {7, "7"}, {-7, "-7"}, {LONG_MAX, "9223372036854775807"}, {LONG_MIN, "-9223372036854775808"}};
    for (const auto& row : rows) {
        ZR_Text text = MakeText(u"x");
        char out[24];
        ZR_NumToString(row.value, out);
        EXPECT_STREQ(out, row.expected);
        ZR_NumToZRText(row.value, &text);
        EXPECT_TRUE(text.Equal(row.expected)) << row.value;
        text.AddLong(row.value);
        EXPECT_TRUE(text.Equal((std::string(row.expected) + row.expected).c_str()));
        text.Dispose();
    }
    ZR_NumToString(1, nullptr);
    ZR_NumToZRText(1, nullptr);
}

TEST(Text, AddDouble_ValueDecimalsZeros) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    static const struct {
        double value;
        long decimals;
        bool keepZeros;
        const char* expected;
    } rows[] = {
        {1.5, 3, false, "1.5"},
        {1.05, 3, false, "1.05"},
        {2.0, 2, true, "2.00"},
        {2.0, 2, false, "2"},
        {0.0001, 2, true, "0"},  // Required: no point and no zeros
        {0, 2, true, "0.00"},
        {-0.0, 2, true, "0.00"},  // Required: a negative zero has no sign
        {-1.25, 1, false, "-1.2"},
        {-0.5, 2, false, "-0.5"},
        {1.5, 3, true, "1.5"},  // Required: a fraction never keeps trailing zeros
        {1.999, 2, false, "1.99"},
        {1.5, 0, true, "1"},
        {1.5, -1, true, "1"},
        {1.001, 3, false, "1"},  // Required: truncated, 1.001 is a little less
        {1.0625, 4, false, "1.0625"},
        {0.5, 18, false, "0.5"},
        {0.5, 25, false, "0.5"},
        {0.5, LONG_MAX, false, "0.5"},
        {1e15, 2, false, "1000000000000000"},
        {9223372036854774784.0, 1, true, "9223372036854774784.0"},
        {9223372036854775808.0, 1, true, "9223372036854775808.0"},
        {1e20, 2, false, "100000000000000000000"},
        {-1e20, 0, false, "-100000000000000000000"},
        {kInfinity, 2, false, "0"},
        {-kInfinity, 2, false, "-0"},
        {std::numeric_limits<double>::quiet_NaN(), 2, false, "0"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text;
        text.Create();
        text.AddDouble(row.value, row.decimals, row.keepZeros);
        EXPECT_STREQ(text.GetCStringPtr(), row.expected) << row.value << " " << row.decimals;
        text.Dispose();
    }
    ZR_Text text;
    text.Create();
    text.AddDouble(std::numeric_limits<double>::max(), 0, false);
    EXPECT_EQ(text.count, 309);
    text.Dispose();
    text.AddDouble(0, LONG_MAX, true);
    EXPECT_EQ(text.count, 1026);
    text.Dispose();
}

TEST(Text, RealToString_BelowOne_HasNoPointAndNoZeros) {  // Required
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    static const struct {
        double value;
        long decimals;
        const char* expected;
    } rows[] = {{0, 2, "0"},
                {1.25, 2, "1.25"},
                {0.25, 2, "25"},
                {0.05, 2, "5"},
                {-1.25, 2, "-1.25"},
                {1.125, 2, "1.13"},
                {1.5, 0, "2"},
                {2.4, 0, "2"},
                {0.001, 2, ""},
                {-0.001, 2, "-"},
                {0.005, 2, "1"},
                {12, 1, "12.0"},
                {0.5, 1, "5"},
                {123.456, -3, "123"},
                {1e30, 2, ""},
                {-1e30, 0, "-"},
                {1, 18, "1.000000000000000000"},
                {4, 18, "4.000000000000000000"},
                {5, 18, ""},
                {kInfinity, 3, ""},
                {1, LONG_MAX, ""},
                {5e-324, 400, ""}};
    for (const auto& row : rows) {
        char out[24];
        ZR_RealToString(row.value, row.decimals, out);
        EXPECT_STREQ(out, row.expected) << row.value << " " << row.decimals;
    }
    ZR_RealToString(1, 1, nullptr);
}

// Text to numbers --------------------------------------------------------------------------------------------------

TEST(Text, ReadLong_Positions_DigitsUntilTheFirstOtherUnit) {
    static const struct {
        std::u16string text;
        long position, expected;
    } rows[] = {{u"123", 1, 123},
                {u"123", 3, 3},
                {u"123", 4, 0},
                {u"123", 0, 0},
                {u"123", -1, 0},
                {u"12a3", 1, 12},
                {u"-3", 1, 0},
                {u" 3", 1, 0},
                {u"", 1, 0},
                {u"a42", 2, 42},
                {u"123", LONG_MAX, 0},
                {u"123", LONG_MIN, 0},
                {u"18446744073709551617", 1, 1}};  // overflow wraps
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text = MakeText(row.text);
        EXPECT_EQ(text.ReadLong(row.position), row.expected) << row.position;
        if (row.position > LONG_MIN) { EXPECT_EQ(text.ReadLongAsText(row.position - 1), row.expected) << row.position; }
        ZR_Text digits = text.ReadNumbers(row.position);
        if (row.text.size() < 20) { EXPECT_EQ(digits.ReadLong(1), row.expected) << row.position; }
        digits.Dispose();
        text.Dispose();
    }
    ZR_Text text = MakeText(u"a0042b");
    ZR_Text digits = text.ReadNumbers(2);
    EXPECT_EQ(Units(digits), u"0042");
    digits.Dispose();
    text.Dispose();
}

TEST(Text, ReadDouble_FourDecimals_ThreeInSinglePrecision) {  // Required
    static const struct {
        std::u16string text;
        long position;
        double expected;
    } rows[] = {{u"3", 1, 3},
                {u"3.1", 1, 3 + 1 / 10.0},
                {u"3.14159", 1, 3 + 1 / 10.0 + double(4 / 100.0F) + double(1 / 1000.0F) + double(5 / 10000.0F)},
                {u"-3", 1, 0},
                {u"1.2.3", 1, 1 + 2 / 10.0},
                {u".5", 1, 0.5},
                {u"5.", 1, 5},
                {u"1,5", 1, 1},
                {u"x12.5y", 2, 12.5},
                {u"12", 3, 0},
                {u"12", 0, 0},
                {u"", 1, 0},
                {u"12", LONG_MAX, 0},
                {u"12", LONG_MIN, 0}};
    for (const auto& row : rows) {
        ZR_Text text = MakeText(row.text);
        EXPECT_EQ(text.ReadDouble(row.position), row.expected) << row.position;
        text.Dispose();
    }
    ZR_Text pi = MakeText(u"3.14159");
    EXPECT_NEAR(pi.ReadDouble(1), 3.1415, 1e-8);
    EXPECT_NE(pi.ReadDouble(1), 3.1415);
    pi.Dispose();
}

// Zero-terminated and Pascal strings -------------------------------------------------------------------------------

TEST(Strings, Lengths_AndFind) {
    EXPECT_EQ(ZR_CStringLength("abc"), 3);
    EXPECT_EQ(ZR_CStringLength(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(ZR_CStringLength(B("ab")), 2);
    EXPECT_EQ(ZR_CStringLength(static_cast<const unsigned char*>(nullptr)), 0);
    EXPECT_EQ(ZR_UniStringLength(U(u"abcd")), 4);
    EXPECT_EQ(ZR_UniStringLength(nullptr), 0);
    EXPECT_EQ(ZR_FindInCString(B("ab\xE9"), 0xE9), 2);
    EXPECT_EQ(ZR_FindInCString(B("ab"), 'a'), 0);
    EXPECT_EQ(ZR_FindInCString(B("ab"), 'x'), -1);
    EXPECT_EQ(ZR_FindInCString(B("ab"), 0), -1);
    EXPECT_EQ(ZR_FindInCString(B(""), 'x'), -1);
    EXPECT_EQ(ZR_FindInCString(nullptr, 'x'), -1);
}

TEST(Strings, Pascal_ToAndFrom_LengthsCutOrSigned) {
    unsigned char pascal[300];
    std::string longOne(300, 'x');
    ZR_CstrToPstr("abc", pascal);
    EXPECT_EQ(memcmp(pascal, "\3abc", 4), 0);
    ZR_CstrToPstr(static_cast<const char*>(nullptr), pascal);
    EXPECT_EQ(pascal[0], 0);
    ZR_CstrToPstr(longOne.c_str(), pascal);
    EXPECT_EQ(pascal[0], 255);
    ZR_CstrToPstr("abcdef", pascal, 2);
    EXPECT_EQ(memcmp(pascal, "\2ab", 3), 0);
    ZR_CstrToPstr("abcdef", pascal, -1);
    EXPECT_EQ(pascal[0], 0);
    ZR_CstrToPstrWithMaxLen("abcdef", reinterpret_cast<char*>(pascal), 4);
    EXPECT_EQ(memcmp(pascal, "\4abcd", 5), 0);
    ZR_CstrToPstrWithMaxLen("ab", reinterpret_cast<char*>(pascal), 4);
    EXPECT_EQ(memcmp(pascal, "\2ab", 3), 0);
    ZR_CstrToPstrWithMaxLen("ab", reinterpret_cast<char*>(pascal), -4);
    EXPECT_EQ(pascal[0], 0);

    char out[300];
    ZR_PstrToCstr("\3abcd", out);
    EXPECT_STREQ(out, "abc");
    ZR_PstrToCstr(("\xC8" + longOne).c_str(), out);  // Required: 200 reads as negative
    EXPECT_STREQ(out, "");
    ZR_PstrToCstr(nullptr, out);
    EXPECT_STREQ(out, "");
}

TEST(Strings, StringCompare_Flag_IsCaseSensitivity) {
    EXPECT_TRUE(ZR_StringCompare("abc", "abc", true));
    EXPECT_FALSE(ZR_StringCompare("abc", "ABC", true));
    EXPECT_TRUE(ZR_StringCompare("abc", "ABC", false));
    EXPECT_FALSE(ZR_StringCompare("abc", "abd", false));
    EXPECT_TRUE(ZR_StringCompare(nullptr, nullptr, true));
    EXPECT_FALSE(ZR_StringCompare("", nullptr, true));
}
