// The BLOB array format, and the members of ZR_Handle that exchange it with the host's BLOBs.
#include "core/ZR_API_BLOBArray.h"

#include <algorithm>
#include <climits>
#include <new>

#include "plugin/ZR_API_Bridge.h"

// Format -----------------------------------------------------------------------------------------------------------

// Bytes of a block; a count without storage has none.
static long BlockSize(const ZR_Handle& block) { return block.data ? std::max(block.count * block.elementSize, 0L) : 0; }

void ZR_Handle::CreateBLOBArray(const ZR_Handle* handles, long n) {
    Create(1, 0);
    long sum = 0, blocks = handles ? std::max(n, 0L) : 0;
    for (long i = 0; i < blocks; ++i) sum += BlockSize(handles[i]);
    Secure(kBLOBArrayHeader + 4 * blocks + sum);
    AddLong(kBLOBArrayMagic);
    AddLong(handles || n < 0 ? n : 0);
    AddLong(sum);
    for (long i = 0; i < blocks; ++i) {
        long size = BlockSize(handles[i]);
        AddLong(size);
        AddCharBuffer(handles[i].data, size);
    }
}

// The block at the cursor, copied into an empty handle. Guard: a size that is negative or leads behind the end leaves
// handle and cursor alone.
static void ReadBlock(const ZR_Handle* source, long* cursor, ZR_Handle* block) {
    long at = *cursor, size = source->ReadLong(&at);
    at = *cursor + 4;
    if (size < 0 || at > source->count || size > source->count - at) return;
    block->AddCharBuffer(source->data + at, size);
    *cursor = at + size;
}

ZR_Handle* ZR_Handle::ExpandBLOBArray(long* n) const {
    *n = 0;
    long cursor = 0;
    if (count < kBLOBArrayHeader || !data || elementSize < 1 || ReadLong(&cursor) != kBLOBArrayMagic) return nullptr;
    long elementCount = ReadLong(&cursor), totalSize = ReadLong(&cursor);
    // Guard: with neither number negative the list is no longer than the bytes that carry it.
    if (elementCount < 0 || totalSize < 0 || totalSize + kBLOBArrayHeader + 4 * elementCount != count) return nullptr;
    auto blocks = new (std::nothrow) ZR_Handle[static_cast<size_t>(elementCount)];
    if (!blocks) return nullptr;
    for (long i = 0; i < elementCount; ++i) {
        blocks[i].Create(1, 0);
        ReadBlock(this, &cursor, &blocks[i]);
    }
    *n = elementCount;
    return blocks;
}

// Host BLOBs -------------------------------------------------------------------------------------------------------

// Storage of exactly size bytes in an empty handle; null = refused, or no size.
static char* StorageFor(ZR_Handle* handle, long size) {
    handle->Create(1, std::max(size, 0L));
    return handle->data;
}

static void AppendHostHandle(ZR_Handle* handle, PA_Handle bytes, long size) {
    if (!bytes || size < 1) return;
    handle->AddCharBuffer(PA_LockHandle(bytes), size);
    PA_UnlockHandle(bytes);
}

void ZR_Handle::CreateFrom4DParameter(PluginBlock* block, short index) {
    bool given = block && block->parameters && index >= 1 && block->parameters[index - 1];
    PA_Handle blob = nullptr;
    if (given) memcpy(&blob, block->parameters[index - 1], sizeof blob);
    if (char* to = StorageFor(this, ToUserData(blob, nullptr))) ToUserData(blob, to);
}

void ZR_Handle::CreateFrom4DVariable(PA_Variable* variable) {
    if (char* to = StorageFor(this, PA_GetBlobVariable(variable, nullptr))) PA_GetBlobVariable(variable, to);
}

void ZR_Handle::CreateFrom4DArray(PA_Variable* array, long index) {
    int size = 0;
    Create(1, 0);
    PA_Handle blob = PA_GetBlobInArray(array, index, &size);  // borrowed from the array
    AppendHostHandle(this, blob, size);
}

void ZR_Handle::CreateFrom4DBlobField(short table, short field) {
    if (char* to = StorageFor(this, PA_GetBlobField(table, field, nullptr))) PA_GetBlobField(table, field, to);
}

