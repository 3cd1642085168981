#include "runtime/ZR_API_Context.h"

#include <cstring>

#include "core/ZR_API_BLOBArray.h"
#include "language/ZR_API_TokenList.h"
#include "language/ZR_API_VirtualStructure.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Guards.h"

static ZR_ExecutionMethod* MethodAt(ZR_Handle* methods, long index) {
    return reinterpret_cast<ZR_ExecutionMethod*>(methods->GetMemPtr(index));
}

// Life -------------------------------------------------------------------------------------------------------------

static void FillAllowedCommands(ZR_ExecutionContext* context, ZR_Handle* commands) {
    context->allowedCommands.growStep = commands->count;
    for (long i = 1; i <= commands->count; ++i) {
        ZR_Executer_Command* row = reinterpret_cast<ZR_Executer_Command*>(commands->GetMemPtr(i));
        if (!row->supported) continue;
        ZR_AllowedCommand* record = reinterpret_cast<ZR_AllowedCommand*>(context->allowedCommands.AppendGetPtr());
        if (!record) return;
        *record = {};
        record->id = row->id;
        record->allowed = true;
        record->threadSafe = row->threadSafe;
    }
}

void ZR_ExecutionContext::Create(long newReference, ZR_Handle* commands) {
    reference = newReference;
    lastError = lastErrorLine = lastErrorMethod = 0;
    nextMethodReference = 1;
    methods.Create(sizeof(ZR_ExecutionMethod), 0);
    processVariables.Create(sizeof(ZR_Executer_Variable), 0);
    interprocessVariables.Create(sizeof(ZR_Executer_Variable), 0);
    methods4D.Create(sizeof(ZR_Executer_4DMethod), 0);
    virtualStructure.Create(sizeof(ZR_Executer_VirtualStructure), 0);
    nextVirtualReference = 1;
    stacks.Create(sizeof(ZR_Executer_Stack*), 0);
    stacks.growStep = 64;
    sets.Create(1, 0);
    allowedCommands.Create(sizeof(ZR_AllowedCommand), 0);
    lastErrorText.Create(static_cast<ZR_Text*>(nullptr));
    probeMode = probeSupported = useVirtualStructure = false;
    result.Create(ZREXE_TOKEN_OTHER, nullptr);
    queryTexts.Create();
    callback = nullptr;
    callbackData = nullptr;
    rootStack.Create(0);
    preemptive = ZR_IsCurrentProcessPreemptive();
    traceRequested = traceEnabled = breakAtStart = stepOver = abortRequested = stepInto = false;
    debuggerDialog = nullptr;
    debuggerRect = ZR_Rect();
    debuggerTitle.Create(static_cast<ZR_Text*>(nullptr));
    debuggerWindow = nullptr;
    processIndex.Create();
    interprocessIndex.Create();
    allowedIndex.Create(sizeof(int), 0);
    allowedIndexed = 0;
    methodSource = nullptr;
    methodSourceData = nullptr;
    deadline = 0;
    stackReserve = ZR_STACK_RESERVE;
    maxCalls = 0;
    errorCalls.Create(sizeof(ZR_ErrorCall), 0);
    deletedMethods.Create(sizeof(ZR_ExecutionMethod), 0);
    plainOnly = false;
    if (commands) FillAllowedCommands(this, commands);
}

static void DisposeMethods(ZR_Handle* methods) {
    for (long i = 1; i <= methods->count; ++i) MethodAt(methods, i)->Dispose();
    methods->Resize(0);
}

// While anything runs, a line of the method may be on its way: its tokens are kept until the last frame has ended.
static void DisposeMethod(ZR_ExecutionContext* context, ZR_ExecutionMethod* method) {
    char* kept = context->stacks.count ? context->deletedMethods.AppendGetPtr() : nullptr;
    if (kept) memcpy(kept, static_cast<void*>(method), sizeof *method);
    else method->Dispose();
}

void ZR_ExecutionContext::DeleteAllMethods() {
    for (long i = 1; i <= methods.count; ++i) DisposeMethod(this, MethodAt(&methods, i));
    methods.Dispose();
}

