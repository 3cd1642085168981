#include <algorithm>
#include <set>
#include <sstream>

#include "tests/runtime/FieldHost.h"
#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

// The tables, written down once more. N number, T text, D date, H time, B boolean, O operator, V variable, L length,
// X anything, b BLOB, I picture, F field; "any" = any list.
enum Effect { kValue, kNoValue, kValueThenOK, kNoValueThenOK, kOwn };

struct Row {
    const char* forms;
    Effect effect;
    const char* numbers;
};

const Row kRows[] = {
    {"()", kValue, "100 182 254 335 342 343 397 458 459 483 484 486 489 490 491 494 495 524 1471 1472 1482 1517"},
    {"(N)", kValue, "8 9 17 18 19 20 21 22 99 255"},
    {"(N,N)", kValue, "94 95 98"},
    {"(D)", kValue, "23 24 25 114"},
    {"(T)", kValue, "16 102 179 400 523"},
    {"(V)", kValue, "460"},
    {"(I)", kValue, "356"},
    {"(V,V)", kValue, "899"},
    {"(b,T)", kValue, "1012"},
    {"(D,N,N,N)", kValue, "393"},
    {"(b,V,V)", kValue, "533"},
    {"(T,T,N)", kValue, "231 234"},
    {"(T,N,N)", kValue, "232"},
    {"()|(O)", kValue, "33 178 492"},
    {"()|(N)", kValue, "487"},
    {"(H)|(N)", kValue, "180"},
    {"(T)|(B)", kValue, "11"},
    {"(T)|(T,N)", kValue, "143"},
    {"(T)|(T,O)", kValue, "13 14"},
    {"(T,N,N)|(T,N)", kValue, "12"},
    {"()|(N)|(O)|(N,O)", kValue, "485"},
    {"()|(O)|(V)|(V,O)", kValue, "493"},
    {"(T,T,T)|(T,T,T,O)|(T,T,T,N)|(T,T,T,N,O)", kValue, "233"},
    {"(T,T)|(T,T,N)|(T,T,N,O)|(T,T,N,V)|(T,T,N,V,O)", kValue, "15"},
    {"(N)|(N,T)|(D)|(D,N)|(H)|(H,N)|(B)|(D,N,H)", kValue, "10"},
    {"()", kNoValue, "175 181 239 240 241"},
    {"(T)", kNoValue, "63 144 159 332 333"},
    {"(T)|(T,T)", kNoValue, "41"},
    {"(V)|(V,V)|(V,V,V)|(V,V,V,V)", kNoValue, "365"},
    {"any", kNoValue, "48 49 718 1007"},
    {"(N)", kValueThenOK, "268"},
    {"(H)", kValueThenOK, "267"},
    {"(T)|(T,T)", kValueThenOK, "265 266"},
    {"(T)|(T,T)|(T,T,N)", kValueThenOK, "264"},
    {"(T)|(T,T)|(T,T,T)|(T,T,T,T)", kValueThenOK, "163"},
    {"(T)|(T,T)|(T,T,T)", kNoValueThenOK, "162"},
    {"(T,V)", kOwn, "678"},
    {"(b,V)|(b,F)|(b,V,T)|(b,F,T)", kOwn, "682"},
    {"(I,V,T)|(I,F,T)", kOwn, "692"},
    {"(V)", kOwn, "1 274 315"},
    {"(B)", kOwn, "34"},
    {"(N)", kOwn, "90"},
    {"(T)", kOwn, "91"},
    {"()", kOwn, "151 157 158 214 215"},
    {"(V,V)", kOwn, "226"},
    {"(V,N)|(V,N,N)", kOwn, "227 228"},
    {"own", kOwn, "229 955"},
    {"(V,X)|(V,X,N)", kOwn, "230"},
    {"(b)", kOwn, "605"},
    {"(V,N)", kOwn, "606"},
    {"(V,X)", kOwn, "911"},
    {"any", kOwn, "993"},
    {"(V,L)", kOwn, "218 219 220 221 222 223 224 279 280"},
    {"any", kOwn, "282 283 284 285 286 293 301 305 306 307 604 1216 1488"},
    {"(B)", kOwn, "30001 30007 30008"},
    {"any", kOwn, "30002 30003 30004 30005 30006 30009 30010 30011 30012"},
    {"(T)|(T,N)", kOwn, "40001"},
    {"(T)", kOwn, "40002 40004 40006 40007 40008 40009 40010"},
    {"()", kOwn, "40003"},
    {"(N,V,V,V)", kOwn, "40005"},
};

std::vector<long> Numbers(const Row& row) {
    std::istringstream text(row.numbers);
    std::vector<long> numbers;
    for (long number; text >> number;) numbers.push_back(number);
    return numbers;
}

std::vector<std::string> Forms(const char* text) {  // "(T)|(T,N)" gives "T", "TN"; "()" gives ""; "any" none
    std::vector<std::string> forms;
    if (*text != '(') return forms;
    for (; *text; text++) {
        if (*text == '(') forms.emplace_back();
        else if (*text != ')' && *text != ',' && *text != '|') forms.back() += *text;
    }
    return forms;
}

// A parameter of a sign; '!' is of a kind that fits none but X.
void Add(Tokens* tokens, char sign) {
    switch (sign) {
        case 'N':
        case 'L': tokens->Number(2); break;
        case 'T': tokens->String("ab"); break;
        case 'D': tokens->Date(3, 2, 2001); break;
        case 'H': tokens->Time(90); break;
        case 'B': tokens->Boolean(true); break;
        case 'O': tokens->Formula('*'); break;
        case 'V': tokens->Process("v"); break;
        case 'X': tokens->Number(3); break;
        case 'b': tokens->Blob("xy"); break;
        case 'I': tokens->Picture("bytes"); break;
        case 'F': tokens->Kind(ZREXE_TOKEN_FIELD, (1 << 16) + 130); break;
        default: tokens->Named(ZREXE_TOKEN_POINTER, "", 0); break;
    }
}

