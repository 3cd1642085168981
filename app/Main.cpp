// zr: runs 4D code outside the 4D application.
#include <span>

#include "app/Manual.h"
#include "app/Messages.h"
#include "app/Options.h"
#include "app/Output.h"

namespace zrtool {

[[noreturn]] static void RefuseCommand(std::string_view word) {
    std::vector<const char*> names;
    for (const CommandRow& command : Commands()) names.push_back(command.name);
    std::string near = Nearest(word, names.data(), names.size());
    if (!near.empty()) throw Refusal{"there is no command " + Quoted(word) + ", did you mean " + near + "?"};
    if (word.starts_with('-')) throw Refusal{"unknown option " + Shown(word) + "; see zr --help"};
    throw Refusal{"there is no command " + Quoted(word) + "; see zr --help"};
}

static int Dispatch(std::span<char* const> words) {
    if (words.empty()) {
        Print(Overview());
        return kWrongUsage;
    }
    std::string_view word = words[0];
    if (word == "--help" || word == "-h") {
        StandardOutput::Write(Overview());
        return kSuccess;
    }
    if (word == "--version") {
        StandardOutput::Write("zr " ZR_VERSION "\n");
        return kSuccess;
    }
    const CommandRow* command = FindCommand(word);
    if (!command) RefuseCommand(word);
    Arguments arguments = Arguments::Parse(*command, words.subspan(1));
    if (!arguments.helpAsked()) return command->run(arguments);
    StandardOutput::Write(HelpOf(*command));
    return kSuccess;
}

static int Run(std::span<char* const> words) {
    try {
        int status = Dispatch(words);
        StandardOutput::Finish();
        return status;
    } catch (const Refusal& refusal) { Say(refusal.sentence); } catch (const std::bad_alloc&) {
        Say("not enough memory");
    } catch (const std::exception& failure) { Say(std::string("the run could not go on: ") + failure.what()); }
    return kWrongUsage;
}

}  // namespace zrtool

int main(int count, char** words) {
    zrtool::StandardOutput::Start();
    return zrtool::Run(std::span(words, static_cast<size_t>(count)).subspan(count > 0 ? 1 : 0));
}
