#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Arrays = CommandTest;

const Arg kDescending = Operator(ZR_OP_LESS), kAscending = Operator(ZR_OP_GREATER);

TEST_F(Arrays, Sort_KindsAndSigns_OrderElements) {
    const struct {
        Args args;
        const char* expected;
    } rows[] = {
        {{Reals({3, 1, 2})}, "[1, 2, 3]"},
        {{Reals({3, 1, 2}), kAscending}, "[1, 2, 3]"},
        {{Reals({3, 1, 2}), kDescending}, "[3, 2, 1]"},
        {{Longints({-1, 5, 0})}, "[-1, 0, 5]"},
        {{Texts({"b", "É", "a", "d"})}, R"(["a", "b", "d", "É"])"},
        {{Texts({"b", "A", "c"}), kDescending}, R"(["c", "b", "A"])"},
        {{Dates({{1, 2, 2024}, {29, 1, 2024}, {31, 12, 2023}})}, "[2023-12-31, 2024-01-29, 2024-02-01]"},
        {{Booleans({true, false, true})}, "[false, true, true]"},
        {{Reals({})}, "[]"},
        {{Reals({1})}, "[1]"},
    };
    for (const auto& row : rows) {
        Run(229, row.args);
        EXPECT_EQ(ShowAfter(1), row.expected) << &row - rows;
    }
}

TEST_F(Arrays, Sort_OtherArrays_FollowTheFirst) {
    Run(229, {Longints({3, 1, 2}), Texts({"three", "one", "two"}), Reals({30, 10, 20}), kDescending});
    EXPECT_EQ(ShowAfter(1), "[3, 2, 1]");
    EXPECT_EQ(ShowAfter(2), R"(["three", "two", "one"])");
    EXPECT_EQ(ShowAfter(3), "[30, 20, 10]");
    Run(229, {Longints({2, 1, 2, 1}), Texts({"a", "b", "c", "d"})});
    EXPECT_EQ(ShowAfter(2), R"(["b", "d", "a", "c"])") << "equal ones keep their order";
    Run(229, {Longints({2, 1}), Texts({"a"})});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(1), "[2, 1]");
    for (const Args& wrong : {Args{}, Args{5}, Args{kAscending}, Args{Longints({2, 1}), 5}}) {
        Run(229, wrong);
        EXPECT_FALSE(OK());
    }
}

TEST_F(Arrays, Sort_Interrupted_LeavesTheArray) {
    std::vector<double> numbers;
    for (int i = 0; i < 200000; ++i) numbers.push_back((i * 7919) % 200003);
    interrupt = true;
    Run(229, {Reals(numbers)});
    EXPECT_FALSE(OK());
    EXPECT_EQ(After(1).elements()[2].number(), 7919);
}

TEST_F(Arrays, MultiSort_Levels_FromTheLeft) {
    Run(718,
        {Texts({"b", "a", "b", "a"}), kAscending, Longints({1, 2, 3, 4}), kDescending, Texts({"w", "x", "y", "z"})});
    EXPECT_EQ(ShowAfter(1), R"(["a", "a", "b", "b"])");
    EXPECT_EQ(ShowAfter(3), "[4, 2, 3, 1]");
    EXPECT_EQ(ShowAfter(5), R"(["z", "x", "y", "w"])");
    Run(718, {Texts({"b", "a"}), Longints({1, 2})});
    EXPECT_EQ(ShowAfter(1), R"(["b", "a"])");
    Run(718, {Longints({1, 2}), kDescending, Longints({1})});
    EXPECT_FALSE(OK());
    Run(718, {});
    EXPECT_FALSE(OK());
}

