// Full disks, missing rights and files in the wrong shape: what cannot be done is told in the log, nothing
// that exists is overwritten or cut short, and the run goes on.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "core/classLog.h"
#include "core/state.h"
#include "database/events.h"
#include "database/lifecycle.h"
#include "database/settings.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "server/mdlCorvane.h"
#include "support/childProcess.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using platform::ObjectState;
using support::Ran;

constexpr char backupRefused[] =
    "Can not make backup copy of QLNDB.MDB, make sure QLNDB_BKP.MDB is not read-only";
constexpr char versionKey[] = "Software\\Tessaly";

std::string contentOf(const fs::path& file) {
    return platform::files::readFile(file);
}

void write(const fs::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

class Starved : public ::testing::Test {
  protected:
    Starved() {
        host.setRegistry(core::productRegistryKey, "DatabasePath", host.databaseFolder().string());
        host.setRegistry(versionKey, "Version Number", 0x00040000u);
    }
    // A database with an event, and an older backup.
    void makeDatabase() {
        fs::copy_file(host.databaseFolder() / "QLNDB_FRESH.MDB", host.databaseFile());
        support::run(host.databaseFile(),
                     "INSERT INTO Events VALUES(10, 'Backup', 17, 'old', 1, 0, 0, NULL);"
                     "UPDATE Configuration SET Value = '0' WHERE Setting = 'WarnOnDuplicateMonitoredEvents'");
        fs::copy_file(host.databaseFolder() / "QLNDB_FRESH.MDB", backup());
    }
    fs::path backup() const { return host.databaseFolder() / "QLNDB_BKP.MDB"; }

    static void startUp() {
        mdlDatabase::openDatabase();
        mdlDatabase::upgradeDatabase();
        mdlDatabase::makeInitialDatabaseChanges();
    }
    static long addEvent() {
        return mdlDatabase::addNewEvent({"Cluster", "5", "", 1, {"a.wav", 1, "s", "n", 1}});
    }
    // Files of the folder by name, but for the log's.
    static std::vector<std::string> namesIn(const fs::path& folder) {
        std::vector<std::string> names;
        for (const auto& file : platform::files::listFiles(folder))
            names.push_back(file.name);
        return names;
    }
    // Does the work while the folder is as it is, and expects every file in it to be what it was.
    static void expectUntouched(const fs::path& folder, const std::function<void()>& work) {
        std::vector<std::string> before;
        for (const std::string& name : namesIn(folder))
            before.push_back(name + contentOf(folder / name));
        work();
        std::vector<std::string> after;
        for (const std::string& name : namesIn(folder))
            after.push_back(name + contentOf(folder / name));
        EXPECT_TRUE(before == after) << "files of " << folder << " changed";
    }
    void expectRan(Ran ran) {
        if (ran == Ran::impossible)
            GTEST_SKIP() << "the system lets no child of this user run as another user, or mount";
        EXPECT_EQ(ran, Ran::passed);
    }

    support::TemporaryHost host;
};

TEST_F(Starved, AReadOnlyFolderIsReadAndNotWritten) {
    makeDatabase();
    fs::permissions(host.databaseFolder(), fs::perms(0555));
    expectRan(support::runAsOrdinaryUser(host.root(), [&] {
        expectUntouched(host.databaseFolder(), [&] {
            startUp();
            EXPECT_EQ(mdlDatabase::findEvent("Backup", "17"), 10);
            EXPECT_EQ(addEvent(), 0);
            EXPECT_FALSE(mdlDatabase::copyDatabase());
        });
        EXPECT_GE(host.countInLog("Err.Number = -2147467259 Err.Description = "), 1);
        EXPECT_GE(host.countInLog(host.databaseFile().string() + " [INSERT INTO"), 1);
        EXPECT_EQ(host.countInLog(backupRefused), 1);
    }));
    fs::permissions(host.databaseFolder(), fs::perms(0755));
}

TEST_F(Starved, AReadOnlyFolderWithoutADatabaseGetsNone) {
    fs::permissions(host.databaseFolder(), fs::perms(0555));
    expectRan(support::runAsOrdinaryUser(host.root(), [&] {
        expectUntouched(host.databaseFolder(), [&] {
            startUp();
            EXPECT_EQ(core::gDatabase.state(), ObjectState::closed);
            EXPECT_EQ(addEvent(), 0);
            mdlDatabase::copyDatabase();
        });
        EXPECT_GE(host.countInLog("Err.Number = 70 Err.Description = Permission denied (" +
                                  host.databaseFolder().string() + ")"),
                  1);
    }));
    fs::permissions(host.databaseFolder(), fs::perms(0755));
}

TEST_F(Starved, ReadOnlyFilesKeepTheirAttributeAndTheirContent) {
    makeDatabase();
    for (const fs::path& file : {host.databaseFile(), backup()})
        fs::permissions(file, fs::perms(0444));
    const auto work = [&] {
        expectUntouched(host.databaseFolder(), [&] {
            startUp();
            EXPECT_EQ(mdlDatabase::findEvent("Backup", "17"), 10);
            EXPECT_EQ(addEvent(), 0);
            EXPECT_FALSE(mdlDatabase::copyDatabase());
        });
        EXPECT_TRUE(platform::files::isReadOnly(host.databaseFile()));
        EXPECT_GE(host.countInLog("attempt to write a readonly database"), 1);
        EXPECT_GE(host.countInLog(backupRefused), 1);
    };
    // Also for the superuser, whom the system would let write.
    EXPECT_TRUE(support::succeedsInChild(work));
    fs::remove_all(host.programFolder() / "LOGS");
    expectRan(support::runAsOrdinaryUser(host.root(), work));
}

TEST_F(Starved, ALogThatCannotBeWrittenStopsNothing) {
    makeDatabase();
    const fs::path folder = host.programFolder();
    const auto runs = [&] {
        startUp();
        EXPECT_GT(addEvent(), 10);
        EXPECT_TRUE(mdlDatabase::copyDatabase());
    };
    const auto expectRuns = [&] {
        expectRan(support::runAsOrdinaryUser(host.root(), runs));
        EXPECT_TRUE(host.logLines().empty());
    };
    fs::permissions(folder, fs::perms(0555));  // no folder can be made
    expectRuns();
    fs::permissions(folder, fs::perms(0755));
    write(folder / "LOGS", "no folder");
    expectRuns();
    EXPECT_EQ(contentOf(folder / "LOGS"), "no folder");
    fs::remove(folder / "LOGS");
    fs::create_directory(folder / "LOGS");
    fs::permissions(folder / "LOGS", fs::perms(0555));
    expectRuns();
    EXPECT_TRUE(fs::is_empty(folder / "LOGS"));
}

TEST_F(Starved, ARegistryThatCannotBeReadIsNamedAndKept) {
    const fs::path store = platform::host::registryFile();
    const auto work = [&] {
        expectUntouched(store.parent_path(), [&] {
            EXPECT_EQ(mdlCorvane::getVersion().major, 0);
            EXPECT_GE(host.countInLog("Err.Number = "), 2);
            EXPECT_EQ(host.countInLog("Err.Number = "), host.countInLog(store.string()));
            EXPECT_THROW(platform::registry().createKey("HKEY_LOCAL_MACHINE\\New"), platform::Failure);
            EXPECT_THROW(platform::registry().setValue("HKEY_LOCAL_MACHINE\\Software", "New", "x"),
                         platform::Failure);
        });
    };
    write(store.string() + ".lock", "");
    const std::string good = contentOf(store);
    write(store, good + "\"half a li");
    EXPECT_TRUE(support::succeedsInChild(work));
    write(store, std::string(3, '\0') + "\x80\xff");
    EXPECT_TRUE(support::succeedsInChild(work));
    write(store, good);
    fs::permissions(store, fs::perms(0000));
    fs::remove_all(host.programFolder() / "LOGS");
    expectRan(support::runAsOrdinaryUser(host.root(), [&] {
        EXPECT_EQ(mdlCorvane::getVersion().major, 0);
        EXPECT_EQ(host.countInLog("Permission denied (" + store.string() + ")"), 2);
        EXPECT_THROW(platform::registry().createKey("HKEY_LOCAL_MACHINE\\New"), platform::Failure);
    }));
    fs::permissions(store, fs::perms(0600));
    EXPECT_EQ(contentOf(store), good);
}

TEST_F(Starved, WithoutTemplateAndDatabaseNothingIsMade) {
    fs::remove(host.databaseFolder() / "QLNDB_FRESH.MDB");
    startUp();
    EXPECT_EQ(addEvent(), 0);
    mdlDatabase::copyDatabase();
    EXPECT_EQ(core::gDatabase.state(), ObjectState::closed);
    EXPECT_TRUE(fs::is_empty(host.databaseFolder()));
    EXPECT_GE(host.countInLog("Err.Number = 53 Err.Description = File not found"), 1);
    EXPECT_GE(host.countInLog(host.databaseFile().string()), 1);
}

// A database in the wrong shape is never replaced: neither it, nor the backup of its better days.
TEST_F(Starved, ADatabaseInTheWrongShapeIsKeptAndSoIsItsBackup) {
    makeDatabase();
    const std::string good = contentOf(host.databaseFile());
    const auto garbled = [&](std::size_t at, std::size_t length) {
        return std::string(good).replace(at, length, length, '\x5a');
    };
    constexpr std::size_t page = 4096;
    ASSERT_GT(good.size(), 8 * page);
    const std::pair<const char*, std::string> shapes[] = {
        {"empty", ""},
        {"one byte", good.substr(0, 1)},
        {"half a header", good.substr(0, 50)},
        {"half a page", good.substr(0, page / 2)},
        {"half the pages", good.substr(0, good.size() / page / 2 * page)},
        {"a page and a half less", good.substr(0, good.size() - page - page / 2)},
        {"text", std::string(10000, 'x')},
        {"garbled header", garbled(0, 100)},
        {"garbled schema", garbled(100, page - 100)},
        {"garbled from the second page on", garbled(page, good.size() - page)},
    };
    const auto work = [&] {
        expectUntouched(host.databaseFolder(), [] {
            startUp();
            EXPECT_EQ(addEvent(), 0);
            EXPECT_EQ(mdlDatabase::findEvent("Backup", "17"), -1);
            mdlDatabase::copyDatabase();
        });
        EXPECT_GE(host.countInLog("Err.Number = -2147467259"), 1);
        EXPECT_GE(host.countInLog(host.databaseFile().string()), 1);
    };
    for (const auto& [name, content] : shapes) {
        SCOPED_TRACE(name);
        write(host.databaseFile(), content);
        fs::remove_all(host.programFolder() / "LOGS");
        ASSERT_TRUE(support::succeedsInChild(work));
    }
}

TEST_F(Starved, ADatabaseOfANewerProgramKeepsWhatThisOneDoesNotKnow) {
    makeDatabase();
    support::run(
        host.databaseFile(),
        "ALTER TABLE Events ADD COLUMN Later TEXT DEFAULT 'later'; CREATE TABLE Later(x);"
        "INSERT INTO Later VALUES(42); UPDATE Events SET Later = 'mine' WHERE EventKey = 10;"
        "ALTER TABLE Configuration ADD COLUMN Later LONG;"
        "ALTER TABLE Exclusions ADD COLUMN Later LONG; INSERT INTO Exclusions VALUES(0, 'a', 1, 7);");
    startUp();
    const long added = addEvent();
    EXPECT_GT(added, 10);
    mdlDatabase::modifyEvent({10, "Backup", "18", "new", 2, true, {"b.wav", 2, "t", "m", 2}});
    mdlDatabase::setConfigurationSetting("PollingInterval", "99");
    EXPECT_TRUE(mdlDatabase::copyDatabase());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
    EXPECT_EQ(host.countInLog("Exclusions table upgrade is not necessary"), 1);
    for (const fs::path& file : {host.databaseFile(), backup()})
        EXPECT_EQ(support::query(file,
                                 "SELECT EventTitle, Later, (SELECT x FROM Later), (SELECT Later FROM "
                                 "Exclusions) FROM Events WHERE EventKey IN (10, " +
                                     std::to_string(added) + ") ORDER BY EventKey"),
                  (std::vector<std::string>{"new|mine|42|7", "|later|42|7"}))
            << file;
}

// A disk that nobody else sees, with the files of `folder` on it and, while it is full, no byte more.
class SmallDisk {
  public:
    explicit SmallDisk(fs::path folder) : ballast_(std::move(folder) / "ballast") { fill(); }
    void fill() {
        std::ofstream stream(ballast_, std::ios::binary);
        while (stream << std::string(1024, 'x') << std::flush) {
        }
    }
    void makeRoom() { fs::remove(ballast_); }

  private:
    fs::path ballast_;
};

TEST_F(Starved, AFullDiskTakesNoEventAndNoBackupAndLosesNone) {
    makeDatabase();
    const fs::path folder = host.databaseFolder();
    const std::string database = contentOf(host.databaseFile());
    expectRan(support::runOnSmallDisk(folder, 600, [&] {
        write(host.databaseFile(), database);
        write(backup(), database);
        startUp();
        SmallDisk disk(folder);
        expectUntouched(folder, [] {
            EXPECT_EQ(addEvent(), 0);
            mdlDatabase::copyDatabase();
        });
        EXPECT_GE(host.countInLog("database or disk is full: " + host.databaseFile().string()), 1);
        EXPECT_GE(host.countInLog("Err.Number = 61 Err.Description = "), 1);
        EXPECT_EQ(support::query(host.databaseFile(), "PRAGMA integrity_check"),
                  std::vector<std::string>{"ok"});
        disk.makeRoom();
        EXPECT_GT(addEvent(), 10);
        EXPECT_TRUE(mdlDatabase::copyDatabase());
        EXPECT_EQ(support::query(backup(), "SELECT count(*) FROM Events WHERE EventKey >= 10"),
                  std::vector<std::string>{"2"});
        EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"QLNDB.MDB", "QLNDB_BKP.MDB"}));
    }));
}

