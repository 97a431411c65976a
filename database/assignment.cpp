#include "database/assignment.h"

#include "database/openRecordset.h"

namespace mdlDatabase {

platform::Recordset getRecipientsForEvent(long eventKey) {
    // Joined with AddressDetails by the address's text, so a device without a row there is not part of the
    // answer, and DISTINCT folds devices that share an address; it stays so.
    return queryProcedure("getRecipientsForEvent",
                          "SELECT DISTINCT Recipients.RecipientName, EventDevice.Active, Device.DeviceType, "
                          "AddressDetails.DisplayName, Device.DeviceKey, Recipients.RecipientKey "
                          "FROM (Recipients INNER JOIN ((Device INNER JOIN (EventDevice INNER JOIN Events ON "
                          "EventDevice.EventKey = "
                          "Events.EventKey) ON Device.DeviceKey = EventDevice.DeviceKey) "
                          "INNER JOIN DeviceRecipient ON Device.DeviceKey = DeviceRecipient.DeviceKey) ON "
                          "Recipients.RecipientKey = "
                          "DeviceRecipient.RecipientKey) "
                          "INNER JOIN AddressDetails ON Device.DeviceAddress = AddressDetails.DeviceAddress "
                          "Where Events.EventKey = " +
                              std::to_string(eventKey) + " ORDER BY Recipients.RecipientName");
}

}  // namespace mdlDatabase
