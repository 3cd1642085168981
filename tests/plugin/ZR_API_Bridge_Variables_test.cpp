#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

constexpr int kAllKinds[] = {1,  4,  5,  6,  8,  9,  10, 11, 13, 14, 15, 16, 17, 19, 20, 22,
                             23, 30, 31, 32, 33, 34, 38, 39, 42, 0,  2,  18, 21, 24, 255};

// A variable whose value bytes are all 0x5A and whose kind and filler are set: reading anything as an address crashes.
PA_Variable Poisoned(int kind, int filler) {
    PA_Variable variable;
    memset((void*)&variable, 0x5A, sizeof variable);
    variable.fType = (uint8_t)kind;
    variable.fFiller = (uint8_t)filler;
    return variable;
}

std::string Bytes(const PA_Variable& variable) { return std::string((const char*)&variable, sizeof variable); }

}  // namespace

TEST(BridgeVariables, CreateVariable_OfEveryKind_AllocatesTheFirstElement) {
    static const struct {
        int kind, bytes;
    } rows[] = {{14, 8}, {15, 2}, {22, 2}, {16, 4}, {32, 4}, {17, 6}, {19, 8}, {31, 12}, {34, 20}, {39, 8}};
    for (int kind : kAllKinds) {
        FakeHost host;
        int bytes = 0;
        for (const auto& row : rows)
            if (row.kind == kind) bytes = row.bytes;
        PA_Variable variable = PA_CreateVariable(kind);
        EXPECT_EQ(variable.fType, kind);
        EXPECT_EQ(variable.fFiller, 0);
        EXPECT_EQ(+variable.uValue.fArray.fSize, 0);
        EXPECT_EQ(+variable.uValue.fArray.fCurrent, 0);
        if (bytes == 0) {
            EXPECT_TRUE(host.calls.empty()) << kind;
            std::string zero(sizeof(PA_Variable), '\0');
            zero[0] = (char)kind;
            EXPECT_EQ(Bytes(variable), zero) << kind;
        } else {
            ASSERT_EQ(host.liveHandles(), 1u) << kind;
            EXPECT_EQ(host.sizeOf(variable.uValue.fArray.fData), bytes) << kind;
        }
        PA_ClearVariable(&variable);
        EXPECT_EQ(host.liveHandles(), 0u) << kind;
    }
}

TEST(BridgeVariables, UnifyVarKind_EveryNumber_FoldsFive) {
    for (int kind = -5; kind < 300; kind++) {
        int folded = kind == 0 || kind == 2 || kind == 24 ? 33 : kind == 18 || kind == 21 ? 34 : kind;
        EXPECT_EQ(UnifyVarKind(kind), folded) << kind;
    }
    PA_Variable old = Poisoned(24, 0);
    EXPECT_EQ(PA_GetVariableKind(&old), 33);
    EXPECT_EQ(PA_GetVariableKind(nullptr), 5);
}

TEST(BridgeVariables, ScalarSetAndGet_OfTheirKind_RoundTrip) {
    FakeHost host;
    PA_Variable real = PA_CreateVariable(1), date = PA_CreateVariable(4), truth = PA_CreateVariable(6),
                integer = PA_CreateVariable(8), longint = PA_CreateVariable(9), time = PA_CreateVariable(11);
    PA_SetRealVariable(&real, -0.1);
    PA_SetDateVariable(&date, 29, 2, 2024);
    PA_SetBooleanVariable(&truth, true);
    PA_SetLongintVariable(&integer, -3);
    PA_SetLongintVariable(&longint, 0x7FFFFFFF);
    PA_SetTimeVariable(&time, 86399);
    EXPECT_EQ(PA_GetRealVariable(&real), -0.1);
    EXPECT_TRUE(PA_GetBooleanVariable(&truth));
    EXPECT_EQ(PA_GetLongintVariable(&integer), -3);
    EXPECT_EQ(PA_GetLongintVariable(&longint), 0x7FFFFFFF);
    EXPECT_EQ(PA_GetTimeVariable(&time), 86399);
    short day, month, year;
    PA_GetDateVariable(&date, &day, &month, &year);
    EXPECT_EQ(day, 29);
    EXPECT_EQ(month, 2);
    EXPECT_EQ(year, 2024);
    PA_GetDateVariable(&date, nullptr, nullptr, nullptr);
    EXPECT_TRUE(host.calls.empty());
}

