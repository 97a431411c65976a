// The shell's menus: which entry serves which node, and what the entries do.

#include <QMenuBar>
#include <chrono>

#include "core/mdlHTMLHelp.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/events.h"
#include "database/settings.h"
#include "platform/machine/clock.h"
#include "platform/machine/process.h"
#include "platform/prompts.h"
#include "server/serviceControl.h"
#include "ui/base/text.h"
#include "ui/dialogs/dlgEvent.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/panes/paneMonitoredEvents.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"

using modLocalize::myLoadResString;

namespace {

constexpr char module[] = "frmMain";

struct MenuRow {
    const char* menu;
    const char* name;
    long caption;  // 0 for a separator
};

// The menus, outermost first; a menu without a parent stands in the menu bar or nowhere.
constexpr MenuRow menuRows[] = {
    {"", "mnuFile", 1010},
    {"", "mnuHelp", 1013},
    {"mnuFile", "mnuFileNew", 1114},
    // Not in the menu bar in this version; mnuPopup serves as popup.
    {"", "mnuEvents1", 1119},
    {"", "mnuRecipients1", 1122},
    {"", "mnuReports", 1125},
    {"mnuReports", "mnuReportsView", 1126},
    {"", "mnuPopup", 0},
};

constexpr MenuRow entryRows[] = {
    {"mnuFileNew", "mnuFileNewEvent", 1115},
    {"mnuFileNew", "mnuFileNewRecipient", 1116},
    {"mnuFileNew", "mnuFileNewExclusion", 1310},
    {"mnuFile", "mnuFileDelete", 1117},
    {"mnuFile", "mnuFileSep1", 0},
    {"mnuFile", "mnuOptions", 1118},
    {"mnuFile", "mnuViewCurrentLogFile", 1173},
    {"mnuFile", "mnuImportEvents", 1172},
    {"mnuFile", "mnuFileBar0", 0},
    {"mnuFile", "mnuRemoveService", 1257},
    {"mnuFile", "mnuFileBar2", 0},
    {"mnuFile", "mnuExit", 1016},
    {"mnuHelp", "mnuHelpContents", 1014},
    {"mnuHelp", "mnuHelpBar0", 0},
    {"mnuHelp", "mnuHelpAbout", 1015},
    {"mnuEvents1", "mnuEditRecipients1", 1120},
    {"mnuEvents1", "mnuRemoveRecipient1", 1121},
    {"mnuRecipients1", "mnuCreateRecipient1", 1123},
    {"mnuRecipients1", "mnuDeleteRecipient1", 1124},
    {"mnuReportsView", "mnuReportsViewNotificationHistory", 1127},
    {"mnuReportsView", "mnuReportsViewErrors", 1027},
    {"mnuReports", "mnuReportsExport", 1128},
    {"mnuPopup", "mnuPopupAddEvent", 1129},
    {"mnuPopup", "mnuPopupEditRecipients", 1120},
    {"mnuPopup", "mnuPopupRemoveRecipient", 1121},
    {"mnuPopup", "mnuPopupBar0", 0},
    {"mnuPopup", "mnuPopupDeleteEvent", 1130},
    {"mnuPopup", "mnuPopupBar1", 0},
    {"mnuPopup", "mnuPopupNewRecipient", 1131},
    {"mnuPopup", "mnuPopupDeleteRecipient", 1124},
    {"mnuPopup", "mnuPopupBar2", 0},
    {"mnuPopup", "mnuPopupViewReport", 1132},
    {"mnuPopup", "mnuPopupExportReport", 1133},
    {"mnuPopup", "mnuPopupBar3", 0},
    {"mnuPopup", "mnuPopupExclusion_Create", 1305},
    {"mnuPopup", "mnuPopupExclusion_Delete", 1306},
};

// Always the popup's last entry; its caption is the same in every language.
constexpr char dummyEntry[] = "mnuDummyLastItem";

struct NodeMenu {
    long nodeType;
    const char* popupEntry;
};

constexpr NodeMenu nodeMenus[] = {
    {nodeTypeCategoryEvents, "mnuPopupAddEvent"},    {nodeTypeCategoryRecipients, "mnuPopupNewRecipient"},
    {nodeTypeCategoryReports, "mnuPopupViewReport"}, {nodeTypeCategoryExclusions, "mnuPopupExclusion_Create"},
    {nodeTypeEvent, "mnuPopupDeleteEvent"},          {nodeTypeEventRecipient, "mnuPopupRemoveRecipient"},
    {nodeTypeRecipient, "mnuPopupDeleteRecipient"},  {nodeTypeReport, "mnuPopupExportReport"},
    {nodeTypeReportItem, "mnuPopupExportReport"},    {nodeTypeExclusion, "mnuPopupExclusion_Delete"},
};

bool isDeletable(long nodeType) {
    return nodeType == nodeTypeEvent || nodeType == nodeTypeRecipient || nodeType == nodeTypeExclusion;
}

const char* popupEntryOf(long nodeType) {
    for (const NodeMenu& row : nodeMenus)
        if (row.nodeType == nodeType)
            return row.popupEntry;
    return nullptr;
}

}  // namespace

QAction* frmMain::addEntry(QMenu& menu, const char* name) {
    QAction* action = menu.addAction(QString());
    action->setObjectName(name);
    actions_[name] = action;
    return action;
}

