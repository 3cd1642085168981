#include "language/ZR_API_VirtualStructure.h"

#include "language/ZR_API_Executer.h"
#include "tests/language/LanguageTesting.h"

using VirtualStructure = LanguageTest;

static long ReferenceOf(ZR_Executer_VirtualStructure* record) { return record ? record->reference : 0; }

TEST_F(VirtualStructure, Create_Forms) {
    Structure list;
    list.Add()->Create(4, 10, 11);
    list.Add()->CreateTable(3, Text(u"Customers"), 12);
    list.Add()->CreateField(3, 5, Text(u"City"), 13);
    list.Add()->CreateVariable(Text(u"v"), Text(u"Value"), 14);
    list.Add()->CreateGroup(Text(u"Group"), 15);
    list.Add()->CreateMethod(Text(u"m_Run"), Text(u"Run"), 16, 17);
    static const struct {
        short kind;
        long reference, second;
        const char16_t *name, *caption;
        long table, field;
    } rows[] = {
        {4, 10, 11, u"", u"", 0, 0},      {1, 12, 0, u"", u"Customers", 3, 0}, {2, 13, 0, u"", u"City", 3, 5},
        {3, 14, 0, u"v", u"Value", 0, 0}, {4, 15, 0, u"", u"Group", 0, 0},     {5, 16, 0, u"m_Run", u"Run", 17, 0},
    };
    for (long i = 1; i <= 6; i++) {
        ZR_Executer_VirtualStructure* record = list.At(i);
        EXPECT_EQ(record->kind, rows[i - 1].kind) << i;
        EXPECT_EQ(record->reference, rows[i - 1].reference) << i;
        EXPECT_EQ(record->secondReference, rows[i - 1].second) << i;
        EXPECT_EQ(Units(&record->name), rows[i - 1].name) << i;
        EXPECT_EQ(Units(&record->virtualName), rows[i - 1].caption) << i;
        EXPECT_EQ(record->extraText.count, 0) << i;
        EXPECT_EQ(record->tableNumber, rows[i - 1].table) << i;
        EXPECT_EQ(record->fieldNumber, rows[i - 1].field) << i;
        EXPECT_TRUE(record->flag) << i;
    }
}

TEST_F(VirtualStructure, Dispose_ClearsTheRecord) {
    ZR_Executer_VirtualStructure record;
    record.CreateField(3, 5, Text(u"City"), 13);
    record.Dispose();
    EXPECT_EQ(record.kind, 0);
    EXPECT_EQ(record.tableNumber, 0);
    EXPECT_EQ(record.fieldNumber, 0);
    EXPECT_FALSE(record.flag);
    EXPECT_EQ(record.virtualName.count, 0);
}

TEST_F(VirtualStructure, SetVirtualName_Replaces) {
    Structure list;
    list.Table(3, u"Customers");
    list.At(1)->SetVirtualName(Text(u"Clients"));
    EXPECT_EQ(Units(&list.At(1)->virtualName), u"Clients");
    list.At(1)->SetVirtualName(&list.At(1)->virtualName);
    EXPECT_EQ(Units(&list.At(1)->virtualName), u"Clients");
}

TEST_F(VirtualStructure, Lookups_FirstMatch) {
    Structure list;
    list.Table(3, u"Customers");      // 1
    list.Table(3, u"CUSTOMERS");      // 2
    list.Field(3, 5, u"City");        // 3
    list.Field(4, 5, u"city");        // 4
    list.Variable(u"v", u"City");     // 5
    list.Method(u"v", u"Customers");  // 6
    list.Method(u"V", u"Ärger");      // 7
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByTableNo(list, 3)), 1);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByTableNo(list, 4)), 0);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByFieldNo(list, 4, 5)), 4);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByFieldNo(list, 4, 6)), 0);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByVariablename(list, Text(u"V"))), 5);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByVariableCaption(list, Text(u"CITY"))), 5);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByMethodname(list, Text(u"V"))), 6);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByMethodCaption(list, Text(u"customers"))), 6);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByMethodCaption(list, Text(u"ÄRGER"))), 7);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByMethodCaption(list, Text(u"ärger"))), 0) << "only ASCII folds";
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByTableCaption(list, Text(u"customers"))), 1);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByFieldCaption(list, 4, Text(u"City"))), 4);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByFieldCaption(list, 5, Text(u"City"))), 0);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByReference(list, 4)), 4);
    EXPECT_EQ(ReferenceOf(ZR_EXE_GetVStructureByReference(list, 99)), 0);
}

