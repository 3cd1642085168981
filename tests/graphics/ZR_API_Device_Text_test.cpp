#include <cmath>
#include <limits>

#include "tests/graphics/TextSupport.h"

namespace {

class DeviceText : public DrawingTest {};

const float kNaN = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

ZR_RGBColor kBlack = {0, 0, 0, 1};

void DrawText(ZR_Device* device, const char* text, float x, float y, ZR_Font* font, float rotation = 0,
              ZR_Matrix* matrix = nullptr, ZR_RGBColor color = {0, 0, 0, 1}, ZR_Handle* properties = nullptr,
              bool antialias = true) {
    TestText units(text);
    device->DrawText(units, x, y, font, &color, rotation, antialias, matrix, properties);
}

// The arguments of DrawTextLayout, so that a test names only those that it is about.
struct Layout {
    const char* text = "Text";
    ZR_Rect rect = Rect(10, 10, 190, 90);
    ZR_Alignment alignment = ZR_ALIGNMENT_LEFT;
    ZR_Alignment_Vertical vertical = ZR_VERTICAL_TOP;
    ZR_RGBColor color = {0, 0, 0, 1};
    bool antialias = true;
    ZR_Matrix* matrix = nullptr;
    ZR_Handle* properties = nullptr;
    bool wordWrap = true;
    ZR_Textmeasuring measuring = ZR_TEXT_DRAW;
    bool clip = false;
    float lineSpacing = 0, kerning = 0;
    bool keepTop = true;

    void Draw(ZR_Device* device, ZR_Font* font) {
        TestText units(text);
        device->DrawTextLayout(units, &rect, alignment, vertical, font, &color, antialias, matrix, properties, wordWrap,
                               measuring, clip, lineSpacing, kerning, keepTop);
    }
};

}  // namespace

// DrawText: SVG ------------------------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawText_Svg_AttributesInOrder) {
    static const struct {
        float size, x, y;
        short style;
        float alpha;
        const char* element;
    } rows[] = {
        {12, 10, 20, 0, 1, "<text x='10' y='20' font-family='Arial' font-size='12' fill='#FF0000'>Hi</text>"},
        // A size of 12.9 is written as 12, an x of 10.7 as 10.
        {12.9f, 10.7f, -20.7f, 0, 1,
         "<text x='10' y='-20' font-family='Arial' font-size='12' fill='#FF0000'>Hi</text>"},
        {9, 1, 2, kZRBold | kZRItalic | kZRUnderline, 0.5f,
         "<text x='1' y='2' font-family='Arial' font-size='9' font-weight='bold' font-style='italic' "
         "text-decoration='underline' fill='#FF0000' fill-opacity='0.5'>Hi</text>"},
        // Strikethrough is not written.
        {9, 1, 2, kZRStrikethrough, 1, "<text x='1' y='2' font-family='Arial' font-size='9' fill='#FF0000'>Hi</text>"},
        {9, 1, 2, kZRItalic, 1,
         "<text x='1' y='2' font-family='Arial' font-size='9' font-style='italic' fill='#FF0000'>Hi</text>"},
    };
    for (auto& row : rows) {
        SvgCanvas canvas;
        TestFont font(row.size, row.style);
        DrawText(&canvas.device, "Hi", row.x, row.y, font, /*rotation*/ 45, nullptr, Color(255, 0, 0, row.alpha));
        EXPECT_EQ(canvas.Drawn(), row.element);
    }
}

TEST_F(DeviceText, DrawText_Svg_PropertiesMatrixAndClip) {
    SvgCanvas canvas;
    TestFont font;
    TestProperties mine({{"id", "a"}, {"class", "mine"}, {"empty", ""}});
    TestProperties::Add(&canvas.device.customProperties, "class", "device");
    ZR_Matrix matrix = {1, 0, 0, 1, 5, 6};
    ZR_Rect clip = Rect(0, 0, 50, 50);
    canvas->ClipRect(&clip);
    DrawText(&canvas.device, "a<b", 1, 2, font, 0, &matrix, kBlack, mine);
    EXPECT_NE(
        canvas.Body().find("<text id='a' class='device' x='1' y='2' font-family='Arial' font-size='12' "
                           "fill='#000000' transform='matrix(1 0 0 1 5 6)' clip-path='url(#clip1)'>a&lt;b</text>"),
        std::string::npos)
        << canvas.Body();
}

TEST_F(DeviceText, DrawText_Svg_NumbersThatAreNone_AreBounded) {
    for (float bad : {kNaN, kInfinity, -kInfinity, 1e30f, -1e30f}) {
        SvgCanvas canvas;
        TestFont font(bad);
        DrawText(&canvas.device, "Hi", bad, bad, font);
        EXPECT_TRUE(canvas.Drawn().starts_with("<text x='")) << canvas.Drawn();
    }
}

