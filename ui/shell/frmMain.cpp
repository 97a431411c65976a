#include "ui/shell/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLayout>
#include <QMenu>
#include <QStatusBar>
#include <QVBoxLayout>

#include "core/classLog.h"
#include "core/state.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/base/twips.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/panes/paneExclusionDetails.h"
#include "ui/panes/paneExclusions.h"
#include "ui/panes/paneMonitoredEvents.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/panes/paneRecipients.h"
#include "ui/panes/saveQuestion.h"
#include "ui/shell/cTooltip.h"
#include "ui/shell/commands.h"
#include "ui/shell/menus.h"
#include "ui/shell/splitter.h"
#include "ui/widgets/listFinder.h"

frmMain* gMainWindow = nullptr;

namespace {

constexpr char module[] = "frmMain";

// All in twips.
constexpr int firstWidth = 11550;
constexpr int firstHeight = 8880;
constexpr int lowestHeight = 5000;
constexpr int splitterMargin = 1500;
constexpr int treeTop = 60;
constexpr int firstSplitter = 3750;  // sources that begin alike are told apart
constexpr int paneGap = 40;
constexpr int paneShortfall = 160;  // by which pane and tree are narrower than the window

constexpr int maximumTipWidth = 400;  // pixels

constexpr char recipientsRoot[] = "keyRecipients";

}  // namespace

frmMain::frmMain() {
    setObjectName("frmMain");
    gMainWindow = this;
    createControls();
    connectTree();
    connectPanes();
    Form_Load();
}

frmMain::~frmMain() {
    gMainWindow = nullptr;
}

void frmMain::createControls() {
    setWindowIcon(QIcon(":/icons/console.svg"));
    auto* all = new QWidget(this);
    auto* whole = new QVBoxLayout(all);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    client_ = ui::makeControl<QWidget>(all, "client");
    whole->addWidget(client_, 1);
    setCentralWidget(all);
    tvNavigation = ui::makeControl<ui::KeyedTree>(client_, "tvNavigation");
    navigation_ = new NavigationTree(*tvNavigation);
    navigation_->setParent(this);
    splitter_ = new Splitter(*client_);
    connect(splitter_, &Splitter::moved, this, [this](int left) { SizeControls(left); });
    statusBar()->setObjectName("sbStatusBar");
    menus_ = std::make_unique<Menus>(*this);
    commands_ = new Commands(*this, *menus_);
    panes_ = new DetailPanes(*client_);
    finder_ = new ui::ListFinder(*this, [whole](QWidget& bar) {
        constexpr int margin = 6;
        bar.setContentsMargins(margin, 0, margin, margin);
        whole->addWidget(&bar);
    });
    connect(finder_, &ui::ListFinder::roomChanged, this, &frmMain::layOutAnew);
}

void frmMain::connectPanes() {
    connect(panes_->events, &paneMonitoredEvents::newEventWanted, commands_,
            &Commands::mnuFileNewEvent_Click);
    connect(panes_->events, &paneMonitoredEvents::eventsChanged, this, [this] { showRebuilt(nodeAt(1)); });
    connect(panes_->events, &paneMonitoredEvents::eventOpened, this,
            [this](long key) { selectNode(findNode(nodeTypeEvent, key)); });
    connect(panes_->eventDetails, &paneEventDetails::eventSaved, this,
            [this](long key) { loadNavigationTree(key); });

    connect(panes_->recipients, &paneRecipients::newRecipientWanted, commands_,
            &Commands::mnuFileNewRecipient_Click);
    connect(panes_->recipients, &paneRecipients::recipientSwitched, this,
            [this] { showRebuilt(tvNavigation->selectedKey()); });
    connect(panes_->recipients, &paneRecipients::recipientDeleted, this,
            [this] { showRebuilt(recipientsRoot); });
    connect(panes_->recipients, &paneRecipients::recipientOpened, this,
            [this](long key) { selectNode(findNode(nodeTypeRecipient, key)); });
    connect(panes_->recipientDetails, &paneRecipientDetails::recipientSaved, this,
            [this](long key) { loadNavigationTree({}, key); });
    connect(panes_->recipientDetails, &paneRecipientDetails::eventWanted, this,
            [this](long key) { selectNode(findNode(nodeTypeEvent, key)); });

    connect(panes_->exclusions, &paneExclusions::newExclusionWanted, commands_,
            &Commands::mnuPopupExclusion_Create_Click);
    connect(panes_->exclusions, &paneExclusions::exclusionDeleted, this, [this] { showRebuilt(nodeAt(1)); });
    connect(panes_->exclusionDetails, &paneExclusionDetails::exclusionSaved, this,
            [this](long key) { loadNavigationTree({}, {}, key); });
}

