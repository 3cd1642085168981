// A small host for the tests of core/: as much of the published interface as they need, started as a real host starts
// the module. It counts what it hands out, so that a test ends with nothing of the host's left.
#ifndef ZR_TESTS_FAKEHOST_H
#define ZR_TESTS_FAKEHOST_H

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/ZR_API_Text.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"

namespace fake {

struct Block {  // behind a PA_Handle: the address of its first field
    char* data;
    long size;
    int locks;
};

struct PictureRepresentation {
    std::u16string type;
    std::string bytes;
};
typedef std::vector<PictureRepresentation> Picture;  // behind a PA_Picture

struct State {
    long handles = 0, strings = 0, pictures = 0, calls = 0;
    bool refusesHandles = false;
    std::map<std::u16string, std::u16string> localised;
    std::map<std::pair<long, long>, std::u16string> localisedByID;
    std::map<std::pair<long, long>, std::u16string> names;  // table, field; field 0 = the table
    std::map<std::pair<long, long>, PA_Variable> fields;    // BLOBs and pictures of the current record
    void* screenPicture = nullptr;
    void* printPicture = nullptr;
};
inline State state;

inline std::u16string UnitsOf(const PA_Unichar* units) {
    std::u16string text;
    while (units && *units) text += static_cast<char16_t>(*units++);
    return text;
}
inline std::u16string UnitsOf(int64_t address, int64_t n) {
    auto units = reinterpret_cast<const char16_t*>(address);
    return units ? std::u16string(units, units + n) : std::u16string();
}
inline void Copy(PA_Unichar* to, const std::u16string& text) {  // 256 units
    size_t n = std::min<size_t>(text.size(), 255);
    memcpy(to, text.data(), n * 2);
    to[n] = 0;
}

// Memory -----------------------------------------------------------------------------------------------------------

inline Block* BlockOf(PA_Handle handle) { return reinterpret_cast<Block*>(handle); }
inline PA_Handle NewHandle(long size) {
    auto block = new Block{new char[static_cast<size_t>(size) + 1](), size, 0};
    ++state.handles;
    return &block->data;
}
inline void FreeHandle(PA_Handle handle) {
    if (!handle) return;
    delete[] BlockOf(handle)->data;
    delete BlockOf(handle);
    --state.handles;
}
inline void SetHandleSize(PA_Handle handle, long size) {
    auto bytes = new char[static_cast<size_t>(size) + 1]();
    memcpy(bytes, BlockOf(handle)->data, static_cast<size_t>(std::min(size, BlockOf(handle)->size)));
    delete[] BlockOf(handle)->data;
    BlockOf(handle)->data = bytes;
    BlockOf(handle)->size = size;
}

inline void CallHandle(EngineBlock* block) {
    switch (block->fParam1) {
        case ZR_HANDLE_NEW:
            block->fHandle = state.refusesHandles ? nullptr : NewHandle(block->fParam2);
            if (!block->fHandle) block->fError = ZR_ERR_MEMORY;
            return;
        case ZR_HANDLE_DISPOSE: return FreeHandle(block->fHandle);
        case ZR_HANDLE_GET_SIZE: block->fParam2 = BlockOf(block->fHandle)->size; return;
        case ZR_HANDLE_SET_SIZE: return SetHandleSize(block->fHandle, block->fParam2);
        case ZR_HANDLE_LOCK:
            ++BlockOf(block->fHandle)->locks;
            block->fParam2 = reinterpret_cast<int64_t>(*block->fHandle);
            return;
        case ZR_HANDLE_UNLOCK: --BlockOf(block->fHandle)->locks; return;
        default: block->fError = ZR_ERR_PARAMETER;
    }
}

inline void CallUserData(EngineBlock* block) {
    if (block->fParam1 == ZR_USERDATA_FROM) {
        block->fHandle = NewHandle(block->fParam3);
        memcpy(*block->fHandle, reinterpret_cast<void*>(block->fParam2), static_cast<size_t>(block->fParam3));
    } else {
        block->fParam3 = BlockOf(block->fHandle)->size;
        if (block->fParam2)
            memcpy(reinterpret_cast<void*>(block->fParam2), *block->fHandle, static_cast<size_t>(block->fParam3));
    }
}

// Strings ----------------------------------------------------------------------------------------------------------

inline PA_Unistring NewString(const std::u16string& text) {
    auto units = new PA_Unichar[text.size() + 1]();
    memcpy(units, text.data(), text.size() * 2);
    ++state.strings;
    return {static_cast<int32_t>(text.size()), units, nullptr};
}
inline void FreeString(PA_Unistring* string) {
    if (string->fString) --state.strings;
    delete[] string->fString;
    *string = {};
}

// The simplest collation with the host's wildcard.
inline bool Matches(std::u16string_view left, std::u16string_view right, bool caseCounts, bool wildcard) {
    if (right.empty()) return left.empty();
    if (wildcard && right[0] == u'@') {
        for (size_t i = 0; i <= left.size(); ++i)
            if (Matches(left.substr(i), right.substr(1), caseCounts, wildcard)) return true;
        return false;
    }
    auto fold = [caseCounts](char16_t c) { return !caseCounts && c >= u'a' && c <= u'z' ? char16_t(c - 32) : c; };
    return !left.empty() && fold(left[0]) == fold(right[0]) &&
           Matches(left.substr(1), right.substr(1), caseCounts, wildcard);
}

inline std::u32string Decoded(const char* bytes, long n, int charset) {
    std::u32string out;
    for (long i = 0; i < n;) {
        if (charset == eCS_UTF32) {
            char32_t c;
            memcpy(&c, bytes + i, 4);
            out += c;
            i += 4;
        } else if (charset == eCS_UTF16) {
            char16_t high, low = 0;
            memcpy(&high, bytes + i, 2);
            if (i + 4 <= n) memcpy(&low, bytes + i + 2, 2);
            bool pair = (high & 0xFC00) == 0xD800 && (low & 0xFC00) == 0xDC00;
            out += pair ? 0x10000 + ((high - 0xD800U) << 10) + (low - 0xDC00U) : char32_t(high);
            i += pair ? 4 : 2;
        } else {
            auto lead = static_cast<unsigned char>(bytes[i]);
            int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
            char32_t c = more == 0 ? lead : lead & (0x3F >> more);
            for (int k = 1; k <= more && i + k < n; ++k) c = c << 6 | (bytes[i + k] & 0x3F);
            out += c;
            i += more + 1;
        }
    }
    return out;
}
inline std::string Encoded(char32_t c, int charset) {
    std::string out;
    auto put16 = [&out](char32_t unit) { out += {static_cast<char>(unit), static_cast<char>(unit >> 8)}; };
    if (charset == eCS_UTF32) {
        put16(c & 0xFFFF);
        put16(c >> 16);
    } else if (charset == eCS_UTF16) {
        if (c < 0x10000) return put16(c), out;
        put16(0xD7C0 + (c >> 10));
        put16(0xDC00 + (c & 0x3FF));
    } else if (c < 0x80) {
        out += static_cast<char>(c);
    } else {
        int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        out += static_cast<char>("\0\xC0\xE0\xF0"[more] | static_cast<char>(c >> (6 * more)));
        for (int k = more - 1; k >= 0; --k) out += static_cast<char>(0x80 | (c >> (6 * k) & 0x3F));
    }
    return out;
}
inline void ConvertCharset(EngineBlock* block) {
    auto bytes = reinterpret_cast<const char*>(block->fParam1);
    auto target = reinterpret_cast<char*>(block->fParam2);
    int64_t written = 0;
    for (char32_t c : Decoded(bytes, block->fLength1, static_cast<int>(block->fParam3))) {
        std::string piece = Encoded(c, static_cast<int>(block->fParam4));
        if (written + static_cast<int64_t>(piece.size()) > block->fLength2) break;
        memcpy(target + written, piece.data(), piece.size());
        written += static_cast<int64_t>(piece.size());
    }
    block->fLength2 = written;
}

// Variables --------------------------------------------------------------------------------------------------------

#pragma pack(push, 1)
struct BlobElement {
    int32_t size;
    PA_Handle data;
};
#pragma pack(pop)

inline void FreePicture(PA_Picture picture) {
    if (!picture) return;
    delete static_cast<Picture*>(picture);
    --state.pictures;
}
inline PA_Picture NewPicture(Picture representations) {
    ++state.pictures;
    return new Picture(std::move(representations));
}

// Frees what the elements from first on own.
inline void FreeElements(PA_Variable* array, long first) {
    long size = ZR_HostArrayElementSize(array->fType), n = BlockOf(array->uValue.fArray.fData)->size / size;
    for (long i = first; i < n; ++i) {
        char* at = *array->uValue.fArray.fData + i * size;
        if (array->fType == eVK_ArrayText) FreeString(reinterpret_cast<PA_Unistring*>(at));
        if (array->fType == eVK_ArrayBlob) FreeHandle(reinterpret_cast<BlobElement*>(at)->data);
    }
}
inline void ClearVariable(PA_Variable* variable) {
    if (variable->fType == eVK_Text) FreeString(&variable->uValue.fText);
    if (variable->fType == eVK_Blob) FreeHandle(variable->uValue.fArray.fData);
    if (variable->fType == eVK_Picture) FreePicture(variable->uValue.fPicture);
    if (ZR_HostArrayElementSize(variable->fType) > 0 && variable->uValue.fArray.fData) {
        FreeElements(variable, 0);
        FreeHandle(variable->uValue.fArray.fData);
    }
    *variable = {};
    variable->fType = eVK_Undefined;
}
inline void ResizeArray(PA_Variable* variable, long count) {
    long size = ZR_HostArrayElementSize(variable->fType);
    if (size == 0) return;
    PA_ArrayValue* array = &variable->uValue.fArray;
    if (!array->fData) array->fData = NewHandle(size);
    if (count < array->fSize) FreeElements(variable, count + 1);
    SetHandleSize(array->fData, (count + 1) * size);
    array->fSize = static_cast<int32_t>(count);
}
inline PA_Variable Copied(const PA_Variable& source) {
    PA_Variable copy = source;
    if (source.fType == eVK_Text) copy.uValue.fText = NewString(UnitsOf(source.uValue.fText.fString));
    if (source.fType == eVK_Picture && source.uValue.fPicture)
        copy.uValue.fPicture = NewPicture(*static_cast<Picture*>(source.uValue.fPicture));
    if (source.fType == eVK_Blob && source.uValue.fArray.fData) {
        copy.uValue.fArray.fData = NewHandle(source.uValue.fArray.fSize);
        memcpy(*copy.uValue.fArray.fData, *source.uValue.fArray.fData, static_cast<size_t>(source.uValue.fArray.fSize));
    }
    return copy;
}

inline void GetPictureData(EngineBlock* block) {
    auto picture = reinterpret_cast<Picture*>(block->fParam1);
    size_t index = block->fParam2 == 0 ? 1 : static_cast<size_t>(block->fParam2);
    if (!picture || index > picture->size()) {
        block->fError = ZR_ERR_NO_REPRESENTATION;
        return;
    }
    const PictureRepresentation& found = (*picture)[index - 1];
    *reinterpret_cast<PA_Unistring*>(block->fParam3) = NewString(found.type);
    if (!block->fHandle) return;
    SetHandleSize(block->fHandle, static_cast<long>(found.bytes.size()));
    memcpy(*block->fHandle, found.bytes.data(), found.bytes.size());
}

// The door ---------------------------------------------------------------------------------------------------------

inline void Call4D(int selector, EngineBlock* block) {
    auto record = reinterpret_cast<PA_Unistring*>(block->fParam1);
    auto variable = reinterpret_cast<PA_Variable*>(block->fParam1);
    std::pair<long, long> field = {block->fParam1, block->fParam2};
    ++state.calls;
    switch (selector) {
        case ZR_SEL_Handle: return CallHandle(block);
        case ZR_SEL_UserData: return CallUserData(block);
        case ZR_SEL_SetUnistring: FreeString(record); [[fallthrough]];
        case ZR_SEL_CreateUnistring: *record = NewString(UnitsOf(block->fParam2, block->fLength2)); return;
        case ZR_SEL_DisposeUnistring: return FreeString(record);
        case ZR_SEL_CompareUnibuffers:
            block->fParam1 = Matches(UnitsOf(block->fParam1, block->fLength1), UnitsOf(block->fParam2, block->fLength2),
                                     block->fParam3 != 0, block->fParam4 != 0)
                                 ? 0
                                 : 1;
            return;
        case ZR_SEL_ConvertCharset: return ConvertCharset(block);
        case ZR_SEL_LocaliseString: {
            auto key = UnitsOf(block->fName);
            auto found = block->fFlags == 1 ? state.localised.find(key) : state.localised.end();
            *record = NewString(found == state.localised.end() ? key : found->second);
            return;
        }
        case ZR_SEL_LocaliseStringByID:
            *record = NewString(block->fFlags == 1 ? state.localisedByID[{block->fParam2, block->fParam3}] : u"");
            return;
        case ZR_SEL_ClearVariable: return ClearVariable(variable);
        case ZR_SEL_CopyVariable: *reinterpret_cast<PA_Variable*>(block->fParam2) = Copied(*variable); return;
        case ZR_SEL_ResizeArray: return ResizeArray(variable, block->fParam2);
        case ZR_SEL_FormatLongint: {
            auto number = std::to_string(block->fParam1);
            Copy(block->fText, UnitsOf(block->fName) + u":" + std::u16string(number.begin(), number.end()));
            return;
        }
        case ZR_SEL_FormatDate: {
            auto text = std::to_string(block->fParam1) + "." + std::to_string(block->fParam2) + "." +
                        std::to_string(block->fParam3) + "/" + std::to_string(block->fParam4);
            return Copy(block->fText, std::u16string(text.begin(), text.end()));
        }
        case ZR_SEL_FormatTime: {
            auto text = std::to_string(block->fParam1) + "/" + std::to_string(block->fParam4);
            return Copy(block->fText, std::u16string(text.begin(), text.end()));
        }
        case ZR_SEL_TableName: return Copy(block->fName, state.names[{block->fParam1, 0}]);
        case ZR_SEL_FieldName: return Copy(block->fName, state.names[field]);
        case ZR_SEL_GetField: {
            auto found = state.fields.find(field);
            if (found == state.fields.end()) block->fError = ZR_ERR_NO_RECORD;
            else *reinterpret_cast<PA_Variable*>(block->fParam3) = Copied(found->second);
            return;
        }
        case ZR_SEL_SetField: {
            auto stored = Copied(*reinterpret_cast<PA_Variable*>(block->fParam3));
            if (auto old = state.fields.find(field); old != state.fields.end()) ClearVariable(&old->second);
            state.fields[field] = stored;
            return;
        }
        case ZR_SEL_CreatePicture: {
            Block* bytes = BlockOf(block->fHandle);
            block->fParam1 = 0;
            if (bytes->size > 0)
                block->fParam1 = reinterpret_cast<int64_t>(
                    NewPicture({{u"image/png", std::string(bytes->data, static_cast<size_t>(bytes->size))}}));
            return;
        }
        case ZR_SEL_DisposePicture: return FreePicture(reinterpret_cast<PA_Picture>(block->fParam1));
        case ZR_SEL_DuplicatePicture:
            block->fParam2 = reinterpret_cast<int64_t>(NewPicture(*reinterpret_cast<Picture*>(block->fParam1)));
            return;
        case ZR_SEL_GetPictureData: return GetPictureData(block);
        case ZR_SEL_NativePictureForScreen: block->fParam2 = reinterpret_cast<int64_t>(state.screenPicture); return;
        case ZR_SEL_NativePictureForPrinting: block->fParam2 = reinterpret_cast<int64_t>(state.printPicture); return;
        default: block->fError = ZR_ERR_UNKNOWN_SELECTOR;
    }
}

// Starts and stops the module around a test; at its end neither side holds anything of the test's.
class Test : public ::testing::Test {
  protected:
    void SetUp() override {
        state = {};
        ZR_StartupRecord record = {};
        record.fHostVersion = 0x1800;
        record.fCall4D = Call4D;
        FourDPackex(-1, &record, nullptr, nullptr);
        ZR_GetMemoryInfo(&handles_, &bytes_);
    }
    void TearDown() override {
        for (auto& field : state.fields) ClearVariable(&field.second);
        long handles, bytes;
        ZR_GetMemoryInfo(&handles, &bytes);
        EXPECT_EQ(handles, handles_);
        EXPECT_EQ(bytes, bytes_);
        EXPECT_EQ(state.handles, 0);
        EXPECT_EQ(state.strings, 0);
        EXPECT_EQ(state.pictures, 0);
        FourDPackex(-2, nullptr, nullptr, nullptr);
        gCall4D = nullptr;
    }

