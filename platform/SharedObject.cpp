#include "platform/SharedObject.h"

#include <dlfcn.h>
#include <link.h>

#include <climits>
#include <mutex>
#include <string>

// What every table begins with.
struct TableHead {
    int version;
};

struct ObjectRow {
    const char *file, *entry;  // entry: the exported function that gives the table
    int version;               // of the table that this library knows
    const char *purpose, *packages;
};
static constexpr ObjectRow kObjects[kZRObjectCount] = {
    {"libzr-graphics.so", "ZRGraphicsGetTable", 2, "drawing, text and image formats",
     "libcairo2 libpango-1.0-0 libpangocairo-1.0-0 libpangoft2-1.0-0 libharfbuzz0b libfontconfig1 fonts-liberation "
     "libpng16-16 libjpeg62-turbo libtiff6 libgif7"},
    {"libzr-pdf.so", "ZRPDFGetTable", 1, "PDF documents", "libqpdf29"},
    {"libzr-pdfpaint.so", "ZRPDFPaintGetTable", 1, "painting PDF pages", "libpoppler-glib8"},
    {"libzr-svg.so", "ZRSVGGetTable", 1, "SVG pictures", "librsvg2-2"},
};

struct OpenObject {
    std::once_flag once;
    const void* table = nullptr;
    std::string problem;
    ZRSharedObjectState state = {};
};
static constexpr size_t kLongestOrigin = 16 * PATH_MAX;  // more than the loader can have opened
static OpenObject sObjects[kZRObjectCount];
static std::mutex sFolderLock;
static std::string* sFolder = nullptr;  // null = beside this library

static std::string FolderOfObjects() {
    std::lock_guard lock(sFolderLock);
    if (sFolder) return *sFolder + "/";
    Dl_info self = {};
    void* map = nullptr;
    if (!dladdr1(reinterpret_cast<void*>(&ZRSharedObjectGetTable), &self, &map, RTLD_DL_LINKMAP)) return "";
    // Where the loader found it: the name alone may be relative to a folder that is no longer the current one.
    std::string folder(kLongestOrigin, 0);
    if (map && dlinfo(map, RTLD_DI_ORIGIN, folder.data()) == 0 && folder[0] == '/')
        return folder.c_str() + std::string("/");
    std::string path = self.dli_fname ? self.dli_fname : "";
    return path.substr(0, path.rfind('/') + 1);
}

static const char* LoaderWords() {
    const char* words = dlerror();
    return words ? words : "unknown";
}

static const void* OpenTable(const ObjectRow& row, std::string* problem) {
    void* object = dlopen((FolderOfObjects() + row.file).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!object) {
        *problem = LoaderWords();
        return nullptr;
    }
    auto entry = reinterpret_cast<const void* (*)()>(dlsym(object, row.entry));
    if (!entry) {
        *problem = LoaderWords();
        return nullptr;
    }
    const auto* table = static_cast<const TableHead*>(entry());
    if (table && table->version == row.version) return table;
    *problem = std::string(row.file) + ": another version";
    return nullptr;
}

static OpenObject& Opened(int index) {
    OpenObject& object = sObjects[index];
    std::call_once(object.once, [&] {
        const ObjectRow& row = kObjects[index];
        object.table = OpenTable(row, &object.problem);
        object.state = {row.file, row.purpose, row.packages, object.table != nullptr, object.problem.c_str()};
    });
    return object;
}

const ZRSharedObjectState* ZRSharedObjectGetState(int object) {
    return object >= 0 && object < kZRObjectCount ? &Opened(object).state : nullptr;
}

const void* ZRSharedObjectGetTable(ZRSharedObject object) {
    return object >= 0 && object < kZRObjectCount ? Opened(object).table : nullptr;
}

void ZRSharedObjectSetFolder(const char* folder) {
    std::lock_guard lock(sFolderLock);
    static std::string chosen;
    if (folder) chosen = folder;
    sFolder = folder ? &chosen : nullptr;
}
