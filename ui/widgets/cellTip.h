// The tips of cells and nodes.
#pragma once

#include <functional>

class QAbstractItemView;
class QHelpEvent;

namespace ui {

// Shows the whole text of the cell under the pointer when the cell is too narrow for it; false when there is
// nothing to show, because a cell that shows all it has needs no tip.
bool showCutText(const QAbstractItemView& view, const QHelpEvent& event);

// From now on Ctrl+F1 in the view asks for the tip of what is chosen, as a pointer that rests there does.
// `prepare` is called before each such question.
void showTipByKey(QAbstractItemView& view, std::function<void()> prepare = {});

}  // namespace ui
