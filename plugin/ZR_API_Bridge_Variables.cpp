#include <climits>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

// Life -------------------------------------------------------------------------------------------------------------

PA_Variable ZR_UndefinedVariable() {
    PA_Variable variable;
    memset(&variable, 0, sizeof variable);
    variable.fType = eVK_Undefined;
    return variable;
}

PA_Variable ZR_TextVariable(const PA_Unistring* text) {
    PA_Variable variable = PA_CreateVariable(eVK_Text);
    if (text != nullptr) variable.uValue.fText = *text;
    return variable;
}

PA_Unistring ZR_TakeString(PA_Variable* variable) {
    PA_Unistring string = {0, nullptr, nullptr};
    if (ZR_IsTextRecord(variable)) {
        string = variable->uValue.fText;
        variable->fType = eVK_Undefined;
    } else {
        ZR_FreeVariable(variable);
    }
    return string;
}

// Required: pointer arrays and arrays of arrays start without an element 0.
static constexpr bool StartsWithElement(int kind) {
    return ZR_HostArrayElementSize(kind) > 0 && kind != eVK_ArrayPointer;
}

PA_Variable PA_CreateVariable(int kind) {
    PA_Variable variable;
    memset(&variable, 0, sizeof variable);
    variable.fType = (uint8_t)kind;
    if (StartsWithElement(kind)) variable.uValue.fArray.fData = PA_NewHandle(ZR_HostArrayElementSize(kind));
    return variable;
}

void PA_ClearVariable(PA_Variable* variable) {
    if (variable == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(variable);
    ZR_CallHost(ZR_SEL_ClearVariable, &block);
}

void PA_CopyVariable(const PA_Variable* source, PA_Variable* target) {
    if (source == nullptr || target == nullptr || source == target) return;
    *target = ZR_UndefinedVariable();
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(source);
    block.fParam2 = ZR_AddressOf(target);
    ZR_CallHost(ZR_SEL_CopyVariable, &block);
}

// Variables of the host --------------------------------------------------------------------------------------------

// Sets the request's name, without the <> of an interprocess variable, and tells the selector.
static int NameRequest(EngineBlock* block, const PA_Unichar* name, int process, int interprocess) {
    bool shared = name != nullptr && name[0] == '<' && name[1] == '>';
    ZR_CopyName(block->fName, shared ? name + 2 : name);
    return shared ? interprocess : process;
}

PA_Variable PA_GetVariable(const PA_Unichar* name) {
    PA_Variable value = ZR_UndefinedVariable();
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(&value);
    ZR_CallHost(NameRequest(&block, name, ZR_SEL_GetProcessVariable, ZR_SEL_GetInterprocessVariable), &block);
    return value;
}

void PA_SetVariable(const PA_Unichar* name, const PA_Variable* value, int create) {
    if (value == nullptr) return;
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(value);
    block.fFlags = create;
    ZR_CallHost(NameRequest(&block, name, ZR_SEL_SetProcessVariable, ZR_SEL_SetInterprocessVariable), &block);
}

// Kinds ------------------------------------------------------------------------------------------------------------

int UnifyVarKind(int kind) {
    switch (kind) {
        case eVK_OldString:
        case eVK_OldText:
        case eVK_OldUnicode: return eVK_Text;
        case eVK_OldArrayText:
        case eVK_OldArrayString: return eVK_ArrayText;
        default: return kind;
    }
}

int PA_GetVariableKind(const PA_Variable* variable) {
    return variable == nullptr ? eVK_Undefined : UnifyVarKind(variable->fType);
}

// A value of exactly this kind. A reference or an operator, told by the filler, holds no value.
static bool IsKind(const PA_Variable* variable, int kind) {
    return variable != nullptr && variable->fType == kind && variable->fFiller == 0;
}

static bool IsWholeNumber(const PA_Variable* variable) {
    return IsKind(variable, eVK_Longint) || IsKind(variable, eVK_Integer);
}

// Readers ----------------------------------------------------------------------------------------------------------

int PA_GetLongintVariable(const PA_Variable* variable) {
    return IsWholeNumber(variable) ? variable->uValue.fLongint : 0;
}

double PA_GetRealVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Real) ? variable->uValue.fReal : 0.0;
}

bool PA_GetBooleanVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Boolean) && variable->uValue.fBoolean != 0;
}

int PA_GetTimeVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Time) ? variable->uValue.fLongint : 0;
}

void PA_GetDateVariable(const PA_Variable* variable, short* day, short* month, short* year) {
    ZR_StoreDate(day, month, year, IsKind(variable, eVK_Date) ? variable->uValue.fDate : PA_Date{0, 0, 0});
}

PA_Unistring PA_GetStringVariable(const PA_Variable* variable) {
    if (!ZR_IsTextRecord(variable)) return {0, nullptr, nullptr};
    return PA_CreateUnistringWithLength(variable->uValue.fText.fString, variable->uValue.fText.fLength);
}

