#include "service/program/registration.h"

#include <cstdint>

#include "platform/machine/host.h"
#include "platform/registry/registry.h"

namespace service {

void registerService() {
    constexpr char key[] = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\HbQlnSvc";
    constexpr std::uint32_t startByHand = 3;
    constexpr std::uint32_t ownProcess = 16;
    platform::Registry& registry = platform::registry();
    registry.createKey(key);
    registry.setValue(key, "ImagePath", "\"" + platform::program::file().string() + "\"");
    registry.setValue(key, "Start", startByHand);
    registry.setValue(key, "Type", ownProcess);
}

}  // namespace service
