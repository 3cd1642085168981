// Contexts: state, path, painting and clip. The library keeps the matrix and the path, so that a matrix without inverse
// or a number that is none never reaches the drawing object.
#include <algorithm>
#include <cmath>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

static constexpr size_t kMostSaves = 65536;
static constexpr size_t kMostDashLengths = 65536;  // longer dashes are cut
static constexpr double kMostDashPieces = 1e6;
static constexpr double kWidestPen = 1e6;  // device units
static constexpr double kShadowAlpha = 1.0 / 3;

// Life and matrix --------------------------------------------------------------------------------------------------

CGContext::CGContext(const ZRGTable* functions, ZRGCanvas* c) : table(functions), canvas(c) {
    path.limit = kZRGMaximumPoint;
}

CGContext::~CGContext() { table->release(canvas); }

void CGContext::SetCTM(const CGAffineTransform& m) {
    state.ctm = m;
    state.device = CGAffineTransformConcat(m, base);
    state.usable = IsUsable(state.device);
}

void CGContext::SetBase(const CGAffineTransform& m) {
    base = m;
    state = GraphicsState();
    saved.clear();
    lostSaves = 0;
    path.Clear();
    SetCTM(CGAffineTransformIdentity);
}

PathRecords CGContext::NewPath() const {
    PathRecords records;
    records.limit = kZRGMaximumPoint;
    return records;
}

static double Unit(double v) { return v > 0 ? std::min(v, 1.0) : 0; }

// Runs a body that may need memory; without a context nothing, without memory as far as it came.
template <class Body>
static void On(CGContextRef context, Body body) {
    if (!context) return;
    CFGuarded([&]() -> void* {
        body(*context);
        return nullptr;
    });
}

CFTypeID CGContextGetTypeID() { return kCGTypeContext; }

void CGContextSaveGState(CGContextRef context) {
    On(context, [](CGContext& c) {
        if (c.saved.size() >= kMostSaves) {
            ++c.lostSaves;
            return;
        }
        c.saved.push_back(c.state);
        c.state.clipSaved = false;
    });
}

void CGContextRestoreGState(CGContextRef context) {
    On(context, [](CGContext& c) {
        if (c.lostSaves > 0) {
            --c.lostSaves;
        } else if (!c.saved.empty()) {
            if (c.state.clipSaved) c.table->restore(c.canvas);
            c.state = std::move(c.saved.back());
            c.saved.pop_back();
        }
    });
}

void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform) {
    if (context) context->SetCTM(CGAffineTransformConcat(transform, context->state.ctm));
}

void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty) {
    if (context) context->SetCTM(CGAffineTransformTranslate(context->state.ctm, tx, ty));
}

void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy) {
    if (context) context->SetCTM(CGAffineTransformScale(context->state.ctm, sx, sy));
}

void CGContextRotateCTM(CGContextRef context, CGFloat radians) {
    if (context) context->SetCTM(CGAffineTransformRotate(context->state.ctm, radians));
}

CGAffineTransform CGContextGetCTM(CGContextRef context) {
    return context ? context->state.ctm : CGAffineTransformIdentity;
}

// State ------------------------------------------------------------------------------------------------------------

void CGContextSetLineWidth(CGContextRef context, CGFloat width) {
    if (context && width >= 0 && std::isfinite(width)) context->state.lineWidth = width;
}

void CGContextSetLineJoin(CGContextRef context, CGLineJoin join) {
    if (context && join >= kCGLineJoinMiter && join <= kCGLineJoinBevel) context->state.join = join;
}

void CGContextSetLineCap(CGContextRef context, CGLineCap cap) {
    if (context && cap >= kCGLineCapButt && cap <= kCGLineCapSquare) context->state.cap = cap;
}

void CGContextSetMiterLimit(CGContextRef context, CGFloat limit) {
    if (context && limit > 0 && std::isfinite(limit)) context->state.miterLimit = limit;
}

// Lengths that cannot make a dash, negative ones or all zero, draw solid.
void CGContextSetLineDash(CGContextRef context, CGFloat phase, const CGFloat* lengths, size_t count) {
    On(context, [&](CGContext& c) {
        c.state.dash.clear();
        double sum = 0;
        count = std::min(count, kMostDashLengths);
        for (size_t i = 0; lengths && i < count; ++i) {
            if (!(lengths[i] >= 0)) return;
            sum += lengths[i];
        }
        if (!(sum > 0) || !std::isfinite(sum)) return;
        c.state.dashPhase = std::isfinite(phase) ? std::fmod(phase, 2 * sum) : 0;
        c.state.dash.assign(lengths, lengths + count);
    });
}

