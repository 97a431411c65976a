#include "ui/parts/mdlRecDevices.h"

#include <algorithm>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/devices.h"
#include "database/recipients.h"
#include "platform/ado/readLock.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedTree.h"

using core::Frame;
using platform::ObjectState;
using platform::Recordset;
using ui::KeyedTree;

namespace mdlRecDevices {

namespace {

constexpr char module[] = "mdlRecDevices";

// Who is on the event of the last populateRecipientsList; open until the next one.
Recordset& assignmentsForEvent() {
    static Recordset rows;
    return rows;
}

// Moves to the first assignment for which the criterion holds; false when there is none.
bool findAssignment(const char* column, long key) {
    Recordset& rows = assignmentsForEvent();
    if (rows.recordCount() < 1)
        return false;
    rows.moveFirst();
    rows.find(std::string(column) + " = " + std::to_string(key));
    return !rows.EOF_();
}

std::string deviceText(const Recordset& device) {
    const std::string name = ui::textOrEmpty(device, "DisplayName");
    switch (device.number("DeviceType")) {
        case mdlDatabase::voiceMail:
            return name + modLocalize::myLoadResString(1198);
        case mdlDatabase::email:
            return name + modLocalize::myLoadResString(1199);
        default:
            return name;
    }
}

bool addRecipient(Frame& frame, KeyedTree& tree, const Recordset& recipient,
                  DeviceSelection& selectedDevices) {
    KeyedTree::NewNode node;
    node.info.key = recipient.number("RecipientKey");
    node.info.nodeType = nodeTypeEventRecipient;
    node.key = "RecipientKey:" + std::to_string(node.info.key);
    node.text = ui::textOrEmpty(recipient, "RecipientName");
    node.checkBox = true;
    node.greyed = !mdlDatabase::isRecipientActive(node.info.key);
    return frame.step([&] { tree.addNode(node); }) &&
           addDevicesForRecipient(tree, node.key, node.info.key, selectedDevices);
}

// Gives a device's node the look of its present assignment.
void showAssignment(Frame& frame, KeyedTree& tree, const std::string& node,
                    DeviceSelection& selectedDevices) {
    const Recordset& assignment = assignmentsForEvent();
    if (assignment.boolean("Active")) {
        frame.step([&] { tree.ensureVisible(node); });
        frame.step([&] { tree.setChecked(node, true); });
        frame.step([&] { recordDeviceState(selectedDevices, node, true); });
    }
    const bool deviceActive = mdlDatabase::isDeviceActive(assignment.number("DeviceKey"));
    const bool recipientActive = mdlDatabase::isRecipientActive(assignment.number("RecipientKey"));
    frame.step([&] { tree.setGreyed(node, !deviceActive || !recipientActive); });
    frame.step([&] { checkParentState(tree, tree.parentKey(node)); });
}

void addDevice(Frame& frame, KeyedTree& tree, const std::string& recipientNode, const Recordset& device,
               DeviceSelection& selectedDevices) {
    KeyedTree::NewNode node;
    node.info.key = device.number("DeviceKey");
    node.info.nodeType = nodeTypeEventRecipientDevice;
    node.key = mdlDatabase::selectionKey(node.info.key);
    node.text = deviceText(device);
    node.parent = recipientNode;
    node.checkBox = true;
    tree.addNode(node);
    if (findAssignment("DeviceKey", node.info.key))
        showAssignment(frame, tree, node.key, selectedDevices);
}

}  // namespace

bool populateRecipientsList(KeyedTree& tree, long eventKey, DeviceSelection& selectedDevices,
                            bool assignedOnly) {
    return core::procedure(module, "populateRecipientsList", false, [&](Frame& frame, bool& whole) {
        Recordset recipients = mdlDatabase::getRecipients();  // by name already
        frame.step([&] { assignmentsForEvent() = mdlDatabase::getRecipientsForEvent(eventKey); });
        const mdlDatabase::DeviceCounts counts =
            assignedOnly ? mdlDatabase::DeviceCounts() : mdlDatabase::countDevicesByRecipient();
        {
            const KeyedTree::Fill fill(tree);
            const platform::ReadLock ofOneMoment(core::gDatabase);
            frame.step([&] { tree.clearNodes(); });
            if (recipients.state() != ObjectState::open || assignmentsForEvent().state() != ObjectState::open)
                return;
            bool read = true;
            while (recipients.state() == ObjectState::open && !recipients.EOF_()) {
                read = frame.step([&] {
                    const long key = recipients.number("RecipientKey");
                    const bool shown =
                        assignedOnly ? findAssignment("RecipientKey", key) : counts.contains(key);
                    if (shown)
                        read = addRecipient(frame, tree, recipients, selectedDevices) && read;
                }) && read;
                read = frame.step([&] { recipients.moveNext(); }) && read;
            }
            whole = read;
        }
        frame.step([&] {
            if (tree.count() > 0)
                tree.ensureVisible(tree.keyAt(1));
        });
        frame.step([&] { recipients.close(); });
    });
}

bool addDevicesForRecipient(KeyedTree& tree, const std::string& recipientNode, long recipientKey,
                            DeviceSelection& selectedDevices) {
    return core::procedure(module, "addDevicesForRecipient", false, [&](Frame& frame, bool& whole) {
        Recordset devices;
        bool read = frame.step([&] { devices = mdlDatabase::openDevicesForRecipient(recipientKey); });
        while (devices.state() == ObjectState::open && !devices.EOF_()) {
            read =
                frame.step([&] { addDevice(frame, tree, recipientNode, devices, selectedDevices); }) && read;
            read = frame.step([&] { devices.moveNext(); }) && read;
        }
        whole = read;
        frame.step([&] { devices.close(); });
    });
}

void checkAllChildren(KeyedTree& tree, DeviceSelection& selectedDevices, const std::string& firstNode,
                      bool state) {
    core::procedure(module, "checkAllChildren", [&](Frame& frame) {
        const KeyedTree::Fill fill(tree);
        const std::string parent = tree.parentKey(firstNode);
        const std::vector<std::string> level = tree.childKeys(parent);
        // A loop along the level; a call for each sibling would go as deep as the level is long.
        for (auto node = std::find(level.begin(), level.end(), firstNode); node != level.end(); ++node) {
            frame.step([&] { tree.setChecked(*node, state); });
            frame.step([&] { recordDeviceState(selectedDevices, *node, tree.isChecked(*node)); });
            frame.step([&] { tree.ensureVisible(*node); });
            const std::vector<std::string> children = tree.childKeys(*node);
            if (!children.empty())
                checkAllChildren(tree, selectedDevices, children.front(), state);
        }
    });
}

void recordDeviceState(DeviceSelection& selectedDevices, const std::string& nodeKey, bool state) {
    core::procedure(module, "recordDeviceState", [&](Frame&) {
        if (state)
            selectedDevices.set(nodeKey, true);
        else
            selectedDevices.remove(nodeKey);
    });
}

void checkParentState(KeyedTree& tree, const std::string& parentNode) {
    core::procedure(module, "checkParentState", [&](Frame& frame) {
        frame.step([&] {
            const std::vector<std::string> children = tree.childKeys(parentNode);
            tree.setChecked(parentNode,
                            std::any_of(children.begin(), children.end(),
                                        [&](const std::string& child) { return tree.isChecked(child); }));
        });
    });
}

void followCheck(KeyedTree& tree, const std::string& nodeKey, DeviceSelection& selectedDevices) {
    const std::vector<std::string> children = tree.childKeys(nodeKey);
    if (children.empty())
        recordDeviceState(selectedDevices, nodeKey, tree.isChecked(nodeKey));
    else
        checkAllChildren(tree, selectedDevices, children.front(), tree.isChecked(nodeKey));
    const std::string parent = tree.parentKey(nodeKey);
    if (!parent.empty())
        checkParentState(tree, parent);
}

}  // namespace mdlRecDevices
