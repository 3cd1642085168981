#include <climits>
#include <limits>

#include "graphics/ZR_API_MultiStyleText.h"
#include "tests/graphics/TextSupport.h"

namespace {

class DeviceMultiStyleText : public DrawingTest {};

const float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Runs {
    Runs() { text.Create(); }
    ~Runs() { text.Dispose(); }
    Runs(const Runs&) = delete;
    Runs& Add(long start, long end, short style = 0, ZR_RGBColor color = {0, 0, 0, 1},
              ZR_RGBColor background = {0, 0, 0, 0}, float size = 20, const char* name = "Arial") {
        TestFont font(size, style, name);
        text.AddRun(start, end, font, &color, &background);
        return *this;
    }
    ZR_MultiStyleText text;
};

struct Styled {
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
    bool lastFlag = false;
    float lineSpacing = 0, kerning = 0;

    void Draw(ZR_Device* device, Runs* runs, ZR_Font* font) {
        TestText units(text);
        device->DrawMultiStyleText(units, runs ? &runs->text : nullptr, &rect, alignment, vertical, font, &color,
                                   antialias, matrix, properties, wordWrap, measuring, lastFlag, lineSpacing, kerning,
                                   /*keepTop*/ true);
    }
};

constexpr ZR_RGBColor kRed = {65535, 0, 0, 1}, kBlue = {0, 0, 65535, 1}, kGreen = {0, 65535, 0, 1};

// Pixels of nearly that colour in a part of the bitmap
long CountColor(BitmapCanvas& canvas, Dot color, long left = 0, long right = 1L << 30) {
    std::string pixels = canvas.Pixels();
    long n = 0;
    for (long i = 0; i < canvas.width * canvas.height; ++i) {
        auto p = reinterpret_cast<const unsigned char*>(pixels.data()) + i * 4;
        if (i % canvas.width >= left && i % canvas.width < right) n += NearDot({p[0], p[1], p[2], p[3]}, color, 60);
    }
    return n;
}

}  // namespace

// Nothing to do ------------------------------------------------------------------------------------------------------

TEST_F(DeviceMultiStyleText, EmptyRectangleOrText_DoesNothing_AlsoWhenMeasuring) {
    TestFont font;
    Runs runs;
    runs.Add(1, 4);
    for (ZR_Textmeasuring measuring : {ZR_TEXT_DRAW, ZR_TEXT_MEASURE, ZR_TEXT_MEASURE_UNLIMITED})
        for (ZR_Rect rect : {Rect(10, 10, 10, 50), Rect(10, 10, 50, 10), Rect(50, 10, 10, 50), Rect(kNaN, 0, 9, 9)}) {
            SvgCanvas svg;
            BitmapCanvas bitmap;
            for (ZR_Device* device : {&svg.device, &bitmap.device}) {
                Styled styled;
                styled.rect = rect;
                styled.measuring = measuring;
                styled.Draw(device, &runs, font);
                EXPECT_EQ(styled.rect.right, rect.right);
                EXPECT_EQ(styled.rect.bottom, rect.bottom);
                styled.rect = Rect(0, 0, 40, 40);
                styled.text = "";
                styled.Draw(device, &runs, font);
                EXPECT_EQ(styled.rect.bottom, 40);
            }
            EXPECT_EQ(svg.Drawn(), "");
            EXPECT_EQ(bitmap.Count(0), 0);
        }
    BitmapCanvas bitmap;
    Styled styled;
    TestFont none(-1);
    styled.Draw(&bitmap.device, &runs, nullptr);
    styled.Draw(&bitmap.device, &runs, none);
    EXPECT_EQ(bitmap.Count(0), 0) << "without the default font nothing is drawn";
}

// Runs ---------------------------------------------------------------------------------------------------------------

