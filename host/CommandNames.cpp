// Names and thread safety of the commands, compiled in as one block of characters and rows of offsets into it: nothing
// to fill, parse or relocate at the start.
#include <algorithm>
#include <array>

#include "host/Host_Private.h"

namespace zrhost {

namespace {

struct Row {
    int id;
    std::string_view english, french;
    bool threadSafe;
};
constexpr Row kRows[] = {
#define ZR_COMMAND(id, english, french, safe) {id, english, french, safe != 0},
#define ZR_ALIAS(id, name)
#include "CommandNames.inc"
#undef ZR_COMMAND
#undef ZR_ALIAS
};

struct Alias {
    int id;
    std::string_view name;
};
constexpr Alias kAliases[] = {
#define ZR_COMMAND(id, english, french, safe)
#define ZR_ALIAS(id, name) {id, name},
#include "CommandNames.inc"
#undef ZR_COMMAND
#undef ZR_ALIAS
};

constexpr bool RowsAscend() {
    for (size_t i = 1; i < std::size(kRows); ++i)
        if (kRows[i].id <= kRows[i - 1].id) return false;
    return kRows[0].id > 0 && std::end(kRows)[-1].id <= Host::kLastCommand;
}
static_assert(RowsAscend(), "command numbers ascend from 1 to 2000");

// Row of a number, 0-based; -1 = none.
constexpr std::array<short, Host::kLastCommand + 1> MakeIndex() {
    std::array<short, Host::kLastCommand + 1> index{};
    for (short& row : index) row = -1;
    for (size_t i = 0; i < std::size(kRows); ++i) index[size_t(kRows[i].id)] = short(i);
    return index;
}
constexpr auto kIndex = MakeIndex();

// The rows as they are kept: names as places in one block of characters.
struct Name {
    uint16_t at = 0;
    uint8_t length = 0;
};
struct PackedRow {
    uint16_t id = 0;
    Name english, french;
    bool threadSafe = false;
};
struct Packed {
    std::array<PackedRow, std::size(kRows)> rows{};
    std::array<char, 60000> characters{};
};
constexpr Packed Pack() {
    Packed packed;
    size_t used = 0;
    auto put = [&](std::string_view text) {
        Name name{uint16_t(used), uint8_t(text.size())};
        for (char c : text) packed.characters[used++] = c;  // past the end does not compile
        return name;
    };
    for (size_t i = 0; i < std::size(kRows); ++i) {
        packed.rows[i].id = uint16_t(kRows[i].id);
        packed.rows[i].english = put(kRows[i].english);
        packed.rows[i].french = kRows[i].french.empty() ? packed.rows[i].english : put(kRows[i].french);
        packed.rows[i].threadSafe = kRows[i].threadSafe;
    }
    return packed;
}
constexpr Packed kPacked = Pack();

std::string_view Text(Name name) { return {kPacked.characters.data() + name.at, name.length}; }

std::string Fold(std::string_view name) {
    std::string folded(name);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = char(c + 32);
    return folded;
}

}  // namespace

CommandFacts FactsOfCommand(int id) {
    if (id < 1 || id > Host::kLastCommand || kIndex[size_t(id)] < 0) return {};
    const PackedRow& row = kPacked.rows[size_t(kIndex[size_t(id)])];
    return {Text(row.english), Text(row.french), row.threadSafe};
}

int NumberOfCommand(std::string_view name) {
    static const auto numbers = [] {  // English first, then French, then other spellings
        std::unordered_map<std::string, int> numbers;
        for (const PackedRow& row : kPacked.rows) numbers.emplace(Fold(Text(row.english)), row.id);
        for (const PackedRow& row : kPacked.rows) numbers.emplace(Fold(Text(row.french)), row.id);
        for (const Alias& alias : kAliases) numbers.emplace(Fold(alias.name), alias.id);
        return numbers;
    }();
    auto found = numbers.find(Fold(name));
    return found == numbers.end() ? 0 : found->second;
}

}  // namespace zrhost
