#include "graphics/ZR_API_Device.h"

#include <cstdlib>
#include <new>

#include "graphics/ZR_API_Geometry.h"
#include "graphics/ZR_API_LineDash.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_Path.h"
#include "graphics/ZR_API_Region.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/HIShape/HIShape.h"

static constexpr long kMostSide = 32767;       // pixels of an offscreen device
static constexpr long kMostPixels = 1L << 28;  // likewise, in all
static constexpr float kPointsPerInch = 72;

void ZR_InitGrafics() {}
void ZR_DeinitGrafics() {}

static float HeightOf(const ZR_Device* device) { return device->bounds.bottom - device->bounds.top; }
static float WidthOf(const ZR_Device* device) { return device->bounds.right - device->bounds.left; }

// Life -------------------------------------------------------------------------------------------------------------

void ZR_Device::Create() {
    context = nullptr;
    layer = nullptr;
    colorSpace = nullptr;
    bitmapData = nullptr;
    stateSaved = offscreen = printing = rotatePage = false;
    bounds = {0, 0, 0, 0};
    ZR_CreatePathHandle(&framePath);
    customProperties.Create(sizeof(ZR_DeviceProperty), 0);
    dpiX = dpiY = 0;
    svg = nullptr;
}

static void SaveState(ZR_Device* device) {
    CGContextSaveGState(device->context);
    device->stateSaved = true;
}

void ZR_Device::CreateWithCGContext(CGContext* c, ZR_Rect* area, float x, float y, bool gray) {
    Create();
    context = c;
    if (area) bounds = *area;
    colorSpace = CGColorSpaceCreateWithName(gray ? kCGColorSpaceGenericGray : kCGColorSpaceGenericRGB);
    if (gray) {
        CGContextSetFillColorSpace(context, colorSpace);
        CGContextSetStrokeColorSpace(context, colorSpace);
    }
    if (x != 0 || y != 0) CGContextTranslateCTM(context, x, -y);
    SaveState(this);
}

void ZR_Device::CreateWithCGContextFlip(CGContext* c, ZR_Rect* area) {
    Create();
    context = c;
    if (area) bounds = *area;
    colorSpace = CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB);
    CGContextTranslateCTM(context, 0, HeightOf(this));
    CGContextScaleCTM(context, 1, -1);
    CGContextSetTextMatrix(context, CGAffineTransformIdentity);
    SaveState(this);
}

void ZR_Device::CreateSVG(ZR_Rect* area) {
    Create();
    if (area) bounds = *area;
    offscreen = true;
    svg = new (std::nothrow) ZR_DOM_Tree;
    if (!svg) return;
    svg->Create("svg");
    svg->SetAttributeLong(&svg->root, "width", ZR_TruncatedToLong(WidthOf(this)));
    svg->SetAttributeLong(&svg->root, "height", ZR_TruncatedToLong(HeightOf(this)));
    svg->SetAttributeText(&svg->root, "xmlns", "http://www.w3.org/2000/svg");
    svg->SetAttributeText(&svg->root, "xmlns:xlink", "http://www.w3.org/1999/xlink");
}

static void CreateBitmap(ZR_Device* device, long width, long height, long dpiX, long dpiY) {
    double sx = 1, sy = 1;
    if (dpiX > 0 && dpiY != 0) {
        sx = static_cast<double>(dpiX) / kPointsPerInch;
        sy = static_cast<double>(dpiY) / kPointsPerInch;
    }
    const long pw = ZR_TruncatedToLong(sx * static_cast<double>(width));
    const long ph = ZR_TruncatedToLong(sy * static_cast<double>(height));
    if (pw < 1 || ph < 1 || pw > kMostSide || ph > kMostSide || pw * ph > kMostPixels) return;
    device->bitmapData = static_cast<unsigned char*>(calloc(static_cast<size_t>(pw * ph), 4));
    if (!device->bitmapData) return;
    device->context =
        CGBitmapContextCreate(device->bitmapData, static_cast<size_t>(pw), static_cast<size_t>(ph), 8,
                              static_cast<size_t>(pw * 4), device->colorSpace, kCGImageAlphaPremultipliedLast);
    CGContextScaleCTM(device->context, sx, sy);
    CGContextClearRect(device->context, CGRectMake(0, 0, static_cast<CGFloat>(pw), static_cast<CGFloat>(ph)));
}

