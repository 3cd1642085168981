// Shapes: what each primitive writes as SVG, and what it paints.
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "graphics/ZR_API_Region.h"
#include "tests/graphics/DrawingSupport.h"

namespace {

ZR_RGBColor gRed = Color(255, 0, 0), gGreen = Color(0, 255, 0), gBlue = Color(0, 0, 255),
            gHalf = Color(255, 0, 0, 0.5f);
ZR_Matrix gTwice = {2, 0, 0, 2, 0, 0};
#define TWICE " transform='matrix(2 0 0 2 0 0)'"

// The calls with what most rows leave out.
struct Shape {
    bool fill = true, stroke = false;
    ZR_RGBColor *fillColor = &gRed, *strokeColor = &gBlue;
    float width = 1;
    bool antialias = false;
    ZR_Matrix* matrix = nullptr;
    ZR_Gradient* gradient = nullptr;
    ZR_Handle* properties = nullptr;
    ZR_LineDash* dash = nullptr;

    void Rect(ZR_Device* d, ZR_Rect r, float radius = 0, bool rounded = false) const {
        d->DrawRect(&r, fill, stroke, fillColor, strokeColor, width, antialias, radius, rounded, matrix, gradient,
                    properties, dash);
    }
    void Oval(ZR_Device* d, ZR_Rect r) const {
        d->DrawOval(&r, fill, stroke, fillColor, strokeColor, width, antialias, matrix, gradient, properties, dash);
    }
    void Arc(ZR_Device* d, ZR_Rect r, float start, float end, bool clockwise) const {
        d->DrawArc(&r, start, end, clockwise, fill, stroke, fillColor, strokeColor, width, antialias, matrix, gradient,
                   properties, dash);
    }
    void Path(ZR_Device* d, ZR_Handle* path, ZR_Rect target, ZR_Rect bounds, ZR_Handle* out = nullptr,
              ZR_Fillrule rule = ZR_FILL_NONZERO, bool smooth = false) const {
        d->DrawPath(smooth, path, &target, &bounds, fill, stroke, fillColor, strokeColor, width, antialias, matrix,
                    gradient, properties, dash, out, rule);
    }
    void Line(ZR_Device* d, float x1, float y1, float x2, float y2, short join = 0, short cap = 0) const {
        d->DrawLine(x1, y1, x2, y2, strokeColor, width, antialias, join, cap, matrix, properties, dash);
    }
};

struct SvgRow {
    const char* name;
    std::function<void(ZR_Device*)> draw;
    const char* text;
};
void ExpectRows(const std::vector<SvgRow>& rows) {
    for (const SvgRow& row : rows) {
        SvgCanvas c;
        row.draw(&c.device);
        EXPECT_EQ(c.Drawn(), row.text) << row.name;
    }
}

class Shapes : public DrawingTest {};

}  // namespace

// SVG --------------------------------------------------------------------------------------------------------------

TEST_F(Shapes, DrawLine_Svg_HasItsAttributesInOrder) {
    TestDash dash(0, 3, 3);
    TestProperties properties({{"id", "l"}});
    ExpectRows({
        {"plain", [](ZR_Device* d) { Shape().Line(d, 1, 2.5f, 30, 40); },
         "<line x1='1' y1='2.5' x2='30' y2='40' stroke-width='1' stroke='#0000FF'/>"},
        {"alpha, matrix, properties",
         [&](ZR_Device* d) {
             Shape{.strokeColor = &gHalf, .width = 2.5f, .matrix = &gTwice, .properties = properties}.Line(d, 0, 0, 1,
                                                                                                           1);
         },
         "<line id='l' x1='0' y1='0' x2='1' y2='1' stroke-width='2.5' stroke='#FF0000' "
         "stroke-opacity='0.5'" TWICE "/>"},
        {"neither dash, join, cap nor antialias",
         [&](ZR_Device* d) { Shape{.antialias = true, .dash = dash}.Line(d, 0, 0, 1, 1, 2, 2); },
         "<line x1='0' y1='0' x2='1' y2='1' stroke-width='1' stroke='#0000FF'/>"},
        {"no colour", [](ZR_Device* d) { Shape{.strokeColor = nullptr}.Line(d, 0, 0, 1, 1); }, ""},
    });
}

TEST_F(Shapes, DrawLines_Svg_IsOneLineASegment) {
    static ZR_Rect segments[] = {Rect(1, 2, 3, 4), Rect(5, 6, 7, 8)};
    ExpectRows({
        {"two", [](ZR_Device* d) { d->DrawLines(segments, 2, &gRed, 3, true, nullptr); },
         "<line x1='1' y1='2' x2='3' y2='4' stroke-width='3' stroke='#FF0000'/>"
         "<line x1='5' y1='6' x2='7' y2='8' stroke-width='3' stroke='#FF0000'/>"},
        {"none", [](ZR_Device* d) { d->DrawLines(segments, 0, &gRed, 3, true, nullptr); }, ""},
        {"negative", [](ZR_Device* d) { d->DrawLines(segments, -1, &gRed, 3, true, nullptr); }, ""},
    });
}

