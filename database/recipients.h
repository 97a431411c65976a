// Recipients and their devices, as far as lists and states need them.
#pragma once

#include "platform/ado.h"

namespace mdlDatabase {

// All recipients by name; left open for the caller.
platform::Recordset getRecipients();
// False, with a failure in the log, when there is no such recipient.
bool isRecipientActive(long recipientKey);
// True when a device of the recipient has no entry in the directory.
bool invalidRecipientDevices(long recipientKey);
// State as a tree icon: 0 active, 1 has an unresolved device (outweighs the others), 2 inactive.
long getRecipientState(long recipientKey);

}  // namespace mdlDatabase
