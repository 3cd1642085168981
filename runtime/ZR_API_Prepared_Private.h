// The prepared form of a line: what its tokens mean, worked out once. It gives what the plain form gives, or nothing at
// all: a line that it cannot run to the end, it leaves as if it had not been touched.
#ifndef ZR_API_PREPARED_PRIVATE_H
#define ZR_API_PREPARED_PRIVATE_H

#include "runtime/ZR_API_MethodIndex_Private.h"
#include "runtime/ZR_API_Runtime_Private.h"

// True = the line has run (state and result as the plain form would leave them, or lastError set).
bool zrExe_RunPrepared(ZR_ExecutionContext* context, ZR_Executer_Stack* frame, ZR_ExecutionMethod* method,
                       ZR_MethodLine* line, long* state, ZR_Executer_Token* result);

#endif
