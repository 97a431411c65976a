// Recordsets against the engine's C interface on the same file with the same pragmas. The bare side does what
// a careful caller would: one prepared statement, values taken out with their types.

#include <sqlite3.h>

#include "bench/rows.h"
#include "bench/workplace.h"
#include "platform/ado/ado.h"

namespace bench {

namespace {

using platform::Connection;
using platform::CursorLocation;
using platform::CursorType;
using platform::LockType;
using platform::Recordset;

constexpr int eventCount = 1000;
constexpr int searchCount = 1000;
constexpr int writeCount = 100;
constexpr char allEvents[] = "SELECT * FROM Events";
constexpr char bareName[] = "SQLite's C interface";

// What both sides must agree on, so that neither can skip work.
struct Sum {
    std::int64_t numbers = 0;
    std::size_t characters = 0;
    bool operator==(const Sum&) const = default;
};

std::string textOf(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)))
                : std::string();
}

void finish(sqlite3_stmt* statement) {
    insist(sqlite3_step(statement) == SQLITE_DONE, "a row could not be written");
    sqlite3_reset(statement);
}

Recordset openReading(Connection& connection) {
    Recordset rows;
    rows.open(allEvents, connection, CursorType::staticCursor, LockType::readOnly, CursorLocation::client);
    return rows;
}

Recordset openStream(Connection& connection) {
    Recordset rows;
    rows.open(allEvents, connection);
    return rows;
}

Recordset openWriting(Connection& connection, const std::string& source) {
    Recordset rows;
    rows.open(source, connection, CursorType::keyset, LockType::optimistic, CursorLocation::client);
    return rows;
}

Sum readOurs(Recordset rows) {
    Sum sum;
    for (; !rows.EOF_(); rows.moveNext()) {
        for (const char* field : {"EventKey", "EventId", "EventType"})
            sum.numbers += rows.number(field);
        sum.numbers += rows.boolean("EventActive") ? 1 : 0;
        for (const char* field : {"EventSource", "EventTitle"})
            sum.characters += rows.text(field).size();
    }
    return sum;
}

Sum readBare(const Engine& engine) {
    Sum sum;
    const Statement statement = prepare(engine, allEvents);
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        for (const int column : {0, 2, 4})
            sum.numbers += sqlite3_column_int64(statement.get(), column);
        sum.numbers += sqlite3_column_int(statement.get(), 5) != 0 ? 1 : 0;
        for (const int column : {1, 3})
            sum.characters += textOf(statement.get(), column).size();
    }
    return sum;
}

// A caller who counts the rows and goes back in them must keep them.
struct KeptEvent {
    std::int64_t key, id, type, active, collection;
    std::string source, title, last;
};

Sum keepBare(const Engine& engine) {
    std::vector<KeptEvent> events;
    const Statement statement = prepare(engine, allEvents);
    sqlite3_stmt* row = statement.get();
    while (sqlite3_step(row) == SQLITE_ROW)
        events.push_back({sqlite3_column_int64(row, 0), sqlite3_column_int64(row, 2),
                          sqlite3_column_int64(row, 4), sqlite3_column_int64(row, 5),
                          sqlite3_column_int64(row, 6), textOf(row, 1), textOf(row, 3), textOf(row, 7)});
    Sum sum;
    for (const KeptEvent& event : events) {
        sum.numbers += event.key + event.id + event.type + (event.active != 0 ? 1 : 0);
        sum.characters += std::string(event.source).size() + std::string(event.title).size();
    }
    return sum;
}

std::int64_t findOurs(Connection& connection) {
    std::int64_t sum = 0;
    Recordset rows = openReading(connection);
    for (int i = 0; i < searchCount; ++i) {
        rows.find("EventKey = " + std::to_string(3 + i * 7 % eventCount), 0, 0);
        sum += rows.number("EventId");
    }
    return sum;
}

// By the table's key, which is what the engine finds fastest.
std::int64_t findBare(const Engine& engine) {
    std::int64_t sum = 0;
    // In one transaction, so that the file is not locked anew for each row.
    finish(prepare(engine, "BEGIN").get());
    const Statement statement = prepare(engine, "SELECT * FROM Events WHERE EventKey = ?");
    for (int i = 0; i < searchCount; ++i) {
        sqlite3_bind_int(statement.get(), 1, 3 + i * 7 % eventCount);
        insist(sqlite3_step(statement.get()) == SQLITE_ROW, "an event is missing");
        sum += sqlite3_column_int64(statement.get(), 2);
        sqlite3_reset(statement.get());
    }
    finish(prepare(engine, "COMMIT").get());
    return sum;
}

