// The prepared form of lines against the plain one: random programs must end alike, in every variable, in the error and
// its words, in the output. A program that fails is printed with its seed.
#include <random>

#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

class Generator {
  public:
    explicit Generator(unsigned seed) : random_(seed) {}

    std::string Program() {
        lines_ = 3 + Below(23);
        std::string text = Preamble();
        while (lines_ > 0) text += Statement(0);
        if (Below(5) == 0) Spoil(&text);
        return text;
    }
    int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  private:
    std::mt19937 random_;
    int lines_ = 0, loops_ = 0;

    template <size_t N>
    const char* Pick(const char* const (&choices)[N]) {
        return choices[Below(static_cast<int>(N))];
    }

    // Mostly every variable that the statements use, so that a program goes far; else a few, so that it meets missing
    // ones and ones of another kind.
    std::string Preamble() {
        static const char* const whole =
            "$n1:=3\n$n2:=2.5\nC_LONGINT($n3)\n$n3:=5\nn:=10\n<>n:=-4\n$i:=1\nk:=2\nnotes:=0\n$t1:=\"abcdef\"\n$t2:="
            "\"zz\"\n"
            "t:=\"x@y\"\n$b:=True\n$d:=!2001-02-27!\n$h:=?01:02:03?\nARRAY LONGINT($a;6)\n$a{2}:=7\n$a{3}:=-1\nARRAY "
            "TEXT($at;6)\n"
            "$at{1}:=\"eins\"\nARRAY REAL(ar;6)\nar{2}:=0.5\n$o:=New object\n$o.name:=\"nn\"\n$p:=->$n1\n";
        static const char* const some[] = {"$n1:=3",
                                           "$n2:=2.5",
                                           "C_LONGINT($n3)",
                                           "n:=10",
                                           "<>n:=-4",
                                           "$t1:=\"abc\"",
                                           "$t2:=\"\"",
                                           "t:=\"x@y\"",
                                           "$b:=True",
                                           "$d:=!2001-02-27!",
                                           "$h:=?01:02:03?",
                                           "ARRAY LONGINT($a;4)",
                                           "ARRAY TEXT($at;3)",
                                           "ARRAY REAL(ar;2)",
                                           "$o:=New object",
                                           "C_POINTER($p)",
                                           "$p:=->$n1",
                                           "C_REAL($n2)",
                                           "C_TEXT($t2)",
                                           "C_BOOLEAN($b)",
                                           "C_INTEGER($n3)",
                                           "notes:=0",
                                           "$at{1}:=\"eins\""};
        bool all = Below(8) > 0;
        std::string text = all ? whole : "";
        for (int i = all ? 0 : 4 + Below(12); i > 0; i--) text += std::string(Pick(some)) + "\n";
        return text;
    }

    // Mostly within 1 to 6.
    std::string Index(int depth) {
        if (Below(12) == 0) return Num(depth);
        if (Below(2)) return std::to_string(1 + Below(6));
        return "1+(Abs(" + Num(depth) + ")%5)";
    }

    std::string Num(int depth) {
        if (depth > 2 || Below(3) == 0) {
            static const char* const atoms[] = {"1", "2",   "0",  "3.5", "10",    "0x10",    "$n1",   "$n2",  "$n3",
                                                "n", "<>n", "$i", "-1",  "$a{1}", "$a{$n1}", "ar{2}", "$p->", "7"};
            return Pick(atoms);
        }
        switch (Below(22)) {
            case 0: return "Length(" + Txt(depth + 1) + ")";
            case 1: return "Abs(" + Num(depth + 1) + ")";
            case 2: return "Int(" + Num(depth + 1) + ")";
            case 3: return "Mod(" + Num(depth + 1) + ";" + Num(depth + 1) + ")";
            case 4: return "Round(" + Num(depth + 1) + ";1)";
            case 5: return "Character code(" + Txt(depth + 1) + ")";
            case 6: return "Twice(" + Num(depth + 1) + ")";
            case 7: return "Add(" + Num(depth + 1) + ";" + Num(depth + 1) + ")";
            case 8: return "Size of array(" + Arr() + ")";
            case 9:
                if (Below(2)) return "Find in array($at;" + Txt(depth + 1) + ")";
                return "Find in array(" + std::string(Pick({"$a", "ar"})) + ";" + Num(depth + 1) + ")";
            case 10: return "Position(" + Txt(depth + 1) + ";" + Txt(depth + 1) + ")";
            case 11: return "Num(" + Txt(depth + 1) + ")";
            case 12: return "Sum(" + Arr() + ")";
            case 13: return "Factorial(" + std::to_string(Below(5)) + ")";
            case 14: return "$a{" + Index(depth + 1) + "}";
            case 15: return "(" + Num(depth + 1) + ")";
            default: {
                static const char* const operators[] = {"+", "-", "*", "/", "%", "\\", "^", "+", "-", "*"};
                std::string op = Pick(operators);
                std::string right = op == "^" ? std::to_string(Below(4)) : Num(depth + 1);
                return (Below(2) ? "(" + Num(depth + 1) + ")" : Num(depth + 1)) + op + right;
            }
        }
    }

