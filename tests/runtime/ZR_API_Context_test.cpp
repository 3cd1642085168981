#include "tests/runtime/FieldHost.h"
#include "tests/runtime/RuntimeTesting.h"

using namespace rt;

// Fields and life --------------------------------------------------------------------------------------------------

TEST(Context, Create_SetsTheDefaults) {
    ZR_ExecutionContext context;
    context.Create(77, nullptr);
    EXPECT_EQ(context.reference, 77);
    EXPECT_EQ(context.lastError, 0);
    EXPECT_EQ(context.lastErrorLine, 0);
    EXPECT_EQ(context.lastErrorMethod, 0);
    EXPECT_EQ(context.nextMethodReference, 1);
    EXPECT_EQ(context.methods.count, 0);
    EXPECT_EQ(context.processVariables.count, 0);
    EXPECT_EQ(context.interprocessVariables.count, 0);
    EXPECT_EQ(context.methods4D.count, 0);
    EXPECT_EQ(context.virtualStructure.count, 0);
    EXPECT_EQ(context.nextVirtualReference, 1);
    EXPECT_EQ(context.stacks.count, 0);
    EXPECT_EQ(context.sets.count, 0);
    EXPECT_EQ(context.allowedCommands.count, 0);  // without a command table
    EXPECT_EQ(context.lastErrorText.count, 0);
    EXPECT_FALSE(context.probeMode);
    EXPECT_FALSE(context.probeSupported);
    EXPECT_FALSE(context.useVirtualStructure);
    EXPECT_EQ(Describe(&context.result), "nothing");
    EXPECT_EQ(context.queryTexts.count, 0);
    EXPECT_EQ(context.callback, nullptr);
    EXPECT_EQ(context.callbackData, nullptr);
    EXPECT_EQ(context.rootStack.methodReference, 0);
    EXPECT_EQ(context.rootStack.currentLine, 0);
    EXPECT_FALSE(context.preemptive);  // the main process is cooperative
    EXPECT_FALSE(context.traceRequested || context.traceEnabled || context.breakAtStart || context.stepOver ||
                 context.abortRequested || context.stepInto);
    EXPECT_EQ(context.debuggerDialog, nullptr);
    EXPECT_EQ(context.debuggerWindow, nullptr);
    EXPECT_EQ(context.debuggerTitle.count, 0);
    EXPECT_EQ(
        context.debuggerRect.top + context.debuggerRect.left + context.debuggerRect.right + context.debuggerRect.bottom,
        0);
    EXPECT_EQ(context.deadline, 0);
    EXPECT_EQ(context.maxCalls, 0);
    context.Dispose();
}

TEST(Context, Create_OnAPreemptiveProcess_NotesIt) {
    bool preemptive = false;
    zrhost::Host& host = *Machine::Get().host;
    int number = host.runProcess(u"preemptive", /*preemptive*/ true, [&preemptive] {
        ZR_ExecutionContext context;
        context.Create(1, nullptr);
        preemptive = context.preemptive;
        context.Dispose();
    });
    EXPECT_TRUE(host.waitForProcess(number));
    EXPECT_TRUE(preemptive);
}

TEST(Context, AllowedCommands_CopyTheSupportedRows) {
    Program program;
    long supported = 0;
    for (long row = 1; row <= Executer()->commands.count; row++) {
        auto* command = reinterpret_cast<ZR_Executer_Command*>(Executer()->commands.GetMemPtr(row));
        if (!command->supported) continue;
        auto* allowed = reinterpret_cast<ZR_AllowedCommand*>(program->allowedCommands.GetMemPtr(++supported));
        ASSERT_TRUE(allowed);
        EXPECT_EQ(allowed->id, command->id);
        EXPECT_TRUE(allowed->allowed);
        EXPECT_EQ(allowed->threadSafe, command->threadSafe);
        EXPECT_EQ(program->Search4DCommandForExecution(command->id), allowed);
    }
    EXPECT_EQ(program->allowedCommands.count, supported);
    EXPECT_GT(supported, 120);
}

TEST(Context, Table_ReferencesAreUniqueAndForgotten) {
    ZR_ExecutionContext* first = Executer()->CreateExecutionContext();
    ZR_ExecutionContext* second = Executer()->CreateExecutionContext();
    long reference = first->reference;
    EXPECT_GT(reference, 0);
    EXPECT_NE(reference, second->reference);
    EXPECT_EQ(Executer()->GetExecutionContextPtrByReference(reference), first);
    Executer()->DeleteExecutionContext(first);
    EXPECT_EQ(Executer()->GetExecutionContextPtrByReference(reference), nullptr);
    EXPECT_EQ(Executer()->GetExecutionContextPtrByReference(0), nullptr);
    EXPECT_EQ(Executer()->GetExecutionContextPtrByReference(-1), nullptr);
    HostValue references(eVK_ArrayLongint), threads(eVK_ArrayReal);
    Executer()->GetContextList(references, threads);
    EXPECT_GE(PA_GetArrayNbElements(references), 1);
    EXPECT_EQ(PA_GetArrayNbElements(references), PA_GetArrayNbElements(threads));
    Executer()->DeleteExecutionContext(second);
}

