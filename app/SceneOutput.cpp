#include "app/SceneOutput.h"

#include "app/Interpreter.h"
#include "app/Messages.h"
#include "app/ScenePainter.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/SVG/SVGTextArea.h"
#include "platform/SharedObject.h"
#include "plugin/ZR_API_Plugin.h"

namespace zrtool {

// Host -------------------------------------------------------------------------------------------------------------

DrawingHost::DrawingHost() {
    zrhost::Options options;
    options.notServed = [](int, std::string_view) {};
    host_ = zrhost::Host::Start(std::move(options));
    if (!host_) throw Refusal{"the host does not start: one is active already"};
    ZR_StartupRecord record = host_->startupRecord();
    FourDPackex(-1, &record, nullptr, nullptr);
}

DrawingHost::~DrawingHost() { FourDPackex(-2, nullptr, nullptr, nullptr); }

// Why nothing came out.
[[noreturn]] static void RefuseOutput(const Scene& scene) {
    const ZRSharedObjectState* state = ZRSharedObjectGetState(kZRObjectGraphics);
    if (state && !state->available)
        throw Refusal{std::string(state->file) + " is missing, and with it " + state->purpose +
                      "; it needs the packages " + state->packages};
    throw Refusal{scene.name + ": not enough memory for the drawing"};
}

static ZR_Rect BoundsOf(const Scene& scene) {
    return {0, 0, static_cast<float>(scene.width), static_cast<float>(scene.height)};
}

// Devices ----------------------------------------------------------------------------------------------------------

// A device for as long as a scope lasts.
class Device {
  public:
    Device() { device_.Create(); }
    ~Device() {
        device_.DisposeCustomProperties();
        device_.customProperties.Create(sizeof(ZR_DeviceProperty), 0);
        device_.Dispose();
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ZR_Device* operator->() { return &device_; }
    ZR_Device* get() { return &device_; }

  private:
    ZR_Device device_;
};

static std::vector<std::string> Paint(const Scene& scene, ZR_Device* device, double pixelScale, bool plain) {
    ScenePainter painter(device, pixelScale, plain);
    painter.paint(scene);
    return painter.leftOut();
}

SceneDrawing DrawSvg(const Scene& scene, bool plain) {
    SceneDrawing drawing;
    ZR_Rect bounds = BoundsOf(scene);
    Device device;
    device->CreateSVG(&bounds);
    if (!device->svg) RefuseOutput(scene);
    if (!plain) {
        std::string box = "0 0 " + std::to_string(scene.width) + " " + std::to_string(scene.height);
        device->svg->SetAttributeText(&device->svg->root, "viewBox", box.c_str());
    }
    drawing.leftOut = Paint(scene, device.get(), 1, plain);
    Block xml;
    device->GetSVGBLOB(xml.get());
    drawing.bytes = xml.bytes();
    std::string lines;  // what shows SVG has no text areas
    if (!plain && ZRSVGReplaceTextAreas(drawing.bytes, &lines)) drawing.bytes = std::move(lines);
    if (drawing.bytes.empty()) RefuseOutput(scene);
    return drawing;
}

static double PixelsOf(long points, long dpi) { return static_cast<double>(points) * static_cast<double>(dpi) / 72; }

bool FitsBitmap(const Scene& scene, long dpi) {
    double width = PixelsOf(scene.width, dpi), height = PixelsOf(scene.height, dpi);
    return width >= 1 && height >= 1 && width <= kMostPixelsASide && height <= kMostPixelsASide &&
           width * height <= kMostPixels;
}

SceneDrawing DrawPng(const Scene& scene, long dpi) {
    SceneDrawing drawing;
    Device device;
    if (!device->CreateOffscreen(scene.width, scene.height, /*bitmap*/ true, dpi, dpi)) RefuseOutput(scene);
    drawing.leftOut = Paint(scene, device.get(), static_cast<double>(dpi) / 72, false);
    ZR_Picture picture;
    picture.Create(device.get(), ZR_PICT_PNG);
    drawing.bytes.assign(picture.nativeData.data ? picture.nativeData.data : "",
                         static_cast<size_t>(picture.nativeData.count));
    drawing.pixelWidth = picture.width;
    drawing.pixelHeight = picture.height;
    picture.Dispose();
    if (drawing.bytes.empty()) RefuseOutput(scene);
    return drawing;
}

// PDF --------------------------------------------------------------------------------------------------------------

ScenePdf::ScenePdf() : data_(CFDataCreateMutable(nullptr, 0)) {
    consumer_ = CGDataConsumerCreateWithCFData(data_);
    context_ = CGPDFContextCreate(consumer_, nullptr, nullptr);
}

ScenePdf::~ScenePdf() {
    CGContextRelease(context_);
    CGDataConsumerRelease(consumer_);
    CFRelease(data_);
}

void ScenePdf::addPage(const Scene& scene, std::vector<std::string>* leftOut) {
    if (!context_) RefuseOutput(scene);
    ZR_Rect bounds = BoundsOf(scene);
    CGRect box = bounds.GetCGRect();
    CGContextBeginPage(context_, &box);
    {
        Device device;
        device->CreateWithCGContext(context_, &bounds, 0, 0, /*gray*/ false);
        *leftOut = Paint(scene, device.get(), 1, false);
    }
    CGContextEndPage(context_);
}

std::string ScenePdf::finish() {
    if (context_) CGPDFContextClose(context_);
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data_)), static_cast<size_t>(CFDataGetLength(data_))};
}

}  // namespace zrtool