void ZR_ExecutionContext::Dispose() {
    DeleteAllMethods();
    DisposeMethods(&deletedMethods);
    deletedMethods.Dispose();
    lastErrorText.Dispose();
    result.Dispose();
    queryTexts.Dispose();
    ZR_EXE_DisposeVirtualStructure(&virtualStructure);
    zrExe_DisposeVariables(&processVariables);
    zrExe_DisposeVariables(&interprocessVariables);
    zrExe_Dispose4DMethods(&methods4D);
    methods4D.Dispose();
    stacks.Dispose();
    rootStack.Dispose();
    debuggerTitle.Dispose();
    sets.Dispose();
    allowedCommands.Dispose();
    processIndex.Dispose();
    interprocessIndex.Dispose();
    allowedIndex.Dispose();
    errorCalls.Dispose();
}

// Methods and frames -----------------------------------------------------------------------------------------------

void ZR_ExecutionContext::CreateMethod(ZR_Text* name, ZR_Handle* blob) {
    ZR_ExecutionMethod* method = reinterpret_cast<ZR_ExecutionMethod*>(methods.AppendGetPtr());
    if (method) method->Create(name, blob, nextMethodReference++);
}

ZR_ExecutionMethod* ZR_ExecutionContext::GetMethodPtrByName(ZR_Text* name) {
    for (long i = 1; i <= methods.count; ++i)
        if (MethodAt(&methods, i)->name.EqualWithWildChar(name)) return MethodAt(&methods, i);
    return nullptr;
}

ZR_ExecutionMethod* ZR_ExecutionContext::GetMethodPtrByReference(long wanted) {
    // References rise by one with each method, so the record stands at its number unless earlier ones were deleted.
    ZR_ExecutionMethod* method = MethodAt(&methods, wanted);
    if (method && method->reference == wanted) return method;
    for (long i = 1; i <= methods.count; ++i)
        if (MethodAt(&methods, i)->reference == wanted) return MethodAt(&methods, i);
    return nullptr;
}

bool ZR_ExecutionContext::DeleteMethodByID(long wanted) {
    for (long i = 1; i <= methods.count; ++i) {
        if (MethodAt(&methods, i)->reference != wanted) continue;
        DisposeMethod(this, MethodAt(&methods, i));
        methods.DeleteElement(i);
        return true;
    }
    return false;
}

ZR_Executer_Stack* ZR_ExecutionContext::GetCurrentStack() {
    return stacks.count ? reinterpret_cast<ZR_Executer_Stack**>(stacks.data)[stacks.count - 1] : &rootStack;
}

ZR_Executer_Stack* ZR_ExecutionContext::GetStack(long index) {
    if (index < 1) return &rootStack;
    char* slot = stacks.GetMemPtr(index);
    return slot ? *reinterpret_cast<ZR_Executer_Stack**>(slot) : nullptr;
}

ZR_Handle* ZR_ExecutionContext::GetVStructure(ZR_Handle* explicitList) {
    if (explicitList) return explicitList;
    return useVirtualStructure ? &virtualStructure : nullptr;
}

// One pass over a line; true = the run goes on at frame->currentLine.
static bool RunLine(ZR_ExecutionContext* context, ZR_Executer_Stack* frame) {
    if (context->result.kind != ZREXE_TOKEN_OTHER) {  // an empty token needs no renewal
        context->result.Dispose();
        context->result.Create(ZREXE_TOKEN_OTHER, nullptr);
    }
    context->CallDebuggerIfNecessary();
    context->traceRequested = false;
    if (!context->abortRequested) frame->currentLine = context->ExecuteMethodLine(frame->currentLine, &context->result);
    if (context->lastError && context->callback)
        context->callback(context, -1, nullptr, nullptr, context->callbackData);  // may clear the error
    bool stepping = context->stepInto || context->stepOver;
    bool goesOn = frame->currentLine >= 1 && (!context->lastError || stepping);
    return goesOn && !context->abortRequested;
}

