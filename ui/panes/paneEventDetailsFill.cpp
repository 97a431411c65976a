// Pane 1 is filled in a fixed order: filling a control raises the same handlers as a person's change, and the
// flag that they set is cleared last.

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include "database/events.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/parts/contentGroup.h"
#include "ui/parts/eventSourceList.h"
#include "ui/parts/insertionVariables.h"
#include "ui/parts/mdlRecDevices.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/eventIdBox.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/variableTextBox.h"

using platform::Recordset;

namespace {

constexpr char module[] = "frmMain";

void showStoredPriority(QComboBox& list, const Recordset& contents) {
    ui::ContentGroup::showPriority(list, contents.number("ContentPriority"));
}

// Nothing can be chosen, but what is shown stays as easy to read as before.
void lockList(QComboBox& list) {
    QPalette look = list.palette();
    for (const auto role : {QPalette::Text, QPalette::ButtonText})
        look.setColor(QPalette::Disabled, role, look.color(QPalette::Active, role));
    list.setPalette(look);
    list.setEnabled(false);
}

bool findContent(Recordset& contents, int type) {
    contents.moveFirst();
    contents.find("ContentType = " + std::to_string(type));
    return !contents.EOF_();
}

}  // namespace

void paneEventDetails::displayEventDetails(long eventKey) {
    core::procedure(module, "displayEventDetails", [&](core::Frame& frame) {
        fillEvent(frame, eventKey);
        fillContent(frame, eventKey);
        if (content->variables->mnuInsert.size() == 1)
            frame.step([&] { content->variables->controlInit(); });
        selectedDevices_.clear();
        frame.step(
            [&] { mdlRecDevices::populateRecipientsList(*tvRecipients, eventKey, selectedDevices_, true); });
        eventDataChanged_ = false;
        cmdRemoveRecipient->setEnabled(false);
        updateEventApply();
    });
}

void paneEventDetails::fillEvent(core::Frame& frame, long eventKey) {
    Recordset event = mdlDatabase::getEvent(eventKey);
    frame.step([&] { txtEventTitle->setText(ui::fromUtf8(ui::textOrEmpty(event, "EventTitle"))); });
    frame.step([&] { chkActive->setChecked(event.boolean("EventActive")); });
    frame.step([&] { fillSources(frame, event.boolean("EventCollection")); });
    frame.step(
        [&] { ui::setComboText(ui::fromUtf8(ui::textOrEmpty(event, "EventSource")), *comboEventSource); });
    frame.step([&] {
        const std::string id = ui::textOrEmpty(event, "EventID");
        if (id == std::to_string(mdlDatabase::nodeAllEventIds))
            comboEventId->showAll();
        else
            comboEventId->showId(ui::fromUtf8(id));
    });
    cmdEventApply->setEnabled(false);
    frame.step([&] {
        comboEventType->setCurrentIndex(
            static_cast<int>(mdlDatabase::mapEventType(event.number("EventType"), true)));
    });
    frame.step([&] { event.close(); });
}

void paneEventDetails::fillSources(core::Frame& frame, bool catchAll) {
    comboEventSource->clear();
    if (catchAll) {
        comboEventSource->addItem(ui::text(1049));  // selected, whatever language the stored one is in
        lockList(*comboEventSource);
        return;
    }
    frame.step([&] { ui::fillEventSources(*comboEventSource); });
    comboEventSource->setEnabled(true);
    // Nothing shows the button again in this run: the tree's branch of exclusions is the standing way. It
    // stays so.
    cmdExclusions->hide();
}

void paneEventDetails::fillContent(core::Frame& frame, long eventKey) {
    Recordset contents = mdlDatabase::getContentsForEvent(eventKey);
    bool stored = false;
    frame.step([&] { stored = contents.recordCount() > 0; });
    if (stored)
        fillStoredContent(frame, contents);
    else
        fillDefaultContent(frame);
    frame.step([&] { contents.close(); });
}

void paneEventDetails::fillDefaultContent(core::Frame& frame) {
    frame.step([&] { content->showDefaultVoiceFile(); });
    frame.step([&] { content->showDefaultVoiceMailPriority(); });
    frame.step([&] { content->showDefaultMail(); });
    frame.step([&] { content->showDefaultEmailPriority(); });
    content->colorTexts();
}

// A type of content that the event lacks leaves its controls with what the event before had there.
void paneEventDetails::fillStoredContent(core::Frame& frame, Recordset& contents) {
    frame.step([&] {
        if (findContent(contents, 1)) {
            frame.step([&] {
                content->txtVoiceMailFileName->setText(
                    ui::fromUtf8(ui::textOrEmpty(contents, "ContentAttachment")));
            });
            frame.step([&] { showStoredPriority(*content->comboVoiceMailPriority, contents); });
        }
    });
    frame.step([&] {
        if (!findContent(contents, 3))
            return;
        frame.step(
            [&] { content->rtbEmailSubject->setStoredText(ui::textOrEmpty(contents, "ContentSubject")); });
        frame.step([&] { content->rtbEmailBody->setStoredText(ui::textOrEmpty(contents, "ContentNote")); });
        frame.step([&] { showStoredPriority(*content->comboEmailPriority, contents); });
        frame.step([&] { content->colorTexts(); });
    });
}
