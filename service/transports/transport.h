// What every way of sending looks like from outside.
#pragma once

#include <atomic>
#include <chrono>

#include "service/transports/message.h"
#include "service/transports/outcome.h"

namespace service {

// When an attempt has to be over. The flag, which may be missing, ends it earlier: the service stops.
struct Deadline {
    std::chrono::steady_clock::time_point end;
    const std::atomic<bool>* isCancelled = nullptr;

    bool isOver() const noexcept {
        return (isCancelled && isCancelled->load()) || std::chrono::steady_clock::now() >= end;
    }
};

// An object is used by one thread at a time.
class Transport {
  public:
    virtual ~Transport() = default;
    // One attempt. Raises nothing: whatever goes wrong is in the outcome.
    virtual Outcome send(const Message& message, const Deadline& deadline) = 0;
};

}  // namespace service
