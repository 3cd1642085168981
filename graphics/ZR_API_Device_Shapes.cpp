// Shapes: each primitive's SVG body, its raster body, and the member that chooses.
#include <algorithm>
#include <cmath>

#include "graphics/ZR_API_Path.h"
#include "graphics/ZR_API_Region.h"
#include "graphics/ZR_API_Shapes_Private.h"
#include "platform/HIShape/HIShape.h"

// Lines ------------------------------------------------------------------------------------------------------------

struct Line {
    float x1, y1, x2, y2;
    short join, cap;
};

static void LineSvg(ZR_Device* device, const Line* line, const ZR_ShapePaint* paint) {
    ZR_Text element = ZR_OpenElement(device, "line", paint->properties);
    device->svg->SetAttributeDouble(&element, "x1", line->x1);
    device->svg->SetAttributeDouble(&element, "y1", line->y1);
    device->svg->SetAttributeDouble(&element, "x2", line->x2);
    device->svg->SetAttributeDouble(&element, "y2", line->y2);
    device->svg->SetAttributeDouble(&element, "stroke-width", paint->width);
    device->svg->SetColor(&element, paint->strokeColor, "stroke", "stroke-opacity");
    ZR_CloseElement(device, &element, paint->matrix);
}

// From the lower left corner of the rectangle to the upper right one, which stands for any slope: its sides have signs.
static void LineRaster(ZR_Device* device, const Line* line, const ZR_ShapePaint* paint) {
    CGContextRef context = device->context;
    ZR_Rect rect = {line->y2, line->x1, line->x2, line->y1};
    CGRect r;
    const bool underMatrix = device->PerformDrawMatrix(&rect, paint->matrix, &r);
    if (underMatrix) device->PrepareMatrixDrawing(&r);
    ZR_BeginRaster(device, paint);
    CGContextSetLineWidth(context, ZR_LineWidth(paint->width));
    if (line->join > 0) CGContextSetLineJoin(context, static_cast<CGLineJoin>(line->join));
    if (line->cap > 0) CGContextSetLineCap(context, static_cast<CGLineCap>(line->cap));
    CGContextBeginPath(context);
    CGContextMoveToPoint(context, r.origin.x, r.origin.y);
    CGContextAddLineToPoint(context, r.origin.x + r.size.width, r.origin.y + r.size.height);
    CGContextDrawPath(context, kCGPathStroke);
    ZR_EndDash(device, paint->dash);
    if (line->join > 0) CGContextSetLineJoin(context, kCGLineJoinMiter);
    if (line->cap > 0) CGContextSetLineCap(context, kCGLineCapButt);
    if (underMatrix) CGContextRestoreGState(context);
}

void ZR_Device::DrawLine(float x1, float y1, float x2, float y2, ZR_RGBColor* color, float width, bool antialias,
                         short join, short cap, ZR_Matrix* matrix, ZR_Handle* properties, ZR_LineDash* dash) {
    if (!color) return;
    const Line line = {x1, y1, x2, y2, join, cap};
    const ZR_ShapePaint paint = ZR_MakePaint(/*fill*/ false, /*stroke*/ true, nullptr, color, width, antialias, matrix,
                                             /*gradient*/ nullptr, properties, dash);
    if (svg) LineSvg(this, &line, &paint);
    else LineRaster(this, &line, &paint);
}

static void LinesRaster(ZR_Device* device, const ZR_Rect* segments, long count, const ZR_ShapePaint* paint) {
    CGContextRef context = device->context;
    const float height = ZR_HeightOf(device);
    ZR_BeginRaster(device, paint);
    CGContextSetLineWidth(context, ZR_LineWidth(paint->width));
    CGContextBeginPath(context);
    for (long i = 0; i < count; i++) {
        CGContextMoveToPoint(context, segments[i].left, height - segments[i].top);
        CGContextAddLineToPoint(context, segments[i].right, height - segments[i].bottom);
    }
    CGContextClosePath(context);  // Required: of the last segment alone
    CGContextDrawPath(context, kCGPathStroke);
    ZR_EndDash(device, paint->dash);
}

