#include "app/Source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/Messages.h"

namespace zrtool {

// Reading ----------------------------------------------------------------------------------------------------------

static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
static constexpr std::string_view kBlobMagic = "sako";  // of a BLOB array, which a token blob is
static constexpr std::string_view kBlobSuffix = ".tok";
static constexpr std::string_view kLineSeparator = "\xE2\x80\xA8";  // U+2028

static std::string ShownPath(const std::string& path) { return path == "-" ? "<stdin>" : Shown(path); }

std::string SourceFile::shownPath() const { return ShownPath(path); }

[[noreturn]] static void RefuseRead(const std::string& path, int errorNumber) {
    throw Refusal{"cannot read " + ShownPath(path) + ": " + ReasonOf(errorNumber)};
}

[[noreturn]] static void RefuseSize(const std::string& path, const char* what, size_t most) {
    throw Refusal{ShownPath(path) + " is larger than " + std::to_string(most >> 20) + " MiB, the limit for one " +
                  what};
}

// Closes on every way out; standard input stays open.
class OpenFile {
  public:
    explicit OpenFile(const std::string& path) : standardInput_(path == "-") {
        number_ = standardInput_ ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (number_ < 0) RefuseRead(path, errno);
    }
    ~OpenFile() {
        if (!standardInput_) close(number_);
    }
    OpenFile(const OpenFile&) = delete;
    int number() const { return number_; }

  private:
    bool standardInput_;
    int number_;
};

std::string ReadFileBytes(const std::string& path, const char* what, size_t most) {
    OpenFile file(path);
    struct stat facts;
    if (fstat(file.number(), &facts) != 0) RefuseRead(path, errno);
    if (S_ISDIR(facts.st_mode)) throw Refusal{ShownPath(path) + " is a folder, not a " + what + " file"};
    bool sized = S_ISREG(facts.st_mode) && facts.st_size > 0;
    if (sized && static_cast<size_t>(facts.st_size) > most) RefuseSize(path, what, most);
    std::string bytes;
    size_t done = 0;
    for (size_t room = sized ? static_cast<size_t>(facts.st_size) + 1 : 64 * 1024;; room = done + done / 2 + 1) {
        if (bytes.size() < room) bytes.resize(room);
        while (done < bytes.size()) {
            ssize_t count = read(file.number(), bytes.data() + done, bytes.size() - done);
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) RefuseRead(path, errno);
            if (count == 0) {
                bytes.resize(done);
                return bytes;
            }
            done += static_cast<size_t>(count);
            if (done > most) RefuseSize(path, what, most);
        }
    }
}

// Bytes of the character at the start, 0 = none that is valid.
static size_t CharacterLength(std::string_view bytes) {
    auto at = [&](size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u; };
    auto follows = [&](size_t i) { return (at(i) & 0xC0) == 0x80; };
    unsigned first = at(0);
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        bool tooLong = first == 0xE0 && at(1) < 0xA0, surrogate = first == 0xED && at(1) > 0x9F;
        return follows(1) && follows(2) && !tooLong && !surrogate ? 3 : 0;
    }
    if (first < 0xF0 || first > 0xF4) return 0;
    bool tooLong = first == 0xF0 && at(1) < 0x90, tooLarge = first == 0xF4 && at(1) > 0x8F;
    return follows(1) && follows(2) && follows(3) && !tooLong && !tooLarge ? 4 : 0;
}

// Length of the line end at the start, 0 = none: CR LF, CR, LF or U+2028, as the tokeniser splits.
static size_t LineEndLength(std::string_view bytes) {
    if (bytes.starts_with("\r\n")) return 2;
    if (bytes.starts_with('\r') || bytes.starts_with('\n')) return 1;
    return bytes.starts_with(kLineSeparator) ? kLineSeparator.size() : 0;
}

// Where the line ends that begins at a place.
static size_t LineEnd(std::string_view bytes, size_t at) {
    while (at < bytes.size() && (bytes[at] >= ' ' || !LineEndLength(bytes.substr(at)))) ++at;
    return at;
}

static void CheckText(const SourceFile& file) {
    if (memchr(file.bytes.data(), 0, file.bytes.size()))
        throw Refusal{file.shownPath() + " holds binary data, not the text of a method"};
    std::string_view bytes = file.bytes;
    long line = 1;
    for (size_t at = 0; at < bytes.size();) {
        if (bytes[at] >= ' ') {  // plain ASCII, for speed
            ++at;
            continue;
        }
        size_t length = LineEndLength(bytes.substr(at));
        if (length) ++line;
        else length = CharacterLength(bytes.substr(at));
        if (!length) throw Refusal{file.shownPath() + ":" + std::to_string(line) + " is not valid UTF-8"};
        at += length;
    }
}

SourceFile ReadSource(const std::string& path) {
    SourceFile file;
    file.path = path;
    file.bytes = ReadFileBytes(path, "method", kLargestFile);
    file.isBlob = file.bytes.starts_with(kBlobMagic) && memchr(file.bytes.data(), 0, file.bytes.size());
    if (file.isBlob) return file;
    if (path.ends_with(kBlobSuffix)) throw Refusal{file.shownPath() + " is not a token blob"};
    if (file.bytes.starts_with(kByteOrderMark)) file.bytes.erase(0, kByteOrderMark.size());
    CheckText(file);
    return file;
}