// What the forms say to a list, tried from left to right: the words of the last failed try.
std::string Judge(const std::vector<std::string>& forms, const std::string& list, bool stopsAtWrongType = false) {
    std::string answer;
    for (const std::string& form : forms) {
        if (form.size() != list.size()) {
            answer = "wrong count of parameters";
            continue;
        }
        bool fits = true;
        for (size_t i = 0; i < form.size(); i++)
            fits &= form[i] == list[i] || form[i] == 'X' || (form[i] == 'L' && list[i] == 'N') ||
                    (form[i] == 'N' && list[i] == 'L');
        if (fits) return "";
        answer = "wrong parameter type";
        if (stopsAtWrongType) return answer;
    }
    return answer;
}

std::string NameOf(long number) {
    return number <= 2000 ? std::string(Machine::Get().host->command(static_cast<int>(number)).name) : "";
}

struct Ran {
    std::string error, result, calls;
};

// A command with a list, before a host that answers every forwarded command by 77.
Ran RunCommand(long number, const std::string& list, void (*prepare)(Program&) = nullptr) {
    Program program;
    Text name("v"), value("val");
    if (prepare) prepare(program);
    else zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Text)->text.AddText(value);
    Tokens tokens;
    for (char sign : list) Add(&tokens, sign);
    FieldHost host;
    host.recorder.passOn = false;
    host.recorder.answer = [](const HostCall&, PA_Variable**, PA_Variable* result) {
        Answer(result, 77.0);
        return true;
    };
    Value result;
    program->Execute4DCommand(tokens, number, result);
    Ran run;
    run.error = program->lastError ? std::to_string(program->lastError) + " " + Narrow(&program->lastErrorText) : "";
    run.result = result.text();
    run.calls = host.recorder.text();
    return run;
}

std::string SentAs(char sign) {
    switch (sign) {
        case 'N': return "real 2";
        case 'T': return "text ab";
        case 'D': return "date 2001-2-3";
        case 'H': return "time 90";
        case 'B': return "boolean true";
        case 'O': return "operator 3";
        case 'V': return "text val";
        case 'X': return "real 3";
        case 'b': return "blob 7879";
        case 'I': return "picture";
        default: return "reference 1,130";
    }
}

std::string SentCall(long number, const std::string& list) {
    std::string call = std::to_string(number) + "(";
    for (size_t i = 0; i < list.size(); i++) call += (i ? "; " : "") + SentAs(list[i]);
    return call + ")";
}

constexpr const char* kSigns = "NTDHBOVbIF!";

}  // namespace

// Forms ------------------------------------------------------------------------------------------------------------

TEST(CommandForms, EveryForwardedForm_ReachesTheHostAsItStands) {
    for (const Row& row : kRows) {
        if (row.effect == kOwn) continue;
        std::vector<std::string> forms = Forms(row.forms);
        if (forms.empty()) forms = {"", "N", "TT", "VND", "HHHHHH"};
        for (long number : Numbers(row))
            for (const std::string& form : forms) {
                Ran run = RunCommand(number, form);
                EXPECT_EQ(run.error, "") << number << " (" << form << ")";
                EXPECT_EQ(run.calls, SentCall(number, form)) << number;
                bool keeps = row.effect == kValue || row.effect == kValueThenOK;
                EXPECT_EQ(run.result, keeps ? "number 77" : "nothing") << number;
            }
    }
}

// Every list of up to five parameters that differs from a form in one place, is one longer or one shorter.
TEST(CommandForms, WrongListsOfEveryCommand_ExactWords) {
    for (const Row& row : kRows) {
        std::vector<std::string> forms = Forms(row.forms);
        if (forms.empty()) continue;
        for (long number : Numbers(row)) {
            std::set<std::string> lists = {"", "N", "T", "!", "NN", "TTTTTT"};
            for (const std::string& form : forms) {
                for (size_t i = 0; i < form.size(); i++)
                    for (const char* sign = kSigns; *sign; sign++) {
                        std::string list = form;
                        list[i] = *sign;
                        lists.insert(list);
                    }
                lists.insert(form + "N");
                lists.insert(form + "T");
                if (!form.empty()) lists.insert(form.substr(1));
            }
            for (const std::string& list : lists) {
                std::string words = Judge(forms, list, /*stopsAtWrongType*/ number == 41);
                if (words.empty()) continue;  // fits
                Ran run = RunCommand(number, list);
                EXPECT_EQ(run.error, "-13 Command \"" + NameOf(number) + "\" " + words)
                    << number << " (" << list << ")";
                EXPECT_EQ(run.calls, "") << number << " (" << list << ")";
                EXPECT_EQ(run.result, "nothing") << number << " (" << list << ")";
            }
        }
    }
}

TEST(CommandForms, AnyList_IsTaken) {
    for (const Row& row : kRows) {
        if (std::string(row.forms) != "any" || row.effect != kOwn) continue;
        for (long number : Numbers(row))
            for (const char* list : {"", "N", "TT", "!", "NTDHB"}) {
                Ran run = RunCommand(number, list);
                EXPECT_EQ(run.error, "") << number << " (" << list << ")";
                EXPECT_EQ(run.result, "nothing") << number << " (" << list << ")";
                EXPECT_EQ(run.calls, "") << number << " (" << list << ")";
            }
    }
}

// Probe ------------------------------------------------------------------------------------------------------------

