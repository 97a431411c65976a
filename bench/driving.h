// Drives windows as a person does, with the time that it takes.
#pragma once

#include <QString>
#include <QWidget>
#include <Qt>
#include <functional>
#include <string>

#include "bench/workplace.h"

class QAbstractScrollArea;
class QDialog;

namespace bench {

// The control of that name. Ends the program when there is none.
template <class Widget>
Widget& findControl(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(name);
    insist(found != nullptr, std::string("there is a control ") + name);
    return *found;
}

// The only part of that class.
template <class Pane>
Pane& findPane(QWidget& window) {
    auto* found = window.findChild<Pane*>();
    insist(found != nullptr, "there is such a pane");
    return *found;
}

// Presses a key and waits until what it changed is painted; the seconds.
double pressKey(QWidget& widget, Qt::Key key, const QString& text = {});

// Scrolls from the first row to the last, page by page, and paints each; the seconds.
double scrollThrough(QAbstractScrollArea& view);

// Runs `open`, which shows the dialog modally, and ends the dialog when `viewport` in it has been painted for
// the first time; the seconds until then.
double openUntilPainted(QDialog& dialog, QWidget& viewport, const std::function<void()>& open);

// Runs `open`, which shows the dialog modally, does `action` in it once it is painted, and ends it.
void insideDialog(QDialog& dialog, const std::function<void()>& open, const std::function<void()>& action);

}  // namespace bench
