// A running instance of the interpreter: its methods, its process and interprocess variables, the commands that it may
// run, the chain of active calls and the one error slot. Everything that runs 4D code hangs on a context. A context
// belongs to one process at a time and has no lock.
//
// Nothing throws and nothing returns an error: whoever fails calls SetError, and every statement, block and parameter
// loop tests lastError next and unwinds.
#ifndef ZR_API_CONTEXT_H
#define ZR_API_CONTEXT_H

#include "core/ZR_API_Geometry.h"
#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Text.h"
#include "core/ZR_API_TextArray.h"
#include "language/ZR_API_Executer.h"
#include "language/ZR_API_Token.h"
#include "runtime/ZR_API_Errors.h"
#include "runtime/ZR_API_Method.h"
#include "runtime/ZR_API_VariableIndex.h"
#include "runtime/ZR_API_Variables.h"

struct ZR_ExecutionContext;

// Hook of the embedding program; called with id -1 and null lists when a line has ended in error, and for the private
// commands 40002, 40003, 40004, 40005 and 40010.
typedef void (*ZR_ContextCallback)(ZR_ExecutionContext* context, long id, ZR_Handle* parameters,
                                   ZR_Executer_Token* result, void* data);

// Asked for a method that the context does not hold, before the host is; it may call CreateMethod. True = it did.
typedef bool (*ZR_MethodSource)(ZR_ExecutionContext* context, ZR_Text* name, void* data);

struct ZR_ErrorCall {
    long methodReference;
    long line;
};

struct ZR_ExecutionContext {
    long reference;
    long lastError;            // 0 = none; numbers in ZR_API_Errors.h
    long lastErrorLine;        // of the frame that was current
    long lastErrorMethod;      // its method reference
    long nextMethodReference;  // from 1, never reused
    ZR_Handle methods;         // of ZR_ExecutionMethod, in load order
    ZR_Handle processVariables;
    ZR_Handle interprocessVariables;
    ZR_Handle methods4D;  // of ZR_Executer_4DMethod
    ZR_Handle virtualStructure;
    long nextVirtualReference;
    ZR_Handle stacks;  // of ZR_Executer_Stack*, outermost first; borrowed
    ZR_Handle sets;
    ZR_Handle allowedCommands;  // of ZR_AllowedCommand
    ZR_Text lastErrorText;      // grows by every SetError
    bool probeMode;             // only in the registry's scratch context
    bool probeSupported;
    bool useVirtualStructure;
    ZR_Executer_Token result;  // of the line last run
    ZR_TextArray queryTexts;   // kept for queries that the host builds over several calls
    ZR_ContextCallback callback;
    void* callbackData;
    ZR_Executer_Stack rootStack;  // of a method started from outside; its locals outlive a run
    bool preemptive;              // of the process that made the context
    bool traceRequested;
    bool traceEnabled;
    bool breakAtStart;
    bool stepOver;
    bool abortRequested;
    bool stepInto;
    void* debuggerDialog;
    ZR_Rect debuggerRect;
    ZR_Text debuggerTitle;
    void* debuggerWindow;
    // What the guards and the indexes need.
    ZR_VariableIndex processIndex, interprocessIndex;
    ZR_Handle allowedIndex;    // of int: record of command N in allowedCommands, [1..], 0 = none
    long allowedIndexed;       // length of allowedCommands when the index was made
    ZR_Handle deletedMethods;  // of ZR_ExecutionMethod: deleted while something ran, kept until nothing does
    ZR_MethodSource methodSource;
    void* methodSourceData;
    double deadline;       // monotonic seconds, 0 = none
    long stackReserve;     // bytes of native stack that a call must leave
    long maxCalls;         // 0 = as deep as the native stack allows
    ZR_Handle errorCalls;  // of ZR_ErrorCall: where every active call stood at the last SetError, innermost first
    bool plainOnly;        // run every line in its plain form, for comparing with the prepared one

    void Create(long reference, ZR_Handle* commands);  // null commands = an empty allowed list
    void Dispose();

