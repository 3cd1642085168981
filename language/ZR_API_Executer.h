// The Executer: the one global object of the language. It owns the table of commands, the code styles, the table of
// execution contexts and the separators. One is created at start, before any use, and handed to every zrExe_ call.
// The command table is not shipped: the running host names every number in its own language, and the interpreter's own
// handlers tell which of them can run. It is written once and then only read, so that any thread may tokenise.
#ifndef ZR_API_EXECUTER_H
#define ZR_API_EXECUTER_H

#include "core/ZR_API_AtomicHandle.h"
#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Text.h"
#include "core/ZR_API_TextArray.h"
#include "language/ZR_API_CodeStyle.h"
#include "language/ZR_API_VirtualStructure.h"

struct ZR_ExecutionContext;
enum ZR_EXE_VariableKind : int;

// The command table: row N is GetMemPtr(N).
enum : long {
    ZR_EXE_HOST_COMMANDS = 2000,      // rows [1..2000] are host commands 1 to 2000
    ZR_EXE_FIRST_KEYWORD_ROW = 2001,  // rows [2001..2012]
    ZR_EXE_FIRST_PSEUDO_ROW = 2013,   // rows [2013..2022]
    ZR_EXE_COMMAND_ROWS = 2022,
    ZR_EXE_FIRST_KEYWORD_ID = 30001,
    ZR_EXE_FIRST_PSEUDO_ID = 40001,
    ZR_EXE_LAST_AVAILABLE_ID = 9999  // GetAvailableCommands lists up to here
};

enum : long {  // keywords and pseudo-commands
    ZR_CMD_IF = 30001,
    ZR_CMD_ELSE = 30002,
    ZR_CMD_END_IF = 30003,
    ZR_CMD_FOR = 30004,
    ZR_CMD_END_FOR = 30005,
    ZR_CMD_REPEAT = 30006,
    ZR_CMD_UNTIL = 30007,
    ZR_CMD_WHILE = 30008,
    ZR_CMD_END_WHILE = 30009,
    ZR_CMD_CASE_OF = 30010,
    ZR_CMD_END_CASE = 30011,
    ZR_CMD_BRANCH = 30012,  // the : of Case of
    ZR_CMD_GET_COLOR = 40001,
    ZR_CMD_GET_FITTING_TEXT = 40002,
    ZR_CMD_GET_CURRENT_EXECUTION_CONTEXT = 40003,
    ZR_CMD_ADD_STYLED_TEXT = 40004,
    ZR_CMD_SET_CHART_DATA = 40005,
    ZR_CMD_GET_4D_VARIABLE_POINTER = 40006,
    ZR_CMD_GET_4D_VARIABLE = 40007,
    ZR_CMD_SET_4D_VARIABLE = 40008,
    ZR_CMD_HTML_ENCODE = 40009,
    ZR_CMD_SET_ANCHOR = 40010
};

struct ZR_BuiltInCommandRow {
    long id;
    const char* english;
    const char* other;  // spelling on any host whose command 1 is not "Sum"
};
inline constexpr ZR_BuiltInCommandRow kZR_BuiltInCommands[] = {
    // keywords of the language, rows from 2001
    {ZR_CMD_IF, "If", "Si"},
    {ZR_CMD_ELSE, "Else", "Sinon"},
    {ZR_CMD_END_IF, "End If", "Fin de si"},
    {ZR_CMD_FOR, "For", "Boucle"},
    {ZR_CMD_END_FOR, "End For", "Fin de boucle"},
    {ZR_CMD_REPEAT, "Repeat", "Repeter"},
    {ZR_CMD_UNTIL, "Until", "Jusque"},
    {ZR_CMD_WHILE, "While", "Tant que"},
    {ZR_CMD_END_WHILE, "End while", "Fin tant que"},
    {ZR_CMD_CASE_OF, "Case of", "Au cas ou"},
    {ZR_CMD_END_CASE, "End case", "Fin de cas"},
    {ZR_CMD_BRANCH, ":", ":"},
    // pseudo-commands of this interpreter, rows from 2013
    {ZR_CMD_GET_COLOR, "_Get Color", "_Get Color"},
    {ZR_CMD_GET_FITTING_TEXT, "_Get Fitting Text", "_Get Fitting Text"},
    {ZR_CMD_GET_CURRENT_EXECUTION_CONTEXT, "_Get Current Execution Context", "_Get Current Execution Context"},
    {ZR_CMD_ADD_STYLED_TEXT, "_Add Styled Text", "_Add Styled Text"},
    {ZR_CMD_SET_CHART_DATA, "_Set Chart Data", "_Set Chart Data"},
    {ZR_CMD_GET_4D_VARIABLE_POINTER, "_Get 4D Variable Pointer", "_Get 4D Variable Pointer"},
    {ZR_CMD_GET_4D_VARIABLE, "_GET 4D VARIABLE", "_GET 4D VARIABLE"},
    {ZR_CMD_SET_4D_VARIABLE, "_SET 4D VARIABLE", "_SET 4D VARIABLE"},
    {ZR_CMD_HTML_ENCODE, "_HTML Encode", "_HTML Encode"},
    {ZR_CMD_SET_ANCHOR, "_SET ANCHOR", "_SET ANCHOR"},
};
static_assert(sizeof(kZR_BuiltInCommands) / sizeof(kZR_BuiltInCommands[0]) ==
                  ZR_EXE_COMMAND_ROWS - ZR_EXE_HOST_COMMANDS,
              "one row each");