TEST_F(DeviceText, DrawText_NullArguments_DoNothing) {
    SvgCanvas svg;
    BitmapCanvas bitmap;
    TestFont font;
    TestText text("Hi");
    for (ZR_Device* device : {&svg.device, &bitmap.device}) {
        device->DrawText(nullptr, 1, 2, font, &kBlack, 0, true, nullptr, nullptr);
        device->DrawText(text, 1, 2, nullptr, &kBlack, 0, true, nullptr, nullptr);
    }
    EXPECT_EQ(svg.Drawn(), "");
    EXPECT_EQ(bitmap.Count(0), 0);
    ZR_Device empty;
    empty.Create();
    empty.DrawText(text, 1, 2, font, &kBlack, 45, true, nullptr, nullptr);
    empty.Dispose();
    bitmap->DrawText(text, 1, 20, font, nullptr, 0, true, nullptr, nullptr);
    EXPECT_GT(bitmap.Count(), 10) << "no colour is black";
}

// DrawText: pixels ---------------------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawText_Raster_StandsOnTheBaseline) {
    BitmapCanvas canvas(100, 60);
    TestFont font(40);
    DrawText(&canvas.device, "L", 20, 50, font, 0, nullptr, Color(0, 0, 255));
    Ink ink = InkOf(canvas);
    EXPECT_NEAR(ink.bottom, 49, 1);
    EXPECT_NEAR(ink.top, 50 - 1409.0 / 2048 * 40, 1.5);
    EXPECT_NEAR(ink.left, 20 + 168.0 / 2048 * 40, 1.5);
    EXPECT_NEAR_DOT(canvas.At(ink.left + 2, 40), kBlueDot, 3);
}

TEST_F(DeviceText, DrawText_Raster_EmptyText_DrawsNothing) {
    BitmapCanvas canvas;
    TestFont font;
    DrawText(&canvas.device, "", 10, 20, font);
    EXPECT_EQ(canvas.Count(0), 0);
    SvgCanvas svg;
    DrawText(&svg.device, "", 10, 20, font);
    EXPECT_EQ(svg.Drawn().substr(0, 13), "<text x='10' ") << "SVG writes it";
}

TEST_F(DeviceText, DrawText_Raster_UnderlineButNoStrikethrough) {
    TestFont plain(30), underlined(30, kZRUnderline), struck(30, kZRStrikethrough);
    BitmapCanvas a(120, 60), b(120, 60), c(120, 60);
    DrawText(&a.device, "nnnn", 10, 40, plain);
    DrawText(&b.device, "nnnn", 10, 40, underlined);
    DrawText(&c.device, "nnnn", 10, 40, struck);
    EXPECT_GT(InkOf(b).bottom, InkOf(a).bottom);
    EXPECT_EQ(a.Pixels(), c.Pixels());
}

TEST_F(DeviceText, DrawText_Raster_Rotation_IsCounterclockwiseAboutThePoint) {
    TestFont font(24);
    for (bool identity : {false, true}) {
        BitmapCanvas canvas(80, 120);
        ZR_Matrix matrix;
        matrix.SetIdentity();
        DrawText(&canvas.device, "MMM", 40, 100, font, 90, identity ? &matrix : nullptr);
        Ink ink = InkOf(canvas);
        EXPECT_NEAR(ink.right, 40, 1.5) << "the baseline runs up at x 40";
        EXPECT_LE(ink.bottom, 100);
        EXPECT_NEAR(ink.bottom - ink.top, font.Width("MMM"), 6);
    }
}

TEST_F(DeviceText, DrawText_Raster_MatrixTurnsTheRotationOff) {
    // Required: with a matrix, a rotation only moves the text to the origin.
    TestFont font(24);
    BitmapCanvas canvas(120, 80), there(120, 80);
    ZR_Matrix matrix = {1, 0, 0, 1, 10, -30};
    DrawText(&canvas.device, "LL", 50, 50, font, 30, &matrix);
    DrawText(&there.device, "LL", 10, 80 - 30, font);
    Ink ink = InkOf(canvas), expected = InkOf(there);
    EXPECT_EQ(ink.left, expected.left);
    EXPECT_EQ(ink.bottom, expected.bottom);
    EXPECT_NEAR(ink.count, expected.count, 5);
}

TEST_F(DeviceText, DrawText_Raster_Matrix_MovesAndScales) {
    TestFont font(20), large(40);
    BitmapCanvas canvas(160, 100);
    ZR_Matrix matrix = {2, 0, 0, 2, 10, 0};
    DrawText(&canvas.device, "L", 10, 40, font, 0, &matrix);
    Ink ink = InkOf(canvas);
    EXPECT_NEAR(ink.bottom, 79, 1);
    EXPECT_NEAR(ink.left, 30 + 168.0 / 2048 * 40, 1.5);
    EXPECT_NEAR(ink.bottom - ink.top + 1, 1409.0 / 2048 * 40, 2);
}

