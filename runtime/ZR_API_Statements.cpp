// Statements: a line is copied, reduced in place until one value is left, and its control flow acted on.

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_MethodIndex_Private.h"
#include "runtime/ZR_API_Prepared_Private.h"
#include "runtime/ZR_API_Runtime_Private.h"

enum LineState : long {
    kNextLine = 0,
    kEnterBlock = 1,
    kIfFalse = 2,
    kElseAfterIf = 3,
    kForFinished = 4,
    kEndFor = 5,
    kUntilFalse = 6,
    kWhileFalse = 7,
    kEndWhile = 8,
    kCaseOf = 9,
    kBranchFinished = 10,
    kNoBranch = 11
};

// Lines ------------------------------------------------------------------------------------------------------------

// What a line that begins with a keyword does without being run; kNextLine = it is run.
static long StateOfKeyword(ZR_MethodLine* line, bool inCaseCondition) {
    switch (line->keyword) {
        case ZR_CMD_ELSE: return line->context == 2 ? kBranchFinished : line->context == 1 ? kElseAfterIf : kNextLine;
        case ZR_CMD_END_FOR: return kEndFor;
        case ZR_CMD_END_WHILE: return kEndWhile;
        case ZR_CMD_CASE_OF: return kCaseOf;
        case ZR_CMD_BRANCH: return inCaseCondition ? kNextLine : kBranchFinished;
        default: return kNextLine;
    }
}

// Where a state leads from a line; 0 and an error if there is nowhere.
static long NextLine(ZR_ExecutionContext* context, ZR_ExecutionMethod* method, long line, long state) {
    struct Row {
        long state, target;
        bool back;
        const ZR_ErrorWords* error;
    };
    static constexpr Row kRows[] = {
        {kIfFalse, ZR_CMD_ELSE, false, nullptr},
        {kIfFalse, ZR_CMD_END_IF, false, &kErrorEndIf},
        {kElseAfterIf, ZR_CMD_END_IF, false, &kErrorEndIf},
        {kForFinished, ZR_CMD_END_FOR, false, &kErrorEndFor},
        {kEndFor, ZR_CMD_FOR, true, &kErrorFor},
        {kUntilFalse, ZR_CMD_REPEAT, true, &kErrorRepeat},
        {kWhileFalse, ZR_CMD_END_WHILE, false, &kErrorEndWhile},
        {kEndWhile, ZR_CMD_WHILE, true, &kErrorWhile},
        {kBranchFinished, ZR_CMD_END_CASE, false, &kErrorEndCaseAfterBranch},
        {kNoBranch, ZR_CMD_ELSE, false, nullptr},
        {kNoBranch, ZR_CMD_END_CASE, false, &kErrorEndCaseNoBranch},
    };
    for (const Row& row : kRows) {
        if (row.state != state) continue;
        long found =
            row.back ? zrExe_ExecuteJumpBack(method, line, row.target) : zrExe_ExecuteJump(method, line, row.target);
        if (found) return state == kEndWhile ? found - 1 : found;  // the While line runs again
        if (row.error) context->Fail(*row.error);
    }
    return 0;
}

// Runs a copy of the line's tokens in the plain form.
static void RunTokens(ZR_ExecutionContext* context, ZR_ExecutionMethod* method, ZR_MethodLine* row, long* state,
                      ZR_Executer_Token* result) {
    ZR_Handle tokens;
    zrExe_CreateCopyTokens(&tokens, &method->tokens, row->first, row->last, /*shallow*/ true);
    context->ExecuteHandleToPointers(method, &tokens);
    if (!context->lastError) context->ExecuteMethodLineSub(state, &tokens);
    if (!context->lastError && tokens.count == 1) {
        result->Dispose();
        result->Create(zrExe_TokenAt(&tokens, 1), /*shallow*/ false);
    }
    zrExe_DisposeTokens(&tokens);
}

