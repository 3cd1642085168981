#include "app/Manual.h"

#include <algorithm>

#include "app/Commands.h"
#include "app/Messages.h"
#include "app/Output.h"

namespace zrtool {

static constexpr size_t kWidth = 80;  // columns
static constexpr const char* kSynopsis = "usage: zr COMMAND [OPTIONS] [ARGUMENTS]";
static constexpr const char* kPurpose = "Runs 4D code outside the 4D application, and draws.";
static constexpr struct {
    int status;
    const char* meaning;
} kExitStatus[] = {
    {kSuccess, "success"},
    {kCodeFailed, "the 4D code or the document failed"},
    {kWrongUsage, "wrong usage, unreadable input or output that cannot be written"},
};

// Lines ------------------------------------------------------------------------------------------------------------

static std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t start = 0; start <= text.size();) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

// Appends words, broken so that they stand between two columns; the first line begins at column at.
static void AppendWrapped(std::string& out, std::string_view text, size_t indent, size_t at) {
    while (!text.empty()) {
        size_t end = text.find(' ');
        std::string_view word = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (at > indent && at + 1 + word.size() > kWidth) {
            out += '\n';
            at = 0;
        }
        if (at < indent) out.append(indent - at, ' ');
        else if (at > indent) out += ' ';
        at = (at < indent ? indent : at == indent ? indent : at + 1) + word.size();
        out += word;
    }
    out += '\n';
}

static void AppendParagraphs(std::string& out, std::string_view text) {
    for (std::string_view line : SplitLines(text)) {
        if (line.empty()) out += '\n';
        else if (line[0] == ' ') out.append(line).append("\n");
        else AppendWrapped(out, line, 0, 0);
    }
}

// Help -------------------------------------------------------------------------------------------------------------

static std::string OptionShown(const OptionRow& row) {
    std::string shown = row.letter ? std::string("-") + row.letter + ", " : "    ";
    shown += std::string("--") + row.name;
    if (row.value) shown += std::string(" ") + row.value;
    return shown;
}

static void AppendOption(std::string& out, const std::string& shown, std::string_view help) {
    constexpr size_t kHelpColumn = 28;
    out += "  " + shown;
    size_t at = shown.size() + 2;
    if (at >= kHelpColumn - 1) {
        out += '\n';
        at = 0;
    }
    AppendWrapped(out, help, kHelpColumn, at);
}

std::string HelpOf(const CommandRow& command) {
    std::string out = std::string("usage: zr ") + command.name;
    if (*command.arguments) out += std::string(" ") + command.arguments;
    out += command.options.empty() ? "\n\n" : " [OPTIONS]\n\n";
    AppendParagraphs(out, command.text);
    out += "\noptions:\n";
    for (const OptionRow& row : command.options)
        if (row.help) AppendOption(out, OptionShown(row), row.help);
    AppendOption(out, "-h, --help", "Print this help.");
    return out;
}

std::string Overview() {
    std::string out = std::string(kSynopsis) + "\n\n" + kPurpose + "\n\ncommands:\n";
    for (const CommandRow& command : Commands()) {
        std::string shown = command.name;
        if (*command.arguments) shown += std::string(" ") + command.arguments;
        AppendOption(out, shown, command.summary);
    }
    out += "\noptions:\n";
    AppendOption(out, "-h, --help", "Print this help; zr COMMAND --help explains a command.");
    AppendOption(out, "    --version", "Print the version.");
    out += "\nexit status:\n";
    for (const auto& row : kExitStatus) AppendOption(out, std::to_string(row.status), row.meaning);
    return out;
}

// Manual page ------------------------------------------------------------------------------------------------------

static std::string Roff(std::string_view text) {
    std::string out;
    if (!text.empty() && (text[0] == '.' || text[0] == '\'')) out += "\\&";
    for (char c : text) {
        if (c == '\\') out += "\\e";
        else if (c == '-') out += "\\-";
        else out += c;
    }
    return out;
}

static void AppendRoffParagraphs(std::string& out, std::string_view text) {
    bool asItStands = false;
    for (std::string_view line : SplitLines(text)) {
        bool indented = !line.empty() && line[0] == ' ';
        if (indented && !asItStands) out += ".nf\n";
        if (!indented && asItStands) out += ".fi\n";
        asItStands = indented;
        if (line.empty()) out += ".PP\n";
        else out += Roff(line) + "\n";
    }
    if (asItStands) out += ".fi\n";
}

static void AppendRoffOption(std::string& out, const OptionRow& row) {
    out += ".TP\n";
    if (row.letter) out += std::string("\\fB\\-") + row.letter + "\\fR, ";
    out += "\\fB\\-\\-" + Roff(row.name) + "\\fR";
    if (row.value) out += " \\fI" + Roff(row.value) + "\\fR";
    out += "\n" + Roff(row.help) + "\n";
}

