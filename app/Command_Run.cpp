// zr run: a method, its output, its error, its variables.
#include <unistd.h>

#include <charconv>
#include <climits>
#include <cstdlib>

#include "app/Commands.h"
#include "app/HostOptions.h"
#include "app/Interpreter.h"
#include "app/Json.h"
#include "app/Messages.h"
#include "app/Output.h"
#include "app/Values.h"

namespace zrtool {

// Output -----------------------------------------------------------------------------------------------------------

// Line breaks inside a message are carriage returns in the language.
static std::string LineOf(std::u16string_view message) {
    std::u16string units;
    units.reserve(message.size());
    for (size_t i = 0; i < message.size(); ++i) {
        if (message[i] == u'\r' && i + 1 < message.size() && message[i + 1] == u'\n') continue;
        units += message[i] == u'\r' ? u'\n' : message[i];
    }
    std::string line;
    AppendUtf8(line, units);
    return line;
}

// Elements of the JSON list "output", written as they come.
class JsonOutput {
  public:
    void add(std::u16string_view message) {
        std::lock_guard lock(mutex_);
        std::string element = first_ ? "" : ",";
        first_ = false;
        AppendJsonText(element, message);
        StandardOutput::Write(element);
    }

  private:
    std::mutex mutex_;
    bool first_ = true;
};

// Dialogs ----------------------------------------------------------------------------------------------------------

// A line that is typed; nothing at the end of the input.
static std::optional<std::string> TypedLine() {
    std::string line;
    for (;;) {
        char byte;
        ssize_t count = read(STDIN_FILENO, &byte, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return line.empty() ? std::nullopt : std::optional(line);
        if (byte == '\n') return line;
        line += byte;
    }
}

static std::string Utf8(std::u16string_view units) {
    std::string out;
    AppendUtf8(out, units);
    return out;
}

static bool Confirm(std::u16string_view text, std::u16string_view ok, std::u16string_view cancel) {
    std::string okTitle = ok.empty() ? "OK" : Utf8(ok), cancelTitle = cancel.empty() ? "Cancel" : Utf8(cancel);
    for (;;) {
        Print(LineOf(text) + " [1 " + okTitle + ", 2 " + cancelTitle + "] ");
        std::optional<std::string> answer = TypedLine();
        if (!answer || *answer == "2" || *answer == cancelTitle) return false;
        if (answer->empty() || *answer == "1" || *answer == okTitle) return true;
    }
}

static std::optional<std::u16string> Request(std::u16string_view text, std::u16string_view preset) {
    std::string question = LineOf(text);
    if (!preset.empty()) question += " [" + Utf8(preset) + "]";
    Print(question + " ");
    std::optional<std::string> answer = TypedLine();
    if (!answer) return std::nullopt;
    return answer->empty() ? std::u16string(preset) : Utf16Of(*answer);
}

static bool CanAsk(const std::string& file) { return file != "-" && isatty(STDIN_FILENO) && isatty(STDERR_FILENO); }

// What the program meets -------------------------------------------------------------------------------------------

static std::string AbsolutePath(const std::string& path) {
    char resolved[PATH_MAX];
    return path != "-" && realpath(path.c_str(), resolved) ? resolved : "";
}

static zrhost::Options OptionsOfRun(const Arguments& arguments, JsonOutput* json) {
    zrhost::Options options = HostOptions(arguments);
    const std::string& file = arguments.plain()[0];
    options.preemptive = arguments.has("preemptive");
    options.structurePath = AbsolutePath(file);
    if (json) options.alert = [json](std::u16string_view line) { json->add(line); };
    else options.alert = [](std::u16string_view line) { StandardOutput::WriteLine(LineOf(line)); };
    options.log = [](std::u16string_view line) { Print(LineOf(line) + "\n"); };
    options.notServed = [](int id, std::string_view name) {
        Say("command " + std::to_string(id) + " " + Quoted(name) +
            " is not served; it sets OK to 0 and answers nothing");
    };
    if (CanAsk(file)) {
        options.confirm = Confirm;
        options.request = Request;
    }
    return options;
}

static MethodFolder FolderOfRun(const Arguments& arguments) {
    const std::string& file = arguments.plain()[0];
    MethodFolder folder;
    folder.add(FolderOf(file));
    if (auto project = arguments.value("project")) folder.addProject(*project);
    if (file != "-") folder.addFile(file);
    return folder;
}

// The method to start: that of FILE, or another one by its name.
static long StartedMethod(Program& program, const Arguments& arguments, SourceFile source) {
    std::string path = source.path;
    std::string name = path == "-" ? "" : MethodNameOf(path);
    long reference = program.addMethod(name, std::move(source));
    auto wanted = arguments.value("method");
    if (!wanted) return reference;
    long other = program.referenceOf(*wanted);
    if (other) return other;
    throw Refusal{"there is no method " + Quoted(*wanted) + " beside " + (path == "-" ? "<stdin>" : Shown(path))};
}

// Errors -----------------------------------------------------------------------------------------------------------

static constexpr size_t kLongestLineShown = 160;  // bytes
static constexpr size_t kFirstCallsShown = 20, kLastCallsShown = 5;

// Nothing in a message steers the terminal.
static char Harmless(char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' ? '?' : c; }

static std::string ErrorTextShown(const ZR_Text& text) {
    std::string shown = LineOf(UnitsOf(text));
    for (char& c : shown) c = Harmless(c);
    return shown;
}

static std::string SourceLineShown(std::string_view line) {
    std::string shown;
    size_t end = std::min(line.size(), kLongestLineShown);
    while (end < line.size() && end > 0 && (line[end] & 0xC0) == 0x80) --end;
    for (char c : line.substr(0, end)) shown += Harmless(c);
    return end < line.size() ? shown + "..." : shown;
}

static std::string CallShown(const Program::Place& call) {
    return "  called from " + call.path + ":" + std::to_string(call.line) + "\n";
}

static std::string CallsShown(const std::vector<Program::Place>& places) {
    std::string shown;
    size_t left = places.size() - 1;
    bool all = left <= kFirstCallsShown + kLastCallsShown;
    for (size_t i = 1; i <= left; ++i) {
        if (all || i <= kFirstCallsShown || i > left - kLastCallsShown) shown += CallShown(places[i]);
        else if (i == kFirstCallsShown + 1)
            shown += "  ... " + std::to_string(left - kFirstCallsShown - kLastCallsShown) + " more calls\n";
    }
    return shown;
}

static void PrintError(Program& program) {
    std::vector<Program::Place> places = program.errorPlaces();
    if (places.empty()) return;
    bool colour = ColourOnStandardError();
    const char *bold = colour ? "\x1B[1m" : "", *red = colour ? "\x1B[1;31m" : "", *plain = colour ? "\x1B[0m" : "";
    const Program::Place& place = places[0];
    std::string number = std::to_string(place.line);
    std::string message = bold + place.path + ":" + number + ": " + plain + red + "error " +
                          std::to_string(program.context()->lastError) + ": " + plain +
                          ErrorTextShown(program.context()->lastErrorText) + "\n";
    if (!place.source.empty()) message += "  " + number + " | " + SourceLineShown(place.source) + "\n";
    Print(message + CallsShown(places));
}

static std::string JsonError(Program& program) {
    ZR_ExecutionContext* context = program.context();
    std::vector<Program::Place> places = program.errorPlaces();
    bool failed = !places.empty();
    std::string out = "{\"number\":" + std::to_string(context->lastError);
    out += ",\"line\":" + std::to_string(failed ? places[0].line : 0) + ",\"method\":";
    AppendJsonText(out, failed ? std::string_view(places[0].method) : std::string_view());
    out += ",\"text\":";
    AppendJsonText(out, failed ? UnitsOf(context->lastErrorText) : std::u16string_view());
    return out + "}";
}

// The command ------------------------------------------------------------------------------------------------------

static void RestrictCommands(Program& program, const Arguments& arguments) {
    if (arguments.has("allow")) program.allowOnly(arguments.values("allow"));
    if (arguments.has("deny")) program.deny(arguments.values("deny"));
}

int RunProgram(const Arguments& arguments) {
    auto maxSeconds = arguments.value("max-seconds"), maxDepth = arguments.value("max-depth");
    double seconds = maxSeconds ? PositiveNumber("max-seconds", *maxSeconds) : 0;
    long depth = maxDepth ? PositiveInteger("max-depth", *maxDepth) : 0;
    bool asJson = arguments.has("json");
    JsonOutput json;
    zrhost::Options options = OptionsOfRun(arguments, asJson ? &json : nullptr);
    SourceFile source = ReadSource(arguments.plain()[0]);
    MethodFolder folder = FolderOfRun(arguments);

    Interpreter interpreter(std::move(options));
    Program program(interpreter, std::move(folder));
    long started = StartedMethod(program, arguments, std::move(source));
    for (const std::string& assignment : arguments.values("set")) program.declare(started, assignment);
    RestrictCommands(program, arguments);
    program.context()->maxCalls = depth;

    if (asJson) StandardOutput::Write("{\"output\":[");
    program.run(started, seconds);
    if (asJson) {
        std::string rest = "],\n\"error\":" + JsonError(program) + ",\n\"variables\":";
        AppendVariables(rest, program.context());
        StandardOutput::Write(rest + "}\n");
    } else {
        PrintError(program);
    }
    return program.context()->lastError ? kCodeFailed : kSuccess;
}

}  // namespace zrtool
