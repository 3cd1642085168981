#include "host/Formats.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <ctime>
#include <vector>

#include "host/Host.h"
#include "host/Text.h"

namespace zrhost {

// Numbers ----------------------------------------------------------------------------------------------------------

namespace {

constexpr int kSignificant = 13;  // digits of a number without a format

std::u16string Widen(std::string_view ascii) { return std::u16string(ascii.begin(), ascii.end()); }

bool IsPlaceholder(char16_t unit) { return unit == u'#' || unit == u'0' || unit == u'^' || unit == u'*'; }

// INF and nothing for what is no number; nothing else is answered here.
bool Unusual(double number, std::u16string* out) {
    if (std::isfinite(number)) return false;
    *out = std::isnan(number) ? u"" : number > 0 ? u"INF" : u"-INF";
    return true;
}

// The shortest text within 13 significant digits: whole numbers below 1e15 in full, others with an exponent outside
// 1e-5..1e15.
std::string Shortest(double number) {
    char digits[400];
    if (number == std::floor(number) && std::fabs(number) < 1e15) {
        auto end = std::to_chars(digits, digits + sizeof digits, int64_t(number)).ptr;
        return std::string(digits, end);
    }
    auto end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::scientific, kSignificant - 1).ptr;
    std::string text(digits, end);
    size_t e = text.find('e');
    int exponent = 0;
    const char* from = text.data() + e + 1 + (text[e + 1] == '+');
    std::from_chars(from, text.data() + text.size(), exponent);
    std::string mantissa = text.substr(0, e);
    mantissa.erase(mantissa.find_last_not_of('0') + 1);
    if (mantissa.back() == '.') mantissa.pop_back();
    if (exponent >= -5 && exponent < 15) {
        int decimals = std::max(0, kSignificant - 1 - exponent);
        end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, decimals).ptr;
        text.assign(digits, end);
        if (text.find('.') != text.npos) {
            text.erase(text.find_last_not_of('0') + 1);
            if (text.back() == '.') text.pop_back();
        }
        return text;
    }
    return mantissa + (exponent < 0 ? "e-" : "e+") + std::to_string(std::abs(exponent));
}

std::u16string Localised(std::string_view text, const Locale& locale) {
    std::u16string out = Widen(text);
    for (char16_t& unit : out)
        if (unit == u'.') unit = locale.decimal;
    return out;
}

// "&3": that many significant digits and an exponent, 7.60e+2.
std::u16string Scientific(double number, int significant, const Locale& locale) {
    char digits[400];
    auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::scientific,
                             std::clamp(significant, 1, 40) - 1)
                   .ptr;
    std::string text(digits, end);
    size_t at = text.find('e') + 2;  // the exponent without the zeros that fill it
    while (at + 1 < text.size() && text[at] == '0') text.erase(at, 1);
    return Localised(text, locale);
}

std::u16string Hexadecimal(double number, bool prefixed) {
    uint32_t bits = uint32_t(Value(number).integer());
    if (number > 2147483647.0 && number <= 4294967295.0) bits = uint32_t(number);
    char digits[16];
    auto end = std::to_chars(digits, digits + sizeof digits, bits, 16).ptr;
    std::string text(digits, end);
    for (char& c : text)
        if (c >= 'a') c = char(c - 32);
    if (!prefixed) return u"$" + Widen(text);
    size_t width = bits > 0xFFFF ? 8 : 4;
    return u"0x" + std::u16string(width - text.size(), u'0') + Widen(text);
}

// One part of a format between ";".
class NumberPart {
  public:
    NumberPart(std::u16string_view part, const Locale& locale) : locale_(locale) {
        size_t first = part.size(), last = 0;
        for (size_t i = 0; i < part.size(); ++i)
            if (IsPlaceholder(part[i])) {
                first = std::min(first, i);
                last = i;
            }
        if (first == part.size()) {
            prefix_ = part;
            return;
        }
        if (first > 0 && part[first - 1] == u'.') --first;
        if (last + 1 < part.size() && part[last + 1] == u'.') ++last;
        prefix_ = part.substr(0, first);
        suffix_ = part.substr(last + 1);
        body_ = part.substr(first, last + 1 - first);
        point_ = std::min(body_.find(u'.'), body_.size());
        for (size_t i = 0; i < body_.size(); ++i)
            if (IsPlaceholder(body_[i])) ++(i < point_ ? wholes_ : decimals_);
    }

