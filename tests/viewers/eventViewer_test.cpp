#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTableView>
#include <QtTest/QTest>

#include "eventViewerFixture.h"
#include "host/eventViewer/eventText.h"
#include "platform/machine/host.h"
#include "server/clipboardEvent.h"
#include "service/sources/journalChoice.h"
#include "support/journalFolder.h"

namespace {

using viewer::Language;

platform::EventRecord record(std::uint16_t type, const std::string& source, std::uint32_t id,
                             const std::string& description = "text") {
    return {"Application", "2026-11-24 14:05:09", source, id, type, 0, "", "CORVANE01", description};
}

class EventViewer : public viewerTest::EventViewer {
  protected:
    QString sources() const { return column(3); }
};

TEST_F(EventViewer, CopiesInAFormThatTheConsoleReadsInEveryLanguage) {
    EXPECT_EQ(
        viewer::copiedText(record(2, "Disk", 51, "one\ntwo\r\nthree"), viewer::texts(Language::english)),
        "Event Type:\tWarning\r\nEvent Source:\tDisk\r\nEvent Category:\tNone\r\nEvent ID:\t51\r\n"
        "Date:\t\t11/24/2026\r\nTime:\t\t2:05:09 PM\r\nUser:\t\tN/A\r\nComputer:\tCORVANE01\r\n"
        "Description:\r\none\r\ntwo\r\nthree\r\n");
    const std::pair<std::uint16_t, int> types[] = {{1, 0}, {2, 1}, {4, 2}, {8, 0}, {16, 0}};
    for (const Language language : {Language::english, Language::french, Language::german})
        for (const auto& [type, expected] : types) {
            std::string source, id;
            std::int16_t parsed = -1;
            EXPECT_TRUE(mdlUtility::checkEventFromClipboardText(
                viewer::copiedText(record(type, "Two words", 4711, ""), viewer::texts(language)), source, id,
                parsed));
            EXPECT_EQ(source, "Two words");
            EXPECT_EQ(id, "4711");
            EXPECT_EQ(parsed, expected) << static_cast<int>(language) << " " << type;
        }
}

TEST_F(EventViewer, ShowsTheNewestFirstAndWhatIsChosen) {
    platform::appendEvent(record(1, "Old", 1, "the beginning"));
    platform::appendEvent(record(2, "Middle", 2));
    platform::appendEvent(record(1, "New", 3, "the end"));
    open();
    EXPECT_EQ(sources(), "New|Middle|Old");
    EXPECT_EQ(cell(0, 0) + cell(0, 1) + cell(0, 2), "Error11/24/20262:05:09 PM");
    EXPECT_TRUE(find<QPlainTextEdit>("txtDetails").toPlainText().endsWith("the end\n"));
    EXPECT_TRUE(table->hasFocus());

    // The chosen event stays chosen when newer ones come.
    QTest::keyClick(table, Qt::Key_Down);
    platform::appendEvent(record(4, "Newest", 4));
    QTest::keyClick(window.get(), Qt::Key_F5);
    settle();
    EXPECT_EQ(sources(), "Newest|New|Middle|Old");
    EXPECT_EQ(table->currentIndex().row(), 2);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().contains("Event Source:\tMiddle\r\n"));

    person::chooseRow(find<QComboBox>("comboType"), 1);
    EXPECT_EQ(sources(), "New|Old");
    EXPECT_EQ(find<QLabel>("lblCount").text(), "2 of 4 events");
    QTest::keyClicks(&find<QLineEdit>("txtFind"), "BEGINNING");
    settle();
    EXPECT_EQ(table->currentIndex().row(), 1);
    person::click(*window, "cmdCopy");
    EXPECT_TRUE(QApplication::clipboard()->text().contains("the beginning"));
    person::chooseRow(find<QComboBox>("comboType"), 4);
    EXPECT_FALSE(find<QPushButton>("cmdCopy").isEnabled());
    EXPECT_EQ(find<QPlainTextEdit>("txtDetails").toPlainText(), "");
}

