#include "graphics/ZR_API_Path.h"

#include <algorithm>
#include <cmath>

#include "graphics/ZR_API_Device.h"
#include "platform/CoreGraphics/CoreGraphics.h"

static constexpr long kRecordGrowStep = 100;
static constexpr long kTextDecimals = 3;
static constexpr long kTextUnitsOfRecord = 5;

// Records ----------------------------------------------------------------------------------------------------------

void ZR_CreatePathHandle(ZR_Handle* path) {
    path->Create(sizeof(ZR_PathRecord), 0);
    path->growStep = kRecordGrowStep;
}

static void Append(ZR_Handle* path, const ZR_PathRecord& record) {
    if (path->elementSize != sizeof record) return;
    if (char* added = path->AppendGetPtr()) memcpy(added, &record, sizeof record);
}

void ZR_AddPathMove(ZR_Handle* path, float x, float y) { Append(path, {ZR_PATH_MOVE, x, y, 0, 0, 0, 0, 0}); }

void ZR_AddPathLine(ZR_Handle* path, float x, float y) { Append(path, {ZR_PATH_LINE, x, y, 0, 0, 0, 0, 0}); }

void ZR_AddPathCurve(ZR_Handle* path, float cx1, float cy1, float cx2, float cy2, float x, float y) {
    Append(path, {ZR_PATH_CURVE, x, y, cx1, cy1, cx2, cy2, 0});
}

void ZR_AddPathQuad(ZR_Handle* path, float cx1, float cy1, float x, float y) {
    Append(path, {ZR_PATH_QUAD, x, y, cx1, cy1, 0, 0, 0});
}

void ZR_AddPathClose(ZR_Handle* path) { Append(path, {ZR_PATH_CLOSE, 0, 0, 0, 0, 0, 0, 0}); }

// The records as an array of *n; a handle of another element size has none.
static ZR_PathRecord* Records(const ZR_Handle* path, long* n) {
    ZR_PathRecord* first = path ? ZR_GetPathRecord(path, 1) : nullptr;
    *n = first ? path->count : 0;
    return first;
}

// Writing ----------------------------------------------------------------------------------------------------------

static void AddNumbers(ZR_Text* out, char letter, std::initializer_list<float> numbers) {
    out->AddUnit(static_cast<unsigned short>(letter));
    bool first = true;
    for (float number : numbers) {
        if (!first) out->AddUnit(' ');
        out->AddDouble(number, kTextDecimals, /*keepZeros*/ false);
        first = false;
    }
}

static void AddRecordText(ZR_Text* out, const ZR_PathRecord& r, short kind) {
    switch (kind) {
        case ZR_PATH_MOVE: return AddNumbers(out, 'M', {r.x, r.y});
        case ZR_PATH_LINE: return AddNumbers(out, 'L', {r.x, r.y});
        case ZR_PATH_CURVE: return AddNumbers(out, 'C', {r.cx1, r.cy1, r.cx2, r.cy2, r.x, r.y});
        case ZR_PATH_QUAD: return AddNumbers(out, 'Q', {r.cx1, r.cy1, r.x, r.y});
        case ZR_PATH_ARC: return AddNumbers(out, 'A', {r.cx1, r.cy1, r.cx2, r.cy2, r.x, r.y});
        case ZR_PATH_CLOSE: return AddNumbers(out, 'Z', {});
        default: return;
    }
}

void ZR_GetPathText(const ZR_Handle* path, ZR_Text* out) {
    long n;
    const ZR_PathRecord* records = Records(path, &n);
    out->Resize(0);
    out->growStep = n * kTextUnitsOfRecord;
    for (long i = 0; i < n; ++i) {
        if (i > 0) out->AddUnit(' ');
        // Required: the first record is a move, whatever its kind.
        AddRecordText(out, records[i], i == 0 ? static_cast<short>(ZR_PATH_MOVE) : records[i].kind);
    }
}

// Moving and measuring ---------------------------------------------------------------------------------------------

void ZR_OffsetPathHandle(ZR_Handle* path, ZR_Point delta) {
    long n;
    ZR_PathRecord* records = Records(path, &n);
    for (long i = 0; i < n; ++i) {
        ZR_PathRecord& r = records[i];  // Required: all three points, whatever the kind
        r = {r.kind,          r.x + delta.x,   r.y + delta.y,   r.cx1 + delta.x,
             r.cy1 + delta.y, r.cx2 + delta.x, r.cy2 + delta.y, r.flag};
    }
}

