// Variables to and from the host's records.

#include "core/ZR_API_BLOBArray.h"
#include "language/ZR_API_Token.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Runtime_Private.h"
#include "runtime/ZR_API_Variables.h"

static ZR_Executer_Variable* ElementAt(ZR_Executer_Variable* array, long index) {
    return reinterpret_cast<ZR_Executer_Variable*>(array->elements.GetMemPtr(index));
}

// To the host ------------------------------------------------------------------------------------------------------

// Writes the elements into a host array of the same kind and length.
static void FillHostArray(ZR_Executer_Variable* array, PA_Variable* host) {
    for (long i = 1; i <= array->elements.count; ++i) {
        ZR_Executer_Variable* element = ElementAt(array, i);
        switch (array->kind) {
            case ZR_EXE_ArrayReal:
            case ZR_EXE_ArrayInteger:
            case ZR_EXE_ArrayLongint: ZR_SetNumInArray(host, i, element->GetNumber()); break;
            case ZR_EXE_ArrayDate:
                PA_SetDateInArray(host, i, element->value.date[0], element->value.date[1], element->value.date[2]);
                break;
            case ZR_EXE_ArrayBoolean: PA_SetBooleanInArray(host, i, element->GetBoolean()); break;
            case ZR_EXE_ArrayText: element->text.To4DArray(host, i); break;
            default: break;
        }
    }
}

static bool ReachesHostAsArray(int kind) {
    return zrExe_IsArrayKind(kind) && kind != ZR_EXE_ArrayPicture && kind != ZR_EXE_ArrayPointer;
}

// Writes a plain value into a host variable of its own kind.
static void FillHostValue(ZR_Executer_Variable* variable, PA_Variable* host) {
    switch (variable->kind) {
        case ZR_EXE_Real: PA_SetRealVariable(host, variable->value.real); break;
        case ZR_EXE_Date:
            PA_SetDateVariable(host, variable->value.date[0], variable->value.date[1], variable->value.date[2]);
            break;
        case ZR_EXE_Boolean: PA_SetBooleanVariable(host, variable->value.integer == 1); break;
        case ZR_EXE_Integer:
        case ZR_EXE_Longint: PA_SetLongintVariable(host, static_cast<int>(variable->value.integer)); break;
        case ZR_EXE_Time: PA_SetTimeVariable(host, static_cast<int>(variable->value.integer)); break;
        case ZR_EXE_Picture: variable->picture.To4DVariable(host); break;
        case ZR_EXE_Blob: PA_SetBlobVariable(host, variable->blob.data, variable->blob.count); break;
        case ZR_EXE_Text: variable->text.To4DVariable(host); break;
        default: break;
    }
}

static void FillHostObject(ZR_Executer_Variable* variable, PA_Variable* host, bool duplicate) {
    void* object = variable->objectRef;
    if (!object) return;
    if (duplicate) object = PA_DuplicateObject(object);
    else PA_IncrementObjectRef(object);
    PA_SetObjectVariable(host, object);
}

PA_Variable ZR_Executer_Variable::CreatePAVariable(bool duplicateObject) {
    switch (kind) {
        case ZR_EXE_Real:
        case ZR_EXE_Date:
        case ZR_EXE_Boolean:
        case ZR_EXE_Picture:
        case ZR_EXE_Time:
        case ZR_EXE_Blob:
        case ZR_EXE_Text: {
            PA_Variable host = PA_CreateVariable(kind);
            FillHostValue(this, &host);
            return host;
        }
        case ZR_EXE_Integer:
        case ZR_EXE_Longint: {
            PA_Variable host = PA_CreateVariable(eVK_Longint);
            FillHostValue(this, &host);
            return host;
        }
        case ZR_EXE_Object: {
            PA_Variable host = PA_CreateVariable(eVK_Object);
            FillHostObject(this, &host, duplicateObject);
            return host;
        }
        case ZR_EXE_Collection: {
            PA_Variable host = PA_CreateVariable(eVK_Collection);
            if (collectionRef) PA_IncrementCollectionRef(collectionRef);
            PA_SetCollectionVariable(&host, collectionRef);
            return host;
        }
        default: break;
    }
    if (!ReachesHostAsArray(kind)) return PA_CreateVariable(eVK_Undefined);
    PA_Variable host = PA_CreateVariable(kind);
    PA_ResizeArray(&host, elements.count);
    FillHostArray(this, &host);
    return host;
}

