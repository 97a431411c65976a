#include "platform/ado/odbc.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <utility>

#include "platform/ado/oneSelect.h"
#include "platform/files/textStream.h"
#include "platform/libraries/peFile.h"

namespace platform::ado {

namespace {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the driver manager speaks UTF-16");

constexpr SQLULEN loginSeconds = 15;
constexpr SQLULEN querySeconds = 30;

// The texts are valid UTF-8 by then.
std::vector<SQLWCHAR> wide(std::string_view text) {
    std::vector<SQLWCHAR> units;
    units.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        const int more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        std::uint32_t code = more == 0 ? lead : lead & (0x3Fu >> more);
        for (int k = 0; k < more; ++k)
            code = code << 6 | (static_cast<unsigned char>(text[i++]) & 0x3Fu);
        if (code >= 0x10000) {
            units.push_back(static_cast<SQLWCHAR>(0xD800 + ((code - 0x10000) >> 10)));
            code = 0xDC00 + ((code - 0x10000) & 0x3FF);
        }
        units.push_back(static_cast<SQLWCHAR>(code));
    }
    return units;
}

std::string narrow(const SQLWCHAR* units, std::size_t count) {
    return utf8(std::u16string(units, units + count));
}

// Class 42 is a statement that the server does not understand, 22 a value or pattern in it; the older
// drivers' S0 is a missing column or table. Whoever may not read a table has found it, though: taken for a
// missing one it would pass for the other layout.
long failureNumber(std::string_view state) {
    if (state == "42501")
        return providerError;
    for (const std::string_view kind : {"42", "22", "21", "37", "S0"})
        if (state.starts_with(kind))
            return statementFailed;
    return providerError;
}

// What the driver says about the last call on a handle.
Failure diagnosed(SQLSMALLINT kind, SQLHANDLE handle, std::string_view about) {
    std::string text;
    std::string firstState;
    std::array<SQLWCHAR, 6> state{};
    std::array<SQLWCHAR, 1024> message{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    for (SQLSMALLINT i = 1;
         SQL_SUCCEEDED(SQLGetDiagRecW(kind, handle, i, state.data(), &native, message.data(),
                                      static_cast<SQLSMALLINT>(message.size()), &length));
         ++i) {
        if (i == 1)
            firstState = narrow(state.data(), 5);
        const auto shown = std::min(static_cast<std::size_t>(length), message.size() - 1);
        text += (i == 1 ? "" : " ") + narrow(message.data(), shown);
    }
    if (text.empty())
        text = "the driver gives no reason";
    return {failureNumber(firstState), text + " [" + std::string(about) + "]", "ODBC"};
}

// One handle of the driver manager's.
template <SQLSMALLINT kind>
class Handle {
  public:
    Handle() = default;
    explicit Handle(SQLHANDLE parent) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, &handle_)))
            throw Failure(cannotCreateObject, "no handle of the ODBC driver manager", "ODBC");
    }
    ~Handle() {
        if (handle_)
            SQLFreeHandle(kind, handle_);
    }
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    SQLHANDLE get() const noexcept { return handle_; }

  private:
    SQLHANDLE handle_ = nullptr;
};

using Environment = Handle<SQL_HANDLE_ENV>;
using Session = Handle<SQL_HANDLE_DBC>;
using Query = Handle<SQL_HANDLE_STMT>;

SQLPOINTER number(SQLULEN value) {
    return std::bit_cast<SQLPOINTER>(value);
}

Environment environment() {
    Environment made(SQL_NULL_HANDLE);
    SQLSetEnvAttr(made.get(), SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), 0);
    return made;
}

}  // namespace

class OdbcServer {
  public:
    explicit OdbcServer(const std::string& dataSource);
    ~OdbcServer();
    OdbcServer(const OdbcServer&) = delete;
    OdbcServer& operator=(const OdbcServer&) = delete;

    Query newQuery() const { return Query(session_.get()); }
    // A query has begun, or has come to its end.
    void began() noexcept { ++running_; }
    void ended() noexcept;

  private:
    void makeReadOnly();

    Environment environment_ = environment();
    Session session_{environment_.get()};
    int running_ = 0;
};