void frmMain::createMenus() {
    for (const MenuRow& row : menuRows) {
        QMenu* menu = nullptr;
        if (*row.menu)
            menu = menus_.at(row.menu)->addMenu(QString());
        else if (row.name == std::string("mnuFile") || row.name == std::string("mnuHelp"))
            menu = menuBar()->addMenu(QString());
        else
            menu = new QMenu(this);
        menu->setObjectName(row.name);
        menus_[row.name] = menu;
    }
    for (const MenuRow& row : entryRows)
        addEntry(*menus_.at(row.menu), row.name)->setSeparator(row.caption == 0);
    addEntry(*menus_.at("mnuPopup"), dummyEntry);
    const std::pair<const char*, void (frmMain::*)()> handlers[] = {
        {"mnuFileNewEvent", &frmMain::mnuFileNewEvent_Click},
        {"mnuFileNewRecipient", &frmMain::mnuFileNewRecipient_Click},
        {"mnuCreateRecipient1", &frmMain::mnuFileNewRecipient_Click},
        {"mnuFileNewExclusion", &frmMain::mnuPopupExclusion_Create_Click},
        {"mnuFileDelete", &frmMain::mnuFileDelete_Click},
        {"mnuOptions", &frmMain::mnuOptions_Click},
        {"mnuImportEvents", &frmMain::mnuImportEvents_Click},
        {"mnuViewCurrentLogFile", &frmMain::mnuViewCurrentLogFile_Click},
        {"mnuRemoveService", &frmMain::mnuRemoveService_Click},
        {"mnuExit", &frmMain::mnuExit_Click},
        {"mnuHelpContents", &frmMain::mnuHelpContents_Click},
        {"mnuHelpAbout", &frmMain::mnuHelpAbout_Click},
        {"mnuPopupAddEvent", &frmMain::mnuPopupAddEvent_Click},
        {"mnuPopupDeleteEvent", &frmMain::mnuPopupDeleteEvent_Click},
        {"mnuPopupNewRecipient", &frmMain::mnuFileNewRecipient_Click},
        {"mnuPopupDeleteRecipient", &frmMain::mnuPopupDeleteRecipient_Click},
        {"mnuPopupExclusion_Create", &frmMain::mnuPopupExclusion_Create_Click},
        {"mnuPopupExclusion_Delete", &frmMain::mnuPopupExclusion_Delete_Click},
    };
    for (const auto& [name, action] : actions_)
        action->setEnabled(false);  // what has no handler cannot be chosen
    for (const auto& [name, handler] : handlers) {
        connect(actions_.at(name), &QAction::triggered, this, handler);
        actions_.at(name)->setEnabled(true);
    }
    actions_.at("mnuHelpContents")->setShortcut(Qt::Key_F1);
}

void frmMain::captionMenus() {
    for (const MenuRow& row : menuRows)
        if (row.caption != 0)
            menus_.at(row.name)->setTitle(ui::text(row.caption));
    for (const MenuRow& row : entryRows)
        if (row.caption != 0)
            actions_.at(row.name)->setText(ui::text(row.caption));
    menus_.at("mnuPopup")->setTitle("Popup");
    actions_.at(dummyEntry)->setText("DummyLastItem");
}

void frmMain::checkMenus(long nodeType) {
    core::procedure(module, "checkMenus", [&](core::Frame&) {
        // The popup keeps one visible entry while all others are hidden.
        QAction* dummy = actions_.at(dummyEntry);
        dummy->setVisible(true);
        for (QAction* entry : menus_.at("mnuPopup")->actions())
            if (entry != dummy)
                entry->setVisible(false);
        actions_.at("mnuFileDelete")->setEnabled(isDeletable(nodeType));
        actions_.at("mnuReportsExport")->setEnabled(false);
        if (const char* entry = popupEntryOf(nodeType))
            actions_.at(entry)->setVisible(true);
        // Nothing ever disables it, so this has no effect; it stays so.
        if (nodeType == nodeTypeCategoryEvents || nodeType == nodeTypeExclusion)
            actions_.at("mnuFileNewEvent")->setEnabled(true);
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
        frame.step([&] { newKey = mdlDatabase::addNewEvent(dlgEvent_->newEvent()); });
        frame.step([&] { loadNavigationTree(newKey); });
    });
}

void frmMain::mnuFileDelete_Click() {
    core::procedure(module, "mnuFileDelete_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::string selected = tvNavigation->selectedKey();
            if (selected.empty())
                return;
            const long nodeType = tvNavigation->info(selected).nodeType;
            if (isDeletable(nodeType))
                emit actions_.at(popupEntryOf(nodeType))->triggered(false);  // shown just now or not
        });
    });
}

void frmMain::mnuViewCurrentLogFile_Click() {
    core::procedure(module, "mnuViewCurrentLogFile_Click", [&](core::Frame& frame) {
        frame.step([] {
            platform::startDetached("notepad \"" + mdlDatabase::getConfigurationSetting("OutputFilePath") +
                                    "\"");
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
        frame.step([] { mdlUtility::uninstallQLNService(); });
        frame.step([&] { platform::clock().sleep(pauseToRead); });
        frame.step([&] { emit finalExitRequested(); });
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
