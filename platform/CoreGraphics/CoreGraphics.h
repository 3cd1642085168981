// Stand-ins for the Core Graphics operations in use, with their documented names and meaning: contexts with y up, the
// origin at the lower left corner, colours not premultiplied. Objects are counted like all of CoreFoundation; Create
// and Copy hand a reference over, Get lends one. A context belongs to one thread at a time; images, paths (once they
// are made), colours, gradients and documents may be shared.
//
// What draws lies in libzr-graphics.so, what reads and joins PDF documents in libzr-pdf.so. Without them the creators
// answer null. Null objects are taken everywhere and do nothing.
//
// Bounds, so that no input crashes, hangs or takes memory without end:
// - a bitmap has at most 32767 pixels a side and 2^28 pixels in all (1 GiB), a decoded image 2^27; beyond = null;
// - a layer or page has sides of at most 1e6 points;
// - device coordinates end at +-4e6, points beyond are moved to that edge; what is not finite is left out;
// - nothing is drawn while the matrix has no inverse or is not finite;
// - a dash that would cut a line on pixels into more than 10^6 pieces is drawn solid;
// - 4096 stops a gradient, 65536 saved states; a blur ends at 500, a shadow's mask at 2^26 pixels.
#ifndef ZR_PLATFORM_COREGRAPHICS_H
#define ZR_PLATFORM_COREGRAPHICS_H

#include <cstddef>

#include "platform/CoreGraphics/CGTypes.h"

// Colour spaces and colours ----------------------------------------------------------------------------------------
extern const CFStringRef kCGColorSpaceGenericRGB;  // drawn as sRGB
extern const CFStringRef kCGColorSpaceSRGB;        // the same
extern const CFStringRef kCGColorSpaceGenericGray;
CFTypeID CGColorSpaceGetTypeID();
CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);  // null = another name
CGColorSpaceRef CGColorSpaceCreateDeviceRGB();
CGColorSpaceRef CGColorSpaceCreateDeviceGray();
size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space);  // without alpha: 3 or 1; null = 0

CFTypeID CGColorGetTypeID();
CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components);  // alpha last
CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha);
size_t CGColorGetNumberOfComponents(CGColorRef color);  // with alpha: 4 or 2
const CGFloat* CGColorGetComponents(CGColorRef color);  // borrowed
CGFloat CGColorGetAlpha(CGColorRef color);

// Paths ------------------------------------------------------------------------------------------------------------
// m: applied to the points on their way in; null = none. A line or curve with no point before it is left out.
CFTypeID CGPathGetTypeID();
CGMutablePathRef CGPathCreateMutable();
CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform* m);
CGPathRef CGPathCreateCopy(CGPathRef path);
void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y);
void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y);
void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat cx1, CGFloat cy1, CGFloat cx2,
                           CGFloat cy2, CGFloat x, CGFloat y);
void CGPathAddQuadCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat cx, CGFloat cy, CGFloat x,
                               CGFloat y);
void CGPathAddArcToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x1, CGFloat y1, CGFloat x2,
                         CGFloat y2, CGFloat radius);
void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect);
void CGPathAddEllipseInRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect);
void CGPathAddPath(CGMutablePathRef path, const CGAffineTransform* m, CGPathRef other);
void CGPathCloseSubpath(CGMutablePathRef path);
bool CGPathIsEmpty(CGPathRef path);  // null = true
CGPoint CGPathGetCurrentPoint(CGPathRef path);
CGRect CGPathGetBoundingBox(CGPathRef path);  // around all points, control points too; empty path = CGRectNull
bool CGPathContainsPoint(CGPathRef path, const CGAffineTransform* m, CGPoint point, bool evenOdd);

