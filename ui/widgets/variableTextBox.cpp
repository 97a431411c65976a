#include "ui/widgets/variableTextBox.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocument>

#include "ui/text.h"

namespace ui {

VariableTextBox::VariableTextBox(Lines lines, QWidget* parent) : QTextEdit(parent), lines_(lines) {
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