TEST(BridgeVariables, ScalarSet_OfTheirKind_WritesAtTheLaidDownPlace) {
    PA_Variable real = PA_CreateVariable(1), date = PA_CreateVariable(4), time = PA_CreateVariable(11);
    PA_SetRealVariable(&real, 1.0);
    PA_SetDateVariable(&date, 1, 2, 3);
    PA_SetTimeVariable(&time, 0x01020304);
    EXPECT_EQ(Bytes(real).substr(0, 11), std::string("\1\0\0\0\0\0\0\0\xF0\x3F\0", 11));
    EXPECT_EQ(Bytes(date).substr(0, 9), std::string("\4\0\1\0\2\0\3\0\0", 9));
    EXPECT_EQ(Bytes(time).substr(0, 7), std::string("\x0B\0\4\3\2\1\0", 7));
}

TEST(BridgeVariables, Getters_OfOtherKinds_AreNeutral) {
    FakeHost host;
    for (int kind : kAllKinds) {
        for (int filler : {0, 1}) {
            PA_Variable variable = Poisoned(kind, filler);
            const bool plain = filler == 0;  // a reference or an operator holds no value
            if (!plain || kind != 1) { EXPECT_EQ(PA_GetRealVariable(&variable), 0.0) << kind; }
            if (!plain || (kind != 8 && kind != 9)) { EXPECT_EQ(PA_GetLongintVariable(&variable), 0) << kind; }
            if (!plain || kind != 11) { EXPECT_EQ(PA_GetTimeVariable(&variable), 0) << kind; }
            if (!plain || kind != 6) { EXPECT_FALSE(PA_GetBooleanVariable(&variable)) << kind; }
            if (!plain || kind != 10) { EXPECT_EQ(PA_GetPictureVariable(&variable), nullptr) << kind; }
            if (!plain || kind != 38) { EXPECT_EQ(PA_GetObjectVariable(&variable), nullptr) << kind; }
            if (!plain || kind != 42) { EXPECT_EQ(PA_GetCollectionVariable(&variable), nullptr) << kind; }
            if (!plain || kind != 23) { EXPECT_EQ(PA_GetPointerVariable(&variable), nullptr) << kind; }
            if (!plain || kind != 30) { EXPECT_EQ(PA_GetBlobVariable(&variable, nullptr), 0) << kind; }
            if (!plain || UnifyVarKind(kind) != 33) {
                EXPECT_EQ(+PA_GetStringVariable(&variable).fString, nullptr) << kind;
            }
            short day = 9, month = 9, year = 9;
            PA_GetDateVariable(&variable, &day, &month, &year);
            if (!plain || kind != 4) { EXPECT_EQ(day + month + year, 0) << kind; }
        }
    }
    EXPECT_TRUE(host.calls.empty());
}

TEST(BridgeVariables, Getters_OfNull_AreNeutral) {
    EXPECT_EQ(PA_GetRealVariable(nullptr), 0.0);
    EXPECT_EQ(PA_GetLongintVariable(nullptr), 0);
    EXPECT_EQ(PA_GetTimeVariable(nullptr), 0);
    EXPECT_FALSE(PA_GetBooleanVariable(nullptr));
    EXPECT_EQ(+PA_GetStringVariable(nullptr).fString, nullptr);
    EXPECT_EQ(PA_GetBlobVariable(nullptr, nullptr), 0);
    EXPECT_EQ(PA_GetPictureVariable(nullptr), nullptr);
    EXPECT_EQ(PA_GetObjectVariable(nullptr), nullptr);
    EXPECT_EQ(PA_GetCollectionVariable(nullptr), nullptr);
    EXPECT_EQ(PA_GetPointerVariable(nullptr), nullptr);
    short day = 1, month = 1, year = 1;
    PA_GetDateVariable(nullptr, &day, &month, &year);
    EXPECT_EQ(day + month + year, 0);
}

