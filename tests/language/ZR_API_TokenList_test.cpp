#include "language/ZR_API_TokenList.h"

#include "tests/language/LanguageTesting.h"

using TokenList = LanguageTest;

// Tokens by one letter: b blank (kind 999), v variable, s string, ( ) ;
static void Fill(ZR_Handle* tokens, const char* kinds) {
    for (; *kinds; kinds++) {
        switch (*kinds) {
            case 'b': zrExe_AddToken(tokens, ZREXE_TOKEN_OTHER, Text(u" ")); break;
            case 'v': zrExe_AddToken(tokens, ZREXE_TOKEN_VARIABLE, Text(u"a")); break;
            case 's': zrExe_AddToken(tokens, ZREXE_TOKEN_STRING, Text(u"x")); break;
            case '(': zrExe_AddToken(tokens, ZREXE_TOKEN_OPEN); break;
            case ')': zrExe_AddToken(tokens, ZREXE_TOKEN_CLOSE); break;
            default: zrExe_AddToken(tokens, ZREXE_TOKEN_SEMICOLON); break;
        }
    }
}

TEST_F(TokenList, AddToken_EveryForm) {
    Tokens tokens;
    ZR_Date date = {1, 2, 2003};
    zrExe_AddToken(tokens, ZREXE_TOKEN_LINE);
    zrExe_AddToken(tokens, ZREXE_TOKEN_LOCAL, Text(u"a"));
    zrExe_AddToken(tokens, ZREXE_TOKEN_POINTER, Text(u"p"), -3L);
    zrExe_AddToken(tokens, ZREXE_TOKEN_COMMAND, 30012L);
    zrExe_AddToken(tokens, ZREXE_TOKEN_NUMBER, 1.5);
    zrExe_AddToken(tokens, ZREXE_TOKEN_FORMULA, static_cast<unsigned short>('+'));
    zrExe_AddToken(tokens, ZREXE_TOKEN_DATE, &date);
    EXPECT_EQ(Describe(tokens), "L | $:a | k23 | #30012 | n:1.5 | f:+ | d:1/2/2003");
    EXPECT_EQ(tokens.At(3)->value.integer, -3);
    EXPECT_EQ(Units(tokens.At(3)->GetText()), u"p");
    EXPECT_EQ(tokens.At(1)->value.integer, 0);
}

TEST_F(TokenList, AddToken_TextOfATokenOfTheList) {  // the list moves while the text is needed
    Tokens tokens;
    zrExe_AddToken(tokens, ZREXE_TOKEN_LOCAL, Text(u"a name"));
    for (int i = 0; i < 100; i++) zrExe_AddToken(tokens, ZREXE_TOKEN_STRING, tokens.At(tokens->count)->GetText());
    EXPECT_EQ(Units(tokens.At(101)->GetText()), u"a name");
}

TEST_F(TokenList, CreateCopyTokens_LeavesOutKind999AndMissingPositions) {
    static const struct {
        long first, last;
        const char* out;
    } rows[] = {
        {1, 6, "v:a | ( | s:x | )"}, {2, 2, ""}, {2, 3, "("},  {3, 2, ""},    {0, 1, "v:a"},
        {5, 100, "s:x | )"},         {7, 9, ""}, {-5, -1, ""}, {1, 1, "v:a"}, {6, 6, ")"},
    };
    Tokens tokens;
    Fill(tokens, "vb(bs)");
    for (const auto& row : rows) {
        for (bool shallow : {false, true}) {
            ZR_Handle copy;
            memset(static_cast<void*>(&copy), 0xA5, sizeof copy);
            zrExe_CreateCopyTokens(&copy, tokens, row.first, row.last, shallow);
            EXPECT_EQ(Describe(&copy), row.out) << row.first << ".." << row.last;
            EXPECT_EQ(copy.elementSize, static_cast<long>(sizeof(ZR_Executer_Token)));
            for (long i = 1; i <= copy.count; i++) EXPECT_EQ(TokenAt(&copy, i)->parent != nullptr, shallow);
            zrExe_DisposeTokens(&copy);
        }
    }
}

TEST_F(TokenList, CreateCopyTokens_GrowStepIsTheSlice) {
    Tokens tokens;
    Fill(tokens, "vb(bs)");
    ZR_Handle copy;
    zrExe_CreateCopyTokens(&copy, tokens, 2, 5, /*shallow*/ true);
    EXPECT_EQ(copy.growStep, 4);
    zrExe_DisposeTokens(&copy);
}

TEST_F(TokenList, CreateCopyTokens_OnlyBlanks_IsEmpty) {
    Tokens tokens;
    Fill(tokens, "bbb");
    ZR_Handle copy;
    zrExe_CreateCopyTokens(&copy, tokens, 1, 3, /*shallow*/ false);
    EXPECT_EQ(copy.count, 0);
    zrExe_DisposeTokens(&copy);
}

