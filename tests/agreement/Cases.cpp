#include "tests/agreement/Cases.h"

#include <cmath>
#include <memory>
#include <random>

#include "core/ZR_API_Picture.h"
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Font.h"
#include "graphics/ZR_API_Gradient.h"
#include "graphics/ZR_API_LineDash.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_MultiStyleText.h"
#include "graphics/ZR_API_Path.h"
#include "graphics/ZR_API_Region.h"
#include "graphics/ZR_API_Shading.h"

namespace agreement {

namespace {

// Values that a case holds -----------------------------------------------------------------------------------------

ZR_Rect Rect(float left, float top, float right, float bottom) {
    ZR_Rect rect;
    rect.top = top, rect.left = left, rect.right = right, rect.bottom = bottom;
    return rect;
}

ZR_RGBColor Color(int red, int green, int blue, float alpha = 1) {
    auto wide = [](int channel) { return static_cast<unsigned short>(channel * 257); };
    return {wide(red), wide(green), wide(blue), alpha};
}

const ZR_RGBColor kFill = Color(70, 130, 180), kStroke = Color(178, 34, 34);

ZR_RGBColor WithAlpha(ZR_RGBColor color, float alpha) {
    color.alpha = alpha;
    return color;
}

struct GradientSpec {
    const char* name;
    Gradient_Bounds_Type bounds;
    bool linear;
    float x1, y1, x2, y2, radius;
    int stops;
    float matrix[6];
};

// Alive while the case is drawn.
struct Gradient {
    ZR_Gradient value;
    explicit Gradient(const GradientSpec& spec) {
        value.Create(spec.bounds);
        value.isLinear = spec.linear;
        value.x1 = spec.x1, value.y1 = spec.y1, value.x2 = spec.x2, value.y2 = spec.y2, value.radius = spec.radius;
        const float* m = spec.matrix;
        value.matrix = {m[0], m[1], m[2], m[3], m[4], m[5]};
        const ZR_RGBColor colors[] = {Color(255, 240, 120), Color(30, 120, 90), Color(60, 20, 120)};
        for (int i = 0; i < spec.stops; i++)
            value.AddOffset(spec.stops > 1 ? float(i) / float(spec.stops - 1) : 0, &colors[i]);
    }
    ~Gradient() { value.Dispose(); }
    Gradient(const Gradient&) = delete;
    Gradient& operator=(const Gradient&) = delete;
};

struct Text {
    ZR_Text value;
    explicit Text(const char* bytes) { value.Create(), value.AddString(bytes); }
    ~Text() { value.Dispose(); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    operator ZR_Text*() { return &value; }
};

struct Path {
    ZR_Handle value;
    explicit Path(const char* data) {
        Text text(data);
        ZR_CreatePathHandle(&value);
        long error = 0;
        ZR_CreateHandleFromPathText(text, &value, &error);
    }
    ~Path() { value.Dispose(); }
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;
};

struct Font {
    ZR_Font value;
    Font(float size, short style, const char* name = "Arial") { value.Create(size, style, name); }
    ~Font() { value.Dispose(); }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
};

struct Dash {
    ZR_LineDash value;
    Dash() { value.Create(1, 6, 3); }
    ~Dash() { value.Dispose(); }
    Dash(const Dash&) = delete;
    Dash& operator=(const Dash&) = delete;
};

struct Region {
    ZR_Region value;
    Region() { value.Create(); }
    ~Region() { value.Dispose(); }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;
};

struct MatrixSpec {
    const char* name;
    float m[6];
};
constexpr MatrixSpec kMatrices[] = {
    {"no matrix", {1, 0, 0, 1, 0, 0}},
    {"moved and scaled", {0.75F, 0, 0, 0.5F, 12.5F, 9}},
    {"turned", {0.9397F, 0.342F, -0.342F, 0.9397F, 12, -12}},
    {"skewed", {1, 0.2F, 0.4F, 1, -14, -9}},
    {"mirrored", {-1, 0, 0, 1, 96, 0}},
};
constexpr size_t kPlain = 0, kTurned = 2;

constexpr float kIdentity[6] = {1, 0, 0, 1, 0, 0};
#define ZR_IDENTITY \
    { 1, 0, 0, 1, 0, 0 }
const GradientSpec kGradients[] = {
    {"linear", ZR_GRADIENT_USER, true, 20, 15, 80, 60, 0, 3, ZR_IDENTITY},
    {"linear, percent", ZR_GRADIENT_PERCENT, true, 10, 0, 90, 0, 0, 3, ZR_IDENTITY},
    {"linear, part of the shape", ZR_GRADIENT_USER, true, 40, 0, 60, 0, 0, 2, ZR_IDENTITY},
    {"radial", ZR_GRADIENT_USER, false, 48, 36, 0, 0, 34, 3, ZR_IDENTITY},
    {"radial with a focal point", ZR_GRADIENT_USER, false, 48, 36, 38, 30, 34, 3, ZR_IDENTITY},
    {"radial, percent", ZR_GRADIENT_PERCENT, false, 50, 50, 0, 0, 50, 3, ZR_IDENTITY},
    {"radial, percent, focal point", ZR_GRADIENT_PERCENT, false, 50, 50, 35, 40, 50, 3, ZR_IDENTITY},
    {"linear, percent, downward", ZR_GRADIENT_PERCENT, true, 0, 0, 0, 100, 0, 3, ZR_IDENTITY},
    {"linear, percent, slanted", ZR_GRADIENT_PERCENT, true, 0, 0, 100, 100, 0, 3, ZR_IDENTITY},
    {"one stop", ZR_GRADIENT_USER, true, 20, 15, 80, 60, 0, 1, ZR_IDENTITY},
    {"no bounds", ZR_GRADIENT_NONE, true, 20, 15, 80, 60, 0, 3, ZR_IDENTITY},
    {"no stops", ZR_GRADIENT_USER, true, 20, 15, 80, 60, 0, 0, ZR_IDENTITY},
    {"scaled", ZR_GRADIENT_USER, true, 20, 15, 80, 60, 0, 3, {0.5F, 0, 0, 0.5F, 10, 5}},
    {"turned", ZR_GRADIENT_USER, true, 20, 15, 80, 60, 0, 3, {0.8F, 0.6F, -0.6F, 0.8F, 20, -20}},
    {"percent, moved", ZR_GRADIENT_PERCENT, true, 0, 0, 100, 0, 0, 3, {1, 0, 0, 1, 10, 0}},
};

// What a shape is asked to be --------------------------------------------------------------------------------------

struct Paint {
    bool fill = true, stroke = false, antialias = true, dash = false;
    float fillAlpha = 1, strokeAlpha = 1, width = 3;
    size_t matrix = kPlain;
    int gradient = -1;
    ZR_Rect clip{};  // empty = none
};

struct Arguments {  // of a call, alive while it is made
    explicit Arguments(const Paint& paint)
        : fillColor(WithAlpha(kFill, paint.fillAlpha)), strokeColor(WithAlpha(kStroke, paint.strokeAlpha)) {
        const float* m = kMatrices[paint.matrix].m;
        matrixValue = {m[0], m[1], m[2], m[3], m[4], m[5]};
        if (paint.matrix != kPlain) matrix = &matrixValue;
        if (paint.gradient >= 0) {
            gradientValue = std::make_unique<Gradient>(kGradients[paint.gradient]);
            gradient = &gradientValue->value;
        }
        if (paint.dash) dash = &dashValue.value;
    }
    ZR_RGBColor fillColor, strokeColor;
    ZR_Matrix matrixValue;
    std::unique_ptr<Gradient> gradientValue;
    Dash dashValue;
    ZR_Matrix* matrix = nullptr;
    ZR_Gradient* gradient = nullptr;
    ZR_LineDash* dash = nullptr;
};

enum class Shape { Rect, Rounded, Oval, ArcClockwise, ArcCounter, Path, EvenOdd };

struct ShapeRow {
    Shape shape;
    const char* group;
    bool takesGradient;
};
constexpr ShapeRow kShapes[] = {
    {Shape::Rect, "Rectangle", true},
    {Shape::Rounded, "Rounded rectangle", true},
    {Shape::Oval, "Oval", true},
    {Shape::ArcClockwise, "Arc, clockwise", false},
    {Shape::ArcCounter, "Arc", false},
    {Shape::Path, "Path", false},
    {Shape::EvenOdd, "Path, even-odd", false},
};
constexpr char kStar[] = "M48 10L62 60L18 29L78 29L34 60Z";
constexpr char kLeaf[] = "M14 40C20 10 60 8 82 20Q70 60 40 62T14 40Z";

void DrawShape(ZR_Device* device, Shape shape, const Paint& paint, const ZR_Rect& frame) {
    Arguments a(paint);
    ZR_Rect clip = paint.clip, rect = frame;
    if (clip.right > clip.left) device->ClipRect(&clip);
    switch (shape) {
        case Shape::Rect:
        case Shape::Rounded:
            device->DrawRect(&rect, paint.fill, paint.stroke, &a.fillColor, &a.strokeColor, paint.width,
                             paint.antialias, 16, shape == Shape::Rounded, a.matrix, a.gradient, nullptr, a.dash);
            break;
        case Shape::Oval:
            device->DrawOval(&rect, paint.fill, paint.stroke, &a.fillColor, &a.strokeColor, paint.width,
                             paint.antialias, a.matrix, a.gradient, nullptr, a.dash);
            break;
        case Shape::ArcClockwise:
        case Shape::ArcCounter:
            device->DrawArc(&rect, 30, 290, shape == Shape::ArcClockwise, paint.fill, paint.stroke, &a.fillColor,
                            &a.strokeColor, paint.width, paint.antialias, a.matrix, a.gradient, nullptr, a.dash);
            break;
        case Shape::Path:
        case Shape::EvenOdd: {
            Path path(shape == Shape::Path ? kLeaf : kStar);
            ZR_Rect bounds;
            ZR_GetPathBoundingBox(&path.value, &bounds);
            ZR_Rect target = bounds;
            device->DrawPath(/*smooth*/ false, &path.value, &target, &bounds, paint.fill, paint.stroke, &a.fillColor,
                             &a.strokeColor, paint.width, paint.antialias, a.matrix, a.gradient, nullptr, a.dash,
                             nullptr, shape == Shape::EvenOdd ? ZR_FILL_EVENODD : ZR_FILL_NONZERO);
            break;
        }
    }
}

const ZR_Rect kFrame = Rect(16, 12, 80, 60);

void AddShape(std::vector<Case>* cases, const ShapeRow& row, const std::string& name, const Paint& paint,
              const char* reason = nullptr) {
    Shape shape = row.shape;
    cases->push_back({row.group, name, [=](ZR_Device* device) { DrawShape(device, shape, paint, kFrame); }, reason});
}

// The star's points become sharper than a mitre of 4 allows.
bool NarrowsCorners(size_t matrix) { return matrix == 1 || matrix == 3; }

// Every shape, filled, stroked and both, under every matrix, opaque and translucent, clipped, dashed.
void AddShapes(std::vector<Case>* cases) {
    static constexpr struct {
        const char* name;
        bool fill, stroke;
    } kPaints[] = {{"filled", true, false}, {"stroked", false, true}, {"filled and stroked", true, true}};
    for (const ShapeRow& row : kShapes) {
        for (const auto& kind : kPaints)
            for (size_t m = 0; m < std::size(kMatrices); m++)
                for (float alpha : {1.0F, 0.5F}) {
                    Paint paint;
                    paint.fill = kind.fill, paint.stroke = kind.stroke, paint.matrix = m;
                    paint.fillAlpha = paint.strokeAlpha = alpha;
                    std::string name = std::string(kind.name) + (m ? std::string(", ") + kMatrices[m].name : "") +
                                       (alpha < 1 ? ", half transparent" : "");
                    const bool sharp = row.shape == Shape::EvenOdd && paint.stroke && NarrowsCorners(m);
                    AddShape(cases, row, name, paint, sharp ? kSharpCorner : nullptr);
                }
        Paint paint;
        AddShape(cases, row, "neither filled nor stroked", [] {
            Paint p;
            p.fill = false;
            return p;
        }());
        for (size_t m : {kPlain, size_t(2)}) {
            paint = {};
            paint.matrix = m;
            paint.stroke = true;
            std::string under = m ? std::string(", ") + kMatrices[m].name : "";
            paint.clip = Rect(24, 20, 66, 50);
            AddShape(cases, row, "clipped at whole points" + under, paint, m ? kClipUnderMatrix : nullptr);
            paint.clip = Rect(24.25F, 20.5F, 66.5F, 50.25F);
            AddShape(cases, row, "clipped between points" + under, paint, kWholePointClip);
        }
        paint = {};
        paint.fill = false, paint.stroke = paint.dash = true;
        AddShape(cases, row, "dashed", paint, kNoDash);
        paint = {};
        paint.antialias = false;
        if (row.shape != Shape::Rect && row.shape != Shape::Rounded)
            AddShape(cases, row, "without antialias", paint, kNoAntialias);
    }
}

// Whether a mirror along the middle of the frame shows.
bool IsUpright(const GradientSpec& spec) {
    if (spec.linear) return spec.y1 != spec.y2;
    return (spec.x2 != 0 || spec.y2 != 0) && spec.y2 != spec.y1;  // the centre lies in the middle
}

const char* GradientReason(const ShapeRow& row, size_t gradient, size_t matrix) {
    const GradientSpec& spec = kGradients[gradient];
    const bool used = spec.bounds != ZR_GRADIENT_NONE && spec.stops > 0;
    if (!used && spec.stops > 0) return nullptr;  // falls back to the plain colour
    if (spec.stops == 0) return nullptr;          // neither fills
    if (row.shape == Shape::Path || row.shape == Shape::EvenOdd) return kPathGradient;
    if (row.shape == Shape::ArcClockwise || row.shape == Shape::ArcCounter) return nullptr;
    if (spec.stops == 1) return kSingleStop;
    if (matrix != kPlain && IsUpright(spec)) return kGradientUnderMatrix;
    if (matrix == kTurned && spec.bounds == ZR_GRADIENT_PERCENT) return kRendererBox;
    if (spec.bounds == ZR_GRADIENT_PERCENT && spec.linear && spec.x1 != spec.x2 && spec.y1 != spec.y2)
        return kSlantedPercent;
    const bool skews = spec.matrix[1] != 0 || (spec.bounds == ZR_GRADIENT_PERCENT && spec.matrix[4] != 0);
    return skews ? kGradientMatrix : nullptr;
}

void AddGradients(std::vector<Case>* cases) {
    for (const ShapeRow& row : kShapes)
        for (size_t g = 0; g < std::size(kGradients); g++)
            for (size_t m : {kPlain, size_t(1), size_t(2)}) {
                const bool ends = kGradients[g].stops != 3 || kGradients[g].bounds == ZR_GRADIENT_NONE;
                if (m && (ends || kGradients[g].matrix[0] != 1)) continue;
                Paint paint;
                paint.gradient = static_cast<int>(g);
                paint.matrix = m;
                paint.stroke = true;
                std::string name =
                    std::string("gradient: ") + kGradients[g].name + (m ? std::string(", ") + kMatrices[m].name : "");
                AddShape(cases, row, name, paint, GradientReason(row, g, m));
            }
}

void AddCorners(std::vector<Case>* cases) {
    for (float radius : {0.0F, 1.0F, 12.0F, 48.0F, 60.0F, 1000.0F})
        cases->push_back({"Rounded rectangle", "diameter " + std::to_string(static_cast<int>(radius)),
                          [=](ZR_Device* device) {
                              ZR_Rect rect = kFrame;
                              ZR_RGBColor fill = kFill, stroke = kStroke;
                              device->DrawRect(&rect, true, true, &fill, &stroke, 2, true, radius, true, nullptr,
                                               nullptr, nullptr, nullptr);
                          },
                          radius > 48 ? kCornerLimit : nullptr});
}

void AddArcs(std::vector<Case>* cases) {
    static constexpr struct {
        float start, end;
    } kAngles[] = {{0, 90}, {90, 180}, {0, 0}, {45, 46}, {180, 270}, {10, 350}, {270, 359}};
    for (const auto& angle : kAngles)
        for (bool clockwise : {true, false})
            cases->push_back({clockwise ? "Arc, clockwise" : "Arc",
                              std::to_string(int(angle.start)) + " to " + std::to_string(int(angle.end)) + " degrees",
                              [=](ZR_Device* device) {
                                  ZR_Rect rect = kFrame;
                                  ZR_RGBColor fill = kFill, stroke = kStroke;
                                  device->DrawArc(&rect, angle.start, angle.end, clockwise, true, true, &fill, &stroke,
                                                  2, true, nullptr, nullptr, nullptr, nullptr);
                              },
                              angle.start == angle.end ? kFullArc : nullptr});
}

void AddLines(std::vector<Case>* cases) {
    static constexpr struct {
        float x1, y1, x2, y2;
    } kLines[] = {{10, 10, 86, 62}, {10, 62, 86, 10}, {48, 8, 48, 64}, {8, 36.5F, 88, 36.5F}, {86, 62, 10, 10}};
    auto line = [](float width, short join, short cap, bool antialias, size_t matrix, bool dash, size_t which) {
        return [=](ZR_Device* device) {
            Paint paint;
            paint.matrix = matrix;
            paint.dash = dash;
            Arguments a(paint);
            device->DrawLine(kLines[which].x1, kLines[which].y1, kLines[which].x2, kLines[which].y2, &a.strokeColor,
                             width, antialias, join, cap, a.matrix, nullptr, a.dash);
        };
    };
    for (size_t i = 0; i < std::size(kLines); i++)
        for (size_t m = 0; m < std::size(kMatrices); m++)
            cases->push_back({"Line",
                              "line " + std::to_string(i + 1) + (m ? std::string(", ") + kMatrices[m].name : ""),
                              line(4, 0, 0, true, m, false, i)});
    for (float width : {0.5F, 1.0F, 12.0F})
        cases->push_back(
            {"Line", "width " + std::to_string(width).substr(0, 4), line(width, 0, 0, true, kPlain, false, 0)});
    cases->push_back({"Line", "round cap", line(12, 0, 1, true, kPlain, false, 0), kNoJoinOrCap});
    cases->push_back({"Line", "square cap", line(12, 0, 2, true, kPlain, false, 0), kNoJoinOrCap});
    cases->push_back({"Line", "dashed", line(3, 0, 0, true, kPlain, true, 0), kNoDash});
    cases->push_back({"Line", "without antialias", line(3, 0, 0, false, kPlain, false, 0), kNoAntialias});
    cases->push_back({"Lines", "one segment", [](ZR_Device* device) {
                          ZR_Rect segments[] = {Rect(10, 10, 80, 60)};
                          ZR_RGBColor stroke = kStroke;
                          device->DrawLines(segments, 1, &stroke, 3, true, nullptr);
                      }});
    cases->push_back({"Lines", "three segments", [](ZR_Device* device) {
                          ZR_Rect segments[] = {Rect(10, 10, 80, 20), Rect(10, 30, 80, 35), Rect(10, 60, 80, 45)};
                          ZR_RGBColor stroke = kStroke;
                          device->DrawLines(segments, 3, &stroke, 3, true, nullptr);
                      }});
    cases->push_back({"Lines", "dashed",
                      [](ZR_Device* device) {
                          ZR_Rect segments[] = {Rect(10, 10, 80, 20), Rect(10, 60, 80, 45)};
                          ZR_RGBColor stroke = kStroke;
                          Dash dash;
                          device->DrawLines(segments, 2, &stroke, 3, true, &dash.value);
                      },
                      kNoDash});
}

void AddPaths(std::vector<Case>* cases) {
    struct Row {
        const char* name;
        const char* data;
        bool sharp = false;
    };
    static constexpr Row kRows[] = {
        {"lines", "M10 10L80 20L60 60L20 50Z"},
        {"open", "M10 10L80 20L60 60L20 50"},
        {"curves", "M10 36C30 0 60 80 86 36S60 0 48 20"},
        {"quadratic", "M10 60Q48 -20 86 60T60 40", true},
        {"steps", "M10 10h20v10h20v10h20v20H10z"},
        {"arcs of a circle", "M20 36A28 28 0 0 1 76 36A28 28 0 0 1 20 36Z"},
        {"arc, large and turned", "M30 50A30 16 30 1 0 66 30"},
        {"several parts", "M10 10h30v30h-30zM50 20h30v30h-30zm5 5h10v10h-10z"},
        {"relative", "m10 10l70 10l-20 40l-40 -10z"},
    };
    for (const Row& row : kRows)
        for (bool evenOdd : {false, true})
            cases->push_back({evenOdd ? "Path, even-odd" : "Path", row.name,
                              [=](ZR_Device* device) {
                                  Path path(row.data);
                                  ZR_Rect bounds;
                                  ZR_GetPathBoundingBox(&path.value, &bounds);
                                  ZR_Rect target = bounds;
                                  ZR_RGBColor fill = kFill, stroke = kStroke;
                                  device->DrawPath(false, &path.value, &target, &bounds, true, true, &fill, &stroke, 2,
                                                   true, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                   evenOdd ? ZR_FILL_EVENODD : ZR_FILL_NONZERO);
                              },
                              row.sharp ? kSharpCorner : nullptr});
    auto shaped = [](bool smooth, ZR_Rect target) {
        return [=](ZR_Device* device) {
            Path path("M14 50L34 20L54 50L80 20");
            ZR_Rect bounds, to = target;
            ZR_GetPathBoundingBox(&path.value, &bounds);
            if (to.right <= to.left) to = bounds;
            ZR_RGBColor fill = kFill, stroke = kStroke;
            device->DrawPath(smooth, &path.value, &to, &bounds, false, true, &fill, &stroke, 3, true, nullptr, nullptr,
                             nullptr, nullptr, nullptr, ZR_FILL_NONZERO);
        };
    };
    cases->push_back({"Path", "smoothed", shaped(true, {}), kPathTarget});
    cases->push_back({"Path", "into another rectangle", shaped(false, Rect(4, 4, 90, 68)), kPathTarget});
}

void AddRegions(std::vector<Case>* cases) {
    auto region = [](bool subtract, float alpha) {
        return [=](ZR_Device* device) {
            Region shape;
            ZR_Rect one = Rect(10, 10, 60, 40), two = Rect(60, 40, 86, 62), hole = Rect(20, 20, 40, 30);
            shape.value.AddRect(&one);
            shape.value.AddRect(&two);
            if (subtract) shape.value.Difference(&hole);
            ZR_RGBColor color = WithAlpha(kFill, alpha);
            device->FillRegion(&shape.value, &color);
        };
    };
    cases->push_back({"Region", "filled", region(false, 1)});
    cases->push_back({"Region", "filled, half transparent", region(false, 0.5F), kRegionAlpha});
    cases->push_back({"Region", "with a hole", region(true, 1), kRegionOutlines});
    cases->push_back({"Region", "framed",
                      [](ZR_Device* device) {
                          Region shape;
                          ZR_Rect one = Rect(10, 10, 60, 40);
                          shape.value.AddRect(&one);
                          ZR_RGBColor color = kStroke;
                          device->FrameRegion(&shape.value, &color, 3, nullptr);
                      },
                      kRegionFrame});
}

void AddOthers(std::vector<Case>* cases) {
    cases->push_back({"Cells", "backgrounds", [](ZR_Device* device) {
                          ZR_Rect rects[12];
                          ZR_RGBColor colors[12];
                          for (int i = 0; i < 12; i++) {
                              float x = float(i % 4) * 24, y = float(i / 4) * 24;
                              rects[i] = Rect(x, y, x + 24, y + 24);
                              colors[i] = Color(20 * i, 255 - 20 * i, 128, i % 3 ? 1.0F : 0.5F);
                          }
                          device->DrawRectsWithDifferentBackgroundColors(rects, colors, 12);
                      }});
    auto shadow = [](float x, float y, float radius) {
        return [=](ZR_Device* device) {
            ZR_Rect rect = Rect(20, 16, 70, 50);
            ZR_RGBColor fill = kFill;
            device->FillRectWithShadow(&rect, radius, &fill, x, y, 6, true);
        };
    };
    cases->push_back({"Shadow", "no offset", shadow(0, 4, 0)});
    cases->push_back({"Shadow", "no offset, rounded", shadow(4, 0, 12)});
    cases->push_back({"Shadow", "offset", shadow(4, 4, 0), kNoShadow});
    for (bool vertical : {false, true})
        cases->push_back({"Shading", vertical ? "vertical" : "horizontal",
                          [=](ZR_Device* device) {
                              ZR_Rect rect = kFrame;
                              ZR_RGBColor fill = kFill;
                              if (vertical) ZR_SHADING_AxialShadingVertical(device, &rect, &fill);
                              else ZR_SHADING_AxialShading(device, &rect, &fill);
                          },
                          kNoShading});
    cases->push_back({"Layer", "drawn twice",
                      [](ZR_Device* device) {
                          ZR_Device layer;
                          if (!layer.CreateOffscreen(40, 30, false, 0, 0)) return;
                          ZR_Rect oval = Rect(2, 2, 38, 28);
                          ZR_RGBColor fill = kFill, stroke = kStroke;
                          layer.DrawOval(&oval, true, true, &fill, &stroke, 2, true, nullptr, nullptr, nullptr,
                                         nullptr);
                          for (float at : {4.0F, 50.0F}) {
                              ZR_Rect rect = Rect(at, at / 2, at + 40, at / 2 + 30);
                              if (!device->svg) device->DrawLayer(&layer, &rect, nullptr);
                          }
                          layer.Dispose();
                      },
                      kNoLayer});
    cases->push_back({"Device", "transform",
                      [](ZR_Device* device) {
                          ZR_Matrix matrix = {0.5F, 0, 0, 0.5F, 30, 20};
                          device->SetTransform(&matrix);
                          DrawShape(device, Shape::Rect, {}, kFrame);
                      },
                      kNoTransform});
    cases->push_back({"Device", "clips one behind the other", [](ZR_Device* device) {
                          Paint paint;
                          for (float x : {10.0F, 40.0F, 10.0F}) {
                              paint.clip = Rect(x, 10, x + 20, 60);
                              paint.stroke = !paint.stroke;
                              DrawShape(device, Shape::Oval, paint, kFrame);
                          }
                      }});
}

// Text -------------------------------------------------------------------------------------------------------------

void AddText(std::vector<Case>* cases) {
    auto add = [&](const char* group, std::string name, Draw draw, const char* reason = nullptr) {
        cases->push_back({group, std::move(name), std::move(draw), reason, Kind::Text});
    };
    static constexpr struct {
        const char* name;
        short style;
    } kStyles[] = {{"plain", 0}, {"bold", 1}, {"italic", 2}, {"bold and italic", 3}, {"underlined", 4}};
    for (const auto& style : kStyles)
        for (float size : {9.0F, 14.0F, 24.0F})
            add("Text", std::string(style.name) + ", " + std::to_string(int(size)) + " points", [=](ZR_Device* device) {
                Font font(size, style.style);
                Text text("Hxg");
                ZR_RGBColor color = kStroke;
                device->DrawText(text, 10, 40, &font.value, &color, 0, true, nullptr, nullptr);
            });
    for (size_t m = 1; m < std::size(kMatrices); m++)
        add(
            "Text", kMatrices[m].name,
            [=](ZR_Device* device) {
                Paint paint;
                paint.matrix = m;
                Arguments a(paint);
                Font font(18, 0);
                Text text("Hxg");
                device->DrawText(text, 20, 40, &font.value, &a.strokeColor, 0, true, a.matrix, nullptr);
            },
            m == 2 || m == 3 ? kTextMatrix : nullptr);
    add(
        "Text", "between points",
        [](ZR_Device* device) {
            Font font(14.75F, 0);
            Text text("Hxgm");
            ZR_RGBColor color = kStroke;
            device->DrawText(text, 10.9F, 40.9F, &font.value, &color, 0, true, nullptr, nullptr);
        },
        kWholePointText);
    add(
        "Text", "rotated",
        [](ZR_Device* device) {
            Font font(14, 0);
            Text text("Hxgm");
            ZR_RGBColor color = kStroke;
            device->DrawText(text, 30, 40, &font.value, &color, 45, true, nullptr, nullptr);
        },
        kNoRotation);
    static constexpr struct {
        const char* name;
        int alignment;
    } kAlignments[] = {{"default", 1}, {"left", 2}, {"centred", 3}, {"right", 4}, {"justified", 5}};
    for (const auto& row : kAlignments) {
        add("Aligned text", row.name, [=](ZR_Device* device) {
            Font font(14, 0);
            Text text("Hxg");
            ZR_RGBColor color = kStroke;
            device->DrawTextAlignment(text, 10, 86, 40, &font.value, &color, static_cast<ZR_Alignment>(row.alignment),
                                      0, true, nullptr, nullptr);
        });
        for (int vertical : {1, 2, 3})
            add(
                "Text layout",
                std::string(row.name) + (vertical == 1   ? ", top"
                                         : vertical == 2 ? ", middle"
                                                         : ", bottom"),
                [=](ZR_Device* device) {
                    Font font(11, 0);
                    Text text("The quick brown fox jumps over");
                    ZR_RGBColor color = kStroke;
                    ZR_Rect rect = Rect(6, 4, 90, 68);
                    device->DrawTextLayout(text, &rect, static_cast<ZR_Alignment>(row.alignment),
                                           static_cast<ZR_Alignment_Vertical>(vertical), &font.value, &color, true,
                                           nullptr, nullptr, true, static_cast<ZR_Textmeasuring>(0), false, 0, 0, true);
                },
                vertical == 3        ? kBottomText
                : row.alignment == 5 ? kNotJustified
                                     : nullptr);
    }
}

// Pictures and styled text -----------------------------------------------------------------------------------------

struct Picture {
    ZR_Picture value;
    Picture() {  // 24 x 18 pixels
        value.Create();
        ZR_Device device;
        if (!device.CreateOffscreen(24, 18, true, 0, 0)) return;
        ZR_Rect all = Rect(0, 0, 24, 18), half = Rect(0, 0, 12, 9);
        ZR_RGBColor ground = Color(240, 220, 130), corner = kStroke;
        device.DrawRect(&all, true, false, &ground, &ground, 1, true, 0, false, nullptr, nullptr, nullptr, nullptr);
        device.DrawRect(&half, true, false, &corner, &corner, 1, true, 0, false, nullptr, nullptr, nullptr, nullptr);
        value.Create(&device, ZR_PICT_PNG);
        device.Dispose();
    }
    ~Picture() { value.Dispose(); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
};

void AddPictures(std::vector<Case>* cases) {
    auto add = [&](std::string name, short mode, ZR_Rect rect, float opacity, size_t matrix, const char* reason) {
        cases->push_back({"Picture", std::move(name),
                          [=](ZR_Device* device) {
                              Paint paint;
                              paint.matrix = matrix;
                              Arguments a(paint);
                              Picture picture;
                              picture.value.displayFormat = mode;
                              ZR_Rect into = rect;
                              picture.value.Draw(device, &into, opacity, a.matrix, ZR_ALIGNMENT_LEFT, nullptr);
                          },
                          reason});
    };
    const ZR_Rect natural = Rect(30, 20, 54, 38), wide = Rect(12, 10, 84, 64);
    for (short mode : {1, 2, 3, 5, 6})
        for (size_t m : {kPlain, size_t(1), size_t(2)})
            add("mode " + std::to_string(mode) + ", natural size" + (m ? std::string(", ") + kMatrices[m].name : ""),
                mode, natural, 100, m, nullptr);
    add("half transparent", 2, natural, 50, kPlain, nullptr);
    add("stretched", 2, wide, 100, kPlain, nullptr);
    add("scaled to fit at the left", 5, wide, 100, kPlain, nullptr);
    add("mode 1, in the middle", 1, wide, 100, kPlain, kPictureMode);
    add("mode 3, at the corner", 3, wide, 100, kPlain, kPictureMode);
    add("tiled", 7, wide, 100, kPlain, kTiling);
}

void AddStyledText(std::vector<Case>* cases) {
    static constexpr char kStyled[] =
        "plain <SPAN STYLE=\"font-weight:bold\">bold <SPAN STYLE=\"color:#B22222\">red</SPAN></SPAN> "
        "<SPAN STYLE=\"text-decoration:underline\">under</SPAN> "
        "<SPAN STYLE=\"background-color:#FFF078;text-decoration:line-through\">marked</SPAN>";
    for (int alignment : {2, 3, 4})
        cases->push_back({"Styled text",
                          alignment == 2   ? "left"
                          : alignment == 3 ? "centred"
                                           : "right",
                          [=](ZR_Device* device) {
                              Font font(11, 0);
                              Text styled(kStyled), plain("");
                              ZR_RGBColor color = Color(0, 0, 0);
                              ZR_MultiStyleText runs;
                              runs.CreateWith4DStyledText(styled, plain, &font.value, &color);
                              ZR_Rect rect = Rect(6, 4, 90, 68);
                              device->DrawMultiStyleText(plain, &runs, &rect, static_cast<ZR_Alignment>(alignment),
                                                         static_cast<ZR_Alignment_Vertical>(1), &font.value, &color,
                                                         true, nullptr, nullptr, true, static_cast<ZR_Textmeasuring>(0),
                                                         false, 0, 0, true);
                              runs.Dispose();
                          },
                          nullptr, Kind::Document});
}

}  // namespace

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    AddShapes(&cases);
    AddGradients(&cases);
    AddCorners(&cases);
    AddArcs(&cases);
    AddLines(&cases);
    AddPaths(&cases);
    AddRegions(&cases);
    AddOthers(&cases);
    AddText(&cases);
    AddPictures(&cases);
    AddStyledText(&cases);
    return cases;
}

std::vector<const char*> AllReasons() {
    return {kNoDash,
            kNoAntialias,
            kNoJoinOrCap,
            kNoShadow,
            kNoLayer,
            kNoTransform,
            kNoShading,
            kNoRotation,
            kWholePointClip,
            kWholePointText,
            kPathGradient,
            kPathTarget,
            kRegionAlpha,
            kRegionOutlines,
            kRegionFrame,
            kClipUnderMatrix,
            kSharpCorner,
            kSlantedPercent,
            kFullArc,
            kBottomText,
            kNotJustified,
            kTextMatrix,
            kRendererBox,
            kPictureMode,
            kTiling,
            kCornerLimit,
            kSingleStop,
            kGradientMatrix,
            kGradientUnderMatrix};
}

Scene RandomScene(unsigned seed) {
    std::mt19937 engine(seed);
    auto real = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(engine); };
    auto whole = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine); };
    Scene scene;
    const int count = whole(1, 12);
    bool clipped = false;
    for (int i = 0; i < count; i++) {
        Paint paint;
        paint.fill = whole(0, 2) > 0;
        paint.stroke = whole(0, 1) || !paint.fill;
        paint.fillAlpha = whole(0, 1) ? 1 : real(0.1F, 0.9F);
        paint.strokeAlpha = whole(0, 1) ? 1 : real(0.1F, 0.9F);
        paint.width = real(0.5F, 8);
        if (!clipped && whole(0, 2) == 0) paint.matrix = static_cast<size_t>(whole(1, int(std::size(kMatrices)) - 1));
        if (paint.matrix == kPlain && whole(0, 5) == 0) {
            clipped = true;  // for all that follows
            float left = float(whole(0, 40)), top = float(whole(0, 30));
            paint.clip = Rect(left, top, left + float(whole(10, 50)), top + float(whole(10, 40)));
        }
        const ShapeRow& row = kShapes[whole(0, int(std::size(kShapes)) - 1)];
        if (row.shape == Shape::EvenOdd && NarrowsCorners(paint.matrix)) paint.stroke = false, paint.fill = true;
        if (row.takesGradient && paint.matrix == kPlain && whole(0, 1)) paint.gradient = whole(0, 5);
        ZR_Rect frame = Rect(real(0, 50), real(0, 40), 0, 0);
        frame.right = frame.left + real(24, 60);
        frame.bottom = frame.top + real(20, 40);
        Shape shape = row.shape;
        scene.translucent += (paint.fill && paint.fillAlpha < 1) + (paint.stroke && paint.strokeAlpha < 1);
        scene.calls.emplace_back([=](ZR_Device* device) { DrawShape(device, shape, paint, frame); });
    }
    return scene;
}

}  // namespace agreement
