// A folder for one run of the benchmarks, with the databases that both sides of a row work on.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

// Gone with the object.
class Folder {
  public:
    explicit Folder(const std::filesystem::path& parent);
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// Makes a configuration database from the template and adds events.
void makeDatabase(const std::filesystem::path& file, int events);

// The engine's C interface, opened as the console opens it: same flags, pragmas and durability.
struct CloseEngine {
    void operator()(sqlite3* handle) const noexcept;
};
using Engine = std::unique_ptr<sqlite3, CloseEngine>;
Engine openBare(const std::filesystem::path& file);

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const noexcept;
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;
Statement prepare(const Engine& engine, const std::string& text);

// Ends the program with a message: a row whose work failed must not be told as a time.
void insist(bool holds, const std::string& message);

}  // namespace bench
