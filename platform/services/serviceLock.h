// What programs that use one service agree by: who holds a handle, and who starts it.
#pragma once

#include <string>
#include <string_view>

#include "platform/files/descriptor.h"

namespace platform {

// The form of a key name by which services are told apart: names that differ in case alone are one service's.
std::string foldedServiceName(std::string_view keyName);
// Makes the host's folder of service states where it is missing.
void ensureServicesFolder();

// Locks of one service; all of one instance go with it, also when the process dies.
class ServiceLock {
  public:
    // Takes no lock yet. Raises what opening a file raises.
    explicit ServiceLock(std::string_view keyName);

    // Held by every open handle, together with others.
    void holdHandle();
    // True when nobody holds a handle any more, this instance's own included, which it gives up. The lock
    // keeps new ones out until the instance goes.
    bool isLastHandle();
    // Waits until nobody else starts the service, and keeps others waiting.
    void beginStart();
    void endStart();

  private:
    bool lock(short type, long place, bool waits) const;

    Descriptor file_;
};

}  // namespace platform