// Contexts: state --------------------------------------------------------------------------------------------------
enum CGLineJoin : int { kCGLineJoinMiter = 0, kCGLineJoinRound = 1, kCGLineJoinBevel = 2 };
enum CGLineCap : int { kCGLineCapButt = 0, kCGLineCapRound = 1, kCGLineCapSquare = 2 };
enum CGPathDrawingMode : int {
    kCGPathFill = 0,
    kCGPathEOFill = 1,
    kCGPathStroke = 2,
    kCGPathFillStroke = 3,
    kCGPathEOFillStroke = 4
};
CFTypeID CGContextGetTypeID();
void CGContextSaveGState(CGContextRef context);
void CGContextRestoreGState(CGContextRef context);  // without a save: nothing
void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform);
void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty);
void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy);
void CGContextRotateCTM(CGContextRef context, CGFloat radians);
CGAffineTransform CGContextGetCTM(CGContextRef context);
void CGContextSetLineWidth(CGContextRef context, CGFloat width);  // negative or not finite = no change
void CGContextSetLineJoin(CGContextRef context, CGLineJoin join);
void CGContextSetLineCap(CGContextRef context, CGLineCap cap);
void CGContextSetMiterLimit(CGContextRef context, CGFloat limit);
void CGContextSetLineDash(CGContextRef context, CGFloat phase, const CGFloat* lengths, size_t count);  // 0 = solid
void CGContextSetShouldAntialias(CGContextRef context, bool antialias);
void CGContextSetAlpha(CGContextRef context, CGFloat alpha);
void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color);
void CGContextSetFillColorSpace(CGContextRef context, CGColorSpaceRef space);  // the colour becomes black
void CGContextSetStrokeColorSpace(CGContextRef context, CGColorSpaceRef space);
// Offset and blur are in the space of the untransformed context, y up. The colour is black with alpha 1/3. No offset
// and no blur: no shadow.
void CGContextSetShadow(CGContextRef context, CGSize offset, CGFloat blur);
void CGContextSetShadowWithColor(CGContextRef context, CGSize offset, CGFloat blur, CGColorRef color);  // null = none
void CGContextSetTextMatrix(CGContextRef context, CGAffineTransform transform);  // not part of the saved state
CGAffineTransform CGContextGetTextMatrix(CGContextRef context);
void CGContextSetTextPosition(CGContextRef context, CGFloat x, CGFloat y);
CGPoint CGContextGetTextPosition(CGContextRef context);
void CGContextFlush(CGContextRef context);  // of a bitmap: the caller's memory gets the pixels

// Contexts: the path, kept in device space, so that later transforms leave it alone ----------------------------------
void CGContextBeginPath(CGContextRef context);
void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y);
void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y);
void CGContextAddCurveToPoint(CGContextRef context, CGFloat cx1, CGFloat cy1, CGFloat cx2, CGFloat cy2, CGFloat x,
                              CGFloat y);
void CGContextAddQuadCurveToPoint(CGContextRef context, CGFloat cx, CGFloat cy, CGFloat x, CGFloat y);
void CGContextAddArcToPoint(CGContextRef context, CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2, CGFloat radius);
void CGContextAddRect(CGContextRef context, CGRect rect);
void CGContextAddEllipseInRect(CGContextRef context, CGRect rect);
void CGContextAddPath(CGContextRef context, CGPathRef path);
void CGContextClosePath(CGContextRef context);
bool CGContextIsPathEmpty(CGContextRef context);

// Contexts: painting and clipping. All of these but the images, gradients and layers end the current path.
void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode);
void CGContextFillPath(CGContextRef context);
void CGContextEOFillPath(CGContextRef context);
void CGContextStrokePath(CGContextRef context);
void CGContextFillRect(CGContextRef context, CGRect rect);
void CGContextStrokeRect(CGContextRef context, CGRect rect);
void CGContextStrokeRectWithWidth(CGContextRef context, CGRect rect, CGFloat width);
void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect);
void CGContextClearRect(CGContextRef context, CGRect rect);  // to transparent; nothing in a PDF
void CGContextClip(CGContextRef context);                    // an empty path changes nothing
void CGContextEOClip(CGContextRef context);
void CGContextClipToRect(CGContextRef context, CGRect rect);  // an empty one leaves nothing
CGRect CGContextGetClipBoundingBox(CGContextRef context);     // in user space; nothing left = CGRectNull

// Gradients and shadings -------------------------------------------------------------------------------------------
enum CGGradientDrawingOptions : uint32_t {
    kCGGradientDrawsBeforeStartLocation = 1,
    kCGGradientDrawsAfterEndLocation = 2
};
// locations: 0..1, null = evenly spread
CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count);
void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient, CGPoint start, CGPoint end,
                                 uint32_t options);
void CGContextDrawRadialGradient(CGContextRef context, CGGradientRef gradient, CGPoint startCenter, CGFloat startRadius,
                                 CGPoint endCenter, CGFloat endRadius, uint32_t options);

typedef void (*CGFunctionEvaluateCallback)(void* info, const CGFloat* in, CGFloat* out);
typedef void (*CGFunctionReleaseInfoCallback)(void* info);
struct CGFunctionCallbacks {
    unsigned version;  // 0
    CGFunctionEvaluateCallback evaluate;
    CGFunctionReleaseInfoCallback releaseInfo;  // null = none
};
// domain, range: pairs of least and greatest that in- and outputs are cut to; range null = not cut
CGFunctionRef CGFunctionCreate(void* info, size_t inputs, const CGFloat* domain, size_t outputs, const CGFloat* range,
                               const CGFunctionCallbacks* callbacks);
// function: one input, the space's components and alpha as outputs; sampled at 33 places here
CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end, CGFunctionRef function,
                                  bool extendStart, bool extendEnd);
void CGContextDrawShading(CGContextRef context, CGShadingRef shading);

