#include "host/Native.h"

#include <dlfcn.h>

#include <mutex>
#include <set>
#include <string>

#include "host/Host.h"
#include "platform/NativePicture/NativePicture.h"

namespace zrhost {

namespace {

constexpr const char* kEntry = "ZRNativePictureGetTable";
constexpr const char* kLibrary = "libzr.so.0";

// The module that asks is loaded: linked to the program, or opened by it.
const ZRNativePictureTable* Find() {
    void* entry = dlsym(RTLD_DEFAULT, kEntry);
    void* library = entry ? nullptr : dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD | RTLD_NODELETE);
    if (library) entry = dlsym(library, kEntry);
    auto function = reinterpret_cast<const ZRNativePictureTable* (*)()>(entry);
    const ZRNativePictureTable* table = function ? function() : nullptr;
    return table && table->version == kZRNativePictureVersion ? table : nullptr;
}

const ZRNativePictureTable* Native() {  // null = there is none by now
    static std::mutex mutex;
    static const ZRNativePictureTable* known = nullptr;
    std::lock_guard guard(mutex);
    if (!known) known = Find();
    return known;
}

// The number of a kind that the table knows, 1..7; 0 = none. The kinds stand in this order.
int FormatOf(const std::string& type) {
    std::span<const PictureKind> kinds = PictureKinds();
    for (int i = 0; i < kZRNativeSVG; ++i)
        if (type == kinds[size_t(i)].type) return i + 1;
    return 0;
}

const char* Chars(const std::vector<uint8_t>& bytes) { return reinterpret_cast<const char*>(bytes.data()); }

// Tells once an object what is missing.
void TellMissing(const ZRNativePictureTable* table, int format) {
    table->eachMissing(
        format,
        [](void*, const char* object, const char* packages) {
            static std::mutex mutex;
            static std::set<std::string>& told = *new std::set<std::string>;
            std::lock_guard guard(mutex);
            Host* host = Host::active();
            if (host && host->options().missingObject && told.insert(object).second)
                host->options().missingObject(object, packages);
        },
        nullptr);
}

using Maker = void* (*)(const char* bytes, long n, int format);

void* Make(const Picture& picture, Maker ZRNativePictureTable::*maker) {
    const ZRNativePictureTable* table = Native();
    for (const Representation& one : picture.representations()) {
        const int format = table ? FormatOf(one.type) : 0;
        if (format == 0) continue;
        if (void* made = (table->*maker)(Chars(one.bytes), long(one.bytes.size()), format)) return made;
        TellMissing(table, format);
    }
    return nullptr;
}

}  // namespace

void* NativeImage(const Picture& picture) { return Make(picture, &ZRNativePictureTable::createImage); }
void* NativeDocument(const Picture& picture) { return Make(picture, &ZRNativePictureTable::createDocument); }

std::pair<int, int> NativeSize(const Picture& picture) {
    const ZRNativePictureTable* table = Native();
    for (const Representation& one : picture.representations()) {
        const int format = table ? FormatOf(one.type) : 0;
        double width = 0, height = 0;
        if (format == 0) continue;
        if (table->getSize(Chars(one.bytes), long(one.bytes.size()), format, &width, &height) && width <= INT32_MAX &&
            height <= INT32_MAX)
            return {int(width), int(height)};
        TellMissing(table, format);
    }
    return {0, 0};
}

std::optional<Pixels> DecodePicture(const Picture& picture) {
    const ZRNativePictureTable* table = Native();
    for (const Representation& one : picture.representations()) {
        const int format = table ? FormatOf(one.type) : 0;
        ZRNativePixels decoded;
        if (format == 0) continue;
        if (!table->decode(Chars(one.bytes), long(one.bytes.size()), format, /*scale*/ 1, &decoded)) {
            TellMissing(table, format);
            continue;
        }
        Pixels pixels;
        pixels.width = int(decoded.width), pixels.height = int(decoded.height);
        pixels.dpiX = decoded.dpiX, pixels.dpiY = decoded.dpiY;
        pixels.rgba.assign(decoded.rgba, decoded.rgba + decoded.width * decoded.height * 4);
        table->release(&decoded);
        return pixels;
    }
    return std::nullopt;
}

bool CanEncode(const PictureKind& kind) {
    const int format = FormatOf(kind.type);
    return format >= kZRNativeJPEG && format <= kZRNativeTIFF;
}

std::vector<uint8_t> EncodePicture(const Pixels& pixels, const PictureKind& kind, double quality) {
    std::vector<uint8_t> bytes;
    const ZRNativePictureTable* table = CanEncode(kind) ? Native() : nullptr;
    if (!table) return bytes;
    ZRNativePixels record = {pixels.width, pixels.height, pixels.dpiX, pixels.dpiY,
                             const_cast<uint8_t*>(pixels.rgba.data())};
    auto take = [](void* info, const void* data, long n) {
        auto from = static_cast<const uint8_t*>(data);
        static_cast<std::vector<uint8_t>*>(info)->assign(from, from + n);
    };
    const int format = FormatOf(kind.type);
    if (!table->encode(&record, format, quality, take, &bytes)) TellMissing(table, format);
    return bytes;
}

}  // namespace zrhost
