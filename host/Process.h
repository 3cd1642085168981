// A process of the language: a thread with variables, an OK and a Document of its own.
//
// Cooperative processes share one big lock: the one that holds it runs, and gives it up in Yield and inside
// Host::Blocking. Preemptive processes run freely. A process is touched by its own thread alone, but for what is
// marked atomic.
#ifndef ZRHOST_PROCESS_H
#define ZRHOST_PROCESS_H

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <unordered_map>

#include "host/Host.h"
#include "host/Variables.h"

namespace zrhost {

enum class ProcessState : int {  // as command 330 numbers them
    DoesNotExist = -100,
    Aborted = -1,
    Executing = 0,
    Delayed = 1,
    WaitingForUserEvent = 2,
    WaitingForInputOutput = 3,
    WaitingForInternalFlag = 4,
    Paused = 5
};

class Process {
  public:
    int number = 0;  // from 1; 1 = the main process
    std::u16string name;
    bool preemptive = false;
    int64_t startedAt = 0;  // milliseconds of the steady clock
    std::atomic<ProcessState> state{ProcessState::Executing};
    std::atomic<bool> asked{false};  // asked to end: interrupted() answers true

    VariableTable variables;  // process variables, OK and Document among them
    bool ok() const;
    void setOK(bool ok);
    std::u16string document() const;
    void setDocument(std::u16string_view path);

    std::u16string errorMethod;  // ON ERR CALL

    // State of commands for the life of the process (error stacks, named semaphores held): one object a type.
    template <class T>
    T& of() {
        static const char key = 0;
        std::shared_ptr<void>& slot = slots_[&key];
        if (!slot) slot = std::make_shared<T>();
        return *static_cast<T*>(slot.get());
    }

  private:
    std::unordered_map<const void*, std::shared_ptr<void>> slots_;
};

struct ProcessFacts {
    int number = 0;
    std::u16string name;
    ProcessState state = ProcessState::DoesNotExist;
    bool preemptive = false;
    int64_t milliseconds = 0;  // since its start
};

// The processes of the active host, in the order of their numbers. A copy.
std::vector<ProcessFacts> ListProcesses(Host& host);
ProcessFacts FindProcess(Host& host, int number);  // DoesNotExist if there is none

bool IsPreemptive(const Host& host);           // of the calling process
void Yield(Host& host);                        // lets other cooperative processes and waiting main functions run
void Sleep(Host& host, int64_t milliseconds);  // yields meanwhile; ends early when interrupted or resumed
void PauseProcess(Host& host, int number);     // takes effect at that process's next yield
void DelayProcess(Host& host, int number, int64_t milliseconds);
void ResumeProcess(Host& host, int number);  // ends a delay or a pause
void AskToEnd(Host& host, int number);

// Semaphores by name: named "$..." ones are the same here. True = it was set already by another process (or by this).
bool TestSemaphore(Host& host, std::u16string_view name);                           // set by anyone?
bool SetSemaphore(Host& host, std::u16string_view name, int64_t waitMilliseconds);  // true = not got
void ClearSemaphore(Host& host, std::u16string_view name);

}  // namespace zrhost

#endif
