#include "ui/shell/navigationTree.h"

#include <cstdlib>
#include <set>
#include <vector>

#include "core/modLocalize.h"
#include "core/state.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "platform/ado/ado.h"
#include "ui/parts/rowText.h"
#include "ui/parts/stateWords.h"

using modLocalize::myLoadResString;
using platform::Recordset;
using ui::textOrEmpty;

namespace {

constexpr char module[] = "frmMain";
constexpr char recipientPrefix[] = "RecipientKey:";
constexpr char eventsRoot[] = "keyMonitoredEvents";
constexpr char recipientsRoot[] = "keyRecipients";
constexpr char exclusionsRoot[] = "keyExclusions";

enum TreeImage { imageCategory = 1, imageComplete = 2 };

// "Source (All)" or "Source (4711)"; a row that lacks one of them still has its node.
std::string sourceAndId(const Recordset& row) {
    const std::string source = textOrEmpty(row, "EventSource");
    const std::string id = textOrEmpty(row, "EventID");
    return id == std::to_string(mdlDatabase::nodeAllEventIds) ? source + myLoadResString(1150)
                                                              : source + " (" + id + ")";
}

// Runs `row` for each record; a failing row does not lose the others.
void forEachRow(core::Frame& frame, Recordset& rows, const std::function<void()>& row) {
    if (rows.state() != platform::ObjectState::open)
        return;  // its opening failed, and that is in the log
    while (!rows.EOF_()) {
        frame.step([&] { row(); });
        frame.step([&] { rows.moveNext(); });
    }
    frame.step([&] { rows.close(); });
}

// Whether an event is active, and why it notifies nobody all the same.
std::vector<std::string> linesOfEvent(long eventKey) {
    std::vector<std::string> lines{myLoadResString(mdlDatabase::isEventActive(eventKey) ? 1182 : 1183)};
    const mdlDatabase::EventAnalysis analysis = mdlDatabase::analyzeEvent(eventKey);
    for (const auto& [count, text] : {std::pair(analysis.recipients, 1184L),
                                      {analysis.activeRecipients, 1185L},
                                      {analysis.activeDevices, 1186L}}) {
        if (count == 0)
            lines.push_back(myLoadResString(text));
    }
    return lines;
}

}  // namespace

NavigationTree::NavigationTree(ui::KeyedTree& tree)
    : tree_(tree),
      images_{QIcon(), QIcon(":/icons/category.svg"), QIcon(":/icons/complete.svg"),
              QIcon(":/icons/incomplete.svg"), QIcon(":/icons/inactive.svg")} {
    tree_.describeNodes([this](const std::string& key) { return state(key); });
    connect(&tree, &ui::KeyedTree::nodeExpanded, this,
            [this](const std::string& key) { remember("tvNavigation_Expand", key, true); });
    connect(&tree, &ui::KeyedTree::nodeCollapsed, this,
            [this](const std::string& key) { remember("tvNavigation_Collapse", key, false); });
}

void NavigationTree::remember(const char* handler, const std::string& nodeKey, bool expanded) {
    core::procedure(module, handler, [&](core::Frame& frame) {
        frame.step([&] {
            const long type = tree_.info(nodeKey).nodeType;
            if (type <= nodeTypeCategoryExclusions)
                expanded_[static_cast<std::size_t>(type)] = expanded;
        });
    });
}

std::string NavigationTree::rebuild(const Wanted& wanted) {
    return core::procedure(module, "loadNavigationTree", std::string(),
                           [&](core::Frame& frame, std::string& found) {
        const std::string selected = tree_.selectedKey();
        addRoots(frame);
        // The whole tree comes before any node is chosen: choosing one may ask, save, and build the tree
        // anew.
        for (const std::string& each :
             {initEvents(wanted.event), initRecipients(wanted.recipient), initExclusions(wanted.exclusion)})
            if (found.empty())
                found = each;
        if (tree_.contains(selected))
            frame.step([&] { tree_.mark(selected); });
    });
}

