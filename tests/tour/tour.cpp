// Plays a person's first round with the console on a host of its own: start, look, add events, find one in
// tree and grid, switch it on, delete another, watch for a third one with a recipient, exit. Every stop
// leaves a picture.
//
// Usage: tour HOSTROOT PICTUREDIR, where HOSTROOT holds the host and the installation tree.

#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QtTest/QTest>
#include <cstdio>

#include "app/mdlMain.h"
#include "core/classLog.h"
#include "database/addressDetails.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/recipients.h"
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

// The demonstration knows nobody who could be notified.
void createRecipient() {
    mdlDatabase::RecipientRecord record;
    record.name = "Night shift";
    record.smtpAddresses = {{"", "night@example.org"}};
    record.syslogEnabled = 1;
    record.syslogHostAddress = "loghost";
    insist(mdlDatabase::addNewRecipient(record) != 0, "no recipient could be created");
    mdlDatabase::rebuildAddressDetailsTable();
}

// Ticks the first recipient's second device in "Edit Recipients For Event", by keyboard, and confirms.
void chooseDevice(QWidget& dialog) {
    auto& recipients = control<ui::KeyedTree>(dialog, "tvRecipients");
    insist(recipients.count() == 3, "the recipient or his devices are missing");
    for (const auto key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Down, Qt::Key_Space})
        QTest::keyClick(&recipients, key);
    insist(recipients.isChecked(recipients.keyAt(1)) && !recipients.isChecked(recipients.keyAt(2)),
           "the recipient does not follow his device");
    tour::takePicture("edit-recipients");
    QTest::mouseClick(&control<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
}

// A new event until the service may watch for it.
void playEventRoad(frmMain& window, support::WindowScript& script) {
    ui::KeyedTree& tree = *window.tvNavigation;
    const auto icon = [&](const std::string& node) {
        const QString text = ui::fromUtf8(tree.nodeText(node));
        return tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).first()->icon(0).cacheKey();
    };
    createRecipient();
    script.expect("dlgEvent", [](QWidget& dialog) {
        fillNewEvent(dialog, "MeridaneCorvane_", "4712", "Watched", false);
    });
    tour::chooseMenu(window, {"mnuFile", "mnuFileNew", "mnuFileNewEvent"});
    const std::string node = tree.selectedKey();
    const long key = tree.info(node).key;
    const qint64 inactive = icon(node);
    auto& pane = control<QWidget>(window, "vsviewportDetails_1");
    auto& apply = control<QPushButton>(pane, "cmdEventApply");
    insist(!mdlDatabase::isEventActive(key) && !apply.isEnabled(), "a new event is active or changed");

    script.expect("dlgEditRecipients", chooseDevice);
    QTest::mouseClick(&control<QPushButton>(pane, "cmdAddRecipient"), Qt::LeftButton);
    auto& recipients = control<ui::KeyedTree>(pane, "tvRecipients");
    insist(tree.selectedKey() == node && recipients.count() == 3, "the pane does not show its recipient");
    tour::takePicture("recipient-assigned");

    // Leaving the changed event asks; Cancel stays.
    auto& active = control<QCheckBox>(pane, "chkActive");
    active.setFocus();
    QTest::keyClick(&active, Qt::Key_Space);
    insist(active.isChecked() && apply.isEnabled(), "the tick is no change");
    script.expectBox("Save Changes Confirmation", "Cancel",
                     [](QWidget&) { tour::takePicture("save-question"); });
    clickNode(tree, tree.keyAt(1));
    insist(tree.selectedKey() == node && apply.isEnabled(), "Cancel did not stay");
    QTest::mouseClick(&apply, Qt::LeftButton);
    insist(mdlDatabase::isEventActive(key) && mdlDatabase::getEventState(key) == 0,
           "the event is not complete");
    insist(tree.selectedKey() == node && icon(node) != inactive, "the tree does not show the event's state");
    insist(!apply.isEnabled(), "the applied pane counts as changed");
    tour::takePicture("event-active");
}

// The list of recipients, one of them, and the dialog for a new one with a search of the directory.
void playRecipients(frmMain& window, support::WindowScript& script) {
    ui::KeyedTree& tree = *window.tvNavigation;
    clickNode(tree, "keyRecipients");
    tour::takePicture("recipients");
    script.expect("dlgRecipient", [&](QWidget& dialog) {
        tour::type(control<QLineEdit>(dialog, "txtRecipientName"), "Day shift");
        script.expect("dlgSelect", [](QWidget& search) {
            QTest::mouseClick(&control<QPushButton>(search, "cmdSearch"), Qt::LeftButton);
            tour::takePicture("directory-search");
            QTest::mouseClick(&control<QPushButton>(search, "cmdCancel"), Qt::LeftButton);
        });
        auto& subscriber = control<QRadioButton>(dialog, "optionVoiceMailType_0");
        QTest::mouseClick(&subscriber, Qt::LeftButton, {}, QPoint(8, subscriber.height() / 2));
        QTest::mouseClick(&control<QPushButton>(dialog, "cmdSelectVoiceMail"), Qt::LeftButton);
        tour::takePicture("new-recipient");
        QTest::mouseClick(&control<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
    });
    QTest::mouseClick(&control<QPushButton>(window, "cmdCreateNewRecipient"), Qt::LeftButton);
    const std::string recipient = tree.keyAt(tree.count());
    insist(tree.info(recipient).nodeType == nodeTypeRecipient, "no recipient stands last");
    clickNode(tree, recipient);
    tour::takePicture("recipient");
}

// A source that the catch-all event shall leave alone, and a look at the options.
void playExclusionsAndOptions(frmMain& window, support::WindowScript& script) {
    ui::KeyedTree& tree = *window.tvNavigation;
    script.expect("dlgAddExclusion", [](QWidget& dialog) {
        auto& sources = control<QComboBox>(dialog, "comboEventSource");
        sources.setFocus();
        QTest::keyClicks(&sources, "MeridaneCorvane_");
        tour::type(control<QLineEdit>(dialog, "tdbnlSpecificEventId"), "4713");
        insist(control<QRadioButton>(dialog, "optionEventId_1").isChecked(),
               "typing an id does not choose it");
        tour::takePicture("new-exclusion");
        QTest::mouseClick(&control<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
    });
    tour::chooseMenu(window, {"mnuFile", "mnuFileNew", "mnuFileNewExclusion"});
    insist(tree.info(tree.selectedKey()).nodeType == nodeTypeExclusion, "the new exclusion is not selected");
    tour::takePicture("exclusion");
    clickNode(tree, "keyExclusions");
    auto& grid = control<ui::KeyedGrid>(window, "vsflexgridAllExclusions");
    insist(grid.gridRowCount() > 0, "the new exclusion is not in the grid");
    tour::takePicture("exclusions");

    script.expect("frmOptions", [](QWidget& options) {
        auto& days = control<QWidget>(options, "tdbnumliteReportDataAging");
        QTest::keyClick(&days, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&days, "99");
        tour::takePicture("options-refusal");
        control<QTabWidget>(options, "sstabOptions").setCurrentIndex(1);
        tour::takePicture("options-content");
        QTest::mouseClick(&control<QPushButton>(options, "cmdCancel"), Qt::LeftButton);
    });
    tour::chooseMenu(window, {"mnuFile", "mnuOptions"});
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

    playEventRoad(window, script);
    playRecipients(window, script);
    playExclusionsAndOptions(window, script);
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
