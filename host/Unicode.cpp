#include "host/Unicode.h"

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string_view>

#include "host/Host.h"

namespace zrhost {

namespace {

// Languages whose order of A to Z differs from the root order, in letters, pairs of letters or accents that are letters
// of their own.
constexpr std::string_view kOwnOrder[] = {"az", "bs", "ca", "cs", "cy", "da", "eo", "es", "et", "fi", "fo", "haw",
                                          "hr", "hu", "ig", "is", "kl", "lt", "lv", "mt", "nb", "nn", "no", "pl",
                                          "ro", "se", "sk", "sl", "sq", "sr", "sv", "tk", "tr", "vi", "yo"};

std::mutex gMutex;
std::string gPath;
std::string gLocale = "en-US";
std::atomic<const UnicodeTable*> gTable{nullptr};
std::atomic<bool> gTried{false};
std::atomic<bool> gLatinOrder{true};

const UnicodeTable* Open() {
    std::string path = gPath.empty() ? FolderOfThisLibrary() + "libzr-unicode.so" : gPath;
    void* object = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!object) return nullptr;
    auto function = reinterpret_cast<const UnicodeTable* (*)()>(dlsym(object, "zr_unicode_table"));
    const UnicodeTable* table = function ? function() : nullptr;
    if (!table || table->version != kUnicodeTableVersion) return nullptr;
    table->setLocale(gLocale.c_str());
    return table;
}

}  // namespace

const UnicodeTable* Unicode() {
    if (gTried.load(std::memory_order_acquire)) return gTable.load(std::memory_order_relaxed);
    bool missing = false;
    {
        std::lock_guard guard(gMutex);
        if (!gTried.load(std::memory_order_relaxed)) {
            const UnicodeTable* table = Open();
            missing = !table;
            gTable.store(table, std::memory_order_relaxed);
            gTried.store(true, std::memory_order_release);
        }
    }
    Host* host = missing ? Host::active() : nullptr;
    if (host && host->options().missingObject) host->options().missingObject("zr-unicode", "libicu72");
    return gTable.load(std::memory_order_relaxed);
}

bool UnicodeIsOpen() { return gTable.load(std::memory_order_relaxed) != nullptr; }

void ConfigureUnicode(const std::string& path, const std::string& locale) {
    std::lock_guard guard(gMutex);
    if (path != gPath) gTried.store(false, std::memory_order_relaxed);  // another object: looked for again
    gPath = path;
    gLocale = locale;
    std::string_view language = std::string_view(locale).substr(0, locale.find_first_of("-_"));
    gLatinOrder = std::find(std::begin(kOwnOrder), std::end(kOwnOrder), language) == std::end(kOwnOrder);
    if (const UnicodeTable* table = gTable.load(std::memory_order_relaxed)) table->setLocale(locale.c_str());
}

bool LatinOrderHolds() { return gLatinOrder.load(std::memory_order_relaxed); }

std::string FolderOfThisLibrary() {
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&FolderOfThisLibrary), &info) || !info.dli_fname) return "./";
    std::string path = info.dli_fname;
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

}  // namespace zrhost