    std::string Txt(int depth) {
        if (depth > 2 || Below(3) == 0) {
            static const char* const atoms[] = {"\"a\"",  "\"\"",     "\"Hello\"", "$t1",      "$t2", "t",
                                                "$at{1}", "$t1[[1]]", "\"\\t\"",   "$t1[[2]]", "t",   "\"b\""};
            return Pick(atoms);
        }
        switch (Below(14)) {
            case 0: return "String(" + Num(depth + 1) + ")";
            case 1: return "Uppercase(" + Txt(depth + 1) + ")";
            case 2: return "Lowercase(" + Txt(depth + 1) + ")";
            case 3: return "Substring(" + Txt(depth + 1) + ";" + Num(depth + 1) + ";" + std::to_string(Below(4)) + ")";
            case 4: return "Substring(" + Txt(depth + 1) + ";" + std::to_string(Below(4)) + ")";
            case 5: return "Char(" + std::to_string(65 + Below(30)) + ")";
            case 6: return "Bracket(" + Txt(depth + 1) + ")";
            case 7: return Txt(depth + 1) + "*" + std::to_string(Below(4));
            case 8: return "$at{" + Index(depth + 1) + "}";
            case 9: return "$t1[[" + Index(depth + 1) + "]]";
            case 10: return "Replace string(" + Txt(depth + 1) + ";\"a\";\"bb\")";
            default: return Txt(depth + 1) + "+" + Txt(depth + 1);
        }
    }

    std::string Bool(int depth) {
        static const char* const comparisons[] = {"=", "#", "<", ">", "<=", ">="};
        if (depth > 2) return Below(2) ? "True" : "$b";
        switch (Below(12)) {
            case 0: return "$b";
            case 1: return "(" + Bool(depth + 1) + ") & (" + Bool(depth + 1) + ")";
            case 2: return "(" + Bool(depth + 1) + ") | (" + Bool(depth + 1) + ")";
            case 3: return "Not(" + Bool(depth + 1) + ")";
            case 4:
            case 5: return Txt(1) + (Below(2) ? "=" : "#") + Txt(1);
            case 6: return "Even(" + Num(depth + 1) + ")";
            case 7: return Below(2) ? "True" : "False";
            case 8: return Dat(1) + Pick(comparisons) + Dat(1);
            case 9:
                if (Below(5) == 0) return Any(1) + Pick(comparisons) + Any(1);
                return Tim() + Pick(comparisons) + Tim();
            default: return Num(1) + Pick(comparisons) + Num(1);
        }
    }

    std::string Dat(int depth) {
        if (depth > 1 || Below(2)) return Below(3) ? "$d" : "!2000-12-31!";
        return "$d" + std::string(Below(2) ? "+" : "-") + "(" + Num(2) + "%1000)";
    }
    std::string Tim() {
        static const char* const texts[] = {
            "$h", "?00:00:30?", "$h+?00:10:00?", "$h-?00:00:01?", "$h*?00:00:02?", "$h/?00:00:07?"};
        return Pick(texts);
    }
    std::string Arr() {
        if (Below(16) == 0) return Pick({"$n1", "$none", "$t1", "$o"});
        return Pick({"$a", "$at", "ar"});
    }
    std::string Any(int depth) {
        switch (Below(7)) {
            case 0: return Txt(depth);
            case 1: return Bool(depth + 1);
            case 2: return Dat(depth);
            case 3: return Tim();
            case 4:
                if (Below(6) == 0) return Pick({"->$n1", "$none", "$o", "$p", "$a"});
                return Num(depth);
            default: return Num(depth);
        }
    }
    const char* Pick(std::initializer_list<const char*> choices) {
        return choices.begin()[Below(static_cast<int>(choices.size()))];
    }