void CGContextSetShouldAntialias(CGContextRef context, bool antialias) {
    if (context) context->state.antialias = antialias;
}

void CGContextSetAlpha(CGContextRef context, CGFloat alpha) {
    if (context) context->state.alpha = Unit(alpha);
}

void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    if (context) context->state.fill = {Unit(red), Unit(green), Unit(blue), Unit(alpha)};
}

void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    if (context) context->state.stroke = {Unit(red), Unit(green), Unit(blue), Unit(alpha)};
}

void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color) {
    if (context && color) context->state.fill = ColorOf(*color);
}

void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color) {
    if (context && color) context->state.stroke = ColorOf(*color);
}

void CGContextSetFillColorSpace(CGContextRef context, CGColorSpaceRef space) {
    if (context && space) context->state.fill = {0, 0, 0, 1};
}

void CGContextSetStrokeColorSpace(CGContextRef context, CGColorSpaceRef space) {
    if (context && space) context->state.stroke = {0, 0, 0, 1};
}

static void SetShadow(CGContextRef context, CGSize offset, CGFloat blur, const ZRGColor& color) {
    GraphicsState& state = context->state;
    bool finite = std::isfinite(offset.width) && std::isfinite(offset.height) && std::isfinite(blur);
    state.shadowOn = finite && color.alpha > 0 && (offset.width != 0 || offset.height != 0 || blur > 0);
    CGSize device = CGSizeApplyAffineTransform(offset, context->base);
    state.shadow = {device.width, device.height, std::max(blur, 0.0), color};
}

void CGContextSetShadow(CGContextRef context, CGSize offset, CGFloat blur) {
    if (context) SetShadow(context, offset, blur, {0, 0, 0, kShadowAlpha});
}

void CGContextSetShadowWithColor(CGContextRef context, CGSize offset, CGFloat blur, CGColorRef color) {
    if (context) SetShadow(context, offset, blur, color ? ColorOf(*color) : ZRGColor{});
}

void CGContextSetTextMatrix(CGContextRef context, CGAffineTransform transform) {
    if (context) context->textMatrix = transform;
}

CGAffineTransform CGContextGetTextMatrix(CGContextRef context) {
    return context ? context->textMatrix : CGAffineTransformIdentity;
}

void CGContextSetTextPosition(CGContextRef context, CGFloat x, CGFloat y) {
    if (!context) return;
    context->textMatrix.tx = x;
    context->textMatrix.ty = y;
}

CGPoint CGContextGetTextPosition(CGContextRef context) {
    return context ? CGPoint{context->textMatrix.tx, context->textMatrix.ty} : CGPointZero;
}

void CGContextFlush(CGContextRef context) {
    if (context) context->Flush();
}

// The path ---------------------------------------------------------------------------------------------------------

// A point of user space in device space.
static CGPoint Put(const CGContext& c, CGFloat x, CGFloat y) {
    return CGPointApplyAffineTransform({x, y}, c.state.device);
}

void CGContextBeginPath(CGContextRef context) {
    if (context) context->path.Clear();
}

void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    On(context, [&](CGContext& c) { c.path.Move(Put(c, x, y)); });
}

void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    On(context, [&](CGContext& c) { c.path.Line(Put(c, x, y)); });
}

void CGContextAddCurveToPoint(CGContextRef context, CGFloat cx1, CGFloat cy1, CGFloat cx2, CGFloat cy2, CGFloat x,
                              CGFloat y) {
    On(context, [&](CGContext& c) { c.path.Curve(Put(c, cx1, cy1), Put(c, cx2, cy2), Put(c, x, y)); });
}

void CGContextAddQuadCurveToPoint(CGContextRef context, CGFloat cx, CGFloat cy, CGFloat x, CGFloat y) {
    On(context, [&](CGContext& c) { c.path.Quad(Put(c, cx, cy), Put(c, x, y)); });
}

void CGContextAddArcToPoint(CGContextRef context, CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2, CGFloat radius) {
    On(context, [&](CGContext& c) { c.path.ArcTo(c.state.device, {x1, y1}, {x2, y2}, radius); });
}

void CGContextAddRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) { c.path.Rect(c.state.device, rect); });
}

void CGContextAddEllipseInRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) { c.path.Ellipse(c.state.device, rect); });
}

void CGContextAddPath(CGContextRef context, CGPathRef path) {
    On(context, [&](CGContext& c) {
        if (path) c.path.Append(c.state.device, path->records);
    });
}