TEST(CommandProbe, AllNumbers_SupportedExactlyWhereATableHasARow) {
    std::set<long> tabled;
    for (const Row& row : kRows)
        for (long number : Numbers(row)) tabled.insert(number);
    ZR_ExecutionContext scratch;
    scratch.Create(0, nullptr);
    scratch.probeMode = true;
    Recorder recorder;
    for (long number = 1; number <= 2000; number++) {
        scratch.probeSupported = false;
        scratch.Execute4DCommand(nullptr, number, nullptr);
        EXPECT_EQ(scratch.probeSupported, tabled.count(number) == 1) << number;
        EXPECT_EQ(scratch.lastError, 0) << number;
        auto* row = reinterpret_cast<ZR_Executer_Command*>(Executer()->commands.GetMemPtr(number));
        bool known = Machine::Get().host->command(static_cast<int>(number)).id != 0;
        EXPECT_EQ(row->supported, known && tabled.count(number) == 1) << number;
    }
    for (long number : {-1L, 0L, 2001L, 30000L, 30001L, 30012L, 40001L, 40010L, 49999L, 1L << 40}) {  // not probed
        scratch.probeSupported = false;
        scratch.Execute4DCommand(nullptr, number, nullptr);
        EXPECT_FALSE(scratch.probeSupported) << number;
        EXPECT_EQ(scratch.lastError, 0) << number;
    }
    EXPECT_TRUE(recorder.calls.empty());
    EXPECT_TRUE(recorder.selectors.empty());  // a probe makes no call at all
    scratch.Dispose();
}

// OK ---------------------------------------------------------------------------------------------------------------

TEST(CommandOK, CommandsThatSetIt_FollowTheHost) {
    for (const Row& row : kRows) {
        if (row.effect == kOwn || std::string(row.forms) == "any") continue;
        bool sets = row.effect == kValueThenOK || row.effect == kNoValueThenOK;
        for (long number : Numbers(row))
            for (bool ok : {true, false}) {
                Machine::Get().host->setOK(ok);
                Program program;
                Tokens tokens;
                const std::string form = Forms(row.forms)[0];
                for (char sign : form) Add(&tokens, sign);
                Text name("v");
                zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Text);
                Recorder recorder;
                recorder.passOn = false;
                Value result;
                program->Execute4DCommand(tokens, number, result);
                EXPECT_EQ(Describe(program.Find("OK")), !sets ? "missing" : ok ? "longint 1" : "longint 0") << number;
            }
    }
}

namespace {

void WithPicture(Program& program) {
    Text name("v");
    ZR_Executer_Variable* variable =
        zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Picture);
    variable->picture.nativeData.Dispose();
    variable->picture.nativeData.Create(1, 3);
}
void WithEmptyPicture(Program& program) {
    Text name("v");
    zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Picture);
}

// A command before a host that does nothing; the value of OK afterwards.
std::string OkAfter(long number, Tokens* tokens, void (*prepare)(Program&), std::string* calls) {
    Program program;
    prepare(program);
    FieldHost host;
    host.recorder.passOn = false;
    Value result;
    program->Execute4DCommand(*tokens, number, result);
    EXPECT_EQ(Narrow(&program->lastErrorText), "") << number;
    *calls = host.recorder.text();
    return Describe(program.Find("OK"));
}

}  // namespace

TEST(CommandOK, PictureFromFile_TrueIfThePictureHasBytes) {
    Machine::Get().host->setOK(true);
    std::string calls;
    for (bool full : {true, false}) {
        Tokens tokens;
        tokens.String("path").Process("v");
        // The host leaves the picture as it came: with bytes or without.
        std::string ok = OkAfter(678, &tokens, full ? WithPicture : WithEmptyPicture, &calls);
        EXPECT_EQ(calls.substr(0, 3), "678");
        if (!full) { EXPECT_EQ(ok, "longint 0"); }
    }
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable** parameters, PA_Variable*) {
        if (call.command != 678) return false;
        static const unsigned char png[] = {0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0, 0, 0, 13, 'I', 'H', 'D',
                                            'R',  0,   0,   0,   1,  0,  0,  0,  1, 8, 2, 0,  0,   0};
        PA_SetPictureVariable(parameters[1], PA_CreatePicture(png, sizeof png));
        return true;
    };
    Machine::Get().host->setOK(false);
    Outcome outcome = RunText("C_PICTURE($p)\nREAD PICTURE FILE(\"a.png\";$p)");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["OK"], "longint 1");
    EXPECT_EQ(outcome["$p"], "picture 29 bytes");
}

TEST(CommandOK, BlobToPicture_FollowsTheHost) {
    std::string calls;
    for (bool ok : {true, false}) {
        Machine::Get().host->setOK(ok);
        Tokens tokens;
        tokens.Blob("xy").Process("v");
        EXPECT_EQ(OkAfter(682, &tokens, WithEmptyPicture, &calls), ok ? "longint 1" : "longint 0");
        EXPECT_EQ(calls, "682(blob 7879; picture)");
        Tokens field;
        field.Blob("xy").Kind(ZREXE_TOKEN_FIELD, (1 << 16) + 103).String("type");
        EXPECT_EQ(OkAfter(682, &field, WithEmptyPicture, &calls), ok ? "longint 1" : "longint 0");
        EXPECT_EQ(calls, "682(blob 7879; reference 1,103; text type)");
    }
}

TEST(CommandOK, PictureToBlob_EmptyPictureMakesNoCall) {
    std::string calls;
    Machine::Get().host->setOK(true);
    Tokens empty;
    empty.Picture("").Process("v").String("image/png");
    EXPECT_EQ(OkAfter(692, &empty, WithEmptyPicture, &calls), "longint 0");
    EXPECT_EQ(calls, "");
    Tokens full;
    full.Picture("bytes").Process("v").String("image/png");
    EXPECT_EQ(OkAfter(692, &full, WithEmptyPicture, &calls), "longint 1");
    EXPECT_EQ(calls, "692(picture; picture; text image/png)");
}