TEST_F(Shapes, DrawRect_Svg_HasItsAttributesInOrder) {
    TestProperties properties({{"id", "r"}});
    const ZR_Rect r = Rect(1, 2, 11, 22.5f);
    ExpectRows({
        {"fill", [&](ZR_Device* d) { Shape().Rect(d, r); },
         "<rect x='1' y='2' width='10' height='20.5' fill='#FF0000'/>"},
        {"nothing", [&](ZR_Device* d) { Shape{.fill = false}.Rect(d, r); },
         "<rect x='1' y='2' width='10' height='20.5' fill='none'/>"},
        {"all",
         [&](ZR_Device* d) {
             Shape{.stroke = true,
                   .fillColor = &gHalf,
                   .strokeColor = &gHalf,
                   .width = 3,
                   .matrix = &gTwice,
                   .properties = properties}
                 .Rect(d, r, 5, true);
         },
         "<rect id='r' x='1' y='2' width='10' height='20.5' fill='#FF0000' rx='2.5' ry='2.5' fill-opacity='0.5' "
         "stroke='#FF0000' stroke-opacity='0.5' stroke-width='3'" TWICE "/>"},
        {"rounded with radius 0 writes no rx", [&](ZR_Device* d) { Shape().Rect(d, r, 0, true); },
         "<rect x='1' y='2' width='10' height='20.5' fill='#FF0000'/>"},
        {"radius without rounded", [&](ZR_Device* d) { Shape().Rect(d, r, 5, false); },
         "<rect x='1' y='2' width='10' height='20.5' fill='#FF0000'/>"},
        {"radius is not cut to the sides", [&](ZR_Device* d) { Shape().Rect(d, r, 1000, true); },
         "<rect x='1' y='2' width='10' height='20.5' fill='#FF0000' rx='500' ry='500'/>"},
        {"no colours",
         [&](ZR_Device* d) { Shape{.stroke = true, .fillColor = nullptr, .strokeColor = nullptr}.Rect(d, r); },
         "<rect x='1' y='2' width='10' height='20.5' fill='none'/>"},
        {"null",
         [&](ZR_Device* d) {
             d->DrawRect(nullptr, true, true, &gRed, &gRed, 1, true, 0, false, nullptr, nullptr, nullptr, nullptr);
         },
         ""},
    });
}

TEST_F(Shapes, DrawOval_Svg_HasItsAttributesInOrder) {
    const ZR_Rect r = Rect(10, 20, 30, 25);
    ExpectRows({
        {"fill", [&](ZR_Device* d) { Shape().Oval(d, r); },
         "<ellipse cx='20' cy='22.5' rx='10' ry='2.5' fill='#FF0000'/>"},
        {"all", [&](ZR_Device* d) { Shape{.fill = false, .stroke = true, .width = 2, .matrix = &gTwice}.Oval(d, r); },
         "<ellipse cx='20' cy='22.5' rx='10' ry='2.5' fill='none' stroke='#0000FF' stroke-width='2'" TWICE "/>"},
    });
}

TEST_F(Shapes, Gradients_Svg_TakeTheFillOrFallBackToIt) {
    TestGradient off(ZR_GRADIENT_NONE), empty(ZR_GRADIENT_PERCENT);
    off.Stop(0, gGreen);
    const ZR_Rect r = Rect(0, 0, 10, 10);
    ExpectRows({
        // A gradient with bounds type 0 falls back to the plain colour.
        {"off", [&](ZR_Device* d) { Shape{.gradient = off}.Rect(d, r); },
         "<rect x='0' y='0' width='10' height='10' fill='#FF0000'/>"},
        {"off, oval", [&](ZR_Device* d) { Shape{.gradient = off}.Oval(d, r); },
         "<ellipse cx='5' cy='5' rx='5' ry='5' fill='#FF0000'/>"},
        {"without stops", [&](ZR_Device* d) { Shape{.gradient = empty}.Rect(d, r); },
         "<rect x='0' y='0' width='10' height='10' fill='none'/>"},
        {"not filled", [&](ZR_Device* d) { Shape{.fill = false, .gradient = off}.Rect(d, r); },
         "<rect x='0' y='0' width='10' height='10' fill='none'/>"},
    });
    TestGradient on(ZR_GRADIENT_PERCENT);
    on.Stop(0, gGreen).Stop(1, gBlue);
    TestPath path("M0 0L10 0L10 10Z");
    SvgCanvas c;
    Shape shape = {.gradient = on};
    shape.Rect(&c.device, r);
    shape.Oval(&c.device, r);
    shape.Path(&c.device, path, r, r);
    // Required: a path ends up unfilled, though its gradient is defined.
    EXPECT_NE(c.Body().find("</defs><rect x='0' y='0' width='10' height='10' fill='url(#gradient1)'/>"
                            "<ellipse cx='5' cy='5' rx='5' ry='5' fill='url(#gradient2)'/>"
                            "<path d='M0 0 L10 0 L10 10 Z' fill='none'/>"),
              std::string::npos)
        << c.Body();
    EXPECT_EQ(c->svg->gradientCount, 3);
    EXPECT_NE(c.Body().find("id='gradient3'"), std::string::npos);
}

TEST_F(Shapes, DrawPath_Svg_HasThePathAsItStands) {
    TestPath path("M0 0L10 0L10 10.5Z"), empty("");
    const ZR_Rect target = Rect(50, 50, 100, 100), bounds = Rect(0, 0, 10, 10);
    ExpectRows({
        {"fill; target and bounds have no effect", [&](ZR_Device* d) { Shape().Path(d, path, target, bounds); },
         "<path d='M0 0 L10 0 L10 10.5 Z' fill='#FF0000'/>"},
        {"even-odd", [&](ZR_Device* d) { Shape().Path(d, path, target, bounds, nullptr, ZR_FILL_EVENODD); },
         "<path d='M0 0 L10 0 L10 10.5 Z' fill='#FF0000' fill-rule='evenodd'/>"},
        {"neither fill nor stroke", [&](ZR_Device* d) { Shape{.fill = false}.Path(d, path, target, bounds); },
         "<path d='M0 0 L10 0 L10 10.5 Z' fill='none'/>"},
        {"stroke, matrix",
         [&](ZR_Device* d) {
             Shape{.fill = false, .stroke = true, .width = 2, .matrix = &gTwice}.Path(d, path, target, bounds, nullptr,
                                                                                      ZR_FILL_EVENODD, true);
         },
         "<path d='M0 0 L10 0 L10 10.5 Z' fill='none' stroke='#0000FF' stroke-width='2'" TWICE "/>"},
        {"empty", [&](ZR_Device* d) { Shape().Path(d, empty, target, bounds); }, "<path d='' fill='#FF0000'/>"},
        {"null", [&](ZR_Device* d) { Shape().Path(d, nullptr, target, bounds); }, ""},
    });
    ZR_Handle out;
    ZR_CreatePathHandle(&out);
    SvgCanvas c;
    Shape().Path(&c.device, path, target, bounds, &out);
    EXPECT_EQ(out.count, 0);
    out.Dispose();
}

