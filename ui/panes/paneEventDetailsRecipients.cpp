// Pane 1's recipients: whom the event goes to, and the two buttons that change it.

#include <QPushButton>

#include "core/modLocalize.h"
#include "database/addressDetails.h"
#include "database/recipients.h"
#include "ui/base/controls.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/panes/saveQuestion.h"
#include "ui/parts/mdlRecDevices.h"
#include "ui/widgets/keyedTree.h"

namespace {

constexpr char module[] = "frmMain";

}  // namespace

long paneEventDetails::selectedEventKey() const {
    const classNodeInfo& info = tvNavigation.info(tvNavigation.selectedKey());
    if (info.nodeType != nodeTypeEvent)
        throw platform::makeFailure(platform::elementNotFound, tvNavigation.selectedKey());
    return info.key;
}

bool paneEventDetails::settleChanges(long eventKey) {
    if (!eventDataChanged_)
        return true;
    const platform::BoxAnswer answer = ui::askToSave(ui::eventSettingsChanged);
    if (answer == platform::BoxAnswer::cancel)
        return false;
    eventDataChanged_ = false;
    updateEventApply();
    if (answer == platform::BoxAnswer::yes) {
        saveEventDataChanges(eventKey, true);
        // A save uses up the selection, so the recipients must be shown anew even when nothing follows.
        emit eventSaved(eventKey);
    }
    return true;
}

bool paneEventDetails::editRecipients(long eventKey) {
    auto& dialog = ui::sharedDialog<dlgEditRecipients>(*window());
    dialog.displayForm(eventKey, tvNavigation.nodeText(tvNavigation.selectedKey()));
    if (dialog.cancelled)
        return false;
    mdlDatabase::addRecipientToEvent(eventKey, dialog.selectedDevices, true);
    return true;
}

void paneEventDetails::assignFirstRecipients(core::Frame& frame, long eventKey) {
    if (mdlDatabase::countRecipients() < 1) {
        auto& dialog = ui::sharedDialog<dlgRecipient>(*window());
        frame.step([&] { dialog.displayForm(); });
        if (dialog.cancelled)
            return;
        frame.step([&] { mdlDatabase::addNewRecipient(dialog.newRecipient()); });
        frame.step([] { mdlDatabase::rebuildAddressDetailsTable(); });
    }
    frame.step([&] { editRecipients(eventKey); });
}

void paneEventDetails::cmdAddRecipient_Click() {
    core::procedure(module, "cmdAddRecipient_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const long eventKey = selectedEventKey();
            if (settleChanges(eventKey) && editRecipients(eventKey))
                emit eventSaved(eventKey);
        });
    });
}

void paneEventDetails::cmdRemoveRecipient_Click() {
    core::procedure(module, "cmdRemoveRecipient_Click", [&](core::Frame& frame) {
        long eventKey = 0;
        long recipientKey = 0;
        // Before the question: a save refills the tree, and nothing is selected in it then.
        if (!frame.steps(
                {core::Step([&] { recipientKey = tvRecipients->info(tvRecipients->selectedKey()).key; }),
                 core::Step([&] { eventKey = selectedEventKey(); })}))
            return;
        if (!settleChanges(eventKey))
            return;
        frame.step([&] { mdlDatabase::removeRecipientFromEvent(eventKey, recipientKey); });
        selectedDevices_.clear();
        frame.step([&] { tvRecipients->clearNodes(); });
        frame.step(
            [&] { mdlRecDevices::populateRecipientsList(*tvRecipients, eventKey, selectedDevices_, true); });
        frame.step([&] { emit eventSaved(eventKey); });
        cmdRemoveRecipient->setEnabled(false);
    });
}

void paneEventDetails::tvRecipients_NodeClick(const std::string& nodeKey) {
    core::procedure(module, "tvRecipients_NodeClick", [&](core::Frame& frame) {
        frame.step([&] {
            cmdRemoveRecipient->setEnabled(tvRecipients->info(nodeKey).nodeType == nodeTypeEventRecipient);
        });
    });
}

void paneEventDetails::tvRecipients_NodeCheck(const std::string& nodeKey) {
    core::procedure(module, "tvRecipients_NodeCheck", [&](core::Frame& frame) {
        frame.step([&] { mdlRecDevices::followCheck(*tvRecipients, nodeKey, selectedDevices_); });
        eventDataChanged_ = true;
        eventRecipientsChanged_ = true;
        updateEventApply();
    });
}
