// Runs the zr tool as a person would: arguments in, the two streams and the exit status out.
// Every run has a time limit; a tool that outlives it is killed and told apart.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

extern char** environ;

namespace zrtest {

struct ToolResult {
    int status = -1;        // exit status; -1 = did not end by itself
    int signal = 0;         // signal that ended it; 0 = none
    bool timedOut = false;  // killed at the time limit
    std::string out;        // standard output
    std::string err;        // standard error
};

inline std::string ToolPath() { return std::string(ZR_BINARY_DIR) + "/bin/zr"; }

// Both ends of a pipe; closed when it goes.
class Pipe {
  public:
    Pipe() {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    }
    ~Pipe() {
        CloseRead();
        CloseWrite();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    int read() const { return ends_[0]; }
    int write() const { return ends_[1]; }
    void CloseRead() { Close(&ends_[0]); }
    void CloseWrite() { Close(&ends_[1]); }

  private:
    static void Close(int* end) {
        if (*end >= 0) close(*end);
        *end = -1;
    }
    std::array<int, 2> ends_{-1, -1};
};

inline pid_t Spawn(const std::vector<std::string>& arguments, Pipe* in, Pipe* out, Pipe* err) {
    std::vector<char*> argv;
    std::string tool = ToolPath();
    argv.push_back(tool.data());
    for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in->read(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out->write(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err->write(), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t process = -1;
    const int failure = posix_spawn(&process, tool.c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("cannot start " + tool);
    return process;
}

// What one end has to give now; false when it has ended.
inline bool ReadSome(int end, std::string* text) {
    std::array<char, 65536> bytes;
    const ssize_t count = read(end, bytes.data(), bytes.size());
    if (count > 0) text->append(bytes.data(), static_cast<size_t>(count));
    return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

// Feeds the input and gathers both outputs until both have ended; false when the time was over first.
inline bool Talk(Pipe* in, Pipe* out, Pipe* err, std::string_view input, ToolResult* result,
                 std::chrono::steady_clock::time_point end) {
    fcntl(in->write(), F_SETFL, O_NONBLOCK);
    if (input.empty()) in->CloseWrite();
    while (out->read() >= 0 || err->read() >= 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        std::array<pollfd, 3> polls = {
            pollfd{out->read(), POLLIN, 0}, {err->read(), POLLIN, 0}, {in->write(), POLLOUT, 0}};
        poll(polls.data(), polls.size(), static_cast<int>(left.count()));
        if (polls[0].revents != 0 && !ReadSome(out->read(), &result->out)) out->CloseRead();
        if (polls[1].revents != 0 && !ReadSome(err->read(), &result->err)) err->CloseRead();
        if (polls[2].revents != 0) {
            const ssize_t count = write(in->write(), input.data(), input.size());
            if (count > 0) input.remove_prefix(static_cast<size_t>(count));
            if (input.empty() || (count < 0 && errno != EAGAIN && errno != EINTR)) in->CloseWrite();
        }
    }
    return true;
}

inline void Reap(pid_t process, ToolResult* result, std::chrono::steady_clock::time_point end) {
    int state = 0;
    while (!result->timedOut && waitpid(process, &state, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) result->timedOut = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (result->timedOut) {
        kill(process, SIGKILL);
        waitpid(process, &state, 0);
        return;
    }
    if (WIFEXITED(state)) result->status = WEXITSTATUS(state);
    if (WIFSIGNALED(state)) result->signal = WTERMSIG(state);
}

inline ToolResult RunTool(const std::vector<std::string>& arguments, std::string_view input = {}, int seconds = 60) {
    ::signal(SIGPIPE, SIG_IGN);
    ToolResult result;
    Pipe in, out, err;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    const pid_t process = Spawn(arguments, &in, &out, &err);
    in.CloseRead();
    out.CloseWrite();
    err.CloseWrite();
    result.timedOut = !Talk(&in, &out, &err, input, &result, end);
    Reap(process, &result, end);
    return result;
}

// A folder of its own for a test, removed with all that it holds.
class TempFolder {
  public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zr-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder " + pattern);
        path_ = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Path(const std::string& name) const { return (path_ / name).string(); }
    bool Has(const std::string& name) const { return std::filesystem::exists(path_ / name); }
    // Writes a file, and the folders that it needs, and gives its path.
    std::string Write(const std::string& name, std::string_view bytes) const {
        const auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return file.string();
    }

  private:
    std::filesystem::path path_;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zrtest
