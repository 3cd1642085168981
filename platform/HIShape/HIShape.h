// Stand-ins for the operations on shapes in use: sets of rectangles, kept in units of 1/256 point within +-4e6 points.
// Without libzr-graphics.so the creators answer null.
#ifndef ZR_PLATFORM_HISHAPE_H
#define ZR_PLATFORM_HISHAPE_H

#include "platform/CoreGraphics/CGTypes.h"

typedef int OSStatus;
inline constexpr OSStatus noErr = 0;
inline constexpr OSStatus paramErr = -50;

typedef const struct __HIShape* HIShapeRef;
typedef struct __HIShape* HIMutableShapeRef;

HIMutableShapeRef HIShapeCreateMutable();              // empty
HIShapeRef HIShapeCreateWithRect(const CGRect* rect);  // an empty or endless one makes an empty shape
OSStatus HIShapeSetEmpty(HIMutableShapeRef shape);
OSStatus HIShapeUnion(HIShapeRef shape1, HIShapeRef shape2, HIMutableShapeRef result);  // result may be one of them
OSStatus HIShapeDifference(HIShapeRef shape1, HIShapeRef shape2,
                           HIMutableShapeRef result);  // the first less the second
// The outline becomes the context's path: one closed subpath an edge that runs around, so that it can be stroked too.
OSStatus HIShapeReplacePathInCGContext(HIShapeRef shape, CGContextRef context);
bool HIShapeIsEmpty(HIShapeRef shape);                          // null = true
bool HIShapeContainsPoint(HIShapeRef shape, const CGPoint* p);  // the left and lower edge belong to it

#endif
