#include "killed.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/host.h"
#include "platform/registry.h"
#include "support/scriptedPrompts.h"

namespace {

using namespace killed;
using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

constexpr long eventKey = 10;
constexpr char eventName[] = "Backup (17)";

// A database with one active event that has contents, devices and a last notification.
void prepareEvent(TemporaryHost& host) {
    prepareDatabase(host,
                    "UPDATE Configuration SET Value = '0' WHERE Setting = 'WarnOnDuplicateMonitoredEvents';"
                    "INSERT INTO Events VALUES(10, 'Backup', 17, 'old', 1, -1, 0, '2026-01-02 03:04:05');"
                    "INSERT INTO Contents VALUES(10, 1, 'old.wav', 0, 'old', 'old');"
                    "INSERT INTO Contents VALUES(10, 3, NULL, 0, 'old', 'old');"
                    "INSERT INTO EventDevice VALUES(10, 1, -1), (10, 2, -1);");
}

void changeEvent() {
    mdlDatabase::modifyEvent({eventKey, "Backup", "18", "new", 2, true, {"new.wav", 2, "new", "new", 1}});
}

void addEvent() {
    EXPECT_GT(mdlDatabase::addNewEvent({"Cluster", "5", "added", 4, {"a.wav", 1, "s", "n", 1}}), eventKey);
}

void deleteEvent() {
    support::ScriptedPrompts prompts;
    prompts.expect({std::string("Are your sure you want to delete event: ") + eventName,
                    "Delete Selected Event?", BoxIcon::question, BoxButtons::yesNo},
                   BoxAnswer::yes);
    EXPECT_TRUE(mdlDatabase::deleteEvent(eventKey, eventName));
}

constexpr char prepared[] = "10";
constexpr char added[] = "(SELECT max(EventKey) FROM Events WHERE EventKey > 10)";

// Title, activity and whether it was never notified; content rows with their subjects; number of devices.
std::string eventState(const TemporaryHost& host, const std::string& key) {
    return one(host.databaseFile(),
               "SELECT coalesce((SELECT EventTitle || ',' || EventActive || ',' || (EventLastNotification "
               "IS NULL) FROM Events WHERE EventKey = " +
                   key +
                   "), '') || '|' || coalesce((SELECT group_concat(ContentType || ContentSubject) FROM "
                   "Contents WHERE EventKey = " +
                   key + "), '') || '|' || (SELECT count(*) FROM EventDevice WHERE EventKey = " + key + ")");
}

TEST(Killed, AddingAnEvent) {
    support::killRepeatedly(
        {"add", prepareEvent, mdlDatabase::openDatabase, addEvent,
         [](const TemporaryHost& host) {
             return lookUp({{"||0", "nothing"},
                            {"added,0,1||0", "inactive event"},
                            {"added,0,1|1s|0", "inactive event, voice content"},
                            {"added,0,1|1s,3s|0", "inactive event, both contents"}},
                           eventState(host, added));
         },
         [] {
             startUp();
             addEvent();
         },
         [](const TemporaryHost& host) {
             EXPECT_EQ(eventState(host, added), "added,0,1|1s,3s|0");
             EXPECT_EQ(one(host.databaseFile(), "SELECT min(EventActive) FROM Events WHERE EventKey > 10"),
                       "0")
                 << "what a kill left half-made stays inactive";
         }});
}

TEST(Killed, ModifyingAnEvent) {
    support::killRepeatedly(
        {"modify", prepareEvent, mdlDatabase::openDatabase, changeEvent,
         [](const TemporaryHost& host) {
             return lookUp({{"old,-1,0|1old,3old|2", "nothing"},
                            {"new,-1,1|1old,3old|2", "event"},
                            {"new,-1,1|1new,3old|2", "event, voice content"},
                            {"new,-1,1|1new,3new|2", "event, both contents"}},
                           eventState(host, prepared));
         },
         [] {
             startUp();
             changeEvent();
         },
         [](const TemporaryHost& host) { EXPECT_EQ(eventState(host, prepared), "new,-1,1|1new,3new|2"); }});
}

TEST(Killed, DeletingAnEvent) {
    support::killRepeatedly(
        {"delete", prepareEvent, mdlDatabase::openDatabase, deleteEvent,
         [](const TemporaryHost& host) {
             return lookUp({{"old,-1,0|1old,3old|2", "nothing"},
                            {"old,-1,0||2", "contents"},
                            {"old,-1,0||0", "contents, devices"},
                            {"||0", "contents, devices, event"}},
                           eventState(host, prepared));
         },
         [] {
             startUp();
             deleteEvent();
         },
         [](const TemporaryHost& host) { EXPECT_EQ(eventState(host, prepared), "||0"); }});
}

TEST(Killed, ActivatingAnEvent) {
    const auto activate = [] { mdlDatabase::setEventActiveState(eventKey, true); };
    support::killRepeatedly(
        {"activate",
         [](TemporaryHost& host) {
             prepareEvent(host);
             support::run(host.databaseFile(), "UPDATE Events SET EventActive = 0 WHERE EventKey = 10");
         },
         mdlDatabase::openDatabase, activate,
         [](const TemporaryHost& host) {
             return lookUp({{"old,0,0|1old,3old|2", "nothing"}, {"old,-1,1|1old,3old|2", "active"}},
                           eventState(host, prepared));
         },
         [activate] {
             startUp();
             activate();
         },
         [](const TemporaryHost& host) { EXPECT_EQ(eventState(host, prepared), "old,-1,1|1old,3old|2"); }});
}

// A first start on a template of the old shape: copy, upgrade, derived table, settings.
constexpr int exclusionCount = 8;
constexpr char allSettings[] =
    "DefaultWavAttachment,DefaultEmailSubject,DefaultEmailBody,DefaultEmailPriority,DefaultVoiceMailPriority";

void prepareUpgrade(TemporaryHost& host) {
    prepareHost(host);
    std::string statements =
        "DROP TABLE Exclusions; CREATE TABLE Exclusions(EventSource TEXT(50), EventId LONG);"
        "INSERT INTO AddressDetails VALUES('stale', 'stale', 0, 99);"
        "INSERT INTO Device VALUES(1, 4, 'a@b', -1), (2, 4, 'c@d', -1), (3, 6, 'log', -1);";
    for (int i = 0; i < exclusionCount; ++i)
        statements +=
            "INSERT INTO Exclusions VALUES('Source" + std::to_string(i) + "', 1" + std::to_string(i) + ");";
    support::run(host.databaseFolder() / "QLNDB_FRESH.MDB", statements);
}

// Columns and rows of a table that holds the exclusions; the rows have to be the first ones in their order.
struct Exclusions {
    std::string columns = "0";
    std::size_t rows = 0;
};

Exclusions exclusionsOf(const fs::path& database, const std::string& table) {
    Exclusions result{one(database, "SELECT count(*) FROM pragma_table_info('" + table + "')")};
    if (result.columns == "0")
        return result;
    const auto rows =
        support::query(database, "SELECT EventSource, EventId FROM " + table + " ORDER BY rowid");
    for (const std::string& row : rows) {
        const std::string number = std::to_string(result.rows++);
        EXPECT_EQ(row, "Source" + number + "|1" + number) << table;
    }
    return result;
}

// What follows the upgrade, in its order: the derived table is emptied and filled, then the settings come.
std::string stateAfterUpgrade(const fs::path& database) {
    const std::string addresses = one(database, "SELECT group_concat(DeviceAddress) FROM AddressDetails");
    const std::string settings =
        one(database,
            "SELECT group_concat(Setting) FROM (SELECT Setting FROM Configuration WHERE Setting LIKE "
            "'Default%' ORDER BY rowid)");
    if (settings != "NULL")
        return addresses == "a@b,c@d,log" && std::string_view(allSettings).starts_with(settings)
                   ? settings == allSettings ? "done" : "settings begun"
                   : "";
    return lookUp({{"stale", "upgraded"},
                   {"NULL", "addresses begun"},
                   {"a@b", "addresses begun"},
                   {"a@b,c@d", "addresses begun"},
                   {"a@b,c@d,log", "addresses done"}},
                  addresses);
}

std::string upgradeState(const TemporaryHost& host) {
    if (!fs::exists(host.databaseFile()))
        return "no database";
    const fs::path backup = host.databaseFolder() / "QLNDB_PRE_EXCLUSIONS_UPGRADE.MDB";
    const Exclusions old = exclusionsOf(host.databaseFile(), "Exclusions");
    const Exclusions made = exclusionsOf(host.databaseFile(), "ExclusionsNew");
    const bool whole = old.rows == exclusionCount;
    const bool saved = fs::exists(backup) && exclusionsOf(backup, "Exclusions").rows == exclusionCount;
    if (old.columns == "2" && whole && made.columns == "0")
        return saved ? "old table, saved" : "old table";
    if (!saved)
        return "";
    if (old.columns == "2" && whole && made.columns == "3")
        return "old table, new one begun";
    if (old.columns == "0" && made.columns == "3" && made.rows == exclusionCount)
        return "new table not named yet";
    if (old.columns == "3" && whole && made.columns == "0")
        return stateAfterUpgrade(host.databaseFile());
    return "";
}

TEST(Killed, StartingUpWithTheUpgrade) {
    support::killRepeatedly(
        {"start-up with upgrade",
         prepareUpgrade,
         {},
         startUp,
         upgradeState,
         startUp,
         [](const TemporaryHost& host) {
             EXPECT_EQ(upgradeState(host), "done");
             EXPECT_EQ(one(host.databaseFile(), "SELECT group_concat(ExclusionKey) FROM Exclusions"),
                       "0,1,2,3,4,5,6,7");
         }});
}

// A database of some pages, and an older backup.
void prepareBackup(TemporaryHost& host) {
    prepareEvent(host);
    const auto backup = host.databaseFolder() / "QLNDB_BKP.MDB";
    fs::copy_file(host.databaseFile(), backup);
    support::run(host.databaseFile(),
                 "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) INSERT INTO "
                 "NotificationLog SELECT i, '2026-01-02', 'Backup', 17, 'a@b', 'yes' FROM n");
}

std::string backupState(const TemporaryHost& host) {
    EXPECT_EQ(one(host.databaseFile(), "SELECT count(*) FROM NotificationLog"), "20000");
    const fs::path backup = host.databaseFolder() / "QLNDB_BKP.MDB";
    const bool begun = fs::exists(backup.string() + ".new");
    return lookUp({{"0", begun ? "old backup, copy begun" : "old backup"}, {"20000", "new backup"}},
                  one(backup, "SELECT count(*) FROM NotificationLog"));
}

TEST(Killed, BackingUpAtTheExit) {
    const auto exit = [] { EXPECT_TRUE(mdlDatabase::copyDatabase()); };
    support::killRepeatedly({"exit during the backup", prepareBackup, mdlDatabase::openDatabase, exit,
                             backupState,
                             [exit] {
                                 startUp();
                                 exit();
                             },
                             [](const TemporaryHost& host) {
                                 EXPECT_EQ(backupState(host), "new backup");
                                 for (const auto& file : fs::directory_iterator(host.databaseFolder()))
                                     EXPECT_EQ(file.path().extension(), ".MDB") << "a leftover";
                             }});
}

// The registry's writer: value by value, each followed by the number of the last one.
constexpr std::uint32_t writtenValues = 12;
constexpr char writtenKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Written";

void prepareRegistry(TemporaryHost&) {
    platform::RegistryTree tree;
    for (const std::string path : {"HKEY_LOCAL_MACHINE", "HKEY_LOCAL_MACHINE\\SOFTWARE", writtenKey})
        tree[path] = {path, {}};
    for (int i = 0; i < 400; ++i) {
        const std::string path = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Key" + std::to_string(i);
        tree[path] = {path, {{"Name", std::string(100, 'x')}}};
    }
    platform::files::writeFile(platform::host::registryFile(), platform::formatRegistry(tree));
}

void writeRegistry() {
    for (std::uint32_t i = 1; i <= writtenValues; ++i) {
        EXPECT_TRUE(platform::registry().setValue(writtenKey, "Value" + std::to_string(i), i));
        EXPECT_TRUE(platform::registry().setValue(writtenKey, "Last", i));
    }
}

std::string registryState(const TemporaryHost&) {
    platform::Registry store(platform::host::registryFile());
    const auto key = store.key(writtenKey);
    if (!key || store.subkeys("HKEY_LOCAL_MACHINE\\SOFTWARE").size() != 401)
        return "";
    const auto last = store.value(writtenKey, "Last");
    const std::size_t lastNumber = last ? std::get<std::uint32_t>(*last) : 0;
    const std::size_t values = key->values.size() - (last ? 1 : 0);
    for (std::uint32_t i = 1; i <= values; ++i)
        if (store.value(writtenKey, "Value" + std::to_string(i)) != platform::RegistryValue(i))
            return "";
    return values == lastNumber ? "value and number" : values == lastNumber + 1 ? "value" : "";
}

TEST(Killed, WritingTheRegistry) {
    support::killRepeatedly(
        {"registry",
         prepareRegistry,
         {},
         writeRegistry,
         registryState,
         writeRegistry,
         [](const TemporaryHost& host) {
             EXPECT_EQ(registryState(host), "value and number");
             EXPECT_EQ(platform::Registry(platform::host::registryFile()).value(writtenKey, "Last"),
                       platform::RegistryValue(writtenValues));
         }});
}

}  // namespace
