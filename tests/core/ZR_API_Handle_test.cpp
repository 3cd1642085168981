#include "core/ZR_API_Handle.h"

#include <unistd.h>

#include <climits>
#include <fstream>
#include <sstream>
#include <thread>

#include "platform/CoreFoundation/CoreFoundation.h"
#include "tests/core/FakeHost.h"

namespace {

long Handles() {
    long handles;
    ZR_GetMemoryInfo(&handles, nullptr);
    return handles;
}
long BytesInUse() {
    long bytes;
    ZR_GetMemoryInfo(nullptr, &bytes);
    return bytes;
}

constexpr long kTooMany = 1L << 60;

}  // namespace

// Life -------------------------------------------------------------------------------------------------------------

TEST(Handle, Create_ElementsAndCount_SetFieldsAndCounters) {
    static const struct {
        long elementSize, count, expected, bytes;
        bool data;
    } rows[] = {{1, 0, 0, 0, false},        {2, 0, 0, 0, false},       {2, 5, 5, 10, true},  {8, 3, 3, 24, true},
                {1, -3, 0, 0, false},       {0, 5, 5, 0, false},       {-2, 5, 5, 0, false}, {1, kTooMany, 0, 0, false},
                {LONG_MAX, 2, 0, 0, false}, {1, LONG_MAX, 0, 0, false}};
    for (const auto& row : rows) {
        MemoryCheck check;
        long handles = Handles(), bytes = BytesInUse();
        ZR_Handle handle;
        memset(&handle, 0xAA, sizeof handle);
        handle.Create(row.elementSize, row.count);
        EXPECT_EQ(handle.count, row.expected) << row.elementSize << " " << row.count;
        EXPECT_EQ(handle.capacity, row.expected);
        EXPECT_EQ(handle.elementSize, row.elementSize);
        EXPECT_EQ(handle.allocatedBytes, row.bytes);
        EXPECT_EQ(handle.growStep, 0);
        EXPECT_EQ(handle.data != nullptr, row.data);
        EXPECT_EQ(Handles() - handles, row.data ? 1 : 0);
        EXPECT_EQ(BytesInUse() - bytes, row.bytes);
        handle.Dispose();
        EXPECT_EQ(handle.data, nullptr);
        EXPECT_EQ(handle.count, 0);
        EXPECT_EQ(handle.capacity, 0);
        EXPECT_EQ(handle.allocatedBytes, 0);
        EXPECT_EQ(handle.elementSize, row.elementSize);
        handle.Dispose();
    }
}

TEST(Handle, CreateCopy_SpareBytes_AreCopiedButNotCapacity) {
    MemoryCheck check;
    ZR_Handle source, copy;
    source.Create(2, 0);
    source.growStep = 5;
    source.Resize(10);
    memset(source.data, 'x', 30);
    source.Resize(3);
    copy.Create(&source);
    EXPECT_EQ(copy.count, 3);
    EXPECT_EQ(copy.capacity, 3);
    EXPECT_EQ(copy.elementSize, 2);
    EXPECT_EQ(copy.allocatedBytes, 30);
    EXPECT_EQ(copy.growStep, 5);
    ASSERT_NE(copy.data, nullptr);
    EXPECT_NE(copy.data, source.data);
    EXPECT_EQ(memcmp(copy.data, source.data, 30), 0);
    copy.Resize(4);  // grown from a copy: capacity and bytes agree again
    EXPECT_EQ(copy.capacity, 9);
    EXPECT_EQ(copy.allocatedBytes, 18);
    copy.Dispose();
    source.Dispose();
    copy.Create(&source);
    EXPECT_EQ(copy.data, nullptr);
    EXPECT_EQ(copy.elementSize, 2);
    copy.Create(static_cast<ZR_Handle*>(nullptr));
    EXPECT_EQ(copy.count, 0);
    EXPECT_EQ(copy.elementSize, 1);
}

TEST(Handle, CreateAndOwn_Source_IsEmptyAndHarmless) {
    MemoryCheck check;
    ZR_Handle source, owner;
    source.Create(2, 0);
    source.growStep = 7;
    source.Resize(4);
    source.Resize(3);
    char* data = source.data;
    long handles = Handles(), bytes = BytesInUse();
    owner.CreateAndOwn(&source);
    EXPECT_EQ(Handles(), handles);
    EXPECT_EQ(BytesInUse(), bytes);
    EXPECT_EQ(owner.data, data);
    EXPECT_EQ(owner.count, 3);
    EXPECT_EQ(owner.capacity, 3);
    EXPECT_EQ(owner.allocatedBytes, 22);
    EXPECT_EQ(owner.growStep, 7);
    EXPECT_EQ(source.data, nullptr);
    EXPECT_EQ(source.count + source.capacity + source.allocatedBytes, 0);
    owner.CreateAndOwn(&owner);
    EXPECT_EQ(owner.count, 3);
    source.Dispose();
    owner.Dispose();
}

