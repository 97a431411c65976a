#include "service/outbox/sendAgain.h"

#include "service/outbox/rows.h"

namespace service {

namespace {

// The same words to the same device.
constexpr char waitingTwin[] =
    "SELECT 1 FROM Message AS Twin JOIN Message AS Old ON Twin.DeviceKey = Old.DeviceKey AND"
    " Twin.Address = Old.Address AND Twin.Subject = Old.Subject AND Twin.Body = Old.Body"
    " WHERE Old.Key = ? AND Twin.State = 0";

// It is of no event: the event's interval begins with news, and not with an old message to one address.
constexpr char newMessage[] =
    "INSERT INTO Message(EventKey, EventSource, EventId, EventType, Computer, IsTest, DeviceKey, Kind,"
    " Recipient, Address, Subject, Body, Priority, VoiceFile, Created, Attempts, NextAttempt, Settled,"
    " Answer, State, Outcome)"
    " SELECT 0, EventSource, EventId, EventType, Computer, IsTest, DeviceKey, Kind, Recipient,"
    " Address, Subject, Body, Priority, VoiceFile, ?1, 0, ?1, 0, '', 0, 0 FROM Message WHERE Key = ?2";

}  // namespace

SentAgain sendAgain(const std::filesystem::path& outboxFile, std::int64_t key, Moment now) {
    Store store(outboxFile, Store::Access::writer);
    // Whoever is quicker, the service or a second request, is seen by the other.
    Store::Transaction transaction(store);
    static const std::string byKey = std::string(messageColumns) + "WHERE Key = ?";
    {
        Query found = store.query(byKey.c_str());
        if (!found.with(key).next())
            return SentAgain::isGone;
        const Outgoing old = messageOf(found);
        const State outcome = old.state == State::done ? old.outcome : old.state;
        if (outcome != State::refused && outcome != State::givenUp)
            return SentAgain::wasTold;
    }
    if (store.query(waitingTwin).with(key).next())
        return SentAgain::waits;
    store.query(newMessage).with(numberOf(now)).with(key).run();
    transaction.commit();
    return SentAgain::made;
}

}  // namespace service
