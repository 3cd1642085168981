#include "host/Memory.h"

#include <thread>

#include "tests/host/Host_Test.h"

namespace zrhost {
namespace {

class HostMemory : public HostTest {};

EngineBlock Operation(int64_t code, PA_Handle handle = nullptr, int64_t parameter = 0) {
    EngineBlock block = Block();
    block.fParam1 = code;
    block.fHandle = handle;
    block.fParam2 = parameter;
    Call(ZR_SEL_Handle, &block);
    return block;
}

TEST_F(HostMemory, Handle_New_IsZeroedOrRefused) {
    static const struct {
        int64_t bytes;
        bool made;
    } rows[] = {
        {0, true},   {1, true},          {42, true},         {100000, true},
        {-1, false}, {INT64_MIN, false}, {INT64_MAX, false}, {int64_t(1) << 40, false},
    };
    for (const auto& row : rows) {
        EngineBlock block = Operation(ZR_HANDLE_NEW, nullptr, row.bytes);
        EXPECT_EQ(block.fHandle != nullptr, row.made) << row.bytes;
        EXPECT_EQ(block.fError, row.made ? 0 : ZR_ERR_MEMORY) << row.bytes;
        if (!row.made) continue;
        EXPECT_EQ(Operation(ZR_HANDLE_GET_SIZE, block.fHandle).fParam2, row.bytes);
        for (int64_t i = 0; i < row.bytes; ++i) ASSERT_EQ((*block.fHandle)[i], 0) << i;
        EXPECT_EQ(Operation(ZR_HANDLE_DISPOSE, block.fHandle).fError, 0);
    }
}

TEST_F(HostMemory, Handle_SetSize_KeepsBytesAndZeroesNewOnes) {
    PA_Handle handle = Operation(ZR_HANDLE_NEW, nullptr, 4).fHandle;
    std::memcpy(*handle, "abcd", 4);
    static const int64_t sizes[] = {5, 100, 101, 5000, 3, 200, 0, 8};
    int64_t kept = 4;
    for (int64_t size : sizes) {
        EXPECT_EQ(Operation(ZR_HANDLE_SET_SIZE, handle, size).fError, 0) << size;
        EXPECT_EQ(Operation(ZR_HANDLE_GET_SIZE, handle).fParam2, size);
        kept = std::min(kept, size);
        EXPECT_EQ(std::memcmp(*handle, "abcd", size_t(kept)), 0) << size;
        for (int64_t i = kept; i < size; ++i) ASSERT_EQ((*handle)[i], 0) << size << " at " << i;
    }
    EXPECT_EQ(Operation(ZR_HANDLE_SET_SIZE, handle, -1).fError, ZR_ERR_PARAMETER);
    EXPECT_EQ(Operation(ZR_HANDLE_SET_SIZE, handle, int64_t(1) << 50).fError, ZR_ERR_MEMORY);
    EXPECT_EQ(Operation(ZR_HANDLE_GET_SIZE, handle).fParam2, 8);
    Operation(ZR_HANDLE_DISPOSE, handle);
}

TEST_F(HostMemory, Handle_Lock_CountsAndAnswersTheAddress) {
    PA_Handle handle = Operation(ZR_HANDLE_NEW, nullptr, 4).fHandle;
    EXPECT_EQ(Operation(ZR_HANDLE_LOCK, handle).fParam2, Address(*handle));
    EXPECT_EQ(Operation(ZR_HANDLE_LOCK, handle).fParam2, Address(*handle));
    EXPECT_EQ(Operation(ZR_HANDLE_GET_STATE, handle).fParam2, 2);
    for (int left : {1, 0, 0}) {
        EXPECT_EQ(Operation(ZR_HANDLE_UNLOCK, handle).fError, 0);
        EXPECT_EQ(Operation(ZR_HANDLE_GET_STATE, handle).fParam2, left);
    }
    EXPECT_EQ(Operation(ZR_HANDLE_SET_STATE, handle, 7).fError, 0);
    EXPECT_EQ(Operation(ZR_HANDLE_GET_STATE, handle).fParam2, 7);
    EXPECT_EQ(Operation(ZR_HANDLE_SET_STATE, handle, -1).fError, ZR_ERR_PARAMETER);
    Operation(ZR_HANDLE_DISPOSE, handle);
}

TEST_F(HostMemory, Handle_NotAlive_IsRefusedByEveryOperation) {
    PA_Handle alive = Operation(ZR_HANDLE_NEW, nullptr, 16).fHandle;
    PA_Handle dead = Operation(ZR_HANDLE_NEW, nullptr, 16).fHandle;
    Operation(ZR_HANDLE_DISPOSE, dead);
    char* foreign = nullptr;
    PA_Handle bad[] = {nullptr,
                       dead,
                       &foreign,
                       reinterpret_cast<PA_Handle>(reinterpret_cast<char*>(alive) + 1),
                       reinterpret_cast<PA_Handle>(8),
                       reinterpret_cast<PA_Handle>(-1)};
    for (PA_Handle handle : bad)
        for (int code = ZR_HANDLE_DISPOSE; code <= ZR_HANDLE_SET_STATE; ++code)
            EXPECT_EQ(Operation(code, handle, 4).fError, ZR_ERR_PARAMETER) << handle << " " << code;
    for (int code : {0, -1, 9, 100}) EXPECT_EQ(Operation(code, alive).fError, ZR_ERR_PARAMETER) << code;
    EXPECT_EQ(Operation(ZR_HANDLE_DISPOSE, alive).fError, 0);
}

TEST_F(HostMemory, Handles_FromManyThreads_StayApart) {
    constexpr int kThreads = 4, kHandles = 2000;
    std::vector<std::thread> threads;
    std::vector<std::vector<PA_Handle>> made(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&made, t] {
            for (int i = 0; i < kHandles; ++i) {
                PA_Handle handle = NewHandle(8);
                int64_t mark = t * 1000000 + i;
                std::memcpy(*handle, &mark, 8);
                made[size_t(t)].push_back(handle);
                if (i % 3 == 0) {
                    EXPECT_TRUE(DisposeHandle(made[size_t(t)].back()));
                    made[size_t(t)].pop_back();
                }
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < kThreads; ++t)
        for (PA_Handle handle : made[size_t(t)]) {
            int64_t mark;
            std::memcpy(&mark, *handle, 8);
            EXPECT_EQ(mark / 1000000, t);
            EXPECT_TRUE(DisposeHandle(handle));
            EXPECT_FALSE(DisposeHandle(handle));
        }
}

TEST_F(HostMemory, UserData_ThereAndBack_KeepsBytes) {
    const char bytes[] = "seven b";
    EngineBlock block = Block();
    block.fParam1 = ZR_USERDATA_FROM;
    block.fParam2 = Address(bytes);
    block.fParam3 = 7;
    ASSERT_EQ(Call(ZR_SEL_UserData, &block), 0);
    PA_Handle handle = block.fHandle;

    block = Block();
    block.fParam1 = ZR_USERDATA_TO;
    block.fHandle = handle;
    EXPECT_EQ(Call(ZR_SEL_UserData, &block), 0);
    EXPECT_EQ(block.fParam3, 7);
    char out[8] = {};
    block.fParam2 = Address(out);
    EXPECT_EQ(Call(ZR_SEL_UserData, &block), 0);
    EXPECT_STREQ(out, bytes);
    DisposeHandle(handle);
}

TEST_F(HostMemory, UserData_BadArguments_AreRefused) {
    static const struct {
        int64_t operation, bytes, size;
    } rows[] = {{ZR_USERDATA_FROM, 0, 5}, {ZR_USERDATA_FROM, 0, -1}, {ZR_USERDATA_TO, 0, 0}, {0, 0, 0}, {99, 0, 0}};
    for (const auto& row : rows) {
        EngineBlock block = Block();
        block.fParam1 = row.operation;
        block.fParam2 = row.bytes;
        block.fParam3 = row.size;
        EXPECT_EQ(Call(ZR_SEL_UserData, &block), ZR_ERR_PARAMETER) << row.operation << " " << row.size;
        EXPECT_EQ(block.fHandle, nullptr);
    }
}

// Text records -----------------------------------------------------------------------------------------------------

TEST_F(HostMemory, Unistring_CreateSetDispose_HoldTheText) {
    PA_Unistring record;
    std::memset(&record, 0x55, sizeof record);  // overwritten
    std::u16string text = u"h\u00e4";
    EngineBlock block = Block();
    block.fParam1 = Address(&record);
    block.fParam2 = Address(text.data());
    block.fLength2 = 2;
    EXPECT_EQ(Call(ZR_SEL_CreateUnistring, &block), 0);
    EXPECT_EQ(UnistringText(record), text);
    EXPECT_EQ(record.fString[2], 0);
    std::u16string longer(1000, u'x');
    block.fParam2 = Address(longer.data());
    block.fLength2 = 1000;
    EXPECT_EQ(Call(ZR_SEL_SetUnistring, &block), 0);
    EXPECT_EQ(UnistringText(record), longer);
    EXPECT_EQ(Call(ZR_SEL_DisposeUnistring, &block), 0);
    EXPECT_EQ(int(record.fLength), 1000);  // the record itself is not cleared
}

TEST_F(HostMemory, Unistring_NullOrNegative_IsEmpty) {
    char16_t unit = u'x';
    static const struct {
        bool units;
        int64_t length;
        int16_t error;
    } rows[] = {{false, 5, 0},
                {true, 0, 0},
                {true, -1, ZR_ERR_PARAMETER},
                {true, INT64_MIN, ZR_ERR_PARAMETER},
                {true, INT64_MAX, ZR_ERR_PARAMETER}};
    for (const auto& row : rows) {
        PA_Unistring record;
        std::memset(&record, 0x55, sizeof record);
        EngineBlock block = Block();
        block.fParam1 = Address(&record);
        block.fParam2 = row.units ? Address(&unit) : 0;
        block.fLength2 = row.length;
        EXPECT_EQ(Call(ZR_SEL_CreateUnistring, &block), row.error) << row.length;
        EXPECT_EQ(int(record.fLength), 0);
        EXPECT_TRUE(record.fString == nullptr);
    }
    for (int selector : {ZR_SEL_CreateUnistring, ZR_SEL_SetUnistring, ZR_SEL_DisposeUnistring}) {
        EngineBlock block = Block();
        EXPECT_EQ(Call(selector, &block), ZR_ERR_PARAMETER) << selector;
    }
}

TEST_F(HostMemory, BlockText_TooLong_IsCutAt255AndNotInsideAPair) {
    PA_Unichar buffer[256];
    FillBlockText(buffer, std::u16string(300, u'a'));
    EXPECT_EQ(BlockText(buffer).size(), 255u);
    FillBlockText(buffer, std::u16string(254, u'a') + u"\U0001F600");
    EXPECT_EQ(BlockText(buffer).size(), 254u);
    for (PA_Unichar& unit : buffer) unit = u'x';  // no terminator
    EXPECT_EQ(BlockText(buffer).size(), 255u);
}

}  // namespace
}  // namespace zrhost
