// What is worked out once for a method: where lines begin, what they begin with, how deep they lie. Made from the token
// list and thrown away when the list is another one.
#ifndef ZR_API_METHOD_INDEX_PRIVATE_H
#define ZR_API_METHOD_INDEX_PRIVATE_H

#include "runtime/ZR_API_Method.h"

struct ZR_PreparedLine;

struct ZR_MethodLine {
    int first, last;    // positions of the first and the last token; last below first = an empty line
    int keyword;        // 30001 to 30012, 0 = none
    int ebene;          // nesting depth
    int context;        // 1 in an If, 2 in a Case of, 0 neither
    int jumpTarget[2];  // the targets asked for last, and where they lead
    int jumpLine[2];
    ZR_PreparedLine* prepared;  // owned; null = not tried yet
};

struct ZR_SpareLocals {
    ZR_Handle variables;  // count 0
    long parked;          // records that are alive all the same: named and empty
};

struct ZR_MethodIndex {
    ZR_Handle spares;  // of ZR_SpareLocals: what ended calls left
    ZR_Handle lines;   // of ZR_MethodLine, [1..count]
    char* tokenData;   // of the list that this was made from
    long tokenCount;
};

// The index, made when needed; null if there is no memory for it.
ZR_MethodIndex* zrExe_GetMethodIndex(ZR_ExecutionMethod* method);
void zrExe_DisposeMethodIndex(ZR_ExecutionMethod* method);
ZR_MethodLine* zrExe_GetMethodLine(ZR_ExecutionMethod* method, long line);  // null = no such line
void zrExe_DisposePreparedLine(ZR_PreparedLine* line);                      // null is fine

#endif
