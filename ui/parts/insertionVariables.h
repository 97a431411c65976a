// What each window with an e-mail subject and body does with insertion variables: the menu on right click,
// the insertion at the pointer, the colours, and the rule that a subject is never left blank.
#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "ui/widgets/leaveGuard.h"

class QAction;
class QMenu;

namespace ui {

class VariableTextBox;

class InsertionVariables : public QObject {
    Q_OBJECT

  public:
    // `module` is the window's name in the log. The object and its menu belong to `window`, and so do the
    // boxes. `changed`, if there is one, is the window's own part of the boxes' change handlers.
    InsertionVariables(std::string module, QWidget& window, VariableTextBox& rtbEmailSubject,
                       VariableTextBox& rtbEmailBody, std::function<void()> changed = {});

    // Captions from the string table; fills the menu on its first call.
    void controlInit();
    // For a button: the Enter key presses one without moving the focus, so the question about a blank subject
    // is asked here, with the focus going to `next`. True when the subject is not blank by then.
    bool leaveSubject(QWidget& next);

    QMenu* mnuVariables;
    std::vector<QAction*> mnuInsert;

  private:
    void connectBox(VariableTextBox& box);
    void richText_MouseDown(VariableTextBox& box, int charIndex);
    void openMenu(VariableTextBox& box, int charIndex, const QPoint& place);
    void richText_Change(VariableTextBox& box);
    void mnuInsert_Click(const QAction& entry);
    LeaveGuard::Answer rtbEmailSubject_Validate();

    std::string module_;
    VariableTextBox& rtbEmailSubject_;
    std::function<void()> changed_;
    VariableTextBox* activeRichText_;  // the box last entered or pressed on
    int activeCharIndex_ = 0;          // the character under the last press
};

}  // namespace ui
