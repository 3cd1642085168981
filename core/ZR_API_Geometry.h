// Points and rectangles; single precision, y down, origin at the top left.
#ifndef ZR_API_GEOMETRY_H
#define ZR_API_GEOMETRY_H

struct ZR_Point {
    float x, y;  // points
};

struct ZR_Rect {
    float top, left, right, bottom;  // points. Required: this order, wherever it is seen as four consecutive floats
};
static_assert(sizeof(ZR_Rect) == 16, "four floats");

#endif
