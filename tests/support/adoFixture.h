// Database files in a folder of their own for the tests of platform/ado, made with the engine itself.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/ado/ado.h"
#include "support/temporaryHost.h"

namespace adoTest {

class Folder {
  public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "adoXXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// Another program's handle on a file.
class Other : public support::Database {
  public:
    using support::Database::Database;
    // Rows as text, divided by blanks.
    std::string read(const std::string& statement) {
        std::string result;
        for (const std::string& row : query(statement))
            result += (result.empty() ? "" : " ") + row;
        return result;
    }
};

inline std::string openString(const std::string& file) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file;
}

// The number of the failure that the action raises; 0 without one. Its text goes to `description`.
template <typename Action>
long failureOf(Action&& action, std::string* description = nullptr) {
    try {
        action();
    } catch (const platform::Failure& failure) {
        if (description)
            *description = failure.description();
        return failure.number();
    }
    return 0;
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A database with tables as the configuration has them, and a connection to it.
class Database : public testing::Test {
  protected:
    void SetUp() override {
        other.run(
            "CREATE TABLE Events (EventKey INTEGER PRIMARY KEY AUTOINCREMENT, EventSource TEXT(10) COLLATE "
            "NOCASE UNIQUE, EventId LONG, EventType SHORT, EventActive BOOLEAN DEFAULT 0, EventLast "
            "DATETIME);"
            "CREATE TABLE Device (DeviceKey LONG, Address TEXT COLLATE NOCASE);"
            "CREATE TABLE Link (DeviceKey LONG, EventKey LONG);"
            "CREATE TABLE \"31Sources\" (EventSource TEXT)");
        connection.open(openString(file));
        sqlite3_busy_timeout(connection.handle(), 60);
    }
    // Devices 1 to `count` with the addresses a1 to a99 and a0, over and over.
    void fillDevices(int count) {
        other.run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                  std::to_string(count) + ") INSERT INTO Device SELECT i, 'a' || (i % 100) FROM n");
    }
    platform::Recordset write(const std::string& source,
                              platform::LockType lock = platform::LockType::optimistic) {
        platform::Recordset rows;
        rows.open(source, connection, platform::CursorType::keyset, lock);
        return rows;
    }

    Folder folder;
    std::string file = folder.file("QLNDB.MDB");
    Other other{file};
    platform::Connection connection;
};

}  // namespace adoTest
