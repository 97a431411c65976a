#include "ui/panes/paneRecipientDetails.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTextDocument>
#include <QVBoxLayout>

#include "core/modLocalize.h"
#include "database/addressDetails.h"
#include "database/confirmation.h"
#include "database/recipients.h"
#include "server/testEvent.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/keyedTree.h"

using modLocalize::myLoadResString;

namespace {

constexpr char module[] = "frmMain";
constexpr int lowestTabs = 180;  // pixels; what is lower than its content scrolls
constexpr int highestTabs = 260;
constexpr int lowestTree = 70;

}  // namespace

paneRecipientDetails::paneRecipientDetails(QWidget* parent, const ui::KeyedTree& navigation)
    : QWidget(parent), tvNavigation(navigation) {
    createControls();
    buildLayout();
    connectControls();
}

void paneRecipientDetails::createControls() {
    lblRecipientName = ui::makeControl<QLabel>(this, "lblRecipientName");
    txtRecipientName = ui::makeControl<QLineEdit>(this, "txtRecipientName");
    chkRecipientActive = ui::makeControl<QCheckBox>(this, "chkRecipientActive");
    frameDevices = ui::makeControl<QGroupBox>(this, "frameDevices");
    sstabRecipientDevices = new ui::DeviceTabs(ui::DeviceTabs::Place::pane, frameDevices);
    sstabRecipientDevices->setMinimumHeight(lowestTabs);
    sstabRecipientDevices->setMaximumHeight(highestTabs);
    // The tree of the devices below grows with them.
    sstabRecipientDevices->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    tvRecipientDevices = ui::makeControl<ui::KeyedTree>(frameDevices, "tvRecipientDevices");
    frameEvents = ui::makeControl<QGroupBox>(this, "frameEvents");
    tvEventsMonitored = ui::makeControl<ui::KeyedTree>(frameEvents, "tvEventsMonitored");
    for (ui::KeyedTree* tree : {tvRecipientDevices, tvEventsMonitored}) {
        tree->setMinimumHeight(lowestTree);
        // What a tree would like to have must not make the pane scroll.
        tree->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    }
    tvEventsMonitored->setRootIsDecorated(false);
    tvEventsMonitored->chooseByEnterOnly();
    cmdTestNotification = ui::makeControl<QPushButton>(this, "cmdTestNotification");
    cmdRecipientApply = ui::makeControl<QPushButton>(this, "cmdRecipientApply");
    cmdRecipientApply->setEnabled(false);
}

void paneRecipientDetails::buildLayout() {
    auto* name = new QHBoxLayout;
    name->addWidget(lblRecipientName);
    name->addWidget(txtRecipientName, 1);
    name->addWidget(chkRecipientActive);
    auto* devices = new QVBoxLayout(frameDevices);
    devices->addWidget(sstabRecipientDevices, 1);
    devices->addWidget(tvRecipientDevices, 1);
    auto* events = new QVBoxLayout(frameEvents);
    events->addWidget(tvEventsMonitored);

    auto* area = ui::makeControl<QScrollArea>(this, "VSViewPort2");
    auto* inner = new QWidget(area);
    auto* parts = new QVBoxLayout(inner);
    parts->setContentsMargins(0, 0, 0, 0);
    parts->addLayout(name);
    parts->addWidget(frameDevices, 4);
    parts->addWidget(frameEvents, 1);
    area->setWidget(inner);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 4, 6, 6);
    outer->addWidget(area, 1);
    outer->addLayout(ui::buttonRow({cmdTestNotification}, {cmdRecipientApply}));

    lblRecipientName->setBuddy(txtRecipientName);
    ui::setTabOrder({txtRecipientName, chkRecipientActive});
    ui::setTabOrder({sstabRecipientDevices->placeBehind(chkRecipientActive), tvRecipientDevices,
                     tvEventsMonitored, cmdTestNotification, cmdRecipientApply});
}

void paneRecipientDetails::hideUnsupportedKinds() {
    sstabRecipientDevices->hideUnsupportedKinds();
}

void paneRecipientDetails::controlInit() {
    lblRecipientName->setText(ui::text(1103));
    chkRecipientActive->setText(ui::text(1022));
    cmdRecipientApply->setText(ui::text(1046));
    cmdTestNotification->setText(ui::text(1236));
    cmdTestNotification->setToolTip(ui::text(1237));
    frameDevices->setTitle(ui::text(1100));
    frameEvents->setTitle(ui::text(1101));
    tvRecipientDevices->setAccessibleName(ui::text(1100));
    tvEventsMonitored->setAccessibleName(ui::text(1101));
    sstabRecipientDevices->controlInit();
    ui::nameByBuddy(*this);
    // Both trees hold words.
    if (recipientKey_ != 0) {
        displayMonitoredEventsForRecipient(recipientKey_);
        displayDevicesForRecipient(recipientKey_);
    }
}

