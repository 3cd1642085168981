// Options of the tool: what the table of commands gives, and what each option of zr run does.
#include <gtest/gtest.h>

#include "tests/support/RunTool.h"

namespace {

using zrtest::RunTool;
using zrtest::TempFolder;
using zrtest::ToolResult;
using Arguments = std::vector<std::string>;

constexpr int kOk = 0, kCodeFailed = 1, kWrongUsage = 2;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

ToolResult RunMethod(const TempFolder& folder, const std::string& code, Arguments options = {}) {
    options.insert(options.begin(), "run");
    options.push_back(folder.Write("started.4dm", code));
    return RunTool(options);
}

void ExpectRefusal(const ToolResult& run, const std::string& sentence) {
    EXPECT_EQ(run.status, kWrongUsage);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "zr: " + sentence + "\n");
}

// Words -------------------------------------------------------------------------------------------------------------

TEST(Options, WrongWord_IsToldWithTheNearestRightOne) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "");
    const struct {
        Arguments arguments;
        std::string sentence;
    } rows[] = {
        {{"rnu", file}, "there is no command \"rnu\", did you mean run?"},
        {{"--vresion"}, "unknown option --vresion; see zr --help"},
        {{"run", "--jsn", file}, "unknown option --jsn, did you mean --json?"},
        {{"run", "--max-secnods=1", file}, "unknown option --max-secnods, did you mean --max-seconds?"},
        {{"run", "-x", file}, "unknown option -x; see zr run --help"},
        {{"run", "--json=1", file}, "--json takes no value; see zr run --help"},
        {{"run", file, "--method"}, "--method needs a value (NAME); see zr run --help"},
        {{"run", file, "-m"}, "-m needs a value (NAME); see zr run --help"},
        {{"run", file, "--json", "--json"}, "--json is given twice"},
        {{"run"}, "zr run needs FILE; see zr run --help"},
        {{"run", file, "b.4dm"}, "too many arguments: \"b.4dm\"; see zr run --help"},
        {{"run", file, "--max-seconds", "0"}, "--max-seconds needs a number above 0, not \"0\""},
        {{"run", file, "--max-seconds", "inf"}, "--max-seconds needs a number above 0, not \"inf\""},
        {{"run", file, "--max-depth", "-1"}, "--max-depth needs a whole number from 1, not \"-1\""},
        {{"run", file, "--max-depth", "2.5"}, "--max-depth needs a whole number from 1, not \"2.5\""},
        {{"run", file, "--language", "de"}, "--language is en or fr, not \"de\""},
        {{"run", file, "--locale", "../x"}, "--locale needs a language and country such as en-US, not \"../x\""},
        {{"run", file, "--host-version", "v18"},
         "--host-version needs four hexadecimal digits such as 0x1800, not \"v18\""},
        {{"run", file, "--db", "data.db"}, "--db is not available yet: the database comes with a later version"},
        {{"run", file, "--db=data.db"}, "--db is not available yet: the database comes with a later version"},
        {{"run", file, "--allow", "ALART"}, "there is no command \"ALART\" of the language, did you mean \"ALERT\"?"},
        {{"run", file, "--deny", "9999"}, "there is no command \"9999\"; zr commands lists them"},
        {{"run", file, "--set", "a-b=1"}, "--set: \"a-b\" is not the name of a variable"},
        {{"run", file, "--set", "1=1"}, "--set: \"1\" is not the name of a variable"},
        {{"run", file, "--project", folder.Path("none")},
         "cannot read " + folder.Path("none") + ": No such file or directory"},
        {{"run", file, "--project", file}, file + " is not a folder"},
        {{"tokenize", file}, "zr tokenize needs -o FILE or --list"},
        {{"help", "rnu"}, "there is no command \"rnu\"; see zr --help"},
        {{"completion", "fish"}, "there is completion for bash alone"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sentence);
        ExpectRefusal(RunTool(row.arguments), row.sentence);
    }
}

TEST(Options, ControlCharactersInAName_AreShownInWords) {
    ExpectRefusal(RunTool({"run", "a\n\x1b[31mb"}), "cannot read a\\n\\x1B[31mb: No such file or directory");
}

