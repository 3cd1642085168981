#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

// A block over places that a test lays down, entry N-1 for parameter N.
struct Command {
    void* parameters[4] = {};
    char result[8];
    PluginBlock block = {parameters, result, nullptr};
    Command() { memset(result, 0x5A, sizeof result); }
    operator PluginBlock*() { return &block; }
};

struct NoPlaces {
    void* none[4] = {};
    PluginBlock withoutTable = {nullptr, nullptr, nullptr}, withoutEntry = {none, nullptr, nullptr};
    PluginBlock* blocks[3] = {nullptr, &withoutTable, &withoutEntry};
};

}  // namespace

TEST(BridgeParameters, NumbersAndDates_GetAndSet_UseTheirWidth) {
    Command command;
    char places[3][16];  // odd addresses: a host aligns nothing
    for (int i = 0; i < 3; i++) {
        memset(places[i], 0x5A, sizeof places[i]);
        command.parameters[i] = places[i] + 1;
    }
    PA_SetLongParameter(command, 1, -2);
    PA_SetDoubleParameter(command, 2, 2.5);
    PA_SetDateParameter(command, 3, 31, 12, 1999);
    EXPECT_EQ(PA_GetLongParameter(command, 1), -2);
    EXPECT_EQ(PA_GetDoubleParameter(command, 2), 2.5);
    short day, month, year;
    PA_GetDateParameter(command, 3, &day, &month, &year);
    EXPECT_EQ(day, 31);
    EXPECT_EQ(month, 12);
    EXPECT_EQ(year, 1999);
    EXPECT_EQ(places[0][5], 0x5A);
    EXPECT_EQ(places[1][9], 0x5A);
    EXPECT_EQ(places[2][7], 0x5A);
}

TEST(BridgeParameters, Results_Returned_UseTheirWidth) {
    Command command;
    PA_ReturnLong(command, -1);
    EXPECT_EQ(memcmp(command.result, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8), 0);
    PA_ReturnDouble(command, 1.0);
    EXPECT_EQ(memcmp(command.result, "\0\0\0\0\0\0\xF0\x3F", 8), 0);
    PA_ReturnDate(command, 1, 2, 3);
    EXPECT_EQ(memcmp(command.result, "\1\0\2\0\3\0\xF0\x3F", 8), 0);
}

TEST(BridgeParameters, EveryAccess_WithoutAPlace_IsNeutral) {
    FakeHost host;
    NoPlaces places;
    for (PluginBlock* block : places.blocks) {
        for (short index : {1, 0, -1}) {
            EXPECT_EQ(PA_GetLongParameter(block, index), 0);
            EXPECT_EQ(PA_GetDoubleParameter(block, index), 0);
            EXPECT_EQ(PA_GetStringParameter(block, index), nullptr);
            EXPECT_EQ(PA_GetBlobParameter(block, index, nullptr), 0);
            EXPECT_EQ(PA_GetPictureParameter(block, index), nullptr);
            EXPECT_EQ(PA_GetVariableParameter(block, index).fType, eVK_Undefined);
            EXPECT_EQ(PA_GetPointerParameter(block, index), nullptr);
            short day = 1, month = 1, year = 1;
            PA_GetDateParameter(block, index, &day, &month, &year);
            EXPECT_EQ(day + month + year, 0);
            PA_SetLongParameter(block, index, 1);
            PA_SetDoubleParameter(block, index, 1);
            PA_SetDateParameter(block, index, 1, 1, 1);
            PA_SetBlobParameter(block, index, "x", 1);
            PA_Variable value = PA_CreateVariable(eVK_Longint);
            PA_SetVariableParameter(block, index, &value, true);
            int picture;
            int freed = host.count(ZR_SEL_DisposePicture);
            PA_SetPictureParameter(block, index, &picture);
            PA_ReturnPicture(block, &picture);
            EXPECT_EQ(host.count(ZR_SEL_DisposePicture), freed + 2);  // handed over and without a place
        }
        PA_ReturnLong(block, 1);
        PA_ReturnDouble(block, 1);
        PA_ReturnDate(block, 1, 1, 1);
    }
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeParameters, BlobParameter_GetAndSet_GoThroughUserData) {
    FakeHost host;
    Command command;
    PA_Handle blob = nullptr;
    command.parameters[0] = &blob;
    EXPECT_EQ(PA_GetBlobParameter(command, 1, nullptr), 0);
    PA_SetBlobParameter(command, 1, "12345", 5);
    PA_SetBlobParameter(command, 1, "abc", 3);
    EXPECT_EQ(host.liveHandles(), 1u);
    EXPECT_EQ(host.of(ZR_SEL_UserData).in.fParam3, 3);
    EXPECT_EQ(PA_GetBlobParameter(command, 1, nullptr), 3);
    char bytes[4] = "...";
    EXPECT_EQ(PA_GetBlobParameter(command, 1, bytes), 3);
    EXPECT_STREQ(bytes, "abc");
    char dummy = 0;
    PA_SetBlobParameter(command, 1, &dummy, 0);
    ASSERT_NE(blob, nullptr);
    EXPECT_EQ(PA_GetBlobParameter(command, 1, nullptr), 0);
    PA_SetBlobParameter(command, 1, &dummy, -3);
    EXPECT_EQ(host.of(ZR_SEL_UserData).in.fParam3, 0);
    PA_SetBlobParameter(command, 1, nullptr, 0);
    EXPECT_EQ(blob, nullptr);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeParameters, PictureParameter_Set_FreesTheOldOne) {
    FakeHost host;
    Command command;
    int first, second;
    PA_Picture picture = &first;
    command.parameters[1] = &picture;
    EXPECT_EQ(PA_GetPictureParameter(command, 2), &first);
    PA_SetPictureParameter(command, 2, &second);
    EXPECT_EQ(picture, &second);
    EXPECT_EQ(host.of(ZR_SEL_DisposePicture).in.fParam1, (int64_t)(intptr_t)&first);
    PA_ReturnPicture(command, &first);
    void* returned;
    memcpy(&returned, command.result, 8);
    EXPECT_EQ(returned, &first);
}

