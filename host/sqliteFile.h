// A database file that is being made: the recordset layer only opens what is there.
#pragma once

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace host {

class SqliteFile {
  public:
    // Opens `file`, creating it where `create` is set. Raises platform::Failure with the engine's text.
    SqliteFile(const std::filesystem::path& file, bool create);

    // Runs statements without parameters. Raises platform::Failure.
    void run(const char* statements);
    // The first column of the first row; empty without a row.
    std::string firstValue(const char* statement);

    struct CloseHandle {
        void operator()(sqlite3* handle) const noexcept;
    };
    struct FinalizeStatement {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    // A statement that is run again and again with other texts.
    class Insert {
      public:
        Insert(SqliteFile& file, const char* statement);
        // Parameters from 1 on. Raises platform::Failure.
        void operator()(std::initializer_list<std::string_view> values);

      private:
        SqliteFile& file_;
        std::unique_ptr<sqlite3_stmt, FinalizeStatement> statement_;
    };

  private:
    [[noreturn]] void fail() const;

    std::string name_;
    std::unique_ptr<sqlite3, CloseHandle> handle_;
};

// Lets `fill` make a database beside `file` and puts it in the file's place once it is whole.
void replaceDatabase(const std::filesystem::path& file, const std::function<void(SqliteFile&)>& fill);

}  // namespace host
