#include "graphics/ZR_API_Gradient.h"

static ZR_GradientOffset* Stop(ZR_Handle* stops, long index) {
    return reinterpret_cast<ZR_GradientOffset*>(stops->GetMemPtr(index));
}

void ZR_GradientOffset::Create() { *this = {0, {0, 0, 0, 1}}; }

void ZR_Gradient::Create(Gradient_Bounds_Type bounds) {
    y1 = x1 = x2 = y2 = radius = 0;
    isLinear = true;
    boundsType = bounds;
    matrix.SetIdentity();
    stops.Create(sizeof(ZR_GradientOffset), 0);
}

void ZR_Gradient::Dispose() {
    y1 = x1 = x2 = y2 = 0;
    boundsType = ZR_GRADIENT_NONE;
    stops.Dispose();
}

void ZR_Gradient::AddOffset(float offset, const ZR_RGBColor* color) {
    ZR_GradientOffset stop;
    stop.Create();
    stop.offset = offset;
    if (color) stop.color = *color;
    if (char* added = stops.AppendGetPtr()) memcpy(added, &stop, sizeof stop);
}

void ZR_Gradient::SetOffsetColor(long index, const ZR_RGBColor* color) {
    ZR_GradientOffset* stop = Stop(&stops, index);
    if (stop && color) stop->color = *color;
}

void ZR_Gradient::SetOffsetColor(const ZR_RGBColor* color) {
    for (long i = 1; i <= stops.count; ++i) SetOffsetColor(i, color);
}

void ZR_Gradient::SetOffsetColorWithoutAlpha(const ZR_RGBColor* color) {
    for (long i = 1; color && i <= stops.count; ++i) {
        ZR_RGBColor& target = Stop(&stops, i)->color;
        target = {color->red, color->green, color->blue, target.alpha};
    }
}