void ZR_Device::DrawLines(ZR_Rect* segments, long count, ZR_RGBColor* color, float width, bool antialias,
                          ZR_LineDash* dash) {
    if (!segments || !color || count < 1) return;
    if (svg) {
        for (long i = 0; i < count; i++)
            DrawLine(segments[i].left, segments[i].top, segments[i].right, segments[i].bottom, color, width, antialias,
                     /*join*/ 0, /*cap*/ 0, /*matrix*/ nullptr, /*properties*/ nullptr, dash);
        return;
    }
    const ZR_ShapePaint paint = ZR_MakePaint(/*fill*/ false, /*stroke*/ true, nullptr, color, width, antialias,
                                             /*matrix*/ nullptr, /*gradient*/ nullptr, /*properties*/ nullptr, dash);
    LinesRaster(this, segments, count, &paint);
}

// Rectangles -------------------------------------------------------------------------------------------------------

static void RectSvg(ZR_Device* device, const ZR_Rect* rect, float radius, bool rounded, const ZR_ShapePaint* paint) {
    ZR_Text element = ZR_OpenElement(device, "rect", paint->properties);
    device->svg->SetAttributeDouble(&element, "x", rect->left);
    device->svg->SetAttributeDouble(&element, "y", rect->top);
    device->svg->SetAttributeDouble(&element, "width", rect->right - rect->left);
    device->svg->SetAttributeDouble(&element, "height", rect->bottom - rect->top);
    const bool hasCorners = rounded && radius > 0;
    if (hasCorners || !ZR_WritesFill(paint)) device->svg->SetAttributeText(&element, "fill", "none");
    if (hasCorners) {
        device->svg->SetAttributeDouble(&element, "rx", radius * 0.5);
        device->svg->SetAttributeDouble(&element, "ry", radius * 0.5);
    }
    ZR_PaintFill(device, &element, paint);
    ZR_PaintStroke(device, &element, paint);
    ZR_CloseElement(device, &element, paint->matrix);
}

static void PlainRect(CGContextRef context, CGRect r, const ZR_ShapePaint* paint, bool fill) {
    if (fill) CGContextFillRect(context, r);
    if (paint->stroke) CGContextStrokeRectWithWidth(context, r, paint->width);
}

static void RoundedRect(ZR_Device* device, CGRect r, float radius, const ZR_ShapePaint* paint, bool fill) {
    if (!fill && !paint->stroke) return;
    device->RoundRectToPath(r, radius);
    if (paint->stroke) CGContextSetLineWidth(device->context, ZR_LineWidth(paint->width));
    CGContextDrawPath(device->context, fill && paint->stroke ? kCGPathFillStroke : fill ? kCGPathFill : kCGPathStroke);
}

static void RectRaster(ZR_Device* device, ZR_Rect* rect, float radius, bool rounded, const ZR_ShapePaint* paint) {
    CGContextRef context = device->context;
    CGRect r;
    const bool underMatrix = device->PerformDrawMatrix(rect, paint->matrix, &r);
    bool fill = paint->fill;
    if (fill && paint->gradient) {
        // Required: under a matrix the context runs y down here, and the gradient is mirrored in it.
        CGContextBeginPath(context);
        if (rounded) device->RoundRectToPath(r, radius);
        else CGContextAddRect(context, r);
        ZR_FillWithGradient(device, paint->gradient, rect);
        fill = false;
    }
    ZR_BeginRaster(device, paint);
    if (rounded) RoundedRect(device, r, radius, paint, fill);
    else PlainRect(context, r, paint, fill);
    ZR_EndDash(device, paint->dash);
    if (underMatrix) CGContextRestoreGState(context);
}

