#include "bench/workplace.h"

#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>

#include "host/provision.h"
#include "host/sqliteFile.h"

namespace bench {

namespace fs = std::filesystem;

Folder::Folder(const fs::path& parent) {
    std::string pattern = (parent / "qln-bench-XXXXXX").string();
    insist(mkdtemp(pattern.data()) != nullptr, "no folder in " + parent.string());
    path_ = pattern;
}

Folder::~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void makeDatabase(const fs::path& file, int events) {
    host::createTemplateDatabase(file);
    host::SqliteFile database(file, false);
    const std::string script =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(events) +
        ") INSERT INTO Events(EventSource, EventId, EventTitle, EventType, EventActive) "
        "SELECT 'MeridaneCorvane_' || (i % 40), i, 'Call the night shift about number ' || i, 1, "
        "-(i % 2) FROM n;";
    database.run(script.c_str());
}

void CloseEngine::operator()(sqlite3* handle) const noexcept {
    sqlite3_close_v2(handle);
}

Engine openBare(const fs::path& file) {
    sqlite3* opened = nullptr;
    const int code =
        sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    Engine engine(opened);
    insist(code == SQLITE_OK, "cannot open " + file.string());
    sqlite3_busy_timeout(opened, 5000);
    for (const char* setting : {"PRAGMA cell_size_check = ON", "PRAGMA synchronous = FULL",
                                "PRAGMA journal_mode = DELETE", "SELECT count(*) FROM sqlite_master"})
        insist(sqlite3_exec(opened, setting, nullptr, nullptr, nullptr) == SQLITE_OK, setting);
    return engine;
}

void FinalizeStatement::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Statement prepare(const Engine& engine, const std::string& text) {
    sqlite3_stmt* prepared = nullptr;
    const int code =
        sqlite3_prepare_v2(engine.get(), text.data(), static_cast<int>(text.size()), &prepared, nullptr);
    insist(code == SQLITE_OK, sqlite3_errmsg(engine.get()));
    return Statement(prepared);
}

void insist(bool holds, const std::string& message) {
    if (holds)
        return;
    std::fprintf(stderr, "measure: %s\n", message.c_str());
    std::exit(1);
}

}  // namespace bench
