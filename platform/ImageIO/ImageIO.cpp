#include "platform/ImageIO/ImageIO.h"

#include <algorithm>
#include <cmath>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

const CFStringRef kUTTypeJPEG = CFConstantString("public.jpeg");
const CFStringRef kUTTypePNG = CFConstantString("public.png");
const CFStringRef kUTTypeBMP = CFConstantString("com.microsoft.bmp");
const CFStringRef kUTTypeGIF = CFConstantString("com.compuserve.gif");
const CFStringRef kUTTypeTIFF = CFConstantString("public.tiff");
const CFStringRef kCGImagePropertyDPIWidth = CFConstantString("DPIWidth");
const CFStringRef kCGImagePropertyDPIHeight = CFConstantString("DPIHeight");
const CFStringRef kCGImagePropertyPixelWidth = CFConstantString("PixelWidth");
const CFStringRef kCGImagePropertyPixelHeight = CFConstantString("PixelHeight");
const CFStringRef kCGImagePropertyHasAlpha = CFConstantString("HasAlpha");
const CFStringRef kCGImageDestinationLossyCompressionQuality =
    CFConstantString("kCGImageDestinationLossyCompressionQuality");
const CFStringRef kCGImageDestinationBackgroundColor = CFConstantString("kCGImageDestinationBackgroundColor");

static CFStringRef TypeOf(int format) {
    const CFStringRef types[] = {nullptr, kUTTypeJPEG, kUTTypePNG, kUTTypeBMP, kUTTypeGIF, kUTTypeTIFF};
    return types[format];
}

static ZRGFormat FormatOf(CFStringRef type) {
    for (int format = kZRGJPEG; type && format <= kZRGTIFF; ++format)
        if (CFEqual(type, TypeOf(format))) return static_cast<ZRGFormat>(format);
    return kZRGNoFormat;
}

// Sources ----------------------------------------------------------------------------------------------------------

struct CGImageSource : CFObject {
    CGImageSource(const ZRGTable* functions, CFDataRef handedOver)
        : table(functions), data(handedOver), format(static_cast<ZRGFormat>(table->formatOf(bytes(), length()))) {}
    ~CGImageSource() override { CFRelease(data); }
    CFTypeID typeID() const override { return kCGTypeImageSource; }
    const uint8_t* bytes() const { return CFDataGetBytePtr(data); }
    long length() const { return CFDataGetLength(data); }
    size_t Count() const {
        std::call_once(once,
                       [this] { count = static_cast<size_t>(std::max(table->countImages(bytes(), length()), 0L)); });
        return count;
    }
    const ZRGTable* const table;
    const CFDataRef data;
    const ZRGFormat format;

  private:
    mutable std::once_flag once;
    mutable size_t count = 0;
};

static CGImageSourceRef CreateSource(CFDataRef handedOver) {
    if (!handedOver) return nullptr;
    CGImageSourceRef source = CFGuarded([&]() -> CGImageSourceRef {
        const ZRGTable* table = Graphics();
        return table ? new CGImageSource(table, handedOver) : nullptr;
    });
    if (!source) CFRelease(handedOver);
    return source;
}

CFTypeID CGImageSourceGetTypeID() { return kCGTypeImageSource; }

CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef) {
    return CreateSource(CFDataCreateCopy(nullptr, data));
}

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef) {
    return CreateSource(CreateDataFromFile(url));
}

CGImageSourceRef CGImageSourceCreateWithDataProvider(CGDataProviderRef provider, CFDictionaryRef) {
    return CreateSource(CGDataProviderCopyData(provider));
}

CFStringRef CGImageSourceGetType(CGImageSourceRef source) { return source ? TypeOf(source->format) : nullptr; }
size_t CGImageSourceGetCount(CGImageSourceRef source) { return source ? source->Count() : 0; }

CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index, CFDictionaryRef) {
    ZRGDecoded decoded;
    if (!source || index > 0x7FFFFFFF) return nullptr;
    if (!source->table->decodeImage(source->bytes(), source->length(), static_cast<long>(index), &decoded))
        return nullptr;
    Pixels pixels(decoded.pixels);
    return CFGuarded([&] {
        auto alpha = static_cast<ZRGAlpha>(decoded.alpha);
        auto image = std::make_unique<CGImage>(decoded.width, decoded.height, alpha, std::move(pixels));
        image->encoded = static_cast<CFDataRef>(CFRetain(source->data));
        image->format = source->format;
        image->page = static_cast<long>(index);
        image->jpegPlain = decoded.jpegPlain;
        return image.release();
    });
}

static void SetNumber(CFMutableDictionaryRef dictionary, CFStringRef key, double value, bool whole) {
    auto integer = static_cast<int64_t>(value);
    CFNumberRef number = whole ? CFNumberCreate(nullptr, kCFNumberSInt64Type, &integer)
                               : CFNumberCreate(nullptr, kCFNumberDoubleType, &value);
    if (number) CFDictionarySetValue(dictionary, key, number);
    CFRelease(number);
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index, CFDictionaryRef) {
    ZRGDecoded probe;
    if (!source || index > 0x7FFFFFFF) return nullptr;
    if (!source->table->probeImage(source->bytes(), source->length(), static_cast<long>(index), &probe)) return nullptr;
    CFMutableDictionaryRef properties =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    if (!properties) return nullptr;
    SetNumber(properties, kCGImagePropertyPixelWidth, static_cast<double>(probe.width), /*whole*/ true);
    SetNumber(properties, kCGImagePropertyPixelHeight, static_cast<double>(probe.height), /*whole*/ true);
    CFDictionarySetValue(properties, kCGImagePropertyHasAlpha,
                         probe.alpha == kZRGOpaque ? kCFBooleanFalse : kCFBooleanTrue);
    if (probe.dpiX > 0 && probe.dpiY > 0) {
        SetNumber(properties, kCGImagePropertyDPIWidth, probe.dpiX, /*whole*/ false);
        SetNumber(properties, kCGImagePropertyDPIHeight, probe.dpiY, /*whole*/ false);
    }
    return properties;
}

// Destinations -----------------------------------------------------------------------------------------------------

struct CGImageDestination : CFObject {
    struct Entry {
        CGImageRef image;  // owned
        double dpiX, dpiY, quality;
        ZRGColor background;
    };
    CGImageDestination(const ZRGTable* functions, CGDataConsumerRef handedOver, ZRGFormat f, size_t n)
        : table(functions), consumer(handedOver), format(f), wanted(n) {}
    ~CGImageDestination() override {
        for (auto& entry : entries) CGImageRelease(entry.image);
        CGDataConsumerRelease(consumer);
    }
    CFTypeID typeID() const override { return kCGTypeImageDestination; }
    const ZRGTable* const table;
    const CGDataConsumerRef consumer;
    const ZRGFormat format;
    const size_t wanted;
    std::vector<Entry> entries;
    bool finished = false;
};

static CGImageDestinationRef CreateDestination(CGDataConsumerRef handedOver, CFStringRef type, size_t count) {
    if (!handedOver) return nullptr;
    const ZRGTable* table = Graphics();
    ZRGFormat format = FormatOf(type);
    bool possible = table && format != kZRGNoFormat && count >= 1 && (count == 1 || format == kZRGTIFF);
    CGImageDestinationRef destination = CFGuarded([&]() -> CGImageDestinationRef {
        return possible ? new CGImageDestination(table, handedOver, format, count) : nullptr;
    });
    if (!destination) CGDataConsumerRelease(handedOver);
    return destination;
}

CFTypeID CGImageDestinationGetTypeID() { return kCGTypeImageDestination; }

CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type, size_t count,
                                                       CFDictionaryRef) {
    return CreateDestination(CGDataConsumerCreateWithCFData(data), type, count);
}

CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type, size_t count, CFDictionaryRef) {
    if (!Graphics() || FormatOf(type) == kZRGNoFormat) return nullptr;
    return CreateDestination(CreateReplacingConsumer(url), type, count);
}

