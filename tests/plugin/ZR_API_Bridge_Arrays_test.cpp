#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

// An array of the kind with elements 0..count, cleared at the end.
struct Array {
    PA_Variable variable;
    Array(int kind, long count) : variable(PA_CreateVariable(kind)) { PA_ResizeArray(&variable, count); }
    ~Array() { PA_ClearVariable(&variable); }
    operator PA_Variable*() { return &variable; }
};

constexpr long kOutside[] = {-1, 4, LONG_MIN, LONG_MAX, 1L << 32};  // of an array of three
constexpr long kInside[] = {0, 1, 2, 3};                            // element 0 exists

}  // namespace

// Required: object arrays, kind 39, are no arrays by this test.
TEST(BridgeArrays, IsArrayVariable_EveryKind_FollowsTheMask) {
    for (int kind = 0; kind < 256; kind++) {
        PA_Variable variable = {};
        variable.fType = (uint8_t)kind;
        variable.uValue.fArray.fSize = 7;
        bool array = kind == 31 || kind == 32 || kind == 34 || (kind >= 13 && kind <= 22);
        EXPECT_EQ(PA_IsArrayVariable(&variable), array) << kind;
        EXPECT_EQ(PA_GetArrayNbElements(&variable), array ? 7 : -1) << kind;
    }
    EXPECT_FALSE(PA_IsArrayVariable(nullptr));
}

TEST(BridgeArrays, GetArrayNbElements_OfLongintOrNull_IsMinusOne) {
    PA_Variable longint = PA_CreateVariable(eVK_Longint);
    EXPECT_EQ(PA_GetArrayNbElements(&longint), -1);
    EXPECT_EQ(PA_GetArrayNbElements(nullptr), -1);
}

TEST(BridgeArrays, ResizeArray_ToACount_SendsRecordAndCount) {
    FakeHost host;
    Array array(eVK_ArrayLongint, 0);
    PA_ResizeArray(array, 5);
    EXPECT_EQ(host.last().selector, ZR_SEL_ResizeArray);
    EXPECT_EQ(host.last().in.fParam1, (int64_t)(intptr_t)&array.variable);
    EXPECT_EQ(host.last().in.fParam2, 5);
    EXPECT_EQ(PA_GetArrayNbElements(array), 5);
    PA_ResizeArray(array, -3);
    EXPECT_EQ(host.last().in.fParam2, 0);
    size_t calls = host.calls.size();
    PA_ResizeArray(nullptr, 5);
    EXPECT_EQ(host.calls.size(), calls);
}

TEST(BridgeArrays, ArrayCurrent_SetAndGet_LiesAtOffset14) {
    FakeHost host;
    Array array(eVK_ArrayReal, 3);
    PA_SetArrayCurrent(array, 2);
    EXPECT_EQ(PA_GetArrayCurrent(array), 2);
    EXPECT_EQ(((unsigned char*)&array.variable)[14], 2);
    PA_Variable longint = PA_CreateVariable(eVK_Longint);
    PA_SetArrayCurrent(&longint, 2);
    EXPECT_EQ(((unsigned char*)&longint)[14], 0);
    EXPECT_EQ(PA_GetArrayCurrent(nullptr), 0);
}

TEST(BridgeArrays, NumbersInArrays_Inside_RoundTripInPlace) {
    FakeHost host;
    Array integers(eVK_ArrayInteger, 3), longints(eVK_ArrayLongint, 3), times(eVK_ArrayTime, 3),
        reals(eVK_ArrayReal, 3), truths(eVK_ArrayBoolean, 3), dates(eVK_ArrayDate, 3);
    size_t calls = host.calls.size();
    for (long i : kInside) {
        PA_SetIntegerInArray(integers, i, (short)(-30000 + i));
        PA_SetLongintInArray(longints, i, (int)(-2000000000 + i));
        PA_SetTimeInArray(times, i, (int)(86400 + i));
        PA_SetRealInArray(reals, i, 0.5 + (double)i);
        PA_SetBooleanInArray(truths, i, i % 2 == 1);
        PA_SetDateInArray(dates, i, (short)(1 + i), 12, -44);
    }
    for (long i : kInside) {
        EXPECT_EQ(PA_GetIntegerInArray(integers, i), -30000 + i);
        EXPECT_EQ(PA_GetLongintInArray(longints, i), -2000000000 + i);
        EXPECT_EQ(PA_GetTimeInArray(times, i), 86400 + i);
        EXPECT_EQ(PA_GetLongintInArray(times, i), 86400 + i);  // a time array reads as longints too
        EXPECT_EQ(PA_GetRealInArray(reals, i), 0.5 + (double)i);
        EXPECT_EQ(PA_GetBooleanInArray(truths, i), i % 2 == 1);
        short day, month, year;
        PA_GetDateInArray(dates, i, &day, &month, &year);
        EXPECT_EQ(day, 1 + i);
        EXPECT_EQ(month, 12);
        EXPECT_EQ(year, -44);
    }
    PA_SetLongintInArray(times, 3, 9);
    EXPECT_EQ(PA_GetTimeInArray(times, 3), 9);
    EXPECT_EQ(host.calls.size(), calls);
    int16_t stored[4];
    memcpy(stored, *integers.variable.uValue.fArray.fData, 8);
    EXPECT_EQ(stored[3], -29997);
}

