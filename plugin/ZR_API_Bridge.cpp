#include "plugin/ZR_API_Bridge.h"

#include <climits>

#include "plugin/ZR_API_Bridge_Private.h"

constinit thread_local short sErrorCode = ZR_ERR_NONE;

// The call ---------------------------------------------------------------------------------------------------------

bool ZR_CallHost(int selector, EngineBlock* block) {
    block->fError = ZR_ERR_NONE;
    if (gCall4D != nullptr) gCall4D(selector, block);
    else block->fError = ZR_ERR_UNKNOWN_SELECTOR;  // no host yet: every call ends in its neutral value
    sErrorCode = block->fError;
    return sErrorCode == ZR_ERR_NONE;
}

void ZR_CopyName(PA_Unichar* target, const PA_Unichar* name) {
    if (target == nullptr) return;
    long length = 0;
    if (name != nullptr)
        for (; length < kNameUnits && name[length] != 0; length++) target[length] = name[length];
    target[length] = 0;
}

void ZR_FreeUnistring(PA_Unistring* string) {
    if (string == nullptr) return;
    short kept = sErrorCode;
    if (string->fString != nullptr || string->fReserved != nullptr) PA_DisposeUnistring(string);
    memset(string, 0, sizeof *string);
    sErrorCode = kept;
}

void ZR_FreeHandle(PA_Handle handle) {
    short kept = sErrorCode;
    PA_DisposeHandle(handle);
    sErrorCode = kept;
}

void ZR_FreePicture(PA_Picture picture) {
    short kept = sErrorCode;
    PA_DisposePicture(picture);
    sErrorCode = kept;
}

void ZR_FreeVariable(PA_Variable* variable) {
    short kept = sErrorCode;
    PA_ClearVariable(variable);
    sErrorCode = kept;
}

// Errors and version -----------------------------------------------------------------------------------------------

int PA_GetLastError() { return sErrorCode; }

unsigned int PA_GetVersion() { return Current4DVersion; }

// The host's version, and in flags its state; both 0 after an error.
static int AskHostVersion(int* flags) {
    EngineBlock block;
    block.fParam1 = 0;
    block.fParam3 = ZR_HOST_VERSION_REQUEST;
    block.fFlags = 0;
    bool ok = ZR_CallHost(ZR_SEL_HostVersion, &block);
    *flags = ok ? block.fFlags : 0;
    return ok ? (int)block.fParam1 : 0;
}

int PA_Get4DVersion() {
    int flags;
    return AskHostVersion(&flags);
}

bool PA_IsCompiled(bool running) {
    int flags;
    AskHostVersion(&flags);
    return (flags & (running ? ZR_HOST_COMPILED : ZR_HOST_DATABASE_COMPILED)) != 0;
}

// Host memory ------------------------------------------------------------------------------------------------------

// One operation of the host's memory manager. A null handle is no call and no error.
static bool CallHandle(int operation, PA_Handle handle, long value, EngineBlock* block) {
    block->fHandle = handle;
    block->fParam1 = operation;
    block->fParam2 = value;
    if (handle == nullptr && operation != ZR_HANDLE_NEW) {
        sErrorCode = ZR_ERR_NONE;
        return false;
    }
    return ZR_CallHost(ZR_SEL_Handle, block);
}

PA_Handle PA_NewHandle(long size) {
    EngineBlock block;
    return CallHandle(ZR_HANDLE_NEW, nullptr, size < 0 ? 0 : size, &block) ? block.fHandle : nullptr;
}

void PA_DisposeHandle(PA_Handle handle) {
    EngineBlock block;
    CallHandle(ZR_HANDLE_DISPOSE, handle, 0, &block);
}

long PA_GetHandleSize(PA_Handle handle) {
    EngineBlock block;
    return CallHandle(ZR_HANDLE_GET_SIZE, handle, 0, &block) ? block.fParam2 : 0;
}

bool PA_SetHandleSize(PA_Handle handle, long size) {
    EngineBlock block;
    return CallHandle(ZR_HANDLE_SET_SIZE, handle, size < 0 ? 0 : size, &block);
}

char* PA_LockHandle(PA_Handle handle) {
    EngineBlock block;
    return CallHandle(ZR_HANDLE_LOCK, handle, 0, &block) ? (char*)ZR_PointerOf(block.fParam2) : nullptr;
}

void PA_UnlockHandle(PA_Handle handle) {
    EngineBlock block;
    CallHandle(ZR_HANDLE_UNLOCK, handle, 0, &block);
}

long PA_GetHandleState(PA_Handle handle) {
    EngineBlock block;
    return CallHandle(ZR_HANDLE_GET_STATE, handle, 0, &block) ? block.fParam2 : 0;
}

void PA_SetHandleState(PA_Handle handle, long state) {
    EngineBlock block;
    CallHandle(ZR_HANDLE_SET_STATE, handle, state, &block);
}

void PA_MoveBlock(const void* source, void* target, long length) {
    if (source != nullptr && target != nullptr && length > 0) memmove(target, source, (size_t)length);
}

PA_Handle FromUserData(const void* bytes, int size) {
    if (bytes == nullptr) return nullptr;
    EngineBlock block;
    block.fHandle = nullptr;
    block.fParam1 = ZR_USERDATA_FROM;
    block.fParam2 = ZR_AddressOf(bytes);
    block.fParam3 = size < 0 ? 0 : size;
    return ZR_CallHost(ZR_SEL_UserData, &block) ? block.fHandle : nullptr;
}

