// What became of each message, in the configuration database, where the console shows it.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/ado/ado.h"
#include "service/outbox/outbox.h"

namespace service {

// Writes a row of NotificationLog for each message, and the event's last notification for one that was told;
// all or nothing. A message that has its row already gets no second one. Raises platform::Failure.
void writeHistory(platform::Connection& database, const std::vector<Outgoing>& messages);
// The outcome in the words of the history: "Delivered: 250 OK".
std::string outcomeText(const Outgoing& message);
// The outcome that the words of the history begin with, which it takes away: the receiver's are left.
State takeOutcome(std::string& words);
// Drops the rows of before `moment`. Raises platform::Failure.
void dropHistoryBefore(platform::Connection& database, Moment moment);
// The greatest LogKey; 0 without a row. Raises platform::Failure.
std::int64_t newestLogKey(platform::Connection& database);

}  // namespace service
