// "Edit Recipients For Event": everybody who can be notified, with those ticked who are. It writes nothing;
// the caller reads it after it closed.
#pragma once

#include <QDialog>
#include <string>

#include "database/assignment.h"

class QLabel;
class QPushButton;

namespace ui {
class KeyedTree;
}

class dlgEditRecipients : public QDialog {
    Q_OBJECT

  public:
    explicit dlgEditRecipients(QWidget* parent);

    // Shows the recipients for an event modally; returns when it is closed.
    void displayForm(long eventKey, const std::string& eventNodeText);
    Q_INVOKABLE void dlgEditRecipients_ControlInit();

    // Read after displayForm. True when the dialog ended without OK.
    bool cancelled = true;
    // The devices that are ticked.
    mdlDatabase::DeviceSelection selectedDevices;

  private:
    void Form_Load();
    void tvRecipients_NodeCheck(const std::string& nodeKey);
    void cmdOk_Click();
    void cmdCancel_Click();

    QLabel* lblSelectRecipients;
    ui::KeyedTree* tvRecipients;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