void paneRecipientDetails::connectControls() {
    using ui::DeviceTabs;
    using ui::KeyedTree;
    connect(txtRecipientName, &QLineEdit::textChanged, this, &paneRecipientDetails::txtRecipientName_Change);
    connect(chkRecipientActive, &QCheckBox::toggled, this,
            [this] { noteChange("chkRecipientActive_Click"); });
    connect(sstabRecipientDevices, &DeviceTabs::changed, this, &paneRecipientDetails::markChanged);
    connect(sstabRecipientDevices, &DeviceTabs::syslogHostChanged, this,
            [this] { noteChange("txtSyslogHostAddress_Change"); });
    connect(tvRecipientDevices, &KeyedTree::nodeClicked, this,
            &paneRecipientDetails::tvRecipientDevices_NodeClick);
    connect(tvEventsMonitored, &KeyedTree::pointerMoved, this,
            &paneRecipientDetails::tvEventsMonitored_MouseMove);
    connect(tvEventsMonitored, &KeyedTree::nodeClicked, this,
            &paneRecipientDetails::tvEventsMonitored_NodeClick);
    connect(cmdTestNotification, &QPushButton::clicked, this,
            &paneRecipientDetails::cmdTestNotification_Click);
    connect(cmdRecipientApply, &QPushButton::clicked, this, &paneRecipientDetails::cmdRecipientApply_Click);
}

// Only the name's own handler looks at the name: after it was emptied, any other change enables the button
// again. It stays so.
void paneRecipientDetails::markChanged() {
    recipientChanged_ = true;
    cmdRecipientApply->setEnabled(true);
}

void paneRecipientDetails::noteChange(const char* handler) {
    core::procedure(module, handler, [&](core::Frame&) { markChanged(); });
}

void paneRecipientDetails::txtRecipientName_Change() {
    core::procedure(module, "txtRecipientName_Change", [&](core::Frame&) {
        recipientChanged_ = true;
        cmdRecipientApply->setEnabled(!txtRecipientName->text().isEmpty());
    });
}

mdlDatabase::RecipientRecord paneRecipientDetails::shownRecipient() const {
    mdlDatabase::RecipientRecord record;
    record.name = ui::toUtf8(txtRecipientName->text());
    record.active = chkRecipientActive->isChecked() ? 1 : 0;
    sstabRecipientDevices->collect(record);
    return record;
}

long paneRecipientDetails::selectedRecipientKey() const {
    const classNodeInfo& info = tvNavigation.info(tvNavigation.selectedKey());
    if (info.nodeType != nodeTypeRecipient)
        throw platform::makeFailure(platform::elementNotFound, tvNavigation.selectedKey());
    return info.key;
}

void paneRecipientDetails::save(long key) {
    mdlDatabase::modifyRecipient(key, shownRecipient());
    mdlDatabase::rebuildAddressDetailsTable();
    recipientChanged_ = false;
    cmdRecipientApply->setEnabled(false);
}

void paneRecipientDetails::cmdRecipientApply_Click() {
    core::procedure(module, "cmdRecipientApply_Click", [&](core::Frame& frame) {
        // Without a node to tell whose edits these are nothing is saved, and they stay.
        frame.step([&] {
            const long key = selectedRecipientKey();
            save(key);
            emit recipientSaved(key);
        });
    });
}

// What the pane holds unsaved plays no part: the test uses what is stored.
void paneRecipientDetails::cmdTestNotification_Click() {
    core::procedure(module, "cmdTestNotification_Click", [&](core::Frame& frame) {
        if (!mdlDatabase::confirmed(myLoadResString(1238) + "\n" + myLoadResString(1239),
                                    myLoadResString(1240)))
            return;
        frame.step([&] { mdlUtility::generateTestEventLogMessage(selectedRecipientKey()); });
    });
}

void paneRecipientDetails::tvRecipientDevices_NodeClick(const std::string& nodeKey) {
    core::procedure(module, "tvRecipientDevices_NodeClick", [&](core::Frame& frame) {
        frame.step([&] {
            const long type = tvRecipientDevices->info(nodeKey).key;
            if (type >= 1 && type <= sstabRecipientDevices->count())
                sstabRecipientDevices->setCurrentIndex(static_cast<int>(type - 1));
        });
    });
}

void paneRecipientDetails::tvEventsMonitored_MouseMove(const QPoint& position) {
    core::procedure(module, "tvEventsMonitored_MouseMove", [&](core::Frame& frame) {
        const std::string hit = tvEventsMonitored->hitTest(position);
        if (hit.empty())
            return;
        frame.step([&] {
            const QString tip = ui::fromUtf8(tvEventsMonitored->info(hit).ToolTip);
            // A title that looks like markup shows as it is.
            tvEventsMonitored->setToolTip(Qt::mightBeRichText(tip) ? tip.toHtmlEscaped() : tip);
        });
    });
}

void paneRecipientDetails::tvEventsMonitored_NodeClick(const std::string& nodeKey) {
    core::procedure(module, "tvEventsMonitored_NodeClick", [&](core::Frame& frame) {
        frame.step([&] { emit eventWanted(tvEventsMonitored->info(nodeKey).key); });
    });
}