TEST_F(TokenList, CreateCopyTokens_Whole_IsDeep) {
    ZR_Handle copy;
    {
        Tokens tokens;
        Fill(tokens, "vbs");
        zrExe_CreateCopyTokens(&copy, tokens);
    }
    EXPECT_EQ(Describe(&copy), "v:a | s:x");
    zrExe_DisposeTokens(&copy);
}

TEST_F(TokenList, DeleteTokens_RemovesAndDisposes) {
    static const struct {
        long first, last;
        const char* out;
    } rows[] = {
        {1, 1, "( | s:x | ) | ;"},
        {2, 3, "v:a | ) | ;"},
        {5, 5, "v:a | ( | s:x | )"},
        {4, 99, "v:a | ( | s:x"},
        {1, 5, ""},
        {3, 2, "v:a | ( | s:x | ) | ;"},
        {0, 2, "v:a | ( | s:x | ) | ;"},
        {6, 6, "v:a | ( | s:x | ) | ;"},
        {-3, 1, "v:a | ( | s:x | ) | ;"},
    };
    for (const auto& row : rows) {
        Tokens tokens;
        Fill(tokens, "v(s);");
        zrExe_DeleteTokens(tokens, row.first, row.last);
        EXPECT_EQ(Describe(tokens), row.out) << row.first << ".." << row.last;
    }
}

TEST_F(TokenList, DeleteTokenHandles_DoesNotDispose) {
    Tokens tokens;
    Fill(tokens, "v(s");
    ZR_Executer_Token kept = *tokens.At(1);
    zrExe_DeleteTokenHandles(tokens, 1, 2);
    EXPECT_EQ(Describe(tokens), "s:x");
    EXPECT_EQ(Units(&kept.text), u"a");
    kept.Dispose();
}

TEST_F(TokenList, DeleteTokensByType_RemovesAll) {
    static const struct {
        const char* in;
        const char* out;
    } rows[] = {{"bvb(bb", "v:a | ("}, {"", ""}, {"bbb", ""}, {"v(", "v:a | ("}};
    for (const auto& row : rows) {
        Tokens tokens;
        Fill(tokens, row.in);
        zrExe_DeleteTokensByType(tokens, ZREXE_TOKEN_OTHER);
        EXPECT_EQ(Describe(tokens), row.out) << row.in;
    }
}

TEST_F(TokenList, Searches_ByKind) {
    Tokens tokens;
    Fill(tokens, "v(v(s");
    EXPECT_EQ(zrExe_CountTokenType(tokens, ZREXE_TOKEN_OPEN), 2);
    EXPECT_EQ(zrExe_CountTokenType(tokens, ZREXE_TOKEN_CLOSE), 0);
    EXPECT_EQ(zrExe_GetTokenPtrByType(tokens, ZREXE_TOKEN_OPEN), tokens.At(2));
    EXPECT_EQ(zrExe_GetTokenPtrByType(tokens, ZREXE_TOKEN_CLOSE), nullptr);
    EXPECT_EQ(zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_STRING), 5);
    EXPECT_EQ(zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_CLOSE), 0);
    static const struct {
        long from, position;
    } rows[] = {{1, 2}, {2, 2}, {3, 4}, {4, 4}, {5, 0}, {6, 0}, {0, 2}, {-1, 2}};
    for (const auto& row : rows)
        EXPECT_EQ(zrExe_GetTokenPosByType(tokens, ZREXE_TOKEN_OPEN, row.from), row.position) << row.from;
}

TEST_F(TokenList, Searches_ByText_AreExactAndFollowTheChain) {
    Tokens tokens;
    zrExe_AddToken(tokens, ZREXE_TOKEN_LOCAL, Text(u"a"));
    zrExe_AddToken(tokens, ZREXE_TOKEN_LOCAL, Text(u"A"));
    zrExe_AddToken(tokens, ZREXE_TOKEN_LOCAL, Text(u"b"));
    ZR_Handle shallow;
    zrExe_CreateCopyTokens(&shallow, tokens, 1, 3, /*shallow*/ true);
    for (ZR_Handle* list : {static_cast<ZR_Handle*>(tokens), &shallow}) {
        EXPECT_EQ(zrExe_GetTokenPosByType(list, ZREXE_TOKEN_LOCAL, 1, Text(u"A")), 2);
        EXPECT_EQ(zrExe_GetTokenPosByType(list, ZREXE_TOKEN_LOCAL, 3, Text(u"A")), 0);
        EXPECT_EQ(zrExe_GetTokenPosByType(list, ZREXE_TOKEN_STRING, 1, Text(u"A")), 0);
    }
    zrExe_DisposeTokens(&shallow);
}
