#include "bench/driving.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>
#include <chrono>
#include <utility>

#include "bench/table.h"
#include "bench/workplace.h"

namespace bench {

namespace {

// Tells once that a widget has been painted.
class FirstPaint : public QObject {
  public:
    FirstPaint(QWidget& widget, std::function<void()> painted) : painted_(std::move(painted)) {
        widget.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            // The event only begins the painting.
            QTimer::singleShot(0, this, painted_);
        }
        return false;
    }

  private:
    std::function<void()> painted_;
};

}  // namespace

double pressKey(QWidget& widget, Qt::Key key, const QString& text) {
    const double seconds = secondsOf([&] {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(&widget, &press);
        QApplication::processEvents();
    });
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(&widget, &release);
    return seconds;
}

double scrollThrough(QAbstractScrollArea& view) {
    QScrollBar& bar = *view.verticalScrollBar();
    insist(bar.maximum() > bar.minimum(), "there is something to scroll");
    bar.setValue(bar.minimum());
    QApplication::processEvents();
    return secondsOf([&] {
        while (bar.value() < bar.maximum()) {
            bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
            QApplication::processEvents();
        }
    });
}

double openUntilPainted(QDialog& dialog, QWidget& viewport, const std::function<void()>& open) {
    const auto start = std::chrono::steady_clock::now();
    auto painted = start;
    const FirstPaint watch(viewport, [&] {
        painted = std::chrono::steady_clock::now();
        dialog.reject();
    });
    open();
    insist(painted != start, "the dialog was painted");
    return std::chrono::duration<double>(painted - start).count();
}

void insideDialog(QDialog& dialog, const std::function<void()>& open, const std::function<void()>& action) {
    bool done = false;
    const FirstPaint watch(dialog, [&] {
        action();
        done = true;
        dialog.reject();
    });
    open();
    insist(done, "the dialog was worked with");
}

}  // namespace bench
