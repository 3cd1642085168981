// Contexts, variables, calls. A loop of the language is measured over 1,000 passes; an item is a pass.
#include <benchmark/benchmark.h>

#include "bench/BenchSupport.h"

using zrbench::Executer;
using zrbench::Program;
using zrbench::Text;

static constexpr long kPasses = 1000;

static void Context_Create(benchmark::State& state) {
    Executer();
    for (auto _ : state) {
        ZR_ExecutionContext* context = Executer().CreateExecutionContext();
        benchmark::DoNotOptimize(context);
        Executer().DeleteExecutionContext(context);
    }
}
BENCHMARK(Context_Create)->Unit(benchmark::kMicrosecond);

// Every name of the list in turn: no hint helps.
static void Variable_Lookup(benchmark::State& state) {
    Program program;
    ZR_Handle* list = &program.context()->processVariables;
    for (long i = 1; i <= state.range(0); ++i) {
        Text name("variable " + std::to_string(i));
        zrExe_FindVariableByNameAndCreate(list, name.get(), ZR_EXE_Real);
    }
    ZR_Handle tokens;
    zrExe_CreateTokens(&tokens);
    for (long i = 1; i <= state.range(0); ++i) {
        Text name("VARIABLE " + std::to_string(i * 7919 % state.range(0) + 1));
        zrExe_AddToken(&tokens, ZREXE_TOKEN_VARIABLE, name.get());
    }
    long at = 0;
    for (auto _ : state) {
        at = at % tokens.count + 1;
        auto* token = reinterpret_cast<ZR_Executer_Token*>(tokens.GetMemPtr(at));
        ZR_Executer_Variable* found = program.context()->GetVariableFromToken(token, /*create*/ false);
        if (!found) return state.SkipWithError("a variable is missing");
        benchmark::DoNotOptimize(found);
    }
    zrExe_DisposeTokens(&tokens);
}
BENCHMARK(Variable_Lookup)->Arg(10)->Arg(1000)->Arg(10'000);

// Loops of the language ----------------------------------------------------------------------------------------------

static void RunLoop(benchmark::State& state, Program& program, const std::string& body, bool plain = false) {
    program.add("loop", "For ($i;1;" + std::to_string(kPasses) + ")\n" + body + "\nEnd for\n");
    program.context()->plainOnly = plain;
    for (auto _ : state) program.run("loop");
    state.SetItemsProcessed(state.iterations() * kPasses);
}

static void Loop_Empty(benchmark::State& state) {
    Program program;
    RunLoop(state, program, "");
}
BENCHMARK(Loop_Empty)->Unit(benchmark::kMicrosecond);

static void Loop_Arithmetic(benchmark::State& state) {
    Program program;
    RunLoop(state, program, "$s:=($i*3)+1");
}
BENCHMARK(Loop_Arithmetic)->Unit(benchmark::kMicrosecond);

static void Loop_ArithmeticPlain(benchmark::State& state) {
    Program program;
    RunLoop(state, program, "$s:=($i*3)+1", /*plain*/ true);
}
BENCHMARK(Loop_ArithmeticPlain)->Unit(benchmark::kMicrosecond);

static void Loop_ForwardedCommand(benchmark::State& state) {
    Program program;
    RunLoop(state, program, "$s:=Abs($i)");
}
BENCHMARK(Loop_ForwardedCommand)->Unit(benchmark::kMicrosecond);

static void Loop_ForwardedCommandOfText(benchmark::State& state) {
    Program program;
    RunLoop(state, program, "$s:=Uppercase(\"The quick brown fox\")");
}
BENCHMARK(Loop_ForwardedCommandOfText)->Unit(benchmark::kMicrosecond);

static void Loop_MethodCall(benchmark::State& state) {
    Program program;
    program.add("Half", "$0:=$1/2");
    RunLoop(state, program, "$s:=Half($i)");
}
BENCHMARK(Loop_MethodCall)->Unit(benchmark::kMicrosecond);
