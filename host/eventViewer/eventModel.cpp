#include "host/eventViewer/eventModel.h"

#include <QApplication>
#include <QIcon>
#include <QStyle>
#include <algorithm>
#include <functional>
#include <utility>

#include "host/eventViewer/eventText.h"

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

EventModel::EventModel(const Texts& texts, QObject* parent) : QAbstractTableModel(parent), texts_(texts) {}

void EventModel::setEvents(std::vector<platform::EventRecord> events) {
    beginResetModel();
    events_ = std::move(events);
    chooseRows();
    endResetModel();
}

void EventModel::setTypeShown(std::optional<std::size_t> typeIndex) {
    beginResetModel();
    typeShown_ = typeIndex;
    chooseRows();
    endResetModel();
}

void EventModel::chooseRows() {
    shown_.clear();
    for (std::size_t place = events_.size(); place-- > 0;)
        if (!typeShown_ || typeIndex(events_[place].type) == *typeShown_)
            shown_.push_back(place);
}

const platform::EventRecord& EventModel::eventAt(int row) const {
    return events_[place(row)];
}

int EventModel::rowOf(std::size_t place) const {
    const auto found = std::ranges::lower_bound(shown_, place, std::greater<>());
    return found != shown_.end() && *found == place ? static_cast<int>(found - shown_.begin()) : -1;
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
