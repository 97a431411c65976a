// Pane 1 is saved: what its controls show goes into the database, and what the administrator may have
// forgotten is asked.

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include "core/modLocalize.h"
#include "database/confirmation.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "ui/base/text.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/parts/contentGroup.h"
#include "ui/widgets/eventIdBox.h"

using mdlDatabase::confirmed;
using modLocalize::myLoadResString;

namespace {

constexpr char module[] = "frmMain";

}  // namespace

void paneEventDetails::cmdEventApply_Click() {
    core::procedure(module, "cmdEventApply_Click", [&](core::Frame& frame) {
        eventDataChanged_ = false;
        updateEventApply();
        long eventKey = 0;
        if (!frame.step([&] { eventKey = selectedEventKey(); }))
            return;
        saveEventDataChanges(eventKey, false);
        emit eventSaved(eventKey);
    });
}

mdlDatabase::ModifiedEvent paneEventDetails::shownEvent(long eventKey) const {
    mdlDatabase::ModifiedEvent event;
    event.eventKey = eventKey;
    event.eventSource = ui::toUtf8(comboEventSource->currentText());
    event.eventId = comboEventId->idText();
    event.eventTitle = ui::toUtf8(txtEventTitle->text());
    event.eventType = static_cast<short>(mdlDatabase::mapEventType(comboEventType->currentIndex(), false));
    event.eventActive = chkActive->isChecked();
    event.content = content->shown();
    return event;
}

void paneEventDetails::saveEventDataChanges(long eventKey, bool silent) {
    core::procedure(module, "saveEventDataChanges", [&](core::Frame& frame) {
        const bool wasActive = mdlDatabase::isEventActive(eventKey);
        const bool active = chkActive->isChecked();
        frame.step([&] { mdlDatabase::modifyEvent(shownEvent(eventKey)); });
        const bool hasDevices = mdlDatabase::changeRecipientsForEvent(eventKey, selectedDevices_);
        const mdlDatabase::EventAnalysis analysis = mdlDatabase::analyzeEvent(eventKey);
        if (silent)
            return;
        const auto counted = analysis.find("ActiveDevices");
        const long activeDevices = counted == analysis.end() ? 0 : counted->second;
        if (!hasDevices && active) {
            if (confirmed(myLoadResString(1158), myLoadResString(1159)))
                assignFirstRecipients(frame, eventKey);
        } else if (eventRecipientsChanged_ && !wasActive && hasDevices && !active && activeDevices > 0) {
            if (confirmed(myLoadResString(1138), myLoadResString(1139)))
                frame.step([&] { mdlDatabase::setEventActiveState(eventKey, true); });
        } else if (activeDevices == 0 && active) {
            platform::prompts().messageBox(
                {myLoadResString(1221), myLoadResString(1222), platform::BoxIcon::exclamation});
        }
    });
}
