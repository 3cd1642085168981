#include "tests/runtime/FieldHost.h"
#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

std::string Failure(ZR_ExecutionContext* context) {
    if (!context->lastError) return "";
    return std::to_string(context->lastError) + " " + Narrow(&context->lastErrorText);
}

constexpr long kCommand = 483;  // any number: the recorder answers it

}  // namespace

// Parameters -------------------------------------------------------------------------------------------------------

TEST(GenericParameters, EveryTokenKind) {
    static const struct {
        const char* label;
        void (*fill)(Tokens* tokens);
        const char* sent;  // null = the value does not matter
        bool ok;
    } rows[] = {
        {"local", [](Tokens* t) { t->Local("l"); }, "text local", true},
        {"process", [](Tokens* t) { t->Process("p"); }, "longint 7", true},
        {"interprocess", [](Tokens* t) { t->Interprocess("i"); }, "real 2.5", true},
        {"array", [](Tokens* t) { t->Process("a"); }, "array longint of 2", true},
        {"object variable", [](Tokens* t) { t->Process("o"); }, "object", true},
        {"number", [](Tokens* t) { t->Number(2.5); }, "real 2.5", true},
        {"+", [](Tokens* t) { t->Formula('+'); }, "operator 0", true},
        {"-", [](Tokens* t) { t->Formula('-'); }, "operator 1", true},
        {"/", [](Tokens* t) { t->Formula('/'); }, "operator 2", true},
        {"*", [](Tokens* t) { t->Formula('*'); }, "operator 3", true},
        {"%", [](Tokens* t) { t->Formula('%'); }, nullptr, false},
        {"\\", [](Tokens* t) { t->Formula('\\'); }, nullptr, false},
        {"^", [](Tokens* t) { t->Formula('^'); }, nullptr, false},
        {"text", [](Tokens* t) { t->String("abc"); }, "text abc", true},
        {"empty text", [](Tokens* t) { t->String(""); }, "text ", true},
        {"date", [](Tokens* t) { t->Date(3, 2, 2001); }, "date 2001-2-3", true},
        {"time", [](Tokens* t) { t->Time(90); }, "time 90", true},
        {"true", [](Tokens* t) { t->Boolean(true); }, "boolean true", true},
        {"false", [](Tokens* t) { t->Boolean(false); }, "boolean false", true},
        {"<=", [](Tokens* t) { t->Kind(19, 1); }, "operator 11", true},
        {">=", [](Tokens* t) { t->Kind(19, 2); }, "operator 12", true},
        {"=", [](Tokens* t) { t->Kind(19, 3); }, "operator 6", true},
        {"#", [](Tokens* t) { t->Kind(19, 4); }, "operator 7", true},
        {"<", [](Tokens* t) { t->Kind(19, 5); }, "operator 4", true},
        {">", [](Tokens* t) { t->Kind(19, 6); }, "operator 5", true},
        {"comparison 0", [](Tokens* t) { t->Kind(19, 0); }, nullptr, false},
        {"comparison 7", [](Tokens* t) { t->Kind(19, 7); }, nullptr, false},
        {"&", [](Tokens* t) { t->Kind(20, 1); }, "operator 8", true},
        {"|", [](Tokens* t) { t->Kind(20, 2); }, "operator 9", true},
        {"logic 0", [](Tokens* t) { t->Kind(20, 0); }, nullptr, false},
        {"logic 3", [](Tokens* t) { t->Kind(20, 3); }, nullptr, false},
        {"table", [](Tokens* t) { t->Kind(21, 1); }, "reference 1,0", true},
        {"invalid table", [](Tokens* t) { t->Kind(21, 2); }, "reference 2,0", false},
        {"field", [](Tokens* t) { t->Kind(22, (1 << 16) + 5); }, "reference 1,5", true},
        {"invalid field", [](Tokens* t) { t->Kind(22, (2 << 16) + 5); }, "reference 2,5", false},
        {"pointer to a table", [](Tokens* t) { t->Named(23, "", 1); }, "pointer word1 0 word2 1", true},
        {"pointer to an invalid table", [](Tokens* t) { t->Named(23, "", 2); }, "pointer word1 0 word2 2", false},
        {"nil pointer", [](Tokens* t) { t->Named(23, "", 0); }, "pointer word1 0 word2 0", false},
        // Required: the low half goes where the table stands and the high half where the field stands.
        {"pointer to a field, halves", [](Tokens* t) { t->Named(23, "", (5 << 16) + 1); }, "pointer word1 5 word2 1",
         true},
        {"pointer to a field", [](Tokens* t) { t->Named(23, "", (1 << 16) + 5); }, "pointer word1 1 word2 5", false},
        {"longint", [](Tokens* t) { t->Longint((5L << 32) + 9); }, "longint 9", true},
        {"blob", [](Tokens* t) { t->Blob("xy"); }, "blob 7879", true},
        {"empty blob", [](Tokens* t) { t->Blob(""); }, "blob ", true},
        {"picture", [](Tokens* t) { t->Picture("abc"); }, "picture", true},
        {"object",
         [](Tokens* t) {
             t->Kind(34);
             t->at(1)->SetObjectRefNoIncrement(PA_CreateObject());
         },
         "undefined", false},
        {"collection",
         [](Tokens* t) {
             t->Kind(35);
             t->at(1)->SetCollectionRefNoIncrement(PA_CreateCollection());
         },
         "undefined", false},
        {"null", [](Tokens* t) { t->Kind(38); }, "undefined", false},
        {"nothing", [](Tokens* t) { t->Kind(999); }, "undefined", false},
        {"command", [](Tokens* t) { t->Kind(12, 5); }, "undefined", false},
        {"method", [](Tokens* t) { t->Named(28, "m"); }, "undefined", false},
    };
    for (const auto& row : rows) {
        Program program;
        ASSERT_EQ(program.Run("$l:=\"local\"\nC_LONGINT(p)\np:=7\n<>i:=2.5\nARRAY LONGINT(a;2)\nC_OBJECT(o)").error(),
                  "");
        Tokens tokens;
        row.fill(&tokens);
        FieldHost host;
        host.recorder.passOn = false;
        host.recorder.answer = [](const HostCall&, PA_Variable**, PA_Variable* result) {
            Answer(result, "answer");
            return true;
        };
        Value result;
        bool isObjectVariable = std::string(row.label) == "object variable";
        bool ok = program->ExecuteGenericCommand(kCommand, nullptr, tokens, result);
        EXPECT_EQ(ok, row.ok && !isObjectVariable) << row.label;
        ASSERT_EQ(host.recorder.calls.size(), 1u) << row.label;  // the host is called all the same
        if (row.sent) { EXPECT_EQ(host.recorder.calls[0].parameters[0], row.sent) << row.label; }
        EXPECT_EQ(result.text(), ok ? "text answer" : "nothing") << row.label;
        EXPECT_EQ(Failure(program), isObjectVariable ? "-37 The Variable \"o\" could not set. Wrong type." : "")
            << row.label;
    }
}

