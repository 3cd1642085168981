// Files that a command reads whole.
#ifndef ZRTOOL_FILES_H
#define ZRTOOL_FILES_H

#include <string>

namespace zrtool {

// The bytes of a text in UTF-8, without a byte order mark; "-" is standard input. what: the noun for messages, such as
// "scene". Throws Refusal: missing, a folder, larger than most bytes, no UTF-8.
std::string ReadTextFile(const std::string& path, size_t most, const char* what);

}  // namespace zrtool

#endif
