#include "host/registryEntries.h"

#include <cstdint>

#include "platform/registry/productKey.h"
#include "platform/services/serviceManager.h"

namespace host {

namespace {

constexpr char machine[] = "HKEY_LOCAL_MACHINE\\";

// A source of this product: its messages have categories.
void addOwnSource(std::string_view source, const std::string& messageFile) {
    const std::string path = std::string(servicesKey) + "EventLog\\Application\\" + std::string(source);
    addSource("Application", source, messageFile);
    setValue(path, "CategoryMessageFile", messageFile);
    setValue(path, "CategoryCount", 2u);
}

}  // namespace

void setValue(const std::string& path, std::string_view name, platform::RegistryValue value) {
    platform::registry().createKey(machine + path);
    platform::registry().setValue(machine + path, name, std::move(value));
}

void addSource(const std::string& log, std::string_view source, const std::string& messageFile,
               bool categoriesOnly) {
    const std::string path = std::string(servicesKey) + "EventLog\\" + log + "\\" + std::string(source);
    setValue(path, categoriesOnly ? "CategoryMessageFile" : "EventMessageFile", messageFile);
    setValue(path, "TypesSupported", 7u);
}

void addService(std::string_view name, const std::string& program, const ServiceAccount& account) {
    constexpr std::uint32_t startAutomatically = 2;
    constexpr std::uint32_t ownProcess = 16;
    const std::string path = servicesKey + std::string(name);
    setValue(path, "ImagePath", "\"" + program + "\"");
    setValue(path, "Type", ownProcess);
    const platform::ServiceManager manager(platform::managerExecute);
    platform::Service service(manager, name, platform::serviceChangeConfig);
    platform::ServiceConfiguration configuration;
    configuration.startType = startAutomatically;
    configuration.account = account.name;
    configuration.password = account.password;
    service.changeConfiguration(configuration);
}

void addProduct(const std::filesystem::path& root, unsigned corvaneMajor) {
    setValue("SOFTWARE\\Tessaly", "Version Number", corvaneMajor >= 4 ? 0x00040000u : 0x00030001u);
    setValue("SOFTWARE\\Tessaly", "Build Number", 0x00010000u);
    setValue(platform::productKey, "DatabasePath", (root / "Database").string());
}

void addSnmpAgent() {
    setValue(std::string(servicesKey) + "SNMP\\Parameters\\ExtensionAgents", "MeridaneCorvane",
             std::string("SOFTWARE\\Tessaly\\SnmpAgent"));
}

void addNotifyingService(const std::filesystem::path& root, const ServiceAccount& account) {
    addService("HbQlnSvc", (root / "Service/HbQlnSvc.exe").string(), account);
    addOwnSource("MeridaneCorvane_HbQlnSvc", (root / "Service/MeridaneCorvane_HbQlnSvc.dll").string());
    addOwnSource("QLNTest", (root / "QLNAdmin/QLNTest_MC.DLL").string());
}

}  // namespace host
