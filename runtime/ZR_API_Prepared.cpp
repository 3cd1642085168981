// Running the prepared form of a line.

#include <cstdlib>

#include "core/ZR_API_Date.h"
#include "language/ZR_API_Executer.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Guards.h"
#include "runtime/ZR_API_Prepared_Private.h"

// A value on its way through a line. Text is borrowed, or owned in storage; a single unit needs no storage at all.
// A kind without a quick fold is kept as a token on the heap.
struct QuickValue {
    int kind;  // token kind; 999 = none
    bool owned;
    unsigned short unit[2];
    union {
        double number;
        long integer;
        ZR_Executer_Token* token;
    };
    const ZR_Text* text;
    ZR_Text storage;  // only alive while owned, or as a view of unit
};

static inline void Clear(QuickValue* value) {
    value->kind = ZREXE_TOKEN_OTHER;
    value->owned = false;
}

static bool IsQuick(int kind) {
    return kind == ZREXE_TOKEN_NUMBER || kind == ZREXE_TOKEN_STRING || kind == ZREXE_TOKEN_BOOLEAN ||
           kind == ZREXE_TOKEN_DATE || kind == ZREXE_TOKEN_TIME;
}

static void DisposeValue(QuickValue* value) {
    if (value->owned) {
        if (value->kind == ZREXE_TOKEN_STRING) {
            value->storage.Dispose();
        } else {
            value->token->Dispose();
            free(value->token);
        }
    }
    Clear(value);
}

static void Borrow(QuickValue* value, const ZR_Text* text) {
    value->kind = ZREXE_TOKEN_STRING;
    value->owned = false;
    value->text = text;
}

static void BorrowUnit(QuickValue* value, unsigned short unit) {
    value->unit[0] = unit;
    value->unit[1] = 0;
    value->storage.Create();
    value->storage.data = reinterpret_cast<char*>(value->unit);
    value->storage.count = 1;
    value->storage.capacity = 2;  // and a terminator
    value->storage.allocatedBytes = 4;
    Borrow(value, &value->storage);
}

// Makes a text the value's own, so that it outlives what it was borrowed from.
static void Own(QuickValue* value) {
    if (value->kind != ZREXE_TOKEN_STRING || value->owned) return;
    ZR_Text copy;
    copy.Create();  // the units alone: a variable may hold far more storage than text
    copy.AddText(value->text);
    value->storage = copy;
    value->owned = true;
    value->text = &value->storage;
}

// The run of one line.
struct Run {
    ZR_ExecutionContext* context;
    ZR_Executer_Stack* frame;
    ZR_Handle tokens;  // the method's list: its tokens stay where they are, the method's record may move
    ZR_PreparedLine* line;
    QuickValue* temps;
};

// Variables --------------------------------------------------------------------------------------------------------

static ZR_Handle* ListOf(Run* run, int kind) {
    if (kind == ZREXE_TOKEN_LOCAL) return &run->frame->localVariables;
    return kind == ZREXE_TOKEN_VARIABLE ? &run->context->processVariables : &run->context->interprocessVariables;
}

static inline ZR_Executer_Variable* VariableAt(ZR_Handle* list, long position) {
    return reinterpret_cast<ZR_Executer_Variable*>(list->data) + (position - 1);
}

// The variable of a token; the hint is where its name stood last time.
static ZR_Executer_Variable* Find(Run* run, ZR_Executer_Token* token, int* hint) {
    ZR_Handle* list = ListOf(run, token->kind);
    if (ZR_VariableIndex::IsAt(list, *hint, &token->text)) return VariableAt(list, *hint);
    ZR_Executer_Variable* found = run->context->GetVariableFromToken(token, /*create*/ false);
    *hint = found ? static_cast<int>(found - reinterpret_cast<ZR_Executer_Variable*>(list->data)) + 1 : 0;
    return found;
}

// Blocks -----------------------------------------------------------------------------------------------------------

static bool Evaluate(Run* run, int block, QuickValue* value);

static inline bool FoldNumber(QuickValue* value, double number, unsigned short formula) {
    if (value->kind != ZREXE_TOKEN_NUMBER) {
        if (value->kind != ZREXE_TOKEN_OTHER) return false;
        value->kind = ZREXE_TOKEN_NUMBER;
        value->number = 0;
    }
    switch (formula) {
        case '+': value->number += number; return true;
        case '-': value->number -= number; return true;
        case '*': value->number *= number; return true;
        case '/':
            if (number == 0) return false;
            value->number /= number;
            return true;
        default: value->number = zrExe_FoldNumber(nullptr, value->number, number, formula); return true;
    }
}

