#include "ui/dialogs/frmSplash.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <QtTest/QTest>

#include "platform/machine/clock.h"
#include "support/temporaryHost.h"
#include "ui/shell/windowServices.h"

namespace {

using std::chrono::milliseconds;

// Counts the paint events of a widget.
class Paints : public QObject {
  public:
    explicit Paints(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

class Splash : public ::testing::Test {
  protected:
    QLabel& status() { return *splash.findChild<QLabel*>("lblStatus"); }
    void tick() { QMetaObject::invokeMethod(timer(), "timeout", Qt::DirectConnection); }
    QTimer* timer() { return splash.findChild<QTimer*>("timerDelay"); }

    support::TemporaryHost host;
    frmSplash splash;
};

TEST_F(Splash, IsPaintedBeforeTheSlowCall) {
    Paints paints(status());
    splash.splashOn("Starting QLN Service...");
    EXPECT_TRUE(splash.isVisible());
    EXPECT_GE(paints.count, 1);
    EXPECT_EQ(status().text(), "Starting QLN Service...");
    EXPECT_FALSE(timer()->isActive());
    for (int i = 0; i < 5; ++i)
        tick();
    EXPECT_TRUE(splash.isVisible()) << "without a delay it stays";
    splash.splashOff();
    EXPECT_FALSE(splash.isVisible());
    splash.splashOff();
}

TEST_F(Splash, GoesAfterItsDelayAndObeysTheLaterCall) {
    splash.splashOn("first", 3);
    EXPECT_TRUE(timer()->isActive());
    EXPECT_EQ(timer()->interval(), 1000);
    tick();
    tick();
    EXPECT_TRUE(splash.isVisible());
    tick();
    EXPECT_FALSE(splash.isVisible());
    EXPECT_FALSE(timer()->isActive());

    splash.splashOn("first", 1);
    splash.splashOn("second");
    EXPECT_EQ(status().text(), "second");
    const QString longLine = "A line that needs more room than the one before";
    splash.splashOn(longLine);
    EXPECT_GE(status().width(), status().fontMetrics().horizontalAdvance(longLine));
    tick();
    EXPECT_TRUE(splash.isVisible());
    splash.splashOn("third", 1);
    tick();
    EXPECT_FALSE(splash.isVisible());
}

TEST(PaintingWait, PaintsAndTakesNoInput) {
    const ui::WindowServices services;
    QPushButton button("wait");
    button.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&button));
    Paints paints(button);
    bool closedWhileWaiting = false;
    QTimer::singleShot(20, &button, [&] {
        button.setText("painted meanwhile");
        // As the window system asks for it.
        button.windowHandle()->close();
        closedWhileWaiting = !button.isVisible();
    });
    const auto start = std::chrono::steady_clock::now();
    platform::clock().sleep(milliseconds(200));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(200));
    EXPECT_GE(paints.count, 1);
    EXPECT_FALSE(closedWhileWaiting);
    button.windowHandle()->close();
    EXPECT_FALSE(button.isVisible()) << "afterwards it closes";
}

}  // namespace
