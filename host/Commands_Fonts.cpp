// Commands by number: the fonts of System Environment. The families are read from the font files themselves, so that no
// font library is loaded.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Text.h"

namespace zrhost {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kCollection = 0x74746366;  // "ttcf"
constexpr uint32_t kNameTable = 0x6E616D65;   // "name"
constexpr size_t kLongestNames = 1 << 20;     // a larger name table is no sane one
constexpr int kFamily = 1, kWideFamily = 16;  // names by their number; the second groups more styles
constexpr int kMacintosh = 1, kWindows = 3, kUnicode = 0;
constexpr int kWindowsEnglish = 0x409;

class FontFile {
  public:
    explicit FontFile(const fs::path& path) : file_(path, std::ios::binary) {}

    // The family of the first font in the file; empty if it has none that can be read.
    std::u16string family() {
        uint32_t start = 0;
        if (number(0, 4) == kCollection) start = number(12, 4);
        const uint32_t tables = std::min<uint32_t>(number(start + 4, 2), 256);
        for (uint32_t i = 0; i < tables; ++i) {
            const uint64_t entry = uint64_t(start) + 12 + 16 * i;
            if (number(entry, 4) == kNameTable) return familyIn(number(entry + 8, 4), number(entry + 12, 4));
        }
        return {};
    }

  private:
    // A big-endian number of the file; 0 beyond its end.
    uint32_t number(uint64_t at, int count) {
        unsigned char bytes[4] = {};
        file_.clear();
        file_.seekg(std::streamoff(at));
        if (!file_.read(reinterpret_cast<char*>(bytes), count)) return 0;
        uint32_t value = 0;
        for (int i = 0; i < count; ++i) value = value << 8 | bytes[i];
        return value;
    }

    std::u16string familyIn(uint32_t offset, uint32_t length) {
        if (length < 6 || length > kLongestNames) return {};
        std::vector<uint8_t> table(length);
        file_.clear();
        file_.seekg(std::streamoff(offset));
        if (!file_.read(reinterpret_cast<char*>(table.data()), std::streamsize(length))) return {};
        auto word = [&](size_t at) { return at + 2 <= table.size() ? table[at] << 8 | table[at + 1] : 0; };
        std::u16string best;
        int bestRank = 0;
        for (int i = 0; i < word(2); ++i) {
            const size_t entry = 6 + 12 * size_t(i);
            const int rank = rankOf(word(entry), word(entry + 4), word(entry + 6));
            const size_t at = size_t(word(4)) + size_t(word(entry + 10)), size = size_t(word(entry + 8));
            if (rank <= bestRank || at + size > table.size()) continue;
            std::u16string name;
            const bool mac = word(entry) == kMacintosh;
            DecodeText(std::span(table).subspan(at, size), mac ? "macintosh" : "UTF-16BE", &name);
            if (name.empty()) continue;
            best = name;
            bestRank = rank;
        }
        return best;
    }

    static int rankOf(int platform, int language, int name) {  // 0 = not wanted
        if (name != kFamily && name != kWideFamily) return 0;
        const int system = platform == kWindows ? (language == kWindowsEnglish ? 4 : 2) : platform == kUnicode ? 3 : 1;
        return (name == kWideFamily ? 8 : 0) + system;
    }

    std::ifstream file_;
};

// 460 FONT LIST(fonts; [kind or *]): the families that are installed, in the order of the alphabet
void FontList(CommandCall& call) {
    call.takeStar();
    const char* home = std::getenv("HOME");
    const std::string own = home ? home : "";
    std::set<std::u16string> families;
    for (const std::string& folder : {std::string("/usr/share/fonts"), std::string("/usr/local/share/fonts"),
                                      own + "/.fonts", own + "/.local/share/fonts"}) {
        std::error_code error;
        fs::recursive_directory_iterator walk(folder, fs::directory_options::skip_permission_denied, error);
        for (; !error && walk != fs::recursive_directory_iterator() && !call.interrupted(); walk.increment(error)) {
            const std::u16string extension = FoldName(walk->path().extension().u16string());
            const bool font =
                extension == FoldName(u".ttf") || extension == FoldName(u".otf") || extension == FoldName(u".ttc");
            std::error_code ignored;
            if (!font || !walk->is_regular_file(ignored)) continue;
            const std::u16string family = FontFile(walk->path()).family();
            if (!family.empty()) families.insert(family);
        }
    }
    call.assignTextArray(1, std::vector<std::u16string>(families.begin(), families.end()));
}

constexpr CommandRow kRows[] = {{460, FontList}};

}  // namespace

std::span<const CommandRow> commandsFonts() { return kRows; }

}  // namespace zrhost
