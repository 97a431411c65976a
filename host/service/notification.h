// Which monitored event a record of the event logs is, and the notification that it leads to.
#pragma once

#include <string>
#include <vector>

#include "platform/ado/ado.h"
#include "platform/machine/eventLog.h"

namespace service {

struct MonitoredEvent {
    long key = 0;
    std::string source;
    long id = 0;  // -1 for all ids of the source
    std::string title;
    long severity = 0;        // 1, 2 or 4: errors; warnings too; informational events too
    bool collection = false;  // stands for all sources of a product, but for those that are excluded
};

// The active events. Raises platform::Failure.
std::vector<MonitoredEvent> readMonitoredEvents(platform::Connection& database);

// True when the record is one that the event is to notify of. Raises platform::Failure.
bool matches(const MonitoredEvent& event, const platform::EventRecord& record,
             platform::Connection& database);

// What was found and, a line each, what would be sent to which active device, with the content as it is
// stored now; lines are joined by a line feed. Raises platform::Failure.
std::string notificationText(const MonitoredEvent& event, const platform::EventRecord& record,
                             platform::Connection& database);

}  // namespace service
