// The tip of a grid's cell.
#pragma once

class QAbstractItemView;
class QHelpEvent;

namespace ui {

// Shows the whole text of the cell under the pointer when the cell is too narrow for it; false when there is
// nothing to show, because a cell that shows all it has needs no tip.
bool showCutText(const QAbstractItemView& view, const QHelpEvent& event);

}  // namespace ui
