#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>
#include <filesystem>
#include <fstream>

#include "core/modLocalize.h"
#include "support/mainWindowFixture.h"
#include "ui/base/twips.h"

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

using uiTest::MainWindow;
using uiTest::sourcesKey;

TEST_F(MainWindow, BuildsItsTreeWithStatesAndKeepsItsShapeOverARebuild) {
    const long plain = add("Backup", "17", "nightly");
    const long all = add("Alarm", "-1");
    mdlDatabase::setEventActiveState(all, true);
    run("INSERT INTO Recipients(RecipientName, RecipientActive) VALUES('Ana', -1);"
        "INSERT INTO Exclusions VALUES(0, 'Cluster', -1), (1, 'Backup', 5);");
    open();
    EXPECT_EQ(tree->nodeText(tree->keyAt(1)), "Monitored Events");
    EXPECT_EQ(tree->nodeText(tree->keyAt(2)), "Recipients");
    EXPECT_EQ(tree->nodeText(tree->keyAt(3)), "Exclusions");
    // The catch-all event comes first, then by source.
    EXPECT_EQ(tree->nodeText(tree->keyAt(5)), "Alarm (All)");
    EXPECT_EQ(tree->nodeText(tree->keyAt(6)), "Backup (17)");
    EXPECT_EQ(tree->nodeText("RecipientKey:1"), "Ana");
    EXPECT_EQ(tree->nodeText("ExclusionKey-0"), "Cluster (All)");
    EXPECT_EQ(tree->nodeText("ExclusionKey-1"), "Backup (5)");
    const auto item = [&](const char* text) {
        return tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive).at(0);
    };
    EXPECT_TRUE(item("Alarm (All)")->font(0).bold());
    EXPECT_FALSE(item("Backup (17)")->font(0).bold());
    EXPECT_NE(item("Alarm (All)")->icon(0).cacheKey(), item("Backup (17)")->icon(0).cacheKey());
    EXPECT_EQ(window->findNode(nodeTypeEvent, plain), "EventKey-" + std::to_string(plain));
    EXPECT_EQ(window->findNode(nodeTypeRecipient, plain), "");

    tree->topLevelItem(1)->setExpanded(false);
    window->loadNavigationTree();
    EXPECT_TRUE(tree->topLevelItem(0)->isExpanded());
    EXPECT_FALSE(tree->topLevelItem(1)->isExpanded());
    tree->topLevelItem(1)->setExpanded(true);
    window->loadNavigationTree();
    EXPECT_TRUE(tree->topLevelItem(1)->isExpanded());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(MainWindow, SwitchesPanesAndMenusWithTheNode) {
    const long key = add("Backup", "17");
    run("INSERT INTO Recipients(RecipientName, RecipientActive) VALUES('Ana', -1);"
        "INSERT INTO Exclusions VALUES(0, 'Cluster', -1);");
    open();
    auto* remove = find<QAction>("mnuFileDelete");
    EXPECT_EQ(visiblePane(), 0);
    EXPECT_FALSE(remove->isEnabled());
    const std::pair<std::string, int> stops[] = {{"keyRecipients", 2},
                                                 {"keyExclusions", 6},
                                                 {"RecipientKey:1", 3},
                                                 {"ExclusionKey-0", 7},
                                                 {"EventKey-" + std::to_string(key), 1}};
    for (const auto& [node, pane] : stops) {
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, placeOf(node));
        EXPECT_EQ(visiblePane(), pane) << node;
        EXPECT_EQ(tree->selectedKey(), node);
    }
    EXPECT_TRUE(remove->isEnabled());
    window->selectNode("no such node");
    EXPECT_EQ(visiblePane(), 1);
}