TEST(GenericParameters, RunningOk_SetAgainByAValidTableOrField) {
    static const struct {
        void (*fill)(Tokens* tokens);
        bool ok;
    } rows[] = {
        {[](Tokens* t) { t->Kind(34).Number(1); }, false},      {[](Tokens* t) { t->Kind(34).Kind(21, 1); }, true},
        {[](Tokens* t) { t->Kind(34).Kind(22, 65537); }, true}, {[](Tokens* t) { t->Kind(34).Named(23, "", 1); }, true},
        {[](Tokens* t) { t->Kind(21, 1).Kind(34); }, false},    {[](Tokens* t) { t->Kind(21, 1).Kind(21, 2); }, false},
        {[](Tokens* t) { t->Kind(21, 2).Kind(21, 1); }, true},  {[](Tokens* t) { t->Kind(21, 2).String("a"); }, false},
    };
    for (size_t i = 0; i < std::size(rows); i++) {
        Program program;
        Tokens tokens;
        rows[i].fill(&tokens);
        FieldHost host;
        host.recorder.passOn = false;
        EXPECT_EQ(program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr), rows[i].ok) << i;
        EXPECT_EQ(host.recorder.calls.size(), 1u) << i;
    }
}

TEST(GenericParameters, Errors_DoNotStopTheCall) {
    static const struct {
        void (*fill)(Tokens* tokens);
        const char* sent;
        const char* error;
    } rows[] = {
        {[](Tokens* t) { t->Process("gone").Number(1); }, "483(undefined; real 1)",
         "-14 Unknown Variable \"gone\"Unknown Variable \"gone\""},
        {[](Tokens* t) { t->Local("gone"); }, "483(undefined)",
         "-14 Unknown Variable \"$gone\"Unknown Variable \"$gone\""},
        {[](Tokens* t) { t->Named(23, "v", -1).Number(1); }, "483(undefined; real 1)",
         "-14 Pointer to variables not supported: \"v\""},
        {[](Tokens* t) { t->Named(23, "w", -1).Number(1); }, "483(undefined; real 1)", "-14 Unknown Pointer \"w\""},
        {[](Tokens* t) { t->Named(23, "v", -3); }, "483(undefined)", "-14 Unknown Pointer \"v\""},
        {[](Tokens* t) { t->Named(23, "l", 77); }, "483(undefined)", "-14 Unknown Pointer \"l\""},
    };
    for (const auto& row : rows) {
        Program program;
        program.Run("v:=1");
        Tokens tokens;
        row.fill(&tokens);
        Recorder recorder;
        recorder.passOn = false;
        program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr);
        EXPECT_EQ(recorder.text(), row.sent);
        // A variable that is missing is missing for the way back as well.
        EXPECT_EQ(Failure(program), row.error) << row.sent;
    }
}