void ZR_ScalePathHandle(ZR_Handle* path, const ZR_Rect* from, const ZR_Rect* to) {
    long n;
    ZR_PathRecord* records = Records(path, &n);
    if (!from || !to) return;
    for (const ZR_Rect* r : {from, to})
        if (!(r->right - r->left > 0 && r->bottom - r->top > 0)) return;
    const float sx = (to->right - to->left) / (from->right - from->left);
    const float sy = (to->bottom - to->top) / (from->bottom - from->top);
    auto map = [=](float* x, float* y) {
        *x = (*x - from->left) * sx + to->left;
        *y = (*y - from->top) * sy + to->top;
    };
    for (long i = 0; i < n; ++i) {
        ZR_PathRecord& r = records[i];
        if (r.kind >= ZR_PATH_MOVE && r.kind <= ZR_PATH_QUAD) map(&r.x, &r.y);
        // Required: an arc letter has its first pair mapped, not its end point.
        if (r.kind >= ZR_PATH_CURVE && r.kind <= ZR_PATH_ARC) map(&r.cx1, &r.cy1);
        if (r.kind == ZR_PATH_CURVE) map(&r.cx2, &r.cy2);
    }
}

void ZR_GetPathBoundingBox(const ZR_Handle* path, ZR_Rect* out) {
    long n;
    const ZR_PathRecord* records = Records(path, &n);
    *out = {};
    if (n > 0) *out = {records[0].y, records[0].x, records[0].x, records[0].y};
    for (long i = 1; i < n; ++i) {
        const ZR_PathRecord& r = records[i];
        if (r.kind < ZR_PATH_MOVE || r.kind > ZR_PATH_ARC) continue;
        out->ExpandRect(r.x, r.y);
        if (r.kind >= ZR_PATH_CURVE) out->ExpandRect(r.cx1, r.cy1);
        if (r.kind == ZR_PATH_CURVE || r.kind == ZR_PATH_ARC) out->ExpandRect(r.cx2, r.cy2);
    }
}

// CGPath -----------------------------------------------------------------------------------------------------------

// The height that y is taken from: whole points, 0 without a device.
static double FlipHeight(void* device) {
    if (!device) return 0;
    const ZR_Rect& bounds = static_cast<ZR_Device*>(device)->bounds;
    return static_cast<double>(ZR_TruncatedToLong(bounds.bottom - bounds.top));
}

static CGPath* CreateCGPath(const ZR_PathRecord* records, long n, double height) {
    CGMutablePathRef out = CGPathCreateMutable();
    if (!out) return nullptr;
    CGPathMoveToPoint(out, nullptr, records[0].x, height - records[0].y);  // Required: whatever its kind
    for (long i = 1; i < n; ++i) {
        const ZR_PathRecord& r = records[i];
        switch (r.kind) {
            case ZR_PATH_MOVE: CGPathMoveToPoint(out, nullptr, r.x, height - r.y); break;
            case ZR_PATH_LINE: CGPathAddLineToPoint(out, nullptr, r.x, height - r.y); break;
            case ZR_PATH_CURVE:
                CGPathAddCurveToPoint(out, nullptr, r.cx1, height - r.cy1, r.cx2, height - r.cy2, r.x, height - r.y);
                break;
            case ZR_PATH_QUAD: CGPathAddQuadCurveToPoint(out, nullptr, r.cx1, height - r.cy1, r.x, height - r.y); break;
            case ZR_PATH_CLOSE: CGPathCloseSubpath(out); break;
            default: break;  // arc letters and unknown kinds
        }
    }
    return out;
}

CGPath* ZR_CreatePathFromHandle(const ZR_Handle* path, bool smooth, void* device) {
    long n;
    const ZR_PathRecord* records = Records(path, &n);
    if (n < 1) return nullptr;
    ZR_Handle smoothed;
    if (!smooth || !ZR_CreateSmoothPath(path, &smoothed)) return CreateCGPath(records, n, FlipHeight(device));
    records = Records(&smoothed, &n);
    CGPath* out = n > 0 ? CreateCGPath(records, n, FlipHeight(device)) : nullptr;
    smoothed.Dispose();
    return out;
}

void ZR_DisposePath(CGPath* path) { CGPathRelease(path); }

bool ZR_IsPointInPath(CGPath* path, ZR_Point p, void* device) {
    return path && CGPathContainsPoint(path, nullptr, CGPointMake(p.x, FlipHeight(device) - p.y), /*evenOdd*/ true);
}
