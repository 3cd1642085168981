#include "tests/runtime/FieldHost.h"
#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

namespace {

struct Row {
    const char* label;
    const char* source;
    const char* error;  // "" = none
    const char* name;   // a variable, null = not looked at
    const char* value;
};

void Check(const Row* rows, size_t count) {
    for (size_t i = 0; i < count; i++) {
        Outcome outcome = RunText(rows[i].source);
        EXPECT_EQ(outcome.error(), rows[i].error) << rows[i].label << "\n" << rows[i].source;
        if (rows[i].name) {
            EXPECT_EQ(outcome[rows[i].name], rows[i].value) << rows[i].label << "\n" << rows[i].source;
        }
    }
}
template <size_t N>
void Check(const Row (&rows)[N]) {
    Check(rows, N);
}

}  // namespace

// If ---------------------------------------------------------------------------------------------------------------

TEST(If, Branches_TrueAndFalse_RunTheirLines) {
    static const Row rows[] = {
        {"true", "If (1=1)\n$r:=1\nEnd If", "", "$r", "real 1"},
        {"false without Else", "$r:=0\nIf (1=2)\n$r:=1\nEnd If", "", "$r", "real 0"},
        {"true with Else", "If (True)\n$r:=1\nElse\n$r:=2\nEnd If", "", "$r", "real 1"},
        {"false with Else", "If (False)\n$r:=1\nElse\n$r:=2\nEnd If", "", "$r", "real 2"},
        {"the line behind", "If (False)\n$r:=1\nElse\n$r:=2\nEnd If\n$r:=$r+10", "", "$r", "real 12"},
        {"nested, inner false", "If (True)\nIf (False)\n$r:=1\nElse\n$r:=2\nEnd If\nElse\n$r:=3\nEnd If", "", "$r",
         "real 2"},
        {"nested, outer false", "If (False)\nIf (True)\n$r:=1\nElse\n$r:=2\nEnd If\nElse\n$r:=3\nEnd If", "", "$r",
         "real 3"},
        {"nested in the Else", "If (False)\n$r:=1\nElse\nIf (True)\n$r:=4\nEnd If\nEnd If", "", "$r", "real 4"},
        {"blanks in front", "  If (False)\n  $r:=1\n  Else\n  $r:=2\n  End If", "", "$r", "real 2"},
        {"lower case", "if (false)\n$r:=1\nelse\n$r:=2\nend if", "", "$r", "real 2"},
        {"siblings of one depth", "If (False)\n$r:=1\nEnd If\nIf (True)\n$r:=2\nElse\n$r:=3\nEnd If", "", "$r",
         "real 2"},
        {"condition of several parts", "If (True) & (False)\n$r:=1\nElse\n$r:=2\nEnd If", "", "$r", "real 2"},
        {"condition of several parts", "If (True) | (False)\n$r:=1\nElse\n$r:=2\nEnd If", "", "$r", "real 1"},
        {"empty body", "If (True)\nElse\nEnd If\n$r:=7", "", "$r", "real 7"},
    };
    Check(rows);
}

TEST(If, TwoElseAtOneDepth_SecondEndsTheBranch) {
    EXPECT_EQ(RunFor("If (False)\n$r:=1\nElse\n$r:=2\nElse\n$r:=3\nEnd If"), "real 2");
    EXPECT_EQ(RunFor("If (True)\n$r:=1\nElse\n$r:=2\nElse\n$r:=3\nEnd If"), "real 1");
}

TEST(If, Errors_ExactWords) {
    static const Row rows[] = {
        {"no end, false", "If (False)\n$r:=1", "-15@1 End If expected", "$r", "missing"},
        {"no end, Else reached", "If (True)\n$r:=1\nElse\n$r:=2", "-15@3 End If expected", "$r", "real 1"},
        {"no end, true: harmless", "If (True)\n$r:=1", "", "$r", "real 1"},
        {"end of a Case stops the search", "If (False)\n$r:=1\nEnd case\nElse\nEnd If", "-15@1 End If expected",
         nullptr, nullptr},
        {"End If alone is harmless", "End If\n$r:=1", "", "$r", "real 1"},
        {"Else alone is harmless", "Else\n$r:=1", "", "$r", "real 1"},
        {"no bracket", "If\n$r:=1\nEnd If", "-27@1 Wrong If-Statement", "$r", "missing"},
        {"empty bracket", "If ()\n$r:=1\nEnd If", "-27@1 Wrong If-Statement", "$r", "missing"},
        {"number", "If (1)\n$r:=1\nEnd If", "-13@1 Command \"\" wrong parameter type", "$r", "missing"},
        {"two parameters", "If (True;True)\n$r:=1\nEnd If", "-13@1 Command \"\" wrong count of parameters", "$r",
         "missing"},
        {"a number behind", "If (True)+1\n$r:=1\nEnd If", "-10@1 Syntax error: Invalid type", "$r", "missing"},
        {"a text without bracket", "If \"x\"\n$r:=1\nEnd If", "-13@1 Command \"\" wrong count of parameters", "$r",
         "missing"},
        {"missing variable on the left", "If ($x=1)\nEnd If", "-14@1 Unknown Variable \"$x\"", nullptr, nullptr},
        {"missing variable on the right", "If (1=$x)\nEnd If", "-25@1 Unknown Variable \"$x\"Wrong type in comparison",
         nullptr, nullptr},
    };
    Check(rows);
}

TEST(If, LineContext_ElseInForInIf_TakesItsContextFromTheIf) {
    // The Else lies two deep, the End If one deep: no End If at its depth.
    EXPECT_EQ(RunForError("If (True)\nFor ($i;1;2)\n$r:=$i\nElse\nEnd For\nEnd If"), "-15@4 End If expected");
}

// For --------------------------------------------------------------------------------------------------------------

