#include "app/mdlMain.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QAction>
#include <QProcess>
#include <QtTest/QTest>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

#include "core/classLog.h"
#include "core/state.h"
#include "database/settings.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "support/processEnd.h"
#include "support/scriptedPrompts.h"
#include "support/serviceHost.h"
#include "support/serviceWindows.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"

namespace {

namespace fs = std::filesystem;
using platform::BoxAnswer;
using platform::BoxIcon;

constexpr char tessaly[] = "Software\\Tessaly";
constexpr char serviceKey[] = "System\\CurrentControlSet\\Services\\HbQlnSvc";

class Start : public ::testing::Test {
  protected:
    void makeServer(std::uint32_t version, std::uint32_t build) {
        host.setRegistry(tessaly, "Version Number", version);
        host.setRegistry(tessaly, "Build Number", build);
    }
    void makeReady(bool installed = true) {
        makeServer(0x00040000, 0x00010000);
        if (installed)
            host.installService();
        host.createRegistryKey("SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service");
        host.makeDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId, DtmfAccessId)",
                            "CREATE TABLE DistributionList(DisplayName, DirectoryId)"});
    }
    void expectServiceWarning() {
        prompts.expect(
            {"The HbQlnSvc service is not running.  No notifications will happen until the service is "
             "started successfully.",
             "QLN Service not started", BoxIcon::exclamation},
            BoxAnswer::ok);
    }
    fs::path emptyDatabase() {
        const fs::path file = host.root() / "empty.db";
        std::ofstream(file).flush();
        support::run(file, "CREATE TABLE t(x); DROP TABLE t;");
        return file;
    }
    // Runs Main and gives the exit code if it ended the process, -1 if it came up.
    int runMain() {
        platform::WindowStation station("QLNAdmin");
        try {
            mdlMain::Main(station);
        } catch (const support::ProcessEnded& end) {
            return end.exitCode;
        }
        return -1;
    }
    bool backupExists() { return fs::exists(host.databaseFolder() / "QLNDB_BKP.MDB"); }

    ~Start() override { delete gMainWindow; }

    support::ServiceHost host;
    support::ScriptedPrompts prompts;
    support::CatchProcessEnd catchEnd;
};

TEST_F(Start, RefusesAMachineThatIsNoServerAndAnOldOne) {
    prompts.expect({"QLNAdmin can only be run from a Meridane Corvane server.  Exiting.",
                    "QLNAdmin not running on a Meridane Corvane server.", BoxIcon::critical},
                   BoxAnswer::ok);
    EXPECT_EQ(runMain(), 1);
    makeServer(0x00030001, 0x00000000);
    prompts.expect({"QLNAdmin requires at least version 3.1(1).\nYou are currently running version: 3.1(0.0)",
                    "QLNAdmin Required Minimum Version", BoxIcon::critical},
                   BoxAnswer::ok);
    EXPECT_EQ(runMain(), 1);
    EXPECT_FALSE(fs::exists(host.databaseFile())) << "nothing is opened before the refusal";
    // The oldest version that is served gets past it, and is refused for its missing service only.
    makeServer(0x00030001, 0x00010000);
    prompts.expect({"The Quillon Service must be installed to use this application.  Exiting.",
                    "Quillon Service not installed!", BoxIcon::critical},
                   BoxAnswer::ok);
    EXPECT_EQ(runMain(), 1);
    EXPECT_TRUE(fs::exists(host.databaseFile()));
    EXPECT_FALSE(backupExists());
}

TEST_F(Start, RefusesWithTheReasonWhenTheRegistryCannotBeRead) {
    makeReady();
    const fs::path store = platform::host::registryFile();
    const std::string text = "QLNAdmin can only be run from a Meridane Corvane server.  Exiting.\n\n";
    const std::string title = "QLNAdmin not running on a Meridane Corvane server.";
    const std::string good = platform::files::readFile(store);
    platform::files::writeFile(store, good + "[half a ke");
    const long line = std::ranges::count(good, '\n') + 1;
    prompts.expect({text + "Path/File access error (" + store.string() + ":" + std::to_string(line) +
                        ": a key without ']')",
                    title, BoxIcon::critical},
                   BoxAnswer::ok);
    EXPECT_EQ(runMain(), 1);
    EXPECT_EQ(platform::files::readFile(store), good + "[half a ke");
    fs::remove(store);
    fs::create_directory(store);
    prompts.expect({text + "Path/File access error (" + store.string() + " is no ordinary file)", title,
                    BoxIcon::critical},
                   BoxAnswer::ok);
    EXPECT_EQ(runMain(), 1);
    EXPECT_FALSE(fs::exists(host.databaseFile()));
}