    // Methods and frames ----------------------------------------------------------------------------------------
    void DeleteAllMethods();  // the caller makes a new list
    void CreateMethod(ZR_Text* name, ZR_Handle* blob);
    ZR_ExecutionMethod* GetMethodPtrByName(ZR_Text* name);  // the host's comparison, so @ is a wildcard; null = none
    ZR_ExecutionMethod* GetMethodPtrByReference(long reference);
    bool DeleteMethodByID(long reference);
    ZR_Executer_Stack* GetCurrentStack();
    ZR_Executer_Stack* GetStack(long index);                       // below 1 = rootStack; null outside
    ZR_Handle* GetVStructure(ZR_Handle* explicitList);             // null = none in use
    void ExecuteMethod(ZR_Executer_Stack* frame, long startLine);  // below 1 = the whole method, else that one line

    // Errors and OK ---------------------------------------------------------------------------------------------
    void SetError(long number, long piece);
    void SetError(long number, char* piece);
    void SetError(long number, char const* piece);
    void SetError(long number, ZR_Text* piece);
    void Fail(const ZR_ErrorWords& words);
    void Fail(const ZR_ErrorWords& words, ZR_Text* name);
    void Fail(const ZR_ErrorWords& words, ZR_Text* name, long index, long size);
    void Fail(const ZR_ErrorWords& words, long first, long second);
    void SetOKVariable();
    void SetOKVariable(bool ok);

    // Variables -------------------------------------------------------------------------------------------------
    ZR_Executer_Variable* GetVariableFromToken(ZR_Executer_Token* token, bool create);  // null = none, no error
    ZR_Executer_Variable* GetVariableFromPointerToken(ZR_Executer_Token* token);
    ZR_Executer_Variable* SetVariable(ZR_Executer_Token* target, ZR_Executer_Token* source, ZR_EXE_VariableKind kind,
                                      long index);
    long FindTokenInArray(ZR_Executer_Variable* array, ZR_Executer_Token* token, long start);  // [1..count], -1 = none
    void AppendTokenToArray(ZR_Executer_Variable* array, ZR_Executer_Token* token);
    bool Get4DVariable(ZR_Text* name);
    bool Set4DVariable(ZR_Text* name);

    // Statements ------------------------------------------------------------------------------------------------
    long ExecuteMethodLine(long line, ZR_Executer_Token* result);  // the next line, 0 past the end
    void HandleCaseOf(ZR_ExecutionMethod* method, ZR_Executer_Stack* frame, long* nextLine, long* state);
    void ExecuteHandleToPointers(ZR_ExecutionMethod* method, ZR_Handle* tokens);
    void ExecuteMethodLineSub(long* state, ZR_Handle* tokens);
    void ExecuteExpandBrackets(ZR_Handle* tokens);
    void ExecuteHandleIf(ZR_Handle* tokens, long* state);
    void ExecuteHandleWhile(ZR_Handle* tokens, long* state);
    void ExecuteHandleRepeatUntil(ZR_Handle* tokens, long* state);
    void ExecuteHandleFor(ZR_Executer_Stack* frame, ZR_Handle* tokens, long* state);
    void ExecuteAssignment(ZR_Handle* left, ZR_Executer_Token* value);
    ZR_Executer_Token GetAssignmentTokenFromObject(ZR_Handle* left);  // handed over
    void SetField(short table, short field, ZR_Executer_Token* value);

