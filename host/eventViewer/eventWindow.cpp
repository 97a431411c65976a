#include "host/eventViewer/eventWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

#include "host/eventViewer/choices.h"
#include "host/eventViewer/csvExport.h"
#include "host/eventViewer/daysDialog.h"
#include "host/eventViewer/entrySearch.h"
#include "host/eventViewer/eventModel.h"
#include "host/eventViewer/eventText.h"
#include "host/eventViewer/whoPanel.h"
#include "platform/machine/clock.h"
#include "service/outbox/sendAgain.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"

namespace viewer {

namespace {

constexpr int shortNotice = 6000;  // ms
constexpr int lookEvery = 500;     // ms

}  // namespace

EventWindow::EventWindow(Language language) : texts_(texts(language)) {
    model_ = new EventModel(texts_, this);
    search_ = new EntrySearch(*model_);
    setObjectName("EventVwr");
    setWindowIcon(QIcon(":/icons/eventViewer.svg"));
    setWindowTitle(texts_.eventViewer);
    auto* all = new QWidget(this);
    auto* layout = new QVBoxLayout(all);
    choices_ = new Choices(texts_, all);
    layout->addWidget(choices_);
    layout->addWidget(createTableAndDetails(), 1);
    findBar_ = new ui::FindBar(texts_.findBar,
                               {[this](const QString& text, auto step) { return find(text, step); },
                                [this](const QString&) { applyFilter(); },
                                [this] {
        search_->stop();
        tableEvents_->setFocus();
                                }},
                               all);
    layout->addWidget(findBar_);
    setCentralWidget(all);
    findBar_->takeKeys();
    lblCount_ = ui::makeControl<QLabel>(this, "lblCount");
    statusBar()->addPermanentWidget(lblCount_);
    connectModel();
    connectControls();
    resize(1180, 720);
    showLog();
    tableEvents_->setFocus();
}

EventWindow::~EventWindow() = default;

QSplitter* EventWindow::createTableAndDetails() {
    auto* splitter = new QSplitter(Qt::Vertical, this);
    tableEvents_ = ui::makeControl<QTableView>(splitter, "tableEvents");
    tableEvents_->setAccessibleName(texts_.eventViewer);
    tableEvents_->setModel(model_);
    tableEvents_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableEvents_->setSelectionMode(QAbstractItemView::SingleSelection);
    tableEvents_->setTabKeyNavigation(false);
    tableEvents_->setShowGrid(false);
    tableEvents_->setWordWrap(false);
    tableEvents_->verticalHeader()->hide();
    // Rows of one height need not be measured.
    constexpr int rowMargin = 6;
    tableEvents_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    tableEvents_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + rowMargin);
    QHeaderView& header = *tableEvents_->horizontalHeader();
    header.setHighlightSections(false);
    header.setStretchLastSection(true);
    // Of a long log the first rows tell how wide its columns are.
    constexpr int rowsLookedAt = 100;
    header.setResizeContentsPrecision(rowsLookedAt);

    auto* below = new QSplitter(Qt::Horizontal, splitter);
    below->addWidget(createDetails(below));
    who_ = new WhoPanel(texts_, below);
    below->addWidget(who_);
    below->setChildrenCollapsible(false);
    splitter->addWidget(tableEvents_);
    splitter->addWidget(below);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    splitter->setChildrenCollapsible(false);
    return splitter;
}

QWidget* EventWindow::createDetails(QWidget* parent) {
    auto* details = new QWidget(parent);
    auto* layout = new QVBoxLayout(details);
    layout->setContentsMargins(0, 4, 0, 0);
    auto* label = new QLabel(texts_.details, details);
    txtDetails_ = ui::makeControl<QPlainTextEdit>(details, "txtDetails");
    txtDetails_->setAccessibleName(ui::plainCaption(texts_.details));
    txtDetails_->setReadOnly(true);
    txtDetails_->setTabChangesFocus(true);
    // A read-only text that the keyboard can reach and mark.
    txtDetails_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    int widest = txtDetails_->fontMetrics().horizontalAdvance(texts_.monitoredEvent);
    for (const char* caption : texts_.copiedLabels)
        widest = std::max(widest, txtDetails_->fontMetrics().horizontalAdvance(
                                      ui::plainCaption(QString(caption).trimmed())));
    constexpr int gap = 24;
    txtDetails_->setTabStopDistance(widest + gap);
    label->setBuddy(txtDetails_);
    layout->addWidget(label);
    layout->addWidget(txtDetails_);
    return details;
}

