// The events of one log as rows of a table, the newest first.
#pragma once

#include <QAbstractTableModel>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/viewer/texts.h"
#include "platform/machine/eventLog.h"

namespace viewer {

class EventModel : public QAbstractTableModel {
  public:
    explicit EventModel(const Texts& texts, QObject* parent = nullptr);

    // The log's records, oldest first, and the one type to show, if only one.
    void setEvents(std::vector<platform::EventRecord> events);
    void setTypeShown(std::optional<std::size_t> typeIndex);

    const platform::EventRecord& eventAt(int row) const;
    // Number of the row's record in its log, from the oldest on; it stays while the log grows.
    std::size_t place(int row) const { return shown_[static_cast<std::size_t>(row)]; }
    // Row of a record by its number; -1 when it is not shown.
    int rowOf(std::size_t place) const;
    std::size_t eventCount() const { return events_.size(); }
    // True when a column or the description contains the text, without regard to case.
    bool contains(int row, const QString& text) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    void chooseRows();

    const Texts& texts_;
    std::vector<platform::EventRecord> events_;
    std::vector<std::size_t> shown_;
    std::optional<std::size_t> typeShown_;
};

}  // namespace viewer
