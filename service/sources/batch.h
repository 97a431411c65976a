// What one look at a source of event records gives.
#pragma once

#include <string>
#include <vector>

#include "platform/machine/eventLog.h"

namespace service {

struct Batch {
    std::vector<platform::EventRecord> records;  // oldest first
    std::vector<std::string> notices;            // lines for the service's log: gaps, what was skipped
    std::string position;                        // behind the last of the records; to be kept and given again
    bool isWhole = true;                         // false when more can be read at once
};

}  // namespace service
