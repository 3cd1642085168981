// The bridge to the host's own commands, methods and member functions: tokens to records, the call, records back.

#include <cstdlib>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Runtime_Private.h"

// Parameters to records --------------------------------------------------------------------------------------------

static PA_Variable Undefined() { return PA_CreateVariable(eVK_Undefined); }

static PA_Variable Operator(int code) {
    PA_Variable variable;
    PA_SetOperatorVariable(&variable, code);
    return variable;
}

static constexpr struct {
    unsigned short unit;
    short code;
} kFormulaCodes[] = {{'+', ZR_OP_PLUS}, {'-', ZR_OP_MINUS}, {'/', ZR_OP_DIVIDE}, {'*', ZR_OP_TIMES}};

// -1 = the host knows no such operator.
static int OperatorCode(ZR_Executer_Token* token) {
    if (token->kind == ZREXE_TOKEN_FORMULA) {
        for (const auto& row : kFormulaCodes)
            if (row.unit == token->GetFormula()) return row.code;
    } else if (token->kind == ZREXE_TOKEN_COMPARISON) {
        for (const auto& row : kZR_Comparisons)
            if (row.value == token->GetComparison()) return row.hostCode;
    } else if (token->kind == ZREXE_TOKEN_LOGIC) {
        if (token->GetOperation() == ZREXE_LOGIC_AND) return ZR_OP_AND;
        if (token->GetOperation() == ZREXE_LOGIC_OR) return ZR_OP_OR;
    }
    return -1;
}

static PA_Variable VariableParameter(ZR_ExecutionContext* context, ZR_Executer_Token* token) {
    ZR_Executer_Variable* variable = context->GetVariableFromToken(token, /*create*/ false);
    if (variable) return variable->CreatePAVariable(/*duplicateObject*/ false);
    context->Fail(kErrorUnknownVariable, token->GetVariableName());
    return Undefined();
}

// A pointer to a table or field: words 0 and 3 are 0, word 1 the field, word 2 the table.
static PA_Variable PointerRecord(long table, long field) {
    PA_Variable variable = PA_CreateVariable(eVK_Pointer);
    PA_Handle handle = PA_NewHandle(sizeof(PointerBlock));
    if (!handle) return variable;
    PointerBlock* block = reinterpret_cast<PointerBlock*>(PA_LockHandle(handle));
    block->fField = static_cast<uint16_t>(field);
    block->fTable = static_cast<uint16_t>(table);
    PA_UnlockHandle(handle);
    PA_SetPointerVariable(&variable, handle);
    return variable;
}

static PA_Variable PointerParameter(ZR_ExecutionContext* context, ZR_Executer_Token* token, bool* ok) {
    if (token->PointerToTable()) {
        *ok = ZR_IsTableNoValid(token->GetTable());
        return PointerRecord(token->GetTable(), 0);
    }
    if (token->PointerToField()) {
        // Required: on this kind GetTable and GetField stand the other way round, and so do the words.
        *ok = ZR_IsFieldNoValid(token->GetTable(), token->GetField());
        return PointerRecord(token->GetTable(), token->GetField());
    }
    ZR_Executer_Variable* variable = context->GetVariableFromPointerToken(token);
    context->Fail(variable ? kErrorPointerParameter : kErrorUnknownPointer, token->GetText());
    return Undefined();
}

static PA_Variable TableOrFieldParameter(ZR_Executer_Token* token, bool* ok) {
    bool field = token->kind == ZREXE_TOKEN_FIELD;
    *ok = field ? ZR_IsFieldNoValid(token->GetTable(), token->GetField()) : ZR_IsTableNoValid(token->GetTable());
    PA_Variable variable;
    PA_SetTableFieldVariable(&variable, token->GetTable(), field ? token->GetField() : 0);
    return variable;
}

// A copy of a query's text that lives as long as the context.
static PA_Variable KeptText(ZR_ExecutionContext* context, ZR_Executer_Token* token) {
    long before = context->queryTexts.count;
    context->queryTexts.Append(token->GetText());
    if (context->queryTexts.count == before) {
        context->Fail(kErrorMemory);
        return Undefined();
    }
    return context->queryTexts.GetTextPtr(context->queryTexts.count)->CreateVariable();
}

