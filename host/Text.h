// Text as the language compares and converts it. What needs Unicode tables is behind the object zr-unicode, opened at
// the first need; without it the answers are those of the Latin ranges.
#ifndef ZRHOST_TEXT_H
#define ZRHOST_TEXT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/ZR_HostInterface.h"

namespace zrhost {

// -1, 0 or 1. Not exact: case and accents do not count, "ß" equals "ss", ligatures their letters. Exact: both count.
// Wildcard: each @ on the right stands for any units, none among them; the answer is 0 for a match, and the order of
// the texts else.
int CompareText(std::u16string_view left, std::u16string_view right, bool exact, bool wildcard);
inline bool EqualText(std::u16string_view left, std::u16string_view right) {  // as = does, with @ on the right
    return CompareText(left, right, /*exact*/ false, /*wildcard*/ true) == 0;
}
// ASCII letters in any case, all else exactly: names of variables and methods.
bool EqualNames(std::u16string_view left, std::u16string_view right);
std::u16string FoldName(std::u16string_view name);  // the key under which a name is kept

struct Match {
    size_t at = std::u16string_view::npos;  // npos = none
    size_t length = 0;                      // units of the text; may differ from those of the pattern
};
// The first match at or after start. Exact compares units; else as CompareText. The wildcard has no meaning here.
Match FindText(std::u16string_view text, std::u16string_view pattern, size_t start, bool exact);
// All matches, none overlapping, at most max: one walk, where a loop of FindText would weigh the text again each time.
std::vector<Match> FindAllText(std::u16string_view text, std::u16string_view pattern, size_t start, bool exact,
                               size_t max = std::u16string_view::npos);

std::u16string Upper(std::u16string_view text, bool keepAccents);  // accents are stripped unless kept
std::u16string Lower(std::u16string_view text, bool keepAccents);
std::u16string StripAccents(std::u16string_view text);
bool IsLetter(char16_t unit);
bool IsSpace(char16_t unit);
bool IsUpper(char16_t unit);

// Charsets. Named as the internet names them ("UTF-8", "iso-8859-1", "MacRoman"), or by their number (MIBEnum).
// Invalid input becomes U+FFFD, or what the charset substitutes. False = there is no such charset; out is empty.
bool DecodeText(std::span<const uint8_t> bytes, std::string_view charset, std::u16string* out);
bool EncodeText(std::u16string_view text, std::string_view charset, std::vector<uint8_t>* out);
// PA_4DCharSet numbers, and MIB numbers above 1000 and below 0 as the language takes them; empty = unknown.
std::string CharsetByNumber(int number);
bool IsCharset(std::string_view charset);

// Bytes in one charset of PA_4DCharSet to bytes in another, at most room of them: ends at the last whole character
// that fits. Bytes written; -1 = unknown charset.
int64_t ConvertBytes(std::span<const uint8_t> source, int from, uint8_t* target, int64_t room, int to);

}  // namespace zrhost

#endif