void ZR_ExecutionContext::ExecuteMethod(ZR_Executer_Stack* frame, long startLine) {
    if (startLine < 2) frame->activeForLines.Resize(0);
    lastErrorLine = 0;
    lastError = 0;
    lastErrorText.Resize(0);
    traceRequested = false;
    frame->currentLine = startLine < 1 ? 1 : startLine;
    ZR_Executer_Stack** slot = reinterpret_cast<ZR_Executer_Stack**>(stacks.AppendGetPtr());
    if (!slot) {
        Fail(kErrorMemory);
        return;
    }
    *slot = frame;
    if (startLine < 1) {
        while (RunLine(this, frame)) UpdateDebugger();
    } else {
        RunLine(this, frame);
    }
    if (stacks.count) stacks.Resize(stacks.count - 1);
    if (!stacks.count) DisposeMethods(&deletedMethods);
    CloseDebuggerIfNecessary();
}

void zrExe_RunMethod(ZR_ExecutionContext* context, ZR_ExecutionMethod* method, long startLine) {
    if (context->rootStack.methodReference != method->reference) {
        context->rootStack.Dispose();
        context->rootStack.Create(method->reference);
    }
    context->DebuggerReset();
    context->ExecuteMethod(&context->rootStack, startLine);
    context->DebuggerReset();
}

// Errors and OK ----------------------------------------------------------------------------------------------------

static void NoteError(ZR_ExecutionContext* context, long number) {
    ZR_Executer_Stack* frame = context->GetCurrentStack();
    context->lastError = number;
    context->lastErrorLine = frame->currentLine;
    context->lastErrorMethod = frame->methodReference;
    context->errorCalls.Resize(0);
    for (long i = context->stacks.count; i >= 1; --i) {
        ZR_ErrorCall* call = reinterpret_cast<ZR_ErrorCall*>(context->errorCalls.AppendGetPtr());
        if (call) *call = {context->GetStack(i)->methodReference, context->GetStack(i)->currentLine};
    }
}

void ZR_ExecutionContext::SetError(long number, long piece) {
    lastErrorText.AddLong(piece);
    NoteError(this, number);
}

void ZR_ExecutionContext::SetError(long number, char* piece) { SetError(number, const_cast<char const*>(piece)); }

void ZR_ExecutionContext::SetError(long number, char const* piece) {
    lastErrorText.AddString(reinterpret_cast<unsigned char*>(const_cast<char*>(piece)));
    NoteError(this, number);
}

void ZR_ExecutionContext::SetError(long number, ZR_Text* piece) {
    lastErrorText.AddText(piece);
    NoteError(this, number);
}

void ZR_ExecutionContext::Fail(const ZR_ErrorWords& words) { SetError(words.number, words.before); }

void ZR_ExecutionContext::Fail(const ZR_ErrorWords& words, ZR_Text* name) {
    SetError(words.number, words.before);
    SetError(words.number, name);
    SetError(words.number, words.behind);
}

void ZR_ExecutionContext::Fail(const ZR_ErrorWords& words, ZR_Text* name, long index, long size) {
    Fail(words, name);
    SetError(words.number, index);
    SetError(words.number, words.third);
    SetError(words.number, size);
}

void ZR_ExecutionContext::Fail(const ZR_ErrorWords& words, long first, long second) {
    SetError(words.number, words.before);
    SetError(words.number, first);
    SetError(words.number, words.behind);
    SetError(words.number, second);
}

void ZR_ExecutionContext::SetOKVariable() {
    if (!lastError) SetOKVariable(ZR_GetOK());
}

void ZR_ExecutionContext::SetOKVariable(bool ok) {
    if (lastError) return;
    ZR_Text name;
    name.Create(static_cast<ZR_Text*>(nullptr));
    name.AddString(reinterpret_cast<unsigned char*>(const_cast<char*>("OK")));
    ZR_Executer_Variable* variable = zrExe_FindVariableByNameAndCreate(&processVariables, &name, ZR_EXE_Longint);
    if (variable) variable->SetNumber(ok ? 1 : 0);
    name.Dispose();
}

// Guards -----------------------------------------------------------------------------------------------------------

bool ZR_ExecutionContext::CheckDepth() {
    if (ZR_NativeStackLeft() >= stackReserve && (maxCalls < 1 || stacks.count < maxCalls)) return true;
    Fail(kErrorTooDeep);
    return false;
}

