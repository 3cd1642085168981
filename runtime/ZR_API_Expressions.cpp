// Expressions: a run of tokens without brackets is folded from left to right into one value. There is no precedence;
// a block holds at most one comparison, which splits it in two.

#include <algorithm>
#include <climits>
#include <cmath>

#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Guards.h"
#include "runtime/ZR_API_Runtime_Private.h"

// Blocks -----------------------------------------------------------------------------------------------------------

// One side of a comparison.
static void EvaluateSide(ZR_ExecutionContext* context, ZR_Handle* tokens, long first, long last,
                         const ZR_ErrorWords& empty, ZR_Executer_Token* value) {
    ZR_Handle side;
    zrExe_CreateCopyTokens(&side, tokens, first, last, /*shallow*/ true);
    if (side.count == 0) context->Fail(empty);
    else context->ExecuteTokenizedBlockSub(value, &side, 0);
    zrExe_DisposeTokens(&side);
}

void ZR_ExecutionContext::ExecuteTokenizedBlock(ZR_Executer_Token* value, ZR_Handle* tokens, long commandID) {
    long split = zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_COMPARISON);
    if (!split) {
        ExecuteTokenizedBlockSub(value, tokens, commandID);
        return;
    }
    if (zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_COMPARISON, split + 1)) {
        Fail(kErrorComparisonCount);
        return;
    }
    ZR_Executer_Token left, right;
    zrExe_CreateEmptyToken(&left);
    zrExe_CreateEmptyToken(&right);
    EvaluateSide(this, tokens, 1, split - 1, kErrorEmptyLeft, &left);
    if (!lastError) {
        EvaluateSide(this, tokens, split + 1, tokens->count, kErrorEmptyRight, &right);
        // Required: the kinds are compared even if the right side failed, so its words are followed by those of -25.
        if (left.kind != right.kind) Fail(kErrorComparisonType);
        else
            value->SetBoolean(ExecuteTokenizedComparison(&left, &right, zrExe_TokenAt(tokens, split)->GetComparison()));
    }
    left.Dispose();
    right.Dispose();
}

template <typename Value>
static bool Compare(Value left, Value right, long comparison) {
    switch (comparison) {
        case ZREXE_COMPARISON_LESS_EQUAL: return left <= right;
        case ZREXE_COMPARISON_GREATER_EQUAL: return left >= right;
        case ZREXE_COMPARISON_EQUAL: return left == right;
        case ZREXE_COMPARISON_UNEQUAL: return left != right;
        case ZREXE_COMPARISON_LESS: return left < right;
        case ZREXE_COMPARISON_GREATER: return left > right;
        default: return false;
    }
}

static bool CompareDates(ZR_Executer_Token* left, ZR_Executer_Token* right, long comparison) {
    ZR_Date a, b;
    left->GetDate(&a);
    right->GetDate(&b);
    switch (comparison) {
        case ZREXE_COMPARISON_LESS_EQUAL: return ZR_DateIsLessEqual(&a, &b);
        case ZREXE_COMPARISON_GREATER_EQUAL: return ZR_DateIsGreaterEqual(&a, &b);
        case ZREXE_COMPARISON_LESS: return ZR_DateIsLess(&a, &b);
        case ZREXE_COMPARISON_GREATER: return ZR_DateIsGreater(&a, &b);
        default:
            return (a.day == b.day && a.month == b.month && a.year == b.year) == (comparison == ZREXE_COMPARISON_EQUAL);
    }
}

