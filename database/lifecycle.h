// The configuration database's file: where it lies, opening it, its backup, and the one schema upgrade.
#pragma once

#include <string>

namespace mdlDatabase {

// The backup's file, in the database's folder.
inline constexpr char backupName[] = "QLNDB_BKP.MDB";

// The folder that holds the database, without a trailing separator. Heals the registry value by itself.
std::string getDatabasePath();
// Opens gDatabase, after copying the template when there is no database yet.
void openDatabase();
// That openDatabase made a new database although there is a backup of one before, in words for the
// administrator, and where that backup lies: copied to a name of its own, because the end of each run
// replaces the backup. Empty when it did not.
std::string newDatabaseNotice();
// What keeps the database from being used, in words for the administrator: what is wrong with which file,
// that it was left as it is, and where the backup lies. Empty when nothing does. Otherwise the connection can
// only read from then on, until openDatabase.
std::string databaseTrouble();
// Copies the database to `fileName` in its folder; false when the target is read-only, or when the database
// cannot be used, or the backup of the one before could not be kept: a backup that can be used is worth more.
bool copyDatabase(const std::string& fileName = backupName);
// Gives Exclusions its key column. Required: the result is always false and means nothing.
bool upgradeDatabase();

}  // namespace mdlDatabase
