// The program's entry and exit: whether the console may run on this machine, what it brings up and in which
// order, and the one orderly way out.
#pragma once

#include <memory>

#include "platform/machine/windowStation.h"

class QSocketNotifier;

namespace mdlMain {

// Answers later instances whenever events are processed, so also while a box of the start waits; brings the
// main window, once it is there, back to the front for them. The station outlives it.
class InstanceServer {
  public:
    explicit InstanceServer(platform::WindowStation& station);
    ~InstanceServer();
    InstanceServer(const InstanceServer&) = delete;
    InstanceServer& operator=(const InstanceServer&) = delete;

  private:
    std::unique_ptr<QSocketNotifier> requests_;
};

// Brings the console up. Ends the process when it may not run here, or when an earlier instance took over.
void Main(platform::WindowStation& station);
// Backs up the configuration database, closes help and ends the process.
[[noreturn]] void myFinalExit();
// Sets gPagerSupported, gSnmpSupported and gFailoverSupported.
void checkSupportNotificationDevices();
// Brings the earlier instance to the front and ends the process; returns when its window is not found.
void activatePrevInstance(platform::WindowStation& station);

}  // namespace mdlMain
