// The host that stands for this machine: its people are the machine's, its sources what the machine logs.
#pragma once

#include <compare>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct EventSource {
    std::string log;  // "Application" or "System"
    std::string name;

    auto operator<=>(const EventSource&) const = default;
};

struct MachineOptions {
    std::filesystem::path kit;  // as in HostOptions
    std::vector<EventSource> sources;
    std::string directoryCsv;   // people in the form of importDirectory; empty for the machine's users
    std::string directoryName;  // stands in failures about it
};

struct MachineHost {
    std::filesystem::path root;
    std::string account;            // that the service runs under
    std::size_t sources = 0;        // registered
    std::vector<std::string> left;  // sources that no registry key can be made of
    long people = 0;
};

// Makes the host and its installation tree below `folder`, for finishTree to finish; it becomes the present
// one. The service is installed to start with the host, under an account of its own whose password nobody
// knows. Raises platform::Failure, 58 for a folder that holds a host already.
MachineHost createMachineHost(const std::filesystem::path& folder, const MachineOptions& options);

struct Registered {
    std::size_t added = 0;
    std::vector<std::string> left;  // as in MachineHost
};
// Registers the sources that the present host does not know yet; a name that it knows in another case is
// known, and whatever stands in the registry of it stays. Raises platform::Failure.
Registered registerSources(const std::vector<EventSource>& sources);

}  // namespace host
