#include "host/directory.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>

#include "host/csv.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"

namespace host {

namespace {

// The older layout: plain tables, and the access id stands in the table of all subscribers.
constexpr char tableLayout[] =
    "CREATE TABLE GlobalSubscriber(Alias TEXT COLLATE NOCASE PRIMARY KEY, DisplayName TEXT COLLATE NOCASE,"
    " DirectoryId TEXT COLLATE NOCASE, DtmfAccessId TEXT);"
    "CREATE TABLE Subscriber(SubscriberObjectId TEXT, Alias TEXT COLLATE NOCASE PRIMARY KEY,"
    " DisplayName TEXT COLLATE NOCASE, FirstName TEXT COLLATE NOCASE, LastName TEXT COLLATE NOCASE,"
    " DtmfAccessId TEXT, SubscriberType INTEGER, CallHandlerObjectId TEXT, DirectoryId TEXT COLLATE NOCASE);"
    "CREATE TABLE CallHandler(CallHandlerObjectId TEXT PRIMARY KEY, DisplayName TEXT COLLATE NOCASE,"
    " DtmfAccessId TEXT);"
    "CREATE TABLE DistributionList(SystemDListObjectId TEXT, Alias TEXT COLLATE NOCASE PRIMARY KEY,"
    " DisplayName TEXT COLLATE NOCASE, DtmfAccessId TEXT, DirectoryId TEXT COLLATE NOCASE);"
    // All that a search for everybody reads, in the order that it shows.
    "CREATE INDEX SubscriberSearch ON Subscriber(Alias, DisplayName, FirstName, LastName, DirectoryId,"
    " SubscriberObjectId, SubscriberType, CallHandlerObjectId);";

// The newer layout: the tables have other names and are read through views; GlobalSubscriber has lost its
// access id, by which the layouts are told apart.
constexpr char viewLayout[] =
    "CREATE TABLE GlobalSubscriber(Alias TEXT COLLATE NOCASE PRIMARY KEY, DisplayName TEXT COLLATE NOCASE,"
    " DirectoryId TEXT COLLATE NOCASE);"
    "CREATE TABLE tbl_Subscriber(SubscriberObjectId TEXT, Alias TEXT COLLATE NOCASE PRIMARY KEY,"
    " DisplayName TEXT COLLATE NOCASE, FirstName TEXT COLLATE NOCASE, LastName TEXT COLLATE NOCASE,"
    " DtmfAccessId TEXT, SubscriberType INTEGER, CallHandlerObjectId TEXT, DirectoryId TEXT COLLATE NOCASE);"
    "CREATE TABLE tbl_CallHandler(CallHandlerObjectId TEXT PRIMARY KEY, DisplayName TEXT COLLATE NOCASE,"
    " DtmfAccessId TEXT);"
    "CREATE TABLE tbl_DistributionList(SystemDListObjectId TEXT, Alias TEXT COLLATE NOCASE PRIMARY KEY,"
    " DisplayName TEXT COLLATE NOCASE, DtmfAccessId TEXT, DirectoryId TEXT COLLATE NOCASE);"
    "CREATE INDEX SubscriberSearch ON tbl_Subscriber(Alias, DisplayName, FirstName, LastName, DirectoryId,"
    " SubscriberObjectId, SubscriberType, CallHandlerObjectId);"
    "CREATE VIEW vw_Subscriber_Global AS SELECT Alias, DisplayName, DirectoryId FROM GlobalSubscriber;"
    "CREATE VIEW vw_Subscriber AS SELECT * FROM tbl_Subscriber;"
    "CREATE VIEW vw_CallHandler AS SELECT * FROM tbl_CallHandler;"
    "CREATE VIEW vw_DistributionList AS SELECT * FROM tbl_DistributionList;";

// An id in the form of the directory's: the same one for the same name of the same kind.
std::string objectId(std::string_view kind, std::string_view name) {
    std::array<std::uint64_t, 2> halves{0xcbf29ce484222325u, 0x84222325cbf29ce4u};
    for (std::uint64_t& half : halves) {
        for (const std::string_view part : {kind, name})
            for (const char c : part) {
                half ^= static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
                half *= 0x100000001b3u;
            }
        half ^= half >> 31;
    }
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "{%08X-%04X-%04X-%04X-%012llX}",
                  static_cast<unsigned>(halves[0] >> 32), static_cast<unsigned>(halves[0] >> 16 & 0xFFFF),
                  static_cast<unsigned>(halves[0] & 0xFFFF), static_cast<unsigned>(halves[1] >> 48),
                  static_cast<unsigned long long>(halves[1] & 0xFFFFFFFFFFFFu));
    return text.data();
}

std::string given(const std::string& value, const std::string& otherwise) {
    return value.empty() ? otherwise : value;
}

using Fields = std::map<std::string, std::string>;  // by column name in lower case

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

[[noreturn]] void refuse(const std::string& name, std::size_t line, const std::string& reason) {
    throw platform::Failure(platform::invalidProcedureCall,
                            name + ":" + std::to_string(line) + ": " + reason);
}

void require(const Fields& fields, std::initializer_list<const char*> columns, const std::string& name,
             std::size_t line) {
    for (const char* column : columns)
        if (const auto field = fields.find(column); field == fields.end() || field->second.empty())
            refuse(name, line, std::string("no value for ") + column);
}

std::string optional(const Fields& fields, const char* column) {
    const auto field = fields.find(column);
    return field == fields.end() ? std::string() : field->second;
}

Subscriber subscriberOf(const Fields& fields, const std::string& name, std::size_t line) {
    require(fields, {"alias", "firstname", "lastname", "extension", "type"}, name, line);
    const std::string& type = fields.at("type");
    if (type.size() != 1 || type[0] < '0' || type[0] > '9')
        refuse(name, line, "the type of a subscriber is one digit, not '" + type + "'");
    return {fields.at("alias"),
            given(optional(fields, "displayname"), fields.at("firstname") + " " + fields.at("lastname")),
            fields.at("firstname"),
            fields.at("lastname"),
            fields.at("extension"),
            type,
            optional(fields, "directoryid")};
}

DistributionList listOf(const Fields& fields, const std::string& name, std::size_t line) {
    require(fields, {"alias", "displayname", "extension"}, name, line);
    return {fields.at("alias"), fields.at("displayname"), fields.at("extension"),
            optional(fields, "directoryid")};
}

DirectoryLayout layoutOf(SqliteFile& database) {
    const std::string views = database.firstValue(
        "SELECT count(*) FROM sqlite_master WHERE type = 'view' AND name = 'vw_Subscriber_Global'");
    return views == "1" ? DirectoryLayout::views : DirectoryLayout::tables;
}

}  // namespace

