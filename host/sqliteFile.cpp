#include "host/sqliteFile.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/failure.h"
#include "platform/files/descriptor.h"

namespace host {

void SqliteFile::CloseHandle::operator()(sqlite3* handle) const noexcept {
    sqlite3_close_v2(handle);
}

void SqliteFile::FinalizeStatement::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

SqliteFile::SqliteFile(const std::filesystem::path& file, bool create) : name_(file.string()) {
    sqlite3* raw = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(name_.c_str(), &raw, flags, nullptr);
    handle_.reset(raw);
    if (code != SQLITE_OK)
        fail();
    sqlite3_busy_timeout(raw, 5000);
}

void SqliteFile::fail() const {
    throw platform::Failure(platform::providerError,
                            std::string(sqlite3_errmsg(handle_.get())) + " (" + name_ + ")");
}

void SqliteFile::run(const char* statements) {
    if (sqlite3_exec(handle_.get(), statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

std::string SqliteFile::firstValue(const char* statement) {
    std::string value;
    const auto take = [](void* target, int count, char** values, char**) {
        if (count > 0 && values[0])
            *static_cast<std::string*>(target) = values[0];
        return 1;  // one row is enough
    };
    const int code = sqlite3_exec(handle_.get(), statement, take, &value, nullptr);
    if (code != SQLITE_OK && code != SQLITE_ABORT)
        fail();
    return value;
}

SqliteFile::Insert::Insert(SqliteFile& file, const char* statement) : file_(file) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(file.handle_.get(), statement, -1, &raw, nullptr) != SQLITE_OK)
        file.fail();
    statement_.reset(raw);
}

void SqliteFile::Insert::operator()(std::initializer_list<std::string_view> values) {
    int parameter = 0;
    for (const std::string_view value : values)
        sqlite3_bind_text(statement_.get(), ++parameter, value.data(), static_cast<int>(value.size()),
                          SQLITE_TRANSIENT);
    const int code = sqlite3_step(statement_.get());
    sqlite3_reset(statement_.get());
    if (code != SQLITE_DONE)
        file_.fail();
}

void replaceDatabase(const std::filesystem::path& file, const std::function<void(SqliteFile&)>& fill) {
    const std::filesystem::path fresh = file.string() + ".new";
    std::error_code ignored;
    std::filesystem::remove(fresh, ignored);
    // Made here and not by the engine, so that nobody else can read it at any moment.
    if (!platform::Descriptor(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)))
        throw platform::failureFromErrno(errno, fresh.string());
    {
        SqliteFile database(fresh, false);
        database.run("PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL; BEGIN IMMEDIATE");
        fill(database);
        database.run("COMMIT");
    }
    if (rename(fresh.c_str(), file.c_str()) != 0)
        throw platform::failureFromErrno(errno, file.string());
}

}  // namespace host
