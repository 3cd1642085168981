#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {
void AnswerName(EngineBlock* block, const char* name) {
    for (int i = 0; i <= (int)strlen(name); i++) block->fName[i] = (unsigned char)name[i];
}
}  // namespace

// Structure --------------------------------------------------------------------------------------------------------

TEST(BridgeRecords, Names_OfTableAndField_AreCopiedOut) {
    FakeHost host;
    host.answer[ZR_SEL_TableName] = [](EngineBlock* block) { AnswerName(block, "Invoices"); };
    host.answer[ZR_SEL_FieldName] = [](EngineBlock* block) { AnswerName(block, "Number"); };
    PA_Unichar name[256];
    PA_GetTableName(3, name);
    EXPECT_EQ(Narrow(name), "Invoices");
    EXPECT_EQ(host.last().in.fParam1, 3);
    EXPECT_EQ(host.last().in.fParam4, 0);
    PA_GetFieldName(3, 4, name);
    EXPECT_EQ(Narrow(name), "Number");
    EXPECT_EQ(host.last().in.fParam1, 3);
    EXPECT_EQ(host.last().in.fParam2, 4);
    host.answer[ZR_SEL_TableName] = [](EngineBlock* block) {
        AnswerName(block, "left over");
        block->fError = 4007;
    };
    PA_GetTableName(99, name);
    EXPECT_EQ(Narrow(name), "");
}

TEST(BridgeRecords, FieldProperties_OfAField_ComeOutOneByOne) {
    FakeHost host;
    for (int flags = 0; flags < 8; flags++) {
        host.answer[ZR_SEL_FieldProperties] = [&](EngineBlock* block) {
            block->fParam3 = 9;
            block->fLength1 = 12;
            block->fFlags = flags;
        };
        short type;
        long length;
        bool indexed, unique, invisible;
        PA_GetFieldProperties(1, 2, &type, &length, &indexed, &unique, &invisible);
        EXPECT_EQ(type, 9);
        EXPECT_EQ(length, 12);
        EXPECT_EQ(indexed, (flags & 1) != 0);
        EXPECT_EQ(unique, (flags & 2) != 0);
        EXPECT_EQ(invisible, (flags & 4) != 0);
        EXPECT_EQ(PA_GetFieldType(1, 2), 9);
    }
    host.answer[ZR_SEL_FieldProperties] = [](EngineBlock* block) {
        block->fParam3 = 9;
        block->fError = 4007;
    };
    EXPECT_EQ(PA_GetFieldType(1, 2), -1);
}

TEST(BridgeRecords, TableAndFieldNumbers_OfText_AreTwoNumbersOrZero) {
    FakeHost host;
    host.answer[ZR_SEL_TableAndFieldNumbers] = [](EngineBlock* block) {
        if (Narrow(block->fName) != "[Invoices]Number") return;
        block->fParam1 = 3;
        block->fParam2 = 4;
    };
    short table = -1, field = -1;
    PA_GetTableAndFieldNumbers(Wide("[Invoices]Number"), &table, &field);
    EXPECT_EQ(table, 3);
    EXPECT_EQ(field, 4);
    PA_GetTableAndFieldNumbers(Wide("[None]"), &table, &field);
    EXPECT_EQ(table, 0);
    EXPECT_EQ(field, 0);
    PA_GetTableAndFieldNumbers(Wide("[None]"), nullptr, nullptr);
}

TEST(BridgeRecords, StructureCalls_InTheVirtualStructure_SendTheRequestCode) {
    FakeHost host;
    auto callAll = [&](int64_t request) {
        PA_Unichar name[256];
        short table, field;
        host.calls.clear();
        PA_GetTableName(1, name);
        PA_GetFieldName(1, 1, name);
        PA_GetFieldType(1, 1);
        PA_GetTableAndFieldNumbers(Wide("[A]B"), &table, &field);
        EXPECT_EQ(host.calls.size(), 4u);
        for (const auto& call : host.calls) EXPECT_EQ(call.in.fParam4, request) << call.selector;
    };
    callAll(0);
    std::thread([] { PA_UseVirtualStructure(); }).join();  // one thread's switch is seen by all
    callAll(911);
    PA_UseRealStructure();
    callAll(0);
}

// Records and selections -------------------------------------------------------------------------------------------