TEST(BridgeArrays, Elements_Outside_AreNeutralAndStayUnwritten) {
    FakeHost host;
    static const struct {
        int kind;
        void (*set)(PA_Variable*, long);
        bool (*neutral)(const PA_Variable*, long);
    } rows[] = {
        {eVK_ArrayInteger, [](PA_Variable* a, long i) { PA_SetIntegerInArray(a, i, 1); },
         [](const PA_Variable* a, long i) { return PA_GetIntegerInArray(a, i) == 0; }},
        {eVK_ArrayLongint, [](PA_Variable* a, long i) { PA_SetLongintInArray(a, i, 1); },
         [](const PA_Variable* a, long i) { return PA_GetLongintInArray(a, i) == 0; }},
        {eVK_ArrayTime, [](PA_Variable* a, long i) { PA_SetTimeInArray(a, i, 1); },
         [](const PA_Variable* a, long i) { return PA_GetTimeInArray(a, i) == 0; }},
        {eVK_ArrayReal, [](PA_Variable* a, long i) { PA_SetRealInArray(a, i, 1); },
         [](const PA_Variable* a, long i) { return PA_GetRealInArray(a, i) == 0; }},
        {eVK_ArrayBoolean, [](PA_Variable* a, long i) { PA_SetBooleanInArray(a, i, true); },
         [](const PA_Variable* a, long i) { return !PA_GetBooleanInArray(a, i); }},
        {eVK_ArrayDate, [](PA_Variable* a, long i) { PA_SetDateInArray(a, i, 1, 1, 1); },
         [](const PA_Variable* a, long i) {
             short day = 5;
             PA_GetDateInArray(a, i, &day, nullptr, nullptr);
             return day == 0;
         }},
        {eVK_ArrayText, [](PA_Variable* a, long i) { PA_SetStringInArray(a, i, PA_CreateUnistring(Wide("x"))); },
         [](const PA_Variable* a, long i) { return PA_GetStringInArray(a, i).fString == nullptr; }},
        {eVK_ArrayBlob, [](PA_Variable* a, long i) { PA_SetBlobInArray(a, i, 3, PA_NewHandle(3)); },
         [](const PA_Variable* a, long i) {
             int size = 5;
             return PA_GetBlobInArray(a, i, &size) == nullptr && size == 0;
         }},
        {eVK_ArrayPicture, [](PA_Variable* a, long i) { PA_SetPictureInArray(a, i, a); },
         [](const PA_Variable* a, long i) { return PA_GetPictureInArray(a, i) == nullptr; }},
        {eVK_ArrayObject, [](PA_Variable* a, long i) { PA_SetObjectInArray(a, i, a); },
         [](const PA_Variable* a, long i) { return PA_GetObjectInArray(a, i) == nullptr; }},
    };
    for (const auto& row : rows) {
        Array array(row.kind, 3);
        size_t handles = host.liveHandles();
        std::string before(*array.variable.uValue.fArray.fData,
                           (size_t)host.sizeOf(array.variable.uValue.fArray.fData));
        for (long index : kOutside) {
            row.set(array, index);
            EXPECT_TRUE(row.neutral(array, index)) << row.kind << " " << index;
        }
        // Another kind, null and an array without storage are as harmless.
        for (const auto& other : rows) {
            if (other.kind == row.kind) continue;
            if (row.kind == eVK_ArrayTime && other.kind == eVK_ArrayLongint) continue;
            other.set(array, 1);
            EXPECT_TRUE(other.neutral(array, 1)) << other.kind << " on " << row.kind;
        }
        PA_Variable bare = {};
        bare.fType = (uint8_t)row.kind;
        bare.uValue.fArray.fSize = 3;
        row.set(&bare, 1);
        EXPECT_TRUE(row.neutral(&bare, 1));
        row.set(nullptr, 1);
        EXPECT_TRUE(row.neutral(nullptr, 1));
        std::string after(*array.variable.uValue.fArray.fData, before.size());
        EXPECT_EQ(before, after) << row.kind;
        EXPECT_EQ(host.liveHandles(), handles) << row.kind;  // what was handed over was freed
        EXPECT_EQ(host.liveStrings, 0) << row.kind;
    }
}

