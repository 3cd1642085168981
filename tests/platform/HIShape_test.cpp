#include "platform/HIShape/HIShape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tests/platform/GraphicsSupport.h"

namespace {

struct Shape {
    Shape() : shape(HIShapeCreateMutable()) {}
    void Add(double x, double y, double w, double h) { Change(x, y, w, h, HIShapeUnion); }
    void Subtract(double x, double y, double w, double h) { Change(x, y, w, h, HIShapeDifference); }
    void Change(double x, double y, double w, double h, OSStatus (*with)(HIShapeRef, HIShapeRef, HIMutableShapeRef)) {
        CGRect rect = CGRectMake(x, y, w, h);
        Owned<HIShapeRef> other = HIShapeCreateWithRect(&rect);
        EXPECT_EQ(with(shape, other, shape), noErr);
    }
    bool Has(double x, double y) {
        CGPoint p = {x, y};
        return HIShapeContainsPoint(shape, &p);
    }
    Owned<HIMutableShapeRef> shape;
};

}  // namespace

TEST(HIShape, UnionAndDifference) {
    Shape s;
    EXPECT_TRUE(HIShapeIsEmpty(s.shape));
    s.Add(0, 0, 10, 10);
    s.Add(5, 5, 10, 10);
    s.Subtract(7, 7, 2, 2);
    static const struct {
        double x, y;
        bool inside;
    } rows[] = {{0, 0, true},  {9.99, 0, true}, {10, 0, false}, {12, 12, true}, {15, 12, false},
                {8, 8, false}, {7, 7, false},   {9, 8, true},   {12, 3, false}, {-0.1, 5, false}};
    for (auto& row : rows) EXPECT_EQ(s.Has(row.x, row.y), row.inside) << row.x << ' ' << row.y;
    EXPECT_EQ(HIShapeSetEmpty(s.shape), noErr);
    EXPECT_TRUE(HIShapeIsEmpty(s.shape));
}

TEST(HIShape, ReplacePath_FillCoversExactlyTheSet) {
    Shape s;
    s.Add(5, 5, 40, 30);
    s.Subtract(10, 10, 10, 10);  // a hole
    s.Add(45, 35, 10, 10);       // meets in a corner
    s.Add(30, 35, 10, 5);        // on top
    s.Subtract(20, 20, 5, 5);    // meets the hole in a corner
    for (bool evenOdd : {false, true}) {
        Bitmap bitmap(60, 50);
        CGContextAddRect(bitmap, CGRectMake(0, 0, 60, 50));  // is replaced
        EXPECT_EQ(HIShapeReplacePathInCGContext(s.shape, bitmap), noErr);
        CGContextDrawPath(bitmap, evenOdd ? kCGPathEOFill : kCGPathFill);
        for (int y = 0; y < 50; ++y)
            for (int x = 0; x < 60; ++x)
                EXPECT_EQ(bitmap.At(x, y), s.Has(x + 0.5, y + 0.5) ? kRed : kClear) << x << ' ' << y << ' ' << evenOdd;
    }
}

TEST(HIShape, ReplacePath_StrokeRunsAlongTheOutlineOnly) {
    Shape s;
    s.Add(5, 5, 20, 10);
    s.Add(5, 15, 20, 10);  // below one another and side by side: no edge between them
    s.Add(25, 5, 20, 20);
    Bitmap bitmap(60, 40);
    HIShapeReplacePathInCGContext(s.shape, bitmap);
    CGContextSetLineWidth(bitmap, 2);
    CGContextStrokePath(bitmap);
    EXPECT_EQ(bitmap.Count(), 42 * 22 - 38 * 18);
    EXPECT_EQ(bitmap.At(25, 15), kClear);
    EXPECT_EQ(bitmap.At(44, 15), kRed);
}

TEST(HIShape, ReplacePath_RandomSets_MatchPointByPoint) {
    std::mt19937 random(3);
    for (int round = 0; round < 20; ++round) {
        Shape s;
        std::vector<bool> grid(30 * 30);
        for (int i = 0; i < 25; ++i) {
            int x = static_cast<int>(random() % 28), y = static_cast<int>(random() % 28);
            int w = 1 + static_cast<int>(random() % 8), h = 1 + static_cast<int>(random() % 8);
            bool add = random() % 3 != 0;
            if (add) s.Add(x, y, w, h);
            else s.Subtract(x, y, w, h);
            for (int b = y; b < std::min(y + h, 30); ++b)
                for (int a = x; a < std::min(x + w, 30); ++a) grid[static_cast<size_t>(b * 30 + a)] = add;
        }
        Bitmap bitmap(30, 30);
        HIShapeReplacePathInCGContext(s.shape, bitmap);
        CGContextFillPath(bitmap);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 30; ++x)
                ASSERT_EQ(bitmap.At(x, y), grid[static_cast<size_t>(y * 30 + x)] ? kRed : kClear)
                    << round << ' ' << x << ' ' << y;
    }
}

TEST(HIShape, Fractions_AreKeptTo256ths) {
    Shape s;
    s.Add(1.25, 1.00390625, 2, 2);
    EXPECT_TRUE(s.Has(1.25, 1.00390625));
    EXPECT_FALSE(s.Has(1.249, 2));
    EXPECT_FALSE(s.Has(2, 1.0039));
}

TEST(HIShape, AbsurdRects_AreCutOrEmpty) {
    const double numbers[] = {0, -5, 1e-9, 1e6, 1e12, -1e12, 1e300, std::nan(""), HUGE_VAL};
    for (double a : numbers)
        for (double b : numbers) {
            Shape s;
            s.Add(a, b, 10, 10);
            s.Add(0, 0, a, b);
            s.Subtract(b, a, b, a);
            Bitmap bitmap(10, 10);
            HIShapeReplacePathInCGContext(s.shape, bitmap);
            CGContextFillPath(bitmap);
        }
    Shape whole;
    whole.Add(-1e12, -1e12, 2e12, 2e12);
    EXPECT_TRUE(whole.Has(0, 0));
    EXPECT_TRUE(whole.Has(3.9e6, -3.9e6));
    EXPECT_FALSE(whole.Has(4.1e6, 0));
}

TEST(HIShape, NullArguments) {
    Shape s;
    EXPECT_EQ(HIShapeUnion(nullptr, s.shape, s.shape), paramErr);
    EXPECT_EQ(HIShapeDifference(s.shape, nullptr, s.shape), paramErr);
    EXPECT_EQ(HIShapeUnion(s.shape, s.shape, nullptr), paramErr);
    EXPECT_EQ(HIShapeReplacePathInCGContext(nullptr, nullptr), paramErr);
    EXPECT_EQ(HIShapeSetEmpty(nullptr), paramErr);
    EXPECT_EQ(HIShapeCreateWithRect(nullptr), nullptr);
    EXPECT_TRUE(HIShapeIsEmpty(nullptr));
    EXPECT_FALSE(HIShapeContainsPoint(s.shape, nullptr));
}
