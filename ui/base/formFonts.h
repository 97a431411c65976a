// Fonts of a window by the language in use.
#pragma once

class QWidget;

namespace ui {

// Applies setControlFont to the window and each of its controls.
void setFormFonts(QWidget& window);
// Gives a control the font that the present language needs, or its designed font back.
void setControlFont(QWidget& control);

}  // namespace ui
