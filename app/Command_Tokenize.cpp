// zr tokenize: a method as tokens, in a blob or in words.
#include <unistd.h>

#include <cstdio>

#include "app/Commands.h"
#include "app/HostOptions.h"
#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Output.h"
#include "language/ZR_API_TokenBlob.h"

namespace zrtool {

// Kinds that source text or a blob can give.
static constexpr struct {
    ZREXE_TOKEN kind;
    const char* name;
} kKinds[] = {
    {ZREXE_TOKEN_LINE, "line"},
    {ZREXE_TOKEN_VARIABLE, "variable"},
    {ZREXE_TOKEN_LOCAL, "local"},
    {ZREXE_TOKEN_INTERPROCESS, "interprocess"},
    {ZREXE_TOKEN_ASSIGN, "assign"},
    {ZREXE_TOKEN_NUMBER, "number"},
    {ZREXE_TOKEN_OPEN, "open"},
    {ZREXE_TOKEN_CLOSE, "close"},
    {ZREXE_TOKEN_FORMULA, "formula"},
    {ZREXE_TOKEN_STRING, "string"},
    {ZREXE_TOKEN_COMMENT, "comment"},
    {ZREXE_TOKEN_COMMAND, "command"},
    {ZREXE_TOKEN_EMPTY_13, "empty"},
    {ZREXE_TOKEN_EMPTY_14, "empty"},
    {ZREXE_TOKEN_SEMICOLON, "semicolon"},
    {ZREXE_TOKEN_DATE, "date"},
    {ZREXE_TOKEN_TIME, "time"},
    {ZREXE_TOKEN_BOOLEAN, "boolean"},
    {ZREXE_TOKEN_COMPARISON, "comparison"},
    {ZREXE_TOKEN_LOGIC, "logic"},
    {ZREXE_TOKEN_TABLE, "table"},
    {ZREXE_TOKEN_FIELD, "field"},
    {ZREXE_TOKEN_POINTER, "pointer"},
    {ZREXE_TOKEN_ELEMENT_OPEN, "element open"},
    {ZREXE_TOKEN_ELEMENT_CLOSE, "element close"},
    {ZREXE_TOKEN_ARROW, "arrow"},
    {ZREXE_TOKEN_METHOD, "method"},
    {ZREXE_TOKEN_LONGINT, "longint"},
    {ZREXE_TOKEN_INDEX_OPEN, "index open"},
    {ZREXE_TOKEN_INDEX_CLOSE, "index close"},
    {ZREXE_TOKEN_MEMBER, "member"},
    {ZREXE_TOKEN_MEMBER_CALL, "member call"},
    {ZREXE_TOKEN_OTHER, "other"},
};

static const char* KindName(ZREXE_TOKEN kind) {
    for (const auto& row : kKinds)
        if (row.kind == kind) return row.name;
    return "unknown";
}

static bool HasText(ZREXE_TOKEN kind) {
    switch (kind) {
        case ZREXE_TOKEN_VARIABLE:
        case ZREXE_TOKEN_LOCAL:
        case ZREXE_TOKEN_INTERPROCESS:
        case ZREXE_TOKEN_STRING:
        case ZREXE_TOKEN_COMMENT:
        case ZREXE_TOKEN_METHOD:
        case ZREXE_TOKEN_MEMBER:
        case ZREXE_TOKEN_MEMBER_CALL:
        case ZREXE_TOKEN_OTHER: return true;
        default: return false;
    }
}

static std::string Printed(const char* format, long first, long second, long third) {
    char text[80];
    snprintf(text, sizeof text, format, first, second, third);
    return text;
}

static std::string DateShown(ZR_Executer_Token* token) {
    ZR_Date date;
    token->GetDate(&date);
    return Printed("%04ld-%02ld-%02ld", date.year, date.month, date.day);
}

static std::string TimeShown(long seconds) {
    const char* sign = seconds < 0 ? "-" : "";
    if (seconds < 0) seconds = -seconds;
    return sign + Printed("%02ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

static std::string ComparisonShown(long value) {
    for (const ZR_ComparisonRow& row : kZR_Comparisons)
        if (row.value == value) return row.text;
    return std::to_string(value);
}

// The value of a token that has no text, in words.
static std::string ValueShown(Interpreter& interpreter, ZR_Executer_Token* token) {
    long value = token->value.integer;
    switch (token->kind) {
        case ZREXE_TOKEN_NUMBER: return ShortestNumber(token->value.real);
        case ZREXE_TOKEN_LONGINT: return std::to_string(value);
        case ZREXE_TOKEN_FORMULA: {
            std::string shown;
            char16_t unit = token->GetFormula();
            AppendUtf8(shown, std::u16string_view(&unit, 1));
            return shown;
        }
        case ZREXE_TOKEN_COMMAND: return std::to_string(value) + " " + interpreter.commandName(value);
        case ZREXE_TOKEN_DATE: return DateShown(token);
        case ZREXE_TOKEN_TIME: return TimeShown(static_cast<int>(value));
        case ZREXE_TOKEN_BOOLEAN: return token->GetBoolean() ? "true" : "false";
        case ZREXE_TOKEN_COMPARISON: return ComparisonShown(value);
        case ZREXE_TOKEN_LOGIC:
            return value == ZREXE_LOGIC_AND ? "&" : value == ZREXE_LOGIC_OR ? "|" : std::to_string(value);
        case ZREXE_TOKEN_TABLE: return Printed("[%ld]", token->GetTable(), 0, 0);
        case ZREXE_TOKEN_FIELD: return Printed("[%ld]%ld", token->GetTable(), token->GetField(), 0);
        default: return "";
    }
}

static std::string TextOrValue(Interpreter& interpreter, ZR_Executer_Token* token) {
    return HasText(token->kind) ? Utf8Of(*token->GetText()) : ValueShown(interpreter, token);
}

// In each function line is the line of the method that the token stands on, from 1.
static void AppendRow(std::string& out, Interpreter& interpreter, long position, long line, ZR_Executer_Token* token) {
    out += std::to_string(position) + "\t" + std::to_string(line) + "\t" + std::to_string(token->kind) + "\t" +
           KindName(token->kind) + "\t" + Shown(TextOrValue(interpreter, token)) + "\n";
}

static void AppendObject(std::string& out, Interpreter& interpreter, long position, long line,
                         ZR_Executer_Token* token) {
    out += position > 1 ? ",\n" : "";
    out += "{\"position\":" + std::to_string(position) + ",\"line\":" + std::to_string(line) +
           ",\"kind\":" + std::to_string(token->kind) + ",\"kindName\":\"" + KindName(token->kind) + "\"";
    std::string shown = TextOrValue(interpreter, token);
    bool isNumber = token->kind == ZREXE_TOKEN_NUMBER || token->kind == ZREXE_TOKEN_LONGINT;
    if (token->kind == ZREXE_TOKEN_COMMAND) out += ",\"command\":" + std::to_string(token->value.integer);
    if (isNumber) {
        out += ",\"value\":";
        AppendJsonReal(out, token->GetNumber());
    } else if (HasText(token->kind) || !shown.empty()) {
        if (token->kind == ZREXE_TOKEN_COMMAND) shown = interpreter.commandName(token->value.integer);
        out += HasText(token->kind) ? ",\"text\":" : ",\"value\":";
        AppendJsonText(out, std::string_view(shown));
    }
    out += "}";
}

static void PrintTokens(Interpreter& interpreter, ZR_Handle* tokens, bool json) {
    std::string out = json ? "[" : "";
    long line = 0;
    for (long position = 1; position <= tokens->count; ++position) {
        auto* token = reinterpret_cast<ZR_Executer_Token*>(tokens->GetMemPtr(position));
        if (token->kind == ZREXE_TOKEN_LINE) ++line;
        (json ? AppendObject : AppendRow)(out, interpreter, position, line, token);
        if (out.size() < 32 * 1024) continue;
        StandardOutput::Write(out);
        out.clear();
    }
    StandardOutput::Write(out + (json ? "]\n" : ""));
}

static MethodFolder FolderOfFile(const Arguments& arguments) {
    const std::string& file = arguments.plain()[0];
    MethodFolder folder;
    folder.add(FolderOf(file));
    if (auto project = arguments.value("project")) folder.addProject(*project);
    if (file != "-") folder.addFile(file);
    return folder;
}

int TokenizeFile(const Arguments& arguments) {
    auto output = arguments.value("output");
    bool json = arguments.has("json"), list = arguments.has("list") || json;
    if (!output && !list) throw Refusal{"zr tokenize needs -o FILE or --list"};
    if (output == "-" && list) throw Refusal{"a blob and a list cannot both go to standard output"};
    if (output == "-" && StandardOutput::IsTerminal()) throw Refusal{"a token blob is binary, not for a terminal"};
    SourceFile source = ReadSource(arguments.plain()[0]);
    Interpreter interpreter(HostOptions(arguments));
    Program program(interpreter, FolderOfFile(arguments));
    Block blob;
    program.tokenise(source, blob.get());
    ZR_Handle tokens;
    zrExe_CreateTokens(&tokens);
    zrExe_BlobToTokens(blob.get(), &tokens);
    bool readable = tokens.count > 0;
    if (readable && list) PrintTokens(interpreter, &tokens, json);
    zrExe_DisposeTokens(&tokens);
    if (!readable) throw Refusal{source.shownPath() + " is not a token blob"};
    if (output) WriteFile(*output, blob.bytes());
    return kSuccess;
}

}  // namespace zrtool
