#include "app/Options.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "app/Messages.h"

namespace zrtool {

const CommandRow* FindCommand(std::string_view name) {
    for (const CommandRow& command : Commands())
        if (name == command.name) return &command;
    return nullptr;
}

static std::string SeeHelp(const CommandRow& command) { return "; see zr " + std::string(command.name) + " --help"; }

[[noreturn]] static void RefuseUnknown(const CommandRow& command, std::string_view shown, std::string_view name) {
    std::vector<const char*> names = {"help"};
    for (const OptionRow& row : command.options)
        if (row.help) names.push_back(row.name);
    std::string near = Nearest(name, names.data(), names.size());
    std::string sentence = "unknown option " + Shown(shown);
    if (!near.empty()) sentence += ", did you mean --" + near + "?";
    else sentence += SeeHelp(command);
    throw Refusal{sentence};
}

// Parsing ----------------------------------------------------------------------------------------------------------

void Arguments::take(const OptionRow& row, std::string_view shown, const std::optional<std::string>& value) {
    if (row.later) throw Refusal{Shown(shown) + " " + row.later};
    if (row.value && !value) throw Refusal{Shown(shown) + " needs a value (" + row.value + ")" + SeeHelp(*command_)};
    if (!row.value && value) throw Refusal{Shown(shown) + " takes no value" + SeeHelp(*command_)};
    if (!row.repeats && has(row.name)) throw Refusal{Shown(shown) + " is given twice"};
    options_.emplace_back(&row, value.value_or(""));
}

// The word behind an option that needs a value; nothing if there is none.
static std::optional<std::string> NextWord(std::span<char* const> words, size_t* next) {
    if (*next >= words.size()) return std::nullopt;
    return std::string(words[(*next)++]);
}

void Arguments::takeLong(std::string_view word, std::span<char* const> words, size_t* next) {
    size_t equals = word.find('=');
    std::string_view shown = word.substr(0, equals), name = shown.substr(2);
    std::optional<std::string> value;
    if (equals != std::string_view::npos) value = std::string(word.substr(equals + 1));
    if (name == "help" && !value) {
        helpAsked_ = true;
        return;
    }
    for (const OptionRow& row : command_->options) {
        if (name != row.name) continue;
        if (row.value && !row.later && !value) value = NextWord(words, next);
        return take(row, shown, value);
    }
    RefuseUnknown(*command_, shown, name);
}

void Arguments::takeLetters(std::string_view word, std::span<char* const> words, size_t* next) {
    for (size_t i = 1; i < word.size(); ++i) {
        std::string shown = std::string("-") + word[i];
        if (word[i] == 'h') {
            helpAsked_ = true;
            continue;
        }
        const OptionRow* found = nullptr;
        for (const OptionRow& row : command_->options)
            if (row.letter == word[i]) found = &row;
        if (!found) RefuseUnknown(*command_, shown, "");
        if (!found->value) {
            take(*found, shown, std::nullopt);
            continue;
        }
        bool attached = i + 1 < word.size();
        return take(*found, shown, attached ? std::string(word.substr(i + 1)) : NextWord(words, next));
    }
}

Arguments Arguments::Parse(const CommandRow& command, std::span<char* const> words) {
    Arguments arguments;
    arguments.command_ = &command;
    bool optionsEnded = false;
    for (size_t next = 0; next < words.size();) {
        std::string_view word = words[next++];
        if (optionsEnded || word.size() < 2 || word[0] != '-') arguments.plain_.emplace_back(word);
        else if (word == "--") optionsEnded = true;
        else if (word[1] == '-') arguments.takeLong(word, words, &next);
        else arguments.takeLetters(word, words, &next);
    }
    if (arguments.helpAsked_) return arguments;
    int count = static_cast<int>(arguments.plain_.size());
    if (count < command.least)
        throw Refusal{std::string("zr ") + command.name + " needs " + command.arguments + SeeHelp(command)};
    if (count > command.most)
        throw Refusal{"too many arguments: " + Quoted(arguments.plain_[static_cast<size_t>(command.most)]) +
                      SeeHelp(command)};
    return arguments;
}

bool Arguments::has(std::string_view option) const { return value(option).has_value(); }

std::optional<std::string> Arguments::value(std::string_view option) const {
    std::optional<std::string> found;
    for (const auto& [row, value] : options_)
        if (option == row->name) found = value;
    return found;
}

std::vector<std::string> Arguments::values(std::string_view option) const {
    std::vector<std::string> found;
    for (const auto& [row, value] : options_)
        if (option == row->name) found.push_back(value);
    return found;
}

// Values -----------------------------------------------------------------------------------------------------------

double PositiveNumber(std::string_view option, std::string_view value) {
    double number = 0;
    auto [end, problem] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (problem == std::errc() && end == value.data() + value.size() && std::isfinite(number) && number > 0)
        return number;
    throw Refusal{"--" + std::string(option) + " needs a number above 0, not " + Quoted(value)};
}

long PositiveInteger(std::string_view option, std::string_view value) {
    long number = 0;
    auto [end, problem] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (problem == std::errc() && end == value.data() + value.size() && number > 0) return number;
    throw Refusal{"--" + std::string(option) + " needs a whole number from 1, not " + Quoted(value)};
}

}  // namespace zrtool
