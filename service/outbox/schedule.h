// When a message that was not taken is tried again.
#pragma once

#include <optional>

#include "service/decision/monitoring.h"

namespace service {

// After 10 s, 30 s, 1, 2, 5, 15 and 30 min, then hourly; nothing when a day has passed since it was made.
// `attempts` counts those that were made, from 1 on.
std::optional<Moment> nextAttempt(int attempts, Moment created, Moment now);

}  // namespace service
