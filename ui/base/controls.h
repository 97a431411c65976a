// Small things that every window does with its controls.
#pragma once

#include <QString>
#include <QWidget>
#include <initializer_list>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

class QAbstractButton;
class QComboBox;
class QHBoxLayout;
class QLineEdit;

namespace ui {

// What a person brings into the line stays on it: the toolkit would paint the line breaks of a pasted text as
// blanks and keep them. What the database holds stays as it is until it is edited.
void keepOnOneLine(QLineEdit& line);

// A control with its object name; the parent owns it. A line takes a text of any length, unless its class has
// a limit of its own: the toolkit's limit would cut off what the database holds.
template <class Control>
Control* makeControl(QWidget* parent, const std::string& name) {
    auto* control = new Control(parent);
    control->setObjectName(QString::fromStdString(name));
    if constexpr (requires { control->setMaxLength(control->maxLength()); }) {
        constexpr int toolkitLimit = 32767;
        if (control->maxLength() == toolkitLimit)
            control->setMaxLength(std::numeric_limits<int>::max());
    }
    if constexpr (std::is_same_v<Control, QLineEdit>)
        keepOnOneLine(*control);
    return control;
}

// The window's one dialog of that class, made on its first use; the window owns it.
template <class Dialog>
Dialog& sharedDialog(QWidget& window) {
    auto* dialog = window.findChild<Dialog*>(QString(), Qt::FindDirectChildrenOnly);
    return dialog ? *dialog : *std::make_unique<Dialog>(&window).release();
}

// Refills a list with string-table texts and keeps its selected row.
void fillCombo(QComboBox& combo, std::initializer_list<long> texts);

// Selects the first row that begins with the text, without regard to case, as a click would. False, and the
// selection stays, when there is none. An empty text is the beginning of every row.
bool setComboText(const QString& text, QComboBox& combo);

// A caption without its mnemonic and its colon, as an accessible name.
QString plainCaption(QString caption);
// Gives every control that has a buddy label the label's caption as accessible name.
void nameByBuddy(QWidget& window);

// Captions a button with a sign. Its tip says what the sign means; so does its name to a program for disabled
// people, which would say the tip behind it once more if it were not told the group that the button belongs
// to.
void captionSign(QAbstractButton& button, const QString& sign, const QString& meaning, const QString& group);

// The wheel over a list changes it only while the list has the focus; else it scrolls what is around.
void ignoreWheelWithoutFocus(QComboBox& combo);

// A row with controls at its left end and at its right one, for the caller's layout to take.
QHBoxLayout* buttonRow(std::initializer_list<QWidget*> left, std::initializer_list<QWidget*> right);

// Tab order along the list.
void setTabOrder(std::initializer_list<QWidget*> controls);

}  // namespace ui
