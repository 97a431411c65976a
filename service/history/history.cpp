#include "service/history/history.h"

#include "platform/ado/statement.h"
#include "platform/machine/clock.h"

namespace service {

namespace {

// How a row of the history begins; whoever reads it goes by these.
constexpr char refusedWords[] = "Refused: ";
constexpr char givenUpWords[] = "Given up after ";

using platform::LockType;
using platform::Recordset;

std::string storedForm(Moment moment) {
    return platform::storedForm(platform::localTime(moment));
}

Recordset openForWriting(const std::string& statement, platform::Connection& database) {
    Recordset rows;
    rows.open(statement, database, platform::CursorType::keyset, LockType::optimistic);
    return rows;
}

void writeRow(platform::Connection& database, const Outgoing& message) {
    Recordset row = openForWriting(
        "SELECT * FROM NotificationLog WHERE LogKey = " + std::to_string(message.key), database);
    if (!row.EOF_())
        return;
    row.addNew();
    row.set("LogKey", message.key);
    row.set("LogTime", storedForm(message.settled));
    row.set("EventSource", message.eventSource);
    // The column has 32 bits with a sign, an id 32 without.
    row.set("EventID", std::int64_t{static_cast<std::int32_t>(message.eventId)});
    row.set("DeviceAddress", message.address);
    row.set("Success", outcomeText(message));
    row.update();
}

void writeLastNotification(platform::Connection& database, const Outgoing& message) {
    Recordset row = openForWriting("SELECT EventKey, EventLastNotification FROM Events WHERE EventKey = " +
                                       std::to_string(message.eventKey),
                                   database);
    if (row.EOF_())
        return;  // the event was deleted while its message waited
    row.set("EventLastNotification", storedForm(message.settled));
    row.update();
}

}  // namespace

std::string outcomeText(const Outgoing& message) {
    const State outcome = message.state == State::done ? message.outcome : message.state;
    const std::string begin = outcome == State::told      ? ""
                              : outcome == State::refused ? std::string(refusedWords)
                              : outcome == State::givenUp
                                  ? givenUpWords + std::to_string(message.attempts) + " attempts: "
                                  : "Waiting: ";
    return begin + message.answer;
}

State takeOutcome(std::string& words) {
    if (words.starts_with(refusedWords)) {
        words.erase(0, std::string_view(refusedWords).size());
        return State::refused;
    }
    if (const std::size_t end = words.find(": ");
        words.starts_with(givenUpWords) && end != std::string::npos) {
        words.erase(0, end + 2);
        return State::givenUp;
    }
    return State::told;
}

void writeHistory(platform::Connection& database, const std::vector<Outgoing>& messages) {
    if (messages.empty())
        return;
    platform::ado::Transaction transaction(database);
    for (const Outgoing& message : messages) {
        writeRow(database, message);
        if (message.state == State::told)
            writeLastNotification(database, message);
    }
    transaction.commit();
}

void dropHistoryBefore(platform::Connection& database, Moment moment) {
    Recordset none;
    none.open("DELETE FROM NotificationLog WHERE LogTime < '" + storedForm(moment) + "'", database);
}

std::int64_t newestLogKey(platform::Connection& database) {
    Recordset row;
    row.open("SELECT max(LogKey) AS Newest FROM NotificationLog", database);
    return row.EOF_() || row.isNull("Newest") ? 0 : row.number("Newest");
}

}  // namespace service