long ZR_ExecutionContext::ExecuteMethodLine(long line, ZR_Executer_Token* lineResult) {
    ZR_Executer_Stack* frame = GetCurrentStack();
    ZR_ExecutionMethod* method = GetMethodPtrByReference(frame->methodReference);
    ZR_MethodLine* row = method && line >= 1 ? zrExe_GetMethodLine(method, line) : nullptr;
    if (!row) return 0;
    frame->currentLine = line;
    long next = line + 1;
    if (row->last < row->first) return next;
    if (lastError || !CheckDeadline()) return next;
    long state = StateOfKeyword(row, frame->inCaseCondition);
    if (state == kNextLine) {
        if (plainOnly || !zrExe_RunPrepared(this, frame, method, row, &state, lineResult))
            RunTokens(this, method, row, &state, lineResult);
        if (lastError) return next;
        if (state < kIfFalse) return next;
        method = GetMethodPtrByReference(frame->methodReference);  // a call may have moved or deleted it
        if (!method) return next;
    }
    if (state == kCaseOf) {
        HandleCaseOf(method, frame, &next, &state);
        method = GetMethodPtrByReference(frame->methodReference);
        if (state != kNoBranch || !method) return next;
        line = frame->currentLine;
    }
    return NextLine(this, method, line, state);
}

void ZR_ExecutionContext::HandleCaseOf(ZR_ExecutionMethod* method, ZR_Executer_Stack* frame, long* nextLine,
                                       long* state) {
    for (long from = frame->currentLine; (from = zrExe_ExecuteJump(method, from, ZR_CMD_BRANCH)) != 0; ++from) {
        ZR_Executer_Token value;
        zrExe_CreateEmptyToken(&value);
        frame->inCaseCondition = true;
        ExecuteMethodLine(from, &value);
        frame->inCaseCondition = false;
        bool boolean = value.kind == ZREXE_TOKEN_BOOLEAN;
        bool truth = value.GetBoolean();
        value.Dispose();
        if (!boolean && !zrExe_IsGuardError(lastError)) {
            SetError(kErrorCaseCondition.number, kErrorCaseCondition.before);
            SetError(kErrorCaseCondition.number, from);
        }
        if (lastError) break;
        if (truth) {
            *nextLine = from + 1;
            return;
        }
        method = GetMethodPtrByReference(frame->methodReference);
        if (!method) break;
    }
    // Required: the search goes on from the line behind the condition and at that line's depth, so a body that opens
    // with a block of its own hides the branches behind it.
    *state = kNoBranch;
}

// Arrows -----------------------------------------------------------------------------------------------------------

// Gives a token another kind and text. The text is copied first: it may be the token's own.
static void ReplaceToken(ZR_Executer_Token* token, ZREXE_TOKEN kind, ZR_Text* text, long value) {
    ZR_Text copy;
    copy.Create(text);
    token->Dispose();
    token->Create(kind, &copy);
    token->value.integer = value;
    copy.Dispose();
}

static void ReplaceByHostVariable(ZR_Executer_Token* token, ZR_Text* name) {
    PA_Variable host = PA_GetVariable(name->GetUniCharPtr());
    token->Dispose();
    token->Create(&host);
    PA_ClearVariable(&host);
}

// x-> : the token in front of the arrow becomes what its pointer points to. False = nothing to point to.
static bool Dereference(ZR_ExecutionContext* context, ZR_Executer_Token* token) {
    ZR_Executer_Variable* pointer = context->GetVariableFromToken(token, /*create*/ false);
    if (!pointer) {
        context->Fail(kErrorVariableNotFound, token->GetText());
        return true;
    }
    if (pointer->kind != ZR_EXE_Pointer) {
        context->Fail(kErrorNoPointer, token->GetText());
        return true;
    }
    long value = pointer->value.integer;
    if (pointer->text.count) {
        switch (value) {
            case ZR_POINTER_HOST: ReplaceByHostVariable(token, &pointer->text); break;
            case ZR_POINTER_INTERPROCESS: ReplaceToken(token, ZREXE_TOKEN_INTERPROCESS, &pointer->text, 0); break;
            case ZR_POINTER_PROCESS: ReplaceToken(token, ZREXE_TOKEN_VARIABLE, &pointer->text, 0); break;
            default: ReplaceToken(token, ZREXE_TOKEN_LOCAL, &pointer->text, value); break;
        }
        return true;
    }
    bool table = pointer->PointerToTable();
    if (!table && !pointer->PointerToField()) return false;
    ReplaceToken(token, table ? ZREXE_TOKEN_TABLE : ZREXE_TOKEN_FIELD, nullptr, value);
    return true;
}