void EventWindow::connectModel() {
    connect(model_, &EventModel::modelReset, this, &EventWindow::begin);
    connect(model_, &EventModel::wentOn, this, &EventWindow::goOn);
    connect(model_, &EventModel::sourceFound, choices_, &Choices::addSource);
    connect(model_, &EventModel::hasNews, this, [this] {
        wantedPlace_.reset();
        model_->setLog(choices_->log());
    });
    connect(search_, &EntrySearch::found, this, [this](int row) {
        choose(row);
        findBar_->showFound(true);
    });
    connect(search_, &EntrySearch::foundNothing, this, [this] { findBar_->showFound(false); });
}

void EventWindow::connectControls() {
    connect(choices_, &Choices::logChosen, this, &EventWindow::showLog);
    connect(choices_, &Choices::filterChosen, this, &EventWindow::applyFilter);
    connect(choices_, &Choices::followChosen, this, &EventWindow::follow);
    connect(choices_, &Choices::refreshWanted, this, &EventWindow::refresh);
    connect(choices_, &Choices::copyWanted, this, &EventWindow::copyEntry);
    connect(choices_, &Choices::exportWanted, this, &EventWindow::exportShown);
    connect(choices_, &Choices::sendAgainWanted, this, &EventWindow::sendAgain);
    connect(choices_, &Choices::lastDaysWanted, this, &EventWindow::countLastDays);
    connect(tableEvents_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { showChosen(); });
    connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, this, [this] { refresh(); });
    connect(new QShortcut(QKeySequence::Copy, tableEvents_, nullptr, nullptr, Qt::WidgetShortcut),
            &QShortcut::activated, this, [this] { copyEntry(); });
    connect(&look_, &QTimer::timeout, model_, &EventModel::lookForNews);
}

void EventWindow::showLog() {
    wantedPlace_.reset();
    columnsFitted_ = 0;
    statusBar()->clearMessage();
    applyFilter();
    model_->setLog(choices_->log());
    who_->setVisible(!choices_->isOfNotifications());
}

void EventWindow::refresh() {
    wantedPlace_.reset();
    if (currentRow() >= 0)
        wantedPlace_ = model_->entryAt(currentRow())->place;
    statusBar()->clearMessage();
    model_->setLog(choices_->log());
}

// The newest entry is chosen whenever there is one.
void EventWindow::follow() {
    if (!choices_->follows()) {
        look_.stop();
        return;
    }
    look_.start(lookEvery);
    wantedPlace_.reset();
    choose(0);
    model_->lookForNews();
}

// An export that waits for the log's beginning is of the rows that were asked for, and of no others.
void EventWindow::endExport() {
    if (!std::exchange(exportFile_, {}).empty())
        say(texts_.exportEnded);
}

void EventWindow::applyFilter() {
    Filter filter = choices_->filter();
    filter.text = findBar_->filterText();
    endExport();
    model_->setFilter(std::move(filter));
}

// The rows are gone; those that come are read and looked through in turns.
void EventWindow::begin() {
    showChosen();
    if (wantedPlace_)
        model_->readTo(*wantedPlace_);
}

void EventWindow::goOn() {
    if (model_->rowCount() > 0 && columnsFitted_ != model_->columnCount())
        fitColumns();
    chooseAgain();
    if (!model_->failure().empty())
        say(QString(texts_.cannotRead).arg(ui::fromUtf8(model_->failure())));
    showCounts();
    if (exportFile_.empty() || !model_->isAtRest())
        return;
    // A part of the rows is none that anybody asked for.
    if (!model_->failure().empty()) {
        exportFile_.clear();
        say(QString(texts_.cannotExport).arg(ui::fromUtf8(model_->failure())));
    } else if (!model_->hasEarlier()) {
        writeExport();
    }
}

void EventWindow::fitColumns() {
    constexpr int air = 16;
    constexpr int widest = 260;
    columnsFitted_ = model_->columnCount();
    tableEvents_->resizeColumnsToContents();
    for (int column = 0; column < model_->columnCount(); ++column)
        tableEvents_->setColumnWidth(column, std::min(tableEvents_->columnWidth(column) + air, widest));
}

// The entry that was chosen before, if it is still there; else the first one, however long it was looked for.
void EventWindow::chooseAgain() {
    if (wantedPlace_) {
        const int row = model_->rowOf(*wantedPlace_);
        if (row < 0 && !(model_->isAtRest() && model_->hasReadTo(*wantedPlace_)))
            return;
        wantedPlace_.reset();
        if (row >= 0) {
            choose(row);
            return;
        }
    }
    if (currentRow() < 0 && model_->rowCount() > 0)
        choose(0);
}

