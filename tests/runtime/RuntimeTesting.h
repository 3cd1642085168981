// What the tests of the runtime share: one embedded host, module and executer for the whole program; programs of text
// that are tokenised, run and described; token lists and values that end by themselves; and a recorder that stands
// before the host.
//
//     Outcome outcome = RunText("$a:=1+2*3");
//     EXPECT_EQ(outcome.error(), "");
//     EXPECT_EQ(outcome["$a"], "real 9");
#ifndef ZR_TESTS_RUNTIME_RUNTIMETESTING_H
#define ZR_TESTS_RUNTIME_RUNTIMETESTING_H

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "language/ZR_API_Executer.h"
#include "language/ZR_API_TokenBlob.h"
#include "language/ZR_API_TokenList.h"
#include "language/ZR_API_VirtualStructure.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Guards.h"

namespace rt {

// The machine: host, module, executer ------------------------------------------------------------------------------

struct Machine {
    std::unique_ptr<zrhost::Host> host;
    ZR_Executer executer;
    std::vector<std::string> output;  // lines of ALERT and MESSAGE since the last Run

    static Machine& Get() {
        static Machine machine;
        return machine;
    }
};

class MachineEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        Machine& machine = Machine::Get();
        zrhost::Options options;
        options.alert = [](std::u16string_view line) { Machine::Get().output.push_back(zrhost::ToUtf8(line)); };
        machine.host = zrhost::Host::Start(options);
        ASSERT_TRUE(machine.host);
        ZR_StartupRecord record = machine.host->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
        machine.executer.Create();
    }
    void TearDown() override {
        Machine& machine = Machine::Get();
        machine.executer.Dispose();
        FourDPackex(-2, nullptr, nullptr, nullptr);
        machine.host.reset();
    }
};
inline ::testing::Environment* const kMachineEnvironment = ::testing::AddGlobalTestEnvironment(new MachineEnvironment);

inline ZR_Executer* Executer() { return &Machine::Get().executer; }

// Texts ------------------------------------------------------------------------------------------------------------

class Text {
  public:
    Text() { text_.Create(); }
    Text(std::string_view utf8) : Text(zrhost::FromUtf8(utf8)) {}
    Text(const char* utf8) : Text(std::string_view(utf8)) {}
    Text(const std::string& utf8) : Text(std::string_view(utf8)) {}
    explicit Text(const std::u16string& units) {
        text_.Create();
        text_.AddUniBuffer(reinterpret_cast<const unsigned short*>(units.data()), static_cast<long>(units.size()));
    }
    ~Text() { text_.Dispose(); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    operator ZR_Text*() { return &text_; }
    ZR_Text* operator->() { return &text_; }

  private:
    ZR_Text text_;
};

inline std::string Narrow(const ZR_Text* text) {
    return zrhost::ToUtf8({reinterpret_cast<const char16_t*>(text->Units()), static_cast<size_t>(text->count)});
}
inline std::string Narrow(const PA_Unistring& text) {
    return zrhost::ToUtf8({reinterpret_cast<const char16_t*>(text.fString), static_cast<size_t>(text.fLength)});
}

inline std::string Number(double number) {
    char buffer[40];
    snprintf(buffer, sizeof buffer, "%.17g", number);
    double back = 0;
    for (int digits = 15; digits <= 17; digits++) {  // as few as read back the same
        snprintf(buffer, sizeof buffer, "%.*g", digits, number);
        sscanf(buffer, "%lf", &back);
        if (memcmp(&back, &number, sizeof back) == 0) break;
    }
    return buffer;
}
inline std::string Hex(const char* bytes, long n) {
    std::string out;
    char digits[3];
    for (long i = 0; i < n; i++) {
        snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(bytes[i]));
        out += digits;
    }
    return out;
}

// Values in words: "real 1.5", "text abc", "array longint [1|2]" -----------------------------------------------------