TEST(BridgeVariables, Setters_OfOtherKinds_WriteNothing) {
    FakeHost host;
    for (int kind : kAllKinds) {
        for (int filler : {0, 1}) {
            PA_Variable variable = Poisoned(kind, filler), before = variable;
            const bool plain = filler == 0;
            if (!plain || kind != 1) PA_SetRealVariable(&variable, 1);
            if (!plain || (kind != 8 && kind != 9)) PA_SetLongintVariable(&variable, 1);
            if (!plain || kind != 11) PA_SetTimeVariable(&variable, 1);
            if (!plain || kind != 6) PA_SetBooleanVariable(&variable, true);
            if (!plain || kind != 4) PA_SetDateVariable(&variable, 1, 1, 1);
            if (!plain || kind != 38) PA_SetObjectVariable(&variable, &host);
            if (!plain || kind != 42) PA_SetCollectionVariable(&variable, &host);
            if (!plain || kind != 30) PA_SetBlobVariable(&variable, "x", 1);
            // What is handed over and finds no place is freed.
            if (!plain || kind != 23) PA_SetPointerVariable(&variable, host.New(42));
            if (!plain || UnifyVarKind(kind) != 33) PA_SetStringVariable(&variable, host.String("lost"));
            if (!plain || kind != 10) PA_SetPictureVariable(&variable, nullptr);
            EXPECT_EQ(Bytes(variable), Bytes(before)) << kind;
            EXPECT_EQ(host.liveHandles(), 0u) << kind;
            EXPECT_EQ(host.liveStrings, 0) << kind;
        }
    }
    PA_SetRealVariable(nullptr, 1);
    PA_SetLongintVariable(nullptr, 1);
    PA_SetTimeVariable(nullptr, 1);
    PA_SetBooleanVariable(nullptr, true);
    PA_SetDateVariable(nullptr, 1, 1, 1);
    PA_SetObjectVariable(nullptr, &host);
    PA_SetCollectionVariable(nullptr, &host);
    PA_SetBlobVariable(nullptr, "x", 1);
    PA_SetTableFieldVariable(nullptr, 1, 1);
    PA_SetOperatorVariable(nullptr, 1);
    PA_SetStringVariable(nullptr, host.String("lost"));
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(BridgeVariables, StringVariable_SetAndGet_OwnsItsTextAndAnswersACopy) {
    FakeHost host;
    PA_Variable text = PA_CreateVariable(33);
    PA_SetStringVariable(&text, host.String("first"));
    PA_SetStringVariable(&text, host.String("second"));
    EXPECT_EQ(host.liveStrings, 1);
    PA_Unistring copy = PA_GetStringVariable(&text);
    EXPECT_EQ(Narrow(copy), "second");
    EXPECT_NE(+copy.fString, +text.uValue.fText.fString);
    EXPECT_EQ(host.liveStrings, 2);
    PA_DisposeUnistring(&copy);
    PA_SetStringVariable(&text, text.uValue.fText);  // its own text once more
    EXPECT_EQ(Narrow(text.uValue.fText), "second");
    PA_ClearVariable(&text);
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(BridgeVariables, StringVariable_OfOlderKinds_ReadsAsText) {
    FakeHost host;
    for (int kind : {0, 2, 24}) {
        PA_Variable text = PA_CreateVariable(kind);
        PA_Unistring empty = PA_GetStringVariable(&text);
        EXPECT_EQ(Narrow(empty), "");
        PA_DisposeUnistring(&empty);
        Wide units("old");
        text.uValue.fText = units.record();
        PA_Unistring copy = PA_GetStringVariable(&text);
        EXPECT_EQ(Narrow(copy), "old") << kind;
        PA_DisposeUnistring(&copy);
    }
}

TEST(BridgeVariables, BlobVariable_SetAndGet_CopiesBothWays) {
    FakeHost host;
    PA_Variable blob = PA_CreateVariable(30);
    EXPECT_EQ(PA_GetBlobVariable(&blob, nullptr), 0);
    PA_SetBlobVariable(&blob, "12345", 5);
    PA_SetBlobVariable(&blob, "abc", 3);
    EXPECT_EQ(host.liveHandles(), 1u);
    EXPECT_EQ(PA_GetBlobVariable(&blob, nullptr), 3);
    char bytes[4] = "...";
    EXPECT_EQ(PA_GetBlobVariable(&blob, bytes), 3);
    EXPECT_STREQ(bytes, "abc");
    PA_SetBlobVariable(&blob, nullptr, 7);
    EXPECT_EQ(PA_GetBlobVariable(&blob, nullptr), 0);
    PA_SetBlobVariable(&blob, "abc", -1);
    EXPECT_EQ(PA_GetBlobVariable(&blob, nullptr), 0);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeVariables, BlobVariable_WithoutMemory_IsEmpty) {
    FakeHost host;
    PA_Variable blob = PA_CreateVariable(30);
    host.refusesHandles = true;
    PA_SetBlobVariable(&blob, "abc", 3);
    EXPECT_EQ(PA_GetBlobVariable(&blob, nullptr), 0);
    EXPECT_EQ(+blob.uValue.fArray.fSize, 0);
}

TEST(BridgeVariables, ObjectVariable_SetAndGet_CountsNothing) {
    FakeHost host;
    PA_Variable object = PA_CreateVariable(38), collection = PA_CreateVariable(42);
    int first, second;
    PA_SetObjectVariable(&object, &first);
    PA_SetObjectVariable(&object, &second);
    PA_SetCollectionVariable(&collection, &first);
    EXPECT_EQ(PA_GetObjectVariable(&object), &second);
    EXPECT_EQ(PA_GetCollectionVariable(&collection), &first);
    EXPECT_TRUE(host.calls.empty());
}

TEST(BridgeVariables, PictureVariable_Set_FreesTheOldOne) {
    FakeHost host;
    PA_Variable picture = PA_CreateVariable(10);
    int first, second;
    PA_SetPictureVariable(&picture, &first);
    EXPECT_EQ(host.count(ZR_SEL_DisposePicture), 0);
    PA_SetPictureVariable(&picture, &first);  // one more count on it: the old one goes
    EXPECT_EQ(host.count(ZR_SEL_DisposePicture), 1);
    PA_SetPictureVariable(&picture, &second);
    ASSERT_EQ(host.count(ZR_SEL_DisposePicture), 2);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&first);
    EXPECT_EQ(PA_GetPictureVariable(&picture), &second);
}

TEST(BridgeVariables, PointerVariable_Set_FreesTheOldOne) {
    FakeHost host;
    PA_Variable pointer = PA_CreateVariable(23);
    EXPECT_EQ(PA_GetPointerVariable(&pointer), nullptr);
    PA_SetPointerVariable(&pointer, host.New(42));
    PA_Handle second = host.New(42);
    PA_SetPointerVariable(&pointer, second);
    PA_SetPointerVariable(&pointer, second);
    EXPECT_EQ(host.liveHandles(), 1u);
    EXPECT_EQ(PA_GetPointerVariable(&pointer), second);
    PA_ClearVariable(&pointer);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeVariables, TableFieldVariable_OverAnyKind_HoldsBothNumbers) {
    PA_Variable variable = Poisoned(33, 0);
    PA_SetTableFieldVariable(&variable, 3, 7);
    EXPECT_EQ(Bytes(variable), std::string("\5\1\3\0\7\0", 6) + std::string(254, '\0'));
    PA_SetTableFieldVariable(&variable, -1, 0);
    EXPECT_EQ(Bytes(variable).substr(0, 6), std::string("\5\1\xFF\xFF\0\0", 6));
}

TEST(BridgeVariables, OperatorVariable_Times_IsKind256WithTheCodeBehind) {
    PA_Variable variable = Poisoned(33, 0);
    PA_SetOperatorVariable(&variable, ZR_OP_TIMES);
    EXPECT_EQ(Bytes(variable), std::string("\0\1\3", 3) + std::string(257, '\0'));
}

TEST(BridgeVariables, VariableOrFieldReference_ByTarget_TellsThemApart) {
    FakeHost host;
    PointerBlock field = {}, table = {}, name = {};
    field.fTable = 2;
    field.fField = 5;
    table.fTable = 4;
    name.fIsVariable = 1;
    name.fName = 77;
    PA_Variable variable;
    PA_SetVariableOrFieldReference(&variable, &field);
    EXPECT_EQ(Bytes(variable).substr(0, 6), std::string("\5\1\2\0\5\0", 6));
    PA_SetVariableOrFieldReference(&variable, &table);
    EXPECT_EQ(Bytes(variable).substr(0, 6), std::string("\5\1\4\0\0\0", 6));
    PA_SetVariableOrFieldReference(&variable, &name);
    EXPECT_EQ(variable.fType, 23);
    EXPECT_EQ(variable.fFiller, 1);
    ASSERT_NE(+variable.uValue.fPointer, nullptr);
    EXPECT_EQ(memcmp(*variable.uValue.fPointer, &name, 42), 0);
    PA_SetVariableOrFieldReference(nullptr, &field);
    PA_SetVariableOrFieldReference(&variable, nullptr);
    EXPECT_EQ(variable.fType, 23);
}

TEST(BridgeVariables, ClearAndCopy_OfVariables_SendTheirAddresses) {
    FakeHost host;
    PA_Variable source = PA_CreateVariable(9), target = Poisoned(33, 0);
    host.answer[ZR_SEL_CopyVariable] = [](EngineBlock* block) {
        EXPECT_EQ(At<PA_Variable>(block->fParam2)->fType, eVK_Undefined);
        *At<PA_Variable>(block->fParam2) = *At<PA_Variable>(block->fParam1);
    };
    PA_SetLongintVariable(&source, 4);
    PA_CopyVariable(&source, &target);
    EXPECT_EQ(PA_GetLongintVariable(&target), 4);
    PA_ClearVariable(&source);
    EXPECT_EQ(host.last().selector, ZR_SEL_ClearVariable);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&source);
    size_t calls = host.calls.size();
    PA_ClearVariable(nullptr);
    PA_CopyVariable(nullptr, &target);
    PA_CopyVariable(&source, nullptr);
    PA_CopyVariable(&target, &target);
    EXPECT_EQ(host.calls.size(), calls);
    EXPECT_EQ(PA_GetLongintVariable(&target), 4);
}

