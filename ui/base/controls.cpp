#include "ui/base/controls.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

#include "ui/base/text.h"

namespace ui {

namespace {

class WheelGuard : public QObject {
  public:
    explicit WheelGuard(QWidget& control) : QObject(&control), control_(control) {}

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Wheel || control_.hasFocus())
            return false;
        event->ignore();  // the area around takes it
        return true;
    }

  private:
    QWidget& control_;
};

}  // namespace

void keepOnOneLine(QLineEdit& line) {
    // Told before the change is, so that no handler acts on the breaks.
    QObject::connect(&line, &QLineEdit::textEdited, &line, [&line](const QString& edited) {
        const QString single = onOneLine(edited);
        if (single == edited)
            return;
        const auto cursor = onOneLine(edited.left(line.cursorPosition())).size();
        line.setText(single);
        line.setCursorPosition(static_cast<int>(cursor));
    });
}

void fillCombo(QComboBox& combo, std::initializer_list<long> texts) {
    const int row = combo.currentIndex();
    const QSignalBlocker captionsAreNoChange(combo);
    combo.clear();
    for (long id : texts)
        combo.addItem(text(id));
    combo.setCurrentIndex(row < combo.count() ? row : -1);
}

bool setComboText(const QString& text, QComboBox& combo) {
    for (int row = 0; row < combo.count(); ++row)
        if (combo.itemText(row).startsWith(text, Qt::CaseInsensitive)) {
            combo.setCurrentIndex(row);
            return true;
        }
    return false;
}

QString plainCaption(QString caption) {
    caption.remove('&');
    if (caption.endsWith(':'))
        caption.chop(1);
    return caption.trimmed();
}

void nameByBuddy(QWidget& window) {
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->buddy())
            label->buddy()->setAccessibleName(plainCaption(label->text()));
}

void captionSign(QAbstractButton& button, const QString& sign, const QString& meaning, const QString& group) {
    button.setText(sign);
    button.setToolTip(meaning);
    button.setAccessibleName(meaning);
    button.setAccessibleDescription(plainCaption(group));
}

void ignoreWheelWithoutFocus(QComboBox& combo) {
    combo.setFocusPolicy(Qt::StrongFocus);
    combo.installEventFilter(new WheelGuard(combo));
}

QHBoxLayout* buttonRow(std::initializer_list<QWidget*> left, std::initializer_list<QWidget*> right) {
    auto* row = new QHBoxLayout;
    for (QWidget* control : left)
        row->addWidget(control);
    row->addStretch();
    for (QWidget* control : right)
        row->addWidget(control);
    return row;
}

void setTabOrder(std::initializer_list<QWidget*> controls) {
    QWidget* before = nullptr;
    for (QWidget* control : controls) {
        if (before)
            QWidget::setTabOrder(before, control);
        before = control;
    }
}

}  // namespace ui