static bool FoldText(QuickValue* value, const ZR_Text* text, unsigned short formula) {
    switch (value->kind) {
        case ZREXE_TOKEN_OTHER:
            if (formula != '+') return false;
            Borrow(value, text);
            return true;
        case ZREXE_TOKEN_STRING:
            if (formula != '+') return true;
            if (!zrExe_TextsFit(value->text->count, text->count)) return false;
            Own(value);
            value->storage.AddText(text);
            return true;
        case ZREXE_TOKEN_NUMBER: return false;
        default: return true;
    }
}

static void FoldBoolean(QuickValue* value, bool flag, long logic) {
    if (value->kind != ZREXE_TOKEN_OTHER && value->kind != ZREXE_TOKEN_BOOLEAN) return;
    if (logic < 0 || logic > ZREXE_LOGIC_OR) return;
    bool before = value->kind == ZREXE_TOKEN_BOOLEAN && value->integer == 1;
    value->kind = ZREXE_TOKEN_BOOLEAN;
    value->integer = logic == 0 ? flag : logic == ZREXE_LOGIC_AND ? before && flag : before || flag;
}

static bool FoldTime(QuickValue* value, long seconds, unsigned short formula) {
    if ((value->kind != ZREXE_TOKEN_OTHER && value->kind != ZREXE_TOKEN_TIME) || (formula == '/' && !seconds))
        return false;
    if (value->kind == ZREXE_TOKEN_OTHER) value->integer = 0;
    value->integer = zrExe_FoldTime(nullptr, value->integer, seconds, formula);
    value->kind = ZREXE_TOKEN_TIME;
    return true;
}

static bool FoldDate(QuickValue* value, long units) {
    if (value->kind == ZREXE_TOKEN_DATE) return false;
    if (value->kind == ZREXE_TOKEN_OTHER) {
        value->kind = ZREXE_TOKEN_DATE;
        value->integer = units;
    }
    return true;
}

static bool FoldPlain(QuickValue* value, ZR_Executer_Variable* variable, unsigned short formula, long logic) {
    switch (variable->kind) {
        case ZR_EXE_Real: return FoldNumber(value, variable->value.real, formula);
        case ZR_EXE_Integer:
        case ZR_EXE_Longint: return FoldNumber(value, static_cast<double>(variable->value.integer), formula);
        case ZR_EXE_Text: return FoldText(value, &variable->text, formula);
        case ZR_EXE_Boolean: FoldBoolean(value, variable->value.integer == 1, logic); return true;
        case ZR_EXE_Time: return FoldTime(value, variable->value.integer, formula);
        case ZR_EXE_Date: return FoldDate(value, variable->value.integer & 0xFFFFFFFFFFFFL);
        default: return false;
    }
}

// The whole number that a block gives as an index; false = the plain form has to word it.
static bool EvaluateIndex(Run* run, int block, long* index) {
    QuickValue value;
    Clear(&value);
    bool good = Evaluate(run, block, &value) && value.kind == ZREXE_TOKEN_NUMBER;
    if (good) *index = zrExe_Truncate(value.number);
    DisposeValue(&value);
    return good;
}

// The item behind a variable and its index, -1 = not quick.
static int FoldVariable(Run* run, ZR_PreparedItem* item, int at, QuickValue* value, unsigned short formula,
                        long logic) {
    ZR_Executer_Variable* variable = Find(run, item->token, &item->hint);
    if (!variable) return -1;
    long index;
    if (variable->kind == ZR_EXE_Text && item->textBlock >= 0) {
        if (!EvaluateIndex(run, item->textBlock, &index) || index < 1 || index > variable->text.count) return -1;
        unsigned short unit = variable->text.Units()[index - 1];
        if (value->kind == ZREXE_TOKEN_OTHER && formula == '+') {
            BorrowUnit(value, unit);
            return item->textNext;
        }
        QuickValue single;
        BorrowUnit(&single, unit);
        return FoldText(value, &single.storage, formula) ? item->textNext : -1;
    }
    if (variable->IsArray()) {
        if (item->elementBlock < 0 || !EvaluateIndex(run, item->elementBlock, &index)) return -1;
        ZR_Executer_Variable* element = variable->GetVariablePtrFromArrayByIndex(index);
        return element && FoldPlain(value, element, formula, logic) ? item->elementNext : -1;
    }
    return FoldPlain(value, variable, formula, logic) ? at + 1 : -1;
}

static bool FoldTemp(QuickValue* value, const QuickValue* temp, unsigned short formula, long logic) {
    switch (temp->kind) {
        case ZREXE_TOKEN_NUMBER: return FoldNumber(value, temp->number, formula);
        case ZREXE_TOKEN_STRING: return FoldText(value, temp->text, formula);
        case ZREXE_TOKEN_BOOLEAN: FoldBoolean(value, temp->integer == 1, logic); return true;
        case ZREXE_TOKEN_TIME: return FoldTime(value, static_cast<int>(temp->integer), formula);
        case ZREXE_TOKEN_DATE: return FoldDate(value, temp->integer);
        default: return false;
    }
}

