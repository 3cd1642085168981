// Images and PDF documents as counted, opaque references. The objects are made by the drawing part, which derives them
// from CFObject; retaining and releasing needs no more than that.
#ifndef ZR_PLATFORM_CGTYPES_H
#define ZR_PLATFORM_CGTYPES_H

#include "platform/CoreFoundation/CoreFoundation.h"

typedef struct CGImage* CGImageRef;
typedef struct CGPDFDocument* CGPDFDocumentRef;

inline CGImageRef CGImageRetain(CGImageRef image) {  // the same; null = null
    if (image) CFRetain(image);
    return image;
}
inline void CGImageRelease(CGImageRef image) {
    if (image) CFRelease(image);
}
inline CGPDFDocumentRef CGPDFDocumentRetain(CGPDFDocumentRef document) {
    if (document) CFRetain(document);
    return document;
}
inline void CGPDFDocumentRelease(CGPDFDocumentRef document) {
    if (document) CFRelease(document);
}

#endif
