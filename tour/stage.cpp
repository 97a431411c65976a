#include "tour/stage.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QPalette>
#include <QTimer>
#include <QtTest/QTest>
#include <cstdio>
#include <cstdlib>

namespace tour {

namespace {

QString pictureFolder;
int roundNumber = 0;
int pictureNumber = 0;

// The main window first, then dialogs, popups on top; of several dialogs the one that has the input lies
// over the others.
QWidgetList visibleWindows() {
    QWidgetList visible;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible()) {
            const Qt::WindowType type = window->windowType();
            const bool front =
                window->isModal() || type == Qt::Popup || type == Qt::ToolTip || type == Qt::SplashScreen;
            front ? visible.append(window) : visible.prepend(window);
        }
    for (QWidget* top :
         {QApplication::activeWindow(), QApplication::activeModalWidget(), QApplication::activePopupWidget()})
        if (top && visible.removeOne(top))
            visible.append(top);
    return visible;
}

// A screen without a window manager draws no frames, so the pictures do: a window's title belongs to it.
constexpr int titleHeight = 28;

bool hasTitle(const QWidget& window) {
    return window.windowType() == Qt::Window || window.windowType() == Qt::Dialog;
}

QRect frameOf(const QWidget& window) {
    return window.geometry().adjusted(0, hasTitle(window) ? -titleHeight : 0, 0, 0);
}

void draw(QPainter& painter, QWidget& window, const QPoint& origin) {
    const QRect frame = frameOf(window).translated(-origin);
    const QColor dark(52, 60, 72);
    if (hasTitle(window)) {
        QRect title = frame;
        title.setHeight(titleHeight);
        painter.fillRect(title, dark);
        painter.setPen(Qt::white);
        painter.drawText(
            title.adjusted(10, 0, -10, 0), Qt::AlignVCenter | Qt::AlignLeft,
            painter.fontMetrics().elidedText(window.windowTitle(), Qt::ElideRight, title.width() - 20));
    }
    painter.drawPixmap(window.geometry().topLeft() - origin, window.grab());
    if (window.windowType() == Qt::ToolTip)
        return;  // which has a frame of its own
    painter.setPen(dark);
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
}

}  // namespace

void darken() {
    QPalette dark(QColor(60, 63, 68), QColor(45, 47, 51));
    dark.setColor(QPalette::Base, QColor(30, 32, 35));
    dark.setColor(QPalette::AlternateBase, QColor(38, 40, 44));
    dark.setColor(QPalette::Highlight, QColor(42, 110, 180));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(130, 177, 255));
    QApplication::setPalette(dark);
}

void setPictures(const QString& folder, int round) {
    pictureFolder = folder;
    roundNumber = round;
    insist(QDir().mkpath(folder), "cannot make the folder " + folder);
}

void takePicture(const QString& name) {
    QTest::qWait(120);
    const QWidgetList visible = visibleWindows();
    insist(!visible.isEmpty(), "nothing on the screen at the stop " + name);
    QRect area;
    // The smallest screen that the console is made for.
    constexpr QSize smallestScreen(1280, 1024);
    for (const QWidget* window : visible) {
        const QRect frame = frameOf(*window);
        insist(frame.width() <= smallestScreen.width() && frame.height() <= smallestScreen.height(),
               "too large for a small screen: " + window->windowTitle());
        area |= frame;
    }
    const qreal scale = visible.first()->devicePixelRatio();
    QImage picture((QSizeF(area.size()) * scale).toSize(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(QColor(90, 100, 112));
    QPainter painter(&picture);
    painter.setFont(QApplication::font());
    for (QWidget* window : visible)
        draw(painter, *window, area.topLeft());
    painter.end();
    const QString file = QString("%1/%2%3-%4.png")
                             .arg(pictureFolder)
                             .arg(roundNumber)
                             .arg(++pictureNumber, 2, 10, QChar('0'))
                             .arg(name);
    insist(picture.save(file), "cannot write " + file);
    std::printf("tour: %s\n", qPrintable(QFileInfo(file).fileName()));
    std::fflush(stdout);
}

void takePictureWhenShown(const QString& window, const QString& name) {
    constexpr int lookEvery = 20;  // ms
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, window, name] {
        for (const QWidget* candidate : QApplication::topLevelWidgets())
            if (candidate->objectName() == window && candidate->isVisible()) {
                timer->stop();
                timer->deleteLater();
                return takePicture(name);
            }
    });
    timer->start(lookEvery);
}

void insist(bool condition, const QString& message) {
    if (condition)
        return;
    std::fprintf(stderr, "tour: %s\n", qPrintable(message));
    std::fflush(nullptr);
    std::_Exit(1);
}

void waitFor(const std::function<bool()>& condition, const QString& message) {
    constexpr int longest = 10'000;  // ms
    insist(QTest::qWaitFor(condition, longest), message);
}

}  // namespace tour
