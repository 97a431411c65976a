#include "service/outbox/schedule.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace service {

std::optional<Moment> nextAttempt(int attempts, Moment created, Moment now) {
    using namespace std::chrono_literals;
    constexpr std::array<std::chrono::seconds, 8> pauses{10s, 30s, 1min, 2min, 5min, 15min, 30min, 1h};
    constexpr auto longest = 24h;
    if (now - created >= longest)
        return std::nullopt;
    const std::size_t index = static_cast<std::size_t>(std::max(attempts - 1, 0));
    return now + pauses[std::min(index, pauses.size() - 1)];
}

}  // namespace service
