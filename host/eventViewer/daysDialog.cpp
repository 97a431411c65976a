#include "host/eventViewer/daysDialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/eventViewer/barChart.h"
#include "platform/machine/clock.h"
#include "service/inspection/whoIsTold.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"

namespace viewer {

namespace {

constexpr int days = 7;

QString numberText(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

// "2026-11-24" in the machine's form.
QString dayText(const std::string& date) {
    platform::LocalTime time{};
    return ui::fromUtf8(platform::parseMoment(date + " 00:00:00", time) ? platform::shortDate(time) : date);
}

}  // namespace

DaysDialog::DaysDialog(const Texts& texts, QWidget* parent) : QDialog(parent), texts_(texts) {
    setObjectName("daysDialog");
    setWindowTitle(ui::plainCaption(texts.lastDays).remove("..."));
    createControls();
    layOut();
    connect(cmdCount_, &QPushButton::clicked, this, &DaysDialog::count);
    connect(cmdCancel_, &QPushButton::clicked, this, &DaysDialog::cancel);
    connect(listEvents_, &QListWidget::currentRowChanged, this, &DaysDialog::enable);
    connect(listEvents_, &QListWidget::itemActivated, this, &DaysDialog::count);
    enable();
    readEvents();
}

// Whoever counts still sees it, and ends; the worker waits for that.
DaysDialog::~DaysDialog() {
    *isCancelled_ = true;
}

void DaysDialog::createControls() {
    lblEvents_ = ui::makeControl<QLabel>(this, "lblEvents");
    lblEvents_->setText(texts_.monitoredEvents);
    listEvents_ = ui::makeControl<QListWidget>(this, "listEvents");
    listEvents_->setAccessibleName(ui::plainCaption(texts_.monitoredEvents));
    listEvents_->setTextElideMode(Qt::ElideRight);
    listEvents_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lblEvents_->setBuddy(listEvents_);
    cmdCount_ = ui::makeControl<QPushButton>(this, "cmdCount");
    cmdCount_->setText(texts_.countRecords);
    cmdCount_->setDefault(true);
    cmdCancel_ = ui::makeControl<QPushButton>(this, "cmdCancelCount");
    cmdCancel_->setText(texts_.cancel);
    cmdCancel_->setAutoDefault(false);
    progress_ = ui::makeControl<QProgressBar>(this, "progress");
    progress_->setAccessibleName(ui::plainCaption(texts_.countRecords));
    lblResult_ = ui::makeControl<QLabel>(this, "lblDays");
    lblResult_->setWordWrap(true);
    lblResult_->setTextFormat(Qt::PlainText);
    tableDays_ = ui::makeControl<QTableWidget>(this, "tableDays");
    tableDays_->setAccessibleName(windowTitle());
    tableDays_->setColumnCount(static_cast<int>(texts_.daysColumns.size()));
    QStringList headers;
    for (const char* column : texts_.daysColumns)
        headers << column;
    tableDays_->setHorizontalHeaderLabels(headers);
    tableDays_->verticalHeader()->hide();
    tableDays_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tableDays_->setTabKeyNavigation(false);
    tableDays_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableDays_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    chart_ = new BarChart(texts_.daysColumns[1], texts_.daysColumns[2], this);
    chart_->setObjectName("chart");
    chart_->setAccessibleName(windowTitle());
}

void DaysDialog::layOut() {
    auto* left = new QVBoxLayout;
    left->addWidget(lblEvents_);
    left->addWidget(listEvents_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdCount_);
    buttons->addWidget(cmdCancel_);
    buttons->addWidget(progress_, 1);
    auto* right = new QVBoxLayout;
    right->addLayout(buttons);
    right->addWidget(lblResult_);
    right->addWidget(chart_);
    right->addWidget(tableDays_, 1);
    auto* all = new QHBoxLayout(this);
    all->addLayout(left, 2);
    all->addLayout(right, 3);
    resize(900, 520);
}

void DaysDialog::readEvents() {
    worker_.post([this] {
        auto monitoring = std::make_shared<service::Monitoring>();
        const std::string failure =
            failureOf([&] { *monitoring = service::WhoIsTold(databaseFile(), outboxFile()).monitoring(); });
        inWindow(this, [this, monitoring, failure] { takeEvents(monitoring, failure); });
    });
}

void DaysDialog::takeEvents(std::shared_ptr<const service::Monitoring> monitoring,
                            const std::string& failure) {
    monitoring_ = std::move(monitoring);
    for (const service::MonitoredEvent& event : monitoring_->events) {
        if (event.isTest)
            continue;
        const QString source =
            ui::fromUtf8(event.source) + (event.id < 0 ? QString() : " " + QString::number(event.id));
        auto* item = new QListWidgetItem(
            event.title.empty() ? source : ui::fromUtf8(event.title) + " (" + source + ")", listEvents_);
        item->setToolTip(item->text());
        item->setData(Qt::UserRole, static_cast<qlonglong>(event.key));
    }
    if (!failure.empty())
        lblResult_->setText(QString(texts_.cannotRead).arg(ui::fromUtf8(failure)));
    else if (listEvents_->count() == 0)
        lblResult_->setText(texts_.noMonitoredEvents);
    listEvents_->setCurrentRow(0);
    listEvents_->setFocus();
    enable();
}

void DaysDialog::enable() {
    cmdCount_->setEnabled(listEvents_->currentRow() >= 0 && !isCounting_);
    cmdCancel_->setEnabled(isCounting_);
    listEvents_->setEnabled(!isCounting_);
}

void DaysDialog::count() {
    if (isCounting_ || !listEvents_->currentItem())
        return;
    isCounting_ = true;
    isCancelled_ = std::make_shared<std::atomic<bool>>(false);
    progress_->setValue(0);
    lblResult_->clear();
    enable();
    cmdCancel_->setFocus();
    const long key = static_cast<long>(listEvents_->currentItem()->data(Qt::UserRole).toLongLong());
    worker_.post([this, key, monitoring = monitoring_, isCancelled = isCancelled_] {
        std::optional<service::Reckoning> result;
        const auto tell = [&](const DaysProgress& progress) {
            inWindow(this, [this, progress, isCancelled] {
                if (*isCancelled || !isCounting_)
                    return;
                progress_->setValue(progress.percent);
                lblResult_->setText(QString(texts_.counting).arg(numberText(progress.records)));
            });
        };
        const std::string failure = failureOf([&] {
            std::vector<Log> logs{hostLog("Application"), hostLog("System")};
            if (auto journal = journalLog())
                logs.push_back(std::move(*journal));
            result = countDays(logs, *monitoring, key, platform::clock().now(), days, *isCancelled, tell);
        });
        inWindow(this, [this, result, failure, isCancelled] {
            // What was cancelled has been told of already.
            if (!*isCancelled)
                finish(result, failure);
        });
    });
}

void DaysDialog::cancel() {
    *isCancelled_ = true;
    finish(std::nullopt, {});
}

void DaysDialog::finish(const std::optional<service::Reckoning>& reckoning, const std::string& failure) {
    isCounting_ = false;
    progress_->setValue(reckoning ? 100 : 0);
    enable();
    listEvents_->setFocus();
    if (reckoning)
        showDays(*reckoning);
    else
        lblResult_->setText(failure.empty() ? QString(texts_.cancelled)
                                            : QString(texts_.cannotRead).arg(ui::fromUtf8(failure)));
}

void DaysDialog::showDays(const service::Reckoning& reckoning) {
    lblResult_->setText(QString(texts_.daysResult)
                            .arg(numberText(reckoning.records), numberText(reckoning.notifications),
                                 QString::number(monitoring_->settings.notificationInterval.count())));
    std::vector<BarChart::Bar> bars;
    tableDays_->setRowCount(static_cast<int>(reckoning.days.size()));
    for (std::size_t i = 0; i < reckoning.days.size(); ++i) {
        const service::Reckoning::Day& day = reckoning.days[i];
        const int row = static_cast<int>(i);
        const QString name = dayText(day.date);
        tableDays_->setItem(row, 0, new QTableWidgetItem(name));
        tableDays_->setItem(row, 1, new QTableWidgetItem(numberText(day.records)));
        tableDays_->setItem(row, 2, new QTableWidgetItem(numberText(day.notifications)));
        bars.push_back({ui::fromUtf8(day.date.substr(5)), day.records, day.notifications});
    }
    tableDays_->setCurrentCell(0, 0);
    chart_->setBars(std::move(bars));
}

}  // namespace viewer
