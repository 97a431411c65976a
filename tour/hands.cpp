#include "tour/hands.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QtTest/QTest>

#include "tour/stage.h"
#include "ui/base/text.h"

namespace tour {

void type(QWidget& target, const QString& text) {
    for (const QChar letter : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(&target, &press);
        QKeyEvent release(QEvent::KeyRelease, 0, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(&target, &release);
    }
}

void typeOver(QWidget& window, const char* name, const QString& text) {
    auto& box = control<QWidget>(window, name);
    insist(box.isVisible() && box.isEnabled(), QString("nothing can be typed into ") + name);
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
    type(box, text);
}

void press(QWidget& window, const char* name) {
    auto& button = control<QAbstractButton>(window, name);
    insist(button.isVisible() && button.isEnabled(), QString("cannot be pressed: ") + name);
    QTest::mouseClick(&button, Qt::LeftButton);
}

void tick(QWidget& window, const char* name) {
    auto& button = control<QAbstractButton>(window, name);
    insist(button.isVisible() && button.isEnabled(), QString("cannot be ticked: ") + name);
    constexpr int intoTheSign = 8;  // pixels
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(intoTheSign, button.height() / 2));
}

void chooseByTyping(QWidget& window, const char* name, const QString& text) {
    auto& list = control<QComboBox>(window, name);
    list.setFocus();
    QTest::keyClicks(&list, text);
    insist(list.currentText().startsWith(text), QString(name) + " does not offer " + text);
}

void chooseMenu(QWidget& window, const QStringList& names, const QString& picture) {
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
        if (i == names.size() - 1 && !picture.isEmpty()) {
            QTest::mouseMove(menu, menu->actionGeometry(entry).center());
            takePicture(picture);
        }
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
        menu = next;
    }
}

void clickNode(ui::KeyedTree& tree, const std::string& key, Qt::MouseButton button) {
    tree.ensureVisible(key);
    for (QTreeWidgetItem* item :
         tree.findItems(ui::fromUtf8(tree.nodeText(key)), Qt::MatchExactly | Qt::MatchRecursive)) {
        const QPoint place = tree.visualItemRect(item).center();
        if (tree.hitTest(place) == key) {
            QTest::mouseClick(tree.viewport(), button, {}, place);
            return;
        }
    }
    insist(false, "no node to click: " + ui::fromUtf8(key));
}

void clickCell(ui::KeyedGrid& grid, int row, const char* column) {
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRectangle(row, column).center());
}

int rowOf(ui::KeyedGrid& grid, const char* column, const QString& text) {
    for (int row = 1; row <= grid.gridRowCount(); ++row)
        if (ui::fromUtf8(grid.cellText(row, column)) == text)
            return row;
    return 0;
}

std::string nodeOf(const frmMain& window, long nodeType, long key) {
    std::string node = window.findNode(nodeType, key);
    insist(!node.empty(), "no node of type " + QString::number(nodeType) + " for " + QString::number(key));
    return node;
}

void showTab(ui::DeviceTabs& tabs, int tab) {
    const auto buttons = tabs.findChild<QWidget*>("tabStrip")->findChildren<QAbstractButton*>();
    insist(buttons.size() == tabs.count() && tabs.isTabVisible(tab), "a kind of device has no tab");
    QTest::mouseClick(buttons[tab], Qt::LeftButton);
    insist(tabs.currentIndex() == tab, "the tab does not come to the front");
}

void expectBox(support::WindowScript& script, const std::function<QString()>& title,
               QMessageBox::StandardButton answer, const QString& picture) {
    script.expect("messageBox", [title, answer, picture](QWidget& window) {
        insist(window.windowTitle() == title(), "another box: " + window.windowTitle());
        if (!picture.isEmpty())
            takePicture(picture);
        QAbstractButton* button = dynamic_cast<QMessageBox&>(window).button(answer);
        insist(button, "the box does not have the button: " + window.windowTitle());
        QTest::mouseClick(button, Qt::LeftButton);
    });
}

void expectBox(support::WindowScript& script, long title, QMessageBox::StandardButton answer,
               const QString& picture) {
    expectBox(
        script, [title] { return ui::text(title); }, answer, picture);
}

}  // namespace tour
