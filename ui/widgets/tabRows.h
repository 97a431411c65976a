// Pages behind tabs that stand in rows of a fixed number, all tabs of one width. A tab that is not visible
// leaves its place to the next one, but keeps its index.
#pragma once

#include <QWidget>
#include <vector>

class QAbstractButton;
class QButtonGroup;
class QGridLayout;
class QStackedWidget;

namespace ui {

class TabRows : public QWidget {
    Q_OBJECT

  public:
    explicit TabRows(int tabsPerRow, QWidget* parent = nullptr);

    // Takes the page over and returns its index.
    int addTab(QWidget* page);
    int count() const { return static_cast<int>(tabs_.size()); }
    void setTabText(int index, const QString& text);
    QString tabText(int index) const;
    void setTabVisible(int index, bool visible);
    bool isTabVisible(int index) const;
    int currentIndex() const;
    void setCurrentIndex(int index);

    // Puts the tabs behind a control in the order of the Tab key and returns the last of them.
    QWidget* placeTabsBehind(QWidget* before);

  signals:
    void currentChanged(int index);

  private:
    void placeTabs();
    QAbstractButton& tab(int index) const { return *tabs_[static_cast<std::size_t>(index)]; }

    int tabsPerRow_;
    QWidget* strip_;
    QGridLayout* rows_;
    QButtonGroup* group_;
    QStackedWidget* pages_;
    std::vector<QAbstractButton*> tabs_;
    std::vector<bool> visible_;
};

}  // namespace ui
