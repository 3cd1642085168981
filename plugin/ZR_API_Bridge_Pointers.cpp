#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

PA_Handle ZR_NewPointerHandle(const PointerBlock* pointer) {
    PA_Handle handle = PA_NewHandle(sizeof(PointerBlock));
    if (handle != nullptr) PA_MoveBlock(pointer, *handle, sizeof(PointerBlock));
    return handle;
}

PA_Handle PA_GetPointerByName(const PA_Unichar* name) {
    EngineBlock block;
    ZR_CopyName(block.fName, name);
    block.fHandle = nullptr;
    return ZR_CallHost(ZR_SEL_PointerByName, &block) ? block.fHandle : nullptr;
}

int PA_GetPointerKind(const PointerBlock* pointer) {
    if (pointer == nullptr) return -1;
    if (pointer->fIsVariable == 1) return 0;
    return pointer->fField != 0 ? 2 : 1;
}

// Field types as the host numbers them, and the kinds of their values.
static constexpr struct {
    short type;
    short kind;
} kFieldKinds[] = {
    {0, eVK_Text},    {1, eVK_Real},    {2, eVK_Text},    {3, eVK_Picture}, {4, eVK_Date},
    {6, eVK_Boolean}, {8, eVK_Integer}, {9, eVK_Longint}, {11, eVK_Time},   {25, eVK_Longint},
    {30, eVK_Blob},   {35, eVK_Real},   {38, eVK_Object},
};

static int KindOfFieldType(short type) {
    for (const auto& row : kFieldKinds)
        if (row.type == type) return row.kind;
    return eVK_Undefined;
}

// Runs a call on a copy of the pointer in a handle, which the host asks for; the error is that of the call.
static bool CallWithPointer(int selector, const PointerBlock* pointer, EngineBlock* block) {
    block->fHandle = ZR_NewPointerHandle(pointer);
    if (block->fHandle == nullptr) return false;
    PA_Handle handle = block->fHandle;
    bool ok = ZR_CallHost(selector, block);
    ZR_FreeHandle(handle);
    return ok;
}

void PA_GetPointerValueProperties(const PointerBlock* pointer, int* kind, long* element, long* fieldLength) {
    int foundKind = eVK_Undefined;
    long foundElement = 0, foundLength = 0;
    switch (PA_GetPointerKind(pointer)) {
        case 0: {
            EngineBlock block;
            block.fParam1 = eVK_Undefined;
            block.fParam2 = block.fParam3 = 0;
            block.fParam4 = ZR_StructureRequest();
            if (!CallWithPointer(ZR_SEL_PointerProperties, pointer, &block)) break;
            foundKind = UnifyVarKind((int)block.fParam1);
            foundElement = block.fParam2;
            foundLength = block.fParam3;
            break;
        }
        case 2: {
            short type;
            PA_GetFieldProperties(pointer->fTable, pointer->fField, &type, &foundLength, nullptr, nullptr, nullptr);
            foundKind = KindOfFieldType(type);
            break;
        }
    }
    if (kind != nullptr) *kind = foundKind;
    if (element != nullptr) *element = foundElement;
    if (fieldLength != nullptr) *fieldLength = foundLength;
}

PA_Variable PA_GetPointerValue(const PointerBlock* pointer) {
    PA_Variable value = ZR_UndefinedVariable();
    if (pointer == nullptr) return value;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(&value);
    CallWithPointer(ZR_SEL_GetPointerValue, pointer, &block);
    return value;
}

void PA_SetPointerValue(const PointerBlock* pointer, const PA_Variable* value) {
    if (pointer == nullptr || value == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(value);
    CallWithPointer(ZR_SEL_SetPointerValue, pointer, &block);
}
