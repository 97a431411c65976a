// A lock on an open file, which the kernel drops with the process.
#pragma once

#include <chrono>
#include <string>

#include "platform/files/descriptor.h"

namespace platform::files {

// Takes the file for this process alone; false when somebody else holds it for longer than `patience`. Raises
// the failure, which names it as `path`, of a file that cannot be locked.
bool lockWithin(const Descriptor& file, const std::string& path, std::chrono::milliseconds patience);

}  // namespace platform::files