TEST_F(Shapes, DrawArc_Svg_ClockwiseKeepsTheAngles) {
    const ZR_Rect r = Rect(0, 0, 20, 20);
    ExpectRows({
        // 0 to 90, clockwise: from the right to the bottom.
        {"clockwise", [&](ZR_Device* d) { Shape().Arc(d, r, 0, 90, true); },
         "<path d='M20 10 C20 15.522 15.522 20 10 20 L10 10' fill='#FF0000'/>"},
        {"both", [&](ZR_Device* d) { Shape{.stroke = true, .width = 2, .matrix = &gTwice}.Arc(d, r, 0, 90, true); },
         "<path d='M20 10 C20 15.522 15.522 20 10 20 L10 10' fill='#FF0000'" TWICE "/>"
         "<path d='M20 10 C20 15.522 15.522 20 10 20' fill='none' stroke='#0000FF' stroke-width='2'" TWICE "/>"},
        {"a sweep of 0", [&](ZR_Device* d) { Shape{.stroke = true}.Arc(d, r, 90, 90, true); }, ""},
        {"neither", [&](ZR_Device* d) { Shape{.fill = false}.Arc(d, r, 0, 90, true); }, ""},
        // Required: a full turn of the mirrored sense is no arc.
        {"full turn, mirrored", [&](ZR_Device* d) { Shape().Arc(d, r, 0, 360, false); }, ""},
    });
    // The other sense: start 270, sweep 90.
    SvgCanvas c;
    Shape{.fill = false, .stroke = true}.Arc(&c.device, r, 0, 90, false);
    EXPECT_TRUE(c.Drawn().starts_with("<path d='M10 0 C15.52")) << c.Drawn();
    EXPECT_NE(c.Drawn().find(" 20 10'"), std::string::npos) << c.Drawn();
}

TEST_F(Shapes, DrawArc_EndZero_IsEnd360) {
    const ZR_Rect r = Rect(0, 0, 20, 20);
    for (bool clockwise : {true, false}) {
        SvgCanvas zero, full;
        Shape().Arc(&zero.device, r, 45, 0, clockwise);
        Shape().Arc(&full.device, r, 45, 360, clockwise);
        EXPECT_EQ(zero.Drawn(), full.Drawn());
        EXPECT_NE(zero.Drawn(), "");
        BitmapCanvas zeroBits, fullBits;
        Shape().Arc(&zeroBits.device, r, 45, 0, clockwise);
        Shape().Arc(&fullBits.device, r, 45, 360, clockwise);
        EXPECT_EQ(zeroBits.Pixels(), fullBits.Pixels());
        EXPECT_GT(zeroBits.Count(), 200);
    }
}

TEST_F(Shapes, DrawArc_SvgGradient_IsReplacedByTheColour) {
    TestGradient g(ZR_GRADIENT_PERCENT), off(ZR_GRADIENT_NONE);
    g.Stop(0, gGreen).Stop(1, gBlue);
    off.Stop(0, gGreen);
    SvgCanvas c;
    Shape{.gradient = g}.Arc(&c.device, Rect(0, 0, 20, 20), 0, 90, true);
    Shape{.gradient = off}.Arc(&c.device, Rect(0, 0, 20, 20), 0, 90, true);
    EXPECT_EQ(c->svg->gradientCount, 1);
    EXPECT_NE(c.Body().find("</defs><path d='M20 10 C20 15.522 15.522 20 10 20 L10 10' fill='#FF0000'/>"),
              std::string::npos)
        << c.Body();
}

TEST_F(Shapes, Regions_Svg_AreOutlinesWithAlphaAndWithoutProperties) {
    ZR_Region region;
    region.Create();
    ZR_Rect whole = Rect(0, 0, 20, 10), hole = Rect(5, 2, 15, 8);
    region.AddRect(&whole);
    region.Difference(&hole);
    SvgCanvas c;
    TestProperties::Add(&c->customProperties, "id", "device");
    c->FillRegion(&region, &gHalf);
    c->FrameRegion(&region, &gHalf, 2, nullptr);  // framePath is empty
    // Required: what is taken away is one more outline.
    EXPECT_EQ(c.Drawn(),
              "<path d='M0 0 L20 0 L20 10 L0 10 L0 0 M5 2 L15 2 L15 8 L5 8 L5 2' fill='#FF0000' fill-opacity='0.5'/>");
    ZR_AddPathMove(&c->framePath, 1, 2);
    c->FrameRegion(&region, &gHalf, 2, nullptr);  // one record is too few
    ZR_AddPathLine(&c->framePath, 3, 4);
    c->FrameRegion(nullptr, &gHalf, 2, nullptr);
    EXPECT_TRUE(
        c.Drawn().ends_with("fill-opacity='0.5'/><path d='M1 2 L3 4' fill='none' stroke='#FF0000' "
                            "stroke-opacity='0.5' stroke-width='2'/>"))
        << c.Drawn();
    region.Dispose();
}

TEST_F(Shapes, Tables_Svg_AreOneRectEach) {
    ZR_Rect rects[] = {Rect(0, 0, 10, 10), Rect(10, 0, 20, 10)};
    ZR_RGBColor colors[] = {gRed, gHalf};
    SvgCanvas c;
    c->DrawRectsWithDifferentBackgroundColors(rects, colors, 2);
    c->DrawRectsWithDifferentBackgroundColors(rects, colors, 0);
    EXPECT_EQ(c.Drawn(),
              "<rect x='0' y='0' width='10' height='10' fill='#FF0000'/>"
              "<rect x='10' y='0' width='10' height='10' fill='#FF0000' fill-opacity='0.5'/>");
}

