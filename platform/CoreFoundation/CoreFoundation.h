// Stand-ins for the CoreFoundation operations in use, with their documented names and meaning.
// Objects are counted: Create and Copy hand a reference over, Get lends one; CFRelease gives one back, the last frees.
// Objects do not change after their creation and may be shared between threads, except write streams and what is made
// by a CreateMutable: those belong to one thread at a time.
#ifndef ZR_PLATFORM_COREFOUNDATION_H
#define ZR_PLATFORM_COREFOUNDATION_H

#include <atomic>
#include <cstdint>

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef uint32_t UInt32;
typedef uint16_t UniChar;
typedef uint32_t CFStringEncoding;
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFData* CFDataRef;
typedef struct __CFData* CFMutableDataRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFURL* CFURLRef;
typedef const struct __CFUUID* CFUUIDRef;
typedef struct __CFWriteStream* CFWriteStreamRef;
typedef const struct __CFAttributedString* CFAttributedStringRef;
typedef struct __CFAttributedString* CFMutableAttributedStringRef;

struct CFRange {
    CFIndex location, length;
};
inline CFRange CFRangeMake(CFIndex location, CFIndex length) { return {location, length}; }

// What every object begins with. The other stand-ins derive their objects from it, so that CFRetain serves them all.
struct CFObject {
    CFObject() = default;
    CFObject(const CFObject&) = delete;
    CFObject& operator=(const CFObject&) = delete;
    virtual ~CFObject() = default;
    virtual CFTypeID typeID() const { return 0; }
    virtual bool equals(const CFObject& other) const { return this == &other; }  // other has the same type
    virtual CFHashCode hash() const { return reinterpret_cast<CFHashCode>(this); }
    mutable std::atomic<CFIndex> references{1};
};

// Allocators: none but the default; the null allocator marks bytes that are not to be freed.
inline const CFAllocatorRef kCFAllocatorDefault = nullptr;
extern const CFAllocatorRef kCFAllocatorNull;    // "do not free"
extern const CFAllocatorRef kCFAllocatorMalloc;  // freed by free()

// Any object
CFTypeRef CFRetain(CFTypeRef object);  // the same object; null = null
void CFRelease(CFTypeRef object);      // null = nothing
CFIndex CFGetRetainCount(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
Boolean CFEqual(CFTypeRef left, CFTypeRef right);
CFHashCode CFHash(CFTypeRef object);

// Strings: UTF-16 units
enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,      // its ASCII part only
    kCFStringEncodingUnicode = 0x0100,  // machine order; a leading byte order mark decides and is dropped
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32 = 0x0c000100,  // machine order
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1c000100
};
CFTypeID CFStringGetTypeID();
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* units, CFIndex n);
CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* bytes,
                                      CFStringEncoding encoding);  // null = unreadable
// null = bytes that the encoding does not allow, or an encoding not in the list
CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex n, CFStringEncoding encoding,
                                    Boolean isExternal);
// The bytes are copied, and freed at once if contentsDeallocator says so.
CFStringRef CFStringCreateWithBytesNoCopy(CFAllocatorRef, const UInt8* bytes, CFIndex n, CFStringEncoding encoding,
                                          Boolean isExternal, CFAllocatorRef contentsDeallocator);
CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string);
CFIndex CFStringGetLength(CFStringRef string);  // units; null = 0
UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* out);
const UniChar* CFStringGetCharactersPtr(CFStringRef string);  // borrowed
// Whole characters of the range that fit into room; out may be null to count; a lossByte of 0 stops at the first
// character that the encoding lacks. Answers the units converted, *used the bytes.
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternal, UInt8* out, CFIndex room, CFIndex* used);
Boolean CFStringGetCString(CFStringRef string, char* out, CFIndex room, CFStringEncoding encoding);

// Bytes
CFTypeID CFDataGetTypeID();
CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex n);
CFDataRef CFDataCreateCopy(CFAllocatorRef, CFDataRef data);
CFIndex CFDataGetLength(CFDataRef data);  // null = 0
const UInt8* CFDataGetBytePtr(CFDataRef data);
void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* out);
CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex most);  // empty; most bytes that it takes, 0 = any
UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data);  // borrowed until the next change; null = fixed data
void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex n);  // nothing if they do not fit
void CFDataSetLength(CFMutableDataRef data, CFIndex n);                        // new bytes are 0

// Collections. The callbacks say whether the elements are CF objects, retained and compared with CFEqual (the kCFType
// ones), or bare pointers (null).
struct CFArrayCallBacks {
    bool objects;
};
struct CFDictionaryKeyCallBacks {
    bool objects;
};
struct CFDictionaryValueCallBacks {
    bool objects;
};
inline constexpr CFArrayCallBacks kCFTypeArrayCallBacks = {true};
inline constexpr CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {true};
inline constexpr CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {true};
inline constexpr CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {true};

