// When a run stops for the debugger, and what its dialog form hears and answers. The form "Debugger_New" belongs to the
// host's database; without one the calls are refused and a run goes on.

#include "plugin/ZR_API_Bridge.h"
#include "runtime/ZR_API_Context.h"

static const char kForm[] = "Debugger_New";
static const char kContext[] = "vl_debugger_context";
static const char kRedraw[] = "vl_debugger_redraw";
static const char kError[] = "vt_debug_error";

enum { kDialogClosed = 2, kVariableNameUnits = 256 };

static constexpr struct {
    const char* name;
    bool stepOver, abort, stepInto;
} kButtons[] = {
    {"vl_step_over", true, false, false},
    {"vl_abort", false, true, false},
    {"vl_resume", false, false, false},
    {"vl_step_into", false, false, true},
};

static void SetFlags(ZR_ExecutionContext* context, bool over, bool abort, bool into) {
    context->stepOver = over;
    context->abortRequested = abort;
    context->stepInto = into;
}

static PA_Dial4D Dialog(ZR_ExecutionContext* context) { return static_cast<PA_Dial4D>(context->debuggerDialog); }

static bool OpenDialog(ZR_ExecutionContext* context) {
    if (context->debuggerDialog) return true;
    ZR_Text form;
    form.Create();
    form.AddString(kForm);
    const ZR_Rect& where = context->debuggerRect;
    PA_Rect bounds = {static_cast<short>(where.top), static_cast<short>(where.left), static_cast<short>(where.bottom),
                      static_cast<short>(where.right)};
    context->debuggerDialog = PA_OpenDialog(nullptr, form.GetUniCharPtr(), context->debuggerTitle.GetUniCharPtr(), 1,
                                            bounds, /*centred*/ true);
    form.Dispose();
    if (!context->debuggerDialog) return false;
    context->debuggerWindow = reinterpret_cast<void*>(PA_Dial4DWindowFromDial4D(Dialog(context)));
    PA_Dial4DBeginUpdateVariables(Dialog(context));
    PA_Dial4DSet(Dialog(context), kContext, context->reference);
    PA_Dial4DEndUpdateVariables(Dialog(context));
    return true;
}

static void ShowState(ZR_ExecutionContext* context) {
    PA_Dial4DBeginUpdateVariables(Dialog(context));
    PA_Dial4DSet(Dialog(context), kRedraw, 1L);
    PA_Dial4DSet(Dialog(context), kError, &context->lastErrorText);
    PA_Dial4DEndUpdateVariables(Dialog(context));
}

// True = the name is a button, and its flags are set.
static bool Press(ZR_ExecutionContext* context, const PA_Unichar* name) {
    ZR_Text text;
    text.Create(name);
    bool found = false;
    for (const auto& button : kButtons) {
        if (!text.Equal(button.name)) continue;
        SetFlags(context, button.stepOver, button.abort, button.stepInto);
        found = true;
    }
    text.Dispose();
    return found;
}

// What ended the dialog's turn.
static long WaitForUser(ZR_ExecutionContext* context) {
    PA_Unichar name[kVariableNameUnits] = {};
    long answer;
    while ((answer = PA_ModalDialog(Dialog(context), name)) == 0)
        if (Press(context, name)) return 0;
    if (answer == kDialogClosed) SetFlags(context, false, true, false);
    return answer;
}

// Where the window stands; a side that comes back as another kind gives 0.
static void NoteRectangle(ZR_ExecutionContext* context) {
    ZR_Rect* where = &context->debuggerRect;
    float* sides[] = {&where->left, &where->top, &where->right, &where->bottom};
    PA_Variable arguments[5];
    for (PA_Variable& argument : arguments) argument = PA_CreateVariable(eVK_Longint);
    PA_SetLongintVariable(&arguments[4], static_cast<int>(reinterpret_cast<long>(context->debuggerWindow)));
    PA_Variable answer = PA_ExecuteCommandByID(443, arguments, 5);
    for (int i = 0; i < 4; ++i)
        *sides[i] = arguments[i].fType == eVK_Longint ? static_cast<float>(PA_GetLongintVariable(&arguments[i])) : 0;
    for (PA_Variable& argument : arguments) PA_ClearVariable(&argument);
    PA_ClearVariable(&answer);
}

static void CloseDialog(ZR_ExecutionContext* context) {
    PA_CloseDialog(Dialog(context));
    context->debuggerDialog = nullptr;
    context->debuggerWindow = nullptr;
}

void ZR_ExecutionContext::CallDebuggerIfNecessary() {
    if (!traceRequested && breakAtStart && stacks.count == 1 && GetStack(1)->currentLine == 1) traceRequested = true;
    if (!traceRequested && !stepOver && !stepInto) return;
    stepOver = false;
    traceRequested = false;
    if (!OpenDialog(this)) return;
    ShowState(this);
    long answer = WaitForUser(this);
    if ((stepOver || stepInto) && answer != kDialogClosed) return;
    NoteRectangle(this);
    CloseDialog(this);
}

void ZR_ExecutionContext::UpdateDebugger() {
    if (debuggerDialog) PA_Dial4DSet(Dialog(this), kError, &lastErrorText);
}

void ZR_ExecutionContext::CloseDebuggerIfNecessary() {
    if (!stacks.count && debuggerDialog) CloseDialog(this);
}

void ZR_ExecutionContext::DebuggerReset() {
    debuggerDialog = nullptr;
    debuggerWindow = nullptr;
    SetFlags(this, false, false, false);
}