bool ZR_ExecutionContext::ExecuteTokenizedComparison(ZR_Executer_Token* left, ZR_Executer_Token* right,
                                                     long comparison) {
    bool known = comparison >= ZREXE_COMPARISON_LESS_EQUAL && comparison <= ZREXE_COMPARISON_GREATER;
    bool equality = comparison == ZREXE_COMPARISON_EQUAL || comparison == ZREXE_COMPARISON_UNEQUAL;
    switch (known ? left->kind : ZREXE_TOKEN_OTHER) {
        case ZREXE_TOKEN_NUMBER:
        case ZREXE_TOKEN_LONGINT: return Compare(left->GetNumber(), right->GetNumber(), comparison);
        case ZREXE_TOKEN_TIME: return Compare(left->value.integer, right->value.integer, comparison);
        case ZREXE_TOKEN_DATE: return CompareDates(left, right, comparison);
        case ZREXE_TOKEN_STRING:
            if (!equality) break;
            return left->GetText()->EqualWithWildChar(right->GetText()) == (comparison == ZREXE_COMPARISON_EQUAL);
        case ZREXE_TOKEN_BOOLEAN:
            if (!equality) break;
            return (left->GetBoolean() == right->GetBoolean()) == (comparison == ZREXE_COMPARISON_EQUAL);
        default: break;
    }
    Fail(kErrorComparisonImpossible);
    return false;
}

// Variables in a block ---------------------------------------------------------------------------------------------

static constexpr struct {
    short command;
    ZR_EXE_VariableKind kind;
} kDeclarations[] = {
    {282, ZR_EXE_Longint}, {283, ZR_EXE_Longint}, {284, ZR_EXE_Text},        {285, ZR_EXE_Real}, {286, ZR_EXE_Picture},
    {293, ZR_EXE_Text},    {301, ZR_EXE_Pointer}, {305, ZR_EXE_Boolean},     {306, ZR_EXE_Time}, {307, ZR_EXE_Date},
    {604, ZR_EXE_Blob},    {1216, ZR_EXE_Object}, {1488, ZR_EXE_Collection},
};

ZR_EXE_VariableKind zrExe_DeclaredKind(long commandID) {
    for (const auto& row : kDeclarations)
        if (row.command == commandID) return row.kind;
    return ZR_EXE_Undefined;
}

// Where a token of a kind stands next. A pass over a block asks with rising positions, so the answer holds until the
// pass is behind it, and a block of any length is searched once.
struct NextOfKind {
    long kind, found;  // found: 0 = not asked yet

    long From(ZR_Handle* tokens, long position) {
        if (found >= position) return found;
        long at = zrExe_GetTokenPosByType(tokens, kind, position);
        return found = at ? at : LONG_MAX;  // LONG_MAX = none
    }
};

// The brackets of an index: the first pair behind a variable, anywhere in the rest of the block.
struct IndexBrackets {
    NextOfKind opens, closes;
    const ZR_ErrorWords* noNumber;
    long open, close;

    bool Find(ZR_Handle* tokens, long from) {
        open = opens.From(tokens, from);
        close = open == LONG_MAX ? LONG_MAX : closes.From(tokens, from);
        return close != LONG_MAX && close > open;
    }
};

// What a pass over a block carries along.
struct Pass {
    unsigned short formula = '+';
    long logic = 0;
    IndexBrackets text = {{ZREXE_TOKEN_INDEX_OPEN, 0}, {ZREXE_TOKEN_INDEX_CLOSE, 0}, &kErrorStringIndex, 0, 0};
    IndexBrackets element = {{ZREXE_TOKEN_ELEMENT_OPEN, 0}, {ZREXE_TOKEN_ELEMENT_CLOSE, 0}, &kErrorArrayIndex, 0, 0};
    NextOfKind parametersBegin = {ZREXE_TOKEN_PARAMETERS_BEGIN, 0}, parametersEnd = {ZREXE_TOKEN_PARAMETERS_END, 0};
};

// The number between the brackets. False = no number, and the error is set.
static bool EvaluateIndex(ZR_ExecutionContext* context, ZR_Handle* tokens, const IndexBrackets& brackets, long* index) {
    ZR_Executer_Token value;
    zrExe_CreateEmptyToken(&value);
    zrExe_EvaluateSlice(context, tokens, brackets.open + 1, brackets.close - 1, &value);
    bool number = value.kind == ZREXE_TOKEN_NUMBER;
    if (number) *index = zrExe_Truncate(value.GetNumber());
    else if (!zrExe_IsGuardError(context->lastError)) context->Fail(*brackets.noNumber);
    value.Dispose();
    return number && !zrExe_IsGuardError(context->lastError);
}

