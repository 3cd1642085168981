#include "core/ZR_API_Color.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/core/FakeHost.h"

namespace {

ZR_RGBColor WebColor(const char* text) {
    ZR_RGBColor color = {1, 2, 3, 0.25F};
    ZR_Text source;
    source.Create();
    source.AddString(text);
    color.SetWebText(&source);
    source.Dispose();
    return color;
}

}  // namespace

TEST(Color, SetColorText_EveryName_HighBytesOnly) {  // Required: 0xFF becomes 0xFF00
    static const struct {
        const char* name;
        unsigned value;
    } rows[] = {{"White", 0xFFFFFF},  {"Lime", 0x00FF00},    {"Silver", 0xC0C0C0},
                {"Green", 0x008000},  {"Gray", 0x808080},    {"Aqua", 0x00FFFF},
                {"Black", 0x000000},  {"Teal", 0x008080},    {"Red", 0xFF0000},
                {"Blue", 0x0000FF},   {"Maroon", 0x800000},  {"Navy", 0x000080},
                {"Yellow", 0xFFFF00}, {"Fuchsia", 0xFF00FF}, {"Olive", 0x808000},
                {"Purple", 0x800080}, {"purple", 0x800080},  {"PURPLE", 0x800080},
                {"Purpl", 0},         {"Purple ", 0},        {"", 0}};
    for (const auto& row : rows) {
        ZR_RGBColor color = {1, 2, 3, 0.25F};
        ZR_Text name;
        name.Create();
        name.AddString(row.name);
        color.SetColorText(&name);
        EXPECT_EQ(color.red, (row.value >> 16) << 8) << row.name;
        EXPECT_EQ(color.green, (row.value >> 8 & 0xFF) << 8) << row.name;
        EXPECT_EQ(color.blue, (row.value & 0xFF) << 8) << row.name;
        EXPECT_EQ(color.alpha, 1) << row.name;
        name.Dispose();
    }
    ZR_RGBColor color = {1, 2, 3, 0.25F};
    color.SetColorText(nullptr);
    EXPECT_EQ(color.red, 0);
}

TEST(Color, SetWebText_Forms) {
    static const struct {
        const char* text;
        unsigned short red, green, blue;
        float alpha;
    } rows[] = {
        {"rgb16(10,20,30)", 10, 20, 30, 1},
        {"rgb16(10,20,30,0.5)", 10, 20, 30, 0.5F},
        {"rgb16(10,20,30,7)", 10, 20, 30, 1},
        {"rgb16(10,20,30,-1)", 10, 20, 30, 0},
        {"rgb16(10,20,30,0.5", 10, 20, 30, 1},
        {"rgb16(10,20", 10, 0, 0, 1},
        {"rgb16(10", 0, 0, 0, 1},
        {"rgb16(", 0, 0, 0, 1},
        {"rgb16(,,,)", 0, 0, 0, 0},
        {"rgb16(65536,65535,70000)", 0, 65535, 4464, 1},
        {"RGB16(10,20,30)", 0, 0, 0, 1},
        {"#F00", 0xFFFF, 0, 0, 1},
        {"#1a9", 0x1111, 0xAAAA, 0x9999, 1},
        {"#1A2B3C", 0x11AA, 0x22BB, 0x33CC, 1},  // Required: c1 c1 c2 c2
        {"#FFFFFF", 0xFFFF, 0xFFFF, 0xFFFF, 1},
        {"#12345", 0, 0, 0, 1},
        {"#", 0, 0, 0, 1},
        {"#xyz", 0, 0, 0, 1},
        {"white", 0xFF00, 0xFF00, 0xFF00, 1},
        {"nonsense", 0, 0, 0, 1},
        {"", 0, 0, 0, 1},
    };
    for (const auto& row : rows) {
        ZR_RGBColor color = WebColor(row.text);
        EXPECT_EQ(color.red, row.red) << row.text;
        EXPECT_EQ(color.green, row.green) << row.text;
        EXPECT_EQ(color.blue, row.blue) << row.text;
        EXPECT_EQ(color.alpha, row.alpha) << row.text;
    }
    ZR_RGBColor color = {1, 2, 3, 0.25F};
    color.SetWebText(nullptr);
    EXPECT_EQ(color.red, 0);
    EXPECT_EQ(color.alpha, 1);
}

