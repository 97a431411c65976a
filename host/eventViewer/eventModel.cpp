#include "host/eventViewer/eventModel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "host/eventViewer/eventText.h"
#include "platform/machine/caseFold.h"
#include "ui/base/text.h"

namespace viewer {

namespace {

// Rows that are got ready at once, and how long a turn may take.
constexpr std::size_t screenful = 200;
constexpr qint64 longestTurn = 5;  // ms
// Entries that are handed over at once at most, but for the end of a page.
constexpr std::size_t enough = 2000;

const QIcon& iconOf(std::size_t typeIndex) {
    static const QIcon icons[] = {QApplication::style()->standardIcon(QStyle::SP_MessageBoxCritical),
                                  QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning),
                                  QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation)};
    return icons[typeIndex == 0 || typeIndex == 4 ? 0 : typeIndex == 1 ? 1 : 2];
}

const QIcon& iconOf(service::Fate fate) {
    return iconOf(fate == service::Fate::told                                        ? 2
                  : fate == service::Fate::refused || fate == service::Fate::givenUp ? 0
                                                                                     : 1);
}

}  // namespace

struct EventModel::Pages {
    std::unique_ptr<LogPages> log;
};

EventModel::EventModel(const Texts& texts, QObject* parent) : QAbstractTableModel(parent), texts_(texts) {
    nextTurn_.setSingleShot(true);
    connect(&nextTurn_, &QTimer::timeout, this, &EventModel::lookThrough);
}

EventModel::~EventModel() = default;

void EventModel::setLog(Log log) {
    ++generation_;
    next_ = std::move(log);
    pages_ = std::make_shared<Pages>();
    request();
}

void EventModel::setFilter(Filter filter) {
    if (filter == filter_)
        return;
    beginResetModel();
    filter_ = std::move(filter);
    shown_.clear();
    lookedAt_ = 0;
    wanted_ = screenful;
    endResetModel();
    lookThrough();
}

void EventModel::readTo(std::uint64_t place) {
    wantedPlace_ = place;
    goOn();
}

// In the worker; its answer comes to take(). A little at a time, so that a log that is left is left at once.
void EventModel::request() {
    isReading_ = true;
    worker_.post([this, pages = pages_, log = next_ ? *next_ : log_, generation = generation_] {
        Answer answer;
        answer.generation = generation;
        answer.failure = failureOf([&] {
            if (!pages->log) {
                answer.stamp = log.stamp();
                pages->log = log.open();
            }
            // Some pages where they are small, but none that somebody would have to wait for.
            QElapsedTimer reading;
            reading.start();
            while ((answer.entries.empty() || reading.elapsed() < longestTurn) &&
                   answer.entries.size() < enough && pages->log->hasEarlier() && !worker_.isEnding())
                for (EntryPointer& entry : pages->log->earlier())
                    answer.entries.push_back(std::move(entry));
            answer.hasEarlier = pages->log->hasEarlier();
        });
        inWindow(this, [this, answer = std::move(answer)]() mutable { take(std::move(answer)); });
    });
}

void EventModel::take(Answer answer) {
    if (answer.generation != generation_)
        return;
    isReading_ = false;
    if (next_)
        begin(answer);
    hasEarlier_ = answer.hasEarlier;
    failure_ = std::move(answer.failure);
    add(std::move(answer.entries));
    lookThrough();
}

void EventModel::begin(const Answer& answer) {
    beginResetModel();
    log_ = *std::exchange(next_, std::nullopt);
    stamp_ = answer.stamp;
    entries_.clear();
    shown_.clear();
    lookedAt_ = 0;
    wanted_ = screenful;
    endResetModel();
}

void EventModel::add(std::vector<EntryPointer> entries) {
    for (EntryPointer& entry : entries) {
        const std::string& source = entry->record.source;
        if (const auto at = std::ranges::lower_bound(sources_, source);
            at == sources_.end() || *at != source) {
            sources_.insert(at, source);
            emit sourceFound(ui::fromUtf8(source));
        }
        entries_.push_back(std::move(entry));
    }
}

