#include "database/rows.h"

namespace mdlDatabase {

using platform::CursorType;
using platform::LockType;

bool Rows::open(const platform::Query& query, CursorType cursor, LockType lock, const Where& where) {
    return replace(
        [&](platform::Recordset& opened) {
        opened.open(query, connection_, cursor, lock, platform::CursorLocation::client);
        },
        where);
}

bool Rows::openForReading(const platform::Query& query, Where where) {
    return open(query, CursorType::staticCursor, LockType::readOnly, where);
}

bool Rows::openForWriting(const platform::Query& query, Where where) {
    return open(query, CursorType::keyset, LockType::optimistic, where);
}

bool Rows::openForEditing(const platform::Query& query, Where where) {
    return open(query, CursorType::keyset, LockType::pessimistic, where);
}

bool Rows::openForAdding(std::string_view table, Where where) {
    return replace([&](platform::Recordset& opened) { opened.openForAdding(table, connection_); }, where);
}

bool Rows::openForAddingBatch(std::string_view table, Where where) {
    return replace(
        [&](platform::Recordset& opened) {
        opened.openForAdding(table, connection_, LockType::batchOptimistic);
        },
        where);
}

bool Rows::openForBatch(const platform::Query& query, Where where) {
    return open(query, CursorType::staticCursor, LockType::batchOptimistic, where);
}

void Rows::close(Where where) {
    step([&] { rows_.close(); }, where);
}

bool Rows::next(Where where) {
    bool found = false;
    if (isOpen())
        step([&] { found = rows_.next(); }, where);
    return found;
}

void Rows::rewind(Where where) {
    step([&] { rows_.moveFirst(); }, where);
}

bool Rows::hasRow(Where where) {
    bool found = false;
    step([&] { found = !rows_.EOF_(); }, where);
    return found;
}

bool Rows::atEnd(Where where) {
    bool end = false;
    step([&] { end = rows_.EOF_(); }, where);
    return end;
}

long Rows::count(Where where) {
    long rows = 0;
    step([&] { rows = rows_.recordCount(); }, where);
    return rows;
}

bool Rows::find(std::string_view criterion, Where where) {
    bool found = false;
    step(
        [&] {
        // Nothing can be looked for in an empty one.
        if (rows_.BOF_() && rows_.EOF_())
            return;
        rows_.moveFirst();
        rows_.find(criterion);
        found = !rows_.EOF_();
        },
        where);
    return found;
}

bool Rows::findNext(std::string_view criterion, Where where) {
    bool found = false;
    step(
        [&] {
        rows_.find(criterion, 1, rows_.bookmark());
        found = !rows_.EOF_();
        },
        where);
    return found;
}

bool Rows::isNull(std::string_view field, Where where) {
    bool null = true;
    step([&] { null = rows_.isNull(field); }, where);
    return null;
}

std::string Rows::text(std::string_view field, Where where) {
    std::string value;
    step([&] { value = rows_.text(field); }, where);
    return value;
}

long Rows::number(std::string_view field, long otherwise, Where where) {
    long value = otherwise;
    step([&] { value = rows_.number(field); }, where);
    return value;
}

bool Rows::boolean(std::string_view field, Where where) {
    bool value = false;
    step([&] { value = rows_.boolean(field); }, where);
    return value;
}

bool Rows::addNew(Where where) {
    allRan_ = true;
    return step([&] { rows_.addNew(); }, where);
}

bool Rows::set(std::string_view field, const platform::Value& value, Where where) {
    return step([&] { rows_.set(field, value); }, where);
}

bool Rows::copy(std::string_view field, const Rows& from, Where where) {
    return step([&] { rows_.set(field, from.rows_.value(field)); }, where);
}

bool Rows::update(Where where) {
    return step([&] { rows_.update(); }, where);
}

bool Rows::deleteCurrent(Where where) {
    return step([&] { rows_.deleteCurrent(); }, where);
}

bool Rows::updateBatch(Where where) {
    return step([&] { rows_.updateBatch(); }, where);
}

bool execute(core::Frame& frame, const platform::Query& statement, std::source_location where) {
    return frame.step([&] { platform::execute(statement, core::gDatabase); }, where);
}

}  // namespace mdlDatabase
