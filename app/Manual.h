// Texts made from the table of commands.
#ifndef ZRTOOL_MANUAL_H
#define ZRTOOL_MANUAL_H

#include <string>

#include "app/Options.h"

namespace zrtool {

std::string Overview();                         // zr --help
std::string HelpOf(const CommandRow& command);  // zr COMMAND --help
std::string ManualPage();                       // roff
std::string BashCompletion();

}  // namespace zrtool

#endif