TEST(Options, ShortAndAttachedForms_AreTheSame) {
    TempFolder folder;
    folder.Write("other.4dm", "ALERT(\"other \"+String($x))\n");
    const std::string file = folder.Write("a.4dm", "ALERT(\"started\")\n");
    for (const Arguments& options : {Arguments{"--method", "other", "--set", "$x=1"},
                                     {"--method=other", "--set=$x=1"},
                                     {"-m", "other", "-s", "$x=1"},
                                     {"-mother", "-s$x=1"}}) {
        Arguments arguments = {"run", file};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(RunTool(arguments).out, "other 1\n") << options[0];
    }
}

TEST(Options, DoubleDash_EndsTheOptions) {
    ExpectRefusal(RunTool({"run", "--", "--json"}), "cannot read --json: No such file or directory");
}

TEST(Options, HelpAndManualAndCompletion_NameEveryOption) {
    const std::string manual = RunTool({"manual"}).out, completion = RunTool({"completion", "bash"}).out;
    EXPECT_TRUE(Has(manual, ".SH SYNOPSIS"));
    for (const char* command : {"run", "tokenize", "commands", "draw", "text", "help", "completion", "manual"}) {
        const ToolResult help = RunTool({command, "--help"});
        EXPECT_EQ(help.status, kOk);
        EXPECT_EQ(RunTool({"help", command}).out, help.out) << command;
        EXPECT_FALSE(Has(help.out, "--db")) << "an option that is refused is not offered";
        for (size_t at = help.out.find("  --"); at != std::string::npos; at = help.out.find("  --", at + 1)) {
            const std::string option = help.out.substr(at + 2, help.out.find_first_of(" \n", at + 4) - at - 2);
            EXPECT_TRUE(Has(completion, option)) << option;
            std::string roff;
            for (char c : option) roff += c == '-' ? std::string("\\-") : std::string(1, c);
            EXPECT_TRUE(option == "--help" || Has(manual, roff)) << option;
        }
        for (size_t at = 0, end; at < help.out.size(); at = end + 1) {
            end = help.out.find('\n', at);
            EXPECT_LE(end - at, 80U) << help.out.substr(at, end - at);
        }
    }
}

TEST(Options, Completion_OffersCommandsOptionsWordsAndFiles) {
    TempFolder folder;
    folder.Write("zr.bash", RunTool({"completion", "bash"}).out);
    folder.Write("a.4dm", "");
    folder.Write("b.txt", "");
    folder.Write("inner/c.4dm", "");
    const struct {
        const char* line;
        const char* offered;
    } rows[] = {{"zr to", "tokenize"},           {"zr run --max-s", "--max-seconds"},
                {"zr run ", "a.4dm inner"},      {"zr run a.4dm --language ", "en fr"},
                {"zr help comm", "commands"},    {"zr commands --s", "--supported"},
                {"zr run --project i", "inner"}, {"zr completion ", "bash"}};
    for (const auto& row : rows) {
        const std::string script = "cd '" + folder.Path("") + "'; . ./zr.bash; line='" + row.line +
                                   "'; read -ra COMP_WORDS <<<\"$line\"; [[ $line == *' ' ]] && COMP_WORDS+=(''); "
                                   "COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _zr; echo ${COMPREPLY[@]}";
        const std::string file = folder.Write("ask.sh", script);
        FILE* bash = popen(("bash " + file).c_str(), "r");
        char answer[256] = "";
        ASSERT_NE(fgets(answer, sizeof answer, bash), nullptr);
        pclose(bash);
        EXPECT_EQ(std::string(answer), std::string(row.offered) + "\n") << row.line;
    }
}

// Examples ----------------------------------------------------------------------------------------------------------

TEST(Examples, Tour_RunsToItsEnd) {
    const ToolResult run = RunTool({"run", ZR_SOURCE_DIR "/examples/tour.4dm"});
    EXPECT_EQ(run.status, kOk);
    EXPECT_EQ(run.err, "");
    for (const char* line :
         {"ADA begins with A and reads adA from behind.", "2+3*4 is 20, 2+(3*4) is 14",
          "A thousand days later it was Saturday, April 15, 1972.", "In their order: Mercury Venus Earth Mars",
          "Luna circles Earth and measures 3474.8 km across.", "From 27 down to 1 in 111 steps.",
          "From 9 to 15: Fizz Buzz 11 Fizz 13 14 Fizz buzz", "10! is 3628800", "In the basket: apples, pears, plums",
          "84/0 is not a number"})
        EXPECT_TRUE(Has(run.out, std::string("\n") + line + "\n")) << line;
}