TEST_F(Shapes, FillRectWithShadow_Svg_WritesNoShadow) {
    SvgCanvas c;
    ZR_Rect r = Rect(0, 0, 10, 10);
    c->FillRectWithShadow(&r, 4, &gRed, 3, 3, 5, true);
    c->FillRectWithShadow(&r, 0, &gRed, 0, 3, 5, true);
    EXPECT_EQ(c.Drawn(),
              "<rect x='0' y='0' width='10' height='10' fill='#FF0000' rx='2' ry='2'/>"
              "<rect x='0' y='0' width='10' height='10' fill='#FF0000'/>");
}

TEST_F(Shapes, RasterOnly_OnSvg_WriteNothing) {
    SvgCanvas c;
    BitmapCanvas source;
    TestGradient g(ZR_GRADIENT_PERCENT);
    g.Stop(0, gGreen).Stop(1, gBlue);
    ZR_Rect r = Rect(0, 0, 10, 10);
    c->DrawGradient(g, &r);
    c->DrawLayer(&source.device, &r, nullptr);
    c->DrawLayerWOclip(&source.device, &r, nullptr);
    EXPECT_EQ(c.Body(), "<defs/>");
}

// Lines in pixels --------------------------------------------------------------------------------------------------

TEST_F(Shapes, DrawLine_AnySlope_RunsBetweenItsPoints) {
    static const struct {
        float x1, y1, x2, y2;
    } rows[] = {{5, 5, 35, 25}, {35, 25, 5, 5}, {5, 25, 35, 5}, {35, 5, 5, 25}};
    for (ZR_Matrix* matrix : {static_cast<ZR_Matrix*>(nullptr), &gTwice})
        for (const auto& row : rows) {
            BitmapCanvas c(80, 80);
            const int scale = matrix ? 2 : 1;
            Shape{.width = 3, .antialias = true, .matrix = matrix}.Line(&c.device, row.x1, row.y1, row.x2, row.y2);
            for (float t : {0.1f, 0.5f, 0.9f}) {
                const long x = std::lround((row.x1 + (row.x2 - row.x1) * t) * scale);
                const long y = std::lround((row.y1 + (row.y2 - row.y1) * t) * scale);
                EXPECT_NEAR_DOT(c.At(x, y), kBlueDot, 60) << row.x1 << " " << row.y1 << " " << t << " " << scale;
            }
            EXPECT_EQ(c.At(0, 0), kClearDot);
            CGContextMoveToPoint(c->context, 0, 0);  // no state is left behind
            EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(c->context)));
        }
}

TEST_F(Shapes, DrawLine_JoinCapAndDash_AreSetAndPutBack) {
    BitmapCanvas square, butt, dashed;
    Shape{.width = 4}.Line(&square.device, 10, 20, 30, 20, 0, 2);
    Shape{.width = 4}.Line(&butt.device, 10, 20, 30, 20);
    EXPECT_EQ(butt.Count(), 20 * 4);
    EXPECT_EQ(square.Count(), 24 * 4);
    Shape{.width = 4}.Line(&square.device, 10, 30, 30, 30);  // the cap is gone
    EXPECT_EQ(square.Count(), 24 * 4 + 20 * 4);
    TestDash dash(0, 5, 5);
    Shape{.width = 4, .dash = dash}.Line(&dashed.device, 10, 20, 30, 20);
    EXPECT_EQ(dashed.Count(), 10 * 4);
    Shape{.width = 4}.Line(&dashed.device, 10, 30, 30, 30);  // and so is the dash
    EXPECT_EQ(dashed.Count(), 10 * 4 + 20 * 4);
}

TEST_F(Shapes, DrawLines_TwoDisjointSegments_CloseOnlyTheSecond) {
    // A closed segment has no ends: with a square join at them it is drawn out beyond its points.
    BitmapCanvas c;
    ZR_Rect segments[] = {Rect(10, 10, 20, 10), Rect(10, 30, 20, 30)};
    CGContextSetLineJoin(c->context, kCGLineJoinRound);
    c->DrawLines(segments, 2, &gBlue, 6, /*antialias*/ false, nullptr);
    EXPECT_EQ(c.At(8, 10), kClearDot);
    EXPECT_EQ(c.At(21, 10), kClearDot);
    EXPECT_EQ(c.At(8, 30), kBlueDot);
    EXPECT_EQ(c.At(21, 30), kBlueDot);
    BitmapCanvas none;
    none->DrawLines(segments, 0, &gBlue, 6, false, nullptr);
    none->DrawLines(nullptr, 2, &gBlue, 6, false, nullptr);
    none->DrawLines(segments, 2, nullptr, 6, false, nullptr);
    EXPECT_EQ(none.Count(0), 0);
}

// Rectangles in pixels ---------------------------------------------------------------------------------------------

TEST_F(Shapes, DrawRect_FillAndStroke_CoverTheRect) {
    BitmapCanvas c;
    Shape{.stroke = true, .width = 2}.Rect(&c.device, Rect(10, 5, 30, 20));
    EXPECT_EQ(c.At(20, 12), kRedDot);
    EXPECT_EQ(c.At(9, 12), kBlueDot);
    EXPECT_EQ(c.At(10, 4), kBlueDot);
    EXPECT_EQ(c.Count(), 22 * 17);
    BitmapCanvas stroked;
    Shape{.fill = false, .stroke = true, .width = 2}.Rect(&stroked.device, Rect(10, 5, 30, 20));
    EXPECT_EQ(stroked.Count(), 22 * 17 - 18 * 13);
    BitmapCanvas half;
    Shape{.fillColor = &gHalf}.Rect(&half.device, Rect(0, 0, 40, 40));
    EXPECT_NEAR_DOT(half.At(20, 20), (Dot{128, 0, 0, 128}), 1);
}

