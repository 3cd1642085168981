// Whole programs through the path of zr run: suffixes of project files, tokeniser, token blob, method, run. The host,
// the module and the table of commands are started once; every input gets a context of its own, half a second, and no
// command that touches files, processes or the outside.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "app/Interpreter.h"
#include "app/Messages.h"
#include "app/Values.h"
#include "runtime/ZR_API_Guards.h"

// A program may ask for large arrays: what is refused here ends in its error -63 and not in the end of the process.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=128:quarantine_size_mb=16";
}

static constexpr size_t kLongestInput = 64 * 1024;  // bytes
static constexpr double kSeconds = 0.5;
static constexpr long kMemory = 256L << 20;  // bytes of storage in all
static constexpr long kDeepest = 200;        // calls

// Commands that reach out of the process, or wait.
static const char kDenied[] =
    "CONFIRM,Request,BEEP,DELETE DOCUMENT,Open document,Append document,Create document,CLOSE DOCUMENT,SET TIMEOUT,"
    "READ PICTURE FILE,SET TEXT TO PASTEBOARD,EXECUTE METHOD,EXECUTE FORMULA,Semaphore,CLEAR SEMAPHORE,FONT LIST";

static zrtool::Interpreter& StartedInterpreter() {
    static zrtool::Interpreter* interpreter = [] {
        zrhost::Options options;
        options.alert = [](std::u16string_view) {};
        options.notServed = [](int, std::string_view) {};
        ZR_SetMemoryLimit(kMemory);
        return new zrtool::Interpreter(std::move(options));
    }();
    return *interpreter;
}

static void RunOnce(zrtool::Interpreter& interpreter, std::string_view code) {
    zrtool::MethodFolder folder;
    folder.addFile("input");  // so that it can call itself
    zrtool::Program program(interpreter, folder);
    zrtool::SourceFile source;
    source.path = "input";
    source.bytes = code;
    long started = program.addMethod("input", source);
    program.deny({kDenied});
    program.context()->maxCalls = kDeepest;
    program.run(started, kSeconds);
    program.errorPlaces();
    std::string variables;
    zrtool::AppendVariables(variables, program.context());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > kLongestInput) return 0;
    try {
        RunOnce(StartedInterpreter(), {reinterpret_cast<const char*>(data), size});
    } catch (const zrtool::Refusal& refusal) {
        zrtool::Say(refusal.sentence);
        abort();  // the list of denied commands names one that does not exist
    }
    return 0;
}
