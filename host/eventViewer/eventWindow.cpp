#include "host/eventViewer/eventWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

#include "host/eventViewer/eventModel.h"
#include "host/eventViewer/eventText.h"
#include "host/viewer/findBar.h"
#include "platform/failure.h"

namespace viewer {

namespace {

template <class Control>
Control* named(const char* name, QWidget* parent) {
    auto* control = new Control(parent);
    control->setObjectName(name);
    return control;
}

QString plain(const char* caption) {
    return QString(caption).remove('&').remove(':').trimmed();
}

}  // namespace

EventWindow::EventWindow(Language language) : texts_(texts(language)) {
    model_ = new EventModel(
        texts_, [this] { showWhatWasRead(); }, this);
    setObjectName("EventVwr");
    setWindowTitle(texts_.eventViewer);
    auto* all = new QWidget(this);
    auto* layout = new QVBoxLayout(all);
    layout->addWidget(createChoices());
    layout->addWidget(createTableAndDetails(), 1);
    auto* findBar = new FindBar(
        texts_, [this](const QString& text, bool backwards) { return find(text, backwards); }, all);
    layout->addWidget(findBar);
    setCentralWidget(all);
    lblCount_ = named<QLabel>("lblCount", this);
    statusBar()->addPermanentWidget(lblCount_);
    connectControls();
    resize(1080, 680);
    showLog();
    tableEvents_->setFocus();
}

QWidget* EventWindow::createChoices() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    comboLog_ = named<QComboBox>("comboLog", row);
    for (const char* log : texts_.logs)
        comboLog_->addItem(log);
    comboType_ = named<QComboBox>("comboType", row);
    comboType_->addItem(texts_.allTypes);
    for (const char* type : texts_.types)
        comboType_->addItem(type);
    cmdRefresh_ = named<QPushButton>("cmdRefresh", row);
    cmdRefresh_->setText(texts_.refresh);
    cmdRefresh_->setToolTip("F5");
    cmdCopy_ = named<QPushButton>("cmdCopy", row);
    cmdCopy_->setText(texts_.copy);
    for (const auto& [caption, combo] : {std::pair{texts_.log, comboLog_}, {texts_.show, comboType_}}) {
        auto* label = new QLabel(caption, row);
        label->setBuddy(combo);
        combo->setAccessibleName(plain(caption));
        layout->addWidget(label);
        layout->addWidget(combo);
        layout->addSpacing(12);
    }
    layout->addStretch();
    layout->addWidget(cmdRefresh_);
    layout->addWidget(cmdCopy_);
    return row;
}

QSplitter* EventWindow::createTableAndDetails() {
    auto* splitter = new QSplitter(Qt::Vertical, this);
    tableEvents_ = named<QTableView>("tableEvents", splitter);
    tableEvents_->setAccessibleName(texts_.eventViewer);
    tableEvents_->setModel(model_);
    tableEvents_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableEvents_->setSelectionMode(QAbstractItemView::SingleSelection);
    tableEvents_->setTabKeyNavigation(false);
    tableEvents_->setShowGrid(false);
    tableEvents_->setWordWrap(false);
    tableEvents_->verticalHeader()->hide();
    QHeaderView& header = *tableEvents_->horizontalHeader();
    header.setHighlightSections(false);
    header.setStretchLastSection(true);
    // Of a long log the first rows tell how wide its columns are.
    constexpr int rowsLookedAt = 200;
    header.setResizeContentsPrecision(rowsLookedAt);

    auto* below = new QWidget(splitter);
    auto* layout = new QVBoxLayout(below);
    layout->setContentsMargins(0, 4, 0, 0);
    auto* label = new QLabel(texts_.details, below);
    txtDetails_ = named<QPlainTextEdit>("txtDetails", below);
    txtDetails_->setAccessibleName(plain(texts_.details));
    txtDetails_->setReadOnly(true);
    txtDetails_->setTabChangesFocus(true);
    // A read-only text that the keyboard can reach and mark.
    txtDetails_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    int widest = 0;
    for (const char* caption : texts_.copiedLabels)
        widest = std::max(widest, QFontMetrics(txtDetails_->font()).horizontalAdvance(plain(caption)));
    constexpr int gap = 24;
    txtDetails_->setTabStopDistance(widest + gap);
    label->setBuddy(txtDetails_);
    layout->addWidget(label);
    layout->addWidget(txtDetails_);
    splitter->addWidget(tableEvents_);
    splitter->addWidget(below);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    splitter->setChildrenCollapsible(false);
    return splitter;
}

