// The examples of the pages, run by the tool. A page holds
//
//     ```4d NAME       a method of that name beside the next program
//     ```4d            a program
//     ```text          what it prints: standard output, then standard error
#include <gtest/gtest.h>

#include <cctype>

#include "tests/docs/DocsTesting.h"

namespace {

constexpr const char* kPages[] = {"README.md", "docs/language.md"};
constexpr size_t kLeastSnippets = 20;

struct Method {
    std::string name, code;
};

struct Snippet {
    std::string page;
    size_t line = 0;  // of the fence, from 1
    std::vector<Method> methods;
    std::string code, output;
    bool hasOutput = false;
};

void PrintTo(const Snippet& snippet, std::ostream* stream) { *stream << snippet.page << ":" << snippet.line; }

// The lines between a fence and its end; *at: of the fence, moved to its end.
std::string Block(const std::vector<std::string>& lines, size_t* at) {
    std::string block;
    for (++*at; *at < lines.size() && lines[*at] != "```"; ++*at) block += lines[*at] + "\n";
    return block;
}

void ReadSnippets(const std::string& page, std::vector<Snippet>* snippets) {
    const std::vector<std::string> lines = zrtest::Lines(zrtest::ReadPage(page));
    std::vector<Method> methods;
    bool open = false;  // the last snippet waits for its output
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string fence = lines[i];
        const size_t line = i + 1;
        if (fence.rfind("```", 0) != 0) continue;
        std::string block = Block(lines, &i);
        if (fence.rfind("```4d ", 0) == 0) methods.push_back({fence.substr(6), block});
        if (fence == "```4d") {
            snippets->push_back({page, line, std::move(methods), block, "", false});
            methods.clear();
        }
        if (fence == "```text" && open) {
            snippets->back().output = block;
            snippets->back().hasOutput = true;
        }
        open = fence == "```4d";
    }
    EXPECT_TRUE(methods.empty()) << page << " ends with a method that no program calls";
}

std::vector<Snippet> Snippets() {
    std::vector<Snippet> snippets;
    for (const char* page : kPages) ReadSnippets(page, &snippets);
    return snippets;
}

TEST(Pages, EveryProgram_IsFollowedByItsOutput) {
    const std::vector<Snippet> snippets = Snippets();
    EXPECT_GE(snippets.size(), kLeastSnippets) << "the pages have another form than this test reads";
    for (const Snippet& snippet : snippets) EXPECT_TRUE(snippet.hasOutput) << snippet.page << ":" << snippet.line;
}

class Pages : public testing::TestWithParam<Snippet> {};

TEST_P(Pages, Run_PrintsWhatThePageShows) {
    const Snippet& snippet = GetParam();
    const zrtest::TempFolder folder;
    for (const Method& method : snippet.methods) folder.Write(method.name + ".4dm", method.code);
    const std::string file = folder.Write("snippet.4dm", snippet.code);
    const zrtest::ToolResult run = zrtest::RunTool({"run", file});
    ASSERT_FALSE(run.timedOut) << snippet.page << ":" << snippet.line;
    std::string shown = run.out + run.err;
    zrtest::ReplaceAll(&shown, folder.Path(""), "");  // errors name the file without its folder
    EXPECT_EQ(shown, snippet.output) << snippet.page << ":" << snippet.line;
    EXPECT_EQ(run.status, run.err.empty() ? 0 : 1) << run.err;
}

std::string NameOf(const testing::TestParamInfo<Snippet>& info) {
    std::string name = info.param.page;
    for (char& c : name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    return name + "_Line_" + std::to_string(info.param.line);
}

INSTANTIATE_TEST_SUITE_P(Documentation, Pages, testing::ValuesIn(Snippets()), NameOf);

}  // namespace