// ->x : the token behind the arrow becomes a pointer to it. False = nothing that can be pointed to.
static bool MakePointer(ZR_ExecutionContext* context, ZR_ExecutionMethod* method, ZR_Executer_Token* token) {
    if (token->kind == ZREXE_TOKEN_TABLE) {
        if (token->GetTable() < 1) context->Fail(kErrorPointerToTable);
        else token->SetPointerToTable(token->GetTable());
        return true;
    }
    if (token->kind == ZREXE_TOKEN_FIELD) {
        if (token->GetTable() < 1 || token->GetField() < 1) context->Fail(kErrorPointerToField);
        else token->SetPointerToField(token->GetTable(), token->GetField());
        return true;
    }
    if (!zrExe_IsVariableToken(token->kind)) return false;
    if (token->GetText()->count == 0) {
        context->Fail(kErrorPointerToVariable);
        return true;
    }
    long scope = token->kind == ZREXE_TOKEN_INTERPROCESS ? static_cast<long>(ZR_POINTER_INTERPROCESS)
                 : token->kind == ZREXE_TOKEN_VARIABLE   ? static_cast<long>(ZR_POINTER_PROCESS)
                                                         : method->reference;
    ReplaceToken(token, ZREXE_TOKEN_POINTER, token->GetText(), scope);
    return true;
}

// Resolves the arrow; false = it stays, with an error.
static bool ResolveArrow(ZR_ExecutionContext* context, ZR_ExecutionMethod* method, ZR_Executer_Token* before,
                         ZR_Executer_Token* behind) {
    bool done;
    if (before && zrExe_IsVariableToken(before->kind)) {
        done = Dereference(context, before);
    } else if (!behind) {
        context->Fail(kErrorPointerToNothing);
        return false;
    } else {
        done = MakePointer(context, method, behind);
    }
    if (!done) context->Fail(kErrorPointerExpression);  // guard: the same arrow would be found for ever
    return !context->lastError;
}

// From left to right: what stands in front of the first arrow has none, so that one walk resolves all.
void ZR_ExecutionContext::ExecuteHandleToPointers(ZR_ExecutionMethod* method, ZR_Handle* tokens) {
    long at = lastError ? 0 : zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_ARROW);
    if (!at) return;
    ZR_Executer_Token* list = reinterpret_cast<ZR_Executer_Token*>(tokens->data);
    long kept = at - 1;
    for (long i = kept; i < tokens->count; ++i) {
        if (list[i].kind == ZREXE_TOKEN_ARROW && !lastError &&
            ResolveArrow(this, method, kept ? &list[kept - 1] : nullptr, zrExe_TokenAt(tokens, i + 2))) {
            list[i].Dispose();
        } else {
            if (kept != i) memcpy(static_cast<void*>(&list[kept]), &list[i], sizeof list[i]);
            ++kept;
        }
    }
    tokens->count = kept;
}

// Brackets ---------------------------------------------------------------------------------------------------------

static void ReplaceByValue(ZR_ExecutionContext* context, ZR_Handle* tokens, long first, long last,
                           ZR_Executer_Token* value) {
    zrExe_DeleteTokens(tokens, first, last);
    if (!context->lastError && value->kind != ZREXE_TOKEN_OTHER) zrExe_MoveToken(tokens, first, value);
}

