// Drawing: the device beside the drawing library that it stands on, in pixels and as SVG, and what an SVG document
// costs a node. Each pair draws the same shapes; the figure to look at is their ratio.
#include <benchmark/benchmark.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <cstring>
#include <numbers>

#include "bench/BenchSupport.h"
#include "core/ZR_API_Picture.h"
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Gradient.h"
#include "graphics/ZR_API_Path.h"
#include "graphics/ZR_API_SVGDocument.h"

namespace {

constexpr int kSide = 512, kShapes = 1000;
ZR_RGBColor gRed = {65535, 0, 0, 1}, gBlue = {0, 0, 65535, 1};

ZR_Rect Place(int i) {
    const float x = static_cast<float>(i * 37 % (kSide - 40)), y = static_cast<float>(i * 59 % (kSide - 30));
    return {y + 0.25f, x + 0.25f, x + 40.25f, y + 30.25f};
}

struct Device {
    explicit Device(bool svg) {
        zrbench::Executer();
        ZR_Rect bounds = {0, 0, kSide, kSide};
        if (svg) device.CreateSVG(&bounds);
        else device.CreateOffscreen(kSide, kSide, /*bitmap*/ true, 0, 0);
    }
    ~Device() { device.Dispose(); }
    ZR_Device* operator->() { return &device; }
    ZR_Device device;
};

size_t DocumentBytes(Device& d) {
    ZR_Handle bytes;
    bytes.Create(1, 0);
    d->GetSVGBLOB(&bytes);
    const size_t size = static_cast<size_t>(bytes.count);
    benchmark::DoNotOptimize(bytes.data);
    bytes.Dispose();
    return size;
}

struct Pixels {
    Pixels() : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSide, kSide)), c(cairo_create(surface)) {}
    ~Pixels() {
        cairo_destroy(c);
        cairo_surface_destroy(surface);
    }
    cairo_surface_t* surface;
    cairo_t* c;
};

// Shapes ---------------------------------------------------------------------------------------------------------

void OurRect(ZR_Device* d, int i) {
    ZR_Rect r = Place(i);
    d->DrawRect(&r, true, false, &gRed, nullptr, 1, true, 0, false, nullptr, nullptr, nullptr, nullptr);
}
void OurStroked(ZR_Device* d, int i) {
    ZR_Rect r = Place(i);
    d->DrawRect(&r, true, true, &gRed, &gBlue, 2, true, 0, false, nullptr, nullptr, nullptr, nullptr);
}
void OurOval(ZR_Device* d, int i) {
    ZR_Rect r = Place(i);
    d->DrawOval(&r, true, true, &gRed, &gBlue, 2, true, nullptr, nullptr, nullptr, nullptr);
}
void OurLine(ZR_Device* d, int i) {
    ZR_Rect r = Place(i);
    d->DrawLine(r.left, r.top, r.right, r.bottom, &gBlue, 2, true, 0, 0, nullptr, nullptr, nullptr);
}
ZR_Handle* Curve() {
    static ZR_Handle path = [] {
        zrbench::Text text("M0 0C20 60 30 -30 40 30C10 80 50 80 100 100L0 100Z");
        ZR_Handle made;
        ZR_CreatePathHandle(&made);
        long error = 0;
        ZR_CreateHandleFromPathText(text.get(), &made, &error);
        return made;
    }();
    return &path;
}
void OurPath(ZR_Device* d, int i) {
    ZR_Rect r = Place(i), bounds = {0, 0, 100, 100};
    d->DrawPath(false, Curve(), &r, &bounds, true, true, &gRed, &gBlue, 1, true, nullptr, nullptr, nullptr, nullptr,
                nullptr, ZR_FILL_NONZERO);
}

