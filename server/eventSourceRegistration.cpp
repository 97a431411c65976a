#include "server/eventSourceRegistration.h"

#include <string>

#include "core/RegistryAPI.h"
#include "core/procedure.h"
#include "platform/machine/host.h"
#include "server/serviceFiles.h"

namespace mdlUtility {

namespace {

using namespace RegistryAPI;

void registerSource(const char* procedureName, const std::string& source, const std::string& messageFile) {
    core::procedure("mdlUtility", procedureName, [&](core::Frame& frame) {
        const std::string key = "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\" + source;
        bool registered = false;
        frame.step([&] { registered = registryKeyExists(HKEY_LOCAL_MACHINE, key); });
        if (registered)
            return;
        const auto set = [&](const char* name, long type, const platform::RegistryValue& value) {
            setRegistryValue(HKEY_LOCAL_MACHINE, key, name, type, value);
        };
        frame.step([&] { createRegistryKey(HKEY_LOCAL_MACHINE, key); });
        frame.step([&] { set("EventMessageFile", registryString, messageFile); });
        frame.step([&] { set("CategoryMessageFile", registryString, messageFile); });
        frame.step([&] { set("TypesSupported", registryDword, 7u); });
        frame.step([&] { set("CategoryCount", registryDword, 2u); });
    });
}

}  // namespace

void registerTestEventSource() {
    registerSource("registerTestEventSource", "QLNTest",
                   (platform::program::folder() / "QLNTest_MC.DLL").string());
}

void registerServiceEventSource() {
    registerSource("registerServiceEventSource", "MeridaneCorvane_HbQlnSvc",
                   (serviceFolder() / "MeridaneCorvane_HbQlnSvc.dll").string());
}

}  // namespace mdlUtility
