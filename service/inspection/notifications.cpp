#include "service/inspection/notifications.h"

#include <sys/stat.h>

#include <limits>
#include <utility>

#include "platform/machine/caseFold.h"
#include "platform/machine/clock.h"
#include "service/history/history.h"
#include "service/outbox/rows.h"

namespace service {

namespace {

using platform::Recordset;

// What is open stands before the whole history, what is held back before what waits.
constexpr std::uint64_t waitingPlaces = 1ULL << 61;
constexpr std::uint64_t heldBackPlaces = 1ULL << 62;

std::string textOf(const Recordset& row, const char* field) {
    return row.isNull(field) ? std::string() : row.text(field);
}

std::string storedForm(Moment moment) {
    return platform::storedForm(platform::localTime(moment));
}

std::string sourceAndId(const std::string& source, std::uint32_t id) {
    return platform::foldCase(source) + '\n' + std::to_string(id);
}

Fate fateOf(State outcome) {
    return outcome == State::refused ? Fate::refused : outcome == State::givenUp ? Fate::givenUp : Fate::told;
}

Notification ofMessage(const Outgoing& message) {
    Notification result;
    result.key = message.key;
    result.source = message.eventSource;
    result.id = message.eventId;
    result.type = message.eventType;
    result.computer = message.computer;
    result.recipient = message.recipient;
    result.kind = message.kind;
    result.address = message.address;
    result.words = message.answer;
    result.attempts = message.attempts;
    result.subject = message.subject;
    result.body = message.body;
    return result;
}

Notification ofWaiting(const Outgoing& message) {
    Notification result = ofMessage(message);
    result.place = waitingPlaces + static_cast<std::uint64_t>(message.key);
    result.fate = message.state == State::told      ? Fate::told
                  : message.state == State::refused ? Fate::refused
                  : message.state == State::givenUp ? Fate::givenUp
                                                    : Fate::waiting;
    result.canBeSentAgain = result.fate == Fate::refused || result.fate == Fate::givenUp;
    result.time = storedForm(result.fate == Fate::waiting ? message.created : message.settled);
    if (result.fate == Fate::waiting)
        result.nextAttempt = message.nextAttempt;
    return result;
}

Notification ofHeldBack(const HeldBack& held) {
    Notification result;
    result.place = heldBackPlaces + static_cast<std::uint64_t>(held.eventKey);
    result.fate = Fate::heldBack;
    result.time = held.last;
    result.source = held.record.source;
    result.id = held.record.id;
    result.type = held.record.type;
    result.computer = held.record.computer;
    result.words = std::to_string(held.count) + ", " + held.first + " - " + held.last;
    result.body = held.record.description;
    return result;
}

}  // namespace

Notifications::Notifications(const std::filesystem::path& databaseFile,
                             const std::filesystem::path& outboxFile)
    : before_(std::numeric_limits<std::int64_t>::max()) {
    database_.open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" + databaseFile.string());
    readNames();
    outbox_ = storeIfThere(outboxFile);
}

void Notifications::readNames() {
    Recordset events;
    events.open("SELECT EventKey, EventSource, EventId, EventTitle FROM Events", database_);
    for (; !events.EOF_(); events.moveNext()) {
        const std::string title = textOf(events, "EventTitle");
        titles_.emplace(events.number("EventKey"), title);
        titlesBySource_.emplace(
            platform::foldCase(textOf(events, "EventSource")) + '\n' + textOf(events, "EventId"), title);
    }
    Recordset devices;
    devices.open(
        "SELECT Device.DeviceAddress, Device.DeviceType, Recipients.RecipientName FROM (Device INNER JOIN"
        " DeviceRecipient ON Device.DeviceKey = DeviceRecipient.DeviceKey) INNER JOIN Recipients ON"
        " DeviceRecipient.RecipientKey = Recipients.RecipientKey",
        database_);
    for (; !devices.EOF_(); devices.moveNext())
        if (!devices.isNull("DeviceAddress") && !devices.isNull("DeviceType"))
            receivers_.emplace(platform::foldCase(devices.text("DeviceAddress")),
                               Receiver{textOf(devices, "RecipientName"),
                                        static_cast<DeviceKind>(devices.number("DeviceType"))});
}

std::string Notifications::titleOf(long eventKey) const {
    const auto found = titles_.find(eventKey);
    return found == titles_.end() ? std::string() : found->second;
}

std::vector<Notification> Notifications::open() {
    std::vector<Notification> result;
    if (!outbox_)
        return result;
    Query held = outbox_->query("SELECT * FROM HeldBack ORDER BY EventKey DESC");
    for (const HeldBack& each : allHeldBackOf(held)) {
        result.push_back(ofHeldBack(each));
        result.back().event = titleOf(each.eventKey);
    }
    static const std::string open = std::string(messageColumns) + "WHERE State <> 4 ORDER BY Key DESC";
    Query messages = outbox_->query(open.c_str());
    while (messages.next()) {
        const Outgoing message = messageOf(messages);
        result.push_back(ofWaiting(message));
        result.back().event = titleOf(message.eventKey);
    }
    return result;
}

// The history's rows stand in the order in which they were written.
std::vector<Notification> Notifications::earlier(std::size_t most) {
    std::vector<Notification> page;
    Recordset rows;
    rows.open("SELECT rowid AS Place, * FROM NotificationLog WHERE rowid < " + std::to_string(before_) +
                  " ORDER BY rowid DESC LIMIT " + std::to_string(most),
              database_);
    for (; !rows.EOF_(); rows.moveNext())
        page.push_back(notificationOf(rows));
    hasEarlier_ = page.size() == most;
    return page;
}

Notification Notifications::notificationOf(const Recordset& row) {
    Notification result;
    before_ = std::get<std::int64_t>(row.value("Place"));
    result.place = static_cast<std::uint64_t>(before_);
    const platform::Value logKey = row.value("LogKey");
    if (const auto* key = std::get_if<std::int64_t>(&logKey))
        result.key = *key;
    result.time = textOf(row, "LogTime");
    result.source = textOf(row, "EventSource");
    result.id = row.isNull("EventID") ? 0 : static_cast<std::uint32_t>(row.number("EventID"));
    result.address = textOf(row, "DeviceAddress");
    result.words = textOf(row, "Success");
    result.fate = fateOf(takeOutcome(result.words));
    addMessage(result);
    if (result.event.empty())
        for (const std::string& place :
             {sourceAndId(result.source, result.id), platform::foldCase(result.source) + "\n-1"})
            if (const auto title = titlesBySource_.find(place);
                title != titlesBySource_.end() && result.event.empty())
                result.event = title->second;
    if (const auto receiver = receivers_.find(platform::foldCase(result.address));
        receiver != receivers_.end() && !result.kind) {
        result.recipient = receiver->second.recipient;
        result.kind = receiver->second.kind;
    }
    return result;
}

// What the outbox still knows of a row; a row of before that outbox has its key by chance at most.
void Notifications::addMessage(Notification& notification) {
    if (!outbox_)
        return;
    static const std::string byKey = std::string(messageColumns) + "WHERE Key = ?";
    Query found = outbox_->query(byKey.c_str());
    if (!found.with(notification.key).next())
        return;
    const Outgoing message = messageOf(found);
    if (message.address != notification.address || message.eventSource != notification.source)
        return;
    Notification known = ofMessage(message);
    known.place = notification.place;
    known.time = std::move(notification.time);
    known.fate = notification.fate;
    known.words = std::move(notification.words);
    known.event = titleOf(message.eventKey);
    known.canBeSentAgain = known.fate == Fate::refused || known.fate == Fate::givenUp;
    notification = std::move(known);
}

std::string notificationsStamp(const std::filesystem::path& databaseFile,
                               const std::filesystem::path& outboxFile) {
    std::string stamp;
    // The engine writes ahead into a file of its own beside the outbox. The outbox's own time is touched at
    // each look of the service, so only its size counts.
    for (const auto& [file, isTimed] : {std::pair{databaseFile.string(), true},
                                        {databaseFile.string() + "-wal", true},
                                        {outboxFile.string(), false},
                                        {outboxFile.string() + "-wal", true}}) {
        struct stat status {};
        if (::stat(file.c_str(), &status) == 0)
            stamp += std::to_string(status.st_ino) + ' ' + std::to_string(status.st_size) + ' ' +
                     (isTimed ? std::to_string(status.st_mtim.tv_sec) + '.' +
                                    std::to_string(status.st_mtim.tv_nsec)
                              : std::string()) +
                     '\n';
    }
    return stamp;
}

}  // namespace service