static void FoldPlainVariable(ZR_ExecutionContext* context, ZR_Executer_Variable* variable, ZR_Executer_Token* value,
                              unsigned short formula, long logic) {
    ZR_Date date;
    switch (variable->kind) {
        case ZR_EXE_Real:
        case ZR_EXE_Integer:
        case ZR_EXE_Longint: context->ExecuteTokenizedBlockNumber(variable->GetNumber(), value, formula); break;
        case ZR_EXE_Date:
            variable->GetDate(&date);
            context->ExecuteTokenizedBlockDate(&date, value, formula);
            break;
        case ZR_EXE_Time: context->ExecuteTokenizedBlockTime(variable->GetTime(), value, formula); break;
        case ZR_EXE_Text: context->ExecuteTokenizedBlockText(&variable->text, value, formula); break;
        case ZR_EXE_Boolean: context->ExecuteTokenizedBlockBoolean(variable->GetBoolean(), value, logic); break;
        case ZR_EXE_Blob: context->ExecuteTokenizedBlockBlob(&variable->blob, value); break;
        case ZR_EXE_Picture: context->ExecuteTokenizedBlockPicture(&variable->picture, value); break;
        case ZR_EXE_Object: context->ExecuteTokenizedBlockObject(variable->objectRef, value); break;
        case ZR_EXE_Collection: context->ExecuteTokenizedBlockCollection(variable->collectionRef, value); break;
        default: break;  // a pointer, Null or array by itself adds nothing
    }
}

// The name in the variable's own spelling, which the code need not keep to.
static ZR_Text* NameOf(ZR_Executer_Variable* variable, ZR_Executer_Token* token) {
    return variable ? &variable->name : token->GetText();
}

// s[[i]]; the brackets may stand anywhere behind the variable. The position behind what was used.
static long FoldTextVariable(ZR_ExecutionContext* context, ZR_Handle* tokens, long at, ZR_Executer_Variable* variable,
                             ZR_Executer_Token* value, Pass* pass) {
    IndexBrackets& brackets = pass->text;
    if (!brackets.Find(tokens, at + 1)) {
        context->ExecuteTokenizedBlockText(&variable->text, value, pass->formula);
        return at + 1;
    }
    ZR_Executer_Token* token = zrExe_TokenAt(tokens, at);
    long index;
    if (!EvaluateIndex(context, tokens, brackets, &index)) return brackets.close + 1;
    variable = context->GetVariableFromToken(token, /*create*/ false);  // the index may have called a method
    if (!variable || index < 1 || index > variable->text.count) {
        context->Fail(kErrorStringBounds, NameOf(variable, token), index, variable ? variable->text.count : 0);
        return brackets.close + 1;
    }
    ZR_Text unit;
    unit.Create(static_cast<ZR_Text*>(nullptr));
    variable->text.Substring(&unit, index - 1, index - 1);
    context->ExecuteTokenizedBlockText(&unit, value, pass->formula);
    unit.Dispose();
    return brackets.close + 1;
}

static bool FoldsAsElement(int kind) {
    return kind == ZR_EXE_Real || kind == ZR_EXE_Integer || kind == ZR_EXE_Longint || kind == ZR_EXE_Date ||
           kind == ZR_EXE_Text || kind == ZR_EXE_Boolean;
}

// a{i}
static long FoldArrayVariable(ZR_ExecutionContext* context, ZR_Handle* tokens, long at, ZR_Executer_Token* value,
                              Pass* pass) {
    IndexBrackets& brackets = pass->element;
    if (!brackets.Find(tokens, at + 1)) return at + 1;
    ZR_Executer_Token* token = zrExe_TokenAt(tokens, at);
    long index;
    if (!EvaluateIndex(context, tokens, brackets, &index)) return brackets.close + 1;
    ZR_Executer_Variable* array = context->GetVariableFromToken(token, /*create*/ false);
    ZR_Executer_Variable* element = array ? array->GetVariablePtrFromArrayByIndex(index) : nullptr;
    if (!element) {
        context->Fail(kErrorArrayBounds, NameOf(array, token), index, array ? array->elements.count : 0);
    } else if (FoldsAsElement(element->kind)) {
        FoldPlainVariable(context, element, value, pass->formula, pass->logic);
    }
    return brackets.close + 1;
}

