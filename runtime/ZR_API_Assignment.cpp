// Names to variables, and values into them.

#include <cstdlib>

#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Runtime_Private.h"

// Finding ----------------------------------------------------------------------------------------------------------

struct Scope {
    ZR_Executer_Stack* frame;  // locals; null = another scope
    ZR_Handle* list;
    ZR_VariableIndex* index;
    long number;
};

static bool ScopeOfToken(ZR_ExecutionContext* context, long tokenKind, Scope* scope) {
    ZR_Executer_Stack* frame;
    switch (tokenKind) {
        case ZREXE_TOKEN_LOCAL:
            frame = context->GetCurrentStack();
            if (!frame->index && frame->localVariables.count > 8 &&
                (frame->index = static_cast<ZR_VariableIndex*>(malloc(sizeof(ZR_VariableIndex)))))
                frame->index->Create();
            *scope = {frame, &frame->localVariables, frame->index, ZR_SCOPE_LOCAL};
            return true;
        case ZREXE_TOKEN_VARIABLE:
            *scope = {nullptr, &context->processVariables, &context->processIndex, ZR_SCOPE_PROCESS};
            return true;
        case ZREXE_TOKEN_INTERPROCESS:
            *scope = {nullptr, &context->interprocessVariables, &context->interprocessIndex, ZR_SCOPE_INTERPROCESS};
            return true;
        default: return false;
    }
}

static ZR_Executer_Variable* FindInScope(const Scope& scope, ZR_Text* name) {
    if (!scope.index) return zrExe_FindVariableByName(scope.list, name);
    return reinterpret_cast<ZR_Executer_Variable*>(scope.list->GetMemPtr(scope.index->Find(scope.list, name)));
}

static ZR_Executer_Variable* AppendToScope(const Scope& scope, ZR_Text* name, ZR_EXE_VariableKind kind) {
    if (scope.frame) return scope.frame->AppendLocal(name->Units(), name->count, kind);
    scope.list->growStep = scope.list->count < 8 ? 8 : 0;  // a frame of few variables grows once
    ZR_Executer_Variable* fresh = reinterpret_cast<ZR_Executer_Variable*>(scope.list->AppendGetPtr());
    if (fresh) fresh->Create(kind, name);
    return fresh;
}

ZR_Executer_Variable* ZR_ExecutionContext::GetVariableFromToken(ZR_Executer_Token* token, bool create) {
    Scope scope;
    if (!ScopeOfToken(this, token->kind, &scope)) return nullptr;
    ZR_Executer_Variable* found = FindInScope(scope, token->GetText());
    return found || !create ? found : AppendToScope(scope, token->GetText(), ZR_EXE_Undefined);
}

ZR_Executer_Variable* ZR_ExecutionContext::GetVariableFromPointerToken(ZR_Executer_Token* token) {
    if (token->kind != ZREXE_TOKEN_POINTER) return nullptr;
    ZR_Text* name = token->GetText();
    long where = token->value.integer;
    if (where == ZR_POINTER_PROCESS) return zrExe_FindVariableByName(&processVariables, name);
    if (where == ZR_POINTER_INTERPROCESS) return zrExe_FindVariableByName(&interprocessVariables, name);
    // Required: the number is a method reference, and is taken for a position among the active calls.
    ZR_Executer_Stack* frame = where > 0 ? GetStack(where) : nullptr;
    return frame && name->count ? frame->GetLocalVariable(name) : nullptr;
}

// Assigning --------------------------------------------------------------------------------------------------------

static constexpr struct {
    ZREXE_TOKEN token;
    ZR_EXE_VariableKind variable;
} kNewKinds[] = {
    {ZREXE_TOKEN_NUMBER, ZR_EXE_Real},
    {ZREXE_TOKEN_STRING, ZR_EXE_Text},
    {ZREXE_TOKEN_DATE, ZR_EXE_Date},
    {ZREXE_TOKEN_TIME, ZR_EXE_Time},
    {ZREXE_TOKEN_BOOLEAN, ZR_EXE_Boolean},
    {ZREXE_TOKEN_POINTER, ZR_EXE_Pointer},
    {ZREXE_TOKEN_LONGINT, ZR_EXE_Longint},
    {ZREXE_TOKEN_BLOB, ZR_EXE_Blob},
    {ZREXE_TOKEN_PICTURE, ZR_EXE_Picture},
    {ZREXE_TOKEN_OBJECT, ZR_EXE_Object},
    {ZREXE_TOKEN_COLLECTION, ZR_EXE_Collection},
    {ZREXE_TOKEN_NULL, ZR_EXE_Null},
};

static ZR_EXE_VariableKind KindOfValue(long tokenKind) {
    for (const auto& row : kNewKinds)
        if (row.token == tokenKind) return row.variable;
    return ZR_EXE_Undefined;
}