void EventModel::lookForNews() {
    if (isReading_ || !log_.stamp)
        return;
    worker_.post([this, stamp = log_.stamp, known = stamp_, generation = generation_] {
        if (stamp() == known)
            return;
        inWindow(this, [this, generation] {
            if (generation == generation_)
                emit hasNews();
        });
    });
}

bool EventModel::isShown(const Entry& entry) const {
    return (!filter_.type || ((entry.record.type != 0 || !entry.notification) &&
                              typeIndex(entry.record.type) == *filter_.type)) &&
           (!filter_.fate || (entry.notification && entry.notification->fate == *filter_.fate)) &&
           (filter_.source.empty() || platform::foldCase(entry.record.source) == filter_.source) &&
           (filter_.text.isEmpty() || contains(entry, filter_.text));
}

// Holds what was read against the filter, for as long as the window can do without its thread.
void EventModel::lookThrough() {
    constexpr std::size_t between = 64;  // two looks at the clock
    QElapsedTimer turn;
    turn.start();
    std::vector<std::size_t> more;
    while (lookedAt_ < entries_.size() && (lookedAt_ % between != 0 || turn.elapsed() < longestTurn)) {
        if (isShown(*entries_[lookedAt_]))
            more.push_back(lookedAt_);
        ++lookedAt_;
    }
    if (!more.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(more.size()) - 1);
        shown_.insert(shown_.end(), more.begin(), more.end());
        endInsertRows();
    }
    goOn();
    emit wentOn();
}

void EventModel::goOn() {
    if (lookedAt_ < entries_.size()) {
        nextTurn_.start();
        return;
    }
    if (wantedPlace_ && !entries_.empty() && entries_.back()->place <= *wantedPlace_)
        wantedPlace_.reset();
    if (hasEarlier_ && !isReading_ && failure_.empty() && (shown_.size() < wanted_ || wantedPlace_))
        request();
}

int EventModel::rowOf(std::uint64_t place) const {
    const auto found = std::ranges::lower_bound(shown_, place, std::greater<>(),
                                                [this](std::size_t index) { return entries_[index]->place; });
    return found != shown_.end() && entries_[*found]->place == place
               ? static_cast<int>(found - shown_.begin())
               : -1;
}

std::vector<EntryPointer> EventModel::shown() const {
    std::vector<EntryPointer> result;
    result.reserve(shown_.size());
    for (const std::size_t index : shown_)
        result.push_back(entries_[index]);
    return result;
}

bool EventModel::contains(const Entry& entry, const QString& text) const {
    return entryContains(entry, texts_, text);
}

int EventModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int EventModel::columnCount(const QModelIndex& parent) const {
    if (parent.isValid())
        return 0;
    return static_cast<int>(log_.isOfNotifications ? texts_.notificationColumns.size()
                                                   : texts_.columns.size());
}

QVariant EventModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const Entry& entry = *entryAt(index.row());
    if (role == Qt::DecorationRole && index.column() == 0)
        return entry.notification ? iconOf(entry.notification->fate) : iconOf(typeIndex(entry.record.type));
    // A cell is one line; the text below the table has all of them.
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return ui::fromUtf8(columnText(entry, static_cast<std::size_t>(index.column()), texts_)).simplified();
    return {};
}

QVariant EventModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        const auto column = static_cast<std::size_t>(section);
        return QString::fromUtf8(log_.isOfNotifications ? texts_.notificationColumns[column]
                                                        : texts_.columns[column]);
    }
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    return QAbstractTableModel::headerData(section, orientation, role);
}

bool EventModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && hasEarlier_ && failure_.empty();
}

void EventModel::fetchMore(const QModelIndex&) {
    wanted_ = shown_.size() + screenful;
    goOn();
}

}  // namespace viewer
