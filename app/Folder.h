// The method files of folders, by name. Nothing is read but the folders themselves.
#ifndef ZRTOOL_FOLDER_H
#define ZRTOOL_FOLDER_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zrtool {

struct MethodFile {
    std::u16string name;  // of the file, without .4dm
    std::string path;
};

class MethodFolder {
  public:
    void add(const std::string& folder);         // every *.4dm in it; a folder that cannot be read adds nothing
    void addProject(const std::string& folder);  // its Project/Sources/Methods if there is one; throws Refusal
    void addFile(const MethodFile& file);        // unless its name is taken
    const std::vector<MethodFile>& files() const { return files_; }
    const MethodFile* find(std::u16string_view name) const;  // ASCII letters in any case; null = none

  private:
    std::vector<MethodFile> files_;
    mutable std::unordered_map<std::u16string, size_t> byName_;  // folded; made at the first search
    mutable size_t indexed_ = 0;                                 // files that are in it
};

std::string FolderOf(const std::string& path);         // "" for a plain file name
std::u16string MethodNameOf(const std::string& path);  // the file's name without folder and suffix

}  // namespace zrtool

#endif
