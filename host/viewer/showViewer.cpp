#include "host/viewer/showViewer.h"

#include <QApplication>
#include <QKeySequence>
#include <QShortcut>
#include <QWidget>

#include "platform/machine/process.h"

namespace viewer {

int showViewer(QWidget& window) {
    QObject::connect(new QShortcut(QKeySequence::Close, &window), &QShortcut::activated, &window,
                     &QWidget::close);
    platform::startedMaximized() ? window.showMaximized() : window.show();
    window.raise();
    window.activateWindow();
    return QApplication::exec();
}

}  // namespace viewer