TEST_F(Shapes, DrawRect_Matrix_MeansTheSameAsInSvg) {
    BitmapCanvas c;
    ZR_Matrix m = {0, 1, -1, 0, 30, 5};  // a quarter turn clockwise, then moved
    Shape{.matrix = &m}.Rect(&c.device, Rect(0, 0, 10, 20));
    // (x, y) goes to (30 - y, 5 + x): columns 10..30, rows 5..15
    EXPECT_EQ(c.Count(), 200);
    EXPECT_EQ(c.At(10, 5), kRedDot);
    EXPECT_EQ(c.At(29, 14), kRedDot);
    EXPECT_EQ(c.At(9, 5), kClearDot);
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(c->context)));
}

TEST_F(Shapes, DrawRect_Rounded_CutsTheCorners) {
    static const struct {
        float radius;
        long corner;  // pixels that a corner loses, about
    } rows[] = {{0, 0}, {10, 5}, {-3, 0}, {std::nanf(""), 0}};
    for (const auto& row : rows) {
        BitmapCanvas c;
        Shape().Rect(&c.device, Rect(10, 10, 30, 30), row.radius, true);
        EXPECT_NEAR(static_cast<double>(c.Count()), 400 - 4.0 * static_cast<double>(row.corner), 8) << row.radius;
        EXPECT_EQ(c.At(20, 20), kRedDot);
    }
}

TEST_F(Shapes, DrawRect_Radius1000On20By10_IsCutToFive) {
    BitmapCanvas cut, five;
    Shape{.antialias = true}.Rect(&cut.device, Rect(5, 5, 25, 15), 1000, true);
    Shape{.antialias = true}.Rect(&five.device, Rect(5, 5, 25, 15), 10, true);
    EXPECT_EQ(cut.Pixels(), five.Pixels());
    EXPECT_EQ(cut.At(5, 5), kClearDot);
    EXPECT_EQ(cut.At(15, 5), kRedDot);
    BitmapCanvas stroked;
    Shape{.stroke = true, .width = 2}.Rect(&stroked.device, Rect(5, 5, 25, 15), 1000, true);
    EXPECT_EQ(stroked.At(15, 4), kBlueDot);
    EXPECT_EQ(stroked.At(15, 10), kRedDot);
}

TEST_F(Shapes, RoundRectToPath_ZRRect_IsConverted) {
    BitmapCanvas c;
    ZR_Rect r = Rect(0, 0, 10, 10);
    CGContextSetRGBFillColor(c->context, 1, 0, 0, 1);
    c->RoundRectToPath(&r, 0);
    CGContextFillPath(c->context);
    EXPECT_EQ(c.At(5, 5), kRedDot);
    EXPECT_EQ(c.Count(), 100);
    c->RoundRectToPath(static_cast<ZR_Rect*>(nullptr), 1);
}

TEST_F(Shapes, Tables_Raster_FillEachAndLeaveAntialiasOff) {
    BitmapCanvas c;
    ZR_Rect rects[] = {Rect(0, 0, 10, 10), Rect(10, 0, 20, 10), Rect(20, 0, 30, 10), Rect(0, 10.25f, 40, 20.25f)};
    ZR_RGBColor colors[] = {gRed, gRed, gGreen, gBlue};
    c->SetAntialias(true);
    c->DrawRectsWithDifferentBackgroundColors(rects, colors, 4);
    EXPECT_EQ(c.At(5, 5), kRedDot);
    EXPECT_EQ(c.At(15, 5), kRedDot);
    EXPECT_EQ(c.At(25, 5), kGreenDot);
    EXPECT_EQ(c.At(5, 15), kBlueDot);
    EXPECT_EQ(c.At(5, 20), kClearDot);
    CGContextFillRect(c->context, CGRectMake(30, 0, 5.5, 5.5));  // Required: it stays off
    EXPECT_TRUE(c.At(35, 37) == kClearDot || c.At(35, 37) == kBlueDot);
}

TEST_F(Shapes, FillRectWithShadow_BothOffsets_DropAShadowUpwards) {
    BitmapCanvas c(60, 60), none(60, 60), onlyY(60, 60);
    ZR_Rect r = Rect(20, 20, 40, 40);
    none->FillRectWithShadow(&r, 0, &gRed, 0, 0, 0, false);
    EXPECT_EQ(none.Count(0), 400);
    onlyY->FillRectWithShadow(&r, 0, &gRed, 0, 5, 0, false);
    EXPECT_EQ(onlyY.Count(0), 400);
    c->FillRectWithShadow(&r, 0, &gRed, 5, 6, 0, false);
    EXPECT_EQ(c.At(30, 30), kRedDot);
    EXPECT_NEAR_DOT(c.At(42, 18), (Dot{0, 0, 0, 85}), 3);  // Required: not flipped
    EXPECT_EQ(c.At(18, 42), kClearDot);
    Shape().Rect(&c.device, Rect(0, 50, 5, 55));  // and it is off again
    EXPECT_EQ(c.At(7, 48), kClearDot);
}

// Ovals and arcs in pixels -----------------------------------------------------------------------------------------

TEST_F(Shapes, DrawOval_FillAndStroke_LieInTheRect) {
    BitmapCanvas c;
    Shape{.stroke = true, .width = 2, .antialias = true}.Oval(&c.device, Rect(5, 10, 35, 30));
    EXPECT_EQ(c.At(20, 20), kRedDot);
    EXPECT_NEAR_DOT(c.At(5, 20), kBlueDot, 20);
    EXPECT_EQ(c.At(5, 10), kClearDot);
    BitmapCanvas filled;
    Shape{.antialias = true}.Oval(&filled.device, Rect(5, 10, 35, 30));
    EXPECT_NEAR(static_cast<double>(filled.Count()), 3.14159 * 15 * 10, 12);
}

