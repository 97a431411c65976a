// For the few statements whose failure a person must see at once, because a window is about to show what they
// give: a plain box instead of the log line; the caller's next statement runs.
#pragma once

#include <exception>
#include <string>

#include "platform/machine/host.h"
#include "platform/prompts.h"

namespace core {

// Shows `introduction` followed by the failure's description.
template <class Action>
void boxOnFailure(const std::string& introduction, Action&& action) {
    try {
        action();
    } catch (const std::exception& error) {
        platform::prompts().messageBox({introduction + error.what(), platform::program::name()});
    }
}

}  // namespace core