TEST(For, Passes_RunOncePerValueAndLeaveTheVariableBehindTheEnd) {
    static const struct {
        const char* head;
        const char* values;
        const char* after;
    } rows[] = {
        {"For ($i;1;3)", "1|2|3", "longint 4"},       {"For ($i;3;1;-1)", "3|2|1", "longint 0"},
        {"For ($i;1;3;0)", "", "longint 1"},          {"For ($i;5;1)", "", "longint 5"},
        {"For ($i;1;1)", "1", "longint 2"},           {"For ($i;1;10;4)", "1|5|9", "longint 13"},
        {"For ($i;1;10;4.9)", "1|5|9", "longint 13"}, {"For ($i;1;3;0.5)", "", "longint 1"},
        {"For ($i;1.9;3.9)", "1|2|3", "longint 4"},   {"For ($i;-2;0)", "-2|-1|0", "longint 1"},
        {"For ($i;1;3;-1)", "", "longint 1"},         {"For ($i;-1;-5;-2)", "-1|-3|-5", "longint -7"},
        {"For ($i;0x01;0x03)", "1|2|3", "longint 4"}, {"For ($i;1+1;2*2)", "2|3|4", "longint 5"},
        {"For ($i;1;-0.5)", "", "longint 1"},
    };
    for (const auto& row : rows) {
        Outcome outcome = RunText(std::string(row.head) + "\nALERT(String($i))\nEnd For");
        EXPECT_EQ(outcome.error(), "") << row.head;
        EXPECT_EQ(outcome.joined(), row.values) << row.head;
        EXPECT_EQ(outcome["$i"], row.after) << row.head;
    }
}

TEST(For, EndAndStep_EvaluatedAtEveryPass) {
    EXPECT_EQ(RunText("$n:=9\n$t:=\"\"\nFor ($i;1;$n)\n$t:=$t+String($i)\nIf ($i=3)\n$n:=4\nEnd If\nEnd For")["$t"],
              "text 1234");
    EXPECT_EQ(RunText("$s:=1\n$t:=\"\"\nFor ($i;1;20;$s)\n$t:=$t+String($i)+\",\"\n$s:=$s*2\nEnd For")["$t"],
              "text 1,3,7,15,");
    // A step that turns negative ends the loop once the variable falls below the end.
    EXPECT_EQ(RunText("$s:=1\n$t:=\"\"\nFor ($i;1;3;$s)\n$t:=$t+String($i)+\",\"\n$s:=-1\nEnd For")["$t"], "text 1,");
}

TEST(For, Start_EvaluatedAtEveryPassAndUsedOnce) {
    Program program = {{"Begin", "counter:=counter+1\n$0:=counter"}};
    Outcome outcome = program.Run("counter:=0\n$t:=\"\"\nFor ($i;Begin;3)\n$t:=$t+String($i)\nEnd For");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["$t"], "text 123");
    EXPECT_EQ(outcome["counter"], "real 4");
}

TEST(For, Variable_KeepsItsKind) {
    // A real keeps the fraction of the start in the first pass; later passes grow from the truncated number.
    Outcome real = RunText("$i:=0.5\nFor ($i;1.9;3)\nALERT(String($i))\nEnd For");
    EXPECT_EQ(real.joined(), "1.9|2|3");
    EXPECT_EQ(real["$i"], "real 4");
    // A text takes no number and counts as 0.
    Outcome text = RunText("$i:=\"x\"\nFor ($i;5;-1)\n$r:=1\nEnd For");
    EXPECT_EQ(text.error(), "");
    EXPECT_EQ(text["$i"], "text x");
    EXPECT_EQ(text["$r"], "missing");
    Outcome process = RunText("For (i;1;2)\nEnd For\nFor (<>i;1;3)\nEnd For");
    EXPECT_EQ(process["i"], "longint 3");
    EXPECT_EQ(process["<>i"], "longint 4");
}

TEST(For, Body_MayChangeTheVariable) {
    EXPECT_EQ(RunText("$t:=\"\"\nFor ($i;1;6)\n$t:=$t+String($i)\n$i:=$i+1\nEnd For")["$t"], "text 135");
}

TEST(For, Nested_InnerLoopStartsAnewAtEveryPassOfTheOuter) {
    Outcome outcome =
        RunText("$t:=\"\"\nFor ($i;1;3)\nFor ($j;1;$i)\n$t:=$t+String($j)\nEnd For\n$t:=$t+\".\"\nEnd For");
    EXPECT_EQ(outcome["$t"], "text 1.12.123.");
}

TEST(For, Recursion_EachFrameHasLoopsOfItsOwn) {
    Program program = {
        {"Down", "$n:=$1\nFor ($i;1;2)\ntrail:=trail+String($n)\nIf ($n>1)\nDown($n-1)\nEnd If\nEnd For"}};
    Outcome outcome = program.Run("trail:=\"\"\nDown(2)");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["trail"], "text 211211");
}