static long FoldVariable(ZR_ExecutionContext* context, ZR_Handle* tokens, long at, ZR_Executer_Token* value, Pass* pass,
                         long commandID) {
    ZR_Executer_Token* token = zrExe_TokenAt(tokens, at);
    ZR_EXE_VariableKind declared = commandID ? zrExe_DeclaredKind(commandID) : ZR_EXE_Undefined;
    if (declared != ZR_EXE_Undefined) {
        context->SetVariable(token, nullptr, declared, 0);
        return at + 1;
    }
    ZR_Executer_Variable* variable = context->GetVariableFromToken(token, /*create*/ false);
    if (!variable) {
        context->Fail(kErrorUnknownVariable, token->GetVariableName());
        return at + 1;
    }
    if (variable->kind == ZR_EXE_Text) return FoldTextVariable(context, tokens, at, variable, value, pass);
    if (variable->IsArray()) return FoldArrayVariable(context, tokens, at, value, pass);
    FoldPlainVariable(context, variable, value, pass->formula, pass->logic);
    return at + 1;
}

// Member functions -------------------------------------------------------------------------------------------------

void ZR_ExecutionContext::ExecuteTokenizedBlockMemberFunction(ZR_Text* name, ZR_Handle* parameters,
                                                              ZR_Executer_Token* value) {
    if (value->kind != ZREXE_TOKEN_OBJECT || !value->objectRef) {
        Fail(kErrorNoObjectRef);
    } else if (PA_GetVersion() < 0x1760) {
        Fail(kErrorMemberFunctions);
    } else {
        ExecuteGenericObjectMemberFunction(name, parameters, value);
    }
}

// Required: with empty brackets no parameter markers are there, and the function is not called.
static long FoldMemberFunction(ZR_ExecutionContext* context, ZR_Handle* tokens, long at, ZR_Executer_Token* value,
                               Pass* pass) {
    long open = pass->parametersBegin.From(tokens, at + 1);
    long close = open == LONG_MAX ? LONG_MAX : pass->parametersEnd.From(tokens, at + 1);
    if (close == LONG_MAX || close < open) return at + 1;
    ZR_Handle parameters;
    zrExe_CreateCopyTokens(&parameters, tokens, open + 1, close - 1, /*shallow*/ true);
    context->ExecuteTokenizedBlockMemberFunction(zrExe_TokenAt(tokens, at)->GetText(), &parameters, value);
    zrExe_DisposeTokens(&parameters);
    return close + 1;
}

void ZR_ExecutionContext::ExecuteTokenizedBlockMember(ZR_Text* name, ZR_Executer_Token* value) {
    if (value->kind != ZREXE_TOKEN_OBJECT || !value->objectRef) {
        Fail(kErrorNoObjectRef);
        return;
    }
    PA_Variable property = PA_GetObjectProperty(value->objectRef, name->GetUnistringPtr());
    value->Dispose();
    value->Create(&property);
    PA_ClearVariable(&property);
}

// The pass ---------------------------------------------------------------------------------------------------------

static void FoldFieldToken(ZR_ExecutionContext* context, ZR_Executer_Token* token, ZR_Executer_Token* value,
                           unsigned short formula, long logic) {
    long table = token->GetTable(), field = token->GetField();
    if (!ZR_IsFieldNoValid(table, field)) context->Fail(kErrorUnknownField, table, field);
    else context->ExecuteTokenizedBlockField(table, field, value, formula, logic);
}

