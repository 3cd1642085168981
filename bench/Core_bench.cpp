// Handles and texts: appending, comparing.
#include <benchmark/benchmark.h>

#include "bench/BenchSupport.h"

using zrbench::Text;

static void Handle_AppendRecords(benchmark::State& state) {
    for (auto _ : state) {
        ZR_Handle handle;
        handle.Create(sizeof(long), 0);
        for (long i = 0; i < state.range(0); ++i) {
            char* record = handle.AppendGetPtr();
            std::memcpy(record, &i, sizeof i);
        }
        benchmark::DoNotOptimize(handle.data);
        handle.Dispose();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Handle_AppendRecords)->Arg(10'000)->Arg(1'000'000);

static void Handle_AppendWireLongs(benchmark::State& state) {
    for (auto _ : state) {
        ZR_Handle handle;
        handle.Create(1, 0);
        for (long i = 0; i < state.range(0); ++i) handle.AddLong(i);
        benchmark::DoNotOptimize(handle.data);
        handle.Dispose();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Handle_AppendWireLongs)->Arg(10'000)->Arg(1'000'000);

static void Text_AppendUnits(benchmark::State& state) {
    for (auto _ : state) {
        ZR_Text text;
        text.Create();
        for (long i = 0; i < state.range(0); ++i) text.AddUnit(static_cast<unsigned short>('a' + i % 26));
        benchmark::DoNotOptimize(text.data);
        text.Dispose();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Text_AppendUnits)->Arg(10'000)->Arg(1'000'000);

static void Text_AppendTexts(benchmark::State& state) {
    Text word("seven..");
    for (auto _ : state) {
        ZR_Text text;
        text.Create();
        for (long i = 0; i < state.range(0); ++i) text.AddText(word.get());
        benchmark::DoNotOptimize(text.data);
        text.Dispose();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Text_AppendTexts)->Arg(10'000)->Arg(1'000'000);

// The comparison of the language: case and accents do not count, @ on the right is a wildcard.
static void Text_Compare(benchmark::State& state, const char* left, const char* right, bool equal) {
    zrbench::Executer();
    Text first(left), second(right);
    if (first.get()->EqualWithWildChar(second.get()) != equal) return state.SkipWithError("another answer is expected");
    for (auto _ : state) benchmark::DoNotOptimize(first.get()->EqualWithWildChar(second.get()));
}
BENCHMARK_CAPTURE(Text_Compare, ascii_same, "The quick brown fox", "The quick brown fox", true);
BENCHMARK_CAPTURE(Text_Compare, ascii_other_case, "The quick brown fox", "THE QUICK BROWN FOX", true);
BENCHMARK_CAPTURE(Text_Compare, ascii_unequal, "The quick brown fox", "The quick brown dog", false);
BENCHMARK_CAPTURE(Text_Compare, ascii_wildcard, "The quick brown fox", "The @ fox", true);
BENCHMARK_CAPTURE(Text_Compare, accents_same, "Die schöne Müllerin", "Die schöne Müllerin", true);
BENCHMARK_CAPTURE(Text_Compare, accents_equal, "Die schöne Müllerin", "Die schone MULLERIN", true);
BENCHMARK_CAPTURE(Text_Compare, accents_unequal, "Die schöne Müllerin", "Die schöne Müllerei", false);
BENCHMARK_CAPTURE(Text_Compare, accents_wildcard, "Die schöne Müllerin", "Die @ MULLERIN", true);
BENCHMARK_CAPTURE(Text_Compare, greek_equal, "Αθήνα, Πειραιάς", "ΑΘΗΝΑ, Πειραιας", true);
