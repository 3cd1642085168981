// The frame of every call: parameters to tokens, the number to its handler, refusals, and methods that call methods.

#include "language/ZR_API_Executer.h"
#include "plugin/ZR_API_Bridge.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Runtime_Private.h"

// Parameters -------------------------------------------------------------------------------------------------------

// Commands that work on a variable or field itself; listed parameters reach them as tokens.
static constexpr short kNothingEvaluated[] = {1,   2,   3,   4,   26,  27,  28,  36,  42,  47,  48,  49,  66,  68,  226,
                                              229, 260, 262, 274, 315, 339, 340, 349, 365, 493, 644, 718, 899, 1050};
static constexpr short kAllButFirst[] = {218, 219, 220, 221, 222, 223, 224, 227, 228, 279, 280, 606, 30004};
static constexpr short kAllButSecond[] = {678, 682, 692};
static constexpr short kQueries[] = {277, 341};

template <size_t N>
static bool Holds(const short (&list)[N], long id) {
    for (short entry : list)
        if (entry == id) return true;
    return false;
}

bool zrExe_GetDoExecuteParameters(long id, long index, ZR_Handle* parameterTokens) {
    if (Holds(kNothingEvaluated, id)) return false;
    if (Holds(kAllButFirst, id)) return index != 1;
    if (id == 15) return index != 4;
    if (Holds(kAllButSecond, id)) return index != 2;
    if (id == 533) return index == 1;
    if (Holds(kQueries, id)) return zrExe_GetTokenPosByType(parameterTokens, ZREXE_TOKEN_COMPARISON) > 0;
    return true;
}

// A copy that owns its contents: a value of an inner bracket lives in the list that is emptied behind it.
static void AppendCopy(ZR_Handle* list, ZR_Executer_Token* source) {
    ZR_Executer_Token* copy = reinterpret_cast<ZR_Executer_Token*>(list->AppendGetPtr());
    if (!copy) return;
    copy->Create(source, /*shallow*/ false);
    if (!copy->parent) return;
    copy->parent = nullptr;
    copy->text.Copy(source->GetText());
    if (source->GetBlob()->data) {
        copy->blob.Dispose();
        copy->blob.Create(source->GetBlob());
    }
    if (source->kind == ZREXE_TOKEN_PICTURE) {
        copy->picture.Dispose();
        copy->picture.Create(source->GetPicture());
    }
}

static void AppendCopies(ZR_Handle* list, ZR_Handle* tokens, long last) {
    for (long i = 1; i <= last; ++i) AppendCopy(list, zrExe_TokenAt(tokens, i));
}

// [T]F = value: what stands up to the comparison goes unevaluated, what is behind it becomes one token.
static void AppendQueryLine(ZR_ExecutionContext* context, ZR_Handle* list, ZR_Handle* part) {
    long comparison = zrExe_GetTokenPosByType(part, ZREXE_TOKEN_COMPARISON);
    AppendCopies(list, part, comparison);
    ZR_Executer_Token value;
    zrExe_CreateEmptyToken(&value);
    zrExe_EvaluateSlice(context, part, comparison + 1, part->count, &value);
    if (!context->lastError) zrExe_MoveToken(list, list->count + 1, &value);
    value.Dispose();
}

// One evaluated parameter. False = it never becomes a value: several tokens that add up to nothing.
static bool AppendValue(ZR_ExecutionContext* context, ZR_Handle* list, ZR_Handle* part, long id) {
    ZR_Executer_Token value;
    zrExe_CreateEmptyToken(&value);
    context->ExecuteTokenizedBlock(&value, part, id);
    bool done = true;
    if (!context->lastError) {
        if (value.kind != ZREXE_TOKEN_OTHER) zrExe_MoveToken(list, list->count + 1, &value);
        else if (part->count == 1) AppendCopy(list, zrExe_TokenAt(part, 1));
        else done = false;
    }
    value.Dispose();
    return done;
}

