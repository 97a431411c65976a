// How the stores open recordsets: the access modes that the shared file requires.
#pragma once

#include <string_view>

#include "core/procedure.h"
#include "core/state.h"
#include "platform/ado.h"

namespace mdlDatabase {

// Reads only: client side, so that rows can be counted and searched.
inline platform::Recordset openForReading(std::string_view source,
                                          platform::CursorType cursor = platform::CursorType::staticCursor) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, cursor, platform::LockType::readOnly,
              platform::CursorLocation::client);
    return rows;
}

// Adds rows, and changes settings.
inline platform::Recordset openForWriting(std::string_view source) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, platform::CursorType::keyset, platform::LockType::optimistic,
              platform::CursorLocation::client);
    return rows;
}

// Changes one event.
inline platform::Recordset openForEditing(std::string_view source) {
    platform::Recordset rows;
    rows.open(source, core::gDatabase, platform::CursorType::keyset, platform::LockType::pessimistic,
              platform::CursorLocation::client);
    return rows;
}

// The framed operation that only opens a recordset for its caller; closed when that failed.
inline platform::Recordset queryProcedure(std::string_view name, std::string_view source) {
    return core::procedure("mdlDatabase", name, platform::Recordset(),
                           [&](core::Frame& frame, platform::Recordset& rows) {
                               frame.step([&] { rows = openForReading(source); });
                           });
}

// A failure of our own for a row that must be there: number 1001 above the object-error base.
inline platform::Failure rowNotFound(const std::string& what, const std::string& keyName, long key,
                                     const std::string& procedure) {
    constexpr long objectError = -2147221504;
    return {objectError + 1001, what + " was not found.  " + keyName + " = " + std::to_string(key),
            "[mdlDatabase]" + procedure};
}

}  // namespace mdlDatabase
