// The test notification: a real event that the service answers.
#pragma once

namespace mdlUtility {

// Puts the recipient's devices, all of them, on the hidden event, activates it, and writes the test event to
// the Application log. The service does the rest.
void generateTestEventLogMessage(long recipientKey);

}  // namespace mdlUtility
