#include "ui/dialogs/dlgEditRecipients.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/parts/mdlRecDevices.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/listFinder.h"

namespace {

constexpr char module[] = "dlgEditRecipients";

}  // namespace

dlgEditRecipients::dlgEditRecipients(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgEditRecipients");
    lblSelectRecipients = ui::makeControl<QLabel>(this, "lblSelectRecipients");
    tvRecipients = ui::makeControl<ui::KeyedTree>(this, "tvRecipients");
    mdlRecDevices::describeStates(*tvRecipients);
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
    lblSelectRecipients->setBuddy(tvRecipients);
    cmdOk->setDefault(true);

    auto* whole = new QVBoxLayout(this);
    whole->addWidget(lblSelectRecipients);
    whole->addWidget(tvRecipients, 1);
    whole->addLayout(ui::buttonRow({}, {cmdOk, cmdCancel}));
    ui::setTabOrder({tvRecipients, cmdOk, cmdCancel});
    ui::addFinder(*this);
    resize(480, 460);

    Form_Load();
    connect(tvRecipients, &ui::KeyedTree::nodeChecked, this, &dlgEditRecipients::tvRecipients_NodeCheck);
    connect(cmdOk, &QPushButton::clicked, this, &dlgEditRecipients::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgEditRecipients::cmdCancel_Click);
}

void dlgEditRecipients::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frame.step([&] { dlgEditRecipients_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
    });
}

void dlgEditRecipients::dlgEditRecipients_ControlInit() {
    core::procedure(module, "dlgEditRecipients_ControlInit", [&](core::Frame&) {
        lblSelectRecipients->setText(ui::text(1048));
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        ui::nameByBuddy(*this);
    });
}

void dlgEditRecipients::displayForm(long eventKey, const std::string& eventNodeText) {
    core::procedure(module, "displayForm", [&](core::Frame& frame) {
        // The title is the same in every language.
        setWindowTitle("Edit Recipients For Event: " + ui::fromUtf8(eventNodeText));
        cancelled = true;
        selectedDevices.clear();
        // What OK gives replaces what the event has, so it takes a list that was read whole.
        cmdOk->setEnabled(false);
        frame.step([&] {
            cmdOk->setEnabled(
                mdlRecDevices::populateRecipientsList(*tvRecipients, eventKey, selectedDevices, false));
        });
        tvRecipients->setFocus(Qt::TabFocusReason);
        exec();
    });
}

void dlgEditRecipients::tvRecipients_NodeCheck(const std::string& nodeKey) {
    core::procedure(module, "tvRecipients_NodeCheck", [&](core::Frame& frame) {
        frame.step([&] { mdlRecDevices::followCheck(*tvRecipients, nodeKey, selectedDevices); });
    });
}

void dlgEditRecipients::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame&) {
        cancelled = false;
        accept();
    });
}

void dlgEditRecipients::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) {
        cancelled = true;
        reject();
    });
}
