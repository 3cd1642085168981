#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/platform/GraphicsSupport.h"

namespace {
struct Counted : CFObject {
    Counted() { ++living; }
    ~Counted() override { --living; }
    static inline int living = 0;
};
}  // namespace

// Mutable bytes ----------------------------------------------------------------------------------------------------

TEST(CFMutableData, Append_GrowsUpToLimit) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    CFDataAppendBytes(data, reinterpret_cast<const UInt8*>("abc"), 3);
    CFDataAppendBytes(data, reinterpret_cast<const UInt8*>("de"), 2);
    EXPECT_EQ(BytesOf(data), "abcde");
    CFDataSetLength(data, 7);
    EXPECT_EQ(BytesOf(data), std::string("abcde\0\0", 7));
    CFDataSetLength(data, 1);
    CFDataGetMutableBytePtr(data)[0] = 'x';
    EXPECT_EQ(BytesOf(data), "x");
    CFDataSetLength(data, -1);
    CFDataAppendBytes(data, nullptr, 5);
    CFDataAppendBytes(nullptr, nullptr, 5);
    EXPECT_EQ(BytesOf(data), "x");

    Owned<CFMutableDataRef> small = CFDataCreateMutable(nullptr, 3);
    CFDataAppendBytes(small, reinterpret_cast<const UInt8*>("abcd"), 4);
    EXPECT_EQ(CFDataGetLength(small), 0);
    CFDataSetLength(small, 4);
    EXPECT_EQ(CFDataGetLength(small), 0);
    EXPECT_EQ(CFDataCreateMutable(nullptr, -1), nullptr);
}

TEST(CFMutableData, CreateCopy_OfMutable_IsFixedAndItsOwn) {
    Owned<CFMutableDataRef> data = CFDataCreateMutable(nullptr, 0);
    CFDataAppendBytes(data, reinterpret_cast<const UInt8*>("abc"), 3);
    Owned<CFDataRef> copy = CFDataCreateCopy(nullptr, data);
    CFDataSetLength(data, 0);
    EXPECT_EQ(BytesOf(copy), "abc");
    auto fixed = const_cast<CFMutableDataRef>(copy.get());
    EXPECT_EQ(CFDataGetMutableBytePtr(fixed), nullptr);
    CFDataAppendBytes(fixed, reinterpret_cast<const UInt8*>("d"), 1);
    CFDataSetLength(fixed, 0);
    EXPECT_EQ(BytesOf(copy), "abc");
}

// Arrays -----------------------------------------------------------------------------------------------------------

TEST(CFArray, Create_Objects_AreRetainedAndReleased) {
    auto object = new Counted;
    const void* values[] = {object, nullptr, object};
    {
        Owned<CFArrayRef> array = CFArrayCreate(nullptr, values, 3, &kCFTypeArrayCallBacks);
        EXPECT_EQ(CFGetRetainCount(object), 3);
        EXPECT_EQ(CFArrayGetCount(array), 3);
        EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), object);
        EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), nullptr);
        for (CFIndex outside : {-1L, 3L}) EXPECT_EQ(CFArrayGetValueAtIndex(array, outside), nullptr);
        CFArrayAppendValue(const_cast<CFMutableArrayRef>(array.get()), object);  // a fixed one does not change
        EXPECT_EQ(CFArrayGetCount(array), 3);
    }
    EXPECT_EQ(CFGetRetainCount(object), 1);
    CFRelease(object);
    EXPECT_EQ(Counted::living, 0);
}

