// Commands by number: Math, Boolean, On a Series.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "host/CommandCall.h"
#include "host/Formats.h"
#include "host/Text.h"

namespace zrhost {
namespace {

// Rounding ---------------------------------------------------------------------------------------------------------

// What a number of at most 15 digits may be off after one multiplication, as a share of it: 29.8725 times 1000 is
// 29872.499999999996 and still means a half.
constexpr double kNoise = 4 * std::numeric_limits<double>::epsilon();

double NearestWhole(double scaled) {  // halves away from zero
    const double size = std::fabs(scaled), whole = std::floor(size);
    return std::copysign(size - whole >= 0.5 - kNoise * size ? whole + 1 : whole, scaled);
}

double WholeBelow(double scaled) {
    const double nearest = std::nearbyint(scaled);
    return std::fabs(scaled - nearest) <= kNoise * std::fabs(scaled) ? nearest : std::floor(scaled);
}

double AtPlaces(double number, int places, double (*whole)(double)) {
    if (!std::isfinite(number) || number == 0 || places > 308) return number;
    if (places < -308) return 0;  // no power of ten beyond: nothing of the number is left
    const double power = std::pow(10.0, std::abs(places));
    const double scaled = places < 0 ? number / power : number * power;
    if (!(std::fabs(scaled) < 4503599627370496.0)) return number;  // no digits behind the wanted place
    const double result = places < 0 ? whole(scaled) * power : whole(scaled) / power;
    return std::isfinite(result) ? result + 0.0 : number;  // no negative zero
}

// 94 Round(number; places): halves away from zero; negative places round before the point.
void Round(CommandCall& call) { call.setReal(AtPlaces(call.number(1), call.integer(2), NearestWhole)); }

// 95 Trunc(number; places): toward negative infinity.
void Trunc(CommandCall& call) { call.setReal(AtPlaces(call.number(1), call.integer(2), WholeBelow)); }

// 8 Int(number): the whole part; a negative number is truncated away from zero.
void Int(CommandCall& call) { call.setReal(std::floor(call.number(1))); }

// 9 Dec(number): what Int leaves, never negative.
void Dec(CommandCall& call) {
    const double number = call.number(1);
    call.setReal(std::isfinite(number) ? number - std::floor(number) : 0);
}

// 98 Mod(number; divisor): both are rounded first; 0 for the divisor 0.
void Mod(CommandCall& call) {
    const double divisor = std::round(call.number(2)), rest = std::fmod(std::round(call.number(1)), divisor);
    call.setReal(divisor == 0 || std::isnan(rest) ? 0 : rest + 0.0);
}

// 99 Abs(number)
void Abs(CommandCall& call) { call.setReal(std::fabs(call.number(1))); }

// Functions --------------------------------------------------------------------------------------------------------

// 17 Sin(radians)
void Sin(CommandCall& call) { call.setReal(std::sin(call.number(1))); }

// 18 Cos(radians)
void Cos(CommandCall& call) { call.setReal(std::cos(call.number(1))); }

// 19 Tan(radians)
void Tan(CommandCall& call) { call.setReal(std::tan(call.number(1))); }

// 20 Arctan(number)
void Arctan(CommandCall& call) { call.setReal(std::atan(call.number(1))); }

// 21 Exp(number)
void Exp(CommandCall& call) { call.setReal(std::exp(call.number(1))); }

// 22 Log(number): the natural logarithm
void Log(CommandCall& call) { call.setReal(std::log(call.number(1))); }

// 539 Square root(number)
void SquareRoot(CommandCall& call) { call.setReal(std::sqrt(call.number(1))); }

// 100 Random: 0..32767
void Random(CommandCall& call) {
    thread_local std::mt19937 generator{std::random_device{}()};
    call.setLongint(int32_t(generator() & 0x7FFF));
}

// 676 Euro converter(value; from; to): the fixed rates; whole units for lira, francs of Belgium and Luxembourg, peseta.
void EuroConverter(CommandCall& call) {
    static constexpr struct {
        const char16_t* currency;
        double perEuro;
        int places;
    } kRates[] = {
        {u"EUR", 1, 2},       {u"ATS", 13.7603, 2}, {u"BEF", 40.3399, 0}, {u"DEM", 1.95583, 2},  {u"ESP", 166.386, 0},
        {u"FIM", 5.94573, 2}, {u"FRF", 6.55957, 2}, {u"GRD", 340.750, 2}, {u"IEP", 0.787564, 2}, {u"ITL", 1936.27, 0},
        {u"LUF", 40.3399, 0}, {u"NLG", 2.20371, 2}, {u"PTE", 200.482, 2},
    };
    auto find = [](std::u16string_view name) {
        return std::find_if(std::begin(kRates), std::end(kRates),
                            [&](const auto& rate) { return EqualNames(rate.currency, name); });
    };
    const auto from = find(call.text(2)), to = find(call.text(3));
    if (from == std::end(kRates) || to == std::end(kRates)) return call.setReal(0);
    call.setReal(AtPlaces(call.number(1) / from->perEuro * to->perEuro, to->places, NearestWhole));
}

// Booleans ---------------------------------------------------------------------------------------------------------

// 34 Not(boolean)
void Not(CommandCall& call) { call.setBoolean(!call.boolean(1)); }

// 214 True
void True(CommandCall& call) { call.setBoolean(true); }

// 215 False
void False(CommandCall& call) { call.setBoolean(false); }

// 1537 Bool(expression): a number that is not 0 is true; Null and undefined are false.
void Bool(CommandCall& call) { call.setBoolean(call.boolean(1)); }

// Series -----------------------------------------------------------------------------------------------------------

struct Series {
    int count = 0;
    double sum = 0, squares = 0;
};

Series ReadSeries(CommandCall& call) {
    Series series;
    series.count = std::max(0, call.arraySize(1));
    for (int i = 1; i <= series.count; ++i) {
        const double number = call.arrayNumber(1, i);
        series.sum += number;
        series.squares += number * number;
    }
    return series;
}

double VarianceOf(CommandCall& call) {  // of the whole population
    const Series series = ReadSeries(call);
    if (series.count == 0) return 0;
    const double mean = series.sum / series.count;
    double total = 0;
    for (int i = 1; i <= series.count; ++i) {
        const double off = call.arrayNumber(1, i) - mean;
        total += off * off;
    }
    return total / series.count;
}

// 1 Sum(array)
void Sum(CommandCall& call) { call.setReal(ReadSeries(call).sum); }

// 2 Average(array): 0 for no elements
void Average(CommandCall& call) {
    const Series series = ReadSeries(call);
    call.setReal(series.count ? series.sum / series.count : 0);
}

bool IsLater(Date left, Date right) {
    return std::tuple(left.year, left.month, left.day) > std::tuple(right.year, right.month, right.day);
}

void Extreme(CommandCall& call, bool greatest) {
    const int count = std::max(0, call.arraySize(1));
    if (call.kind(1) == eVK_ArrayDate) {
        Date best = count ? call.arrayDate(1, 1) : Date{};
        for (int i = 2; i <= count; ++i) {
            const Date date = call.arrayDate(1, i);
            if (greatest ? IsLater(date, best) : IsLater(best, date)) best = date;
        }
        return call.setDate(best);
    }
    double best = count ? call.arrayNumber(1, 1) : 0;
    for (int i = 2; i <= count; ++i) {
        const double number = call.arrayNumber(1, i);
        if (greatest ? number > best : number < best) best = number;
    }
    if (call.kind(1) == eVK_ArrayTime) return call.setTime(int32_t(best));
    call.setReal(best);
}

// 3 Max(array): of numbers, times or dates
void Max(CommandCall& call) { Extreme(call, /*greatest*/ true); }

// 4 Min(array): of numbers, times or dates
void Min(CommandCall& call) { Extreme(call, /*greatest*/ false); }

// 26 Std deviation(array)
void StdDeviation(CommandCall& call) { call.setReal(std::sqrt(VarianceOf(call))); }

// 27 Variance(array)
void Variance(CommandCall& call) { call.setReal(VarianceOf(call)); }

// 28 Sum squares(array)
void SumSquares(CommandCall& call) { call.setReal(ReadSeries(call).squares); }

constexpr CommandRow kRows[] = {
    {1, Sum},      {2, Average}, {3, Max},           {4, Min},          {8, Int},
    {9, Dec},      {17, Sin},    {18, Cos},          {19, Tan},         {20, Arctan},
    {21, Exp},     {22, Log},    {26, StdDeviation}, {27, Variance},    {28, SumSquares},
    {34, Not},     {94, Round},  {95, Trunc},        {98, Mod},         {99, Abs},
    {100, Random}, {214, True},  {215, False},       {539, SquareRoot}, {676, EuroConverter},
    {1537, Bool},
};

}  // namespace

std::span<const CommandRow> commandsMath() { return kRows; }

}  // namespace zrhost
