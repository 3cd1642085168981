#include "host/Process.h"

#include <algorithm>
#include <chrono>

#include "host/Host_Private.h"
#include "host/Text.h"

namespace zrhost {

int64_t Milliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// Turns ------------------------------------------------------------------------------------------------------------

void TurnLock::lock() {
    std::unique_lock guard(mutex_);
    uint64_t mine = tickets_++;
    waiting_.fetch_add(1, std::memory_order_relaxed);
    next_.wait(guard, [&] { return serving_ == mine; });
    waiting_.fetch_sub(1, std::memory_order_relaxed);
}

void TurnLock::unlock() {
    {
        std::lock_guard guard(mutex_);
        ++serving_;
    }
    next_.notify_all();
}

// The process of a thread ------------------------------------------------------------------------------------------

namespace {

// The hosts of this program so far; a thread that was served by an earlier one is a stranger to the next.
std::mutex gAliveMutex;
Host::Inside* gAlive = nullptr;  // guarded by gAliveMutex

struct CurrentProcess {
    ProcessRecord* record = nullptr;
    uint64_t generation = 0;
    bool foreign = false;
    ~CurrentProcess();
};
thread_local CurrentProcess tCurrent;

std::unique_ptr<ProcessRecord> NewRecord(std::u16string_view name, bool preemptive) {
    auto record = std::make_unique<ProcessRecord>();
    record->process = std::make_shared<Process>();
    record->process->name = name;
    record->process->preemptive = preemptive;
    record->process->startedAt = Milliseconds();
    record->process->setOK(false);
    record->process->setDocument(u"");
    return record;
}

ProcessRecord& Enlist(Host::Inside& inside, std::unique_ptr<ProcessRecord> record) {
    std::lock_guard guard(inside.mutex);
    record->process->number = ++inside.lastNumber;
    return *(inside.processes[record->process->number] = std::move(record));
}

void DropSemaphores(Host::Inside& inside, int number) {  // the mutex is held
    std::erase_if(inside.semaphores, [number](const auto& entry) { return entry.second == number; });
}

CurrentProcess::~CurrentProcess() {
    if (!foreign) return;
    std::lock_guard alive(gAliveMutex);
    if (!gAlive || gAlive->generation != generation) return;
    std::lock_guard guard(gAlive->mutex);
    DropSemaphores(*gAlive, record->process->number);
    gAlive->processes.erase(record->process->number);
    gAlive->changed.notify_all();
}

bool IsMain(const ProcessRecord& record) { return record.process->number == 1; }

void TakeTurn(Host::Inside& inside, ProcessRecord& record) {
    if (record.process->preemptive || record.holdsTurn) return;
    inside.turn.lock();
    record.holdsTurn = true;
}

void LeaveTurn(Host::Inside& inside, ProcessRecord& record) {
    if (!record.holdsTurn) return;
    record.holdsTurn = false;
    inside.turn.unlock();
}

// On the main process: runs what waits for it.
void RunMainCalls(Host::Inside& inside, ProcessRecord& record) {
    if (!inside.mainCallsWait.load(std::memory_order_acquire)) return;
    bool hadTurn = record.holdsTurn;
    for (;;) {
        MainCall* call = nullptr;
        {
            std::lock_guard guard(inside.mutex);
            if (inside.mainCalls.empty()) {
                inside.mainCallsWait = false;
                break;
            }
            call = inside.mainCalls.front();
            inside.mainCalls.pop_front();
        }
        TakeTurn(inside, record);
        try {
            (*call->function)();
        } catch (...) {  // the caller waits on another thread: it is let go all the same
        }
        std::lock_guard guard(inside.mutex);
        call->done = true;
        inside.changed.notify_all();
    }
    if (!hadTurn) LeaveTurn(inside, record);
}

// Waits, without a turn, until the condition holds, the process is asked to end, or the moment has come; 0 = no moment.
// The main process serves calls meanwhile. The condition is looked at under the mutex.
template <class Condition>
bool WaitUntil(Host& host, int64_t moment, ProcessState state, Condition condition) {
    Host::Inside& inside = host.inside();
    ProcessRecord& record = CurrentRecord(inside);
    Host::Blocking blocking(host);
    ProcessState before = record.process->state.exchange(state);
    bool held = false;
    for (;;) {
        if (IsMain(record)) RunMainCalls(inside, record);
        if (host.interrupted()) break;
        std::unique_lock guard(inside.mutex);
        held = condition();
        int64_t left = moment ? moment - Milliseconds() : INT64_MAX;
        if (held || left <= 0) break;
        if (IsMain(record) && !inside.mainCalls.empty()) continue;
        // The options' function is not told to us: it is asked again every few milliseconds.
        int64_t slice = inside.options.interrupted ? 10 : 1000;
        inside.changed.wait_for(guard, std::chrono::milliseconds(std::min(left, slice)));
    }
    record.process->state = before;
    return held;
}

// What another process has asked of this one: a pause or a delay.
void Attend(Host& host, ProcessRecord& record) {
    Host::Inside& inside = host.inside();
    int64_t moment = 0;
    bool pause = false;
    {
        std::lock_guard guard(inside.mutex);
        record.attention = false;
        moment = record.wakeAt;
        pause = record.pauseAsked;
    }
    if (pause) WaitUntil(host, 0, ProcessState::Paused, [&] { return !record.pauseAsked; });
    else if (moment) WaitUntil(host, moment, ProcessState::Delayed, [&] { return record.wakeAt == 0; });
    std::lock_guard guard(inside.mutex);
    record.wakeAt = 0;
}

// The record of a number, under the mutex; null = none that lives.
ProcessRecord* Find(Host::Inside& inside, int number) {
    auto found = inside.processes.find(number);
    return found == inside.processes.end() || found->second->ended ? nullptr : found->second.get();
}

ProcessFacts FactsOf(const ProcessRecord& record) {
    const Process& process = *record.process;
    return {process.number, process.name, process.state.load(), process.preemptive, Milliseconds() - process.startedAt};
}

}  // namespace

ProcessRecord& CurrentRecord(Host::Inside& inside) {
    if (tCurrent.record && tCurrent.generation == inside.generation) return *tCurrent.record;
    ProcessRecord& record = Enlist(inside, NewRecord(u"thread", /*preemptive*/ true));
    tCurrent.record = &record;
    tCurrent.generation = inside.generation;
    tCurrent.foreign = true;
    return record;
}

void StartMainProcess(Host::Inside& inside) {
    {
        std::lock_guard alive(gAliveMutex);
        gAlive = &inside;
    }
    ProcessRecord& record = Enlist(inside, NewRecord(u"Main process", inside.options.preemptive));
    tCurrent.record = &record;
    tCurrent.generation = inside.generation;
    tCurrent.foreign = false;
    TakeTurn(inside, record);
}

void EndProcesses(Host::Inside& inside) {
    {
        std::lock_guard guard(inside.mutex);
        inside.stopping = true;
        for (auto& [number, record] : inside.processes) record->process->asked = true;
        for (MainCall* call : inside.mainCalls) call->refused = true;
        inside.mainCalls.clear();
        inside.changed.notify_all();
    }
    if (tCurrent.record && tCurrent.generation == inside.generation) LeaveTurn(inside, *tCurrent.record);
    for (;;) {
        std::thread thread;
        {
            std::lock_guard guard(inside.mutex);
            for (auto& [number, record] : inside.processes)
                if (record->thread.joinable()) {
                    thread = std::move(record->thread);
                    break;
                }
        }
        if (!thread.joinable()) break;
        thread.join();
    }
    std::lock_guard alive(gAliveMutex);
    gAlive = nullptr;
    tCurrent.record = nullptr;
    tCurrent.foreign = false;
    std::lock_guard guard(inside.mutex);
    inside.processes.clear();
}

// The process ------------------------------------------------------------------------------------------------------

bool Process::ok() const { return variables.value(u"OK").number() != 0; }
void Process::setOK(bool ok) { variables.setLongint(u"OK", ok); }
std::u16string Process::document() const { return variables.value(u"Document").text(); }
void Process::setDocument(std::u16string_view path) { variables.setValue(u"Document", Value(path)); }

Process& Host::currentProcess() const { return *CurrentRecord(*inside_).process; }

bool Host::interrupted() const {
    if (inside_->stopping.load(std::memory_order_relaxed) || currentProcess().asked.load(std::memory_order_relaxed))
        return true;
    return inside_->options.interrupted && inside_->options.interrupted();
}

int Host::runProcess(std::u16string_view name, bool preemptive, std::function<void()> body) {
    Inside& inside = *inside_;
    std::vector<std::thread> ended;  // joined at the end, without the mutex
    {
        std::lock_guard guard(inside.mutex);
        if (inside.stopping) return 0;
        for (auto entry = inside.processes.begin(); entry != inside.processes.end();) {
            if (entry->second->ended && entry->second->thread.joinable()) {
                ended.push_back(std::move(entry->second->thread));
                entry = inside.processes.erase(entry);
            } else {
                ++entry;
            }
        }
    }
    for (std::thread& thread : ended) thread.join();

    ProcessRecord& record = Enlist(inside, NewRecord(name, preemptive));
    int number = record.process->number;
    std::lock_guard guard(inside.mutex);  // the thread waits for it before it touches the record
    record.thread = std::thread([&inside, &record, body = std::move(body)] {
        { std::lock_guard started(inside.mutex); }
        tCurrent.record = &record;
        tCurrent.generation = inside.generation;
        TakeTurn(inside, record);
        try {
            if (!record.process->asked) body();
        } catch (...) {  // a process ends alone: what its code throws ends here
        }
        LeaveTurn(inside, record);
        record.process->variables.clear();
        std::lock_guard ending(inside.mutex);
        tCurrent.record = nullptr;
        DropSemaphores(inside, record.process->number);
        record.process->state = ProcessState::Aborted;
        record.ended = true;
        inside.changed.notify_all();
    });
    return number;
}

bool Host::waitForProcess(int number) {
    Inside& inside = *inside_;
    {
        std::lock_guard guard(inside.mutex);
        auto found = inside.processes.find(number);
        if (found == inside.processes.end()) return false;
    }
    if (number == currentProcess().number) return false;
    bool gone =
        WaitUntil(*this, 0, ProcessState::WaitingForInternalFlag, [&] { return Find(inside, number) == nullptr; });
    std::thread thread;
    {
        std::lock_guard guard(inside.mutex);
        auto found = inside.processes.find(number);
        if (found != inside.processes.end() && found->second->ended && found->second->thread.joinable()) {
            thread = std::move(found->second->thread);
            inside.processes.erase(found);
        }
    }
    if (thread.joinable()) thread.join();
    return gone;
}

void Host::runInMainProcess(const std::function<void()>& function) {
    Inside& inside = *inside_;
    if (IsMain(CurrentRecord(inside))) return function();
    MainCall call{&function};
    {
        std::lock_guard guard(inside.mutex);
        if (inside.stopping) return;
        inside.mainCalls.push_back(&call);
        inside.mainCallsWait = true;
        inside.changed.notify_all();
    }
    // Not ended by an interruption: the call lies on this stack until the main process is through with it.
    Blocking blocking(*this);
    std::unique_lock guard(inside.mutex);
    inside.changed.wait(guard, [&] { return call.done || call.refused; });
}

Host::Blocking::Blocking(Host& host) : process_(&host.currentProcess()) {
    ProcessRecord& record = CurrentRecord(host.inside());
    if (record.blocking++ == 0) LeaveTurn(host.inside(), record);
}

Host::Blocking::~Blocking() {
    Host* host = Host::active();
    if (!host) return;
    ProcessRecord& record = CurrentRecord(host->inside());
    if (--record.blocking == 0) TakeTurn(host->inside(), record);
}

// Functions --------------------------------------------------------------------------------------------------------

std::vector<ProcessFacts> ListProcesses(Host& host) {
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    std::vector<ProcessFacts> list;
    for (const auto& [number, record] : inside.processes)
        if (!record->ended) list.push_back(FactsOf(*record));
    return list;
}

ProcessFacts FindProcess(Host& host, int number) {
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    ProcessRecord* record = Find(inside, number);
    return record ? FactsOf(*record) : ProcessFacts{};
}

bool IsPreemptive(const Host& host) { return host.currentProcess().preemptive; }

void Yield(Host& host) {
    Host::Inside& inside = host.inside();
    ProcessRecord& record = CurrentRecord(inside);
    if (IsMain(record)) RunMainCalls(inside, record);
    if (record.attention.load(std::memory_order_relaxed)) Attend(host, record);
    if (record.holdsTurn && inside.turn.wanted()) {
        LeaveTurn(inside, record);
        TakeTurn(inside, record);
    }
}

void Sleep(Host& host, int64_t milliseconds) {
    if (milliseconds <= 0) return Yield(host);
    Host::Inside& inside = host.inside();
    ProcessRecord& record = CurrentRecord(inside);
    constexpr int64_t kLongest = int64_t(1) << 40;
    int64_t moment = Milliseconds() + std::min(milliseconds, kLongest);
    {
        std::lock_guard guard(inside.mutex);
        record.wakeAt = moment;
    }
    WaitUntil(host, moment, ProcessState::Delayed, [&] { return record.wakeAt == 0; });
    std::lock_guard guard(inside.mutex);
    record.wakeAt = 0;
}

void PauseProcess(Host& host, int number) {
    Host::Inside& inside = host.inside();
    {
        std::lock_guard guard(inside.mutex);
        ProcessRecord* record = Find(inside, number);
        if (!record) return;
        record->pauseAsked = true;
        record->attention = true;
    }
    if (number == host.currentProcess().number) Yield(host);
}

void DelayProcess(Host& host, int number, int64_t milliseconds) {
    if (number == host.currentProcess().number) return Sleep(host, milliseconds);
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    ProcessRecord* record = Find(inside, number);
    if (!record || milliseconds <= 0) return;
    record->wakeAt = Milliseconds() + milliseconds;
    record->attention = true;
}

void ResumeProcess(Host& host, int number) {
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    ProcessRecord* record = Find(inside, number);
    if (!record) return;
    record->pauseAsked = false;
    record->wakeAt = 0;
    inside.changed.notify_all();
}

void AskToEnd(Host& host, int number) {
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    ProcessRecord* record = Find(inside, number);
    if (!record) return;
    record->process->asked = true;
    inside.changed.notify_all();
}

bool TestSemaphore(Host& host, std::u16string_view name) {
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    return inside.semaphores.contains(FoldName(name));
}

bool SetSemaphore(Host& host, std::u16string_view name, int64_t waitMilliseconds) {
    Host::Inside& inside = host.inside();
    std::u16string key = FoldName(name);
    int number = host.currentProcess().number;
    auto take = [&] { return inside.semaphores.emplace(key, number).second; };
    {
        std::lock_guard guard(inside.mutex);
        if (take()) return false;
        if (waitMilliseconds <= 0 || inside.semaphores[key] == number) return true;
    }
    return !WaitUntil(host, Milliseconds() + waitMilliseconds, ProcessState::WaitingForInternalFlag, take);
}

void ClearSemaphore(Host& host, std::u16string_view name) {
    Host::Inside& inside = host.inside();
    std::lock_guard guard(inside.mutex);
    inside.semaphores.erase(FoldName(name));
    inside.changed.notify_all();
}

}  // namespace zrhost
