// The shell's menus: which entry serves which node, and what the entries do.

#include <QMenu>
#include <chrono>

#include "core/mdlHTMLHelp.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/events.h"
#include "platform/clock.h"
#include "platform/prompts.h"
#include "server/serviceControl.h"
#include "ui/dlgEvent.h"
#include "ui/frmAbout.h"
#include "ui/frmMain.h"
#include "ui/paneMonitoredEvents.h"
#include "ui/widgets/keyedTree.h"

using modLocalize::myLoadResString;

namespace {

constexpr char module[] = "frmMain";

}  // namespace

void frmMain::checkMenus(long nodeType) {
    core::procedure(module, "checkMenus", [&](core::Frame&) {
        // The popup keeps one visible entry while all others are hidden.
        QAction* dummy = actions_.at("mnuDummyLastItem");
        dummy->setVisible(true);
        for (const char* name : {"mnuPopupAddEvent", "mnuPopupDeleteEvent"})
            actions_.at(name)->setVisible(false);
        actions_.at("mnuFileDelete")->setEnabled(false);
        switch (nodeType) {
            case nodeTypeCategoryEvents:
                actions_.at("mnuPopupAddEvent")->setVisible(true);
                actions_.at("mnuFileNewEvent")->setEnabled(true);  // nothing ever disables it; it stays so
                break;
            case nodeTypeEvent:
                actions_.at("mnuPopupDeleteEvent")->setVisible(true);
                actions_.at("mnuFileDelete")->setEnabled(true);
                break;
            default:
                break;
        }
        dummy->setVisible(false);
    });
}

void frmMain::mnuFileNewEvent_Click() {
    core::procedure(module, "mnuFileNewEvent_Click", [&](core::Frame& frame) {
        if (!dlgEvent_)
            dlgEvent_ = new dlgEvent(this);
        dlgEvent_->displayForm();
        if (dlgEvent_->cancelled)
            return;
        long newKey = 0;
        frame.steps({[&] { newKey = mdlDatabase::addNewEvent(dlgEvent_->newEvent()); },
                     [&] { loadNavigationTree(newKey); }});
    });
}

void frmMain::mnuFileDelete_Click() {
    core::procedure(module, "mnuFileDelete_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::string selected = tvNavigation->selectedKey();
            if (!selected.empty() && tvNavigation->info(selected).nodeType == nodeTypeEvent)
                mnuPopupDeleteEvent_Click();
        });
    });
}

void frmMain::mnuPopupAddEvent_Click() {
    // The dialog must not open from inside the menu's own loop; the tree's handler opens it afterwards.
    core::procedure(module, "mnuPopupAddEvent_Click", [&](core::Frame&) { addEventPending_ = 1; });
}

void frmMain::mnuPopupDeleteEvent_Click() {
    core::procedure(module, "mnuPopupDeleteEvent_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::string selected = tvNavigation->selectedKey();
            if (selected.empty())
                return;
            if (mdlDatabase::deleteEvent(tvNavigation->info(selected).key, tvNavigation->nodeText(selected)))
                showEventsRoot();
        });
    });
}

void frmMain::mnuRemoveService_Click() {
    core::procedure(module, "mnuRemoveService_Click", [&](core::Frame& frame) {
        constexpr std::chrono::milliseconds pauseToRead(3000);
        const std::string question =
            myLoadResString(1229) + "\n" + myLoadResString(1230) + "\n\n" + myLoadResString(1231);
        if (platform::prompts().messageBox({question, myLoadResString(1232), platform::BoxIcon::question,
                                            platform::BoxButtons::yesNo}) != platform::BoxAnswer::yes)
            return;
        // The console does not stay open without its service.
        frame.steps({[] { mdlUtility::uninstallQLNService(); }, [&] { platform::clock().sleep(pauseToRead); },
                     [&] { emit finalExitRequested(); }});
    });
}

void frmMain::mnuHelpContents_Click() {
    core::procedure(module, "mnuHelpContents_Click", [&](core::Frame& frame) {
        frame.step(
            [&] { mdlHTMLHelp::showCHMHelp(mdlHTMLHelp::getHelpFileName(), static_cast<long>(winId())); });
    });
}

void frmMain::mnuHelpAbout_Click() {
    core::procedure(module, "mnuHelpAbout_Click",
                    [&](core::Frame& frame) { frame.step([&] { frmAbout(this).exec(); }); });
}

void frmMain::mnuExit_Click() {
    core::procedure(module, "mnuExit_Click", [&](core::Frame&) {
        close();
        emit finalExitRequested();
    });
}

void frmMain::showEventsRoot() {
    loadNavigationTree();
    selectNode(nodeAt(1));
}
