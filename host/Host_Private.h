// What the sources of the engine share and nobody else sees.
#ifndef ZRHOST_HOST_PRIVATE_H
#define ZRHOST_HOST_PRIVATE_H

#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "host/Formats.h"
#include "host/Host.h"
#include "host/Process.h"
#include "host/Variables.h"

namespace zrhost {

// The lock that cooperative processes share: first come, first served.
class TurnLock {
  public:
    void lock();
    void unlock();
    bool wanted() const { return waiting_.load(std::memory_order_relaxed) > 0; }

  private:
    std::mutex mutex_;
    std::condition_variable next_;
    uint64_t tickets_ = 0, serving_ = 0;
    std::atomic<int> waiting_{0};
};

struct MainCall {  // a function that waits for the main process
    const std::function<void()>* function;
    bool done = false;
    bool refused = false;
};

struct ProcessRecord {
    std::shared_ptr<Process> process;
    std::thread thread;      // not joinable: a thread of somebody else
    bool holdsTurn = false;  // touched by its own thread
    int blocking = 0;        // depth of Host::Blocking; touched by its own thread
    // Guarded by the mutex of Inside:
    bool ended = false;
    int64_t wakeAt = 0;  // milliseconds of the steady clock; 0 = no delay
    bool pauseAsked = false;
    std::atomic<bool> attention{false};  // the next yield looks at the two above
};

struct Host::Inside {
    Host* host = nullptr;
    Options options;
    Locale locale;
    uint64_t generation = 0;  // tells the threads of an earlier host from those of this one

    // Processes; guarded by mutex. The condition is told of every change.
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::map<int, std::unique_ptr<ProcessRecord>> processes;
    int lastNumber = 0;
    std::deque<MainCall*> mainCalls;
    std::atomic<bool> mainCallsWait{false};
    std::atomic<bool> stopping{false};
    TurnLock turn;
    struct Semaphore {
        int owner;
        std::u16string name;
    };
    std::unordered_map<std::u16string, int> semaphores;  // folded name to the process that holds it

    VariableTable interprocess;

    // Names of variables that pointers carry as numbers; guarded by namesMutex.
    std::mutex namesMutex;
    std::unordered_map<std::u16string, uint64_t> nameNumbers;  // by folded name
    std::vector<std::u16string> names;                         // number 1 first

    // Methods; guarded by methodsMutex.
    std::mutex methodsMutex;
    std::unordered_map<std::u16string, int> methodNumbers;  // by folded name
    std::vector<Method> methods;                            // number 1 first; empty = unregistered
    std::function<Method(std::u16string_view)> methodResolver;

    std::mutex stateMutex;
    std::unordered_map<const void*, std::shared_ptr<void>> states;

    std::array<std::atomic<bool>, Host::kLastCommand + 1> reported{};  // commands named as not served
};

// Processes (Process.cpp)
void StartMainProcess(Host::Inside& inside);         // the calling thread
void EndProcesses(Host::Inside& inside);             // asks all to end and waits; the calling thread leaves process 1
ProcessRecord& CurrentRecord(Host::Inside& inside);  // a foreign thread is given a preemptive process
int64_t Milliseconds();                              // of the steady clock

// Pointers (Pointers.cpp)
uint64_t NumberOfName(Host::Inside& inside, std::u16string_view name);  // from 1; made if new
std::u16string NameOfNumber(Host::Inside& inside, uint64_t number);     // empty = unknown
PointerBlock PointerToVariable(Host::Inside& inside, std::u16string_view name, bool interprocess, int element = 0);
std::u16string PointerText(const PointerBlock& pointer);  // "->name"; empty without a host
bool ReadPointer(Host::Inside& inside, const PointerBlock& pointer, PA_Variable* out);  // overwrites
bool WritePointer(Host::Inside& inside, const PointerBlock& pointer, const PA_Variable& value);
int PointerTargetKind(Host::Inside& inside, const PointerBlock& pointer);

// Commands (Commands.cpp)
int16_t RunCommand(Host& host, int id, PA_Variable** parameters, int count, PA_Variable* result);
void ReportNotServed(Host& host, int id);

// Member functions (Members.cpp): arguments behind the name.
int16_t RunMember(Host& host, const Value& target, std::u16string_view name, std::span<const Value> arguments,
                  Value* result);

// Methods and lines of code (Methods.cpp)
int16_t RunRegistered(Host& host, int number, std::span<Value> arguments, Value* result);  // 4004 if unknown
int16_t RunMethodOrLine(Host& host, std::u16string_view code, std::span<Value> arguments, Value* result);
int16_t EvaluateText(Host& host, std::u16string_view expression, Value* result);

// Facts about commands (CommandNames.cpp)
struct CommandFacts {
    std::string_view english, french;  // empty = there is no such command
    bool threadSafe = false;
};
CommandFacts FactsOfCommand(int id);
int NumberOfCommand(std::string_view name);

}  // namespace zrhost

#endif
