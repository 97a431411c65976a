#include "service/outbox/outbox.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "platform/failure.h"
#include "platform/machine/caseFold.h"
#include "service/outbox/rows.h"

namespace service {

namespace {

// 1 is the layout's version.
constexpr char layout[] =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS Identity(Id TEXT NOT NULL);"
    "CREATE TABLE IF NOT EXISTS Position(Source TEXT PRIMARY KEY, Position TEXT NOT NULL);"
    "CREATE TABLE IF NOT EXISTS HeldBack(EventKey INTEGER PRIMARY KEY, Count INTEGER NOT NULL, First TEXT,"
    " Last TEXT, Log TEXT, Time TEXT, Source TEXT, Id INTEGER, Type INTEGER, Category INTEGER, User TEXT,"
    " Computer TEXT, Description TEXT);"
    "CREATE TABLE IF NOT EXISTS Message(Key INTEGER PRIMARY KEY AUTOINCREMENT, EventKey INTEGER NOT NULL,"
    " EventSource TEXT, EventId INTEGER, EventType INTEGER, Computer TEXT, IsTest INTEGER, DeviceKey INTEGER,"
    " Kind INTEGER, Recipient TEXT, Address TEXT, Subject TEXT, Body TEXT, Priority INTEGER, VoiceFile TEXT,"
    " Created INTEGER, Attempts INTEGER, NextAttempt INTEGER, Settled INTEGER, Answer TEXT, State INTEGER,"
    " Outcome INTEGER);"
    "CREATE INDEX IF NOT EXISTS MessageState ON Message(State, NextAttempt);"
    "CREATE INDEX IF NOT EXISTS MessageEvent ON Message(EventKey, Created);"
    "PRAGMA user_version = 1;"
    "COMMIT;";

std::string newId() {
    std::array<unsigned char, 8> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw platform::makeFailure(platform::pathFileAccessError, "no random numbers");
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned byte : bytes)
        text.append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    return text;
}

bool isWhole(Store& store) {
    Query check = store.query("PRAGMA quick_check(1)");
    return check.next() && check.text(0) == "ok";
}

// With the engine's own files, which belong to it.
void setAsideDamaged(const std::filesystem::path& file, const std::filesystem::path& aside) {
    std::filesystem::rename(file, aside);
    std::error_code ignored;
    for (const char* ending : {"-wal", "-shm"})
        std::filesystem::remove(file.string() + ending, ignored);
}

}  // namespace

Lane laneOf(DeviceKind kind) {
    return kind >= DeviceKind::voiceMail && kind <= DeviceKind::smtpAddress ? Lane::mail : Lane::other;
}

std::string addressKey(const Outgoing& message) {
    return std::to_string(static_cast<long>(message.kind)) + ':' + platform::foldCase(message.address);
}

Outbox::Outbox(const std::filesystem::path& file, std::int64_t firstKey) {
    try {
        open(file, firstKey);
    } catch (const platform::Failure& failure) {
        if (failure.number() != storeDamaged)
            throw;
        store_.reset();
        setAside_ = file.string() + ".damaged";
        setAsideDamaged(file, *setAside_);
        open(file, firstKey);
    }
}

void Outbox::open(const std::filesystem::path& file, std::int64_t firstKey) {
    store_ = std::make_unique<Store>(file);
    if (!isWhole(*store_))
        throw platform::Failure(storeDamaged, "damaged: " + file.string(), storeName);
    store_->run(layout);
    if (Query row = store_->query("SELECT Id FROM Identity"); row.next()) {
        id_ = row.text(0);
        return;
    }
    id_ = newId();
    Store::Transaction transaction(*store_);
    store_->query("INSERT INTO Identity VALUES (?)").with(id_).run();
    store_->query("INSERT INTO sqlite_sequence(name, seq) VALUES ('Message', ?)").with(firstKey - 1).run();
    transaction.commit();
}

void Outbox::Batch::setPosition(const std::string& source, const std::string& position) {
    outbox_.store_->query("INSERT OR REPLACE INTO Position VALUES (?, ?)").with(source).with(position).run();
}

std::int64_t Outbox::Batch::add(const Outgoing& message) {
    outbox_.store_
        ->query(
            "INSERT INTO Message(EventKey, EventSource, EventId, EventType, Computer, IsTest, DeviceKey, "
            "Kind,"
            " Recipient, Address, Subject, Body, Priority, VoiceFile, Created, Attempts, NextAttempt,"
            " Settled, Answer, State, Outcome)"
            " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 0, ?, 0, '', 0, 0)")
        .with(message.eventKey)
        .with(message.eventSource)
        .with(std::int64_t{message.eventId})
        .with(std::int64_t{message.eventType})
        .with(message.computer)
        .with(std::int64_t{message.isTest})
        .with(message.deviceKey)
        .with(static_cast<std::int64_t>(message.kind))
        .with(message.recipient)
        .with(message.address)
        .with(message.subject)
        .with(message.body)
        .with(message.priority)
        .with(message.voiceFile)
        .with(numberOf(message.created))
        .with(numberOf(message.created))
        .run();
    return outbox_.store_->lastKey();
}

