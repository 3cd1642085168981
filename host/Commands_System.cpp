// Commands by number: System Environment, 4D Environment, User Interface keys, Tools of the system, printers.
#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <spawn.h>
#include <sys/random.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <thread>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Formats.h"
#include "host/Objects.h"
#include "host/Process.h"
#include "host/Text.h"

extern char** environ;

namespace zrhost {
namespace {

namespace fs = std::filesystem;

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string HomeFolder() {
    std::string home = Variable("HOME");
    if (home.empty()) {
        passwd entry{}, *found = nullptr;
        char buffer[4096];
        if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found) home = entry.pw_dir;
    }
    return WithSeparator(home.empty() ? "/" : home);
}

// The machine ------------------------------------------------------------------------------------------------------

// 483 Current machine
void CurrentMachine(CommandCall& call) {
    utsname names{};
    call.setText(std::string_view(uname(&names) == 0 ? names.nodename : ""));
}

std::string SystemUser() {
    passwd entry{}, *found = nullptr;
    char buffer[4096];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found) return entry.pw_name;
    return Variable("USER");
}

// 484 Current system user
void CurrentSystemUser(CommandCall& call) { call.setText(std::string_view(SystemUser())); }

struct KernelVersion {
    int major = 0, minor = 0;
};

KernelVersion Kernel() {
    utsname names{};
    KernelVersion version;
    if (uname(&names) == 0) std::sscanf(names.release, "%4d.%4d", &version.major, &version.minor);
    return version;
}

// 365 PLATFORM PROPERTIES(platform; [system]; [machine]; [language]): platform 4, which is neither Mac (2) nor Windows
// (3); system as major + 256 * minor of the kernel; machine 586 as for Intel; language 1033 as for US English
void PlatformProperties(CommandCall& call) {
    constexpr int kLinux = 4, kIntel = 586, kUsEnglish = 1033;
    const KernelVersion kernel = Kernel();
    call.assignLongint(1, kLinux);
    if (call.has(2)) call.assignLongint(2, (kernel.major & 0xFF) | (kernel.minor & 0xFF) << 8);
    if (call.has(3)) call.assignLongint(3, kIntel);
    if (call.has(4)) call.assignLongint(4, kUsEnglish);
}

// 1572 Is macOS, 1573 Is Windows
void IsOtherSystem(CommandCall& call) { call.setBoolean(false); }

std::string ProcessorName() {
    std::vector<uint8_t> bytes;
    if (ReadWholeFile("/proc/cpuinfo", &bytes) != 0) return {};
    const std::string text(bytes.begin(), bytes.end());
    const size_t key = text.find("model name"), colon = text.find(": ", key);
    if (key == std::string::npos || colon == std::string::npos) return {};
    return text.substr(colon + 2, text.find('\n', colon) - colon - 2);
}

// 1571 Get system info
void GetSystemInfo(CommandCall& call) {
    utsname names{};
    struct sysinfo facts {};
    if (uname(&names) != 0 || sysinfo(&facts) != 0) return;
    auto text = [](std::string_view utf8) { return Value(FromUtf8(utf8)); };
    const double cores = std::max(1u, std::thread::hardware_concurrency());
    Ref<Object> info = NewObject();
    info->set(u"accountName", text(SystemUser()));
    info->set(u"userName", text(SystemUser()));
    info->set(u"machineName", text(names.nodename));
    info->set(u"osVersion", text(std::string(names.sysname) + " " + names.release));
    info->set(u"osLanguage", text(CurrentLocale().name));
    info->set(u"processor", text(ProcessorName()));
    info->set(u"cores", Value(cores));
    info->set(u"cpuThreads", Value(cores));
    info->set(u"physicalMemory", Value(double(facts.totalram) * facts.mem_unit / 1024));
    info->set(u"uptime", Value(double(facts.uptime)));
    info->set(u"model", text(names.machine));
    info->set(u"networkInterfaces", Value(NewCollection()));
    info->set(u"volumes", Value(NewCollection()));
    call.setObject(info);
}