static PA_Variable ToRecord(ZR_ExecutionContext* context, ZR_Executer_Token* token, bool keepTexts, bool* ok) {
    int code;
    switch (token->kind) {
        case ZREXE_TOKEN_VARIABLE:
        case ZREXE_TOKEN_LOCAL:
        case ZREXE_TOKEN_INTERPROCESS: return VariableParameter(context, token);
        case ZREXE_TOKEN_FORMULA:
        case ZREXE_TOKEN_COMPARISON:
        case ZREXE_TOKEN_LOGIC:
            code = OperatorCode(token);
            if (code < 0) *ok = false;
            return code < 0 ? Undefined() : Operator(code);
        case ZREXE_TOKEN_STRING: return keepTexts ? KeptText(context, token) : token->ToPAVariable();
        case ZREXE_TOKEN_NUMBER:
        case ZREXE_TOKEN_DATE:
        case ZREXE_TOKEN_TIME:
        case ZREXE_TOKEN_BOOLEAN:
        case ZREXE_TOKEN_LONGINT:
        case ZREXE_TOKEN_PICTURE: return token->ToPAVariable();
        case ZREXE_TOKEN_BLOB: return token->GetBlob()->CreateVariable();
        case ZREXE_TOKEN_TABLE:
        case ZREXE_TOKEN_FIELD: return TableOrFieldParameter(token, ok);
        case ZREXE_TOKEN_POINTER: return PointerParameter(context, token, ok);
        default: *ok = false; return Undefined();  // values of objects and collections among them
    }
}

// Required: the count is handed over as a signed 16-bit number.
static short CountOf(ZR_Handle* parameters) { return static_cast<short>(parameters->count); }

static PA_Variable* AllocateRecords(short count) {
    return static_cast<PA_Variable*>(calloc(static_cast<size_t>(count), sizeof(PA_Variable)));
}

static void FreeRecords(PA_Variable* records, short count) {
    for (short i = 0; i < count; ++i) PA_ClearVariable(&records[i]);
    free(records);
}

// Calls ------------------------------------------------------------------------------------------------------------

// The host's answer: read into result if one is wanted, cleared in every case.
static void TakeAnswer(PA_Variable* answer, ZR_Executer_Token* result) {
    if (result) {
        result->Dispose();
        result->Create(answer);
    }
    PA_ClearVariable(answer);
}

static PA_Variable Call(long id, ZR_Text* methodName, PA_Variable* records, short count) {
    if (methodName) return PA_ExecuteMethod(methodName->GetUnistringPtr(), records, count);
    return PA_ExecuteCommandByID(static_cast<int>(id), records, count);
}

// What the host changed comes back into the variables. False = one could not take it.
static bool WriteBack(ZR_ExecutionContext* context, ZR_Handle* parameters, PA_Variable* records, short count) {
    for (short i = 0; i < count; ++i) {
        ZR_Executer_Token* token = zrExe_TokenAt(parameters, i + 1);
        if (!zrExe_IsVariableToken(token->kind)) continue;
        ZR_Executer_Variable* variable = context->GetVariableFromToken(token, /*create*/ false);
        if (!variable) {
            context->Fail(kErrorUnknownVariable, token->GetVariableName());
            continue;
        }
        records[i].fType = static_cast<uint8_t>(UnifyVarKind(records[i].fType));
        if (variable->SetPAVariable(&records[i])) continue;
        context->Fail(kErrorWriteBack, token->GetText());
        return false;
    }
    return true;
}

static bool IsPartialQuery(long id, ZR_Handle* parameters) {
    if (id != 277 && id != 341) return false;
    ZR_Executer_Token* last = zrExe_TokenAt(parameters, parameters->count);
    return last && last->kind == ZREXE_TOKEN_FORMULA && last->GetFormula() == '*';
}

bool ZR_ExecutionContext::ExecuteGenericCommand(long id, ZR_Text* methodName, ZR_Handle* parameters,
                                                ZR_Executer_Token* answer) {
    short count = CountOf(parameters);
    if (count < 0) return false;  // guard: more than 32,767 parameters wrap below 0
    if (count == 0) {
        PA_Variable value = Call(id, methodName, nullptr, 0);
        TakeAnswer(&value, answer);
        return true;
    }
    bool ok = true;
    bool keepTexts = !methodName && IsPartialQuery(id, parameters);
    PA_Variable* records = AllocateRecords(count);
    if (!records) {
        Fail(kErrorMemory);
        return false;
    }
    for (short i = 0; i < count; ++i) records[i] = ToRecord(this, zrExe_TokenAt(parameters, i + 1), keepTexts, &ok);
    PA_Variable value = Call(id, methodName, records, count);
    if (!methodName && !WriteBack(this, parameters, records, count)) ok = false;
    FreeRecords(records, count);
    TakeAnswer(&value, ok ? answer : nullptr);
    return ok;
}

