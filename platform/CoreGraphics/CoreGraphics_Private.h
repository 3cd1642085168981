// What the sources of the drawing stand-ins share: paths as record lists, the graphics state, contexts and images.
#ifndef ZR_PLATFORM_COREGRAPHICS_PRIVATE_H
#define ZR_PLATFORM_COREGRAPHICS_PRIVATE_H

#include <memory>
#include <mutex>
#include <vector>

#include "platform/CoreFoundation/CoreFoundation_Private.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/SharedObject.h"
#include "platform/graphics_object/GraphicsTable.h"

inline const ZRGTable* Graphics() { return static_cast<const ZRGTable*>(ZRSharedObjectGetTable(kZRObjectGraphics)); }

bool IsFinite(CGPoint p);
bool IsFinite(CGRect r);
// Whether something can be drawn under it: finite, with an inverse that is finite too.
bool IsUsable(const CGAffineTransform& m);

// Paths ------------------------------------------------------------------------------------------------------------

// Records of a path, in the table's form. Points that are not finite are left out with their record.
struct PathRecords {
    std::vector<uint8_t> verbs;  // ZRGVerb
    std::vector<double> points;
    CGPoint start = {}, current = {};
    bool hasCurrent = false, closed = false;  // closed: the next line begins a subpath at start
    double limit = 0;                         // points are kept within +-limit; 0 = as they are

    bool empty() const { return verbs.empty(); }
    void Clear();
    void Move(CGPoint p);
    void Line(CGPoint p);
    void Curve(CGPoint c1, CGPoint c2, CGPoint p);
    void Quad(CGPoint c, CGPoint p);
    void Close();
    void Rect(const CGAffineTransform& m, CGRect rect);
    void Ellipse(const CGAffineTransform& m, CGRect rect);
    void ArcTo(const CGAffineTransform& m, CGPoint p1, CGPoint p2, double radius);
    void Append(const CGAffineTransform& m, const PathRecords& other);
    ZRGPath View(bool evenOdd) const;

  private:
    void Put(uint8_t verb, CGPoint p);
    void PutPoint(CGPoint p);
    bool Continue();
};

struct CGPath : CFObject {
    CFTypeID typeID() const override { return kCGTypePath; }
    bool equals(const CFObject& other) const override;
    PathRecords records;
};

// Colours ----------------------------------------------------------------------------------------------------------

struct CGColorSpace : CFObject {
    explicit CGColorSpace(size_t n) : components(n) {}
    CFTypeID typeID() const override { return kCGTypeColorSpace; }
    const size_t components;  // 3 or 1
};

struct CGColor : CFObject {
    CGColor(size_t n, const CGFloat* values);
    CFTypeID typeID() const override { return kCGTypeColor; }
    bool equals(const CFObject& other) const override;
    const size_t count;  // with alpha
    CGFloat components[4] = {};
};

// From components of a space, alpha last; cut to 0..1.
ZRGColor ColorFrom(const CGFloat* components, size_t withoutAlpha);
ZRGColor ColorOf(const CGColor& color);

// Contexts ---------------------------------------------------------------------------------------------------------

struct GraphicsState {
    CGAffineTransform ctm = CGAffineTransformIdentity;
    CGAffineTransform device = CGAffineTransformIdentity;  // ctm, then the context's base
    bool usable = true;                                    // device is
    bool antialias = true;
    bool clipSaved = false;  // this level has a saved clip in the canvas
    bool shadowOn = false;
    int join = kCGLineJoinMiter, cap = kCGLineCapButt;
    double alpha = 1, lineWidth = 1, miterLimit = 10, dashPhase = 0;
    ZRGColor fill = {0, 0, 0, 1}, stroke = {0, 0, 0, 1};
    ZRGShadow shadow = {};
    std::vector<double> dash;
};

struct CGContext : CFObject {
    CGContext(const ZRGTable* functions, ZRGCanvas* canvas);
    ~CGContext() override;
    CFTypeID typeID() const override { return kCGTypeContext; }
    virtual void Flush() {}
    virtual void BeginPage(const CGRect*, const CGRect*) {}  // media box and crop box, null = none
    virtual void EndPage() {}
    virtual void ClosePDF() {}
    virtual bool TakePage(CGPDFPageRef) { return false; }  // a page put in without painting

    void SetBase(const CGAffineTransform& m);  // and the first state
    void SetCTM(const CGAffineTransform& m);
    void Clip(PathRecords* path, bool evenOdd);
    ZRGPaint Paint(const ZRGColor& color) const;
    void Fill(const PathRecords& records, bool evenOdd);
    void Stroke(const PathRecords& records, double lineWidth);
    PathRecords NewPath() const;  // empty, in device space

    const ZRGTable* const table;
    ZRGCanvas* const canvas;                             // owned
    CGAffineTransform base = CGAffineTransformIdentity;  // base space to device
    GraphicsState state;
    std::vector<GraphicsState> saved;
    size_t lostSaves = 0;  // saves beyond the bound
    PathRecords path;      // in device space
    CGAffineTransform textMatrix = CGAffineTransformIdentity;
};

struct CGLayer : CFObject {
    CGLayer(CGContextRef own, CGSize s) : context(own), size(s) {}
    ~CGLayer() override { CGContextRelease(context); }
    CFTypeID typeID() const override { return kCGTypeLayer; }
    const CGContextRef context;
    const CGSize size;
};

// Images -----------------------------------------------------------------------------------------------------------

struct FreePixels {
    void operator()(uint8_t* pixels) const;
};
using Pixels = std::unique_ptr<uint8_t, FreePixels>;
Pixels AllocatePixels(long width, long height);  // not cleared; null = no memory

struct CGImage : CFObject {
    CGImage(long w, long h, ZRGAlpha a, Pixels p) : width(w), height(h), alpha(a), pixels(std::move(p)) {}
    ~CGImage() override;
    CFTypeID typeID() const override { return kCGTypeImage; }

    const long width, height;
    const ZRGAlpha alpha;
    const Pixels pixels;  // R,G,B,A, width * 4 bytes a row
    // The file that the image comes from, for those who take its bytes as they are; null = none
    CFDataRef encoded = nullptr;  // owned
    ZRGFormat format = kZRGNoFormat;
    long page = 0;
    bool jpegPlain = false;

    ZRGImage View() const;  // as the canvas takes it; made on first use. pixels null = no memory

  private:
    mutable std::once_flag once;
    mutable Pixels drawn;  // premultiplied B,G,R,A
    mutable long drawnWidth = 0, drawnHeight = 0;
    mutable std::once_flag providerOnce;
    mutable CGDataProviderRef provider = nullptr;
    friend CGDataProviderRef CGImageGetDataProvider(CGImageRef);
};

// Bytes ------------------------------------------------------------------------------------------------------------

struct CGDataProvider : CFObject {
    explicit CGDataProvider(CFDataRef handedOver) : data(handedOver) {}
    ~CGDataProvider() override { CFRelease(data); }
    CFTypeID typeID() const override { return kCGTypeDataProvider; }
    const CFDataRef data;
};

struct CGDataConsumer : CFObject {
    CFTypeID typeID() const override { return kCGTypeDataConsumer; }
    virtual bool Write(const void* bytes, size_t n) = 0;  // false = cannot
    virtual bool Commit() { return true; }                // all is written; false = it could not be kept
};

// A consumer for a file that keeps its old content until Commit; null = cannot be written
CGDataConsumerRef CreateReplacingConsumer(CFURLRef url);

// A whole regular file; null = cannot, or larger than 2^31 bytes
CFDataRef CreateDataFromFile(CFURLRef url);

#endif
