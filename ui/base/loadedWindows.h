// The console's windows that are loaded, shown or not, and what a change of language does to them all.
#pragma once

#include <functional>

class QWidget;

namespace ui {

// Every window of ours, the main window first. A window is known by its object name, as "frmMain" or
// "dlgEvent".
void forEachLoadedWindow(const std::function<void(QWidget&)>& action);

// Calls the procedure that a window declares invokable under its own name and an ending, such as
// "frmMain_ControlInit", which sets its captions, or "frmMain_AddressDetailsRebuilt". Does nothing for a
// window that has none.
void callProcedure(QWidget& window, const char* ending);

// The window that a box or a notice belongs to: the active one, else the dialog that has the input, else the
// main window. Between two boxes the system may have no active window for a moment. Null while there is none.
QWidget* frontWindow();

}  // namespace ui
