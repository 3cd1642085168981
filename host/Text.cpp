#include "host/Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <optional>

#include "host/Host.h"
#include "host/Unicode.h"

namespace zrhost {

// Weights of the Latin ranges --------------------------------------------------------------------------------------

namespace {

// The root order of the ASCII characters that count; what is not here (controls) does not count at all.
constexpr char kOrder[] = "\t\n\v\f\r _-,;:!?.'\"()[]{}@*/\\&#%`^+<=>|~$0123456789abcdefghijklmnopqrstuvwxyz";

// U+00A0 to U+017F: the ASCII character that has the same weight. '|' two letters, '~' does not count, '-' has a weight
// of its own outside these tables.
constexpr char kLatin[] =
    " ---------a--~----23-----1o-----"
    "aaaaaa|ceeeeiiiidnooooo-ouuuuy-|"
    "aaaaaa|ceeeeiiiidnooooo-ouuuuy-y"
    "aaaaaaccccccccddddeeeeeeeeeegggg"
    "gggghhhhiiiiiiiii-||jjkk-lllllll"
    "lllnnnnnn---oooooo||rrrrrrssssss"
    "sstttt--uuuuuuuuuuuuwwyyyzzzzzzs";
static_assert(sizeof kLatin - 1 == 0x180 - 0xA0);

constexpr size_t kTable = 0x180;
constexpr uint8_t kIgnored = 0, kOther = 0xFF, kPair = 0xFE;

constexpr std::array<uint8_t, kTable> MakeWeights() {
    std::array<uint8_t, kTable> weights{};
    for (size_t i = 0; kOrder[i]; ++i) {
        weights[size_t(kOrder[i])] = uint8_t(i + 1);
        if (kOrder[i] >= 'a' && kOrder[i] <= 'z') weights[size_t(kOrder[i] - 32)] = uint8_t(i + 1);
    }
    weights[0x85] = kOther;
    for (size_t i = 0; kLatin[i]; ++i) {
        char letter = kLatin[i];
        weights[0xA0 + i] = letter == '|'   ? kPair
                            : letter == '~' ? kIgnored
                            : letter == '-' ? kOther
                                            : weights[size_t(letter)];
    }
    return weights;
}
constexpr std::array<uint8_t, kTable> kWeights = MakeWeights();

constexpr struct {
    char16_t unit;
    char first, second;
} kPairs[] = {
    {0xC6, 'a', 'e'},  {0xDF, 's', 's'},  {0xE6, 'a', 'e'},  {0x132, 'i', 'j'},
    {0x133, 'i', 'j'}, {0x152, 'o', 'e'}, {0x153, 'o', 'e'},
};

uint8_t Weight(char16_t unit) { return unit < kTable ? kWeights[unit] : kOther; }

bool HasWildcard(std::u16string_view text) { return text.find(u'@') != text.npos; }

int Sign(int difference) { return (difference > 0) - (difference < 0); }

// Texts as rows of weights -----------------------------------------------------------------------------------------

// The weights of a text and the unit at which each begins: what two texts are compared and searched by.
struct Weights {
    std::vector<uint32_t> weights;
    std::vector<int32_t> offsets;

