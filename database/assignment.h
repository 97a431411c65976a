// Which device is notified for which event. A device without a row in EventDevice is not on the event; one
// with an inactive row is on it, silent. Devices of failover are never switched on without a question.
#pragma once

#include <map>
#include <string>

#include "core/dictionary.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

// The devices that the administrator ticked, by "DeviceKey:" and the device's key; the items mean nothing.
using DeviceSelection = core::Dictionary<bool>;
std::string selectionKey(long deviceKey);

// The devices assigned to an event with their recipients, by recipient name; left open for the caller.
platform::Recordset getRecipientsForEvent(long eventKey);
// All devices assigned to an event, also those that getRecipientsForEvent misses: device to whether it is on.
// Of several rows for a device one that is on counts. Raises the engine's failures.
std::map<long, bool> assignmentsOfEvent(long eventKey);
// Adds a row for each device of the selection, after deleting all rows of the event where `clearFirst` says
// so. A failover device that the administrator declines gets an inactive row; one that is gone, or whose type
// could not be read, gets none.
// False when the old rows could not be cleared, or were not for a type that could not be read: nothing is
// added then.
bool addRecipientToEvent(long eventKey, const DeviceSelection& selection, bool clearFirst);
// Makes exactly the selected devices the event's active ones; deselected ones keep an inactive row. Entries
// that a row answers for leave the selection; the row of a selected device whose type is unknown stays as it
// is. True when the event had rows before.
bool changeRecipientsForEvent(long eventKey, DeviceSelection& selection);
// Takes all devices of a recipient off an event, all or none. True when the event has rows left.
bool removeRecipientFromEvent(long eventKey, long recipientKey);

}  // namespace mdlDatabase
