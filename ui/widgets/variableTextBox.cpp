#include "ui/widgets/variableTextBox.h"

#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextDocument>

#include "ui/base/text.h"
#include "ui/widgets/tokenColors.h"

namespace ui {

namespace {

// Blue, or on a dark ground the light blue that can be read there.
QColor tokenColor(const QPalette& palette) {
    constexpr int middle = 128;
    return palette.color(QPalette::Base).lightness() < middle ? QColor(130, 177, 255) : QColor(0, 0, 255);
}

}  // namespace

VariableTextBox::VariableTextBox(Lines lines, QWidget* parent)
    : QTextEdit(parent), lines_(lines), colors_(new TokenColors(*document())) {
    colors_->setColor(tokenColor(palette()));
    setAcceptRichText(false);
    setTabChangesFocus(true);
    if (lines_ == Lines::one) {
        setLineWrapMode(QTextEdit::NoWrap);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        const int margins = static_cast<int>(document()->documentMargin() * 2) + 2 * frameWidth();
        setFixedHeight(fontMetrics().lineSpacing() + margins + 2);
    } else {
        // The default body lines up its values with blanks.
        setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    }
}

std::string VariableTextBox::storedText() const {
    // Not the plain text, which has an ordinary blank in place of each one that does not break.
    QString text = document()->toRawText();
    for (const QChar lineBreak : {QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)})
        text.replace(lineBreak, QLatin1String("\r\n"));
    return toUtf8(text);
}

void VariableTextBox::setStoredText(const std::string& text) {
    setPlainText(fromUtf8(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

void VariableTextBox::colorTokens(const QStringList& tokens) {
    colors_->setTokens(tokens);
}

void VariableTextBox::insertAt(int index, const QString& text) {
    const int left = horizontalScrollBar()->value();
    const int top = verticalScrollBar()->value();
    placeCaret(index);
    QTextCursor cursor = textCursor();
    // A block of edits is not joined to the typing before it, and one that ends with something other than a
    // text, here the paragraph's format as it is, not to the typing after it.
    cursor.beginEditBlock();
    cursor.insertText(text);
    cursor.setBlockFormat(cursor.blockFormat());
    cursor.endEditBlock();
    setTextCursor(cursor);
    horizontalScrollBar()->setValue(left);
    verticalScrollBar()->setValue(top);
}

void VariableTextBox::placeCaret(int index) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::clamp(index, 0, document()->characterCount() - 1));
    setTextCursor(cursor);
}

int VariableTextBox::charFromPos(const QPoint& position) const {
    QTextCursor nearest = cursorForPosition(position);
    // The right half of a character is nearer to the caret behind it.
    if (!nearest.atBlockStart() && position.x() < cursorRect(nearest).left())
        nearest.movePosition(QTextCursor::PreviousCharacter);
    return nearest.position();
}

void VariableTextBox::mousePressEvent(QMouseEvent* event) {
    const int index = charFromPos(event->position().toPoint());
    if (event->button() == Qt::RightButton) {
        emit menuRequested(index, event->globalPosition().toPoint());
        return;
    }
    emit charPressed(index);
    QTextEdit::mousePressEvent(event);
}

void VariableTextBox::contextMenuEvent(QContextMenuEvent* event) {
    // The mouse has asked with its press already.
    if (event->reason() != QContextMenuEvent::Mouse)
        emit menuRequested(textCursor().position(), viewport()->mapToGlobal(cursorRect().bottomLeft()));
    event->accept();
}

void VariableTextBox::focusInEvent(QFocusEvent* event) {
    QTextEdit::focusInEvent(event);
    emit entered();
}

void VariableTextBox::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colors_->setColor(tokenColor(palette()));
}

void VariableTextBox::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && lines_ == Lines::one) {
        event->ignore();  // a dialog's default button takes it
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void VariableTextBox::insertFromMimeData(const QMimeData* source) {
    if (lines_ == Lines::many || !source->hasText()) {
        QTextEdit::insertFromMimeData(source);
        return;
    }
    QString line = source->text();
    line.replace(QLatin1String("\r\n"), QLatin1String(" ")).replace('\n', ' ').replace('\r', ' ');
    insertPlainText(line);
}

}  // namespace ui
