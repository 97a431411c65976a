// The database is shared with a service that writes on its own schedule; here with one that never rests, or
// that keeps its lock for longer than anybody waits.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "core/state.h"
#include "database/events.h"
#include "database/lifecycle.h"
#include "database/settings.h"
#include "platform/ado.h"
#include "support/childProcess.h"
#include "support/killHarness.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using support::ChildProcess;
using support::query;

constexpr auto busyTimeout = 5000ms;

milliseconds timeOf(const std::function<void()>& action) {
    const auto begin = steady_clock::now();
    action();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

class Shared : public ::testing::Test {
  protected:
    Shared() {
        host.setRegistry(core::productRegistryKey, "DatabasePath", host.databaseFolder().string());
        fs::copy_file(host.databaseFolder() / "QLNDB_FRESH.MDB", host.databaseFile());
        support::run(host.databaseFile(),
                     "INSERT INTO Events VALUES(10, 'Backup', 17, 'old', 1, 0, 0, '2026-01-02 03:04:05')");
    }

    // Writes the service's log and columns in transactions without a pause, until it is killed. The log's
    // last row and the catch-all event's notification agree at every moment between two of them.
    ChildProcess::Work service() {
        return [this](const ChildProcess::Ready& ready) {
            platform::Connection database;
            database.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + host.databaseFile().string());
            for (int i = 1;; ++i) {
                const std::string number = std::to_string(i);
                for (const std::string& statement :
                     {std::string("BEGIN IMMEDIATE"),
                      "INSERT INTO NotificationLog VALUES(" + number + ", '" + number +
                          "', 'Backup', 17, 'a@b', 'yes')",
                      "UPDATE Events SET EventLastNotification = '" + number + "' WHERE EventCollection <> 0",
                      std::string("COMMIT")})
                    platform::execute(statement, database);
                if (i == 1)
                    ready();
            }
        };
    }
    // Takes the lock when told to, and keeps it until it is killed.
    ChildProcess::Work holderOf(const std::string& lock) {
        return [this, lock](const ChildProcess::Ready& ready) {
            support::Database database(host.databaseFile());
            while (!fs::exists(host.root() / "take"))
                std::this_thread::sleep_for(1ms);
            database.run("BEGIN " + lock);
            ready();
            std::this_thread::sleep_for(60s);
        };
    }
    void takeLock(const ChildProcess& holder) {
        std::ofstream(host.root() / "take") << "now";
        holder.awaitReady();
    }

    void expectConsistent(const fs::path& database) {
        EXPECT_EQ(query(database, "PRAGMA integrity_check"), std::vector<std::string>{"ok"}) << database;
        EXPECT_EQ(query(database,
                        "SELECT count(*) = max(LogKey), max(LogKey) = (SELECT EventLastNotification FROM "
                        "Events WHERE EventCollection <> 0) FROM NotificationLog"),
                  std::vector<std::string>{"1|1"})
            << database;
    }
    void expectLockedLine() {
        EXPECT_GE(host.countInLog("Err.Number = -2147467259 Err.Description = database is locked: " +
                                  host.databaseFile().string()),
                  1);
    }
    void expectBusyTimeout(milliseconds waited) {
        EXPECT_GE(waited, busyTimeout - 100ms);
        EXPECT_LE(waited, busyTimeout + 2000ms);
    }

    support::TemporaryHost host;
};

TEST_F(Shared, TheConsoleLosesNothingUnderAServiceThatNeverRests) {
    const std::chrono::seconds duration(support::numberFromEnvironment("QLN_LOAD_SECONDS", 3));
    ChildProcess writer(service());
    writer.awaitReady();
    mdlDatabase::openDatabase();
    mdlDatabase::setConfigurationSetting("WarnOnDuplicateMonitoredEvents", "0");
    std::vector<long> keys;
    long operations = 0;
    milliseconds longest = 0ms;
    const auto timed = [&](const std::function<void()>& action) {
        longest = std::max(longest, timeOf(action));
        ++operations;
    };
    for (const auto end = steady_clock::now() + duration; steady_clock::now() < end;) {
        const std::string number = std::to_string(keys.size());
        long key = 0;
        timed([&] { key = mdlDatabase::addNewEvent({"Backup", number, "", 1, {"a.wav", 1, "s", "n", 1}}); });
        timed([&] {
            mdlDatabase::modifyEvent({key, "Backup", number, "changed", 2, false, {"b.wav", 2, "t", "m", 2}});
        });
        timed([&] { mdlDatabase::setEventActiveState(key, true); });
        timed([&] { mdlDatabase::setConfigurationSetting("PollingInterval", number); });
        keys.push_back(key);
    }
    writer.kill();
    EXPECT_EQ(writer.wait(), -SIGKILL) << "the service gave up before";
    EXPECT_EQ(host.countInLog("ERROR"), 0);
    EXPECT_LE(longest, busyTimeout);
    EXPECT_EQ(query(host.databaseFile(),
                    "SELECT count(*), min(EventId = EventKey - " + std::to_string(keys.at(0)) +
                        " AND EventActive = -1 AND EventType = 2 AND EventTitle = 'changed') FROM Events "
                        "WHERE EventKey > 10"),
              std::vector<std::string>{std::to_string(keys.size()) + "|1"});
    EXPECT_EQ(query(host.databaseFile(),
                    "SELECT ContentType, ContentSubject, count(*) FROM Contents WHERE EventKey > 10 GROUP BY "
                    "1, 2 ORDER BY 1"),
              (std::vector<std::string>{"1|t|" + std::to_string(keys.size()),
                                        "3|t|" + std::to_string(keys.size())}));
    EXPECT_EQ(mdlDatabase::getConfigurationSetting("PollingInterval"), std::to_string(keys.size() - 1));
    expectConsistent(host.databaseFile());
    std::printf("[ SHARED   ] %ld operations, longest %ld ms, beside %s writes of the service\n", operations,
                static_cast<long>(longest.count()),
                query(host.databaseFile(), "SELECT count(*) FROM NotificationLog").at(0).c_str());
}