TEST(BridgeParameters, StringAndVariableParameter_Get_AreTheHostsOwn) {
    FakeHost host;
    Command command;
    PA_Unistring text = host.String("text");
    PA_Variable value = PA_CreateVariable(eVK_Longint);
    PA_SetLongintVariable(&value, 3);
    command.parameters[0] = &text;
    command.parameters[1] = &value;
    EXPECT_EQ(PA_GetStringParameter(command, 1), &text);
    PA_Variable copy = PA_GetVariableParameter(command, 2);
    EXPECT_EQ(PA_GetLongintVariable(&copy), 3);
    PA_DisposeUnistring(&text);
}

// Required: kinds without a rule, integers, objects and collections among them, copy kind and filler only.
TEST(BridgeParameters, SetVariableParameter_EveryKind_CopiesWhatItUses) {
    auto bytesOf = [](int kind) {
        switch (kind) {
            case 1:
            case 10:
            case 23: return 8;
            case 4: return 6;
            case 6: return 1;
            case 9:
            case 11: return 4;
            case 30: return 12;
            case 33: return 20;
            default: return (kind >= 13 && kind <= 22) || kind == 31 || kind == 32 || kind == 34 ? 14 : 0;
        }
    };
    for (int kind = 0; kind < 256; kind++) {
        FakeHost host;
        Command command;
        PA_Variable value, target;
        memset((void*)&value, 0x11, sizeof value);
        memset((void*)&target, 0x22, sizeof target);
        value.fType = (uint8_t)kind;
        command.parameters[2] = &target;
        PA_SetVariableParameter(command, 3, &value, false);
        std::string expected = std::string(1, (char)kind) + std::string((size_t)bytesOf(kind) + 1, '\x11') +
                               std::string(258 - (size_t)bytesOf(kind), '\x22');
        EXPECT_EQ(std::string((const char*)&target, 260), expected) << kind;
        EXPECT_TRUE(host.calls.empty());
    }
}

