// The engine behind the outbox: one database file of the service's own, and statements that are kept
// prepared.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/failure.h"

struct sqlite3;
struct sqlite3_stmt;

namespace service {

// Number of the failure of a file whose content is damaged.
inline constexpr long storeDamaged = platform::pathFileAccessError;
// The source that failures of a store name.
inline constexpr char storeName[] = "outbox";

// A statement on its way: parameters first, then its rows. It is free again when this goes.
class Query {
  public:
    explicit Query(sqlite3_stmt* statement, sqlite3* engine) : statement_(statement), engine_(engine) {}
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    // Parameters in their order.
    Query& with(std::int64_t number);
    Query& with(const std::string& text);
    // The next row; false when there is none. Raises platform::Failure.
    bool next();
    // Runs a statement without rows. Raises platform::Failure.
    void run() { next(); }
    // Columns of the present row, from 0 on; Null is 0 and an empty text.
    std::int64_t number(int column) const;
    std::string text(int column) const;

  private:
    sqlite3_stmt* statement_;
    sqlite3* engine_;
    int parameters_ = 0;
};

class Store {
  public:
    enum class Access { owner, writer, reader };
    // Opens the file; its owner creates it when it is missing, for the owner alone. A writer adds to what the
    // owner has made. Raises platform::Failure.
    explicit Store(const std::filesystem::path& file, Access access = Access::owner);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // Runs statements without parameters. Raises platform::Failure.
    void run(const char* statements);
    // One of the program's own constant statements. Raises platform::Failure.
    Query query(const char* statement);
    // Key of the row that was inserted last; rows that the last statement changed.
    std::int64_t lastKey() const;
    int changes() const;

    // Everything between this and commit() happens or nothing.
    class Transaction {
      public:
        explicit Transaction(Store& store) : store_(store) { store_.run("BEGIN IMMEDIATE"); }
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void commit();

      private:
        Store& store_;
        bool isOpen_ = true;
    };

  private:
    struct Close {
        void operator()(sqlite3* engine) const noexcept;
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    std::string name_;
    std::unique_ptr<sqlite3, Close> engine_;
    std::map<const char*, std::unique_ptr<sqlite3_stmt, Finalize>> statements_;  // by the constant's address
};

// The file for a reader; nothing when there is none. Raises platform::Failure for one that cannot be reached
// or read.
std::unique_ptr<Store> storeIfThere(const std::filesystem::path& file);

}  // namespace service
