#include <functional>

#include "support/adoFixture.h"

using namespace adoTest;
using namespace platform;

namespace {

using RecordsetTest = Database;

TEST_F(RecordsetTest, TellsItsStateAndRows) {
    Recordset rows;
    EXPECT_EQ(failureOf([&] { rows.close(); }), objectClosed);
    EXPECT_EQ(failureOf([&] { rows.EOF_(); }), objectClosed);
    rows.open("DELETE FROM Device", connection);
    EXPECT_EQ(rows.state(), ObjectState::closed) << "a statement without rows has run";
    rows.open("SELECT * FROM Device", connection, CursorType::staticCursor);
    EXPECT_EQ(failureOf([&] { rows.open("SELECT 1", connection); }), objectOpen);
    EXPECT_TRUE(rows.EOF_() && rows.BOF_());
    for (const auto& action : std::initializer_list<std::function<void()>>{
             [&] { rows.moveFirst(); }, [&] { rows.moveNext(); }, [&] { rows.value("Address"); },
             [&] { rows.bookmark(); }, [&] { rows.find("DeviceKey = 1"); }})
        EXPECT_EQ(failureOf(action), noCurrentRecord);
    EXPECT_EQ(failureOf([&] { rows.value("Colour"); }), itemNotFound);
    EXPECT_EQ(failureOf([&] { rows.addNew(); }), updatingNotSupported);
}

TEST_F(RecordsetTest, StreamsAcrossBlocksAndLeavesNoLockOnShortResults) {
    fillDevices(1000);
    Recordset rows;
    rows.open("SELECT * FROM Device ORDER BY DeviceKey", connection);
    EXPECT_EQ(rows.recordCount(), -1);
    long sum = 0;
    while (rows.next())
        sum += rows.number("DeviceKey");
    EXPECT_FALSE(rows.next());
    EXPECT_EQ(sum, 500500);
    EXPECT_FALSE(rows.BOF_());
    EXPECT_EQ(failureOf([&] { rows.moveNext(); }), noCurrentRecord);
    rows.moveFirst();
    EXPECT_EQ(rows.number("DeviceKey"), 1);
    rows.find("Address = 'A50'", 0, 600);
    EXPECT_EQ(rows.number("DeviceKey"), 650);
    rows.find("Address = 'a50'", 1);
    EXPECT_EQ(rows.bookmark(), 749u);
    rows.find("DeviceKey = 3", 0, 0);
    EXPECT_EQ(rows.number("DeviceKey"), 3) << "back to where the first block was";
    rows.close();
    rows.open("SELECT * FROM Device WHERE DeviceKey < 5", connection);
    other.run("DELETE FROM Device");
    EXPECT_EQ(rows.number("DeviceKey"), 1);
}

TEST_F(RecordsetTest, ReadsFieldsAsTypes) {
    Recordset rows;
    rows.open("SELECT Null AS n, ' 12 ' AS t, 2.5 AS r, 3000000000 AS big, 'x' AS x, 1 AS one, 1e20 AS far",
              connection);
    EXPECT_TRUE(rows.isNull("N"));
    EXPECT_EQ(failureOf([&] { rows.text("n"); }), invalidUseOfNull);
    EXPECT_EQ(failureOf([&] { rows.number("n"); }), invalidUseOfNull);
    EXPECT_EQ(failureOf([&] { rows.boolean("n"); }), invalidUseOfNull);
    EXPECT_EQ(rows.number("t"), 12);
    EXPECT_EQ(rows.number("r"), 2) << "halves go to the even number";
    EXPECT_EQ(rows.text("r"), "2.5");
    EXPECT_EQ(failureOf([&] { rows.number("big"); }), overflow);
    EXPECT_EQ(failureOf([&] { rows.number("far"); }), overflow);
    EXPECT_EQ(failureOf([&] { rows.number("x"); }), typeMismatch);
    EXPECT_TRUE(rows.boolean("one"));
    EXPECT_EQ(rows.text("far"), "100000000000000000000");
    EXPECT_EQ(valueText(Null{}), "");
    EXPECT_EQ(valueText(std::int64_t{-1}), "-1");
}

TEST_F(RecordsetTest, FindsRowsFirstBySearchThenByIndex) {
    fillDevices(500);
    other.run("UPDATE Device SET Address = Null WHERE DeviceKey = 1");
    Recordset rows = write("SELECT * FROM Device ORDER BY DeviceKey");
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        rows.find("Address = 'A7'", 0, 0);
        EXPECT_EQ(rows.number("DeviceKey"), 7);
        rows.find("[address]='a7'", 1);
        EXPECT_EQ(rows.number("DeviceKey"), 107);
        rows.find("Address = 'a7'");
        EXPECT_EQ(rows.number("DeviceKey"), 107) << "the present row counts";
        rows.find("DeviceKey = 300.0", -50);
        EXPECT_EQ(rows.bookmark(), 299u);
        rows.find("DeviceKey = 299");
        EXPECT_TRUE(rows.EOF_()) << "it stands before the start";
        EXPECT_EQ(failureOf([&] { rows.find("DeviceKey = 1"); }), noCurrentRecord);
        rows.find("Address = ''", 0, 0);
        EXPECT_TRUE(rows.EOF_()) << "Null is no text";
    }
    rows.find("Address = 'a7'", 0, 0);
    rows.set("Address", "moved");
    rows.update();
    rows.find("Address = 'MOVED'", 0, 0);
    EXPECT_EQ(rows.number("DeviceKey"), 7);
    rows.find("Address = 'a7'", 0, 0);
    EXPECT_EQ(rows.number("DeviceKey"), 107);
    rows.deleteCurrent();
    rows.find("Address = 'a7'", 0, 0);
    rows.find("Address = 'a7'", 0, 0);
    EXPECT_EQ(rows.number("DeviceKey"), 207);
    for (const char* criterion : {"Address", "Address = a7", "Address = 'it's'", "Address = 'it''s'",
                                  "Address <> 'a'", "DeviceKey = 5x", "DeviceKey = "})
        EXPECT_EQ(failureOf([&] { rows.find(criterion, 0, 0); }), invalidProcedureCall) << criterion;
    EXPECT_EQ(failureOf([&] { rows.find("Colour = 1", 0, 0); }), itemNotFound);
    EXPECT_EQ(failureOf([&] { rows.find("DeviceKey = 1", -9, 3); }), invalidProcedureCall);
}

