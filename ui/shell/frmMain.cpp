#include "ui/shell/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QLayout>
#include <QMenu>
#include <QMouseEvent>
#include <QStatusBar>

#include "core/procedure.h"
#include "core/state.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/base/twips.h"
#include "ui/dialogs/dlgEvent.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/panes/paneExclusionDetails.h"
#include "ui/panes/paneExclusions.h"
#include "ui/panes/paneMonitoredEvents.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/panes/paneRecipients.h"
#include "ui/panes/paneReports.h"
#include "ui/panes/saveQuestion.h"
#include "ui/shell/cTooltip.h"
#include "ui/widgets/keyedTree.h"

frmMain* gMainWindow = nullptr;

namespace {

constexpr char module[] = "frmMain";

// All in twips.
constexpr int firstWidth = 11550;
constexpr int firstHeight = 8880;
constexpr int lowestHeight = 5000;
constexpr int splitterMargin = 1500;
constexpr int dragMargin = 500;
constexpr int treeTop = 60;
constexpr int firstSplitter = 3300;
constexpr int hitAreaWidth = 90;
constexpr int paneGap = 40;

constexpr int maximumTipWidth = 400;  // pixels
constexpr int paneCount = 8;

}  // namespace

frmMain::frmMain() {
    setObjectName("frmMain");
    gMainWindow = this;
    createControls();
    createMenus();
    createPanes();
    connectTree();
    Form_Load();
}

frmMain::~frmMain() {
    gMainWindow = nullptr;
}

void frmMain::createControls() {
    setWindowIcon(QIcon(":/icons/console.svg"));
    imagelistTreeNodes_ = {QIcon(), QIcon(":/icons/category.svg"), QIcon(":/icons/complete.svg"),
                           QIcon(":/icons/incomplete.svg"), QIcon(":/icons/inactive.svg")};
    auto* client = ui::makeControl<QWidget>(this, "client");
    setCentralWidget(client);
    tvNavigation = ui::makeControl<ui::KeyedTree>(client, "tvNavigation");
    imgSplitter_ = ui::makeControl<QFrame>(client, "imgSplitter");
    imgSplitter_->setCursor(Qt::SplitHCursor);
    imgSplitter_->installEventFilter(this);
    picSplitter_ = ui::makeControl<QFrame>(client, "picSplitter");
    picSplitter_->setAutoFillBackground(true);
    picSplitter_->setBackgroundRole(QPalette::Highlight);
    picSplitter_->setAttribute(Qt::WA_TransparentForMouseEvents);
    picSplitter_->hide();
    sbStatusBar_ = statusBar();
    sbStatusBar_->setObjectName("sbStatusBar");
}

void frmMain::createPanes() {
    QWidget* client = centralWidget();
    paneMonitoredEvents_ = new paneMonitoredEvents(client);
    paneEventDetails_ = new paneEventDetails(client, *tvNavigation);
    paneRecipients_ = new paneRecipients(client);
    paneRecipientDetails_ = new paneRecipientDetails(client, *tvNavigation);
    paneReport_ = new paneReport(client);
    paneExclusions_ = new paneExclusions(client);
    paneExclusionDetails_ = new paneExclusionDetails(client);
    vsviewportDetails_ = {
        paneMonitoredEvents_,           paneEventDetails_, paneRecipients_, paneRecipientDetails_,
        new paneReportCategory(client), paneReport_,       paneExclusions_, paneExclusionDetails_};
    for (int i = 0; i < paneCount; ++i)
        vsviewportDetails_[static_cast<std::size_t>(i)]->setObjectName("vsviewportDetails_" +
                                                                       QString::number(i));
    editingPanes_ = {{paneEventDetails_, ui::eventSettingsChanged, true},
                     {paneRecipientDetails_, ui::recipientSettingsChanged, false}};
    connectRecipientPanes();
    connect(paneEventDetails_, &paneEventDetails::eventSaved, this,
            [this](long key) { loadNavigationTree(key); });
    connect(paneMonitoredEvents_, &paneMonitoredEvents::newEventWanted, this,
            &frmMain::mnuFileNewEvent_Click);
    connect(paneMonitoredEvents_, &paneMonitoredEvents::eventsChanged, this, &frmMain::showEventsRoot);
    connect(paneExclusions_, &paneExclusions::newExclusionWanted, this,
            &frmMain::mnuPopupExclusion_Create_Click);
    connect(paneExclusions_, &paneExclusions::exclusionDeleted, this, &frmMain::showEventsRoot);
    connect(paneExclusionDetails_, &paneExclusionDetails::exclusionSaved, this,
            [this](long key) { loadNavigationTree({}, {}, key); });
    connect(paneMonitoredEvents_, &paneMonitoredEvents::eventOpened, this,
            [this](long key) { selectNode(findNode(nodeTypeEvent, key)); });
}

void frmMain::connectTree() {
    using ui::KeyedTree;
    connect(tvNavigation, &KeyedTree::nodeClicked, this, &frmMain::tvNavigation_NodeClick);
    connect(tvNavigation, &KeyedTree::nodeExpanded, this, &frmMain::tvNavigation_Expand);
    connect(tvNavigation, &KeyedTree::nodeCollapsed, this, &frmMain::tvNavigation_Collapse);
    connect(tvNavigation, &KeyedTree::rightPressed, this, &frmMain::tvNavigation_MouseDown);
    connect(tvNavigation, &KeyedTree::pointerMoved, this, &frmMain::tvNavigation_MouseMove);
}

