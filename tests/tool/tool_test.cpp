// The zr tool as a person runs it: what it prints where, and with which status it ends.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <nlohmann/json.hpp>

#include "tests/support/RunTool.h"

namespace {

using zrtest::RunTool;
using zrtest::TempFolder;
using zrtest::ToolResult;
using Arguments = std::vector<std::string>;

constexpr int kOk = 0, kCodeFailed = 1, kWrongUsage = 2;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The tool ended by itself, with this status, and painted nothing into a pipe.
void ExpectEnd(const ToolResult& run, int status) {
    EXPECT_FALSE(run.timedOut) << run.err;
    EXPECT_EQ(run.signal, 0) << run.err;
    EXPECT_EQ(run.status, status) << "out: " << run.out << "\nerr: " << run.err;
    EXPECT_FALSE(Has(run.out + run.err, "\x1b[")) << run.out << run.err;
}

// A refusal: status 2, nothing on stdout, and a sentence that holds a word.
void ExpectRefusal(const ToolResult& run, const std::string& word) {
    ExpectEnd(run, kWrongUsage);
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(Has(run.err, word)) << "no word of " << word << " in: " << run.err;
}

ToolResult RunMethod(const TempFolder& folder, const std::string& code, Arguments options = {}) {
    options.insert(options.begin(), "run");
    options.push_back(folder.Write("started.4dm", code));
    return RunTool(options);
}

// The one object that `--json` prints; null if there is anything else.
nlohmann::json Json(const ToolResult& run) {
    auto json = nlohmann::json::parse(run.out, nullptr, /*allow_exceptions*/ false);
    EXPECT_TRUE(json.is_object()) << "out: " << run.out << "\nerr: " << run.err;
    return json.is_object() ? json : nlohmann::json::object();
}

long ErrorNumber(const nlohmann::json& json) {
    return json.contains("error") ? json["error"].value("number", 0L) : 12345L;
}

std::string ErrorText(const nlohmann::json& json) {
    return json.contains("error") ? json["error"].value("text", "") : "no error object";
}

// Usage -------------------------------------------------------------------------------------------------------------

TEST(Tool, NoArguments_ExplainsItself) {
    const ToolResult run = RunTool({});
    ExpectEnd(run, kWrongUsage);
    EXPECT_TRUE(Has(Lower(run.err), "usage")) << run.err;
    EXPECT_EQ(run.out, "");
}

TEST(Tool, Help_ListsTheCommandsOnStdout) {
    const ToolResult run = RunTool({"--help"});
    ExpectEnd(run, kOk);
    for (const char* word : {"run", "tokenize", "commands"}) EXPECT_TRUE(Has(run.out, word)) << word;
    EXPECT_EQ(run.err, "");
}

TEST(Tool, HelpOfACommand_ListsItsOptionsOnStdout) {
    static const struct {
        const char* command;
        const char* word;
    } rows[] = {{"run", "--json"},   {"run", "--set"},         {"run", "--method"},
                {"run", "--locale"}, {"run", "--max-seconds"}, {"tokenize", "--list"},
                {"tokenize", "-o"},  {"commands", "--json"},   {"commands", "--supported"}};
    for (const auto& row : rows) {
        const ToolResult run = RunTool({row.command, "--help"});
        ExpectEnd(run, kOk);
        EXPECT_TRUE(Has(run.out, row.word)) << row.command << " " << row.word;
        EXPECT_EQ(run.err, "");
    }
}

TEST(Tool, Version_IsANumberOnStdout) {
    const ToolResult run = RunTool({"--version"});
    ExpectEnd(run, kOk);
    EXPECT_NE(run.out.find_first_of("0123456789"), std::string::npos) << run.out;
    EXPECT_EQ(run.err, "");
}

TEST(Tool, UnknownCommand_IsRefused) { ExpectRefusal(RunTool({"frobnicate"}), "frobnicate"); }

TEST(Tool, UnknownOption_IsRefused) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"never\")\n");
    static const char* const commands[] = {"run", "tokenize", "commands"};
    for (const char* command : commands) ExpectRefusal(RunTool({command, "--frobnicate", file}), "--frobnicate");
}

TEST(Tool, RunWithoutFile_IsRefused) {
    const ToolResult run = RunTool({"run"});
    ExpectEnd(run, kWrongUsage);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err, "");
}

TEST(Tool, OptionWithoutItsValue_IsRefused) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"never\")\n");
    for (const char* option : {"--set", "--method", "--max-seconds", "--max-depth"}) {
        const ToolResult run = RunTool({"run", file, option});
        ExpectEnd(run, kWrongUsage);
        EXPECT_EQ(run.out, "") << option;
        EXPECT_NE(run.err, "") << option;
    }
}

TEST(Tool, LimitThatIsNoNumber_IsRefused) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"never\")\n");
    for (const char* option : {"--max-seconds", "--max-depth"}) {
        const ToolResult run = RunTool({"run", option, "many", file});
        ExpectEnd(run, kWrongUsage);
        EXPECT_EQ(run.out, "") << option;
        EXPECT_NE(run.err, "") << option;
    }
}

