// A read-only grid addressed through column keys. Row 0 is the header; data rows count from 1. Clicking a
// header sorts the rows; until then they keep the order in which they were added.
#pragma once

#include <QIcon>
#include <QTableWidget>
#include <string>
#include <string_view>
#include <vector>

namespace ui {

class KeyedGrid : public QTableWidget {
    Q_OBJECT

  public:
    explicit KeyedGrid(QWidget* parent = nullptr);

    struct Column {
        std::string key;
        std::string header;
        bool hidden = false;
        bool checkBox = false;
        bool centred = true;
        bool alikeBeginnings = false;  // a text that does not fit is cut in its middle
        QIcon picture = {};            // shown instead of a text where the value is true
    };
    // Drops all rows and sets the columns.
    void setColumns(const std::vector<Column>& columns);

    // Gives the columns other header texts; the rows stay. Does nothing before the columns are set.
    void setHeaders(const std::vector<Column>& columns);

    struct Cell {
        std::string text;  // what is shown
        QVariant value;    // what is read back and sorted by; the text when invalid
    };
    // Adds a row with one cell per column, in column order.
    void addRow(const std::vector<Cell>& cells);
    // While an instance lives the grid does not paint, and it has room for more rows than were added.
    class Fill {
      public:
        explicit Fill(KeyedGrid& grid);
        ~Fill();
        Fill(const Fill&) = delete;
        Fill& operator=(const Fill&) = delete;

      private:
        KeyedGrid& grid_;
    };
    // Makes the columns as wide as their content, as far as the grid's own width allows, now and whenever
    // that changes.
    void fitColumns();
    // Gives a column what the others leave of the grid's width, and `extra` pixels. Raises 3265 for an
    // unknown column.
    void stretchColumn(std::string_view column, int extra);

    // 1-based; 0 when no row is current.
    int currentGridRow() const { return currentRow() + 1; }
    // Empty when no column is current.
    std::string currentColumnKey() const;
    int gridRowCount() const { return rowCount(); }
    // Value of a cell; raises 3265 for an unknown column, 5 for no such row.
    QVariant cellValue(int gridRow, std::string_view column) const;
    // Text shown in a cell; raises like cellValue.
    std::string cellText(int gridRow, std::string_view column) const;
    // Makes a cell current without telling anybody.
    void setCurrentGridCell(int gridRow, std::string_view column);
    // Rectangle of a cell in the viewport.
    QRect cellRectangle(int gridRow, std::string_view column) const;

  signals:
    // A person clicked a cell, or pressed the space bar on one; it is the current cell by then.
    void clicked();
    void doubleClicked();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    struct Width {
        int content = 0;  // what the widest cell and the header on one line want
        int header = 0;   // what the longest word of the header wants
    };

    int columnIndex(std::string_view column) const;
    QTableWidgetItem& cell(int gridRow, std::string_view column) const;
    void sortBy(int column);
    int headerWidth(const QString& text) const;
    Width widthOf(int column) const;
    void shareWidth(int unlimited = -1);
    void fitHeader();
    QAbstractItemDelegate* delegateFor(const Column& column);

    std::vector<Column> columns_;
    std::vector<Width> widths_;
    static constexpr int notFilling = -1;
    int filled_ = notFilling;  // rows that hold something, during a fill
    bool doubleClicked_ = false;
};

}  // namespace ui
