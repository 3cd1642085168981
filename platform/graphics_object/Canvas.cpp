// Canvases on cairo: bitmaps, layers (recordings) and PDF pages.
#include <cairo-pdf.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "platform/graphics_object/Canvas_Private.h"

// Operations; beyond them a layer among the operations of another canvas is drawn as pixels. Those that layers within
// it bring along multiply, its own do not.
static constexpr unsigned long kHeaviestReplay = 1000000, kHeaviestNesting = 50000;
static constexpr long kLargestLayerPicture = 1L << 24;  // pixels
static constexpr double kPenSteps = 500;                // of a pen's width: how near its round parts come
static constexpr double kSmallestTile = 1.0 / 16;       // device units; smaller ones give their mean colour
static constexpr long kMosaic = 256;                    // pixels; smaller tiles are repeated in groups
static constexpr double kFarTile = 4096;                // device units from the canvas's origin
static constexpr double kThinnest = 1.0 / 256;          // device units; a step of the drawing library
// Matrices whose numbers, or whose determinant against their squares, lie beyond are odd.
static constexpr double kOddLarge = 1e5, kOddSmall = 1e-5, kOddFlat = 1e-6, kOddEnlarged = 1e4;

// Life -------------------------------------------------------------------------------------------------------------

static bool MakeBitmapSurface(ZRGCanvas* canvas) {
    auto w = static_cast<int>(canvas->width), h = static_cast<int>(canvas->height);
    canvas->surface.reset(cairo_image_surface_create_for_data(canvas->memory.data(), CAIRO_FORMAT_ARGB32, w, h, w * 4));
    return cairo_surface_status(canvas->surface.get()) == CAIRO_STATUS_SUCCESS;
}

static void MakeContext(ZRGCanvas* canvas) {
    canvas->cr.reset(cairo_create(canvas->surface.get()));
    if (cairo_status(canvas->cr.get()) != CAIRO_STATUS_SUCCESS) canvas->cr.reset();
}

static ZRGCanvas* CreateBitmap(long width, long height) {
    if (width < 1 || height < 1 || width > kZRGMaximumSide || height > kZRGMaximumSide) return nullptr;
    if (width * height > kZRGMaximumPixels) return nullptr;
    try {
        auto canvas = std::make_unique<ZRGCanvas>();
        canvas->kind = CanvasKind::bitmap;
        canvas->width = static_cast<double>(width);
        canvas->height = static_cast<double>(height);
        canvas->memory.resize(static_cast<size_t>(width * height) * 4);
        if (!MakeBitmapSurface(canvas.get())) return nullptr;
        MakeContext(canvas.get());
        return canvas->cr ? canvas.release() : nullptr;
    } catch (const std::bad_alloc&) { return nullptr; }
}

static ZRGCanvas* CreateLayer(double width, double height) {
    try {
        auto canvas = std::make_unique<ZRGCanvas>();
        canvas->kind = CanvasKind::layer;
        canvas->width = width;
        canvas->height = height;
        cairo_rectangle_t extents = {0, 0, width, height};
        canvas->surface.reset(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &extents));
        MakeContext(canvas.get());
        return canvas->cr ? canvas.release() : nullptr;
    } catch (const std::bad_alloc&) { return nullptr; }
}

