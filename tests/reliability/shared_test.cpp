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
#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "database/lifecycle.h"
#include "database/recipients.h"
#include "database/settings.h"
#include "platform/ado/ado.h"
#include "server/mdlCorvaneDatabase.h"
#include "support/childProcess.h"
#include "support/killHarness.h"
#include "support/scriptedPrompts.h"
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
                     "INSERT INTO Events VALUES(10, 'Backup', 17, 'old', 1, 0, 0, '2026-01-02 03:04:05');"
                     "UPDATE Configuration SET Value = '0' WHERE Setting = 'WarnOnDuplicateMonitoredEvents'");
    }

    // Writes the service's log and columns in transactions without a pause, until it is killed. The log's
    // last row and the catch-all event's notification agree at every moment between two of them. In each it
    // reads whom to notify: a device that an event names is there, with its recipient.
    ChildProcess::Work service() {
        return [this](const ChildProcess::Ready& ready) {
            platform::Connection database;
            database.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + host.databaseFile().string());
            for (int i = 1;; ++i) {
                platform::Recordset lost;
                lost.open(
                    "SELECT EventDevice.DeviceKey FROM EventDevice LEFT JOIN (Device INNER JOIN "
                    "DeviceRecipient "
                    "ON Device.DeviceKey = DeviceRecipient.DeviceKey) ON EventDevice.DeviceKey = "
                    "Device.DeviceKey WHERE Device.DeviceKey IS NULL",
                    database);
                if (!lost.EOF_())
                    throw std::runtime_error("an event names a device that is not there");
                lost.close();
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
    void timed(const std::function<void()>& action) {
        longest_ = std::max(longest_, timeOf(action));
        ++operations_;
    }
    // Rounds of operations, each `timed`, beside the service: none fails, or waits for as long as a lock is
    // waited for. The number of rounds, which count from 0.
    long besideTheService(const std::function<void(long)>& round) {
        const std::chrono::seconds duration(support::numberFromEnvironment("QLN_LOAD_SECONDS", 3));
        ChildProcess writer(service());
        writer.awaitReady();
        mdlDatabase::openDatabase();
        long rounds = 0;
        for (const auto end = steady_clock::now() + duration; steady_clock::now() < end && !HasFailure();)
            round(rounds++);
        writer.kill();
        EXPECT_EQ(writer.wait(), -SIGKILL) << "the service gave up before";
        EXPECT_EQ(host.countInLog("ERROR"), 0);
        EXPECT_LE(longest_, busyTimeout);
        expectConsistent(host.databaseFile());
        std::printf("[ SHARED   ] %ld operations, longest %ld ms, beside %s writes of the service\n",
                    operations_, static_cast<long>(longest_.count()),
                    query(host.databaseFile(), "SELECT count(*) FROM NotificationLog").at(0).c_str());
        return rounds;
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
    // The line of each statement that gave up.
    void expectLockedLines(long count = 1) {
        EXPECT_EQ(host.countInLog("Err.Number = -2147467259 Err.Description = database is locked: " +
                                  host.databaseFile().string()),
                  count);
    }
    void expectBusyTimeout(milliseconds waited, long statements = 1) {
        EXPECT_GE(waited, statements * (busyTimeout - 100ms));
        EXPECT_LE(waited, statements * busyTimeout + 2000ms);
    }
    // An operation of so many writes that do not rest on each other while another keeps the lock: each gives
    // up, the table stays as it is. Once the lock is gone the same operation on the same connection makes the
    // table what it is to be.
    void expectNothingLost(const std::function<void()>& operation, const std::string& table,
                           const std::vector<std::string>& result, long writes = 2) {
        ChildProcess holder(holderOf("IMMEDIATE"));
        mdlDatabase::openDatabase();
        const auto before = query(host.databaseFile(), "SELECT * FROM " + table);
        takeLock(holder);
        expectBusyTimeout(timeOf(operation), writes);
        expectLockedLines(writes);
        EXPECT_EQ(host.countInLog("Err.Number"), writes);
        holder.kill();
        holder.wait();
        EXPECT_EQ(query(host.databaseFile(), "SELECT * FROM " + table), before);
        operation();
        EXPECT_EQ(query(host.databaseFile(), "SELECT * FROM " + table), result);
        EXPECT_EQ(host.countInLog("Err.Number"), writes);
    }

    support::TemporaryHost host;

  private:
    long operations_ = 0;
    milliseconds longest_ = 0ms;
};

TEST_F(Shared, TheConsoleLosesNothingUnderAServiceThatNeverRests) {
    long first = 0;
    const long rounds = besideTheService([&](long round) {
        const std::string number = std::to_string(round);
        long key = 0;
        timed([&] { key = mdlDatabase::addNewEvent({"Backup", number, "", 1, {"a.wav", 1, "s", "n", 1}}); });
        timed([&] {
            mdlDatabase::modifyEvent({key, "Backup", number, "changed", 2, false, {"b.wav", 2, "t", "m", 2}});
        });
        timed([&] { mdlDatabase::setEventActiveState(key, true); });
        timed([&] { mdlDatabase::setConfigurationSetting("PollingInterval", number); });
        first = first == 0 ? key : first;
    });
    const std::string count = std::to_string(rounds);
    EXPECT_EQ(query(host.databaseFile(),
                    "SELECT count(*), min(EventId = EventKey - " + std::to_string(first) +
                        " AND EventActive = -1 AND EventType = 2 AND EventTitle = 'changed') FROM Events "
                        "WHERE EventKey > 10"),
              std::vector<std::string>{count + "|1"});
    EXPECT_EQ(query(host.databaseFile(),
                    "SELECT ContentType, ContentSubject, count(*) FROM Contents WHERE EventKey > 10 GROUP BY "
                    "1, 2 ORDER BY 1"),
              (std::vector<std::string>{"1|t|" + count, "3|t|" + count}));
    EXPECT_EQ(mdlDatabase::getConfigurationSetting("PollingInterval"), std::to_string(rounds - 1));
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
    expectLockedLines();
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
    expectLockedLines();
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
    expectLockedLines();
    EXPECT_EQ(query(backup, "SELECT count(*) FROM Events"), std::vector<std::string>{"0"});
    EXPECT_FALSE(fs::exists(backup.string() + ".new"));
}

// A recipient as a round makes him, and as it then changes him: of his devices one pager stays, with another
// number, and the syslog device with another host; a pager and the trap are new; the others go.
mdlDatabase::RecipientRecord recordOf(long round) {
    mdlDatabase::RecipientRecord record;
    record.name = "R" + std::to_string(round);
    record.voiceMailDirectoryId = "v";
    record.pagerNumbers = {{"", "1"}, {"", "2"}};
    record.smtpAddresses = {{"", "s"}};
    record.syslogEnabled = true;
    record.syslogHostAddress = "h";
    return record;
}

mdlDatabase::RecipientRecord changedRecordOf(long round, const std::string& keptPager) {
    mdlDatabase::RecipientRecord record;
    record.name = "R" + std::to_string(round) + " changed";
    record.pagerNumbers = {{keptPager, "1 x"}, {"", "3"}};
    record.snmpTrapEnabled = record.syslogEnabled = true;
    record.syslogHostAddress = "h2";
    return record;
}

// Of his first three devices by type, a voice mail device and both pagers.
mdlDatabase::DeviceSelection selectionOf(long recipient) {
    mdlDatabase::DeviceSelection selection;
    auto rows = mdlDatabase::openDevicesForRecipient(recipient);
    EXPECT_EQ(rows.recordCount(), 5);
    for (int i = 0; i < 3; ++i, rows.moveNext())
        selection.set(mdlDatabase::selectionKey(rows.number("DeviceKey")), true);
    return selection;
}

void deleteRecipient(long key, const std::string& name) {
    support::ScriptedPrompts prompts;
    prompts.expect({"Are your sure you want to delete recipient: " + name, "Delete Selected Recipient?",
                    platform::BoxIcon::question, platform::BoxButtons::yesNo},
                   platform::BoxAnswer::yes);
    EXPECT_TRUE(mdlDatabase::deleteRecipient(key));
}

// One recipient after the other comes, is put on the event, changed, and takes the place of the one before.
TEST_F(Shared, RecipientsAndAssignmentsLoseNothingUnderAServiceThatNeverRests) {
    host.makeDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId)",
                        "CREATE TABLE DistributionList(DisplayName, DirectoryId)",
                        "INSERT INTO GlobalSubscriber VALUES('Ann', 'v')"});
    long previous = 0;
    const long rounds = besideTheService([&](long round) {
        mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
        long key = 0;
        mdlDatabase::DeviceSelection selection;
        timed([&] { key = mdlDatabase::addNewRecipient(recordOf(round)); });
        timed([] { mdlDatabase::rebuildAddressDetailsTable(); });
        timed([&] { selection = selectionOf(key); });
        timed([&] { mdlDatabase::addRecipientToEvent(10, selection, false); });
        const std::string keptPager = selection.keys().at(1);
        timed([&] { mdlDatabase::modifyRecipient(key, changedRecordOf(round, keptPager)); });
        selection.clear();
        selection.set(keptPager, true);
        timed([&] { EXPECT_TRUE(mdlDatabase::changeRecipientsForEvent(10, selection)); });
        core::Dictionary<long> exclusions;
        exclusions.set("S", round);
        exclusions.set("T", mdlDatabase::allExclusionIds);
        timed([&] { mdlDatabase::replaceExclusions(exclusions); });
        if (previous != 0) {
            timed([&] { EXPECT_TRUE(mdlDatabase::removeRecipientFromEvent(10, previous)); });
            timed([&] { deleteRecipient(previous, changedRecordOf(round - 1, "").name); });
        }
        timed([] { mdlDatabase::rebuildAddressDetailsTable(); });
        previous = key;
    });
    const std::string name = changedRecordOf(rounds - 1, "").name;
    EXPECT_EQ(query(host.databaseFile(),
                    "SELECT RecipientName, DeviceType, DeviceAddress, DisplayName, Active FROM Recipients "
                    "JOIN DeviceRecipient USING(RecipientKey) JOIN Device USING(DeviceKey) JOIN "
                    "AddressDetails USING(DeviceKey, DeviceAddress) LEFT JOIN EventDevice USING(DeviceKey) "
                    "ORDER BY DeviceKey"),
              (std::vector<std::string>{name + "|2|1 x|1 x (Pager)|-1", name + "|6|h2| (SYSLOG)|NULL",
                                        name + "|2|3|3 (Pager)|0", name + "|5|SNMP TRAP| (SNMP Trap)|0"}));
    EXPECT_EQ(query(host.databaseFile(),
                    "SELECT (SELECT count(*) FROM Recipients), (SELECT count(*) FROM Device), (SELECT "
                    "count(*) FROM DeviceRecipient), (SELECT count(*) FROM AddressDetails), (SELECT "
                    "count(*) FROM EventDevice)"),
              std::vector<std::string>{"1|4|4|4|3"});
    EXPECT_EQ(query(host.databaseFile(), "SELECT EventSource, EventId FROM Exclusions ORDER BY 1"),
              (std::vector<std::string>{"S|" + std::to_string(rounds - 1), "T|-1"}));
}

