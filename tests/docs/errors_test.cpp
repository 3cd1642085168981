// docs/errors.md against the header that holds every error, and its examples against the tool.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "tests/docs/DocsTesting.h"

namespace {

using zrtest::Lines;
using zrtest::ReadPage;
using zrtest::ReplaceAll;

constexpr const char* kInserted = "…";  // a name or a number in the words of the page
constexpr size_t kLeastRows = 60, kLeastExamples = 40;

struct Error {
    long number = 0;
    std::string words;
    bool operator<(const Error& other) const {
        return number != other.number ? number < other.number : words < other.words;
    }
};

struct Row : Error {
    std::string code;  // the example; empty = none
    std::vector<std::string> options;
    size_t line = 0;  // of the page, from 1
};

void PrintTo(const Row& row, std::ostream* stream) { *stream << row.number << " " << row.words; }

// The header --------------------------------------------------------------------------------------------------------

std::string Unescaped(const std::string& literal) {
    std::string text = literal;
    ReplaceAll(&text, "\\\"", "\"");
    return text;
}

// A row's pieces with what is inserted between them.
std::string WordsOf(const std::string& pieces) {
    static const std::regex literal("\"((?:[^\"\\\\]|\\\\.)*)\"");
    std::vector<std::string> texts;
    for (std::sregex_iterator at(pieces.begin(), pieces.end(), literal), end; at != end; ++at)
        texts.push_back(Unescaped((*at)[1]));
    std::string words = texts.empty() ? "" : texts[0];
    for (size_t i = 1; i < texts.size(); ++i) words += kInserted + texts[i];
    if (texts.size() == 3 && !texts[2].empty()) words += kInserted;  // the third insertion stands at the end
    return words;
}

std::vector<Error> ErrorsOfHeader() {
    const std::string header = ReadPage("runtime/ZR_API_Errors.h");
    static const std::regex row("ZR_ErrorWords kError\\w+ =\\s*\\{\\s*(-\\d+),([^}]*)\\};"),
        number("kError\\w+ = (-\\d+)[,;]");
    std::vector<Error> errors;
    for (std::sregex_iterator at(header.begin(), header.end(), row), end; at != end; ++at)
        errors.push_back({std::stol((*at)[1]), WordsOf((*at)[2])});
    for (std::sregex_iterator at(header.begin(), header.end(), number), end; at != end; ++at)
        errors.push_back({std::stol((*at)[1]), ""});
    return errors;
}

// The page ----------------------------------------------------------------------------------------------------------

// | number | words | cause | example |
std::vector<Row> RowsOfPage() {
    static const std::regex form("^\\| (-\\d+) \\| (?:([^|]*) )?\\| [^|]*\\|(.*)\\|$"),
        example("^ `([^`]*)`(?: with `([^`]*)`)? $");
    std::vector<Row> rows;
    const std::vector<std::string> lines = Lines(ReadPage("docs/errors.md"));
    for (size_t i = 0; i < lines.size(); ++i) {
        std::smatch cells, parts;
        if (!std::regex_match(lines[i], cells, form)) continue;
        Row row;
        row.number = std::stol(cells[1]);
        row.words = cells[2];
        row.line = i + 1;
        const std::string last = cells[3];
        if (std::regex_match(last, parts, example)) {
            row.code = parts[1].str() + "\n";
            ReplaceAll(&row.code, " ⏎ ", "\n");
            std::istringstream options(parts[2]);
            for (std::string option; options >> option;) row.options.push_back(option);
        } else {
            EXPECT_EQ(last, " ") << "docs/errors.md:" << row.line << " has an example that cannot be read";
        }
        rows.push_back(row);
    }
    return rows;
}

std::vector<Row> RowsWithExamples() {
    std::vector<Row> rows;
    for (Row& row : RowsOfPage())
        if (!row.code.empty()) rows.push_back(std::move(row));
    return rows;
}

TEST(ErrorsPage, EveryErrorOfTheHeader_StandsInTheTable) {
    std::set<Error> told;
    std::set<long> numbers;
    for (const Row& row : RowsOfPage()) {
        EXPECT_TRUE(told.insert(row).second) << row.number << " " << row.words << " stands there twice";
        numbers.insert(row.number);
    }
    const std::vector<Error> errors = ErrorsOfHeader();
    EXPECT_GE(errors.size(), kLeastRows) << "the header has another form than this test reads";
    for (const Error& error : errors) {
        const bool stands = error.words.empty() ? numbers.count(error.number) != 0 : told.count(error) != 0;
        EXPECT_TRUE(stands) << "not in docs/errors.md: " << error.number << " " << error.words;
    }
}

TEST(ErrorsPage, Numbers_Descend) {
    const std::vector<Row> rows = RowsOfPage();
    EXPECT_GE(RowsWithExamples().size(), kLeastExamples);
    for (size_t i = 1; i < rows.size(); ++i) EXPECT_LE(rows[i].number, rows[i - 1].number) << rows[i].line;
}

// The words of a row, "…" standing for anything.
std::regex PatternOf(const std::string& words) {
    std::string pattern;
    for (char c : words) {
        if (std::string_view(".*+?^$()[]{}|\\").find(c) != std::string_view::npos) pattern += '\\';
        pattern += c;
    }
    ReplaceAll(&pattern, kInserted, ".*");
    return std::regex(pattern);
}

class ErrorExamples : public testing::TestWithParam<Row> {};

TEST_P(ErrorExamples, Run_EndsInTheErrorOfTheRow) {
    const Row& row = GetParam();
    const zrtest::TempFolder folder;
    std::vector<std::string> arguments = {"run", "--json"};
    arguments.insert(arguments.end(), row.options.begin(), row.options.end());
    arguments.push_back(folder.Write("example.4dm", row.code));
    const zrtest::ToolResult run = zrtest::RunTool(arguments);
    ASSERT_EQ(run.status, 1) << "docs/errors.md:" << row.line << "\n" << run.out << run.err;
    const auto json = nlohmann::json::parse(run.out, nullptr, /*allow_exceptions*/ false);
    ASSERT_TRUE(json.is_object() && json.contains("error")) << run.out;
    EXPECT_EQ(json["error"].value("number", 0L), row.number) << run.out;
    EXPECT_TRUE(std::regex_match(json["error"].value("text", ""), PatternOf(row.words))) << run.out;
}

std::string NameOf(const testing::TestParamInfo<Row>& info) {
    return "Line_" + std::to_string(info.param.line) + "_Minus_" + std::to_string(-info.param.number);
}

INSTANTIATE_TEST_SUITE_P(ErrorsPage, ErrorExamples, testing::ValuesIn(RowsWithExamples()), NameOf);

}  // namespace