    bool literal() const { return body_.empty(); }

    // signs: a negative number shows its sign, for the format has no part of its own for it.
    std::u16string format(double number, bool signs) const {
        if (literal()) return std::u16string(prefix_);
        char buffer[400];
        auto end = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(number), std::chars_format::fixed,
                                 std::min(decimals_, 60))
                       .ptr;
        std::string_view text(buffer, size_t(end - buffer));
        std::string whole(text.substr(0, text.find('.')));
        std::string fraction(text.find('.') == text.npos ? "" : text.substr(text.find('.') + 1));
        fraction.resize(size_t(decimals_), '0');
        if (whole == "0") whole.clear();
        bool zero = whole.empty() && fraction.find_first_not_of('0') == fraction.npos;
        bool negative = signs && number < 0 && !zero;

        std::u16string prefix(prefix_), suffix(suffix_);
        if (signs && ShowSign(&prefix, &suffix, number < 0 && !zero)) negative = false;
        std::u16string wholes;
        if (!placeWhole(whole, &negative, &wholes)) return std::u16string(size_t(wholes_ + decimals_), u'<');
        std::u16string out = prefix + wholes + placeFraction(fraction) + suffix;
        return negative ? u"-" + out : out;
    }

  private:
    // A sign that the format itself places: "-" is shown for negative numbers alone, "+" becomes "-" for them.
    static bool ShowSign(std::u16string* prefix, std::u16string* suffix, bool negative) {
        for (std::u16string* side : {suffix, prefix}) {
            size_t at = side->find_first_of(u"-+");
            if (at == side->npos) continue;
            if (negative) (*side)[at] = u'-';
            else if ((*side)[at] == u'-') side->erase(at, 1);
            return true;
        }
        return false;
    }

    char16_t fillAt(size_t i) const {  // what an empty place left of the number shows; 0 = nothing
        switch (body_[i]) {
            case u'^': return u' ';
            case u'*': return u'*';
            default: return 0;
        }
    }

    // The places left of the decimal point, right to left. The sign takes the place beside the first digit.
    bool placeWhole(std::string_view digits, bool* negative, std::u16string* out) const {
        if (int(digits.size()) > wholes_) return false;
        size_t zeroFrom = body_.substr(0, point_).find(u'0');  // from here on zeros fill up
        size_t left = digits.size();
        bool full = true;  // no place was free
        for (size_t i = point_; i-- > 0;) {
            char16_t unit = body_[i];
            if (IsPlaceholder(unit)) {
                if (left > 0) {
                    *out += char16_t(digits[--left]);
                } else if (zeroFrom <= i) {
                    *out += u'0';
                } else {
                    full = false;
                    char16_t fill = fillAt(i);
                    if (*negative) {
                        *out += u'-';
                        *negative = false;
                    } else if (fill) {
                        *out += fill;
                    }
                }
                continue;
            }
            bool digitsLeft = left > 0 || zeroFrom < i;
            if (unit != u',') {
                *out += unit;
            } else if (digitsLeft) {
                *out += locale_.thousand;
            } else if (char16_t fill = i > 0 ? fillAt(i - 1) : char16_t(0)) {
                *out += *negative ? u'-' : fill;
                *negative = false;
            }
        }
        std::reverse(out->begin(), out->end());
        // Places that are all taken have none for the sign; zeros and a format without places before the point let it
        // stand in front.
        bool fits = !*negative || !full || zeroFrom == 0 || wholes_ == 0;
        return fits;
    }

    std::u16string placeFraction(const std::string& digits) const {
        std::u16string out;
        if (point_ == body_.size()) return out;
        size_t significant = digits.find_last_not_of('0') + 1;  // npos + 1 = 0
        size_t zeros = body_.rfind(u'0');                       // up to here zeros are shown
        size_t at = 0;
        for (size_t i = point_ + 1; i < body_.size(); ++i) {
            if (!IsPlaceholder(body_[i])) {
                out += body_[i];
                continue;
            }
            bool shown = at < significant || (zeros != body_.npos && zeros > point_ && i <= zeros);
            if (shown) out += char16_t(digits[at]);
            else if (char16_t fill = fillAt(i)) out += fill;
            ++at;
        }
        if (out.empty() && decimals_ > 0) return out;
        return locale_.decimal + out;
    }

    const Locale& locale_;
    std::u16string_view prefix_, body_, suffix_;
    size_t point_ = 0;  // of body_; its size = none
    int wholes_ = 0, decimals_ = 0;
};

}  // namespace

