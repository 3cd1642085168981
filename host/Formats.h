// Numbers, dates and times as text and back, for the locale of the host.
//
// Numbers take a format of the language: "###,##0.00", "#,##0.00;(#,##0.00);zero", "&9", "&xml", "$ ^^^,^^0.00".
// docs/host-formats.md lists what is understood. "." and "," in a format stand for the decimal and the thousand
// separator of the locale. An empty format is the shortest text of the number.
#ifndef ZRHOST_FORMATS_H
#define ZRHOST_FORMATS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "host/Value.h"

namespace zrhost {

struct Locale {
    std::string name;                          // "en-US"
    char16_t decimal = u'.', thousand = u',';  // thousand may be U+00A0 or U+202F
    char order[3] = {'M', 'D', 'Y'};           // of the short date
    char16_t dateSeparator = u'/', timeSeparator = u':';
    bool twelveHours = true;
    std::u16string currency;  // "$"
    const char16_t* am;       // "AM"
    const char16_t* pm;
    const char16_t* const* months;       // 12
    const char16_t* const* shortMonths;  // 12
    const char16_t* const* days;         // 7, Sunday first
    const char16_t* const* shortDays;    // 7
    const char16_t* shortDate;           // patterns as command 994 answers them, "M/d/yyyy"
    const char16_t* mediumDate;
    const char16_t* longDate;
    const char16_t* shortTime;
    const char16_t* mediumTime;
    const char16_t* longTime;
    const char16_t* const* timeWords;  // hour, hours, minute, minutes, second, seconds
};
Locale FindLocale(std::string_view name);  // the nearest one that is known: en-US, en-GB, de-DE, fr-FR and others
const Locale& CurrentLocale();             // of the active host; en-US without one

std::u16string FormatReal(double number, std::u16string_view format, const Locale& locale = CurrentLocale());
std::u16string FormatLongint(int64_t number, std::u16string_view format, const Locale& locale = CurrentLocale());
// Format numbers of the language. 1 system short, 2 system abbreviated, 3 system long, 4 digits with a short year where
// the pivot tells the century, 5 long without the day of the week, 6 abbreviated without it, 7 digits, 8 ISO
// (2006-12-29T00:00:00), 9 ISO in UTC, 10 as in the headers of mails. Others count as 1. 100 added: the empty date
// gives an empty text. The time counts in 8, 9 and 10 only.
std::u16string FormatDate(Date date, int format, const Locale& locale = CurrentLocale(), int64_t seconds = 0);
// 1 HH:MM:SS, 2 HH:MM, 3 hours minutes seconds in words, 4 hours minutes, 5 H:MM AM/PM, 6 MM:SS, 7 minutes seconds,
// 8 ISO (0000-00-00T01:02:03), 9 system short, 10 system abbreviated, 11 system long. Others count as 1. 100 added: the
// time 0 gives an empty text.
std::u16string FormatTime(int64_t seconds, int format, const Locale& locale = CurrentLocale());
std::u16string FormatString(std::u16string_view text, std::u16string_view format);  // # takes a unit, the rest stands
// A date or time by a pattern of letters ("yyyy-MM-dd", "HH:mm:ss").
std::u16string FormatPattern(Date date, int64_t seconds, std::u16string_view pattern,
                             const Locale& locale = CurrentLocale());

Date ReadDate(std::u16string_view text, const Locale& locale = CurrentLocale());     // empty if unreadable
int64_t ReadTime(std::u16string_view text, const Locale& locale = CurrentLocale());  // 0 if unreadable
// As Num reads: the digits of a text, whatever stands between them; the first separator, a "-" ahead of the digits (one
// behind them ends the number), and an "e" between digits count.
double ReadNumber(std::u16string_view text, char16_t decimalSeparator);
bool IsValidDate(Date date);
int TwoDigitYear(int year);                     // 0..99 to the century of the pivot; others unchanged
void SetTwoDigitPivot(int century, int pivot);  // default: 19 and 30: 00..29 = 2000..2029, 30..99 = 1930..1999
int64_t DayNumber(Date date);                   // days since 1 January 1970
Date DateOfDayNumber(int64_t days);
int DayOfWeek(Date date);  // 1 = Sunday .. 7

}  // namespace zrhost

#endif
