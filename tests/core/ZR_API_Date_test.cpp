#include "core/ZR_API_Date.h"

#include <climits>
#include <ctime>
#include <random>
#include <tuple>

#include "core/ZR_API_TextArray.h"
#include "tests/core/FakeHost.h"

bool operator==(const ZR_Date& a, const ZR_Date& b) { return a.day == b.day && a.month == b.month && a.year == b.year; }
std::ostream& operator<<(std::ostream& out, const ZR_Date& date) {
    return out << date.day << "." << date.month << "." << date.year;
}

namespace {

// Day stepping one day at a time.
void StepOnce(ZR_Date* date, bool forward) {
    if (date->month < 1 || date->month > 12) return;
    if (forward) {
        if (date->day != ZR_DaysOfMonth(date->month, date->year)) {
            date->day = static_cast<short>(date->day + 1);
            return;
        }
        date->day = 1;
        if (++date->month == 13) {
            date->month = 1;
            date->year = static_cast<short>(date->year + 1);
        }
    } else {
        if (date->day != 1) {
            date->day = static_cast<short>(date->day - 1);
            return;
        }
        if (--date->month == 0) {
            date->month = 12;
            date->year = static_cast<short>(date->year - 1);
        }
        date->day = static_cast<short>(ZR_DaysOfMonth(date->month, date->year));
    }
}

ZR_Date Stepped(ZR_Date date, long days) {
    for (long i = 0; i < std::abs(days); ++i) StepOnce(&date, days > 0);
    return date;
}

ZR_Date Added(ZR_Date date, long days) {
    date.Add(days);
    return date;
}

}  // namespace

// Day stepping -----------------------------------------------------------------------------------------------------

TEST(Date, Add_Days_CrossesMonthsAndYears) {
    static const struct {
        ZR_Date from;
        long days;
        ZR_Date to;
    } rows[] = {{{28, 2, 2000}, 1, {29, 2, 2000}},      {{28, 2, 1900}, 1, {1, 3, 1900}},
                {{31, 12, 1999}, 1, {1, 1, 2000}},      {{1, 1, 2000}, -1, {31, 12, 1999}},
                {{1, 3, 2024}, -1, {29, 2, 2024}},      {{15, 6, 2024}, 0, {15, 6, 2024}},
                {{15, 6, 2024}, 146097, {15, 6, 2424}}, {{15, 6, 2024}, -146097, {15, 6, 1624}},
                {{31, 2, 2024}, 1, {32, 2, 2024}},  // behind the month's end a day goes on rising
                {{31, 2, 2024}, -2, {29, 2, 2024}},     {{1, 13, 2024}, 5, {1, 13, 2024}},
                {{1, 0, 2024}, -5, {1, 0, 2024}},       {{31, 12, 32767}, 1, {1, 1, -32768}},
                {{1, 1, -32768}, -1, {31, 12, 32767}}};
    for (const auto& row : rows) EXPECT_EQ(Added(row.from, row.days), row.to) << row.from << " + " << row.days;
}

