// Stand-ins for the AppKit images in use: an image as a list of representations. Counted objects, which end with
// CFRelease; null objects are taken everywhere and do nothing. Nothing is opened for them.
#ifndef ZR_PLATFORM_NSIMAGE_H
#define ZR_PLATFORM_NSIMAGE_H

#include "platform/CoreGraphics/CGTypes.h"

struct NSImage;
struct NSBitmapImageRep;

NSBitmapImageRep* NSBitmapImageRepCreateWithCGImage(CGImageRef image);    // retains it; handed over; null = no image
CGImageRef NSBitmapImageRepGetCGImage(NSBitmapImageRep* representation);  // borrowed
CGSize NSBitmapImageRepGetSize(NSBitmapImageRep* representation);         // points: a pixel each

NSImage* NSImageCreateWithSize(CGSize size);  // without representations; handed over; null = no memory
void NSImageAddRepresentation(NSImage* image, NSBitmapImageRep* representation);  // retains it
CGSize NSImageGetSize(NSImage* image);
long NSImageGetCount(NSImage* image);                                    // of the representations
NSBitmapImageRep* NSImageGetRepresentation(NSImage* image, long index);  // [0..count); borrowed; null outside

#endif
