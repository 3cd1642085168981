#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Language = CommandTest;

TEST_F(Language, CommandName_KnownAndUnknown_NameAndFlag) {
    EXPECT_EQ(Text(538, {1, L(9)}), "\"Sum\"");
    EXPECT_EQ(ShowAfter(2), "1");
    EXPECT_EQ(Text(538, {5, L(9)}), "\"Print form\"");
    EXPECT_EQ(ShowAfter(2), "0");
    for (const Args& args : {Args{0}, Args{-1}, Args{2001}, Args{1e300}, Args{}, Args{"x"}})
        EXPECT_EQ(Text(538, args), "\"\"");
}

class FrenchLanguage : public CommandTest {
    void Configure(Options& options) override { options.language = "fr"; }
};

TEST_F(FrenchLanguage, CommandName_FrenchHost_IsFrench) { EXPECT_EQ(Text(538, {1}), "\"Somme\""); }

TEST_F(Language, Choose_BooleanAndIndex_PickAValue) {
    static const Row rows[] = {
        {955, {true, "yes", "no"}, "\"yes\""},
        {955, {false, "yes", "no"}, "\"no\""},
        {955, {0, "a", "b"}, "\"a\""},
        {955, {1, "a", 7}, "7"},
        {955, {2, "a", "b"}, "undefined"},
        {955, {-1, "a", "b"}, "undefined"},
        {955, {1e300, "a"}, "undefined"},
        {955, {}, "undefined"},
        {955, {true}, "undefined"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Language, Types_EveryKind_AsTheLanguageNumbersThem) {
    static const Row rows[] = {
        {295, {"x"}, "2"},
        {295, {1.5}, "1"},
        {295, {L(1)}, "9"},
        {295, {true}, "6"},
        {295, {D(2024, 1, 1)}, "4"},
        {295, {H(1)}, "11"},
        {295, {Hex("00")}, "30"},
        {295, {Texts({})}, "18"},
        {295, {Longints({})}, "16"},
        {295, {Json("{}")}, "38"},
        {295, {Json("[]")}, "42"},
        {295, {}, "5"},
        {1509, {Value::Null()}, "255"},
        {1509, {Value(Ref<Picture>())}, "3"},
        {82, {}, "true"},
        {82, {0}, "false"},
    };
    EXPECT_ROWS(rows);
    Run(89, {"text"});
    EXPECT_EQ(ShowAfter(1), "\"\"");
    Run(89, {Longints({1, 2})});
    EXPECT_EQ(ShowAfter(1), "[]");
    Run(89, {});
}

TEST_F(Language, Pointers_ToVariables_AreToldFromNil) {
    host->setVariable(u"known", Value(1.0));
    const Value pointer = Run(304, {"known"});
    EXPECT_EQ(Show(pointer), "pointer");
    EXPECT_EQ(Text(315, {pointer}), "false");
    EXPECT_EQ(Text(294, {pointer}), "true");
    EXPECT_EQ(Text(294, {Run(304, {"unknown"})}), "false");
    EXPECT_EQ(Text(315, {Value(PointerBlock{})}), "true");
    EXPECT_EQ(Text(315, {}), "true");
    EXPECT_EQ(Text(294, {}), "false");
    EXPECT_EQ(Text(304, {""}), "undefined");
    EXPECT_EQ(Text(304, {std::string(400, 'x')}), "undefined");
}

TEST_F(Language, ExecuteMethod_KnownAndUnknown_ResultAndOK) {
    host->registerMethod(u"Twice", [](std::span<Value> arguments) {
        return arguments.empty() ? Value() : Value(arguments[0].number() * 2);
    });
    Run(1007, {"twice", 0, 21});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(2), "42");
    Run(1007, {"twice", Star(), 21});
    EXPECT_TRUE(OK());
    Run(1007, {"twice"});
    EXPECT_TRUE(OK());
    Run(1007, {"unknown", 5});
    EXPECT_FALSE(OK());
    EXPECT_EQ(error, ZR_ERR_UNKNOWN_METHOD);
    EXPECT_EQ(ShowAfter(2), "5");
    Run(1007, {});
    EXPECT_FALSE(OK());
    bool ran = false;
    host->registerMethod(u"Mark", [&](std::span<Value>) {
        ran = true;
        return Value(u"result");
    });
    Run(63, {"Mark"});
    EXPECT_TRUE(ran);
    Run(63, {"not a method at all (("});
    EXPECT_FALSE(OK());
    Run(63, {});
}

}  // namespace
}  // namespace zrhost::test
