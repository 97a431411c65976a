// What the tour needs to act like a person: looking at the screen, pointing, and insisting on what it sees.
#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>
#include <functional>
#include <string>

namespace tour {

// Folder for the pictures.
void setPictureFolder(const QString& folder);
// Writes a picture of all visible windows, as they lie over each other, under the next number.
void takePicture(const QString& name);

// Ends the tour with exit code 1 and the message unless the condition holds.
void insist(bool condition, const QString& message);
// Lets events run until the condition holds, five seconds at most, then insists on it.
void waitFor(const std::function<bool()>& condition, const QString& message);

// A control of the window by its object name; insists that there is one.
template <class Control>
Control& control(QWidget& window, const char* name) {
    auto* found = window.findChild<Control*>(QString::fromLatin1(name));
    insist(found, QString("no control ") + name);
    return *found;
}

// Types a text key by key; letters outside Latin-1's keys too.
void type(QWidget& target, const QString& text);
// Chooses a menu entry of the menu bar by mouse: the names of the menus and of the entry, outermost first.
void chooseMenu(QWidget& window, const QStringList& names);

}  // namespace tour
