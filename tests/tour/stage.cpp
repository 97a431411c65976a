#include "tour/stage.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QtTest/QTest>
#include <cstdio>
#include <cstdlib>

namespace tour {

namespace {
QString pictureFolder;
int pictureNumber = 0;
}  // namespace

void setPictureFolder(const QString& folder) {
    pictureFolder = folder;
    insist(QDir().mkpath(folder), "cannot make the folder " + folder);
}

void takePicture(const QString& name) {
    QTest::qWait(120);
    QWidgetList visible;
    QRect area;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible()) {
            // Main window first, then dialogs, popups on top.
            const bool front = window->isModal() || (window->windowFlags() & Qt::Popup) == Qt::Popup;
            front ? visible.append(window) : visible.prepend(window);
            area |= window->geometry();
        }
    // Of several dialogs the one that has the input lies on top.
    if (QWidget* top = QApplication::activeModalWidget(); top && visible.removeOne(top))
        visible.append(top);
    if (QWidget* popup = QApplication::activePopupWidget(); popup && visible.removeOne(popup))
        visible.append(popup);
    insist(!visible.isEmpty(), "nothing on the screen at the stop " + name);
    QImage picture(area.size(), QImage::Format_RGB32);
    picture.fill(QColor(90, 100, 112));
    QPainter painter(&picture);
    for (QWidget* window : visible) {
        const QRect place = window->geometry().translated(-area.topLeft());
        painter.drawPixmap(place.topLeft(), window->grab());
        painter.setPen(QColor(40, 45, 52));
        painter.drawRect(place.adjusted(0, 0, -1, -1));
    }
    painter.end();
    const QString file =
        QString("%1/%2-%3.png").arg(pictureFolder).arg(++pictureNumber, 2, 10, QChar('0')).arg(name);
    insist(picture.save(file), "cannot write " + file);
    std::printf("tour: %s\n", qPrintable(QFileInfo(file).fileName()));
    std::fflush(stdout);
}

void insist(bool condition, const QString& message) {
    if (condition)
        return;
    std::fprintf(stderr, "tour: %s\n", qPrintable(message));
    std::fflush(nullptr);
    std::_Exit(1);
}

void waitFor(const std::function<bool()>& condition, const QString& message) {
    insist(QTest::qWaitFor(condition, 5000), message);
}

void type(QWidget& target, const QString& text) {
    for (const QChar letter : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(&target, &press);
        QKeyEvent release(QEvent::KeyRelease, 0, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(&target, &release);
    }
}

void chooseMenu(QWidget& window, const QStringList& names) {
    auto* bar = window.findChild<QMenuBar*>();
    auto* menu = window.findChild<QMenu*>(names.first());
    insist(bar && menu, "no menu " + names.first());
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu->menuAction()).center());
    for (qsizetype i = 1; i < names.size(); ++i) {
        waitFor([&] { return menu->isVisible(); }, "the menu does not open: " + menu->objectName());
        QAction* entry = nullptr;
        for (QAction* candidate : menu->actions()) {
            const QString name =
                candidate->menu() ? candidate->menu()->objectName() : candidate->objectName();
            if (name == names[i])
                entry = candidate;
        }
        insist(entry && entry->isVisible() && entry->isEnabled(), "no menu entry to choose: " + names[i]);
        QMenu* next = entry->menu();
        if (i == names.size() - 1)
            takePicture("menu");
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
        menu = next;
    }
}

}  // namespace tour
