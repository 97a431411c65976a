// The event sources of this server.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mdlUtility {

// Source names in the order found, each once. From the registry's Application and System logs, or, when
// `useRegistry` is false, from the table 31Sources. `corvaneOnly` keeps the names that contain
// "meridanecorvane_" (registry only); `lowerCase` folds the names.
std::vector<std::string> getEventSources(bool useRegistry, bool corvaneOnly, bool lowerCase);
// True when the source's registry key names an event or category message file.
bool hasMessageFile(std::string_view keyPath);
// True when this server knows the source, without regard to case.
bool isValidEventSource(std::string_view name);

}  // namespace mdlUtility
