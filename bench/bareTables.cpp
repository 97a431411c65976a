#include <QDateTime>
#include <QHeaderView>
#include <QLocale>

#include "bench/bareWindows.h"
#include "database/deviceType.h"

namespace bench {

BareTable::BareTable(const QStringList& headers)
    : QTableWidget(0, static_cast<int>(headers.size())), picture_(":/icons/complete.svg") {
    setHorizontalHeaderLabels(headers);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 10);
}

void BareTable::beginRows() {
    setUpdatesEnabled(false);
    setRowCount(0);
}

void BareTable::put(int row, int column, QTableWidgetItem* item) {
    if (row == rowCount())
        insertRow(row);
    setItem(row, column, item);
}

void BareTable::endRows(int count) {
    insist(rowCount() == count, "a table has all of its rows");
    resizeColumnsToContents();
    setUpdatesEnabled(true);
}

QTableWidgetItem* BareTable::textCell(const QString& text, bool centred) const {
    auto* item = new QTableWidgetItem(text);
    if (centred)
        item->setTextAlignment(Qt::AlignCenter);
    return item;
}

QTableWidgetItem* BareTable::tickCell(bool on) const {
    auto* item = new QTableWidgetItem;
    item->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    return item;
}

QTableWidgetItem* BareTable::pictureCell(bool shown) const {
    auto* item = new QTableWidgetItem;
    if (shown)
        item->setIcon(picture_);
    return item;
}

BareEvents::BareEvents(const Engine& engine)
    : BareTable({"Active", "Source", "ID", "Notes", "Type", "Last Notification"}),
      rows_(engine,
            "SELECT EventKey, EventSource, EventId, EventTitle, EventType, EventActive, EventCollection, "
            "EventLastNotification FROM Events WHERE EventTitle <> '$$IGNORE' ORDER BY EventCollection, "
            "EventSource") {}

void BareEvents::fill() {
    const std::array<QString, 5> types{"", "Errors", "Errors & Warnings", "",
                                       "Errors, Warnings & Informational"};
    beginRows();
    int row = 0;
    for (; rows_.row(); ++row) {
        const bool catchAll = rows_.number(6) != 0;
        const auto text = [&](int column) { return QString::fromStdString(rows_.text(column)); };
        const long id = rows_.number(2);
        const auto type = static_cast<std::size_t>(rows_.number(4));
        const QDateTime last = QDateTime::fromString(text(7), "yyyy-MM-dd HH:mm:ss");
        QTableWidgetItem* tick = tickCell(rows_.number(5) != 0);
        tick->setData(Qt::UserRole, static_cast<qlonglong>(rows_.number(0)));
        put(row, 0, tick);
        put(row, 1, textCell(catchAll ? QString("All Corvane Errors") : text(1)));
        put(row, 2, textCell(id == -1 ? QString("All") : QString::number(id)));
        put(row, 3, textCell(catchAll ? QString("All Meridane Corvane Errors") : text(3)));
        put(row, 4, textCell(type < types.size() ? types[type] : QString::number(type)));
        put(row, 5, textCell(last.isValid() ? QLocale().toString(last, QLocale::ShortFormat) : QString()));
    }
    endRows(row);
}

BareRecipients::BareRecipients(const Engine& engine)
    : BareTable({"Active", "Name", "Voice mail", "E-mail", "SMTP Devices", "Syslog"}),
      rows_(engine,
            "SELECT RecipientKey, RecipientName, RecipientActive FROM Recipients ORDER BY "
            "RecipientName"),
      counts_(engine,
              "SELECT l.RecipientKey, d.DeviceType, count(*) FROM DeviceRecipient l JOIN Device d ON "
              "d.DeviceKey = l.DeviceKey GROUP BY l.RecipientKey, d.DeviceType"),
      toggle_(engine,
              "UPDATE Recipients SET RecipientActive = -1 - RecipientActive WHERE RecipientKey = ?1") {}

BareRecipients::Counts BareRecipients::countDevices() {
    Counts counts;
    while (counts_.row())
        counts[counts_.number(0)].at(static_cast<std::size_t>(counts_.number(1))) = counts_.number(2);
    return counts;
}

void BareRecipients::fill() {
    Counts counts = countDevices();
    beginRows();
    int row = 0;
    for (; rows_.row(); ++row) {
        const long key = rows_.number(0);
        const std::array<long, 8>& devices = counts[key];
        QTableWidgetItem* tick = tickCell(rows_.number(2) != 0);
        tick->setData(Qt::UserRole, static_cast<qlonglong>(key));
        put(row, 0, tick);
        put(row, 1, textCell(QString::fromStdString(rows_.text(1)), false));
        put(row, 2, pictureCell(devices[mdlDatabase::voiceMail] > 0));
        put(row, 3, pictureCell(devices[mdlDatabase::email] > 0));
        put(row, 4, textCell(QString::number(devices[mdlDatabase::smtpAddress])));
        put(row, 5, pictureCell(devices[mdlDatabase::syslog] > 0));
    }
    endRows(row);
}

void BareRecipients::toggle(int row) {
    toggle_.bind(1, static_cast<long>(item(row, 0)->data(Qt::UserRole).toLongLong())).run();
}

}  // namespace bench
