// The event viewer's list of what was told and what waits, and its answer to who is told.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest/QTest>
#include <ctime>

#include "eventViewerFixture.h"
#include "host/csv.h"
#include "host/eventViewer/csvExport.h"
#include "host/eventViewer/daysCount.h"
#include "host/eventViewer/daysDialog.h"
#include "platform/files/files.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"
#include "service/history/history.h"

namespace {

using service::Outgoing;
using service::State;
using viewer::Language;

class NotificationsLog : public viewerTest::EventViewer {
  protected:
    NotificationsLog() {
        host.openConfiguration();
        run("DELETE FROM Events; INSERT INTO NotificationLog VALUES (3, '2026-11-20 08:00:00', 'Old', 5, "
            "'A@B', "
            "'Delivered');"
            "INSERT INTO Recipients VALUES (1, 'Night', -1), (2, 'Away', 0);"
            "INSERT INTO Device VALUES (1, 4, 'a@b', -1), (2, 6, 'loghost', -1), (3, 2, '555', -1);"
            "INSERT INTO DeviceRecipient VALUES (1, 1), (2, 2), (3, 1);"
            "INSERT INTO Events VALUES (10, 'Disk', 51, 'Watch it', 2, -1, 0, NULL), (11, 'Fan', -1, '', 2, "
            "0, 0, "
            "NULL);"
            "INSERT INTO EventDevice VALUES (10, 1, -1), (10, 2, -1), (10, 3, -1);");
    }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    std::filesystem::path outboxFile() const { return host.root() / "Service" / "HbQlnSvc.db"; }
    // A message that has come so far, with the history that the service writes.
    void add(service::Outbox& outbox, const std::string& address, State state, const std::string& answer,
             int attempts = 1) {
        Outgoing message;
        message.eventKey = 10;
        message.eventSource = "Disk";
        message.eventId = 51;
        message.eventType = 2;
        message.deviceKey = 1;
        message.kind = service::DeviceKind::smtpAddress;
        message.recipient = "Night";
        message.address = address;
        message.subject = "The disk";
        message.body = "is full,\r\n\"very\" full";
        message.created = platform::clock().now();
        service::Outbox::Batch batch(outbox);
        message.key = batch.add(message);
        batch.commit();
        message.attempts = attempts;
        message.answer = answer;
        message.state = state;
        message.settled = message.created;
        message.nextAttempt = message.created + std::chrono::hours(1);
        outbox.update({message});
        if (state == State::waiting)
            return;
        platform::Connection database;
        database.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + host.databaseFile().string());
        service::writeHistory(database, {message});
        message.outcome = std::exchange(message.state, State::done);
        outbox.update({message});
    }
    void showNotifications() {
        person::chooseRow(find<QComboBox>("comboLog"), 2);
        settle();
    }
    QString who() {
        QStringList all;
        auto& tree = find<QTreeWidget>("treeWho");
        for (int i = 0; i < tree.topLevelItemCount(); ++i) {
            const QTreeWidgetItem& event = *tree.topLevelItem(i);
            all << event.text(0) + ": " + event.text(1);
            for (int j = 0; j < event.childCount(); ++j)
                all << event.child(j)->text(0) + ", " + event.child(j)->text(3) + ": " +
                           event.child(j)->text(1);
        }
        return all.join("; ");
    }
    // Presses a button by its key, which takes a while, as the button shows that it is pressed; waits for
    // what the window says to it.
    bool says(Qt::Key key, const QString& begin) {
        window->statusBar()->clearMessage();
        QTest::keyClick(window.get(), key, Qt::AltModifier);
        return QTest::qWaitFor(
            [&] { return window->isAtRest() && window->statusBar()->currentMessage().startsWith(begin); });
    }
    // Answers the next file dialog.
    void saveAs(const std::filesystem::path& file) {
        auto* timer = new QTimer(window.get());
        QObject::connect(timer, &QTimer::timeout, timer, [timer, file] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            timer->deleteLater();
            auto& name = *dialog->findChild<QLineEdit*>();
            name.setText(QString::fromStdString(file.string()));
            QTest::keyClick(&name, Qt::Key_Return);
        });
        timer->start(20);
    }
};

