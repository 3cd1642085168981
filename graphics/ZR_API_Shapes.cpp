// The writers that the drawing primitives share.
#include "graphics/ZR_API_Shapes_Private.h"

static constexpr double kFullChannel = 65535;

ZR_ShapePaint ZR_MakePaint(bool fill, bool stroke, ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width,
                           bool antialias, ZR_Matrix* matrix, ZR_Gradient* gradient, ZR_Handle* properties,
                           ZR_LineDash* dash) {
    if (gradient && gradient->boundsType == ZR_GRADIENT_NONE) gradient = nullptr;
    return {fill && (fillColor || gradient),
            stroke && strokeColor,
            fillColor,
            strokeColor,
            width,
            antialias,
            matrix,
            gradient,
            properties,
            dash};
}

// SVG --------------------------------------------------------------------------------------------------------------

ZR_Text ZR_OpenElement(ZR_Device* device, const char* name, ZR_Handle* properties) {
    ZR_Text element;
    element.Create();
    device->svg->CreateElement(name, &element);
    device->SetCustomProperties(&element, properties);
    device->SetCustomProperties(&element, &device->customProperties);
    return element;
}

void ZR_PaintFill(ZR_Device* device, ZR_Text* element, const ZR_ShapePaint* paint) {
    if (!paint->fill) return;
    if (paint->gradient) device->svg->SetGradient(element, paint->gradient);
    else device->svg->SetColor(element, paint->fillColor, "fill", "fill-opacity");
}

void ZR_PaintStroke(ZR_Device* device, ZR_Text* element, const ZR_ShapePaint* paint) {
    if (!paint->stroke) return;
    device->svg->SetColor(element, paint->strokeColor, "stroke", "stroke-opacity");
    device->svg->SetAttributeDouble(element, "stroke-width", paint->width);
}

void ZR_CloseElement(ZR_Device* device, ZR_Text* element, ZR_Matrix* matrix) {
    device->svg->SetMatrix(element, matrix, "transform");
    device->svg->Clip(element);
    element->Dispose();
}

// Raster -----------------------------------------------------------------------------------------------------------

void ZR_SetFillColor(ZR_Device* device, const ZR_RGBColor* color, float alpha) {
    CGContextSetRGBFillColor(device->context, color->red / kFullChannel, color->green / kFullChannel,
                             color->blue / kFullChannel, alpha);
}

void ZR_SetStrokeColor(ZR_Device* device, const ZR_RGBColor* color, float alpha) {
    CGContextSetRGBStrokeColor(device->context, color->red / kFullChannel, color->green / kFullChannel,
                               color->blue / kFullChannel, alpha);
}

void ZR_BeginRaster(ZR_Device* device, const ZR_ShapePaint* paint) {
    device->SetLineDash(paint->dash);
    if (paint->fill && paint->fillColor) ZR_SetFillColor(device, paint->fillColor, paint->fillColor->alpha);
    if (paint->stroke) ZR_SetStrokeColor(device, paint->strokeColor, paint->strokeColor->alpha);
    device->SetAntialias(paint->antialias);
}

void ZR_EndDash(ZR_Device* device, const ZR_LineDash* dash) {
    if (dash && dash->count > 0) CGContextSetLineDash(device->context, 0, nullptr, 0);
}

void ZR_FillWithGradient(ZR_Device* device, ZR_Gradient* gradient, ZR_Rect* rect) {
    if (CGContextIsPathEmpty(device->context)) return;  // it would clip nothing away
    CGContextSaveGState(device->context);
    CGContextClip(device->context);
    if (!gradient->matrix.IsIdentity()) CGContextConcatCTM(device->context, device->GetSystemMatrix(&gradient->matrix));
    device->DrawGradient(gradient, rect);
    CGContextRestoreGState(device->context);
}
