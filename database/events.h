// Monitored events: a row in Events and two rows in Contents each. An event is written as inactive and
// becomes active only by an explicit act, so that the service never works on a half-made one.
#pragma once

#include <string>
#include <string_view>

#include "platform/ado/ado.h"

namespace mdlDatabase {

inline constexpr long nodeAllEventIds = -1;

// What a notification of an event says. Priorities are stored values: 2 Urgent, 1 Normal, 0 Low.
struct EventContent {
    std::string contentAttachment;
    long voicePriority = 1;
    std::string contentSubject;
    std::string contentNote;
    long emailPriority = 1;
};

struct NewEvent {
    std::string eventSource;
    std::string eventId;  // as text; "-1" for all ids
    std::string eventTitle;
    short eventType = 1;  // 1, 2 or 4
    EventContent content;
};

struct ModifiedEvent {
    long eventKey = 0;
    std::string eventSource;
    std::string eventId;
    std::string eventTitle;
    short eventType = 1;
    bool eventActive = false;
    EventContent content;
};

// Recordsets are left open for the caller, who reads and closes them; one that failed to open is closed.
platform::Recordset getEvent(long eventKey);
platform::Recordset getContentsForEvent(long eventKey);
// All events but the hidden one; the catch-all event first.
platform::Recordset getEvents();

// The new event's key; the existing one's when the administrator declines a duplicate; 0 when its rows could
// not be written.
long addNewEvent(const NewEvent& event);
void modifyEvent(const ModifiedEvent& event);
// Asks first; true when deleted. The catch-all event cannot be deleted.
bool deleteEvent(long eventKey, std::string_view eventName);
void setEventActiveState(long eventKey, bool active);
// False, with a failure in the log, when there is no such event.
bool isEventActive(long eventKey);
// Key of the first event with that source and id, or -1.
long findEvent(std::string_view eventSource, std::string_view eventId);
// Key of the hidden event titled "$$IGNORE", or -1.
long getIgnoreEventKey();
// EventType (1, 2, 4) to list index (0, 1, 2), or back; anything else gives 0.
long mapEventType(long number, bool toIndex);
// Overwrites the event's content with the defaults.
void setDefaultContentForEvent(long eventKey);

}  // namespace mdlDatabase
