#include <climits>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

// Places -----------------------------------------------------------------------------------------------------------

static void* ParameterAt(PluginBlock* block, short index) {  // [1..]; null = none
    return block == nullptr || block->parameters == nullptr || index < 1 ? nullptr : block->parameters[index - 1];
}

template <class T>
static T GetParameter(PluginBlock* block, short index) {
    const void* parameter = ParameterAt(block, index);
    return parameter == nullptr ? T() : ZR_ReadAt<T>(parameter);
}

template <class T>
static void SetParameter(PluginBlock* block, short index, T value) {
    void* parameter = ParameterAt(block, index);
    if (parameter != nullptr) ZR_WriteAt(parameter, value);
}

template <class T>
static void SetResult(PluginBlock* block, T value) {
    if (block != nullptr && block->result != nullptr) ZR_WriteAt(block->result, value);
}

// Readers ----------------------------------------------------------------------------------------------------------

int PA_GetLongParameter(PluginBlock* block, short index) { return GetParameter<int32_t>(block, index); }

double PA_GetDoubleParameter(PluginBlock* block, short index) { return GetParameter<double>(block, index); }

void PA_GetDateParameter(PluginBlock* block, short index, short* day, short* month, short* year) {
    ZR_StoreDate(day, month, year, GetParameter<PA_Date>(block, index));
}

PA_Unistring* PA_GetStringParameter(PluginBlock* block, short index) {
    return (PA_Unistring*)ParameterAt(block, index);
}

long PA_GetBlobParameter(PluginBlock* block, short index, void* target) {
    return ToUserData(GetParameter<PA_Handle>(block, index), target);
}

PA_Picture PA_GetPictureParameter(PluginBlock* block, short index) { return GetParameter<PA_Picture>(block, index); }

PA_Variable PA_GetVariableParameter(PluginBlock* block, short index) {
    const void* parameter = ParameterAt(block, index);
    return parameter == nullptr ? ZR_UndefinedVariable() : ZR_ReadAt<PA_Variable>(parameter);
}

PointerBlock* PA_GetPointerParameter(PluginBlock* block, short index) {
    if (!PA_IsCompiled(/*running*/ true)) return (PointerBlock*)ParameterAt(block, index);
    PA_Handle handle = PA_GetPointerVariable((const PA_Variable*)ParameterAt(block, index));
    return handle == nullptr ? nullptr : (PointerBlock*)*handle;
}

// Writers ----------------------------------------------------------------------------------------------------------

void PA_SetLongParameter(PluginBlock* block, short index, int value) { SetParameter<int32_t>(block, index, value); }

void PA_SetDoubleParameter(PluginBlock* block, short index, double value) { SetParameter(block, index, value); }

void PA_SetDateParameter(PluginBlock* block, short index, short day, short month, short year) {
    SetParameter<PA_Date>(block, index, {day, month, year});
}

void PA_SetBlobParameter(PluginBlock* block, short index, const void* bytes, long size) {
    if (ParameterAt(block, index) == nullptr) return;
    PA_Handle old = GetParameter<PA_Handle>(block, index);
    SetParameter(block, index, FromUserData(bytes, (int)(size < 0 ? 0 : size > INT_MAX ? INT_MAX : size)));
    ZR_FreeHandle(old);
}

void PA_SetPictureParameter(PluginBlock* block, short index, PA_Picture picture) {
    if (ParameterAt(block, index) == nullptr) return ZR_FreePicture(picture);
    PA_Picture old = GetParameter<PA_Picture>(block, index);
    SetParameter(block, index, picture);
    ZR_FreePicture(old);
}

// Bytes behind the filler that a kind uses.
// Required: integers, objects, collections and object arrays have no rule: of them only kind and filler are copied.
static long ValueBytes(const PA_Variable* variable) {
    if (PA_IsArrayVariable(variable)) return sizeof(PA_ArrayValue);
    switch (variable->fType) {
        case eVK_Real:
        case eVK_Picture:
        case eVK_Pointer: return 8;
        case eVK_Date: return sizeof(PA_Date);
        case eVK_Boolean: return 1;
        case eVK_Longint:
        case eVK_Time: return 4;
        case eVK_Blob: return offsetof(PA_ArrayValue, fCurrent);
        case eVK_Text: return sizeof(PA_Unistring);
        default: return 0;
    }
}

void PA_SetVariableParameter(PluginBlock* block, short index, PA_Variable* variable, bool clearOld) {
    PA_Variable* parameter = (PA_Variable*)ParameterAt(block, index);
    if (parameter == nullptr || variable == nullptr) return;
    if (clearOld) PA_ClearVariable(parameter);
    memmove(parameter, variable, offsetof(PA_Variable, uValue) + ValueBytes(variable));
}

void PA_ReturnLong(PluginBlock* block, long value) { SetResult<int64_t>(block, value); }

void PA_ReturnDouble(PluginBlock* block, double value) { SetResult(block, value); }

void PA_ReturnDate(PluginBlock* block, short day, short month, short year) {
    SetResult<PA_Date>(block, {day, month, year});
}

void PA_ReturnPicture(PluginBlock* block, PA_Picture picture) {
    if (block == nullptr || block->result == nullptr) return ZR_FreePicture(picture);
    SetResult(block, picture);
}

// Areas ------------------------------------------------------------------------------------------------------------

static constexpr int kEventsWithProperties[] = {600, 602, 16, 26};

void PA_GetPluginProperties(PluginBlock* block, PA_PluginProperties* properties) {
    int event = PA_GetLongParameter(block, 1);
    sErrorCode = ZR_ERR_WRONG_EVENT;
    for (int known : kEventsWithProperties)
        if (event == known) sErrorCode = ZR_ERR_NONE;
    if (sErrorCode == ZR_ERR_NONE) PA_MoveBlock(ParameterAt(block, 2), properties, sizeof *properties);
}

void PA_CustomizeDesignMode(PA_Picture picture, bool frame) {
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(picture);
    block.fParam2 = frame;
    ZR_CallHost(ZR_SEL_CustomizeDesignMode, &block);
}