void ZR_ExecutionContext::ExecuteParameters(ZR_Handle* parameters, long id) {
    ZR_Handle list;
    zrExe_CreateTokens(&list);
    list.growStep = 4;
    long first = 1;
    for (long index = 1; first <= parameters->count && !lastError; ++index) {
        long separator = zrExe_GetTokenPosByType(parameters, ZREXE_TOKEN_SEMICOLON, first);
        long last = separator ? separator - 1 : parameters->count;
        ZR_Handle part;
        zrExe_CreateCopyTokens(&part, parameters, first, last, /*shallow*/ true);
        if (part.count == 0) {  // an empty parameter drops all that follow it
            last = parameters->count;
        } else if (!zrExe_GetDoExecuteParameters(id, index, &part)) {
            AppendCopies(&list, &part, part.count);
        } else {
            if (id == ZR_CMD_FOR && index > 1) id = 0;
            if (Holds(kQueries, id)) AppendQueryLine(this, &list, &part);
            // Guard: the same parameter would be tried for ever.
            else if (!AppendValue(this, &list, &part, id)) Fail(kErrorInvalidType);
        }
        zrExe_DisposeTokens(&part);
        first = separator && last < parameters->count ? last + 2 : last + 1;
    }
    zrExe_DisposeTokens(parameters);
    *parameters = list;
}

// The check of a form ----------------------------------------------------------------------------------------------

static bool Accepts(short expected, long kind) {
    if (expected == 0) return true;
    if (expected == ZREXE_TOKEN_RESERVED) return zrExe_IsVariableToken(kind);
    if (expected == ZREXE_TOKEN_LONGINT) return zrExe_IsNumberToken(kind);
    return expected == kind;
}

bool ZR_ExecutionContext::Execute4DCommandCheckParam(ZR_Handle* parameters, short* expected, long count,
                                                     bool* wrongCount, bool* wrongType) {
    if (probeMode) {
        probeSupported = true;
        return false;
    }
    *wrongType = false;
    *wrongCount = parameters->count != count;
    if (*wrongCount) return false;
    for (long i = 1; i <= count && expected; ++i) {
        ZR_Executer_Token* token = zrExe_TokenAt(parameters, i);
        if (!token || Accepts(expected[i - 1], token->kind)) continue;
        *wrongType = true;
        return false;
    }
    return true;
}

// Dispatch ---------------------------------------------------------------------------------------------------------

typedef void (ZR_ExecutionContext::*Handler)(ZR_Handle*, long, ZR_Executer_Token*, bool*, bool*, bool*);

struct HandlerRow {
    int first, last;
    Handler handler;  // null = the range without a result
    bool probed;
};

