// A host of its own for one test: folder, registry, installation tree with the database template, the
// program's folder; gone with the test. Shared state starts fresh.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/ado.h"
#include "platform/machine/clock.h"

namespace support {

class TemporaryHost {
  public:
    TemporaryHost();
    ~TemporaryHost();
    TemporaryHost(const TemporaryHost&) = delete;
    TemporaryHost& operator=(const TemporaryHost&) = delete;

    // The root that holds Host/, QLNAdmin/, Service/ and Database/.
    const std::filesystem::path& root() const { return root_; }
    std::filesystem::path programFolder() const { return root_ / "QLNAdmin"; }
    std::filesystem::path databaseFolder() const { return root_ / "Database"; }
    std::filesystem::path databaseFile() const { return databaseFolder() / "QLNDB.MDB"; }

    // Copies the template to QLNDB.MDB and opens gDatabase on it.
    void openConfiguration();
    // Makes the directory database from statements.
    void makeDirectory(const std::vector<std::string>& statements);
    // Sets a registry text or double word, creating the key; the path is below HKEY_LOCAL_MACHINE.
    void setRegistry(std::string_view path, std::string_view name, std::string text);
    void setRegistry(std::string_view path, std::string_view name, std::uint32_t number);
    void createRegistryKey(std::string_view path);

    // The lines of the present run's log without its header and without the time; empty when there is none.
    std::vector<std::string> logLines() const;
    // Number of log lines that contain the text.
    long countInLog(std::string_view text) const;
    // Number of lines of that level ("Info", "Warning", "ERROR", "VerInfo") and procedure whose text begins
    // so.
    long countInLog(std::string_view level, std::string_view procedure, std::string_view text) const;

  private:
    std::filesystem::path root_;
};

// An independent engine handle on a database file, as another program has it; waits five seconds for a lock.
class Database {
  public:
    explicit Database(const std::filesystem::path& file, bool readOnly = false);
    // Runs statements; fails the test when one fails.
    void run(const std::string& statements);
    // Whether a statement can run at once.
    bool canRun(const std::string& statement);
    // Rows of a query: fields joined by '|', Null as "NULL".
    std::vector<std::string> query(const std::string& statement);

  private:
    struct Close {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, Close> handle_;
};

// Rows of a query through an independent engine handle: fields joined by '|', Null as "NULL".
std::vector<std::string> query(const std::filesystem::path& database, const std::string& statement);
// Runs statements through an independent engine handle; fails the test when one fails.
void run(const std::filesystem::path& database, const std::string& statements);

// A clock that moves only when told to or when somebody sleeps on it.
class ManualClock : public platform::Clock {
  public:
    ManualClock() { platform::setClock(this); }
    ~ManualClock() override { platform::setClock(nullptr); }
    std::chrono::system_clock::time_point now() override { return now_; }
    void sleep(std::chrono::milliseconds duration) override {
        slept += duration;
        now_ += duration;
    }
    void set(std::chrono::system_clock::time_point moment) { now_ = moment; }

    std::chrono::milliseconds slept{0};

  private:
    std::chrono::system_clock::time_point now_ = std::chrono::system_clock::now();
};

}  // namespace support