TEST_F(Arrays, Find_WildcardsStartsAndKinds_AsDocumented) {
    static const Row rows[] = {
        {230, {Texts({"one", "Two", "three"}), "TWO"}, "2"},
        {230, {Texts({"one", "two", "three"}), "t@"}, "2"},
        {230, {Texts({"one", "two", "three"}), "t@", 3}, "3"},
        {230, {Texts({"one"}), "x"}, "-1"},
        {230, {Texts({"one"}), "one", 9}, "-1"},
        {230, {Texts({"one"}), "one", -9}, "1"},
        {230, {Longints({5, 6, 7}), 7}, "3"},
        {230, {Longints({5, 6, 7}), "7"}, "-1"},
        {230, {Reals({0.5}), 0.5}, "1"},
        {230, {Booleans({false, true}), true}, "2"},
        {230, {Dates({{1, 1, 2024}}), D(2024, 1, 1)}, "1"},
        {230, {Dates({{1, 1, 2024}}), 5}, "-1"},
        {230, {5, 5}, "-1"},
        {230, {}, "-1"},
        {907, {Texts({"a", "b", "A"}), "a"}, "2"},
        {907, {Longints({1, 1, 1}), 1}, "3"},
        {907, {Longints({}), 1}, "0"},
        {907, {}, "0"},
        {274, {Longints({1, 2})}, "2"},
        {274, {Longints({})}, "0"},
        {274, {5}, "0"},
        {274, {}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Arrays, FindSorted_Positions_BoundTheMatches) {
    EXPECT_EQ(Text(1333, {Longints({1, 3, 3, 5}), 3, kAscending, L(0), L(0)}), "true");
    EXPECT_EQ(ShowAfter(4), "2");
    EXPECT_EQ(ShowAfter(5), "3");
    EXPECT_EQ(Text(1333, {Longints({5, 3, 3, 1}), 3, kDescending, L(0), L(0)}), "true");
    EXPECT_EQ(ShowAfter(4), "2");
    EXPECT_EQ(Text(1333, {Longints({1, 5}), 3, kAscending, L(0), L(0)}), "false");
    EXPECT_EQ(ShowAfter(4), "2");
    EXPECT_EQ(ShowAfter(5), "2");
    EXPECT_EQ(Text(1333, {Texts({"a", "b"}), "B", kAscending}), "true");
    EXPECT_EQ(Text(1333, {Texts({"a", "b"}), "z", kAscending}), "false");
    EXPECT_EQ(Text(1333, {}), "false");
}

TEST_F(Arrays, InsertAndDelete_Positions_AsDocumented) {
    const struct {
        int id;
        Args args;
        const char* expected;
    } rows[] = {
        {227, {Longints({1, 2}), 2}, "[1, 0, 2]"},
        {227, {Longints({1, 2}), 1, 2}, "[0, 0, 1, 2]"},
        {227, {Longints({1, 2}), 99}, "[1, 2, 0]"},
        {227, {Longints({1, 2}), -3}, "[0, 1, 2]"},
        {227, {Longints({1, 2}), 1, 0}, "[1, 2]"},
        {227, {Longints({1, 2}), 1, -1}, "[1, 2]"},
        {227, {Texts({"a", "b"}), 2}, R"(["a", "", "b"])"},
        {228, {Longints({1, 2, 3}), 2}, "[1, 3]"},
        {228, {Longints({1, 2, 3}), 2, 99}, "[1]"},
        {228, {Longints({1, 2, 3}), 0}, "[1, 2, 3]"},
        {228, {Longints({1, 2, 3}), 4}, "[1, 2, 3]"},
        {228, {Longints({1, 2, 3}), 1, 0}, "[1, 2, 3]"},
        {228, {Texts({"a", "b", "c"}), 1, 2}, R"(["c"])"},
        {911, {Longints({1}), 2}, "[1, 2]"},
        {911, {Texts({}), "x"}, R"(["x"])"},
        {911, {Longints({1}), Json("{}")}, "[1]"},
        {911, {Arg(), "x"}, R"(["x"])"},
        {911, {Arg(), D(2024, 1, 1)}, "[2024-01-01]"},
    };
    for (const auto& row : rows) {
        Run(row.id, row.args);
        EXPECT_EQ(ShowAfter(1), row.expected) << &row - rows;
    }
    for (int id : {227, 228, 911}) Run(id, {});
    Run(911, {5, 5});
    EXPECT_EQ(ShowAfter(1), "5");
}

TEST_F(Arrays, Copy_AnArray_ReplacesTheTarget) {
    Run(226, {Texts({"a", "b"}), Texts({"old", "old", "old"})});
    EXPECT_EQ(ShowAfter(2), R"(["a", "b"])");
    Run(226, {Texts({"a"}), Arg()});
    EXPECT_EQ(ShowAfter(2), R"(["a"])");
    Run(226, {5, Texts({"old"})});
    EXPECT_EQ(ShowAfter(2), R"(["old"])");
}

TEST_F(Arrays, Declarations_NewAndExisting_KeepElements) {
    static const struct {
        int id, kind;
    } kinds[] = {{219, eVK_ArrayReal},    {220, eVK_ArrayInteger}, {221, eVK_ArrayLongint}, {222, eVK_ArrayText},
                 {223, eVK_ArrayBoolean}, {224, eVK_ArrayDate},    {279, eVK_ArrayPicture}, {280, eVK_ArrayPointer},
                 {1221, eVK_ArrayObject}, {1222, eVK_ArrayBlob},   {1223, eVK_ArrayTime}};
    for (const auto& row : kinds) {
        Run(row.id, {Arg(), 3});
        EXPECT_EQ(After(1).kind(), row.kind) << row.id;
        EXPECT_EQ(After(1).elements().size(), 4u) << row.id;
        Run(row.id, {Arg(), -1});
        EXPECT_NE(error, 0) << row.id;
        Run(row.id, {Arg(), 1e18});
        EXPECT_NE(error, 0) << row.id;
        Run(row.id, {Arg(), 2, 2});
        EXPECT_EQ(error, ZR_ERR_UNKNOWN_COMMAND) << row.id;
    }
    Run(221, {Longints({1, 2, 3}), 2});
    EXPECT_EQ(ShowAfter(1), "[1, 2]");
    Run(218, {10, Arg(), 2});
    EXPECT_EQ(ShowAfter(2), R"(["", ""])");
    Run(218, {Arg(), 2});
    EXPECT_EQ(ShowAfter(1), R"(["", ""])");
    Run(222, {});
    EXPECT_NE(error, 0);
}

}  // namespace
}  // namespace zrhost::test
