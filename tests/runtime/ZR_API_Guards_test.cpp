#include <pthread.h>

#include <chrono>

#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

class Clock {  // generous: a guard that fails does not end at all
  public:
    double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count(); }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

class MemoryLimit {
  public:
    explicit MemoryLimit(long bytes) { ZR_SetMemoryLimit(bytes); }
    ~MemoryLimit() { ZR_SetMemoryLimit(0); }
};

std::string Repeat(const char* text, int times) {
    std::string all;
    for (int i = 0; i < times; i++) all += text;
    return all;
}

}  // namespace

TEST(Guards, Arrow_WithNothingToPointTo) {
    static const struct {
        const char* source;
        const char* error;
    } rows[] = {
        {"$p:=->", "-6@1 Pointer points to nothing!"},
        {"->", "-6@1 Pointer points to nothing!"},
        {"$p:=->5", "-6@1 Invalid Pointer Expression!"},
        {"$p:=->\"a\"", "-6@1 Invalid Pointer Expression!"},
        {"$p:=->(1)", "-6@1 Invalid Pointer Expression!"},
        {"$p:=->->$x", "-6@1 Invalid Pointer Expression!"},
        {"$p:=->True", "-6@1 Invalid Pointer Expression!"},
        {"$p:=->// comment", "-6@1 Invalid Pointer Expression!"},
        {"-> -> -> -> ->", "-6@1 Invalid Pointer Expression!"},
        {"5->", "-6@1 Pointer points to nothing!"},
    };
    for (const auto& row : rows) EXPECT_EQ(RunForError(row.source), row.error) << row.source;
}

TEST(Guards, Parameter_ThatNeverReduces) {
    for (const char* source : {"C_POINTER($p)\nALERT($p+$p)", "ARRAY TEXT($p;1)\nALERT($p+$p)",
                               "C_POINTER($p)\n$r:=String($p&$p)", "C_POINTER($p)\n$r:=String(1;$p+$p)", "ALERT(+*)"})
        EXPECT_EQ(RunText(source).number, -10) << source;
}

TEST(Guards, Recursion_EndsInAnError) {
    static const char* const bodies[] = {
        "Endless",
        "Endless($1+1)",
        "$0:=1+Endless(Endless(1))",
        "If (Endless(1))\nEnd If",
        "Case of\n: (Endless(1))\nEnd case",
        "For ($i;1;2)\nEndless(1)\nEnd For",
        "$x:=\"a\"+Endless(\"b\")",
        "While (Endless(1)=2)\nEnd while",
        "$a:=((((((Endless(1))))))))",
    };
    for (const char* body : bodies) {
        Clock clock;
        Program program = {{"Endless", body}};
        Outcome outcome = program.Run("Endless(1)");
        // A guard's error stands alone: a condition that it ends is not told of as no Boolean besides.
        EXPECT_EQ(outcome.number, -61) << body;
        EXPECT_EQ(outcome.text.substr(0, 21), "Too many nested calls") << body;
        EXPECT_EQ(program->stacks.count, 0) << body;
        EXPECT_LT(clock.seconds(), 60) << body;
        EXPECT_EQ(program.Run("$a:=1").error(), "") << body;  // the context is as good as before
    }
}

TEST(Guards, MethodDeletedWhileItRuns_EndsTheRun) {
    for (bool plain : {false, true}) {
        Program program = {{"Deeper", "$0:=$1+\"!\"\nT(1)\n$0:=$0+Text(2)"}};
        program->plainOnly = plain;
        // The hook runs in the middle of a line whose tokens are on their way.
        program->callback = [](ZR_ExecutionContext* context, long id, ZR_Handle*, ZR_Executer_Token*, void*) {
            if (id == -1) return;
            for (long reference = 1; reference < context->nextMethodReference; ++reference)
                context->DeleteMethodByID(reference);
        };
        Outcome outcome = program.Run("$a:=Deeper(\"a\"+_Get Fitting Text(\"x\")+\"b\")+\"c\"\n$b:=1");
        EXPECT_EQ(outcome["$b"], "missing") << plain;
        EXPECT_EQ(program->methods.count, 0) << plain;
        EXPECT_EQ(program->deletedMethods.count, 0) << plain;
        EXPECT_EQ(program.Run("$c:=2").error(), "") << plain;
    }
}

