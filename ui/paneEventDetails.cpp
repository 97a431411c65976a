#include "ui/paneEventDetails.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "core/state.h"
#include "database/settings.h"
#include "ui/controls.h"
#include "ui/dlgExclusions.h"
#include "ui/insertionVariables.h"
#include "ui/text.h"
#include "ui/voiceFileBrowse.h"
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
    lblVoiceMailFilename = ui::makeControl<QLabel>(frameContent, "lblVoiceMailFilename");
    txtVoiceMailFileName = ui::makeControl<QLineEdit>(frameContent, "txtVoiceMailFileName");
    cmdVoiceMailBrowse = ui::makeControl<QPushButton>(frameContent, "cmdVoiceMailBrowse");
    lblVoiceMailPriority = ui::makeControl<QLabel>(frameContent, "lblVoiceMailPriority");
    comboVoiceMailPriority = ui::makeControl<QComboBox>(frameContent, "comboVoiceMailPriority");
    lblEmailSubject = ui::makeControl<QLabel>(frameContent, "lblEmailSubject");
    rtbEmailSubject = new ui::VariableTextBox(ui::VariableTextBox::Lines::one, frameContent);
    rtbEmailSubject->setObjectName("rtbEmailSubject");
    lblEmailBody = ui::makeControl<QLabel>(frameContent, "lblEmailBody");
    rtbEmailBody = new ui::VariableTextBox(ui::VariableTextBox::Lines::many, frameContent);
    rtbEmailBody->setObjectName("rtbEmailBody");
    rtbEmailBody->setMinimumHeight(lowestBody);
    Label2 = ui::makeControl<QLabel>(frameContent, "Label2");
    Label2->setWordWrap(true);
    lblEmailPriority = ui::makeControl<QLabel>(frameContent, "lblEmailPriority");
    comboEmailPriority = ui::makeControl<QComboBox>(frameContent, "comboEmailPriority");
    variables = new ui::InsertionVariables(module, *this, *rtbEmailSubject, *rtbEmailBody, [this] {
        if (core::gRebuildingControls)
            return;
        eventDataChanged_ = true;
        updateEventApply();
    });
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

void paneEventDetails::layOutContent() {
    auto* content = new QGridLayout(frameContent);
    content->setColumnStretch(1, 1);
    content->addWidget(lblVoiceMailFilename, 0, 0);
    content->addWidget(txtVoiceMailFileName, 0, 1);
    content->addWidget(cmdVoiceMailBrowse, 0, 2);
    cmdVoiceMailBrowse->setMaximumWidth(48);
    content->addWidget(lblVoiceMailPriority, 1, 0);
    content->addWidget(comboVoiceMailPriority, 1, 1, 1, 2, Qt::AlignLeft);
    content->addWidget(lblEmailSubject, 2, 0);
    content->addWidget(rtbEmailSubject, 2, 1, 1, 2);
    content->addWidget(lblEmailBody, 3, 0, Qt::AlignTop);
    content->addWidget(rtbEmailBody, 3, 1, 1, 2);
    content->addWidget(Label2, 4, 1, 1, 2);
    content->addWidget(lblEmailPriority, 5, 0);
    content->addWidget(comboEmailPriority, 5, 1, 1, 2, Qt::AlignLeft);
    content->setRowStretch(3, 1);
}

