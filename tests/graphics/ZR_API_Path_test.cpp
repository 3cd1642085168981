#include "graphics/ZR_API_Path.h"

#include <cmath>
#include <limits>

#include "graphics/ZR_API_Device.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "tests/core/FakeHost.h"

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// A living path with a record of each kind; handed over.
ZR_Handle EveryKind() {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    ZR_AddPathMove(&path, 1, 2);
    ZR_AddPathLine(&path, 3, 4);
    ZR_AddPathCurve(&path, 5, 6, 7, 8, 9, 10);
    ZR_AddPathQuad(&path, 11, 12, 13, 14);
    const ZR_PathRecord arc = {ZR_PATH_ARC, 15, 16, 17, 18, 19, 20, 0}, unknown = {99, 21, 22, 23, 24, 25, 26, 0};
    memcpy(path.AppendGetPtr(), &arc, sizeof arc);
    ZR_AddPathClose(&path);
    memcpy(path.AppendGetPtr(), &unknown, sizeof unknown);
    return path;
}

std::u16string Text(const ZR_Handle& path) {
    ZR_Text text = MakeText(u"old");
    ZR_GetPathText(&path, &text);
    std::u16string units = Units(text);
    EXPECT_EQ(text.growStep, 5 * path.count);
    text.Dispose();
    return units;
}

std::vector<float> Numbers(const ZR_Handle& path, long index) {
    const ZR_PathRecord& r = *ZR_GetPathRecord(&path, index);
    return {r.x, r.y, r.cx1, r.cy1, r.cx2, r.cy2};
}

}  // namespace

TEST(Path, Record_SizeAndGrowStep) {
    ZR_Handle path = EveryKind();
    EXPECT_EQ(path.elementSize, 32);
    EXPECT_EQ(path.growStep, 100);
    EXPECT_EQ(path.capacity, 101);
    EXPECT_EQ(ZR_GetPathRecord(&path, 6)->kind, 6);
    EXPECT_EQ(ZR_GetPathRecord(&path, 3)->flag, 0);
    EXPECT_EQ(ZR_GetPathRecord(&path, 0), nullptr);
    EXPECT_EQ(ZR_GetPathRecord(&path, 8), nullptr);
    path.Dispose();
}

TEST(Path, HandleOfAnotherElementSize_IsNoPath) {
    ZR_Handle bytes = MakeBytes("0123456789012345678901234567890123456789");
    EXPECT_EQ(ZR_GetPathRecord(&bytes, 1), nullptr);
    ZR_AddPathLine(&bytes, 1, 2);
    ZR_OffsetPathHandle(&bytes, {1, 1});
    EXPECT_EQ(bytes.count, 40);
    EXPECT_EQ(bytes.data[0], '0');
    ZR_Text text = MakeText(u"old");
    ZR_GetPathText(&bytes, &text);
    EXPECT_EQ(text.count, 0);
    text.Dispose();
    EXPECT_EQ(ZR_CreatePathFromHandle(&bytes, true, nullptr), nullptr);
    bytes.Dispose();
}

TEST(Path, GetPathText_EveryKind) {
    MemoryCheck check;
    ZR_Handle path = EveryKind();
    EXPECT_EQ(Text(path), u"M1 2 L3 4 C5 6 7 8 9 10 Q11 12 13 14 A17 18 19 20 15 16 Z ");
    path.Resize(0);
    EXPECT_EQ(Text(path), u"");
    ZR_AddPathLine(&path, 1, 2);  // Required: the first is a move, whatever its kind
    EXPECT_EQ(Text(path), u"M1 2");
    path.Resize(0);
    ZR_AddPathClose(&path);
    EXPECT_EQ(Text(path), u"M0 0");
    path.Resize(0);
    ZR_AddPathMove(&path, 1.0F / 3, -0.0625F);
    ZR_AddPathLine(&path, 100, 1e6F);
    EXPECT_EQ(Text(path), u"M0.333 -0.062 L100 1000000");
    path.Dispose();
}

TEST(Path, OffsetPathHandle_AllPointsOfEveryRecord) {
    ZR_Handle path = EveryKind();
    ZR_OffsetPathHandle(&path, {100, 1000});
    EXPECT_EQ(Numbers(path, 1), (std::vector<float>{101, 1002, 100, 1000, 100, 1000}));
    EXPECT_EQ(Numbers(path, 3), (std::vector<float>{109, 1010, 105, 1006, 107, 1008}));
    EXPECT_EQ(Numbers(path, 6), (std::vector<float>{100, 1000, 100, 1000, 100, 1000}));
    EXPECT_EQ(Numbers(path, 7), (std::vector<float>{121, 1022, 123, 1024, 125, 1026}));
    path.Dispose();
}

