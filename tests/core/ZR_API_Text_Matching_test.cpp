#include <chrono>
#include <climits>

#include "tests/core/FakeHost.h"

namespace {

long Distance(const std::u16string& a, const std::u16string& b, long** matrix = nullptr) {
    ZR_Text left = MakeText(a), right = MakeText(b);
    long distance = left.EditDistance(left.count, &right, right.count, matrix);
    right.Dispose();
    left.Dispose();
    return distance;
}

// The table as it is defined, whole, to hold the rolling rows against.
long Defined(const std::u16string& a, const std::u16string& b) {
    size_t n = a.size(), m = b.size();
    std::vector<std::vector<long>> d(n + 1, std::vector<long>(m + 1));
    for (size_t i = 0; i <= n; ++i) d[i][0] = static_cast<long>(i);
    for (size_t j = 0; j <= m; ++j) d[0][j] = static_cast<long>(j);
    for (size_t i = 1; i <= n; ++i)
        for (size_t j = 1; j <= m; ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i >= 3 && j >= 3)
                d[i][j] = std::min(
                    d[i][j], d[i - 2][j - 2] + 1 + (a[i - 2] == b[j - 1] ? 0 : 1) + (a[i - 1] == b[j - 2] ? 0 : 1));
        }
    return d[n][m];
}

}  // namespace

TEST(TextMatching, EditDistance_Pairs) {
    static const struct {
        std::u16string a, b;
        long distance;
    } rows[] = {
        {u"", u"", 0},         {u"", u"abc", 3},     {u"abc", u"", 3},           {u"abc", u"abc", 0},
        {u"abc", u"abd", 1},   {u"abc", u"ab", 1},   {u"kitten", u"sitting", 3}, {u"abc", u"ABC", 3},
        {u"ab", u"ba", 2},    // Required: no swap of the first two
        {u"xab", u"xba", 1},  // the swap
        {u"abc", u"bac", 2},  // Required: both indices from 3 on
        {u"xyab", u"xyba", 1}, {u"a", u"\u00E4", 1},
    };
    for (const auto& row : rows) {
        MemoryCheck check;
        EXPECT_EQ(Distance(row.a, row.b), row.distance);
        EXPECT_EQ(Distance(row.b, row.a), row.distance);
    }
}

TEST(TextMatching, EditDistance_RollingRowsAndMatrix_AsDefined) {
    unsigned state = 7;
    auto word = [&state] {
        std::u16string text;
        for (unsigned n = (state = state * 1664525 + 1013904223) >> 28; n > 0; --n)
            text += static_cast<char16_t>(u'a' + ((state = state * 1664525 + 1013904223) >> 30));
        return text;
    };
    long** matrix = ZR_createMatrix(17, 17);
    ASSERT_NE(matrix, nullptr);
    for (int i = 0; i < 500; ++i) {
        std::u16string a = word(), b = word();
        EXPECT_EQ(Distance(a, b), Defined(a, b));
        EXPECT_EQ(Distance(a, b, matrix), Defined(a, b));
    }
    ZR_killMatrix(matrix, 17);
}

TEST(TextMatching, EditDistance_LengthsBelowAndBeyondCount_AreCut) {
    ZR_Text a = MakeText(u"abcd"), b = MakeText(u"abxy");
    EXPECT_EQ(a.EditDistance(2, &b, 2, nullptr), 0);
    EXPECT_EQ(a.EditDistance(3, &b, 2, nullptr), 1);
    EXPECT_EQ(a.EditDistance(LONG_MAX, &b, LONG_MAX, nullptr), 2);
    EXPECT_EQ(a.EditDistance(-1, &b, 3, nullptr), 3);
    EXPECT_EQ(a.EditDistance(3, nullptr, 3, nullptr), 3);
    b.Dispose();
    a.Dispose();
}

TEST(TextMatching, EditDistance_AbsurdLengths_EndAtOnce) {
    ZR_Text a = MakeText(std::u16string(1 << 20, u'a'));
    ZR_Text b = MakeText(std::u16string((1 << 20) - 1, u'a') + u"b");
    EXPECT_EQ(a.EditDistance(a.count, &b, b.count, nullptr), 1 << 20);  // beyond the bound nothing is in common
    EXPECT_EQ(a.PercentMatch(&b, /*caseSensitive*/ true, nullptr), 0);
    EXPECT_EQ(a.EditDistance(a.count, &a, a.count, nullptr), 0);  // but the texts are equal
    EXPECT_EQ(a.PercentMatch(&a, /*caseSensitive*/ true, nullptr), 100);
    b.Dispose();
    a.Dispose();
}

TEST(TextMatching, CreateMatrix_BadSizes_IsNull) {
    EXPECT_EQ(ZR_createMatrix(0, 1), nullptr);
    EXPECT_EQ(ZR_createMatrix(1, 0), nullptr);
    EXPECT_EQ(ZR_createMatrix(-1, -1), nullptr);
    EXPECT_EQ(ZR_createMatrix(LONG_MAX, 2), nullptr);
    EXPECT_EQ(ZR_createMatrix(2, LONG_MAX), nullptr);
    EXPECT_EQ(ZR_createMatrix(1L << 20, 1L << 20), nullptr);
    ZR_killMatrix(nullptr, 5);
    long** matrix = ZR_createMatrix(1, 1);
    ASSERT_NE(matrix, nullptr);
    matrix[0][0] = 1;
    ZR_killMatrix(matrix, 1);
}

TEST(TextMatching, PercentMatch_Pairs) {
    static const struct {
        std::u16string a, b;
        bool caseSensitive;
        double percent;
    } rows[] = {
        {u"", u"", true, 0},  // Required: not 100
        {u"", u"abc", true, 0},       {u"abc", u"", true, 0},       {u"abc", u"abc", true, 100},
        {u"abc", u"xyz", true, 0},    {u"abcd", u"abcx", true, 75}, {u"abc", u"ABC", true, 0},
        {u"abc", u"ABC", false, 100},
    };
    for (const auto& row : rows) {
        ZR_Text a = MakeText(row.a), b = MakeText(row.b);
        EXPECT_DOUBLE_EQ(a.PercentMatch(&b, row.caseSensitive, nullptr), row.percent);
        b.Dispose();
        a.Dispose();
    }
}

TEST(TextMatching, PercentMatch_NotCaseSensitive_LeavesBothInUpperCase) {  // Required
    ZR_Text a = MakeText(u"abc\u00E4"), b = MakeText(u"abd");
    a.PercentMatch(&b, /*caseSensitive*/ false, nullptr);
    EXPECT_EQ(Units(a), u"ABC\u00E4");
    EXPECT_EQ(Units(b), u"ABD");
    EXPECT_EQ(a.PercentMatch(nullptr, true, nullptr), 0);
    b.Dispose();
    a.Dispose();
}
