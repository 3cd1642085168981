// A command is a row: its number, the lists of parameters that it takes, and the action that runs once one fits.
// RunRow alone clears the flags, tries the forms and ends a probe, so an action sees neither a probe nor a wrong list.
#ifndef ZR_API_COMMAND_TABLE_PRIVATE_H
#define ZR_API_COMMAND_TABLE_PRIVATE_H

#include <cstddef>

#include "runtime/ZR_API_Runtime_Private.h"

struct ZR_CommandCall {
    ZR_ExecutionContext* context;
    ZR_Handle* parameters;
    long id;
    ZR_Executer_Token* result;  // null in the range that returns nothing
    bool* notSupported;
    bool* wrongCount;
    bool* wrongType;

    ZR_Executer_Token* Parameter(long index) { return zrExe_TokenAt(parameters, index); }
    double Number(long index) { return Parameter(index)->GetNumber(); }
    long Count() { return parameters->count; }
    ZR_Executer_Variable* Variable(long index) {
        return context->GetVariableFromToken(Parameter(index), /*create*/ false);
    }
};

typedef void (*ZR_CommandAction)(ZR_CommandCall* call);

// Signs of a form: N number, T text, D date, H time, B boolean, O operator, V variable (unevaluated), L number for an
// array's length, X any token, b BLOB, I picture, F field, P pointer. Lists of signs are separated by "|".
struct ZR_CommandForms {
    static constexpr int kMaxForms = 8, kMaxSigns = 5;
    short kinds[kMaxForms][kMaxSigns] = {};
    signed char counts[kMaxForms] = {};
    int formCount = 0;  // 0 = any list
};

constexpr short ZR_KindOfSign(char sign) {
    switch (sign) {
        case 'N': return ZREXE_TOKEN_NUMBER;
        case 'T': return ZREXE_TOKEN_STRING;
        case 'D': return ZREXE_TOKEN_DATE;
        case 'H': return ZREXE_TOKEN_TIME;
        case 'B': return ZREXE_TOKEN_BOOLEAN;
        case 'O': return ZREXE_TOKEN_FORMULA;
        case 'V': return ZREXE_TOKEN_RESERVED;  // kind 27: any variable token
        case 'L': return ZREXE_TOKEN_LONGINT;   // kind 29 or 6
        case 'X': return 0;                     // any token
        case 'b': return ZREXE_TOKEN_BLOB;
        case 'I': return ZREXE_TOKEN_PICTURE;
        case 'F': return ZREXE_TOKEN_FIELD;
        case 'P': return ZREXE_TOKEN_POINTER;
        default: throw "unknown sign in a form";  // does not compile
    }
}

// Forms("(N)|(N,T)"); Forms("()") takes no parameters.
consteval ZR_CommandForms Forms(const char* text) {
    ZR_CommandForms forms;
    for (const char* at = text; *at; ++at) {
        if (*at == '(') forms.counts[forms.formCount++] = 0;
        else if (*at != ')' && *at != ',' && *at != '|') {
            int form = forms.formCount - 1;
            forms.kinds[form][static_cast<int>(forms.counts[form]++)] = ZR_KindOfSign(*at);
        }
    }
    return forms;
}

inline constexpr ZR_CommandForms kAnyList = {};

enum ZR_RowKind : char {
    kChecked = 0,  // the forms decide
    kOwnCheck = 1  // the action has an order of checks of its own and does nothing before the first
};

struct ZR_CommandRow {
    short number;
    ZR_CommandForms forms;
    ZR_CommandAction action;
    ZR_RowKind kind = kChecked;
};

enum ZR_UnknownNumber { kUnknownIsReported, kUnknownIsSilent };

void zrExe_RunRow(ZR_CommandCall* call, const ZR_CommandRow* rows, size_t count, ZR_UnknownNumber unknown);

// Actions, by subject ----------------------------------------------------------------------------------------------

// Forwarded to the host.
void zrExe_ForwardKeepingValue(ZR_CommandCall* call);
void zrExe_ForwardWithoutValue(ZR_CommandCall* call);
void zrExe_ForwardKeepingValueThenOK(ZR_CommandCall* call);
void zrExe_ForwardWithoutValueThenOK(ZR_CommandCall* call);
void zrExe_AlertMessage(ZR_CommandCall* call);
void zrExe_ReadPictureFile(ZR_CommandCall* call);
void zrExe_PictureToBlob(ZR_CommandCall* call);
void zrExe_SortArrays(ZR_CommandCall* call);
void zrExe_Choose(ZR_CommandCall* call);
// Arrays.
void zrExe_SumOfArray(ZR_CommandCall* call);
void zrExe_DeclareArray(ZR_CommandCall* call);
void zrExe_CopyArray(ZR_CommandCall* call);
void zrExe_InsertInArray(ZR_CommandCall* call);
void zrExe_DeleteFromArray(ZR_CommandCall* call);
void zrExe_FindInArray(ZR_CommandCall* call);
void zrExe_SizeOfArray(ZR_CommandCall* call);
void zrExe_AppendToArray(ZR_CommandCall* call);
// Values.
void zrExe_Nothing(ZR_CommandCall* call);
void zrExe_Not(ZR_CommandCall* call);
void zrExe_CharacterOfCode(ZR_CommandCall* call);
void zrExe_CodeOfCharacter(ZR_CommandCall* call);
void zrExe_Beep(ZR_CommandCall* call);
void zrExe_Trace(ZR_CommandCall* call);
void zrExe_NoTrace(ZR_CommandCall* call);
void zrExe_True(ZR_CommandCall* call);
void zrExe_False(ZR_CommandCall* call);
void zrExe_IsNilPointer(ZR_CommandCall* call);
void zrExe_BlobSize(ZR_CommandCall* call);
void zrExe_SetBlobSize(ZR_CommandCall* call);
void zrExe_Declaration(ZR_CommandCall* call);
// Keywords and private commands.
void zrExe_Condition(ZR_CommandCall* call);
void zrExe_GetColorCommand(ZR_CommandCall* call);
void zrExe_CallbackText(ZR_CommandCall* call);
void zrExe_CallbackNumber(ZR_CommandCall* call);
void zrExe_CallbackOnly(ZR_CommandCall* call);
void zrExe_HostVariablePointer(ZR_CommandCall* call);
void zrExe_GetHostVariable(ZR_CommandCall* call);
void zrExe_SetHostVariable(ZR_CommandCall* call);
void zrExe_HTMLEncode(ZR_CommandCall* call);

// The result token, renewed with a kind.
ZR_Executer_Token* zrExe_Result(ZR_CommandCall* call, ZREXE_TOKEN kind);
void zrExe_ResultNumber(ZR_CommandCall* call, double number);

#endif
