// The Quillon Service's installation on this server.
#pragma once

namespace mdlUtility {

// True when the service is installed and the console may go on.
bool installQLNService();
// Deletes the first shortcut of the legacy tool from the menu.
void removeKTNShortcuts();

}  // namespace mdlUtility