bool ZR_Device::CreateOffscreen(long width, long height, bool bitmap, long horizontal, long vertical) {
    Create();
    bounds = {0, 0, static_cast<float>(width), static_cast<float>(height)};
    colorSpace = CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB);
    offscreen = true;
    dpiX = static_cast<float>(horizontal);
    dpiY = static_cast<float>(vertical);
    if (bitmap) {
        CreateBitmap(this, width, height, horizontal, vertical);
    } else {
        layer = CGLayerCreateWithContext(nullptr, {static_cast<CGFloat>(width), static_cast<CGFloat>(height)}, nullptr);
        context = CGLayerGetContext(layer);
    }
    if (!context) {
        CGLayerRelease(layer);
        CGColorSpaceRelease(colorSpace);
        free(bitmapData);
        Create();
        return false;
    }
    CGContextSaveGState(context);
    return true;
}

void ZR_Device::Dispose() {
    if (context) {
        if (stateSaved) CGContextRestoreGState(context);
        CGLayerRelease(layer);
        CGColorSpaceRelease(colorSpace);
        if (bitmapData) CGContextRelease(context);
    } else {
        CGColorSpaceRelease(colorSpace);  // of a device that was made with a null context
    }
    free(bitmapData);
    if (svg) {
        svg->Dispose();
        delete svg;
    }
    framePath.Dispose();
    Create();
}

void ZR_Device::DisposeCustomProperties() {
    for (long i = 1; i <= customProperties.count; i++)
        if (auto record = reinterpret_cast<ZR_DeviceProperty*>(customProperties.GetMemPtr(i))) {
            record->name.Dispose();
            record->value.Dispose();
        }
    customProperties.Dispose();
}

// Drawing frame ----------------------------------------------------------------------------------------------------

void ZR_Device::BeginDraw() {
    if (!printing || !rotatePage) return;
    ZR_Matrix identity;
    identity.SetIdentity();
    SetTransform(&identity);
}

void ZR_Device::ResetTransform() { BeginDraw(); }

void ZR_Device::EndDraw() {}

void ZR_Device::Flush() { CGContextFlush(context); }

void ZR_Device::SetTransform(ZR_Matrix* m) {
    if (!context) return;
    ZR_Matrix matrix;
    if (m) matrix = *m;
    else matrix.SetIdentity();
    if (printing && rotatePage) {
        ZR_Matrix turn;
        turn.SetIdentity();
        turn.TransformRotateAt(180, {WidthOf(this) / 2, HeightOf(this) / 2});
        matrix.Multiply(&turn);
    }
    CGContextRestoreGState(context);
    CGContextConcatCTM(context, GetSystemMatrix(&matrix));
    // Required: the state is saved with the transform in it. So it outlives a clip, and the next one acts before it.
    CGContextSaveGState(context);
}

CGAffineTransform ZR_Device::GetSystemMatrix(ZR_Matrix* m) {
    if (!m) return CGAffineTransformIdentity;
    const float height = HeightOf(this);
    // Required: b and c keep their sign.
    return {m->a, m->b, m->c, m->d, m->tx, height - m->d * height - m->ty};
}

ZR_Point ZR_Device::ConvertPointToMatrixPoint(ZR_Matrix* m, ZR_Point p) {
    if (!m || m->IsIdentity()) return p;
    return {m->c * p.y + m->a * p.x + m->tx, m->d * p.y + m->b * p.x + m->ty};
}

void ZR_Device::SetAntialias(bool antialias) {
    if (context) CGContextSetShouldAntialias(context, antialias);
}

void ZR_Device::ClearRect(ZR_Rect* rect) {
    if (context && rect) CGContextClearRect(context, GetCGRect(rect));
}

// Conversion -------------------------------------------------------------------------------------------------------

void ZR_Device::ZRRectToCGRect(ZR_Rect* rect, CGRect* out) { *out = GetCGRect(rect); }

CGRect ZR_Device::GetCGRect(ZR_Rect* rect) {
    return CGRectMake(rect->left, HeightOf(this) - rect->bottom, rect->right - rect->left, rect->bottom - rect->top);
}

void ZR_Device::CGRectToZRRect(CGRect* rect, ZR_Rect* out) {
    out->left = static_cast<float>(rect->origin.x);
    out->bottom = HeightOf(this) - static_cast<float>(rect->origin.y);
    out->right = out->left + static_cast<float>(rect->size.width);
    out->top = out->bottom - static_cast<float>(rect->size.height);
}

bool ZR_Device::PerformDrawMatrix(ZR_Rect* rect, ZR_Matrix* m, CGRect* out) {
    if (!m || m->IsIdentity()) {
        ZRRectToCGRect(rect, out);
        return false;
    }
    *out = rect->GetCGRect();
    CGContextSaveGState(context);
    CGContextTranslateCTM(context, 0, HeightOf(this));
    CGContextScaleCTM(context, 1, -1);
    CGContextConcatCTM(context, {m->a, m->b, m->c, m->d, m->tx, m->ty});
    return true;
}