TEST(Date, Add_AgainstSingleSteps_SameDate) {
    std::mt19937 random(1);
    auto any = [&random](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    for (int i = 0; i < 3000; ++i) {
        bool odd = i % 3 == 0;  // dates outside the calendar too
        ZR_Date date = {static_cast<short>(odd ? any(-40, 70) : any(1, 28)),
                        static_cast<short>(odd ? any(0, 13) : any(1, 12)), static_cast<short>(any(-2000, 3000))};
        long days = any(-1500, 1500);
        ASSERT_EQ(Added(date, days), Stepped(date, days)) << date << " + " << days;
    }
    static const ZR_Date ends[] = {{1, 12, 32767}, {1, 1, -32768}, {-32768, 1, 1}, {32767, 3, 2024},
                                   {0, 3, 2024},   {31, 2, 2024},  {-1, 1, -32768}};
    for (const ZR_Date& date : ends)
        for (long days : {1L, -1L, 40L, -40L, 32740L, -32740L, 65600L, -65600L, 200000L, -200000L, 800000L, -800000L})
            ASSERT_EQ(Added(date, days), Stepped(date, days)) << date << " + " << days;
}

TEST(Date, Add_HugeCounts_EndAtOnceAndReverse) {
    static const ZR_Date dates[] = {{15, 6, 2024}, {29, 2, 2000}, {31, 2, 2024}, {-5, 2, 2024}, {32767, 12, 32767}};
    for (const ZR_Date& date : dates) {
        for (long days : {LONG_MAX, LONG_MIN, LONG_MAX - 1, 1L << 40, -(1L << 40)}) Added(date, days);
    }
    ZR_Date date = {15, 6, 2024};
    EXPECT_EQ(Added(Added(date, LONG_MAX), -LONG_MAX), date);
    EXPECT_EQ(Added(Added(date, 1L << 40), -(1L << 40)), date);
    EXPECT_EQ(Added(Added(date, LONG_MIN), LONG_MAX), Added(date, -1));
}

// Members ----------------------------------------------------------------------------------------------------------

TEST(Date, GetDayNumber_Weekdays_SundayIsZero) {
    static const struct {
        ZR_Date date;
        long number;
        ZR_Date sunday;
    } rows[] = {{{1, 1, 2023}, 0, {1, 1, 2023}},
                {{2, 1, 2023}, 1, {1, 1, 2023}},
                {{7, 1, 2023}, 6, {1, 1, 2023}},
                {{29, 2, 2024}, 4, {25, 2, 2024}},
                {{1, 1, 1970}, 4, {28, 12, 1969}}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.date.GetDayNumber(), row.number) << row.date;
        ZR_Date date = row.date;
        date.PreviousSunday();
        EXPECT_EQ(date, row.sunday) << row.date;
    }
    for (short year = -32768; year < 32700; year = static_cast<short>(year + 61)) {
        long number = ZR_Date{1, 1, year}.GetDayNumber();
        EXPECT_TRUE(number >= 0 && number <= 6) << year;
    }
}

TEST(Date, GetKalenderwoche_AgainstTheCLibrary_IsISO8601) {
    EXPECT_EQ((ZR_Date{1, 1, 2021}.GetKalenderwoche()), 53);
    EXPECT_EQ((ZR_Date{31, 12, 2018}.GetKalenderwoche()), 1);
    ZR_Date date = {1, 1, 1970};
    for (int i = 0; i < 40000; ++i, date.Add(1)) {
        tm local = {};
        local.tm_mday = date.day;
        local.tm_mon = date.month - 1;
        local.tm_year = date.year - 1900;
        local.tm_isdst = -1;
        time_t stamp = timegm(&local);
        gmtime_r(&stamp, &local);
        char week[8];
        strftime(week, sizeof week, "%V", &local);
        ASSERT_EQ(date.GetKalenderwoche(), atol(week)) << date;
        ASSERT_EQ(date.GetDayNumber(), local.tm_wday) << date;
        ASSERT_EQ(date.GetDayNumberInYear(), local.tm_yday + 1) << date;
        ASSERT_EQ(ZR_Date2Seconds(&date, 0), static_cast<unsigned long>(stamp)) << date;
    }
    ZR_Date{-32768, -32768, -32768}.GetKalenderwoche();
    ZR_Date{32767, 32767, 32767}.GetKalenderwoche();
}

TEST(Date, GetDayNumberInYear_EmptyOrImpossible_IsOne) {
    static const struct {
        ZR_Date date;
        long number;
    } rows[] = {{{1, 1, 2024}, 1}, {{31, 12, 2024}, 366}, {{31, 12, 2023}, 365}, {{0, 3, 2024}, 1},
                {{3, 0, 2024}, 1}, {{3, 3, 0}, 1},        {{31, 2, 2024}, 1},    {{1, 13, 2024}, 1}};
    for (const auto& row : rows) EXPECT_EQ(row.date.GetDayNumberInYear(), row.number) << row.date;
}

