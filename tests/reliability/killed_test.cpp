#include "killed.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"

namespace {

using namespace killed;

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

// What follows the upgrade, in its order: the derived table is made anew, then the settings come.
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
    return lookUp({{"stale", "upgraded"}, {"a@b,c@d,log", "addresses done"}}, addresses);
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
    support::killRepeatedly({"start-up with upgrade",
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
    prepareDatabase(host, "");
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
    support::killRepeatedly({"registry",
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
