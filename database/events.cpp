#include "database/events.h"

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/confirmation.h"
#include "database/openRecordset.h"
#include "database/settings.h"
#include "platform/prompts.h"

using core::Frame;
using core::gLog;
using modLocalize::myLoadResString;
using platform::BoxIcon;
using platform::Null;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

enum ContentType : long { voiceContent = 1, emailContent = 3 };

std::string eventQuery(std::string_view columns, long eventKey) {
    return "SELECT " + std::string(columns) + " FROM Events WHERE EventKey = " + std::to_string(eventKey);
}

// Asks whether a second event of this source and id shall be created.
bool wantsDuplicate(const NewEvent& event) {
    const std::string text = myLoadResString(1187) + "\n" + myLoadResString(1179) + event.eventSource +
                             myLoadResString(1188) + event.eventId + "\n\n" + myLoadResString(1189);
    return confirmed(text, myLoadResString(1190));
}

// Sets the fields of one content row that its type has, in their order.
void setContentFields(Frame& frame, Recordset& row, ContentType type, const EventContent& content) {
    frame.step([&] { row.set("ContentType", std::int64_t{type}); });
    if (type == voiceContent)
        frame.step([&] { row.set("ContentAttachment", content.contentAttachment); });
    const long priority = type == voiceContent ? content.voicePriority : content.emailPriority;
    frame.step([&] { row.set("ContentPriority", std::int64_t{priority}); });
    frame.step([&] { row.set("ContentSubject", content.contentSubject); });
    frame.step([&] { row.set("ContentNote", content.contentNote); });
}

// Writes one content row of an event, adding it where there is none.
void writeContent(Frame& frame, long eventKey, ContentType type, const EventContent& content) {
    Recordset row;
    bool added = false;
    frame.step([&] {
        row = openForEditing("SELECT * FROM Contents WHERE EventKey = " + std::to_string(eventKey) +
                             " AND ContentType = " + std::to_string(type));
    });
    frame.step([&] {
        if (row.EOF_()) {
            row.addNew();
            added = true;
        }
    });
    setContentFields(frame, row, type, content);
    if (added)
        frame.step([&] { row.set("EventKey", std::int64_t{eventKey}); });
    frame.step([&] { row.update(); });
    frame.step([&] { row.close(); });
}

}  // namespace

Recordset getEvent(long eventKey) {
    return queryProcedure("getEvent", eventQuery("*", eventKey));
}

Recordset getContentsForEvent(long eventKey) {
    return queryProcedure("getContentsForEvent",
                          "SELECT * FROM Contents WHERE EventKey = " + std::to_string(eventKey));
}

Recordset getEvents() {
    return queryProcedure(
        "getEvents",
        "SELECT * FROM Events WHERE EventTitle <> '$$IGNORE' ORDER BY EventCollection, EventSource");
}

long addNewEvent(const NewEvent& event) {
    return core::procedure(module, "addNewEvent", 0L, [&](Frame& frame, long& result) {
        if (getConfigurationSetting("WarnOnDuplicateMonitoredEvents") == "-1") {
            const long existing = findEvent(event.eventSource, event.eventId);
            if (existing != -1 && !wantsDuplicate(event)) {
                result = existing;
                return;
            }
        }
        Recordset events;
        // Inactive, so that the service stays away until contents and devices are there.
        const bool filled =
            frame.steps({core::Step([&] { events = openForWriting("SELECT * FROM Events"); }),
                         core::Step([&] { events.addNew(); }),
                         core::Step([&] { events.set("EventSource", event.eventSource); }),
                         core::Step([&] { events.set("EventId", event.eventId); }),
                         core::Step([&] { events.set("EventTitle", event.eventTitle); }),
                         core::Step([&] { events.set("EventType", std::int64_t{event.eventType}); }),
                         core::Step([&] { events.set("EventActive", boolean(false)); })});
        // An event without its id, say of one beyond 32 bits, could neither be seen nor deleted again; and
        // the highest key is this event's only if this event was written.
        const bool written = filled && frame.step([&] { events.update(); });
        frame.step([&] { events.close(); });
        if (!written)
            return;
        long key = 0;
        frame.step([&] { key = getLastKey("Events", "EventKey"); });
        Recordset contents;
        frame.step([&] { contents = openForWriting("SELECT * FROM Contents"); });
        bool complete = true;
        for (const ContentType type : {voiceContent, emailContent}) {
            frame.step([&] { contents.addNew(); });
            setContentFields(frame, contents, type, event.content);
            complete = frame.steps({core::Step([&] { contents.set("EventKey", std::int64_t{key}); }),
                                    core::Step([&] { contents.update(); })}) &&
                       complete;
        }
        frame.step([&] { contents.close(); });
        // The row of an event whose content is missing stays; its next save adds the content.
        if (complete)
            result = key;
    });
}

