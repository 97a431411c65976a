// Pane 3 is filled in a fixed order: filling a control raises the same handlers as a person's change, and the
// flag that they set is cleared last.

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <functional>

#include "core/modLocalize.h"
#include "core/state.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/events.h"
#include "database/recipients.h"
#include "ui/base/text.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/parts/addressList.h"
#include "ui/parts/deviceTabs.h"
#include "ui/parts/directoryEntry.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedTree.h"

using mdlDatabase::DeviceType;
using platform::ObjectState;
using platform::Recordset;
using ui::textOrEmpty;

namespace {

constexpr char module[] = "frmMain";
constexpr char hiddenEventTitle[] = "$$IGNORE";

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

bool isOffered(long type) {
    return !(type == mdlDatabase::snmpTrap && !core::gSnmpSupported) &&
           !(type == mdlDatabase::failover && !core::gFailoverSupported);
}

std::string kindNodeKey(long type) {
    return "DeviceType:" + std::to_string(type);
}

// A node of the tree of devices; its key of the database is the type, which names the tab that it shows.
void addNode(ui::KeyedTree& tree, const std::string& parent, const std::string& key, const std::string& text,
             long type) {
    ui::KeyedTree::NewNode node;
    node.parent = parent;
    node.key = key;
    node.text = text;
    node.info.key = type;
    tree.addNode(node);
}

void closeIfOpen(core::Frame& frame, Recordset& rows) {
    if (rows.state() == ObjectState::open)
        frame.step([&] { rows.close(); });
}

}  // namespace

void paneRecipientDetails::displayRecipient(long recipientKey) {
    core::procedure(module, "displayRecipient", [&](core::Frame& frame) {
        ui::DeviceTabs& tabs = *sstabRecipientDevices;
        recipientKey_ = recipientKey;
        tabs.voiceMail->blank();
        tabs.pagers->txtNew->clear();
        tabs.email->blank();
        tabs.smtp->txtNew->clear();
        tabs.pagers->clear();
        tabs.smtp->clear();
        cmdTestNotification->setEnabled(core::gIgnoreEventKey != -1);
        Recordset devices;
        bool none = true;
        frame.step([&] { devices = mdlDatabase::openRecipientWithDevices(recipientKey); });
        frame.step([&] { none = devices.EOF_(); });
        if (none) {
            closeIfOpen(frame, devices);
            Recordset recipient;
            frame.step([&] { recipient = mdlDatabase::openRecipientAlone(recipientKey); });
            showStoredRecipient(frame, recipient);
            // Or the next save would give him the devices of the recipient before.
            for (QCheckBox* box : {tabs.chkSNMPTrapEnabled, tabs.chkSyslogEnabled, tabs.chkFailoverEnabled})
                box->setChecked(false);
            closeIfOpen(frame, recipient);
        } else {
            showStoredRecipient(frame, devices);
            showStoredDevices(frame, devices);
            closeIfOpen(frame, devices);
        }
        frame.step([&] { displayMonitoredEventsForRecipient(recipientKey); });
        frame.step([&] { displayDevicesForRecipient(recipientKey); });
        tabs.setCurrentIndex(0);
        recipientChanged_ = false;
        cmdRecipientApply->setEnabled(false);
    });
}

void paneRecipientDetails::showStoredRecipient(core::Frame& frame, const Recordset& row) {
    frame.step([&] { txtRecipientName->setText(ui::fromUtf8(textOrEmpty(row, "RecipientName"))); });
    frame.step([&] { chkRecipientActive->setChecked(row.boolean("RecipientActive")); });
}

// Nothing here disables a Clear button, so that one can stay enabled with nothing to clear, and nothing
// blanks the syslog host, so that the host of the recipient before stands beside a box that is off. Both stay
// so.
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
    core::procedure(module, "displayMonitoredEventsForRecipient", [&](core::Frame& frame) {
        Recordset events;
        frame.step([&] { events = mdlDatabase::openEventsForRecipient(recipientKey); });
        frame.step([&] { tvEventsMonitored->clearNodes(); });
        tvEventsMonitored->setToolTip(QString());
        const ui::KeyedTree::Fill fill(*tvEventsMonitored);
        while (events.state() == ObjectState::open && !events.EOF_()) {
            frame.step([&] {
                if (textOrEmpty(events, "EventTitle") == hiddenEventTitle)
                    return;
                ui::KeyedTree::NewNode node;
                node.info = {false, nodeTypeRecipientEvent, textOrEmpty(events, "EventTitle"),
                             events.number("EventKey")};
                node.key = "EventKey:" + std::to_string(node.info.key);
                node.text = textOrEmpty(events, "EventSource");
                const std::string id = textOrEmpty(events, "EventID");
                node.text += id == std::to_string(mdlDatabase::nodeAllEventIds)
                                 ? modLocalize::myLoadResString(1150)
                                 : " (" + id + ")";
                tvEventsMonitored->addNode(node);
            });
            frame.step([&] { events.moveNext(); });
        }
        closeIfOpen(frame, events);
    });
}

void paneRecipientDetails::displayDevicesForRecipient(long recipientKey) {
    core::procedure(module, "displayDevicesForRecipient", [&](core::Frame& frame) {
        Recordset devices;
        frame.step([&] { devices = mdlDatabase::openDevicesForRecipient(recipientKey); });
        frame.step([&] { tvRecipientDevices->clearNodes(); });
        std::string kindNode;
        {
            const ui::KeyedTree::Fill fill(*tvRecipientDevices);
            const auto atRow = [&] { return devices.state() == ObjectState::open && !devices.EOF_(); };
            // The first row's kind stands before the walk begins, unless that row is not shown.
            if (atRow())
                frame.step([&] {
                    const long type = devices.number("DeviceType");
                    if (isOffered(type)) {
                        addNode(*tvRecipientDevices, {}, kindNodeKey(type), mdlDatabase::getDeviceLabel(type),
                                type);
                        kindNode = kindNodeKey(type);
                    }
                });
            while (atRow()) {
                addDeviceNode(frame, devices, kindNode);
                frame.step([&] { devices.moveNext(); });
            }
        }
        closeIfOpen(frame, devices);
        frame.step([&] { tvRecipientDevices->scrollFullyLeft(); });
    });
}

void paneRecipientDetails::addDeviceNode(core::Frame& frame, const Recordset& device, std::string& kindNode) {
    long type = 0;
    if (!frame.step([&] { type = device.number("DeviceType"); }) || !isOffered(type))
        return;
    // After a first row that is not shown there is no kind to compare with, which the log tells; the kind is
    // started all the same. It stays so.
    bool newKind = true;
    frame.step([&] {
        if (kindNode.empty())
            throw platform::makeFailure(platform::objectRequired, "DeviceType");
        newKind = tvRecipientDevices->info(kindNode).key != type;
    });
    if (newKind)
        frame.step([&] {
            addNode(*tvRecipientDevices, {}, kindNodeKey(type), mdlDatabase::getDeviceLabel(type), type);
            kindNode = kindNodeKey(type);
        });
    frame.step([&] {
        const bool named = type == mdlDatabase::voiceMail || type == mdlDatabase::email;
        const std::string key = mdlDatabase::selectionKey(device.number("DeviceKey"));
        addNode(*tvRecipientDevices, kindNode, key,
                textOrEmpty(device, named ? "DisplayName" : "DeviceAddress"), type);
        tvRecipientDevices->ensureVisible(key);
    });
}