TEST(Examples, Oops_ShowsAnErrorWithItsCalls) {
    const std::string folder = ZR_SOURCE_DIR "/examples/";
    const ToolResult run = RunTool({"run", folder + "oops.4dm"});
    EXPECT_EQ(run.status, kCodeFailed);
    EXPECT_EQ(run.err, folder + "Average of nothing.4dm:3: error -2: Division by zero\n  3 | $0:=100/$count\n" +
                           "  called from " + folder + "oops.4dm:3\n");
}

// --set -------------------------------------------------------------------------------------------------------------

TEST(Set, Value_TellsTheKind) {
    TempFolder folder;
    const struct {
        const char* value;
        const char* kindAndValue;
    } rows[] = {
        {"5", "\"kind\":1,\"value\":5.0"},
        {"-0.25", "\"kind\":1,\"value\":-0.25"},
        {"+3", "\"kind\":1,\"value\":3.0"},
        {"1e3", "\"kind\":1,\"value\":1000.0"},
        {"1e999", "\"kind\":33,\"value\":\"1e999\""},
        {"0x10", "\"kind\":33,\"value\":\"0x10\""},
        {"nan", "\"kind\":33,\"value\":\"nan\""},
        {"", "\"kind\":33,\"value\":\"\""},
        {"true", "\"kind\":6,\"value\":true"},
        {"false", "\"kind\":6,\"value\":false"},
        {"2024-02-29", "\"kind\":4,\"value\":\"2024-02-29\""},
        {"2023-02-29", "\"kind\":33,\"value\":\"2023-02-29\""},
        {"2024-13-01", "\"kind\":33,\"value\":\"2024-13-01\""},
        {"\"5\"", "\"kind\":33,\"value\":\"5\""},
        {"\"true\"", "\"kind\":33,\"value\":\"true\""},
        {"\"", "\"kind\":33,\"value\":\"\\\"\""},
    };
    for (const auto& row : rows) {
        const ToolResult run = RunMethod(folder, "", {"--json", "--set", std::string("x=") + row.value});
        EXPECT_TRUE(Has(run.out, std::string("{\"name\":\"x\",") + row.kindAndValue + "}")) << run.out;
    }
}

TEST(Set, ParameterAndRepeatedName_LastOneCounts) {
    TempFolder folder;
    EXPECT_EQ(RunMethod(folder, "ALERT($1)\n", {"--set", "$1=5", "--set", "$1=six"}).out, "six\n");
}

// Restrictions ------------------------------------------------------------------------------------------------------

TEST(Restrictions, AllowAndDeny_RefuseByNumberAndName) {
    TempFolder folder;
    const std::string code = "$x:=Uppercase(\"a\")\nIf ($x=\"A\")\n  ALERT($x)\nEnd if\n";
    const struct {
        Arguments options;
        const char* refused;  // null = it runs
    } rows[] = {
        {{"--allow", "ALERT,Uppercase"}, nullptr},
        {{"--allow", "alert", "--allow", "C13"}, nullptr},
        {{"--allow", "41, 13"}, nullptr},
        {{"--allow", "ALERT"}, "Uppercase"},
        {{"--allow", ""}, "Uppercase"},
        {{"--deny", "ALERT"}, "ALERT"},
        {{"--deny", ":C41"}, "ALERT"},
        {{"--allow", "ALERT,Uppercase", "--deny", "Uppercase"}, "Uppercase"},
    };
    for (const auto& row : rows) {
        const ToolResult run = RunMethod(folder, code, row.options);
        EXPECT_EQ(run.out, row.refused ? "" : "A\n") << row.options[1];
        EXPECT_EQ(run.status, row.refused ? kCodeFailed : kOk);
        const std::string words =
            row.refused ? "error -55: Command \"" + std::string(row.refused) + "\" is not allowed" : "";
        EXPECT_TRUE(Has(run.err, words)) << run.err;
    }
}

TEST(Restrictions, HostVersion_ChangesWhatTheInterpreterDoes) {
    TempFolder folder;
    const std::string code = "ALERT(Application version)\n";
    EXPECT_EQ(RunMethod(folder, code, {"--host-version", "0x1760"}).out.substr(0, 2), "17");
    EXPECT_EQ(RunMethod(folder, code).out.substr(0, 2), "18");
}

