// The console's windows that are loaded, shown or not, and what a change of language does to them all.
#pragma once

#include <functional>

class QWidget;

namespace ui {

// Every window of ours, the main window first. A window is known by its object name, as "frmMain" or
// "dlgEvent".
void forEachLoadedWindow(const std::function<void(QWidget&)>& action);

// Calls the window's own procedure of captions by its name, such as "frmMain_ControlInit", which the window
// declares invokable. Does nothing for a window that has none.
void callControlInit(QWidget& window);

// The window that a box or a notice belongs to: the active one, else the dialog that has the input, else the
// main window. Between two boxes the system may have no active window for a moment. Null while there is none.
QWidget* frontWindow();

}  // namespace ui
