// Tokens of a line to its prepared form. Whatever is not one of the common shapes is left to the plain form.

#include <cstdlib>

#include "language/ZR_API_Executer.h"
#include "runtime/ZR_API_Prepared_Private.h"

// An entry of the line while its brackets are taken out: a token, or the value of a bracket.
struct Entry {
    ZR_Executer_Token* token;  // null = a bracket's value
    int position;              // of the token
    int temp;
};

struct Preparing {
    ZR_PreparedLine* line;
    ZR_Executer_Token* tokens;  // the method's, position 1 first
    ZR_Handle entries;
    bool failed;
};

static Entry* At(Preparing* work, long index) { return reinterpret_cast<Entry*>(work->entries.GetMemPtr(index)); }

static long KindAt(Preparing* work, long index) {  // of a token; 0 = a value or nothing
    Entry* entry = At(work, index);
    return entry && entry->token ? static_cast<long>(entry->token->kind) : 0;
}

static bool IsVariableAt(Preparing* work, long index) { return zrExe_IsVariableToken(KindAt(work, index)); }

template <typename Record>
static Record* Append(Preparing* work, ZR_Handle* list) {
    Record* record = reinterpret_cast<Record*>(list->AppendGetPtr());
    if (record) memset(static_cast<void*>(record), 0, sizeof *record);
    else work->failed = true;
    return record;
}

static long FindEntry(Preparing* work, long kind, long from, long to) {
    for (long i = from; i <= to; ++i)
        if (KindAt(work, i) == kind) return i;
    return 0;
}

// Blocks -----------------------------------------------------------------------------------------------------------

static int PrepareBlock(Preparing* work, long first, long last);

// The index behind a variable, found as the plain form finds it: the first brackets in the rest of the run.
static void PrepareIndex(Preparing* work, long at, long last, long openKind, long closeKind, long* open, long* close) {
    *open = FindEntry(work, openKind, at + 1, last);
    *close = *open ? FindEntry(work, closeKind, at + 1, last) : 0;
    if (*close <= *open) *open = *close = 0;
}

struct IndexPlace {
    int block;
    int next;  // entry behind the closing bracket, later the item
};

static IndexPlace PrepareIndexBlock(Preparing* work, long at, long last, long openKind, long closeKind) {
    long open, close;
    PrepareIndex(work, at, last, openKind, closeKind, &open, &close);
    if (!open) return {-1, 0};
    return {PrepareBlock(work, open + 1, close - 1), static_cast<int>(close + 1)};
}

static bool SetItem(Entry* entry, ZR_PreparedItem* item) {
    ZR_Executer_Token* token = entry->token;
    item->textBlock = item->elementBlock = -1;
    if (!token) {
        item->kind = kItemTemp;
        item->integer = entry->temp;
        return true;
    }
    switch (token->kind) {
        case ZREXE_TOKEN_NUMBER:
        case ZREXE_TOKEN_LONGINT:
            item->kind = kItemNumber;
            item->number = token->GetNumber();
            return true;
        case ZREXE_TOKEN_STRING:
            item->kind = kItemText;
            item->text = token->GetText();
            return true;
        case ZREXE_TOKEN_DATE:
            item->kind = kItemDate;
            item->integer = token->value.integer;
            return true;
        case ZREXE_TOKEN_TIME:
            item->kind = kItemTime;
            item->integer = static_cast<int>(token->value.integer);
            return true;
        case ZREXE_TOKEN_FORMULA:
            item->kind = kItemFormula;
            item->integer = token->GetFormula();
            return true;
        case ZREXE_TOKEN_LOGIC:
            item->kind = kItemLogic;
            item->integer = token->GetOperation();
            return true;
        case ZREXE_TOKEN_VARIABLE:
        case ZREXE_TOKEN_LOCAL:
        case ZREXE_TOKEN_INTERPROCESS:
            item->kind = kItemVariable;
            item->token = token;
            return true;
        case ZREXE_TOKEN_COMMAND:
            item->command = static_cast<short>(token->value.integer);
            if (token->value.integer == 214 || token->value.integer == 215) {
                item->kind = kItemTruth;
                item->integer = token->value.integer == 214;
                return true;
            }
            item->kind = kItemKeyword;
            return token->value.integer >= ZR_CMD_ELSE && token->value.integer <= ZR_CMD_BRANCH &&
                   token->value.integer != ZR_CMD_UNTIL && token->value.integer != ZR_CMD_WHILE;
        default: return false;
    }
}

static bool IsSkipped(long kind) {  // by the fold, with no effect
    return kind == ZREXE_TOKEN_COMMENT || kind == ZREXE_TOKEN_ELEMENT_OPEN || kind == ZREXE_TOKEN_ELEMENT_CLOSE ||
           kind == ZREXE_TOKEN_INDEX_OPEN || kind == ZREXE_TOKEN_INDEX_CLOSE;
}