// Commands done inline ---------------------------------------------------------------------------------------------

namespace {

struct ProgramRow {
    const char* source;
    const char* error;
    const char* name;
    const char* value;
};

template <size_t N>
void Check(const ProgramRow (&rows)[N]) {
    for (const ProgramRow& row : rows) {
        Outcome outcome = RunText(row.source);
        EXPECT_EQ(outcome.error(), row.error) << row.source;
        EXPECT_EQ(outcome[row.name], row.value) << row.source;
    }
}

}  // namespace

TEST(InlineCommands, Values) {
    static const ProgramRow rows[] = {
        {"$r:=Not(True)", "", "$r", "boolean false"},
        {"$r:=Not(1=2)", "", "$r", "boolean true"},
        {"$r:=Char(65)", "", "$r", "text A"},
        {"$r:=Char(65.9)", "", "$r", "text A"},
        {"$r:=Char(65536+66)", "", "$r", "text B"},
        {"$r:=Char(228)", "", "$r", "text \xC3\xA4"},
        {"$r:=Length(Char(0))", "", "$r", "real 1"},
        {"$r:=Character code(\"A\")", "", "$r", "real 65"},
        {"$r:=Character code(\"\xC3\xA4x\")", "", "$r", "real 228"},
        {"$r:=Character code(\"\")", "", "$r", "real 0"},
        {"$r:=True", "", "$r", "boolean true"},
        {"$r:=False", "", "$r", "boolean false"},
        {"BEEP\n$r:=1", "", "$r", "real 1"},
        {"$r:=BLOB size($x)", "-14@1 Unknown Variable \"$x\"", "$r", "missing"},
        {"C_BLOB($x)\nSET BLOB SIZE($x;7)\n$r:=BLOB size($x)", "", "$r", "real 7"},
        {"C_BLOB($x)\n$r:=BLOB size($x)", "", "$r", "real 0"},
        {"NO DEFAULT TABLE\n$r:=1", "", "$r", "real 1"},
    };
    Check(rows);
}

TEST(InlineCommands, SumOfArray) {
    static const ProgramRow rows[] = {
        {"ARRAY REAL($a;3)\n$a{1}:=1.5\n$a{3}:=2\n$r:=Sum($a)", "", "$r", "real 3.5"},
        {"ARRAY LONGINT($a;2)\n$a{1}:=5\n$r:=Sum($a)", "", "$r", "real 5"},
        {"ARRAY INTEGER($a;2)\n$a{2}:=5\n$r:=Sum($a)", "", "$r", "real 5"},
        {"ARRAY TEXT($a;2)\n$r:=Sum($a)", "", "$r", "real 0"},
        {"ARRAY BOOLEAN($a;2)\n$r:=Sum($a)", "", "$r", "real 0"},
        {"$a:=5\n$r:=Sum($a)", "", "$r", "real 0"},
        {"$r:=Sum($missing)", "-5@1 Undefined assignment variable type", "$r",
         "missing"},  // no value, no error of its own
        {"Sum($missing)\n$r:=1", "", "$r", "real 1"},
    };
    Check(rows);
}

TEST(InlineCommands, Trace_OnlyIfEnabled) {
    Program program;
    Tokens none;
    Value result;
    program->Execute4DCommand(none, 157, result);
    EXPECT_FALSE(program->traceRequested);
    program->traceEnabled = true;
    program->Execute4DCommand(none, 157, result);
    EXPECT_TRUE(program->traceRequested);
    program->Execute4DCommand(none, 158, result);
    EXPECT_FALSE(program->traceRequested);
    EXPECT_EQ(result.text(), "nothing");
    EXPECT_EQ(program->lastError, 0);
}

TEST(InlineCommands, CopyArray_CopiesAnyVariable) {
    static const ProgramRow rows[] = {
        {"ARRAY TEXT($a;2)\n$a{2}:=\"x\"\nCOPY ARRAY($a;$b)", "", "$b", "array text [|x]"},
        {"ARRAY TEXT($a;1)\n$b:=5\nCOPY ARRAY($a;$b)", "", "$b", "array text []"},
        {"ARRAY TEXT($a;1)\nCOPY ARRAY($a;b)", "", "b", "array text []"},
        {"$a:=5\nCOPY ARRAY($a;$b)", "", "$b", "real 5"},
        {"COPY ARRAY($missing;$b)", "", "$b", "undefined"},
        {"ARRAY TEXT($a;2)\nCOPY ARRAY($a;$a)", "", "$a", "array text [|]"},
        {"ARRAY TEXT($a;2)\nCOPY ARRAY($a;$b)\n$b{1}:=\"only b\"", "", "$a", "array text [|]"},
    };
    Check(rows);
    EXPECT_EQ(RunFor("ARRAY TEXT($a;1)\nCOPY ARRAY($a;$b)\nCOPY ARRAY($b;$r)"), "array text []");
}

