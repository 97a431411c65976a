// Shortcuts of the legacy tool.
#pragma once

namespace mdlUtility {

// Deletes the first shortcut of the legacy tool from the menu.
void removeKTNShortcuts();

}  // namespace mdlUtility
