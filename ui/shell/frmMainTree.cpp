// The shell's navigation tree: building it, choosing a node in it, and its hover tip.

#include <QMenu>
#include <set>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "platform/ado/readLock.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/panes/paneExclusionDetails.h"
#include "ui/panes/paneExclusions.h"
#include "ui/panes/paneMonitoredEvents.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/panes/paneRecipients.h"
#include "ui/panes/paneReports.h"
#include "ui/panes/saveQuestion.h"
#include "ui/parts/rowText.h"
#include "ui/shell/cTooltip.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"

using modLocalize::myLoadResString;
using platform::Recordset;
using ui::textOrEmpty;

namespace {

constexpr char module[] = "frmMain";
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

}  // namespace

void frmMain::loadNavigationTree(std::optional<long> eventKey, std::optional<long> recipientKey,
                                 std::optional<long> exclusionKey) {
    core::procedure(module, "loadNavigationTree", [&](core::Frame& frame) {
        const auto root = [&](const char* key, long caption, NodeType type, const char* tip) {
            ui::KeyedTree::NewNode node;
            node.key = key;
            node.text = myLoadResString(caption);
            node.icon = imagelistTreeNodes_[imageCategory];
            node.info.nodeType = type;
            node.info.ToolTip = tip;
            node.bold = true;
            tvNavigation->addNode(node);
        };
        {
            const ui::KeyedTree::Fill fill(*tvNavigation);
            frame.step([&] { tvNavigation->clearNodes(); });
            // The roots' tips are the same in every language.
            frame.step([&] { root(eventsRoot, 1030, nodeTypeCategoryEvents, "Monitored Events"); });
            frame.step([&] { tvNavigation->ensureVisible(eventsRoot); });
            frame.step([&] { root(recipientsRoot, 1031, nodeTypeCategoryRecipients, "Recipients"); });
            frame.step([&] { root(exclusionsRoot, 1311, nodeTypeCategoryExclusions, "Exclusions"); });
            hovered_ = false;
        }
        const long rebuild = ++rebuilds_;
        const std::array<std::function<void()>, 3> branches{
            [&] { initEvents(eventsRoot, eventKey); }, [&] { initRecipients(recipientsRoot, recipientKey); },
            [&] { initExclusions(exclusionsRoot, exclusionKey); }};
        for (const auto& addBranch : branches) {
            // Selecting a node may save a changed pane, and that rebuilds the tree: it is whole then.
            if (rebuild != rebuilds_)
                return;
            addBranch();
        }
    });
}

// Adds a child of a root for each row and selects the one of the key that is wanted, if it is among them.
void frmMain::addChildren(core::Frame& frame, const Category& category, Recordset& rows,
                          const std::function<ui::KeyedTree::NewNode()>& makeNode) {
    std::string selection;
    {
        const ui::KeyedTree::Fill fill(*tvNavigation);
        const platform::ReadLock ofOneMoment(core::gDatabase);
        forEachRow(frame, rows, [&] {
            ui::KeyedTree::NewNode node = makeNode();
            node.parent = category.rootKey;
            node.key = category.childPrefix + std::to_string(node.info.key);
            tvNavigation->addNode(node);
            if (expanded_[static_cast<std::size_t>(category.type)])
                tvNavigation->ensureVisible(node.key);
            if (category.wanted == node.info.key)
                selection = node.key;
        });
    }
    selectAfterRebuild(selection);
}

void frmMain::initEvents(const std::string& root, std::optional<long> eventKey) {
    core::procedure(module, "initEvents", [&](core::Frame& frame) {
        Recordset events = mdlDatabase::getEvents();
        addChildren(frame, {root, "EventKey-", nodeTypeCategoryEvents, eventKey}, events, [&] {
            const long key = events.number("EventKey");
            ui::KeyedTree::NewNode node;
            node.text = sourceAndId(events);
            node.icon = stateIcon(mdlDatabase::getEventState(key));
            node.info = {false, nodeTypeEvent, textOrEmpty(events, "EventTitle"), key};
            node.bold = events.boolean("EventActive");
            node.greyed = !node.bold;
            return node;
        });
    });
}

