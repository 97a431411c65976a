#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "host/commands.h"
#include "platform/registry/registry.h"

namespace qlnhost {

namespace {

// Short names of the one root are understood, and a path without a root is below it.
std::string fullPath(const std::string& path) {
    constexpr std::string_view root = "HKEY_LOCAL_MACHINE";
    for (const std::string_view prefix : {std::string_view("HKLM"), root}) {
        if (path == prefix)
            return std::string(root);
        if (path.starts_with(std::string(prefix) + "\\"))
            return std::string(root) + path.substr(prefix.size());
    }
    return path.empty() ? std::string(root) : std::string(root) + "\\" + path;
}

std::string printed(const char* format, unsigned number) {
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, number);
    return buffer.data();
}

std::string valueText(const platform::RegistryValue& value) {
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* number = std::get_if<std::uint32_t>(&value))
        return printed("0x%08x", *number);
    std::string bytes;
    for (const std::uint8_t byte : std::get<std::vector<std::uint8_t>>(value))
        bytes += printed(bytes.empty() ? "%02x" : " %02x", byte);
    return bytes;
}

const char* typeName(const platform::RegistryValue& value) {
    static constexpr std::array names{"string", "binary", "dword"};
    return names.at(value.index());
}

platform::RegistryValue parseValue(const std::string& text, const std::string& type) {
    if (type == "string")
        return text;
    if (type == "dword")
        return static_cast<std::uint32_t>(parseNumber(text, 0xFFFFFFFFul, "a dword"));
    if (type != "binary")
        throw UsageError("--type is string, dword or binary, not '" + type + "'");
    std::vector<std::uint8_t> bytes;
    std::string digits;
    for (const char c : text)
        if (c != ' ')
            digits += c;
    if (digits.size() % 2 != 0)
        throw UsageError("binary data is two hexadecimal digits for each byte");
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(parseNumber("0x" + digits.substr(i, 2), 0xFF, "a byte")));
    return bytes;
}

int notThere(const std::string& what) {
    std::fprintf(stderr, "qlnhost: no such %s\n", what.c_str());
    return 1;
}

int get(Arguments& arguments) {
    const std::string path = fullPath(arguments.take("KEY"));
    const std::string name = arguments.take("NAME");
    arguments.finish();
    const auto value = platform::registry().value(path, name);
    if (!value)
        return notThere("value: " + path + " \"" + name + "\"");
    std::puts(valueText(*value).c_str());
    return 0;
}

int set(Arguments& arguments) {
    const std::string type = arguments.option("--type", "string");
    const std::string path = fullPath(arguments.take("KEY"));
    if (arguments.empty()) {
        platform::registry().createKey(path);
        return 0;
    }
    const std::string name = arguments.take("NAME");
    const platform::RegistryValue value = parseValue(arguments.take("VALUE"), type);
    arguments.finish();
    platform::registry().createKey(path);
    platform::registry().setValue(path, name, value);
    return 0;
}

int list(Arguments& arguments) {
    const std::string path = fullPath(arguments.takeOr(""));
    arguments.finish();
    const auto key = platform::registry().key(path);
    if (!key)
        return notThere("key: " + path);
    for (const std::string& subkey : platform::registry().subkeys(path))
        std::printf("[%s]\n", subkey.c_str());
    for (const auto& [name, value] : key->values)
        std::printf("%-24s %-7s %s\n", name.c_str(), typeName(value), valueText(value).c_str());
    return 0;
}

int remove(Arguments& arguments) {
    const std::string path = fullPath(arguments.take("KEY"));
    if (arguments.empty())
        return platform::registry().deleteKey(path) ? 0 : notThere("key: " + path);
    const std::string name = arguments.take("NAME");
    arguments.finish();
    return platform::registry().deleteValue(path, name) ? 0
                                                        : notThere("value: " + path + " \"" + name + "\"");
}

}  // namespace

int registryCommand(Arguments& arguments) {
    const std::string verb = arguments.take("get, set, list or delete");
    if (verb == "get")
        return get(arguments);
    if (verb == "set")
        return set(arguments);
    if (verb == "list")
        return list(arguments);
    if (verb == "delete")
        return remove(arguments);
    throw UsageError("registry knows get, set, list and delete, not '" + verb + "'");
}

}  // namespace qlnhost
