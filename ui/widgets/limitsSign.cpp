#include "ui/widgets/limitsSign.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

namespace ui {

LimitsSign::LimitsSign(long long lowest, long long highest, QWidget* parent)
    : QWidget(parent), sign_(new QLabel(this)), text_(new QLabel(this)) {
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    sign_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    sign_->setAccessibleName("!");
    QSizePolicy keep = sign_->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    sign_->setSizePolicy(keep);
    text_->setText(QString::fromUtf8("%1 \xe2\x80\x93 %2").arg(lowest).arg(highest));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(sign_);
    row->addWidget(text_);
    row->addStretch();
    sign_->hide();
}

QString LimitsSign::limits() const {
    return text_->text();
}

void LimitsSign::showRefusal(bool refused) {
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