void NavigationTree::addRoots(core::Frame& frame) {
    const auto root = [&](const char* key, long caption, NodeType type, const char* tip) {
        ui::KeyedTree::NewNode node;
        node.key = key;
        node.text = myLoadResString(caption);
        node.icon = images_[imageCategory];
        node.info.nodeType = type;
        node.info.ToolTip = tip;
        node.bold = true;
        tree_.addNode(node);
    };
    const ui::KeyedTree::Fill fill(tree_);
    frame.step([&] { tree_.clearNodes(); });
    // The roots' tips are the same in every language.
    frame.step([&] { root(eventsRoot, 1030, nodeTypeCategoryEvents, "Monitored Events"); });
    frame.step([&] { tree_.ensureVisible(eventsRoot); });
    frame.step([&] { root(recipientsRoot, 1031, nodeTypeCategoryRecipients, "Recipients"); });
    frame.step([&] { root(exclusionsRoot, 1311, nodeTypeCategoryExclusions, "Exclusions"); });
}

std::string NavigationTree::addChildren(core::Frame& frame, const Category& category, Recordset& rows,
                                        const std::function<ui::KeyedTree::NewNode()>& makeNode) {
    std::string found;
    const ui::KeyedTree::Fill fill(tree_);
    forEachRow(frame, rows, [&] {
        ui::KeyedTree::NewNode node = makeNode();
        node.parent = category.rootKey;
        node.key = category.childPrefix + std::to_string(node.info.key);
        tree_.addNode(node);
        if (expanded_[static_cast<std::size_t>(category.type)])
            tree_.ensureVisible(node.key);
        if (category.wanted == node.info.key)
            found = node.key;
    });
    return found;
}

std::string NavigationTree::initEvents(std::optional<long> wanted) {
    return core::procedure(module, "initEvents", std::string(), [&](core::Frame& frame, std::string& found) {
        Recordset events = mdlDatabase::getEvents();
        const std::set<long> thatNotify = mdlDatabase::eventsThatNotify();
        found = addChildren(frame, {eventsRoot, "EventKey-", nodeTypeCategoryEvents, wanted}, events, [&] {
            const long key = events.number("EventKey");
            ui::KeyedTree::NewNode node;
            node.text = sourceAndId(events);
            node.icon = stateIcon(mdlDatabase::stateOfEvent(events, thatNotify));
            node.info = {false, nodeTypeEvent, textOrEmpty(events, "EventTitle"), key};
            node.bold = events.boolean("EventActive");
            node.greyed = !node.bold;
            return node;
        });
    });
}

std::string NavigationTree::initRecipients(std::optional<long> wanted) {
    return core::procedure(module, "initRecipients", std::string(),
                           [&](core::Frame& frame, std::string& found) {
        Recordset recipients = mdlDatabase::getRecipients();
        const std::set<long> unresolved = mdlDatabase::recipientsWithInvalidDevices();
        // Required: a colon where events and exclusions have a dash.
        found = addChildren(frame, {recipientsRoot, recipientPrefix, nodeTypeCategoryRecipients, wanted},
                            recipients, [&] {
                                const long key = recipients.number("RecipientKey");
                                ui::KeyedTree::NewNode node;
                                node.text = textOrEmpty(recipients, "RecipientName");
                                node.icon = stateIcon(mdlDatabase::stateOfRecipient(recipients, unresolved));
                                node.info = {false, nodeTypeRecipient, "", key};
                                return node;
                            });
    });
}

std::string NavigationTree::initExclusions(std::optional<long> wanted) {
    return core::procedure(module, "initExclusions", std::string(),
                           [&](core::Frame& frame, std::string& found) {
        Recordset exclusions = mdlDatabase::getExclusions();
        found = addChildren(frame, {exclusionsRoot, "ExclusionKey-", nodeTypeCategoryExclusions, wanted},
                            exclusions, [&] {
                                ui::KeyedTree::NewNode node;
                                node.text = sourceAndId(exclusions);
                                node.icon = images_[imageCategory];
                                node.info = {false, nodeTypeExclusion, textOrEmpty(exclusions, "EventSource"),
                                             exclusions.number("ExclusionKey")};
                                return node;
                            });
    });
}