// Input that cannot be read -----------------------------------------------------------------------------------------

TEST(Tool, MissingFile_IsRefused) {
    TempFolder folder;
    ExpectRefusal(RunTool({"run", folder.Path("no-such-file.4dm")}), "no-such-file.4dm");
    ExpectRefusal(RunTool({"tokenize", folder.Path("no-such-file.4dm"), "-o", folder.Path("a.tok")}),
                  "no-such-file.4dm");
    EXPECT_FALSE(folder.Has("a.tok"));
}

TEST(Tool, Directory_IsRefused) {
    TempFolder folder;
    folder.Write("sub-folder/a.4dm", "ALERT(\"never\")\n");
    ExpectRefusal(RunTool({"run", folder.Path("sub-folder")}), "sub-folder");
}

TEST(Tool, UnreadableText_IsRefusedByName) {
    static const struct {
        const char* what;
        std::string bytes;
    } rows[] = {{"binary", std::string("\x7f"
                                       "ELF\x02\x01\x01\0\0\0\0\xff\xfe\x80\x00\x00",
                                       16)},
                {"nul", std::string("ALERT(\"a\")\n\0\0\0", 14)},
                {"broken", "ALERT(\"\xff\xfe\")\n"},
                {"cut-short", "ALERT(\"a\") \xe2\x82"},
                {"overlong", "ALERT(\"\xc0\xaf\")\n"},
                {"surrogate", "ALERT(\"\xed\xa0\x80\")\n"}};
    TempFolder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string name = std::string(row.what) + ".4dm";
        const std::string file = folder.Write(name, row.bytes);
        ExpectRefusal(RunTool({"run", file}), name);
        ExpectRefusal(RunTool({"tokenize", file, "-o", folder.Path("out.tok")}), name);
        EXPECT_FALSE(folder.Has("out.tok"));
    }
}

TEST(Tool, HugeFileOfNothing_IsRefused) {
    TempFolder folder;
    const std::string file = folder.Write("huge.4dm", "");
    ASSERT_EQ(truncate(file.c_str(), 100L * 1000 * 1000), 0);
    ExpectRefusal(RunTool({"run", file}), "huge.4dm");
}

TEST(Tool, EmptyFile_RunsAndPrintsNothing) {
    TempFolder folder;
    for (const char* code : {"", "\n", "\n\n\n", "   \n\t\n", "// only a comment"}) {
        const ToolResult run = RunMethod(folder, code);
        ExpectEnd(run, kOk);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "");
    }
}

// Running -----------------------------------------------------------------------------------------------------------

TEST(Run, Alert_PrintsALineOnStdout) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder,
                                     "ALERT(\"hello\")\nALERT(\"Gr\xc3\xbc\xc3\x9f"
                                     "e\")\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out,
              "hello\nGr\xc3\xbc\xc3\x9f"
              "e\n");
    EXPECT_EQ(run.err, "");
}

TEST(Run, Stdin_IsAMethod) {
    const ToolResult run = RunTool({"run", "-"}, "$a:=2\nALERT(String($a+3))\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "5\n");
}

TEST(Run, StdinThatIsNoText_IsRefused) {
    const ToolResult run = RunTool({"run", "-"}, "ALERT(\"\xff\")\n");
    ExpectEnd(run, kWrongUsage);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err, "");
}

TEST(Run, LineEnds_OfEverySystemAreRead) {
    static const char* const ends[] = {"\n", "\r\n", "\r", "\xe2\x80\xa8"};
    TempFolder folder;
    for (const std::string end : ends) {
        const ToolResult run = RunMethod(
            folder, "If (1=1)" + end + "ALERT(\"a\")" + end + end + "End If" + end + "$x:=1/0" + end, {"--json"});
        ExpectEnd(run, kCodeFailed);
        auto json = Json(run);
        EXPECT_EQ(json["output"], nlohmann::json::array({"a"}));
        EXPECT_EQ(ErrorNumber(json), -2);
        EXPECT_EQ(json["error"].value("line", 0L), 5);
    }
}

TEST(Run, MissingLastLineEnd_IsNoMatter) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\nALERT(\"b\")");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "a\nb\n");
}

TEST(Run, ByteOrderMark_IsNoMatter) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder,
                                     "\xef\xbb\xbf"
                                     "ALERT(\"a\")\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "a\n");
}

TEST(Run, AttributesLine_IsAcceptedAndCounted) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder,
                                     "//%attributes = {\"invisible\":true,\"lang\":\"en\"}\n"
                                     "ALERT(\"a\")\n"
                                     "$x:=1/0\n",
                                     {"--json"});
    ExpectEnd(run, kCodeFailed);
    auto json = Json(run);
    EXPECT_EQ(json["output"], nlohmann::json::array({"a"}));
    EXPECT_EQ(json["error"].value("line", 0L), 3);
}

