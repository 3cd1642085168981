// The bodies of the commands that the table in Commands.cpp lists. Each answers the exit status, or throws Refusal.
#ifndef ZRTOOL_COMMANDS_H
#define ZRTOOL_COMMANDS_H

#include "app/Options.h"

namespace zrtool {

int RunProgram(const Arguments& arguments);
int TokenizeFile(const Arguments& arguments);
int ListCommands(const Arguments& arguments);
int DrawScenes(const Arguments& arguments);
int TextFacts(const Arguments& arguments);
int WorkOnPicture(const Arguments& arguments);
int ShowHelp(const Arguments& arguments);
int ShowManual(const Arguments& arguments);
int ShowCompletion(const Arguments& arguments);

}  // namespace zrtool

#endif