TEST(Color, SetAlphaProzent_Percent_IsClamped) {
    static const struct {
        float percent, alpha;
    } rows[] = {{0, 0},
                {50, 0.5F},
                {100, 1},
                {101, 1},
                {-1, 0},
                {std::numeric_limits<float>::quiet_NaN(), 0},
                {std::numeric_limits<float>::infinity(), 1}};
    for (const auto& row : rows) {
        ZR_RGBColor color = {1, 2, 3, 0.25F};
        color.SetAlphaProzent(row.percent);
        EXPECT_EQ(color.alpha, row.alpha) << row.percent;
        EXPECT_EQ(color.green, 2);
    }
}

TEST(Color, WritingTexts_WebAndLedger) {
    static const struct {
        ZR_RGBColor color;
        const char *web, *ledger;
    } rows[] = {{{0, 0, 0, 0}, "#000000", "rgb16(0,0,0,0)"},
                {{0xFFFF, 0xFF00, 0x1AFF, 1}, "#FFFF1A", "rgb16(65535,65280,6911,1)"},
                {{10, 20, 30, 0.5F}, "#000000", "rgb16(10,20,30,0.5)"},
                {{0xABCD, 0x0F00, 0x00FF, 0.12345F}, "#AB0F00", "rgb16(43981,3840,255,0.1234)"}};
    for (const auto& row : rows) {
        MemoryCheck check;
        char web[8], svg[8];
        row.color.GetRGBWebtext(web);
        ZR_GetSVGColor(&row.color, svg);
        EXPECT_STREQ(web, row.web);
        EXPECT_STREQ(svg, row.web);
        ZR_Text ledger = row.color.CreateColorText_zrLedger();
        EXPECT_STREQ(ledger.GetCStringPtr(), row.ledger);
        ledger.Dispose();
    }
}

namespace {

struct IndexRow {
    long index;
    unsigned short red, green, blue;
};

ZR_RGBColor Indexed(long index) {
    ZR_RGBColor color = {1, 2, 3, 0.25F};
    color.Set4DIndex(index);
    return color;
}

void ExpectColor(const IndexRow& row, int allowance = 0) {
    ZR_RGBColor color = Indexed(row.index);
    EXPECT_NEAR(color.red, row.red, allowance) << row.index;
    EXPECT_NEAR(color.green, row.green, allowance) << row.index;
    EXPECT_NEAR(color.blue, row.blue, allowance) << row.index;
    EXPECT_EQ(color.alpha, 1) << row.index;
}

constexpr IndexRow kGivenHues[] = {
    {16, 0xFFFF, 0x0001, 0x5E98}, {48, 0xFFFF, 0xC02F, 0x0001},  {64, 0xBC90, 0xFFFF, 0x0001},
    {96, 0x0001, 0xB440, 0xFFFF}, {120, 0xFFFF, 0x03DF, 0xEFF6},
};

// The angle of a colour on the hue circle, in degrees from red.
double HueOf(double red, double green, double blue) {
    double high = std::max({red, green, blue}), low = std::min({red, green, blue}), range = high - low;
    if (high == red) return std::fmod(360 + 60 * (green - blue) / range, 360);
    return high == green ? 120 + 60 * (blue - red) / range : 240 + 60 * (red - green) / range;
}

}  // namespace

