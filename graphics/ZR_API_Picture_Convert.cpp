// Pictures from devices, files, parameters and fields; their encoding and conversion.
#include <cmath>

#include "core/ZR_API_Picture.h"
#include "core/ZR_API_Text.h"
#include "graphics/ZR_API_Device.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/ImageIO/ImageIO.h"
#include "plugin/ZR_API_Bridge.h"

static constexpr int kReadPictureFile = 678;

// The types of the formats 1 to 5
static CFStringRef EncodedType(ZR_Pictformat format) {
    switch (format) {
        case ZR_PICT_JPEG: return kUTTypeJPEG;
        case ZR_PICT_PNG: return kUTTypePNG;
        case ZR_PICT_BMP: return kUTTypeBMP;
        case ZR_PICT_GIF: return kUTTypeGIF;
        case ZR_PICT_TIFF: return kUTTypeTIFF;
        default: return nullptr;
    }
}

// From devices and images -----------------------------------------------------------------------------------------

// source is handed over.
static void TakeImage(ZR_Picture* picture, CGImageRef source, ZR_Pictformat format, float dpiX, float dpiY) {
    if (!source) return;
    picture->image = source;
    picture->format = format;
    picture->dpiX = dpiX;
    picture->dpiY = dpiY;
    picture->Update();
    picture->ToBlob(&picture->nativeData, /*white*/ false);
}

void ZR_Picture::Create(ZR_Device* device, ZR_Pictformat wanted) {
    Create();
    if (!device || !device->offscreen || !device->bitmapData) return;
    TakeImage(this, CGBitmapContextCreateImage(device->context), wanted, std::trunc(device->dpiX),
              std::trunc(device->dpiY));
}

void ZR_Picture::Create(CGImage* source, ZR_Pictformat wanted, long x, long y) {
    Create();
    TakeImage(this, CGImageRetain(source), wanted, static_cast<float>(x), static_cast<float>(y));
}

// From the host ----------------------------------------------------------------------------------------------------

void ZR_Picture::Create(const ZR_Handle* bytes) {
    bool some = bytes && bytes->data && bytes->count > 0;
    PA_Picture host = some ? PA_CreatePicture(bytes->data, bytes->count) : nullptr;
    Create(static_cast<void**>(host));
    PA_DisposePicture(host);
}

void ZR_Picture::CreateFrom4DParameter(PluginBlock* block, short index) {
    Create(static_cast<void**>(PA_GetPictureParameter(block, index)));
}

void ZR_Picture::CreateFrom4DField(short table, short field) {
    PA_Picture host = PA_GetPictureField(table, field);
    Create(static_cast<void**>(host));
    PA_DisposePicture(host);
}

// From files -------------------------------------------------------------------------------------------------------

bool ZR_Picture::CreateFromPath(ZR_Text* path) {
    Create();
    if (!path || path->count < 1) return false;
    CFStringRef name = path->GetNSStringRef();
    CFURLRef url = name ? CFURLCreateWithFileSystemPath(nullptr, name, kCFURLPOSIXPathStyle, false) : nullptr;
    CGImageSourceRef source = url ? CGImageSourceCreateWithURL(url, nullptr) : nullptr;
    image = CGImageSourceCreateImageAtIndex(source, 0, nullptr);
    Update();
    UpdateType(source);
    CFRelease(source);
    CFRelease(url);
    CFRelease(name);
    return true;
}

bool ZR_Picture::CreateFromPath4D(ZR_Text* path) {
    if (!path) {
        Create();
        return false;
    }
    PA_Variable parameters[] = {path->CreateVariable(), PA_CreateVariable(eVK_Picture)};
    PA_Variable result = PA_ExecuteCommandByID(kReadPictureFile, parameters, 2);
    Create(static_cast<void**>(PA_GetPictureVariable(&parameters[1])));
    PA_ClearVariable(&result);
    for (PA_Variable& parameter : parameters) PA_ClearVariable(&parameter);
    return image || document;
}

static void CreateInFolder(ZR_Picture* picture, ZR_Text* folder, ZR_Text* name) {
    ZR_Text path;
    path.Create(folder);
    path.AddText(name);
    picture->CreateFromPath(&path);
    path.Dispose();
}

void ZR_Picture::CreateAsResource(long number, ZR_Text* folder) {
    ZR_Text name;
    name.Create();
    name.AddLong(number);
    name.AddString(".png");
    CreateInFolder(this, folder, &name);
    name.Dispose();
}

void ZR_Picture::CreateAsResource(const char* file, ZR_Text* folder) {
    ZR_Text name;
    name.Create();
    if (file) name.AddUTF8String(file);
    CreateInFolder(this, folder, &name);
    name.Dispose();
}

// Facts ------------------------------------------------------------------------------------------------------------

