#include "database/lifecycle.h"

#include <filesystem>

#include "core/RegistryAPI.h"
#include "core/classLog.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/rows.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"

using core::Frame;
using core::gLog;
using platform::Catalog;
using namespace RegistryAPI;

namespace files = platform::files;

namespace mdlDatabase {

namespace {

constexpr char module[] = "mdlDatabase";
constexpr char databaseName[] = "QLNDB.MDB";
constexpr char templateName[] = "QLNDB_FRESH.MDB";
constexpr char pathValue[] = "DatabasePath";

std::string absolute(const std::string& path) {
    return std::filesystem::absolute(path).lexically_normal().string();
}

// Tables of two columns are of the old shape.
constexpr long oldColumnCount = 2;
constexpr char exclusions[] = "Exclusions";
constexpr char exclusionsNew[] = "ExclusionsNew";

Catalog::Table newExclusions() {
    using Type = Catalog::Column::Type;
    Catalog::Column key{"ExclusionKey", Type::integer};
    key.autoIncrement = true;
    key.seed = 0;
    key.increment = 1;
    Catalog::Column source{"EventSource", Type::varWChar, 50};
    return {exclusionsNew, {key, source, {"EventId", Type::integer}}, "ExclusionKey"};
}

bool hasTable(const Catalog& catalog, const char* table) {
    try {
        return catalog.columnCount(table) > 0;
    } catch (const platform::Failure& failure) {
        if (failure.number() != platform::itemNotFound)
            throw;
        return false;
    }
}

// An upgrade that was ended between its last two statements left the new table, whole, without its name.
void finishUpgrade(Catalog& catalog, const std::string& tag) {
    if (hasTable(catalog, exclusions) || !hasTable(catalog, exclusionsNew))
        return;
    gLog().log("Finishing an upgrade of the Exclusions table that was interrupted", core::logWarning, tag);
    catalog.renameTable(exclusionsNew, exclusions);
}

// One that was ended earlier left a part of the new table beside the old one, which still has every row.
void dropPartialTable(Catalog& catalog, const std::string& tag) {
    if (!hasTable(catalog, exclusionsNew))
        return;
    gLog().log("Removing what an interrupted upgrade of the Exclusions table left", core::logWarning, tag);
    catalog.deleteTable(exclusionsNew);
}

// False when a row did not arrive whole, as when the disk is full, the service locks the file for too long,
// or a source is longer than the new column.
bool copyExclusions(Frame& frame) {
    Rows from(frame);
    Rows to(frame);
    from.openForReading("SELECT * FROM Exclusions");
    to.openForAdding(exclusionsNew);
    bool copied = from.allRan() && to.allRan();
    while (from.next()) {
        to.addNew();
        to.copy("EventSource", from);
        to.copy("EventId", from);
        to.update();
        copied = to.allRan() && copied;
    }
    copied = from.allRan() && copied;
    from.close();
    to.close();
    return copied;
}

std::string connectionString(const std::string& path) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path + "/" + databaseName;
}

// What newDatabaseNotice says, and whether the backup must stay: it may be all that is left of a database
// that was moved away or deleted.
std::string notice;
bool backupStays = false;

// Keeps what the end of this run replaces, under a name that nothing has yet.
void keepBackup(Frame& frame, const std::string& path) {
    std::string kept;
    for (int number = 1; kept.empty() || files::fileExists(path + "/" + kept); ++number)
        kept = "QLNDB_BKP_" + std::to_string(number) + ".MDB";
    backupStays = !frame.step([&] { files::copyFile(path + "/" + backupName, path + "/" + kept); });
    const std::string folder = absolute(path);
    notice = "There was no database:\n" + folder + "/" + databaseName +
             "\n\nA new one was made. The last backup of the one before is\n" + folder + "/" +
             (backupStays ? std::string(backupName) : kept);
    gLog().log(notice, core::logError, frame.tag());
}

// What databaseTrouble found last.
bool troubled = false;

// Of the open database, or of one that could not be opened; empty when nothing is.
std::string whatIsWrong() {
    if (core::gDatabase.state() == platform::ObjectState::closed)
        return core::gDatabase.errors().empty() ? "It is not open."
                                                : core::gDatabase.errors().back().description();
    std::string damage = core::gDatabase.damage();
    if (damage.empty() && !hasTable(Catalog(core::gDatabase), "Events"))
        return "It is empty.";
    return damage;
}

}  // namespace

std::string getDatabasePath() {
    return core::procedure(module, "getDatabasePath", std::string(), [&](Frame& frame, std::string& path) {
        frame.step(
            [&] { path = getRegistryString(HKEY_LOCAL_MACHINE, core::productRegistryKey, pathValue); });
        if (path.empty() || !files::fileExists(path + "/" + databaseName)) {
            gLog().log("DatabasePath=" + path + " does not contain QLNDB.MDB", core::logError, frame.tag());
            path = (platform::program::installationRoot() / "Database").string();
            gLog().log("Setting DatabasePath to default path", core::logError, frame.tag());
            frame.step([&] {
                setRegistryValue(HKEY_LOCAL_MACHINE, core::productRegistryKey, pathValue, registryString,
                                 path);
            });
        }
        gLog().log("DatabasePath=" + path, core::logInfo, frame.tag());
    });
}