    std::string Body(int depth) {
        std::string text;
        int n = Below(3);
        if (n == 0 && Below(3)) n = 1;
        for (int i = 0; i < n && lines_ > 0; i++) text += Statement(depth + 1);
        return text;
    }

    std::string Simple() {
        switch (Below(30)) {
            case 0:
            case 1:
            case 2: return std::string(Pick({"$n1", "$n2", "$n3", "n", "<>n"})) + ":=" + Num(0);
            case 3:
            case 4: return std::string(Pick({"$t1", "$t2", "t"})) + ":=" + Txt(0);
            case 5: return "$b:=" + Bool(0);
            case 6: return "$d:=" + Dat(0);
            case 7: return "$h:=" + Tim();
            case 8:
                if (Below(6) == 0) return std::string(Pick({"$n1", "$t1", "$b", "$d", "$new", "$x"})) + ":=" + Any(0);
                return "$new" + std::to_string(Below(1000)) + ":=" + Any(0);
            case 9: return "$a{" + Index(1) + "}:=" + Num(1);
            case 10: return "$at{" + Index(1) + "}:=" + Txt(1);
            case 11: return "$n1:=$n1+" + Num(1);
            case 12: return "$t1:=$t1+" + Txt(1) + "+" + Txt(1);
            case 13: return "$t2:=$t2+" + Txt(1);
            case 14: return "ALERT(" + Txt(0) + ")";
            case 15: return "ALERT(String(" + Num(0) + "))";
            case 16:
                if (Below(8) == 0) return "APPEND TO ARRAY(" + Arr() + ";" + Any(1) + ")";
                return Below(2) ? "APPEND TO ARRAY($a;" + Num(1) + ")" : "APPEND TO ARRAY($at;" + Txt(1) + ")";
            case 17: return "INSERT IN ARRAY(" + Arr() + ";" + Num(1) + ")";
            case 18: return "DELETE FROM ARRAY(" + Arr() + ";" + std::to_string(Below(5)) + ";1)";
            case 19:
                return std::string(
                           Pick({"ARRAY LONGINT($a;", "ARRAY TEXT($at;", "ARRAY REAL(ar;", "ARRAY BOOLEAN($ab;"})) +
                       std::to_string(Below(8) ? 6 : Below(6)) + ")";
            case 20:
                return "$p:=" + std::string(Pick({"->$n1", "->n", "-><>n", "->$n2", Below(8) ? "->$n3" : "->$t1"}));
            case 21: return "$p->:=" + (Below(8) ? Num(1) : Any(1));
            case 22: return "$o." + std::string(Pick({"name", "a.b", "n"})) + ":=" + Any(1);
            case 23: return "Note(" + Txt(1) + ")";
            case 24: return "SetIt(->" + std::string(Pick({"$n1", "n", "<>n"})) + ")";
            case 25:
                if (Below(2)) return Any(0);
                return Pick({"t:=(t)+SideT(\"y\")", "$x1:=(n)+SideN(1)+n", "t:=SideT(\"a\")+t+SideT(\"b\")",
                             "$x2:=ar{1}+SideN(1)", "SideT(\"z\")", "$h:=(Long time(1))", "Long time(1)",
                             "$x3:=Missing(1)", "$x4:=An object(1)", "$x5:=A pointer(1)", "$x6:=(Missing(1))+n"});
            case 26:
                return Pick(
                    {"", "// comment", "$n1 := 5 // trailing", "  $n2:=$n1", "C_LONGINT($n1;$n3)", "True", "Note"});
            case 27: return "Loop(" + std::to_string(Below(4)) + ")";
            case 28: return "SORT ARRAY($a;" + std::string(Pick({">", "<"})) + ")";
            default: return "COPY ARRAY(" + Arr() + ";$copy)";
        }
    }

