#include "ui/shell/commands.h"

#include <QAction>
#include <QMenu>
#include <chrono>
#include <utility>

#include "core/mdlHTMLHelp.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/addressDetails.h"
#include "database/confirmation.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/legacyImport.h"
#include "database/recipients.h"
#include "database/settings.h"
#include "platform/machine/clock.h"
#include "platform/machine/process.h"
#include "platform/prompts.h"
#include "server/eventSources.h"
#include "server/serviceControl.h"
#include "ui/base/controls.h"
#include "ui/dialogs/dlgAddExclusion.h"
#include "ui/dialogs/dlgEvent.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/dialogs/frmOptions.h"
#include "ui/shell/frmMain.h"
#include "ui/shell/menus.h"
#include "ui/shell/navigationTree.h"
#include "ui/widgets/numberBox.h"

using mdlDatabase::confirmed;
using modLocalize::myLoadResString;

namespace {

constexpr char module[] = "frmMain";
constexpr char legacyService[] = "tskesnsvr";

// True when the legacy service does not run by the time this returns.
bool legacyServiceIsDown() {
    if (!mdlUtility::isServiceRunning(legacyService))
        return true;
    if (!confirmed(myLoadResString(1278) + "\n" + myLoadResString(1279), myLoadResString(1280)))
        return false;
    if (mdlUtility::myStopService(legacyService))
        return true;
    platform::prompts().messageBox({myLoadResString(1281), myLoadResString(1282), platform::BoxIcon::critical,
                                    platform::BoxButtons::ok});
    return false;
}

}  // namespace

Commands::Commands(frmMain& shell, Menus& menus) : QObject(&shell), shell_(shell), menus_(menus) {
    const std::pair<const char*, void (Commands::*)()> handlers[] = {
        {"mnuFileNewEvent", &Commands::mnuFileNewEvent_Click},
        {"mnuFileNewRecipient", &Commands::mnuFileNewRecipient_Click},
        {"mnuCreateRecipient1", &Commands::mnuFileNewRecipient_Click},
        {"mnuFileNewExclusion", &Commands::mnuPopupExclusion_Create_Click},
        {"mnuFileDelete", &Commands::mnuFileDelete_Click},
        {"mnuOptions", &Commands::mnuOptions_Click},
        {"mnuImportEvents", &Commands::mnuImportEvents_Click},
        {"mnuViewCurrentLogFile", &Commands::mnuViewCurrentLogFile_Click},
        {"mnuRemoveService", &Commands::mnuRemoveService_Click},
        {"mnuExit", &Commands::mnuExit_Click},
        {"mnuHelpContents", &Commands::mnuHelpContents_Click},
        {"mnuHelpAbout", &Commands::mnuHelpAbout_Click},
        {"mnuPopupAddEvent", &Commands::mnuPopupAddEvent_Click},
        {"mnuPopupDeleteEvent", &Commands::mnuPopupDeleteEvent_Click},
        {"mnuPopupNewRecipient", &Commands::mnuFileNewRecipient_Click},
        {"mnuPopupDeleteRecipient", &Commands::mnuPopupDeleteRecipient_Click},
        {"mnuPopupExclusion_Create", &Commands::mnuPopupExclusion_Create_Click},
        {"mnuPopupExclusion_Delete", &Commands::mnuPopupExclusion_Delete_Click},
    };
    for (const auto& [name, handler] : handlers) {
        QAction& entry = menus_.entry(name);
        connect(&entry, &QAction::triggered, this, handler);
        entry.setEnabled(true);
    }
}

void Commands::showPopup(const QPoint& globalPosition) {
    menus_.popup().exec(globalPosition);
    if (std::exchange(addEventPending_, 0) == 1)
        mnuFileNewEvent_Click();
}

void Commands::mnuFileNewEvent_Click() {
    core::procedure(module, "mnuFileNewEvent_Click", [&](core::Frame& frame) {
        auto& dialog = ui::sharedDialog<dlgEvent>(shell_);
        dialog.displayForm();
        if (dialog.cancelled)
            return;
        long newKey = 0;
        frame.step([&] { newKey = mdlDatabase::addNewEvent(dialog.newEvent()); });
        frame.step([&] { shell_.loadNavigationTree(newKey); });
    });
}

void Commands::mnuFileNewRecipient_Click() {
    core::procedure(module, "mnuFileNewRecipient_Click", [&](core::Frame& frame) {
        auto& dialog = ui::sharedDialog<dlgRecipient>(shell_);
        dialog.displayForm();
        if (dialog.cancelled)
            return;
        long newKey = 0;
        frame.step([&] { newKey = mdlDatabase::addNewRecipient(dialog.newRecipient()); });
        frame.step([&] { shell_.loadNavigationTree(); });
        frame.step([] { mdlDatabase::rebuildAddressDetailsTable(); });
        frame.step([&] { shell_.selectNode(shell_.navigation().findNewRecipient(newKey)); });
    });
}

