// What the tests of the drawing engine share: the module on the embedded host, an SVG device that is read as text, and
// a bitmap device whose pixels are read with y down, as the drawing calls count.
#ifndef ZR_TESTS_DRAWINGSUPPORT_H
#define ZR_TESTS_DRAWINGSUPPORT_H

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Gradient.h"
#include "graphics/ZR_API_LineDash.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_Path.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "host/Host.h"
#include "host/Memory.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "plugin/ZR_API_Plugin.h"

// A host and the module on it; what a test creates it disposes.
class DrawingTest : public testing::Test {
  protected:
    DrawingTest() {
        ZR_StartupRecord record = host->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
        ZR_GetMemoryInfo(&handles_, &bytes_);
        hostHandles_ = zrhost::LiveHandles();
    }
    ~DrawingTest() override {
        long handles, bytes;
        ZR_GetMemoryInfo(&handles, &bytes);
        EXPECT_EQ(handles, handles_);
        EXPECT_EQ(bytes, bytes_);
        EXPECT_EQ(zrhost::LiveHandles(), hostHandles_);
        FourDPackex(-2, nullptr, nullptr, nullptr);
    }
    std::unique_ptr<zrhost::Host> host = zrhost::Host::Start();

  private:
    long handles_ = 0, bytes_ = 0, hostHandles_ = 0;
};

struct TestText {
    explicit TestText(const char* utf8) {
        text.Create();
        text.AddUTF8String(utf8);
    }
    ~TestText() { text.Dispose(); }
    TestText(const TestText&) = delete;
    operator ZR_Text*() { return &text; }
    ZR_Text text;
};

inline ZR_RGBColor Color(int red, int green, int blue, float alpha = 1) {
    auto wide = [](int channel) { return static_cast<unsigned short>(channel * 257); };
    return {wide(red), wide(green), wide(blue), alpha};
}
inline ZR_Rect Rect(float left, float top, float right, float bottom) { return {top, left, right, bottom}; }

// A path from its text.
struct TestPath {
    explicit TestPath(const char* data) {
        ZR_CreatePathHandle(&path);
        TestText text(data);
        long error = 0;
        ZR_CreateHandleFromPathText(text, &path, &error);
        EXPECT_EQ(error, 0) << data;
    }
    ~TestPath() { path.Dispose(); }
    TestPath(const TestPath&) = delete;
    operator ZR_Handle*() { return &path; }
    ZR_Handle path;
};

// Attributes for SVG elements.
struct TestProperties {
    TestProperties(std::initializer_list<std::pair<const char*, const char*>> pairs) {
        handle.Create(sizeof(ZR_DeviceProperty), 0);
        for (const auto& [name, value] : pairs) Add(&handle, name, value);
    }
    ~TestProperties() {
        for (long i = 1; i <= handle.count; ++i) {
            auto record = reinterpret_cast<ZR_DeviceProperty*>(handle.GetMemPtr(i));
            record->name.Dispose();
            record->value.Dispose();
        }
        handle.Dispose();
    }
    TestProperties(const TestProperties&) = delete;
    static void Add(ZR_Handle* to, const char* name, const char* value) {
        auto record = reinterpret_cast<ZR_DeviceProperty*>(to->AppendGetPtr());
        record->name.Create();
        record->value.Create();
        record->name.AddString(name);
        record->value.AddString(value);
    }
    operator ZR_Handle*() { return &handle; }
    ZR_Handle handle;
};

struct TestGradient {
    explicit TestGradient(Gradient_Bounds_Type bounds, bool linear = true) {
        gradient.Create(bounds);
        gradient.isLinear = linear;
    }
    ~TestGradient() { gradient.Dispose(); }
    TestGradient(const TestGradient&) = delete;
    TestGradient& Stop(float offset, ZR_RGBColor color) {
        gradient.AddOffset(offset, &color);
        return *this;
    }
    TestGradient& From(float x1, float y1, float x2, float y2, float radius = 0) {
        gradient.x1 = x1;
        gradient.y1 = y1;
        gradient.x2 = x2;
        gradient.y2 = y2;
        gradient.radius = radius;
        return *this;
    }
    operator ZR_Gradient*() { return &gradient; }
    ZR_Gradient gradient;
};

