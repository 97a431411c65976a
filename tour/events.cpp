// Monitored events: the one that catches all, new ones by hand, from a copied event and with a voice file,
// and their list.

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QTableWidget>
#include <QtTest/QTest>

#include "database/exclusions.h"
#include "host/eventViewer/eventWindow.h"
#include "platform/files/files.h"
#include "tour/chapters.h"
#include "tour/hands.h"
#include "tour/keyboard.h"
#include "tour/stage.h"
#include "ui/base/text.h"
#include "ui/widgets/textList.h"
#include "ui/widgets/variableTextBox.h"

namespace tour {

namespace {

constexpr char voiceFile[] = "QLN_Default_ENU.wav";

// A recording of the same name as one that is there already: the questions, and its new name.
void chooseVoiceFile(const Play& play, QWidget& dialog) {
    const std::filesystem::path recordings = play.root / "Recordings";
    std::filesystem::create_directories(recordings);
    platform::files::copyFile(play.root / "Database" / voiceFile, recordings / voiceFile);
    play.script.expect("fileDialog", [recordings](QWidget& files) {
        takePicture("voice-file");
        auto& name = control<QLineEdit>(files, "fileNameEdit");
        name.setFocus();
        type(name, ui::fromUtf8((recordings / voiceFile).string()));
        QTest::keyClick(&name, Qt::Key_Return);
    });
    expectBox(play.script, 1266, QMessageBox::Yes, "voice-file-clash");
    expectBox(play.script, 1267, QMessageBox::No, "voice-file-overwrite");
    play.script.expect("inputBox", [](QWidget& box) {
        auto& name = *box.findChild<QLineEdit*>();
        QTest::keyClick(&name, Qt::Key_A, Qt::ControlModifier);
        type(name, "Night call.wav");
        takePicture("voice-file-name");
        QTest::keyClick(&name, Qt::Key_Return);
    });
    press(dialog, "cmdVoiceMailBrowse");
    insist(control<QLineEdit>(dialog, "txtVoiceMailFileName").text() == "Night call.wav" &&
               std::filesystem::exists(play.root / "Database" / "Night call.wav"),
           "the voice file is not where the service looks for it");
}

// An insertion variable at the end of the subject, by the menu of the right mouse button.
void insertVariable(const Play& play, QWidget& dialog) {
    auto& subject = control<ui::VariableTextBox>(dialog, "rtbEmailSubject");
    subject.setFocus();
    QTest::keyClick(&subject, Qt::Key_End);
    type(subject, ": ");
    play.script.expectMenu("mnuInsert_0", [](QWidget&) { takePicture("insertion-variables"); });
    const QRect box = subject.viewport()->rect();
    QTest::mouseClick(subject.viewport(), Qt::RightButton, {}, QPoint(box.right() - 2, box.center().y()));
    waitFor([&] { return subject.toPlainText().endsWith(": <Notes>"); },
            "the variable does not come to the end of the subject");
}

void addByHand(const Play& play) {
    play.script.expect("dlgEvent", [&play](QWidget& dialog) {
        auto& ok = control<QPushButton>(dialog, "cmdOk");
        insist(!ok.isEnabled(), "OK is enabled before a source is chosen");
        takePicture("new-event");
        chooseByTyping(dialog, "comboEventSource", "MeridaneCorvane_Mess");
        tick(dialog, "optionEventId_1");
        insist(!ok.isEnabled(), "OK is enabled without an id");
        typeOver(dialog, "tdbnlSpecificEventId", "4711");
        auto& severity = control<QComboBox>(dialog, "comboEventType");
        severity.setFocus();
        QTest::keyClick(&severity, Qt::Key_Down);
        typeOver(dialog, "txtEventTitle", QString::fromUtf8("Night shift: call Zoë – at once"));
        insertVariable(play, dialog);
        chooseVoiceFile(play, dialog);
        insist(ok.isEnabled(), "OK stays disabled");
        walkByKeyboard(dialog);
        takePicture("new-event-filled");
        press(dialog, "cmdOk");
    });
    chooseMenu(play.window, {"mnuFile", "mnuFileNew", "mnuFileNewEvent"}, "file-menu-new");
}

// The viewer is a program of its own; here it runs in this one, so that both share a clipboard.
void copyAnEvent(const Play& play) {
    viewer::EventWindow window(viewer::userLanguage());
    window.show();
    const auto settle = [&window] {
        waitFor([&window] { return window.isAtRest(); }, "the viewer does not come to rest");
    };
    settle();
    auto& table = control<QTableView>(window, "tableEvents");
    int row = 0;
    while (table.model()->index(row, 3).data().toString() != "MeridaneCorvane_Telephony" ||
           table.model()->index(row, 5).data().toString() != "120")
        insist(++row < table.model()->rowCount(), "the event log does not hold the event to copy");
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                      table.visualRect(table.model()->index(row, 3)).center());
    press(window, "cmdCopy");
    settle();
    walkByKeyboard(window);
    takePicture("event-viewer");
    play.script.expect("daysDialog", [](QWidget& dialog) {
        auto& events = control<QListWidget>(dialog, "listEvents");
        waitFor([&events] { return events.count() > 0; }, "no monitored event can be counted");
        press(dialog, "cmdCount");
        auto& days = control<QTableWidget>(dialog, "tableDays");
        waitFor([&days] { return days.rowCount() == 7; }, "the last days are not counted");
        walkByKeyboard(dialog);
        takePicture("last-days");
        dialog.close();
    });
    press(window, "cmdLastDays");
    QTest::keyClick(&control<QComboBox>(window, "comboLog"), Qt::Key_End);
    settle();
    walkByKeyboard(window);
    takePicture("notifications");
}

void addFromClipboard(const Play& play) {
    QGuiApplication::clipboard()->setText("no event");
    play.script.expect("dlgEvent", [&play](QWidget& dialog) {
        expectBox(play.script, 1204, QMessageBox::Ok, "no-event-data");
        press(dialog, "cmdImportFromClipboard");
        press(dialog, "cmdCancel");
    });
    press(play.window, "cmdCreateNewEvent");
    copyAnEvent(play);
    play.script.expect("dlgEvent", [](QWidget& dialog) {
        press(dialog, "cmdImportFromClipboard");
        insist(control<QComboBox>(dialog, "comboEventSource").currentText() == "MeridaneCorvane_Telephony" &&
                   control<QLineEdit>(dialog, "tdbnlSpecificEventId").text() == "120",
               "the copied event is not taken over");
        takePicture("event-imported");
        press(dialog, "cmdOk");
    });
    press(play.window, "cmdCreateNewEvent");
}

}  // namespace

