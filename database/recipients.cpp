#include "database/recipients.h"

#include "core/procedure.h"
#include "database/openRecordset.h"

using core::Frame;
using platform::Recordset;

namespace mdlDatabase {

namespace {
constexpr char module[] = "mdlDatabase";
}

Recordset getRecipients() {
    return queryProcedure("getRecipients", "SELECT * FROM Recipients ORDER BY RecipientName");
}

bool isRecipientActive(long recipientKey) {
    return core::procedure(module, "isRecipientActive", false, [&](Frame& frame, bool& active) {
        Recordset row;
        frame.steps({[&] {
                         row = openForReading("SELECT RecipientActive FROM Recipients WHERE RecipientKey = " +
                                              std::to_string(recipientKey));
                     },
                     [&] {
                         if (row.EOF_())
                             throw rowNotFound("Recipient", "RecipientKey", recipientKey,
                                               "isRecipientActive");
                         active = row.boolean("RecipientActive");
                     },
                     [&] { row.close(); }});
    });
}

bool invalidRecipientDevices(long recipientKey) {
    return core::procedure(module, "invalidRecipientDevices", false, [&](Frame& frame, bool& invalid) {
        Recordset rows;
        frame.steps(
            {[&] {
                 rows = openForReading(
                     "SELECT AddressDetails.AddressType FROM DeviceRecipient INNER JOIN AddressDetails ON "
                     "DeviceRecipient.DeviceKey = AddressDetails.DeviceKey WHERE AddressDetails.AddressType "
                     "= 0 AND DeviceRecipient.RecipientKey = " +
                     std::to_string(recipientKey));
             },
             [&] { invalid = rows.recordCount() >= 1; }, [&] { rows.close(); }});
    });
}

long getRecipientState(long recipientKey) {
    return core::procedure(module, "getRecipientState", 0L, [&](Frame&, long& state) {
        state = isRecipientActive(recipientKey) ? 0 : 2;
        if (invalidRecipientDevices(recipientKey))
            state = 1;
    });
}

}  // namespace mdlDatabase
