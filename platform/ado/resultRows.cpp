#include "platform/ado/resultRows.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/ado/dialect.h"
#include "platform/machine/caseFold.h"

namespace platform::ado {

namespace {

constexpr char idColumn[] = "qln row id";
constexpr std::size_t everything = std::numeric_limits<std::size_t>::max();
// A stream reads this many rows ahead, so that a short result leaves no lock on the file while a message box
// waits for its answer.
constexpr std::size_t blockSize = 256;

// Rows that the blocks of values have room for: few at first, since most results are short.
std::size_t roomOf(std::size_t block) {
    return std::size_t{4} << std::min<std::size_t>(block, 7);
}

// A column of the caller's own may hide the row id.
std::int64_t idIn(const Cell& cell) {
    if (cell.kind != CellKind::integer)
        throw makeFailure(typeMismatch, idColumn);
    return cell.integer;
}

}  // namespace

ResultRows::ResultRows(Connection& connection, Query source, std::unique_ptr<RowSource> opened, bool writing)
    : connection_(connection), source_(std::move(source)), select_(std::move(opened)) {
    for (std::string& name : select_->fieldNames()) {
        Field field;
        field.name = std::move(name);
        fields_.push_back(std::move(field));
    }
    if (writing)
        makeWritable();
}

void ResultRows::makeWritable() {
    const std::string text = withRowId(translateStatement(source_.text), idColumn);
    if (text.empty())
        return;
    Statement withId;
    try {
        withId = Statement(connection_, text, source_);
        withId.bindNumbers();
    } catch (const Failure&) {
        return;  // a view or a join has no row id, and a server is only read
    }
    sqlite3_stmt* statement = withId.get();
    const int count = sqlite3_column_count(statement);
    const char* owner = sqlite3_column_table_name(statement, count - 1);
    if (!owner || static_cast<std::size_t>(count - 1) != fields_.size())
        return;
    std::vector<Field> described = fields_;
    for (int i = 0; i < count - 1; ++i) {
        const char* tableName = sqlite3_column_table_name(statement, i);
        const char* columnName = sqlite3_column_origin_name(statement, i);
        if (!tableName || !columnName || std::string_view(tableName) != owner)
            return;
        Field& field = described[static_cast<std::size_t>(i)];
        field.column = columnName;
        const char* type = nullptr;
        int autoIncrement = 0;
        if (sqlite3_table_column_metadata(connection_.handle(), "main", owner, columnName, &type, nullptr,
                                          nullptr, nullptr, &autoIncrement) != SQLITE_OK)
            return;
        field.autoIncrement = autoIncrement != 0;
        setKind(field, type ? type : "");
    }
    table_ = owner;
    fields_ = std::move(described);
    select_ = std::make_unique<Statement>(std::move(withId));
}

std::size_t ResultRows::fieldIndex(std::string_view name) const {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        // The lengths differ most times, which saves the call.
        if (fields_[i].name.size() == name.size() && equalsIgnoringAsciiCase(fields_[i].name, name))
            return i;
    }
    throw makeFailure(itemNotFound, name);
}

// Room for the values and the id of a row.
Cell* ResultRows::newValues() {
    const std::size_t cellsOfRow = fields_.size() + 1;
    if (roomLeft_ < cellsOfRow) {
        const std::size_t rowsOfBlock = roomOf(block_);
        if (block_ == cells_.size())
            cells_.push_back(std::make_unique_for_overwrite<Cell[]>(rowsOfBlock * cellsOfRow));
        nextCell_ = cells_[block_++].get();
        roomLeft_ = rowsOfBlock * cellsOfRow;
    }
    roomLeft_ -= cellsOfRow;
    return std::exchange(nextCell_, nextCell_ + cellsOfRow);
}

// The memory is kept: a stream fills it again and again.
void ResultRows::dropRows() noexcept {
    rows_.clear();
    texts_.clear();
    block_ = roomLeft_ = 0;
}

// Appends up to `limit` rows of the statement.
void ResultRows::read(std::size_t limit) {
    for (std::size_t count = 0; count < limit; ++count) {
        const bool found = select_->step();
        // Only the first step of a run can find out that the statement has to be prepared anew.
        if (count == 0 && columnsChanged())
            throw Failure(providerError,
                          "columns have changed since [" + spelledOut(source_) + "] was opened", "SQLite");
        if (!found) {
            complete_ = true;
            return;
        }
        Cell* const values = newValues();
        select_->row({values, width()}, texts_);
        Row& row = rows_.emplace_back();
        row.values = values;
        if (isWritable())
            row.id = idIn(values[fields_.size()]);
    }
}

void ResultRows::readAll() {
    read(everything);
}

void ResultRows::readFirstBlock() {
    read(blockSize);
}

// The first row is looked at all the same: a locked file is to fail the open, and not what comes after it.
void ResultRows::readNone() {
    read(1);
    select_->reset();
    dropRows();
    complete_ = true;
}

// True when a statement that was prepared earlier turned out to have other columns by now.
bool ResultRows::columnsChanged() const {
    if (!select_->preparedAnew())
        return false;
    const std::vector<std::string> names = select_->fieldNames();
    return names.size() != width() ||
           !std::equal(fields_.begin(), fields_.end(), names.begin(),
                       [](const Field& field, const std::string& name) { return field.name == name; });
}

void ResultRows::nextBlock() {
    base_ += rows_.size();
    dropRows();
    try {
        read(blockSize);
    } catch (const Failure&) {
        // A loop over the rows must come to its end.
        complete_ = true;
        throw;
    }
}

void ResultRows::restart() {
    select_->reset();
    dropRows();
    base_ = 0;
    complete_ = false;
    nextBlock();
}

const Cell& ResultRows::cell(Row& row, std::size_t field) {
    if (row.stale)
        readBack(row);
    return row.values[field];
}

// After a row was written: its key, the columns' defaults.
void ResultRows::readBack(Row& row) {
    std::string columns;
    for (const Field& field : fields_)
        columns += (columns.empty() ? "" : ", ") + quotedName(field.column);
    const std::string text = "SELECT " + columns + " FROM " + quotedName(table_) + " WHERE rowid = ?";
    Statement query(connection_, text, text);
    query.bind(1, *row.id);
    if (query.step())
        query.row({row.values, fields_.size()}, texts_);
    row.stale = false;
}

Row& ResultRows::append(std::span<const std::optional<Value>> values) {
    Row row;
    row.values = newValues();
    for (std::size_t i = 0; i < values.size(); ++i)
        texts_.put(row.values[i], values[i].value_or(Null{}));
    return rows_.emplace_back(row);
}

void ResultRows::markDeleted(Row& row) noexcept {
    row.deleted = true;
    ++deleted_;
}

}  // namespace platform::ado
