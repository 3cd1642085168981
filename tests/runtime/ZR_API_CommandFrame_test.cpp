#include <set>

#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

std::string Failure(ZR_ExecutionContext* context) {
    if (!context->lastError) return "";
    return std::to_string(context->lastError) + " " + Narrow(&context->lastErrorText);
}

std::string Joined(Tokens& tokens) {
    std::string all;
    for (long i = 1; i <= tokens.count(); i++) all += (i > 1 ? " | " : "") + Describe(tokens.at(i));
    return all;
}

}  // namespace

// The check of a form ----------------------------------------------------------------------------------------------

TEST(CheckParam, ExpectedKinds_EveryReading) {
    for (short expected : {0, 2, 6, 10, 16, 17, 18, 19, 22, 23, 27, 29, 30, 31, 34}) {
        for (int kind = 1; kind <= 40; kind++) {
            if (kind == 27) continue;  // in no list
            Program program;
            Tokens tokens;
            tokens.Kind(kind);
            bool accepts = expected == 0 || expected == kind || (expected == 27 && kind >= 2 && kind <= 4) ||
                           (expected == 29 && kind == 6);
            bool wrongCount = true, wrongType = true;
            short list[] = {expected};
            EXPECT_EQ(program->Execute4DCommandCheckParam(tokens, list, 1, &wrongCount, &wrongType), accepts)
                << expected << " " << kind;
            EXPECT_FALSE(wrongCount);
            EXPECT_EQ(wrongType, !accepts) << expected << " " << kind;
        }
    }
}

TEST(CheckParam, CountAndFlags) {
    Program program;
    Tokens two, none;
    two.Number(1).String("a");
    short expected[] = {6, 10, 6}, other[] = {6, 6};
    bool wrongCount = false, wrongType = true;
    EXPECT_FALSE(program->Execute4DCommandCheckParam(two, expected, 1, &wrongCount, &wrongType));
    EXPECT_TRUE(wrongCount);
    EXPECT_FALSE(wrongType);
    EXPECT_FALSE(program->Execute4DCommandCheckParam(two, expected, 3, &wrongCount, &wrongType));
    EXPECT_TRUE(wrongCount);
    EXPECT_TRUE(program->Execute4DCommandCheckParam(two, expected, 2, &wrongCount, &wrongType));
    EXPECT_FALSE(wrongCount || wrongType);
    EXPECT_FALSE(program->Execute4DCommandCheckParam(two, other, 2, &wrongCount, &wrongType));
    EXPECT_FALSE(wrongCount);
    EXPECT_TRUE(wrongType);
    EXPECT_TRUE(program->Execute4DCommandCheckParam(none, nullptr, 0, &wrongCount, &wrongType));
    EXPECT_FALSE(wrongCount || wrongType);
    EXPECT_FALSE(program->Execute4DCommandCheckParam(two, nullptr, 0, &wrongCount, &wrongType));
    EXPECT_TRUE(wrongCount);
    program->probeMode = true;
    EXPECT_FALSE(program->probeSupported);
    EXPECT_FALSE(program->Execute4DCommandCheckParam(nullptr, expected, 2, &wrongCount, &wrongType));
    EXPECT_TRUE(program->probeSupported);
}

// Parameters -------------------------------------------------------------------------------------------------------