QIcon NavigationTree::stateIcon(long state) const {
    return images_[static_cast<std::size_t>(imageComplete + state)];
}

void NavigationTree::relabel() {
    core::procedure(module, "relabelNavigationTree", [&](core::Frame& frame) {
        if (tree_.count() == 0)
            return;  // the window is only being loaded
        const auto relabel = [&](const std::string& key, const std::string& text) {
            if (tree_.contains(key))
                tree_.setNodeText(key, text);
        };
        for (const auto& [key, caption] :
             {std::pair(eventsRoot, 1030L), {recipientsRoot, 1031L}, {exclusionsRoot, 1311L}})
            frame.step([&, root = key, id = caption] { relabel(root, myLoadResString(id)); });
        Recordset events = mdlDatabase::getEvents();
        forEachRow(frame, events,
                   [&] { relabel("EventKey-" + events.text("EventKey"), sourceAndId(events)); });
        Recordset exclusions = mdlDatabase::getExclusions();
        forEachRow(frame, exclusions, [&] {
            relabel("ExclusionKey-" + exclusions.text("ExclusionKey"), sourceAndId(exclusions));
        });
    });
}

std::string NavigationTree::find(long nodeType, long key) const {
    return core::procedure(module, "findNode", std::string(), [&](core::Frame& frame, std::string& found) {
        frame.step([&] {
            for (long i = 1; i <= tree_.count(); ++i) {
                const std::string& candidate = tree_.keyAt(i);
                const classNodeInfo& info = tree_.info(candidate);
                if (info.nodeType == nodeType && info.key == key) {
                    found = candidate;
                    return;
                }
            }
        });
    });
}

// Required: only the number behind as many characters as the prefix has is compared, not the prefix itself,
// and the first hit counts. Recipients stand before exclusions, whose prefix is as long.
std::string NavigationTree::findNewRecipient(long recipientKey) const {
    constexpr std::size_t prefix = sizeof recipientPrefix - 1;
    for (long i = 1; i <= tree_.count(); ++i) {
        const std::string& node = tree_.keyAt(i);
        if (node.size() >= prefix && std::atol(node.c_str() + prefix) == recipientKey)
            return node;
    }
    return {};
}

std::optional<long> NavigationTree::selectedKeyOf(long nodeType) const {
    const std::string selected = tree_.selectedKey();
    if (selected.empty() || tree_.info(selected).nodeType != nodeType)
        return std::nullopt;
    return tree_.info(selected).key;
}

std::string NavigationTree::toolTip(const std::string& nodeKey) const {
    return core::procedure(module, "constructNavigationToolTip", std::string(),
                           [&](core::Frame& frame, std::string& tip) {
        classNodeInfo info;
        frame.step([&] { info = tree_.info(nodeKey); });
        tip = info.ToolTip;
        if (info.nodeType != nodeTypeEvent)
            return;
        tip += "\n" + std::string(40, '-');
        for (const std::string& line : linesOfEvent(info.key))
            tip += "\n" + line;
    });
}

std::string NavigationTree::state(const std::string& nodeKey) const {
    return core::procedure(module, "stateOfNode", std::string(), [&](core::Frame& frame, std::string& state) {
        classNodeInfo info;
        frame.step([&] { info = tree_.info(nodeKey); });
        if (info.nodeType == nodeTypeEvent) {
            for (const std::string& line : linesOfEvent(info.key))
                state += (state.empty() ? "" : ", ") + line;
        } else if (info.nodeType == nodeTypeRecipient) {
            state = ui::activeWord(mdlDatabase::isRecipientActive(info.key));
            if (mdlDatabase::invalidRecipientDevices(info.key))
                state += ", " + ui::unresolvedWord();
        }
    });
}
