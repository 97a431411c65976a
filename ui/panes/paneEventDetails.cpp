#include "ui/panes/paneEventDetails.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/state.h"
#include "database/assignment.h"
#include "database/confirmation.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/dialogs/dlgExclusions.h"
#include "ui/panes/eventMatch.h"
#include "ui/panes/eventRecipients.h"
#include "ui/panes/saveQuestion.h"
#include "ui/parts/contentGroup.h"
#include "ui/parts/insertionVariables.h"
#include "ui/widgets/eventIdBox.h"
#include "ui/widgets/formArea.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/variableTextBox.h"

using mdlDatabase::confirmed;
using modLocalize::myLoadResString;
using platform::Recordset;

namespace {

constexpr char module[] = "frmMain";
// Pixels. At the window's first size all of the pane is in sight; in a lower window these heights give way
// before anything scrolls.
constexpr int lowestBody = 60;
constexpr int groupMargin = 8;
constexpr int betweenRows = 6;
// Shares of the height that is left over.
constexpr int recipientsShare = 2;
constexpr int contentShare = 5;

}  // namespace

paneEventDetails::paneEventDetails(QWidget* parent) : QWidget(parent) {
    createControls();
    createContentControls();
    buildLayout();
    connectControls();
}

void paneEventDetails::createControls() {
    match = new EventMatch(this);
    recipients = new EventRecipients(this);
    frameContent = ui::makeControl<QGroupBox>(this, "frameContent");
    cmdExclusions = ui::makeControl<QPushButton>(this, "cmdExclusions");
    cmdEventApply = ui::makeControl<QPushButton>(this, "cmdEventApply");
    cmdEventApply->setEnabled(false);
}

void paneEventDetails::createContentControls() {
    content = new ui::ContentGroup(module, *this, *frameContent, {"lblEmailBody", "Label2"},
                                   {.textChanged =
                                        [this] {
        if (!core::gRebuildingControls)
            markChanged();
                                    },
                                    .priorityClicked = [this] { markChanged(); }});
    content->rtbEmailBody->setMinimumHeight(lowestBody);
    content->rtbEmailBody->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
}

void paneEventDetails::buildLayout() {
    auto* inner = new QWidget(this);
    auto* parts = new QVBoxLayout(inner);
    parts->setSpacing(betweenRows);
    parts->addWidget(match);
    parts->addWidget(recipients, recipientsShare);
    parts->addWidget(frameContent, contentShare);
    for (const QGroupBox* group : {static_cast<QGroupBox*>(recipients), frameContent}) {
        group->layout()->setContentsMargins(groupMargin, groupMargin, groupMargin, groupMargin);
        group->layout()->setSpacing(betweenRows);
    }
    auto* area = new ui::FormArea(inner, this);
    area->setObjectName("VSViewPort1");
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 4, 6, 6);
    outer->addWidget(area, 1);
    outer->addLayout(ui::buttonRow({cmdExclusions}, {cmdEventApply}));

    ui::setTabOrder({match->comboEventSource, match->comboEventId, match->comboEventType, match->chkActive,
                     match->txtEventTitle, recipients->tvRecipients, recipients->cmdAddRecipient,
                     recipients->cmdRemoveRecipient});
    content->followInTabOrder(*recipients->cmdRemoveRecipient);
    ui::setTabOrder({content->comboEmailPriority, cmdExclusions, cmdEventApply});
}

void paneEventDetails::controlInit() {
    match->controlInit();
    recipients->controlInit();
    frameContent->setTitle(ui::text(1054));
    content->controlInit();
    cmdExclusions->setText(ui::text(1107));
    cmdEventApply->setText(ui::text(1046));
    ui::nameByBuddy(*this);
}

// A click is a choice by a person, also of the row that is chosen already, and any change by the program.
void paneEventDetails::connectList(QComboBox& list, const char* handler) {
    connect(&list, &QComboBox::currentIndexChanged, this, [this, handler] { noteChange(handler); });
    connectChoice(list, handler);
}

