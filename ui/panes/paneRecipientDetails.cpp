#include "ui/panes/paneRecipientDetails.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextDocument>
#include <QVBoxLayout>

#include "core/modLocalize.h"
#include "core/state.h"
#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/confirmation.h"
#include "database/devices.h"
#include "database/recipients.h"
#include "server/testEvent.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/dialogs/dlgSelect.h"
#include "ui/panes/recipientTrees.h"
#include "ui/parts/addressList.h"
#include "ui/parts/deviceTabs.h"
#include "ui/parts/directoryEntry.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/formArea.h"
#include "ui/widgets/keyedTree.h"

using mdlDatabase::DeviceType;
using modLocalize::myLoadResString;
using platform::Recordset;
using ui::textOrEmpty;

namespace {

constexpr char module[] = "frmMain";
constexpr int lowestTabs = 180;  // pixels; what is lower than its content scrolls
constexpr int highestTabs = 260;
constexpr int lowestTree = 70;

// The first device of a type, or the one after the present one; false when there is none.
bool findFirst(Recordset& devices, DeviceType type) {
    devices.moveFirst();
    devices.find("DeviceType = " + std::to_string(static_cast<long>(type)));
    return !devices.EOF_();
}

bool findNext(Recordset& devices, DeviceType type) {
    devices.find("DeviceType = " + std::to_string(static_cast<long>(type)), 1, devices.bookmark());
    return !devices.EOF_();
}

void showEntry(Recordset& devices, DeviceType type, ui::DirectoryEntry& entry) {
    if (findFirst(devices, type))
        entry.showEntry(devices.number("AddressType") == mdlDatabase::addressSubscriber ? 0 : 1,
                        textOrEmpty(devices, "DisplayName"), textOrEmpty(devices, "DeviceAddress"));
}

void showList(Recordset& devices, DeviceType type, ui::AddressList& list) {
    for (bool found = findFirst(devices, type); found; found = findNext(devices, type))
        list.add(
            {mdlDatabase::selectionKey(devices.number("DeviceKey")), textOrEmpty(devices, "DeviceAddress")});
}

}  // namespace

paneRecipientDetails::paneRecipientDetails(QWidget* parent) : QWidget(parent) {
    createControls();
    buildLayout();
    connectControls();
}

void paneRecipientDetails::createControls() {
    lblRecipientName = ui::makeControl<QLabel>(this, "lblRecipientName");
    txtRecipientName = ui::makeControl<QLineEdit>(this, "txtRecipientName");
    chkRecipientActive = ui::makeControl<QCheckBox>(this, "chkRecipientActive");
    frameDevices = ui::makeControl<QGroupBox>(this, "frameDevices");
    sstabRecipientDevices = new ui::DeviceTabs(ui::DeviceTabs::Place::pane, dlgSelect::search, frameDevices);
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

    auto* inner = new QWidget(this);
    auto* parts = new QVBoxLayout(inner);
    parts->addLayout(name);
    parts->addWidget(frameDevices, 4);
    parts->addWidget(frameEvents, 1);
    auto* area = new ui::FormArea(inner, this);
    area->setObjectName("VSViewPort2");
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

// Required: only the name's own handler looks at the name. After it was emptied, any other change enables the
// button again.
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
    record.active = chkRecipientActive->isChecked();
    sstabRecipientDevices->collect(record);
    return record;
}

void paneRecipientDetails::save() {
    if (!shownKey_)
        return;
    const long key = *shownKey_;
    sstabRecipientDevices->addTyped();
    mdlDatabase::modifyRecipient(key, shownRecipient());
    mdlDatabase::rebuildAddressDetailsTable();
    recipientChanged_ = false;
    cmdRecipientApply->setEnabled(false);
    // One that somebody else deleted, which the log tells, is not shown any longer.
    if (ui::isGone(mdlDatabase::getRecipient(key)))
        blank();
}

