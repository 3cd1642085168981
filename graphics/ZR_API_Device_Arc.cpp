// The curves of an arc, as points that ZR_arc2polybezier gives, added to a path.
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Path.h"
#include "platform/CoreGraphics/CoreGraphics.h"

// Whole curves in 4, 7, 10 or 13 points; more are not taken.
static long Curves(const ZR_Point* points, long count) {
    if (!points || count < 4) return 0;
    return count == 13 ? 4 : count >= 10 ? 3 : count >= 7 ? 2 : 1;
}

void ZR_Device::AddCurvesAsArc(ZR_Handle* path, ZR_Point* points, long count) {
    const long curves = path ? Curves(points, count) : 0;
    if (curves > 0) ZR_AddPathMove(path, points[0].x, points[0].y);
    for (const ZR_Point* p = points; p && p < points + 3 * curves; p += 3)
        ZR_AddPathCurve(path, p[1].x, p[1].y, p[2].x, p[2].y, p[3].x, p[3].y);
}

void ZR_Device::AddCurvesAsArc(ZR_Point* points, long count) {
    const long curves = context ? Curves(points, count) : 0;
    if (curves < 1) return;
    CGContextBeginPath(context);
    CGContextMoveToPoint(context, points[0].x, points[0].y);
    for (const ZR_Point* p = points; p < points + 3 * curves; p += 3)
        CGContextAddCurveToPoint(context, p[1].x, p[1].y, p[2].x, p[2].y, p[3].x, p[3].y);
}
