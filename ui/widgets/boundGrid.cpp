#include "ui/widgets/boundGrid.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "ui/base/text.h"
#include "ui/widgets/cellTip.h"
#include "ui/widgets/gridLook.h"

namespace ui {

// The rows that have been read so far.
class BoundRows : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(texts_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(headers_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole || !index.isValid())
            return {};
        const auto& row = texts_[static_cast<std::size_t>(index.row())];
        const auto column = static_cast<std::size_t>(index.column());
        return column < row.size() ? row[column] : QString();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
        return headers_[static_cast<std::size_t>(section)];
    }

    void setHeaders(std::vector<QString> headers) {
        // A reset would drop the selection, and the fields mostly stay the same.
        if (headers.size() != headers_.size()) {
            beginResetModel();
            headers_ = std::move(headers);
            endResetModel();
        } else if (headers != headers_) {
            headers_ = std::move(headers);
            emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
        }
    }
    void clear() {
        beginResetModel();
        texts_.clear();
        source_ = nullptr;
        endResetModel();
    }
    void setSource(platform::Recordset& source) {
        source_ = &source;
        fields_.clear();
        for (std::size_t i = 0; i < source.fieldCount(); ++i)
            fields_.push_back(source.fieldName(i));
    }
    // True while there may be more to read.
    bool readBlock();

  private:
    platform::Recordset* source_ = nullptr;
    std::vector<std::string> fields_;
    std::vector<QString> headers_;
    std::vector<std::vector<QString>> texts_;
};

bool BoundRows::readBlock() {
    constexpr std::size_t blockSize = 400;
    if (!source_)
        return false;
    std::vector<std::vector<QString>> block;
    // What was read before a failure is shown all the same.
    const auto show = [&] {
        if (block.empty())
            return;
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(block.size()) - 1);
        std::ranges::move(block, std::back_inserter(texts_));
        endInsertRows();
    };
    try {
        for (; block.size() < blockSize && !source_->EOF_(); source_->moveNext()) {
            std::vector<QString> row;
            row.reserve(fields_.size());
            for (const std::string& field : fields_)
                row.push_back(fromUtf8(platform::valueText(source_->value(field))));
            block.push_back(std::move(row));
        }
    } catch (const platform::Failure&) {
        source_ = nullptr;
        show();
        throw;
    }
    show();
    if (block.size() < blockSize)
        source_ = nullptr;
    return source_ != nullptr;
}

BoundGrid::BoundGrid(QWidget* parent) : QTableView(parent), model_(new BoundRows(this)) {
    setModel(model_);
    giveGridLook(*this);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    idle_.setInterval(0);
    connect(&idle_, &QTimer::timeout, this, &BoundGrid::readOn);
}

void BoundGrid::setColumns(const std::vector<Column>& columns) {
    columns_ = columns;
    std::vector<QString> headers;
    headers.reserve(columns.size());
    for (const Column& column : columns)
        headers.push_back(fromUtf8(column.header));
    model_->setHeaders(std::move(headers));
    for (std::size_t i = 0; i < columns_.size(); ++i)
        setColumnHidden(static_cast<int>(i), columns_[i].width == 0);
    shareWidth();
}

void BoundGrid::cut() {
    idle_.stop();
    model_->clear();
}

void BoundGrid::bind(platform::Recordset& rows) {
    cut();
    if (rows.state() == platform::ObjectState::closed)
        return;
    model_->setSource(rows);
    if (model_->readBlock())
        idle_.start();
}

void BoundGrid::readOn() {
    try {
        if (model_->readBlock())
            return;
    } catch (const platform::Failure& failure) {
        idle_.stop();
        emit readingFailed(failure);
    }
    idle_.stop();
}

int BoundGrid::gridRowCount() const {
    return model_->rowCount();
}

// Not the current index: that one is set by merely walking into the grid.
int BoundGrid::currentGridRow() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? 0 : selected.front().row() + 1;
}

void BoundGrid::setCurrentGridRow(int gridRow) {
    if (gridRow > 0)
        selectRow(gridRow - 1);
    else
        selectionModel()->clear();
}

std::string BoundGrid::cellText(int gridRow, std::string_view column) const {
    const QString wanted = fromUtf8(column);
    const auto found = std::ranges::find_if(columns_, [&](const Column& each) {
        return fromUtf8(each.key).compare(wanted, Qt::CaseInsensitive) == 0;
    });
    if (found == columns_.end())
        throw platform::makeFailure(platform::itemNotFound, column);
    if (gridRow < 0 || gridRow > gridRowCount())
        throw platform::makeFailure(platform::invalidProcedureCall, std::to_string(gridRow));
    const auto index = static_cast<int>(found - columns_.begin());
    return gridRow == 0 ? found->header
                        : toUtf8(model_->index(gridRow - 1, index).data(Qt::DisplayRole).toString());
}

// The designed widths are shares of what there is; no column gets narrower than its header.
void BoundGrid::shareWidth() {
    int total = 0;
    for (const Column& column : columns_)
        total += column.width;
    for (std::size_t i = 0; i < columns_.size() && total > 0; ++i) {
        const int section = static_cast<int>(i);
        if (columns_[i].width > 0)
            setColumnWidth(section, std::max(horizontalHeader()->sectionSizeHint(section),
                                             viewport()->width() * columns_[i].width / total));
    }
}

void BoundGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (event->oldSize().width() != event->size().width())
        shareWidth();
}

bool BoundGrid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && showCutText(*this, *static_cast<QHelpEvent*>(event)))
        return true;
    return QTableView::viewportEvent(event);
}

// Handlers may cut the grid, so the signals leave after the base class is done with its event.

void BoundGrid::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid())
        emit clicked();
}

void BoundGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid())
        emit doubleClicked();
}

void BoundGrid::keyPressEvent(QKeyEvent* event) {
    const int before = currentGridRow();
    const bool confirms = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (confirms && before > 0) {
        emit doubleClicked();
        return;
    }
    const bool chooses = event->key() == Qt::Key_Space || event->key() == Qt::Key_Down;
    if (chooses && before == 0 && gridRowCount() > 0)
        setCurrentGridRow(std::max(currentIndex().row(), 0) + 1);
    else
        QTableView::keyPressEvent(event);
    if (currentGridRow() != before || (event->key() == Qt::Key_Space && before > 0))
        emit clicked();
}

}  // namespace ui
