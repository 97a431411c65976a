
#include "support/adoFixture.h"

using namespace adoTest;
using namespace platform;

namespace {

using EditsTest = Database;

TEST_F(EditsTest, HoldsToTheDeclaredTypesOnWrite) {
    Recordset rows = write("SELECT * FROM Events");
    rows.addNew();
    const auto number = [&](const char* field, Value value) {
        return failureOf([&] { rows.set(field, std::move(value)); });
    };
    EXPECT_EQ(number("EventSource", "äöüäöüäöüä"), 0) << "ten characters, twenty bytes";
    EXPECT_EQ(number("EventSource", "elf zeichen"), textTooLong);
    EXPECT_EQ(number("EventId", " -17 "), 0);
    for (const char* text : {"1.5", "", "12x", "0x10", "+-1"})
        EXPECT_EQ(number("EventId", text), typeMismatch) << text;
    EXPECT_EQ(number("EventId", std::int64_t{2147483648}), overflow);
    EXPECT_EQ(number("EventId", "99999999999999999999"), overflow);
    EXPECT_EQ(number("EventType", std::int64_t{32768}), overflow);
    EXPECT_EQ(number("EventType", std::int64_t{-32768}), 0);
    EXPECT_EQ(number("EventActive", "maybe"), typeMismatch);
    EXPECT_EQ(number("EventActive", "True"), 0);
    EXPECT_EQ(number("EventLast", "tomorrow"), typeMismatch);
    EXPECT_EQ(number("eventlast", "11/24/2026 2:05:09 PM"), 0);
    EXPECT_EQ(number("Colour", Null{}), itemNotFound);
    rows.update();
    EXPECT_EQ(other.read("SELECT EventSource, EventId, EventType, EventActive, EventLast FROM Events"),
              "äöüäöüäöüä|-17|-32768|-1|2026-11-24 14:05:09");
    rows.set("EventActive", std::int64_t{7});
    rows.set("EventLast", Null{});
    rows.update();
    EXPECT_EQ(other.read("SELECT EventActive, EventLast FROM Events"), "-1|NULL");
    rows.set("EventActive", "0");
    rows.update();
    EXPECT_FALSE(rows.boolean("EventActive"));
}

TEST_F(EditsTest, AddsRowsAndStandsOnTheNewOne) {
    other.run("INSERT INTO Events (EventSource) VALUES ('old')");
    Recordset rows = write("SELECT * FROM Events");
    rows.addNew();
    EXPECT_FALSE(rows.EOF_());
    EXPECT_TRUE(rows.isNull("EventSource"));
    rows.set("EventSource", "OLD");
    EXPECT_EQ(rows.text("EventSource"), "OLD");
    EXPECT_EQ(failureOf([&] { rows.update(); }), constraintViolated);
    rows.addNew();
    rows.set("EventSource", "new");
    rows.update();
    EXPECT_EQ(rows.number("EventKey"), 2) << "the key that the engine gave";
    EXPECT_EQ(rows.number("EventActive"), 0) << "the default of the column";
    EXPECT_EQ(rows.bookmark(), 1u);
    rows.update();  // nothing set
    rows.moveFirst();
    EXPECT_EQ(rows.text("EventSource"), "old");
    rows.set("EventId", 5);
    rows.moveNext();  // drops what was set
    EXPECT_EQ(other.read("SELECT EventSource, EventId FROM Events"), "old|NULL new|NULL");
    rows.moveNext();
    EXPECT_EQ(failureOf([&] { rows.set("EventId", 5); }), noCurrentRecord);
    EXPECT_EQ(failureOf([&] { rows.update(); }), noCurrentRecord);
}

TEST_F(EditsTest, ChangesAndDeletesRowsByTheirIdentity) {
    other.run("INSERT INTO Device VALUES (1, 'same'), (1, 'same'), (1, 'same')");
    Recordset rows = write("SELECT Address FROM Device WHERE DeviceKey = 1 ORDER BY Address;");
    rows.moveNext();
    rows.set("address", "second");
    rows.update();
    EXPECT_EQ(other.read("SELECT Address FROM Device"), "same second same");
    rows.deleteCurrent();
    EXPECT_EQ(failureOf([&] { rows.value("Address"); }), noCurrentRecord);
    EXPECT_EQ(rows.recordCount(), 2);
    rows.moveNext();
    EXPECT_EQ(rows.text("Address"), "same");
    other.run("DELETE FROM Device");
    rows.set("Address", "gone");
    EXPECT_EQ(failureOf([&] { rows.update(); }), rowNotLocated);
    int visited = 0;
    rows.moveFirst();
    for (; rows.next(); ++visited)
        rows.deleteCurrent();
    EXPECT_EQ(visited, 2) << "a deleted row is passed over and the loop ends";
    EXPECT_EQ(failureOf([&] { rows.moveFirst(); }), noCurrentRecord);
    EXPECT_TRUE(rows.BOF_());
}

TEST_F(EditsTest, OffersNoWritingWhereRowsAreNotRowsOfOneTable) {
    other.run(
        "INSERT INTO Device VALUES (1, 'x'); INSERT INTO Link VALUES (1, 2);"
        "CREATE VIEW Seen AS SELECT * FROM Device");
    for (const char* source :
         {"SELECT DISTINCT Address FROM Device", "SELECT COUNT(*) AS c FROM Device",
          "SELECT Max(DeviceKey), Address FROM Device", "SELECT Address FROM Device GROUP BY Address",
          "SELECT Address FROM Device UNION SELECT EventKey FROM Link", "SELECT * FROM Seen",
          "SELECT Address FROM Device INNER JOIN Link ON Device.DeviceKey = Link.DeviceKey",
          "SELECT Address FROM Device, Link", "SELECT * FROM (SELECT * FROM Device)"}) {
        Recordset rows = write(source);
        EXPECT_EQ(rows.recordCount(),
                  std::string_view(source).find("UNION") == std::string_view::npos ? 1 : 2);
        EXPECT_EQ(failureOf([&] { rows.set(rows.fieldName(0), "y"); }), updatingNotSupported) << source;
    }
}

TEST_F(EditsTest, AppliesABatchWholeOrNotAtAll) {
    other.run("INSERT INTO Events (EventSource) VALUES ('a'), ('b'), ('c')");
    Recordset rows = write("SELECT * FROM Events", LockType::batchOptimistic);
    rows.set("EventId", 1);
    rows.update();
    rows.moveNext();
    rows.deleteCurrent();
    for (const char* source : {"d", "e", "A"}) {
        rows.addNew();
        rows.set("EventSource", source);
        rows.update();
    }
    EXPECT_EQ(rows.recordCount(), 5);
    EXPECT_EQ(other.read("SELECT EventSource, EventId FROM Events"), "a|NULL b|NULL c|NULL");
    EXPECT_EQ(failureOf([&] { rows.updateBatch(); }), constraintViolated);
    EXPECT_EQ(other.read("SELECT EventSource, EventId FROM Events"), "a|NULL b|NULL c|NULL");
    other.run("INSERT INTO Device VALUES (0, 'no transaction is left open')");

    rows.set("EventSource", "f");  // the row in the way, not yet written
    rows.update();
    rows.find("EventSource = 'e'", 0, 0);
    rows.deleteCurrent();
    rows.updateBatch();
    EXPECT_EQ(other.read("SELECT EventSource, EventId FROM Events"), "a|1 c|NULL d|NULL f|NULL");
    rows.find("EventSource = 'f'", 0, 0);
    EXPECT_EQ(rows.number("EventKey"), 5);
    rows.updateBatch();  // nothing more to do
    other.run("DELETE FROM Events WHERE EventSource = 'f'");
    rows.set("EventId", 9);
    rows.update();
    EXPECT_EQ(failureOf([&] { rows.updateBatch(); }), rowNotLocated);
    rows.close();
    EXPECT_EQ(failureOf([&] { write("SELECT * FROM Events").updateBatch(); }), updatingNotSupported);
}

TEST_F(EditsTest, CollectsABatchForALargeTable) {
    fillDevices(500);
    Recordset rows = write("SELECT * FROM Device", LockType::batchOptimistic);
    rows.addNew();
    rows.set("DeviceKey", -1);
    rows.update();
    rows.find("DeviceKey = 400", 0, 0);  // loads the rows before the one added
    rows.deleteCurrent();
    rows.updateBatch();
    EXPECT_EQ(other.read("SELECT count(*), min(DeviceKey), sum(DeviceKey = 400) FROM Device"), "500|-1|0");
}

TEST_F(EditsTest, OpenedForAddingHoldsNoneButWhatIsAdded) {
    fillDevices(500);
    Recordset rows;
    rows.openForAdding("Device", connection);
    EXPECT_EQ(failureOf([&] { rows.openForAdding("Device", connection); }), objectOpen);
    EXPECT_TRUE(rows.EOF_() && rows.BOF_());
    EXPECT_EQ(failureOf([&] { rows.set("Address", "none"); }), noCurrentRecord);
    for (const int key : {501, 502}) {
        rows.addNew();
        rows.set("DeviceKey", key);
        rows.update();
        EXPECT_EQ(rows.number("DeviceKey"), key);
    }
    EXPECT_EQ(rows.recordCount(), 2);
    rows.moveFirst();
    rows.deleteCurrent();
    Recordset batch;
    batch.openForAdding("Device", connection, LockType::batchOptimistic);
    for (const int key : {503, 504}) {
        batch.addNew();
        batch.set("DeviceKey", key);
        batch.update();
    }
    EXPECT_EQ(other.read("SELECT count(*), max(DeviceKey) FROM Device"), "501|502");
    batch.updateBatch();
    EXPECT_EQ(other.read("SELECT DeviceKey FROM Device WHERE DeviceKey > 500"), "502 503 504");
    // Whoever cannot read cannot write either, and is told so at once.
    other.run("BEGIN EXCLUSIVE");
    Recordset locked;
    EXPECT_EQ(failureOf([&] { locked.openForAdding("Device", connection); }), providerError);
    other.run("ROLLBACK");
}

TEST_F(EditsTest, WritesNothingThroughAConnectionThatWasClosed) {
    Recordset rows = write("SELECT * FROM Device");
    connection.close();
    rows.addNew();
    rows.set("DeviceKey", 1);
    EXPECT_EQ(failureOf([&] { rows.update(); }), connectionClosed);
}

}  // namespace
