// Stands beside a box for a number and shows its limits. While a number is refused they stand out, with a
// sign before them.
#pragma once

#include <QWidget>

class QLabel;

namespace ui {

class LimitsSign : public QWidget {
    Q_OBJECT

  public:
    LimitsSign(long long lowest, long long highest, QWidget* parent = nullptr);

    QString limits() const;
    // A refusal is heard, too, each time that it is shown.
    void showRefusal(bool refused);
    bool refuses() const { return refuses_; }

  private:
    QLabel* sign_;
    QLabel* text_;
    bool refuses_ = false;
};

}  // namespace ui