// 187 Screen width([*]), 188 Screen height([*]), 437 Count screens, 439 SCREEN DEPTH, 440 Menu bar height, 441 Menu bar
// screen: 0 of each
void NoScreen(CommandCall& call) { call.setLongint(0); }

// 438 SCREEN COORDINATES(left; top; right; bottom; [screen]; [area]), 443 GET WINDOW RECT(left; top; right; bottom;
// [window]): all 0
void ScreenCoordinates(CommandCall& call) {
    for (int i = 1; i <= std::min(4, call.count); ++i) call.assignLongint(i, 0);
}

// 543 Shift down, 544 to 547 and 562, 563 the other keys, 713 Contextual click: no keyboard is watched
void NoKeyDown(CommandCall& call) { call.setBoolean(false); }

// Folders and files ------------------------------------------------------------------------------------------------

// 486 Temporary folder: ends with the separator
void TemporaryFolder(CommandCall& call) {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    call.setText(std::string_view(error ? "/tmp/" : WithSeparator(folder.string())));
}

// 487 System folder([kind]): 1 fonts, 2 preferences of all, 3 preferences of the user, 14 favorites, 15 desktop, 16
// programs, 17 documents; the root for none or the others. Ends with the separator.
void SystemFolder(CommandCall& call) {
    static constexpr struct {
        int kind;
        bool inHome;
        const char* path;
    } kFolders[] = {
        {1, false, "/usr/share/fonts/"}, {2, false, "/etc/"},      {3, true, ".config/"},
        {15, true, "Desktop/"},          {16, false, "/usr/bin/"}, {17, true, "Documents/"},
    };
    for (const auto& folder : kFolders)
        if (call.has(1) && call.integer(1) == folder.kind)
            return call.setText(std::string_view((folder.inHome ? HomeFolder() : "") + folder.path));
    call.setText(u"/");
}

// 485 Get 4D folder([kind]; [*]): 0 the host's own folder in the user's configuration, 1 its licences, 4 and 5 the
// database folder, 6 Resources, 7 Logs, 8 WebFolder, 9 Data. Ends with the separator; nothing is created.
void Get4DFolder(CommandCall& call) {
    static constexpr struct {
        int kind;
        const char* name;
    } kInDatabase[] = {{4, ""}, {5, ""}, {6, "Resources/"}, {7, "Logs/"}, {8, "WebFolder/"}, {9, "Data/"}};
    call.takeStar();
    for (const auto& folder : kInDatabase)
        if (call.integer(1) == folder.kind) return call.setText(std::string_view(BaseFolder(call.host) + folder.name));
    const std::string own = HomeFolder() + ".config/zr/";
    call.setText(std::string_view(call.integer(1) == 1 ? own + "Licenses/" : own));
}

std::string ApplicationPath(const Host& host) {
    if (!host.options().applicationPath.empty()) return host.options().applicationPath;
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).string();
}

// 489 Structure file([*]): empty without one
void StructureFile(CommandCall& call) {
    const std::string& path = call.host.options().structurePath;
    call.setText(std::string_view(path.empty() ? path : FullPathOf(call.host, fs::path(path).filename().string())));
}

// 490 Data file([segment]): there is none
void DataFile(CommandCall& call) { call.setText(u""); }

// 491 Application file
void ApplicationFile(CommandCall& call) { call.setText(std::string_view(ApplicationPath(call.host))); }

// The application --------------------------------------------------------------------------------------------------

constexpr int kBuild = 1;

// 493 Application version([build]; [*]): "1800" for 0x1800; with * "F0011800": final, number 1, version, release, minor
void ApplicationVersion(CommandCall& call) {
    const bool full = call.takeStar();
    char text[16];
    std::snprintf(text, sizeof text, "%s%04X", full ? "F001" : "", call.host.options().version);
    if (call.has(1)) call.assignLongint(1, kBuild);
    call.setText(std::string_view(text));
}