struct ZR_Executer_Command {
    long id;            // 0 = a number that the host does not know
    ZR_Text name;       // spelling for output; owned
    ZR_Text upperName;  // the search key; owned
    bool supported;     // the interpreter has a handler
    bool threadSafe;    // the host allows it on a preemptive thread
};

struct ZR_AllowedCommand {  // the run-time gate of a context
    long id;
    bool allowed;
    bool threadSafe;
};

enum ZR_EXE_SetAllowed : int {
    ZR_EXE_AllowOnly = 0,    // clear all of 1 to 2000, then set the listed
    ZR_EXE_AllowAdd = 1,     // set the listed
    ZR_EXE_AllowRemove = 2,  // clear the listed
    ZR_EXE_AllowAll = 3      // set all; the list is not read
};

struct ZR_Executer {
    ZR_AtomicHandle contexts;          // ZR_ExecutionContext by reference
    ZR_AtomicHandle codeStyles;        // ZR_Executer_Codestyle; any thread, under its lock
    ZR_Handle commands;                // ZR_Executer_Command, 2022 rows; read-only after InitCommands
    unsigned short decimalSeparator;   // 0 = the host has none: only digits make a number
    unsigned short thousandSeparator;  // kept, not used
    bool isEnglish;                    // command 1 is named "Sum"
    ZR_Handle commandIndex;            // of upperName; made from commands by FinishCommands; empty = rows are scanned
    ZR_VStructureCache captionIndex;   // of the virtual structure last tokenised with

    // Life
    void Create();        // commands, separators, empty tables
    void CreateTables();  // empty tables over raw memory, no host call: Create without commands and separators
    void Dispose();       // contexts are the caller's to delete first

    // The command table. InitCommands is defined in runtime/, for it asks the handlers; its steps are:
    // CreateCommands, then for N from 1 to 2000 ReadHostCommand and the probe, then FinishCommands.
    void InitCommands();
    void CreateCommands();                              // 2022 empty rows; the old ones are disposed
    ZR_Executer_Command* ReadHostCommand(long number);  // row [1..2000] from the host; null = the host has no such name
    void FinishCommands();                              // isEnglish, rows 2001 to 2022, search keys, index
    void DeinitCommands();                              // the rows and commands only
    ZR_Executer_Command* Search4DCommandForTokenization(ZR_Text* name);  // any ASCII case; null = none
    ZR_Executer_Command* Search4DCommandForTokenization(const unsigned short* units, long count);
    void Get4DCommand(long id, ZR_Text* out);     // appends the name; nothing for an unknown number
    void GetAvailableCommands(PA_Variable* out);  // longint array of the supported numbers up to 9999
    void GetSystemFormat();                       // reads the separators again
    void ReadStructure();                         // does nothing

    // Code styles
    void SetCodeStyle(short type, ZR_RGBColor color, short style);  // under the lock; overwrites or appends
    ZR_Executer_Codestyle* GetCodeStyleByType(long type);           // null = none; the caller holds the lock

    // Execution contexts: defined in runtime/
    ZR_ExecutionContext* CreateExecutionContext();  // caller ends it by DeleteExecutionContext
    void DeleteExecutionContext(ZR_ExecutionContext* context);
    ZR_ExecutionContext* GetExecutionContextPtrByReference(long reference);  // borrowed; null = unknown here
    void GetContextList(PA_Variable* references, PA_Variable* threads);

    // Text to tokens. vstructure, runs and styles may be null; styles is read only with runs.
    void Tokenize(ZR_Text* source, ZR_Handle* blob, ZR_Handle* vstructure, ZR_Handle* runs, ZR_Handle* styles);
    void TokenizeToTokens(ZR_Text* source, ZR_Handle* tokens, ZR_Handle* vstructure, ZR_Handle* runs,
                          ZR_Handle* styles);  // appends to tokens, and ZR_Executer_CodeRun to runs
};

void ZR_GetCommandName(long id, ZR_Text* name, bool* threadSafe);  // replaces name; empty = unknown
void ZR_GetCommandName(long id, ZR_Text* name);
void ZR_GetSystemFormat(long format, ZR_Text* out);  // replaces out
int zrExe_MapVarKindTo4D(ZR_EXE_VariableKind kind);  // older number of a kind: 34, 33, 10 give 18, 2, 3

#endif
