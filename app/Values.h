// Variables of a context from the command line and as JSON.
#ifndef ZRTOOL_VALUES_H
#define ZRTOOL_VALUES_H

#include <string>
#include <string_view>

#include "runtime/ZR_API_Context.h"

namespace zrtool {

// NAME=VALUE. $x goes to the root frame, x to the process, <>x to the interprocess variables; one of that name is
// replaced. What reads as a number becomes a real, true and false a Boolean, yyyy-mm-dd a date, anything else a text;
// double quotes around the value make a text of what is between them. Throws Refusal.
void Declare(ZR_ExecutionContext* context, std::string_view assignment);

// [{"name":…,"kind":…,"value":…},…]: locals of the root frame, process, interprocess variables, in list order.
void AppendVariables(std::string& out, ZR_ExecutionContext* context);
void AppendValue(std::string& out, ZR_Executer_Variable* variable);

}  // namespace zrtool

#endif
