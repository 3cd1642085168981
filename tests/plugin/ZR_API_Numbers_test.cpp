#include "plugin/ZR_API_Numbers.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "tests/plugin/FakeHost.h"

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
}  // namespace

TEST(Numbers, FloatToLong_Table_RoundsHalfUpAndTruncatesNegatives) {
    static const struct {
        float value;
        long answer;
    } rows[] = {{2.5f, 3},
                {2.4f, 2},
                {-2.5f, -2},
                {-2.9f, -2},
                {0.f, 0},
                {0.5f, 1},
                {-0.5f, 0},
                {0.49f, 0},
                {16777216.f, 16777216},
                {1e30f, LONG_MAX},
                {-1e30f, LONG_MIN},
                {(float)kInfinity, LONG_MAX},
                {(float)-kInfinity, LONG_MIN},
                {(float)kNaN, 0}};
    for (const auto& row : rows) EXPECT_EQ(ZR_FloatToLong(row.value), row.answer) << row.value;
}

TEST(Numbers, DoubleToLong_Table_RoundsHalfUpAndTruncatesNegatives) {
    static const struct {
        double value;
        long answer;
    } rows[] = {{2.5, 3},
                {2.4, 2},
                {-2.5, -2},
                {0.49999999999999994, 0},
                {4503599627370495.5, 4503599627370496},
                {9007199254740993.0, 9007199254740992},
                {9223372036854774784.0, 9223372036854774784},
                {9223372036854775808.0, LONG_MAX},
                {-9223372036854775808.0, LONG_MIN},
                {kInfinity, LONG_MAX},
                {-kInfinity, LONG_MIN},
                {kNaN, 0}};
    for (const auto& row : rows) EXPECT_EQ(ZR_DoubleToLong(row.value), row.answer) << row.value;
}

TEST(Numbers, FloatToLongAlwaysRoundUp_Table_AddsForAnyFraction) {
    static const struct {
        float value;
        long answer;
    } rows[] = {{2.01f, 3}, {2.0f, 2},         {0.001f, 1},        {0.f, 0},        {-2.5f, -2},
                {-0.1f, 0}, {1e30f, LONG_MAX}, {-1e30f, LONG_MIN}, {(float)kNaN, 0}};
    for (const auto& row : rows) EXPECT_EQ(ZR_FloatToLongAlwaysRoundUp(row.value), row.answer) << row.value;
}

TEST(Numbers, DoubleToLongManageOverflow_Table_Gives32BitsSigned) {
    static const struct {
        double value;
        long answer;
    } rows[] = {{0, 0},
                {1.9, 1},
                {-1.9, -1},
                {2147483647.0, 2147483647},
                {2147483647.9, 2147483647},
                {2147483648.0, -2147483648L},
                {4294967295.0, -1},
                {4294967296.0, 0},
                {4294967297.0, 1},
                {8589934592.0, 0},
                {-2147483648.0, -2147483648L},
                {-2147483649.0, 2147483647},
                {1e300, 0},
                {-1e300, 0},
                {kInfinity, 0},
                {kNaN, 0}};
    for (const auto& row : rows) EXPECT_EQ(ZR_DoubleToLongManageOverflow(row.value), row.answer) << row.value;
}

TEST(Numbers, Potenz_Table_MultipliesModulo64Bits) {
    static const struct {
        unsigned long base, exponent, answer;
    } rows[] = {{2, 0, 1},
                {0, 0, 1},
                {0, 5, 0},
                {10, 3, 1000},
                {2, 63, 1ul << 63},
                {2, 64, 0},
                {3, 4, 81},
                {1, ULONG_MAX, 1},
                {7, 23, 8922003266371364727ul},
                {10, 19, 10000000000000000000ul},
                {ULONG_MAX, ULONG_MAX, ULONG_MAX}};
    for (const auto& row : rows)
        EXPECT_EQ(ZR_Potenz(row.base, row.exponent), row.answer) << row.base << "^" << row.exponent;
}

TEST(Numbers, Decimal2Hex_Table_WritesEightDigitsAndNoTerminator) {
    static const struct {
        unsigned long value;
        const char* digits;
    } rows[] = {{0, "00000000"},           {255, "000000FF"},       {0xDEADBEEF, "DEADBEEF"},
                {0x123456789, "23456789"}, {ULONG_MAX, "FFFFFFFF"}, {65536, "00010000"}};
    for (const auto& row : rows) {
        char text[10];
        memset(text, '~', sizeof text);
        decimal2hex(row.value, text);
        EXPECT_EQ(std::string(text, 8), row.digits) << row.value;
        EXPECT_EQ(text[8], '~');
    }
    decimal2hex(1, nullptr);
}

