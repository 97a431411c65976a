// The choice between all ids of a source and a single one, as the windows of exclusions offer it.
#pragma once

#include <vector>

class QBoxLayout;
class QGroupBox;
class QRadioButton;

namespace ui {

class NumberBox;

enum EventIdChoice { allEventIds = 0, specificEventId = 1 };

// Limits of the box for an id. They are wider than what an id can be, which whoever reads the box checks.
inline constexpr long long eventIdLimit = 999'999'999'999'999;

struct EventIdControls {
    std::vector<QRadioButton*> optionEventId;  // by EventIdChoice
    NumberBox* tdbnlSpecificEventId;
};
// Makes the controls in a frame and lays them out; the row keeps its height while the box is hidden.
EventIdControls makeEventIdControls(QGroupBox& frame);
// Captions and names from the string table.
void captionEventIdControls(QGroupBox& frame, const EventIdControls& controls);

}  // namespace ui