void CGContextClosePath(CGContextRef context) {
    On(context, [](CGContext& c) { c.path.Close(); });
}

bool CGContextIsPathEmpty(CGContextRef context) { return !context || context->path.empty(); }

// Painting ---------------------------------------------------------------------------------------------------------

ZRGPaint CGContext::Paint(const ZRGColor& color) const {
    ZRGColor c = color;
    c.alpha *= state.alpha;
    return {c, state.antialias, state.shadowOn ? &state.shadow : nullptr};
}

void CGContext::Fill(const PathRecords& records, bool evenOdd) {
    if (!state.usable || records.empty()) return;
    ZRGPath view = records.View(evenOdd);
    ZRGPaint paint = Paint(state.fill);
    table->fill(canvas, &view, &paint);
}

static double Length(const PathRecords& records) {
    double length = 0;
    auto& p = records.points;
    auto apart = [](double from, double to) {  // as far as it is drawn
        auto keep = [](double v) { return std::clamp(v, -kZRGMaximumCoordinate, kZRGMaximumCoordinate); };
        return keep(to) - keep(from);
    };
    for (size_t i = 2; i + 1 < p.size(); i += 2) length += std::hypot(apart(p[i - 2], p[i]), apart(p[i - 1], p[i + 1]));
    return length;
}

// Whether the dash cuts the path into a number of pieces that can be drawn.
static bool DashIsBounded(const GraphicsState& state, const PathRecords& records) {
    const CGAffineTransform& m = state.device;
    double larger = std::hypot(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    double smaller = std::abs(m.a * m.d - m.b * m.c) / larger, period = 0;
    for (double length : state.dash) period += length;
    return Length(records) / (period * smaller) * static_cast<double>(state.dash.size()) <= kMostDashPieces;
}

void CGContext::Stroke(const PathRecords& records, double lineWidth) {
    if (!state.usable || records.empty()) return;
    const CGAffineTransform& m = state.device;
    double scale = std::hypot(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    ZRGStroke stroke = {};
    stroke.width = std::min(lineWidth, kWidestPen / scale);
    stroke.miterLimit = std::clamp(state.miterLimit, 1.0, 1e4);
    stroke.cap = state.cap;
    stroke.join = state.join;
    if (!state.dash.empty() && DashIsBounded(state, records)) {
        stroke.dash = state.dash.data();
        stroke.dashCount = static_cast<long>(state.dash.size());
        stroke.dashPhase = state.dashPhase;
    }
    stroke.matrix = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    ZRGPath view = records.View(/*evenOdd*/ false);
    ZRGPaint paint = Paint(state.stroke);
    table->stroke(canvas, &view, &stroke, &paint);
}

void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode) {
    if (!context) return;
    bool evenOdd = mode == kCGPathEOFill || mode == kCGPathEOFillStroke;
    bool stroke = mode >= kCGPathStroke && mode <= kCGPathEOFillStroke;
    if (mode >= kCGPathFill && mode != kCGPathStroke && mode <= kCGPathEOFillStroke)
        context->Fill(context->path, evenOdd);
    if (stroke) context->Stroke(context->path, context->state.lineWidth);
    context->path.Clear();
}

void CGContextFillPath(CGContextRef context) { CGContextDrawPath(context, kCGPathFill); }
void CGContextEOFillPath(CGContextRef context) { CGContextDrawPath(context, kCGPathEOFill); }
void CGContextStrokePath(CGContextRef context) { CGContextDrawPath(context, kCGPathStroke); }

// A rectangle whose sides stay upright goes to the canvas as such.
void CGContextFillRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) {
        c.path.Clear();
        if (!c.state.usable || !IsFinite(rect)) return;
        if (c.state.device.b == 0 && c.state.device.c == 0) {
            auto keep = [](double v) { return std::clamp(v, -kZRGMaximumCoordinate, kZRGMaximumCoordinate); };
            CGPoint p = Put(c, rect.origin.x, rect.origin.y);
            CGPoint q = Put(c, rect.origin.x + rect.size.width, rect.origin.y + rect.size.height);
            double left = keep(std::min(p.x, q.x)), top = keep(std::min(p.y, q.y));
            ZRGRect device = {left, top, keep(std::max(p.x, q.x)) - left, keep(std::max(p.y, q.y)) - top};
            ZRGPaint paint = c.Paint(c.state.fill);
            c.table->fillRect(c.canvas, &device, &paint);
        } else {
            c.path.Rect(c.state.device, rect);
            c.Fill(c.path, /*evenOdd*/ false);
            c.path.Clear();
        }
    });
}

