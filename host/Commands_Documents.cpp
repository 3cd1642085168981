// Commands by number: System Documents, and the packets of Communications that go to documents.
//
// The separator of this host is "/". A relative path counts from the folder of the structure, and from the working
// directory without one. A failure sets OK to 0 and answers the language's number of the error.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Formats.h"
#include "host/Objects.h"
#include "host/Text.h"

namespace zrhost {

namespace fs = std::filesystem;

// Paths and whole files --------------------------------------------------------------------------------------------

int FileErrorOf(int systemError) {
    static constexpr struct {
        int system, error;
    } kErrors[] = {
        {0, 0},
        {ENOENT, kFileNotFound},
        {ENOTDIR, kFolderNotFound},
        {EISDIR, kFileNotFound},
        {EEXIST, kAlreadyExists},
        {ENOTEMPTY, kFolderNotEmpty},
        {EACCES, kNoPermission},
        {EPERM, kNoPermission},
        {EROFS, kDiskLocked},
        {ENOSPC, kDiskFull},
        {EDQUOT, kDiskFull},
        {EMFILE, kTooManyOpen},
        {ENFILE, kTooManyOpen},
        {ENAMETOOLONG, kBadName},
        {EINVAL, kBadName},
        {EBADF, kBadReference},
        {EFBIG, ZR_ERR_MEMORY},
        {ENOMEM, ZR_ERR_MEMORY},
    };
    for (const auto& row : kErrors)
        if (row.system == systemError) return row.error;
    return kInputOutput;
}

std::string WithSeparator(std::string path) {
    if (!path.empty() && path.back() != '/') path += '/';
    return path;
}

std::string BaseFolder(const Host& host) {
    std::error_code error;
    const std::string& structure = host.options().structurePath;
    fs::path folder = fs::current_path(error);
    if (!structure.empty()) folder = (folder / structure).parent_path();
    return WithSeparator(folder.lexically_normal().string());
}

std::string FullPathOf(const Host& host, std::string_view path) {
    if (path.empty() || path.find('\0') != std::string_view::npos) return {};
    const fs::path given(path);
    return (given.is_absolute() ? given : fs::path(BaseFolder(host)) / given).lexically_normal().string();
}

std::string FullPath(const CommandCall& call, int i) { return FullPathOf(call.host, call.utf8(i)); }

void Finish(CommandCall& call, int error) {
    call.setOK(error == 0);
    if (error != 0) call.setError(error);
}

namespace {

constexpr int64_t kMaximumSize = INT32_MAX;  // of what a BLOB or text takes

class File {  // an open descriptor; -1 = none
  public:
    explicit File(int descriptor = -1) : descriptor_(descriptor) {}
    File(File&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    File& operator=(File&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~File() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }

  private:
    int descriptor_;
};

bool IsFolder(const std::string& path) {
    struct stat facts {};
    return ::stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

bool IsDocument(const std::string& path) {
    struct stat facts {};
    return ::stat(path.c_str(), &facts) == 0 && !S_ISDIR(facts.st_mode);
}

bool WriteAll(int descriptor, std::span<const uint8_t> bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t written = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        done += size_t(written);
    }
    return true;
}

}  // namespace

int ReadWholeFile(const std::string& path, std::vector<uint8_t>* bytes) {
    bytes->clear();
    File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts {};
    if (!file || ::fstat(file.get(), &facts) != 0) return FileErrorOf(errno);
    if (S_ISDIR(facts.st_mode)) return kFileNotFound;
    if (S_ISCHR(facts.st_mode) || S_ISBLK(facts.st_mode)) return kFileNotFound;  // guard: a device has no end
    if (facts.st_size > kMaximumSize) return ZR_ERR_MEMORY;
    bytes->resize(size_t(facts.st_size));
    size_t done = 0;
    for (;;) {  // the size is a hint: files of the system say 0 and others grow
        if (done == bytes->size()) bytes->resize(std::max<size_t>(4096, done * 2));
        const ssize_t count = ::read(file.get(), bytes->data() + done, bytes->size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return bytes->clear(), FileErrorOf(errno);
        if (count == 0) break;
        done += size_t(count);
        if (int64_t(done) > kMaximumSize) return bytes->clear(), ZR_ERR_MEMORY;
    }
    bytes->resize(done);
    return 0;
}

int WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes) {
    File file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!file) return FileErrorOf(errno);
    return WriteAll(file.get(), bytes) ? 0 : FileErrorOf(errno);
}

namespace {

// Open documents ---------------------------------------------------------------------------------------------------

struct OpenDocument {
    std::mutex mutex;  // held by a command that reads, writes or moves
    File file;
    std::string path;
    bool writes = false;
    int64_t position = 0;
    std::vector<uint8_t> ahead;  // bytes read in advance, from aheadAt on
    int64_t aheadAt = 0;

