#include "ui/base/application.h"

#include <exception>

#include "core/classLog.h"
#include "ui/base/text.h"

namespace ui {

bool Application::notify(QObject* receiver, QEvent* event) {
    // The receiver may be gone when its handler has thrown.
    const QString name = receiver ? receiver->objectName() : QString();
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        tell(toUtf8(name), error.what());
    } catch (...) {
        tell(toUtf8(name), "of no known kind");
    }
    return true;
}

void Application::tell(const std::string& receiver, const std::string& what) {
    core::gLog().log("An event handler of \"" + receiver + "\" has thrown: " + what, core::logError,
                     "[Application]notify");
}

}  // namespace ui
