#include "support/temporaryHost.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <fstream>
#include <memory>

#include "core/classLog.h"
#include "core/state.h"
#include "host/provision.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"

namespace support {

namespace fs = std::filesystem;

namespace {

std::string machineKey(std::string_view path) {
    return "HKEY_LOCAL_MACHINE\\" + std::string(path);
}

}  // namespace

TemporaryHost::TemporaryHost() {
    std::string pattern = (fs::temp_directory_path() / "qln-test-XXXXXX").string();
    root_ = mkdtemp(pattern.data());
    for (const char* folder : {"Host", "Host/menu", "QLNAdmin", "Service", "Database"})
        fs::create_directories(root_ / folder);
    platform::host::setFolder(root_ / "Host");
    platform::program::setFile(programFolder() / "QLNAdmin");
    host::createTemplateDatabase(databaseFolder() / "QLNDB_FRESH.MDB");
    core::resetState();
    core::resetLog();
}

TemporaryHost::~TemporaryHost() {
    core::resetState();
    core::resetLog();
    platform::host::setFolder({});
    platform::program::setFile({});
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void TemporaryHost::openConfiguration() {
    if (!fs::exists(databaseFile()))
        fs::copy_file(databaseFolder() / "QLNDB_FRESH.MDB", databaseFile());
    core::gDatabase.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + databaseFile().string());
}

void TemporaryHost::makeDirectory(const std::vector<std::string>& statements) {
    Database directory(platform::host::directoryDatabase());
    for (const std::string& statement : statements)
        directory.run(statement);
}

void TemporaryHost::createRegistryKey(std::string_view path) {
    platform::registry().createKey(machineKey(path));
}

void TemporaryHost::setRegistry(std::string_view path, std::string_view name, std::string text) {
    createRegistryKey(path);
    platform::registry().setValue(machineKey(path), name, std::move(text));
}

void TemporaryHost::setRegistry(std::string_view path, std::string_view name, std::uint32_t number) {
    createRegistryKey(path);
    platform::registry().setValue(machineKey(path), name, number);
}

std::vector<std::string> TemporaryHost::logLines() const {
    std::ifstream file(core::gLog().strLogFile());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        if (line.size() > 8 && line[2] == ':' && line[5] == ':')
            lines.push_back(line.substr(8));
    return lines;
}

long TemporaryHost::countInLog(std::string_view level, std::string_view procedure,
                               std::string_view text) const {
    long count = 0;
    for (const std::string& line : logLines()) {
        const std::size_t end = line.find(") ");
        if (line.find(std::string(level) + ":(") == std::string::npos || end == std::string::npos ||
            !line.substr(0, end).ends_with("]" + std::string(procedure)))
            continue;
        const std::size_t start = line.find_first_not_of(' ', end + 1);
        count += start != std::string::npos && line.substr(start).starts_with(text) ? 1 : 0;
    }
    return count;
}

long TemporaryHost::countInLog(std::string_view text) const {
    long count = 0;
    for (const std::string& line : logLines())
        count += line.find(text) != std::string::npos ? 1 : 0;
    return count;
}

void Database::Close::operator()(sqlite3* handle) const {
    sqlite3_close(handle);
}

Database::Database(const fs::path& file, bool readOnly) {
    sqlite3* raw = nullptr;
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    EXPECT_EQ(sqlite3_open_v2(file.c_str(), &raw, flags, nullptr), SQLITE_OK) << file;
    handle_.reset(raw);
    sqlite3_busy_timeout(raw, 5000);
}

void Database::run(const std::string& statements) {
    EXPECT_EQ(sqlite3_exec(handle_.get(), statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << statements << ": " << sqlite3_errmsg(handle_.get());
}

bool Database::canRun(const std::string& statement) {
    sqlite3_busy_timeout(handle_.get(), 0);
    return sqlite3_exec(handle_.get(), statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::vector<std::string> Database::query(const std::string& statement) {
    std::vector<std::string> rows;
    const auto collect = [](void* target, int count, char** values, char**) {
        std::string row;
        for (int i = 0; i < count; ++i)
            row.append(i == 0 ? "" : "|").append(values[i] ? values[i] : "NULL");
        static_cast<std::vector<std::string>*>(target)->push_back(row);
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(handle_.get(), statement.c_str(), collect, &rows, nullptr), SQLITE_OK)
        << statement << ": " << sqlite3_errmsg(handle_.get());
    return rows;
}

std::vector<std::string> query(const fs::path& database, const std::string& statement) {
    return Database(database, true).query(statement);
}

void run(const fs::path& database, const std::string& statements) {
    Database(database).run(statements);
}

}  // namespace support