TEST(Run, TokenSuffixes_AreAcceptedAndTheNumberDecides) {
    TempFolder folder;
    folder.Write("double it.4dm", "$0:=$1*2\n");
    const ToolResult run = RunMethod(folder,
                                     "_O_C_INTEGER:C282($i)\n"
                                     "$i:=7\n"
                                     "ALERT:C41(String:C10($i))\n"
                                     "Any old spelling:C41(\"by number\")\n"
                                     "If (True:C214)\n"
                                     "  ALERT:C41(Uppercase:C13(\"inner\")+\"!\")\n"
                                     "End if \n"
                                     "ALERT:C41(String:C10(double it:P12(21)))\n"
                                     "ALERT(\"a text :C41 and :K1:2 stay\")  // ALERT:C41(\"never\")\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "7\nby number\nINNER!\n42\na text :C41 and :K1:2 stay\n");
}

TEST(Run, ConstantSuffix_IsTakenOff) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(String(Some constant:K1:2+1))\n", {"--set", "Some constant=4"});
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "5\n");
}

TEST(Run, CaseOfBranches_AreNoSuffixes) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder,
                                     "Case of \n"
                                     ":(1=2)\n"
                                     "ALERT(\"a\")\n"
                                     ":  (1=1)\n"
                                     "ALERT(\"b\")\n"
                                     "End case \n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "b\n");
}

TEST(Run, OtherMethodsOfTheFolder_CanBeCalled) {
    TempFolder folder;
    folder.Write("twice.4dm", "//%attributes = {}\n$0:=$1*2\n");
    folder.Write("a longer name.4dm", "$0:=twice($1)+1\n");
    folder.Write("not a method.txt", "$0:=99\n");
    const ToolResult run = RunMethod(folder, "ALERT(String(twice(4)))\nALERT(String(a longer name(4)))\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "8\n9\n");
}

TEST(Run, MethodThatIsNotCalled_IsNotRead) {
    TempFolder folder;
    folder.Write("broken.4dm", "\xff\xfe");
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "a\n");
}

TEST(Run, MethodThatCannotBeRead_FailsWhenItIsCalled) {
    TempFolder folder;
    folder.Write("broken.4dm", "\xff\xfe");
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\nbroken(1)\nALERT(\"b\")\n");
    EXPECT_TRUE(run.status == kCodeFailed || run.status == kWrongUsage) << run.status;
    EXPECT_EQ(run.signal, 0);
    EXPECT_TRUE(Has(run.err, "broken")) << run.err;
    EXPECT_FALSE(Has(run.out, "b\n")) << run.out;
}

TEST(Run, Method_StartsAnotherMethodOfTheFolder) {
    TempFolder folder;
    folder.Write("other.4dm", "ALERT(\"other\")\nthird(0)\n");
    folder.Write("third.4dm", "ALERT(\"third\")\n");
    const ToolResult run = RunMethod(folder, "ALERT(\"started\")\n", {"--method", "other"});
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "other\nthird\n");
}

TEST(Run, UnknownMethod_IsNamed) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"started\")\n", {"--method", "nowhere"});
    EXPECT_TRUE(run.status == kCodeFailed || run.status == kWrongUsage) << run.status;
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(Has(run.err, "nowhere")) << run.err;
}

TEST(Run, Set_GivesVariablesOfEveryScope) {
    TempFolder folder;
    static const struct {
        const char* code;
        Arguments options;
        const char* out;
    } rows[] = {
        {"ALERT(String(x+1))", {"--set", "x=5"}, "6\n"},
        {"ALERT(String($x+1))", {"--set", "$x=5"}, "6\n"},
        {"ALERT(String(<>x+1))", {"--set", "<>x=5"}, "6\n"},
        {"ALERT(String(x*2))", {"--set", "x=-1.5"}, "-3\n"},
        {"ALERT(x+\"!\")", {"--set", "x=hello"}, "hello!\n"},
        {"ALERT(x+\"!\")", {"--set", "x=5 apples"}, "5 apples!\n"},
        {"ALERT(x+\"!\")", {"--set", "x=a=b"}, "a=b!\n"},
        {"ALERT($x+<>x+x)", {"--set", "$x=a", "--set", "<>x=b", "--set", "x=c"}, "abc\n"},
        {"ALERT(String(my own+1))", {"--set", "my own=1"}, "2\n"},
        {"ALERT(x)", {"--set", "x=gr\xc3\xbc\xc3\x9f"}, "gr\xc3\xbc\xc3\x9f\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        const ToolResult run = RunMethod(folder, row.code, row.options);
        ExpectEnd(run, kOk);
        EXPECT_EQ(run.out, row.out);
    }
}

TEST(Run, SetWithoutNameOrValue_IsRefused) {
    TempFolder folder;
    for (const char* setting : {"x", "=5"}) {
        const ToolResult run = RunMethod(folder, "ALERT(\"never\")\n", {"--set", setting});
        ExpectEnd(run, kWrongUsage);
        EXPECT_EQ(run.out, "") << setting;
        EXPECT_NE(run.err, "") << setting;
    }
}

TEST(Run, OptionsBehindTheFile_AreRead) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(String($x))\n");
    const ToolResult run = RunTool({"run", file, "--set", "$x=4", "--json"});
    ExpectEnd(run, kOk);
    EXPECT_EQ(Json(run)["output"], nlohmann::json::array({"4"}));
}

