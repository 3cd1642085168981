// Where results go: standard output with a buffer, and files that appear whole or not at all.
#ifndef ZRTOOL_OUTPUT_H
#define ZRTOOL_OUTPUT_H

#include <string>
#include <string_view>

namespace zrtool {

// Standard output. Lines appear at once on a terminal; elsewhere they are gathered for a tenth of a second or 64 KB.
// What is gathered is written as well when the process is ended by a signal. Any thread may write.
class StandardOutput {
  public:
    static void Start();  // finds out about the terminal, and takes SIGINT, SIGTERM and SIGHUP
    static void Write(std::string_view text);
    static void WriteLine(std::string_view text);
    static void Flush();
    static void Finish();  // flushes; throws Refusal if anything could not be written
    static bool IsTerminal();
};

// Replaces a file in one step: the bytes go to a file beside it, which then takes its name. What is no regular file (a
// pipe, a device) is written directly; "-" is standard output. Throws Refusal, and nothing has changed.
void WriteFile(const std::string& path, std::string_view bytes);

}  // namespace zrtool

#endif
