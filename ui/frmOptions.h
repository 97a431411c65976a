// "Options": the service's settings and the default content of new events. It writes on OK and on Apply.
#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

namespace ui {
class InsertionVariables;
class LimitedNumberBox;
class VariableTextBox;
}  // namespace ui

class frmOptions : public QDialog {
    Q_OBJECT

  public:
    explicit frmOptions(QWidget* parent);

    Q_INVOKABLE void frmOptions_ControlInit();

  private:
    void createGeneralControls();
    void createContentControls();
    void layOutGeneral(QWidget& page);
    void layOutContent(QWidget& page);
    void buildLayout();
    void connectControls();
    void Form_Load();
    void loadOptions();
    void saveOptions();
    bool leaveSubject(QWidget& next);
    void sstabOptions_Click(int tab);
    void cmdVoiceMailBrowse_Click();
    void cmdOk_Click();
    void cmdApply_Click();
    void cmdCancel_Click();

    // Stored values: 2 Urgent, 1 Normal, 0 Low, which the lists do not offer. A stored 0 chooses nothing and
    // so stays what it was.
    long voiceMailPriority_ = 0;
    long emailPriority_ = 0;

    QTabWidget* sstabOptions;
    QLabel* lblNotificationInterval;
    ui::LimitedNumberBox* tdbnumliteNoficationInterval;
    QLabel* lblEventlogPollingInterval;
    ui::LimitedNumberBox* tdbnumliteEventlogPollingInterval;
    QLabel* lblReportDataAging;
    ui::LimitedNumberBox* tdbnumliteReportDataAging;
    QCheckBox* chkWarnOnDuplicateMonitoredEvents;
    QCheckBox* chkMaxDiagnostics;
    QLabel* lblVoiceMailFilename;
    QLineEdit* txtVoiceMailFileName;
    QPushButton* cmdVoiceMailBrowse;
    QLabel* lblVoiceMailPriority;
    QComboBox* comboVoiceMailPriority;
    QLabel* lblEmailSubject;
    ui::VariableTextBox* rtbEmailSubject;
    QLabel* lblEmailBody;
    ui::VariableTextBox* rtbEmailBody;
    QLabel* lblEmailPriority;
    QComboBox* comboEmailPriority;
    QLabel* lblRightClick;
    ui::InsertionVariables* variables;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
    QPushButton* cmdApply;
};