    int64_t size() const {
        struct stat facts {};
        return ::fstat(file.get(), &facts) == 0 ? int64_t(facts.st_size) : 0;
    }
    // Bytes from the position on, at most 64 KB at once; empty at the end.
    std::span<const uint8_t> peek(int64_t at) {
        if (at < aheadAt || at >= aheadAt + int64_t(ahead.size())) {
            ahead.resize(65536);
            const ssize_t count = ::pread(file.get(), ahead.data(), ahead.size(), at);
            ahead.resize(count > 0 ? size_t(count) : 0);
            aheadAt = at;
        }
        return std::span<const uint8_t>(ahead).subspan(size_t(at - aheadAt));
    }
    bool write(std::span<const uint8_t> bytes) {
        ahead.clear();
        for (size_t done = 0; done < bytes.size();) {
            const ssize_t count = ::pwrite(file.get(), bytes.data() + done, bytes.size() - done, position);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            done += size_t(count);
            position += count;
        }
        return true;
    }
};

// References are small numbers from 1 that are not used twice; processes share the table.
struct Documents {
    std::mutex mutex;
    int32_t last = 0;
    std::map<int32_t, std::shared_ptr<OpenDocument>> open;

    bool isOpenForWriting(const std::string& path) {
        std::lock_guard lock(mutex);
        return std::any_of(open.begin(), open.end(),
                           [&](const auto& row) { return row.second->writes && row.second->path == path; });
    }
    int32_t add(std::shared_ptr<OpenDocument> document) {
        std::lock_guard lock(mutex);
        while (last == INT32_MAX || open.count(last + 1)) last = last == INT32_MAX ? 0 : last + 1;
        open.emplace(++last, std::move(document));
        return last;
    }
    std::shared_ptr<OpenDocument> find(int32_t reference) {
        std::lock_guard lock(mutex);
        const auto row = open.find(reference);
        return row == open.end() ? nullptr : row->second;
    }
    bool close(int32_t reference) {
        std::lock_guard lock(mutex);
        return open.erase(reference) != 0;
    }
};

Documents& DocumentsOf(CommandCall& call) { return call.host.state<Documents>(); }

// The document of a reference, held for the command; false = no such reference.
class HeldDocument {
  public:
    HeldDocument(CommandCall& call, int i) {
        if (call.has(i) && !call.isText(i)) document_ = DocumentsOf(call).find(call.time(i));
        if (document_) lock_ = std::unique_lock(document_->mutex);
    }
    explicit operator bool() const { return document_ != nullptr; }
    OpenDocument* operator->() const { return document_.get(); }
    OpenDocument* get() const { return document_.get(); }