TEST(DoExecuteParameters, EveryCommandByItsRow) {
    std::set<long> nothing = {1,   2,   3,   4,   26,  27,  28,  36,  42,  47,  48,  49,  66,  68,  226,
                              229, 260, 262, 274, 315, 339, 340, 349, 365, 493, 644, 718, 899, 1050},
                   allButFirst = {218, 219, 220, 221, 222, 223, 224, 227, 228, 279, 280, 606, 30004},
                   allButSecond = {678, 682, 692};
    Tokens plain, comparing;
    plain.Kind(ZREXE_TOKEN_FIELD, 65537);
    comparing.Kind(ZREXE_TOKEN_FIELD, 65537).Kind(ZREXE_TOKEN_COMPARISON, 3).Number(1);
    std::vector<long> ids = {0, -1, 30001, 30004, 30005, 30012, 40001, 40010};
    for (long id = 1; id <= 2000; id++) ids.push_back(id);
    for (long id : ids)
        for (long index = 1; index <= 6; index++)
            for (bool compares : {false, true}) {
                bool expected = !nothing.count(id) && !(allButFirst.count(id) && index == 1) &&
                                !(id == 15 && index == 4) && !(allButSecond.count(id) && index == 2) &&
                                !(id == 533 && index != 1) && !((id == 277 || id == 341) && !compares);
                EXPECT_EQ(zrExe_GetDoExecuteParameters(id, index, compares ? comparing : plain), expected)
                    << id << " " << index << compares;
            }
}

TEST(ExecuteParameters, EachBecomesOneToken) {
    static const struct {
        long id;
        const char* source;
        const char* list;
    } rows[] = {
        {0, "1+2;\"a\"+\"b\";1=1", "number 3 | text ab | boolean true"},
        {0, "5", "number 5"},
        {0, "", ""},
        {0, ";1", ""},  // an empty parameter drops all that follow it
        {0, "1;;2", "number 1"},
        {0, "1;", "number 1"},
        {0, "1;2;", "number 1 | number 2"},
        {0, ";", ""},
        {0, "$n", "number 7"},
        {0, "$n+1;$t", "number 8 | text x"},
        {0, "$p", "variable $p"},  // a pointer variable has no value: it goes through as it stands
        {0, "*", "kind 9"},
        {0, "->", "kind 26"},
        {10, "$n;\"x\"", "number 7 | text x"},
        {226, "$n;$t", "variable $n | variable $t"},
        {226, "$n+1;$t", "variable $n | kind 9 | number 1 | variable $t"},  // several tokens of a raw parameter
        {226, "$missing;5", "variable $missing | number 5"},
        {221, "$n;$n", "variable $n | number 7"},
        {221, "$missing;1+1", "variable $missing | number 2"},
        {15, "\"a\";\"b\";1;$n;$n", "text a | text b | number 1 | variable $n | number 7"},
        {682, "$n;$n;$n", "number 7 | variable $n | number 7"},
        {533, "$n;$n;$n", "number 7 | variable $n | variable $n"},
        {30004, "$n;$n;$n;$n", "variable $n | number 7 | number 7 | number 7"},
        {283, "$new;new;$n", "variable $new | variable new | variable $n"},  // declared, and handed over
        {277, "$n;$t", "variable $n | variable $t"},
        {277, "$n=1+2", "variable $n | kind 19 | number 3"},
        {277, "$n=$t", "variable $n | kind 19 | text x"},
        {341, "$n;$t#\"a\"*2", "variable $n | variable $t | kind 19 | text aa"},
    };
    for (const auto& row : rows) {
        Program program;
        program.Run("$n:=7\n$t:=\"x\"\nC_POINTER($p)");
        Tokens tokens;
        tokens.Source(row.source);
        program->ExecuteParameters(tokens, row.id);
        EXPECT_EQ(Failure(program), "") << row.id << " " << row.source;
        EXPECT_EQ(Joined(tokens), row.list) << row.id << " " << row.source;
    }
}

TEST(ExecuteParameters, TablesAndFields_GoThroughAsTheyStand) {
    Program program;
    Tokens tokens;
    tokens.Kind(ZREXE_TOKEN_TABLE, 3).Kind(ZREXE_TOKEN_SEMICOLON).Number(1);
    program->ExecuteParameters(tokens, 0);
    EXPECT_EQ(Joined(tokens), "table 3 | number 1");
}