void frmMain::initRecipients(const std::string& root, std::optional<long> recipientKey) {
    core::procedure(module, "initRecipients", [&](core::Frame& frame) {
        Recordset recipients = mdlDatabase::getRecipients();
        const std::set<long> unresolved = mdlDatabase::recipientsWithInvalidDevices();
        // A colon where events and exclusions have a dash; it stays so.
        addChildren(frame, {root, "RecipientKey:", nodeTypeCategoryRecipients, recipientKey}, recipients,
                    [&] {
            const long key = recipients.number("RecipientKey");
            ui::KeyedTree::NewNode node;
            node.text = textOrEmpty(recipients, "RecipientName");
            node.icon = stateIcon(mdlDatabase::stateOfRecipient(recipients, unresolved));
            node.info = {false, nodeTypeRecipient, "", key};
            return node;
        });
    });
}

void frmMain::initExclusions(const std::string& root, std::optional<long> exclusionKey) {
    core::procedure(module, "initExclusions", [&](core::Frame& frame) {
        Recordset exclusions = mdlDatabase::getExclusions();
        addChildren(frame, {root, "ExclusionKey-", nodeTypeCategoryExclusions, exclusionKey}, exclusions,
                    [&] {
            ui::KeyedTree::NewNode node;
            node.text = sourceAndId(exclusions);
            node.icon = imagelistTreeNodes_[imageCategory];
            node.info = {false, nodeTypeExclusion, textOrEmpty(exclusions, "EventSource"),
                         exclusions.number("ExclusionKey")};
            return node;
        });
    });
}