static bool IsAllowed(ZR_ExecutionContext* context, long id) {
    ZR_AllowedCommand* record = id ? context->Search4DCommandForExecution(id) : nullptr;
    return !record || (record->allowed && (record->threadSafe || !context->preemptive));
}

static bool FoldRun(Run* run, int first, int count, QuickValue* value) {
    ZR_PreparedItem* items = reinterpret_cast<ZR_PreparedItem*>(run->line->items.data) + first;
    unsigned short formula = '+';
    long logic = 0;
    for (int at = 0; at < count;) {
        ZR_PreparedItem* item = items + at;
        int next = at + 1;
        bool good = true;
        switch (item->kind) {
            case kItemNumber: good = FoldNumber(value, item->number, formula); break;
            case kItemText: good = FoldText(value, item->text, formula); break;
            case kItemDate: good = FoldDate(value, item->integer); break;
            case kItemTime: good = FoldTime(value, item->integer, formula); break;
            case kItemVariable:
                next = FoldVariable(run, item, at, value, formula, logic);
                good = next >= 0;
                break;
            case kItemTemp: good = FoldTemp(value, &run->temps[item->integer], formula, logic); break;
            case kItemFormula: formula = static_cast<unsigned short>(item->integer); break;
            case kItemLogic: logic = item->integer; break;
            case kItemTruth:  // a command without brackets takes the place of the value
                good = IsAllowed(run->context, item->command);
                if (value->kind == ZREXE_TOKEN_OTHER || value->kind == ZREXE_TOKEN_BOOLEAN) {
                    value->kind = ZREXE_TOKEN_BOOLEAN;
                    value->integer = item->integer;
                }
                break;
            case kItemKeyword: good = IsAllowed(run->context, item->command); break;
        }
        if (!good) return false;
        at = next;
    }
    return true;
}

template <typename Value>
static bool CompareOrdered(Value left, Value right, int comparison) {
    switch (comparison) {
        case ZREXE_COMPARISON_LESS_EQUAL: return left <= right;
        case ZREXE_COMPARISON_GREATER_EQUAL: return left >= right;
        case ZREXE_COMPARISON_EQUAL: return left == right;
        case ZREXE_COMPARISON_UNEQUAL: return left != right;
        case ZREXE_COMPARISON_LESS: return left < right;
        default: return left > right;
    }
}

// Year, month, day as one number that orders like the date.
static long OrderOfDate(long units) {
    return static_cast<long>(static_cast<short>(units >> 32)) * 0x100000000L +
           static_cast<long>(static_cast<short>(units >> 16)) * 0x10000L + static_cast<short>(units);
}

static bool CompareValues(QuickValue* left, QuickValue* right, int comparison, bool* truth) {
    bool equality = comparison == ZREXE_COMPARISON_EQUAL || comparison == ZREXE_COMPARISON_UNEQUAL;
    if (left->kind != right->kind || comparison < 1 || comparison > ZREXE_COMPARISON_GREATER) return false;
    switch (left->kind) {
        case ZREXE_TOKEN_NUMBER: *truth = CompareOrdered(left->number, right->number, comparison); return true;
        case ZREXE_TOKEN_TIME: *truth = CompareOrdered(left->integer, right->integer, comparison); return true;
        case ZREXE_TOKEN_DATE:
            *truth = CompareOrdered(OrderOfDate(left->integer), OrderOfDate(right->integer), comparison);
            return true;
        case ZREXE_TOKEN_BOOLEAN:
            *truth = CompareOrdered(left->integer == 1, right->integer == 1, comparison);
            return equality;
        case ZREXE_TOKEN_STRING:
            if (!equality) return false;
            *truth = const_cast<ZR_Text*>(left->text)->EqualWithWildChar(right->text) ==
                     (comparison == ZREXE_COMPARISON_EQUAL);
            return true;
        default: return false;
    }
}

// A block into a value that is empty; false = not quick, and nothing has happened.
static bool Evaluate(Run* run, int number, QuickValue* value) {
    ZR_PreparedBlock* block = reinterpret_cast<ZR_PreparedBlock*>(run->line->blocksList.data) + number;
    if (!block->comparison) return FoldRun(run, block->first, block->count, value);
    QuickValue left, right;
    Clear(&left);
    Clear(&right);
    bool truth = false;
    bool good = FoldRun(run, block->first, block->count, &left) &&
                FoldRun(run, block->rightFirst, block->rightCount, &right) &&
                CompareValues(&left, &right, block->comparison, &truth);
    DisposeValue(&left);
    DisposeValue(&right);
    value->kind = ZREXE_TOKEN_BOOLEAN;
    value->integer = truth;
    return good;
}

// Values and tokens ------------------------------------------------------------------------------------------------