TEST_F(DeviceText, DrawText_Raster_StateIsRestored) {
    BitmapCanvas canvas(100, 60);
    TestFont font, none(-1);
    ZR_Matrix matrix = {2, 0, 0, 2, 10, 10};
    CGAffineTransform before = CGContextGetCTM(canvas->context);
    for (ZR_Font* with : {&font.font, &none.font})
        for (float rotation : {0.0f, 30.0f})
            for (ZR_Matrix* m : {static_cast<ZR_Matrix*>(nullptr), &matrix}) {
                DrawText(&canvas.device, "x", 10, 10, with, rotation, m);
                CGAffineTransform after = CGContextGetCTM(canvas->context);
                EXPECT_EQ(memcmp(&before, &after, sizeof before), 0);
            }
}

TEST_F(DeviceText, DrawText_Raster_AntialiasOff_HasWholePixelsOnly) {
    BitmapCanvas canvas(120, 40);
    TestFont font(30);
    DrawText(&canvas.device, "Sample", 5, 30, font, 0, nullptr, kBlack, nullptr, /*antialias*/ false);
    EXPECT_EQ(canvas.Count(0), canvas.Count(254));
    EXPECT_GT(canvas.Count(), 100);
}

TEST_F(DeviceText, DrawText_Raster_NumbersThatAreNone_DrawNothing) {
    TestFont font;
    for (float bad : {kNaN, kInfinity, -kInfinity, 1e30f}) {
        BitmapCanvas canvas;
        ZR_Matrix matrix = {bad, 0, 0, 1, 0, 0}, moved = {1, 0, 0, 1, bad, 0}, flat = {0, 0, 0, 0, 1, 1};
        DrawText(&canvas.device, "Hi", bad, 10, font);
        DrawText(&canvas.device, "Hi", 10, bad, font);
        DrawText(&canvas.device, "Hi", 10, 10, font, 0, &matrix);
        DrawText(&canvas.device, "Hi", 10, 10, font, 0, &moved);
        DrawText(&canvas.device, "Hi", 10, 10, font, 0, &flat);
        TestFont odd(bad == 1e30f ? -1 : bad);
        DrawText(&canvas.device, "Hi", 10, 20, odd);
        if (!std::isfinite(bad)) DrawText(&canvas.device, "Hi", 10, 20, font, bad);
        EXPECT_EQ(canvas.Count(0), 0) << bad;
        DrawText(&canvas.device, "Hi", 10, 20, font);
        EXPECT_GT(canvas.Count(), 10) << "what comes later is drawn";
    }
    BitmapCanvas canvas;
    TestFont huge(1e9f);
    DrawText(&canvas.device, "Hi", 10, 20, huge);
    TestFont usual;
    DrawText(&canvas.device, "Hi", 10, 20, usual);
    EXPECT_GT(canvas.Count(), 10) << "what comes behind a giant is drawn";
}

// DrawTextAlignment --------------------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawTextAlignment_PlacesTheText) {
    TestFont font(12, 0, "Courier New");
    float width = font.Width("abcd");
    static const struct {
        ZR_Alignment alignment;
        float share;  // of the free width; negative = nothing is drawn
    } rows[] = {{static_cast<ZR_Alignment>(0), -1},
                {ZR_ALIGNMENT_DEFAULT, 0},
                {ZR_ALIGNMENT_LEFT, 0},
                {ZR_ALIGNMENT_CENTER, 0.5f},
                {ZR_ALIGNMENT_RIGHT, 1},
                {ZR_ALIGNMENT_JUSTIFIED, 0},
                {static_cast<ZR_Alignment>(6), -1},
                {static_cast<ZR_Alignment>(-1), -1}};
    for (auto& row : rows) {
        SvgCanvas svg;
        BitmapCanvas bitmap(200, 40);
        TestText text("abcd");
        for (ZR_Device* device : {&svg.device, &bitmap.device})
            device->DrawTextAlignment(text, 20, 180, 30, font, &kBlack, row.alignment, 0, true, nullptr, nullptr);
        if (row.share < 0) {
            EXPECT_EQ(svg.Drawn(), "");
            EXPECT_EQ(bitmap.Count(0), 0);
            continue;
        }
        float x = 20 + row.share * (160 - width);
        std::string expected = "<text x='" + std::to_string(static_cast<long>(x)) + "' y='30'";
        EXPECT_TRUE(svg.Drawn().starts_with(expected)) << svg.Drawn();
        EXPECT_NEAR(InkOf(bitmap).left, x, 1.6) << row.alignment;
    }
}

