#include "service/program/behaviour.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "platform/registry/registry.h"

namespace service {

namespace {

constexpr std::array<std::pair<std::string_view, Behaviour>, 5> names{{
    {"neverReport", Behaviour::neverReport},
    {"failToStart", Behaviour::failToStart},
    {"hangInStart", Behaviour::hangInStart},
    {"hangInStop", Behaviour::hangInStop},
    {"crashWhileRunning", Behaviour::crashWhileRunning},
}};

std::chrono::milliseconds duration(std::string_view key, std::string_view name) {
    constexpr std::uint32_t longest = 60000;
    const auto value = platform::registry().value(key, name);
    const auto* number = value ? std::get_if<std::uint32_t>(&*value) : nullptr;
    return std::chrono::milliseconds(number ? std::min(*number, longest) : 0);
}

}  // namespace

std::string textValue(std::string_view key, std::string_view name) {
    const auto value = platform::registry().value(key, name);
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? *text : std::string();
}

Settings readSettings(std::string_view key) {
    Settings settings{Behaviour::good, duration(key, "ServiceStartDelay"), duration(key, "ServiceStopDelay"),
                      duration(key, "ServicePollingPause")};
    const std::string chosen = textValue(key, "ServiceBehaviour");
    for (const auto& [name, behaviour] : names)
        if (chosen == name)
            settings.behaviour = behaviour;
    return settings;
}

}  // namespace service
