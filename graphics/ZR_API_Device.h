// ZR_Device: the drawing target. Each primitive has two bodies behind one signature: with svg set it adds elements to
// that document, otherwise it draws on context. All coordinates are in points, y down, origin at the top left.
// A plain structure that may be copied bit by bit; one of the copies is disposed. Alive from a Create member to
// Dispose. Belongs to one thread at a time. No primitive reports an error: bad input draws nothing.
// Pointers to matrix, gradient, properties and dash may be null: none.
#ifndef ZR_API_DEVICE_H
#define ZR_API_DEVICE_H

#include "core/ZR_API_Color.h"
#include "core/ZR_API_Geometry.h"
#include "core/ZR_API_Text.h"
#include "graphics/ZR_API_Alignment.h"
#include "platform/CoreGraphics/CGTypes.h"

struct CTFrame;
struct ZR_DOM_Tree;
struct ZR_Gradient;
struct ZR_LineDash;
struct ZR_Matrix;
struct ZR_Region;

enum ZR_Fillrule : int { ZR_FILL_NONZERO = 0, ZR_FILL_EVENODD = 1 };

struct ZR_DeviceProperty {  // an attribute for SVG elements; an empty name or value is not written
    ZR_Text name, value;    // owned
};

struct ZR_Device {
    CGContextRef context;        // null for an SVG device; owned with bitmapData, else borrowed
    CGLayerRef layer;            // of a layer-backed offscreen device; owned
    CGColorSpaceRef colorSpace;  // owned
    unsigned char* bitmapData;   // 4 bytes a pixel, premultiplied R,G,B,A; owned; non-null marks a bitmap device
    bool stateSaved;             // Dispose restores the state that creation saved
    bool offscreen;              // draws into something of its own
    bool printing;               // draws a printer page; set by the print code
    bool rotatePage;             // the page is turned by 180 degrees; counts with printing only
    ZR_Rect bounds;              // the drawing area
    ZR_Handle framePath;         // path records; read by the SVG body of FrameRegion
    ZR_Handle customProperties;  // ZR_DeviceProperty; written onto every SVG element
    float dpiX, dpiY;            // asked of a bitmap device; 0 = 72
    ZR_DOM_Tree* svg;            // owned; non-null selects the SVG bodies

    // Life ---------------------------------------------------------------------------------------------------------
    void Create();
    // context is borrowed; moved by (x, -y). gray: generic gray, also as colour space of the context.
    void CreateWithCGContext(CGContext* context, ZR_Rect* bounds, float x, float y, bool gray);
    void CreateWithCGContextFlip(CGContext* context, ZR_Rect* bounds);  // for a context whose y runs down
    void CreateSVG(ZR_Rect* bounds);
    // width x height points. A bitmap is scaled to dpi / 72 if both are given, and has at most 32767 pixels a side and
    // 2^28 in all; a layer only keeps them. false = refused, the device has no context.
    bool CreateOffscreen(long width, long height, bool bitmap, long dpiX, long dpiY);
    void Dispose();                  // Required: customProperties is emptied without disposing what it holds
    void DisposeCustomProperties();  // each record's texts, then the handle

    // Drawing frame ------------------------------------------------------------------------------------------------
    void BeginDraw();  // turns a rotated printer page; else nothing
    void EndDraw();    // nothing
    void Flush();
    void ResetTransform();            // as BeginDraw
    void SetTransform(ZR_Matrix* m);  // within the former ones, which stay; drops the clip
    CGAffineTransform GetSystemMatrix(ZR_Matrix* m);
    ZR_Point ConvertPointToMatrixPoint(ZR_Matrix* m, ZR_Point p);
    void SetAntialias(bool antialias);
    void ClearRect(ZR_Rect* rect);