DirectoryWriter::DirectoryWriter(SqliteFile& database, DirectoryLayout layout)
    : globalSubscribers_(database,
                         layout == DirectoryLayout::tables
                             ? "INSERT OR REPLACE INTO GlobalSubscriber(Alias, DisplayName, DirectoryId,"
                               " DtmfAccessId) VALUES(?, ?, ?, ?)"
                             : "INSERT OR REPLACE INTO GlobalSubscriber(Alias, DisplayName, DirectoryId)"
                               " VALUES(?, ?, ?)"),
      subscribers_(database, layout == DirectoryLayout::tables
                                 ? "INSERT OR REPLACE INTO Subscriber VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?)"
                                 : "INSERT OR REPLACE INTO tbl_Subscriber VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      callHandlers_(database, layout == DirectoryLayout::tables
                                  ? "INSERT OR REPLACE INTO CallHandler VALUES(?, ?, ?)"
                                  : "INSERT OR REPLACE INTO tbl_CallHandler VALUES(?, ?, ?)"),
      lists_(database, layout == DirectoryLayout::tables
                           ? "INSERT OR REPLACE INTO DistributionList VALUES(?, ?, ?, ?, ?)"
                           : "INSERT OR REPLACE INTO tbl_DistributionList VALUES(?, ?, ?, ?, ?)"),
      accessIdIsGlobal_(layout == DirectoryLayout::tables) {}

void DirectoryWriter::add(const Subscriber& s) {
    const std::string directoryId = given(s.directoryId, directoryIdOf("subscriber", s.alias));
    const std::string callHandler = objectId("callhandler", s.alias);
    if (accessIdIsGlobal_)
        globalSubscribers_({s.alias, s.displayName, directoryId, s.extension});
    else
        globalSubscribers_({s.alias, s.displayName, directoryId});
    callHandlers_({callHandler, s.displayName, s.extension});
    subscribers_({objectId("object", s.alias), s.alias, s.displayName, s.firstName, s.lastName, s.extension,
                  s.type, callHandler, directoryId});
}

void DirectoryWriter::add(const DistributionList& list) {
    lists_({objectId("listobject", list.alias), list.alias, list.displayName, list.extension,
            given(list.directoryId, directoryIdOf("list", list.alias))});
}

std::string directoryIdOf(std::string_view kind, std::string_view alias) {
    return objectId(kind, alias);
}

void createDirectory(const std::filesystem::path& file, DirectoryLayout layout,
                     const std::function<void(DirectoryWriter&)>& fill) {
    replaceDatabase(file, [&](SqliteFile& database) {
        database.run(layout == DirectoryLayout::tables ? tableLayout : viewLayout);
        DirectoryWriter writer(database, layout);
        fill(writer);
    });
}

long importDirectory(std::string_view csv, const std::string& name) {
    const std::vector<CsvRow> rows = parseCsv(csv, name);
    if (rows.empty())
        refuse(name, 1, "no header line");
    std::vector<std::string> columns;
    for (const std::string& column : rows.front().fields)
        columns.push_back(lowered(column));
    static constexpr std::array known{"alias",     "displayname", "firstname",  "lastname",
                                      "extension", "type",        "directoryid"};
    for (const std::string& column : columns)
        if (std::ranges::find(known, column) == known.end())
            refuse(name, rows.front().line, "unknown column '" + column + "'");
    const bool people = std::ranges::find(columns, "firstname") != columns.end();

    if (!platform::files::fileExists(platform::host::directoryDatabase()))
        throw platform::makeFailure(platform::fileNotFound, platform::host::directoryDatabase().string());
    SqliteFile database(platform::host::directoryDatabase(), false);
    database.run("BEGIN IMMEDIATE");  // undone by the closing of the file when a row is refused
    DirectoryWriter writer(database, layoutOf(database));
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        if (row->fields.size() != columns.size())
            refuse(name, row->line,
                   std::to_string(row->fields.size()) + " fields under " + std::to_string(columns.size()) +
                       " columns");
        Fields fields;
        for (std::size_t i = 0; i < columns.size(); ++i)
            fields[columns[i]] = row->fields[i];
        if (people)
            writer.add(subscriberOf(fields, name, row->line));
        else
            writer.add(listOf(fields, name, row->line));
    }
    database.run("COMMIT");
    return static_cast<long>(rows.size()) - 1;
}

}  // namespace host