TEST(CFArray, Create_BarePointersAndBadArguments) {
    const void* values[] = {reinterpret_cast<const void*>(1), reinterpret_cast<const void*>(2)};
    Owned<CFArrayRef> array = CFArrayCreate(nullptr, values, 2, nullptr);  // not objects: never touched
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), values[1]);
    EXPECT_EQ(CFArrayCreate(nullptr, values, -1, nullptr), nullptr);
    EXPECT_EQ(CFArrayCreate(nullptr, nullptr, 1, nullptr), nullptr);
    EXPECT_EQ(CFArrayGetCount(nullptr), 0);
    Owned<CFMutableArrayRef> two = CFArrayCreateMutable(nullptr, 2, nullptr);
    for (int i = 0; i < 5; ++i) CFArrayAppendValue(two, values[0]);
    EXPECT_EQ(CFArrayGetCount(two), 2);
    EXPECT_EQ(CFGetTypeID(two), CFArrayGetTypeID());
}

TEST(CFArray, Equal_ComparesElements) {
    Owned<CFStringRef> a = Text("a"), same = Text("a"), b = Text("b");
    const void *first[] = {a.get(), b.get()}, *second[] = {same.get(), b.get()}, *third[] = {b.get(), a.get()};
    Owned<CFArrayRef> x = CFArrayCreate(nullptr, first, 2, &kCFTypeArrayCallBacks);
    Owned<CFArrayRef> y = CFArrayCreate(nullptr, second, 2, &kCFTypeArrayCallBacks);
    Owned<CFArrayRef> z = CFArrayCreate(nullptr, third, 2, &kCFTypeArrayCallBacks);
    Owned<CFArrayRef> pointers = CFArrayCreate(nullptr, second, 2, nullptr);
    EXPECT_TRUE(CFEqual(x, y));
    EXPECT_EQ(CFHash(x), CFHash(y));
    EXPECT_FALSE(CFEqual(x, z));
    EXPECT_FALSE(CFEqual(x, pointers));
}

// Dictionaries -----------------------------------------------------------------------------------------------------

TEST(CFDictionary, Create_FindsByEqualKey) {
    Owned<CFStringRef> key = Text("key"), equal = Text("key"), other = Text("other");
    const void *keys[] = {key.get(), equal.get(), other.get()}, *values[] = {other.get(), key.get(), nullptr};
    Owned<CFDictionaryRef> dictionary =
        CFDictionaryCreate(nullptr, keys, values, 3, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 2);  // the first of equal keys stays
    EXPECT_EQ(CFDictionaryGetValue(dictionary, equal), other.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary, other), nullptr);
    EXPECT_TRUE(CFDictionaryContainsKey(dictionary, other));
    const void* value = key.get();
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary, other, &value));
    EXPECT_EQ(value, nullptr);
    EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary, Text("none"), &value));
    EXPECT_EQ(CFDictionaryGetValue(nullptr, key), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(nullptr), 0);
    EXPECT_EQ(CFDictionaryCreate(nullptr, nullptr, values, 1, nullptr, nullptr), nullptr);
}

TEST(CFDictionary, SetAndRemove_KeepReferences) {
    Owned<CFStringRef> key = Text("key");
    auto first = new Counted, second = new Counted;
    Owned<CFMutableDictionaryRef> dictionary =
        CFDictionaryCreateMutable(nullptr, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(dictionary, key, first);
    EXPECT_EQ(CFGetRetainCount(first), 2);
    CFDictionarySetValue(dictionary, Text("key"), second);
    EXPECT_EQ(CFGetRetainCount(first), 1);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, key), second);
    CFDictionarySetValue(dictionary, Text("too many"), first);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 1);
    CFDictionaryRemoveValue(dictionary, key);
    CFDictionaryRemoveValue(dictionary, key);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 0);
    EXPECT_EQ(CFGetRetainCount(second), 1);
    CFRelease(first);
    CFRelease(second);
    EXPECT_EQ(Counted::living, 0);
}

TEST(CFDictionary, Equal_IgnoresOrder) {
    Owned<CFStringRef> a = Text("a"), b = Text("b");
    const void *forward[] = {a.get(), b.get()}, *backward[] = {b.get(), a.get()};
    auto make = [](const void** keys) {
        return Owned<CFDictionaryRef>(CFDictionaryCreate(nullptr, keys, keys, 2, &kCFTypeDictionaryKeyCallBacks,
                                                         &kCFTypeDictionaryValueCallBacks));
    };
    EXPECT_TRUE(CFEqual(make(forward), make(backward)));
}