TEST(Context, Life_GivesBackWhatItTook) {
    long handles = 0, bytes = 0, handlesAfter = 0, bytesAfter = 0;
    {
        Program warm;
        warm.Run("$a:=1");
    }
    ZR_GetMemoryInfo(&handles, &bytes);
    {
        Program program = {{"Inner", "$0:=$1+\"x\"\nARRAY TEXT(a;5)"}};
        program.Run(
            "For ($i;1;20)\nt:=Inner(\"a\"*$i)\n<>o:=New object\nEnd For\nC_BLOB($b)\nSET BLOB SIZE($b;1000)\n$x:=1/0");
        program.Run("$p:=->t\n$p->:=5");
        program.Run("$x:=(((");
    }
    ZR_GetMemoryInfo(&handlesAfter, &bytesAfter);
    // A context that goes takes its place in the table with it.
    EXPECT_EQ(handlesAfter, handles);
    EXPECT_EQ(bytesAfter, bytes);
}

// Methods and frames -----------------------------------------------------------------------------------------------

TEST(ContextMethods, References_NeverReused) {
    Program program;
    long first = program.Add("one", "$a:=1"), second = program.Add("two", "$a:=2");
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
    EXPECT_TRUE(program->DeleteMethodByID(1));
    EXPECT_FALSE(program->DeleteMethodByID(1));
    EXPECT_FALSE(program->DeleteMethodByID(0));
    EXPECT_EQ(program->GetMethodPtrByReference(1), nullptr);
    EXPECT_EQ(Narrow(&program->GetMethodPtrByReference(2)->name), "two");
    EXPECT_EQ(program.Add("three", ""), 3);
    program->DeleteAllMethods();
    program->methods.Create(sizeof(ZR_ExecutionMethod), 0);
    EXPECT_EQ(program->methods.count, 0);
    EXPECT_EQ(program.Add("four", ""), 4);
}

TEST(ContextMethods, SameName_NotCheckedByCreateMethod) {
    Program program;
    long first = program.Add("twice", "$0:=1");
    program.Add("twice", "$0:=2");
    Text name("twice");
    EXPECT_EQ(program->methods.count, 2);
    EXPECT_EQ(program->GetMethodPtrByName(name)->reference, first);
}

TEST(ContextMethods, CreateMethod_WithoutNameOrBlob) {
    Program program;
    program->CreateMethod(nullptr, nullptr);
    ZR_ExecutionMethod* method = program->GetMethodPtrByReference(1);
    ASSERT_TRUE(method);
    EXPECT_EQ(method->name.count, 0);
    EXPECT_EQ(method->tokens.count, 0);
}

TEST(ContextFrames, GetStack_ByPlace) {
    Program program;
    ZR_ExecutionContext* context = program;
    EXPECT_EQ(context->GetCurrentStack(), &context->rootStack);
    EXPECT_EQ(context->GetStack(0), &context->rootStack);
    EXPECT_EQ(context->GetStack(-5), &context->rootStack);
    EXPECT_EQ(context->GetStack(1), nullptr);
    ZR_Executer_Stack frames[2];
    for (ZR_Executer_Stack& frame : frames) {
        frame.Create(1);
        ZR_Executer_Stack* address = &frame;
        memcpy(context->stacks.AppendGetPtr(), &address, sizeof address);
    }
    EXPECT_EQ(context->GetCurrentStack(), &frames[1]);
    EXPECT_EQ(context->GetStack(1), &frames[0]);
    EXPECT_EQ(context->GetStack(2), &frames[1]);
    EXPECT_EQ(context->GetStack(3), nullptr);
    context->stacks.Resize(0);
    for (ZR_Executer_Stack& frame : frames) frame.Dispose();
}

TEST(ContextFrames, GetVStructure_ExplicitOwnOrNone) {
    Program program;
    ZR_Handle list;
    list.Create(sizeof(ZR_Executer_VirtualStructure), 0);
    program->useVirtualStructure = false;
    EXPECT_EQ(program->GetVStructure(&list), &list);
    EXPECT_EQ(program->GetVStructure(nullptr), nullptr);
    program->useVirtualStructure = true;
    EXPECT_EQ(program->GetVStructure(nullptr), &program->virtualStructure);
    EXPECT_EQ(program->GetVStructure(&list), &list);
    list.Dispose();
}

// Errors and OK ----------------------------------------------------------------------------------------------------

TEST(ContextErrors, SetError_FourPiecesAndTheCurrentFrame) {
    Program program;
    ZR_ExecutionContext* context = program;
    context->rootStack.methodReference = 9;
    context->rootStack.currentLine = 4;
    Text text("t\xC3\xA4");
    char bytes[] = "b";
    context->SetError(-1, "a");
    EXPECT_EQ(context->lastErrorLine, 4);
    EXPECT_EQ(context->lastErrorMethod, 9);
    context->SetError(-1, bytes);
    context->SetError(-1, -42L);
    context->SetError(-7, text);  // another number: it replaces the first, and both texts stay
    EXPECT_EQ(context->lastError, -7);
    EXPECT_EQ(Narrow(&context->lastErrorText), "ab-42t\xC3\xA4");
    ZR_Executer_Stack frame;
    frame.Create(12);
    frame.currentLine = 5;
    ZR_Executer_Stack* address = &frame;
    memcpy(context->stacks.AppendGetPtr(), &address, sizeof address);
    context->SetError(-8, "");
    EXPECT_EQ(context->lastErrorLine, 5);
    EXPECT_EQ(context->lastErrorMethod, 12);
    context->stacks.Resize(0);
    frame.Dispose();
}