void ZR_Picture::UpdateType(CGImageSource* source) {
    CFStringRef type = CGImageSourceGetType(source);
    if (!type) return;
    for (ZR_Pictformat one : {ZR_PICT_JPEG, ZR_PICT_PNG, ZR_PICT_BMP, ZR_PICT_GIF, ZR_PICT_TIFF})
        if (CFEqual(type, EncodedType(one))) format = one;
}

void ZR_Picture::Update() {
    width = static_cast<long>(CGImageGetWidth(image));
    height = static_cast<long>(CGImageGetHeight(image));
}

static long PointsOf(long pixels, float dpi, ZR_Pictformat format) {
    if (dpi == 0 || format == ZR_PICT_SVG) return pixels;
    float points = std::trunc(static_cast<float>(pixels) / (dpi / 72));
    return std::abs(points) < 9e18F ? static_cast<long>(points) : pixels;  // guard: not a number, or no whole one
}

long ZR_Picture::GetWidthDPI() const { return PointsOf(width, dpiX, format); }
long ZR_Picture::GetHeightDPI() const { return PointsOf(height, dpiY, format); }

// Encoding ---------------------------------------------------------------------------------------------------------

static void SetNumber(CFMutableDictionaryRef properties, CFStringRef key, CFNumberRef number) {
    if (number) CFDictionarySetValue(properties, key, number);
}

static CFMutableDictionaryRef CreateEncodeProperties(const ZR_Picture* picture, bool whiteBackground) {
    CFMutableDictionaryRef properties =
        CFDictionaryCreateMutable(nullptr, 4, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFNumberRef x = nullptr, y = nullptr, quality = CFNumberCreate(nullptr, kCFNumberFloatType, &picture->quality);
    if (picture->dpiX > 0 && picture->dpiY > 0) {
        x = CFNumberCreate(nullptr, kCFNumberFloatType, &picture->dpiX);
        y = CFNumberCreate(nullptr, kCFNumberFloatType, &picture->dpiY);
    }
    SetNumber(properties, kCGImagePropertyDPIWidth, x);
    SetNumber(properties, kCGImagePropertyDPIHeight, y);
    SetNumber(properties, kCGImageDestinationLossyCompressionQuality, quality);
    if (whiteBackground) {
        CGColorRef white = CGColorCreateGenericRGB(1, 1, 1, 1);
        // Required: the value is the resolution, not the colour; without a resolution there is no entry.
        SetNumber(properties, kCGImageDestinationBackgroundColor, x);
        CGColorRelease(white);
    }
    CFRelease(quality);
    CFRelease(y);
    CFRelease(x);
    return properties;
}

void ZR_Picture::ToBlob(ZR_Handle* out, bool whiteBackground) const {
    CFStringRef type = EncodedType(format);
    if (!image || !out || !type) return;
    CFMutableDataRef data = CFDataCreateMutable(nullptr, 0);
    CGImageDestinationRef destination = CGImageDestinationCreateWithData(data, type, 1, nullptr);
    CFDictionaryRef properties = CreateEncodeProperties(this, whiteBackground);
    CGImageDestinationAddImage(destination, image, properties);
    if (CGImageDestinationFinalize(destination))
        out->AddCharBuffer(reinterpret_cast<const char*>(CFDataGetBytePtr(data)), CFDataGetLength(data));
    CFRelease(properties);
    CFRelease(destination);
    CFRelease(data);
}

void ZR_Picture::Convert(ZR_Pictformat to) {
    if (!EncodedType(to) || to == format) return;
    bool white = format == ZR_PICT_PNG;
    format = to;
    nativeData.Dispose();  // Required: what has no image has no bytes either afterwards
    ToBlob(&nativeData, white);
}

// To the host ------------------------------------------------------------------------------------------------------

static bool IsEmpty(const ZR_Picture* picture) {
    if (picture->image || picture->document) return false;
    return picture->format != ZR_PICT_SVG || picture->nativeData.count < 1;
}

// The bytes that are held, or the encoded image. Handed over; null = empty
static PA_Picture EncodedPicture(ZR_Picture* picture) {
    if (picture->nativeData.count > 0) return picture->To4DPicture();
    ZR_Handle bytes;
    bytes.Create(1, 0);
    picture->ToBlob(&bytes, /*white*/ false);
    PA_Picture host = bytes.data && bytes.count > 0 ? PA_CreatePicture(bytes.data, bytes.count) : nullptr;
    bytes.Dispose();
    return host;
}

void ZR_Picture::To4DParameter(PluginBlock* block, short index) {
    PA_SetPictureParameter(block, index, IsEmpty(this) ? nullptr : EncodedPicture(this));
}

void ZR_Picture::ReturnPicture(PluginBlock* block) {
    if (!IsEmpty(this)) PA_ReturnPicture(block, EncodedPicture(this));
}
