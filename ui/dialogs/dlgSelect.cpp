#include "ui/dialogs/dlgSelect.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "core/state.h"
#include "server/directoryQuery.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/widgets/boundGrid.h"

namespace {

constexpr char module[] = "dlgSelect";
using Columns = std::vector<ui::BoundGrid::Column>;

std::string header(long id) {
    return ui::toUtf8(ui::text(id));
}

Columns subscriberColumns() {
    return {{"", header(1087), 1320}, {"DisplayName", header(1085), 2280},
            {"", header(1086), 960},  {"", header(1088), 1110},
            {"", header(1089), 960},  {"CallHandlerObjectID", "", 0},
            {"DirectoryID", "", 0},   {"", "", 0}};
}

// Required: the directory id of a list stays in sight, without a header, where a subscriber's is hidden.
Columns listColumns() {
    return {{"", header(1087), 1320},
            {"DisplayName", header(1085), 2280},
            {"", header(1086), 960},
            {"SystemDListObjectID", "", 0},
            {"DirectoryId", "", 2280}};
}

}  // namespace

dlgSelect& dlgSelect::shared(QWidget* caller) {
    static QPointer<dlgSelect> instance;
    if (!instance) {
        QWidget* top = caller->window();
        while (top->parentWidget())
            top = top->parentWidget()->window();
        instance = new dlgSelect(top);
    }
    return *instance;
}

std::optional<ui::FoundEntry> dlgSelect::search(QWidget& caller, const std::string& types, bool subscribers) {
    dlgSelect& window = shared(&caller);
    window.directoryConnection = &core::gCorvaneDb;
    window.subscriberTypes = types;
    window.selectMode =
        subscribers ? directoryQuery::searchSubscribers : directoryQuery::searchDistributionLists;
    window.exec();
    if (window.cancelled)
        return std::nullopt;
    return ui::FoundEntry{window.selectedDisplayName, window.selectedDirectoryId};
}

dlgSelect::dlgSelect(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgSelect");
    frameSearchExtended = ui::makeControl<QGroupBox>(this, "frameSearchExtended");
    comboSearchBy = ui::makeControl<QComboBox>(frameSearchExtended, "comboSearchBy");
    txtSearchString = ui::makeControl<QLineEdit>(frameSearchExtended, "txtSearchString");
    cmdSearch = ui::makeControl<QPushButton>(frameSearchExtended, "cmdSearch");
    myGrid = ui::makeControl<ui::BoundGrid>(this, "myGrid");
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
    buildLayout();
    connectControls();
}

void dlgSelect::buildLayout() {
    auto* search = new QHBoxLayout(frameSearchExtended);
    search->addWidget(comboSearchBy);
    search->addWidget(txtSearchString, 1);
    search->addWidget(cmdSearch);
    comboSearchBy->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cmdSearch->setDefault(true);
    cmdOk->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);

    auto* whole = new QVBoxLayout(this);
    whole->addWidget(frameSearchExtended);
    whole->addWidget(myGrid, 1);
    whole->addLayout(ui::buttonRow({}, {cmdOk, cmdCancel}));
    ui::setTabOrder({comboSearchBy, txtSearchString, cmdSearch, myGrid, cmdOk, cmdCancel});
    resize(720, 480);
}

void dlgSelect::connectControls() {
    connect(comboSearchBy, &QComboBox::currentIndexChanged, this, &dlgSelect::comboSearchBy_Click);
    connect(cmdSearch, &QPushButton::clicked, this, &dlgSelect::cmdSearch_Click);
    connect(myGrid, &ui::BoundGrid::clicked, this, &dlgSelect::myGrid_Click);
    connect(myGrid, &ui::BoundGrid::doubleClicked, this, &dlgSelect::myGrid_DblClick);
    connect(myGrid, &ui::BoundGrid::readingFailed, this, [](const platform::Failure& failure) {
        core::procedure(module, "myGrid_Rows",
                        [&](core::Frame& frame) { frame.step([&] { throw failure; }); });
    });
    connect(cmdOk, &QPushButton::clicked, this, &dlgSelect::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgSelect::reject);
}

void dlgSelect::dlgSelect_ControlInit() {
    core::procedure(module, "dlgSelect_ControlInit", [&](core::Frame&) {
        frameSearchExtended->setTitle(ui::text(1084));
        cmdSearch->setText(ui::text(1258));
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        for (QWidget* control : findChildren<QWidget*>())
            control->setToolTip(QString());
        txtSearchString->setText("*");
        // The frame's title captions the list; what is typed is what the button beside it searches for.
        comboSearchBy->setAccessibleName(ui::plainCaption(frameSearchExtended->title()));
        txtSearchString->setAccessibleName(ui::plainCaption(cmdSearch->text()));
    });
}

void dlgSelect::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        loaded_ = true;
        cancelled = true;
        frame.step([&] { dlgSelect_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
    });
}

