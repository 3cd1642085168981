#include "app/Folder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "app/Messages.h"

namespace zrtool {

static constexpr std::string_view kSuffix = ".4dm";

static char Folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

std::string Folded(std::string_view name) {
    std::string folded(name);
    for (char& c : folded) c = Folded(c);
    return folded;
}

static bool SameName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Folded(a) == Folded(b); });
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

static size_t NameLength(std::string_view fileName) {
    size_t dot = fileName.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? fileName.size() : dot;
}

std::string MethodNameOf(const std::string& path) {
    std::string name = path.substr(FolderOf(path).size());
    return name.substr(0, NameLength(name));
}

void MethodFolder::add(const std::string& folder) {
    std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    if (!open) return;
    folders_.push_back(folder.empty() || folder.ends_with('/') ? folder : folder + "/");
    while (dirent* entry = readdir(open.get())) {
        std::string_view name = entry->d_name;
        if (entry->d_type == DT_DIR || !HasSuffix(name)) continue;
        size_t length = name.size() - kSuffix.size();
        files_.push_back({std::string(name.substr(0, length)), std::string(name.substr(length)), folders_.size() - 1});
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

void MethodFolder::addFile(const std::string& path) {
    std::string name = MethodNameOf(path), folder = FolderOf(path);
    for (const MethodFile& file : files_)
        if (SameName(file.name, name)) return;
    std::string suffix = path.substr(folder.size() + name.size());
    folders_.push_back(std::move(folder));
    files_.push_back({std::move(name), std::move(suffix), folders_.size() - 1});
}

const MethodFile* MethodFolder::find(std::string_view name) const {
    for (; indexed_ < files_.size(); ++indexed_) byName_.emplace(Folded(files_[indexed_].name), indexed_);
    auto found = byName_.find(Folded(name));
    return found == byName_.end() ? nullptr : &files_[found->second];
}

}  // namespace zrtool
