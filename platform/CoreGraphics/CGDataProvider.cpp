// Bytes in and out: of data objects and files.
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/CoreGraphics/CoreGraphics_Private.h"

static constexpr CFIndex kLargestFile = 1L << 31;
static constexpr CFIndex kLongestPath = 1L << 16;

static std::string PathOf(CFURLRef url) {
    std::string path(kLongestPath, 0);
    auto room = reinterpret_cast<UInt8*>(path.data());
    if (!url || !CFURLGetFileSystemRepresentation(url, /*resolve*/ true, room, kLongestPath)) return "";
    return path.c_str();
}

// Reading ----------------------------------------------------------------------------------------------------------

// size bytes of an open file; null = it has fewer by now
static CFDataRef ReadWhole(int file, CFIndex size) {
    CFMutableDataRef data = CFDataCreateMutable(nullptr, 0);
    CFDataSetLength(data, size);
    CFIndex got = 0;
    while (CFDataGetLength(data) == size && got < size) {
        ssize_t n = read(file, CFDataGetMutableBytePtr(data) + got, static_cast<size_t>(size - got));
        if (n < 0 && errno == EINTR) continue;
        if (n < 1) break;
        got += n;
    }
    if (got == size && CFDataGetLength(data) == size) return data;
    CFRelease(data);
    return nullptr;
}

CFDataRef CreateDataFromFile(CFURLRef url) {
    return CFGuarded([&]() -> CFDataRef {
        std::string path = PathOf(url);
        if (path.empty()) return nullptr;
        int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe without writer must not stop us
        if (file < 0) return nullptr;
        struct stat info;
        bool regular = fstat(file, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= kLargestFile;
        CFDataRef data = regular ? ReadWhole(file, info.st_size) : nullptr;
        close(file);
        return data;
    });
}

static CGDataProviderRef Provide(CFDataRef handedOver) {
    if (!handedOver) return nullptr;
    CGDataProviderRef provider = CFGuarded([&] { return new CGDataProvider(handedOver); });
    if (!provider) CFRelease(handedOver);
    return provider;
}

CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data) { return Provide(CFDataCreateCopy(nullptr, data)); }
CGDataProviderRef CGDataProviderCreateWithURL(CFURLRef url) { return Provide(CreateDataFromFile(url)); }

CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback release) {
    CFDataRef copy = CFDataCreate(nullptr, static_cast<const UInt8*>(data), static_cast<CFIndex>(size));
    if (copy && release) release(info, data, size);
    return Provide(copy);
}

CFDataRef CGDataProviderCopyData(CGDataProviderRef provider) {
    return provider ? static_cast<CFDataRef>(CFRetain(provider->data)) : nullptr;
}

// Writing ----------------------------------------------------------------------------------------------------------

namespace {
struct DataConsumer : CGDataConsumer {
    explicit DataConsumer(CFMutableDataRef target) : data(target) { CFRetain(data); }
    ~DataConsumer() override { CFRelease(data); }
    bool Write(const void* bytes, size_t n) override {
        CFIndex before = CFDataGetLength(data);
        CFDataAppendBytes(data, static_cast<const UInt8*>(bytes), static_cast<CFIndex>(n));
        return CFDataGetLength(data) == before + static_cast<CFIndex>(n);
    }
    const CFMutableDataRef data;
};

struct FileConsumer : CGDataConsumer {
    explicit FileConsumer(FILE* opened) : file(opened) {}
    ~FileConsumer() override { fclose(file); }
    bool Write(const void* bytes, size_t n) override { return fwrite(bytes, 1, n, file) == n && fflush(file) == 0; }
    FILE* const file;
};
}  // namespace

CGDataConsumerRef CGDataConsumerCreateWithCFData(CFMutableDataRef data) {
    if (!data) return nullptr;
    return CFGuarded([&] { return new DataConsumer(data); });
}

CGDataConsumerRef CGDataConsumerCreateWithURL(CFURLRef url) {
    return CFGuarded([&]() -> CGDataConsumerRef {
        std::string path = PathOf(url);
        FILE* file = path.empty() ? nullptr : fopen(path.c_str(), "wbe");
        if (!file) return nullptr;
        return new FileConsumer(file);
    });
}
