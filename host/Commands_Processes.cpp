// Commands by number: Processes, Process (Communications), Interruptions.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Objects.h"
#include "host/Process.h"
#include "host/Text.h"

namespace zrhost {
namespace {

constexpr int64_t kTicksPerSecond = 60;

int64_t MillisecondsOfTicks(double ticks) {  // within a year
    return int64_t(std::clamp(ticks, 0.0, 1.9e9) * 1000 / kTicksPerSecond);
}

std::vector<Value> ValuesFrom(const CommandCall& call, int first) {
    std::vector<Value> values;
    for (int i = first; i <= call.count; ++i) values.push_back(call.value(i));
    return values;
}

// Facts ------------------------------------------------------------------------------------------------------------

// 322 Current process
void CurrentProcess(CommandCall& call) { call.setLongint(call.process.number); }

// 1392 Current process name
void CurrentProcessName(CommandCall& call) { call.setText(call.process.name); }

// 372 Process number(name; [*]): 0 if there is none
void ProcessNumber(CommandCall& call) {
    call.takeStar();
    for (const ProcessFacts& facts : ListProcesses(call.host))
        if (EqualNames(facts.name, call.text(1))) return call.setLongint(facts.number);
    call.setLongint(0);
}

// 330 Process state(process): -100 if there is none
void ProcessStateOf(CommandCall& call) { call.setLongint(int32_t(FindProcess(call.host, call.integer(1)).state)); }

// 336 PROCESS PROPERTIES(process; name; state; time; [mode]; [uniqueID]; [origin]): time in ticks since its start; mode
// bit 0 visible, bit 1 preemptive
void ProcessProperties(CommandCall& call) {
    constexpr int kPreemptive = 2;
    const ProcessFacts facts = FindProcess(call.host, call.integer(1));
    const int64_t ticks = facts.milliseconds * kTicksPerSecond / 1000;
    call.assignText(2, facts.name);
    call.assignLongint(3, int32_t(facts.state));
    call.assignLongint(4, int32_t(std::min<int64_t>(ticks, INT32_MAX)));
    if (call.has(5)) call.assignLongint(5, facts.preemptive ? kPreemptive : 0);
    if (call.has(6)) call.assignLongint(6, facts.number);
    if (call.has(7)) call.assignLongint(7, 0);
}

// 335 Count tasks: the highest number of a process that is alive, so that a loop up to it meets all of them
void CountTasks(CommandCall& call) {
    const std::vector<ProcessFacts> all = ListProcesses(call.host);
    call.setLongint(all.empty() ? 0 : all.back().number);
}

// 343 Count user processes: all of this host are
void CountUserProcesses(CommandCall& call) { call.setLongint(int32_t(ListProcesses(call.host).size())); }

// 342 Count users
void CountUsers(CommandCall& call) { call.setLongint(1); }

// 327 Frontmost process([*]): no window: the main process
void FrontmostProcess(CommandCall& call) { call.setLongint(1); }

// 672 Process aborted: whether this process is asked to end
void ProcessAborted(CommandCall& call) { call.setBoolean(call.process.asked.load()); }

// 324 HIDE PROCESS, 325 SHOW PROCESS, 326 BRING TO FRONT: no window to show
void NoWindows(CommandCall&) {}

// Starting and holding ---------------------------------------------------------------------------------------------

// 317 New process(method; stack; [name]; [parameter]...; [*]): its number, 0 if it could not be started; * gives the
// number of a process of that name that runs already.
void NewProcess(CommandCall& call) {
    const bool once = call.takeStar();
    const std::u16string method(call.text(1));
    const std::u16string name(call.has(3) && !call.text(3).empty() ? call.text(3) : call.text(1));
    call.setLongint(0);
    if (method.empty()) return;
    if (once)
        for (const ProcessFacts& facts : ListProcesses(call.host))
            if (EqualNames(facts.name, name)) return call.setLongint(facts.number);
    Host* host = &call.host;
    call.setLongint(
        host->runProcess(name, /*preemptive*/ false, [host, method, arguments = ValuesFrom(call, 4)]() mutable {
            Value result;
            host->runMethod(method, arguments, &result);
        }));
}

// 323 DELAY PROCESS(process; ticks)
void DelayProcessCommand(CommandCall& call) {
    const int64_t milliseconds = MillisecondsOfTicks(call.number(2));
    if (call.integer(1) == call.process.number) Sleep(call.host, milliseconds);
    else DelayProcess(call.host, call.integer(1), milliseconds);
}

// 319 PAUSE PROCESS(process)
void PauseProcessCommand(CommandCall& call) { PauseProcess(call.host, call.integer(1)); }

// 320 RESUME PROCESS(process)
void ResumeProcessCommand(CommandCall& call) { ResumeProcess(call.host, call.integer(1)); }

// 311 IDLE
void Idle(CommandCall& call) { Yield(call.host); }

// 1634 ABORT PROCESS BY ID(process)
void AbortProcess(CommandCall& call) { AskToEnd(call.host, call.integer(1)); }

// Semaphores -------------------------------------------------------------------------------------------------------

// 143 Semaphore(name; [ticks]): False = it was free and is now set; True = another has it
void Semaphore(CommandCall& call) {
    call.setBoolean(SetSemaphore(call.host, call.text(1), MillisecondsOfTicks(call.number(2))));
}

// 144 CLEAR SEMAPHORE(name)
void ClearSemaphoreCommand(CommandCall& call) { ClearSemaphore(call.host, call.text(1)); }

// 652 Test semaphore(name)
void TestSemaphoreCommand(CommandCall& call) { call.setBoolean(TestSemaphore(call.host, call.text(1))); }

// Workers ----------------------------------------------------------------------------------------------------------

struct Worker {
    struct Task {
        std::u16string method;
        std::vector<Value> arguments;
    };
    std::atomic<int> process{0};
    bool killed = false;
    std::mutex mutex;
    std::condition_variable arrived;
    std::deque<Task> tasks;