TEST(Path, ScalePathHandle_PointsByKind) {
    ZR_Handle path = EveryKind();
    const ZR_Rect from = {0, 0, 10, 10}, to = {1000, 100, 120, 1040};  // x: 2 x + 100; y: 4 y + 1000
    ZR_ScalePathHandle(&path, &from, &to);
    EXPECT_EQ(Numbers(path, 1), (std::vector<float>{102, 1008, 0, 0, 0, 0}));
    EXPECT_EQ(Numbers(path, 2), (std::vector<float>{106, 1016, 0, 0, 0, 0}));
    EXPECT_EQ(Numbers(path, 3), (std::vector<float>{118, 1040, 110, 1024, 114, 1032}));
    EXPECT_EQ(Numbers(path, 4), (std::vector<float>{126, 1056, 122, 1048, 0, 0}));
    EXPECT_EQ(Numbers(path, 5), (std::vector<float>{15, 16, 134, 1072, 19, 20}));  // Required
    EXPECT_EQ(Numbers(path, 6), (std::vector<float>{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Numbers(path, 7), (std::vector<float>{21, 22, 23, 24, 25, 26}));
    path.Dispose();
}

TEST(Path, ScalePathHandle_EmptyRectangle_LeavesThePath) {
    const ZR_Rect good = {0, 0, 10, 10};
    static const ZR_Rect rows[] = {{0, 0, 0, 10}, {0, 0, 10, 0}, {10, 0, 10, 0}, {0, 10, 0, 10}, {kNaN, 0, 10, 10}};
    ZR_Handle path = EveryKind();
    std::u16string before = Text(path);
    for (const ZR_Rect& row : rows) {
        ZR_ScalePathHandle(&path, &good, &row);
        EXPECT_EQ(Text(path), before);
        ZR_ScalePathHandle(&path, &row, &good);
        EXPECT_EQ(Text(path), before);
    }
    ZR_ScalePathHandle(&path, nullptr, &good);
    ZR_ScalePathHandle(&path, &good, nullptr);
    EXPECT_EQ(Text(path), before);
    path.Resize(0);
    ZR_ScalePathHandle(&path, &good, &good);
    path.Dispose();
}

TEST(Path, GetPathBoundingBox_ByKind) {
    static const struct {
        ZR_PathRecord first, second;
        ZR_Rect box;
    } rows[] = {
        {{1, 5, 6, 0, 0, 0, 0, 0}, {2, 1, 9, 100, 100, 0, 0, 0}, {6, 1, 5, 9}},
        {{6, 5, 6, 90, 90, 90, 90, 0}, {1, 7, 8, 0, 0, 0, 0, 0}, {6, 5, 7, 8}},  // Required: the first, of any kind
        {{1, 5, 6, 0, 0, 0, 0, 0}, {3, 6, 6, 1, 2, 9, 10, 0}, {2, 1, 9, 10}},
        {{1, 5, 6, 0, 0, 0, 0, 0}, {5, 6, 6, 1, 2, 9, 10, 0}, {2, 1, 9, 10}},
        {{1, 5, 6, 0, 0, 0, 0, 0}, {4, 6, 6, 1, 2, 90, 90, 0}, {2, 1, 6, 6}},
        {{1, 5, 6, 0, 0, 0, 0, 0}, {6, 0, 0, 0, 0, 0, 0, 0}, {6, 5, 5, 6}},
        {{1, 5, 6, 0, 0, 0, 0, 0}, {77, 90, 90, 90, 90, 90, 90, 0}, {6, 5, 5, 6}},
    };
    for (const auto& row : rows) {
        ZR_Handle path;
        ZR_CreatePathHandle(&path);
        memcpy(path.AppendGetPtr(), &row.first, sizeof row.first);
        memcpy(path.AppendGetPtr(), &row.second, sizeof row.second);
        ZR_Rect box = {-1, -1, -1, -1};
        ZR_GetPathBoundingBox(&path, &box);
        EXPECT_EQ(memcmp(&box, &row.box, sizeof box), 0) << row.second.kind << ": " << box.top << " " << box.left;
        path.Resize(0);
        ZR_GetPathBoundingBox(&path, &box);
        EXPECT_EQ(box.right, 0);
        path.Dispose();
    }
}

// CGPath -----------------------------------------------------------------------------------------------------------

TEST(Path, CreatePathFromHandle_EmptyHandle_IsNull) {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    EXPECT_EQ(ZR_CreatePathFromHandle(&path, false, nullptr), nullptr);
    EXPECT_EQ(ZR_CreatePathFromHandle(&path, true, nullptr), nullptr);
    EXPECT_EQ(ZR_CreatePathFromHandle(nullptr, true, nullptr), nullptr);
    ZR_DisposePath(nullptr);
    EXPECT_FALSE(ZR_IsPointInPath(nullptr, {0, 0}, nullptr));
}

TEST(Path, CreatePathFromHandle_FlipsAtTheWholeHeight) {
    ZR_Device device;
    device.Create();
    device.bounds = {10, 0, 100, 110.75F};  // 100.75 points high: 100
    ZR_Handle path = EveryKind();
    CGPath* out = ZR_CreatePathFromHandle(&path, false, &device);
    ASSERT_NE(out, nullptr);
    CGRect box = CGPathGetBoundingBox(out);
    EXPECT_EQ(box.origin.x, 1);
    EXPECT_EQ(CGRectGetMaxX(box), 13);  // neither the arc letter nor the unknown kind
    EXPECT_EQ(box.origin.y, 100 - 14);
    EXPECT_EQ(CGRectGetMaxY(box), 100 - 2);
    ZR_DisposePath(out);
    out = ZR_CreatePathFromHandle(&path, false, nullptr);  // no device: height 0
    box = CGPathGetBoundingBox(out);
    EXPECT_EQ(box.origin.y, -14);
    EXPECT_EQ(CGRectGetMaxY(box), -2);
    ZR_DisposePath(out);
    path.Dispose();
    device.Dispose();
}

TEST(Path, CreatePathFromHandle_FirstRecord_IsAMoveOfAnyKind) {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    ZR_AddPathLine(&path, 10, 10);
    ZR_AddPathLine(&path, 20, 30);
    CGPath* out = ZR_CreatePathFromHandle(&path, false, nullptr);
    CGRect box = CGPathGetBoundingBox(out);
    EXPECT_EQ(box.origin.x, 10);
    EXPECT_EQ(box.size.height, 20);
    ZR_DisposePath(out);
    path.Dispose();
}

TEST(Path, IsPointInPath_EvenOdd) {
    ZR_Device device;
    device.Create();
    device.bounds = {0, 0, 100, 100};
    ZR_Text text = MakeText(u"M0 0L60 0L60 60L0 60ZM20 20L40 20L40 40L20 40Z");
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    long error = 7;
    ZR_CreateHandleFromPathText(&text, &path, &error);
    EXPECT_EQ(error, 0);
    CGPath* out = ZR_CreatePathFromHandle(&path, false, &device);
    EXPECT_TRUE(ZR_IsPointInPath(out, {10, 10}, &device));
    EXPECT_FALSE(ZR_IsPointInPath(out, {30, 30}, &device));  // the hole
    EXPECT_FALSE(ZR_IsPointInPath(out, {70, 10}, &device));
    EXPECT_FALSE(ZR_IsPointInPath(out, {10, 10}, nullptr));
    EXPECT_FALSE(ZR_IsPointInPath(out, {kNaN, 10}, &device));
    ZR_DisposePath(out);
    path.Dispose();
    text.Dispose();
    device.Dispose();
}

TEST(Path, CreatePathFromHandle_TwoSmoothedRecords_StayALine) {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    ZR_AddPathMove(&path, 10, 10);
    ZR_AddPathLine(&path, 50, 10);
    ZR_AddPathClose(&path);
    path.Resize(2);
    CGPath* plain = ZR_CreatePathFromHandle(&path, false, nullptr);
    CGPath* smooth = ZR_CreatePathFromHandle(&path, true, nullptr);
    ASSERT_NE(smooth, nullptr);
    const CGRect a = CGPathGetBoundingBox(plain), b = CGPathGetBoundingBox(smooth);
    EXPECT_EQ(a.size.width, 40);
    EXPECT_EQ(b.size.width, 40);
    EXPECT_EQ(a.origin.x, b.origin.x);
    EXPECT_EQ(a.origin.y, b.origin.y);
    EXPECT_EQ(b.size.height, 0);
    ZR_DisposePath(smooth);
    ZR_DisposePath(plain);
    path.Dispose();
}

TEST(Path, CreatePathFromHandle_NumbersWithoutEnd_AreSafe) {
    ZR_Device device;
    device.Create();
    for (float height : {kNaN, kInf, -kInf, 1e38F, 1e19F}) {
        device.bounds = {0, 0, 100, height};
        ZR_Handle path = EveryKind();
        ZR_AddPathLine(&path, kNaN, kInf);
        ZR_AddPathCurve(&path, kNaN, kInf, -kInf, 1e38F, -1e38F, 0);
        ZR_Rect box;
        ZR_GetPathBoundingBox(&path, &box);
        for (bool smooth : {false, true}) {
            CGPath* out = ZR_CreatePathFromHandle(&path, smooth, &device);
            ZR_IsPointInPath(out, {kInf, kNaN}, &device);
            ZR_DisposePath(out);
        }
        path.Dispose();
    }
    device.Dispose();
}

// Arcs of a device -------------------------------------------------------------------------------------------------

TEST(Path, AddCurvesAsArc_WholeCurvesByCount) {
    static const struct {
        long points, records;
    } rows[] = {{-1, 0}, {0, 0}, {3, 0}, {4, 2}, {6, 2}, {7, 3}, {9, 3}, {10, 4}, {12, 4}, {13, 5}, {14, 4}};
    ZR_Point points[14];
    for (int i = 0; i < 14; ++i) points[i] = {static_cast<float>(i), static_cast<float>(-i)};
    ZR_Device device;
    device.Create();
    for (const auto& row : rows) {
        ZR_Handle path;
        ZR_CreatePathHandle(&path);
        device.AddCurvesAsArc(&path, points, row.points);
        EXPECT_EQ(path.count, row.records) << row.points;
        for (long i = 2; i <= path.count; ++i) {
            auto at = static_cast<float>(3 * (i - 2));
            EXPECT_EQ(Numbers(path, i), (std::vector<float>{at + 3, -at - 3, at + 1, -at - 1, at + 2, -at - 2}));
            EXPECT_EQ(ZR_GetPathRecord(&path, i)->kind, ZR_PATH_CURVE);
        }
        if (path.count) { EXPECT_EQ(ZR_GetPathRecord(&path, 1)->kind, ZR_PATH_MOVE); }
        path.Dispose();
    }
    device.AddCurvesAsArc(nullptr, points, 4);
    device.AddCurvesAsArc(points, 4);  // no context
    device.AddCurvesAsArc(nullptr, 4);
    device.Dispose();
}

TEST(Path, AddCurvesAsArc_OnTheContext_FillsTheDisc) {
    ZR_Device device;
    ASSERT_TRUE(device.CreateOffscreen(20, 20, /*bitmap*/ true, 0, 0));
    ZR_Point points[13];
    long n = ZR_arc2polybezier(points, 2, 2, 16, 16, 0, 360);
    ASSERT_EQ(n, 13);
    CGContextSetRGBFillColor(device.context, 1, 0, 0, 1);
    device.AddCurvesAsArc(points, n);
    CGContextFillPath(device.context);
    CGContextFlush(device.context);
    auto red = [&device](int x, int y) { return device.bitmapData[(y * 20 + x) * 4]; };
    EXPECT_EQ(red(10, 10), 255);
    EXPECT_EQ(red(10, 3), 255);
    EXPECT_EQ(red(3, 10), 255);
    EXPECT_EQ(red(16, 10), 255);
    EXPECT_EQ(red(3, 3), 0);  // the corner lies outside
    EXPECT_EQ(red(0, 0), 0);
    device.Dispose();
}

// Arcs -------------------------------------------------------------------------------------------------------------

TEST(PathArc, Polybezier_PointsBySweep) {
    static const struct {
        float start, sweep;
        long points;
    } rows[] = {{0, 0, 0},     {0, 90, 4},   {0, 91, 7},    {0, 180, 7},    {0, 270, 10}, {0, 360, 13},  {0, 1000, 13},
                {0, -90, 4},   {0, -180, 7}, {0, -360, 13}, {0, -1000, 13}, {45, 30, 4},  {200, 100, 7}, {0, 1, 4},
                {kNaN, 90, 0}, {0, kNaN, 0}, {kInf, 90, 0}, {0, kInf, 0},   {0, -kInf, 0}};
    for (const auto& row : rows) {
        ZR_Point points[13];
        EXPECT_EQ(ZR_arc2polybezier(points, 0, 0, 20, 20, row.start, row.sweep), row.points)
            << row.start << " " << row.sweep;
        EXPECT_EQ(ZR_arc2polybezier(nullptr, 0, 0, 20, 20, row.start, row.sweep), row.points);
    }
}

TEST(PathArc, Polybezier_Quarter_EndsAndControls) {
    ZR_Point p[13];
    ASSERT_EQ(ZR_arc2polybezier(p, 10, 20, 200, 200, 0, 90), 4);
    const float k = 0.5522848F * 100;
    const ZR_Point expected[] = {{210, 120}, {210, 120 + k}, {110 + k, 220}, {110, 220}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(p[i].x, expected[i].x, 1e-3) << i;
        EXPECT_NEAR(p[i].y, expected[i].y, 1e-3) << i;
    }
    ASSERT_EQ(ZR_arc2polybezier(p, 10, 20, 200, 200, 0, -90), 4);  // the other way
    EXPECT_NEAR(p[3].x, 110, 1e-3);
    EXPECT_NEAR(p[3].y, 20, 1e-3);
}

TEST(PathArc, Polybezier_Ellipse_EndsAtTheTrueAngle) {
    for (float angle : {30.0F, 45.0F, 60.0F, 100.0F, 200.0F, 330.0F}) {
        ZR_Point p[13];
        long n = ZR_arc2polybezier(p, -200, -50, 400, 100, 0, angle);
        ASSERT_GT(n, 0);
        double degrees = std::atan2(p[n - 1].y, p[n - 1].x) * 180 / 3.14159265358979;
        EXPECT_NEAR(std::fmod(degrees + 360, 360), angle, 1e-3);
        EXPECT_NEAR(p[n - 1].x * p[n - 1].x / 40000 + p[n - 1].y * p[n - 1].y / 2500, 1, 1e-4);
    }
}

TEST(PathArc, Polybezier_ZeroOrEndlessBox_IsSafe) {
    ZR_Point p[13];
    for (float size : {0.0F, -10.0F, kInf, kNaN, 1e38F})
        for (float start : {0.0F, 30.0F, 90.0F, 1e30F}) {
            long n = ZR_arc2polybezier(p, 0, 0, size, 10, start, 60);
            EXPECT_TRUE(n >= 0 && n <= 13);
            n = ZR_arc2polybezier(p, 0, 0, 10, size, start, 60);
            EXPECT_TRUE(n >= 0 && n <= 13);
        }
}

TEST(PathArc, AddArcPart_WithoutFirst_LeavesIt) {
    ZR_Point p[4] = {{-7, -7}, {}, {}, {}};
    ZR_add_arc_part(p, 0, 0, 2, 2, 0, 1, /*writeFirst*/ false);
    EXPECT_EQ(p[0].x, -7);
    EXPECT_NEAR(p[3].x, 1 + std::cos(1.0F), 1e-6);
    ZR_add_arc_part(p, 0, 0, 2, 2, 1, 1, /*writeFirst*/ true);  // a span of nothing
    for (const ZR_Point& point : p) EXPECT_NEAR(point.y, 1 + std::sin(1.0F), 1e-6);
}

TEST(PathArc, UnstretchAngle_AxesStayTurnsAreKept) {
    static const struct {
        float degrees, rx, ry, radians;
    } rows[] = {
        {0, 10, 5, 0},
        {90, 10, 5, 1.5707964F},
        {180, 10, 5, 3.1415927F},
        {-90, 10, 5, -1.5707964F},
        {45, 10, 10, 0.7853982F},
        {45, 10, 5, 1.1071487F},    // atan2(1 / 5, 1 / 10)
        {45, -10, -5, 1.1071487F},  // the sign of a radius does not count
        {405, 10, 5, 1.1071487F + 6.2831853F},
        {-315, 10, 5, 1.1071487F - 6.2831853F},
        {45, 0, 5, 0.7853982F},  // no ellipse, no other angle
        {45, 5, 0, 0.7853982F},
    };
    for (const auto& row : rows) {
        float angle = row.degrees;
        ZR_unstretch_angle(&angle, row.rx, row.ry);
        EXPECT_NEAR(angle, row.radians, 1e-5) << row.degrees;
    }
}

TEST(PathArc, Roundr_HalfGoesUp) {
    static const struct {
        float value;
        long out;
    } rows[] = {{0.5F, 1}, {0.49F, 0}, {-0.5F, 0},       {-0.51F, -1},
                {2.5F, 3}, {kNaN, 0},  {kInf, LONG_MAX}, {-kInf, LONG_MIN}};
    for (const auto& row : rows) EXPECT_EQ(roundr(row.value), row.out) << row.value;
}
