// Pages as the tests of this folder read them.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/RunTool.h"

namespace zrtest {

inline std::string ReadPage(const std::string& name) { return ReadFile(std::string(ZR_SOURCE_DIR) + "/" + name); }

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

inline void ReplaceAll(std::string* text, const std::string& from, const std::string& to) {
    for (size_t at = text->find(from); at != std::string::npos; at = text->find(from, at + to.size()))
        text->replace(at, from.size(), to);
}

}  // namespace zrtest