TEST_F(Shared, EveryExitUnderAServiceThatNeverRestsLeavesAWholeBackup) {
    const long exits = support::numberFromEnvironment("QLN_EXITS", 10);
    const fs::path backup = host.databaseFolder() / "QLNDB_BKP.MDB";
    ChildProcess writer(service());
    writer.awaitReady();
    mdlDatabase::openDatabase();
    milliseconds longest = 0ms;
    long before = 0;
    for (long i = 0; i < exits; ++i) {
        longest = std::max(longest, timeOf([] { EXPECT_TRUE(mdlDatabase::copyDatabase()); }));
        expectConsistent(backup);
        const long rows = std::stol(query(backup, "SELECT count(*) FROM NotificationLog").at(0));
        EXPECT_GE(rows, before) << "an older state than the last backup's";
        before = rows;
    }
    writer.kill();
    EXPECT_EQ(writer.wait(), -SIGKILL) << "the service gave up before";
    EXPECT_EQ(host.countInLog("ERROR"), 0);
    std::printf("[ SHARED   ] %ld exits, longest %ld ms, %ld writes of the service in the last backup\n",
                exits, static_cast<long>(longest.count()), before);
}

TEST_F(Shared, AnOperationGivesUpAfterTheBusyTimeoutAndSaysSo) {
    ChildProcess holder(holderOf("EXCLUSIVE"));
    mdlDatabase::openDatabase();
    takeLock(holder);
    expectBusyTimeout(timeOf([] { mdlDatabase::setEventActiveState(10, true); }));
    expectLockedLine();
    holder.kill();
    holder.wait();
    const auto event = [&] {
        return query(host.databaseFile(),
                     "SELECT EventActive, EventLastNotification FROM Events WHERE EventKey = 10");
    };
    EXPECT_EQ(event(), std::vector<std::string>{"0|2026-01-02 03:04:05"});
    mdlDatabase::setEventActiveState(10, true);
    EXPECT_EQ(event(), std::vector<std::string>{"-1|NULL"}) << "the same connection goes on";
}

TEST_F(Shared, ANewEventThatCannotBeWrittenIsToldByItsKey) {
    ChildProcess holder(holderOf("IMMEDIATE"));
    mdlDatabase::openDatabase();
    takeLock(holder);
    const mdlDatabase::NewEvent event{"Cluster", "5", "", 1, {"a.wav", 1, "s", "n", 1}};
    expectBusyTimeout(timeOf([&] { EXPECT_EQ(mdlDatabase::addNewEvent(event), 0); }));
    expectLockedLine();
    holder.kill();
    holder.wait();
    EXPECT_EQ(query(host.databaseFile(), "SELECT count(*) FROM Events WHERE EventKey > 10"),
              std::vector<std::string>{"0"});
    EXPECT_EQ(query(host.databaseFile(), "SELECT count(*) FROM Contents WHERE EventKey > 10"),
              std::vector<std::string>{"0"});
    EXPECT_GT(mdlDatabase::addNewEvent(event), 10);
}

TEST_F(Shared, ABackupThatCannotBeTakenLeavesTheOldOne) {
    ChildProcess holder(holderOf("EXCLUSIVE"));
    mdlDatabase::openDatabase();
    const fs::path backup = host.databaseFolder() / "QLNDB_BKP.MDB";
    mdlDatabase::copyDatabase();
    support::run(backup, "DELETE FROM Events");
    takeLock(holder);
    expectBusyTimeout(timeOf([] { mdlDatabase::copyDatabase(); }));
    expectLockedLine();
    EXPECT_EQ(query(backup, "SELECT count(*) FROM Events"), std::vector<std::string>{"0"});
    EXPECT_FALSE(fs::exists(backup.string() + ".new"));
}

}  // namespace
