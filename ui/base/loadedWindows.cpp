#include "ui/base/loadedWindows.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>

namespace ui {

void forEachLoadedWindow(const std::function<void(QWidget&)>& action) {
    QWidgetList windows;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName().startsWith("frm") || window->objectName().startsWith("dlg"))
            windows.append(window);
    std::stable_partition(windows.begin(), windows.end(),
                          [](const QWidget* window) { return window->objectName() == "frmMain"; });
    // An action may unload a window that was loaded when the list was made.
    for (QWidget* window : windows)
        if (QApplication::topLevelWidgets().contains(window))
            action(*window);
}

QWidget* frontWindow() {
    if (QWidget* active = QApplication::activeWindow())
        return active;
    if (QWidget* dialog = QApplication::activeModalWidget())
        return dialog;
    QWidget* shell = nullptr;
    forEachLoadedWindow([&](QWidget& window) {
        if (window.objectName() == "frmMain" && window.isVisible())
            shell = &window;
    });
    return shell;
}

void callProcedure(QWidget& window, const char* ending) {
    const QByteArray procedure = window.objectName().toLatin1() + ending;
    if (window.metaObject()->indexOfMethod(procedure + "()") >= 0)
        QMetaObject::invokeMethod(&window, procedure.constData(), Qt::DirectConnection);
}

}  // namespace ui
