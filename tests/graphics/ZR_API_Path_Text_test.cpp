#include <chrono>
#include <cmath>
#include <random>

#include "graphics/ZR_API_Path.h"
#include "tests/core/FakeHost.h"

namespace {

struct Read {
    std::u16string text;
    long error;
};

Read ReadPath(const std::u16string& units) {
    MemoryCheck check;
    ZR_Text text = MakeText(units), out = MakeText(u"");
    ZR_Handle path = MakeBytes("old");
    long error = 77;
    ZR_CreateHandleFromPathText(&text, &path, &error);
    ZR_GetPathText(&path, &out);
    Read read = {Units(out), error};
    out.Dispose();
    path.Dispose();
    text.Dispose();
    return read;
}

std::vector<short> Kinds(const std::u16string& units) {
    ZR_Text text = MakeText(units);
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    ZR_CreateHandleFromPathText(&text, &path, nullptr);
    std::vector<short> kinds;
    for (long i = 1; i <= path.count; ++i) kinds.push_back(ZR_GetPathRecord(&path, i)->kind);
    path.Dispose();
    text.Dispose();
    return kinds;
}

}  // namespace

TEST(PathText, Create_Commands_MakeRecords) {
    static const struct {
        std::u16string text, records;
    } rows[] = {
        {u"M10 20L30 40", u"M10 20 L30 40"},
        {u"M10 20 30 40", u"M10 20 L30 40"},  // what follows a move is a line
        {u"m10 20 30 40", u"M10 20 L40 60"},  // the first one from (0, 0)
        {u"M 10 , 20 , L 30,40", u"M10 20 L30 40"},
        {u"M0 0h10v10", u"M0 0 L10 0 L10 10"},
        {u"M1 2H10V20", u"M1 2 L10 2 L10 20"},
        {u"M1 2H10 20 30", u"M1 2 L10 2 L20 2 L30 2"},
        {u"M1 1l2 2 3 3", u"M1 1 L3 3 L6 6"},
        {u"M1 1C1 2 3 4 5 6", u"M1 1 C1 2 3 4 5 6"},
        {u"M1 1c1 2 3 4 5 6", u"M1 1 C2 3 4 5 6 7"},
        {u"M1 1c1 2 3 4 5 6 1 2 3 4 5 6", u"M1 1 C2 3 4 5 6 7 C7 9 9 11 11 13"},
        {u"M0 0C1 2 3 4 5 6S8 8 10 10", u"M0 0 C1 2 3 4 5 6 C7 8 8 8 10 10"},
        {u"M0 0C1 2 3 4 5 6s1 1 2 2", u"M0 0 C1 2 3 4 5 6 C7 8 6 7 7 8"},
        {u"M3 3S8 8 10 10S1 1 2 2", u"M3 3 C3 3 8 8 10 10 C12 12 1 1 2 2"},
        {u"M0 0Q1 2 3 4", u"M0 0 Q1 2 3 4"},
        {u"M1 1q1 2 3 4", u"M1 1 Q2 3 4 5"},
        {u"M0 0Q1 2 3 4T9 9", u"M0 0 Q1 2 3 4 Q3 4 9 9"},  // Required: no reflection behind a "Q"
        {u"M0 0T4 4T9 9", u"M0 0 Q0 0 4 4 Q8 8 9 9"},      // behind a "T" there is
        {u"M1 1t1 1t2 0", u"M1 1 Q1 1 2 2 Q3 3 4 2"},
        {u"M0 0L10 0Zm5 5", u"M0 0 L10 0 Z M5 5"},   // from the start of the subpath
        {u"M0 0L10 0Zl5 5", u"M0 0 L10 0 Z L15 5"},  // Required: "Z" leaves the point
        {u"M2 3L10 0ZM7 7L9 9zm1 1", u"M2 3 L10 0 Z M7 7 L9 9 Z M8 8"},
        {u"M2 3L10 0ZZm1 1", u"M2 3 L10 0 Z Z M11 1"},  // the second close moves the start to where the pen is
        // Required: a move inside an open subpath does not begin one.
        {u"M0 0L10 0M50 50L60 60Zm5 5", u"M0 0 L10 0 M50 50 L60 60 Z M5 5"},
        {u"M0 0C1 2 3 4 5 6ZS1 1 2 2", u"M0 0 C1 2 3 4 5 6 Z C5 6 1 1 2 2"},
        {u"Z", u"M0 0"},
        {u" , , ", u""},
        {u"M1.5.5", u"M1.5 5.5"},     // Required: the digit before the second point is read again
        {u"M1.5.5.25", u"M1.5 5.5"},  // then 5.25, a line without its second number
        {u"M+1+2", u"M1 2"},
        {u"M-1-2", u"M-1 -2"},
        {u"M1-2L3-4", u"M1 -2 L3 -4"},
        {u"M1e2 2E-1", u"M100 0.2"},
        {u"M1e+5", u"M1 5"},  // Required: "+" does not follow an exponent letter
        {u"M.5 5.", u"M0.5 5"},
        {u"M1e 2", u"M1 2"},
        {u"Me5 2", u"M0 2"},
        {u"M- 2", u"M0 2"},
        {u"M0000000000000000001 2", u"M1 2"},  // 20 characters with the blank, 19 of them the number
    };
    for (const auto& row : rows) EXPECT_EQ(ReadPath(row.text).text, row.records);
}

