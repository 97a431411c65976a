// The toolkit's own words: Yes and No on boxes, the file dialog, the menus of text boxes.
#pragma once

namespace ui {

// Lets the toolkit speak the console's language where it can; English otherwise, and wherever the console
// itself has fallen back to English.
void translateToolkit();
// The same in a language of the system, for a program that has no string libraries. English for one that the
// toolkit does not know.
void translateToolkit(long languageId);

}  // namespace ui