TEST(GenericParameters, Count_LowSixteenBits) {
    for (long count : {0L, 1L, 65536L, 65537L, 65538L}) {
        Program program;
        Tokens tokens;
        for (long i = 0; i < count; i++) tokens.Number(static_cast<double>(i));
        Recorder recorder;
        recorder.passOn = false;
        EXPECT_TRUE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr));
        ASSERT_EQ(recorder.calls.size(), 1u) << count;
        EXPECT_EQ(static_cast<long>(recorder.calls[0].parameters.size()), count & 0xFFFF) << count;
    }
}

TEST(GenericParameters, CountNegativeInSixteenBits_RefusedWithoutACall) {
    for (long count : {32768L, 40000L, 65535L}) {
        Program program;
        Tokens tokens;
        for (long i = 0; i < count; i++) tokens.Number(1);
        Recorder recorder;
        recorder.passOn = false;
        EXPECT_FALSE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr)) << count;
        EXPECT_TRUE(recorder.calls.empty()) << count;
    }
}

// Results and the way back -----------------------------------------------------------------------------------------

TEST(GenericResult, AnswerBecomesTheToken) {
    static const struct {
        void (*answer)(PA_Variable* result);
        const char* token;
    } rows[] = {
        {[](PA_Variable* r) { Answer(r, 2.5); }, "number 2.5"},
        {[](PA_Variable* r) { Answer(r, "abc"); }, "text abc"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Longint);
             PA_SetLongintVariable(r, 7);
         },
         "number 7"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Integer);
             PA_SetLongintVariable(r, 7);
         },
         "number 0"},  // kept so
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Boolean);
             PA_SetBooleanVariable(r, true);
         },
         "boolean true"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Time);
             PA_SetTimeVariable(r, 90);
         },
         "time 90"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Date);
             PA_SetDateVariable(r, 3, 2, 2001);
         },
         "date 2001-2-3"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Blob);
             PA_SetBlobVariable(r, "xy", 2);
         },
         "blob 7879"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Object);
             PA_SetObjectVariable(r, PA_CreateObject());
         },
         "object {}"},
        {[](PA_Variable* r) {
             *r = PA_CreateVariable(eVK_Collection);
             PA_SetCollectionVariable(r, PA_CreateCollection());
         },
         "collection []"},
        {[](PA_Variable* r) { *r = PA_CreateVariable(eVK_Null); }, "null"},
        {[](PA_Variable* r) { *r = PA_CreateVariable(eVK_Undefined); }, "nothing"},
        {[](PA_Variable* r) { *r = PA_CreateVariable(eVK_ArrayText); }, "nothing"},
    };
    for (const auto& row : rows)
        for (int parameters = 0; parameters < 2; parameters++) {
            Program program;
            Tokens tokens;
            if (parameters) tokens.Number(1);
            auto answer = row.answer;
            std::string token;
            {
                Recorder recorder;
                recorder.answer = [answer](const HostCall& call, PA_Variable**, PA_Variable* result) {
                    if (call.command != kCommand) return false;
                    answer(result);
                    return true;
                };
                Value result;
                EXPECT_TRUE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, result));
                token = result.text();
                EXPECT_TRUE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr));  // cleared unread
            }
            EXPECT_EQ(token, row.token);
        }
}

