// A window by keyboard alone.
#pragma once

#include <QWidget>

namespace tour {

// Goes through the window with Tab and back with Shift+Tab, and insists that both ways come by every control
// that can be used just now, and that each step can be seen.
void walkByKeyboard(QWidget& window);

}  // namespace tour