void frmMain::connectTree() {
    using ui::KeyedTree;
    connect(tvNavigation, &KeyedTree::nodeClicked, this, &frmMain::tvNavigation_NodeClick);
    connect(tvNavigation, &KeyedTree::rightPressed, this, &frmMain::tvNavigation_MouseDown);
    connect(tvNavigation, &KeyedTree::pointerMoved, this, &frmMain::tvNavigation_MouseMove);
}

void frmMain::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        splitter_->place(firstSplitter, 0, 0);
        resize(ui::pixels(firstWidth), ui::pixels(firstHeight));
        frmMain_ControlInit();
        frame.step([&] {
            tooltip_ = std::make_unique<cTooltip>();
            tooltip_->Create(this);
            tooltip_->setMaxTipWidth(maximumTipWidth);
            tooltip_->AddTool(tvNavigation, "");
            // An empty text became "Tool1"; without a node under the pointer there is nothing to say.
            tooltip_->setToolText(tvNavigation, "");
        });
        frame.step([&] { navigation_->openAll(); });
        frame.step([&] { panes_->recipientDetails->hideUnsupportedKinds(); });
        frame.step([&] { core::gRebuildingControls = true; });
        frame.step([&] { ui::setFormFonts(*this); });
        frame.step([&] { core::gRebuildingControls = false; });
    });
}

void frmMain::Form_Unload() {
    core::procedure(module, "Form_Unload", [&](core::Frame& frame) {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (auto window = windows.crbegin(); window != windows.crend(); ++window)
            if (*window != this && !qobject_cast<QMenu*>(*window))
                frame.step([&] { (*window)->close(); });
    });
}

void frmMain::frmMain_ControlInit() {
    core::procedure(module, "frmMain_ControlInit", [&](core::Frame&) {
        setWindowTitle(ui::text(1205));
        menus_->caption();
        tvNavigation->setAccessibleName(ui::text(1205));
        finder_->relabel();
        panes_->controlInit();
        navigation_->relabel();
        hoveredText_.reset();
    });
}

void frmMain::frmMain_AddressDetailsRebuilt() {
    panes_->eventDetails->refillRecipients();
    panes_->recipientDetails->refillNames();
}

void frmMain::checkMenus(long nodeType) {
    menus_->check(nodeType);
}

void frmMain::SizeControls(int& splitterX) {
    core::procedure(module, "SizeControls", [&](core::Frame&) {
        if (ui::twips(height()) < lowestHeight)
            resize(width(), (lowestHeight + ui::twipsPerPixel - 1) / ui::twipsPerPixel);
        const int windowWidth = ui::twips(width());
        splitterX = std::max(std::min(splitterX, windowWidth - splitterMargin), splitterMargin);
        const int top = ui::pixels(treeTop);
        const int treeHeight = client_->height() - ui::pixels(2 * treeTop);
        tvNavigation->setGeometry(0, top, ui::pixels(splitterX), treeHeight);
        panes_->place(QRect(ui::pixels(splitterX + paneGap), top,
                            ui::pixels(windowWidth - (splitterX + paneShortfall)), treeHeight));
        splitter_->place(splitterX, top, treeHeight);
    });
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (!isMinimized())
        layOutAnew();
}

void frmMain::layOutAnew() {
    core::procedure(module, "Form_Resize", [&](core::Frame&) {
        // The client area follows only after this event; it must be laid out before it is divided.
        if (layout())
            layout()->activate();
        centralWidget()->layout()->activate();
        int splitter = splitter_->left();
        SizeControls(splitter);
    });
}

