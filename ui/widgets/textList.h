// A list of texts of which several may be selected. Rows count from 0.
#pragma once

#include <QListWidget>
#include <string>
#include <vector>

namespace ui {

class TextList : public QListWidget {
    Q_OBJECT

  public:
    explicit TextList(QWidget* parent = nullptr);

    void addText(const std::string& text);
    // One that is shown, with a tip that says why, and can neither be selected nor moved.
    void addLockedText(const std::string& text, const QString& tip);
    bool isLocked(int row) const;
    // Raises 5 for no such row.
    std::string textAt(int row) const;
    std::vector<std::string> texts() const;
    // From the first.
    std::vector<int> selectedRows() const;
    // Moves rows, given in ascending order, to the end of another list.
    // Raises 5 for no such row, before anything is moved.
    void moveTo(TextList& other, const std::vector<int>& rows);

  signals:
    // A person double-clicked a row.
    void rowDoubleClicked(int row);

  private:
    QListWidgetItem& rowItem(int row) const;
};

}  // namespace ui