TEST(PathText, Create_Errors_KeepWhatWasRead) {
    static const struct {
        std::u16string text;
        long error;
        std::u16string records;
    } rows[] = {
        {u"M1 2L3 4", 0, u"M1 2 L3 4"},
        {u"5 5", ZR_PATH_BAD_COMMAND, u""},
        {u"-5 5", ZR_PATH_BAD_COMMAND, u""},
        {u" e", ZR_PATH_BAD_COMMAND, u""},
        {u"L1", ZR_PATH_BAD_NUMBER, u""},
        {u"M1 2L1", ZR_PATH_BAD_NUMBER, u"M1 2"},
        {u"M1.2.3 4", ZR_PATH_BAD_NUMBER, u"M1.2 2.299"},  // 2.3 as a float, truncated; then 4 begins a line
        {u"M", ZR_PATH_BAD_NUMBER, u""},
        {u"M 1", ZR_PATH_BAD_NUMBER, u""},
        {u"M1 2X", ZR_PATH_BAD_COMMAND, u"M1 2"},
        {u"M1 2\nL3 4", ZR_PATH_BAD_COMMAND, u"M1 2"},  // a blank is a blank, nothing else
        {u"M1\t2", ZR_PATH_BAD_NUMBER, u""},
        {u"M1 2L3 4Z5 5", ZR_PATH_BAD_COMMAND, u"M1 2 L3 4 Z"},  // a close takes no number
        {u"M1 2L3 4z 5", ZR_PATH_BAD_COMMAND, u"M1 2 L3 4 Z"},
        {u"Z1", ZR_PATH_BAD_COMMAND, u"M0 0"},
        {u"M00000000000000000001 2", ZR_PATH_BAD_NUMBER, u""},  // 20 characters
        {u"M1..5", ZR_PATH_BAD_NUMBER, u""},                    // would begin at the point for ever
        {u"M1 2\u20AC", ZR_PATH_BAD_COMMAND, u"M1 2"},
        {u"M1\u20AC", ZR_PATH_BAD_NUMBER, u""},
        {u"M1 2b", ZR_PATH_BAD_COMMAND, u"M1 2"},
        {std::u16string(u"M1 2\0L", 6), ZR_PATH_BAD_COMMAND, u"M1 2"},
    };
    for (const auto& row : rows) {
        Read read = ReadPath(row.text);
        EXPECT_EQ(read.error, row.error);
        EXPECT_EQ(read.text, row.records);
    }
}

TEST(PathText, Create_EmptyText_LeavesTheErrorAlone) {
    Read read = ReadPath(u"");
    EXPECT_EQ(read.error, 77);
    EXPECT_EQ(read.text, u"");
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    ZR_AddPathLine(&path, 1, 1);
    ZR_CreateHandleFromPathText(nullptr, &path, nullptr);
    EXPECT_EQ(path.count, 0);
    path.Dispose();
}