// True = the target's kind took the value. The old reference of an object or collection is released first, since
// SetObjectRef does not.
static bool Store(ZR_Executer_Variable* target, ZR_Executer_Token* source) {
    ZR_EXE_VariableKind kind = target->kind;
    ZR_Date date;
    switch (source->kind) {
        case ZREXE_TOKEN_NUMBER:
        case ZREXE_TOKEN_LONGINT:
            if (kind != ZR_EXE_Real && kind != ZR_EXE_Integer && kind != ZR_EXE_Longint) return false;
            target->SetNumber(source->GetNumber());
            return true;
        case ZREXE_TOKEN_STRING:
            if (kind != ZR_EXE_Text) return false;
            target->text.Copy(source->GetText());
            return true;
        case ZREXE_TOKEN_DATE:
            if (kind != ZR_EXE_Date) return false;
            source->GetDate(&date);
            target->SetDate(&date);
            return true;
        case ZREXE_TOKEN_TIME: target->SetTime(source->value.integer); return kind == ZR_EXE_Time;
        case ZREXE_TOKEN_BOOLEAN: target->SetBoolean(source->GetBoolean()); return kind == ZR_EXE_Boolean;
        case ZREXE_TOKEN_POINTER:
            if (kind != ZR_EXE_Pointer) return false;
            target->text.Copy(source->GetText());
            target->value.integer = source->value.integer;
            return true;
        case ZREXE_TOKEN_BLOB:
            if (kind != ZR_EXE_Blob) return false;
            target->blob.Dispose();
            target->blob.Create(source->GetBlob());
            return true;
        case ZREXE_TOKEN_PICTURE:
            if (kind != ZR_EXE_Picture) return false;
            target->picture.Dispose();
            target->picture.Create(source->GetPicture());
            return true;
        case ZREXE_TOKEN_OBJECT: {
            if (kind != ZR_EXE_Object) return false;
            void* before = target->objectRef;
            target->SetObjectRef(source->objectRef);
            zrExe_ReleaseObject(before);
            return true;
        }
        case ZREXE_TOKEN_COLLECTION: {
            if (kind != ZR_EXE_Collection) return false;
            void* before = target->collectionRef;
            target->SetCollectionRef(source->collectionRef);
            zrExe_ReleaseCollection(before);
            return true;
        }
        case ZREXE_TOKEN_NULL: target->SetEmpty(); return true;
        default: return true;  // other kinds leave the variable alone, without a word
    }
}

static void FailType(ZR_ExecutionContext* context, long scope, ZR_Text* name) {
    const ZR_ErrorWords& words = kErrorVariableType;
    context->SetError(words.number, words.before);
    if (scope != ZR_SCOPE_PROCESS) context->SetError(words.number, scope == ZR_SCOPE_LOCAL ? "$" : "<>");
    context->SetError(words.number, name);
    context->SetError(words.number, words.behind);
}

ZR_Executer_Variable* ZR_ExecutionContext::SetVariable(ZR_Executer_Token* target, ZR_Executer_Token* source,
                                                       ZR_EXE_VariableKind kind, long index) {
    Scope scope;
    if (source) kind = KindOfValue(source->kind);
    if (!ScopeOfToken(this, target->kind, &scope) || kind == ZR_EXE_Undefined) {
        Fail(kErrorUndefinedAssignment);
        return nullptr;
    }
    ZR_Text* name = target->GetText();
    ZR_Executer_Variable* variable = FindInScope(scope, name);
    if (index > 0) {
        if (!variable) {
            Fail(kErrorVariableNotFound, name);
            return nullptr;
        }
        if (index > variable->elements.count) {
            Fail(kErrorArrayBounds, name, index, variable->elements.count);
            return nullptr;
        }
        variable = reinterpret_cast<ZR_Executer_Variable*>(variable->elements.GetMemPtr(index));
    } else if (!variable) {
        variable = AppendToScope(scope, name, kind);
    }
    if (variable && source && !Store(variable, source)) FailType(this, scope.number, name);
    return variable;
}

// Searching and appending ------------------------------------------------------------------------------------------

enum ArrayFamily { kNoFamily, kNumbers, kTexts, kBooleans, kDates };

static ArrayFamily FamilyOf(ZR_EXE_VariableKind array, long token) {
    bool numbers = array == ZR_EXE_ArrayReal || array == ZR_EXE_ArrayInteger || array == ZR_EXE_ArrayLongint;
    if (numbers && zrExe_IsNumberToken(token)) return kNumbers;
    if (array == ZR_EXE_ArrayText && token == ZREXE_TOKEN_STRING) return kTexts;
    if (array == ZR_EXE_ArrayBoolean && token == ZREXE_TOKEN_BOOLEAN) return kBooleans;
    if (array == ZR_EXE_ArrayDate && token == ZREXE_TOKEN_DATE) return kDates;
    return kNoFamily;
}

static bool ElementEquals(ZR_Executer_Variable* element, ZR_Executer_Token* token, ArrayFamily family) {
    ZR_Date left, right;
    switch (family) {
        case kNumbers: return element->GetNumber() == token->GetNumber();
        case kTexts: return element->text.EqualWithWildChar(token->GetText());
        case kBooleans: return element->GetBoolean() == token->GetBoolean();
        default:
            element->GetDate(&left);
            token->GetDate(&right);
            return left.day == right.day && left.month == right.month && left.year == right.year;
    }
}

long ZR_ExecutionContext::FindTokenInArray(ZR_Executer_Variable* array, ZR_Executer_Token* token, long start) {
    if (!array->IsArray()) {
        Fail(kErrorNoArray, &array->name);
        return -1;
    }
    ArrayFamily family = FamilyOf(array->kind, token->kind);
    if (family == kNoFamily) {
        Fail(kErrorFindInArray, &array->name);
        return -1;
    }
    for (long i = start < 1 ? 1 : start; i <= array->elements.count; ++i)
        if (ElementEquals(array->GetVariablePtrFromArrayByIndex(i), token, family)) return i;
    return -1;
}

void ZR_ExecutionContext::AppendTokenToArray(ZR_Executer_Variable* array, ZR_Executer_Token* token) {
    if (!array->IsArray()) {
        Fail(kErrorNoArray, &array->name);
        return;
    }
    if (!array->ResizeArray(array->elements.count + 1)) {
        Fail(kErrorMemory);
        return;
    }
    // Required: a token that does not fit leaves the new element in the array.
    if (FamilyOf(array->kind, token->kind) == kNoFamily) Fail(kErrorFindInArray, &array->name);
    else Store(array->GetVariablePtrFromArrayByIndex(array->elements.count), token);
}