    // The next task; nothing once the worker is killed or asked to end and has nothing left.
    std::optional<Task> take(Host& host) {
        Host::Blocking outside(host);
        std::unique_lock lock(mutex);
        while (tasks.empty() && !killed && !host.interrupted()) arrived.wait_for(lock, std::chrono::milliseconds(20));
        if (tasks.empty() || host.interrupted()) return std::nullopt;
        Task task = std::move(tasks.front());
        tasks.pop_front();
        return task;
    }
};

struct Workers {
    std::mutex mutex;
    std::map<std::u16string, std::shared_ptr<Worker>> byName;  // by folded name

    std::shared_ptr<Worker> find(const CommandCall& call, int i) {
        std::lock_guard lock(mutex);
        for (const auto& [name, worker] : byName)
            if (call.isText(i) ? name == FoldName(call.text(i)) : worker->process == call.integer(i)) return worker;
        return nullptr;
    }
    void forget(const Worker* worker) {
        std::lock_guard lock(mutex);
        std::erase_if(byName, [&](const auto& row) { return row.second.get() == worker; });
    }
};

std::shared_ptr<Worker> StartWorker(CommandCall& call, const std::u16string& name) {
    auto worker = std::make_shared<Worker>();
    Workers& workers = call.host.state<Workers>();
    {
        std::lock_guard lock(workers.mutex);
        const auto [row, isNew] = workers.byName.try_emplace(FoldName(name), worker);
        if (!isNew) return row->second;  // another process was faster
    }
    Host* host = &call.host;
    worker->process = host->runProcess(name, /*preemptive*/ false, [host, worker, &workers] {
        while (std::optional<Worker::Task> task = worker->take(*host)) {
            Value result;
            host->runMethod(task->method, task->arguments, &result);
        }
        workers.forget(worker.get());
    });
    return worker;
}

// 1389 CALL WORKER(process; method; [parameter]...): runs the method in the worker of that name or number, which is
// started if there is none of the name
void CallWorker(CommandCall& call) {
    std::shared_ptr<Worker> worker = call.host.state<Workers>().find(call, 1);
    if (!worker && call.isText(1) && !call.text(1).empty()) worker = StartWorker(call, std::u16string(call.text(1)));
    if (!worker || !call.isText(2)) return call.setError(ZR_ERR_PARAMETER);
    {
        std::lock_guard lock(worker->mutex);
        worker->tasks.push_back({std::u16string(call.text(2)), ValuesFrom(call, 3)});
    }
    worker->arrived.notify_one();
}

// 1390 KILL WORKER([process]): ends it when its tasks are done; without a parameter the current one
void KillWorker(CommandCall& call) {
    Workers& workers = call.host.state<Workers>();
    std::shared_ptr<Worker> worker;
    if (call.has(1)) worker = workers.find(call, 1);
    else {
        std::lock_guard lock(workers.mutex);
        for (const auto& row : workers.byName)
            if (row.second->process == call.process.number) worker = row.second;
    }
    if (!worker) return;
    workers.forget(worker.get());  // a later call starts a new one
    {
        std::lock_guard lock(worker->mutex);
        worker->killed = true;
    }
    worker->arrived.notify_one();
}

// Errors -----------------------------------------------------------------------------------------------------------

// 155 ON ERR CALL(method; [scope]): the method is kept; nothing calls it, since errors of this host go to OK.
void OnErrCall(CommandCall& call) { call.process.errorMethod = call.text(1); }

// 704 Method called on error([scope])
void MethodCalledOnError(CommandCall& call) { call.setText(call.process.errorMethod); }

struct Assertions {
    std::atomic<bool> enabled{true};
};

// 1129 ASSERT(condition; [message]): a failed one is an error, OK 0, and its message is shown.
void Assert(CommandCall& call) {
    if (!call.host.state<Assertions>().enabled || call.boolean(1)) return;
    if (call.host.options().alert) call.host.options().alert(u"Assert failed: " + std::u16string(call.text(2)));
    Finish(call, ZR_ERR_PARAMETER);
}

// 1132 Asserted(condition; [message]): the condition
void Asserted(CommandCall& call) { call.setBoolean(call.boolean(1)); }

// 1130 Get assert enabled
void GetAssertEnabled(CommandCall& call) { call.setBoolean(call.host.state<Assertions>().enabled); }

// 1131 SET ASSERT ENABLED(enabled; [*])
void SetAssertEnabled(CommandCall& call) { call.host.state<Assertions>().enabled = call.boolean(1); }

constexpr CommandRow kRows[] = {
    {143, Semaphore},
    {144, ClearSemaphoreCommand},
    {155, OnErrCall},
    {311, Idle},
    {317, NewProcess},
    {319, PauseProcessCommand},
    {320, ResumeProcessCommand},
    {322, CurrentProcess},
    {323, DelayProcessCommand},
    {324, NoWindows},
    {325, NoWindows},
    {326, NoWindows},
    {327, FrontmostProcess},
    {330, ProcessStateOf},
    {335, CountTasks},
    {336, ProcessProperties},
    {342, CountUsers},
    {343, CountUserProcesses},
    {372, ProcessNumber},
    {652, TestSemaphoreCommand},
    {672, ProcessAborted},
    {704, MethodCalledOnError},
    {1129, Assert},
    {1130, GetAssertEnabled},
    {1131, SetAssertEnabled},
    {1132, Asserted},
    {1389, CallWorker},
    {1390, KillWorker},
    {1392, CurrentProcessName},
    {1634, AbortProcess},
};

}  // namespace

std::span<const CommandRow> commandsProcesses() { return kRows; }

}  // namespace zrhost
