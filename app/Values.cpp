#include "app/Values.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>

#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "plugin/ZR_API_Bridge.h"

namespace zrtool {

// Scopes -----------------------------------------------------------------------------------------------------------

static constexpr struct {
    const char* prefix;
    int scope;
} kScopes[] = {{"$", ZR_SCOPE_LOCAL}, {"<>", ZR_SCOPE_INTERPROCESS}, {"", ZR_SCOPE_PROCESS}};

static ZR_Handle* ListOf(ZR_ExecutionContext* context, int scope) {
    switch (scope) {
        case ZR_SCOPE_LOCAL: return &context->rootStack.localVariables;
        case ZR_SCOPE_INTERPROCESS: return &context->interprocessVariables;
        default: return &context->processVariables;
    }
}

// From the command line --------------------------------------------------------------------------------------------

static std::optional<double> ReadNumber(std::string_view value) {
    if (value.starts_with('+')) value.remove_prefix(1);
    if (value.find_first_not_of("0123456789.-+eE") != std::string_view::npos) return std::nullopt;
    double number = 0;
    auto [end, problem] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (problem != std::errc() || end != value.data() + value.size()) return std::nullopt;
    return number;
}

static int DaysOfMonth(int month, int year) {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[month - 1];
}

static std::optional<ZR_Date> ReadDate(std::string_view value) {
    if (value.size() != 10 || value[4] != '-' || value[7] != '-') return std::nullopt;
    auto number = [&](size_t at, size_t count) {
        int result = 0;
        for (char c : value.substr(at, count))
            result = c >= '0' && c <= '9' && result >= 0 ? result * 10 + c - '0' : -1;
        return result;
    };
    int year = number(0, 4), month = number(5, 2), day = number(8, 2);
    if (year < 0 || month < 1 || month > 12 || day < 1 || day > DaysOfMonth(month, year)) return std::nullopt;
    return ZR_Date{static_cast<short>(day), static_cast<short>(month), static_cast<short>(year)};
}

static bool IsName(std::string_view name) {
    if (name.empty() || name.back() == ' ') return false;
    for (char c : name) {
        bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ' ';
        if (!plain && static_cast<unsigned char>(c) < 0x80) return false;
    }
    return true;
}

static void SetValue(ZR_Handle* list, ZR_Text* name, std::string_view value) {
    auto make = [&](ZR_EXE_VariableKind kind) {
        zrExe_DeleteVariableByName(list, name);
        ZR_Executer_Variable* variable = zrExe_FindVariableByNameAndCreate(list, name, kind);
        if (!variable) throw std::bad_alloc();
        return variable;
    };
    bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    std::optional<double> number = ReadNumber(value);
    std::optional<ZR_Date> date = ReadDate(value);
    if (quoted) value = value.substr(1, value.size() - 2);
    if (!quoted && number) make(ZR_EXE_Real)->SetNumber(*number);
    else if (!quoted && (value == "true" || value == "false")) make(ZR_EXE_Boolean)->SetBoolean(value == "true");
    else if (!quoted && date) make(ZR_EXE_Date)->SetDate(&*date);
    else make(ZR_EXE_Text)->text.AddText(Text(Utf16Of(value)).get());
}

void Declare(ZR_ExecutionContext* context, std::string_view assignment) {
    size_t equals = assignment.find('=');
    if (equals == std::string_view::npos) throw Refusal{"--set needs NAME=VALUE, not " + Quoted(assignment)};
    std::string_view name = assignment.substr(0, equals), value = assignment.substr(equals + 1);
    for (const auto& row : kScopes) {
        if (!name.starts_with(row.prefix)) continue;
        std::string_view plain = name.substr(strlen(row.prefix));
        bool numbered = !plain.empty() && plain[0] >= '0' && plain[0] <= '9';
        if (!IsName(plain) || (numbered && row.scope != ZR_SCOPE_LOCAL))
            throw Refusal{"--set: " + Quoted(name) + " is not the name of a variable"};
        Text variableName(Utf16Of(plain));
        return SetValue(ListOf(context, row.scope), variableName.get(), value);
    }
}

// To JSON ----------------------------------------------------------------------------------------------------------

static void AppendDate(std::string& out, const ZR_VariableValue& value) {
    char text[32];
    snprintf(text, sizeof text, "\"%04d-%02d-%02d\"", value.date[2], value.date[1], value.date[0]);
    out += text;
}

// "->$x"; a nil pointer is null.
static void AppendPointer(std::string& out, ZR_Executer_Variable* pointer) {
    long where = pointer->value.integer;
    if (pointer->IsPointerNil()) {
        out += "null";
    } else if (pointer->text.count) {
        std::u16string shown = u"->";
        if (where > 0) shown += u"$";
        else if (where == ZR_POINTER_INTERPROCESS) shown += u"<>";
        shown += UnitsOf(pointer->text);
        AppendJsonText(out, std::u16string_view(shown));
    } else {
        std::string shown = "->[" + std::to_string(pointer->GetTable()) + "]";
        if (pointer->PointerToField()) shown += std::to_string(pointer->GetField());
        AppendJsonText(out, std::string_view(shown));
    }
}

// Objects and collections, as the host writes them.
static void AppendStructure(std::string& out, ZR_Executer_Variable* variable) {
    PA_Variable record = variable->CreatePAVariable(/*duplicateObject*/ false);
    PA_Unistring json = PA_JsonStringify(&record, /*pretty*/ false);
    if (json.fString && json.fLength > 0)
        AppendUtf8(out, {reinterpret_cast<const char16_t*>(json.fString), static_cast<size_t>(json.fLength)});
    else out += "null";
    PA_DisposeUnistring(&json);
    PA_ClearVariable(&record);
}

static void AppendBytes(std::string& out, const ZR_Handle& bytes) {
    out += '"';
    if (bytes.data && bytes.count > 0) AppendBase64(out, bytes.data, static_cast<size_t>(bytes.count));
    out += '"';
}

static void AppendElements(std::string& out, ZR_Executer_Variable* array) {
    out += '[';
    for (long i = 1; i <= array->elements.count; ++i) {
        if (i > 1) out += ',';
        AppendValue(out, array->GetVariablePtrFromArrayByIndex(i));
    }
    out += ']';
}

void AppendValue(std::string& out, ZR_Executer_Variable* variable) {
    if (variable->IsArray()) return AppendElements(out, variable);
    switch (variable->kind) {
        case ZR_EXE_Real: return AppendJsonReal(out, variable->value.real);
        case ZR_EXE_Integer:
        case ZR_EXE_Longint:
        case ZR_EXE_Time: out += std::to_string(variable->value.integer); return;
        case ZR_EXE_Boolean: out += variable->GetBoolean() ? "true" : "false"; return;
        case ZR_EXE_Date: return AppendDate(out, variable->value);
        case ZR_EXE_Text: return AppendJsonText(out, UnitsOf(variable->text));
        case ZR_EXE_Blob: return AppendBytes(out, variable->blob);
        case ZR_EXE_Picture: return AppendBytes(out, variable->picture.nativeData);
        case ZR_EXE_Pointer: return AppendPointer(out, variable);
        case ZR_EXE_Object:
        case ZR_EXE_Collection:
            if (!variable->isNull()) return AppendStructure(out, variable);
            break;
        default: break;
    }
    out += "null";
}

static void AppendList(std::string& out, ZR_Handle* list, const char* prefix, bool* first) {
    for (long i = 1; i <= list->count; ++i) {
        auto* variable = reinterpret_cast<ZR_Executer_Variable*>(list->GetMemPtr(i));
        if (!*first) out += ',';
        *first = false;
        out += "{\"name\":";
        AppendJsonText(out, std::string_view(prefix + Utf8Of(variable->name)));
        out += ",\"kind\":" + std::to_string(static_cast<int>(variable->kind)) + ",\"value\":";
        AppendValue(out, variable);
        out += '}';
    }
}

void AppendVariables(std::string& out, ZR_ExecutionContext* context) {
    bool first = true;
    out += '[';
    AppendList(out, &context->rootStack.localVariables, "$", &first);
    AppendList(out, &context->processVariables, "", &first);
    AppendList(out, &context->interprocessVariables, "<>", &first);
    out += ']';
}

}  // namespace zrtool
