// How the stores open recordsets: the access modes that the shared file requires.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/procedure.h"
#include "core/state.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

// Reads only: client side, so that rows can be counted and searched.
inline platform::Recordset openForReading(std::string_view source,
                                          platform::CursorType cursor = platform::CursorType::staticCursor) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, cursor, platform::LockType::readOnly,
              platform::CursorLocation::client);
    return rows;
}

// Adds and changes rows.
inline platform::Recordset openForWriting(std::string_view source,
                                          platform::CursorType cursor = platform::CursorType::keyset) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, cursor, platform::LockType::optimistic,
              platform::CursorLocation::client);
    return rows;
}

// Collects changes that one updateBatch applies, all or none.
inline platform::Recordset openForBatch(std::string_view source) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, platform::CursorType::staticCursor,
              platform::LockType::batchOptimistic, platform::CursorLocation::client);
    return rows;
}

// Changes one event.
inline platform::Recordset openForEditing(std::string_view source) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, platform::CursorType::keyset, platform::LockType::pessimistic,
              platform::CursorLocation::client);
    return rows;
}

// Deletes the rows of one key.
inline void deleteRows(std::string_view table, std::string_view keyColumn, long key) {
    platform::execute("DELETE FROM " + std::string(table) + " WHERE " + std::string(keyColumn) + " = " +
                          std::to_string(key),
                      core::gDatabase);
}

// A boolean as the database stores it.
inline platform::Value boolean(bool value) {
    return std::int64_t{value ? -1 : 0};
}

// The framed operation that only opens a recordset for its caller; closed when that failed.
inline platform::Recordset queryProcedure(std::string_view name, std::string_view source) {
    return core::procedure("mdlDatabase", name, platform::Recordset(),
                           [&](core::Frame& frame, platform::Recordset& rows) {
        frame.step([&] { rows = openForReading(source); });
    });
}

// The framed operation that reads whether a thing is active. False when there is no such row, with a failure
// of our own in the log: number 1001 above the object-error base.
inline bool activeProcedure(std::string_view name, std::string_view thing, std::string_view source,
                            long key) {
    return core::procedure("mdlDatabase", name, false, [&](core::Frame& frame, bool& active) {
        platform::Recordset row;
        frame.step([&] { row = openForReading(source); });
        frame.step([&] {
            constexpr long objectError = -2147221504;
            if (row.EOF_())
                throw platform::Failure(objectError + 1001,
                                        std::string(thing) + " was not found.  " + std::string(thing) +
                                            "Key = " + std::to_string(key),
                                        "[mdlDatabase]" + std::string(name));
            active = row.boolean(std::string(thing) + "Active");
        });
        frame.step([&] { row.close(); });
    });
}

}  // namespace mdlDatabase
