#include "ui/panes/paneReports.h"

#include <QDateTimeEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "core/state.h"
#include "platform/ado/ado.h"
#include "platform/machine/clock.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/widgets/rowGrid.h"

namespace {

constexpr char module[] = "frmMain";

enum Picker { startDate, startTime, endDate, endTime };
constexpr int pickerCount = 4;

constexpr const char* reportFields[] = {"LogTime", "EventSource", "EventID", "DeviceAddress", "Success"};

platform::LocalTime localTime(const QDateTime& moment) {
    const QDate date = moment.date();
    const QTime time = moment.time();
    return {date.year(), date.month(), date.day(), time.hour(), time.minute(), time.second()};
}

// Without a time zone, whose clock changes leave hours out.
QDateTime dateTime(const platform::LocalTime& time) {
    return {QDate(time.year, time.month, time.day), QTime(time.hour, time.minute, time.second), Qt::UTC};
}

// The date of one picker and the time of another, between the signs of a date; each one's other half is
// ignored.
std::string dateLiteral(const QDateTimeEdit& date, const QDateTimeEdit& time) {
    return "#" + platform::shortDate(localTime(date.dateTime())) + " " +
           platform::longTime(localTime(time.dateTime())) + "#";
}

// A field as the log has it; a moment in the machine's form.
std::string fieldText(const platform::Recordset& row, const char* field) {
    std::string text = platform::valueText(row.value(field));
    platform::LocalTime moment{};
    if (field == reportFields[0] && platform::parseMoment(text, moment))
        return platform::defaultForm(moment);
    return text;
}

ui::RowGrid::Row reportRow(const platform::Recordset& row) {
    ui::RowGrid::Row cells;
    cells.reserve(std::size(reportFields));
    for (const char* field : reportFields)
        cells.push_back(fieldText(row, field));
    return cells;
}

QLabel* makeHeading(QWidget* pane, const char* name) {
    auto* label = ui::makeControl<QLabel>(pane, name);
    label->setTextFormat(Qt::PlainText);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

}  // namespace

paneReportCategory::paneReportCategory(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 6);
    auto* label = makeHeading(this, "Label2");
    // The name of the pane's node type stands here in every language.
    label->setText("nodeTypeCategoryReports");
    layout->addWidget(label);
    layout->addStretch();
}

paneReport::paneReport(QWidget* parent) : QWidget(parent) {
    lblReport = makeHeading(this, "lblReport");
    Frame1 = ui::makeControl<QGroupBox>(this, "Frame1");
    lblDate = ui::makeControl<QLabel>(Frame1, "lblDate");
    lblTime = ui::makeControl<QLabel>(Frame1, "lblTime");
    for (const char* sign : {">", "<"}) {
        lblBound.push_back(new QLabel(sign, Frame1));
        lblBound.back()->setObjectName("lblBound_" + QString::number(lblBound.size() - 1));
    }
    const bool dayFirst = platform::dateOrder() == platform::DateOrder::dayFirst;
    for (int i = 0; i < pickerCount; ++i) {
        const bool isDate = i == startDate || i == endDate;
        auto* picker = ui::makeControl<QDateTimeEdit>(Frame1, "dtpickerReport_" + std::to_string(i));
        picker->setTimeSpec(Qt::UTC);
        picker->setCalendarPopup(isDate);
        if (isDate)
            picker->setDisplayFormat(dayFirst ? "dd/MM/yyyy" : "M/d/yyyy");
        else
            picker->setDisplayFormat(dayFirst ? "HH:mm:ss" : "h:mm:ss AP");
        dtpickerReport.push_back(picker);
    }
    cmdFilterByDate = ui::makeControl<QPushButton>(Frame1, "cmdFilterByDate");
    vsflexgridReportData = new ui::RowGrid(static_cast<int>(std::size(reportFields)), this);
    vsflexgridReportData->setObjectName("vsflexgridReportData");
    lblReport->setBuddy(vsflexgridReportData);
    buildLayout();
    connect(cmdFilterByDate, &QPushButton::clicked, this, &paneReport::cmdFilterByDate_Click);
}

void paneReport::buildLayout() {
    auto* filter = new QGridLayout(Frame1);
    filter->setColumnStretch(4, 1);
    filter->addWidget(lblDate, 0, 1);
    filter->addWidget(lblTime, 0, 2);
    for (const int row : {0, 1}) {
        const std::size_t bound = row == 0 ? startDate : endDate;
        filter->addWidget(lblBound[bound / 2], row + 1, 0);
        filter->addWidget(dtpickerReport[bound], row + 1, 1);
        filter->addWidget(dtpickerReport[bound + 1], row + 1, 2);
    }
    filter->addWidget(cmdFilterByDate, 2, 3);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->addWidget(lblReport);
    layout->addWidget(Frame1);
    layout->addWidget(vsflexgridReportData, 1);
}

void paneReport::controlInit() {
    // The name of the node type, until a report is loaded.
    if (nodeText_.empty())
        lblReport->setText("nodeTypeReport");
    Frame1->setTitle(ui::text(1105));
    lblDate->setText(ui::text(1154));
    lblTime->setText(ui::text(1155));
    cmdFilterByDate->setText(ui::text(1106));
    ui::nameByBuddy(*this);
    for (std::size_t i = 0; i < dtpickerReport.size(); ++i)
        dtpickerReport[i]->setAccessibleName((i < endDate ? "> " : "< ") +
                                             (i % 2 == 0 ? lblDate : lblTime)->text());
}

void paneReport::openReport(const std::string& nodeText) {
    nodeText_ = nodeText;
    const auto present = platform::clock().now();
    const QDateTime end = dateTime(platform::localTime(present));
    const QDateTime start = dateTime(platform::localTime(present - std::chrono::hours(1)));
    for (const Picker picker : {startDate, startTime})
        dtpickerReport[picker]->setDateTime(start);
    for (const Picker picker : {endDate, endTime})
        dtpickerReport[picker]->setDateTime(end);
}

void paneReport::cmdFilterByDate_Click() {
    core::procedure(module, "cmdFilterByDate_Click", [&](core::Frame& frame) {
        std::string lower;
        std::string upper;
        // Both bounds are strict: a row at a bound is not shown.
        frame.step(
            [&] { lower = "> " + dateLiteral(*dtpickerReport[startDate], *dtpickerReport[startTime]); });
        frame.step([&] { upper = "< " + dateLiteral(*dtpickerReport[endDate], *dtpickerReport[endTime]); });
        frame.step([&] {
            loadReport(nodeText_, "SELECT * FROM NotificationLog WHERE LogTime " + lower + " AND LogTime " +
                                      upper + " ORDER BY LogKey");
        });
    });
}

void paneReport::loadReport(const std::string& nodeText, const std::string& query) {
    core::procedure(module, "loadReport", [&](core::Frame& frame) {
        lblReport->setText(ui::fromUtf8(nodeText));
        vsflexgridReportData->setAccessibleName(lblReport->text());
        platform::Recordset log;
        std::vector<ui::RowGrid::Row> rows;
        frame.step([&] {
            log.open(query, core::gDatabase, platform::CursorType::staticCursor, platform::LockType::readOnly,
                     platform::CursorLocation::client);
        });
        if (log.state() == platform::ObjectState::open) {
            rows.reserve(static_cast<std::size_t>(log.recordCount()));
            while (!log.EOF_()) {
                frame.step([&] { rows.push_back(reportRow(log)); });
                frame.step([&] { log.moveNext(); });
            }
            frame.step([&] { log.close(); });
        }
        vsflexgridReportData->setRows(std::move(rows));
    });
}
