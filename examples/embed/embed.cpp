// Runs 4D code inside a C++ program: the embedded host, the module, one method, and what it leaves behind.
#include <cstdio>
#include <string>

#include "host/Host.h"
#include "zr.h"

// A method of the program's own that 4D code can call by its name.
static zrhost::Value Greeting(std::span<zrhost::Value> arguments) {
    std::u16string name = arguments.empty() ? u"nobody" : arguments[0].text();
    return zrhost::Value(u"Hello, " + name + u"!");
}

static const char kCode[] =
    "ALERT(\"The code runs.\")\n"
    "$total:=0\n"
    "For ($i;1;$limit)\n"
    "  $total:=$total+($i*$i)\n"
    "End for\n"
    "ALERT(Greeting(\"Ada\"))\n";

static ZR_Text NewText(const char* utf8) {  // caller disposes
    ZR_Text text;
    text.Create();
    text.AddUTF8String(utf8);
    return text;
}

// Tells the tokeniser that a name is a method. What the context does not hold is asked of the host.
static void DeclareMethod(ZR_ExecutionContext* context, const char* name) {
    ZR_Text methodName = NewText(name);
    auto* record = reinterpret_cast<ZR_Executer_VirtualStructure*>(context->virtualStructure.AppendGetPtr());
    record->CreateMethod(&methodName, /*caption*/ &methodName, context->nextVirtualReference++, 0);
    context->useVirtualStructure = true;
    methodName.Dispose();
}

// Tokenises the code and adds it to the context as a method.
static ZR_ExecutionMethod* AddMethod(ZR_Executer* executer, ZR_ExecutionContext* context, const char* name,
                                     const char* code) {
    ZR_Text methodName = NewText(name), source = NewText(code);
    ZR_Handle blob;
    blob.Create(1, 0);
    executer->Tokenize(&source, &blob, context->GetVStructure(nullptr), nullptr, nullptr);
    context->CreateMethod(&methodName, &blob);
    ZR_ExecutionMethod* method = context->GetMethodPtrByName(&methodName);
    blob.Dispose();
    source.Dispose();
    methodName.Dispose();
    return method;
}

static int RunExample(ZR_Executer* executer) {
    ZR_ExecutionContext* context = executer->CreateExecutionContext();
    DeclareMethod(context, "Greeting");
    ZR_ExecutionMethod* method = AddMethod(executer, context, "squares", kCode);

    // A local of the method, set before it runs.
    ZR_Text limit = NewText("limit"), total = NewText("total");
    context->rootStack.Dispose();
    context->rootStack.Create(method->reference);
    zrExe_FindVariableByNameAndCreate(&context->rootStack.localVariables, &limit, ZR_EXE_Real)->SetNumber(10);

    zrExe_RunMethod(context, method, 0);

    int status = 0;
    if (context->lastError) {
        std::printf("line %ld: error %ld: %s\n", context->lastErrorLine, context->lastError,
                    context->lastErrorText.GetCStringPtr());
        status = 1;
    } else {
        ZR_Executer_Variable* result = context->rootStack.GetLocalVariable(&total);
        std::printf("The sum of the first ten squares is %g.\n", result ? result->GetNumber() : -1.0);
    }
    total.Dispose();
    limit.Dispose();
    executer->DeleteExecutionContext(context);
    return status;
}

int main() {
    zrhost::Options options;
    options.alert = [](std::u16string_view line) { std::printf("%s\n", zrhost::ToUtf8(line).c_str()); };
    auto host = zrhost::Host::Start(options);
    host->registerMethod(u"Greeting", Greeting);

    ZR_StartupRecord record = host->startupRecord();
    FourDPackex(-1, &record, nullptr, nullptr);
    ZR_Executer executer;
    executer.Create();
    int status = RunExample(&executer);
    executer.Dispose();
    FourDPackex(-2, nullptr, nullptr, nullptr);
    return status;
}
