// ZR_Gradient: the colours along a line or around a centre. Alive from Create to Dispose.
#ifndef ZR_API_GRADIENT_H
#define ZR_API_GRADIENT_H

#include "core/ZR_API_Color.h"
#include "graphics/ZR_API_Matrix.h"

enum Gradient_Bounds_Type : int {
    ZR_GRADIENT_NONE = 0,     // no gradient: the fill is ignored
    ZR_GRADIENT_USER = 1,     // absolute coordinates
    ZR_GRADIENT_PERCENT = 2,  // percent of the filled rectangle
};

struct ZR_GradientOffset {
    float offset;       // 0..1
    ZR_RGBColor color;  // alpha 1 after Create

    void Create();
};

struct ZR_Gradient {
    float y1, x1, x2, y2;  // linear: start and end, in the order of a ZR_Rect. Radial: centre, and focal point (x2,
                           // y2), where (0, 0) is none of its own
    float radius;          // radial only
    bool isLinear;         // true after Create
    Gradient_Bounds_Type boundsType;
    ZR_Matrix matrix;  // identity after Create
    ZR_Handle stops;   // of ZR_GradientOffset; owned

    void Create(Gradient_Bounds_Type bounds);
    void Dispose();
    void AddOffset(float offset, const ZR_RGBColor* color);
    void SetOffsetColor(long index, const ZR_RGBColor* color);  // [1..count]; outside = nothing
    void SetOffsetColor(const ZR_RGBColor* color);              // all stops, alpha too
    void SetOffsetColorWithoutAlpha(const ZR_RGBColor* color);  // all stops, each keeps its alpha
};

#endif