TEST(GenericResult, ReplacesWhatTheTokenHeld) {
    Program program;
    Tokens none, result;
    result.String("old");
    Recorder recorder;
    recorder.answer = [](const HostCall&, PA_Variable**, PA_Variable* answer) {
        Answer(answer, 5.0);
        return true;
    };
    program->ExecuteGenericCommand(kCommand, nullptr, none, result.at(1));
    EXPECT_EQ(Describe(result.at(1)), "number 5");
}

TEST(WriteBack, RawVariables_AreInOut) {
    Program program;
    program.Run("C_LONGINT(n)\nn:=1\nt:=\"a\"\nARRAY TEXT(at;1)\nkept:=5");
    Tokens tokens;
    tokens.Process("n").Process("t").Number(9).Process("at").Process("kept");
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable** parameters, PA_Variable*) {
        if (call.command != kCommand) return false;
        PA_SetLongintVariable(parameters[0], 42);
        PA_SetStringVariable(parameters[1], PA_CreateUnistring(Units(u"changed")));
        PA_SetRealVariable(parameters[2], 77);
        PA_ResizeArray(parameters[3], 3);
        return true;
    };
    EXPECT_TRUE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr));
    EXPECT_EQ(recorder.last("483"), "483(longint 1; text a; real 9; array text of 1; real 5)");
    Outcome outcome = program.Collect();
    EXPECT_EQ(outcome["n"], "longint 42");
    EXPECT_EQ(outcome["t"], "text changed");
    EXPECT_EQ(outcome["at"], "array text [||]");
    EXPECT_EQ(outcome["kept"], "real 5");
    EXPECT_EQ(Describe(tokens.at(3)), "number 9");  // a value is no variable
}

TEST(WriteBack, WrongKind_EndsTheWayBack) {
    Program program;
    program.Run("a:=1\nb:=2\nc:=3");
    Tokens tokens;
    tokens.Process("a").Process("b").Process("c");
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable** parameters, PA_Variable* result) {
        if (call.command != kCommand) return false;
        PA_SetRealVariable(parameters[0], 10);
        PA_ClearVariable(parameters[1]);
        *parameters[1] = PA_CreateVariable(eVK_Text);
        PA_SetRealVariable(parameters[2], 30);
        Answer(result, 5.0);
        return true;
    };
    Value result;
    EXPECT_FALSE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, result));
    EXPECT_EQ(Failure(program), "-37 The Variable \"b\" could not set. Wrong type.");
    Outcome outcome = program.Collect();
    EXPECT_EQ(outcome["a"], "real 10");
    EXPECT_EQ(outcome["b"], "real 2");
    EXPECT_EQ(outcome["c"], "real 3");
    EXPECT_EQ(result.text(), "nothing");
}