TEST(Handle, CFData_RoundTrip_KeepsBytes) {
    MemoryCheck check;
    ZR_Handle handle = MakeBytes("abc"), back;
    CFDataRef data = handle.CreateCFData();
    ASSERT_NE(data, nullptr);
    back.Create(data);
    EXPECT_EQ(Bytes(back), "abc");
    EXPECT_EQ(back.elementSize, 1);
    CFRelease(data);
    back.Dispose();
    EXPECT_EQ(back.CreateCFData(), nullptr);
    back.Create(static_cast<CFDataRef>(nullptr));
    EXPECT_EQ(back.count, 0);
    CFDataRef empty = CFDataCreate(nullptr, nullptr, 0);
    back.Create(empty);
    EXPECT_EQ(back.data, nullptr);
    CFRelease(empty);
    handle.Dispose();
}

TEST(Handle, Dispose_KeepsElementSizeAndGrowStep_AndMayBeRefilled) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(4, 2);
    handle.growStep = 3;
    handle.Dispose();
    EXPECT_EQ(handle.elementSize, 4);
    EXPECT_EQ(handle.growStep, 3);
    handle.Resize(1);
    EXPECT_EQ(handle.capacity, 4);
    EXPECT_EQ(handle.allocatedBytes, 16);
    handle.Dispose();
}

// Growth -----------------------------------------------------------------------------------------------------------

TEST(Handle, Resize_GrowStep_IsAddedToEveryGrowth) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(1, 0);
    handle.growStep = 5;
    handle.Resize(10);
    EXPECT_EQ(handle.capacity, 15);
    EXPECT_EQ(handle.allocatedBytes, 15);
    memcpy(handle.data, "0123456789", 10);
    char* data = handle.data;
    handle.Resize(3);
    EXPECT_EQ(handle.capacity, 15);
    EXPECT_EQ(handle.data, data);
    EXPECT_EQ(memcmp(data, "0123456789", 10), 0);
    handle.Resize(15);
    EXPECT_EQ(handle.capacity, 15);
    handle.Resize(16);
    EXPECT_EQ(handle.capacity, 21);
    EXPECT_EQ(memcmp(handle.data, "0123456789", 10), 0);
    handle.Resize(0);
    EXPECT_EQ(handle.capacity, 21);
    EXPECT_NE(handle.data, nullptr);
    handle.Dispose();
}

TEST(Handle, Growth_ExactFitWithoutGrowStep_CountsBytesAndOneHandle) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(2, 0);
    long handles = Handles(), bytes = BytesInUse();
    for (long i = 1; i <= 3000; ++i) {
        handle.AppendGetPtr();
        ASSERT_EQ(handle.capacity, i);
        ASSERT_EQ(handle.allocatedBytes, 2 * i);
        ASSERT_EQ(BytesInUse() - bytes, 2 * i);
        ASSERT_EQ(Handles() - handles, 1);
    }
    handle.Dispose();
}

TEST(Handle, Growth_MillionAppends_KeepsContents) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(8, 0);
    for (long i = 0; i < 1000000; ++i) handle.AddLongToArray(i);
    EXPECT_EQ(handle.capacity, 1000000);
    for (long i = 0; i < 1000000; i += 9973) EXPECT_EQ(handle.FindLong(i), i + 1);
    handle.Dispose();
}

TEST(Handle, Growth_Refused_LeavesAllAsItWas) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(8, 2);
    char* data = handle.data;
    auto unchanged = [&](const char* what) {
        EXPECT_EQ(handle.count, 2) << what;
        EXPECT_EQ(handle.capacity, 2) << what;
        EXPECT_EQ(handle.data, data) << what;
        EXPECT_EQ(handle.allocatedBytes, 16) << what;
    };
    for (long n : {kTooMany, LONG_MAX, LONG_MAX / 8, LONG_MAX / 8 + 1}) {
        handle.Resize(n);
        unchanged("Resize");
        EXPECT_EQ(handle.InsertElement(1, n), nullptr);
        unchanged("InsertElement");
        unsigned short unit = 1;
        handle.AddUniBuffer(&unit, n);
        unchanged("AddUniBuffer");
    }
    for (long step : {LONG_MAX, kTooMany}) {
        handle.growStep = step;
        EXPECT_EQ(handle.AppendGetPtr(), nullptr);
        handle.AddLongToArray(1);
        unchanged("growStep");
    }
    handle.growStep = -100;  // counts as 0
    EXPECT_NE(handle.AppendGetPtr(), nullptr);
    EXPECT_EQ(handle.capacity, 3);
    handle.Dispose();
}

