// What the outbox of a service holds, for those who only look: nothing is made, changed or set aside.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <unordered_map>
#include <vector>

#include "service/outbox/outbox.h"

namespace service {

struct OutboxView {
    std::vector<Outgoing> waiting;  // the oldest first
    std::vector<HeldBack> heldBack;
    std::unordered_map<long, Moment> pending;  // as Outbox::pendingSince, by event
    Moment lastLook;                           // of the service at its logs

    std::optional<Moment> pendingSince(long eventKey) const;
};

// By event: when the newest message before a moment was made or told. Empty when there is no outbox yet.
// Raises platform::Failure for one that cannot be read.
std::unordered_map<long, Moment> newestMessagesBefore(const std::filesystem::path& file, Moment moment);

// Nothing when there is no outbox yet. Raises platform::Failure for one that cannot be read.
std::optional<OutboxView> viewOutbox(const std::filesystem::path& file);

}  // namespace service