inline const char* KindName(int kind) {
    switch (kind) {
        case ZR_EXE_Real: return "real";
        case ZR_EXE_Date: return "date";
        case ZR_EXE_Undefined: return "undefined";
        case ZR_EXE_Boolean: return "boolean";
        case ZR_EXE_Integer: return "integer";
        case ZR_EXE_Longint: return "longint";
        case ZR_EXE_Picture: return "picture";
        case ZR_EXE_Time: return "time";
        case ZR_EXE_ArrayReal: return "array real";
        case ZR_EXE_ArrayInteger: return "array integer";
        case ZR_EXE_ArrayLongint: return "array longint";
        case ZR_EXE_ArrayDate: return "array date";
        case ZR_EXE_ArrayPicture: return "array picture";
        case ZR_EXE_ArrayPointer: return "array pointer";
        case ZR_EXE_ArrayBoolean: return "array boolean";
        case ZR_EXE_Pointer: return "pointer";
        case ZR_EXE_Blob: return "blob";
        case ZR_EXE_Text: return "text";
        case ZR_EXE_ArrayText: return "array text";
        case ZR_EXE_Object: return "object";
        case ZR_EXE_Collection: return "collection";
        case ZR_EXE_Null: return "null";
        default: return "unknown kind";
    }
}

inline std::string Json(void* reference, int kind) {
    PA_Variable value = PA_CreateVariable(kind);
    if (kind == eVK_Object) {
        PA_IncrementObjectRef(reference);
        PA_SetObjectVariable(&value, reference);
    } else {
        PA_IncrementCollectionRef(reference);
        PA_SetCollectionVariable(&value, reference);
    }
    PA_Unistring json = PA_JsonStringify(&value, /*pretty*/ false);
    std::string text = Narrow(json);
    PA_DisposeUnistring(&json);
    PA_ClearVariable(&value);
    return text;
}

inline std::string DateText(const ZR_Date& date) {
    return std::to_string(date.year) + "-" + std::to_string(date.month) + "-" + std::to_string(date.day);
}

inline std::string DescribeValue(ZR_Executer_Variable* variable) {  // without the kind
    switch (static_cast<int>(variable->kind)) {
        case ZR_EXE_Real: return Number(variable->value.real);
        case ZR_EXE_Integer:
        case ZR_EXE_Longint:
        case ZR_EXE_Time: return std::to_string(variable->value.integer);
        case ZR_EXE_Boolean: return variable->GetBoolean() ? "true" : "false";
        case ZR_EXE_Text: return Narrow(&variable->text);
        case ZR_EXE_Picture: return std::to_string(variable->picture.nativeData.count) + " bytes";
        case ZR_EXE_Blob: return Hex(variable->blob.data, variable->blob.count);
        case ZR_EXE_Pointer: return Narrow(&variable->text) + " " + std::to_string(variable->value.integer);
        case ZR_EXE_Object: return variable->objectRef ? Json(variable->objectRef, eVK_Object) : "none";
        case ZR_EXE_Collection: return variable->collectionRef ? Json(variable->collectionRef, eVK_Collection) : "none";
        case ZR_EXE_Date: {
            ZR_Date date;
            variable->GetDate(&date);
            return DateText(date);
        }
        default: return "";
    }
}

inline std::string Describe(ZR_Executer_Variable* variable) {
    if (!variable) return "missing";
    std::string text = KindName(variable->kind);
    if (variable->IsArray()) {
        text += " [";
        for (long i = 1; i <= variable->elements.count; i++)
            text += (i > 1 ? "|" : "") + DescribeValue(variable->GetVariablePtrFromArrayByIndex(i));
        return text + "]";
    }
    std::string value = DescribeValue(variable);
    return value.empty() ? text : text + " " + value;
}

