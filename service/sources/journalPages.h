// The journal as somebody looks at it: page by page, the newest record first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/machine/eventLogPages.h"
#include "service/sources/journal.h"

namespace service {

struct JournalPage {
    std::vector<platform::PlacedEvent> records;  // newest first
    bool hasEarlier = false;
};

// As the journal stood when it was opened. A record's place is its moment in microseconds since 1970, and
// less than that of the record before where the clock did not rise between them. Used by one thread.
class JournalPages {
  public:
    // The system's journal, or the journal files of a folder. Raises platform::Failure with what stands in
    // the way, and what to do about it, where nothing can be read.
    explicit JournalPages(const std::filesystem::path& folder = {});
    // The records before those that were given, `most` at most; what cannot be read is passed over. Raises
    // platform::Failure.
    JournalPage earlier(std::size_t most);

  private:
    JournalHandle journal_;
    std::uint64_t lastPlace_ = UINT64_MAX;
};

// Another text whenever records may have come; costs no reading of them. Raises nothing.
std::string journalStamp(const std::filesystem::path& folder = {});

}  // namespace service
