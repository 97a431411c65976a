#include "platform/ado/edits.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "platform/ado/dialect.h"

namespace platform::ado {

namespace {

void appendItem(std::string& list, std::string_view item) {
    if (!list.empty())
        list += ", ";
    list += item;
}

}  // namespace

Edits::Edits(Connection& connection, ResultRows& rows, Cursor& cursor, bool batch)
    : connection_(connection), rows_(rows), cursor_(cursor), batch_(batch) {
    if (rows_.isWritable())
        engine_ = connection.handle();
}

void Edits::requireWritable() const {
    if (!rows_.isWritable())
        throw makeFailure(updatingNotSupported);
}

void Edits::requireSameConnection() const {
    if (connection_.handle() != engine_)
        throw makeFailure(connectionClosed);
}

void Edits::drop() noexcept {
    adding_ = false;
    values_.clear();
}

const Value* Edits::valueOf(std::size_t field) const noexcept {
    return values_.empty() || !values_[field] ? nullptr : &*values_[field];
}

// The statement is kept for the next row, which mostly sets the same columns.
Statement& Edits::writing(const std::string& text) {
    requireSameConnection();
    if (!write_ || writeText_ != text) {
        write_ = Statement(connection_, text, text);
        writeText_ = text;
    }
    return write_;
}

std::int64_t Edits::insertRow(const Values& values) {
    const auto isGiven = [&](std::size_t i) {
        // A key set to Null is a key left to the engine.
        return values[i] && !(rows_.fields()[i].autoIncrement && std::holds_alternative<Null>(*values[i]));
    };
    std::string columns;
    std::string places;
    for (std::size_t i = 0; i < rows_.fields().size(); ++i) {
        if (isGiven(i)) {
            appendItem(columns, quotedName(rows_.fields()[i].column));
            appendItem(places, "?");
        } else if (rows_.fields()[i].autoIncrement) {
            // The engine never gives a first key below 1, so a lower seed is honoured here; with any other
            // seed the value is Null, and the engine gives the key.
            appendItem(columns, quotedName(rows_.fields()[i].column));
            std::string name = rows_.table();
            for (std::size_t at = 0; (at = name.find('\'', at)) != std::string::npos; at += 2)
                name.insert(at, 1, '\'');
            appendItem(places,
                       "(SELECT seq + 1 FROM sqlite_sequence WHERE name = '" + name + "' AND seq < 0)");
        }
    }
    const std::string target = "INSERT INTO " + quotedName(rows_.table());
    Statement& insert = writing(columns.empty() ? target + " DEFAULT VALUES"
                                                : target + " (" + columns + ") VALUES (" + places + ")");
    int parameter = 0;
    for (std::size_t i = 0; i < rows_.fields().size(); ++i) {
        if (isGiven(i))
            insert.bind(++parameter, *values[i]);
    }
    insert.step();
    return sqlite3_last_insert_rowid(engine_);
}

void Edits::changeRow(std::int64_t id, const Values& values) {
    std::string assignments;
    for (std::size_t i = 0; i < rows_.fields().size(); ++i) {
        if (values[i])
            appendItem(assignments, quotedName(rows_.fields()[i].column) + " = ?");
    }
    Statement& change =
        writing("UPDATE " + quotedName(rows_.table()) + " SET " + assignments + " WHERE rowid = ?");
    int parameter = 0;
    for (const std::optional<Value>& value : values) {
        if (value)
            change.bind(++parameter, *value);
    }
    change.bind(++parameter, id);
    change.step();
    if (sqlite3_changes(engine_) == 0)
        throw Failure(rowNotLocated,
                      "Row cannot be located for updating. Some values may have been changed since it was "
                      "last read.");
}

// A row that somebody else deleted first is as gone as it should be.
void Edits::removeRow(std::int64_t id) {
    Statement& remove = writing("DELETE FROM " + quotedName(rows_.table()) + " WHERE rowid = ?");
    remove.bind(1, id);
    remove.step();
}

void Edits::updateAdded() {
    std::optional<std::int64_t> id;
    if (!batch_)
        id = insertRow(values_);
    Row& row = rows_.append(values_);
    cursor_.moveTo(rows_.end() - 1);
    row.id = id;
    row.stale = !batch_;
    row.inBatch = batch_;
    if (batch_)
        operations_.push_back({Operation::Kind::add, cursor_.position(), values_});
}

void Edits::updatePresent() {
    Row& row = cursor_.present();
    if (values_.empty())
        return;
    if (!batch_) {
        changeRow(*row.id, values_);
    } else if (row.id) {
        operations_.push_back({Operation::Kind::change, cursor_.position(), values_});
        row.inBatch = true;
    } else {
        const auto added = std::ranges::find(operations_, cursor_.position(), &Operation::row);
        for (std::size_t i = 0; i < values_.size(); ++i) {
            if (values_[i])
                added->values[i] = values_[i];
        }
    }
    for (std::size_t i = 0; i < values_.size(); ++i) {
        if (values_[i])
            rows_.setValue(row, i, *values_[i]);
    }
}

void Edits::removePresent() {
    Row& row = cursor_.present();
    if (!batch_) {
        removeRow(*row.id);
    } else {
        // What was to happen to the row before does not matter any more.
        if (row.inBatch)
            std::erase_if(operations_, [&](const Operation& each) { return each.row == cursor_.position(); });
        if (row.id)
            operations_.push_back({Operation::Kind::remove, cursor_.position(), {}});
    }
    rows_.markDeleted(row);
}

void Edits::addNew() {
    requireWritable();
    adding_ = true;
    values_.assign(rows_.fields().size(), std::nullopt);
}

void Edits::set(std::string_view field, Value value) {
    requireWritable();
    const std::size_t index = rows_.fieldIndex(field);
    if (!adding_)
        cursor_.present();
    Value stored = converted(rows_.fields()[index], std::move(value));
    values_.resize(rows_.fields().size());
    values_[index] = std::move(stored);
}

void Edits::update() {
    requireWritable();
    if (adding_)
        updateAdded();
    else
        updatePresent();
    drop();
    cursor_.forgetSearches();
}

void Edits::deleteCurrent() {
    requireWritable();
    // Not inserted yet: dropping its values is enough.
    if (!adding_)
        removePresent();
    drop();
    cursor_.forgetSearches();
}

void Edits::updateBatch() {
    requireWritable();
    if (!batch_)
        throw makeFailure(updatingNotSupported);
    drop();
    if (operations_.empty())
        return;
    requireSameConnection();
    std::vector<std::pair<std::size_t, std::int64_t>> added;
    Transaction transaction(connection_);
    for (const Operation& operation : operations_) {
        const std::optional<std::int64_t>& id = rows_.at(operation.row).id;
        if (operation.kind == Operation::Kind::add)
            added.emplace_back(operation.row, insertRow(operation.values));
        else if (operation.kind == Operation::Kind::change)
            changeRow(*id, operation.values);
        else
            removeRow(*id);
    }
    transaction.commit();
    for (const auto& [row, id] : added) {
        rows_.at(row).id = id;
        rows_.at(row).stale = true;
    }
    for (const Operation& operation : operations_)
        rows_.at(operation.row).inBatch = false;
    operations_.clear();
    cursor_.forgetSearches();
}

}  // namespace platform::ado