TEST(WriteBack, ObjectsCollectionsAndPointers_RunButDoNotComeBack) {
    for (const char* make :
         {"v:=New object", "v:=New collection", "v:=->x", "ARRAY PICTURE(v;1)", "ARRAY POINTER(v;1)", "C_OBJECT(v)"}) {
        Program program;
        program.Run(make);
        Tokens tokens;
        tokens.Process("v");
        Recorder recorder;
        recorder.passOn = false;
        EXPECT_FALSE(program->ExecuteGenericCommand(kCommand, nullptr, tokens, nullptr)) << make;
        EXPECT_EQ(recorder.calls.size(), 1u) << make;
        EXPECT_EQ(Failure(program), "-37 The Variable \"v\" could not set. Wrong type.") << make;
    }
}

// Queries ----------------------------------------------------------------------------------------------------------

TEST(Queries, PartialOnes_KeepTheirTexts) {
    static const struct {
        long id;
        bool star;
        const char* method;
        long kept;
    } rows[] = {{277, true, nullptr, 2},  {341, true, nullptr, 2}, {277, false, nullptr, 0},
                {341, false, nullptr, 0}, {278, true, nullptr, 0}, {0, true, "m", 0}};
    for (const auto& row : rows) {
        Program program;
        Tokens tokens;
        tokens.String("one").Number(2).String("three");
        if (row.star) tokens.Formula('*');
        Recorder recorder;
        recorder.passOn = false;
        Text method(row.method ? row.method : "");
        program->ExecuteGenericCommand(row.id, row.method ? static_cast<ZR_Text*>(method) : nullptr, tokens, nullptr);
        EXPECT_EQ(program->queryTexts.count, row.kept) << row.id;
        program->ExecuteGenericCommand(row.id, row.method ? static_cast<ZR_Text*>(method) : nullptr, tokens, nullptr);
        EXPECT_EQ(program->queryTexts.count, row.kept * 2) << row.id;  // only grows
        if (row.kept) {
            EXPECT_EQ(Narrow(program->queryTexts.GetTextPtr(1)), "one");
            EXPECT_EQ(Narrow(program->queryTexts.GetTextPtr(2)), "three");
        }
        ASSERT_EQ(recorder.calls.size(), 2u);
        EXPECT_EQ(recorder.calls[1].parameters[2], "text three");
    }
    // The star must be the last one, and a *.
    Program program;
    Tokens first, other;
    first.Formula('*').String("a");
    other.String("a").Formula('+');
    Recorder recorder;
    recorder.passOn = false;
    program->ExecuteGenericCommand(277, nullptr, first, nullptr);
    program->ExecuteGenericCommand(277, nullptr, other, nullptr);
    EXPECT_EQ(program->queryTexts.count, 0);
}

// Methods of the host ----------------------------------------------------------------------------------------------

TEST(HostMethod, ParametersByValue) {
    Program program;
    program.Run("v:=1");
    Text name("Some method");
    Tokens tokens, none;
    tokens.Process("v").String("x");
    Recorder recorder;
    recorder.answer = [](const HostCall& call, PA_Variable** parameters, PA_Variable* result) {
        if (!call.parameters.empty()) PA_SetRealVariable(parameters[0], 99);
        Answer(result, "done");
        return true;
    };
    Value result, second;
    EXPECT_TRUE(program->ExecuteGenericCommand(0, name, tokens, result));
    EXPECT_EQ(recorder.text(), "Some method(real 1; text x)");
    EXPECT_EQ(result.text(), "text done");
    EXPECT_EQ(program.Collect()["v"], "real 1");  // nothing comes back
    EXPECT_TRUE(program->ExecuteGenericCommand(0, name, none, second));
    EXPECT_EQ(recorder.calls.back().text(), "Some method()");
    EXPECT_EQ(second.text(), "text done");
    EXPECT_EQ(recorder.selectors[ZR_SEL_ExecuteCommand], 0);
}

// Member functions -------------------------------------------------------------------------------------------------

namespace {

class ObjectToken : public Tokens {
  public:
    ObjectToken() {
        Kind(ZREXE_TOKEN_OBJECT);
        at(1)->SetObjectRefNoIncrement(PA_CreateObject());
    }
};

}  // namespace