void ZR_Device::DrawRect(ZR_Rect* rect, bool fill, bool stroke, ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor,
                         float width, bool antialias, float radius, bool rounded, ZR_Matrix* matrix,
                         ZR_Gradient* gradient, ZR_Handle* properties, ZR_LineDash* dash) {
    if (!rect) return;
    const ZR_ShapePaint paint =
        ZR_MakePaint(fill, stroke, fillColor, strokeColor, width, antialias, matrix, gradient, properties, dash);
    // Differs: SVG leaves it to the reader to cut the radius to the sides.
    if (svg) RectSvg(this, rect, radius, rounded, &paint);
    else RectRaster(this, rect, radius, rounded, &paint);
}

void ZR_Device::RoundRectToPath(CGRect rect, float radius) {
    const CGRect r = CGRectStandardize(rect);
    // A negative radius, or one that is no number, rounds nothing.
    const double corner = radius > 0 ? std::min({radius / 2.0, CGRectGetHeight(r) / 2, CGRectGetWidth(r) / 2}) : 0;
    const double minX = CGRectGetMinX(r), midX = CGRectGetMidX(r), maxX = CGRectGetMaxX(r);
    const double minY = CGRectGetMinY(r), midY = CGRectGetMidY(r), maxY = CGRectGetMaxY(r);
    CGContextBeginPath(context);
    CGContextMoveToPoint(context, maxX, midY);
    CGContextAddArcToPoint(context, maxX, maxY, midX, maxY, corner);
    CGContextAddArcToPoint(context, minX, maxY, minX, midY, corner);
    CGContextAddArcToPoint(context, minX, minY, midX, minY, corner);
    CGContextAddArcToPoint(context, maxX, minY, maxX, midY, corner);
    CGContextClosePath(context);
}

void ZR_Device::RoundRectToPath(ZR_Rect* rect, float radius) {
    if (rect) RoundRectToPath(GetCGRect(rect), radius);
}

static void RectsSvg(ZR_Device* device, ZR_Rect* rects, ZR_RGBColor* colors, long count) {
    for (long i = 0; i < count; i++)
        device->DrawRect(&rects[i], /*fill*/ true, /*stroke*/ false, &colors[i], nullptr, /*width*/ 1,
                         /*antialias*/ false, /*radius*/ 0, /*rounded*/ false, nullptr, nullptr, nullptr, nullptr);
}

static bool SameColor(const ZR_RGBColor* a, const ZR_RGBColor* b) {
    return a->red == b->red && a->green == b->green && a->blue == b->blue && a->alpha == b->alpha;
}

static void RectsRaster(ZR_Device* device, ZR_Rect* rects, const ZR_RGBColor* colors, long count) {
    device->SetAntialias(false);  // Required: it stays off
    for (long i = 0; i < count; i++) {
        if (i == 0 || !SameColor(&colors[i], &colors[i - 1])) ZR_SetFillColor(device, &colors[i], colors[i].alpha);
        CGContextFillRect(device->context, device->GetCGRect(&rects[i]));
    }
}

void ZR_Device::DrawRectsWithDifferentBackgroundColors(ZR_Rect* rects, ZR_RGBColor* colors, long count) {
    if (!rects || !colors || count < 1) return;
    if (svg) RectsSvg(this, rects, colors, count);
    else RectsRaster(this, rects, colors, count);
}

void ZR_Device::FillRectWithShadow(ZR_Rect* rect, float radius, ZR_RGBColor* color, float offsetX, float offsetY,
                                   long blur, bool antialias) {
    const bool shadow = offsetX > 0 && offsetY > 0;
    // Required: the offset is not flipped, a positive one goes up.
    if (shadow) CGContextSetShadow(context, {offsetX, offsetY}, static_cast<CGFloat>(blur));
    DrawRect(rect, /*fill*/ true, /*stroke*/ false, color, nullptr, /*width*/ 1, antialias, radius, radius > 0, nullptr,
             nullptr, nullptr, nullptr);
    if (shadow) CGContextSetShadow(context, CGSizeZero, 0);
}

