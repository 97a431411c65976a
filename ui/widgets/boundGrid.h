// A read-only grid over a forward-only recordset of any length: the first block of rows shows at once, the
// others follow while the program has nothing else to do. Row 0 is the header; data rows count from 1.
#pragma once

#include <QTableView>
#include <QTimer>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/ado.h"

namespace ui {

class BoundRows;

class BoundGrid : public QTableView {
    Q_OBJECT

  public:
    explicit BoundGrid(QWidget* parent = nullptr);

    struct Column {
        std::string key;  // empty for a column that nobody asks for
        std::string header;
        int width = 0;  // twips as designed: its share of the grid's width; 0 hides the column
    };
    // Headers, shares and keys of the columns, which are the recordset's fields in their order.
    void setColumns(const std::vector<Column>& columns);
    // Drops all rows and forgets the recordset.
    void cut();
    // Shows the rows of an open recordset, which must stay open until its end or the next cut; one that is
    // closed shows nothing. Raises what reading the first block raises.
    void bind(platform::Recordset& rows);

    int gridRowCount() const;
    // The selected row, 1-based; 0 when none is.
    int currentGridRow() const;
    // 0 selects none.
    void setCurrentGridRow(int gridRow);
    // Text shown in a cell, or the header for row 0; column keys ignore case. Raises 3265 for an unknown
    // column, 5 for no such row.
    std::string cellText(int gridRow, std::string_view column) const;

  signals:
    // A person chose a row, by mouse or keyboard; it is the selected one by then.
    void clicked();
    void doubleClicked();
    // A later block could not be read; what is shown stays.
    void readingFailed(const platform::Failure& failure);

  protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    void readOn();
    void shareWidth();

    BoundRows* model_;
    QTimer idle_;
    std::vector<Column> columns_;
};

}  // namespace ui
