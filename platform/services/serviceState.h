// The running state of a service: a small file that the service and the manager write atomically, believed
// only together with the process that it names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

enum class ServiceState : std::uint32_t { stopped = 1, startPending = 2, stopPending = 3, running = 4 };

struct ServiceRecord {
    ServiceState state = ServiceState::stopped;
    std::uint64_t processId = 0;
    std::uint64_t startTime = 0;  // of the process, in the machine's ticks
    bool reported = true;         // the service's program wrote it; the manager's own note says false
};

// True for a name that is one component of a registry path and of a file path.
bool isServiceKeyName(std::string_view name);

// The record as it was written; nothing when there is none or it is damaged. Names are without regard to
// case.
std::optional<ServiceRecord> readServiceRecord(std::string_view keyName);
// True while the process that the record names lives.
bool isAlive(const ServiceRecord& record);
// The state that holds: that of the record while its process lives, else stopped.
ServiceState currentState(std::string_view keyName);

// What a service's program writes of itself, and the manager, with `reported` false, of a program that it is
// about to start. Raises 5 for a bad name or process, and what writing a file raises.
void writeServiceState(std::string_view keyName, ServiceState state, long processId, bool reported = true);

// Sends the signal to the record's process, and to no other that may have its id by now. With a `program` the
// process must be one that runs this file, for anybody could have written the record. False when it is gone,
// out of reach, or another program; errno says why.
bool signalService(const ServiceRecord& record, int signal, const std::string& program = {});

}  // namespace platform