// 494 Application type: 0, a local application
void ApplicationType(CommandCall& call) { call.setLongint(0); }

// 495 Version type: bit 1 = a 64-bit version
void VersionType(CommandCall& call) { call.setLongint(1 << 1); }

// 492 Is compiled mode([*])
void IsCompiledMode(CommandCall& call) { call.setBoolean(call.host.options().compiled); }

// 182 Current user([kind]): the one user of a database without passwords
void CurrentUser(CommandCall& call) { call.setText(u"Designer"); }

// 1009 Get database localization([kind]; [*]): the locale, "en-US"
void GetDatabaseLocalization(CommandCall& call) { call.setText(std::string_view(CurrentLocale().name)); }

// 994 GET SYSTEM FORMAT(format; value)
void GetSystemFormat(CommandCall& call) {
    const Locale& locale = CurrentLocale();
    auto unit = [](char16_t c) { return c ? std::u16string(1, c) : std::u16string(); };
    auto place = [&](char part) {  // of the day, month or year in the short date, from 1
        return FormatLongint(std::find(locale.order, locale.order + 3, part) - locale.order + 1, u"");
    };
    std::u16string text;
    switch (call.has(1) ? call.integer(1) : -1) {
        case 0: text = unit(locale.decimal); break;
        case 1: text = unit(locale.thousand); break;
        case 2: text = locale.currency; break;
        case 3: text = locale.shortTime; break;
        case 4: text = locale.mediumTime; break;
        case 5: text = locale.longTime; break;
        case 6: text = locale.shortDate; break;
        case 7: text = locale.mediumDate; break;
        case 8: text = locale.longDate; break;
        case 13: text = unit(locale.dateSeparator); break;
        case 14: text = unit(locale.timeSeparator); break;
        case 15: text = place('D'); break;
        case 16: text = place('M'); break;
        case 17: text = place('Y'); break;
        case 18: text = locale.am; break;
        case 19: text = locale.pm; break;
        default: break;
    }
    call.assignText(2, text);
}

struct Parameters {  // of the database
    std::mutex mutex;
    std::map<int, Value> values{
        {101, Value(1.0)}, {102, Value(45.0)}, {103, Value(720.0)}};  // tips: on, delay, duration
};

// 643 Get database parameter([table]; selector; [text]): what was set, else the default; -1 for what this host has not
void GetDatabaseParameter(CommandCall& call) {
    const int selector = call.isTableOrField(1) ? 2 : 1;
    Parameters& parameters = call.host.state<Parameters>();
    std::lock_guard lock(parameters.mutex);
    const auto found = parameters.values.find(call.integer(selector));
    if (call.has(selector + 1))
        call.assignText(selector + 1, found == parameters.values.end() ? u"" : found->second.text());
    call.setReal(found == parameters.values.end() ? -1 : found->second.number());
}

// 642 SET DATABASE PARAMETER([table]; selector; value): kept, and given back by 643
void SetDatabaseParameter(CommandCall& call) {
    const int selector = call.isTableOrField(1) ? 2 : 1;
    Parameters& parameters = call.host.state<Parameters>();
    std::lock_guard lock(parameters.mutex);
    parameters.values[call.integer(selector)] =
        call.isText(selector + 1) ? Value(call.text(selector + 1)) : Value(call.number(selector + 1));
}

// 847 PLUGIN LIST(numbers; names), 1001 COMPONENT LIST(names): none
void NoPlugins(CommandCall& call) {
    call.assignLongintArray(1, {});
    call.assignTextArray(2, {});
}

void NoComponents(CommandCall& call) { call.assignTextArray(1, {}); }

// 714 Is license available([licence]): nothing is locked here
void IsLicenseAvailable(CommandCall& call) { call.setBoolean(true); }

// 1482 ds: no datastore yet: Null
void Datastore(CommandCall& call) { call.setNull(); }

