#include "graphics/ZR_API_Shading.h"

#include <cmath>

#include "graphics/ZR_API_Device.h"
#include "platform/CoreGraphics/CoreGraphics.h"

static constexpr CGFloat kFullChannel = 65535;

void ZR_SHADING_Evaluate(void* info, const CGFloat* in, CGFloat* out) {
    auto color = static_cast<const ZR_RGBColor*>(info);
    out[0] = color->red / kFullChannel;
    out[1] = color->green / kFullChannel;
    out[2] = color->blue / kFullChannel;
    out[3] = 1 - in[0] / 2;
}

CGFunctionRef ZR_SHADING_CreateFunctionForRGB(ZR_ShadingCallback callback, ZR_RGBColor* color) {
    if (!callback || !color) return nullptr;
    const CGFloat r = color->red / kFullChannel, g = color->green / kFullChannel, b = color->blue / kFullChannel;
    const CGFloat domain[] = {0, 1}, range[] = {r, r, g, g, b, b, 0, 1};
    const CGFunctionCallbacks callbacks = {0, callback, nullptr};
    return CGFunctionCreate(color, 1, domain, 4, range, &callbacks);
}

static void DrawAxial(ZR_Device* device, CGPoint start, CGPoint end, ZR_RGBColor* color) {
    CGFunctionRef function = ZR_SHADING_CreateFunctionForRGB(ZR_SHADING_Evaluate, color);
    CGShadingRef shading = CGShadingCreateAxial(device->colorSpace, start, end, function, /*extendStart*/ false,
                                                /*extendEnd*/ false);
    CGContextDrawShading(device->context, shading);
    CGShadingRelease(shading);
    CGFunctionRelease(function);
}

static CGFloat WholeHeight(const ZR_Device* device) { return std::trunc(device->bounds.bottom - device->bounds.top); }

void ZR_SHADING_AxialShading(ZR_Device* device, ZR_Rect* rect, ZR_RGBColor* color) {
    if (!device || !device->context || !rect || !color) return;
    const CGFloat y = WholeHeight(device);
    DrawAxial(device, {rect->left, y}, {rect->right, y}, color);
}

void ZR_SHADING_AxialShadingVertical(ZR_Device* device, ZR_Rect* rect, ZR_RGBColor* color) {
    if (!device || !device->context || !rect || !color) return;
    const CGFloat y = WholeHeight(device);
    DrawAxial(device, {rect->left, y - rect->top}, {rect->left, y - rect->bottom}, color);
}