// The token that a value is in the plain form; the value is left empty.
static void MoveToToken(QuickValue* value, ZR_Executer_Token* token) {
    if (value->kind != ZREXE_TOKEN_OTHER && !IsQuick(value->kind)) {
        memcpy(static_cast<void*>(token), static_cast<void*>(value->token), sizeof *token);
        free(value->token);
        Clear(value);
        return;
    }
    token->Create(static_cast<ZREXE_TOKEN>(value->kind), nullptr);
    token->value.integer = 0;
    if (value->kind == ZREXE_TOKEN_STRING) {
        Own(value);
        token->text = value->storage;
    } else if (value->kind == ZREXE_TOKEN_NUMBER) {
        token->value.real = value->number;
    } else {
        token->value.integer = value->integer;
    }
    Clear(value);
}

// A finished token into an empty value; the token is left empty. False = no memory.
static bool MoveFromToken(ZR_Executer_Token* token, QuickValue* value) {
    value->kind = token->kind;
    value->owned = false;
    if (token->kind == ZREXE_TOKEN_STRING && !token->parent) {
        value->storage = token->text;
        token->text.Create();
        value->owned = true;
        value->text = &value->storage;
    } else if (token->kind == ZREXE_TOKEN_NUMBER) {
        value->number = token->value.real;
    } else if (token->kind == ZREXE_TOKEN_BOOLEAN || token->kind == ZREXE_TOKEN_TIME ||
               token->kind == ZREXE_TOKEN_DATE) {
        value->integer = token->value.integer;
    } else if (token->kind != ZREXE_TOKEN_OTHER) {
        value->token = static_cast<ZR_Executer_Token*>(malloc(sizeof *token));
        if (!value->token) {
            Clear(value);
            return false;
        }
        memcpy(static_cast<void*>(value->token), static_cast<void*>(token), sizeof *token);
        zrExe_CreateEmptyToken(token);
        value->owned = true;
    }
    return true;
}

// Steps ------------------------------------------------------------------------------------------------------------

enum Outcome { kDone, kHandOver, kFailed };

static ZR_PreparedParameter* ParameterOf(Run* run, const ZR_PreparedStep* step, int index) {
    return reinterpret_cast<ZR_PreparedParameter*>(run->line->parameters.data) + step->firstParameter + index;
}

// The evaluated list of a command. False = one of them is not quick, and the list is empty again.
static bool BuildParameters(Run* run, const ZR_PreparedStep* step, ZR_Handle* list) {
    zrExe_CreateTokens(list);
    list->growStep = step->parameterCount;
    for (int i = 0; i < step->parameterCount; ++i) {
        ZR_PreparedParameter* parameter = ParameterOf(run, step, i);
        QuickValue value;
        Clear(&value);
        bool good = true;
        if (parameter->block < 0) {
            for (int at = parameter->firstToken; at <= parameter->lastToken; ++at) {
                ZR_Executer_Token* copy = reinterpret_cast<ZR_Executer_Token*>(list->AppendGetPtr());
                if (copy) copy->Create(zrExe_TokenAt(&run->tokens, at), /*shallow*/ true);
            }
        } else {
            good = Evaluate(run, parameter->block, &value) && value.kind != ZREXE_TOKEN_OTHER;
            ZR_Executer_Token* slot = good ? reinterpret_cast<ZR_Executer_Token*>(list->AppendGetPtr()) : nullptr;
            if (slot) MoveToToken(&value, slot);
        }
        DisposeValue(&value);
        if (good) continue;
        zrExe_DisposeTokens(list);
        return false;
    }
    return true;
}

// Commands on texts that need no host: it would be handed a copy of the whole text at every call. Their answers are the
// host's own, for the forms that the table gives them.
enum { kCommandSubstring = 12, kCommandLength = 16 };

static bool Argument(Run* run, const ZR_PreparedStep* step, int index, int kind, QuickValue* value) {
    Clear(value);
    return Evaluate(run, ParameterOf(run, step, index)->block, value) && value->kind == kind;
}

static bool QuickLength(Run* run, const ZR_PreparedStep* step, QuickValue* value) {
    QuickValue text;
    bool good = Argument(run, step, 0, ZREXE_TOKEN_STRING, &text);
    if (good) {
        value->kind = ZREXE_TOKEN_NUMBER;
        value->number = static_cast<double>(text.text->count);
    }
    DisposeValue(&text);
    return good;
}

