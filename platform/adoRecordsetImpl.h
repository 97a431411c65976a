// What an open recordset holds. Its reading half is in adoRecordset.cpp, its writing half in adoEdit.cpp.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/ado.h"
#include "platform/adoStatement.h"

namespace platform {

// Values of a row by field; without a value where nothing was set.
using Edits = std::vector<std::optional<Value>>;

struct Recordset::Impl {
    Impl(std::string_view statement, Connection& owner, std::unique_ptr<ado::RowSource> opened);

    struct Row {
        Value* values = nullptr;         // as many as fields, in one of the blocks of `cells`
        std::optional<std::int64_t> id;  // of a writable recordset's row, once it is in the table
        bool deleted = false;
        bool stale = false;  // written here; the values are to be read back before they are shown
    };
    struct Operation {
        enum class Kind { add, change, remove } kind;
        std::size_t row;
        Edits edits;
    };
    struct ColumnIndex {
        int uses = 0;
        std::unordered_map<std::string, std::vector<std::size_t>> rowsByKey;
    };
    struct Criterion {
        std::size_t field;
        std::string key;
    };

    // Reading
    static std::unique_ptr<Impl> prepare(std::string_view source, Connection& connection, CursorType cursor,
                                         LockType lock, CursorLocation location);
    bool columnsChanged() const;
    void makeWritable();
    Row newRow();
    void dropRows() noexcept;
    void readAtOpen();
    void readRows(std::size_t limit);
    void nextBlock();
    void restart();
    void load();
    void ensureLoaded();
    bool atEnd();
    Row& present();
    bool loadedLater() const noexcept { return !complete && !streaming; }
    void skipDeleted() noexcept;
    std::size_t liveCount() const noexcept { return rows.size() - deletedCount; }
    std::size_t fieldIndex(std::string_view name) const;
    const Value& value(std::size_t field);
    const Value& stored(Row& row, std::size_t field);
    void moveFirst();
    void moveNext();

    // Searching
    Criterion parseCriterion(std::string_view text) const;
    bool seek(const Criterion& criterion);
    void find(const Criterion& criterion, std::size_t from);
    void findStreaming(const Criterion& criterion, std::size_t from);
    void dropIndexes();

    // Writing
    void requireWritable() const;
    void dropEdits() noexcept;
    void updateAdded();
    void updatePresent();
    void removePresent();
    void applyBatch();
    ado::Statement& writing(const std::string& text);
    std::int64_t insertRow(const Edits& values);
    void changeRow(std::int64_t id, const Edits& values);
    void removeRow(std::int64_t id);
    void refresh(Row& row);

    Connection& connection;
    sqlite3* engine = nullptr;  // of a writable one, the handle at open: opened anew, it is another one
    std::string source;
    std::unique_ptr<ado::RowSource> select;
    std::vector<ado::Field> fields;
    std::string table;
    bool writable = false;
    bool batch = false;
    bool streaming = false;
    bool counted = true;

    // Of a streaming recordset, the present block of rows; of a writable one that has not been loaded, the
    // rows added here.
    std::vector<Row> rows;
    // The rows' values, in blocks: they stay where they are while rows are added, erased and moved.
    std::vector<std::unique_ptr<Value[]>> cells;
    std::size_t block = 0;            // the one that is being filled
    std::size_t blockRows = 0;        // that it holds
    std::size_t base = 0;             // position of rows[0] in the result
    std::size_t position = 0;         // of the present row in the result
    bool complete = false;            // nothing is left to be read
    bool unplaced = false;            // not loaded, and the present row is the first one, whichever that is
    std::optional<Row> sought;        // not loaded, and this is the present row
    std::vector<Value> soughtValues;  // of that row
    std::size_t deletedCount = 0;

    bool adding = false;
    Edits edits;  // empty, or one for each field
    std::vector<Operation> operations;
    std::vector<ColumnIndex> indexes;

    ado::Statement write;
    std::string writeText;
};

}  // namespace platform
