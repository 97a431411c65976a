// Prepared statements that a connection keeps for the next time that their text comes: planning a join takes
// many times longer than running it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

namespace platform::ado {

class StatementCache;

// Owns a prepared statement: gives it back to the cache that it came from, or finalizes it where there is
// none or the connection was closed meanwhile.
struct Release {
    std::weak_ptr<StatementCache> cache;
    std::string text;
    void operator()(sqlite3_stmt* statement) noexcept;
};
using OwnedStatement = std::unique_ptr<sqlite3_stmt, Release>;

class StatementCache {
  public:
    StatementCache();
    ~StatementCache();
    StatementCache(const StatementCache&) = delete;
    StatementCache& operator=(const StatementCache&) = delete;

    // The kept statement of that text, which is the caller's then; null when there is none.
    sqlite3_stmt* take(std::string_view text) noexcept;
    // Keeps a reset statement; the one that was not used for longest goes when there are too many.
    void give(std::string text, sqlite3_stmt* statement) noexcept;

  private:
    struct Entry {
        std::string text;
        sqlite3_stmt* statement;
    };
    std::vector<Entry> entries_;  // the latest at the end
};

}  // namespace platform::ado
