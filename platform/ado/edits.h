// What is written through a recordset: the values set in its present row or in the one that is being added,
// and the operations that a batch collects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/cursor.h"
#include "platform/ado/resultRows.h"

struct sqlite3;

namespace platform::ado {

class Edits {
  public:
    // The rows, the cursor and the connection must outlive it.
    Edits(Connection& connection, ResultRows& rows, Cursor& cursor, bool batch);

    // As ado.h says of the procedures of Recordset. All but drop raise 3251 when the rows are only read.
    void addNew();
    void set(std::string_view field, Value value);
    void update();
    void deleteCurrent();
    void updateBatch();
    void drop() noexcept;

    bool isAdding() const noexcept { return adding_; }
    // What was set and not written yet; null without.
    const Value* valueOf(std::size_t field) const noexcept;

  private:
    using Values = std::vector<std::optional<Value>>;  // by field; empty where nothing was set
    struct Operation {
        enum class Kind { add, change, remove } kind;
        std::size_t row;
        Values values;
    };
    void requireWritable() const;
    void requireSameConnection() const;
    void updateAdded();
    void updatePresent();
    void removePresent();
    Statement& writing(const std::string& text);
    std::int64_t insertRow(const Values& values);
    void changeRow(std::int64_t id, const Values& values);
    void removeRow(std::int64_t id);

    Connection& connection_;
    ResultRows& rows_;
    Cursor& cursor_;
    bool batch_;
    sqlite3* engine_ = nullptr;  // the handle at open; a connection that was opened again has another

    bool adding_ = false;
    Values values_;
    std::vector<Operation> operations_;
    Statement write_;
    std::string writeText_;
};

}  // namespace platform::ado
