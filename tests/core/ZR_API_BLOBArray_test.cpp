#include "core/ZR_API_BLOBArray.h"

#include <climits>
#include <limits>

#include "tests/core/FakeHost.h"

namespace {

std::string Be(long value) {  // 4 bytes, high first
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

// The blocks of a BLOB array, or "null".
std::vector<std::string> Expanded(const std::string& bytes) {
    ZR_Handle source = MakeBytes(bytes);
    long n = 77;
    ZR_Handle* blocks = source.ExpandBLOBArray(&n);
    std::vector<std::string> found;
    if (!blocks) {
        EXPECT_EQ(n, 0);
        found = {"null"};
    }
    for (long i = 0; blocks && i < n; ++i) {
        EXPECT_EQ(blocks[i].elementSize, 1);
        EXPECT_EQ(blocks[i].capacity, blocks[i].count);
        found.push_back(Bytes(blocks[i]));
        blocks[i].Dispose();
    }
    delete[] blocks;
    source.Dispose();
    return found;
}

}  // namespace

// Format -----------------------------------------------------------------------------------------------------------

TEST(BLOBArray, Create_Blocks_WritesTheFormat) {
    MemoryCheck check;
    ZR_Handle blocks[3] = {MakeBytes("a"), MakeBytes("bc"), {}}, array;
    blocks[2].Create(2, 3);
    memcpy(blocks[2].data, "uvwxyz", 6);
    array.CreateBLOBArray(blocks, 2);
    EXPECT_EQ(Bytes(array), "sako" + Be(2) + Be(3) + Be(1) + "a" + Be(2) + "bc");
    EXPECT_EQ(array.count, 23);
    EXPECT_EQ(Expanded(Bytes(array)), (std::vector<std::string>{"a", "bc"}));
    array.Dispose();
    array.CreateBLOBArray(blocks + 2, 1);  // a block is its bytes, whatever its elements
    EXPECT_EQ(Bytes(array), "sako" + Be(1) + Be(6) + Be(6) + "uvwxyz");
    EXPECT_EQ(Expanded(Bytes(array)), std::vector<std::string>{"uvwxyz"});
    array.Dispose();
    for (auto& block : blocks) block.Dispose();
}

TEST(BLOBArray, Create_NoBlocks_IsTheHeaderWithTheNumber) {
    static const struct { long n, written; } rows[] = {{0, 0}, {-1, -1}, {5, 0}};  // guard: no handles, no blocks
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Handle array;
        array.CreateBLOBArray(nullptr, row.n);
        EXPECT_EQ(Bytes(array), "sako" + Be(row.written) + Be(0));
        array.Dispose();
    }
    ZR_Handle array, none;
    none.Create(0, 5);  // a count without storage
    array.CreateBLOBArray(&none, 1);
    EXPECT_EQ(Bytes(array), "sako" + Be(1) + Be(0) + Be(0));
    array.Dispose();
}

TEST(BLOBArray, Expand_Bytes_BlocksOrNull) {
    const std::string two = "sako" + Be(2) + Be(3) + Be(1) + "a" + Be(2) + "bc";
    const std::vector<std::string> null = {"null"};
    static const struct {
        const char* name;
        std::string bytes;
        std::vector<std::string> expected;
    } rows[] = {
        {"valid", two, {"a", "bc"}},
        {"empty list", "sako" + Be(0) + Be(0), {}},
        {"nothing", "", null},
        {"short", ("sako" + Be(0) + Be(0)).substr(0, 11), null},
        {"magic", "Sako" + Be(0) + Be(0), null},
        {"one byte more", two + "x", null},
        {"one byte less", two.substr(0, 22), null},
        {"first size too large", "sako" + Be(2) + Be(3) + Be(99) + "a" + Be(2) + "bc", {"", ""}},
        {"first size negative", "sako" + Be(2) + Be(3) + Be(-1) + "a" + Be(2) + "bc", {"", ""}},
        {"first size takes all", "sako" + Be(2) + Be(3) + Be(7) + "a" + Be(2) + "bc", {"a" + Be(2) + "bc", ""}},
        {"number negative", "sako" + Be(-1) + Be(4), null},
        {"total negative", "sako" + Be(1000000000) + Be(-294967296) + Be(0), null},
        {"total negative, sum right", "sako" + Be(1) + Be(-4), null},
        {"size behind the end", "sako" + Be(1) + Be(0) + Be(1), {""}},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        EXPECT_EQ(Expanded(row.bytes), row.expected) << row.name;
    }
}

