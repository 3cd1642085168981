// What the benchmarks share: the embedded host and the module, started once, an Executer over them, texts and methods
// for the length of a scope.
#ifndef ZR_BENCH_BENCHSUPPORT_H
#define ZR_BENCH_BENCHSUPPORT_H

#include <string>
#include <string_view>

#include "host/Host.h"
#include "zr.h"

namespace zrbench {

ZR_Executer& Executer();  // starts host, module and table of commands at the first call

class Text {
  public:
    explicit Text(std::string_view utf8) {
        text_.Create();
        if (!utf8.empty()) text_.AddUTF8String(utf8.data(), static_cast<long>(utf8.size()));
    }
    ~Text() { text_.Dispose(); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ZR_Text* get() { return &text_; }

  private:
    ZR_Text text_;
};

// A context of its own, with methods by name.
class Program {
  public:
    Program() : context_(Executer().CreateExecutionContext()) { context_->useVirtualStructure = true; }
    ~Program() { Executer().DeleteExecutionContext(context_); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    ZR_ExecutionContext* context() { return context_; }
    // Methods that others call are added first: the tokeniser has to know their names.
    void add(std::string_view name, std::string_view code);
    void run(std::string_view name);  // ends the program with a sentence if the method ends in an error

  private:
    ZR_ExecutionContext* context_;
};

// About so many bytes of code as people write it: declarations, names, numbers, texts, comments, calls, blocks.
std::string MixedSource(size_t bytes);

int ReportStartup();  // one start, step by step, as JSON on standard output; before anything else has run

}  // namespace zrbench

#endif
