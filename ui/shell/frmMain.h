// The console's one top-level window: navigation tree on the left, one of eight stacked panes on the right,
// a splitter between them, a status bar below. It holds no database logic of its own.
#pragma once

#include <QMainWindow>
#include <memory>
#include <optional>
#include <string>

#include "core/procedure.h"
#include "ui/shell/detailPanes.h"
#include "ui/shell/navigationTree.h"

class Commands;
class Menus;
class Splitter;
class cTooltip;

namespace ui {
class ListFinder;
}

class frmMain : public QMainWindow {
    Q_OBJECT

  public:
    frmMain();
    ~frmMain() override;

    // Rebuilds the tree; selects the node of a key that is given and found. Without one the selected node
    // stays marked where it is still there.
    void loadNavigationTree(std::optional<long> eventKey = {}, std::optional<long> recipientKey = {},
                            std::optional<long> exclusionKey = {});
    // Selects a node by its tree key as a click would; an empty or unknown key does nothing.
    void selectNode(std::string nodeKey);
    // Tree key of the first node with that type and database key; empty when there is none.
    std::string findNode(long nodeType, long key) const { return navigation_->find(nodeType, key); }
    // Tree key of the 1-based node.
    std::string nodeAt(long index) const { return tvNavigation->keyAt(index); }
    void showViewPort(int index) { panes_->show(index); }
    void checkMenus(long nodeType);
    // Text of the hover tip for a node.
    std::string constructNavigationToolTip(const std::string& nodeKey) {
        return navigation_->toolTip(nodeKey);
    }
    // Lays out the window with the splitter at `splitterX` twips, which is clipped.
    void SizeControls(int& splitterX);
    Q_INVOKABLE void frmMain_ControlInit();
    // Names that stand in the panes and come from the address details are read anew, because these have
    // another language now. Unsaved edits stay.
    Q_INVOKABLE void frmMain_AddressDetailsRebuilt();

    const NavigationTree& navigation() const { return *navigation_; }
    // What was deleted is forgotten by its pane; then the tree is rebuilt and a node selected.
    void showAfterDelete(long nodeType, long key, const std::string& nodeKey);
    // Fills the shown pane anew for the selected node, unless a pane holds unsaved edits.
    void refillShownPane();

    ui::KeyedTree* tvNavigation;

  signals:
    // "Exit" was chosen and the window is unloaded: the run shall end in good order.
    void finalExitRequested();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void createControls();
    void connectTree();
    void connectPanes();
    void layOutAnew();
    void Form_Load();
    void Form_Unload();

    void tvNavigation_NodeClick(const std::string& nodeKey);
    void tvNavigation_MouseDown(const QPoint& position);
    void tvNavigation_MouseMove(const QPoint& position);
    // Shows the pane of a node; a node whose thing is gone from the database goes from the tree.
    void displayPane(core::Frame& frame, const classNodeInfo& info, const std::string& nodeText);
    // Asks about unsaved edits and does what is answered; false for Cancel, which takes the choice back.
    bool settleChanges(core::Frame& frame, const DetailPanes::Editing& changed);
    // Rebuilds the tree and selects a node.
    void showRebuilt(const std::string& nodeKey);

    std::unique_ptr<Menus> menus_;
    NavigationTree* navigation_;
    DetailPanes* panes_;
    Splitter* splitter_;
    QWidget* client_;  // holds tree, splitter and panes
    ui::ListFinder* finder_;
    Commands* commands_;
    std::unique_ptr<cTooltip> tooltip_;
    std::string previousNode_;                // the tree key of the node whose pane is shown
    std::optional<std::string> hoveredText_;  // of the node that the tip was last made for
};

// The one main window; set while it lives.
extern frmMain* gMainWindow;
