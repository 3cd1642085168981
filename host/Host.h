// The embedded host: answers the module's one door, Call4D, without a 4D server.
//
// One host is active at a time in a program; Start makes it, the destructor ends it. The thread that starts the host
// becomes process 1, the main process; RunProcess starts others, each a thread with its own variables. A thread that
// calls in without being asked is given a process of its own at its first call.
//
//     zrhost::Options options;
//     options.alert = [](std::u16string_view line) { std::puts(zrhost::ToUtf8(line).c_str()); };
//     auto host = zrhost::Host::Start(options);
//     ZR_StartupRecord record = host->startupRecord();
//     FourDPackex(-1, &record, nullptr, nullptr);   // the module of libzr
//
// This header needs the published interface alone and can be installed with it.
#ifndef ZRHOST_HOST_H
#define ZRHOST_HOST_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Value.h"
#include "plugin/ZR_HostInterface.h"

namespace zrhost {

class Process;  // host/Process.h

// Text -------------------------------------------------------------------------------------------------------------

std::u16string FromUtf8(std::string_view bytes);  // invalid bytes become U+FFFD
std::string ToUtf8(std::u16string_view units);    // lone surrogates become U+FFFD

// What a host is started with --------------------------------------------------------------------------------------

struct Options {
    uint16_t version = 0x1800;     // hexadecimal digits: major, release, patch; behaviour of the module branches on it
    std::string locale = "en-US";  // formats and collation: language-COUNTRY
    std::string language = "en";   // "en" or "fr": the names of the commands
    bool preemptive = false;       // the main process is preemptive; else cooperative
    bool compiled = false;         // what the flags of HostVersion say
    std::string applicationPath;   // the program that runs; empty = asked from the system
    std::string structurePath;     // the file that is run, as command 489 answers it; may be empty
    std::string unicodeLibrary;    // path of the Unicode object; empty = beside this library

    // Every function may be empty. They are called on the thread of the process that asks.
    std::function<void(std::u16string_view line)> alert;    // ALERT: one call a message
    std::function<void(std::u16string_view line)> message;  // MESSAGE; empty = alert is used
    // CONFIRM: the answer, true = OK. Empty = the default is taken, OK. Titles are empty if not given.
    std::function<bool(std::u16string_view text, std::u16string_view ok, std::u16string_view cancel)> confirm;
    // Request: the answer, nothing = cancelled. Empty = the default answer is accepted.
    std::function<std::optional<std::u16string>(std::u16string_view text, std::u16string_view preset)> request;
    std::function<void(int id, std::string_view name)> notServed;  // a command that is not served: once a number
    std::function<bool()> interrupted;                             // true: long-running commands end at their next step
    std::function<void(std::u16string_view line)> log;             // LOG EVENT
    // A shared object beside this library is missing: once an object, with the Debian package that it needs.
    std::function<void(std::string_view object, std::string_view package)> missingObject;
};

struct CommandInfo {
    int id = 0;             // 0 = there is no such command
    std::string_view name;  // UTF-8, in the language of the host
    bool threadSafe = false;
    bool served = false;  // this host runs it
};

// A method given by C++ code: the arguments in, the result out (undefined if it has none). It runs on the thread of
// the calling process. It may throw: the call then ends undefined with error 4001.
using Method = std::function<Value(std::span<Value> arguments)>;

class Host {
  public:
    // The new host; null if one is active already. The calling thread becomes process 1.
    static std::unique_ptr<Host> Start(Options options = {});
    static Host* active();                                 // null = none
    static void Call4D(int selector, EngineBlock* block);  // the door; safe without an active host (error 4011)

    ~Host();  // asks all processes to end and waits for them; objects that are still referenced stay valid memory
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    ZR_StartupRecord startupRecord() const;  // what FourDPackex takes with selector -1
    const Options& options() const;

    // Variables. Names without the leading <>, compared as the language does (ASCII letters without regard to case).
    Value variable(std::u16string_view name) const;  // of the calling process; undefined if there is none
    void setVariable(std::u16string_view name, const Value& value);  // made if missing; takes the kind of the value
    Value interprocessVariable(std::u16string_view name) const;
    void setInterprocessVariable(std::u16string_view name, const Value& value);
    bool ok() const;  // OK of the calling process
    void setOK(bool ok);
    std::u16string document() const;  // Document of the calling process
    void setDocument(std::u16string_view path);

    // Methods. Names are compared like variable names.
    int registerMethod(std::u16string_view name, Method method);  // its number from 1; an older one of the name goes
    void unregisterMethod(std::u16string_view name);
    int methodNumber(std::u16string_view name) const;  // 0 = unknown
    // Called for a method name that is not registered: answers a method, or an empty one. So a folder of files can
    // be read when they are first called.
    void setMethodResolver(std::function<Method(std::u16string_view name)> resolver);
    bool runMethod(std::u16string_view name, std::span<Value> arguments, Value* result);  // false = unknown

    // Commands.
    CommandInfo command(int id) const;               // [1..2000]; id 0 in the answer = none
    int commandNumber(std::string_view name) const;  // by English or French name, ASCII letters in any case; 0 = none
    static constexpr int kLastCommand = 2000;

    // Processes.
    // Starts a process on a thread of its own; its number, above 1. A cooperative one runs when the others yield.
    int runProcess(std::u16string_view name, bool preemptive, std::function<void()> body);
    bool waitForProcess(int number);  // until it has ended; false = no such process. Lets cooperative ones run.
    Process& currentProcess() const;
    bool interrupted() const;  // the options' function, or this process is asked to end
    // Runs the function on the main process, at its next yield, and returns when it has run.
    void runInMainProcess(const std::function<void()>& function);
    // Inside a scope of this kind the calling process does not hold the others up: waits, sleeps, reads of pipes.
    class Blocking {
      public:
        explicit Blocking(Host& host);
        ~Blocking();
        Blocking(const Blocking&) = delete;

      private:
        Process* process_;
    };

    // State of commands for the life of the host (open documents, registered clients): one object a type, made at
    // the first use. The object guards itself if processes share it.
    template <class T>
    T& state() {
        static const char key = 0;
        return *static_cast<T*>(stateSlot(&key, [] { return std::shared_ptr<void>(std::make_shared<T>()); }));
    }

    struct Inside;  // host/Host_Private.h
    Inside& inside() const { return *inside_; }

  private:
    Host();
    void* stateSlot(const void* key, std::shared_ptr<void> (*make)());
    std::unique_ptr<Inside> inside_;
};

}  // namespace zrhost

#endif
