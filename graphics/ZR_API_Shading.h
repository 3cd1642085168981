// Axial shadings of one colour, whose alpha falls from 1 to one half. Pixels only: a device that writes SVG takes none.
#ifndef ZR_API_SHADING_H
#define ZR_API_SHADING_H

#include "core/ZR_API_Color.h"
#include "core/ZR_API_Geometry.h"
#include "platform/CoreGraphics/CGTypes.h"

struct ZR_Device;

typedef void (*ZR_ShadingCallback)(void* info, const CGFloat* in, CGFloat* out);

void ZR_SHADING_Evaluate(void* info, const CGFloat* in, CGFloat* out);  // info: a ZR_RGBColor; in: 1 value, out: 4
// The function of a shading; color is borrowed until it is released. Handed over; null = refused.
CGFunctionRef ZR_SHADING_CreateFunctionForRGB(ZR_ShadingCallback callback, ZR_RGBColor* color);
// Over the whole clip between the rectangle's left and right. Required: at the device's height, whatever top says.
void ZR_SHADING_AxialShading(ZR_Device* device, ZR_Rect* rect, ZR_RGBColor* color);
void ZR_SHADING_AxialShadingVertical(ZR_Device* device, ZR_Rect* rect, ZR_RGBColor* color);  // from top to bottom

#endif