// A value of an inner bracket goes through unevaluated, and outlives the list that it stood in.
TEST(ExecuteParameters, RawParameterWithAValue_KeepsItsContents) {
    static const char* const texts = "a text that does not fit into any record";
    Recorder recorder;
    recorder.passOn = false;
    recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable*) { return call.command == 718; };
    Program program;
    EXPECT_EQ(program.Run(std::string("MULTI SORT ARRAY((\"") + texts + "\"*2);(1+2);(\"b\"))").error(), "");
    EXPECT_EQ(recorder.last("718"), std::string("718(text ") + texts + texts + "; real 3; text b)");
}

TEST(ExecuteParameters, FirstError_StopsTheRest) {
    Program program = {{"Mark", "trail:=trail+$1\n$0:=1"}};
    Outcome outcome = program.Run("trail:=\"\"\n$r:=Abs(Mark(\"a\");$missing;Mark(\"b\"))");
    // Both calls are brackets of their own and run before; the parameters stop at the missing variable.
    EXPECT_EQ(outcome.error(), "-14@2 Unknown Variable \"$missing\"");
    EXPECT_EQ(outcome["trail"], "text ab");
    Recorder recorder;
    EXPECT_EQ(RunForError("ALERT(1/0;$missing)"), "-2@1 Division by zero");
    EXPECT_EQ(recorder.last("41"), "not called");
}

TEST(ExecuteParameters, EmptyParameter_DropsTheRest) {
    EXPECT_EQ(RunForError("ALERT(;\"x\")"), "-13@1 Command \"ALERT\" wrong count of parameters");
    EXPECT_EQ(RunText("ALERT(\"x\";)").joined(), "x");
    EXPECT_EQ(RunText("ALERT(\"x\";;1)").joined(), "x");
}

// Dispatch ---------------------------------------------------------------------------------------------------------

TEST(Dispatch, NumbersWithoutAHandler_ReportedButInSilentRanges) {
    for (long number = -3; number <= 2005; number++) {
        auto* row = number >= 1 && number <= 2000
                        ? reinterpret_cast<ZR_Executer_Command*>(Executer()->commands.GetMemPtr(number))
                        : nullptr;
        ZR_ExecutionContext scratch;
        scratch.Create(0, nullptr);
        scratch.probeMode = true;
        scratch.Execute4DCommand(nullptr, number, nullptr);
        bool handled = scratch.probeSupported;
        scratch.Dispose();
        if (handled) continue;
        Program program;
        Tokens none;
        Value result;
        program->Execute4DCommand(none, number, result);
        bool silent =
            (number >= 341 && number <= 400) || (number >= 441 && number <= 460) || (number >= 701 && number <= 799);
        std::string name = row ? Narrow(&row->name) : "";
        EXPECT_EQ(Failure(program), silent ? "" : "-13 Command \"" + name + "\" not supported") << number;
        EXPECT_EQ(result.text(), "nothing") << number;
    }
    for (long number :
         {29999L, 30000L, 30013L, 30100L, 39999L, 40000L, 40011L, 49999L, 50000L, 1L << 40, -(1L << 40)}) {
        Program program;
        Tokens none;
        Value result;
        program->Execute4DCommand(none, number, result);
        EXPECT_EQ(Failure(program), "-13 Command \"\" not supported") << number;
    }
}

TEST(Dispatch, LastFailedForm_SetsTheWords) {
    // (T)|(T,N): three parameters, and one number, both report the count; a text and a text the kind.
    EXPECT_EQ(RunForError("$r:=Semaphore(\"a\";1;2)"), "-13@1 Command \"Semaphore\" wrong count of parameters");
    EXPECT_EQ(RunForError("$r:=Semaphore(1)"), "-13@1 Command \"Semaphore\" wrong count of parameters");
    EXPECT_EQ(RunForError("$r:=Semaphore(\"a\";\"b\")"), "-13@1 Command \"Semaphore\" wrong parameter type");
}

