// A method as the interpreter holds it: a flat list of tokens with a line token ahead of every line, and the frame of a
// call. Lines and positions count from 1. Where lines begin, how deep they lie and where jumps go is worked out once
// and kept beside the method; the token list stays the truth.
#ifndef ZR_API_METHOD_H
#define ZR_API_METHOD_H

#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Text.h"
#include "runtime/ZR_API_Variables.h"

struct ZR_MethodIndex;
struct ZR_VariableIndex;

struct ZR_ExecutionMethod {
    ZR_Text name;      // empty for a nameless method
    ZR_Handle tokens;  // of ZR_Executer_Token, without tokens of kind 999
    long reference;
    ZR_MethodIndex* index;  // owned; null until the first run

    void Create(ZR_Text* name, ZR_Handle* blob, long reference);  // null name, null blob = empty
    void Create(ZR_ExecutionMethod* source, long reference);      // deep copy
    void Dispose();
};

struct ZR_Executer_Stack {  // one call
    long methodReference;
    bool inCaseCondition;
    ZR_Handle localVariables;  // of ZR_Executer_Variable
    ZR_Handle activeForLines;  // of long
    long currentLine;          // 0 in a new frame
    ZR_VariableIndex* index;   // of localVariables; owned; null until needed
    long parked;               // records of localVariables behind count that an earlier call left for reuse

    void Create(long methodReference);
    void Dispose();
    void CreateFor(ZR_ExecutionMethod* method);   // as Create, with the variables that an earlier call left
    void DisposeFor(ZR_ExecutionMethod* method);  // as Dispose; leaves the variables to the next call; null = none
    ZR_Executer_Variable* AppendLocal(const unsigned short* name, long length,
                                      ZR_EXE_VariableKind kind);  // null = no memory
    ZR_Executer_Variable* GetLocalVariable(ZR_Text* name);        // null = none
};

bool zrExe_FindLineToExecute(ZR_ExecutionMethod* method, long line, long* first, long* last);  // false = no such line
long zrExe_GetCurrentEbene(ZR_ExecutionMethod* method, long line);           // nesting depth of a line
long zrExe_GetLineContext(ZR_ExecutionMethod* method, long line);            // 1 in an If, 2 in a Case of, 0 neither
long zrExe_ExecuteJump(ZR_ExecutionMethod* method, long line, long target);  // the line to go on at, 0 = none
long zrExe_ExecuteJumpBack(ZR_ExecutionMethod* method, long line, long target);  // the same, backward

#endif
