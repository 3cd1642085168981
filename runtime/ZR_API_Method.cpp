#include "runtime/ZR_API_Method.h"

#include <cstdlib>

#include "language/ZR_API_Executer.h"
#include "language/ZR_API_Token.h"
#include "language/ZR_API_TokenBlob.h"
#include "language/ZR_API_TokenList.h"
#include "runtime/ZR_API_MethodIndex_Private.h"
#include "runtime/ZR_API_VariableIndex.h"

static ZR_Executer_Token* TokenAt(ZR_Handle* tokens, long position) {
    return reinterpret_cast<ZR_Executer_Token*>(tokens->data) + (position - 1);
}

// Life -------------------------------------------------------------------------------------------------------------

void ZR_ExecutionMethod::Create(ZR_Text* newName, ZR_Handle* blob, long newReference) {
    name.Create(newName);
    tokens.Create(sizeof(ZR_Executer_Token), 0);
    if (blob) zrExe_BlobToTokens(blob, &tokens);
    zrExe_DeleteTokensByType(&tokens, ZREXE_TOKEN_OTHER);
    reference = newReference;
    index = nullptr;
}

void ZR_ExecutionMethod::Create(ZR_ExecutionMethod* source, long newReference) {
    name.Create(&source->name);
    zrExe_CreateCopyTokens(&tokens, &source->tokens);
    reference = newReference;
    index = nullptr;
}

void ZR_ExecutionMethod::Dispose() {
    name.Dispose();
    zrExe_DisposeMethodIndex(this);
    zrExe_DisposeTokens(&tokens);
}

void ZR_Executer_Stack::Create(long newReference) {
    methodReference = newReference;
    inCaseCondition = false;
    localVariables.Create(sizeof(ZR_Executer_Variable), 0);
    activeForLines.Create(sizeof(long), 0);
    currentLine = 0;
    index = nullptr;
    parked = 0;
}

// All variables of a list, the parked ones as well.
static void DisposeLocals(ZR_Handle* variables, long parked) {
    if (variables->count < parked) variables->count = parked;
    zrExe_DisposeVariables(variables);
}

void ZR_Executer_Stack::Dispose() {
    methodReference = 0;
    inCaseCondition = false;
    DisposeLocals(&localVariables, parked);
    parked = 0;
    activeForLines.Dispose();
    currentLine = 0;
    if (index) index->Dispose();
    free(index);
    index = nullptr;
}

ZR_Executer_Variable* ZR_Executer_Stack::GetLocalVariable(ZR_Text* name) {
    if (!index && localVariables.count > 8) {
        index = static_cast<ZR_VariableIndex*>(malloc(sizeof(ZR_VariableIndex)));
        if (index) index->Create();
    }
    if (!index) return zrExe_FindVariableByName(&localVariables, name);
    return reinterpret_cast<ZR_Executer_Variable*>(localVariables.GetMemPtr(index->Find(&localVariables, name)));
}

// Variables that calls leave to the next one -----------------------------------------------------------------------

static const long kMaxSpares = 64, kMaxParked = 64, kKeptTextUnits = 128;

void ZR_Executer_Stack::CreateFor(ZR_ExecutionMethod* method) {
    Create(method->reference);
    ZR_Handle* spares = method->index ? &method->index->spares : nullptr;
    if (!spares || !spares->count) {
        localVariables.growStep = 8;
        return;
    }
    ZR_SpareLocals* spare = reinterpret_cast<ZR_SpareLocals*>(spares->GetMemPtr(spares->count));
    localVariables = spare->variables;
    parked = spare->parked;
    --spares->count;
}

// Named and empty, as a record that waits for reuse.
static void Park(ZR_Executer_Variable* variable) {
    if (variable->elements.data || variable->objectRef || variable->collectionRef) variable->SetEmpty();
    if (variable->elements.data) variable->elements.Dispose();
    if (variable->blob.data) variable->blob.Dispose();
    if (variable->kind == ZR_EXE_Picture) {
        variable->picture.Dispose();
        variable->picture.Create();
    }
    if (variable->text.cString || variable->text.unistringValid || variable->text.capacity > kKeptTextUnits) {
        variable->text.Dispose();
        variable->text.Create();
    }
}

void ZR_Executer_Stack::DisposeFor(ZR_ExecutionMethod* method) {
    ZR_Handle* spares = method && method->index ? &method->index->spares : nullptr;
    long used = localVariables.count > parked ? localVariables.count : parked;
    ZR_SpareLocals* spare = nullptr;
    if (spares && spares->count < kMaxSpares && used && used <= kMaxParked)
        spare = reinterpret_cast<ZR_SpareLocals*>(spares->AppendGetPtr());
    if (spare) {
        for (long i = 1; i <= localVariables.count; ++i)
            Park(reinterpret_cast<ZR_Executer_Variable*>(localVariables.GetMemPtr(i)));
        localVariables.count = 0;
        *spare = {localVariables, used};
        localVariables.Create(sizeof(ZR_Executer_Variable), 0);
        parked = 0;
    }
    Dispose();
}