TEST(For, Errors_ExactWords) {
    static const Row rows[] = {
        {"no end, empty range", "For ($i;1;0)\n$r:=1", "-16@1 End For expected", "$r", "missing"},
        {"no end: the body runs once", "For ($i;1;3)\n$r:=1", "", "$r", "real 1"},
        {"end alone", "$r:=1\nEnd For", "-17@2 For expected", "$r", "real 1"},
        {"two parameters", "For ($i;1)\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"no bracket", "For\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"empty bracket", "For ()\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"no variable", "For (1;1;3)\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"start is a text", "For ($i;\"a\";3)\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"end is a time", "For ($i;1;?00:00:03?)\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"step is a text", "For ($i;1;3;\"1\")\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
        {"step is a boolean", "For ($i;1;3;True)\nEnd For", "-30@1 Wrong For/End For-Statement", nullptr, nullptr},
    };
    Check(rows);
    // Five parameters: the fifth is not looked at.
    EXPECT_EQ(RunText("For ($i;1;4;2;\"x\")\n$r:=$i\nEnd For")["$r"], "real 3");
}

TEST(For, ActiveLines_EmptiedByARunFromLineOneAlone) {
    Program program;
    long reference = program.Add("", "For ($i;1;3)\n$r:=$missing\nEnd For");
    EXPECT_EQ(program.Start(reference).number, -14);
    EXPECT_EQ(program->rootStack.activeForLines.count, 1);  // left by an error: stays
    program.Start(reference, 2);
    EXPECT_EQ(program->rootStack.activeForLines.count, 1);
    program.Start(reference, 1);
    EXPECT_EQ(program->rootStack.activeForLines.count, 1);  // emptied, then entered again by the line itself
    EXPECT_EQ(Describe(program.Find("$i")), "longint 1");
}

TEST(For, VariableGone_UnknownVariable) {
    Program program;
    long reference = program.Add("", "For ($i;1;3)\n$r:=$i\nEnd For");
    program.Start(reference, 1);
    Text name("i");
    ASSERT_TRUE(zrExe_DeleteVariableByName(&program->rootStack.localVariables, name));
    // Not from line 1, so that the loop is still running: the For line by way of its End For.
    program.Start(reference, 3);
    EXPECT_EQ(program->rootStack.currentLine, 1);
    ZR_Executer_Stack* frame = &program->rootStack;
    Tokens parameters;
    parameters.Local("i").Number(1).Number(3);
    long state = 0;
    frame->currentLine = 1;
    program->ExecuteHandleFor(frame, parameters, &state);
    EXPECT_EQ(program.Collect().number, -14);
    EXPECT_EQ(program.Collect().text, "Unknown variable");
}

// Repeat and While -------------------------------------------------------------------------------------------------

TEST(Repeat, Body_RunsUntilTrue) {
    static const Row rows[] = {
        {"three times", "$r:=0\nRepeat\n$r:=$r+1\nUntil ($r=3)", "", "$r", "real 3"},
        {"at least once", "$r:=0\nRepeat\n$r:=$r+1\nUntil (True)", "", "$r", "real 1"},
        {"nested", "$r:=0\n$i:=0\nRepeat\n$i:=$i+1\n$j:=0\nRepeat\n$j:=$j+1\n$r:=$r+1\nUntil ($j=2)\nUntil ($i=3)", "",
         "$r", "real 6"},
        {"Repeat alone", "Repeat\n$r:=1", "", "$r", "real 1"},
        {"Until true alone", "Until (True)\n$r:=1", "", "$r", "real 1"},
        {"Until alone", "$r:=1\nUntil (False)", "-18@2 Repeat expected", "$r", "real 1"},
        {"no bracket", "Repeat\nUntil", "-29@2 Wrong Repeat/Until-Statement", nullptr, nullptr},
        {"empty bracket", "Repeat\nUntil ()", "-29@2 Wrong Repeat/Until-Statement", nullptr, nullptr},
        {"a text", "Repeat\nUntil (\"x\")", "-13@2 Command \"\" wrong parameter type", nullptr, nullptr},
        {"two parameters", "Repeat\nUntil (True;False)", "-13@2 Command \"\" wrong count of parameters", nullptr,
         nullptr},
    };
    Check(rows);
}

TEST(While, Body_RunsWhileTrue) {
    static const Row rows[] = {
        {"three times", "$r:=0\nWhile ($r<3)\n$r:=$r+1\nEnd while", "", "$r", "real 3"},
        {"never", "$r:=0\nWhile (False)\n$r:=$r+1\nEnd while\n$q:=1", "", "$r", "real 0"},
        {"nested",
         "$r:=0\n$i:=0\nWhile ($i<3)\n$i:=$i+1\n$j:=0\nWhile ($j<2)\n$j:=$j+1\n$r:=$r+1\nEnd while\nEnd while", "",
         "$r", "real 6"},
        {"sibling before", "$r:=0\nWhile ($r<2)\n$r:=$r+1\nEnd while\nWhile ($r<5)\n$r:=$r+1\nEnd while", "", "$r",
         "real 5"},
        {"no end, false", "While (False)\n$r:=1", "-19@1 End While expected", "$r", "missing"},
        {"no end, true: harmless", "While (True)\n$r:=1", "", "$r", "real 1"},
        {"end alone", "$r:=1\nEnd while", "-20@2 While expected", "$r", "real 1"},
        {"no bracket", "While\nEnd while", "-28@1 Wrong While-Statement", nullptr, nullptr},
        {"empty bracket", "While ()\nEnd while", "-28@1 Wrong While-Statement", nullptr, nullptr},
        {"a number", "While (1)\nEnd while", "-13@1 Command \"\" wrong parameter type", nullptr, nullptr},
        {"two parameters", "While (True;False)\nEnd while", "-13@1 Command \"\" wrong count of parameters", nullptr,
         nullptr},
    };
    Check(rows);
}

// Case of ----------------------------------------------------------------------------------------------------------

TEST(CaseOf, Branches_FirstTrueOneRuns) {
    static const char* body =
        "Case of\n: ($a=1)\n$r:=1\n: ($a=2)\n$r:=2\n$r:=$r*10\n: ($a<4)\n$r:=3\nElse\n$r:=4\nEnd case\n$q:=1";
    static const struct {
        int a;
        const char* r;
    } rows[] = {{1, "real 1"}, {2, "real 20"}, {3, "real 3"}, {4, "real 4"}};
    for (const auto& row : rows) {
        Outcome outcome = RunText("$a:=" + std::to_string(row.a) + "\n" + body);
        EXPECT_EQ(outcome.error(), "") << row.a;
        EXPECT_EQ(outcome["$r"], row.r) << row.a;
        EXPECT_EQ(outcome["$q"], "real 1") << row.a;
    }
}

TEST(CaseOf, Forms_WithoutElseAndWithoutBranches) {
    static const Row rows[] = {
        {"no branch true, no Else", "Case of\n: (False)\n$r:=1\nEnd case\n$q:=1", "", "$q", "real 1"},
        {"no branches", "Case of\nEnd case\n$q:=1", "", "$q", "real 1"},
        {"Else alone is the default", "Case of\nElse\n$r:=5\nEnd case", "", "$r", "real 5"},
        {"lines before the first branch are passed over", "Case of\n$r:=9\n: (True)\n$q:=1\nEnd case", "", "$r",
         "missing"},
        {"branch without brackets", "Case of\n: 1=1\n$r:=1\nEnd case", "", "$r", "real 1"},
        {"empty body", "Case of\n: (True)\n: (True)\n$r:=2\nEnd case", "", "$r", "missing"},
        {"only the first line behind Else is entered from above", "Case of\n: (False)\nElse\n$r:=1\n$r:=$r+1\nEnd case",
         "", "$r", "real 2"},
        {"End case alone is harmless", "End case\n$r:=1", "", "$r", "real 1"},
        {"in an If", "If (True)\nCase of\n: (True)\n$r:=1\nElse\n$r:=2\nEnd case\nElse\n$r:=3\nEnd If", "", "$r",
         "real 1"},
        {"an If behind a line in a branch",
         "Case of\n: (True)\n$q:=1\nIf (False)\n$r:=1\nElse\n$r:=2\nEnd If\n: (True)\n$r:=3\nEnd case", "", "$r",
         "real 2"},
        {"an If behind a line in a passed branch",
         "Case of\n: (False)\n$q:=1\nIf (False)\n$r:=1\nEnd If\n: (True)\n$r:=3\nEnd case", "", "$r", "real 3"},
        {"in a loop",
         "$r:=\"\"\nFor ($i;1;4)\nCase of\n: ($i=2)\n$r:=$r+\"b\"\n: ($i=4)\n$r:=$r+\"d\"\nElse\n$r:=$r+\"-\"\nEnd "
         "case\nEnd For",
         "", "$r", "text -b-d"},
    };
    Check(rows);
}

TEST(CaseOf, Conditions_EvaluatedInOrderUpToTheTrueOne) {
    Program program = {{"Ask", "trail:=trail+$1\n$0:=($1=\"c\")"}};
    Outcome outcome = program.Run(
        "trail:=\"\"\nCase of\n: (Ask(\"a\"))\n$r:=1\n: (Ask(\"b\"))\n$r:=2\n: (Ask(\"c\"))\n$r:=3\n: "
        "(Ask(\"d\"))\n$r:=4\nEnd case");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["trail"], "text abc");
    EXPECT_EQ(outcome["$r"], "real 3");
}

