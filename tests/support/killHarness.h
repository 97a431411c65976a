// Kills an operation at random moments and looks at what it leaves. An operation is one row: what stands
// before it, what it does, and the states that its order of writes allows when it dies anywhere in between.
#pragma once

#include <functional>
#include <string>

#include "support/temporaryHost.h"

namespace support {

struct KilledOperation {
    std::string name;
    // Brings a new host to the state before; leaves nothing open.
    std::function<void(TemporaryHost&)> prepare;
    // In the child, before the time in which it may be killed; may be empty.
    std::function<void()> begin;
    std::function<void()> operation;
    // The name of the allowed state that the host is in; the empty text for any other.
    std::function<std::string(const TemporaryHost&)> allowedState;
    // In a child of its own, without a hand in between: the next start and the operation once more. It
    // may leave no error in the log.
    std::function<void()> nextStart;
    // The state that nextStart has to lead to; raises expectations of its own.
    std::function<void(const TemporaryHost&)> afterwards;
};

// Kills the operation as often as the environment variable QLN_KILLS says, 10 times without it, on a host
// of its own each time, at a moment drawn from the measured time of a run that nobody killed. After each
// kill every database of the host has to pass the integrity check, and so on as the row says. Prints how
// often each allowed state came out. The seed, from QLN_SEED or fixed, stands in every failure.
void killRepeatedly(const KilledOperation& operation);

// A number from the environment, for tests that do more on demand.
long numberFromEnvironment(const char* name, long otherwise);

}  // namespace support
