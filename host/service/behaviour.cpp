#include "host/service/behaviour.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "platform/registry.h"

namespace service {

namespace {

constexpr char key[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service";

constexpr std::array<std::pair<std::string_view, Behaviour>, 5> names{{
    {"neverReport", Behaviour::neverReport},
    {"failToStart", Behaviour::failToStart},
    {"hangInStart", Behaviour::hangInStart},
    {"hangInStop", Behaviour::hangInStop},
    {"crashWhileRunning", Behaviour::crashWhileRunning},
}};

std::chrono::milliseconds delay(std::string_view name) {
    constexpr std::uint32_t longest = 60000;
    const auto value = platform::registry().value(key, name);
    const auto* number = value ? std::get_if<std::uint32_t>(&*value) : nullptr;
    return std::chrono::milliseconds(number ? std::min(*number, longest) : 0);
}

}  // namespace

Settings readSettings() {
    Settings settings{Behaviour::good, delay("ServiceStartDelay"), delay("ServiceStopDelay")};
    const auto value = platform::registry().value(key, "ServiceBehaviour");
    if (const auto* text = value ? std::get_if<std::string>(&*value) : nullptr)
        for (const auto& [name, behaviour] : names)
            if (*text == name)
                settings.behaviour = behaviour;
    return settings;
}

}  // namespace service
