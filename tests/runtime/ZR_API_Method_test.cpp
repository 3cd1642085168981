#include <random>

#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

// The line functions as they are described: a walk over the tokens from the first line, each time. -------------------

long KindAt(ZR_ExecutionMethod* method, long position) {
    auto* token = reinterpret_cast<ZR_Executer_Token*>(method->tokens.GetMemPtr(position));
    return token ? token->kind : 0;
}

bool PlainFindLine(ZR_ExecutionMethod* method, long line, long* first, long* last) {
    long lines = 0, count = method->tokens.count;
    for (long i = 1; i <= count; i++) {
        if (KindAt(method, i) != ZREXE_TOKEN_LINE || ++lines != line) continue;
        *first = i + 1;
        for (*last = i; *last < count && KindAt(method, *last + 1) != ZREXE_TOKEN_LINE;) ++*last;
        return true;
    }
    return false;
}

long Keyword(ZR_ExecutionMethod* method, long line) {  // 0 = the line begins with none
    long first, last;
    if (!PlainFindLine(method, line, &first, &last) || last < first) return 0;
    auto* token = reinterpret_cast<ZR_Executer_Token*>(method->tokens.GetMemPtr(first));
    if (token->kind != ZREXE_TOKEN_COMMAND || token->value.integer < 30001 || token->value.integer > 30012) return 0;
    return token->value.integer;
}
bool Opens(long keyword) {
    return keyword == 30001 || keyword == 30004 || keyword == 30006 || keyword == 30008 || keyword == 30010;
}
bool Closes(long keyword) {
    return keyword == 30003 || keyword == 30005 || keyword == 30007 || keyword == 30009 || keyword == 30011;
}

long Lines(ZR_ExecutionMethod* method) { return zrExe_CountTokenType(&method->tokens, ZREXE_TOKEN_LINE); }

long PlainEbene(ZR_ExecutionMethod* method, long line) {
    long depth = 0;
    for (long i = 1; i <= line; i++) {
        long keyword = Keyword(method, i);
        if (Opens(keyword)) depth++;
        if (i == line) return depth;
        if (Closes(keyword)) depth--;
    }
    return depth;
}

long PlainJump(ZR_ExecutionMethod* method, long line, long target) {
    long wanted = PlainEbene(method, line), depth = 0, lines = Lines(method);
    for (long i = 1; i <= lines; i++) {
        long keyword = Keyword(method, i);
        if (Opens(keyword)) depth++;
        if (i >= line && depth == wanted) {
            if (target == 30002) {
                if (keyword == 30002 || keyword == 30003) return i + 1;
                if (keyword == 30011) return 0;
            } else if (target == 30012) {
                if (keyword == 30012) return i;
                if (keyword == 30011) return 0;
            } else if (keyword == target) {
                return target == 30004 ? i : i + 1;
            }
        }
        if (Closes(keyword)) depth--;
    }
    return 0;
}

long PlainJumpBack(ZR_ExecutionMethod* method, long line, long target) {
    long wanted = PlainEbene(method, line), depth = 0, hit = 0;
    for (long i = 1; i <= line && i <= Lines(method); i++) {
        long keyword = Keyword(method, i);
        if (Opens(keyword)) depth++;
        if (depth == wanted && keyword == target) hit = target == 30004 || target == 30012 ? i : i + 1;
        if (Closes(keyword)) depth--;
    }
    return hit;
}

long PlainContext(ZR_ExecutionMethod* method, long line) {
    std::vector<long> open;
    for (long i = 1; i <= line && i <= Lines(method); i++) {
        long keyword = Keyword(method, i);
        if (keyword == 30001) open.push_back(1);
        if (keyword == 30010) open.push_back(2);
        if ((keyword == 30003 || keyword == 30011) && !open.empty()) open.pop_back();
    }
    return open.empty() ? 0 : open.back();
}

class Method {
  public:
    Method() { method_.Create(static_cast<ZR_Text*>(nullptr), nullptr, 1); }
    explicit Method(const char* source) {
        Text text(source);
        ZR_Handle blob;
        blob.Create(1, 0);
        Executer()->Tokenize(text, &blob, nullptr, nullptr, nullptr);
        method_.Create(static_cast<ZR_Text*>(nullptr), &blob, 1);
        blob.Dispose();
    }
    ~Method() { method_.Dispose(); }
    Method(const Method&) = delete;
    Method& operator=(const Method&) = delete;
    operator ZR_ExecutionMethod*() { return &method_; }
    ZR_ExecutionMethod* operator->() { return &method_; }

  private:
    ZR_ExecutionMethod method_;
};

