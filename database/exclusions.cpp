#include "database/exclusions.h"

#include "core/procedure.h"
#include "database/assignment.h"
#include "database/events.h"
#include "database/openRecordset.h"
#include "database/recipients.h"

using core::Frame;
using platform::Recordset;

namespace mdlDatabase {

namespace {
constexpr char module[] = "mdlDatabase";
}

Recordset getExclusions() {
    return queryProcedure("getExclusions", "SELECT * FROM Exclusions ORDER BY EventSource, EventId");
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
                               // by his name.
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

}  // namespace mdlDatabase
