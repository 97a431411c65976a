#include "ui/widgets/variableTextBox.h"

#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextDocument>

#include "ui/base/contrast.h"
#include "ui/base/text.h"
#include "ui/widgets/tokenColors.h"

namespace ui {

namespace {

// Blue, or on a dark ground a light blue; on a grey one as near to them as can be read there.
QColor tokenColor(const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Base);
    return readable(farthestFrom({ground}) == Qt::white ? QColor(130, 177, 255) : QColor(0, 0, 255),
                    {ground});
}

bool hasEndlessWord(const QString& text) {
    constexpr int longestWord = 2000;
    int word = 0;
    return std::any_of(text.cbegin(), text.cend(), [&](QChar c) {
        word = c.isSpace() ? 0 : word + 1;
        return word > longestWord;
    });
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
        connect(this, &QTextEdit::textChanged, this, [this] { limitWrapping({}); });
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
    const QString shown = asLines(fromUtf8(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    limitWrapping(shown);
    setPlainText(shown);
}

// As the box may hold it: on one line, however many the text has.
QString VariableTextBox::asLines(const QString& text) const {
    return lines_ == Lines::one ? onOneLine(text) : text;
}

// The toolkit looks for a word's end on each line that the word fills. Above this length of a word lines are
// broken anywhere, which costs no more than the text is long.
void VariableTextBox::limitWrapping(const QString& coming) {
    const QTextOption::WrapMode mode = hasEndlessWord(coming) || hasEndlessWord(document()->toRawText())
                                           ? QTextOption::WrapAnywhere
                                           : QTextOption::WrapAtWordBoundaryOrAnywhere;
    if (lines_ == Lines::many && mode != wordWrapMode())
        setWordWrapMode(mode);
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
    const TokenColors::FirstKept keep(*colors_, cursor.position() > 0);
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
    const QRect caret = cursorRect(nearest);
    QTextCursor before = nearest;
    // Before the first character of a wrapped line there is none of that line.
    if (position.x() < caret.left() && before.movePosition(QTextCursor::PreviousCharacter) &&
        cursorRect(before).top() == caret.top())
        nearest = before;
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
    // Some keyboards have a key for a line's end that is a character of its own.
    if (lines_ == Lines::one && (enter || asLines(event->text()) != event->text())) {
        event->ignore();  // a dialog's default button takes Enter
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void VariableTextBox::insertFromMimeData(const QMimeData* source) {
    if (lines_ == Lines::many) {
        limitWrapping(source->text());  // before it is laid out for the first time
        QTextEdit::insertFromMimeData(source);
    } else if (source->hasText())
        insertPlainText(asLines(source->text()));
}

void VariableTextBox::inputMethodEvent(QInputMethodEvent* event) {
    const QString committed = asLines(event->commitString());
    if (committed != event->commitString())
        event->setCommitString(committed, event->replacementStart(), event->replacementLength());
    QTextEdit::inputMethodEvent(event);
}

}  // namespace ui