  private:
    std::shared_ptr<OpenDocument> document_;
    std::unique_lock<std::mutex> lock_;
};

// The headless host has no dialog: what would show one is cancelled.
void Cancelled(CommandCall& call) {
    call.setTime(0);
    call.setOK(false);
}

void OpenAt(CommandCall& call, int flags, bool atEnd) {
    call.setTime(0);
    const std::string path = FullPath(call, 1);
    if (path.empty()) return Finish(call, kBadName);
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    if (writes && DocumentsOf(call).isOpenForWriting(path)) return Finish(call, kAlreadyOpen);
    auto document = std::make_shared<OpenDocument>();
    document->file = File(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!document->file) return Finish(call, FileErrorOf(errno));
    if (IsFolder(path)) return Finish(call, kFileNotFound);
    document->path = path;
    document->writes = writes;
    document->position = atEnd ? document->size() : 0;
    call.setDocument(FromUtf8(path));
    call.setOK(true);
    call.setTime(DocumentsOf(call).add(std::move(document)));
}

// 264 Open document(path; [type]; [mode]): mode 0 read and write, 1 write, 2 read, 3 only the path into Document.
void OpenDocumentCommand(CommandCall& call) {
    if (call.text(1).empty()) return Cancelled(call);
    const int mode = call.isNumber(2) ? call.integer(2) : call.integer(3);
    if (mode == 3) {
        const std::string path = FullPath(call, 1);
        call.setTime(0);
        if (!IsDocument(path)) return Finish(call, path.empty() ? kBadName : kFileNotFound);
        call.setDocument(FromUtf8(path));
        return call.setOK(true);
    }
    OpenAt(call, mode == 1 ? O_WRONLY : mode == 2 ? O_RDONLY : O_RDWR, /*atEnd*/ false);
}

// 265 Append document(path; [type]): opened, and written at its end
void AppendDocument(CommandCall& call) {
    if (call.text(1).empty()) return Cancelled(call);
    OpenAt(call, O_RDWR, /*atEnd*/ true);
}

// 266 Create document(path; [type]): an existing one is emptied.
void CreateDocument(CommandCall& call) {
    if (call.text(1).empty()) return Cancelled(call);
    OpenAt(call, O_RDWR | O_CREAT | O_TRUNC, /*atEnd*/ false);
}

// 267 CLOSE DOCUMENT(reference)
void CloseDocument(CommandCall& call) { Finish(call, DocumentsOf(call).close(call.time(1)) ? 0 : kBadReference); }

// 268 SET TIMEOUT(seconds): for serial ports, which this host has not.
void SetTimeout(CommandCall& call) { call.setOK(true); }

// 103 SEND PACKET([reference]; text or BLOB): text as UTF-8
void SendPacket(CommandCall& call) {
    const HeldDocument document(call, 1);
    if (!document || !call.has(2)) return Finish(call, kBadReference);
    if (call.kind(2) == eVK_Blob) return Finish(call, document->write(call.blob(2)) ? 0 : FileErrorOf(errno));
    const std::string text = call.utf8(2);
    const std::span<const uint8_t> bytes(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    Finish(call, document->write(bytes) ? 0 : FileErrorOf(errno));
}

// Units that the UTF-8 character of this first byte has; 0 = not the start of a character.
int UnitsOfLead(uint8_t byte) { return (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 ? 2 : 1; }

// Bytes up to the first stop (which is passed over), or up to a count of units or bytes. False = stopped by the user.
bool ReadPacket(CommandCall& call, OpenDocument* document, std::string_view stop, int64_t count, bool units,
                std::vector<uint8_t>* packet, bool* complete) {
    *complete = false;
    int64_t got = 0;
    for (;;) {
        const std::span<const uint8_t> bytes = document->peek(document->position);
        if (bytes.empty()) return true;
        if (call.interrupted() || int64_t(packet->size()) > kMaximumSize) return false;
        for (uint8_t byte : bytes) {
            const int width = units ? UnitsOfLead(byte) : 1;
            if (stop.empty() && got + width > count) return *complete = true;
            got += width;
            packet->push_back(byte);
            ++document->position;
            if (!stop.empty() && byte == uint8_t(stop.back()) && packet->size() >= stop.size() &&
                std::memcmp(packet->data() + packet->size() - stop.size(), stop.data(), stop.size()) == 0) {
                packet->resize(packet->size() - stop.size());
                return *complete = true;
            }
        }
        if (stop.empty() && !units && got >= count) return *complete = true;
    }
}

// 104 RECEIVE PACKET([reference]; variable; stop text or count): OK 0 once nothing is left to read
void ReceivePacket(CommandCall& call) {
    const HeldDocument document(call, 1);
    if (!document || !call.has(3)) return Finish(call, kBadReference);
    const bool intoBlob = call.kind(2) == eVK_Blob;
    const std::string stop = call.isText(3) ? call.utf8(3) : std::string();
    if (stop.empty() && call.isText(3)) return Finish(call, ZR_ERR_PARAMETER);
    std::vector<uint8_t> packet;
    bool complete = false;
    const bool read =
        ReadPacket(call, document.get(), stop, std::max(0, call.integer(3)), !intoBlob, &packet, &complete);
    if (intoBlob) call.assignBlob(2, packet);
    else call.assignText(2, FromUtf8({reinterpret_cast<const char*>(packet.data()), packet.size()}));
    call.setOK(read && (complete || !packet.empty()));
}

// 479 Get document size(path or reference; [*])
void GetDocumentSize(CommandCall& call) {
    call.setReal(0);
    if (const HeldDocument document(call, 1); document) {
        call.setReal(double(document->size()));
        return call.setOK(true);
    }
    if (!call.isText(1)) return Finish(call, kBadReference);
    struct stat facts {};
    const std::string path = FullPath(call, 1);
    if (::stat(path.c_str(), &facts) != 0) return Finish(call, FileErrorOf(errno));
    if (S_ISDIR(facts.st_mode)) return Finish(call, kFileNotFound);
    call.setReal(double(facts.st_size));
    call.setOK(true);
}

// 480 SET DOCUMENT SIZE(reference; bytes)
void SetDocumentSize(CommandCall& call) {
    const HeldDocument document(call, 1);
    if (!document) return Finish(call, kBadReference);
    const int64_t size = call.integer64(2, -1);
    if (size < 0) return Finish(call, ZR_ERR_PARAMETER);
    document->ahead.clear();
    if (::ftruncate(document->file.get(), size) != 0) return Finish(call, FileErrorOf(errno));
    document->position = std::min(document->position, size);
    call.setOK(true);
}

// 481 Get document position(reference): bytes from 0
void GetDocumentPosition(CommandCall& call) {
    const HeldDocument document(call, 1);
    call.setReal(document ? double(document->position) : 0);
    Finish(call, document ? 0 : kBadReference);
}

// 482 SET DOCUMENT POSITION(reference; offset; [anchor]): 1 from the start, 2 from the end, 3 from here
void SetDocumentPosition(CommandCall& call) {
    const HeldDocument document(call, 1);
    if (!document) return Finish(call, kBadReference);
    const int anchor = call.integer(3, 1);
    const int64_t from = anchor == 2 ? document->size() : anchor == 3 ? document->position : 0;
    const int64_t offset = call.integer64(2);
    const bool sane = offset > -(int64_t(1) << 60) && offset < (int64_t(1) << 60);
    if (!sane || from + offset < 0 || from + offset > document->size()) return Finish(call, ZR_ERR_PARAMETER);
    document->position = from + offset;
    call.setOK(true);
}

// Files and folders ------------------------------------------------------------------------------------------------

// 159 DELETE DOCUMENT(path)
void DeleteDocument(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    if (path.empty()) return Finish(call, kBadName);
    if (IsFolder(path)) return Finish(call, kFileNotFound);
    if (DocumentsOf(call).isOpenForWriting(path)) return Finish(call, kAlreadyOpen);
    Finish(call, ::unlink(path.c_str()) == 0 ? 0 : FileErrorOf(errno));
}

// 476 Test path name(path): 1 document, 0 folder, else the error
void TestPathName(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    struct stat facts {};
    if (path.empty()) return call.setLongint(kBadName);
    if (::stat(path.c_str(), &facts) != 0) return call.setLongint(FileErrorOf(errno));
    call.setLongint(S_ISDIR(facts.st_mode) ? 0 : path.back() == '/' ? kFileNotFound : 1);
}

// 540 MOVE DOCUMENT(source; target): a document gets another path; an existing target is refused.
void MoveDocument(CommandCall& call) {
    std::string from = FullPath(call, 1), to = FullPath(call, 2);
    if (from.empty() || to.empty()) return Finish(call, kBadName);
    if (!IsDocument(from)) return Finish(call, IsFolder(from) ? kBadName : kFileNotFound);
    if (IsDocument(to) || IsFolder(to)) return Finish(call, kAlreadyExists);
    if (::rename(from.c_str(), to.c_str()) == 0) return Finish(call, 0);
    if (errno != EXDEV) return Finish(call, FileErrorOf(errno));
    std::error_code error;  // another volume: copied, then deleted
    fs::copy_file(from, to, error);
    if (!error) fs::remove(from, error);
    Finish(call, FileErrorOf(error.value()));
}

// The name at the end of a path, a separator behind it or not.
std::string LastName(const std::string& path) {
    const fs::path given(path);
    return given.has_filename() ? given.filename().string() : given.parent_path().filename().string();
}

// 541 COPY DOCUMENT(source; target; [newName]; [*]): a document, or a folder with its contents into a folder; a target
// that ends with the separator is a folder. * replaces what is there.
void CopyDocument(CommandCall& call) {
    const bool replace = call.takeStar();
    const std::string from = FullPath(call, 1);
    std::string to = FullPath(call, 2);
    if (from.empty() || to.empty()) return Finish(call, kBadName);
    const bool folder = IsFolder(from);
    if (!folder && !IsDocument(from)) return Finish(call, kFileNotFound);
    const std::string newName = call.utf8(3);
    if (newName.find('/') != std::string::npos || newName.find('\0') != std::string::npos)
        return Finish(call, kBadName);
    if (to.back() == '/' || IsFolder(to)) {
        if (!IsFolder(to)) return Finish(call, kFolderNotFound);
        to = WithSeparator(to) + (newName.empty() ? LastName(from) : newName);
    }
    const bool within = folder && WithSeparator(to).rfind(WithSeparator(from), 0) == 0;
    if (from == to || within) return Finish(call, kBadName);  // a copy into itself would not end
    if (!replace && (IsDocument(to) || IsFolder(to))) return Finish(call, kAlreadyExists);
    std::error_code error;
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::overwrite_existing, error);
    Finish(call, FileErrorOf(error.value()));
}

// 475 CREATE FOLDER(path; [*]): * makes the folders on the way as well. What ends without the separator is a folder too
// unless * is given: then its last part is the name of a document.
void CreateFolder(CommandCall& call) {
    const bool all = call.takeStar();
    std::string path = FullPath(call, 1);
    if (path.empty()) return Finish(call, kBadName);
    if (all && path.back() != '/') path = path.substr(0, path.rfind('/') + 1);
    if (!all && (IsFolder(path) || IsDocument(path))) return Finish(call, kAlreadyExists);
    if (!all) return Finish(call, ::mkdir(path.c_str(), 0777) == 0 ? 0 : FileErrorOf(errno));
    std::error_code error;
    fs::create_directories(path, error);
    Finish(call, FileErrorOf(error.value()));
}

// 693 DELETE FOLDER(path; [option]): 0 only if it is empty, 1 with its contents
void DeleteFolder(CommandCall& call) {
    std::string path = FullPath(call, 1);
    if (path.empty() || path == "/") return Finish(call, kBadName);
    if (!IsFolder(path)) return Finish(call, kFolderNotFound);
    if (path.back() == '/') path.pop_back();
    if (call.integer(2) != 1) return Finish(call, ::rmdir(path.c_str()) == 0 ? 0 : FileErrorOf(errno));
    std::error_code error;
    fs::remove_all(path, error);
    Finish(call, FileErrorOf(error.value()));
}

bool IsInvisible(const fs::path& path) { return path.filename().string().rfind('.', 0) == 0; }

enum ListOption { kRecursive = 1, kAbsolute = 2, kPosix = 4, kIgnoreInvisible = 8 };

// Names in the order of the alphabet. Folders are asked for by wanted true.
int ListFolder(CommandCall& call, const std::string& folder, bool wanted, int options,
               std::vector<std::u16string>* names) {
    std::error_code error;
    fs::recursive_directory_iterator walk(folder, fs::directory_options::skip_permission_denied, error);
    if (error) return FileErrorOf(error.value());
    for (; walk != fs::recursive_directory_iterator(); walk.increment(error)) {
        if (call.interrupted()) return kInputOutput;
        std::error_code ignored;
        const bool hidden = (options & kIgnoreInvisible) && IsInvisible(walk->path());
        const bool isFolder = walk->is_directory(ignored);
        if (!(options & kRecursive) || hidden) walk.disable_recursion_pending();
        if (hidden || isFolder != wanted) continue;
        const std::string path = walk->path().string();
        const std::string within = path.substr(std::min(path.size(), folder.size()));
        names->push_back(FromUtf8(options & kAbsolute ? path : options & kRecursive ? "/" + within : within));
        if (error) break;
    }
    std::sort(names->begin(), names->end(), [](const std::u16string& left, const std::u16string& right) {
        const int order = CompareText(left, right, /*exact*/ false, /*wildcard*/ false);
        return order != 0 ? order < 0 : left < right;
    });
    return 0;
}

void ListInto(CommandCall& call, bool folders, int options) {
    const std::string folder = WithSeparator(FullPath(call, 1));
    std::vector<std::u16string> names;
    const int error = folder.empty()      ? int(kBadName)
                      : !IsFolder(folder) ? int(kFolderNotFound)
                                          : ListFolder(call, folder, folders, options, &names);
    if (error != 0) names.clear();
    const bool written = call.assignTextArray(2, names);
    Finish(call, error != 0 ? error : written ? 0 : ZR_ERR_PARAMETER);
}

// 473 FOLDER LIST(path; names)
void FolderList(CommandCall& call) { ListInto(call, /*folders*/ true, 0); }

// 474 DOCUMENT LIST(path; names; [options]): 1 with all folders below, 2 full paths, 4 POSIX (as always here), 8
// without what begins with a dot
void DocumentList(CommandCall& call) { ListInto(call, /*folders*/ false, call.integer(3)); }

// 471 VOLUME LIST(names): the one root of this system
void VolumeList(CommandCall& call) {
    const std::u16string root[] = {u"/"};
    call.setOK(call.assignTextArray(1, root));
}

// 472 VOLUME ATTRIBUTES(volume; size; used; free): bytes
void VolumeAttributes(CommandCall& call) {
    struct statvfs facts {};
    const std::string path = FullPath(call, 1);
    if (path.empty() || ::statvfs(path.c_str(), &facts) != 0)
        return Finish(call, path.empty() ? kBadName : FileErrorOf(errno));
    const double block = double(facts.f_frsize);
    call.assignReal(2, block * double(facts.f_blocks));
    call.assignReal(3, block * double(facts.f_blocks - facts.f_bfree));
    call.assignReal(4, block * double(facts.f_bavail));
    call.setOK(true);
}

// 477 GET DOCUMENT PROPERTIES(path; locked; invisible; created; createdAt; modified; modifiedAt)
void GetDocumentProperties(CommandCall& call) {
    struct stat facts {};
    const std::string path = FullPath(call, 1);
    if (path.empty() || ::stat(path.c_str(), &facts) != 0)
        return Finish(call, path.empty() ? kBadName : FileErrorOf(errno));
    const int64_t created = std::min(facts.st_ctime, facts.st_mtime), modified = facts.st_mtime;
    call.assignBoolean(2, (facts.st_mode & 0222) == 0);
    call.assignBoolean(3, IsInvisible(path));
    call.assignDate(4, LocalDateOf(created));
    call.assignTime(5, LocalTimeOf(created));
    call.assignDate(6, LocalDateOf(modified));
    call.assignTime(7, LocalTimeOf(modified));
    call.setOK(true);
}

// 478 SET DOCUMENT PROPERTIES(path; locked; invisible; created; createdAt; modified; modifiedAt): locked and modified
// take effect; this system keeps the others by other means.
void SetDocumentProperties(CommandCall& call) {
    struct stat facts {};
    const std::string path = FullPath(call, 1);
    if (path.empty() || ::stat(path.c_str(), &facts) != 0)
        return Finish(call, path.empty() ? kBadName : FileErrorOf(errno));
    const int64_t modified = SecondsOfLocal(call.date(6), call.time(7));
    const timespec times[2] = {{0, UTIME_OMIT}, {time_t(modified), 0}};
    if (modified >= 0 && ::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) return Finish(call, FileErrorOf(errno));
    if (!call.has(2)) return call.setOK(true);
    const mode_t mode = call.boolean(2) ? facts.st_mode & ~mode_t(0222) : facts.st_mode | 0200;
    Finish(call, ::chmod(path.c_str(), mode & 07777) == 0 ? 0 : FileErrorOf(errno));
}

// 528 Document type(path), 529 Document creator(path): this system has none
void NoDocumentType(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    call.setText(u"");
    Finish(call, IsDocument(path) ? 0 : kFileNotFound);
}

// 694 CREATE ALIAS(target; alias): a symbolic link
void CreateAlias(CommandCall& call) {
    const std::string target = FullPath(call, 1), alias = FullPath(call, 2);
    if (target.empty() || alias.empty()) return Finish(call, kBadName);
    if (!IsDocument(target) && !IsFolder(target)) return Finish(call, kFileNotFound);
    Finish(call, ::symlink(target.c_str(), alias.c_str()) == 0 ? 0 : FileErrorOf(errno));
}

// 695 RESOLVE ALIAS(alias; target): the path itself if it is no alias; OK 0 if what it leads to is gone
void ResolveAlias(CommandCall& call) {
    const std::string alias = FullPath(call, 1);
    if (alias.empty()) return Finish(call, kBadName);
    std::error_code error;
    const fs::path target = fs::canonical(alias, error);
    if (!error)
        call.assignText(2, FromUtf8(IsFolder(target.string()) ? WithSeparator(target.string()) : target.string()));
    Finish(call, FileErrorOf(error.value()));
}

// 670 Select folder, 905 Select document: no one to ask: empty, OK 0
void NothingSelected(CommandCall& call) {
    call.setText(u"");
    call.setOK(false);
}

// 922 SHOW ON DISK(path): there is no window to show it in.
void ShowOnDisk(CommandCall& call) { call.setOK(false); }

// Paths as text ----------------------------------------------------------------------------------------------------

// 1105 Localized document path(path): itself, since no folder is translated here
void LocalizedDocumentPath(CommandCall& call) { call.setText(call.text(1)); }

// 1106 Convert path system to POSIX(path; [*]), 1107 Convert path POSIX to system(path; [*]): they are the same here; *
// encodes or decodes as a URL does.
std::string UrlEncoded(std::string_view bytes) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char byte : bytes) {
        const bool plain = std::isalnum(byte) || std::strchr("-_.~/", byte);
        if (plain && byte != 0) out += char(byte);
        else out.append({'%', kHex[byte >> 4], kHex[byte & 15]});
    }
    return out;
}

std::string UrlDecoded(std::string_view text) {
    auto digit = [](char c) {
        return c >= '0' && c <= '9' ? c - '0' : (c | 32) >= 'a' && (c | 32) <= 'f' ? (c | 32) - 'a' + 10 : -1;
    };
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool coded = text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0 && digit(text[i + 2]) >= 0;
        out += coded ? char(digit(text[i + 1]) * 16 + digit(text[i + 2])) : text[i];
        if (coded) i += 2;
    }
    return out;
}

