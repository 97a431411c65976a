// The tips of cells and nodes.
#pragma once

class QAbstractItemView;
class QHelpEvent;
class QKeyEvent;

namespace ui {

// Shows the whole text of the cell under the pointer when the cell is too narrow for it; false when there is
// nothing to show, because a cell that shows all it has needs no tip.
bool showCutText(const QAbstractItemView& view, const QHelpEvent& event);

// Ctrl+F1 asks for the tip of what is chosen, as a pointer that rests there does.
bool isTipKey(const QKeyEvent& event);
// Does so for that key, and is true then.
bool showTipByKey(QAbstractItemView& view, const QKeyEvent& event);

}  // namespace ui