TEST(Dispatch, NothingReturned_LeavesNoTrace) {
    EXPECT_EQ(RunForError("$r:=ALERT(\"x\")"), "-5@1 Undefined assignment variable type");
    EXPECT_EQ(RunFor("$r:=5+ALERT(\"x\")"), "real 5");
}

// Refusals ---------------------------------------------------------------------------------------------------------

TEST(Refusal, OrderOfTheWords) {
    Program program = {{"Mark", "trail:=trail+$1\n$0:=$1"}};
    program.Run("trail:=\"\"");
    ZR_AllowedCommand* alert = program->Search4DCommandForExecution(41);
    ASSERT_TRUE(alert);
    EXPECT_TRUE(alert->allowed);
    program->preemptive = true;
    alert->threadSafe = false;
    EXPECT_EQ(program.Run("ALERT(\"x\")").error(), "-56@1 Command \"ALERT\" is not thread safe");
    alert->allowed = false;
    EXPECT_EQ(program.Run("ALERT(\"x\")").error(), "-55@1 Command \"ALERT\" is not allowed");
    EXPECT_EQ(program.Run("ALERT(1;2;3)").error(), "-55@1 Command \"ALERT\" is not allowed");
    program->preemptive = false;
    EXPECT_EQ(program.Run("ALERT(\"x\")").error(), "-55@1 Command \"ALERT\" is not allowed");
    // The parameters have been evaluated, with what they do.
    program.Run("ALERT(Mark(\"m\"))");
    EXPECT_EQ(program.Collect()["trail"], "text m");
    EXPECT_TRUE(Machine::Get().output.empty());
    alert->allowed = true;
    EXPECT_EQ(program.Run("ALERT(\"x\")").error(), "");  // not thread safe, on a cooperative process
    // An error that stands already stays.
    alert->allowed = false;
    program->lastError = -99;
    program->lastErrorText.Resize(0);
    Tokens tokens;
    tokens.String("x");
    Value result;
    program->Execute4DCommand(tokens, 41, result);
    EXPECT_EQ(program->lastError, -99);
    EXPECT_EQ(program->lastErrorText.count, 0);
}

TEST(Refusal, NumbersWithoutARecord_GoOn) {
    Program program;
    program->preemptive = true;
    Tokens none;
    Value result;
    EXPECT_EQ(program->Search4DCommandForExecution(470), nullptr);
    program->Execute4DCommand(none, 470, result);
    EXPECT_EQ(program->lastError, -13);
    for (long outside : {0L, -1L, 1L << 40, 50000L, 50001L})
        EXPECT_EQ(program->Search4DCommandForExecution(outside), nullptr) << outside;
}

namespace {

class LongintArray : public HostValue {
  public:
    LongintArray(std::initializer_list<int> numbers) : HostValue(eVK_ArrayLongint) {
        PA_ResizeArray(*this, static_cast<long>(numbers.size()));
        long at = 0;
        for (int number : numbers) PA_SetLongintInArray(*this, ++at, number);
    }
    std::vector<int> list() {
        std::vector<int> numbers;
        for (long i = 1; i <= PA_GetArrayNbElements(*this); i++) numbers.push_back(PA_GetLongintInArray(*this, i));
        return numbers;
    }
};

}  // namespace

TEST(AllowedCommands, RecordsAppendedOrOfHighNumbers_Found) {
    Program program;
    EXPECT_EQ(program->Search4DCommandForExecution(1999), nullptr);
    EXPECT_EQ(program->Search4DCommandForExecution(70000), nullptr);
    for (long id : {1999L, 70000L, -3L}) {
        ZR_AllowedCommand* record = reinterpret_cast<ZR_AllowedCommand*>(program->allowedCommands.AppendGetPtr());
        *record = {};
        record->id = static_cast<int>(id);
    }
    for (long id : {1999L, 70000L, -3L, 41L}) {
        ZR_AllowedCommand* record = program->Search4DCommandForExecution(id);
        ASSERT_NE(record, nullptr) << id;
        EXPECT_EQ(record->id, id);
        EXPECT_EQ(record->allowed, id == 41);
    }
}

