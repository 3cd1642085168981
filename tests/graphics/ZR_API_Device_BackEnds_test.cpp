// The two back ends beside each other: one draw function makes a document, which a reader of SVG turns into pixels, and
// a bitmap. Both show the same, but for what one of them does not have.
#include <cmath>
#include <functional>
#include <vector>

#include "platform/SVG/SVGPicture.h"
#include "tests/graphics/DrawingSupport.h"

namespace {

constexpr long kWidth = 120, kHeight = 90, kScale = 2;

using Draw = std::function<void(ZR_Device*)>;

class BackEnds : public DrawingTest {
  protected:
    // The share of pixels that differ by more than an edge may, in percent.
    static double Difference(const Draw& draw) {
        SvgCanvas svg(kWidth, kHeight);
        draw(&svg.device);
        const std::string text = svg.Text();
        CGImageRef image = ZRSVGCreateImage(text.data(), static_cast<long>(text.size()), kScale);
        EXPECT_NE(image, nullptr) << text;
        BitmapCanvas bitmap(kWidth, kHeight, 72 * kScale), rendered(kWidth, kHeight, 72 * kScale);
        draw(&bitmap.device);
        CGContextDrawImage(rendered->context, CGRectMake(0, 0, kWidth, kHeight), image);
        CGImageRelease(image);
        const std::string a = bitmap.Pixels(), b = rendered.Pixels();
        EXPECT_GT(bitmap.Count(), 100) << "something is drawn";
        long differing = 0;
        for (size_t i = 0; i < a.size(); i += 4) {
            int most = 0;
            for (size_t c = 0; c < 4; ++c)
                most = std::max(most,
                                std::abs(static_cast<unsigned char>(a[i + c]) - static_cast<unsigned char>(b[i + c])));
            differing += most > 48;
        }
        return 100.0 * static_cast<double>(differing) / (kWidth * kHeight * kScale * kScale);
    }
};

ZR_RGBColor gRed = Color(220, 30, 30), gBlue = Color(20, 40, 200), gGlass = Color(0, 160, 60, 0.4f);
ZR_Matrix gTurned = {0.8f, 0.5f, -0.5f, 0.8f, 40, -5};

void RectOf(ZR_Device* d, ZR_Rect r, ZR_Matrix* m = nullptr, ZR_Gradient* g = nullptr, float radius = 0) {
    d->DrawRect(&r, true, true, &gGlass, &gBlue, 3, true, radius, radius > 0, m, g, nullptr, nullptr);
}
void OvalOf(ZR_Device* d, ZR_Rect r, ZR_Matrix* m = nullptr, ZR_Gradient* g = nullptr) {
    d->DrawOval(&r, true, true, &gRed, &gBlue, 2, true, m, g, nullptr, nullptr);
}
void ArcOf(ZR_Device* d, float start, float end, bool clockwise, ZR_Matrix* m = nullptr) {
    ZR_Rect r = Rect(20, 10, 100, 70);
    d->DrawArc(&r, start, end, clockwise, true, true, &gGlass, &gRed, 2, true, m, nullptr, nullptr, nullptr);
}

}  // namespace