// The character at the start that has so many bytes.
static char32_t CodePoint(std::string_view bytes, size_t length) {
    auto low = [&](size_t i) { return static_cast<char32_t>(bytes[i] & 63); };
    char32_t first = static_cast<unsigned char>(bytes[0]);
    switch (length) {
        case 1: return first;
        case 2: return (first & 31) << 6 | low(1);
        case 3: return (first & 15) << 12 | low(1) << 6 | low(2);
        case 4: return (first & 7) << 18 | low(1) << 12 | low(2) << 6 | low(3);
        default: return 0xFFFD;
    }
}

std::u16string Utf16Of(std::string_view utf8) {
    std::u16string units;
    units.reserve(utf8.size());
    while (!utf8.empty()) {
        size_t length = CharacterLength(utf8);
        char32_t code = CodePoint(utf8, length);
        if (code >= 0x10000) {
            units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            units += static_cast<char16_t>(code);
        }
        utf8.remove_prefix(length ? length : 1);
    }
    return units;
}

std::string_view SourceFile::line(long number) const {
    std::string_view left = bytes;
    for (long at = 1; !left.empty(); ++at) {
        size_t end = LineEnd(left, 0);
        if (at == number) return left.substr(0, end);
        left.remove_prefix(end);
        left.remove_prefix(LineEndLength(left));
    }
    return {};
}

// Suffixes ---------------------------------------------------------------------------------------------------------

static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
static bool IsNameStart(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
static bool IsNamePart(char c) { return IsNameStart(c) || IsDigit(c) || c == ' '; }

// Whether a suffix stands anywhere at all: a colon, a letter, a digit.
static bool MayHoldSuffix(std::string_view code) {
    for (size_t at = code.find(':'); at != std::string_view::npos; at = code.find(':', at + 1))
        if (at + 2 < code.size() && strchr("CKP", code[at + 1]) && IsDigit(code[at + 2])) return true;
    return false;
}

static size_t DigitsEnd(std::string_view code, size_t at) {
    while (at < code.size() && IsDigit(code[at])) ++at;
    return at;
}

struct Suffix {
    char letter = 0;  // C, K, P; 0 = no suffix
    long number = 0;
    size_t end = 0;  // behind it
};

// The suffix at a place: ":C123", ":K1:2" or ":P123", with nothing of a name behind it.
static Suffix SuffixAt(std::string_view code, size_t at) {
    if (at + 2 >= code.size() || code[at] != ':' || !IsDigit(code[at + 2])) return {};
    Suffix suffix{code[at + 1], 0, DigitsEnd(code, at + 2)};
    if (suffix.letter != 'C' && suffix.letter != 'K' && suffix.letter != 'P') return {};
    for (size_t i = at + 2; i < suffix.end && suffix.number < 1000000; ++i)
        suffix.number = suffix.number * 10 + (code[i] - '0');
    if (suffix.letter == 'K' && suffix.end + 1 < code.size() && code[suffix.end] == ':' &&
        IsDigit(code[suffix.end + 1]))
        suffix.end = DigitsEnd(code, suffix.end + 1);
    if (suffix.end < code.size() && IsNameStart(code[suffix.end])) return {};
    return suffix;
}

// Where the literal or comment ends that begins at a place in a line; the place itself if none begins there. A text
// that is not closed, and a comment, go to the end of the line; a date or time that is not closed is none.
static size_t LiteralEnd(std::string_view line, size_t at) {
    char first = line[at];
    if (first == '/' && at + 1 < line.size() && line[at + 1] == '/') return line.size();
    if (first != '"' && first != '!' && first != '?') return at;
    for (size_t i = at + 1; i < line.size(); ++i)
        if (line[i] == first && (first != '"' || line[i - 1] != '\\')) return i + 1;
    return first == '"' ? line.size() : at;
}

static void AppendLine(std::string& out, std::string_view line, const CommandNames& names) {
    for (size_t at = 0; at < line.size();) {
        size_t end = LiteralEnd(line, at);
        if (end == at && !IsNameStart(line[at])) {
            // A local or interprocess name has no suffix, and a digit starts no name.
            end = at + 1;
            if (line[at] == '$' || IsDigit(line[at]))
                while (end < line.size() && IsNamePart(line[end]) && line[end] != ' ') ++end;
        } else if (end == at) {
            while (end < line.size() && IsNamePart(line[end])) ++end;
            Suffix suffix = SuffixAt(line, end);
            std::string command = suffix.letter == 'C' ? names(suffix.number) : "";
            bool known = suffix.letter && (suffix.letter != 'C' || !command.empty());
            out.append(command.empty() ? line.substr(at, end - at) : std::string_view(command));
            at = known ? suffix.end : end;
            continue;
        }
        out.append(line.substr(at, end - at));
        at = end;
    }
}

std::string WithoutSuffixes(std::string_view code, const CommandNames& names) {
    if (!MayHoldSuffix(code)) return std::string(code);
    std::string out;
    out.reserve(code.size());
    while (!code.empty()) {
        size_t end = LineEnd(code, 0);
        AppendLine(out, code.substr(0, end), names);
        code.remove_prefix(end);
        size_t length = LineEndLength(code);
        out.append(code.substr(0, length));
        code.remove_prefix(length);
    }
    return out;
}

}  // namespace zrtool
