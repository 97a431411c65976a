#include "platform/adoStatement.h"

#include <sqlite3.h>

#include <limits>

#include "platform/adoDialect.h"

namespace platform::ado {

Statement::Statement(const Connection& connection, std::string_view text, std::string_view source)
    : connection_(&connection), source_(source) {
    sqlite3* handle = connection.handle();
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw engineFailure(connection, SQLITE_TOOBIG, {});
    sqlite3_stmt* prepared = nullptr;
    const char* tail = nullptr;
    const int code =
        sqlite3_prepare_v3(handle, text.data(), static_cast<int>(text.size()), 0, &prepared, &tail);
    statement_.reset(prepared);
    check(code);
    if (!prepared)
        throw Failure(statementFailed, "no statement [" + source_ + "]", "SQLite");
    if (!nothingToRun(text.substr(static_cast<std::size_t>(tail - text.data()))))
        throw Failure(statementFailed, "more than one statement [" + source_ + "]", "SQLite");
}

void Statement::check(int code) const {
    if (code != SQLITE_OK)
        throw engineFailure(*connection_, code, source_);
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

bool Statement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE) {
        reset();
        return false;
    }
    const Failure failure = engineFailure(*connection_, code, source_);
    reset();
    throw failure;
}

void Statement::reset() noexcept {
    sqlite3_reset(statement_.get());
}

void Statement::column(int index, Value& value) const {
    // One call for the column and its parts from there; that is safe in a connection's one thread.
    sqlite3_value* stored = sqlite3_column_value(statement_.get(), index);
    switch (sqlite3_value_type(stored)) {
        case SQLITE_INTEGER:
            value.emplace<std::int64_t>(sqlite3_value_int64(stored));
            break;
        case SQLITE_FLOAT:
            value.emplace<double>(sqlite3_value_double(stored));
            break;
        case SQLITE_NULL:
            value.emplace<Null>();
            break;
        default: {
            const auto* bytes = static_cast<const char*>(sqlite3_value_blob(stored));
            const int size = sqlite3_value_bytes(stored);
            // A text that is there already lends its memory.
            auto* text = std::get_if<std::string>(&value);
            if (!text)
                text = &value.emplace<std::string>();
            text->assign(bytes ? bytes : "", bytes ? static_cast<std::size_t>(size) : 0);
        }
    }
}

Statement prepareSource(const Connection& connection, std::string_view source) {
    connection.handle();  // raises where there is none, and with it no kept statement
    const std::string translated = translateStatement(source);
    if (const auto form = takeNumbersOut(translated)) {
        Statement statement;
        statement.connection_ = &connection;
        statement.source_ = source;
        sqlite3_stmt* prepared = connection.statements()->take(form->text);
        if (!prepared)
            sqlite3_prepare_v3(connection.handle(), form->text.c_str(), -1, SQLITE_PREPARE_PERSISTENT,
                               &prepared, nullptr);
        // Where this form cannot be prepared the caller's own text tells why.
        if (prepared) {
            statement.statement_ = OwnedStatement(prepared, {connection.statements(), form->text});
            for (std::size_t i = 0; i < form->numbers.size(); ++i)
                statement.bind(static_cast<int>(i) + 1, form->numbers[i]);
            return statement;
        }
    }
    Statement statement(connection, translated, source);
    if (sqlite3_bind_parameter_count(statement.get()) > 0)
        throw Failure(connection.isDirectory() ? statementFailed : columnMissing,
                      "no value given for a parameter [" + std::string(source) + "]", "SQLite");
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