TEST(Run, FrenchHost_SpeaksFrench) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder,
                                     "Si (1=1)\n"
                                     "  ALERTE(Chaine(5))\n"
                                     "Sinon\n"
                                     "  ALERTE(\"jamais\")\n"
                                     "Fin de si\n"
                                     "Boucle ($i;1;2)\n"
                                     "  ALERTE(Chaine($i))\n"
                                     "Fin de boucle\n",
                                     {"--language", "fr"});
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "5\n1\n2\n");
}

TEST(Run, DialogsWithoutATerminal_TakeTheirDefault) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder,
                                     "CONFIRM(\"Sure?\")\n"
                                     "ALERT(String(OK))\n"
                                     "$name:=Request(\"Name?\";\"Ann\")\n"
                                     "ALERT($name)\n",
                                     {"--json"});
    ExpectEnd(run, kOk);
    const auto output = Json(run)["output"];
    EXPECT_TRUE(output.is_array() && output.size() >= 2 && output.back() == "Ann") << run.out;
    EXPECT_TRUE(std::find(output.begin(), output.end(), "1") != output.end()) << run.out;
}

// Errors ------------------------------------------------------------------------------------------------------------

TEST(RunError, Print_ShowsPlaceNumberTextAndSource) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\n\n  $value:=$nope+1\nALERT(\"b\")\n");
    ExpectEnd(run, kCodeFailed);
    EXPECT_EQ(run.out, "a\n");
    const std::string first = run.err.substr(0, run.err.find('\n'));
    EXPECT_TRUE(Has(first, "started.4dm:3: error -14: Unknown Variable \"$nope\"")) << run.err;
    const size_t source = run.err.find("$value:=$nope+1");
    ASSERT_NE(source, std::string::npos) << run.err;
    EXPECT_GT(source, first.size());
}

TEST(RunError, Print_ShowsTheChainOfCallsInnermostFirst) {
    TempFolder folder;
    folder.Write("outermiddle.4dm", "// a line\ninnermost($1)\n");
    folder.Write("innermost.4dm", "$x:=$1\n$y:=$x/0\n");
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\noutermiddle(5)\n");
    ExpectEnd(run, kCodeFailed);
    const std::string first = run.err.substr(0, run.err.find('\n'));
    EXPECT_TRUE(Has(first, "innermost.4dm:2: error -2: Division by zero")) << run.err;
    const std::string rest = run.err.substr(std::min(first.size() + 1, run.err.size()));
    EXPECT_TRUE(Has(rest, "$y:=$x/0")) << run.err;
    const size_t middle = rest.find("outermiddle");
    const size_t outer = rest.rfind("started");
    ASSERT_NE(middle, std::string::npos) << run.err;
    ASSERT_NE(outer, std::string::npos) << run.err;
    EXPECT_LT(middle, outer) << run.err;
}

TEST(RunError, Status_TellsCodeFromUsage) {
    TempFolder folder;
    EXPECT_EQ(RunMethod(folder, "ALERT(\"a\")\n").status, kOk);
    EXPECT_EQ(RunMethod(folder, "$x:=1/0\n").status, kCodeFailed);
    EXPECT_EQ(RunTool({"run", folder.Path("missing.4dm")}).status, kWrongUsage);
}

TEST(RunError, OutputBeforeAnError_IsPrinted) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "For ($i;1;3)\nALERT(String($i))\nEnd For\n$x:=1/0\n");
    ExpectEnd(run, kCodeFailed);
    EXPECT_EQ(run.out, "1\n2\n3\n");
}

TEST(RunError, ComparisonWithNothingOnItsLeft_IsToldFirst) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\n$x:= =1\nALERT(\"b\")\n", {"--json"});
    ExpectEnd(run, kCodeFailed);
    auto json = Json(run);
    EXPECT_EQ(json["output"], nlohmann::json::array({"a"}));
    EXPECT_EQ(ErrorText(json).rfind("Empty comparison (left)", 0), 0U) << ErrorText(json);
}

TEST(RunError, CommandThatIsNotThreadSafe_IsRefusedOnAPreemptiveProcess) {
    TempFolder folder;
    const std::string code = "ALERT(\"a\")\n$t:=Get text from pasteboard\nALERT(\"b\")\n";
    auto refused = Json(RunMethod(folder, code, {"--preemptive", "--json"}));
    EXPECT_EQ(ErrorNumber(refused), -56);
    EXPECT_EQ(ErrorText(refused), "Command \"Get text from pasteboard\" is not thread safe");
    EXPECT_EQ(refused["output"], nlohmann::json::array({"a"}));
    EXPECT_NE(ErrorNumber(Json(RunMethod(folder, code, {"--json"}))), -56);
}