TEST(ContextErrors, ErrorInAStaleState_AppendsToTheMessage) {
    Program program;
    long reference = program.Add("", "$a:=1/0\n$b:=$missing");
    program.Start(reference);
    EXPECT_EQ(program.Collect().error(), "-2@1 Division by zero");
    EXPECT_EQ(program->lastErrorMethod, reference);
    program.Start(reference, 2);  // a run clears number, line and text, not the method
    EXPECT_EQ(program.Collect().error(), "-14@2 Unknown Variable \"$missing\"");
    long other = program.Add("", "$a:=1");
    program.Start(other);
    EXPECT_EQ(program->lastError, 0);
    EXPECT_EQ(program->lastErrorLine, 0);
    EXPECT_EQ(program->lastErrorText.count, 0);
    EXPECT_EQ(program->lastErrorMethod, reference);
}

TEST(ContextOK, SetOKVariable_FromTheHostOrGiven) {
    zrhost::Host& host = *Machine::Get().host;
    for (bool ok : {true, false}) {
        host.setOK(ok);
        Program program;
        program->SetOKVariable();
        EXPECT_EQ(Describe(program.Find("OK")), ok ? "longint 1" : "longint 0");
        program->SetOKVariable(!ok);
        EXPECT_EQ(Describe(program.Find("OK")), ok ? "longint 0" : "longint 1");
    }
    Program program;
    program->lastError = -1;
    program->SetOKVariable();
    program->SetOKVariable(true);
    EXPECT_EQ(program.Find("OK"), nullptr);  // nothing while an error stands
    program->lastError = 0;
    program.Run("OK:=5.5");
    program->SetOKVariable(true);
    EXPECT_EQ(Describe(program.Find("OK")), "real 1");
}

// ExecuteMethod ----------------------------------------------------------------------------------------------------

TEST(ExecuteMethod, WholeMethod_RunsToItsEnd) {
    for (long startLine : {0L, -1L, -100L}) {
        Program program;
        long reference = program.Add("", "$a:=1\n$a:=$a+1\n\n$a:=$a*10");
        Outcome outcome = program.Start(reference, startLine);
        EXPECT_EQ(outcome["$a"], "real 20");
        EXPECT_EQ(outcome.lastLine, 0);
        EXPECT_EQ(program->stacks.count, 0);
    }
}

TEST(ExecuteMethod, OneLine_LeavesTheNextNumber) {
    Program program;
    long reference = program.Add("", "$a:=1\nIf ($a=1)\n$b:=2\nElse\n$b:=3\nEnd If\n$c:=1");
    static const struct { long line, next; } rows[] = {{1, 2}, {2, 3}, {3, 4}, {4, 7}, {7, 8}, {8, 0}, {99, 0}};
    for (const auto& row : rows) {
        Outcome outcome = program.Start(reference, row.line);
        EXPECT_EQ(outcome.error(), "") << row.line;
        EXPECT_EQ(outcome.lastLine, row.next) << row.line;
    }
    EXPECT_EQ(program.Collect()["$b"], "real 2");
    EXPECT_EQ(program.Collect()["$c"], "real 1");
}

TEST(ExecuteMethod, ActiveForLines_EmptiedBelowLineTwo) {
    Program program;
    long reference = program.Add("", "$a:=1\n$a:=2\n$a:=3\n$a:=4\n$a:=5");
    program.Start(reference, 1);
    static const struct {
        long line;
        long left;
    } rows[] = {{1, 0}, {5, 1}, {2, 1}, {0, 0}, {-3, 0}};
    for (const auto& row : rows) {
        program->rootStack.activeForLines.Resize(0);
        program->rootStack.activeForLines.AddLongToArray(99);
        program.Start(reference, row.line);
        EXPECT_EQ(program->rootStack.activeForLines.count, row.left) << row.line;
    }
}

TEST(ExecuteMethod, NoTokens_EndsAtOnce) {
    Program program;
    program->CreateMethod(nullptr, nullptr);
    Outcome outcome = program.Start(1);
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome.lastLine, 0);
}

TEST(ExecuteMethod, Locals_OutliveARunOfTheSameMethodAlone) {
    Program program;
    long one = program.Add("", "$a:=$a+1"), two = program.Add("", "$b:=1");
    program.Start(one);
    EXPECT_EQ(program->lastError, -14);
    Text name("a");
    zrExe_FindVariableByNameAndCreate(&program->rootStack.localVariables, name, ZR_EXE_Real);
    program.Start(one);
    program.Start(one);
    EXPECT_EQ(Describe(program.Find("$a")), "real 2");
    program.Start(two);
    EXPECT_EQ(program.Find("$a"), nullptr);
    EXPECT_EQ(program->rootStack.methodReference, two);
}