// The items of one run, each with the indexes behind it. Index blocks come first in the list, so that the items of the
// run stand together. Entries that the fold skips get an item that does nothing, so that items and entries keep step.
static void PrepareRun(Preparing* work, long first, long last, int* firstItem, int* count) {
    *count = last < first ? 0 : static_cast<int>(last - first + 1);
    ZR_Handle run;
    run.Create(sizeof(ZR_PreparedItem), 0);
    for (long i = first; i <= last && !work->failed; ++i) {
        ZR_PreparedItem item = {};
        if (At(work, i)->token && IsSkipped(KindAt(work, i))) {
            item.kind = kItemKeyword;
            item.textBlock = item.elementBlock = -1;
        } else if (!SetItem(At(work, i), &item)) {
            work->failed = true;
        } else if (item.kind == kItemVariable) {
            IndexPlace text = PrepareIndexBlock(work, i, last, ZREXE_TOKEN_INDEX_OPEN, ZREXE_TOKEN_INDEX_CLOSE);
            IndexPlace element = PrepareIndexBlock(work, i, last, ZREXE_TOKEN_ELEMENT_OPEN, ZREXE_TOKEN_ELEMENT_CLOSE);
            item.textBlock = text.block;
            item.textNext = static_cast<int>(text.next - first);
            item.elementBlock = element.block;
            item.elementNext = static_cast<int>(element.next - first);
        }
        ZR_PreparedItem* slot = reinterpret_cast<ZR_PreparedItem*>(run.AppendGetPtr());
        if (slot) *slot = item;
        else work->failed = true;
        if (work->line->items.count > 2000) work->failed = true;  // nested indexes multiply
    }
    *firstItem = static_cast<int>(work->line->items.count);
    for (long i = 1; i <= run.count && !work->failed; ++i) {
        ZR_PreparedItem* slot = Append<ZR_PreparedItem>(work, &work->line->items);
        if (slot) *slot = *reinterpret_cast<ZR_PreparedItem*>(run.GetMemPtr(i));
    }
    run.Dispose();
}

// Number of the block, -1 if it has to stay plain.
static int PrepareBlock(Preparing* work, long first, long last) {
    if (last < first || work->failed) {
        work->failed = true;
        return -1;
    }
    ZR_PreparedBlock block = {};
    long split = FindEntry(work, ZREXE_TOKEN_COMPARISON, first, last);
    if (split) {
        if (split == first || split == last || FindEntry(work, ZREXE_TOKEN_COMPARISON, split + 1, last)) {
            work->failed = true;
            return -1;
        }
        block.comparison = static_cast<int>(At(work, split)->token->GetComparison());
        PrepareRun(work, split + 1, last, &block.rightFirst, &block.rightCount);
        last = split - 1;
    }
    PrepareRun(work, first, last, &block.first, &block.count);
    ZR_PreparedBlock* slot = Append<ZR_PreparedBlock>(work, &work->line->blocksList);
    if (!slot) return -1;
    *slot = block;
    return static_cast<int>(work->line->blocksList.count - 1);
}

// Brackets ---------------------------------------------------------------------------------------------------------

static void ReplaceByTemp(Preparing* work, long first, long last) {
    Entry* entry = At(work, first);
    entry->token = nullptr;
    entry->temp = work->line->tempCount++;
    for (long i = last; i > first; --i) work->entries.DeleteElement(i);
}

static void AddParameter(Preparing* work, int block, int firstToken, int lastToken) {
    ZR_PreparedParameter* parameter = Append<ZR_PreparedParameter>(work, &work->line->parameters);
    if (parameter) *parameter = {block, firstToken, lastToken};
}

// The parameters between two brackets; declarations and unevaluated ones are kept as tokens.
static int PrepareParameters(Preparing* work, long open, long close, long id, bool raw) {
    int count = 0;
    for (long from = open + 1; from < close && !work->failed; ++count) {
        long separator = FindEntry(work, ZREXE_TOKEN_SEMICOLON, from, close - 1);
        long to = separator ? separator - 1 : close - 1;
        if (to < from) work->failed = true;  // an empty parameter
        bool evaluated = !raw && (id == 0 || zrExe_GetDoExecuteParameters(id, count + 1, nullptr));
        if (work->failed) return count;
        if (evaluated) {
            AddParameter(work, PrepareBlock(work, from, to), 0, 0);
        } else {
            for (long i = from; i <= to; ++i)
                if (!At(work, i)->token) work->failed = true;
            if (raw && (to != from || !IsVariableAt(work, from))) work->failed = true;
            if (!work->failed) AddParameter(work, -1, At(work, from)->position, At(work, to)->position);
        }
        if (!separator) return count + 1;
        if (separator == close - 1) return count + 1;
        from = separator + 1;
    }
    return count;
}

