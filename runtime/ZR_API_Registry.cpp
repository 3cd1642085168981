// Where the Executer meets the interpreter: the command table asks the handlers which numbers they run, and the table
// of execution contexts.

#include <cstdlib>

#include "language/ZR_API_Executer.h"
#include "plugin/ZR_API_Numbers.h"
#include "runtime/ZR_API_Context.h"

void ZR_Executer::InitCommands() {
    CreateCommands();
    ZR_ExecutionContext* probe = static_cast<ZR_ExecutionContext*>(malloc(sizeof(ZR_ExecutionContext)));
    if (probe) {
        probe->Create(0, nullptr);
        probe->probeMode = true;
    }
    for (long number = 1; number <= ZR_EXE_HOST_COMMANDS; ++number) {
        ZR_Executer_Command* row = ReadHostCommand(number);
        if (!row || !probe) continue;
        probe->probeSupported = false;
        probe->Execute4DCommand(nullptr, number, nullptr);
        row->supported = probe->probeSupported;
    }
    if (probe) probe->Dispose();
    free(probe);
    FinishCommands();
}

ZR_ExecutionContext* ZR_Executer::CreateExecutionContext() {
    ZR_ExecutionContext* context = static_cast<ZR_ExecutionContext*>(malloc(sizeof(ZR_ExecutionContext)));
    if (context) context->Create(contexts.Append(context), &commands);
    return context;
}

void ZR_Executer::DeleteExecutionContext(ZR_ExecutionContext* context) {
    if (!context) return;
    contexts.DeleteByPtr(context);
    context->Dispose();
    free(context);
}

ZR_ExecutionContext* ZR_Executer::GetExecutionContextPtrByReference(long reference) {
    return static_cast<ZR_ExecutionContext*>(contexts.GetByReference(reference));
}

void ZR_Executer::GetContextList(PA_Variable* references, PA_Variable* threads) {
    contexts.To4DArrays(references, threads);
}