// DrawTextLayout: nothing to do ------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawTextLayout_EmptyRectangle_DrawsNothing) {
    TestFont font;
    for (ZR_Rect rect : {Rect(10, 10, 10, 50), Rect(10, 10, 50, 10), Rect(50, 10, 10, 50), Rect(10, 50, 50, 10),
                         Rect(0, 0, 0, 0), Rect(kNaN, 0, 50, 50), Rect(0, 0, 50, kNaN)}) {
        SvgCanvas svg;
        BitmapCanvas bitmap;
        Layout layout;
        layout.rect = rect;
        layout.Draw(&svg.device, font);
        layout.Draw(&bitmap.device, font);
        EXPECT_EQ(svg.Drawn(), "");
        EXPECT_EQ(bitmap.Count(0), 0);
    }
}

TEST_F(DeviceText, DrawTextLayout_NoFontNoText_DoesNothing) {
    SvgCanvas svg;
    BitmapCanvas bitmap(200, 100);
    TestFont font, none(-1);
    for (ZR_Device* device : {&svg.device, &bitmap.device}) {
        Layout layout;
        layout.Draw(device, nullptr);
        layout.Draw(device, none);
        layout.text = "";
        layout.Draw(device, font);
        layout.measuring = ZR_TEXT_MEASURE;
        layout.Draw(device, font);
        EXPECT_EQ(layout.rect.right, 190);
    }
    EXPECT_EQ(svg.Drawn(), "");
    EXPECT_EQ(bitmap.Count(0), 0);
}

// DrawTextLayout: measuring ------------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawTextLayout_Measuring_Raster) {
    TestFont font;
    float line = 12 * (kArialAscent + kArialDescent + kArialGap);
    static const struct {
        const char* text;
        ZR_Rect rect;
        ZR_Textmeasuring measuring;
        const char* widest;
        int lines;
    } rows[] = {
        {"one", Rect(10, 20, 110, 30), ZR_TEXT_MEASURE, "one", 1},
        {"one\rthree", Rect(10, 20, 110, 30), ZR_TEXT_MEASURE, "three", 2},
        {"one two three", Rect(10, 20, 45, 30), ZR_TEXT_MEASURE, "three", 3},
        {"one two three", Rect(10, 20, 45, 30), ZR_TEXT_MEASURE_UNLIMITED, "one two three", 1},
        // An empty rectangle still measures.
        {"one", Rect(10, 20, 110, 20), ZR_TEXT_MEASURE, "one", 1},
        {"one", Rect(10, 20, 10, 20), ZR_TEXT_MEASURE_UNLIMITED, "one", 1},
    };
    for (auto& row : rows) {
        BitmapCanvas canvas;
        Layout layout;
        layout.text = row.text;
        layout.rect = row.rect;
        layout.measuring = row.measuring;
        layout.Draw(&canvas.device, font);
        EXPECT_EQ(layout.rect.left, row.rect.left);
        EXPECT_EQ(layout.rect.top, row.rect.top);
        EXPECT_NEAR(layout.rect.right, row.rect.left + font.Width(row.widest), 0.5) << row.text;
        EXPECT_NEAR(layout.rect.bottom, row.rect.top + static_cast<float>(row.lines) * line, 0.01) << row.text;
        EXPECT_EQ(canvas.Count(0), 0);
    }
}

TEST_F(DeviceText, DrawTextLayout_MeasuringAtNoWidth_GivesTheLeftTopCorner) {
    BitmapCanvas canvas;
    TestFont font;
    Layout layout;
    layout.rect = Rect(10, 20, 10, 90);
    layout.measuring = ZR_TEXT_MEASURE;
    layout.Draw(&canvas.device, font);
    EXPECT_EQ(layout.rect.right, 10);
    EXPECT_EQ(layout.rect.bottom, 20);
}

TEST_F(DeviceText, DrawTextLayout_Measuring_LeavesTheStateOfTheContext) {
    BitmapCanvas canvas;
    TestFont font, none(-1);
    ZR_Matrix matrix = {2, 0, 0, 2, 10, 10};
    CGAffineTransform before = CGContextGetCTM(canvas->context);
    for (ZR_Textmeasuring measuring : {ZR_TEXT_DRAW, ZR_TEXT_MEASURE, ZR_TEXT_MEASURE_UNLIMITED})
        for (ZR_Matrix* m : {static_cast<ZR_Matrix*>(nullptr), &matrix})
            for (ZR_Font* with : {&font.font, &none.font}) {
                Layout layout;
                layout.measuring = measuring;
                layout.matrix = m;
                layout.clip = true;
                layout.Draw(&canvas.device, with);
                CGAffineTransform after = CGContextGetCTM(canvas->context);
                EXPECT_EQ(memcmp(&before, &after, sizeof before), 0);
            }
    CGRect clip = CGContextGetClipBoundingBox(canvas->context);
    EXPECT_EQ(clip.size.width, 40);
}