TEST(ExecuteMethod, Result_OfTheLineLastRun) {
    Program program;
    long reference = program.Add("", "1+1\n\"a\"\n");
    program.Start(reference, 1);
    EXPECT_EQ(Describe(&program->result), "number 2");
    program.Start(reference, 2);
    EXPECT_EQ(Describe(&program->result), "text a");
    program.Start(reference, 3);
    EXPECT_EQ(Describe(&program->result), "nothing");
}

// The callback -----------------------------------------------------------------------------------------------------

namespace {

struct Watch {
    std::vector<std::string> seen;
    int clears = 0;  // how many errors are cleared
    bool nullLists = true;
    void (*act)(ZR_ExecutionContext* context, Watch* watch) = nullptr;  // at 40010

    static void See(ZR_ExecutionContext* context, long id, ZR_Handle* parameters, ZR_Executer_Token* result,
                    void* data) {
        Watch* watch = static_cast<Watch*>(data);
        if (id == 40010 && watch->act) watch->act(context, watch);
        if (id != -1) return;
        watch->nullLists &= !parameters && !result;
        watch->seen.push_back(std::to_string(context->lastError) + "@" + std::to_string(context->lastErrorLine));
        if (watch->clears-- > 0) context->lastError = 0;
    }
    void Install(Program& program) {
        program->callback = See;
        program->callbackData = this;
    }
};

}  // namespace

TEST(Callback, ErrorOfALine_ToldOnceAndEndsTheRun) {
    Program program;
    Watch watch;
    watch.Install(program);
    Outcome outcome = program.Run("$a:=1\n$a:=1/0\n$a:=2");
    EXPECT_EQ(outcome.error(), "-2@2 Division by zero");
    EXPECT_EQ(outcome["$a"], "real 1");
    EXPECT_EQ(outcome.lastLine, 3);
    EXPECT_EQ(watch.seen, (std::vector<std::string>{"-2@2"}));
    EXPECT_TRUE(watch.nullLists);
}

TEST(Callback, ErrorCleared_TheRunGoesOn) {
    Program program;
    Watch watch;
    watch.clears = 2;
    watch.Install(program);
    Outcome outcome = program.Run("$a:=1/0\n$b:=$missing\n$c:=3");
    EXPECT_EQ(outcome.number, 0);
    EXPECT_EQ(outcome["$c"], "real 3");
    EXPECT_EQ(watch.seen, (std::vector<std::string>{"-2@1", "-14@2"}));
    EXPECT_EQ(outcome.text,
              "Division by zeroUnknown Variable \"$missing\"");  // the text is not cleared with the number
}

TEST(Callback, ErrorClearedOnTheLastLine_EndsWithout) {
    Program program;
    Watch watch;
    watch.clears = 1;
    watch.Install(program);
    Outcome outcome = program.Run("$a:=1/0");
    EXPECT_EQ(outcome.number, 0);
    EXPECT_EQ(outcome.lastLine, 0);
}

TEST(Callback, ErrorInACalledMethod_ToldInEveryFrameUntilCleared) {
    Program program = {{"Inner", "$x:=1/0\n$0:=5"}};
    Watch watch;
    watch.Install(program);
    program.Run("$a:=Inner(1)\n$b:=2");
    EXPECT_EQ(watch.seen, (std::vector<std::string>{"-2@1", "-2@1"}));
    Watch clearing;
    clearing.clears = 1;
    clearing.Install(program);
    Outcome outcome = program.Run("$a:=Inner(1)\n$b:=2");  // cleared inside: the inner method goes on and returns
    EXPECT_EQ(outcome.number, 0);
    EXPECT_EQ(outcome["$a"], "real 5");
    EXPECT_EQ(outcome["$b"], "real 2");
}

TEST(Callback, OneLine_ToldOnce) {
    Program program;
    Watch watch;
    watch.Install(program);
    long reference = program.Add("", "$a:=1/0\n$b:=1");
    program.Start(reference, 1);
    EXPECT_EQ(watch.seen.size(), 1u);
    EXPECT_EQ(program->rootStack.currentLine, 2);
    EXPECT_EQ(program->lastError, -2);
}

// Abort and stepping -----------------------------------------------------------------------------------------------

TEST(Abort, StopsEveryFrame_AndLeavesNoError) {
    Program program = {{"Inner", "_SET ANCHOR(\"x\")\n$y:=2\nb:=1"}};
    Watch watch;
    watch.act = [](ZR_ExecutionContext* context, Watch*) { context->abortRequested = true; };
    watch.Install(program);
    long reference = program.Add("", "a:=1\nInner(1)\na:=2");
    program->rootStack.Dispose();
    program->rootStack.Create(reference);
    program->ExecuteMethod(&program->rootStack, 0);
    EXPECT_EQ(program->lastError, 0);
    EXPECT_TRUE(program->abortRequested);  // until the reset
    EXPECT_EQ(Describe(program.Find("a")), "real 1");
    EXPECT_EQ(Describe(program.Find("b")), "missing");
    EXPECT_EQ(program->stacks.count, 0);
    program->DebuggerReset();
    EXPECT_FALSE(program->abortRequested);
    program.Start(reference);  // a run from outside resets as well
    EXPECT_FALSE(program->abortRequested);
}

