#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/ado/dialect.h"
#include "platform/machine/host.h"
#include "support/adoFixture.h"

using namespace adoTest;
using namespace platform;

namespace {

struct ConnectionTest : Database {};

TEST_F(ConnectionTest, OpensByTheConnectionStringAndNeverCreatesAFile) {
    EXPECT_EQ(connection.state(), ObjectState::open);
    EXPECT_EQ(failureOf([&] { connection.open(openString(file)); }), objectOpen);
    connection.close();
    EXPECT_EQ(failureOf([&] { execute("DELETE FROM Device", connection); }), connectionClosed);
    connection.open(" provider = MICROSOFT.jet.oledb.4.0 ; DATA SOURCE = " + file + ";Mode=1");
    connection.close();

    EXPECT_EQ(failureOf([&] { connection.open("Provider=Microsoft.Jet.OLEDB.4.0"); }), invalidProcedureCall);
    EXPECT_EQ(failureOf([&] { connection.open("Provider=Other;Data Source=" + file); }),
              invalidProcedureCall);
    const std::string missing = folder.file("missing.mdb");
    std::string text;
    EXPECT_EQ(failureOf([&] { connection.open(openString(missing)); }, &text), providerError);
    EXPECT_TRUE(contains(text, "unable to open database file") && contains(text, missing)) << text;
    ASSERT_EQ(connection.errors().size(), 1u);
    EXPECT_EQ(connection.errors()[0].number(), providerError);
    EXPECT_FALSE(std::filesystem::exists(missing));
    EXPECT_EQ(failureOf([&] { connection.open(openString("file:" + missing + "?mode=rwc")); }),
              providerError);
    EXPECT_EQ(failureOf([&] { connection.open(openString(":memory:")); }), providerError);
    EXPECT_EQ(failureOf([&] { connection.open(openString(folder.path().string())); }), providerError);

    connection.open(openString(file));
    EXPECT_TRUE(connection.errors().empty()) << "errors of earlier attempts are gone";
}

TEST_F(ConnectionTest, RefusesAFileThatIsNoDatabase) {
    const std::string text = folder.file("text.mdb");
    std::ofstream(text) << std::string(4096, 'x');
    Connection bad;
    std::string description;
    EXPECT_EQ(failureOf([&] { bad.open(openString(text)); }, &description), providerError);
    EXPECT_TRUE(contains(description, "file is not a database") && contains(description, text))
        << description;
    EXPECT_EQ(bad.state(), ObjectState::closed);
}

TEST_F(ConnectionTest, NumbersFailuresOfStatements) {
    const auto number = [&](const char* statement, std::string* text = nullptr) {
        return failureOf([&] { execute(statement, connection); }, text);
    };
    std::string text;
    EXPECT_EQ(number("DELETE FROM Nowhere", &text), tableMissing);
    EXPECT_TRUE(contains(text, "no such table") && contains(text, "[DELETE FROM Nowhere]")) << text;
    EXPECT_EQ(number("DELETE FROM Device WHERE Colour = 1"), columnMissing);
    EXPECT_EQ(number("INSERT INTO Device (Colour) VALUES (1)"), columnMissing);
    EXPECT_EQ(number("DELETE FROM Device WHERE Address = \"text\""), columnMissing)
        << "double quotes hold names only";
    EXPECT_EQ(number("DELETE FROM Device WHERE DeviceKey = ?"), columnMissing) << "nobody gives the value";
    EXPECT_EQ(number("DELETE FRM \"no such table: x\""), statementFailed);
    EXPECT_EQ(number(""), statementFailed);
    other.run("INSERT INTO Events (EventSource) VALUES ('a')");
    EXPECT_EQ(number("INSERT INTO Events (EventSource) VALUES ('A')"), constraintViolated);
    EXPECT_EQ(number(("ATTACH '" + folder.file("x") + "' AS x").c_str()), statementFailed);
    EXPECT_FALSE(std::filesystem::exists(folder.file("x")));
    EXPECT_NE(number("SELECT load_extension('x')"), 0);
    EXPECT_EQ(number("PRAGMA writable_schema = ON"), 0);
    EXPECT_NE(number("UPDATE sqlite_master SET sql = ''"), 0) << "the schema is defended";
}

TEST_F(ConnectionTest, RunsOneStatementOrNone) {
    other.run("INSERT INTO Device VALUES (1, 'x')");
    const auto number = [&](std::string_view statement) {
        return failureOf([&] { execute(statement, connection); });
    };
    EXPECT_EQ(number("DELETE FROM Device; DELETE FROM Link"), statementFailed);
    EXPECT_EQ(number("DELETE FROM Device;;-- note\n SELECT 1"), statementFailed);
    EXPECT_EQ(number("PRAGMA foreign_keys = ON; SELECT 1"), statementFailed);
    EXPECT_EQ(number(std::string_view("DELETE FROM Device\0WHERE 0", 26)), statementFailed);
    EXPECT_EQ(other.read("SELECT * FROM Device"), "1|x");
    Recordset rows;
    rows.open("PRAGMA foreign_keys", connection);
    EXPECT_EQ(rows.number("foreign_keys"), 0) << "the first statement did not even begin";
    EXPECT_EQ(number("DELETE FROM Device WHERE Address = ';--'; /* end */ ; -- ;"), 0);
    EXPECT_EQ(number("DELETE FROM Device;"), 0);
    EXPECT_EQ(other.read("SELECT * FROM Device"), "");
}

TEST_F(ConnectionTest, ReadsAProtectedFileAndRefusesToWriteIt) {
    connection.close();
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    connection.open(openString(file));
    Recordset rows = write("SELECT * FROM Device");
    rows.addNew();
    rows.set("DeviceKey", 1);
    std::string text;
    EXPECT_EQ(failureOf([&] { rows.update(); }, &text), providerError);
    EXPECT_TRUE(contains(text, "readonly") && contains(text, file)) << text;
    EXPECT_EQ(failureOf([&] { execute("DELETE FROM Device", connection); }), providerError);
}

TEST_F(ConnectionTest, WaitsForALockAndThenGivesUp) {
    Recordset rows = write("SELECT * FROM Device");
    rows.addNew();
    rows.set("DeviceKey", 1);
    other.run("BEGIN IMMEDIATE");
    std::string text;
    EXPECT_EQ(failureOf([&] { rows.update(); }, &text), providerError);
    EXPECT_TRUE(contains(text, "locked") && contains(text, file)) << text;
    other.run("ROLLBACK");
    rows.update();  // what was set is still there
    other.run("BEGIN EXCLUSIVE");
    Connection late;
    late.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file);
    EXPECT_EQ(late.state(), ObjectState::open) << "a lock fails no open";
    Recordset reader;
    EXPECT_EQ(failureOf([&] { reader.open("SELECT * FROM Device", connection); }), providerError);
    EXPECT_EQ(reader.state(), ObjectState::closed);
    other.run("ROLLBACK");
    reader.open("SELECT * FROM Device", late);
    EXPECT_FALSE(reader.EOF_());
    EXPECT_EQ(other.read("SELECT DeviceKey FROM Device"), "1");
}

