// Addresses of people and lists of the server's directory.
#pragma once

#include <optional>
#include <string>

#include "platform/ado/ado.h"

namespace service {

// Reads the alias of a directory entry, a subscriber's before a list's; nothing when there is no such entry.
// Raises platform::Failure when the directory cannot be read, which says nothing about the entry.
std::optional<std::string> directoryAlias(const std::string& directoryId);

}  // namespace service
