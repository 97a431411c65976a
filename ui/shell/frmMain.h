// The console's one top-level window: navigation tree on the left, one of eight stacked panes on the right,
// a splitter between them, a status bar below. It holds no database logic of its own.
#pragma once

#include <QIcon>
#include <QMainWindow>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/procedure.h"
#include "ui/base/classNodeInfo.h"
#include "ui/widgets/keyedTree.h"

class QAction;
class QFrame;
class QMenu;
class QStatusBar;
class EditingPane;
class cTooltip;
class dlgAddExclusion;
class dlgEvent;
class paneEventDetails;
class paneExclusionDetails;
class paneExclusions;
class paneMonitoredEvents;
class paneRecipientDetails;
class paneRecipients;
class paneReport;

namespace platform {
class Recordset;
}

class frmMain : public QMainWindow {
    Q_OBJECT

  public:
    frmMain();
    ~frmMain() override;

    // Rebuilds the tree; selects the node of a key that is given and found.
    void loadNavigationTree(std::optional<long> eventKey = {}, std::optional<long> recipientKey = {},
                            std::optional<long> exclusionKey = {});
    // Selects a node by its tree key as a click would; an empty or unknown key does nothing.
    void selectNode(std::string nodeKey);
    // Tree key of the first node with that type and database key; empty when there is none.
    std::string findNode(long nodeType, long key) const;
    // Tree key of the 1-based node.
    std::string nodeAt(long index) const;
    void showViewPort(int index);
    void checkMenus(long nodeType);
    // Text of the hover tip for a node.
    std::string constructNavigationToolTip(const std::string& nodeKey);
    // Lays out the window with the splitter at `splitterX` twips, which is clipped.
    void SizeControls(int& splitterX);
    Q_INVOKABLE void frmMain_ControlInit();

    ui::KeyedTree* tvNavigation;

  signals:
    // "Exit" was chosen and the window is unloaded: the run shall end in good order.
    void finalExitRequested();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void createControls();
    void createMenus();
    void createPanes();
    void connectTree();
    void connectRecipientPanes();
    void Form_Load();
    void Form_Unload();

    // A root of the tree and what its children have in common.
    struct Category {
        std::string rootKey;
        std::string childPrefix;  // of a child's tree key, before its database key
        long type;                // the root's node type, 0 to 3
        std::optional<long> wanted;
    };
    void addChildren(core::Frame& frame, const Category& category, platform::Recordset& rows,
                     const std::function<ui::KeyedTree::NewNode()>& makeNode);
    QIcon stateIcon(long state) const;
    void initEvents(const std::string& root, std::optional<long> eventKey);
    void initRecipients(const std::string& root, std::optional<long> recipientKey);
    void initExclusions(const std::string& root, std::optional<long> exclusionKey);
    // Gives the nodes their texts in the present language; the tree keeps its shape and selection.
    void relabelNavigationTree();
    void selectAfterRebuild(const std::string& nodeKey);

    void tvNavigation_NodeClick(const std::string& nodeKey);
    void tvNavigation_Expand(const std::string& nodeKey);
    void tvNavigation_Collapse(const std::string& nodeKey);
    void tvNavigation_MouseDown(const QPoint& position);
    void tvNavigation_MouseMove(const QPoint& position);
    void displayPane(const classNodeInfo& info);
    void showEventsRoot();

    // A pane that can hold unsaved edits when another node is chosen.
    struct ChangedPane {
        EditingPane* pane;
        long question;      // string-table text that tells what has changed
        bool rebuildsTree;  // its nodes show what a save changes
    };
    // Asks about unsaved edits and does what is answered; false for Cancel, which takes the choice back.
    bool settleChanges(core::Frame& frame, const ChangedPane& changed, const std::string& chosenNode);

    QAction* addEntry(QMenu& menu, const char* name);
    void captionMenus();
    void mnuFileNewEvent_Click();
    void mnuFileDelete_Click();
    void mnuViewCurrentLogFile_Click();
    void mnuPopupAddEvent_Click();
    void mnuPopupDeleteEvent_Click();
    void mnuFileNewRecipient_Click();
    void mnuPopupDeleteRecipient_Click();
    void showRecipientsRoot();
    // Tree key of the node of a recipient who was just created; empty when there is none.
    std::string findNewRecipient(long recipientKey) const;
    void mnuPopupExclusion_Create_Click();
    void mnuPopupExclusion_Delete_Click();
    void mnuOptions_Click();
    void mnuImportEvents_Click();
    void mnuRemoveService_Click();
    void mnuExit_Click();
    void mnuHelpContents_Click();
    void mnuHelpAbout_Click();

    void imgSplitter_MouseDown();
    void imgSplitter_MouseMove(int pointerX);
    void imgSplitter_MouseUp();
    int hitAreaLeft() const;

    std::vector<QWidget*> vsviewportDetails_;
    paneMonitoredEvents* paneMonitoredEvents_;
    paneEventDetails* paneEventDetails_;
    paneRecipients* paneRecipients_;
    paneRecipientDetails* paneRecipientDetails_;
    paneReport* paneReport_;
    paneExclusions* paneExclusions_;
    paneExclusionDetails* paneExclusionDetails_;
    QFrame* imgSplitter_;
    QFrame* picSplitter_;
    QStatusBar* sbStatusBar_;
    std::vector<ChangedPane> editingPanes_;    // in the order in which they are asked
    std::map<std::string, QMenu*> menus_;      // by name
    std::map<std::string, QAction*> actions_;  // menu entries by name
    std::array<QIcon, 5> imagelistTreeNodes_;  // by index 1 to 4
    std::unique_ptr<cTooltip> tooltip_;
    dlgEvent* dlgEvent_ = nullptr;                // one shared instance, made on first use
    dlgAddExclusion* dlgAddExclusion_ = nullptr;  // likewise

    std::array<bool, 4> expanded_{true, true, true, true};  // by node type 0 to 3
    struct PreviousNode {
        std::string key;
        classNodeInfo info;
    };
    PreviousNode previousNode_;
    long rebuilds_ = 0;  // of the tree so far
    std::string hoveredText_;
    bool hovered_ = false;
    int addEventPending_ = 0;
    bool splitterMoving_ = false;
    int splitterLeft_ = 0;  // twips
};

// The one main window; set while it lives.
extern frmMain* gMainWindow;
