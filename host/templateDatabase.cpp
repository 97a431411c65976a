#include "host/provision.h"
#include "host/sqliteFile.h"

namespace host {

extern const char templateTables[];
extern const char templateSources[];

void createTemplateDatabase(const std::filesystem::path& file, const std::filesystem::path& serviceLog) {
    replaceDatabase(file, [&](SqliteFile& database) {
        database.run(templateTables);
        database.run(templateSources);
        SqliteFile::Insert setLog(database,
                                  "UPDATE Configuration SET Value = ? WHERE Setting = 'OutputFilePath'");
        setLog({serviceLog.string()});
    });
}

}  // namespace host
