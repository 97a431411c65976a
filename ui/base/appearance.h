// The console's looks: the toolkit's plain style with room to breathe, icons of our own in boxes, and a
// palette whose grey can be read. Light and dark follow the system.
#pragma once

#include <QPalette>

namespace ui {

// The palette with every text readable on its ground: what is grey, marked or a link too.
QPalette readablePalette(QPalette palette);

// Sets style and palette of the application. Call once, after the application object is made.
void applyAppearance();

}  // namespace ui