// Ovals ------------------------------------------------------------------------------------------------------------

static void OvalSvg(ZR_Device* device, const ZR_Rect* rect, const ZR_ShapePaint* paint) {
    ZR_Text element = ZR_OpenElement(device, "ellipse", paint->properties);
    device->svg->SetAttributeDouble(&element, "cx", (rect->left + rect->right) / 2);
    device->svg->SetAttributeDouble(&element, "cy", (rect->top + rect->bottom) / 2);
    device->svg->SetAttributeDouble(&element, "rx", (rect->right - rect->left) / 2);
    device->svg->SetAttributeDouble(&element, "ry", (rect->bottom - rect->top) / 2);
    if (!ZR_WritesFill(paint)) device->svg->SetAttributeText(&element, "fill", "none");
    ZR_PaintFill(device, &element, paint);
    ZR_PaintStroke(device, &element, paint);
    ZR_CloseElement(device, &element, paint->matrix);
}

static void OvalRaster(ZR_Device* device, ZR_Rect* rect, const ZR_ShapePaint* paint) {
    CGContextRef context = device->context;
    CGRect r;
    const bool underMatrix = device->PerformDrawMatrix(rect, paint->matrix, &r);
    bool fill = paint->fill;
    if (fill && paint->gradient) {
        CGContextBeginPath(context);
        CGContextAddEllipseInRect(context, r);
        ZR_FillWithGradient(device, paint->gradient, rect);
        fill = false;
    }
    ZR_BeginRaster(device, paint);
    if (fill) CGContextFillEllipseInRect(context, r);
    if (paint->stroke) {
        CGContextSetLineWidth(context, ZR_LineWidth(paint->width));
        CGContextStrokeEllipseInRect(context, r);
    }
    ZR_EndDash(device, paint->dash);
    if (underMatrix) CGContextRestoreGState(context);
}

void ZR_Device::DrawOval(ZR_Rect* rect, bool fill, bool stroke, ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor,
                         float width, bool antialias, ZR_Matrix* matrix, ZR_Gradient* gradient, ZR_Handle* properties,
                         ZR_LineDash* dash) {
    if (!rect) return;
    const ZR_ShapePaint paint =
        ZR_MakePaint(fill, stroke, fillColor, strokeColor, width, antialias, matrix, gradient, properties, dash);
    if (svg) OvalSvg(this, rect, &paint);
    else OvalRaster(this, rect, &paint);
}

// Arcs -------------------------------------------------------------------------------------------------------------

static constexpr long kMostArcPoints = 13;

struct ArcCurves {
    ZR_Point points[kMostArcPoints];
    long count;  // 0 = no arc
    ZR_Point middle;
};

static float Remainder360(float degrees) { return static_cast<float>(ZR_TruncatedToLong(degrees) % 360); }

// Angles run clockwise where y runs down, and the other way round where it runs up: one sense is the angle as it is
// given, the other one mirrored. Required: mirrored angles are whole degrees below a full turn, so that a full turn of
// that sense is no arc at all.
static ArcCurves CurvesOf(const ZR_Rect* rect, float start, float end, bool mirrored) {
    ArcCurves arc;
    if (end == 0) end = 360;
    const float sweep = mirrored ? Remainder360(end - start) : end - start;
    if (mirrored) start = Remainder360(360 - end);
    arc.count = ZR_arc2polybezier(arc.points, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top,
                                  start, sweep);
    arc.middle = {(rect->left + rect->right) / 2, (rect->top + rect->bottom) / 2};
    return arc;
}

// The path of the curves becomes the element's "d".
static void SetPathText(ZR_Device* device, ZR_Text* element, const ZR_Handle* path) {
    ZR_Text text;
    text.Create();
    ZR_GetPathText(path, &text);
    device->svg->SetAttributeText(element, "d", &text);
    text.Dispose();
}