// 39, the evaluated parameters, 40 in the place of a member function's brackets: the call itself comes later, in order.
static void MarkMemberParameters(ZR_ExecutionContext* context, ZR_Handle* tokens, long open, long close,
                                 ZR_Handle* parameters) {
    zrExe_DeleteTokens(tokens, open, close);
    if (context->lastError) return;
    ZR_Executer_Token marker;
    marker.Create(ZREXE_TOKEN_PARAMETERS_BEGIN, nullptr);
    marker.value.integer = 0;
    long at = open;
    zrExe_MoveToken(tokens, at++, &marker);
    for (long i = 1; i <= parameters->count; ++i) zrExe_MoveToken(tokens, at++, zrExe_TokenAt(parameters, i));
    marker.Create(ZREXE_TOKEN_PARAMETERS_END, nullptr);
    zrExe_MoveToken(tokens, at, &marker);
}

// True = the line has become the list of the parameters of a For, and what stood around the call is gone.
static bool ExpandCall(ZR_ExecutionContext* context, ZR_Handle* tokens, long open, long close) {
    ZR_Executer_Token* call = zrExe_TokenAt(tokens, open - 1);
    long kind = call->kind;
    long id = kind == ZREXE_TOKEN_COMMAND ? call->value.integer : 0;
    ZR_Handle parameters;
    ZR_Executer_Token value;
    zrExe_CreateEmptyToken(&value);
    zrExe_CreateCopyTokens(&parameters, tokens, open + 1, close - 1, /*shallow*/ true);
    context->ExecuteParameters(&parameters, id);
    if (!context->lastError && kind == ZREXE_TOKEN_COMMAND) context->Execute4DCommand(&parameters, id, &value);
    if (!context->lastError && kind == ZREXE_TOKEN_METHOD)
        context->ExecuteTokenizedBlock4DMethod(call->GetText(), &parameters, &value);
    bool replacesLine = kind == ZREXE_TOKEN_COMMAND && id == ZR_CMD_FOR;
    if (replacesLine) {
        zrExe_DeleteTokens(tokens, 1, tokens->count);
        for (long i = 1; i <= parameters.count; ++i) zrExe_MoveToken(tokens, i, zrExe_TokenAt(&parameters, i));
    } else if (kind == ZREXE_TOKEN_MEMBER_CALL) {
        MarkMemberParameters(context, tokens, open, close, &parameters);
    } else {
        ReplaceByValue(context, tokens, open - 1, close, &value);
    }
    value.Dispose();
    zrExe_DisposeTokens(&parameters);
    return replacesLine;
}

void zrExe_EvaluateSlice(ZR_ExecutionContext* context, ZR_Handle* tokens, long first, long last,
                         ZR_Executer_Token* value) {
    ZR_Handle slice;
    zrExe_CreateCopyTokens(&slice, tokens, first, last, /*shallow*/ true);
    context->ExecuteTokenizedBlock(value, &slice, 0);
    zrExe_DisposeTokens(&slice);
}

static void ExpandGroup(ZR_ExecutionContext* context, ZR_Handle* tokens, long open, long close) {
    ZR_Executer_Token value;
    zrExe_CreateEmptyToken(&value);
    zrExe_EvaluateSlice(context, tokens, open + 1, close - 1, &value);
    ReplaceByValue(context, tokens, open, close, &value);
    value.Dispose();
}

static bool IsCall(ZR_Executer_Token* token) {
    if (!token) return false;
    if (token->kind == ZREXE_TOKEN_COMMAND) return token->value.integer != ZR_CMD_BRANCH;
    return token->kind == ZREXE_TOKEN_MEMBER_CALL || token->kind == ZREXE_TOKEN_METHOD;
}

// Resolves the bracket that ends the list; true as ExpandCall.
static bool ExpandLast(ZR_ExecutionContext* context, ZR_Handle* tokens, long open) {
    long close = tokens->count;
    if (close == open + 1) {
        zrExe_DeleteTokens(tokens, open, close);
    } else if (IsCall(zrExe_TokenAt(tokens, open - 1))) {
        return ExpandCall(context, tokens, open, close);
    } else {
        ExpandGroup(context, tokens, open, close);
    }
    return false;
}

