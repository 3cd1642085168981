// A host for tests of the bridge: it records every request as it came in, keeps handles and strings for real, counting
// what lives, and answers everything else by what a test has prepared for the selector.
//
//     FakeHost host;
//     host.answer[ZR_SEL_RecordNumber] = [](EngineBlock* block) { block->fParam2 = 7; };
//     EXPECT_EQ(PA_RecordNumber(3), 7);
//     EXPECT_EQ(host.last().in.fParam1, 3);
//
// A selector without an answer leaves the block alone without an error. All of it is the calling thread's alone.
#ifndef ZR_TESTS_PLUGIN_FAKEHOST_H
#define ZR_TESTS_PLUGIN_FAKEHOST_H

#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"

// Units of an ASCII text, terminated; keeps units of 0 when made with a length.
class Wide {
  public:
    Wide(const char* text) : Wide(text, strlen(text)) {}
    Wide(const char* text, size_t length) : units_(text, text + length) { units_.push_back(0); }
    explicit Wide(const std::string& text) : Wide(text.data(), text.size()) {}
    operator const PA_Unichar*() const { return units_.data(); }
    PA_Unichar* data() { return units_.data(); }
    long length() const { return (long)units_.size() - 1; }
    PA_Unistring record() { return {(int32_t)length(), units_.data(), nullptr}; }  // borrowed

  private:
    std::vector<PA_Unichar> units_;
};

inline std::string Narrow(const PA_Unichar* text) {
    std::string narrow;
    while (text != nullptr && *text != 0) narrow.push_back((char)*text++);
    return narrow;
}
inline std::string Narrow(const PA_Unistring& text) {
    return text.fString == nullptr ? "" : std::string(text.fString, text.fString + text.fLength);
}

class FakeHost {
  public:
    struct Call {
        int selector;
        EngineBlock in;  // as it came; fields that the call does not use hold anything
    };
    std::vector<Call> calls;
    std::map<int, std::function<void(EngineBlock*)>> answer;
    int liveStrings = 0;
    bool refusesHandles = false;

    FakeHost() {
        current_ = this;
        gCall4D = Call4D;
        Current4DVersion = 0x1800;
        sErrorCode = 0;
    }
    ~FakeHost() {
        while (!handles_.empty()) Dispose(*handles_.begin());
        gCall4D = nullptr;
        Current4DVersion = 0;
        current_ = nullptr;
    }
    FakeHost(const FakeHost&) = delete;

    const Call& last() const { return calls.back(); }
    std::vector<int> selectors() const {
        std::vector<int> list;
        for (const Call& call : calls) list.push_back(call.selector);
        return list;
    }
    int count(int selector) const {
        int n = 0;
        for (const Call& call : calls) n += call.selector == selector;
        return n;
    }
    const Call& of(int selector) const {  // the last call of that selector
        for (auto call = calls.rbegin(); call != calls.rend(); ++call)
            if (call->selector == selector) return *call;
        abort();
    }
    size_t liveHandles() const { return handles_.size(); }
    long sizeOf(PA_Handle handle) { return *Size(handle); }

    PA_Handle New(long size) {
        struct Master* master = (Master*)malloc(sizeof(Master));
        *master = {(char*)calloc(1, size == 0 ? 1 : (size_t)size), size, 0};
        handles_.insert((PA_Handle)master);
        return (PA_Handle)master;
    }
    PA_Unistring String(const char* text) {
        PA_Unistring string;
        Fill(&string, Wide(text), (long)strlen(text));
        return string;
    }
    void Fill(PA_Unistring* string, const PA_Unichar* units, long length) {
        string->fString = (PA_Unichar*)calloc((size_t)length + 1, sizeof(PA_Unichar));
        if (length > 0) memcpy(string->fString, units, (size_t)length * sizeof(PA_Unichar));
        string->fLength = (int32_t)length;
        string->fReserved = string->fString;
        liveStrings++;
    }
    void Free(PA_Unistring* string) {
        if (string->fReserved == nullptr) return;
        free(string->fReserved);
        liveStrings--;
    }

  private:
    struct Master {  // a handle is the address of its first field
        char* bytes;
        long size;
        long locks;
    };
    std::set<PA_Handle> handles_;
    static thread_local inline FakeHost* current_ = nullptr;

    static long* Size(PA_Handle handle) { return &((Master*)handle)->size; }

    void Dispose(PA_Handle handle) {
        if (handles_.erase(handle) == 0) abort();  // disposed twice, or never made
        free(*handle);
        free(handle);
    }

