#include "app/Output.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "app/Messages.h"

namespace zrtool {

// Standard output --------------------------------------------------------------------------------------------------

static constexpr size_t kBufferSize = 64 * 1024;
static constexpr double kLongestWait = 0.1;  // seconds that a line is kept back

static struct {
    std::mutex mutex;
    char bytes[kBufferSize];
    std::atomic<size_t> first{0}, last{0};  // [first..last) waits to be written; a signal reads them
    std::atomic<int> error{0};              // errno of the first write that failed
    bool terminal = false;
    double lastFlush = 0;
} gOutput;

static double Seconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Bytes written; fewer than asked for = errno says why.
static size_t WriteAll(int file, const char* bytes, size_t size) {
    size_t done = 0;
    while (done < size) {
        ssize_t written = write(file, bytes + done, size - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        done += static_cast<size_t>(written);
    }
    return done;
}

static void WriteOut(const char* bytes, size_t size) {
    if (gOutput.error) return;
    if (WriteAll(STDOUT_FILENO, bytes, size) < size) gOutput.error = errno ? errno : EIO;
}

static void FlushLocked() {
    size_t first = gOutput.first, last = gOutput.last;
    gOutput.first = last;
    WriteOut(gOutput.bytes + first, last - first);
    gOutput.first = gOutput.last = 0;
}

// The buffer goes out, then the signal does what it does. All signals wait meanwhile: a second one, as a time limit
// sends to the process and to its group, must not end the process before the buffer is out.
static void EndBySignal(int number) {
    size_t first = gOutput.first, last = gOutput.last;
    if (first < last) (void)!write(STDOUT_FILENO, gOutput.bytes + first, last - first);
    gOutput.first = last;
    struct sigaction usual = {};
    usual.sa_handler = SIG_DFL;
    sigaction(number, &usual, nullptr);
    raise(number);  // when this returns
}

static void TakeSignal(int number) {
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;
    action.sa_handler = EndBySignal;
    action.sa_flags = 0;
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

// A file that is opened later must not become one of the three by accident. Writing to what stands in fails.
static void OccupyStandardFiles() {
    int file = open("/dev/null", O_RDONLY);
    while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDONLY);
    if (file >= 0) close(file);
}

void StandardOutput::Start() {
    OccupyStandardFiles();
    struct stat facts;
    gOutput.terminal = fstat(STDOUT_FILENO, &facts) == 0 && S_ISCHR(facts.st_mode) && isatty(STDOUT_FILENO) == 1;
    gOutput.lastFlush = Seconds();
    for (int number : {SIGINT, SIGTERM, SIGHUP}) TakeSignal(number);
}

bool StandardOutput::IsTerminal() { return gOutput.terminal; }

static void WriteLocked(std::string_view text) {
    if (text.size() > kBufferSize - gOutput.last) FlushLocked();
    if (text.size() > kBufferSize) return WriteOut(text.data(), text.size());
    memcpy(gOutput.bytes + gOutput.last, text.data(), text.size());
    gOutput.last += text.size();
}

void StandardOutput::Write(std::string_view text) {
    std::lock_guard lock(gOutput.mutex);
    WriteLocked(text);
}

void StandardOutput::WriteLine(std::string_view text) {
    std::lock_guard lock(gOutput.mutex);
    WriteLocked(text);
    WriteLocked("\n");
    double now = gOutput.terminal ? 0 : Seconds();
    if (!gOutput.terminal && now - gOutput.lastFlush < kLongestWait) return;
    FlushLocked();
    gOutput.lastFlush = now;
}

void StandardOutput::Flush() {
    std::lock_guard lock(gOutput.mutex);
    FlushLocked();
}

void StandardOutput::Finish() {
    Flush();
    int error = gOutput.error.exchange(0);
    if (error) throw Refusal{"cannot write to standard output: " + ReasonOf(error)};
}

// Files ------------------------------------------------------------------------------------------------------------

[[noreturn]] static void Refuse(const std::string& path, int errorNumber) {
    throw Refusal{"cannot write " + Shown(path) + ": " + ReasonOf(errorNumber)};
}

static void WriteDirectly(const std::string& path, std::string_view bytes) {
    int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) Refuse(path, errno);
    size_t written = WriteAll(file, bytes.data(), bytes.size());
    int error = written < bytes.size() ? errno : 0;
    if (close(file) != 0 && !error) error = errno;
    if (error) Refuse(path, error);
}

// A symbolic link keeps pointing where it points: its target is replaced.
static std::string TargetOf(const std::string& path) {
    char resolved[PATH_MAX];
    struct stat facts;
    if (lstat(path.c_str(), &facts) != 0 || !S_ISLNK(facts.st_mode)) return path;
    return realpath(path.c_str(), resolved) ? resolved : path;
}

static mode_t NewFileMode() {
    mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

static void ReplaceFile(const std::string& path, std::string_view bytes, mode_t mode) {
    size_t slash = path.rfind('/');
    std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    std::string beside = folder + ".zr-XXXXXX";
    int file = mkostemp(beside.data(), O_CLOEXEC);
    if (file < 0) Refuse(path, errno);
    int error = WriteAll(file, bytes.data(), bytes.size()) < bytes.size() ? errno : 0;
    if (!error && fchmod(file, mode) != 0) error = errno;
    if (close(file) != 0 && !error) error = errno;
    if (!error && rename(beside.c_str(), path.c_str()) != 0) error = errno;
    if (!error) return;
    unlink(beside.c_str());
    Refuse(path, error);
}

void WriteFile(const std::string& path, std::string_view bytes) {
    if (path == "-") {
        StandardOutput::Write(bytes);
        return StandardOutput::Finish();
    }
    std::string target = TargetOf(path);
    struct stat facts;
    bool exists = stat(target.c_str(), &facts) == 0;
    if (exists && S_ISDIR(facts.st_mode)) Refuse(path, EISDIR);
    if (exists && access(target.c_str(), W_OK) != 0) Refuse(path, errno);
    if (exists && !S_ISREG(facts.st_mode)) return WriteDirectly(target, bytes);
    ReplaceFile(target, bytes, exists ? facts.st_mode & 07777 : NewFileMode());
}

}  // namespace zrtool