TEST_F(VirtualStructure, Lookups_NullAndEmptyList) {
    Structure empty;
    for (ZR_Handle* list : {static_cast<ZR_Handle*>(nullptr), static_cast<ZR_Handle*>(empty)}) {
        EXPECT_EQ(ZR_EXE_GetVStructureByTableNo(list, 3), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByFieldNo(list, 3, 5), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByVariablename(list, Text(u"v")), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByVariableCaption(list, Text(u"v")), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByMethodname(list, Text(u"v")), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByMethodCaption(list, Text(u"v")), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByTableCaption(list, Text(u"v")), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByFieldCaption(list, 1, Text(u"v")), nullptr);
        EXPECT_EQ(ZR_EXE_GetVStructureByReference(list, 1), nullptr);
        EXPECT_FALSE(ZR_EXE_DeleteVStructureByID(list, 1));
    }
}

TEST_F(VirtualStructure, DeleteByID_FirstOfThatReference) {
    Structure list;
    list.Table(3, u"A");
    list.Table(4, u"B");
    list.Table(5, u"C");
    EXPECT_FALSE(ZR_EXE_DeleteVStructureByID(list, 9));
    EXPECT_TRUE(ZR_EXE_DeleteVStructureByID(list, 2));
    EXPECT_FALSE(ZR_EXE_DeleteVStructureByID(list, 2));
    EXPECT_EQ(list->count, 2);
    EXPECT_EQ(Units(&list.At(2)->virtualName), u"C");
}

// Serial form -----------------------------------------------------------------------------------------------------

static std::string Hex(const std::string& bytes) {
    std::string out;
    char buffer[4];
    for (unsigned char byte : bytes) {
        snprintf(buffer, sizeof buffer, "%02X", byte);
        out += buffer;
    }
    return out;
}

TEST_F(VirtualStructure, Blob_Bytes) {
    Structure list;
    list.Add()->CreateField(3, -1, Text(u"Ci"), 0x100000007);
    list.At(1)->secondReference = 8;
    list.At(1)->name.AddString("n");
    Block blob;
    blob->AddLong(99);
    ZR_EXE_VStructureToBlob(list, blob);
    EXPECT_EQ(Hex(blob.Bytes()),
              "00000001"
              "00000001"  // version, records
              "0002"
              "00000007"
              "00000008"
              "00000003"
              "FFFFFFFF"  // kind, references, table, field
              "0001"      // flag
              "00000001"
              "006E"  // name
              "00000002"
              "00430069"    // caption
              "00000000");  // third text
    EXPECT_EQ(blob->growStep, 10000);
}

TEST_F(VirtualStructure, Blob_ExampleOfTheFormatPage) {
    Structure list;
    list.Add()->CreateTable(3, Text(u"Ab"), 7);
    Block blob;
    ZR_EXE_VStructureToBlob(list, blob);
    EXPECT_EQ(blob->count, 44);
    EXPECT_EQ(Hex(blob.Bytes()),
              "00000001"
              "00000001"
              "0001"
              "00000007"
              "00000000"
              "00000003"
              "00000000"
              "0001"
              "00000000"
              "00000002"
              "00410062"
              "00000000");
}

TEST_F(VirtualStructure, Blob_EmptyList) {
    Structure list;
    Block blob;
    ZR_EXE_VStructureToBlob(list, blob);
    EXPECT_EQ(Hex(blob.Bytes()), "0000000100000000");
    ZR_EXE_BlobToVStructure(blob, list);
    EXPECT_EQ(list->count, 0);
}

