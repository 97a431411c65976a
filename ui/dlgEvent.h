// "Add New Event": collects what a new monitored event needs. It writes nothing; the caller reads it after
// it closed.
#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "database/events.h"

class QComboBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace ui {
class InsertionVariables;
class NumberBox;
class VariableTextBox;
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
    long voiceMailPriority = 1;  // stored values: 2 Urgent, 1 Normal, 0 Low
    long emailPriority = 1;
    // What the controls hold, as a new event.
    mdlDatabase::NewEvent newEvent() const;

  private:
    void createControls();
    void createContentControls();
    void buildLayout();
    QLayout* matchLayout();
    QLayout* buttonsLayout();
    void layOutContent();
    void connectControls();
    void Form_Load();
    void fillSources();
    void fillContent();
    void updateOkButton();
    void comboEventSource_Click();
    void tdbnlSpecificEventId_Change();
    void optionEventId_Click(int index);
    void cmdOk_Click();
    void cmdCancel_Click();
    void cmdVoiceMailBrowse_Click();
    void cmdImportFromClipboard_Click();
    void cmdOpenEventViewer_Click();

    QLabel* lblEventSource;
    QComboBox* comboEventSource;
    QGroupBox* frameEventId;
    std::vector<QRadioButton*> optionEventId;
    ui::NumberBox* tdbnlSpecificEventId;
    QLabel* lblEventType;
    QComboBox* comboEventType;
    QLabel* lblEventTitle;
    QLineEdit* txtEventTitle;
    QGroupBox* frameContent;
    QLabel* lblVoiceMailFilename;
    QLineEdit* txtVoiceMailFileName;
    QPushButton* cmdVoiceMailBrowse;
    QLabel* lblVoiceMailPriority;
    QComboBox* comboVoiceMailPriority;
    QLabel* lblEmailSubject;
    ui::VariableTextBox* rtbEmailSubject;
    QLabel* Label1;
    ui::VariableTextBox* rtbEmailBody;
    QLabel* lblEmailPriority;
    QLabel* Label2;
    QComboBox* comboEmailPriority;
    ui::InsertionVariables* variables;
    QPushButton* cmdImportFromClipboard;
    QPushButton* cmdOpenEventViewer;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
};
