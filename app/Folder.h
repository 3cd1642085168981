// The method files of folders, by name. Nothing is read but the folders themselves.
#ifndef ZRTOOL_FOLDER_H
#define ZRTOOL_FOLDER_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zrtool {

struct MethodFile {
    std::string name;    // in UTF-8, without folder and suffix
    std::string suffix;  // ".4dm" as it is written
    size_t folder = 0;   // of the list of folders
};

class MethodFolder {
  public:
    void add(const std::string& folder);         // every *.4dm in it; one that cannot be read adds nothing
    void addProject(const std::string& folder);  // its Project/Sources/Methods if it has; throws Refusal
    void addFile(const std::string& path);       // unless the name of its method is taken
    const std::vector<MethodFile>& files() const { return files_; }
    std::string pathOf(const MethodFile& file) const { return folders_[file.folder] + file.name + file.suffix; }
    const MethodFile* find(std::string_view name) const;  // ASCII letters in any case; null = none

  private:
    std::vector<std::string> folders_;  // "" or with a slash at the end
    std::vector<MethodFile> files_;
    mutable std::unordered_map<std::string, size_t> byName_;  // folded; made at the first search
    mutable size_t indexed_ = 0;                              // files that are in it
};

std::string FolderOf(const std::string& path);      // with the slash; "" for a plain file name
std::string MethodNameOf(const std::string& path);  // the file's name without folder and suffix
std::string Folded(std::string_view name);          // ASCII letters made small

}  // namespace zrtool

#endif