void Commands::mnuPopupExclusion_Create_Click() {
    core::procedure(module, "mnuPopupExclusion_Create_Click", [&](core::Frame& frame) {
        auto& dialog = ui::sharedDialog<dlgAddExclusion>(shell_);
        dialog.displayForm();
        if (dialog.cancelled)
            return;
        long eventId = mdlDatabase::allExclusionIds;
        // Required: 16 bits here, where the pane of an exclusion reads 32.
        const bool read = frame.step([&] {
            if (!dialog.allEventIds())
                eventId = dialog.specificEventId().numberAs<std::int16_t>();
        });
        if (!read)
            return;
        long newKey = 0;
        frame.step([&] { newKey = mdlDatabase::addNewExclusion(dialog.eventSource(), eventId); });
        frame.step([&] { shell_.loadNavigationTree({}, {}, newKey); });
    });
}

void Commands::mnuFileDelete_Click() {
    core::procedure(module, "mnuFileDelete_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::string selected = shell_.tvNavigation->selectedKey();
            if (selected.empty())
                return;
            if (QAction* entry = menus_.deletionOf(shell_.tvNavigation->info(selected).nodeType))
                emit entry->triggered(false);  // shown just now or not
        });
    });
}

void Commands::mnuPopupAddEvent_Click() {
    // The dialog must not open from inside the menu's own loop; the tree's handler opens it afterwards.
    core::procedure(module, "mnuPopupAddEvent_Click", [&](core::Frame&) { addEventPending_ = 1; });
}

void Commands::mnuPopupDeleteEvent_Click() {
    core::procedure(module, "mnuPopupDeleteEvent_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const ui::KeyedTree& tree = *shell_.tvNavigation;
            const std::optional<long> key = shell_.navigation().selectedKeyOf(nodeTypeEvent);
            if (key && mdlDatabase::deleteEvent(*key, tree.nodeText(tree.selectedKey())))
                shell_.showAfterDelete(nodeTypeEvent, *key, shell_.nodeAt(1));
        });
    });
}

void Commands::mnuPopupDeleteRecipient_Click() {
    core::procedure(module, "mnuPopupDeleteRecipient_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::optional<long> key = shell_.navigation().selectedKeyOf(nodeTypeRecipient);
            if (key && mdlDatabase::deleteRecipient(*key))
                shell_.showAfterDelete(nodeTypeRecipient, *key, "keyRecipients");
        });
    });
}

void Commands::mnuPopupExclusion_Delete_Click() {
    core::procedure(module, "mnuPopupExclusion_Delete_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::optional<long> key = shell_.navigation().selectedKeyOf(nodeTypeExclusion);
            // Required: to the list of events, not back to that of exclusions.
            if (key && mdlDatabase::deleteExclusion(*key))
                shell_.showAfterDelete(nodeTypeExclusion, *key, shell_.nodeAt(1));
        });
    });
}

void Commands::mnuOptions_Click() {
    core::procedure(module, "mnuOptions_Click",
                    [&](core::Frame& frame) { frame.step([&] { frmOptions(&shell_).exec(); }); });
}

void Commands::mnuImportEvents_Click() {
    core::procedure(module, "mnuImportEvents_Click", [&](core::Frame& frame) {
        if (!confirmed(myLoadResString(1243) + "\n" + myLoadResString(1244), myLoadResString(1245)))
            return;
        // The legacy service writes to the database that is about to be read.
        if (!legacyServiceIsDown())
            return;
        frame.step([] { mdlDatabase::importLegacyEvents(mdlUtility::isValidEventSource); });
        frame.step([&] { shell_.loadNavigationTree(); });
        // The list of events has more rows now; a pane with unsaved edits keeps them.
        frame.step([&] { shell_.refillShownPane(); });
    });
}

void Commands::mnuViewCurrentLogFile_Click() {
    core::procedure(module, "mnuViewCurrentLogFile_Click", [&](core::Frame& frame) {
        frame.step([] {
            // An argument of its own: a quote in what is stored must not make two of it.
            platform::startDetached("notepad", {mdlDatabase::getConfigurationSetting("OutputFilePath")});
        });
    });
}

void Commands::mnuRemoveService_Click() {
    core::procedure(module, "mnuRemoveService_Click", [&](core::Frame& frame) {
        constexpr std::chrono::milliseconds pauseToRead(3000);
        const std::string question =
            myLoadResString(1229) + "\n" + myLoadResString(1230) + "\n\n" + myLoadResString(1231);
        if (platform::prompts().messageBox({question, myLoadResString(1232), platform::BoxIcon::question,
                                            platform::BoxButtons::yesNo}) != platform::BoxAnswer::yes)
            return;
        // The console does not stay open without its service.
        frame.step([] { mdlUtility::uninstallQLNService(); });
        frame.step([&] { platform::clock().sleep(pauseToRead); });
        frame.step([&] { emit shell_.finalExitRequested(); });
    });
}

void Commands::mnuHelpContents_Click() {
    core::procedure(module, "mnuHelpContents_Click", [&](core::Frame& frame) {
        frame.step([&] {
            mdlHTMLHelp::showCHMHelp(mdlHTMLHelp::getHelpFileName(), static_cast<long>(shell_.winId()));
        });
    });
}

void Commands::mnuHelpAbout_Click() {
    core::procedure(module, "mnuHelpAbout_Click",
                    [&](core::Frame& frame) { frame.step([&] { frmAbout(&shell_).exec(); }); });
}

void Commands::mnuExit_Click() {
    core::procedure(module, "mnuExit_Click", [&](core::Frame&) {
        shell_.close();
        emit shell_.finalExitRequested();
    });
}
