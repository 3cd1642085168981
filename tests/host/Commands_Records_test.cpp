#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Records = CommandTest;

TEST_F(Records, Structure_Empty_SaysSo) {
    static const Row rows[] = {
        {254, {}, "0"},      {255, {1}, "0"},    {256, {1}, "\"\""},      {257, {1, 1}, "\"\""},
        {999, {1}, "false"}, {999, {}, "false"}, {1000, {1, 1}, "false"}, {1000, {-1, 1e300}, "false"},
        {252, {1}, "0"},     {253, {1, 1}, "0"}, {964, {}, "true"},
    };
    EXPECT_ROWS(rows);
    Run(258, {1, 1, L(9), L(9), true, true, true});
    EXPECT_EQ(ShowAfter(3), "0");
    EXPECT_EQ(ShowAfter(7), "false");
}

TEST_F(Records, Selections_Empty_AnswerForNoRecord) {
    static const Row rows[] = {
        {36, {}, "true"},   {198, {}, "true"},  {76, {}, "0"},       {83, {}, "0"},
        {243, {}, "-1"},    {246, {}, "0"},     {147, {}, "false"},  {314, {}, "false"},
        {668, {}, "false"}, {669, {}, "false"}, {195, {"set"}, "0"}, {273, {"set"}, "false"},
    };
    EXPECT_ROWS(rows);
    Run(260, {Arg(), Longints({1, 2})});
    EXPECT_EQ(ShowAfter(2), "[]");
    Run(339, {Arg(), Texts({"old"})});
    EXPECT_EQ(ShowAfter(2), "[]");
}

TEST_F(Records, Changes_NoTable_SetOKToZero) {
    for (int id : {47, 50, 51, 53, 58, 66, 68, 117, 118, 140, 277, 331, 332, 333, 334, 341, 640}) {
        host->setOK(true);
        EXPECT_EQ(Text(id, {"name"}), "undefined") << id;
        EXPECT_FALSE(OK()) << id;
        EXPECT_EQ(error, 0) << id;
    }
}

TEST_F(Records, Transactions_Nested_CountLevelsAndSetOK) {
    EXPECT_EQ(Text(397), "false");
    Run(240);
    EXPECT_FALSE(OK());
    Run(239);
    Run(239);
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(961), "2");
    EXPECT_EQ(Text(397), "true");
    Run(1385);
    EXPECT_EQ(Text(1387), "false");
    EXPECT_EQ(Text(397), "true");
    Run(1386);
    EXPECT_EQ(Text(1387), "true");
    Run(1386);
    EXPECT_FALSE(OK());
    Run(240);
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(961), "1");
    Run(241);
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(961), "0");
    Run(241);
    EXPECT_EQ(Text(961), "0");
    Run(1385);
    EXPECT_FALSE(OK());
}

TEST_F(Records, AutomaticRelations_SetAndGet_RoundTrip) {
    Run(310, {true, false});
    Run(899, {false, true});
    EXPECT_EQ(ShowAfter(1), "true");
    EXPECT_EQ(ShowAfter(2), "false");
    Run(310, {});
    Run(899, {Arg(), Arg()});
    EXPECT_EQ(ShowAfter(1), "true");
}

}  // namespace
}  // namespace zrhost::test