TEST_F(Shapes, DrawArc_Raster_IsTheSameOnTheScreenAsInSvg) {
    // 0 to 90 clockwise is the lower right quarter, the other sense the upper right one.
    const ZR_Rect r = Rect(0, 0, 40, 40);
    for (ZR_Matrix* matrix : {static_cast<ZR_Matrix*>(nullptr), &gTwice}) {
        const long far = matrix ? 60 : 30, near = matrix ? 20 : 10;
        BitmapCanvas clockwise(80, 80), other(80, 80);
        Shape{.matrix = matrix}.Arc(&clockwise.device, r, 0, 90, true);
        Shape{.matrix = matrix}.Arc(&other.device, r, 0, 90, false);
        EXPECT_EQ(clockwise.At(far, far), kRedDot);
        EXPECT_EQ(clockwise.At(far, near), kClearDot);
        EXPECT_EQ(clockwise.At(near, far), kClearDot);
        EXPECT_EQ(other.At(far, near), kRedDot);
        EXPECT_EQ(other.At(far, far), kClearDot);
        EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(other->context)));
    }
}

TEST_F(Shapes, DrawArc_FullTurns_AreWholeInOneSenseAndNothingInTheOther) {
    BitmapCanvas whole, nothing;
    Shape{.antialias = true}.Arc(&whole.device, Rect(0, 0, 40, 40), 0, 360, false);
    EXPECT_NEAR(static_cast<double>(whole.Count()), 3.14159 * 400, 12);
    Shape{.stroke = true}.Arc(&nothing.device, Rect(0, 0, 40, 40), 0, 360, true);  // Required
    EXPECT_EQ(nothing.Count(0), 0);
}

TEST_F(Shapes, DrawArc_StrokeDashAndGradient_AreDashedAndIgnored) {
    BitmapCanvas solid, dashed, graded;
    TestDash dash(0, 4, 4);
    TestGradient g(ZR_GRADIENT_PERCENT);
    g.Stop(0, gGreen).Stop(1, gGreen);
    Shape{.fill = false, .stroke = true, .width = 3}.Arc(&solid.device, Rect(5, 5, 35, 35), 0, 180, true);
    Shape{.fill = false, .stroke = true, .width = 3, .dash = dash}.Arc(&dashed.device, Rect(5, 5, 35, 35), 0, 180,
                                                                       true);
    EXPECT_GT(solid.Count(), dashed.Count() * 3 / 2);
    Shape{.gradient = g}.Arc(&graded.device, Rect(0, 0, 40, 40), 0, 90, true);
    EXPECT_EQ(graded.At(30, 30), kRedDot);
}

// Paths in pixels --------------------------------------------------------------------------------------------------

TEST_F(Shapes, DrawPath_BoundsEqualTarget_IsDrawnWhereItStands) {
    BitmapCanvas c;
    TestPath path("M10 5L30 5L30 15L10 15Z");
    const ZR_Rect r = Rect(10, 5, 30, 15);
    ZR_Handle out;
    ZR_CreatePathHandle(&out);
    ZR_AddPathMove(&out, 1, 1);
    Shape().Path(&c.device, path, r, r, &out);
    EXPECT_EQ(c.Count(), 200);
    EXPECT_EQ(c.At(11, 6), kRedDot);
    ASSERT_EQ(out.count, 5);
    EXPECT_EQ(ZR_GetPathRecord(&out, 2)->x, 30);
    out.Dispose();
}

TEST_F(Shapes, DrawPath_OtherTarget_IsScaledIntoIt) {
    TestPath path("M0 0L10 0L10 10L0 10Z");
    for (bool withOut : {true, false}) {
        BitmapCanvas c;
        ZR_Handle out;
        ZR_CreatePathHandle(&out);
        Shape().Path(&c.device, path, Rect(20, 10, 40, 15), Rect(0, 0, 10, 10), withOut ? &out : nullptr);
        EXPECT_EQ(c.Count(), 100);
        EXPECT_EQ(c.At(20, 10), kRedDot);
        EXPECT_EQ(c.At(39, 14), kRedDot);
        if (withOut) {
            ASSERT_EQ(out.count, 5);
            EXPECT_EQ(ZR_GetPathRecord(&out, 3)->x, 40);
            EXPECT_EQ(ZR_GetPathRecord(&out, 3)->y, 15);
        }
        EXPECT_EQ(ZR_GetPathRecord(path, 3)->x, 10) << "the caller's path stays";
        out.Dispose();
    }
}

TEST_F(Shapes, DrawPath_UnderAMatrix_OutPathIsInDocumentCoordinates) {
    BitmapCanvas c;
    TestPath path("M0 0L10 0L10 10L0 10Z");
    ZR_Handle out;
    ZR_CreatePathHandle(&out);
    Shape{.matrix = &gTwice}.Path(&c.device, path, Rect(5, 2, 15, 7), Rect(0, 0, 10, 10), &out);
    EXPECT_EQ(c.Count(), 20 * 10);
    EXPECT_EQ(c.At(10, 4), kRedDot);
    EXPECT_EQ(c.At(29, 13), kRedDot);
    ASSERT_EQ(out.count, 5);
    EXPECT_EQ(ZR_GetPathRecord(&out, 1)->x, 5);
    EXPECT_EQ(ZR_GetPathRecord(&out, 1)->y, 2);
    EXPECT_EQ(ZR_GetPathRecord(&out, 3)->x, 15);
    EXPECT_EQ(ZR_GetPathRecord(&out, 3)->y, 7);
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(c->context)));
    out.Dispose();
}

TEST_F(Shapes, DrawPath_NeitherFillNorStroke_DoesNothing) {
    BitmapCanvas c;
    TestPath path("M0 0L10 0L10 10L0 10Z"), empty("");
    ZR_Handle out;
    ZR_CreatePathHandle(&out);
    Shape{.fill = false}.Path(&c.device, path, Rect(0, 0, 10, 10), Rect(0, 0, 10, 10), &out);
    EXPECT_EQ(out.count, 0);
    Shape{.matrix = &gTwice}.Path(&c.device, empty, Rect(0, 0, 10, 10), Rect(0, 0, 10, 10));
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(c->context)));
    EXPECT_EQ(c.Count(0), 0);
    out.Dispose();
}