std::u16string FormatReal(double number, std::u16string_view format, const Locale& locale) {
    std::u16string unusual;
    if (Unusual(number, &unusual)) return unusual;
    if (format.empty() || format[0] == u'|') return Localised(Shortest(number), locale);
    if (format[0] == u'&') {
        std::u16string_view kind = format.substr(1);
        if (kind == u"xml") return Widen(Shortest(number));
        if (kind == u"x") return Hexadecimal(number, /*prefixed*/ true);
        if (kind == u"$") return Hexadecimal(number, /*prefixed*/ false);
        if (!kind.empty() && kind[0] >= u'0' && kind[0] <= u'9')
            return Scientific(number, int(ReadNumber(kind.substr(0, 2), u'.')), locale);
    }
    std::vector<std::u16string_view> parts;
    for (size_t start = 0; parts.size() < 3;) {
        size_t end = format.find(u';', start);
        parts.push_back(format.substr(start, end == format.npos ? format.npos : end - start));
        if (end == format.npos) break;
        start = end + 1;
    }
    size_t which = number == 0 && parts.size() == 3 ? 2 : number < 0 && parts.size() >= 2 ? 1 : 0;
    return NumberPart(parts[which], locale).format(number, /*signs*/ parts.size() == 1);
}

std::u16string FormatLongint(int64_t number, std::u16string_view format, const Locale& locale) {
    if (format.empty() || format[0] == u'|') return Widen(std::to_string(number));
    return FormatReal(double(number), format, locale);
}

std::u16string FormatString(std::u16string_view text, std::u16string_view format) {
    if (format.find(u'#') == format.npos) return std::u16string(text);
    std::u16string out;
    size_t at = 0;
    for (char16_t unit : format) {
        if (unit != u'#') out += unit;
        else if (at < text.size()) out += text[at++];
    }
    return out;
}

double ReadNumber(std::u16string_view text, char16_t decimalSeparator) {
    auto digit = [&](size_t i) { return i < text.size() && text[i] >= u'0' && text[i] <= u'9'; };
    std::string number;
    bool negative = false, point = false, exponent = false, any = false;
    for (size_t i = 0; i < text.size(); ++i) {
        char16_t unit = text[i];
        if (digit(i)) {
            number += char(unit);
            any = true;
        } else if (unit == decimalSeparator && !point && !exponent) {
            number += '.';
            point = true;
        } else if (unit == u'-') {
            if (any) break;  // the number ends
            negative = true;
        } else if ((unit | 0x20) == u'e' && any && !exponent) {
            bool sign = i + 1 < text.size() && (text[i + 1] == u'-' || text[i + 1] == u'+');
            if (!digit(i + 1 + sign)) continue;
            number += 'e';
            if (sign && text[++i] == u'-') number += '-';
            exponent = true;
        }
    }
    if (!any) return 0;
    double value = 0;
    auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        size_t e = number.find('e');
        bool tiny = e != number.npos && number[e + 1] == '-';
        value = tiny ? 0 : HUGE_VAL;
    }
    return negative ? -value : value;
}

// Calendar ---------------------------------------------------------------------------------------------------------

