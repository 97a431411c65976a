#include "support/person.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QtTest/QTest>
#include <deque>

#include "ui/widgets/tabRows.h"

namespace person {

namespace {

// False, and a failure, when nobody could do anything to the control.
bool canReach(const QWidget& control) {
    const bool reached = control.isVisible() && control.isEnabled();
    EXPECT_TRUE(reached) << qPrintable(control.objectName()) << " is "
                         << (control.isVisible() ? "off" : "out of sight");
    return reached;
}

QMenu* menuOf(const QAction& entry) {
    for (QObject* place : entry.associatedObjects())
        if (auto* menu = qobject_cast<QMenu*>(place))
            return menu;
    return nullptr;
}

template <class Menu>
void clickEntry(Menu& menu, QAction& entry) {
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&entry).center());
}

}  // namespace

void click(QAbstractButton& button) {
    if (!canReach(button))
        return;
    constexpr int sign = 8;  // within the sign of a box or an option
    const bool whole = qobject_cast<QPushButton*>(&button) || !button.isCheckable();
    QTest::mouseClick(&button, Qt::LeftButton, {},
                      whole ? button.rect().center() : QPoint(sign, button.height() / 2));
}

void click(const QWidget& window, const char* button) {
    auto* found = window.findChild<QAbstractButton*>(button);
    ASSERT_TRUE(found) << button;
    click(*found);
}

void clickInto(QWidget& box) {
    if (!canReach(box))
        return;
    auto* area = qobject_cast<QAbstractScrollArea*>(&box);
    QTest::mouseClick(area ? area->viewport() : &box, Qt::LeftButton);
    EXPECT_TRUE(box.hasFocus()) << "a click does not go into " << qPrintable(box.objectName());
}

void type(QWidget& box, const QString& text) {
    if (!canReach(box))
        return;
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(&box, Qt::Key_Delete);
    for (const QChar letter : text) {
        if (letter == '\n')
            QTest::keyClick(&box, Qt::Key_Return);
        else
            QTest::sendKeyEvent(QTest::Click, &box, Qt::Key_unknown, QString(letter), {});
    }
}

void paste(QWidget& box, const QString& text) {
    if (!canReach(box))
        return;
    QGuiApplication::clipboard()->setText(text);
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_V, Qt::ControlModifier);
}

void chooseRow(QComboBox& list, int row) {
    if (!canReach(list))
        return;
    const QStyle& style = *list.style();
    QStyleOptionComboBox option;
    option.initFrom(&list);
    option.editable = list.isEditable();
    QTest::mouseClick(
        &list, Qt::LeftButton, {},
        style.subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, &list).center());
    QAbstractItemView& view = *list.view();
    ASSERT_TRUE(view.isVisible()) << qPrintable(list.objectName());
    QTest::keyClick(&view, Qt::Key_Home);
    for (int i = 0; i < row; ++i)
        QTest::keyClick(&view, Qt::Key_Down);
    QTest::keyClick(&view, Qt::Key_Return);
    // As a window manager does, which the offscreen platform lacks.
    list.window()->activateWindow();
    QCoreApplication::processEvents();
}

void showPage(const ui::TabRows& pages, int index) {
    for (QAbstractButton* tab : pages.findChild<QWidget*>("tabStrip")->findChildren<QAbstractButton*>())
        if (tab->text() == pages.tabText(index)) {
            if (canReach(*tab))
                QTest::mouseClick(tab, Qt::LeftButton);
            return;
        }
    ADD_FAILURE() << "no tab " << index;
}

void showPage(const QTabWidget& pages, int index) {
    if (canReach(*pages.tabBar()))
        QTest::mouseClick(pages.tabBar(), Qt::LeftButton, {}, pages.tabBar()->tabRect(index).center());
}

void chooseTool(const QMainWindow& window, const QString& entryName) {
    auto* entry = window.findChild<QAction*>(entryName);
    ASSERT_TRUE(entry) << qPrintable(entryName);
    for (const QToolBar* bar : window.findChildren<QToolBar*>())
        if (auto* button = qobject_cast<QAbstractButton*>(bar->widgetForAction(entry)))
            return click(*button);
    ADD_FAILURE() << qPrintable(entryName) << " is in no tool bar";
}

void chooseMenu(QMainWindow& window, const QString& entryName) {
    auto* entry = window.findChild<QAction*>(entryName);
    ASSERT_TRUE(entry) << qPrintable(entryName);
    std::deque<QMenu*> path;
    for (QMenu* menu = menuOf(*entry); menu; menu = menuOf(*menu->menuAction()))
        path.push_front(menu);
    ASSERT_TRUE(!path.empty() && window.menuBar()->actions().contains(path.front()->menuAction()))
        << qPrintable(entryName) << " is in no menu of the bar";
    ASSERT_FALSE(QApplication::activeModalWidget()) << "a dialog stands before the menu";
    clickEntry(*window.menuBar(), *path.front()->menuAction());
    for (std::size_t i = 1; i < path.size(); ++i) {
        clickEntry(*path[i - 1], *path[i]->menuAction());
        EXPECT_TRUE(QTest::qWaitFor([&] { return path[i]->isVisible(); }, 1000));
    }
    EXPECT_TRUE(path.back()->isVisible() && entry->isVisible() && entry->isEnabled())
        << qPrintable(entryName) << " cannot be chosen";
    clickEntry(*path.back(), *entry);
    for (QMenu* menu : path)
        menu->close();  // of an entry that could not be chosen
}

}  // namespace person