// Required: the search for the next branch starts behind the condition at that line's depth.
TEST(CaseOf, CaseOf_BodyOpensWithBlock_LaterBranchesHidden) {
    static const char* blocks[] = {"If (True)\n$q:=1\nEnd If", "For ($i;1;1)\n$q:=1\nEnd For",
                                   "Repeat\n$q:=1\nUntil (True)", "While (False)\n$q:=1\nEnd while"};
    for (const char* block : blocks) {
        std::string source = std::string("Case of\n: (False)\n") + block + "\n: (True)\n$r:=2\nElse\n$r:=3\nEnd case";
        EXPECT_EQ(RunFor(source), "real 3") << block;
        std::string withoutElse = std::string("Case of\n: (False)\n") + block + "\n: (True)\n$r:=2\nEnd case\n$s:=1";
        Outcome outcome = RunText(withoutElse);
        EXPECT_EQ(outcome.error(), "") << block;
        EXPECT_EQ(outcome["$r"], "missing") << block;
        EXPECT_EQ(outcome["$s"], "real 1") << block;
    }
    // A body that opens with a Case of shows the branches of the inner one.
    Outcome inner =
        RunText("Case of\n: (False)\nCase of\n: (True)\n$r:=\"inner\"\nEnd case\n: (True)\n$r:=\"outer\"\nEnd case");
    EXPECT_EQ(inner.error(), "");
    EXPECT_EQ(inner["$r"], "text inner");
}

TEST(CaseOf, Errors_ExactWords) {
    static const Row rows[] = {
        {"no end, no branch true", "Case of\n: (False)\n$r:=1", "-21@2 End Case expected", nullptr, nullptr},
        {"no end, no branches", "Case of\n$r:=1", "-21@1 End Case expected", "$r", "missing"},
        {"no end behind a branch", "Case of\n: (True)\n$r:=1\n: (False)\n$r:=2", "-21@4 End case expected", "$r",
         "real 1"},
        {"no end behind a branch, Else", "Case of\n: (True)\n$r:=1\nElse\n$r:=2", "-21@4 End case expected", "$r",
         "real 1"},
        {"no end, true branch last: harmless", "Case of\n: (True)\n$r:=1", "", "$r", "real 1"},
        {"a branch outside", "$r:=1\n: (True)", "-21@2 End case expected", "$r", "real 1"},
        {"a number", "Case of\n: (False)\n$r:=1\n: (5)\n$r:=2\nEnd case", "-22@4 Wrong Case Statement Line #4", "$r",
         "missing"},
        {"a text", "Case of\n: (\"x\")\nEnd case", "-22@2 Wrong Case Statement Line #2", nullptr, nullptr},
        {"nothing", "Case of\n:\nEnd case", "-22@2 Wrong Case Statement Line #2", nullptr, nullptr},
        {"empty bracket", "Case of\n: ()\nEnd case", "-22@2 Wrong Case Statement Line #2", nullptr, nullptr},
        {"missing variable", "Case of\n: ($x)\nEnd case", "-22@2 Unknown Variable \"$x\"Wrong Case Statement Line #2",
         nullptr, nullptr},
    };
    Check(rows);
}

