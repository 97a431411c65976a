#include "core/RegistryAPI.h"

#include "platform/failure.h"

namespace RegistryAPI {

namespace {

constexpr long registryFailure = 1001;
constexpr std::size_t longestText = 1023;  // the buffer's 1024 less the end
constexpr std::size_t longestBinary = 4096;
constexpr std::size_t mostSubkeys = 1'000'000;

// There is one root; it stands in every call so that the store could hold others.
std::string fullPath(RootKey, std::string_view path) {
    std::string full = "HKEY_LOCAL_MACHINE";
    if (!path.empty())
        full.append("\\").append(path);
    return full;
}

}  // namespace

bool registryKeyExists(RootKey root, std::string_view path) {
    return platform::registry().keyExists(fullPath(root, path));
}

bool createRegistryKey(RootKey root, std::string_view path) {
    try {
        return platform::registry().createKey(fullPath(root, path));
    } catch (const platform::Failure&) {
        throw platform::Failure(registryFailure, "Unable to create the registry key", "createRegistryKey");
    }
}

platform::RegistryValue getRegistryValue(RootKey root, std::string_view path, std::string_view name,
                                         long type, platform::RegistryValue defaultValue) {
    // A missing key answers before the type is looked at.
    if (!registryKeyExists(root, path))
        return defaultValue;
    if (type != registryString && type != registryBinary && type != registryDword)
        throw platform::Failure(registryFailure, "Unsupported value type", "getRegistryValue");

    const auto stored = platform::registry().value(fullPath(root, path), name);
    if (!stored)
        return defaultValue;
    if (type == registryString) {
        const auto* text = std::get_if<std::string>(&*stored);
        if (!text || text->size() > longestText)
            return defaultValue;
        return *text == " " ? std::string() : *text;
    }
    if (type == registryBinary) {
        const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&*stored);
        return bytes && bytes->size() <= longestBinary ? *stored : defaultValue;
    }
    return std::holds_alternative<std::uint32_t>(*stored) ? *stored : defaultValue;
}

std::string getRegistryString(RootKey root, std::string_view path, std::string_view name,
                              std::string defaultValue) {
    return std::get<std::string>(getRegistryValue(root, path, name, registryString, std::move(defaultValue)));
}

std::uint32_t getRegistryDword(RootKey root, std::string_view path, std::string_view name,
                               std::uint32_t defaultValue) {
    return std::get<std::uint32_t>(getRegistryValue(root, path, name, registryDword, defaultValue));
}

void setRegistryValue(RootKey root, std::string_view path, std::string_view name, long type,
                      const platform::RegistryValue& value) {
    if (!registryKeyExists(root, path))
        return;
    const bool fits = type == registryString   ? std::holds_alternative<std::string>(value)
                      : type == registryBinary ? std::holds_alternative<std::vector<std::uint8_t>>(value)
                      : type == registryDword  ? std::holds_alternative<std::uint32_t>(value)
                                               : false;
    if (!fits)
        throw platform::makeFailure(platform::typeMismatch);
    // An empty text would be stored without any bytes; other readers of the key expect at least one.
    const auto* text = std::get_if<std::string>(&value);
    try {
        platform::registry().setValue(fullPath(root, path), name, text && text->empty() ? " " : value);
    } catch (const platform::Failure& failure) {
        // A key that may not be written is one that cannot be opened for it: nothing is reported.
        if (failure.number() != platform::permissionDenied)
            throw;
    }
}

std::vector<std::string> enumRegistryKeys(RootKey root, std::string_view path) {
    if (!path.empty() && !registryKeyExists(root, path))
        return {};
    std::vector<std::string> names = platform::registry().subkeys(fullPath(root, path));
    if (names.size() > mostSubkeys)
        names.resize(mostSubkeys);
    // Required: a key without subkeys gives one entry, an empty name, which callers expect.
    if (names.empty())
        names.emplace_back();
    return names;
}

}  // namespace RegistryAPI
