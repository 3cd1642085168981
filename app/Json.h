// JSON as the tool writes it, appended to a text in UTF-8.
#ifndef ZRTOOL_JSON_H
#define ZRTOOL_JSON_H

#include <string>
#include <string_view>

namespace zrtool {

void AppendUtf8(std::string& out, std::u16string_view units);      // lone surrogates become U+FFFD
void AppendJsonText(std::string& out, std::u16string_view units);  // with quotes; lone surrogates stay, as \uXXXX
void AppendJsonText(std::string& out, std::string_view utf8);      // with quotes
void AppendJsonReal(std::string& out, double number);              // shortest that reads back, 9.0; NaN, infinity: null
std::string ShortestNumber(double number);                         // the same without .0: 9
void AppendBase64(std::string& out, const char* bytes, size_t size);  // without quotes

}  // namespace zrtool

#endif