TEST(AllowedCommands, Modes) {
    Program program;
    LongintArray all = {}, some = {41, 10, 9999, -5, 30001}, now = {};
    program->GetAllowedCommands(all);
    std::vector<int> everything = all.list();
    EXPECT_GT(everything.size(), 100u);
    for (int number : everything) EXPECT_TRUE(number >= 1 && number <= 2000);
    program->SetAllowedCommands(some, ZR_EXE_AllowOnly);
    program->GetAllowedCommands(now);
    EXPECT_EQ(now.list(), (std::vector<int>{10, 41}));
    LongintArray more = {16};
    program->SetAllowedCommands(more, ZR_EXE_AllowAdd);
    program->GetAllowedCommands(now);
    EXPECT_EQ(now.list(), (std::vector<int>{10, 16, 41}));
    LongintArray less = {10, 12};
    program->SetAllowedCommands(less, ZR_EXE_AllowRemove);
    program->GetAllowedCommands(now);
    EXPECT_EQ(now.list(), (std::vector<int>{16, 41}));
    program->SetAllowedCommands(less, static_cast<ZR_EXE_SetAllowed>(4));
    program->SetAllowedCommands(less, static_cast<ZR_EXE_SetAllowed>(-1));
    program->GetAllowedCommands(now);
    EXPECT_EQ(now.list(), (std::vector<int>{16, 41}));
    program->SetAllowedCommands(nullptr, ZR_EXE_AllowAll);
    program->GetAllowedCommands(now);
    EXPECT_EQ(now.list(), everything);
}

TEST(AllowedCommands, EmptyList_LeavesKeywordsAndPrivateCommands) {
    Program program;
    LongintArray none = {}, now = {};
    program->SetAllowedCommands(none, ZR_EXE_AllowOnly);
    program->GetAllowedCommands(now);
    EXPECT_TRUE(now.list().empty());
    EXPECT_EQ(program.Run("If (1=1)\n$r:=_HTML Encode(\"<\")\nEnd If")["$r"], "text &lt;");
    EXPECT_EQ(program.Run("$r:=True").error(), "-55@1 Command \"True\" is not allowed");
    EXPECT_EQ(program.Run("$r:=String(1)").error(), "-55@1 Command \"String\" is not allowed");
    LongintArray keyword = {30001};
    program->SetAllowedCommands(keyword, ZR_EXE_AllowRemove);
    EXPECT_EQ(program.Run("If (1=1)\nEnd If").error(), "-55@1 Command \"\" is not allowed");
}

// Methods ----------------------------------------------------------------------------------------------------------