TEST_F(DeviceText, DrawTextLayout_Measuring_Svg) {
    TestFont font;
    float height = font->GetHeight(), gap = font->GetLineSpacing();
    static const struct {
        const char* text;
        float right;
        ZR_Textmeasuring measuring;
        float lineSpacing;
        int lines;
    } rows[] = {
        {"one", 110, ZR_TEXT_MEASURE, 0, 1},          {"one\rtwo", 110, ZR_TEXT_MEASURE, 5, 2},
        {"one two three", 45, ZR_TEXT_MEASURE, 0, 3}, {"one two three", 45, ZR_TEXT_MEASURE_UNLIMITED, 0, 1},
        {"one", 10.5f, ZR_TEXT_MEASURE, 3, 0},
    };
    for (auto& row : rows) {
        SvgCanvas canvas;
        Layout layout;
        layout.text = row.text;
        layout.rect = Rect(10, 20, row.right, 20);
        layout.measuring = row.measuring;
        layout.lineSpacing = row.lineSpacing;
        layout.Draw(&canvas.device, font);
        auto n = static_cast<float>(row.lines);
        EXPECT_EQ(layout.rect.right, row.right) << "right stays";
        EXPECT_NEAR(layout.rect.bottom, 20 + gap + height * n + n * row.lineSpacing, 1e-4) << row.text;
        EXPECT_EQ(canvas.Drawn(), "");
    }
}

// DrawTextLayout: SVG ------------------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawTextLayout_Svg_AttributesInOrder) {
    static const struct {
        ZR_Alignment alignment;
        short style;
        bool antialias;
        float alpha;
        const char *head, *tail;
    } rows[] = {
        {ZR_ALIGNMENT_DEFAULT, 0, true, 1, "<text x='10' y='",
         "font-family='Arial' font-size='12' fill='#000000'>Text</text>"},
        {ZR_ALIGNMENT_JUSTIFIED, kZRBold, false, 1, "<text x='10' y='",
         "font-family='Arial' font-size='12' font-weight='bold' text-rendering='optimizeSpeed' "
         "fill='#000000'>Text</text>"},
        {ZR_ALIGNMENT_RIGHT, kZRItalic | kZRUnderline, true, 0.5f, "<text text-anchor='end' x='190' y='",
         "font-family='Arial' font-size='12' font-style='italic' text-decoration='underline' fill='#000000' "
         "fill-opacity='0.5'>Text</text>"},
        {ZR_ALIGNMENT_CENTER, kZRStrikethrough, true, 1, "<text text-anchor='middle' x='100' y='",
         "font-family='Arial' font-size='12' text-decoration='line-through' fill='#000000'>Text</text>"},
        {ZR_ALIGNMENT_LEFT, kZRStrikethrough | kZRUnderline, true, 1, "<text x='10' y='",
         "font-family='Arial' font-size='12' text-decoration='line-through underline' fill='#000000'>Text</text>"},
        {static_cast<ZR_Alignment>(9), 0, true, 1, "<text x='10' y='",
         "font-family='Arial' font-size='12' fill='#000000'>Text</text>"},
    };
    for (auto& row : rows) {
        SvgCanvas canvas;
        TestFont font(12.9f, row.style);
        Layout layout;
        layout.alignment = row.alignment;
        layout.antialias = row.antialias;
        layout.color.alpha = row.alpha;
        layout.Draw(&canvas.device, font);
        std::string drawn = canvas.Drawn();
        EXPECT_TRUE(drawn.starts_with(row.head)) << drawn;
        EXPECT_TRUE(drawn.ends_with(row.tail)) << drawn;
    }
}

TEST_F(DeviceText, DrawTextLayout_Svg_LinesStandAtAscentAndHeight) {
    TestFont font(20);
    float ascent = font->GetAscent(), height = font->GetHeight();
    static const struct {
        ZR_Alignment_Vertical vertical;
        float share;  // of the free height above the first line
    } rows[] = {{ZR_VERTICAL_TOP, 0},
                {ZR_VERTICAL_CENTER, 0.5f},
                {ZR_VERTICAL_BOTTOM, 1},
                {static_cast<ZR_Alignment_Vertical>(7), 0}};
    for (auto& row : rows) {
        SvgCanvas canvas;
        Layout layout;
        layout.text = "one\rtwo";
        layout.vertical = row.vertical;
        layout.lineSpacing = 3;
        layout.Draw(&canvas.device, font);
        std::string drawn = canvas.Drawn();
        double first = 0, second = 0;
        size_t at = drawn.find(" y='"), next = drawn.find(" y='", at + 1);
        ASSERT_NE(next, std::string::npos) << drawn;
        first = std::stod(drawn.substr(at + 4));
        second = std::stod(drawn.substr(next + 4));
        EXPECT_NEAR(first, 10 + row.share * (80 - 2 * height) + ascent, 1e-3);
        EXPECT_NEAR(second - first, height + 3, 1e-3);
    }
}

