// Plays a person's first round with the console on a host of its own: start, look, add events, find one in
// tree and grid, switch it on, delete another, exit. Every stop leaves a picture.
//
// Usage: tour HOSTROOT PICTUREDIR, where HOSTROOT holds the host and the installation tree.

#include <unistd.h>

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>
#include <cstdio>

#include "app/mdlMain.h"
#include "core/classLog.h"
#include "platform/host.h"
#include "platform/prompts.h"
#include "support/windowScript.h"
#include "tour/stage.h"
#include "ui/appearance.h"
#include "ui/frmMain.h"
#include "ui/messageBoxes.h"
#include "ui/text.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/variableTextBox.h"
#include "ui/windowServices.h"

namespace {

using tour::control;
using tour::insist;

QString backupFile;

// The end of the run: what it must leave behind, then the tour's own exit code.
void endOfRun(int exitCode) {
    insist(exitCode == 0, "the run ended with " + QString::number(exitCode));
    insist(QFileInfo::exists(backupFile), "no backup after the exit: " + backupFile);
    insist(QFileInfo(ui::fromUtf8(core::gLog().strLogFile())).size() > 0, "no log");
    std::puts("tour: done");
    std::fflush(nullptr);
    _exit(0);
}

// Fills the dialog "Add New Event" with mouse and keyboard and confirms it.
void fillNewEvent(QWidget& dialog, const QString& source, const QString& id, const QString& notes,
                  bool pictures) {
    auto& ok = control<QPushButton>(dialog, "cmdOk");
    insist(!ok.isEnabled(), "OK is enabled before a source is chosen");
    if (pictures)
        tour::takePicture("new-event");
    auto& sources = control<QComboBox>(dialog, "comboEventSource");
    sources.setFocus();
    QTest::keyClicks(&sources, source);
    insist(sources.currentText().startsWith(source), "the source list does not offer " + source);
    if (!id.isEmpty()) {
        auto& specific = control<QRadioButton>(dialog, "optionEventId_1");
        QTest::mouseClick(&specific, Qt::LeftButton, {}, QPoint(8, specific.height() / 2));
        insist(!ok.isEnabled(), "OK is enabled without an id");
        QTest::keyClicks(&control<QLineEdit>(dialog, "tdbnlSpecificEventId"), id);
    }
    auto& severity = control<QComboBox>(dialog, "comboEventType");
    severity.setFocus();
    QTest::keyClick(&severity, Qt::Key_Down);
    tour::type(control<QLineEdit>(dialog, "txtEventTitle"), notes);
    insist(ok.isEnabled(), "OK stays disabled");
    if (pictures)
        tour::takePicture("new-event-filled");
    QTest::mouseClick(&ok, Qt::LeftButton);
}

void clickCell(ui::KeyedGrid& grid, int row, const char* column) {
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRectangle(row, column).center());
}

int rowOf(ui::KeyedGrid& grid, const QString& source) {
    for (int row = 1; row <= grid.gridRowCount(); ++row)
        if (ui::fromUtf8(grid.cellText(row, "EventSource")) == source)
            return row;
    return 0;
}

void clickNode(ui::KeyedTree& tree, const std::string& key) {
    tree.ensureVisible(key);
    const auto items =
        tree.findItems(ui::fromUtf8(tree.nodeText(key)), Qt::MatchExactly | Qt::MatchRecursive);
    insist(!items.isEmpty(), "no tree node");
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(items.first()).center());
}

// Chooses a language in the About window and closes it.
void chooseLanguage(QWidget& about, const QString& language) {
    for (QAction* item : control<QMenu>(about, "mnuSelectLanguage").actions())
        if (item->text() == language) {
            item->trigger();
            tour::takePicture("about");
            QTest::mouseClick(&control<QPushButton>(about, "cmdOk"), Qt::LeftButton);
            return;
        }
    insist(false, "no language " + language);
}