TEST_F(ConnectionTest, ReadsTheDirectoryAndNumbersItsFailuresAsOne) {
    host::setFolder(folder.path());
    Other directory(host::directoryDatabase().string());
    directory.run("CREATE TABLE Subscriber (DirectoryId TEXT); INSERT INTO Subscriber VALUES ('{1}')");
    Connection corvane;
    corvane.open("Provider=SQLOLEDB.1;Integrated Security=SSPI;INITIAL CATALOG=corvanedb");
    Recordset rows;
    rows.open("SELECT DirectoryId FROM Subscriber", corvane);
    EXPECT_EQ(rows.text("DirectoryId"), "{1}");
    for (const char* statement : {"SELECT Nothing FROM Subscriber", "SELECT * FROM Nothing", "SELEC 1"})
        EXPECT_EQ(failureOf([&] { Recordset().open(statement, corvane); }), statementFailed) << statement;
    EXPECT_EQ(failureOf([&] { execute("PRAGMA query_only = OFF", corvane); }), 0);
    EXPECT_EQ(failureOf([&] { execute("DELETE FROM Subscriber", corvane); }), providerError)
        << "the file itself is open for reading only";
    Connection another;
    EXPECT_EQ(failureOf([&] { another.open("Provider=SQLOLEDB.1;Initial Catalog=Other"); }), providerError);
    EXPECT_EQ(another.errors().size(), 1u);
    host::setFolder({});
}

