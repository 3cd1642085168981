// What a host picture is decoded with. The table is there as soon as the library is loaded; what it needs is opened
// when the first picture is decoded.
#include "core/ZR_API_Picture.h"
#include "platform/CoreGraphics/CoreGraphics.h"
#include "platform/ImageIO/ImageIO.h"

static CFDataRef DataOf(const char* bytes, long n) {
    return bytes && n > 0 ? CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes), n) : nullptr;
}

// Left alone if the picture does not tell it.
static void ReadNumber(CFDictionaryRef properties, CFStringRef key, float* out) {
    auto number = static_cast<CFNumberRef>(CFDictionaryGetValue(properties, key));
    if (number) CFNumberGetValue(number, kCFNumberFloatType, out);
}

static CGImageRef DecodeImage(const char* bytes, long n, float* dpiX, float* dpiY) {
    CFDataRef data = DataOf(bytes, n);
    CGImageSourceRef source = data ? CGImageSourceCreateWithData(data, nullptr) : nullptr;
    CGImageRef image = CGImageSourceCreateImageAtIndex(source, 0, nullptr);
    CFDictionaryRef properties = image ? CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr) : nullptr;
    if (properties) {
        ReadNumber(properties, kCGImagePropertyDPIWidth, dpiX);
        ReadNumber(properties, kCGImagePropertyDPIHeight, dpiY);
    }
    CFRelease(properties);
    CFRelease(source);
    CFRelease(data);
    return image;
}

static CGPDFDocumentRef OpenDocument(const char* bytes, long n, double* width, double* height) {
    CFDataRef data = DataOf(bytes, n);
    CGDataProviderRef provider = data ? CGDataProviderCreateWithCFData(data) : nullptr;
    CGPDFDocumentRef document = provider ? CGPDFDocumentCreateWithProvider(provider) : nullptr;
    if (CGPDFDocumentGetNumberOfPages(document) >= 1) {
        CGRect box = CGPDFPageGetBoxRect(CGPDFDocumentGetPage(document, 1), kCGPDFMediaBox);
        *width = box.size.width;
        *height = box.size.height;
    }
    CGDataProviderRelease(provider);
    CFRelease(data);
    return document;
}

static void GetImageSize(CGImageRef image, long* width, long* height) {
    *width = static_cast<long>(CGImageGetWidth(image));
    *height = static_cast<long>(CGImageGetHeight(image));
}

static constexpr ZR_PictureDecoder kDecoder = {DecodeImage, OpenDocument, GetImageSize};
[[maybe_unused]] static const bool sIsSet = (gPictureDecoder = &kDecoder, true);