// Brackets are resolved in the order in which they close. The tokens go over into a second list, and a bracket that
// closes is the end of that list, so that a line of any length is walked once.
void ZR_ExecutionContext::ExecuteExpandBrackets(ZR_Handle* tokens) {
    if (lastError || !zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_OPEN)) return;
    ZR_Handle done, opens;
    zrExe_CreateTokens(&done);
    opens.Create(sizeof(long), 0);
    if (!done.Secure(tokens->count)) Fail(kErrorMemory);
    for (long i = 1; i <= tokens->count && !lastError; ++i) {
        ZR_Executer_Token* token = zrExe_TokenAt(tokens, i);
        bool closes = token->kind == ZREXE_TOKEN_CLOSE && opens.count;
        if (token->kind == ZREXE_TOKEN_OPEN) opens.AddLongToArray(done.count + 1);
        zrExe_MoveToken(&done, done.count + 1, token);
        if (!closes) continue;
        long open = reinterpret_cast<long*>(opens.data)[opens.count - 1];
        opens.Resize(opens.count - 1);
        if (ExpandLast(this, &done, open)) {
            opens.Resize(0);
            break;
        }
    }
    if (!lastError && opens.count) Fail(kErrorClosedBracket);
    opens.Dispose();
    zrExe_DisposeTokens(tokens);
    *tokens = done;
}

// The line's own statement -----------------------------------------------------------------------------------------

static void RunExpressionOrAssignment(ZR_ExecutionContext* context, ZR_Handle* tokens) {
    long assign = zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_ASSIGN);
    ZR_Executer_Token value;
    zrExe_CreateEmptyToken(&value);
    zrExe_EvaluateSlice(context, tokens, assign + 1, tokens->count, &value);
    if (assign && !context->lastError) {
        ZR_Handle left;
        zrExe_CreateCopyTokens(&left, tokens, 1, assign - 1, /*shallow*/ true);
        context->ExecuteAssignment(&left, &value);
        zrExe_DisposeTokens(&left);
    }
    ReplaceByValue(context, tokens, assign + 1, tokens->count, &value);
    value.Dispose();
}

void ZR_ExecutionContext::ExecuteMethodLineSub(long* state, ZR_Handle* tokens) {
    ZR_Executer_Token* first = zrExe_TokenAt(tokens, 1);
    long keyword = first && first->kind == ZREXE_TOKEN_COMMAND ? first->value.integer : 0;
    ExecuteExpandBrackets(tokens);
    if (lastError) return;
    switch (keyword) {
        case ZR_CMD_IF: ExecuteHandleIf(tokens, state); break;
        case ZR_CMD_WHILE: ExecuteHandleWhile(tokens, state); break;
        case ZR_CMD_UNTIL: ExecuteHandleRepeatUntil(tokens, state); break;
        case ZR_CMD_FOR: ExecuteHandleFor(GetCurrentStack(), tokens, state); break;
        default: RunExpressionOrAssignment(this, tokens); break;
    }
}

// One Boolean is left of the condition, or the error is set. True = the condition holds.
static bool Condition(ZR_ExecutionContext* context, ZR_Handle* tokens, const ZR_ErrorWords& error) {
    if (tokens->count == 0) {
        context->Fail(error);
        return false;
    }
    if (tokens->count > 1) {
        ZR_Executer_Token value;
        zrExe_CreateEmptyToken(&value);
        context->ExecuteTokenizedBlock(&value, tokens, 0);
        if (!context->lastError) {
            zrExe_DeleteTokens(tokens, 1, tokens->count);
            zrExe_MoveToken(tokens, 1, &value);
        }
        value.Dispose();
        if (context->lastError) return false;
    }
    if (tokens->count != 1 || zrExe_TokenAt(tokens, 1)->kind != ZREXE_TOKEN_BOOLEAN) {
        context->Fail(error);
        return false;
    }
    return zrExe_TokenAt(tokens, 1)->GetBoolean();
}

void ZR_ExecutionContext::ExecuteHandleIf(ZR_Handle* tokens, long* state) {
    bool truth = Condition(this, tokens, kErrorWrongIf);
    if (!lastError) *state = truth ? kEnterBlock : kIfFalse;
}