TEST(MethodCall, ParametersAndResult) {
    Program program = {
        {"Echo", "$0:=$1"},
        {"Count", "$0:=$1+$2+$3"},
        {"Nothing", "$1:=5"},
        {"Change", "$1:=99\n$0:=$1"},
        {"Kinds", "$0:=String($1)+$2+String($3)"},
        {"Late", "$0:=1\n$0:=2"},
        {"Text", "$0:=\"t\""},
        {"Locals", "$x:=5\n$0:=$x"},
    };
    static const struct {
        const char* source;
        const char* error;
        const char* r;
    } rows[] = {
        {"$r:=Echo(5)", "", "real 5"},
        {"$r:=Echo(\"a\"+\"b\")", "", "text ab"},
        {"$r:=Echo(!2001-02-03!)", "", "date 2001-2-3"},
        {"$r:=Echo(1=1)", "", "boolean true"},
        {"$r:=Echo(Echo(Echo(3)))", "", "real 3"},
        {"$r:=Count(1;2;3)", "", "real 6"},
        {"$r:=Count(1;2)", "-14@1 Unknown Variable \"$3\"", "missing"},
        {"$r:=Echo", "-14@1 Unknown Variable \"$1\"", "missing"},
        {"$r:=Nothing(1)", "-5@1 Undefined assignment variable type", "missing"},
        {"$r:=5+Nothing(1)", "", "real 5"},
        {"Nothing(1)\n$r:=1", "", "real 1"},
        {"$a:=1\n$r:=Change($a)+$a", "", "real 100"},  // parameters are copies
        {"$r:=Kinds(1;\"x\";2)", "", "text 1x2"},
        {"$r:=Late", "", "real 2"},
        {"$x:=1\n$r:=Locals+$x", "", "real 6"},  // locals are the frame's own
        {"$r:=Echo(2)*Echo(3)+Count(1;1;1)", "", "real 9"},
        {"$r:=1+Text", "", "real 1"},  // another kind than the value so far
        {"$r:=1+Text()", "", "real 1"},
        {"$r:=1+Text(1)", "-32@1 Formula not supported!", "missing"},  // with brackets it is a value in the list
    };
    for (const auto& row : rows) {
        program->rootStack.Dispose();
        program->rootStack.Create(0);
        Outcome outcome = program.Run(row.source);
        EXPECT_EQ(outcome.error(), row.error) << row.source;
        EXPECT_EQ(outcome["$r"], row.r) << row.source;
    }
}

TEST(MethodCall, Recursion_LocalsArePrivate) {
    Program program = {{"Fib", "If ($1<2)\n$0:=$1\nElse\n$0:=Fib($1-1)+Fib($1-2)\nEnd If"},
                       {"Hanoi", "moves:=moves+0\nIf ($1>0)\nHanoi($1-1)\nmoves:=moves+1\nHanoi($1-1)\nEnd If"}};
    EXPECT_EQ(program.Run("$r:=Fib(12)")["$r"], "real 144");
    EXPECT_EQ(program.Run("moves:=0\nHanoi(6)")["moves"], "real 63");
}

TEST(MethodCall, Error_EndsTheWholeChain) {
    Program program = {{"Inner", "$a:=1\n$b:=1/0\ntrail:=\"inner\""}, {"Outer", "Inner(1)\ntrail:=\"outer\""}};
    Outcome outcome = program.Run("trail:=\"\"\nOuter(1)\ntrail:=\"root\"");
    EXPECT_EQ(outcome.number, -2);
    EXPECT_EQ(outcome.line, 2);
    EXPECT_EQ(outcome.method, "Inner");
    EXPECT_EQ(outcome["trail"], "text");
    ASSERT_EQ(program->errorCalls.count, 3);
    const long lines[] = {2, 1, 2};
    for (long i = 1; i <= 3; i++)
        EXPECT_EQ(reinterpret_cast<ZR_ErrorCall*>(program->errorCalls.GetMemPtr(i))->line, lines[i - 1]);
    EXPECT_EQ(program->stacks.count, 0);
}

TEST(MethodCall, HostMethod_CalledWhenTheContextHasNone) {
    zrhost::Host& host = *Machine::Get().host;
    std::vector<std::string> seen;
    host.registerMethod(u"HostAdd", [&seen](std::span<zrhost::Value> arguments) {
        double sum = 0;
        for (const zrhost::Value& argument : arguments) sum += argument.number();
        seen.push_back(std::to_string(arguments.size()));
        return zrhost::Value(sum);
    });
    Program program;
    program.Declare("HostAdd");
    EXPECT_EQ(program.Run("$r:=HostAdd(1;2;3)")["$r"], "real 6");
    EXPECT_EQ(program.Run("$r:=HostAdd+1")["$r"], "real 1");  // 0 + 1
    EXPECT_EQ(seen, (std::vector<std::string>{"3", "0"}));
    // One of the context comes first.
    program.Add("HostAdd", "$0:=\"mine\"");
    EXPECT_EQ(program.Run("$t:=HostAdd(1)")["$t"], "text mine");
    host.unregisterMethod(u"HostAdd");
}

