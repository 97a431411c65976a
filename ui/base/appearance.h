// The console's looks: the toolkit's plain style with room to breathe, icons of our own in boxes, and a
// palette whose grey can be read. Light and dark follow the system.
#pragma once

namespace ui {

// Sets style and palette of the application. Call once, after the application object is made.
void applyAppearance();

}  // namespace ui
