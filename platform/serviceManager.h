// Services of the host: configuration in the registry, running state in a small file that is checked
// against the process that it names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class ServiceState : std::uint32_t { stopped = 1, startPending = 2, stopPending = 3, running = 4 };

struct ServiceStatus {
    std::uint32_t error = 0;  // the system's error number: 0, or 1060 when there is no such service
    ServiceState state = ServiceState::stopped;
};

// State of a service by its key name (without regard to case). A state file that names a process which no
// longer lives, or another one under the same id, reads as stopped.
ServiceStatus queryServiceStatus(std::string_view keyName);

// What a service's program and the manager write: the state, and the process that it holds for.
void writeServiceState(std::string_view keyName, ServiceState state, long processId);

// Key names of all services of the host (registry keys with an ImagePath), as spelled.
std::vector<std::string> serviceNames();

}  // namespace platform