TEST(MethodCall, MethodSource_AskedOnceBeforeTheHost) {
    struct Folder {
        int asked = 0;
        Program* program = nullptr;
        static bool Find(ZR_ExecutionContext*, ZR_Text* name, void* data) {
            Folder* folder = static_cast<Folder*>(data);
            folder->asked++;
            if (Narrow(name) != "FromFile") return false;
            folder->program->Add("FromFile", "$0:=$1*2");
            return true;
        }
    };
    Program program;
    program.Declare("FromFile");
    program.Declare("Nowhere");
    Folder folder;
    folder.program = &program;
    program->methodSource = Folder::Find;
    program->methodSourceData = &folder;
    EXPECT_EQ(program.Run("$r:=FromFile(4)+FromFile(1)")["$r"], "real 10");
    EXPECT_EQ(folder.asked, 1);
    program.Run("Nowhere(1)");
    EXPECT_EQ(folder.asked, 2);
}

// Required: the name is compared as the host compares, so that it may be a pattern.
TEST(MethodCall, NameWithWildcard_FindsTheFirstMatch) {
    Program program;
    program.Add("alpha", "$0:=1");
    program.Add("beta", "$0:=2");
    Text pattern("b@"), any("@"), upper("ALPHA"), none("c@");
    EXPECT_EQ(Narrow(&program->GetMethodPtrByName(pattern)->name), "beta");
    EXPECT_EQ(Narrow(&program->GetMethodPtrByName(any)->name), "alpha");
    EXPECT_EQ(Narrow(&program->GetMethodPtrByName(upper)->name), "alpha");
    EXPECT_EQ(program->GetMethodPtrByName(none), nullptr);
    Tokens parameters;
    Value result;
    program->ExecuteTokenizedBlock4DMethod(pattern, parameters, result);
    EXPECT_EQ(result.text(), "number 2");
}

TEST(MethodCall, Result_TakenByNothingOrTheSameKind) {
    Program program = {{"Number", "$0:=5"}, {"None", "$x:=1"}};
    Text number("Number"), none("None");
    static const struct {
        void (*fill)(Tokens* tokens);
        const char* after;
    } rows[] = {{[](Tokens* t) { t->Kind(999); }, "number 5"},
                {[](Tokens* t) { t->Number(1); }, "number 5"},
                {[](Tokens* t) { t->String("a"); }, "text a"},
                {[](Tokens* t) { t->Longint(3); }, "longint 3"}};
    for (const auto& row : rows) {
        Tokens result, parameters;
        row.fill(&result);
        std::string before = Describe(result.at(1));
        program->ExecuteTokenizedBlock4DMethod(number, parameters, result.at(1));
        EXPECT_EQ(Describe(result.at(1)), row.after);
        Tokens other;
        row.fill(&other);
        program->ExecuteTokenizedBlock4DMethod(none, parameters, other.at(1));
        EXPECT_EQ(Describe(other.at(1)), before);
    }
    EXPECT_EQ(program->lastError, 0);
}

TEST(MethodCall, StepOver_PutBackBehindTheCall) {
    Program program = {{"Inside", "over:=_Get Current Execution Context"}};
    struct Watch {
        static void See(ZR_ExecutionContext* context, long id, ZR_Handle*, ZR_Executer_Token* result, void*) {
            if (id == 40003) result->SetNumber(context->stepOver ? 1 : 0);
        }
    };
    program->callback = Watch::See;
    Text name("Inside");
    Tokens parameters;
    Value result;
    program->stepOver = true;
    program->ExecuteTokenizedBlock4DMethod(name, parameters, result);
    EXPECT_TRUE(program->stepOver);
    EXPECT_EQ(program.Collect()["over"], "real 0");
}
