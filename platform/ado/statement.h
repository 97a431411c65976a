// Owners of the engine's handles, for the sources of platform/ado.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/rows.h"

struct sqlite3_stmt;

namespace platform::ado {

struct EngineClose {
    void operator()(sqlite3* handle) const noexcept;
};
using Engine = std::unique_ptr<sqlite3, EngineClose>;

// What a file that is locked past the timeout does to its opening.
enum class WhenLocked { opens, fails };

// Opens an existing database file with this layer's settings and reads its schema, so that a file that is
// no database fails here. A file whose owner may not write it is opened read-only even where the system
// would let this user write.
Engine openEngine(const std::string& file, bool readOnly, WhenLocked whenLocked = WhenLocked::opens);
// The same for a file that has to hold a database already. To the engine an empty file is a database
// without tables; here it is none, so that it is not taken for one and not copied over a backup.
Engine openDatabase(const std::string& file, bool readOnly, WhenLocked whenLocked = WhenLocked::opens);

struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept;
};
using Handle = std::unique_ptr<sqlite3_stmt, Finalize>;

// A statement prepared on an open connection: `text` is what the engine runs, `source` what failures name.
class Statement : public RowSource {
  public:
    Statement() = default;
    // Raises -2147217900 when `text` holds no statement or more than one, and what the engine says.
    Statement(const Connection& connection, std::string_view text, Query source);

    explicit operator bool() const noexcept { return statement_ != nullptr; }
    sqlite3_stmt* get() const noexcept { return statement_.get(); }

    // Gives the parameters the numbers of `source`. Raises what ado.h says of another count.
    void bindNumbers();
    // Parameters count from 1.
    void bind(int parameter, const Value& value);
    std::vector<std::string> fieldNames() const override;
    // A failure resets the statement, so that it keeps no lock.
    bool step() override;
    void reset() noexcept override;
    void row(std::span<Cell> cells, Texts& texts) const override;
    bool preparedAnew() const noexcept override;

  private:
    void check(int code) const;

    const Connection* connection_ = nullptr;
    Query source_{""};
    Handle statement_;
};

// Prepares a caller's statement, translated, with its numbers.
Statement prepareSource(const Connection& connection, const Query& source);

// Runs a statement of this layer's own to its end.
void run(const Connection& connection, std::string_view text);

// One transaction: BEGIN IMMEDIATE, and ROLLBACK unless committed.
class Transaction {
  public:
    explicit Transaction(const Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

  private:
    const Connection& connection_;
    bool open_ = true;
};

// Kind of a column by its declared type.
enum class FieldKind { other, integer, shortInteger, boolean, text, date };

struct Field {
    std::string name;
    // Only on a writable recordset:
    std::string column;
    FieldKind kind = FieldKind::other;
    std::size_t limit = 0;  // characters of a text; 0 without limit
    bool autoIncrement = false;
};

// Fills kind and limit from a declared type such as "TEXT(50)".
void setKind(Field& field, std::string_view declaredType);
// The value as the field's column stores it. Raises 13, 6 and -2147217887.
Value converted(const Field& field, Value value);

// A whole number with an optional sign, blanks around it allowed. Raises 13 for another text, 6 beyond
// 64 bits.
std::int64_t wholeNumber(std::string_view text);
// Rounded to the nearest whole number, halves to the even one. Raises 6 beyond 64 bits.
std::int64_t rounded(double number);
// 0 or -1. Raises 13 for a text that is neither a number nor "true" or "false".
std::int64_t booleanOf(const Value& value);
// Raises 94, 13 and 6.
long longOf(const Value& value);

// Two values are the same for a search when their keys are: numbers by their value, texts without regard
// to case, a number and a text when the text is the number's usual form.
std::string searchKey(const Value& value);

}  // namespace platform::ado
