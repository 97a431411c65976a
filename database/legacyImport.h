// The monitored events of the legacy notifier, brought over from its own database.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace mdlDatabase {

// Adds the legacy notifier's events as new inactive events with the default content, and tells of each source
// that `isValidEventSource` does not know. Does nothing, without a message, where the legacy notifier was
// never installed. All rows are read before the first event is written; what was written before a failure
// stays. The legacy database is only read.
void importLegacyEvents(const std::function<bool(std::string_view)>& isValidEventSource);

}  // namespace mdlDatabase