TEST(Stepping, ErrorWhileStepping_PassesTheRestWithoutRunningIt) {
    Program program;
    Watch watch;
    watch.act = [](ZR_ExecutionContext* context, Watch*) { context->stepInto = true; };
    watch.Install(program);
    Outcome outcome = program.Run("_SET ANCHOR(\"x\")\n$a:=1/0\n$b:=1\nIf (False)\n$c:=1\nEnd If");
    EXPECT_EQ(outcome.error(), "-2@2 Division by zero");
    EXPECT_EQ(outcome.lastLine, 0);  // to the end, line by line, without jumps
    EXPECT_EQ(outcome["$b"], "missing");
    EXPECT_EQ(outcome["$c"], "missing");
    EXPECT_EQ(watch.seen.size(), 6u);  // from line 2 on at every line, and behind the last
}

// The debugger's dialog, before a host that has one
// ---------------------------------------------------------------------

namespace {

struct DialogHost {
    Recorder recorder;
    std::vector<std::string> buttons;  // pressed in turn; "closed" closes the window; then resume
    std::vector<std::string> events;
    struct Opened {
        std::u16string title;
        int64_t bounds, kind, flags;
    };
    std::vector<Opened> opened;
    size_t next = 0;
    int handle = 0;
    bool sidesAreBooleans = false;  // the rectangle comes back as another kind

    DialogHost() {
        recorder.intercept = [this](int selector, EngineBlock* block) { return Serve(selector, block); };
    }
    bool Serve(int selector, EngineBlock* block) {
        const auto name = [block] {
            std::string text;
            for (const PA_Unichar* unit = block->fName; *unit; unit++) text += static_cast<char>(*unit);
            return text;
        };
        block->fError = 0;
        switch (selector) {
            case ZR_SEL_OpenDialog:
                events.push_back("open " + name());
                opened.push_back({std::u16string(reinterpret_cast<const char16_t*>(block->fParam2),
                                                 static_cast<size_t>(block->fParam2 ? block->fLength2 : 0)),
                                  block->fParam4, block->fParam3, block->fFlags});
                block->fHandle = reinterpret_cast<PA_Handle>(&handle);
                return true;
            case ZR_SEL_DialogWindow: block->fParam1 = 5; return true;
            case ZR_SEL_DialogUpdate: return true;
            case ZR_SEL_DialogSet:
                events.push_back(name() + "=" + Describe(*reinterpret_cast<PA_Variable*>(block->fParam1)));
                return true;
            case ZR_SEL_CloseDialog: events.push_back("close"); return true;
            case ZR_SEL_ExecuteCommand: {  // the window's rectangle
                if (block->fParam3 != 443) return false;
                PA_Variable** parameters = reinterpret_cast<PA_Variable**>(block->fParam1);
                const int sides[] = {10, 20, 310, 220};
                for (int i = 0; i < 4; i++) {
                    parameters[i]->fType = sidesAreBooleans ? eVK_Boolean : eVK_Longint;
                    parameters[i]->uValue.fLongint = sides[i];
                }
                return true;
            }
            case ZR_SEL_ModalDialog: {
                std::string button = next < buttons.size() ? buttons[next++] : "vl_resume";
                events.push_back("> " + button);
                block->fParam1 = button == "closed" ? 2 : button == "left" ? 1 : 0;
                size_t length = button.size();
                for (size_t i = 0; i < length; i++) block->fName[i] = static_cast<PA_Unichar>(button[i]);
                block->fName[length] = 0;
                return true;
            }
            default: return false;
        }
    }
    std::string text() const {
        std::string all;
        for (const std::string& event : events)
            if (event.compare(0, 10, "vl_debugge") != 0 && event.compare(0, 3, "vt_") != 0)
                all += (all.empty() ? "" : " ") + event;
        return all;
    }
};

}  // namespace

TEST(Debugger, BreakAtStart_StopsBeforeTheOutermostLineOneAlone) {
    Program program = {{"Inner", "b:=1\nb:=2"}};
    program->breakAtStart = true;
    DialogHost host;
    Outcome outcome = program.Run("a:=1\nInner(1)\na:=2");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["a"], "real 2");
    EXPECT_EQ(host.text(), "open Debugger_New > vl_resume close");
    std::vector<std::string> shown(host.events.begin(), host.events.begin() + 4);
    EXPECT_EQ(shown[1], "vl_debugger_context=longint " + std::to_string(program->reference));
    EXPECT_EQ(shown[2], "vl_debugger_redraw=longint 1");
    EXPECT_EQ(shown[3], "vt_debug_error=text ");
    EXPECT_EQ(program->debuggerDialog, nullptr);
}

TEST(Debugger, StepIntoAndOver_StopWhereTheyShould) {
    static const struct {
        std::vector<std::string> buttons;
        int stops;
    } rows[] = {
        {{"vl_step_into", "vl_step_into", "vl_step_into", "vl_step_into", "vl_step_into"},
         5 + 2},  // 3 lines, 2 inside, and behind each end
        {{"vl_step_over", "vl_step_over", "vl_step_over", "vl_step_over"}, 4},
        {{"other", "vl_nothing", "vl_resume"}, 3},
        {{"vl_step_over", "vl_resume"}, 2},
    };
    for (const auto& row : rows) {
        Program program = {{"Inner", "b:=1\nb:=2"}};
        program->breakAtStart = true;
        DialogHost host;
        host.buttons = row.buttons;
        for (int i = 0; i < 10 && row.stops > 5; i++) host.buttons.push_back("vl_step_into");
        Outcome outcome = program.Run("a:=1\nInner(1)\na:=2");
        EXPECT_EQ(outcome.error(), "");
        EXPECT_EQ(outcome["a"], "real 2");
        EXPECT_EQ(static_cast<int>(host.next), row.stops) << host.text();
        EXPECT_EQ(host.events.back(), "close");
    }
}