    void add(uint32_t weight, size_t offset) {
        weights.push_back(weight);
        offsets.push_back(int32_t(offset));
    }
    // By the tables here; false = a unit stands outside them, unless such units count by their code.
    bool latin(std::u16string_view text, bool othersByCode) {
        weights.reserve(text.size());
        offsets.reserve(text.size());
        for (size_t i = 0; i < text.size(); ++i) {
            uint8_t weight = Weight(text[i]);
            if (weight == kIgnored) continue;
            if (weight == kPair) {
                for (const auto& pair : kPairs)
                    if (pair.unit == text[i]) {
                        add(kWeights[size_t(pair.first)], i);
                        add(kWeights[size_t(pair.second)], i);
                    }
            } else if (weight != kOther) {
                add(weight, i);
            } else if (!othersByCode) {
                return false;
            } else if (text[i] < 0x300 || text[i] >= 0x370) {  // combining accents do not count
                add(0x100u + text[i], i);
            }
        }
        return true;
    }
    void unicode(const UnicodeTable& table, std::u16string_view text) {
        weights.resize(text.size() * 2 + 8);
        offsets.resize(weights.size());
        for (;;) {
            int32_t count = table.primaries(text.data(), int32_t(text.size()), weights.data(), offsets.data(),
                                            int32_t(weights.size()));
            bool fits = size_t(count) <= weights.size();
            weights.resize(size_t(count));
            offsets.resize(size_t(count));
            if (fits) return;
        }
    }
};

constexpr size_t kLongestForUnicode = size_t(1) << 29;  // lengths are 32-bit there

// Both texts by the same source of weights: the tables here if they can, else the Unicode object, else by code.
struct WeightPair {
    Weights left, right;
    WeightPair(std::u16string_view leftText, std::u16string_view rightText) {
        if (LatinOrderHolds() && left.latin(leftText, false) && right.latin(rightText, false)) return;
        left = {};
        right = {};
        const UnicodeTable* table = Unicode();
        if (table && leftText.size() < kLongestForUnicode && rightText.size() < kLongestForUnicode) {
            left.unicode(*table, leftText);
            right.unicode(*table, rightText);
        } else {
            left.latin(leftText, true);
            right.latin(rightText, true);
        }
    }
};

// Comparison -------------------------------------------------------------------------------------------------------

// The order of two texts by weights alone; nothing if a unit stands outside the tables.
std::optional<int> CompareLatin(std::u16string_view left, std::u16string_view right) {
    const char16_t *a = left.data(), *endA = a + left.size();
    const char16_t *b = right.data(), *endB = b + right.size();
    while (endA - a >= 4 && endB - b >= 4) {  // equal units need no table
        uint64_t x, y;
        std::memcpy(&x, a, 8);
        std::memcpy(&y, b, 8);
        if (x != y) break;
        a += 4;
        b += 4;
    }
    for (;;) {
        while (a < endA && Weight(*a) == kIgnored) ++a;
        while (b < endB && Weight(*b) == kIgnored) ++b;
        if (a == endA || b == endB) break;
        uint8_t x = Weight(*a), y = Weight(*b);
        if (x >= kPair || y >= kPair) {
            if (*a != *b) return std::nullopt;
        } else if (x != y) {
            return x < y ? -1 : 1;
        }
        ++a;
        ++b;
    }
    if (a == endA && b == endB) return 0;
    if (Weight(a < endA ? *a : *b) == kOther) return std::nullopt;  // may be an accent, which does not count
    return a < endA ? 1 : -1;
}

int CompareByCode(std::u16string_view left, std::u16string_view right) { return Sign(left.compare(right)); }

int CompareRows(const Weights& left, const Weights& right) {
    if (left.weights == right.weights) return 0;
    return left.weights < right.weights ? -1 : 1;
}

int CompareLetters(std::u16string_view left, std::u16string_view right) {
    if (LatinOrderHolds()) {
        if (std::optional<int> order = CompareLatin(left, right)) return *order;
    } else if (left == right) {
        return 0;
    }
    WeightPair pair(left, right);
    return CompareRows(pair.left, pair.right);
}

// Case and accents count: the order of the letters first, then lower case before upper, then the code.
int CompareExact(std::u16string_view left, std::u16string_view right) {
    if (left == right) return 0;
    std::optional<int> order = LatinOrderHolds() ? CompareLatin(left, right) : std::nullopt;
    if (order && *order != 0) return *order;
    if (order && left.size() == right.size()) {
        size_t at = size_t(std::mismatch(left.begin(), left.end(), right.begin()).first - left.begin());
        char16_t a = left[at], b = right[at];
        if (a < 0x80 && b < 0x80) return a > b ? -1 : 1;  // the same letter: the lower case one has the higher code
    }
    const UnicodeTable* table = Unicode();
    int byTable = 0;
    if (table && left.size() < kLongestForUnicode && right.size() < kLongestForUnicode)
        byTable = table->compare(left.data(), int32_t(left.size()), right.data(), int32_t(right.size()), 1);
    else byTable = CompareLetters(left, right);
    return byTable ? Sign(byTable) : CompareByCode(left, right);
}

// Wildcards --------------------------------------------------------------------------------------------------------

// Pieces between the @ of a pattern, found one after the other: the first at the start, the last at the end.
template <class Row>  // a span or view of units or weights
bool MatchPieces(Row text, std::span<const Row> pieces) {
    auto startsWith = [](Row row, Row piece) {
        return row.size() >= piece.size() && std::equal(piece.begin(), piece.end(), row.begin());
    };
    const Row& first = pieces.front();
    const Row& last = pieces.back();
    if (text.size() < first.size() + last.size() || !startsWith(text, first)) return false;
    Row tail(text.data() + (text.size() - last.size()), last.size());
    if (!startsWith(tail, last)) return false;
    Row middle(text.data() + first.size(), text.size() - first.size() - last.size());
    for (const Row& piece : pieces.subspan(1, pieces.size() - 2)) {
        auto at = std::search(middle.begin(), middle.end(), piece.begin(), piece.end());
        if (at == middle.end() && piece.size() > 0) return false;
        size_t behind = size_t(at - middle.begin()) + piece.size();
        middle = Row(middle.data() + behind, middle.size() - behind);
    }
    return true;
}

std::vector<std::u16string_view> SplitAtWildcards(std::u16string_view pattern) {
    std::vector<std::u16string_view> pieces;
    for (size_t start = 0;;) {
        size_t at = pattern.find(u'@', start);
        pieces.push_back(pattern.substr(start, at == pattern.npos ? pattern.npos : at - start));
        if (at == pattern.npos) return pieces;
        start = at + 1;
    }
}

// The common form "abc@" over ASCII; nothing if it is another form.
std::optional<bool> MatchAsciiPrefix(std::u16string_view text, std::u16string_view pattern) {
    if (!LatinOrderHolds() || pattern.find(u'@') + 1 != pattern.size()) return std::nullopt;
    size_t length = pattern.size() - 1;
    for (size_t i = 0; i < length; ++i) {
        if (i >= text.size() || text[i] >= 0x80 || pattern[i] >= 0x80) return std::nullopt;
        uint8_t x = kWeights[text[i]], y = kWeights[pattern[i]];
        if (x == kIgnored || y == kIgnored) return std::nullopt;
        if (x != y) return false;
    }
    return true;
}

bool MatchWildcard(std::u16string_view text, std::u16string_view pattern, bool exact) {
    std::vector<std::u16string_view> pieces = SplitAtWildcards(pattern);
    if (exact) return MatchPieces<std::u16string_view>(text, pieces);
    if (std::optional<bool> answer = MatchAsciiPrefix(text, pattern)) return *answer;

    using Row = std::span<const uint32_t>;
    bool latin = LatinOrderHolds();
    for (int source = latin ? 0 : 1; source < 2; ++source) {  // 0 the tables here, 1 the Unicode object or codes
        const UnicodeTable* table = source ? Unicode() : nullptr;
        std::vector<Weights> rows(pieces.size() + 1);
        auto weigh = [&](Weights& row, std::u16string_view units) {
            if (table && units.size() < kLongestForUnicode) row.unicode(*table, units);
            else return row.latin(units, source == 1);
            return true;
        };
        bool known = weigh(rows.back(), text);
        for (size_t i = 0; known && i < pieces.size(); ++i) known = weigh(rows[i], pieces[i]);
        if (!known) continue;
        std::vector<Row> spans;
        for (const Weights& row : rows) spans.emplace_back(row.weights);
        Row whole = spans.back();
        spans.pop_back();
        return MatchPieces<Row>(whole, spans);
    }
    return false;
}

}  // namespace

int CompareText(std::u16string_view left, std::u16string_view right, bool exact, bool wildcard) {
    if (wildcard && HasWildcard(right)) {
        if (MatchWildcard(left, right, exact)) return 0;
        int order = exact ? CompareExact(left, right) : CompareLetters(left, right);
        return order ? order : 1;
    }
    return exact ? CompareExact(left, right) : CompareLetters(left, right);
}

bool EqualNames(std::u16string_view left, std::u16string_view right) {
    if (left.size() != right.size()) return false;
    for (size_t i = 0; i < left.size(); ++i) {
        char16_t a = left[i], b = right[i];
        if (a == b) continue;
        if ((a | 0x20) != (b | 0x20) || (a | 0x20) < u'a' || (a | 0x20) > u'z') return false;
    }
    return true;
}

std::u16string FoldName(std::u16string_view name) {
    std::u16string folded(name);
    for (char16_t& unit : folded)
        if (unit >= u'A' && unit <= u'Z') unit |= 0x20;
    return folded;
}

// Search -----------------------------------------------------------------------------------------------------------

namespace {

// The matches of a row of weights, as units of the text; at most max.
void SearchRow(const Weights& text, const Weights& pattern, size_t textLength, size_t base, size_t max,
               std::vector<Match>* out) {
    const auto& row = text.weights;
    const auto& sought = pattern.weights;
    if (sought.empty()) return;
    for (auto from = row.begin(); out->size() < max;) {
        auto at = std::search(from, row.end(), sought.begin(), sought.end());
        if (at == row.end()) return;
        size_t first = size_t(at - row.begin()), behind = first + sought.size();
        // Half of a character that weighs as two letters is no match.
        bool whole = (first == 0 || text.offsets[first - 1] != text.offsets[first]) &&
                     (behind == row.size() || text.offsets[behind] != text.offsets[behind - 1]);
        if (!whole) {
            from = at + 1;
            continue;
        }
        size_t start = size_t(text.offsets[first]);
        size_t end = behind < row.size() ? size_t(text.offsets[behind]) : textLength;
        out->push_back({base + start, end - start});
        from = at + std::ptrdiff_t(sought.size());
    }
}

std::vector<Match> FindExact(std::u16string_view text, std::u16string_view pattern, size_t start, size_t max) {
    std::vector<Match> found;
    while (found.size() < max) {
        size_t at = text.find(pattern, start);
        if (at == text.npos) break;
        found.push_back({at, pattern.size()});
        start = at + pattern.size();
    }
    return found;
}

// Over ASCII letters alone, straight in the text. Nothing: a unit on the way stands outside.
std::optional<std::vector<Match>> FindAscii(std::u16string_view text, std::u16string_view pattern, size_t start,
                                            size_t max) {
    if (!LatinOrderHolds()) return std::nullopt;
    auto plain = [](char16_t unit) { return unit < 0x80 && kWeights[unit] != kIgnored; };
    if (!std::all_of(pattern.begin(), pattern.end(), plain)) return std::nullopt;
    std::vector<Match> found;
    uint8_t first = kWeights[pattern[0]];
    for (size_t i = start; i < text.size() && found.size() < max; ++i) {
        if (!plain(text[i])) return std::nullopt;
        if (kWeights[text[i]] != first) continue;
        size_t matched = 1;
        while (matched < pattern.size() && i + matched < text.size() && plain(text[i + matched]) &&
               kWeights[text[i + matched]] == kWeights[pattern[matched]])
            ++matched;
        size_t behind = i + matched;
        if (behind < text.size() && !plain(text[behind])) return std::nullopt;  // may belong to the last letter
        if (matched < pattern.size()) continue;
        found.push_back({i, pattern.size()});
        i = behind - 1;
    }
    return found;
}

}  // namespace

std::vector<Match> FindAllText(std::u16string_view text, std::u16string_view pattern, size_t start, bool exact,
                               size_t max) {
    if (pattern.empty() || start >= text.size() || max == 0) return {};
    if (exact) return FindExact(text, pattern, start, max);
    if (auto found = FindAscii(text, pattern, start, max)) return *found;
    std::u16string_view rest = text.substr(start);
    WeightPair pair(rest, pattern);
    std::vector<Match> found;
    SearchRow(pair.left, pair.right, rest.size(), start, max, &found);
    return found;
}

Match FindText(std::u16string_view text, std::u16string_view pattern, size_t start, bool exact) {
    std::vector<Match> found = FindAllText(text, pattern, start, exact, 1);
    return found.empty() ? Match{} : found.front();
}

// Case -------------------------------------------------------------------------------------------------------------

namespace {

bool IsAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

using Convert = int32_t (*)(const char16_t*, int32_t, char16_t*, int32_t);

std::u16string Through(Convert convert, std::u16string_view text) {
    std::u16string out(text.size() + 16, u'\0');
    for (;;) {
        int32_t length = convert(text.data(), int32_t(text.size()), out.data(), int32_t(out.size()));
        if (length < 0) return std::u16string(text);
        bool fits = size_t(length) <= out.size();
        out.resize(size_t(length));
        if (fits) return out;
    }
}

char16_t LatinUpper(char16_t unit) {
    if (unit >= u'a' && unit <= u'z') return unit - 32;
    if (unit < 0xE0 || unit > 0xFE || unit == 0xF7) return unit == 0xFF ? 0x178 : unit;
    return unit - 32;
}

char16_t LatinLower(char16_t unit) {
    if ((unit >= u'A' && unit <= u'Z') || (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7)) return unit + 32;
    return unit;
}

std::u16string EachUnit(std::u16string_view text, char16_t (*convert)(char16_t)) {
    std::u16string out(text);
    for (char16_t& unit : out) unit = convert(unit);
    return out;
}

char16_t LatinBase(char16_t unit) {
    if (unit < 0xC0 || unit >= kTable || unit == 0xF0 || unit == 0xD0) return unit;
    char base = kLatin[unit - 0xA0];
    if (base < 'a' || base > 'z') return unit;
    bool upper = unit < 0x100 ? unit < 0xE0 : IsUpper(unit);
    return upper ? char16_t(base - 32) : char16_t(base);
}

const UnicodeTable* UnicodeFor(std::u16string_view text) {
    return text.size() < kLongestForUnicode ? Unicode() : nullptr;
}

}  // namespace

std::u16string StripAccents(std::u16string_view text) {
    if (IsAscii(text)) return std::u16string(text);
    if (const UnicodeTable* table = UnicodeFor(text)) return Through(table->stripAccents, text);
    return EachUnit(text, LatinBase);
}

std::u16string Upper(std::u16string_view text, bool keepAccents) {
    if (IsAscii(text)) return EachUnit(text, LatinUpper);
    if (!keepAccents) return Upper(StripAccents(text), true);
    if (const UnicodeTable* table = UnicodeFor(text)) return Through(table->upper, text);
    return EachUnit(text, LatinUpper);
}

std::u16string Lower(std::u16string_view text, bool keepAccents) {
    if (IsAscii(text)) return EachUnit(text, LatinLower);
    if (!keepAccents) return Lower(StripAccents(text), true);
    if (const UnicodeTable* table = UnicodeFor(text)) return Through(table->lower, text);
    return EachUnit(text, LatinLower);
}

bool IsLetter(char16_t unit) {
    if (unit < 0x80) return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
    if (unit < 0x180) return unit >= 0xC0 ? unit != 0xD7 && unit != 0xF7 : unit == 0xAA || unit == 0xB5 || unit == 0xBA;
    const UnicodeTable* table = Unicode();
    return table ? table->isLetter(unit) : false;
}

bool IsUpper(char16_t unit) {
    if (unit < 0x80) return unit >= u'A' && unit <= u'Z';
    if (unit < 0x100) return unit >= 0xC0 && unit <= 0xDE && unit != 0xD7;
    if (unit < 0x138 || (unit >= 0x14A && unit < 0x178)) return (unit & 1) == 0;
    if (unit < 0x149 || (unit >= 0x179 && unit < 0x17F)) return (unit & 1) == 1;
    if (unit == 0x178) return true;
    const UnicodeTable* table = Unicode();
    return table ? table->isUpper(unit) : false;
}

bool IsSpace(char16_t unit) {
    if (unit < 0x80) return unit == u' ' || (unit >= 9 && unit <= 13);
    return unit == 0x85 || unit == 0xA0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 ||
           unit == 0x2029 || unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

}  // namespace zrhost
