// What the procedures that move a service share: the lines that they log, and their waits.
#pragma once

#include <string>
#include <string_view>

#include "core/procedure.h"
#include "platform/services/serviceManager.h"

namespace mdlUtility {

// Polls of a wait, one second apart.
inline constexpr int pollLimit = 20;

// Access of a handle that configures and starts a service.
inline constexpr std::uint32_t configureAndStart =
    platform::serviceChangeConfig | platform::serviceQueryStatus | platform::serviceStart;

// Logs a call of the service manager that failed, with the system's last error.
void logServiceError(core::Frame& frame, std::string_view introduction, std::uint32_t error);

// Queries the state; logs it, or that the query failed, which gives false and leaves `state` as it was.
bool queryState(core::Frame& frame, const platform::Service& service, std::string_view name,
                platform::ServiceState& state);

// Waits for state 1. On giving up it logs the warning; `state` is the last one known.
void pollUntilStopped(core::Frame& frame, const platform::Service& service, std::string_view name,
                      const std::string& warning, platform::ServiceState& state);

enum class StartOutcome { running, queryFailed, failedToStart, tookTooLong };
// Waits while the start is pending; everything but `running` is logged.
StartOutcome pollUntilStarted(core::Frame& frame, const platform::Service& service, std::string_view name);

}  // namespace mdlUtility
