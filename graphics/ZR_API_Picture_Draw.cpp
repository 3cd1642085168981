// Pictures on a device: as "image" elements with the encoded picture in them, or as pixels and PDF pages.
#include <algorithm>
#include <cmath>

#include "core/ZR_API_Picture.h"
#include "graphics/ZR_API_Device.h"
#include "graphics/ZR_API_Matrix.h"
#include "graphics/ZR_API_SVGDocument.h"
#include "platform/CoreGraphics/CoreGraphics.h"

enum DisplayFormat : short {
    kCentred = 1,
    kStretched = 2,
    kTopLeft = 3,
    kTopLeftToo = 4,
    kFittedAtTop = 5,
    kFittedCentred = 6,
    kTiled = 7
};

// What one call draws; shared by both bodies.
struct PictureDraw {
    ZR_Picture* picture;
    ZR_Device* device;
    ZR_Rect* rect;
    float opacity;  // percent
    ZR_Matrix* matrix;
    ZR_Alignment alignment;
    ZR_Handle* properties;
};

static bool IsFinite(const ZR_Rect& r) {
    return std::isfinite(r.left) && std::isfinite(r.top) && std::isfinite(r.right) && std::isfinite(r.bottom);
}

static float FitScale(const ZR_Picture* picture, const ZR_Rect& r) {
    return std::min((r.right - r.left) / static_cast<float>(picture->width),
                    (r.bottom - r.top) / static_cast<float>(picture->height));
}

// SVG --------------------------------------------------------------------------------------------------------------

// Guards: columns that one call writes, and the text that they hold together, in units. Columns beyond are left out.
static constexpr long kMostColumns = 32767;
static constexpr long kMostColumnText = 1L << 27;

static const char* DataPrefix(ZR_Pictformat format) {
    for (const auto& row : kPictformats)
        if (row.format == format) return row.dataPrefix;
    return nullptr;
}

// "data:" with the encoded picture. Required: an SVG picture, which nothing encodes, gives the prefix alone.
static ZR_Text DataText(const ZR_Picture* picture) {
    ZR_Handle bytes;
    ZR_Text text;
    bytes.Create(1, 0);
    picture->ToBlob(&bytes, /*white*/ false);
    text.Create();
    text.AddString(DataPrefix(picture->format));
    text.Encode(&bytes);
    bytes.Dispose();
    return text;
}

struct ImagePlace {
    long x, y, width, height;
};

static void WriteImage(const PictureDraw& draw, ZR_Text* data, const ImagePlace& place, bool stretched) {
    ZR_DOM_Tree* svg = draw.device->svg;
    ZR_Text element;
    element.Create();
    svg->CreateElement("image", &element);
    draw.device->SetCustomProperties(&element, draw.properties);
    draw.device->SetCustomProperties(&element, &draw.device->customProperties);
    svg->SetAttributeLong(&element, "x", place.x);
    svg->SetAttributeLong(&element, "y", place.y);
    svg->SetAttributeLong(&element, "width", place.width);
    svg->SetAttributeLong(&element, "height", place.height);
    svg->SetAttributeText(&element, "xlink:href", data);
    if (draw.opacity != 100) svg->SetAttributeDouble(&element, "opacity", draw.opacity / 100);
    svg->SetMatrix(&element, draw.matrix, "transform");
    if (stretched) svg->SetAttributeText(&element, "preserveAspectRatio", "none");
    svg->Clip(&element);
    element.Dispose();
}

// Columns of the picture's width and of the rectangle's height, and one of the rest.
static void WriteColumns(const PictureDraw& draw, ZR_Text* data, long w, long h) {
    long width = draw.picture->width, n = w / width, rest = w - n * width;
    long x = ZR_TruncatedToLong(draw.rect->left), y = ZR_TruncatedToLong(draw.rect->top);
    long most = std::min(kMostColumns, std::max(kMostColumnText / data->count, 1L));
    for (long i = 0; i < std::min(n, most); ++i)
        WriteImage(draw, data, {width * i + x, y, width, h}, /*stretched*/ false);
    if (rest > 0 && n < most)
        WriteImage(draw, data, {ZR_TruncatedToLong(static_cast<float>(n * width) + draw.rect->left), y, rest, h},
                   /*stretched*/ false);
}

static void DrawSvg(const PictureDraw& draw) {
    const ZR_Picture* picture = draw.picture;
    const ZR_Rect& r = *draw.rect;
    if (!DataPrefix(picture->format) || picture->width < 1 || picture->height < 1) return;
    long w = ZR_TruncatedToLong(r.right - r.left), h = ZR_TruncatedToLong(r.bottom - r.top);
    ZR_Text data = DataText(picture);
    if (picture->displayFormat == kTiled && picture->width < w) {
        WriteColumns(draw, &data, w, h);
    } else {
        // Required: the modes 1, 3, 4 and 6 fill the rectangle, and a wide picture in mode 7 too.
        if (picture->displayFormat == kFittedAtTop) {
            float scale = FitScale(picture, r);
            w = ZR_TruncatedToLong(static_cast<float>(picture->width) * scale);
            h = ZR_TruncatedToLong(static_cast<float>(picture->height) * scale);
        }
        WriteImage(draw, &data, {ZR_TruncatedToLong(r.left), ZR_TruncatedToLong(r.top), w, h},
                   picture->displayFormat == kStretched);
    }
    data.Dispose();
}

// Pixels -----------------------------------------------------------------------------------------------------------

static ZR_Rect Sized(float left, float top, float width, float height) {
    return {top, left, left + width, top + height};
}

