// The list of this server's event sources, for the windows that offer one.
#pragma once

#include <QString>
#include <string>

class QComboBox;

namespace ui {

// Fills the list anew; nothing is selected then. Whether that counts as a change is the caller's affair.
void fillEventSources(QComboBox& comboEventSource);

// An exclusion's column takes no longer source; whoever chooses one is told its length and the limit.
bool isStorableExclusion(const std::string& source);
QString tooLongForAnExclusion(const std::string& source);

// A long source makes neither the list nor its window wider than the window was meant to be.
void boundWidth(QComboBox& comboEventSource);

}  // namespace ui
