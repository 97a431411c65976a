// Pane 7: one exclusion, whose id can be changed and whose source cannot.
#pragma once

#include <QWidget>

#include "ui/panes/editingPane.h"
#include "ui/parts/eventIdChoice.h"

namespace platform {
class Recordset;
}

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

class paneExclusionDetails : public QWidget, public EditingPane {
    Q_OBJECT

  public:
    explicit paneExclusionDetails(QWidget* parent);

    // Shows the exclusion with that key.
    Filled displayExclusion(long exclusionKey);
    void controlInit();

    std::optional<long> shownKey() const override { return shownKey_; }
    // Required: no window asks about an unapplied change, so leaving the node drops it without a question.
    bool isChanged() const override { return exclusionChanged_; }
    void save() override { cmdExclusionApply_Click(); }
    void discard() override { exclusionChanged_ = false; }
    void blank() override;

  signals:
    // The exclusion was written: the tree is out of date.
    void exclusionSaved(long exclusionKey);

  private:
    void buildLayout();
    void connectControls();
    void fillExclusion(const platform::Recordset& row);
    void optionEventId_Click(int index);
    void tdbnlSpecificEventId_Change();
    void cmdExclusionApply_Click();

    bool exclusionChanged_ = false;
    std::optional<long> shownKey_;  // of the exclusion that the pane was filled with

    QLabel* Label4;
    QLineEdit* txtExclusionSource;
    QGroupBox* Frame2;
    ui::EventIdControls id_;
    QPushButton* cmdExclusionApply;
};
