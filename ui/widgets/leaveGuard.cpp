#include "ui/widgets/leaveGuard.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QTimer>
#include <QWidget>
#include <utility>

namespace ui {

namespace {

// The press comes right after the change of the focus that it causes, in the same turn of the event loop.
class UsedUpPress : public QObject {
  public:
    explicit UsedUpPress(QObject* parent) : QObject(parent) {
        QCoreApplication::instance()->installEventFilter(this);
        QTimer::singleShot(0, this, &QObject::deleteLater);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::MouseButtonPress || !watched->isWidgetType())
            return false;
        QCoreApplication::instance()->removeEventFilter(this);
        event->accept();
        return true;
    }
};

// A change of window, or a menu, leaves the control as the window's own.
bool leavesForAnotherControl(Qt::FocusReason reason) {
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
           reason != Qt::MenuBarFocusReason && reason != Qt::NoFocusReason;
}

}  // namespace

LeaveGuard::LeaveGuard(QWidget& control, std::function<Answer()> ask, QObject* parent)
    : QObject(parent), control_(control), ask_(std::move(ask)) {
    control.installEventFilter(this);
}

bool LeaveGuard::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::FocusAboutToChange || asking_ || !control_.isVisible())
        return false;
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (!leavesForAnotherControl(reason))
        return false;
    asking_ = true;
    const Answer answer = ask_();
    asking_ = false;
    if (answer != Answer::leave && reason == Qt::MouseFocusReason)
        new UsedUpPress(this);
    // The move cannot be stopped, so it is taken back.
    if (answer == Answer::stay)
        QTimer::singleShot(0, &control_, [this] { control_.setFocus(); });
    return false;
}

}  // namespace ui
