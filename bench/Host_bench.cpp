// The embedded host as the library meets it: a command by number, JSON in and out.
#include <benchmark/benchmark.h>

#include "bench/BenchSupport.h"

static constexpr int kAbs = 99, kJsonStringify = 1217, kJsonParse = 1218;

static void HostCommand_OfNumber(benchmark::State& state) {
    zrbench::Executer();
    PA_Variable number = PA_CreateVariable(eVK_Real);
    PA_SetRealVariable(&number, -5);
    for (auto _ : state) {
        PA_Variable answer = PA_ExecuteCommandByID(kAbs, &number, 1);
        benchmark::DoNotOptimize(answer);
        PA_ClearVariable(&answer);
    }
    PA_ClearVariable(&number);
}
BENCHMARK(HostCommand_OfNumber);

// A list of records with a text, numbers and a list each; about so many bytes.
static std::u16string JsonDocument(size_t bytes) {
    std::u16string document = u"[";
    for (int i = 1; document.size() < bytes; ++i) {
        if (i > 1) document += u",";
        document += u"{\"id\":" + zrhost::FromUtf8(std::to_string(i)) +
                    u",\"name\":\"Grüße \\\"nach\\\" Zürich\",\"price\":12.75,\"tags\":[\"a\",\"b\",true,null]}";
    }
    return document + u"]";
}

static PA_Variable TextVariable(const std::u16string& units) {
    PA_Variable variable = PA_CreateVariable(eVK_Text);
    PA_SetStringVariable(&variable, PA_CreateUnistringWithLength(reinterpret_cast<const PA_Unichar*>(units.data()),
                                                                 static_cast<long>(units.size())));
    return variable;
}

static void Json_In(benchmark::State& state) {
    zrbench::Executer();
    std::u16string document = JsonDocument(static_cast<size_t>(state.range(0)));
    PA_Variable text = TextVariable(document);
    for (auto _ : state) {
        PA_Variable value = PA_ExecuteCommandByID(kJsonParse, &text, 1);
        if (value.fType != eVK_Collection) return state.SkipWithError("the document is not read");
        PA_ClearVariable(&value);
    }
    PA_ClearVariable(&text);
    state.SetBytesProcessed(state.iterations() * static_cast<long>(zrhost::ToUtf8(document).size()));
}
BENCHMARK(Json_In)->Arg(1'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

static void Json_Out(benchmark::State& state) {
    zrbench::Executer();
    std::u16string document = JsonDocument(static_cast<size_t>(state.range(0)));
    PA_Variable text = TextVariable(document);
    PA_Variable value = PA_ExecuteCommandByID(kJsonParse, &text, 1);
    for (auto _ : state) {
        PA_Variable out = PA_ExecuteCommandByID(kJsonStringify, &value, 1);
        if (out.fType != eVK_Text) return state.SkipWithError("the value is not written");
        PA_ClearVariable(&out);
    }
    PA_ClearVariable(&value);
    PA_ClearVariable(&text);
    state.SetBytesProcessed(state.iterations() * static_cast<long>(zrhost::ToUtf8(document).size()));
}
BENCHMARK(Json_Out)->Arg(1'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
