// The console on a demonstration host, beside the real programs of both services: what it imports from the
// legacy notifier, what of its test reaches the service, and the service's log.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <QAction>
#include <QPushButton>
#include <QtTest/QTest>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/state.h"
#include "database/settings.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/services/serviceManager.h"
#include "server/serviceControl.h"
#include "support/demonstration.h"
#include "ui/widgets/keyedTree.h"

namespace {

namespace fs = std::filesystem;
using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using support::Demonstration;
using support::Lines;

class Import : public Demonstration {
  protected:
    void expectBoxes(bool serviceRuns, const Lines& duplicates) {
        expectQuestion(
            "This will import existing Kestrine Notifier events.\nAre you sure you want to do this?",
            "Import KTN Events", BoxAnswer::yes);
        if (serviceRuns)
            expectQuestion(
                "The TsKESN service must be stopped inorder to import KTN events.\n"
                "Do you want the QLN to stop the service now?",
                "TsKESN Service Running", BoxAnswer::yes);
        for (const std::string& event : duplicates)
            if (event.empty())
                prompts.expect(
                    {"Event Source: KESN_TapeRobot is not a valid source on this server.  This entry will "
                     "not be imported.\nEntry - KESN_TapeRobot 9",
                     "Invalid Source", BoxIcon::information, BoxButtons::ok},
                    BoxAnswer::ok);
            else
                expectQuestion("A duplicate of this event source and id was found.\nEvent Source: " + event +
                                   "\n\nAre you sure you want to create this event?",
                               "Duplicate Monitored Event", BoxAnswer::no);
    }
    std::string legacyState() {
        const std::string services = qlnhost("services");
        return services.substr(services.find("TsKesnSvr"));
    }
};

TEST_F(Import, StopsTheRunningLegacyServiceAndBringsItsEventsOver) {
    const fs::path folder = host.root() / "HubServer" / "Kesn";
    const std::string legacy = platform::files::readFile(folder / "KESN.MDB");
    EXPECT_FALSE(fs::exists(platform::host::menuFolder() / "Corvane" / "KTN Utility.desktop"));
    EXPECT_EQ(legacyState(), "TsKesnSvr        running\n");

    expectBoxes(true, {"", "MeridaneCorvane_CallMgr   Event Id:412"});
    choose("mnuImportEvents");
    EXPECT_TRUE(prompts.finished());
    EXPECT_EQ(legacyState(), "TsKesnSvr        stopped\n");
    EXPECT_EQ(linesOf(folder / "TsKesnSvr.log"),
              (Lines{"TsKESN started", "Events in KESN.MDB: 6", "TsKESN stopped"}));
    const Lines imported{"MeridaneCorvane_CallMgr|412|0", "MeridaneCorvane_AudioText|-1|0", "DiskQuota|36|0"};
    EXPECT_EQ(
        rows("SELECT EventSource, EventId, EventActive FROM Events WHERE EventTitle = 'Imported from KESN "
             "service' ORDER BY EventKey"),
        imported);
    EXPECT_EQ(gMainWindow->tvNavigation->nodeText(
                  "EventKey-" + rows("SELECT EventKey FROM Events WHERE EventId = 36").at(0)),
              "DiskQuota (36)");
    EXPECT_GE(host.countInLog("ERROR:("), 1) << "the entry without an id is told in the log alone";

    expectBoxes(false, {"MeridaneCorvane_CallMgr   Event Id:412", "MeridaneCorvane_AudioText   Event Id:-1",
                        "DiskQuota   Event Id:36", "", "MeridaneCorvane_CallMgr   Event Id:412"});
    choose("mnuImportEvents");
    EXPECT_TRUE(prompts.finished());
    EXPECT_EQ(rows("SELECT Count(*) FROM Events WHERE EventTitle = 'Imported from KESN service'"),
              Lines{"3"});
    EXPECT_EQ(platform::files::readFile(folder / "KESN.MDB"), legacy);
}

// The legacy service misbehaves by a value of its own key. It ends with its host.
TEST_F(Import, LeavesALegacyServiceThatDoesNotStop) {
    mdlUtility::myStopService("tskesnsvr");
    host.setRegistry("SOFTWARE\\Tessaly\\Kesn", "ServiceBehaviour", std::string("hangInStop"));
    qlnhost("services start tskesnsvr");
    expectBoxes(true, {});
    prompts.expect(
        {"Unable to stop the TsKESN service, you must manually stop this service and try the import again.",
         "Cannot Stop TsKESN Service", BoxIcon::critical, BoxButtons::ok},
        BoxAnswer::ok);
    choose("mnuImportEvents");
    EXPECT_TRUE(prompts.finished());
    EXPECT_EQ(legacyState(), "TsKesnSvr        stop pending\n");
    EXPECT_EQ(rows("SELECT Count(*) FROM Events"), Lines{"2"});
    EXPECT_TRUE(mdlUtility::myStopService("hbqlnsvc"));
}

class ServiceLog : public Demonstration {
  protected:
    fs::path file() const { return host.root() / "Service" / "HbQlnSvc.log"; }
    // The line that begins so and those behind it, once it is there.
    Lines logFrom(const std::string& beginning) {
        for (int i = 0; i < 1000; ++i) {
            const Lines lines = linesOf(file());
            const auto found =
                std::ranges::find_if(lines, [&](const auto& line) { return line.starts_with(beginning); });
            if (found != lines.end())
                return {found, lines.end()};
            platform::wait(std::chrono::milliseconds(10));
        }
        return {};
    }
    std::string aliasOf(const std::string& person) const {
        return support::query(platform::host::directoryDatabase(),
                              "SELECT Alias FROM GlobalSubscriber WHERE DirectoryId = '" + person + "'")
            .at(0);
    }
    // The one mail in the mailbox whose address begins so, once it is there.
    static std::string mailTo(const std::string& address) {
        std::string text;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            const fs::path mail = platform::host::folder() / "mail";
            if (fs::exists(mail))
                for (const auto& box : fs::directory_iterator(mail))
                    if (box.path().filename().string().starts_with(address) && fs::exists(box.path() / "new"))
                        for (const auto& file : fs::directory_iterator(box.path() / "new"))
                            text = platform::files::readFile(file.path());
            return !text.empty();
        })) << address;
        return text;
    }
    // Ids of the processes that run the host's text viewer on the file.
    std::vector<int> viewers() const {
        std::vector<int> found;
        for (const auto& entry : fs::directory_iterator("/proc")) {
            std::ifstream stream(entry.path() / "cmdline");
            std::ostringstream read;
            read << stream.rdbuf();
            const std::string words = read.str();
            if (words.ends_with(std::string("notepad") + '\0' + file().string() + '\0'))
                found.push_back(std::stoi(entry.path().filename().string()));
        }
        return found;
    }
};

