#include <unistd.h>

#include <chrono>
#include <set>

#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using System = CommandTest;

TEST_F(System, Machine_Names_AreThoseOfTheSystem) {
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    EXPECT_EQ(ToUtf8(Run(483).text()), name);
    EXPECT_FALSE(Run(484).text().empty());
    EXPECT_EQ(Text(182), "\"Designer\"");
    Run(365, {L(0), L(0), L(0), L(0)});
    EXPECT_EQ(ShowAfter(1), "4");
    EXPECT_GT(After(2).integer() & 0xFF, 0);
    Run(365, {L(0)});
    EXPECT_EQ(ShowAfter(1), "4");
    EXPECT_EQ(Text(1572), "false");
    EXPECT_EQ(Text(1573), "false");
    const Value info = Run(1571);
    ASSERT_NE(info.object(), nullptr);
    EXPECT_EQ(ToUtf8(info.object()->get(u"machineName").text()), name);
    EXPECT_GT(info.object()->get(u"physicalMemory").number(), 0);
}

TEST_F(System, Folders_EndWithTheSeparator) {
    for (const Args& args : {Args{}, Args{1}, Args{15}, Args{99}, Args{"x"}}) {
        EXPECT_EQ(Run(487, args).text().back(), u'/');
        EXPECT_EQ(Run(485, args).text().back(), u'/');
    }
    EXPECT_EQ(Run(486).text().back(), u'/');
    EXPECT_TRUE(std::filesystem::is_directory(ToUtf8(Run(486).text())));
    EXPECT_EQ(ToUtf8(Run(485, {4}).text()), folder);
    EXPECT_EQ(ToUtf8(Run(485, {6, Star()}).text()), folder + "Resources/");
    EXPECT_EQ(ToUtf8(Run(489).text()), Path("Start.4dm"));
    EXPECT_EQ(Text(490), "\"\"");
    EXPECT_TRUE(std::filesystem::exists(ToUtf8(Run(491).text())));
}

class Release3 : public CommandTest {
    void Configure(Options& options) override {
        options.version = 0x1731;
        options.compiled = true;
        options.structurePath.clear();
        options.applicationPath = "/opt/app";
        options.locale = "de-DE";
    }
};

TEST_F(Release3, Application_Options_ShowInTheAnswers) {
    EXPECT_EQ(Text(493), "\"1731\"");
    EXPECT_EQ(Text(493, {Star()}), "\"F0011731\"");
    EXPECT_EQ(Text(493, {L(0), Star()}), "\"F0011731\"");
    EXPECT_GT(After(1).integer(), 0);
    EXPECT_EQ(Text(492), "true");
    EXPECT_EQ(Text(489), "\"\"");
    EXPECT_EQ(Text(491), "\"/opt/app\"");
    EXPECT_EQ(Text(1009), "\"de-DE\"");
    static const struct {
        int format;
        const char* text;
    } rows[] = {{0, "\",\""},  {1, "\".\""},  {13, "\".\""}, {14, "\":\""}, {15, "\"1\""},
                {16, "\"2\""}, {17, "\"3\""}, {99, "\"\""},  {-1, "\"\""}};
    for (const auto& row : rows) {
        Run(994, {row.format, ""});
        EXPECT_EQ(ShowAfter(2), row.text) << row.format;
    }
}

TEST_F(System, Formats_EnglishLocale_AsDocumented) {
    static const struct {
        int format;
        const char* text;
    } rows[] = {{0, "\".\""},  {1, "\",\""},  {2, "\"$\""},   {13, "\"/\""}, {15, "\"2\""},
                {16, "\"1\""}, {17, "\"3\""}, {18, "\"AM\""}, {19, "\"PM\""}};
    for (const auto& row : rows) {
        Run(994, {row.format, ""});
        EXPECT_EQ(ShowAfter(2), row.text) << row.format;
    }
    for (int format = 3; format <= 8; ++format) {
        Run(994, {format, ""});
        EXPECT_NE(ShowAfter(2), "\"\"") << format;
    }
    Run(994, {});
}

