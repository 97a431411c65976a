// "Create New Recipient": collects a recipient's name and devices. It writes nothing; the caller reads it
// after it closed.
#pragma once

#include <QDialog>

#include "database/recipientRecord.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {
class DeviceTabs;
}

class dlgRecipient : public QDialog {
    Q_OBJECT

  public:
    explicit dlgRecipient(QWidget* parent);

    // Resets the dialog and shows it modally; returns when it is closed.
    void displayForm();
    Q_INVOKABLE void dlgRecipient_ControlInit();

    // Read after displayForm. True when the dialog ended without OK.
    bool cancelled = true;
    // What the controls hold, as a new recipient.
    mdlDatabase::RecipientRecord newRecipient() const;

    void reject() override;

  private:
    void buildLayout();
    void Form_Load();
    void updateOkButton();
    void txtRecipientName_Change();
    void cmdOk_Click();
    void cmdCancel_Click();

    QLabel* lblRecipientName;
    QLineEdit* txtRecipientName;
    ui::DeviceTabs* sstabDevices;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
