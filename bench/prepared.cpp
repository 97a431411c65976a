#include "bench/prepared.h"

#include <sqlite3.h>

namespace bench {

Prepared& Prepared::bind(int parameter, long value) {
    sqlite3_bind_int64(statement_.get(), parameter, value);
    return *this;
}

Prepared& Prepared::bind(int parameter, std::string_view value) {
    sqlite3_bind_text(statement_.get(), parameter, value.data(), static_cast<int>(value.size()),
                      SQLITE_TRANSIENT);
    return *this;
}

bool Prepared::row() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW)
        return true;
    insist(code == SQLITE_DONE, sqlite3_errmsg(sqlite3_db_handle(statement_.get())));
    reset();
    return false;
}

void Prepared::run() {
    while (row()) {
    }
}

long Prepared::number(int column) {
    return static_cast<long>(sqlite3_column_int64(statement_.get(), column));
}

std::string Prepared::text(int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    return bytes
               ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)))
               : std::string();
}

void Prepared::reset() {
    sqlite3_reset(statement_.get());
}

long Prepared::one() {
    const long result = row() ? number(0) : 0;
    reset();
    return result;
}

}  // namespace bench