std::string ManualPage() {
    std::string out = ".TH ZR 1 \"\" \"zr " ZR_VERSION "\" \"zr\"\n.SH NAME\nzr \\- runs 4D code\n.SH SYNOPSIS\n";
    for (const CommandRow& command : Commands()) {
        out += std::string("\\fBzr ") + command.name + "\\fR";
        if (*command.arguments) out += " " + Roff(command.arguments);
        out += command.options.empty() ? "\n.br\n" : " [OPTIONS]\n.br\n";
    }
    out += std::string(".SH DESCRIPTION\n") + kPurpose + "\n.SH COMMANDS\n";
    for (const CommandRow& command : Commands()) {
        out += std::string(".SS zr ") + command.name;
        out += (*command.arguments ? " " + Roff(command.arguments) : "") + "\n";
        AppendRoffParagraphs(out, command.text);
        for (const OptionRow& row : command.options)
            if (row.help) AppendRoffOption(out, row);
    }
    out += ".SH EXIT STATUS\n";
    for (const auto& row : kExitStatus) out += ".TP\n" + std::to_string(row.status) + "\n" + row.meaning + "\n";
    out += ".SH ENVIRONMENT\n.TP\nNO_COLOR\nIf it is set and not empty, nothing is coloured.\n";
    return out;
}

// Completion -------------------------------------------------------------------------------------------------------

static std::string OptionWords(const CommandRow& command) {
    std::string words;
    for (const OptionRow& row : command.options)
        if (row.help) words += std::string("--") + row.name + " ";
    return words + "--help";
}

static std::string CommandWords() {
    std::string words;
    for (const CommandRow& command : Commands()) words += (words.empty() ? "" : " ") + std::string(command.name);
    return words;
}

// A line that gathers what compgen offers for the word.
static std::string Offer(const std::string& generator) {
    return "mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen " + generator + " -- \"$word\")";
}

// What completes the value of an option: words such as "en|fr" by themselves, files and folders by name.
static std::string ValueOffer(std::string_view value) {
    if (value == "FILE") return Offer("-f");
    if (value == "DIR") return Offer("-d");
    if (value.find('|') == std::string_view::npos) return ":";
    std::string words(value);
    std::replace(words.begin(), words.end(), '|', ' ');
    return Offer("-W \"" + words + "\"");
}

static bool IsFirstOfName(const OptionRow& row) {
    for (const CommandRow& command : Commands())
        for (const OptionRow& other : command.options)
            if (std::string_view(other.name) == row.name) return &other == &row;
    return true;
}

static void AppendValueCases(std::string& out, const CommandRow& command) {
    for (const OptionRow& row : command.options) {
        if (!row.help || !row.value || !IsFirstOfName(row)) continue;
        std::string pattern = std::string("--") + row.name;
        if (row.letter) pattern += std::string("|-") + row.letter;
        out += "        " + pattern + ") " + ValueOffer(row.value) + "; return ;;\n";
    }
}

static void AppendArgumentCase(std::string& out, const CommandRow& command) {
    out += std::string("        ") + command.name + ")\n            options=\"" + OptionWords(command) + "\"\n";
    std::string_view offered = command.files ? command.files : "";
    std::string words, suffixes;
    while (!offered.empty()) {
        size_t end = offered.find(' ');
        std::string word(offered.substr(0, end));
        offered.remove_prefix(end == std::string_view::npos ? offered.size() : end + 1);
        if (word.starts_with('.')) suffixes += "            suffixes+=(" + word + ")\n";
        else words += (words.empty() ? "" : " ") + (word == "help" ? CommandWords() : word);
    }
    if (!suffixes.empty()) out += "            folders=1\n" + suffixes;
    if (!words.empty()) out += "            words=\"" + words + "\"\n";
    out += "            ;;\n";
}

std::string BashCompletion() {
    std::string out =
        "# Completion of zr for bash, made by zr completion bash.\n"
        "_zr() {\n"
        "    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
        "    local options= words= folders= suffixes=() suffix\n"
        "    COMPREPLY=()\n"
        "    if [[ $COMP_CWORD -eq 1 ]]; then\n"
        "        " +
        Offer("-W \"" + CommandWords() + " --help --version\"") +
        "\n"
        "        return\n"
        "    fi\n"
        "    case $previous in\n";
    for (const CommandRow& command : Commands()) AppendValueCases(out, command);
    out += "    esac\n    case ${COMP_WORDS[1]} in\n";
    for (const CommandRow& command : Commands()) AppendArgumentCase(out, command);
    out +=
        "    esac\n"
        "    if [[ $word == -* ]]; then\n"
        "        " +
        Offer("-W \"$options\"") +
        "\n"
        "        return\n"
        "    fi\n"
        "    [[ -n $words ]] && " +
        Offer("-W \"$words\"") +
        "\n"
        "    for suffix in \"${suffixes[@]}\"; do\n"
        "        " +
        Offer("-f -X \"!*$suffix\"") +
        "\n"
        "    done\n"
        "    [[ -n $folders ]] && " +
        Offer("-d") +
        "\n"
        "}\n"
        "complete -o filenames -F _zr zr\n";
    return out;
}

// Commands ---------------------------------------------------------------------------------------------------------

int ShowHelp(const Arguments& arguments) {
    if (arguments.plain().empty()) {
        StandardOutput::Write(Overview());
        return kSuccess;
    }
    const CommandRow* command = FindCommand(arguments.plain()[0]);
    if (!command) throw Refusal{"there is no command " + Quoted(arguments.plain()[0]) + "; see zr --help"};
    StandardOutput::Write(HelpOf(*command));
    return kSuccess;
}

int ShowManual(const Arguments&) {
    StandardOutput::Write(ManualPage());
    return kSuccess;
}

int ShowCompletion(const Arguments& arguments) {
    if (arguments.plain()[0] != "bash") throw Refusal{"there is completion for bash alone"};
    StandardOutput::Write(BashCompletion());
    return kSuccess;
}

}  // namespace zrtool
