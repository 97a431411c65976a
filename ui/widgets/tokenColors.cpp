#include "ui/widgets/tokenColors.h"

#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

namespace ui {

namespace {

// Makes room for the text that an input method shows inside the paragraph, and keeps that text's own looks.
void makeRoomForPreedit(const QTextLayout& layout, QList<QTextLayout::FormatRange>& ranges) {
    const int start = layout.preeditAreaPosition();
    const int length = static_cast<int>(layout.preeditAreaText().size());
    if (length == 0)
        return;
    for (QTextLayout::FormatRange& range : ranges) {
        if (range.start >= start)
            range.start += length;
        else if (range.start + range.length > start)
            range.length += length;
    }
    for (const QTextLayout::FormatRange& range : layout.formats())
        if (range.start >= start && range.start + range.length <= start + length)
            ranges.append(range);
}

}  // namespace

TokenColors::TokenColors(QTextDocument& document) : QObject(&document), document_(document) {
    connect(&document, &QTextDocument::contentsChange, this, &TokenColors::noteChange);
}

void TokenColors::setTokens(const QStringList& tokens) {
    if (tokens == tokens_)
        return;
    tokens_ = tokens;
    tokens_.removeAll(QString());
    colorAll();
}

void TokenColors::setColor(const QColor& color) {
    if (color == color_)
        return;
    color_ = color;
    colorAll();
}

void TokenColors::noteChange(int position, int removed, int added) {
    // A change of the whole text is told with the mark at its end, which stays.
    if (removed > 0 && position + added == document_.characterCount())
        --added;
    if (position == 0 && added > 0 && !firstKept_)
        firstColored_ = false;
    for (QTextBlock block = document_.findBlock(position);
         block.isValid() && block.position() <= position + added; block = block.next())
        if (colorBlock(block))
            document_.markContentsDirty(block.position(), block.length());
}

void TokenColors::colorAll() {
    for (QTextBlock block = document_.begin(); block.isValid(); block = block.next())
        colorBlock(block);
    document_.markContentsDirty(0, document_.characterCount());
}

bool TokenColors::colorBlock(const QTextBlock& block) {
    QTextLayout& layout = *block.layout();
    Ranges ranges = rangesOf(block);
    makeRoomForPreedit(layout, ranges);
    if (layout.formats() == ranges)
        return false;
    layout.setFormats(ranges);
    return true;
}

TokenColors::Ranges TokenColors::rangesOf(const QTextBlock& block) {
    const QString text = block.text();
    Ranges ranges;
    for (const QString& token : tokens_)
        for (qsizetype at = text.indexOf(token); at >= 0; at = text.indexOf(token, at + 1))
            ranges.append(colored(at, token.size()));
    std::ranges::sort(ranges, {}, &QTextLayout::FormatRange::start);
    if (block.position() != 0 || text.isEmpty())
        return ranges;
    const bool tokenInFront = !ranges.isEmpty() && ranges.first().start == 0;
    if (firstColored_ && !tokenInFront)
        ranges.prepend(colored(0, 1));
    firstColored_ = firstColored_ || tokenInFront;
    return ranges;
}

QTextLayout::FormatRange TokenColors::colored(qsizetype start, qsizetype length) const {
    QTextLayout::FormatRange range;
    range.start = static_cast<int>(start);
    range.length = static_cast<int>(length);
    range.format.setForeground(color_);
    return range;
}

}  // namespace ui
