#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/ado/recordsetImpl.h"

namespace platform {

namespace {

void appendItem(std::string& list, std::string_view item) {
    if (!list.empty())
        list += ", ";
    list += item;
}

}  // namespace

void Recordset::Impl::requireWritable() const {
    if (!writable)
        throw makeFailure(updatingNotSupported);
}

void Recordset::Impl::dropEdits() noexcept {
    adding = false;
    edits.clear();
}

// The statement is kept for the next row, which mostly sets the same columns.
ado::Statement& Recordset::Impl::writing(const std::string& text) {
    if (connection.handle() != engine)
        throw makeFailure(connectionClosed);
    if (!write || writeText != text) {
        write = ado::Statement(connection, text, text);
        writeText = text;
    }
    return write;
}

std::int64_t Recordset::Impl::insertRow(const Edits& values) {
    const auto isGiven = [&](std::size_t i) {
        // A key set to Null is a key left to the engine.
        return values[i] && !(fields[i].autoIncrement && std::holds_alternative<Null>(*values[i]));
    };
    std::string columns;
    std::string places;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (isGiven(i)) {
            appendItem(columns, ado::quotedName(fields[i].column));
            appendItem(places, "?");
        } else if (fields[i].autoIncrement) {
            // The engine never gives a first key below 1, so a lower seed is honoured here; with any other
            // seed the value is Null, and the engine gives the key.
            appendItem(columns, ado::quotedName(fields[i].column));
            std::string name = table;
            for (std::size_t at = 0; (at = name.find('\'', at)) != std::string::npos; at += 2)
                name.insert(at, 1, '\'');
            appendItem(places,
                       "(SELECT seq + 1 FROM sqlite_sequence WHERE name = '" + name + "' AND seq < 0)");
        }
    }
    const std::string target = "INSERT INTO " + ado::quotedName(table);
    ado::Statement& insert = writing(columns.empty() ? target + " DEFAULT VALUES"
                                                     : target + " (" + columns + ") VALUES (" + places + ")");
    int parameter = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (isGiven(i))
            insert.bind(++parameter, *values[i]);
    }
    insert.step();
    return sqlite3_last_insert_rowid(engine);
}

void Recordset::Impl::changeRow(std::int64_t id, const Edits& values) {
    std::string assignments;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (values[i])
            appendItem(assignments, ado::quotedName(fields[i].column) + " = ?");
    }
    ado::Statement& change =
        writing("UPDATE " + ado::quotedName(table) + " SET " + assignments + " WHERE rowid = ?");
    int parameter = 0;
    for (const std::optional<Value>& value : values) {
        if (value)
            change.bind(++parameter, *value);
    }
    change.bind(++parameter, id);
    change.step();
    if (sqlite3_changes(engine) == 0)
        throw Failure(rowNotLocated,
                      "Row cannot be located for updating. Some values may have been changed since it was "
                      "last read.");
}

// A row that somebody else deleted first is as gone as it should be.
void Recordset::Impl::removeRow(std::int64_t id) {
    ado::Statement& remove = writing("DELETE FROM " + ado::quotedName(table) + " WHERE rowid = ?");
    remove.bind(1, id);
    remove.step();
}

// Reads a row back after it was written: its key, the columns' defaults.
void Recordset::Impl::refresh(Row& row) {
    std::string columns;
    for (const ado::Field& field : fields)
        appendItem(columns, ado::quotedName(field.column));
    const std::string text = "SELECT " + columns + " FROM " + ado::quotedName(table) + " WHERE rowid = ?";
    ado::Statement query(connection, text, text);
    query.bind(1, *row.id);
    if (query.step())
        query.row(valuesOf(row), texts);
    row.stale = false;
}

