#include "host/service/watch.h"

#include <cstdlib>
#include <utility>

#include "host/service/notification.h"

namespace service {

namespace {

// The setting's value; empty without one.
std::string setting(platform::Connection& database, const std::string& name) {
    platform::Recordset row;
    row.open("SELECT Value FROM Configuration WHERE Setting = '" + name + "'", database);
    return row.EOF_() || row.isNull("Value") ? std::string() : row.text("Value");
}

// Where it is a number from 1 to an hour.
std::chrono::seconds pollingInterval(platform::Connection& database) {
    constexpr long standard = 10;
    constexpr long longest = 3600;
    const long seconds = std::strtol(setting(database, "PollingInterval").c_str(), nullptr, 10);
    return std::chrono::seconds(seconds >= 1 && seconds <= longest ? seconds : standard);
}

}  // namespace

Watch::Watch(std::string databaseFile, std::chrono::milliseconds pause)
    : databaseFile_(std::move(databaseFile)), pause_(pause) {}

void Watch::begin() {
    log_.add("HbQlnSvc started");
    for (EventLog& eventLog : eventLogs_)
        eventLog.seen = platform::readEvents(eventLog.name).size();
}

std::vector<platform::EventRecord> Watch::news() {
    std::vector<platform::EventRecord> found;
    for (EventLog& eventLog : eventLogs_) {
        const auto records = platform::readEvents(eventLog.name);
        if (records.size() < eventLog.seen)
            eventLog.seen = 0;  // the log was cleared
        found.insert(found.end(), records.begin() + static_cast<std::ptrdiff_t>(eventLog.seen),
                     records.end());
    }
    return found;
}

std::chrono::milliseconds Watch::look() {
    // The logs come first: whoever writes an event has written before it what the event is about.
    const std::vector<platform::EventRecord> records = news();
    platform::Connection database;
    database.open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" + databaseFile_);
    logFile_ = setting(database, "OutputFilePath");
    // A change of the diagnostic level takes effect on a restart.
    if (!std::exchange(inTouch_, true))
        everything_ = setting(database, "MaxDiag") == "-1";
    const std::vector<MonitoredEvent> monitored = readMonitoredEvents(database);
    if (everything_)
        log_.add("Looking for " + std::to_string(monitored.size()) +
                 " active events; new in the event logs: " + std::to_string(records.size()));
    for (const platform::EventRecord& record : records) {
        for (const MonitoredEvent& event : monitored)
            if (matches(event, record, database))
                log_.add(notificationText(event, record, database));
        for (EventLog& eventLog : eventLogs_)
            eventLog.seen += record.log == eventLog.name ? 1 : 0;
    }
    log_.flush(logFile_);
    return pause_.count() > 0 ? pause_ : std::chrono::milliseconds(pollingInterval(database));
}

void Watch::end() {
    log_.add("HbQlnSvc stopped");
    log_.flush(logFile_);
}

}  // namespace service