OdbcServer::OdbcServer(const std::string& dataSource) {
    if (dataSource.empty() || !isValidUtf8(dataSource))
        throw makeFailure(invalidProcedureCall, dataSource);
    SQLSetConnectAttr(session_.get(), SQL_ATTR_LOGIN_TIMEOUT, number(loginSeconds), 0);
    SQLSetConnectAttr(session_.get(), SQL_ATTR_ACCESS_MODE, number(SQL_MODE_READ_ONLY), 0);
    std::vector<SQLWCHAR> name = wide(dataSource);
    if (!SQL_SUCCEEDED(SQLConnectW(session_.get(), name.data(), static_cast<SQLSMALLINT>(name.size()),
                                   nullptr, 0, nullptr, 0)))
        throw diagnosed(SQL_HANDLE_DBC, session_.get(), dataSource);
    makeReadOnly();
}

OdbcServer::~OdbcServer() {
    SQLEndTran(SQL_HANDLE_DBC, session_.get(), SQL_ROLLBACK);
    SQLDisconnect(session_.get());
}

void OdbcServer::makeReadOnly() {
    // The standard's words, and those of the servers that leave two of them out. One that knows neither is
    // held by the rest.
    for (const char* statement :
         {"SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY", "SET SESSION TRANSACTION READ ONLY"}) {
        const Query query = newQuery();
        std::vector<SQLWCHAR> text = wide(statement);
        if (SQL_SUCCEEDED(SQLExecDirectW(query.get(), text.data(), static_cast<SQLINTEGER>(text.size()))))
            break;
    }
    // Whatever a statement did all the same, its session's settings included, is taken back at its end.
    if (!SQL_SUCCEEDED(SQLSetConnectAttr(session_.get(), SQL_ATTR_AUTOCOMMIT, number(SQL_AUTOCOMMIT_OFF), 0)))
        throw diagnosed(SQL_HANDLE_DBC, session_.get(), "autocommit off");
}

void OdbcServer::ended() noexcept {
    if (--running_ == 0)
        SQLEndTran(SQL_HANDLE_DBC, session_.get(), SQL_ROLLBACK);
}

namespace {

enum class Kind { text, whole, real, boolean };

Kind kindOf(SQLSMALLINT type) {
    switch (type) {
        case SQL_TINYINT:
        case SQL_SMALLINT:
        case SQL_INTEGER:
        case SQL_BIGINT:
            return Kind::whole;
        case SQL_BIT:
            return Kind::boolean;
        case SQL_REAL:
        case SQL_FLOAT:
        case SQL_DOUBLE:
        case SQL_DECIMAL:
        case SQL_NUMERIC:
            return Kind::real;
        default:
            return Kind::text;
    }
}

class ServerRows final : public RowSource {
  public:
    ServerRows(std::shared_ptr<OdbcServer> server, std::string_view source);
    ~ServerRows() override { reset(); }

    std::vector<std::string> fieldNames() const override { return names_; }
    bool step() override;
    void reset() noexcept override;
    void row(std::span<Cell> cells, Texts& texts) const override {
        for (std::size_t i = 0; i < cells.size(); ++i)
            texts.put(cells[i], row_[i]);
    }

  private:
    void execute();
    void describe();
    Value read(SQLUSMALLINT column, Kind kind);
    Value readText(SQLUSMALLINT column);
    template <class Number>
    bool readNumber(SQLUSMALLINT column, SQLSMALLINT type, Number& value);
    [[noreturn]] void fail();

