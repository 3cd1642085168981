// Method files: text in UTF-8 or a token blob, read whole and checked, and what 4D writes into the files of a project
// turned into plain code.
#ifndef ZRTOOL_SOURCE_H
#define ZRTOOL_SOURCE_H

#include <functional>
#include <string>
#include <string_view>

namespace zrtool {

inline constexpr size_t kLargestFile = 16 << 20;  // bytes

// A file as it is read, "-" = standard input.
struct SourceFile {
    std::string path;   // as it was given
    std::string bytes;  // of a text: without a byte order mark
    bool isBlob = false;

    std::string shownPath() const;             // for messages
    std::string_view line(long number) const;  // [1..]; without its end; empty outside
};

// A whole file, "-" = standard input; what: "method", "picture", for the sentences of a Refusal.
std::string ReadFileBytes(const std::string& path, const char* what, size_t most);

std::u16string Utf16Of(std::string_view utf8);  // a byte that belongs to no character becomes U+FFFD

SourceFile ReadSource(const std::string& path);  // throws Refusal: missing, a folder, too large, binary, not UTF-8

// The name of a command by its number, in UTF-8; empty = unknown.
using CommandNames = std::function<std::string(long number)>;

// Takes away the suffixes that 4D writes behind names: of NAME:C123 the number decides and the name becomes that
// command's; of NAME:K1:2 and NAME:P123 the name stays. Texts, comments, dates and times are left alone, and so is an
// unknown number. Lines keep their numbers.
std::string WithoutSuffixes(std::string_view code, const CommandNames& names);

}  // namespace zrtool

#endif
