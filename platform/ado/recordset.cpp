#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <unordered_set>
#include <utility>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/ado/recordsetImpl.h"

namespace platform {

namespace {

constexpr char idColumn[] = "qln row id";
constexpr std::size_t everything = std::numeric_limits<std::size_t>::max();
// A streaming recordset reads this many rows ahead, so that a short result leaves no lock on the file
// while a message box waits for its answer.
constexpr std::size_t blockSize = 256;
// A writable recordset with more rows than these is loaded only when a row is asked for: most are opened
// just to add one.
constexpr std::size_t rowsReadAtOnce = 64;
// Rows that the blocks of values have room for: few at first, since most results are short.
std::size_t roomOf(std::size_t block) {
    return std::size_t{4} << std::min<std::size_t>(block, 7);
}

// Without regard to case. The columns of a table often begin alike, so the last letter is compared first.
bool isNamed(std::string_view field, std::string_view name) noexcept {
    constexpr int caseBit = 0x20;
    if (field.size() != name.size() || name.empty() || ((field.back() ^ name.back()) & ~caseBit) != 0)
        return field.empty() && name.empty();
    return field == name || ado::equalsIgnoringCase(field, name);
}

// A column of the caller's own may hide the row id.
std::int64_t idIn(const ado::Cell& cell) {
    if (cell.kind != ado::CellKind::integer)
        throw makeFailure(typeMismatch, idColumn);
    return cell.integer;
}

template <typename ImplPointer>
auto& opened(const ImplPointer& impl) {
    if (!impl)
        throw makeFailure(objectClosed);
    return *impl;
}

}  // namespace

Recordset::Impl::Impl(Query statement, Connection& owner, std::unique_ptr<ado::RowSource> opened)
    : connection(owner), source(std::move(statement)), select(std::move(opened)) {
    for (std::string& name : select->fieldNames()) {
        ado::Field field;
        field.name = std::move(name);
        fields.push_back(std::move(field));
    }
    asked.resize(fields.size() + 1);  // one more, so that it is never empty
}

// A recordset is writable when each of its columns is a column of one and the same table. Otherwise it
// stays as it is, readable.
void Recordset::Impl::makeWritable() {
    const std::string text = ado::withRowId(translateStatement(source.text), idColumn);
    if (text.empty())
        return;
    ado::Statement withId;
    try {
        withId = ado::Statement(connection, text, source);
        withId.bindNumbers();
    } catch (const Failure&) {
        return;  // a view or a join has no row id, and a server is only read
    }
    sqlite3* const handle = connection.handle();
    sqlite3_stmt* statement = withId.get();
    const int count = sqlite3_column_count(statement);
    const char* owner = sqlite3_column_table_name(statement, count - 1);
    if (!owner || static_cast<std::size_t>(count - 1) != fields.size())
        return;
    std::vector<ado::Field> described = fields;
    for (int i = 0; i < count - 1; ++i) {
        const char* tableName = sqlite3_column_table_name(statement, i);
        const char* columnName = sqlite3_column_origin_name(statement, i);
        if (!tableName || !columnName || std::string_view(tableName) != owner)
            return;
        ado::Field& field = described[static_cast<std::size_t>(i)];
        field.column = columnName;
        const char* type = nullptr;
        int autoIncrement = 0;
        if (sqlite3_table_column_metadata(handle, "main", owner, columnName, &type, nullptr, nullptr, nullptr,
                                          &autoIncrement) != SQLITE_OK)
            return;
        field.autoIncrement = autoIncrement != 0;
        ado::setKind(field, type ? type : "");
    }
    engine = handle;
    table = owner;
    fields = std::move(described);
    select = std::make_unique<ado::Statement>(std::move(withId));
    writable = true;
}

void Recordset::Impl::readAtOpen() {
    if (streaming) {
        readRows(blockSize);
        return;
    }
    readRows(writable ? rowsReadAtOnce : everything);
    if (!complete) {
        select->reset();
        dropRows();
        unplaced = true;
    }
}

// Room for the values and the id of a row.
ado::Cell* Recordset::Impl::newValues() {
    const std::size_t width = fields.size() + 1;
    if (roomLeft < width) {
        const std::size_t rowsOfBlock = roomOf(block);
        if (block == cells.size())
            cells.push_back(std::make_unique_for_overwrite<ado::Cell[]>(rowsOfBlock * width));
        nextCell = cells[block++].get();
        roomLeft = rowsOfBlock * width;
    }
    roomLeft -= width;
    return std::exchange(nextCell, nextCell + width);
}

// The memory is kept: a stream fills it again and again.
void Recordset::Impl::dropRows() noexcept {
    rows.clear();
    texts.clear();
    block = roomLeft = 0;
}

// Appends up to `limit` rows of the statement.
void Recordset::Impl::readRows(std::size_t limit) {
    const std::size_t width = fields.size() + (writable ? 1 : 0);
    for (std::size_t count = 0; count < limit; ++count) {
        const bool found = select->step();
        // Only the first step of a run can find out that the statement has to be prepared anew.
        if (count == 0 && columnsChanged())
            throw Failure(providerError,
                          "columns have changed since [" + ado::spelledOut(source) + "] was opened",
                          "SQLite");
        if (!found) {
            complete = true;
            return;
        }
        ado::Cell* const values = newValues();
        select->row({values, width}, texts);
        Row& row = rows.emplace_back();
        row.values = values;
        if (writable)
            row.id = idIn(values[fields.size()]);
    }
}

// True when a statement that was prepared earlier turned out to have other columns by now.
bool Recordset::Impl::columnsChanged() const {
    if (!select->preparedAnew())
        return false;
    const std::vector<std::string> names = select->fieldNames();
    return names.size() != fields.size() + (writable ? 1 : 0) ||
           !std::equal(fields.begin(), fields.end(), names.begin(),
                       [](const ado::Field& field, const std::string& name) { return field.name == name; });
}

void Recordset::Impl::nextBlock() {
    base += rows.size();
    dropRows();
    try {
        readRows(blockSize);
    } catch (const Failure&) {
        // A loop over the rows must come to its end.
        complete = true;
        throw;
    }
}

void Recordset::Impl::restart() {
    select->reset();
    dropRows();
    base = position = 0;
    complete = false;
    nextBlock();
}

// Reads a writable recordset's rows; those added here stay last, in the order of their adding.
void Recordset::Impl::load() {
    std::vector<Row> added;
    added.swap(rows);
    try {
        readRows(everything);
    } catch (const Failure&) {
        rows.swap(added);
        throw;
    }
    std::unordered_set<std::int64_t> addedIds;
    for (const Row& row : added) {
        if (row.id)
            addedIds.insert(*row.id);
    }
    if (!addedIds.empty())
        std::erase_if(rows, [&](const Row& row) { return addedIds.contains(*row.id); });
    const std::size_t offset = rows.size();
    if (sought)
        position = static_cast<std::size_t>(
            std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.id == sought->id; }) -
            rows.begin());
    else
        position = unplaced ? 0 : position + offset;
    sought.reset();
    unplaced = false;
    for (Operation& operation : operations)
        operation.row += offset;
    rows.insert(rows.end(), std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
}

