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

QString onOneLine(QString text) {
    static const QRegularExpression lineBreak("\\r\\n|[\\n\\r\\v\\f\\x{85}\\x{2028}\\x{2029}]");
    return text.replace(lineBreak, QLatin1String(" "));
}

QString text(long id) {
    return fromUtf8(modLocalize::myLoadResString(id));
}

}  // namespace ui
