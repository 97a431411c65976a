// What a person's hands do in the tour, by mouse and keyboard. Controls are found by object name and words by
// their number in the string table, so that a round can be played in every language.
#pragma once

#include <QMessageBox>
#include <QString>
#include <QWidget>
#include <functional>
#include <string>

#include "support/windowScript.h"
#include "ui/parts/deviceTabs.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/keyedTree.h"

namespace tour {

// Types a text key by key; letters outside Latin-1's keys too.
void type(QWidget& target, const QString& text);
// Types over what a line, or a number box, holds.
void typeOver(QWidget& window, const char* name, const QString& text);
// Presses a button of the window, which must be enabled.
void press(QWidget& window, const char* name);
// Clicks on the sign of a check box or an option.
void tick(QWidget& window, const char* name);
// Chooses the row of a list that begins with the text by typing it.
void chooseByTyping(QWidget& window, const char* name, const QString& text);

// Chooses a menu entry of the menu bar by mouse: the names of the menus and of the entry, outermost first.
// Takes a picture of the opened menu when it is given a name.
void chooseMenu(QWidget& window, const QStringList& names, const QString& picture = {});
void clickNode(ui::KeyedTree& tree, const std::string& key, Qt::MouseButton button = Qt::LeftButton);
void clickCell(ui::KeyedGrid& grid, int row, const char* column);
// The row with that text in its column; 0 when there is none.
int rowOf(ui::KeyedGrid& grid, const char* column, const QString& text);
// The node of that type and key; insists that there is one.
std::string nodeOf(const frmMain& window, long nodeType, long key);

// Brings a recipient's devices of that kind, 0 to 6, to the front by a click on their tab.
void showTab(ui::DeviceTabs& tabs, int tab);

// The next window is a message box with the title of that number in the string table, or with the one that is
// known when it comes: takes its picture, if that has a name, and presses the button.
void expectBox(support::WindowScript& script, long title, QMessageBox::StandardButton answer,
               const QString& picture = {});
void expectBox(support::WindowScript& script, const std::function<QString()>& title,
               QMessageBox::StandardButton answer, const QString& picture = {});

}  // namespace tour
