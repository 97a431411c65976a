// One line of status while a service is started, stopped or removed.
#pragma once

#include <QWidget>
#include <optional>

class QFrame;
class QLabel;
class QTimer;

class frmSplash : public QWidget {
    Q_OBJECT

  public:
    frmSplash();

    // Shows the line, painted before this returns. It stays, or with a delay in seconds goes by itself.
    void splashOn(const QString& status, std::optional<short> delay = std::nullopt);
    // Harmless when the window is not up.
    void splashOff();

  private:
    void timerDelay_Timer();
    void placeInTheMiddle();

    QTimer* timerDelay;
    QFrame* Frame1;
    QLabel* lblStatus;
    short countdown_ = -1;
};
