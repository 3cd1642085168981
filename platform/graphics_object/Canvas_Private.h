// The canvas as the sources of this object see it. Every painting function ends in Finish, which keeps cairo's sticky
// errors from ending all drawing: the context is made anew and the recorded clips are laid on again.
#ifndef ZR_PLATFORM_CANVAS_PRIVATE_H
#define ZR_PLATFORM_CANVAS_PRIVATE_H

#include <cairo.h>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/graphics_object/GraphicsTable.h"

struct FreeSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct FreeCairo {
    void operator()(cairo_t* cr) const { cairo_destroy(cr); }
};
using Surface = std::unique_ptr<cairo_surface_t, FreeSurface>;
using Cairo = std::unique_ptr<cairo_t, FreeCairo>;

// A path of its own.
struct OwnPath {
    std::vector<uint8_t> verbs;
    std::vector<double> points;
    bool evenOdd;
};

struct ClipStep {
    OwnPath path;
    bool antialias;
};

// A layer's pixels at one scale, kept from the second equal drawing on.
struct LayerPicture {
    ZRGMatrix matrix = {};     // of the last drawing, tx and ty their fractions only
    unsigned long change = 0;  // of the layer, when it was drawn last
    Surface pixels;            // null = drawn once so far
};

enum class CanvasKind { bitmap, layer, pdf };

struct ZRGCanvas {
    CanvasKind kind;
    double width = 0, height = 0;
    std::vector<uint8_t> memory;  // of a bitmap, premultiplied B,G,R,A
    Surface surface;
    Cairo cr;                                         // null = nothing can be drawn; its matrix is the identity
    std::vector<std::vector<ClipStep>> levels{1};     // the clips of each saved level; the last is in force
    std::unordered_map<const void*, Surface> images;  // by owner, for canvases that look at pixels later
    unsigned long change = 1;                         // counts what was painted
    unsigned long weight = 0;                         // operations that a replay runs
    unsigned long ownWeight = 0;                      // of these, without those of layers
    LayerPicture picture;
    bool odd = false;          // a layer that holds operations out of the ordinary; see Paint
    ZRGWrite write = nullptr;  // of a PDF
    void* writeInfo = nullptr;
};

void AppendPath(cairo_t* cr, const ZRGPath* path);
ZRGPath ViewOf(const OwnPath& path);
// The path as the canvas can draw it when its ink or shadow stands out by reach; own holds it if it had to be made.
ZRGPath FitPath(const ZRGCanvas* canvas, const ZRGPath* path, double reach, bool dashed, OwnPath* own);
cairo_matrix_t CairoMatrix(const ZRGMatrix& m);
void Finish(ZRGCanvas* canvas, unsigned long weight);

// Whether a matrix comes near to what the drawing library cannot count with: large, small or flat.
bool IsOdd(const ZRGMatrix& m);
// Whether draw leaves a page of the canvas's size and clip without an error.
bool Survives(ZRGCanvas* canvas, const std::function<void(cairo_t*)>& draw);

// Paints what may be odd. An error would end a PDF and lose all of its pages: what is out of the ordinary is tried on a
// page of its own first, and left out if it fails. A layer keeps the oddity in mind until it is drawn on a page.
template <class Draw>
void Paint(ZRGCanvas* canvas, bool odd, Draw draw) {
    if (odd && canvas->kind == CanvasKind::pdf && !Survives(canvas, draw)) return;
    if (odd) canvas->odd = true;
    draw(canvas->cr.get());
}

// Casts the shadow of what draw paints within bounds: draw(cairo_t*) in opaque black times the alpha it has.
template <class Draw>
void CastShadow(ZRGCanvas* canvas, const ZRGShadow* shadow, const ZRGRect& bounds, Draw draw);

// The work of CastShadow around the drawing: a mask to draw on, then its blurred picture on the canvas.
struct ShadowMask {
    Surface surface;  // null = nothing to do
    int x = 0, y = 0;
};
ShadowMask BeginShadow(ZRGCanvas* canvas, const ZRGShadow& shadow, const ZRGRect& bounds);
void EndShadow(ZRGCanvas* canvas, const ZRGShadow& shadow, const ShadowMask& mask);

template <class Draw>
void CastShadow(ZRGCanvas* canvas, const ZRGShadow* shadow, const ZRGRect& bounds, Draw draw) {
    if (!shadow) return;
    ShadowMask mask = BeginShadow(canvas, *shadow, bounds);
    if (!mask.surface) return;
    draw(Cairo(cairo_create(mask.surface.get())).get());
    EndShadow(canvas, *shadow, mask);
}

// The tables of the other sources
void FillRegionFunctions(ZRGTable* table);
void FillCodecFunctions(ZRGTable* table);
void FillFontFunctions(ZRGTable* table);
void FillTextFunctions(ZRGTable* table);

#endif
