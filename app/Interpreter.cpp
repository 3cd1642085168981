#include "app/Interpreter.h"

#include <cstring>

#include "app/Json.h"
#include "app/Messages.h"
#include "app/Values.h"
#include "core/ZR_API_BLOBArray.h"
#include "host/Variables.h"
#include "language/ZR_API_TokenList.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"
#include "runtime/ZR_API_Guards.h"

namespace zrtool {

static constexpr long kUnreadableMethod = -53;  // the number of a method that is not found

// Texts and blocks of the library ----------------------------------------------------------------------------------

Text::Text(std::u16string_view units) {
    text_.Create();
    if (!units.empty())
        text_.AddUniBuffer(reinterpret_cast<const unsigned short*>(units.data()), static_cast<long>(units.size()));
}

std::string_view Block::bytes() const {
    size_t size = static_cast<size_t>(handle_.count) * static_cast<size_t>(handle_.elementSize);
    return handle_.data ? std::string_view(handle_.data, size) : std::string_view();
}

std::u16string_view UnitsOf(const ZR_Text& text) {
    if (!text.data || text.count < 1) return {};
    return {reinterpret_cast<const char16_t*>(text.data), static_cast<size_t>(text.count)};
}

std::string Utf8Of(const ZR_Text& text) {
    std::string out;
    AppendUtf8(out, UnitsOf(text));
    return out;
}

// Interpreter ------------------------------------------------------------------------------------------------------

Interpreter::Interpreter(zrhost::Options options) {
    options.interrupted = [this] { return interrupted && interrupted(); };
    host_ = zrhost::Host::Start(std::move(options));
    if (!host_) throw Refusal{"the host does not start: one is active already"};
    ZR_StartupRecord record = host_->startupRecord();
    FourDPackex(-1, &record, nullptr, nullptr);
    executer_.Create();
}

Interpreter::~Interpreter() {
    executer_.Dispose();
    FourDPackex(-2, nullptr, nullptr, nullptr);
}

std::string Interpreter::commandName(long number) {
    Text name;
    executer_.Get4DCommand(number, name.get());
    return Utf8Of(*name.get());
}

std::string Interpreter::plainCode(const SourceFile& source) {
    return WithoutSuffixes(source.bytes, [this](long number) { return commandName(number); });
}

// Methods ----------------------------------------------------------------------------------------------------------

// So that calls of the folder's methods are recognised as such.
static void EnterMethods(ZR_ExecutionContext* context, const MethodFolder& folder) {
    ZR_Handle* list = &context->virtualStructure;
    list->growStep = static_cast<long>(folder.files().size());
    for (const MethodFile& file : folder.files()) {
        Text name(Utf16Of(file.name));
        auto* record = reinterpret_cast<ZR_Executer_VirtualStructure*>(list->AppendGetPtr());
        if (record) record->CreateMethod(name.get(), name.get(), context->nextVirtualReference++, 0);
    }
    context->useVirtualStructure = true;
}

Program::Program(Interpreter& interpreter, MethodFolder folder)
    : interpreter_(interpreter), folder_(std::move(folder)), thread_(std::this_thread::get_id()) {
    context_ = interpreter_.executer().CreateExecutionContext();
    if (!context_) throw std::bad_alloc();
    EnterMethods(context_, folder_);
    context_->methodSource = Provide;
    context_->methodSourceData = this;
    interpreter_.interrupted = [this] { return timeIsUp(); };
    interpreter_.host().setMethodResolver(
        [this](std::u16string_view name) { return hostMethod(zrhost::ToUtf8(name)); });
}

Program::~Program() {
    interpreter_.host().setMethodResolver(nullptr);
    interpreter_.interrupted = nullptr;
    interpreter_.executer().DeleteExecutionContext(context_);
}

void Program::tokenise(const SourceFile& source, ZR_Handle* blob) {
    if (source.isBlob) return blob->AddCharBuffer(source.bytes.data(), static_cast<long>(source.bytes.size()));
    Text text(Utf16Of(interpreter_.plainCode(source)));
    interpreter_.executer().Tokenize(text.get(), blob, context_->GetVStructure(nullptr), nullptr, nullptr);
}

long Program::addMethod(std::string_view name, SourceFile source) {
    Text shownName(Utf16Of(name));
    Block blob;
    tokenise(source, blob.get());
    long reference = context_->nextMethodReference;
    context_->CreateMethod(shownName.get(), blob.get());
    ZR_ExecutionMethod* method = context_->GetMethodPtrByReference(reference);
    if (!method) throw std::bad_alloc();
    if (source.isBlob && method->tokens.count == 0) {
        context_->DeleteMethodByID(reference);
        throw Refusal{source.shownPath() + " is not a token blob"};
    }
    references_.emplace(Folded(name), reference);
    loaded_[reference] = {std::string(name), std::move(source)};
    return reference;
}

long Program::referenceOf(std::string_view name) {
    auto found = references_.find(Folded(name));
    if (found != references_.end()) return found->second;
    const MethodFile* file = folder_.find(name);
    return file ? addMethod(file->name, ReadSource(folder_.pathOf(*file))) : 0;
}

bool Program::Provide(ZR_ExecutionContext*, ZR_Text* name, void* program) {
    return static_cast<Program*>(program)->provide(Utf8Of(*name));
}

// Called from within the run: nothing may be thrown, the error goes to the context.
bool Program::provide(const std::string& name) {
    if (unreadable_.contains(Folded(name))) return false;
    std::string sentence;
    try {
        return referenceOf(name) != 0;
    } catch (const Refusal& refusal) { sentence = refusal.sentence; } catch (const std::bad_alloc&) {
        sentence = "not enough memory";
    }
    unreadable_.insert(Folded(name));
    Text words(u"The method could not be read: " + Utf16Of(sentence));
    context_->SetError(kUnreadableMethod, words.get());
    return false;
}

// Methods that the host is asked for by name, by EXECUTE METHOD and its like. They run in the same context.
zrhost::Method Program::hostMethod(const std::string& name) {
    if (std::this_thread::get_id() != thread_) return nullptr;
    bool loaded = references_.contains(Folded(name));
    if (!loaded && (!folder_.find(name) || !provide(name))) return nullptr;
    return [this, name](std::span<zrhost::Value> arguments) { return call(name, arguments); };
}

static void AppendTokenOf(ZR_Handle* list, const zrhost::Value& value) {
    PA_Variable record = PA_CreateVariable(eVK_Undefined);
    zrhost::WriteRecord(&record, value);
    auto* token = reinterpret_cast<ZR_Executer_Token*>(list->AppendGetPtr());
    if (token) token->Create(&record);
    PA_ClearVariable(&record);
}

static zrhost::Value ValueOf(ZR_Executer_Token* token) {
    PA_Variable record = token->ToPAVariable();
    zrhost::Value value = zrhost::ReadRecord(record);
    bool uncounted = record.fType == eVK_Object || record.fType == eVK_Collection;
    if (!uncounted) PA_ClearVariable(&record);
    return value;
}

zrhost::Value Program::call(const std::string& name, std::span<zrhost::Value> arguments) {
    Text calledName(Utf16Of(name));
    ZR_Handle parameters;
    zrExe_CreateTokens(&parameters);
    for (const zrhost::Value& argument : arguments) AppendTokenOf(&parameters, argument);
    ZR_Executer_Token answer;
    answer.Create(ZREXE_TOKEN_OTHER, nullptr);
    context_->ExecuteTokenizedBlock4DMethod(calledName.get(), &parameters, &answer);
    zrhost::Value value = ValueOf(&answer);
    answer.Dispose();
    zrExe_DisposeTokens(&parameters);
    return value;
}

// Commands that may run --------------------------------------------------------------------------------------------

static std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

// "41", "C41" or ":C41"; 0 = it is no number.
static long NumberOf(std::string_view word) {
    if (word.starts_with(':')) word.remove_prefix(1);
    if (word.starts_with('C')) word.remove_prefix(1);
    if (word.empty() || word.size() > 9 || word.find_first_not_of("0123456789") != std::string_view::npos) return 0;
    return std::stol(std::string(word));
}

[[noreturn]] static void RefuseCommandName(Interpreter& interpreter, std::string_view word) {
    std::vector<std::string> names;
    for (long row = 1; row <= interpreter.executer().commands.count; ++row) {
        char* command = interpreter.executer().commands.GetMemPtr(row);
        names.push_back(Utf8Of(reinterpret_cast<ZR_Executer_Command*>(command)->name));
    }
    std::vector<const char*> candidates;
    for (const std::string& name : names)
        if (!name.empty()) candidates.push_back(name.c_str());
    std::string near = Nearest(word, candidates.data(), candidates.size());
    throw Refusal{"there is no command " + Quoted(word) +
                  (near.empty() ? "; zr commands lists them" : " of the language, did you mean " + Quoted(near) + "?")};
}

static long CommandNumber(Interpreter& interpreter, std::string_view word) {
    long number = NumberOf(word);
    if (number && !interpreter.commandName(number).empty()) return number;
    Text name(Utf16Of(word));
    ZR_Executer_Command* command = number ? nullptr : interpreter.executer().Search4DCommandForTokenization(name.get());
    if (!command) RefuseCommandName(interpreter, word);
    return command->id;
}

std::vector<long> Program::numbersOf(const std::vector<std::string>& lists) {
    std::vector<long> numbers;
    for (std::string_view list : lists) {
        while (!list.empty()) {
            size_t comma = list.find(',');
            std::string_view word = Trimmed(list.substr(0, comma));
            list.remove_prefix(comma == std::string_view::npos ? list.size() : comma + 1);
            if (!word.empty()) numbers.push_back(CommandNumber(interpreter_, word));
        }
    }
    return numbers;
}

void Program::setAllowed(const std::vector<long>& numbers, ZR_EXE_SetAllowed mode) {
    PA_Variable ids = PA_CreateVariable(eVK_ArrayLongint);
    PA_ResizeArray(&ids, static_cast<long>(numbers.size()));
    for (size_t i = 0; i < numbers.size(); ++i)
        ZR_SetNumInArray(&ids, static_cast<long>(i) + 1, static_cast<double>(numbers[i]));
    context_->SetAllowedCommands(&ids, mode);
    PA_ClearVariable(&ids);
}

void Program::allowOnly(const std::vector<std::string>& lists) { setAllowed(numbersOf(lists), ZR_EXE_AllowOnly); }

void Program::deny(const std::vector<std::string>& lists) { setAllowed(numbersOf(lists), ZR_EXE_AllowRemove); }

// Running ----------------------------------------------------------------------------------------------------------

void Program::declare(long reference, std::string_view assignment) {
    ZR_Executer_Stack& frame = context_->rootStack;
    if (frame.methodReference != reference) {
        frame.Dispose();
        frame.Create(reference);
    }
    Declare(context_, assignment);
}

void Program::run(long reference, double seconds) {
    deadline_ = seconds > 0 ? ZR_MonotonicSeconds() + seconds : 0;
    context_->deadline = deadline_;
    ZR_ExecutionMethod* method = context_->GetMethodPtrByReference(reference);
    if (method) zrExe_RunMethod(context_, method, 0);
    deadline_ = context_->deadline = 0;
}

// A command that the clock ends leaves the error with the line that called it.
bool Program::timeIsUp() {
    if (deadline_ <= 0 || ZR_MonotonicSeconds() < deadline_) return false;
    if (std::this_thread::get_id() == thread_ && !context_->lastError) context_->Fail(kErrorTimeLimit);
    return true;
}

Program::Place Program::place(long reference, long line) const {
    auto found = loaded_.find(reference);
    if (found == loaded_.end()) return {"<unknown>", "", line, {}};
    const SourceFile& source = found->second.source;
    return {source.shownPath(), found->second.name, line, source.isBlob ? std::string_view() : source.line(line)};
}

std::vector<Program::Place> Program::errorPlaces() const {
    std::vector<Place> places;
    if (!context_->lastError) return places;
    for (long i = 1; i <= context_->errorCalls.count; ++i) {
        auto* call = reinterpret_cast<const ZR_ErrorCall*>(context_->errorCalls.GetMemPtr(i));
        places.push_back(place(call->methodReference, call->line));
    }
    if (places.empty()) places.push_back(place(context_->lastErrorMethod, context_->lastErrorLine));
    return places;
}

}  // namespace zrtool