void EventWindow::choose(int row) {
    if (row >= 0 && row < model_->rowCount())
        tableEvents_->setCurrentIndex(model_->index(row, 0));
}

int EventWindow::currentRow() const {
    return tableEvents_->currentIndex().row();
}

void EventWindow::showChosen() {
    const int row = currentRow();
    const EntryPointer entry = row < 0 ? nullptr : model_->entryAt(row);
    choices_->allow(static_cast<bool>(entry), model_->rowCount() > 0,
                    entry && entry->notification && entry->notification->canBeSentAgain && !isSending_);
    // The copied form, its values in one column.
    txtDetails_->setPlainText(entry ? ui::fromUtf8(copiedText(*entry, texts_)).replace("\t\t", "\t")
                                    : QString());
    who_->showFor(entry && !entry->notification ? entry : nullptr);
    showCounts();
}

void EventWindow::showCounts() {
    const QString read =
        QString::number(model_->entryCount()) + (model_->canFetchMore() ? QString("+") : QString());
    lblCount_->setText(QString(model_->log().isOfNotifications ? texts_.countNotifications : texts_.count)
                           .arg(model_->rowCount())
                           .arg(read));
    const bool filters = model_->filter() != Filter();
    findBar_->showCounts(model_->rowCount(),
                         filters ? static_cast<qsizetype>(model_->entryCount()) : model_->rowCount());
}

void EventWindow::say(const QString& text) {
    statusBar()->showMessage(text);
}

void EventWindow::copyEntry() {
    if (currentRow() < 0)
        return;
    QApplication::clipboard()->setText(ui::fromUtf8(copiedText(*model_->entryAt(currentRow()), texts_)));
    statusBar()->showMessage(texts_.copied, shortNotice);
}

// What matches is written from the newest to the oldest, so the log is read to its beginning first.
void EventWindow::exportShown() {
    const QString file = QFileDialog::getSaveFileName(this, texts_.exportTitle, "events.csv", "CSV (*.csv)");
    if (file.isEmpty())
        return;
    exportFile_ = file.toStdString();
    say(texts_.readingAll);
    model_->readAll();
    goOn();
}

void EventWindow::writeExport() {
    ++exports_;
    worker_.post([this, file = std::exchange(exportFile_, {}), rows = model_->shown(),
                  ofNotifications = model_->log().isOfNotifications] {
        const std::string failure = failureOf([&] { writeCsv(file, rows, ofNotifications, texts_); });
        inWindow(this, [this, file, failure, count = rows.size()] {
            --exports_;
            say(failure.empty()
                    ? QString(texts_.exported)
                          .arg(QLocale().toString(static_cast<qulonglong>(count)), ui::fromUtf8(file))
                    : QString(texts_.cannotExport).arg(ui::fromUtf8(failure)));
        });
    });
}

void EventWindow::sendAgain() {
    if (currentRow() < 0 || !model_->entryAt(currentRow())->notification)
        return;
    isSending_ = true;
    showChosen();
    worker_.post([this, key = model_->entryAt(currentRow())->notification->key] {
        service::SentAgain answer{};
        const std::string failure =
            failureOf([&] { answer = service::sendAgain(outboxFile(), key, platform::clock().now()); });
        inWindow(this, [this, answer, failure] {
            isSending_ = false;
            refresh();
            say(!failure.empty() ? QString(texts_.cannotSendAgain).arg(ui::fromUtf8(failure))
                : answer == service::SentAgain::made   ? QString(texts_.sentAgain)
                : answer == service::SentAgain::waits  ? QString(texts_.waitsAlready)
                : answer == service::SentAgain::isGone ? QString(texts_.messageGone)
                                                       : QString(texts_.wasTold));
        });
    });
}

void EventWindow::countLastDays() {
    DaysDialog dialog(texts_, this);
    dialog.exec();
}

std::optional<bool> EventWindow::find(const QString& text, ui::FindBar::Step step) {
    const bool backwards = step == ui::FindBar::Step::previous;
    search_->start(text, step == ui::FindBar::Step::typed ? std::max(currentRow(), 0) - 1 : currentRow(),
                   backwards);
    return std::nullopt;
}

bool EventWindow::isAtRest() const {
    return model_->isAtRest() && !wantedPlace_ && !search_->isSearching() && who_->isAtRest() &&
           exports_ == 0 && !isSending_ && exportFile_.empty();
}

}  // namespace viewer
