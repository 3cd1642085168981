// One start, step by step, in a process that has done nothing else: what a run pays before the first line.
#include <chrono>
#include <cstdio>
#include <memory>

#include "bench/BenchSupport.h"

namespace zrbench {

namespace {

class Steps {
  public:
    // Microseconds since the last step.
    void end(const char* name) {
        auto now = std::chrono::steady_clock::now();
        double took = std::chrono::duration<double, std::micro>(now - last_).count();
        std::printf("%s\n  \"%s\": %.1f", first_ ? "{" : ",", name, took);
        first_ = false;
        last_ = std::chrono::steady_clock::now();
    }

  private:
    bool first_ = true;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

long SupportedRows(ZR_Executer& executer) {
    long supported = 0;
    for (long row = 1; row <= ZR_EXE_HOST_COMMANDS; ++row)
        supported += reinterpret_cast<ZR_Executer_Command*>(executer.commands.GetMemPtr(row))->supported;
    return supported;
}

}  // namespace

// The steps of ZR_Executer::Create, with the probe set apart.
int ReportStartup() {
    Steps steps;
    std::unique_ptr<zrhost::Host> host = zrhost::Host::Start({});
    steps.end("start of the host");
    ZR_StartupRecord record = host->startupRecord();
    FourDPackex(-1, &record, nullptr, nullptr);
    steps.end("start of the module");
    ZR_Executer executer;
    executer.CreateTables();
    executer.CreateCommands();
    for (long number = 1; number <= ZR_EXE_HOST_COMMANDS; ++number) executer.ReadHostCommand(number);
    steps.end("2,000 names of the host");
    ZR_ExecutionContext probe;
    probe.Create(0, nullptr);
    probe.probeMode = true;
    for (long number = 1; number <= ZR_EXE_HOST_COMMANDS; ++number) {
        auto* row = reinterpret_cast<ZR_Executer_Command*>(executer.commands.GetMemPtr(number));
        if (row->id == 0) continue;
        probe.probeSupported = false;
        probe.Execute4DCommand(nullptr, number, nullptr);
        row->supported = probe.probeSupported;
    }
    probe.Dispose();
    steps.end("probe of the handlers");
    executer.FinishCommands();
    steps.end("keywords, search keys, index");
    executer.GetSystemFormat();
    steps.end("separators");
    ZR_ExecutionContext* context = executer.CreateExecutionContext();
    steps.end("context");
    std::printf("\n}\n");
    bool complete = executer.commands.count == ZR_EXE_COMMAND_ROWS && SupportedRows(executer) > 0;
    executer.DeleteExecutionContext(context);
    executer.Dispose();
    FourDPackex(-2, nullptr, nullptr, nullptr);
    return complete ? 0 : 1;
}

}  // namespace zrbench
