#include "platform/services/serviceManager.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

#include "platform/machine/clock.h"
#include "platform/machine/process.h"
#include "platform/registry/registry.h"
#include "platform/services/accounts.h"
#include "platform/services/serviceLock.h"

namespace platform {

namespace {

constexpr std::string_view servicesKey = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services";
constexpr std::string_view controlKey = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control";
constexpr std::string_view markOfDeletion = "DeleteFlag";
constexpr std::string_view tokenValue = "LogonToken";
constexpr std::string_view systemAccount = "LocalSystem";
constexpr std::uint32_t startDisabled = 4;

std::string keyOf(std::string_view keyName) {
    return std::string(servicesKey) + '\\' + std::string(keyName);
}

std::string textValue(std::string_view keyName, std::string_view name) {
    return registry().text(keyOf(keyName), name).value_or(std::string());
}

std::uint32_t numberValue(std::string_view key, std::string_view name, std::uint32_t otherwise) {
    const auto value = registry().value(key, name);
    const auto* number = value ? std::get_if<std::uint32_t>(&*value) : nullptr;
    return number ? *number : otherwise;
}

bool isService(std::string_view keyName) {
    return isServiceKeyName(keyName) && registry().value(keyOf(keyName), "ImagePath").has_value();
}

bool isMarkedForDeletion(std::string_view keyName) {
    return numberValue(keyOf(keyName), markOfDeletion, 0) != 0;
}

// Gives a call's error number, also for a registry or a state that cannot be read or written.
template <class Call>
std::uint32_t guarded(Call&& call) {
    try {
        return call();
    } catch (const Failure& failure) {
        return failure.number() == pathFileAccessError ? errorBadRegistry : systemError(failure);
    }
}

// Takes a marked service away when nothing keeps it: no process, no handle.
void finishDeletion(std::string_view keyName, ServiceLock& lock) {
    if (isMarkedForDeletion(keyName) && currentState(keyName) == ServiceState::stopped && lock.isLastHandle())
        registry().deleteKey(keyOf(keyName));
}

// Waits until the program that the manager started has reported itself.
std::uint32_t awaitReport(std::string_view keyName) {
    using std::chrono::milliseconds;
    constexpr std::uint32_t standardTimeout = 30000;
    constexpr milliseconds pause(10);
    const auto deadline = std::chrono::steady_clock::now() +
                          milliseconds(numberValue(controlKey, "ServicesPipeTimeout", standardTimeout));
    for (;;) {
        // Whether it lives is asked first: what a program wrote before its end counts.
        const auto before = readServiceRecord(keyName);
        const bool alive = before && isAlive(*before);
        const auto record = readServiceRecord(keyName);
        if (record && record->reported)
            return noError;
        if (!alive)
            return errorServiceRequestTimeout;
        if (std::chrono::steady_clock::now() >= deadline) {
            signalService(*before, SIGKILL);
            return errorServiceRequestTimeout;
        }
        wait(pause);
    }
}

bool mayLogOn(std::string_view keyName) {
    const std::string account = textValue(keyName, "ObjectName");
    return account.empty() || account == systemAccount ||
           accountTokenHolds(account, textValue(keyName, tokenValue));
}

}  // namespace

Service::Service(const ServiceManager& manager, std::string_view keyName, std::uint32_t access)
    : keyName_(keyName), access_(access) {
    error_ = guarded([&]() -> std::uint32_t {
        if (manager.access() != managerExecute)
            return errorAccessDenied;
        if (!isService(keyName))
            return errorServiceDoesNotExist;
        lock_ = std::make_unique<ServiceLock>(keyName);
        // What was only waiting for its process to end is gone before anybody opens it again.
        finishDeletion(keyName, *lock_);
        if (!isService(keyName))
            return errorServiceDoesNotExist;
        lock_->holdHandle();
        return noError;
    });
    if (error_ != noError)
        lock_.reset();
}

Service::Service(Service&& other) noexcept = default;

Service& Service::operator=(Service&& other) noexcept {
    std::swap(keyName_, other.keyName_);
    std::swap(access_, other.access_);
    std::swap(error_, other.error_);
    std::swap(lock_, other.lock_);
    return *this;
}

Service::~Service() {
    close();
}

void Service::close() noexcept {
    if (lock_)
        guarded([&] {
            finishDeletion(keyName_, *lock_);
            return noError;
        });
    lock_.reset();
}

std::uint32_t Service::require(std::uint32_t right) const {
    if (error_ != noError)
        return error_;
    if (!lock_)
        return errorInvalidHandle;
    return access_ & right ? noError : errorAccessDenied;
}

ServiceStatus Service::queryStatus() const {
    ServiceStatus status;
    status.error = require(serviceQueryStatus);
    if (status.error == noError)
        status.state = currentState(keyName_);
    return status;
}

std::uint32_t Service::control(ServiceControl control) {
    const std::uint32_t denied = require(serviceStop);
    if (denied != noError)
        return denied;
    if (control != ServiceControl::stop)
        return errorInvalidParameter;
    const auto record = readServiceRecord(keyName_);
    if (!record || record->state == ServiceState::stopped)
        return errorServiceNotActive;
    if (!isAlive(*record)) {
        // It crashed: whoever starts such services again sees that this one is not wanted any more.
        return guarded([&] {
            writeServiceState(keyName_, ServiceState::stopped, static_cast<long>(record->processId));
            return errorServiceNotActive;
        });
    }
    if (record->state != ServiceState::running)
        return errorServiceCannotAcceptControl;
    if (signalService(*record, SIGTERM, programOf(textValue(keyName_, "ImagePath"))))
        return noError;
    return errno == EPERM ? errorAccessDenied : errorServiceNotActive;
}

std::uint32_t Service::start() {
    const std::uint32_t denied = require(serviceStart);
    return denied != noError ? denied : guarded([&] {
        // Of two that start it at once, one finds it started.
        lock_->beginStart();
        const std::uint32_t error = guarded([&] { return startChecked(); });
        lock_->endStart();
        return error;
    });
}

std::uint32_t Service::startChecked() {
    if (!isService(keyName_))
        return errorServiceDoesNotExist;
    if (isMarkedForDeletion(keyName_))
        return errorServiceMarkedForDelete;
    if (numberValue(keyOf(keyName_), "Start", 0) == startDisabled)
        return errorServiceDisabled;
    if (currentState(keyName_) != ServiceState::stopped)
        return errorServiceAlreadyRunning;
    if (!mayLogOn(keyName_))
        return errorServiceLogonFailed;
    StartOptions options;
    options.environment = {"QLN_SERVICE=" + keyName_};
    options.before = [&](long process) {
        writeServiceState(keyName_, ServiceState::startPending, process, false);
    };
    try {
        startProcess(textValue(keyName_, "ImagePath"), options);
    } catch (const Failure& failure) {
        return systemError(failure);
    }
    return awaitReport(keyName_);
}

std::uint32_t Service::changeConfiguration(const ServiceConfiguration& configuration) {
    const std::uint32_t denied = require(serviceChangeConfig);
    return denied != noError ? denied : guarded([&]() -> std::uint32_t {
        if (!isService(keyName_))
            return errorServiceDoesNotExist;
        if (isMarkedForDeletion(keyName_))
            return errorServiceMarkedForDelete;
        if (configuration.startType != serviceNoChange && configuration.startType > startDisabled)
            return errorInvalidParameter;
        std::string token;
        if (configuration.account && *configuration.account != systemAccount) {
            if (!accountExists(*configuration.account))
                return errorInvalidServiceAccount;
            const std::string_view password = configuration.password;
            token = accountToken(*configuration.account, password.substr(0, password.find('\0')));
        }
        const std::string key = keyOf(keyName_);
        const auto setNumber = [&](const char* name, std::uint32_t number) {
            if (number != serviceNoChange)
                registry().setValue(key, name, number);
        };
        const auto setText = [&](const char* name, const std::optional<std::string>& text) {
            if (text)
                registry().setValue(key, name, *text);
        };
        setNumber("Type", configuration.serviceType);
        setNumber("Start", configuration.startType);
        setNumber("ErrorControl", configuration.errorControl);
        setText("ImagePath", configuration.binaryPath);
        setText("Group", configuration.loadOrderGroup);
        setText("DependOnService", configuration.dependencies);
        setText("ObjectName", configuration.account);
        if (configuration.account)
            registry().setValue(key, tokenValue, token);
        setText("DisplayName", configuration.displayName);
        if (configuration.tag)
            *configuration.tag = 0;
        return noError;
    });
}

std::uint32_t Service::remove() {
    const std::uint32_t denied = require(serviceDelete);
    return denied != noError ? denied : guarded([&]() -> std::uint32_t {
        if (!isService(keyName_))
            return errorServiceDoesNotExist;
        if (isMarkedForDeletion(keyName_))
            return errorServiceMarkedForDelete;
        registry().setValue(keyOf(keyName_), markOfDeletion, 1u);
        return noError;
    });
}

ServiceStatus queryServiceStatus(std::string_view keyName) {
    ServiceStatus status;
    status.error = guarded([&] { return isService(keyName) ? noError : errorServiceDoesNotExist; });
    if (status.error == noError)
        status.state = currentState(keyName);
    return status;
}

void endService(std::string_view keyName) {
    guarded([&] {
        if (!isMarkedForDeletion(keyName))
            return noError;  // its end is what says that it stopped: until then its file is held
        writeServiceState(keyName, ServiceState::stopped, ::getpid());
        ServiceLock lock(keyName);
        finishDeletion(keyName, lock);
        return noError;
    });
}

std::vector<std::string> serviceNames() {
    std::vector<std::string> names;
    for (std::string& name : registry().subkeys(servicesKey))
        if (isService(name))
            names.push_back(std::move(name));
    return names;
}

}  // namespace platform
