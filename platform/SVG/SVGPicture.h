// SVG pictures as images and documents, for hosts that answer with native pictures. Without libzr-svg.so null.
// "textArea" is drawn as the lines that the framesetter makes of it.
#ifndef ZR_PLATFORM_SVGPICTURE_H
#define ZR_PLATFORM_SVGPICTURE_H

#include "platform/CoreGraphics/CGTypes.h"

// The picture's own size, a pixel counting as a point; false = no SVG
bool ZRSVGGetSize(const char* bytes, long n, double* width, double* height);
// Pixels at scale pixels a point, at most 2^26 in all, no side above 32767; null = no SVG, or too large; handed over
CGImageRef ZRSVGCreateImage(const char* bytes, long n, double scale);
// One page of the picture's size, vectors kept; null = no SVG, or libzr-pdf.so missing; handed over
CGPDFDocumentRef ZRSVGCreateDocument(const char* bytes, long n);

#endif