void Outbox::Batch::holdBack(long eventKey, const platform::EventRecord& record) {
    outbox_.store_
        ->query(
            "INSERT INTO HeldBack VALUES (?1, 1, ?2, ?2, ?3, ?2, ?4, ?5, ?6, ?7, ?8, ?9, ?10)"
            " ON CONFLICT(EventKey) DO UPDATE SET Count = Count + 1, Last = ?2, Log = ?3, Time = ?2,"
            " Source = ?4, Id = ?5, Type = ?6, Category = ?7, User = ?8, Computer = ?9, Description = ?10")
        .with(eventKey)
        .with(record.time)
        .with(record.log)
        .with(record.source)
        .with(std::int64_t{record.id})
        .with(std::int64_t{record.type})
        .with(std::int64_t{record.category})
        .with(record.user)
        .with(record.computer)
        .with(record.description)
        .run();
}

void Outbox::Batch::forgetHeldBack(long eventKey) {
    outbox_.store_->query("DELETE FROM HeldBack WHERE EventKey = ?").with(eventKey).run();
}

std::optional<std::string> Outbox::position(const std::string& source) {
    Query row = store_->query("SELECT Position FROM Position WHERE Source = ?");
    return row.with(source).next() ? std::optional(row.text(0)) : std::nullopt;
}

std::vector<HeldBack> Outbox::heldBack() {
    Query rows = store_->query("SELECT * FROM HeldBack ORDER BY EventKey");
    return allHeldBackOf(rows);
}

std::optional<HeldBack> Outbox::heldBack(long eventKey) {
    Query row = store_->query("SELECT * FROM HeldBack WHERE EventKey = ?");
    return row.with(eventKey).next() ? std::optional(heldBackOf(row)) : std::nullopt;
}

std::optional<Moment> Outbox::pendingSince(long eventKey) {
    Query row =
        store_->query("SELECT max(Created) FROM Message WHERE EventKey = ? AND (State <> 4 OR Outcome <> 1)");
    return row.with(eventKey).next() && row.number(0) != 0 ? std::optional(momentOf(row.number(0)))
                                                           : std::nullopt;
}

std::vector<Outgoing> Outbox::due(Moment now, Lane lane, const std::vector<std::string>& busy,
                                  std::size_t most) {
    Query row = store_->query(
        "SELECT Key, Kind, Address FROM Message WHERE State = 0 AND NextAttempt <= ? ORDER BY NextAttempt, "
        "Key");
    row.with(numberOf(now));
    static const std::string byKey = std::string(messageColumns) + "WHERE Key = ?";
    std::vector<Outgoing> messages;
    std::string address;
    while (messages.size() < most && row.next()) {
        Outgoing head;
        head.kind = static_cast<DeviceKind>(row.number(1));
        if (laneOf(head.kind) != lane)
            continue;
        head.address = row.text(2);
        const std::string key = addressKey(head);
        if (messages.empty() ? std::ranges::find(busy, key) != busy.end() : key != address)
            continue;
        address = key;
        Query message = store_->query(byKey.c_str());
        if (message.with(row.number(0)).next())
            messages.push_back(messageOf(message));
    }
    return messages;
}

std::optional<Moment> Outbox::nextAttemptAfter(Moment moment) {
    Query row = store_->query(
        "SELECT NextAttempt FROM Message WHERE State = 0 AND NextAttempt > ? ORDER BY NextAttempt LIMIT 1");
    return row.with(numberOf(moment)).next() ? std::optional(momentOf(row.number(0))) : std::nullopt;
}

void Outbox::update(const std::vector<Outgoing>& messages) {
    Store::Transaction transaction(*store_);
    for (const Outgoing& message : messages)
        store_
            ->query(
                "UPDATE Message SET Attempts = ?, NextAttempt = ?, Settled = ?, Answer = ?, State = ?,"
                " Outcome = ? WHERE Key = ?")
            .with(std::int64_t{message.attempts})
            .with(numberOf(message.nextAttempt))
            .with(numberOf(message.settled))
            .with(message.answer)
            .with(static_cast<std::int64_t>(message.state))
            .with(static_cast<std::int64_t>(message.outcome))
            .with(message.key)
            .run();
    transaction.commit();
}

std::vector<Outgoing> Outbox::unrecorded() {
    static const std::string text =
        std::string(messageColumns) + "WHERE State IN (1, 2, 3) ORDER BY Key LIMIT 200";
    Query rows = store_->query(text.c_str());
    return messagesOf(rows);
}

void Outbox::dropDoneBefore(Moment moment) {
    store_->query("DELETE FROM Message WHERE State = 4 AND Settled < ?").with(numberOf(moment)).run();
}

}  // namespace service