void dlgSelect::Form_Activate() {
    core::procedure(module, "Form_Activate", [&](core::Frame& frame) {
        frame.step([&] { setupColumns(true); });
        cmdOk->setEnabled(false);
        myGrid->setUpdatesEnabled(true);
        txtSearchString->setFocus();
        txtSearchString->selectAll();
    });
}

void dlgSelect::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    if (!loaded_)
        Form_Load();
    Form_Activate();
}

void dlgSelect::setupColumns(bool resetRows) {
    core::procedure(module, "setupColumns", [&](core::Frame& frame) {
        const bool lists = selectMode != directoryQuery::searchSubscribers;
        if (resetRows)
            frame.step([&] { myGrid->cut(); });
        frame.step([&] { fillSearchByList(lists, resetRows); });
        setWindowTitle(ui::text(lists ? 1093 : 1090));
        myGrid->setAccessibleName(windowTitle());
        frame.step([&] { myGrid->setColumns(lists ? listColumns() : subscriberColumns()); });
    });
}

void dlgSelect::fillSearchByList(bool isDistributionList, bool refill) {
    core::procedure(module, "fillSearchByList", [&](core::Frame&) {
        if (!refill)
            return;
        {
            // The toolkit chooses the first row by itself; only the choice below is one.
            const QSignalBlocker fillingIsNoChoice(comboSearchBy);
            comboSearchBy->clear();
            if (isDistributionList)
                comboSearchBy->addItems({ui::text(1085), ui::text(1086)});
            else
                comboSearchBy->addItems({ui::text(1086), ui::text(1087), ui::text(1088), ui::text(1089)});
            comboSearchBy->setCurrentIndex(-1);
        }
        comboSearchBy->setCurrentIndex(isDistributionList ? 0 : 3);
    });
}

void dlgSelect::comboSearchBy_Click(int row) {
    if (row < 0)
        return;
    core::procedure(module, "comboSearchBy_Click", [&](core::Frame&) {
        // Subscribers are not searched by display name, the first of the fields.
        searchField_ = static_cast<short>(selectMode == directoryQuery::searchSubscribers ? row + 1 : row);
    });
}

std::string dlgSelect::buildSQLQuery(const std::string& types) {
    return core::procedure(module, "buildSQLQuery", std::string(),
                           [&](core::Frame& frame, std::string& statement) {
        frame.step([&] {
            statement = directoryQuery::buildSQLQuery({core::gViewsSupported, selectMode, searchField_,
                                                       ui::toUtf8(txtSearchString->text()), types});
        });
    });
}

void dlgSelect::cmdSearch_Click() {
    core::procedure(module, "cmdSearch_Click", [&](core::Frame& frame) {
        std::string statement;
        frame.step([&] {
            if (found_.state() == platform::ObjectState::open)
                found_.close();
        });
        setCursor(Qt::WaitCursor);
        myGrid->cut();
        myGrid->setUpdatesEnabled(false);
        frame.step([&] { statement = buildSQLQuery(subscriberTypes); });
        frame.step([&] {
            if (!directoryConnection)
                throw platform::makeFailure(platform::objectNotSet);
            found_.open(statement, *directoryConnection, platform::CursorType::forwardOnly,
                        platform::LockType::readOnly);
        });
        frame.step([&] { myGrid->bind(found_); });
        frame.step(  // Only what the window itself has to do: a second click must not search inside of this
                     // search.
            [&] { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); });
        frame.step([&] { setupColumns(false); });
        myGrid->setUpdatesEnabled(true);
        unsetCursor();
        // OK stays as it was; pressed now it hands back the header row, with an empty id.
        myGrid->setCurrentGridRow(0);
    });
}

void dlgSelect::myGrid_Click() {
    core::procedure(module, "myGrid_Click", [&](core::Frame&) {
        if (myGrid->currentGridRow() > 0)
            cmdOk->setEnabled(true);
    });
}

void dlgSelect::myGrid_DblClick() {
    core::procedure(module, "myGrid_DblClick", [&](core::Frame&) {
        if (myGrid->currentGridRow() >= 1)
            cmdOk_Click();
    });
}

void dlgSelect::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame& frame) {
        cancelled = false;
        const int row = myGrid->currentGridRow();
        frame.step([&] { selectedDirectoryId = myGrid->cellText(row, "DirectoryId"); });
        frame.step([&] { selectedDisplayName = myGrid->cellText(row, "DisplayName"); });
        accept();
    });
}

void dlgSelect::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) {
        cancelled = true;
        loaded_ = false;
    });
}

// Escape and the window's own button end here as well.
void dlgSelect::reject() {
    cmdCancel_Click();
    QDialog::reject();
}

// Nobody looks at the rows any more, and an open search keeps the directory locked.
void dlgSelect::done(int result) {
    myGrid->cut();
    if (found_.state() == platform::ObjectState::open)
        found_.close();
    QDialog::done(result);
}
