#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

// The record of a plug-in command: parameters in the host's format and an 8-byte result.
class Block {
  public:
    Block() {
        memset(result_, 0x55, sizeof result_);
        block_.result = result_;
        block_.data = nullptr;
    }
    ~Block() {
        for (auto& text : texts_) PA_DisposeUnistring(text.get());
        for (PA_Handle blob : blobs_) PA_DisposeHandle(blob);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    Block& Number(long number) {
        numbers_.push_back(std::make_unique<int>(static_cast<int>(number)));
        return Add(numbers_.back().get());
    }
    Block& String(const char* text) {
        std::u16string units = HostName(text);
        texts_.push_back(std::make_unique<PA_Unistring>(PA_CreateUnistring(Units(units))));
        return Add(texts_.back().get());
    }
    Block& Blob(const std::string& bytes) {
        blobs_.push_back(FromUserData(bytes.data(), static_cast<int>(bytes.size())));
        slots_.push_back(std::make_unique<PA_Handle>(blobs_.back()));
        return Add(slots_.back().get());
    }
    operator PluginBlock*() {
        block_.parameters = parameters_.data();
        return &block_;
    }
    int result() const {
        int number;
        memcpy(&number, result_, sizeof number);
        return number;
    }
    PA_Handle handle() const {
        PA_Handle handle;
        memcpy(&handle, result_, sizeof handle);
        return handle;
    }

  private:
    Block& Add(void* parameter) {
        parameters_.push_back(parameter);
        return *this;
    }
    PluginBlock block_ = {};
    char result_[8];
    std::vector<void*> parameters_;
    std::vector<std::unique_ptr<int>> numbers_;
    std::vector<std::unique_ptr<PA_Unistring>> texts_;
    std::vector<std::unique_ptr<PA_Handle>> slots_;
    std::vector<PA_Handle> blobs_;
};

ZR_Executer_VirtualStructure* At(ZR_Handle* list, long position) {
    return reinterpret_cast<ZR_Executer_VirtualStructure*>(list->GetMemPtr(position));
}

std::string Entry(ZR_Executer_VirtualStructure* record) {
    return std::to_string(record->kind) + " #" + std::to_string(record->reference) + " " +
           std::to_string(record->tableNumber) + "," + std::to_string(record->fieldNumber) + " " +
           Narrow(&record->name) + "/" + Narrow(&record->virtualName);
}

class List {
  public:
    List() { list_.Create(sizeof(ZR_Executer_VirtualStructure), 0); }
    ~List() { ZR_EXE_DisposeVirtualStructure(&list_); }
    operator ZR_Handle*() { return &list_; }
    ZR_Handle* operator->() { return &list_; }

  private:
    ZR_Handle list_;
};

}  // namespace

TEST(VirtualStructureTable, InAContext_MadeOnceAndRenamed) {
    Program program;
    Block first, again, other;
    first.Number(program->reference).Number(3).String("Customers");
    EXPECT_EQ(zrExe_CreateVirtualStructureTable(Executer(), first, nullptr, nullptr, 2), 0);
    EXPECT_EQ(first.result(), 1);
    EXPECT_EQ(program->nextVirtualReference, 2);
    again.Number(program->reference).Number(3).String("Clients");
    EXPECT_EQ(zrExe_CreateVirtualStructureTable(Executer(), again, nullptr, nullptr, 2), 0);
    EXPECT_EQ(again.result(), 1);
    EXPECT_EQ(program->nextVirtualReference, 2);  // the counter moves once
    other.Number(program->reference).Number(4).String("Orders");
    zrExe_CreateVirtualStructureTable(Executer(), other, nullptr, nullptr, 2);
    EXPECT_EQ(other.result(), 2);
    ASSERT_EQ(program->virtualStructure.count, 2);
    EXPECT_EQ(Entry(At(&program->virtualStructure, 1)), "1 #1 3,0 /Clients");
    EXPECT_EQ(Entry(At(&program->virtualStructure, 2)), "1 #2 4,0 /Orders");
    EXPECT_TRUE(At(&program->virtualStructure, 1)->flag);
}

TEST(VirtualStructureTable, BadNumbers_NoEntry) {
    for (long number : {0L, -1L, -100000L}) {
        Program program;
        Block block;
        block.Number(program->reference).Number(number).String("x");
        EXPECT_EQ(zrExe_CreateVirtualStructureTable(Executer(), block, nullptr, nullptr, 2), -51) << number;
        EXPECT_EQ(block.result(), 0);
        EXPECT_EQ(program->lastError, -51);
        EXPECT_EQ(program->lastErrorText.count, 0);  // this number has no words
        EXPECT_EQ(program->virtualStructure.count, 0);
        Block good;
        good.Number(program->reference).Number(1).String("x");
        zrExe_CreateVirtualStructureTable(Executer(), good, nullptr, nullptr, 2);
        EXPECT_EQ(program->lastError, 0);
    }
}

