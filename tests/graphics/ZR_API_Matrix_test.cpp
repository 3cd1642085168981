#include "graphics/ZR_API_Matrix.h"

#include <cmath>
#include <limits>

#include "tests/core/FakeHost.h"

static constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

static void ExpectMatrix(const ZR_Matrix& m, const ZR_Matrix& expected, float allowance = 1e-5F) {
    EXPECT_NEAR(m.a, expected.a, allowance);
    EXPECT_NEAR(m.b, expected.b, allowance);
    EXPECT_NEAR(m.c, expected.c, allowance);
    EXPECT_NEAR(m.d, expected.d, allowance);
    EXPECT_NEAR(m.tx, expected.tx, allowance);
    EXPECT_NEAR(m.ty, expected.ty, allowance);
}

TEST(Matrix, Multiply_FirstActsFirst) {
    const ZR_Matrix first = {1, 2, 3, 4, 5, 6}, second = {7, 8, 9, 10, 11, 12};
    ZR_Matrix out;
    ZR_MatrixMultiply(&first, &second, &out);
    ExpectMatrix(out, {25, 28, 57, 64, 100, 112}, 0);
    ZR_Point direct = {3, -2}, steps = direct;
    out.TransformPoint(&direct);
    first.TransformPoint(&steps);
    second.TransformPoint(&steps);
    EXPECT_EQ(direct.x, steps.x);
    EXPECT_EQ(direct.y, steps.y);
    ZR_Matrix inPlace = first;
    inPlace.Multiply(&second);
    ExpectMatrix(inPlace, out, 0);
    inPlace.Multiply(nullptr);
    ExpectMatrix(inPlace, out, 0);
    ZR_Matrix alias = second;
    ZR_MatrixMultiply(&first, &alias, &alias);
    ExpectMatrix(alias, out, 0);
}

TEST(Matrix, TransformRotate_OutsideItsBounds_LeavesTheMatrix) {
    for (float degrees : {0.0F, 360.0F, -90.0F, -0.5F, 361.0F, 720.0F, kNaN}) {
        ZR_Matrix m = {1, 2, 3, 4, 5, 6};
        m.TransformRotate(degrees);
        ExpectMatrix(m, {1, 2, 3, 4, 5, 6}, 0);
        m.TransformRotateAt(degrees, {10, 20});
        ExpectMatrix(m, {1, 2, 3, 4, 5, 6}, 0);
    }
}

TEST(Matrix, TransformRotate_KeepsTheTranslation) {
    ZR_Matrix m = {1, 0, 0, 1, 5, 6};
    m.TransformRotate(90);
    ExpectMatrix(m, {0, 1, -1, 0, 5, 6});
    m = {1, 2, 3, 4, 5, 6};
    m.TransformRotate(30);
    const float s = 0.5F, c = std::sqrt(0.75F);
    ExpectMatrix(m, {c - 2 * s, s + 2 * c, 3 * c - 4 * s, 3 * s + 4 * c, 5, 6});
}

TEST(Matrix, TransformRotateAt_TurnsTheOtherWay) {  // Required
    ZR_Matrix rotate = {1, 0, 0, 1, 0, 0}, rotateAt = rotate;
    rotate.TransformRotate(90);
    rotateAt.TransformRotateAt(90, {0, 0});
    ExpectMatrix(rotate, {0, 1, -1, 0, 0, 0});
    ExpectMatrix(rotateAt, {0, -1, 1, 0, 0, 0});
}

TEST(Matrix, TransformRotateAt_KeepsTheCentre) {
    for (float degrees : {1.0F, 45.0F, 90.0F, 180.0F, 270.0F, 359.0F}) {
        ZR_Matrix m = {1, 0, 0, 1, 0, 0};
        m.TransformRotateAt(degrees, {10, 20});
        ZR_Point centre = {10, 20}, other = {11, 20};
        m.TransformPoint(&centre);
        EXPECT_NEAR(centre.x, 10, 1e-4);
        EXPECT_NEAR(centre.y, 20, 1e-4);
        m.TransformPoint(&other);
        EXPECT_NEAR(std::hypot(other.x - 10, other.y - 20), 1, 1e-4);
    }
    ZR_Matrix m = {1, 0, 0, 1, 3, 4};  // the matrix's own translation turns too
    m.TransformRotateAt(180, {10, 20});
    ExpectMatrix(m, {-1, 0, 0, -1, 17, 36});
}

