#include "ui/shell/cTooltip.h"

#include <QAbstractScrollArea>
#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QScreen>
#include <QToolTip>

#include "ui/base/text.h"

namespace {

// The widget under the pointer: a scrolling control's viewport lies over the control itself.
QWidget* receiver(const QWidget* control) {
    auto* area = qobject_cast<const QAbstractScrollArea*>(control);
    return area ? area->viewport() : const_cast<QWidget*>(control);
}

QColor fromNumber(long color) {
    return QColor(static_cast<int>(color & 0xFF), static_cast<int>((color >> 8) & 0xFF),
                  static_cast<int>((color >> 16) & 0xFF));
}

}  // namespace

cTooltip::cTooltip(QObject* parent) : QObject(parent) {
    wait_.setSingleShot(true);
    pop_.setSingleShot(true);
    connect(&wait_, &QTimer::timeout, this, [this] { show(QCursor::pos()); });
    connect(&pop_, &QTimer::timeout, this, &cTooltip::hide);
}

cTooltip::~cTooltip() = default;

bool cTooltip::Create(QWidget* owner) {
    if (!tip_) {
        tip_ = std::make_unique<QLabel>(owner, Qt::ToolTip);
        tip_->setObjectName("tooltip");
        tip_->setTextFormat(Qt::PlainText);
        tip_->setPalette(QToolTip::palette());
        tip_->setFont(QToolTip::font());
        tip_->setAutoFillBackground(true);
        tip_->setFrameStyle(QFrame::Box | QFrame::Plain);
        tip_->setLineWidth(1);
        constexpr int breathing = 4;  // within the margins that a caller sets
        tip_->setMargin(breathing);
        tip_->setAttribute(Qt::WA_ShowWithoutActivating);
        // The owner would delete its child window before this object is done with it.
        connect(owner, &QObject::destroyed, this, [this] { static_cast<void>(tip_.release()); });
        for (int side = 0; side < 4; ++side)
            setMargin(side, margins_[static_cast<std::size_t>(side)]);
    }
    return true;
}

const cTooltip::Tool* cTooltip::findTool(const QWidget* control) const {
    for (const Tool& tool : tools_)
        if (tool.control == receiver(control))
            return &tool;
    return nullptr;
}

cTooltip::Tool* cTooltip::findTool(const QWidget* control) {
    return const_cast<Tool*>(std::as_const(*this).findTool(control));
}

bool cTooltip::AddTool(QWidget* control, const std::string& text) {
    if (!tip_ || findTool(control))
        return false;
    QWidget* target = receiver(control);
    tools_.push_back({target, text.empty() ? "Tool" + std::to_string(tools_.size() + 1) : text});
    target->installEventFilter(this);
    connect(target, &QObject::destroyed, this, [this](QObject* gone) {
        std::erase_if(tools_, [gone](const Tool& t) { return t.control == gone; });
    });
    return true;
}

bool cTooltip::RemoveTool(QWidget* control) {
    Tool* tool = tip_ ? findTool(control) : nullptr;
    if (!tool)
        return false;
    tool->control->removeEventFilter(this);
    if (hovered_ == tool->control)
        hide();
    tools_.erase(tools_.begin() + (tool - tools_.data()));
    return true;
}

long cTooltip::BackColor() const {
    if (!tip_)
        return 0;
    const QColor color = tip_->palette().color(QPalette::Window);
    return color.red() | color.green() << 8 | color.blue() << 16;
}

void cTooltip::setBackColor(long color) {
    if (!tip_)
        return;
    QPalette palette = tip_->palette();
    palette.setColor(QPalette::Window, fromNumber(color));
    tip_->setPalette(palette);
}

int cTooltip::DelayTime(long which) const {
    return tip_ ? delays_[static_cast<std::size_t>(which & 3)] : 0;
}

void cTooltip::setDelayTime(long which, int milliseconds) {
    if (!tip_)
        return;
    delays_[static_cast<std::size_t>(which & 3)] = milliseconds;
    if ((which & 3) == delayAutomatic) {
        // One number sets all three in the system's proportions.
        delays_[delayInitial] = milliseconds;
        delays_[delayReshow] = milliseconds / 5;
        delays_[delayAutoPop] = milliseconds * 10;
    }
}

long cTooltip::ForeColor() {
    setForeColor(0);
    return 0;
}