TEST(PathText, Create_BeyondTheNumbers_EndsInInfinityOrZero) {
    ZR_Text text = MakeText(u"M1e99 -1e999L1e-99 1e-999L1e999 -1e-999");
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    long error = 7;
    ZR_CreateHandleFromPathText(&text, &path, &error);
    EXPECT_EQ(error, 0);
    ASSERT_EQ(path.count, 3);
    EXPECT_TRUE(std::isinf(ZR_GetPathRecord(&path, 1)->x));
    EXPECT_TRUE(std::isinf(ZR_GetPathRecord(&path, 1)->y) && ZR_GetPathRecord(&path, 1)->y < 0);
    EXPECT_EQ(ZR_GetPathRecord(&path, 2)->x, 0);
    EXPECT_EQ(ZR_GetPathRecord(&path, 2)->y, 0);
    EXPECT_TRUE(std::isinf(ZR_GetPathRecord(&path, 3)->x));
    EXPECT_EQ(ZR_GetPathRecord(&path, 3)->y, 0);
    path.Dispose();
    text.Dispose();
}

TEST(PathText, Parser_NextAndReadNum) {
    ZR_Text text = MakeText(u"M1 2 3 4,z");
    ZR_SVGPathParser parser;
    parser.Create(&text);
    EXPECT_EQ(parser.position, 1);
    EXPECT_EQ(parser.Next(), 2);
    EXPECT_EQ(parser.arguments[1], 2);
    EXPECT_EQ(parser.lastLetter, 'M');
    EXPECT_EQ(parser.Next(), 0);  // the blank
    EXPECT_EQ(parser.command, 2);
    EXPECT_EQ(parser.Next(), 4);  // repeated as a line
    EXPECT_EQ(parser.lastLetter, 'L');
    EXPECT_EQ(parser.arguments[0], 3);
    EXPECT_EQ(parser.Next(), 0);
    EXPECT_EQ(parser.Next(), 1);
    EXPECT_EQ(parser.arguments[0], 0);  // cleared
    EXPECT_EQ(parser.Next(), 0);        // the end
    EXPECT_EQ(parser.command, 0);
    parser.error = ZR_PATH_BAD_NUMBER;
    EXPECT_EQ(parser.Next(), 0);
    EXPECT_EQ(parser.ReadNum(), 0);
    text.Dispose();
}

TEST(PathText, Create_EveryLetter_HasItsCode) {
    static const struct {
        const char16_t* text;
        short code;
        float last;
    } rows[] = {{u"Z", 1, 0},
                {u"z", 1, 0},
                {u"M1 2", 2, 2},
                {u"m1 2", 3, 2},
                {u"L1 2", 4, 2},
                {u"l1 2", 5, 2},
                {u"C1 2 3 4 5 6", 6, 6},
                {u"c1 2 3 4 5 6", 7, 6},
                {u"Q1 2 3 4", 8, 4},
                {u"q1 2 3 4", 9, 4},
                {u"A1 2 3 4 5 6 7", 10, 7},
                {u"a1 2 3 4 5 6 7", 11, 7},
                {u"H1", 12, 1},
                {u"h1", 13, 1},
                {u"V1", 14, 1},
                {u"v1", 15, 1},
                {u"S1 2 3 4", 16, 4},
                {u"s1 2 3 4", 17, 4},
                {u"T1 2", 18, 2},
                {u"t1 2", 19, 2}};
    for (const auto& row : rows) {
        ZR_Text text = MakeText(row.text);
        ZR_SVGPathParser parser;
        parser.Create(&text);
        EXPECT_EQ(parser.Next(), row.code);
        EXPECT_EQ(*std::max_element(parser.arguments, parser.arguments + 7), row.last);
        EXPECT_EQ(parser.position, text.count + 1);
        text.Dispose();
    }
}

// Arcs -------------------------------------------------------------------------------------------------------------

