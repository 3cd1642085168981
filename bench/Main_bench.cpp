// zr_bench: the benchmarks of the pieces. zr_bench --startup reports one start instead.
#include <benchmark/benchmark.h>

#include <string_view>

#include "bench/BenchSupport.h"

int main(int count, char** words) {
    if (count == 2 && std::string_view(words[1]) == "--startup") return zrbench::ReportStartup();
    benchmark::Initialize(&count, words);
    if (benchmark::ReportUnrecognizedArguments(count, words)) return 1;
    zrbench::Executer();  // texts are converted by the host
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