TEST(BridgeVariables, GetVariable_ByName_ChoosesTheSelector) {
    static const struct {
        const char *name, *sent;
        int selector;
    } rows[] = {{"vt_Name", "vt_Name", -19},
                {"<>vl_Number", "vl_Number", -125},
                {"<>", "", -125},
                {"<x", "<x", -19},
                {"<", "<", -19},
                {"", "", -19},
                {"a<>b", "a<>b", -19}};
    for (const auto& row : rows) {
        FakeHost host;
        auto answer = [](EngineBlock* block) {
            EXPECT_EQ(At<PA_Variable>(block->fParam1)->fType, eVK_Undefined);
            *At<PA_Variable>(block->fParam1) = PA_CreateVariable(eVK_Boolean);
        };
        host.answer[row.selector] = answer;
        EXPECT_EQ(PA_GetVariable(Wide(row.name)).fType, eVK_Boolean) << row.name;
        EXPECT_EQ(host.last().selector, row.selector) << row.name;
        EXPECT_EQ(Narrow(host.last().in.fName), row.sent);
    }
}

TEST(BridgeVariables, SetVariable_ByName_ChoosesTheSelectorAndSendsTheFlag) {
    FakeHost host;
    PA_Variable value = PA_CreateVariable(9);
    PA_SetVariable(Wide("vl_A"), &value, 1);
    EXPECT_EQ(host.last().selector, -20);
    EXPECT_EQ(Narrow(host.last().in.fName), "vl_A");
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&value);
    EXPECT_EQ(host.last().in.fFlags, 1);
    PA_SetVariable(Wide("<>vl_B"), &value, 0);
    EXPECT_EQ(host.last().selector, -126);
    EXPECT_EQ(Narrow(host.last().in.fName), "vl_B");
    EXPECT_EQ(host.last().in.fFlags, 0);
    PA_SetVariable(Wide("x"), nullptr, 1);
    EXPECT_EQ(host.calls.size(), 2u);
}

TEST(BridgeVariables, InterprocessName_OfTooManyUnits_IsCutBehindItsMark) {
    FakeHost host;
    PA_GetVariable(Wide("<>" + std::string(255, 'n') + "tail"));
    EXPECT_EQ(Narrow(host.last().in.fName), std::string(255, 'n'));
}