namespace {

struct ArcPath {
    ZR_Handle path;
    explicit ArcPath(const std::u16string& units) {
        ZR_Text text = MakeText(units);
        ZR_CreatePathHandle(&path);
        ZR_CreateHandleFromPathText(&text, &path, nullptr);
        text.Dispose();
    }
    ~ArcPath() { path.Dispose(); }
    const ZR_PathRecord& at(long i) { return *ZR_GetPathRecord(&path, i); }
    // A point of the curve that record i makes.
    std::pair<double, double> on(long i, double t) {
        const ZR_PathRecord &p = at(i - 1), &r = at(i);
        double u = 1 - t;
        auto mix = [=](double a, double b, double c, double d) {
            return u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
        };
        return {mix(p.x, r.cx1, r.cx2, r.x), mix(p.y, r.cy1, r.cy2, r.y)};
    }
};

}  // namespace

TEST(PathTextArc, Circle_FlagsChooseTheArc) {
    // From (10, 0) to (0, 10) around (0, 0) or (10, 10), radius 10.
    static const struct {
        const char16_t* text;
        double centre, middleX, middleY;
        long records;
    } rows[] = {
        {u"M10 0A10 10 0 0 1 0 10", 0, 7.0711, 7.0711, 2},
        {u"M10 0A10 10 0 0 0 0 10", 10, 2.9289, 2.9289, 2},
        {u"M10 0A10 10 0 1 1 0 10", 10, 17.0711, 17.0711, 4},
        {u"M10 0A10 10 0 1 0 0 10", 0, -7.0711, -7.0711, 4},
        {u"M10 0a10 10 0 0 1 -10 10", 0, 7.0711, 7.0711, 2},
        {u"M10 0A10 10 30 0 1 0 10", 0, 7.0711, 7.0711, 2},  // a circle has no turn
        {u"M10 0A10 10 0 2 1 0 10", 0, 7.0711, 7.0711, 2},   // a flag is set by 1 only
    };
    for (const auto& row : rows) {
        ArcPath arc(row.text);
        ASSERT_EQ(arc.path.count, row.records) << row.middleX;
        bool middle = false;
        for (long i = 2; i <= arc.path.count; ++i) {
            EXPECT_EQ(arc.at(i).kind, ZR_PATH_CURVE);
            for (double t = 0; t <= 1; t += 0.0625) {
                auto [x, y] = arc.on(i, t);
                EXPECT_NEAR(std::hypot(x - row.centre, y - row.centre), 10, 0.01);
                middle |= std::hypot(x - row.middleX, y - row.middleY) < 0.6;
            }
        }
        EXPECT_TRUE(middle);
        EXPECT_NEAR(arc.at(arc.path.count).x, 0, 1e-4);
        EXPECT_NEAR(arc.at(arc.path.count).y, 10, 1e-4);
    }
}

TEST(PathTextArc, RadiiTooSmall_GrowUntilTheyReach) {
    ArcPath arc(u"M0 0A1 1 0 0 1 20 0");  // a half circle of radius 10
    ASSERT_EQ(arc.path.count, 3);
    auto [x, y] = arc.on(2, 1);
    EXPECT_NEAR(x, 10, 1e-3);
    EXPECT_NEAR(y, -10, 1e-3);
}

TEST(PathTextArc, TurnedEllipse_RunsThroughItsAxes) {
    ArcPath arc(u"M20 0A20 10 90 0 1 0 0");  // turned: 10 wide, 20 high
    for (long i = 2; i <= arc.path.count; ++i)
        for (double t = 0; t <= 1; t += 0.125) {
            auto [x, y] = arc.on(i, t);
            EXPECT_NEAR((x - 10) * (x - 10) / 100 + y * y / 400, 1, 0.01);
        }
}

