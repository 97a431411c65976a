// One look at the configuration database.
#pragma once

#include <string>

namespace service {

// Reads, and only reads, what a pass over the event logs would work on; gives the seconds until the next one,
// from 1 to 3600. Raises platform::Failure.
unsigned look(const std::string& databaseFile);

}  // namespace service
