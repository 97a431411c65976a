#include "ui/widgets/rowGrid.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "platform/failure.h"
#include "ui/base/text.h"
#include "ui/widgets/gridLook.h"

namespace ui {

// Texts stay as they came; only those in sight are turned into the toolkit's.
class RowModel : public QAbstractTableModel {
  public:
    explicit RowModel(int columns) : columns_(columns) {}

    void replace(std::vector<RowGrid::Row> rows) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    }
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : columns_; }
    QVariant data(const QModelIndex& index, int role) const override {
        // The tip has the whole text of a cell that is cut off.
        const bool asked = index.isValid() && (role == Qt::DisplayRole || role == Qt::ToolTipRole);
        return asked ? fromUtf8(text(index.row(), index.column())) : QVariant();
    }
    // The header row is blank.
    QVariant headerData(int, Qt::Orientation, int role) const override {
        return role == Qt::DisplayRole ? QVariant(QString()) : QVariant();
    }
    const std::string& text(int row, int column) const {
        return rows_.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column));
    }

  private:
    int columns_;
    std::vector<RowGrid::Row> rows_;
};

RowGrid::RowGrid(int columns, QWidget* parent)
    : QTableView(parent), rows_(std::make_unique<RowModel>(columns)) {
    setModel(rows_.get());
    giveGridLook(*this);
    setTextElideMode(Qt::ElideMiddle);  // sources begin alike
    // Rows of one height need not be measured.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setMinimumSectionSize(24);  // a blank header asks for no more
    horizontalHeader()->setFixedHeight(fontMetrics().height() + 10);
}

RowGrid::~RowGrid() {
    setModel(nullptr);
}

void RowGrid::setRows(std::vector<Row> rows) {
    constexpr int breathing = 8;
    rows_->replace(std::move(rows));
    // A last column that was stretched before must not count with that width.
    horizontalHeader()->setStretchLastSection(false);
    resizeColumnsToContents();
    for (int i = 0; i < rows_->columnCount(); ++i)
        setColumnWidth(i, columnWidth(i) + breathing);
    giveWay();
    horizontalHeader()->setStretchLastSection(true);
}

// The widest column gives way where not all fit, so that each stays in sight.
void RowGrid::giveWay() {
    constexpr int narrowest = 80;
    int total = 2 * frameWidth() + verticalScrollBar()->sizeHint().width();
    int widest = 0;
    for (int i = 0; i < rows_->columnCount(); ++i) {
        total += columnWidth(i);
        if (columnWidth(i) > columnWidth(widest))
            widest = i;
    }
    if (total > width())
        setColumnWidth(widest, std::max(narrowest, columnWidth(widest) - (total - width())));
}

int RowGrid::gridRowCount() const {
    return rows_->rowCount();
}

std::string RowGrid::cellText(int gridRow, int column) const {
    if (gridRow < 1 || gridRow > rows_->rowCount() || column < 0 || column >= rows_->columnCount())
        throw platform::makeFailure(platform::invalidProcedureCall, std::to_string(gridRow));
    return rows_->text(gridRow - 1, column);
}

}  // namespace ui