TEST_F(DeviceMultiStyleText, Runs_HaveTheirColoursAndGapsTheDefault) {
    BitmapCanvas canvas(200, 100);
    TestFont font(20, 0, "Courier New");
    Runs runs;
    runs.Add(1, 2, 0, kRed, {0, 0, 0, 0}, 20, "Courier New").Add(5, 6, 0, kBlue, {0, 0, 0, 0}, 20, "Courier New");
    Styled styled;
    styled.text = "MMMMMM";
    styled.color = kGreen;
    styled.Draw(&canvas.device, &runs, font);
    long letter = 12, left = 10;
    EXPECT_GT(CountColor(canvas, kRedDot, left, left + 2 * letter), 30);
    EXPECT_EQ(CountColor(canvas, kRedDot, left + 2 * letter + 1), 0);
    EXPECT_GT(CountColor(canvas, kGreenDot, left + 2 * letter, left + 4 * letter), 30);
    EXPECT_GT(CountColor(canvas, kBlueDot, left + 4 * letter), 30);
    EXPECT_EQ(CountColor(canvas, kBlueDot, 0, left + 4 * letter - 1), 0);
}

TEST_F(DeviceMultiStyleText, Overlap_FirstRunWinsAndTheLaterIsCutThere) {
    // 1-2 blue; 1..: the later run 1-6 meets a marked unit at once; 2 runs around an earlier one
    BitmapCanvas canvas(200, 100);
    TestFont font(20, 0, "Courier New");
    Runs runs;
    runs.Add(3, 4, 0, kBlue, {0, 0, 0, 0}, 20, "Courier New").Add(1, 6, 0, kRed, {0, 0, 0, 0}, 20, "Courier New");
    Styled styled;
    styled.text = "MMMMMM";
    styled.color = kGreen;
    styled.Draw(&canvas.device, &runs, font);
    EXPECT_GT(CountColor(canvas, kRedDot, 10, 34), 30) << "the later run before the overlap";
    EXPECT_GT(CountColor(canvas, kBlueDot, 34, 58), 30) << "the earlier run";
    EXPECT_EQ(CountColor(canvas, kRedDot, 35), 0) << "behind the overlap the later run is gone";
    EXPECT_GT(CountColor(canvas, kGreenDot, 58), 30) << "the default stands there";
}

TEST_F(DeviceMultiStyleText, RunsThatAreNone_AreLeftOut) {
    static const struct {
        long start, end;
    } rows[] = {{0, 3}, {-5, 3}, {3, 2}, {1, 7}, {7, 7}, {LONG_MIN, LONG_MAX}, {1, LONG_MAX}};
    TestFont font(20);
    BitmapCanvas plain(200, 100);
    Styled styled;
    styled.text = "MMMMMM";
    styled.Draw(&plain.device, nullptr, font);
    ASSERT_GT(plain.Count(), 50);
    for (auto& row : rows) {
        BitmapCanvas canvas(200, 100);
        Runs runs;
        runs.Add(row.start, row.end, kZRBold, kRed);
        styled.Draw(&canvas.device, &runs, font);
        EXPECT_EQ(canvas.Pixels(), plain.Pixels()) << row.start << " " << row.end;
    }
}

TEST_F(DeviceMultiStyleText, RunWithAFontThatIsNone_TakesTheDefaultFont) {
    TestFont font(20);
    BitmapCanvas plain(200, 100), canvas(200, 100);
    Styled styled;
    styled.text = "MMMMMM";
    styled.Draw(&plain.device, nullptr, font);
    Runs runs;
    runs.Add(1, 6, 0, {0, 0, 0, 1}, {0, 0, 0, 0}, -1);
    styled.Draw(&canvas.device, &runs, font);
    EXPECT_EQ(canvas.Pixels(), plain.Pixels());
}

TEST_F(DeviceMultiStyleText, UnderlineOfARun_IsDrawn) {
    TestFont font(20);
    Runs plain, underlined;
    plain.Add(1, 4);
    underlined.Add(1, 4, kZRUnderline);
    BitmapCanvas a(200, 100), b(200, 100);
    Styled styled;
    styled.text = "nnnn";
    styled.Draw(&a.device, &plain, font);
    styled.Draw(&b.device, &underlined, font);
    EXPECT_GT(InkOf(b).bottom, InkOf(a).bottom);
}

// Decorations --------------------------------------------------------------------------------------------------------

