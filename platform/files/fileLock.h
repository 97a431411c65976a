// A lock on an open file, which the kernel drops with the process.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/files/descriptor.h"

namespace platform::files {

// Takes the file for this process alone; false when somebody else holds it for longer than `patience`. Raises
// the failure, which names it as `path`, of a file that cannot be locked.
bool lockWithin(const Descriptor& file, const std::string& path, std::chrono::milliseconds patience);
// A lock file, made where it is missing, taken for this process alone as long as the descriptor lives;
// nothing when somebody else holds it. Raises platform::Failure.
Descriptor lockAlone(const std::filesystem::path& path);

}  // namespace platform::files