TEST_F(MainWindow, AddsAnEventThroughTheDialogAndSelectsIt) {
    open();
    script.expect("dlgEvent", [&](QWidget& dialog) {
        auto* ok = dialog.findChild<QPushButton*>("cmdOk");
        auto* sources = dialog.findChild<QComboBox*>("comboEventSource");
        auto* id = dialog.findChild<QLineEdit*>("tdbnlSpecificEventId");
        EXPECT_EQ(sources->count(), 3);
        EXPECT_EQ(sources->currentIndex(), -1);
        EXPECT_FALSE(ok->isEnabled());
        EXPECT_FALSE(id->isVisible());
        EXPECT_EQ(id->text(), "-1");
        sources->setFocus();
        QTest::keyClicks(sources, "B");
        EXPECT_TRUE(ok->isEnabled());
        person::click(dialog, "optionEventId_1");
        EXPECT_TRUE(id->isVisible());
        EXPECT_FALSE(ok->isEnabled()) << "a specific id is missing";
        QTest::keyClicks(id, "42");
        EXPECT_TRUE(ok->isEnabled());
        person::chooseRow(*dialog.findChild<QComboBox*>("comboEmailPriority"), 0);
        person::chooseRow(*dialog.findChild<QComboBox*>("comboEventType"), 2);
        person::type(*dialog.findChild<QLineEdit*>("txtEventTitle"), "it's; \"quoted\" 100%");
        QTest::mouseClick(ok, Qt::LeftButton);
    });
    chooseMenu("mnuFileNewEvent");
    EXPECT_EQ(tree->nodeText(tree->selectedKey()), "Backup (42)");
    EXPECT_EQ(value("SELECT EventSource, EventId, EventTitle, EventType, EventActive FROM Events "
                    "ORDER BY EventKey DESC LIMIT 1"),
              "Backup|42|it's; \"quoted\" 100%|4|0");
    EXPECT_EQ(rows("SELECT ContentType, ContentPriority, ContentAttachment FROM Contents WHERE "
                   "EventKey > 2 ORDER BY "
                   "ContentType"),
              (std::vector<std::string>{"1|1|QLN_Default_ENU.wav", "3|2|NULL"}));

    // Going back to all ids, and cancelling, write nothing.
    script.expect("Add New Event", [&](QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtEventTitle")->text(), "")
            << "the shared dialog starts fresh";
        person::click(dialog, "optionEventId_1");
        person::click(dialog, "optionEventId_0");
        EXPECT_EQ(dialog.findChild<QLineEdit*>("tdbnlSpecificEventId")->text(), "-1");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    clickNode("keyMonitoredEvents");
    press("cmdCreateNewEvent");
    EXPECT_EQ(value("SELECT Count(*) FROM Events"), "3");
}

// What is typed or pasted into the dialog arrives as it is, of any length.
TEST_F(MainWindow, AnyTextArrivesInTheDatabase) {
    const std::string source = "O'Brien's \"Tools\"; 100% \xf0\x9f\x93\x9f";
    const std::string title =
        "'; DELETE FROM Events; -- 100% \t\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xf0\x9f\x93\x9f";
    const std::string subject = "S\xc3\xa9v\xc3\xa9rit\xc3\xa9\xc2\xa0: '<Type>' \"100%\"; \xd7\xa9\xd7\x9c";
    const std::string body = "'one';\n\ttwo %n\n\xf0\x9f\x93\x9f\n" + std::string(100'000, 'x');
    host.setRegistry(sourcesKey + source, "EventMessageFile", std::string("file"));
    mdlDatabase::setConfigurationSetting("WarnOnDuplicateMonitoredEvents", "0");
    open();
    script.expect("dlgEvent", [&](QWidget& dialog) {
        const auto paste = [&](const char* name, const std::string& text) {
            auto* control = dialog.findChild<QWidget*>(name);
            control->setFocus();
            QTest::keyClick(control, Qt::Key_A, Qt::ControlModifier);
            QGuiApplication::clipboard()->setText(ui::fromUtf8(text));
            QTest::keyClick(control, Qt::Key_V, Qt::ControlModifier);
        };
        auto* sources = dialog.findChild<QComboBox*>("comboEventSource");
        sources->setFocus();
        QTest::keyClicks(sources, "O");
        paste("txtEventTitle", title + std::string(100'000, 'x'));
        paste("txtVoiceMailFileName", "it's \"a\"; 100%.wav");
        paste("rtbEmailSubject", subject);
        paste("rtbEmailBody", body);
        // Typed at the end, letter by letter.
        auto* typed = dialog.findChild<QWidget*>("txtEventTitle");
        typed->setFocus();
        QTest::keyClicks(typed, "'--\"");
        person::click(dialog, "cmdOk");
    });
    chooseMenu("mnuFileNewEvent");
    const std::string stored = QString::fromStdString(body).replace("\n", "\r\n").toStdString();
    const std::string notes = title + std::string(100'000, 'x') + "'--\"";
    // Compared whole, but not printed.
    EXPECT_TRUE(rows("SELECT EventSource, EventTitle FROM Events WHERE EventKey > 2") ==
                std::vector<std::string>{source + "|" + notes});
    EXPECT_TRUE(rows("SELECT ContentAttachment, ContentSubject, ContentNote FROM Contents WHERE "
                     "EventKey > 2 ORDER BY ContentType") ==
                (std::vector<std::string>{"it's \"a\"; 100%.wav|" + subject + "|" + stored,
                                          "NULL|" + subject + "|" + stored}));
    EXPECT_EQ(tree->nodeText(tree->selectedKey()), source + " (All)");
}

TEST_F(MainWindow, DuplicateDeclinedSelectsTheExistingEvent) {
    const long existing = add("Backup", "-1");
    open();
    prompts.expect(
        {"A duplicate of this event source and id was found.\nEvent Source: Backup   Event Id:-1\n\n"
         "Are you sure you want to create this event?",
         "Duplicate Monitored Event", BoxIcon::question, BoxButtons::yesNo},
        BoxAnswer::no);
    script.expect("dlgEvent", [&](QWidget& dialog) {
        auto* sources = dialog.findChild<QComboBox*>("comboEventSource");
        sources->setFocus();
        QTest::keyClicks(sources, "B");
        person::click(dialog, "cmdOk");
    });
    chooseMenu("mnuFileNewEvent");
    EXPECT_EQ(tree->selectedKey(), "EventKey-" + std::to_string(existing));
}

TEST_F(MainWindow, GridSwitchesAnEventAtOnceAndDeletesAfterAQuestion) {
    const long key = add("Backup", "17");
    open();
    ASSERT_EQ(grid->gridRowCount(), 2);
    EXPECT_EQ(grid->cellText(1, "EventSource"), "All Corvane Errors");
    EXPECT_EQ(grid->cellText(1, "EventID"), "All");
    EXPECT_EQ(grid->cellText(2, "EventType"), "Errors & Warnings");
    auto* remove = find<QPushButton>("cmdDeleteSelectedEvent");
    const auto click = [&](int row, const char* column) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->cellRectangle(row, column).center());
    };
    const auto active = [&] {
        return rows("SELECT EventActive FROM Events WHERE EventKey = " + std::to_string(key));
    };
    EXPECT_FALSE(remove->isEnabled());
    click(2, "EventSource");
    EXPECT_TRUE(remove->isEnabled());
    EXPECT_EQ(active(), std::vector<std::string>{"0"}) << "a click outside the column changes nothing";
    click(2, "EventActive");
    EXPECT_EQ(active(), std::vector<std::string>{"-1"});
    EXPECT_EQ(grid->currentGridRow(), 2);
    click(2, "EventActive");
    EXPECT_EQ(active(), std::vector<std::string>{"0"});

    // The catch-all event stays, an ordinary one goes after a Yes.
    click(1, "EventSource");
    prompts.expect({"You can not delete this event.  You can only deactivate it.", "Can Not Delete Event",
                    BoxIcon::information, BoxButtons::ok},
                   BoxAnswer::ok);
    QTest::mouseClick(remove, Qt::LeftButton);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, placeOf("EventKey-" + std::to_string(key)));
    const platform::MessageBox question{"Are your sure you want to delete event: Backup (17)",
                                        "Delete Selected Event?", BoxIcon::question, BoxButtons::yesNo};
    prompts.expect(question, BoxAnswer::no);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(grid->gridRowCount(), 2);
    prompts.expect(question, BoxAnswer::yes);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(grid->gridRowCount(), 1);
    EXPECT_EQ(tree->selectedKey(), tree->keyAt(1));
    EXPECT_EQ(visiblePane(), 0);
}

TEST_F(MainWindow, DoubleClickOpensTheEventAndThePopupAddsOneAfterItClosed) {
    const long key = add("Backup", "17");
    open();
    const QPoint cell = grid->cellRectangle(2, "EventSource").center();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell);
    EXPECT_EQ(tree->selectedKey(), "EventKey-" + std::to_string(key));
    EXPECT_EQ(visiblePane(), 1);
    // A real double click ends with a release, which is no click of its own: the event is switched once.
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, placeOf("keyMonitoredEvents"));
    const QPoint flag = grid->cellRectangle(2, "EventActive").center();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                            QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, flag, grid->viewport()->mapToGlobal(flag), Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
        QApplication::sendEvent(grid->viewport(), &event);
    }
    EXPECT_EQ(visiblePane(), 1);
    EXPECT_TRUE(mdlDatabase::isEventActive(key));
    script.expectMenu("mnuPopupAddEvent");
    script.expect("dlgEvent", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, placeOf("keyMonitoredEvents"));
    EXPECT_TRUE(script.finished());
    EXPECT_EQ(tree->selectedKey(), "keyMonitoredEvents");
    // An empty spot chooses nothing and shows the popup of the last node.
    script.expectMenu("mnuPopupAddEvent");
    script.expect("dlgEvent", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, QPoint(10, tree->viewport()->height() - 2));
    EXPECT_TRUE(script.finished());
    EXPECT_EQ(tree->selectedKey(), "keyMonitoredEvents");
}