// Finds the row of a key without loading them all. False when that cannot be or there is no such row.
bool Recordset::Impl::seek(const Criterion& criterion) {
    std::int64_t id = 0;
    const char* const end = criterion.key.data() + criterion.key.size();
    const auto read = std::from_chars(criterion.key.data(), end, id);
    if (!unplaced || batch || !fields[criterion.field].autoIncrement || read.ec != std::errc() ||
        read.ptr != end)
        return false;
    const auto added =
        std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.id == id && !row.deleted; });
    if (added != rows.end()) {
        position = static_cast<std::size_t>(added - rows.begin());
        unplaced = false;
        return true;
    }
    Query oneRow = source;
    oneRow.numbers.push_back(id);
    ado::Statement query(connection,
                         "SELECT * FROM (" + ado::withRowId(translateStatement(source.text), idColumn) +
                             ") WHERE " + ado::quotedName(idColumn) + " = ?",
                         oneRow);
    query.bindNumbers();
    if (!query.step() || query.preparedAnew())
        return false;
    soughtValues.resize(fields.size());
    query.row(soughtValues, texts);
    sought = Row{};
    sought->values = soughtValues.data();
    sought->id = id;
    unplaced = false;
    return true;
}

void Recordset::Impl::ensureLoaded() {
    if (loadedLater())
        load();
}

Recordset::Impl::Row& Recordset::Impl::present() {
    if (sought)
        return *sought;
    if (atEnd() || rows[position - base].deleted)
        throw makeFailure(noCurrentRecord);
    return rows[position - base];
}

void Recordset::Impl::skipDeleted() noexcept {
    while (position - base < rows.size() && rows[position - base].deleted)
        ++position;
}

std::size_t Recordset::Impl::findField(std::string_view name) const {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (isNamed(fields[i].name, name))
            return i;
    }
    throw makeFailure(itemNotFound, name);
}

std::size_t Recordset::Impl::fieldIndex(std::string_view name) {
    std::size_t found = expectedField(name);
    if (found == fields.size() || name.empty()) {
        found = findField(name);
        asked[lastAsked].after = found;
        asked[found].spelling = name;
    }
    return lastAsked = found;
}

const ado::Cell& Recordset::Impl::stored(Row& row, std::size_t field) {
    if (row.stale)
        refresh(row);
    return row.values[field];
}

