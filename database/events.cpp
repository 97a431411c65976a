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
using platform::Query;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

// The statement with the columns in their place.
Query eventQuery(std::string_view columns, long eventKey) {
    return {"SELECT " + std::string(columns) + " FROM Events WHERE EventKey = ?", {eventKey}};
}

// Asks whether a second event of this source and id shall be created.
bool wantsDuplicate(const NewEvent& event) {
    const std::string text = myLoadResString(1187) + "\n" + myLoadResString(1179) + event.eventSource +
                             myLoadResString(1188) + event.eventId + "\n\n" + myLoadResString(1189);
    return confirmed(text, myLoadResString(1190));
}

// Sets the fields of one content row that its type has, in their order.
void setContentFields(Rows& row, ContentType type, const EventContent& content) {
    row.set("ContentType", std::int64_t{type});
    if (type == voiceContent)
        row.set("ContentAttachment", content.contentAttachment);
    const long priority = type == voiceContent ? content.voicePriority : content.emailPriority;
    row.set("ContentPriority", priority);
    row.set("ContentSubject", content.contentSubject);
    row.set("ContentNote", content.contentNote);
}

// Writes one content row of an event, adding it where there is none.
void writeContent(Frame& frame, long eventKey, ContentType type, const EventContent& content) {
    Rows row(frame);
    row.openForEditing({"SELECT * FROM Contents WHERE EventKey = ? AND ContentType = ?", {eventKey, type}});
    const bool added = row.atEnd() && row.addNew();
    setContentFields(row, type, content);
    if (added)
        row.set("EventKey", eventKey);
    row.update();
    row.close();
}

}  // namespace

Recordset getEvent(long eventKey) {
    return queryProcedure("getEvent", eventQuery("*", eventKey));
}

Recordset getContentsForEvent(long eventKey) {
    return queryProcedure("getContentsForEvent", {"SELECT * FROM Contents WHERE EventKey = ?", {eventKey}});
}

Recordset getEvents() {
    return queryProcedure(
        "getEvents",
        "SELECT * FROM Events WHERE EventTitle <> '$$IGNORE' ORDER BY EventCollection, EventSource");
}

long addNewEvent(const NewEvent& event) {
    return core::procedure(module, "addNewEvent", 0L, [&](Frame& frame, long& result) {
        // A setting that could not be read is none that is off. Required: a search that fails finds none, as
        // it does for each source with an apostrophe.
        if (readConfigurationSetting("WarnOnDuplicateMonitoredEvents").value_or("-1") == "-1") {
            const long existing = findEvent(event.eventSource, event.eventId);
            if (existing != -1 && !wantsDuplicate(event)) {
                result = existing;
                return;
            }
        }
        Rows events(frame);
        // Inactive, so that the service stays away until contents and devices are there.
        events.openForAdding("Events");
        events.addNew();
        events.set("EventSource", event.eventSource);
        events.set("EventId", event.eventId);
        events.set("EventTitle", event.eventTitle);
        events.set("EventType", event.eventType);
        events.set("EventActive", false);
        // An event without its id, say of one beyond 32 bits, could neither be seen nor deleted again; and
        // the highest key is this event's only if this event was written.
        const bool written = events.allRan() && events.update();
        events.close();
        if (!written)
            return;
        // The row of an event whose content is missing stays; its next save adds the content.
        const long key = getLastKey("Events", "EventKey");
        if (key == 0)
            return;
        Rows contents(frame);
        contents.openForAdding("Contents");
        bool complete = true;
        for (const ContentType type : {voiceContent, emailContent}) {
            contents.addNew();
            setContentFields(contents, type, event.content);
            contents.set("EventKey", key);
            contents.update();
            complete = contents.allRan() && complete;
        }
        contents.close();
        if (complete)
            result = key;
    });
}

void modifyEvent(const ModifiedEvent& event) {
    core::procedure(module, "modifyEvent", [&](Frame& frame) {
        Rows row(frame);
        row.openForEditing(eventQuery("*", event.eventKey));
        if (row.hasRow()) {
            row.set("EventSource", event.eventSource);
            row.set("EventId", event.eventId);
            row.set("EventActive", event.eventActive);
            row.set("EventTitle", event.eventTitle);
            row.set("EventType", event.eventType);
            // Required: every save starts the event's notification timing anew, changed or not.
            row.set("EventLastNotification", Null{});
            row.update();
        }
        row.close();
        // Required: contents are written even when the event's own row is gone. The window saves no such
        // event.
        writeContent(frame, event.eventKey, voiceContent, event.content);
        writeContent(frame, event.eventKey, emailContent, event.content);
    });
}

bool deleteEvent(long eventKey, std::string_view eventName) {
    return core::procedure(module, "deleteEvent", false, [&](Frame& frame, bool& deleted) {
        Rows row(frame, getEvent(eventKey));
        // One that is gone already, as after a kill, has nothing to read and still loses what depends on it.
        // One that could not be read may be the catch-all event, which nobody could make again.
        const bool catchAll =
            row.hasRow() && !row.isNull("EventCollection") && row.boolean("EventCollection");
        if (!row.allRan())
            return;
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
        if (row.isOpen())
            row.close();
        deleted = execute(frame, {"DELETE FROM Contents WHERE EventKey = ?", {eventKey}}) &&
                  execute(frame, {"DELETE FROM EventDevice WHERE EventKey = ?", {eventKey}}) &&
                  execute(frame, {"DELETE FROM Events WHERE EventKey = ?", {eventKey}});
    });
}

void setEventActiveState(long eventKey, bool active) {
    core::procedure(module, "setEventActiveState", [&](Frame& frame) {
        Rows row(frame);
        row.openForEditing(eventQuery("EventKey, EventActive, EventLastNotification", eventKey));
        row.set("EventActive", active);
        if (active)
            row.set("EventLastNotification", Null{});
        row.update();
        row.close();
    });
}

bool isEventActive(long eventKey) {
    return activeProcedure("isEventActive", "Event", eventQuery("EventActive", eventKey), eventKey);
}

long findEvent(std::string_view eventSource, std::string_view eventId) {
    return core::procedure(module, "findEvent", -1L, [&](Frame& frame, long& key) {
        Rows rows(frame);
        // Required: the source goes in as it is; one with an apostrophe makes the statement fail.
        rows.openForReading("SELECT EventKey FROM Events WHERE EventSource = '" + std::string(eventSource) +
                            "' AND EventId = " + std::string(eventId));
        if (rows.count() >= 1)
            key = rows.number("EventKey", key);
        rows.close();
    });
}

long getIgnoreEventKey() {
    return core::procedure(module, "getIgnoreEventKey", -1L, [&](Frame& frame, long& key) {
        Rows rows(frame);
        rows.openForReading("SELECT EventKey FROM Events WHERE EventTitle = '$$IGNORE'");
        if (rows.hasRow())
            key = rows.number("EventKey", key);
        rows.close();
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
        content.contentAttachment = getDefaultContent(voiceContent).voiceFile;
        const DefaultContent mail = getDefaultContent(emailContent);
        content.contentSubject = mail.subject;
        content.contentNote = mail.body;
        writeContent(frame, eventKey, voiceContent, content);
        writeContent(frame, eventKey, emailContent, content);
    });
}

}  // namespace mdlDatabase
