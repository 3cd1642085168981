// From text to tokens, to bytes and back.
#include <benchmark/benchmark.h>

#include "bench/BenchSupport.h"

using zrbench::Executer;
using zrbench::Text;

static constexpr size_t kSourceBytes = 1'000'000;

// A list of method names beside the source, as zr run enters the files of a folder.
static void FillStructure(ZR_Handle* list, long methods) {
    list->Create(sizeof(ZR_Executer_VirtualStructure), 0);
    for (long i = 1; i <= methods; ++i) {
        Text name("Method of a project " + std::to_string(i));
        auto* record = reinterpret_cast<ZR_Executer_VirtualStructure*>(list->AppendGetPtr());
        record->CreateMethod(name.get(), name.get(), i, 0);
    }
}

static void Tokeniser_MixedSource(benchmark::State& state) {
    std::string source = zrbench::MixedSource(kSourceBytes);
    Text text(source);
    ZR_Handle structure;
    FillStructure(&structure, state.range(0));
    for (auto _ : state) {
        ZR_Handle tokens;
        zrExe_CreateTokens(&tokens);
        tokens.growStep = 100;
        Executer().TokenizeToTokens(text.get(), &tokens, state.range(0) ? &structure : nullptr, nullptr, nullptr);
        if (tokens.count < static_cast<long>(kSourceBytes / 10)) return state.SkipWithError("tokens are missing");
        state.counters["tokens"] = static_cast<double>(tokens.count);
        zrExe_DisposeTokens(&tokens);
    }
    ZR_EXE_DisposeVirtualStructure(&structure);
    state.SetBytesProcessed(state.iterations() * static_cast<long>(source.size()));
}
BENCHMARK(Tokeniser_MixedSource)->ArgName("methods")->Arg(0)->Arg(1000)->Unit(benchmark::kMillisecond);

// The tokens of the mixed source for the length of a scope.
struct MixedTokens {
    MixedTokens() {
        Text text(zrbench::MixedSource(kSourceBytes));
        zrExe_CreateTokens(&tokens);
        Executer().TokenizeToTokens(text.get(), &tokens, nullptr, nullptr, nullptr);
        blob.Create(1, 0);
        zrExe_TokensToBlob(&tokens, &blob);
    }
    ~MixedTokens() {
        blob.Dispose();
        zrExe_DisposeTokens(&tokens);
    }
    ZR_Handle tokens, blob;
};

static void TokenBlob_Write(benchmark::State& state) {
    MixedTokens mixed;
    for (auto _ : state) {
        ZR_Handle blob;
        blob.Create(1, 0);
        zrExe_TokensToBlob(&mixed.tokens, &blob);
        benchmark::DoNotOptimize(blob.data);
        blob.Dispose();
    }
    state.SetBytesProcessed(state.iterations() * mixed.blob.count);
}
BENCHMARK(TokenBlob_Write)->Unit(benchmark::kMillisecond);

static void TokenBlob_Read(benchmark::State& state) {
    MixedTokens mixed;
    for (auto _ : state) {
        ZR_Handle tokens;
        zrExe_CreateTokens(&tokens);
        zrExe_BlobToTokens(&mixed.blob, &tokens);
        benchmark::DoNotOptimize(tokens.data);
        zrExe_DisposeTokens(&tokens);
    }
    state.SetBytesProcessed(state.iterations() * mixed.blob.count);
}
BENCHMARK(TokenBlob_Read)->Unit(benchmark::kMillisecond);

// The table of commands: 2,000 names asked of the host, the probe of every handler, 22 names of the library's own.
static void Registry_Create(benchmark::State& state) {
    Executer();
    for (auto _ : state) {
        ZR_Executer executer;
        executer.CreateTables();
        executer.InitCommands();
        benchmark::DoNotOptimize(executer.commands.data);
        executer.Dispose();
    }
}
BENCHMARK(Registry_Create)->Unit(benchmark::kMicrosecond);

static void Registry_CreateWithoutProbe(benchmark::State& state) {
    Executer();
    for (auto _ : state) {
        ZR_Executer executer;
        executer.CreateTables();
        executer.CreateCommands();
        for (long number = 1; number <= ZR_EXE_HOST_COMMANDS; ++number) executer.ReadHostCommand(number);
        executer.FinishCommands();
        benchmark::DoNotOptimize(executer.commands.data);
        executer.Dispose();
    }
}
BENCHMARK(Registry_CreateWithoutProbe)->Unit(benchmark::kMicrosecond);

static void Registry_SearchName(benchmark::State& state) {
    Text name("append to array");
    Executer();
    for (auto _ : state) benchmark::DoNotOptimize(Executer().Search4DCommandForTokenization(name.get()));
}
BENCHMARK(Registry_SearchName);