void SystemToPosix(CommandCall& call) {
    const bool encode = call.takeStar();
    call.setText(std::string_view(encode ? UrlEncoded(call.utf8(1)) : call.utf8(1)));
}

void PosixToSystem(CommandCall& call) {
    const bool decode = call.takeStar();
    call.setText(std::string_view(decode ? UrlDecoded(call.utf8(1)) : call.utf8(1)));
}

// 1547 Path to object(path): parentFolder, name, extension, isFolder
void PathToObject(CommandCall& call) {
    std::u16string path(call.text(1));
    const bool folder = !path.empty() && path.back() == u'/';
    if (folder) path.pop_back();
    const size_t slash = path.rfind(u'/');
    const size_t nameAt = slash == std::u16string::npos ? 0 : slash + 1;
    const size_t dot = path.rfind(u'.');
    const bool extended = dot != std::u16string::npos && dot > nameAt;
    const size_t nameEnd = extended ? dot : path.size();
    Ref<Object> object = NewObject();
    object->set(u"parentFolder", Value(path.substr(0, nameAt)));
    object->set(u"name", Value(path.substr(nameAt, nameEnd - nameAt)));
    object->set(u"extension", Value(path.substr(nameEnd)));
    object->set(u"isFolder", Value(folder));
    call.setObject(object);
}