    // Conversion between points y down and the context's y up ------------------------------------------------------
    void ZRRectToCGRect(ZR_Rect* rect, CGRect* out);
    CGRect GetCGRect(ZR_Rect* rect);
    void CGRectToZRRect(CGRect* rect, ZR_Rect* out);
    // null or identity: out is the converted rectangle, false. Else the state is saved, the context turned to y down
    // under m, out the rectangle as it stands, true: the caller restores the state.
    bool PerformDrawMatrix(ZR_Rect* rect, ZR_Matrix* m, CGRect* out);
    // After true above: y up again, origin at the rectangle's lower left corner; its origin becomes 0.
    void PrepareMatrixDrawing(CGRect* rect);
    void PrepareMatrixDrawing(ZR_Rect* rect);  // for one that CGRectToZRRect mirrored

    // Clip; drops the former one -----------------------------------------------------------------------------------
    void ClipRect(ZR_Rect* rect);
    void ClipRect(ZR_Rect* rect, ZR_Rect* limit);  // rect becomes the part within limit
    void SetClipRegion(ZR_Region* region);         // pixels only

    // Properties, dash, output -------------------------------------------------------------------------------------
    void SetCustomProperties(ZR_Text* element, ZR_Handle* properties);  // ZR_DeviceProperty records
    void SetLineDash(ZR_LineDash* dash);
    void GetSVGBLOB(ZR_Handle* out);  // the XML text; nothing on a device without svg

    // Shapes: ZR_API_Device_Shapes.cpp -----------------------------------------------------------------------------
    void DrawLine(float x1, float y1, float x2, float y2, ZR_RGBColor* color, float width, bool antialias, short join,
                  short cap, ZR_Matrix* matrix, ZR_Handle* properties, ZR_LineDash* dash);
    // Each from (left, top) to (right, bottom). Required: pixels close the last segment's subpath.
    void DrawLines(ZR_Rect* segments, long count, ZR_RGBColor* color, float width, bool antialias, ZR_LineDash* dash);
    // radius is the diameter of the corners
    void DrawRect(ZR_Rect* rect, bool fill, bool stroke, ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width,
                  bool antialias, float radius, bool rounded, ZR_Matrix* matrix, ZR_Gradient* gradient,
                  ZR_Handle* properties, ZR_LineDash* dash);
    void DrawRectsWithDifferentBackgroundColors(ZR_Rect* rects, ZR_RGBColor* colors, long count);
    void DrawOval(ZR_Rect* rect, bool fill, bool stroke, ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width,
                  bool antialias, ZR_Matrix* matrix, ZR_Gradient* gradient, ZR_Handle* properties, ZR_LineDash* dash);
    // degrees; end 0 = 360. Required: a gradient has no effect on pixels.
    void DrawArc(ZR_Rect* rect, float start, float end, bool clockwise, bool fill, bool stroke, ZR_RGBColor* fillColor,
                 ZR_RGBColor* strokeColor, float width, bool antialias, ZR_Matrix* matrix, ZR_Gradient* gradient,
                 ZR_Handle* properties, ZR_LineDash* dash);
    // bounds: the box that the path's coordinates fill; target: where it goes. outPath, null or a living handle:
    // receives the path as drawn, in document coordinates. SVG writes path as it stands.
    void DrawPath(bool smooth, ZR_Handle* path, ZR_Rect* target, ZR_Rect* bounds, bool fill, bool stroke,
                  ZR_RGBColor* fillColor, ZR_RGBColor* strokeColor, float width, bool antialias, ZR_Matrix* matrix,
                  ZR_Gradient* gradient, ZR_Handle* properties, ZR_LineDash* dash, ZR_Handle* outPath,
                  ZR_Fillrule rule);
    void FillRegion(ZR_Region* region, ZR_RGBColor* color);  // Required: pixels are opaque whatever the alpha
    void FrameRegion(ZR_Region* region, ZR_RGBColor* color, float width, ZR_LineDash* dash);  // likewise
    void FillRectWithShadow(ZR_Rect* rect, float radius, ZR_RGBColor* color, float offsetX, float offsetY, long blur,
                            bool antialias);                         // both offsets above 0, else no shadow
    void RoundRectToPath(ZR_Rect* rect, float radius);               // radius: a diameter, cut to half the sides
    void RoundRectToPath(CGRect rect, float radius);                 // likewise, in the context's space
    void DrawGradient(ZR_Gradient* gradient, ZR_Rect* rect);         // over the whole clip; pixels only. Required:
                                                                     // the radial form in percent leaves its scale
    void DrawLayer(ZR_Device* source, ZR_Rect* rect, ZR_Matrix* m);  // clipped to rect; pixels only. Required: drops
                                                                     // the clip, and leaves that of rect without m
    void DrawLayerWOclip(ZR_Device* source, ZR_Rect* rect, ZR_Matrix* m);