TEST_F(VirtualStructure, Blob_RoundTrip) {
    Structure list, back;
    list.Table(3, u"Customers");
    list.Field(3, 5, u"Größe \u20AC");
    list.Method(u"m", u"M");
    list.Add()->Create(4, 77, 78);
    list.At(4)->extraText.AddString("extra");
    list.At(4)->flag = false;
    Block blob, again;
    ZR_EXE_VStructureToBlob(list, blob);
    back.Table(1, u"old");
    ZR_EXE_BlobToVStructure(blob, back);
    ZR_EXE_VStructureToBlob(back, again);
    EXPECT_EQ(blob.Bytes(), again.Bytes());
    ASSERT_EQ(back->count, 4);
    EXPECT_EQ(back.At(2)->reference, 2) << "the reference stays";
    EXPECT_EQ(Units(&back.At(2)->virtualName), u"Größe \u20AC");
    EXPECT_FALSE(back.At(4)->flag);
    EXPECT_EQ(back.At(4)->secondReference, 78);
}

TEST_F(VirtualStructure, BlobReading_SignsFlagAndVersion) {
    Block blob;
    blob->AddLong(4711);  // Required: the version is not looked at
    blob->AddLong(1);
    blob->AddShort(1);
    for (long value : {-2L, -3L, -4L, -5L}) blob->AddLong(value);
    blob->AddShort(2);  // not exactly 1
    for (int i = 0; i < 3; i++) blob->AddLong(0);
    Structure list;
    ZR_EXE_BlobToVStructure(blob, list);
    ASSERT_EQ(list->count, 1);
    EXPECT_EQ(list.At(1)->reference, -2);
    EXPECT_EQ(list.At(1)->secondReference, -3);
    EXPECT_EQ(list.At(1)->tableNumber, -4);
    EXPECT_EQ(list.At(1)->fieldNumber, -5);
    EXPECT_FALSE(list.At(1)->flag);
}

TEST_F(VirtualStructure, BlobReading_Truncated_RestIsEmpty) {
    Structure list, back;
    list.Table(3, u"Customers");
    list.Table(4, u"Orders");
    list.Table(5, u"Items");
    Block blob;
    ZR_EXE_VStructureToBlob(list, blob);
    long whole = blob->count;
    for (long length = 0; length < whole; length++) {
        Block cut;
        cut->AddCharBuffer(blob->data, length);
        ZR_EXE_BlobToVStructure(cut, back);
        EXPECT_EQ(back->count, length < 8 ? 0 : 3) << length;
        if (length < 8) continue;
        bool firstWhole = length >= 8 + 20 + 4 + 4 + 18;  // up to the caption's last unit
        EXPECT_EQ(ZR_EXE_GetVStructureByTableCaption(back, Text(u"Customers")) != nullptr, firstWhole) << length;
        bool lastWhole = length >= whole - 4;
        EXPECT_EQ(ZR_EXE_GetVStructureByTableCaption(back, Text(u"Items")) != nullptr, lastWhole) << length;
    }
}

TEST_F(VirtualStructure, BlobReading_HostileCounts_AreBounded) {
    for (long count : {-1L, -2147483647L - 1, 2147483647L, 100000000L}) {
        Block blob;
        blob->AddLong(1);
        blob->AddLong(count);
        Structure list;
        ZR_EXE_BlobToVStructure(blob, list);
        EXPECT_LE(list->count, 1000) << count;
        for (long i = 1; i <= list->count; i++) EXPECT_EQ(list.At(i)->kind, 0);
    }
}

TEST_F(VirtualStructure, BlobReading_HostileTextLength_TakesWhatIsThere) {
    for (long length : {-1L, 2147483647L, 100L}) {
        Block blob;
        blob->AddLong(1);
        blob->AddLong(1);
        blob->AddShort(1);
        for (int i = 0; i < 4; i++) blob->AddLong(1);
        blob->AddShort(1);
        blob->AddLong(length);
        blob->AddShort('x');
        Structure list;
        ZR_EXE_BlobToVStructure(blob, list);
        ASSERT_EQ(list->count, 1);
        EXPECT_LE(list.At(1)->name.count, 1) << length;
    }
}

// Index: what tokenising finds on a long list is what the plain lookups find ----------------------------------------

static std::string Tokenised(ZR_Executer* executer, const std::u16string& line, ZR_Handle* list) {
    Tokens tokens;
    executer->TokenizeToTokens(Text(line), tokens, list, nullptr, nullptr);
    return Describe(tokens);
}