// Required: unsaved edits are lost without a question.
void frmMain::closeEvent(QCloseEvent* event) {
    Form_Unload();
    event->accept();
}

void frmMain::loadNavigationTree(std::optional<long> eventKey, std::optional<long> recipientKey,
                                 std::optional<long> exclusionKey) {
    const std::string wanted = navigation_->rebuild({eventKey, recipientKey, exclusionKey});
    hoveredText_.reset();
    if (wanted.empty())
        return;
    selectNode(wanted);
    tvNavigation->setFocus();
}

void frmMain::showRebuilt(const std::string& nodeKey) {
    loadNavigationTree();
    selectNode(nodeKey);
}

void frmMain::showAfterDelete(long nodeType, long key, const std::string& nodeKey) {
    panes_->forget(nodeType, key);
    showRebuilt(nodeKey);
}

void frmMain::refillShownPane() {
    core::procedure(module, "refillShownPane", [&](core::Frame& frame) {
        const std::string selected = tvNavigation->selectedKey();
        if (!selected.empty() && !panes_->isAnyChanged())
            displayPane(frame, tvNavigation->info(selected), tvNavigation->nodeText(selected));
    });
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

void frmMain::tvNavigation_NodeClick(const std::string& clicked) {
    core::procedure(module, "tvNavigation_NodeClick", [&](core::Frame& frame) {
        const std::string nodeKey = clicked;  // copies: a save rebuilds the tree
        tooltip_->hide();                     // a tip that a key has brought is that of the node before
        if (!tvNavigation->contains(nodeKey))
            return;
        const classNodeInfo info = tvNavigation->info(nodeKey);
        const std::string nodeText = tvNavigation->nodeText(nodeKey);
        checkMenus(info.nodeType);
        for (const DetailPanes::Editing& changed : panes_->editing())
            if (!settleChanges(frame, changed))
                return;
        previousNode_ = nodeKey;
        displayPane(frame, info, nodeText);
    });
}

bool frmMain::settleChanges(core::Frame& frame, const DetailPanes::Editing& changed) {
    if (!changed.pane->isChanged())
        return true;
    const platform::BoxAnswer answer = ui::askToSave(changed.question);
    if (answer == platform::BoxAnswer::cancel) {
        // Required: the menus stay those of the node that was clicked.
        if (tvNavigation->contains(previousNode_))
            tvNavigation->select(previousNode_);
        return false;
    }
    frame.step([&] {
        if (answer == platform::BoxAnswer::yes) {
            changed.pane->save();
            if (changed.rebuildsTree) {
                loadNavigationTree();
                tvNavigation->scrollFullyLeft();
            }
        }
        changed.pane->discard();
    });
    return true;
}

void frmMain::displayPane(core::Frame& frame, const classNodeInfo& info, const std::string& nodeText) {
    Filled filled = Filled::whole;
    frame.step([&] { filled = panes_->display(info, nodeText); });
    if (filled != Filled::gone)
        return;
    core::gLog().log("Not in the database any more: " + nodeText + " Key: " + std::to_string(info.key),
                     core::logWarning, frame.tag());
    frame.step([&] { loadNavigationTree(); });
}

void frmMain::tvNavigation_MouseDown(const QPoint& position) {
    core::procedure(module, "tvNavigation_MouseDown", [&](core::Frame& frame) {
        frame.step([&] { selectNode(tvNavigation->hitTest(position)); });
        frame.step([&] { commands_->showPopup(tvNavigation->viewport()->mapToGlobal(position)); });
    });
}

void frmMain::tvNavigation_MouseMove(const QPoint& position) {
    core::procedure(module, "tvNavigation_MouseMove", [&](core::Frame& frame) {
        frame.on(platform::objectRequired, [](const platform::Failure&) {});
        const std::string hit = tvNavigation->hitTest(position);
        if (hit.empty())
            return;
        frame.step([&] {
            // Required: compared by text, so two nodes of equal text share the earlier one's tip.
            const std::string text = tvNavigation->nodeText(hit);
            if (hoveredText_ != text)
                tooltip_->setToolText(tvNavigation, constructNavigationToolTip(hit));
            hoveredText_ = text;
        });
    });
}