// JSON --------------------------------------------------------------------------------------------------------------

TEST(RunJson, Success_IsOneObject) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"one\")\nALERT(\"a \\\"quoted\\\" two\")\n", {"--json"});
    ExpectEnd(run, kOk);
    auto json = Json(run);
    EXPECT_EQ(json["output"], nlohmann::json::array({"one", "a \"quoted\" two"}));
    EXPECT_EQ(json["error"]["number"], 0);
    EXPECT_EQ(json["error"]["line"], 0);
    EXPECT_EQ(json["error"]["method"], "");
    EXPECT_EQ(json["error"]["text"], "");
    EXPECT_EQ(json["variables"], nlohmann::json::array());
    EXPECT_EQ(json.size(), 3U) << run.out;
}

TEST(RunJson, Error_IsOneObjectToo) {
    TempFolder folder;
    folder.Write("helper.4dm", "// a line\n$x:=$1/0\n");
    const ToolResult run = RunMethod(folder, "ALERT(\"one\")\nhelper(1)\n", {"--json"});
    ExpectEnd(run, kCodeFailed);
    auto json = Json(run);
    EXPECT_EQ(json["output"], nlohmann::json::array({"one"}));
    EXPECT_EQ(json["error"]["number"], -2);
    EXPECT_EQ(json["error"]["line"], 2);
    EXPECT_EQ(json["error"]["method"], "helper");
    EXPECT_EQ(json["error"]["text"], "Division by zero");
}

TEST(RunJson, Variables_StandInTheOrderOfTheirLists) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "p:=1\n$b:=2\n<>i:=3\n$a:=4\nq:=5\n", {"--json"});
    ExpectEnd(run, kOk);
    auto json = Json(run);
    std::vector<std::string> names;
    for (const auto& variable : json["variables"]) names.push_back(variable.value("name", ""));
    EXPECT_EQ(names, (std::vector<std::string>{"$b", "$a", "p", "q", "<>i"}));
}

TEST(RunJson, Variables_HaveKindAndValue) {
    static const struct {
        const char* code;
        int kind;
        const char* value;  // JSON
    } rows[] = {
        {"$v:=9", 1, "9.0"},
        {"$v:=1.5", 1, "1.5"},
        {"C_LONGINT($v)\n$v:=-7.9", 9, "-7"},
        {"$v:=\"text\"", 33, "\"text\""},
        {"$v:=!2024-02-29!", 4, "\"2024-02-29\""},
        {"$v:=?01:01:01?", 11, "3661"},
        {"$v:=(1=1)", 6, "true"},
        {"C_BOOLEAN($v)", 6, "false"},
        {"ARRAY LONGINT($v;2)\n$v{2}:=5", 16, "[0,5]"},
        {"ARRAY TEXT($v;2)\n$v{1}:=\"a\"", 34, "[\"a\",\"\"]"},
        {"ARRAY BOOLEAN($v;1)\n$v{1}:=True", 22, "[true]"},
        {"ARRAY DATE($v;1)\n$v{1}:=!2024-02-29!", 17, "[\"2024-02-29\"]"},
        {"ARRAY REAL($v;0)", 14, "[]"},
        {"$v:=New object\n$v.b:=1\n$v.a:=\"x\"\n$v.c:=New object", 38, "{\"b\":1,\"a\":\"x\",\"c\":{}}"},
        {"C_OBJECT($v)", 38, "null"},
        {"$v:=New collection", 42, "[]"},
        {"$v:=->$x", 23, "\"->$x\""},
        {"$v:=->x", 23, "\"->x\""},
        {"$v:=-><>x", 23, "\"-><>x\""},
        {"$v:=Null", 255, "null"},
        {"C_BLOB($v)", 30, "\"\""},
        {"C_PICTURE($v)", 10, "\"\""},
    };
    TempFolder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        const ToolResult run = RunMethod(folder, row.code, {"--json"});
        ExpectEnd(run, kOk);
        const auto variables = Json(run)["variables"];
        ASSERT_EQ(variables.size(), 1U) << run.out;
        EXPECT_EQ(variables[0].value("name", ""), "$v");
        EXPECT_EQ(variables[0].value("kind", 0), row.kind);
        EXPECT_EQ(variables[0]["value"], nlohmann::json::parse(row.value)) << run.out;
    }
}

TEST(RunJson, AssignmentThatFailed_LeavesTheVariable) {
    TempFolder folder;
    auto json = Json(RunMethod(folder, "$a:=1\n$a:=5/0\n", {"--json"}));
    EXPECT_EQ(ErrorNumber(json), -2);
    EXPECT_EQ(json["variables"][0]["value"], 1.0);
}