inline std::string Describe(ZR_Executer_Token* token) {
    switch (static_cast<int>(token->kind)) {
        case ZREXE_TOKEN_NUMBER: return "number " + Number(token->value.real);
        case ZREXE_TOKEN_LONGINT: return "longint " + std::to_string(token->value.integer);
        case ZREXE_TOKEN_STRING: return "text " + Narrow(token->GetText());
        case ZREXE_TOKEN_TIME: return "time " + std::to_string(token->value.integer);
        case ZREXE_TOKEN_BOOLEAN: return token->GetBoolean() ? "boolean true" : "boolean false";
        case ZREXE_TOKEN_TABLE: return "table " + std::to_string(token->value.integer);
        case ZREXE_TOKEN_FIELD:
            return "field " + std::to_string(token->GetTable()) + "," + std::to_string(token->GetField());
        case ZREXE_TOKEN_POINTER:
            return "pointer " + Narrow(token->GetText()) + " " + std::to_string(token->value.integer);
        case ZREXE_TOKEN_BLOB: return "blob " + Hex(token->GetBlob()->data, token->GetBlob()->count);
        case ZREXE_TOKEN_PICTURE: return "picture " + std::to_string(token->GetPictureSize()) + " bytes";
        case ZREXE_TOKEN_OBJECT: return "object " + (token->objectRef ? Json(token->objectRef, eVK_Object) : "none");
        case ZREXE_TOKEN_COLLECTION:
            return "collection " + (token->collectionRef ? Json(token->collectionRef, eVK_Collection) : "none");
        case ZREXE_TOKEN_NULL: return "null";
        case ZREXE_TOKEN_VARIABLE:
        case ZREXE_TOKEN_LOCAL:
        case ZREXE_TOKEN_INTERPROCESS: return "variable " + Narrow(token->GetVariableName());
        case ZREXE_TOKEN_OTHER: return "nothing";
        case ZREXE_TOKEN_DATE: {
            ZR_Date date;
            token->GetDate(&date);
            return "date " + DateText(date);
        }
        default: return "kind " + std::to_string(token->kind);
    }
}

inline std::string Describe(const PA_Variable& variable) {  // a host value
    switch (variable.fType) {
        case eVK_Real: {
            double real;
            memcpy(&real, &variable.uValue.fReal, sizeof real);
            return "real " + Number(real);
        }
        case eVK_Longint: return "longint " + std::to_string(PA_GetLongintVariable(&variable));
        case eVK_Integer: return "integer " + std::to_string(PA_GetLongintVariable(&variable));
        case eVK_Boolean: return PA_GetBooleanVariable(&variable) ? "boolean true" : "boolean false";
        case eVK_Time: return "time " + std::to_string(PA_GetTimeVariable(&variable));
        case eVK_Date: {
            ZR_Date date;
            PA_GetDateVariable(&variable, &date.day, &date.month, &date.year);
            return "date " + DateText(date);
        }
        case eVK_Text: return "text " + Narrow(variable.uValue.fText);
        case eVK_Operator:
            if (variable.fFiller == 1) return "operator " + std::to_string(variable.uValue.fOperator);
            return "old text";
        case eVK_Undefined:
            if (variable.fFiller == 1)
                return "reference " + std::to_string(variable.uValue.fTableField.fTable) + "," +
                       std::to_string(variable.uValue.fTableField.fField);
            return "undefined";
        case eVK_Pointer: {
            PA_Handle handle = variable.uValue.fPointer;
            if (!handle) return "pointer nil";
            PointerBlock block;
            memcpy(&block, *handle, sizeof block);
            return "pointer word1 " + std::to_string(block.fField) + " word2 " + std::to_string(block.fTable);
        }
        case eVK_Blob: {
            const PA_ArrayValue& blob = variable.uValue.fArray;
            PA_Handle data = blob.fData;
            return "blob " + (data ? Hex(*data, blob.fSize) : "");
        }
        case eVK_Null: return "null";
        default:
            if (PA_IsArrayVariable(&variable))
                return std::string(KindName(UnifyVarKind(variable.fType))) + " of " +
                       std::to_string(PA_GetArrayNbElements(&variable));
            return KindName(UnifyVarKind(variable.fType));
    }
}

// A host value that ends by itself.
class HostValue {
  public:
    explicit HostValue(int kind) : variable_(PA_CreateVariable(kind)) {}
    explicit HostValue(PA_Variable taken) : variable_(taken) {}
    ~HostValue() { PA_ClearVariable(&variable_); }
    HostValue(const HostValue&) = delete;
    HostValue& operator=(const HostValue&) = delete;
    operator PA_Variable*() { return &variable_; }
    PA_Variable* operator->() { return &variable_; }
    PA_Variable& operator*() { return variable_; }

  private:
    PA_Variable variable_;
};

inline std::u16string HostName(std::string_view name) { return zrhost::FromUtf8(name); }
inline const PA_Unichar* Units(const std::u16string& text) { return reinterpret_cast<const PA_Unichar*>(text.c_str()); }

// Tokens -----------------------------------------------------------------------------------------------------------