TEST(Date, AddMonth_Day_StaysBehindTheMonthsEnd) {  // Required
    static const struct {
        ZR_Date from;
        long n;
        ZR_Date added, clamped;
    } rows[] = {
        {{31, 1, 2023}, 1, {31, 2, 2023}, {28, 2, 2023}},       {{31, 1, 2024}, 1, {31, 2, 2024}, {29, 2, 2024}},
        {{15, 12, 2023}, 1, {15, 1, 2024}, {15, 1, 2024}},      {{15, 1, 2023}, 24, {15, 1, 2025}, {15, 1, 2025}},
        {{15, 1, 2023}, 11, {15, 12, 2023}, {15, 12, 2023}},    {{31, 2, 2023}, 0, {31, 2, 2023}, {28, 2, 2023}},
        {{15, 3, 2023}, -5, {15, 3, 2023}, {15, 3, 2023}},      {{15, 12, 32767}, 1, {15, 1, -32768}, {15, 1, -32768}},
        {{15, 3, 2023}, LONG_MIN, {15, 3, 2023}, {15, 3, 2023}}};
    for (const auto& row : rows) {
        ZR_Date date = row.from;
        date.AddMonth(row.n);
        EXPECT_EQ(date, row.added) << row.from << " + " << row.n;
        date = row.from;
        ZR_AddMonth2Date(&date, row.n);
        EXPECT_EQ(date, row.clamped) << row.from << " + " << row.n;
    }
    ZR_Date date = {15, 3, 2023};
    date.AddMonth(LONG_MAX);
    EXPECT_TRUE(date.month >= 1 && date.month <= 12);
}

TEST(Date, EndOfMonth_AndQuarters_ByTable) {
    static const struct {
        ZR_Date date;
        bool isEnd;
        ZR_Date end;
        long quarter;
        ZR_Date first;
        long answer;
    } rows[] = {{{31, 1, 2023}, true, {31, 1, 2023}, 1, {1, 1, 2023}, 1},
                {{28, 2, 2024}, false, {29, 2, 2024}, 1, {1, 1, 2024}, 1},
                {{30, 4, 2023}, true, {30, 4, 2023}, 2, {1, 4, 2023}, 2},
                {{1, 9, 2023}, false, {30, 9, 2023}, 3, {1, 7, 2023}, 3},
                {{31, 12, 2023}, true, {31, 12, 2023}, 4, {1, 10, 2023}, 4},
                {{7, 13, 2023}, false, {7, 13, 2023}, 0, {1, 13, 2023}, 1},  // Required: the month stays, answer 1
                {{7, 0, 2023}, false, {7, 0, 2023}, 0, {1, 0, 2023}, 1}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.date.IsEndOfMonth(), row.isEnd) << row.date;
        ZR_Date date = row.date;
        date.EndOfMonth();
        EXPECT_EQ(date, row.end);
        EXPECT_EQ(row.date.GetQuartal(), row.quarter);
        date = row.date;
        EXPECT_EQ(date.GetQuartalAndSetToFirstDay(), row.answer);
        EXPECT_EQ(date, row.first);
    }
}

// Free functions ---------------------------------------------------------------------------------------------------

TEST(Date, DateDifference_Signs_AndImpossibleDates) {
    static const struct {
        ZR_Date a, b;
        long days;
    } rows[] = {
        {{15, 6, 2024}, {15, 6, 2024}, 0},  {{28, 2, 2024}, {1, 3, 2024}, 2},
        {{1, 3, 2024}, {28, 2, 2024}, -2},  {{1, 1, 1970}, {1, 1, 2017}, 17167},
        {{0, 0, 0}, {1, 1, 2017}, 0},       {{1, 1, 2017}, {1, 0, 2017}, 0},
        {{1, 1, 0}, {1, 1, 2017}, 0},       {{1, 1, 2024}, {31, 2, 2024}, 0},  // guard: no step reaches February 31st
        {{1, 1, 2024}, {1, 13, 2024}, 0},   {{30, 2, 2024}, {31, 2, 2024}, 1},
        {{31, 2, 2024}, {30, 2, 2024}, -1}, {{31, 2, 2024}, {1, 2, 2024}, -30},
        {{1, 2, 2024}, {31, 2, 2024}, 0},   {{1, 1, -32768}, {31, 12, 32767}, 23936532 - 1}};
    for (const auto& row : rows) EXPECT_EQ(ZR_DateDifference(row.a, row.b), row.days) << row.a << " " << row.b;
}