TEST_F(BackEnds, Shapes_OnBoth_ShowTheSame) {
    TestGradient across(ZR_GRADIENT_PERCENT), down(ZR_GRADIENT_PERCENT), user(ZR_GRADIENT_USER),
        radial(ZR_GRADIENT_PERCENT, false), moved(ZR_GRADIENT_USER);
    across.From(0, 0, 100, 0).Stop(0, gRed).Stop(0.3f, gGlass).Stop(1, gBlue);
    down.From(0, 20, 0, 80).Stop(0, gRed).Stop(1, gBlue);
    user.From(20, 20, 80, 70).Stop(0, gRed).Stop(1, gBlue);
    radial.From(50, 50, 0, 0, 50).Stop(0, gRed).Stop(1, gBlue);
    moved.From(0, 0, 40, 0).Stop(0, gRed).Stop(1, gBlue);
    moved.gradient.matrix.tx = 30;
    TestPath path("M10 10L60 20C70 60 90 30 110 80Q60 90 30 60Z M40 30L60 30L60 50L40 50Z");
    ZR_Rect clip = Rect(30, 20, 80, 60), other = Rect(0, 0, 60, 40);
    const std::vector<std::pair<const char*, Draw>> rows = {
        {"rect", [](ZR_Device* d) { RectOf(d, Rect(10.5f, 10, 70, 60.25f)); }},
        {"rect under a matrix", [](ZR_Device* d) { RectOf(d, Rect(10, 10, 70, 60), &gTurned); }},
        {"rounded", [](ZR_Device* d) { RectOf(d, Rect(10, 10, 70, 60), nullptr, nullptr, 24); }},
        {"rounded under a matrix", [](ZR_Device* d) { RectOf(d, Rect(10, 10, 70, 60), &gTurned, nullptr, 24); }},
        {"oval", [](ZR_Device* d) { OvalOf(d, Rect(10, 10, 110, 60)); }},
        {"oval under a matrix", [](ZR_Device* d) { OvalOf(d, Rect(10, 10, 80, 40), &gTurned); }},
        {"gradient across", [&](ZR_Device* d) { RectOf(d, Rect(10, 10, 110, 60), nullptr, across); }},
        {"gradient down", [&](ZR_Device* d) { RectOf(d, Rect(10, 10, 110, 60), nullptr, down); }},
        {"gradient in user units", [&](ZR_Device* d) { RectOf(d, Rect(10, 10, 110, 80), nullptr, user); }},
        {"gradient with a matrix", [&](ZR_Device* d) { RectOf(d, Rect(10, 10, 110, 80), nullptr, moved); }},
        {"radial gradient", [&](ZR_Device* d) { OvalOf(d, Rect(10, 10, 90, 80), nullptr, radial); }},
        {"line", [](ZR_Device* d) { d->DrawLine(5, 80, 110, 7.5f, &gBlue, 3, true, 0, 0, nullptr, nullptr, nullptr); }},
        {"line under a matrix",
         [](ZR_Device* d) { d->DrawLine(5, 70, 100, 7.5f, &gBlue, 3, true, 0, 0, &gTurned, nullptr, nullptr); }},
        {"path, even-odd",
         [&](ZR_Device* d) {
             ZR_Rect whole = Rect(0, 0, kWidth, kHeight);
             d->DrawPath(false, path, &whole, &whole, true, true, &gRed, &gBlue, 2, true, nullptr, nullptr, nullptr,
                         nullptr, nullptr, ZR_FILL_EVENODD);
         }},
        {"clips",
         [&](ZR_Device* d) {
             d->ClipRect(&clip);
             OvalOf(d, Rect(10, 10, 110, 80));
             d->ClipRect(&other);
             RectOf(d, Rect(40, 30, 110, 80));
             d->ClipRect(&clip);
             RectOf(d, Rect(50, 40, 110, 80));
         }},
        {"table",
         [](ZR_Device* d) {
             ZR_Rect rects[] = {Rect(0, 0, 60, 30), Rect(60, 0, 120, 30), Rect(0, 30, 60, 60)};
             ZR_RGBColor colors[] = {gRed, gBlue, gGlass};
             d->DrawRectsWithDifferentBackgroundColors(rects, colors, 3);
         }},
    };
    for (const auto& [name, draw] : rows) EXPECT_LT(Difference(draw), 0.7) << name;
}

TEST_F(BackEnds, Arcs_OfBothSenses_ShowTheSame) {
    static const struct {
        float start, end;
        bool clockwise;
    } rows[] = {{0, 90, true},  {0, 90, false},   {30, 200, true},   {30, 200, false}, {300, 350, true},
                {45, 0, true},  {45, 0, false},   {10, 350, true},   {10, 350, false}, {-40, 60, true},
                {90, 91, true}, {200, 270, true}, {200, 270, false}, {-40, 60, false}};
    for (const auto& row : rows)
        for (ZR_Matrix* m : {static_cast<ZR_Matrix*>(nullptr), &gTurned})
            EXPECT_LT(Difference([&](ZR_Device* d) {
                          ArcOf(d, row.start, row.end, row.clockwise, m);
                          RectOf(d, Rect(0, 0, 12, 12));
                      }),
                      0.7)
                << row.start << " " << row.end << " " << row.clockwise << (m ? " under a matrix" : "");
}
