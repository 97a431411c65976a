// How long a person waits for an answer of the windows: for a key in a field, and for a search of a large
// directory. These times have no peer, only a reach.

#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <algorithm>

#include "bench/driving.h"
#include "bench/largeInstallation.h"
#include "bench/rows.h"
#include "core/state.h"
#include "database/exclusions.h"
#include "ui/dialogs/dlgAddExclusion.h"
#include "ui/dialogs/dlgEvent.h"
#include "ui/dialogs/dlgSelect.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/boundGrid.h"
#include "ui/widgets/variableTextBox.h"

namespace bench {

namespace {

constexpr double reachOfKey = 0.016;
constexpr double reachOfSearch = 0.3;
constexpr char words[] = "at <Time> 9";
constexpr char lines[] = "at <Time>\n9";
constexpr char digits[] = "40711";

// The longest time of a key press until it is painted: the text is typed and taken back again and again.
double typing(QWidget& field, const QString& text) {
    constexpr int repetitions = 25;
    double longest = 0;
    for (int i = 0; i <= repetitions; ++i) {
        const auto press = [&](Qt::Key key, const QString& typed = {}) {
            const double seconds = pressKey(field, key, typed);
            if (i > 0)  // the first time warms up
                longest = std::max(longest, seconds);
        };
        for (const QChar letter : text)
            if (letter == '\n')
                press(Qt::Key_Return, "\r");
            else
                press(static_cast<Qt::Key>(letter.toUpper().unicode()), letter);
        for (qsizetype k = 0; k < text.size(); ++k)
            press(Qt::Key_Backspace);
    }
    return longest;
}

double typingIn(QWidget& window, std::initializer_list<const char*> names, const char* text) {
    double longest = 0;
    for (const char* name : names)
        longest = std::max(longest, typing(findControl<QWidget>(window, name), text));
    return longest;
}

// 200,000 characters in 2,000 lines with a variable in each.
std::string largeBody() {
    constexpr std::size_t lineLength = 98;  // and its line break
    std::string body;
    for (int i = 0; i < 2000; ++i) {
        std::string line = "Line " + std::to_string(i) + " tells of <Source> what the night shift is to do, ";
        while (line.size() < lineLength)
            line += "and more";
        body += line.substr(0, lineLength) + "\r\n";
    }
    return body;
}

double typingInBody(QWidget& window) {
    auto& box = findControl<ui::VariableTextBox>(window, "rtbEmailBody");
    const std::string body = largeBody();
    box.setStoredText(body);
    QApplication::processEvents();
    double longest = 0;
    const int length = box.document()->characterCount();
    for (const int place : {0, length / 2, length}) {
        box.placeCaret(place);
        longest = std::max(longest, typing(box, lines));
    }
    insist(box.storedText() == body, "the body is as it was before the typing");
    return longest;
}

void mainWindowRows(Table& table, frmMain& window) {
    window.selectNode("RecipientKey:1");
    table.tell("key in a recipient's name", typingIn(window, {"txtRecipientName"}, words), reachOfKey);
    window.selectNode("keyRecipients");
    window.selectNode("EventKey-5");
    table.tell("key in an event's notes and subject",
               typingIn(window, {"txtEventTitle", "rtbEmailSubject"}, words), reachOfKey);
    table.tell("key in an event's body of 200,000 characters", typingInBody(window), reachOfKey);
    // Else the next node would be a question.
    findPane<paneEventDetails>(window).discard();
    const long exclusion = mdlDatabase::addNewExclusion("MeridaneCorvane_1", 1);
    window.loadNavigationTree({}, {}, exclusion);
    table.tell("key in an exclusion's id", typingIn(window, {"tdbnlSpecificEventId"}, digits), reachOfKey);
}

void dialogRows(Table& table, frmMain& window) {
    dlgEvent event(&window);
    insideDialog(
        event, [&] { event.displayForm(); },
        [&] {
        findControl<QRadioButton>(event, "optionEventId_1").click();
        const double longest = std::max(
            {typingIn(event, {"tdbnlSpecificEventId"}, digits),
             typingIn(event, {"comboEventSource", "txtEventTitle", "txtVoiceMailFileName", "rtbEmailSubject"},
                      words),
             typingInBody(event)});
        table.tell("key in the fields of a new event, with such a body", longest, reachOfKey);
        });
    dlgAddExclusion exclusion(&window);
    insideDialog(
        exclusion, [&] { exclusion.displayForm(); },
        [&] {
        findControl<QRadioButton>(exclusion, "optionEventId_1").click();
        const double longest = std::max(typingIn(exclusion, {"comboEventSource"}, words),
                                        typingIn(exclusion, {"tdbnlSpecificEventId"}, digits));
        table.tell("key in the fields of a new exclusion", longest, reachOfKey);
        });
}

void searchRows(Table& table, frmMain& window) {
    constexpr int searches = 5;
    double firstRows = 0;
    double turn = 0;
    double key = 0;
    dlgSelect& dialog = dlgSelect::shared(&window);
    dialog.directoryConnection = &core::gCorvaneDb;
    dialog.subscriberTypes = "(1,2,3)";
    dialog.selectMode = 1;
    insideDialog(
        dialog, [&] { dialog.exec(); },
        [&] {
        auto& text = findControl<QLineEdit>(dialog, "txtSearchString");
        const QAbstractItemModel& rows = *findControl<ui::BoundGrid>(dialog, "myGrid").model();
        for (int i = 0; i <= searches; ++i) {
            text.setText("*");
            const double first = pressKey(text, Qt::Key_Return, "\r");
            insist(rows.rowCount() > 0, "a search shows its first rows");
            if (i > 0)  // the first time warms up
                firstRows = std::max(firstRows, first);
            while (rows.rowCount() < subscriberCount)
                turn = std::max(turn, secondsOf([] { QApplication::processEvents(); }));
        }
        key =
            std::max(typingIn(dialog, {"comboSearchBy"}, "e"), typingIn(dialog, {"txtSearchString"}, words));
        });
    table.tell("first rows of a search for 50,000 subscribers", firstRows, reachOfSearch);
    table.tell("one turn of the event loop while it fills", turn, reachOfKey);
    table.tell("key in the fields of the search", key, reachOfKey);
}

}  // namespace

void answerRows(Table& table, const std::filesystem::path& folder) {
    const LargeInstallation place(folder);
    frmMain window;
    window.loadNavigationTree();
    window.show();
    mainWindowRows(table, window);
    dialogRows(table, window);
    searchRows(table, window);
}

}  // namespace bench
