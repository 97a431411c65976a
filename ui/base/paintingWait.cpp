#include "ui/base/paintingWait.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <functional>
#include <thread>

namespace ui {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The window system's request to close a window is no input to the toolkit, but to a person it is.
class RefuseClosing : public QObject {
  public:
    RefuseClosing() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Close || !event->spontaneous())
            return QObject::eventFilter(watched, event);
        event->ignore();
        return true;
    }
};

int waits = 0;

class CountedWait {
  public:
    CountedWait() { ++waits; }
    ~CountedWait() { --waits; }
    CountedWait(const CountedWait&) = delete;
    CountedWait& operator=(const CountedWait&) = delete;
};

void paintUntil(Clock::time_point deadline, const std::function<bool()>& done) {
    constexpr milliseconds pause(15);
    const RefuseClosing shield;
    const CountedWait counted;
    for (;;) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        const auto rest = deadline - Clock::now();
        if (rest <= Clock::duration::zero() || done())
            return;
        std::this_thread::sleep_for(std::min<Clock::duration>(rest, pause));
    }
}

}  // namespace

bool isWaitingPainted() {
    return waits > 0;
}

void waitPainting(milliseconds duration) {
    paintUntil(Clock::now() + duration, [] { return false; });
}

void paintBeforeGoingOn(QWidget& window) {
    constexpr milliseconds longest(500);
    paintUntil(Clock::now() + longest,
               [&] { return window.windowHandle() && window.windowHandle()->isExposed(); });
    window.repaint();
    const CountedWait counted;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace ui
