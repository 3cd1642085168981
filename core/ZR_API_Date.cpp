#include "core/ZR_API_Date.h"

#include <ctime>

#include <algorithm>
#include <iterator>

#include "core/ZR_API_TextArray.h"
#include "plugin/ZR_API_Bridge.h"

static constexpr unsigned long kSecondsOfDay = 86400;
static constexpr unsigned long kStampOf2017 = 1483228800;  // 2017-01-01, where recent dates begin to count
static constexpr long kDaysOfCycle = 146097;               // of 400 years
static constexpr long kLastYear = 2999;                    // a later stamp stays in it
static constexpr long kYears = 65536;                      // that 16 bits tell apart

static bool IsLeapYear(long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

static long DaysOfYear(long year) { return IsLeapYear(year) ? 366 : 365; }

static bool IsMonth(long month) { return month >= 1 && month <= 12; }

static bool IsEmpty(const ZR_Date& date) { return date.day == 0 || date.month == 0 || date.year == 0; }

static short Short(long value) { return static_cast<short>(value); }  // the low 16 bits, as a field stores them

long ZR_DaysOfMonth(long month, long year) {
    static constexpr signed char kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (!IsMonth(month)) return 0;
    return kDays[month - 1] + (month == 2 && IsLeapYear(year));
}

// Days of the year before the month; a month behind December counts as if the year had ended.
static long DaysBeforeMonth(long month, long year) {
    long days = 0;
    for (long i = 1; i < std::min(month, 13L); ++i) days += ZR_DaysOfMonth(i, year);
    return days;
}

static long FloorDivide(long value, long by) { return value / by - (value % by < 0); }

// Days from 0001-01-01 to the date, counted through every year by the one leap rule.
static long DayCount(const ZR_Date& date) {
    long before = date.year - 1L;
    return before * 365 + FloorDivide(before, 4) - FloorDivide(before, 100) + FloorDivide(before, 400) +
           DaysBeforeMonth(date.month, date.year) + date.day - 1;
}

// Day stepping -----------------------------------------------------------------------------------------------------
// Add means single steps. Here each loop takes as many of them at once as have no month's end between them;
// after 65536 years of 16 bits every date comes back, so that no count of steps takes long.

static long DaysOfAllYears() {
    static const long days = [] {
        long sum = 0;
        for (long year = -kYears / 2; year < kYears / 2; ++year) sum += DaysOfYear(year);
        return sum;
    }();
    return days;
}

static void NextMonth(ZR_Date* date) {
    date->day = 1;
    if (++date->month <= 12) return;
    date->month = 1;
    date->year = Short(date->year + 1L);
}

static void PreviousMonth(ZR_Date* date) {
    if (--date->month < 1) {
        date->month = 12;
        date->year = Short(date->year - 1L);
    }
    date->day = Short(ZR_DaysOfMonth(date->month, date->year));
}

// Whole years from a January 1st up (by 1) or from a December 31st down (by -1), 400 at once where 16 bits allow.
static unsigned long SkipYears(ZR_Date* date, unsigned long days, long by) {
    for (;;) {
        long far = date->year + 400 * by;
        if (days >= kDaysOfCycle && far >= -kYears / 2 && far < kYears / 2) {
            days -= kDaysOfCycle;
            date->year = Short(far);
        } else if (auto length = static_cast<unsigned long>(DaysOfYear(date->year)); days >= length) {
            days -= length;
            date->year = Short(date->year + by);
        } else {
            return days;
        }
    }
}

static void StepForward(ZR_Date* date, unsigned long days) {
    // Behind the month's end a day rises until 16 bits are used up, and begins again at the lowest.
    unsigned long toWrap = static_cast<unsigned long>(32768L - date->day);
    if (date->day > ZR_DaysOfMonth(date->month, date->year)) {
        if (days < toWrap) {
            date->day = Short(date->day + static_cast<long>(days));
            return;
        }
        days -= toWrap;
        date->day = -32768;
    }
    for (bool within = false;;) {
        auto toEnd = static_cast<unsigned long>(ZR_DaysOfMonth(date->month, date->year) - date->day);
        if (days <= toEnd) {
            date->day = Short(date->day + static_cast<long>(days));
            return;
        }
        days -= toEnd + 1;
        NextMonth(date);
        if (!within) days %= static_cast<unsigned long>(DaysOfAllYears());
        within = true;
        if (date->month == 1) days = SkipYears(date, days, 1);
    }
}

static void StepBackward(ZR_Date* date, unsigned long days) {
    // In front of the first a day falls until 16 bits are used up, and goes on from the highest.
    unsigned long toWrap = static_cast<unsigned long>(date->day + 32769L);
    if (date->day < 1) {
        if (days < toWrap) {
            date->day = Short(date->day - static_cast<long>(days));
            return;
        }
        days -= toWrap;
        date->day = 32767;
    }
    for (bool within = false;;) {
        auto toFirst = static_cast<unsigned long>(date->day - 1L);
        if (days <= toFirst) {
            date->day = Short(date->day - static_cast<long>(days));
            return;
        }
        days -= toFirst + 1;
        PreviousMonth(date);
        if (!within) days %= static_cast<unsigned long>(DaysOfAllYears());
        within = true;
        if (date->month == 12) days = SkipYears(date, days, -1);
    }
}

void ZR_Date::Add(long days) {
    if (!IsMonth(month)) return;  // every step is used up without effect
    if (days >= 0) StepForward(this, static_cast<unsigned long>(days));
    else StepBackward(this, 0UL - static_cast<unsigned long>(days));
}

// Date members -----------------------------------------------------------------------------------------------------

static tm LocalNow() {
    time_t now = time(nullptr);
    tm local = {};
    localtime_r(&now, &local);
    return local;
}

void ZR_Date::Current() {
    tm now = LocalNow();
    *this = {Short(now.tm_mday), Short(now.tm_mon + 1), Short(now.tm_year + 1900)};
}

long ZR_Date::GetDayNumber() const {
    long a = (14 - month) / 12, y = year - a, m = month + 12 * a - 2;
    long number = (day + y + y / 4 - y / 100 + y / 400 + 31 * m / 12) % 7;
    return number < 0 ? number + 7 : number;  // guard: years before 0
}

void ZR_Date::PreviousSunday() { Add(-GetDayNumber()); }

long ZR_Date::GetKalenderwoche() const {
    long a = (14 - month) / 12, y = year + 4800 - a;
    long julian = day + ((month + 12 * a) * 153 - 457) / 5 + 365 * y + y / 4 - y / 100 + y / 400 - 32045;
    long d4 = ((julian / 7) * 7 + 31741) % 146097 % 36524 % 1461;
    long leap = d4 / 1460;
    return ((d4 - leap) % 365 + leap) / 7 + 1;
}

long ZR_Date::GetDayNumberInYear() const { return ZR_DateDifference({1, 1, year}, *this) + 1; }

void ZR_Date::AddMonth(long n) {
    if (n < 1) return;
    long months = n % (12 * kYears) + month;  // guard: after so many months every year comes back
    if (months <= 12) {
        month = Short(months);
        return;
    }
    year = Short(year + (months - 1) / 12);
    month = Short((months - 1) % 12 + 1);
}

bool ZR_Date::IsEndOfMonth() const {
    ZR_Date next = *this;
    next.Add(1);
    return next.month != month;
}

void ZR_Date::EndOfMonth() {
    if (IsMonth(month)) day = Short(ZR_DaysOfMonth(month, year));
}

long ZR_Date::GetQuartal() const {
    static constexpr signed char kQuarters[] = {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4};
    return IsMonth(month) ? kQuarters[month - 1] : 0;
}

long ZR_Date::GetQuartalAndSetToFirstDay() {
    long quarter = GetQuartal();
    day = 1;
    if (quarter == 0) return 1;
    month = Short(quarter * 3 - 2);
    return quarter;
}

// Differences and comparisons --------------------------------------------------------------------------------------

// Whether b comes before, with or after a: below 0, 0, above 0.
static long Compare(const ZR_Date& a, const ZR_Date& b) {
    if (a.year != b.year) return a.year - b.year;
    return a.month != b.month ? a.month - b.month : a.day - b.day;
}

// Guard: the steps that Add takes from a to b, as a number; 0 where single steps would go on for ever.
long ZR_DateDifference(ZR_Date a, ZR_Date b) {
    if (IsEmpty(a) || IsEmpty(b) || !IsMonth(a.month) || !IsMonth(b.month)) return 0;
    long lastOfA = ZR_DaysOfMonth(a.month, a.year), lastOfB = ZR_DaysOfMonth(b.month, b.year);
    bool forward = Compare(a, b) < 0;
    if (a.year == b.year && a.month == b.month) {
        bool stays = forward ? a.day > lastOfA || b.day <= lastOfA : a.day < 1 || b.day >= 1;
        return stays ? b.day - a.day : 0;
    }
    if (b.day < 1 || b.day > lastOfB) return 0;
    // A day outside its month runs through all 16 bits before it finds the month's end.
    long detour = forward && a.day > lastOfA ? 65536 : !forward && a.day < 1 ? -65536 : 0;
    return DayCount(b) - DayCount(a) + detour;
}

long ZR_DateDifferenceMonths(ZR_Date a, ZR_Date b) {
    if (b.year < a.year) return 0;
    bool sameMonth = b.month == a.month;
    if (b.year == a.year && b.month <= a.month && !(sameMonth && b.day >= a.day)) return 0;
    return b.month - a.month + 12L * (b.year - a.year) + 1;
}

bool ZR_DateIsLess(const ZR_Date* a, const ZR_Date* b) { return Compare(*a, *b) < 0; }
bool ZR_DateIsLessEqual(const ZR_Date* a, const ZR_Date* b) { return Compare(*a, *b) <= 0; }
bool ZR_DateIsGreater(const ZR_Date* a, const ZR_Date* b) { return Compare(*a, *b) > 0; }
bool ZR_DateIsGreaterEqual(const ZR_Date* a, const ZR_Date* b) { return Compare(*a, *b) >= 0; }

void ZR_AddMonth2Date(ZR_Date* date, long n) {
    date->AddMonth(n);
    if (IsMonth(date->month) && date->day > ZR_DaysOfMonth(date->month, date->year)) date->EndOfMonth();
}

ZR_Date ZR_GetOstersonntag(short year) {  // after Meeus, Jones and Butcher
    long a = year % 19, b = year / 100, c = year % 100;
    long d = b / 4, e = b % 4, f = (b + 8) / 25, g = (b - f + 1) / 3;
    long h = (19 * a + b - d - g + 15) % 30;
    long i = c / 4, k = c % 4;
    long l = (32 + 2 * e + 2 * i - h - k) % 7;
    long m = (a + 11 * h + 22 * l) / 451;
    long sum = h + l - 7 * m + 114;
    return {Short(sum % 31 + 1), Short(sum / 31), year};
}

// Time stamps ------------------------------------------------------------------------------------------------------

unsigned long ZR_Date2Seconds(const ZR_Date* date, long secondsOfDay) {
    if (date->day < 1) return 0;
    // Required: years before 1970 do not go negative, they count as 1970 does.
    long days = date->year <= 1970 ? 0 : DayCount({1, 1, date->year}) - DayCount({1, 1, 1970});
    days += DaysBeforeMonth(date->month, date->year) + date->day - 1;
    return static_cast<unsigned long>(days) * kSecondsOfDay + static_cast<unsigned long>(secondsOfDay);
}

void ZR_Seconds2Date(unsigned long stamp, ZR_Date* date, long* secondsOfDay) {
    unsigned long days = stamp / kSecondsOfDay;
    long year = stamp < kStampOf2017 ? 1970 : 2017, month = 1;
    if (stamp >= kStampOf2017) days -= kStampOf2017 / kSecondsOfDay;
    for (; year < kLastYear && days >= static_cast<unsigned long>(DaysOfYear(year)); ++year)
        days -= static_cast<unsigned long>(DaysOfYear(year));
    for (; month < 12 && days >= static_cast<unsigned long>(ZR_DaysOfMonth(month, year)); ++month)
        days -= static_cast<unsigned long>(ZR_DaysOfMonth(month, year));
    if (date) *date = {Short(static_cast<long>(days + 1)), Short(month), Short(year)};
    if (secondsOfDay) *secondsOfDay = static_cast<long>(stamp % kSecondsOfDay);
}

long ZR_CurrentTime() {
    tm now = LocalNow();
    return now.tm_hour * 3600L + now.tm_min * 60L + now.tm_sec;
}

unsigned long ZR_CurrentTimeStamp() {
    tm now = LocalNow();
    ZR_Date today = {Short(now.tm_mday), Short(now.tm_mon + 1), Short(now.tm_year + 1900)};
    return ZR_Date2Seconds(&today, now.tm_hour * 3600L + now.tm_min * 60L + now.tm_sec);
}

long ZR_GetCurrentTimeZoneOffset() { return LocalNow().tm_gmtoff; }

long ZR_GetTimeInfo(long seconds, long part) {
    switch (part) {
        case 1: return seconds / 3600;
        case 2: return seconds % 3600 / 60;
        case 3: return seconds % 60;
        default: return 0;
    }
}

void ZR_Longint2Time(long seconds, long* hours, long* minutes, long* secs) {
    if (hours) *hours = ZR_GetTimeInfo(seconds, 1);
    if (minutes) *minutes = ZR_GetTimeInfo(seconds, 2);
    if (secs) *secs = ZR_GetTimeInfo(seconds, 3);
}

// Text -------------------------------------------------------------------------------------------------------------

void ZR_DateToString(const ZR_Date* date, long format, ZR_Text* text) {
    PA_Unichar buffer[256] = {};
    PA_FormatDate(date->day, date->month, date->year, static_cast<int>(format), buffer);
    text->AddUnichar(buffer);
}

void ZR_DayTimeToString(long seconds, long format, ZR_Text* text) {
    PA_Unichar buffer[256] = {};
    PA_FormatTime(seconds, static_cast<int>(format), buffer);
    text->AddUnichar(buffer);
}

struct DateTimeValues {  // what the codes are filled from
    const ZR_Date* date;
    long seconds;
    const ZR_Text *dayName, *monthName;  // null = none
};

static void AddTwoDigits(ZR_Text* text, long value) {
    if (value >= 0 && value < 10) text->AddUnit('0');
    text->AddLong(value);
}

// The first units of a name, as far as it has them; null adds nothing.
static void AddName(ZR_Text* text, const ZR_Text* name, long most) {
    if (name) text->AddUniBuffer(name->Units(), std::min(name->count, most));
}

static long HourOfTwelve(long seconds) {
    long hour = seconds / 3600;
    return hour == 0 ? 12 : seconds < 46800 ? hour : hour - 12;
}

static void AddShortYear(ZR_Text* text, long year) {  // third and fourth digit
    char digits[24];
    ZR_NumToString(year, digits);
    long n = ZR_CStringLength(digits);
    if (n > 2) text->AddBuffer(reinterpret_cast<unsigned char*>(digits) + 2, std::min(n - 2, 2L));
}

static void AddCode(ZR_Text* text, unsigned short code, const DateTimeValues& values) {
    const ZR_Date* date = values.date;
    switch (code) {
        case '%': return text->AddUnit('%');
        case 'A': return text->AddText(values.dayName);
        case 'a': return AddName(text, values.dayName, 3);
        case 'c': return AddName(text, values.dayName, 2);
        case 'B': return text->AddText(values.monthName);
        case 'b': return AddName(text, values.monthName, 3);
        case 'd': return text->AddLong(date->day);
        case 'n': return AddTwoDigits(text, date->day);
        case 'm': return text->AddLong(date->month);
        case 'N': return AddTwoDigits(text, date->month);
        case 'Y': return text->AddLong(date->year);
        case 'y': return AddShortYear(text, date->year);
        case 'H': return text->AddLong(values.seconds / 3600);
        case 'I': return text->AddLong(HourOfTwelve(values.seconds));
        case 'M': return AddTwoDigits(text, ZR_GetTimeInfo(values.seconds, 2));
        case 'S': return AddTwoDigits(text, ZR_GetTimeInfo(values.seconds, 3));
        case 'p': return text->AddString(values.seconds < 43200 ? "AM" : "PM");
        case 'W': return text->AddLong(date->GetKalenderwoche());
        case 'q': return text->AddLong(date->GetQuartal());
        default: return;
    }
}

void ZR_FormatDateTime(const ZR_Date* date, long seconds, const ZR_TextArray* monthNames, const ZR_TextArray* dayNames,
                       const ZR_Text* format, ZR_Text* result) {
    result->Dispose();
    if (IsEmpty(*date)) return;
    result->growStep = 100;
    long weekday = date->GetDayNumber();
    DateTimeValues values = {date, seconds, dayNames ? dayNames->GetTextPtr(weekday == 0 ? 7 : weekday) : nullptr,
                             monthNames ? monthNames->GetTextPtr(date->month) : nullptr};
    for (long i = 0; format && i < format->count; ++i) {
        unsigned short unit = format->GetChar(i);
        if (unit != '%') result->AddUnit(unit);
        else if (++i < format->count)  // guard: a last % has no code behind it and appends nothing
            AddCode(result, format->GetChar(i), values);
    }
}

// Time ranges ------------------------------------------------------------------------------------------------------

static void DateFromStamp(unsigned long stamp, ZR_Date* date, long* time) {
    *date = {0, 0, 0};
    *time = 0;
    if (stamp != 0) ZR_Seconds2Date(stamp, date, time);
}

void ZR_TimeRange::CalcFromTimeStamp() {
    DateFromStamp(startStamp, &startDate, &startTime);
    DateFromStamp(endStamp, &endDate, &endTime);
}

static void TakeStart(ZR_TimeRange* range, const ZR_TimeRange* other) {
    range->startStamp = other->startStamp;
    range->startDate = other->startDate;
    range->startTime = other->startTime;
}

static void TakeEnd(ZR_TimeRange* range, const ZR_TimeRange* other) {
    range->endStamp = other->endStamp;
    range->endDate = other->endDate;
    range->endTime = other->endTime;
}

void ZR_TimeRange::Union(const ZR_TimeRange* other) {
    if (startStamp == 0) {
        *this = *other;
        return;
    }
    if (other->startStamp == 0 || other->endStamp == 0) return;
    if (other->startStamp < startStamp) TakeStart(this, other);
    if (other->endStamp > endStamp) TakeEnd(this, other);
}

void ZR_TimeRange::Intersection(const ZR_TimeRange* other) {
    if (other->startStamp != 0 && other->startStamp > startStamp) TakeStart(this, other);
    if (other->endStamp != 0 && other->endStamp < endStamp) TakeEnd(this, other);
}

unsigned long ZR_TimeRange::GetDuration() const { return endStamp < startStamp ? 0 : endStamp - startStamp; }

void ZR_TimeRange::Add(long seconds) {
    startStamp += static_cast<unsigned long>(seconds);
    endStamp += static_cast<unsigned long>(seconds);
    CalcFromTimeStamp();
}

void ZR_TimeRange::CheckAndCorrect() {
    if (startStamp <= endStamp) return;
    std::swap(startStamp, endStamp);
    std::swap(startDate, endDate);
    std::swap(startTime, endTime);
}