// y up, with the origin at a corner that is given in the device's own y-up space.
static void MoveOrigin(ZR_Device* device, CGPoint corner) {
    CGContextScaleCTM(device->context, 1, -1);
    CGContextTranslateCTM(device->context, corner.x, corner.y - HeightOf(device));
}

void ZR_Device::PrepareMatrixDrawing(CGRect* rect) {
    ZR_Rect r;
    r.SetCGRect(*rect);
    MoveOrigin(this, GetCGRect(&r).origin);
    rect->origin = CGPointZero;
}

void ZR_Device::PrepareMatrixDrawing(ZR_Rect* rect) {
    const CGRect r = rect->GetCGRect();
    MoveOrigin(this, r.origin);
    *rect = {0, 0, static_cast<float>(r.size.width), static_cast<float>(r.size.height)};
}

// Clip -------------------------------------------------------------------------------------------------------------

void ZR_Device::ClipRect(ZR_Rect* rect) {
    if (!rect) return;
    if (svg) return svg->ClipRect(rect);
    if (!context) return;
    CGContextRestoreGState(context);
    CGContextSaveGState(context);
    CGContextClipToRect(context, GetCGRect(rect));
}

void ZR_Device::ClipRect(ZR_Rect* rect, ZR_Rect* limit) {
    if (!rect) return;
    if (limit) ZR_CutBounds(rect, limit);
    ClipRect(rect);
}

void ZR_Device::SetClipRegion(ZR_Region* region) {
    if (svg || !region) return;
    CGContextRestoreGState(context);
    CGContextSaveGState(context);
    HIShapeReplacePathInCGContext(region->GetRegion(this), context);
    CGContextClip(context);
}

// Properties, dash, output -----------------------------------------------------------------------------------------

void ZR_Device::SetCustomProperties(ZR_Text* element, ZR_Handle* properties) {
    if (!svg || !properties || properties->elementSize != sizeof(ZR_DeviceProperty)) return;
    for (long i = 1; i <= properties->count; i++) {
        auto record = reinterpret_cast<ZR_DeviceProperty*>(properties->GetMemPtr(i));
        if (record && record->name.count > 0 && record->value.count > 0)
            svg->SetAttributeText(element, &record->name, &record->value);
    }
}

void ZR_Device::SetLineDash(ZR_LineDash* dash) {
    static constexpr long kFew = 16, kMost = 4096;
    if (!dash || dash->count < 1 || dash->count > kMost || !dash->lengths) return;
    CGFloat few[kFew];
    CGFloat* lengths = dash->count <= kFew ? few : new (std::nothrow) CGFloat[static_cast<size_t>(dash->count)];
    if (!lengths) return;
    for (long i = 0; i < dash->count; i++) lengths[i] = dash->lengths[i];
    CGContextSetLineDash(context, dash->phase, lengths, static_cast<size_t>(dash->count));
    if (lengths != few) delete[] lengths;
}

void ZR_Device::GetSVGBLOB(ZR_Handle* out) {
    if (svg && out) svg->ExportToVar(out);
}

// Copying ----------------------------------------------------------------------------------------------------------

void ZR_CopyBits(ZR_Device* source, ZR_Device* destination, ZR_Rect* sourceRect, ZR_Rect* destinationRect) {
    if (!source || !destination || !sourceRect || !destinationRect) return;
    // Required: only the left edge of the source's rectangle counts.
    const CGPoint point = {destinationRect->left - sourceRect->left, HeightOf(destination) - destinationRect->bottom};
    if (!source->bitmapData) return CGContextDrawLayerAtPoint(destination->context, point, source->layer);
    CGImageRef image = CGBitmapContextCreateImage(source->context);
    CGContextDrawImage(destination->context, {point, {WidthOf(source), HeightOf(source)}}, image);
    CGImageRelease(image);
}

void ZR_CopyScaleBits(ZR_Device* source, ZR_Device* destination, ZR_Rect* rect) {
    if (!source || !destination || !rect) return;
    const CGRect target = destination->GetCGRect(rect);
    if (!source->bitmapData) return CGContextDrawLayerInRect(destination->context, target, source->layer);
    CGImageRef image = CGBitmapContextCreateImage(source->context);
    CGContextDrawImage(destination->context, target, image);
    CGImageRelease(image);
}
