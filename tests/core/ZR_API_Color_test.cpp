#include "core/ZR_API_Color.h"

#include <limits>

#include "core/ZR_API_Geometry.h"
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

TEST(Geometry, Rect_FieldOrder_TopLeftRightBottom) {  // Required
    ZR_Rect rect = {1, 2, 3, 4};
    EXPECT_EQ(rect.top, 1);
    EXPECT_EQ(rect.left, 2);
    EXPECT_EQ(rect.right, 3);
    EXPECT_EQ(rect.bottom, 4);
    ZR_Point point = {5, 6};
    EXPECT_EQ(point.x, 5);
    EXPECT_EQ(point.y, 6);
}