TEST_F(DeviceMultiStyleText, Background_IsAsHighAsTheFontAndBehindTheText) {
    for (ZR_Alignment alignment : {ZR_ALIGNMENT_LEFT, ZR_ALIGNMENT_CENTER, ZR_ALIGNMENT_RIGHT}) {
        BitmapCanvas canvas(200, 100);
        TestFont font(20, 0, "Courier New");
        Runs runs;
        runs.Add(2, 3, 0, {0, 0, 0, 1}, kRed, 20, "Courier New");
        Styled styled;
        styled.text = "iiii";
        styled.alignment = alignment;
        styled.Draw(&canvas.device, &runs, font);
        double letter = 1229.0 / 2048 * 20, free = 180 - 4 * letter;
        double left = 10 + letter +
                      (alignment == ZR_ALIGNMENT_RIGHT    ? free
                       : alignment == ZR_ALIGNMENT_CENTER ? free / 2
                                                          : 0);
        Ink red;
        std::string pixels = canvas.Pixels();
        for (long i = 0; i < canvas.width * canvas.height; ++i) {
            auto p = reinterpret_cast<const unsigned char*>(pixels.data()) + i * 4;
            if (NearDot({p[0], p[1], p[2], p[3]}, kRedDot, 40)) red.Take(i % canvas.width, i / canvas.width);
        }
        EXPECT_NEAR(red.left, left, 1.1) << alignment;
        EXPECT_NEAR(red.right + 1, left + 2 * letter, 1.1) << alignment;
        EXPECT_NEAR(red.bottom - red.top + 1, static_cast<double>(font->GetHeight()), 1.1);
        EXPECT_NEAR(red.top, 10, 1.1);
        EXPECT_GT(CountColor(canvas, kBlackDot, static_cast<long>(left), static_cast<long>(left + 2 * letter)), 20)
            << "the text is painted over it";
    }
}

TEST_F(DeviceMultiStyleText, Background_AlphaCountsAndNoneIsNotDrawn) {
    TestFont font(20);
    Styled styled;
    styled.text = "    ";
    for (float alpha : {0.0f, 0.5f, 1.0f}) {
        BitmapCanvas canvas(200, 100);
        Runs runs;
        runs.Add(1, 4, 0, {0, 0, 0, 1}, {65535, 0, 0, alpha});
        styled.Draw(&canvas.device, &runs, font);
        int value = static_cast<int>(alpha * 255);
        EXPECT_NEAR_DOT(canvas.At(15, 20), (Dot{value, 0, 0, value}), 2);
    }
}

TEST_F(DeviceMultiStyleText, Strikethrough_InTheColourAtHalfHeight) {
    BitmapCanvas canvas(200, 100);
    TestFont font(20);
    Runs runs;
    runs.Add(3, 6, kZRStrikethrough, kBlue);
    Styled styled;
    styled.text = "L     L";
    styled.Draw(&canvas.device, &runs, font);
    double middle = 10 + 20.0 * kArialAscent - 20.0 * (kArialAscent - kArialDescent) / 2;
    double x = 10 + static_cast<double>(font.Width("L "));
    EXPECT_NEAR_DOT(canvas.At(static_cast<long>(x) + 5, static_cast<long>(middle)), kBlueDot, 5);
    EXPECT_EQ(canvas.At(static_cast<long>(x) + 5, static_cast<long>(middle) - 3).a, 0);
    EXPECT_EQ(canvas.At(static_cast<long>(x) - 3, static_cast<long>(middle)).a, 0) << "not before the run";
}

TEST_F(DeviceMultiStyleText, Decorations_OfATextWithoutRuns_AreNone) {
    BitmapCanvas canvas(200, 100), struck(200, 100);
    TestFont font(20), with(20, kZRStrikethrough);
    Styled styled;
    styled.Draw(&canvas.device, nullptr, font);
    styled.Draw(&struck.device, nullptr, with);
    EXPECT_EQ(canvas.Pixels(), struck.Pixels()) << "the default font's strikethrough is not drawn";
}

// Frame --------------------------------------------------------------------------------------------------------------