TEST(Date, DateDifference_AgainstSingleSteps_SameNumber) {
    std::mt19937 random(2);
    auto any = [&random](int low, int high) {
        return static_cast<short>(std::uniform_int_distribution<int>(low, high)(random));
    };
    for (int i = 0; i < 400; ++i) {
        bool odd = i % 2 == 0;
        ZR_Date a = {any(odd ? -5 : 1, odd ? 35 : 28), any(1, 12), any(2023, 2025)};
        ZR_Date b = {any(odd ? -5 : 1, odd ? 35 : 28), any(1, 12), any(2023, 2025)};
        if (a.day == 0 || b.day == 0) continue;
        auto key = [](const ZR_Date& date) { return std::tuple(date.year, date.month, date.day); };
        bool forward = key(a) < key(b);
        long steps = 0, expected = 0;
        for (ZR_Date date = a; steps < 70000; ++steps, StepOnce(&date, forward))
            if (date == b) {
                expected = forward ? steps : -steps;
                break;
            }
        ASSERT_EQ(ZR_DateDifference(a, b), expected) << a << " " << b;
    }
}

TEST(Date, DateDifferenceMonths_CountsBothEnds) {
    static const struct {
        ZR_Date a, b;
        long months;
    } rows[] = {{{15, 1, 2024}, {1, 2, 2024}, 2},  {{15, 1, 2024}, {10, 1, 2024}, 0}, {{15, 1, 2024}, {15, 1, 2024}, 1},
                {{15, 1, 2024}, {20, 1, 2024}, 1}, {{15, 6, 2024}, {1, 5, 2024}, 0},  {{15, 6, 2024}, {1, 5, 2025}, 12},
                {{15, 1, 2024}, {1, 1, 2026}, 25}, {{15, 1, 2024}, {31, 12, 2023}, 0}};
    for (const auto& row : rows) EXPECT_EQ(ZR_DateDifferenceMonths(row.a, row.b), row.months) << row.a << " " << row.b;
}

