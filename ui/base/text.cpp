#include "ui/base/text.h"

#include <QRegularExpression>

#include "core/modLocalize.h"

namespace ui {

QString breakable(const QString& text) {
    constexpr int longestWord = 40;
    constexpr QChar zeroWidthSpace(0x200B);
    QString result;
    result.reserve(text.size());
    int word = 0;
    for (const QChar c : text) {
        word = c.isSpace() ? 0 : word + 1;
        if (word > longestWord && !c.isLowSurrogate()) {
            result += zeroWidthSpace;
            word = 1;
        }
        result += c;
    }
    return result;
}

QString withoutMiddle(const QString& text) {
    constexpr qsizetype lettersPerRow = 40;
    constexpr qsizetype rows = 18;
    // A line's end costs the rest of its row.
    const auto cost = [](QChar c) { return c == '\n' ? lettersPerRow : 1; };
    qsizetype left = rows * lettersPerRow;
    qsizetype head = 0;
    qsizetype tail = 0;
    // From both ends in turn, until they meet or there is no room.
    while (head + tail < text.size() && left > 0) {
        const bool fromFront = head <= tail;
        const QChar next = fromFront ? text[head] : text[text.size() - 1 - tail];
        ++(fromFront ? head : tail);
        left -= cost(next);
    }
    if (head + tail == text.size())
        return text;
    // No half of a letter.
    head -= text[head - 1].isHighSurrogate() ? 1 : 0;
    tail -= text[text.size() - tail].isLowSurrogate() ? 1 : 0;
    return text.left(head) + QString::fromUtf8(" \xe2\x80\xa6 ") + text.right(tail);
}

QString onOneLine(QString text) {
    static const QRegularExpression lineBreak("\\r\\n|[\\n\\r\\v\\f\\x{85}\\x{2028}\\x{2029}]");
    return text.replace(lineBreak, QLatin1String(" "));
}

QString text(long id) {
    return fromUtf8(modLocalize::myLoadResString(id));
}

}  // namespace ui
