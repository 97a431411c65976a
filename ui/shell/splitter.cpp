#include "ui/shell/splitter.h"

#include <QFrame>
#include <QMouseEvent>
#include <algorithm>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/twips.h"

namespace {

constexpr char module[] = "frmMain";
// In twips.
constexpr int hitAreaWidth = 90;
constexpr int dragMargin = 500;
constexpr int barShortfall = 20;  // by which the bar is lower than the hit area

}  // namespace

Splitter::Splitter(QWidget& client) : QObject(&client), client_(client) {
    imgSplitter_ = ui::makeControl<QFrame>(&client, "imgSplitter");
    imgSplitter_->setCursor(Qt::SplitHCursor);
    imgSplitter_->installEventFilter(this);
    picSplitter_ = ui::makeControl<QFrame>(&client, "picSplitter");
    picSplitter_->setAutoFillBackground(true);
    picSplitter_->setBackgroundRole(QPalette::Highlight);
    picSplitter_->setAttribute(Qt::WA_TransparentForMouseEvents);
    picSplitter_->hide();
}

void Splitter::place(int left, int top, int height) {
    left_ = left;
    imgSplitter_->setGeometry(ui::pixels(left), top, ui::pixels(hitAreaWidth), height);
    // The hit area is wider than the gap; it lies over the panes' empty margin.
    imgSplitter_->raise();
}

bool Splitter::eventFilter(QObject* watched, QEvent* event) {
    const auto mouse = [&]() -> const QMouseEvent& { return *static_cast<QMouseEvent*>(event); };
    if (watched != imgSplitter_)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            if (mouse().button() == Qt::LeftButton)
                imgSplitter_MouseDown();
            break;
        case QEvent::MouseMove:
            imgSplitter_MouseMove(ui::twips(mouse().position().toPoint().x()));
            break;
        case QEvent::MouseButtonRelease:
            if (mouse().button() == Qt::LeftButton)
                imgSplitter_MouseUp();
            break;
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

void Splitter::imgSplitter_MouseDown() {
    core::procedure(module, "imgSplitter_MouseDown", [&](core::Frame&) {
        const QRect area = imgSplitter_->geometry();
        picSplitter_->setGeometry(area.left(), area.top(), area.width() / 2,
                                  area.height() - ui::pixels(barShortfall));
        picSplitter_->raise();
        picSplitter_->show();
        moving_ = true;
    });
}

void Splitter::imgSplitter_MouseMove(int pointerX) {
    if (!moving_)
        return;
    core::procedure(module, "imgSplitter_MouseMove", [&](core::Frame&) {
        // Required: the bar may go further out than the layout, which springs back to its own limit.
        const int limit = ui::twips(client_.window()->width()) - dragMargin;
        picSplitter_->move(ui::pixels(std::max(dragMargin, std::min(left_ + pointerX, limit))),
                           picSplitter_->y());
    });
}

void Splitter::imgSplitter_MouseUp() {
    if (!moving_)
        return;
    core::procedure(module, "imgSplitter_MouseUp", [&](core::Frame&) {
        emit moved(ui::twips(picSplitter_->x()));
        picSplitter_->hide();
        moving_ = false;
    });
}