TEST_F(Shapes, DrawPath_FillRuleAndStroke_AreThePathModes) {
    // Two squares of one sense, one within the other.
    TestPath path("M0 0L30 0L30 30L0 30Z M10 10L20 10L20 20L10 20Z");
    const ZR_Rect r = Rect(0, 0, 30, 30);
    static const struct {
        bool fill, stroke;
        ZR_Fillrule rule;
        Dot hole, ring, edge;
    } rows[] = {
        {true, false, ZR_FILL_NONZERO, kRedDot, kRedDot, kRedDot},
        {true, false, ZR_FILL_EVENODD, kClearDot, kRedDot, kClearDot},
        {false, true, ZR_FILL_EVENODD, kClearDot, kClearDot, kBlueDot},
        {true, true, ZR_FILL_NONZERO, kRedDot, kRedDot, kBlueDot},
        {true, true, ZR_FILL_EVENODD, kClearDot, kRedDot, kBlueDot},
    };
    for (const auto& row : rows) {
        BitmapCanvas c;
        Shape{.fill = row.fill, .stroke = row.stroke, .width = 2}.Path(&c.device, path, r, r, nullptr, row.rule);
        EXPECT_EQ(c.At(15, 15), row.hole);
        EXPECT_EQ(c.At(5, 5), row.ring);
        EXPECT_EQ(c.At(10, 15), row.edge);
    }
}

TEST_F(Shapes, DrawPath_Smooth_IsRounderThanItsPoints) {
    TestPath path("M5 35L20 5L35 35");
    const ZR_Rect r = Rect(0, 0, 40, 40);
    BitmapCanvas plain, smooth;
    Shape{.fill = false, .stroke = true, .width = 2}.Path(&plain.device, path, r, r);
    Shape{.fill = false, .stroke = true, .width = 2}.Path(&smooth.device, path, r, r, nullptr, ZR_FILL_NONZERO, true);
    EXPECT_NE(plain.Pixels(), smooth.Pixels());
    EXPECT_GT(smooth.Count(), 50);
}

// Regions and layers in pixels -------------------------------------------------------------------------------------

TEST_F(Shapes, Regions_Raster_AreOpaqueWhateverTheAlpha) {
    ZR_Region region;
    region.Create();
    ZR_Rect whole = Rect(0, 0, 20, 20), hole = Rect(5, 5, 15, 15);
    region.AddRect(&whole);
    region.Difference(&hole);
    BitmapCanvas c, framed;
    c->FillRegion(&region, &gHalf);
    EXPECT_EQ(c.At(2, 2), kRedDot);
    EXPECT_EQ(c.At(10, 10), kClearDot);
    EXPECT_EQ(c.Count(), 300);
    framed->SetAntialias(false);
    framed->FrameRegion(&region, &gHalf, 2, nullptr);
    EXPECT_EQ(framed.At(5, 10), kRedDot);
    EXPECT_EQ(framed.At(2, 2), kClearDot);
    EXPECT_EQ(framed.At(19, 10), kRedDot);
    c->FillRegion(nullptr, &gRed);
    c->FillRegion(&region, nullptr);
    c->FrameRegion(&region, nullptr, 1, nullptr);
    region.Dispose();
}

TEST_F(Shapes, DrawLayer_Layer_LiesAtTheTopOfTheRectAndIsCutToIt) {
    ZR_Device source;
    ASSERT_TRUE(source.CreateOffscreen(20, 20, false, 0, 0));
    Shape().Rect(&source, Rect(0, 0, 20, 10));
    Shape{.fillColor = &gBlue}.Rect(&source, Rect(0, 10, 20, 20));
    for (ZR_Matrix* matrix : {static_cast<ZR_Matrix*>(nullptr), &gTwice}) {
        const long s = matrix ? 2 : 1;
        BitmapCanvas c(80, 80), whole(80, 80);
        ZR_Rect r = Rect(5, 5, 15, 20);
        c->DrawLayer(&source, &r, matrix);
        EXPECT_EQ(c.At(6 * s, 6 * s), kRedDot) << s;
        EXPECT_EQ(c.At(6 * s, 18 * s), kBlueDot) << s;
        EXPECT_EQ(c.At(16 * s, 6 * s), kClearDot) << s;
        EXPECT_EQ(c.Count(), 150 * s * s) << s;
        whole->DrawLayerWOclip(&source, &r, nullptr);
        EXPECT_EQ(whole.At(6, 6), kRedDot);
        EXPECT_EQ(whole.At(20, 20), kBlueDot);
        EXPECT_EQ(whole.Count(), 400);
    }
    BitmapCanvas c, bitmap;
    ZR_Rect r = Rect(0, 0, 10, 10);
    c->DrawLayer(&bitmap.device, &r, nullptr);  // no layer
    c->DrawLayer(nullptr, &r, nullptr);
    c->DrawLayerWOclip(&source, nullptr, nullptr);
    EXPECT_EQ(c.Count(0), 0);
    source.Dispose();
}

// Whatever comes in ------------------------------------------------------------------------------------------------

namespace {
void DrawEverything(ZR_Device* d, float v, ZR_Matrix* m) {
    const float some[] = {v, 3, -v};
    TestGradient g(ZR_GRADIENT_PERCENT), radial(ZR_GRADIENT_USER, false);
    g.From(v, v, 100, v).Stop(v, gRed).Stop(1, Color(0, 0, 255, v));
    radial.From(v, 5, v, 6, v).Stop(0, gRed).Stop(1, gBlue);
    g.gradient.matrix.tx = v;
    TestDash dash(v, v, 2);
    TestPath path("M0 0L10 0C1 2 3 4 5 6Z");
    ZR_GetPathRecord(path, 2)->x = v;
    for (float a : some)
        for (float b : some) {
            const ZR_Rect r = Rect(a, b, 20, v);
            for (ZR_Gradient* gradient : {static_cast<ZR_Gradient*>(nullptr), &g.gradient, &radial.gradient}) {
                const Shape s = {
                    .stroke = true, .width = a, .antialias = true, .matrix = m, .gradient = gradient, .dash = dash};
                s.Rect(d, r);
                s.Rect(d, r, b, true);
                s.Oval(d, r);
                s.Arc(d, r, a, b, true);
                s.Arc(d, r, a, b, false);
                s.Path(d, path, r, Rect(0, 0, 10, 10));
                s.Path(d, path, Rect(0, 0, 10, 10), r, nullptr, ZR_FILL_EVENODD);
                s.Line(d, a, b, 10, 10, 7, 9);
            }
            ZR_Rect segments[] = {r, r};
            d->DrawLines(segments, 2, &gRed, a, true, dash);
            ZR_Rect copy = r;
            d->ClipRect(&copy);
            d->ClearRect(&copy);
        }
    // Smoothed once: a path of this size becomes a million lines.
    Shape{.matrix = m}.Path(d, path, Rect(0, 0, 10, 10), Rect(v, v, 20, 20), nullptr, ZR_FILL_EVENODD, true);
    ZR_Rect small = Rect(10, 10, 20, 20);
    d->FillRectWithShadow(&small, v, &gRed, 2, v, 3, true);
}
}  // namespace