TEST(Date, Comparisons_YearMonthDay_InThisOrder) {
    static const struct {
        ZR_Date a, b;
        int order;
    } rows[] = {{{1, 1, 2024}, {1, 1, 2024}, 0},
                {{31, 12, 2023}, {1, 1, 2024}, -1},
                {{1, 2, 2024}, {31, 1, 2024}, 1},
                {{2, 1, 2024}, {1, 1, 2024}, 1},
                {{1, 1, -1}, {1, 1, 1}, -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(ZR_DateIsLess(&row.a, &row.b), row.order < 0) << row.a << " " << row.b;
        EXPECT_EQ(ZR_DateIsLessEqual(&row.a, &row.b), row.order <= 0) << row.a << " " << row.b;
        EXPECT_EQ(ZR_DateIsGreater(&row.a, &row.b), row.order > 0) << row.a << " " << row.b;
        EXPECT_EQ(ZR_DateIsGreaterEqual(&row.a, &row.b), row.order >= 0) << row.a << " " << row.b;
    }
}

TEST(Date, DaysOfMonth_LeapRule_ForEveryYear) {
    static const struct {
        long month, year, days;
    } rows[] = {{1, 2023, 31},    {2, 2023, 28},     {2, 2024, 29}, {2, 1900, 28}, {2, 2000, 29},
                {4, 2023, 30},    {12, 2023, 31},    {0, 2023, 0},  {13, 2023, 0}, {-1, 2023, 0},
                {LONG_MAX, 1, 0}, {2, LONG_MIN, 29}, {2, 0, 29},    {2, -4, 29}};
    for (const auto& row : rows)
        EXPECT_EQ(ZR_DaysOfMonth(row.month, row.year), row.days) << row.month << " " << row.year;
}

TEST(Date, GetOstersonntag_Years) {
    static const ZR_Date rows[] = {{31, 3, 2024}, {20, 4, 2025}, {23, 4, 2000},
                                   {25, 4, 1943}, {22, 3, 1818}, {5, 4, 2026}};
    for (const auto& row : rows) EXPECT_EQ(ZR_GetOstersonntag(row.year), row);
    ZR_GetOstersonntag(-32768);
    ZR_GetOstersonntag(0);
}

// Time stamps ------------------------------------------------------------------------------------------------------

TEST(Date, Date2Seconds_YearBases) {
    static const struct {
        ZR_Date date;
        long seconds;
        unsigned long stamp;
    } rows[] = {{{1, 1, 2017}, 0, 1483228800},
                {{0, 1, 2017}, 500, 0},
                {{-1, 1, 2017}, 500, 0},
                {{0, 0, 0}, 500, 0},
                {{1, 1, 1970}, 0, 0},
                {{1, 1, 1970}, 77, 77},
                {{31, 12, 2016}, 86399, 1483228799},
                {{2, 1, 1950}, 0, 86400},       // Required: before 1970 only month and day count
                {{1, 3, 1960}, 0, 60 * 86400},  // with the leap rule of the date's own year
                {{1, 13, 1970}, 0, 365UL * 86400},
                {{1, 99, 1970}, 0, 365UL * 86400},
                {{5, -3, 1970}, 0, 4 * 86400}};
    for (const auto& row : rows) EXPECT_EQ(ZR_Date2Seconds(&row.date, row.seconds), row.stamp) << row.date;
    ZR_Date late = {32767, 12, 32767};
    ZR_Date2Seconds(&late, LONG_MAX);
    ZR_Date2Seconds(&late, LONG_MIN);
}

TEST(Date, Seconds2Date_IsTheInverse_Until2999) {
    for (ZR_Date date = {1, 1, 1970}; date.year < 3000; date.Add(13)) {
        long seconds;
        ZR_Date back;
        ZR_Seconds2Date(ZR_Date2Seconds(&date, 4711), &back, &seconds);
        ASSERT_EQ(back, date);
        ASSERT_EQ(seconds, 4711);
    }
    ZR_Date last = {31, 12, 2999}, date;
    long seconds;
    ZR_Seconds2Date(ZR_Date2Seconds(&last, 0) + 86400, &date, &seconds);
    EXPECT_EQ(date, (ZR_Date{32, 12, 2999}));  // stays in 2999
    ZR_Seconds2Date(ULONG_MAX, &date, &seconds);
    EXPECT_EQ(date.year, 2999);
    EXPECT_EQ(seconds, static_cast<long>(ULONG_MAX % 86400));
    ZR_Seconds2Date(0, &date, nullptr);
    EXPECT_EQ(date, (ZR_Date{1, 1, 1970}));
    ZR_Seconds2Date(0, nullptr, &seconds);
    EXPECT_EQ(seconds, 0);
}

TEST(Date, Now_AgreesWithTheLocalClock) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        time_t before = time(nullptr);
        ZR_Date today;
        today.Current();
        long now = ZR_CurrentTime();
        unsigned long stamp = ZR_CurrentTimeStamp();
        long offset = ZR_GetCurrentTimeZoneOffset();
        if (time(nullptr) != before) continue;
        tm local;
        localtime_r(&before, &local);
        EXPECT_EQ(today, (ZR_Date{static_cast<short>(local.tm_mday), static_cast<short>(local.tm_mon + 1),
                                  static_cast<short>(local.tm_year + 1900)}));
        EXPECT_EQ(now, local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec);
        EXPECT_EQ(stamp, ZR_Date2Seconds(&today, now));
        EXPECT_EQ(offset, local.tm_gmtoff);
        EXPECT_EQ(stamp, static_cast<unsigned long>(before + offset));
        return;
    }
}

TEST(Date, TimeParts_Seconds) {
    static const struct {
        long seconds, hours, minutes, secs;
    } rows[] = {{0, 0, 0, 0},        {59, 0, 0, 59},      {3661, 1, 1, 1},
                {86399, 23, 59, 59}, {360000, 100, 0, 0}, {-3661, -1, -1, -1}};
    for (const auto& row : rows) {
        long hours, minutes, secs;
        ZR_Longint2Time(row.seconds, &hours, &minutes, &secs);
        EXPECT_EQ(hours, row.hours) << row.seconds;
        EXPECT_EQ(minutes, row.minutes) << row.seconds;
        EXPECT_EQ(secs, row.secs) << row.seconds;
        EXPECT_EQ(ZR_GetTimeInfo(row.seconds, 1), row.hours);
        EXPECT_EQ(ZR_GetTimeInfo(row.seconds, 2), row.minutes);
        EXPECT_EQ(ZR_GetTimeInfo(row.seconds, 3), row.secs);
        EXPECT_EQ(ZR_GetTimeInfo(row.seconds, 0), 0);
        EXPECT_EQ(ZR_GetTimeInfo(row.seconds, 4), 0);
    }
    ZR_Longint2Time(1, nullptr, nullptr, nullptr);
}

