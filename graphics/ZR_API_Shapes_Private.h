// What the drawing primitives share: how a shape is painted, and the one writer of each part of an SVG element and of
// the raster state. An SVG element is opened, given its geometry, painted and closed, in this order; raster drawing
// stands between PerformDrawMatrix and the restored state.
#ifndef ZR_API_SHAPES_PRIVATE_H
#define ZR_API_SHAPES_PRIVATE_H

#include <cmath>

#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Gradient.h"
#include "graphics/ZR_API_LineDash.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "platform/CoreGraphics/CoreGraphics.h"

struct ZR_ShapePaint {
    bool fill, stroke;  // both only with their colour; fill also without one if there is a gradient
    ZR_RGBColor *fillColor, *strokeColor;
    float width;
    bool antialias;
    ZR_Matrix* matrix;
    ZR_Gradient* gradient;  // null, or one whose bounds type is not 0
    ZR_Handle* properties;
    ZR_LineDash* dash;
};

inline float ZR_HeightOf(const ZR_Device* device) { return device->bounds.bottom - device->bounds.top; }

ZR_ShapePaint ZR_MakePaint(bool fill, bool stroke, ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width,
                           bool antialias, ZR_Matrix* matrix, ZR_Gradient* gradient, ZR_Handle* properties,
                           ZR_LineDash* dash);

// SVG --------------------------------------------------------------------------------------------------------------
ZR_Text ZR_OpenElement(ZR_Device* device, const char* name, ZR_Handle* properties);  // a child of the root; handed over
// Whether ZR_PaintFill writes "fill": then it takes the place of the "none" that would stand there before it.
inline bool ZR_WritesFill(const ZR_ShapePaint* paint) {
    return paint->fill && (!paint->gradient || paint->gradient->stops.count > 0);
}
void ZR_PaintFill(ZR_Device* device, ZR_Text* element, const ZR_ShapePaint* paint);  // gradient, else colour
void ZR_PaintStroke(ZR_Device* device, ZR_Text* element, const ZR_ShapePaint* paint);
void ZR_CloseElement(ZR_Device* device, ZR_Text* element, ZR_Matrix* matrix);  // transform and clip; disposes element

// Raster -----------------------------------------------------------------------------------------------------------
// What a context takes: it would keep the former width for what is none. 0 draws nothing.
inline float ZR_LineWidth(float width) { return std::isfinite(width) && width > 0 ? width : 0; }
void ZR_SetFillColor(ZR_Device* device, const ZR_RGBColor* color, float alpha);
void ZR_SetStrokeColor(ZR_Device* device, const ZR_RGBColor* color, float alpha);
void ZR_BeginRaster(ZR_Device* device, const ZR_ShapePaint* paint);  // dash, colours in use, antialias
void ZR_EndDash(ZR_Device* device, const ZR_LineDash* dash);         // off again, if it was set
// Fills the context's path with the gradient over the rectangle, and ends the path.
void ZR_FillWithGradient(ZR_Device* device, ZR_Gradient* gradient, ZR_Rect* rect);

#endif
