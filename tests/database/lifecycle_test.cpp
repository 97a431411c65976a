#include "database/lifecycle.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "core/state.h"
#include "database/settings.h"
#include "platform/files/files.h"
#include "platform/registry/registry.h"
#include "support/childProcess.h"
#include "support/temporaryHost.h"

namespace {

using namespace mdlDatabase;
namespace files = platform::files;
namespace fs = std::filesystem;
using platform::ObjectState;
using Lines = std::vector<std::string>;

class Lifecycle : public testing::Test {
  protected:
    void SetUp() override { host.createRegistryKey(core::productRegistryKey); }

    std::optional<platform::RegistryValue> storedPath() {
        return platform::registry().value(std::string("HKEY_LOCAL_MACHINE\\") + core::productRegistryKey,
                                          "DatabasePath");
    }
    // Number of log lines of that level that end so.
    long logged(const std::string& level, const std::string& end) {
        const Lines lines = host.logLines();
        return std::ranges::count_if(lines, [&](const std::string& line) {
            return line.find(" " + level + ":(") != std::string::npos && line.ends_with(end);
        });
    }
    Lines rows(const std::string& statement) { return support::query(host.databaseFile(), statement); }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    Lines filesInFolder() {
        Lines names;
        for (const files::Entry& entry : files::listFiles(folder))
            names.push_back(entry.name);
        return names;
    }
    // Exclusions as they were before they had keys.
    void useOldExclusions(const std::string& values) {
        host.openConfiguration();
        run("DROP TABLE Exclusions; "
            "CREATE TABLE Exclusions (EventSource TEXT(50) COLLATE NOCASE, EventId LONG)");
        if (!values.empty())
            run("INSERT INTO Exclusions VALUES " + values);
    }
    void addExclusion(const char* source) {
        platform::Recordset exclusions;
        exclusions.open("SELECT * FROM Exclusions", core::gDatabase, platform::CursorType::keyset,
                        platform::LockType::optimistic);
        exclusions.addNew();
        exclusions.set("EventSource", source);
        exclusions.update();
    }

    support::TemporaryHost host;
    fs::path folder = host.databaseFolder();
    fs::path freshFile = folder / "QLNDB_FRESH.MDB";
    fs::path backupFile = folder / "QLNDB_BKP.MDB";
    fs::path safetyCopy = folder / "QLNDB_PRE_EXCLUSIONS_UPGRADE.MDB";
};

TEST_F(Lifecycle, PathHealsItselfAndIsBelievedWhereADatabaseLies) {
    for (const char* wrong : {"", "/nowhere"}) {
        host.setRegistry(core::productRegistryKey, "DatabasePath", wrong);
        EXPECT_EQ(getDatabasePath(), folder.string());
        EXPECT_EQ(storedPath(), platform::RegistryValue(folder.string()));
        EXPECT_EQ(logged("ERROR", "  DatabasePath=" + std::string(wrong) + " does not contain QLNDB.MDB"), 1);
    }
    EXPECT_EQ(logged("ERROR", "  Setting DatabasePath to default path"), 2);
    EXPECT_EQ(logged("Info", "[mdlDatabase]getDatabasePath)   DatabasePath=" + folder.string()), 2);

    const fs::path elsewhere = host.root() / "Els'where ü";
    fs::create_directory(elsewhere);
    std::ofstream(elsewhere / "QLNDB.MDB").flush();
    host.setRegistry(core::productRegistryKey, "DatabasePath", elsewhere.string());
    EXPECT_EQ(getDatabasePath(), elsewhere.string());
    EXPECT_EQ(storedPath(), platform::RegistryValue(elsewhere.string()));

    platform::registry().deleteKey(std::string("HKEY_LOCAL_MACHINE\\") + core::productRegistryKey);
    EXPECT_EQ(getDatabasePath(), folder.string());
    EXPECT_EQ(storedPath(), std::nullopt) << "healing makes no key";
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Lifecycle, TemplateIsCopiedOnlyWhereThereIsNoDatabase) {
    const std::string copying = "Copying " + freshFile.string() + " to " + host.databaseFile().string();
    openDatabase();
    EXPECT_EQ(core::gDatabase.state(), ObjectState::open);
    EXPECT_EQ(getConfigurationSetting("PollingInterval"), "10");
    EXPECT_EQ(host.countInLog(copying), 1);
    setConfigurationSetting("PollingInterval", "77");

    std::ofstream(freshFile) << "no database";
    openDatabase();
    EXPECT_EQ(getConfigurationSetting("PollingInterval"), "77");
    EXPECT_EQ(files::readFile(freshFile), "no database");
    fs::remove(freshFile);
    openDatabase();
    EXPECT_EQ(getConfigurationSetting("PollingInterval"), "77");
    EXPECT_EQ(host.countInLog(copying), 1);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Lifecycle, ReadOnlyDatabaseStaysSoAndRefusesWrites) {
    const std::string found = " found to be read-only.  Removing the read-only flag from this file.";
    fs::copy_file(freshFile, host.databaseFile());
    files::setReadOnly(host.databaseFile(), true);
    openDatabase();
    EXPECT_TRUE(files::isReadOnly(host.databaseFile()));
    EXPECT_EQ(host.countInLog(found), 0);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
    setConfigurationSetting("MaxDiag", "-1");
    EXPECT_EQ(getConfigurationSetting("MaxDiag"), "0");
    EXPECT_GE(host.countInLog("[mdlDatabase]setConfigurationSetting)   Err.Number"), 1);

    // Only a file in the folder's place loses the attribute.
    core::gDatabase.close();
    fs::remove_all(folder);
    std::ofstream(folder).flush();
    files::setReadOnly(folder, true);
    openDatabase();
    EXPECT_FALSE(files::isReadOnly(folder));
    EXPECT_EQ(logged("Warning", "[mdlDatabase]openDatabase)   " + folder.string() + found), 1);
}

TEST_F(Lifecycle, BackupHoldsWhatIsCommitted) {
    const auto noted = [&] { return support::query(backupFile, "SELECT count(*) FROM NotificationLog"); };
    host.openConfiguration();
    platform::Connection service;
    service.open("Data Source=" + host.databaseFile().string());
    platform::execute("BEGIN IMMEDIATE", service);
    platform::execute("INSERT INTO NotificationLog (LogKey) VALUES (1)", service);
    EXPECT_TRUE(copyDatabase());
    EXPECT_EQ(noted(), Lines{"0"});
    platform::execute("COMMIT", service);
    EXPECT_TRUE(copyDatabase());
    EXPECT_EQ(noted(), Lines{"1"});
    EXPECT_EQ(host.countInLog("[mdlDatabase]copyDatabase)   Copying " + host.databaseFile().string() +
                              " to " + backupFile.string()),
              2);
    EXPECT_EQ(filesInFolder(), (Lines{"QLNDB.MDB", "QLNDB_BKP.MDB", "QLNDB_FRESH.MDB"}));
}

TEST_F(Lifecycle, BackupIsWholeAfterTheServiceDiedWriting) {
    fs::copy_file(freshFile, host.databaseFile());
    run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
        "INSERT INTO NotificationLog (LogKey, DeviceAddress) SELECT i, printf('%0200d', 0) FROM n");
    support::ChildProcess service([&](const support::ChildProcess::Ready& ready) {
        support::Database database(host.databaseFile());
        database.run(
            "PRAGMA cache_size = 1; BEGIN IMMEDIATE; UPDATE NotificationLog SET DeviceAddress = "
            "printf('%0200d', 1)");
        ready();
        ::pause();
    });
    service.awaitReady();
    service.kill();
    service.wait();