TEST(BridgeRecords, SelectionCalls_Each_SendTheirFields) {
    FakeHost host;
    static const struct {
        void (*call)();
        int selector;
        int64_t first, second, third;  // third -9 = not used
    } rows[] = {
        {[] { PA_NextRecord(3); }, ZR_SEL_NextRecord, 3, 0, -9},
        {[] { PA_FirstRecord(3); }, ZR_SEL_FirstRecord, 3, 0, -9},
        {[] { PA_GotoSelectedRecord(3, 12); }, ZR_SEL_GotoSelectedRecord, 3, 12, -9},
        {[] { PA_RelateOne(3); }, ZR_SEL_Relate, 3, 0, 1},
        {[] { PA_RelateMany(3); }, ZR_SEL_Relate, 3, 0, 2},
        {[] { PA_RelateOneSelection(3, 4); }, ZR_SEL_Relate, 3, 4, 3},
        {[] { PA_RelateManySelection(3, 4); }, ZR_SEL_Relate, 3, 4, 4},
        {[] { PA_UseAutomaticRelations(true, false); }, ZR_SEL_UseAutomaticRelations, 1, 0, -9},
        {[] { PA_UseAutomaticRelations(false, true); }, ZR_SEL_UseAutomaticRelations, 0, 1, -9},
    };
    for (const auto& row : rows) {
        row.call();
        EXPECT_EQ(host.last().selector, row.selector);
        EXPECT_EQ(host.last().in.fParam1, row.first) << row.selector;
        EXPECT_EQ(host.last().in.fParam2, row.second) << row.selector;
        if (row.third != -9) { EXPECT_EQ(host.last().in.fParam3, row.third); }
    }
}

TEST(BridgeRecords, Counts_Answered_AreNeutralAfterAnError) {
    static const struct {
        long (*call)(long);
        int selector;
        long none;
    } rows[] = {{PA_SelectedRecordNumber, ZR_SEL_SelectedRecordNumber, 0},
                {PA_RecordsInSelection, ZR_SEL_RecordsInSelection, 0},
                {PA_RecordNumber, ZR_SEL_RecordNumber, -1}};
    for (const auto& row : rows) {
        FakeHost host;
        short error = 0;
        host.answer[row.selector] = [&](EngineBlock* block) {
            EXPECT_EQ(block->fParam1, 5);
            block->fParam2 = 17;
            block->fError = error;
        };
        EXPECT_EQ(row.call(5), 17);
        error = 4007;
        EXPECT_EQ(row.call(5), row.none);
        host.answer.clear();
        EXPECT_EQ(row.call(5), row.none);
    }
}

// Field values -----------------------------------------------------------------------------------------------------

namespace {

// A host with one field that holds what was last set.
struct OneField {
    FakeHost host;
    PA_Variable stored = PA_CreateVariable(eVK_Undefined);
    std::string text, bytes;

    OneField() {
        host.answer[ZR_SEL_SetField] = [this](EngineBlock* block) {
            EXPECT_EQ(block->fParam1, 2);
            EXPECT_EQ(block->fParam2, 3);
            stored = *At<PA_Variable>(block->fParam3);
            if (stored.fType == eVK_Text) text = Narrow(stored.uValue.fText);
            if (stored.fType == eVK_Blob) bytes.assign(*stored.uValue.fArray.fData, (size_t)stored.uValue.fArray.fSize);
        };
        host.answer[ZR_SEL_GetField] = [this](EngineBlock* block) {
            EXPECT_EQ(block->fParam1, 2);
            EXPECT_EQ(block->fParam2, 3);
            PA_Variable* value = At<PA_Variable>(block->fParam3);
            EXPECT_EQ(value->fType, eVK_Undefined);
            *value = stored;
            if (stored.fType == eVK_Text) value->uValue.fText = host.String(text.c_str());
            if (stored.fType == eVK_Blob) {
                *value = PA_CreateVariable(eVK_Blob);
                PA_SetBlobVariable(value, bytes.data(), (long)bytes.size());
            }
        };
    }
};

}  // namespace

