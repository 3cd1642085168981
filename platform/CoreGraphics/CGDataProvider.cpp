// Bytes in and out: of data objects and files.
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

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
    if (release) release(info, data, size);  // whatever became of the copy
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

// Writes beside the file and takes its place at the end; until then, and after a failure, the file is as it was.
struct ReplacingConsumer : FileConsumer {
    ReplacingConsumer(FILE* opened, std::string own, std::string at)
        : FileConsumer(opened), scratch(std::move(own)), path(std::move(at)) {}
    ~ReplacingConsumer() override {
        if (!committed) unlink(scratch.c_str());
    }
    bool Commit() override {
        committed = fflush(file) == 0 && rename(scratch.c_str(), path.c_str()) == 0;
        return committed;
    }
    const std::string scratch, path;
    bool committed = false;
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

// A new file beside the path, for writing; its name goes to scratch. -1 = cannot
static int OpenBeside(const std::string& path, std::string* scratch) {
    static std::atomic<unsigned> counter = 0;
    for (int attempt = 0; attempt < 100; ++attempt) {
        *scratch = path + ".new" + std::to_string(getpid()) + "-" + std::to_string(counter++);
        int file = open(scratch->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0 || errno != EEXIST) return file;
    }
    return -1;
}

// null = there is no way to write beside it: a folder that takes no file, or something else than a file
static CGDataConsumerRef CreateBeside(const std::string& given) {
    struct stat info = {};
    bool exists = stat(given.c_str(), &info) == 0;
    if (exists && (!S_ISREG(info.st_mode) || info.st_nlink != 1 || access(given.c_str(), W_OK) != 0)) return nullptr;
    std::string path = given;
    if (char* real = exists ? realpath(given.c_str(), nullptr) : nullptr) {  // a link stays a link
        path = real;
        free(real);
    }
    if (!exists && lstat(given.c_str(), &info) == 0) return nullptr;  // a link to nothing yet: written through
    std::string scratch;
    int descriptor = OpenBeside(path, &scratch);
    if (descriptor < 0) return nullptr;
    bool kept = !exists || fchmod(descriptor, info.st_mode & 07777) == 0;  // the file's own rights
    FILE* file = kept ? fdopen(descriptor, "wb") : nullptr;
    if (!file) {
        close(descriptor);
        unlink(scratch.c_str());
        return nullptr;
    }
    return new ReplacingConsumer(file, std::move(scratch), std::move(path));
}

CGDataConsumerRef CreateReplacingConsumer(CFURLRef url) {
    CGDataConsumerRef consumer = CFGuarded([&]() -> CGDataConsumerRef {
        std::string path = PathOf(url);
        return path.empty() ? nullptr : CreateBeside(path);
    });
    return consumer ? consumer : CGDataConsumerCreateWithURL(url);
}
