// "In the last 7 days": how often a monitored event would have matched, and how many notifications it would
// have meant.
#pragma once

#include <QDialog>
#include <atomic>
#include <memory>
#include <optional>

#include "host/eventViewer/daysCount.h"
#include "host/viewer/texts.h"
#include "host/viewer/worker.h"

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace viewer {

class BarChart;

class DaysDialog : public QDialog {
    Q_OBJECT

  public:
    DaysDialog(const Texts& texts, QWidget* parent);
    ~DaysDialog() override;

  private:
    void createControls();
    void layOut();
    void readEvents();
    void takeEvents(std::shared_ptr<const service::Monitoring> monitoring, const std::string& failure);
    void count();
    void cancel();
    void finish(const std::optional<service::Reckoning>& reckoning, const std::string& failure);
    void showDays(const service::Reckoning& reckoning);
    void enable();

    const Texts& texts_;
    QLabel* lblEvents_;
    QListWidget* listEvents_;
    QPushButton* cmdCount_;
    QPushButton* cmdCancel_;
    QProgressBar* progress_;
    QLabel* lblResult_;
    QTableWidget* tableDays_;
    BarChart* chart_;
    std::shared_ptr<const service::Monitoring> monitoring_;
    std::shared_ptr<std::atomic<bool>> isCancelled_ = std::make_shared<std::atomic<bool>>(false);
    bool isCounting_ = false;
    Worker worker_;
};

}  // namespace viewer
