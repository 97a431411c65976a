#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "support/adoFixture.h"

using namespace adoTest;
using namespace platform;

namespace {

struct CatalogTest : Database {
    Catalog::Table exclusions() const {
        using Type = Catalog::Column::Type;
        return {"New", {{"Key", Type::integer, 0, true, 0}, {"Source", Type::varWChar, 5}, {"Id"}}, "Key"};
    }
    void addSources(const char* table, int count) {
        Recordset rows = write(std::string("SELECT * FROM ") + table);
        for (int i = 0; i < count; ++i) {
            rows.addNew();
            rows.set("Source", "s");
            rows.update();
        }
    }
};

TEST_F(CatalogTest, CreatesATableWhoseKeysBeginAtTheSeed) {
    Catalog catalog(connection);
    EXPECT_EQ(catalog.columnCount("events"), 6);
    EXPECT_EQ(failureOf([&] { catalog.columnCount("New"); }), itemNotFound);
    catalog.appendTable(exclusions());
    EXPECT_NE(failureOf([&] { catalog.appendTable(exclusions()); }), 0);
    EXPECT_EQ(catalog.columnCount("New"), 3);
    addSources("New", 2);
    catalog.deleteTable("Device");
    catalog.renameTable("New", "Device");
    addSources("Device", 2);
    EXPECT_EQ(other.read("SELECT Key FROM Device WHERE Source = 'S'"), "0 1 2 3") << "case is ignored";
    EXPECT_EQ(failureOf([&] { addSources("New", 1); }), tableMissing);
    EXPECT_EQ(failureOf([&] { catalog.deleteTable("New"); }), itemNotFound);
    EXPECT_EQ(failureOf([&] { catalog.renameTable("New", "x"); }), itemNotFound);
    Recordset rows = write("SELECT * FROM Device");
    EXPECT_EQ(failureOf([&] { rows.set("Source", "sixsix"); }), textTooLong);

    Catalog::Table other7 = exclusions();
    other7.name = "From'7";
    other7.columns[0].seed = -7;
    catalog.appendTable(other7);
    catalog.renameTable("From'7", "It's");
    addSources("[It's]", 2);
    EXPECT_EQ(other.read("SELECT Key FROM [It's]"), "-7 -6");
}

TEST_F(CatalogTest, RefusesTablesThatTheEngineCannotCount) {
    Catalog catalog(connection);
    for (int fault = 0; fault < 5; ++fault) {
        Catalog::Table table = exclusions();
        if (fault == 0)
            table.columns[0].increment = 2;
        else if (fault == 1)
            table.primaryKey = "Nothing";
        else if (fault == 2)
            table.columns[2].autoIncrement = true;
        else if (fault == 3)
            table.columns[1].size = 0;
        else
            table.name.clear();
        EXPECT_EQ(failureOf([&] { catalog.appendTable(table); }), invalidProcedureCall) << fault;
    }
}

struct BackupTest : Database {
    // Expects that nothing but the named files is left in the folder.
    void expectFiles(std::initializer_list<const char*> names) {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            ++count;
            EXPECT_NE(std::find(names.begin(), names.end(), entry.path().filename()), names.end())
                << entry.path();
        }
        EXPECT_EQ(count, names.size());
    }
    std::string target = folder.file("copy.mdb");
};

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

TEST_F(BackupTest, CopiesAnOpenDatabaseAndReplacesTheOldCopy) {
    other.run("INSERT INTO Device VALUES (1, 'x')");
    backupDatabase(file, target);
    EXPECT_EQ(modeOf(target), 0600u);
    ASSERT_EQ(::chmod(target.c_str(), 0640), 0);
    other.run("INSERT INTO Device VALUES (2, 'y')");
    // What a crash in the middle of the last backup would have left.
    std::ofstream(target + ".new") << std::string(100000, 'x');
    std::ofstream(target + ".new-journal") << "x";
    backupDatabase(file, target);
    EXPECT_EQ(modeOf(target), 0640u);
    expectFiles({"QLNDB.MDB", "copy.mdb"});
    EXPECT_EQ(Other(target).read("SELECT * FROM Device"), "1|x 2|y");
    EXPECT_EQ(Other(target).read("PRAGMA integrity_check"), "ok");
}

TEST_F(BackupTest, LeavesTheOldCopyWhenItFails) {
    std::ofstream(target) << "old";
    const auto number = [&](const std::string& source) {
        return failureOf([&] { backupDatabase(source, target); });
    };
    EXPECT_EQ(number(folder.file("missing")), fileNotFound);
    EXPECT_EQ(number(folder.path().string()), fileNotFound);
    EXPECT_EQ(failureOf([&] { backupDatabase(file, file); }), permissionDenied);
    EXPECT_EQ(number(target + "/x"), pathNotFound);
    std::ofstream(folder.file("text")) << std::string(4096, 'x');
    EXPECT_EQ(number(folder.file("text")), providerError);
    ASSERT_EQ(::chmod(target.c_str(), 0444), 0);
    EXPECT_EQ(number(file), permissionDenied);
    expectFiles({"QLNDB.MDB", "copy.mdb", "text"});
    std::ifstream old(target);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(old), {}), "old");
}

TEST_F(BackupTest, LeavesNoJournalModeOfTheSourceInTheCopy) {
    other.run("PRAGMA journal_mode = WAL; INSERT INTO Device VALUES (1, 'x')");
    backupDatabase(file, target);
    EXPECT_EQ(Other(target).read("PRAGMA journal_mode"), "delete");
    EXPECT_EQ(Other(target).read("SELECT * FROM Device"), "1|x");
    EXPECT_FALSE(std::filesystem::exists(target + ".new-wal"));
}

TEST_F(BackupTest, IsWholeWhileAnotherWrites) {
    std::atomic<bool> stop = false;
    std::atomic<int> written = 0;
    std::thread writer([&] {
        Other service(file);
        service.run("PRAGMA synchronous = OFF");
        for (int i = 0; !stop; ++i) {
            // Two tables that agree at every moment between transactions.
            service.run("BEGIN IMMEDIATE; INSERT INTO Device VALUES (" + std::to_string(i) +
                        ", hex(zeroblob(3000))); INSERT INTO Link VALUES (1, 1); COMMIT");
            ++written;
        }
    });
    for (int i = 0; i < 10; ++i) {
        const int before = written;
        while (written == before)
            std::this_thread::yield();
        EXPECT_EQ(failureOf([&] { backupDatabase(file, target); }), 0);
        EXPECT_EQ(Other(target).read("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(Other(target).read("SELECT (SELECT count(*) FROM Device) = (SELECT count(*) FROM Link)"),
                  "1");
    }
    stop = true;
    writer.join();
}

}  // namespace