    std::string Statement(int depth) {
        lines_--;
        if (depth >= 3 || Below(3) > 0) return Simple() + "\n";
        switch (Below(7)) {
            case 0: return "If (" + Bool(0) + ")\n" + Body(depth) + "End If\n";
            case 1: return "If (" + Bool(0) + ")\n" + Body(depth) + "Else\n" + Body(depth) + "End If\n";
            case 2:
            case 3: {
                std::string variable = Pick({"$i", "$j", "$n3", "k", "$n2"});
                std::string head = "For (" + variable + ";" + std::to_string(Below(4)) + ";" +
                                   Pick({"3", "5", "$n1%6", "0", "Size of array($a)"});
                if (Below(3) == 0) head += std::string(";") + Pick({"1", "2", "-1", "0", "0.5", "$n1", "\"x\""});
                return head + ")\n" + Body(depth) + "End For\n";
            }
            case 4: {
                std::string counter = "$w" + std::to_string(++loops_);
                return counter + ":=0\nWhile ((" + counter + "<" + std::to_string(1 + Below(4)) + ")" +
                       (Below(3) ? "" : " & (" + Bool(1) + ")") + ")\n" + counter + ":=" + counter + "+1\n" +
                       Body(depth) + "End while\n";
            }
            case 5: {
                std::string counter = "$w" + std::to_string(++loops_);
                return counter + ":=0\nRepeat\n" + counter + ":=" + counter + "+1\n" + Body(depth) + "Until ((" +
                       counter + ">" + std::to_string(Below(3)) + ")" + (Below(3) ? "" : " | (" + Bool(1) + ")") +
                       ")\n";
            }
            default: {
                std::string text = "Case of\n";
                int branches = 1 + Below(3);
                for (int i = 0; i < branches; i++) text += ": (" + Bool(0) + ")\n" + Body(depth);
                if (Below(2)) text += "Else\n" + Body(depth);
                return text + "End case\n";
            }
        }
    }

    // A slip of the pen: something is left out, doubled or put in.
    void Spoil(std::string* text) {
        for (int i = 1 + Below(3); i > 0 && !text->empty(); i--) {
            size_t at = random_() % text->size();
            switch (Below(5)) {
                case 0: text->erase(at, 1); break;
                case 1: text->erase(at, 1 + random_() % 6); break;
                case 2:
                    text->insert(at, Pick({"(", ")", "{", "}", "[[", "]]", ";", "->", ":=", "$", "+", "=", ".x", "\"",
                                           "1", "!", "?", ":"}));
                    break;
                case 3:
                    text->insert(at, Pick({"\nElse\n", "\nEnd If\n", "\nEnd For\n", "\nEnd case\n", "\n: (True)\n",
                                           "\nRepeat\n", "\nIf (False)\n"}));
                    break;
                default: {
                    size_t from = random_() % text->size();
                    text->insert(at, text->substr(from, 1 + random_() % 8));
                }
            }
        }
    }
};

const std::initializer_list<Program::Source> kMethods = {
    {"Twice", "$0:=$1*2"},
    {"Add", "C_REAL($0;$1;$2)\n$0:=$1+$2"},
    {"Even", "If (($1%2)=0)\n$0:=True\nElse\n$0:=False\nEnd If"},
    {"Bracket", "$0:=\"[\"+$1+\"]\""},
    {"Factorial", "If ($1<2)\n$0:=1\nElse\n$0:=$1*Factorial($1-1)\nEnd If"},
    {"Note", "notes:=notes+1\nALERT(\"note \"+String(notes))"},
    {"SetIt", "$1->:=42"},
    {"Loop", "$s:=0\nFor ($i;1;$1)\n$s:=$s+$i\nEnd For\n$0:=$s"},
    // What they change may have been read already by the line that calls them.
    {"SideT", "t:=t+$1\n$0:=t"},
    {"SideN", "n:=n+1\nar{1}:=n\n$0:=n"},
    {"Missing", "$x:=1"},
    {"Long time", "$0:=?100:00:00?*?100:00:00?"},
    {"An object", "$0:=New object"},
    {"A pointer", "$0:=->t"},
};