void EventWindow::connectControls() {
    connect(comboLog_, &QComboBox::currentIndexChanged, this, [this] { showLog(); });
    connect(comboType_, &QComboBox::currentIndexChanged, this, [this] { chooseType(); });
    connect(cmdRefresh_, &QPushButton::clicked, this, [this] { refresh(); });
    connect(cmdCopy_, &QPushButton::clicked, this, [this] { copyEvent(); });
    connect(tableEvents_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { showDetails(); });
    connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, this, [this] { refresh(); });
    connect(new QShortcut(QKeySequence::Copy, tableEvents_, nullptr, nullptr, Qt::WidgetShortcut),
            &QShortcut::activated, this, [this] { copyEvent(); });
}

void EventWindow::showLog() {
    tableEvents_->setCurrentIndex({});
    refresh();
    fitColumns();
}

void EventWindow::fitColumns() {
    constexpr int air = 16;
    tableEvents_->resizeColumnsToContents();
    for (int column = 0; column < model_->columnCount(); ++column)
        tableEvents_->setColumnWidth(column, tableEvents_->columnWidth(column) + air);
}

void EventWindow::refresh() {
    const int row = currentRow();
    const bool chosen = row >= 0;
    const bool wasEmpty = model_->rowCount() == 0;
    const std::uint64_t place = chosen ? model_->place(row) : 0;
    statusBar()->clearMessage();
    try {
        model_->setLog(platform::EventLogPages(comboLog_->currentIndex() == 0 ? "Application" : "System"));
        // The chosen event may lie beyond the first page.
        while (chosen && !model_->hasReadTo(place) && model_->canFetchMore())
            model_->fetchMore();
    } catch (const platform::Failure& failure) {
        model_->setLog({});
        showFailure(failure.description());
    }
    if (wasEmpty)
        fitColumns();
    const int again = chosen ? model_->rowOf(place) : -1;
    tableEvents_->setCurrentIndex(model_->index(std::max(again, 0), 0));
    showDetails();
}

void EventWindow::chooseType() {
    const int type = comboType_->currentIndex();
    model_->setTypeShown(type <= 0 ? std::nullopt : std::optional(static_cast<std::size_t>(type - 1)));
    tableEvents_->setCurrentIndex(model_->index(0, 0));
    showDetails();
}

int EventWindow::currentRow() const {
    return tableEvents_->currentIndex().row();
}

void EventWindow::showDetails() {
    const int row = currentRow();
    cmdCopy_->setEnabled(row >= 0);
    // The copied form, its values in one column.
    txtDetails_->setPlainText(
        row < 0 ? QString()
                : QString::fromStdString(copiedText(model_->eventAt(row), texts_)).replace("\t\t", "\t"));
    showWhatWasRead();
}

void EventWindow::showWhatWasRead() {
    // The first event that comes is chosen, however long it was looked for.
    if (currentRow() < 0 && model_->rowCount() > 0)
        tableEvents_->setCurrentIndex(model_->index(0, 0));
    if (!model_->failure().empty())
        showFailure(model_->failure());
    const QString read = QString::number(model_->eventCount()) + (model_->canFetchMore() ? "+" : "");
    lblCount_->setText(QString(texts_.count).arg(model_->rowCount()).arg(read));
}

void EventWindow::showFailure(const std::string& description) {
    statusBar()->showMessage(QString(texts_.cannotRead).arg(QString::fromStdString(description)));
}

void EventWindow::copyEvent() {
    if (currentRow() < 0)
        return;
    QApplication::clipboard()->setText(
        QString::fromStdString(copiedText(model_->eventAt(currentRow()), texts_)));
    statusBar()->showMessage(texts_.copied, 4000);
}

bool EventWindow::find(const QString& text, bool backwards) {
    int row = std::max(currentRow(), 0);
    for (int i = 0; i < model_->rowCount(); ++i) {
        // Older events than those that were read so far are looked through too before the search begins anew.
        if (!backwards && row + 1 == model_->rowCount() && model_->canFetchMore())
            model_->fetchMore();
        const int rows = model_->rowCount();
        row = (row + (backwards ? rows - 1 : 1)) % rows;
        if (model_->contains(row, text)) {
            tableEvents_->setCurrentIndex(model_->index(row, 0));
            return true;
        }
    }
    return false;
}

}  // namespace viewer