void ZR_ExecutionContext::ExecuteTokenizedBlockSub(ZR_Executer_Token* value, ZR_Handle* tokens, long commandID) {
    Pass pass;
    const unsigned short& formula = pass.formula;
    const long& logic = pass.logic;
    ZR_Date date;
    for (long at = 1; at <= tokens->count && !lastError;) {
        ZR_Executer_Token* token = zrExe_TokenAt(tokens, at);
        long next = at + 1;
        switch (token->kind) {
            case ZREXE_TOKEN_NUMBER:
            case ZREXE_TOKEN_LONGINT: ExecuteTokenizedBlockNumber(token->GetNumber(), value, formula); break;
            case ZREXE_TOKEN_TIME:
                ExecuteTokenizedBlockTime(static_cast<int>(token->value.integer), value, formula);
                break;
            case ZREXE_TOKEN_FORMULA: pass.formula = token->GetFormula(); break;
            case ZREXE_TOKEN_LOGIC: pass.logic = token->GetOperation(); break;
            case ZREXE_TOKEN_VARIABLE:
            case ZREXE_TOKEN_LOCAL:
            case ZREXE_TOKEN_INTERPROCESS: next = FoldVariable(this, tokens, at, value, &pass, commandID); break;
            case ZREXE_TOKEN_POINTER: ExecuteTokenizedBlockPointer(token, value); break;
            case ZREXE_TOKEN_STRING: ExecuteTokenizedBlockText(token->GetText(), value, formula); break;
            case ZREXE_TOKEN_COMMAND: ExecuteTokenizedBlock4DCommand(token->value.integer, value, formula); break;
            case ZREXE_TOKEN_METHOD: ExecuteTokenizedBlock4DMethod(token->GetText(), nullptr, value); break;
            case ZREXE_TOKEN_DATE:
                token->GetDate(&date);
                ExecuteTokenizedBlockDate(&date, value, formula);
                break;
            case ZREXE_TOKEN_BOOLEAN: ExecuteTokenizedBlockBoolean(token->GetBoolean(), value, logic); break;
            case ZREXE_TOKEN_FIELD: FoldFieldToken(this, token, value, formula, logic); break;
            case ZREXE_TOKEN_PICTURE: ExecuteTokenizedBlockPicture(token->GetPicture(), value); break;
            case ZREXE_TOKEN_BLOB: ExecuteTokenizedBlockBlob(token->GetBlob(), value); break;
            case ZREXE_TOKEN_OBJECT: ExecuteTokenizedBlockObject(token->objectRef, value); break;
            case ZREXE_TOKEN_COLLECTION: ExecuteTokenizedBlockCollection(token->collectionRef, value); break;
            case ZREXE_TOKEN_MEMBER: ExecuteTokenizedBlockMember(token->GetText(), value); break;
            case ZREXE_TOKEN_MEMBER_CALL: next = FoldMemberFunction(this, tokens, at, value, &pass); break;
            default: break;  // tables, comments, stray brackets: no effect
        }
        at = next;
    }
}

// Folds ------------------------------------------------------------------------------------------------------------

static void BecomeNumber(ZR_Executer_Token* value, double number) {
    value->kind = ZREXE_TOKEN_NUMBER;
    value->value.real = number;
}

// Whole numbers modulo 2^64, as the power wraps; what is outside 64 bits or no number counts as 0.
static unsigned long ToUnsigned(double number) {
    if (number != number || number >= 18446744073709551616.0 || number <= -9223372036854775809.0) return 0;
    return number < 0 ? static_cast<unsigned long>(static_cast<long>(number)) : static_cast<unsigned long>(number);
}

double zrExe_FoldNumber(ZR_ExecutionContext* context, double left, double right, unsigned short formula) {
    switch (formula) {
        case '+': return left + right;
        case '-': return left - right;
        case '*': return left * right;
        case '/':
            if (right != 0) return left / right;
            context->Fail(kErrorDivisionByZero);
            return left;
        case '%': return fmod(left, right);
        case '\\': return static_cast<double>(zrExe_Truncate(right == 0 ? left * INFINITY : left / right));
        case '^': return static_cast<double>(zrExe_Power(ToUnsigned(left), ToUnsigned(right)));
        default: return left;
    }
}

// ZR_Potenz by squaring: the same wrapped product, and no exponent takes long.
unsigned long zrExe_Power(unsigned long base, unsigned long exponent) {
    unsigned long power = 1;
    for (; exponent; exponent >>= 1, base *= base)
        if (exponent & 1) power *= base;
    return power;
}