CFTypeID CFArrayGetTypeID();
CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex n, const CFArrayCallBacks* callbacks);
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex most, const CFArrayCallBacks* callbacks);
CFIndex CFArrayGetCount(CFArrayRef array);                            // null = 0
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);  // [0..count); borrowed; null outside
void CFArrayAppendValue(CFMutableArrayRef array, const void* value);

CFTypeID CFDictionaryGetTypeID();
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex n,
                                   const CFDictionaryKeyCallBacks* keyCallbacks,
                                   const CFDictionaryValueCallBacks* valueCallbacks);  // the first of equal keys stays
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex most,
                                                 const CFDictionaryKeyCallBacks* keyCallbacks,
                                                 const CFDictionaryValueCallBacks* valueCallbacks);
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex most, CFDictionaryRef dictionary);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);  // null = 0
Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key);
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);  // borrowed; null = none
Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key, const void** value);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);

// Attributed strings: units with CF objects under names. A range is cut to the string; changes behind BeginEditing are
// seen at once.
CFTypeID CFAttributedStringGetTypeID();
CFAttributedStringRef CFAttributedStringCreate(CFAllocatorRef, CFStringRef string, CFDictionaryRef attributes);
CFMutableAttributedStringRef CFAttributedStringCreateMutable(CFAllocatorRef, CFIndex most);  // empty; 0 = any
CFMutableAttributedStringRef CFAttributedStringCreateMutableCopy(CFAllocatorRef, CFIndex most,
                                                                 CFAttributedStringRef string);
CFStringRef CFAttributedStringGetString(CFAttributedStringRef string);  // borrowed until the next change
CFIndex CFAttributedStringGetLength(CFAttributedStringRef string);      // null = 0
// The replacement takes the attributes of the first replaced unit, else of the one before.
void CFAttributedStringReplaceString(CFMutableAttributedStringRef string, CFRange range, CFStringRef replacement);
// Those at a unit, and the range that they hold for; borrowed until the next change; null = outside
CFDictionaryRef CFAttributedStringGetAttributes(CFAttributedStringRef string, CFIndex at, CFRange* effective);
CFTypeRef CFAttributedStringGetAttribute(CFAttributedStringRef string, CFIndex at, CFStringRef name,
                                         CFRange* effective);
void CFAttributedStringSetAttribute(CFMutableAttributedStringRef string, CFRange range, CFStringRef name,
                                    CFTypeRef value);
void CFAttributedStringRemoveAttribute(CFMutableAttributedStringRef string, CFRange range, CFStringRef name);
void CFAttributedStringBeginEditing(CFMutableAttributedStringRef string);
void CFAttributedStringEndEditing(CFMutableAttributedStringRef string);

// Numbers
enum CFNumberType : CFIndex {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberCGFloatType = 16
};
CFTypeID CFNumberGetTypeID();
CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value);  // null = unknown type or null value
// *value gets the nearest number of the type; false = it is not the same one, or nothing was written
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
Boolean CFNumberIsFloatType(CFNumberRef number);

// Truth values
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
CFTypeID CFBooleanGetTypeID();
Boolean CFBooleanGetValue(CFBooleanRef boolean);  // null = false

// File URLs
enum CFURLPathStyle : CFIndex { kCFURLPOSIXPathStyle = 0 };
CFTypeID CFURLGetTypeID();
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style, Boolean isDirectory);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex n, Boolean isDirectory);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
CFStringRef CFURLGetString(CFURLRef url);  // "file:///..." with %-escapes; borrowed
Boolean CFURLHasDirectoryPath(CFURLRef url);
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve, UInt8* out, CFIndex room);  // UTF-8 path

// Writing files
CFTypeID CFWriteStreamGetTypeID();
CFWriteStreamRef CFWriteStreamCreateWithFile(CFAllocatorRef, CFURLRef url);
Boolean CFWriteStreamOpen(CFWriteStreamRef stream);  // replaces the file; false = cannot, or opened before
CFIndex CFWriteStreamWrite(CFWriteStreamRef stream, const UInt8* bytes, CFIndex n);  // bytes written; -1 = failed
void CFWriteStreamClose(CFWriteStreamRef stream);

// Universally unique identifiers, version 4
struct CFUUIDBytes {
    UInt8 byte[16];
};
CFTypeID CFUUIDGetTypeID();
CFUUIDRef CFUUIDCreate(CFAllocatorRef);
CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef, CFUUIDBytes bytes);
CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid);
CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid);  // upper case, with hyphens

#endif
