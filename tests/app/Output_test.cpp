// Where the tool writes: files that appear whole, standard output that may fail, colour on a terminal alone.
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>

#include "tests/support/RunTool.h"

namespace {

using zrtest::ReadFile;
using zrtest::RunTool;
using zrtest::TempFolder;
using zrtest::ToolResult;

constexpr int kWrongUsage = 2;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

size_t FilesIn(const TempFolder& folder) {
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path(""))) count += entry.exists();
    return count;
}

TEST(Output, ReplacedFile_KeepsItsModeAndLeavesNothingBeside) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n"), blob = folder.Write("a.tok", "old");
    ASSERT_EQ(chmod(blob.c_str(), 0640), 0);
    EXPECT_EQ(RunTool({"tokenize", file, "-o", blob}).status, 0);
    struct stat facts;
    ASSERT_EQ(stat(blob.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0640U);
    EXPECT_EQ(FilesIn(folder), 2U);
}

TEST(Output, SymbolicLink_StaysALink) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n"), blob = folder.Write("real/a.tok", "old");
    std::filesystem::create_symlink(blob, folder.Path("link.tok"));
    EXPECT_EQ(RunTool({"tokenize", file, "-o", folder.Path("link.tok")}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.tok")));
    EXPECT_EQ(RunTool({"run", blob}).out, "a\n");
}

TEST(Output, FullDevice_IsRefusedInWords) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n");
    const ToolResult run = RunTool({"tokenize", file, "-o", "/dev/full"});
    EXPECT_EQ(run.status, kWrongUsage);
    EXPECT_EQ(run.err, "zr: cannot write /dev/full: No space left on device\n");
}

TEST(Output, BlobOnStandardOutput_RunsFromStandardInput) {
    TempFolder folder;
    const ToolResult blob = RunTool({"tokenize", folder.Write("a.4dm", "ALERT(\"a\")\n"), "-o", "-"});
    EXPECT_EQ(blob.status, 0);
    EXPECT_EQ(RunTool({"run", "-"}, blob.out).out, "a\n");
}

int StatusOfShell(const std::string& command) {
    const int status = system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Output, StandardOutputThatCannotBeWritten_IsRefused) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"a\")\n"), err = folder.Path("err");
    const std::string run = zrtest::ToolPath() + " run " + file;
    EXPECT_EQ(StatusOfShell(run + " >/dev/full 2>" + err), kWrongUsage);
    EXPECT_EQ(ReadFile(err), "zr: cannot write to standard output: No space left on device\n");
    EXPECT_EQ(StatusOfShell(run + " >&- 2>" + err), kWrongUsage);
    EXPECT_TRUE(Has(ReadFile(err), "zr: cannot write to standard output: ")) << ReadFile(err);
    EXPECT_EQ(ReadFile(file), "ALERT(\"a\")\n");
}

TEST(Output, LinesBeforeASignal_AreWritten) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"first\")\nWhile (True)\nEnd while\n");
    const std::string out = folder.Path("out");
    EXPECT_EQ(StatusOfShell("timeout -s TERM 3 " + zrtest::ToolPath() + " run " + file + " >" + out), 124);
    EXPECT_EQ(ReadFile(out), "first\n");
}

TEST(Output, OutputAndError_StandInTheirOrder) {
    TempFolder folder;
    const std::string file = folder.Write("a.4dm", "ALERT(\"first\")\n$x:=1/0\n"), both = folder.Path("both");
    StatusOfShell("cd " + folder.Path("") + "; " + zrtest::ToolPath() + " run a.4dm >" + both + " 2>&1");
    EXPECT_EQ(ReadFile(both), "first\na.4dm:2: error -2: Division by zero\n  2 | $x:=1/0\n");
}

