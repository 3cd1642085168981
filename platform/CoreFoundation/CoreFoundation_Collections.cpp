// Arrays, dictionaries, numbers and truth values. The collections in use hold a few entries, so a walk finds a key.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "platform/CoreFoundation/CoreFoundation_Private.h"

// Elements: CF objects or bare pointers ----------------------------------------------------------------------------

static const void* Take(const void* element, bool objects) { return objects ? CFRetain(element) : element; }

static void GiveBack(const void* element, bool objects) {
    if (objects) CFRelease(element);
}

static bool Same(const void* left, const void* right, bool objects) {
    return left == right || (objects && CFEqual(left, right));
}

// Arrays -----------------------------------------------------------------------------------------------------------

struct __CFArray : CFObject {
    __CFArray(bool holdsObjects, bool canChange, CFIndex most)
        : objects(holdsObjects), changes(canChange), limit(most) {}
    ~__CFArray() override {
        for (const void* value : values) GiveBack(value, objects);
    }
    CFTypeID typeID() const override { return kCFTypeArray; }
    bool equals(const CFObject& other) const override {
        auto& array = static_cast<const __CFArray&>(other);
        return std::equal(values.begin(), values.end(), array.values.begin(), array.values.end(),
                          [&](auto a, auto b) { return Same(a, b, objects && array.objects); });
    }
    CFHashCode hash() const override { return values.size(); }
    void Append(const void* value) {
        values.push_back(value);
        Take(value, objects);
    }
    std::vector<const void*> values;
    const bool objects, changes;
    const CFIndex limit;  // most elements, 0 = any
};

CFTypeID CFArrayGetTypeID() { return kCFTypeArray; }

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex n, const CFArrayCallBacks* callbacks) {
    if (n < 0 || (n > 0 && !values)) return nullptr;
    return CFGuarded([&] {
        auto array = std::make_unique<__CFArray>(callbacks && callbacks->objects, /*canChange*/ false, 0);
        array->values.reserve(static_cast<size_t>(n));
        for (CFIndex i = 0; i < n; ++i) array->Append(values[i]);
        return array.release();
    });
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex most, const CFArrayCallBacks* callbacks) {
    if (most < 0) return nullptr;
    return CFGuarded([&] { return new __CFArray(callbacks && callbacks->objects, /*canChange*/ true, most); });
}

CFIndex CFArrayGetCount(CFArrayRef array) { return array ? static_cast<CFIndex>(array->values.size()) : 0; }

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    return index >= 0 && index < CFArrayGetCount(array) ? array->values[static_cast<size_t>(index)] : nullptr;
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    if (!array || !array->changes || (array->limit && CFArrayGetCount(array) >= array->limit)) return;
    CFGuarded([&]() -> void* {
        array->Append(value);
        return nullptr;
    });
}

// Dictionaries -----------------------------------------------------------------------------------------------------

struct __CFDictionary : CFObject {
    struct Entry {
        const void *key, *value;
    };
    __CFDictionary(const CFDictionaryKeyCallBacks* keys, const CFDictionaryValueCallBacks* values, bool canChange,
                   CFIndex most)
        : objectKeys(keys && keys->objects), objectValues(values && values->objects), changes(canChange), limit(most) {}
    ~__CFDictionary() override {
        for (auto& entry : entries) {
            GiveBack(entry.key, objectKeys);
            GiveBack(entry.value, objectValues);
        }
    }
    CFTypeID typeID() const override { return kCFTypeDictionary; }
    bool equals(const CFObject& other) const override {
        auto& dictionary = static_cast<const __CFDictionary&>(other);
        if (entries.size() != dictionary.entries.size()) return false;
        return std::all_of(entries.begin(), entries.end(), [&](auto& entry) {
            auto found = dictionary.Find(entry.key);
            return found && Same(entry.value, found->value, objectValues && dictionary.objectValues);
        });
    }
    CFHashCode hash() const override { return entries.size(); }
    const Entry* Find(const void* key) const {
        for (auto& entry : entries)
            if (Same(entry.key, key, objectKeys)) return &entry;
        return nullptr;
    }
    void Add(const void* key, const void* value) {
        entries.push_back({key, value});
        Take(key, objectKeys);
        Take(value, objectValues);
    }
    std::vector<Entry> entries;
    const bool objectKeys, objectValues, changes;
    const CFIndex limit;  // most entries, 0 = any
};