static void SetArcPath(ZR_Device* device, ZR_Text* element, ArcCurves* arc, bool toMiddle) {
    ZR_Handle path;
    ZR_CreatePathHandle(&path);
    device->AddCurvesAsArc(&path, arc->points, arc->count);
    if (toMiddle) ZR_AddPathLine(&path, arc->middle.x, arc->middle.y);
    SetPathText(device, element, &path);
    path.Dispose();
}

static void ArcSvg(ZR_Device* device, ArcCurves* arc, const ZR_ShapePaint* paint) {
    if (paint->fill) {
        ZR_Text element = ZR_OpenElement(device, "path", paint->properties);
        SetArcPath(device, &element, arc, /*toMiddle*/ true);
        device->svg->SetGradient(&element, paint->gradient);
        // Required: the colour takes the gradient's place again.
        device->svg->SetColor(&element, paint->fillColor, "fill", "fill-opacity");
        ZR_CloseElement(device, &element, paint->matrix);
    }
    if (paint->stroke) {
        ZR_Text element = ZR_OpenElement(device, "path", paint->properties);
        SetArcPath(device, &element, arc, /*toMiddle*/ false);
        device->svg->SetAttributeText(&element, "fill", "none");
        ZR_PaintStroke(device, &element, paint);
        ZR_CloseElement(device, &element, paint->matrix);
    }
}

static void ArcRaster(ZR_Device* device, ArcCurves* arc, const ZR_ShapePaint* paint) {
    CGContextRef context = device->context;
    if (paint->fill && paint->fillColor) ZR_SetFillColor(device, paint->fillColor, paint->fillColor->alpha);
    if (paint->stroke) ZR_SetStrokeColor(device, paint->strokeColor, paint->strokeColor->alpha);
    CGContextSetLineWidth(context, ZR_LineWidth(paint->width));
    device->SetAntialias(paint->antialias);
    if (paint->fill && paint->fillColor) {
        device->AddCurvesAsArc(arc->points, arc->count);
        CGContextAddLineToPoint(context, arc->middle.x, arc->middle.y);
        CGContextDrawPath(context, kCGPathFill);
    }
    if (paint->stroke) {
        device->SetLineDash(paint->dash);
        device->AddCurvesAsArc(arc->points, arc->count);
        CGContextDrawPath(context, kCGPathStroke);
        ZR_EndDash(device, paint->dash);
    }
}

void ZR_Device::DrawArc(ZR_Rect* rect, float start, float end, bool clockwise, bool fill, bool stroke,
                        ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width, bool antialias,
                        ZR_Matrix* matrix, ZR_Gradient* gradient, ZR_Handle* properties, ZR_LineDash* dash) {
    if (!rect) return;
    const ZR_ShapePaint paint =
        ZR_MakePaint(fill, stroke, fillColor, strokeColor, width, antialias, matrix, gradient, properties, dash);
    // Differs: SVG keeps the angle of a clockwise arc, raster that of the others (y up).
    if (svg) {
        ArcCurves arc = CurvesOf(rect, start, end, /*mirrored*/ !clockwise);
        if (arc.count > 0) ArcSvg(this, &arc, &paint);
        return;
    }
    CGRect r;
    const bool underMatrix = PerformDrawMatrix(rect, matrix, &r);
    if (underMatrix) PrepareMatrixDrawing(&r);
    ZR_Rect up;
    up.SetCGRect(r);
    ArcCurves arc = CurvesOf(&up, start, end, /*mirrored*/ clockwise);
    if (arc.count > 0) ArcRaster(this, &arc, &paint);
    if (underMatrix) CGContextRestoreGState(context);
}

// Paths ------------------------------------------------------------------------------------------------------------