TEST(BridgeParameters, SetVariableParameter_WithClear_FreesTheOldValueFirst) {
    FakeHost host;
    Command command;
    PA_Variable target = PA_CreateVariable(eVK_Text), value = PA_CreateVariable(eVK_Text);
    PA_SetStringVariable(&target, host.String("old"));
    PA_SetStringVariable(&value, host.String("new"));
    command.parameters[0] = &target;
    PA_SetVariableParameter(command, 1, &value, true);
    EXPECT_EQ(host.count(ZR_SEL_ClearVariable), 1);
    EXPECT_EQ(host.of(ZR_SEL_ClearVariable).in.fParam1, (int64_t)(intptr_t)&target);
    EXPECT_EQ(Narrow(target.uValue.fText), "new");
    PA_SetVariableParameter(command, 1, nullptr, true);
    PA_ClearVariable(&target);
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(BridgeParameters, SetVariableParameter_OfAGrownArray_StaysOneArray) {
    FakeHost host;
    Command command;
    PA_Variable target = PA_CreateVariable(eVK_ArrayLongint);
    command.parameters[0] = &target;
    PA_Variable copy = PA_GetVariableParameter(command, 1);
    PA_ResizeArray(&copy, 100);
    PA_SetLongintInArray(&copy, 100, 5);
    PA_SetArrayCurrent(&copy, 9);
    PA_SetVariableParameter(command, 1, &copy, false);
    EXPECT_EQ(PA_GetArrayNbElements(&target), 100);
    EXPECT_EQ(PA_GetLongintInArray(&target, 100), 5);
    EXPECT_EQ(PA_GetArrayCurrent(&target), 9);
    PA_ClearVariable(&target);
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(BridgeParameters, PointerParameter_Interpreted_IsTheParameter) {
    FakeHost host;
    Command command;
    PointerBlock pointer = {};
    command.parameters[0] = &pointer;
    host.answer[ZR_SEL_HostVersion] = [](EngineBlock* block) { block->fFlags = 0x8000000; };
    EXPECT_EQ(PA_GetPointerParameter(command, 1), &pointer);
}

TEST(BridgeParameters, PointerParameter_Compiled_StandsInAVariable) {
    FakeHost host;
    Command command;
    host.answer[ZR_SEL_HostVersion] = [](EngineBlock* block) { block->fFlags = 0x800000; };
    PA_Variable pointer = PA_CreateVariable(eVK_Pointer), other = PA_CreateVariable(eVK_Longint);
    command.parameters[0] = &pointer;
    command.parameters[1] = &other;
    EXPECT_EQ(PA_GetPointerParameter(command, 1), nullptr);  // no handle is set
    PA_SetPointerVariable(&pointer, host.New(42));
    EXPECT_EQ((char*)PA_GetPointerParameter(command, 1), *pointer.uValue.fPointer);
    EXPECT_EQ(PA_GetPointerParameter(command, 2), nullptr);  // another kind
    EXPECT_EQ(PA_GetPointerParameter(command, 3), nullptr);
    PA_ClearVariable(&pointer);
}

TEST(BridgeParameters, GetPluginProperties_ByEvent_CopiesEightyBytesOrSetsTheError) {
    for (int event = -2; event < 700; event++) {
        FakeHost host;
        Command command;
        int32_t number = event;
        char record[81], target[81];
        memset(record, 0x11, sizeof record);
        memset(target, 0x22, sizeof target);
        command.parameters[0] = &number;
        command.parameters[1] = record;
        sErrorCode = 99;
        PA_GetPluginProperties(command, (PA_PluginProperties*)target);
        bool known = event == 600 || event == 602 || event == 16 || event == 26;
        EXPECT_EQ(PA_GetLastError(), known ? 0 : 4005) << event;
        EXPECT_EQ(std::string(target, 81), std::string(80, known ? '\x11' : '\x22') + '\x22') << event;
        EXPECT_TRUE(host.calls.empty());
    }
}

TEST(BridgeParameters, GetPluginProperties_WithoutPlaces_CopiesNothing) {
    PA_PluginProperties properties = {};
    PA_GetPluginProperties(nullptr, &properties);
    EXPECT_EQ(PA_GetLastError(), 4005);
    Command command;
    int32_t event = 16;
    command.parameters[0] = &event;
    PA_GetPluginProperties(command, &properties);
    EXPECT_EQ(PA_GetLastError(), 0);
    PA_GetPluginProperties(command, nullptr);
}

TEST(BridgeParameters, CustomizeDesignMode_WithAPicture_HandsItOver) {
    FakeHost host;
    int picture;
    PA_CustomizeDesignMode(&picture, true);
    EXPECT_EQ(host.last().selector, ZR_SEL_CustomizeDesignMode);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&picture);
    EXPECT_EQ(host.last().in.fParam2, 1);
}