CFTypeID CFDictionaryGetTypeID() { return kCFTypeDictionary; }

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex n,
                                   const CFDictionaryKeyCallBacks* keyCallbacks,
                                   const CFDictionaryValueCallBacks* valueCallbacks) {
    if (n < 0 || (n > 0 && (!keys || !values))) return nullptr;
    return CFGuarded([&] {
        auto made = std::make_unique<__CFDictionary>(keyCallbacks, valueCallbacks, /*canChange*/ false, 0);
        for (CFIndex i = 0; i < n; ++i)
            if (!made->Find(keys[i])) made->Add(keys[i], values[i]);
        return made.release();
    });
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex most,
                                                 const CFDictionaryKeyCallBacks* keyCallbacks,
                                                 const CFDictionaryValueCallBacks* valueCallbacks) {
    if (most < 0) return nullptr;
    return CFGuarded([&] { return new __CFDictionary(keyCallbacks, valueCallbacks, /*canChange*/ true, most); });
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex most, CFDictionaryRef dictionary) {
    if (!dictionary || most < 0) return nullptr;
    return CFGuarded([&] {
        CFDictionaryKeyCallBacks keys = {dictionary->objectKeys};
        CFDictionaryValueCallBacks values = {dictionary->objectValues};
        auto made = std::make_unique<__CFDictionary>(&keys, &values, /*canChange*/ true, most);
        made->entries.reserve(dictionary->entries.size());
        for (auto& entry : dictionary->entries) made->Add(entry.key, entry.value);
        return made.release();
    });
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return dictionary ? static_cast<CFIndex>(dictionary->entries.size()) : 0;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    return dictionary && dictionary->Find(key);
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    auto entry = dictionary ? dictionary->Find(key) : nullptr;
    return entry ? entry->value : nullptr;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key, const void** value) {
    auto entry = dictionary ? dictionary->Find(key) : nullptr;
    if (entry && value) *value = entry->value;
    return entry != nullptr;
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (!dictionary || !dictionary->changes) return;
    if (auto entry = const_cast<__CFDictionary::Entry*>(dictionary->Find(key))) {
        Take(value, dictionary->objectValues);
        GiveBack(entry->value, dictionary->objectValues);
        entry->value = value;
    } else if (!dictionary->limit || CFDictionaryGetCount(dictionary) < dictionary->limit) {
        CFGuarded([&]() -> void* {
            dictionary->Add(key, value);
            return nullptr;
        });
    }
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    auto entry = dictionary && dictionary->changes ? dictionary->Find(key) : nullptr;
    if (!entry) return;
    auto removed = *entry;
    dictionary->entries.erase(dictionary->entries.begin() + (entry - dictionary->entries.data()));
    GiveBack(removed.key, dictionary->objectKeys);
    GiveBack(removed.value, dictionary->objectValues);
}

// Numbers ----------------------------------------------------------------------------------------------------------

struct __CFNumber : CFObject {
    __CFNumber(bool isReal, int64_t w, double r) : real(isReal), whole(w), decimal(r) {}
    CFTypeID typeID() const override { return kCFTypeNumber; }
    bool equals(const CFObject& other) const override {
        auto& number = static_cast<const __CFNumber&>(other);
        return real || number.real ? decimal == number.decimal : whole == number.whole;
    }
    CFHashCode hash() const override { return std::hash<double>()(decimal); }
    const bool real;
    const int64_t whole;   // nearest whole number
    const double decimal;  // the value, for whole numbers beyond 2^53 the nearest
};

// The kinds of C numbers behind the type names.
enum class NumberForm { none, int8, int16, int32, int64, float32, float64 };