void frmMain::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        splitterLeft_ = firstSplitter;
        resize(ui::pixels(firstWidth), ui::pixels(firstHeight));
        frmMain_ControlInit();
        frame.step([&] {
            tooltip_ = std::make_unique<cTooltip>();
            tooltip_->Create(this);
            tooltip_->setMaxTipWidth(maximumTipWidth);
            tooltip_->AddTool(tvNavigation, "");
            // An empty text became "Tool1"; without a node under the pointer there is nothing
            // to say.
            tooltip_->setToolText(tvNavigation, "");
        });
        frame.step([&] { expanded_.fill(true); });
        frame.step([&] { paneRecipientDetails_->hideUnsupportedKinds(); });
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
        captionMenus();
        tvNavigation->setAccessibleName(ui::text(1205));
        paneMonitoredEvents_->controlInit();
        paneEventDetails_->controlInit();
        paneRecipients_->controlInit();
        paneRecipientDetails_->controlInit();
        paneReport_->controlInit();
        paneExclusions_->controlInit();
        paneExclusionDetails_->controlInit();
        relabelNavigationTree();
    });
}

void frmMain::showViewPort(int index) {
    core::procedure(module, "showViewPort", [&](core::Frame&) {
        for (int i = 0; i < paneCount; ++i)
            vsviewportDetails_[static_cast<std::size_t>(i)]->setVisible(i == index);
    });
}

void frmMain::SizeControls(int& splitterX) {
    core::procedure(module, "SizeControls", [&](core::Frame&) {
        if (ui::twips(height()) < lowestHeight)
            resize(width(), (lowestHeight + ui::twipsPerPixel - 1) / ui::twipsPerPixel);
        const int windowWidth = ui::twips(width());
        splitterX = std::max(std::min(splitterX, windowWidth - splitterMargin), splitterMargin);
        splitterLeft_ = splitterX;
        const int top = ui::pixels(treeTop);
        const int treeHeight = centralWidget()->height() - ui::pixels(2 * treeTop);
        tvNavigation->setGeometry(0, top, ui::pixels(splitterX), treeHeight);
        imgSplitter_->setGeometry(ui::pixels(splitterX), top, ui::pixels(hitAreaWidth), treeHeight);
        const QRect pane(ui::pixels(splitterX + paneGap), top, ui::pixels(windowWidth - (splitterX + 160)),
                         treeHeight);
        for (QWidget* viewport : vsviewportDetails_)
            viewport->setGeometry(pane);
        paneRecipients_->resizeAllRecipientsGrid();
        // The hit area is wider than the gap; it lies over the panes' empty margin.
        imgSplitter_->raise();
    });
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (isMinimized())
        return;
    core::procedure(module, "Form_Resize", [&](core::Frame&) {
        // The client area follows only after this event; it must be laid out before it is divided.
        if (layout())
            layout()->activate();
        int splitter = splitterLeft_;
        SizeControls(splitter);
    });
}

// Unsaved edits are lost without a question; it stays so.
void frmMain::closeEvent(QCloseEvent* event) {
    Form_Unload();
    event->accept();
}

int frmMain::hitAreaLeft() const {
    return splitterLeft_;
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (watched == imgSplitter_) {
        const auto pointer = [&] {
            return ui::twips(static_cast<QMouseEvent*>(event)->position().toPoint().x());
        };
        switch (event->type()) {
            case QEvent::MouseButtonPress:
                if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
                    imgSplitter_MouseDown();
                break;
            case QEvent::MouseMove:
                imgSplitter_MouseMove(pointer());
                break;
            case QEvent::MouseButtonRelease:
                imgSplitter_MouseUp();
                break;
            default:
                break;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmMain::imgSplitter_MouseDown() {
    core::procedure(module, "imgSplitter_MouseDown", [&](core::Frame&) {
        const QRect area = imgSplitter_->geometry();
        picSplitter_->setGeometry(area.left(), area.top(), area.width() / 2, area.height() - ui::pixels(20));
        picSplitter_->raise();
        picSplitter_->show();
        splitterMoving_ = true;
    });
}

void frmMain::imgSplitter_MouseMove(int pointerX) {
    if (!splitterMoving_)
        return;
    core::procedure(module, "imgSplitter_MouseMove", [&](core::Frame&) {
        // The bar may go further out than the layout, which springs back to its own limit; it stays so.
        const int candidate = hitAreaLeft() + pointerX;
        const int limit = ui::twips(width()) - dragMargin;
        picSplitter_->move(ui::pixels(std::max(dragMargin, std::min(candidate, limit))), picSplitter_->y());
    });
}

void frmMain::imgSplitter_MouseUp() {
    if (!splitterMoving_)
        return;
    core::procedure(module, "imgSplitter_MouseUp", [&](core::Frame&) {
        int splitter = ui::twips(picSplitter_->x());
        SizeControls(splitter);
        picSplitter_->hide();
        splitterMoving_ = false;
    });
}
