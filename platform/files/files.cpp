#include "platform/files/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/ownedFile.h"

namespace platform::files {

namespace fs = std::filesystem;

namespace {

Descriptor openForReading(const Path& path) {
    // What is no ordinary file is refused and not waited for: a pipe would be, for ever.
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0)
        throw failureFromErrno(errno, path.string());
    if (!S_ISREG(status.st_mode))
        throw makeFailure(pathFileAccessError, path.string() + " is no ordinary file");
    return file;
}

struct stat statusOf(const Path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        throw failureFromErrno(errno, path.string());
    return status;
}

// The superuser passes every permission, so what an owner may not do is looked up, not tried.
void requireWritable(const Path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && !(status.st_mode & S_IWUSR))
        throw makeFailure(permissionDenied, path.string());
}

// The file of a running program is held: replacing it by name would leave two programs under one.
void requireNotRunning(const Path& path) {
    const Descriptor probe(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
    if (probe.get() < 0 && errno == ETXTBSY)
        throw failureFromErrno(errno, path.string());
}

Path folderOf(const Path& path) {
    return path.has_parent_path() ? path.parent_path() : Path(".");
}

// A file that is written beside its target and takes the target's name when it is whole. All of it happens
// in the folder that was opened first, and a link under the target's name is replaced, never followed.
// Leftovers of a process that died are overwritten by the next one of the same id.
class Replacement {
  public:
    Replacement(const Path& target, mode_t mode)
        : target_(target),
          name_(target.filename()),
          // Cut short, so that it is a name wherever the target's is one.
          temporary_(name_.string().substr(0, 200) + "." + std::to_string(::getpid()) + ".new"),
          folder_(::open(folderOf(target).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
        if (!folder_)
            fail(errno);
        file_ = create();
        keepOwner();
        if (::fchmod(file_.get(), mode) != 0)
            fail(errno);
    }
    ~Replacement() {
        if (!done_)
            ::unlinkat(folder_.get(), temporary_.c_str(), 0);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void write(std::string_view content) {
        while (!content.empty()) {
            const ssize_t written = ::write(file_.get(), content.data(), content.size());
            if (written >= 0)
                content.remove_prefix(static_cast<std::size_t>(written));
            else if (errno != EINTR)
                fail(errno);
        }
    }

    void finish() {
        if (::fsync(file_.get()) != 0 || ::close(file_.release()) != 0)
            fail(errno);
        if (::renameat(folder_.get(), temporary_.c_str(), folder_.get(), name_.c_str()) != 0)
            fail(errno);
        done_ = true;
        // The name lasts once the folder is on the disk too. A file system that cannot sync folders keeps
        // the new file all the same.
        const Descriptor folder(::openat(folder_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (folder)
            ::fsync(folder.get());
    }

  private:
    Descriptor create() const {
        struct stat status {};
        if (::fstat(folder_.get(), &status) == 0 && !(status.st_mode & S_IWUSR))
            throw failureFromErrno(EACCES, folderOf(target_).string());
        if (::fstatat(folder_.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            !(status.st_mode & S_IWUSR))
            fail(EACCES);
        ::unlinkat(folder_.get(), temporary_.c_str(), 0);
        Descriptor file(::openat(folder_.get(), temporary_.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!file)
            fail(errno);
        return file;
    }
    // The superuser's files in somebody else's folder would lock the owner out: what is replaced keeps its
    // owner, and what is new belongs to the folder's.
    void keepOwner() const {
        if (::geteuid() != 0)
            return;
        struct stat old {};
        const bool replaced =
            ::fstatat(folder_.get(), name_.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(old.st_mode);
        if (replaced ? ::fchown(file_.get(), old.st_uid, old.st_gid) != 0 : !giveToOwnerOf(folder_, file_))
            fail(errno);
    }
    [[noreturn]] void fail(int error) const { throw failureFromErrno(error, target_.string()); }

    Path target_;
    Path name_;
    std::string temporary_;
    Descriptor folder_;
    Descriptor file_;
    bool done_ = false;
};

}  // namespace

bool fileExists(const Path& path) noexcept {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool folderExists(const Path& path) noexcept {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool entryExists(const Path& path) noexcept {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

bool isOwnFolder(const Path& path) noexcept {
    struct stat folder {};
    struct stat above {};
    return ::lstat(path.c_str(), &folder) == 0 && S_ISDIR(folder.st_mode) &&
           ::stat(folderOf(path).c_str(), &above) == 0 &&
           (folder.st_uid == ::geteuid() || folder.st_uid == above.st_uid);
}

void requireOwnFolder(const Path& path) {
    if (!isOwnFolder(path))
        throw makeFailure(permissionDenied, path.string() + " is no folder of its owner's own");
}

void createFolder(const Path& path) {
    requireWritable(folderOf(path));
    if (::mkdir(path.c_str(), 0700) != 0)
        throw errno == ENOENT ? makeFailure(pathNotFound, path.string())
                              : failureFromErrno(errno, path.string());
    struct stat above {};
    if (::geteuid() == 0 && ::stat(folderOf(path).c_str(), &above) == 0 &&
        ::lchown(path.c_str(), above.st_uid, above.st_gid) != 0)
        throw failureFromErrno(errno, path.string());
}

void copyFile(const Path& source, const Path& target) {
    const Descriptor from = openForReading(source);
    struct stat status {};
    if (::fstat(from.get(), &status) != 0)
        throw failureFromErrno(errno, source.string());
    if (!S_ISREG(status.st_mode))
        throw makeFailure(pathFileAccessError, source.string());
    // Only its owner may read a new file; a copied program can still be run.
    mode_t mode = 0600u | (status.st_mode & S_IXUSR);
    struct stat old {};
    if (::lstat(target.c_str(), &old) == 0 && S_ISREG(old.st_mode)) {
        mode = old.st_mode & 07777u;
        requireNotRunning(target);
    }
    Replacement replacement(target, mode);
    char buffer[1 << 16];
    for (;;) {
        const ssize_t count = ::read(from.get(), buffer, sizeof buffer);
        if (count == 0)
            break;
        if (count > 0)
            replacement.write({buffer, static_cast<std::size_t>(count)});
        else if (errno != EINTR)
            throw failureFromErrno(errno, source.string());
    }
    replacement.finish();
}

void deleteFile(const Path& path, bool force) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        throw failureFromErrno(errno, path.string());
    if (!force && S_ISREG(status.st_mode) && !(status.st_mode & S_IWUSR))
        throw makeFailure(permissionDenied, path.string());
    requireWritable(folderOf(path));
    if (::unlink(path.c_str()) != 0)
        throw failureFromErrno(errno == EISDIR ? EACCES : errno, path.string());
}

bool isReadOnly(const Path& path) {
    return !(statusOf(path).st_mode & S_IWUSR);
}

void setReadOnly(const Path& path, bool readOnly) {
    const mode_t mode = statusOf(path).st_mode & 07777u;
    if (::chmod(path.c_str(), readOnly ? mode & ~mode_t{0222} : mode | S_IWUSR) != 0)
        throw failureFromErrno(errno, path.string());
}

std::vector<Entry> listFiles(const Path& folder) {
    if (!folderExists(folder))
        throw makeFailure(pathNotFound, folder.string());
    std::vector<Entry> entries;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        struct stat status {};
        // A file that vanished since the folder was read is no longer one of its files.
        if (::stat(entry->path().c_str(), &status) != 0 || !S_ISREG(status.st_mode))
            continue;
        entries.push_back({entry->path().filename().string(), static_cast<std::uint64_t>(status.st_size),
                           std::chrono::system_clock::from_time_t(status.st_mtim.tv_sec) +
                               std::chrono::duration_cast<std::chrono::system_clock::duration>(
                                   std::chrono::nanoseconds(status.st_mtim.tv_nsec))});
    }
    if (error)
        throw failureFromErrno(error.value(), folder.string());
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

std::string readFile(const Path& path, std::uint64_t limit) {
    const Descriptor file = openForReading(path);
    std::string content;
    char buffer[1 << 16];
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count == 0)
            return content;
        if (count > 0)
            content.append(buffer, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            throw failureFromErrno(errno, path.string());
        if (content.size() > limit)
            throw makeFailure(pathFileAccessError,
                              path.string() + " is larger than " + std::to_string(limit) + " bytes");
    }
}

void writeFile(const Path& path, std::string_view content, unsigned mode) {
    Replacement replacement(path, mode);
    replacement.write(content);
    replacement.finish();
}

DiskSpace diskSpace(const Path& path) {
    struct statvfs space {};
    if (::statvfs(path.c_str(), &space) != 0)
        throw makeFailure(pathNotFound, path.string());
    return {std::uint64_t{space.f_bavail} * space.f_frsize, std::uint64_t{space.f_blocks} * space.f_frsize};
}

}  // namespace platform::files