void openDatabase() {
    core::procedure(module, "openDatabase", [&](Frame& frame) {
        troubled = backupStays = false;
        notice.clear();
        const std::string path = getDatabasePath();
        if (!files::fileExists(path + "/" + databaseName)) {
            const std::string folder = absolute(path);
            gLog().log("Copying " + folder + "/" + templateName + " to " + folder + "/" + databaseName,
                       core::logInfo, frame.tag());
            if (frame.step([&] { files::copyFile(path + "/" + templateName, path + "/" + databaseName); }) &&
                files::fileExists(path + "/" + backupName))
                keepBackup(frame, path);
        }
        // Required: the read-only test looks at the folder's path without the file's name, so it normally
        // finds nothing and a read-only database keeps its attribute.
        frame.step([&] {
            if (files::fileExists(path) && files::isReadOnly(path)) {
                gLog().log(path + " found to be read-only.  Removing the read-only flag from this file.",
                           core::logWarning, frame.tag());
                files::setReadOnly(path, false);
            }
        });
        frame.step([&] { core::gDatabase.close(); });
        frame.step([&] { core::gDatabase.open(connectionString(path)); });
    });
}

std::string newDatabaseNotice() {
    return notice;
}

std::string databaseTrouble() {
    return core::procedure(module, "databaseTrouble", std::string(), [&](Frame& frame, std::string& trouble) {
        std::string reason;
        frame.step([&] { reason = whatIsWrong(); });
        troubled = !reason.empty();
        if (!troubled)
            return;
        const std::string path = getDatabasePath();
        // Where the file is damaged a write may take a page that still holds what could be rescued.
        if (core::gDatabase.state() == platform::ObjectState::open) {
            core::gDatabase.close();
            frame.step([&] { core::gDatabase.open(connectionString(path) + ";Mode=Read"); });
        }
        const std::string folder = absolute(path);
        const std::string backup = folder + "/" + backupName;
        trouble = "The database cannot be used:\n" + folder + "/" + databaseName + "\n\n" + reason +
                  "\n\nIt was left as it is. " +
                  (files::fileExists(backup) ? "The last backup is\n" + backup : "There is no backup.");
        gLog().log(trouble, core::logError, frame.tag());
    });
}

bool copyDatabase(const std::string& fileName) {
    return core::procedure(module, "copyDatabase", true, [&](Frame& frame, bool& copied) {
        frame.on(platform::permissionDenied, [&](const platform::Failure&) {
            gLog().log("Can not make backup copy of QLNDB.MDB, make sure QLNDB_BKP.MDB is not read-only",
                       core::logError, frame.tag());
            copied = false;
        });
        if (troubled || (backupStays && fileName == backupName)) {
            gLog().log(troubled ? "The database cannot be used, so the backup stays as it is"
                                : "The backup is of the database before, so it stays as it is",
                       core::logError, frame.tag());
            copied = false;
            return;
        }
        const std::string path = getDatabasePath();
        const std::string folder = absolute(path);
        gLog().log("Copying " + folder + "/" + databaseName + " to " + folder + "/" + fileName, core::logInfo,
                   frame.tag());
        // Through the engine, so that the copy is whole while the service writes. Required: a failure other
        // than a refusal is in the log, and the result is still true.
        frame.step([&] { platform::backupDatabase(path + "/" + databaseName, path + "/" + fileName); });
    });
}

bool upgradeDatabase() {
    return core::procedure(module, "upgradeDatabase", false, [&](Frame& frame, bool&) {
        Catalog catalog(core::gDatabase);
        long columns = 0;
        frame.step([&] {
            finishUpgrade(catalog, frame.tag());
            columns = catalog.columnCount(exclusions);
        });
        if (columns != oldColumnCount) {
            gLog().log("Exclusions table upgrade is not necessary", core::logInfo, frame.tag());
            return;
        }
        gLog().log("Upgrading Exclusions table", core::logInfo, frame.tag());
        copyDatabase("QLNDB_PRE_EXCLUSIONS_UPGRADE.MDB");
        // As long as a row is not in the new table, the old one must not go; the next start tries again.
        const bool created = frame.step([&] {
            dropPartialTable(catalog, frame.tag());
            catalog.appendTable(newExclusions());
        });
        if (!created || !copyExclusions(frame))
            return;
        frame.step([&] { catalog.deleteTable(exclusions); });
        frame.step([&] { catalog.renameTable(exclusionsNew, exclusions); });
    });
}

}  // namespace mdlDatabase