void ZR_ExecutionContext::ExecuteHandleWhile(ZR_Handle* tokens, long* state) {
    bool truth = Condition(this, tokens, kErrorWrongWhile);
    if (!lastError && !truth) *state = kWhileFalse;
}

void ZR_ExecutionContext::ExecuteHandleRepeatUntil(ZR_Handle* tokens, long* state) {
    bool truth = Condition(this, tokens, kErrorWrongUntil);
    if (!lastError && !truth) *state = kUntilFalse;
}

static long PositionOfLine(ZR_Handle* lines, long line) { return lines->FindLong(line); }

void ZR_ExecutionContext::ExecuteHandleFor(ZR_Executer_Stack* frame, ZR_Handle* tokens, long* state) {
    ZR_Executer_Token* parts[4] = {};
    for (long i = 0; i < 4; ++i) parts[i] = zrExe_TokenAt(tokens, i + 1);
    if (!parts[2] || !zrExe_IsVariableToken(parts[0]->kind) || parts[1]->kind != ZREXE_TOKEN_NUMBER ||
        parts[2]->kind != ZREXE_TOKEN_NUMBER || (parts[3] && parts[3]->kind != ZREXE_TOKEN_NUMBER)) {
        Fail(kErrorWrongFor);
        return;
    }
    long step = parts[3] ? zrExe_Truncate(parts[3]->GetNumber()) : 1;
    long end = zrExe_Truncate(parts[2]->GetNumber());
    bool first = PositionOfLine(&frame->activeForLines, frame->currentLine) < 1;
    ZR_Executer_Variable* variable;
    if (first) {
        frame->activeForLines.AddLongToArray(frame->currentLine);
        variable = SetVariable(parts[0], nullptr, ZR_EXE_Longint, 0);
        if (variable) variable->SetNumber(parts[1]->GetNumber());
    } else {
        variable = GetVariableFromToken(parts[0], /*create*/ false);
    }
    if (!variable) {
        Fail(kErrorUnknownLoopVariable);
        return;
    }
    *state = zrExe_ForPass(frame, variable, first, step, end) ? kEnterBlock : kForFinished;
}

// One pass of a loop: moves the variable on a later pass; true = the body runs. Else the loop is over and forgotten.
bool zrExe_ForPass(ZR_Executer_Stack* frame, ZR_Executer_Variable* variable, bool first, long step, long end) {
    long current = zrExe_Truncate(variable->GetNumber());
    if (!first) {
        current = static_cast<long>(static_cast<unsigned long>(current) + static_cast<unsigned long>(step));
        variable->SetNumber(static_cast<double>(current));
    }
    bool over = (step < 1 || current > end) && (step >= 0 || current < end);
    if (over) frame->activeForLines.DeleteLong(frame->currentLine);
    return !over;
}

// Assignment -------------------------------------------------------------------------------------------------------

static void AssignElement(ZR_ExecutionContext* context, ZR_Executer_Token* target, ZR_Handle* left,
                          ZR_Executer_Token* value) {
    long open = zrExe_GetTokenPosByType(left, ZREXE_TOKEN_ELEMENT_OPEN);
    long close = zrExe_GetTokenPosByType(left, ZREXE_TOKEN_ELEMENT_CLOSE);
    if (!open || close < open) {
        context->Fail(kErrorArrayAccess);
        return;
    }
    ZR_Executer_Token index;
    zrExe_CreateEmptyToken(&index);
    zrExe_EvaluateSlice(context, left, open + 1, close - 1, &index);
    if (!zrExe_IsNumberToken(index.kind)) {
        context->Fail(kErrorArrayIndex);
    } else {
        context->SetVariable(target, value, ZR_EXE_Undefined, zrExe_Truncate(index.GetNumber()));
    }
    index.Dispose();
}

