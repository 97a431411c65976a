#include "ui/widgets/limitedNumberBox.h"

#include <QKeyEvent>
#include <QLineEdit>

#include "platform/failure.h"
#include "ui/base/text.h"
#include "ui/widgets/leaveGuard.h"

namespace ui {

LimitedNumberBox::LimitedNumberBox(int lowest, int highest, QWidget* parent)
    : QSpinBox(parent), limits_(new LimitsSign(lowest, highest, parent)) {
    setRange(lowest, highest);
    setCorrectionMode(QAbstractSpinBox::CorrectToPreviousValue);
    setAccessibleDescription(limits_->limits());

    connect(lineEdit(), &QLineEdit::inputRejected, this, [this] { limits_->showRefusal(true); });
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { limits_->showRefusal(false); });
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
    limits_->showRefusal(true);
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

}  // namespace ui