TEST_F(Shared, ARecipientThatCannotBeSavedStaysAsHeIs) {
    support::run(host.databaseFile(),
                 "INSERT INTO Recipients VALUES(5, 'Ann', 0); INSERT INTO Device VALUES(1, 2, 'p', 0);"
                 "INSERT INTO DeviceRecipient VALUES(1, 5)");
    mdlDatabase::RecipientRecord record;
    record.name = "Anna";
    record.pagerNumbers = {{"DeviceKey:1", "p2"}};
    expectNothingLost([&] { mdlDatabase::modifyRecipient(5, record); },
                      "Recipients JOIN DeviceRecipient USING(RecipientKey) JOIN Device USING(DeviceKey)",
                      {"5|Anna|-1|1|2|p2|-1"});
}

TEST_F(Shared, AnAssignmentThatCannotBeChangedStaysAsItIs) {
    support::run(host.databaseFile(),
                 "INSERT INTO Device VALUES(1, 2, 'p', -1), (2, 2, 'q', -1); INSERT INTO EventDevice "
                 "VALUES(10, 1, -1)");
    const auto change = [] {
        mdlDatabase::DeviceSelection selection;
        selection.set(mdlDatabase::selectionKey(2), true);
        EXPECT_TRUE(mdlDatabase::changeRecipientsForEvent(10, selection));
    };
    expectNothingLost(change, "EventDevice", {"10|1|0", "10|2|-1"});
}

TEST_F(Shared, ExclusionsThatCannotBeRewrittenStayAsTheyAre) {
    support::run(host.databaseFile(), "INSERT INTO Exclusions VALUES(0, 'old', 1), (1, 'older', 2)");
    const auto rewrite = [] {
        core::Dictionary<long> exclusions;
        exclusions.set("new", 3);
        mdlDatabase::replaceExclusions(exclusions);
    };
    expectNothingLost(rewrite, "Exclusions", {"2|new|3"}, 1);
}

}  // namespace
