#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Math = CommandTest;

TEST_F(Math, Round_PlacesOfBothSigns_HalvesAwayFromZero) {
    static const Row rows[] = {
        {94, {16.857, 2}, "16.86"},
        {94, {32345.67, -3}, "32000"},
        {94, {29.8725, 3}, "29.873"},
        {94, {-1.5, 0}, "-2"},
        {94, {1.5, 0}, "2"},
        {94, {2.5, 0}, "3"},
        {94, {-2.4, 0}, "-2"},
        {94, {-0.4, 0}, "0"},
        {94, {1.005, 2}, "1.01"},
        {94, {1.0049, 2}, "1"},
        {94, {0.0, 2}, "0"},
        {94, {15000, -4}, "20000"},
        {94, {-15000, -4}, "-20000"},
        {94, {123.456, 400}, "123.456"},
        {94, {123.456, -400}, "0"},
        {94, {1e300, 20}, "1e+300"},
        {94, {5e-320, 2}, "0"},
        {94, {4503599627370497.0, 1}, "4.5035996273705e+15"},
        {94, {}, "0"},
        {94, {"text", 2}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Math, Trunc_PlacesOfBothSigns_TowardNegativeInfinity) {
    static const Row rows[] = {
        {95, {216.897, 1}, "216.8"},
        {95, {216.897, -1}, "210"},
        {95, {-216.897, 1}, "-216.9"},
        {95, {-216.897, -1}, "-220"},
        {95, {4.35, 2}, "4.35"},
        {95, {2.3, 1}, "2.3"},
        {95, {1.1, 1}, "1.1"},
        {95, {-9.5, 0}, "-10"},
        {95, {7, 0}, "7"},
        {95, {-5, -400}, "0"},
        {95, {}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Math, IntDecModAbs_BothSigns_AsDocumented) {
    static const Row rows[] = {
        {8, {123.4}, "123"},  {8, {-123.4}, "-124"}, {8, {-3}, "-3"},      {8, {}, "0"},      {9, {173.5}, "0.5"},
        {9, {-1.25}, "0.75"}, {9, {3}, "0"},         {9, {INFINITY}, "0"}, {98, {3, 2}, "1"}, {98, {4, 2}, "0"},
        {98, {3.5, 2}, "0"},  {98, {-5, 3}, "-2"},   {98, {5, 0}, "0"},    {98, {5}, "0"},    {98, {1e12, 7}, "1"},
        {98, {NAN, 7}, "0"},  {99, {-10.3}, "10.3"}, {99, {L(-7)}, "7"},   {99, {}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Math, Functions_OfKnownPoints_GiveTheirValues) {
    static const Row rows[] = {
        {17, {0}, "0"},
        {18, {0}, "1"},
        {19, {0}, "0"},
        {20, {1}, "0.785398163397448"},
        {21, {1}, "2.71828182845905"},
        {22, {1}, "0"},
        {539, {9}, "3"},
        {17, {"x"}, "0"},
        {21, {}, "1"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Math, Random_ManyCalls_StayWithinFifteenBitsAndDiffer) {
    int changes = 0, last = -1;
    for (int i = 0; i < 1000; ++i) {
        const int number = Run(100).integer();
        EXPECT_GE(number, 0);
        EXPECT_LE(number, 32767);
        changes += number != last;
        last = number;
    }
    EXPECT_GT(changes, 900);
}

TEST_F(Math, EuroConverter_KnownCurrencies_FixedRates) {
    static const Row rows[] = {
        {676, {100, "EUR", "DEM"}, "195.58"},  {676, {195.583, "DEM", "EUR"}, "100"}, {676, {1, "EUR", "ITL"}, "1936"},
        {676, {655.957, "frf", "eur"}, "100"}, {676, {1, "EUR", "USD"}, "0"},         {676, {}, "0"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Math, Booleans_OfAllKinds_AsDocumented) {
    static const Row rows[] = {
        {34, {true}, "false"}, {34, {false}, "true"},  {34, {}, "true"},     {214, {}, "true"},
        {215, {}, "false"},    {1537, {2}, "true"},    {1537, {0}, "false"}, {1537, {Value::Null()}, "false"},
        {1537, {}, "false"},   {1537, {"x"}, "false"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Math, Series_OfArrays_AsDocumented) {
    static const Row rows[] = {
        {1, {Reals({1, 2, 3.5})}, "6.5"},
        {1, {Longints({1, 2, 3})}, "6"},
        {1, {Texts({"1"})}, "0"},
        {1, {5}, "0"},
        {2, {Reals({1, 2, 6})}, "3"},
        {2, {Reals({})}, "0"},
        {3, {Reals({1, -2, 6, 4})}, "6"},
        {4, {Reals({1, -2, 6, 4})}, "-2"},
        {3, {Reals({})}, "0"},
        {3, {Dates({{1, 1, 2024}, {29, 2, 2024}, {31, 12, 2023}})}, "2024-02-29"},
        {4, {Dates({{1, 1, 2024}, {29, 2, 2024}, {31, 12, 2023}})}, "2023-12-31"},
        {27, {Reals({2, 4, 4, 4, 5, 5, 7, 9})}, "4"},
        {26, {Reals({2, 4, 4, 4, 5, 5, 7, 9})}, "2"},
        {28, {Reals({1, 2, 3})}, "14"},
        {26, {}, "0"},
    };
    EXPECT_ROWS(rows);
}

}  // namespace
}  // namespace zrhost::test