int ToUserData(PA_Handle handle, void* bytes) {
    if (handle == nullptr) return 0;
    EngineBlock block;
    block.fHandle = handle;
    block.fParam1 = ZR_USERDATA_TO;
    block.fParam2 = ZR_AddressOf(bytes);
    block.fParam3 = 0;
    return ZR_CallHost(ZR_SEL_UserData, &block) ? (int)block.fParam3 : 0;
}

// Unicode strings --------------------------------------------------------------------------------------------------

static long ClampLength(const PA_Unichar* units, long length) {
    if (units == nullptr || length < 0) return 0;
    return length > INT_MAX ? INT_MAX : length;
}

// Hands units to a call that fills the record.
static bool FillUnistring(int selector, PA_Unistring* target, const PA_Unichar* units, long length) {
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(target);
    block.fParam2 = ZR_AddressOf(units);
    block.fLength2 = ClampLength(units, length);
    return ZR_CallHost(selector, &block);
}

PA_Unistring PA_CreateUnistring(const PA_Unichar* text) {
    return PA_CreateUnistringWithLength(text, PA_GetUnicharsLength(text));
}

PA_Unistring PA_CreateUnistringWithLength(const PA_Unichar* units, long length) {
    PA_Unistring string = {0, nullptr, nullptr};
    FillUnistring(ZR_SEL_CreateUnistring, &string, units, length);
    return string;
}

void PA_SetUnistring(PA_Unistring* target, const PA_Unichar* text) {
    PA_SetUnistringWithLength(target, text, PA_GetUnicharsLength(text));
}

void PA_SetUnistringWithLength(PA_Unistring* target, const PA_Unichar* units, long length) {
    if (target != nullptr) FillUnistring(ZR_SEL_SetUnistring, target, units, length);
}

void PA_DisposeUnistring(PA_Unistring* string) {
    if (string == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(string);
    ZR_CallHost(ZR_SEL_DisposeUnistring, &block);
    memset(string, 0, sizeof *string);
}

long PA_GetUnicharsLength(const PA_Unichar* text) {
    long length = 0;
    if (text != nullptr)
        while (text[length] != 0) length++;
    return length;
}

int PA_CompareUniBuffers(const PA_Unichar* left, long leftLength, const PA_Unichar* right, long rightLength,
                         bool diacritic, bool wildcard) {
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(left);
    block.fLength1 = ClampLength(left, leftLength);
    block.fParam2 = ZR_AddressOf(right);
    block.fLength2 = ClampLength(right, rightLength);
    block.fParam3 = diacritic;
    block.fParam4 = wildcard;
    if (!ZR_CallHost(ZR_SEL_CompareUnibuffers, &block)) return 0;
    return block.fParam1 < 0 ? -1 : block.fParam1 > 0;
}

long PA_ConvertCharsetToCharset(const void* source, long sourceBytes, int sourceCharset, void* target, long targetBytes,
                                int targetCharset) {
    if (source == nullptr || sourceBytes < 0) sourceBytes = 0;
    if (target == nullptr || targetBytes < 0) targetBytes = 0;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(source);
    block.fLength1 = sourceBytes;
    block.fParam3 = sourceCharset;
    block.fParam2 = ZR_AddressOf(target);
    block.fLength2 = targetBytes;
    block.fParam4 = targetCharset;
    if (!ZR_CallHost(ZR_SEL_ConvertCharset, &block)) return 0;
    // A count outside the room is cut to it: callers trust it with their buffer.
    return block.fLength2 < 0 ? 0 : block.fLength2 > targetBytes ? targetBytes : block.fLength2;
}

void PA_LocaliseString(const PA_Unichar* key, PA_Unistring* result, int flags) {
    if (result == nullptr) return;
    memset(result, 0, sizeof *result);
    EngineBlock block;
    ZR_CopyName(block.fName, key);
    block.fParam1 = ZR_AddressOf(result);
    block.fFlags = flags;
    ZR_CallHost(ZR_SEL_LocaliseString, &block);
}

PA_Unistring PA_LocaliseStringByID(long list, long number, int flags) {
    PA_Unistring result = {0, nullptr, nullptr};
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(&result);
    block.fParam2 = list;
    block.fParam3 = number;
    block.fFlags = flags;
    ZR_CallHost(ZR_SEL_LocaliseStringByID, &block);
    return result;
}

// Processes --------------------------------------------------------------------------------------------------------

long PA_GetCurrentProcessNumber() {
    EngineBlock block;
    block.fParam1 = 0;
    return ZR_CallHost(ZR_SEL_CurrentProcessNumber, &block) ? block.fParam1 : 0;
}

static void Yield(bool absolute) {
    EngineBlock block;
    block.fFlags = absolute;
    ZR_CallHost(ZR_SEL_Yield, &block);
}

void PA_Yield() { Yield(/*absolute*/ false); }
void PA_YieldAbsolute() { Yield(/*absolute*/ true); }

void PA_RunInMainProcess(void (*function)(void*), void* argument) {
    if (function == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf((const void*)function);
    block.fParam2 = ZR_AddressOf(argument);
    ZR_CallHost(ZR_SEL_RunInMainProcess, &block);
}