class Value {  // one token
  public:
    Value() {
        token_.Create(ZREXE_TOKEN_OTHER, nullptr);
        token_.value.integer = 0;
    }
    explicit Value(PA_Variable* host) { token_.Create(host); }
    ~Value() { token_.Dispose(); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    operator ZR_Executer_Token*() { return &token_; }
    ZR_Executer_Token* operator->() { return &token_; }
    std::string text() { return Describe(&token_); }

  private:
    ZR_Executer_Token token_;
};

class Tokens {
  public:
    Tokens() { zrExe_CreateTokens(&list_); }
    ~Tokens() { zrExe_DisposeTokens(&list_); }
    Tokens(const Tokens&) = delete;
    Tokens& operator=(const Tokens&) = delete;
    operator ZR_Handle*() { return &list_; }
    ZR_Handle* operator->() { return &list_; }
    ZR_Executer_Token* at(long position) { return reinterpret_cast<ZR_Executer_Token*>(list_.GetMemPtr(position)); }
    long count() const { return list_.count; }

    Tokens& Kind(int kind, long value = 0) {
        zrExe_AddToken(&list_, static_cast<ZREXE_TOKEN>(kind), value);
        return *this;
    }
    Tokens& Number(double number) {
        zrExe_AddToken(&list_, ZREXE_TOKEN_NUMBER, number);
        return *this;
    }
    Tokens& Longint(long number) { return Kind(ZREXE_TOKEN_LONGINT, number); }
    Tokens& Named(int kind, const char* text, long value = 0) {
        rt::Text copy(text);
        zrExe_AddToken(&list_, static_cast<ZREXE_TOKEN>(kind), copy, value);
        return *this;
    }
    Tokens& String(const char* text) { return Named(ZREXE_TOKEN_STRING, text); }
    Tokens& Local(const char* name) { return Named(ZREXE_TOKEN_LOCAL, name); }
    Tokens& Process(const char* name) { return Named(ZREXE_TOKEN_VARIABLE, name); }
    Tokens& Interprocess(const char* name) { return Named(ZREXE_TOKEN_INTERPROCESS, name); }
    Tokens& Date(short day, short month, short year) {
        ZR_Date date = {day, month, year};
        zrExe_AddToken(&list_, ZREXE_TOKEN_DATE, &date);
        return *this;
    }
    Tokens& Time(long seconds) { return Kind(ZREXE_TOKEN_TIME, seconds); }
    Tokens& Boolean(bool flag) { return Kind(ZREXE_TOKEN_BOOLEAN, flag ? 1 : 0); }
    Tokens& Formula(char unit) {
        zrExe_AddToken(&list_, ZREXE_TOKEN_FORMULA, static_cast<unsigned short>(unit));
        return *this;
    }
    Tokens& Blob(std::string_view bytes) {
        ZR_Executer_Token* token = zrExe_AddToken(&list_, ZREXE_TOKEN_BLOB);
        token->blob.Dispose();
        token->blob.Create(1, 0);
        token->blob.AddCharBuffer(bytes.data(), static_cast<long>(bytes.size()));
        return *this;
    }
    Tokens& Picture(std::string_view bytes) {
        ZR_Executer_Token* token = zrExe_AddToken(&list_, ZREXE_TOKEN_PICTURE);
        token->picture.nativeData.Dispose();
        token->picture.nativeData.Create(1, 0);
        token->picture.nativeData.AddCharBuffer(bytes.data(), static_cast<long>(bytes.size()));
        return *this;
    }
    // The tokens of one line of text, blanks left out.
    Tokens& Source(const char* line) {
        rt::Text text(line);
        ZR_Handle all;
        zrExe_CreateTokens(&all);
        Executer()->TokenizeToTokens(text, &all, nullptr, nullptr, nullptr);
        for (long i = 1; i <= all.count; i++) {
            auto* token = reinterpret_cast<ZR_Executer_Token*>(all.GetMemPtr(i));
            if (token->kind == ZREXE_TOKEN_OTHER || token->kind == ZREXE_TOKEN_LINE) continue;
            reinterpret_cast<ZR_Executer_Token*>(list_.AppendGetPtr())->Create(token, /*shallow*/ false);
        }
        zrExe_DisposeTokens(&all);
        return *this;
    }

