// Pane 7: one exclusion, whose id can be changed and whose source cannot.
#pragma once

#include <QWidget>

#include "ui/parts/eventIdChoice.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

class paneExclusionDetails : public QWidget {
    Q_OBJECT

  public:
    explicit paneExclusionDetails(QWidget* parent);

    // Shows the exclusion with that key; one that is gone leaves the controls blank.
    void displayExclusion(long exclusionKey);
    void controlInit();

    // The pane holds an unapplied change. No window asks about it: leaving the node drops the change without
    // a question, and that stays so.
    bool exclusionChanged = false;

  signals:
    // The exclusion was written: the tree is out of date.
    void exclusionSaved(long exclusionKey);

  private:
    void buildLayout();
    void connectControls();
    void fillExclusion(long exclusionKey);
    void optionEventId_Click(int index);
    void tdbnlSpecificEventId_Change();
    void cmdExclusionApply_Click();

    long exclusionKey_ = 0;  // of the exclusion that is shown, whose node is the selected one

    QLabel* Label4;
    QLineEdit* txtExclusionSource;
    QGroupBox* Frame2;
    ui::EventIdControls id_;
    QPushButton* cmdExclusionApply;
};
