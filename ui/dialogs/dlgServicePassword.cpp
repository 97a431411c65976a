#include "ui/dialogs/dlgServicePassword.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/widgets/secretEdit.h"

namespace {

constexpr char module[] = "dlgServicePassword";
constexpr int promptWidth = 460;

}  // namespace

dlgServicePassword::dlgServicePassword() {
    setObjectName("dlgServicePassword");
    setWindowIcon(QIcon(":/icons/console.svg"));
    lblPrompt = ui::makeControl<QLabel>(this, "lblPrompt");
    lblPassword = ui::makeControl<QLabel>(this, "lblPassword");
    txtPassword = ui::makeControl<ui::SecretEdit>(this, "txtPassword");
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
    buildLayout();
    connect(cmdOk, &QPushButton::clicked, this, &dlgServicePassword::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgServicePassword::cmdCancel_Click);
    Form_Load();
}

void dlgServicePassword::buildLayout() {
    lblPrompt->setWordWrap(true);
    lblPrompt->setTextFormat(Qt::PlainText);  // it holds an account's name
    lblPrompt->setFixedWidth(promptWidth);
    lblPassword->setBuddy(txtPassword);
    cmdOk->setDefault(true);

    auto* line = new QHBoxLayout;
    line->addWidget(lblPassword);
    line->addWidget(txtPassword, 1);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(20, 20, 20, 16);
    whole->addWidget(lblPrompt);
    whole->addSpacing(12);
    whole->addLayout(line);
    whole->addSpacing(16);
    whole->addStretch();
    whole->addLayout(ui::buttonRow({}, {cmdOk, cmdCancel}));
    ui::setTabOrder({txtPassword, cmdOk, cmdCancel});
}

void dlgServicePassword::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frame.step([&] { dlgServicePassword_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
    });
}

void dlgServicePassword::dlgServicePassword_ControlInit() {
    core::procedure(module, "dlgServicePassword_ControlInit", [&](core::Frame&) {
        setWindowTitle(ui::text(1207));
        lblPrompt->setText(ui::text(1208));
        cmdCancel->setText(ui::text(1023));
        cmdOk->setText(ui::text(1001));
        txtPassword->wipe();
        lblPassword->setText(ui::text(1174));
        for (QWidget* control : findChildren<QWidget*>())
            control->setToolTip(QString());
        ui::nameByBuddy(*this);
    });
}

void dlgServicePassword::displayForm(const QString& prompt) {
    core::procedure(module, "displayForm", [&](core::Frame&) {
        lblPrompt->setText(prompt);
        adjustSize();
        cancelled = true;
        txtPassword->setFocus();
        exec();
    });
}

platform::Secret dlgServicePassword::takePassword() {
    return txtPassword->take();
}

void dlgServicePassword::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame&) {
        cancelled = false;
        accept();
    });
}

void dlgServicePassword::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) {
        cancelled = true;
        reject();
    });
}