constexpr int kLong = 1000;  // records of a long path
ZR_Point LongPoint(int i) {
    return {static_cast<float>(i) * 500 / kLong, 256 + static_cast<float>(i * 37 % 200 - 100)};
}
ZR_Handle* LongLine() {
    static ZR_Handle path = [] {
        ZR_Handle made;
        ZR_CreatePathHandle(&made);
        ZR_AddPathMove(&made, 0, 256);
        for (int i = 1; i < kLong; i++) ZR_AddPathLine(&made, LongPoint(i).x, LongPoint(i).y);
        return made;
    }();
    return &path;
}
void OurLongPath(ZR_Device* d, int) {
    ZR_Rect bounds;
    ZR_GetPathBoundingBox(LongLine(), &bounds);
    ZR_Rect target = bounds;
    d->DrawPath(false, LongLine(), &target, &bounds, false, true, nullptr, &gBlue, 1, true, nullptr, nullptr, nullptr,
                nullptr, nullptr, ZR_FILL_NONZERO);
}
void OurGradient(ZR_Device* d, int i) {
    static ZR_Gradient gradient = [] {
        ZR_Gradient made;
        made.Create(ZR_GRADIENT_PERCENT);
        made.x2 = 100;
        made.AddOffset(0, &gRed);
        made.AddOffset(1, &gBlue);
        return made;
    }();
    ZR_Rect r = Place(i);
    d->DrawRect(&r, true, false, &gRed, nullptr, 1, true, 0, false, nullptr, &gradient, nullptr, nullptr);
}
void OurClipped(ZR_Device* d, int i) {  // a group of four shapes in a clip of its own
    ZR_Rect clip = Place(i);
    d->ClipRect(&clip);
    for (int k = 0; k < 4; k++) OurOval(d, i + k);
}
constexpr int kPicture = 64;  // pixels a side
void OurPicture(ZR_Device* d, int i) {
    static ZR_Picture picture = [] {
        ZR_Device source;
        ZR_Picture made;
        made.Create();
        if (!source.CreateOffscreen(kPicture, kPicture, true, 0, 0)) return made;
        ZR_Rect r = {10, 10, 50, 50};
        source.DrawOval(&r, true, false, &gRed, nullptr, 1, true, nullptr, nullptr, nullptr, nullptr);
        made.Create(&source, ZR_PICT_PNG);
        source.Dispose();
        return made;
    }();
    ZR_Rect r = Place(i);
    r.right = r.left + kPicture, r.bottom = r.top + kPicture;
    picture.displayFormat = 2;
    picture.Draw(d, &r, 100, nullptr, ZR_ALIGNMENT_LEFT, nullptr);
}

void Source(cairo_t* c, bool fill) { cairo_set_source_rgba(c, fill ? 1 : 0, 0, fill ? 0 : 1, 1); }
void TheirRectangle(cairo_t* c, const ZR_Rect& r) {
    cairo_rectangle(c, r.left, r.top, r.right - r.left, r.bottom - r.top);
}
void FillAndStroke(cairo_t* c, double width) {
    Source(c, true);
    cairo_fill_preserve(c);
    Source(c, false);
    cairo_set_line_width(c, width);
    cairo_stroke(c);
}
void TheirRect(cairo_t* c, int i) {
    Source(c, true);
    TheirRectangle(c, Place(i));
    cairo_fill(c);
}
void TheirStroked(cairo_t* c, int i) {
    TheirRectangle(c, Place(i));
    FillAndStroke(c, 2);
}
void TheirOval(cairo_t* c, int i) {
    const ZR_Rect r = Place(i);
    cairo_save(c);
    cairo_translate(c, (r.left + r.right) / 2, (r.top + r.bottom) / 2);
    cairo_scale(c, (r.right - r.left) / 2, (r.bottom - r.top) / 2);
    cairo_new_sub_path(c);
    cairo_arc(c, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_close_path(c);
    cairo_restore(c);
    FillAndStroke(c, 2);
}
void TheirLine(cairo_t* c, int i) {
    const ZR_Rect r = Place(i);
    Source(c, false);
    cairo_set_line_width(c, 2);
    cairo_move_to(c, r.left, r.top);
    cairo_line_to(c, r.right, r.bottom);
    cairo_stroke(c);
}
void TheirPath(cairo_t* c, int i) {
    const ZR_Rect r = Place(i);
    auto x = [&](double v) { return r.left + v * (r.right - r.left) / 100; };
    auto y = [&](double v) { return r.top + v * (r.bottom - r.top) / 100; };
    cairo_move_to(c, x(0), y(0));
    cairo_curve_to(c, x(20), y(60), x(30), y(-30), x(40), y(30));
    cairo_curve_to(c, x(10), y(80), x(50), y(80), x(100), y(100));
    cairo_line_to(c, x(0), y(100));
    cairo_close_path(c);
    FillAndStroke(c, 1);
}

void TheirLongPath(cairo_t* c, int) {
    cairo_move_to(c, 0, 256);
    for (int i = 1; i < kLong; i++) cairo_line_to(c, LongPoint(i).x, LongPoint(i).y);
    Source(c, false);
    cairo_set_line_width(c, 1);
    cairo_stroke(c);
}
void TheirGradient(cairo_t* c, int i) {
    const ZR_Rect r = Place(i);
    cairo_pattern_t* pattern = cairo_pattern_create_linear(r.left, r.top, r.right, r.top);
    cairo_pattern_add_color_stop_rgba(pattern, 0, 1, 0, 0, 1);
    cairo_pattern_add_color_stop_rgba(pattern, 1, 0, 0, 1, 1);
    cairo_set_source(c, pattern);
    TheirRectangle(c, r);
    cairo_fill(c);
    cairo_pattern_destroy(pattern);
}
void TheirClipped(cairo_t* c, int i) {
    cairo_save(c);
    TheirRectangle(c, Place(i));
    cairo_clip(c);
    for (int k = 0; k < 4; k++) TheirOval(c, i + k);
    cairo_restore(c);
}
void TheirPicture(cairo_t* c, int i) {
    static cairo_surface_t* picture = [] {
        cairo_surface_t* made = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kPicture, kPicture);
        cairo_t* on = cairo_create(made);
        Source(on, true);
        cairo_arc(on, 30, 30, 20, 0, 2 * std::numbers::pi);
        cairo_fill(on);
        cairo_destroy(on);
        return made;
    }();
    const ZR_Rect r = Place(i);
    cairo_set_source_surface(c, picture, r.left, r.top);
    cairo_paint(c);
}

