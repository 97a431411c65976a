// A message that reached nobody, once more.
#pragma once

#include <cstdint>
#include <filesystem>

#include "service/decision/monitoring.h"

namespace service {

enum class SentAgain {
    made,     // a new message waits for the service
    waits,    // one with the same words waits for the device already
    isGone,   // the outbox has no such message any more
    wasTold,  // it is still on its way, or has arrived
};

// Adds a message to a service's outbox with the words and the address of one that was refused or given up,
// and with a key of its own; the old one stays as it is. The service may run meanwhile, and sends the new one
// at its next look. Raises platform::Failure; nothing has been added then.
SentAgain sendAgain(const std::filesystem::path& outboxFile, std::int64_t key, Moment now);

}  // namespace service