TEST(Debugger, AbortAndClosedWindow_EndTheRunWithoutError) {
    for (const char* button : {"vl_abort", "closed"}) {
        Program program;
        program->breakAtStart = true;
        DialogHost host;
        host.buttons = {button};
        Outcome outcome = program.Run("a:=1\na:=2");
        EXPECT_EQ(outcome.error(), "") << button;
        EXPECT_EQ(outcome["a"], "missing") << button;
        EXPECT_EQ(host.text(), std::string("open Debugger_New > ") + button + " close");
    }
}

TEST(Debugger, Trace_StopsAtTheNextLineIfEnabled) {
    for (bool enabled : {true, false}) {
        Program program;
        program->traceEnabled = enabled;
        DialogHost host;
        program.Run("TRACE\na:=1\na:=2");
        EXPECT_EQ(host.text(), enabled ? "open Debugger_New > vl_resume close" : "");
    }
}

TEST(Debugger, ErrorText_ShownBehindEveryLineOfAWholeRunAlone) {
    for (long startLine : {0L, 1L}) {
        Program program;
        long reference = program.Add("", "a:=1\na:=2");
        DialogHost host;
        host.buttons = {"vl_step_into", "vl_step_into", "vl_step_into"};
        program->breakAtStart = true;
        program.Start(reference, startLine);
        int shown = 0;
        for (const std::string& event : host.events) shown += event.compare(0, 14, "vt_debug_error") == 0;
        // At each of three stops and behind both lines; a single line stops once and tells of nothing behind it.
        EXPECT_EQ(shown, startLine ? 1 : 5) << host.text();
    }
}

TEST(Debugger, WindowRectangle_SideOfAnotherKindCountsAsZero) {
    for (bool longints : {true, false}) {
        Program program;
        program->breakAtStart = true;
        DialogHost host;
        host.sidesAreBooleans = !longints;
        program.Run("a:=1");
        const ZR_Rect& where = program->debuggerRect;
        EXPECT_EQ(where.left, longints ? 10 : 0);
        EXPECT_EQ(where.top, longints ? 20 : 0);
        EXPECT_EQ(where.right, longints ? 310 : 0);
        EXPECT_EQ(where.bottom, longints ? 220 : 0);
    }
}

TEST(Debugger, NextStop_OpensAtTheSamePlaceUnderTheTitle) {
    Program program;
    program->breakAtStart = true;
    Text title("Stopped");
    program->debuggerTitle.Copy(title);
    DialogHost host;
    program.Run("a:=1");
    program.Run("a:=2");
    ASSERT_EQ(host.opened.size(), 2u);
    EXPECT_EQ(host.opened[0].bounds, 0);
    // left, top, right, bottom of the window as it was closed
    EXPECT_EQ(host.opened[1].bounds, 10L | 20L << 16 | 310L << 32 | 220L << 48);
    for (const auto& opened : host.opened) {
        EXPECT_EQ(opened.title, u"Stopped");
        EXPECT_EQ(opened.kind, 1);
        EXPECT_EQ(opened.flags, 1);
    }
}

TEST(Debugger, ContextReference_SetOnceForAllStops) {
    Program program;
    program->breakAtStart = true;
    DialogHost host;
    host.buttons = {"vl_step_into", "vl_step_into", "vl_resume"};
    program.Run("a:=1\na:=2\na:=3");
    long contexts = 0, redraws = 0;
    for (const std::string& event : host.events) {
        contexts += event.compare(0, 19, "vl_debugger_context") == 0;
        redraws += event.compare(0, 18, "vl_debugger_redraw") == 0;
    }
    EXPECT_EQ(contexts, 1);
    EXPECT_EQ(redraws, 3);
}

TEST(Debugger, ResultThatIsNeitherAButtonNorTheEnd_LeavesTheFlags) {
    Program program;
    program->breakAtStart = true;
    DialogHost host;
    host.buttons = {"vl_step_into", "left", "left", "vl_resume"};
    Outcome outcome = program.Run("a:=1\na:=2\na:=3");
    EXPECT_EQ(outcome.error(), "");
    EXPECT_EQ(outcome["a"], "real 3");
    EXPECT_EQ(host.text(), "open Debugger_New > vl_step_into > left > left > vl_resume close");  // open in between
}

TEST(Debugger, ErrorWhileStepping_ShownAtEveryStop) {
    Program program;
    program->breakAtStart = true;
    DialogHost host;
    host.buttons = {"vl_step_into", "vl_step_into", "vl_step_into", "vl_step_into"};
    Outcome outcome = program.Run("a:=1/0\na:=2");
    EXPECT_EQ(outcome.error(), "-2@1 Division by zero");
    EXPECT_EQ(outcome["a"], "missing");
    int shown = 0;
    for (const std::string& event : host.events) shown += event == "vt_debug_error=text Division by zero";
    EXPECT_GE(shown, 2);
    EXPECT_EQ(host.events.back(), "close");  // a method that ends closes the dialog
}