TEST_F(Shapes, Everything_NoNumbersAndHugeOnes_DoesNotCrash) {
    const float inf = std::numeric_limits<float>::infinity(), top = std::numeric_limits<float>::max();
    for (float v : {std::nanf(""), inf, -inf, top, -top, 1e20f, 1e-40f, 0.0f}) {
        ZR_Matrix singular = {0, 0, 0, 0, 1, 1}, odd = {v, 1, v, 2, 3, v};
        for (ZR_Matrix* m : {static_cast<ZR_Matrix*>(nullptr), &singular, &odd}) {
            BitmapCanvas bits;
            DrawEverything(&bits.device, v, m);
            SvgCanvas svg;
            DrawEverything(&svg.device, v, m);
            const std::string text = svg.Text();
            EXPECT_EQ(text.find("nan"), std::string::npos);
            EXPECT_EQ(text.find("inf"), std::string::npos);
            EXPECT_TRUE(text.ends_with("</svg>\n"));
        }
    }
}

// A width that is none strokes nothing: the context must not keep the one before.
TEST_F(Shapes, WidthThatIsNone_StrokesNothing) {
    for (float width : {std::nanf(""), std::numeric_limits<float>::infinity(), -1.0f, 0.0f}) {
        BitmapCanvas c;
        c->DrawLine(-50, -50, -40, -50, &gRed, 20, true, 0, 0, nullptr, nullptr, nullptr);
        ZR_Rect r = Rect(5, 5, 25, 25), segment = Rect(2, 2, 30, 30);
        c->DrawOval(&r, false, true, nullptr, &gRed, width, true, nullptr, nullptr, nullptr, nullptr);
        c->DrawArc(&r, 0, 90, true, false, true, nullptr, &gRed, width, true, nullptr, nullptr, nullptr, nullptr);
        c->DrawRect(&r, false, true, nullptr, &gRed, width, true, 8, true, nullptr, nullptr, nullptr, nullptr);
        c->DrawLine(0, 10, 30, 10, &gRed, width, true, 0, 0, nullptr, nullptr, nullptr);
        c->DrawLines(&segment, 1, &gRed, width, true, nullptr);
        for (int y = 0; y < 36; y += 3)
            for (int x = 0; x < 36; x += 3) EXPECT_NE(c.At(x, y), kRedDot) << width << " at " << x << ", " << y;
    }
}

// Required: without a box of its own a flat path cannot be scaled into its target, and stands where its numbers say.
TEST_F(Shapes, FlatPathUnderAMatrix_StandsElsewhere) {
    ZR_Handle path, out;
    ZR_CreatePathHandle(&path);
    ZR_CreatePathHandle(&out);
    ZR_AddPathMove(&path, 10, 30);
    ZR_AddPathLine(&path, 30, 30);
    ZR_Rect box;
    ZR_GetPathBoundingBox(&path, &box);
    ZR_Rect target = box;
    ZR_Matrix moved = {1, 0, 0, 1, 1, 0};
    BitmapCanvas c;
    c->DrawPath(false, &path, &target, &box, false, true, nullptr, &gRed, 4, true, &moved, nullptr, nullptr, nullptr,
                &out, ZR_FILL_NONZERO);
    EXPECT_NE(c.At(20, 30), kRedDot);
    c->DrawPath(false, &path, &target, &box, false, true, nullptr, &gRed, 4, true, nullptr, nullptr, nullptr, nullptr,
                nullptr, ZR_FILL_NONZERO);
    EXPECT_EQ(c.At(20, 30), kRedDot);
    out.Dispose();
    path.Dispose();
}

TEST_F(Shapes, FillRectWithShadow_AnyBlur_Ends) {
    ZR_Rect r = Rect(10, 10, 20, 20);
    for (long blur : {LONG_MIN, -1L, LONG_MAX}) {
        BitmapCanvas c;
        c->FillRectWithShadow(&r, 0, &gRed, 1, 1, blur, true);
        EXPECT_EQ(c.At(15, 15), kRedDot) << blur;
    }
}

TEST_F(Shapes, Everything_WithoutColoursOrContext_DrawsNothing) {
    ZR_Device none;
    none.Create();
    DrawEverything(&none, 5, &gTwice);
    none.Dispose();
    BitmapCanvas c;
    const Shape s = {.stroke = true, .fillColor = nullptr, .strokeColor = nullptr};
    TestPath path("M0 0L10 0L10 10Z");
    s.Rect(&c.device, Rect(0, 0, 10, 10));
    s.Rect(&c.device, Rect(0, 0, 10, 10), 3, true);
    s.Oval(&c.device, Rect(0, 0, 10, 10));
    s.Arc(&c.device, Rect(0, 0, 10, 10), 0, 90, true);
    s.Path(&c.device, path, Rect(0, 0, 10, 10), Rect(0, 0, 10, 10));
    s.Line(&c.device, 0, 0, 10, 10);
    EXPECT_EQ(c.Count(0), 0);
}