static cairo_status_t WriteToOwner(void* closure, const unsigned char* bytes, unsigned n) {
    auto canvas = static_cast<ZRGCanvas*>(closure);
    return canvas->write(canvas->writeInfo, bytes, n) ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

static ZRGCanvas* CreatePDF(ZRGWrite write, void* info) {
    try {
        auto canvas = std::make_unique<ZRGCanvas>();
        canvas->kind = CanvasKind::pdf;
        canvas->write = write;
        canvas->writeInfo = info;
        canvas->surface.reset(cairo_pdf_surface_create_for_stream(WriteToOwner, canvas.get(), 1, 1));
        bool ok = cairo_surface_status(canvas->surface.get()) == CAIRO_STATUS_SUCCESS;
        return ok ? canvas.release() : nullptr;
    } catch (const std::bad_alloc&) { return nullptr; }
}

static void Release(ZRGCanvas* canvas) {
    if (!canvas) return;
    canvas->cr.reset();
    if (canvas->kind == CanvasKind::pdf) canvas->write = [](void*, const void*, size_t) { return false; };
    cairo_surface_finish(canvas->surface.get());
    delete canvas;
}

// Between B,G,R,A and R,G,B,A.
static void SwapRow(const uint8_t* from, uint8_t* to, long pixels) {
    for (long i = 0; i < pixels; ++i, from += 4, to += 4) {
        uint32_t v;
        memcpy(&v, from, 4);
        v = (v & 0xFF00FF00u) | ((v >> 16) & 0xFFu) | ((v & 0xFFu) << 16);
        memcpy(to, &v, 4);
    }
}

static void ReadPixels(ZRGCanvas* canvas, uint8_t* rgba, long rowBytes) {
    if (canvas->kind != CanvasKind::bitmap) return;
    cairo_surface_flush(canvas->surface.get());
    auto w = static_cast<long>(canvas->width), h = static_cast<long>(canvas->height);
    for (long y = 0; y < h; ++y) SwapRow(canvas->memory.data() + y * w * 4, rgba + y * rowBytes, w);
}

static void WritePixels(ZRGCanvas* canvas, const uint8_t* rgba, long rowBytes) {
    if (canvas->kind != CanvasKind::bitmap) return;
    cairo_surface_flush(canvas->surface.get());
    auto w = static_cast<long>(canvas->width), h = static_cast<long>(canvas->height);
    for (long y = 0; y < h; ++y) SwapRow(rgba + y * rowBytes, canvas->memory.data() + y * w * 4, w);
    cairo_surface_mark_dirty(canvas->surface.get());
}

// Paths and clips --------------------------------------------------------------------------------------------------

void AppendPath(cairo_t* cr, const ZRGPath* path) {
    const double* p = path->points;
    for (long i = 0; i < path->verbCount; ++i) switch (path->verbs[i]) {
            case kZRGMove:
                cairo_move_to(cr, p[0], p[1]);
                p += 2;
                break;
            case kZRGLine:
                cairo_line_to(cr, p[0], p[1]);
                p += 2;
                break;
            case kZRGCurve:
                cairo_curve_to(cr, p[0], p[1], p[2], p[3], p[4], p[5]);
                p += 6;
                break;
            default: cairo_close_path(cr);
        }
}

static long PointCount(const ZRGPath* path) {
    long n = 0;
    for (long i = 0; i < path->verbCount; ++i)
        n += path->verbs[i] == kZRGCurve ? 3 : path->verbs[i] == kZRGClose ? 0 : 1;
    return n;
}

static OwnPath CopyOf(const ZRGPath* path) {
    return {{path->verbs, path->verbs + path->verbCount},
            {path->points, path->points + 2 * PointCount(path)},
            path->evenOdd};
}

static ZRGRect BoundsOf(const ZRGPath* path) {
    long n = PointCount(path);
    if (n == 0) return {};
    double left = path->points[0], right = left, top = path->points[1], bottom = top;
    for (long i = 1; i < n; ++i) {
        left = std::min(left, path->points[2 * i]);
        right = std::max(right, path->points[2 * i]);
        top = std::min(top, path->points[2 * i + 1]);
        bottom = std::max(bottom, path->points[2 * i + 1]);
    }
    return {left, top, right - left, bottom - top};
}

static void SetEdges(cairo_t* cr, bool antialias) {
    cairo_set_antialias(cr, antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
}

static void SetRule(cairo_t* cr, bool evenOdd) {
    cairo_set_fill_rule(cr, evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
}

static void LayClip(cairo_t* cr, const ZRGPath* path, bool antialias) {
    SetEdges(cr, antialias);
    SetRule(cr, path->evenOdd);
    AppendPath(cr, path);
    cairo_clip(cr);
}

static void LayClipsAgain(ZRGCanvas* canvas) {
    for (size_t i = 0; i < canvas->levels.size(); ++i) {
        if (i > 0) cairo_save(canvas->cr.get());
        for (auto& step : canvas->levels[i]) {
            ZRGPath path = ViewOf(step.path);
            LayClip(canvas->cr.get(), &path, step.antialias);
        }
    }
}

static void EachClip(ZRGCanvas* canvas, void (*take)(void* info, const ZRGPath*), void* info) {
    for (auto& level : canvas->levels)
        for (auto& step : level) {
            ZRGPath path = ViewOf(step.path);
            take(info, &path);
        }
}

void Finish(ZRGCanvas* canvas, unsigned long weight) {
    ++canvas->change;
    canvas->weight += weight;
    if (weight > 0) ++canvas->ownWeight;
    if (canvas->cr && cairo_status(canvas->cr.get()) == CAIRO_STATUS_SUCCESS) return;
    canvas->cr.reset();
    if (cairo_surface_status(canvas->surface.get()) != CAIRO_STATUS_SUCCESS &&
        (canvas->kind != CanvasKind::bitmap || !MakeBitmapSurface(canvas)))
        return;  // the surface itself is lost
    MakeContext(canvas);
    if (canvas->cr) LayClipsAgain(canvas);
}

static void Save(ZRGCanvas* canvas) {
    try {
        canvas->levels.emplace_back();
    } catch (const std::bad_alloc&) { return; }
    if (canvas->cr) cairo_save(canvas->cr.get());
}

static void Restore(ZRGCanvas* canvas) {
    if (canvas->levels.size() < 2) return;
    canvas->levels.pop_back();
    if (canvas->cr) cairo_restore(canvas->cr.get());
}

static void Clip(ZRGCanvas* canvas, const ZRGPath* path, bool antialias) {
    ZRGPath fitted;
    try {
        OwnPath own;
        fitted = FitPath(canvas, path, 0, /*dashed*/ false, &own);
        canvas->levels.back().push_back({CopyOf(&fitted), antialias});
        fitted = ViewOf(canvas->levels.back().back().path);
    } catch (const std::bad_alloc&) { return; }
    if (!canvas->cr) return;
    LayClip(canvas->cr.get(), &fitted, antialias);
    Finish(canvas, 0);
}

static void ClipBounds(ZRGCanvas* canvas, ZRGRect* out) {
    *out = {};
    if (!canvas->cr) return;
    double right, bottom;
    cairo_clip_extents(canvas->cr.get(), &out->x, &out->y, &right, &bottom);
    out->width = right - out->x;
    out->height = bottom - out->y;
}

// Fill and stroke --------------------------------------------------------------------------------------------------

static void SetColor(cairo_t* cr, const ZRGColor& c) { cairo_set_source_rgba(cr, c.red, c.green, c.blue, c.alpha); }

static void PaintFill(cairo_t* cr, const ZRGPath* path, const ZRGPaint* paint) {
    SetColor(cr, paint->color);
    SetEdges(cr, paint->antialias);
    SetRule(cr, path->evenOdd);
    AppendPath(cr, path);
    cairo_fill(cr);
}

// How far a shadow falls, in device units.
static double ShadowReach(const ZRGPaint* paint) {
    const ZRGShadow* shadow = paint->shadow;
    return shadow ? std::abs(shadow->dx) + std::abs(shadow->dy) + 2 * shadow->blur : 0;
}

static void Fill(ZRGCanvas* canvas, const ZRGPath* path, const ZRGPaint* paint) {
    if (!canvas->cr) return;
    try {
        OwnPath own;
        ZRGPath fitted = FitPath(canvas, path, ShadowReach(paint), /*dashed*/ false, &own);
        CastShadow(canvas, paint->shadow, BoundsOf(&fitted), [&](cairo_t* mask) { PaintFill(mask, &fitted, paint); });
        PaintFill(canvas->cr.get(), &fitted, paint);
    } catch (const std::bad_alloc&) {}
    Finish(canvas, 1);
}

static void FillRect(ZRGCanvas* canvas, const ZRGRect* rect, const ZRGPaint* paint) {
    cairo_t* cr = canvas->cr.get();
    if (!cr) return;
    auto draw = [&](cairo_t* to) {
        SetColor(to, paint->color);
        SetEdges(to, paint->antialias);
        cairo_rectangle(to, rect->x, rect->y, rect->width, rect->height);
        cairo_fill(to);
    };
    CastShadow(canvas, paint->shadow, *rect, draw);
    draw(cr);
    Finish(canvas, 1);
}

cairo_matrix_t CairoMatrix(const ZRGMatrix& m) { return {m.a, m.b, m.c, m.d, m.tx, m.ty}; }

static double SizeOf(const ZRGMatrix& m) { return std::hypot(std::hypot(m.a, m.b), std::hypot(m.c, m.d)); }

bool IsOdd(const ZRGMatrix& m) {
    double size = SizeOf(m), flat = std::abs(m.a * m.d - m.b * m.c) / size / size;
    bool ordinary = size > kOddSmall && size < kOddLarge && flat > kOddFlat && std::abs(m.tx) < kOddLarge &&
                    std::abs(m.ty) < kOddLarge;
    return !ordinary;
}

bool Survives(ZRGCanvas* canvas, const std::function<void(cairo_t*)>& draw) {
    Surface page(cairo_pdf_surface_create_for_stream(nullptr, nullptr, canvas->width, canvas->height));
    Cairo cr(cairo_create(page.get()));
    for (auto& level : canvas->levels)
        for (auto& step : level) {
            ZRGPath path = ViewOf(step.path);
            LayClip(cr.get(), &path, step.antialias);
        }
    draw(cr.get());
    cairo_show_page(cr.get());
    bool ok = cairo_status(cr.get()) == CAIRO_STATUS_SUCCESS;
    cr.reset();
    cairo_surface_finish(page.get());
    return ok && cairo_surface_status(page.get()) == CAIRO_STATUS_SUCCESS;
}

static void PaintStroke(cairo_t* cr, const ZRGPath* path, const ZRGStroke* stroke, const ZRGPaint* paint) {
    static constexpr cairo_line_cap_t kCaps[] = {CAIRO_LINE_CAP_BUTT, CAIRO_LINE_CAP_ROUND, CAIRO_LINE_CAP_SQUARE};
    static constexpr cairo_line_join_t kJoins[] = {CAIRO_LINE_JOIN_MITER, CAIRO_LINE_JOIN_ROUND, CAIRO_LINE_JOIN_BEVEL};
    SetColor(cr, paint->color);
    SetEdges(cr, paint->antialias);
    AppendPath(cr, path);
    cairo_set_line_width(cr, stroke->width);
    cairo_set_miter_limit(cr, stroke->miterLimit);
    cairo_set_line_cap(cr, kCaps[stroke->cap]);
    cairo_set_line_join(cr, kJoins[stroke->join]);
    if (stroke->dash) cairo_set_dash(cr, stroke->dash, static_cast<int>(stroke->dashCount), stroke->dashPhase);
    cairo_matrix_t pen = CairoMatrix(stroke->matrix);
    cairo_set_matrix(cr, &pen);
    // Round joins and caps of a wide pen need no more corners than the eye can see.
    double tolerance = cairo_get_tolerance(cr);
    cairo_set_tolerance(cr, std::max(tolerance, stroke->width * SizeOf(stroke->matrix) / kPenSteps));
    cairo_stroke(cr);
    cairo_set_tolerance(cr, tolerance);
    cairo_identity_matrix(cr);
    if (stroke->dash) cairo_set_dash(cr, nullptr, 0, 0);
}

// How far ink can stand out of the path, in device units.
static double StrokeReach(const ZRGStroke* s) {
    double corner = s->join == 0 ? std::max(s->miterLimit, 1.5) : 1.5;
    return std::min(s->width / 2 * corner * SizeOf(s->matrix), 1e6) + 1;
}

static void Stroke(ZRGCanvas* canvas, const ZRGPath* path, const ZRGStroke* stroke, const ZRGPaint* paint) {
    if (!canvas->cr) return;
    try {
        OwnPath own;
        double reach = StrokeReach(stroke);
        ZRGPath fitted = FitPath(canvas, path, reach + ShadowReach(paint), stroke->dash != nullptr, &own);
        auto draw = [&](cairo_t* to) { PaintStroke(to, &fitted, stroke, paint); };
        if (paint->shadow) {
            ZRGRect bounds = BoundsOf(&fitted);
            bounds = {bounds.x - reach, bounds.y - reach, bounds.width + 2 * reach, bounds.height + 2 * reach};
            CastShadow(canvas, paint->shadow, bounds, draw);
        }
        Paint(canvas, IsOdd(stroke->matrix) || reach > kOddLarge, draw);
    } catch (const std::bad_alloc&) {}
    Finish(canvas, 1);
}

static void Clear(ZRGCanvas* canvas, const ZRGPath* path) {
    cairo_t* cr = canvas->cr.get();
    if (!cr || canvas->kind == CanvasKind::pdf) return;  // a page would get a patch of pixels
    try {
        OwnPath own;
        ZRGPath fitted = FitPath(canvas, path, 0, /*dashed*/ false, &own);
        cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
        SetEdges(cr, true);
        SetRule(cr, path->evenOdd);
        AppendPath(cr, &fitted);
        cairo_fill(cr);
        cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    } catch (const std::bad_alloc&) {}
    Finish(canvas, 1);
}

// Gradients --------------------------------------------------------------------------------------------------------

static void Gradient(ZRGCanvas* canvas, const ZRGGradient* g, double alpha) {
    if (!canvas->cr || g->count < 1) return;
    cairo_pattern_t* pattern = g->radial ? cairo_pattern_create_radial(g->x0, g->y0, g->r0, g->x1, g->y1, g->r1)
                                         : cairo_pattern_create_linear(g->x0, g->y0, g->x1, g->y1);
    // An end that is not extended beside one that is: a clear stop at that end. A point as first circle has nothing
    // before it.
    bool start = g->extendStart || (g->radial && g->r0 == 0), none = !start && !g->extendEnd;
    auto stop = [&](double offset, const ZRGColor& c, double opacity) {
        cairo_pattern_add_color_stop_rgba(pattern, offset, c.red, c.green, c.blue, c.alpha * opacity);
    };
    if (!start) {
        if (!none) stop(0, g->colors[0], 0);
        stop(0, g->colors[0], 1);
    }
    for (long i = 0; i < g->count; ++i) stop(g->offsets[i], g->colors[i], 1);
    if (!g->extendEnd) {
        stop(1, g->colors[g->count - 1], 1);
        if (!none) stop(1, g->colors[g->count - 1], 0);
    }
    cairo_pattern_set_extend(pattern, none ? CAIRO_EXTEND_NONE : CAIRO_EXTEND_PAD);
    cairo_matrix_t matrix = CairoMatrix(g->matrix);
    Paint(canvas, IsOdd(g->matrix), [&](cairo_t* to) {
        cairo_set_matrix(to, &matrix);
        cairo_set_source(to, pattern);
        cairo_identity_matrix(to);
        if (alpha < 1) cairo_paint_with_alpha(to, alpha);
        else cairo_paint(to);
        cairo_set_source_rgb(to, 0, 0, 0);
    });
    cairo_pattern_destroy(pattern);
    Finish(canvas, 1);
}

// Images -----------------------------------------------------------------------------------------------------------

struct ImageKeeper {  // holds an image's owner as long as cairo looks at its bytes
    const void* owner;
    void (*release)(const void*);
};

static ImageKeeper* Keep(const ZRGImage* image) {
    image->retain(image->owner);
    return new ImageKeeper{image->owner, image->release};
}

static void LetGo(void* data) {
    std::unique_ptr<ImageKeeper> keeper(static_cast<ImageKeeper*>(data));
    keeper->release(keeper->owner);
}

static Surface WrapImage(const ZRGImage* image) {
    return Surface(cairo_image_surface_create_for_data(
        const_cast<uint8_t*>(image->pixels), image->opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32,
        static_cast<int>(image->width), static_cast<int>(image->height), static_cast<int>(image->rowBytes)));
}

// Layers and pages look at the pixels when they are replayed or written: one lasting surface an image.
static cairo_surface_t* LastingImage(ZRGCanvas* canvas, const ZRGImage* image) {
    static const cairo_user_data_key_t kKeeperKey = {};
    Surface& found = canvas->images[image->owner];
    if (found) return found.get();
    found = WrapImage(image);
    cairo_surface_set_user_data(found.get(), &kKeeperKey, Keep(image), LetGo);
    if (image->jpeg)
        cairo_surface_set_mime_data(found.get(), CAIRO_MIME_TYPE_JPEG, image->jpeg,
                                    static_cast<unsigned long>(image->jpegLength), LetGo, Keep(image));
    return found.get();
}

// The unit square under the matrix, as the canvas can draw it.
static OwnPath UnitSquare(const ZRGCanvas* canvas, const ZRGMatrix& m, double reach) {
    static constexpr uint8_t kVerbs[] = {kZRGMove, kZRGLine, kZRGLine, kZRGLine, kZRGClose};
    const double corners[] = {m.tx,       m.ty,      m.a + m.tx, m.b + m.ty, m.a + m.c + m.tx, m.b + m.d + m.ty,
                              m.c + m.tx, m.d + m.ty};
    ZRGPath square = {kVerbs, corners, 5, false};
    OwnPath own;
    ZRGPath fitted = FitPath(canvas, &square, reach, /*dashed*/ false, &own);
    return CopyOf(&fitted);
}

static ZRGRect UnitSquareBounds(const ZRGMatrix& m) {
    double left = m.tx + std::min(m.a, 0.0) + std::min(m.c, 0.0),
           right = m.tx + std::max(m.a, 0.0) + std::max(m.c, 0.0);
    double top = m.ty + std::min(m.b, 0.0) + std::min(m.d, 0.0),
           bottom = m.ty + std::max(m.b, 0.0) + std::max(m.d, 0.0);
    return {left, top, right - left, bottom - top};
}

// From the pixels of a picture, y down, to the unit square, y up, to the device.
static cairo_matrix_t PictureMatrix(const ZRGMatrix& m, double width, double height) {
    cairo_matrix_t place = CairoMatrix(m), matrix;
    cairo_matrix_t toSquare = {1 / width, 0, 0, -1 / height, 0, 1};
    cairo_matrix_multiply(&matrix, &toSquare, &place);
    return matrix;
}

// What is painted as an image: pixels and how to look at them.
struct ImageSource {
    cairo_surface_t* surface;
    double width, height;  // pixels
    cairo_extend_t extend;
    cairo_filter_t filter;
};

static void PaintImage(cairo_t* cr, const ImageSource& source, const ZRGMatrix& m, const OwnPath* edge,
                       const ZRGPaint* paint) {
    cairo_save(cr);
    cairo_matrix_t matrix = PictureMatrix(m, source.width, source.height);
    cairo_set_matrix(cr, &matrix);
    cairo_set_source_surface(cr, source.surface, 0, 0);
    cairo_identity_matrix(cr);
    cairo_pattern_set_extend(cairo_get_source(cr), source.extend);
    cairo_pattern_set_filter(cairo_get_source(cr), source.filter);
    SetEdges(cr, paint->antialias);
    if (edge) {
        ZRGPath view = ViewOf(*edge);
        AppendPath(cr, &view);
        cairo_clip(cr);
    }
    if (paint->color.alpha < 1) cairo_paint_with_alpha(cr, paint->color.alpha);
    else cairo_paint(cr);
    cairo_restore(cr);
}

// The image made smaller, each pixel the mean of those that it stands for; null = no memory.
static Surface Shrunk(const ZRGImage* image, long width, long height) {
    Surface small(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height)));
    if (cairo_surface_status(small.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    cairo_surface_flush(small.get());
    uint8_t* to = cairo_image_surface_get_data(small.get());
    long stride = cairo_image_surface_get_stride(small.get());
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x) {
            long left = x * image->width / width, right = (x + 1) * image->width / width;
            long top = y * image->height / height, bottom = (y + 1) * image->height / height;
            unsigned long sums[4] = {}, n = static_cast<unsigned long>((right - left) * (bottom - top));
            for (long v = top; v < bottom; ++v) {
                const uint8_t* from = image->pixels + v * image->rowBytes + left * 4;
                for (long u = left; u < right; ++u, from += 4)
                    for (int c = 0; c < 4; ++c) sums[c] += from[c];
            }
            for (int c = 0; c < 4; ++c) to[y * stride + x * 4 + c] = static_cast<uint8_t>((sums[c] + n / 2) / n);
        }
    cairo_surface_mark_dirty(small.get());
    return small;
}

// Repeating an image that is drawn smaller than it is takes very long: on pixels one tile is made at its size, and
// where a tile is less than a pixel its mean colour stands for it.
static Surface SmallTile(const ZRGCanvas* canvas, const ZRGImage* image, const ZRGMatrix& m) {
    double w = std::hypot(m.a, m.b), h = std::hypot(m.c, m.d);
    bool dust = w < kSmallestTile || h < kSmallestTile;
    if (canvas->kind != CanvasKind::bitmap && !dust) return nullptr;
    auto side = [&](double size, long pixels) {
        return dust ? 1 : static_cast<long>(std::clamp(std::round(size), 1.0, static_cast<double>(pixels)));
    };
    long width = side(w, image->width), height = side(h, image->height);
    return width < image->width || height < image->height ? Shrunk(image, width, height) : nullptr;
}

// Tiles repeat: the one that holds the canvas's origin stands for those that begin far out.
static ZRGMatrix NearTile(const ZRGMatrix& m) {
    if (std::abs(m.tx) < kFarTile && std::abs(m.ty) < kFarTile) return m;
    double det = m.a * m.d - m.b * m.c;
    double u = std::floor((m.c * m.ty - m.d * m.tx) / det), v = std::floor((m.b * m.tx - m.a * m.ty) / det);
    ZRGMatrix near = {m.a, m.b, m.c, m.d, m.tx + u * m.a + v * m.c, m.ty + u * m.b + v * m.d};
    bool counted = std::isfinite(near.tx) && std::isfinite(near.ty);
    return counted ? near : m;
}

// Many tiles as one: the drawing library finds its place in a repeated image by counting images. Sides grow by the
// factors; null = as it is, or no memory.
static Surface Mosaic(cairo_surface_t* tile, long* across, long* down) {
    long w = cairo_image_surface_get_width(tile), h = cairo_image_surface_get_height(tile);
    *across = w < kMosaic ? (kMosaic + w - 1) / w : 1;
    *down = h < kMosaic ? (kMosaic + h - 1) / h : 1;
    Surface all(cairo_image_surface_create(cairo_image_surface_get_format(tile), static_cast<int>(w * *across),
                                           static_cast<int>(h * *down)));
    if (*across * *down == 1 || cairo_surface_status(all.get()) != CAIRO_STATUS_SUCCESS) {
        *across = *down = 1;
        return nullptr;
    }
    cairo_surface_flush(all.get());
    const uint8_t* from = cairo_image_surface_get_data(tile);
    uint8_t* to = cairo_image_surface_get_data(all.get());
    long fromStride = cairo_image_surface_get_stride(tile), toStride = cairo_image_surface_get_stride(all.get());
    for (long y = 0; y < h * *down; ++y)
        for (long i = 0; i < *across; ++i)
            memcpy(to + y * toStride + i * w * 4, from + y % h * fromStride, static_cast<size_t>(w) * 4);
    cairo_surface_mark_dirty(all.get());
    return all;
}

static void PaintTiles(ZRGCanvas* canvas, const ZRGImage* image, const ZRGMatrix& m, const ZRGPaint* paint) {
    Surface own = SmallTile(canvas, image, m);
    auto width = static_cast<double>(image->width), height = static_cast<double>(image->height);
    if (own) {
        width = cairo_image_surface_get_width(own.get());
        height = cairo_image_surface_get_height(own.get());
    } else if (canvas->kind == CanvasKind::bitmap) {
        own = WrapImage(image);
    }
    cairo_surface_t* surface = own ? own.get() : LastingImage(canvas, image);
    ImageSource source = {surface, width, height, CAIRO_EXTEND_REPEAT, CAIRO_FILTER_BILINEAR};
    bool dot = width == 1 && height == 1;  // one colour: its place is of no matter
    ZRGMatrix place = dot ? ZRGMatrix{1, 0, 0, 1, 0, 0} : NearTile(m);
    long across = 1, down = 1;
    Surface mosaic = canvas->kind == CanvasKind::bitmap && !dot ? Mosaic(surface, &across, &down) : nullptr;
    if (mosaic) {
        auto x = static_cast<double>(across), y = static_cast<double>(down);
        source = {mosaic.get(), width * x, height * y, CAIRO_EXTEND_REPEAT, CAIRO_FILTER_BILINEAR};
        place = {place.a * x, place.b * x, place.c * y, place.d * y, place.tx, place.ty};
    }
    Paint(canvas, IsOdd(place), [&](cairo_t* to) { PaintImage(to, source, place, nullptr, paint); });
}

// Thinner than the drawing library can count: no ink, and errors within.
static bool IsThin(const ZRGMatrix& m) {
    double longer = std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    return !(std::abs(m.a * m.d - m.b * m.c) >= longer * kThinnest);
}

static void PaintPicture(ZRGCanvas* canvas, const ZRGImage* image, const ZRGMatrix& m, const ZRGPaint* paint) {
    if (IsThin(m)) return;
    Surface own = canvas->kind == CanvasKind::bitmap ? WrapImage(image) : nullptr;
    cairo_surface_t* surface = own ? own.get() : LastingImage(canvas, image);
    auto width = static_cast<double>(image->width), height = static_cast<double>(image->height);
    // Beyond its edge an image goes on with its edge pixels, lest the edge fades when it is enlarged. A PDF does not
    // fade it, and keeps a JPEG's bytes only without that; a layer may come to be drawn on one.
    bool enlarged = std::hypot(m.a, m.b) > width || std::hypot(m.c, m.d) > height;
    bool pad = canvas->kind == CanvasKind::bitmap || (canvas->kind == CanvasKind::layer && (enlarged || !image->jpeg));
    ImageSource source = {surface, width, height, pad ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE, CAIRO_FILTER_GOOD};
    OwnPath edge = UnitSquare(canvas, m, ShadowReach(paint));
    auto draw = [&](cairo_t* to) { PaintImage(to, source, m, &edge, paint); };
    CastShadow(canvas, paint->shadow, UnitSquareBounds(m), draw);
    Paint(canvas, IsOdd(m) || SizeOf(m) > kOddEnlarged * std::min(width, height), draw);
}

static void Image(ZRGCanvas* canvas, const ZRGImage* image, const ZRGMatrix* m, bool tiled, const ZRGPaint* paint) {
    if (!canvas->cr) return;
    try {
        if (tiled) PaintTiles(canvas, image, *m, paint);
        else PaintPicture(canvas, image, *m, paint);
    } catch (const std::bad_alloc&) {}
    Finish(canvas, 1);
}

// Layers -----------------------------------------------------------------------------------------------------------

static void PaintSurface(cairo_t* cr, cairo_surface_t* surface, const cairo_matrix_t& matrix, double alpha) {
    cairo_save(cr);
    cairo_set_matrix(cr, &matrix);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_identity_matrix(cr);
    if (alpha < 1) cairo_paint_with_alpha(cr, alpha);
    else cairo_paint(cr);
    cairo_restore(cr);
}

// The layer's pixels under a matrix without turn, its top left pixel at the whole part of the origin; null = too large.
static Surface LayerPixels(ZRGCanvas* layer, const cairo_matrix_t& m) {
    double w = std::ceil(layer->width * m.xx) + 2, h = std::ceil(layer->height * m.yy) + 2;
    if (!(w >= 1 && h >= 1 && w * h <= static_cast<double>(kLargestLayerPicture) && w <= 32767 && h <= 32767))
        return nullptr;
    Surface pixels(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(w), static_cast<int>(h)));
    cairo_matrix_t inside = m;
    inside.x0 -= std::floor(m.x0);
    inside.y0 -= std::floor(m.y0);
    PaintSurface(Cairo(cairo_create(pixels.get())).get(), layer->surface.get(), inside, 1);
    return cairo_surface_status(pixels.get()) == CAIRO_STATUS_SUCCESS ? std::move(pixels) : nullptr;
}

// The kept pixels, if the layer was drawn just like this before; they are equal to another replay.
static cairo_surface_t* KeptPixels(ZRGCanvas* layer, const cairo_matrix_t& m) {
    LayerPicture& kept = layer->picture;
    ZRGMatrix now = {m.xx, m.yx, m.xy, m.yy, m.x0 - std::floor(m.x0), m.y0 - std::floor(m.y0)};
    bool plain = m.xy == 0 && m.yx == 0 && m.xx > 0 && m.yy > 0;
    if (!plain || kept.change != layer->change || memcmp(&now, &kept.matrix, sizeof now) != 0) {
        kept.matrix = now;
        kept.change = layer->change;
        kept.pixels.reset();
        return nullptr;
    }
    if (!kept.pixels) kept.pixels = LayerPixels(layer, m);
    return kept.pixels.get();
}

// A layer of very many operations among the operations of another is drawn as pixels, so that replays do not multiply.
static void PaintHeavyLayer(cairo_t* cr, ZRGCanvas* layer, const ZRGMatrix& m, double alpha) {
    double most = std::sqrt(static_cast<double>(kLargestLayerPicture) / 2 / (layer->width * layer->height));
    double scale = std::min({2.0, most, 16000 / layer->width, 16000 / layer->height});
    Surface pixels = LayerPixels(layer, {scale, 0, 0, scale, 0, 0});
    if (!pixels) return;
    cairo_matrix_t place = PictureMatrix(m, layer->width, layer->height);
    cairo_matrix_scale(&place, 1 / scale, 1 / scale);
    PaintSurface(cr, pixels.get(), place, alpha);
}

static bool IsHeavy(const ZRGCanvas* layer) {
    return layer->weight > kHeaviestReplay || layer->weight - layer->ownWeight > kHeaviestNesting;
}

static void Layer(ZRGCanvas* canvas, ZRGCanvas* layer, const ZRGMatrix* m, const ZRGPaint* paint) {
    if (!canvas->cr || !layer->cr || canvas == layer || layer->kind != CanvasKind::layer) return;
    if (IsThin(*m)) return;
    cairo_matrix_t matrix = PictureMatrix(*m, layer->width, layer->height);
    double alpha = paint->color.alpha;
    unsigned long weight = layer->weight + 1;
    bool heavy = canvas->kind != CanvasKind::bitmap && IsHeavy(layer);
    auto draw = [&](cairo_t* to) {
        if (heavy) PaintHeavyLayer(to, layer, *m, alpha);
        else PaintSurface(to, layer->surface.get(), matrix, alpha);
    };
    CastShadow(canvas, paint->shadow, UnitSquareBounds(*m), draw);
    bool odd = layer->odd || IsOdd(*m) || IsOdd({matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0});
    if (cairo_surface_t* kept = canvas->kind == CanvasKind::bitmap ? KeptPixels(layer, matrix) : nullptr) {
        cairo_matrix_t whole = {1, 0, 0, 1, std::floor(matrix.x0), std::floor(matrix.y0)};
        PaintSurface(canvas->cr.get(), kept, whole, alpha);
    } else {
        Paint(canvas, odd, draw);
    }
    Finish(canvas, heavy ? 1 : weight);
}

static unsigned long Weight(ZRGCanvas* canvas) { return canvas->weight; }

static void* BorrowCairo(ZRGCanvas* canvas) {
    if (canvas->cr) cairo_save(canvas->cr.get());
    canvas->odd = true;  // who knows what it draws
    return canvas->cr.get();
}

static void ReturnCairo(ZRGCanvas* canvas) {
    if (canvas->cr) {
        cairo_restore(canvas->cr.get());
        cairo_new_path(canvas->cr.get());
    }
    Finish(canvas, 1000);  // unknown: a page of a document
}

// PDF pages --------------------------------------------------------------------------------------------------------

static void BeginPage(ZRGCanvas* canvas, double width, double height) {
    if (canvas->kind != CanvasKind::pdf || canvas->cr) return;
    canvas->width = width;
    canvas->height = height;
    canvas->levels.assign(1, {});
    cairo_pdf_surface_set_size(canvas->surface.get(), width, height);
    MakeContext(canvas);
}

static void NextSegment(ZRGCanvas* canvas) {
    if (canvas->kind != CanvasKind::pdf || !canvas->cr) return;
    cairo_show_page(canvas->cr.get());
    Finish(canvas, 0);
}

static void EndPage(ZRGCanvas* canvas) {
    if (canvas->kind != CanvasKind::pdf || !canvas->cr) return;
    cairo_show_page(canvas->cr.get());
    canvas->cr.reset();
    canvas->levels.assign(1, {});
}

static bool FinishPDF(ZRGCanvas* canvas) {
    if (canvas->kind != CanvasKind::pdf) return false;
    EndPage(canvas);
    cairo_surface_finish(canvas->surface.get());
    canvas->images.clear();
    return cairo_surface_status(canvas->surface.get()) == CAIRO_STATUS_SUCCESS;
}

// The table --------------------------------------------------------------------------------------------------------

extern "C" __attribute__((visibility("default"))) const void* ZRGraphicsGetTable() {
    static const ZRGTable table = [] {
        ZRGTable t = {};
        t.version = kZRGVersion;
        t.createBitmap = CreateBitmap;
        t.createLayer = CreateLayer;
        t.createPDF = CreatePDF;
        t.release = Release;
        t.readPixels = ReadPixels;
        t.writePixels = WritePixels;
        t.weight = Weight;
        t.borrowCairo = BorrowCairo;
        t.returnCairo = ReturnCairo;
        t.beginPage = BeginPage;
        t.nextSegment = NextSegment;
        t.endPage = EndPage;
        t.finishPDF = FinishPDF;
        t.save = Save;
        t.restore = Restore;
        t.clip = Clip;
        t.clipBounds = ClipBounds;
        t.eachClip = EachClip;
        t.fill = Fill;
        t.fillRect = FillRect;
        t.stroke = Stroke;
        t.clear = Clear;
        t.gradient = Gradient;
        t.image = Image;
        t.layer = Layer;
        FillRegionFunctions(&t);
        FillCodecFunctions(&t);
        FillFontFunctions(&t);
        FillTextFunctions(&t);
        return t;
    }();
    return &table;
}