// 1548 Object to path(object)
void ObjectToPath(CommandCall& call) {
    const Object* object = call.object(1);
    if (!object) return call.setText(u"");
    std::u16string path = object->get(u"parentFolder").text();
    if (!path.empty() && path.back() != u'/') path += u'/';
    path += object->get(u"name").text();
    const std::u16string extension = object->get(u"extension").text();
    if (!extension.empty() && extension[0] != u'.') path += u'.';
    path += extension;
    if (object->get(u"isFolder").boolean()) path += u'/';
    call.setText(path);
}

// Whole documents as text and BLOB ---------------------------------------------------------------------------------

enum BreakMode { kUnchanged = 0, kNative = 1, kCrLf = 2, kCr = 3, kLf = 4 };

std::u16string WithBreaks(std::u16string_view text, int mode) {
    if (mode <= kUnchanged || mode > kLf) return std::u16string(text);
    const std::u16string_view end = mode == kCrLf ? u"\r\n" : mode == kCr ? u"\r" : u"\n";
    std::u16string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        if (text[i] == u'\r' || text[i] == u'\n') out += end;
        else out += text[i];
        if (pair) ++i;
    }
    return out;
}

struct TextForm {
    std::string charset = "UTF-8";
    bool mark = true;  // a byte order mark is written
    int breaks = kNative;
    bool known = true;
};

