#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/ado/ado.h"
#include "platform/ado/statement.h"
#include "platform/files/descriptor.h"

namespace platform {

namespace {

constexpr mode_t permissionBits = 07777;

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0)
        return status;
    if (errno != ENOENT)
        throw failureFromErrno(errno, path);
    return std::nullopt;
}

bool isSameFile(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// The file beside the target that the copy grows in. Its name is always the same, so that one left by a
// crash is taken over; a lock on it keeps two backups apart. Removed unless it was moved to its place.
class GrowingFile {
  public:
    explicit GrowingFile(const std::string& target) : path_(target + ".new") {
        Descriptor opened(::open(path_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!opened)
            throw failureFromErrno(errno, path_);
        if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0)
            throw makeFailure(permissionDenied, path_);
        struct stat own {};
        const auto named = statusOf(path_);
        if (::fstat(opened.get(), &own) != 0 || !named || !isSameFile(own, *named))
            throw makeFailure(permissionDenied, path_);  // another backup has just moved it
        descriptor_ = std::move(opened);
        // Journals of a crashed backup would be played back into this one.
        removeJournals();
        if (::ftruncate(descriptor_.get(), 0) != 0 || ::fchmod(descriptor_.get(), 0600) != 0) {
            const Failure failure = failureFromErrno(errno, path_);
            ::unlink(path_.c_str());
            throw failure;
        }
    }
    ~GrowingFile() {
        if (moved_)
            return;
        ::unlink(path_.c_str());
        removeJournals();
    }
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

    const std::string& path() const { return path_; }

    void moveTo(const std::string& target, mode_t mode) {
        if (::fchmod(descriptor_.get(), mode) != 0 || ::fsync(descriptor_.get()) != 0 ||
            std::rename(path_.c_str(), target.c_str()) != 0)
            throw failureFromErrno(errno, target);
        moved_ = true;
        const std::string folder = std::filesystem::absolute(target).parent_path().string();
        const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!opened || ::fsync(opened.get()) != 0)
            throw failureFromErrno(errno, folder);
    }

  private:
    void removeJournals() const {
        for (const char* ending : {"-journal", "-wal", "-shm"})
            ::unlink((path_ + ending).c_str());
    }

    std::string path_;
    Descriptor descriptor_;
    bool moved_ = false;
};

[[noreturn]] void raise(sqlite3* handle, int code, const std::string& file) {
    const long number = (code & 0xff) == SQLITE_FULL ? diskFull : providerError;
    throw Failure(number, std::string(handle ? sqlite3_errmsg(handle) : sqlite3_errstr(code)) + ": " + file,
                  "SQLite");
}

void runOn(sqlite3* handle, const char* statement, const std::string& file) {
    const int code = sqlite3_exec(handle, statement, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        raise(handle, code, file);
}

struct BackupFinish {
    void operator()(sqlite3_backup* backup) const noexcept { sqlite3_backup_finish(backup); }
};

// Pages are copied as they are, so a damaged source gives a damaged copy. What the check says about pages
// begins with stars; what it may say about rows is no damage.
void requireUndamaged(const ado::Engine& copy, const std::string& source) {
    bool damaged = false;
    const auto look = [](void* result, int, char** values, char**) {
        *static_cast<bool*>(result) = values[0] && std::string_view(values[0]).starts_with("***");
        return 0;
    };
    const int code = sqlite3_exec(copy.get(), "PRAGMA quick_check(1)", look, &damaged, nullptr);
    if (damaged || (code & 0xff) == SQLITE_CORRUPT || (code & 0xff) == SQLITE_NOTADB)
        raise(nullptr, SQLITE_CORRUPT, source);
}

void copyPages(const std::string& source, const std::string& copy) {
    const ado::Engine from = ado::openDatabase(source, false, ado::WhenLocked::fails);
    const ado::Engine into = ado::openEngine(copy, false);
    // Nobody else reads the copy, and a broken one is thrown away: it needs neither journal nor syncs.
    runOn(into.get(), "PRAGMA journal_mode = MEMORY", copy);
    runOn(into.get(), "PRAGMA synchronous = OFF", copy);
    std::unique_ptr<sqlite3_backup, BackupFinish> backup(
        sqlite3_backup_init(into.get(), "main", from.get(), "main"));
    if (!backup)
        raise(into.get(), sqlite3_errcode(into.get()), copy);
    // All pages in one go, under one read lock: a writer can then neither mix into them nor make it start
    // again for ever.
    const int code = sqlite3_backup_step(backup.get(), -1);
    if (code != SQLITE_DONE)
        raise(nullptr, code, source);
    const int finished = sqlite3_backup_finish(backup.release());
    if (finished != SQLITE_OK)
        raise(nullptr, finished, copy);
    // The source may have been left in the engine's other journal mode; a copy of one file must not be.
    runOn(into.get(), "PRAGMA journal_mode = DELETE", copy);
    requireUndamaged(into, source);
}

}  // namespace

void backupDatabase(const std::string& source, const std::string& target) {
    const auto sourceStatus = statusOf(source);
    if (!sourceStatus)
        throw failureFromErrno(ENOENT, source);
    if (!S_ISREG(sourceStatus->st_mode))
        throw makeFailure(fileNotFound, source);
    const auto targetStatus = statusOf(target);
    if (targetStatus && (isSameFile(*sourceStatus, *targetStatus) || !(targetStatus->st_mode & S_IWUSR)))
        throw makeFailure(permissionDenied, target);
    GrowingFile growing(target);
    copyPages(source, growing.path());
    growing.moveTo(target, targetStatus ? targetStatus->st_mode & permissionBits : 0600);
}

}  // namespace platform
