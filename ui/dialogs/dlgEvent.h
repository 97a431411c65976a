// "Add New Event": collects what a new monitored event needs. It writes nothing; the caller reads it after
// it closed.
#pragma once

#include <QDialog>

#include "database/events.h"
#include "ui/parts/eventIdChoice.h"

class QComboBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;

namespace ui {
class ContentGroup;
class LimitsSign;
}  // namespace ui

class dlgEvent : public QDialog {
    Q_OBJECT

  public:
    explicit dlgEvent(QWidget* parent);

    // Prepares the dialog and shows it modally; returns when it is closed.
    void displayForm();
    Q_INVOKABLE void dlgEvent_ControlInit();

    // Read after displayForm. True when the dialog ended without OK.
    bool cancelled = true;
    // What the controls hold, as a new event.
    mdlDatabase::NewEvent newEvent() const;

  private:
    void createControls();
    void buildLayout();
    QLayout* matchLayout();
    void connectControls();
    void Form_Load();
    void updateOkButton();
    void showWhetherIdFits();
    void comboEventSource_Click();
    void tdbnlSpecificEventId_Change();
    void optionEventId_Click(int index);
    void cmdOk_Click();
    void cmdCancel_Click();
    void cmdImportFromClipboard_Click();
    void cmdOpenEventViewer_Click();

    QLabel* lblEventSource;
    QComboBox* comboEventSource;
    QGroupBox* frameEventId;
    ui::EventIdControls id;
    ui::LimitsSign* idLimits;
    QLabel* lblEventType;
    QComboBox* comboEventType;
    QLabel* lblEventTitle;
    QLineEdit* txtEventTitle;
    QGroupBox* frameContent;
    ui::ContentGroup* content;
    QPushButton* cmdImportFromClipboard;
    QPushButton* cmdOpenEventViewer;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
