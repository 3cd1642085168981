#include "plugin/ZR_API_Bridge.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/plugin/FakeHost.h"

// Errors -----------------------------------------------------------------------------------------------------------

TEST(Bridge, GetLastError_AfterACall_IsTheHostsErrorWithItsSign) {
    FakeHost host;
    for (short error : {0, 1, -108, 4002, 32767, -32768}) {
        host.answer[ZR_SEL_NextRecord] = [&](EngineBlock* block) { block->fError = error; };
        PA_NextRecord(1);
        EXPECT_EQ(PA_GetLastError(), (int)error);
        EXPECT_EQ(sErrorCode, error);
    }
}

TEST(Bridge, ErrorField_BeforeEveryCall_IsClear) {
    FakeHost host;
    host.answer[ZR_SEL_NextRecord] = [](EngineBlock* block) { block->fError = 4007; };
    PA_NextRecord(1);
    PA_FirstRecord(1);
    EXPECT_EQ(host.last().in.fError, 0);
    EXPECT_EQ(PA_GetLastError(), 0);
}

TEST(Bridge, GetLastError_OfAnotherThread_DoesNotShow) {
    FakeHost host;
    host.answer[ZR_SEL_NextRecord] = [](EngineBlock* block) { block->fError = 4007; };
    PA_NextRecord(1);
    int elsewhere = -1, afterElsewhere = -1;
    std::thread([&] {
        FakeHost other;  // that thread's own
        elsewhere = PA_GetLastError();
        other.answer[ZR_SEL_NextRecord] = [](EngineBlock* block) { block->fError = -108; };
        PA_NextRecord(1);
        afterElsewhere = PA_GetLastError();
    }).join();
    EXPECT_EQ(elsewhere, 0);
    EXPECT_EQ(afterElsewhere, -108);
    EXPECT_EQ(PA_GetLastError(), 4007);
}

