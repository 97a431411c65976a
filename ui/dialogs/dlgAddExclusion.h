// "Create New Exclusion": collects a source and an id. It writes nothing; the caller reads it after it
// closed.
#pragma once

#include <QDialog>
#include <string>

#include "ui/parts/eventIdChoice.h"

namespace ui {
class LimitsSign;
}

class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;

class dlgAddExclusion : public QDialog {
    Q_OBJECT

  public:
    explicit dlgAddExclusion(QWidget* parent);

    // Prepares the dialog and shows it modally; returns when it is closed.
    void displayForm();
    Q_INVOKABLE void dlgAddExclusion_ControlInit();

    // Read after displayForm. True when the dialog ended without OK.
    bool cancelled = true;
    std::string eventSource() const;
    bool allEventIds() const;
    const ui::NumberBox& specificEventId() const { return *id.tdbnlSpecificEventId; }

  private:
    void createControls();
    void buildLayout();
    void connectControls();
    void Form_Load();
    void updateOkButton();
    // `handler` is the name in the log of what noticed the choice.
    void noteChoice(const char* handler);
    void tdbnlSpecificEventId_Change();
    void cmdImportFromClipboard_Click();
    void cmdOk_Click();
    void cmdCancel_Click();

    QLabel* lblEventSource;
    QComboBox* comboEventSource;
    ui::LimitsSign* sourceLimits;
    ui::LimitsSign* idLimits;
    QGroupBox* Frame1;
    ui::EventIdControls id;
    QPushButton* cmdImportFromClipboard;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
