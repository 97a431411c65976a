#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/ado/odbc.h"
#include "platform/ado/statement.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"

namespace platform {

namespace {

thread_local std::chrono::milliseconds lockPatience{5000};
constexpr char engineName[] = "SQLite";
constexpr char directoryKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\CorvaneDb";

bool writeProtected(const std::string& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) == 0;
}

// Asks for a lock again every fifth of a millisecond until the timeout. The engine's own handler soon asks
// only every tenth of a second, and then misses each of the short moments that a service which writes without
// a pause leaves free. `asked` counts the calls for one lock.
int waitForLock(void*, int asked) {
    using Clock = std::chrono::steady_clock;
    thread_local Clock::time_point begin;
    if (asked == 0)
        begin = Clock::now();
    if (Clock::now() - begin >= lockPatience)
        return 0;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
    return 1;
}

bool concernsTheFile(int primaryCode) {
    switch (primaryCode) {
        case SQLITE_PERM:
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_READONLY:
        case SQLITE_IOERR:
        case SQLITE_CORRUPT:
        case SQLITE_FULL:
        case SQLITE_CANTOPEN:
        case SQLITE_PROTOCOL:
        case SQLITE_NOTADB:
            return true;
        default:
            return false;
    }
}

// The engine has one code for all that is wrong with a statement; its text tells the cases apart.
long statementNumber(std::string_view text, bool directory) {
    if (directory)
        return statementFailed;
    if (text.starts_with("no such table:"))
        return tableMissing;
    if (text.starts_with("no such column:") ||
        (text.starts_with("table ") && text.find(" has no column named ") != std::string_view::npos))
        return columnMissing;
    return statementFailed;
}

long failureNumber(int primaryCode, std::string_view text, bool directory) {
    if (concernsTheFile(primaryCode))
        return providerError;
    switch (primaryCode) {
        case SQLITE_CONSTRAINT:
            return constraintViolated;
        case SQLITE_ERROR:
        case SQLITE_MISMATCH:
        case SQLITE_RANGE:
        case SQLITE_TOOBIG:
            return statementNumber(text, directory);
        default:
            return providerError;
    }
}

Failure describe(int code, std::string text, const std::string& file, bool directory,
                 std::string_view statement) {
    const int primaryCode = code & 0xff;
    const long number = failureNumber(primaryCode, text, directory);
    if (number == providerError && !file.empty())
        text += ": " + file;
    if (!statement.empty())
        text += " [" + std::string(statement) + "]";
    return Failure(number, std::move(text), engineName);
}

std::string engineText(sqlite3* handle, int code) {
    if (handle && sqlite3_extended_errcode(handle) == code)
        return sqlite3_errmsg(handle);
    return sqlite3_errstr(code);
}

void runSetting(sqlite3* handle, const char* statement, const std::string& file) {
    const int code = sqlite3_exec(handle, statement, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        throw describe(code, engineText(handle, code), file, false, {});
}

// False when the file is locked past the timeout. That fails no open, since each statement waits for itself.
bool runUnlessLocked(sqlite3* handle, const char* statement, const std::string& file) {
    const int code = sqlite3_exec(handle, statement, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK && (code & 0xff) != SQLITE_BUSY)
        throw describe(code, engineText(handle, code), file, false, {});
    return code == SQLITE_OK;
}

void switchSetting(sqlite3* handle, int setting, int value, const std::string& file) {
    const int code = sqlite3_db_config(handle, setting, value, nullptr);
    if (code != SQLITE_OK)
        throw describe(code, engineText(handle, code), file, false, {});
}

struct Target {
    std::string dataSource;
    std::string catalog;
    bool readOnly = false;
};

Target parseConnectionString(std::string_view text) {
    Target target;
    std::string provider;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(';'), text.size());
        const std::string_view setting = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t equals = setting.find('=');
        if (equals == std::string_view::npos)
            continue;
        const std::string key = foldAscii(ado::trimmed(setting.substr(0, equals)));
        const std::string value(ado::trimmed(setting.substr(equals + 1)));
        if (key == "provider")
            provider = foldAscii(value);
        else if (key == "data source")
            target.dataSource = value;
        else if (key == "initial catalog")
            target.catalog = value;
        else if (key == "mode")
            target.readOnly = foldAscii(value) == "read";
    }
    // A catalog wins: for the directory's provider the data source would name a server.
    if (!target.catalog.empty())
        target.dataSource.clear();
    const std::string_view expected = target.catalog.empty() ? "microsoft.jet.oledb.4.0" : "sqloledb";
    if (!provider.empty() && !provider.starts_with(expected))
        throw makeFailure(invalidProcedureCall, provider);
    if (target.catalog.empty() && target.dataSource.empty())
        throw makeFailure(invalidProcedureCall);
    return target;
}

// The data source that the host names for its directory; empty for the embedded one.
std::string directoryDataSource() {
    return registry().text(directoryKey, "DataSource").value_or(std::string());
}

// The host has one directory of one name.
void requireDirectory(const std::string& catalog) {
    if (!equalsIgnoringAsciiCase(catalog, "CorvaneDb"))
        throw describe(SQLITE_CANTOPEN, engineText(nullptr, SQLITE_CANTOPEN), catalog, true, {});
}

}  // namespace