void Recordset::Impl::updateAdded() {
    Row row;
    row.values = newValues();
    for (std::size_t i = 0; i < edits.size(); ++i)
        texts.put(row.values[i], edits[i].value_or(Null{}));
    if (batch) {
        operations.push_back({Operation::Kind::add, rows.size(), edits});
        row.inBatch = true;
    } else {
        row.id = insertRow(edits);
        row.stale = true;
    }
    rows.push_back(row);
    position = rows.size() - 1;
    sought.reset();
    unplaced = false;
}

void Recordset::Impl::updatePresent() {
    Row& row = present();
    if (edits.empty())
        return;
    if (!batch) {
        changeRow(*row.id, edits);
    } else if (row.id) {
        operations.push_back({Operation::Kind::change, position, edits});
        row.inBatch = true;
    } else {
        const auto added = std::find_if(operations.begin(), operations.end(),
                                        [&](const Operation& each) { return each.row == position; });
        for (std::size_t i = 0; i < edits.size(); ++i) {
            if (edits[i])
                added->edits[i] = edits[i];
        }
    }
    for (std::size_t i = 0; i < edits.size(); ++i) {
        if (edits[i])
            texts.put(row.values[i], *edits[i]);
    }
}

void Recordset::Impl::removePresent() {
    if (sought)
        load();
    Row& row = present();
    if (!batch) {
        removeRow(*row.id);
    } else {
        // What was to happen to the row before does not matter any more.
        if (row.inBatch)
            std::erase_if(operations, [&](const Operation& each) { return each.row == position; });
        if (row.id)
            operations.push_back({Operation::Kind::remove, position, {}});
    }
    row.deleted = true;
    ++deletedCount;
}

void Recordset::Impl::applyBatch() {
    if (operations.empty())
        return;
    if (connection.handle() != engine)
        throw makeFailure(connectionClosed);
    std::vector<std::pair<std::size_t, std::int64_t>> added;
    ado::Transaction transaction(connection);
    for (const Operation& operation : operations) {
        const std::optional<std::int64_t>& id = rows[operation.row].id;
        if (operation.kind == Operation::Kind::add)
            added.emplace_back(operation.row, insertRow(operation.edits));
        else if (operation.kind == Operation::Kind::change)
            changeRow(*id, operation.edits);
        else
            removeRow(*id);
    }
    transaction.commit();
    for (const auto& [row, id] : added) {
        rows[row].id = id;
        rows[row].stale = true;
    }
    for (const Operation& operation : operations)
        rows[operation.row].inBatch = false;
    operations.clear();
    dropIndexes();
}

void Recordset::set(std::string_view field, Value value) {
    if (!impl_)
        throw makeFailure(objectClosed);
    impl_->requireWritable();
    const std::size_t index = impl_->fieldIndex(field);
    if (!impl_->adding)
        impl_->present();
    Value stored = ado::converted(impl_->fields[index], std::move(value));
    impl_->edits.resize(impl_->fields.size());
    impl_->edits[index] = std::move(stored);
}

void Recordset::addNew() {
    if (!impl_)
        throw makeFailure(objectClosed);
    impl_->requireWritable();
    impl_->adding = true;
    impl_->edits.assign(impl_->fields.size(), std::nullopt);
}

void Recordset::update() {
    if (!impl_)
        throw makeFailure(objectClosed);
    impl_->requireWritable();
    if (impl_->adding)
        impl_->updateAdded();
    else
        impl_->updatePresent();
    impl_->dropEdits();
    impl_->dropIndexes();
}

void Recordset::deleteCurrent() {
    if (!impl_)
        throw makeFailure(objectClosed);
    impl_->requireWritable();
    // Not inserted yet: dropping its edits is enough.
    if (!impl_->adding)
        impl_->removePresent();
    impl_->dropEdits();
    impl_->dropIndexes();
}

void Recordset::updateBatch() {
    if (!impl_)
        throw makeFailure(objectClosed);
    impl_->requireWritable();
    if (!impl_->batch)
        throw makeFailure(updatingNotSupported);
    impl_->dropEdits();
    impl_->applyBatch();
}

}  // namespace platform