TEST(RunJson, AssignmentToAMemberOfANumber_SetsTheNumber) {
    // Required: the target falls back to the variable itself.
    TempFolder folder;
    auto json = Json(RunMethod(folder, "$a:=1\n$a.b:=7\n", {"--json"}));
    EXPECT_EQ(ErrorNumber(json), -58);
    EXPECT_EQ(json["variables"][0]["value"], 7.0);
}

TEST(RunJson, RefusedAppend_LeavesAnEmptyElement) {
    // Required: the array has grown before its new element is refused.
    TempFolder folder;
    auto json = Json(RunMethod(folder, "ARRAY LONGINT($a;1)\nAPPEND TO ARRAY($a;\"x\")\n", {"--json"}));
    EXPECT_EQ(ErrorNumber(json), -10);
    EXPECT_EQ(json["variables"][0]["value"], nlohmann::json::parse("[0,0]"));
}

TEST(RunJson, OutputWithLineEnds_IsOneEntry) {
    TempFolder folder;
    auto json = Json(RunMethod(folder, "ALERT(\"a\\nb\")\nALERT(\"\")\n", {"--json"}));
    EXPECT_EQ(json["output"], nlohmann::json::array({"a\nb", ""}));
}

// Guards ------------------------------------------------------------------------------------------------------------

TEST(RunGuard, EndlessLoop_EndsAtTheTimeLimit) {
    static const char* const loops[] = {"While (1=1)\nEnd while\n", "Repeat\n$i:=1\nUntil (1=2)\n",
                                        "For ($i;1;2)\n$i:=0\nEnd For\n"};
    TempFolder folder;
    for (const char* loop : loops) {
        SCOPED_TRACE(loop);
        const auto start = std::chrono::steady_clock::now();
        const ToolResult run =
            RunMethod(folder, std::string("ALERT(\"a\")\n") + loop, {"--json", "--max-seconds", "1"});
        ExpectEnd(run, kCodeFailed);
        auto json = Json(run);
        EXPECT_EQ(json["output"], nlohmann::json::array({"a"}));
        EXPECT_EQ(ErrorNumber(json), -62);
        EXPECT_EQ(ErrorText(json), "Time limit reached");
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    }
}

TEST(RunGuard, TimeLimit_LeavesAShortProgramAlone) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\n", {"--max-seconds", "30"});
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "a\n");
}

TEST(RunGuard, EndlessRecursion_EndsWithAnError) {
    TempFolder folder;
    folder.Write("again.4dm", "again($1+1)\n");
    folder.Write("back.4dm", "$0:=forth($1)+1\n");
    folder.Write("forth.4dm", "If (back($1)=1)\nEnd If\n");
    for (const char* call : {"again(0)\n", "$x:=back(1)\n"}) {
        SCOPED_TRACE(call);
        const ToolResult run = RunMethod(folder, std::string("ALERT(\"a\")\n") + call, {"--json"});
        ExpectEnd(run, kCodeFailed);
        auto json = Json(run);
        EXPECT_EQ(json["output"], nlohmann::json::array({"a"}));
        EXPECT_EQ(ErrorNumber(json), -61);
        EXPECT_EQ(ErrorText(json), "Too many nested calls");
    }
}

TEST(RunGuard, MaxDepth_SetsTheLimitOfNestedCalls) {
    TempFolder folder;
    folder.Write("sum to.4dm", "$0:=0\nIf ($1>0)\n$0:=$1+sum to($1-1)\nEnd If\n");
    const ToolResult run =
        RunMethod(folder, "ALERT(String(sum to(20)))\nALERT(String(sum to(500)))\n", {"--json", "--max-depth", "100"});
    ExpectEnd(run, kCodeFailed);
    auto json = Json(run);
    EXPECT_EQ(json["output"], nlohmann::json::array({"210"}));
    EXPECT_EQ(ErrorNumber(json), -61);
    EXPECT_EQ(ErrorText(json), "Too many nested calls");
}

TEST(RunGuard, DefaultDepth_ServesDeepRecursion) {
    TempFolder folder;
    folder.Write("sum to.4dm", "$0:=0\nIf ($1>0)\n$0:=$1+sum to($1-1)\nEnd If\n");
    const ToolResult run = RunMethod(folder, "ALERT(String(sum to(200)))\n");
    ExpectEnd(run, kOk);
    EXPECT_EQ(run.out, "20100\n");
}

TEST(RunGuard, ArrowWithNothingToPointTo_IsAnError) {
    TempFolder folder;
    for (const char* code : {"$p:=->5\n", "$p:=->\"a\"\n", "$p:=->ALERT\n", "$p:=->  // comment\n", "->->\n"}) {
        SCOPED_TRACE(code);
        const ToolResult run = RunMethod(folder, code, {"--json", "--max-seconds", "30"});
        ExpectEnd(run, kCodeFailed);
        EXPECT_EQ(ErrorNumber(Json(run)), -6);
    }
}