TextForm ReadForm(const CommandCall& call, int first) {  // [charset]; [break mode]
    static constexpr std::string_view kNoMark = "-no-bom";
    TextForm form;
    if (call.has(first)) form.charset = call.isText(first) ? call.utf8(first) : CharsetByNumber(call.integer(first));
    const size_t cut = form.charset.size() >= kNoMark.size() ? form.charset.size() - kNoMark.size() : 0;
    if (EqualNames(FromUtf8(form.charset.substr(cut)), FromUtf8(kNoMark))) {
        form.charset.resize(cut);
        form.mark = false;
    }
    if (call.has(first) && form.charset.empty()) form.known = false;
    form.known = form.known && IsCharset(form.charset);
    form.breaks = call.integer(first + 1, kNative);
    return form;
}

// The charset that a byte order mark tells; empty = none.
std::string CharsetOfMark(std::span<const uint8_t> bytes) {
    static constexpr struct {
        std::string_view mark;
        const char* charset;
    } kMarks[] = {
        {std::string_view("\xFF\xFE\0\0", 4), "UTF-32LE"},
        {std::string_view("\0\0\xFE\xFF", 4), "UTF-32BE"},
        {"\xEF\xBB\xBF", "UTF-8"},
        {"\xFF\xFE", "UTF-16LE"},
        {"\xFE\xFF", "UTF-16BE"},
    };
    const std::string_view start(reinterpret_cast<const char*>(bytes.data()), std::min<size_t>(bytes.size(), 4));
    for (const auto& row : kMarks)
        if (start.substr(0, row.mark.size()) == row.mark) return row.charset;
    return {};
}