TEST(Guards, Recursion_ThatEnds_GoesDeep) {
    Program program = {{"Down", "If ($1>0)\n$0:=Down($1-1)+1\nElse\n$0:=0\nEnd If"}};
    EXPECT_EQ(program.Run("$r:=Down(300)")["$r"], "real 300");
}

TEST(Guards, MutualRecursion_EndsInAnError) {
    Program program = {{"Ping", "Pong(1)"}, {"Pong", "Ping(1)"}};
    EXPECT_EQ(program.Run("Ping(1)").text, "Too many nested calls");
}

namespace {

void* RunOnThisThread(void* out) {
    Program program = {{"Endless", "$x:=$1\n$0:=Endless($x+1)*2"}};
    Outcome outcome = program.Run("$r:=Endless(1)");
    *static_cast<std::string*>(out) = std::to_string(outcome.number) + " " + outcome.text;
    return nullptr;
}

}  // namespace

TEST(Guards, Recursion_OnAThreadWithASmallStack) {
    for (size_t size : {512u * 1024, 1024u * 1024, 4096u * 1024}) {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
        pthread_t thread;
        std::string answer;
        // The thread is one of the host's processes for the time of the run.
        zrhost::Host::Blocking blocking(*Machine::Get().host);
        ASSERT_EQ(pthread_create(&thread, &attributes, RunOnThisThread, &answer), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
        EXPECT_EQ(answer, "-61 Too many nested calls") << size;
    }
}

TEST(Guards, MaxCalls_LimitsTheDepth) {
    Program program = {{"Down", "deepest:=$1\nIf ($1<50)\nDown($1+1)\nEnd If"}};
    static const struct {
        long maxCalls;
        long number;
        const char* deepest;
    } rows[] = {{5, -61, "real 4"}, {20, -61, "real 19"}, {0, 0, "real 50"}, {51, 0, "real 50"}, {60, 0, "real 50"}};
    for (const auto& row : rows) {
        program->maxCalls = row.maxCalls;
        Outcome outcome = program.Run("deepest:=0\nDown(1)");
        EXPECT_EQ(outcome.number, row.number) << row.maxCalls;
        EXPECT_EQ(outcome["deepest"], row.deepest) << row.maxCalls;
    }
}

TEST(Guards, Deadline_EndsWhatDoesNotEnd) {
    static const char* const sources[] = {
        "While (True)\nEnd while",
        "While (True)\n$a:=1\nEnd while",
        "Repeat\nUntil (False)",
        "$i:=\"x\"\nFor ($i;1;5)\n$a:=1\nEnd For",
        "For ($i;1;2)\n$i:=1\nEnd For",
        "For ($i;1;1000000000)\nEnd For",
        "Spin",
        "While (Spinning(1))\nEnd while",
    };
    for (const char* source : sources)
        for (bool plain : {false, true}) {
            Program program = {{"Spin", "Repeat\n$a:=1\nUntil (False)"}, {"Spinning", "$0:=True"}};
            program->plainOnly = plain;
            program->deadline = ZR_MonotonicSeconds() + 0.05;
            Clock clock;
            Outcome outcome = program.Run(source);
            EXPECT_EQ(outcome.number, -62) << source;
            EXPECT_EQ(outcome.text, "Time limit reached") << source;
            EXPECT_LT(clock.seconds(), 30) << source;
        }
    Program program;
    program->deadline = ZR_MonotonicSeconds() + 1000;
    EXPECT_EQ(program.Run("For ($i;1;500)\nEnd For")["$i"], "longint 501");
}

TEST(Guards, AbsurdSizes_NotEnoughMemory) {
    static const char* const sources[] = {
        "$t:=\"abc\"*1000000000000",
        "$t:=1000000000000*\"abc\"",
        "$t:=\"a\"*9000000000000000000",
        "ARRAY LONGINT($a;1000000000000000)",
        "ARRAY TEXT($a;9000000000000000000)",
        "ARRAY REAL($a;2)\nINSERT IN ARRAY($a;1;1000000000000000)",
        "ARRAY REAL($a;2)\nINSERT IN ARRAY($a;1;9000000000000000000)",
        "C_BLOB($b)\nSET BLOB SIZE($b;1000000000000000)",
        "C_BLOB($b)\nSET BLOB SIZE($b;9000000000000000000)",
    };
    for (const char* source : sources) {
        Clock clock;
        Outcome outcome = RunText(source);
        EXPECT_EQ(outcome.number, -63) << source;
        EXPECT_EQ(outcome.text, "Not enough memory") << source;
        EXPECT_LT(clock.seconds(), 30) << source;
    }
    // Infinite and empty repetitions.
    for (const char* source :
         {"$t:=\"a\"*(7/0)", "$t:=\"a\"*(7\\0)", "$t:=\"\"*1000000000000000", "$t:=\"abc\"*-1000000000000000"})
        RunText(source);
    EXPECT_EQ(RunFor("$r:=\"\"*1000000000000000"), "text");
    // What 64 bits do not hold counts as the lowest number.
    EXPECT_EQ(RunFor("$r:=\"a\"*9223372036854775808"), "text");
    EXPECT_EQ(RunFor("$r:=\"a\"*(7\\0)"), "text");
    EXPECT_EQ(RunFor("ARRAY LONGINT($r;7\\0)"), "array longint []");
}

TEST(Guards, MemoryLimit_EndsGrowth) {
    MemoryLimit limit(12L << 20);
    static const char* const sources[] = {
        "$t:=\"0123456789abcdef\"\nFor ($i;1;40)\n$t:=$t+$t\nEnd For",
        "$t:=\"0123456789abcdef\"*10000\nFor ($i;1;400)\n$u:=$t*$i\nEnd For",
        "ARRAY LONGINT($a;100)\nFor ($i;1;40)\nINSERT IN ARRAY($a;1;Size of array($a))\nEnd For",
        "C_BLOB($b)\nFor ($i;10;40)\nSET BLOB SIZE($b;2^$i)\nEnd For",
        "For ($i;10;40)\nARRAY TEXT($a;2^$i)\nEnd For",
    };
    for (const char* source : sources)
        for (bool plain : {false, true}) {
            Program program;
            program->plainOnly = plain;
            Outcome outcome = program.Run(source);
            EXPECT_EQ(outcome.number, -63) << source;
            EXPECT_EQ(outcome.text, "Not enough memory") << source;
        }
    EXPECT_EQ(RunFor("$r:=\"ab\"*3"), "text ababab");
}

TEST(Guards, Numbers_OutOfRange_StayDefined) {
    EXPECT_EQ(RunFor("$r:=7\\0"), "real -9.223372036854776e+18");
    EXPECT_EQ(RunFor("$r:=7%0").substr(0, 5), "real ");
    EXPECT_EQ(RunForError("$r:=2^1000000000000000000"), "");
    EXPECT_EQ(RunForError("ARRAY REAL($a;1)\n$r:=$a{7\\0}"),
              "-36@2 Array access \"a\" not possible. Index: -9223372036854775808 Array size: 1");
    EXPECT_EQ(RunForError("$s:=\"a\"\n$r:=$s[[7\\0]]"),
              "-36@2 String access \"s\" not possible. Index: -9223372036854775808 String size: 1");
    EXPECT_EQ(RunForError("For ($i;0-9223372036854775807;0-9223372036854775807)\nEnd For"), "");
    EXPECT_EQ(RunForError("For ($i;1;3;9223372036854775807)\nEnd For"), "");
    EXPECT_EQ(RunForError("For ($i;1;0-3;0-9223372036854775807)\nEnd For"), "");
}

TEST(Guards, DateArithmetic_FarAway) {
    Clock clock;
    for (const char* days : {"1000000000000000", "9223372036854775807", "2147483648", "7\\0"})
        for (const char* sign : {"+", "-"})
            EXPECT_EQ(RunForError(std::string("$r:=!2000-01-01!") + sign + "(" + days + ")"), "") << sign << days;
    EXPECT_EQ(RunForError("$r:=(!2000-01-01!+1000000000000)-!2000-01-01!"), "");
    EXPECT_EQ(RunForError("$r:=!0000-00-00!+1000000000000"), "");
    EXPECT_LT(clock.seconds(), 30);
}

TEST(Guards, DeepBrackets_AHundredThousand) {
    const int deep = 100000;
    Clock clock;
    EXPECT_EQ(RunFor("$r:=" + Repeat("(", deep) + "1" + Repeat(")", deep)), "real 1");
    EXPECT_EQ(RunForError("$r:=" + Repeat("(", deep) + "1"), "-41@1 Closed Bracket expected");
    EXPECT_EQ(RunFor("$r:=1" + Repeat(")", deep)), "real 1");
    EXPECT_EQ(RunFor("$r:=1+" + Repeat("()", deep) + "2"), "real 3");
    EXPECT_EQ(RunFor("$r:=" + Repeat("(1)+", deep) + "0"), "real 100000");
    EXPECT_EQ(RunForError("If (" + Repeat("(", deep) + "True" + Repeat(")", deep) + ")\nEnd If"), "");
    EXPECT_EQ(RunFor("For ($i;" + Repeat("(", deep) + "1" + Repeat(")", deep) + ";3)\n$r:=$i\nEnd For"), "real 3");
    EXPECT_LT(clock.seconds(), 120);
}

TEST(Guards, LongLines_AndManyIndexes) {
    Clock clock;
    EXPECT_EQ(RunFor("$r:=0" + Repeat("+1", 100000)), "real 100000");
    EXPECT_EQ(RunFor("$x:=1\n$p:=->$x\n$r:=0" + Repeat("+$p->", 50000)), "real 50000");
    EXPECT_EQ(RunForError("ALERT(1" + Repeat(";1", 50000) + ")"), "-13@1 Command \"ALERT\" wrong count of parameters");
    EXPECT_EQ(RunForError("$r:=Abs(" + Repeat("Abs(", 5000) + "1" + Repeat(")", 5001)), "");
    EXPECT_EQ(RunFor("$s:=\"abc\"\n$r:=" + Repeat("$s[[1]]+", 2000) + "\"\"").size(), 5u + 2000);
    RunText("$s:=\"abc\"\n$r:=$s" + Repeat("[[", 20000));
    RunText("ARRAY REAL($a;3)\n$r:=$a" + Repeat("{", 20000) + Repeat("}", 20000));
    RunText("$r:=" + Repeat("$a{", 3000) + "1" + Repeat("}", 3000));
    RunText(Repeat("->", 50000));
    RunText("$o:=New object\n$r:=$o" + Repeat(".f()", 60000));
    EXPECT_EQ(RunFor("$r:=Length(\"ab\"*50000000)"), "real 100000000");
    EXPECT_LT(clock.seconds(), 120);
}

TEST(Guards, DeepBlocks_AndLongMethods) {
    Clock clock;
    const int deep = 5000;
    EXPECT_EQ(RunFor(Repeat("If (True)\n", deep) + "$r:=1\n" + Repeat("End If\n", deep)), "real 1");
    EXPECT_EQ(RunForError(Repeat("If (False)\n", deep) + "$r:=1\n" + Repeat("End If\n", deep - 1)),
              "-15@1 End If expected");
    EXPECT_EQ(RunFor("$r:=0\n" + Repeat("$r:=$r+1\n", 20000)), "real 20000");
    EXPECT_EQ(RunFor("Case of\n" + Repeat(": (False)\n", deep) + "Else\n$r:=7\nEnd case"), "real 7");
    EXPECT_LT(clock.seconds(), 120);
}

TEST(Guards, NativeStack_IsMeasured) {
    long left = ZR_NativeStackLeft();
    EXPECT_GT(left, ZR_STACK_RESERVE);
    EXPECT_LT(left, 1L << 40);
    Program program;
    program->stackReserve = left + (1L << 20);  // more than there is: no call fits
    Text name("M");
    program.Declare("M");
    program.Add("M", "$0:=1");
    EXPECT_EQ(program.Run("$r:=M(1)").text, "Too many nested calls");
}
