#include "ui/parts/mdlRecDevices.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/devices.h"
#include "database/recipients.h"
#include "ui/parts/rowText.h"
#include "ui/parts/stateWords.h"
#include "ui/widgets/keyedTree.h"

using core::Frame;
using mdlDatabase::RecipientDevice;
using platform::ObjectState;
using platform::Recordset;
using ui::KeyedTree;

namespace mdlRecDevices {

namespace {

constexpr char module[] = "mdlRecDevices";

// What the tree is made from, read in a handful of statements.
struct Sources {
    std::map<long, std::vector<RecipientDevice>> devices;  // of all recipients
    std::map<long, bool> assignments;                      // of the event: device to its switch
    std::set<long> assigned;                               // recipients who are on the event
};

Sources readSources(long eventKey) {
    Sources sources;
    sources.devices = mdlDatabase::devicesOfAllRecipients();
    Recordset rows = mdlDatabase::getRecipientsForEvent(eventKey);
    for (; !rows.EOF_(); rows.moveNext()) {
        // Of several rows for a device the first one counts.
        sources.assignments.try_emplace(rows.number("DeviceKey"), rows.boolean("Active"));
        sources.assigned.insert(rows.number("RecipientKey"));
    }
    rows.close();
    for (const auto& [device, active] : mdlDatabase::assignmentsOfEvent(eventKey))
        sources.assignments.try_emplace(device, active);
    return sources;
}

// What is on the event and has no node, for want of address details, counts as ticked: the next save would
// switch it off, or take it off, and nobody would see why.
void keepUnshown(const Frame& frame, const KeyedTree& tree, const Sources& sources,
                 DeviceSelection& selectedDevices) {
    for (const auto& [device, active] : sources.assignments) {
        const std::string key = mdlDatabase::selectionKey(device);
        if (!active || tree.contains(key))
            continue;
        core::gLog().log("Stays on the event without being shown: " + key, core::logWarning, frame.tag());
        recordDeviceState(selectedDevices, key, true);
    }
}

std::string deviceText(const RecipientDevice& device) {
    switch (device.type) {
        case mdlDatabase::voiceMail:
            return device.displayName + modLocalize::myLoadResString(1198);
        case mdlDatabase::email:
            return device.displayName + modLocalize::myLoadResString(1199);
        default:
            return device.displayName;
    }
}

// Grey is not told by its colour alone.
void markInactive(KeyedTree::NewNode& node) {
    static const QIcon inactive(":/icons/inactive.svg");
    if (node.greyed)
        node.icon = inactive;
}

void addDevice(KeyedTree& tree, const std::string& recipientNode, const RecipientDevice& device,
               bool recipientActive, const Sources& sources, DeviceSelection& selectedDevices) {
    const auto assignment = sources.assignments.find(device.key);
    KeyedTree::NewNode node;
    node.info.key = device.key;
    node.info.nodeType = nodeTypeEventRecipientDevice;
    node.key = mdlDatabase::selectionKey(device.key);
    node.text = deviceText(device);
    node.parent = recipientNode;
    node.checkBox = true;
    // Only what is on the event shows that it would not be heard.
    node.greyed = assignment != sources.assignments.end() && (!device.active || !recipientActive);
    markInactive(node);
    tree.addNode(node);
    if (assignment == sources.assignments.end() || !assignment->second)
        return;
    tree.ensureVisible(node.key);
    tree.setChecked(node.key, true);
    recordDeviceState(selectedDevices, node.key, true);
}

// A node that the tree refuses, such as a second one for a device, is logged, and the others go on.
void addRecipient(Frame& frame, KeyedTree& tree, const Recordset& recipient, const Sources& sources,
                  DeviceSelection& selectedDevices) {
    KeyedTree::NewNode node;
    node.info.key = recipient.number("RecipientKey");
    node.info.nodeType = nodeTypeEventRecipient;
    node.key = "RecipientKey:" + std::to_string(node.info.key);
    node.text = ui::textOrEmpty(recipient, "RecipientName");
    node.checkBox = true;
    const bool active = !recipient.isNull("RecipientActive") && recipient.boolean("RecipientActive");
    node.greyed = !active;
    markInactive(node);
    tree.addNode(node);
    const auto devices = sources.devices.find(node.info.key);
    if (devices == sources.devices.end())
        return;
    bool anyAssigned = false;
    for (const RecipientDevice& device : devices->second) {
        frame.step([&] { addDevice(tree, node.key, device, active, sources, selectedDevices); });
        anyAssigned = anyAssigned || sources.assignments.contains(device.key);
    }
    if (anyAssigned)
        checkParentState(tree, node.key);
}

}  // namespace

bool populateRecipientsList(KeyedTree& tree, long eventKey, DeviceSelection& selectedDevices,
                            bool assignedOnly) {
    return core::procedure(module, "populateRecipientsList", false, [&](Frame& frame, bool& whole) {
        Recordset recipients = mdlDatabase::getRecipients();  // by name already
        // Counts that could not be read are not nobody's: a list without them would look whole.
        const std::optional<mdlDatabase::DeviceCounts> counts =
            assignedOnly ? mdlDatabase::DeviceCounts() : mdlDatabase::countDevicesByRecipient();
        Sources sources;
        const bool read = frame.step([&] { sources = readSources(eventKey); });
        frame.step([&] { tree.clearNodes(); });
        if (!read || !counts || recipients.state() != ObjectState::open)
            return;
        bool added = true;
        {
            const KeyedTree::Fill fill(tree);
            while (!recipients.EOF_()) {
                added = frame.step([&] {
                    const long key = recipients.number("RecipientKey");
                    if (assignedOnly ? sources.assigned.contains(key) : counts->contains(key))
                        addRecipient(frame, tree, recipients, sources, selectedDevices);
                }) && added;
                added = frame.step([&] { recipients.moveNext(); }) && added;
            }
        }
        frame.step([&] {
            if (tree.count() > 0)
                tree.ensureVisible(tree.keyAt(1));
        });
        frame.step([&] { recipients.close(); });
        frame.step([&] { keepUnshown(frame, tree, sources, selectedDevices); });
        whole = added;
    });
}

void describeStates(KeyedTree& tree) {
    tree.describeNodes([&tree](const std::string& key) {
        const bool isRecipient = tree.info(key).nodeType == nodeTypeEventRecipient;
        return isRecipient || tree.isGreyed(key) ? ui::activeWord(!tree.isGreyed(key)) : std::string();
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
