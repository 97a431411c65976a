// Connections and recordsets over SQLite, and over a server that is only read, as small as what the stores
// ask of them.
//
// Dialect, applied to every statement: a table name that begins with a digit is quoted; a #date# literal
// becomes the stored form. Nothing else is changed. One statement per call, always: a second statement in
// the text is a failure (-2147217900) and neither runs.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/failure.h"

struct sqlite3;

namespace platform {

enum class ObjectState { closed = 0, open = 1 };
enum class CursorType { forwardOnly, keyset, dynamic, staticCursor };
enum class LockType { readOnly, pessimistic, optimistic, batchOptimistic };
enum class CursorLocation { server, client };

struct Null {
    bool operator==(const Null&) const = default;
};
// A field's value. Booleans are the integers -1 and 0, dates are texts in stored form.
using Value = std::variant<Null, std::int64_t, double, std::string>;

namespace ado {
class OdbcServer;
class RowSource;
}  // namespace ado

// A statement, and the whole numbers that its "?" stand for, one for each in their order: with another count
// it does not run (-2147217904, on the directory -2147217900). A failure shows the statement with its
// numbers.
struct Query {
    Query(std::string statement, std::vector<std::int64_t> values = {})
        : text(std::move(statement)), numbers(std::move(values)) {}
    Query(std::string_view statement, std::vector<std::int64_t> values = {})
        : Query(std::string(statement), std::move(values)) {}
    Query(const char* statement, std::vector<std::int64_t> values = {})
        : Query(std::string(statement), std::move(values)) {}

    std::string text;
    std::vector<std::int64_t> numbers;
};

// A value as text, as people read it: nothing for Null, integers and reals in decimal.
std::string valueText(const Value& value);

// How long statements of this thread wait for a lock; five seconds until it is set.
void setLockPatience(std::chrono::milliseconds patience);

class Connection {
  public:
    Connection() = default;
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=FILE" opens that file for reading and writing (read-only
    // where its attribute or "Mode=Read" says so); "...;Initial Catalog=CorvaneDb" opens the host's directory
    // read-only: the ODBC data source that the registry names (value "DataSource" of the key
    // "SOFTWARE\\Tessaly\\CorvaneDb"), or else the directory's file in the host. Never creates a file. Raises
    // 3705 when open already, -2147467259 with the engine's text and the file's or data source's name when
    // that is missing, no database, or cannot be opened; the same failure is in errors().
    void open(const std::string& connectionString);
    void close() noexcept;
    ObjectState state() const noexcept {
        return handle_ || server_ ? ObjectState::open : ObjectState::closed;
    }
    const std::vector<Failure>& errors() const noexcept { return errors_; }
    // What the engine finds wrong with the open file, in its words; empty when nothing is, or when the file
    // is locked past the timeout. Takes some 10 ms for a megabyte. Raises 3709 when closed.
    std::string damage() const;

    // For this layer: the engine's handle (raises 3709 when closed, 3251 on a server, which is only read),
    // the server that a directory is on, the file's name for messages, and whether failures are numbered as
    // the directory provider does.
    sqlite3* handle() const;
    const std::shared_ptr<ado::OdbcServer>& server() const noexcept { return server_; }
    const std::string& fileName() const noexcept { return fileName_; }
    bool isDirectory() const noexcept { return directory_; }

  private:
    sqlite3* handle_ = nullptr;
    std::shared_ptr<ado::OdbcServer> server_;
    std::string fileName_;
    bool directory_ = false;
    std::vector<Failure> errors_;
};

// The failure for the engine's last error on a connection; `statement` ends the description.
Failure engineFailure(const Connection& connection, int code, std::string_view statement);

// The statement with the dialect's rules applied; exposed for tests.
std::string translateStatement(std::string_view statement);

class Recordset {
  public:
    Recordset();
    ~Recordset();
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;