TEST(InlineCommands, InsertAndDelete) {
    static const ProgramRow rows[] = {
        {"ARRAY LONGINT($a;2)\n$a{1}:=1\n$a{2}:=2\nINSERT IN ARRAY($a;1)", "", "$a", "array longint [0|1|2]"},
        {"ARRAY LONGINT($a;2)\n$a{1}:=1\nINSERT IN ARRAY($a;2;3)", "", "$a", "array longint [1|0|0|0|0]"},
        {"ARRAY LONGINT($a;2)\nINSERT IN ARRAY($a;3)", "", "$a", "array longint [0|0]"},
        {"ARRAY LONGINT($a;2)\nINSERT IN ARRAY($a;0)", "", "$a", "array longint [0|0]"},
        {"ARRAY LONGINT($a;2)\nINSERT IN ARRAY($a;1;-1)", "", "$a", "array longint [0|0]"},
        {"ARRAY LONGINT($a;2)\nINSERT IN ARRAY($a;1.9;1.9)", "", "$a", "array longint [0|0|0]"},
        {"$a:=1\nINSERT IN ARRAY($a;1)", "-40@2 Variable is not an array \"a\"", "$a", "real 1"},
        {"INSERT IN ARRAY($missing;1)\n$r:=1", "", "$r", "real 1"},
        {"ARRAY LONGINT($a;3)\n$a{1}:=1\n$a{2}:=2\n$a{3}:=3\nDELETE FROM ARRAY($a;2)", "", "$a", "array longint [1|3]"},
        {"ARRAY LONGINT($a;3)\n$a{1}:=1\nDELETE FROM ARRAY($a;2;9)", "", "$a", "array longint [1]"},
        {"ARRAY LONGINT($a;3)\nDELETE FROM ARRAY($a;0)", "", "$a", "array longint [0|0|0]"},
        {"ARRAY LONGINT($a;3)\nDELETE FROM ARRAY($a;0;2)", "", "$a", "array longint [0|0|0]"},
        {"ARRAY LONGINT($a;3)\nDELETE FROM ARRAY($a;4)", "", "$a", "array longint [0|0|0]"},
        {"$a:=1\nDELETE FROM ARRAY($a;1)", "-40@2 Variable is not an array \"a\"", "$a", "real 1"},
        {"DELETE FROM ARRAY($missing;1)\n$r:=1", "", "$r", "real 1"},
    };
    Check(rows);
}

TEST(InlineCommands, FindSizeAppend) {
    static const ProgramRow rows[] = {
        {"ARRAY TEXT($a;3)\n$a{2}:=\"x\"\n$r:=Find in array($a;\"x\")", "", "$r", "real 2"},
        {"ARRAY TEXT($a;3)\n$a{2}:=\"xyz\"\n$r:=Find in array($a;\"x@\")", "", "$r", "real 2"},
        {"ARRAY LONGINT($a;3)\n$a{1}:=5\n$a{3}:=5\n$r:=Find in array($a;5;2)", "", "$r", "real 3"},
        {"ARRAY LONGINT($a;3)\n$a{1}:=5\n$r:=Find in array($a;5;0)", "", "$r", "real 1"},
        {"ARRAY LONGINT($a;3)\n$a{1}:=5\n$r:=Find in array($a;5;-7)", "", "$r", "real 1"},
        {"ARRAY LONGINT($a;3)\n$r:=Find in array($a;0;4)", "", "$r", "real -1"},
        {"ARRAY LONGINT($a;3)\n$r:=Find in array($a;9)", "", "$r", "real -1"},
        {"$r:=Find in array($missing;1)", "-14@1 Unknown Variable \"$missing\"", "$r", "missing"},
        {"$a:=1\n$r:=Find in array($a;1)", "-13@2 Command \"Find in array\" wrong count of parameters", "$r",
         "missing"},  // evaluated: no variable
        {"ARRAY LONGINT($a;1)\n$r:=Find in array($a;\"x\")",
         "-10@2 Find in array does not work with this type. Variable \"a\".", "$r", "missing"},
        {"ARRAY LONGINT($a;3)\n$r:=Size of array($a)", "", "$r", "real 3"},
        {"$r:=Size of array($missing)", "-14@1 Unknown Variable \"missing\"", "$r", "missing"},
        {"$a:=1\n$r:=Size of array($a)", "-40@2 Variable \"a\" is not an array!", "$r", "missing"},
        {"ARRAY LONGINT($a;1)\nAPPEND TO ARRAY($a;5)", "", "$a", "array longint [0|5]"},
        {"ARRAY TEXT($a;0)\nAPPEND TO ARRAY($a;\"x\"+\"y\")", "", "$a", "array text [xy]"},
        {"ARRAY LONGINT($a;0)\nAPPEND TO ARRAY($a;\"x\")",
         "-10@2 Find in array does not work with this type. Variable \"a\".", "$a", "array longint [0]"},
        {"APPEND TO ARRAY($missing;5)", "-14@1 Unknown Variable \"$missing\"", "$missing", "missing"},
        {"$a:=1\nAPPEND TO ARRAY($a;5)", "-13@2 Command \"APPEND TO ARRAY\" wrong parameter type", "$a", "real 1"},
    };
    for (const ProgramRow& row : rows) {
        Outcome outcome = RunText(row.source);
        // A command that failed leaves nothing to assign; only the words of its own are looked at.
        std::string error = outcome.error();
        EXPECT_EQ(error, row.error) << row.source;
        EXPECT_EQ(outcome[row.name], row.value) << row.source;
    }
}

TEST(InlineCommands, NilPointer) {
    static const ProgramRow rows[] = {
        {"C_POINTER($p)\n$r:=Is nil pointer($p)", "", "$r", "boolean true"},
        {"$p:=->$x\n$r:=Is nil pointer($p)", "", "$r", "boolean false"},
        {"$p:=1\n$r:=Is nil pointer($p)", "-14@2 Variable \"p\" is not a pointer", "$r", "missing"},
        {"Is nil pointer($missing)\n$r:=1", "", "$r", "real 1"},
    };
    Check(rows);
}

