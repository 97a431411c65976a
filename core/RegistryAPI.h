// Registry helpers. They have no frame: a failure is the caller's.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/registry.h"

namespace RegistryAPI {

enum class RootKey : std::uint32_t { localMachine = 0x80000002u };
inline constexpr RootKey HKEY_LOCAL_MACHINE = RootKey::localMachine;

enum ValueType : long { registryString = 1, registryBinary = 3, registryDword = 4 };

bool registryKeyExists(RootKey root, std::string_view path);
// True when the key existed already. Raises 1001, "Unable to create the registry key".
bool createRegistryKey(RootKey root, std::string_view path);
// The value, or the default when key or value is missing, or of another type, or too long for the buffer
// (1024 bytes of text with its end, 4096 bytes of binary data). A text of one blank reads as empty.
// Raises 1001, "Unsupported value type".
platform::RegistryValue getRegistryValue(RootKey root, std::string_view path, std::string_view name,
                                         long type, platform::RegistryValue defaultValue);
std::string getRegistryString(RootKey root, std::string_view path, std::string_view name,
                              std::string defaultValue = {});
std::uint32_t getRegistryDword(RootKey root, std::string_view path, std::string_view name,
                               std::uint32_t defaultValue = 0);
// Does nothing when the key cannot be opened. An empty text is stored as one blank.
void setRegistryValue(RootKey root, std::string_view path, std::string_view name, long type,
                      const platform::RegistryValue& value);
// Subkey names; one empty name when there is none, no entry when the key is missing.
std::vector<std::string> enumRegistryKeys(RootKey root, std::string_view path);

}  // namespace RegistryAPI