void paneRecipientDetails::cmdRecipientApply_Click() {
    core::procedure(module, "cmdRecipientApply_Click", [&](core::Frame& frame) {
        frame.step([&] {
            if (!shownKey_)
                return;
            const long key = *shownKey_;
            save();
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
        if (shownKey_)
            frame.step([&] { mdlUtility::generateTestEventLogMessage(*shownKey_); });
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

Filled paneRecipientDetails::displayRecipient(long recipientKey) {
    return core::procedure(module, "displayRecipient", Filled::unreadable,
                           [&](core::Frame& frame, Filled& filled) {
        shownKey_.reset();
        setEnabled(true);
        clearDevices();
        cmdTestNotification->setEnabled(core::gIgnoreEventKey != -1);
        filled = fill(frame, recipientKey);
        if (filled != Filled::whole) {
            blank();
            return;
        }
        shownKey_ = recipientKey;
        frame.step([&] { displayMonitoredEventsForRecipient(recipientKey); });
        frame.step([&] { displayDevicesForRecipient(recipientKey); });
        sstabRecipientDevices->setCurrentIndex(0);
        recipientChanged_ = false;
        cmdRecipientApply->setEnabled(false);
    });
}

void paneRecipientDetails::clearDevices() {
    ui::DeviceTabs& tabs = *sstabRecipientDevices;
    tabs.voiceMail->blank();
    tabs.pagers->txtNew->clear();
    tabs.email->blank();
    tabs.smtp->txtNew->clear();
    tabs.pagers->clear();
    tabs.smtp->clear();
}

void paneRecipientDetails::blank() {
    shownKey_.reset();
    setEnabled(false);
    txtRecipientName->clear();
    clearDevices();
    tvRecipientDevices->clearNodes();
    tvEventsMonitored->clearNodes();
    recipientChanged_ = false;
    cmdRecipientApply->setEnabled(false);
}

// What could not be read counts as unreadable and not as none: the next save would delete it.
Filled paneRecipientDetails::fill(core::Frame& frame, long recipientKey) {
    Recordset rows;
    bool none = true;
    // After a rebuild that failed, as beside a lock, the next one may succeed. Required: one whose devices
    // have no details is shown by his name alone; as his next save would delete them, this is so for one
    // without devices only.
    frame.step([&] {
        if (mdlDatabase::hasDeviceWithoutDetails(recipientKey))
            mdlDatabase::rebuildAddressDetailsTable();
    });
    if (!frame.step([&] { rows = mdlDatabase::openRecipientWithDevices(recipientKey); }) ||
        !frame.step([&] { none = rows.EOF_(); }))
        return Filled::unreadable;
    if (!none) {
        showStoredRecipient(frame, rows);
        showStoredDevices(frame, rows);
        frame.step([&] { rows.close(); });
        return Filled::whole;
    }
    frame.step([&] { rows.close(); });
    if (!frame.step([&] { rows = mdlDatabase::openRecipientAlone(recipientKey); }) ||
        !frame.step([&] { none = rows.EOF_(); }))
        return Filled::unreadable;
    if (none)
        return Filled::gone;
    showStoredRecipient(frame, rows);
    // Or the next save would give him the devices of the recipient before.
    ui::DeviceTabs& tabs = *sstabRecipientDevices;
    for (QCheckBox* box : {tabs.chkSNMPTrapEnabled, tabs.chkSyslogEnabled, tabs.chkFailoverEnabled})
        box->setChecked(false);
    frame.step([&] { rows.close(); });
    return Filled::whole;
}

void paneRecipientDetails::showStoredRecipient(core::Frame& frame, const Recordset& row) {
    frame.step([&] { txtRecipientName->setText(ui::fromUtf8(textOrEmpty(row, "RecipientName"))); });
    frame.step([&] { chkRecipientActive->setChecked(row.boolean("RecipientActive")); });
}

// Required: nothing here disables a Clear button, so that one can stay enabled with nothing to clear, and
// nothing blanks the syslog host, so that the host of the recipient before stands beside a box that is off.
void paneRecipientDetails::showStoredDevices(core::Frame& frame, Recordset& devices) {
    ui::DeviceTabs& tabs = *sstabRecipientDevices;
    const auto showSwitch = [&](DeviceType type, QCheckBox& box) {
        box.setChecked(findFirst(devices, type));
    };
    frame.step([&] { showEntry(devices, mdlDatabase::voiceMail, *tabs.voiceMail); });
    frame.step([&] { showList(devices, mdlDatabase::pager, *tabs.pagers); });
    frame.step([&] { showEntry(devices, mdlDatabase::email, *tabs.email); });
    frame.step([&] { showList(devices, mdlDatabase::smtpAddress, *tabs.smtp); });
    frame.step([&] { showSwitch(mdlDatabase::snmpTrap, *tabs.chkSNMPTrapEnabled); });
    frame.step([&] {
        showSwitch(mdlDatabase::syslog, *tabs.chkSyslogEnabled);
        if (tabs.chkSyslogEnabled->isChecked())
            tabs.txtSyslogHostAddress->setText(ui::fromUtf8(textOrEmpty(devices, "DeviceAddress")));
    });
    frame.step([&] { showSwitch(mdlDatabase::failover, *tabs.chkFailoverEnabled); });
}

void paneRecipientDetails::displayMonitoredEventsForRecipient(long recipientKey) {
    recipientTrees::showEvents(*tvEventsMonitored, recipientKey);
}

void paneRecipientDetails::displayDevicesForRecipient(long recipientKey) {
    recipientTrees::showDevices(*tvRecipientDevices, recipientKey);
}

void paneRecipientDetails::refillNames() {
    if (!shownKey_)
        return;
    core::procedure(module, "refillNames", [&](core::Frame& frame) {
        displayMonitoredEventsForRecipient(*shownKey_);
        displayDevicesForRecipient(*shownKey_);
        Recordset rows;
        if (!frame.step([&] { rows = mdlDatabase::openRecipientWithDevices(*shownKey_); }))
            return;
        // An entry that was chosen and not saved yet is none of these, and keeps its name.
        const auto refill = [&](DeviceType type, ui::DirectoryEntry& entry) {
            for (bool found = findFirst(rows, type); found; found = findNext(rows, type))
                if (textOrEmpty(rows, "DeviceAddress") == entry.directoryId())
                    entry.txtName->setText(ui::fromUtf8(textOrEmpty(rows, "DisplayName")));
        };
        frame.step([&] { refill(mdlDatabase::voiceMail, *sstabRecipientDevices->voiceMail); });
        frame.step([&] { refill(mdlDatabase::email, *sstabRecipientDevices->email); });
        frame.step([&] { rows.close(); });
    });
}
