// The legacy notifier of the demonstration host: its program, its database, its place in the menu.

#include "host/demonstration.h"
#include "host/sqliteFile.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// What the legacy tool's administrator had it watch, with what an import meets in the field: a source twice,
// one whose program is gone from this server, and an entry that was never finished.
constexpr char legacyTables[] =
    "CREATE TABLE Properties(PropName TEXT(50) COLLATE NOCASE, PropVal TEXT(255), \"Key\" LONG);"
    "INSERT INTO Properties(\"Key\", PropName, PropVal) VALUES"
    "(1, 'Source', 'MeridaneCorvane_CallMgr'), (1, 'EventId', '412'), (1, 'Pager', '5550101'),"
    "(2, 'Source', 'MeridaneCorvane_AudioText'), (2, 'EventId', '-1'), (2, 'Pager', '5550101'),"
    "(4, 'Source', 'DiskQuota'), (4, 'EventId', '36'), (4, 'Pager', '5550102'),"
    "(5, 'Source', 'KESN_TapeRobot'), (5, 'EventId', '9'),"
    "(7, 'Source', 'ClockSync'),"
    "(8, 'Source', 'MeridaneCorvane_CallMgr'), (8, 'EventId', '412'), (8, 'Pager', '5550103');";

constexpr char utilityShortcut[] =
    "[Desktop Entry]\n"
    "Type=Application\n"
    "Name=KTN Utility\n"
    "Exec=";

}  // namespace

fs::path legacyProgram(const fs::path& root) {
    return root / "HubServer" / "Kesn" / "TsKesnSvr.exe";
}

void fillLegacyNotifier(const fs::path& root, const fs::path& kit) {
    const fs::path program = legacyProgram(root);
    ensureFolder(program.parent_path());
    if (!kit.empty()) {
        platform::files::copyFile(legacyProgram(kit), program);
        fs::permissions(program, fs::perms::owner_all);
    }
    replaceDatabase(program.parent_path() / "KESN.MDB",
                    [](SqliteFile& database) { database.run(legacyTables); });
    platform::files::writeFile(platform::host::menuFolder() / "Corvane" / "KTN Utility.desktop",
                               utilityShortcut + (program.parent_path() / "KtnUtility.exe").string() + "\n");
}

}  // namespace host