void CGContextStrokeRectWithWidth(CGContextRef context, CGRect rect, CGFloat width) {
    On(context, [&](CGContext& c) {
        c.path.Clear();
        if (!(width >= 0) || !std::isfinite(width)) return;
        c.path.Rect(c.state.device, rect);
        c.Stroke(c.path, width);
        c.path.Clear();
    });
}

void CGContextStrokeRect(CGContextRef context, CGRect rect) {
    if (context) CGContextStrokeRectWithWidth(context, rect, context->state.lineWidth);
}

void CGContextFillEllipseInRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) {
        c.path.Clear();
        c.path.Ellipse(c.state.device, rect);
        c.Fill(c.path, /*evenOdd*/ false);
        c.path.Clear();
    });
}

void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) {
        c.path.Clear();
        c.path.Ellipse(c.state.device, rect);
        c.Stroke(c.path, c.state.lineWidth);
        c.path.Clear();
    });
}

void CGContextClearRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) {
        c.path.Clear();
        if (!c.state.usable) return;
        PathRecords records = c.NewPath();
        records.Rect(c.state.device, rect);
        ZRGPath view = records.View(/*evenOdd*/ false);
        c.table->clear(c.canvas, &view);
    });
}

// Clip -------------------------------------------------------------------------------------------------------------

// The canvas saves its clip only for levels that change it.
void CGContext::Clip(PathRecords* records, bool evenOdd) {
    if (!saved.empty() && !state.clipSaved) {
        table->save(canvas);
        state.clipSaved = true;
    }
    ZRGPath view = records->View(evenOdd);
    table->clip(canvas, &view, state.antialias);
}

static void ClipToPath(CGContextRef context, bool evenOdd) {
    if (!context) return;
    if (!context->path.empty()) context->Clip(&context->path, evenOdd);
    context->path.Clear();
}

void CGContextClip(CGContextRef context) { ClipToPath(context, /*evenOdd*/ false); }
void CGContextEOClip(CGContextRef context) { ClipToPath(context, /*evenOdd*/ true); }

void CGContextClipToRect(CGContextRef context, CGRect rect) {
    On(context, [&](CGContext& c) {
        c.path.Clear();
        PathRecords records = c.NewPath();
        records.Rect(c.state.device, rect);
        c.Clip(&records, /*evenOdd*/ false);
    });
}

CGRect CGContextGetClipBoundingBox(CGContextRef context) {
    if (!context || !context->state.usable) return CGRectNull;
    ZRGRect box;
    context->table->clipBounds(context->canvas, &box);
    if (!(box.width > 0 && box.height > 0)) return CGRectNull;
    return CGRectApplyAffineTransform(CGRectMake(box.x, box.y, box.width, box.height),
                                      CGAffineTransformInvert(context->state.device));
}

// Images and layers ------------------------------------------------------------------------------------------------

// The unit square's way to a rectangle of user space and on to the device; false = nothing to be seen.
static bool PlaceOf(const CGContext& c, CGRect rect, ZRGMatrix* out) {
    if (!c.state.usable || !IsFinite(rect)) return false;
    rect = CGRectStandardize(rect);
    CGAffineTransform m = {rect.size.width, 0, 0, rect.size.height, rect.origin.x, rect.origin.y};
    m = CGAffineTransformConcat(m, c.state.device);
    *out = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    return IsUsable(m);
}

static void DrawImage(CGContextRef context, CGRect rect, CGImageRef image, bool tiled) {
    ZRGMatrix place;
    if (!context || !image || !PlaceOf(*context, rect, &place)) return;
    ZRGImage view = image->View();
    if (!view.pixels) return;
    ZRGPaint paint = context->Paint({0, 0, 0, 1});
    context->table->image(context->canvas, &view, &place, tiled, &paint);
}

void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image) {
    DrawImage(context, rect, image, /*tiled*/ false);
}

void CGContextDrawTiledImage(CGContextRef context, CGRect rect, CGImageRef image) {
    DrawImage(context, rect, image, /*tiled*/ true);
}

void CGContextDrawLayerInRect(CGContextRef context, CGRect rect, CGLayerRef layer) {
    ZRGMatrix place;
    if (!context || !layer || !PlaceOf(*context, rect, &place)) return;
    ZRGPaint paint = context->Paint({0, 0, 0, 1});
    context->table->layer(context->canvas, layer->context->canvas, &place, &paint);
}

void CGContextDrawLayerAtPoint(CGContextRef context, CGPoint point, CGLayerRef layer) {
    if (layer) CGContextDrawLayerInRect(context, {point, layer->size}, layer);
}