// Bitmaps and images -----------------------------------------------------------------------------------------------
enum CGImageAlphaInfo : uint32_t { kCGImageAlphaNone = 0, kCGImageAlphaPremultipliedLast = 1, kCGImageAlphaLast = 3 };
// data: R,G,B,A premultiplied, rowBytes a row, rows from the top; borrowed until the context is gone; null = memory of
// the context's own. What stands there is drawn upon. Only 8 bits, an RGB space and alpha premultiplied last; else
// null.
CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent, size_t rowBytes,
                                   CGColorSpaceRef space, uint32_t bitmapInfo);
CGImageRef CGBitmapContextCreateImage(CGContextRef context);  // the pixels as they stand; null = no bitmap context
void* CGBitmapContextGetData(CGContextRef context);           // up to date after CGContextFlush
size_t CGBitmapContextGetWidth(CGContextRef context);
size_t CGBitmapContextGetHeight(CGContextRef context);
size_t CGBitmapContextGetBytesPerRow(CGContextRef context);

CFTypeID CGImageGetTypeID();
size_t CGImageGetWidth(CGImageRef image);  // pixels; null = 0
size_t CGImageGetHeight(CGImageRef image);
CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image);
size_t CGImageGetBytesPerRow(CGImageRef image);
CGDataProviderRef CGImageGetDataProvider(CGImageRef image);  // R,G,B,A by CGImageGetAlphaInfo; borrowed
void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image);       // upright where y runs up
void CGContextDrawTiledImage(CGContextRef context, CGRect rect, CGImageRef image);  // over the whole clip

// Layers -----------------------------------------------------------------------------------------------------------
CGLayerRef CGLayerCreateWithContext(CGContextRef reference, CGSize size, CFDictionaryRef info);  // reference: any, null
CGContextRef CGLayerGetContext(CGLayerRef layer);                                                // borrowed
CGSize CGLayerGetSize(CGLayerRef layer);
void CGContextDrawLayerAtPoint(CGContextRef context, CGPoint point, CGLayerRef layer);
void CGContextDrawLayerInRect(CGContextRef context, CGRect rect, CGLayerRef layer);

// Bytes in and out -------------------------------------------------------------------------------------------------
typedef void (*CGDataProviderReleaseDataCallback)(void* info, const void* data, size_t size);
CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data);
CGDataProviderRef CGDataProviderCreateWithURL(CFURLRef url);  // reads the file, up to 2^31 bytes; null = cannot
CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback release);  // copied, released at once
CFDataRef CGDataProviderCopyData(CGDataProviderRef provider);
CGDataConsumerRef CGDataConsumerCreateWithCFData(CFMutableDataRef data);  // appends
CGDataConsumerRef CGDataConsumerCreateWithURL(CFURLRef url);              // replaces the file; null = cannot

// PDF --------------------------------------------------------------------------------------------------------------
enum CGPDFBox : int { kCGPDFMediaBox = 0, kCGPDFCropBox = 1, kCGPDFBleedBox = 2, kCGPDFTrimBox = 3, kCGPDFArtBox = 4 };
extern const CFStringRef kCGPDFContextMediaBox;  // CFData with the bytes of a CGRect
extern const CFStringRef kCGPDFContextCropBox;   // likewise
// mediaBox null = 612 x 792. What the info dictionary holds is not used.
CGContextRef CGPDFContextCreate(CGDataConsumerRef consumer, const CGRect* mediaBox, CFDictionaryRef info);
CGContextRef CGPDFContextCreateWithURL(CFURLRef url, const CGRect* mediaBox, CFDictionaryRef info);
void CGPDFContextBeginPage(CGContextRef context, CFDictionaryRef pageInfo);  // the boxes above; null = as created
void CGPDFContextEndPage(CGContextRef context);
void CGPDFContextClose(CGContextRef context);  // writes the document; done by the last release too
void CGContextBeginPage(CGContextRef context, const CGRect* mediaBox);  // the same for any context of pages
void CGContextEndPage(CGContextRef context);

CFTypeID CGPDFDocumentGetTypeID();
CGPDFDocumentRef CGPDFDocumentCreateWithProvider(CGDataProviderRef provider);  // null = no PDF, or a password is needed
CGPDFDocumentRef CGPDFDocumentCreateWithURL(CFURLRef url);
size_t CGPDFDocumentGetNumberOfPages(CGPDFDocumentRef document);
CGPDFPageRef CGPDFDocumentGetPage(CGPDFDocumentRef document, size_t number);  // [1..count]; borrowed; null outside
CGRect CGPDFPageGetBoxRect(CGPDFPageRef page, CGPDFBox box);  // in points; a missing box is the next larger one
int CGPDFPageGetRotationAngle(CGPDFPageRef page);             // 0, 90, 180 or 270, clockwise
size_t CGPDFPageGetPageNumber(CGPDFPageRef page);
// The page in its own space, unturned, cut to its crop box. Into a PDF it goes as it is, without loss.
void CGContextDrawPDFPage(CGContextRef context, CGPDFPageRef page);

#endif
