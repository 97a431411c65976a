#include "ui/panes/recipientTrees.h"

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/events.h"
#include "database/recipients.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedTree.h"

using platform::ObjectState;
using platform::Recordset;
using ui::KeyedTree;
using ui::textOrEmpty;

namespace recipientTrees {

namespace {

constexpr char module[] = "frmMain";
constexpr char hiddenEventTitle[] = "$$IGNORE";

bool isOffered(long type) {
    return !(type == mdlDatabase::snmpTrap && !core::gSnmpSupported) &&
           !(type == mdlDatabase::failover && !core::gFailoverSupported);
}

std::string kindNodeKey(long type) {
    return "DeviceType:" + std::to_string(type);
}

// A node of the tree of devices; its key of the database is the type, which names the tab that it shows.
void addNode(KeyedTree& tree, const std::string& parent, const std::string& key, const std::string& text,
             long type) {
    KeyedTree::NewNode node;
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

void addDeviceNode(core::Frame& frame, KeyedTree& tree, const Recordset& device, std::string& kindNode) {
    long type = 0;
    if (!frame.step([&] { type = device.number("DeviceType"); }) || !isOffered(type))
        return;
    // Required: after a first row that is not shown there is no kind to compare with, which the log tells;
    // the kind is started all the same.
    bool newKind = true;
    frame.step([&] {
        if (kindNode.empty())
            throw platform::makeFailure(platform::objectRequired, "DeviceType");
        newKind = tree.info(kindNode).key != type;
    });
    if (newKind)
        frame.step([&] {
            addNode(tree, {}, kindNodeKey(type), mdlDatabase::getDeviceLabel(type), type);
            kindNode = kindNodeKey(type);
        });
    frame.step([&] {
        const bool named = type == mdlDatabase::voiceMail || type == mdlDatabase::email;
        const std::string key = mdlDatabase::selectionKey(device.number("DeviceKey"));
        addNode(tree, kindNode, key, textOrEmpty(device, named ? "DisplayName" : "DeviceAddress"), type);
        tree.ensureVisible(key);
    });
}

}  // namespace

void showEvents(KeyedTree& tree, long recipientKey) {
    core::procedure(module, "displayMonitoredEventsForRecipient", [&](core::Frame& frame) {
        Recordset events;
        frame.step([&] { events = mdlDatabase::openEventsForRecipient(recipientKey); });
        frame.step([&] { tree.clearNodes(); });
        tree.setToolTip(QString());
        const KeyedTree::Fill fill(tree);
        while (events.state() == ObjectState::open && !events.EOF_()) {
            frame.step([&] {
                if (textOrEmpty(events, "EventTitle") == hiddenEventTitle)
                    return;
                KeyedTree::NewNode node;
                node.info = {false, nodeTypeRecipientEvent, textOrEmpty(events, "EventTitle"),
                             events.number("EventKey")};
                node.key = "EventKey:" + std::to_string(node.info.key);
                node.text = textOrEmpty(events, "EventSource");
                const std::string id = textOrEmpty(events, "EventID");
                node.text += id == std::to_string(mdlDatabase::nodeAllEventIds)
                                 ? modLocalize::myLoadResString(1150)
                                 : " (" + id + ")";
                tree.addNode(node);
            });
            frame.step([&] { events.moveNext(); });
        }
        closeIfOpen(frame, events);
    });
}

void showDevices(KeyedTree& tree, long recipientKey) {
    core::procedure(module, "displayDevicesForRecipient", [&](core::Frame& frame) {
        Recordset devices;
        frame.step([&] { devices = mdlDatabase::openDevicesForRecipient(recipientKey); });
        frame.step([&] { tree.clearNodes(); });
        std::string kindNode;
        {
            const KeyedTree::Fill fill(tree);
            const auto atRow = [&] { return devices.state() == ObjectState::open && !devices.EOF_(); };
            // The first row's kind stands before the walk begins, unless that row is not shown.
            if (atRow())
                frame.step([&] {
                    const long type = devices.number("DeviceType");
                    if (isOffered(type)) {
                        addNode(tree, {}, kindNodeKey(type), mdlDatabase::getDeviceLabel(type), type);
                        kindNode = kindNodeKey(type);
                    }
                });
            while (atRow()) {
                addDeviceNode(frame, tree, devices, kindNode);
                frame.step([&] { devices.moveNext(); });
            }
        }
        closeIfOpen(frame, devices);
        frame.step([&] { tree.scrollFullyLeft(); });
    });
}

}  // namespace recipientTrees
