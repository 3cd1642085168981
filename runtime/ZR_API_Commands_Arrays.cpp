// Commands that work on the interpreter's arrays.

#include "runtime/ZR_API_CommandTable_Private.h"

// 1 (V): the sum of a numeric array; no value for a missing variable.
void zrExe_SumOfArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = call->Variable(1);
    if (array) zrExe_ResultNumber(call, array->Sum());
}

static constexpr struct {
    short command;
    ZR_EXE_VariableKind kind;
} kArrayDeclarations[] = {
    {218, ZR_EXE_ArrayText},    {219, ZR_EXE_ArrayReal},    {220, ZR_EXE_ArrayInteger},
    {221, ZR_EXE_ArrayLongint}, {222, ZR_EXE_ArrayText},    {223, ZR_EXE_ArrayBoolean},
    {224, ZR_EXE_ArrayDate},    {279, ZR_EXE_ArrayPicture}, {280, ZR_EXE_ArrayPointer},
};

// 218 to 224, 279, 280 (V,L): makes the array if need be and sets its length; another kind stays as it is.
void zrExe_DeclareArray(ZR_CommandCall* call) {
    ZR_EXE_VariableKind kind = ZR_EXE_Undefined;
    for (const auto& row : kArrayDeclarations)
        if (row.command == call->id) kind = row.kind;
    ZR_Executer_Variable* array = call->context->SetVariable(call->Parameter(1), nullptr, kind, 0);
    if (array && !array->ResizeArray(zrExe_Truncate(call->Number(2)))) call->context->Fail(kErrorMemory);
}

// 226 (V,V): the second variable becomes a copy of the first and keeps its name.
void zrExe_CopyArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* target = call->context->GetVariableFromToken(call->Parameter(2), /*create*/ true);
    ZR_Executer_Variable* source = call->Variable(1);
    if (!source || !target || source == target) return;
    if (!ZR_MemoryAllows(source->elements.count * static_cast<long>(sizeof(ZR_Executer_Variable)))) {
        call->context->Fail(kErrorMemory);
        return;
    }
    ZR_Executer_Variable copy;
    copy.Create(source, &target->name);
    target->Dispose();
    *target = copy;
}

// The array of a command that reports a variable which is none; null = nothing to do.
static ZR_Executer_Variable* ArrayToChange(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = call->Variable(1);
    if (!array || array->IsArray()) return array;
    call->context->Fail(kErrorNotAnArray, call->Parameter(1)->GetText());
    return nullptr;
}

static long CountGiven(ZR_CommandCall* call) { return call->Count() > 2 ? zrExe_Truncate(call->Number(3)) : 1; }

// 227 (V,N)|(V,N,N): inserts elements; -40 if no array.
void zrExe_InsertInArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = ArrayToChange(call);
    if (array && !array->InsertArrayElements(zrExe_Truncate(call->Number(2)), CountGiven(call)))
        call->context->Fail(kErrorMemory);
}

// 228 (V,N)|(V,N,N): deletes elements; -40 if no array.
void zrExe_DeleteFromArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = ArrayToChange(call);
    if (array) array->DeleteArrayElements(zrExe_Truncate(call->Number(2)), CountGiven(call));
}

// The variable of a command that reports a missing one.
static ZR_Executer_Variable* Known(ZR_CommandCall* call) {
    ZR_Executer_Variable* variable = call->Variable(1);
    if (!variable) call->context->Fail(kErrorUnknownVariable, call->Parameter(1)->GetText());
    return variable;
}

// 230 (V,X)|(V,X,N): position of a value, from a start, or -1.
void zrExe_FindInArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = Known(call);
    if (!array) return;
    long start = call->Count() > 2 ? zrExe_Truncate(call->Number(3)) : 1;
    zrExe_ResultNumber(call, static_cast<double>(call->context->FindTokenInArray(array, call->Parameter(2), start)));
}

// 274 (V): number of elements.
void zrExe_SizeOfArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = Known(call);
    if (!array) return;
    if (array->IsArray()) zrExe_ResultNumber(call, static_cast<double>(array->elements.count));
    else call->context->Fail(kErrorNoArray, call->Parameter(1)->GetText());
}

// 911 (V,X): appends a value.
void zrExe_AppendToArray(ZR_CommandCall* call) {
    ZR_Executer_Variable* array = Known(call);
    if (array) call->context->AppendTokenToArray(array, call->Parameter(2));
}