TEST(Color, Set4DIndex_GivenRows_Exactly) {
    static constexpr IndexRow rows[] = {
        {0, 0xFFFF, 0xFFFF, 0xFFFF},   {1, 0xFFFF, 0xFFFF, 0x0000},   {2, 0xFFFF, 0x6666, 0x0000},
        {3, 0xEEEE, 0x0000, 0x0000},   {4, 0xFFFF, 0x0000, 0x9999},   {5, 0x0000, 0x0000, 0x9999},
        {6, 0x0000, 0x0000, 0xFFFF},   {7, 0x0000, 0x9999, 0xFFFF},   {8, 0x0000, 0xBBBB, 0x0000},
        {9, 0x0000, 0x9999, 0x0000},   {10, 0x6666, 0x3333, 0x0000},  {11, 0x4444, 0x4444, 0x4444},
        {12, 0xDDDD, 0xDDDD, 0xDDDD},  {13, 0x9999, 0x6666, 0x0000},  {14, 0xAAAA, 0xAAAA, 0xAAAA},
        {15, 0x0000, 0x0000, 0x0000},  {128, 0xFFFF, 0xE001, 0xE001}, {135, 0xFFFF, 0x0001, 0x0001},
        {143, 0x60BF, 0x0001, 0x0001}, {240, 0xFFFE, 0xFFFE, 0xFFFE}, {244, 0xC000, 0xC000, 0xC000},
        {251, 0x4000, 0x4000, 0x4000}, {255, 0x0000, 0x0000, 0x0000},
    };
    for (const IndexRow& row : rows) ExpectColor(row);
    for (const IndexRow& row : kGivenHues) ExpectColor(row);
}

TEST(Color, Set4DIndex_Outside_IsBlack) {
    for (long index : {256L, 1000L, -1L, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()})
        ExpectColor({index, 0, 0, 0});
}

TEST(Color, Set4DIndex_Hues_MoveEvenlyBetweenGivenRows) {  // the rule, worked out in degrees
    for (size_t i = 0; i < std::size(kGivenHues); ++i) {
        const IndexRow& from = kGivenHues[i];
        const IndexRow to = i + 1 < std::size(kGivenHues) ? kGivenHues[i + 1] : IndexRow{128, 0xFFFF, 0x0001, 0x5E98};
        double first = HueOf(from.red, from.green, from.blue), last = HueOf(to.red, to.green, to.blue);
        if (last < first) last += 360;
        for (long row = from.index + 1; row < to.index; ++row) {
            ZR_RGBColor color = Indexed(row);
            EXPECT_EQ(std::max({color.red, color.green, color.blue}), 0xFFFF) << row;
            EXPECT_EQ(std::min({color.red, color.green, color.blue}), 0x0001) << row;
            double hue = first + (last - first) * static_cast<double>(row - from.index) /
                                     static_cast<double>(to.index - from.index);
            double off = std::fmod(HueOf(color.red, color.green, color.blue) - hue + 900, 360) - 180;
            EXPECT_NEAR(off, 0, 0.001) << row;
        }
    }
}

TEST(Color, Set4DIndex_SevenColours_TintsAndShades) {
    for (int family = 0; family < 7; ++family)
        for (int step = 0; step < 16; ++step) {
            auto low = static_cast<unsigned short>(step < 7 ? 0xE001 - 0x2000 * step : 1);
            auto high = static_cast<unsigned short>(step < 8 ? 0xFFFF : 0xFFFF - 5096 * (step - 7));
            auto middle = static_cast<unsigned short>((low + high) / 2);
            const IndexRow rows[7] = {{0, high, low, low}, {0, high, middle, low}, {0, high, high, low},
                                      {0, low, high, low}, {0, low, high, high},   {0, low, low, high},
                                      {0, high, low, high}};
            IndexRow row = rows[family];
            row.index = 128 + 16 * family + step;
            ExpectColor(row);
        }
}

TEST(Color, Set4DIndex_Grays_FallEvenlyBetweenGivenRows) {
    static constexpr struct {
        long row;
        double value;
    } given[] = {{240, 0xFFFE}, {244, 0xC000}, {251, 0x4000}, {255, 0}};
    for (int i = 0; i < 3; ++i)
        for (long row = given[i].row; row <= given[i + 1].row; ++row) {
            double part =
                static_cast<double>(row - given[i].row) / static_cast<double>(given[i + 1].row - given[i].row);
            auto gray =
                static_cast<unsigned short>(std::lround(given[i].value + (given[i + 1].value - given[i].value) * part));
            ExpectColor({row, gray, gray, gray}, /*allowance*/ 1);
        }
}
