// How the service behaves, by a setting of the host: so that every way in which a service can fail its
// manager can be seen on a demonstration host.
#pragma once

#include <chrono>

namespace service {

enum class Behaviour {
    good,
    neverReport,       // stays silent after its start
    failToStart,       // ends while its start is pending
    hangInStart,       // its start stays pending
    hangInStop,        // its stop stays pending
    crashWhileRunning  // dies of a signal half a second after it has come to run
};

struct Settings {
    Behaviour behaviour = Behaviour::good;
    std::chrono::milliseconds startDelay{0};  // how long the start is pending
    std::chrono::milliseconds stopDelay{0};   // how long the stop is pending
};

// Reads the values "ServiceBehaviour" (one of the names above), "ServiceStartDelay" and "ServiceStopDelay"
// (milliseconds, a minute at most) of the product's registry key. What is missing or unknown is good
// behaviour without delay. Raises platform::Failure for a registry that cannot be read.
Settings readSettings();

}  // namespace service
