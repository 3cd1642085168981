#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {
PA_Variable** Table(int64_t address) { return At<PA_Variable*>(address); }
const std::vector<int> kHandleOperations = {1, 5, 6, 2};  // new, lock; the call; unlock, dispose

std::vector<int> OperationsOf(const FakeHost& host) {
    std::vector<int> operations;
    for (const auto& call : host.calls)
        if (call.selector == ZR_SEL_Handle) operations.push_back((int)call.in.fParam1);
    return operations;
}
}  // namespace

TEST(BridgeLanguage, ExecuteCommandByID_WithParameters_GoesBySevenSteps) {
    FakeHost host;
    PA_Variable params[3];
    for (int i = 0; i < 3; i++) {
        params[i] = PA_CreateVariable(eVK_Longint);
        PA_SetLongintVariable(&params[i], i + 1);
    }
    host.answer[ZR_SEL_ExecuteCommand] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fParam3, 227);
        EXPECT_EQ(block->fParam4, 3);
        for (int i = 0; i < 3; i++) EXPECT_EQ(Table(block->fParam1)[i], &params[i]);
        PA_Variable* result = At<PA_Variable>(block->fParam2);
        EXPECT_EQ(result->fType, eVK_Undefined);
        for (size_t i = 1; i < sizeof *result; i++) EXPECT_EQ(((char*)result)[i], 0);
        PA_SetLongintVariable(Table(block->fParam1)[1], 22);  // an output parameter
        *result = PA_CreateVariable(eVK_Real);
        PA_SetRealVariable(result, 0.5);
    };
    PA_Variable result = PA_ExecuteCommandByID(227, params, 3);
    EXPECT_EQ(PA_GetRealVariable(&result), 0.5);
    EXPECT_EQ(PA_GetLongintVariable(&params[1]), 22);
    EXPECT_EQ(host.selectors(), (std::vector<int>{-434, -434, -636, -434, -434}));
    EXPECT_EQ(OperationsOf(host), kHandleOperations);
    EXPECT_EQ(host.calls[0].in.fParam2, 24);  // 8 bytes a parameter
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeLanguage, ExecuteCommandByID_WithNoParameters_StillAllocatesAndRuns) {
    FakeHost host;
    PA_Variable result = PA_ExecuteCommandByID(1471, nullptr, 0);
    EXPECT_EQ(result.fType, eVK_Undefined);
    EXPECT_EQ(host.selectors(), (std::vector<int>{-434, -434, -636, -434, -434}));
    EXPECT_EQ(host.calls[0].in.fParam2, 0);
    EXPECT_EQ(host.of(-636).in.fParam4, 0);
}

TEST(BridgeLanguage, ExecuteCommandByID_WithCountButNoParameters_SendsNone) {
    FakeHost host;
    PA_ExecuteCommandByID(1, nullptr, 5);
    EXPECT_EQ(host.of(-636).in.fParam4, 0);
    PA_Variable param = PA_CreateVariable(eVK_Longint);
    PA_ExecuteCommandByID(1, &param, -5);
    EXPECT_EQ(host.of(-636).in.fParam4, 0);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeLanguage, ExecuteCommandByID_WithoutMemory_IsZeroedAndNotRun) {
    FakeHost host;
    host.refusesHandles = true;
    PA_Variable param = PA_CreateVariable(eVK_Longint);
    PA_Variable result = PA_ExecuteCommandByID(1, &param, 1);
    for (size_t i = 0; i < sizeof result; i++) EXPECT_EQ(((char*)&result)[i], 0) << i;
    EXPECT_EQ(PA_GetLastError(), -108);
    EXPECT_EQ(host.count(ZR_SEL_ExecuteCommand), 0);
}

TEST(BridgeLanguage, ExecuteCommandByID_Refused_KeepsTheErrorOfTheCommand) {
    FakeHost host;
    host.answer[ZR_SEL_ExecuteCommand] = [](EngineBlock* block) { block->fError = 4003; };
    PA_Variable result = PA_ExecuteCommandByID(9999, nullptr, 0);
    EXPECT_EQ(PA_GetLastError(), 4003);  // though unlock and dispose went well
    EXPECT_EQ(result.fType, eVK_Undefined);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeLanguage, ExecuteMember_OnANewHost_PutsOwnerAndNameFirst) {
    static const struct {
        PA_Variable (*run)(void*, const PA_Unistring*, PA_Variable*, short);
        int kind;
    } rows[] = {{PA_ExecuteObjectMethod, eVK_Object}, {PA_ExecuteCollectionMethod, eVK_Collection}};
    for (const auto& row : rows) {
        FakeHost host;
        Current4DVersion = 0x1760;
        int owner;
        PA_Variable params[2] = {PA_CreateVariable(eVK_Longint), PA_CreateVariable(eVK_Boolean)};
        Wide name("push");
        PA_Unistring nameRecord = name.record();
        host.answer[ZR_SEL_ExecuteMember] = [&](EngineBlock* block) {
            PA_Variable** table = Table(block->fParam1);
            EXPECT_EQ(block->fParam4, 4);
            EXPECT_EQ(table[0]->fType, row.kind);
            EXPECT_EQ(+table[0]->uValue.fObject, &owner);
            EXPECT_EQ(table[1]->fType, eVK_Text);
            EXPECT_EQ(Narrow(table[1]->uValue.fText), "push");
            EXPECT_EQ(table[2], &params[0]);
            EXPECT_EQ(table[3], &params[1]);
            *At<PA_Variable>(block->fParam2) = PA_CreateVariable(eVK_Boolean);
        };
        EXPECT_EQ(row.run(&owner, &nameRecord, params, 2).fType, eVK_Boolean);
        EXPECT_EQ(host.selectors(), (std::vector<int>{-434, -434, -720, -434, -434}));
        EXPECT_EQ(host.calls[0].in.fParam2, 32);
        EXPECT_EQ(Narrow(nameRecord), "push");  // borrowed
        host.answer.clear();
        row.run(&owner, nullptr, nullptr, 0);
        EXPECT_EQ(host.count(ZR_SEL_ExecuteMember), 2);
    }
}

