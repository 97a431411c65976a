#include "platform/serviceManager.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include "platform/failure.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/registry.h"

namespace platform {

namespace {

constexpr std::string_view servicesKey = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services";
constexpr std::uint32_t serviceDoesNotExist = 1060;
constexpr std::uint64_t largestStateFile = 4096;

// A name that is one component of a registry path and of a file path.
bool isKeyName(std::string_view name) {
    return !name.empty() && name.find_first_of(std::string_view("\\/\0\n", 4)) == std::string_view::npos;
}

std::filesystem::path stateFile(std::string_view keyName) {
    std::string name(keyName);
    for (char& letter : name)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return host::servicesFolder() / (name + ".state");
}

std::optional<std::uint64_t> parseNumber(std::string_view text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

// When a living process was started, in ticks since the machine's; nothing for a dead one, also while its
// parent has not taken notice of it yet.
std::optional<std::uint64_t> startTime(std::uint64_t processId) {
    std::ifstream file("/proc/" + std::to_string(processId) + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    // The name before the state may itself hold blanks and parentheses.
    const std::size_t nameEnd = text.rfind(") ");
    if (nameEnd == std::string::npos)
        return std::nullopt;
    std::string_view fields = std::string_view(text).substr(nameEnd + 2);
    if (fields.starts_with('Z') || fields.starts_with('X'))
        return std::nullopt;
    constexpr int fieldsBetween = 19;  // the state is field 3, the start time field 22
    for (int i = 0; i < fieldsBetween; ++i) {
        const std::size_t blank = fields.find(' ');
        if (blank == std::string_view::npos)
            return std::nullopt;
        fields.remove_prefix(blank + 1);
    }
    return parseNumber(fields.substr(0, fields.find(' ')));
}

// The numbers of a state file by name; empty when any line is not of that form.
std::map<std::string, std::uint64_t, std::less<>> parseState(std::string_view text) {
    std::map<std::string, std::uint64_t, std::less<>> numbers;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        const std::size_t equals = line.find('=');
        if (end == std::string_view::npos || equals == std::string_view::npos)
            return {};
        const auto number = parseNumber(line.substr(equals + 1));
        if (!number || !numbers.emplace(line.substr(0, equals), *number).second)
            return {};
        text.remove_prefix(end + 1);
    }
    return numbers;
}

ServiceState readState(std::string_view keyName) {
    std::string text;
    try {
        text = files::readFile(stateFile(keyName), largestStateFile);
    } catch (const Failure&) {
        return ServiceState::stopped;
    }
    const auto numbers = parseState(text);
    const auto state = numbers.find("state");
    const auto process = numbers.find("pid");
    const auto start = numbers.find("start");
    if (state == numbers.end() || process == numbers.end() || start == numbers.end() ||
        state->second < static_cast<std::uint32_t>(ServiceState::stopped) ||
        state->second > static_cast<std::uint32_t>(ServiceState::running) ||
        startTime(process->second) != start->second)
        return ServiceState::stopped;
    return static_cast<ServiceState>(state->second);
}

bool isService(std::string_view keyName) {
    return isKeyName(keyName) &&
           registry().value(std::string(servicesKey) + '\\' + std::string(keyName), "ImagePath").has_value();
}

}  // namespace

ServiceStatus queryServiceStatus(std::string_view keyName) {
    if (!isService(keyName))
        return {serviceDoesNotExist, ServiceState::stopped};
    return {0, readState(keyName)};
}

void writeServiceState(std::string_view keyName, ServiceState state, long processId) {
    if (!isKeyName(keyName) || processId < 0)
        throw makeFailure(invalidProcedureCall);
    if (!files::folderExists(host::servicesFolder())) {
        try {
            files::createFolder(host::servicesFolder());
        } catch (const Failure& failure) {
            // Another service may have been faster.
            if (failure.number() != fileAlreadyExists)
                throw;
        }
    }
    const std::uint64_t start = startTime(static_cast<std::uint64_t>(processId)).value_or(0);
    files::writeFile(stateFile(keyName), "state=" + std::to_string(static_cast<std::uint32_t>(state)) +
                                             "\npid=" + std::to_string(processId) +
                                             "\nstart=" + std::to_string(start) + '\n');
}

std::vector<std::string> serviceNames() {
    std::vector<std::string> names;
    for (std::string& name : registry().subkeys(servicesKey))
        if (isService(name))
            names.push_back(std::move(name));
    return names;
}

}  // namespace platform
