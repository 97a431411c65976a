#include "ui/widgets/findBar.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <utility>

#include "ui/base/controls.h"

namespace ui {

FindBar::FindBar(const FindTexts& texts, Target target, QWidget* parent)
    : QWidget(parent), texts_(texts), target_(std::move(target)), row_(new QHBoxLayout(this)) {
    setObjectName("findBar");
    createControls();
    setTexts(texts);
    setTarget(target_);
    connect(cmdNext_, &QPushButton::clicked, this, [this] { search(Step::next); });
    connect(cmdPrevious_, &QPushButton::clicked, this, [this] { search(Step::previous); });
    connect(txtFind_, &QLineEdit::textChanged, this, &FindBar::type);
    connect(chkOnlyMatches_, &QCheckBox::toggled, this, &FindBar::type);
}

std::vector<QShortcut*> FindBar::takeStepKeys() {
    std::vector<QShortcut*> keys;
    for (const auto& [key, step] : {std::pair{QKeySequence(Qt::Key_F3), Step::next},
                                    {QKeySequence(Qt::SHIFT | Qt::Key_F3), Step::previous}}) {
        keys.push_back(new QShortcut(key, window()));
        connect(keys.back(), &QShortcut::activated, this, [this, which = step] { search(which); });
    }
    return keys;
}

void FindBar::takeKeys() {
    takeStepKeys();
    connect(new QShortcut(QKeySequence::Find, window()), &QShortcut::activated, this, &FindBar::focusLine);
}

void FindBar::createControls() {
    row_->setContentsMargins(0, 0, 0, 0);
    lblFind_ = makeControl<QLabel>(this, "lblFind");
    txtFind_ = makeControl<QLineEdit>(this, "txtFind");
    txtFind_->setClearButtonEnabled(true);
    txtFind_->setMaximumWidth(320);
    txtFind_->installEventFilter(this);
    lblFind_->setBuddy(txtFind_);
    cmdNext_ = makeControl<QPushButton>(this, "cmdNext");
    cmdPrevious_ = makeControl<QPushButton>(this, "cmdPrevious");
    for (QPushButton* button : {cmdNext_, cmdPrevious_})
        button->setAutoDefault(false);
    chkOnlyMatches_ = makeControl<QCheckBox>(this, "chkOnlyMatches");
    lblResult_ = makeControl<QLabel>(this, "lblResult");
    lblResult_->setTextFormat(Qt::PlainText);
    // A long text asks for no wider window; its tip has the whole of it.
    lblResult_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    txtFind_->setMinimumWidth(txtFind_->fontMetrics().averageCharWidth() * 16);
    lblHidden_ = makeControl<QLabel>(this, "lblHidden");
    lblHidden_->setTextFormat(Qt::PlainText);
    lblHidden_->setBackgroundRole(QPalette::Highlight);
    lblHidden_->setForegroundRole(QPalette::HighlightedText);
    lblHidden_->setAutoFillBackground(true);
    lblHidden_->setMargin(3);
    lblHidden_->hide();
    row_->addWidget(lblFind_);
    row_->addWidget(txtFind_, 2);
    row_->addWidget(cmdNext_);
    row_->addWidget(cmdPrevious_);
    row_->addWidget(chkOnlyMatches_);
    row_->addWidget(lblHidden_);
    row_->addWidget(lblResult_, 1);
}

void FindBar::setTexts(const FindTexts& texts) {
    texts_ = texts;
    const auto caption = [this](const char* text) {
        return hasMnemonics_ ? QString(text) : QString(text).remove('&');
    };
    lblFind_->setText(caption(texts.find));
    cmdNext_->setText(caption(texts.next));
    cmdPrevious_->setText(caption(texts.previous));
    chkOnlyMatches_->setText(caption(texts.onlyMatches));
    nameLine();
}

void FindBar::dropMnemonics() {
    hasMnemonics_ = false;
    setTexts(texts_);
}

void FindBar::setTarget(Target target) {
    target_ = std::move(target);
    chkOnlyMatches_->setVisible(static_cast<bool>(target_.filter));
}

void FindBar::setSubject(const QString& subject) {
    subject_ = subject;
    nameLine();
}

void FindBar::nameLine() {
    const QString name = plainCaption(texts_.find);
    txtFind_->setAccessibleName(subject_.isEmpty() ? name : name + ": " + subject_);
}

void FindBar::append(QWidget* control) {
    row_->addWidget(control);
}

void FindBar::focusLine() {
    txtFind_->setFocus(Qt::ShortcutFocusReason);
    txtFind_->selectAll();
}

void FindBar::finish() {
    txtFind_->clear();
    chkOnlyMatches_->setChecked(false);
    lblResult_->clear();
}

QString FindBar::text() const {
    return txtFind_->text();
}

QString FindBar::filterText() const {
    return chkOnlyMatches_->isChecked() ? txtFind_->text() : QString();
}

void FindBar::type() {
    if (target_.filter)
        target_.filter(filterText());
    lblResult_->clear();
    if (!text().isEmpty())
        search(Step::typed);
}

void FindBar::search(Step step) {
    if (text().isEmpty()) {
        focusLine();
        return;
    }
    if (const auto found = target_.find(text(), step))
        showFound(*found);
}

void FindBar::showFound(bool found) {
    lblResult_->setText(found ? QString() : QString(texts_.notFound).arg(text()));
    lblResult_->setToolTip(lblResult_->text());
}

void FindBar::showCounts(qsizetype shown, qsizetype all) {
    const bool hides = shown < all;
    lblHidden_->setText(hides ? QString(texts_.hidden).arg(QLocale().toString(shown), QLocale().toString(all))
                              : QString());
    lblHidden_->setVisible(hides);
}

bool FindBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(object, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() != Qt::Key_Return && key.key() != Qt::Key_Enter)
        return QWidget::eventFilter(object, event);
    // Not the window's default button.
    search(key.modifiers() & Qt::ShiftModifier ? Step::previous : Step::next);
    return true;
}

// What no control of the bar wants. A dialog would close at this key.
void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QWidget::keyPressEvent(event);
        return;
    }
    finish();
    target_.leave();
}

}  // namespace ui
