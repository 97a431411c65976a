// State of the server's services.
#pragma once

#include <string_view>

namespace mdlUtility {

// True when the service is in state 4 (running).
bool isServiceRunning(std::string_view name);

}  // namespace mdlUtility