long PA_GetBlobVariable(const PA_Variable* variable, void* target) {
    if (!IsKind(variable, eVK_Blob)) return 0;
    const PA_ArrayValue& blob = variable->uValue.fArray;
    if (blob.fSize <= 0 || blob.fData == nullptr || *blob.fData == nullptr) return 0;
    PA_MoveBlock(*blob.fData, target, blob.fSize);
    return blob.fSize;
}

PA_Picture PA_GetPictureVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Picture) ? variable->uValue.fPicture : nullptr;
}

PA_ObjectRef PA_GetObjectVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Object) ? variable->uValue.fObject : nullptr;
}

PA_CollectionRef PA_GetCollectionVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Collection) ? variable->uValue.fCollection : nullptr;
}

PA_Handle PA_GetPointerVariable(const PA_Variable* variable) {
    return IsKind(variable, eVK_Pointer) ? variable->uValue.fPointer : nullptr;
}

// Writers ----------------------------------------------------------------------------------------------------------

void PA_SetLongintVariable(PA_Variable* variable, int value) {
    if (IsWholeNumber(variable)) variable->uValue.fLongint = value;
}

void PA_SetRealVariable(PA_Variable* variable, double value) {
    if (IsKind(variable, eVK_Real)) variable->uValue.fReal = value;
}

void PA_SetBooleanVariable(PA_Variable* variable, bool value) {
    if (IsKind(variable, eVK_Boolean)) variable->uValue.fBoolean = value;
}

void PA_SetTimeVariable(PA_Variable* variable, int seconds) {
    if (IsKind(variable, eVK_Time)) variable->uValue.fLongint = seconds;
}

void PA_SetDateVariable(PA_Variable* variable, short day, short month, short year) {
    if (IsKind(variable, eVK_Date)) variable->uValue.fDate = {day, month, year};
}

void PA_SetStringVariable(PA_Variable* variable, PA_Unistring string) {
    if (ZR_IsTextRecord(variable)) {
        PA_Unistring old = variable->uValue.fText;
        variable->uValue.fText = string;
        string = old.fString == string.fString ? PA_Unistring{0, nullptr, nullptr} : old;
    }
    ZR_FreeUnistring(&string);
}

void PA_SetBlobVariable(PA_Variable* variable, const void* bytes, long size) {
    if (!IsKind(variable, eVK_Blob)) return;
    if (bytes == nullptr || size < 0) size = 0;
    if (size > INT_MAX) size = INT_MAX;
    PA_Handle fresh = size > 0 ? PA_NewHandle(size) : nullptr;
    if (fresh != nullptr) PA_MoveBlock(bytes, *fresh, size);
    PA_Handle old = variable->uValue.fArray.fData;
    variable->uValue.fArray = {fresh == nullptr ? 0 : (int32_t)size, fresh, 0};
    ZR_FreeHandle(old);
}

void PA_SetPictureVariable(PA_Variable* variable, PA_Picture picture) {
    if (!IsKind(variable, eVK_Picture)) return ZR_FreePicture(picture);
    PA_Picture old = variable->uValue.fPicture;
    variable->uValue.fPicture = picture;
    ZR_FreePicture(old);  // the same picture as well: a duplicate may be one more count on it
}

void PA_SetObjectVariable(PA_Variable* variable, PA_ObjectRef object) {
    if (IsKind(variable, eVK_Object)) variable->uValue.fObject = object;
}

void PA_SetCollectionVariable(PA_Variable* variable, PA_CollectionRef collection) {
    if (IsKind(variable, eVK_Collection)) variable->uValue.fCollection = collection;
}

void PA_SetPointerVariable(PA_Variable* variable, PA_Handle pointer) {
    if (!IsKind(variable, eVK_Pointer)) return ZR_FreeHandle(pointer);
    PA_Handle old = variable->uValue.fPointer;
    variable->uValue.fPointer = pointer;
    if (old != pointer) ZR_FreeHandle(old);
}

// References and operators -----------------------------------------------------------------------------------------

void PA_SetTableFieldVariable(PA_Variable* variable, long table, long field) {
    if (variable == nullptr) return;
    *variable = ZR_UndefinedVariable();
    variable->fFiller = 1;
    variable->uValue.fTableField = {(int16_t)table, (int16_t)field};
}

void PA_SetOperatorVariable(PA_Variable* variable, int code) {
    if (variable == nullptr) return;
    *variable = PA_CreateVariable(eVK_Operator);
    variable->fFiller = 1;
    variable->uValue.fOperator = (uint8_t)code;
}

void PA_SetVariableOrFieldReference(PA_Variable* variable, const PointerBlock* target) {
    if (variable == nullptr || target == nullptr) return;
    if (PA_GetPointerKind(target) != 0) return PA_SetTableFieldVariable(variable, target->fTable, target->fField);
    *variable = PA_CreateVariable(eVK_Pointer);
    variable->fFiller = 1;
    variable->uValue.fPointer = ZR_NewPointerHandle(target);
}
