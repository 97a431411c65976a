#include "database/exclusions.h"

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/assignment.h"
#include "database/confirmation.h"
#include "database/events.h"
#include "database/openRecordset.h"
#include "database/recipients.h"
#include "database/settings.h"

using core::Frame;
using modLocalize::myLoadResString;
using platform::Recordset;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";

std::string exclusionQuery(long exclusionKey) {
    return "SELECT * FROM Exclusions WHERE ExclusionKey = " + std::to_string(exclusionKey);
}

// Adds one row; the source goes in as it is. False when it was not written: a row without its source, say of
// one that is too long, would exclude nothing and be in nobody's list.
bool addRow(Frame& frame, Recordset& rows, std::string_view eventSource, long eventId) {
    return frame.steps({core::Step([&] { rows.addNew(); }),
                        core::Step([&] { rows.set("EventSource", std::string(eventSource)); }),
                        core::Step([&] { rows.set("EventID", std::int64_t{eventId}); })}) &&
           frame.step([&] { rows.update(); });
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
        Recordset rows;
        frame.step([&] { rows = openForWriting("SELECT * FROM Exclusions"); });
        // The highest key is this exclusion's only if it was written.
        if (addRow(frame, rows, eventSource, eventId))
            key = getLastKey("Exclusions", "ExclusionKey");
        frame.step([&] { rows.close(); });
    });
}

void modifyExclusion(long exclusionKey, long eventId) {
    core::procedure(module, "modifyExclusion", [&](Frame& frame) {
        Recordset row;
        bool found = false;
        frame.step([&] { row = openForWriting(exclusionQuery(exclusionKey)); });
        frame.step([&] { found = !row.EOF_(); });
        if (found) {
            frame.step([&] { row.set("EventId", std::int64_t{eventId}); });
            frame.step([&] { row.update(); });
        }
        frame.step([&] { row.close(); });
    });
}

bool deleteExclusion(long exclusionKey) {
    return core::procedure(module, "deleteExclusion", false, [&](Frame& frame, bool& deleted) {
        Recordset row = getExclusion(exclusionKey);
        std::string source;
        frame.step([&] { source = row.text("EventSource"); });
        if (!confirmed(myLoadResString(1303) + source, myLoadResString(1304)))
            return;
        core::gLog().log("Deleting exclusion: " + source + " Key: " + std::to_string(exclusionKey),
                         core::logVersionInfo, frame.tag());
        frame.step([&] {
            if (row.state() == platform::ObjectState::open)
                row.close();
        });
        deleted = frame.step([&] { deleteRows("Exclusions", "ExclusionKey", exclusionKey); });
    });
}

void replaceExclusions(const core::Dictionary<long>& exclusions) {
    core::procedure(module, "replaceExclusions", [&](Frame& frame) {
        Recordset rows;
        // Beside rows that are still there each exclusion would be there twice.
        if (!frame.step([&] { platform::execute("DELETE FROM Exclusions", core::gDatabase); }))
            return;
        frame.step([&] { rows = openForBatch("SELECT * FROM Exclusions"); });
        for (const std::string& source : exclusions.keys())
            addRow(frame, rows, source, exclusions.item(source));
        frame.step([&] { rows.updateBatch(); });
        frame.step([&] { rows.close(); });
    });
}

EventAnalysis analyzeEvent(long eventKey) {
    return core::procedure(module, "analyzeEvent", EventAnalysis(),
                           [&](Frame& frame, EventAnalysis& analysis) {
        analysis = {{"ActiveDevices", 0}, {"Recipients", 0}, {"ActiveRecipients", 0}};
        Recordset rows = getRecipientsForEvent(eventKey);
        bool any = false;
        frame.step([&] { any = rows.recordCount() >= 1; });
        if (!any)
            return;
        for (; !rows.EOF_(); frame.step([&] { rows.moveNext(); })) {
            frame.step([&] {
                const long key = rows.number("RecipientKey");
                if (rows.boolean("Active") && key != -1 && isRecipientActive(key))
                    ++analysis["ActiveDevices"];
            });
        }
        frame.step([&] { rows.moveFirst(); });
        // The rows of a recipient lie next to each other, because the query sorts them
        // by his name. Required: two of one name may count more often than twice.
        long before = 0;
        for (; !rows.EOF_(); frame.step([&] { rows.moveNext(); })) {
            frame.step([&] {
                const long key = rows.number("RecipientKey");
                if (key == before)
                    return;
                before = key;
                ++analysis["Recipients"];
                if (isRecipientActive(key))
                    ++analysis["ActiveRecipients"];
            });
        }
        frame.step([&] { rows.close(); });
    });
}

long getEventState(long eventKey) {
    return core::procedure(module, "getEventState", 0L, [&](Frame&, long& state) {
        const EventAnalysis analysis = analyzeEvent(eventKey);
        for (const char* entry : {"Recipients", "ActiveRecipients", "ActiveDevices"}) {
            const auto count = analysis.find(entry);
            if (count == analysis.end() || count->second == 0)
                state = 1;
        }
        if (!isEventActive(eventKey))
            state = 2;
    });
}

std::set<long> eventsThatNotify() {
    return core::procedure(module, "eventsThatNotify", std::set<long>(),
                           [&](Frame& frame, std::set<long>& keys) {
        frame.step([&] {
            // Joined as getRecipientsForEvent joins.
            Recordset rows = openForReading(
                "SELECT DISTINCT EventDevice.EventKey AS EventKey FROM (Recipients INNER JOIN ((Device INNER "
                "JOIN "
                "EventDevice ON "
                "Device.DeviceKey = EventDevice.DeviceKey) INNER JOIN DeviceRecipient ON Device.DeviceKey = "
                "DeviceRecipient.DeviceKey) ON Recipients.RecipientKey = DeviceRecipient.RecipientKey) "
                "INNER JOIN AddressDetails ON Device.DeviceAddress = AddressDetails.DeviceAddress "
                "WHERE EventDevice.Active <> 0 AND Recipients.RecipientActive <> 0 AND "
                "Recipients.RecipientKey <> -1");
            for (; !rows.EOF_(); rows.moveNext())
                keys.insert(rows.number("EventKey"));
            rows.close();
        });
    });
}

long stateOfEvent(const Recordset& event, const std::set<long>& thatNotify) {
    if (event.isNull("EventActive") || !event.boolean("EventActive"))
        return 2;
    return thatNotify.contains(event.number("EventKey")) ? 0 : 1;
}

}  // namespace mdlDatabase