TEST(Debugger, NoDialog_TheRunGoesOn) {
    Program program;
    program->breakAtStart = true;
    EXPECT_EQ(program.Run("a:=1")["a"], "real 1");  // a machine without windows refuses it
}

// Every error ------------------------------------------------------------------------------------------------------

TEST(ErrorTable, EveryRow_NumberAndWholeText) {
    static const struct {
        const char* source;
        const char* error;
    } rows[] = {
        {"$r:=1=2=3", "-1@1 Comparison with more than two values is not allowed"},
        {"$r:=1/0", "-2@1 Division by zero"},
        {"$r:=?00:00:01?/?00:00:00?", "-2@1 Division by zero"},
        {":=1", "-3@1 Syntax Error: Could not make assignment!"},
        {"1:=1", "-4@1 No variable/field to assign"},
        {"$r:=", "-5@1 Undefined assignment variable type"},
        {"$p:=->", "-6@1 Pointer points to nothing!"},
        {"$p:=->5", "-6@1 Invalid Pointer Expression!"},
        {"$p:=->$", "-9@1 Pointer to an invalid Variable!"},
        {"$r:=?00:00:01?+1", "-10@1 Syntax error: Invalid type"},
        {"$r:=.a", "-10@1 Syntax error: No Object Ref"},
        {"$x:=1\n$x:=\"\"", "-10@2 Variable \"$x\" has incorrect type!"},
        {"x:=1\nx:=\"\"", "-10@2 Variable \"x\" has incorrect type!"},
        {"<>x:=1\n<>x:=\"\"", "-10@2 Variable \"<>x\" has incorrect type!"},
        {"ARRAY TEXT($a;1)\n$r:=Find in array($a;1)",
         "-10@2 Find in array does not work with this type. Variable \"a\"."},
        {"ARRAY TEXT($a;1)\nAPPEND TO ARRAY($a;1)",
         "-10@2 Find in array does not work with this type. Variable \"a\"."},
        {"$r:=Choose(\"a\";1)", "-10@1 Invalid type in Parameter 1"},
        {"$a{1}:=1", "-11@1 Variable \"a\" not found!"},
        {"$r:=$p->", "-11@1 Variable \"p\" not found!"},
        {"$p:=1\n$r:=$p->", "-12@2 The Variable \"p\" is no pointer!"},
        {"ALERT(\"x\";\"y\";\"z\")", "-13@1 Command \"ALERT\" wrong count of parameters"},
        {"ALERT(1)", "-13@1 Command \"ALERT\" wrong parameter type"},
        {"QUERY", "-13@1 Command \"QUERY\" not supported"},
        {"$r:=$x", "-14@1 Unknown Variable \"$x\""},
        {"$r:=x", "-14@1 Unknown Variable \"x\""},
        {"$r:=<>x", "-14@1 Unknown Variable \"<>x\""},
        {"_GET 4D VARIABLE(\"nope\")", "-14@1 Unknown 4D-Variable \"nope\""},
        {"_SET 4D VARIABLE(\"nope\")", "-14@1 Unknown 4D-Variable \"nope\""},
        {"$p:=_Get 4D Variable Pointer(\"nope\")", "-14@1 Unknown 4D-Variable \"nope\""},
        {"$x:=1\n$r:=Is nil pointer($x)", "-14@2 Variable \"x\" is not a pointer"},
        {"If (False)", "-15@1 End If expected"},
        {"If (True)\nElse", "-15@2 End If expected"},
        {"For ($i;1;0)", "-16@1 End For expected"},
        {"End For", "-17@1 For expected"},
        {"Until (False)", "-18@1 Repeat expected"},
        {"While (False)", "-19@1 End While expected"},
        {"End while", "-20@1 While expected"},
        {"Case of\n: (False)", "-21@2 End Case expected"},
        {"Case of\n: (True)\n: (True)", "-21@3 End case expected"},
        {"Case of\n: (1)\nEnd case", "-22@2 Wrong Case Statement Line #2"},
        {"$r:==1", "-23@1 Empty comparison (left)"},
        {"$r:=1=", "-25@1 Empty comparison (right)Wrong type in comparison"},  // -24
        {"$r:=1=\"a\"", "-25@1 Wrong type in comparison"},
        {"$r:=\"a\"<\"b\"", "-26@1 Comparison not possible!"},
        {"If", "-27@1 Wrong If-Statement"},
        {"While", "-28@1 Wrong While-Statement"},
        {"Until", "-29@1 Wrong Repeat/Until-Statement"},
        {"For ($i;1)", "-30@1 Wrong For/End For-Statement"},
        {"$r:=\"a\"+1", "-32@1 Formula not supported!"},
        {"ARRAY REAL($a;1)\n$a{1+1:=1", "-34@2 Array access error"},
        {"ARRAY REAL($a;1)\n$r:=$a{\"x\"}", "-35@2 Array index must be a number"},
        {"ARRAY REAL($a;1)\n$a{\"x\"}:=1", "-35@2 Array index must be a number"},
        {"$s:=\"a\"\n$r:=$s[[\"x\"]]", "-35@2 String index must be a number"},
        // The variable's own spelling, and the words of an index behind those of the error inside it.
        {"ARRAY REAL($Ab;1)\n$r:=$aB{2}", "-36@2 Array access \"Ab\" not possible. Index: 2 Array size: 1"},
        {"$Ab:=\"x\"\n$r:=$aB[[2]]", "-36@2 String access \"Ab\" not possible. Index: 2 String size: 1"},
        {"$s:=\"x\"\n$r:=$s[[2/0]]", "-36@2 Division by zeroString access \"s\" not possible. Index: 2 String size: 1"},
        {"ARRAY REAL($a;1)\n$r:=$a{2/0}",
         "-36@2 Division by zeroArray access \"a\" not possible. Index: 2 Array size: 1"},
        {"ARRAY REAL($a;1)\n$r:=$a{$gone}", "-35@2 Unknown Variable \"$gone\"Array index must be a number"},
        {"ARRAY REAL($a;1)\n$r:=$a{2}", "-36@2 Array access \"a\" not possible. Index: 2 Array size: 1"},
        {"ARRAY REAL($a;1)\n$a{2}:=1", "-36@2 Array access \"a\" not possible. Index: 2 Array size: 1"},
        {"$s:=\"a\"\n$r:=$s[[2]]", "-36@2 String access \"s\" not possible. Index: 2 String size: 1"},
        {"$o:=New object\nSORT ARRAY($o)", "-37@2 The Variable \"o\" could not set. Wrong type."},
        {"$a:=1\nINSERT IN ARRAY($a;1)", "-40@2 Variable is not an array \"a\""},
        {"$a:=1\n$r:=Size of array($a)", "-40@2 Variable \"a\" is not an array!"},
        {"$r:=(1", "-41@1 Closed Bracket expected"},
        {"$x.a:=1", "-57@1 Object variable not found!"},
        {"$x:=1\n$x.a:=1", "-58@2 Variable is no object!"},
        {"C_OBJECT($o)\n$o.a:=1", "-59@2 Object cannot be null"},
    };
    for (const auto& row : rows) {
        Recorder recorder;  // SORT ARRAY of an object reaches no host
        recorder.passOn = std::string(row.source).find("SORT ARRAY") == std::string::npos;
        if (!recorder.passOn)
            recorder.answer = [](const HostCall& call, PA_Variable**, PA_Variable* result) {
                if (call.command != 1471) return false;
                *result = PA_CreateVariable(eVK_Object);
                PA_SetObjectVariable(result, nullptr);
                return true;
            };
        EXPECT_EQ(RunForError(row.source), row.error) << row.source;
    }
}

