#include "language/ZR_API_TokenBlob.h"

#include <random>

#include "tests/language/LanguageTesting.h"

using TokenBlob = LanguageTest;

static std::string Hex(const std::string& bytes) {
    std::string out;
    char buffer[4];
    for (unsigned char byte : bytes) {
        snprintf(buffer, sizeof buffer, "%02X", byte);
        out += buffer;
    }
    return out;
}

static std::string InnerHex(ZR_Handle* blob) {  // the one element of the container
    long elements = 0;
    ZR_Handle* expanded = blob->ExpandBLOBArray(&elements);
    if (!expanded) return "no container";
    std::string out =
        elements == 1 ? Hex({expanded[0].data ? expanded[0].data : "", (size_t)expanded[0].count}) : "many";
    for (long i = 0; i < elements; i++) expanded[i].Dispose();
    delete[] expanded;
    return out;
}

static void Wrap(ZR_Handle* blob, const std::string& inner) {
    Block bytes;
    bytes->AddCharBuffer(inner.data(), static_cast<long>(inner.size()));
    blob->Dispose();
    blob->CreateBLOBArray(bytes, 1);
}

static std::string FromHex(const std::string& hex) {
    std::string out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return out;
}

// The tokens that an inner layer reads as.
static std::string Read(const std::string& innerHex) {
    Block blob;
    Wrap(blob, FromHex(innerHex));
    Tokens tokens;
    zrExe_BlobToTokens(blob, tokens);
    return Describe(tokens);
}

static std::string Header(long count) {
    char buffer[32];
    snprintf(buffer, sizeof buffer, "00000001%08X", static_cast<unsigned>(count));
    return buffer;
}

TEST_F(TokenBlob, Example_Bytes) {
    TestExecuter executer;
    Block blob;
    executer.Tokenize(Text(u"$a:=1"), blob, nullptr, nullptr, nullptr);
    EXPECT_EQ(InnerHex(blob),
              "00000001"
              "00000004"
              "0001"
              "0003"
              "00000001"
              "0061"
              "0005"
              "0006"
              "000000000000F03F");
    std::string whole = Hex(blob.Bytes());
    EXPECT_EQ(whole.substr(0, 32),
              "73616B6F"
              "00000001"
              "0000001E"
              "0000001E");
}

TEST_F(TokenBlob, EmptyList) {
    Tokens tokens;
    Block blob;
    zrExe_TokensToBlob(tokens, blob);
    EXPECT_EQ(InnerHex(blob), "0000000100000000");
    zrExe_BlobToTokens(blob, tokens);
    EXPECT_EQ(tokens->count, 0);
}

TEST_F(TokenBlob, Payloads_ByKind) {
    static const struct {
        int kind;
        const char* payload;  // of a token with text "A" and value 0x0000000500030002
    } rows[] = {
        {1, ""},
        {5, ""},
        {7, ""},
        {8, ""},
        {13, ""},
        {14, ""},
        {15, ""},
        {23, ""},
        {24, ""},
        {25, ""},
        {26, ""},
        {32, ""},
        {33, ""},
        {2, "000000010041"},
        {3, "000000010041"},
        {4, "000000010041"},
        {10, "000000010041"},
        {11, "000000010041"},
        {28, "000000010041"},
        {36, "000000010041"},
        {37, "000000010041"},
        {999, "000000010041"},
        {6, "0200030005000000"},
        {9, "0002"},
        {12, "00030002"},
        {17, "00030002"},
        {21, "00030002"},
        {22, "00030002"},
        {29, "00030002"},
        {16, "000200030005"},
        {18, "0000"},
        {19, "0002"},
        {20, "0002"},
        {27, ""},
        {30, ""},
        {31, ""},
        {34, ""},
        {35, ""},
        {38, ""},
        {39, ""},
        {40, ""},
        {0, ""},
        {41, ""},
        {1000, ""},
    };
    for (const auto& row : rows) {
        Tokens tokens;
        zrExe_AddToken(tokens, static_cast<ZREXE_TOKEN>(row.kind), Text(u"A"), 0x0000000500030002L);
        Block blob;
        zrExe_TokensToBlob(tokens, blob);
        char kind[8];
        snprintf(kind, sizeof kind, "%04X", row.kind);
        EXPECT_EQ(InnerHex(blob), Header(1) + kind + row.payload) << row.kind;
    }
}

