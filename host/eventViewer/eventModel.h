// The events of one log as rows of a table, the newest first.
#pragma once

#include <QAbstractTableModel>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/viewer/texts.h"
#include "platform/machine/eventLogPages.h"

namespace viewer {

class EventModel : public QAbstractTableModel {
  public:
    // `readOn` is called each time when more of the log was read, or could not be.
    EventModel(const Texts& texts, std::function<void()> readOn, QObject* parent = nullptr);

    // Shows a log from its end on; more of it is read as rows are asked for. Nothing without a log.
    void setLog(std::optional<platform::EventLogPages> log);
    // The one type to show, if only one.
    void setTypeShown(std::optional<std::size_t> typeIndex);

    const platform::EventRecord& eventAt(int row) const;
    // Place of the row's record in its log; it stays while the log grows.
    std::uint64_t place(int row) const { return events_[shown_[static_cast<std::size_t>(row)]].place; }
    // Row of a record by its place; -1 when it is not shown.
    int rowOf(std::uint64_t place) const;
    // Records that were read so far.
    std::size_t eventCount() const { return events_.size(); }
    // True when the record at this place of the log has been read, shown or not.
    bool hasReadTo(std::uint64_t place) const { return !events_.empty() && events_.back().place <= place; }
    // Why the log could not be read on; empty when it could.
    const std::string& failure() const { return failure_; }
    // True when a column or the description contains the text, without regard to case.
    bool contains(int row, const QString& text) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex& parent = {}) const override;
    // Reads on until there is another row to show; after some megabytes without one the window gets a turn
    // first. A log that cannot be read on ends there, with its failure.
    void fetchMore(const QModelIndex& parent = {}) override;

  private:
    bool isShown(const platform::PlacedEvent& event) const;
    std::vector<std::size_t> readEarlier();

    const Texts& texts_;
    std::optional<platform::EventLogPages> log_;
    std::vector<platform::PlacedEvent> events_;  // the newest first
    std::vector<std::size_t> shown_;             // indexes into events_
    std::optional<std::size_t> typeShown_;
    std::string failure_;
    std::function<void()> readOn_;
    QTimer nextTurn_;
};

}  // namespace viewer