TEST_F(DeviceText, DrawTextLayout_Svg_WrapKerningAndKeepTopHaveNoEffect) {
    TestFont font;
    std::string first;
    for (int i = 0; i < 8; ++i) {
        SvgCanvas canvas;
        Layout layout;
        layout.text = "one two three four five six seven";
        layout.rect.right = 80;
        layout.wordWrap = i & 1;
        layout.keepTop = i & 2;
        layout.kerning = i & 4 ? 10 : 0;
        layout.Draw(&canvas.device, font);
        if (i == 0) first = canvas.Drawn();
        EXPECT_EQ(canvas.Drawn(), first);
    }
    EXPECT_GT(std::count(first.begin(), first.end(), '\n') + static_cast<long>(first.find("</text><text")), 0);
}

TEST_F(DeviceText, DrawTextLayout_Svg_PropertiesAndMatrix) {
    SvgCanvas canvas;
    TestFont font;
    TestProperties mine({{"id", "a"}});
    TestProperties::Add(&canvas.device.customProperties, "class", "device");
    ZR_Matrix matrix = {2, 0, 0, 2, 0, 0};
    Layout layout;
    layout.properties = mine;
    layout.matrix = &matrix;
    layout.Draw(&canvas.device, font);
    EXPECT_TRUE(canvas.Drawn().starts_with("<text id='a' class='device' x='10' y='")) << canvas.Drawn();
    EXPECT_TRUE(canvas.Drawn().ends_with("fill='#000000' transform='matrix(2 0 0 2 0 0)'>Text</text>"));
}

TEST_F(DeviceText, DrawTextLayout_Svg_Clip_IsCutWithTheOneInForceAndPutBack) {
    SvgCanvas canvas;
    TestFont font;
    Layout layout;
    layout.clip = true;
    layout.rect = Rect(10.5f, 10, 190, 90);
    layout.Draw(&canvas.device, font);
    EXPECT_EQ(canvas->svg->currentClip, 0);
    EXPECT_NE(canvas.Body().find("<clipPath id='clip1'><rect x='10' y='10' width='180' height='80'/></clipPath>"),
              std::string::npos)
        << canvas.Body();
    EXPECT_NE(canvas.Body().find("clip-path='url(#clip1)'>Text"), std::string::npos);
    ZR_Rect outer = Rect(0, 0, 50, 50);
    canvas->ClipRect(&outer);
    layout.Draw(&canvas.device, font);
    EXPECT_EQ(canvas->svg->currentClip, 2);
    EXPECT_NE(canvas.Body().find("<clipPath id='clip3'><rect x='10' y='10' width='40' height='40'/></clipPath>"),
              std::string::npos)
        << canvas.Body();
    EXPECT_NE(canvas.Body().find("clip-path='url(#clip3)'>Text"), std::string::npos);
    layout.clip = false;
    layout.text = "Last";
    layout.Draw(&canvas.device, font);
    EXPECT_NE(canvas.Body().find("clip-path='url(#clip2)'>Last"), std::string::npos);
}

// DrawTextLayout: pixels ---------------------------------------------------------------------------------------------

TEST_F(DeviceText, DrawTextLayout_Raster_AlignmentsFillTheirSide) {
    TestFont font(20);
    static const struct {
        ZR_Alignment alignment;
        double share;
    } rows[] = {{ZR_ALIGNMENT_DEFAULT, 0},
                {ZR_ALIGNMENT_LEFT, 0},
                {ZR_ALIGNMENT_CENTER, 0.5},
                {ZR_ALIGNMENT_RIGHT, 1},
                {ZR_ALIGNMENT_JUSTIFIED, 0}};
    for (auto& row : rows) {
        BitmapCanvas canvas(200, 100);
        Layout layout;
        layout.text = "LLLL";
        layout.alignment = row.alignment;
        layout.Draw(&canvas.device, font);
        Ink ink = InkOf(canvas);
        double x = 10 + row.share * (180 - static_cast<double>(font.Width("LLLL")));
        EXPECT_NEAR(ink.left, x + 168.0 / 2048 * 20, 1.5) << row.alignment;
    }
}

TEST_F(DeviceText, DrawTextLayout_Raster_JustifiedReachesBothSides) {
    TestFont font(14);
    BitmapCanvas canvas(200, 100);
    Layout layout;
    layout.text = "many words that fill some lines and reach both of the sides of their rectangle";
    layout.alignment = ZR_ALIGNMENT_JUSTIFIED;
    layout.Draw(&canvas.device, font);
    Ink ink = InkOf(canvas, 60);
    EXPECT_NEAR(ink.left, 11, 1.5);
    EXPECT_NEAR(ink.right, 189, 1.5);
}