// Numbers and truth values -----------------------------------------------------------------------------------------

TEST(CFNumber, GetValue_OtherTypes_TellsWhetherExact) {
    static const struct {
        double value;
        int32_t nearest;
        bool exact;
    } rows[] = {
        {0, 0, true},
        {-7, -7, true},
        {2.5, 2, false},
        {1e20, std::numeric_limits<int32_t>::max(), false},
        {-1e20, std::numeric_limits<int32_t>::min(), false},
        {std::numeric_limits<double>::infinity(), std::numeric_limits<int32_t>::max(), false},
        {std::nan(""), 0, false},
    };
    for (auto& row : rows) {
        int32_t value = -1;
        EXPECT_EQ(CFNumberGetValue(Number(row.value), kCFNumberSInt32Type, &value), row.exact) << row.value;
        EXPECT_EQ(value, row.nearest) << row.value;
    }
}

TEST(CFNumber, Create_EveryType_ComesBack) {
    int8_t i8 = -8;
    int16_t i16 = -1600;
    int32_t i32 = -320000;
    int64_t i64 = std::numeric_limits<int64_t>::min();
    float f = 1.5f;
    double d = 0.1;
    const struct {
        CFNumberType type;
        const void* value;
        size_t size;
        bool real;
    } rows[] = {{kCFNumberSInt8Type, &i8, 1, false},     {kCFNumberCharType, &i8, 1, false},
                {kCFNumberSInt16Type, &i16, 2, false},   {kCFNumberShortType, &i16, 2, false},
                {kCFNumberSInt32Type, &i32, 4, false},   {kCFNumberIntType, &i32, 4, false},
                {kCFNumberSInt64Type, &i64, 8, false},   {kCFNumberLongType, &i64, 8, false},
                {kCFNumberLongLongType, &i64, 8, false}, {kCFNumberCFIndexType, &i64, 8, false},
                {kCFNumberFloat32Type, &f, 4, true},     {kCFNumberFloatType, &f, 4, true},
                {kCFNumberFloat64Type, &d, 8, true},     {kCFNumberDoubleType, &d, 8, true},
                {kCFNumberCGFloatType, &d, 8, true}};
    for (auto& row : rows) {
        Owned<CFNumberRef> number = CFNumberCreate(nullptr, row.type, row.value);
        char back[8] = {};
        EXPECT_TRUE(CFNumberGetValue(number, row.type, back)) << row.type;
        EXPECT_EQ(memcmp(back, row.value, row.size), 0) << row.type;
        EXPECT_EQ(CFNumberIsFloatType(number), row.real) << row.type;
    }
    EXPECT_EQ(CFNumberCreate(nullptr, static_cast<CFNumberType>(99), &i64), nullptr);
    EXPECT_EQ(CFNumberCreate(nullptr, kCFNumberDoubleType, nullptr), nullptr);
    EXPECT_FALSE(CFNumberGetValue(nullptr, kCFNumberDoubleType, &d));
    EXPECT_TRUE(CFEqual(Number(3), Number(3)));
    EXPECT_FALSE(CFEqual(Number(3), Number(4)));
    double edge;
    EXPECT_FALSE(CFNumberGetValue(Number(0.1), kCFNumberFloatType, &f));
    int64_t most = std::numeric_limits<int64_t>::max();  // no double is this number
    EXPECT_FALSE(CFNumberGetValue(Owned<CFNumberRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &most)),
                                  kCFNumberDoubleType, &edge));
}

TEST(CFBoolean, Constants_OutliveReleases) {
    for (int i = 0; i < 3; ++i) CFRelease(kCFBooleanTrue);
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFBooleanGetValue(nullptr));
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    for (int i = 0; i < 3; ++i) CFRetain(kCFBooleanTrue);
}