TEST_F(Starved, AFullDiskGetsNoHalfDatabaseAndNoHalfUpgrade) {
    const fs::path folder = host.databaseFolder();
    const fs::path fresh = folder / "QLNDB_FRESH.MDB";
    support::run(fresh,
                 "DROP TABLE Exclusions; CREATE TABLE Exclusions(EventSource TEXT(50), EventId LONG);"
                 "INSERT INTO Exclusions VALUES('a', 1), ('b', 2)");
    const std::string content = contentOf(fresh);
    expectRan(support::runOnSmallDisk(folder, 600, [&] {
        write(fresh, content);
        SmallDisk disk(folder);
        expectUntouched(folder, startUp);
        EXPECT_EQ(host.countInLog("Err.Number = 61 Err.Description = Disk full (" +
                                  host.databaseFile().string() + ")"),
                  1);
        disk.makeRoom();
        write(host.databaseFile(), content);
        disk.fill();
        expectUntouched(folder, startUp);
        disk.makeRoom();
        startUp();
        EXPECT_EQ(support::query(host.databaseFile(), "SELECT * FROM Exclusions"),
                  (std::vector<std::string>{"0|a|1", "1|b|2"}));
    }));
}

TEST_F(Starved, AFullDiskKeepsTheRegistryAndOnlyStopsTheLog) {
    const fs::path store = platform::host::registryFile();
    const std::string registry = contentOf(store);
    expectRan(support::runOnSmallDisk(store.parent_path(), 64, [&] {
        write(store, registry);
        SmallDisk disk(store.parent_path());
        EXPECT_THROW(host.setRegistry(versionKey, "Build Number", 5u), platform::Failure);
        EXPECT_EQ(contentOf(store), registry);
        disk.makeRoom();
        host.setRegistry(versionKey, "Build Number", 5u);
        EXPECT_EQ(namesIn(store.parent_path()),
                  (std::vector<std::string>{"registry.reg", "registry.reg.lock"}));
    }));
    makeDatabase();
    expectRan(support::runOnSmallDisk(host.programFolder(), 64, [&] {
        core::gLog().log("before", core::logInfo, "tag");
        SmallDisk disk(host.programFolder());
        startUp();
        EXPECT_GT(addEvent(), 10);
        disk.makeRoom();
        core::gLog().log("after", core::logInfo, "tag");
        EXPECT_EQ(host.countInLog("before"), 1);
        EXPECT_EQ(host.countInLog("after"), 1);
    }));
}

}  // namespace