TEST(BridgeRecords, FieldValues_SetAndGet_UseTheirKind) {
    OneField field;
    PA_SetRealField(2, 3, 2.5);
    EXPECT_EQ(field.stored.fType, eVK_Real);
    EXPECT_EQ(PA_GetRealField(2, 3), 2.5);
    PA_SetLongintField(2, 3, -70000);
    EXPECT_EQ(field.stored.fType, eVK_Longint);
    EXPECT_EQ(PA_GetLongintField(2, 3), -70000);
    PA_SetIntegerField(2, 3, -7);
    EXPECT_EQ(field.stored.fType, eVK_Integer);
    EXPECT_EQ(PA_GetIntegerField(2, 3), -7);
    PA_SetTimeField(2, 3, 3600);
    EXPECT_EQ(field.stored.fType, eVK_Time);
    EXPECT_EQ(PA_GetTimeField(2, 3), 3600);
    PA_SetBooleanField(2, 3, true);
    EXPECT_EQ(field.stored.fType, eVK_Boolean);
    EXPECT_TRUE(PA_GetBooleanField(2, 3));
    PA_SetDateField(2, 3, 1, 2, 2003);
    EXPECT_EQ(field.stored.fType, eVK_Date);
    short day, month, year;
    PA_GetDateField(2, 3, &day, &month, &year);
    EXPECT_EQ(day, 1);
    EXPECT_EQ(month, 2);
    EXPECT_EQ(year, 2003);
}

TEST(BridgeRecords, StringField_SetAndGet_CopiesBothWays) {
    OneField field;
    Wide units("text");
    PA_Unistring text = units.record();
    PA_SetStringField(2, 3, &text);
    EXPECT_EQ(field.stored.fType, eVK_Text);
    PA_Unistring answer = PA_GetStringField(2, 3);
    EXPECT_EQ(Narrow(answer), "text");
    PA_DisposeUnistring(&answer);
    PA_SetStringField(2, 3, nullptr);
    EXPECT_EQ(field.text, "");
    EXPECT_EQ(field.host.liveStrings, 0);
}

TEST(BridgeRecords, BlobField_SetAndGet_CopiesBothWays) {
    OneField field;
    PA_SetBlobField(2, 3, "abc", 3);
    EXPECT_EQ(field.bytes, "abc");
    EXPECT_EQ(PA_GetBlobField(2, 3, nullptr), 3);
    char bytes[4] = "...";
    EXPECT_EQ(PA_GetBlobField(2, 3, bytes), 3);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(field.host.liveHandles(), 0u);
}

TEST(BridgeRecords, PictureField_SetAndGet_HandsOutTheCopy) {
    OneField field;
    int picture;
    PA_SetPictureField(2, 3, &picture);
    EXPECT_EQ(field.stored.fType, eVK_Picture);
    EXPECT_EQ(PA_GetPictureField(2, 3), &picture);
    EXPECT_EQ(field.host.count(ZR_SEL_ClearVariable), 0);
    EXPECT_EQ(field.host.count(ZR_SEL_DisposePicture), 0);
}

TEST(BridgeRecords, FieldValues_OfAnotherKind_AreNeutralAndFreed) {
    OneField field;
    Wide units("text");
    PA_Unistring text = units.record();
    PA_SetStringField(2, 3, &text);
    EXPECT_EQ(PA_GetRealField(2, 3), 0.0);
    EXPECT_EQ(PA_GetLongintField(2, 3), 0);
    EXPECT_EQ(PA_GetTimeField(2, 3), 0);
    EXPECT_EQ(PA_GetIntegerField(2, 3), 0);
    EXPECT_FALSE(PA_GetBooleanField(2, 3));
    EXPECT_EQ(PA_GetBlobField(2, 3, nullptr), 0);
    EXPECT_EQ(PA_GetPictureField(2, 3), nullptr);
    EXPECT_EQ(field.host.liveStrings, 0);
    PA_SetRealField(2, 3, 1);
    EXPECT_EQ(+PA_GetStringField(2, 3).fString, nullptr);
}

TEST(BridgeRecords, FieldValue_Refused_KeepsTheErrorOfTheRead) {
    FakeHost host;
    host.answer[ZR_SEL_GetField] = [](EngineBlock* block) { block->fError = 4007; };
    EXPECT_EQ(PA_GetLongintField(1, 1), 0);
    EXPECT_EQ(PA_GetLastError(), 4007);
    host.answer[ZR_SEL_SetField] = [](EngineBlock* block) { block->fError = 4007; };
    PA_SetBlobField(1, 1, "x", 1);
    EXPECT_EQ(PA_GetLastError(), 4007);
}
