#include "platform/services/serviceState.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/services/serviceLock.h"

namespace platform {

namespace {

constexpr std::uint64_t largestStateFile = 4096;

std::filesystem::path stateFile(std::string_view keyName) {
    return host::servicesFolder() / (foldedServiceName(keyName) + ".state");
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
    // A process that ends between the opening and the reading fails the stream; an iterator over it would
    // throw.
    std::string text;
    std::getline(file, text, '\0');
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

}  // namespace

bool isServiceKeyName(std::string_view name) {
    return !name.empty() && name.find_first_of(std::string_view("\\/\0\n", 4)) == std::string_view::npos;
}

std::optional<ServiceRecord> readServiceRecord(std::string_view keyName) {
    std::string text;
    try {
        text = files::readFile(stateFile(keyName), largestStateFile);
    } catch (const Failure&) {
        return std::nullopt;
    }
    const auto numbers = parseState(text);
    for (const char* name : {"state", "pid", "start"})
        if (numbers.find(name) == numbers.end())
            return std::nullopt;
    const std::uint64_t state = numbers.find("state")->second;
    if (state < static_cast<std::uint32_t>(ServiceState::stopped) ||
        state > static_cast<std::uint32_t>(ServiceState::running))
        return std::nullopt;
    const auto reported = numbers.find("reported");
    return ServiceRecord{static_cast<ServiceState>(state), numbers.find("pid")->second,
                         numbers.find("start")->second, reported == numbers.end() || reported->second != 0};
}

bool isAlive(const ServiceRecord& record) {
    return startTime(record.processId) == record.startTime;
}

ServiceState currentState(std::string_view keyName) {
    const auto record = readServiceRecord(keyName);
    return record && isAlive(*record) ? record->state : ServiceState::stopped;
}

void writeServiceState(std::string_view keyName, ServiceState state, long processId, bool reported) {
    if (!isServiceKeyName(keyName) || processId < 0)
        throw makeFailure(invalidProcedureCall);
    ensureServicesFolder();
    const std::uint64_t start = startTime(static_cast<std::uint64_t>(processId)).value_or(0);
    files::writeFile(stateFile(keyName), "state=" + std::to_string(static_cast<std::uint32_t>(state)) +
                                             "\npid=" + std::to_string(processId) +
                                             "\nstart=" + std::to_string(start) +
                                             "\nreported=" + (reported ? "1" : "0") + '\n');
}

namespace {

// Also when the file was replaced since: the system marks its name then.
bool runs(std::uint64_t processId, const std::string& program) {
    std::error_code error;
    const std::string file =
        std::filesystem::read_symlink("/proc/" + std::to_string(processId) + "/exe", error).string();
    const std::string wanted = std::filesystem::weakly_canonical(program, error).string();
    return !wanted.empty() && (file == wanted || file == wanted + " (deleted)");
}

}  // namespace

bool signalService(const ServiceRecord& record, int signal, const std::string& program) {
    // The descriptor holds on to one process; that it is the right one is looked up through it.
    const Descriptor process(
        static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(record.processId), 0)));
    if (!process)
        return false;
    if (!isAlive(record) || (!program.empty() && !runs(record.processId, program))) {
        errno = ESRCH;
        return false;
    }
    return ::syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0) == 0;
}

}  // namespace platform