// Lines ------------------------------------------------------------------------------------------------------------

TEST(Lines, EmptyAndComment_CountAsLines) {
    EXPECT_EQ(RunForError("\n\n$r:=$missing"), "-14@3 Unknown Variable \"$missing\"");
}

TEST(Lines, Breaks_AllKindsCount) {
    EXPECT_EQ(RunText("$a:=1\r\n$b:=2\r$c:=3\n$d:=4")["$d"], "real 4");
    EXPECT_EQ(RunForError("\r\n\r\n:=1"), "-3@3 Syntax Error: Could not make assignment!");
}

TEST(Lines, CommentBehindAStatement_EvaluatesToNothing) {
    Outcome outcome = RunText("// first\n$r:=1+2 // three\n//");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["$r"], "real 3");
}

TEST(Lines, Keyword_CountsOnlyAsTheFirstToken) {
    // Behind another token the keyword is a command: an If gives its parameter.
    EXPECT_EQ(RunFor("$r:=If(True)"), "boolean true");
    EXPECT_EQ(RunText("$a:=1\n$r:=2 End If\n$q:=3")["$q"], "real 3");
}

TEST(Lines, ExpressionStatement_LeavesItsValueAsTheResult) {
    static const struct {
        const char* source;
        const char* result;
    } rows[] = {{"1+2*3", "number 9"},    {"\"a\"+\"b\"", "text ab"},    {"1=1", "boolean true"},
                {"(2)", "number 2"},      {"$x:=1", "nothing"},          {"", "nothing"},
                {"5\n7", "number 5"},     {"ALERT(\"x\")", "nothing"},   {"!2/1/2003!", "date 2003-2-1"},
                {"True", "boolean true"}, {"1+2 // comment", "number 3"}};
    for (const auto& row : rows) {
        Program program;
        long reference = program.Add("", row.source);
        program.Start(reference, 1);
        EXPECT_EQ(Describe(&program->result), row.result) << row.source;
        program.Start(reference);  // the whole method: emptied again when the line behind the last is looked for
        EXPECT_EQ(Describe(&program->result), "nothing") << row.source;
    }
}

// Brackets ---------------------------------------------------------------------------------------------------------

TEST(Brackets, Groups_ReducedFromTheInsideOut) {
    static const struct {
        const char* expression;
        const char* value;
    } rows[] = {
        {"1+(2*3)", "real 7"},
        {"(1+2)*(3+4)", "real 21"},
        {"((((5))))", "real 5"},
        {"10-(4-(3-(2-1)))", "real 8"},
        {"()+1", "real 1"},
        {"1+()", "real 1"},
        {"1)", "real 1"},
        {")1", "real 1"},
        {")(1)", "real 1"},
        {"(1=1) & (2=3)", "boolean false"},
        {"(\"a\"+\"b\")*2", "text abab"},
        {"(((1)+1)*2)+1", "real 5"},
    };
    for (const auto& row : rows) EXPECT_EQ(RunFor(std::string("$r:=") + row.expression), row.value) << row.expression;
}

TEST(Brackets, Unclosed_ClosedBracketExpected) {
    for (const char* source : {"$x:=(1", "$x:=((1)", "If (True", "ALERT(\"a\"", "$x:=(", "$x:=1)+(2"})
        EXPECT_EQ(RunForError(source), "-41@1 Closed Bracket expected") << source;
}

TEST(Brackets, Calls_InTheOrderInWhichTheirBracketsClose) {
    Program program = {{"F", "trail:=trail+$1\n$0:=$1"}};
    program.Run("trail:=\"\"\n$r:=F(\"1\")+F(F(\"2\")+\"3\")+F(\"4\")");
    EXPECT_EQ(program.Collect()["trail"], "text 12234");
    EXPECT_EQ(program.Collect()["$r"], "text 1234");
    // Calls without brackets run later, in the pass over the rest.
    Program late = {{"F", "trail:=trail+\"f\"\n$0:=\"\""}, {"G", "trail:=trail+\"g\"\n$0:=\"\""}};
    late.Run("trail:=\"\"\n$r:=F+G(\"x\")");
    EXPECT_EQ(late.Collect().error(), "");
    EXPECT_EQ(late.Collect()["trail"], "text gf");
}

TEST(Brackets, EmptyOfACall_RunsLaterWithoutParameters) {
    Program program = {{"F", "trail:=trail+\"f\"\n$0:=7"}, {"G", "trail:=trail+\"g\"\n$0:=1"}};
    Outcome outcome = program.Run("trail:=\"\"\n$r:=F()+G(1)");
    EXPECT_EQ(outcome["trail"], "text gf");
    EXPECT_EQ(outcome["$r"], "real 8");
    EXPECT_EQ(RunFor("$r:=True()"), "boolean true");
}

TEST(Brackets, ValueOfKindNothing_LeavesNoToken) {
    // A pointer alone has no value, so that its group disappears.
    EXPECT_EQ(RunForError("$x:=1\n$p:=->$x\n$r:=($p)"), "-5@3 Undefined assignment variable type");
    EXPECT_EQ(RunFor("$x:=1\n$p:=->$x\n$r:=5+($p)"), "real 5");
}

// Assignment -------------------------------------------------------------------------------------------------------

