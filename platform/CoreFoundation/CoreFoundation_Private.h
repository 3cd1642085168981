// What the sources of the CoreFoundation stand-ins share.
#ifndef ZR_PLATFORM_COREFOUNDATION_PRIVATE_H
#define ZR_PLATFORM_COREFOUNDATION_PRIVATE_H

#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/CoreFoundation/CoreFoundation.h"

// Every type of the platform has its number here.
enum CFKnownType : CFTypeID {
    kCFTypeString = 1,
    kCFTypeData,
    kCFTypeURL,
    kCFTypeWriteStream,
    kCFTypeUUID,
    kCFTypeArray,
    kCFTypeDictionary,
    kCFTypeNumber,
    kCFTypeBoolean,
    kCFTypeAttributedString,
    kCGTypeColorSpace = 100,
    kCGTypeColor,
    kCGTypePath,
    kCGTypeGradient,
    kCGTypeFunction,
    kCGTypeShading,
    kCGTypeDataProvider,
    kCGTypeDataConsumer,
    kCGTypeImage,
    kCGTypeContext,
    kCGTypeLayer,
    kCGTypePDFDocument,
    kCGTypePDFPage,
    kCGTypeImageSource,
    kCGTypeImageDestination,
    kHITypeShape,
    kCTTypeFont = 200,
    kCTTypeFontDescriptor,
    kCTTypeFontCollection,
    kCTTypeParagraphStyle,
    kCTTypeFramesetter,
    kCTTypeFrame,
    kCTTypeLine,
    kCTTypeRun,
    kNSTypeImage = 300,
    kNSTypeBitmapImageRep
};

struct __CFString : CFObject {
    explicit __CFString(std::u16string text) : units(std::move(text)) {}
    CFTypeID typeID() const override { return kCFTypeString; }
    bool equals(const CFObject& other) const override { return units == static_cast<const __CFString&>(other).units; }
    CFHashCode hash() const override { return std::hash<std::u16string>()(units); }
    const std::u16string units;
};

// A string that stands for the life of the process, for the names of constants.
CFStringRef CFConstantString(const char* ascii);

// The bytes as UTF-8; a lone surrogate becomes U+FFFD.
std::string CFUnitsToUTF8(std::u16string_view units);

// A creator's body: no exception leaves, no memory answers null.
template <class Body>
auto CFGuarded(Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const std::bad_alloc&) { return nullptr; } catch (const std::length_error&) {
        return nullptr;
    }
}

#endif
