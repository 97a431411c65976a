// The rows that a recordset's statement gave, and what their fields are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/cells.h"
#include "platform/ado/statement.h"

namespace platform::ado {

struct Row {
    Cell* values = nullptr;          // of the fields, in one of the blocks of cells
    std::optional<std::int64_t> id;  // of a writable recordset's row, once it is in the table
    bool deleted = false;
    bool inBatch = false;  // the batch holds something that is to happen to it
    bool stale = false;    // written here; the values are to be read back before they are shown
};

// All rows, or the present block of a stream. A row's position is its place in the whole result.
class ResultRows {
  public:
    // `opened` runs `source` on `connection`. For `writing` they are writable when each of their columns is a
    // column of one and the same table, and readable otherwise.
    ResultRows(Connection& connection, Query source, std::unique_ptr<RowSource> opened, bool writing);

    bool isWritable() const noexcept { return !table_.empty(); }
    const std::string& table() const noexcept { return table_; }
    const std::vector<Field>& fields() const noexcept { return fields_; }
    // Place of the first field of that name, without regard to case. Raises 3265.
    std::size_t fieldIndex(std::string_view name) const;

    // The reading at open, one of these three. Each raises the engine's failures, and -2147467259 when the
    // table has other columns than at the statement's preparation, which columnsChanged tells apart.
    void readAll();
    void readFirstBlock();
    void readNone();
    bool columnsChanged() const;
    // In the place of the present block. After a failure nothing is left to be read.
    void nextBlock();
    // Runs the statement of a stream anew, for its first block.
    void restart();
    // False for a stream that has more blocks.
    bool isComplete() const noexcept { return complete_; }

    // Positions of the first row that is there, and past the last one.
    std::size_t begin() const noexcept { return base_; }
    std::size_t end() const noexcept { return base_ + rows_.size(); }
    Row& at(std::size_t position) noexcept { return rows_[position - base_]; }
    const Row& at(std::size_t position) const noexcept { return rows_[position - base_]; }
    std::size_t liveCount() const noexcept { return rows_.size() - deleted_; }
    // A field as it is read; a row that was written here is read back from the table first.
    const Cell& cell(Row& row, std::size_t field);

    // Appends a row with a value for each field.
    Row& append(std::span<const std::optional<Value>> values);
    void setValue(Row& row, std::size_t field, const Value& value) { texts_.put(row.values[field], value); }
    void markDeleted(Row& row) noexcept;

  private:
    void makeWritable();
    std::size_t width() const noexcept { return fields_.size() + (isWritable() ? 1 : 0); }
    Cell* newValues();
    void dropRows() noexcept;
    void read(std::size_t limit);
    void readBack(Row& row);

    Connection& connection_;
    Query source_;
    std::unique_ptr<RowSource> select_;
    std::vector<Field> fields_;
    std::string table_;  // empty for rows that are only read

    std::vector<Row> rows_;
    std::size_t base_ = 0;
    std::size_t deleted_ = 0;
    bool complete_ = false;

    // The rows' values, in blocks: they stay where they are while rows are added and moved.
    std::vector<std::unique_ptr<Cell[]>> cells_;
    std::size_t block_ = 0;  // the one that is filled next
    Cell* nextCell_ = nullptr;
    std::size_t roomLeft_ = 0;  // cells from there to their block's end
    Texts texts_;               // of all cells
};

}  // namespace platform::ado