TEST(Bridge, RecordAccess_AfterAnError_LeavesItAlone) {
    FakeHost host;
    PA_Variable number = PA_CreateVariable(eVK_Longint);
    PA_Variable text = PA_CreateVariable(eVK_Text);
    PA_SetStringVariable(&text, host.String("old"));
    sErrorCode = 4007;
    PA_SetLongintVariable(&number, 1);
    PA_GetLongintVariable(&number);
    PA_GetArrayNbElements(&number);
    PA_SetTableFieldVariable(&number, 1, 2);
    PA_SetStringVariable(&text, host.String("new"));  // the old text is freed by a call that does not show
    EXPECT_EQ(PA_GetLastError(), 4007);
    PA_ClearVariable(&text);
    EXPECT_EQ(PA_GetLastError(), 0);
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(Bridge, EveryCall_WithoutAHost_IsNeutral) {
    gCall4D = nullptr;
    sErrorCode = 0;
    EXPECT_EQ(PA_NewHandle(4), nullptr);
    EXPECT_EQ(PA_GetLastError(), ZR_ERR_UNKNOWN_SELECTOR);
    EXPECT_EQ(+PA_CreateUnistring(Wide("x")).fString, nullptr);
    EXPECT_EQ(PA_GetVariable(Wide("x")).fType, eVK_Undefined);
    EXPECT_EQ(PA_ExecuteCommandByID(1, nullptr, 0).fType, 0);
    EXPECT_EQ(PA_RecordNumber(1), -1);
    EXPECT_EQ(PA_GetFieldType(1, 1), -1);
    EXPECT_EQ(PA_ModalDialog(nullptr, nullptr), 2);
    EXPECT_EQ(+PA_CreateVariable(eVK_ArrayText).uValue.fArray.fData, nullptr);
    PA_Unichar buffer[256] = {1};
    PA_FormatLongint(1, nullptr, buffer);
    EXPECT_EQ(buffer[0], 0);
}

// A host that knows no selector leaves the block as it was: answers must not be what the stack held before.
TEST(Bridge, EveryAnswer_OfAHostThatKnowsNothing_IsNeutral) {
    FakeHost host;
    gCall4D = [](int, EngineBlock* block) { block->fError = ZR_ERR_UNKNOWN_SELECTOR; };
    PA_Unichar units[4] = {'a', 'b', 'c', 0};
    char bytes[8];
    EXPECT_EQ(PA_GetHandleSize((PA_Handle)bytes), 0);
    EXPECT_EQ(PA_LockHandle((PA_Handle)bytes), nullptr);
    EXPECT_FALSE(PA_SetHandleSize((PA_Handle)bytes, 3));
    EXPECT_EQ(PA_GetHandleState((PA_Handle)bytes), 0);
    EXPECT_EQ(FromUserData(bytes, 8), nullptr);
    EXPECT_EQ(ToUserData((PA_Handle)bytes, nullptr), 0);
    EXPECT_EQ(PA_CompareUniBuffers(units, 3, units, 2, true, false), 0);
    EXPECT_EQ(PA_ConvertCharsetToCharset(units, 6, 2, bytes, 8, 7), 0);
    EXPECT_EQ(+PA_LocaliseStringByID(1, 1, 1).fString, nullptr);
    EXPECT_EQ(PA_GetCurrentProcessNumber(), 0);
    EXPECT_EQ(PA_Get4DVersion(), 0);
    EXPECT_FALSE(PA_IsCompiled(true));
    EXPECT_EQ(PA_CreatePicture(bytes, 8), nullptr);
    EXPECT_EQ(PA_DuplicatePicture(bytes), nullptr);
    EXPECT_EQ(+PA_GetPictureData(bytes, 1, nullptr).fString, nullptr);
    EXPECT_EQ(PA_CreateNativePictureForScreen(bytes), nullptr);
    EXPECT_EQ(PA_PictureToGIF(bytes), nullptr);
    EXPECT_EQ(PA_CreateObject(), nullptr);
    EXPECT_EQ(PA_CreateCollection(), nullptr);
    EXPECT_EQ(PA_GetCollectionLength(bytes), 0);
    EXPECT_EQ(PA_GetMethodID(units), 0);
    EXPECT_EQ(PA_RecordsInSelection(1), 0);
    EXPECT_EQ(PA_GetRealField(1, 1), 0.0);
    EXPECT_EQ(PA_EvalTime(units), 0);
    EXPECT_EQ(PA_GetPointerByName(units), nullptr);
    EXPECT_EQ(PA_Dial4DWindowFromDial4D(nullptr), 0);
    EXPECT_EQ(PA_GetWindowPtr(1), nullptr);
    EXPECT_EQ(PA_Dial4DGetLong(nullptr, units), 0);
    short day = 1, month = 1, year = 1;
    PA_EvalDate(units, &day, &month, &year);
    EXPECT_EQ(day + month + year, 0);
    short table = 1, field = 1;
    PA_GetTableAndFieldNumbers(units, &table, &field);
    EXPECT_EQ(table + field, 0);
    PA_Unichar name[256] = {'x', 0};
    PA_GetCommandName(1, name);
    EXPECT_EQ(name[0], 0);
}

// Version ----------------------------------------------------------------------------------------------------------

TEST(Bridge, GetVersion_Always_IsWithoutACall) {
    FakeHost host;
    Current4DVersion = 0x1760;
    EXPECT_EQ(PA_GetVersion(), 5984u);
    EXPECT_TRUE(host.calls.empty());
}

TEST(Bridge, Get4DVersion_Asked_SendsTheRequestCode) {
    FakeHost host;
    host.answer[ZR_SEL_HostVersion] = [](EngineBlock* block) {
        block->fParam1 = 0x1830;
        block->fFlags = -1;
    };
    EXPECT_EQ(PA_Get4DVersion(), 0x1830);
    EXPECT_EQ(host.last().selector, -56);
    EXPECT_EQ(host.last().in.fParam3, 0x46415354);
}

TEST(Bridge, IsCompiled_ByFlags_TestsItsMask) {
    static const struct {
        int flags;
        bool running, database;
    } rows[] = {{0, false, false},
                {0x800000, true, false},
                {0x8000000, false, true},
                {0x8800000, true, true},
                {0x400000, false, false}};
    for (const auto& row : rows) {
        FakeHost host;
        host.answer[ZR_SEL_HostVersion] = [&](EngineBlock* block) { block->fFlags = row.flags; };
        EXPECT_EQ(PA_IsCompiled(true), row.running) << row.flags;
        EXPECT_EQ(PA_IsCompiled(false), row.database) << row.flags;
    }
}

// Host memory ------------------------------------------------------------------------------------------------------

TEST(Bridge, HandleCalls_Each_SendTheirOperation) {
    FakeHost host;
    PA_Handle handle = PA_NewHandle(10);
    static const struct {
        const char* name;
        void (*call)(PA_Handle);
        int operation;
        int64_t value;
    } rows[] = {
        {"size", [](PA_Handle h) { EXPECT_EQ(PA_GetHandleSize(h), 10); }, 3, 0},
        {"resize", [](PA_Handle h) { EXPECT_TRUE(PA_SetHandleSize(h, 20)); }, 4, 20},
        {"resize below 0", [](PA_Handle h) { EXPECT_TRUE(PA_SetHandleSize(h, -1)); }, 4, 0},
        {"lock", [](PA_Handle h) { EXPECT_EQ(PA_LockHandle(h), *h); }, 5, 0},
        {"state", [](PA_Handle h) { EXPECT_EQ(PA_GetHandleState(h), 1); }, 7, 0},
        {"unlock", [](PA_Handle h) { PA_UnlockHandle(h); }, 6, 0},
        {"set state", [](PA_Handle h) { PA_SetHandleState(h, 3); }, 8, 3},
        {"dispose", [](PA_Handle h) { PA_DisposeHandle(h); }, 2, 0},
    };
    EXPECT_EQ(host.last().in.fParam1, 1);
    EXPECT_EQ(host.last().in.fParam2, 10);
    for (const auto& row : rows) {
        row.call(handle);
        EXPECT_EQ(host.last().selector, -434) << row.name;
        EXPECT_EQ(host.last().in.fParam1, row.operation) << row.name;
        EXPECT_EQ(host.last().in.fParam2, row.value) << row.name;
        EXPECT_EQ(host.last().in.fHandle, handle) << row.name;
    }
    EXPECT_EQ(host.liveHandles(), 0u);
}

TEST(Bridge, HandleCalls_OfNull_MakeNoCallAndClearTheError) {
    FakeHost host;
    sErrorCode = 4001;
    PA_DisposeHandle(nullptr);
    EXPECT_EQ(PA_GetLastError(), 0);
    EXPECT_EQ(PA_GetHandleSize(nullptr), 0);
    EXPECT_FALSE(PA_SetHandleSize(nullptr, 1));
    EXPECT_EQ(PA_LockHandle(nullptr), nullptr);
    PA_UnlockHandle(nullptr);
    EXPECT_EQ(PA_GetHandleState(nullptr), 0);
    PA_SetHandleState(nullptr, 1);
    EXPECT_TRUE(host.calls.empty());
}

TEST(Bridge, NewHandle_Refused_IsNullWithTheError) {
    FakeHost host;
    host.refusesHandles = true;
    EXPECT_EQ(PA_NewHandle(1), nullptr);
    EXPECT_EQ(PA_GetLastError(), -108);
}

TEST(Bridge, MoveBlock_Table_CopiesOverlapsAndRefusesNonsense) {
    char bytes[] = "abcdef";
    PA_MoveBlock(bytes, bytes + 1, 5);
    EXPECT_STREQ(bytes, "aabcde");
    PA_MoveBlock(bytes + 1, bytes, 5);
    EXPECT_STREQ(bytes, "abcdee");
    PA_MoveBlock(nullptr, bytes, 3);
    PA_MoveBlock(bytes, nullptr, 3);
    PA_MoveBlock("xyz", bytes, 0);
    PA_MoveBlock("xyz", bytes, -1);
    EXPECT_STREQ(bytes, "abcdee");
}

TEST(Bridge, UserData_FromAndTo_KeepsTheBytes) {
    FakeHost host;
    PA_Handle handle = FromUserData("sako", 4);
    EXPECT_EQ(host.last().selector, -424);
    EXPECT_EQ(host.last().in.fParam1, 5);
    EXPECT_EQ(host.last().in.fParam3, 4);
    EXPECT_EQ(ToUserData(handle, nullptr), 4);
    EXPECT_EQ(host.last().in.fParam1, 4);
    char bytes[5] = "....";
    EXPECT_EQ(ToUserData(handle, bytes), 4);
    EXPECT_STREQ(bytes, "sako");
    PA_DisposeHandle(handle);
}

TEST(Bridge, UserData_OfNull_IsZeroWithoutACall) {
    FakeHost host;
    EXPECT_EQ(FromUserData(nullptr, 4), nullptr);
    EXPECT_EQ(ToUserData(nullptr, nullptr), 0);
    EXPECT_TRUE(host.calls.empty());
}

// Unicode strings --------------------------------------------------------------------------------------------------

TEST(Bridge, CreateUnistring_OfText_CopiesItsUnits) {
    FakeHost host;
    PA_Unistring text = PA_CreateUnistring(Wide("hello"));
    EXPECT_EQ(host.last().selector, ZR_SEL_CreateUnistring);
    EXPECT_EQ(host.last().in.fLength2, 5);
    EXPECT_EQ(Narrow(text), "hello");
    PA_DisposeUnistring(&text);
    EXPECT_EQ(host.last().selector, ZR_SEL_DisposeUnistring);
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(Bridge, CreateUnistring_OfNull_IsEmpty) {
    FakeHost host;
    PA_Unistring text = PA_CreateUnistring(nullptr);
    EXPECT_EQ(+text.fLength, 0);
    PA_DisposeUnistring(&text);
}

TEST(Bridge, CreateUnistringWithLength_OfUnitsWithZero_KeepsThem) {
    FakeHost host;
    PA_Unistring text = PA_CreateUnistringWithLength(Wide("a\0b", 3), 3);
    EXPECT_EQ(Narrow(text), std::string("a\0b", 3));
    PA_DisposeUnistring(&text);
    for (long length : {-1L, LONG_MIN}) {
        text = PA_CreateUnistringWithLength(Wide("abc"), length);
        EXPECT_EQ(+text.fLength, 0) << length;
        PA_DisposeUnistring(&text);
    }
}

TEST(Bridge, DisposeUnistring_Always_ZeroesAllTwentyBytes) {
    FakeHost host;
    host.answer[ZR_SEL_DisposeUnistring] = [](EngineBlock*) {};  // a host that leaves the record alone
    unsigned char record[21];
    memset(record, 0xEE, sizeof record);
    PA_DisposeUnistring((PA_Unistring*)record);
    for (int i = 0; i < 20; i++) EXPECT_EQ(record[i], 0) << i;
    EXPECT_EQ(record[20], 0xEE);
    size_t calls = host.calls.size();
    PA_DisposeUnistring(nullptr);
    EXPECT_EQ(host.calls.size(), calls);
}

TEST(Bridge, SetUnistring_OnARecord_FreesTheOldText) {
    FakeHost host;
    PA_Unistring text = host.String("old");
    PA_SetUnistring(&text, Wide("newer"));
    EXPECT_EQ(host.last().selector, ZR_SEL_SetUnistring);
    EXPECT_EQ(Narrow(text), "newer");
    PA_SetUnistringWithLength(&text, Wide("a\0b", 3), 3);
    EXPECT_EQ(Narrow(text), std::string("a\0b", 3));
    PA_SetUnistring(nullptr, Wide("x"));
    PA_DisposeUnistring(&text);
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(Bridge, GetUnicharsLength_Table_CountsToTheTerminator) {
    EXPECT_EQ(PA_GetUnicharsLength(nullptr), 0);
    EXPECT_EQ(PA_GetUnicharsLength(Wide("")), 0);
    EXPECT_EQ(PA_GetUnicharsLength(Wide("abc")), 3);
    EXPECT_EQ(PA_GetUnicharsLength(Wide("a\0b", 3)), 1);
    EXPECT_EQ(PA_GetUnicharsLength(Wide(std::string(1000, 'x'))), 1000);
}

TEST(Bridge, CompareUniBuffers_OfTwoTexts_SendsBothAndTheFlags) {
    FakeHost host;
    int64_t order = 0;
    host.answer[ZR_SEL_CompareUnibuffers] = [&](EngineBlock* block) { block->fParam1 = order; };
    Wide left("abc"), right("ab@");
    for (int64_t answer : {-1, 0, 1, -7, 9}) {
        order = answer;
        EXPECT_EQ(PA_CompareUniBuffers(left, 3, right, 2, false, true), answer < 0 ? -1 : answer > 0);
    }
    const EngineBlock& in = host.last().in;
    EXPECT_EQ(in.fParam1, (int64_t)(intptr_t)left.data());
    EXPECT_EQ(in.fParam2, (int64_t)(intptr_t)right.data());
    EXPECT_EQ(in.fLength1, 3);
    EXPECT_EQ(in.fLength2, 2);
    EXPECT_EQ(in.fParam3, 0);
    EXPECT_EQ(in.fParam4, 1);
    PA_CompareUniBuffers(nullptr, 3, right, -2, true, false);
    EXPECT_EQ(host.last().in.fLength1, 0);
    EXPECT_EQ(host.last().in.fLength2, 0);
    EXPECT_EQ(host.last().in.fParam3, 1);
    EXPECT_EQ(host.last().in.fParam4, 0);
}

TEST(Bridge, ConvertCharset_Asked_SendsBothBuffersAndCutsTheCount) {
    FakeHost host;
    int64_t written = 0;
    host.answer[ZR_SEL_ConvertCharset] = [&](EngineBlock* block) { block->fLength2 = written; };
    char source[4] = "abc", target[8];
    static const struct {
        int64_t written;
        long answer;
    } rows[] = {{0, 0}, {6, 6}, {8, 8}, {9, 8}, {-1, 0}};
    for (const auto& row : rows) {
        written = row.written;
        EXPECT_EQ(PA_ConvertCharsetToCharset(source, 3, eCS_UTF8, target, 8, eCS_UTF16), row.answer) << row.written;
    }
    const EngineBlock& in = host.last().in;
    EXPECT_EQ(in.fParam1, (int64_t)(intptr_t)source);
    EXPECT_EQ(in.fLength1, 3);
    EXPECT_EQ(in.fParam3, 7);
    EXPECT_EQ(in.fParam2, (int64_t)(intptr_t)target);
    EXPECT_EQ(in.fLength2, 8);
    EXPECT_EQ(in.fParam4, 2);
    written = 5;
    EXPECT_EQ(PA_ConvertCharsetToCharset(nullptr, 3, 7, nullptr, 8, 2), 0);
    EXPECT_EQ(host.last().in.fLength1, 0);
    EXPECT_EQ(host.last().in.fLength2, 0);
}

TEST(Bridge, Localise_ByKeyAndByNumber_FillsARecord) {
    FakeHost host;
    auto fill = [&](EngineBlock* block) { *At<PA_Unistring>(block->fParam1) = host.String("Fenster"); };
    host.answer[ZR_SEL_LocaliseString] = fill;
    host.answer[ZR_SEL_LocaliseStringByID] = fill;
    PA_Unistring text;
    PA_LocaliseString(Wide("window"), &text, 1);
    EXPECT_EQ(Narrow(host.last().in.fName), "window");
    EXPECT_EQ(host.last().in.fFlags, 1);
    EXPECT_EQ(Narrow(text), "Fenster");
    PA_DisposeUnistring(&text);
    text = PA_LocaliseStringByID(16000, 2, 1);
    EXPECT_EQ(host.last().in.fParam2, 16000);
    EXPECT_EQ(host.last().in.fParam3, 2);
    EXPECT_EQ(host.last().in.fFlags, 1);
    EXPECT_EQ(Narrow(text), "Fenster");
    PA_DisposeUnistring(&text);
    PA_LocaliseString(Wide("window"), nullptr, 1);
    EXPECT_EQ(host.liveStrings, 0);
}

// Names ------------------------------------------------------------------------------------------------------------

TEST(Bridge, NameCall_WithLongNames_ReachesTheHostCutAt255) {
    static const struct {
        long length, sent;
    } rows[] = {{0, 0}, {1, 1}, {254, 254}, {255, 255}, {256, 255}, {5000, 255}};
    for (const auto& row : rows) {
        FakeHost host;
        Wide name(std::string((size_t)row.length, 'n'));
        PA_EvalTime(name);
        EXPECT_EQ(PA_GetUnicharsLength(host.last().in.fName), row.sent);
        PA_Variable value = PA_GetVariable(name);
        EXPECT_EQ(PA_GetUnicharsLength(host.last().in.fName), row.sent);
        PA_FormatLongint(1, name, nullptr);
        EXPECT_EQ(PA_GetUnicharsLength(host.last().in.fName), row.sent);
        PA_LocaliseStringByID(1, 1, 1);
        PA_Unistring text;
        PA_LocaliseString(name, &text, 1);
        EXPECT_EQ(PA_GetUnicharsLength(host.last().in.fName), row.sent);
        EXPECT_EQ(PA_GetLastError(), 0);
        EXPECT_EQ(value.fType, eVK_Undefined);
    }
}

TEST(Bridge, NameCall_WithNull_SendsTheEmptyName) {
    FakeHost host;
    PA_EvalTime(nullptr);
    EXPECT_EQ(host.last().in.fName[0], 0);
    PA_GetVariable(nullptr);
    EXPECT_EQ(host.last().in.fName[0], 0);
}

TEST(Bridge, NameAnswer_WithoutATerminator_IsCutAt255) {
    FakeHost host;
    host.answer[ZR_SEL_CommandName] = [](EngineBlock* block) {
        for (PA_Unichar& unit : block->fName) unit = 'x';
    };
    PA_Unichar name[256];
    PA_GetCommandName(1, name);
    EXPECT_EQ(PA_GetUnicharsLength(name), 255);
    PA_GetCommandName(1, nullptr);  // nowhere to put it
}

// Processes --------------------------------------------------------------------------------------------------------

TEST(Bridge, Processes_Each_SendTheirCall) {
    FakeHost host;
    host.answer[ZR_SEL_CurrentProcessNumber] = [](EngineBlock* block) { block->fParam1 = 5; };
    EXPECT_EQ(PA_GetCurrentProcessNumber(), 5);
    PA_Yield();
    EXPECT_EQ(host.last().selector, ZR_SEL_Yield);
    EXPECT_EQ(host.last().in.fFlags, 0);
    PA_YieldAbsolute();
    EXPECT_EQ(host.last().in.fFlags, 1);
}

TEST(Bridge, RunInMainProcess_OfAFunction_RunsItWithItsArgument) {
    FakeHost host;
    host.answer[ZR_SEL_RunInMainProcess] = [](EngineBlock* block) {
        ((void (*)(void*))block->fParam1)((void*)block->fParam2);
    };
    int runs = 0;
    PA_RunInMainProcess([](void* argument) { ++*(int*)argument; }, &runs);
    EXPECT_EQ(runs, 1);
    PA_RunInMainProcess(nullptr, &runs);
    EXPECT_EQ(host.calls.size(), 1u);
}
