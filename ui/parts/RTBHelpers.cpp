#include "ui/parts/RTBHelpers.h"

#include <QAction>
#include <QMenu>
#include <array>

#include "core/procedure.h"
#include "ui/base/text.h"
#include "ui/widgets/variableTextBox.h"

namespace RTBHelpers {

namespace {

constexpr char module[] = "RTBHelpers";

struct Entry {
    long caption;
    const char* tag;
};

// Entry 6 reads "ID" and inserts <Event>: the pairing is meant so.
constexpr std::array<Entry, 10> entries{{{1153, "<Notes>"},
                                         {1072, "<Type>"},
                                         {1154, "<Date>"},
                                         {1155, "<Time>"},
                                         {1142, "<Source>"},
                                         {1156, "<Category>"},
                                         {1143, "<Event>"},
                                         {1157, "<User>"},
                                         {1201, "<Computer>"},
                                         {1144, "<Description>"}}};

}  // namespace

void buildInsertionMenu(std::vector<QAction*>& mnuInsert, QMenu& mnuVariables) {
    core::procedure(module, "buildInsertionMenu", [&](core::Frame&) {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (i > 0) {
                mnuInsert.push_back(mnuVariables.addAction(QString()));
                mnuInsert[i]->setObjectName("mnuInsert_" + QString::number(i));
            }
            mnuInsert[i]->setData(QString::fromLatin1(entries[i].tag));
        }
        captionInsertionMenu(mnuInsert);
    });
}

void captionInsertionMenu(const std::vector<QAction*>& mnuInsert) {
    for (std::size_t i = 0; i < entries.size() && i < mnuInsert.size(); ++i)
        mnuInsert[i]->setText(ui::text(entries[i].caption));
}

void colorInsertionTokens(ui::VariableTextBox& richText, const QString& tokenList) {
    core::procedure(module, "colorInsertionTokens",
                    [&](core::Frame&) { richText.colorTokens(tokenList.split(',')); });
}

}  // namespace RTBHelpers