TEST(RunGuard, ParameterThatNeverReduces_Ends) {
    TempFolder folder;
    const ToolResult run = RunMethod(folder, "ALERT(\"a\")\nARRAY TEXT($a;1)\nALERT($a $a)\nALERT(\"b\")\n",
                                     {"--json", "--max-seconds", "30"});
    ExpectEnd(run, kCodeFailed);
    auto json = Json(run);
    EXPECT_EQ(json["output"], nlohmann::json::array({"a"}));
    EXPECT_NE(ErrorNumber(json), 0);
    EXPECT_NE(ErrorNumber(json), -62) << "found by the clock only";
    EXPECT_NE(ErrorText(json), "");
}

TEST(RunGuard, DeepBracketsAndLongLines_DoNotCrash) {
    TempFolder folder;
    const std::string open(2000, '('), close(2000, ')');
    const ToolResult nested = RunMethod(folder, "ALERT(String(" + open + "7" + close + "))\n");
    ExpectEnd(nested, kOk);
    EXPECT_EQ(nested.out, "7\n");
    std::string sum = "$x:=0";
    for (int i = 0; i < 20000; ++i) sum += "+1";
    const ToolResult wide = RunMethod(folder, sum + "\nALERT(String($x))\n");
    ExpectEnd(wide, kOk);
    EXPECT_EQ(wide.out, "20000\n");
}

TEST(RunGuard, OddCode_DoesNotCrash) {
    static const char* const codes[] = {"(",
                                        ")",
                                        "{",
                                        "}",
                                        "[[",
                                        "]]",
                                        "[",
                                        "]",
                                        "->",
                                        ":=",
                                        ";",
                                        ":",
                                        ".",
                                        "$",
                                        "<>",
                                        "\"",
                                        "!",
                                        "?",
                                        "0x",
                                        "{}{}{}",
                                        "$a{:=1",
                                        "$a[[1",
                                        "$a{}:=1",
                                        "$a[[]]:=1",
                                        "x:={1}",
                                        "For (;;)",
                                        "If (;)",
                                        "Case of\n:\nEnd case",
                                        "Case of\nCase of\nCase of",
                                        "End For\nFor",
                                        "Else\nElse",
                                        "Repeat\nUntil",
                                        "While (",
                                        "x.y.z.:=",
                                        ".a.b(1).c",
                                        "ALERT(ALERT(ALERT(1)))",
                                        "$a:=$a:=$a:=",
                                        "SORT ARRAY(;)",
                                        "C_LONGINT(1;\"a\";)",
                                        "Choose(-1;\"a\")",
                                        "Choose(99999999999;\"a\")",
                                        "ARRAY TEXT($a;-99999999999)",
                                        "x:=2^(-1)",
                                        "x:=(-2)^3",
                                        "x:=1e308*10",
                                        "x:=99999999999999999999999999",
                                        "x:=!99-99-99!",
                                        "x:=!0-0-0!+1",
                                        "x:=?99:99:99?",
                                        "x:=\"a\"*0.5",
                                        "x:=Char(-1)",
                                        "x:=Substring(\"abc\";-5;99)",
                                        "x:=Substring(\"abc\";2;-1)",
                                        "x:=Delete string(\"abc\";9;9)"};
    TempFolder folder;
    for (const char* code : codes) {
        SCOPED_TRACE(code);
        const ToolResult run = RunMethod(folder, code, {"--max-seconds", "30"});
        EXPECT_FALSE(run.timedOut);
        EXPECT_EQ(run.signal, 0) << run.err;
        EXPECT_TRUE(run.status == kOk || run.status == kCodeFailed) << run.status << "\n" << run.err;
    }
}

// Tokenising --------------------------------------------------------------------------------------------------------

TEST(Tokenize, Blob_RunsLikeItsSource) {
    TempFolder folder;
    const std::string code =
        "// a comment\n"
        "$s:=\"gr\xc3\xbc\xc3\x9f\"\n"
        "\n"
        "For ($i;1;3)\n"
        "  ALERT($s+\" \"+String($i*1.5))\n"
        "End For\n"
        "If (!2024-02-29!+1=!2024-03-01!) & (?00:01:00?>?00:00:59?)\n"
        "  ALERT(String(0xFF))\n"
        "End If\n";
    const std::string file = folder.Write("a.4dm", code);
    const ToolResult made = RunTool({"tokenize", file, "-o", folder.Path("a.tok")});
    ExpectEnd(made, kOk);
    ASSERT_TRUE(folder.Has("a.tok"));
    const ToolResult source = RunTool({"run", file});
    const ToolResult blob = RunTool({"run", folder.Path("a.tok")});
    ExpectEnd(blob, kOk);
    EXPECT_EQ(blob.out, source.out);
    EXPECT_EQ(blob.out, "gr\xc3\xbc\xc3\x9f 1.5\ngr\xc3\xbc\xc3\x9f 3\ngr\xc3\xbc\xc3\x9f 4.5\n255\n");
}