TEST(Handle, Resize_Negative_IsEmpty) {
    MemoryCheck check;
    ZR_Handle handle = MakeBytes("abc");
    handle.Resize(-1);
    EXPECT_EQ(handle.count, 0);
    EXPECT_EQ(handle.capacity, 3);
    handle.AddByte('x');
    EXPECT_EQ(Bytes(handle), "x");
    handle.Dispose();
}

TEST(Handle, ElementsWithoutSize_AnyOperation_HasNoStorage) {
    for (long size : {0L, -4L}) {
        MemoryCheck check;
        ZR_Handle handle;
        handle.Create(size, 0);
        handle.Resize(5);
        EXPECT_EQ(handle.count, 5);
        EXPECT_EQ(handle.GetMemPtr(1), nullptr);
        EXPECT_EQ(handle.AppendGetPtr(), nullptr);
        EXPECT_EQ(handle.InsertElement(0, 2), nullptr);
        handle.DeleteElement(1);
        handle.AddByte(1);
        handle.AddLong(1);
        handle.AddCharBuffer("abc", 3);
        unsigned short unit = 1;
        handle.AddUniBuffer(&unit, 1);
        handle.AddCharBufferAsUnichar(reinterpret_cast<const unsigned char*>("a"), 1);
        EXPECT_EQ(handle.data, nullptr);
        handle.Dispose();
    }
}

// Elements ---------------------------------------------------------------------------------------------------------

TEST(Handle, GetMemPtr_OutsideOneToCount_IsNull) {
    static const struct {
        long index;
        bool inside;
    } rows[] = {{LONG_MIN, false}, {-1, false}, {0, false}, {1, true}, {3, true}, {4, false}, {LONG_MAX, false}};
    ZR_Handle handle;
    handle.Create(8, 3);
    for (const auto& row : rows) EXPECT_EQ(handle.GetMemPtr(row.index) != nullptr, row.inside) << row.index;
    EXPECT_EQ(handle.GetMemPtr(3), handle.data + 16);
    handle.Dispose();
}

TEST(Handle, InsertElement_GapPositions_OpensGapOrRefuses) {
    static const struct {
        long position, n;
        const char* expected;  // null = refused
    } rows[] = {{0, 2, "??abc"}, {1, 1, "a?bc"},   {3, 2, "abc??"}, {3, 0, "abc"},
                {4, 1, nullptr}, {-1, 1, nullptr}, {1, -1, nullptr}};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Handle handle = MakeBytes("abc");
        char* gap = handle.InsertElement(row.position, row.n);
        EXPECT_EQ(gap != nullptr, row.expected != nullptr) << row.position << " " << row.n;
        if (gap && row.n > 0) memset(gap, '?', static_cast<size_t>(row.n));
        EXPECT_EQ(Bytes(handle), row.expected ? row.expected : "abc");
        handle.Dispose();
    }
}

TEST(Handle, DeleteElement_Positions_MovesLaterOnesDown) {
    static const struct {
        long index;
        const char* expected;
    } rows[] = {{-1, "abc"}, {0, "abc"}, {1, "bc"}, {2, "ac"}, {3, "ab"}, {4, "abc"}};
    for (const auto& row : rows) {
        ZR_Handle handle = MakeBytes("abc");
        handle.DeleteElement(row.index);
        EXPECT_EQ(Bytes(handle), row.expected) << row.index;
        EXPECT_EQ(handle.capacity, 3);
        handle.Dispose();
    }
}

TEST(Handle, NegativeCountWrittenByCaller_Appends_StartAtZero) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(1, 4);
    handle.count = -3;
    handle.AddByte('a');
    EXPECT_EQ(Bytes(handle), "a");
    handle.count = -3;
    handle.AppendGetPtr();
    EXPECT_EQ(handle.count, 1);
    handle.Dispose();
}

// Appends ----------------------------------------------------------------------------------------------------------