TEST(BLOBArray, Expand_EmptyList_IsNotNull) {
    ZR_Handle array;
    array.CreateBLOBArray(nullptr, 0);
    long n = 5;
    ZR_Handle* blocks = array.ExpandBLOBArray(&n);
    EXPECT_NE(blocks, nullptr);
    EXPECT_EQ(n, 0);
    delete[] blocks;
    array.Dispose();
}

TEST(BLOBArray, Expand_AnyCutOrFlippedByte_IsSafe) {
    MemoryCheck check;
    const std::string two = "sako" + Be(2) + Be(3) + Be(1) + "a" + Be(2) + "bc";
    for (size_t at = 0; at < two.size(); ++at) {
        Expanded(two.substr(0, at));
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = two;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
            Expanded(flipped);
        }
    }
}

// Host -------------------------------------------------------------------------------------------------------------

using BLOBHost = fake::Test;

TEST_F(BLOBHost, Parameter_RoundTrip_ExactStorage) {
    PA_Handle first = fake::NewHandle(0), second = nullptr;
    void* parameters[] = {&first, &second};
    PluginBlock block = {parameters, nullptr, nullptr};
    ZR_Handle bytes = MakeBytes("hello"), back;
    bytes.growStep = 9;
    bytes.To4DParameter(&block, 1);
    bytes.To4DParameter(&block, 0);
    bytes.To4DParameter(nullptr, 1);
    back.CreateFrom4DParameter(&block, 1);
    EXPECT_EQ(Bytes(back), "hello");
    EXPECT_EQ(back.capacity, 5);
    EXPECT_EQ(back.growStep, 0);
    back.Dispose();
    for (short index : {short(0), short(2), short(-1)}) {
        back.CreateFrom4DParameter(&block, index);
        EXPECT_EQ(back.count, 0);
        EXPECT_EQ(back.data, nullptr);
    }
    back.CreateFrom4DParameter(nullptr, 1);
    EXPECT_EQ(back.elementSize, 1);
    back.To4DParameter(&block, 1);  // no data: an empty BLOB
    EXPECT_EQ(PA_GetHandleSize(first), 0);
    PA_DisposeHandle(first);
    bytes.Dispose();
}

TEST_F(BLOBHost, Variable_RoundTrip_StaysTheCallers) {
    ZR_Handle bytes = MakeBytes("hello"), back;
    PA_Variable variable = bytes.CreateVariable();
    EXPECT_EQ(variable.fType, eVK_Blob);
    back.CreateFrom4DVariable(&variable);
    EXPECT_EQ(Bytes(back), "hello");
    back.Dispose();
    back.CreateFrom4DVariable(&variable);
    EXPECT_EQ(Bytes(back), "hello");
    PA_ClearVariable(&variable);
    back.Dispose();
    back.CreateFrom4DVariable(&variable);
    EXPECT_EQ(back.count, 0);
    back.CreateFrom4DVariable(nullptr);
    EXPECT_EQ(back.count, 0);
    variable = back.CreateVariable();
    EXPECT_EQ(variable.fType, eVK_Blob);
    PA_ClearVariable(&variable);
    bytes.Dispose();
}

TEST_F(BLOBHost, Array_EmptyHandle_LeavesTheElement) {  // Required
    PA_Variable array = PA_CreateVariable(eVK_ArrayBlob);
    PA_ResizeArray(&array, 2);
    ZR_Handle bytes = MakeBytes("hello"), empty, back;
    empty.Create(1, 0);
    bytes.To4DArray(&array, 2);
    empty.To4DArray(&array, 2);
    bytes.To4DArray(&array, 3);
    static const struct {
        long index;
        const char* expected;
    } rows[] = {{1, ""}, {2, "hello"}, {3, ""}, {-1, ""}};
    for (const auto& row : rows) {
        back.CreateFrom4DArray(&array, row.index);
        EXPECT_EQ(Bytes(back), row.expected) << row.index;
        back.Dispose();
    }
    fake::state.refusesHandles = true;
    bytes.To4DArray(&array, 1);
    fake::state.refusesHandles = false;
    back.CreateFrom4DArray(&array, 1);
    EXPECT_EQ(back.count, 0);
    back.CreateFrom4DArray(nullptr, 1);
    EXPECT_EQ(back.count, 0);
    PA_ClearVariable(&array);
    bytes.Dispose();
}