TEST(VirtualStructureField, BothNumbersCount) {
    Program program;
    static const struct {
        int table, field;
        long error;
        int result;
    } rows[] = {{3, 5, 0, 1},   {3, 6, 0, 2},   {4, 5, 0, 3},    {3, 5, 0, 1},
                {0, 5, -51, 0}, {3, 0, -51, 0}, {-3, -5, -51, 0}};
    for (const auto& row : rows) {
        Block block;
        std::string caption = "F" + std::to_string(row.table) + "." + std::to_string(row.field);
        block.Number(program->reference).Number(row.table).Number(row.field).String(caption.c_str());
        EXPECT_EQ(zrExe_CreateVirtualStructureField(Executer(), block, nullptr, nullptr, 2), row.error) << caption;
        EXPECT_EQ(block.result(), row.result) << caption;
        EXPECT_EQ(program->lastError, row.error) << caption;
    }
    ASSERT_EQ(program->virtualStructure.count, 3);
    EXPECT_EQ(Entry(At(&program->virtualStructure, 2)), "2 #2 3,6 /F3.6");
}

TEST(VirtualStructureMethod, ByName) {
    Program program;
    Block first, again, empty;
    first.Number(program->reference).String("doWork").String("Do work");
    EXPECT_EQ(zrExe_CreateVirtualStructureMethod(Executer(), first, nullptr, nullptr, 2), 0);
    EXPECT_EQ(first.result(), 1);
    At(&program->virtualStructure, 1)->tableNumber = 77;
    again.Number(program->reference).String("DOWORK").String("Work");
    EXPECT_EQ(zrExe_CreateVirtualStructureMethod(Executer(), again, nullptr, nullptr, 2), 0);
    EXPECT_EQ(again.result(), 1);
    EXPECT_EQ(Entry(At(&program->virtualStructure, 1)), "5 #1 77,0 doWork/Work");  // its number is not touched
    empty.Number(program->reference).String("").String("x");
    EXPECT_EQ(zrExe_CreateVirtualStructureMethod(Executer(), empty, nullptr, nullptr, 2), -51);
    EXPECT_EQ(empty.result(), 0);
    EXPECT_EQ(program->lastError, -51);
    Block fresh;
    fresh.Number(program->reference).String("other").String("Other");
    zrExe_CreateVirtualStructureMethod(Executer(), fresh, nullptr, nullptr, 2);
    EXPECT_EQ(At(&program->virtualStructure, 2)->tableNumber, 0);
}

TEST(VirtualStructureCommands, WithoutAnExecuter_TheArgumentsAreUsed) {
    List list;
    long counter = 10;
    Block table, field, method, noList, noCounter;
    table.Number(3).String("T");
    EXPECT_EQ(zrExe_CreateVirtualStructureTable(nullptr, table, list, &counter, 1), 0);
    EXPECT_EQ(table.result(), 10);
    field.String("skipped").Number(3).Number(4).String("F");
    EXPECT_EQ(zrExe_CreateVirtualStructureField(nullptr, field, list, &counter, 2), 0);
    EXPECT_EQ(field.result(), 11);
    method.String("m").String("M");
    EXPECT_EQ(zrExe_CreateVirtualStructureMethod(nullptr, method, list, &counter, 1), 0);
    EXPECT_EQ(method.result(), 12);
    EXPECT_EQ(counter, 13);
    EXPECT_EQ(list->count, 3);
    noList.Number(3).String("T");
    zrExe_CreateVirtualStructureTable(nullptr, noList, nullptr, &counter, 1);
    EXPECT_EQ(noList.result(), 0);
    noCounter.Number(5).String("T");
    zrExe_CreateVirtualStructureTable(nullptr, noCounter, list, nullptr, 1);
    EXPECT_EQ(noCounter.result(), 0);
    EXPECT_EQ(list->count, 3);
}

TEST(VirtualStructureCommands, UnknownContext_ResultZero) {
    for (long reference : {0L, -1L, 999999L}) {
        Block table, field, method, activate, blob;
        table.Number(reference).Number(3).String("T");
        zrExe_CreateVirtualStructureTable(Executer(), table, nullptr, nullptr, 2);
        EXPECT_EQ(table.result(), 0);
        field.Number(reference).Number(3).Number(3).String("T");
        zrExe_CreateVirtualStructureField(Executer(), field, nullptr, nullptr, 2);
        EXPECT_EQ(field.result(), 0);
        method.Number(reference).String("a").String("b");
        zrExe_CreateVirtualStructureMethod(Executer(), method, nullptr, nullptr, 2);
        EXPECT_EQ(method.result(), 0);
        activate.Number(reference).Number(1);
        zrExe_ActivateVStructure(Executer(), activate);
        blob.Number(reference);
        zrExe_VStructureToBlob(Executer(), blob);
        EXPECT_EQ(blob.handle(), nullptr);
        Block back;
        back.Number(reference).Blob("x");
        zrExe_BlobToVStructure(Executer(), back);
    }
}