TEST(Handle, TypedAppends_Bytes_AreTheWireForm) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(1, 0);
    handle.AddByte(0x41);
    handle.AddShort(0x0102);
    handle.AddLong(0x01020304);
    handle.AddDouble(1.5);
    EXPECT_EQ(Bytes(handle), std::string("\x41\x01\x02\x01\x02\x03\x04\0\0\0\0\0\0\xF8\x3F", 15));
    EXPECT_EQ(handle.capacity, 15);
    handle.Dispose();
}

TEST(Handle, AddLong_Values_KeepLow32Bits) {
    static const struct {
        long value;
        const char* bytes;
        long read;
    } rows[] = {{-1, "\xFF\xFF\xFF\xFF", -1},
                {0x7FFFFFFF, "\x7F\xFF\xFF\xFF", 0x7FFFFFFF},
                {0x80000000L, "\x80\x00\x00\x00", -0x80000000L},
                {0x1122334455L, "\x22\x33\x44\x55", 0x22334455},
                {LONG_MIN, "\0\0\0\0", 0}};
    for (const auto& row : rows) {
        ZR_Handle handle;
        handle.Create(1, 0);
        handle.AddLong(row.value);
        EXPECT_EQ(Bytes(handle), std::string(row.bytes, 4)) << row.value;
        long cursor = 0;
        EXPECT_EQ(handle.ReadLong(&cursor), row.read);
        EXPECT_EQ(cursor, 4);
        handle.Dispose();
    }
}

TEST(Handle, AddCharBuffer_NegativeLength_LowersCount) {  // Required: count moves before the length is tested
    static const struct { long n, count; } rows[] = {{0, 5}, {-2, 3}, {-5, 0}, {-6, 0}, {LONG_MIN, 0}};
    for (const auto& row : rows) {
        ZR_Handle handle = MakeBytes("abcde");
        handle.AddCharBuffer("xyz", row.n);
        EXPECT_EQ(handle.count, row.count) << row.n;
        handle.Dispose();
    }
}

TEST(Handle, AddCharBuffer_NullOrOwnBytes_IsSafe) {
    MemoryCheck check;
    ZR_Handle handle = MakeBytes("abcdefgh");
    handle.AddCharBuffer(nullptr, 3);
    EXPECT_EQ(handle.count, 8);
    for (int i = 0; i < 6; ++i) handle.AddCharBuffer(handle.data, handle.count);  // moves while it is read
    EXPECT_EQ(handle.count, 512);
    EXPECT_EQ(Bytes(handle).substr(504), "abcdefgh");
    handle.Dispose();
}

TEST(Handle, AddText_AndWithLength_DifferInByteOrder) {
    MemoryCheck check;
    ZR_Text text = MakeText(u"AB");
    ZR_Handle handle;
    handle.Create(1, 0);
    handle.AddText(&text, /*terminate*/ true);
    EXPECT_EQ(Bytes(handle), std::string("A\0B\0\0\0", 6));
    handle.Resize(0);
    handle.AddText(&text, /*terminate*/ false);
    EXPECT_EQ(Bytes(handle), std::string("A\0B\0", 4));
    handle.Resize(0);
    handle.AddTextWithLength(&text);
    EXPECT_EQ(Bytes(handle), std::string("\0\0\0\2\0A\0B", 8));
    text.Dispose();
    handle.Resize(0);
    handle.AddTextWithLength(&text);
    handle.AddTextWithLength(nullptr);
    handle.AddText(nullptr, /*terminate*/ true);
    EXPECT_EQ(Bytes(handle), std::string(10, 0));
    handle.Dispose();
}

TEST(Handle, AddUniBuffer_ElementSizes_CountsBytesOrUnits) {
    static const struct { long elementSize, count; } rows[] = {{1, 4}, {2, 2}, {8, 2}};
    const unsigned short units[] = {0x0102, 0x0304};
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Handle handle;
        handle.Create(row.elementSize, 0);
        handle.AddUniBuffer(units, 2);
        EXPECT_EQ(handle.count, row.count) << row.elementSize;
        EXPECT_EQ(memcmp(handle.data, units, 4), 0);
        handle.AddUniBuffer(units, 0);
        handle.AddUniBuffer(units, -5);
        handle.AddUniBuffer(nullptr, 2);
        EXPECT_EQ(handle.count, row.count);
        handle.AddUniBuffer(units, 1);
        EXPECT_EQ(memcmp(handle.data + 4, units, 2), 0);
        handle.Dispose();
    }
}

