// Small helpers that the sources of this folder share.
#ifndef ZR_API_RUNTIME_PRIVATE_H
#define ZR_API_RUNTIME_PRIVATE_H

#include <cstring>

#include "language/ZR_API_TokenList.h"
#include "plugin/ZR_API_Bridge.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Guards.h"

static inline ZR_Executer_Token* zrExe_TokenAt(ZR_Handle* tokens, long position) {  // null outside [1..count]
    return reinterpret_cast<ZR_Executer_Token*>(tokens->GetMemPtr(position));
}

static inline bool zrExe_IsVariableToken(long kind) {
    return kind == ZREXE_TOKEN_VARIABLE || kind == ZREXE_TOKEN_LOCAL || kind == ZREXE_TOKEN_INTERPROCESS;
}

// The errors of the guards end a run as they are: nothing is said behind them.
static inline bool zrExe_IsGuardError(long error) {
    return error == kErrorTooDeep.number || error == kErrorTimeLimit.number || error == kErrorMemory.number;
}

static inline bool zrExe_IsNumberToken(long kind) { return kind == ZREXE_TOKEN_NUMBER || kind == ZREXE_TOKEN_LONGINT; }

// Toward zero; what is beyond 64 bits, infinite or no number gives the lowest one, as the processor's own conversion.
static inline long zrExe_Truncate(double number) {
    bool fits = number >= -9223372036854775808.0 && number < 9223372036854775808.0;
    return fits ? static_cast<long>(number) : -9223372036854775807L - 1;
}

static inline void zrExe_CreateEmptyToken(ZR_Executer_Token* token) {
    token->Create(ZREXE_TOKEN_OTHER, nullptr);
    token->value.integer = 0;
}

// Puts a token into the list in front of position [1..count + 1]; the list takes it over and source is left empty.
static inline void zrExe_MoveToken(ZR_Handle* tokens, long position, ZR_Executer_Token* source) {
    char* gap = tokens->InsertElement(position - 1, 1);
    if (!gap) return;
    memcpy(gap, static_cast<void*>(source), sizeof(ZR_Executer_Token));
    zrExe_CreateEmptyToken(source);
}

// Whether two texts may become one, in units.
static inline bool zrExe_TextsFit(long left, long right) {
    return left <= ZR_MAX_TEXT_UNITS - right && (left + right < ZR_SMALL_BYTES || ZR_MemoryAllows(right * 2));
}

static inline void zrExe_ReleaseObject(void* object) {
    if (object) PA_DecrementObjectRef(object);
}
static inline void zrExe_ReleaseCollection(void* collection) {
    if (collection) PA_DecrementCollectionRef(collection);
}

// The number table of an accumulator: the float of the operator, the accumulator's number for any other operator.
double zrExe_FoldNumber(ZR_ExecutionContext* context, double left, double right, unsigned short formula);
long zrExe_FoldTime(ZR_ExecutionContext* context, long left, long right, unsigned short formula);

// Runs a method of the context in a frame of its own; $0 goes into answer, if it is set.
void zrExe_CallMethod(ZR_ExecutionContext* context, long reference, ZR_Handle* parameters, ZR_Executer_Token* answer);
void zrExe_RunFrame(ZR_ExecutionContext* context, ZR_Executer_Stack* frame);  // a call: stepping over passes it
unsigned long zrExe_Power(unsigned long base, unsigned long exponent);        // modulo 2^64
ZR_EXE_VariableKind zrExe_DeclaredKind(long commandID);                       // of a declaration command; 5 = none
bool zrExe_ForPass(ZR_Executer_Stack* frame, ZR_Executer_Variable* variable, bool first, long step, long end);
void zrExe_StoreField(short table, short field, short type, ZR_Executer_Token* value);  // the kinds fit

// Evaluates the tokens [first..last] of a list into value, which the caller has created.
void zrExe_EvaluateSlice(ZR_ExecutionContext* context, ZR_Handle* tokens, long first, long last,
                         ZR_Executer_Token* value);

#endif
