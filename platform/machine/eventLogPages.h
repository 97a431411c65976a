// A host's event log read from its end, page by page, so that a log of any length shows its newest events at
// once.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/machine/eventLog.h"

namespace platform {

struct PlacedEvent {
    std::uint64_t place = 0;  // of its line in the file, in bytes; it stays while the log grows
    EventRecord record;
};

class EventLogPages {
  public:
    // From the present end of a log on; `pageSize` in bytes. Raises 5 for a log of another name. A log that
    // is missing has no pages.
    explicit EventLogPages(std::string log, std::uint64_t pageSize = 1 << 20);

    // True while there are earlier records.
    bool hasEarlier() const noexcept { return begin_ > 0; }
    // The whole records of the page before, the newest first; lines that are no record are left out. Raises
    // the file's failure number.
    std::vector<PlacedEvent> earlier();

  private:
    std::string log_;
    std::uint64_t pageSize_;
    std::uint64_t begin_ = 0;  // of what was read, always a line's
};

}  // namespace platform
