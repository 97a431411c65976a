// Addresses of people and lists of the server's directory.
#pragma once

#include <optional>
#include <string>

#include "service/transports/transport.h"

namespace service {

struct DirectoryAnswer {
    std::optional<std::string> alias;  // nothing when there is no such entry
    std::string problem;               // why the directory, and so the entry, cannot be read; else empty
};

// The alias of a directory entry, a subscriber's before a list's. Raises nothing.
DirectoryAnswer directoryAlias(const std::string& directoryId, const Deadline& deadline);

}  // namespace service
