#include "ui/panes/eventRecipients.h"

#include <QHBoxLayout>
#include <QPushButton>

#include "database/addressDetails.h"
#include "database/events.h"
#include "database/recipients.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/parts/mdlRecDevices.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedTree.h"

namespace {

constexpr char module[] = "frmMain";
constexpr int lowestTree = 46;  // pixels; what is lower than its content scrolls

}  // namespace

EventRecipients::EventRecipients(QWidget* parent) : QGroupBox(parent) {
    setObjectName("frameRecipients");
    tvRecipients = ui::makeControl<ui::KeyedTree>(this, "tvRecipients");
    tvRecipients->setMinimumHeight(lowestTree);
    // What the tree would like to have must not take the room of the content.
    tvRecipients->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    mdlRecDevices::describeStates(*tvRecipients);
    cmdAddRecipient = ui::makeControl<QPushButton>(this, "cmdAddRecipient");
    cmdRemoveRecipient = ui::makeControl<QPushButton>(this, "cmdRemoveRecipient");
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {cmdAddRecipient, cmdRemoveRecipient}) {
        button->setFixedWidth(button->sizeHint().height() + 4);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* row = new QHBoxLayout(this);
    row->addWidget(tvRecipients, 1);
    row->addLayout(buttons);
    connect(tvRecipients, &ui::KeyedTree::nodeClicked, this, &EventRecipients::tvRecipients_NodeClick);
    connect(tvRecipients, &ui::KeyedTree::nodeChecked, this, &EventRecipients::tvRecipients_NodeCheck);
}

void EventRecipients::controlInit() {
    setTitle(ui::text(1031));
    ui::captionSign(*cmdAddRecipient, "+", ui::text(1110), title());
    ui::captionSign(*cmdRemoveRecipient, QChar(0x2212), ui::text(1109), title());  // minus
    tvRecipients->setAccessibleName(ui::text(1031));
}

bool EventRecipients::show(long eventKey) {
    selectedDevices_.clear();
    const bool shown = mdlRecDevices::populateRecipientsList(*tvRecipients, eventKey, selectedDevices_, true);
    cmdRemoveRecipient->setEnabled(false);
    return shown;
}

void EventRecipients::blank() {
    selectedDevices_.clear();
    tvRecipients->clearNodes();
    cmdRemoveRecipient->setEnabled(false);
}

bool EventRecipients::edit(long eventKey, const std::string& eventName) {
    auto& dialog = ui::sharedDialog<dlgEditRecipients>(*window());
    dialog.displayForm(eventKey, eventName);
    if (dialog.cancelled || isEventGone(eventKey))
        return false;
    mdlDatabase::addRecipientToEvent(eventKey, dialog.selectedDevices, true);
    return true;
}

bool EventRecipients::isEventGone(long eventKey) {
    return ui::isGone(mdlDatabase::getEvent(eventKey));
}

void EventRecipients::assignFirst(core::Frame& frame, long eventKey, const std::string& eventName) {
    if (mdlDatabase::countRecipients() < 1) {
        auto& dialog = ui::sharedDialog<dlgRecipient>(*window());
        frame.step([&] { dialog.displayForm(); });
        if (dialog.cancelled)
            return;
        frame.step([&] { mdlDatabase::addNewRecipient(dialog.newRecipient()); });
        frame.step([] { mdlDatabase::rebuildAddressDetailsTable(); });
    }
    frame.step([&] { edit(eventKey, eventName); });
}

long EventRecipients::selectedRecipient() const {
    return tvRecipients->info(tvRecipients->selectedKey()).key;
}

void EventRecipients::tvRecipients_NodeClick(const std::string& nodeKey) {
    core::procedure(module, "tvRecipients_NodeClick", [&](core::Frame& frame) {
        frame.step([&] {
            cmdRemoveRecipient->setEnabled(tvRecipients->info(nodeKey).nodeType == nodeTypeEventRecipient);
        });
    });
}

void EventRecipients::tvRecipients_NodeCheck(const std::string& nodeKey) {
    core::procedure(module, "tvRecipients_NodeCheck", [&](core::Frame& frame) {
        frame.step([&] { mdlRecDevices::followCheck(*tvRecipients, nodeKey, selectedDevices_); });
        everTicked_ = true;
        emit ticked();
    });
}
