#include <algorithm>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/ado/statement.h"
#include "platform/machine/caseFold.h"

namespace platform {

namespace {

constexpr char keyConstraint[] = " CONSTRAINT \"PrimaryKey\" PRIMARY KEY";

bool isKey(const Catalog::Table& table, const Catalog::Column& column) {
    return equalsIgnoringAsciiCase(column.name, table.primaryKey);
}

void validate(const Catalog::Table& table) {
    bool keyFound = table.primaryKey.empty();
    bool valid = !table.name.empty() && !table.columns.empty();
    for (const Catalog::Column& column : table.columns) {
        const bool isText = column.type == Catalog::Column::Type::varWChar;
        valid = valid && !column.name.empty() && (!isText || column.size > 0);
        // The engine counts up only the key of a table, and only by one.
        valid =
            valid && (!column.autoIncrement || (!isText && isKey(table, column) && column.increment == 1));
        keyFound = keyFound || isKey(table, column);
    }
    if (!valid || !keyFound)
        throw makeFailure(invalidProcedureCall, table.name);
}

std::string columnDefinition(const Catalog::Table& table, const Catalog::Column& column) {
    const std::string name = ado::quotedName(column.name);
    if (column.autoIncrement)
        return name + " INTEGER" + keyConstraint + " AUTOINCREMENT";
    const std::string type = column.type == Catalog::Column::Type::varWChar
                                 ? " TEXT(" + std::to_string(column.size) + ") COLLATE NOCASE"
                                 : std::string(" LONG");
    return name + type + (isKey(table, column) ? std::string(keyConstraint) + " NOT NULL" : std::string());
}

}  // namespace

long Catalog::columnCount(std::string_view table) const {
    constexpr char text[] = "SELECT count(*) FROM pragma_table_info(?)";
    ado::Statement query(connection_, text, text);
    query.bind(1, std::string(table));
    query.step();
    ado::Cell counted{};
    ado::Texts texts;
    query.row({&counted, 1}, texts);
    const long count = ado::longOf(counted);
    if (count == 0)
        throw makeFailure(itemNotFound, table);
    return count;
}

void Catalog::appendTable(const Table& table) {
    validate(table);
    std::string columns;
    for (const Column& column : table.columns)
        columns += (columns.empty() ? "" : ", ") + columnDefinition(table, column);
    ado::Transaction transaction(connection_);
    ado::run(connection_, "CREATE TABLE " + ado::quotedName(table.name) + " (" + columns + ")");
    for (const Column& column : table.columns) {
        if (!column.autoIncrement)
            continue;
        // The engine keeps the last key given. One below 0 is read by the recordset that adds the first row.
        constexpr char text[] = "INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)";
        ado::Statement seed(connection_, text, text);
        seed.bind(1, table.name);
        seed.bind(2, static_cast<std::int64_t>(column.seed) - 1);
        seed.step();
    }
    transaction.commit();
}

void Catalog::deleteTable(std::string_view table) {
    columnCount(table);
    ado::run(connection_, "DROP TABLE " + ado::quotedName(table));
}

void Catalog::renameTable(std::string_view from, std::string_view to) {
    columnCount(from);
    ado::run(connection_, "ALTER TABLE " + ado::quotedName(from) + " RENAME TO " + ado::quotedName(to));
}

}  // namespace platform