TEST_F(NotificationsLog, JoinsTheHistoryWithWhatWaitsAndSendsAgain) {
    service::Outbox outbox(outboxFile(), 4);
    add(outbox, "a@b", State::told, "250 OK");
    add(outbox, "x@y", State::refused, "550 unknown", 2);
    add(outbox, "c@d", State::waiting, "451 later", 3);
    open();
    showNotifications();
    EXPECT_EQ(column(0), "Waiting|Refused|Told|Told");
    EXPECT_EQ(column(5), "Night|Night|Night|Night") << "also where only the device's address is known";
    EXPECT_EQ(column(6), "SMTP address|SMTP address|SMTP address|SMTP address");
    EXPECT_TRUE(column(7).startsWith("451 later; next attempt "));
    EXPECT_TRUE(column(7).endsWith("|550 unknown|250 OK|Delivered")) << column(7).toStdString();
    EXPECT_EQ(column(8), "3|2|1|");
    EXPECT_EQ(column(9), "c@d|x@y|a@b|A@B");
    EXPECT_FALSE(find<QWidget>("treeWho").isVisible());
    EXPECT_EQ(find<QLabel>("lblCount").text(), "4 of 4 notifications");

    auto& again = find<QPushButton>("cmdSendAgain");
    EXPECT_FALSE(again.isEnabled()) << "it still waits";
    clickRow(1);
    EXPECT_TRUE(find<QPlainTextEdit>("txtDetails").toPlainText().contains("Monitored event:\tWatch it"));
    ASSERT_TRUE(again.isEnabled());
    EXPECT_TRUE(says(Qt::Key_A, "A new message waits for the service."));
    settle();
    EXPECT_EQ(column(0), "Waiting|Waiting|Refused|Told|Told");
    EXPECT_EQ(table->currentIndex().row(), 2) << "the old one stays, and stays chosen";
    EXPECT_TRUE(says(Qt::Key_A, "The same message waits already."));
    // An export in between hinders nobody.
    saveAs(host.root() / "all.csv");
    person::click(*window, "cmdExport");
    ASSERT_FALSE(window->isAtRest());
    clickRow(0);
    clickRow(2);
    EXPECT_TRUE(again.isEnabled());
    settle();
    EXPECT_TRUE(again.isEnabled());
    EXPECT_EQ(outbox.due(platform::clock().now() + std::chrono::minutes(1), service::Lane::mail, {}, 1)
                  .at(0)
                  .address,
              "x@y");
}

TEST_F(NotificationsLog, IsFilteredFollowedCopiedAndExported) {
    service::Outbox outbox(outboxFile(), 4);
    add(outbox, "a@b", State::refused, "=1+1, \"no\"");
    add(outbox, "c@d", State::told, "250 OK");
    open();
    showNotifications();
    auto& outcome = find<QComboBox>("comboOutcome");
    person::chooseRow(outcome, outcome.findText("Refused"));
    settle();
    EXPECT_EQ(column(9), "a@b");
    EXPECT_EQ(find<QLabel>("lblHidden").text(), "Filter: 1 of 3 rows are shown");
    saveAs(host.root() / "out.csv");
    EXPECT_TRUE(says(Qt::Key_E, "1 rows are in "));
    QApplication::setActiveWindow(window.get());
    const std::string text = platform::files::readFile(host.root() / "out.csv");
    EXPECT_EQ(viewer::csvField("a;=1+1") + viewer::csvField("\n =1") + viewer::csvField("1-1"),
              "\"a;'=1+1\"\"'\n '=1\"1-1");
    const auto rows = host::parseCsv(text, "out.csv");
    ASSERT_EQ(rows.size(), 2U) << "what is shown and a header";
    EXPECT_EQ(rows[1].fields[7], "'=1+1, \"no\"") << "no formula";
    EXPECT_EQ(rows[1].fields[9], "a@b");
    EXPECT_EQ(rows[1].fields[12], "is full,\r\n\"very\" full");
    person::chooseRow(outcome, 0);
    auto& source = find<QComboBox>("comboSource");
    person::chooseRow(source, source.findText("Old"));
    settle();
    EXPECT_EQ(column(9), "A@B");
    person::chooseRow(source, 0);
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), "Night");
    QTest::keyClick(window.get(), Qt::Key_Y, Qt::AltModifier);
    settle();
    EXPECT_EQ(column(9), "c@d|a@b|A@B") << "the recipient";
    EXPECT_FALSE(find<QLabel>("lblHidden").isVisible());
    QTest::keyClick(&find<QLineEdit>("txtFind"), Qt::Key_Escape);
    EXPECT_TRUE(table->hasFocus());
    EXPECT_EQ(find<QLineEdit>("txtFind").text(), "");

    person::click(*window, "chkFollow");
    QTest::keyClick(table, Qt::Key_End, Qt::ControlModifier);
    add(outbox, "new@b", State::told, "250 OK");
    EXPECT_TRUE(QTest::qWaitFor([&] { return column(9).startsWith("new@b|"); }));
    EXPECT_EQ(table->currentIndex().row(), 0);
    clickRow(0);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().contains("Address:\tnew@b\r\n"));
}

