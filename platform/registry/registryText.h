// The pieces of the registry's text form and of its paths that the store shares with its parser.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/registry/registry.h"

namespace platform {

// Keys lie at most this deep. Every parent of a key is a key with its own path, so without a limit one long
// line of a foreign file could fill the memory.
inline constexpr std::size_t deepestKey = 512;
bool isTooDeep(std::string_view registryPath) noexcept;
// A path without leading, trailing and doubled separators.
std::string registryPath(std::string_view path);
// Adds a key and its missing parents; a key that is there keeps its values and spelling.
RegistryKey& addRegistryKey(RegistryTree& tree, std::string_view path);

}  // namespace platform
