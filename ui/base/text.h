// The border between the windows' text and everybody else's: QString here, UTF-8 below.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace ui {

inline QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string toUtf8(const QString& text) {
    return text.toStdString();
}

// The text with places in its long words at which a line may be broken, so that it fits a window.
QString breakable(const QString& text);

// The text without its middle when it has more than a box can show: names have no limit, and the buttons
// below are to stay on the screen.
QString withoutMiddle(const QString& text);

// The text with a blank for each line break, of whatever kind.
QString onOneLine(QString text);

// The string-table text of an id, for a window.
QString text(long id);

}  // namespace ui