TEST(MemberFunctions, EveryTokenKind) {
    static const struct {
        const char* label;
        void (*fill)(Tokens* tokens);
        const char* sent;
        bool ok;
    } rows[] = {
        {"number", [](Tokens* t) { t->Number(2.5); }, "real 2.5", true},
        {"text", [](Tokens* t) { t->String("abc"); }, "text abc", true},
        {"date", [](Tokens* t) { t->Date(3, 2, 2001); }, "date 2001-2-3", true},
        {"time", [](Tokens* t) { t->Time(90); }, "time 90", true},
        {"boolean", [](Tokens* t) { t->Boolean(true); }, "boolean true", true},
        {"longint", [](Tokens* t) { t->Longint(7); }, "longint 7", true},
        {"variable", [](Tokens* t) { t->Process("v"); }, "undefined", false},
        {"operator", [](Tokens* t) { t->Formula('*'); }, "undefined", false},
        {"comparison", [](Tokens* t) { t->Kind(19, 3); }, "undefined", false},
        {"table", [](Tokens* t) { t->Kind(21, 1); }, "undefined", false},
        {"pointer", [](Tokens* t) { t->Named(23, "v", -1); }, "undefined", false},
        {"blob", [](Tokens* t) { t->Blob("xy"); }, "undefined", false},
        {"object", [](Tokens* t) { t->Kind(34); }, "undefined", false},
        {"collection", [](Tokens* t) { t->Kind(35); }, "undefined", false},
        {"null", [](Tokens* t) { t->Kind(38); }, "undefined", false},
    };
    for (const auto& row : rows) {
        Program program;
        ObjectToken object;
        Tokens tokens;
        row.fill(&tokens);
        Text name("member");
        Recorder recorder;
        recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
            if (call.name != ".member") return false;
            Answer(result, 5.0);
            return true;
        };
        EXPECT_EQ(program->ExecuteGenericObjectMemberFunction(name, tokens, object.at(1)), row.ok) << row.label;
        EXPECT_EQ(recorder.last(".member"), std::string(".member(") + row.sent + ")")
            << row.label;  // has run in any case
        EXPECT_EQ(Describe(object.at(1)), row.ok ? "number 5" : "object {}") << row.label;
        EXPECT_EQ(program->lastError, 0) << row.label;
    }
}

TEST(MemberFunctions, NullObject_DoesNothing) {
    Program program;
    Tokens object, tokens;
    object.Kind(ZREXE_TOKEN_OBJECT);
    tokens.Number(1);
    Text name("member");
    Recorder recorder;
    EXPECT_TRUE(program->ExecuteGenericObjectMemberFunction(name, tokens, object.at(1)));
    EXPECT_TRUE(recorder.calls.empty());
    EXPECT_EQ(Describe(object.at(1)), "object none");
}

// Lines of code ----------------------------------------------------------------------------------------------------

TEST(ExecuteCode, OneCallPerLine) {
    static const struct {
        const char* code;
        const char* calls;
    } rows[] = {
        {"", ""},
        {"one", "one()"},
        {"one\r\ntwo", "one() two()"},
        {"one\rtwo\n", "one() two()"},
        {"\n\n\none\n\n\r\rtwo\r\n\r\n", "one() two()"},
        {"\r\n", ""},
        {" a b ", " a b ()"},
        {"a\tb", "a\tb()"},
    };
    for (const auto& row : rows) {
        Recorder recorder;
        recorder.passOn = false;
        Text code(row.code);
        ZR_ExecuteCode(code);
        EXPECT_EQ(recorder.text(), row.calls) << row.code;
    }
    Recorder recorder;
    recorder.passOn = false;
    Text longLine(std::string(5000, 'x') + "\n" + std::string(70000, 'y'));
    ZR_ExecuteCode(longLine);
    ASSERT_EQ(recorder.calls.size(), 2u);
    EXPECT_EQ(recorder.calls[1].name.size(), 70000u);
}
