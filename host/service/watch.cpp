#include "host/service/watch.h"

#include <cstdlib>

#include "platform/ado.h"

namespace service {

namespace {

// The setting's value where it is a number from 1 to an hour.
unsigned pollingInterval(platform::Connection& database) {
    constexpr long standard = 10;
    constexpr long longest = 3600;
    platform::Recordset row;
    row.open("SELECT Value FROM Configuration WHERE Setting = 'PollingInterval'", database);
    if (row.EOF_() || row.isNull("Value"))
        return standard;
    const long seconds = std::strtol(row.text("Value").c_str(), nullptr, 10);
    return static_cast<unsigned>(seconds >= 1 && seconds <= longest ? seconds : standard);
}

}  // namespace

unsigned look(const std::string& databaseFile) {
    platform::Connection database;
    database.open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" + databaseFile);
    platform::Recordset events;
    events.open("SELECT EventKey, EventSource, EventId FROM Events WHERE EventActive <> 0", database,
                platform::CursorType::staticCursor, platform::LockType::readOnly,
                platform::CursorLocation::client);
    return pollingInterval(database);
}

}  // namespace service