// 788 Get current printer, 789 PRINTERS LIST(names; [others]; [models])
void GetCurrentPrinter(CommandCall& call) { call.setText(u""); }

void PrintersList(CommandCall& call) {
    for (int i = 1; i <= call.count; ++i) call.assignTextArray(i, {});
}

// Tools ------------------------------------------------------------------------------------------------------------

// 667 LOG EVENT([output]; message; [importance])
void LogEvent(CommandCall& call) {
    const int message = call.isText(1) ? 1 : 2;
    if (call.host.options().log) call.host.options().log(call.text(message));
}

// 673 OPEN URL(url; [application]; [*]): nothing to open it with: OK 0
void OpenUrl(CommandCall& call) { call.setOK(false); }

// 1066 Generate UUID: 32 capital hexadecimal digits, version 4
void GenerateUuid(CommandCall& call) {
    uint8_t bytes[16];
    if (getrandom(bytes, sizeof bytes, 0) != ssize_t(sizeof bytes)) return call.setError(ZR_ERR_MEMORY);
    bytes[6] = uint8_t((bytes[6] & 0x0F) | 0x40);
    bytes[8] = uint8_t((bytes[8] & 0x3F) | 0x80);
    std::string text;
    for (uint8_t byte : bytes) text.append({"0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]});
    call.setText(std::string_view(text));
}

constexpr std::string_view kOption = "_4D_OPTION_";
constexpr const char* kFolderOption = "_4D_OPTION_CURRENT_DIRECTORY";
constexpr const char* kWaitOption = "_4D_OPTION_BLOCKING_EXTERNAL_PROCESS";

struct Environment {  // of the programs that this process starts
    std::map<std::string, std::string> values;
};

// 812 SET ENVIRONMENT VARIABLE(name; value): for LAUNCH EXTERNAL PROCESS; options of a name that begins with
// _4D_OPTION_ hold for one call
void SetEnvironmentVariable(CommandCall& call) {
    const std::string name = call.utf8(1), value = call.utf8(2);
    const bool fits = !name.empty() && name.find_first_of(std::string_view("=\0", 2)) == std::string::npos &&
                      value.find('\0') == std::string::npos;
    if (fits) call.process.of<Environment>().values[name] = value;
    call.setOK(fits);
}

// Words of a command line: blanks part them, quotes of both kinds keep them together, a backslash takes the next as is.
std::vector<std::string> WordsOf(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool within = false;
    char quote = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\' && quote != '\'' && i + 1 < line.size()) {
            word += line[++i];
            within = true;
        } else if (quote ? c == quote : c == '"' || c == '\'') {
            quote = quote ? 0 : c;
            within = true;
        } else if (!quote && (c == ' ' || c == '\t' || c == '\n')) {
            if (within) words.push_back(std::exchange(word, {}));
            within = false;
        } else {
            word += c;
            within = true;
        }
    }
    if (within) words.push_back(word);
    return words;
}

class Pipe {
  public:
    Pipe() {
        if (::pipe2(ends_, O_CLOEXEC) != 0) ends_[0] = ends_[1] = -1;
    }
    ~Pipe() {
        closeReading();
        closeWriting();
    }
    Pipe(const Pipe&) = delete;
    int reading() const { return ends_[0]; }
    int writing() const { return ends_[1]; }
    bool ok() const { return ends_[0] >= 0; }
    void closeReading() { close(&ends_[0]); }
    void closeWriting() { close(&ends_[1]); }

  private:
    static void close(int* end) {
        if (*end >= 0) ::close(std::exchange(*end, -1));
    }
    int ends_[2];
};

// Keeps SIGPIPE from this thread while a program's input is written.
class NoPipeSignal {
  public:
    NoPipeSignal() {
        sigset_t pending;
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigpending(&pending);
        pendingBefore_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &old_);
    }
    ~NoPipeSignal() {
        const timespec now{};
        if (!pendingBefore_) sigtimedwait(&pipe_, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &old_, nullptr);
    }
    const sigset_t* oldMask() const { return &old_; }

  private:
    sigset_t pipe_, old_;
    bool pendingBefore_ = false;
};