TEST_F(RecordsetTest, AStatementRunsWithEachNumberOnTheTableOfToday) {
    fillDevices(300);
    const auto open = [&](Recordset& rows, int key) {
        rows.open({"SELECT Address, DeviceKey FROM Device WHERE DeviceKey = ?", {key}}, connection);
        return rows.EOF_() ? "" : rows.text("Address");
    };
    Recordset first;
    Recordset second;
    EXPECT_EQ(open(first, 7), "a7");
    EXPECT_EQ(open(second, 8), "a8") << "while the first is open";
    EXPECT_EQ(first.text("Address"), "a7");
    first.close();
    second.close();
    EXPECT_EQ(open(first, 900), "");
    first.close();
    // Columns asked for by name are those whatever becomes of the table meanwhile.
    other.run(
        "BEGIN EXCLUSIVE; CREATE TABLE D2 (New TEXT, DeviceKey LONG, Address TEXT); INSERT INTO D2 SELECT "
        "'n', DeviceKey, Address || '!' FROM Device; DROP TABLE Device; ALTER TABLE D2 RENAME TO Device; "
        "COMMIT");
    EXPECT_EQ(open(first, 7), "a7!");
    EXPECT_EQ(first.fieldName(0), "Address");
    first.close();
    other.run("ALTER TABLE Device DROP COLUMN Address");
    EXPECT_EQ(failureOf([&] { open(first, 7); }), columnMissing);
    // One recordset will outlive its connection.
    second.open("SELECT DeviceKey FROM Device WHERE DeviceKey = 5", connection);
    // Two of one text at once.
    Recordset third;
    first.open({"SELECT * FROM Device WHERE DeviceKey > ? ORDER BY DeviceKey", {1}}, connection);
    third.open({"SELECT * FROM Device WHERE DeviceKey > ? ORDER BY DeviceKey", {5}}, connection);
    first.moveNext();
    EXPECT_EQ(first.number("DeviceKey"), 3);
    EXPECT_EQ(third.number("DeviceKey"), 6);
    first.close();
    third.close();
    connection.close();
    EXPECT_EQ(second.number("DeviceKey"), 5);
    second.close();
}