void modifyEvent(const ModifiedEvent& event) {
    core::procedure(module, "modifyEvent", [&](Frame& frame) {
        Recordset row;
        bool found = false;
        frame.step([&] { row = openForEditing(eventQuery("*", event.eventKey)); });
        frame.step([&] { found = !row.EOF_(); });
        if (found) {
            frame.step([&] { row.set("EventSource", event.eventSource); });
            frame.step([&] { row.set("EventId", event.eventId); });
            frame.step([&] { row.set("EventActive", boolean(event.eventActive)); });
            frame.step([&] { row.set("EventTitle", event.eventTitle); });
            frame.step([&] { row.set("EventType", std::int64_t{event.eventType}); });
            // Required: every save starts the event's notification timing anew, changed or not.
            frame.step([&] { row.set("EventLastNotification", Null{}); });
            frame.step([&] { row.update(); });
        }
        frame.step([&] { row.close(); });
        // Required: contents are written even when the event's own row is gone. The window saves no such
        // event.
        writeContent(frame, event.eventKey, voiceContent, event.content);
        writeContent(frame, event.eventKey, emailContent, event.content);
    });
}

bool deleteEvent(long eventKey, std::string_view eventName) {
    return core::procedure(module, "deleteEvent", false, [&](Frame& frame, bool& deleted) {
        Recordset row = getEvent(eventKey);
        bool catchAll = false;
        // One that is gone already, as after a kill, has nothing to read and still loses what depends on it.
        frame.step([&] { catchAll = !row.EOF_() && row.boolean("EventCollection"); });
        if (catchAll) {
            platform::prompts().messageBox(
                {myLoadResString(1248), myLoadResString(1249), BoxIcon::information});
            return;
        }
        const std::string name(eventName);
        if (!confirmed(myLoadResString(1246) + name, myLoadResString(1247)))
            return;
        gLog().log("Deleting event: " + name + " Key: " + std::to_string(eventKey), core::logInfo,
                   frame.tag());
        // Dependents first: a delete that stops half way leaves an event that the service cannot act on.
        frame.step([&] {
            if (row.state() == platform::ObjectState::open)
                row.close();
        });
        deleted = frame.step([&] { deleteRows("Contents", "EventKey", eventKey); }) &&
                  frame.step([&] { deleteRows("EventDevice", "EventKey", eventKey); }) &&
                  frame.step([&] { deleteRows("Events", "EventKey", eventKey); });
    });
}

void setEventActiveState(long eventKey, bool active) {
    core::procedure(module, "setEventActiveState", [&](Frame& frame) {
        Recordset row;
        frame.step([&] {
            row = openForEditing(eventQuery("EventKey, EventActive, EventLastNotification", eventKey));
        });
        frame.step([&] { row.set("EventActive", boolean(active)); });
        frame.step([&] {
            if (active)
                row.set("EventLastNotification", Null{});
        });
        frame.step([&] { row.update(); });
        frame.step([&] { row.close(); });
    });
}

bool isEventActive(long eventKey) {
    return activeProcedure("isEventActive", "Event", eventQuery("EventActive", eventKey), eventKey);
}

long findEvent(std::string_view eventSource, std::string_view eventId) {
    return core::procedure(module, "findEvent", -1L, [&](Frame& frame, long& key) {
        Recordset rows;
        // Required: the source goes in as it is; one with an apostrophe makes the statement fail.
        frame.step([&] {
            rows = openForReading("SELECT EventKey FROM Events WHERE EventSource = '" +
                                  std::string(eventSource) + "' AND EventId = " + std::string(eventId));
        });
        frame.step([&] {
            if (rows.recordCount() >= 1)
                key = rows.number("EventKey");
        });
        frame.step([&] { rows.close(); });
    });
}

long getIgnoreEventKey() {
    return core::procedure(module, "getIgnoreEventKey", -1L, [&](Frame& frame, long& key) {
        Recordset rows;
        frame.step(
            [&] { rows = openForReading("SELECT EventKey FROM Events WHERE EventTitle = '$$IGNORE'"); });
        frame.step([&] {
            if (!rows.EOF_())
                key = rows.number("EventKey");
        });
        frame.step([&] { rows.close(); });
    });
}

long mapEventType(long number, bool toIndex) {
    if (toIndex)
        return number == 2 ? 1 : number == 4 ? 2 : 0;
    return number == 0 ? 1 : number == 1 ? 2 : number == 2 ? 4 : 0;
}

void setDefaultContentForEvent(long eventKey) {
    core::procedure(module, "setDefaultContentForEvent", [&](Frame& frame) {
        EventContent content;
        frame.step([&] { content.contentAttachment = getDefaultContent(1).text; });
        frame.step([&] {
            const DefaultContent email = getDefaultContent(3);
            content.contentSubject = email.parts.at("Subject");
            content.contentNote = email.parts.at("Body");
        });
        writeContent(frame, eventKey, voiceContent, content);
        writeContent(frame, eventKey, emailContent, content);
    });
}

}  // namespace mdlDatabase
