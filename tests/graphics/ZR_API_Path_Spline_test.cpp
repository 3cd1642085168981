#include <cmath>
#include <limits>
#include <numeric>

#include "graphics/ZR_API_Path.h"
#include "tests/core/FakeHost.h"

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

ZR_Handle PathOf(const std::vector<ZR_Point>& points) {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    for (const ZR_Point& p : points) ZR_AddPathLine(&path, p.x, p.y);
    return path;
}

// The tangents in double precision by the same ten sweeps.
std::vector<double> Tangents(const std::vector<double>& x, const std::vector<double>& length) {
    size_t n = x.size();
    std::vector<double> d(n), ratio(n, 1), sub(n), diagonal(n), super(n), b(n);
    for (size_t i = 0; i + 1 < n; ++i) d[i] = x[i + 1] - x[i];
    for (size_t i = 0; i + 2 < n; ++i) ratio[i] = length[i] / length[i + 1];
    for (size_t i = 1; i + 1 < n; ++i) {
        double r = ratio[i - 1];
        sub[i] = 1;
        diagonal[i] = 2 * r * (r + 1);
        super[i] = r * r * ratio[i];
        b[i] = 3 * (r * r * d[i] + d[i - 1]);
    }
    diagonal[0] = 2;
    super[0] = ratio[0];
    sub[n - 1] = 1;
    diagonal[n - 1] = 2 * ratio[n - 2];
    b[0] = 3 * d[0];
    b[n - 1] = 3 * d[n - 2];
    std::vector<double> v(n), next(n);
    for (size_t i = 0; i < n; ++i) v[i] = b[i] / diagonal[i];
    for (int sweep = 0; sweep < 10; ++sweep) {
        for (size_t i = 0; i < n; ++i)
            next[i] = (b[i] - (i > 0 ? sub[i] * v[i - 1] : 0) - (i + 1 < n ? super[i] * v[i + 1] : 0)) / diagonal[i];
        v = next;
    }
    return v;
}

}  // namespace

TEST(Spline, Generate_Tangents_AsTheSweepsGiveThem) {
    const std::vector<ZR_Point> points = {{0, 0}, {30, 40}, {90, 40}, {100, 0}, {250, -20}};
    std::vector<double> x, y, length;
    for (size_t i = 0; i < points.size(); ++i) {
        x.push_back(points[i].x);
        y.push_back(points[i].y);
        if (i > 0) length.push_back(std::hypot(x[i] - x[i - 1], y[i] - y[i - 1]));
    }
    ZR_Spline spline(points.data(), 5);
    spline.Generate();
    std::vector<double> tx = Tangents(x, length), ty = Tangents(y, length);
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_NEAR(spline.tangentX[i], tx[i], 0.01) << i;
        EXPECT_NEAR(spline.tangentY[i], ty[i], 0.01) << i;
    }
    EXPECT_EQ(spline.ratio[3], 1);
    EXPECT_NEAR(spline.endTangentX[0], spline.tangentX[1] * 50 / 60, 0.01);
}

TEST(Spline, MatrixSolve_ExactlyTenSweeps) {  // Required: an approximation
    const ZR_Point points[] = {{0, 0}, {1, 0}};
    ZR_Spline spline(points, 2);
    spline.diagonal[0] = spline.diagonal[1] = 2;
    spline.super[0] = spline.sub[1] = 1;
    float b[] = {3, 0};  // 2 u + v = 3, u + 2 v = 0: u = 2, v = -1
    spline.MatrixSolve(b);
    EXPECT_NE(b[0], 2);  // not solved
    EXPECT_NEAR(b[0], 2 - 0.5 / 1024, 1e-6);
    EXPECT_NEAR(b[1], -1 + 1.0 / 1024, 1e-6);
}

TEST(Spline, FewPoints_AreSafe) {
    for (long n : {-1L, 0L, 1L, 2L}) {
        const ZR_Point points[] = {{1, 2}, {3, 4}};
        ZR_Spline spline(points, n);
        spline.Generate();
        EXPECT_EQ(spline.count, std::max(n, 0L));
    }
    ZR_Spline none(nullptr, 5);
    EXPECT_EQ(none.count, 0);
}

TEST(Spline, SmoothPath_TwoRecords_StayStraight) {
    ZR_Handle path = PathOf({{0, 0}, {100, 100}}), smoothed;
    EXPECT_FALSE(ZR_CreateSmoothPath(&path, &smoothed));
    EXPECT_EQ(smoothed.count, 0);
    path.Dispose();
}

