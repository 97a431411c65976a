// Who is told of a record, and who is not and why. The service acts on this answer, the tool and the event
// viewer show it.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/machine/eventLog.h"
#include "service/decision/monitoring.h"

namespace service {

enum class Reason {
    send,
    eventInactive,
    excluded,           // the catch-all event leaves this source and id alone
    severityBelow,      // less grave than the event asks for
    deviceOff,          // not ticked for this event
    deviceCutOff,       // its entry in the directory is gone
    recipientInactive,  //
    notSetUp,           // the host does not say how to reach such a device
    withinInterval,     // the event was told a short time ago
    sameAddress,        // this record is told to the same address already
};
// The reason in a few words.
std::string_view textOf(Reason reason);

struct DeviceVerdict {
    const Device* device = nullptr;
    Reason reason = Reason::send;
};

// One monitored event whose source and id are the record's.
struct EventVerdict {
    const MonitoredEvent* event = nullptr;
    Reason reason = Reason::send;  // why the event as a whole does not notify of the record, if it does not
    std::vector<DeviceVerdict> devices;  // of an event that does

    bool has(Reason which) const;  // a device with it
};

// What the answer depends on besides the record and the database.
struct Circumstances {
    Moment now;
    std::function<bool(DeviceKind)> isSetUp;
    // When a notification of the event was made whose outcome the database does not know yet.
    std::function<std::optional<Moment>(long eventKey)> pendingSince;
};

// Until when records of the event are held back; nothing when the next one is told at once.
std::optional<Moment> heldBackUntil(const MonitoredEvent& event, const Monitoring& monitoring,
                                    const Circumstances& circumstances);

// A verdict for each monitored event of the record's source and id, by key, the catch-all last. The pointers
// are into `monitoring`.
std::vector<EventVerdict> decide(const platform::EventRecord& record, const Monitoring& monitoring,
                                 const Circumstances& circumstances);

}  // namespace service
