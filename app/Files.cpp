#include "app/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "app/Messages.h"
#include "host/Host.h"

namespace zrtool {

static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
static constexpr size_t kPiece = 64 * 1024;  // bytes

static std::string ShownPath(const std::string& path) { return path == "-" ? "<stdin>" : Shown(path); }

// Appends what the file still holds; 0, or what errno says. Ends behind most bytes.
static int ReadRest(int file, size_t most, std::string* bytes) {
    for (;;) {
        size_t done = bytes->size();
        bytes->resize(done + kPiece + done / 2);
        ssize_t count = read(file, bytes->data() + done, bytes->size() - done);
        int error = errno;
        bytes->resize(done + (count > 0 ? static_cast<size_t>(count) : 0));
        if (count < 0 && error == EINTR) continue;
        if (count < 0) return error;
        if (count == 0 || bytes->size() > most) return 0;
    }
}

std::string ReadTextFile(const std::string& path, size_t most, const char* what) {
    bool standardInput = path == "-";
    int file = standardInput ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) throw Refusal{"cannot read " + ShownPath(path) + ": " + ReasonOf(errno)};
    std::string bytes;
    struct stat facts;
    bool folder = fstat(file, &facts) == 0 && S_ISDIR(facts.st_mode);
    int error = folder ? 0 : ReadRest(file, most, &bytes);
    if (!standardInput) close(file);
    if (folder) throw Refusal{ShownPath(path) + " is a folder, not a " + what};
    if (error) throw Refusal{"cannot read " + ShownPath(path) + ": " + ReasonOf(error)};
    if (bytes.size() > most)
        throw Refusal{ShownPath(path) + " is larger than " + std::to_string(most >> 20) + " MiB, the limit for one " +
                      what};
    if (bytes.starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
    if (zrhost::ToUtf8(zrhost::FromUtf8(bytes)) != bytes) throw Refusal{ShownPath(path) + " is not a text in UTF-8"};
    return bytes;
}

}  // namespace zrtool