    std::shared_ptr<OdbcServer> server_;
    std::string source_;
    Query query_;
    bool running_ = false;
    std::vector<std::string> names_;
    std::vector<Kind> kinds_;
    std::vector<Value> row_;
};

ServerRows::ServerRows(std::shared_ptr<OdbcServer> server, std::string_view source)
    : server_(std::move(server)), source_(source) {
    requireOneSelect(source);
    if (!isValidUtf8(source))
        throw Failure(statementFailed, "no valid text in the statement", "ODBC");
    execute();
    describe();
}

void ServerRows::fail() {
    const Failure failure = diagnosed(SQL_HANDLE_STMT, query_.get(), source_);
    reset();
    throw failure;
}

void ServerRows::execute() {
    query_ = server_->newQuery();
    server_->began();
    running_ = true;
    SQLSetStmtAttrW(query_.get(), SQL_ATTR_QUERY_TIMEOUT, number(querySeconds), 0);
    std::vector<SQLWCHAR> text = wide(source_);
    if (!SQL_SUCCEEDED(SQLExecDirectW(query_.get(), text.data(), static_cast<SQLINTEGER>(text.size()))))
        fail();
}

void ServerRows::describe() {
    SQLSMALLINT count = 0;
    if (!SQL_SUCCEEDED(SQLNumResultCols(query_.get(), &count)))
        fail();
    for (SQLSMALLINT i = 1; i <= count; ++i) {
        std::array<SQLWCHAR, 256> name{};
        SQLSMALLINT length = 0;
        SQLSMALLINT type = 0;
        SQLULEN size = 0;
        SQLSMALLINT digits = 0;
        SQLSMALLINT nullable = 0;
        if (!SQL_SUCCEEDED(SQLDescribeColW(query_.get(), static_cast<SQLUSMALLINT>(i), name.data(),
                                           static_cast<SQLSMALLINT>(name.size()), &length, &type, &size,
                                           &digits, &nullable)))
            fail();
        names_.push_back(narrow(name.data(), std::min(static_cast<std::size_t>(length), name.size() - 1)));
        kinds_.push_back(kindOf(type));
    }
}

bool ServerRows::step() {
    if (!running_)
        execute();
    const SQLRETURN code = SQLFetch(query_.get());
    if (code == SQL_NO_DATA) {
        reset();
        return false;
    }
    if (!SQL_SUCCEEDED(code))
        fail();
    row_.clear();
    for (std::size_t i = 0; i < kinds_.size(); ++i)
        row_.push_back(read(static_cast<SQLUSMALLINT>(i + 1), kinds_[i]));
    return true;
}

void ServerRows::reset() noexcept {
    if (!std::exchange(running_, false))
        return;
    query_ = Query();
    server_->ended();
}

template <class Number>
bool ServerRows::readNumber(SQLUSMALLINT column, SQLSMALLINT type, Number& value) {
    SQLLEN length = 0;
    if (!SQL_SUCCEEDED(SQLGetData(query_.get(), column, type, &value, sizeof value, &length)))
        fail();
    return length != SQL_NULL_DATA;
}

Value ServerRows::read(SQLUSMALLINT column, Kind kind) {
    if (kind == Kind::text)
        return readText(column);
    if (kind == Kind::real) {
        double real = 0;
        return readNumber(column, SQL_C_DOUBLE, real) ? Value(real) : Value(Null{});
    }
    SQLBIGINT whole = 0;
    if (!readNumber(column, SQL_C_SBIGINT, whole))
        return Null{};
    return static_cast<std::int64_t>(kind == Kind::boolean ? -(whole != 0) : whole);
}

// A text of any length, in pieces.
Value ServerRows::readText(SQLUSMALLINT column) {
    std::u16string text;
    std::array<SQLWCHAR, 512> piece{};
    for (;;) {
        SQLLEN length = 0;
        const SQLRETURN code =
            SQLGetData(query_.get(), column, SQL_C_WCHAR, piece.data(), sizeof piece, &length);
        if (code == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(code))
            fail();
        if (length == SQL_NULL_DATA)
            return Null{};
        // A piece that is not the last one says how much is left, or that nobody knows; it is full but for
        // the zero at its end.
        constexpr std::size_t full = piece.size() - 1;
        const bool isLast = length != SQL_NO_TOTAL && static_cast<std::size_t>(length) / 2 <= full;
        text.append(piece.data(), piece.data() + (isLast ? static_cast<std::size_t>(length) / 2 : full));
        if (isLast)
            break;
    }
    return utf8(text);
}

}  // namespace

std::shared_ptr<OdbcServer> connectServer(const std::string& dataSource) {
    return std::make_shared<OdbcServer>(dataSource);
}

std::unique_ptr<RowSource> openServerRows(std::shared_ptr<OdbcServer> server, std::string_view source) {
    return std::make_unique<ServerRows>(std::move(server), source);
}

}  // namespace platform::ado
