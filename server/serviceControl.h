// The server's services: their state, and moving them between stopped and running. A failure is logged with
// the system's error number and gives false; nothing is shown. A wait lasts up to 20 polls, one second apart.
#pragma once

#include <string_view>

namespace mdlUtility {

// True when the service is in state 4 (running).
bool isServiceRunning(std::string_view name);
// True when the service is stopped at the end.
bool myStopService(std::string_view name);
// True when the service is running at the end.
bool myStartService(std::string_view name);
// Stops and deletes the Quillon Service, whatever comes of it; the status window tells. Its files and event
// sources stay.
void uninstallQLNService();

}  // namespace mdlUtility
