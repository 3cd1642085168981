// Points and rectangles where they are drawn: with the frameworks' rectangle, and the functions beside the members.
#ifndef ZR_API_GEOMETRY_H
#define ZR_API_GEOMETRY_H

#include "core/ZR_API_Geometry.h"
#include "platform/CoreGraphics/CGGeometry.h"

void ZR_CutBounds(ZR_Rect* r, const ZR_Rect* limit);               // r becomes the intersection; all 0 = nothing left
void ZR_GetRectFrom2Points(ZR_Point a, ZR_Point b, ZR_Rect* out);  // the points in any order

// Towards zero; beyond 64 bits the nearest end, what is no number 0.
long ZR_TruncatedToLong(double value);

#endif