ZR_Executer_Variable* ZR_Executer_Stack::AppendLocal(const unsigned short* name, long length,
                                                     ZR_EXE_VariableKind kind) {
    long position = localVariables.count + 1;
    if (position <= parked) {
        ++localVariables.count;
        ZR_Executer_Variable* left = reinterpret_cast<ZR_Executer_Variable*>(localVariables.GetMemPtr(position));
        left->kind = kind;
        left->value.integer = 0;
        left->text.count = 0;
        if (left->name.Equal(name, length, /*case sensitive*/ true)) return left;
        left->name.Resize(0);
        left->name.AddUniBuffer(name, length);
        return left;
    }
    ZR_Executer_Variable* fresh = reinterpret_cast<ZR_Executer_Variable*>(localVariables.AppendGetPtr());
    if (!fresh) return nullptr;
    fresh->Create(kind);
    fresh->name.AddUniBuffer(name, length);
    return fresh;
}

// Index ------------------------------------------------------------------------------------------------------------

static bool Opens(long keyword) {
    return keyword == ZR_CMD_IF || keyword == ZR_CMD_FOR || keyword == ZR_CMD_REPEAT || keyword == ZR_CMD_WHILE ||
           keyword == ZR_CMD_CASE_OF;
}

static bool Closes(long keyword) {
    return keyword == ZR_CMD_END_IF || keyword == ZR_CMD_END_FOR || keyword == ZR_CMD_UNTIL ||
           keyword == ZR_CMD_END_WHILE || keyword == ZR_CMD_END_CASE;
}

static int KeywordOf(ZR_Handle* tokens, const ZR_MethodLine& line) {
    if (line.last < line.first) return 0;
    ZR_Executer_Token* first = TokenAt(tokens, line.first);
    long id = first->kind == ZREXE_TOKEN_COMMAND ? first->value.integer : 0;
    return id >= ZR_CMD_IF && id <= ZR_CMD_BRANCH ? static_cast<int>(id) : 0;
}

static void FindLines(ZR_Handle* tokens, ZR_Handle* lines) {
    lines->growStep = 64;
    for (long i = 1; i <= tokens->count; ++i) {
        if (TokenAt(tokens, i)->kind == ZREXE_TOKEN_LINE) {
            ZR_MethodLine* line = reinterpret_cast<ZR_MethodLine*>(lines->AppendGetPtr());
            if (!line) return;
            *line = {static_cast<int>(i + 1), static_cast<int>(i), 0, 0, 0, {0, 0}, {0, 0}, nullptr};
        } else if (lines->count) {
            reinterpret_cast<ZR_MethodLine*>(lines->GetMemPtr(lines->count))->last = static_cast<int>(i);
        }
    }
}

static void FindDepths(ZR_Handle* tokens, ZR_Handle* lines) {
    ZR_Handle open;  // of char: 1 If, 2 Case of
    open.Create(1, 0);
    open.growStep = 64;
    int depth = 0;
    for (long i = 1; i <= lines->count; ++i) {
        ZR_MethodLine* line = reinterpret_cast<ZR_MethodLine*>(lines->GetMemPtr(i));
        line->keyword = KeywordOf(tokens, *line);
        if (Opens(line->keyword)) ++depth;
        line->ebene = depth;
        if (Closes(line->keyword)) --depth;
        if (line->keyword == ZR_CMD_IF) open.AddByte(1);
        if (line->keyword == ZR_CMD_CASE_OF) open.AddByte(2);
        if ((line->keyword == ZR_CMD_END_IF || line->keyword == ZR_CMD_END_CASE) && open.count) --open.count;
        line->context = open.count ? *open.GetMemPtr(open.count) : 0;
    }
    open.Dispose();
}

void zrExe_DisposeMethodIndex(ZR_ExecutionMethod* method) {
    if (!method->index) return;
    for (long i = 1; i <= method->index->lines.count; ++i)
        zrExe_DisposePreparedLine(reinterpret_cast<ZR_MethodLine*>(method->index->lines.GetMemPtr(i))->prepared);
    method->index->lines.Dispose();
    for (long i = 1; i <= method->index->spares.count; ++i) {
        ZR_SpareLocals* spare = reinterpret_cast<ZR_SpareLocals*>(method->index->spares.GetMemPtr(i));
        DisposeLocals(&spare->variables, spare->parked);
    }
    method->index->spares.Dispose();
    free(method->index);
    method->index = nullptr;
}

ZR_MethodIndex* zrExe_GetMethodIndex(ZR_ExecutionMethod* method) {
    ZR_MethodIndex* index = method->index;
    if (index && index->tokenData == method->tokens.data && index->tokenCount == method->tokens.count) return index;
    zrExe_DisposeMethodIndex(method);
    index = static_cast<ZR_MethodIndex*>(malloc(sizeof(ZR_MethodIndex)));
    if (!index) return nullptr;
    index->lines.Create(sizeof(ZR_MethodLine), 0);
    index->spares.Create(sizeof(ZR_SpareLocals), 0);
    index->tokenData = method->tokens.data;
    index->tokenCount = method->tokens.count;
    FindLines(&method->tokens, &index->lines);
    FindDepths(&method->tokens, &index->lines);
    method->index = index;
    return index;
}

