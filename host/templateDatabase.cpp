#include "host/provision.h"
#include "host/sqliteFile.h"

namespace host {

extern const char templateTables[];
extern const char templateSources[];

void createTemplateDatabase(const std::filesystem::path& file) {
    replaceDatabase(file, [](SqliteFile& database) {
        database.run(templateTables);
        database.run(templateSources);
    });
}

}  // namespace host
