// The stage of the tour: pictures of what is on the screen, and insisting on what is seen there.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>

namespace tour {

// A dark palette, as a desktop may have; comes before the console's own appearance.
void darken();
// Folder for the pictures, and the number of the round, with which their names begin.
void setPictures(const QString& folder, int round);
// Writes a picture of all visible windows, as they lie over each other, under the next number.
void takePicture(const QString& name);
// Takes a picture of the window with that object name as soon as it is on the screen, once.
void takePictureWhenShown(const QString& window, const QString& name);

// Ends the tour with exit code 1 and the message unless the condition holds.
void insist(bool condition, const QString& message);
// Lets events run until the condition holds, ten seconds at most, then insists on it.
void waitFor(const std::function<bool()>& condition, const QString& message);

// A control of the window by its object name; insists that there is one.
template <class Control>
Control& control(QWidget& window, const char* name) {
    auto* found = window.findChild<Control*>(QString::fromLatin1(name));
    insist(found, QString("no control ") + name);
    return *found;
}

}  // namespace tour
