// zr commands: the table of commands as the interpreter knows it.
#include <cstdio>

#include "app/Commands.h"
#include "app/HostOptions.h"
#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Output.h"

namespace zrtool {

static void AppendRow(std::string& out, const ZR_Executer_Command& command, const std::string& name) {
    char start[64];
    snprintf(start, sizeof start, "%5ld  ", command.id);
    std::string line = start + name;
    size_t width = UnitsOf(command.name).size();
    if (command.supported || command.threadSafe) line.append(width < 40 ? 42 - width : 2, ' ');
    line += command.supported ? "supported  " : command.threadSafe ? "           " : "";
    line += command.threadSafe ? "thread-safe" : "";
    while (line.ends_with(' ')) line.pop_back();
    out += line + "\n";
}

static void AppendObject(std::string& out, const ZR_Executer_Command& command, const std::string& name) {
    out += "{\"id\":" + std::to_string(command.id) + ",\"name\":";
    AppendJsonText(out, std::string_view(name));
    out += std::string(",\"supported\":") + (command.supported ? "true" : "false") +
           ",\"threadSafe\":" + (command.threadSafe ? "true" : "false") + "}";
}

int ListCommands(const Arguments& arguments) {
    Interpreter interpreter(HostOptions(arguments));
    bool json = arguments.has("json"), supportedOnly = arguments.has("supported"), first = true;
    std::string out = json ? "[" : "";
    ZR_Handle& commands = interpreter.executer().commands;
    for (long row = 1; row <= commands.count; ++row) {
        auto* command = reinterpret_cast<ZR_Executer_Command*>(commands.GetMemPtr(row));
        if (command->id == 0 || (supportedOnly && !command->supported)) continue;
        if (json && !first) out += ",\n";
        first = false;
        (json ? AppendObject : AppendRow)(out, *command, Utf8Of(command->name));
    }
    StandardOutput::Write(out + (json ? "]\n" : ""));
    return kSuccess;
}

}  // namespace zrtool