  private:
    ZR_Handle list_;
};

// Programs ---------------------------------------------------------------------------------------------------------

struct Outcome {
    long number = 0, line = 0, lastLine = 0;
    std::string text, method;
    std::vector<std::string> output;
    std::map<std::string, std::string> variables;  // "$a", "a", "<>a"

    std::string error() const {  // "" = none; "-2@3 Division by zero"
        if (number == 0 && text.empty()) return "";
        return std::to_string(number) + "@" + std::to_string(line) + " " + text;
    }
    std::string operator[](const std::string& name) const {
        auto found = variables.find(name);
        return found == variables.end() ? "missing" : found->second;
    }
    std::string joined() const {  // the output
        std::string all;
        for (const std::string& piece : output) all += (all.empty() ? "" : "|") + piece;
        return all;
    }
};

inline void CollectVariables(ZR_Handle* list, const char* prefix, std::map<std::string, std::string>* out) {
    for (long i = 1; i <= list->count; i++) {
        auto* variable = reinterpret_cast<ZR_Executer_Variable*>(list->GetMemPtr(i));
        std::string name = prefix + Narrow(&variable->name);
        while (out->count(name)) name += "'";
        (*out)[name] = Describe(variable);
    }
}

class Program {  // a context with methods
  public:
    struct Source {
        const char* name;
        std::string text;
    };
    Program() : context_(Executer()->CreateExecutionContext()) { context_->useVirtualStructure = true; }
    Program(std::initializer_list<Source> methods) : Program() {
        for (const Source& method : methods) Declare(method.name);
        for (const Source& method : methods) Add(method.name, method.text);
    }
    ~Program() { Executer()->DeleteExecutionContext(context_); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    ZR_ExecutionContext* operator->() { return context_; }
    operator ZR_ExecutionContext*() { return context_; }

    void Declare(const char* name) {  // known to the tokeniser as a method
        Text text(name);
        char* place = context_->virtualStructure.AppendGetPtr();
        reinterpret_cast<ZR_Executer_VirtualStructure*>(place)->CreateMethod(text, text,
                                                                             context_->nextVirtualReference++, 0);
        ZR_EXE_VStructureChanged();
    }
    long Add(const char* name, const std::string& source) {  // its reference
        Text text(source), methodName(name);
        ZR_Handle blob;
        blob.Create(1, 0);
        Executer()->Tokenize(text, &blob, context_->GetVStructure(nullptr), nullptr, nullptr);
        context_->CreateMethod(methodName, &blob);
        blob.Dispose();
        return context_->nextMethodReference - 1;
    }
    Outcome Start(long reference, long startLine = 0) {
        Machine::Get().output.clear();
        zrExe_RunMethod(context_, context_->GetMethodPtrByReference(reference), startLine);
        return Collect();
    }
    Outcome Run(const std::string& source) { return Start(Add("", source)); }
    Outcome Collect() {
        Outcome outcome;
        outcome.number = context_->lastError;
        outcome.line = context_->lastError ? context_->lastErrorLine : 0;
        outcome.lastLine = context_->rootStack.currentLine;
        outcome.text = Narrow(&context_->lastErrorText);
        if (ZR_ExecutionMethod* method = context_->GetMethodPtrByReference(context_->lastErrorMethod))
            outcome.method = Narrow(&method->name);
        outcome.output = Machine::Get().output;
        CollectVariables(&context_->rootStack.localVariables, "$", &outcome.variables);
        CollectVariables(&context_->processVariables, "", &outcome.variables);
        CollectVariables(&context_->interprocessVariables, "<>", &outcome.variables);
        return outcome;
    }
    // A variable of the root frame or the context, by its name with prefix; null = none.
    ZR_Executer_Variable* Find(const char* name) {
        ZR_Handle* list = &context_->processVariables;
        if (*name == '$') list = &context_->rootStack.localVariables, name += 1;
        else if (*name == '<') list = &context_->interprocessVariables, name += 2;
        Text text(name);
        return zrExe_FindVariableByName(list, text);
    }

  private:
    ZR_ExecutionContext* context_;
};

inline Outcome RunText(const std::string& source) {
    Program program;
    return program.Run(source);
}

// One source, and the error it ends with ("" = none) or the value of $r.
inline std::string RunForError(const std::string& source) { return RunText(source).error(); }
inline std::string RunFor(const std::string& source, const char* name = "$r") {
    Outcome outcome = RunText(source);
    return outcome.number ? outcome.error() : outcome[name];
}

// A recorder before the host ---------------------------------------------------------------------------------------

struct HostCall {
    long command = 0;                     // 0 = a method, or a member function
    std::string name;                     // of a method or member function
    std::vector<std::string> parameters;  // as they came in
    std::string text() const {
        std::string all = command ? std::to_string(command) : name;
        all += "(";
        for (size_t i = 0; i < parameters.size(); i++) all += (i ? "; " : "") + parameters[i];
        return all + ")";
    }
};

class Recorder {
  public:
    // Called for every command, method and member function; true = answered, the host does not see it.
    std::function<bool(const HostCall& call, PA_Variable** parameters, PA_Variable* result)> answer;
    // Called first, for every selector; true = answered.
    std::function<bool(int selector, EngineBlock* block)> intercept;
    std::vector<HostCall> calls;  // commands, methods and member functions, but those that the runtime asks for itself
    std::map<int, int> selectors;
    bool passOn = true;  // what is not answered goes to the host

