// Golden programs: every script below this folder is run by the zr tool, and what it prints is compared with its
// comments.
//
//   ALERT(String(2+3*4))  // expect: 20        one line of output, in the order of the comments
//   $x:=1/0               // error: -2 TEXT     the error expected at this line: number and whole text
//   // error next: -6 TEXT                     the same for the next line, which then needs no comment of its own
//
// A script without an error comment ends without an error. A folder NAME with a NAME.4dm in it is one script with
// methods of its own; an error may be expected in any of them, output only in NAME.4dm.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "tests/support/RunTool.h"

namespace {

namespace fs = std::filesystem;

struct Script {
    std::string name;             // subject and name, as the test is called
    fs::path file;                // the method that is started
    std::vector<fs::path> files;  // it, and the methods of its own folder
};

struct ExpectedError {
    long number = 0;
    long line = 0;       // [1..]
    std::string method;  // of the file that holds the comment
    std::string text;
};

struct Expected {
    std::vector<std::string> output;
    std::vector<ExpectedError> errors;
};

void PrintTo(const Script& script, std::ostream* stream) { *stream << script.name; }

std::string TestName(const fs::path& relative) {
    std::string name = relative.generic_string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

bool IsMethod(const fs::path& path) { return path.extension() == ".4dm"; }

// A folder that holds a method of its own name is one script; any other holds a script a method.
std::vector<Script> FindScripts() {
    const fs::path root = fs::path(ZR_SOURCE_DIR) / "tests" / "scripts";
    std::vector<Script> scripts;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const fs::path& path = entry.path();
        if (!IsMethod(path)) continue;
        const fs::path folder = path.parent_path();
        const fs::path started = folder / (folder.filename().string() + ".4dm");
        if (!fs::exists(started)) {
            scripts.push_back({TestName(fs::relative(path, root).replace_extension()), path, {path}});
        } else if (path == started) {
            Script script{TestName(fs::relative(folder, root)), path, {path}};
            for (const auto& other : fs::directory_iterator(folder))
                if (IsMethod(other.path()) && other.path() != started) script.files.push_back(other.path());
            scripts.push_back(script);
        }
    }
    std::sort(scripts.begin(), scripts.end(), [](const Script& a, const Script& b) { return a.name < b.name; });
    return scripts;
}

// What follows a mark in a line, without the blank behind it and the end of line.
std::optional<std::string> Behind(const std::string& line, const std::string& mark) {
    const size_t at = line.rfind(mark);
    if (at == std::string::npos) return std::nullopt;
    std::string rest = line.substr(at + mark.size());
    if (!rest.empty() && rest.front() == ' ') rest.erase(0, 1);
    if (!rest.empty() && rest.back() == '\r') rest.pop_back();
    return rest;
}

ExpectedError ParseError(const std::string& words, long line, const fs::path& file) {
    const size_t blank = words.find(' ');
    ExpectedError error;
    error.number = std::strtol(words.c_str(), nullptr, 10);
    error.line = line;
    error.method = file.stem().string();
    error.text = blank == std::string::npos ? "" : words.substr(blank + 1);
    return error;
}

Expected ReadExpected(const Script& script) {
    Expected expected;
    for (const auto& file : script.files) {
        std::istringstream lines(zrtest::ReadFile(file.string()));
        long number = 0;
        for (std::string line; std::getline(lines, line);) {
            ++number;
            if (file == script.file) {
                auto output = Behind(line, "// expect:");
                if (!output) output = Behind(line, "//expect:");
                if (output) expected.output.push_back(*output);
            }
            if (const auto here = Behind(line, "// error:")) expected.errors.push_back(ParseError(*here, number, file));
            else if (const auto next = Behind(line, "// error next:"))
                expected.errors.push_back(ParseError(*next, number + 1, file));
        }
    }
    return expected;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string all;
    for (const auto& line : lines) all += "  " + line + "\n";
    return all.empty() ? "  (nothing)\n" : all;
}

std::string Described(const ExpectedError& error) {
    if (error.number == 0) return "no error";
    return error.method + ":" + std::to_string(error.line) + ": error " + std::to_string(error.number) + ": " +
           error.text;
}

class Scripts : public testing::TestWithParam<Script> {};

TEST_P(Scripts, Run_GivesWhatItsCommentsSay) {
    const Script& script = GetParam();
    const Expected expected = ReadExpected(script);
    ASSERT_FALSE(expected.output.empty() && expected.errors.empty()) << "the script expects nothing: " << script.file;
    ASSERT_LE(expected.errors.size(), 1U) << "the script expects more than one error: " << script.file;
    const ExpectedError wanted = expected.errors.empty() ? ExpectedError{} : expected.errors.front();

    const zrtest::ToolResult run = zrtest::RunTool({"run", "--json", script.file.string()});
    ASSERT_FALSE(run.timedOut) << script.file << " did not end\n" << run.err;
    ASSERT_EQ(run.signal, 0) << script.file << "\n" << run.err;
    const auto json = nlohmann::json::parse(run.out, nullptr, /*allow_exceptions*/ false);
    ASSERT_TRUE(json.is_object() && json.contains("output") && json.contains("error"))
        << script.file << "\nstatus " << run.status << "\nout: " << run.out << "\nerr: " << run.err;

    const auto output = json["output"].get<std::vector<std::string>>();
    EXPECT_TRUE(output == expected.output) << script.file << "\nexpected output:\n"
                                           << Joined(expected.output) << "actual output:\n"
                                           << Joined(output);

    ExpectedError actual;
    actual.number = json["error"].value("number", 0L);
    actual.line = json["error"].value("line", 0L);
    actual.method = json["error"].value("method", "");
    actual.text = json["error"].value("text", "");
    // The started method may go by any name; a method that is called goes by its file's.
    if (wanted.number == 0 || wanted.method == script.file.stem().string()) actual.method = wanted.method;
    if (wanted.number == 0 && actual.number == 0) actual = wanted;
    EXPECT_EQ(Described(wanted), Described(actual)) << script.file;
    EXPECT_EQ(run.status, wanted.number == 0 ? 0 : 1) << script.file << "\n" << run.err;
}

INSTANTIATE_TEST_SUITE_P(Golden, Scripts, testing::ValuesIn(FindScripts()),
                         [](const testing::TestParamInfo<Script>& info) { return info.param.name; });

TEST(ScriptsFolder, FindScripts_FindsThemAll) {
    const auto scripts = FindScripts();
    EXPECT_GE(scripts.size(), 600U);
    for (const auto& script : scripts) {
        const std::string text = zrtest::ReadFile(script.file.string());
        EXPECT_EQ(text.substr(0, 3), "// ") << "no description in the first line of " << script.file;
    }
}

}  // namespace
