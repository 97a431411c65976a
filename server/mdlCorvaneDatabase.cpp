#include "server/mdlCorvaneDatabase.h"

#include "core/procedure.h"

namespace mdlCorvaneDatabase {

namespace {

constexpr char moduleName[] = "mdlCorvaneDatabase";
constexpr long notConnected = -2147220500;
// No server is named: the directory is this machine's own, and the console's account logs in.
constexpr char directory[] =
    "Provider=SQLOLEDB.1;Integrated Security=SSPI;Persist Security Info=False;Initial Catalog=CorvaneDb";

}  // namespace

bool openCorvaneDB(platform::Connection& connection) {
    return core::procedure(moduleName, "openCorvaneDB", false, [&](core::Frame& frame, bool& result) {
        // Required: a connection that was open already is no success of this call.
        if (connection.state() != platform::ObjectState::closed)
            return;
        frame.step([&] {
            try {
                connection.open(directory);
            } catch (const platform::Failure&) {  // NOLINT(bugprone-empty-catch)
                // The connection keeps it among its errors, and one line tells of all of them.
            }
            if (!connection.errors().empty())
                throw platform::Failure(notConnected, "Error connecting to CorvaneDB.", frame.tag());
            result = true;
        });
    });
}

bool determineViewsSupport(platform::Connection& connection) {
    return core::procedure(moduleName, "determineViewsSupport", false, [&](core::Frame& frame, bool& result) {
        // The newer layout has no such column: there the statement itself is refused.
        frame.on(platform::statementFailed, [&](const platform::Failure&) { result = true; });
        platform::Recordset rows;
        frame.step([&] {
            rows.open("SELECT DtmfAccessId FROM GlobalSubscriber", connection,
                      platform::CursorType::forwardOnly, platform::LockType::readOnly);
        });
    });
}

}  // namespace mdlCorvaneDatabase