TEST(Tokenize, BlobWithAnError_NamesTheLine) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n\n$x:=1/0\n");
    ExpectEnd(RunTool({"tokenize", file, "-o", folder.Path("a.tok")}), kOk);
    const ToolResult run = RunTool({"run", "--json", folder.Path("a.tok")});
    ExpectEnd(run, kCodeFailed);
    auto json = Json(run);
    EXPECT_EQ(ErrorNumber(json), -2);
    EXPECT_EQ(json["error"].value("line", 0L), 3);
}

TEST(Tokenize, List_PrintsTheTokens) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "$counter:=\"some text\"+process name\nALERT($counter)\n");
    const ToolResult run = RunTool({"tokenize", "--list", file});
    ExpectEnd(run, kOk);
    for (const char* word : {"counter", "some text", "process name", "41"}) EXPECT_TRUE(Has(run.out, word)) << run.out;
    EXPECT_GE(std::count(run.out.begin(), run.out.end(), '\n'), 8) << run.out;
    EXPECT_EQ(run.err, "");
}

TEST(Tokenize, OutputThatCannotBeWritten_IsRefused) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n");
    ExpectRefusal(RunTool({"tokenize", file, "-o", folder.Path("no-such-folder/a.tok")}), "no-such-folder");
    folder.Write("taken/inside.txt", "");
    ExpectRefusal(RunTool({"tokenize", file, "-o", folder.Path("taken")}), "taken");
    EXPECT_TRUE(folder.Has("taken/inside.txt"));
}

TEST(Tokenize, OutputThatIsThere_IsReplaced) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n");
    const std::string blob = folder.Write("a.tok", std::string(100000, 'x'));
    ExpectEnd(RunTool({"tokenize", file, "-o", blob}), kOk);
    EXPECT_LT(zrtest::ReadFile(blob).size(), 1000U);
    EXPECT_EQ(RunTool({"run", blob}).out, "a\n");
}

TEST(Tokenize, BrokenBlob_DoesNotCrash) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"some text\"+String(5))\n$x:=1\n");
    const std::string blob = folder.Path("a.tok");
    ExpectEnd(RunTool({"tokenize", file, "-o", blob}), kOk);
    const std::string bytes = zrtest::ReadFile(blob);
    ASSERT_GT(bytes.size(), 20U);
    std::vector<std::string> broken = {"", "x", std::string(1000, '\xff'), std::string(1000, '\0')};
    for (size_t cut = 1; cut < bytes.size(); cut += bytes.size() / 12 + 1) broken.push_back(bytes.substr(0, cut));
    for (size_t at = 0; at < bytes.size(); at += bytes.size() / 12 + 1) {
        broken.push_back(bytes);
        broken.back()[at] = '\xff';
    }
    for (const auto& text : broken) {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 60)));
        const ToolResult run = RunTool({"run", "--max-seconds", "30", folder.Write("broken.tok", text)});
        EXPECT_FALSE(run.timedOut);
        EXPECT_EQ(run.signal, 0) << run.err;
        EXPECT_TRUE(run.status >= kOk && run.status <= kWrongUsage) << run.status << "\n" << run.err;
    }
}

// Commands ----------------------------------------------------------------------------------------------------------

TEST(Commands, List_NamesTheCommands) {
    const ToolResult all = RunTool({"commands"});
    ExpectEnd(all, kOk);
    for (const char* name : {"ALERT", "Current process", "End If", "_SET ANCHOR"})
        EXPECT_TRUE(Has(all.out, name)) << name;
    EXPECT_GT(std::count(all.out.begin(), all.out.end(), '\n'), 1400);
    EXPECT_EQ(all.err, "");
}

TEST(Commands, Supported_LeavesOutTheOthers) {
    const ToolResult run = RunTool({"commands", "--supported"});
    ExpectEnd(run, kOk);
    for (const char* name : {"ALERT", "End If", "_SET ANCHOR"}) EXPECT_TRUE(Has(run.out, name)) << name;
    for (const char* name : {"Current process", "JSON Stringify"}) EXPECT_FALSE(Has(run.out, name)) << name;
}

TEST(Commands, Json_IsOneArrayOfRows) {
    const ToolResult run = RunTool({"commands", "--json"});
    ExpectEnd(run, kOk);
    const auto json = nlohmann::json::parse(run.out, nullptr, /*allow_exceptions*/ false);
    ASSERT_TRUE(json.is_array());
    ASSERT_GT(json.size(), 1400U);
    for (const auto& row : json) {
        EXPECT_TRUE(row.is_object() && row.contains("id") && row["id"].is_number_integer() && row.contains("name") &&
                    row["name"].is_string() && row.contains("supported") && row["supported"].is_boolean() &&
                    row.contains("threadSafe") && row["threadSafe"].is_boolean())
            << row.dump();
    }
}

}  // namespace
