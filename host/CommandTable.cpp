// The commands that this host serves, gathered from the files that hold them.
#include <array>

#include "host/CommandCall.h"

// One line a file of commands: the name of the function that hands its rows out.
#define ZRHOST_COMMAND_FILES(X) \
    X(commandsArrays)           \
    X(commandsBlobs)            \
    X(commandsDates)            \
    X(commandsDigests)          \
    X(commandsDocuments)        \
    X(commandsFonts)            \
    X(commandsLanguage)         \
    X(commandsMath)             \
    X(commandsMessages)         \
    X(commandsObjects)          \
    X(commandsPictures)         \
    X(commandsPictureEditing)   \
    X(commandsProcesses)        \
    X(commandsRecords)          \
    X(commandsStructure)        \
    X(commandsSystem)           \
    X(commandsText)             \
    X(commandsXML)

namespace zrhost {

#define ZRHOST_X(name) std::span<const CommandRow> name();
ZRHOST_COMMAND_FILES(ZRHOST_X)
#undef ZRHOST_X

namespace {

struct Table {
    std::array<CommandFunction, Host::kLastCommand + 1> run{};
    Table() {
#define ZRHOST_X(name)                   \
    for (const CommandRow& row : name()) \
        if (row.id > 0 && row.id <= Host::kLastCommand) run[row.id] = row.run;
        ZRHOST_COMMAND_FILES(ZRHOST_X)
#undef ZRHOST_X
    }
};

}  // namespace

CommandFunction FindCommand(int id) {
    static const Table table;  // a few hundred stores at the first command
    return id > 0 && id <= Host::kLastCommand ? table.run[id] : nullptr;
}

}  // namespace zrhost