struct TestDash {
    TestDash(float phase, float on, float off) { dash.Create(phase, on, off); }
    ~TestDash() { dash.Dispose(); }
    TestDash(const TestDash&) = delete;
    operator ZR_LineDash*() { return &dash; }
    ZR_LineDash dash;
};

// An SVG device. Text is the whole document; Body is what stands in the root, with ' for ", and starts with defs.
struct SvgCanvas {
    SvgCanvas(float width = 200, float height = 100) {
        ZR_Rect bounds = Rect(0, 0, width, height);
        device.CreateSVG(&bounds);
    }
    ~SvgCanvas() {
        device.DisposeCustomProperties();
        device.Dispose();
    }
    SvgCanvas(const SvgCanvas&) = delete;
    std::string Text() {
        ZR_Handle bytes;
        bytes.Create(1, 0);
        device.GetSVGBLOB(&bytes);
        std::string text(bytes.data ? bytes.data : "", static_cast<size_t>(bytes.count));
        bytes.Dispose();
        return text;
    }
    std::string Body() {
        std::string text = Text();
        const size_t from = text.find("<defs"), to = text.rfind("</svg>");
        if (from == text.npos || to == text.npos) return "no body: " + text;
        text = text.substr(from, to - from);
        for (char& c : text)
            if (c == '"') c = '\'';
        return text;
    }
    std::string Drawn() {  // Body without an empty defs
        const std::string body = Body();
        return body.starts_with("<defs/>") ? body.substr(7) : body;
    }
    ZR_Device* operator->() { return &device; }
    ZR_Device device;
};

struct Dot {
    int r, g, b, a;  // premultiplied
    bool operator==(const Dot&) const = default;
};
inline void PrintTo(const Dot& p, std::ostream* out) {
    *out << '(' << p.r << ' ' << p.g << ' ' << p.b << ' ' << p.a << ')';
}
inline constexpr Dot kClearDot = {0, 0, 0, 0}, kBlackDot = {0, 0, 0, 255}, kRedDot = {255, 0, 0, 255},
                     kGreenDot = {0, 255, 0, 255}, kBlueDot = {0, 0, 255, 255};

// A bitmap device, one pixel a point unless dpi says otherwise.
struct BitmapCanvas {
    explicit BitmapCanvas(long w = 40, long h = 40, long dpi = 0) : width(dpi ? w * dpi / 72 : w) {
        EXPECT_TRUE(device.CreateOffscreen(w, h, /*bitmap*/ true, dpi, dpi));
        height = dpi ? h * dpi / 72 : h;
    }
    ~BitmapCanvas() { device.Dispose(); }
    BitmapCanvas(const BitmapCanvas&) = delete;
    Dot At(long x, long y) {  // y down
        device.Flush();
        if (x < 0 || y < 0 || x >= width || y >= height || !device.bitmapData) return {-1, -1, -1, -1};
        const unsigned char* p = device.bitmapData + (y * width + x) * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    long Count(int alpha = 127) {  // pixels with more
        device.Flush();
        long n = 0;
        for (long i = 0; i < width * height; ++i) n += device.bitmapData[i * 4 + 3] > alpha;
        return n;
    }
    std::string Pixels() {
        device.Flush();
        return {reinterpret_cast<char*>(device.bitmapData), static_cast<size_t>(width * height * 4)};
    }
    ZR_Device* operator->() { return &device; }
    ZR_Device device;
    long width = 0, height = 0;
};

inline bool NearDot(const Dot& p, const Dot& q, int tolerance) {
    return std::abs(p.r - q.r) <= tolerance && std::abs(p.g - q.g) <= tolerance && std::abs(p.b - q.b) <= tolerance &&
           std::abs(p.a - q.a) <= tolerance;
}
#define EXPECT_NEAR_DOT(p, q, tolerance) EXPECT_PRED3(NearDot, p, q, tolerance)

#endif
