// The configuration database of a demonstration host that has been in use.

#include <array>
#include <string>
#include <utility>

#include "host/demonstration.h"
#include "host/directory.h"
#include "host/sqliteFile.h"
#include "platform/files/files.h"

namespace host {

extern const char demonstrationRows[];

namespace {

// Whom the rows name; the archivist has left the directory.
constexpr std::array<std::pair<const char*, const char*>, 4> entries{{{"list", "dl-dutymanagers"},
                                                                      {"list", "dl-fieldengineers"},
                                                                      {"subscriber", "aalmeida"},
                                                                      {"subscriber", "archivist"}}};

}  // namespace

void fillDemonstrationNotifications(const std::filesystem::path& databaseFolder) {
    const std::filesystem::path file = databaseFolder / "QLNDB.MDB";
    platform::files::copyFile(databaseFolder / "QLNDB_FRESH.MDB", file);
    SqliteFile database(file, false);
    database.run("BEGIN IMMEDIATE; CREATE TEMP TABLE Entries(Entry, Id)");
    SqliteFile::Insert addEntry(database, "INSERT INTO Entries VALUES(?, ?)");
    for (const auto& [kind, alias] : entries)
        addEntry({std::string(kind) + " " + alias, directoryIdOf(kind, alias)});
    database.run(demonstrationRows);
    database.run("COMMIT");
}

}  // namespace host