TEST(BridgeArrays, StringInArray_Set_TakesTheTextAndFreesTheOld) {
    FakeHost host;
    {
        Array array(eVK_ArrayText, 2);
        PA_SetStringInArray(array, 1, host.String("old"));
        PA_SetStringInArray(array, 1, host.String("new"));
        PA_SetStringInArray(array, 2, host.String("two"));
        EXPECT_EQ(host.liveStrings, 2);
        PA_Unistring element = PA_GetStringInArray(array, 1);
        EXPECT_EQ(Narrow(element), "new");
        EXPECT_EQ(host.count(ZR_SEL_CreateUnistring), 0);  // the element itself, no copy
        PA_SetStringInArray(array, 1, element);            // what it holds already
        EXPECT_EQ(Narrow(PA_GetStringInArray(array, 1)), "new");
        EXPECT_EQ(Narrow(PA_GetStringInArray(array, 2)), "two");
        EXPECT_EQ(Narrow(PA_GetStringInArray(array, 0)), "");
        EXPECT_EQ(host.liveStrings, 2);
    }
    EXPECT_EQ(host.liveStrings, 0);
}

TEST(BridgeArrays, StringInArray_OfOlderKinds_ReadsAsText) {
    FakeHost host;
    Array array(eVK_ArrayText, 1);
    PA_SetStringInArray(array, 1, host.String("text"));
    for (int kind : {18, 21}) {
        array.variable.fType = (uint8_t)kind;
        EXPECT_EQ(Narrow(PA_GetStringInArray(array, 1)), "text") << kind;
    }
    array.variable.fType = eVK_ArrayText;
}

TEST(BridgeArrays, BlobInArray_Set_TakesTheHandleAndFreesTheOld) {
    FakeHost host;
    Array array(eVK_ArrayBlob, 2);
    PA_Handle old = host.New(2), fresh = host.New(3);
    PA_SetBlobInArray(array, 2, 2, old);
    PA_SetBlobInArray(array, 2, 3, fresh);
    EXPECT_EQ(host.liveHandles(), 2u);  // the array's and the element's
    int size = 0;
    EXPECT_EQ(PA_GetBlobInArray(array, 2, &size), fresh);
    EXPECT_EQ(size, 3);
    unsigned char element[12];
    memcpy(element, *array.variable.uValue.fArray.fData + 24, 12);
    EXPECT_EQ(element[0], 3);  // the 32-bit size, then the handle
    EXPECT_EQ(memcmp(element + 4, &fresh, 8), 0);
    PA_SetBlobInArray(array, 2, 1, fresh);
    EXPECT_EQ(PA_GetBlobInArray(array, 2, &size), fresh);
    EXPECT_EQ(size, 1);
    PA_SetBlobInArray(array, 2, -1, fresh);
    EXPECT_EQ(PA_GetBlobInArray(array, 2, &size), fresh);
    EXPECT_EQ(size, 0);
    PA_SetBlobInArray(array, 2, 5, nullptr);
    EXPECT_EQ(PA_GetBlobInArray(array, 2, &size), nullptr);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(host.liveHandles(), 1u);
    PA_GetBlobInArray(array, 2, nullptr);
}

TEST(BridgeArrays, ReferencesInArray_Set_FreeTheOldOnes) {
    FakeHost host;
    static const struct {
        int kind, freed;
        void (*set)(PA_Variable*, long, void*);
        void* (*get)(const PA_Variable*, long);
    } rows[] = {{eVK_ArrayPicture, ZR_SEL_DisposePicture, PA_SetPictureInArray, PA_GetPictureInArray},
                {eVK_ArrayObject, ZR_SEL_ObjectRelease, PA_SetObjectInArray, PA_GetObjectInArray}};
    for (const auto& row : rows) {
        Array array(row.kind, 1);
        int first, second;
        row.set(array, 1, &first);
        EXPECT_EQ(host.count(row.freed), 0);
        row.set(array, 1, &first);  // one more count on it: the old one goes
        EXPECT_EQ(host.count(row.freed), 1);
        sErrorCode = 7;
        row.set(array, 1, &second);
        EXPECT_EQ(sErrorCode, 7);
        ASSERT_EQ(host.count(row.freed), 2);
        EXPECT_EQ(host.of(row.freed).in.fParam1, (int64_t)(intptr_t)&first);
        EXPECT_EQ(row.get(array, 1), &second);
        row.set(array, 1, nullptr);
        EXPECT_EQ(host.count(row.freed), 3);
    }
}

TEST(BridgeArrays, PointerInArray_Set_TakesTheHandleAndFreesTheOld) {
    FakeHost host;
    PA_Variable array = PA_CreateVariable(eVK_ArrayPointer);
    EXPECT_EQ(PA_GetPointerInArray(&array, 0), nullptr);  // a pointer array starts without storage
    array.uValue.fArray.fData = host.New(16);
    array.uValue.fArray.fSize = 1;
    PA_SetPointerInArray(&array, 1, host.New(42));
    PA_Handle fresh = host.New(42);
    PA_SetPointerInArray(&array, 1, fresh);
    PA_SetPointerInArray(&array, 1, fresh);  // what it holds already
    EXPECT_EQ(PA_GetPointerInArray(&array, 1), fresh);
    EXPECT_EQ(host.liveHandles(), 2u);
    PA_SetPointerInArray(&array, 2, host.New(42));  // outside: freed
    EXPECT_EQ(host.liveHandles(), 2u);
}