// The clock runs out before or while the array is sorted, and lines look at it too rarely to notice.
TEST(Restrictions, MaxSeconds_EndsALongRunningCommandWhereItStands) {
    TempFolder folder;
    const std::string code = "ARRAY REAL($a;200000)\nSORT ARRAY($a;>)\nALERT(\"never\")\n";
    const ToolResult run = RunMethod(folder, code, {"--max-seconds", "0.01"});
    EXPECT_EQ(run.status, kCodeFailed);
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(Has(run.err, "started.4dm:2: error -62: Time limit reached\n")) << run.err;
}

// Projects ----------------------------------------------------------------------------------------------------------

TEST(Project, MethodsOfAProjectFolder_CanBeCalled) {
    TempFolder folder;
    folder.Write("app/Project/Sources/Methods/shared one.4dm", "//%attributes = {}\n$0:=Uppercase:C13($1)\n");
    folder.Write("plain/plain one.4dm", "$0:=Lowercase($1)\n");
    const std::string shared = "ALERT(shared one(\"a\"))\n", plain = "ALERT(plain one(\"A\"))\n";
    EXPECT_EQ(RunMethod(folder, shared, {"--project", folder.Path("app")}).out, "A\n");
    EXPECT_EQ(RunMethod(folder, plain, {"--project", folder.Path("plain") + "/"}).out, "a\n");
    EXPECT_EQ(RunMethod(folder, shared,
                        {"--project", folder.Path("app"), "--method", "shared one", "--set", "$1=b", "--json"})
                  .status,
              kOk);
}

TEST(Project, SuffixesOnEveryPlace_AreTakenAsMeant) {
    static const struct {
        const char* code;
        const char* out;
    } rows[] = {
        {"ALERT:C41(Uppercase:C13(\"a\"))", "A\n"},
        {"ALERT:C41(\"a:C13\")", "a:C13\n"},
        {"ALERT:C41(\"say \\\"Uppercase:C13\\\"\")", "say \"Uppercase:C13\"\n"},
        {"ALERT(\"a\") // \"Uppercase:C13", "a\n"},
        {"$x:=1/2 // Uppercase:C13(\nALERT:C41(String:C10($x))", "0.5\n"},
        {"ALERT:C41(String:C10(!2024-02-29!;7))", "02/29/2024\n"},
        {"ALERT:C41(String:C10(?10:30:00?))", "10:30:00\n"},
        {"Case of \n: (True:C214)\nALERT:C41(\"a\")\nEnd case ", "a\n"},
        {"ALERT:C41(String:C10(Length:C16(\"ab\")+Length:C16(\"c\")))", "3\n"},
        {"a constant:=2\nALERT:C41(String:C10(a constant:K12:34))", "2\n"},
        {"$C41:=1\nALERT:C41(String:C10($C41))", "1\n"},
        {"\xC3\x89l\xC3\xA9ment:C41(\"old name\")", "old name\n"},
    };
    TempFolder folder;
    for (const auto& row : rows) {
        const ToolResult run = RunMethod(folder, row.code);
        EXPECT_EQ(run.out, row.out) << row.code << "\n" << run.err;
    }
}

TEST(Project, UnknownNumber_StaysAsItIsWritten) {
    TempFolder folder;
    const ToolResult run = RunTool({"tokenize", "--list", folder.Write("a.4dm", "Any name:C1999\n")});
    EXPECT_TRUE(Has(run.out, "\tvariable\tAny name\n")) << run.out;
    EXPECT_TRUE(Has(run.out, "\t30012 :\n")) << run.out;
    EXPECT_TRUE(Has(run.out, "\tvariable\tC1999\n")) << run.out;
}

TEST(Project, ExecuteMethod_RunsAMethodOfTheFolder) {
    TempFolder folder;
    folder.Write("helper.4dm", "ALERT(\"helped \"+$1)\nshared:=shared+1\n");
    const ToolResult run = RunMethod(folder, "shared:=1\nEXECUTE METHOD(\"helper\";*;\"me\")\nALERT(String(shared))\n");
    EXPECT_TRUE(Has(run.out, "2\n")) << run.out << run.err;
}

}  // namespace