void paneEventDetails::buildLayout() {
    layOutRecipients();
    layOutContent();
    auto* area = ui::makeControl<QScrollArea>(this, "VSViewPort1");
    auto* inner = new QWidget(area);
    auto* parts = new QVBoxLayout(inner);
    parts->addLayout(matchLayout());
    parts->addWidget(frameRecipients, 1);
    parts->addWidget(frameContent, 2);
    area->setWidget(inner);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdExclusions);
    buttons->addStretch();
    buttons->addWidget(cmdEventApply);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 4, 6, 6);
    outer->addWidget(area, 1);
    outer->addLayout(buttons);

    lblEventSource->setBuddy(comboEventSource);
    lblEventId->setBuddy(comboEventId);
    lblEventType->setBuddy(comboEventType);
    lblEventNotes->setBuddy(txtEventTitle);
    lblVoiceMailFilename->setBuddy(txtVoiceMailFileName);
    lblVoiceMailPriority->setBuddy(comboVoiceMailPriority);
    lblEmailSubject->setBuddy(rtbEmailSubject);
    lblEmailBody->setBuddy(rtbEmailBody);
    lblEmailPriority->setBuddy(comboEmailPriority);
    ui::setTabOrder({comboEventSource, comboEventId, comboEventType, chkActive, txtEventTitle, tvRecipients,
                     cmdAddRecipient, cmdRemoveRecipient, txtVoiceMailFileName, cmdVoiceMailBrowse,
                     comboVoiceMailPriority, rtbEmailSubject, rtbEmailBody, comboEmailPriority, cmdExclusions,
                     cmdEventApply});
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
    lblVoiceMailFilename->setText(ui::text(1038));
    cmdVoiceMailBrowse->setText("...");
    cmdVoiceMailBrowse->setToolTip(ui::text(1044));
    cmdVoiceMailBrowse->setAccessibleName(ui::text(1044));
    lblVoiceMailPriority->setText(ui::text(1042));
    ui::fillCombo(*comboVoiceMailPriority, {1035, 1036});
    lblEmailSubject->setText(ui::text(1039));
    lblEmailBody->setText(ui::text(1040));
    Label2->setText(ui::text(1152));
    lblEmailPriority->setText(ui::text(1043));
    ui::fillCombo(*comboEmailPriority, {1035, 1036});
    cmdExclusions->setText(ui::text(1107));
    cmdEventApply->setText(ui::text(1046));
    variables->mnuVariables->setTitle(ui::text(1058));
    // The menu is filled when the first event is shown.
    if (variables->mnuInsert.size() > 1)
        variables->controlInit();
    // The catch-all event's source is a caption.
    if (!comboEventSource->isEnabled() && comboEventSource->count() == 1)
        comboEventSource->setItemText(0, ui::text(1049));
    ui::nameByBuddy(*this);
}

// A click is a choice by a person, also of the row that is chosen already, and any change by the program.
void paneEventDetails::connectList(QComboBox& list, const char* handler) {
    connect(&list, &QComboBox::currentIndexChanged, this, [this, handler] { noteChange(handler); });
    connect(&list, &QComboBox::activated, this, [this, handler] {
        if (!eventDataChanged_)
            noteChange(handler);
    });
    // The wheel scrolls the pane; it changes nothing that is not being worked with.
    ui::ignoreWheelWithoutFocus(list);
}

void paneEventDetails::connectControls() {
    connect(comboVoiceMailPriority, &QComboBox::currentIndexChanged, this,
            [this](int index) { voiceMailPriority_ = mdlDatabase::mapPriority(index); });
    connect(comboEmailPriority, &QComboBox::currentIndexChanged, this,
            [this](int index) { emailPriority_ = mdlDatabase::mapPriority(index); });
    connectList(*comboEventSource, "comboEventSource_Click");
    connectList(*comboEventType, "comboEventType_Click");
    connectList(*comboEventId, "comboEventId_Click");
    connectList(*comboVoiceMailPriority, "comboVoiceMailPriority_Click");
    connectList(*comboEmailPriority, "comboEmailPriority_Click");
    connect(comboEventId, &QComboBox::editTextChanged, this, [this] { noteChange("comboEventId_Change"); });
    connect(txtEventTitle, &QLineEdit::textChanged, this, [this] { noteChange("txtEventTitle_Change"); });
    connect(txtVoiceMailFileName, &QLineEdit::textChanged, this,
            [this] { noteChange("txtVoiceMailFileName_Change"); });
    connect(chkActive, &QCheckBox::toggled, this, [this] { noteChange("chkActive_Click"); });

    connect(tvRecipients, &ui::KeyedTree::nodeClicked, this, &paneEventDetails::tvRecipients_NodeClick);
    connect(tvRecipients, &ui::KeyedTree::nodeChecked, this, &paneEventDetails::tvRecipients_NodeCheck);
    connect(cmdAddRecipient, &QPushButton::clicked, this, &paneEventDetails::cmdAddRecipient_Click);
    connect(cmdRemoveRecipient, &QPushButton::clicked, this, &paneEventDetails::cmdRemoveRecipient_Click);
    connect(cmdVoiceMailBrowse, &QPushButton::clicked, this, &paneEventDetails::cmdVoiceMailBrowse_Click);
    connect(cmdExclusions, &QPushButton::clicked, this, &paneEventDetails::cmdExclusions_Click);
    connect(cmdEventApply, &QPushButton::clicked, this, &paneEventDetails::cmdEventApply_Click);
}

void paneEventDetails::noteChange(const char* handler) {
    core::procedure(module, handler, [&](core::Frame&) {
        eventDataChanged_ = true;
        updateEventApply();
    });
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

void paneEventDetails::cmdVoiceMailBrowse_Click() {
    core::procedure(module, "cmdVoiceMailBrowse_Click", [&](core::Frame& frame) {
        frame.step([&] { ui::browseVoiceFile(*txtVoiceMailFileName); });
    });
}