// Everything that a run leaves behind, in words and in the order of its lists.
std::string Trace(Program* program, const Outcome& outcome) {
    std::string text = outcome.error() + "\nin " + outcome.method + " (" + std::to_string((*program)->lastErrorMethod) +
                       ") at " + std::to_string(outcome.lastLine) + "\noutput " + outcome.joined() + "\n";
    const auto list = [&text](ZR_Handle* variables, const char* prefix) {
        for (long i = 1; i <= variables->count; i++) {
            auto* variable = reinterpret_cast<ZR_Executer_Variable*>(variables->GetMemPtr(i));
            text += prefix + Narrow(&variable->name) + " " + Describe(variable) + "\n";
        }
    };
    list(&(*program)->rootStack.localVariables, "$");
    list(&(*program)->processVariables, "");
    list(&(*program)->interprocessVariables, "<>");
    text += "result " + Describe(&(*program)->result) + "\nloops";
    for (long i = 1; i <= (*program)->rootStack.activeForLines.count; i++) {
        long line;
        memcpy(&line, (*program)->rootStack.activeForLines.GetMemPtr(i), sizeof line);
        text += " " + std::to_string(line);
    }
    return text;
}

void ClearError(ZR_ExecutionContext* context, long id, ZR_Handle*, ZR_Executer_Token*, void* data) {
    if (id != -1 || context->lastError == -62 || --*static_cast<int*>(data) < 0) return;
    context->lastError = 0;
}

struct RunResult {
    std::string trace;
    bool outOfTime = false;
};

struct Options {
    bool clearsErrors = false;  // a callback goes on behind an error
    int times = 1;              // runs of the same method in the same frame
    bool steps = false;         // line by line from outside
    long refused = 0;           // a command that the context must not run
    long unsafe = 0;            // a command that a preemptive process must not run
    double seconds = 0.05;      // a run at most; one that the clock ends is not compared
};

RunResult RunIt(const std::string& source, bool plain, const Options& options) {
    Program program(kMethods);
    program->plainOnly = plain;
    int clearings = 40;
    if (options.clearsErrors) {
        program->callback = ClearError;
        program->callbackData = &clearings;
    }
    if (ZR_AllowedCommand* command = program->Search4DCommandForExecution(options.refused)) command->allowed = false;
    if (ZR_AllowedCommand* command = program->Search4DCommandForExecution(options.unsafe)) command->threadSafe = false;
    program->preemptive = options.unsafe != 0;
    program->maxCalls = 60;
    long reference = program.Add("", source);
    RunResult result;
    for (int i = 0; i < options.times && !result.outOfTime; i++) {
        program->deadline = ZR_MonotonicSeconds() + options.seconds;
        int steps = 0;
        long line = options.steps ? 1 : 0;
        do {
            Outcome outcome = program.Start(reference, line);
            // A later error, as that of a branch condition, may stand behind the clock's.
            result.outOfTime |= outcome.text.find("Time limit reached") != std::string::npos;
            line = outcome.lastLine;
            if (!options.steps || outcome.number || ++steps % 16 == 0) result.trace += Trace(&program, outcome) + "\n";
        } while (options.steps && line > 0 && steps < 120 && !result.outOfTime);
        result.trace += Trace(&program, program.Collect());
    }
    return result;
}

Options MakeOptions(Generator* generator) {
    static const long commands[] = {214,   215,   10,    12,    16,    34,    283,   221,   911,  30001,
                                    30002, 30003, 30004, 30005, 30007, 30008, 30009, 30010, 30011};
    Options options;
    options.clearsErrors = generator->Below(5) == 0;
    if (generator->Below(5) == 0) options.times = 2;
    if (generator->Below(8) == 0) options.steps = true;
    if (generator->Below(20) == 0) options.refused = commands[generator->Below(std::size(commands))];
    if (generator->Below(20) == 0) options.unsafe = commands[generator->Below(std::size(commands))];
    return options;
}

void CompareRuns(unsigned first, unsigned count) {
    int skipped = 0, failed = 0, erring = 0;
    for (unsigned seed = first; seed < first + count; seed++) {
        Generator generator(seed);
        std::string source = generator.Program();
        Options options = MakeOptions(&generator);
        RunResult plain = RunIt(source, /*plain*/ true, options);
        RunResult prepared = RunIt(source, /*plain*/ false, options);
        if (plain.outOfTime || prepared.outOfTime) {
            skipped++;
            continue;
        }
        if (plain.trace[0] == '-') erring++;
        EXPECT_EQ(prepared.trace, plain.trace) << "seed " << seed << (options.clearsErrors ? ", errors cleared" : "")
                                               << (options.steps ? ", in steps" : "") << ", refused " << options.refused
                                               << ", unsafe " << options.unsafe << "\n"
                                               << source;
        if (::testing::Test::HasNonfatalFailure() && ++failed >= 3) return;
    }
    EXPECT_LT(skipped, static_cast<int>(count) / 2);  // how many loop for ever; a busy machine adds to them
    // The programs are worth running: many end well, many in an error.
    EXPECT_GT(erring, static_cast<int>(count) / 8);
    EXPECT_LT(erring, static_cast<int>(count) * 3 / 4);
}

}  // namespace