static void PrepareCall(Preparing* work, long open, long close) {
    Entry* call = At(work, open - 1);
    long id = call->token->kind == ZREXE_TOKEN_COMMAND ? call->token->value.integer : 0;
    bool declaration = zrExe_DeclaredKind(id) != ZR_EXE_Undefined;
    bool command = call->token->kind == ZREXE_TOKEN_COMMAND;
    if (id == 277 || id == 341 || id >= 30000 || (command && id < 1)) {
        work->failed = true;
        return;
    }
    ZR_PreparedStep step = {};
    step.kind = declaration ? kStepDeclaration : id ? kStepCommand : kStepMethod;
    step.id = static_cast<short>(id);
    step.firstToken = call->position;
    step.lastToken = At(work, close)->position;
    step.name = id ? nullptr : call->token->GetText();
    step.methodReference = 0;
    step.block = -1;
    step.firstParameter = static_cast<int>(work->line->parameters.count);
    step.parameterCount = PrepareParameters(work, open, close, id, declaration);
    ZR_PreparedStep* slot = Append<ZR_PreparedStep>(work, &work->line->steps);
    if (slot) *slot = step;
    if (!work->failed) ReplaceByTemp(work, open - 1, close);
}

static void PrepareGroup(Preparing* work, long open, long close) {
    ZR_PreparedStep step = {};
    step.kind = kStepGroup;
    step.firstToken = At(work, open)->position;
    step.lastToken = At(work, close)->position;
    step.block = PrepareBlock(work, open + 1, close - 1);
    ZR_PreparedStep* slot = Append<ZR_PreparedStep>(work, &work->line->steps);
    if (slot) *slot = step;
    if (!work->failed) ReplaceByTemp(work, open, close);
}

static bool FindBracket(Preparing* work, long* open, long* close) {
    *open = 0;
    for (long i = 1; i <= work->entries.count; ++i) {
        long kind = KindAt(work, i);
        if (kind == ZREXE_TOKEN_OPEN) *open = i;
        if (kind == ZREXE_TOKEN_CLOSE) {
            *close = i;
            return *open > 0;
        }
    }
    return false;
}

static bool OnlyCommentsBehind(Preparing* work, long index) {
    for (long i = index + 1; i <= work->entries.count; ++i)
        if (KindAt(work, i) != ZREXE_TOKEN_COMMENT) return false;
    return true;
}

static bool IsStatementKeyword(long id) {
    return id == ZR_CMD_IF || id == ZR_CMD_WHILE || id == ZR_CMD_UNTIL || id == ZR_CMD_FOR;
}

static void PrepareLoop(Preparing* work, long open, long close) {
    ZR_PreparedLine* line = work->line;
    line->statement = kRunFor;
    long first = FindEntry(work, ZREXE_TOKEN_SEMICOLON, open + 1, close - 1);
    if (first != open + 2 || !IsVariableAt(work, open + 1)) {
        work->failed = true;
        return;
    }
    line->target = At(work, open + 1)->token;
    int count = 0;
    for (long from = first + 1; from < close && !work->failed && count < 3; ++count) {
        long separator = FindEntry(work, ZREXE_TOKEN_SEMICOLON, from, close - 1);
        line->blocks[count] = PrepareBlock(work, from, separator ? separator - 1 : close - 1);
        from = separator ? separator + 1 : close;
        if (separator && count == 2) work->failed = true;
    }
    if (count < 2) work->failed = true;
}

// The statement's own bracket: nothing but a comment may follow it.
static void PrepareKeyword(Preparing* work, long open, long close) {
    if (!OnlyCommentsBehind(work, close)) {
        work->failed = true;
    } else if (work->line->keyword == static_cast<short>(ZR_CMD_FOR)) {
        PrepareLoop(work, open, close);
    } else {
        work->line->statement = kRunCondition;
        work->line->blocks[0] = PrepareBlock(work, open + 1, close - 1);
    }
}

// True = the statement has been found on the way.
static bool PrepareBrackets(Preparing* work, long keyword) {
    long open, close;
    while (!work->failed && FindBracket(work, &open, &close)) {
        long before = KindAt(work, open - 1);
        if (close == open + 1) {
            work->failed = true;
        } else if (open == 2 && keyword) {
            PrepareKeyword(work, open, close);
            return true;
        } else if (before == ZREXE_TOKEN_MEMBER_CALL) {
            work->failed = true;
        } else if (before == ZREXE_TOKEN_METHOD ||
                   (before == ZREXE_TOKEN_COMMAND && At(work, open - 1)->token->value.integer != ZR_CMD_BRANCH)) {
            PrepareCall(work, open, close);
        } else {
            PrepareGroup(work, open, close);
        }
        if (work->line->tempCount > ZR_MAX_TEMPS) work->failed = true;
    }
    if (FindEntry(work, ZREXE_TOKEN_OPEN, 1, work->entries.count) ||
        FindEntry(work, ZREXE_TOKEN_CLOSE, 1, work->entries.count))
        work->failed = true;
    return false;
}