TEST(ActivateVStructure, TrueForExactlyOne) {
    Program program;
    static const struct {
        int value;
        bool active;
    } rows[] = {{1, true}, {0, false}, {2, false}, {-1, false}, {1, true}};
    for (const auto& row : rows) {
        Block block;
        block.Number(program->reference).Number(row.value);
        zrExe_ActivateVStructure(Executer(), block);
        EXPECT_EQ(program->useVirtualStructure, row.active) << row.value;
        EXPECT_EQ(program->GetVStructure(nullptr) != nullptr, row.active);
    }
}

TEST(VStructureBlob, RoundTripThroughTheCommands) {
    Program source, target;
    for (int i = 1; i <= 3; i++) {
        Block block;
        block.Number(source->reference).Number(i * 10).String("T\xC3\xA4");
        zrExe_CreateVirtualStructureTable(Executer(), block, nullptr, nullptr, 2);
    }
    Block write;
    write.Number(source->reference);
    zrExe_VStructureToBlob(Executer(), write);
    PA_Handle handle = write.handle();
    ASSERT_TRUE(handle);
    std::string bytes(*handle, static_cast<size_t>(PA_GetHandleSize(handle)));
    PA_DisposeHandle(handle);
    EXPECT_EQ(bytes.substr(0, 8), std::string("\0\0\0\1\0\0\0\3", 8));
    // kind, reference, second reference, table, field, flag, no name, the caption of two units, no third text
    EXPECT_EQ(Hex(bytes.data() + 8, 20 + 4 + 8 + 4),
              "0001"
              "00000001"
              "00000000"
              "0000000A"
              "00000000"
              "0001"
              "00000000"
              "00000002"
              "0054"
              "00E4"
              "00000000");
    long counter = target->nextVirtualReference;
    Block old;
    old.Number(target->reference).Number(99).String("old");
    zrExe_CreateVirtualStructureTable(Executer(), old, nullptr, nullptr, 2);
    Block read;
    read.Number(target->reference).Blob(bytes);
    zrExe_BlobToVStructure(Executer(), read);
    ASSERT_EQ(target->virtualStructure.count, 3);  // replaced
    EXPECT_EQ(Entry(At(&target->virtualStructure, 3)), "1 #3 30,0 /T\xC3\xA4");
    EXPECT_EQ(target->nextVirtualReference, counter + 1);  // not touched: a new record may bear an old reference
    Block fresh;
    fresh.Number(target->reference).Number(40).String("new");
    zrExe_CreateVirtualStructureTable(Executer(), fresh, nullptr, nullptr, 2);
    EXPECT_EQ(fresh.result(), 2);
}

TEST(VStructureBlob, EmptyList_AndNoExecuter) {
    Program program;
    Block write;
    write.Number(program->reference);
    zrExe_VStructureToBlob(Executer(), write);
    PA_Handle handle = write.handle();
    ASSERT_TRUE(handle);
    EXPECT_EQ(Hex(*handle, PA_GetHandleSize(handle)), "0000000100000000");
    PA_DisposeHandle(handle);
    Block none;
    none.Number(program->reference);
    zrExe_VStructureToBlob(nullptr, none);
    EXPECT_EQ(none.handle(), nullptr);
}

TEST(VStructureBlob, DamagedBytes_NoHarm) {
    static const std::string blobs[] = {
        "",
        "x",
        std::string("\0\0\0\1", 4),
        std::string("\0\0\0\1\0\0\0\2", 8),
        std::string("\0\0\0\1\x7F\xFF\xFF\xFF", 8),
        std::string("\0\0\0\1\xFF\xFF\xFF\xFF", 8),
        std::string("\0\0\0\1\0\0\0\1\0\1\0\0\0\1\0\0\0\0\0\0\0\5\0\0\0\0\0\1\x7F\xFF\xFF\xFF", 32),
        std::string(300, '\xFF')};
    for (const std::string& bytes : blobs) {
        Program program;
        Block block;
        block.Number(program->reference).Blob(bytes);
        zrExe_BlobToVStructure(Executer(), block);
        EXPECT_LE(program->virtualStructure.count, 100000) << Hex(bytes.data(), static_cast<long>(bytes.size()));
        EXPECT_EQ(ZR_EXE_GetVStructureByTableNo(&program->virtualStructure, 123456), nullptr);
    }
}

TEST(VirtualStructure, InUse_CaptionsAreRead) {
    Program program;
    program->useVirtualStructure = false;
    Block block;
    block.Number(program->reference).String("trueName").String("Caption Of It");
    zrExe_CreateVirtualStructureMethod(Executer(), block, nullptr, nullptr, 2);
    program.Add("trueName", "$0:=8");
    EXPECT_EQ(program.Run("$r:=caption of it").error(), "-14@1 Unknown Variable \"caption of it\"");
    Block activate;
    activate.Number(program->reference).Number(1);
    zrExe_ActivateVStructure(Executer(), activate);
    EXPECT_EQ(program.Run("$r:=caption of it")["$r"], "real 8");
}