void ZR_Executer_Variable::ToPAVariable(PA_Variable* host) {
    int hostKind = UnifyVarKind(host->fType);
    if (ReachesHostAsArray(kind) && hostKind == kind) {
        PA_ResizeArray(host, elements.count);
        FillHostArray(this, host);
    } else if (hostKind == kind) {
        FillHostValue(this, host);
    } else if (kind == ZR_EXE_Real && hostKind == eVK_Longint) {
        PA_SetLongintVariable(host, static_cast<int>(ZR_DoubleToLongManageOverflow(value.real)));
    } else if ((kind == ZR_EXE_Integer || kind == ZR_EXE_Longint) && hostKind == eVK_Real) {
        PA_SetRealVariable(host, GetNumber());
    } else if ((kind == ZR_EXE_Integer || kind == ZR_EXE_Longint) && hostKind == eVK_Longint) {
        FillHostValue(this, host);
    }
    PA_SetVariable(name.GetUniCharPtr(), host, 0);
}

// From the host ----------------------------------------------------------------------------------------------------

static bool TakeNumber(ZR_Executer_Variable* variable, PA_Variable* host) {
    switch (host->fType) {
        case eVK_Real: variable->SetNumber(PA_GetRealVariable(host)); return true;
        case eVK_Longint: variable->SetNumber(PA_GetLongintVariable(host)); return true;
        // Required: a plain host integer arrives as 0.
        case eVK_Integer: variable->SetNumber(0); return true;
        default: return false;
    }
}

static void TakeElement(ZR_Executer_Variable* array, PA_Variable* host, long i) {
    ZR_Executer_Variable* element = ElementAt(array, i);
    ZR_Date date = {0, 0, 0};
    switch (array->kind) {
        case ZR_EXE_ArrayReal: element->SetNumber(PA_GetRealInArray(host, i)); break;
        case ZR_EXE_ArrayInteger: element->SetNumber(PA_GetIntegerInArray(host, i)); break;
        case ZR_EXE_ArrayLongint: element->SetNumber(PA_GetLongintInArray(host, i)); break;
        case ZR_EXE_ArrayDate:
            PA_GetDateInArray(host, i, &date.day, &date.month, &date.year);
            element->SetDate(&date);
            break;
        case ZR_EXE_ArrayBoolean: element->SetBoolean(PA_GetBooleanInArray(host, i)); break;
        default:
            element->text.Dispose();
            element->text.CreateFrom4DArray(host, i);
            break;
    }
}

static bool TakeArray(ZR_Executer_Variable* array, PA_Variable* host) {
    if (UnifyVarKind(host->fType) != array->kind) return false;
    long count = PA_GetArrayNbElements(host);
    if (count < 0 || !array->ResizeArray(count)) return false;
    for (long i = 1; i <= count; ++i) TakeElement(array, host, i);
    return true;
}

static void TakeDate(ZR_Executer_Variable* variable, PA_Variable* host) {
    ZR_Date date;
    PA_GetDateVariable(host, &date.day, &date.month, &date.year);
    variable->SetDate(&date);
}

bool ZR_Executer_Variable::SetPAVariable(PA_Variable* host) {
    if (kind == ZR_EXE_Real || kind == ZR_EXE_Integer || kind == ZR_EXE_Longint) return TakeNumber(this, host);
    if (ReachesHostAsArray(kind)) return TakeArray(this, host);
    if (UnifyVarKind(host->fType) != kind) return false;
    switch (kind) {
        case ZR_EXE_Date: TakeDate(this, host); return true;
        case ZR_EXE_Boolean: SetBoolean(PA_GetBooleanVariable(host)); return true;
        case ZR_EXE_Time: SetTime(PA_GetTimeVariable(host)); return true;
        case ZR_EXE_Picture:
            picture.Dispose();
            picture.Create(reinterpret_cast<void**>(PA_GetPictureVariable(host)));
            return true;
        case ZR_EXE_Blob:
            blob.Dispose();
            blob.CreateFrom4DVariable(host);
            return true;
        case ZR_EXE_Text:
            text.Dispose();
            text.CreateFrom4DVariable(host);
            return true;
        default: return false;  // objects, collections and pointers never take anything
    }
}

