#include "ui/widgets/limitedNumberBox.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

#include "platform/failure.h"
#include "ui/text.h"
#include "ui/widgets/leaveGuard.h"

namespace ui {

LimitedNumberBox::LimitedNumberBox(int lowest, int highest, QWidget* parent)
    : QSpinBox(parent), limits_(new QWidget(parent)) {
    setRange(lowest, highest);
    setCorrectionMode(QAbstractSpinBox::CorrectToPreviousValue);
    sign_ = new QLabel(limits_);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    sign_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    QSizePolicy keep = sign_->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    sign_->setSizePolicy(keep);
    text_ = new QLabel(QString::fromUtf8("%1 \xe2\x80\x93 %2").arg(lowest).arg(highest), limits_);
    auto* row = new QHBoxLayout(limits_);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(sign_);
    row->addWidget(text_);
    row->addStretch();
    sign_->hide();
    setAccessibleDescription(text_->text());

    connect(lineEdit(), &QLineEdit::inputRejected, this, [this] { showRefusal(true); });
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { showRefusal(false); });
    // A press that would leave the box shows the refusal first and does nothing else.
    new LeaveGuard(
        *this,
        [this] { return settle() ? LeaveGuard::Answer::leave : LeaveGuard::Answer::leaveAfterQuestion; },
        this);
}

void LimitedNumberBox::setStoredNumber(const std::string& text) {
    bool isNumber = false;
    const int number = fromUtf8(text).toInt(&isNumber);
    if (!isNumber)
        throw platform::makeFailure(platform::typeMismatch, text);
    if (number < minimum() || number > maximum())
        throw platform::makeFailure(platform::overflow, text);
    setValue(number);
}

bool LimitedNumberBox::settle() {
    if (lineEdit()->hasAcceptableInput())
        return true;
    setValue(value());
    showRefusal(true);
    return false;
}

void LimitedNumberBox::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !settle()) {
        event->accept();  // the window's default button must not take it
        return;
    }
    QSpinBox::keyPressEvent(event);
}

void LimitedNumberBox::showRefusal(bool refused) {
    refuses_ = refused;
    sign_->setVisible(refused);
    QFont font = text_->font();
    font.setBold(refused);
    text_->setFont(font);
    if (!refused)
        return;
    QApplication::beep();
    QAccessibleEvent alert(text_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

}  // namespace ui
