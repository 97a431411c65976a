// "All Corvane Errors Exclusions": moves whole sources between those that the catch-all event minds and those
// that it leaves alone. OK rewrites the stored exclusions.
#pragma once

#include <QDialog>
#include <vector>

#include "core/procedure.h"

class QLabel;
class QPushButton;

namespace ui {
class TextList;
}

class dlgExclusions : public QDialog {
    Q_OBJECT

  public:
    explicit dlgExclusions(QWidget* parent);

    // Fills the lists and shows the dialog modally; on OK the store is rewritten when this returns.
    void displayForm();
    Q_INVOKABLE void dlgExclusions_ControlInit();

  private:
    void buildLayout();
    void Form_Load();
    void fillLists(core::Frame& frame);
    void cmdExclusionButtons_Click(int index);
    void lstAvailableSources_DblClick(int row);
    void lstExcludedSources_DblClick(int row);
    void cmdOk_Click();
    void cmdCancel_Click();

    QLabel* lblAvailableSources;
    ui::TextList* lstAvailableSources;
    QLabel* lblExcludedSources;
    ui::TextList* lstExcludedSources;
    std::vector<QPushButton*> cmdExclusionButtons;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
