#include "database/exclusions.h"

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/assignment.h"
#include "database/confirmation.h"
#include "database/events.h"
#include "database/openRecordset.h"
#include "database/recipients.h"
#include "database/rows.h"
#include "database/settings.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::Query;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

Query exclusionQuery(long exclusionKey) {
    return {"SELECT * FROM Exclusions WHERE ExclusionKey = ?", {exclusionKey}};
}

// Adds one row; the source goes in as it is. False when it was not written: a row without its source, say of
// one that is too long, would exclude nothing and be in nobody's list.
bool addRow(Rows& rows, std::string_view eventSource, long eventId) {
    rows.addNew();
    rows.set("EventSource", std::string(eventSource));
    rows.set("EventID", eventId);
    return rows.allRan() && rows.update();
}

}  // namespace

Recordset getExclusion(long exclusionKey) {
    return queryProcedure("getExclusion", exclusionQuery(exclusionKey));
}

Recordset getExclusions() {
    return queryProcedure("getExclusions", "SELECT * FROM Exclusions ORDER BY EventSource, EventId");
}

long addNewExclusion(std::string_view eventSource, long eventId) {
    return core::procedure(module, "addNewExclusion", 0L, [&](Frame& frame, long& key) {
        Rows rows(frame);
        rows.openForAdding("Exclusions");
        // The highest key is this exclusion's only if it was written.
        if (addRow(rows, eventSource, eventId))
            key = getLastKey("Exclusions", "ExclusionKey");
        rows.close();
    });
}

void modifyExclusion(long exclusionKey, long eventId) {
    core::procedure(module, "modifyExclusion", [&](Frame& frame) {
        Rows row(frame);
        row.openForWriting(exclusionQuery(exclusionKey));
        if (row.hasRow()) {
            row.set("EventId", eventId);
            row.update();
        }
        row.close();
    });
}

bool deleteExclusion(long exclusionKey) {
    return core::procedure(module, "deleteExclusion", false, [&](Frame& frame, bool& deleted) {
        Rows row(frame, getExclusion(exclusionKey));
        const std::string source = row.text("EventSource");
        if (!confirmed(myLoadResString(1303) + source, myLoadResString(1304)))
            return;
        core::gLog().log("Deleting exclusion: " + source + " Key: " + std::to_string(exclusionKey),
                         core::logVersionInfo, frame.tag());
        if (row.isOpen())
            row.close();
        deleted = execute(frame, {"DELETE FROM Exclusions WHERE ExclusionKey = ?", {exclusionKey}});
    });
}

void replaceExclusions(const core::Dictionary<long>& exclusions) {
    core::procedure(module, "replaceExclusions", [&](Frame& frame) {
        // Beside rows that are still there each exclusion would be there twice.
        if (!execute(frame, "DELETE FROM Exclusions"))
            return;
        Rows rows(frame);
        rows.openForAddingBatch("Exclusions");
        for (const std::string& source : exclusions.keys())
            addRow(rows, source, exclusions.item(source));
        rows.updateBatch();
        rows.close();
    });
}

EventAnalysis analyzeEvent(long eventKey) {
    return core::procedure(module, "analyzeEvent", EventAnalysis(),
                           [&](Frame& frame, EventAnalysis& analysis) {
        Rows rows(frame, getRecipientsForEvent(eventKey));
        if (rows.count() < 1)
            return;
        while (rows.next()) {
            const long key = rows.number("RecipientKey");
            if (rows.boolean("Active") && key != -1 && isRecipientActive(key))
                ++analysis.activeDevices;
        }
        rows.rewind();
        // The rows of a recipient lie next to each other, because the query sorts them
        // by his name. Required: two of one name may count more often than twice.
        long before = 0;
        while (rows.next()) {
            const long key = rows.number("RecipientKey");
            if (key == before)
                continue;
            before = key;
            ++analysis.recipients;
            if (isRecipientActive(key))
                ++analysis.activeRecipients;
        }
        rows.close();
    });
}

EventState getEventState(long eventKey) {
    return core::procedure(module, "getEventState", eventComplete, [&](Frame&, EventState& state) {
        const EventAnalysis analysis = analyzeEvent(eventKey);
        if (analysis.recipients == 0 || analysis.activeRecipients == 0 || analysis.activeDevices == 0)
            state = eventIncomplete;
        if (!isEventActive(eventKey))
            state = eventInactive;
    });
}

std::set<long> eventsThatNotify() {
    return core::procedure(module, "eventsThatNotify", std::set<long>(),
                           [&](Frame& frame, std::set<long>& keys) {
        Rows rows(frame);
        // Joined as getRecipientsForEvent joins.
        rows.openForReading(
            "SELECT DISTINCT EventDevice.EventKey AS EventKey FROM (Recipients INNER JOIN ((Device INNER "
            "JOIN EventDevice ON Device.DeviceKey = EventDevice.DeviceKey) INNER JOIN DeviceRecipient ON "
            "Device.DeviceKey = DeviceRecipient.DeviceKey) ON Recipients.RecipientKey = "
            "DeviceRecipient.RecipientKey) INNER JOIN AddressDetails ON Device.DeviceAddress = "
            "AddressDetails.DeviceAddress WHERE EventDevice.Active <> 0 AND Recipients.RecipientActive <> 0 "
            "AND Recipients.RecipientKey <> -1");
        while (rows.next())
            keys.insert(rows.number("EventKey"));
    });
}

EventState stateOfEvent(const Recordset& event, const std::set<long>& thatNotify) {
    if (event.isNull("EventActive") || !event.boolean("EventActive"))
        return eventInactive;
    return thatNotify.contains(event.number("EventKey")) ? eventComplete : eventIncomplete;
}

}  // namespace mdlDatabase