TEST_F(DeviceText, DrawTextLayout_Raster_Verticals) {
    TestFont font(20);
    double capital = 1409.0 / 2048 * 20, ascent = 1854.0 / 2048 * 20, step = 2355.0 / 2048 * 20;
    static const struct {
        ZR_Alignment_Vertical vertical;
        double baseline;  // y down, of the last of two lines
    } rows[] = {{ZR_VERTICAL_TOP, 10 + ascent + step},
                {ZR_VERTICAL_CENTER, 50 - step + ascent + step},
                {ZR_VERTICAL_BOTTOM, 90 - 2 - 2 * step + ascent + step}};
    for (auto& row : rows) {
        BitmapCanvas canvas(200, 100);
        Layout layout;
        layout.text = "L\rL";
        layout.vertical = row.vertical;
        layout.Draw(&canvas.device, font);
        Ink ink = InkOf(canvas);
        EXPECT_NEAR(ink.bottom + 1, row.baseline, 1.1) << row.vertical;
        EXPECT_NEAR(ink.top, row.baseline - step - capital, 1.1) << row.vertical;
    }
    BitmapCanvas canvas(200, 100);
    Layout layout;
    layout.vertical = static_cast<ZR_Alignment_Vertical>(4);
    layout.Draw(&canvas.device, font);
    EXPECT_EQ(canvas.Count(0), 0) << "any other value has no rectangle";
}

TEST_F(DeviceText, DrawTextLayout_Raster_Top_HasRoomForOneMoreLineUnlessKept) {
    TestFont font(20);
    for (bool keep : {false, true}) {
        BitmapCanvas canvas(200, 100);
        Layout layout;
        layout.text = "L\rL";
        layout.rect = Rect(10, 10, 190, 10 + 46.0f - 5);  // 5 points short of two lines
        layout.keepTop = keep;
        layout.Draw(&canvas.device, font);
        Ink ink = InkOf(canvas);
        EXPECT_EQ(ink.bottom - ink.top > 25, !keep);
    }
}

TEST_F(DeviceText, DrawTextLayout_Raster_WordWrapOrOneLineWithoutItsMiddle) {
    TestFont font(20);
    float step = 20 * (kArialAscent + kArialDescent + kArialGap);
    for (bool wrap : {true, false}) {
        BitmapCanvas canvas(200, 100);
        Layout layout;
        layout.text = "Llong words that do not fit into one line";
        layout.wordWrap = wrap;
        layout.Draw(&canvas.device, font);
        Ink ink = InkOf(canvas);
        EXPECT_EQ(static_cast<float>(ink.bottom - ink.top) > step, wrap);
        EXPECT_LE(ink.right, 190);
        EXPECT_GT(ink.right, wrap ? 140 : 170);
    }
}

TEST_F(DeviceText, DrawTextLayout_Raster_Clip_CutsAtTheRectangle) {
    TestFont font(40);
    for (bool clip : {false, true}) {
        BitmapCanvas canvas(200, 100);
        Layout layout;
        layout.text = "Lg";
        layout.rect = Rect(20, 20, 190, 50);
        layout.keepTop = false;
        layout.clip = clip;
        layout.Draw(&canvas.device, font);
        EXPECT_EQ(InkOf(canvas).bottom > 50, !clip);
    }
}

TEST_F(DeviceText, DrawTextLayout_Raster_KerningAndLineSpacing) {
    TestFont font(20);
    BitmapCanvas plain(200, 100), wide(200, 100), spaced(200, 100);
    Layout layout;
    layout.text = "LL\rLL";
    layout.Draw(&plain.device, font);
    layout.kerning = 10;
    layout.Draw(&wide.device, font);
    layout.kerning = 0;
    layout.lineSpacing = 15;
    layout.Draw(&spaced.device, font);
    EXPECT_NEAR(InkOf(wide).right - InkOf(plain).right, 10, 1);
    EXPECT_NEAR(InkOf(spaced).bottom - InkOf(plain).bottom, 15, 1);
}

TEST_F(DeviceText, DrawTextLayout_Raster_StrikethroughRunsThroughTheMiddle) {
    for (ZR_Alignment alignment : {ZR_ALIGNMENT_LEFT, ZR_ALIGNMENT_CENTER, ZR_ALIGNMENT_RIGHT}) {
        TestFont plain(20), struck(20, kZRStrikethrough);
        BitmapCanvas a(200, 100), b(200, 100);
        Layout layout;
        layout.text = "      i";
        layout.alignment = alignment;
        layout.Draw(&a.device, plain);
        layout.Draw(&b.device, struck);
        Ink without = InkOf(a), with = InkOf(b);
        EXPECT_NEAR(with.right - with.left, plain.Width("      i"), 1.6) << alignment;
        EXPECT_GE(with.left, 9);
        EXPECT_LE(with.right, 190);
        // Half of ascent and descent above the descent, as thick as a tenth of the size
        double middle = 10 + 20.0 * kArialAscent - 20.0 * (kArialAscent - kArialDescent) / 2;
        EXPECT_EQ(b.At(with.left + 3, static_cast<long>(middle)).a, 255);
        EXPECT_EQ(b.At(with.left + 3, static_cast<long>(middle) - 3).a, 0);
        EXPECT_EQ(b.At(with.left + 3, static_cast<long>(middle) + 3).a, 0);
        EXPECT_EQ(without.bottom, with.bottom);
    }
}