TEST_F(EventViewer, AnEmptyLogIsEmptyAndOneThatCannotBeReadSaysSo) {
    open();
    EXPECT_EQ(sources(), "");
    person::type(find<QLineEdit>("txtFind"), "x");
    person::click(*window, "cmdPrevious");
    settle();
    EXPECT_EQ(find<QLabel>("lblResult").text(), "Not found: x");
    std::filesystem::create_directories(platform::host::eventLogsFolder() / "System.log");
    person::chooseRow(find<QComboBox>("comboLog"), 1);
    settle();
    EXPECT_FALSE(window->findChild<QWidget*>("cmdCopy")->isEnabled());
    EXPECT_NE(window->statusBar()->currentMessage(), "");
}

TEST_F(EventViewer, AFilterLooksThroughTheWholeLogAndSaysWhenItCannot) {
    const auto fill = [&] {
        platform::appendEvent(record(2, "First", 1));
        const std::string longText(100000, 'x');
        for (unsigned i = 0; i < 150; ++i)
            platform::appendEvent(record(4, "Noise", i, longText));
    };
    fill();
    open();
    auto& type = find<QComboBox>("comboType");
    QTest::keyClicks(&type, "W");
    ASSERT_TRUE(QTest::qWaitFor([&] { return sources() == "First"; }, 30000));
    EXPECT_EQ(find<QLabel>("lblCount").text(), "1 of 151 events");
    EXPECT_TRUE(find<QPushButton>("cmdCopy").isEnabled());
    QTest::keyClick(window.get(), Qt::Key_F5);
    settle();
    EXPECT_EQ(table->currentIndex().row(), 0) << "the chosen event is found again, however old";
    QTest::keyClicks(&type, "E");
    EXPECT_EQ(sources(), "");
    settle();

    // Something else has taken the log's place.
    const auto file = platform::host::eventLogsFolder() / "Application.log";
    std::filesystem::remove(file);
    std::filesystem::create_directories(file);
    // Whoever had it open may have read it to its end.
    QTest::keyClick(window.get(), Qt::Key_F5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window->statusBar()->currentMessage().isEmpty(); }));
}

TEST_F(EventViewer, TurnsTheJournalOverWhereTheHostWatchesIt) {
    if (!support::JournalFolder::isPossible())
        GTEST_SKIP() << "systemd-journal-remote is not installed";
    open();
    EXPECT_EQ(find<QComboBox>("comboLog").count(), 3);
    support::JournalFolder journal(host.root() / "journal");
    std::vector<support::JournalEntry> entries;
    for (std::uint64_t second = 1'700'000'000; second < 1'700'001'200; ++second)
        entries.push_back(support::JournalFolder::message(second, second % 2 ? "sshd" : "cron", "Hello"));
    journal.append("system", entries);
    service::chooseJournal({true, journal.path()});
    open();
    person::chooseRow(find<QComboBox>("comboLog"), 3);
    settle();
    ASSERT_GE(table->model()->rowCount(), 500);
    EXPECT_EQ(cell(0, 3) + cell(1, 3), "sshdcron");
    // A copied record is one that the console takes over.
    clickRow(0);
    person::click(*window, "cmdCopy");
    std::string source, id;
    std::int16_t type = -1;
    EXPECT_TRUE(mdlUtility::checkEventFromClipboardText(QApplication::clipboard()->text().toStdString(),
                                                        source, id, type));
    EXPECT_EQ(source + " " + id, "sshd 0");

    // Under its caption stands the journal, and no other log, also when it is switched off meanwhile.
    service::chooseJournal({false, journal.path()});
    QTest::keyClick(window.get(), Qt::Key_F5);
    settle();
    EXPECT_EQ(cell(0, 3), "sshd");
}

}  // namespace
