// Objects, bytes, file URLs, write streams and identifiers. Strings have a source of their own.
#include "platform/CoreFoundation/CoreFoundation.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <random>
#include <vector>

#include "platform/CoreFoundation/CoreFoundation_Private.h"

struct __CFAllocator : CFObject {};
static __CFAllocator sNullAllocator, sMallocAllocator;
const CFAllocatorRef kCFAllocatorNull = &sNullAllocator;
const CFAllocatorRef kCFAllocatorMalloc = &sMallocAllocator;

// Any object -------------------------------------------------------------------------------------------------------

static const CFObject* Object(CFTypeRef object) { return static_cast<const CFObject*>(object); }

CFTypeRef CFRetain(CFTypeRef object) {
    if (object) Object(object)->references.fetch_add(1, std::memory_order_relaxed);
    return object;
}

void CFRelease(CFTypeRef object) {
    if (object && Object(object)->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete Object(object);
}

CFIndex CFGetRetainCount(CFTypeRef object) { return object ? Object(object)->references.load() : 0; }

CFTypeID CFGetTypeID(CFTypeRef object) { return object ? Object(object)->typeID() : 0; }

Boolean CFEqual(CFTypeRef left, CFTypeRef right) {
    if (left == right) return true;
    return left && right && CFGetTypeID(left) == CFGetTypeID(right) && Object(left)->equals(*Object(right));
}

CFHashCode CFHash(CFTypeRef object) { return object ? Object(object)->hash() : 0; }

// Bytes ------------------------------------------------------------------------------------------------------------

struct __CFData : CFObject {
    __CFData(const UInt8* from, CFIndex n) : bytes(from, from + n) {}
    explicit __CFData(CFIndex most) : changes(true), limit(most) {}
    CFTypeID typeID() const override { return kCFTypeData; }
    bool equals(const CFObject& other) const override { return bytes == static_cast<const __CFData&>(other).bytes; }
    CFHashCode hash() const override {
        return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    std::vector<UInt8> bytes;
    const bool changes = false;
    const CFIndex limit = 0;  // most bytes, 0 = any
};

CFTypeID CFDataGetTypeID() { return kCFTypeData; }

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex n) {
    if (n < 0 || (n > 0 && !bytes)) return nullptr;
    return CFGuarded([&] { return new __CFData(bytes, n); });
}

CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data) {
    if (data && data->changes) return CFDataCreate(allocator, CFDataGetBytePtr(data), CFDataGetLength(data));
    return static_cast<CFDataRef>(CFRetain(data));
}

CFIndex CFDataGetLength(CFDataRef data) { return data ? static_cast<CFIndex>(data->bytes.size()) : 0; }

const UInt8* CFDataGetBytePtr(CFDataRef data) { return data ? data->bytes.data() : nullptr; }

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* out) {
    CFIndex length = CFDataGetLength(data);
    if (!out || range.location < 0 || range.location > length) return;
    CFIndex n = std::clamp<CFIndex>(range.length, 0, length - range.location);
    if (n > 0) memcpy(out, data->bytes.data() + range.location, static_cast<size_t>(n));
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex most) {
    if (most < 0) return nullptr;
    return CFGuarded([&] { return new __CFData(most); });
}

UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data) { return data && data->changes ? data->bytes.data() : nullptr; }

void CFDataSetLength(CFMutableDataRef data, CFIndex n) {
    if (!data || !data->changes || n < 0 || (data->limit && n > data->limit)) return;
    CFGuarded([&]() -> void* {
        data->bytes.resize(static_cast<size_t>(n));
        return nullptr;
    });
}

void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex n) {
    if (!data || !data->changes || !bytes || n < 1 || (data->limit && n > data->limit - CFDataGetLength(data))) return;
    CFGuarded([&]() -> void* {
        data->bytes.insert(data->bytes.end(), bytes, bytes + n);
        return nullptr;
    });
}

// File URLs --------------------------------------------------------------------------------------------------------

struct __CFURL : CFObject {
    __CFURL(std::string name, bool directory) : path(std::move(name)), isDirectory(directory) {}
    ~__CFURL() override { CFRelease(text.load()); }
    CFTypeID typeID() const override { return kCFTypeURL; }
    bool equals(const CFObject& other) const override {
        auto& url = static_cast<const __CFURL&>(other);
        return path == url.path && isDirectory == url.isDirectory;
    }
    CFHashCode hash() const override { return std::hash<std::string>()(path); }
    const std::string path;  // UTF-8, as given but for a slash at the end
    const bool isDirectory;
    mutable std::atomic<CFStringRef> text{nullptr};  // made by CFURLGetString
};

static CFURLRef CreateURL(std::string path, bool isDirectory) {
    if (path.empty() || path.find('\0') != std::string::npos) return nullptr;
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return new __CFURL(std::move(path), isDirectory);
}

CFTypeID CFURLGetTypeID() { return kCFTypeURL; }

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style, Boolean isDirectory) {
    if (!path || style != kCFURLPOSIXPathStyle) return nullptr;
    return CFGuarded([&] { return CreateURL(CFUnitsToUTF8(path->units), isDirectory); });
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex n, Boolean isDirectory) {
    if (!path || n < 1) return nullptr;
    return CFGuarded([&] {
        return CreateURL(std::string(reinterpret_cast<const char*>(path), static_cast<size_t>(n)), isDirectory);
    });
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    if (!url || style != kCFURLPOSIXPathStyle) return nullptr;
    return CFStringCreateWithCString(nullptr, url->path.c_str(), kCFStringEncodingUTF8);
}

