// What stands in the navigation tree: how it is built from the database, how it keeps its shape over a
// rebuild, how a node is found in it, and what is told about the node under the pointer.
#pragma once

#include <QIcon>
#include <QObject>
#include <array>
#include <functional>
#include <optional>
#include <string>

#include "core/procedure.h"
#include "ui/widgets/keyedTree.h"

namespace platform {
class Recordset;
}

class NavigationTree : public QObject {
    Q_OBJECT

  public:
    explicit NavigationTree(ui::KeyedTree& tree);

    // Keys of what shall be chosen after a rebuild; at most one is given.
    struct Wanted {
        std::optional<long> event;
        std::optional<long> recipient;
        std::optional<long> exclusion;
    };
    // Builds the tree anew from the database. Returns the tree key of what is wanted, empty without it; the
    // node that was the selected one before is marked again where it is still there, so that the tree stands
    // on what the pane shows.
    std::string rebuild(const Wanted& wanted);
    // Gives the nodes their texts in the present language; the tree keeps its shape and selection.
    void relabel();
    // All categories are open.
    void openAll() { expanded_.fill(true); }

    // Tree key of the first node with that type and database key; empty when there is none.
    std::string find(long nodeType, long key) const;
    // Tree key of the node of a recipient who was just created; empty when there is none.
    std::string findNewRecipient(long recipientKey) const;
    // The database key of the selected node if it is one of that type.
    std::optional<long> selectedKeyOf(long nodeType) const;
    // Text of the hover tip for a node.
    std::string toolTip(const std::string& nodeKey) const;
    // The state that a node's sign and colour tell the eye, in words; empty for what has none.
    std::string state(const std::string& nodeKey) const;

  private:
    // A root of the tree and what its children have in common.
    struct Category {
        const char* rootKey;
        const char* childPrefix;  // of a child's tree key, before its database key
        long type;                // the root's node type, 0 to 3
        std::optional<long> wanted;
    };
    void addRoots(core::Frame& frame);
    // Adds a child of a root for each row; returns the tree key of the wanted one, empty without it.
    std::string addChildren(core::Frame& frame, const Category& category, platform::Recordset& rows,
                            const std::function<ui::KeyedTree::NewNode()>& makeNode);
    std::string initEvents(std::optional<long> wanted);
    std::string initRecipients(std::optional<long> wanted);
    std::string initExclusions(std::optional<long> wanted);
    QIcon stateIcon(long state) const;
    void remember(const char* handler, const std::string& nodeKey, bool expanded);

    ui::KeyedTree& tree_;
    std::array<QIcon, 5> images_;                           // by index 1 to 4
    std::array<bool, 4> expanded_{true, true, true, true};  // by node type 0 to 3
};