// Statements -------------------------------------------------------------------------------------------------------

static bool SameVariable(ZR_Executer_Token* a, ZR_Executer_Token* b) {
    return a->kind == b->kind && a->GetText()->Equal(b->GetText(), /*case sensitive*/ false);
}

// $s:=$s+a+b where none of a and b is $s again and nothing is indexed.
static bool Appends(ZR_PreparedLine* line) {
    ZR_PreparedBlock* block = reinterpret_cast<ZR_PreparedBlock*>(line->blocksList.GetMemPtr(line->blocks[0] + 1));
    if (line->indexBlock >= 0 || block->comparison || block->count < 3 || block->count % 2 == 0) return false;
    ZR_PreparedItem* items = reinterpret_cast<ZR_PreparedItem*>(line->items.data) + block->first;
    for (int i = 0; i < block->count; ++i) {
        if (i % 2) {
            if (items[i].kind != kItemFormula || items[i].integer != '+') return false;
        } else if (items[i].kind == kItemVariable) {
            if (items[i].textBlock >= 0 || items[i].elementBlock >= 0) return false;
            if (SameVariable(items[i].token, line->target) != (i == 0)) return false;
        } else if (i == 0 || (items[i].kind != kItemText && items[i].kind != kItemTemp)) {
            return false;
        }
    }
    return true;
}

static void PrepareStatement(Preparing* work) {
    ZR_PreparedLine* line = work->line;
    long count = work->entries.count;
    while (count && KindAt(work, count) == ZREXE_TOKEN_COMMENT) --count;
    long assign = FindEntry(work, ZREXE_TOKEN_ASSIGN, 1, count);
    if (!assign) {
        line->statement = kRunExpression;
        if (count) line->blocks[0] = PrepareBlock(work, 1, count);
        return;
    }
    line->statement = kRunAssignment;
    bool element = assign > 4 && KindAt(work, 2) == ZREXE_TOKEN_ELEMENT_OPEN &&
                   FindEntry(work, ZREXE_TOKEN_ELEMENT_CLOSE, 1, assign - 1) == assign - 1;
    if (!IsVariableAt(work, 1) || (assign != 2 && !element) || FindEntry(work, ZREXE_TOKEN_ASSIGN, assign + 1, count)) {
        work->failed = true;
        return;
    }
    line->target = At(work, 1)->token;
    if (element) line->indexBlock = PrepareBlock(work, 3, assign - 2);
    line->blocks[0] = PrepareBlock(work, assign + 1, count);
    if (!work->failed) line->appends = Appends(line);
}

static bool CollectEntries(Preparing* work, const ZR_MethodLine* line) {
    work->entries.growStep = line->last - line->first + 1;
    for (int i = line->first; i <= line->last; ++i) {
        Entry* entry = Append<Entry>(work, &work->entries);
        if (!entry) return false;
        *entry = {work->tokens + (i - 1), i, 0};
        if (entry->token->kind == ZREXE_TOKEN_ARROW) return false;  // pointers are made and followed first
    }
    return line->last - line->first < 400;  // longer lines stay plain
}

ZR_PreparedLine* zrExe_PrepareLine(ZR_ExecutionMethod* method, const ZR_MethodLine* row) {
    ZR_PreparedLine* line = static_cast<ZR_PreparedLine*>(calloc(1, sizeof(ZR_PreparedLine)));
    if (!line) return nullptr;
    line->items.Create(sizeof(ZR_PreparedItem), 0);
    line->blocksList.Create(sizeof(ZR_PreparedBlock), 0);
    line->steps.Create(sizeof(ZR_PreparedStep), 0);
    line->parameters.Create(sizeof(ZR_PreparedParameter), 0);
    line->indexBlock = -1;
    for (int& block : line->blocks) block = -1;
    Preparing work = {line, reinterpret_cast<ZR_Executer_Token*>(method->tokens.data), {}, false};
    work.entries.Create(sizeof(Entry), 0);
    work.failed = !CollectEntries(&work, row);
    long keyword = IsStatementKeyword(row->keyword) ? row->keyword : 0;
    line->keyword = static_cast<short>(keyword);
    if (!work.failed && !PrepareBrackets(&work, keyword) && !work.failed) {
        if (keyword) work.failed = true;
        else PrepareStatement(&work);
    }
    work.entries.Dispose();
    line->plain = work.failed;
    return line;
}

void zrExe_DisposePreparedLine(ZR_PreparedLine* line) {
    if (!line) return;
    line->items.Dispose();
    line->blocksList.Dispose();
    line->steps.Dispose();
    line->parameters.Dispose();
    free(line);
}
