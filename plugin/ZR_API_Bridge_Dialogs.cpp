#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Bridge_Private.h"

static constexpr long kClosed = 2, kNoElement = -1;

void PA_Alert(const PA_Unichar* text) {
    EngineBlock block;
    block.fParam1 = ZR_AddressOf(text);
    block.fLength1 = PA_GetUnicharsLength(text);
    ZR_CallHost(ZR_SEL_Alert, &block);
}

// Life -------------------------------------------------------------------------------------------------------------

// left, top, right, bottom from the low end, 16 bits each.
static int64_t PackBounds(PA_Rect bounds) {
    return (int64_t)((uint64_t)(uint16_t)bounds.fLeft | (uint64_t)(uint16_t)bounds.fTop << 16 |
                     (uint64_t)(uint16_t)bounds.fRight << 32 | (uint64_t)(uint16_t)bounds.fBottom << 48);
}

PA_Dial4D PA_OpenDialog(const PA_Unichar* table, const PA_Unichar* form, const PA_Unichar* title, short windowKind,
                        PA_Rect bounds, bool centred) {
    short number = 0, field;
    if (table != nullptr) PA_GetTableAndFieldNumbers(table, &number, &field);
    EngineBlock block;
    block.fHandle = nullptr;
    block.fParam1 = number;
    ZR_CopyName(block.fName, form);
    block.fParam2 = ZR_AddressOf(title);
    block.fLength2 = PA_GetUnicharsLength(title);
    block.fParam3 = windowKind;
    block.fParam4 = PackBounds(bounds);
    block.fFlags = centred;
    return ZR_CallHost(ZR_SEL_OpenDialog, &block) ? block.fHandle : nullptr;
}

// An error reads as closed, so that no caller waits for a dialog that nobody can answer.
long PA_ModalDialog(PA_Dial4D dialog, PA_Unichar* variableName) {
    EngineBlock block;
    block.fHandle = dialog;
    block.fParam1 = kClosed;
    block.fName[0] = 0;
    bool ok = ZR_CallHost(ZR_SEL_ModalDialog, &block);
    ZR_CopyName(variableName, ok ? block.fName : nullptr);
    return ok ? block.fParam1 : kClosed;
}

static long CallDialog(int selector, PA_Dial4D dialog, long value) {  // fParam1 of the answer; 0 after an error
    EngineBlock block;
    block.fHandle = dialog;
    block.fParam1 = value;
    return ZR_CallHost(selector, &block) ? block.fParam1 : 0;
}

void PA_CloseDialog(PA_Dial4D dialog) { CallDialog(ZR_SEL_CloseDialog, dialog, 0); }
void PA_Dial4DBeginUpdateVariables(PA_Dial4D dialog) { CallDialog(ZR_SEL_DialogUpdate, dialog, 1); }
void PA_Dial4DEndUpdateVariables(PA_Dial4D dialog) { CallDialog(ZR_SEL_DialogUpdate, dialog, 0); }
long PA_Dial4DWindowFromDial4D(PA_Dial4D dialog) { return CallDialog(ZR_SEL_DialogWindow, dialog, 0); }

void* PA_GetWindowPtr(long window) {
    EngineBlock block;
    block.fParam1 = window;
    block.fParam2 = 0;
    return ZR_CallHost(ZR_SEL_WindowPtr, &block) ? ZR_PointerOf(block.fParam2) : nullptr;
}

// Values -----------------------------------------------------------------------------------------------------------

static void SetValue(PA_Dial4D dialog, const PA_Unichar* name, const PA_Variable* value, long element) {
    EngineBlock block;
    block.fHandle = dialog;
    ZR_CopyName(block.fName, name);
    block.fParam1 = ZR_AddressOf(value);
    block.fParam2 = element;
    ZR_CallHost(ZR_SEL_DialogSet, &block);
}

static PA_Variable GetValue(PA_Dial4D dialog, const PA_Unichar* name, long element) {
    PA_Variable value = ZR_UndefinedVariable();
    EngineBlock block;
    block.fHandle = dialog;
    ZR_CopyName(block.fName, name);
    block.fParam1 = ZR_AddressOf(&value);
    block.fParam2 = element;
    ZR_CallHost(ZR_SEL_DialogGet, &block);
    return value;
}

void PA_Dial4DSet(PA_Dial4D dialog, const PA_Unichar* name, const PA_Variable* value) {
    if (value != nullptr) SetValue(dialog, name, value, kNoElement);
}

PA_Variable PA_Dial4DGet(PA_Dial4D dialog, const PA_Unichar* name) { return GetValue(dialog, name, kNoElement); }

void PA_Dial4DSetLong(PA_Dial4D dialog, const PA_Unichar* name, int number) {
    PA_Variable value = PA_CreateVariable(eVK_Longint);
    PA_SetLongintVariable(&value, number);
    SetValue(dialog, name, &value, kNoElement);
}

int PA_Dial4DGetLong(PA_Dial4D dialog, const PA_Unichar* name) {
    PA_Variable value = GetValue(dialog, name, kNoElement);
    int number = PA_GetLongintVariable(&value);
    ZR_FreeVariable(&value);
    return number;
}

void PA_Dial4DSetReal(PA_Dial4D dialog, const PA_Unichar* name, double number) {
    PA_Variable value = PA_CreateVariable(eVK_Real);
    PA_SetRealVariable(&value, number);
    SetValue(dialog, name, &value, kNoElement);
}

double PA_Dial4DGetReal(PA_Dial4D dialog, const PA_Unichar* name) {
    PA_Variable value = GetValue(dialog, name, kNoElement);
    double number = PA_GetRealVariable(&value);
    ZR_FreeVariable(&value);
    return number;
}

void PA_Dial4DSetText(PA_Dial4D dialog, const PA_Unichar* name, const PA_Unistring* text) {
    PA_Dial4DSetArrayText(dialog, name, kNoElement, text);
}

PA_Unistring PA_Dial4DGetText(PA_Dial4D dialog, const PA_Unichar* name) {
    return PA_Dial4DGetArrayText(dialog, name, kNoElement);
}

void PA_Dial4DSetArrayText(PA_Dial4D dialog, const PA_Unichar* name, long element, const PA_Unistring* text) {
    PA_Variable value = ZR_TextVariable(text);
    SetValue(dialog, name, &value, element);
}

PA_Unistring PA_Dial4DGetArrayText(PA_Dial4D dialog, const PA_Unichar* name, long element) {
    PA_Variable value = GetValue(dialog, name, element);
    return ZR_TakeString(&value);
}

void PA_Dial4DSetEnterable(PA_Dial4D dialog, const PA_Unichar* name, bool enterable) {
    EngineBlock block;
    block.fHandle = dialog;
    ZR_CopyName(block.fName, name);
    block.fParam1 = enterable;
    ZR_CallHost(ZR_SEL_DialogSetEnterable, &block);
}
