#include "language/ZR_API_Tokeniser.h"

#include <chrono>
#include <thread>

#include "tests/language/LanguageTesting.h"

// Expected tokens are written as LanguageTesting.h describes them, without the line token in front.
class Tokeniser : public LanguageTest {
  protected:
    void SetUp() override {
        LanguageTest::SetUp();
        host->structure = {{u"[Customers]", {3, 0}}, {u"[Customers]City", {3, 5}},    {u"[Customers]City ", {3, 5}},
                           {u"[Orders]", {4, 0}},    {u"[Wide]Last", {32767, 32767}}, {u"[Customers][City]", {3, 6}},
                           {u"[Only field", {0, 9}}};
        executer = std::make_unique<TestExecuter>();
    }
    void TearDown() override {
        executer.reset();
        LanguageTest::TearDown();
    }

    std::string Scan(const std::u16string& source, ZR_Handle* structure = nullptr) {
        Tokens tokens;
        executer->TokenizeToTokens(Text(source), tokens, structure, nullptr, nullptr);
        std::string out = Describe(tokens);
        return out.rfind("L | ", 0) == 0 ? out.substr(4) : out == "L" ? "" : "no line: " + out;
    }

    // Runs as kind@start-end, joined by blanks.
    std::string Runs(const std::u16string& source, ZR_Handle* structure = nullptr) {
        Tokens tokens;
        Block runs(sizeof(ZR_Executer_CodeRun));
        executer->TokenizeToTokens(Text(source), tokens, structure, runs, nullptr);
        std::string out;
        for (long i = 1; i <= runs->count; i++) {
            auto* run = reinterpret_cast<ZR_Executer_CodeRun*>(runs->GetMemPtr(i));
            out += (i > 1 ? " " : "") + std::to_string(run->kind) + "@" + std::to_string(run->start) + "-" +
                   std::to_string(run->end);
        }
        return out;
    }

    struct Row {
        const char16_t* source;
        const char* tokens;
    };
    template <size_t n>
    void Check(const Row (&rows)[n], ZR_Handle* structure = nullptr) {
        for (const Row& row : rows) EXPECT_EQ(Scan(row.source, structure), row.tokens) << Printable(row.source);
    }
    template <size_t n>
    void CheckRuns(const Row (&rows)[n], ZR_Handle* structure = nullptr) {
        for (const Row& row : rows) EXPECT_EQ(Runs(row.source, structure), row.tokens) << Printable(row.source);
    }

    std::unique_ptr<TestExecuter> executer;
};

// Rules -----------------------------------------------------------------------------------------------------------

TEST_F(Tokeniser, Rule1_Dates) {
    static const Row rows[] = {
        {u"!1/2/2003!", "d:1/2/2003"},
        {u" !1/2/2003! ", "o:  | d:1/2/2003 | o: "},
        {u"!nonsense!", "d:0/0/0"},
        {u"!!", "d:0/0/0"},
        {u"!1/2/2003", "o:!1/2/2003"},
        {u" !1 ", "o:  | o:!1 "},
        {u"!", "o:!"},
        {u"a!1/2/2003!b", "v:a | d:1/2/2003 | v:b"},
        {u"!1/2/2003!!", "d:1/2/2003 | o:!"},
        {u"!(\"!", "d:0/0/0"},
    };
    Check(rows);
    EXPECT_EQ(host->evaluated[0], u"1/2/2003");
}

TEST_F(Tokeniser, Rule1_LongDate_IsCutAt255Units) {
    EXPECT_EQ(Scan(u"!" + std::u16string(300, u'7') + u"!"), "d:0/0/0");
    EXPECT_EQ(host->evaluated.back().size(), 255u);
}

