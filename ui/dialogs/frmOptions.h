// "Options": the service's settings and the default content of new events. It writes on OK and on Apply.
#pragma once

#include <QDialog>

class QCheckBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QTabWidget;

namespace ui {
class ContentGroup;
class LimitedNumberBox;
}  // namespace ui

class frmOptions : public QDialog {
    Q_OBJECT

  public:
    explicit frmOptions(QWidget* parent);

    Q_INVOKABLE void frmOptions_ControlInit();

  private:
    void createGeneralControls();
    void layOutGeneral(QWidget& page);
    void buildLayout();
    void connectControls();
    void Form_Load();
    void loadOptions();
    void saveOptions();
    bool leaveSubject(QWidget& next);
    void sstabOptions_Click(int tab);
    void cmdOk_Click();
    void cmdApply_Click();
    void cmdCancel_Click();

    QTabWidget* sstabOptions;
    QLabel* lblNotificationInterval;
    ui::LimitedNumberBox* tdbnumliteNoficationInterval;
    QLabel* lblEventlogPollingInterval;
    ui::LimitedNumberBox* tdbnumliteEventlogPollingInterval;
    QLabel* lblReportDataAging;
    ui::LimitedNumberBox* tdbnumliteReportDataAging;
    QCheckBox* chkWarnOnDuplicateMonitoredEvents;
    QCheckBox* chkMaxDiagnostics;
    ui::ContentGroup* content;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
    QPushButton* cmdApply;
};
