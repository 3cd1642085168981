// Points and rectangles; single precision, y down, origin at the top left.
// The bodies stand in graphics/ZR_API_Geometry.cpp, so that a record can hold a rectangle without pulling in drawing.
#ifndef ZR_API_CORE_GEOMETRY_H
#define ZR_API_CORE_GEOMETRY_H

#include "plugin/ZR_HostInterface.h"

struct CGRect;
typedef struct CGRect HIRect;

struct ZR_Point {
    float x, y;  // points
};

struct ZR_Rect {
    float top, left, right, bottom;  // points. Required: this order, wherever it is seen as four consecutive floats

    bool IsOverlapped(const ZR_Rect* other) const;  // rectangles that only touch do not overlap; null = false
    void ExpandRect(ZR_Point p);                    // grows to take in the point
    void ExpandRect(float x, float y);

    // Other rectangles
    PA_Rect GetPARect() const;                        // truncated, the low 16 bits
    HIRect GetHIRect() const;                         // x = left, y = top: not flipped
    CGRect GetCGRect() const;                         // the same
    void SetCGRect(CGRect rect);                      // not flipped
    void SetCGRect(CGRect rect, long height);         // flipped against the whole height
    void SetCGRect(const CGRect* rect, long height);  // null = nothing
};
static_assert(sizeof(ZR_Rect) == 16, "four floats");

#endif