    Recorder() : saved_(gCall4D) {
        current_ = this;
        gCall4D = &Recorder::Serve;
    }
    ~Recorder() {
        gCall4D = saved_;
        current_ = nullptr;
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    std::string last(const std::string& name) const {  // the last call of that command, method or ".member"
        for (auto call = calls.rbegin(); call != calls.rend(); ++call)
            if ((call->command ? std::to_string(call->command) : call->name) == name) return call->text();
        return "not called";
    }
    std::string text() const {
        std::string all;
        for (const HostCall& call : calls) all += (all.empty() ? "" : " ") + call.text();
        return all;
    }

  private:
    static bool IsAskedByTheRuntime(long command) {  // name, validity of tables and fields, process facts, formats
        return command == 538 || command == 999 || command == 1000 || command == 336 || command == 994;
    }
    static void Serve(int selector, EngineBlock* block) {
        Recorder* self = current_;
        self->selectors[selector]++;
        if (self->intercept && self->intercept(selector, block)) return;
        bool taken = false;
        HostCall call;
        PA_Variable** table = nullptr;
        PA_Variable* result = nullptr;
        long count = 0, first = 0;
        if (selector == ZR_SEL_ExecuteCommand && !IsAskedByTheRuntime(block->fParam3)) {
            call.command = block->fParam3;
            table = reinterpret_cast<PA_Variable**>(block->fParam1);
            result = reinterpret_cast<PA_Variable*>(block->fParam2);
            count = block->fParam4;
            taken = true;
        } else if (selector == ZR_SEL_ExecuteMethod) {
            call.name = zrhost::ToUtf8(
                {reinterpret_cast<const char16_t*>(block->fParam1), static_cast<size_t>(block->fLength1)});
            table = reinterpret_cast<PA_Variable**>(block->fParam2);
            result = reinterpret_cast<PA_Variable*>(block->fParam4);
            count = block->fParam3;
            taken = true;
        } else if (selector == ZR_SEL_ExecuteMember) {
            table = reinterpret_cast<PA_Variable**>(block->fParam1);
            result = reinterpret_cast<PA_Variable*>(block->fParam2);
            count = block->fParam4;
            first = 2;
            call.name = "." + Narrow(table[1]->uValue.fText);
            taken = true;
        }
        if (taken) {
            for (long i = first; i < count; i++) call.parameters.push_back(Describe(*table[i]));
            self->calls.push_back(call);
            if (self->answer && self->answer(call, table + first, result)) {
                block->fError = 0;
                return;
            }
            if (!self->passOn) {
                block->fError = 0;
                return;
            }
        }
        self->saved_(selector, block);
    }
    static inline Recorder* current_ = nullptr;
    ZR_Call4D saved_;
};

inline void Answer(PA_Variable* result, double real) {
    *result = PA_CreateVariable(eVK_Real);
    PA_SetRealVariable(result, real);
}
inline void Answer(PA_Variable* result, const char* text) {
    *result = PA_CreateVariable(eVK_Text);
    std::u16string units = HostName(text);
    PA_SetStringVariable(result, PA_CreateUnistring(Units(units)));
}

}  // namespace rt

#endif