// What the tool prints on a terminal of its own.
std::string OnTerminal(const std::string& command, const std::string& typed = "") {
    int terminal = -1;
    winsize size = {24, 80, 0, 0};
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    (void)!write(terminal, typed.data(), typed.size());
    std::string text;
    char bytes[4096];
    for (ssize_t count; (count = read(terminal, bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<size_t>(count));
    close(terminal);
    waitpid(child, nullptr, 0);
    return text;
}

TEST(Output, Colour_OnATerminalAndNeverWithNoColor) {
    TempFolder folder;
    const std::string run = zrtest::ToolPath() + " run " + folder.Write("a.4dm", "$x:=1/0\n");
    EXPECT_TRUE(Has(OnTerminal("TERM=xterm NO_COLOR= " + run), "\x1b[1;31merror -2"));
    EXPECT_FALSE(Has(OnTerminal("TERM=xterm NO_COLOR=1 " + run), "\x1b["));
    EXPECT_FALSE(Has(OnTerminal("TERM=dumb NO_COLOR= " + run), "\x1b["));
}

TEST(Output, Dialogs_AskOnATerminal) {
    TempFolder folder;
    const std::string code =
        "CONFIRM(\"Go on?\")\nALERT(\"OK is \"+String(OK))\n$n:=Request(\"Name?\";\"Ann\")\nALERT($n)\n";
    const std::string run = "stty -echo; " + zrtest::ToolPath() + " run " + folder.Write("a.4dm", code);
    const struct {
        const char *typed, *confirmed, *name;
    } rows[] = {
        {"\n\n", "OK is 1", "Ann\r\n"}, {"2\nBob\n", "OK is 0", "Bob\r\n"}, {"what\n1\nEve\n", "OK is 1", "Eve\r\n"}};
    for (const auto& row : rows) {
        const std::string text = OnTerminal(run, row.typed);
        EXPECT_TRUE(Has(text, "Go on? [1 OK, 2 Cancel] ")) << text;
        EXPECT_TRUE(Has(text, row.confirmed)) << text;
        EXPECT_TRUE(Has(text, "Name? [Ann] ")) << text;
        EXPECT_TRUE(Has(text, row.name)) << text;
    }
}

TEST(Output, LongChainOfCalls_IsCutInTheMiddle) {
    TempFolder folder;
    folder.Write("again.4dm", "again($1+1)\n");
    const ToolResult run = RunTool({"run", folder.Write("a.4dm", "again(0)\n"), "--max-depth", "100"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Has(run.err, "error -61: Too many nested calls")) << run.err;
    EXPECT_TRUE(Has(run.err, " more calls\n")) << run.err;
    EXPECT_TRUE(run.err.ends_with("a.4dm:1\n")) << run.err;
    EXPECT_LE(std::count(run.err.begin(), run.err.end(), '\n'), 30);
}

TEST(Output, LongAndOddSourceLine_IsShownShortAndHarmless) {
    TempFolder folder;
    const std::string code = "$x:=1/0  // \x1b[31m" + std::string(5000, 'x') + "\n";
    const ToolResult run = RunTool({"run", folder.Write("a.4dm", code)});
    EXPECT_FALSE(Has(run.err, "\x1b")) << run.err;
    EXPECT_LT(run.err.size(), 500U);
    EXPECT_TRUE(run.err.ends_with("xxx...\n")) << run.err;
}

TEST(Output, LineBreaksOfTheLanguage_AreLineBreaksOfTheSystem) {
    TempFolder folder;
    EXPECT_EQ(RunTool({"run", folder.Write("a.4dm", "ALERT(\"a\\rb\"+Char(13)+Char(10)+\"c\")\n")}).out, "a\nb\nc\n");
}

TEST(Input, FileAboveTheLimit_IsRefusedWithTheLimit) {
    TempFolder folder;
    const std::string large = folder.Write("large.4dm", std::string((16 << 20) + 1, ' '));
    EXPECT_EQ(RunTool({"run", large}).err, "zr: " + large + " is larger than 16 MiB, the limit for one method\n");
    const std::string input((16 << 20) + 1, '\n');
    EXPECT_EQ(RunTool({"run", "-"}, input).err, "zr: <stdin> is larger than 16 MiB, the limit for one method\n");
}

TEST(Input, PipeAsFile_IsRead) {
    TempFolder folder;
    const std::string out = folder.Path("out");
    EXPECT_EQ(StatusOfShell("echo 'ALERT(\"piped\")' | " + zrtest::ToolPath() + " run /dev/stdin >" + out), 0);
    EXPECT_EQ(ReadFile(out), "piped\n");
}

TEST(Input, FolderOfThousands_IsNotRead) {
    TempFolder folder;
    for (int i = 0; i < 3000; ++i) folder.Write("method " + std::to_string(i) + ".4dm", "\xff broken");
    folder.Write("method 1234.4dm", "$0:=\"found\"\n");
    const ToolResult run = RunTool({"run", folder.Write("a.4dm", "ALERT(method 1234(1))\n")});
    EXPECT_EQ(run.out, "found\n") << run.err;
}

}  // namespace