void frmMain::relabelNavigationTree() {
    core::procedure(module, "relabelNavigationTree", [&](core::Frame& frame) {
        if (tvNavigation->count() == 0)
            return;  // the window is only being loaded
        const auto relabel = [&](const std::string& key, const std::string& text) {
            if (tvNavigation->contains(key))
                tvNavigation->setNodeText(key, text);
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
        hovered_ = false;
    });
}

void frmMain::selectAfterRebuild(const std::string& nodeKey) {
    if (nodeKey.empty())
        return;
    selectNode(nodeKey);
    tvNavigation->setFocus();
}

void frmMain::selectNode(std::string nodeKey) {
    core::procedure(module, "selectNode", [&](core::Frame& frame) {
        // A tree that is not on the screen yet cannot take the focus; that is no failure worth a line.
        frame.on(platform::invalidProcedureCall, [](const platform::Failure&) {});
        if (nodeKey.empty() || !tvNavigation->contains(nodeKey))
            return;
        frame.step([&] { checkMenus(tvNavigation->info(nodeKey).nodeType); });
        frame.step([&] { tvNavigation->select(nodeKey); });
        frame.step([&] { tvNavigation_NodeClick(nodeKey); });
        frame.step([&] { tvNavigation->scrollFullyLeft(); });
        frame.step([&] { tvNavigation->setFocus(); });
    });
}

std::string frmMain::findNode(long nodeType, long key) const {
    return core::procedure(module, "findNode", std::string(), [&](core::Frame& frame, std::string& found) {
        frame.step([&] {
            for (long i = 1; i <= tvNavigation->count(); ++i) {
                const std::string& candidate = tvNavigation->keyAt(i);
                const classNodeInfo& info = tvNavigation->info(candidate);
                if (info.nodeType == nodeType && info.key == key) {
                    found = candidate;
                    return;
                }
            }
        });
    });
}

QIcon frmMain::stateIcon(long state) const {
    return imagelistTreeNodes_[static_cast<std::size_t>(imageComplete + state)];
}

std::string frmMain::nodeAt(long index) const {
    return tvNavigation->keyAt(index);
}

void frmMain::tvNavigation_NodeClick(const std::string& nodeKey) {
    core::procedure(module, "tvNavigation_NodeClick", [&](core::Frame& frame) {
        if (!tvNavigation->contains(nodeKey))
            return;
        const classNodeInfo info = tvNavigation->info(nodeKey);  // a copy: a save rebuilds the tree
        checkMenus(info.nodeType);
        for (const ChangedPane& changed : editingPanes_)
            if (!settleChanges(frame, changed, nodeKey))
                return;
        frame.step([&] { displayPane(info); });
        previousNode_ = {nodeKey, info};
    });
}

bool frmMain::settleChanges(core::Frame& frame, const ChangedPane& changed, const std::string& chosenNode) {
    if (!changed.pane->isChanged())
        return true;
    const platform::BoxAnswer answer = ui::askToSave(changed.question);
    if (answer == platform::BoxAnswer::cancel) {
        // The menus stay those of the node that was clicked; it stays so.
        if (tvNavigation->contains(previousNode_.key))
            tvNavigation->select(previousNode_.key);
        return false;
    }
    frame.step([&] {
        if (answer == platform::BoxAnswer::yes) {
            changed.pane->save(previousNode_.info.key);
            if (changed.rebuildsTree) {
                loadNavigationTree();
                tvNavigation->scrollFullyLeft();
                // The node that was clicked is gone with the old tree; its successor is the chosen one.
                if (tvNavigation->contains(chosenNode))
                    tvNavigation->select(chosenNode);
            }
        }
        changed.pane->discard();
    });
    return true;
}

void frmMain::displayPane(const classNodeInfo& info) {
    switch (info.nodeType) {
        case nodeTypeCategoryEvents:
            showViewPort(0);
            paneMonitoredEvents_->displayEvents();
            break;
        case nodeTypeEvent:
            showViewPort(1);
            paneEventDetails_->displayEventDetails(info.key);
            break;
        case nodeTypeCategoryRecipients:
            showViewPort(2);
            paneRecipients_->displayAllRecipients();
            break;
        case nodeTypeRecipient:
            showViewPort(3);
            paneRecipientDetails_->displayRecipient(info.key);
            break;
        case nodeTypeCategoryReports:
            showViewPort(4);
            break;
        case nodeTypeReport:
            showViewPort(5);
            paneReport_->openReport(tvNavigation->nodeText(tvNavigation->selectedKey()));
            break;
        case nodeTypeCategoryExclusions:
            showViewPort(6);
            paneExclusions_->displayAllExclusions();
            break;
        case nodeTypeExclusion:
            showViewPort(7);
            paneExclusionDetails_->displayExclusion(info.key);
            break;
        default:
            break;
    }
}

void frmMain::tvNavigation_Expand(const std::string& nodeKey) {
    core::procedure(module, "tvNavigation_Expand", [&](core::Frame& frame) {
        frame.step([&] {
            const long type = tvNavigation->info(nodeKey).nodeType;
            if (type <= nodeTypeCategoryExclusions)
                expanded_[static_cast<std::size_t>(type)] = true;
        });
    });
}

void frmMain::tvNavigation_Collapse(const std::string& nodeKey) {
    core::procedure(module, "tvNavigation_Collapse", [&](core::Frame& frame) {
        frame.step([&] {
            const long type = tvNavigation->info(nodeKey).nodeType;
            if (type <= nodeTypeCategoryExclusions)
                expanded_[static_cast<std::size_t>(type)] = false;
        });
    });
}

void frmMain::tvNavigation_MouseDown(const QPoint& position) {
    core::procedure(module, "tvNavigation_MouseDown", [&](core::Frame& frame) {
        frame.step([&] { selectNode(tvNavigation->hitTest(position)); });
        frame.step([&] { menus_.at("mnuPopup")->exec(tvNavigation->viewport()->mapToGlobal(position)); });
        if (addEventPending_ == 1) {
            addEventPending_ = 0;
            mnuFileNewEvent_Click();
        }
    });
}

void frmMain::tvNavigation_MouseMove(const QPoint& position) {
    core::procedure(module, "tvNavigation_MouseMove", [&](core::Frame& frame) {
        frame.on(platform::objectRequired, [](const platform::Failure&) {});
        const std::string hit = tvNavigation->hitTest(position);
        if (hit.empty())
            return;
        frame.step([&] {
            // Compared by text, so two nodes of equal text share the earlier one's tip; it stays so.
            const std::string text = tvNavigation->nodeText(hit);
            if (!hovered_ || hoveredText_ != text)
                tooltip_->setToolText(tvNavigation, constructNavigationToolTip(hit));
            hoveredText_ = text;
            hovered_ = true;
        });
    });
}

std::string frmMain::constructNavigationToolTip(const std::string& nodeKey) {
    return core::procedure(module, "constructNavigationToolTip", std::string(),
                           [&](core::Frame& frame, std::string& tip) {
        classNodeInfo info;
        frame.step([&] { info = tvNavigation->info(nodeKey); });
        tip = info.ToolTip;
        if (info.nodeType != nodeTypeEvent)
            return;
        tip += "\n" + std::string(40, '-');
        tip += "\n" + myLoadResString(mdlDatabase::isEventActive(info.key) ? 1182 : 1183);
        const mdlDatabase::EventAnalysis analysis = mdlDatabase::analyzeEvent(info.key);
        for (const auto& [entry, text] :
             {std::pair("Recipients", 1184L), {"ActiveRecipients", 1185L}, {"ActiveDevices", 1186L}}) {
            const auto count = analysis.find(entry);
            if (count != analysis.end() && count->second == 0)
                tip += "\n" + myLoadResString(text);
        }
    });
}
