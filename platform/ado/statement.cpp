#include "platform/ado/statement.h"

#include <sqlite3.h>

#include <limits>
#include <utility>

#include "platform/ado/dialect.h"
#include "platform/machine/caseFold.h"

namespace platform::ado {

void Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Statement::Statement(const Connection& connection, std::string_view text, Query source)
    : connection_(&connection), source_(std::move(source)) {
    sqlite3* const engine = connection.handle();
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw engineFailure(connection, SQLITE_TOOBIG, {});
    sqlite3_stmt* prepared = nullptr;
    const char* tail = nullptr;
    const int code =
        sqlite3_prepare_v3(engine, text.data(), static_cast<int>(text.size()), 0, &prepared, &tail);
    statement_.reset(prepared);
    check(code);
    if (!prepared)
        throw Failure(statementFailed, "no statement [" + spelledOut(source_) + "]");
    if (!nothingToRun(text.substr(static_cast<std::size_t>(tail - text.data()))))
        throw Failure(statementFailed, "more than one statement [" + spelledOut(source_) + "]");
}

bool Statement::preparedAnew() const noexcept {
    return sqlite3_stmt_status(statement_.get(), SQLITE_STMTSTATUS_REPREPARE, 0) > 0;
}

void Statement::check(int code) const {
    if (code != SQLITE_OK)
        throw engineFailure(*connection_, code, spelledOut(source_));
}

void Statement::bindNumbers() {
    const std::vector<std::int64_t>& numbers = source_.numbers;
    const auto parameters = static_cast<std::size_t>(sqlite3_bind_parameter_count(statement_.get()));
    if (parameters != numbers.size())
        throw Failure(connection_->isDirectory() ? statementFailed : columnMissing,
                      std::string(parameters > numbers.size() ? "no value given for a parameter ["
                                                              : "no parameter for a value given [") +
                          spelledOut(source_) + "]",
                      "SQLite");
    for (std::size_t i = 0; i < numbers.size(); ++i)
        check(sqlite3_bind_int64(statement_.get(), static_cast<int>(i) + 1, numbers[i]));
}

void Statement::bind(int parameter, const Value& value) {
    sqlite3_stmt* statement = statement_.get();
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        check(sqlite3_bind_int64(statement, parameter, *integer));
    else if (const auto* real = std::get_if<double>(&value))
        check(sqlite3_bind_double(statement, parameter, *real));
    else if (const auto* text = std::get_if<std::string>(&value))
        check(sqlite3_bind_text64(statement, parameter, text->data(), text->size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8));
    else
        check(sqlite3_bind_null(statement, parameter));
}

std::vector<std::string> Statement::fieldNames() const {
    std::vector<std::string> names;
    const int count = sqlite3_column_count(statement_.get());
    names.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        names.emplace_back(sqlite3_column_name(statement_.get(), i));
    return names;
}

bool Statement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE) {
        reset();
        return false;
    }
    const Failure failure = engineFailure(*connection_, code, spelledOut(source_));
    reset();
    throw failure;
}

void Statement::reset() noexcept {
    sqlite3_reset(statement_.get());
}

void Statement::row(std::span<Cell> cells, Texts& texts) const {
    sqlite3_stmt* const statement = statement_.get();
    int index = 0;
    for (Cell& cell : cells) {
        // One call for the column and its parts from there; that is safe in a connection's one thread.
        sqlite3_value* const stored = sqlite3_column_value(statement, index++);
        switch (sqlite3_value_type(stored)) {
            case SQLITE_INTEGER:
                cell.setInteger(sqlite3_value_int64(stored));
                break;
            case SQLITE_FLOAT:
                cell.setReal(sqlite3_value_double(stored));
                break;
            case SQLITE_NULL:
                cell.setNull();
                break;
            default: {
                const auto* bytes = static_cast<const char*>(sqlite3_value_blob(stored));
                texts.put(cell, bytes, bytes ? static_cast<std::size_t>(sqlite3_value_bytes(stored)) : 0);
            }
        }
    }
}

Statement prepareSource(const Connection& connection, const Query& source) {
    Statement statement(connection, translateStatement(source.text), source);
    statement.bindNumbers();
    return statement;
}

void run(const Connection& connection, std::string_view text) {
    Statement statement(connection, text, text);
    while (statement.step()) {
    }
}

Transaction::Transaction(const Connection& connection) : connection_(connection) {
    run(connection, "BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
    // Some failures have ended the transaction already.
    if (open_ && connection_.state() == ObjectState::open &&
        sqlite3_get_autocommit(connection_.handle()) == 0)
        sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
    run(connection_, "COMMIT");
    open_ = false;
}

}  // namespace platform::ado
