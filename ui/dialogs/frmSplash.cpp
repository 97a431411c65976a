#include "ui/dialogs/frmSplash.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QScreen>
#include <QTimer>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/loadedWindows.h"
#include "ui/base/paintingWait.h"
#include "ui/base/text.h"

namespace {

constexpr char module[] = "frmSplash";
constexpr int tickInterval = 1000;  // ms
constexpr int iconSize = 32;
constexpr int lowestWidth = 380;

}  // namespace

frmSplash::frmSplash() : QWidget(nullptr, Qt::SplashScreen | Qt::WindowStaysOnTopHint) {
    setObjectName("frmSplash");
    timerDelay = ui::makeControl<QTimer>(this, "timerDelay");
    Frame1 = ui::makeControl<QFrame>(this, "Frame1");
    Frame1->setFrameShape(QFrame::StyledPanel);
    lblStatus = ui::makeControl<QLabel>(Frame1, "lblStatus");
    lblStatus->setTextFormat(Qt::PlainText);
    auto* icon = ui::makeControl<QLabel>(Frame1, "picStatus");
    icon->setPixmap(QIcon(":/icons/console.svg").pixmap(iconSize, iconSize));

    auto* line = new QHBoxLayout(Frame1);
    line->setContentsMargins(24, 24, 32, 24);
    line->setSpacing(16);
    line->addWidget(icon);
    line->addWidget(lblStatus, 1);
    auto* whole = new QHBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(Frame1);
    setMinimumWidth(lowestWidth);
    connect(timerDelay, &QTimer::timeout, this, &frmSplash::timerDelay_Timer);
}

void frmSplash::splashOn(const QString& status, std::optional<short> delay) {
    core::procedure(module, "splashOn", [&](core::Frame& frame) {
        setWindowTitle(ui::text(1205));
        lblStatus->setText(status);
        ui::setFormFonts(*this);
        frame.step([&] {
            // A window that is up already would learn of a longer line only later.
            Frame1->layout()->activate();
            layout()->activate();
            adjustSize();
            placeInTheMiddle();
            show();
            raise();
            ui::paintBeforeGoingOn(*this);
        });
        timerDelay->stop();
        countdown_ = delay.value_or(-1);
        if (delay)
            timerDelay->start(tickInterval);
    });
}

void frmSplash::splashOff() {
    core::procedure(module, "splashOff", [&](core::Frame&) {
        timerDelay->stop();
        hide();
    });
}

void frmSplash::timerDelay_Timer() {
    core::procedure(module, "timerDelay_Timer", [&](core::Frame&) {
        if (countdown_ > 0)
            --countdown_;
        if (countdown_ == 0)
            splashOff();
    });
}

// Of the window in front, or of the screen while there is none.
void frmSplash::placeInTheMiddle() {
    const QWidget* window = ui::frontWindow();
    const QRect area = window && window != this ? window->frameGeometry() : screen()->availableGeometry();
    move(area.center() - rect().center());
}
