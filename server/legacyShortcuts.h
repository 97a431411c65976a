// Shortcuts of the legacy tool.
#pragma once

namespace mdlUtility {

// Deletes the first shortcut of the legacy tool from the menu; a start removes one, the next one the next.
void removeKTNShortcuts();

}  // namespace mdlUtility
