// The pieces of the registry's text form and of its paths that the store shares with its parser.
#pragma once

#include <string>
#include <string_view>

#include "platform/registry.h"

namespace platform {

// A path without leading, trailing and doubled separators.
std::string registryPath(std::string_view path);
// Adds a key and its missing parents; a key that is there keeps its values and spelling.
RegistryKey& addRegistryKey(RegistryTree& tree, std::string_view path);

}  // namespace platform
