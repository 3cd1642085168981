// The host's own tokens of code: text in which each command stands as its number, so that it reads in the language of
// the host that shows it. They are nothing the module reads.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zrhost {

class Host;

// 16-bit words: 0x3444, version 1, then the units of the code. 0xE000 and a number stand for a command's name, 0xE001
// and a unit for that unit. Names within strings and comments stay text.
std::vector<uint16_t> Tokenize(const Host& host, std::u16string_view code);

// The code in the host's language; none if the words are no tokens, of another version or of the other byte order.
std::optional<std::u16string> Detokenize(const Host& host, std::span<const uint16_t> words);

// Turns the byte order of tokens of either order. False = the words are no tokens, and stay.
bool ByteSwapTokens(std::span<uint16_t> words);

}  // namespace zrhost