void ZR_Handle::CreateFrom4DPictureField(short table, short field) {
    Create(1, 0);
    PA_Picture picture = PA_GetPictureField(table, field);
    PA_Handle bytes = PA_NewHandle(0);
    PA_Unistring type = PA_GetPictureData(picture, 0, bytes);
    PA_DisposeUnistring(&type);
    AppendHostHandle(this, bytes, bytes ? PA_GetHandleSize(bytes) : 0);
    PA_DisposeHandle(bytes);
    PA_DisposePicture(picture);
}

static int HostSize(long size) { return static_cast<int>(std::clamp<long>(size, 0, INT_MAX)); }

void ZR_Handle::To4DBlobField(short table, short field) {
    PA_SetBlobField(table, field, data, data ? HostSize(count) : 0);
}

void ZR_Handle::To4DParameter(PluginBlock* block, short index) {
    char dummy = 0;
    PA_SetBlobParameter(block, index, data ? data : &dummy, data ? HostSize(count) : 0);
}

void ZR_Handle::To4DArray(PA_Variable* array, long index) {
    if (count < 1 || !data) return;  // Required: an empty handle does not clear the element
    PA_Handle blob = PA_NewHandle(HostSize(count));
    if (!blob) return;
    PA_MoveBlock(data, PA_LockHandle(blob), HostSize(count));
    PA_UnlockHandle(blob);
    PA_SetBlobInArray(array, index, HostSize(count), blob);
}

PA_Variable ZR_Handle::CreateVariable() {
    PA_Variable variable = PA_CreateVariable(eVK_Blob);
    if (data) PA_SetBlobVariable(&variable, data, HostSize(count));
    return variable;
}

// Numbers in host values -------------------------------------------------------------------------------------------

// Truncated to 64 bits; guard: what they cannot hold ends at the nearest end, no number is 0.
static long Truncated(double value) {
    if (!(value > -9223372036854775808.0)) return value == value ? LONG_MIN : 0;
    return value < 9223372036854775808.0 ? static_cast<long>(value) : LONG_MAX;
}

void ZR_SetNumInArray(PA_Variable* array, long index, double value) {
    if (!array) return;
    PA_ArrayValue elements = array->uValue.fArray;
    if (index < 0 || index > elements.fSize) return;
    int kind = array->fType;
    bool number =
        kind == eVK_ArrayReal || kind == eVK_ArrayInteger || kind == eVK_ArrayLongint || kind == eVK_ArrayTime;
    if (!number || !elements.fData || !*elements.fData) return;
    char* at = *elements.fData + index * ZR_HostArrayElementSize(kind);
    long whole = Truncated(value);  // the integers take its low bits
    memcpy(at, kind == eVK_ArrayReal ? static_cast<void*>(&value) : &whole,
           static_cast<size_t>(ZR_HostArrayElementSize(kind)));
}

double ZR_GetNumInArray(PA_Variable* array, long index) {
    switch (array ? array->fType : static_cast<int>(eVK_Undefined)) {
        case eVK_ArrayReal: return PA_GetRealInArray(array, index);
        case eVK_ArrayInteger: return PA_GetIntegerInArray(array, index);
        case eVK_ArrayLongint:
        case eVK_ArrayTime: return PA_GetLongintInArray(array, index);
        default: return 0;
    }
}

double ZR_GetNumFromVariable(PA_Variable* variable) {
    switch (variable ? variable->fType : static_cast<int>(eVK_Undefined)) {
        case eVK_Real: return variable->uValue.fReal;
        case eVK_Longint: return variable->uValue.fLongint;
        case eVK_Time: return PA_GetTimeVariable(variable);
        case eVK_Integer:  // Required: the value is taken of a longint only
        default: return 0;
    }
}

bool ZR_IsArray(PA_Variable* variable) {
    switch (variable ? UnifyVarKind(variable->fType) : static_cast<int>(eVK_Undefined)) {
        case eVK_ArrayReal:
        case eVK_ArrayInteger:
        case eVK_ArrayLongint:
        case eVK_ArrayDate:
        case eVK_ArrayPicture:
        case eVK_ArrayPointer:
        case eVK_ArrayBoolean:
        case eVK_ArrayText: return true;
        default: return false;
    }
}

bool ZR_Is2DArray(PA_Variable* variable) { return variable && UnifyVarKind(variable->fType) == eVK_ArrayOfArray; }