static bool QuickSubstring(Run* run, const ZR_PreparedStep* step, QuickValue* value) {
    static const double kMost = 2147483647.0;
    QuickValue text, first, count;
    Clear(&first);
    Clear(&count);
    count.number = kMost;
    bool good = Argument(run, step, 0, ZREXE_TOKEN_STRING, &text) &&
                Argument(run, step, 1, ZREXE_TOKEN_NUMBER, &first) &&
                (step->parameterCount < 3 || Argument(run, step, 2, ZREXE_TOKEN_NUMBER, &count)) &&
                first.number > -kMost && first.number < kMost && count.number > -kMost && count.number <= kMost;
    if (good) {
        long from = zrExe_Truncate(first.number) - 1, units = zrExe_Truncate(count.number);
        if (from < 0) from = 0;
        if (from > text.text->count) from = text.text->count;
        if (units > text.text->count - from) units = text.text->count - from;
        value->storage.Create();
        if (units > 0) value->storage.AddUniBuffer(text.text->Units() + from, units);
        value->kind = ZREXE_TOKEN_STRING;
        value->owned = true;
        value->text = &value->storage;
    }
    DisposeValue(&text);
    DisposeValue(&first);
    DisposeValue(&count);
    return good;
}

static bool RunQuickCommand(Run* run, const ZR_PreparedStep* step, QuickValue* value) {
    bool length = step->id == kCommandLength && step->parameterCount == 1;
    bool substring = step->id == kCommandSubstring && (step->parameterCount == 2 || step->parameterCount == 3);
    if ((!length && !substring) || !IsAllowed(run->context, step->id)) return false;
    return length ? QuickLength(run, step, value) : QuickSubstring(run, step, value);
}

static Outcome RunCommand(Run* run, ZR_PreparedStep* step, QuickValue* value) {
    if (RunQuickCommand(run, step, value)) return kDone;
    Clear(value);
    ZR_Handle parameters;
    if (!BuildParameters(run, step, &parameters)) return kHandOver;
    ZR_Executer_Token answer;
    zrExe_CreateEmptyToken(&answer);
    run->context->Execute4DCommand(&parameters, step->id, &answer);
    zrExe_DisposeTokens(&parameters);
    if (!run->context->lastError) MoveFromToken(&answer, value);
    answer.Dispose();
    return run->context->lastError ? kFailed : kDone;
}

static Outcome RunDeclaration(Run* run, ZR_PreparedStep* step) {
    if (!IsAllowed(run->context, step->id)) return kHandOver;
    ZR_EXE_VariableKind kind = zrExe_DeclaredKind(step->id);
    for (int i = 0; i < step->parameterCount; ++i)
        run->context->SetVariable(zrExe_TokenAt(&run->tokens, ParameterOf(run, step, i)->firstToken), nullptr, kind, 0);
    return kDone;
}

// The reference of the method that a step calls; 0 = the plain form has to find it.
static long MethodOf(Run* run, ZR_PreparedStep* step) {
    ZR_ExecutionContext* context = run->context;
    if (step->methodReference && step->methodCount == context->methods.count &&
        step->nextMethodReference == context->nextMethodReference)
        return step->methodReference;
    ZR_ExecutionMethod* method = context->GetMethodPtrByName(step->name);
    if (!method) return 0;
    step->methodReference = method->reference;
    step->methodCount = context->methods.count;
    step->nextMethodReference = context->nextMethodReference;
    return step->methodReference;
}

static constexpr struct {
    int token;
    ZR_EXE_VariableKind variable;
} kQuickKinds[] = {
    {ZREXE_TOKEN_NUMBER, ZR_EXE_Real}, {ZREXE_TOKEN_STRING, ZR_EXE_Text},     {ZREXE_TOKEN_DATE, ZR_EXE_Date},
    {ZREXE_TOKEN_TIME, ZR_EXE_Time},   {ZREXE_TOKEN_BOOLEAN, ZR_EXE_Boolean},
};

static ZR_EXE_VariableKind VariableKindOf(int tokenKind) {
    for (const auto& row : kQuickKinds)
        if (row.token == tokenKind) return row.variable;
    return ZR_EXE_Undefined;
}

static const long kKeptUnits = 1 << 16;

// Gives a fresh variable, or one of a fitting kind, a quick value. False = the kinds do not fit.
static bool StoreValue(ZR_Executer_Variable* variable, QuickValue* value) {
    switch (value->kind) {
        case ZREXE_TOKEN_NUMBER:
            if (variable->kind == ZR_EXE_Real) variable->value.real = value->number;
            else if (variable->kind == ZR_EXE_Longint || variable->kind == ZR_EXE_Integer)
                variable->SetNumber(value->number);
            else return false;
            return true;
        case ZREXE_TOKEN_STRING:
            if (variable->kind != ZR_EXE_Text) return false;
            if (value->owned) {  // handed over
                variable->text.Dispose();
                variable->text = value->storage;
                value->owned = false;
                Clear(value);
            } else if (value->text != &variable->text) {
                // A large block is kept for texts of about its size, and not for ever for a small one.
                if (variable->text.capacity > kKeptUnits && variable->text.capacity / 4 > value->text->count)
                    variable->text.Dispose();
                variable->text.Resize(0);
                variable->text.AddText(value->text);
            }
            return true;
        case ZREXE_TOKEN_DATE:
        case ZREXE_TOKEN_TIME:
        case ZREXE_TOKEN_BOOLEAN:
            if (variable->kind != VariableKindOf(value->kind)) return false;
            variable->value.integer = value->integer;
            return true;
        default: return false;
    }
}