TEST(InlineCommands, BlobSize) {
    static const ProgramRow rows[] = {
        {"C_BLOB($b)\nSET BLOB SIZE($b;3)", "", "$b", "blob 000000"},
        {"C_BLOB($b)\nSET BLOB SIZE($b;3.9)", "", "$b", "blob 000000"},
        {"C_BLOB($b)\nSET BLOB SIZE($b;3)\nSET BLOB SIZE($b;0)", "", "$b", "blob"},
        {"C_BLOB($b)\nSET BLOB SIZE($b;3)\nSET BLOB SIZE($b;-1)", "", "$b", "blob 000000"},
        {"C_BLOB($b)\nSET BLOB SIZE($b;3)\nSET BLOB SIZE($b;1)", "", "$b", "blob 00"},
        {"SET BLOB SIZE($missing;1)", "-14@1 Unknown Variable \"missing\"", "$missing", "missing"},
    };
    Check(rows);
}

TEST(Declarations, Arrays) {
    static const struct {
        const char* command;
        const char* made;
    } rows[] = {{"ARRAY STRING", "array text [|]"},         {"ARRAY REAL", "array real [0|0]"},
                {"ARRAY INTEGER", "array integer [0|0]"},   {"ARRAY LONGINT", "array longint [0|0]"},
                {"ARRAY TEXT", "array text [|]"},           {"ARRAY BOOLEAN", "array boolean [false|false]"},
                {"ARRAY DATE", "array date [0-0-0|0-0-0]"}, {"ARRAY PICTURE", "array picture [0 bytes|0 bytes]"},
                {"ARRAY POINTER", "array pointer [ 0| 0]"}};
    for (const auto& row : rows) {
        for (const char* size : {"2", "2.9", "1+1", "0x02"}) {
            EXPECT_EQ(RunFor(std::string(row.command) + "($r;" + size + ")"), row.made) << row.command;
            EXPECT_EQ(RunFor(std::string(row.command) + "(r;" + size + ")", "r"), row.made) << row.command;
            EXPECT_EQ(RunFor(std::string(row.command) + "(<>r;" + size + ")", "<>r"), row.made) << row.command;
        }
        std::string empty = std::string(row.made).substr(0, std::string(row.made).find('[')) + "[]";
        EXPECT_EQ(RunFor(std::string(row.command) + "($r;-5)"), empty) << row.command;
        EXPECT_EQ(RunFor("$r:=5\n" + std::string(row.command) + "($r;2)"), "real 5") << row.command;  // stays
    }
    EXPECT_EQ(RunFor("ARRAY LONGINT($r;3)\n$r{1}:=1\n$r{2}:=2\nARRAY LONGINT($r;2)"), "array longint [1|2]");
    // Of another array kind: it stays, and it is resized all the same, for the length is that of any array.
    EXPECT_EQ(RunFor("ARRAY LONGINT($r;1)\nARRAY TEXT($r;2)"), "array longint [0|0]");
    EXPECT_EQ(RunForError("ARRAY LONGINT(5;2)"), "-13@1 Command \"ARRAY LONGINT\" wrong parameter type");
    EXPECT_EQ(RunForError("ARRAY LONGINT($a)"), "-13@1 Command \"ARRAY LONGINT\" wrong count of parameters");
    EXPECT_EQ(RunForError("ARRAY LONGINT($a;\"2\")"), "-13@1 Command \"ARRAY LONGINT\" wrong parameter type");
    EXPECT_EQ(RunForError("ARRAY LONGINT($a;2;3)"), "-13@1 Command \"ARRAY LONGINT\" wrong count of parameters");
}

TEST(Declarations, Variables) {
    static const struct {
        const char* command;
        const char* made;
    } rows[] = {{"C_LONGINT", "longint 0"},
                {"C_TEXT", "text"},
                {"C_REAL", "real 0"},
                {"C_PICTURE", "picture 0 bytes"},
                {"C_POINTER", "pointer  0"},
                {"C_BOOLEAN", "boolean false"},
                {"C_TIME", "time 0"},
                {"C_DATE", "date 0-0-0"},
                {"C_BLOB", "blob"},
                {"C_OBJECT", "object none"},
                {"C_COLLECTION", "collection none"},
                {"C_INTEGER", "longint 0"},
                {"C_STRING", "text"}};
    for (const auto& row : rows) {
        std::string command = row.command;
        Outcome outcome = RunText(command + "($a;b;<>c)");
        EXPECT_EQ(outcome.error(), "") << command;
        EXPECT_EQ(outcome["$a"], row.made) << command;
        EXPECT_EQ(outcome["b"], row.made) << command;
        EXPECT_EQ(outcome["<>c"], row.made) << command;
        EXPECT_EQ(RunForError(command + "()"), "") << command;
        EXPECT_EQ(RunForError(command), "") << command;
        EXPECT_EQ(RunFor("$r:=\"abc\"\n" + command + "($r)"), "text abc") << command;  // 282 on a text leaves it a text
    }
    EXPECT_EQ(RunText("C_STRING(20;$s)")["$s"], "text");  // the length is passed over
}

TEST(Keywords, AsCommands_GiveTheirParameterOrNothing) {
    for (long number : {30001L, 30007L, 30008L}) {
        EXPECT_EQ(RunCommand(number, "B").result, "boolean true") << number;
        EXPECT_EQ(RunCommand(number, "B").error, "") << number;
    }
}

// Commands with checks of their own --------------------------------------------------------------------------------