// An unusable database is told once, an unusable log not at all: the console comes up, empty, and ends
// orderly.
TEST_F(Start, ComesUpWithoutAUsableDatabaseOrLog) {
    makeReady();
    const fs::path fresh = host.databaseFolder() / "QLNDB_FRESH.MDB";
    const fs::path backup = host.databaseFolder() / "QLNDB_BKP.MDB";
    const std::string good = platform::files::readFile(fresh);
    fs::remove(fresh);
    platform::files::writeFile(backup, "of better days");
    support::ManualClock clock;
    const auto expectTrouble = [&](const std::string& reason, bool withBackup = true) {
        prompts.expect({"The database cannot be used:\n" + host.databaseFile().string() + "\n\n" + reason +
                            "\n\nIt was left as it is. " +
                            (withBackup ? "The last backup is\n" + backup.string() : "There is no backup."),
                        "QLNAdmin", BoxIcon::critical},
                       BoxAnswer::ok);
    };
    const auto runWith = [&](const std::string& shape, const std::string& reason) {
        SCOPED_TRACE(shape.size());
        platform::files::writeFile(host.databaseFile(), shape);
        expectTrouble(reason);
        expectServiceWarning();
        EXPECT_EQ(runMain(), -1);
        ASSERT_NE(gMainWindow, nullptr);
        EXPECT_TRUE(gMainWindow->isVisible());
        EXPECT_THROW(mdlMain::myFinalExit(), support::ProcessEnded);
        EXPECT_EQ(platform::files::readFile(host.databaseFile()), shape);
        EXPECT_EQ(platform::files::readFile(backup), "of better days");
        delete gMainWindow;
        core::resetState();
    };
    const std::string file = host.databaseFile().string();
    runWith("", "file is not a database: " + file);
    runWith("no database at all", "file is not a database: " + file);
    runWith(good.substr(0, good.size() / 2), "database disk image is malformed: " + file);
    // A database without a table.
    runWith(platform::files::readFile(emptyDatabase()), "It is empty.");
    EXPECT_GE(host.countInLog("Err.Number = -2147467259"), 3);
    core::resetLog();
    fs::remove_all(host.programFolder() / "LOGS");
    std::ofstream(host.programFolder() / "LOGS") << "no folder";
    fs::remove(host.databaseFile());
    expectTrouble("unable to open database file: " + file);
    expectServiceWarning();
    EXPECT_EQ(runMain(), -1) << "neither database, nor template, nor log";
    EXPECT_FALSE(fs::exists(host.databaseFile()));
}

// The most of a damaged file can be read, so its windows show what there is, and nothing is written to it.
TEST_F(Start, LeavesADamagedDatabaseAsItIs) {
    makeReady();
    host.openConfiguration();
    const long root =
        std::stol(support::query(host.databaseFile(),
                                 "SELECT rootpage FROM sqlite_master WHERE name = 'NotificationLog'")
                      .at(0));
    const long pageSize = std::stol(support::query(host.databaseFile(), "PRAGMA page_size").at(0));
    support::run(host.databaseFile(),
                 "INSERT INTO Recipients VALUES (1, 'Ana', -1); INSERT INTO Device VALUES (1, 2, '55', -1);"
                 "INSERT INTO DeviceRecipient VALUES (1, 1)");
    core::gDatabase.close();
    std::string damaged = platform::files::readFile(host.databaseFile());
    damaged.replace(static_cast<std::size_t>((root - 1) * pageSize), 8, 8, '\xff');
    platform::files::writeFile(host.databaseFile(), damaged);
    core::gDatabase.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + host.databaseFile().string());
    const std::string reason = core::gDatabase.damage();
    ASSERT_NE(reason, "");
    prompts.expect({"The database cannot be used:\n" + host.databaseFile().string() + "\n\n" + reason +
                        "\n\nIt was left as it is. There is no backup.",
                    "QLNAdmin", BoxIcon::critical},
                   BoxAnswer::ok);
    expectServiceWarning();
    EXPECT_EQ(runMain(), -1);
    ASSERT_NE(gMainWindow, nullptr);
    EXPECT_TRUE(gMainWindow->tvNavigation->contains("RecipientKey:1"));
    // Whatever a window still tries.
    mdlDatabase::setConfigurationSetting("MaxDiag", "-1");
    EXPECT_GE(host.countInLog("ERROR", "setConfigurationSetting", "Err.Number"), 1);
    support::ManualClock clock;
    EXPECT_THROW(mdlMain::myFinalExit(), support::ProcessEnded);
    EXPECT_EQ(platform::files::readFile(host.databaseFile()), damaged);
    EXPECT_FALSE(backupExists());
}