    void OnHandle(EngineBlock* block) {
        Master* master = (Master*)block->fHandle;
        switch (block->fParam1) {
            case ZR_HANDLE_NEW:
                block->fHandle = refusesHandles ? nullptr : New(block->fParam2);
                if (refusesHandles) block->fError = ZR_ERR_MEMORY;
                break;
            case ZR_HANDLE_DISPOSE: Dispose(block->fHandle); break;
            case ZR_HANDLE_GET_SIZE: block->fParam2 = master->size; break;
            case ZR_HANDLE_SET_SIZE:
                master->bytes = (char*)realloc(master->bytes, block->fParam2 == 0 ? 1 : (size_t)block->fParam2);
                if (block->fParam2 > master->size)
                    memset(master->bytes + master->size, 0, (size_t)(block->fParam2 - master->size));
                master->size = block->fParam2;
                break;
            case ZR_HANDLE_LOCK:
                master->locks++;
                block->fParam2 = (int64_t)master->bytes;
                break;
            case ZR_HANDLE_UNLOCK: master->locks--; break;
            case ZR_HANDLE_GET_STATE: block->fParam2 = master->locks; break;
            case ZR_HANDLE_SET_STATE: master->locks = block->fParam2; break;
            default: block->fError = ZR_ERR_PARAMETER;
        }
    }

    void OnUserData(EngineBlock* block) {
        if (block->fParam1 == ZR_USERDATA_FROM) {
            block->fHandle = New(block->fParam3);
            memcpy(*block->fHandle, (void*)block->fParam2, (size_t)block->fParam3);
        } else {
            block->fParam3 = *Size(block->fHandle);
            if (block->fParam2 != 0) memcpy((void*)block->fParam2, *block->fHandle, (size_t)block->fParam3);
        }
    }

    void Clear(PA_Variable* variable) {
        int kind = variable->fType;
        if (UnifyVarKind(kind) == eVK_Text && variable->fFiller == 0) Free(&variable->uValue.fText);
        if (kind == eVK_Blob || ZR_HostArrayElementSize(kind) > 0) {
            if (kind == eVK_ArrayText)
                for (long i = 0; i <= variable->uValue.fArray.fSize; i++)
                    Free((PA_Unistring*)(*variable->uValue.fArray.fData + i * 20));
            if (variable->uValue.fArray.fData != nullptr) Dispose(variable->uValue.fArray.fData);
        }
        if (kind == eVK_Pointer && variable->uValue.fPointer != nullptr) Dispose(variable->uValue.fPointer);
        memset((void*)variable, 0, sizeof *variable);
        variable->fType = eVK_Undefined;
    }

    void Resize(PA_Variable* array, long count) {
        PA_ArrayValue* value = &array->uValue.fArray;
        long bytes = (count + 1) * ZR_HostArrayElementSize(array->fType);
        Master* master = (Master*)value->fData;
        master->bytes = (char*)realloc(master->bytes, (size_t)bytes);
        if (bytes > master->size) memset(master->bytes + master->size, 0, (size_t)(bytes - master->size));
        master->size = bytes;
        value->fSize = (int32_t)count;
    }

    bool Builtin(int selector, EngineBlock* block) {
        switch (selector) {
            case ZR_SEL_Handle: OnHandle(block); return true;
            case ZR_SEL_UserData: OnUserData(block); return true;
            case ZR_SEL_CreateUnistring:
                Fill((PA_Unistring*)block->fParam1, (PA_Unichar*)block->fParam2, block->fLength2);
                return true;
            case ZR_SEL_SetUnistring:
                Free((PA_Unistring*)block->fParam1);
                Fill((PA_Unistring*)block->fParam1, (PA_Unichar*)block->fParam2, block->fLength2);
                return true;
            case ZR_SEL_DisposeUnistring: Free((PA_Unistring*)block->fParam1); return true;
            case ZR_SEL_ClearVariable: Clear((PA_Variable*)block->fParam1); return true;
            case ZR_SEL_ResizeArray: Resize((PA_Variable*)block->fParam1, block->fParam2); return true;
            default: return false;
        }
    }

    static void Call4D(int selector, EngineBlock* block) {
        FakeHost* host = current_;
        Call call;
        call.selector = selector;
        memcpy((void*)&call.in, block, sizeof call.in);
        host->calls.push_back(call);
        auto found = host->answer.find(selector);
        if (found != host->answer.end()) found->second(block);
        else host->Builtin(selector, block);
    }
};

// What a request addresses.
template <class T>
T* At(int64_t address) {
    return (T*)(intptr_t)address;
}

#endif