// A parameter's variable, named by its number.
static bool CreateParameter(ZR_Executer_Stack* frame, long number, QuickValue* value) {
    char digits[24];
    unsigned short name[24];
    ZR_NumToString(number, digits);
    long length = 0;
    for (; digits[length]; ++length) name[length] = static_cast<unsigned short>(digits[length]);
    ZR_Executer_Variable* variable = frame->AppendLocal(name, length, VariableKindOf(value->kind));
    return variable && StoreValue(variable, value);
}

static void TakeQuickResult(ZR_Executer_Stack* frame, QuickValue* answer) {
    static const unsigned short kZero[] = {'0', 0};
    ZR_Text name;
    name.Create();
    name.data = reinterpret_cast<char*>(const_cast<unsigned short*>(kZero));
    name.count = name.capacity = 1;
    ZR_Executer_Variable* variable = frame->GetLocalVariable(&name);
    if (!variable) return;
    if (variable->kind == ZR_EXE_Text) {  // the frame ends: its text is handed over
        answer->kind = ZREXE_TOKEN_STRING;
        answer->storage = variable->text;
        answer->owned = true;
        answer->text = &answer->storage;
        variable->text.Create();
        return;
    }
    if (variable->kind == ZR_EXE_Real || variable->kind == ZR_EXE_Longint || variable->kind == ZR_EXE_Integer) {
        answer->kind = ZREXE_TOKEN_NUMBER;
        answer->number = variable->GetNumber();
        return;
    }
    ZR_Executer_Token token;
    token.Create(static_cast<void*>(variable));
    MoveFromToken(&token, answer);
    token.Dispose();
}

static Outcome RunMethod(Run* run, ZR_PreparedStep* step, QuickValue* value) {
    ZR_ExecutionContext* context = run->context;
    long reference = MethodOf(run, step);
    if (!reference) return kHandOver;
    ZR_ExecutionMethod* method = context->GetMethodPtrByReference(reference);
    if (!method) return kHandOver;
    ZR_Executer_Stack frame;
    frame.CreateFor(method);
    bool good = true;
    for (int i = 0; i < step->parameterCount && good; ++i) {
        QuickValue argument;
        Clear(&argument);
        good = Evaluate(run, ParameterOf(run, step, i)->block, &argument) && IsQuick(argument.kind) &&
               CreateParameter(&frame, i + 1, &argument);
        DisposeValue(&argument);
    }
    if (good && context->CheckDepth()) {
        zrExe_RunFrame(context, &frame);
        if (!context->lastError) TakeQuickResult(&frame, value);
    }
    frame.DisposeFor(context->GetMethodPtrByReference(reference));
    if (!good) return kHandOver;
    return context->lastError ? kFailed : kDone;
}

static Outcome RunStep(Run* run, ZR_PreparedStep* step, QuickValue* value) {
    switch (step->kind) {
        case kStepGroup:
            if (!Evaluate(run, step->block, value)) return kHandOver;
            Own(value);  // what comes next may change the variable
            return kDone;
        case kStepCommand: return RunCommand(run, step, value);
        case kStepMethod: return RunMethod(run, step, value);
        default: return RunDeclaration(run, step);
    }
}

// Statements -------------------------------------------------------------------------------------------------------

// $s:=$s+a+b: the parts go behind the variable's own text. False = a part is no text, and nothing has happened.
static bool AppendInPlace(Run* run, ZR_Executer_Variable* target) {
    ZR_PreparedBlock* block = reinterpret_cast<ZR_PreparedBlock*>(run->line->blocksList.data) + run->line->blocks[0];
    ZR_PreparedItem* items = reinterpret_cast<ZR_PreparedItem*>(run->line->items.data) + block->first;
    const ZR_Text* parts[32];
    int count = 0;
    long total = target->text.count;
    for (int i = 2; i < block->count; i += 2) {
        const ZR_Text* part = nullptr;
        if (items[i].kind == kItemText) {
            part = items[i].text;
        } else if (items[i].kind == kItemTemp) {
            QuickValue* temp = &run->temps[items[i].integer];
            if (temp->kind == ZREXE_TOKEN_STRING) part = temp->text;
        } else {
            ZR_Executer_Variable* variable = Find(run, items[i].token, &items[i].hint);
            if (variable && variable->kind == ZR_EXE_Text) part = &variable->text;
        }
        if (!part || count == 32 || !zrExe_TextsFit(total, part->count)) return false;
        total += part->count;
        parts[count++] = part;
    }
    for (int i = 0; i < count; ++i) target->text.AddText(parts[i]);
    return true;
}