ZR_MethodLine* zrExe_GetMethodLine(ZR_ExecutionMethod* method, long line) {
    ZR_MethodIndex* index = zrExe_GetMethodIndex(method);
    return index ? reinterpret_cast<ZR_MethodLine*>(index->lines.GetMemPtr(line)) : nullptr;
}

// Lines and jumps --------------------------------------------------------------------------------------------------

bool zrExe_FindLineToExecute(ZR_ExecutionMethod* method, long line, long* first, long* last) {
    ZR_MethodLine* found = zrExe_GetMethodLine(method, line);
    if (!found) return false;
    *first = found->first;
    *last = found->last;
    return true;
}

// A line past the end has the depth that the end of the method has; so has every line that does not exist.
static int DepthBehind(ZR_MethodIndex* index) {
    if (!index->lines.count) return 0;
    ZR_MethodLine* last = reinterpret_cast<ZR_MethodLine*>(index->lines.GetMemPtr(index->lines.count));
    return last->ebene - (Closes(last->keyword) ? 1 : 0);
}

long zrExe_GetCurrentEbene(ZR_ExecutionMethod* method, long line) {
    ZR_MethodIndex* index = zrExe_GetMethodIndex(method);
    if (!index || line < 1) return 0;
    ZR_MethodLine* found = reinterpret_cast<ZR_MethodLine*>(index->lines.GetMemPtr(line));
    return found ? found->ebene : DepthBehind(index);
}

long zrExe_GetLineContext(ZR_ExecutionMethod* method, long line) {
    ZR_MethodIndex* index = zrExe_GetMethodIndex(method);
    if (!index || line < 1) return 0;
    if (line > index->lines.count) line = index->lines.count;
    ZR_MethodLine* found = reinterpret_cast<ZR_MethodLine*>(index->lines.GetMemPtr(line));
    return found ? found->context : 0;
}

// Where one line answers a jump: its own number, the line behind it, 0 = the search is over, -1 = it goes on.
static long Answer(int keyword, long line, long target) {
    switch (target) {
        case ZR_CMD_ELSE:
            if (keyword == ZR_CMD_ELSE || keyword == ZR_CMD_END_IF) return line + 1;
            return keyword == ZR_CMD_END_CASE ? 0 : -1;
        case ZR_CMD_BRANCH:
            if (keyword == ZR_CMD_BRANCH) return line;
            return keyword == ZR_CMD_END_CASE ? 0 : -1;
        case ZR_CMD_FOR: return keyword == ZR_CMD_FOR ? line : -1;
        default: return keyword == target ? line + 1 : -1;
    }
}

static long SearchForward(ZR_MethodIndex* index, long line, long target, long depth) {
    ZR_MethodLine* lines = reinterpret_cast<ZR_MethodLine*>(index->lines.data);
    for (long i = line < 1 ? 1 : line; i <= index->lines.count; ++i) {
        if (!lines[i - 1].keyword || lines[i - 1].ebene != depth) continue;
        long answer = Answer(lines[i - 1].keyword, i, target);
        if (answer >= 0) return answer;
    }
    return 0;
}

static long SearchBackward(ZR_MethodIndex* index, long line, long target, long depth) {
    ZR_MethodLine* lines = reinterpret_cast<ZR_MethodLine*>(index->lines.data);
    for (long i = line < index->lines.count ? line : index->lines.count; i >= 1; --i) {
        if (lines[i - 1].keyword != target || lines[i - 1].ebene != depth) continue;
        return target == ZR_CMD_FOR || target == ZR_CMD_BRANCH ? i : i + 1;
    }
    return 0;
}

typedef long (*Search)(ZR_MethodIndex* index, long line, long target, long depth);

// Every line remembers the last jump of each direction, so that a loop searches once.
static long Jump(ZR_ExecutionMethod* method, long line, long target, Search search, int slot) {
    ZR_MethodIndex* index = zrExe_GetMethodIndex(method);
    if (!index) return 0;
    ZR_MethodLine* from = reinterpret_cast<ZR_MethodLine*>(index->lines.GetMemPtr(line));
    if (from && from->jumpTarget[slot] == target) return from->jumpLine[slot];
    long found = search(index, line, target, zrExe_GetCurrentEbene(method, line));
    if (from) {
        from->jumpTarget[slot] = static_cast<int>(target);
        from->jumpLine[slot] = static_cast<int>(found);
    }
    return found;
}

long zrExe_ExecuteJump(ZR_ExecutionMethod* method, long line, long target) {
    return Jump(method, line, target, SearchForward, 0);
}

long zrExe_ExecuteJumpBack(ZR_ExecutionMethod* method, long line, long target) {
    return Jump(method, line, target, SearchBackward, 1);
}