namespace {

std::atomic<int> gPivotCentury{19}, gPivotYear{30};

bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysOfMonth(int month, int year) {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

}  // namespace

bool IsValidDate(Date date) {
    return date.year >= 1 && date.year <= 32767 && date.month >= 1 && date.month <= 12 && date.day >= 1 &&
           date.day <= DaysOfMonth(date.month, date.year);
}

int TwoDigitYear(int year) {
    if (year < 0 || year > 99) return year;
    int century = gPivotCentury.load(std::memory_order_relaxed);
    return (year >= gPivotYear.load(std::memory_order_relaxed) ? century : century + 1) * 100 + year;
}

void SetTwoDigitPivot(int century, int pivot) {
    gPivotCentury = std::clamp(century, 0, 320);
    gPivotYear = std::clamp(pivot, 0, 99);
}

int64_t DayNumber(Date date) {
    int64_t year = date.year - (date.month <= 2);
    int64_t era = (year >= 0 ? year : year - 399) / 400;
    int64_t ofEra = year - era * 400;
    int64_t ofYear = (153 * (date.month + (date.month > 2 ? -3 : 9)) + 2) / 5 + date.day - 1;
    return era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - 719468;
}

Date DateOfDayNumber(int64_t days) {
    days += 719468;
    int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    int64_t ofEra = days - era * 146097;
    int64_t yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
    int64_t ofYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    int64_t month = (5 * ofYear + 2) / 153;
    Date date;
    date.day = int(ofYear - (153 * month + 2) / 5 + 1);
    date.month = int(month < 10 ? month + 3 : month - 9);
    date.year = int(yearOfEra + era * 400 + (date.month <= 2));
    return date;
}

int DayOfWeek(Date date) { return int(((DayNumber(date) + 4) % 7 + 7) % 7) + 1; }

// Dates and times as text ------------------------------------------------------------------------------------------

namespace {

constexpr int kBlankIfNull = 100;

std::u16string Number(int64_t number, size_t width) {
    std::u16string digits = Widen(std::to_string(std::abs(number)));
    if (digits.size() < width) digits.insert(0, width - digits.size(), u'0');
    return number < 0 ? u"-" + digits : digits;
}

int Clock(int64_t hours) { return int((hours % 12 + 11) % 12) + 1; }

// The text of one run of a letter in a pattern.
std::u16string Field(char16_t letter, size_t count, Date date, int64_t seconds, const Locale& locale) {
    int64_t hours = seconds / 3600, minutes = seconds / 60 % 60;
    bool named = date.month >= 1 && date.month <= 12;
    switch (letter) {
        case u'y': return count == 2 ? Number(date.year % 100, 2) : Number(date.year, count);
        case u'M':
            if (count >= 3 && named)
                return count == 3 ? locale.shortMonths[date.month - 1] : locale.months[date.month - 1];
            return Number(date.month, std::min<size_t>(count, 2));
        case u'd': return Number(date.day, count);
        case u'E': {
            int day = DayOfWeek(date) - 1;
            return count >= 4 ? locale.days[day] : locale.shortDays[day];
        }
        case u'H': return Number(hours, count);
        case u'h': return Number(Clock(hours), count);
        case u'm': return Number(minutes, count);
        case u's': return Number(seconds % 60, count);
        case u'a': return hours % 24 < 12 ? locale.am : locale.pm;
        default: return std::u16string(count, letter);
    }
}

// A pattern without the day of the week and what follows it.
std::u16string_view WithoutDayOfWeek(std::u16string_view pattern) {
    size_t start = pattern.find_first_of(u"dMy");
    return start == pattern.npos ? pattern : pattern.substr(start);
}

std::u16string InDigits(Date date, bool shortYear, const Locale& locale) {
    std::u16string out;
    for (char part : locale.order) {
        if (!out.empty()) out += locale.dateSeparator;
        if (part == 'D') out += Number(date.day, 2);
        else if (part == 'M') out += Number(date.month, 2);
        else out += shortYear ? Number(date.year % 100, 2) : Number(date.year, 4);
    }
    return out;
}

// The moment of a local date and time in UTC; the same one if the system cannot tell.
void ToUtc(Date* date, int64_t* seconds) {
    std::tm local = {};
    local.tm_year = date->year - 1900;
    local.tm_mon = date->month - 1;
    local.tm_mday = date->day;
    local.tm_sec = int(std::clamp<int64_t>(*seconds, 0, 86399));
    local.tm_isdst = -1;
    std::time_t moment = std::mktime(&local);
    std::tm utc = {};
    if (moment == std::time_t(-1) || !gmtime_r(&moment, &utc)) return;
    *date = {utc.tm_mday, utc.tm_mon + 1, utc.tm_year + 1900};
    *seconds = utc.tm_hour * 3600 + utc.tm_min * 60 + utc.tm_sec;
}

std::u16string EmptyDate(int format, const Locale& locale) {
    switch (format) {
        case 7: return InDigits({}, /*shortYear*/ false, locale);
        case 8: return u"0000-00-00T00:00:00";
        case 9: return u"0000-00-00T00:00:00Z";
        case 1:
        case 4: return InDigits({}, /*shortYear*/ true, locale);
        default: return {};
    }
}

}  // namespace

std::u16string FormatPattern(Date date, int64_t seconds, std::u16string_view pattern, const Locale& locale) {
    std::u16string out;
    for (size_t i = 0; i < pattern.size();) {
        char16_t unit = pattern[i];
        if (unit == u'\'') {  // quoted words stand
            size_t end = std::min(pattern.find(u'\'', i + 1), pattern.size());
            out += end == i + 1 ? std::u16string(u"'") : std::u16string(pattern.substr(i + 1, end - i - 1));
            i = end + 1;
            continue;
        }
        size_t count = 1;
        while (i + count < pattern.size() && pattern[i + count] == unit) ++count;
        out += Field(unit, count, date, seconds, locale);
        i += count;
    }
    return out;
}

std::u16string FormatDate(Date date, int format, const Locale& locale, int64_t seconds) {
    bool blank = format >= kBlankIfNull;
    if (blank) format -= kBlankIfNull;
    if (format < 1 || format > 10) format = 1;
    if (date == Date{}) return blank ? std::u16string() : EmptyDate(format, locale);
    if (!IsValidDate(date) && format != 8) format = 7;  // in digits, whatever they are
    switch (format) {
        case 2: return FormatPattern(date, 0, locale.mediumDate, locale);
        case 3: return FormatPattern(date, 0, locale.longDate, locale);
        case 4: return InDigits(date, TwoDigitYear(date.year % 100) == date.year, locale);
        case 5: return FormatPattern(date, 0, WithoutDayOfWeek(locale.longDate), locale);
        case 6: return FormatPattern(date, 0, WithoutDayOfWeek(locale.mediumDate), locale);
        case 7: return InDigits(date, /*shortYear*/ false, locale);
        case 8: return FormatPattern(date, seconds, u"yyyy-MM-dd'T'HH:mm:ss", locale);
        case 9: ToUtc(&date, &seconds); return FormatPattern(date, seconds, u"yyyy-MM-dd'T'HH:mm:ss'Z'", locale);
        case 10:
            ToUtc(&date, &seconds);
            return FormatPattern(date, seconds, u"EEE, dd MMM yyyy HH:mm:ss 'GMT'", FindLocale("en-US"));
        default: return FormatPattern(date, 0, locale.shortDate, locale);
    }
}

std::u16string FormatTime(int64_t seconds, int format, const Locale& locale) {
    if (format >= kBlankIfNull) {
        if (seconds == 0) return {};
        format -= kBlankIfNull;
    }
    constexpr int64_t kLongest = int64_t(1) << 40;
    seconds = std::clamp(seconds, -kLongest, kLongest);
    if (seconds < 0) return u"-" + FormatTime(-seconds, format, locale);
    auto words = [&](int64_t count, int word) {
        return Number(count, 1) + u" " + locale.timeWords[word * 2 + (count != 1)];
    };
    int64_t hours = seconds / 3600, minutes = seconds / 60 % 60;
    char16_t separator = locale.timeSeparator;
    switch (format) {
        case 2: return Number(hours, 2) + separator + Number(minutes, 2);
        case 3: return words(hours, 0) + u" " + words(minutes, 1) + u" " + words(seconds % 60, 2);
        case 4: return words(hours, 0) + u" " + words(minutes, 1);
        case 5: return FormatPattern({}, seconds, u"h:mm a", locale);
        case 6: return Number(seconds / 60, 2) + separator + Number(seconds % 60, 2);
        case 7: return words(seconds / 60, 1) + u" " + words(seconds % 60, 2);
        case 8: return u"0000-00-00T" + FormatPattern({}, seconds, u"HH:mm:ss", locale);
        case 9: return FormatPattern({}, seconds, locale.shortTime, locale);
        case 10: return FormatPattern({}, seconds, locale.mediumTime, locale);
        case 11: return FormatPattern({}, seconds, locale.longTime, locale);
        default: return Number(hours, 2) + separator + Number(minutes, 2) + separator + Number(seconds % 60, 2);
    }
}

// Dates and times from text ----------------------------------------------------------------------------------------

namespace {

struct Group {  // a run of digits
    int number = 0;
    size_t digits = 0;
};

// The runs of digits of a text, at most count.
std::vector<Group> Groups(std::u16string_view text, size_t count) {
    std::vector<Group> groups;
    for (size_t i = 0; i < text.size() && groups.size() < count;) {
        if (text[i] < u'0' || text[i] > u'9') {
            ++i;
            continue;
        }
        Group group;
        for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i, ++group.digits)
            if (group.number < 100000000) group.number = group.number * 10 + (text[i] - u'0');
        groups.push_back(group);
    }
    return groups;
}

// The month whose name, or the beginning of it, stands in the text; 0 = none.
int MonthByName(std::u16string_view text, const Locale& locale) {
    for (size_t i = 0; i < text.size();) {
        size_t end = i;
        while (end < text.size() && IsLetter(text[end])) ++end;
        std::u16string_view word = text.substr(i, end - i);
        for (const Locale& known : {locale, FindLocale("en-US")})
            for (int month = 0; word.size() >= 3 && month < 12; ++month) {
                std::u16string_view name = known.months[month], brief = known.shortMonths[month];
                if (brief.ends_with(u'.')) brief.remove_suffix(1);
                bool begins =
                    word.size() <= name.size() && CompareText(name.substr(0, word.size()), word, false, false) == 0;
                if (begins || CompareText(brief, word, false, false) == 0) return month + 1;
            }
        i = std::max(end, i + 1);
    }
    return 0;
}

Date Checked(int year, size_t yearDigits, int month, int day) {
    Date date{day, month, yearDigits <= 2 ? TwoDigitYear(year) : year};
    return IsValidDate(date) ? date : Date{};
}

}  // namespace