void paneEventDetails::connectChoice(QComboBox& list, const char* handler) {
    connect(&list, &QComboBox::activated, this, [this, handler] {
        if (!eventDataChanged_)
            noteChange(handler);
    });
    // The wheel scrolls the pane; it changes nothing that is not being worked with.
    ui::ignoreWheelWithoutFocus(list);
}

void paneEventDetails::connectControls() {
    connectList(*match->comboEventSource, "comboEventSource_Click");
    connectList(*match->comboEventType, "comboEventType_Click");
    connectList(*match->comboEventId, "comboEventId_Click");
    connectChoice(*content->comboVoiceMailPriority, "comboVoiceMailPriority_Click");
    connectChoice(*content->comboEmailPriority, "comboEmailPriority_Click");
    connect(match->comboEventId, &QComboBox::editTextChanged, this, [this] {
        noteChange("comboEventId_Change");
        match->showWhetherIdFits();
    });
    connect(match->txtEventTitle, &QLineEdit::textChanged, this,
            [this] { noteChange("txtEventTitle_Change"); });
    connect(content->txtVoiceMailFileName, &QLineEdit::textChanged, this,
            [this] { noteChange("txtVoiceMailFileName_Change"); });
    connect(match->chkActive, &QCheckBox::toggled, this, [this] { noteChange("chkActive_Click"); });

    connect(recipients, &EventRecipients::ticked, this, &paneEventDetails::markChanged);
    connect(recipients->cmdAddRecipient, &QPushButton::clicked, this,
            &paneEventDetails::cmdAddRecipient_Click);
    connect(recipients->cmdRemoveRecipient, &QPushButton::clicked, this,
            &paneEventDetails::cmdRemoveRecipient_Click);
    connect(cmdExclusions, &QPushButton::clicked, this, &paneEventDetails::cmdExclusions_Click);
    connect(cmdEventApply, &QPushButton::clicked, this, &paneEventDetails::cmdEventApply_Click);
}

void paneEventDetails::noteChange(const char* handler) {
    core::procedure(module, handler, [&](core::Frame&) { markChanged(); });
}

void paneEventDetails::markChanged() {
    eventDataChanged_ = true;
    updateEventApply();
}

void paneEventDetails::updateEventApply() {
    core::procedure(module, "updateEventApply", [&](core::Frame&) {
        cmdEventApply->setEnabled(eventDataChanged_ && match->comboEventId->hasId());
    });
}

void paneEventDetails::cmdExclusions_Click() {
    core::procedure(module, "cmdExclusions_Click", [&](core::Frame& frame) {
        frame.step([&] { ui::sharedDialog<dlgExclusions>(*window()).displayForm(); });
    });
}

Filled paneEventDetails::displayEventDetails(long eventKey, const std::string& nodeText) {
    return core::procedure(module, "displayEventDetails", Filled::unreadable,
                           [&](core::Frame& frame, Filled& filled) {
        shownKey_.reset();
        setEnabled(true);
        bool found = true;
        bool whole = fillEvent(frame, eventKey, found) && fillContent(frame, eventKey);
        if (content->variables->mnuInsert.size() == 1)
            frame.step([&] { content->variables->controlInit(); });
        whole = recipients->show(eventKey) && whole;
        if (!whole) {
            filled = found ? Filled::unreadable : Filled::gone;
            blank();
            return;
        }
        filled = Filled::whole;
        shownKey_ = eventKey;
        nodeText_ = nodeText;
        eventDataChanged_ = false;
        updateEventApply();
    });
}

void paneEventDetails::blank() {
    shownKey_.reset();
    setEnabled(false);  // first: an empty subject would not let the focus go
    match->blank();
    content->blank();
    recipients->blank();
    eventDataChanged_ = false;
    cmdEventApply->setEnabled(false);
}

bool paneEventDetails::fillEvent(core::Frame& frame, long eventKey, bool& found) {
    Recordset event = mdlDatabase::getEvent(eventKey);
    if (!frame.step([&] { found = !event.EOF_(); }) || !found)
        return false;
    match->show(frame, event);
    // Required: nothing shows the button again in this run. The tree's branch of exclusions is the standing
    // way.
    if (!match->isCatchAll())
        cmdExclusions->hide();
    cmdEventApply->setEnabled(false);
    frame.step([&] { event.close(); });
    return true;
}

