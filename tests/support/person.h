// What a person does to a window: only what is to be seen and switched on can be clicked and typed into, and
// anything else fails the test.
#pragma once

#include <QString>

class QAbstractButton;
class QComboBox;
class QMainWindow;
class QTabWidget;
class QWidget;

namespace ui {
class TabRows;
}  // namespace ui

namespace person {

// Clicks a button; a box or an option on its sign.
void click(QAbstractButton& button);
// The same, for what is a button by its object name below `window`.
void click(const QWidget& window, const char* button);
// Takes the keyboard into the box by a click; it fails the test when it stays elsewhere.
void clickInto(QWidget& box);
// Puts the text into the box in place of what it holds, key by key. A line feed is the Enter key.
void type(QWidget& box, const QString& text);
// Pastes behind what the box holds.
void paste(QWidget& box, const QString& text);
// Opens the list by mouse and takes a row by keyboard.
void chooseRow(QComboBox& list, int row);
// Clicks a tab.
void showPage(const ui::TabRows& pages, int index);
void showPage(const QTabWidget& pages, int index);
// Clicks a tool of a tool bar, by its object name.
void chooseTool(const QMainWindow& window, const QString& entryName);
// Chooses an entry by its object name: opens its menu in the menu bar and the ones within, and clicks it.
void chooseMenu(QMainWindow& window, const QString& entryName);

}  // namespace person
