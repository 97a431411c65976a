// The toolkit's own words: Yes and No on boxes, the file dialog, the menus of text boxes.
#pragma once

namespace ui {

// Lets the toolkit speak the console's language where it can; English otherwise, and wherever the console
// itself has fallen back to English.
void translateToolkit();

}  // namespace ui