void insertOurs(Connection& connection) {
    Recordset rows = openWriting(connection, allEvents);
    for (int i = 0; i < writeCount; ++i) {
        rows.addNew();
        rows.set("EventSource", std::string("MeridaneCorvane_New"));
        rows.set("EventId", std::int64_t{i});
        rows.set("EventTitle", std::string("Call the night shift"));
        rows.set("EventType", std::int64_t{1});
        rows.set("EventActive", std::int64_t{0});
        rows.update();
    }
}

void insertBare(const Engine& engine) {
    const Statement insert = prepare(engine,
                                     "INSERT INTO Events(EventSource, EventId, EventTitle, EventType, "
                                     "EventActive) VALUES (?, ?, ?, ?, ?)");
    for (int i = 0; i < writeCount; ++i) {
        sqlite3_bind_text(insert.get(), 1, "MeridaneCorvane_New", -1, SQLITE_TRANSIENT);
        sqlite3_bind_int(insert.get(), 2, i);
        sqlite3_bind_text(insert.get(), 3, "Call the night shift", -1, SQLITE_TRANSIENT);
        sqlite3_bind_int(insert.get(), 4, 1);
        sqlite3_bind_int(insert.get(), 5, 0);
        finish(insert.get());
    }
}

// Another one for each run: the engine writes nothing when a row keeps its content.
int nextType() {
    static int type = 0;
    return type = type % 30'000 + 1;
}

// One row at a time, as the console edits: opened by its key, changed, closed.
void updateOurs(Connection& connection) {
    const int type = nextType();
    for (int i = 0; i < writeCount; ++i) {
        Recordset row =
            openWriting(connection, "SELECT * FROM Events WHERE EventKey = " + std::to_string(3 + i));
        row.set("EventTitle", std::string("Call the day shift"));
        row.set("EventType", std::int64_t{type});
        row.update();
        row.close();
    }
}

void updateBare(const Engine& engine) {
    const int type = nextType();
    for (int i = 0; i < writeCount; ++i) {
        const std::string key = std::to_string(3 + i);
        const Statement select = prepare(engine, "SELECT * FROM Events WHERE EventKey = " + key);
        insist(sqlite3_step(select.get()) == SQLITE_ROW, "an event is missing");
        const std::int64_t id = sqlite3_column_int64(select.get(), 0);
        sqlite3_reset(select.get());
        const Statement update =
            prepare(engine, "UPDATE Events SET EventTitle = ?, EventType = ? WHERE rowid = ?");
        sqlite3_bind_text(update.get(), 1, "Call the day shift", -1, SQLITE_TRANSIENT);
        sqlite3_bind_int(update.get(), 2, type);
        sqlite3_bind_int64(update.get(), 3, id);
        finish(update.get());
    }
}

constexpr double usualReach = 1.3;

}  // namespace

void recordsetRows(Table& table, const std::filesystem::path& folder, const std::string& place) {
    // Reading ahead takes all columns of a row, and nobody notices what that costs.
    constexpr double streamReach = 1.5;
    const std::filesystem::path file = folder / "recordsets.MDB";
    makeDatabase(file, eventCount);
    Connection connection;
    connection.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file.string());
    const Engine engine = openBare(file);
    insist(readOurs(openReading(connection)) == readBare(engine), "both sides read the same");
    insist(readOurs(openStream(connection)) == keepBare(engine), "both sides read the same");
    insist(findOurs(connection) == findBare(engine), "both sides find the same");
    const auto compare = [&](const std::string& what, double units, const std::function<void()>& ours,
                             const std::function<void()>& peer, double within = usualReach) {
        table.compare({what + ", " + place, units, Show::timePerUnit, 9, within},
                      {"ours", [&] { return secondsOf(ours); }}, {bareName, [&] { return secondsOf(peer); }});
    };
    compare(
        "read a row of 1,000, forward only", eventCount, [&] { readOurs(openStream(connection)); },
        [&] { readBare(engine); }, streamReach);
    compare(
        "read a row of 1,000, kept", eventCount, [&] { readOurs(openReading(connection)); },
        [&] { keepBare(engine); });
    compare(
        "find one of 1,000 rows", searchCount, [&] { findOurs(connection); }, [&] { findBare(engine); });
    compare(
        "update one row", writeCount, [&] { updateOurs(connection); }, [&] { updateBare(engine); });
    compare(
        "insert one row", writeCount, [&] { insertOurs(connection); }, [&] { insertBare(engine); });
}

}  // namespace bench
