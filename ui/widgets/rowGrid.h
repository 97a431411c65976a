// A read-only grid for many rows of texts: filled in one go, and as quick with 100,000 rows as with one. Row
// 0 is the header; data rows count from 1.
#pragma once

#include <QTableView>
#include <memory>
#include <string>
#include <vector>

namespace ui {

class RowModel;

class RowGrid : public QTableView {
    Q_OBJECT

  public:
    explicit RowGrid(int columns, QWidget* parent = nullptr);
    ~RowGrid() override;

    // A cell's texts, in column order.
    using Row = std::vector<std::string>;
    // Replaces all rows and fits the columns to what is in sight.
    void setRows(std::vector<Row> rows);
    int gridRowCount() const;
    // Text of a cell; raises 5 when there is none.
    std::string cellText(int gridRow, int column) const;

  private:
    void giveWay();

    std::unique_ptr<RowModel> rows_;
};

}  // namespace ui
