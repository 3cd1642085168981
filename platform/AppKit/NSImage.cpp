#include "platform/AppKit/NSImage.h"

#include <vector>

#include "platform/CoreFoundation/CoreFoundation_Private.h"
#include "platform/CoreGraphics/CoreGraphics.h"

struct NSBitmapImageRep : CFObject {
    explicit NSBitmapImageRep(CGImageRef source) : image(CGImageRetain(source)) {}
    ~NSBitmapImageRep() override { CGImageRelease(image); }
    CFTypeID typeID() const override { return kNSTypeBitmapImageRep; }
    const CGImageRef image;
};

struct NSImage : CFObject {
    explicit NSImage(CGSize s) : size(s) {}
    ~NSImage() override {
        for (NSBitmapImageRep* one : representations) CFRelease(one);
    }
    CFTypeID typeID() const override { return kNSTypeImage; }
    const CGSize size;
    std::vector<NSBitmapImageRep*> representations;
};

NSBitmapImageRep* NSBitmapImageRepCreateWithCGImage(CGImageRef image) {
    if (!image) return nullptr;
    return CFGuarded([&] { return new NSBitmapImageRep(image); });
}

CGImageRef NSBitmapImageRepGetCGImage(NSBitmapImageRep* representation) {
    return representation ? representation->image : nullptr;
}

CGSize NSBitmapImageRepGetSize(NSBitmapImageRep* representation) {
    if (!representation) return CGSizeZero;
    CGImageRef image = representation->image;
    return {static_cast<double>(CGImageGetWidth(image)), static_cast<double>(CGImageGetHeight(image))};
}

NSImage* NSImageCreateWithSize(CGSize size) {
    return CFGuarded([&] { return new NSImage(size); });
}

void NSImageAddRepresentation(NSImage* image, NSBitmapImageRep* representation) {
    if (!image || !representation) return;
    CFGuarded([&]() -> void* {
        image->representations.push_back(representation);
        CFRetain(representation);
        return nullptr;
    });
}

CGSize NSImageGetSize(NSImage* image) { return image ? image->size : CGSizeZero; }
long NSImageGetCount(NSImage* image) { return image ? static_cast<long>(image->representations.size()) : 0; }

NSBitmapImageRep* NSImageGetRepresentation(NSImage* image, long index) {
    return index >= 0 && index < NSImageGetCount(image) ? image->representations[static_cast<size_t>(index)] : nullptr;
}
