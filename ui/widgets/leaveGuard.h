// A question before the focus leaves a control.
#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace ui {

class LeaveGuard : public QObject {
  public:
    enum class Answer { leave, leaveAfterQuestion, stay };

    // `ask` runs each time the focus would move on to another control of the window. It may show a box; the
    // press of a mouse button that moved the focus is then used up and presses nothing. The parent shall be
    // whoever `ask` belongs to.
    LeaveGuard(QWidget& control, std::function<Answer()> ask, QObject* parent);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget& control_;
    std::function<Answer()> ask_;
    bool asking_ = false;
};

}  // namespace ui