static void PathSvg(ZR_Device* device, const ZR_Handle* path, ZR_Fillrule rule, const ZR_ShapePaint* paint) {
    ZR_Text element = ZR_OpenElement(device, "path", paint->properties);
    SetPathText(device, &element, path);
    ZR_PaintFill(device, &element, paint);
    if (paint->fill && !paint->gradient && rule == ZR_FILL_EVENODD)
        device->svg->SetAttributeText(&element, "fill-rule", "evenodd");
    // Required: behind a gradient too, whose definition then serves nothing.
    if (!paint->fill || paint->gradient) device->svg->SetAttributeText(&element, "fill", "none");
    ZR_PaintStroke(device, &element, paint);
    ZR_CloseElement(device, &element, paint->matrix);
}

static bool SameRect(const ZR_Rect* a, const ZR_Rect* b) {
    return a->top == b->top && a->left == b->left && a->right == b->right && a->bottom == b->bottom;
}

// The path in the space of the target as a CGPath, which may be null; outPath, if there is one, becomes its records.
static CGPath* PlacePath(ZR_Device* device, bool smooth, ZR_Handle* path, ZR_Rect* bounds, ZR_Rect* target,
                         ZR_Handle* outPath) {
    const bool inPlace = SameRect(bounds, target);
    if (outPath && outPath != path) {
        outPath->Dispose();
        outPath->Create(path);
    }
    if (inPlace) return ZR_CreatePathFromHandle(path, smooth, device);
    ZR_Handle copy;
    if (!outPath) copy.Create(path);
    ZR_Handle* scaled = outPath ? outPath : &copy;
    ZR_ScalePathHandle(scaled, bounds, target);
    CGPath* made = ZR_CreatePathFromHandle(scaled, smooth, device);
    if (!outPath) copy.Dispose();
    return made;
}

static CGPathDrawingMode ModeOf(bool fill, bool stroke, ZR_Fillrule rule) {
    const bool evenOdd = rule != ZR_FILL_NONZERO;
    if (!fill) return kCGPathStroke;
    if (stroke) return evenOdd ? kCGPathEOFillStroke : kCGPathFillStroke;
    return evenOdd ? kCGPathEOFill : kCGPathFill;
}

static void PathRaster(ZR_Device* device, CGPath* path, ZR_Rect* target, ZR_Fillrule rule, const ZR_ShapePaint* paint) {
    CGContextRef context = device->context;
    bool fill = paint->fill;
    if (fill && paint->gradient) {
        CGContextBeginPath(context);
        CGContextAddPath(context, path);
        ZR_FillWithGradient(device, paint->gradient, target);
        fill = false;
    }
    if (!fill && !paint->stroke) return;
    CGContextBeginPath(context);
    CGContextAddPath(context, path);
    ZR_BeginRaster(device, paint);
    if (paint->stroke) CGContextSetLineWidth(context, ZR_LineWidth(paint->width));
    CGContextDrawPath(context, ModeOf(fill, paint->stroke, rule));
    ZR_EndDash(device, paint->dash);
}

void ZR_Device::DrawPath(bool smooth, ZR_Handle* path, ZR_Rect* target, ZR_Rect* boundsOfPath, bool fill, bool stroke,
                         ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width, bool antialias,
                         ZR_Matrix* matrix, ZR_Gradient* gradient, ZR_Handle* properties, ZR_LineDash* dash,
                         ZR_Handle* outPath, ZR_Fillrule rule) {
    if (!path) return;
    const ZR_ShapePaint paint =
        ZR_MakePaint(fill, stroke, fillColor, strokeColor, width, antialias, matrix, gradient, properties, dash);
    if (svg) return PathSvg(this, path, rule, &paint);
    if (!target || !boundsOfPath || (!fill && !stroke)) return;
    CGRect r;
    ZR_Rect up;
    const bool underMatrix = PerformDrawMatrix(target, matrix, &r);
    if (underMatrix) PrepareMatrixDrawing(&r);
    CGRectToZRRect(&r, &up);
    CGPath* placed = PlacePath(this, smooth, path, boundsOfPath, &up, outPath);
    if (outPath && underMatrix) ZR_OffsetPathHandle(outPath, {target->left - up.left, target->top - up.top});
    if (placed) PathRaster(this, placed, &up, rule, &paint);
    ZR_DisposePath(placed);
    if (underMatrix) CGContextRestoreGState(context);
}