TEST_F(DeviceMultiStyleText, Verticals_AndTheClipOfTheRectangle) {
    TestFont font(20);
    double step = 2355.0 / 2048 * 20, ascent = 1854.0 / 2048 * 20;
    static const struct {
        ZR_Alignment_Vertical vertical;
        double baseline;
    } rows[] = {{ZR_VERTICAL_TOP, 10 + ascent},
                {ZR_VERTICAL_CENTER, 50 - step / 2 + ascent},
                {ZR_VERTICAL_BOTTOM, 90 - 2 - step + ascent}};
    for (auto& row : rows) {
        BitmapCanvas canvas(200, 100);
        Styled styled;
        styled.text = "L";
        styled.vertical = row.vertical;
        styled.Draw(&canvas.device, nullptr, font);
        EXPECT_NEAR(InkOf(canvas).bottom + 1, row.baseline, 1.1) << row.vertical;
    }
    BitmapCanvas canvas(200, 100);
    Styled styled;
    styled.text = "L\rL\rL\rL";
    styled.rect = Rect(10, 10, 190, 40);
    styled.Draw(&canvas.device, nullptr, font);
    EXPECT_LE(InkOf(canvas, 0).bottom, 39) << "always clipped";
    EXPECT_GE(InkOf(canvas, 0).bottom, 37) << "the line that the room at the top lets in";
}

TEST_F(DeviceMultiStyleText, Measuring_OnPixelsAndOnSvg_IsTheSame) {
    TestFont font(12);
    float line = 12 * (kArialAscent + kArialDescent + kArialGap),
          large = 24 * (kArialAscent + kArialDescent + kArialGap);
    BitmapCanvas bitmap(200, 100);
    SvgCanvas svg;
    for (ZR_Device* device : {&bitmap.device, &svg.device}) {
        Styled styled;
        styled.text = "one two";
        styled.rect = Rect(10, 20, 45, 30);
        styled.measuring = ZR_TEXT_MEASURE;
        styled.Draw(device, nullptr, font);
        EXPECT_NEAR(styled.rect.bottom, 20 + 2 * line, 0.01);
        styled.rect = Rect(10, 20, 45, 30);
        styled.measuring = ZR_TEXT_MEASURE_UNLIMITED;
        Runs runs;
        runs.Add(1, 3, 0, {0, 0, 0, 1}, {0, 0, 0, 0}, 24);
        styled.Draw(device, &runs, font);
        TestFont twice(24);
        EXPECT_NEAR(styled.rect.bottom, 20 + large, 0.01);
        EXPECT_NEAR(styled.rect.right, 10 + twice.Width("one") + font.Width(" two"), 0.7);
    }
    EXPECT_EQ(svg.Drawn(), "");
    EXPECT_EQ(bitmap.Count(0), 0);
}

TEST_F(DeviceMultiStyleText, StateOfTheContext_IsPutBack) {
    BitmapCanvas canvas;
    TestFont font, none(-1);
    ZR_Matrix matrix = {2, 0, 0, 2, 10, 10};
    CGAffineTransform before = CGContextGetCTM(canvas->context);
    for (ZR_Textmeasuring measuring : {ZR_TEXT_DRAW, ZR_TEXT_MEASURE})
        for (ZR_Matrix* m : {static_cast<ZR_Matrix*>(nullptr), &matrix})
            for (ZR_Font* with : {&font.font, &none.font}) {
                Styled styled;
                styled.measuring = measuring;
                styled.matrix = m;
                styled.Draw(&canvas.device, nullptr, with);
                CGAffineTransform after = CGContextGetCTM(canvas->context);
                EXPECT_EQ(memcmp(&before, &after, sizeof before), 0);
            }
    EXPECT_EQ(CGContextGetClipBoundingBox(canvas->context).size.width, 40);
}

TEST_F(DeviceMultiStyleText, TenMegabytesAndManyRuns_DrawTheTop) {
    std::string text(4 << 20, 'm');
    for (size_t i = 5; i < text.size(); i += 6) text[i] = ' ';
    BitmapCanvas canvas(200, 100);
    TestFont font(12);
    Runs runs;
    runs.text.runs.growStep = 20000;
    for (long i = 0; i < 20000; ++i) runs.Add(i * 3 + 1, i * 3 + 2, i % 4 == 0 ? kZRBold : 0, kRed);
    Styled styled;
    styled.text = text.c_str();
    styled.Draw(&canvas.device, &runs, font);
    EXPECT_GT(InkOf(canvas).bottom, 70);
}

// SVG ----------------------------------------------------------------------------------------------------------------