TEST_F(Start, TellsThatItBeginsAnewBesideABackup) {
    makeReady();
    const fs::path backup = host.databaseFolder() / "QLNDB_BKP.MDB";
    platform::files::writeFile(backup, "of better days");
    const fs::path kept = host.databaseFolder() / "QLNDB_BKP_1.MDB";
    prompts.expect({"There was no database:\n" + host.databaseFile().string() +
                        "\n\nA new one was made. The last backup of the one before is\n" + kept.string(),
                    "QLNAdmin", BoxIcon::exclamation},
                   BoxAnswer::ok);
    expectServiceWarning();
    ASSERT_EQ(runMain(), -1);
    support::ManualClock clock;
    EXPECT_THROW(mdlMain::myFinalExit(), support::ProcessEnded);
    EXPECT_NE(platform::files::readFile(backup), "of better days");
    EXPECT_EQ(platform::files::readFile(kept), "of better days");
}

TEST_F(Start, ComesUpInItsOrderAndEndsWithABackup) {
    makeReady();
    expectServiceWarning();
    ASSERT_EQ(runMain(), -1);
    ASSERT_NE(gMainWindow, nullptr);
    EXPECT_TRUE(gMainWindow->isVisible());
    EXPECT_EQ(core::gProductName, "Quillon Service");
    EXPECT_EQ(core::gIgnoreEventKey,
              std::stol(support::query(host.databaseFile(),
                                       "SELECT EventKey FROM Events WHERE EventTitle = '$$IGNORE'")
                            .at(0)));
    EXPECT_FALSE(core::gViewsSupported);
    // Every step's entry line, in the fixed order.
    std::vector<std::string> order;
    for (const std::string& line : host.logLines())
        for (const char* step : {"checkSupportNotificationDevices", "removeKTNShortcuts", "openDatabase",
                                 "upgradeDatabase", "installQLNService", "openCorvaneDB", "getIgnoreEventKey",
                                 "determineViewsSupport", "rebuildAddressDetailsTable",
                                 "makeInitialDatabaseChanges", "loadNavigationTree", "isServiceRunning"})
            if (line.find("Entering ") != std::string::npos &&
                line.find(std::string("]") + step + "_0") != std::string::npos)
                order.push_back(step);
    EXPECT_EQ(order, (std::vector<std::string>{"checkSupportNotificationDevices", "removeKTNShortcuts",
                                               "openDatabase", "upgradeDatabase", "installQLNService",
                                               "openCorvaneDB", "getIgnoreEventKey", "determineViewsSupport",
                                               "rebuildAddressDetailsTable", "makeInitialDatabaseChanges",
                                               "loadNavigationTree", "isServiceRunning"}));
    EXPECT_FALSE(backupExists());
    support::ManualClock clock;
    EXPECT_THROW(mdlMain::myFinalExit(), support::ProcessEnded);
    EXPECT_TRUE(backupExists());
    EXPECT_EQ(clock.slept, std::chrono::milliseconds(500));
    // Every line of the run has the one form.
    const std::regex form(R"((    Info| Warning|   ERROR| VerInfo):\(.{45}\) .*)");
    for (const std::string& line : host.logLines())
        EXPECT_TRUE(std::regex_match(line, form)) << line;
}