// Host variables by name -------------------------------------------------------------------------------------------

bool ZR_ExecutionContext::Get4DVariable(ZR_Text* name) {
    PA_Variable host = PA_GetVariable(name->GetUniCharPtr());
    bool taken = false;
    if (UnifyVarKind(host.fType) != eVK_Undefined) {
        host.fType = static_cast<uint8_t>(UnifyVarKind(host.fType));
        ZR_Executer_Variable* variable = zrExe_FindVariableByNameAndCreate(
            &processVariables, name, static_cast<ZR_EXE_VariableKind>(static_cast<int>(host.fType)));
        taken = variable && variable->SetPAVariable(&host);
    }
    PA_ClearVariable(&host);
    return taken;
}

bool ZR_ExecutionContext::Set4DVariable(ZR_Text* name) {
    PA_Variable host = PA_GetVariable(name->GetUniCharPtr());
    ZR_Executer_Variable* variable = zrExe_FindVariableByName(&processVariables, name);
    if (variable && host.fType == eVK_Undefined) {
        PA_Variable fresh = variable->CreatePAVariable(/*duplicateObject*/ false);
        PA_SetVariable(name->GetUniCharPtr(), &fresh, 1);
        PA_ClearVariable(&fresh);
    } else if (variable) {
        variable->ToPAVariable(&host);
    }
    PA_ClearVariable(&host);
    return variable != nullptr;
}

bool zrExe_GetVariablePointer(ZR_Text* name, ZR_Executer_Token* token) {
    PA_Variable host = PA_GetVariable(name->GetUniCharPtr());
    bool defined = UnifyVarKind(host.fType) != eVK_Undefined;
    PA_ClearVariable(&host);
    if (defined) token->SetPointerToVariable(name, ZR_POINTER_HOST);
    return defined;
}

// Tokens from variables --------------------------------------------------------------------------------------------

static constexpr struct {
    ZR_EXE_VariableKind variable;
    ZREXE_TOKEN token;
} kTokenKinds[] = {
    {ZR_EXE_Real, ZREXE_TOKEN_NUMBER},     {ZR_EXE_Integer, ZREXE_TOKEN_NUMBER},
    {ZR_EXE_Longint, ZREXE_TOKEN_NUMBER},  {ZR_EXE_Date, ZREXE_TOKEN_DATE},
    {ZR_EXE_Boolean, ZREXE_TOKEN_BOOLEAN}, {ZR_EXE_Picture, ZREXE_TOKEN_PICTURE},
    {ZR_EXE_Time, ZREXE_TOKEN_TIME},       {ZR_EXE_Pointer, ZREXE_TOKEN_POINTER},
    {ZR_EXE_Blob, ZREXE_TOKEN_BLOB},       {ZR_EXE_Text, ZREXE_TOKEN_STRING},
    {ZR_EXE_Object, ZREXE_TOKEN_OBJECT},   {ZR_EXE_Collection, ZREXE_TOKEN_COLLECTION},
};

void ZR_Executer_Token::Create(void* source) {
    ZR_Executer_Variable* variable = static_cast<ZR_Executer_Variable*>(source);
    zrExe_CreateEmptyToken(this);
    for (const auto& row : kTokenKinds)
        if (row.variable == variable->kind) kind = row.token;
    switch (kind) {
        case ZREXE_TOKEN_NUMBER: value.real = variable->GetNumber(); break;
        case ZREXE_TOKEN_STRING: text.AddText(&variable->text); break;
        case ZREXE_TOKEN_POINTER:
            text.AddText(&variable->text);
            value.integer = variable->value.integer;
            break;
        case ZREXE_TOKEN_PICTURE:
            picture.Dispose();
            picture.Create(&variable->picture);
            break;
        case ZREXE_TOKEN_BLOB:
            blob.Dispose();
            blob.Create(&variable->blob);
            break;
        case ZREXE_TOKEN_OBJECT: SetObjectRef(variable->objectRef); break;
        case ZREXE_TOKEN_COLLECTION: SetCollectionRef(variable->collectionRef); break;
        case ZREXE_TOKEN_OTHER: break;
        default: value.integer = variable->value.integer; break;  // date, boolean, time
    }
}
