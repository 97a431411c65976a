// The shell's part in the work with recipients: creating and deleting them, and the tree after a change.

#include <cstdlib>

#include "core/procedure.h"
#include "database/addressDetails.h"
#include "database/recipients.h"
#include "ui/base/controls.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/panes/paneRecipients.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"

namespace {

constexpr char module[] = "frmMain";
constexpr std::string_view recipientPrefix = "RecipientKey:";

}  // namespace

void frmMain::connectRecipientPanes() {
    connect(paneRecipients_, &paneRecipients::newRecipientWanted, this, &frmMain::mnuFileNewRecipient_Click);
    connect(paneRecipients_, &paneRecipients::recipientSwitched, this, [this] {
        const std::string node = tvNavigation->selectedKey();
        loadNavigationTree();
        selectNode(node);
    });
    connect(paneRecipients_, &paneRecipients::recipientDeleted, this, &frmMain::showRecipientsRoot);
    connect(paneRecipients_, &paneRecipients::recipientOpened, this,
            [this](long key) { selectNode(findNode(nodeTypeRecipient, key)); });
    connect(paneRecipientDetails_, &paneRecipientDetails::recipientSaved, this,
            [this](long key) { loadNavigationTree({}, key); });
    connect(paneRecipientDetails_, &paneRecipientDetails::eventWanted, this,
            [this](long key) { selectNode(findNode(nodeTypeEvent, key)); });
}

// Only the number behind as many characters as the prefix has is compared, not the prefix itself, and the
// first hit counts. Recipients stand before exclusions, whose prefix is as long. It stays so.
std::string frmMain::findNewRecipient(long recipientKey) const {
    for (long i = 1; i <= tvNavigation->count(); ++i) {
        const std::string& node = tvNavigation->keyAt(i);
        if (node.size() >= recipientPrefix.size() &&
            std::atol(node.c_str() + recipientPrefix.size()) == recipientKey)
            return node;
    }
    return {};
}

void frmMain::mnuFileNewRecipient_Click() {
    core::procedure(module, "mnuFileNewRecipient_Click", [&](core::Frame& frame) {
        auto& dialog = ui::sharedDialog<dlgRecipient>(*this);
        dialog.displayForm();
        if (dialog.cancelled)
            return;
        long newKey = 0;
        frame.step([&] { newKey = mdlDatabase::addNewRecipient(dialog.newRecipient()); });
        frame.step([&] { loadNavigationTree(); });
        frame.step([] { mdlDatabase::rebuildAddressDetailsTable(); });
        frame.step([&] { selectNode(findNewRecipient(newKey)); });
    });
}

void frmMain::mnuPopupDeleteRecipient_Click() {
    core::procedure(module, "mnuPopupDeleteRecipient_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::string selected = tvNavigation->selectedKey();
            if (!selected.empty() && mdlDatabase::deleteRecipient(tvNavigation->info(selected).key))
                showRecipientsRoot();
        });
    });
}

void frmMain::showRecipientsRoot() {
    loadNavigationTree();
    selectNode("keyRecipients");
}