  private:
    long handles_ = 0, bytes_ = 0;
};

}  // namespace fake

// The units of a text, to compare and to print.
inline std::u16string Units(const ZR_Text& text) {
    auto units = reinterpret_cast<const char16_t*>(text.data);
    return units ? std::u16string(units, units + text.count) : std::u16string();
}

// A living text of these units; handed over.
inline ZR_Text MakeText(const std::u16string& units) {
    ZR_Text text;
    text.Create();
    text.AddUniBuffer(reinterpret_cast<const unsigned short*>(units.data()), static_cast<long>(units.size()));
    return text;
}

inline std::string Bytes(const ZR_Handle& handle) {
    return handle.data ? std::string(handle.data, static_cast<size_t>(handle.count)) : std::string();
}

inline ZR_Handle MakeBytes(const std::string& bytes) {
    ZR_Handle handle;
    handle.Create(1, 0);
    handle.AddCharBuffer(bytes.data(), static_cast<long>(bytes.size()));
    return handle;
}

// Checks at the end of its block that the counters read as at its beginning.
class MemoryCheck {
  public:
    MemoryCheck() { ZR_GetMemoryInfo(&handles_, &bytes_); }
    ~MemoryCheck() {
        long handles, bytes;
        ZR_GetMemoryInfo(&handles, &bytes);
        EXPECT_EQ(handles, handles_);
        EXPECT_EQ(bytes, bytes_);
    }

  private:
    long handles_ = 0, bytes_ = 0;
};

#endif