#ifdef __SANITIZE_ADDRESS__
static constexpr unsigned kPrograms = 250;  // a sanitized run takes ten times as long
#else
static constexpr unsigned kPrograms = 1200;
#endif

TEST(Prepared, RandomPrograms_RunAsPlainOnes_1) { CompareRuns(1, kPrograms); }
TEST(Prepared, RandomPrograms_RunAsPlainOnes_2) { CompareRuns(10001, kPrograms); }
TEST(Prepared, RandomPrograms_RunAsPlainOnes_3) { CompareRuns(20001, kPrograms); }

// Cases that the random programs meet seldom ------------------------------------------------------------------------

namespace {

void Same(const char* source, Options options = {}) {
    options.seconds = 60;  // all of these end by themselves
    RunResult plain = RunIt(source, /*plain*/ true, options), prepared = RunIt(source, /*plain*/ false, options);
    EXPECT_EQ(prepared.trace, plain.trace) << source;
}

}  // namespace

TEST(Prepared, ChosenPrograms_RunAsPlainOnes) {
    static const char* const sources[] = {
        // Text appended in place, and the target among what is appended.
        "$s:=\"a\"\nFor ($i;1;20)\n$s:=$s+\"b\"+$s+\"c\"\nIf (Length($s)>300)\n$s:=\"x\"\nEnd If\nEnd For",
        "$s:=\"a\"\nFor ($i;1;9)\n$s:=$s+$s[[1]]+$s\nEnd For",
        "$s:=\"a\"\nFor ($i;1;9)\n$s:=$s+$missing\nEnd For",
        "$s:=\"a\"\n$s:=$s+1\n$s:=$s+\"b\"",
        "$s:=\"a\"\n$s:=$s-\"b\"+\"c\"",
        "$s:=\"a\"\nFor ($i;1;3)\n$s:=$s+\"b\"*2\nEnd For",
        // A variable whose kind is another one at the second pass cannot be; one that appears later can.
        "For ($i;1;3)\nIf ($i=2)\n$late:=1\nEnd If\nIf ($i>2)\n$r:=$late+1\nEnd If\nEnd For",
        "For ($i;1;3)\n$r:=$late+1\n$late:=2\nEnd For",
        // Indexes that go out of bounds at a later pass.
        "ARRAY LONGINT($a;3)\nFor ($i;1;5)\n$a{$i}:=$i\n$r:=$a{$i}+1\nEnd For",
        "$t:=\"abc\"\nFor ($i;1;5)\n$r:=$t[[$i]]\nEnd For",
        "ARRAY LONGINT($a;3)\nFor ($i;1;5)\n$r:=$a{4-$i}\nEnd For",
        // Calls within blocks that fail behind them: what a call has done is done once.
        "notes:=0\n$r:=Twice(2)+Add(1;2)+$missing",
        "notes:=0\nNote(\"x\")\n$r:=Bracket(\"a\")+1",
        "notes:=0\nFor ($i;1;3)\n$r:=Twice($i)+$a{$i}\nEnd For",
        "notes:=0\nIf ((Even(2)) & ($missing))\nEnd If",
        // Divisions and wraps.
        "C_LONGINT($l)\nFor ($i;1;40)\n$l:=$l*3+2147483647\nEnd For",
        "For ($i;3;0;-1)\n$r:=6/$i\nEnd For\n$r:=6\\0\n$r:=6%0\n$r:=1/0",
        "$h:=?00:00:10?\nFor ($i;1;3)\n$h:=$h+$h\nEnd For\n$h:=$h/?00:00:00?",
        "$h:=?100:00:00?\n($h*$h)\n$h*$h\n($h*$h)+?00:00:01?\nFor ($i;1;2)\n($h*$h)\nEnd For",  // beyond 32 bits
        "t:=\"a\"\nt:=(t)+SideT(\"y\")\n$r:=(t)+SideT(\"z\")+t",
        "$h:=?100:00:00?\n$a:=($h*$h)\n$b:=$h*$h\n$c:=(Long time(1))\n$d:=Long time(1)+?00:00:01?",
        "$s:=\"\"\nFor ($i;1;3)\n"
        "$s:=$s+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+"
        "\"x\"+"
        "\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"+\"x\"\n"
        "End For",
        "$t:=\"borrowed\"\n$n1:=$t\n$n2:=$t\n$n3:=$n1\n$n4:=$n2\n$n5:=$n3\n$n6:=$n4\n$n7:=$n5\n$n8:=$n6\n$n9:=$n7",
        "If (1=1)\nEnd If\nWhile (False)\nEnd while\nTrue\n\"a\"+\"b\"\nAn object(1)\nMissing(1)\nA pointer(1)",
        // Kinds met in turn by one line.
        "ARRAY TEXT($t;2)\nARRAY REAL($n;2)\nFor ($i;1;2)\nIf ($i=1)\n$p:=->$t\nElse\n$p:=->$n\nEnd If\n$r:=Size of "
        "array($p->)\nEnd For",
        "$x:=1\n$y:=\"a\"\nFor ($i;1;2)\nIf ($i=1)\n$p:=->$x\nElse\n$p:=->$y\nEnd If\n$new:=$p->\nEnd For",
        // True, False and keywords as values.
        "$r:=True & False\n$s:=False | True\n$q:=5+True\n$u:=True=True",
        "$r:=Not(False)\n$s:=Not(Not(True))\n$u:=(Not(False)) & True",
        // A loop variable that is no number, and loops left by an error.
        "$i:=\"x\"\nFor ($i;5;-1)\n$r:=1\nEnd For\n$r:=2",
        "For ($i;1;3)\nFor ($j;1;2)\n$r:=$missing\nEnd For\nEnd For",
        "For (<>i;1;3)\nx:=<>i\nEnd For\nFor (i;3;1;-1)\ny:=i\nEnd For",
        // Names by ASCII case and blanks.
        "$Ab:=1\n$aB:=$AB+1\nmy value := 2\nMY VALUE := my value*2",
        // Comparisons that fail on one side.
        "$r:=1=$missing\n$s:=$missing=1\n$t:=1+$missing=2\n$u:=\"a\"<\"b\"\n$v:=1=\"a\"\n$w:==1\n$x:=1=",
    };
    for (const char* source : sources) {
        Same(source);
        Options again;
        again.times = 2;
        Same(source, again);
        Options cleared;
        cleared.clearsErrors = true;
        Same(source, cleared);
        Options steps;
        steps.steps = true;
        Same(source, steps);
    }
}

