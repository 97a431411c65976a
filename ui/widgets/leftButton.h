// Which mouse button chooses in a list.
#pragma once

class QAbstractItemView;

namespace ui {

// Only the left button chooses. The toolkit would move the list's current row under any other one too, and
// nobody would hear of it: what is highlighted would not be what the window works with.
void chooseByLeftButtonOnly(QAbstractItemView& view);

}  // namespace ui