    // Expressions -----------------------------------------------------------------------------------------------
    void ExecuteTokenizedBlock(ZR_Executer_Token* value, ZR_Handle* tokens, long commandID);
    void ExecuteTokenizedBlockSub(ZR_Executer_Token* value, ZR_Handle* tokens, long commandID);
    bool ExecuteTokenizedComparison(ZR_Executer_Token* left, ZR_Executer_Token* right, long comparison);
    void ExecuteTokenizedBlockNumber(double number, ZR_Executer_Token* value, unsigned short formula);
    void ExecuteTokenizedBlockTime(long seconds, ZR_Executer_Token* value, unsigned short formula);
    void ExecuteTokenizedBlockDate(ZR_Date* date, ZR_Executer_Token* value, unsigned short formula);
    void ExecuteTokenizedBlockText(ZR_Text* text, ZR_Executer_Token* value, unsigned short formula);
    void ExecuteTokenizedBlockBoolean(bool flag, ZR_Executer_Token* value, long logic);
    void ExecuteTokenizedBlockBlob(ZR_Handle* blob, ZR_Executer_Token* value);
    void ExecuteTokenizedBlockPicture(ZR_Picture* picture, ZR_Executer_Token* value);
    void ExecuteTokenizedBlockObject(void* object, ZR_Executer_Token* value);
    void ExecuteTokenizedBlockCollection(void* collection, ZR_Executer_Token* value);
    void ExecuteTokenizedBlockPointer(ZR_Executer_Token* pointer, ZR_Executer_Token* value);
    void ExecuteTokenizedBlock4DCommand(long id, ZR_Executer_Token* value, unsigned short formula);
    void ExecuteTokenizedBlockField(long table, long field, ZR_Executer_Token* value, unsigned short formula,
                                    long logic);
    void ExecuteTokenizedBlockMember(ZR_Text* name, ZR_Executer_Token* value);
    void ExecuteTokenizedBlockMemberFunction(ZR_Text* name, ZR_Handle* parameters, ZR_Executer_Token* value);

    // Commands and calls ----------------------------------------------------------------------------------------
    void Execute4DCommand(ZR_Handle* parameters, long id, ZR_Executer_Token* result);
    bool Execute4DCommandCheckParam(ZR_Handle* parameters, short* expected, long count, bool* wrongCount,
                                    bool* wrongType);
    void ExecuteParameters(ZR_Handle* parameters, long id);
    void ExecuteTokenizedBlock4DMethod(ZR_Text* name, ZR_Handle* parameters, ZR_Executer_Token* result);
    ZR_AllowedCommand* Search4DCommandForExecution(long id);  // null = no record
    void GetAllowedCommands(PA_Variable* ids);
    void SetAllowedCommands(PA_Variable* ids, ZR_EXE_SetAllowed mode);
    bool ExecuteGenericCommand(long id, ZR_Text* methodName, ZR_Handle* parameters, ZR_Executer_Token* result);
    bool ExecuteGenericObjectMemberFunction(ZR_Text* name, ZR_Handle* parameters, ZR_Executer_Token* object);

    // One handler for each range of numbers; the tables behind them stand in ZR_API_CommandTable.cpp.
    typedef ZR_Handle List;
    typedef ZR_Executer_Token Token;
    void Execute4DCommand_0001_0020(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0021_0040(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0041_0060(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0061_0080(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0081_0100(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0101_0120(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0141_0160(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0161_0180(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0181_0200(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0201_0220(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0221_0240(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0241_0260(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0261_0280(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0281_0300(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0301_0320(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0321_0340(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0341_0360(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0361_0380(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0381_0400(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0441_0460(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0481_0500(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0501_0600(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0601_0699(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0701_0799(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0881_0900(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0901_0920(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_0951_1000(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_1001_2000(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);
    void Execute4DCommand_30000(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                bool* wrongType);
    void Execute4DCommand_40000(List* parameters, long id, Token* result, bool* notSupported, bool* wrongCount,
                                bool* wrongType);
    void Execute4DCommand_0121_0140(ZR_Handle* parameters, long id, bool* notSupported, bool* wrongCount,
                                    bool* wrongType);  // no command of this range returns a value

    // Debugger --------------------------------------------------------------------------------------------------
    void CallDebuggerIfNecessary();
    void UpdateDebugger();
    void CloseDebuggerIfNecessary();
    void DebuggerReset();

    // Guards ----------------------------------------------------------------------------------------------------
    bool CheckDepth();     // false and error -61 if a further call would not fit
    bool CheckDeadline();  // false and error -62 if the time is up
};

// A call from outside: rootStack is made anew when the method is another one than last time.
void zrExe_RunMethod(ZR_ExecutionContext* context, ZR_ExecutionMethod* method, long startLine);

bool zrExe_GetDoExecuteParameters(long id, long index, ZR_Handle* parameterTokens);
bool zrExe_GetVariablePointer(ZR_Text* name, ZR_Executer_Token* token);
long zrExe_GetColor(ZR_Text* text);  // 0xRRGGBB
void ZR_ExecuteCode(ZR_Text* code);  // through the host, line by line

#endif