TEST_F(MainWindow, ShowsRowsThatLackAValue) {
    std::string statements;
    for (int i = 0; i < 12; ++i)
        statements += "INSERT INTO Events(EventSource, EventTitle) VALUES('Bare', '');";
    run(statements);
    const long last = add("Zoned", "5");
    open();
    EXPECT_EQ(grid->gridRowCount(), 14);
    EXPECT_EQ(grid->cellText(2, "EventID"), "");
    EXPECT_TRUE(grid->updatesEnabled());
    EXPECT_EQ(tree->nodeText("EventKey-" + std::to_string(last)), "Zoned (5)");
}

TEST_F(MainWindow, LaysItselfOutWithinItsLimits) {
    open();
    EXPECT_EQ(window->width(), 770);
    EXPECT_EQ(window->height(), 592);
    int third = 3000;
    window->SizeControls(third);
    EXPECT_EQ(tree->geometry().left(), 0);
    EXPECT_EQ(tree->width(), ui::pixels(3000));
    EXPECT_EQ(find<QWidget>("vsviewportDetails_0")->x(), ui::pixels(3040));
    EXPECT_EQ(find<QWidget>("vsviewportDetails_0")->width(), ui::pixels(11550 - 3160));
    window->resize(700, ui::pixels(4000));
    EXPECT_GE(ui::twips(window->height()), 5000) << "a lower window springs back";
    int splitter = 300;
    window->SizeControls(splitter);
    EXPECT_EQ(splitter, 1500);
    splitter = 1'000'000;
    window->SizeControls(splitter);
    EXPECT_EQ(splitter, ui::twips(700) - 1500);
    EXPECT_EQ(find<QWidget>("vsviewportDetails_0")->geometry(),
              find<QWidget>("vsviewportDetails_7")->geometry());

    // Dragged to 300 twips the bar stops at 500 and the layout at 1500.
    auto* area = find<QFrame>("imgSplitter");
    auto* bar = find<QFrame>("picSplitter");
    const QPoint start(2, 50);
    QTest::mousePress(area, Qt::LeftButton, {}, start);
    EXPECT_TRUE(bar->isVisible());
    QTest::mouseMove(area, area->mapFrom(window->centralWidget(), QPoint(ui::pixels(300), 50)));
    EXPECT_EQ(bar->x(), ui::pixels(500));
    QTest::mouseRelease(area, Qt::LeftButton, {}, start);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(area->x(), ui::pixels(1500));
}