TEST(Dialect, ChangesDigitNamesAndDatesOnly) {
    const auto same = [](const char* text) { EXPECT_EQ(translateStatement(text), text); };
    EXPECT_EQ(translateStatement("SELECT 31Sources.a FROM A,31Sources,[31x] WHERE b=12"),
              "SELECT \"31Sources\".a FROM A,\"31Sources\",[31x] WHERE b=12");
    same("SELECT 1, 0x1F, 1.5e3, 2E-5, a31, t.c31, :31x FROM \"31Sources\" WHERE x = '31Sources'");
    same("SELECT '#1/2/2003#', [#], \"a#b\", 'it''s #1#' -- #x# 31Sources\n FROM T /* 31x #y# */");
    EXPECT_EQ(translateStatement("t > #11/24/2026 2:05:09 PM# AND t < #11/25/2026#"),
              "t > '2026-11-24 14:05:09' AND t < '2026-11-25 00:00:00'");
    EXPECT_EQ(translateStatement("x = #2026-11-24 14:05:09#"), "x = '2026-11-24 14:05:09'");
    for (const char* text : {"x = #soon#", "x = #2/30/2026#", "x = ##", "x = #1' OR '1'='1#"})
        EXPECT_EQ(failureOf([&] { translateStatement(text); }), statementFailed) << text;
}

TEST_F(ConnectionTest, GivesEachParameterItsNumberAndShowsThemInFailures) {
    other.run("INSERT INTO Device VALUES (7, 'what?'), (-1, 'home'), (9000000000, 'far')");
    const auto find = [&](const Query& query) {
        Recordset rows;
        rows.open(query, connection);
        return rows.EOF_() ? "" : rows.text("Address");
    };
    EXPECT_EQ(find({"SELECT Address FROM Device WHERE Address <> '?' AND DeviceKey = ?", {-1}}), "home");
    EXPECT_EQ(find({"SELECT Address FROM Device WHERE DeviceKey > ? AND DeviceKey < ?", {-1, 8}}), "what?");
    EXPECT_EQ(find({"SELECT Address FROM Device WHERE DeviceKey = ?", {9000000000}}), "far");
    execute({"DELETE FROM Device WHERE DeviceKey = ?", {7}}, connection);
    EXPECT_EQ(find({"SELECT Address FROM Device WHERE DeviceKey = ?", {7}}), "");
    for (const Query& query :
         {Query("SELECT * FROM Device WHERE DeviceKey = ?"),
          Query("SELECT * FROM Device WHERE DeviceKey = ?", {1, 2}),
          Query("DELETE FROM Device WHERE DeviceKey = $x"), Query("SELECT * FROM Device", {1})})
        EXPECT_EQ(failureOf([&] { find(query); }), columnMissing) << query.text;
    std::string description;
    EXPECT_EQ(failureOf(
                  [&] {
        find({"SELECT a FROM Nowhere WHERE b = '?' AND c = ? AND d = ?", {5, -6}});
                  },
                  &description),
              tableMissing);
    EXPECT_EQ(description,
              "no such table: Nowhere [SELECT a FROM Nowhere WHERE b = '?' AND c = 5 AND d = -6]");
}

TEST_F(ConnectionTest, RunsTheStatementsOfTheStoresAsTheyStand) {
    other.run(
        "INSERT INTO \"31Sources\" VALUES ('b'), ('a'); INSERT INTO Events (EventSource, EventLast) VALUES "
        "('e', '2026-11-24 14:05:09'); INSERT INTO Device VALUES (7, 'home'); INSERT INTO Link VALUES (7, "
        "1)");
    Recordset rows;
    rows.open("SELECT * FROM 31Sources ORDER BY EventSource", connection);
    EXPECT_EQ(rows.text("EventSource"), "a");
    rows.close();
    rows.open(
        "SELECT DISTINCT Device.Address, Events.EventKey FROM Events INNER JOIN (Device INNER JOIN Link "
        "ON Device.DeviceKey = Link.DeviceKey) ON Events.EventKey = Link.EventKey WHERE Events.EventLast "
        "> #11/24/2026 2:05:08 PM# AND Events.EventLast < #11/24/2026 2:05:10 PM# AND Address = 'HOME'",
        connection, CursorType::staticCursor);
    EXPECT_EQ(rows.recordCount(), 1);
    EXPECT_EQ(rows.fieldName(0), "Address");
    EXPECT_EQ(rows.number("EVENTKEY"), 1);
}

}  // namespace
