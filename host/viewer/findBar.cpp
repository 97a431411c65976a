#include "host/viewer/findBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <utility>

namespace viewer {

FindBar::FindBar(const Texts& texts, Find find, QWidget* parent)
    : QWidget(parent), texts_(texts), find_(std::move(find)), row_(new QHBoxLayout(this)) {
    row_->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(texts.find, this);
    txtFind_ = new QLineEdit(this);
    txtFind_->setObjectName("txtFind");
    txtFind_->setAccessibleName(QString(texts.find).remove('&').remove(':').trimmed());
    txtFind_->setClearButtonEnabled(true);
    txtFind_->setMaximumWidth(320);
    label->setBuddy(txtFind_);
    auto* cmdNext = new QPushButton(texts.next, this);
    cmdNext->setObjectName("cmdNext");
    auto* cmdPrevious = new QPushButton(texts.previous, this);
    cmdPrevious->setObjectName("cmdPrevious");
    lblResult_ = new QLabel(this);
    lblResult_->setObjectName("lblResult");
    lblResult_->setTextFormat(Qt::PlainText);
    row_->addWidget(label);
    row_->addWidget(txtFind_, 1);
    row_->addWidget(cmdNext);
    row_->addWidget(cmdPrevious);
    row_->addWidget(lblResult_, 1);

    connect(cmdNext, &QPushButton::clicked, this, [this] { search(false); });
    connect(cmdPrevious, &QPushButton::clicked, this, [this] { search(true); });
    connect(txtFind_, &QLineEdit::returnPressed, this, [this] { search(false); });
    const auto onKey = [this](const QKeySequence& key, auto action) {
        connect(new QShortcut(key, window()), &QShortcut::activated, this, action);
    };
    onKey(QKeySequence::Find, [this] {
        txtFind_->setFocus();
        txtFind_->selectAll();
    });
    onKey(Qt::Key_F3, [this] { search(false); });
    onKey(Qt::SHIFT | Qt::Key_F3, [this] { search(true); });
}

void FindBar::append(QWidget* control) {
    row_->addWidget(control);
}

void FindBar::search(bool backwards) {
    const QString text = txtFind_->text();
    if (text.isEmpty()) {
        txtFind_->setFocus();
        return;
    }
    lblResult_->setText(find_(text, backwards) ? QString() : QString(texts_.notFound).arg(text));
}

}  // namespace viewer