    // Runs `source`, a SELECT, or a statement without rows, which runs here and leaves the recordset closed.
    // A writable recordset needs a SELECT of one table's columns; any other SELECT opens read-only. All
    // rows are read now; a forward-only, read-only one on the server steps the statement in blocks. Raises
    // 3705 when open, 3709 on a closed connection, and the numbers of failure.h for a statement that fails.
    void open(const Query& source, Connection& connection, CursorType cursor = CursorType::forwardOnly,
              LockType lock = LockType::readOnly, CursorLocation location = CursorLocation::server);
    // Opens a table's columns without its rows, to add some: optimistic, or in a batch. Raises as open does.
    void openForAdding(std::string_view table, Connection& connection, LockType lock = LockType::optimistic);
    // Raises 3704 when closed already. Drops what a batch collected.
    void close();
    ObjectState state() const noexcept;

    // All of the following raise 3704 when closed.
    bool EOF_() const;
    bool BOF_() const;
    // To the first row. Raises 3021 when there is none.
    void moveFirst();
    // Raises 3021 at the end.
    void moveNext();
    // The loop over all rows, `while (rows.next())`: the first call after open or moveFirst stays at the
    // first row, and a later one moves on. False at the end.
    bool next();
    // Moves to the first row, from `start` (a bookmark; the present row by default) plus `skip` rows on, for
    // which "Column = number" or "Column = 'text'" holds (text without regard to case); to the end when
    // none does. Raises 3021 on an empty recordset (and at the end without `start`), 5 for a criterion of
    // another form (a quote inside the text included), 3265 for an unknown column.
    void find(std::string_view criterion, long skip = 0);
    void find(std::string_view criterion, long skip, std::size_t start);
    // Position of the present row, valid until the recordset closes. Raises 3021 at the end.
    std::size_t bookmark() const;
    // Number of rows; -1 for a forward-only cursor on the server.
    long recordCount() const;

    std::size_t fieldCount() const;
    const std::string& fieldName(std::size_t index) const;  // raises 3265
    // Field of the present row, or of the row being added. Names ignore case. Raises 3021 and 3265.
    Value value(std::string_view field) const;
    bool isNull(std::string_view field) const;
    // Raise 94 for Null. `number` raises 13 for a text that is no number and 6 outside 32 bits; `boolean` is
    // true for any number but 0.
    std::string text(std::string_view field) const;
    long number(std::string_view field) const;
    bool boolean(std::string_view field) const;

    // Sets a field of the present row, or of the row being added. Raises 3251 on a read-only recordset, 3021
    // without a row, 3265, and by the column's declared type: 13 for a text that is no number, 6 outside
    // the range, -2147217887 for a text that is too long. A boolean column stores any non-zero as -1.
    void set(std::string_view field, Value value);
    void addNew();
    // Writes the set fields: one INSERT, or one UPDATE by row id; a batch only collects. Raises 3251, 3021,
    // and -2147217864 when somebody else deleted the row.
    // After a failure the row keeps what was set; another addNew or move drops it.
    void update();
    // Deletes the present row and leaves it current as deleted: a field read then raises 3021, moveNext
    // goes on with the next row. A batch only collects.
    void deleteCurrent();
    // Applies what a batch collected in one transaction: all or nothing.
    void updateBatch();

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Runs one statement that gives no rows, such as DELETE. Raises as Recordset::open does.
void execute(const Query& statement, Connection& connection);

// Schema of an open connection: count, create, rename and drop tables.
class Catalog {
  public:
    explicit Catalog(Connection& connection) : connection_(connection) {}

    // Raises 3265 when there is no such table.
    long columnCount(std::string_view table) const;

    struct Column {
        std::string name;
        enum class Type { integer, varWChar } type = Type::integer;
        int size = 0;  // characters, for varWChar
        bool autoIncrement = false;
        long seed = 1;       // first key given
        long increment = 1;  // only 1 is supported; anything else raises 5
    };
    struct Table {
        std::string name;
        std::vector<Column> columns;
        std::string primaryKey;  // column name; the constraint's name is "PrimaryKey"
    };
    void appendTable(const Table& table);
    void deleteTable(std::string_view table);
    void renameTable(std::string_view from, std::string_view to);

  private:
    Connection& connection_;
};

// Copies a database file through the engine, whole even while others write it: into a file beside the
// target, synced, renamed over it. Raises 53 for a missing source, 76 for a missing folder, 70 for a target
// (or folder) that may not be written, -2147467259 when the source is no database, is damaged or stays locked
// past five seconds. A failure leaves an old target as it was.
void backupDatabase(const std::string& source, const std::string& target);

}  // namespace platform
