#include "ui/panes/paneEventDetails.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "core/state.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/dialogs/dlgExclusions.h"
#include "ui/parts/contentGroup.h"
#include "ui/parts/insertionVariables.h"
#include "ui/widgets/eventIdBox.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/variableTextBox.h"

namespace {

constexpr char module[] = "frmMain";
constexpr int lowestTree = 120;  // pixels; what is lower than its content scrolls
constexpr int lowestBody = 130;

}  // namespace

paneEventDetails::paneEventDetails(QWidget* parent, const ui::KeyedTree& navigation)
    : QWidget(parent), tvNavigation(navigation) {
    createControls();
    createContentControls();
    buildLayout();
    connectControls();
}

void paneEventDetails::createControls() {
    lblEventSource = ui::makeControl<QLabel>(this, "lblEventSource");
    comboEventSource = ui::makeControl<QComboBox>(this, "comboEventSource");
    // A long source must not make the pane wider than the window.
    comboEventSource->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    comboEventSource->setMinimumContentsLength(12);
    lblEventId = ui::makeControl<QLabel>(this, "lblEventId");
    comboEventId = ui::makeControl<ui::EventIdBox>(this, "comboEventId");
    lblEventType = ui::makeControl<QLabel>(this, "lblEventType");
    comboEventType = ui::makeControl<QComboBox>(this, "comboEventType");
    chkActive = ui::makeControl<QCheckBox>(this, "chkActive");
    lblEventNotes = ui::makeControl<QLabel>(this, "lblEventNotes");
    txtEventTitle = ui::makeControl<QLineEdit>(this, "txtEventTitle");
    frameRecipients = ui::makeControl<QGroupBox>(this, "frameRecipients");
    tvRecipients = ui::makeControl<ui::KeyedTree>(frameRecipients, "tvRecipients");
    tvRecipients->setMinimumHeight(lowestTree);
    cmdAddRecipient = ui::makeControl<QPushButton>(frameRecipients, "cmdAddRecipient");
    cmdRemoveRecipient = ui::makeControl<QPushButton>(frameRecipients, "cmdRemoveRecipient");
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
}

QLayout* paneEventDetails::matchLayout() {
    auto* match = new QGridLayout;
    match->setColumnStretch(1, 1);
    match->addWidget(lblEventSource, 0, 0);
    match->addWidget(comboEventSource, 0, 1);
    match->addWidget(lblEventId, 0, 2);
    match->addWidget(comboEventId, 0, 3);
    match->addWidget(lblEventType, 1, 0);
    match->addWidget(comboEventType, 1, 1);
    match->addWidget(chkActive, 1, 2, 1, 2);
    match->addWidget(lblEventNotes, 2, 0);
    match->addWidget(txtEventTitle, 2, 1, 1, 3);
    comboEventId->setMaximumWidth(110);
    return match;
}

void paneEventDetails::layOutRecipients() {
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {cmdAddRecipient, cmdRemoveRecipient}) {
        button->setFixedWidth(button->sizeHint().height() + 4);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* recipients = new QHBoxLayout(frameRecipients);
    recipients->addWidget(tvRecipients, 1);
    recipients->addLayout(buttons);
}

void paneEventDetails::buildLayout() {
    layOutRecipients();
    auto* area = ui::makeControl<QScrollArea>(this, "VSViewPort1");
    auto* inner = new QWidget(area);
    auto* parts = new QVBoxLayout(inner);
    parts->addLayout(matchLayout());
    parts->addWidget(frameRecipients, 1);
    parts->addWidget(frameContent, 2);
    area->setWidget(inner);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 4, 6, 6);
    outer->addWidget(area, 1);
    outer->addLayout(ui::buttonRow({cmdExclusions}, {cmdEventApply}));

    lblEventSource->setBuddy(comboEventSource);
    lblEventId->setBuddy(comboEventId);
    lblEventType->setBuddy(comboEventType);
    lblEventNotes->setBuddy(txtEventTitle);
    ui::setTabOrder({comboEventSource, comboEventId, comboEventType, chkActive, txtEventTitle, tvRecipients,
                     cmdAddRecipient, cmdRemoveRecipient});
    content->followInTabOrder(*cmdRemoveRecipient);
    ui::setTabOrder({content->comboEmailPriority, cmdExclusions, cmdEventApply});
}

void paneEventDetails::controlInit() {
    lblEventSource->setText(ui::text(1053));
    lblEventId->setText(ui::text(1051));
    comboEventId->setAllText(ui::text(1108));
    lblEventType->setText(ui::text(1111));
    ui::fillCombo(*comboEventType, {1027, 1028, 1029});
    chkActive->setText(ui::text(1022));
    lblEventNotes->setText(ui::text(1151));
    frameRecipients->setTitle(ui::text(1031));
    cmdAddRecipient->setText("+");
    cmdAddRecipient->setToolTip(ui::text(1110));
    cmdAddRecipient->setAccessibleName(ui::text(1110));
    cmdRemoveRecipient->setText(QChar(0x2212));  // minus
    cmdRemoveRecipient->setToolTip(ui::text(1109));
    cmdRemoveRecipient->setAccessibleName(ui::text(1109));
    tvRecipients->setAccessibleName(ui::text(1031));
    frameContent->setTitle(ui::text(1054));
    content->controlInit();
    cmdExclusions->setText(ui::text(1107));
    cmdEventApply->setText(ui::text(1046));
    // The catch-all event's source is a caption.
    if (!comboEventSource->isEnabled() && comboEventSource->count() == 1)
        comboEventSource->setItemText(0, ui::text(1049));
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
    connectList(*comboEventSource, "comboEventSource_Click");
    connectList(*comboEventType, "comboEventType_Click");
    connectList(*comboEventId, "comboEventId_Click");
    connectChoice(*content->comboVoiceMailPriority, "comboVoiceMailPriority_Click");
    connectChoice(*content->comboEmailPriority, "comboEmailPriority_Click");
    connect(comboEventId, &QComboBox::editTextChanged, this, [this] { noteChange("comboEventId_Change"); });
    connect(txtEventTitle, &QLineEdit::textChanged, this, [this] { noteChange("txtEventTitle_Change"); });
    connect(content->txtVoiceMailFileName, &QLineEdit::textChanged, this,
            [this] { noteChange("txtVoiceMailFileName_Change"); });
    connect(chkActive, &QCheckBox::toggled, this, [this] { noteChange("chkActive_Click"); });

    connect(tvRecipients, &ui::KeyedTree::nodeClicked, this, &paneEventDetails::tvRecipients_NodeClick);
    connect(tvRecipients, &ui::KeyedTree::nodeChecked, this, &paneEventDetails::tvRecipients_NodeCheck);
    connect(cmdAddRecipient, &QPushButton::clicked, this, &paneEventDetails::cmdAddRecipient_Click);
    connect(cmdRemoveRecipient, &QPushButton::clicked, this, &paneEventDetails::cmdRemoveRecipient_Click);
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
    core::procedure(module, "updateEventApply",
                    [&](core::Frame&) { cmdEventApply->setEnabled(eventDataChanged_); });
}

void paneEventDetails::cmdExclusions_Click() {
    core::procedure(module, "cmdExclusions_Click", [&](core::Frame& frame) {
        frame.step([&] { ui::sharedDialog<dlgExclusions>(*window()).displayForm(); });
    });
}