#define ZR_ROW(first, last, name) \
    { first, last, &ZR_ExecutionContext::Execute4DCommand_##name, true }
static constexpr HandlerRow kHandlers[] = {
    ZR_ROW(1, 20, 0001_0020),
    ZR_ROW(21, 40, 0021_0040),
    ZR_ROW(41, 60, 0041_0060),
    ZR_ROW(61, 80, 0061_0080),
    ZR_ROW(81, 100, 0081_0100),
    ZR_ROW(101, 120, 0101_0120),
    {121, 140, nullptr, true},
    ZR_ROW(141, 160, 0141_0160),
    ZR_ROW(161, 180, 0161_0180),
    ZR_ROW(181, 200, 0181_0200),
    ZR_ROW(201, 220, 0201_0220),
    ZR_ROW(221, 240, 0221_0240),
    ZR_ROW(241, 260, 0241_0260),
    ZR_ROW(261, 280, 0261_0280),
    ZR_ROW(281, 300, 0281_0300),
    ZR_ROW(301, 320, 0301_0320),
    ZR_ROW(321, 340, 0321_0340),
    ZR_ROW(341, 360, 0341_0360),
    ZR_ROW(361, 380, 0361_0380),
    ZR_ROW(381, 400, 0381_0400),
    ZR_ROW(441, 460, 0441_0460),
    ZR_ROW(481, 500, 0481_0500),
    ZR_ROW(501, 600, 0501_0600),
    ZR_ROW(601, 699, 0601_0699),
    ZR_ROW(701, 799, 0701_0799),
    ZR_ROW(881, 900, 0881_0900),
    ZR_ROW(901, 920, 0901_0920),
    ZR_ROW(951, 1000, 0951_1000),
    ZR_ROW(1001, 2000, 1001_2000),
    {30000, 30012, &ZR_ExecutionContext::Execute4DCommand_30000, false},
    {40000, 49999, &ZR_ExecutionContext::Execute4DCommand_40000, false},
};

static const HandlerRow* FindHandler(long id) {
    for (const HandlerRow& row : kHandlers)
        if (id >= row.first && id <= row.last) return &row;
    return nullptr;
}

static void FailWithName(ZR_ExecutionContext* context, const ZR_ErrorWords& words, long id) {
    ZR_Text name;
    name.Create();
    ZR_GetCommandName(id, &name);
    context->Fail(words, &name);
    name.Dispose();
}

// True = the command may not run, and the error is set unless there was one.
static bool IsRefused(ZR_ExecutionContext* context, long id) {
    ZR_AllowedCommand* record = context->Search4DCommandForExecution(id);
    if (!record) return false;
    if (record->allowed && (record->threadSafe || !context->preemptive)) return false;
    if (!context->lastError) FailWithName(context, record->allowed ? kErrorNotThreadSafe : kErrorNotAllowed, id);
    return true;
}

void ZR_ExecutionContext::Execute4DCommand(ZR_Handle* parameters, long id, ZR_Executer_Token* answer) {
    bool notSupported = true, wrongCount = false, wrongType = false;
    if (!probeMode && IsRefused(this, id)) return;
    const HandlerRow* row = FindHandler(id);
    if (row && (row->probed || !probeMode)) {
        if (row->handler) (this->*row->handler)(parameters, id, answer, &notSupported, &wrongCount, &wrongType);
        else Execute4DCommand_0121_0140(parameters, id, &notSupported, &wrongCount, &wrongType);
    }
    if (lastError || probeMode) return;
    if (notSupported) FailWithName(this, kErrorNotSupported, id);
    if (wrongCount) FailWithName(this, kErrorWrongCount, id);
    if (wrongType) FailWithName(this, kErrorWrongType, id);
}

// Methods ----------------------------------------------------------------------------------------------------------

// The value of $0 of a frame into answer, which is renewed if there is one.
static void TakeResult(ZR_Executer_Stack* frame, ZR_Executer_Token* answer) {
    static const unsigned short kZero[] = {'0', 0};
    ZR_Text name;
    name.Create(kZero);
    ZR_Executer_Variable* variable = frame->GetLocalVariable(&name);
    name.Dispose();
    if (!variable) return;
    answer->Dispose();
    answer->Create(static_cast<void*>(variable));
}

static void CreateParameters(ZR_Executer_Stack* frame, ZR_Handle* parameters) {
    long count = parameters ? parameters->count : 0;
    for (long i = 1; i <= count; ++i) {
        ZR_Text name;
        name.Create();
        name.AddLong(i);
        ZR_Executer_Variable* variable = frame->AppendLocal(name.Units(), name.count, ZR_EXE_Undefined);
        if (variable) {
            variable->Dispose();
            variable->Create(&name, zrExe_TokenAt(parameters, i));
        }
        name.Dispose();
    }
}

void zrExe_CallMethod(ZR_ExecutionContext* context, long reference, ZR_Handle* parameters, ZR_Executer_Token* answer) {
    ZR_ExecutionMethod* method = context->CheckDepth() ? context->GetMethodPtrByReference(reference) : nullptr;
    if (!method) return;
    ZR_Executer_Stack frame;
    frame.CreateFor(method);
    CreateParameters(&frame, parameters);
    zrExe_RunFrame(context, &frame);
    TakeResult(&frame, answer);
    frame.DisposeFor(context->GetMethodPtrByReference(reference));
}

void zrExe_RunFrame(ZR_ExecutionContext* context, ZR_Executer_Stack* frame) {
    bool stepOver = context->stepOver;
    context->stepOver = false;
    context->ExecuteMethod(frame, 0);
    context->stepOver = stepOver;
}

static ZR_ExecutionMethod* FindMethod(ZR_ExecutionContext* context, ZR_Text* name) {
    ZR_ExecutionMethod* method = context->GetMethodPtrByName(name);
    if (method || !context->methodSource) return method;
    return context->methodSource(context, name, context->methodSourceData) ? context->GetMethodPtrByName(name)
                                                                           : nullptr;
}

void ZR_ExecutionContext::ExecuteTokenizedBlock4DMethod(ZR_Text* name, ZR_Handle* parameters,
                                                        ZR_Executer_Token* answer) {
    ZR_Executer_Token local;
    zrExe_CreateEmptyToken(&local);
    ZR_ExecutionMethod* method = FindMethod(this, name);
    if (method) {
        zrExe_CallMethod(this, method->reference, parameters, &local);
    } else {
        ZR_Handle none;
        zrExe_CreateTokens(&none);
        ExecuteGenericCommand(0, name, parameters ? parameters : &none, &local);
        none.Dispose();
    }
    if (local.kind != ZREXE_TOKEN_OTHER && (answer->kind == local.kind || answer->kind == ZREXE_TOKEN_OTHER)) {
        answer->Dispose();
        answer->Create(&local, /*shallow*/ false);
    }
    local.Dispose();
}
