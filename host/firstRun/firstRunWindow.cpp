#include "host/firstRun/firstRunWindow.h"

#include <QCommandLinkButton>
#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace firstRun {

FirstRunWindow::FirstRunWindow(QString tree, const Texts& texts)
    : tree_(std::move(tree)),
      texts_(texts),
      question_(new QLabel(texts.question)),
      told_(new QPlainTextEdit),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Cancel)) {
    setWindowTitle(texts.title);
    setWindowIcon(QIcon(":/icons/console.svg"));
    auto* const layout = new QVBoxLayout(this);
    QFont heading = question_->font();
    heading.setPointSizeF(heading.pointSizeF() * 1.3);
    question_->setFont(heading);
    question_->setWordWrap(true);
    layout->addWidget(question_);
    layout->addWidget(addChoice(texts.thisMachine, texts.thisMachineMeans, Choice::thisMachine));
    layout->addWidget(addChoice(texts.demonstration, texts.demonstrationMeans, Choice::demonstration));
    told_->setReadOnly(true);
    told_->setTabChangesFocus(true);
    told_->setAccessibleName(texts.title);
    told_->hide();
    layout->addWidget(told_, 1);
    layout->addStretch();
    layout->addWidget(buttons_);
    buttons_->button(QDialogButtonBox::Cancel)->setText(texts.cancel);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    setMinimumWidth(fontMetrics().averageCharWidth() * 72);
    resize(minimumWidth(), layout->heightForWidth(minimumWidth()));
}

QCommandLinkButton* FirstRunWindow::addChoice(const char* caption, const char* meaning, Choice choice) {
    auto* const button = new QCommandLinkButton(caption, meaning);
    button->setAccessibleDescription(meaning);
    connect(button, &QCommandLinkButton::clicked, this, [this, choice] { choose(choice); });
    choices_.append(button);
    return button;
}

void FirstRunWindow::choose(Choice choice) {
    question_->setText(texts_.making);
    for (QCommandLinkButton* const each : std::as_const(choices_))
        each->setEnabled(false);
    buttons_->setEnabled(false);
    setCursor(Qt::BusyCursor);
    worker_.post([this, choice, tree = tree_] {
        const Outcome outcome = makeHost(choice, tree, texts_);
        viewer::inWindow(this, [this, outcome] { tell(outcome); });
    });
}

void FirstRunWindow::tell(const Outcome& outcome) {
    unsetCursor();
    question_->setText(outcome.isMade ? texts_.title : texts_.failed);
    for (QCommandLinkButton* const each : std::as_const(choices_))
        each->hide();
    told_->setPlainText(outcome.told);
    told_->show();
    buttons_->setEnabled(true);
    if (outcome.isMade) {
        QPushButton* const start = buttons_->addButton(texts_.startConsole, QDialogButtonBox::AcceptRole);
        start->setDefault(true);
        start->setFocus();
        buttons_->button(QDialogButtonBox::Cancel)->hide();
    }
    const QFontMetrics metrics(told_->font());
    told_->setMinimumHeight(metrics.lineSpacing() * 24);
    resize(qMax(width(), metrics.averageCharWidth() * 110), sizeHint().height());
}

}  // namespace firstRun
