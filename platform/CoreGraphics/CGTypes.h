// The objects of the drawing stand-ins as counted, opaque references, and the geometry that they share.
#ifndef ZR_PLATFORM_CGTYPES_H
#define ZR_PLATFORM_CGTYPES_H

#include "platform/CoreFoundation/CoreFoundation.h"
#include "platform/CoreGraphics/CGGeometry.h"

typedef struct CGImage* CGImageRef;
typedef struct CGPDFDocument* CGPDFDocumentRef;
typedef struct CGPDFPage* CGPDFPageRef;
typedef struct CGContext* CGContextRef;
typedef struct CGLayer* CGLayerRef;
typedef struct CGPath* CGMutablePathRef;
typedef const struct CGPath* CGPathRef;
typedef struct CGColorSpace* CGColorSpaceRef;
typedef const struct CGColor* CGColorRef;
typedef struct CGGradient* CGGradientRef;
typedef struct CGFunction* CGFunctionRef;
typedef struct CGShading* CGShadingRef;
typedef struct CGDataProvider* CGDataProviderRef;
typedef struct CGDataConsumer* CGDataConsumerRef;

// Retain gives the same reference back; null = null. Release of null does nothing.
#define ZR_COUNTED(Type)                              \
    inline Type##Ref Type##Retain(Type##Ref object) { \
        if (object) CFRetain(object);                 \
        return object;                                \
    }                                                 \
    inline void Type##Release(Type##Ref object) {     \
        if (object) CFRelease(object);                \
    }
ZR_COUNTED(CGImage)
ZR_COUNTED(CGPDFDocument)
ZR_COUNTED(CGPDFPage)
ZR_COUNTED(CGContext)
ZR_COUNTED(CGLayer)
ZR_COUNTED(CGPath)
ZR_COUNTED(CGColorSpace)
ZR_COUNTED(CGColor)
ZR_COUNTED(CGGradient)
ZR_COUNTED(CGFunction)
ZR_COUNTED(CGShading)
ZR_COUNTED(CGDataProvider)
ZR_COUNTED(CGDataConsumer)
#undef ZR_COUNTED

#endif