TEST(Assignment, Targets_ExactWords) {
    static const Row rows[] = {
        {"nothing on the left", ":=5", "-3@1 Syntax Error: Could not make assignment!", nullptr, nullptr},
        {"a number on the left", "5:=3", "-4@1 No variable/field to assign", nullptr, nullptr},
        {"a text on the left", "\"a\":=3", "-4@1 No variable/field to assign", nullptr, nullptr},
        {"nothing on the right", "$x:=", "-5@1 Undefined assignment variable type", "$x", "missing"},
        {"a comment on the right", "$x:=//c", "-5@1 Undefined assignment variable type", "$x", "missing"},
        {"the first := counts", "$x:=$y:=3", "-14@1 Unknown Variable \"$y\"", nullptr, nullptr},
        {"element", "ARRAY LONGINT($a;3)\n$a{2}:=7", "", "$a", "array longint [0|7|0]"},
        {"element by expression", "ARRAY LONGINT($a;3)\n$i:=1\n$a{$i+2}:=7", "", "$a", "array longint [0|0|7]"},
        {"element, index truncated", "ARRAY LONGINT($a;3)\n$a{1.9}:=7", "", "$a", "array longint [7|0|0]"},
        {"element, hexadecimal index", "ARRAY LONGINT($a;3)\n$a{0x03}:=7", "", "$a", "array longint [0|0|7]"},
        {"index is a text", "ARRAY LONGINT($a;3)\n$a{\"1\"}:=7", "-35@2 Array index must be a number", nullptr,
         nullptr},
        {"empty index", "ARRAY LONGINT($a;3)\n$a{ }:=7", "-10@2 Variable \"$a\" has incorrect type!", nullptr, nullptr},
        {"not closed", "ARRAY LONGINT($a;3)\n$a{1+1:=7", "-34@2 Array access error", nullptr, nullptr},
        {"out of order", "ARRAY LONGINT($a;3)\n$a}1{:=7", "-34@2 Array access error", nullptr, nullptr},
        {"a character", "$s:=\"abc\"\n$s[[1]]:=\"x\"", "-34@2 Array access error", "$s", "text abc"},
        {"element 0 is the array itself", "ARRAY LONGINT($a;3)\n$a{0}:=7", "-10@2 Variable \"$a\" has incorrect type!",
         nullptr, nullptr},
        {"behind the end", "ARRAY LONGINT($a;3)\n$a{4}:=7",
         "-36@2 Array access \"a\" not possible. Index: 4 Array size: 3", nullptr, nullptr},
        {"on a plain variable", "$a:=1\n$a{2}:=3", "-36@2 Array access \"a\" not possible. Index: 2 Array size: 0",
         "$a", "real 1"},
        {"missing array", "$a{2}:=3", "-11@1 Variable \"a\" not found!", "$a", "missing"},
    };
    Check(rows);
}

TEST(Assignment, Members_WalkToTheLastName) {
    static const Row rows[] = {
        {"new property", "$o:=New object\n$o.a:=1", "", "$o", "object {\"a\":1}"},
        {"property again", "$o:=New object\n$o.a:=1\n$o.a:=\"x\"", "", "$o", "object {\"a\":\"x\"}"},
        {"nested", "$o:=New object\n$o.a:=New object\n$o.a.b:=2", "", "$o", "object {\"a\":{\"b\":2}}"},
        {"three deep", "$o:=New object\n$o.a:=New object\n$o.a.b:=New object\n$o.a.b.c:=True", "", "$o",
         "object {\"a\":{\"b\":{\"c\":true}}}"},
        {"a property on the way that is no object is passed over", "$o:=New object\n$o.a:=5\n$o.a.b:=2", "", "$o",
         "object {\"a\":5,\"b\":2}"},
        {"a missing property on the way is passed over", "$o:=New object\n$o.x.b:=2", "", "$o", "object {\"b\":2}"},
        {"null object", "C_OBJECT($o)\n$o.a:=1", "-59@2 Object cannot be null", "$o", "object none"},
        {"process variable", "o:=New object\no.a:=1", "", "o", "object {\"a\":1}"},
        {"interprocess variable", "<>o:=New object\n<>o.a:=1", "", "<>o", "object {\"a\":1}"},
        // The target falls back to the variable itself.
        {"missing variable", "$x.a:=1", "-57@1 Object variable not found!", "$x", "real 1"},
        {"no object", "$x:=1\n$x.a:=2", "-58@2 Variable is no object!", "$x", "real 2"},
        {"no object, another kind", "$x:=1\n$x.a:=\"t\"",
         "-10@2 Variable is no object!Variable \"$x\" has incorrect type!", "$x", "real 1"},
        {"no object, long path", "$x:=1\n$x.a.b.c:=2", "-34@2 Variable is no object!Array access error", "$x",
         "real 1"},
    };
    Check(rows);
}

// Pointers ---------------------------------------------------------------------------------------------------------

TEST(Pointers, ToVariables_AssignAndRead) {
    static const Row rows[] = {
        {"local", "$x:=1\n$p:=->$x\n$p->:=5", "", "$x", "real 5"},
        {"process", "x:=1\n$p:=->x\n$p->:=5", "", "x", "real 5"},
        {"interprocess", "<>x:=1\n$p:=-><>x\n$p->:=5", "", "<>x", "real 5"},
        {"read", "$x:=4\n$p:=->$x\n$r:=$p->+1", "", "$r", "real 5"},
        {"several on a line", "$x:=4\n$y:=5\n$p:=->$x\n$q:=->$y\n$r:=$p->*$q->", "", "$r", "real 20"},
        {"made from a missing variable", "$p:=->$x\n$p->:=5", "", "$x", "real 5"},
        {"element", "ARRAY LONGINT($a;2)\n$p:=->$a\n$p->{2}:=5", "", "$a", "array longint [0|5]"},
        {"a local has no reference yet", "$x:=1\n$p:=->$x", "", "$p", "pointer x 1"},
        {"a process variable", "$p:=->x", "", "$p", "pointer x -1"},
        {"an interprocess variable", "$p:=-><>x", "", "$p", "pointer x -2"},
        {"array of pointers", "ARRAY POINTER($a;1)\n$a{1}:=->x", "", "$a", "array pointer [x -1]"},
        {"missing pointer", "$p->:=5", "-11@1 Variable \"p\" not found!", nullptr, nullptr},
        {"no pointer", "$p:=1\n$p->:=5", "-12@2 The Variable \"p\" is no pointer!", nullptr, nullptr},
        {"nothing behind", "$p:=->", "-6@1 Pointer points to nothing!", nullptr, nullptr},
        {"empty name", "$p:=->$", "-9@1 Pointer to an invalid Variable!", nullptr, nullptr},
        {"a pointer alone has no value", "$p:=->$x\n$q:=$p", "-5@2 Undefined assignment variable type", "$q",
         "missing"},
    };
    Check(rows);
}

