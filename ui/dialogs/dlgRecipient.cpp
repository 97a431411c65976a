#include "ui/dialogs/dlgRecipient.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/dialogs/dlgSelect.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/entryList.h"

namespace {

constexpr char module[] = "dlgRecipient";

}  // namespace

dlgRecipient::dlgRecipient(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgRecipient");
    lblRecipientName = ui::makeControl<QLabel>(this, "lblRecipientName");
    txtRecipientName = ui::makeControl<QLineEdit>(this, "txtRecipientName");
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
    sstabDevices = new ui::DeviceTabs(ui::DeviceTabs::Place::dialog, dlgSelect::search, this);
    buildLayout();
    const auto update = [this] { updateOkButton(); };
    connect(txtRecipientName, &QLineEdit::textChanged, this, &dlgRecipient::txtRecipientName_Change);
    connect(sstabDevices, &ui::DeviceTabs::changed, this, update);
    connect(sstabDevices, &ui::DeviceTabs::picked, this, update);
    connect(cmdOk, &QPushButton::clicked, this, &dlgRecipient::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgRecipient::reject);
    Form_Load();
}

void dlgRecipient::buildLayout() {
    auto* top = new QHBoxLayout;
    top->addWidget(lblRecipientName);
    top->addWidget(txtRecipientName, 1);
    top->addSpacing(12);
    top->addWidget(cmdOk);
    top->addWidget(cmdCancel);
    auto* whole = new QVBoxLayout(this);
    whole->addLayout(top);
    whole->addWidget(sstabDevices, 1);
    lblRecipientName->setBuddy(txtRecipientName);
    ui::setTabOrder({sstabDevices->placeBehind(txtRecipientName), cmdOk, cmdCancel});
    cmdOk->setDefault(true);
    cmdCancel->setAutoDefault(false);
    resize(620, 320);
}

void dlgRecipient::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frame.step([&] { dlgRecipient_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
        frame.step([&] { sstabDevices->hideUnsupportedKinds(); });
        updateOkButton();
    });
}

void dlgRecipient::dlgRecipient_ControlInit() {
    core::procedure(module, "dlgRecipient_ControlInit", [&](core::Frame&) {
        lblRecipientName->setText(ui::text(1103));
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        sstabDevices->controlInit();
        ui::nameByBuddy(*this);
    });
}

// The options and their Clear buttons stay as the last use left them.
void dlgRecipient::displayForm() {
    core::procedure(module, "displayForm", [&](core::Frame& frame) {
        setWindowTitle(ui::text(1080));
        sstabDevices->email->blank();
        sstabDevices->pagers->txtNew->clear();
        txtRecipientName->clear();
        sstabDevices->smtp->txtNew->clear();
        sstabDevices->voiceMail->blank();
        sstabDevices->setCurrentIndex(0);
        sstabDevices->pagers->clear();
        sstabDevices->smtp->clear();
        for (QCheckBox* box : {sstabDevices->chkFailoverEnabled, sstabDevices->chkSNMPTrapEnabled,
                               sstabDevices->chkSyslogEnabled})
            box->setChecked(false);
        sstabDevices->txtSyslogHostAddress->clear();
        txtRecipientName->setFocus();
        frame.step([&] { exec(); });
    });
}

void dlgRecipient::txtRecipientName_Change() {
    core::procedure(module, "txtRecipientName_Change", [&](core::Frame&) { updateOkButton(); });
}

void dlgRecipient::updateOkButton() {
    core::procedure(module, "updateOkButton", [&](core::Frame&) {
        const ui::DeviceTabs& tabs = *sstabDevices;
        const bool anyDevice = !tabs.voiceMail->displayName().empty() || !tabs.email->displayName().empty() ||
                               tabs.pagers->list->count() > 0 || tabs.smtp->list->count() > 0 ||
                               tabs.chkSNMPTrapEnabled->isChecked() || tabs.chkSyslogEnabled->isChecked() ||
                               tabs.chkFailoverEnabled->isChecked();
        cmdOk->setEnabled(!txtRecipientName->text().isEmpty() && anyDevice);
        tabs.txtSyslogHostAddress->setEnabled(tabs.chkSyslogEnabled->isChecked());
    });
}

void dlgRecipient::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame&) {
        sstabDevices->addTyped();
        cancelled = false;
        accept();
    });
}

void dlgRecipient::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) { cancelled = true; });
}

// Escape and the window's own button end here as well.
void dlgRecipient::reject() {
    cmdCancel_Click();
    QDialog::reject();
}

mdlDatabase::RecipientRecord dlgRecipient::newRecipient() const {
    mdlDatabase::RecipientRecord record;
    record.name = ui::toUtf8(txtRecipientName->text());
    sstabDevices->collect(record);
    return record;
}
