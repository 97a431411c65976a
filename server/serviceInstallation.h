// The Quillon Service's installation on this server.
#pragma once

namespace mdlUtility {

// Installs the service the first time, with the password that the administrator gives, and upgrades it later.
// True when the console may go on: the service is there, though it may not run. False when the password
// prompt was cancelled or the start took too long. May end the process like upgradeQLNService.
bool installQLNService();
// Brings the service up to the kit's version when that is newer. Ends the process when the service does not
// stop.
void upgradeQLNService();

}  // namespace mdlUtility