TEST_F(VirtualStructure, LongList_FindsWhatAScanFinds) {
    TestExecuter executer;
    Structure list;
    for (int i = 0; i < 300; i++) {
        std::u16string number;
        for (char c : std::to_string(i)) number += c;
        list.Method(u"m_" + number, u"Do " + number);
        list.Table(i + 1, u"T" + number);
        list.Field(i + 1, 7, u"F");
        list.Method(u"second_" + number, u"do " + number);  // same caption: never the first
    }
    for (int round = 0; round < 2; round++) {
        EXPECT_EQ(Tokenised(&executer, u"DO 0;do 299;Do 300", list), "L | m:m_0 | ; | m:m_299 | ; | v:Do 300");
        EXPECT_EQ(Tokenised(&executer, u"[t12]f;[T299];[T300]", list), "L | [13]7 | ; | [300] | ; | o:[T300]");
    }
}

TEST_F(VirtualStructure, LongList_ChangesAreSeen) {
    TestExecuter executer;
    Structure list;
    for (int i = 0; i < 50; i++) list.Method(u"m", u"same");
    list.Method(u"last", u"Run it");
    EXPECT_EQ(Tokenised(&executer, u"Run it", list), "L | m:last");
    list.At(51)->SetVirtualName(Text(u"Walk"));
    EXPECT_EQ(Tokenised(&executer, u"Run it", list), "L | v:Run it");
    EXPECT_EQ(Tokenised(&executer, u"walk", list), "L | m:last");
    list.At(20)->SetVirtualName(Text(u"walk"));
    EXPECT_EQ(Tokenised(&executer, u"walk", list), "L | m:m") << "the first record wins";
    ZR_EXE_DeleteVStructureByID(list, 20);
    EXPECT_EQ(Tokenised(&executer, u"walk", list), "L | m:last");
    list.Method(u"new", u"New one");
    EXPECT_EQ(Tokenised(&executer, u"New one", list), "L | m:new");
    list.At(51)->virtualName.Copy(Text(u"By hand"));
    ZR_EXE_VStructureChanged();
    EXPECT_EQ(Tokenised(&executer, u"New one;By hand", list), "L | v:New one | ; | m:new");
}

TEST_F(VirtualStructure, LongList_TwoListsInTurn) {
    TestExecuter executer;
    Structure first, second;
    for (int i = 0; i < 40; i++) {
        first.Method(u"first", u"run");
        second.Method(u"second", u"run");
    }
    for (int round = 0; round < 3; round++) {
        EXPECT_EQ(Tokenised(&executer, u"run", first), "L | m:first");
        EXPECT_EQ(Tokenised(&executer, u"run", second), "L | m:second");
    }
}

TEST_F(VirtualStructure, LongList_IndexInUseElsewhere_IsLeftAlone) {
    TestExecuter executer;
    Structure list;
    for (char16_t i = 0; i < 40; i++) list.Method(u"m", i < 20 ? u"run" : std::u16string(1, u'a' + i));
    executer.captionIndex.busy = 1;
    EXPECT_EQ(Tokenised(&executer, u"run;walk", list), "L | m:m | ; | v:walk");
    EXPECT_EQ(executer.captionIndex.busy, 1);
    EXPECT_EQ(executer.captionIndex.index.slots.data, nullptr);
    executer.captionIndex.busy = 0;
    EXPECT_EQ(Tokenised(&executer, u"run", list), "L | m:m");
    EXPECT_NE(executer.captionIndex.index.slots.data, nullptr);
    EXPECT_EQ(executer.captionIndex.busy, 0);
}

TEST_F(VirtualStructure, LongList_CaptionsThatCollide_EndInAScan) {
    TestExecuter executer;
    Structure list;
    for (int i = 0; i < 5000; i++) list.Method(u"m", u"the same caption");
    list.Method(u"other", u"other");
    EXPECT_EQ(Tokenised(&executer, u"The Same Caption;other", list), "L | m:m | ; | m:other");
    EXPECT_EQ(executer.captionIndex.index.slots.data, nullptr);
}