// A number of the properties; none = absent or no number
static double NumberOf(CFDictionaryRef properties, CFStringRef key, double none) {
    CFTypeRef value = CFDictionaryGetValue(properties, key);
    double number = none;
    if (!value || CFGetTypeID(value) != CFNumberGetTypeID()) return none;
    CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &number);
    return std::isfinite(number) ? number : none;
}

static ZRGColor BackgroundOf(CFDictionaryRef properties) {
    CFTypeRef value = CFDictionaryGetValue(properties, kCGImageDestinationBackgroundColor);
    bool color = value && CFGetTypeID(value) == CGColorGetTypeID();
    return color ? ColorOf(*static_cast<CGColorRef>(value)) : ZRGColor{1, 1, 1, 1};
}

void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image, CFDictionaryRef properties) {
    if (!destination || !image || destination->entries.size() >= destination->wanted) return;
    CFGuarded([&]() -> void* {
        double x = std::clamp(NumberOf(properties, kCGImagePropertyDPIWidth, 0), 0.0, 1e6);
        double y = std::clamp(NumberOf(properties, kCGImagePropertyDPIHeight, 0), 0.0, 1e6);
        double quality = std::clamp(NumberOf(properties, kCGImageDestinationLossyCompressionQuality, 1), 0.0, 1.0);
        destination->entries.push_back({image, x, y, quality, BackgroundOf(properties)});
        CGImageRetain(image);
        return nullptr;
    });
}

// The image's pixels without premultiplication; own holds them if they had to be made. null = no memory
static const uint8_t* StraightPixels(const CGImage& image, Pixels* own) {
    if (image.alpha != kZRGPremultiplied) return image.pixels.get();
    *own = AllocatePixels(image.width, image.height);
    uint8_t* to = own->get();
    if (!to) return nullptr;
    const uint8_t* from = image.pixels.get();
    for (long i = 0; i < image.width * image.height; ++i, from += 4, to += 4) {
        unsigned a = from[3];
        for (int c = 0; c < 3; ++c) to[c] = a ? static_cast<uint8_t>(std::min(255u, (from[c] * 255u + a / 2) / a)) : 0;
        to[3] = from[3];
    }
    return own->get();
}

static bool HasClearPixels(const CGImage& image) {
    if (image.alpha == kZRGOpaque) return false;
    for (long i = 0; i < image.width * image.height; ++i)
        if (image.pixels.get()[4 * i + 3] != 255) return true;
    return false;
}

static ZRGEncode EncodeRecord(const CGImageDestination::Entry& entry, Pixels* own) {
    const CGImage& image = *entry.image;
    ZRGEncode record = {};
    record.width = image.width;
    record.height = image.height;
    record.pixels = StraightPixels(image, own);
    record.hasAlpha = HasClearPixels(image);
    record.dpiX = entry.dpiX;
    record.dpiY = entry.dpiY;
    record.quality = entry.quality;
    record.background = entry.background;
    if (image.encoded && image.format == kZRGTIFF) {
        record.tiff = CFDataGetBytePtr(image.encoded);
        record.tiffLength = CFDataGetLength(image.encoded);
        record.tiffPage = image.page;
    }
    return record;
}

static bool WriteToConsumer(void* info, const void* bytes, size_t n) {
    return static_cast<CGDataConsumerRef>(info)->Write(bytes, n);
}

bool CGImageDestinationFinalize(CGImageDestinationRef destination) {
    if (!destination || destination->finished || destination->entries.size() != destination->wanted) return false;
    destination->finished = true;
    bool written = false;
    CFGuarded([&]() -> void* {
        std::vector<Pixels> own(destination->wanted);
        std::vector<ZRGEncode> records;
        for (size_t i = 0; i < own.size(); ++i) {
            records.push_back(EncodeRecord(destination->entries[i], &own[i]));
            if (!records.back().pixels) return nullptr;
        }
        written =
            destination->table->encodeImages(destination->format, records.data(), static_cast<long>(records.size()),
                                             WriteToConsumer, destination->consumer) &&
            destination->consumer->Commit();
        return nullptr;
    });
    return written;
}
