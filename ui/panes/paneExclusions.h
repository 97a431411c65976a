// Pane 6: all exclusions in a grid.
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace ui {
class KeyedGrid;
}

class paneExclusions : public QWidget {
    Q_OBJECT

  public:
    explicit paneExclusions(QWidget* parent);

    // Refills the grid from the database.
    void displayAllExclusions();
    // Sets the captions.
    void controlInit();

  signals:
    void newExclusionWanted();
    // An exclusion was deleted: the tree and this grid are out of date.
    void exclusionDeleted();

  private:
    void resizeAllExclusionsGrid();
    void vsflexgridAllExclusions_Click();
    void cmdDeleteSelectedExclusion_Click();

    QLabel* lblAllExclusions;
    ui::KeyedGrid* vsflexgridAllExclusions;
    QPushButton* cmdCreateNewExclusion;
    QPushButton* cmdDeleteSelectedExclusion;
};