TEST(Prepared, RefusedCommands_RefusedInBothForms) {
    static const char* source =
        "$b:=True\n$c:=False\nIf ($b)\n$x:=1\nElse\n$x:=2\nEnd If\nFor ($i;1;2)\n$x:=$x+Length(\"ab\")\nEnd For\nWhile "
        "($x<9)\n$x:=$x+1\nEnd while\n"
        "Repeat\n$x:=$x-1\nUntil ($x<5)\nCase of\n: ($x=4)\n$y:=Not($b)\nElse\n$y:=$c\nEnd case";
    for (long command : {214L, 215L, 16L, 34L, 30001L, 30002L, 30003L, 30004L, 30005L, 30006L, 30007L, 30008L, 30009L,
                         30010L, 30011L, 30012L}) {
        Options refused, unsafe;
        refused.refused = unsafe.unsafe = command;
        Same(source, refused);
        Same(source, unsafe);
    }
}

TEST(Prepared, VariablesGoneBetweenRuns_AreNotFoundInBothForms) {
    std::string traces[2];
    for (int plain = 0; plain < 2; plain++) {
        Program program(kMethods);
        program->plainOnly = plain == 1;
        std::string source;
        for (int i = 0; i < 20; i++) source += "v" + std::to_string(i) + ":=" + std::to_string(i) + "\n";
        program.Run(source);
        long reference = program.Add("", "$r:=v3+v7+v19\nv7:=v7+1\n$s:=v15*2");
        for (const char* gone : {"none", "v5", "v0", "v19", "v7"}) {
            Text name(gone);
            zrExe_DeleteVariableByName(&program->processVariables, name);
            traces[plain] += Trace(&program, program.Start(reference)) + "\n";
        }
    }
    EXPECT_EQ(traces[0], traces[1]);
}