TEST(Matrix, TransformScale_LeavesBAndC) {  // Required
    ZR_Matrix m = {1, 2, 3, 4, 5, 6};
    m.TransformScale(10, 100);
    ExpectMatrix(m, {10, 2, 3, 400, 50, 600}, 0);
}

TEST(Matrix, Invert_WayAndBack) {
    const ZR_Matrix forth = {2, 1, -1, 3, 5, 7};
    ZR_Matrix m = forth;
    m.Invert();
    ZR_MatrixMultiply(&forth, &m, &m);
    ExpectMatrix(m, {1, 0, 0, 1, 0, 0});
    m = {2, 0, 0, 4, 6, 8};
    m.Invert();
    ExpectMatrix(m, {0.5F, 0, 0, 0.25F, -3, -2}, 0);
}

TEST(Matrix, Invert_WithoutDeterminant_StaysAsItIs) {
    static const ZR_Matrix rows[] = {
        {0, 0, 0, 0, 0, 0}, {1, 2, 2, 4, 5, 6}, {0.001F, 0, 0, 0.009F, 1, 1}, {1, 1, 1, 1, 0, 0}};
    for (const ZR_Matrix& row : rows) {
        ZR_Matrix m = row;
        m.Invert();
        ExpectMatrix(m, row, 0);
    }
    ZR_Matrix m = {kNaN, 0, 0, 1, 2, 3};
    m.Invert();
    EXPECT_EQ(m.tx, 2);
    m = {0.01F, 0, 0, 0.01F, 1, 1};  // 1e-4 is enough
    m.Invert();
    ExpectMatrix(m, {100, 0, 0, 100, -100, -100}, 0.01F);
}

TEST(Matrix, Points_BothNames) {
    const ZR_Matrix m = {1, 2, 3, 4, 5, 6};
    ZR_Point p = {10, 100}, q = p;
    m.TransformPoint(&p);
    m.ApplyToPoint(&q);
    EXPECT_EQ(p.x, 315);
    EXPECT_EQ(p.y, 426);
    EXPECT_EQ(q.x, 315);
    EXPECT_EQ(q.y, 426);
    m.TransformPoint(nullptr);
}

TEST(Matrix, Rects_BecomeTheBoxOfTheirCorners) {
    ZR_Matrix m = {0, 1, -1, 0, 100, 0};  // a quarter turn
    ZR_Rect r = {10, 20, 50, 25}, s = r;
    m.TransformRect(&r);
    m.ApplyToRect(&s);
    for (const ZR_Rect& out : {r, s}) {
        EXPECT_EQ(out.top, 20);
        EXPECT_EQ(out.left, 75);
        EXPECT_EQ(out.right, 90);
        EXPECT_EQ(out.bottom, 50);
    }
    m.TransformRect(nullptr);
}

TEST(Matrix, ApplyToRect_Identity_LeavesAnInvertedRectAlone) {
    ZR_Matrix m;
    m.SetIdentity();
    EXPECT_TRUE(m.IsIdentity());
    ZR_Rect r = {50, 40, 10, 20}, s = r;
    m.ApplyToRect(&r);
    EXPECT_EQ(r.top, 50);
    EXPECT_EQ(r.right, 10);
    m.TransformRect(&s);  // the box is in order
    EXPECT_EQ(s.top, 20);
    EXPECT_EQ(s.left, 10);
    EXPECT_EQ(s.right, 40);
    EXPECT_EQ(s.bottom, 50);
    m.tx = 1;
    EXPECT_FALSE(m.IsIdentity());
}

TEST(Matrix, GetText_SixNumbers) {
    static const struct {
        ZR_Matrix m;
        const char16_t* text;
    } rows[] = {
        {{1, 0, 0, 1, 0, 0}, u"matrix(1 0 0 1 0 0)"},
        {{0.5F, -0.25F, 2, 1.5F, -10, 100}, u"matrix(0.5 -0.25 2 1.5 -10 100)"},
        {{1.0F / 3, 0, 0, 1, 0, 0}, u"matrix(0.33333334 0 0 1 0 0)"},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        ZR_Text text;
        text.Create();
        row.m.GetText(&text);
        EXPECT_EQ(Units(text), row.text);
        row.m.GetText(&text);  // appends
        EXPECT_EQ(Units(text), std::u16string(row.text) + row.text);
        text.Dispose();
    }
    rows[0].m.GetText(nullptr);
}