struct Program {
    std::vector<std::string> words, environment;
    std::string folder;  // empty = as it is
};

// Starts the program; its number, or -1 with errno.
pid_t Spawn(const Program& program, Pipe& in, Pipe& out, Pipe& err, const sigset_t* mask) {
    auto pointers = [](const std::vector<std::string>& texts) {
        std::vector<char*> list;
        for (const std::string& text : texts) list.push_back(const_cast<char*>(text.c_str()));
        list.push_back(nullptr);
        return list;
    };
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigmask(&attributes, mask);
    posix_spawnattr_setsigdefault(&attributes, &pipe);
    posix_spawn_file_actions_adddup2(&actions, in.reading(), 0);
    posix_spawn_file_actions_adddup2(&actions, out.writing(), 1);
    posix_spawn_file_actions_adddup2(&actions, err.writing(), 2);
    if (!program.folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, program.folder.c_str());
    pid_t child = -1;
    const int failed = posix_spawnp(&child, program.words[0].c_str(), &actions, &attributes,
                                    pointers(program.words).data(), pointers(program.environment).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    errno = failed;
    return failed == 0 ? child : -1;
}

// Feeds the input and reads both outputs until the program closes them. False = the user ended it, or too much came.
bool Talk(CommandCall& call, Pipe& in, Pipe& out, Pipe& err, std::string_view input, std::string* output,
          std::string* errors) {
    Host::Blocking outside(call.host);
    ::fcntl(in.writing(), F_SETFL, O_NONBLOCK);
    auto read = [](Pipe& pipe, std::string* text) {
        char buffer[65536];
        const ssize_t count = ::read(pipe.reading(), buffer, sizeof buffer);
        if (count > 0) text->append(buffer, size_t(count));
        else if (count == 0 || errno != EINTR) pipe.closeReading();
    };
    while (out.reading() >= 0 || err.reading() >= 0) {
        if (call.interrupted() || output->size() + errors->size() > size_t(INT32_MAX)) return false;
        if (input.empty()) in.closeWriting();
        pollfd waits[] = {{out.reading(), POLLIN, 0}, {err.reading(), POLLIN, 0}, {in.writing(), POLLOUT, 0}};
        if (::poll(waits, std::size(waits), 50) <= 0) continue;
        if (waits[0].revents) read(out, output);
        if (waits[1].revents) read(err, errors);
        if (waits[2].revents) {
            const ssize_t count = ::write(in.writing(), input.data(), std::min<size_t>(input.size(), 65536));
            if (count > 0) input.remove_prefix(size_t(count));
            else if (errno != EAGAIN && errno != EINTR) input = {};
        }
    }
    return true;
}

// Waits for the program to end; a stopped one, and one whose user has enough, is killed.
void Await(Host& host, pid_t child, bool kill) {
    Host::Blocking outside(host);
    for (;;) {
        if (kill) ::kill(child, SIGKILL);
        const pid_t ended = ::waitpid(child, nullptr, kill ? 0 : WNOHANG);
        if (ended == child || (ended < 0 && errno != EINTR)) return;
        if (!kill) std::this_thread::sleep_for(std::chrono::milliseconds(2));
        kill = kill || host.interrupted();
    }
}

// The end of a program that nobody waits for is taken note of, so that it leaves the system's list.
void ReapLater(pid_t child) {
    std::thread([child] {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {}
    }).detach();
}

Program ProgramOf(CommandCall& call) {
    std::map<std::string, std::string> variables;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view text(*entry);
        variables.emplace(text.substr(0, text.find('=')), text.substr(std::min(text.size(), text.find('=') + 1)));
    }
    Program program;
    for (const auto& [name, value] : call.process.of<Environment>().values)
        if (name.rfind(kOption, 0) != 0) variables[name] = value;
    for (const auto& [name, value] : variables) program.environment.push_back(name + "=" + value);
    program.words = WordsOf(call.utf8(1));
    return program;
}

