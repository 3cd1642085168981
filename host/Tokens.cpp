#include "host/Tokens.h"

#include "host/Host.h"
#include "host/Text.h"

namespace zrhost {
namespace {

constexpr uint16_t kMark = 0x3444, kSwappedMark = 0x4434, kVersion = 1;
constexpr char16_t kCommand = 0xE000, kUnit = 0xE001;
constexpr size_t kHeader = 2;
constexpr size_t kLongestName = 64;

bool IsNameUnit(char16_t unit) { return IsLetter(unit) || unit == u'_' || (unit >= u'0' && unit <= u'9'); }

uint16_t Swapped(uint16_t word) { return uint16_t(word << 8 | word >> 8); }

// Where a string or comment that begins at a position ends; the position itself if none begins there.
size_t EndOfOpaque(std::u16string_view code, size_t at) {
    if (code[at] == u'"') {
        size_t end = at + 1;
        while (end < code.size() && code[end] != u'"' && code[end] != u'\r' && code[end] != u'\n')
            end += code[end] == u'\\' && end + 1 < code.size() ? 2 : 1;
        return std::min(end + 1, code.size());
    }
    if (code.substr(at, 2) == u"//") return std::min(code.find_first_of(u"\r\n", at), code.size());
    if (code.substr(at, 2) == u"/*") {
        const size_t end = code.find(u"*/", at + 2);
        return end == code.npos ? code.size() : end + 2;
    }
    return at;
}

// The longest command name that begins at a position and ends with a word: its number, 0 = none.
int CommandAt(const Host& host, std::u16string_view code, size_t at, size_t* length) {
    size_t end = at;
    const size_t limit = std::min(code.size(), at + kLongestName);
    while (end < limit && (IsNameUnit(code[end]) || code[end] == u' ')) ++end;
    for (; end > at; --end) {
        const bool wordEnds = code[end - 1] != u' ' && (end == code.size() || !IsNameUnit(code[end]));
        if (!wordEnds) continue;
        if (int number = host.commandNumber(ToUtf8(code.substr(at, end - at)))) {
            *length = end - at;
            return number;
        }
    }
    return 0;
}

}  // namespace

std::vector<uint16_t> Tokenize(const Host& host, std::u16string_view code) {
    std::vector<uint16_t> words = {kMark, kVersion};
    words.reserve(code.size() + kHeader);
    auto unit = [&](char16_t value) {
        if (value == kCommand || value == kUnit) words.push_back(kUnit);
        words.push_back(value);
    };
    for (size_t at = 0; at < code.size();) {
        size_t length = 0;
        if (const size_t end = EndOfOpaque(code, at); end > at) {
            while (at < end) unit(code[at++]);
        } else if (!IsLetter(code[at])) {
            const bool prefix = code[at] == u'$' || code[at] == u'>' || code[at] == u'.' || code[at] == u'_';
            unit(code[at++]);
            while (prefix && at < code.size() && IsNameUnit(code[at])) unit(code[at++]);  // a variable or member
        } else if (int number = CommandAt(host, code, at, &length)) {
            words.push_back(kCommand);
            words.push_back(uint16_t(number));
            at += length;
        } else {
            while (at < code.size() && IsNameUnit(code[at])) unit(code[at++]);
        }
    }
    return words;
}

std::optional<std::u16string> Detokenize(const Host& host, std::span<const uint16_t> words) {
    if (words.size() < kHeader || words[0] != kMark || words[1] != kVersion) return std::nullopt;
    std::u16string code;
    code.reserve(words.size());
    for (size_t at = kHeader; at < words.size(); ++at) {
        const bool escape = words[at] == kCommand || words[at] == kUnit;
        if (escape && at + 1 == words.size()) return std::nullopt;
        if (words[at] == kUnit) {
            code += char16_t(words[++at]);
        } else if (words[at] == kCommand) {
            const CommandInfo info = host.command(words[++at]);
            if (info.id == 0) return std::nullopt;
            code += FromUtf8(info.name);
        } else {
            code += char16_t(words[at]);
        }
    }
    return code;
}

bool ByteSwapTokens(std::span<uint16_t> words) {
    if (words.size() < kHeader || (words[0] != kMark && words[0] != kSwappedMark)) return false;
    for (uint16_t& word : words) word = Swapped(word);
    return true;
}

}  // namespace zrhost
