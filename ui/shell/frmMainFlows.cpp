// The shell's menu entries that lead out of the monitored events: exclusions, options, and the import from
// the legacy notifier.

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/confirmation.h"
#include "database/exclusions.h"
#include "database/legacyImport.h"
#include "server/eventSources.h"
#include "server/serviceControl.h"
#include "ui/dialogs/dlgAddExclusion.h"
#include "ui/dialogs/frmOptions.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"
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

void frmMain::mnuPopupExclusion_Create_Click() {
    core::procedure(module, "mnuPopupExclusion_Create_Click", [&](core::Frame& frame) {
        if (!dlgAddExclusion_)
            dlgAddExclusion_ = new dlgAddExclusion(this);
        dlgAddExclusion_->displayForm();
        if (dlgAddExclusion_->cancelled)
            return;
        long eventId = mdlDatabase::allExclusionIds;
        // 16 bits here, where the pane of an exclusion reads 32; the difference stays.
        const bool read = frame.step([&] {
            if (!dlgAddExclusion_->allEventIds())
                eventId = dlgAddExclusion_->specificEventId().numberAs<std::int16_t>();
        });
        if (!read)
            return;
        long newKey = 0;
        frame.step([&] { newKey = mdlDatabase::addNewExclusion(dlgAddExclusion_->eventSource(), eventId); });
        frame.step([&] { loadNavigationTree({}, {}, newKey); });
    });
}

void frmMain::mnuPopupExclusion_Delete_Click() {
    core::procedure(module, "mnuPopupExclusion_Delete_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const std::string selected = tvNavigation->selectedKey();
            if (selected.empty())
                return;
            // Not back to the list of exclusions; it stays so.
            if (mdlDatabase::deleteExclusion(tvNavigation->info(selected).key))
                showEventsRoot();
        });
    });
}

void frmMain::mnuOptions_Click() {
    core::procedure(module, "mnuOptions_Click",
                    [&](core::Frame& frame) { frame.step([&] { frmOptions(this).exec(); }); });
}

void frmMain::mnuImportEvents_Click() {
    core::procedure(module, "mnuImportEvents_Click", [&](core::Frame& frame) {
        if (!confirmed(myLoadResString(1243) + "\n" + myLoadResString(1244), myLoadResString(1245)))
            return;
        // The legacy service writes to the database that is about to be read.
        if (!legacyServiceIsDown())
            return;
        frame.step([] { mdlDatabase::importLegacyEvents(mdlUtility::isValidEventSource); });
        frame.step([&] { loadNavigationTree(); });
    });
}
