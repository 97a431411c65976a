// How the outbox's rows are read.
#pragma once

#include <cstdint>
#include <vector>

#include "service/outbox/outbox.h"

namespace service {

// The beginning of a statement whose rows messageOf() reads.
inline constexpr char messageColumns[] =
    "SELECT Key, EventKey, EventSource, EventId, EventType, Computer, IsTest, DeviceKey, Kind, Recipient,"
    " Address, Subject, Body, Priority, VoiceFile, Created, Attempts, NextAttempt, Settled, Answer, State,"
    " Outcome FROM Message ";

// Moments are kept as milliseconds since 1970.
std::int64_t numberOf(Moment moment);
Moment momentOf(std::int64_t number);

Outgoing messageOf(const Query& row);
// Of a row of "SELECT * FROM HeldBack".
HeldBack heldBackOf(const Query& row);
// The rows that are left. Raises platform::Failure.
std::vector<Outgoing> messagesOf(Query& rows);
std::vector<HeldBack> allHeldBackOf(Query& rows);

}  // namespace service