namespace ado {

void EngineClose::operator()(sqlite3* handle) const noexcept {
    // Statements of recordsets that are still open keep the handle alive until they close.
    sqlite3_close_v2(handle);
}

Engine openEngine(const std::string& file, bool readOnly, WhenLocked whenLocked) {
    // Made absolute so that no name is taken for a URI or for a database in memory.
    std::error_code ignored;
    const std::string path = std::filesystem::absolute(file, ignored).string();
    // Without the engine's own locks: a connection stays in its thread.
    const int flags = SQLITE_OPEN_NOMUTEX |
                      (readOnly || writeProtected(path) ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    Engine engine(opened);
    if (code != SQLITE_OK)
        throw describe(code, sqlite3_errstr(code), file, false, {});
    sqlite3_extended_result_codes(opened, 1);
    sqlite3_busy_handler(opened, waitForLock, nullptr);
    sqlite3_limit(opened, SQLITE_LIMIT_ATTACHED, 0);
    switchSetting(opened, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, file);
    switchSetting(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, file);
    switchSetting(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, file);
    switchSetting(opened, SQLITE_DBCONFIG_DQS_DDL, 0, file);
    switchSetting(opened, SQLITE_DBCONFIG_DQS_DML, 0, file);
    runSetting(opened, "PRAGMA cell_size_check = ON", file);
    // Full synchronisation and the rollback journal are what the engine does of itself; the settings below
    // hold it to that, and need the file.
    constexpr char readSchema[] = "SELECT count(*) FROM sqlite_master";
    bool read = true;
    if (whenLocked == WhenLocked::fails)
        runSetting(opened, readSchema, file);
    else
        read = runUnlessLocked(opened, readSchema, file);
    if (read)
        runUnlessLocked(opened, "PRAGMA synchronous = FULL", file);
    return engine;
}

Engine openDatabase(const std::string& file, bool readOnly, WhenLocked whenLocked) {
    std::error_code ignored;
    // The engine would wait for a pipe's other end.
    if (std::filesystem::exists(file, ignored) && !std::filesystem::is_regular_file(file, ignored))
        throw describe(SQLITE_CANTOPEN, "no ordinary file", file, false, {});
    // The engine counts one byte as none.
    if (std::filesystem::file_size(file, ignored) <= 1)
        throw describe(SQLITE_NOTADB, sqlite3_errstr(SQLITE_NOTADB), file, false, {});
    return openEngine(file, readOnly, whenLocked);
}

}  // namespace ado

void setLockPatience(std::chrono::milliseconds patience) {
    lockPatience = patience;
}

Connection::~Connection() {
    close();
}

void Connection::open(const std::string& connectionString) {
    if (state() == ObjectState::open)
        throw makeFailure(objectOpen);
    errors_.clear();
    try {
        const Target target = parseConnectionString(connectionString);
        directory_ = !target.catalog.empty();
        fileName_ = target.dataSource;
        if (directory_) {
            requireDirectory(target.catalog);
            if (const std::string dataSource = directoryDataSource(); !dataSource.empty()) {
                fileName_ = dataSource;
                server_ = ado::connectServer(dataSource);
                return;
            }
            fileName_ = host::directoryDatabase().string();
        }
        ado::Engine engine = ado::openDatabase(fileName_, directory_ || target.readOnly);
        if (directory_) {
            runSetting(engine.get(), "PRAGMA query_only = ON", fileName_);
            // Room for a large directory, which a search for everybody sorts as a whole.
            runSetting(engine.get(), "PRAGMA cache_size = -32768", fileName_);
        } else if (sqlite3_db_readonly(engine.get(), "main") == 0) {
            runUnlessLocked(engine.get(), "PRAGMA journal_mode = DELETE", fileName_);
        }
        handle_ = engine.release();
    } catch (const Failure& failure) {
        errors_.push_back(failure);
        throw;
    }
}

void Connection::close() noexcept {
    ado::EngineClose()(std::exchange(handle_, nullptr));
    server_.reset();
}

std::string Connection::damage() const {
    sqlite3_stmt* prepared = nullptr;
    const int code = sqlite3_prepare_v2(handle(), "PRAGMA quick_check(1)", -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(prepared, &sqlite3_finalize);
    const int step = code == SQLITE_OK ? sqlite3_step(prepared) : code;
    if ((step & 0xff) == SQLITE_BUSY)
        return {};
    if (step != SQLITE_ROW)
        return engineText(handle(), step);
    const auto* found = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
    return found && std::string_view(found) != "ok" ? found : std::string();
}

sqlite3* Connection::handle() const {
    if (server_)
        throw makeFailure(updatingNotSupported);
    if (!handle_)
        throw makeFailure(connectionClosed);
    return handle_;
}

Failure engineFailure(const Connection& connection, int code, std::string_view statement) {
    return describe(code, engineText(connection.handle(), code), connection.fileName(),
                    connection.isDirectory(), statement);
}

std::unique_ptr<ado::RowSource> ado::openRows(const Connection& connection, const Query& source) {
    if (connection.server())
        return openServerRows(connection.server(), spelledOut(source));
    connection.handle();
    auto statement = std::make_unique<Statement>(prepareSource(connection, source));
    if (sqlite3_column_count(statement->get()) > 0)
        return statement;
    statement->step();
    return nullptr;
}

void execute(const Query& statement, Connection& connection) {
    const std::unique_ptr<ado::RowSource> rows = ado::openRows(connection, statement);
    while (rows && rows->step()) {
    }
}

}  // namespace platform
