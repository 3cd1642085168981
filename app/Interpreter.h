// The interpreter as the tool runs it: the embedded host, the module started through its entry, the table of commands,
// and a program: the methods that one context holds, read from files when they are first called.
#ifndef ZRTOOL_INTERPRETER_H
#define ZRTOOL_INTERPRETER_H

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "app/Folder.h"
#include "app/Source.h"
#include "host/Host.h"
#include "language/ZR_API_Executer.h"
#include "runtime/ZR_API_Context.h"

namespace zrtool {

// A text of the library for the length of a scope.
class Text {
  public:
    explicit Text(std::u16string_view units = {});
    ~Text() { text_.Dispose(); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ZR_Text* get() { return &text_; }

  private:
    ZR_Text text_;
};

// A block of the library for the length of a scope.
class Block {
  public:
    explicit Block(long elementSize = 1) { handle_.Create(elementSize, 0); }
    ~Block() { handle_.Dispose(); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ZR_Handle* get() { return &handle_; }
    std::string_view bytes() const;

  private:
    ZR_Handle handle_;
};

std::u16string_view UnitsOf(const ZR_Text& text);  // borrowed
std::string Utf8Of(const ZR_Text& text);

// One at a time in a process.
class Interpreter {
  public:
    explicit Interpreter(zrhost::Options options);  // throws Refusal
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    zrhost::Host& host() { return *host_; }
    ZR_Executer& executer() { return executer_; }
    std::string commandName(long number);             // UTF-8; empty = unknown
    std::string plainCode(const SourceFile& source);  // without suffixes

    // Asked by commands that run for long: true = end. Empty = go on.
    std::function<bool()> interrupted;

  private:
    std::unique_ptr<zrhost::Host> host_;
    ZR_Executer executer_;
};

class Program {
  public:
    Program(Interpreter& interpreter, MethodFolder folder);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    ZR_ExecutionContext* context() { return context_; }
    const MethodFolder& folder() const { return folder_; }
    void tokenise(const SourceFile& source, ZR_Handle* blob);   // of a blob file: its bytes
    long addMethod(std::string_view name, SourceFile source);   // its reference; throws Refusal
    long referenceOf(std::string_view name);                    // read if need be; 0 = none; throws Refusal
    void allowOnly(const std::vector<std::string>& lists);      // names or numbers, separated by commas
    void deny(const std::vector<std::string>& lists);           // the same; both throw Refusal
    void declare(long reference, std::string_view assignment);  // NAME=VALUE, see Values.h; throws Refusal
    void run(long reference, double seconds);                   // 0 = as long as it takes

    struct Place {         // of an error or a call
        std::string path;  // for messages
        std::string method;
        long line = 0;
        std::string_view source;  // the line; borrowed; empty = unknown
    };
    std::vector<Place> errorPlaces() const;  // innermost first; empty = no error

  private:
    struct Loaded {
        std::string name;
        SourceFile source;
    };
    static bool Provide(ZR_ExecutionContext* context, ZR_Text* name, void* program);
    bool provide(const std::string& name);
    bool timeIsUp();
    Place place(long reference, long line) const;
    zrhost::Method hostMethod(const std::string& name);
    zrhost::Value call(const std::string& name, std::span<zrhost::Value> arguments);
    std::vector<long> numbersOf(const std::vector<std::string>& lists);
    void setAllowed(const std::vector<long>& numbers, ZR_EXE_SetAllowed mode);

    Interpreter& interpreter_;
    MethodFolder folder_;
    ZR_ExecutionContext* context_ = nullptr;
    std::map<long, Loaded> loaded_;                     // by method reference
    std::unordered_map<std::string, long> references_;  // by folded name
    std::set<std::string> unreadable_;                  // names whose file could not be read
    std::thread::id thread_;                            // that runs the context
    double deadline_ = 0;                               // monotonic seconds; 0 = none
};

}  // namespace zrtool

#endif