bool ZR_ExecutionContext::ExecuteGenericObjectMemberFunction(ZR_Text* name, ZR_Handle* parameters,
                                                             ZR_Executer_Token* object) {
    if (!object->objectRef) return true;
    bool ok = true;
    short count = CountOf(parameters);
    if (count < 0) return false;  // guard: more than 32,767 parameters wrap below 0
    PA_Variable* records = AllocateRecords(static_cast<short>(count ? count : 1));
    if (!records) return false;
    for (short i = 0; i < count; ++i) {
        ZR_Executer_Token* token = zrExe_TokenAt(parameters, i + 1);
        switch (token->kind) {
            case ZREXE_TOKEN_NUMBER:
            case ZREXE_TOKEN_STRING:
            case ZREXE_TOKEN_DATE:
            case ZREXE_TOKEN_TIME:
            case ZREXE_TOKEN_BOOLEAN:
            case ZREXE_TOKEN_LONGINT: records[i] = token->ToPAVariable(); break;
            default:
                records[i] = Undefined();
                ok = false;
                break;
        }
    }
    PA_Variable value = PA_ExecuteObjectMethod(object->objectRef, name->GetUnistringPtr(), records, count);
    TakeAnswer(&value, ok ? object : nullptr);
    FreeRecords(records, count);
    return ok;
}

void ZR_ExecuteCode(ZR_Text* code) {
    ZR_Text line;
    line.Create();
    line.growStep = 100;
    for (long i = 0; i <= code->count; ++i) {
        unsigned short unit = i < code->count ? code->GetChar(i) : '\r';
        if (unit != '\r' && unit != '\n') {
            line.AddUnit(unit);
        } else if (line.count) {
            PA_Variable answer = PA_ExecuteMethod(line.GetUnistringPtr(), nullptr, 0);
            PA_ClearVariable(&answer);
            line.Resize(0);
        }
    }
    line.Dispose();
}

// Fields of the current record -------------------------------------------------------------------------------------

void ZR_ExecutionContext::ExecuteTokenizedBlockField(long table, long field, ZR_Executer_Token* value,
                                                     unsigned short formula, long logic) {
    ZR_Date date;
    ZR_Text text;
    ZR_Handle blob;
    ZR_Picture picture;
    PA_Picture host;
    switch (PA_GetFieldType(table, field)) {
        case 0:
        case 2:
            text.CreateWithUnistringAndDisposeUnistring(PA_GetStringField(table, field));
            ExecuteTokenizedBlockText(&text, value, formula);
            text.Dispose();
            break;
        case 1: ExecuteTokenizedBlockNumber(PA_GetRealField(table, field), value, formula); break;
        case 3:
            host = PA_GetPictureField(table, field);
            picture.Create(reinterpret_cast<void**>(host));
            ExecuteTokenizedBlockPicture(&picture, value);
            picture.Dispose();
            PA_DisposePicture(host);
            break;
        case 4:
            PA_GetDateField(table, field, &date.day, &date.month, &date.year);
            ExecuteTokenizedBlockDate(&date, value, formula);
            break;
        case 6: ExecuteTokenizedBlockBoolean(PA_GetBooleanField(table, field), value, logic); break;
        case 8: ExecuteTokenizedBlockNumber(PA_GetIntegerField(table, field), value, formula); break;
        case 9: ExecuteTokenizedBlockNumber(PA_GetLongintField(table, field), value, formula); break;
        case 11: ExecuteTokenizedBlockTime(PA_GetTimeField(table, field), value, formula); break;
        case 30:
            blob.CreateFrom4DBlobField(static_cast<short>(table), static_cast<short>(field));
            ExecuteTokenizedBlockBlob(&blob, value);
            blob.Dispose();
            break;
        default: break;
    }
}

void zrExe_StoreField(short table, short field, short type, ZR_Executer_Token* value) {
    ZR_Date date;
    switch (type) {
        case 0:
        case 2: PA_SetStringField(table, field, value->GetText()->GetUnistringPtr()); break;
        case 1: PA_SetRealField(table, field, value->GetNumber()); break;
        case 4:
            value->GetDate(&date);
            PA_SetDateField(table, field, date.day, date.month, date.year);
            break;
        case 6: PA_SetBooleanField(table, field, value->GetBoolean()); break;
        case 8: PA_SetIntegerField(table, field, static_cast<short>(zrExe_Truncate(value->GetNumber()))); break;
        case 9: PA_SetLongintField(table, field, static_cast<int>(zrExe_Truncate(value->GetNumber()))); break;
        case 11: PA_SetTimeField(table, field, static_cast<int>(value->value.integer)); break;
        case 30: value->GetBlob()->To4DBlobField(table, field); break;
        default: break;
    }
}
