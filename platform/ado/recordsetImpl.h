// What an open recordset holds. Its reading half is in adoRecordset.cpp, its writing half in adoEdit.cpp.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/ado/ado.h"
#include "platform/ado/cells.h"
#include "platform/ado/statement.h"

namespace platform {

namespace ado {

// Compares texts of at least one word's length; the last word may overlap the one before.
template <class Word>
bool sameWords(const char* left, const char* right, std::size_t size) noexcept {
    const auto same = [&](std::size_t at) {
        Word a = 0;
        Word b = 0;
        std::memcpy(&a, left + at, sizeof a);
        std::memcpy(&b, right + at, sizeof b);
        return a == b;
    };
    for (std::size_t at = 0; at + sizeof(Word) < size; at += sizeof(Word))
        if (!same(at))
            return false;
    return same(size - sizeof(Word));
}

// Names are short and most that are compared are the same, which is told here without a call.
inline bool isSame(std::string_view left, std::string_view right) noexcept {
    const std::size_t size = left.size();
    if (size != right.size())
        return false;
    if (size >= sizeof(std::uint64_t))
        return sameWords<std::uint64_t>(left.data(), right.data(), size);
    if (size >= sizeof(std::uint32_t))
        return sameWords<std::uint32_t>(left.data(), right.data(), size);
    return size == 0 || sameWords<char>(left.data(), right.data(), size);
}

}  // namespace ado

// Values of a row by field; without a value where nothing was set.
using Edits = std::vector<std::optional<Value>>;

struct Recordset::Impl {
    Impl(Query statement, Connection& owner, std::unique_ptr<ado::RowSource> opened);

    struct Row {
        ado::Cell* values = nullptr;     // of the fields, in one of the blocks of `cells`
        std::optional<std::int64_t> id;  // of a writable recordset's row, once it is in the table
        bool deleted = false;
        bool inBatch = false;  // the batch holds something that is to happen to it
        bool stale = false;    // written here; the values are to be read back before they are shown
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
    static std::unique_ptr<Impl> prepare(const Query& source, Connection& connection, CursorType cursor,
                                         LockType lock, CursorLocation location);
    bool columnsChanged() const;
    void makeWritable();
    ado::Cell* newValues();
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
    std::size_t fieldIndex(std::string_view name);
    std::size_t findField(std::string_view name) const;
    // The field that was asked for last time after the last one, if that is its name; else as many as fields.
    std::size_t expectedField(std::string_view name) const noexcept;
    // True when the present row's values are as they were read.
    bool isPlain() const noexcept;
    std::span<ado::Cell> valuesOf(const Row& row) const { return {row.values, fields.size()}; }
    const ado::Cell& stored(Row& row, std::size_t field);
    // A field of the present row as it is read, with what was set in it.
    const ado::Cell& cell(std::string_view field);
    const ado::Cell& changedCell(std::size_t field);
    void moveFirst();
    void moveNext();

    // Searching
    Criterion parseCriterion(std::string_view text);
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
    Query source;
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
    std::vector<std::unique_ptr<ado::Cell[]>> cells;
    std::size_t block = 0;  // the one that is filled next
    ado::Cell* nextCell = nullptr;
    std::size_t roomLeft = 0;   // cells from there to their block's end
    std::size_t base = 0;       // position of rows[0] in the result
    std::size_t position = 0;   // of the present row in the result
    bool complete = false;      // nothing is left to be read
    bool unplaced = false;      // not loaded, and the present row is the first one, whichever that is
    std::optional<Row> sought;  // not loaded, and this is the present row
    std::vector<ado::Cell> soughtValues;  // of that row
    ado::Texts texts;                     // of all cells
    std::vector<Value> shown;             // by field, what `value` gave a reference to
    ado::Cell edited{};                   // what `cell` gave a reference to, when that was set
    std::size_t deletedCount = 0;

    // Callers ask for the same fields in the same order, row after row, and spell them in one way.
    struct Asked {
        std::string spelling;   // of the field's name, when it was last looked up
        std::size_t after = 0;  // the field that was asked for after it
    };
    std::vector<Asked> asked;  // by field
    std::size_t lastAsked = 0;

    bool adding = false;
    Edits edits;  // empty, or one for each field
    std::vector<Operation> operations;
    std::vector<ColumnIndex> indexes;

    ado::Statement write;
    std::string writeText;
};

// These are short, and each row that is read goes through them several times.

inline bool Recordset::Impl::atEnd() {
    if (sought)
        return false;
    if (unplaced)
        load();
    return position - base >= rows.size();
}

inline std::size_t Recordset::Impl::expectedField(std::string_view name) const noexcept {
    const std::size_t expected = asked[lastAsked].after;
    return ado::isSame(asked[expected].spelling, name) ? expected : fields.size();
}

inline bool Recordset::Impl::isPlain() const noexcept {
    if (sought || unplaced || !edits.empty() || position - base >= rows.size())
        return false;
    const Row& row = rows[position - base];
    return !row.deleted && !row.stale;
}

}  // namespace platform