TEST(SortArray, ListsOfVariablesWithADirection) {
    static const struct {
        const char* list;  // V variable, < > = the comparison, N number
        bool taken;
    } rows[] = {{"V", true},  {"VV", true}, {"V>", true},  {"V<", true},   {"VVV<", true}, {"V=", false},
                {">", false}, {"N", false}, {"VN", false}, {"V>V", false}, {"V<>", false}, {"VT", false}};
    for (const auto& row : rows) {
        Program program;
        program.Run("ARRAY LONGINT(a;2)");
        Tokens tokens;
        for (const char* sign = row.list; *sign; sign++) {
            if (*sign == 'V') tokens.Process("a");
            else if (*sign == 'N') tokens.Number(1);
            else if (*sign == 'T') tokens.String("x");
            else tokens.Kind(ZREXE_TOKEN_COMPARISON, *sign == '<' ? 5 : *sign == '>' ? 6 : 3);
        }
        Recorder recorder;
        recorder.passOn = false;
        recorder.answer = [](const HostCall&, PA_Variable**, PA_Variable* result) {
            Answer(result, 5.0);
            return true;
        };
        Value result;
        program->Execute4DCommand(tokens, 229, result);
        EXPECT_EQ(Narrow(&program->lastErrorText), row.taken ? "" : "Command \"SORT ARRAY\" wrong parameter type")
            << row.list;
        EXPECT_EQ(recorder.calls.size(), row.taken ? 1u : 0u) << row.list;
        EXPECT_EQ(result.text(), "nothing");
        if (row.taken && std::string(row.list) == "V>") {
            EXPECT_EQ(recorder.text(), "229(array longint of 2; operator 5)");
        }
        if (row.taken && std::string(row.list) == "V<") {
            EXPECT_EQ(recorder.text(), "229(array longint of 2; operator 4)");
        }
    }
    EXPECT_EQ(RunFor("ARRAY LONGINT($r;3)\n$r{1}:=2\n$r{2}:=3\n$r{3}:=1\nSORT ARRAY($r;<)"), "array longint [3|2|1]");
    EXPECT_EQ(RunFor("ARRAY TEXT($r;3)\n$r{1}:=\"b\"\n$r{2}:=\"a\"\n$r{3}:=\"c\"\nSORT ARRAY($r)"),
              "array text [a|b|c]");
}

TEST(Choose, FormsAndWords) {
    static const struct {
        const char* list;
        const char* error;
    } rows[] = {
        {"BNN", ""},
        {"BTT", ""},
        {"NTT", ""},
        {"NT", ""},
        {"NTTTT", ""},
        {"N", "-13 Command \"Choose\" wrong count of parameters"},
        {"", "-13 Command \"Choose\" wrong count of parameters"},
        {"B", "-13 Command \"Choose\" wrong count of parameters"},
        {"TTT", "-10 Invalid type in Parameter 1"},
        {"BT", "-10 Invalid type in Parameter 1"},
        {"DTT", "-10 Invalid type in Parameter 1"},
    };
    for (const auto& row : rows) {
        Ran run = RunCommand(955, row.list);
        EXPECT_EQ(run.error, row.error) << row.list;
        EXPECT_EQ(run.result, row.error[0] ? "nothing" : "number 77") << row.list;
        EXPECT_EQ(run.calls, row.error[0] ? "" : SentCall(955, row.list)) << row.list;
    }
    EXPECT_EQ(RunFor("$r:=Choose(1=1;\"yes\";\"no\")"), "text yes");
    EXPECT_EQ(RunFor("$r:=Choose(1;\"zero\";\"one\")"), "text one");
}

TEST(Alert, SecondFormOnlyAfterAWrongCount) {
    EXPECT_EQ(RunCommand(41, "T").error, "");
    EXPECT_EQ(RunCommand(41, "TT").error, "");
    EXPECT_EQ(RunCommand(41, "N").error, "-13 Command \"ALERT\" wrong parameter type");  // not: wrong count
    EXPECT_EQ(RunCommand(41, "NT").error, "-13 Command \"ALERT\" wrong parameter type");
    EXPECT_EQ(RunCommand(41, "TTT").error, "-13 Command \"ALERT\" wrong count of parameters");
    EXPECT_EQ(RunText("ALERT(\"one\")\nALERT(\"two\";\"OK\")").joined(), "one|two");
}

// Private commands -------------------------------------------------------------------------------------------------

TEST(PrivateCommands, Color) {
    static const ProgramRow rows[] = {
        {"$r:=_Get Color(\"red\")", "", "$r", "real 4294901760"},
        {"$r:=_Get Color(\"RED\")", "", "$r", "real 4294901760"},
        {"$r:=_Get Color(\"red\";0)", "", "$r", "real 16711680"},
        {"$r:=_Get Color(\"red\";1)", "", "$r", "real 4294901760"},
        {"$r:=_Get Color(\"red\";0.5)", "", "$r", "real 2147418112"},
        {"$r:=_Get Color(\"\")", "", "$r", "real 4278190080"},
        {"$r:=_Get Color(\"no such colour\")", "", "$r", "real 4278190080"},
        {"$r:=_Get Color(\"blue\";0)", "", "$r", "real 255"},
        {"$r:=_Get Color(5)", "-13@1 Command \"\" wrong count of parameters", "$r", "missing"},
    };
    Check(rows);
    Text lime("lime"), none("");
    EXPECT_EQ(zrExe_GetColor(lime), 0x00FF00);
    EXPECT_EQ(zrExe_GetColor(none), 0);
    // Whatever the second number is, the answer stays a number.
    for (const char* alpha : {"1000000*1000000*1000000*1000000", "0-(1000000*1000000*1000000*1000000)", "0-5", "7\\0"})
        EXPECT_EQ(RunFor(std::string("$r:=_Get Color(\"red\";") + alpha + ")").substr(0, 5), "real ") << alpha;
}