TEST_F(MainWindow, ExitLosesUnsavedEditsWithoutAQuestionAndTakesTheOtherWindowsAlong) {
    const long key = add("Backup", "17", "nightly");
    open();
    clickNode("EventKey-" + std::to_string(key));
    person::type(*find<QLineEdit>("txtEventTitle"), "unsaved");
    QWidget other;
    other.show();
    std::string order;
    QObject::connect(window.get(), &frmMain::finalExitRequested, window.get(), [&] {
        order =
            std::string(window->isVisible() ? "open" : "closed") + (other.isVisible() ? " open" : " closed");
    });
    chooseMenu("mnuExit");
    EXPECT_EQ(order, "closed closed");
    EXPECT_EQ(value("SELECT EventTitle FROM Events WHERE EventKey = " + std::to_string(key)), "nightly");
}

TEST_F(MainWindow, PopupsAndDeleteFollowTheNodesType) {
    open();
    const std::pair<long, const char*> rows[] = {
        {nodeTypeCategoryEvents, "mnuPopupAddEvent"},
        {nodeTypeCategoryRecipients, "mnuPopupNewRecipient"},
        {nodeTypeCategoryReports, "mnuPopupViewReport"},
        {nodeTypeCategoryExclusions, "mnuPopupExclusion_Create"},
        {nodeTypeEvent, "mnuPopupDeleteEvent"},
        {nodeTypeEventRecipient, "mnuPopupRemoveRecipient"},
        {nodeTypeRecipient, "mnuPopupDeleteRecipient"},
        {nodeTypeReport, "mnuPopupExportReport"},
        {nodeTypeReportItem, "mnuPopupExportReport"},
        {nodeTypeEventRecipientDevice, ""},
        {nodeTypeRecipientEvent, ""},
        {nodeTypeExclusion, "mnuPopupExclusion_Delete"},
    };
    for (const auto& [type, expected] : rows) {
        window->checkMenus(type);
        QString shown;
        for (const QAction* entry : find<QMenu>("mnuPopup")->actions())
            if (entry->isVisible())
                shown += entry->objectName();
        EXPECT_EQ(shown, expected) << type;
        EXPECT_EQ(find<QAction>("mnuFileDelete")->isEnabled(),
                  type == nodeTypeEvent || type == nodeTypeRecipient || type == nodeTypeExclusion)
            << type;
        EXPECT_TRUE(find<QAction>("mnuFileNewEvent")->isEnabled());
    }
}

TEST_F(MainWindow, ShowsTheCurrentLogFileInAnotherProgram) {
    const auto program = host.programFolder() / "notepad";
    const auto seen = host.root() / "seen";
    std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$1\" > '" << seen.string() << ".new'\nmv '"
                           << seen.string() << ".new' '" << seen.string() << "'\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    mdlDatabase::setConfigurationSetting("OutputFilePath", "/a folder/the log.txt");
    open();
    chooseMenu("mnuViewCurrentLogFile");
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(seen); }));
    std::ifstream file(seen);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "1\n/a folder/the log.txt\n");
}

}  // namespace
