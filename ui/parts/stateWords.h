// The words for what the eye is told by a sign or a colour, in the present language. The string table has
// them within longer texts.
#pragma once

#include <string>

namespace ui {

// "Active" or "Inactive".
std::string activeWord(bool active);
// "Address Not Found", of a recipient with a device whose entry of the directory is gone.
std::string unresolvedWord();

}  // namespace ui
