// The list of this server's event sources, for the windows that offer one.
#pragma once

class QComboBox;

namespace ui {

// Fills the list anew; nothing is selected then. Whether that counts as a change is the caller's affair.
void fillEventSources(QComboBox& comboEventSource);

}  // namespace ui
