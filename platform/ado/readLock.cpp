#include "platform/ado/readLock.h"

#include <sqlite3.h>

#include "platform/ado/ado.h"

namespace platform {

void ReadLock::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

ReadLock::ReadLock(const Connection& connection) noexcept {
    if (connection.state() != ObjectState::open || connection.server())
        return;
    sqlite3_stmt* prepared = nullptr;
    // Every database that opens has a row there, so the statement does not end with its first step.
    sqlite3_prepare_v2(connection.handle(), "SELECT 1 FROM sqlite_master", -1, &prepared, nullptr);
    pending_.reset(prepared);
    if (prepared && sqlite3_step(prepared) != SQLITE_ROW)
        pending_.reset();
}

ReadLock::~ReadLock() = default;

}  // namespace platform