TEST(Handle, AddCharBufferAsUnichar_Bytes_WidenWithoutSign) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(2, 0);
    handle.AddCharBufferAsUnichar(reinterpret_cast<const unsigned char*>("a\xE9"), 2);
    EXPECT_EQ(handle.count, 2);
    EXPECT_EQ(memcmp(handle.data, "a\0\xE9\0", 4), 0);
    handle.Dispose();
    handle.Create(1, 0);  // guard: a unit does not fit a 1-byte element
    handle.AddCharBufferAsUnichar(reinterpret_cast<const unsigned char*>("a"), 1);
    EXPECT_EQ(handle.count, 0);
    handle.Dispose();
}

// Reads ------------------------------------------------------------------------------------------------------------

TEST(Handle, Reads_NotFitting_GiveZeroAndLeaveCursor) {
    ZR_Handle handle = MakeBytes(std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09", 9));
    static const struct {
        long cursor;
        bool fitsShort, fitsLong, fitsDouble;
    } rows[] = {{0, true, true, true},     {1, true, true, true},          {2, true, true, false},
                {5, true, true, false},    {6, true, false, false},        {7, true, false, false},
                {8, false, false, false},  {9, false, false, false},       {LONG_MAX, false, false, false},
                {-1, false, false, false}, {LONG_MIN, false, false, false}};
    for (const auto& row : rows) {
        long cursor = row.cursor;
        EXPECT_EQ(handle.ReadShort(&cursor) != 0, row.fitsShort) << row.cursor;
        EXPECT_EQ(cursor, row.fitsShort ? row.cursor + 2 : row.cursor);
        cursor = row.cursor;
        EXPECT_EQ(handle.ReadLong(&cursor) != 0, row.fitsLong) << row.cursor;
        EXPECT_EQ(cursor, row.fitsLong ? row.cursor + 4 : row.cursor);
        cursor = row.cursor;
        EXPECT_EQ(handle.ReadDouble(&cursor) != 0, row.fitsDouble) << row.cursor;
        EXPECT_EQ(cursor, row.fitsDouble ? row.cursor + 8 : row.cursor);
    }
    handle.Dispose();
    long cursor = 0;
    EXPECT_EQ(handle.ReadLong(&cursor), 0);
}

TEST(Handle, ReadShort_HighBit_IsSignExtended) {
    ZR_Handle handle = MakeBytes("\xFF\xFE");
    long cursor = 0;
    EXPECT_EQ(handle.ReadShort(&cursor), -2);
    handle.Dispose();
}

TEST(Handle, ReadTextWithLength_Streams_AreBoundedByTheirBytes) {
    static const struct {
        const char* name;
        std::string bytes;
        std::u16string text;
        long cursor;
    } rows[] = {
        {"whole", std::string("\0\0\0\2\0A\x20\xAC", 8), u"A\u20AC", 8},
        {"empty", std::string("\0\0\0\0\0A", 6), u"", 4},
        {"negative", std::string("\xFF\xFF\xFF\xFF\0A", 6), u"", 4},
        {"no length", std::string("\0\0\0", 3), u"", 0},
        {"cut", std::string("\0\0\0\5\0A\0B\0", 9), u"AB", 8},
        {"huge", std::string("\x7F\xFF\xFF\xFF\0A", 6), u"A", 6},
        {"nothing behind", std::string("\0\0\0\5", 4), u"", 4},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Handle handle = MakeBytes(row.bytes);
        ZR_Text text = MakeText(u"old");
        long cursor = 0;
        handle.ReadTextWithLength(&cursor, &text);
        EXPECT_EQ(Units(text), row.text) << row.name;
        EXPECT_EQ(cursor, row.cursor) << row.name;
        text.Dispose();
        handle.Dispose();
    }
}

// Arrays of 8-byte values ------------------------------------------------------------------------------------------

TEST(Handle, LongArray_FindAndDelete_FirstEqualElement) {
    MemoryCheck check;
    ZR_Handle handle;
    handle.Create(8, 0);
    for (long value : {5L, -7L, 5L, LONG_MAX}) handle.AddLongToArray(value);
    EXPECT_EQ(handle.count, 4);
    EXPECT_EQ(handle.FindLong(5), 1);
    EXPECT_EQ(handle.FindLong(-7), 2);
    EXPECT_EQ(handle.FindLong(6), -1);
    EXPECT_TRUE(handle.DeleteLong(5));
    EXPECT_EQ(handle.FindLong(5), 2);
    EXPECT_EQ(handle.FindLong(LONG_MAX), 3);
    EXPECT_FALSE(handle.DeleteLong(6));
    EXPECT_EQ(handle.count, 3);
    handle.Dispose();
}

TEST(Handle, LongArray_OtherElementSize_DoesNothing) {
    ZR_Handle handle;
    handle.Create(4, 2);
    memset(handle.data, 0, 8);
    handle.AddLongToArray(0);
    EXPECT_EQ(handle.count, 2);
    EXPECT_EQ(handle.FindLong(0), -1);
    EXPECT_FALSE(handle.DeleteLong(0));
    handle.Dispose();
}

// Others -----------------------------------------------------------------------------------------------------------

TEST(Handle, Equal_NullDataOnEitherSide_EqualsAnyOfTheSameCount) {  // Required
    ZR_Handle bytes = MakeBytes("abcde"), same = MakeBytes("abcde"), other = MakeBytes("abcdf"), none, empty, wide;
    none.Create(1, 0);
    none.count = 5;
    empty.Create(1, 0);
    wide.Create(2, 0);
    EXPECT_TRUE(bytes.Equal(&same));
    EXPECT_FALSE(bytes.Equal(&other));
    EXPECT_TRUE(none.Equal(&bytes));
    EXPECT_TRUE(bytes.Equal(&none));
    EXPECT_TRUE(empty.Equal(&empty));
    EXPECT_FALSE(empty.Equal(&wide));
    EXPECT_FALSE(empty.Equal(&bytes));
    EXPECT_FALSE(empty.Equal(nullptr));
    for (ZR_Handle* handle : {&bytes, &same, &other}) handle->Dispose();
}

TEST(Handle, ToCString_Sizes_CutAndTerminate) {
    static const struct {
        long size;
        const char* expected;
    } rows[] = {{0, "~~~~~~"}, {-1, "~~~~~~"}, {1, ""}, {3, "ab"}, {4, "abc"}, {6, "abc"}};
    ZR_Handle handle = MakeBytes("abc");
    for (const auto& row : rows) {
        char out[7] = "~~~~~~";
        handle.ToCString(out, row.size);
        EXPECT_STREQ(out, row.expected) << row.size;
    }
    handle.Dispose();
    char out[2] = "x";
    handle.ToCString(out, 2);
    EXPECT_STREQ(out, "");
}

TEST(Handle, BeginsWithString_Prefixes) {
    static const struct {
        const char* prefix;
        bool expected;
    } rows[] = {{"", false}, {nullptr, false}, {"a", true}, {"a\xE9", true}, {"b", false}, {"a\xE9z", false}};
    ZR_Handle handle = MakeBytes("a\xE9");
    for (const auto& row : rows) EXPECT_EQ(handle.BeginsWithString(row.prefix), row.expected);
    handle.Dispose();
    EXPECT_FALSE(handle.BeginsWithString("a"));
}

TEST(Handle, ToFile_Paths_WritesAllElementsOrNothing) {
    MemoryCheck check;
    std::string folder = ::testing::TempDir() + "zr_handle_" + std::to_string(getpid());
    ASSERT_EQ(system(("mkdir -p '" + folder + "'").c_str()), 0);
    ZR_Handle handle;
    handle.Create(2, 3);
    memcpy(handle.data, "abcdef", 6);
    ZR_Text path = MakeText(std::u16string(folder.begin(), folder.end()) + u"/\u00FCml\u20ACut.bin");
    auto read = [&] {
        std::ifstream file(folder + "/\xC3\xBCml\xE2\x82\xACut.bin", std::ios::binary);
        std::stringstream bytes;
        bytes << file.rdbuf();
        return file ? bytes.str() : "no file";
    };
    handle.ToFile(&path);
    EXPECT_EQ(read(), "abcdef");
    handle.Resize(1);
    handle.ToFile(&path);
    EXPECT_EQ(read(), "ab");
    handle.Dispose();
    handle.ToFile(&path);
    EXPECT_EQ(read(), "");
    path.AddString("/nowhere/x");
    handle.ToFile(&path);
    path.Dispose();
    handle.ToFile(&path);
    handle.ToFile(nullptr);
    EXPECT_EQ(system(("rm -r '" + folder + "'").c_str()), 0);
}

TEST(Handle, Counters_ManyThreads_ReadTheSameAfterwards) {
    MemoryCheck check;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 2000; ++i) {
                ZR_Handle handle;
                handle.Create(1, 10);
                handle.Resize(20);
                handle.Dispose();
            }
        });
    for (auto& thread : threads) thread.join();
}
