#include "host/Host.h"

#include <unistd.h>

#include "host/CommandCall.h"
#include "host/Host_Private.h"
#include "host/Text.h"
#include "host/Unicode.h"

namespace zrhost {

namespace {

std::atomic<Host*> gActive{nullptr};
std::mutex gStarting;
uint64_t gGenerations = 0;  // guarded by gStarting

std::string ProgramPath() {
    char path[4096];
    ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? std::string(path, size_t(length)) : std::string();
}

}  // namespace

Host* Host::active() { return gActive.load(std::memory_order_acquire); }

Host::Host() : inside_(std::make_unique<Inside>()) { inside_->host = this; }

std::unique_ptr<Host> Host::Start(Options options) {
    std::lock_guard guard(gStarting);
    if (gActive.load()) return nullptr;
    std::unique_ptr<Host> host(new Host);
    Inside& inside = *host->inside_;
    inside.generation = ++gGenerations;
    if (options.applicationPath.empty()) options.applicationPath = ProgramPath();
    inside.locale = FindLocale(options.locale);
    ConfigureUnicode(options.unicodeLibrary, options.locale);
    inside.options = std::move(options);
    StartMainProcess(inside);
    gActive.store(host.get(), std::memory_order_release);
    return host;
}

Host::~Host() {
    if (gActive.load() != this) return;
    EndProcesses(*inside_);
    {
        std::lock_guard guard(inside_->stateMutex);
        inside_->states.clear();  // while the host still answers
    }
    std::lock_guard guard(gStarting);
    gActive.store(nullptr, std::memory_order_release);
}

ZR_StartupRecord Host::startupRecord() const {
    ZR_StartupRecord record = {};
    record.fHostVersion = inside_->options.version;
    record.fCall4D = &Host::Call4D;
    return record;
}

const Options& Host::options() const { return inside_->options; }

const Locale& CurrentLocale() {
    static const Locale standard = FindLocale("en-US");
    Host* host = Host::active();
    return host ? host->inside().locale : standard;
}

// Variables --------------------------------------------------------------------------------------------------------

Value Host::variable(std::u16string_view name) const { return currentProcess().variables.value(name); }
void Host::setVariable(std::u16string_view name, const Value& value) {
    currentProcess().variables.setValue(name, value);
}
Value Host::interprocessVariable(std::u16string_view name) const { return inside_->interprocess.value(name); }
void Host::setInterprocessVariable(std::u16string_view name, const Value& value) {
    inside_->interprocess.setValue(name, value);
}
bool Host::ok() const { return currentProcess().ok(); }
void Host::setOK(bool ok) { currentProcess().setOK(ok); }
std::u16string Host::document() const { return currentProcess().document(); }
void Host::setDocument(std::u16string_view path) { currentProcess().setDocument(path); }

// Methods ----------------------------------------------------------------------------------------------------------

int Host::registerMethod(std::u16string_view name, Method method) {
    std::lock_guard guard(inside_->methodsMutex);
    auto [entry, isNew] = inside_->methodNumbers.try_emplace(FoldName(name), int(inside_->methods.size()) + 1);
    if (isNew) inside_->methods.emplace_back();
    inside_->methods[size_t(entry->second) - 1] = std::move(method);
    return entry->second;
}

void Host::unregisterMethod(std::u16string_view name) {
    std::lock_guard guard(inside_->methodsMutex);
    auto found = inside_->methodNumbers.find(FoldName(name));
    if (found != inside_->methodNumbers.end()) inside_->methods[size_t(found->second) - 1] = nullptr;
}

int Host::methodNumber(std::u16string_view name) const {
    std::function<zrhost::Method(std::u16string_view)> resolver;
    {
        std::lock_guard guard(inside_->methodsMutex);
        auto found = inside_->methodNumbers.find(FoldName(name));
        if (found != inside_->methodNumbers.end() && inside_->methods[size_t(found->second) - 1]) return found->second;
        resolver = inside_->methodResolver;
    }
    zrhost::Method method = resolver ? resolver(name) : nullptr;
    return method ? const_cast<Host*>(this)->registerMethod(name, std::move(method)) : 0;
}

void Host::setMethodResolver(std::function<Method(std::u16string_view)> resolver) {
    std::lock_guard guard(inside_->methodsMutex);
    inside_->methodResolver = std::move(resolver);
}

bool Host::runMethod(std::u16string_view name, std::span<Value> arguments, Value* result) {
    return RunRegistered(*this, methodNumber(name), arguments, result) == ZR_ERR_NONE;
}

// Commands ---------------------------------------------------------------------------------------------------------

CommandInfo Host::command(int id) const {
    CommandFacts facts = FactsOfCommand(id);
    if (facts.english.empty()) return {};
    return {id, inside_->options.language == "fr" ? facts.french : facts.english, facts.threadSafe,
            FindCommand(id) != nullptr};
}

int Host::commandNumber(std::string_view name) const { return NumberOfCommand(name); }

void* Host::stateSlot(const void* key, std::shared_ptr<void> (*make)()) {
    std::lock_guard guard(inside_->stateMutex);
    std::shared_ptr<void>& slot = inside_->states[key];
    if (!slot) slot = make();
    return slot.get();
}

}  // namespace zrhost