// The place of the picture in r. Under a matrix r is mirrored: its bottom is what is seen as its top.
static ZR_Rect TargetOf(const PictureDraw& draw, const ZR_Rect& r, bool underMatrix) {
    const ZR_Picture* picture = draw.picture;
    auto pw = static_cast<float>(picture->width), ph = static_cast<float>(picture->height);
    float width = r.right - r.left, height = r.bottom - r.top, scale = FitScale(picture, r);
    auto at = [&](float left, float h) { return Sized(left, underMatrix ? r.bottom - h : r.top, 0, h); };
    ZR_Rect target = r;
    switch (picture->displayFormat) {
        case kCentred:
            return Sized(r.left + width / 2 - static_cast<float>(picture->width / 2),
                         r.top + height / 2 - static_cast<float>(picture->height / 2), pw, ph);
        case kTopLeft:
        case kTopLeftToo:
            target = at(r.left, ph);
            target.right = target.left + pw;
            return target;
        case kFittedAtTop: {
            float left = r.left;
            if (draw.alignment == ZR_ALIGNMENT_CENTER) left = r.left + width / 2 - pw * scale / 2;
            if (draw.alignment == ZR_ALIGNMENT_RIGHT) left = r.right - pw * scale;
            target = at(left, ph * scale);
            target.right = target.left + pw * scale;
            return target;
        }
        case kFittedCentred:
            return Sized(r.left + width / 2 - pw * scale / 2, r.top + height / 2 - ph * scale / 2, pw * scale,
                         ph * scale);
        case kTiled: return Sized(r.left, r.top, pw, ph);
        default: return target;  // stretched
    }
}

static void DrawTiles(const PictureDraw& draw, const ZR_Rect& r, ZR_Rect* target, bool underMatrix) {
    ZR_Device* device = draw.device;
    if (!underMatrix) return CGContextDrawTiledImage(device->context, device->GetCGRect(target), draw.picture->image);
    CGContextSaveGState(device->context);
    device->PrepareMatrixDrawing(target);
    CGRect place = target->GetCGRect();
    place.origin.y += std::fmod(r.bottom - r.top, static_cast<float>(draw.picture->height));
    CGContextDrawTiledImage(device->context, place, draw.picture->image);
    CGContextRestoreGState(device->context);
}

static void DrawBitmap(const PictureDraw& draw, ZR_Rect* target, bool underMatrix) {
    ZR_Device* device = draw.device;
    if (!underMatrix) return CGContextDrawImage(device->context, device->GetCGRect(target), draw.picture->image);
    CGContextSaveGState(device->context);
    device->PrepareMatrixDrawing(target);
    CGContextDrawImage(device->context, target->GetCGRect(), draw.picture->image);
    CGContextRestoreGState(device->context);
}

static void DrawPixels(const PictureDraw& draw) {
    ZR_Picture* picture = draw.picture;
    ZR_Device* device = draw.device;
    bool needsSize = picture->displayFormat >= kFittedAtTop;
    if (!device->context || (needsSize && (picture->width < 1 || picture->height < 1))) return;
    CGRect place;
    bool underMatrix = device->PerformDrawMatrix(draw.rect, draw.matrix, &place);
    if (!underMatrix) CGContextSaveGState(device->context);
    ZR_Rect r;
    device->CGRectToZRRect(&place, &r);
    CGContextClipToRect(device->context, place);
    float alpha = draw.opacity / 100;
    if (alpha != 1) CGContextSetAlpha(device->context, alpha);
    ZR_Rect target = TargetOf(draw, r, underMatrix);
    if (picture->displayFormat == kTiled) DrawTiles(draw, r, &target, underMatrix);
    else if (picture->document) picture->DrawPDFDocument(1, device, &target, underMatrix);
    else DrawBitmap(draw, &target, underMatrix);
    if (alpha != 1) CGContextSetAlpha(device->context, 1);
    CGContextRestoreGState(device->context);
}

// Members ----------------------------------------------------------------------------------------------------------

void ZR_Picture::Draw(ZR_Device* device, ZR_Rect* rect, float opacity, ZR_Matrix* matrix, ZR_Alignment alignment,
                      ZR_Handle* properties) {
    if (displayFormat < kCentred || displayFormat > kTiled) displayFormat = kStretched;
    if (!device || !rect || !IsFinite(*rect) || !std::isfinite(opacity)) return;
    PictureDraw draw = {this, device, rect, opacity, matrix, alignment, properties};
    if (device->svg) {
        if (image) DrawSvg(draw);
    } else if (image || document) {
        DrawPixels(draw);
    }
}

void ZR_Picture::DrawPDFDocument(long page, ZR_Device* device, ZR_Rect* rect, bool underMatrix) {
    if (!device || !rect || page < 1 || CGPDFDocumentGetNumberOfPages(document) < 1) return;
    CGPDFPageRef shown = CGPDFDocumentGetPage(document, static_cast<size_t>(page));
    CGRect box = CGPDFPageGetBoxRect(shown, kCGPDFCropBox), place;
    if (!shown || !(box.size.width > 0 && box.size.height > 0)) return;
    double width = static_cast<double>(rect->right) - rect->left,
           height = static_cast<double>(rect->bottom) - rect->top;
    CGContextSaveGState(device->context);
    if (underMatrix) {
        device->PrepareMatrixDrawing(rect);
        place = rect->GetCGRect();
    } else {
        device->ZRRectToCGRect(rect, &place);
    }
    CGContextTranslateCTM(device->context, place.origin.x, place.origin.y);
    CGContextScaleCTM(device->context, width / box.size.width, height / box.size.height);
    CGContextDrawPDFPage(device->context, shown);  // Required: the origin of the crop box is not subtracted
    CGContextRestoreGState(device->context);
}
