// The shell's navigation tree: building it, choosing a node in it, and its hover tip.

#include <QMenu>
#include <functional>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "ui/cTooltip.h"
#include "ui/frmMain.h"
#include "ui/paneEventDetails.h"
#include "ui/paneMonitoredEvents.h"
#include "ui/widgets/keyedTree.h"

using modLocalize::myLoadResString;
using platform::Recordset;

namespace {

constexpr char module[] = "frmMain";
constexpr char eventsRoot[] = "keyMonitoredEvents";
constexpr char recipientsRoot[] = "keyRecipients";
constexpr char exclusionsRoot[] = "keyExclusions";

enum TreeImage { imageCategory = 1, imageComplete = 2 };

std::string textOrEmpty(const Recordset& row, std::string_view field) {
    return row.isNull(field) ? std::string() : row.text(field);
}

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
            frame.steps({[&] { root(eventsRoot, 1030, nodeTypeCategoryEvents, "Monitored Events"); },
                         [&] { tvNavigation->ensureVisible(eventsRoot); },
                         [&] { root(recipientsRoot, 1031, nodeTypeCategoryRecipients, "Recipients"); },
                         [&] { root(exclusionsRoot, 1311, nodeTypeCategoryExclusions, "Exclusions"); }});
            hovered_ = false;
        }
        initEvents(eventsRoot, eventKey);
        initRecipients(recipientsRoot, recipientKey);
        initExclusions(exclusionsRoot, exclusionKey);
    });
}

void frmMain::initEvents(const std::string& root, std::optional<long> eventKey) {
    core::procedure(module, "initEvents", [&](core::Frame& frame) {
        std::string selection;
        {
            const ui::KeyedTree::Fill fill(*tvNavigation);
            Recordset events = mdlDatabase::getEvents();
            forEachRow(frame, events, [&] {
                const long key = events.number("EventKey");
                const bool active = events.boolean("EventActive");
                ui::KeyedTree::NewNode node;
                node.parent = root;
                node.key = "EventKey-" + std::to_string(key);
                node.text = sourceAndId(events);
                node.icon = imagelistTreeNodes_[static_cast<std::size_t>(imageComplete +
                                                                         mdlDatabase::getEventState(key))];
                node.info.nodeType = nodeTypeEvent;
                node.info.ToolTip = textOrEmpty(events, "EventTitle");
                node.info.key = key;
                node.bold = active;
                node.greyed = !active;
                tvNavigation->addNode(node);
                if (expanded_[nodeTypeCategoryEvents])
                    tvNavigation->ensureVisible(node.key);
                if (eventKey == key)
                    selection = node.key;
            });
        }
        selectAfterRebuild(selection);
    });
}

void frmMain::initRecipients(const std::string& root, std::optional<long> recipientKey) {
    core::procedure(module, "initRecipients", [&](core::Frame& frame) {
        std::string selection;
        {
            const ui::KeyedTree::Fill fill(*tvNavigation);
            Recordset recipients = mdlDatabase::getRecipients();
            forEachRow(frame, recipients, [&] {
                const long key = recipients.number("RecipientKey");
                ui::KeyedTree::NewNode node;
                node.parent = root;
                node.key = "RecipientKey:" + std::to_string(key);
                node.text = textOrEmpty(recipients, "RecipientName");
                node.icon = imagelistTreeNodes_[static_cast<std::size_t>(
                    imageComplete + mdlDatabase::getRecipientState(key))];
                node.info.nodeType = nodeTypeRecipient;
                node.info.key = key;
                tvNavigation->addNode(node);
                if (expanded_[nodeTypeCategoryRecipients])
                    tvNavigation->ensureVisible(node.key);
                if (recipientKey == key)
                    selection = node.key;
            });
        }
        selectAfterRebuild(selection);
    });
}

void frmMain::initExclusions(const std::string& root, std::optional<long> exclusionKey) {
    core::procedure(module, "initExclusions", [&](core::Frame& frame) {
        std::string selection;
        {
            const ui::KeyedTree::Fill fill(*tvNavigation);
            Recordset exclusions = mdlDatabase::getExclusions();
            forEachRow(frame, exclusions, [&] {
                const long key = exclusions.number("ExclusionKey");
                ui::KeyedTree::NewNode node;
                node.parent = root;
                node.key = "ExclusionKey-" + std::to_string(key);
                node.text = sourceAndId(exclusions);
                node.icon = imagelistTreeNodes_[imageCategory];
                node.info.nodeType = nodeTypeExclusion;
                node.info.ToolTip = textOrEmpty(exclusions, "EventSource");
                node.info.key = key;
                tvNavigation->addNode(node);
                if (expanded_[nodeTypeCategoryExclusions])
                    tvNavigation->ensureVisible(node.key);
                if (exclusionKey == key)
                    selection = node.key;
            });
        }
        selectAfterRebuild(selection);
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
        frame.steps({[&] { checkMenus(tvNavigation->info(nodeKey).nodeType); },
                     [&] { tvNavigation->select(nodeKey); }, [&] { tvNavigation_NodeClick(nodeKey); },
                     [&] { tvNavigation->scrollFullyLeft(); }, [&] { tvNavigation->setFocus(); }});
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

std::string frmMain::nodeAt(long index) const {
    return tvNavigation->keyAt(index);
}

void frmMain::tvNavigation_NodeClick(const std::string& nodeKey) {
    core::procedure(module, "tvNavigation_NodeClick", [&](core::Frame& frame) {
        if (!tvNavigation->contains(nodeKey))
            return;
        const std::string key = nodeKey;
        const classNodeInfo info = tvNavigation->info(key);
        const std::string text = tvNavigation->nodeText(key);
        frame.steps({[&] { checkMenus(info.nodeType); }, [&] { displayPane(info, text); },
                     [&] { previousNode_ = key; }});
    });
}

void frmMain::displayPane(const classNodeInfo& info, const std::string& nodeText) {
    switch (info.nodeType) {
        case nodeTypeCategoryEvents:
            showViewPort(0);
            paneMonitoredEvents_->displayEvents();
            break;
        case nodeTypeEvent:
            showViewPort(1);
            paneEventDetails_->displayEventDetails(info.key, nodeText);
            break;
        case nodeTypeCategoryRecipients:
            showViewPort(2);
            break;
        case nodeTypeRecipient:
            showViewPort(3);
            break;
        case nodeTypeCategoryReports:
            showViewPort(4);
            break;
        case nodeTypeReport:
            showViewPort(5);
            break;
        case nodeTypeCategoryExclusions:
            showViewPort(6);
            break;
        case nodeTypeExclusion:
            showViewPort(7);
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
        frame.steps({[&] { selectNode(tvNavigation->hitTest(position)); },
                     [&] { mnuPopup_->exec(tvNavigation->viewport()->mapToGlobal(position)); }});
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
    return core::procedure(
        module, "constructNavigationToolTip", std::string(), [&](core::Frame& frame, std::string& tip) {
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