TEST_F(System, Application_Types_AreNumbers) {
    static const Row rows[] = {{494, {}, "0"},     {495, {}, "2"},     {492, {}, "false"}, {493, {}, "\"1800\""},
                               {714, {1}, "true"}, {1482, {}, "null"}, {788, {}, "\"\""}};
    EXPECT_ROWS(rows);
    for (int id : {543, 544, 545, 546, 547, 562, 563, 713}) EXPECT_EQ(Text(id), "false") << id;
    for (int id : {187, 188, 437, 439, 440, 441}) EXPECT_EQ(Text(id), "0") << id;
    for (int id : {438, 443}) {
        Run(id, {L(9), L(9), L(9), L(9)});
        EXPECT_EQ(ShowAfter(1), "0");
        EXPECT_EQ(ShowAfter(4), "0");
    }
    Run(789, {Texts({"old"})});
    EXPECT_EQ(ShowAfter(1), "[]");
    Run(847, {Longints({1}), Texts({"old"})});
    EXPECT_EQ(ShowAfter(2), "[]");
    Run(1001, {Texts({"old"})});
    EXPECT_EQ(ShowAfter(1), "[]");
    Run(673, {"https://example.org"});
    EXPECT_FALSE(OK());
}

TEST_F(System, DatabaseParameters_SetAndGet_RoundTrip) {
    EXPECT_EQ(Text(643, {102}), "45");
    EXPECT_EQ(Text(643, {9999}), "-1");
    Run(642, {102, 10});
    EXPECT_EQ(Text(643, {102}), "10");
    Run(642, {9999, "text"});
    Run(643, {9999, ""});
    EXPECT_EQ(ShowAfter(2), "\"text\"");
    Run(642, {});
}

TEST_F(System, Uuid_TwoCalls_DifferAndHaveTheirShape) {
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        const std::string text = ToUtf8(Run(1066).text());
        ASSERT_EQ(text.size(), 32u);
        EXPECT_EQ(text.find_first_not_of("0123456789ABCDEF"), std::string::npos);
        EXPECT_EQ(text[12], '4');
        seen.insert(text);
    }
    EXPECT_EQ(seen.size(), 100u);
}

TEST_F(System, Launch_Program_TakesInputAndGivesBothOutputs) {
    Run(811, {"cat", "häl lo", "", ""});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(3), "\"häl lo\"");
    Run(811, {R"(sh -c "echo out; echo err >&2; exit 3")", "", "", Hex(""), L(0)});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(3), "\"out\n\"");
    EXPECT_EQ(ShowAfter(4), "<6572720a>");
    EXPECT_GT(After(5).integer(), 0);
    Run(811, {"printf %s|%s 'a b' c\\ d", "", ""});
    EXPECT_EQ(ShowAfter(3), "\"a b|c d\"");
    for (const Args& wrong : {Args{}, Args{""}, Args{"/no/such/program"}, Args{"   "}, Args{5}}) {
        Run(811, wrong);
        EXPECT_FALSE(OK());
    }
}

TEST_F(System, Launch_LargeInputAndDeafProgram_DoNotBlock) {
    const std::string large(3000000, 'x');
    Run(811, {"cat", large, ""});
    EXPECT_EQ(After(3).text().size(), large.size());
    Run(811, {"true", large, ""});
    EXPECT_TRUE(OK());
}

TEST_F(System, Launch_EnvironmentAndFolder_AreThoseThatWereSet) {
    Run(812, {"ZR_TEST_NAME", "value"});
    EXPECT_TRUE(OK());
    Run(812, {"_4D_OPTION_CURRENT_DIRECTORY", "/usr"});
    Run(811, {"sh -c 'echo $ZR_TEST_NAME; pwd'", "", ""});
    EXPECT_EQ(ShowAfter(3), "\"value\n/usr\n\"");
    Run(811, {"pwd", "", ""});
    EXPECT_NE(ShowAfter(3), "\"/usr\n\"") << "options hold for one call";
    Run(812, {"A=B", "x"});
    EXPECT_FALSE(OK());
    Run(812, {"", "x"});
    EXPECT_FALSE(OK());
    Run(812, {"_4D_OPTION_BLOCKING_EXTERNAL_PROCESS", "false"});
    const auto start = std::chrono::steady_clock::now();
    Run(811, {"sleep 2"});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
}

TEST_F(System, Launch_Interrupted_EndsTheProgram) {
    interrupt = true;
    const auto start = std::chrono::steady_clock::now();
    Run(811, {"sleep 30", "", ""});
    EXPECT_FALSE(OK());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

class LoggingSystem : public CommandTest {
  protected:
    std::vector<std::string> logged;
    void Configure(Options& options) override {
        options.log = [this](std::u16string_view line) { logged.push_back(ToUtf8(line)); };
    }
};

TEST_F(LoggingSystem, LogEvent_WithAndWithoutOutput_ReachesTheHost) {
    Run(667, {0, "first", 0});
    Run(667, {"second"});
    EXPECT_EQ(logged, (std::vector<std::string>{"first", "second"}));
}

}  // namespace
}  // namespace zrhost::test
