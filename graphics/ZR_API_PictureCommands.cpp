#include "graphics/ZR_API_PictureCommands.h"

#include "core/ZR_API_Picture.h"
#include "core/ZR_API_TextArray.h"
#include "platform/AppKit/NSImage.h"
#include "plugin/ZR_API_Bridge.h"

static constexpr int kResolution = 1;               // the only property
static constexpr long kMostRepresentations = 1000;  // guard: a host that never reports an end

// Commands ---------------------------------------------------------------------------------------------------------

void ZR_GetPictureTypes(PluginBlock* block) {
    PA_Picture picture = PA_GetPictureParameter(block, 1);
    ZR_TextArray types;
    types.Create();
    for (long index = 1; index <= kMostRepresentations; ++index) {
        PA_Unistring type = PA_GetPictureData(picture, index, nullptr);
        bool none = PA_GetLastError() != 0;
        ZR_Text text;
        text.CreateWithUnistringAndDisposeUnistring(type);
        if (!none) types.Append(&text);
        text.Dispose();
        if (none) break;
    }
    types.To4DParameter(block, 2);
    types.Dispose();
}

// Not a number and what 32 bits do not hold is 0.
static int Truncated(float value) {
    return value > -2147483648.0F && value < 2147483648.0F ? static_cast<int>(value) : 0;
}

void ZR_GetPictureProperties(PluginBlock* block) {
    bool asked = PA_GetLongParameter(block, 2) == kResolution;
    ZR_Picture picture;
    picture.CreateFrom4DParameter(block, 1);
    asked = asked && picture.image;
    PA_SetLongParameter(block, 3, asked ? Truncated(picture.dpiX) : 0);
    PA_SetLongParameter(block, 4, asked ? Truncated(picture.dpiY) : 0);
    picture.Dispose();
}

void ZR_SetPictureProperties(PluginBlock* block) {
    if (PA_GetLongParameter(block, 2) != kResolution) return;
    int x = PA_GetLongParameter(block, 3), y = PA_GetLongParameter(block, 4);
    ZR_Picture picture;
    picture.CreateFrom4DParameter(block, 1);
    if (picture.image && picture.format <= ZR_PICT_TIFF) {
        picture.nativeData.Dispose();
        if (x >= 1 && y >= 1) {
            picture.dpiX = static_cast<float>(x);
            picture.dpiY = static_cast<float>(y);
        }
        picture.To4DParameter(block, 1);
    }
    picture.Dispose();
}

// Images of the system ---------------------------------------------------------------------------------------------

void* ZR_COCOA_CGImageRefToNSImage(CGImage* image) {
    NSBitmapImageRep* representation = NSBitmapImageRepCreateWithCGImage(image);
    if (!representation) return nullptr;
    NSImage* made = NSImageCreateWithSize(NSBitmapImageRepGetSize(representation));
    NSImageAddRepresentation(made, representation);
    CFRelease(representation);
    return made;
}

void ZR_COCOA_SetPictureBrightness(CGImage*) {}