void Compare(ZR_ExecutionMethod* method, const std::string& label) {
    long lines = Lines(method);
    for (long line = 1; line <= lines; line++) {
        ASSERT_EQ(zrExe_GetCurrentEbene(method, line), PlainEbene(method, line)) << label << " line " << line;
        ASSERT_EQ(zrExe_GetLineContext(method, line), PlainContext(method, line)) << label << " line " << line;
        for (long target = 30001; target <= 30012; target++) {
            ASSERT_EQ(zrExe_ExecuteJump(method, line, target), PlainJump(method, line, target))
                << label << " line " << line << " to " << target;
            ASSERT_EQ(zrExe_ExecuteJumpBack(method, line, target), PlainJumpBack(method, line, target))
                << label << " line " << line << " to " << target;
        }
    }
    for (long line = -1; line <= lines + 2; line++) {
        long first = 0, last = 0, plainFirst = 0, plainLast = 0;
        bool found = zrExe_FindLineToExecute(method, line, &first, &last);
        ASSERT_EQ(found, line >= 1 && line <= lines) << label << " line " << line;
        if (!found) continue;
        PlainFindLine(method, line, &plainFirst, &plainLast);
        ASSERT_EQ(first, plainFirst) << label << " line " << line;
        ASSERT_EQ(last, plainLast) << label << " line " << line;
    }
}

}  // namespace

TEST(Method, Lines_FirstAndLastPosition) {
    Method method("$a:=1\n\n// note\nALERT(\"x\")");
    static const struct { long line, first, last; } rows[] = {{1, 2, 4}, {2, 6, 5}, {3, 7, 7}, {4, 9, 12}};
    for (const auto& row : rows) {
        long first = 0, last = 0;
        EXPECT_TRUE(zrExe_FindLineToExecute(method, row.line, &first, &last)) << row.line;
        EXPECT_EQ(first, row.first) << row.line;
        EXPECT_EQ(last, row.last) << row.line;  // a line without tokens ends before it begins
    }
    long first, last;
    for (long outside : {0L, -1L, 5L, 1L << 40})
        EXPECT_FALSE(zrExe_FindLineToExecute(method, outside, &first, &last)) << outside;
    Method empty;
    EXPECT_FALSE(zrExe_FindLineToExecute(empty, 1, &first, &last));
}

TEST(Method, Ebene_OfEveryKindOfLine) {
    Method method(
        "$a:=1\nIf (True)\n$b:=1\nElse\nFor ($i;1;2)\n$c:=1\nEnd For\nEnd If\n$d:=1\nCase of\n: (True)\n$e:=1\nEnd "
        "case\nRepeat\nUntil (True)\nWhile (False)\nEnd while");
    static const long depths[] = {0, 1, 1, 1, 2, 2, 2, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1};
    for (size_t i = 0; i < std::size(depths); i++)
        EXPECT_EQ(zrExe_GetCurrentEbene(method, static_cast<long>(i) + 1), depths[i]) << i + 1;
}

TEST(Method, Context_InnermostOfIfAndCase) {
    Method method(
        "$a:=1\nIf (True)\nCase of\n: (True)\nFor ($i;1;2)\nEnd For\nEnd case\nElse\nEnd If\n$b:=1\nEnd If\nCase of");
    static const long contexts[] = {0, 1, 2, 2, 2, 2, 1, 1, 0, 0, 0, 2};
    for (size_t i = 0; i < std::size(contexts); i++)
        EXPECT_EQ(zrExe_GetLineContext(method, static_cast<long>(i) + 1), contexts[i]) << i + 1;
}

TEST(Method, Jump_ToEveryTarget) {
    Method method(
        "If (True)\n"          // 1
        "If (True)\nEnd If\n"  // 2, 3
        "Else\n"               // 4
        "End If\n"             // 5
        "For ($i;1;2)\n"       // 6
        "End For\n"            // 7
        "Case of\n"            // 8
        ": (True)\n"           // 9
        ": (True)\n"           // 10
        "Else\n"               // 11
        "End case\n"           // 12
        "While (True)\n"       // 13
        "End while");          // 14
    static const struct {
        long line, target, forward, back;
    } rows[] = {
        {1, 30002, 5, 0},   {1, 30003, 6, 0},   {2, 30002, 4, 0},   {4, 30003, 6, 0},
        {6, 30005, 8, 0},   {7, 30004, 0, 6},   {8, 30012, 9, 0},   {10, 30012, 10, 10},
        {11, 30012, 0, 10}, {9, 30002, 12, 5},  // the last Else of that depth, whatever block it stands in
        {9, 30011, 13, 0},  {14, 30008, 0, 14}, {13, 30009, 15, 0}, {8, 30010, 9, 9},
        {1, 30001, 2, 2},   {12, 30002, 0, 12},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(zrExe_ExecuteJump(method, row.line, row.target), row.forward) << row.line << " to " << row.target;
        EXPECT_EQ(zrExe_ExecuteJumpBack(method, row.line, row.target), row.back)
            << row.line << " back to " << row.target;
    }
    Compare(method, "written by hand");
}