void cTooltip::setForeColor(long color) {
    if (!tip_)
        return;
    QPalette palette = tip_->palette();
    palette.setColor(QPalette::WindowText, fromNumber(color));
    tip_->setPalette(palette);
}

WId cTooltip::hWnd() const {
    return tip_ ? tip_->winId() : 0;
}

int cTooltip::Margin(int side) const {
    return tip_ && side >= 0 && side < 4 ? margins_[static_cast<std::size_t>(side)] : 0;
}

void cTooltip::setMargin(int side, int margin) {
    if (!tip_ || side < 0 || side > 3)
        return;
    margins_[static_cast<std::size_t>(side)] = margin;
    tip_->setContentsMargins(margins_[0], margins_[1], margins_[2], margins_[3]);
}

long cTooltip::MaxTipWidth() const {
    return tip_ ? maxTipWidth_ & 0xFFFF : 0;
}

void cTooltip::setMaxTipWidth(long width) {
    if (tip_)
        maxTipWidth_ = width < 1 ? -1 : width;
}

long cTooltip::ToolCount() const {
    return tip_ ? static_cast<long>(tools_.size()) : 0;
}

std::string cTooltip::ToolText(const QWidget* control) const {
    const Tool* tool = tip_ ? findTool(control) : nullptr;
    return tool ? tool->text.substr(0, tool->text.find('\0')) : std::string();
}

void cTooltip::setToolText(QWidget* control, const std::string& text) {
    Tool* tool = tip_ ? findTool(control) : nullptr;
    if (!tool)
        return;
    tool->text = text;
    if (hovered_ != tool->control)
        return;
    // The pointer went on to something else of the same control: its tip comes after a pause of its own.
    tip_->hide();
    pop_.stop();
    wait_.start(delays_[delayInitial]);
}

bool cTooltip::isTipVisible() const {
    return tip_ && tip_->isVisible();
}

bool cTooltip::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::Enter:
            hovered_ = qobject_cast<QWidget*>(watched);
            wait_.start(delays_[delayInitial]);
            break;
        case QEvent::MouseMove:
            if (hovered_ != watched) {
                hovered_ = qobject_cast<QWidget*>(watched);
                wait_.start(delays_[delayInitial]);
            }
            break;
        case QEvent::Leave:
        case QEvent::MouseButtonPress:
        case QEvent::Wheel:
        case QEvent::Hide:
            hide();
            break;
        case QEvent::ToolTip: {
            // This window stands in for the control's own tip. What is asked for where the pointer is not was
            // asked for by a key, and comes at once.
            const QPoint place = static_cast<QHelpEvent*>(event)->globalPos();
            if (place != QCursor::pos()) {
                hovered_ = qobject_cast<QWidget*>(watched);
                show(place);
            }
            return true;
        }
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

void cTooltip::show(const QPoint& pointed) {
    wait_.stop();
    const auto found =
        std::find_if(tools_.begin(), tools_.end(), [this](const Tool& t) { return t.control == hovered_; });
    if (!tip_ || found == tools_.end() || found->text.empty())
        return;
    const QString text = ui::fromUtf8(found->text.substr(0, found->text.find('\0')));
    if (text.trimmed().isEmpty())
        return;
    tip_->setWordWrap(false);
    tip_->setMaximumWidth(QWIDGETSIZE_MAX);
    tip_->setText(text);
    if (maxTipWidth_ > 0 && tip_->sizeHint().width() > maxTipWidth_) {
        tip_->setWordWrap(true);
        tip_->setFixedWidth(static_cast<int>(maxTipWidth_));
    } else {
        tip_->setMinimumWidth(0);
    }
    tip_->adjustSize();
    QPoint place = pointed + QPoint(2, 20);
    if (const QScreen* screen = QGuiApplication::screenAt(pointed)) {
        const QRect area = screen->availableGeometry();
        place.setX(std::max(area.left(), std::min(place.x(), area.right() - tip_->width())));
        if (place.y() + tip_->height() > area.bottom())
            place.setY(pointed.y() - tip_->height() - 4);
    }
    tip_->move(place);
    tip_->show();
    pop_.start(delays_[delayAutoPop]);
}

void cTooltip::hide() {
    wait_.stop();
    pop_.stop();
    if (tip_)
        tip_->hide();
    hovered_ = nullptr;
}