TEST_F(TokenBlob, Reading_ByKind) {
    static const struct {
        const char* record;
        const char* token;
    } rows[] = {
        {"0001", "L"},
        {"0005", ":="},
        {"0007", "("},
        {"0008", ")"},
        {"000D", "k13"},
        {"000E", "k14"},
        {"000F", ";"},
        {"0017", "k23"},
        {"0018", "{"},
        {"0019", "}"},
        {"001A", "->"},
        {"0020", "[["},
        {"0021", "]]"},
        {"00020000000200410062", "v:Ab"},
        {"0003000000010061", "$:a"},
        {"0004000000010061", "<>:a"},
        {"000A000000010061", "s:a"},
        {"000B000000010061", "c:a"},
        {"001C000000010061", "m:a"},
        {"0024000000010061", ".a"},
        {"0025000000010061", ".a()"},
        {"03E7000000010061", "o:a"},
        {"0006000000000000F83F", "n:1.5"},
        {"0009002B", "f:+"},
        {"000C0000753C", "#30012"},
        {"000CFFFFFFFF", "#-1"},
        {"001100000E10", "t:3600"},
        {"001500000003", "[3]"},
        {"001600030005", "[3]5"},
        {"001D000000FF", "x:255"},
        {"001DFFFFFFFF", "x:-1"},
        {"0010001F000C07CF", "d:31/12/1999"},
        {"0010FFFF00000001", "d:-1/0/1"},
        {"00120001", "b:1"},
        {"0012FFFF", "b:-1"},
        {"00130006", "cmp:6"},
        {"00140002", "log:2"},
        {"001B", ""},
        {"001E", ""},
        {"001F", ""},
        {"0022", ""},
        {"0023", ""},
        {"0026", ""},
        {"0027", ""},
        {"0028", ""},
        {"0000", ""},
        {"7FFF", ""},
        {"FFFF", ""},
        {"03E8", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(Read(Header(1) + row.record), row.token) << row.record;
}

TEST_F(TokenBlob, Boolean_IsWrittenAsGetBoolean) {
    Tokens tokens;
    for (long value : {0L, 1L, 2L}) zrExe_AddToken(tokens, ZREXE_TOKEN_BOOLEAN, value);
    Block blob;
    zrExe_TokensToBlob(tokens, blob);
    EXPECT_EQ(InnerHex(blob), Header(3) +
                                  "00120000"
                                  "00120001"
                                  "00120000");
}

TEST_F(TokenBlob, UnstoredKinds_ReadBackShorter) {
    Tokens tokens;
    for (int kind : {1, 27, 30, 31, 34, 35, 8}) zrExe_AddToken(tokens, static_cast<ZREXE_TOKEN>(kind));
    Block blob;
    zrExe_TokensToBlob(tokens, blob);
    EXPECT_EQ(InnerHex(blob).substr(0, 16), Header(7));
    zrExe_BlobToTokens(blob, tokens);
    EXPECT_EQ(Describe(tokens), "L | )");
}

TEST_F(TokenBlob, HexadecimalAbove7FFFFFFF_ReadsBackNegative) {  // Required
    TestExecuter executer;
    Block blob;
    executer.Tokenize(Text(u"0xFFFFFFFF"), blob, nullptr, nullptr, nullptr);
    Tokens tokens;
    zrExe_BlobToTokens(blob, tokens);
    EXPECT_EQ(Describe(tokens), "L | x:-1");
}

TEST_F(TokenBlob, Pointer_ReadsBackEmpty) {
    Tokens tokens;
    zrExe_AddToken(tokens, ZREXE_TOKEN_POINTER, Text(u"name"), -1L);
    Block blob;
    zrExe_TokensToBlob(tokens, blob);
    zrExe_BlobToTokens(blob, tokens);
    ASSERT_EQ(tokens->count, 1);
    EXPECT_EQ(tokens.At(1)->kind, ZREXE_TOKEN_POINTER);
    EXPECT_EQ(tokens.At(1)->GetText()->count, 0);
}

TEST_F(TokenBlob, ShallowCopies_StoreTheTextOfTheChainsEnd) {
    Tokens tokens;
    zrExe_AddToken(tokens, ZREXE_TOKEN_STRING, Text(u"shared"));
    ZR_Handle shallow;
    zrExe_CreateCopyTokens(&shallow, tokens, 1, 1, /*shallow*/ true);
    Block blob;
    zrExe_TokensToBlob(&shallow, blob);
    zrExe_DisposeTokens(&shallow);
    Tokens back;
    zrExe_BlobToTokens(blob, back);
    EXPECT_EQ(Describe(back), "s:shared");
    EXPECT_EQ(back.At(1)->parent, nullptr);
}

TEST_F(TokenBlob, Floats_AreUnrounded) {
    Tokens tokens;
    static const double numbers[] = {0.1, -0.0, 1e308, 4.9e-324, 3.141592653589793};
    for (double number : numbers) zrExe_AddToken(tokens, ZREXE_TOKEN_NUMBER, number);
    Block blob;
    zrExe_TokensToBlob(tokens, blob);
    zrExe_BlobToTokens(blob, tokens);
    for (long i = 0; i < 5; i++) EXPECT_EQ(memcmp(&tokens.At(i + 1)->value.real, &numbers[i], 8), 0) << i;
}

// Failures --------------------------------------------------------------------------------------------------------

TEST_F(TokenBlob, Unreadable_LeavesAnEmptyListNotTheOldOne) {
    static const struct {
        const char* name;
        const char* whole;
    } rows[] = {
        {"empty", ""},
        {"short", "73616B6F0000"},
        {"magic",
         "73616B70"
         "00000001"
         "00000008"
         "00000008"
         "0000000100000000"},
        {"sum",
         "73616B6F"
         "00000001"
         "00000009"
         "00000008"
         "0000000100000000"},
        {"no element",
         "73616B6F"
         "00000000"
         "00000000"},
        {"two elements",
         "73616B6F"
         "00000002"
         "00000010"
         "00000008"
         "0000000100000000"
         "00000008"
         "0000000100000000"},
        {"version 2",
         "73616B6F"
         "00000001"
         "0000000A"
         "0000000A"
         "00000002"
         "00000001"
         "0001"},
        {"no version",
         "73616B6F"
         "00000001"
         "00000000"
         "00000000"},
        {"wrong inner size",
         "73616B6F"
         "00000001"
         "0000000A"
         "0000000B"
         "00000001"
         "00000001"
         "0001"},
    };
    for (const auto& row : rows) {
        Block blob;
        std::string bytes = FromHex(row.whole);
        blob->AddCharBuffer(bytes.data(), static_cast<long>(bytes.size()));
        Tokens tokens;
        zrExe_AddToken(tokens, ZREXE_TOKEN_STRING, Text(u"old"));
        zrExe_BlobToTokens(blob, tokens);
        EXPECT_EQ(tokens->count, 0) << row.name;
        EXPECT_EQ(blob->count, static_cast<long>(bytes.size())) << row.name;
    }
}

TEST_F(TokenBlob, Truncated_KeepsWhatWasThere) {
    static const struct {
        const char* inner;
        const char* tokens;
    } rows[] = {
        {"00000001", ""},
        {"00000001000000", ""},
        {"00000001"
         "00000003"
         "0001",
         "L"},
        {"00000001"
         "00000003"
         "0001"
         "00",
         "L"},
        {"00000001"
         "00000002"
         "0001"
         "0003",
         "L | $:"},
        {"00000001"
         "00000002"
         "0001"
         "0006"
         "0005",
         "L | n:0"},  // what is left is read as a kind
        {"00000001"
         "00000003"
         "0001"
         "0006"
         "0005",
         "L | n:0 | :="},
        {"00000001"
         "00000001"
         "0010"
         "0001",
         "d:1/0/0"},
        {"00000001"
         "00000001"
         "0001"
         "0001",
         "L"},  // behind the count: not read
        {"00000001"
         "00000003"
         "0001"
         "001E"
         "0005",
         "L | :="},  // Required: an unknown kind has no payload
        {"00000001"
         "00000003"
         "001E"
         "00000001"
         "0001",
         "L"},
    };
    for (const auto& row : rows) EXPECT_EQ(Read(row.inner), row.tokens) << row.inner;
}

TEST_F(TokenBlob, HostileCounts_AreBounded) {
    static const struct {
        const char* inner;
        const char* tokens;
    } rows[] = {
        {"00000001"
         "7FFFFFFF"
         "0001"
         "0005",
         "L | :="},
        {"00000001"
         "FFFFFFFF"
         "0001"
         "0005",
         ""},
        {"00000001"
         "80000000"
         "0001"
         "0005",
         ""},
        {"00000001"
         "00000001"
         "0003"
         "7FFFFFFF"
         "0061",
         "$:a"},  // a text ends with the bytes
        {"00000001"
         "00000002"
         "0003"
         "FFFFFFFF"
         "0005",
         "$: | :="},
    };
    for (const auto& row : rows) EXPECT_EQ(Read(row.inner), row.tokens) << row.inner;
}

TEST_F(TokenBlob, GrowStep_IsTheCountButNotMoreThanTheBytesHold) {
    Tokens tokens;
    Block blob;
    Wrap(blob, FromHex("00000001"
                       "00000002"
                       "0001"
                       "0005"));
    zrExe_BlobToTokens(blob, tokens);
    EXPECT_EQ(tokens->growStep, 2);
    Wrap(blob, FromHex("00000001"
                       "7FFFFFFF"
                       "0001"
                       "0005"));
    zrExe_BlobToTokens(blob, tokens);
    EXPECT_EQ(tokens->growStep, 2);
}

// Programs --------------------------------------------------------------------------------------------------------

// Lines of valid and invalid code from pieces.
static std::u16string Program(std::mt19937* random) {
    static const std::u16string pieces[] = {u"$a",       u"<>b",
                                            u"name",     u"a b c",
                                            u":=",       u"(",
                                            u")",        u"+",
                                            u"-",        u"/",
                                            u"\\",       u"^",
                                            u"%",        u"*",
                                            u"12",       u"1.5",
                                            u"0.1",      u"0x1F",
                                            u"0xZ",      u"\"text\"",
                                            u"\"a\\n\"", u"\"open",
                                            u"// c",     u"If ",
                                            u"End If",   u":",
                                            u";",        u"!1/2/2003!",
                                            u"!x",       u"?01:02:03?",
                                            u"<=",       u">=",
                                            u"=",        u"#",
                                            u"<",        u">",
                                            u"&",        u"|",
                                            u"[T]F",     u"[T]",
                                            u"[None]",   u"{",
                                            u"}",        u"->",
                                            u"[[",       u"]]",
                                            u"]",        u".name",
                                            u".call(",   u"..",
                                            u" ",        u"  ",
                                            u"\t",       u"@",
                                            u"é",        u"Ä",
                                            u"\r",       u"\r\n",
                                            u"\n",       u"\u2028",
                                            u"ALERT",    u"\xD83D\xDE00",
                                            u"Run it",   u"0xFFFFFFFFF",
                                            u"0x",       u",",
                                            u"'"};
    std::u16string text;
    std::uniform_int_distribution<size_t> piece(0, std::size(pieces) - 1), length(0, 60);
    for (size_t n = length(*random); n > 0; n--) text += pieces[piece(*random)];
    return text;
}

TEST_F(TokenBlob, Programs_ComeBackAsTheyWere) {
    host->structure = {{u"[T]F", {3, 5}}, {u"[T]", {3, 0}}};
    TestExecuter executer;
    Structure structure;
    structure.Method(u"m_Run", u"Run it");
    std::mt19937 random(20260101);
    for (int round = 0; round < 2000; round++) {
        std::u16string program = Program(&random);
        Tokens tokens, back;
        executer.TokenizeToTokens(Text(program), tokens, structure, nullptr, nullptr);
        Block blob, again;
        zrExe_TokensToBlob(tokens, blob);
        zrExe_BlobToTokens(blob, back);
        ASSERT_EQ(Describe(tokens), Describe(back)) << Printable(program);
        zrExe_TokensToBlob(back, again);
        ASSERT_EQ(blob.Bytes(), again.Bytes()) << Printable(program);
    }
}
