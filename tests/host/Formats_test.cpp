#include "host/Formats.h"

#include <cmath>
#include <limits>

#include "tests/host/Host_Test.h"

namespace zrhost {
namespace {

class HostFormats : public HostTest {};

std::string Real(double number, std::u16string_view format, const char* locale = "en-US") {
    return ToUtf8(FormatReal(number, format, FindLocale(locale)));
}

TEST_F(HostFormats, Real_NoFormat_Has13SignificantDigits) {
    static const struct {
        double number;
        const char* text;
    } rows[] = {
        {0, "0"},
        {-0.0, "0"},
        {9, "9"},
        {-9.5, "-9.5"},
        {1.0 / 3, "0.3333333333333"},
        {2.0 / 3, "0.6666666666667"},
        {0.1 + 0.2, "0.3"},
        {3.14159265358979, "3.14159265359"},
        {32768, "32768"},
        {1e14, "100000000000000"},
        {999999999999999, "999999999999999"},
        {1e15, "1e+15"},
        {1.5e20, "1.5e+20"},
        {1e-5, "0.00001"},
        {1.5e-6, "1.5e-6"},
        {-1e300, "-1e+300"},
        {1e100, "1e+100"},
        {123456.789, "123456.789"},
        {0.00012345, "0.00012345"},
        {std::numeric_limits<double>::infinity(), "INF"},
        {-std::numeric_limits<double>::infinity(), "-INF"},
        {std::nan(""), ""},
    };
    for (const auto& row : rows) EXPECT_EQ(Real(row.number, u""), row.text) << row.number;
    EXPECT_EQ(Real(1.5, u"", "de-DE"), "1,5");
    EXPECT_EQ(Real(1.5, u"", "de-CH"), "1.5");
    EXPECT_EQ(Real(5, u"|Style"), "5");
}

TEST_F(HostFormats, Real_Format_PlacesDigitsAndSigns) {
    static const struct {
        const char16_t* format;
        const char *positive, *negative, *zero;
    } rows[] = {
        // of 1234.5, -1234.5 and 0
        {u"###", "<<<", "<<<", ""},
        {u"####", "1234", "<<<<", ""},
        {u"#######", "1234", "-1234", ""},
        {u"#####.##", "1234.5", "-1234.5", ""},
        {u"####0.00", "1234.50", "-1234.50", "0.00"},
        {u"#####0", "1234", "-1234", "0"},
        {u"+#####0;-#####0;0", "+1234", "-1234", "0"},
        {u"#####0DB;#####0CR;0", "1234DB", "1234CR", "0"},
        {u"#####0;(#####0)", "1234", "(1234)", "0"},
        {u"###,##0", "1,234", "-1,234", "0"},
        {u"##,##0.00", "1,234.50", "-1,234.50", "0.00"},
        {u"^^^^^^^", "   1234", "  -1234", "       "},
        {u"^^^,^^0", "  1,234", " -1,234", "      0"},
        {u"^^^,^^0.00", "  1,234.50", " -1,234.50", "      0.00"},
        {u"*******", "***1234", "**-1234", "*******"},
        {u"***,**0", "**1,234", "*-1,234", "******0"},
        {u"***,**0.00", "**1,234.50", "*-1,234.50", "******0.00"},
        {u"$*,**0.00;-$*,**0.00", "$1,234.50", "-$1,234.50", "$****0.00"},
        {u"$^^^^0", "$ 1234", "$-1234", "$    0"},
        {u"$^^^0;-$^^^0", "$1234", "-$1234", "$   0"},
        {u"$^^^0 ;($^^^0)", "$1234 ", "($1234)", "$   0 "},
        {u"00000000", "00001234", "-00001234", "00000000"},
        {u"000,000", "001,234", "-001,234", "000,000"},
        {u"#####-", "1234", "1234-", ""},
        {u"-#####", "1234", "-1234", ""},
        {u"+#####", "+1234", "-1234", "+"},
        {u"#####%", "1234%", "-1234%", "%"},
        {u"##.#", "<<<", "<<<", ""},
        {u"True;;False", "True", "", "False"},
        {u"nothing", "nothing", "nothing", "nothing"},
        {u"#####.", "1234.", "-1234.", "."},
        {u"### ## ##", " 12 34", "- 12 34", "  "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Real(1234.5, row.format), row.positive) << ToUtf8(row.format);
        EXPECT_EQ(Real(-1234.5, row.format), row.negative) << ToUtf8(row.format);
        EXPECT_EQ(Real(0, row.format), row.zero) << ToUtf8(row.format);
    }
}

TEST_F(HostFormats, Real_Format_RoundsAndUsesTheLocale) {
    static const struct {
        double number;
        const char16_t* format;
        const char *us, *german;
    } rows[] = {
        {2.0 / 3, u"0.00", "0.67", "0,67"},
        {1.999, u"##0.00", "2.00", "2,00"},
        {0.5, u".##", ".5", ",5"},
        {0.5, u"#.##", ".5", ",5"},
        {-0.5, u".##", "-.5", "-,5"},
        {-0.001, u"0.00", "0.00", "0,00"},
        {-5, u"0.00", "-5.00", "-5,00"},
        {1234567.891, u"###,###,##0.00", "1,234,567.89", "1.234.567,89"},
        {3.14159265358979, u"##0.00", "3.14", "3,14"},
        {1.0 / 3, u"##0.00000", "0.33333", "0,33333"},
        {32768, u"###,##0 Inhabitants", "32,768 Inhabitants", "32.768 Inhabitants"},
        {759.62, u"&3", "7.60e+2", "7,60e+2"},
        {0.000123, u"&9", "1.23000000e-4", "1,23000000e-4"},
        {50.3, u"&xml", "50.3", "50.3"},
        {-1, u"&x", "0xFFFFFFFF", "0xFFFFFFFF"},
        {-1, u"&$", "$FFFFFFFF", "$FFFFFFFF"},
        {128, u"&x", "0x0080", "0x0080"},
        {128, u"&$", "$80", "$80"},
        {16384, u"&x", "0x4000", "0x4000"},
        {1e300, u"#", "<", "<"},
        {5, u";", "", ""},
        {1, u"0.0#####", "1.0", "1,0"},
        {1.25, u"0.0#####", "1.25", "1,25"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Real(row.number, row.format), row.us) << ToUtf8(row.format);
        EXPECT_EQ(Real(row.number, row.format, "de-DE"), row.german) << ToUtf8(row.format);
    }
    EXPECT_EQ(Real(1234.5, u"###,##0.0", "de-CH"), "1'234.5");
    std::u16string absurd(5000, u'0');
    EXPECT_EQ(FormatReal(1, absurd + u"." + absurd).size(), 10001u);
}

TEST_F(HostFormats, Selectors_FormatNumbers) {
    EngineBlock block = Block();
    block.fReal = 1234.5;
    SetName(&block, u"###,##0.00");
    EXPECT_EQ(Call(ZR_SEL_FormatReal, &block), 0);
    EXPECT_EQ(TextOf(block), "1,234.50");
    block.fParam1 = -42;
    SetName(&block, u"");
    EXPECT_EQ(Call(ZR_SEL_FormatLongint, &block), 0);
    EXPECT_EQ(TextOf(block), "-42");
    SetName(&block, u"0000");
    EXPECT_EQ(Call(ZR_SEL_FormatLongint, &block), 0);
    EXPECT_EQ(TextOf(block), "-0042");
    std::u16string phone = u"5551234567";
    block.fParam1 = Address(phone.data());
    block.fLength1 = 10;
    SetName(&block, u"(###) ###-####");
    EXPECT_EQ(Call(ZR_SEL_FormatString, &block), 0);
    EXPECT_EQ(TextOf(block), "(555) 123-4567");
    for (PA_Unichar& unit : block.fName) unit = u'0';  // no terminator
    EXPECT_EQ(Call(ZR_SEL_FormatReal, &block), 0);
    EXPECT_EQ(TextOf(block).size(), 255u);
}

TEST_F(HostFormats, ReadNumber_ReadsDigitsWhateverStandsBetween) {
    static const struct {
        const char16_t* text;
        double number;
    } rows[] = {
        {u"", 0},         {u"ABCD", 0},        {u"A1B2C3", 123}, {u"123", 123},         {u"123.4", 123.4},
        {u"-123", -123},  {u"-123e2", -12300}, {u"1e-2", 0.01},  {u"$1,234.5", 1234.5}, {u"- 5", -5},
        {u"1.2.3", 1.23}, {u"e5", 5},          {u"5e", 5},       {u"1e9999", HUGE_VAL}, {u"1e-9999", 0},
        {u".5", 0.5},     {u"hello 7", 7},     {u"5-3", 5},      {u"12e-1-5", 1.2},
    };
    for (const auto& row : rows) EXPECT_EQ(ReadNumber(row.text, u'.'), row.number) << ToUtf8(row.text);
    EXPECT_EQ(ReadNumber(u"1.234,5", u','), 1234.5);
}

// Dates ------------------------------------------------------------------------------------------------------------

std::string DateText(Date date, int format, const char* locale = "en-US") {
    return ToUtf8(FormatDate(date, format, FindLocale(locale)));
}

TEST_F(HostFormats, Date_Formats_ByNumber) {
    const Date date{29, 12, 2006};
    static const struct {
        int format;
        const char *us, *german, *french;
    } rows[] = {
        {1, "12/29/2006", "29.12.2006", "29/12/2006"},
        {2, "Fri, Dec 29, 2006", "Fr, 29. Dez 2006", "ven. 29 d\u00e9c. 2006"},
        {3, "Friday, December 29, 2006", "Freitag, 29. Dezember 2006", "vendredi 29 d\u00e9cembre 2006"},
        {4, "12/29/06", "29.12.06", "29/12/06"},
        {5, "December 29, 2006", "29. Dezember 2006", "29 d\u00e9cembre 2006"},
        {6, "Dec 29, 2006", "29. Dez 2006", "29 d\u00e9c. 2006"},
        {7, "12/29/2006", "29.12.2006", "29/12/2006"},
        {8, "2006-12-29T00:00:00", "2006-12-29T00:00:00", "2006-12-29T00:00:00"},
        {0, "12/29/2006", "29.12.2006", "29/12/2006"},
        {99, "12/29/2006", "29.12.2006", "29/12/2006"},
        {107, "12/29/2006", "29.12.2006", "29/12/2006"},
        {-5, "12/29/2006", "29.12.2006", "29/12/2006"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DateText(date, row.format), row.us) << row.format;
        EXPECT_EQ(DateText(date, row.format, "de-DE"), row.german) << row.format;
        EXPECT_EQ(DateText(date, row.format, "fr-FR"), row.french) << row.format;
    }
    EXPECT_EQ(DateText({5, 1, 2024}, 1), "1/5/2024");
    EXPECT_EQ(DateText({5, 1, 1929}, 4), "01/05/1929");
    EXPECT_EQ(DateText({5, 1, 2030}, 4), "01/05/2030");
}

TEST_F(HostFormats, Date_EmptyOrInvalid_StaysReadable) {
    static const struct {
        Date date;
        int format;
        const char* text;
    } rows[] = {
        {{}, 1, "00/00/00"},
        {{}, 7, "00/00/0000"},
        {{}, 101, ""},
        {{}, 107, ""},
        {{}, 3, ""},
        {{}, 8, "0000-00-00T00:00:00"},
        {{40, 13, 2000}, 3, "13/40/2000"},
        {{-1, -1, -1}, 2, "-01/-01/-0001"},
    };
    for (const auto& row : rows) EXPECT_EQ(DateText(row.date, row.format), row.text) << row.format;
}

TEST_F(HostFormats, Date_Mails_AreInUtc) {
    setenv("TZ", "UTC", 1);
    tzset();
    EXPECT_EQ(ToUtf8(FormatDate({10, 9, 2010}, 10, CurrentLocale(), 47240)), "Fri, 10 Sep 2010 13:07:20 GMT");
    EXPECT_EQ(ToUtf8(FormatDate({13, 9, 2010}, 9, CurrentLocale(), 58313)), "2010-09-13T16:11:53Z");
}

TEST_F(HostFormats, Date_Read_InEveryOrder) {
    static const struct {
        const char* text;
        const char* locale;
        Date date;
    } rows[] = {
        {"2024-02-29", "en-US", {29, 2, 2024}},
        {"2024-02-29", "de-DE", {29, 2, 2024}},
        {"2024-02-29T10:11:12Z", "fr-FR", {29, 2, 2024}},
        {"2024/2/9", "fr-FR", {9, 2, 2024}},
        {"12/29/2006", "en-US", {29, 12, 2006}},
        {"29/12/2006", "fr-FR", {29, 12, 2006}},
        {"29.12.2006", "de-DE", {29, 12, 2006}},
        {"29 12 2006", "de-DE", {29, 12, 2006}},
        {"1/2/00", "en-US", {2, 1, 2000}},
        {"1/2/29", "en-US", {2, 1, 2029}},
        {"1/2/30", "en-US", {2, 1, 1930}},
        {"1/2/99", "en-US", {2, 1, 1999}},
        {"1/2/0", "en-US", {2, 1, 2000}},
        {"Dec 29, 2006", "en-US", {29, 12, 2006}},
        {"Friday, December 29, 2006", "en-US", {29, 12, 2006}},
        {"29. Dezember 2006", "de-DE", {29, 12, 2006}},
        {"29 D\u00c9CEMBRE 2006", "fr-FR", {29, 12, 2006}},
        {"29 may 2006", "de-DE", {29, 5, 2006}},
        {"2/29/2023", "en-US", {}},
        {"13/1/2000", "en-US", {}},
        {"1/32/2000", "en-US", {}},
        {"00/00/00", "en-US", {}},
        {"0000-00-00", "en-US", {}},
        {"1/2", "en-US", {}},
        {"", "en-US", {}},
        {"hello", "en-US", {}},
        {"99999999999/1/1", "en-US", {}},
        {"1/1/99999999999", "en-US", {}},
    };
    for (const auto& row : rows) EXPECT_EQ(ReadDate(FromUtf8(row.text), FindLocale(row.locale)), row.date) << row.text;
}

TEST_F(HostFormats, Date_WrittenForCode_ReadsBack) {  // selector format 2, in every locale
    for (const char* locale : {"en-US", "en-GB", "de-DE", "fr-FR", "fr-CA", "nl-NL", "pt-BR"}) {
        host.reset();
        Options options;
        options.locale = locale;
        host = Host::Start(options);
        for (Date date : {Date{29, 2, 2024}, Date{1, 12, 1899}, Date{5, 6, 7}, Date{}}) {
            EngineBlock block = Block();
            block.fParam1 = date.day;
            block.fParam2 = date.month;
            block.fParam3 = date.year;
            block.fParam4 = 2;
            EXPECT_EQ(Call(ZR_SEL_FormatDate, &block), 0);
            std::string text = TextOf(block);
            SetName(&block, FromUtf8(text));
            EXPECT_EQ(Call(ZR_SEL_EvalDate, &block), 0);
            EXPECT_EQ((Date{int(block.fParam1), int(block.fParam2), int(block.fParam3)}), date)
                << locale << " " << text;
        }
    }
}

TEST_F(HostFormats, Calendar_DayNumbers_RoundTrip) {
    EXPECT_EQ(DayNumber({1, 1, 1970}), 0);
    EXPECT_EQ(DayNumber({29, 2, 2024}), 19782);
    EXPECT_EQ(DayOfWeek({20, 11, 2026}), 6);
    EXPECT_EQ(DayOfWeek({1, 1, 1970}), 5);
    for (int64_t day = -800000; day < 800000; day += 997) EXPECT_EQ(DayNumber(DateOfDayNumber(day)), day);
    EXPECT_TRUE(IsValidDate({29, 2, 2000}));
    EXPECT_FALSE(IsValidDate({29, 2, 1900}));
    SetTwoDigitPivot(20, 50);
    EXPECT_EQ(TwoDigitYear(49), 2149);
    EXPECT_EQ(TwoDigitYear(50), 2050);
    SetTwoDigitPivot(19, 30);
    EXPECT_EQ(TwoDigitYear(100), 100);
    EXPECT_EQ(TwoDigitYear(-1), -1);
}

// Times ------------------------------------------------------------------------------------------------------------

TEST_F(HostFormats, Time_Formats_ByNumber) {
    static const struct {
        int64_t seconds;
        int format;
        const char* text;
    } rows[] = {
        {3723, 1, "01:02:03"},
        {3723, 2, "01:02"},
        {3723, 3, "1 hour 2 minutes 3 seconds"},
        {7261, 3, "2 hours 1 minute 1 second"},
        {3723, 4, "1 hour 2 minutes"},
        {3723, 5, "1:02 AM"},
        {46800, 5, "1:00 PM"},
        {0, 5, "12:00 AM"},
        {43200, 5, "12:00 PM"},
        {3723, 6, "62:03"},
        {3723, 7, "62 minutes 3 seconds"},
        {3723, 8, "0000-00-00T01:02:03"},
        {3723, 9, "1:02 AM"},
        {3723, 10, "1:02:03 AM"},
        {3723, 0, "01:02:03"},
        {0, 1, "00:00:00"},
        {0, 101, ""},
        {90, 101, "00:01:30"},
        {360000, 1, "100:00:00"},
        {-3723, 1, "-01:02:03"},
    };
    for (const auto& row : rows) EXPECT_EQ(ToUtf8(FormatTime(row.seconds, row.format)), row.text) << row.format;
    EXPECT_EQ(ToUtf8(FormatTime(3723, 3, FindLocale("de-DE"))), "1 Stunde 2 Minuten 3 Sekunden");
    EngineBlock block = Block();
    block.fParam1 = 3723;
    block.fParam4 = 1;
    EXPECT_EQ(Call(ZR_SEL_FormatTime, &block), 0);
    EXPECT_EQ(TextOf(block), "01:02:03");
    EXPECT_FALSE(FormatTime(INT64_MIN, 1).empty());
    EXPECT_FALSE(FormatTime(INT64_MAX, 3).empty());
}

TEST_F(HostFormats, Time_Read_WithAndWithoutSecondsAndHalfDay) {
    static const struct {
        const char16_t* text;
        int seconds;
    } rows[] = {
        {u"01:02:03", 3723},
        {u"1:2:3", 3723},
        {u"01:02", 3720},
        {u"7", 25200},
        {u"1:02 PM", 46920},
        {u"12:00 am", 0},
        {u"12:30 p.m.", 45000},
        {u"100:00:00", 360000},
        {u"", 0},
        {u"no time", 0},
        {u"-01:00:00", -3600},
        {u"2024-01-05T10:00:00", 36000},
        {u"0000-00-00T01:02:03", 3723},
        {u"999999999999:0:0", INT32_MAX},
    };
    for (const auto& row : rows) {
        EngineBlock block = Block();
        SetName(&block, row.text);
        EXPECT_EQ(Call(ZR_SEL_EvalTime, &block), 0);
        EXPECT_EQ(block.fParam1, row.seconds) << ToUtf8(row.text);
    }
}

TEST_F(HostFormats, Pattern_Letters_AndQuotedWords) {
    static const struct {
        const char16_t* pattern;
        const char* text;
    } rows[] = {
        {u"yyyy-MM-dd", "2006-01-05"},
        {u"d.M.yy", "5.1.06"},
        {u"EEE EEEE MMM MMMM", "Thu Thursday Jan January"},
        {u"HH:mm:ss", "13:02:03"},
        {u"h:mm a", "1:02 PM"},
        {u"'Day' d", "Day 5"},
        {u"d 'de' MMMM", "5 de January"},
        {u"''", "'"},
        {u"'open", "open"},
        {u"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ToUtf8(FormatPattern({5, 1, 2006}, 46923, row.pattern)), row.text) << ToUtf8(row.pattern);
}

TEST_F(HostFormats, Locale_Unknown_FallsBackByLanguage) {
    static const struct {
        const char *name, *found;
    } rows[] = {
        {"en-US", "en-US"}, {"de_AT", "de-AT"}, {"de-XX", "de-DE"}, {"fr", "fr-FR"},
        {"pt", "pt-BR"},    {"xx-YY", "en-US"}, {"", "en-US"},      {"en-NZ", "en-US"},
    };
    for (const auto& row : rows) EXPECT_EQ(FindLocale(row.name).name, row.found) << row.name;
}

}  // namespace
}  // namespace zrhost
