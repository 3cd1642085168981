// The commands of the tool and their options: one table, from which the parser, the help, the manual page and the shell
// completion are made.
#ifndef ZRTOOL_OPTIONS_H
#define ZRTOOL_OPTIONS_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zrtool {

class Arguments;

struct OptionRow {
    const char* name;   // without "--"
    char letter;        // of the short form; 0 = none
    const char* value;  // stands for the value in the help: "N", "FILE", "DIR", "en|fr"; null = a switch
    const char* help;   // null = known, but refused with the words of later, and not shown
    bool repeats;       // may be given more than once
    const char* later;  // why it is refused; null = it is not
};

struct CommandRow {
    const char* name;
    const char* arguments;  // as the usage line shows them
    int least, most;        // number of arguments
    const char* summary;    // one line
    const char* text;       // paragraphs, separated by an empty line; lines that begin with a blank stand as they are
    std::span<const OptionRow> options;
    const char* files;  // what completion offers as arguments: suffixes of files, or words; null = nothing
    int (*run)(const Arguments& arguments);
};

std::span<const CommandRow> Commands();
const CommandRow* FindCommand(std::string_view name);  // null = none

// What a command was given.
class Arguments {
  public:
    static Arguments Parse(const CommandRow& command, std::span<char* const> words);  // throws Refusal

    const CommandRow& command() const { return *command_; }
    const std::vector<std::string>& plain() const { return plain_; }  // everything that is no option
    bool helpAsked() const { return helpAsked_; }
    bool has(std::string_view option) const;
    std::optional<std::string> value(std::string_view option) const;  // the last one
    std::vector<std::string> values(std::string_view option) const;   // in their order

  private:
    void takeLong(std::string_view word, std::span<char* const> words, size_t* next);
    void takeLetters(std::string_view word, std::span<char* const> words, size_t* next);
    void take(const OptionRow& row, std::string_view shown, const std::optional<std::string>& value);

    const CommandRow* command_ = nullptr;
    std::vector<std::pair<const OptionRow*, std::string>> options_;
    std::vector<std::string> plain_;
    bool helpAsked_ = false;
};

// Values of options; throw Refusal in words that name the option.
double PositiveNumber(std::string_view option, std::string_view value);
long PositiveInteger(std::string_view option, std::string_view value);

}  // namespace zrtool

#endif
