#include "host/eventViewer/eventModel.h"

#include <QApplication>
#include <QIcon>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "host/eventViewer/eventText.h"
#include "platform/failure.h"

namespace viewer {

namespace {

QIcon iconOf(std::size_t typeIndex) {
    switch (typeIndex) {
        case 0:
        case 4:
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxCritical);
        case 1:
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
        default:
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
    }
}

}  // namespace

EventModel::EventModel(const Texts& texts, std::function<void()> readOn, QObject* parent)
    : QAbstractTableModel(parent), texts_(texts), readOn_(std::move(readOn)) {
    nextTurn_.setSingleShot(true);
    connect(&nextTurn_, &QTimer::timeout, this, [this] { fetchMore(); });
}

void EventModel::setLog(std::optional<platform::EventLogPages> log) {
    beginResetModel();
    events_.clear();
    shown_.clear();
    log_ = std::move(log);
    failure_.clear();
    endResetModel();
    fetchMore();
}

void EventModel::setTypeShown(std::optional<std::size_t> typeIndex) {
    beginResetModel();
    typeShown_ = typeIndex;
    shown_.clear();
    for (std::size_t i = 0; i < events_.size(); ++i)
        if (isShown(events_[i]))
            shown_.push_back(i);
    endResetModel();
    if (shown_.empty() && canFetchMore())
        fetchMore();
}

bool EventModel::isShown(const platform::PlacedEvent& event) const {
    return !typeShown_ || typeIndex(event.record.type) == *typeShown_;
}

bool EventModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && log_ && log_->hasEarlier();
}

void EventModel::fetchMore(const QModelIndex&) {
    constexpr int mostPages = 8;
    std::vector<std::size_t> more;
    for (int page = 0; page < mostPages && more.empty() && canFetchMore(); ++page)
        more = readEarlier();
    if (!more.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(more.size()) - 1);
        shown_.insert(shown_.end(), more.begin(), more.end());
        endInsertRows();
    } else if (canFetchMore()) {
        nextTurn_.start();
    }
    readOn_();
}

// Indexes of those of the page's events that are to be shown.
std::vector<std::size_t> EventModel::readEarlier() {
    std::vector<std::size_t> more;
    try {
        for (platform::PlacedEvent& event : log_->earlier()) {
            if (isShown(event))
                more.push_back(events_.size());
            events_.push_back(std::move(event));
        }
    } catch (const platform::Failure& failure) {
        failure_ = failure.description();
        log_.reset();
    }
    return more;
}

const platform::EventRecord& EventModel::eventAt(int row) const {
    return events_[shown_[static_cast<std::size_t>(row)]].record;
}

int EventModel::rowOf(std::uint64_t place) const {
    const auto found = std::ranges::lower_bound(shown_, place, std::greater<>(),
                                                [this](std::size_t index) { return events_[index].place; });
    return found != shown_.end() && events_[*found].place == place ? static_cast<int>(found - shown_.begin())
                                                                   : -1;
}

bool EventModel::contains(int row, const QString& text) const {
    const auto holds = [&](const std::string& field) {
        return QString::fromStdString(field).contains(text, Qt::CaseInsensitive);
    };
    return std::ranges::any_of(columnTexts(eventAt(row), texts_), holds) || holds(eventAt(row).description);
}

int EventModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int EventModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(texts_.columns.size());
}

QVariant EventModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DecorationRole && index.column() == 0)
        return iconOf(typeIndex(eventAt(index.row()).type));
    if (role == Qt::DisplayRole)
        return QString::fromStdString(
            columnTexts(eventAt(index.row()), texts_)[static_cast<std::size_t>(index.column())]);
    return {};
}

QVariant EventModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return QString::fromUtf8(texts_.columns[static_cast<std::size_t>(section)]);
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    return QAbstractTableModel::headerData(section, orientation, role);
}

}  // namespace viewer