TEST(BridgeLanguage, ExecuteMember_BelowV17R6_IsNotRun) {
    static const struct {
        uint32_t version;
        bool runs;
    } rows[] = {{0x1750, false}, {0x175F, false}, {0x1760, true}, {0x1800, true}};
    for (const auto& row : rows) {
        FakeHost host;
        Current4DVersion = row.version;
        int owner;
        Wide name("push");
        PA_Unistring nameRecord = name.record();
        EXPECT_EQ(PA_ExecuteObjectMethod(&owner, &nameRecord, nullptr, 0).fType, eVK_Undefined);
        EXPECT_EQ(PA_GetLastError(), row.runs ? 0 : 4008) << row.version;
        EXPECT_EQ(PA_ExecuteCollectionMethod(&owner, &nameRecord, nullptr, 0).fType, eVK_Undefined);
        EXPECT_EQ(host.count(-720), row.runs ? 2 : 0) << row.version;
    }
}

TEST(BridgeLanguage, ExecuteMethod_OfALineOfCode_SendsItWhole) {
    FakeHost host;
    Wide code(std::string(1000, 'x'));  // longer than a name
    PA_Unistring record = code.record();
    PA_Variable param = PA_CreateVariable(eVK_Longint);
    host.answer[ZR_SEL_ExecuteMethod] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fParam1, (int64_t)(intptr_t)code.data());
        EXPECT_EQ(block->fLength1, 1000);
        EXPECT_EQ(Table(block->fParam2)[0], &param);
        EXPECT_EQ(block->fParam3, 1);
        EXPECT_EQ(At<PA_Variable>(block->fParam4)->fType, eVK_Undefined);
        *At<PA_Variable>(block->fParam4) = PA_CreateVariable(eVK_Boolean);
        block->fError = 4004;
    };
    EXPECT_EQ(PA_ExecuteMethod(&record, &param, 1).fType, eVK_Boolean);
    EXPECT_EQ(host.selectors(), (std::vector<int>{-434, -434, -57, -434, -434}));
    EXPECT_EQ(PA_GetLastError(), 4004);
    host.answer.clear();
    PA_ExecuteMethod(nullptr, nullptr, 0);
    EXPECT_EQ(host.of(-57).in.fLength1, 0);
    host.refusesHandles = true;
    EXPECT_EQ(PA_ExecuteMethod(&record, nullptr, 0).fType, 0);
    EXPECT_EQ(host.count(-57), 2);
}

TEST(BridgeLanguage, ExecuteFunction_OfAnExpression_AnswersItsValue) {
    FakeHost host;
    Wide code("1+2");
    PA_Unistring record = code.record();
    host.answer[ZR_SEL_ExecuteFunction] = [](EngineBlock* block) {
        *At<PA_Variable>(block->fParam4) = PA_CreateVariable(eVK_Real);
        PA_SetRealVariable(At<PA_Variable>(block->fParam4), 3);
    };
    PA_Variable result = PA_ExecuteFunction(&record);
    EXPECT_EQ(PA_GetRealVariable(&result), 3);
    EXPECT_EQ(host.last().selector, -58);
    EXPECT_EQ(host.last().in.fLength1, 3);
    PA_Unistring broken = {-5, code.data(), nullptr};
    PA_ExecuteFunction(&broken);
    EXPECT_EQ(host.last().in.fLength1, 0);
}

TEST(BridgeLanguage, ExecuteMethodByName_OfAKnownName_RunsItsNumber) {
    FakeHost host;
    host.answer[ZR_SEL_MethodID] = [](EngineBlock* block) {
        block->fParam1 = Narrow(block->fName) == "Known" ? 12 : 0;
    };
    EXPECT_EQ(PA_GetMethodID(Wide("Known")), 12);
    PA_Variable param = PA_CreateVariable(eVK_Longint);
    PA_ExecuteMethodByName(Wide("Known"), &param, 1);
    EXPECT_EQ(host.of(ZR_SEL_MethodByID).in.fParam1, 12);
    EXPECT_EQ(host.of(ZR_SEL_MethodByID).in.fParam3, 1);
    EXPECT_EQ(PA_ExecuteMethodByName(Wide("Unknown"), &param, 1).fType, eVK_Undefined);
    EXPECT_EQ(PA_GetLastError(), 4004);
    EXPECT_EQ(host.count(ZR_SEL_MethodByID), 1);
    PA_ExecuteMethodByID(7, nullptr, 0);
    EXPECT_EQ(host.of(ZR_SEL_MethodByID).in.fParam1, 7);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeLanguage, GetCommandName_OfANumber_CopiesTheName) {
    FakeHost host;
    host.answer[ZR_SEL_CommandName] = [](EngineBlock* block) {
        const char* name = block->fParam1 == 41 ? "ALERT" : "";
        for (int i = 0; i <= (int)strlen(name); i++) block->fName[i] = (unsigned char)name[i];
    };
    PA_Unichar name[256];
    PA_GetCommandName(41, name);
    EXPECT_EQ(Narrow(name), "ALERT");
    PA_GetCommandName(1999, name);
    EXPECT_EQ(Narrow(name), "");
}