// n times a text; empty if n is 0 or below. False = it would not fit.
static bool RepeatText(ZR_Text* target, ZR_Text* unit, double times) {
    long n = zrExe_Truncate(times);
    if (n < 1 || !unit->count) return true;
    if (n > ZR_MAX_TEXT_UNITS / unit->count || !ZR_MemoryAllows(n * unit->count * 2)) return false;
    target->growStep = n * unit->count + 1;
    target->AddText(unit);
    const long whole = n * unit->count;
    while (target->count && target->count < whole)  // what is there is doubled
        target->AddUniBuffer(target->Units(), std::min(target->count, whole - target->count));
    return true;
}

static void BecomeRepeatedText(ZR_ExecutionContext* context, ZR_Executer_Token* value, ZR_Text* unit, double times) {
    ZR_Text repeated;
    repeated.Create(static_cast<ZR_Text*>(nullptr));
    bool fits = RepeatText(&repeated, unit, times);
    if (fits) {
        value->Dispose();
        value->Create(ZREXE_TOKEN_STRING, nullptr);
        value->text.Dispose();
        value->text = repeated;  // handed over
    } else {
        repeated.Dispose();
        context->Fail(kErrorMemory);
    }
}

void ZR_ExecutionContext::ExecuteTokenizedBlockNumber(double number, ZR_Executer_Token* value, unsigned short formula) {
    switch (value->kind) {
        case ZREXE_TOKEN_NUMBER:
        case ZREXE_TOKEN_LONGINT:
        case ZREXE_TOKEN_OTHER: BecomeNumber(value, zrExe_FoldNumber(this, value->GetNumber(), number, formula)); break;
        case ZREXE_TOKEN_STRING:
            if (formula == '*') BecomeRepeatedText(this, value, value->GetText(), number);
            else Fail(kErrorFormula);
            break;
        case ZREXE_TOKEN_DATE:
            if (formula == '+') value->Add(zrExe_Truncate(number));
            else if (formula == '-') value->Add(zrExe_Truncate(-number));
            else Fail(kErrorFormula);
            break;
        default: Fail(kErrorInvalidType); break;
    }
}

long zrExe_FoldTime(ZR_ExecutionContext* context, long left, long right, unsigned short formula) {
    unsigned long a = static_cast<unsigned long>(left), b = static_cast<unsigned long>(right);
    switch (formula) {
        case '+': return static_cast<long>(a + b);
        case '-': return static_cast<long>(a - b);
        case '*': return static_cast<long>(a * b);
        case '/':
            if (right == -1) return static_cast<long>(0 - a);
            if (right != 0) return left / right;
            context->Fail(kErrorDivisionByZero);
            return left;
        default: return left;
    }
}

void ZR_ExecutionContext::ExecuteTokenizedBlockTime(long seconds, ZR_Executer_Token* value, unsigned short formula) {
    if (value->kind != ZREXE_TOKEN_OTHER && value->kind != ZREXE_TOKEN_TIME) {
        Fail(kErrorInvalidType);
        return;
    }
    long before = value->kind == ZREXE_TOKEN_TIME ? value->value.integer : 0;
    value->value.integer = zrExe_FoldTime(this, before, seconds, formula);
    value->kind = ZREXE_TOKEN_TIME;
}

void ZR_ExecutionContext::ExecuteTokenizedBlockDate(ZR_Date* date, ZR_Executer_Token* value, unsigned short formula) {
    if (value->kind == ZREXE_TOKEN_DATE && formula == '+') {
        Fail(kErrorFormula);
    } else if (value->kind == ZREXE_TOKEN_DATE && formula == '-') {
        ZR_Date before;
        value->GetDate(&before);
        BecomeNumber(value, static_cast<double>(ZR_DateDifference(*date, before)));
    } else if (value->kind == ZREXE_TOKEN_DATE || value->kind == ZREXE_TOKEN_OTHER) {
        value->kind = ZREXE_TOKEN_DATE;
        value->value.integer = 0;
        value->SetDate(date);
    }
}

void ZR_ExecutionContext::ExecuteTokenizedBlockText(ZR_Text* text, ZR_Executer_Token* value, unsigned short formula) {
    switch (value->kind) {
        case ZREXE_TOKEN_NUMBER:
        case ZREXE_TOKEN_LONGINT:
            if (formula == '*') BecomeRepeatedText(this, value, text, value->GetNumber());
            else Fail(kErrorFormula);
            break;
        case ZREXE_TOKEN_STRING:
        case ZREXE_TOKEN_OTHER:
            value->kind = ZREXE_TOKEN_STRING;
            if (formula != '+') break;
            if (!zrExe_TextsFit(value->text.count, text->count)) Fail(kErrorMemory);
            else value->text.AddText(text);
            break;
        default: break;
    }
}

