// A box for one whole number within limits, which it shows beside itself. It refuses every other number, and
// says so: the limits stand out with a sign before them until the next number that it takes.
#pragma once

#include <QSpinBox>
#include <string>

#include "ui/widgets/limitsSign.h"

namespace ui {

class LimitedNumberBox : public QSpinBox {
    Q_OBJECT

  public:
    LimitedNumberBox(int lowest, int highest, QWidget* parent = nullptr);

    // What stands beside the box; to be laid out next to it.
    LimitsSign* limits() const { return limits_; }
    // Shows a stored number. Raises 13 for a text that is no number and 6 for one outside the limits; the box
    // keeps its number then.
    void setStoredNumber(const std::string& text);
    // False when a number outside the limits stands in the box; it gives way to the last one that was taken,
    // and the limits stand out.
    bool settle();
    bool refuses() const { return limits_->refuses(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    LimitsSign* limits_;
};

}  // namespace ui
