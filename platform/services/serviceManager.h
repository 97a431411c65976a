// The host's service manager. A service's configuration is its registry key, its running state a file that is
// checked against the process that it names, its program a process of its own. Calls give the system's
// last-error number (systemError.h), 0 when they succeed, and raise nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/services/serviceState.h"
#include "platform/systemError.h"

namespace platform {

class ServiceLock;

// What a handle may do. A call that its handle was not opened for fails with 5.
enum ServiceAccess : std::uint32_t {
    serviceQueryConfig = 0x1,
    serviceChangeConfig = 0x2,
    serviceQueryStatus = 0x4,
    serviceStart = 0x10,
    serviceStop = 0x20,
    serviceDelete = 0x10000,
};
// Access to the manager that allows to open services.
inline constexpr std::uint32_t managerExecute = 0x10000000;

struct ServiceStatus {
    std::uint32_t error = 0;  // of the query
    ServiceState state = ServiceState::stopped;
};

enum class ServiceControl : std::uint32_t { stop = 1 };

// Leaves a number of the configuration as it is.
inline constexpr std::uint32_t serviceNoChange = 0xFFFFFFFF;

struct ServiceConfiguration {
    std::uint32_t serviceType = serviceNoChange;
    std::uint32_t startType = serviceNoChange;  // 2 automatic, 3 by hand, 4 disabled
    std::uint32_t errorControl = serviceNoChange;
    std::optional<std::string> binaryPath;
    std::optional<std::string> loadOrderGroup;
    std::uint32_t* tag =
        nullptr;  // receives the place in the group, which is 0 for a service that is no driver
    std::optional<std::string> dependencies;
    std::optional<std::string> account;
    std::string_view password;  // of the account; ends at its first zero. Never stored
    std::optional<std::string> displayName;
};

// A connection to the manager.
class ServiceManager {
  public:
    explicit ServiceManager(std::uint32_t access) : access_(access) {}
    std::uint32_t access() const noexcept { return access_; }

  private:
    std::uint32_t access_;
};

// An open handle to a service; it closes when it goes. Through a handle that could not be opened (1060 for a
// service that is not there) every call fails with the error of the opening.
class Service {
  public:
    Service(const ServiceManager& manager, std::string_view keyName, std::uint32_t access);
    Service(Service&& other) noexcept;
    Service& operator=(Service&& other) noexcept;
    ~Service();

    ServiceStatus queryStatus() const;
    // Asks the service to stop; it may take its time. 1062 when it does not run, 1061 while it starts or
    // stops.
    std::uint32_t control(ServiceControl control);
    // Starts the service's program and returns when it has reported itself. 1056 when it runs, 1058 when it
    // is disabled, 1069 when its account's password is not the one that was configured, 1072 when it is to be
    // deleted, 1053 when the program ends, or lets 30 seconds pass, without a report.
    std::uint32_t start();
    // 1057 for an account that does not exist. Whether the password is right shows when the service starts.
    std::uint32_t changeConfiguration(const ServiceConfiguration& configuration);
    // Marks the service for deletion; it goes when it does not run and nobody has a handle to it.
    std::uint32_t remove();

  private:
    std::uint32_t require(std::uint32_t right) const;
    std::uint32_t startChecked();
    void close() noexcept;

    std::string keyName_;
    std::uint32_t access_ = 0;
    std::uint32_t error_ = noError;
    std::unique_ptr<ServiceLock> lock_;
};

// State of a service by its key name, for programs that only look. Error 1060 when there is none.
ServiceStatus queryServiceStatus(std::string_view keyName);

// What a service's program does last: one that is to be deleted goes with its process.
void endService(std::string_view keyName);

// Key names of all services of the host (registry keys with an ImagePath), as spelled.
std::vector<std::string> serviceNames();

}  // namespace platform