void AssignOutput(CommandCall& call, int i, const std::string& bytes) {
    if (!call.has(i)) return;
    if (call.kind(i) == eVK_Blob) call.assignBlob(i, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
    else call.assignText(i, FromUtf8(bytes));
}

// 811 LAUNCH EXTERNAL PROCESS(line; [input]; [output]; [errors]; [number]): waits for its end unless the option
// _4D_OPTION_BLOCKING_EXTERNAL_PROCESS is "false". Text goes and comes as UTF-8. OK 0 if it cannot be started.
void LaunchExternalProcess(CommandCall& call) {
    Program program = ProgramOf(call);
    auto& options = call.process.of<Environment>().values;
    program.folder = options[kFolderOption];
    const bool wait = options[kWaitOption] != "false";
    std::erase_if(options, [](const auto& row) { return row.first.rfind(kOption, 0) == 0; });
    const bool broken = call.text(1).find(u'\0') != std::u16string_view::npos;
    if (program.words.empty() || broken) return Finish(call, ZR_ERR_PARAMETER);
    std::string input = call.kind(2) == eVK_Blob ? std::string(call.blob(2).begin(), call.blob(2).end()) : call.utf8(2);
    Pipe in, out, err;
    if (!in.ok() || !out.ok() || !err.ok()) return Finish(call, kTooManyOpen);
    NoPipeSignal quiet;
    const pid_t child = Spawn(program, in, out, err, quiet.oldMask());
    if (child < 0) return Finish(call, FileErrorOf(errno));
    in.closeReading();
    out.closeWriting();
    err.closeWriting();
    if (call.has(5)) call.assignLongint(5, int32_t(child));
    if (!wait) {
        ReapLater(child);
        return call.setOK(true);
    }
    std::string output, errors;
    const bool talked = Talk(call, in, out, err, input, &output, &errors);
    Await(call.host, child, /*kill*/ !talked);
    AssignOutput(call, 3, output);
    AssignOutput(call, 4, errors);
    call.setOK(talked);
}

constexpr CommandRow kRows[] = {
    {182, CurrentUser},
    {187, NoScreen},
    {188, NoScreen},
    {365, PlatformProperties},
    {437, NoScreen},
    {438, ScreenCoordinates},
    {439, NoScreen},
    {440, NoScreen},
    {441, NoScreen},
    {443, ScreenCoordinates},
    {483, CurrentMachine},
    {484, CurrentSystemUser},
    {485, Get4DFolder},
    {486, TemporaryFolder},
    {487, SystemFolder},
    {489, StructureFile},
    {490, DataFile},
    {491, ApplicationFile},
    {492, IsCompiledMode},
    {493, ApplicationVersion},
    {494, ApplicationType},
    {495, VersionType},
    {543, NoKeyDown},
    {544, NoKeyDown},
    {545, NoKeyDown},
    {546, NoKeyDown},
    {547, NoKeyDown},
    {562, NoKeyDown},
    {563, NoKeyDown},
    {642, SetDatabaseParameter},
    {643, GetDatabaseParameter},
    {667, LogEvent},
    {673, OpenUrl},
    {713, NoKeyDown},
    {714, IsLicenseAvailable},
    {788, GetCurrentPrinter},
    {789, PrintersList},
    {811, LaunchExternalProcess},
    {812, SetEnvironmentVariable},
    {847, NoPlugins},
    {994, GetSystemFormat},
    {1001, NoComponents},
    {1009, GetDatabaseLocalization},
    {1066, GenerateUuid},
    {1482, Datastore},
    {1571, GetSystemInfo},
    {1572, IsOtherSystem},
    {1573, IsOtherSystem},
};

}  // namespace

std::span<const CommandRow> commandsSystem() { return kRows; }

}  // namespace zrhost
