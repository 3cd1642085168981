#include "app/Folder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "app/Messages.h"
#include "host/Host.h"

namespace zrtool {

static constexpr std::string_view kSuffix = ".4dm";

static std::u16string Folded(std::u16string_view name) {
    std::u16string folded(name);
    for (char16_t& unit : folded)
        if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
    return folded;
}

static bool HasSuffix(std::string_view name) {
    if (name.size() <= kSuffix.size()) return false;
    std::string_view end = name.substr(name.size() - kSuffix.size());
    return end[0] == '.' && end[1] == '4' && (end[2] | 32) == 'd' && (end[3] | 32) == 'm';
}

std::string FolderOf(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

std::u16string MethodNameOf(const std::string& path) {
    std::string name = path.substr(FolderOf(path).size());
    size_t dot = name.rfind('.');
    return zrhost::FromUtf8(dot == std::string::npos || dot == 0 ? name : name.substr(0, dot));
}

void MethodFolder::add(const std::string& folder) {
    std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    if (!open) return;
    while (dirent* entry = readdir(open.get())) {
        std::string_view name = entry->d_name;
        if (entry->d_type == DT_DIR || !HasSuffix(name)) continue;
        std::string path = folder;
        if (!path.empty() && path.back() != '/') path += '/';
        path += name;
        name.remove_suffix(kSuffix.size());
        files_.push_back({zrhost::FromUtf8(name), std::move(path)});
    }
}

void MethodFolder::addProject(const std::string& folder) {
    struct stat facts;
    if (stat(folder.c_str(), &facts) != 0) throw Refusal{"cannot read " + Shown(folder) + ": " + ReasonOf(errno)};
    if (!S_ISDIR(facts.st_mode)) throw Refusal{Shown(folder) + " is not a folder"};
    std::string base = folder.ends_with('/') ? folder : folder + "/";
    for (const char* inside : {"Project/Sources/Methods/", "Sources/Methods/", "Methods/"}) {
        std::string methods = base + inside;
        if (stat(methods.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode)) return add(methods);
    }
    add(base);
}

void MethodFolder::addFile(const MethodFile& file) {
    if (!find(file.name)) files_.push_back(file);
}

const MethodFile* MethodFolder::find(std::u16string_view name) const {
    for (; indexed_ < files_.size(); ++indexed_) byName_.emplace(Folded(files_[indexed_].name), indexed_);
    auto found = byName_.find(Folded(name));
    return found == byName_.end() ? nullptr : &files_[found->second];
}

}  // namespace zrtool
