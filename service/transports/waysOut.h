// The transports that are made of the host's ways out.
#pragma once

#include <memory>
#include <mutex>

#include "service/transports/transport.h"
#include "service/transports/waysOutSettings.h"

namespace service {

// Nothing for a kind with a problem.
std::unique_ptr<Transport> makeTransport(const WaysOutSettings& settings, DeviceKind kind);

// The settings of now, for the thread that refreshes them and for those that send.
class WaysOut {
  public:
    // Reads the settings again; true when they have changed. Raises platform::Failure.
    bool refresh();
    WaysOutSettings settings() const;
    bool isSetUp(DeviceKind kind) const { return problemOf(settings(), kind).empty(); }
    std::unique_ptr<Transport> make(DeviceKind kind) const { return makeTransport(settings(), kind); }

  private:
    mutable std::mutex mutex_;
    WaysOutSettings settings_;
};

}  // namespace service
