// The choice between all ids of a source and a single one, as the new event and the windows of exclusions
// offer it.
#pragma once

#include <vector>

class QGroupBox;
class QRadioButton;

namespace ui {

class NumberBox;

enum EventIdChoice { allEventIds = 0, specificEventId = 1 };

struct EventIdControls {
    std::vector<QRadioButton*> optionEventId;  // by EventIdChoice
    NumberBox* tdbnlSpecificEventId;
};
// String-table ids of the captions.
struct EventIdCaptions {
    long frame;
    long all;
    long specific;
};
inline constexpr EventIdCaptions exclusionIdCaptions{1143, 1307, 1308};

// Limits of the box in the dialogs. They are wider than what an id can be, which whoever reads the box
// checks.
inline constexpr long long eventIdLimit = 999'999'999'999'999;

// Makes the controls in a frame; the room of the box is kept while it is hidden.
EventIdControls makeEventIdControls(QGroupBox& frame, long long lowest = -eventIdLimit,
                                    long long highest = eventIdLimit);
// One below the other, the box beside its option.
void layOutEventIdControls(QGroupBox& frame, const EventIdControls& controls);
// Captions and names from the string table.
void captionEventIdControls(QGroupBox& frame, const EventIdControls& controls,
                            const EventIdCaptions& captions);
// True when a single id is chosen and the box holds none.
bool isEventIdMissing(const EventIdControls& controls);

}  // namespace ui
