#include <stdlib.h>
#include <time.h>

#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

class DateCommands : public CommandTest {
    void Configure(Options&) override {
        setenv("TZ", "EST5", 1);  // five hours behind UTC, no summer time
        tzset();
    }
};

TEST_F(DateCommands, Parts_OfADate_AsDocumented) {
    static const Row rows[] = {
        {23, {D(2024, 2, 29)}, "29"},
        {24, {D(2024, 2, 29)}, "2"},
        {25, {D(2024, 2, 29)}, "2024"},
        {23, {Value(Date{})}, "0"},
        {23, {}, "0"},
        {25, {"text"}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(DateCommands, DayNumber_SundayIsOneAndEmptyIsTwo) {
    static const Row rows[] = {
        {114, {D(2024, 3, 3)}, "1"},
        {114, {D(2024, 3, 2)}, "7"},
        {114, {D(1900, 1, 1)}, "2"},
        {114, {Value(Date{})}, "2"},
        {114, {}, "2"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(DateCommands, AddToDate_ClampsAndCarries) {
    static const Row rows[] = {
        {393, {D(2024, 1, 31), 0, 1, 0}, "2024-02-29"},    {393, {D(2023, 1, 31), 0, 1, 0}, "2023-02-28"},
        {393, {D(2024, 2, 29), 1, 0, 0}, "2025-02-28"},    {393, {D(2024, 1, 31), 0, 1, 1}, "2024-03-01"},
        {393, {D(2024, 1, 15), 0, -13, 0}, "2022-12-15"},  {393, {D(2024, 12, 31), 0, 0, 1}, "2025-01-01"},
        {393, {D(2024, 3, 1), 0, 0, -1}, "2024-02-29"},    {393, {D(2024, 6, 15), -1, -1, -1}, "2023-05-14"},
        {393, {Value(Date{}), 2005, 7, 15}, "2005-07-15"}, {393, {Value(Date{}), 0, 0, 0}, "0000-00-00"},
        {393, {D(2024, 1, 1), 2e9, 0, 0}, "0000-00-00"},   {393, {D(2024, 1, 1), -2e9, 0, 0}, "0000-00-00"},
        {393, {D(2024, 1, 1), 0, 0, 2e9}, "0000-00-00"},   {393, {}, "0000-00-00"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(DateCommands, DateAndTimeOfText_SystemAndIso_AreRead) {
    static const Row rows[] = {
        {102, {"02/29/2024"}, "2024-02-29"},
        {102, {"2024-02-29"}, "2024-02-29"},
        {102, {"2024-02-29T13:20:00"}, "2024-02-29"},
        {102, {"2024-03-01T02:20:00Z"}, "2024-02-29"},
        {102, {"2024-03-01T02:20:00.123Z"}, "2024-02-29"},
        {102, {"2023-02-29T02:20:00"}, "0000-00-00"},
        {102, {"nonsense"}, "0000-00-00"},
        {102, {D(2024, 2, 29)}, "2024-02-29"},
        {102, {Value::Null()}, "0000-00-00"},
        {102, {}, "0000-00-00"},
        {179, {"13:30:45"}, "13:30:45"},
        {179, {"01:30:00 PM"}, "13:30:00"},
        {179, {"2024-02-29T13:20:00"}, "13:20:00"},
        {179, {"2024-02-29T13:20:00Z"}, "08:20:00"},
        {179, {"nonsense"}, "00:00:00"},
        {179, {3661}, "01:01:01"},
        {179, {}, "00:00:00"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(DateCommands, TimeString_BeyondADay_GoesOn) {
    static const Row rows[] = {
        {180, {10000}, "\"02:46:40\""}, {180, {H(86401)}, "\"24:00:01\""},  {180, {0}, "\"00:00:00\""},
        {180, {-61}, "\"-00:01:01\""},  {180, {1e300}, "\"596523:14:07\""}, {180, {}, "\"00:00:00\""},
    };
    EXPECT_ROWS(rows);
}

TEST_F(DateCommands, CurrentDateAndTime_AreThoseOfTheClock) {
    const time_t before = time(nullptr);
    const Date today = Run(33).date();
    const int now = Run(178, {Star()}).integer();
    tm local{};
    localtime_r(&before, &local);
    if (local.tm_hour < 23) { EXPECT_EQ(today, (Date{local.tm_mday, local.tm_mon + 1, local.tm_year + 1900})); }
    EXPECT_GE(now, 0);
    EXPECT_LT(now, 86400);
    EXPECT_LE(std::abs(now - (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec)) % 86400, 5);
}

TEST_F(DateCommands, Clocks_TwoReadings_DoNotGoBack) {
    const int milliseconds = Run(459).integer(), ticks = Run(458).integer();
    EXPECT_GE(Run(459).integer(), milliseconds);
    EXPECT_GE(Run(458).integer(), ticks);
    EXPECT_GT(milliseconds, 0);
}

TEST_F(DateCommands, Timestamp_Now_IsIsoWithMilliseconds) {
    const std::string text = ToUtf8(Run(1445).text());
    ASSERT_EQ(text.size(), 24u);
    EXPECT_EQ(text[10], 'T');
    EXPECT_EQ(text[19], '.');
    EXPECT_EQ(text[23], 'Z');
}

TEST_F(DateCommands, DefaultCentury_Pivot_DecidesTwoDigits) {
    Run(392, {19, 40});
    EXPECT_EQ(Text(102, {"01/01/39"}), "2039-01-01");
    EXPECT_EQ(Text(102, {"01/01/40"}), "1940-01-01");
    Run(392, {-1, 5});
    Run(392, {"x"});
    EXPECT_EQ(Text(102, {"01/01/40"}), "1940-01-01");
    Run(392, {19, 30});
    EXPECT_EQ(Text(102, {"01/01/39"}), "1939-01-01");
}

}  // namespace
}  // namespace zrhost::test
