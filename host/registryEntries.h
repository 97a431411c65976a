// What every host has in its registry: the product, its services, the sources of its event logs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/registry/registry.h"

namespace host {

inline constexpr char servicesKey[] = "SYSTEM\\CurrentControlSet\\Services\\";

struct ServiceAccount {
    std::string name;
    std::string password;
};

// Each raises platform::Failure when the registry cannot be written. `path` is below HKEY_LOCAL_MACHINE.
void setValue(const std::string& path, std::string_view name, platform::RegistryValue value);
// A source of a log, with the file of its messages; some have a file of categories only.
void addSource(const std::string& log, std::string_view source, const std::string& messageFile,
               bool categoriesOnly = false);
// A service that starts with the host, under an account that is there.
void addService(std::string_view name, const std::string& program, const ServiceAccount& account);
// The version of the server, 4 or 3 for 3.1, and where the console's database lies.
void addProduct(const std::filesystem::path& root, unsigned corvaneMajor);
void addSnmpAgent();
// HbQlnSvc with the sources that it and the console's test write under.
void addNotifyingService(const std::filesystem::path& root, const ServiceAccount& account);

}  // namespace host