namespace {

struct Seen {
    ZR_ExecutionContext* context = nullptr;
    long id = 0, parameters = -1;
    int calls = 0;
};

void See(ZR_ExecutionContext* context, long id, ZR_Handle* parameters, ZR_Executer_Token* result, void* data) {
    Seen* seen = static_cast<Seen*>(data);
    seen->context = context;
    seen->id = id;
    seen->parameters = parameters ? parameters->count : -1;
    seen->calls++;
    if (id == 40002) {
        Text text("fitted");
        result->GetText()->AddText(text);
    } else if (result && result->kind == ZREXE_TOKEN_NUMBER) {
        result->SetNumber(99);
    }
}

}  // namespace

TEST(PrivateCommands, Callback_GivenIdListResultAndData) {
    static const struct {
        long id;
        const char* list;
        const char* without;
        const char* with;
    } rows[] = {{40002, "T", "text ", "text fitted"},
                {40003, "", "number 0", "number 99"},
                {40004, "T", "number 0", "number 99"},
                {40005, "NVVV", "number 0", "number 99"},
                {40010, "T", "nothing", "nothing"}};
    for (const auto& row : rows)
        for (bool installed : {false, true}) {
            Program program;
            Seen seen;
            if (installed) {
                program->callback = See;
                program->callbackData = &seen;
            }
            Tokens tokens;
            for (const char* sign = row.list; *sign; sign++) Add(&tokens, *sign);
            Value result;
            program->Execute4DCommand(tokens, row.id, result);
            EXPECT_EQ(Narrow(&program->lastErrorText), "") << row.id;
            EXPECT_EQ(result.text(), installed ? row.with : row.without) << row.id;
            EXPECT_EQ(seen.calls, installed ? 1 : 0) << row.id;
            if (!installed) continue;
            EXPECT_EQ(seen.context, static_cast<ZR_ExecutionContext*>(program));
            EXPECT_EQ(seen.id, row.id);
            EXPECT_EQ(seen.parameters, static_cast<long>(strlen(row.list)));
        }
}

TEST(PrivateCommands, HostVariables) {
    zrhost::Host& host = *Machine::Get().host;
    host.setVariable(u"vHost", zrhost::Value(u"there"));
    static const ProgramRow rows[] = {
        {"$p:=_Get 4D Variable Pointer(\"vHost\")", "", "$p", "pointer vHost -3"},
        {"$p:=_Get 4D Variable Pointer(\"vNowhere\")", "-14@1 Unknown 4D-Variable \"vNowhere\"", "$p", "missing"},
        {"_GET 4D VARIABLE(\"vHost\")", "", "vHost", "text there"},
        {"_GET 4D VARIABLE(\"vNowhere\")", "-14@1 Unknown 4D-Variable \"vNowhere\"", "vNowhere", "missing"},
        {"_SET 4D VARIABLE(\"vNowhere\")", "-14@1 Unknown 4D-Variable \"vNowhere\"", "vNowhere", "missing"},
        {"vNew:=2.5\n_SET 4D VARIABLE(\"vNew\")", "", "vNew", "real 2.5"},
    };
    Check(rows);
    EXPECT_EQ(host.variable(u"vNew").number(), 2.5);
    Value token;
    Text known("vHost"), unknown("vNowhere");
    EXPECT_TRUE(zrExe_GetVariablePointer(known, token));
    EXPECT_EQ(token.text(), "pointer vHost -3");
    Value other;
    EXPECT_FALSE(zrExe_GetVariablePointer(unknown, other));
    EXPECT_EQ(other.text(), "nothing");
}

TEST(PrivateCommands, HTMLEncode) {
    EXPECT_EQ(RunFor("$r:=_HTML Encode(\"a<b>&c\")"), "text a&lt;b&gt;&amp;c");
    EXPECT_EQ(RunFor("$r:=_HTML Encode(\"\")"), "text");
    EXPECT_EQ(RunFor("$s:=\"<\"\n$r:=_HTML Encode($s)+$s"), "text &lt;<");
}

// Forwarded commands, before the real host -------------------------------------------------------------------------

TEST(ForwardedCommands, DoTheHostsWork) {
    static const std::vector<std::pair<const char*, const char*>> rows = {
        {"Int(2.7)", "real 2"},
        {"Dec(2.75)", "real 0.75"},
        {"String(5)", "text 5"},
        {"String(1=1)", "text True"},
        {"Num(\"12\")", "real 12"},
        {"Substring(\"abcdef\";2;3)", "text bcd"},
        {"Substring(\"abcdef\";4)", "text def"},
        {"Uppercase(\"abc\")", "text ABC"},
        {"Lowercase(\"ABC\")", "text abc"},
        {"Position(\"c\";\"abc\")", "real 3"},
        {"Length(\"abc\")", "real 3"},
        {"Length(\"\")", "real 0"},
        {"Day of(!2001-02-03!)", "real 3"},
        {"Month of(!2001-02-03!)", "real 2"},
        {"Year of(!2001-02-03!)", "real 2001"},
        {"Round(2.55;1)", "real 2.6"},
        {"Trunc(2.59;1)", "real 2.5"},
        {"Mod(7;3)", "real 1"},
        {"Abs(-5)", "real 5"},  // a sign without a left side starts from 0
        {"Abs(0-5)", "real 5"},
        {"Insert string(\"abc\";\"X\";2)", "text aXbc"},
        {"Delete string(\"abcd\";2;2)", "text ad"},
        {"Replace string(\"abca\";\"a\";\"x\")", "text xbcx"},
        {"Change string(\"abcd\";\"XY\";2)", "text aXYd"},
        {"Add to date(!2001-01-31!;0;0;1)", "date 2001-2-1"},
    };
    for (const auto& [expression, value] : rows)
        EXPECT_EQ(RunFor(std::string("$r:=") + expression), value) << expression;
}