void play(support::WindowScript& script) {
    frmMain& window = *gMainWindow;
    ui::KeyedTree& tree = *window.tvNavigation;
    auto& grid = control<ui::KeyedGrid>(window, "vsflexgridMonitoredEvents");
    tour::waitFor([&] { return window.isVisible(); }, "the main window does not show");
    insist(tree.count() == 4 && grid.gridRowCount() == 1,
           "a fresh configuration shows the catch-all event alone");
    tour::takePicture("start");

    // Two new events, one from the menu, one from the button.
    script.expect("dlgEvent", [](QWidget& dialog) {
        fillNewEvent(dialog, "MeridaneCorvane_", "4711", QString::fromUtf8("Night shift: call Zoë – at once"),
                     true);
    });
    tour::chooseMenu(window, {"mnuFile", "mnuFileNew", "mnuFileNewEvent"});
    const std::string added = tree.selectedKey();
    insist(tree.info(added).nodeType == nodeTypeEvent, "the new event is not selected in the tree");
    tour::takePicture("added-in-tree");
    const QString addedText = ui::fromUtf8(tree.nodeText(added));
    const QString addedSource = addedText.section(" (", 0, 0);

    clickNode(tree, tree.keyAt(1));
    insist(rowOf(grid, addedSource) > 0, "the new event is not in the grid");
    tour::takePicture("added-in-grid");
    script.expect("dlgEvent",
                  [](QWidget& dialog) { fillNewEvent(dialog, "S", "", "Everything of this source", false); });
    QTest::mouseClick(&control<QPushButton>(window, "cmdCreateNewEvent"), Qt::LeftButton);
    const std::string second = tree.selectedKey();
    const QString secondSource = ui::fromUtf8(tree.nodeText(second)).section(" (", 0, 0);

    // The first is switched on with one click in the grid.
    clickNode(tree, tree.keyAt(1));
    clickCell(grid, rowOf(grid, addedSource), "EventActive");
    insist(grid.cellValue(rowOf(grid, addedSource), "EventActive").toBool(),
           "the click did not switch the event on");
    tour::takePicture("switched-on");

    // The second is deleted, after a No.
    auto& deleteButton = control<QPushButton>(window, "cmdDeleteSelectedEvent");
    clickCell(grid, rowOf(grid, secondSource), "EventSource");
    insist(deleteButton.isEnabled(), "the delete button is disabled on a selected row");
    script.expectBox("Delete Selected Event?", "No", [](QWidget&) { tour::takePicture("delete-question"); });
    QTest::mouseClick(&deleteButton, Qt::LeftButton);
    insist(rowOf(grid, secondSource) > 0, "No deleted the event");
    clickCell(grid, rowOf(grid, secondSource), "EventSource");
    script.expectBox("Delete Selected Event?", "Yes");
    QTest::mouseClick(&deleteButton, Qt::LeftButton);
    insist(rowOf(grid, secondSource) == 0 && window.findNode(nodeTypeEvent, tree.count()).empty(),
           "Yes deleted nothing");
    tour::takePicture("deleted");

    clickNode(tree, window.findNode(nodeTypeEvent, std::stol(added.substr(added.find('-') + 1))));
    tour::takePicture("event");
    // The language changes in every window at once, and back.
    for (const char* language : {"German (Germany)", "English (United States)"}) {
        script.expect("frmAbout", [&](QWidget& about) { chooseLanguage(about, language); });
        tour::chooseMenu(window, {"mnuHelp", "mnuHelpAbout"});
    }
    insist(script.finished(), "a window that was expected never came");
    tour::chooseMenu(window, {"mnuFile", "mnuExit"});
    insist(false, "the exit did not end the run");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: tour HOSTROOT PICTUREDIR\n", stderr);
        return 2;
    }
    const std::filesystem::path root = std::filesystem::absolute(argv[1]);
    tour::setPictureFolder(QString::fromLocal8Bit(argv[2]));
    QApplication application(argc, argv);
    ui::applyAppearance();
    QApplication::setQuitOnLastWindowClosed(false);
    platform::host::setFolder(root / "Host");
    platform::program::setFile(root / "QLNAdmin" / "QLNAdmin");
    platform::program::setEnder(endOfRun);
    backupFile = QString::fromStdString((root / "Database" / "QLNDB_BKP.MDB").string());
    ui::MessageBoxes boxes;
    platform::setPrompts(&boxes);
    const ui::WindowServices services;
    platform::WindowStation station(platform::program::name());
    support::WindowScript script([](const QString& message) { insist(false, message); });
    script.expectBox("QLN Service not started", "OK", [](QWidget&) { tour::takePicture("service-warning"); });
    mdlMain::Main(station);
    play(script);
}
