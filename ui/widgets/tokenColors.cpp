#include "ui/widgets/tokenColors.h"

#include <QTextDocument>

namespace ui {

TokenColors::TokenColors(QTextDocument& document) : QSyntaxHighlighter(static_cast<QObject*>(&document)) {
    // Before the document is set: the first character's colour must be known when its paragraph is coloured.
    connect(&document, &QTextDocument::contentsChange, this, &TokenColors::noteChange);
    setDocument(&document);
}

void TokenColors::setTokens(const QStringList& tokens) {
    if (tokens == tokens_)
        return;
    tokens_ = tokens;
    tokens_.removeAll(QString());
    rehighlight();
}

void TokenColors::setColor(const QColor& color) {
    if (color == color_)
        return;
    color_ = color;
    rehighlight();
}

void TokenColors::noteChange(int position, int removed, int added) {
    // A change of the whole text is told with the mark at its end, which stays.
    if (position + added == document()->characterCount() && removed > 0)
        --added;
    if (position == 0 && added > 0)
        firstColored_ = false;
}

void TokenColors::highlightBlock(const QString& text) {
    for (const QString& token : tokens_)
        for (qsizetype at = text.indexOf(token); at >= 0; at = text.indexOf(token, at + 1))
            setFormat(static_cast<int>(at), static_cast<int>(token.size()), color_);
    if (currentBlock().position() != 0 || text.isEmpty())
        return;
    if (firstColored_)
        setFormat(0, 1, color_);
    firstColored_ = format(0).hasProperty(QTextFormat::ForegroundBrush);
}

}  // namespace ui