// A single value of a kind without a quick fold, such as an object from a command, goes the common way.
static Outcome AssignToken(Run* run, long index) {
    ZR_PreparedBlock* block = reinterpret_cast<ZR_PreparedBlock*>(run->line->blocksList.data) + run->line->blocks[0];
    ZR_PreparedItem* item = reinterpret_cast<ZR_PreparedItem*>(run->line->items.data) + block->first;
    if (block->comparison || block->count != 1 || item->kind != kItemTemp) return kHandOver;
    QuickValue* temp = &run->temps[item->integer];
    if (IsQuick(temp->kind) || temp->kind == ZREXE_TOKEN_OTHER || temp->kind == ZREXE_TOKEN_NULL) return kHandOver;
    run->context->SetVariable(run->line->target, temp->token, ZR_EXE_Undefined, index);
    return run->context->lastError ? kFailed : kDone;
}

static Outcome RunAssignment(Run* run) {
    ZR_PreparedLine* line = run->line;
    ZR_Executer_Variable* target = Find(run, line->target, &line->targetHint);
    if (line->appends && target && target->kind == ZR_EXE_Text && AppendInPlace(run, target)) return kDone;
    QuickValue value;
    Clear(&value);
    long index = 0;
    if (!Evaluate(run, line->blocks[0], &value) || !IsQuick(value.kind)) {
        DisposeValue(&value);
        return line->indexBlock < 0 ? AssignToken(run, 0) : kHandOver;
    }
    bool good = line->indexBlock < 0 || EvaluateIndex(run, line->indexBlock, &index);
    if (good && index > 0) {
        target = target ? target->GetVariablePtrFromArrayByIndex(index) : nullptr;
        good = target != nullptr;
    }
    if (good && !target) {
        Own(&value);  // a new variable may move the one that the text is borrowed from
        target = run->context->SetVariable(line->target, nullptr, VariableKindOf(value.kind), 0);
        good = target != nullptr;
    }
    if (good) good = StoreValue(target, &value);
    DisposeValue(&value);
    return good ? kDone : kHandOver;
}

static Outcome RunExpression(Run* run, ZR_Executer_Token* result) {
    if (run->line->blocks[0] < 0) return kDone;
    ZR_PreparedBlock* block = reinterpret_cast<ZR_PreparedBlock*>(run->line->blocksList.data) + run->line->blocks[0];
    ZR_PreparedItem* item = reinterpret_cast<ZR_PreparedItem*>(run->line->items.data) + block->first;
    if (block->count == 1 && !block->comparison && item->kind == kItemTemp) {  // a call
        QuickValue* temp = &run->temps[item->integer];
        if (temp->kind == ZREXE_TOKEN_OTHER) return kDone;
        if (temp->kind == ZREXE_TOKEN_NULL) return kHandOver;
        result->Dispose();
        if (temp->kind == ZREXE_TOKEN_TIME) temp->integer = static_cast<int>(temp->integer);  // as a block takes a time
        MoveToToken(temp, result);
        return kDone;
    }
    QuickValue value;
    Clear(&value);
    bool good = Evaluate(run, run->line->blocks[0], &value);
    if (good && value.kind != ZREXE_TOKEN_OTHER) {
        result->Dispose();
        MoveToToken(&value, result);
    }
    DisposeValue(&value);
    return good ? kDone : kHandOver;
}

enum : long {
    kEnterBlockState = 1,
    kIfFalseState = 2,
    kForFinishedState = 4,
    kUntilFalseState = 6,
    kWhileFalseState = 7
};

static Outcome RunCondition(Run* run, long* state, ZR_Executer_Token* result) {
    if (!IsAllowed(run->context, run->line->keyword)) return kHandOver;
    QuickValue value;
    Clear(&value);
    if (!Evaluate(run, run->line->blocks[0], &value) || value.kind != ZREXE_TOKEN_BOOLEAN) {
        DisposeValue(&value);
        return kHandOver;
    }
    bool truth = value.integer == 1;
    result->kind = ZREXE_TOKEN_BOOLEAN;
    result->value.integer = truth;
    if (run->line->keyword == static_cast<short>(ZR_CMD_IF)) *state = truth ? kEnterBlockState : kIfFalseState;
    else if (!truth)
        *state = run->line->keyword == static_cast<short>(ZR_CMD_WHILE) ? kWhileFalseState : kUntilFalseState;
    return kDone;
}

