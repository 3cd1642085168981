// The prepared form of a line: its brackets in the order in which they close, and flat blocks of items in their place.
// It gives exactly what the plain form gives. Where it meets anything it does not know (a kind without a quick fold, an
// error to be worded, a value that is missing), it hands the line over to the plain form at the last finished bracket:
// blocks have no effects of their own, so whatever a call has done is done once.
#ifndef ZR_API_PREPARED_PRIVATE_H
#define ZR_API_PREPARED_PRIVATE_H

#include "runtime/ZR_API_MethodIndex_Private.h"
#include "runtime/ZR_API_Runtime_Private.h"

enum ZR_PreparedItemKind : short {
    kItemNumber,    // number
    kItemText,      // text, borrowed from the method's token
    kItemDate,      // integer: three units
    kItemTime,      // integer
    kItemVariable,  // token: name and scope; hint; index blocks
    kItemTemp,      // integer: the bracket whose value stands here
    kItemFormula,   // integer: the operator
    kItemLogic,     // integer: 1 &, 2 |
    kItemTruth,     // integer: 1 or 0; the commands True and False by number
    kItemKeyword    // integer: a keyword that does nothing here, but may be refused
};

struct ZR_PreparedItem {
    ZR_PreparedItemKind kind;
    short command;     // kItemTruth, kItemKeyword: the number that has to be allowed
    int hint;          // variables: where the name stood last in its list
    int textBlock;     // variables: the block of a [[index]] behind, -1 = none
    int textNext;      // and the item to go on at
    int elementBlock;  // the same for {index}
    int elementNext;
    union {
        double number;
        long integer;
        ZR_Executer_Token* token;
        ZR_Text* text;
    };
};

struct ZR_PreparedBlock {  // one or two runs of items, [0..)
    int first, count;      // the block, or the left side of its comparison
    int rightFirst, rightCount;
    int comparison;  // 0 = none
};

struct ZR_PreparedParameter {
    int block;                  // -1 = handed over unevaluated
    int firstToken, lastToken;  // then: positions in the method's token list
};

enum ZR_PreparedStepKind : short { kStepGroup, kStepCommand, kStepMethod, kStepDeclaration };

struct ZR_PreparedStep {  // a bracket
    ZR_PreparedStepKind kind;
    short id;                   // command
    int firstToken, lastToken;  // what the value stands for; positions in the method's token list
    int firstParameter, parameterCount;
    int block;             // group
    ZR_Text* name;         // method; borrowed from its token
    long methodReference;  // found last, valid for this state of the context's list of methods
    long methodCount, nextMethodReference;
};

enum ZR_PreparedStatement : short { kRunAssignment, kRunExpression, kRunCondition, kRunFor };

struct ZR_PreparedLine {
    bool plain;  // cannot be prepared, or has been handed over too often
    int handedOver;
    ZR_PreparedStatement statement;
    short keyword;  // conditions and loops
    int tempCount;
    ZR_Executer_Token* target;  // assignment, loop: the variable; borrowed
    int targetHint;
    int indexBlock;  // assignment to an element; -1 = none
    int blocks[4];   // value or condition; start, end, step of a loop
    bool appends;    // $s:=$s+...: the parts behind are added in place
    ZR_Handle items, blocksList, steps, parameters;
};

inline constexpr int ZR_MAX_TEMPS = 12;

// Works out the prepared form of the tokens [first..last]; null = no memory.
ZR_PreparedLine* zrExe_PrepareLine(ZR_ExecutionMethod* method, const ZR_MethodLine* line);

// True = the line has run (state and result as the plain form would leave them, or lastError set).
bool zrExe_RunPrepared(ZR_ExecutionContext* context, ZR_Executer_Stack* frame, ZR_ExecutionMethod* method,
                       ZR_MethodLine* line, long* state, ZR_Executer_Token* result);

#endif
