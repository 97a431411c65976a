// The directory on a real server, held against the embedded one with the same rows.
#include <gtest/gtest.h>

#include "core/state.h"
#include "host/directory.h"
#include "platform/machine/host.h"
#include "server/directoryQuery.h"
#include "server/mdlCorvaneDatabase.h"
#include "support/postgresServer.h"
#include "support/temporaryHost.h"

namespace {

constexpr char dataSourceKey[] = "SOFTWARE\\Tessaly\\CorvaneDb";

// All rows of a statement, or the number of its failure.
std::string answer(platform::Connection& connection, const std::string& statement) {
    std::string text;
    try {
        platform::Recordset rows;
        rows.open(statement, connection);
        while (rows.next()) {
            for (std::size_t i = 0; i < rows.fieldCount(); ++i) {
                const platform::Value& value = rows.value(rows.fieldName(i));
                text += std::holds_alternative<platform::Null>(value) ? "Null|" : valueText(value) + "|";
            }
            text += '\n';
        }
    } catch (const platform::Failure& failure) {
        text += std::to_string(failure.number());
    }
    return text;
}

class DirectoryServer : public ::testing::Test {
  protected:
    void SetUp() override {
        if (const std::string missing = support::PostgresServer::missing(); !missing.empty())
            GTEST_SKIP() << missing;
        server =
            std::make_unique<support::PostgresServer>(std::vector<std::string>{"qln_tables", "qln_views"});
    }

    // The embedded directory of a layout, with blank fields among its rows.
    void makeEmbedded(host::DirectoryLayout layout, unsigned people) {
        host::createDirectory(platform::host::directoryDatabase(), layout,
                              [&](host::DirectoryWriter& writer) {
            host::fillDemonstrationDirectory(writer, people, 24);
            writer.add({"blank", "", "", "", "", "1", {}});
            writer.add(host::DistributionList{"dl-blank", "", "", {}});
        });
        const std::string prefix = layout == host::DirectoryLayout::tables ? "" : "tbl_";
        support::run(platform::host::directoryDatabase(),
                     "UPDATE " + prefix + "Subscriber SET FirstName = NULL WHERE Alias = 'blank'; UPDATE " +
                         prefix + "DistributionList SET DtmfAccessId = NULL WHERE Alias = 'dl-blank'");
    }

    // Opens the directory on the server as the console does.
    bool openServer(platform::Connection& connection, const std::string& dataSource) {
        host.setRegistry(dataSourceKey, "DataSource", server->dataSource(dataSource));
        return mdlCorvaneDatabase::openCorvaneDB(connection);
    }

