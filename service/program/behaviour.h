// How a service of the demonstration host behaves, by a setting of the host: so that every way in which a
// service can fail its manager can be seen there.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

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
    std::chrono::milliseconds pollingPause{
        0};  // between two looks; 0 leaves it to the service's own settings
};

// Reads the values "ServiceBehaviour" (one of the names above), "ServiceStartDelay", "ServiceStopDelay" and
// "ServicePollingPause" (milliseconds, a minute at most) of a registry key. What is missing or unknown is
// good behaviour without delay. Raises platform::Failure for a registry that cannot be read.
Settings readSettings(std::string_view key);

// The registry's text value, empty when it is missing or no text. Raises platform::Failure.
std::string textValue(std::string_view key, std::string_view name);

}  // namespace service
