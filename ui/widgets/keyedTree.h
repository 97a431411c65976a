// A tree whose nodes are known by key (unique without regard to case) and by their 1-based order of
// creation. Callers keep keys, never nodes: a rebuild may run inside the tree's own event. Nodes may have
// check boxes, which are on or off; no box follows another one by itself.
#pragma once

#include <QTreeWidget>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ui/base/classNodeInfo.h"

namespace ui {

class KeyedTree : public QTreeWidget {
    Q_OBJECT

  public:
    explicit KeyedTree(QWidget* parent = nullptr);

    // For a tree whose clicks lead elsewhere: keys only move the selection, Enter and the space bar choose.
    void chooseByEnterOnly() { enterOnly_ = true; }
    bool isChosenByMoving() const { return !enterOnly_; }
    // As a person's move to the selected node: a search has led there.
    void chooseSelected();

    // What a program for disabled people says of a node behind its text: the state that its sign and its
    // colour tell the eye. It is asked for when such a program wants it.
    using Describe = std::function<std::string(const std::string& key)>;
    void describeNodes(Describe describe) { describe_ = std::move(describe); }

    struct NewNode {
        std::string parent;  // key of the parent; empty for a root
        std::string key;
        std::string text;
        QIcon icon;
        classNodeInfo info;
        bool bold = false;
        bool greyed = false;    // in the palette's colour for disabled text
        bool checkBox = false;  // off at first
    };
    // Adds a node as the last child of its parent. Raises 35602 for a key in use, 35601 for an unknown
    // parent.
    void addNode(const NewNode& node);
    // Removes all nodes, and with them the selection.
    void clearNodes();

    bool contains(std::string_view key) const { return find(key) != nullptr; }
    long count() const { return static_cast<long>(order_.size()); }
    // Key of the 1-based node. Raises 35601.
    const std::string& keyAt(long index) const;
    // Raise 35601 for an unknown key.
    const classNodeInfo& info(std::string_view key) const;
    std::string nodeText(std::string_view key) const;
    void setNodeText(std::string_view key, const std::string& text);
    void setGreyed(std::string_view key, bool greyed);
    bool isGreyed(std::string_view key) const;
    bool isChecked(std::string_view key) const;
    // Raises no nodeChecked.
    void setChecked(std::string_view key, bool checked);
    // Key of the node's parent; empty for a root.
    std::string parentKey(std::string_view key) const;
    // Keys of the node's children from the first; of the roots for an empty key.
    std::vector<std::string> childKeys(std::string_view key) const;

    // Key of the selected node; empty when none is. Selecting raises no nodeClicked.
    std::string selectedKey() const;
    void select(std::string_view key);
    // Selects without opening the node's parents: a tree that was built anew keeps its shape. Raises 35601.
    void mark(std::string_view key);
    // Opens the node's parents. Scrolls to it only outside of a fill, so that filling stays linear.
    void ensureVisible(std::string_view key);
    void scrollFullyLeft();
    // Key of the node under a point of the viewport; empty when there is none.
    std::string hitTest(const QPoint& position) const;

    // While an instance lives the tree does not paint; it scrolls to the selected node once at the end.
    class Fill {
      public:
        explicit Fill(KeyedTree& tree);
        ~Fill();
        Fill(const Fill&) = delete;
        Fill& operator=(const Fill&) = delete;

      private:
        KeyedTree& tree_;
    };

  signals:
    // A person chose a node, by mouse or keyboard; also one that was selected already.
    void nodeClicked(const std::string& key);
    // A person switched the node's check box, by mouse or keyboard; comes before nodeClicked.
    void nodeChecked(const std::string& key);
    void nodeExpanded(const std::string& key);
    void nodeCollapsed(const std::string& key);
    // Positions are points of the viewport.
    void pointerMoved(const QPoint& position);
    void rightPressed(const QPoint& position);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    class Item;
    QTreeWidgetItem* find(std::string_view key) const;
    QTreeWidgetItem& get(std::string_view key) const;
    std::string keyOf(const QTreeWidgetItem* item) const;
    void noteCheck(const QTreeWidgetItem* item);
    void tellOfCheck();

    struct Node {
        std::string key;
        classNodeInfo info;
        QTreeWidgetItem* item;
    };
    // Keys are compared without regard to case. The hash may throw, so the index remembers it.
    struct KeyHash {
        std::size_t operator()(std::string_view key) const;
    };
    struct SameKey {
        bool operator()(std::string_view left, std::string_view right) const;
    };
    std::deque<Node> order_;  // a node stays where it is, because the index shows its key
    std::unordered_map<std::string_view, std::size_t, KeyHash, SameKey> index_;  // key to place in order_
    std::string pressedKey_;
    std::string chosenKey_;   // what was selected before the press
    std::string checkedKey_;  // whose box was switched by the present event
    Describe describe_;
    int fills_ = 0;
    bool inEvent_ = false;
    bool enterOnly_ = false;
    bool settingState_ = false;  // the change is ours, not a person's
};

}  // namespace ui
