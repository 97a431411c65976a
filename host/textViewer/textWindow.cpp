#include "host/textViewer/textWindow.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStatusBar>
#include <QTextBlock>
#include <QTimer>
#include <QVBoxLayout>

#include "platform/failure.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/widgets/findBar.h"

namespace viewer {

namespace {
constexpr int lookEvery = 500;  // ms
}

TextWindow::TextWindow(const std::filesystem::path& file, Language language)
    : texts_(texts(language)), file_(file) {
    setObjectName("notepad");
    setWindowIcon(QIcon(":/icons/textViewer.svg"));
    setWindowTitle(ui::fromUtf8(file.filename().string()) + " - " + texts_.textViewer);
    auto* all = new QWidget(this);
    auto* layout = new QVBoxLayout(all);
    txtFile_ = ui::makeControl<QPlainTextEdit>(all, "txtFile");
    txtFile_->setAccessibleName(ui::fromUtf8(file.filename().string()));
    txtFile_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtFile_->setReadOnly(true);
    // The oldest lines give way, however long the window stays open.
    constexpr int mostLines = 200'000;
    txtFile_->setMaximumBlockCount(mostLines);
    txtFile_->setUndoRedoEnabled(false);
    txtFile_->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtFile_->setTabChangesFocus(true);
    txtFile_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* findBar = new ui::FindBar(texts_.findBar,
                                    {[this](const QString& text, auto step) { return find(text, step); },
                                     {},
                                     [this] { txtFile_->setFocus(); }},
                                    all);
    chkFollow_ = ui::makeControl<QCheckBox>(findBar, "chkFollow");
    chkFollow_->setText(texts_.follow);
    findBar->append(chkFollow_);
    layout->addWidget(txtFile_, 1);
    layout->addWidget(findBar);
    setCentralWidget(all);
    findBar->takeKeys();
    resize(860, 620);

    takeNews();
    txtFile_->moveCursor(QTextCursor::Start);
    txtFile_->setFocus();
    if (file_.leftOut() > 0)
        statusBar()->addPermanentWidget(
            new QLabel(QString(texts_.beginningLeftOut).arg(file_.leftOut()), this));
    connect(chkFollow_, &QCheckBox::toggled, this, [this] { followEnd(); });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] { lookAgain(); });
    timer->start(lookEvery);
}

void TextWindow::lookAgain() {
    try {
        takeNews();
        statusBar()->clearMessage();
    } catch (const platform::Failure& failure) {
        statusBar()->showMessage(ui::fromUtf8(failure.description()));
    }
}

void TextWindow::takeNews() {
    for (;;) {
        const GrowingFile::News news = file_.look();
        append(news);
        if (news.bytes.empty())
            return;
    }
}

void TextWindow::append(const GrowingFile::News& news) {
    if (news.fromTheStart) {
        txtFile_->clear();
        decoder_.resetState();
    }
    if (news.bytes.empty())
        return;
    QScrollBar& bar = *txtFile_->verticalScrollBar();
    const int top = bar.value();
    QTextCursor end(txtFile_->document());
    end.movePosition(QTextCursor::End);
    end.insertText(QString(decoder_.decode(QByteArrayView(news.bytes))).remove('\r'));
    bar.setValue(top);
    followEnd();
}

void TextWindow::followEnd() {
    if (!chkFollow_->isChecked())
        return;
    QScrollBar& bar = *txtFile_->verticalScrollBar();
    bar.setValue(bar.maximum());
}

bool TextWindow::find(const QString& text, ui::FindBar::Step step) {
    const bool backwards = step == ui::FindBar::Step::previous;
    const QTextDocument::FindFlags flags =
        backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    const QTextCursor before = txtFile_->textCursor();
    // A text that grows while it is typed may stay where it is.
    if (step == ui::FindBar::Step::typed) {
        QTextCursor from = before;
        from.setPosition(before.selectionStart());
        txtFile_->setTextCursor(from);
    }
    if (txtFile_->find(text, flags))
        return true;
    QTextCursor edge = before;
    edge.movePosition(backwards ? QTextCursor::End : QTextCursor::Start);
    txtFile_->setTextCursor(edge);
    if (txtFile_->find(text, flags))
        return true;
    txtFile_->setTextCursor(before);
    return false;
}

}  // namespace viewer
