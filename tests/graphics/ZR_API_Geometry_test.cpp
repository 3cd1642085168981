#include "graphics/ZR_API_Geometry.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

#include "graphics/ZR_API_Rotation.h"

static constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
static constexpr float kInf = std::numeric_limits<float>::infinity();

static void ExpectRect(const ZR_Rect& r, float top, float left, float right, float bottom) {
    EXPECT_EQ(r.top, top);
    EXPECT_EQ(r.left, left);
    EXPECT_EQ(r.right, right);
    EXPECT_EQ(r.bottom, bottom);
}

TEST(Geometry, Rect_FieldOrder_TopLeftRightBottom) {  // Required
    ZR_Rect rect = {1, 2, 3, 4};
    ExpectRect(rect, 1, 2, 3, 4);
    float four[4];
    memcpy(four, &rect, sizeof four);
    EXPECT_EQ(four[0], rect.top);
    EXPECT_EQ(four[1], rect.left);
    EXPECT_EQ(four[2], rect.right);
    EXPECT_EQ(four[3], rect.bottom);
}

TEST(Geometry, IsOverlapped_Pairs) {
    const ZR_Rect r = {10, 10, 20, 20};
    static const struct {
        ZR_Rect other;
        bool overlapped;
    } rows[] = {
        {{10, 10, 20, 20}, true},  {{12, 12, 14, 14}, true},  {{0, 0, 30, 30}, true},
        {{0, 0, 11, 11}, true},    {{20, 10, 20, 30}, false},  // touches below
        {{10, 20, 30, 20}, false},                             // touches on the right
        {{0, 10, 20, 10}, false},                              // touches above
        {{10, 0, 10, 20}, false},                              // touches on the left
        {{30, 10, 20, 40}, false}, {{10, 30, 40, 20}, false}, {{kNaN, 10, 20, 20}, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(r.IsOverlapped(&row.other), row.overlapped) << row.other.top << " " << row.other.left;
        EXPECT_EQ(row.other.IsOverlapped(&r), row.overlapped);
    }
    EXPECT_FALSE(r.IsOverlapped(nullptr));
}

TEST(Geometry, CutBounds_Intersection_EmptyIsAllZero) {
    static const struct {
        ZR_Rect r, limit, out;
    } rows[] = {
        {{0, 0, 10, 10}, {5, 5, 20, 20}, {5, 5, 10, 10}},   {{5, 5, 8, 8}, {0, 0, 20, 20}, {5, 5, 8, 8}},
        {{0, 0, 10, 10}, {10, 0, 10, 20}, {0, 0, 0, 0}},    {{0, 0, 10, 10}, {0, 10, 20, 10}, {0, 0, 0, 0}},
        {{0, 0, 10, 10}, {50, 50, 60, 60}, {0, 0, 0, 0}},   {{5, 5, 5, 5}, {0, 0, 10, 10}, {0, 0, 0, 0}},
        {{-kInf, 0, 10, kInf}, {1, 1, 5, 5}, {1, 1, 5, 5}},
    };
    for (const auto& row : rows) {
        ZR_Rect r = row.r;
        ZR_CutBounds(&r, &row.limit);
        ExpectRect(r, row.out.top, row.out.left, row.out.right, row.out.bottom);
    }
    ZR_Rect r = {kNaN, 1, 2, 3};
    const ZR_Rect limit = {kNaN, 0, 5, 5};
    ZR_CutBounds(&r, &limit);
    ExpectRect(r, 0, 0, 0, 0);
    ZR_CutBounds(nullptr, &limit);
    ZR_CutBounds(&r, nullptr);
}

TEST(Geometry, RectFrom2PointsAndExpand_AnyOrder) {
    ZR_Rect r;
    ZR_GetRectFrom2Points({10, 40}, {30, 20}, &r);
    ExpectRect(r, 20, 10, 30, 40);
    ZR_GetRectFrom2Points({30, 20}, {10, 40}, &r);
    ExpectRect(r, 20, 10, 30, 40);
    r.ExpandRect(ZR_Point{5, 30});
    ExpectRect(r, 20, 5, 30, 40);
    r.ExpandRect(50, 60);
    ExpectRect(r, 20, 5, 50, 60);
    r.ExpandRect(10, 1);
    ExpectRect(r, 1, 5, 50, 60);
    r.ExpandRect(20, 20);
    ExpectRect(r, 1, 5, 50, 60);
    ZR_GetRectFrom2Points({1, 1}, {1, 1}, nullptr);
}

TEST(Geometry, GetPARect_TruncatesTo16Bits) {
    static const struct {
        ZR_Rect r;
        PA_Rect out;
    } rows[] = {
        {{1.9F, 2.9F, 4.9F, 3.9F}, {1, 2, 3, 4}},  // top, left, bottom, right
        {{-1.9F, -2.9F, 0, 0.5F}, {-1, -2, 0, 0}},
        {{32767, -32768, 32768, 65537}, {32767, -32768, 1, -32768}},
        {{kNaN, kInf, -kInf, 1e30F}, {0, -1, -1, 0}},
    };
    for (const auto& row : rows) {
        PA_Rect out = row.r.GetPARect();
        EXPECT_EQ(out.fTop, row.out.fTop);
        EXPECT_EQ(out.fLeft, row.out.fLeft);
        EXPECT_EQ(out.fBottom, row.out.fBottom);
        EXPECT_EQ(out.fRight, row.out.fRight);
    }
}

TEST(Geometry, CGRects_PlainAndFlipped) {
    const ZR_Rect r = {10, 20, 50, 25};
    for (const CGRect& out : {r.GetCGRect(), r.GetHIRect()})
        EXPECT_TRUE(CGRectEqualToRect(out, CGRectMake(20, 10, 30, 15)));
    ZR_Rect back = {};
    back.SetCGRect(CGRectMake(20, 10, 30, 15));
    ExpectRect(back, 10, 20, 50, 25);
    back = {};
    back.SetCGRect(CGRectMake(20, 10, 30, 15), 100);  // bottom = 100 - 10, top = 90 - 15
    ExpectRect(back, 75, 20, 50, 90);
    back = {};
    const CGRect source = CGRectMake(20, 10, 30, 15);
    back.SetCGRect(&source, 100);
    ExpectRect(back, 75, 20, 50, 90);
    back.SetCGRect(nullptr, 100);
    ExpectRect(back, 75, 20, 50, 90);
}

TEST(Geometry, TruncatedToLong_EndsOfTheRange) {
    static const struct {
        double value;
        long out;
    } rows[] = {{0, 0},           {2.9, 2},          {-2.9, -2}, {1e30, LONG_MAX},   {-1e30, LONG_MIN},
                {kInf, LONG_MAX}, {-kInf, LONG_MIN}, {kNaN, 0},  {0x1p63, LONG_MAX}, {-0x1p63, LONG_MIN}};
    for (const auto& row : rows) EXPECT_EQ(ZR_TruncatedToLong(row.value), row.out) << row.value;
}

TEST(Geometry, Rotation_BothCreators_KeepAll) {
    ZR_Rotation rotation;
    rotation.Create(45, 2, ZR_Point{3, 4});
    EXPECT_EQ(rotation.angle, 45);
    EXPECT_EQ(rotation.kind, 2);
    EXPECT_EQ(rotation.centerX, 3);
    EXPECT_EQ(rotation.centerY, 4);
    rotation.Create(90, 1, 5, 6);
    EXPECT_EQ(rotation.angle, 90);
    EXPECT_EQ(rotation.kind, 1);
    EXPECT_EQ(rotation.centerX, 5);
    EXPECT_EQ(rotation.centerY, 6);
}