    // The file itself is torn now: a part of the update has reached it.
    const fs::path torn = host.root() / "torn";
    fs::copy_file(host.databaseFile(), torn);
    const std::string changed = "SELECT count(*) FROM NotificationLog WHERE DeviceAddress LIKE '%1'";
    ASSERT_NE(support::query(torn, changed), Lines{"0"});
    EXPECT_TRUE(copyDatabase());
    EXPECT_EQ(support::query(backupFile, changed), Lines{"0"});
    EXPECT_EQ(support::query(backupFile, "SELECT count(*) FROM NotificationLog"), Lines{"3000"});
    EXPECT_EQ(support::query(backupFile, "PRAGMA integrity_check"), Lines{"ok"});
}

TEST_F(Lifecycle, BackupReplacesTheLastOneUnlessItIsReadOnly) {
    host.openConfiguration();
    EXPECT_TRUE(copyDatabase());
    const std::string first = files::readFile(backupFile);
    setConfigurationSetting("PollingInterval", "77");
    files::setReadOnly(backupFile, true);
    EXPECT_FALSE(copyDatabase());
    EXPECT_EQ(files::readFile(backupFile), first);
    EXPECT_EQ(logged("ERROR",
                     "[mdlDatabase]copyDatabase)   Can not make backup copy of QLNDB.MDB, make sure "
                     "QLNDB_BKP.MDB is not read-only"),
              1);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);

    files::setReadOnly(backupFile, false);
    EXPECT_TRUE(copyDatabase());
    EXPECT_EQ(support::query(backupFile, "SELECT Value FROM Configuration WHERE Setting = 'PollingInterval'"),
              Lines{"77"});
}

