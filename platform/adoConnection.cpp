#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/ado.h"
#include "platform/adoDialect.h"
#include "platform/adoStatement.h"
#include "platform/adoStatementCache.h"
#include "platform/host.h"

namespace platform {

namespace {

constexpr int busyTimeoutMilliseconds = 5000;
constexpr char engineName[] = "SQLite";

bool writeProtected(const std::string& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) == 0;
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

void switchSetting(sqlite3* handle, int setting, int value, const std::string& file) {
    const int code = sqlite3_db_config(handle, setting, value, nullptr);
    if (code != SQLITE_OK)
        throw describe(code, engineText(handle, code), file, false, {});
}

struct Target {
    std::string dataSource;
    std::string catalog;
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
        const std::string key = ado::lowerCase(ado::trimmed(setting.substr(0, equals)));
        const std::string value(ado::trimmed(setting.substr(equals + 1)));
        if (key == "provider")
            provider = ado::lowerCase(value);
        else if (key == "data source")
            target.dataSource = value;
        else if (key == "initial catalog")
            target.catalog = value;
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

std::string directoryFile(const std::string& catalog) {
    // The embedded directory is one database of one name.
    if (!ado::equalsIgnoringCase(catalog, "CorvaneDb"))
        throw describe(SQLITE_CANTOPEN, engineText(nullptr, SQLITE_CANTOPEN), catalog, true, {});
    return host::directoryDatabase().string();
}

}  // namespace

namespace ado {

void EngineClose::operator()(sqlite3* handle) const noexcept {
    // Statements of recordsets that are still open keep the handle alive until they close.
    sqlite3_close_v2(handle);
}

Engine openEngine(const std::string& file, bool readOnly) {
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
    sqlite3_busy_timeout(opened, busyTimeoutMilliseconds);
    sqlite3_limit(opened, SQLITE_LIMIT_ATTACHED, 0);
    switchSetting(opened, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, file);
    switchSetting(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, file);
    switchSetting(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, file);
    switchSetting(opened, SQLITE_DBCONFIG_DQS_DDL, 0, file);
    switchSetting(opened, SQLITE_DBCONFIG_DQS_DML, 0, file);
    runSetting(opened, "PRAGMA cell_size_check = ON", file);
    runSetting(opened, "PRAGMA synchronous = FULL", file);
    runSetting(opened, "SELECT count(*) FROM sqlite_master", file);
    return engine;
}

}  // namespace ado

Connection::~Connection() {
    close();
}

void Connection::open(const std::string& connectionString) {
    if (handle_)
        throw makeFailure(objectOpen);
    errors_.clear();
    try {
        const Target target = parseConnectionString(connectionString);
        directory_ = !target.catalog.empty();
        fileName_ = directory_ ? directoryFile(target.catalog) : target.dataSource;
        ado::Engine engine = ado::openEngine(fileName_, directory_);
        if (directory_)
            runSetting(engine.get(), "PRAGMA query_only = ON", fileName_);
        else if (sqlite3_db_readonly(engine.get(), "main") == 0)
            runSetting(engine.get(), "PRAGMA journal_mode = DELETE", fileName_);
        statements_ = std::make_shared<ado::StatementCache>();
        handle_ = engine.release();
    } catch (const Failure& failure) {
        errors_.push_back(failure);
        throw;
    }
}

void Connection::close() noexcept {
    statements_.reset();
    ado::EngineClose()(std::exchange(handle_, nullptr));
}

sqlite3* Connection::handle() const {
    if (!handle_)
        throw makeFailure(connectionClosed);
    return handle_;
}

Failure engineFailure(const Connection& connection, int code, std::string_view statement) {
    return describe(code, engineText(connection.handle(), code), connection.fileName(),
                    connection.isDirectory(), statement);
}

void execute(std::string_view statement, Connection& connection) {
    connection.handle();
    ado::Statement prepared = ado::prepareSource(connection, statement);
    while (prepared.step()) {
    }
}

}  // namespace platform
