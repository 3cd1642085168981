// Commands for 4D code on pictures, and pictures as the system's own image objects.
#ifndef ZR_API_PICTURECOMMANDS_H
#define ZR_API_PICTURECOMMANDS_H

struct CGImage;
struct PluginBlock;

void ZR_GetPictureTypes(PluginBlock*);       // (picture, text array): filled with the types of all representations
void ZR_GetPictureProperties(PluginBlock*);  // (picture, 1 = resolution, long, long): written; 0, 0 if not decoded
// (picture, 1 = resolution, long, long): the picture is encoded anew, with the resolution if both are at least 1.
// Only what can be encoded: the formats 1 to 5.
void ZR_SetPictureProperties(PluginBlock*);

void* ZR_COCOA_CGImageRefToNSImage(CGImage* image);  // an NSImage; handed over, ends with CFRelease; null = none
void ZR_COCOA_SetPictureBrightness(CGImage* image);  // Required: no effect

#endif
