// Commands by number: Date and Time.
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Formats.h"

namespace zrhost {
namespace {

constexpr int32_t kSecondsOfDay = 86400;

int64_t Now() { return int64_t(::time(nullptr)); }

// Today and now ----------------------------------------------------------------------------------------------------

// 33 Current date([*])
void CurrentDate(CommandCall& call) { call.setDate(LocalDateOf(Now())); }

// 178 Current time([*])
void CurrentTime(CommandCall& call) { call.setTime(LocalTimeOf(Now())); }

int64_t MillisecondsSinceStart() {  // of the machine
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return int64_t(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// 458 Tickcount: sixtieths of a second since the machine was started, within 31 bits
void Tickcount(CommandCall& call) { call.setLongint(int32_t((MillisecondsSinceStart() * 60 / 1000) & INT32_MAX)); }

// 459 Milliseconds: since the machine was started, within 31 bits
void Milliseconds(CommandCall& call) { call.setLongint(int32_t(MillisecondsSinceStart() & INT32_MAX)); }

// 1445 Timestamp: now in UTC, 2024-02-29T12:34:56.789Z
void Timestamp(CommandCall& call) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc{};
    gmtime_r(&now.tv_sec, &utc);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, int(now.tv_nsec / 1000000));
    call.setText(std::string_view(text));
}

// Reading ----------------------------------------------------------------------------------------------------------

struct Moment {
    bool found = false;
    Date date;
    int32_t time = 0;
};

// yyyy-mm-ddThh:mm:ss, with or without fractions; a Z behind makes it UTC, which becomes local time.
Moment ReadIsoMoment(std::u16string_view text) {
    static constexpr std::u16string_view kShape = u"0000-00-00T00:00:00";
    auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
    if (text.size() < kShape.size()) return {};
    for (size_t i = 0; i < kShape.size(); ++i)
        if (kShape[i] == u'0' ? !isDigit(text[i]) : text[i] != kShape[i]) return {};
    auto part = [&](size_t at, size_t count) {
        int number = 0;
        for (size_t i = at; i < at + count; ++i) number = number * 10 + (text[i] - u'0');
        return number;
    };
    Moment moment{true, {part(8, 2), part(5, 2), part(0, 4)}, part(11, 2) * 3600 + part(14, 2) * 60 + part(17, 2)};
    if (!IsValidDate(moment.date)) return {true, {}, moment.time};
    size_t end = kShape.size();
    while (end < text.size() && (isDigit(text[end]) || text[end] == u'.')) ++end;
    if (end < text.size() && text[end] == u'Z') {
        const int64_t seconds = DayNumber(moment.date) * kSecondsOfDay + moment.time;
        moment.date = LocalDateOf(seconds);
        moment.time = LocalTimeOf(seconds);
    }
    return moment;
}

// 102 Date(text or date): in the order of the system's short date, or ISO; empty if unreadable
void DateOfText(CommandCall& call) {
    if (!call.isText(1)) return call.setDate(call.date(1));
    const Moment moment = ReadIsoMoment(call.text(1));
    call.setDate(moment.found ? moment.date : ReadDate(call.text(1)));
}

// 179 Time(text or number of seconds)
void TimeOfText(CommandCall& call) {
    if (!call.isText(1)) return call.setTime(call.time(1));
    const Moment moment = ReadIsoMoment(call.text(1));
    const int64_t seconds = moment.found ? moment.time : ReadTime(call.text(1));
    call.setTime(int32_t(std::clamp<int64_t>(seconds, INT32_MIN, INT32_MAX)));
}

// 180 Time string(seconds): HH:MM:SS; hours go on above 24.
void TimeString(CommandCall& call) {
    const int64_t seconds = call.time(1), size = seconds < 0 ? -seconds : seconds;
    char text[32];
    std::snprintf(text, sizeof text, "%s%02d:%02d:%02d", seconds < 0 ? "-" : "", int(size / 3600), int(size / 60 % 60),
                  int(size % 60));
    call.setText(std::string_view(text));
}

// Parts and arithmetic ---------------------------------------------------------------------------------------------

// 23 Day of(date)
void DayOf(CommandCall& call) { call.setLongint(call.date(1).day); }

// 24 Month of(date)
void MonthOf(CommandCall& call) { call.setLongint(call.date(1).month); }

// 25 Year of(date)
void YearOf(CommandCall& call) { call.setLongint(call.date(1).year); }

// 114 Day number(date): 1 = Sunday .. 7.
// Required: the empty date is a Monday, 2.
void DayNumberOf(CommandCall& call) { call.setLongint(IsValidDate(call.date(1)) ? DayOfWeek(call.date(1)) : 2); }

int DaysOfMonth(int month, int year) {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[month - 1];
}

// 393 Add to date(date; years; months; days): the day is cut to the end of the new month before the days are added. The
// empty date counts as day 0 of month 0 of year 0, so that the command makes a date of its parts. Outside the years 1
// to 32767: the empty date.
void AddToDate(CommandCall& call) {
    const Date start = call.date(1);
    const int64_t months = (int64_t(start.year) + call.integer(2)) * 12 + start.month - 1 + call.integer(3);
    const int64_t year = months >= 0 ? months / 12 : -1;
    if (year < 0 || year > 32767) return call.setDate({});
    const int month = int(months % 12) + 1;
    const int day = std::min(start.day, DaysOfMonth(month, int(year)));
    const Date date = DateOfDayNumber(DayNumber({1, month, int(year)}) + (day - 1) + call.integer(4));
    call.setDate(date.year >= 1 && date.year <= 32767 ? date : Date{});
}

// 392 SET DEFAULT CENTURY(century; [pivotYear]): two digits from the pivot on mean that century, below it the next.
void SetDefaultCentury(CommandCall& call) {
    const int century = call.integer(1), pivot = call.integer(2);
    if (!call.isNumber(1) || century < 0 || century > 326 || pivot < 0 || pivot > 99) return;
    SetTwoDigitPivot(century, pivot);
}

constexpr CommandRow kRows[] = {
    {23, DayOf},        {24, MonthOf},      {25, YearOf},        {33, CurrentDate}, {102, DateOfText},
    {114, DayNumberOf}, {178, CurrentTime}, {179, TimeOfText},   {180, TimeString}, {392, SetDefaultCentury},
    {393, AddToDate},   {458, Tickcount},   {459, Milliseconds}, {1445, Timestamp},
};

}  // namespace

Date LocalDateOf(int64_t seconds) {
    const time_t moment = time_t(seconds);
    tm local{};
    if (!localtime_r(&moment, &local)) return {};
    return {local.tm_mday, local.tm_mon + 1, local.tm_year + 1900};
}

int32_t LocalTimeOf(int64_t seconds) {
    const time_t moment = time_t(seconds);
    tm local{};
    if (!localtime_r(&moment, &local)) return 0;
    return local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
}

int64_t SecondsOfLocal(Date date, int32_t time) {
    if (!IsValidDate(date) || date.year < 1900) return -1;
    tm local{};
    local.tm_year = date.year - 1900;
    local.tm_mon = date.month - 1;
    local.tm_mday = date.day;
    local.tm_sec = std::clamp(time, 0, kSecondsOfDay - 1);
    local.tm_isdst = -1;
    return int64_t(mktime(&local));
}

std::span<const CommandRow> commandsDates() { return kRows; }

}  // namespace zrhost