TEST_F(DeviceMultiStyleText, Svg_AttributesInOrder) {
    static const struct {
        ZR_Alignment alignment;
        ZR_Alignment_Vertical vertical;
        short style;
        bool antialias;
        float alpha;
        const char* attributes;
    } rows[] = {
        {ZR_ALIGNMENT_DEFAULT, ZR_VERTICAL_TOP, 0, true, 1, "text-align='start' fill='#000000'"},
        {ZR_ALIGNMENT_LEFT, ZR_VERTICAL_BOTTOM, kZRBold, true, 1,
         "font-weight='bold' text-align='start' display-align='after' fill='#000000'"},
        {ZR_ALIGNMENT_CENTER, ZR_VERTICAL_CENTER, kZRItalic, false, 1,
         "font-style='italic' text-align='center' display-align='center' text-rendering='optimizeSpeed' "
         "fill='#000000'"},
        {ZR_ALIGNMENT_RIGHT, ZR_VERTICAL_TOP, kZRUnderline, true, 0.25f,
         "text-decoration='underline' text-align='end' fill='#000000' fill-opacity='0.25'"},
        {ZR_ALIGNMENT_JUSTIFIED, ZR_VERTICAL_TOP, kZRStrikethrough, true, 1,
         "text-decoration='line-through' text-align='justify' fill='#000000'"},
        {static_cast<ZR_Alignment>(0), static_cast<ZR_Alignment_Vertical>(0), kZRUnderline | kZRStrikethrough, true, 1,
         "text-decoration='line-through underline' text-align='start' fill='#000000'"},
    };
    for (auto& row : rows) {
        SvgCanvas canvas;
        TestFont font(12.9f, row.style);
        Runs runs;
        runs.Add(1, 4);
        Styled styled;
        styled.rect = Rect(10.5f, 20, 110.5f, 60);
        styled.alignment = row.alignment;
        styled.vertical = row.vertical;
        styled.antialias = row.antialias;
        styled.color.alpha = row.alpha;
        styled.Draw(&canvas.device, &runs, font);
        EXPECT_EQ(canvas.Drawn(), std::string("<textArea x='10.5' y='20' width='100' height='40' font-family='Arial' "
                                              "font-size='12' ") +
                                      row.attributes +
                                      "><tspan style='font-family: 'Arial'; font-size:20; "
                                      "font-weight:normal;'>Text</tspan></textArea>");
    }
}

TEST_F(DeviceMultiStyleText, Svg_RunsBecomeSpansAndBreaks) {
    SvgCanvas canvas;
    TestFont font;
    Runs runs;
    runs.Add(1, 2).Add(3, 5, kZRBold, kRed);
    Styled styled;
    styled.text = "a\rb\r\n";
    styled.Draw(&canvas.device, &runs, font);
    std::string drawn = canvas.Drawn();
    EXPECT_NE(drawn.find("font-weight:normal;'>a<tbreak/></tspan><tspan"), std::string::npos) << drawn;
    EXPECT_NE(drawn.find("font-weight:bold; color:#FF0000;'>b<tbreak/></tspan></textArea>"), std::string::npos)
        << drawn;
}

TEST_F(DeviceMultiStyleText, Svg_PropertiesMatrixAndClip) {
    SvgCanvas canvas;
    TestFont font;
    Runs runs;
    runs.Add(1, 4);
    TestProperties mine({{"id", "a"}});
    TestProperties::Add(&canvas.device.customProperties, "class", "device");
    ZR_Matrix matrix = {2, 0, 0, 2, 0, 0};
    ZR_Rect clip = Rect(0, 0, 50, 50);
    canvas->ClipRect(&clip);
    Styled styled;
    styled.properties = mine;
    styled.matrix = &matrix;
    styled.lastFlag = true;
    styled.Draw(&canvas.device, &runs, font);
    std::string body = canvas.Body();
    EXPECT_NE(body.find("<textArea id='a' class='device' x='10' "), std::string::npos) << body;
    EXPECT_NE(body.find("fill='#000000' transform='matrix(2 0 0 2 0 0)' clip-path='url(#clip1)'><tspan"),
              std::string::npos)
        << body;
}

TEST_F(DeviceMultiStyleText, Svg_WithoutRuns_IsAnAreaWithoutText) {
    SvgCanvas canvas;
    TestFont font;
    Styled styled;
    styled.Draw(&canvas.device, nullptr, font);
    EXPECT_TRUE(canvas.Drawn().starts_with("<textArea x='10' y='10' ")) << canvas.Drawn();
    EXPECT_EQ(canvas.Drawn().find("tspan"), std::string::npos);
}
