#include "ui/shell/menus.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "core/procedure.h"
#include "ui/base/classNodeInfo.h"
#include "ui/base/text.h"

namespace {

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

Menus::Menus(QMainWindow& window) {
    for (const MenuRow& row : menuRows) {
        QMenu* menu = nullptr;
        if (*row.menu)
            menu = menus_.at(row.menu)->addMenu(QString());
        else if (row.name == std::string("mnuFile") || row.name == std::string("mnuHelp"))
            menu = window.menuBar()->addMenu(QString());
        else
            menu = new QMenu(&window);
        menu->setObjectName(row.name);
        menus_[row.name] = menu;
    }
    for (const MenuRow& row : entryRows) {
        addEntry(*menus_.at(row.menu), row.name);
        entry(row.name).setSeparator(row.caption == 0);
    }
    addEntry(popup(), dummyEntry);
    entry("mnuHelpContents").setShortcut(Qt::Key_F1);
}

void Menus::addEntry(QMenu& menu, const char* name) {
    QAction* action = menu.addAction(QString());
    action->setObjectName(name);
    action->setEnabled(false);
    entries_[name] = action;
}

void Menus::caption() {
    for (const MenuRow& row : menuRows)
        if (row.caption != 0)
            menus_.at(row.name)->setTitle(ui::text(row.caption));
    for (const MenuRow& row : entryRows)
        if (row.caption != 0)
            entry(row.name).setText(ui::text(row.caption));
    popup().setTitle("Popup");
    entry(dummyEntry).setText("DummyLastItem");
}

void Menus::check(long nodeType) {
    core::procedure("frmMain", "checkMenus", [&](core::Frame&) {
        // The popup keeps one visible entry while all others are hidden.
        QAction* dummy = &entry(dummyEntry);
        dummy->setVisible(true);
        for (QAction* each : popup().actions())
            if (each != dummy)
                each->setVisible(false);
        entry("mnuFileDelete").setEnabled(isDeletable(nodeType));
        entry("mnuReportsExport").setEnabled(false);
        if (const char* name = popupEntryOf(nodeType))
            entry(name).setVisible(true);
        // Required, though nothing ever disables it and so this has no effect.
        if (nodeType == nodeTypeCategoryEvents || nodeType == nodeTypeExclusion)
            entry("mnuFileNewEvent").setEnabled(true);
        dummy->setVisible(false);
    });
}

QAction* Menus::deletionOf(long nodeType) const {
    return isDeletable(nodeType) ? &entry(popupEntryOf(nodeType)) : nullptr;
}