// The end of the run replaces the backup, which may be all that is left of a database that somebody deleted.
TEST_F(Lifecycle, ABackupOutlivesTheDatabaseThatItIsOf) {
    const auto kept = [&](int number) { return folder / ("QLNDB_BKP_" + std::to_string(number) + ".MDB"); };
    for (const int number : {1, 2}) {
        files::writeFile(backupFile, "backup " + std::to_string(number));
        openDatabase();
        EXPECT_EQ(newDatabaseNotice(), "There was no database:\n" + host.databaseFile().string() +
                                           "\n\nA new one was made. The last backup of the one before is\n" +
                                           kept(number).string());
        EXPECT_EQ(logged("ERROR", "   There was no database:"), number);
        EXPECT_TRUE(copyDatabase());
        EXPECT_EQ(support::query(backupFile, "SELECT count(*) FROM Events"), Lines{"2"});
        for (int each = 1; each <= number; ++each)
            EXPECT_EQ(files::readFile(kept(each)), "backup " + std::to_string(each));
        core::gDatabase.close();
        fs::remove(host.databaseFile());
    }
    // One that cannot be kept apart stays what it is.
    fs::create_directory(kept(3));
    files::writeFile(backupFile, "backup");
    openDatabase();
    EXPECT_TRUE(newDatabaseNotice().ends_with("\n" + backupFile.string()));
    EXPECT_FALSE(copyDatabase());
    EXPECT_EQ(files::readFile(backupFile), "backup");
    openDatabase();
    EXPECT_EQ(newDatabaseNotice(), "") << "there is one now";
    EXPECT_TRUE(copyDatabase());
}

TEST_F(Lifecycle, UpgradeKeepsRowsInOrderAndTheOldShapeInACopy) {
    useOldExclusions("('zeta', 5), ('Alpha', -1), ('zeta', 5), ('mid''s', NULL)");
    const Lines before = rows("SELECT * FROM Exclusions");
    EXPECT_FALSE(upgradeDatabase());
    EXPECT_EQ(rows("SELECT * FROM Exclusions ORDER BY ExclusionKey"),
              (Lines{"0|zeta|5", "1|Alpha|-1", "2|zeta|5", "3|mid's|NULL"}));
    EXPECT_EQ(support::query(safetyCopy, "SELECT * FROM Exclusions"), before);
    EXPECT_EQ(rows("SELECT count(*) FROM sqlite_master WHERE sql LIKE '%ExclusionsNew%'"), Lines{"0"});
    EXPECT_EQ(host.countInLog("Err.Number"), 0);

    addExclusion("next");
    EXPECT_EQ(getLastKey("Exclusions", "ExclusionKey"), 4);

    fs::remove(safetyCopy);
    EXPECT_FALSE(upgradeDatabase());
    EXPECT_FALSE(fs::exists(safetyCopy));
    EXPECT_EQ(rows("SELECT count(*) FROM Exclusions"), Lines{"5"});
}

TEST_F(Lifecycle, UpgradeOfAnEmptyTableStartsItsKeysAtZero) {
    useOldExclusions("");
    upgradeDatabase();
    addExclusion("first");
    addExclusion("second");
    EXPECT_EQ(rows("SELECT ExclusionKey, EventSource FROM Exclusions"), (Lines{"0|first", "1|second"}));
}

TEST_F(Lifecycle, TablesOfOtherShapesAreLeftAlone) {
    host.openConfiguration();
    for (const char* columns : {"a", "a, b, c", "a, b, c, d", ""}) {
        run("DROP TABLE IF EXISTS Exclusions");
        if (*columns)
            run("CREATE TABLE Exclusions (" + std::string(columns) +
                "); INSERT INTO Exclusions (a) VALUES (7)");
        const std::string everything = files::readFile(host.databaseFile());
        EXPECT_FALSE(upgradeDatabase());
        EXPECT_EQ(files::readFile(host.databaseFile()), everything) << columns;
    }
    EXPECT_FALSE(fs::exists(safetyCopy));
    EXPECT_EQ(host.countInLog("Exclusions table upgrade is not necessary"), 4);
    EXPECT_EQ(host.countInLog("Err.Number = 3265 "), 1) << "only the missing table is a failure";
}

TEST_F(Lifecycle, UpgradeThatCannotCarryARowOverKeepsTheOldTable) {
    const std::string longSource(60, 's');
    useOldExclusions("('zeta', 5), ('" + longSource + "', 7)");
    run("CREATE TABLE ExclusionsNew (leftover)");
    EXPECT_FALSE(upgradeDatabase());
    EXPECT_EQ(rows("SELECT * FROM Exclusions"), (Lines{"zeta|5", longSource + "|7"}));
    EXPECT_EQ(support::query(safetyCopy, "SELECT count(*) FROM Exclusions"), Lines{"2"});
    // What an interrupted upgrade left is no obstacle to the next one.
    run("DELETE FROM Exclusions WHERE EventId = 7");
    EXPECT_FALSE(upgradeDatabase());
    EXPECT_EQ(rows("SELECT * FROM Exclusions"), Lines{"0|zeta|5"});
    EXPECT_EQ(rows("SELECT count(*) FROM sqlite_master WHERE name = 'ExclusionsNew'"), Lines{"0"});
}

}  // namespace