void playCatchAll(const Play& play) {
    auto& grid = control<ui::KeyedGrid>(play.window, "vsflexgridMonitoredEvents");
    insist(play.tree().count() == 4 && grid.gridRowCount() == 1,
           "a fresh configuration shows the catch-all event alone");
    walkByKeyboard(play.window);
    takePicture("start");
    clickNode(play.tree(), play.tree().childKeys("keyMonitoredEvents").front());
    walkByKeyboard(play.window);
    takePicture("catch-all");
    play.script.expect("dlgExclusions", [](QWidget& dialog) {
        auto& available = control<ui::TextList>(dialog, "lstAvailableSources");
        for (const int row : {1, 3})
            QTest::mouseClick(available.viewport(), Qt::LeftButton, Qt::ControlModifier,
                              available.visualRect(available.model()->index(row, 0)).center());
        press(dialog, "cmdExclusionButtons_1");
        walkByKeyboard(dialog);
        takePicture("exclusion-lists");
        press(dialog, "cmdOk");
    });
    press(play.window, "cmdExclusions");
    insist(mdlDatabase::getExclusions().recordCount() == 2, "the sources are not excluded");
}

void playEvents(const Play& play) {
    ui::KeyedTree& tree = play.tree();
    auto& grid = control<ui::KeyedGrid>(play.window, "vsflexgridMonitoredEvents");
    addByHand(play);
    insist(tree.info(tree.selectedKey()).nodeType == nodeTypeEvent, "the new event is not selected");
    takePicture("event");
    clickNode(tree, tree.keyAt(1));
    addFromClipboard(play);
    clickNode(tree, tree.keyAt(1));
    const int added = rowOf(grid, "EventSource", "MeridaneCorvane_MessageStore");
    insist(added > 0, "the new event is not in the grid");

    // The first is switched on with one click in the grid.
    clickCell(grid, added, "EventActive");
    insist(grid.cellValue(added, "EventActive").toBool(), "the click did not switch the event on");
    takePicture("switched-on");

    // The second is deleted, after a No.
    const QString doomed = "MeridaneCorvane_Telephony";
    for (const QMessageBox::StandardButton answer : {QMessageBox::No, QMessageBox::Yes}) {
        clickCell(grid, rowOf(grid, "EventSource", doomed), "EventSource");
        expectBox(play.script, 1247, answer, answer == QMessageBox::No ? "delete-event" : "");
        press(play.window, "cmdDeleteSelectedEvent");
        insist((rowOf(grid, "EventSource", doomed) > 0) == (answer == QMessageBox::No),
               "the event is not deleted with Yes alone");
    }
    takePicture("events");

    // What the tree tells about an event under the pointer.
    const std::string node = nodeOf(play.window, nodeTypeEvent, 3);
    for (QTreeWidgetItem* item : tree.findItems(ui::fromUtf8(tree.nodeText(node)), Qt::MatchRecursive))
        QTest::mouseMove(tree.viewport(), tree.visualItemRect(item).center());
    waitFor([&] { return control<QLabel>(play.window, "tooltip").isVisible(); },
            "the tree's tip does not come");
    takePicture("tree-tip");
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(tree.viewport(), &leave);
    play.script.expectMenu("mnuPopupDeleteEvent", [](QWidget&) { takePicture("tree-menu"); });
    expectBox(play.script, 1247, QMessageBox::No);
    clickNode(tree, node, Qt::RightButton);
}

}  // namespace tour