Date ReadDate(std::u16string_view text, const Locale& locale) {
    std::vector<Group> groups = Groups(text, 3);
    if (groups.size() == 3 && groups[0].digits >= 3)  // the year first, in every locale
        return Checked(groups[0].number, 4, groups[1].number, groups[2].number);
    bool letters = std::any_of(text.begin(), text.end(), [](char16_t unit) { return IsLetter(unit); });
    if (int month = letters && groups.size() >= 2 ? MonthByName(text, locale) : 0) {
        bool yearFirst = groups[0].digits >= 3;
        const Group &year = groups[yearFirst ? 0 : 1], &day = groups[yearFirst ? 1 : 0];
        return Checked(year.number, year.digits, month, day.number);
    }
    if (groups.size() < 3) return {};
    Group year, month, day;
    for (size_t i = 0; i < 3; ++i) (locale.order[i] == 'Y' ? year : locale.order[i] == 'M' ? month : day) = groups[i];
    if (locale.order[0] == 'Y' && groups[2].digits >= 3) std::swap(year, day);  // 31-12-2024 where the year goes first
    return Checked(year.number, year.digits, month.number, day.number);
}

int64_t ReadTime(std::u16string_view text, const Locale& locale) {
    size_t iso = text.find(u'T');
    if (iso != text.npos && iso >= 8 && text.find(u'-') < iso) text.remove_prefix(iso + 1);
    std::vector<Group> groups = Groups(text, 3);
    if (groups.empty()) return 0;
    groups.resize(3);
    int64_t hours = groups[0].number;
    auto holds = [&](std::u16string_view word) { return FindText(text, word, 0, /*exact*/ false).at != text.npos; };
    bool afternoon = holds(u"PM") || holds(u"p.m") || holds(locale.pm);
    bool morning = holds(u"AM") || holds(u"a.m") || holds(locale.am);
    if (afternoon && hours < 12) hours += 12;
    else if (morning && !afternoon && hours == 12) hours = 0;
    int64_t seconds = hours * 3600 + int64_t(groups[1].number) * 60 + groups[2].number;
    bool negative = text.substr(0, text.find_first_of(u"0123456789")).find(u'-') != text.npos;
    seconds = std::min<int64_t>(seconds, INT32_MAX);
    return negative ? -seconds : seconds;
}

}  // namespace zrhost