TEST(Method, RandomKeywordLines_AgreeWithAPlainWalk) {
    static const char* kinds[] = {
        "If (True)", "Else",    "End If",   "For ($i;1;2)", "End For", "Repeat", "Until (True)", "While (True)",
        "End while", "Case of", "End case", ": (True)",     "$a:=1",   "",       "// End If",    "ALERT(\"If\")"};
    std::mt19937 random(20);
    for (int round = 0; round < 250; round++) {
        std::string source;
        int lines = 1 + static_cast<int>(random() % 22);
        // One round in three is well formed, so that deep blocks occur.
        std::vector<int> open;
        for (int i = 0; i < lines; i++) {
            int kind = static_cast<int>(random() % std::size(kinds));
            if (round % 3 == 0) {
                static const int closing[] = {2, 4, 6, 8, 10}, opening[] = {0, 3, 5, 7, 9};
                if (random() % 3 == 0) {
                    int block = static_cast<int>(random() % 5);
                    open.push_back(block);
                    kind = opening[block];
                } else if (random() % 3 == 0 && !open.empty()) {
                    kind = closing[open.back()];
                    open.pop_back();
                } else if (kind < 11 && kind != 1) {
                    kind = 12;
                }
            }
            source += kinds[kind];
            source += '\n';
        }
        Method method(source.c_str());
        Compare(method, source);
        if (HasFatalFailure()) return;
    }
}

TEST(Method, ChangedTokens_AreSeen) {
    Method method("If (True)\nEnd If");
    EXPECT_EQ(zrExe_GetCurrentEbene(method, 2), 1);
    zrExe_AddToken(&method->tokens, ZREXE_TOKEN_LINE);
    zrExe_AddToken(&method->tokens, ZREXE_TOKEN_COMMAND, 30001L);
    EXPECT_EQ(zrExe_GetCurrentEbene(method, 3), 1);
    Compare(method, "appended");
    zrExe_DeleteTokens(&method->tokens, method->tokens.count - 1, method->tokens.count);
    long first, last;
    EXPECT_FALSE(zrExe_FindLineToExecute(method, 3, &first, &last));
}

TEST(Method, TokensBeforeTheFirstLine_BelongToNone) {
    Method method;
    zrExe_AddToken(&method->tokens, ZREXE_TOKEN_NUMBER, 5.0);
    zrExe_AddToken(&method->tokens, ZREXE_TOKEN_LINE);
    zrExe_AddToken(&method->tokens, ZREXE_TOKEN_NUMBER, 6.0);
    long first, last;
    ASSERT_TRUE(zrExe_FindLineToExecute(method, 1, &first, &last));
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 3);
    EXPECT_FALSE(zrExe_FindLineToExecute(method, 2, &first, &last));
}

TEST(Method, Create_LeavesOutRawTokensAndCopiesDeep) {
    Text name("Name"), source("  $a := 1  // x");
    ZR_Handle blob;
    blob.Create(1, 0);
    Executer()->Tokenize(source, &blob, nullptr, nullptr, nullptr);
    ZR_ExecutionMethod method, copy, empty;
    method.Create(name, &blob, 42);
    blob.Dispose();
    EXPECT_EQ(zrExe_CountTokenType(&method.tokens, ZREXE_TOKEN_OTHER), 0);
    EXPECT_EQ(method.tokens.count, 5);  // line, local, assignment, number, comment
    EXPECT_EQ(method.reference, 42);
    EXPECT_EQ(Narrow(&method.name), "Name");
    copy.Create(&method, 43);
    method.Dispose();
    EXPECT_EQ(copy.reference, 43);
    EXPECT_EQ(Narrow(&copy.name), "Name");
    EXPECT_EQ(Narrow(reinterpret_cast<ZR_Executer_Token*>(copy.tokens.GetMemPtr(2))->GetText()), "a");
    copy.Dispose();
    empty.Create(static_cast<ZR_Text*>(nullptr), nullptr, 1);
    EXPECT_EQ(empty.tokens.count, 0);
    EXPECT_EQ(empty.name.count, 0);
    empty.Dispose();
}

TEST(Stack, Create_EmptyAndDispose_ClearsItsLists) {
    ZR_Executer_Stack frame;
    frame.Create(9);
    EXPECT_EQ(frame.methodReference, 9);
    EXPECT_FALSE(frame.inCaseCondition);
    EXPECT_EQ(frame.currentLine, 0);
    EXPECT_EQ(frame.localVariables.count, 0);
    EXPECT_EQ(frame.activeForLines.count, 0);
    Text name("a"), other("A"), missing("b");
    EXPECT_EQ(frame.GetLocalVariable(name), nullptr);
    zrExe_FindVariableByNameAndCreate(&frame.localVariables, name, ZR_EXE_Text);
    EXPECT_TRUE(frame.GetLocalVariable(other));
    EXPECT_EQ(frame.GetLocalVariable(missing), nullptr);
    frame.currentLine = 4;
    frame.inCaseCondition = true;
    frame.Dispose();
    EXPECT_EQ(frame.methodReference, 0);
    EXPECT_FALSE(frame.inCaseCondition);
    EXPECT_EQ(frame.currentLine, 0);
}
