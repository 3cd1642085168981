// The registry as the tool lists it, against a list that was written by hand from the tables of commands.
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "tests/support/RunTool.h"

namespace {

constexpr long kLastHostCommand = 2000;
constexpr long kFirstKeyword = 30001, kLastKeyword = 30012;
constexpr long kFirstPrivate = 40001, kLastPrivate = 40010;

struct Row {
    std::string name;
    bool supported;
    bool threadSafe;
};

// The rows that `zr commands ARGUMENTS --json` prints, by number.
std::map<long, Row> List(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "commands");
    arguments.push_back("--json");
    const zrtest::ToolResult run = zrtest::RunTool(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    const auto json = nlohmann::json::parse(run.out, nullptr, /*allow_exceptions*/ false);
    EXPECT_TRUE(json.is_array()) << run.out.substr(0, 400);
    std::map<long, Row> rows;
    if (!json.is_array()) return rows;
    for (const auto& row : json) {
        const bool fresh = rows.try_emplace(row.at("id").get<long>(),
                                            Row{row.at("name").get<std::string>(), row.at("supported").get<bool>(),
                                                row.at("threadSafe").get<bool>()})
                               .second;
        EXPECT_TRUE(fresh) << "listed twice: " << row.dump();
    }
    return rows;
}

std::set<long> WrittenDown() {
    std::istringstream lines(zrtest::ReadFile(std::string(ZR_SOURCE_DIR) + "/tests/registry/supported.txt"));
    std::set<long> ids;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') continue;
        EXPECT_TRUE(ids.insert(std::stol(line)).second) << "written down twice: " << line;
    }
    return ids;
}

std::string Joined(const std::set<long>& ids) {
    std::string text;
    for (const long id : ids) text += " " + std::to_string(id);
    return text;
}

TEST(Registry, Supported_HostCommands_AreThoseWrittenDown) {
    const std::set<long> written = WrittenDown();
    ASSERT_GT(written.size(), 100U);
    std::set<long> missing = written, surplus;
    for (const auto& [id, row] : List({"--supported"}))
        if (id <= kLastHostCommand && missing.erase(id) == 0) surplus.insert(id);
    EXPECT_TRUE(missing.empty()) << "written down, yet not supported:" << Joined(missing);
    EXPECT_TRUE(surplus.empty()) << "supported, yet not written down:" << Joined(surplus);
}

TEST(Registry, Supported_KeywordsAndPrivateCommands_AreAllThere) {
    const auto rows = List({"--supported"});
    static const struct { long first, last; } ranges[] = {{kFirstKeyword, kLastKeyword}, {kFirstPrivate, kLastPrivate}};
    for (const auto& range : ranges) {
        for (long id = range.first; id <= range.last; ++id) {
            const auto row = rows.find(id);
            ASSERT_NE(row, rows.end()) << id;
            EXPECT_TRUE(row->second.supported) << id;
            EXPECT_TRUE(row->second.threadSafe) << id;
        }
    }
    EXPECT_EQ(rows.upper_bound(kLastPrivate), rows.end());
}

TEST(Registry, Supported_EveryRow_SaysSo) {
    for (const auto& [id, row] : List({"--supported"})) {
        EXPECT_TRUE(row.supported) << id;
        EXPECT_FALSE(row.name.empty()) << id;
    }
}

TEST(Registry, Names_OfSomeRows_AreTheEnglishOnes) {
    static const struct {
        long id;
        const char* name;
    } rows[] = {{1, "Sum"},
                {10, "String"},
                {41, "ALERT"},
                {229, "SORT ARRAY"},
                {955, "Choose"},
                {1488, "C_COLLECTION"},
                {30001, "If"},
                {30002, "Else"},
                {30003, "End If"},
                {30004, "For"},
                {30005, "End For"},
                {30006, "Repeat"},
                {30007, "Until"},
                {30008, "While"},
                {30009, "End while"},
                {30010, "Case of"},
                {30011, "End case"},
                {30012, ":"},
                {40001, "_Get Color"},
                {40002, "_Get Fitting Text"},
                {40003, "_Get Current Execution Context"},
                {40004, "_Add Styled Text"},
                {40005, "_Set Chart Data"},
                {40006, "_Get 4D Variable Pointer"},
                {40007, "_GET 4D VARIABLE"},
                {40008, "_SET 4D VARIABLE"},
                {40009, "_HTML Encode"},
                {40010, "_SET ANCHOR"}};
    const auto listed = List({});
    for (const auto& row : rows) {
        const auto found = listed.find(row.id);
        ASSERT_NE(found, listed.end()) << row.id;
        EXPECT_EQ(found->second.name, row.name) << row.id;
    }
}

TEST(Registry, ThreadSafe_OfSomeRows_IsTheHosts) {
    static const struct {
        long id;
        bool safe;
    } rows[] = {{1, true}, {10, true}, {41, true}, {400, false}, {523, false}, {524, false}, {40, false}};
    const auto listed = List({});
    for (const auto& row : rows) {
        const auto found = listed.find(row.id);
        ASSERT_NE(found, listed.end()) << row.id;
        EXPECT_EQ(found->second.threadSafe, row.safe) << row.id;
    }
}

TEST(Registry, All_HoldsTheUnsupportedAsWell) {
    const auto all = List({});
    const auto supported = List({"--supported"});
    EXPECT_GT(all.size(), supported.size());
    for (const auto& [id, row] : supported) {
        const auto found = all.find(id);
        ASSERT_NE(found, all.end()) << id;
        EXPECT_EQ(found->second.name, row.name) << id;
        EXPECT_EQ(found->second.threadSafe, row.threadSafe) << id;
    }
    for (const auto& [id, row] : all) EXPECT_EQ(row.supported, supported.count(id) == 1) << id;
}

}  // namespace