static NumberForm FormOf(CFNumberType type) {
    switch (type) {
        case kCFNumberSInt8Type:
        case kCFNumberCharType: return NumberForm::int8;
        case kCFNumberSInt16Type:
        case kCFNumberShortType: return NumberForm::int16;
        case kCFNumberSInt32Type:
        case kCFNumberIntType: return NumberForm::int32;
        case kCFNumberSInt64Type:
        case kCFNumberLongType:
        case kCFNumberLongLongType:
        case kCFNumberCFIndexType: return NumberForm::int64;
        case kCFNumberFloat32Type:
        case kCFNumberFloatType: return NumberForm::float32;
        case kCFNumberFloat64Type:
        case kCFNumberDoubleType:
        case kCFNumberCGFloatType: return NumberForm::float64;
    }
    return NumberForm::none;
}

static int64_t WholeOf(double value) {
    constexpr double kEdge = 9223372036854775808.0;
    if (std::isnan(value)) return 0;
    if (value >= kEdge) return std::numeric_limits<int64_t>::max();
    return value < -kEdge ? std::numeric_limits<int64_t>::min() : static_cast<int64_t>(value);
}

template <class Number>
static Number Read(const void* from) {
    Number value;
    memcpy(&value, from, sizeof value);
    return value;
}

CFTypeID CFNumberGetTypeID() { return kCFTypeNumber; }

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    if (!value) return nullptr;
    auto whole = [](int64_t n) { return new __CFNumber(false, n, static_cast<double>(n)); };
    auto real = [](double d) { return new __CFNumber(true, WholeOf(d), d); };
    return CFGuarded([&]() -> CFNumberRef {
        switch (FormOf(type)) {
            case NumberForm::int8: return whole(Read<int8_t>(value));
            case NumberForm::int16: return whole(Read<int16_t>(value));
            case NumberForm::int32: return whole(Read<int32_t>(value));
            case NumberForm::int64: return whole(Read<int64_t>(value));
            case NumberForm::float32: return real(static_cast<double>(Read<float>(value)));
            case NumberForm::float64: return real(Read<double>(value));
            case NumberForm::none: break;
        }
        return nullptr;
    });
}

template <class Whole>
static bool WriteWhole(const __CFNumber& number, void* out) {
    int64_t least = std::numeric_limits<Whole>::min(), most = std::numeric_limits<Whole>::max();
    auto value = static_cast<Whole>(std::clamp(number.whole, least, most));
    memcpy(out, &value, sizeof value);
    return value == number.whole && (!number.real || static_cast<double>(value) == number.decimal);
}

static bool WriteFloat(const __CFNumber& number, void* out) {
    constexpr double kMost = std::numeric_limits<float>::max();
    double inside = std::isfinite(number.decimal) ? std::clamp(number.decimal, -kMost, kMost) : number.decimal;
    auto value = static_cast<float>(inside);
    memcpy(out, &value, sizeof value);
    return static_cast<double>(value) == number.decimal || std::isnan(value);
}

static bool WriteDouble(const __CFNumber& number, void* out) {
    memcpy(out, &number.decimal, sizeof number.decimal);
    return number.real || (number.decimal < 0x1p63 && WholeOf(number.decimal) == number.whole);
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    if (!number || !value) return false;
    switch (FormOf(type)) {
        case NumberForm::int8: return WriteWhole<int8_t>(*number, value);
        case NumberForm::int16: return WriteWhole<int16_t>(*number, value);
        case NumberForm::int32: return WriteWhole<int32_t>(*number, value);
        case NumberForm::int64: return WriteWhole<int64_t>(*number, value);
        case NumberForm::float32: return WriteFloat(*number, value);
        case NumberForm::float64: return WriteDouble(*number, value);
        case NumberForm::none: break;
    }
    return false;
}

Boolean CFNumberIsFloatType(CFNumberRef number) { return number && number->real; }

// Truth values -----------------------------------------------------------------------------------------------------

struct __CFBoolean : CFObject {
    explicit __CFBoolean(bool v) : value(v) { references = 1L << 40; }  // never freed, whoever releases it
    CFTypeID typeID() const override { return kCFTypeBoolean; }
    const bool value;
};
static __CFBoolean sTrue(true), sFalse(false);
const CFBooleanRef kCFBooleanTrue = &sTrue;
const CFBooleanRef kCFBooleanFalse = &sFalse;

CFTypeID CFBooleanGetTypeID() { return kCFTypeBoolean; }

Boolean CFBooleanGetValue(CFBooleanRef boolean) { return boolean && boolean->value; }