const ado::Cell& Recordset::Impl::changedCell(std::size_t field) {
    if (!edits.empty() && edits[field])
        return edited = ado::cellOf(*edits[field]);
    return adding ? edited = ado::cellOf(Null{}) : stored(present(), field);
}

inline const ado::Cell& Recordset::Impl::cell(std::string_view field) {
    const std::size_t expected = expectedField(field);
    if (expected == fields.size() || field.empty() || !isPlain())
        return changedCell(fieldIndex(field));
    lastAsked = expected;
    return rows[position - base].values[expected];
}

void Recordset::Impl::moveFirst() {
    dropEdits();
    // Rows were there at open; which one is the first can wait until somebody asks for it.
    if (loadedLater()) {
        sought.reset();
        unplaced = true;
        return;
    }
    if (base > 0)
        restart();
    position = 0;
    skipDeleted();
    if (atEnd())
        throw makeFailure(noCurrentRecord);
}

void Recordset::Impl::moveNext() {
    dropEdits();
    ensureLoaded();
    if (atEnd())
        throw makeFailure(noCurrentRecord);
    ++position;
    if (atEnd() && !complete)
        nextBlock();
    skipDeleted();
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

// Nothing for a statement without rows, which runs here.
std::unique_ptr<Recordset::Impl> Recordset::Impl::prepare(const Query& source, Connection& connection,
                                                          CursorType cursor, LockType lock,
                                                          CursorLocation location) {
    std::unique_ptr<ado::RowSource> selected = ado::openRows(connection, source);
    if (!selected)
        return nullptr;
    auto impl = std::make_unique<Impl>(source, connection, std::move(selected));
    // Pessimistic is optimistic here: nothing is held from set to update, because the service must not
    // wait for an administrator who looks at a row.
    if (lock != LockType::readOnly)
        impl->makeWritable();
    impl->batch = lock == LockType::batchOptimistic;
    impl->counted = cursor != CursorType::forwardOnly || location == CursorLocation::client;
    impl->streaming = !impl->counted && !impl->writable;
    return impl;
}

void Recordset::open(const Query& source, Connection& connection, CursorType cursor, LockType lock,
                     CursorLocation location) {
    if (impl_)
        throw makeFailure(objectOpen);
    auto impl = Impl::prepare(source, connection, cursor, lock, location);
    if (!impl)
        return;
    try {
        impl->readAtOpen();
    } catch (const Failure&) {
        if (!impl->columnsChanged())
            throw;
        // What was prepared for another schema is of no use any more.
        impl.reset();
        connection.statements()->clear();
        impl = Impl::prepare(source, connection, cursor, lock, location);
        impl->readAtOpen();
    }
    impl_ = std::move(impl);
}

void Recordset::close() {
    opened(impl_);
    impl_.reset();
}

ObjectState Recordset::state() const noexcept {
    return impl_ ? ObjectState::open : ObjectState::closed;
}

bool Recordset::EOF_() const {
    Impl& impl = opened(impl_);
    return !impl.adding && impl.atEnd();
}

bool Recordset::BOF_() const {
    Impl& impl = opened(impl_);
    return !impl.adding && impl.atEnd() && impl.base == 0 && impl.liveCount() == 0;
}

void Recordset::moveFirst() {
    opened(impl_).moveFirst();
}

void Recordset::moveNext() {
    opened(impl_).moveNext();
}

std::size_t Recordset::bookmark() const {
    Impl& impl = opened(impl_);
    impl.ensureLoaded();
    if (impl.adding)
        throw makeFailure(noCurrentRecord);
    impl.present();
    return impl.position;
}

long Recordset::recordCount() const {
    Impl& impl = opened(impl_);
    if (!impl.counted)
        return -1;
    impl.ensureLoaded();
    return static_cast<long>(impl.liveCount());
}

std::size_t Recordset::fieldCount() const {
    return opened(impl_).fields.size();
}

const std::string& Recordset::fieldName(std::size_t index) const {
    const Impl& impl = opened(impl_);
    if (index >= impl.fields.size())
        throw makeFailure(itemNotFound);
    return impl.fields[index].name;
}

const Value& Recordset::value(std::string_view field) const {
    Impl& impl = opened(impl_);
    const ado::Cell& cell = impl.cell(field);
    // Most recordsets are never asked in this way.
    if (impl.shown.empty())
        impl.shown.resize(impl.fields.size());
    return impl.shown[impl.lastAsked] = ado::valueOf(cell);
}

bool Recordset::isNull(std::string_view field) const {
    return opened(impl_).cell(field).isNull();
}

std::string Recordset::text(std::string_view field) const {
    return ado::textOf(opened(impl_).cell(field));
}

long Recordset::number(std::string_view field) const {
    return ado::longOf(opened(impl_).cell(field));
}

bool Recordset::boolean(std::string_view field) const {
    return ado::booleanOf(opened(impl_).cell(field));
}

}  // namespace platform
