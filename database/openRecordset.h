// What the stores have in common: recordsets that they open for their callers, and whether a thing is active.
#pragma once

#include <string>
#include <string_view>

#include "core/procedure.h"
#include "core/state.h"
#include "database/rows.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

// The base of the numbers of our own failures.
inline constexpr long objectError = -2147221504;

// What Rows::openForReading opens, for those who have no frame. Raises the engine's failures.
inline platform::Recordset openForReading(const platform::Query& query) {
    platform::Recordset rows;
    rows.open(query, core::gDatabase, platform::CursorType::staticCursor, platform::LockType::readOnly,
              platform::CursorLocation::client);
    return rows;
}

// The framed operation that only opens a recordset for its caller; closed when that failed.
inline platform::Recordset queryProcedure(std::string_view name, const platform::Query& query) {
    return core::procedure("mdlDatabase", name, platform::Recordset(),
                           [&](core::Frame& frame, platform::Recordset& rows) {
        Rows opened(frame);
        opened.openForReading(query);
        rows = std::move(opened.recordset());
    });
}

// The framed operation that reads whether a thing is active. False when there is no such row, with a failure
// of our own in the log: number 1001 above the object-error base.
inline bool activeProcedure(std::string_view name, std::string_view thing, const platform::Query& query,
                            long key) {
    return core::procedure("mdlDatabase", name, false, [&](core::Frame& frame, bool& active) {
        Rows row(frame);
        row.openForReading(query);
        if (row.hasRow())
            active = row.boolean(std::string(thing) + "Active");
        else if (row.isOpen())
            frame.step([&] {
                throw platform::Failure(objectError + 1001,
                                        std::string(thing) + " was not found.  " + std::string(thing) +
                                            "Key = " + std::to_string(key),
                                        frame.tag());
            });
        row.close();
    });
}

}  // namespace mdlDatabase
