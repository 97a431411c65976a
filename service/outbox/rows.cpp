#include "service/outbox/rows.h"

namespace service {

std::int64_t numberOf(Moment moment) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(moment.time_since_epoch()).count();
}

Moment momentOf(std::int64_t number) {
    return Moment(std::chrono::milliseconds(number));
}

Outgoing messageOf(const Query& row) {
    Outgoing message;
    message.key = row.number(0);
    message.eventKey = static_cast<long>(row.number(1));
    message.eventSource = row.text(2);
    message.eventId = static_cast<std::uint32_t>(row.number(3));
    message.eventType = static_cast<std::uint16_t>(row.number(4));
    message.computer = row.text(5);
    message.isTest = row.number(6) != 0;
    message.deviceKey = static_cast<long>(row.number(7));
    message.kind = static_cast<DeviceKind>(row.number(8));
    message.recipient = row.text(9);
    message.address = row.text(10);
    message.subject = row.text(11);
    message.body = row.text(12);
    message.priority = static_cast<long>(row.number(13));
    message.voiceFile = row.text(14);
    message.created = momentOf(row.number(15));
    message.attempts = static_cast<int>(row.number(16));
    message.nextAttempt = momentOf(row.number(17));
    message.settled = momentOf(row.number(18));
    message.answer = row.text(19);
    message.state = static_cast<State>(row.number(20));
    message.outcome = static_cast<State>(row.number(21));
    return message;
}

HeldBack heldBackOf(const Query& row) {
    HeldBack held;
    held.eventKey = static_cast<long>(row.number(0));
    held.count = row.number(1);
    held.first = row.text(2);
    held.last = row.text(3);
    held.record = {row.text(4),
                   row.text(5),
                   row.text(6),
                   static_cast<std::uint32_t>(row.number(7)),
                   static_cast<std::uint16_t>(row.number(8)),
                   static_cast<std::uint16_t>(row.number(9)),
                   row.text(10),
                   row.text(11),
                   row.text(12)};
    return held;
}

std::vector<Outgoing> messagesOf(Query& rows) {
    std::vector<Outgoing> messages;
    while (rows.next())
        messages.push_back(messageOf(rows));
    return messages;
}

std::vector<HeldBack> allHeldBackOf(Query& rows) {
    std::vector<HeldBack> held;
    while (rows.next())
        held.push_back(heldBackOf(rows));
    return held;
}

}  // namespace service
