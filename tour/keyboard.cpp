#include "tour/keyboard.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QLineEdit>
#include <QSet>
#include <QTabBar>
#include <QTextEdit>
#include <QToolBar>
#include <QtTest/QTest>
#include <algorithm>

#include "tour/stage.h"

namespace tour {

namespace {

bool isInput(const QWidget& widget) {
    return qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget) || qobject_cast<const QComboBox*>(&widget) ||
           qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QTextEdit*>(&widget) ||
           qobject_cast<const QTabBar*>(&widget);
}

// A part of another control, such as the line of a list that can be typed into, has no stop of its own; nor
// has a sign inside a line, and the buttons of a bar have shortcuts instead.
bool isPart(const QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    return widget.objectName().startsWith("qt_") || qobject_cast<const QComboBox*>(parent) ||
           qobject_cast<const QAbstractSpinBox*>(parent) || qobject_cast<const QLineEdit*>(parent) ||
           qobject_cast<const QAbstractItemView*>(parent) || qobject_cast<const QTabBar*>(parent) ||
           qobject_cast<const QToolBar*>(parent) ||
           (parent && qobject_cast<const QComboBox*>(parent->parent()));
}

// The options of one group are one stop; the arrow keys go on from there.
bool isReached(const QWidget& widget, const QSet<const QWidget*>& stops) {
    const auto* option = qobject_cast<const QAbstractButton*>(&widget);
    if (stops.contains(&widget) || !option)
        return stops.contains(&widget);
    return std::ranges::any_of(stops, [&](const QWidget* stop) {
        const auto* other = qobject_cast<const QAbstractButton*>(stop);
        return other && other->parentWidget() == option->parentWidget() &&
               ((option->group() && other->group() == option->group()) ||
                (option->autoExclusive() && other->autoExclusive()));
    });
}

QImage look(QWidget& window) {
    QCoreApplication::processEvents();
    return window.grab().toImage();
}

// The stops from the present one until it comes again. A date has stops within itself.
QSet<const QWidget*> stopsOf(QWidget& window, Qt::Key key, const QString& name) {
    constexpr int enough = 300;
    constexpr int sectionsOfADate = 6;
    int staying = 0;
    QSet<const QWidget*> stops;
    const QWidget* previous = nullptr;
    QImage before;
    for (int i = 0; i < enough; ++i) {
        QWidget* here = window.focusWidget();
        if (!here) {
            insist(false, "no control has the focus in " + name);
            return stops;
        }
        const QImage after = look(window);
        // Before the first key the window does not know that it is worked by keyboard.
        insist(stops.size() < 2 || here == previous || after != before,
               "the focus cannot be seen in " + name + " on " + here->objectName());
        staying = here == previous ? staying + 1 : 0;
        if (stops.contains(here) && (staying == 0 || staying > sectionsOfADate))
            return stops;
        stops.insert(here);
        previous = here;
        before = after;
        QTest::keyClick(here, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
    insist(false, "Tab does not come round in " + name);
    return stops;
}

}  // namespace

void walkByKeyboard(QWidget& window) {
    const QString name = window.objectName();
    // A screen without a window manager gives nobody the input back when a window over this one closes.
    window.activateWindow();
    QApplication::setActiveWindow(&window);
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        const QSet<const QWidget*> stops = stopsOf(window, key, name);
        for (const QWidget* widget : window.findChildren<QWidget*>())
            if (widget->isVisible() && widget->isEnabled() && widget->window() == &window &&
                isInput(*widget) && !isPart(*widget))
                insist(isReached(*widget, stops), "Tab does not reach " + widget->objectName() + " (" +
                                                      widget->metaObject()->className() + ") in " + name);
    }
}

}  // namespace tour
