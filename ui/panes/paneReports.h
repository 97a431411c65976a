// Panes 4 and 5: reports of what the service has notified. No node of the tree leads here in this version; a
// node of the right type is all that they need.
#pragma once

#include <QWidget>
#include <string>
#include <vector>

class QDateTimeEdit;
class QGroupBox;
class QLabel;
class QPushButton;

namespace ui {
class RowGrid;
}

// The category pane holds its label alone.
class paneReportCategory : public QWidget {
    Q_OBJECT

  public:
    explicit paneReportCategory(QWidget* parent);
};

// One report: the rows of the notification log between two moments.
class paneReport : public QWidget {
    Q_OBJECT

  public:
    explicit paneReport(QWidget* parent);

    // Presets the filter to the last hour. The grid keeps its rows until the next filter.
    void openReport(const std::string& nodeText);
    void controlInit();

  private:
    void buildLayout();
    void cmdFilterByDate_Click();
    void loadReport(const std::string& nodeText,
                    const std::string& query = "SELECT * FROM NotificationLog ORDER BY LogKey");

    std::string nodeText_;  // of the report's node

    QLabel* lblReport;
    QGroupBox* Frame1;
    QLabel* lblDate;
    QLabel* lblTime;
    std::vector<QLabel*> lblBound;               // after the start, before the end
    std::vector<QDateTimeEdit*> dtpickerReport;  // start date, start time, end date, end time
    QPushButton* cmdFilterByDate;
    ui::RowGrid* vsflexgridReportData;
};