void ZR_ExecutionContext::ExecuteAssignment(ZR_Handle* left, ZR_Executer_Token* value) {
    ZR_Executer_Token* target = zrExe_TokenAt(left, 1);
    ZR_Executer_Token property;
    zrExe_CreateEmptyToken(&property);
    if (left->count >= 2 && zrExe_TokenAt(left, 2)->kind == ZREXE_TOKEN_MEMBER) {
        property = GetAssignmentTokenFromObject(left);
        if (!lastError) target = &property;
    }
    if (!target) {
        Fail(kErrorNothingToAssignTo);
    } else if (zrExe_IsVariableToken(target->kind)) {
        if (left->count >= 4) AssignElement(this, target, left, value);
        else SetVariable(target, value, ZR_EXE_Undefined, 0);
    } else if (target->kind == ZREXE_TOKEN_OBJECT && target->GetText()->count) {
        if (!target->objectRef) Fail(kErrorObjectNull);
        else target->SetObjectProperty(value);
    } else if (target->kind == ZREXE_TOKEN_FIELD) {
        SetField(static_cast<short>(target->GetTable()), static_cast<short>(target->GetField()), value);
    } else {
        Fail(kErrorNotAssignable);
    }
    property.Dispose();
}

static void MoveToObject(ZR_Executer_Token* token, void* object) {
    token->Dispose();
    token->Create(ZREXE_TOKEN_OBJECT, nullptr);
    token->SetObjectRef(object);
}

// The result stays on its object when the property on the way is no object.
static void StepIntoProperty(ZR_Executer_Token* token) {
    if (token->kind != ZREXE_TOKEN_OBJECT || !token->objectRef || !token->text.count) return;
    PA_Variable property = PA_GetObjectProperty(token->objectRef, token->text.GetUnistringPtr());
    if (property.fType == eVK_Object) MoveToObject(token, PA_GetObjectVariable(&property));
    PA_ClearVariable(&property);
}

ZR_Executer_Token ZR_ExecutionContext::GetAssignmentTokenFromObject(ZR_Handle* left) {
    ZR_Executer_Token target;
    zrExe_CreateEmptyToken(&target);
    for (long i = 1; i <= left->count; ++i) {
        ZR_Executer_Token* token = zrExe_TokenAt(left, i);
        if (i == 1) {
            if (!zrExe_IsVariableToken(token->kind)) continue;
            ZR_Executer_Variable* variable = GetVariableFromToken(token, /*create*/ false);
            if (!variable) Fail(kErrorNoObjectVariable);
            else if (variable->kind != ZR_EXE_Object) Fail(kErrorVariableIsNoObject);
            else MoveToObject(&target, variable->objectRef);
            if (lastError) return target;
            continue;
        }
        StepIntoProperty(&target);
        if (token->kind == ZREXE_TOKEN_MEMBER) target.text.Copy(token->GetText());
    }
    return target;
}

void ZR_ExecutionContext::SetField(short table, short field, ZR_Executer_Token* value) {
    if (!ZR_IsFieldNoValid(table, field)) {
        Fail(kErrorUnknownField, table, field);
        return;
    }
    short type = PA_GetFieldType(table, field);
    if (!value) return;
    static constexpr struct {
        short type;
        ZREXE_TOKEN kind;  // what the field takes; kind 999 = it cannot be assigned at all
    } kFieldKinds[] = {
        {0, ZREXE_TOKEN_STRING},  {2, ZREXE_TOKEN_STRING}, {1, ZREXE_TOKEN_NUMBER}, {4, ZREXE_TOKEN_DATE},
        {6, ZREXE_TOKEN_BOOLEAN}, {8, ZREXE_TOKEN_NUMBER}, {9, ZREXE_TOKEN_NUMBER}, {11, ZREXE_TOKEN_TIME},
        {30, ZREXE_TOKEN_BLOB},   {3, ZREXE_TOKEN_OTHER},  {7, ZREXE_TOKEN_OTHER},  {-1, ZREXE_TOKEN_OTHER},
    };
    for (const auto& row : kFieldKinds) {
        if (row.type != type) continue;
        if (row.kind == ZREXE_TOKEN_OTHER) Fail(kErrorFieldNotAssignable, table, field);
        else if (row.kind != value->kind) Fail(kErrorFieldType, table, field);
        else zrExe_StoreField(table, field, type, value);
        return;
    }
}