TEST(Numbers, Hex2Decimal_Table_ReadsBothCases) {
    static const struct {
        const char* digits;
        unsigned long value;
    } rows[] = {{"", 0},
                {"0", 0},
                {"ff", 255},
                {"FF", 255},
                {"DeadBeef", 0xDEADBEEF},
                {"00010000", 65536},
                {"FFFFFFFFFFFFFFFF", ULONG_MAX},
                {"1FFFFFFFFFFFFFFFE", ULONG_MAX - 1},
                {"g", 0}};
    for (const auto& row : rows) EXPECT_EQ(hex2decimal(row.digits), row.value) << row.digits;
    EXPECT_EQ(hex2decimal(nullptr), 0u);
}

TEST(Numbers, MaxAndBoolToLong_Table_AreAsNamed) {
    EXPECT_EQ(ZR_Max(1, 2), 2);
    EXPECT_EQ(ZR_Max(2, 1), 2);
    EXPECT_EQ(ZR_Max(-1, -2), -1);
    EXPECT_EQ(ZR_Max(LONG_MIN, LONG_MAX), LONG_MAX);
    EXPECT_EQ(ZR_BoolToLong(true), 1);
    EXPECT_EQ(ZR_BoolToLong(false), 0);
}

// Required: kind 24 stays here, though UnifyVarKind folds it.
TEST(Numbers, Convert4DToPluginType_EveryKind_FoldsFour) {
    for (int kind = -1; kind < 300; kind++) {
        int folded = kind == 0 || kind == 2 ? 33 : kind == 18 || kind == 21 ? 34 : kind;
        EXPECT_EQ(ZR_Convert4DToPluginType((short)kind), folded) << kind;
    }
}

TEST(Numbers, ConvertPluginTo4DType_EveryKind_FoldsTextKinds) {
    for (int kind = 0; kind < 300; kind++) {
        int folded = kind == 33 ? 2 : kind == 34 ? 18 : kind;
        EXPECT_EQ(ZR_ConvertPluginTo4DType((PA_VariableKind)kind), folded) << kind;
    }
}

TEST(Numbers, Milliseconds_TwoReadings_NeverFall) {
    long before = ZR_Milliseconds();
    EXPECT_GT(before, 0);
    for (int i = 0; i < 1000; i++) {
        long now = ZR_Milliseconds();
        EXPECT_GE(now, before);
        before = now;
    }
}

// Host facts -------------------------------------------------------------------------------------------------------

namespace {

PA_Variable* Parameter(EngineBlock* block, int n) { return At<PA_Variable*>(block->fParam1)[n - 1]; }

void AnswerKind(EngineBlock* block, int kind, int value) {
    PA_Variable* result = At<PA_Variable>(block->fParam2);
    *result = PA_CreateVariable(kind);
    PA_SetBooleanVariable(result, value != 0);
    PA_SetLongintVariable(result, value);
}

}  // namespace

TEST(Numbers, IsTableNoValid_AnswersOfTheHost_OnlyTrueIsTrue) {
    static const struct {
        int kind, value;
        bool valid;
    } rows[] = {{eVK_Boolean, 1, true}, {eVK_Boolean, 0, false}, {eVK_Longint, 1, false}, {eVK_Undefined, 0, false}};
    for (const auto& row : rows) {
        FakeHost host;
        int command = 0, table = 0, kind = 0;
        long count = 0;
        host.answer[ZR_SEL_ExecuteCommand] = [&](EngineBlock* block) {
            command = (int)block->fParam3;
            count = block->fParam4;
            kind = Parameter(block, 1)->fType;
            table = Parameter(block, 1)->uValue.fLongint;
            AnswerKind(block, row.kind, row.value);
        };
        EXPECT_EQ(ZR_IsTableNoValid(12), row.valid) << row.kind;
        EXPECT_EQ(command, 999);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(kind, eVK_Longint);
        EXPECT_EQ(table, 12);
        EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 2);  // the argument and the result
        EXPECT_EQ(host.liveHandles(), 0u);
    }
}

TEST(Numbers, IsFieldNoValid_OfTableAndField_AsksCommand1000) {
    FakeHost host;
    host.answer[ZR_SEL_ExecuteCommand] = [](EngineBlock* block) {
        EXPECT_EQ(block->fParam3, 1000);
        EXPECT_EQ(block->fParam4, 2);
        bool valid = Parameter(block, 1)->uValue.fLongint == 3 && Parameter(block, 2)->uValue.fLongint == 4;
        AnswerKind(block, eVK_Boolean, valid);
    };
    EXPECT_TRUE(ZR_IsFieldNoValid(3, 4));
    EXPECT_FALSE(ZR_IsFieldNoValid(4, 3));
    EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 6);
}

