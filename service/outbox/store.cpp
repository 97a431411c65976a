#include "service/outbox/store.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/failure.h"
#include "platform/files/descriptor.h"

namespace service {

namespace {

constexpr int longestWait = 500;  // milliseconds, for a lock

[[noreturn]] void fail(sqlite3* engine, const std::string& name = {}) {
    std::string text = engine ? sqlite3_errmsg(engine) : "out of memory";
    if (!name.empty())
        text += ": " + name;
    const int code = engine ? sqlite3_errcode(engine) & 0xff : SQLITE_NOMEM;
    const bool isDamaged = code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
    throw platform::Failure(isDamaged ? storeDamaged : platform::providerError, text, storeName);
}

}  // namespace

Query::~Query() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

Query& Query::with(std::int64_t number) {
    sqlite3_bind_int64(statement_, ++parameters_, number);
    return *this;
}

Query& Query::with(const std::string& text) {
    sqlite3_bind_text(statement_, ++parameters_, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
    return *this;
}

bool Query::next() {
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        fail(engine_);
    return code == SQLITE_ROW;
}

std::int64_t Query::number(int column) const {
    return sqlite3_column_int64(statement_, column);
}

std::string Query::text(int column) const {
    const unsigned char* const text = sqlite3_column_text(statement_, column);
    const int size = sqlite3_column_bytes(statement_, column);
    return text ? std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size))
                : std::string();
}

void Store::Close::operator()(sqlite3* engine) const noexcept {
    sqlite3_close_v2(engine);
}

void Store::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Store::Store(const std::filesystem::path& file, Access access) : name_(file.string()) {
    const bool isOwner = access == Access::owner;
    const bool isReader = access == Access::reader;
    // The engine would create it with the rights of the process's mask, and follow a link.
    platform::Descriptor made(
        ::open(name_.c_str(),
               (isReader ? O_RDONLY : O_RDWR) | (isOwner ? O_CREAT : 0) | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!made)
        throw platform::failureFromErrno(errno, name_);
    // Closing any descriptor of the file would later take away the engine's lock on it.
    made = platform::Descriptor();
    sqlite3* engine = nullptr;
    const int code = sqlite3_open_v2(
        name_.c_str(), &engine,
        (isReader ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOFOLLOW, nullptr);
    engine_.reset(engine);
    if (code != SQLITE_OK)
        fail(engine, name_);
    sqlite3_busy_timeout(engine, longestWait);
    // Full: what was promised to be told survives a loss of power.
    if (isOwner)
        run("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA journal_size_limit = 4194304;");
    if (access == Access::writer)
        run("PRAGMA synchronous = FULL;");
}

Store::~Store() = default;

void Store::run(const char* statements) {
    if (sqlite3_exec(engine_.get(), statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(engine_.get(), name_);
}

Query Store::query(const char* statement) {
    auto& kept = statements_[statement];
    if (!kept) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare_v3(engine_.get(), statement, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr) !=
            SQLITE_OK)
            fail(engine_.get(), name_);
        kept.reset(prepared);
    }
    return Query(kept.get(), engine_.get());
}

std::int64_t Store::lastKey() const {
    return sqlite3_last_insert_rowid(engine_.get());
}

int Store::changes() const {
    return sqlite3_changes(engine_.get());
}

Store::Transaction::~Transaction() {
    if (isOpen_)
        sqlite3_exec(store_.engine_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Store::Transaction::commit() {
    store_.run("COMMIT");
    isOpen_ = false;
}

std::unique_ptr<Store> storeIfThere(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0)
        return std::make_unique<Store>(file, Store::Access::reader);
    if (errno == ENOENT || errno == ENOTDIR)
        return nullptr;
    throw platform::failureFromErrno(errno, file.string());
}

}  // namespace service
