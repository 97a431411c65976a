// The program's entry and exit: whether the console may run on this machine, what it brings up and in which
// order, and the one orderly way out.
#pragma once

#include "platform/windowStation.h"

namespace mdlMain {

// Brings the console up. Ends the process when it may not run here, or when an earlier instance took over.
void Main(platform::WindowStation& station);
// Backs up the configuration database, closes help and ends the process.
[[noreturn]] void myFinalExit();
// Sets gPagerSupported, gSnmpSupported and gFailoverSupported.
void checkSupportNotificationDevices();
// Brings the earlier instance to the front and ends the process; returns when its window is not found.
void activatePrevInstance(platform::WindowStation& station);

}  // namespace mdlMain