TEST_F(Tokeniser, Rule2_Strings) {
    static const Row rows[] = {
        {u"\"text\"", "s:text"},
        {u"\"\"", "s:"},
        {u"\"a\"\"b\"", "s:a | s:b"},
        {u"\"a\\\"b\"", "s:a\"b"},
        {u"\"a\\rb\\nc\\td\"", "s:a~000Db~000Ac~0009d"},
        {u"\"\\\\\"", "o:\"\\\\\""},  // Required: a string cannot end in a backslash
        {u"\"\\\\ \"", "s:\\ "},
        {u"\"\\\\r\"", "s:\\~000D"},  // Required: a backslash pair and r becomes a backslash and CR
        {u"\"\\\\\\\\ \"", "s:\\\\ "},
        {u"\"\\\\\\ \"", "s:\\\\ "},
        {u"\"\\x\"", "s:\\x"},
        {u"\"abc\\\"", "o:\"abc\\\""},  // unterminated: the whole text
        {u"\"abc", "o:\"abc"},
        {u"\"", "o:\""},
        {u" \"abc ", "o:  | o:\"abc "},
        {u"\"// no comment\"", "s:// no comment"},
        {u"\"a\"b", "s:a | v:b"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rules3To7_BracketsMembersSemicolonTimes) {
    static const Row rows[] = {
        {u"()", "( | )"},
        {u" ( ) ", "o:  | ( | o:  | ) | o: "},
        {u"a.b", "v:a | .b"},
        {u"a.b(1)", "v:a | .b() | ( | n:1 | )"},
        {u"a.b (1)", "v:a | .b | o:  | ( | n:1 | )"},
        {u"a.b c", "v:a | .b | o:  | v:c"},
        {u".x_9Z", ".x_9Z"},
        {u".5", ".5"},  // with the separator "." too: the member rule comes first
        {u"..", ""},
        {u".", ""},
        {u" . ", "o:  | o: "},
        {u"..(", "("},
        {u".(", "("},
        {u".ä", "v:~00E4"},  // only ASCII in a member
        {u";;", "; | ;"},
        {u"?01:00:01?", "t:3601"},
        {u"?x?", "t:0"},
        {u"?01:00", "o:?01:00"},
        {u"?", "o:?"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule8_DoubleOpen_IsNotCleared) {
    static const Row rows[] = {
        {u"a[[1]]", "v:a | [[ | n:1 | ]]"},
        {u"a [[1]]", "v:a | o:  | [[ | o:  | n:1 | ]]"},  // Required: the blank twice
        {u"a [[ 1", "v:a | o:  | [[ | o: [ | n:1"},       // Required: the stale span, one unit longer
        {u" [[ [[ ", "o:  | [[ | o: [ | [[ | o: [["},
        {u"[[", "[["},
        {u"[[ ", "[[ | o:["},  // Required: the span still starts at the first bracket
        {u"[[[", "[[ | o:["},  // the third opens a reference
    };
    Check(rows);
}

TEST_F(Tokeniser, Rules10And11_Closing) {
    static const Row rows[] = {
        {u"a]]", "v:a | ]]"},
        {u"a ]];", "v:a | ]] | o:  | ;"},  // Required: pending units come behind the mark
        {u"a] ;", "v:a | o:] | ;"},        // Required: the bracket for the blank
        {u"a]", "v:a"},
        {u"]", ""},
        {u"]a", "v:a"},
        {u"a[[1]] :=", "v:a | [[ | n:1 | ]] | o:] | :="},
        {u"]]]", "]]"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rules12To17_Marks) {
    static const Row rows[] = {
        {u"a{1}", "v:a | { | n:1 | }"},
        {u"a {1} ", "v:a | o:  | { | n:1 | } | o: "},
        {u"->a", "-> | v:a"},
        {u"a->", "v:a | ->"},
        {u"a- >b", "v:a | f:- | o:  | cmp:6 | v:b"},
        {u"-5", "f:- | n:5"},
        {u"*+%-\\^/", "f:* | f:+ | f:% | f:- | f:\\ | f:^ | f:/"},
        {u"/*x*/", "f:/ | f:* | v:x | f:* | f:/"},  // there is no block comment
        {u"a:=b", "v:a | := | v:b"},
        {u"a : =b", "v:a | o:  | #30012 | o:  | cmp:3 | v:b"},
        {u":(a=1)", "#30012 | ( | v:a | cmp:3 | n:1 | )"},
        {u":::=", "#30012 | #30012 | :="},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule18_Hexadecimal) {
    static const Row rows[] = {
        {u"0xFF", "x:255"},
        {u"0xff", "x:255"},
        {u"0x0", "x:0"},
        {u"0x12345678", "x:305419896"},
        {u"0xFFFFFFFF", "x:4294967295"},
        {u"0x000000001", "o:0x000000001"},  // nine digits
        {u"0xFFFFFFFFF", "o:0xFFFFFFFFF"},
        {u"0xZ", "v:Z"},
        {u"0x", "v:x"},  // Required: an x that ends the line is scanned again
        {u"0x;", ";"},
        {u"0X12", "n:0 | v:X12"},
        {u"10x2", "n:10 | v:x2"},
        {u"0x1G", "x:1 | v:G"},
        {u"a 0x12;", "v:a | o:  | x:18 | o:  | ;"},    // Required: the blank again
        {u"a 0x12 ;", "v:a | o:  | x:18 | o: 0 | ;"},  // Required: the stale span, one unit longer
        {u"0x12 ;", "x:18 | o:0 | ;"},
        {u"a 0x12", "v:a | o:  | x:18 | o: "},  // and at the line's end
        {u"a 0xZ", "v:a | o:  | o:  | v:Z"},
        {u"$a 0x1", "$:a | o:  | x:1 | o: "},  // a name ends in front of a blank and 0x
        {u"a0x1", "v:a0x1"},
        {u"a 0 x1", "v:a 0 x1"},
        {u"a 10x1", "v:a 10x1"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule19_Numbers) {
    static const Row rows[] = {
        {u"0", "n:0"},
        {u"12.5", "n:12.5"},
        {u"1.2.3", "n:1.2"},  // one token: a second separator ends the value
        {u"1..2", "n:1"},
        {u"1.", "n:1"},
        {u"1e5", "n:1 | v:e5"},
        {u"1 2", "n:1 | o:  | n:2"},
        {u"007", "n:7"},
        {u"0.1", "n:0.1"},
        {u"123456789012345", "n:123456789012345"},
        {u"0.30000000000000004", "n:0.30000000000000004"},
        {u"9007199254740993", "n:9007199254740992"},
        {u"18446744073709551616", "n:1.8446744073709552e+19"},
        {u"3.14159265358979323846264338327950288", "n:3.141592653589793"},
        {u"1,5", "n:1 | o:, | n:5"},
        {u"a1", "v:a1"},
        {u"1a", "n:1 | v:a"},
    };
    Check(rows);
    EXPECT_EQ(Scan(u"1" + std::u16string(400, u'0')), "n:inf");
    EXPECT_EQ(Scan(u"0." + std::u16string(400, u'0') + u"1"), "n:0");
    EXPECT_EQ(Scan(std::u16string(400, u'0') + u"5"), "n:5");
    EXPECT_EQ(Scan(u"0." + std::u16string(320, u'0') + u"5"), "n:5e-321");
}

TEST_F(Tokeniser, Rule19_Comma_IsOneNumber) {
    executer->decimalSeparator = ',';
    static const Row rows[] = {
        {u"1,5", "n:1.5"},       {u"f(1,5)", "v:f | ( | n:1.5 | )"},
        {u",5", "n:0.5"},        {u",", "n:0"},
        {u"1,2,3", "n:1.2"},     {u"1.5", "n:1 | .5"},
        {u"a,5", "v:a | n:0.5"}, {u"1234567890123456,5", "n:1234567890123456.5"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule19_OtherSeparators) {
    executer->decimalSeparator = 0;  // only digits make a number
    EXPECT_EQ(Scan(u"1.5"), "n:1 | .5");
    EXPECT_EQ(Scan(std::u16string(u"1") + u'\0' + u"5"), "n:1 | o:~0000 | n:5");
    executer->decimalSeparator = 0x066B;
    EXPECT_EQ(Scan(u"1\u066B5"), "n:1") << "no point: the value ends";
    EXPECT_EQ(Scan(u"\u066B5"), "n:0");
    executer->decimalSeparator = '\'';
    EXPECT_EQ(Scan(u"1'5"), "n:1");
}

TEST_F(Tokeniser, Rule20_Comments) {
    static const Row rows[] = {
        {u"// note", "c: note"},
        {u"//", "c:"},
        {u"a // b // c", "v:a | o:  | c: b // c"},
        {u"///", "c:/"},
        {u"1/2", "n:1 | f:/ | n:2"},
        {u"  // x ", "o:   | c: x "},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule22_Names) {
    static const Row rows[] = {
        {u"name", "v:name"},
        {u"a b", "v:a b"},
        {u"a b := 3", "v:a b | o:  | := | o:  | n:3"},
        {u"_x", "v:_x"},
        {u"Ä", "v:~00C4"},
        {u"äöüÄÖÜß", "v:~00E4~00F6~00FC~00C4~00D6~00DC~00DF"},
        {u"é", "o:~00E9"},
        {u"aé", "v:a | o:~00E9"},
        {u"name  ", "v:name | o:  "},
        {u"If", "#30001"},
        {u"if", "#30001"},
        {u"If ($a=1)", "#30001 | o:  | ( | $:a | cmp:3 | n:1 | )"},
        {u"if ($a=1)", "#30001 | o:  | ( | $:a | cmp:3 | n:1 | )"},
        {u"If x", "v:If x"},  // a name runs over blanks
        {u"End If", "#30003"},
        {u"end  if", "v:end  if"},
        {u"Case of", "#30010"},
        {u"alert(\"x\")", "#41 | ( | s:x | )"},
        {u"Size of array(a)", "#274 | ( | v:a | )"},
        {u"_Get Color(c)", "#40001 | ( | v:c | )"},
        {u"Si", "v:Si"},              // the other spelling is not known
        {u"myMethod", "v:myMethod"},  // without a virtual structure
    };
    Check(rows);
}

TEST_F(Tokeniser, Rules23And24_PrefixedNames) {
    static const Row rows[] = {
        {u"$a", "$:a"},
        {u"$", "$:"},
        {u"$  ", "$: | o:  "},
        {u"$1", "$:1"},
        {u"$a b", "$:a b"},
        {u"$If", "$:If"},
        {u"$$", "$: | $:"},
        {u"<>b", "<>:b"},
        {u"<>", "<>:"},
        {u"a<>b", "v:a | <>:b"},
        {u"<>If", "<>:If"},
        {u"$ä", "$:~00E4"},
        {u"<>  ;", "<>: | o:   | ;"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rules25To28_ComparisonsLogicRest) {
    static const Row rows[] = {
        {u"<=", "cmp:1"},
        {u">=", "cmp:2"},
        {u"=", "cmp:3"},
        {u"#", "cmp:4"},
        {u"<", "cmp:5"},
        {u">", "cmp:6"},
        {u"&|", "log:1 | log:2"},
        {u"=<", "cmp:3 | cmp:5"},
        {u"a<b", "v:a | cmp:5 | v:b"},
        {u"\t,@'", "o:~0009,@'"},
        {u"a\tb", "v:a | o:~0009 | v:b"},
        {u"~\u20AC", "o:~~20AC"},
        {u"\xD83D\xDE00", "o:~D83D~DE00"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule9_References_FromTheHost) {
    static const Row rows[] = {
        {u"[Customers]", "[3]"},
        {u"[Customers]City", "[3]5"},
        {u"[Customers]City :=", "[3]5 | :="},  // trailing blanks stay in the reference
        {u"[Customers]Town", "o:[Customers]Town"},
        {u"[Wide]Last", "[32767]32767"},
        {u"[Customers][City]", "[3]6"},  // both brackets belong to it
        {u"[Only field", "[0]9"},
        {u"a[Customers];", "v:a | [3] | ;"},
        {u" [Orders]", "o:  | [4]"},
        {u"[", "o:["},
        {u"[]", "o:[]"},
        {u"[a.b]", "o:[a | .b"},
        {u"[äß]9_", "o:[~00E4~00DF]9_"},
    };
    Check(rows);
}

TEST_F(Tokeniser, Rule9_LongReference_IsCutAt255Units) {
    std::u16string reference = u"[" + std::u16string(400, u'a') + u"]";
    EXPECT_EQ(Scan(reference), "o:" + Printable(reference));
}

// Virtual structure -----------------------------------------------------------------------------------------------

TEST_F(Tokeniser, VirtualStructure_Methods) {
    Structure structure;
    structure.Method(u"m_Run", u"Run it");
    structure.Method(u"m_Alert", u"Alert");
    structure.Variable(u"v_Var", u"Var");
    static const Row rows[] = {
        {u"Run it", "m:m_Run"}, {u"RUN IT(1)", "m:m_Run | ( | n:1 | )"},
        {u"Alert", "#41"},  // a command comes first
        {u"m_Run", "v:m_Run"},  {u"$Run it", "$:Run it"},
        {u"Var", "v:Var"},
    };
    Check(rows, structure);
}

TEST_F(Tokeniser, VirtualStructure_References) {
    Structure structure;
    structure.Table(3, u"Kunden");
    structure.Field(3, 5, u"Ort");
    structure.Field(4, 7, u"Fremd");
    structure.Table(9, u"Alone");
    static const Row rows[] = {
        {u"[Kunden]", "[3]"},
        {u"[KUNDEN]ort", "[3]5"},
        {u"[Kunden]Land", "[3] | o:Land"},
        {u"[Kunden]Ort ;", "[3] | o:Ort  | ;"},  // Required: trailing blanks count
        {u"[Kunden]Fremd", "[3] | o:Fremd"},     // a field of another table
        {u"[Alone]", "[9]"},
        {u"[Customers]", "o:[Customers]"},  // a listed table hides its true name
        {u"[Orders]", "[4]"},               // an unlisted one does not
        {u"[Kunden", "o:[Kunden"},
        {u"[]Ort", "o:[]Ort | o:Ort"},
        {u"[Customers]City", "o:[Customers]City | o:City"},  // Required: the rest is kept, found or not
        {u"[Wide]Last", "[32767]32767 | o:Last"},            // Required: the same
    };
    Check(rows, structure);
}

TEST_F(Tokeniser, VirtualStructure_WithoutRecords_KeepsTheRest) {
    Structure structure;
    EXPECT_EQ(Scan(u"[Customers]City", structure), "[3]5 | o:City");
}

// Lines -----------------------------------------------------------------------------------------------------------

TEST_F(Tokeniser, Lines_AllBreaks) {
    static const Row rows[] = {
        {u"", "L"},
        {u"a", "L | v:a"},
        {u"a\rb", "L | v:a | L | v:b"},
        {u"a\nb", "L | v:a | L | v:b"},
        {u"a\r\nb", "L | v:a | L | v:b"},
        {u"a\u2028b", "L | v:a | L | v:b"},
        {u"a\u2029b", "L | v:a | o:~2029 | v:b"},
        {u"a\r\rb", "L | v:a | L | L | v:b"},
        {u"a\r\n\r\nb", "L | v:a | L | L | v:b"},
        {u"a\n\rb", "L | v:a | L | L | v:b"},
        {u"a\r\r\nb", "L | v:a | L | L | v:b"},
        {u"a\r", "L | v:a | L"},
        {u"\r\n", "L | L"},
        {u"\"a\rb\"", "L | o:\"a | L | v:b | o:\""},  // nothing is carried from line to line
    };
    for (const Row& row : rows) {
        Tokens tokens;
        executer->TokenizeToTokens(Text(row.source), tokens, nullptr, nullptr, nullptr);
        EXPECT_EQ(Describe(tokens), row.tokens) << Printable(row.source);
    }
}

TEST_F(Tokeniser, Source_IsNotChanged_AndTokensAreAppended) {
    Text source(u"a\r\nb");
    Tokens tokens;
    tokens->growStep = 7;
    executer->TokenizeToTokens(source, tokens, nullptr, nullptr, nullptr);
    executer->TokenizeToTokens(source, tokens, nullptr, nullptr, nullptr);
    EXPECT_EQ(Describe(tokens), "L | v:a | L | v:b | L | v:a | L | v:b");
    EXPECT_EQ(Units(source), u"a\r\nb");
    EXPECT_EQ(tokens->growStep, 7);
}

TEST_F(Tokeniser, TokenizeLine_NoLineToken) {
    Tokens tokens;
    long lineStart = 10;
    zrExe_Tokenize_Line(Text(u"$a:=If"), tokens, nullptr, nullptr, nullptr, &lineStart, '.', executer.get());
    EXPECT_EQ(Describe(tokens), "$:a | := | #30001");
    EXPECT_EQ(lineStart, 10);
    zrExe_Tokenize_Line(Text(u""), tokens, nullptr, nullptr, nullptr, &lineStart, '.', executer.get());
    EXPECT_EQ(tokens->count, 3);
    zrExe_Tokenize_Line(Text(u"If"), tokens, nullptr, nullptr, nullptr, nullptr, '.', nullptr);
    EXPECT_EQ(Describe(tokens), "$:a | := | #30001 | v:If") << "without an executer no name is a command";
    EXPECT_EQ(tokens.At(4)->value.integer, 0);
}

TEST_F(Tokeniser, Executer_FrenchKeywords) {
    host->commands[1].name = u"Somme";
    executer->ReadCommands();
    static const Row rows[] = {{u"Si (a)", "#30001 | o:  | ( | v:a | )"}, {u"Tant que", "#30008"}, {u"If", "v:If"}};
    Check(rows);
}

// Runs ------------------------------------------------------------------------------------------------------------

TEST_F(Tokeniser, Runs_ByRule) {
    static const Row rows[] = {
        {u"$a:=1", "3@1-2 5@3-4 6@5-5"},
        {u"name", "2@1-4"},
        {u"If", "12@1-2"},
        {u"<>ab", "4@1-4"},
        {u"$", "3@1-1"},
        {u"()", "7@1-1 8@2-2"},
        {u"a;b", "2@1-1 15@2-2 2@3-3"},
        {u"{}", "24@1-1 25@2-2"},
        {u"->", "26@1-2"},
        {u"+", "9@1-1"},
        {u":", "12@1-1"},
        {u"12.5", "6@1-4"},
        {u"[[1]]", "32@1-1 6@3-3 33@4-4"},
        {u"0xFF", "29@1-2"},          // Required: two units short
        {u"0xFFFFFFFFF", "999@1-9"},  // Required: likewise
        {u"//note", "11@1-4"},        // Required: likewise
        {u"//", "11@1-0"},
        {u"a // b", "2@1-1 999@2-2 11@3-4"},
        {u"\"x\"", ""},
        {u"!1/2/2003!?1:1:1?", ""},
        {u"\"open", ""},
        {u"a.b(", "2@1-1 7@4-4"},
        {u"<=>=#=<>x", "4@7-9"},
        {u"< &", "999@2-2"},
        {u"\t@", "999@1-2"},
        {u"[Customers]", "21@1-11"},
        {u"[Customers]City;", "22@1-15 15@16-16"},
        {u"[None]", "999@1-6"},
    };
    CheckRuns(rows);
}

TEST_F(Tokeniser, Runs_LaterLines_CountOneUnitForABreak) {
    static const Row rows[] = {
        {u"a\rb", "2@1-1 2@3-3"},
        {u"a\r\nb", "2@1-1 2@3-3"},
        {u"a\r\rbc", "2@1-1 2@4-5"},
        {u"\n[Customers]", "21@2-11"},  // Required: the end is counted in the line
        {u"a:=1\r[Customers]City", "2@1-1 5@2-3 6@4-4 22@6-15"},
    };
    CheckRuns(rows);
}

TEST_F(Tokeniser, Runs_OfAReferenceWithRest_AreOne) {
    Structure structure;
    structure.Table(3, u"Kunden");
    EXPECT_EQ(Runs(u"[Kunden]Land", structure), "21@1-12");
}

TEST_F(Tokeniser, Runs_ColourAndStyle) {
    executer->SetCodeStyle(ZR_CODESTYLE_LOCAL, {1, 2, 3, 0.5f}, ZR_CODESTYLE_BOLD);
    ZR_Handle styles = executer->codeStyles.Create_ZR_Handle_Copy();
    Tokens tokens;
    Block runs(sizeof(ZR_Executer_CodeRun));
    executer->TokenizeToTokens(Text(u"$a+"), tokens, nullptr, runs, &styles);
    ASSERT_EQ(runs->count, 2);
    auto* run = reinterpret_cast<ZR_Executer_CodeRun*>(runs->GetMemPtr(1));
    EXPECT_EQ(run[0].color.blue, 3);
    EXPECT_EQ(run[0].color.alpha, 0.5f);
    EXPECT_EQ(run[0].style, ZR_CODESTYLE_BOLD);
    EXPECT_EQ(run[1].color.red, 0) << "no such style: black";
    EXPECT_EQ(run[1].color.alpha, 1.0f);
    EXPECT_EQ(run[1].style, 0);
    styles.Dispose();
}

TEST_F(Tokeniser, AddCodeStyleRun_Appends) {
    Block runs(sizeof(ZR_Executer_CodeRun));
    zrExe_AddCodeStyleRun(3, 9, ZREXE_TOKEN_COMMENT, runs, nullptr);
    auto* run = reinterpret_cast<ZR_Executer_CodeRun*>(runs->GetMemPtr(1));
    EXPECT_EQ(run->kind, ZREXE_TOKEN_COMMENT);
    EXPECT_EQ(run->start, 3);
    EXPECT_EQ(run->end, 9);
    zrExe_AddCodeStyleRun(3, 9, ZREXE_TOKEN_COMMENT, nullptr, nullptr);
}

TEST_F(Tokeniser, TokenCheckRest2_OneBased) {
    static const struct {
        long start, length;
        const char* tokens;
        long runs;
    } rows[] = {{1, 3, "o:abc", 1}, {2, 1, "o:b", 1}, {3, 1, "o:c", 1},   {1, 0, "", 0},  {1, -1, "", 0},
                {4, 1, "", 0},      {0, 2, "", 0},    {2, 99, "o:bc", 1}, {-9, 99, "", 0}};
    for (const auto& row : rows) {
        Tokens tokens;
        Block runs(sizeof(ZR_Executer_CodeRun));
        zrExe_TokenCheckRest2(Text(u"abc"), row.start, row.length, tokens, runs, nullptr, 100);
        EXPECT_EQ(Describe(tokens), row.tokens) << row.start << "+" << row.length;
        ASSERT_EQ(runs->count, row.runs) << row.start;
        if (row.runs == 0) continue;
        auto* run = reinterpret_cast<ZR_Executer_CodeRun*>(runs->GetMemPtr(1));
        EXPECT_EQ(run->kind, 999);
        EXPECT_EQ(run->start, 100 + row.start);
        EXPECT_EQ(run->end, 100 + row.start + TokenAt(tokens, 1)->GetText()->count - 1);
    }
}

// Bounds ----------------------------------------------------------------------------------------------------------

TEST_F(Tokeniser, StaleSpans_InAnEndlessLine_AreBounded) {
    std::u16string line;
    for (int i = 0; i < 20000; i++) line += u" [[";
    Tokens tokens;
    executer->TokenizeToTokens(Text(line), tokens, nullptr, nullptr, nullptr);
    long units = 0, marks = 0;
    for (long i = 1; i <= tokens->count; i++) {
        units += tokens.At(i)->text.count;
        if (tokens.At(i)->kind == ZREXE_TOKEN_INDEX_OPEN) marks++;
    }
    EXPECT_EQ(marks, 20000);
    EXPECT_LE(units, static_cast<long>(line.size()) * 65);
}

TEST_F(Tokeniser, StaleSpans_InALineOf512Units_AreAllKept) {
    std::u16string line;
    for (int i = 0; i < 170; i++) line += u" [[";
    Tokens tokens;
    executer->TokenizeToTokens(Text(line), tokens, nullptr, nullptr, nullptr);
    long units = 0;
    for (long i = 1; i <= tokens->count; i++) units += tokens.At(i)->text.count;
    EXPECT_EQ(units, 170 * 171 / 2 + 170);  // one more each time, and the last once more at the line's end
}

TEST_F(Tokeniser, EveryUnit_AloneAndBetweenNames) {
    for (unsigned unit = 0; unit <= 0xFFFF; unit++) {
        std::u16string line = {u'a', static_cast<char16_t>(unit), u'b', static_cast<char16_t>(unit)};
        Tokens tokens;
        executer->TokenizeToTokens(Text(line), tokens, nullptr, nullptr, nullptr);
        ASSERT_GE(tokens->count, 1) << unit;
        ASSERT_EQ(tokens.At(1)->kind, ZREXE_TOKEN_LINE) << unit;
    }
}

TEST_F(Tokeniser, SeveralThreads_GiveTheSame) {
    Structure structure;
    for (int i = 0; i < 100; i++) structure.Method(u"m", u"Run it");
    std::u16string source;
    for (int i = 0; i < 200; i++) source += u"If ($a=1)\r  Run it(\"text\";0x12)\rEnd If\r";
    Tokens expected;
    executer->TokenizeToTokens(Text(source), expected, structure, nullptr, nullptr);
    std::string description = Describe(expected);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; round++) {
                Tokens tokens;
                executer->TokenizeToTokens(Text(source), tokens, structure, nullptr, nullptr);
                EXPECT_EQ(Describe(tokens), description);
            }
        });
    }
    for (auto& thread : threads) thread.join();
}