TEST(Numbers, IsCurrentProcessPreemptive_BitOfTheLastNumber_Decides) {
    static const struct {
        int flags;
        bool preemptive;
    } rows[] = {{0, false}, {1, false}, {2, true}, {3, true}, {4, false}, {-1, true}};
    for (const auto& row : rows) {
        FakeHost host;
        host.answer[ZR_SEL_CurrentProcessNumber] = [](EngineBlock* block) { block->fParam1 = 6; };
        host.answer[ZR_SEL_ExecuteCommand] = [&](EngineBlock* block) {
            EXPECT_EQ(block->fParam3, 336);
            EXPECT_EQ(block->fParam4, 5);
            EXPECT_EQ(+Parameter(block, 1)->uValue.fLongint, 6);
            EXPECT_EQ(Parameter(block, 2)->fType, eVK_Text);
            Parameter(block, 2)->uValue.fText = host.String("P_1");
            for (int n = 3; n <= 5; n++) EXPECT_EQ(Parameter(block, n)->fType, eVK_Longint);
            Parameter(block, 5)->uValue.fLongint = row.flags;
        };
        EXPECT_EQ(ZR_IsCurrentProcessPreemptive(), row.preemptive) << row.flags;
        EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 6);
        EXPECT_EQ(host.liveStrings, 0);
    }
}

TEST(Numbers, HostFacts_WithoutAHost_AreFalse) {
    gCall4D = nullptr;
    EXPECT_FALSE(ZR_IsTableNoValid(1));
    EXPECT_FALSE(ZR_IsFieldNoValid(1, 1));
    EXPECT_FALSE(ZR_IsCurrentProcessPreemptive());
    EXPECT_FALSE(ZR_GetOK());
    EXPECT_EQ(ZR_GetOKVariable(), 0);
}

TEST(Numbers, GetOK_ByKindOfTheVariable_IsTrueForNumbersOtherThanZero) {
    static const struct {
        int kind;
        double value;
        short error;
        bool ok;
    } rows[] = {{eVK_Real, 1, 0, true},       {eVK_Real, 0, 0, false},    {eVK_Real, -0.5, 0, true},
                {eVK_Longint, 1, 0, true},    {eVK_Longint, 0, 0, false}, {eVK_Longint, 7, 0, true},
                {eVK_Boolean, 1, 0, false},   {eVK_Integer, 1, 0, false}, {eVK_Undefined, 0, 0, false},
                {eVK_Longint, 1, 4001, false}};
    for (const auto& row : rows) {
        FakeHost host;
        host.answer[ZR_SEL_GetProcessVariable] = [&](EngineBlock* block) {
            EXPECT_EQ(Narrow(block->fName), "OK");
            PA_Variable* value = At<PA_Variable>(block->fParam1);
            *value = PA_CreateVariable(row.kind);
            PA_SetRealVariable(value, row.value);
            PA_SetLongintVariable(value, (int)row.value);
            PA_SetBooleanVariable(value, row.value != 0);
            block->fError = row.error;
        };
        EXPECT_EQ(ZR_GetOK(), row.ok) << row.kind << " " << row.value;
        EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 1);
    }
}

TEST(Numbers, GetOKVariable_ByKindOfTheResult_IsTheLongintOrZero) {
    static const struct {
        int kind, value;
        long answer;
    } rows[] = {{eVK_Longint, 1, 1}, {eVK_Longint, -5, -5}, {eVK_Integer, 1, 0}, {eVK_Boolean, 1, 0}};
    for (const auto& row : rows) {
        FakeHost host;
        host.answer[ZR_SEL_ExecuteFunction] = [&](EngineBlock* block) {
            EXPECT_EQ(block->fLength1, 2);
            EXPECT_EQ(Narrow(At<PA_Unichar>(block->fParam1)), "OK");
            PA_Variable* result = At<PA_Variable>(block->fParam4);
            EXPECT_EQ(result->fType, eVK_Undefined);
            *result = PA_CreateVariable(row.kind);
            PA_SetLongintVariable(result, row.value);
            PA_SetBooleanVariable(result, true);
        };
        EXPECT_EQ(ZR_GetOKVariable(), row.answer) << row.kind;
    }
}