// 1236 Document to text(path; [charset]; [breakMode]): without a charset the byte order mark tells it,
// else it is UTF-8
void DocumentToText(CommandCall& call) {
    const TextForm form = ReadForm(call, 2);
    std::vector<uint8_t> bytes;
    call.setText(u"");
    if (!form.known) return Finish(call, ZR_ERR_PARAMETER);
    const std::string path = FullPath(call, 1);
    const int error = path.empty() ? int(kBadName) : ReadWholeFile(path, &bytes);
    if (error != 0) return Finish(call, error);
    std::u16string text;
    const std::string marked = call.has(2) ? std::string() : CharsetOfMark(bytes);
    call.setOK(DecodeText(bytes, marked.empty() ? form.charset : marked, &text));
    std::u16string_view body = text;
    if (!body.empty() && body[0] == 0xFEFF) body.remove_prefix(1);
    call.setText(WithBreaks(body, form.breaks));
}

// The encoded text with or without a byte order mark. Charsets that leave the order open write the mark themselves.
bool EncodeMarked(std::u16string text, const TextForm& form, std::vector<uint8_t>* bytes) {
    const std::u16string charset = FromUtf8(form.charset);
    const bool open16 = EqualNames(charset, u"UTF-16"), open32 = EqualNames(charset, u"UTF-32");
    const bool unicode = EqualNames(charset.substr(0, 3), u"UTF");
    if (form.mark && unicode && !open16 && !open32) text.insert(text.begin(), 0xFEFF);
    if (!EncodeText(text, form.charset, bytes)) return false;
    if (form.mark || (!open16 && !open32)) return true;
    bytes->erase(bytes->begin(), bytes->begin() + std::min<std::ptrdiff_t>(open16 ? 2 : 4, std::ssize(*bytes)));
    return true;
}