TEST_F(ServiceLog, IsWhatTheMenuOpensInTheTextViewer) {
    EXPECT_EQ(mdlDatabase::getConfigurationSetting("OutputFilePath"), file().string());
    EXPECT_FALSE(logFrom("HbQlnSvc started").empty());
    choose("mnuViewCurrentLogFile");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !viewers().empty(); }, 10000));
    for (const int viewer : viewers())
        ::kill(viewer, SIGTERM);
    EXPECT_TRUE(QTest::qWaitFor([&] { return viewers().empty(); }, 10000));
    EXPECT_EQ(host.countInLog("ERROR", "mnuViewCurrentLogFile_Click", ""), 0);
}

// The service reads the database as soon as it meets the event, so it finds what was written before that.
TEST_F(ServiceLog, ATestReachesTheDevicesOfThatRecipientWithTheUsualContent) {
    const std::string hidden = std::to_string(core::gIgnoreEventKey);
    const std::string person =
        support::query(platform::host::directoryDatabase(), "SELECT DirectoryId FROM GlobalSubscriber").at(0);
    support::run(host.databaseFile(),
                 "INSERT INTO Recipients VALUES (1, 'Night shift', -1), (2, 'Day shift', -1);"
                 "INSERT INTO Device VALUES (1, 1, '" +
                     person +
                     "', -1), (2, 4, 'night@example.org', -1), (3, 4, 'day@x', -1);"
                     "INSERT INTO DeviceRecipient VALUES (1, 1), (2, 1), (3, 2);"
                     // What an earlier test and another hand have left.
                     "UPDATE Events SET EventActive = 0 WHERE EventKey = " +
                     hidden +
                     "; UPDATE Contents SET ContentAttachment = 'old.wav', ContentSubject = 'old', "
                     "ContentNote = 'old' "
                     "WHERE EventKey = " +
                     hidden + "; INSERT INTO EventDevice VALUES (" + hidden + ", 3, -1);");
    EXPECT_FALSE(logFrom("HbQlnSvc started").empty());
    gMainWindow->loadNavigationTree({}, 1);
    auto* test = gMainWindow->findChild<QPushButton*>("cmdTestNotification");
    ASSERT_TRUE(test->isVisible() && test->isEnabled());
    const std::string question =
        "This will create an informational event log message and attempt notification for all of this "
        "recipients "
        "devices.\nDo you want to perform the test?";
    expectQuestion(question, "Test notification for this recipient", BoxAnswer::no);
    QTest::mouseClick(test, Qt::LeftButton);
    expectQuestion(question, "Test notification for this recipient", BoxAnswer::yes);
    QTest::mouseClick(test, Qt::LeftButton);
    // Nothing is written behind the event: the pause before it is longer than a file's time is coarse.
    EXPECT_LT(fs::last_write_time(host.databaseFile()),
              fs::last_write_time(platform::host::eventLogsFolder() / "Application.log"));
    const Lines found = logFrom("Found");
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found[0],
              "Found in the Application log: QLNTest 10001, Information; monitored and active as event " +
                  hidden + ", \"$$IGNORE\"");
    const std::string mail = mailTo("night@example.org");
    EXPECT_NE(mail.find("QLNTest[10001] on "), std::string::npos) << mail;
    EXPECT_NE(mail.find("Event ID:          10001\n"), std::string::npos) << mail;
    EXPECT_NE(mail.find("Notes:             $$IGNORE\n"), std::string::npos) << mail;
    EXPECT_NE(mailTo(aliasOf(person) + "@").find("QLN_Default_ENU.wav"), std::string::npos);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return rows("SELECT Count(*) FROM NotificationLog WHERE EventSource = 'QLNTest'") == Lines{"2"};
    }));

    gMainWindow->loadNavigationTree({}, 2);
    expectQuestion(question, "Test notification for this recipient", BoxAnswer::yes);
    QTest::mouseClick(test, Qt::LeftButton);
    EXPECT_NE(mailTo("day@x"), "") << "a test is not held back";
    EXPECT_EQ(rows("SELECT Count(*) FROM NotificationLog WHERE DeviceAddress = 'night@example.org'"),
              Lines{"1"})
        << "the devices of the first test are off the event";
}

}  // namespace