TEST_F(RecordsetTest, AStatementThatRanBeforeSeesTheColumnsOfToday) {
    fillDevices(2);
    for (const LockType lock : {LockType::readOnly, LockType::optimistic})
        for (const char* change :
             {"ALTER TABLE Device ADD COLUMN Colour TEXT DEFAULT 'red'",
              "ALTER TABLE Device RENAME COLUMN Colour TO Hue", "ALTER TABLE Device DROP COLUMN Hue"}) {
            write("SELECT * FROM Device", lock).close();
            other.run(change);
            Recordset rows = write("SELECT * FROM Device", lock);
            const std::size_t extra = contains(change, "DROP") ? 0 : 1;
            ASSERT_EQ(rows.fieldCount(), 2 + extra) << change;
            if (extra) {
                const char* name = contains(change, "ADD") ? "Colour" : "Hue";
                EXPECT_EQ(rows.text(name), "red");
                if (lock == LockType::optimistic) {
                    rows.set(name, std::string("red"));
                    rows.update();
                }
            }
        }
}

TEST_F(RecordsetTest, FindsFieldsInAnyOrderAndSpelling) {
    Recordset rows;
    rows.open(
        "SELECT 1 AS Id, 2 AS EventSourceA, 3 AS EventSourceB, 4 AS XventSourceB, 5 AS Id, 6 AS abc, 7 AS "
        "abd "
        "UNION ALL SELECT 11, 12, 13, 14, 15, 16, 17",
        connection);
    for (const long row : {0L, 10L}) {
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(rows.number("EventSourceA"), row + 2);
            EXPECT_EQ(rows.number("EventSourceB"), row + 3);
            EXPECT_EQ(rows.number("XventSourceB"), row + 4);
            EXPECT_EQ(rows.number("id"), row + 1) << "the first one of that name";
            EXPECT_EQ(failureOf([&] { rows.number(""); }), itemNotFound);
            EXPECT_EQ(rows.number("ABD"), row + 7);
            EXPECT_EQ(rows.number("abc"), row + 6);
            EXPECT_EQ(failureOf([&] { rows.number("EventSource"); }), itemNotFound);
            EXPECT_EQ(rows.number("ID"), row + 1);
            EXPECT_EQ(rows.number("ID"), row + 1);
        }
        EXPECT_EQ(rows.number("eventsourceb"), row + 3);
        EXPECT_EQ(rows.number("eventsourcea"), row + 2);
        rows.moveNext();
    }
    EXPECT_EQ(failureOf([&] { rows.number("Id"); }), noCurrentRecord);
}

TEST_F(RecordsetTest, KeepsTextsOfAnyLengthWhateverElseRuns) {
    constexpr int count = 600;
    other.run(
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 599) INSERT INTO "
        "Device SELECT i, replace(hex(zeroblob(i * (i % 7) * 20)), '00', char(97 + i % 26)) FROM n");
    Recordset stream;
    stream.open("SELECT DeviceKey, Address FROM Device", connection);
    Recordset kept = write("SELECT DeviceKey, Address FROM Device");
    const auto expected = [](int i) {
        return std::string(static_cast<std::size_t>(i * (i % 7) * 20), static_cast<char>('a' + i % 26));
    };
    for (int i = 0; i < count; ++i) {
        for (Recordset* rows : {&stream, &kept}) {
            ASSERT_FALSE(rows->EOF_() || rows->isNull("Address")) << i;
            ASSERT_EQ(rows->text("Address"), expected(i));
            ASSERT_EQ(rows->value("Address"), Value(expected(i)));
        }
        if (i % 50 == 0) {
            kept.set("Address", "changed");
            EXPECT_EQ(kept.text("Address"), "changed");
            EXPECT_EQ(stream.text("Address"), expected(i)) << "what was read stays as it was";
            kept.moveFirst();
            for (int steps = 0; steps < i; ++steps)
                kept.moveNext();
            EXPECT_EQ(kept.text("Address"), expected(i)) << "a move drops what was set";
        }
        stream.moveNext();
        kept.moveNext();
    }
    EXPECT_TRUE(stream.EOF_() && kept.EOF_());
    kept.moveFirst();
    for (const std::string& text : {std::string(5000, 'x'), std::string(), std::string("short")}) {
        kept.set("Address", text);
        kept.update();
        EXPECT_EQ(kept.text("Address"), text);
    }
    kept.moveNext();
    EXPECT_EQ(kept.text("Address"), expected(1));
    kept.addNew();
    EXPECT_TRUE(kept.isNull("Address"));
    kept.set("Address", "new");
    kept.update();
    EXPECT_EQ(kept.text("Address"), "new");
    kept.close();
    EXPECT_EQ(failureOf([&] { kept.text("Address"); }), objectClosed);
}

}  // namespace