TEST_F(BLOBHost, Fields_BlobAndPicture_AreRead) {
    ZR_Handle bytes = MakeBytes("field"), back;
    bytes.To4DBlobField(2, 3);
    back.CreateFrom4DBlobField(2, 3);
    EXPECT_EQ(Bytes(back), "field");
    back.Dispose();
    back.CreateFrom4DBlobField(2, 4);
    EXPECT_EQ(back.count, 0);
    back.To4DBlobField(2, 3);
    back.CreateFrom4DBlobField(2, 3);
    EXPECT_EQ(back.count, 0);

    PA_Variable picture = PA_CreateVariable(eVK_Picture);
    picture.uValue.fPicture = fake::NewPicture({{u"image/png", "PNG bytes"}, {u"image/gif", "GIF"}});
    fake::state.fields[{2, 5}] = picture;
    back.CreateFrom4DPictureField(2, 5);
    EXPECT_EQ(Bytes(back), "PNG bytes");
    back.Dispose();
    back.CreateFrom4DPictureField(2, 6);
    EXPECT_EQ(back.count, 0);
    bytes.Dispose();
}

// Numbers ----------------------------------------------------------------------------------------------------------

TEST_F(BLOBHost, NumInArray_Kinds_TruncateIntoTheElement) {
    static const struct {
        int kind;
        double value, read;
    } rows[] = {{eVK_ArrayReal, 3.75, 3.75},     {eVK_ArrayInteger, 3.75, 3},
                {eVK_ArrayInteger, -3.75, -3},   {eVK_ArrayInteger, 65537, 1},
                {eVK_ArrayLongint, 3.75, 3},     {eVK_ArrayLongint, 4294967297.0, 1},
                {eVK_ArrayLongint, 1e300, -1},  // guard: outside 64 bits the nearest end, of which the low bits
                {eVK_ArrayLongint, -1e300, 0},   {eVK_ArrayLongint, std::numeric_limits<double>::quiet_NaN(), 0},
                {eVK_ArrayTime, 86399.9, 86399}, {eVK_ArrayBoolean, 1, 0},
                {eVK_ArrayText, 1, 0},           {eVK_Longint, 1, 0}};
    for (const auto& row : rows) {
        PA_Variable array = PA_CreateVariable(row.kind);
        if (PA_IsArrayVariable(&array)) PA_ResizeArray(&array, 2);
        for (long index : {0L, 1L, 2L}) {
            ZR_SetNumInArray(&array, index, row.value);
            EXPECT_EQ(ZR_GetNumInArray(&array, index), row.read) << row.kind << " " << index;
        }
        for (long index : {3L, -1L, LONG_MAX, LONG_MIN}) {
            ZR_SetNumInArray(&array, index, row.value);
            EXPECT_EQ(ZR_GetNumInArray(&array, index), 0) << row.kind << " " << index;
        }
        PA_ClearVariable(&array);
    }
    PA_Variable bare = {};
    bare.fType = eVK_ArrayReal;
    bare.uValue.fArray.fSize = 3;  // without storage
    ZR_SetNumInArray(&bare, 1, 5);
    ZR_SetNumInArray(nullptr, 1, 5);
    EXPECT_EQ(ZR_GetNumInArray(&bare, 1), 0);
    EXPECT_EQ(ZR_GetNumInArray(nullptr, 1), 0);
}

TEST_F(BLOBHost, GetNumFromVariable_IntegerKind_ReadsAsZero) {  // Required
    PA_Variable real = PA_CreateVariable(eVK_Real), integer = PA_CreateVariable(eVK_Integer),
                longint = PA_CreateVariable(eVK_Longint), time = PA_CreateVariable(eVK_Time),
                date = PA_CreateVariable(eVK_Date);
    PA_SetRealVariable(&real, -2.5);
    PA_SetLongintVariable(&integer, 7);
    PA_SetLongintVariable(&longint, 7);
    PA_SetTimeVariable(&time, 3600);
    EXPECT_EQ(ZR_GetNumFromVariable(&real), -2.5);
    EXPECT_EQ(ZR_GetNumFromVariable(&integer), 0);
    EXPECT_EQ(ZR_GetNumFromVariable(&longint), 7);
    EXPECT_EQ(ZR_GetNumFromVariable(&time), 3600);
    EXPECT_EQ(ZR_GetNumFromVariable(&date), 0);
    EXPECT_EQ(ZR_GetNumFromVariable(nullptr), 0);
}

TEST(BLOBArray, IsArray_Kinds_OldOnesFolded) {
    for (int kind = 0; kind < 256; ++kind) {
        PA_Variable variable = {};
        variable.fType = static_cast<uint8_t>(kind);
        bool expected = false;
        for (int array : {14, 15, 16, 17, 19, 20, 22, 34, 18, 21}) expected = expected || kind == array;
        EXPECT_EQ(ZR_IsArray(&variable), expected) << kind;
        EXPECT_EQ(ZR_Is2DArray(&variable), kind == 13) << kind;
    }
    EXPECT_FALSE(ZR_IsArray(nullptr));
    EXPECT_FALSE(ZR_Is2DArray(nullptr));
}