TEST_F(Start, TheFirstRunAsksForThePasswordAndOpensWithARunningService) {
    makeReady(false);
    support::FastClock clock;
    support::ScriptedPassword password;
    password.answers = {"wrong", std::nullopt};
    prompts.expect(
        {"The QLN Service could not be started.  Typically this is because of an invalid password.  "
         "Please try again.",
         "QLN Service failed to start", BoxIcon::critical},
        BoxAnswer::ok);
    prompts.expect({"The Quillon Service must be installed to use this application.  Exiting.",
                    "Quillon Service not installed!", BoxIcon::critical},
                   BoxAnswer::ok);
    EXPECT_EQ(runMain(), 1) << "cancelled";
    EXPECT_EQ(core::gCorvaneDb.state(), platform::ObjectState::closed);
    EXPECT_EQ(gMainWindow, nullptr);
    EXPECT_FALSE(backupExists());

    platform::registry().deleteKey(std::string("HKEY_LOCAL_MACHINE\\") + serviceKey);
    host.setBehaviour("", 200);
    password.answers = {support::servicePassword};
    EXPECT_EQ(runMain(), -1) << "no warning comes: the service runs";
    ASSERT_NE(gMainWindow, nullptr);
    EXPECT_TRUE(gMainWindow->isVisible());
    EXPECT_EQ(host.processes(), 1);
}

TEST_F(Start, FindsTheDevicesThatTheHostSupports) {
    mdlMain::checkSupportNotificationDevices();
    EXPECT_FALSE(core::gSnmpSupported || core::gFailoverSupported || core::gPagerSupported);
    constexpr char agents[] = "SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents";
    host.setRegistry(agents, "MeridaneCorvane", std::string());
    host.setRegistry("SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0", "Primary", 1u);
    mdlMain::checkSupportNotificationDevices();
    EXPECT_FALSE(core::gSnmpSupported) << "an empty value is no agent";
    EXPECT_TRUE(core::gFailoverSupported);
    host.setRegistry(agents, "MeridaneCorvane", std::string("agent"));
    mdlMain::checkSupportNotificationDevices();
    EXPECT_TRUE(core::gSnmpSupported);
}

TEST_F(Start, ASecondStartBringsTheFirstWindowToTheFrontAndEnds) {
    makeReady();
    expectServiceWarning();
    platform::WindowStation first("QLNAdmin");
    const mdlMain::InstanceServer server(first);
    mdlMain::Main(first);
    gMainWindow->showMinimized();
    // The real console program, as a second process on the same host.
    const fs::path program = host.programFolder() / "QLNAdmin";
    fs::copy_file(CONSOLE_PROGRAM, program);
    QProcess second;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QLN_HOST", QString::fromStdString((host.root() / "Host").string()));
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    second.setProcessEnvironment(environment);
    second.start(QString::fromStdString(program.string()), {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 20000));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_FALSE(gMainWindow->isMinimized());
    EXPECT_FALSE(backupExists()) << "the end of a second start is no orderly exit";
}

TEST_F(Start, GoesOnAsAFullInstanceWhenNoEarlierWindowIsFound) {
    makeReady();
    platform::WindowStation first("QLNAdmin");
    platform::program::setTitle("another title");
    platform::WindowStation second("QLNAdmin");
    ASSERT_TRUE(second.earlierInstance());
    // The first one answers that it has no such window.
    std::atomic<bool> over = false;
    std::thread answering([&] {
        while (!over) {
            first.serve();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    mdlMain::activatePrevInstance(second);
    over = true;
    answering.join();
    EXPECT_EQ(platform::program::title(), "unwanted instance");
    platform::program::setTitle("QLNAdmin");
}

TEST_F(Start, EndsBesideAnEarlierInstanceThatIsTooBusyToAnswer) {
    makeReady();
    const platform::WindowStation first("QLNAdmin");
    platform::WindowStation second("QLNAdmin");
    EXPECT_THROW(mdlMain::activatePrevInstance(second), support::ProcessEnded);
    platform::program::setTitle("QLNAdmin");
}

}  // namespace