// Pixels: a shape a round ----------------------------------------------------------------------------------------

template <void (*draw)(ZR_Device*, int)>
void Device_Pixels(benchmark::State& state) {
    Device d(/*svg*/ false);
    int i = 0;
    for (auto _ : state) draw(&d.device, i++ % kShapes);
    d->Flush();
}
template <void (*draw)(cairo_t*, int)>
void Library_Pixels(benchmark::State& state) {
    Pixels p;
    int i = 0;
    for (auto _ : state) draw(p.c, i++ % kShapes);
    cairo_surface_flush(p.surface);
}

// SVG: a document of a thousand shapes a round -------------------------------------------------------------------

template <void (*draw)(ZR_Device*, int)>
void Device_Svg(benchmark::State& state) {
    size_t bytes = 0;
    for (auto _ : state) {
        Device d(/*svg*/ true);
        for (int i = 0; i < kShapes; ++i) draw(&d.device, i);
        bytes = DocumentBytes(d);
    }
    state.counters["bytes"] = static_cast<double>(bytes) / kShapes;
    state.SetItemsProcessed(state.iterations() * kShapes);
}

cairo_status_t Count(void* size, const unsigned char*, unsigned n) {
    *static_cast<size_t*>(size) += n;
    return CAIRO_STATUS_SUCCESS;
}
template <void (*draw)(cairo_t*, int)>
void Library_Svg(benchmark::State& state) {
    size_t bytes = 0;
    for (auto _ : state) {
        bytes = 0;
        cairo_surface_t* surface = cairo_svg_surface_create_for_stream(Count, &bytes, kSide, kSide);
        cairo_t* c = cairo_create(surface);
        for (int i = 0; i < kShapes; ++i) draw(c, i);
        cairo_destroy(c);
        cairo_surface_destroy(surface);
    }
    state.counters["bytes"] = static_cast<double>(bytes) / kShapes;
    state.SetItemsProcessed(state.iterations() * kShapes);
}

#define BOTH(Kind, Shape)                 \
    BENCHMARK(Device_##Kind<Our##Shape>); \
    BENCHMARK(Library_##Kind<Their##Shape>)
BOTH(Pixels, Rect);
BOTH(Pixels, Stroked);
BOTH(Pixels, Oval);
BOTH(Pixels, Line);
BOTH(Pixels, Path);
BOTH(Pixels, LongPath);
BOTH(Pixels, Gradient);
BOTH(Pixels, Clipped);
BOTH(Pixels, Picture);
BOTH(Svg, Rect);
BOTH(Svg, Stroked);
BOTH(Svg, Oval);
BOTH(Svg, Line);
BOTH(Svg, Path);
BOTH(Svg, Gradient);
BOTH(Svg, Clipped);

// The document, call by call -------------------------------------------------------------------------------------

void Document_Element(benchmark::State& state) {
    Device d(/*svg*/ true);
    ZR_Text element;
    element.Create();
    for (auto _ : state) d->svg->CreateElement("rect", &element);
    element.Dispose();
}
BENCHMARK(Document_Element)->Iterations(200'000);

void Document_AttributeReal(benchmark::State& state) {
    Device d(/*svg*/ true);
    ZR_Text element;
    element.Create();
    double value = 0;
    for (auto _ : state) {
        if (static_cast<long>(value) % 8 == 0) d->svg->CreateElement("rect", &element);
        static constexpr const char* kNames[] = {"x", "y", "width", "height", "rx", "ry", "stroke-width", "opacity"};
        d->svg->SetAttributeDouble(&element, kNames[static_cast<long>(value) % 8], value + 0.25);
        value += 1;
    }
    element.Dispose();
}
BENCHMARK(Document_AttributeReal)->Iterations(400'000);

void Document_AttributeText(benchmark::State& state) {
    Device d(/*svg*/ true);
    ZR_Text element;
    element.Create();
    d->svg->CreateElement("rect", &element);
    for (auto _ : state) d->svg->SetAttributeText(&element, "fill", "#FF0000");
    element.Dispose();
}
BENCHMARK(Document_AttributeText);

}  // namespace
