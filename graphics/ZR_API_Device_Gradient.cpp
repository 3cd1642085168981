// Gradients in pixels.
#include <cmath>
#include <new>

#include "graphics/ZR_API_Shapes_Private.h"

static constexpr long kMostStops = 4096;  // as the drawing library bounds them
static constexpr long kComponents = 4;
static constexpr float kFullChannel = 65535;

// Components [0..4n), then locations [0..n), in one block; caller deletes; null = no memory.
static CGFloat* StopsOf(const ZR_Handle* stops) {
    const long n = stops->count;
    auto block = new (std::nothrow) CGFloat[static_cast<size_t>(n * (kComponents + 1))];
    for (long i = 0; block && i < n; i++) {
        ZR_GradientOffset stop;
        memcpy(&stop, stops->GetMemPtr(i + 1), sizeof stop);
        CGFloat* component = block + i * kComponents;
        component[0] = stop.color.red / kFullChannel;
        component[1] = stop.color.green / kFullChannel;
        component[2] = stop.color.blue / kFullChannel;
        component[3] = stop.color.alpha;
        block[n * kComponents + i] = stop.offset;
    }
    return block;
}

static CGGradientRef CreateGradient(ZR_Device* device, const ZR_Handle* stops) {
    CGFloat* block = StopsOf(stops);
    if (!block) return nullptr;
    // Required: the components are red, green, blue and alpha in a gray space too.
    CGGradientRef made = CGGradientCreateWithColorComponents(
        device->colorSpace, block, block + stops->count * kComponents, static_cast<size_t>(stops->count));
    delete[] block;
    return made;
}

// From a gradient's coordinates to the context's, y up.
struct GradientSpace {
    bool percent;
    double height;  // of the device
    const ZR_Rect* rect;

    static double Part(double percent, double size, double origin) { return percent / 100 * size + origin; }
    CGPoint Point(float x, float y) const {
        if (!percent) return {x, height - y};
        return {Part(x, rect->right - rect->left, rect->left), height - Part(y, rect->bottom - rect->top, rect->top)};
    }
};

static void DrawLinear(ZR_Device* device, CGGradientRef gradient, const ZR_Gradient* g, const GradientSpace* space) {
    CGContextDrawLinearGradient(device->context, gradient, space->Point(g->x1, g->y1), space->Point(g->x2, g->y2),
                                kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation);
}

static void DrawRadial(ZR_Device* device, CGGradientRef gradient, const ZR_Gradient* g, const GradientSpace* space) {
    CGPoint center = space->Point(g->x1, g->y1);
    CGPoint focus = g->x2 != 0 || g->y2 != 0 ? space->Point(g->x2, g->y2) : center;
    double radius = g->radius;
    if (space->percent) {
        const double width = space->rect->right - space->rect->left, height = space->rect->bottom - space->rect->top;
        if (!(std::fabs(width) > 0 && std::fabs(height) > 0)) return;  // no area, no ratio of its sides
        const double ratio = width / height;
        radius = radius / 100 * height;
        CGContextScaleCTM(device->context, ratio, 1);  // Required: stays with the caller, who saved the state
        center.x /= ratio;
        focus.x /= ratio;
    }
    CGContextDrawRadialGradient(device->context, gradient, focus, /*startRadius*/ 0, center, radius,
                                kCGGradientDrawsAfterEndLocation);
}

void ZR_Device::DrawGradient(ZR_Gradient* g, ZR_Rect* rect) {
    if (!context || !g || !rect || g->boundsType == ZR_GRADIENT_NONE) return;
    if (g->stops.count < 2 || g->stops.count > kMostStops || g->stops.elementSize != sizeof(ZR_GradientOffset)) return;
    CGGradientRef gradient = CreateGradient(this, &g->stops);
    if (!gradient) return;
    const GradientSpace space = {g->boundsType == ZR_GRADIENT_PERCENT, ZR_HeightOf(this), rect};
    if (g->isLinear) DrawLinear(this, gradient, g, &space);
    else DrawRadial(this, gradient, g, &space);
    CGGradientRelease(gradient);
}
