// Commands by number: String.
#include <algorithm>
#include <cctype>
#include <cmath>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Formats.h"
#include "host/Objects.h"
#include "host/Text.h"

namespace zrhost {
namespace {

constexpr size_t kNone = std::u16string_view::npos;
constexpr size_t kMaximumTextUnits = size_t(1) << 30;

// Values as text ---------------------------------------------------------------------------------------------------

constexpr int kBlankIfNull = 100;  // added to a date or time format
constexpr int kShortDate = 1, kTimeHoursMinutesSeconds = 1, kIsoDate = 8;

std::u16string BooleanText(const Host& host, bool boolean) {
    if (host.options().language == "fr") return boolean ? u"Vrai" : u"Faux";
    return boolean ? u"True" : u"False";
}

// A number format has up to three parts: positive;negative;zero. A Boolean takes the first or the last.
std::u16string BooleanByFormat(bool boolean, std::u16string_view format) {
    const size_t first = format.find(u';'), last = format.rfind(u';');
    if (boolean || first == kNone) return std::u16string(boolean ? format.substr(0, first) : u"");
    return std::u16string(format.substr(last + 1));
}

std::u16string DateText(const CommandCall& call) {
    const Date date = call.date(1);
    const int format = call.integer(2, kShortDate);
    const bool empty = date == Date{};
    if (empty && format >= kBlankIfNull) return {};
    if (call.has(3) && (format % kBlankIfNull) == kIsoDate) {  // 2024-02-29T13:45:00
        return FormatPattern(date, 0, u"yyyy-MM-dd") + u"T" + FormatPattern(date, call.time(3), u"HH:mm:ss");
    }
    std::u16string text = FormatDate(date, format);
    if (call.has(3)) text += u" " + FormatTime(call.time(3), kTimeHoursMinutesSeconds);
    return text;
}

std::u16string TimeText(const CommandCall& call) {
    const int format = call.integer(2, kTimeHoursMinutesSeconds);
    if (call.time(1) == 0 && format >= kBlankIfNull) return {};
    return FormatTime(call.time(1), format % kBlankIfNull ? format % kBlankIfNull : kTimeHoursMinutesSeconds);
}

// 10 String(value; [format]; [time]): a number with a format text, a date or time with a format number.
void String(CommandCall& call) {
    switch (call.kind(1)) {
        case eVK_Real: return call.setText(FormatReal(call.number(1), call.text(2)));
        case eVK_Integer:
        case eVK_Longint: return call.setText(FormatLongint(call.integer64(1), call.text(2)));
        case eVK_Date: return call.setText(DateText(call));
        case eVK_Time:
            if (call.isText(2)) return call.setText(FormatLongint(call.time(1), call.text(2)));
            return call.setText(TimeText(call));
        case eVK_Boolean:
            return call.setText(call.isText(2) ? BooleanByFormat(call.boolean(1), call.text(2))
                                               : BooleanText(call.host, call.boolean(1)));
        case eVK_Null: return call.setText(u"null");
        default: return call.setText(call.text(1));  // a text as it is; empty for what has no text
    }
}

// The digits of a base from the left: a sign and a 0x before them are accepted, the first other unit ends the number.
double NumberInBase(std::u16string_view text, int base) {
    size_t at = 0;
    while (at < text.size() && IsSpace(text[at])) ++at;
    const bool negative = at < text.size() && text[at] == u'-';
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;
    if (base == 16 && at + 1 < text.size() && text[at] == u'0' && (text[at + 1] | 32) == u'x') at += 2;
    double number = 0;
    for (; at < text.size(); ++at) {
        const char16_t unit = text[at], letter = unit | 32;
        const int digit = unit >= u'0' && unit <= u'9'       ? unit - u'0'
                          : letter >= u'a' && letter <= u'z' ? letter - u'a' + 10
                                                             : 99;
        if (digit >= base || unit > 0x7F) break;
        number = number * base + digit;
    }
    return negative ? -number : number;
}

// 11 Num(text or Boolean or number; [separator or base])
void Num(CommandCall& call) {
    if (!call.isText(1)) return call.setReal(call.number(1));
    if (call.isNumber(2)) {
        const int base = call.integer(2);
        return call.setReal(base >= 2 && base <= 36 ? NumberInBase(call.text(1), base) : 0);
    }
    const std::u16string_view separator = call.text(2);
    call.setReal(ReadNumber(call.text(1), separator.empty() ? CurrentLocale().decimal : separator[0]));
}

// Parts of a text --------------------------------------------------------------------------------------------------

// 12 Substring(text; first; [count]): a first below 1 counts as 1.
void Substring(CommandCall& call) {
    const std::u16string_view text = call.text(1);
    const size_t first = size_t(std::max(1, call.integer(2, 1))) - 1;
    const int count = call.integer(3, INT32_MAX);
    if (first >= text.size() || count <= 0) return call.setText(u"");
    call.setText(text.substr(first, size_t(count)));
}

// 16 Length(text): UTF-16 units
void Length(CommandCall& call) { call.setLongint(int32_t(call.text(1).size())); }

// 90 Char(code)
void Char(CommandCall& call) {
    const char16_t unit = char16_t(call.integer(1));
    call.setText(std::u16string_view(&unit, 1));
}

// 91 Character code(text): of its first unit, 0 for the empty text
void CharacterCode(CommandCall& call) {
    const std::u16string_view text = call.text(1);
    call.setLongint(text.empty() ? 0 : text[0]);
}

// 231 Insert string(source; what; where): before the position; at the ends if it lies outside.
void InsertString(CommandCall& call) {
    std::u16string text(call.text(1));
    const size_t at = std::min(size_t(std::max(1, call.integer(3, 1))) - 1, text.size());
    call.setText(text.insert(at, call.text(2)));
}

// 232 Delete string(source; where; count): a position below 1 counts as 1.
void DeleteString(CommandCall& call) {
    std::u16string text(call.text(1));
    const size_t at = size_t(std::max(1, call.integer(2, 1))) - 1;
    const int count = call.integer(3);
    if (at < text.size() && count > 0) text.erase(at, size_t(count));
    call.setText(text);
}

// 234 Change string(source; characters; where): overlays, the length stays; a position outside changes nothing.
void ChangeString(CommandCall& call) {
    std::u16string text(call.text(1));
    const std::u16string_view over = call.text(2);
    const int where = call.integer(3);
    if (where >= 1 && size_t(where) <= text.size()) {
        const size_t count = std::min(over.size(), text.size() - size_t(where) + 1);
        text.replace(size_t(where) - 1, count, over.substr(0, count));
    }
    call.setText(text);
}

// Searching --------------------------------------------------------------------------------------------------------

// 15 Position(find; text; [start]; [lengthFound]; [*]): from 1, 0 if there is none; * compares units.
void Position(CommandCall& call) {
    const bool exact = call.takeStar();
    const std::u16string_view wanted = call.text(1), text = call.text(2);
    const size_t start = size_t(std::max(1, call.integer(3, 1))) - 1;
    const Match match = wanted.empty() || start >= text.size() ? Match{} : FindText(text, wanted, start, exact);
    const bool found = match.at != kNone;
    if (call.has(4)) call.assignLongint(4, found ? int32_t(match.length) : 0);
    call.setLongint(found ? int32_t(match.at) + 1 : 0);
}

// 233 Replace string(source; old; new; [howMany]; [*]): what was put in is not searched again.
void ReplaceString(CommandCall& call) {
    const bool exact = call.takeStar();
    const std::u16string_view text = call.text(1), old = call.text(2), with = call.text(3);
    const size_t most = size_t(std::max(0, call.integer(4, INT32_MAX)));
    std::u16string out;
    size_t at = 0, done = 0;
    if (!old.empty() && most != 0)
        for (const Match& match : FindAllText(text, old, 0, exact, most)) {
            out.append(text.substr(at, match.at - at)).append(with);
            at = match.at + match.length;
            // Guard: a short text can ask for a result that no memory holds.
            const bool tooLong = out.size() + (text.size() - at) > kMaximumTextUnits;
            if (tooLong || ((++done & 0xFFF) == 0 && call.interrupted())) return call.setOK(false);
        }
    call.setText(out.append(text.substr(at)));
}

// 1554 Split string(text; separator; [options]): a collection; 1 drops empty texts, 2 trims spaces.
void SplitString(CommandCall& call) {
    const std::u16string_view text = call.text(1), separator = call.text(2);
    const int options = call.integer(3);
    Ref<Collection> parts = NewCollection();
    auto add = [&](std::u16string_view part) {
        if (options & 2) {
            while (!part.empty() && part.front() == u' ') part.remove_prefix(1);
            while (!part.empty() && part.back() == u' ') part.remove_suffix(1);
        }
        if (!part.empty() || !(options & 1)) parts->push(Value(part));
    };
    if (separator.empty()) {
        for (size_t i = 0; i < text.size(); ++i) add(text.substr(i, 1));
        return call.setCollection(parts);
    }
    for (size_t at = 0;;) {
        const size_t next = text.find(separator, at);
        add(text.substr(at, next == kNone ? kNone : next - at));
        if (next == kNone) break;
        at = next + separator.size();
    }
    call.setCollection(parts);
}

// 1756 Compare strings(left; right): -1, 0 or 1 as the language orders texts. With options it is not served.
void CompareStrings(CommandCall& call) {
    if (call.integer(3) != 0) return call.notServed();
    call.setLongint(CompareText(call.text(1), call.text(2), /*exact*/ false, /*wildcard*/ false));
}

bool IsWordUnit(std::u16string_view text, size_t i) {
    const char16_t unit = text[i];
    if ((unit >= u'0' && unit <= u'9') || IsLetter(unit)) return true;
    const bool apostrophe = unit == u'\'' || unit == u'\u2019';
    return apostrophe && i > 0 && i + 1 < text.size() && IsLetter(text[i - 1]) && IsLetter(text[i + 1]);
}

// 1141 GET TEXT KEYWORDS(text; words; [*]): runs of letters and digits; * lists each once.
void GetTextKeywords(CommandCall& call) {
    const bool once = call.takeStar();
    const std::u16string_view text = call.text(1);
    std::vector<std::u16string> words;
    for (size_t i = 0; i < text.size();) {
        size_t end = i;
        while (end < text.size() && IsWordUnit(text, end)) ++end;
        const std::u16string_view word = text.substr(i, end - i);
        const bool known = once && std::any_of(words.begin(), words.end(), [&](const std::u16string& other) {
                               return CompareText(other, word, /*exact*/ false, /*wildcard*/ false) == 0;
                           });
        if (!word.empty() && !known) words.emplace_back(word);
        i = end + 1;
        if (call.interrupted()) return call.setOK(false);
    }
    call.setOK(call.assignTextArray(2, words));
}

// Case and blanks --------------------------------------------------------------------------------------------------

// 13 Uppercase(text; [*]): * keeps the accents.
void Uppercase(CommandCall& call) {
    const bool keep = call.takeStar();
    call.setText(Upper(call.text(1), keep));
}

// 14 Lowercase(text; [*]): * keeps the accents.
void Lowercase(CommandCall& call) {
    const bool keep = call.takeStar();
    call.setText(Lower(call.text(1), keep));
}

std::u16string_view Trimmed(std::u16string_view text, bool start, bool end) {
    while (start && !text.empty() && IsSpace(text.front())) text.remove_prefix(1);
    while (end && !text.empty() && IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

// 1853 Trim(text)
void Trim(CommandCall& call) { call.setText(Trimmed(call.text(1), true, true)); }

// 1854 Trim start(text)
void TrimStart(CommandCall& call) { call.setText(Trimmed(call.text(1), true, false)); }

// 1855 Trim end(text)
void TrimEnd(CommandCall& call) { call.setText(Trimmed(call.text(1), false, true)); }

// Charsets ---------------------------------------------------------------------------------------------------------

std::string Charset(const CommandCall& call, int i) {  // by name or number
    return call.isText(i) ? call.utf8(i) : CharsetByNumber(call.integer(i));
}

// 1012 Convert to text(blob; charset): OK 0 for an unknown charset
void ConvertToText(CommandCall& call) {
    std::u16string text;
    call.setOK(DecodeText(call.blob(1), Charset(call, 2), &text));
    call.setText(text);
}

// 1011 CONVERT FROM TEXT(text; charset; blob): OK 0 for an unknown charset, and the BLOB stays.
void ConvertFromText(CommandCall& call) {
    std::vector<uint8_t> bytes;
    call.setOK(EncodeText(call.text(1), Charset(call, 2), &bytes) && call.assignBlob(3, bytes));
}

// 991 Get localized string(name): this host has no resource files: empty, OK 0.
void GetLocalizedString(CommandCall& call) {
    call.setText(u"");
    call.setOK(false);
}

constexpr CommandRow kRows[] = {
    {10, String},
    {11, Num},
    {12, Substring},
    {13, Uppercase},
    {14, Lowercase},
    {15, Position},
    {16, Length},
    {90, Char},
    {91, CharacterCode},
    {231, InsertString},
    {232, DeleteString},
    {233, ReplaceString},
    {234, ChangeString},
    {991, GetLocalizedString},
    {1011, ConvertFromText},
    {1012, ConvertToText},
    {1141, GetTextKeywords},
    {1554, SplitString},
    {1756, CompareStrings},
    {1853, Trim},
    {1854, TrimStart},
    {1855, TrimEnd},
};

}  // namespace

std::u16string TextOf(const Host& host, const Value& value) {
    switch (value.kind()) {
        case eVK_Real: return FormatReal(value.number(), u"");
        case eVK_Integer:
        case eVK_Longint: return FormatLongint(value.integer(), u"");
        case eVK_Date: return FormatDate(value.date(), kShortDate);
        case eVK_Time: return FormatTime(value.integer(), kTimeHoursMinutesSeconds);
        case eVK_Boolean: return BooleanText(host, value.boolean());
        case eVK_Null: return u"null";
        default: return value.text();
    }
}

std::span<const CommandRow> commandsText() { return kRows; }

}  // namespace zrhost