static Outcome RunFor(Run* run, long* state) {
    ZR_PreparedLine* line = run->line;
    if (!IsAllowed(run->context, ZR_CMD_FOR)) return kHandOver;
    double bounds[3] = {0, 0, 1};
    for (int i = 0; i < 3; ++i) {
        if (line->blocks[i] < 0) continue;
        QuickValue value;
        Clear(&value);
        bool good = Evaluate(run, line->blocks[i], &value) && value.kind == ZREXE_TOKEN_NUMBER;
        bounds[i] = value.number;
        DisposeValue(&value);
        if (!good) return kHandOver;
    }
    ZR_Executer_Stack* frame = run->frame;
    bool first = frame->activeForLines.FindLong(frame->currentLine) < 1;
    ZR_Executer_Variable* variable = Find(run, line->target, &line->targetHint);
    if (!first && !variable) return kHandOver;
    if (first) {
        frame->activeForLines.AddLongToArray(frame->currentLine);
        if (!variable) variable = run->context->SetVariable(line->target, nullptr, ZR_EXE_Longint, 0);
        if (!variable) return kFailed;
        variable->SetNumber(bounds[0]);
    }
    bool body = zrExe_ForPass(frame, variable, first, zrExe_Truncate(bounds[2]), zrExe_Truncate(bounds[1]));
    *state = body ? kEnterBlockState : kForFinishedState;
    return kDone;
}

static Outcome RunStatement(Run* run, long* state, ZR_Executer_Token* result) {
    switch (run->line->statement) {
        case kRunAssignment: return RunAssignment(run);
        case kRunExpression: return RunExpression(run, result);
        case kRunCondition: return RunCondition(run, state, result);
        default: return RunFor(run, state);
    }
}

// Handing over -----------------------------------------------------------------------------------------------------

// The outermost finished step that begins at a position; null = none.
static ZR_PreparedStep* FinishedStepAt(ZR_PreparedLine* line, int done, int position) {
    ZR_PreparedStep* steps = reinterpret_cast<ZR_PreparedStep*>(line->steps.data);
    for (int i = done - 1; i >= 0; --i)  // outer brackets close later
        if (steps[i].firstToken == position) return steps + i;
    return nullptr;
}

// The plain form goes on where the prepared one stopped: finished brackets stand in the list as their values.
static void HandOver(Run* run, const ZR_MethodLine* row, int done, long* state, ZR_Executer_Token* result) {
    ZR_Handle tokens;
    zrExe_CreateTokens(&tokens);
    tokens.growStep = row->last - row->first + 1;
    for (int position = row->first; position <= row->last; ++position) {
        ZR_PreparedStep* step = FinishedStepAt(run->line, done, position);
        if (step) {
            long number = step - reinterpret_cast<ZR_PreparedStep*>(run->line->steps.data);
            ZR_Executer_Token* slot = run->temps[number].kind == ZREXE_TOKEN_OTHER
                                          ? nullptr
                                          : reinterpret_cast<ZR_Executer_Token*>(tokens.AppendGetPtr());
            if (slot) MoveToToken(&run->temps[number], slot);
            position = step->lastToken;
        } else {
            ZR_Executer_Token* slot = reinterpret_cast<ZR_Executer_Token*>(tokens.AppendGetPtr());
            if (slot) slot->Create(zrExe_TokenAt(&run->tokens, position), /*shallow*/ true);
        }
    }
    run->context->ExecuteMethodLineSub(state, &tokens);
    if (!run->context->lastError && tokens.count == 1) {
        result->Dispose();
        result->Create(zrExe_TokenAt(&tokens, 1), /*shallow*/ false);
    }
    zrExe_DisposeTokens(&tokens);
}

static const int kMaxHandedOver = 16;  // then the line stays plain

bool zrExe_RunPrepared(ZR_ExecutionContext* context, ZR_Executer_Stack* frame, ZR_ExecutionMethod* method,
                       ZR_MethodLine* row, long* state, ZR_Executer_Token* result) {
    if (!row->prepared) row->prepared = zrExe_PrepareLine(method, row);
    ZR_PreparedLine* line = row->prepared;
    if (!line || line->plain) return false;
    QuickValue temps[ZR_MAX_TEMPS];
    Run run = {context, frame, method->tokens, line, temps};
    ZR_MethodLine lineRow = *row;
    ZR_PreparedStep* steps = reinterpret_cast<ZR_PreparedStep*>(line->steps.data);
    int done = 0;
    Outcome outcome = kDone;
    while (outcome == kDone && done < line->steps.count) {
        Clear(&temps[done]);
        outcome = RunStep(&run, steps + done, &temps[done]);
        if (outcome == kDone) ++done;
        else DisposeValue(&temps[done]);  // what a bracket had got to
    }
    if (outcome == kDone) outcome = RunStatement(&run, state, result);
    if (outcome == kHandOver) {
        if (++line->handedOver >= kMaxHandedOver) line->plain = true;
        HandOver(&run, &lineRow, done, state, result);
    }
    for (int i = 0; i < done; ++i) DisposeValue(&temps[i]);
    return true;
}