    // Arcs: ZR_API_Device_Arc.cpp ----------------------------------------------------------------------------------
    void AddCurvesAsArc(ZR_Handle* path, ZR_Point* points, long count);  // as path records; below 4 points nothing
    void AddCurvesAsArc(ZR_Point* points, long count);                   // as the path of the context

    // Text: ZR_API_Device_Text.cpp; font is a ZR_Font, a null color is black ------------------------------------------
    // (x, y): the left end of the baseline. rotation: degrees, counterclockwise, on pixels alone; under a matrix it
    // turns nothing and Required: moves the text to the origin.
    void DrawText(ZR_Text* text, float x, float y, void* font, ZR_RGBColor* color, float rotation, bool antialias,
                  ZR_Matrix* matrix, ZR_Handle* properties);
    void DrawTextAlignment(ZR_Text* text, float left, float right, float y, void* font, ZR_RGBColor* color,
                           ZR_Alignment alignment, float rotation, bool antialias, ZR_Matrix* matrix,
                           ZR_Handle* properties);
    // lineSpacing: points between lines. kerning: points behind each glyph, 0 = the font's kerning is off. keepTop: the
    // block at the top has no room for one more line. A vertical that is none draws nothing. measuring: the size of the
    // block goes into rect, in SVG its bottom alone.
    void DrawTextLayout(ZR_Text* text, ZR_Rect* rect, ZR_Alignment alignment, ZR_Alignment_Vertical vertical,
                        void* font, ZR_RGBColor* color, bool antialias, ZR_Matrix* matrix, ZR_Handle* properties,
                        bool wordWrap, ZR_Textmeasuring measuring, bool clip, float lineSpacing, float kerning,
                        bool keepTop);
    void DrawTextLayout_SVG(ZR_Text* text, ZR_Rect* rect, ZR_Alignment alignment, ZR_Alignment_Vertical vertical,
                            void* font, ZR_RGBColor* color, bool antialias, ZR_Matrix* matrix, ZR_Handle* properties,
                            ZR_Textmeasuring measuring, bool clip, float lineSpacing);
    void DrawStrikethroughText(const CTFrame* frame, const CGColor* color, float fontSize, ZR_Alignment alignment);

    // Styled text: ZR_API_Device_MultiStyleText.cpp; runs is a ZR_MultiStyleText -------------------------------------
    // Arguments as of DrawTextLayout, always clipped; an empty rectangle measures nothing either.
    void DrawMultiStyleText(ZR_Text* text, void* runs, ZR_Rect* rect, ZR_Alignment alignment,
                            ZR_Alignment_Vertical vertical, void* font, ZR_RGBColor* color, bool antialias,
                            ZR_Matrix* matrix, ZR_Handle* properties, bool wordWrap, ZR_Textmeasuring measuring,
                            bool lastFlag, float lineSpacing, float kerning, bool keepTop);
    void DrawMultiStyleText_SVG(ZR_Text* text, void* runs, ZR_Rect* rect, ZR_Alignment alignment,
                                ZR_Alignment_Vertical vertical, void* font, ZR_RGBColor* color, bool antialias,
                                ZR_Matrix* matrix, ZR_Handle* properties, float lineSpacing, bool lastFlag);
};

void ZR_InitGrafics();    // nothing
void ZR_DeinitGrafics();  // nothing

// An offscreen device onto another one: moved in x by the difference of the rectangles' left sides, its bottom on the
// bottom of destinationRect; or scaled into rect.
void ZR_CopyBits(ZR_Device* source, ZR_Device* destination, ZR_Rect* sourceRect, ZR_Rect* destinationRect);
void ZR_CopyScaleBits(ZR_Device* source, ZR_Device* destination, ZR_Rect* rect);

#endif
