#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using TextCommands = CommandTest;

TEST_F(TextCommands, Substring_Bounds_AsDocumented) {
    static const Row rows[] = {
        {12, {"08/04/62", 4, 2}, "\"04\""},
        {12, {"Emergency", 1, 6}, "\"Emerge\""},
        {12, {"var", 2}, "\"ar\""},
        {12, {"abc", 4}, "\"\""},
        {12, {"abc", 3, 100}, "\"c\""},
        {12, {"abc", 0}, "\"abc\""},
        {12, {"abc", -5, 2}, "\"ab\""},
        {12, {"abc", 2, 0}, "\"\""},
        {12, {"abc", 2, -1}, "\"\""},
        {12, {"", 1}, "\"\""},
        {12, {"abc", 1e300}, "\"\""},
        {12, {}, "\"\""},
        {12, {5, 1}, "\"\""},
        {12, {"añb", 2, 1}, "\"ñ\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, Position_StartStarAndLength_AsDocumented) {
    static const Row rows[] = {
        {15, {"ll", "Willow"}, "3"},
        {15, {"zz", "Willow"}, "0"},
        {15, {"DAY", "Today is the first day"}, "3"},
        {15, {"DAY", "Today", Star()}, "0"},
        {15, {"day", "Today", Star()}, "3"},
        {15, {"day", "Today a day", 4}, "9"},
        {15, {"day", "Today a day", 9, Star()}, "9"},
        {15, {"day", "Today", 6}, "0"},
        {15, {"", "Today"}, "0"},
        {15, {"t", "Today", -3}, "1"},
        {15, {"e", "é"}, "1"},
        {15, {"e", "é", Star()}, "0"},
        {15, {"a@", "xa@b"}, "2"},
        {15, {"a@", "xab"}, "0"},
        {15, {"a", "", 1}, "0"},
        {15, {}, "0"},
        {15, {1, 2}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, Position_LengthVariable_ReceivesWhatWasFound) {
    EXPECT_EQ(Text(15, {"ss", "Straße", 1, L(9)}), "5");
    EXPECT_EQ(ShowAfter(4), "1");
    EXPECT_EQ(Text(15, {"zz", "Straße", 1, L(9)}), "0");
    EXPECT_EQ(ShowAfter(4), "0");
    EXPECT_EQ(Text(15, {"ra", "Strasse", 1, L(9), Star()}), "3");
    EXPECT_EQ(ShowAfter(4), "2");
}

TEST_F(TextCommands, InsertDeleteChange_Bounds_AsDocumented) {
    static const Row rows[] = {
        {231, {"The tree", " green", 4}, "\"The green tree\""},
        {231, {"abc", "x", 0}, "\"xabc\""},
        {231, {"abc", "x", 99}, "\"abcx\""},
        {231, {"abc", "", 2}, "\"abc\""},
        {232, {"Lamborghini", 6, 6}, "\"Lambo\""},
        {232, {"Indentation", 6, 2}, "\"Indention\""},
        {232, {"Lamborghini", 3, 32000}, "\"La\""},
        {232, {"abc", 0, 1}, "\"bc\""},
        {232, {"abc", 4, 1}, "\"abc\""},
        {232, {"abc", 1, 0}, "\"abc\""},
        {232, {"", 1, 1}, "\"\""},
        {234, {"Acme", "CME", 2}, "\"ACME\""},
        {234, {"November", "Dec", 1}, "\"December\""},
        {234, {"abc", "xyz", 3}, "\"abx\""},
        {234, {"abc", "x", 0}, "\"abc\""},
        {234, {"abc", "x", 4}, "\"abc\""},
        {234, {"abc", "", 2}, "\"abc\""},
        {234, {}, "\"\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, ReplaceString_CountAndStar_AsDocumented) {
    static const Row rows[] = {
        {233, {"The winter dog", "dog", "cat"}, "\"The winter cat\""},
        {233, {"aaaa", "a", "b", 2}, "\"bbaa\""},
        {233, {"aaaa", "a", "", 0}, "\"aaaa\""},
        {233, {"aaaa", "a", ""}, "\"\""},
        {233, {"aXa", "A", "b"}, "\"bXb\""},
        {233, {"aXA", "A", "b", Star()}, "\"aXb\""},
        {233, {"aXAA", "A", "b", 1, Star()}, "\"aXbA\""},
        {233, {"aaa", "a", "aa"}, "\"aaaaaa\""},
        {233, {"été", "ete", "x"}, "\"x\""},
        {233, {"abc", "", "x"}, "\"abc\""},
        {233, {"abc", "z", "x"}, "\"abc\""},
        {233, {"", "a", "x"}, "\"\""},
        {233, {"abc", "b", "x", -1}, "\"abc\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, UpperAndLower_AccentsAndStar_AsDocumented) {
    static const Row rows[] = {
        {13, {"hélène"}, "\"HELENE\""},
        {13, {"hélène", Star()}, "\"HÉLÈNE\""},
        {13, {"a1ß"}, "\"A1SS\""},
        {14, {"DÉJÀ VU"}, "\"deja vu\""},
        {14, {"DÉJÀ VU", Star()}, "\"déjà vu\""},
        {13, {}, "\"\""},
        {14, {5}, "\"\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, LengthCharCode_Edges_AsDocumented) {
    static const Row rows[] = {
        {16, {"Topaz"}, "5"}, {16, {""}, "0"},      {16, {}, "0"},     {16, {"\xF0\x9F\x98\x80"}, "2"},
        {90, {65}, "\"A\""},  {90, {233}, "\"é\""}, {91, {"A"}, "65"}, {91, {""}, "0"},
        {91, {"éa"}, "233"},  {91, {3}, "0"},
    };
    EXPECT_ROWS(rows);
    EXPECT_EQ(Run(90, {0}).text().size(), 1u);
}

TEST_F(TextCommands, String_KindsWithoutFormat_AsDocumented) {
    static const Row rows[] = {
        {10, {32768}, "\"32768\""},        {10, {-1.5}, "\"-1.5\""},   {10, {L(7)}, "\"7\""},
        {10, {true}, "\"True\""},          {10, {false}, "\"False\""}, {10, {"text"}, "\"text\""},
        {10, {Value::Null()}, "\"null\""}, {10, {Arg()}, "\"\""},      {10, {}, "\"\""},
        {10, {H(3661)}, "\"01:01:01\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, String_Formats_AsDocumented) {
    static const Row rows[] = {
        {10, {12345.6, "###,##0.00"}, "\"12,345.60\""},
        {10, {L(1), "Yes;;No"}, "\"Yes\""},
        {10, {L(0), "Yes;;No"}, "\"No\""},
        {10, {true, "Yes;No"}, "\"Yes\""},
        {10, {false, "Yes;No"}, "\"No\""},
        {10, {false, "Yes"}, "\"\""},
        {10, {D(2024, 2, 29), 8}, "\"2024-02-29T00:00:00\""},
        {10, {D(2024, 2, 29), 7}, "\"02/29/2024\""},
        {10, {D(2024, 2, 29), 8, H(48600)}, "\"2024-02-29T13:30:00\""},
        {10, {Value(Date{}), 107}, "\"\""},
        {10, {H(48600), 1}, "\"13:30:00\""},
        {10, {H(48600), 2}, "\"13:30\""},
        {10, {H(48600), 5}, "\"1:30 PM\""},
        {10, {H(0), 101}, "\"\""},
        {10, {H(60), 100}, "\"00:01:00\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, Num_TextsBooleansBases_AsDocumented) {
    static const Row rows[] = {
        {11, {"ABCD"}, "0"},       {11, {"A1B2C3"}, "123"},
        {11, {"123"}, "123"},      {11, {"123.4"}, "123.4"},
        {11, {"-123"}, "-123"},    {11, {"-123e2"}, "-12300"},
        {11, {"123-456"}, "123"},  {11, {"-9"}, "-9"},
        {11, {"12e-1-5"}, "1.2"},  {11, {"- 7"}, "-7"},
        {11, {true}, "1"},         {11, {false}, "0"},
        {11, {""}, "0"},           {11, {}, "0"},
        {11, {"1,5", ","}, "1.5"}, {11, {"1.234,5", ","}, "1234.5"},
        {11, {7.5}, "7.5"},        {11, {"FF", 16}, "255"},
        {11, {"0xff", 16}, "255"}, {11, {"-101", 2}, "-5"},
        {11, {"12", 99}, "0"},     {11, {"19", 8}, "1"},
        {11, {"zz", 36}, "1295"},  {11, {Value::Null()}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, SplitString_Options_AsDocumented) {
    static const Row rows[] = {
        {1554, {"a;b;;c", ";"}, R"(["a","b","","c"])"},
        {1554, {"a; b;;c ", ";", 3}, R"(["a","b","c"])"},
        {1554, {"a; b;;c ", ";", 2}, R"(["a","b","","c"])"},
        {1554, {"abc", ""}, R"(["a","b","c"])"},
        {1554, {"", ";"}, R"([""])"},
        {1554, {"", ";", 1}, "[]"},
        {1554, {"aXXb", "XX"}, R"(["a","b"])"},
        {1554, {}, "[]"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, Trim_BothEnds_RemovesBlanks) {
    static const Row rows[] = {
        {1853, {" \t a b \n"}, "\"a b\""}, {1854, {"  a "}, "\"a \""}, {1855, {" a  "}, "\" a\""},
        {1853, {"   "}, "\"\""},           {1853, {}, "\"\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(TextCommands, CompareStrings_Order_AsTheLanguage) {
    EXPECT_EQ(Text(1756, {"a", "b"}), "-1");
    EXPECT_EQ(Text(1756, {"É", "e"}), "0");
    EXPECT_EQ(Text(1756, {"b", "A"}), "1");
    EXPECT_EQ(Text(1756, {"a", "b", 4}), "undefined");
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_COMMAND);
}

TEST_F(TextCommands, Charsets_NameNumberAndUnknown_SetOK) {
    EXPECT_EQ(Text(1012, {B("caf\xC3\xA9"), "UTF-8"}), "\"café\"");
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(1012, {B("caf\xE9"), "ISO-8859-1"}), "\"café\"");
    EXPECT_EQ(Text(1012, {B("caf\xE9"), "no such charset"}), "\"\"");
    EXPECT_FALSE(OK());
    Run(1011, {"café", "UTF-8", Arg()});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(3), "<636166c3a9>");
    Run(1011, {"é", "ISO-8859-1", B("old")});
    EXPECT_EQ(ShowAfter(3), "<e9>");
    Run(1011, {"é", "no such charset", B("a")});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(3), "<61>");
    EXPECT_EQ(Text(1012, {}), "\"\"");
}

TEST_F(TextCommands, Keywords_Words_ListedOnceWithStar) {
    Run(1141, {"The cat's hat, the HAT 42", Arg()});
    EXPECT_EQ(ShowAfter(2), R"(["The", "cat's", "hat", "the", "HAT", "42"])");
    Run(1141, {"The hat, the HAT", Arg(), Star()});
    EXPECT_EQ(ShowAfter(2), R"(["The", "hat"])");
    Run(1141, {"", Texts({"old"})});
    EXPECT_EQ(ShowAfter(2), "[]");
}

TEST_F(TextCommands, LocalizedString_NoResources_EmptyAndNotOK) {
    host->setOK(true);
    EXPECT_EQ(Text(991, {"Key"}), "\"\"");
    EXPECT_FALSE(OK());
}

class FrenchCommands : public CommandTest {
    void Configure(Options& options) override { options.language = "fr"; }
};

TEST_F(FrenchCommands, StringOfBoolean_FrenchHost_IsFrench) { EXPECT_EQ(Text(10, {true}), "\"Vrai\""); }

}  // namespace
}  // namespace zrhost::test