// Required: a pointer to a local names it, and the frame that follows the pointer looks in itself.
TEST(Pointers, ToLocal_FollowedInAnotherFrame_FindsThatFramesVariable) {
    Program program = {{"Set", "$1->:=5\nALERT(String($x))"}};
    Outcome outcome = program.Run("$x:=1\nSet(->$x)");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["$x"], "real 1");
    EXPECT_EQ(outcome.joined(), "5");
    Program process = {{"Set", "$1->:=5"}};
    EXPECT_EQ(process.Run("x:=1\nSet(->x)")["x"], "real 5");
}

TEST(Pointers, ToHostVariable_ReadsItsValue) {
    Machine::Get().host->setVariable(u"hosted", zrhost::Value(12.5));
    EXPECT_EQ(RunFor("$p:=_Get 4D Variable Pointer(\"hosted\")\n$r:=$p->*2"), "real 25");
    EXPECT_EQ(RunForError("$p:=_Get 4D Variable Pointer(\"hosted\")\n$p->:=2"), "-4@2 No variable/field to assign");
}

namespace {

// The arrow pass on a list of tokens alone, as a line of a method of that reference.
std::string Resolve(ZR_Handle* tokens, ZR_ExecutionContext* context, std::string* error) {
    ZR_ExecutionMethod method;
    method.Create(static_cast<ZR_Text*>(nullptr), nullptr, 7);
    context->ExecuteHandleToPointers(&method, tokens);
    method.Dispose();
    *error = context->lastError ? std::to_string(context->lastError) + " " + Narrow(&context->lastErrorText) : "";
    std::string all;
    for (long i = 1; i <= tokens->count; i++)
        all += (i > 1 ? " | " : "") + Describe(reinterpret_cast<ZR_Executer_Token*>(tokens->GetMemPtr(i)));
    return all;
}

}  // namespace

TEST(Pointers, MadeFromTokens_EveryTarget) {
    static const struct {
        const char* label;
        void (*fill)(Tokens* tokens);
        const char* tokens;
        const char* error;
    } rows[] = {
        {"table", [](Tokens* t) { t->Kind(26).Kind(21, 3); }, "pointer  3", ""},
        {"field", [](Tokens* t) { t->Kind(26).Kind(22, (3 << 16) + 5); }, "pointer  196613", ""},
        {"local", [](Tokens* t) { t->Kind(26).Local("a"); }, "pointer a 7", ""},
        {"process", [](Tokens* t) { t->Kind(26).Process("a"); }, "pointer a -1", ""},
        {"interprocess", [](Tokens* t) { t->Kind(26).Interprocess("a"); }, "pointer a -2", ""},
        {"behind an assignment", [](Tokens* t) { t->Local("p").Kind(5).Kind(26).Local("a"); },
         "variable $p | kind 5 | pointer a 7", ""},
        {"two", [](Tokens* t) { t->Kind(26).Local("a").Kind(15).Kind(26).Process("b"); },
         "pointer a 7 | kind 15 | pointer b -1", ""},
        {"table 0", [](Tokens* t) { t->Kind(26).Kind(21, 0); }, nullptr, "-7 Pointer to an invalid Table!"},
        {"table -1", [](Tokens* t) { t->Kind(26).Kind(21, -1); }, nullptr, "-7 Pointer to an invalid Table!"},
        {"field of table 0", [](Tokens* t) { t->Kind(26).Kind(22, 5); }, nullptr, "-8 Pointer to an invalid Field!"},
        {"field 0", [](Tokens* t) { t->Kind(26).Kind(22, 3 << 16); }, nullptr, "-8 Pointer to an invalid Field!"},
        {"empty name", [](Tokens* t) { t->Kind(26).Local(""); }, nullptr, "-9 Pointer to an invalid Variable!"},
        {"nothing", [](Tokens* t) { t->Kind(26); }, nullptr, "-6 Pointer points to nothing!"},
        {"no arrow", [](Tokens* t) { t->Local("a").Number(1); }, "variable $a | number 1", ""},
    };
    for (const auto& row : rows) {
        Program program;
        Tokens tokens;
        row.fill(&tokens);
        std::string error, list = Resolve(tokens, program, &error);
        EXPECT_EQ(error, row.error) << row.label;
        if (row.tokens) { EXPECT_EQ(list, row.tokens) << row.label; }
    }
}

TEST(Pointers, Followed_EveryTarget) {
    static const struct {
        const char* label;
        const char* name;
        long value;
        const char* tokens;
    } rows[] = {
        {"process", "v", -1, "variable v"},
        {"interprocess", "v", -2, "variable <>v"},
        {"local", "v", 4, "variable $v"},
        {"table", "", 3, "table 3"},
        {"nil", "", 0, "table 0"},
        {"host", "hosted2", -3, "text from the host"},
        {"missing host variable", "nowhere", -3, "nothing"},
    };
    Machine::Get().host->setVariable(u"hosted2", zrhost::Value(u"from the host"));
    for (const auto& row : rows) {
        Program program;
        Text name("p"), target(row.name);
        ZR_Executer_Variable* pointer =
            zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Pointer);
        pointer->text.AddText(target);
        pointer->value.integer = row.value;
        Tokens tokens;
        tokens.Process("p").Kind(26);
        std::string error;
        EXPECT_EQ(Resolve(tokens, program, &error), row.tokens) << row.label;
        EXPECT_EQ(error, "") << row.label;
    }
}

