// "Configuring Quillon Service": asks for the password of the service's account.
#pragma once

#include <QDialog>

#include "platform/services/secret.h"

class QLabel;
class QPushButton;

namespace ui {
class SecretEdit;
}

class dlgServicePassword : public QDialog {
    Q_OBJECT

  public:
    dlgServicePassword();

    // Sets the prompt and shows the dialog modally. It stays loaded afterwards.
    void displayForm(const QString& prompt);
    Q_INVOKABLE void dlgServicePassword_ControlInit();

    // Read after displayForm. True when the dialog ended without OK.
    bool cancelled = true;
    // What was typed; the box is empty afterwards.
    platform::Secret takePassword();

  private:
    void buildLayout();
    void Form_Load();
    void cmdOk_Click();
    void cmdCancel_Click();

    QLabel* lblPrompt;
    QLabel* lblPassword;
    ui::SecretEdit* txtPassword;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