TEST(Spline, SmoothPath_StraightPoints_GiveALineForEveryFourPoints) {
    MemoryCheck check;
    ZR_Handle path = PathOf({{0, 0}, {40, 0}, {80, 0}}), smoothed;
    ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
    ASSERT_EQ(smoothed.count, 1 + 10 + 10);
    EXPECT_EQ(ZR_GetPathRecord(&smoothed, 1)->kind, ZR_PATH_MOVE);
    for (long i = 2; i <= 21; ++i) {
        const ZR_PathRecord& r = *ZR_GetPathRecord(&smoothed, i);
        EXPECT_EQ(r.kind, ZR_PATH_LINE);
        EXPECT_NEAR(r.y, 0, 1e-4);
        EXPECT_GT(r.x, ZR_GetPathRecord(&smoothed, i - 1)->x);
    }
    EXPECT_EQ(ZR_GetPathRecord(&smoothed, 11)->x, 40);  // through the points
    EXPECT_EQ(ZR_GetPathRecord(&smoothed, 21)->x, 80);
    EXPECT_EQ(path.count, 3);  // the path itself stays
    smoothed.Dispose();
    path.Dispose();
}

TEST(Spline, SmoothPath_Steps_OfTheTruncatedLongerSide) {
    static const struct {
        ZR_Point second;
        long steps;
    } rows[] = {{{3.9F, 0}, 1}, {{7.9F, 0}, 1}, {{8, 0}, 2}, {{0, 8.9F}, 2}, {{-12.5F, 8}, 3}, {{0.5F, 0.5F}, 1}};
    for (const auto& row : rows) {
        ZR_Handle path = PathOf({{0, 0}, row.second, {row.second.x + 1, row.second.y}}), smoothed;
        ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
        EXPECT_EQ(smoothed.count, 1 + row.steps + 1) << row.second.x;
        smoothed.Dispose();
        path.Dispose();
    }
}

TEST(Spline, SmoothPath_CloseRecord_CountsAsPointAtZero) {  // Required
    ZR_Handle path = PathOf({{10, 10}, {50, 10}}), smoothed;
    ZR_AddPathClose(&path);
    ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
    const ZR_PathRecord& last = *ZR_GetPathRecord(&smoothed, smoothed.count);
    EXPECT_NEAR(last.x, 0, 1e-4);
    EXPECT_NEAR(last.y, 0, 1e-4);
    smoothed.Dispose();
    path.Dispose();
}

TEST(Spline, SmoothPath_CoincidentPoints_StayFinite) {
    for (const auto& points : std::vector<std::vector<ZR_Point>>{{{5, 5}, {5, 5}, {5, 5}},
                                                                 {{0, 0}, {0, 0}, {100, 50}, {100, 50}, {0, 100}},
                                                                 {{0, 0}, {100, 0}, {100, 0}},
                                                                 {{0, 0}, {1e-20F, 0}, {1e15F, 0}, {0, 1}}}) {
        ZR_Handle path = PathOf(points), smoothed;
        ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
        for (long i = 1; i <= smoothed.count; ++i) {
            EXPECT_TRUE(std::isfinite(ZR_GetPathRecord(&smoothed, i)->x));
            EXPECT_TRUE(std::isfinite(ZR_GetPathRecord(&smoothed, i)->y));
        }
        smoothed.Dispose();
        path.Dispose();
    }
}

TEST(Spline, SmoothPath_FarPoints_AreBounded) {
    for (float far : {1e7F, 1e12F, 1e30F, 3e38F, kInf, kNaN}) {
        ZR_Handle path = PathOf({{0, 0}, {far, far}, {-far, 0}, {0, -far}, {1, 1}}), smoothed;
        ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
        EXPECT_LE(smoothed.count, ZR_MOST_SPLINE_LINES + path.count * (ZR_SPLINE_LINES_A_SEGMENT + 1)) << far;
        smoothed.Dispose();
        path.Dispose();
    }
    ZR_Handle odd = PathOf({{kNaN, 0}, {kInf, 0}, {0, 0}, {kInf, kNaN}, {0, 0}, {kInf, 0}, {0, kInf}}), lines;
    ASSERT_TRUE(ZR_CreateSmoothPath(&odd, &lines));
    EXPECT_LE(lines.count, ZR_MOST_SPLINE_LINES + odd.count * (ZR_SPLINE_LINES_A_SEGMENT + 1));
    lines.Dispose();
    odd.Dispose();
    ZR_Handle path = PathOf({{0, 0}, {4e6F, 0}, {4e6F, 100}}), smoothed;  // just within it
    ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
    EXPECT_EQ(smoothed.count, 1 + 1000000 + 25);
    smoothed.Dispose();
    path.Dispose();
}

TEST(Spline, SmoothPath_ManySegments_KeepTheirSteps) {
    std::vector<ZR_Point> points;
    for (int i = 0; i <= 60000; ++i) points.push_back({static_cast<float>(i % 2 * 100), 0});
    ZR_Handle path = PathOf(points), smoothed;
    ASSERT_TRUE(ZR_CreateSmoothPath(&path, &smoothed));
    EXPECT_EQ(smoothed.count, 1 + 60000 * 25);
    smoothed.Dispose();
    path.Dispose();
}
