#include "platform/adoStatementCache.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace platform::ado {

namespace {
constexpr std::size_t mostStatements = 32;  // the stores have about twenty
}

void Release::operator()(sqlite3_stmt* statement) noexcept {
    const std::shared_ptr<StatementCache> open = cache.lock();
    if (!open) {
        sqlite3_finalize(statement);
        return;
    }
    // A statement that is not reset would keep its lock on the file.
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    open->give(std::move(text), statement);
}

StatementCache::StatementCache() {
    entries_.reserve(mostStatements);
}

StatementCache::~StatementCache() {
    for (const Entry& entry : entries_)
        sqlite3_finalize(entry.statement);
}

sqlite3_stmt* StatementCache::take(std::string_view text) noexcept {
    const auto found = std::find_if(entries_.rbegin(), entries_.rend(),
                                    [&](const Entry& entry) { return entry.text == text; });
    if (found == entries_.rend())
        return nullptr;
    sqlite3_stmt* statement = found->statement;
    entries_.erase(std::next(found).base());
    return statement;
}

void StatementCache::give(std::string text, sqlite3_stmt* statement) noexcept {
    if (entries_.size() == mostStatements) {
        sqlite3_finalize(entries_.front().statement);
        entries_.erase(entries_.begin());
    }
    entries_.push_back({std::move(text), statement});
}

}  // namespace platform::ado
