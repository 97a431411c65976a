// Small things that every window does with its controls.
#pragma once

#include <QString>
#include <initializer_list>
#include <string>

class QComboBox;
class QWidget;

namespace ui {

// A control with its object name; the parent owns it.
template <class Control>
Control* makeControl(QWidget* parent, const std::string& name) {
    auto* control = new Control(parent);
    control->setObjectName(QString::fromStdString(name));
    return control;
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

// Tab order along the list.
void setTabOrder(std::initializer_list<QWidget*> controls);

// Row of a priority list for a stored priority's text: 2 is row 0, 1 is row 1, 0 is row 2, anything else
// row 0. The lists hold rows 0 and 1 only, so a stored 0 selects nothing.
int priorityRow(const std::string& storedPriority);

}  // namespace ui
