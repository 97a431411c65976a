// Insertion variables: tokens in angle brackets that the service replaces when it sends a notification.
#pragma once

#include <QString>
#include <vector>

class QAction;
class QMenu;

namespace ui {
class VariableTextBox;
}

namespace RTBHelpers {

inline constexpr char insertionTokens[] =
    "<Notes>,<Type>,<Date>,<Time>,<Source>,<Category>,<Event>,<User>,<Computer>,<Description>";

// Gives entry 0 of the array its caption and tag and adds entries 1 to 9 to the array and the menu. An
// entry's data is its tag, the text that it inserts.
void buildInsertionMenu(std::vector<QAction*>& mnuInsert, QMenu& mnuVariables);
// The captions alone, after a change of language.
void captionInsertionMenu(const std::vector<QAction*>& mnuInsert);

// Colours every occurrence of every token of a comma-separated list, letter case regarded. Caret, selection,
// text and what undo takes back stay; typing goes on in black.
void colorInsertionTokens(ui::VariableTextBox& richText, const QString& tokenList);

}  // namespace RTBHelpers