// 1237 TEXT TO DOCUMENT(path; text; [charset]; [breakMode]): UTF-8 with a byte order mark; "-no-bom" behind the charset
// leaves it out.
void TextToDocument(CommandCall& call) {
    const TextForm form = ReadForm(call, 3);
    const std::string path = FullPath(call, 1);
    if (!form.known) return Finish(call, ZR_ERR_PARAMETER);
    if (path.empty()) return Finish(call, kBadName);
    std::vector<uint8_t> bytes;
    if (!EncodeMarked(WithBreaks(call.text(2), form.breaks), form, &bytes)) return Finish(call, ZR_ERR_PARAMETER);
    Finish(call, WriteWholeFile(path, bytes));
}

// 525 DOCUMENT TO BLOB(path; blob)
void DocumentToBlob(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    std::vector<uint8_t> bytes;
    const int error = path.empty() ? int(kBadName) : ReadWholeFile(path, &bytes);
    if (error != 0) return Finish(call, error);
    Finish(call, call.assignBlob(2, bytes) ? 0 : ZR_ERR_PARAMETER);
}

// 526 BLOB TO DOCUMENT(path; blob): made if missing, else rewritten
void BlobToDocument(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    if (path.empty()) return Finish(call, kBadName);
    if (call.kind(2) != eVK_Blob) return Finish(call, ZR_ERR_PARAMETER);
    Finish(call, WriteWholeFile(path, call.blob(2)));
}

// 530 SET DOCUMENT TYPE(path; type), 531 SET DOCUMENT CREATOR(path; creator): nothing to set on this system
void SetDocumentTypeOrCreator(CommandCall& call) { Finish(call, IsDocument(FullPath(call, 1)) ? 0 : kFileNotFound); }

constexpr CommandRow kRows[] = {
    {103, SendPacket},
    {104, ReceivePacket},
    {159, DeleteDocument},
    {264, OpenDocumentCommand},
    {265, AppendDocument},
    {266, CreateDocument},
    {267, CloseDocument},
    {268, SetTimeout},
    {471, VolumeList},
    {472, VolumeAttributes},
    {473, FolderList},
    {474, DocumentList},
    {475, CreateFolder},
    {476, TestPathName},
    {477, GetDocumentProperties},
    {478, SetDocumentProperties},
    {479, GetDocumentSize},
    {480, SetDocumentSize},
    {481, GetDocumentPosition},
    {482, SetDocumentPosition},
    {525, DocumentToBlob},
    {526, BlobToDocument},
    {528, NoDocumentType},
    {529, NoDocumentType},
    {530, SetDocumentTypeOrCreator},
    {531, SetDocumentTypeOrCreator},
    {540, MoveDocument},
    {541, CopyDocument},
    {670, NothingSelected},
    {693, DeleteFolder},
    {694, CreateAlias},
    {695, ResolveAlias},
    {905, NothingSelected},
    {922, ShowOnDisk},
    {1105, LocalizedDocumentPath},
    {1106, SystemToPosix},
    {1107, PosixToSystem},
    {1236, DocumentToText},
    {1237, TextToDocument},
    {1547, PathToObject},
    {1548, ObjectToPath},
};

}  // namespace

std::span<const CommandRow> commandsDocuments() { return kRows; }

}  // namespace zrhost