    support::TemporaryHost host;
    std::unique_ptr<support::PostgresServer> server;
};

TEST_F(DirectoryServer, EverySearchFindsWhatTheEmbeddedDirectoryHas) {
    for (const bool views : {false, true}) {
        makeEmbedded(views ? host::DirectoryLayout::views : host::DirectoryLayout::tables, 240);
        const std::string name = views ? "qln_views" : "qln_tables";
        server->copyDirectory(name, platform::host::directoryDatabase());
        platform::Connection embedded;
        host.setRegistry(dataSourceKey, "DataSource", "");
        EXPECT_TRUE(mdlCorvaneDatabase::openCorvaneDB(embedded));
        platform::Connection real;
        ASSERT_TRUE(openServer(real, name));
        EXPECT_EQ(mdlCorvaneDatabase::determineViewsSupport(embedded), views);
        EXPECT_EQ(mdlCorvaneDatabase::determineViewsSupport(real), views);

        int found = 0;
        for (const short mode : std::initializer_list<short>{1, 2})
            for (const short field : std::initializer_list<short>{0, 1, 2, 3, 4}) {
                if (mode == 1 ? field == 0 : field > 1)
                    continue;
                for (const char* text : {"*", "", "  ", "**", "2*", "*ama*", "azhang", "O''*", "O'*", "Zo*",
                                         "Training", "90*", "*ı*", "x'; DELETE FROM DistributionList --"}) {
                    const std::string statement = directoryQuery::buildSQLQuery(
                        {views, mode, field, text, mode == 1 ? "(1,2,3,5,7,8)" : ""});
                    const std::string expected = answer(embedded, statement);
                    EXPECT_EQ(answer(real, statement), expected) << statement;
                    found += expected.size() > 100 ? 1 : 0;
                }
            }
        EXPECT_GT(found, 20);
        EXPECT_EQ(server->query(name, views ? "SELECT count(*) FROM vw_DistributionList"
                                            : "SELECT count(*) FROM DistributionList"),
                  "25");
    }
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(DirectoryServer, ValuesCursorsAndFailuresAreThoseOfAnyRecordset) {
    std::string longText(3000, 'x');
    server->run("qln_tables",
                "CREATE TABLE Mixed(Id INTEGER, Name TEXT, Share DOUBLE PRECISION, Price NUMERIC(8,2));"
                "INSERT INTO Mixed SELECT n, 'Zoë ' || n, n / 4.0, n FROM generate_series(1, 700) n;"
                "INSERT INTO Mixed VALUES(NULL, NULL, NULL, NULL), (701, '" +
                    longText + "😀', 0.5, 2.25);");
    platform::Connection connection;
    ASSERT_TRUE(openServer(connection, "qln_tables"));
    EXPECT_FALSE(mdlCorvaneDatabase::openCorvaneDB(connection));

    platform::Recordset rows;
    rows.open("SELECT ID, Name, Share, Price FROM Mixed ORDER BY Id", connection,
              platform::CursorType::staticCursor, platform::LockType::optimistic,
              platform::CursorLocation::client);
    EXPECT_EQ(rows.recordCount(), 702);
    EXPECT_EQ(rows.number("id"), 1);
    EXPECT_EQ(rows.text("NAME"), "Zoë 1");
    EXPECT_EQ(std::get<double>(rows.value("Share")), 0.25);
    rows.find("Id = 701");
    EXPECT_EQ(rows.text("Name"), longText + "😀");
    EXPECT_EQ(std::get<double>(rows.value("Price")), 2.25);
    rows.moveNext();
    EXPECT_TRUE(rows.isNull("Id") && rows.isNull("Name") && rows.isNull("Share") && rows.isNull("Price"));
    EXPECT_THROW(rows.set("Name", std::string("x")), platform::Failure);

    // A stream that goes back to its beginning, while another one runs.
    platform::Recordset stream;
    stream.open("SELECT Id FROM Mixed WHERE Id IS NOT NULL ORDER BY Id", connection);
    EXPECT_EQ(stream.recordCount(), -1);
    for (int i = 0; i < 600; ++i)
        stream.moveNext();
    EXPECT_EQ(stream.number("Id"), 601);
    EXPECT_EQ(answer(connection, "SELECT count(*) FROM Mixed"), "702|\n");
    stream.moveFirst();
    EXPECT_EQ(stream.number("Id"), 1);

    for (const char* statement :
         {"SELECT DtmfAccessId FROM Mixed", "SELECT Id FROM NoSuchTable", "SELECT Id FROM Mixed WHERE",
          "SELECT Id FROM Mixed WHERE Name LIKE 'O'Brien'", "SELECT Id FROM Mixed; SELECT 1"})
        EXPECT_EQ(answer(connection, statement), "-2147217900") << statement;
    connection.close();
    EXPECT_EQ(answer(connection, "SELECT Id FROM Mixed"), "3709");
}

TEST_F(DirectoryServer, NothingThatIsSentCanWrite) {
    server->run("qln_tables",
                "CREATE TABLE Kept(Id INTEGER); INSERT INTO Kept VALUES(1); CREATE SEQUENCE Numbers;"
                "CREATE FUNCTION sneak() RETURNS INTEGER LANGUAGE SQL AS"
                " 'INSERT INTO Kept VALUES(2) RETURNING Id';");
    platform::Connection connection;
    ASSERT_TRUE(openServer(connection, "qln_tables"));
    for (const char* statement : {"DELETE FROM Kept", "INSERT INTO Kept VALUES(3)", "DROP TABLE Kept",
                                  "SELECT sneak() FROM Kept", "SELECT nextval('numbers') FROM Kept"})
        EXPECT_EQ(answer(connection, statement), "-2147467259") << statement;
    EXPECT_THROW(platform::execute("UPDATE Kept SET Id = 4", connection), platform::Failure);
    // A setting that a statement slips in does not outlive it.
    EXPECT_EQ(
        answer(connection, "SELECT set_config('default_transaction_read_only', 'off', false) FROM Kept"),
        "off|\n");
    EXPECT_EQ(answer(connection, "SELECT sneak() FROM Kept"), "-2147467259");
    EXPECT_EQ(answer(connection, "SELECT Id FROM Kept"), "1|\n");
    EXPECT_EQ(server->query("qln_tables", "SELECT Id FROM Kept"), "1");
    // Between two statements no transaction is left that would hold the directory's tables.
    EXPECT_EQ(server->query("qln_tables",
                            "SELECT state FROM pg_stat_activity WHERE application_name <> 'psql' "
                            "AND datname = 'qln_tables'"),
              "idle");
}

TEST_F(DirectoryServer, AServerThatGoesAwayInTheMiddleOfASearch) {
    makeEmbedded(host::DirectoryLayout::tables, 2000);
    server->copyDirectory("qln_tables", platform::host::directoryDatabase());
    platform::Connection connection;
    ASSERT_TRUE(openServer(connection, "qln_tables"));
    platform::Recordset rows;
    rows.open(directoryQuery::buildSQLQuery({false, 1, 4, "*", "(1,2,3,5,7,8)"}), connection);
    rows.moveNext();
    server->kill();
    int seen = 0;
    long number = 0;
    try {
        while (rows.next())
            ++seen;
    } catch (const platform::Failure& failure) {
        number = failure.number();
    }
    EXPECT_EQ(number, platform::providerError);
    EXPECT_GT(seen, 1);
    EXPECT_LT(seen, 2000);
    // What came before the end is there, and a loop over it ends.
    while (!rows.EOF_())
        rows.moveNext();
    EXPECT_EQ(answer(connection, "SELECT Alias FROM Subscriber"), "-2147467259");
    EXPECT_FALSE(mdlCorvaneDatabase::determineViewsSupport(connection));
    rows.close();

    platform::Connection again;
    for (const char* dataSource : {"qln_tables", "no such source"})
        EXPECT_FALSE(openServer(again, dataSource));
    EXPECT_EQ(again.state(), platform::ObjectState::closed);
    EXPECT_EQ(host.countInLog("Err.Number = -2147467259 "), 1);
    EXPECT_EQ(host.countInLog("Err.Number = -2147220500 "), 2);
}

}  // namespace
