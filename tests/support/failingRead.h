// A read of the configuration database that fails, as one does that waits too long for a lock.
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <utility>

#include "core/state.h"

namespace support {

// As long as it lives, the read of that number fails, counted from 1 on among those whose statement has
// `words` in it.
class FailingRead {
  public:
    explicit FailingRead(int number, std::string words = {}) : left_(number), words_(std::move(words)) {
        sqlite3_trace_v2(core::gDatabase.handle(), SQLITE_TRACE_STMT, &begins, this);
    }
    ~FailingRead() { sqlite3_trace_v2(core::gDatabase.handle(), 0, nullptr, nullptr); }
    FailingRead(const FailingRead&) = delete;
    FailingRead& operator=(const FailingRead&) = delete;
    bool cameToIt() const { return left_ <= 0; }

  private:
    static int begins(unsigned, void* object, void* statement, void*) {
        auto& self = *static_cast<FailingRead*>(object);
        auto* begun = static_cast<sqlite3_stmt*>(statement);
        if (sqlite3_stmt_readonly(begun) && sqlite3_column_count(begun) > 0 &&
            std::string_view(sqlite3_sql(begun)).find(self.words_) != std::string_view::npos &&
            --self.left_ == 0)
            sqlite3_interrupt(sqlite3_db_handle(begun));
        return 0;
    }
    int left_;
    std::string words_;
};

}  // namespace support