bool ZR_ExecutionContext::CheckDeadline() {
    if (deadline <= 0 || ZR_CoarseSeconds() < deadline) return true;
    Fail(kErrorTimeLimit);
    return false;
}

// Allowed commands -------------------------------------------------------------------------------------------------

enum { kIndexedCommands = 50000 };

static ZR_AllowedCommand* AllowedAt(ZR_Handle* list, long row) {
    return reinterpret_cast<ZR_AllowedCommand*>(list->GetMemPtr(row));
}

// The first row of each command number, [1..count]; 0 = none. Worked out again when the list has another length.
static void IndexAllowed(ZR_ExecutionContext* context) {
    ZR_Handle* index = &context->allowedIndex;
    context->allowedIndexed = context->allowedCommands.count;
    index->Resize(0);
    index->Resize(kIndexedCommands + 1);
    if (!index->count) return;
    memset(index->data, 0, static_cast<size_t>(index->count) * sizeof(int));
    for (long i = context->allowedCommands.count; i >= 1; --i) {
        long id = AllowedAt(&context->allowedCommands, i)->id;
        if (id >= 0 && id <= kIndexedCommands) reinterpret_cast<int*>(index->data)[id] = static_cast<int>(i);
    }
}

ZR_AllowedCommand* ZR_ExecutionContext::Search4DCommandForExecution(long id) {
    if (allowedIndexed != allowedCommands.count) IndexAllowed(this);
    if (id >= 0 && id < allowedIndex.count) {
        long row = reinterpret_cast<int*>(allowedIndex.data)[id];
        if (!row) return nullptr;
        ZR_AllowedCommand* record = AllowedAt(&allowedCommands, row);
        if (record && record->id == id) return record;
    }
    for (long i = 1; i <= allowedCommands.count; ++i)
        if (AllowedAt(&allowedCommands, i)->id == id) return AllowedAt(&allowedCommands, i);
    return nullptr;
}

static void SetAllowedOfRange(ZR_Handle* list, bool allowed) {
    for (long i = 1; i <= list->count; ++i) {
        ZR_AllowedCommand* record = reinterpret_cast<ZR_AllowedCommand*>(list->GetMemPtr(i));
        if (record->id >= 1 && record->id <= 2000) record->allowed = allowed;
    }
}

static void SetAllowedOfArray(ZR_ExecutionContext* context, PA_Variable* ids, bool allowed) {
    long count = PA_GetArrayNbElements(ids);
    for (long i = 1; i <= count; ++i) {
        ZR_AllowedCommand* record =
            context->Search4DCommandForExecution(ZR_DoubleToLongManageOverflow(ZR_GetNumInArray(ids, i)));
        if (record) record->allowed = allowed;
    }
}

void ZR_ExecutionContext::SetAllowedCommands(PA_Variable* ids, ZR_EXE_SetAllowed mode) {
    switch (static_cast<int>(mode)) {
        case ZR_EXE_AllowOnly:
            SetAllowedOfRange(&allowedCommands, false);
            SetAllowedOfArray(this, ids, true);
            break;
        case ZR_EXE_AllowAdd: SetAllowedOfArray(this, ids, true); break;
        case ZR_EXE_AllowRemove: SetAllowedOfArray(this, ids, false); break;
        case ZR_EXE_AllowAll: SetAllowedOfRange(&allowedCommands, true); break;
        default: break;
    }
}

void ZR_ExecutionContext::GetAllowedCommands(PA_Variable* ids) {
    long count = 0;
    for (int pass = 0; pass < 2; ++pass) {
        long at = 0;
        for (long i = 1; i <= allowedCommands.count; ++i) {
            ZR_AllowedCommand* record = reinterpret_cast<ZR_AllowedCommand*>(allowedCommands.GetMemPtr(i));
            if (record->id < 1 || record->id > 2000 || !record->allowed) continue;
            ++at;
            if (pass) ZR_SetNumInArray(ids, at, static_cast<double>(record->id));
        }
        count = at;
        if (!pass) PA_ResizeArray(ids, count);
    }
}
