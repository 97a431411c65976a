// The entries of one log as rows of a table, the newest first. They are read beside the window and looked
// through in short turns, so that a log of any length leaves the window free.
#pragma once

#include <QAbstractTableModel>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/eventViewer/logs.h"
#include "host/viewer/texts.h"
#include "host/viewer/worker.h"

namespace viewer {

// Which entries are to be shown; what is empty lets all pass.
struct Filter {
    std::optional<std::size_t> type;    // as in Texts::types
    std::optional<service::Fate> fate;  // of notifications
    std::string source;                 // with its case folded
    QString text;                       // in a column, the description or the message

    bool operator==(const Filter&) const = default;
};

class EventModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    explicit EventModel(const Texts& texts, QObject* parent = nullptr);
    ~EventModel() override;

    // Shows a log from its end on, once its first page has come; until then what was shown stays. More of it
    // is read as rows are asked for.
    void setLog(Log log);
    const Log& log() const { return log_; }
    void setFilter(Filter filter);
    const Filter& filter() const { return filter_; }
    // Reads to the log's beginning, or until the entry at this place has been read.
    void readAll() { readTo(0); }
    void readTo(std::uint64_t place);

    const EntryPointer& entryAt(int row) const { return entries_[shown_[static_cast<std::size_t>(row)]]; }
    // Row of an entry by its place; -1 when it is not shown.
    int rowOf(std::uint64_t place) const;
    // What is shown by now.
    std::vector<EntryPointer> shown() const;
    // Entries that were read so far.
    std::size_t entryCount() const { return entries_.size(); }
    bool hasEarlier() const { return hasEarlier_; }
    // True when nothing is being read or looked through.
    bool isAtRest() const { return !isReading_ && lookedAt_ == entries_.size(); }
    // True when the entry at this place has been read, shown or not, or cannot be any more.
    bool hasReadTo(std::uint64_t place) const {
        return !hasEarlier_ || !failure_.empty() || (!entries_.empty() && entries_.back()->place <= place);
    }
    // Looks whether the log has changed since it was opened: hasNews() tells then.
    void lookForNews();
    // Why the log could not be read, or read on; empty when it could.
    const std::string& failure() const { return failure_; }
    // True when a column, the description or the message contains the text, without regard to case.
    bool contains(const Entry& entry, const QString& text) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex& parent = {}) const override;
    // Asks for some more rows; they come when they have been read.
    void fetchMore(const QModelIndex& parent = {}) override;

  signals:
    // More was read or looked through, or could not be.
    void wentOn();
    void hasNews();
    // A source that no entry had before; not with its case folded.
    void sourceFound(const QString& source);

  private:
    struct Pages;
    bool isShown(const Entry& entry) const;
    void goOn();
    void request();
    struct Answer {
        std::uint64_t generation = 0;
        std::vector<EntryPointer> entries;
        bool hasEarlier = false;
        std::string failure;
        std::string stamp;  // of a log that was opened
    };
    void take(Answer answer);
    void begin(const Answer& answer);
    void add(std::vector<EntryPointer> entries);
    void lookThrough();

    const Texts& texts_;
    Log log_;
    std::optional<Log> next_;       // whose first page has not come yet
    std::string stamp_;             // of the log as it was opened
    std::shared_ptr<Pages> pages_;  // used by the worker alone
    Filter filter_;
    std::vector<EntryPointer> entries_;  // the newest first
    std::vector<std::size_t> shown_;     // indexes into entries_
    std::size_t lookedAt_ = 0;           // entries that were held against the filter
    std::size_t wanted_ = 0;             // rows that are asked for
    std::optional<std::uint64_t> wantedPlace_;
    bool hasEarlier_ = false;
    bool isReading_ = false;
    std::uint64_t generation_ = 0;  // of the log that is shown: what comes of another one is late
    std::string failure_;
    std::vector<std::string> sources_;  // sorted
    QTimer nextTurn_;
    Worker worker_;
};

}  // namespace viewer