TEST(ErrorTable, RowsThatNeedFieldsPointersOrRefusals) {
    {
        Program program;
        FieldHost host;
        Tokens field;
        field.Kind(ZREXE_TOKEN_FIELD, (2 << 16) + 3);
        Value value;
        program->ExecuteTokenizedBlock(value, field, 0);
        EXPECT_EQ(program.Collect().text, "Unknown Field: Table: 2, Field: 3");
        EXPECT_EQ(program->lastError, -38);
    }
    {
        Program program;
        FieldHost host;
        Tokens value;
        value.String("a");
        program->SetField(1, 101, value.at(1));
        EXPECT_EQ(program.Collect().text, "Field has incorrect type: Table: 1, Field: 101");
        EXPECT_EQ(program->lastError, -38);
    }
    {
        Program program;
        FieldHost host;
        Tokens value;
        value.String("a");
        program->SetField(1, 103, value.at(1));
        EXPECT_EQ(program.Collect().text, "Assignment not possible. Field has incorrect type: Table: 1, Field: 103");
        EXPECT_EQ(program->lastError, -47);
    }
    for (bool known : {true, false}) {
        Program program;
        program.Run("v:=1");
        Recorder recorder;
        recorder.passOn = false;
        Tokens pointer;
        pointer.Named(ZREXE_TOKEN_POINTER, known ? "v" : "w", -1);
        program->ExecuteGenericCommand(10, nullptr, pointer, nullptr);
        EXPECT_EQ(program->lastError, -14);
        EXPECT_EQ(program.Collect().text,
                  known ? "Pointer to variables not supported: \"v\"" : "Unknown Pointer \"w\"");
    }
    {
        Program program;
        program->Search4DCommandForExecution(41)->allowed = false;
        EXPECT_EQ(program.Run("ALERT(\"x\")").error(), "-55@1 Command \"ALERT\" is not allowed");
        program->Search4DCommandForExecution(41)->allowed = true;
        program->Search4DCommandForExecution(41)->threadSafe = false;
        program->preemptive = true;
        EXPECT_EQ(program.Run("ALERT(\"x\")").error(), "-56@1 Command \"ALERT\" is not thread safe");
    }
    {
        uint32_t version = Current4DVersion;
        Current4DVersion = 0x1700;
        std::string error = RunForError("$o:=New object\n$r:=$o.f(1)");
        Current4DVersion = version;
        EXPECT_EQ(error, "-60@2 Executing member functions are supported from 4D v17R6 only.");
    }
}