// Text -------------------------------------------------------------------------------------------------------------

using DateHost = fake::Test;

TEST_F(DateHost, DateAndTimeToString_HostFormat_IsAppended) {
    ZR_Text text = MakeText(u"=");
    ZR_Date date = {3, 4, 2024};
    ZR_DateToString(&date, 7, &text);
    ZR_DayTimeToString(3600, 2, &text);
    EXPECT_EQ(Units(text), u"=3.4.2024/73600/2");
    text.Dispose();
}

class DateFormat : public ::testing::Test {
  protected:
    void SetUp() override {
        months.Create();
        days.Create();
        for (const char* name : {"January", "February", "Ma", "April", "May", "June", "July", "August", "September",
                                 "October", "November", "December"})
            months.Append(name);
        for (const char* name : {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"})
            days.Append(name);
    }
    void TearDown() override {
        months.Dispose();
        days.Dispose();
    }
    std::u16string Format(ZR_Date date, long seconds, const std::u16string& format) {
        ZR_Text pattern = MakeText(format), result = MakeText(u"old");
        ZR_FormatDateTime(&date, seconds, &months, &days, &pattern, &result);
        std::u16string units = Units(result);
        result.Dispose();
        pattern.Dispose();
        return units;
    }
    ZR_TextArray months, days;
};

TEST_F(DateFormat, Codes_EachOfTheTable) {
    static const struct {
        ZR_Date date;
        long seconds;
        std::u16string format, expected;
    } rows[] = {
        {{5, 2, 2024}, 0, u"", u""},
        {{5, 2, 2024}, 0, u"plain", u"plain"},
        {{5, 2, 2024}, 0, u"100%%", u"100%"},
        {{5, 2, 2024}, 0, u"%A %a %c", u"Monday Mon Mo"},
        {{4, 2, 2024}, 0, u"%A", u"Sunday"},
        {{5, 2, 2024}, 0, u"%B %b", u"February Feb"},
        {{5, 3, 2024}, 0, u"%B %b|", u"Ma Ma|"},
        {{5, 13, 2024}, 0, u"<%B%b>", u"<>"},
        {{5, 2, 2024}, 0, u"%d %n %m %N", u"5 05 2 02"},
        {{25, 12, 2024}, 0, u"%d %n %m %N", u"25 25 12 12"},
        {{5, 2, 2024}, 0, u"%Y %y", u"2024 24"},
        {{5, 2, 7}, 0, u"<%Y %y>", u"<7 >"},
        {{5, 2, 123}, 0, u"%y", u"3"},
        {{5, 2, 12345}, 0, u"%y", u"34"},
        {{5, 2, 2024}, 3661, u"%H:%M:%S", u"1:01:01"},
        {{5, 2, 2024}, 86399, u"%H:%M:%S", u"23:59:59"},
        {{5, 2, 2024}, 0, u"%I%p", u"12AM"},
        {{5, 2, 2024}, 3599, u"%I%p", u"12AM"},
        {{5, 2, 2024}, -3599, u"%I%p", u"12AM"},
        {{5, 2, 2024}, 3600, u"%I%p", u"1AM"},
        {{5, 2, 2024}, 43199, u"%I%p", u"11AM"},
        {{5, 2, 2024}, 43200, u"%I%p", u"12PM"},
        {{5, 2, 2024}, 46799, u"%I%p", u"12PM"},
        {{5, 2, 2024}, 46800, u"%I%p", u"1PM"},
        {{1, 1, 2021}, 0, u"%W %q", u"53 1"},
        {{5, 11, 2024}, 0, u"%q", u"4"},
        {{5, 2, 2024}, 0, u"<%x%Z>", u"<>"},
        {{5, 2, 2024}, 0, u"end%", u"end"},  // guard: nothing is read behind the end
        {{0, 2, 2024}, 0, u"%d", u""},
        {{5, 0, 2024}, 0, u"%d", u""},
        {{5, 2, 0}, 0, u"%d", u""},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        EXPECT_EQ(Format(row.date, row.seconds, row.format), row.expected) << row.date << " " << row.seconds;
    }
    Format({5, 2, 2024}, LONG_MIN, u"%H%I%M%S%p");
    Format({5, 2, 2024}, LONG_MAX, u"%H%I%M%S%p");
}

TEST_F(DateFormat, NullNamesAndFormat_AppendNothing) {
    ZR_Date date = {5, 2, 2024};
    ZR_Text pattern = MakeText(u"[%A%B%a%b]"), result = MakeText(u"old");
    ZR_FormatDateTime(&date, 0, nullptr, nullptr, &pattern, &result);
    EXPECT_EQ(Units(result), u"[]");
    EXPECT_EQ(result.growStep, 100);
    ZR_FormatDateTime(&date, 0, nullptr, nullptr, nullptr, &result);
    EXPECT_EQ(result.count, 0);
    result.Dispose();
    pattern.Dispose();
}

// Time ranges ------------------------------------------------------------------------------------------------------

namespace {

ZR_TimeRange Range(unsigned long start, unsigned long end) {
    ZR_TimeRange range = {};
    range.startStamp = start;
    range.endStamp = end;
    range.CalcFromTimeStamp();
    return range;
}

void ExpectRange(const ZR_TimeRange& range, unsigned long start, unsigned long end) {
    EXPECT_EQ(range.startStamp, start);
    EXPECT_EQ(range.endStamp, end);
    ZR_TimeRange expected = Range(start, end);
    EXPECT_EQ(range.startDate, expected.startDate);
    EXPECT_EQ(range.endDate, expected.endDate);
    EXPECT_EQ(range.startTime, expected.startTime);
    EXPECT_EQ(range.endTime, expected.endTime);
}

}  // namespace

TEST(TimeRange, CalcFromTimeStamp_Zero_IsCleared) {
    ZR_TimeRange range = Range(1483228801, 0);
    EXPECT_EQ(range.startDate, (ZR_Date{1, 1, 2017}));
    EXPECT_EQ(range.startTime, 1);
    EXPECT_EQ(range.endDate, (ZR_Date{0, 0, 0}));
    EXPECT_EQ(range.endTime, 0);
}

TEST(TimeRange, UnionIntersection_Rows) {
    static const struct {
        unsigned long start, end, otherStart, otherEnd, unionStart, unionEnd, cutStart, cutEnd;
    } rows[] = {{10, 20, 5, 30, 5, 30, 10, 20},  {10, 20, 15, 18, 10, 20, 15, 18},
                {10, 20, 5, 15, 5, 20, 10, 15},  {10, 20, 15, 0, 10, 20, 15, 20},  // an end of 0: nothing for the union
                {10, 20, 0, 15, 10, 20, 10, 15}, {0, 0, 7, 0, 7, 0, 7, 0},         // not set: becomes the other whole
                {0, 20, 7, 9, 7, 9, 7, 9}};
    for (const auto& row : rows) {
        ZR_TimeRange other = Range(row.otherStart, row.otherEnd), range = Range(row.start, row.end);
        range.Union(&other);
        ExpectRange(range, row.unionStart, row.unionEnd);
        range = Range(row.start, row.end);
        range.Intersection(&other);
        ExpectRange(range, row.cutStart, row.cutEnd);
    }
}

TEST(TimeRange, DurationAddCorrect_Rows) {
    EXPECT_EQ(Range(10, 30).GetDuration(), 20UL);
    EXPECT_EQ(Range(30, 10).GetDuration(), 0UL);
    ZR_TimeRange range = Range(86400, 200000);
    range.Add(-86399);
    ExpectRange(range, 1, 113601);
    range.Add(LONG_MAX);
    range.Add(LONG_MIN);
    range = Range(200000, 86400);
    range.CheckAndCorrect();
    ExpectRange(range, 86400, 200000);
    range.CheckAndCorrect();
    ExpectRange(range, 86400, 200000);
}