TEST_F(DeviceText, DrawTextLayout_Raster_MatrixIsThatOfSvg) {
    TestFont font(12);
    static const ZR_Matrix rows[] = {{1, 0, 0, 1, 30, 20}, {1.5f, 0, 0, 1.5f, 0, 0}, {0, 1, -1, 0, 120, 0}};
    for (ZR_Matrix matrix : rows) {
        BitmapCanvas bitmap(200, 200);
        SvgCanvas svg(200, 200);
        Layout layout;
        layout.text = "LLLL";
        layout.rect = Rect(10, 10, 100, 50);
        layout.matrix = &matrix;
        layout.Draw(&bitmap.device, font);
        layout.Draw(&svg.device, font);
        Ink a = InkOf(bitmap), b = InkOf(svg);
        ASSERT_FALSE(a.Empty());
        EXPECT_NEAR(a.left, b.left, 1);
        EXPECT_NEAR(a.top, b.top, 1);
        EXPECT_NEAR(a.right, b.right, 1);
        EXPECT_NEAR(a.bottom, b.bottom, 1);
    }
}

TEST_F(DeviceText, SvgAndRaster_PutTextWithinOnePoint) {
    static const struct {
        const char* text;
        float size;
        short style;
        ZR_Alignment alignment;
        ZR_Alignment_Vertical vertical;
    } rows[] = {
        {"Left and top", 20, 0, ZR_ALIGNMENT_LEFT, ZR_VERTICAL_TOP},
        {"Right", 20, kZRBold, ZR_ALIGNMENT_RIGHT, ZR_VERTICAL_TOP},
        {"Centre", 24, kZRItalic, ZR_ALIGNMENT_CENTER, ZR_VERTICAL_TOP},
    };
    for (auto& row : rows) {
        BitmapCanvas bitmap(200, 100);
        SvgCanvas svg(200, 100);
        TestFont font(row.size, row.style);
        Layout layout;
        layout.text = row.text;
        layout.alignment = row.alignment;
        layout.vertical = row.vertical;
        layout.Draw(&bitmap.device, font);
        layout.Draw(&svg.device, font);
        Ink a = InkOf(bitmap), b = InkOf(svg);
        EXPECT_NEAR(a.left, b.left, 1) << row.text;
        EXPECT_NEAR(a.top, b.top, 1) << row.text;
        EXPECT_NEAR(a.right, b.right, 1) << row.text;
        EXPECT_NEAR(a.bottom, b.bottom, 1) << row.text;
    }
    BitmapCanvas bitmap(200, 100);
    SvgCanvas svg(200, 100);
    TestFont font(30);
    for (ZR_Device* device : {&bitmap.device, &svg.device}) DrawText(device, "Baseline", 20, 60, font);
    Ink a = InkOf(bitmap), b = InkOf(svg);
    EXPECT_NEAR(a.left, b.left, 1);
    EXPECT_NEAR(a.bottom, b.bottom, 1);
    EXPECT_NEAR(a.right, b.right, 1);
}

TEST_F(DeviceText, DrawTextLayout_NumbersThatAreNone_LoseNothingElse) {
    TestFont font;
    for (float bad : {kNaN, kInfinity, -kInfinity, 1e30f, -1e30f, 3e9f}) {
        BitmapCanvas bitmap(100, 60);
        SvgCanvas svg(100, 60);
        for (ZR_Device* device : {&bitmap.device, &svg.device}) {
            for (int field = 0; field < 6; ++field) {
                Layout layout;
                if (field == 0) layout.rect.right = bad;
                if (field == 1) layout.rect.bottom = bad;
                if (field == 2) layout.lineSpacing = bad;
                if (field == 3) layout.kerning = bad;
                if (field == 4) layout.rect.left = bad;
                if (field == 5) layout.rect.top = bad;
                for (ZR_Textmeasuring measuring : {ZR_TEXT_DRAW, ZR_TEXT_MEASURE, ZR_TEXT_MEASURE_UNLIMITED}) {
                    layout.measuring = measuring;
                    layout.text = "two\rlines";
                    layout.Draw(device, font);
                }
            }
        }
        BitmapCanvas after(200, 100);
        Layout layout;
        layout.Draw(&after.device, font);
        EXPECT_GT(after.Count(), 20);
    }
}

TEST_F(DeviceText, DrawTextLayout_TenMegabytes_DrawsTheTop) {
    std::string text(10 << 20, 'm');
    for (size_t i = 5; i < text.size(); i += 6) text[i] = ' ';
    BitmapCanvas canvas(200, 100);
    TestFont font;
    Layout layout;
    layout.text = text.c_str();
    layout.clip = true;
    layout.Draw(&canvas.device, font);
    EXPECT_GT(InkOf(canvas).bottom, 70);
}