static std::string Absolute(const std::string& path) {
    char here[PATH_MAX];
    if (path.front() == '/' || !getcwd(here, sizeof here)) return path;
    return std::string(here) + (here[1] ? "/" : "") + path;
}

static std::string URLText(const __CFURL& url) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    static constexpr std::string_view kPlain = "/-._~!$&'()*+,=:@";
    std::string text = "file://";
    for (char c : Absolute(url.path)) {
        bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        auto byte = static_cast<UInt8>(c);
        if (letter || kPlain.find(c) != std::string_view::npos) text += c;
        else text.append({'%', kHex[byte >> 4], kHex[byte & 15]});
    }
    if (url.isDirectory && text.back() != '/') text += '/';
    return text;
}

CFStringRef CFURLGetString(CFURLRef url) {
    if (!url) return nullptr;
    if (CFStringRef known = url->text.load()) return known;
    CFStringRef text =
        CFGuarded([&] { return CFStringCreateWithCString(nullptr, URLText(*url).c_str(), kCFStringEncodingUTF8); });
    CFStringRef none = nullptr;
    if (url->text.compare_exchange_strong(none, text)) return text;
    CFRelease(text);  // another thread was first
    return none;
}

Boolean CFURLHasDirectoryPath(CFURLRef url) { return url && url->isDirectory; }

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve, UInt8* out, CFIndex room) {
    if (!url || !out) return false;
    std::string path = resolve ? Absolute(url->path) : url->path;
    if (room <= static_cast<CFIndex>(path.size())) return false;
    memcpy(out, path.c_str(), path.size() + 1);
    return true;
}

// Writing files ----------------------------------------------------------------------------------------------------

struct __CFWriteStream : CFObject {
    explicit __CFWriteStream(std::string name) : path(std::move(name)) {}
    ~__CFWriteStream() override { Close(); }
    CFTypeID typeID() const override { return kCFTypeWriteStream; }
    void Close() {
        if (file >= 0) close(file);
        file = -1;
    }
    const std::string path;
    int file = -1;
    bool opened = false;
};

CFTypeID CFWriteStreamGetTypeID() { return kCFTypeWriteStream; }

CFWriteStreamRef CFWriteStreamCreateWithFile(CFAllocatorRef, CFURLRef url) {
    if (!url) return nullptr;
    return CFGuarded([&] { return new __CFWriteStream(url->path); });
}

Boolean CFWriteStreamOpen(CFWriteStreamRef stream) {
    if (!stream || stream->opened) return false;
    stream->opened = true;
    stream->file = open(stream->path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return stream->file >= 0;
}

CFIndex CFWriteStreamWrite(CFWriteStreamRef stream, const UInt8* bytes, CFIndex n) {
    if (!stream || stream->file < 0 || n < 0 || (n > 0 && !bytes)) return -1;
    CFIndex written;
    do { written = write(stream->file, bytes, static_cast<size_t>(n)); } while (written < 0 && errno == EINTR);
    return written;
}

void CFWriteStreamClose(CFWriteStreamRef stream) {
    if (stream) stream->Close();
}

// Universally unique identifiers -----------------------------------------------------------------------------------

struct __CFUUID : CFObject {
    explicit __CFUUID(CFUUIDBytes from) : bytes(from) {}
    CFTypeID typeID() const override { return kCFTypeUUID; }
    bool equals(const CFObject& other) const override {
        return memcmp(bytes.byte, static_cast<const __CFUUID&>(other).bytes.byte, sizeof bytes.byte) == 0;
    }
    CFHashCode hash() const override {
        return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.byte), sizeof bytes.byte});
    }
    const CFUUIDBytes bytes;
};

static CFUUIDBytes RandomBytes() {
    CFUUIDBytes bytes;
    if (getrandom(bytes.byte, sizeof bytes.byte, 0) == sizeof bytes.byte) return bytes;
    std::random_device source;
    for (auto& byte : bytes.byte) byte = static_cast<UInt8>(source());
    return bytes;
}

CFTypeID CFUUIDGetTypeID() { return kCFTypeUUID; }

CFUUIDRef CFUUIDCreate(CFAllocatorRef allocator) {
    CFUUIDBytes bytes = RandomBytes();
    bytes.byte[6] = static_cast<UInt8>((bytes.byte[6] & 0x0F) | 0x40);  // version 4
    bytes.byte[8] = static_cast<UInt8>((bytes.byte[8] & 0x3F) | 0x80);  // variant 1
    return CFUUIDCreateFromUUIDBytes(allocator, bytes);
}

CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef, CFUUIDBytes bytes) {
    return CFGuarded([&] { return new __CFUUID(bytes); });
}

CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid) { return uuid ? uuid->bytes : CFUUIDBytes{}; }

CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef uuid) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    if (!uuid) return nullptr;
    std::array<UniChar, 36> text;
    size_t at = 0;
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text[at++] = '-';
        text[at++] = static_cast<UInt8>(kHex[uuid->bytes.byte[i] >> 4]);
        text[at++] = static_cast<UInt8>(kHex[uuid->bytes.byte[i] & 15]);
    }
    return CFStringCreateWithCharacters(allocator, text.data(), static_cast<CFIndex>(text.size()));
}
