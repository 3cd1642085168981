// Commands done here because they are trivial or because the host cannot see the interpreter's variables; the keywords
// as commands; the private commands.

#include "core/ZR_API_Color.h"
#include "plugin/ZR_API_Sound.h"
#include "runtime/ZR_API_CommandTable_Private.h"
#include "runtime/ZR_API_Guards.h"

ZR_Executer_Token* zrExe_Result(ZR_CommandCall* call, ZREXE_TOKEN kind) {
    call->result->Dispose();
    call->result->Create(kind, nullptr);
    call->result->value.integer = 0;
    return call->result;
}

void zrExe_ResultNumber(ZR_CommandCall* call, double number) {
    zrExe_Result(call, ZREXE_TOKEN_NUMBER)->value.real = number;
}

// Any command whose work is nothing, or has been done while its parameters were evaluated.
void zrExe_Nothing(ZR_CommandCall*) {}
void zrExe_Declaration(ZR_CommandCall*) {}

// 34 (B): the negation.
void zrExe_Not(ZR_CommandCall* call) {
    bool flag = call->Parameter(1)->GetBoolean();
    zrExe_Result(call, ZREXE_TOKEN_BOOLEAN)->SetBoolean(!flag);
}

// 90 (N): a text of one unit.
void zrExe_CharacterOfCode(ZR_CommandCall* call) {
    unsigned short unit = static_cast<unsigned short>(zrExe_Truncate(call->Number(1)));
    zrExe_Result(call, ZREXE_TOKEN_STRING)->text.AddUniBuffer(&unit, 1);
}

// 91 (T): the first unit, 0 if there is none.
void zrExe_CodeOfCharacter(ZR_CommandCall* call) {
    zrExe_ResultNumber(call, call->Parameter(1)->GetText()->GetChar(0));
}

// 151 (): the host's beep.
void zrExe_Beep(ZR_CommandCall*) { ZR_Beep(); }

// 157 (): asks for the debugger at the next line, if the context lets it.
void zrExe_Trace(ZR_CommandCall* call) {
    if (call->context->traceEnabled) call->context->traceRequested = true;
}

// 158 ()
void zrExe_NoTrace(ZR_CommandCall* call) { call->context->traceRequested = false; }

// 214, 215 ()
void zrExe_True(ZR_CommandCall* call) { zrExe_Result(call, ZREXE_TOKEN_BOOLEAN)->SetBoolean(true); }
void zrExe_False(ZR_CommandCall* call) { zrExe_Result(call, ZREXE_TOKEN_BOOLEAN)->SetBoolean(false); }

// 315 (V): whether a pointer points to nothing; no value for a missing variable.
void zrExe_IsNilPointer(ZR_CommandCall* call) {
    ZR_Executer_Variable* variable = call->Variable(1);
    if (!variable) return;
    if (variable->kind == ZR_EXE_Pointer) zrExe_Result(call, ZREXE_TOKEN_BOOLEAN)->SetBoolean(variable->IsPointerNil());
    else call->context->Fail(kErrorNotAPointer, call->Parameter(1)->GetText());
}

// 605 (b): size in bytes.
void zrExe_BlobSize(ZR_CommandCall* call) { call->result->CreateNumberLongint(call->Parameter(1)->GetBlob()->count); }

// 606 (V,N): resizes a BLOB variable; new bytes are 0, a negative size does nothing.
void zrExe_SetBlobSize(ZR_CommandCall* call) {
    ZR_Executer_Variable* variable = call->Variable(1);
    if (!variable) {
        call->context->Fail(kErrorUnknownVariable, call->Parameter(1)->GetText());
        return;
    }
    long size = zrExe_Truncate(call->Number(2)), before = variable->blob.count;
    if (size < 0) return;
    if (size <= ZR_MAX_VALUE_BYTES && (size <= before || ZR_MemoryAllows(size - before))) variable->blob.Resize(size);
    if (variable->blob.count != size) call->context->Fail(kErrorMemory);
    else if (size > before) memset(variable->blob.data + before, 0, static_cast<size_t>(size - before));
}

// Keywords ---------------------------------------------------------------------------------------------------------

// 30001, 30007, 30008 (B): the parameter itself, which is how a condition becomes one Boolean token of its line.
void zrExe_Condition(ZR_CommandCall* call) {
    bool flag = call->Parameter(1)->GetBoolean();
    zrExe_Result(call, ZREXE_TOKEN_BOOLEAN)->SetBoolean(flag);
}

// Private commands -------------------------------------------------------------------------------------------------

long zrExe_GetColor(ZR_Text* text) {
    ZR_RGBColor color = {0, 0, 0, 1.0f};
    color.SetColorText(text);
    return ((color.red >> 8) << 16) + ((color.green >> 8) << 8) + (color.blue >> 8);
}

// 40001 (T)|(T,N): a colour text as 0xAARRGGBB; the second parameter is the alpha from 0 to 1.
void zrExe_GetColorCommand(ZR_CommandCall* call) {
    double color = static_cast<double>(zrExe_GetColor(call->Parameter(1)->GetText()));
    double alpha = call->Count() > 1 ? call->Number(2) * 255.0 : 255.0;
    long shifted = static_cast<long>(static_cast<unsigned long>(zrExe_Truncate(alpha)) << 24);
    zrExe_ResultNumber(call, color + static_cast<double>(shifted));
}

static void CallBack(ZR_CommandCall* call) {
    ZR_ExecutionContext* context = call->context;
    if (context->callback) context->callback(context, call->id, call->parameters, call->result, context->callbackData);
}

// 40002 (T): an empty text that the callback may fill.
void zrExe_CallbackText(ZR_CommandCall* call) {
    zrExe_Result(call, ZREXE_TOKEN_STRING);
    CallBack(call);
}

// 40003 (), 40004 (T), 40005 (N,V,V,V): 0 unless the callback says otherwise.
void zrExe_CallbackNumber(ZR_CommandCall* call) {
    zrExe_ResultNumber(call, 0);
    CallBack(call);
}

// 40010 (T): the callback's alone.
void zrExe_CallbackOnly(ZR_CommandCall* call) { CallBack(call); }

// 40006 (T): a pointer to a variable of the host.
void zrExe_HostVariablePointer(ZR_CommandCall* call) {
    ZR_Text* name = call->Parameter(1)->GetText();
    if (!zrExe_GetVariablePointer(name, call->result)) call->context->Fail(kErrorUnknownHostVariable, name);
}

// 40007 (T): a host variable into the process variable of its name.
void zrExe_GetHostVariable(ZR_CommandCall* call) {
    ZR_Text* name = call->Parameter(1)->GetText();
    if (!call->context->Get4DVariable(name)) call->context->Fail(kErrorUnknownHostVariable, name);
}

// 40008 (T): the other way.
void zrExe_SetHostVariable(ZR_CommandCall* call) {
    ZR_Text* name = call->Parameter(1)->GetText();
    if (!call->context->Set4DVariable(name)) call->context->Fail(kErrorUnknownHostVariable, name);
}

// 40009 (T): the text in its HTML form.
void zrExe_HTMLEncode(ZR_CommandCall* call) {
    ZR_Executer_Token* result = zrExe_Result(call, ZREXE_TOKEN_STRING);
    result->text.growStep = 100;
    result->text.AddText(call->Parameter(1)->GetText());
    result->text.EncodeHTML();
}
