// What the tool says to people: sentences on standard error, and the failure that ends a command before it did
// anything.
#ifndef ZRTOOL_MESSAGES_H
#define ZRTOOL_MESSAGES_H

#include <string>
#include <string_view>

namespace zrtool {

enum ExitStatus : int { kSuccess = 0, kCodeFailed = 1, kWrongUsage = 2 };

// Thrown where a command cannot be done: wrong usage, unreadable input, output that cannot be written. Status 2.
struct Refusal {
    std::string sentence;  // without "zr: " and without a full stop
};

void Say(
    std::string_view sentence);  // "zr: sentence" on standard error, behind what stands in standard output's buffer
void Print(std::string_view message);       // the same without "zr: " and without a line end of its own
bool ColourOnStandardError();               // a terminal that takes colour, and no NO_COLOR
std::string Quoted(std::string_view text);  // "text", control characters shown as \n, \t or \x1B
std::string Shown(std::string_view text);   // the same without quotes
std::string ReasonOf(int errorNumber);      // of errno: "No such file or directory"
std::string Nearest(std::string_view word, const char* const* candidates, size_t count);  // empty = none is near

}  // namespace zrtool

#endif