// Regions ----------------------------------------------------------------------------------------------------------

static ZR_Text OpenPathElement(ZR_Device* device, const ZR_Handle* path) {  // without any properties; handed over
    ZR_Text element;
    element.Create();
    device->svg->CreateElement("path", &element);
    SetPathText(device, &element, path);
    return element;
}

static void FillRegionSvg(ZR_Device* device, const ZR_Region* region, ZR_RGBColor* color) {
    ZR_Handle path = region->CreatePath();
    ZR_Text element = OpenPathElement(device, &path);
    device->svg->SetColor(&element, color, "fill", "fill-opacity");
    ZR_CloseElement(device, &element, /*matrix*/ nullptr);
    path.Dispose();
}

void ZR_Device::FillRegion(ZR_Region* region, ZR_RGBColor* color) {
    if (!region || !color) return;
    // Differs: SVG honours the alpha, and what is taken away is one more outline there.
    if (svg) return FillRegionSvg(this, region, color);
    HIShapeReplacePathInCGContext(region->GetRegion(this), context);
    ZR_SetFillColor(this, color, /*alpha*/ 1);
    CGContextFillPath(context);
}

static void FrameRegionSvg(ZR_Device* device, ZR_RGBColor* color, float width) {
    if (device->framePath.count < 2) return;
    ZR_Text element = OpenPathElement(device, &device->framePath);
    device->svg->SetAttributeText(&element, "fill", "none");
    device->svg->SetColor(&element, color, "stroke", "stroke-opacity");
    device->svg->SetAttributeDouble(&element, "stroke-width", width);
    ZR_CloseElement(device, &element, /*matrix*/ nullptr);
}

void ZR_Device::FrameRegion(ZR_Region* region, ZR_RGBColor* color, float width, ZR_LineDash* dash) {
    if (!color) return;
    // Differs: SVG draws framePath, not the region, and honours the alpha.
    if (svg) return FrameRegionSvg(this, color, width);
    if (!region) return;
    SetLineDash(dash);
    HIShapeReplacePathInCGContext(region->GetRegion(this), context);
    ZR_SetStrokeColor(this, color, /*alpha*/ 1);
    CGContextSetLineWidth(context, ZR_LineWidth(width));
    CGContextStrokePath(context);
    ZR_EndDash(this, dash);
}

// Layers -----------------------------------------------------------------------------------------------------------

// The source's top edge lies on that of the rectangle.
static void DrawLayerAt(ZR_Device* device, ZR_Device* source, CGPoint origin, const ZR_Rect* rect) {
    const CGFloat y = origin.y - (ZR_HeightOf(source) - (rect->bottom - rect->top));
    CGContextDrawLayerAtPoint(device->context, {origin.x, y}, source->layer);
}

void ZR_Device::DrawLayer(ZR_Device* source, ZR_Rect* rect, ZR_Matrix* m) {
    if (svg || !source || !rect) return;
    ClipRect(&bounds);
    CGRect clip, r;
    if (PerformDrawMatrix(rect, m, &clip)) {
        PrepareMatrixDrawing(&clip);
        CGContextRestoreGState(context);
    }
    const bool underMatrix = PerformDrawMatrix(rect, m, &r);
    if (underMatrix) PrepareMatrixDrawing(&r);
    CGContextClipToRect(context, clip);
    DrawLayerAt(this, source, r.origin, rect);
    if (underMatrix) CGContextRestoreGState(context);
}

void ZR_Device::DrawLayerWOclip(ZR_Device* source, ZR_Rect* rect, ZR_Matrix* m) {
    if (svg || !source || !rect) return;
    CGRect r;
    const bool underMatrix = PerformDrawMatrix(rect, m, &r);
    DrawLayerAt(this, source, r.origin, rect);
    if (underMatrix) CGContextRestoreGState(context);
}
