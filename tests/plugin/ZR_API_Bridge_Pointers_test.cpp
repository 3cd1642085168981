#include <gtest/gtest.h>

#include <cstring>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {
PointerBlock ToField(int table, int field) {
    PointerBlock pointer = {};
    pointer.fTable = (uint16_t)table;
    pointer.fField = (uint16_t)field;
    return pointer;
}
PointerBlock ToVariable(uint64_t name) {
    PointerBlock pointer = {};
    pointer.fIsVariable = 1;
    pointer.fName = name;
    return pointer;
}
}  // namespace

TEST(BridgePointers, GetPointerKind_Table_TellsThemApart) {
    PointerBlock field = ToField(1, 2), table = ToField(1, 0), variable = ToVariable(3), both = ToVariable(3);
    both.fField = 2;
    EXPECT_EQ(PA_GetPointerKind(nullptr), -1);
    EXPECT_EQ(PA_GetPointerKind(&variable), 0);
    EXPECT_EQ(PA_GetPointerKind(&both), 0);
    EXPECT_EQ(PA_GetPointerKind(&table), 1);
    EXPECT_EQ(PA_GetPointerKind(&field), 2);
    unsigned char raw[42] = {0, 0, 7, 0};  // the field is the unit at 2
    EXPECT_EQ(PA_GetPointerKind((PointerBlock*)raw), 2);
    raw[2] = 0;
    raw[4] = 7;  // the table the one at 4
    EXPECT_EQ(PA_GetPointerKind((PointerBlock*)raw), 1);
}

TEST(BridgePointers, GetPointerByName_OfAVariable_AnswersTheHostsBlock) {
    FakeHost host;
    host.answer[513] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fHandle, nullptr);
        block->fHandle = Narrow(block->fName) == "vt_Name" ? host.New(42) : nullptr;
    };
    PA_Handle handle = PA_GetPointerByName(Wide("vt_Name"));
    ASSERT_NE(handle, nullptr);
    PA_DisposeHandle(handle);
    EXPECT_EQ(PA_GetPointerByName(Wide("none")), nullptr);
}

TEST(BridgePointers, ValueProperties_OfEveryFieldType_MapTheKind) {
    static const struct {
        int type, kind;
    } mapped[] = {{0, 33}, {2, 33}, {1, 1},  {35, 1},  {3, 10},  {4, 4},  {6, 6},
                  {8, 8},  {9, 9},  {25, 9}, {11, 11}, {30, 30}, {38, 38}};
    FakeHost host;
    for (int type = -1; type < 60; type++) {
        int expected = 5;
        for (const auto& row : mapped)
            if (row.type == type) expected = row.kind;
        host.answer[ZR_SEL_FieldProperties] = [&](EngineBlock* block) {
            EXPECT_EQ(block->fParam1, 3);
            EXPECT_EQ(block->fParam2, 4);
            block->fParam3 = type;
            block->fLength1 = 80;
        };
        PointerBlock pointer = ToField(3, 4);
        int kind = -9;
        long element = -9, length = -9;
        PA_GetPointerValueProperties(&pointer, &kind, &element, &length);
        EXPECT_EQ(kind, expected) << type;
        EXPECT_EQ(element, 0);
        EXPECT_EQ(length, 80);
    }
    EXPECT_EQ(host.count(ZR_SEL_PointerProperties), 0);
}

TEST(BridgePointers, ValueProperties_OfAVariable_AskTheHostAndFold) {
    FakeHost host;
    PointerBlock pointer = ToVariable(77);
    for (int kind : {9, 24, 18, 34, 38}) {
        host.answer[ZR_SEL_PointerProperties] = [&](EngineBlock* block) {
            EXPECT_EQ(memcmp(*block->fHandle, &pointer, 42), 0);
            EXPECT_EQ(host.sizeOf(block->fHandle), 42);
            EXPECT_EQ(block->fParam4, 0);
            block->fParam1 = kind;
            block->fParam2 = 6;
            block->fParam3 = 1;
        };
        int found;
        long element, length;
        PA_GetPointerValueProperties(&pointer, &found, &element, &length);
        EXPECT_EQ(found, UnifyVarKind(kind));
        EXPECT_EQ(element, 6);
        EXPECT_EQ(length, 1);
        EXPECT_EQ(host.liveHandles(), 0u);
    }
    host.answer.clear();
    PA_GetPointerValueProperties(&pointer, nullptr, nullptr, nullptr);
}

TEST(BridgePointers, ValueProperties_InTheVirtualStructure_SendTheRequestCode) {
    FakeHost host;
    PointerBlock variable = ToVariable(1), field = ToField(1, 1);
    PA_UseVirtualStructure();
    PA_GetPointerValueProperties(&variable, nullptr, nullptr, nullptr);
    EXPECT_EQ(host.of(ZR_SEL_PointerProperties).in.fParam4, 911);
    PA_GetPointerValueProperties(&field, nullptr, nullptr, nullptr);
    EXPECT_EQ(host.of(ZR_SEL_FieldProperties).in.fParam4, 911);
    PA_UseRealStructure();
    PA_GetPointerValueProperties(&variable, nullptr, nullptr, nullptr);
    EXPECT_EQ(host.of(ZR_SEL_PointerProperties).in.fParam4, 0);
}

TEST(BridgePointers, ValueProperties_OfNullTableOrWithoutMemory_AreUndefined) {
    FakeHost host;
    PointerBlock table = ToField(1, 0), variable = ToVariable(1);
    for (const PointerBlock* pointer : {(const PointerBlock*)nullptr, (const PointerBlock*)&table}) {
        int kind = -9;
        long element = -9, length = -9;
        PA_GetPointerValueProperties(pointer, &kind, &element, &length);
        EXPECT_EQ(kind, 5);
        EXPECT_EQ(element, 0);
        EXPECT_EQ(length, 0);
    }
    EXPECT_TRUE(host.calls.empty());
    host.refusesHandles = true;
    int kind = -9;
    PA_GetPointerValueProperties(&variable, &kind, nullptr, nullptr);
    EXPECT_EQ(kind, 5);
    EXPECT_EQ(PA_GetLastError(), -108);
}

TEST(BridgePointers, PointerValue_GetAndSet_SendACopyOfTheBlock) {
    FakeHost host;
    PointerBlock pointer = ToField(2, 3);
    host.answer[ZR_SEL_GetPointerValue] = [&](EngineBlock* block) {
        EXPECT_EQ(memcmp(*block->fHandle, &pointer, 42), 0);
        EXPECT_EQ(At<PA_Variable>(block->fParam1)->fType, eVK_Undefined);
        *At<PA_Variable>(block->fParam1) = PA_CreateVariable(eVK_Boolean);
        block->fError = 4007;
    };
    PA_Variable value = PA_GetPointerValue(&pointer);
    EXPECT_EQ(value.fType, eVK_Boolean);
    EXPECT_EQ(PA_GetLastError(), 4007);
    PA_SetPointerValue(&pointer, &value);
    EXPECT_EQ(host.of(ZR_SEL_SetPointerValue).in.fParam1, (int64_t)(intptr_t)&value);
    EXPECT_EQ(host.liveHandles(), 0u);
    size_t calls = host.calls.size();
    EXPECT_EQ(PA_GetPointerValue(nullptr).fType, eVK_Undefined);
    PA_SetPointerValue(nullptr, &value);
    PA_SetPointerValue(&pointer, nullptr);
    EXPECT_EQ(host.calls.size(), calls);
}