TEST_F(NotificationsLog, BelowARecordStandsWhoIsTold) {
    const auto moment = platform::clock().now() - std::chrono::hours(3);
    const std::string time = platform::storedForm(platform::localTime(moment));
    platform::appendEvent({"Application", time, "Other", 1, 1, 0, "", "n", ""});
    platform::appendEvent({"Application", time, "Fan", 1, 1, 0, "", "n", ""});
    platform::appendEvent({"Application", time, "Disk", 51, 1, 0, "", "n", ""});
    open();
    EXPECT_EQ(who(),
              "Watch it: ; Night, 555: this host is not set up for such devices: the value Pager\\Gateway is "
              "missing: a mail address with <Number> in it; Night, a@b: told; Away, loghost: the recipient "
              "is inactive");
    clickRow(1);
    settle();
    EXPECT_EQ(who(), "11: the event is inactive");
    QTest::keyClick(table, Qt::Key_Down);
    settle();
    EXPECT_EQ(who(), "");
    EXPECT_EQ(find<QLabel>("lblNobody").text(), "No monitored event has this source and ID.");

    // Told a minute ago: at its own moment the record came before that, now it would be held back.
    run("UPDATE Events SET EventLastNotification = '" +
        platform::storedForm(platform::localTime(platform::clock().now() - std::chrono::minutes(1))) +
        "' WHERE EventKey = 10");
    QTest::keyClick(table, Qt::Key_Home, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(who().contains("Night, a@b: told")) << who().toStdString();
    QTest::keyClick(window.get(), Qt::Key_I, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return who().startsWith("Watch it: held back until "); }))
        << who().toStdString();
    EXPECT_TRUE(who().contains("Night, a@b: within the notification interval"));

    std::filesystem::remove(host.databaseFile());
    QTest::keyClick(table, Qt::Key_Down);
    settle();
    EXPECT_TRUE(find<QLabel>("lblNobody").text().startsWith("Nobody can say who is told: "));
    EXPECT_FALSE(std::filesystem::exists(outboxFile())) << "looking makes nothing";
}