void ZR_ExecutionContext::ExecuteTokenizedBlockBoolean(bool flag, ZR_Executer_Token* value, long logic) {
    if (value->kind != ZREXE_TOKEN_OTHER && value->kind != ZREXE_TOKEN_BOOLEAN) return;
    bool before = value->GetBoolean();
    if (logic < 0 || logic > ZREXE_LOGIC_OR) return;
    bool after = logic == 0 ? flag : logic == ZREXE_LOGIC_AND ? before && flag : before || flag;
    value->kind = ZREXE_TOKEN_BOOLEAN;
    value->value.integer = after ? 1 : 0;
}

// Kinds without operators: the operand takes the place of an empty accumulator or one of its own kind.
static bool Takes(ZR_ExecutionContext* context, ZR_Executer_Token* value, ZREXE_TOKEN kind) {
    if (value->kind == ZREXE_TOKEN_OTHER || value->kind == kind) return true;
    context->Fail(kErrorInvalidType);
    return false;
}

static void Renew(ZR_Executer_Token* value, ZREXE_TOKEN kind) {
    value->Dispose();
    value->Create(kind, nullptr);
    value->value.integer = 0;
}

void ZR_ExecutionContext::ExecuteTokenizedBlockBlob(ZR_Handle* blob, ZR_Executer_Token* value) {
    if (!Takes(this, value, ZREXE_TOKEN_BLOB)) return;
    Renew(value, ZREXE_TOKEN_BLOB);
    value->blob.Dispose();
    value->blob.Create(blob);
}

void ZR_ExecutionContext::ExecuteTokenizedBlockPicture(ZR_Picture* picture, ZR_Executer_Token* value) {
    if (!Takes(this, value, ZREXE_TOKEN_PICTURE)) return;
    Renew(value, ZREXE_TOKEN_PICTURE);
    value->picture.Dispose();
    value->picture.Create(picture);
}

void ZR_ExecutionContext::ExecuteTokenizedBlockObject(void* object, ZR_Executer_Token* value) {
    if (!Takes(this, value, ZREXE_TOKEN_OBJECT)) return;
    if (object) PA_IncrementObjectRef(object);  // first: the accumulator may hold the last reference
    Renew(value, ZREXE_TOKEN_OBJECT);
    value->SetObjectRefNoIncrement(object);
}

void ZR_ExecutionContext::ExecuteTokenizedBlockCollection(void* collection, ZR_Executer_Token* value) {
    if (!Takes(this, value, ZREXE_TOKEN_COLLECTION)) return;
    if (collection) PA_IncrementCollectionRef(collection);
    Renew(value, ZREXE_TOKEN_COLLECTION);
    value->SetCollectionRefNoIncrement(collection);
}

void ZR_ExecutionContext::ExecuteTokenizedBlockPointer(ZR_Executer_Token* pointer, ZR_Executer_Token* value) {
    if (!Takes(this, value, ZREXE_TOKEN_POINTER)) return;
    value->SetPointerToVariable(pointer->GetText(), pointer->value.integer);
}

// Required: the operator is not used, so that a command without brackets takes no part in arithmetic.
void ZR_ExecutionContext::ExecuteTokenizedBlock4DCommand(long id, ZR_Executer_Token* value, unsigned short) {
    ZR_Handle none;
    zrExe_CreateTokens(&none);
    ZR_Executer_Token answer;
    zrExe_CreateEmptyToken(&answer);
    Execute4DCommand(&none, id, &answer);
    if (answer.kind != ZREXE_TOKEN_OTHER && (value->kind == ZREXE_TOKEN_OTHER || value->kind == answer.kind)) {
        value->Dispose();
        value->Create(&answer, /*shallow*/ false);
    }
    answer.Dispose();
    none.Dispose();
}