bool paneEventDetails::fillContent(core::Frame& frame, long eventKey) {
    Recordset contents = mdlDatabase::getContentsForEvent(eventKey);
    bool stored = false;
    if (!frame.step([&] { stored = contents.recordCount() > 0; }))
        return false;  // what is stored would be overwritten
    if (stored)
        content->showStored(frame, contents);
    else
        content->showDefaults(frame);
    frame.step([&] { contents.close(); });
    return true;
}

void paneEventDetails::refillRecipients() {
    if (shownKey_ && !eventDataChanged_ && !recipients->show(*shownKey_))
        blank();
}

void paneEventDetails::cmdEventApply_Click() {
    core::procedure(module, "cmdEventApply_Click", [&](core::Frame&) {
        if (!shownKey_)
            return;
        const long eventKey = *shownKey_;
        eventDataChanged_ = false;
        updateEventApply();
        saveEventDataChanges(eventKey, false);
        emit eventSaved(eventKey);
    });
}

mdlDatabase::ModifiedEvent paneEventDetails::shownEvent(long eventKey) const {
    mdlDatabase::ModifiedEvent event;
    event.eventKey = eventKey;
    match->collect(event);
    event.content = content->shown();
    return event;
}

void paneEventDetails::save() {
    if (shownKey_)
        saveEventDataChanges(*shownKey_, true);
}

void paneEventDetails::saveEventDataChanges(long eventKey, bool silent) {
    core::procedure(module, "saveEventDataChanges", [&](core::Frame& frame) {
        // Contents and assignments of an event that somebody else deleted would be rows that no window
        // reaches.
        if (EventRecipients::isEventGone(eventKey)) {
            core::gLog().log("Not saved, because it is not in the database any more: " + nodeText_,
                             core::logWarning, frame.tag());
            blank();
            return;
        }
        const bool wasActive = mdlDatabase::isEventActive(eventKey);
        const bool active = match->chkActive->isChecked();
        frame.step([&] { mdlDatabase::modifyEvent(shownEvent(eventKey)); });
        const bool hasDevices = mdlDatabase::changeRecipientsForEvent(eventKey, recipients->selection());
        const mdlDatabase::EventAnalysis analysis = mdlDatabase::analyzeEvent(eventKey);
        if (silent)
            return;
        const long activeDevices = analysis.activeDevices;
        if (!hasDevices && active) {
            if (confirmed(myLoadResString(1158), myLoadResString(1159)))
                recipients->assignFirst(frame, eventKey, nodeText_);
        } else if (recipients->wereEverTicked() && !wasActive && hasDevices && !active && activeDevices > 0) {
            if (confirmed(myLoadResString(1138), myLoadResString(1139)))
                frame.step([&] { mdlDatabase::setEventActiveState(eventKey, true); });
        } else if (activeDevices == 0 && active) {
            platform::prompts().messageBox(
                {myLoadResString(1221), myLoadResString(1222), platform::BoxIcon::exclamation});
        }
    });
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

void paneEventDetails::cmdAddRecipient_Click() {
    core::procedure(module, "cmdAddRecipient_Click", [&](core::Frame& frame) {
        frame.step([&] {
            if (!shownKey_)
                return;
            const long eventKey = *shownKey_;
            if (settleChanges(eventKey) && recipients->edit(eventKey, nodeText_))
                emit eventSaved(eventKey);
        });
    });
}

void paneEventDetails::cmdRemoveRecipient_Click() {
    core::procedure(module, "cmdRemoveRecipient_Click", [&](core::Frame& frame) {
        long recipientKey = 0;
        // Before the question: a save refills the tree, and nothing is selected in it then.
        if (!shownKey_ || !frame.step([&] { recipientKey = recipients->selectedRecipient(); }))
            return;
        const long eventKey = *shownKey_;
        if (!settleChanges(eventKey))
            return;
        frame.step([&] { mdlDatabase::removeRecipientFromEvent(eventKey, recipientKey); });
        frame.step([&] { recipients->show(eventKey); });
        frame.step([&] { emit eventSaved(eventKey); });
        recipients->cmdRemoveRecipient->setEnabled(false);
    });
}