TEST_F(NotificationsLog, TheLastDaysAreCountedAndCancelled) {
    const auto now = platform::clock().now();
    const auto add = [&](std::chrono::hours ago, const char* log) {
        platform::appendEvent(
            {log, platform::storedForm(platform::localTime(now - ago)), "Disk", 51, 1, 0, "", "", ""});
    };
    add(std::chrono::hours(24 * 9), "System");
    add(std::chrono::hours(24 * 2), "System");
    add(std::chrono::hours(24), "Application");
    viewer::DaysDialog dialog(viewer::texts(Language::english), nullptr);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    auto& events = *dialog.findChild<QListWidget*>("listEvents");
    ASSERT_TRUE(QTest::qWaitFor([&] { return events.count() == 2; }));
    EXPECT_EQ(events.currentItem()->text(), "Watch it (Disk 51)");
    QTest::keyClick(&events, Qt::Key_Return);
    auto& table7 = *dialog.findChild<QTableWidget*>("tableDays");
    ASSERT_TRUE(QTest::qWaitFor([&] { return table7.rowCount() == 7; }));
    EXPECT_EQ(dialog.findChild<QLabel*>("lblDays")->text(),
              "2 records would have matched and meant 2 notifications, with an interval of 15 minutes.");
    EXPECT_EQ(table7.item(5, 1)->text(), "1");
    EXPECT_TRUE(
        dialog.findChild<QWidget*>("chart")->accessibleDescription().contains("1 Records, 1 Notifications"));

    // A log that goes on for ever is left when that is asked for.
    viewer::Log endless;
    struct Endless : viewer::LogPages {
        bool hasEarlier() const override { return true; }
        std::vector<viewer::EntryPointer> earlier() override {
            return {std::make_shared<viewer::Entry>(
                viewer::Entry{1, {"System", time, "Disk", 51, 1, 0, "", "", ""}, {}})};
        }
        std::string time = platform::storedForm(platform::localTime(platform::clock().now()));
    };
    endless.open = [] { return std::make_unique<Endless>(); };
    std::atomic<bool> isCancelled = false;
    int told = 0;
    service::Monitoring none;
    EXPECT_FALSE(viewer::countDays({endless}, none, 10, now, 7, isCancelled,
                                   [&](const viewer::DaysProgress& progress) {
        EXPECT_EQ(progress.percent, 0);
        isCancelled = ++told == 50;
    }));
}

// What this thread has worked, in microseconds: other programs on the machine do not count.
long worked() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * 1000000 + time.tv_nsec / 1000;
}

// No turn of the window's loop is to take longer than a frame.
TEST_F(NotificationsLog, AHundredThousandRowsOpenAndAreFilteredWithoutAPause) {
#ifdef __OPTIMIZE__
    constexpr long frame = 16000;
#else
    constexpr long frame = 32000;  // a build for debugging takes about twice as long
#endif
    run("WITH RECURSIVE series(value) AS (SELECT 1 UNION ALL SELECT value + 1 FROM series WHERE value < "
        "100000) "
        "INSERT INTO NotificationLog SELECT value + 100, '2026-11-20 08:00:00', 'Source' || (value % 50), "
        "value % 7, "
        "'address' || value || '@example.net', CASE WHEN value = 99000 THEN 'Refused: 550' ELSE 'Delivered' "
        "END "
        "FROM series");
    open();
    const auto during = [&](const char* what, const std::function<void()>& act) {
        long longest = 0;
        long before = worked();
        const auto look = [&] {
            const long now = worked();
            longest = std::max(longest, now - std::exchange(before, now));
        };
        QTimer pulse;
        QObject::connect(&pulse, &QTimer::timeout, look);
        pulse.start(0);
        act();
        look();
        ASSERT_TRUE(QTest::qWaitFor([this] { return window->isAtRest(); }, 20000)) << what;
        look();
        std::printf("%s: longest turn %ld us\n", what, longest);
        EXPECT_LT(longest, frame) << what;
    };
    // By keys: a list that opens is the toolkit's work.
    const auto choose = [&](const char* list, const char* keys) {
        QTest::keyClicks(&find<QComboBox>(list), keys);
    };
    during("open", [&] { choose("comboLog", "N"); });
    person::click(*window, "chkOnlyMatches");
    for (const QChar letter : QString("address50@"))
        during("text", [&] { QTest::keyClicks(&find<QLineEdit>("txtFind"), letter); });
    EXPECT_EQ(column(9), "address50@example.net");
    during("all again", [&] { person::type(find<QLineEdit>("txtFind"), ""); });
    EXPECT_EQ(table->model()->rowCount(), 100001);
    during("outcome", [&] { choose("comboOutcome", "R"); });
    EXPECT_EQ(table->model()->rowCount(), 1);
    during("source", [&] { choose("comboSource", "Source7"); });
    EXPECT_EQ(table->model()->rowCount(), 0);
    during("both", [&] { QTest::keyClick(&find<QComboBox>("comboOutcome"), Qt::Key_Home); });
    EXPECT_EQ(table->model()->rowCount(), 2000);
}

}  // namespace
