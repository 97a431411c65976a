// A copied event on the clipboard, for the windows that take one.
#pragma once

#include <QString>
#include <optional>

class QComboBox;

namespace ui {

class NumberBox;

struct CopiedEvent {
    QString id;  // as the box for it shows it
    int type;    // 0 error, 1 warning, 2 information
};

// The clipboard's event, with its source selected in the list. Nothing, and nothing selected, when the
// clipboard holds no event of a source of the list with an id that the box takes.
std::optional<CopiedEvent> takeCopiedEvent(QComboBox& comboEventSource, const NumberBox& idBox);
// Tells that the clipboard holds no event.
void warnNoEventData();

}  // namespace ui
