// The configuration database's file: where it lies, opening it, its backup, and the one schema upgrade.
#pragma once

#include <string>

namespace mdlDatabase {

// The folder that holds the database, without a trailing separator. Heals the registry value by itself.
std::string getDatabasePath();
// Opens gDatabase, after copying the template when there is no database yet.
void openDatabase();
// Copies the database to `fileName` in its folder; false when the target is read-only.
bool copyDatabase(const std::string& fileName = "QLNDB_BKP.MDB");
// Gives Exclusions its key column. The result is always false and means nothing; it stays so.
bool upgradeDatabase();

}  // namespace mdlDatabase