TEST(Pointers, Followed_ToAField_GivesTheFieldToken) {
    Program program;
    Text name("p");
    zrExe_FindVariableByNameAndCreate(&program->processVariables, name, ZR_EXE_Pointer)->value.integer = (3 << 16) + 5;
    Tokens tokens;
    tokens.Process("p").Kind(26);
    std::string error;
    EXPECT_EQ(Resolve(tokens, program, &error), "field 3,5");
    EXPECT_EQ(error, "");
}

// Fields -----------------------------------------------------------------------------------------------------------

TEST(SetField, ByFieldType_StoresOrRefuses) {
    enum { kText, kNumber, kDate, kBoolean, kTime, kBlob, kKinds };
    static const auto value = [](int which, Tokens* tokens) {
        switch (which) {
            case kText: tokens->String("abc"); break;
            case kNumber: tokens->Number(70000.75); break;
            case kDate: tokens->Date(1, 2, 2003); break;
            case kBoolean: tokens->Boolean(true); break;
            case kTime: tokens->Time(90); break;
            default: tokens->Blob("xy"); break;
        }
    };
    static const struct {
        int type, takes;     // takes: kKinds = none
        const char* stored;  // "" = nothing
    } rows[] = {
        {0, kText, "0 text abc"},        {2, kText, "2 text abc"},        {1, kNumber, "1 real 70000.75"},
        {4, kDate, "4 date 2003-2-1"},   {6, kBoolean, "6 boolean true"}, {8, kNumber, "8 integer 4464"},
        {9, kNumber, "9 longint 70000"}, {11, kTime, "11 time 90"},       {30, kBlob, "30 blob 7879"},
    };
    for (const auto& row : rows) {
        for (int which = 0; which < kKinds; which++) {
            Program program;
            FieldHost host;
            Tokens tokens;
            value(which, &tokens);
            program->SetField(1, static_cast<short>(100 + row.type), tokens.at(1));
            Outcome outcome = program.Collect();
            if (which == row.takes) {
                EXPECT_EQ(outcome.number, 0) << row.type << " " << outcome.text;
                ASSERT_EQ(host.stored.size(), 1u) << row.type;
                EXPECT_EQ(host.stored[0], row.stored);
            } else {
                EXPECT_EQ(outcome.number, -38) << row.type << " " << which;
                EXPECT_EQ(outcome.text, "Field has incorrect type: Table: 1, Field: " + std::to_string(100 + row.type));
                EXPECT_TRUE(host.stored.empty()) << row.type << " " << which;
            }
        }
    }
}

TEST(SetField, UnassignableTypesAndUnknownFields_ExactWords) {
    static const struct {
        short table, field;
        long number;
        const char* text;
    } rows[] = {
        {1, 103, -47, "Assignment not possible. Field has incorrect type: Table: 1, Field: 103"},
        {1, 107, -47, "Assignment not possible. Field has incorrect type: Table: 1, Field: 107"},
        {1, 99, -47, "Assignment not possible. Field has incorrect type: Table: 1, Field: 99"},
        {1, 138, 0, ""},  // another type: nothing, and nothing is reported
        {2, 100, -38, "Unknown Field: Table: 2, Field: 100"},
        {0, 0, -38, "Unknown Field: Table: 0, Field: 0"},
    };
    for (const auto& row : rows) {
        Program program;
        FieldHost host;
        Tokens tokens;
        tokens.String("abc");
        program->SetField(row.table, row.field, tokens.at(1));
        EXPECT_EQ(program.Collect().number, row.number) << row.field;
        EXPECT_EQ(program.Collect().text, row.text);
        EXPECT_TRUE(host.stored.empty());
    }
    Program program;
    FieldHost host;
    program->SetField(1, 100, nullptr);  // no value: only the field is looked at
    EXPECT_EQ(program.Collect().number, 0);
    EXPECT_TRUE(host.stored.empty());
}

TEST(SetField, Assignment_ReachesTheField) {
    Program program;
    FieldHost host;
    Tokens left;
    left.Kind(22, (1 << 16) + 101);
    Tokens value;
    value.Number(2.5);
    program->ExecuteAssignment(left, value.at(1));
    ASSERT_EQ(host.stored.size(), 1u);
    EXPECT_EQ(host.stored[0], "1 real 2.5");
}

// ExecuteMethodLine ------------------------------------------------------------------------------------------------

TEST(ExecuteMethodLine, StaleError_PassesLinesWithoutJumps) {
    Program program;
    long reference = program.Add("", "$a:=1\nIf (False)\n$b:=2\nEnd If\n$c:=3");
    program.Start(reference, 1);
    ZR_ExecutionContext* context = program;
    ZR_Executer_Stack* frame = &context->rootStack;
    memcpy(context->stacks.AppendGetPtr(), &frame, sizeof frame);
    context->lastError = -99;
    Value result;
    for (long line = 1; line <= 5; line++) EXPECT_EQ(context->ExecuteMethodLine(line, result), line + 1);
    EXPECT_EQ(context->ExecuteMethodLine(6, result), 0);
    context->stacks.Resize(0);
    EXPECT_EQ(Describe(program.Find("$b")), "missing");
    EXPECT_EQ(Describe(program.Find("$c")), "missing");
}

TEST(ExecuteMethodLine, MethodGone_EndsTheRun) {
    Program program;
    long reference = program.Add("", "$a:=1\n$b:=2");
    program.Start(reference, 1);
    ASSERT_TRUE(program->DeleteMethodByID(reference));
    program->ExecuteMethod(&program->rootStack, 0);
    EXPECT_EQ(program->lastError, 0);
    EXPECT_EQ(program->rootStack.currentLine, 0);
}