TEST(PathTextArc, CurrentPoint_IsTheTarget) {
    ArcPath arc(u"M10 0A10 10 0 0 1 0 10l1 1");
    EXPECT_EQ(arc.at(3).x, 1);
    EXPECT_EQ(arc.at(3).y, 11);
    EXPECT_EQ(Kinds(u"A10 10 0 0 1 0 10Zm1 1"), (std::vector<short>{3, 6, 1}));
    ArcPath start(u"A10 10 0 0 1 0 10Zm1 1");  // the arc began the subpath: its end is the start
    EXPECT_EQ(start.at(start.path.count).x, 1);
    EXPECT_EQ(start.at(start.path.count).y, 11);
}

TEST(PathTextArc, NoCircle_IsALineOrNothing) {
    static const struct {
        std::u16string text, records;
    } rows[] = {
        {u"M1 1A0 5 0 0 1 9 9", u"M1 1 L9 9"},  // a radius of 0: the line
        {u"M1 1A5 0 0 0 1 9 9", u"M1 1 L9 9"},
        {u"M1 1A0 0 0 0 1 9 9", u"M1 1 L9 9"},
        {u"M1 1a0 0 0 0 1 9 9", u"M1 1 L10 10"},
        {u"M1 1A5 5 0 0 1 1 1", u"M1 1"},  // to where it is: nothing
        {u"M1 1a5 5 0 1 1 0 0l1 1", u"M1 1 L2 2"},
        {u"M1 1A1e999 5 0 0 1 9 9", u"M1 1 L9 9"},  // no circle within the numbers
        {u"M1 1A1e38 1e38 0 0 1 9 9", u"M1 1 L9 9"},
        {u"M1 1A5 5 1e999 0 1 9 9", u"M1 1 L9 9"},
    };
    for (const auto& row : rows) {
        Read read = ReadPath(row.text);
        EXPECT_EQ(read.error, 0);
        EXPECT_EQ(read.text, row.records);
    }
}

TEST(PathTextArc, EndlessNumbers_AddNoMoreThanFourCurves) {
    for (const char16_t* text : {u"M1 1A5 5 0 0 1 1e999 9", u"M1e999 1A5 5 0 0 1 1 9", u"M1 1A1e-40 1e-40 0 0 1 9 9",
                                 u"M1e30 1e30A1 1 0 1 0 -1e30 -1e30", u"M1 1A1e-30 1e30 45 0 1 9 9"}) {
        ArcPath arc(text);
        EXPECT_LE(arc.path.count, 6);
    }
}

// Size -------------------------------------------------------------------------------------------------------------

TEST(PathText, MillionRecords_WayAndBack) {
    const long n = 1000000;
    std::u16string units = u"M0 0";
    for (long i = 1; i < n; ++i) units += i % 2 ? u"L1.5 2" : u"l1 1";
    auto begin = std::chrono::steady_clock::now();
    ZR_Text text = MakeText(units), out = MakeText(u"");
    ZR_Handle path, again;
    ZR_CreatePathHandle(&path);
    ZR_CreatePathHandle(&again);
    long error = 7;
    ZR_CreateHandleFromPathText(&text, &path, &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(path.count, n);
    ZR_GetPathText(&path, &out);
    ZR_CreateHandleFromPathText(&out, &again, &error);
    EXPECT_EQ(again.count, n);
    EXPECT_EQ(ZR_GetPathRecord(&again, n)->x, 1.5F);
    auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_LT(seconds, 60);  // it is linear: far below even with sanitizers
    again.Dispose();
    path.Dispose();
    out.Dispose();
    text.Dispose();
}

TEST(PathText, RandomTexts_EndAndKeepTheirRecords) {
    std::mt19937 random(5);
    static const std::u16string pieces[] = {u"M",  u"m",   u"L",   u"l", u"H", u"v", u"C",    u"s",
                                            u"Q",  u"t",   u"A",   u"a", u"Z", u"1", u"-2.5", u".5",
                                            u"..", u"1e5", u"1e-", u"+", u" ", u",", u"x",    u"9e99"};
    for (int round = 0; round < 3000; ++round) {
        std::u16string units = u"M1 1";
        for (unsigned n = random() % 40; n > 0; --n) units += pieces[random() % std::size(pieces)];
        Read read = ReadPath(units);
        EXPECT_TRUE(read.error == 0 || read.error == -1 || read.error == -2);
    }
}
