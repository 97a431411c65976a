// Recipients: a name with up to seven kinds of notification device. After a change here the caller rebuilds
// the address details.
#pragma once

#include <set>

#include "database/recipientRecord.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

// Recordsets are left open for the caller, who reads and closes them; one that failed to open is closed.
platform::Recordset getRecipient(long recipientKey);
// All recipients by name.
platform::Recordset getRecipients();
// A row for each of a recipient's devices, with its address details and his name and state: none for a
// recipient without any. A device that has no details raises a failure of our own, number 1002 above the
// object-error base: whoever saves rows that miss it deletes it. These three are statements of the caller's
// procedure, who closes what they open: they raise the engine's failures.
platform::Recordset openRecipientWithDevices(long recipientKey);
// His name and state alone, for one without such a row.
platform::Recordset openRecipientAlone(long recipientKey);
// The events that any of his devices is on, silent or not, the hidden one included.
platform::Recordset openEventsForRecipient(long recipientKey);
// 0 on failure.
long countRecipients();

// Creates an active recipient with the record's devices, on no event. The new key; 0 when his row could not
// be written.
long addNewRecipient(const RecipientRecord& record);
// Makes the stored devices those of the record. A device that stays keeps its key, and with it its events.
// Without such a recipient the log tells so and nothing is written.
void modifyRecipient(long recipientKey, const RecipientRecord& record);
// Asks first; true when deleted, with all his devices.
bool deleteRecipient(long recipientKey);

// His devices and their assignments stay as they are.
void setRecipientActiveState(long recipientKey, bool active);
// False, with a failure in the log, when there is no such recipient.
bool isRecipientActive(long recipientKey);
// True when a device of the recipient has no entry in the directory.
bool invalidRecipientDevices(long recipientKey);
// As a tree icon. A device without its entry in the directory outweighs the others.
enum RecipientState : long { recipientActive = 0, recipientUnresolved, recipientInactive };
RecipientState getRecipientState(long recipientKey);
// The same for all recipients at once, for the tree: who has an unresolved device, in one statement (empty on
// failure), and with it the state of a row of getRecipients, which raises the row's failures.
std::set<long> recipientsWithInvalidDevices();
RecipientState stateOfRecipient(const platform::Recordset& recipient,
                                const std::set<long>& withInvalidDevices);

}  // namespace mdlDatabase
